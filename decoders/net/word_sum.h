// The one's-complement sum of the Internet checksum (RFC 1071) over words as the machine reads them: such a sum has the
// same bytes in memory on every byte order, so that it is continued from a pseudo-header over a segment as they lie.
#pragma once
#include <cstdint>
#include <cstring>

namespace qxview {

// Down to 16 bits; 0 only for 0.
constexpr uint32_t FoldSum(uint64_t sum) {
  while (sum > 0xFFFF) sum = (sum & 0xFFFF) + (sum >> 16);
  return static_cast<uint32_t>(sum);
}

// The 16-bit word that stands at `bytes`, as the machine reads it.
inline uint32_t MachineWord(const uint8_t* bytes) {
  uint16_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Such a word as the number that its bytes are on the wire.
inline uint32_t WireNumber(uint32_t machineWord) {
  const uint16_t word = static_cast<uint16_t>(machineWord);
  uint8_t bytes[2];
  std::memcpy(bytes, &word, sizeof word);
  return static_cast<uint32_t>(bytes[0] << 8 | bytes[1]);
}

// Continues a folded sum over `length` bytes; an odd last byte counts as if a zero byte followed it.
inline uint32_t ContinueSum(uint32_t sum, const uint8_t* bytes, int32_t length) {
  uint64_t total = sum;
  int32_t at = 0;
  for (; at + 4 <= length; at += 4) {
    uint32_t words;
    std::memcpy(&words, bytes + at, sizeof words);
    total += words;   // folds to the sum of its two words on either byte order
  }
  if (at + 2 <= length) {
    total += MachineWord(bytes + at);
    at += 2;
  }
  if (at < length) {
    const uint8_t last[2] = {bytes[at], 0};
    total += MachineWord(last);
  }
  return FoldSum(total);
}

}  // namespace qxview
