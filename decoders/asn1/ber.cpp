// Identifiers, lengths and headers, and the choice of a type's decoder.
#include "decoders/asn1/ber.h"

#include "decoders/asn1/ber_element.h"

namespace qxview {
namespace {

constexpr int32_t kDeepestLevel = kImageCount - 2 - LevelImage(0);

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

}  // namespace

Place LinesOf(const AsnPlace& at) {
  const LineHandle parent = at.parents ? at.parents[at.depth] : 0;
  const int32_t level = at.base + at.depth + 1;
  return {at.view, at.tree, parent, static_cast<int16_t>(level < kDeepestLevel ? level : kDeepestLevel), kLineSize,
          parent == 0};
}

AsnPlace Beneath(const AsnPlace& at, LineHandle line) {
  AsnPlace under = at;
  if (at.depth + 1 >= kAsnDepths || !at.parents) {
    under.parents = nullptr;
    return under;
  }
  under.depth = at.depth + 1;
  under.parents[under.depth] = line;
  return under;
}

int32_t DecodeAsnIdentifier(const AsnPlace& at, const Cursor& c, AsnResult& out) {
  out.consumed = 0;
  if (!out.text || out.textSize < kAsnClassTextSize) return kAsnNotThisType;
  Cursor rest = c;
  const Field identifier = TakeU8(rest);
  if (!identifier.here) return kAsnTruncated;
  const Place lines = LinesOf(at);
  const uint32_t tag = identifier.value & 0x1F;
  AddText(lines, identifier, kClassTexts[identifier.value >> 6]);
  AddText(lines, identifier, kConstructedTexts[identifier.value >> 5 & 1]);
  AddText(lines, identifier, kTagTexts.of[tag]);
  FormatInto(out.text, out.textSize, "[%s %u]", kClassNames[identifier.value >> 6], tag);
  out.number = tag;
  out.consumed = 1;
  return kAsnDecoded;
}

int32_t DecodeAsnLength(const AsnPlace& at, const Cursor& c, AsnResult& out) {
  out.consumed = 0;
  Cursor rest = c;
  const Field first = TakeU8(rest);
  if (!first.here) return kAsnTruncated;
  const Place lines = LinesOf(at);
  const uint32_t isLong = first.value >> 7, low = first.value & 0x7F;
  AddText(lines, first, kLongLengthTexts[isLong]);
  if (!isLong) {
    AddText(lines, first, kShortLengthTexts.of[low]);
    out.number = low;
    out.consumed = 1;
    return kAsnDecoded;
  }
  AddText(lines, first, kLengthOctetsTexts.of[low]);
  if (Left(rest) < 1) return kAsnTruncated;
  const Field octets = TakeBytes(rest, low);
  if (!octets.here) return kAsnTruncated;
  // Without length octets the next one is taken for the length all the same.
  out.number = octets.length > 0 ? NumberOf(octets) : octets.bytes[0];
  AddLine(lines, octets, "Length  : %u Bytes", out.number);
  out.consumed = 1 + octets.length;
  return kAsnDecoded;
}

AsnSpan TakeAsnElement(Cursor& c) {
  AsnSpan element{0, c, {}, false, false};
  Cursor rest = c;
  element.identifier = TakeU8(rest).value;
  AsnResult length{};
  element.here = DecodeAsnLength(AsnPlace{}, rest, length) == kAsnDecoded && !IsNegative(length.number);
  if (!element.here) {
    TakeCursor(c, Left(c));
    element.contents = c;
    return element;
  }
  TakeBytes(rest, length.consumed);
  element.cut = static_cast<int32_t>(length.number) > Left(rest);
  element.contents = TakeCursor(rest, length.number);
  element.contents.begin = element.contents.offset;
  element.whole = TakeCursor(c, rest.offset - c.offset);
  return element;
}

int32_t DecodeAsnLengthLine(const AsnPlace& at, const Cursor& c, const char* title, AsnResult& out) {
  out.consumed = 0;
  if (Left(c) < 1) return kAsnTruncated;
  const Place lines = LinesOf(at);
  const LineHandle line = AddLine(lines, Ahead(c, 0), "%s", title);
  const int32_t status = DecodeAsnLength(Beneath(at, line), c, out);
  if (status != kAsnDecoded) return status;
  SetRange(lines, line, c.offset, out.consumed);
  AppendToLine(lines, line, " %u Bytes", out.number);
  return IsNegative(out.number) ? kAsnNotThisType : kAsnDecoded;
}

AsnElement OpenElement(const AsnPlace& at, const Cursor& c, const char* typeName, AsnResult& out) {
  AsnElement element{{}, LinesOf(at), kAsnDecoded};
  const Place& lines = element.lines;
  Cursor rest = c;
  const Field identifier = TakeU8(rest);
  out.number = kAsnNoValue;
  out.consumed = 1;
  CopyString(out.text, out.textSize, "");
  const LineHandle type = identifier.value == kAsnInteger ? AddLine(lines, identifier, "ASN Type  :")
                                                          : AddLine(lines, identifier, "ASN Type:");
  char classText[kAsnClassTextSize];
  AsnResult part{0, classText, sizeof classText, 0};
  DecodeAsnIdentifier(Beneath(at, type), c, part);
  AppendToLine(lines, type, " %s = %s", static_cast<const char*>(classText), typeName);
  if (Left(rest) < 1) return element;

  const LineHandle length = AddLine(lines, Ahead(rest, 0), "ASN Length:");
  element.status = DecodeAsnLength(Beneath(at, length), rest, part);
  if (element.status != kAsnDecoded) return element;
  SetRange(lines, length, rest.offset, part.consumed);
  AppendToLine(lines, length, " %u", part.number);
  TakeBytes(rest, part.consumed);
  out.consumed += part.consumed;
  if (IsNegative(part.number)) {
    element.status = kAsnNotThisType;
    return element;
  }
  element.contents = TakeBytes(rest, part.number);
  if (!element.contents.here) {
    element.status = kAsnTruncated;
    return element;
  }
  out.consumed += element.contents.length;
  if (element.contents.length > 0) {
    out.number = 0;
    return element;
  }
  FormatInto(out.text, out.textSize, "<NULL>");
  AddLine(lines, element.contents, "ASN Value : %s", "<NULL>");
  element.contents.here = false;
  return element;
}

uint32_t NumberOf(const Field& contents) {
  uint32_t number = 0;
  for (int32_t i = contents.length > 4 ? contents.length - 4 : 0; i < contents.length; ++i) {
    number = number << 8 | contents.bytes[i];
  }
  return number;
}

int32_t DecodeAsnHeader(const AsnPlace& at, const Cursor& c, const char* label, AsnResult& out) {
  out.consumed = 0;
  Cursor rest = c;
  const Field identifier = TakeU8(rest);
  if (!identifier.here) return kAsnTruncated;
  const Place lines = LinesOf(at);
  const LineHandle type = label ? AddLine(lines, identifier, "%s Type:", label)
                                : AddLine(lines, identifier, "ASN1 Type  :");
  char classText[kAsnClassTextSize];
  AsnResult part{0, classText, sizeof classText, 0};
  DecodeAsnIdentifier(Beneath(at, type), c, part);
  out.consumed = 1;
  out.number = kAsnNoValue;
  char title[kLineSize];
  if (label) {
    FormatInto(title, sizeof title, "%s Length:", label);
  } else {
    FormatInto(title, sizeof title, "ASN1 Length:");
  }
  const int32_t status = DecodeAsnLengthLine(at, rest, title, part);
  if (status != kAsnDecoded) return status;
  out.consumed += part.consumed;
  out.number = part.number;
  return kAsnDecoded;
}

int32_t DecodeAsnValue(const AsnPlace& at, const Cursor& c, const char* label, AsnResult& out) {
  out.consumed = 0;
  if (Left(c) < 1) return kAsnTruncated;
  const Place lines = LinesOf(at);
  const LineHandle heading = label ? AddLine(lines, Ahead(c, 0), "%s: ", label)
                                   : AddLine(lines, Ahead(c, 0), "ASN1 Value : ");
  const AsnPlace under = Beneath(at, heading);
  char shortText[kAsnShortTextSize];
  const uint32_t identifier = c.at[0];
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
  SetRange(lines, heading, c.offset, out.consumed);
  return status;
}

int32_t DecodeAsnElement(const AsnPlace& at, const Cursor& c, const char* label, AsnResult& out) {
  const int32_t status = DecodeAsnHeader(at, c, label, out);
  if (status != kAsnDecoded) return status;
  const int32_t header = out.consumed;
  Cursor rest = c;
  TakeBytes(rest, header);
  const int32_t valueStatus = DecodeAsnValue(at, rest, label, out);
  out.consumed += header;
  return valueStatus;
}

}  // namespace qxview
