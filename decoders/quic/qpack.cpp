// QPACK's field lines and instructions (RFC 9204, section 4).
//
//   field section: required insert count   base   field lines
//   1 T index   0 1 N T name index, value   0 0 1 N H name, value   0 0 0 1 index past the base   0 0 0 0 N name index, value
#include "decoders/quic/qpack.h"

#include "decoders/common/huffman_text.h"
#include "decoders/quic/field_table.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr StaticField kStatic[] = {
#include "decoders/quic/qpack_table.inc"
};
constexpr uint64_t kStaticCount = sizeof kStatic / sizeof kStatic[0];
static_assert(kStaticCount == 99);

// Looking into a connection's table: the end that fills it.
struct Table {
  const Place& in;
  const QuicSession& session;
  uint32_t encoder;

  QpackKey KeyOf(uint64_t number) const { return {session.key, number, encoder, session.state.attempt}; }
  uint64_t Inserted() const {
    const QpackTable* table = Recall(in.view, kQpackTables, KeyOf(0));
    return table ? table->now : 0;
  }
  // Entries count from 1.
  void Read(uint64_t number, bool withValue, FieldLine& out) const { ReadFieldEntry(in, KeyOf(number), withValue, out); }
  // The instructions of a frame begin.
  void Begin() const {
    QpackTable table{};
    if (const QpackTable* known = Recall(in.view, kQpackTables, KeyOf(0))) table = *known;
    TakeTurn(session.turn, table.turn, table.before, table.now);
    if (!PacketOf(in).quoted) Remember(in.view, kQpackTables, KeyOf(0), table);
  }
  void Insert(const FieldLine& line) const {
    if (PacketOf(in).quoted) return;
    const uint64_t number = Inserted() + 1;
    QpackTable table{session.turn, number - 1, number};
    if (const QpackTable* known = Recall(in.view, kQpackTables, KeyOf(0))) table = {known->turn, known->before, number};
    KeepFieldEntry(in, KeyOf(number), line);
    Remember(in.view, kQpackTables, KeyOf(0), table);
  }
};

void ReadStatic(uint64_t index, bool withValue, FieldLine& out) {
  if (index < kStaticCount) ReadStaticField(kStatic[index], withValue, out);
}

struct Index {
  const Table& table;
  uint64_t base;
};

// A line with an index in place of its name, or of both.
void ReadIndexed(const Index& index, uint64_t number, bool isStatic, bool isPastBase, bool withValue, FieldLine& out) {
  if (isStatic) {
    ReadStatic(number, withValue, out);
  } else if (isPastBase) {
    index.table.Read(index.base + number + 1, withValue, out);
  } else if (number < index.base) {
    index.table.Read(index.base - number, withValue, out);
  }
}

void ShowLine(const Place& in, Cursor& c, const Index& index, WebBody& body) {
  const uint32_t first = PeekU8(c);
  const Cursor start = c;
  FieldLine line;
  WideField number{};
  const char* form;
  if (first & 0x80) {
    number = TakePrefixedNumber(c, 6);
    ReadIndexed(index, number.wide, first & 0x40, false, true, line);
    form = first & 0x40 ? "Indexed, Static Table" : "Indexed, Dynamic Table";
  } else if (first & 0x40) {
    number = TakePrefixedNumber(c, 4);
    ReadIndexed(index, number.wide, first & 0x10, false, false, line);
    line.value = TakeCompressedText(c, 7, line.valueRoom, kFieldValueRoom).text;
    form = first & 0x10 ? "Literal, Name of the Static Table" : "Literal, Name of the Dynamic Table";
  } else if (first & 0x20) {
    line.name = TakeCompressedText(c, 3, line.nameRoom, kFieldNameRoom).text;
    line.value = TakeCompressedText(c, 7, line.valueRoom, kFieldValueRoom).text;
    form = "Literal";
  } else if (first & 0x10) {
    number = TakePrefixedNumber(c, 4);
    ReadIndexed(index, number.wide, false, true, true, line);
    form = "Indexed, Dynamic Table behind the Base";
  } else {
    number = TakePrefixedNumber(c, 3);
    ReadIndexed(index, number.wide, false, true, false, line);
    line.value = TakeCompressedText(c, 7, line.valueRoom, kFieldValueRoom).text;
    form = "Literal, Name of the Dynamic Table behind the Base";
  }
  if (c.ranShort) return;
  const Field whole = PeekBytes(start, 0, c.offset - start.offset);
  const Place under = AddFieldLine(in, whole, line, form, whole);
  AddLine(under, number, "Index: %I64u", number.wide);
  NoteBodyField(line.name, line.value, body);
}

}  // namespace

void ShowFieldSection(const Place& in, Cursor& c, const QuicSession& session, WebBody& body) {
  const Table table{in, session, static_cast<uint32_t>(session.sender)};
  const WideField required = TakePrefixedNumber(c, 8);
  AddLine(in, required, "Required Insert Count: %I64u", required.wide);
  const uint32_t sign = PeekU8(c) & 0x80;
  const WideField delta = TakePrefixedNumber(c, 7);
  AddLine(in, delta, "Delta Base: %s%I64u", sign ? "-" : "", delta.wide);
  // The count goes around at twice the entries that fit (RFC 9204 4.5.1.1); what was inserted so far is near enough.
  const uint64_t inserted = required.wide ? table.Inserted() : 0;
  uint64_t count = required.wide ? required.wide - 1 : 0;
  constexpr uint64_t kLeastCycle = 2;
  if (count > inserted && required.wide >= kLeastCycle) count = inserted;
  const uint64_t base = sign ? (count > delta.wide ? count - delta.wide - 1 : 0) : count + delta.wide;
  const Index index{table, base};
  Loop loop;
  while (MoreAt(in, c, loop)) ShowLine(in, c, index, body);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
}

void ShowEncoderInstructions(const Place& in, Cursor& c, const QuicSession& session) {
  const Table table{in, session, static_cast<uint32_t>(session.sender)};
  table.Begin();
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    const uint32_t first = PeekU8(c);
    FieldLine line;
    WideField number{};
    const char* name;
    if (first & 0x80) {
      number = TakePrefixedNumber(c, 6);
      if (first & 0x40) {
        ReadStatic(number.wide, false, line);
      } else {
        table.Read(table.Inserted() - number.wide, false, line);
      }
      line.value = TakeCompressedText(c, 7, line.valueRoom, kFieldValueRoom).text;
      name = "Insert with Name Reference";
    } else if (first & 0x40) {
      line.name = TakeCompressedText(c, 5, line.nameRoom, kFieldNameRoom).text;
      line.value = TakeCompressedText(c, 7, line.valueRoom, kFieldValueRoom).text;
      name = "Insert with Literal Name";
    } else if (first & 0x20) {
      number = TakePrefixedNumber(c, 5);
      name = "Set Dynamic Table Capacity";
    } else {
      number = TakePrefixedNumber(c, 5);
      table.Read(table.Inserted() - number.wide, true, line);
      name = "Duplicate";
    }
    if (c.ranShort) {   // the rest of it is to come
      c = start;
      return;
    }
    const Field whole = PeekBytes(start, 0, c.offset - start.offset);
    const Place under = Under(in, AddLine(in, whole, "Instruction: %s", name));
    if ((first & 0xE0) == 0x20) {
      AddLine(under, number, "Capacity: %I64u", number.wide);
      continue;
    }
    AddLine(under, number, "Index: %I64u", number.wide);
    AddLine(under, whole, "Name: %s", line.name);
    AddLine(under, whole, "Value: %s", line.value);
    table.Insert(line);
  }
}

void ShowDecoderInstructions(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    const uint32_t first = PeekU8(c);
    const bool isAcknowledgement = first & 0x80;
    const WideField number = TakePrefixedNumber(c, isAcknowledgement ? 7 : 6);
    if (c.ranShort) {
      c = start;
      return;
    }
    const char* name = isAcknowledgement ? "Section Acknowledgement" : "Insert Count Increment";
    if (!isAcknowledgement && first & 0x40) name = "Stream Cancellation";
    const Place under = Under(in, AddLine(in, number, "Instruction: %s", name));
    if (isAcknowledgement || first & 0x40) {
      AddLine(under, number, "Stream ID: %I64u", number.wide);
    } else {
      AddLine(under, number, "Increment: %I64u", number.wide);
    }
  }
}

}  // namespace qxview
