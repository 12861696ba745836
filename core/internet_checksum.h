// The Internet checksum (RFC 1071): the one's-complement sum of 16-bit words with end-around carry.
#pragma once
#include <cstdint>
#include <cstring>

namespace qxview {

// Continues a sum over the bytes, in words as the machine reads them, so that sums can be joined on any byte order; an
// odd last byte is padded with a zero byte. The result is folded to 16 bits: 0xFFFF for data with a good checksum in
// them, and 0 only when every byte was.
inline uint32_t SumWords(uint32_t sum, const uint8_t* bytes, int32_t length) {
  uint64_t total = sum;
  for (; length >= 4; length -= 4, bytes += 4) {
    uint32_t two;
    std::memcpy(&two, bytes, 4);
    total += two;   // 65536 is 1 in this arithmetic: two words at once sum alike
  }
  for (; length > 0; length -= 2, bytes += 2) {
    uint16_t word = 0;
    std::memcpy(&word, bytes, length > 1 ? 2 : 1);
    total += word;
  }
  while (total > 0xFFFF) total = (total & 0xFFFF) + (total >> 16);
  return static_cast<uint32_t>(total);
}

// The value that a checksum field (at an even place of the summed bytes) should hold, given the sum over them with the
// stored value included. Both values as numbers of the wire, big-endian.
inline uint32_t RightChecksum(uint32_t sum, uint32_t stored) {
  const uint8_t bytes[2] = {1, 0};
  uint16_t probe;
  std::memcpy(&probe, bytes, 2);
  const uint32_t wire = probe == 1 ? (sum >> 8 | (sum & 0xFF) << 8) : sum;
  uint32_t right = (~wire & 0xFFFF) + stored;
  right = (right & 0xFFFF) + (right >> 16);
  return right == 0xFFFF ? 0 : right;
}

}  // namespace qxview
