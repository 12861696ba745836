#include "decoders/asn1/kerberos_walk.h"

namespace qxview {
namespace {

// A field's label line has the element's own lines two depths below it.
constexpr int32_t kDeepestField = kAsnDepths - 3;
constexpr int32_t kLongestHex = 32;   // octets that are shown in a line

const char* NameOf(const KrbType& type, uint32_t code) {
  return LookupName(type.names, code, type.nameCount, kUndefined);
}

bool IsText(const Cursor& contents) {
  for (int32_t i = 0; i < Left(contents); ++i) {
    if (contents.at[i] < 0x20 || contents.at[i] > 0x7E) return false;
  }
  return Left(contents) > 0;
}

Field FieldOver(const Cursor& c) { return {c.at, c.offset, Left(c), 0, true}; }
TextSlice TextOver(const Cursor& c) { return {reinterpret_cast<const char*>(c.at), Left(c)}; }

// An octet string's type for what it holds; null for plain octets, and for contents that do not begin as the type does.
const KrbType* ChosenType(const KrbWalk& walk, const KrbType& type, uint32_t code, const Cursor& contents) {
  if (!type.choose || Left(contents) < 1) return nullptr;
  const KrbType* chosen = type.choose(walk, code, contents);
  return chosen && (chosen->identifier == 0 || chosen->identifier == contents.at[0]) ? chosen : nullptr;
}

// Seconds always, in the universal time zone; anything else is shown as it stands.
void DescribeTime(const Cursor& contents, char* out, int32_t outSize) {
  constexpr int32_t kLength = 15;   // "20380119031407Z"
  const TextSlice text = TextOver(contents);
  bool isTime = text.length == kLength && text.text[kLength - 1] == 'Z';
  for (int32_t i = 0; isTime && i < kLength - 1; ++i) isTime = text.text[i] >= '0' && text.text[i] <= '9';
  const auto part = [&](int32_t first, int32_t length) { return TextSlice{text.text + first, length}; };
  if (isTime) {
    FormatInto(out, outSize, "%s-%s-%s %s:%s:%s UTC", part(0, 4), part(4, 2), part(6, 2), part(8, 2), part(10, 2),
               part(12, 2));
  } else {
    FormatInto(out, outSize, "%s", text);
  }
}

// The bits of a BIT STRING of at least 32: its first octet counts the unused ones at the end.
Field FlagsOf(const Cursor& contents) {
  Cursor c = contents;
  TakeU8(c);
  return TakeU32(c);
}

void DescribeFlags(const KrbType& type, const Cursor& contents, char* out, int32_t outSize) {
  const Field flags = FlagsOf(contents);
  if (!flags.here) return;
  for (int32_t bit = 0; bit < 32; ++bit) {
    if (!BitsOf(flags, bit, 1).value || !type.bits[bit]) continue;
    AppendFormat(out, outSize, "%s%s", out[0] ? ", " : "", type.bits[bit]);
  }
  if (!out[0]) FormatInto(out, outSize, "None");
}

void ShowFlags(const AsnPlace& at, const KrbType& type, const Cursor& contents) {
  const Field flags = FlagsOf(contents);
  if (!flags.here) return;
  const Place lines = LinesOf(at);
  for (int32_t bit = 0; bit < 32; ++bit) {
    const BitPicture one = BitsOf(flags, bit, 1);
    if (!type.bits[bit] && !one.value) continue;
    AddBitLine(lines, flags, "%s: %s = %s", one.picture, type.bits[bit] ? type.bits[bit] : "Reserved",
               TrueOrFalse(one.value));
  }
}

void DescribeOctets(const Cursor& contents, char* out, int32_t outSize) {
  if (IsText(contents)) {
    FormatInto(out, outSize, "%s", TextOver(contents));
  } else if (Left(contents) <= kLongestHex) {
    FormatInto(out, outSize, "%s", HexText(FieldOver(contents)));
  } else {
    FormatInto(out, outSize, "%u Bytes", Left(contents));
  }
}

void ShowRest(const AsnPlace& at, const Cursor& c, const char* title) { AddBlock(LinesOf(at), FieldOver(c), title); }

// Octets that hold nothing known. The title of long ones is the type's: it tells encrypted octets from others.
void ShowOctets(const AsnPlace& at, const KrbType& type, const Cursor& contents) {
  if (Left(contents) > kLongestHex || type.label) {
    ShowRest(at, contents, type.label ? type.label : "Octet String Data");
  } else {
    AddLine(LinesOf(at), FieldOver(contents), "Octet String: %s", HexText(FieldOver(contents)));
  }
}

// A decoder of the basic encoding rules, and what was there of an element that is cut.
void ShowLeaf(KrbWalk& walk, const AsnPlace& at, const AsnSpan& element, KrbForm form) {
  char text[kAsnTextSize], shortText[kAsnShortTextSize];
  AsnResult out{0, text, sizeof text, 0};
  const AsnStringForm string{nullptr, shortText, sizeof shortText, false};
  const Cursor& c = element.whole;
  int32_t status;
  switch (form) {
    case KrbForm::kBoolean: status = DecodeAsnBoolean(at, c, out); break;
    case KrbForm::kText: status = DecodeAsnGeneralString(at, c, string, out); break;
    case KrbForm::kTime: status = DecodeAsnGeneralizedTime(at, c, string, out); break;
    case KrbForm::kOctets: status = DecodeAsnOctetString(at, c, string, out); break;
    case KrbForm::kFlags: status = DecodeAsnBitString(at, c, out); break;
    default: status = DecodeAsnInteger(at, c, out); break;
  }
  if (status == kAsnDecoded) return;
  walk.isCut = true;
  ShowRest(at, element.contents, "Truncated Data");
}

// What is not of the type that should stand there.
void ShowUndefined(KrbWalk& walk, const AsnPlace& at, const AsnSpan& element) {
  char text[kAsnTextSize];
  AsnResult out{0, text, sizeof text, 0};
  if (DecodeAsnValue(at, element.whole, kUndefined, out) == kAsnDecoded) return;
  walk.isCut = true;
  ShowRest(at, element.here ? element.contents : element.whole, "Truncated Data");
}

// One element under a line with its label: a field, whose tag stands in front of it, or an element of a list.
void ShowLabelled(KrbWalk& walk, const AsnPlace& at, const AsnSpan& span, bool isTagged, const char* label,
                  const KrbType& type, uint32_t& code) {
  const Place lines = LinesOf(at);
  const Cursor element = isTagged ? span.contents : span.whole;
  LineHandle line;
  {
    char text[kShortLineSize];
    text[0] = 0;
    DescribeKrbElement(walk, type, element, code, text, sizeof text);
    line = text[0] ? AddLine(lines, FieldOver(span.whole), "%s: %s", label, static_cast<const char*>(text))
                   : AddLine(lines, FieldOver(span.whole), "%s:", label);
  }
  const AsnPlace under = Beneath(at, line);
  AsnResult header{};
  if (isTagged) DecodeAsnHeader(under, span.whole, "Field", header);
  if (span.cut) walk.isCut = true;
  ShowKrbElement(walk, under, element, type, code);
}

// A field that the record's type does not have: its tag, and what is inside by its own identifier.
void ShowUnknownField(KrbWalk& walk, const AsnPlace& at, const AsnSpan& span) {
  constexpr uint32_t kExplicitTag = 0xA0, kClassAndForm = 0xE0;
  const bool isTagged = (span.identifier & kClassAndForm) == kExplicitTag && Left(span.contents) > 0;
  const LineHandle line = AddLine(LinesOf(at), FieldOver(span.whole), "%s Field:", kUndefined);
  const AsnPlace under = Beneath(at, line);
  AsnResult header{};
  Cursor inside = span.contents;
  if (isTagged) DecodeAsnHeader(under, span.whole, "Field", header);
  ShowUndefined(walk, under, isTagged ? TakeAsnElement(inside) : span);
}

const KrbField* FieldOf(const KrbType& record, uint32_t identifier) {
  for (int32_t i = 0; i < record.fieldCount; ++i) {
    if ((0xA0 | record.fields[i].tag) == identifier) return &record.fields[i];
  }
  return nullptr;
}

// Elements one behind the other to the end of their span: fields of a record, or a list's.
template <class Show>
void ShowEach(KrbWalk& walk, const AsnPlace& at, Cursor c, Show show) {
  const Place lines = LinesOf(at);
  if (at.depth > kDeepestField) return ShowRest(at, c, "Nested Data");
  Loop loop;
  for (uint32_t number = 1; MoreAt(lines, c, loop); ++number) {
    if (walk.elementsLeft < 1) return ShowRest(at, c, "Further Data");
    --walk.elementsLeft;
    const AsnSpan span = TakeAsnElement(c);
    if (!span.here) {
      walk.isCut = true;
      return ShowRest(at, span.whole, "Truncated Data");
    }
    show(span, number);
  }
}

void ShowFields(KrbWalk& walk, const AsnPlace& at, const Cursor& fields, const KrbType& record) {
  uint32_t code = 0;
  ShowEach(walk, at, fields, [&](const AsnSpan& span, uint32_t) {
    const KrbField* field = FieldOf(record, span.identifier);
    if (!field) return ShowUnknownField(walk, at, span);
    ShowLabelled(walk, at, span, true, field->label, *field->type, code);
  });
}

void ShowList(KrbWalk& walk, const AsnPlace& at, const Cursor& elements, const KrbType& list) {
  ShowEach(walk, at, elements, [&](const AsnSpan& span, uint32_t number) {
    char label[kAsnShortTextSize];
    FormatInto(label, sizeof label, "%s #%u", list.label, number);
    uint32_t code = 0;
    ShowLabelled(walk, at, span, false, label, *list.inner, code);
  });
}

void ShowOctetString(KrbWalk& walk, const AsnPlace& at, const AsnSpan& element, const KrbType& type, uint32_t code) {
  const KrbType* chosen = ChosenType(walk, type, code, element.contents);
  if (!chosen && !type.label && IsText(element.contents) && !element.cut) {
    return ShowLeaf(walk, at, element, KrbForm::kOctets);
  }
  AsnResult header{};
  DecodeAsnHeader(at, element.whole, "Octet String", header);
  if (chosen) {
    ShowKrbElement(walk, at, element.contents, *chosen, code);
  } else if (Left(element.contents) > 0) {
    ShowOctets(at, type, element.contents);
  }
}

int32_t SignedNumber(const Cursor& contents) {
  uint32_t value = Left(contents) > 0 && contents.at[0] & 0x80 ? 0xFFFFFFFF : 0;
  for (int32_t i = 0; i < Left(contents); ++i) value = value << 8 | contents.at[i];
  return static_cast<int32_t>(value);
}

}  // namespace

Cursor ContentsOf(Cursor c, uint32_t identifier) {
  const AsnSpan element = TakeAsnElement(c);
  return element.here && element.identifier == identifier ? element.contents : Cursor{};
}

Cursor FindKrbField(Cursor fields, uint32_t tag) {
  constexpr int32_t kMostFields = 32;
  for (int32_t i = 0; i < kMostFields && Left(fields) > 0; ++i) {
    const AsnSpan field = TakeAsnElement(fields);
    if (field.here && field.identifier == (0xA0 | tag)) return field.contents;
  }
  return Cursor{};
}

uint32_t KrbCodeOf(const Cursor& fields, uint32_t tag) {
  return static_cast<uint32_t>(SignedNumber(ContentsOf(FindKrbField(fields, tag), kAsnInteger)));
}

TextSlice KrbTextOf(const Cursor& fields, uint32_t tag) {
  return TextOver(ContentsOf(FindKrbField(fields, tag), kAsnGeneralString));
}

void DescribeKrbElement(const KrbWalk& walk, const KrbType& type, const Cursor& c, uint32_t code, char* out,
                        int32_t outSize) {
  if (type.identifier == 0 || type.form == KrbForm::kList) return;
  const Cursor contents = ContentsOf(c, type.identifier);
  if (Left(contents) < 1) return;
  const uint32_t number = static_cast<uint32_t>(SignedNumber(contents));
  switch (type.form) {
    case KrbForm::kNumber: FormatInto(out, outSize, "%u", number); break;
    case KrbForm::kCode: FormatInto(out, outSize, "[%d] = %s", number, NameOf(type, number)); break;
    case KrbForm::kBoolean: FormatInto(out, outSize, "%s", TrueOrFalse(number)); break;
    case KrbForm::kText: FormatInto(out, outSize, "%s", TextOver(contents)); break;
    case KrbForm::kTime: DescribeTime(contents, out, outSize); break;
    case KrbForm::kFlags: DescribeFlags(type, contents, out, outSize); break;
    case KrbForm::kRecord:
      if (type.describe) type.describe(contents, out, outSize);
      break;
    case KrbForm::kTagged: DescribeKrbElement(walk, *type.inner, contents, code, out, outSize); break;
    case KrbForm::kOctets:
      if (const KrbType* chosen = ChosenType(walk, type, code, contents)) {
        DescribeKrbElement(walk, *chosen, contents, code, out, outSize);
      } else {
        DescribeOctets(contents, out, outSize);
      }
      break;
    default: break;
  }
}

void ShowKrbElement(KrbWalk& walk, const AsnPlace& at, Cursor c, const KrbType& type, uint32_t& code) {
  if (Left(c) < 1) return;
  if (type.form == KrbForm::kRaw) return type.show(LinesOf(at), c);
  if (type.form == KrbForm::kChoice) return ShowFields(walk, at, c, type);
  const AsnSpan element = TakeAsnElement(c);
  if (!element.here || element.cut) walk.isCut = true;
  if (!element.here || element.identifier != type.identifier) {
    ShowUndefined(walk, at, element);
    return ShowRest(at, c, "Undefined Data");
  }
  AsnResult header{};
  switch (type.form) {
    case KrbForm::kRecord:
      DecodeAsnHeader(at, element.whole, "Sequence", header);
      ShowFields(walk, at, element.contents, type);
      break;
    case KrbForm::kList:
      DecodeAsnHeader(at, element.whole, "Sequence", header);
      ShowList(walk, at, element.contents, type);
      break;
    case KrbForm::kTagged:
      DecodeAsnHeader(at, element.whole, type.label, header);
      ShowKrbElement(walk, at, element.contents, *type.inner, code);
      break;
    case KrbForm::kOctets: ShowOctetString(walk, at, element, type, code); break;
    case KrbForm::kCode: code = static_cast<uint32_t>(SignedNumber(element.contents)); [[fallthrough]];
    default:
      ShowLeaf(walk, at, element, type.form);
      if (type.form == KrbForm::kFlags) ShowFlags(at, type, element.contents);
  }
  ShowRest(at, c, "Undefined Data");
}

}  // namespace qxview
