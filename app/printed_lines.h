// Lines as they stand in a tree, with their line feeds, written for terminals: nearly all characters as they are, many at once.
#pragma once
#include "app/fast_text.h"
#include "core/sixteen.h"

#if defined(__SSE2__) && defined(__GNUC__)
#include <immintrin.h>
#endif

namespace qxview {

// The forms for terminals, but for line feeds.
inline const EscapeTable kLineForms = [] {
  EscapeTable table = kTerminalForms;
  table.forms[uint8_t{'\n'}] = {{'\n'}, 1};
  return table;
}();

// Writes lines that hold no controls below 20 but their line feeds. `to` has room for kLongestOfLegible times the text, and
// kWrittenAhead.
constexpr size_t kLongestOfLegible = 4;
constexpr size_t kTogether = 8;   // in a dump's row others follow here and there
inline char* PutLegibleBySixteen(char* to, std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
#ifdef __SSE2__
  const __m128i del = _mm_set1_epi8(0x7F);
  while (end - at > static_cast<ptrdiff_t>(kSixteen + kTogether)) {
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), c);
    const uint32_t other = static_cast<uint32_t>(_mm_movemask_epi8(_mm_or_si128(c, _mm_cmpeq_epi8(c, del))));
    if (other == 0) [[likely]] {   // as a branch, so that the next ones need not wait
      at += kSixteen;
      to += kSixteen;
      continue;
    }
    const uint32_t plain = static_cast<uint32_t>(__builtin_ctz(other));
    at += plain;
    to += plain;
    for (size_t i = 0; i < kTogether; ++i) to = PutForm(to, kLineForms, at[i]);
    at += kTogether;
  }
#endif
  while (at < end) to = PutForm(to, kLineForms, *at++);
  return to;
}

#if defined(__SSE2__) && defined(__GNUC__)
constexpr size_t kWide = 32;

[[gnu::target("avx2")]] inline char* PutLegibleWide(char* to, std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  const __m256i del = _mm256_set1_epi8(0x7F);
  while (end - at > static_cast<ptrdiff_t>(kWide + kTogether)) {
    const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), c);
    const uint32_t other = static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_or_si256(c, _mm256_cmpeq_epi8(c, del))));
    if (other == 0) [[likely]] {
      at += kWide;
      to += kWide;
      continue;
    }
    const uint32_t plain = static_cast<uint32_t>(__builtin_ctz(other));
    at += plain;
    to += plain;
    for (size_t i = 0; i < kTogether; ++i) to = PutForm(to, kLineForms, at[i]);
    at += kTogether;
  }
  return PutLegibleBySixteen(to, {at, static_cast<size_t>(end - at)});
}

// CountOthers, by thirty-two.
[[gnu::target("avx2")]] inline size_t CountOthersWide(const char* text, size_t length) {
  constexpr size_t kMostSteps = 252;   // that a byte counts, in steps of four
  const __m256i one = _mm256_set1_epi8(1), blank = _mm256_set1_epi8(0x20), zero = _mm256_setzero_si256();
  size_t others = 0;
  while (length >= 4 * kWide) {
    const size_t steps = length / kWide < kMostSteps ? length / (4 * kWide) * 4 : kMostSteps;
    __m256i printable = zero;
    for (const char* const end = text + steps * kWide; text != end; text += 4 * kWide) {
      for (size_t i = 0; i < 4; ++i) {
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + i * kWide));
        printable = _mm256_sub_epi8(printable, _mm256_cmpgt_epi8(_mm256_add_epi8(c, one), blank));
      }
    }
    const __m256i sums = _mm256_sad_epu8(printable, zero);
    const __m128i half = _mm_add_epi64(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
    others += steps * kWide - static_cast<size_t>(_mm_cvtsi128_si32(half)) - static_cast<size_t>(_mm_extract_epi16(half, 4));
    length -= steps * kWide;
  }
  return others + CountOthers(text, length);
}

inline bool HasWide() { return __builtin_cpu_supports("avx2"); }
inline char* PutLegible(char* to, std::string_view text) {
  return HasWide() ? PutLegibleWide(to, text) : PutLegibleBySixteen(to, text);
}
inline size_t CountOthersQuickly(const char* text, size_t length) {
  return HasWide() ? CountOthersWide(text, length) : CountOthers(text, length);
}
#else
inline char* PutLegible(char* to, std::string_view text) { return PutLegibleBySixteen(to, text); }
inline size_t CountOthersQuickly(const char* text, size_t length) { return CountOthers(text, length); }
#endif

}  // namespace qxview
