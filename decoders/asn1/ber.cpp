// Identifiers, lengths and headers, and the choice of a type's decoder.
#include "decoders/asn1/ber.h"

#include "decoders/asn1/ber_element.h"

namespace qxview {
namespace {

// An identifier's lines and those of a short length depend on one octet, and small elements have little else: their
// texts are made when this is compiled. Each is the picture of some bits, what they are, and their value.
struct OctetText {
  char text[48];
  int32_t length;
};

constexpr void Put(OctetText& made, const char* text) {
  while (*text) made.text[made.length++] = *text++;
}

constexpr OctetText MakeText(uint32_t bits, int32_t firstBit, int32_t bitCount, const char* behind) {
  OctetText made{};
  for (int32_t bit = 0; bit < 8; ++bit) {
    const bool shown = bit >= firstBit && bit < firstBit + bitCount;
    made.text[made.length++] = !shown ? '.' : bits >> (firstBit + bitCount - 1 - bit) & 1 ? '1' : '0';
  }
  Put(made, behind);
  return made;
}

// The texts of every value of the bits, with the value as a number.
template <int32_t kFirstBit, int32_t kBitCount>
struct NumberTexts {
  OctetText of[1 << kBitCount];
};
template <int32_t kFirstBit, int32_t kBitCount>
constexpr NumberTexts<kFirstBit, kBitCount> MakeNumberTexts(const char* behind, const char* unit) {
  NumberTexts<kFirstBit, kBitCount> made{};
  for (uint32_t value = 0; value < 1u << kBitCount; ++value) {
    OctetText& text = made.of[value] = MakeText(value, kFirstBit, kBitCount, behind);
    if (value >= 100) text.text[text.length++] = static_cast<char>('0' + value / 100);
    if (value >= 10) text.text[text.length++] = static_cast<char>('0' + value / 10 % 10);
    text.text[text.length++] = static_cast<char>('0' + value % 10);
    Put(text, unit);
  }
  return made;
}

// The lines of the class have always been aligned by hand.
constexpr OctetText kClassTexts[] = {
    MakeText(0, 0, 2, ":  Class [0] = Universal"), MakeText(1, 0, 2, ": Class [1] = Application"),
    MakeText(2, 0, 2, ": Class [2] = Context-Specific"), MakeText(3, 0, 2, ": Class [3] = Private")};
constexpr const char* kClassNames[] = {"Universal", "Application", "Context-Specific", "Private"};
constexpr OctetText kConstructedTexts[] = {MakeText(0, 2, 1, ": Constructed = False"),
                                           MakeText(1, 2, 1, ": Constructed = True")};
constexpr auto kTagTexts = MakeNumberTexts<3, 5>(": Tag Number = ", "");
constexpr OctetText kLongLengthTexts[] = {MakeText(0, 0, 1, ": Multi-Byte Length Flag = False"),
                                          MakeText(1, 0, 1, ": Multi-Byte Length Flag = True")};
constexpr auto kShortLengthTexts = MakeNumberTexts<1, 7>(": Length = ", " Bytes");
constexpr auto kLengthOctetsTexts = MakeNumberTexts<1, 7>(": Number of Bytes = ", "");

void AddText(const Place& lines, const Field& octet, const OctetText& made) {
  AddMadeLine(lines, octet, made.text, made.length);
}

bool IsNegative(uint32_t length) { return static_cast<int32_t>(length) < 0; }

using ClassText = ShortText<23>;   // "[Context-Specific 31]"

// The three fields of the identifier.
ClassText ShowIdentifier(const Place& at, const Field& identifier) {
  const uint32_t tag = identifier.value & 0x1F;
  AddText(at, identifier, kClassTexts[identifier.value >> 6]);
  AddText(at, identifier, kConstructedTexts[identifier.value >> 5 & 1]);
  AddText(at, identifier, kTagTexts.of[tag]);
  ClassText made;
  FormatInto(made.text, sizeof made.text, "[%s %u]", kClassNames[identifier.value >> 6], tag);
  return made;
}

}  // namespace

Place Beneath(const Place& at, LineHandle line) {
  Place under = at;
  under.parent = line;
  under.dead = line == 0 || at.dead;
  if (under.level < kDeepestAsnLevel) ++under.level;
  return under;
}

int32_t DecodeAsnLength(const Place& at, Cursor& c, uint32_t* length) {
  Cursor rest = c;
  const BerLength taken = TakeBerLength(rest);
  const Field& first = taken.first;
  if (!first.here) return kAsnTruncated;
  const uint32_t low = first.value & 0x7F;
  AddText(at, first, kLongLengthTexts[taken.isLong]);
  AddText(at, first, taken.isLong ? kLengthOctetsTexts.of[low] : kShortLengthTexts.of[low]);
  *length = taken.value;
  if (taken.isLong) {
    if (!taken.here || Left(c) < 2) return kAsnTruncated;
    // Without length octets the next one is taken for the length all the same.
    if (low == 0) *length = PeekU8(rest);
    AddLine(at, taken.octets, "Length  : %u Bytes", *length);
  }
  c = rest;
  return kAsnDecoded;
}

int32_t DecodeAsnLengthLine(const Place& at, Cursor& c, const char* title) {
  if (Left(c) < 1) return kAsnTruncated;
  const LineHandle line = AddLine(at, Ahead(c, 0), "%s", title);
  const int32_t start = c.offset;
  uint32_t length = 0;
  const int32_t status = DecodeAsnLength(Beneath(at, line), c, &length);
  if (status != kAsnDecoded) return status;
  SetRange(at, line, start, c.offset - start);
  AppendToLine(at, line, " %u Bytes", length);
  return IsNegative(length) ? kAsnNotThisType : kAsnDecoded;
}

AsnElement OpenElement(const Place& at, Cursor& c, const char* typeName, AsnResult& out) {
  AsnElement element{{}, kAsnDecoded};
  const Field identifier = TakeU8(c);
  out.number = kAsnNoValue;
  CopyString(out.text, out.textSize, "");
  const LineHandle type = identifier.value == kAsnInteger ? AddLine(at, identifier, "ASN Type  :")
                                                          : AddLine(at, identifier, "ASN Type:");
  const ClassText classText = ShowIdentifier(Beneath(at, type), identifier);
  AppendToLine(at, type, " %s = %s", classText, typeName);
  if (Left(c) < 1) return element;

  const LineHandle line = AddLine(at, Ahead(c, 0), "ASN Length:");
  const int32_t start = c.offset;
  uint32_t length = 0;
  element.status = DecodeAsnLength(Beneath(at, line), c, &length);
  if (element.status != kAsnDecoded) return element;
  SetRange(at, line, start, c.offset - start);
  AppendToLine(at, line, " %u", length);
  if (IsNegative(length)) {
    element.status = kAsnNotThisType;
  } else if (length > static_cast<uint32_t>(Left(c))) {
    element.status = kAsnTruncated;
  } else if (length > 0) {
    element.contents = TakeBytes(c, length);
    out.number = 0;
  } else {
    FormatInto(out.text, out.textSize, "<NULL>");
    AddLine(at, Ahead(c, 0), "ASN Value : %s", "<NULL>");
  }
  return element;
}

int32_t DecodeAsnHeader(const Place& at, Cursor& c, const char* label) {
  const Field identifier = Left(c) > 0 ? TakeU8(c) : Field{};
  if (!identifier.here) return kAsnTruncated;
  const LineHandle type = label ? AddLine(at, identifier, "%s Type:", label) : AddLine(at, identifier, "ASN1 Type  :");
  ShowIdentifier(Beneath(at, type), identifier);
  if (!label) return DecodeAsnLengthLine(at, c, "ASN1 Length:");
  char title[kLineSize];
  FormatInto(title, sizeof title, "%s Length:", label);
  return DecodeAsnLengthLine(at, c, title);
}

int32_t DecodeAsnValue(const Place& at, Cursor& c, const char* label, AsnResult& out) {
  if (Left(c) < 1) return kAsnTruncated;
  const LineHandle heading = label ? AddLine(at, Ahead(c, 0), "%s: ", label)
                                   : AddLine(at, Ahead(c, 0), "ASN1 Value : ");
  const Place under = Beneath(at, heading);
  const int32_t start = c.offset;
  char shortText[kAsnShortTextSize];
  const uint32_t identifier = PeekU8(c);
  const AsnStringForm form{"ASN Value", shortText, sizeof shortText, identifier == kAsnOctetString};
  const auto decode = [&]() -> int32_t {
    switch (identifier) {
      case kAsnBoolean: return DecodeAsnBoolean(under, c, out);
      case kAsnInteger: return DecodeAsnInteger(under, c, out);
      case kAsnBitString: return DecodeAsnBitString(under, c, out);
      case kAsnOctetString: return DecodeAsnOctetString(under, c, form, out);
      case kAsnNull: return DecodeAsnNull(under, c, out);
      case kAsnGeneralizedTime: return DecodeAsnGeneralizedTime(under, c, form, out);
      case kAsnGeneralString: return DecodeAsnGeneralString(under, c, form, out);
      case kAsnNetworkAddress: return DecodeAsnNetworkAddress(under, c, out);
      case kAsnCounter: return DecodeAsnCounter(under, c, out);
      case kAsnGauge: return DecodeAsnGauge(under, c, out);
      case kAsnTimeTicks: return DecodeAsnTimeTicks(under, c, nullptr, 0, out);
      case kAsnOpaque: return DecodeAsnOpaque(under, c, form, out);
      case kAsnCounter64: return DecodeAsnCounter64(under, c, out);
      case kAsnUnsigned32: return DecodeAsnUnsigned32(under, c, out);
      case kAsnNoSuchObject:
      case kAsnNoSuchInstance:
      case kAsnEndOfMibView: return DecodeAsnException(under, c, out);
      default: return DecodeAsnUndefined(under, c, out);
    }
  };
  const int32_t status = decode();
  SetRange(at, heading, start, c.offset - start);
  return status;
}

}  // namespace qxview
