#include "core/bounded_text.h"

#include <cstring>

#include "core/digits.h"

namespace qxview {

char* CopyTextN(char* destination, int32_t size, const char* source, int32_t count) {
  if (!source || !destination) return nullptr;
  if (size < 1) return destination;
  if (count > size - 1) count = size - 1;
  if (count > 0) std::memcpy(destination, source, static_cast<size_t>(count));
  destination[count > 0 ? count : 0] = 0;
  return destination;
}

char* CopyBounded(char* destination, int32_t size, const char* source, int32_t length) {
  if (!destination || size < 1) return nullptr;
  if (!source) destination[0] = 0;
  return CopyTextN(destination, size, source, length);
}

char* CopyString(char* destination, int32_t size, const char* source) {
  const int32_t length = source ? static_cast<int32_t>(std::strlen(source)) : 0;
  char* copied = CopyBounded(destination, size, source, length);
  return length == 0 ? nullptr : copied;
}

char* AppendBounded(char* destination, int32_t size, const char* source, int32_t length) {
  if (!destination || !source) return nullptr;
  if (size < 1 || length < 1) return destination;
  const int32_t used = static_cast<int32_t>(strnlen(destination, static_cast<size_t>(size)));
  if (used >= size - 1) return destination;
  CopyTextN(destination + used, size - used, source, static_cast<int32_t>(strnlen(source, static_cast<size_t>(length))));
  return destination;
}

char* AppendString(char* destination, int32_t size, const char* source) {
  if (!source || !source[0]) return nullptr;
  return AppendBounded(destination, size, source, static_cast<int32_t>(std::strlen(source)));
}

void ByteHexToString(const uint8_t* bytes, int32_t count, TextBuffer* out) {
  if (!out || !out->text || out->capacity < 1) return;
  if (out->capacity < 3 * static_cast<int64_t>(count)) count = out->capacity / 3;
  char* at = out->text;
  for (int32_t i = 0; bytes && i < count; ++i) {
    if (i > 0) *at++ = ' ';
    std::memcpy(at, kHexPairs + 2 * bytes[i], 2);
    at += 2;
  }
  *at = 0;
}

namespace {

// The decimal digits of every octet, with a full stop behind them.
struct Octets {
  char text[256][4];
  uint8_t length[256];
};
constexpr Octets MakeOctets() {
  Octets octets{};
  for (int32_t i = 0; i < 256; ++i) {
    int32_t length = 0;
    if (i >= 100) octets.text[i][length++] = static_cast<char>('0' + i / 100);
    if (i >= 10) octets.text[i][length++] = static_cast<char>('0' + i / 10 % 10);
    octets.text[i][length++] = static_cast<char>('0' + i % 10);
    octets.text[i][length] = '.';
    octets.length[i] = static_cast<uint8_t>(length);
  }
  return octets;
}
constexpr Octets kOctets = MakeOctets();

}  // namespace

int32_t FormatIPv4(const uint8_t* address, char* out) {
  static_assert(kIPv4TextSize >= 3 * 4 + 4);   // the last octet is copied with what stands behind it
  char* at = out;
  for (int32_t i = 0; i < 4; ++i) {
    std::memcpy(at, kOctets.text[address[i]], 4);
    at += kOctets.length[address[i]] + 1;
  }
  at[-1] = 0;
  return static_cast<int32_t>(at - 1 - out);
}

namespace {

// Two upper-case digits a byte with ':' between them; `at` stands behind an earlier digit when `led` is set.
int32_t FormatColonBytes(const uint8_t* bytes, int32_t count, bool led, char* at) {
  char* const start = at;
  for (int32_t i = 0; i < count; ++i) {
    if (i > 0 || led) *at++ = ':';
    std::memcpy(at, kHexPairs + size_t{bytes[i]} * 2, 2);
    at += 2;
  }
  *at = 0;
  return static_cast<int32_t>(at - start);
}

}  // namespace

int32_t FormatMac(const uint8_t* address, char* out) { return FormatColonBytes(address, 6, false, out); }

int32_t FormatOui(const uint8_t* oui, char* out) {
  for (int32_t i = 0; i < 3; ++i) std::memcpy(out + 2 * i, kHexPairs + 2 * oui[i], 2);
  out[6] = 0;
  return 6;
}

int32_t FormatEightByteAddress(const uint8_t* address, char* out) {
  out[0] = kHexUpper[address[0] & 15];
  return 1 + FormatColonBytes(address + 1, 7, true, out + 1);
}

int32_t FormatIPv6(const uint8_t* address, char* out) {
  uint32_t groups[8], zeros = 0;   // a bit for each group that is 0
  for (uint32_t i = 0; i < 8; ++i) {
    groups[i] = static_cast<uint32_t>(address[2 * i] << 8 | address[2 * i + 1]);
    zeros |= uint32_t{groups[i] == 0} << i;
  }
  uint32_t gapAt = 8, gapLength = 1;   // the longest run of two or more zero groups, the first of equals
  for (uint32_t runs = zeros & zeros >> 1; runs != 0; runs &= runs >> 1) {   // where so many stand, and then one more
    gapAt = static_cast<uint32_t>(__builtin_ctz(runs));
    ++gapLength;
  }
  // IPv4-mapped addresses (::ffff:0:0/96) keep their last 32 bits dotted (RFC 5952, section 5).
  const bool mapped = gapAt == 0 && gapLength == 5 && groups[5] == 0xFFFF;
  // Each group with its colon; what is written behind a short one is written over, and the last one's colon ends the text.
  constexpr uint16_t kLowerCase = 0x2020;
  char* at = out;
  for (uint32_t i = 0; i < 8; ++i) {
    if (i == gapAt) {
      if (i == 0) *at++ = ':';
      *at++ = ':';
      i += gapLength - 1;
      continue;
    }
    if (mapped && i == 6) return static_cast<int32_t>(at - out) + FormatIPv4(address + 12, at);
    const uint32_t bits = 32 - static_cast<uint32_t>(__builtin_clz(groups[i] | 1)), digits = (bits + 3) / 4;
    const uint32_t shifted = groups[i] << 4 * (4 - digits);
    uint16_t pairs[2];
    std::memcpy(pairs, kHexPairs + 2 * (shifted >> 8 & 0xFF), 2);
    std::memcpy(pairs + 1, kHexPairs + 2 * (shifted & 0xFF), 2);
    for (uint16_t& pair : pairs) pair |= kLowerCase;
    std::memcpy(at, pairs, sizeof pairs);
    at[digits] = ':';
    at += digits + 1;
  }
  if (gapAt + gapLength != 8) --at;
  *at = 0;
  return static_cast<int32_t>(at - out);
}

ShortText<kOuiTextSize> OuiText(const uint8_t* oui) {
  ShortText<kOuiTextSize> made;
  if (!oui) return made.text[0] = 0, made;
  FormatOui(oui, made.text);
  return made;
}

}  // namespace qxview
