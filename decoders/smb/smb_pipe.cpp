#include "decoders/smb/smb_pipe.h"

namespace qxview {
namespace {

constexpr int32_t kRpcHeaderSize = 16;
constexpr uint32_t kRpcDecoder = 0x80;
constexpr uint8_t kLastRpcType = 19, kLastCharacters = 1, kLastFloats = 3;

}  // namespace

bool IsRpcHeader(const Cursor& c) {
  if (Left(c) < kRpcHeaderSize) return false;
  const uint8_t* b = c.at;
  const bool knownForm = (b[4] >> 4) <= 1 && (b[4] & 15) <= kLastCharacters && b[5] <= kLastFloats && !b[6] && !b[7];
  const uint32_t length = b[4] & 0x10 ? ReadLittleU16(b + 8) : ReadU16(b + 8);
  return b[0] == 5 && b[1] <= 1 && b[2] <= kLastRpcType && knownForm && length >= kRpcHeaderSize;
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
