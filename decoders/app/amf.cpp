// Action Message Format, version 0 and 3 (as published in 2007 and 2013): values that say what they are.
#include "core/rows.h"
#include "decoders/app/rtmp.h"

namespace qxview {
namespace {

constexpr int32_t kMostTraits = 32;

enum Amf0Marker : uint32_t {
  kNumber, kBoolean, kString, kObject, kMovieClip, kNull, kUndefined, kReference, kEcmaArray, kObjectEnd, kStrictArray,
  kDate, kLongString, kUnsupported, kRecordSet, kXml, kTypedObject, kAmf3
};
constexpr auto kAmf0Names = SortedNames({
    {kNumber, "Number"}, {kBoolean, "Boolean"}, {kString, "String"}, {kObject, "Object"}, {kMovieClip, "Movie Clip"},
    {kNull, "Null"}, {kUndefined, "Undefined"}, {kReference, "Reference"}, {kEcmaArray, "ECMA Array"},
    {kObjectEnd, "Object End"}, {kStrictArray, "Strict Array"}, {kDate, "Date"}, {kLongString, "Long String"},
    {kUnsupported, "Unsupported"}, {kRecordSet, "Record Set"}, {kXml, "XML Document"}, {kTypedObject, "Typed Object"},
    {kAmf3, "AMF 3 Value"}});

struct Amf { Field length; };
constexpr auto kDouble = Rows<Amf>({Float(8, "Number")});
constexpr auto kTruth = Rows<Amf>({Number(1, "Boolean", kFalseTrueNames)});
constexpr auto kIndex = Rows<Amf>({Number(2, "Reference")});
constexpr auto kCount = Rows<Amf>({Number(4, "Count").Into(&Amf::length)});
constexpr auto kMoment = Rows<Amf>({Float(8, "Milliseconds since 1970"), Signed(2, "Time Zone", " minutes")});
constexpr auto kMoment3 = Rows<Amf>({Float(8, "Milliseconds since 1970")});

void ShowAmf3(struct Amf3Walk& walk, const Place& in, Cursor& c, int32_t depth);
void ShowAmf0(const Place& in, Cursor& c, int32_t depth);

// A text behind the number of its octets.
Field TakeText(const Place& in, Cursor& c, const char* label, int32_t size) {
  const uint32_t stated = size == 2 ? PeekU16(c) : PeekU32(c);
  if (Left(c) < size || stated > static_cast<uint32_t>(Left(c) - size)) return AddBlock(in, Rest(c), "Text in Part"), Field{};
  const Field length = size == 2 ? TakeU16(c) : TakeU32(c);
  const Field text = TakeBytes(c, length.value);
  AddLine(in, length, "Length: %u", length.value);
  AddLine(in, text, "%s: %s", label, Text(text));
  return text;
}

// Names with values, up to the empty name and the end's marker.
void ShowProperties(const Place& in, Cursor& c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU24(c) == kObjectEnd) {
      const Field end = TakeBytes(c, 3);
      AddLine(in, end, "Object End: %s", HexText(end));
      return;
    }
    const Cursor start = c;
    const Field ahead = PeekBytes(c, 2, static_cast<int32_t>(PeekU16(c)));
    if (!ahead.here) return (void)AddBlock(in, Rest(c), "Text in Part");
    const LineHandle line = AddLine(in, Ahead(start, 2 + ahead.length), "Property: %s", Text(ahead));
    const Place under = Under(in, line);
    TakeText(under, c, "Name", 2);
    ShowAmf0(under, c, depth);
    if (!under.dead) SetRange(under, line, start.offset, c.offset - start.offset);
  }
}

void NameValue(const Place& in, const Field& text) {
  AppendToParent(in, text, " %s", Text(text));
}

// keys: text Number, Boolean, String, Object, Movie Clip, Null, Undefined, Reference, ECMA Array, Strict Array, Date, Long String
// keys: text Unsupported, Record Set, XML Document, Typed Object, AMF 3 Value, Class Name
void ShowContents(const Place& in, Cursor& c, uint32_t marker, int32_t depth) {
  switch (marker) {
    case kNumber: ShowRows(in, c, kDouble); break;
    case kBoolean: ShowRows(in, c, kTruth); break;
    case kString: NameValue(in, TakeText(in, c, "String", 2)); break;
    case kReference: ShowRows(in, c, kIndex); break;
    case kDate: ShowRows(in, c, kMoment); break;
    case kLongString:
    case kXml: NameValue(in, TakeText(in, c, "String", 4)); break;
    case kTypedObject: NameValue(in, TakeText(in, c, "Class Name", 2)); [[fallthrough]];
    case kObject: ShowProperties(in, c, depth + 1); break;
    case kEcmaArray:
      ShowRows(in, c, kCount);
      ShowProperties(in, c, depth + 1);
      break;
    case kStrictArray: {
      const uint32_t count = ShowRows(in, c, kCount).length.value;
      Loop loop;
      for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowAmf0(in, c, depth + 1);
      break;
    }
    case kAmf3: ShowAmf3Values(in, c); break;
    default: break;
  }
}

void ShowAmf0(const Place& in, Cursor& c, int32_t depth) {
  const Cursor start = c;
  if (depth > kDeepestAmf) return (void)AddBlock(in, Rest(c), "Nested Values");
  const Field marker = TakeU8(c);
  if (!marker.here) return;
  const LineHandle line = AddLine(in, marker, "Value: %s", LookupName(kAmf0Names, marker.value));
  AddLine(Under(in, line), marker, "Type: %u = %s", marker.value, LookupName(kAmf0Names, marker.value));
  if (marker.value > kAmf3) return (void)AddBlock(in, Rest(c), "Value Data");
  ShowContents(Under(in, line), c, marker.value, depth);
  if (!in.dead) SetRange(in, line, start.offset, c.offset - start.offset);
}

// --- version 3 ---

enum Amf3Marker : uint32_t {
  kUndefined3, kNull3, kFalse3, kTrue3, kInteger3, kDouble3, kString3, kXmlDocument3, kDate3, kArray3, kObject3, kXml3,
  kByteArray3, kIntegers3, kUnsigneds3, kDoubles3, kObjects3, kDictionary3
};
constexpr auto kAmf3Names = SortedNames({
    {kUndefined3, "Undefined"}, {kNull3, "Null"}, {kFalse3, "False"}, {kTrue3, "True"}, {kInteger3, "Integer"},
    {kDouble3, "Double"}, {kString3, "String"}, {kXmlDocument3, "XML Document"}, {kDate3, "Date"}, {kArray3, "Array"},
    {kObject3, "Object"}, {kXml3, "XML"}, {kByteArray3, "Byte Array"}, {kIntegers3, "Vector of Integers"},
    {kUnsigneds3, "Vector of Unsigned Integers"}, {kDoubles3, "Vector of Doubles"}, {kObjects3, "Vector of Objects"},
    {kDictionary3, "Dictionary"}});

// What objects refer to instead of telling it again: how many members their class has, and whether others follow.
struct Amf3Walk {
  struct { uint32_t members; bool isDynamic; } traits[kMostTraits];
  int32_t count;
};

// A number of one to four octets, seven bits each and eight of the fourth.
Field TakeU29(Cursor& c) {
  const Cursor start = c;
  uint32_t value = 0;
  int32_t taken = 0;
  for (; taken < 3; ++taken) {
    const uint32_t octet = TakeU8(c).value;
    value = value << 7 | (octet & 0x7F);
    if (!(octet & 0x80)) break;
  }
  if (taken == 3) value = value << 8 | TakeU8(c).value;
  Field field = PeekBytes(start, 0, c.offset - start.offset);
  field.value = value;
  field.here = !c.ranShort;
  return field;
}

// A count, or the number of what was told before.
bool TakeCount(const Place& in, Cursor& c, const char* label, uint32_t* count) {
  const Field header = TakeU29(c);
  const bool isReference = !(header.value & 1);
  *count = header.value >> 1;
  if (isReference) AddLine(in, header, "Reference: %u", *count);
  else AddLine(in, header, "%s: %u", label, *count);
  return header.here && !isReference;
}

// keys: number Length, Elements, Members, Entries
// keys: text Text, Name, Class Name
Field ShowText3(const Place& in, Cursor& c, const char* label) {
  uint32_t length;
  if (!TakeCount(in, c, "Length", &length)) return {};
  if (length > static_cast<uint32_t>(Left(c))) return AddBlock(in, Rest(c), "Text in Part"), Field{};
  const Field text = TakeBytes(c, length);
  if (text.here && text.length > 0) AddLine(in, text, "%s: %s", label, Text(text));
  return text;
}

// Names with values up to the empty name.
void ShowDynamic(Amf3Walk& walk, const Place& in, Cursor& c, int32_t depth) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const bool isLast = PeekU8(c) == 1;
    ShowText3(in, c, "Name");
    if (isLast) return;
    ShowAmf3(walk, in, c, depth);
  }
}

void ShowObject(Amf3Walk& walk, const Place& in, Cursor& c, int32_t depth) {
  constexpr uint32_t kHere = 1, kTraitsHere = 2, kExternal = 4, kDynamic = 8;
  const Field header = TakeU29(c);
  AddLine(in, header, "Object Header: 0x%.02X", header.value);
  if (!(header.value & kHere) || !header.here) return;
  uint32_t members = 0;
  bool isDynamic = false;
  if (!(header.value & kTraitsHere)) {
    const uint32_t number = header.value >> 2;
    if (number >= static_cast<uint32_t>(walk.count)) return;
    members = walk.traits[number].members;
    isDynamic = walk.traits[number].isDynamic;
  } else {
    ShowText3(in, c, "Class Name");
    if (header.value & kExternal) return (void)AddBlock(in, Rest(c), "External Data");   // its class knows how it is written
    members = header.value >> 4;
    isDynamic = header.value & kDynamic;
    if (walk.count < kMostTraits) walk.traits[walk.count++] = {members, isDynamic};
    Loop names;
    for (uint32_t i = 0; i < members && MoreAt(in, c, names); ++i) ShowText3(in, c, "Name");
  }
  Loop loop;
  for (uint32_t i = 0; i < members && MoreAt(in, c, loop); ++i) ShowAmf3(walk, in, c, depth);
  if (isDynamic) ShowDynamic(walk, in, c, depth);
}

void ShowVector(Amf3Walk& walk, const Place& in, Cursor& c, uint32_t marker, int32_t depth) {
  static constexpr auto kSigned4 = Rows<Amf>({Signed(4, "Item")});
  static constexpr auto kNumber4 = Rows<Amf>({Number(4, "Item")});
  static constexpr auto kFloat8 = Rows<Amf>({Float(8, "Item")});
  uint32_t count;
  if (!TakeCount(in, c, "Elements", &count)) return;
  const Field fixed = TakeU8(c);
  AddLine(in, fixed, "Fixed: %s", LookupName(kFalseTrueNames, fixed.value));
  if (marker == kObjects3) ShowText3(in, c, "Class Name");
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    if (marker == kIntegers3) ShowRows(in, c, kSigned4);
    else if (marker == kUnsigneds3) ShowRows(in, c, kNumber4);
    else if (marker == kDoubles3) ShowRows(in, c, kFloat8);
    else ShowAmf3(walk, in, c, depth);
  }
}

void ShowDictionary(Amf3Walk& walk, const Place& in, Cursor& c, int32_t depth) {
  uint32_t count;
  if (!TakeCount(in, c, "Entries", &count)) return;
  const Field weak = TakeU8(c);
  AddLine(in, weak, "Weak Keys: %s", LookupName(kFalseTrueNames, weak.value));
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowAmf3(walk, in, c, depth);
    ShowAmf3(walk, in, c, depth);
  }
}

void ShowContents3(Amf3Walk& walk, const Place& in, Cursor& c, uint32_t marker, int32_t depth) {
  uint32_t count;
  switch (marker) {
    case kInteger3: {
      const Field number = TakeU29(c);
      AddLine(in, number, "Integer: %d", static_cast<int32_t>(number.value << 3) >> 3);
      break;
    }
    case kDouble3: ShowRows(in, c, kDouble); break;
    case kString3:
    case kXmlDocument3:
    case kXml3: ShowText3(in, c, "Text"); break;
    case kDate3:
      if (TakeCount(in, c, "Length", &count)) ShowRows(in, c, kMoment3);
      break;
    case kArray3:
      if (!TakeCount(in, c, "Elements", &count)) break;
      ShowDynamic(walk, in, c, depth + 1);
      for (Loop loop; count > 0 && MoreAt(in, c, loop); --count) ShowAmf3(walk, in, c, depth + 1);
      break;
    case kObject3: ShowObject(walk, in, c, depth + 1); break;
    case kByteArray3:
      if (TakeCount(in, c, "Length", &count)) AddBlock(in, TakeBytes(c, count), "Bytes");
      break;
    case kDictionary3: ShowDictionary(walk, in, c, depth + 1); break;
    default:
      if (marker >= kIntegers3 && marker <= kObjects3) ShowVector(walk, in, c, marker, depth + 1);
      break;
  }
}

void ShowAmf3(Amf3Walk& walk, const Place& in, Cursor& c, int32_t depth) {
  const Cursor start = c;
  if (depth > kDeepestAmf) return (void)AddBlock(in, Rest(c), "Nested Values");
  const Field marker = TakeU8(c);
  if (!marker.here) return;
  const LineHandle line = AddLine(in, marker, "Value: %s", LookupName(kAmf3Names, marker.value));
  AddLine(Under(in, line), marker, "Type: %u = %s", marker.value, LookupName(kAmf3Names, marker.value));
  if (marker.value > kDictionary3) return (void)AddBlock(in, Rest(c), "Value Data");
  ShowContents3(walk, Under(in, line), c, marker.value, depth);
  if (!in.dead) SetRange(in, line, start.offset, c.offset - start.offset);
}

}  // namespace

Field TakeAmf0Text(const Place& in, Cursor& c, const char* label) { return TakeText(in, c, label, 2); }

void ShowAmf0Values(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowAmf0(in, c, 0);
}

void ShowAmf3Values(const Place& in, Cursor& c) {
  Amf3Walk walk{};
  Loop loop;
  while (MoreAt(in, c, loop)) ShowAmf3(walk, in, c, 0);
}

}  // namespace qxview
