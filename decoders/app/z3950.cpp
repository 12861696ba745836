// Information Retrieval (Z39.50, ISO 23950): searches of catalogues and what they find, in the basic encoding rules with tag
// numbers of several octets and lengths that may be indefinite.
#include <cstring>
#include <iterator>

#include "decoders/app/bib1_names.h"
#include "decoders/app/marc.h"
#include "decoders/asn1/der.h"
#include "decoders/common/text_lines.h"
#include "decoders/common/xml_lines.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr uint32_t kContext = 0x80000000;   // of tags; universal ones have none
constexpr uint32_t Tag(uint32_t number) { return kContext | number; }
constexpr uint32_t kIntegerTag = 2, kObjectTag = 6, kExternalTag = 8, kSequenceTag = 16, kVisibleTag = 26, kGeneralTag = 27;

// An element; what stands behind its contents ends one of indefinite length.
struct Element {
  uint32_t tag;
  bool isConstructed, isCut;
  Cursor contents;
  Field whole;
  bool here;
};

bool TakeTag(Cursor& c, uint32_t& tag, bool& isConstructed) {
  constexpr uint32_t kMostOctets = 3;
  const uint32_t first = TakeU8(c).value;
  tag = first & 0x1F;
  isConstructed = first & 0x20;
  if (tag == 0x1F) {
    uint32_t octet = 0x80;
    tag = 0;
    for (uint32_t i = 0; i < kMostOctets && (octet & 0x80) && Left(c) > 0; ++i) tag = tag << 7 | ((octet = TakeU8(c).value) & 0x7F);
    if (octet & 0x80) return false;
  }
  const uint32_t kind = first >> 6;
  tag |= kind << 30;
  return kind == 0 || kind == 2;
}

bool TakeElement(Cursor& c, Element& out, int32_t depth = 0);

// Up to the two octets of zero that end an indefinite length; -1 where they are not there.
int32_t LengthToEnd(Cursor c, int32_t depth) {
  const int32_t start = c.offset;
  Element inner;
  Loop loop;
  while (More(c, loop) && PeekU16(c) != 0 && depth < kDeepestZ3950) {
    if (!TakeElement(c, inner, depth + 1) || inner.isCut) return -1;
  }
  return Left(c) >= 2 && PeekU16(c) == 0 ? c.offset - start : -1;
}

bool TakeElement(Cursor& c, Element& out, int32_t depth) {
  const Cursor start = c;
  out = {};
  if (Left(c) < 2 || !TakeTag(c, out.tag, out.isConstructed) || Left(c) < 1) return c = start, false;
  const uint32_t first = TakeU8(c).value;
  int64_t length = first;
  bool isIndefinite = false;
  if (first == 0x80) {
    length = out.isConstructed ? LengthToEnd(c, depth) : -1;
    isIndefinite = length >= 0;
    if (length < 0) length = Left(c) + 1;   // cut
  } else if (first > 0x80) {
    length = 0;
    if (first > 0x84 || static_cast<uint32_t>(Left(c)) < first - 0x80) return c = start, false;
    for (uint32_t i = 0x80; i < first; ++i) length = length << 8 | TakeU8(c).value;
  }
  out.isCut = length > Left(c);
  out.contents = TakeCursor(c, length < Left(c) ? length : Left(c));
  if (isIndefinite) TakeBytes(c, 2);
  out.whole = Ahead(start, c.offset - start.offset);
  return out.here = true;
}

#include "decoders/app/z3950_rows.inc"

const FieldRow* RowOf(const Group* group, uint32_t tag) {
  for (size_t i = 0; group && i < group->count; ++i) {
    if (group->rows[i].tag == tag) return &group->rows[i];
  }
  return nullptr;
}

// Where in the tree of elements: how deep, and of attributes which type was told last, unless they are of a set of their own.
struct Level {
  int32_t depth;
  int32_t attribute;
  bool isOtherSet;
  Level Below() const { return {depth + 1, attribute, isOtherSet}; }
};

void ShowGroup(const Place& in, Cursor& c, const Group* group, Level level);

void ShowText(const Place& in, const Element& element, const char* title) {
  Cursor text = element.contents;
  if (Left(text) == 0) return (void)AddLine(in, element.whole, "%s: Empty", title);
  if (!IsReadable(text)) return (void)AddLine(in, element.whole, "%s: %s", title, HexDigits(Rest(text)));
  const Place under = Under(in, AddTextLine(in, Ahead(text, Left(text)), title));
  if (StartsXml(text)) ShowXml(under, text);
}

void ShowBits(const Place& in, const Element& element, const FieldRow& row) {
  Cursor octets = element.contents;
  const Field unused = TakeU8(octets);
  const Field bits = Ahead(octets, Left(octets));
  if (bits.length < 1) return (void)AddLine(in, element.whole, "%s: Empty", row.title);
  const Place under = Under(in, AddLine(in, bits, "%s: %s", row.title, HexText(bits)));
  AddLine(under, unused, "Unused Bits: %u", unused.value);
  for (size_t i = 0; i < row.nameCount && static_cast<int32_t>(i) < 8 * bits.length; ++i) {
    Field octet = Slice(bits, static_cast<int32_t>(i / 8), 1);
    octet.value = PeekU8(octet);
    const BitPicture bit = BitsOf(octet, static_cast<uint8_t>(i % 8), 1);
    AddBitLine(under, octet, "%s: %s = %s", bit.picture, row.names[i], LookupName(kFalseTrueNames, bit.value));
  }
}

// What a value of an attribute means hangs on the type in front of it, and both on the set.
void NoteAttribute(const Element& element, const FieldRow& row, const Group* group, Level& level) {
  constexpr uint8_t kBib1[] = {0x2A, 0x86, 0x48, 0xCE, 0x13, 0x03, 0x01};
  if (row.form == Form::kObject && std::strcmp(row.title, "Attribute Set") == 0) {
    level.isOtherSet = Left(element.contents) != sizeof kBib1 || !PeekIs(element.contents, 0, kBib1);
  }
  if (group == &kAttributeGroup && row.tag == Tag(120)) level.attribute = BerInteger(element.contents);
}

void ShowNumber(const Place& in, const Element& element, const FieldRow& row, const Level& level) {
  const int32_t number = BerInteger(element.contents);
  const Field contents = Ahead(element.contents, Left(element.contents));
  const bool isAttribute = std::strcmp(row.title, "Attribute Value") == 0 && !level.isOtherSet;
  const char* name = isAttribute ? NameOfBib1(level.attribute, static_cast<uint32_t>(number)) : nullptr;
  if (name) {
    AddLine(in, contents, "%s: %d = %s", row.title, number, name);
  } else if (number >= 0 && static_cast<size_t>(number) < row.nameCount) {
    AddLine(in, contents, "%s: %d = %s", row.title, number, row.names[number]);
  } else {
    AddLine(in, contents, "%s: %d", row.title, number);
  }
}

// An element that no row tells: by whether others stand in it.
void ShowUntold(const Place& in, const Element& element, const Level& level) {
  const uint32_t number = element.tag & ~kContext;
  if (element.isConstructed) {
    const Place under = Under(in, AddLine(in, element.whole, "Elements [%u]", number));
    Cursor inner = element.contents;
    return ShowGroup(under, inner, nullptr, level.Below());
  }
  const Field contents = Ahead(element.contents, Left(element.contents));
  if (element.tag == kObjectTag) return (void)AddLine(in, contents, "Object: %s", DescribeObject(element.contents));
  if (element.tag == kIntegerTag) return (void)AddLine(in, contents, "Integer: %d", BerInteger(element.contents));
  if (contents.length > 0 && IsReadable(element.contents)) return (void)AddLine(in, contents, "Element [%u]: %s", number, Text(contents));
  AddLine(in, element.whole, "Element [%u]: %s", number, HexDigits(contents));
}

// keys: text Preferred Record Syntax, Result Set Name, Database, Term, Record
void ShowElement(const Place& in, const Element& element, const FieldRow& row, const Level& level) {
  const Field contents = Ahead(element.contents, Left(element.contents));
  switch (row.form) {
    case Form::kNumber: return ShowNumber(in, element, row, level);
    case Form::kBoolean: return (void)AddLine(in, contents, "%s: %s", row.title, BerNumber(element.contents) ? "True" : "False");
    case Form::kText: return ShowText(in, element, row.title);
    case Form::kBits: return ShowBits(in, element, row);
    case Form::kObject: return (void)AddLine(in, contents, "%s: %s", row.title, DescribeObject(element.contents));
    case Form::kNull: return (void)AddLine(in, element.whole, "%s", row.title);
    case Form::kExchange:
      return IsMarcRecord(element.contents) ? ShowMarcRecord(in, element.contents) : ShowText(in, element, row.title);
    case Form::kOctets:
      if (!element.isConstructed) return (void)AddLine(in, element.whole, "%s: %s", row.title, HexDigits(contents));
      [[fallthrough]];
    case Form::kGroup: break;
  }
  const Place under = Under(in, AddLine(in, element.whole, "%s", row.title));
  Cursor inner = element.contents;
  if (element.isConstructed) ShowGroup(under, inner, row.group, level.Below());
  else AddLine(under, contents, "Value: %s", HexDigits(contents));
}

void ShowGroup(const Place& in, Cursor& c, const Group* group, Level level) {
  if (level.depth > kDeepestZ3950) return (void)AddLine(in, Rest(c), "Elements nest too deeply to be shown");
  Element element;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeElement(c, element)) {
    const FieldRow* row = RowOf(group, element.tag);
    if (row && element.isConstructed && row->form == Form::kNumber) {
      ShowUntold(in, element, level);   // tags tell one of a choice from a number behind it
    } else if (row) {
      NoteAttribute(element, *row, group, level);
      ShowElement(in, element, *row, level);
    } else if (group && element.isConstructed && (element.tag == kSequenceTag || element.tag == Tag(1))) {
      ShowGroup(in, element.contents, group, level.Below());   // a sequence within, of the same fields
    } else {
      ShowUntold(in, element, level);
    }
  }
  if (Left(c) > 0) AddBlock(in, Rest(c), "Data");
}

bool StartsMessage(const Cursor& c, Element& message) {
  Cursor ahead = c;
  if (!TakeElement(ahead, message) || !(message.tag & kContext) || !message.isConstructed) return false;
  const uint32_t number = message.tag & ~kContext;
  return number >= kFirstMessage && number <= kLastMessage && kMessages[number - kFirstMessage].title;
}

}  // namespace

int32_t LengthOfZ3950(const Cursor& c) {
  constexpr int32_t kMostHead = 8;
  Element message;
  if (!StartsMessage(c, message)) return Left(c) < kMostHead ? 0 : kNoMessage;
  Cursor head = c;
  uint32_t tag = 0;
  bool isConstructed = false;
  TakeTag(head, tag, isConstructed);
  const uint32_t first = TakeU8(head).value;
  if (first == 0x80) return message.isCut ? 0 : message.whole.length;
  int64_t length = first;
  if (first > 0x80) {
    length = 0;
    for (uint32_t i = 0x80; i < first; ++i) length = length << 8 | TakeU8(head).value;
  }
  length += head.offset - c.offset;
  return length < 1 << 30 ? static_cast<int32_t>(length) : kNoMessage;
}

int32_t DecodeZ3950(const Place& at, Cursor c) {
  Element message;
  if (!StartsMessage(c, message)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop) && StartsMessage(c, message)) {
    TakeElement(c, message);
    const auto& kind = kMessages[(message.tag & ~kContext) - kFirstMessage];
    const Place in = Under(at, AddLine(at, message.whole, "Z39.50: %s", kind.title));
    ShowGroup(in, message.contents, kind.group, {});
  }
  if (Left(c) > 0) AddRawRest(at, c, "Z39.50 Data");
  return 1;
}

}  // namespace qxview
