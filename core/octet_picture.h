// The picture of eight bits, as one word.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>

namespace qxview {

// For each octet eight bytes of 0 or 1, the most significant bit in the byte that is first in memory.
struct SpreadOctets {
  uint64_t of[256];
};
constexpr SpreadOctets MakeSpreadOctets() {
  SpreadOctets spread{};
  for (uint32_t octet = 0; octet < 256; ++octet) {
    for (uint32_t i = 0; i < 8; ++i) {
      const uint64_t bit = octet >> (7 - i) & 1;
      spread.of[octet] |= bit << 8 * (std::endian::native == std::endian::little ? i : 7 - i);
    }
  }
  return spread;
}
inline constexpr SpreadOctets kSpreadOctets = MakeSpreadOctets();

// One octet's eight positions: digits where `mask` has a bit, full stops elsewhere. The mask is below 256.
inline void DrawOctet(uint32_t octet, uint32_t mask, char* picture) {
  constexpr uint64_t kOnes = 0x0101010101010101;
  static_assert('0' - '.' == 2 && '1' - '0' == 1);
  const uint64_t drawn = '.' * kOnes + kSpreadOctets.of[mask] * 2 + kSpreadOctets.of[octet & mask];
  std::memcpy(picture, &drawn, sizeof drawn);
}

}  // namespace qxview
