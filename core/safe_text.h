// Texts for terminals and paper, which are given no control as itself.
#pragma once
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/characters.h"
#include "core/digits.h"

namespace qxview {

// Whether the character of Windows-1252 is a control, which no terminal and no paper is given as itself.
constexpr bool IsControlCharacter(uint8_t character) {
  const uint32_t code = CodeOfWindows1252(character);
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// Where the first character from `at` on stands that is not printable ASCII. Most lines have none: eight are looked at at once.
inline size_t EndOfPlain(std::string_view text, size_t at) {
  constexpr uint64_t kOnes = 0x0101010101010101, kTop = 0x80 * kOnes;
  for (; at + 8 <= text.size(); at += 8) {
    uint64_t c;
    std::memcpy(&c, text.data() + at, 8);
    const bool isAny = (c | (c + kOnes)) & kTop;                 // from 7F on
    if (isAny || ((c + 0x60 * kOnes) & kTop) != kTop) break;     // below 20
  }
  while (at < text.size() && text[at] >= 0x20 && text[at] < 0x7F) ++at;
  return at;
}

// Hands a text of Windows-1252 to put(std::string_view) in pieces of UTF-8, its controls as "\\xNN".
template <class Put>
void PutSafely(std::string_view text, Put&& put) {
  size_t plain = 0;
  for (size_t i = 0; (i = EndOfPlain(text, i)) < text.size(); ++i) {
    const uint8_t c = static_cast<uint8_t>(text[i]);
    put(text.substr(plain, i - plain));
    plain = i + 1;
    char scratch[8];
    if (IsControlCharacter(c)) {
      put("\\x");
      put({kHexPairs + 2 * c, 2});
    } else {
      put(Utf8Of(c, scratch));
    }
  }
  put(text.substr(plain));
}

}  // namespace qxview
