// Bibliographic records for exchange (ISO 2709, MARC 21): a leader, a directory of tags with their fields' places, the fields.
//
//   leader      length (5), status, type, level, control, coding, counts of indicators and of a subfield's code, base address (5),
//               encoding level, cataloging form, multipart level, sizes of an entry's parts (4)
//   directory   tag (3), length (4), start behind the base address (5), for each field; 1E
//   fields      a text, or two indicators and subfields: 1F, code, text; 1E behind each, 1D behind all
#include "decoders/app/marc.h"

#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

constexpr int32_t kLeader = 24, kEntry = 12;
constexpr uint8_t kSubfield = 0x1F;
constexpr uint32_t kFieldEnd = 0x1E;

struct LeaderPart { int32_t size; const char* label; };
constexpr LeaderPart kLeaderParts[] = {
    {5, "Record Length"}, {1, "Record Status"}, {1, "Type of Record"}, {1, "Bibliographic Level"}, {1, "Type of Control"},
    {1, "Character Coding"}, {1, "Indicator Count"}, {1, "Subfield Code Length"}, {5, "Base Address"}, {1, "Encoding Level"},
    {1, "Cataloging Form"}, {1, "Multipart Level"}, {1, "Size of a Length"}, {1, "Size of a Start"}, {1, "Size of an Own Part"},
    {1, "Undefined"}};

void ShowField(const Place& in, const Field& tag, Cursor field) {
  const Field text = Ahead(field, Left(field));
  const Place under = Under(in, AddLine(in, text, "Field %s: %s", Text(tag), Text(text)));
  const bool isControl = StartsWithText(CursorOver(tag), "00");
  if (isControl || FindU8(field, kSubfield) != 2) return;
  AddTextLine(under, TakeBytes(field, 1), "Indicator 1");
  AddTextLine(under, TakeBytes(field, 1), "Indicator 2");
  Loop loop;
  while (MoreAt(under, field, loop)) {
    const int32_t next = FindU8(field, kSubfield, 1);
    Cursor part = TakeCursor(field, next < 0 ? Left(field) : next);
    const Field whole = Ahead(part, Left(part));
    TakeU8(part);
    const Field code = TakeBytes(part, 1), value = Rest(part);
    const Place each = Under(under, AddLine(under, whole, "Subfield %s: %s", Text(code), Text(value)));
    AddLine(each, Slice(whole, 0, 1), "Delimiter: 0x1F");
    AddTextLine(each, code, "Code");
    if (value.length > 0) AddTextLine(each, value, "Value");
  }
}

}  // namespace

bool IsMarcRecord(const Cursor& c) {
  constexpr uint32_t kRecordEnd = 0x1D;
  const int32_t length = DecimalOf(PeekBytes(c, 0, 5)), base = DecimalOf(PeekBytes(c, 12, 5));
  return length == Left(c) && base > kLeader && PeekU8(c, Left(c) - 1) == kRecordEnd;
}

void ShowMarcRecord(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Record"));
  const int32_t base = DecimalOf(PeekBytes(c, 12, 5));
  const Cursor record = c;
  const Place leader = Under(in, AddTextLine(in, Ahead(c, kLeader), "Leader"));
  // keys: text Record Length, Record Status, Type of Record, Bibliographic Level, Type of Control, Character Coding
  // keys: text Indicator Count, Subfield Code Length, Base Address, Encoding Level, Cataloging Form, Multipart Level
  // keys: text Size of a Length, Size of a Start, Size of an Own Part, Undefined
  for (const LeaderPart& part : kLeaderParts) AddTextLine(leader, TakeBytes(c, part.size), part.label);
  int64_t room = kShowAgain * static_cast<int64_t>(Left(record));   // entries may claim the same bytes
  Loop loop;
  while (MoreAt(in, c, loop) && Left(c) > kEntry && PeekU8(c) != kFieldEnd) {
    const Field entry = TakeBytes(c, kEntry), tag = Slice(entry, 0, 3), size = Slice(entry, 3, 4), first = Slice(entry, 7, 5);
    const Place under = Under(in, AddLine(in, entry, "Directory Entry: %s", Text(tag)));
    AddTextLine(under, tag, "Tag");
    AddTextLine(under, size, "Length");
    AddTextLine(under, first, "Start");
    const int32_t length = DecimalOf(size), start = DecimalOf(first);
    const Field field = length > 0 && start >= 0 ? PeekBytes(record, base + start, length - 1) : Field{};
    room -= field.length;
    if (!field.here || room < 0) continue;
    ShowField(in, tag, CursorOver(field));
    const Field end = PeekBytes(record, base + start + length - 1, 1);
    if (PeekU8(end) == kFieldEnd) AddLine(in, end, "End of Field");
  }
  if (PeekU8(c) == kFieldEnd) AddLine(in, TakeBytes(c, 1), "End of Directory");
  AddLine(in, Slice(Ahead(record, Left(record)), Left(record) - 1, 1), "End of Record");
}

}  // namespace qxview
