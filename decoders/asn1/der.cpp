#include "decoders/asn1/der.h"

#include "core/name_table.h"
#include "decoders/common/line_text.h"

namespace qxview {
namespace {

bool IsDigits(const Cursor& c, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    const uint32_t digit = PeekU8(c, i);
    if (digit < '0' || digit > '9') return false;
  }
  return Left(c) >= count;
}
uint32_t TwoDigits(const Cursor& c, int32_t at) { return (PeekU8(c, at) - '0') * 10 + PeekU8(c, at + 1) - '0'; }

constexpr auto kTagNames = SortedNames({
    {1, "Boolean"}, {2, "Integer"}, {3, "Bit String"}, {4, "Octet String"}, {5, "Null"}, {6, "Object Identifier"},
    {10, "Enumerated"}, {12, "UTF-8 String"}, {18, "Numeric String"}, {19, "Printable String"}, {20, "Teletex String"},
    {22, "IA5 String"}, {23, "UTC Time"}, {24, "Generalized Time"}, {26, "Visible String"}, {28, "Universal String"},
    {30, "BMP String"}, {48, "Sequence"}, {49, "Set"}});

bool IsString(uint32_t identifier) {
  switch (identifier) {
    case kDerUtf8:
    case kDerNumeric:
    case kDerPrintable:
    case kDerTeletex:
    case kDerIa5:
    case kDerVisible:
    case kDerUniversal:
    case kDerBmp: return true;
    default: return false;
  }
}

void ShowDerValuesTo(const Place& in, Cursor& c, int32_t depth);

// keys: none Sequence, Set
void ShowDerValue(const Place& in, const BerElement& element, int32_t depth) {
  constexpr uint32_t kConstructed = 0x20;
  const char* name = LookupName(kTagNames, element.identifier, nullptr);
  if (element.identifier & kConstructed) {
    const LineHandle line = name ? AddLine(in, WholeOf(element), "%s:", name)
                                 : AddLine(in, WholeOf(element), "Tagged: [%u]", element.identifier & 0x1F);
    Cursor inner = element.contents;
    if (depth < kDeepestDer) return ShowDerValuesTo(Under(in, line), inner, depth + 1);
    AddBlock(Under(in, line), Rest(inner), "Data");
    return;
  }
  switch (element.identifier) {
    case kAsnBoolean: return ShowDerBoolean(in, element, name);
    case kAsnInteger:
    case kAsnEnumerated: return ShowDerNumber(in, element, name);
    case kAsnObjectId: return ShowDerObject(in, element, name);
    case kDerUtcTime:
    case kDerGeneralizedTime: return ShowDerTime(in, element, name);
    case kAsnNull: return static_cast<void>(AddLine(in, WholeOf(element), "Null"));
    default: break;
  }
  if (IsString(element.identifier)) return ShowDerString(in, element, name);
  ShowDerOctets(in, element, name ? name : "Value");
}

void ShowDerValuesTo(const Place& in, Cursor& c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    const BerElement element = TakeBer(c);
    if (!element.here) {
      c = start;
      AddBlock(in, Rest(c), "Data");
      return;
    }
    ShowDerValue(in, element, depth);
  }
}

}  // namespace

bool TakeDer(Cursor& c, uint32_t identifier, BerElement* element) {
  if (PeekU8(c) != identifier || Left(c) < 2) return false;
  Cursor rest = c;
  *element = TakeBer(rest);
  if (!element->here) return false;
  c = rest;
  return true;
}

DerText DerStringText(const BerElement& element) {
  DerText made;
  LineText text(made.text, sizeof made.text);
  Cursor c = element.contents;
  if (element.identifier == kDerBmp) {
    while (Left(c) >= 2 && !text.IsFull()) text.PutCode(TakeU16(c).value);
  } else if (element.identifier == kDerUniversal) {
    while (Left(c) >= 4 && !text.IsFull()) text.PutCode(TakeU32(c).value);
  } else if (element.identifier == kDerTeletex) {
    while (Left(c) >= 1 && !text.IsFull()) text.PutCode(TakeU8(c).value);
  } else {
    text.PutValue(c);
  }
  return made;
}

// UTC times have two digits of the year, of 1950 to 2049 (RFC 5280 4.1.2.5).
DerText DerTimeText(const BerElement& element) {
  DerText made;
  Cursor c = element.contents;
  const bool isShort = element.identifier == kDerUtcTime;
  const int32_t digits = isShort ? 10 : 12;
  if (!IsDigits(c, digits)) {
    LineText(made.text, sizeof made.text).PutValue(c);
    return made;
  }
  const uint32_t first = TwoDigits(c, 0);
  const uint32_t year = isShort ? first + (first < 50 ? 2000 : 1900) : first * 100 + TwoDigits(c, 2);
  TakeBytes(c, isShort ? 2 : 4);
  const bool hasSeconds = IsDigits(c, 10);
  FormatInto(made.text, sizeof made.text, "%.04u-%.02u-%.02u %.02u:%.02u:%.02u", year, TwoDigits(c, 0), TwoDigits(c, 2),
             TwoDigits(c, 4), TwoDigits(c, 6), hasSeconds ? TwoDigits(c, 8) : 0);
  TakeBytes(c, hasSeconds ? 10 : 8);
  const Field zone = Rest(c);
  if (zone.length == 1 && PeekU8(zone) == 'Z') AppendFormat(made.text, sizeof made.text, " (UTC)");
  else if (zone.here) AppendFormat(made.text, sizeof made.text, " %s", Text(zone));
  return made;
}

void ShowDerNumber(const Place& in, const BerElement& element, const char* label) {
  const Field contents = ContentsOf(element);
  if (contents.length > 8 || contents.length < 1 || (contents.length > 4 && (PeekU8(contents) & 0x80))) {
    AddLine(in, contents, "%s: %s", label, HexDigits(contents));
    return;
  }
  if (contents.length <= 4) {
    AddLine(in, contents, "%s: %d", label, BerInteger(element.contents));
    return;
  }
  uint64_t number = 0;
  for (int32_t i = 0; i < contents.length; ++i) number = number << 8 | PeekU8(contents, i);
  AddLine(in, contents, "%s: %I64u", label, number);
}

void ShowDerObject(const Place& in, const BerElement& element, const char* label) {
  if (in.dead) return;
  AddLine(in, ContentsOf(element), "%s: %s", label, DescribeObject(element.contents));
}
void ShowDerTime(const Place& in, const BerElement& element, const char* label) {
  AddLine(in, ContentsOf(element), "%s: %s", label, DerTimeText(element));
}
void ShowDerString(const Place& in, const BerElement& element, const char* label) {
  AddLine(in, ContentsOf(element), "%s: %s", label, DerStringText(element));
}
void ShowDerOctets(const Place& in, const BerElement& element, const char* label) {
  const Field contents = ContentsOf(element);
  AddLine(in, contents, "%s: %s", label, HexDigits(contents));
}
void ShowDerBoolean(const Place& in, const BerElement& element, const char* label) {
  AddLine(in, ContentsOf(element), "%s: %s", label, BerNumber(element.contents) ? "True" : "False");
}

Cursor ShowDerBits(const Place& in, const BerElement& element) {
  Cursor c = element.contents;
  const Field unused = TakeU8(c);
  AddLine(in, unused, "Unused Bits: %u", unused.value);
  return MakeCursor(c.at, c.offset, Left(c));
}

void ShowDerFlags(const Place& in, const BerElement& element, const char* label, const char* const* names, int32_t count) {
  Cursor octets = ShowDerBits(in, element);
  const Field bits = Ahead(octets, Left(octets));
  if (bits.length < 1) return;
  const Place under = Under(in, AddLine(in, bits, "%s: %s", label, HexText(bits)));
  for (int32_t i = 0; i < count && i < 8 * bits.length; ++i) {
    Field octet = Slice(bits, i / 8, 1);
    octet.value = PeekU8(octet);
    const BitPicture bit = BitsOf(octet, i % 8, 1);
    AddBitLine(under, octet, "%s: %s = %s", bit.picture, names[i], LookupName(kFalseTrueNames, bit.value));
  }
}

void ShowDerValues(const Place& in, Cursor& c) { ShowDerValuesTo(in, c, 0); }

}  // namespace qxview
