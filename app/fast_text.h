// The innermost steps of writing lines: a text with its escapes, and numbers, straight into an output's buffer.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "core/digits.h"
#include "core/safe_text.h"

namespace qxview {

// What stands for each character of Windows-1252; one that stands for itself is plain.
struct EscapeTable {
  struct Form {   // one word, so that a character takes one load and one store
    char bytes[7];
    uint8_t length;
  };
  Form forms[256];
};

// UTF-8, but for the characters that `escape` writes in another way: it gives how many bytes, 0 for none.
template <class Escape>
EscapeTable MakeForms(Escape&& escape) {
  EscapeTable table{};
  for (uint32_t c = 0; c < 256; ++c) {
    EscapeTable::Form& form = table.forms[c];
    form.length = escape(static_cast<uint8_t>(c), form.bytes);
    if (form.length > 0) continue;
    char scratch[kMostUtf8Octets + 1];
    const std::string_view text = Utf8Of(static_cast<uint8_t>(c), scratch);
    form.length = static_cast<uint8_t>(text.size());
    std::memcpy(form.bytes, text.data(), text.size());
  }
  return table;
}

// For terminals: controls as \xNN.
inline const EscapeTable kTerminalForms = MakeForms([](uint8_t c, char* bytes) -> uint8_t {
  if (!IsControlCharacter(c)) return 0;
  std::memcpy(bytes, "\\x", 2);
  std::memcpy(bytes + 2, kHexPairs + 2 * c, 2);
  return 4;
});

// For JSON: quotation marks and controls escaped.
inline const EscapeTable kJsonForms = MakeForms([](uint8_t c, char* bytes) -> uint8_t {
  if (c == '"' || c == '\\') {
    bytes[0] = '\\';
    bytes[1] = static_cast<char>(c);
    return 2;
  }
  if (c >= 0x20 && c != 0x7F) return 0;
  std::memcpy(bytes, "\\u00", 4);
  std::memcpy(bytes + 4, kHexPairs + 2 * c, 2);
  return 6;
});

// How many bytes a character may take, and how many bytes more are written behind the text without meaning.
constexpr size_t kLongestEscape = 6, kWrittenAhead = 16;

inline char* PutForm(char* to, const EscapeTable& table, char c) {
  const EscapeTable::Form& form = table.forms[static_cast<uint8_t>(c)];
  std::memcpy(to, &form, sizeof form);
  return to + form.length;
}

// Writes a text of Windows-1252 by the table's forms, and returns its end. `to` has room for kLongestEscape times the text, and
// kWrittenAhead; `readsAhead` where sixteen bytes behind the text may be read.
template <bool kIsJson, bool readsAhead = false>
inline char* PutEscaped(char* to, std::string_view text) {
  const EscapeTable& table = kIsJson ? kJsonForms : kTerminalForms;
  const char* at = text.data();
  const char* const end = at + text.size();
#ifdef __SSE2__
  // Sixteen at once; of those that are not all plain the ones in front are good, and the loop goes on behind the first other.
  // One more than a plain character is above 20, with a sign.
  const __m128i one = _mm_set1_epi8(1), blank = _mm_set1_epi8(0x20), quote = _mm_set1_epi8('"'), slash = _mm_set1_epi8('\\');
  while (readsAhead ? at < end : end - at >= 16) {
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), c);
    __m128i isPlain = _mm_cmpgt_epi8(_mm_add_epi8(c, one), blank);
    if (kIsJson) isPlain = _mm_andnot_si128(_mm_or_si128(_mm_cmpeq_epi8(c, quote), _mm_cmpeq_epi8(c, slash)), isPlain);
    uint32_t mask = static_cast<uint32_t>(_mm_movemask_epi8(isPlain)) ^ 0xFFFF;
    if (readsAhead && end - at < 16) {
      const uint32_t left = static_cast<uint32_t>(end - at);
      mask &= (1u << left) - 1;
      if (mask == 0) return to + left;
    }
    if (mask == 0) [[likely]] {
      at += 16;
      to += 16;
      continue;
    }
    const uint32_t plain = static_cast<uint32_t>(__builtin_ctz(mask));
    at += plain;
    to += plain;
    if (end - at < 24) break;   // as in a dump's row, where others follow here and there
    do {
      to = PutForm(to, table, *at++);
    } while (at < end && static_cast<int8_t>(*at) < 0x20);   // they come in runs
  }
#endif
  for (; end - at >= 4; at += 4) {
    for (size_t i = 0; i < 4; ++i) to = PutForm(to, table, at[i]);
  }
  while (at < end) to = PutForm(to, table, *at++);
  return to;
}

inline char* PutLiteral(char* to, std::string_view text) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

// The decimal digits of a number: 20 at most.
inline char* PutDecimal(char* to, uint64_t number) {
  if (number < kCountedDigits) [[likely]] return PutDigits(to, static_cast<uint32_t>(number));
  char digits[24];
  char* const end = digits + sizeof digits;
  const char* const first = WriteDecimal(end, number);
  CopyShort(to, first, static_cast<size_t>(end - first));
  return to + (end - first);
}

inline char* PutSigned(char* to, int64_t number) {
  if (number < 0) *to++ = '-';
  return PutDecimal(to, number < 0 ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number));
}

}  // namespace qxview
