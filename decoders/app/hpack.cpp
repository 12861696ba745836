// HPACK (RFC 7541): the header fields of HTTP/2, compressed against a static table and one that each direction fills.
//
//   1 index   01 index or name, value: kept   001 size of the table   0001 never kept   0000 not kept
//
// Indices count from the newest entry on, so that entries which came after the first packet of a capture are found even
// where the connection's start was not seen; others are shown as "?".
#include "decoders/app/http2.h"
#include "decoders/common/huffman_text.h"
#include "decoders/quic/field_table.h"

namespace qxview {
namespace {

constexpr StaticField kStatic[] = {
#include "decoders/app/hpack_table.inc"
};
constexpr uint64_t kStaticCount = sizeof kStatic / sizeof kStatic[0];
static_assert(kStaticCount == 61);

constexpr uint32_t kOfHttp2 = 0xFFFFFFFF;   // sets the entries apart from those of HTTP/3

QpackKey KeyOf(const Place& in, uint64_t number) { return {DirectionOf(PacketOf(in)), number, 0, kOfHttp2}; }

void ReadIndexed(const Place& in, const Http2Side& side, uint64_t index, bool withValue, FieldLine& out) {
  if (index == 0) return;
  if (index <= kStaticCount) return ReadStaticField(kStatic[index - 1], withValue, out);
  const uint64_t back = index - kStaticCount - 1;
  if (back < side.inserted) ReadFieldEntry(in, KeyOf(in, side.inserted - back), withValue, out);
}

bool Is(const TextSlice& text, const char* word) {
  const int32_t length = static_cast<int32_t>(std::strlen(word));
  return text.length == length && std::memcmp(text.text, word, static_cast<size_t>(length)) == 0;
}

// What the frame's line says of a message, and what its body is.
void NoteField(const Place& in, const FieldLine& line, Http2Frame& frame, WebBody& body) {
  if (Is(line.name, ":method") || Is(line.name, ":path") || Is(line.name, ":status")) {
    AppendToLine(in, frame.top, ", %s", line.value);
  } else if (Is(line.name, "content-type")) {
    body.content = WebContentOf(line.value);
  } else if (Is(line.name, "content-encoding")) {
    body.isCompressed = !Is(line.value, "identity");
    body.isGzip = Is(line.value, "gzip") || Is(line.value, "x-gzip");
    body.isDeflate = Is(line.value, "deflate");
  }
}

struct Literal {
  int32_t prefix;
  const char *named, *whole;
};
constexpr Literal kKept{6, "Literal Header Field with Incremental Indexing, Indexed Name",
                        "Literal Header Field with Incremental Indexing, New Name"},
    kNever{4, "Literal Header Field Never Indexed, Indexed Name", "Literal Header Field Never Indexed, New Name"},
    kNotKept{4, "Literal Header Field without Indexing, Indexed Name", "Literal Header Field without Indexing, New Name"};

bool ShowField(const Place& in, Cursor& c, Http2Frame& frame, WebBody& body) {
  const uint32_t first = PeekU8(c);
  const Cursor start = c;
  if ((first & 0xE0) == 0x20) {
    const WideField size = TakePrefixedNumber(c, 5);
    AddLine(in, size, "Dynamic Table Size Update: %I64u", size.wide);
    return !c.ranShort;
  }
  FieldLine line;
  WideField index;
  const char* form = "Indexed Header Field";
  if (first & 0x80) {
    index = TakePrefixedNumber(c, 7);
    ReadIndexed(in, *frame.side, index.wide, true, line);
  } else {
    const Literal& literal = first & 0x40 ? kKept : first & 0x10 ? kNever : kNotKept;
    index = TakePrefixedNumber(c, literal.prefix);
    form = index.wide ? literal.named : literal.whole;
    if (index.wide) {
      ReadIndexed(in, *frame.side, index.wide, false, line);
    } else {
      line.name = TakeCompressedText(c, 7, line.nameRoom, kFieldNameRoom).text;
    }
    line.value = TakeCompressedText(c, 7, line.valueRoom, kFieldValueRoom).text;
  }
  if (c.ranShort) {
    c = start;
    return false;
  }
  const Place under = AddFieldLine(in, PeekBytes(start, 0, c.offset - start.offset), line, form, index);
  AddLine(under, index, "Index: %I64u", index.wide);
  NoteField(in, line, frame, body);
  if ((first & 0xC0) == 0x40 && frame.keeps) KeepFieldEntry(in, KeyOf(in, ++frame.side->inserted), line);
  return true;
}

}  // namespace

void ShowHpackFields(const Place& in, Cursor& c, Http2Frame& frame) {
  WebBody body{};
  Loop loop;
  if (Left(c) < 1) return;
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Header Block: %d bytes", Left(c)));
  while (MoreAt(under, c, loop) && ShowField(under, c, frame, body)) {
  }
  c.ranShort = false;
  AddBlock(under, Rest(c), "Field in Part");
  RememberHttp2Body(in, frame, body);
}

}  // namespace qxview
