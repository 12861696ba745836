// Characters in the two encodings that the project knows: UTF-8 (RFC 3629) and Windows-1252, in which lines are written.
#pragma once
#include <cstdint>
#include <string_view>

namespace qxview {

struct Utf8Character {
  uint32_t code;
  int32_t octets;   // 0 for what is no UTF-8
};

// The character at the octets, of which there is at least one: in its shortest form, and no surrogate.
inline Utf8Character Utf8At(const uint8_t* at, int32_t left) {
  const uint32_t first = at[0];
  if (first < 0x80) return {first, 1};
  const int32_t octets = first >= 0xF5 ? 0 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
  if (octets == 0 || octets > left) return {0, 0};
  uint32_t code = first & (0x7Fu >> octets);
  for (int32_t i = 1; i < octets; ++i) {
    if ((at[i] & 0xC0) != 0x80) return {0, 0};
    code = code << 6 | (at[i] & 0x3Fu);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < kLeast[octets] || code > 0x10FFFF || isSurrogate ? Utf8Character{0, 0} : Utf8Character{code, octets};
}

// The code points of Windows-1252's characters from 0x80 to 0x9F; those that it leaves open are controls.
inline constexpr uint16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D,
    0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A,
    0x0153, 0x009D, 0x017E, 0x0178};

constexpr uint32_t CodeOfWindows1252(uint8_t character) {
  return character >= 0x80 && character < 0xA0 ? kWindows1252High[character - 0x80] : character;
}

// The code point's character in Windows-1252; 0 for one that it lacks.
constexpr uint8_t Windows1252Of(uint32_t code) {
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<uint8_t>(code);
  for (uint32_t i = 0; code > 0xFF && i < 32; ++i) {
    if (kWindows1252High[i] == code) return static_cast<uint8_t>(0x80 + i);
  }
  return 0;
}

constexpr int32_t kMostUtf8Octets = 3;   // of one character of Windows-1252

// A character of Windows-1252 as UTF-8; it stands in `scratch`, which has room for kMostUtf8Octets.
std::string_view Utf8Of(uint8_t character, char* scratch);

// Writes a text in Windows-1252 as UTF-8, cut between characters to outSize - 1 octets and terminated; nothing when there
// is no room. The result is the length of the whole text in UTF-8.
int32_t ConvertToUtf8(std::string_view text, char* out, int32_t outSize);

}  // namespace qxview
