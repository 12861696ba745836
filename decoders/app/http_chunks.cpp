// The chunked transfer coding (RFC 9112, section 7.1).
//
//   size in hexadecimal [; extension] CR LF  data  CR LF  ...  0 CR LF [trailer] CR LF
#include "decoders/app/http_message.h"

namespace qxview {
namespace {

int32_t HexDigitOf(uint8_t c) {
  if (c >= '0' && c <= '9') return c - '0';
  const uint8_t lower = c | 0x20;
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

HttpChunkSize ReadChunkSize(const uint8_t* line, int32_t length) {
  HttpChunkSize read{};
  uint32_t size = 0;
  int32_t at = 0;
  for (; at < length && HexDigitOf(line[at]) >= 0; ++at) {
    const uint64_t grown = uint64_t{size} * 16 + static_cast<uint32_t>(HexDigitOf(line[at]));
    size = grown > INT32_MAX ? INT32_MAX : static_cast<uint32_t>(grown);
  }
  read.digits = at;
  read.size = static_cast<int32_t>(size);
  while (at < length && (line[at] == ' ' || line[at] == '\t')) ++at;
  read.extended = at < length && (line[at] == ';' || line[at] == '=');
  // A frame may end between the CR and the LF of the line.
  const bool ended = at == length || (at == length - 1 && line[at] == '\r');
  read.valid = read.digits > 0 && (ended || read.extended);
  return read;
}

bool DecodeHttpChunk(const Place& in, Cursor& c, HttpChunk* shown) {
  Cursor next = c;
  Field line = TakeTextLine(next);
  if (!line.here) line = Rest(next);
  const HttpChunkSize chunk = ReadChunkSize(line.bytes, line.length);
  if (!chunk.valid) return false;
  const Field sizeLine = Ahead(c, next.offset - c.offset);
  Cursor data = TakeCursor(next, chunk.size);
  Field boundary{};
  if (Left(next) >= 1 && PeekU8(next) == '\r' && (Left(next) == 1 || PeekU8(next, 1) == '\n')) {
    boundary = TakeBytes(next, Left(next) == 1 ? 1 : 2);
  }
  const bool tellsAll = TellsAll(in);
  if (shown) *shown = {{}, chunk.size == 0, boundary.here};
  const Field whole = Ahead(c, next.offset - c.offset);
  const Field number = Slice(line, 0, chunk.digits);
  if (chunk.size == 0) {
    const Place parts = Under(in, AddLine(in, whole, "Last Chunk: Size = 0 Bytes"));
    AddLine(parts, number, "Chunk Data Length: %d = End of Chunked Http Data Indicator", chunk.size);
    if (tellsAll) AddLine(parts, sizeLine, "Size Line: %d", chunk.size);
    if (chunk.extended) AddLine(parts, line, "Chunk Header: %s", Text(line));
    if (tellsAll) AddLine(parts, boundary, "Chunk Boundary: %s", HexText(boundary));
  } else {
    const Place parts = Under(in, AddLine(in, whole, "Http Chunk Data: Size = %d Bytes", chunk.size));
    AddLine(parts, number, "Chunk Data Length: %d", chunk.size);
    if (tellsAll) AddLine(parts, sizeLine, "Size Line: %d", chunk.size);
    if (chunk.extended) AddLine(parts, line, "Chunk Header: %s", Text(line));
    if (Left(data) < chunk.size && tellsAll) {
      AddLine(parts, Ahead(data, Left(data)), "Chunk in Part: %d of %d bytes", Left(data), chunk.size);
    }
    if (shown) shown->data = Rest(data);
    else AddBlock(parts, Rest(data), "Http Chunk Data");
    if (tellsAll) AddLine(parts, boundary, "Chunk Boundary: %s", HexText(boundary));
  }
  c = next;
  return true;
}

}  // namespace qxview
