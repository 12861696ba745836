#include "decoders/smb/smb_pipe.h"

namespace qxview {
namespace {

constexpr int32_t kRpcHeaderSize = 16;
constexpr uint32_t kRpcDecoder = 0x80;
constexpr uint8_t kLastRpcType = 19, kLastCharacters = 1, kLastFloats = 3;

}  // namespace

bool IsRpcHeader(const Cursor& c) {
  if (Left(c) < kRpcHeaderSize) return false;
  const uint32_t integers = PeekU8(c, 4) >> 4, characters = PeekU8(c, 4) & 15, floats = PeekU8(c, 5);
  const bool knownForm = integers <= 1 && characters <= kLastCharacters && floats <= kLastFloats && PeekU16(c, 6) == 0;
  const uint32_t length = integers ? PeekLittleU16(c, 8) : PeekU16(c, 8);
  return PeekU8(c) == 5 && PeekU8(c, 1) <= 1 && PeekU8(c, 2) <= kLastRpcType && knownForm && length >= kRpcHeaderSize;
}

void AddSmbPipeData(const Place& in, Cursor& c, const char* title) {
  if (Left(c) < 1) return;
  const DecoderRow* row = IsRpcHeader(c) ? FindBuiltinDecoder(kRpcDecoder) : nullptr;
  const int32_t result = row && !in.dead ? TryDecoder(Deeper(in), c, row->decode, title) : 0;
  if (result == 0) {
    AddBlock(in, Rest(c), title);
  } else {
    TakeBytes(c, c.left);
  }
}

}  // namespace qxview
