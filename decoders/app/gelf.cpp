// Graylog Extended Log Format (GELF 1.1, "GELF via UDP"): a JSON object, plain or compressed with gzip or zlib, whole or in
// chunks behind a header of their own.
#include "core/engine.h"
#include "core/rows.h"
#include "decoders/app/http_message.h"
#include "decoders/common/json_lines.h"

namespace qxview {
namespace {

constexpr uint32_t kChunk = 0x1E0F, kGzip = 0x1F8B;
constexpr uint8_t kZlib = 0x78;

struct Chunk {
  Field number, count;
};
constexpr auto kChunkHeader = Rows<Chunk>({
    Hex(2, "Chunk Magic"), Bytes(8, "Message ID"), Number(1, "Chunk Number").Into(&Chunk::number),
    Number(1, "Chunk Count").Into(&Chunk::count)});

// What the first bytes make a message, or the first chunk of one.
const char* FormOf(const Cursor& c) {
  if (PeekU16(c) == kGzip) return "gzip";
  if (PeekU8(c) == kZlib && PeekU16(c) % 31 == 0) return "zlib";
  return StartsJson(c) ? "JSON" : nullptr;
}

void ShowMessage(const Place& in, Cursor& c) {
  if (StartsJson(c)) {
    ShowJson(in, c);
    return;
  }
  const Field compressed = Ahead(c, Left(c));
  const Place under = Under(in, AddLine(in, compressed, "Compressed Message: %s", FormOf(c)));
  DecodeHttpGzip(under, *StateOf<HttpState>(in.view->engine, DecoderState::kHttp), false, c);
  TakeBytes(c, Left(c));
}

}  // namespace

int32_t DecodeGelf(const Place& at, Cursor c) {
  const Field whole = Ahead(c, Left(c));
  if (PeekU16(c) == kChunk && Left(c) > 12) {
    const Chunk ahead = PeekRows(c, kChunkHeader);
    const Place in = Under(at, AddLine(at, whole, "GELF: Chunk %u of %u", ahead.number.value + 1, ahead.count.value));
    ShowRows(in, c, kChunkHeader);
    AddBlock(in, Rest(c), "Chunk Data");
    return 1;
  }
  const char* form = FormOf(c);
  if (!form) return 0;
  const Place in = Under(at, AddLine(at, whole, "GELF: %s", form));
  ShowMessage(in, c);
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace qxview
