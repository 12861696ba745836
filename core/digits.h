// Digits and short copies: the innermost steps of making a line.
#pragma once
#include <cstdint>
#include <cstring>

namespace qxview {

inline constexpr char kHexUpper[] = "0123456789ABCDEF";
inline constexpr char kHexLower[] = "0123456789abcdef";

struct DigitPairs {
  char hex[512];
  char decimal[200];
};
constexpr DigitPairs MakeDigitPairs() {
  DigitPairs pairs{};
  for (int i = 0; i < 256; ++i) {
    pairs.hex[2 * i] = kHexUpper[i >> 4];
    pairs.hex[2 * i + 1] = kHexUpper[i & 15];
  }
  for (int i = 0; i < 100; ++i) {
    pairs.decimal[2 * i] = static_cast<char>('0' + i / 10);
    pairs.decimal[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}
inline constexpr DigitPairs kDigitPairs = MakeDigitPairs();
inline constexpr const char* kHexPairs = kDigitPairs.hex;   // two upper-case digits a byte value

// Copies a length that is nearly always short, without reading or writing past it.
inline void CopyShort(char* to, const char* from, size_t length) {
  if (length > 32) {
    std::memcpy(to, from, length);
  } else if (length >= 16) {
    char head[16], tail[16];
    std::memcpy(head, from, 16);
    std::memcpy(tail, from + length - 16, 16);
    std::memcpy(to, head, 16);
    std::memcpy(to + length - 16, tail, 16);
  } else if (length >= 8) {
    uint64_t head, tail;
    std::memcpy(&head, from, 8);
    std::memcpy(&tail, from + length - 8, 8);
    std::memcpy(to, &head, 8);
    std::memcpy(to + length - 8, &tail, 8);
  } else if (length >= 4) {
    uint32_t head, tail;
    std::memcpy(&head, from, 4);
    std::memcpy(&tail, from + length - 4, 4);
    std::memcpy(to, &head, 4);
    std::memcpy(to + length - 4, &tail, 4);
  } else if (length > 0) {
    to[0] = from[0];
    if (length > 1) to[1] = from[1];
    if (length > 2) to[2] = from[2];
  }
}

// Both write digits that end at `end` and return their first.
inline char* WriteDecimal(char* end, uint64_t value) {
  if (value < 10) {
    *--end = static_cast<char>('0' + value);
    return end;
  }
  while (value >= 100) {
    end -= 2;
    std::memcpy(end, kDigitPairs.decimal + 2 * (value % 100), 2);
    value /= 100;
  }
  if (value < 10) {
    *--end = static_cast<char>('0' + value);
  } else {
    end -= 2;
    std::memcpy(end, kDigitPairs.decimal + 2 * value, 2);
  }
  return end;
}

inline char* WriteHex(char* end, uint64_t value, const char* alphabet) {
  do {
    *--end = alphabet[value & 15];
    value >>= 4;
  } while (value != 0);
  return end;
}

}  // namespace qxview
