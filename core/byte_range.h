// ByteRange: a run of bytes of the current frame in one 64-bit value.
//
//   bits  0-7   kind: 0 for fields, 8 for raw-data dumps; read back as a signed byte
//   bits  8-9   zero
//   bits 10-36  frame offset of the first byte; masked to 27 bits, read back sign-extended
//   bits 37-63  number of bytes; read back unsigned
#pragma once
#include <cstdint>

namespace qxview {

using ByteRange = uint64_t;

constexpr int32_t kFieldKind = 0;
constexpr int32_t kRawDataKind = 8;

constexpr ByteRange MakeByteRange(int32_t kind, int32_t offset, int32_t length) {
  return static_cast<uint64_t>(static_cast<uint8_t>(kind)) |
         static_cast<uint64_t>(static_cast<uint32_t>(offset) & 0x7FFFFFFu) << 10 |
         static_cast<uint64_t>(static_cast<uint32_t>(length)) << 37;
}

constexpr int32_t RangeKind(ByteRange range) { return static_cast<int8_t>(range & 0xFF); }
constexpr int32_t RangeOffset(ByteRange range) {
  return static_cast<int32_t>(static_cast<uint32_t>(range >> 10 & 0x7FFFFFF) << 5) >> 5;
}
constexpr uint32_t RangeLength(ByteRange range) { return static_cast<uint32_t>(range >> 37); }

// Takes a stored range apart; any output may be null. Returns 1 << (kind & 31); for a null range 0, with all outputs 0.
inline uint32_t SplitByteRange(const ByteRange* range, int32_t* kind, int32_t* offset, uint32_t* length) {
  if (kind) *kind = range ? RangeKind(*range) : 0;
  if (offset) *offset = range ? RangeOffset(*range) : 0;
  if (length) *length = range ? RangeLength(*range) : 0;
  return range ? 1u << (RangeKind(*range) & 31) : 0;
}

}  // namespace qxview
