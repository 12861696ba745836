#include "decoders/asn1/ber_rows.h"

#include "core/line_facts.h"

namespace qxview {
namespace {

constexpr int32_t kLongestHex = 32;   // octets that are shown in a line

Field Over(const Cursor& c) { return Ahead(c, Left(c)); }

bool IsText(const Cursor& contents) {
  for (int32_t i = 0; i < Left(contents); ++i) {
    if (PeekU8(contents, i) < 0x20 || PeekU8(contents, i) > 0x7E) return false;
  }
  return Left(contents) > 0;
}

// An octet string's type for what it holds; null for plain octets, and for contents that do not begin as the type does.
const BerType* ChosenType(const BerWalk& walk, const BerType& type, const Cursor& contents) {
  if (!type.choose || Left(contents) < 1) return nullptr;
  const BerType* chosen = type.choose(walk, contents);
  return chosen && (chosen->identifier == 0 || chosen->identifier == PeekU8(contents)) ? chosen : nullptr;
}

// --- what lines say of elements ---

// Seconds always, in the universal time zone; anything else is shown as it stands.
void DescribeTime(const Cursor& contents, char* out, int32_t size) {
  constexpr int32_t kLength = 15;   // "20380119031407Z"
  const Field text = Over(contents);
  bool isTime = text.length == kLength && PeekU8(contents, kLength - 1) == 'Z';
  for (int32_t i = 0; isTime && i < kLength - 1; ++i) isTime = PeekU8(contents, i) >= '0' && PeekU8(contents, i) <= '9';
  const auto part = [&](int32_t first, int32_t length) { return Text(Slice(text, first, length)); };
  if (isTime) {
    FormatInto(out, size, "%s-%s-%s %s:%s:%s UTC", part(0, 4), part(4, 2), part(6, 2), part(8, 2), part(10, 2),
               part(12, 2));
  } else {
    FormatInto(out, size, "%s", Text(text));
  }
}

// The bits of a BIT STRING of at least 32: its first octet counts the unused ones at the end.
Field BitsIn(Cursor contents) {
  TakeU8(contents);
  return TakeU32(contents);
}

void DescribeBits(const BerType& type, const Cursor& contents, char* out, int32_t size) {
  const Field bits = BitsIn(contents);
  if (!bits.here) return;
  for (int32_t bit = 0; bit < 32; ++bit) {
    if (!BitsOf(bits, bit, 1).value || !type.bits[bit]) continue;
    AppendFormat(out, size, "%s%s", out[0] ? ", " : "", type.bits[bit]);
  }
  if (!out[0]) FormatInto(out, size, "None");
}

void DescribeOctets(const Cursor& contents, char* out, int32_t size) {
  const Field octets = Over(contents);
  if (IsText(contents)) {
    FormatInto(out, size, "%s", Text(octets));
  } else if (octets.length <= kLongestHex) {
    FormatInto(out, size, "%s", HexText(octets));
  } else {
    FormatInto(out, size, "%u Bytes", octets.length);
  }
}

void DescribeNumber(const BerType& type, const Cursor& contents, char* out, int32_t size) {
  const bool isSigned = type.form == BerForm::kInteger;
  const uint32_t number = isSigned ? static_cast<uint32_t>(BerInteger(contents)) : BerNumber(contents);
  if (!type.names.rows) {
    FormatInto(out, size, "%u", number);
  } else if (isSigned) {
    FormatInto(out, size, "[%d] = %s", number, NameOf(type.names, number));
  } else {
    FormatInto(out, size, "[%u] = %s", number, NameOf(type.names, number));
  }
}

LineHandle AddTitle(const Place& in, const Cursor& element, const char* title, const char* text) {
  return text[0] ? AddLine(in, Over(element), "%s: %s", title, text) : AddLine(in, Over(element), "%s:", title);
}

// --- elements ---

void ShowRest(const Place& in, const Cursor& c, const char* title) { AddBlock(in, Over(c), title); }

// What is not of the type that should stand there.
void ShowUndefined(BerWalk& walk, const Place& in, const BerElement& element) {
  char text[kAsnTextSize];
  AsnResult out{0, text, sizeof text};
  Cursor c = element.whole;
  if (DecodeAsnValue(in, c, kUndefined, out) == kAsnDecoded) return;
  walk.isCut = true;
  ShowRest(in, element.here ? element.contents : element.whole, walk.titles->cut);
}

// An element whose type is a decoder's, and what was there of one that is cut.
void ShowLeaf(BerWalk& walk, const Place& in, const BerElement& element, const BerType& type) {
  char text[kAsnTextSize], shortText[kAsnShortTextSize];
  AsnResult out{0, text, sizeof text};
  const AsnStringForm string{nullptr, shortText, sizeof shortText, false};
  Cursor c = element.whole;
  int32_t status;
  switch (type.form) {
    case BerForm::kBoolean: status = DecodeAsnImplicitBoolean(in, c, out); break;
    case BerForm::kTime: status = DecodeAsnGeneralizedTime(in, c, string, out); break;
    case BerForm::kBits: status = DecodeAsnBitString(in, c, out); break;
    case BerForm::kNumber:
    case BerForm::kInteger:
      status = element.identifier == kAsnEnumerated ? DecodeAsnEnumerated(in, c, out)
                                                    : DecodeAsnImplicitInteger(in, c, out);
      break;
    default:
      status = element.identifier == kAsnGeneralString ? DecodeAsnGeneralString(in, c, string, out)
                                                       : DecodeAsnImplicitString(in, c, string, out);
      break;
  }
  if (status != kAsnDecoded) {
    walk.isCut = true;
    ShowRest(in, element.contents, walk.titles->cut);
  }
}

void ShowBits(const Place& in, const BerType& type, const Cursor& contents) {
  const Field bits = BitsIn(contents);
  if (!bits.here) return;
  for (int32_t bit = 0; bit < 32; ++bit) {
    const BitPicture one = BitsOf(bits, bit, 1);
    if (!type.bits[bit] && !one.value) continue;
    AddBitLine(in, bits, "%s: %s = %s", one.picture, type.bits[bit] ? type.bits[bit] : "Reserved",
               TrueOrFalse(one.value));
  }
}

// The title of long octets is the type's: it tells encrypted ones from others.
void ShowOctets(BerWalk& walk, const Place& in, const BerElement& element, const BerType& type) {
  const Cursor& contents = element.contents;
  const BerType* chosen = ChosenType(walk, type, contents);
  if (!chosen && !type.label && IsText(contents) && !IsCut(element)) return ShowLeaf(walk, in, element, type);
  Cursor header = element.whole;
  DecodeAsnHeader(in, header, "Octet String");
  if (chosen) {
    ShowBerElement(walk, in, contents, *chosen);
  } else if (Left(contents) > kLongestHex || type.label) {
    ShowRest(in, contents, type.label ? type.label : "Octet String Data");
  } else if (Left(contents) > 0) {
    AddLine(in, Over(contents), "Octet String: %s", HexText(Over(contents)));
  }
}

// A constructed element, or a string with elements inside.
void ShowHolder(BerWalk& walk, const Place& in, const BerElement& element, const BerType& type, const char* title) {
  Cursor header = element.whole, contents = element.contents;
  const bool isSequence = type.form == BerForm::kRecord || type.form == BerForm::kList;
  DecodeAsnHeader(in, header, isSequence ? "Sequence" : type.label ? type.label : title);
  if (type.form == BerForm::kTagged) return ShowBerElement(walk, in, contents, *type.inner);
  if (type.form != BerForm::kInside) return ShowBerRows(walk, in, contents, type);
  type.show(walk, in, contents, title);
  ShowBerRest(walk, in, contents);
}

// Numbers are values of their own, whatever the line calls them.
void NoteNumberOf(const Place& in, LineHandle line, const BerType& type, const Cursor& element) {
  const BerElement number = PeekBer(element);
  if (!number.here || IsCut(number) || Left(number.contents) < 1 || Left(number.contents) > 4) return;
  if (type.form == BerForm::kInteger) {
    NumberLine(in.view, line, static_cast<uint64_t>(int64_t{BerInteger(number.contents)}), true);
  } else if (type.form == BerForm::kNumber) {
    NumberLine(in.view, line, BerNumber(number.contents), false);
  }
}

// One element under a line of its own: behind an explicit tag, whose header stands in front of it, or itself.
void ShowTitled(BerWalk& walk, const Place& in, const BerElement& span, bool isTagged, const BerRow& row) {
  const Cursor element = isTagged ? span.contents : span.whole;
  LineHandle line;
  {
    char text[kShortLineSize];
    text[0] = 0;
    if (!Silent(in)) DescribeBer(walk, *row.type, PeekBer(element), text, walk.titles->textSize);
    line = AddTitle(in, span.whole, row.title, text);
  }
  if (KeepsFacts(in.view)) [[unlikely]] NoteNumberOf(in, line, *row.type, element);
  const Place under = Beneath(in, line);
  Cursor tag = span.whole;
  if (isTagged) DecodeAsnHeader(under, tag, "Field");
  if (IsCut(span)) walk.isCut = true;
  ShowBerElement(walk, under, element, *row.type, row.title);
}

// A field that the record does not have: its tag, and what is inside by its own identifier.
void ShowUnknown(BerWalk& walk, const Place& in, const BerElement& span) {
  constexpr uint32_t kExplicitTag = 0xA0, kClassAndForm = 0xE0;
  const bool isTagged = (span.identifier & kClassAndForm) == kExplicitTag && Left(span.contents) > 0;
  const Place under = Beneath(in, AddLine(in, Over(span.whole), "%s Field:", kUndefined));
  Cursor tag = span.whole;
  if (isTagged) DecodeAsnHeader(under, tag, "Field");
  ShowUndefined(walk, under, isTagged ? PeekBer(span.contents) : span);
}

// The row of an identifier from `next` on; where the order is free, behind the last one from the first one on.
const BerRow* FindRow(const BerType& type, uint32_t identifier, size_t* next) {
  const size_t count = type.rows.size(), last = type.form == BerForm::kGroup ? count : *next + count;
  for (size_t i = *next; i < last; ++i) {
    const BerRow& row = type.rows[i % count];
    if (row.tag != 0 && row.tag != identifier) continue;
    *next = type.form == BerForm::kGroup ? i + 1 : (i + 1) % count;
    return &row;
  }
  return nullptr;
}

void ShowList(BerWalk& walk, const Place& in, const BerElement& element, const BerType& list, uint32_t number) {
  char title[kAsnShortTextSize];
  FormatInto(title, sizeof title, "%s #%u", list.label, number);
  walk.code = 0;
  ShowTitled(walk, in, element, false, {0, title, list.inner});
}

}  // namespace

void DescribeBer(const BerWalk& walk, const BerType& type, const BerElement& element, char* out, int32_t size) {
  const Cursor& contents = element.contents;
  if (!element.here || (type.identifier != 0 && type.identifier != element.identifier)) return;
  if (Left(contents) < 1 && type.form != BerForm::kText && type.form != BerForm::kGroup &&
      type.form != BerForm::kRepeated) {
    return;
  }
  if (type.describe) return type.describe(contents, out, size);
  switch (type.form) {
    case BerForm::kNumber:
    case BerForm::kInteger: return DescribeNumber(type, contents, out, size);
    case BerForm::kBoolean: FormatInto(out, size, "%s", TrueOrFalse(BerNumber(contents))); return;
    case BerForm::kText: FormatInto(out, size, "%s", Text(Over(contents))); return;
    case BerForm::kTime: return DescribeTime(contents, out, size);
    case BerForm::kBits: return DescribeBits(type, contents, out, size);
    case BerForm::kTagged: return DescribeBer(walk, *type.inner, PeekBer(contents), out, size);
    case BerForm::kOctets:
      if (const BerType* chosen = ChosenType(walk, type, contents)) {
        DescribeBer(walk, *chosen, PeekBer(contents), out, size);
      } else {
        DescribeOctets(contents, out, size);
      }
      return;
    default: return;
  }
}

void ShowBerElement(BerWalk& walk, const Place& in, Cursor c, const BerType& type, const char* title) {
  if (Left(c) < 1) return;
  if (type.form == BerForm::kChoice) return ShowBerRows(walk, in, c, type);
  if (type.form == BerForm::kRaw) {
    type.show(walk, in, c, title);
    return ShowRest(in, c, "Undefined Data");
  }
  const BerElement element = TakeBer(c);
  if (!element.here || IsCut(element)) walk.isCut = true;
  if (!element.here || (type.identifier != 0 && element.identifier != type.identifier)) {
    ShowUndefined(walk, in, element);
    return ShowRest(in, c, "Undefined Data");
  }
  switch (type.form) {
    case BerForm::kOctets: ShowOctets(walk, in, element, type); break;
    case BerForm::kNumber:
    case BerForm::kInteger:
      if (type.names.rows) walk.code = static_cast<uint32_t>(BerInteger(element.contents));
      ShowLeaf(walk, in, element, type);
      break;
    case BerForm::kBits:
      ShowLeaf(walk, in, element, type);
      ShowBits(in, type, element.contents);
      break;
    case BerForm::kBoolean:
    case BerForm::kText:
    case BerForm::kTime: ShowLeaf(walk, in, element, type); break;
    default: ShowHolder(walk, in, element, type, title); break;
  }
  ShowRest(in, c, "Undefined Data");
}

bool ShowBerRow(BerWalk& walk, const Place& in, Cursor& c, const BerRow& row) {
  const BerElement element = PeekBer(c);
  if (!element.here || walk.elementsLeft < 1 || (row.tag != 0 && row.tag != element.identifier)) return false;
  if (row.type->form == BerForm::kShown) {
    row.type->show(walk, in, c, row.title);
    return true;
  }
  --walk.elementsLeft;
  TakeBer(c);
  ShowTitled(walk, in, element, false, row);
  return true;
}

void ShowBerRows(BerWalk& walk, const Place& in, Cursor& c, const BerType& type) {
  const bool isOpen = type.form == BerForm::kGroup || type.form == BerForm::kRepeated;   // more may follow
  if (in.level >= kDeepestAsnLevel) return ShowRest(in, c, "Nested Data");
  const uint32_t outerCode = walk.code;
  walk.code = 0;
  size_t next = 0;
  Loop loop;
  for (uint32_t number = 1; MoreAt(in, c, loop) && walk.elementsLeft > 0; ++number) {
    const BerElement element = PeekBer(c);
    const BerRow* row = type.form == BerForm::kList ? nullptr : FindRow(type, element.identifier, &next);
    if (isOpen) {
      if (!row || !ShowBerRow(walk, in, c, *row)) break;
      continue;
    }
    --walk.elementsLeft;
    TakeBer(c);
    if (!element.here) {
      walk.isCut = true;
      ShowRest(in, element.whole, walk.titles->cut);
    } else if (type.form == BerForm::kList) {
      ShowList(walk, in, element, type, number);
    } else if (row) {
      ShowTitled(walk, in, element, true, *row);
    } else {
      ShowUnknown(walk, in, element);
    }
  }
  walk.code = outerCode;
  ShowBerRest(walk, in, c);
}

bool EnterBer(BerWalk& walk, const Place& in, Cursor& c, const char* label, Cursor* contents) {
  Cursor header = c;
  const BerElement element = PeekBer(c);
  if (!element.here || walk.elementsLeft < 1) return false;
  --walk.elementsLeft;
  TakeBer(c);
  DecodeAsnHeader(in, header, label);
  *contents = element.contents;
  return true;
}

bool EnterBer(BerWalk& walk, const Place& in, Cursor& c, const char* title, const char* text, Place* under,
              Cursor* contents) {
  const BerElement element = PeekBer(c);
  if (!element.here || walk.elementsLeft < 1) return false;
  *under = Beneath(in, AddTitle(in, element.whole, title, text));
  return EnterBer(walk, *under, c, title, contents);
}

void ShowBerRest(const BerWalk& walk, const Place& in, Cursor& c) {
  AddBlock(in, Rest(c), walk.elementsLeft > 0 ? "Undefined Data" : walk.titles->further);
}

}  // namespace qxview
