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
  char numbers[1000][4];   // the digits of numbers below a thousand, and how many they are
  char triples[1000][4];   // the same with zeros in front
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
  for (int i = 0; i < 1000; ++i) {
    const char digits[3] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                            static_cast<char>('0' + i % 10)};
    const int count = i < 10 ? 1 : i < 100 ? 2 : 3;
    for (int at = 0; at < 3; ++at) pairs.triples[i][at] = digits[at];
    for (int at = 0; at < count; ++at) pairs.numbers[i][at] = digits[3 - count + at];
    pairs.numbers[i][3] = static_cast<char>(count);
  }
  return pairs;
}
inline constexpr DigitPairs kDigitPairs = MakeDigitPairs();
inline constexpr const char* kHexPairs = kDigitPairs.hex;   // two upper-case digits a byte value

// Copies a length that is nearly always short, without reading or writing past it.
inline void CopyShort(char* to, const char* from, size_t length) {
  if (length < 4) {
    if (length == 0) return;
    to[0] = from[0];
    if (length == 1) return;
    char tail[2];
    std::memcpy(tail, from + length - 2, 2);
    std::memcpy(to + length - 2, tail, 2);
  } else if (length < 8) {
    uint32_t head, tail;
    std::memcpy(&head, from, 4);
    std::memcpy(&tail, from + length - 4, 4);
    std::memcpy(to, &head, 4);
    std::memcpy(to + length - 4, &tail, 4);
  } else if (length <= 16) {
    uint64_t head, tail;
    std::memcpy(&head, from, 8);
    std::memcpy(&tail, from + length - 8, 8);
    std::memcpy(to, &head, 8);
    std::memcpy(to + length - 8, &tail, 8);
  } else if (length <= 32) {
    char head[16], tail[16];
    std::memcpy(head, from, 16);
    std::memcpy(tail, from + length - 16, 16);
    std::memcpy(to, head, 16);
    std::memcpy(to + length - 16, tail, 16);
  } else {
    std::memcpy(to, from, length);
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

// How many decimal digits a number below kCountedDigits has.
inline constexpr uint64_t kCountedDigits = 1000000000;
inline constexpr uint32_t kPowersOfTen[] = {0, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
inline int32_t CountDigits(uint32_t value) {
  const int32_t bits = 32 - __builtin_clz(value | 1);
  const int32_t least = bits * 1233 >> 12;   // of numbers of so many bits; others have one more
  return least + (value >= kPowersOfTen[least] ? 1 : 0);
}

// Both write digits from `to` on and return their end: decimal ones, which take up to four bytes behind the text's end along, and
// upper-case hexadecimal ones, as many as the number has and at least `least`, which is 8 at most.
inline char* PutDigits(char* to, uint32_t value) {
  const auto number = [&to](uint32_t below) {
    std::memcpy(to, kDigitPairs.numbers[below], 4);
    to += kDigitPairs.numbers[below][3];
  };
  const auto triple = [&to](uint32_t below) {
    std::memcpy(to, kDigitPairs.triples[below], 4);
    to += 3;
  };
  if (value < 1000) [[likely]] {
    number(value);
    return to;
  }
  const uint32_t thousands = value / 1000;
  if (thousands < 1000) {
    number(thousands);
  } else {
    const uint32_t millions = thousands / 1000;
    if (millions < 1000) {
      number(millions);
    } else {
      number(millions / 1000);
      triple(millions % 1000);
    }
    triple(thousands % 1000);
  }
  triple(value % 1000);
  return to;
}

// Decimal digits of a number below kCountedDigits with `fill` in front where there are less than `least`, which is 16 at most: so
// many have room.
inline char* PutFilledDigits(char* to, uint32_t value, int32_t least, char fill) {
  const int32_t count = CountDigits(value);
  char* const end = to + (count > least ? count : least);
  std::memset(to, fill, 16);
  WriteDecimal(end, value);
  return end;
}

inline char* PutHexDigits(char* to, uint32_t value, int32_t least) {
  const int32_t count = (35 - __builtin_clz(value | 1)) / 4;
  char* const end = to + (count > least ? count : least);
  char* at = end;
  for (; at - to >= 2; value >>= 8) {
    at -= 2;
    std::memcpy(at, kHexPairs + 2 * (value & 0xFF), 2);
  }
  if (at > to) *to = kHexUpper[value & 15];
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
