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

constexpr uint32_t kContinuation = 9, kEndHeaders = 0x04;
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

bool Holds(const TextSlice& text, const char* word) {
  const int32_t length = static_cast<int32_t>(std::strlen(word));
  for (int32_t at = 0; at + length <= text.length; ++at) {
    if (std::memcmp(text.text + at, word, static_cast<size_t>(length)) == 0) return true;
  }
  return false;
}

// What the frame's line says of a message, and what its body is.
void NoteField(const Place& in, const FieldLine& line, const Http2Frame& frame, Http2Notes& notes) {
  NoteBodyField(line.name, line.value, notes.body);
  if (Is(line.name, ":method") || Is(line.name, ":path") || Is(line.name, ":status")) {
    AppendToLine(in, frame.top, ", %s", line.value);
  } else if (Is(line.name, ":protocol")) {
    notes.isTunnel = Is(line.value, "websocket");
  } else if (Is(line.name, "sec-websocket-extensions")) {
    notes.deflates = Holds(line.value, "permessage-deflate");
    notes.clientForgets = Holds(line.value, "client_no_context_takeover");
    notes.serverForgets = Holds(line.value, "server_no_context_takeover");
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

bool ShowField(const Place& in, Cursor& c, Http2Frame& frame, Http2Notes& notes) {
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
  NoteField(in, line, frame, notes);
  if ((first & 0xC0) == 0x40 && frame.keeps) KeepFieldEntry(in, KeyOf(in, ++frame.side->inserted), line);
  return true;
}

// A field that goes on in the next frame.
void KeepPart(const Place& in, const Field& part, Http2Frame& frame) {
  *frame.fieldPart = {};
  frame.side->isFieldLost = false;
  if (part.length < 1 || frame.flags & kEndHeaders) return;
  if (part.length > kMostFieldKept) {
    AddLine(in, part, "Longer than %d bytes: not joined", kMostFieldKept);
    frame.side->isFieldLost = true;
    return;
  }
  const bool isOfFrame = part.offset < kFirstRegionOffset;
  frame.side->fieldPacket = isOfFrame ? static_cast<int64_t>(in.view->context->packetNumber) : 0;
  frame.side->fieldOffset = isOfFrame ? part.offset : 0;
  *frame.fieldPart = {part.bytes, static_cast<uint32_t>(part.length)};
}

}  // namespace

void ShowHpackFields(const Place& in, Cursor& c, Http2Frame& frame) {
  const bool goesOn = frame.type == kContinuation && frame.side->headerStream == frame.stream && frame.fieldPart->length > 0;
  frame.end = c.offset + Left(c);
  if (Left(c) > 0) {
    const Field here = Ahead(c, Left(c));
    const Place under = Under(in, AddLine(in, here, "Header Block: %d bytes", here.length));
    Http2Notes notes = BeginHttp2Notes(in, frame);
    if (frame.type == kContinuation && frame.side->isFieldLost) {
      AddBlock(under, Rest(c), "Behind a Field that Is Not Joined");
      return;
    }
    Cursor block = c;
    if (goesOn) block = JoinInFront(in, *frame.fieldPart, frame.side->fieldPacket, frame.side->fieldOffset, c);
    Rest(c);
    for (Loop loop; MoreAt(under, block, loop) && ShowField(under, block, frame, notes);) {
    }
    block.ranShort = false;
    const Field part = Rest(block);
    AddBlock(under, part, "Field in Part");
    KeepPart(under, part, frame);
    KeepHttp2Notes(in, frame, notes);
  } else {
    *frame.fieldPart = {};
  }
  frame.side->headerStream = frame.flags & kEndHeaders ? 0 : frame.stream;
}

}  // namespace qxview
