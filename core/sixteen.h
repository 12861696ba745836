// Sixteen characters at once, where the processor has that; elsewhere eight.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "core/digits.h"

namespace qxview {

constexpr size_t kSixteen = 16;

#ifdef __SSE2__
// How many characters are what `is` tells of sixteen by all bits of each. Up to sixteen characters behind the text must be there.
template <class Is>
inline size_t CountThoseThat(const char* text, size_t length, const Is& is) {
  constexpr size_t kMostSteps = 255;   // that a byte counts
  const __m128i zero = _mm_setzero_si128();
  const auto at = [&](const char* place) { return is(_mm_loadu_si128(reinterpret_cast<const __m128i*>(place))); };
  alignas(kSixteen) static constexpr uint64_t kOfRest[4] = {~uint64_t{0}, ~uint64_t{0}, 0, 0};
  const char* const ofRest = reinterpret_cast<const char*>(kOfRest) + kSixteen - length % kSixteen;
  const char* const lastWhole = text + length / kSixteen * kSixteen;
  __m128i found = _mm_setzero_si128();   // in two halves
  size_t left = length / kSixteen;
  do {
    __m128i counts = zero;
    const size_t steps = left < kMostSteps - 1 ? left : kMostSteps - 1;
    const char* const end = text + steps * kSixteen;
    for (; end - text >= static_cast<ptrdiff_t>(4 * kSixteen); text += 4 * kSixteen) {
      counts = _mm_sub_epi8(counts, at(text));
      counts = _mm_sub_epi8(counts, at(text + kSixteen));
      counts = _mm_sub_epi8(counts, at(text + 2 * kSixteen));
      counts = _mm_sub_epi8(counts, at(text + 3 * kSixteen));
    }
    for (; text != end; text += kSixteen) counts = _mm_sub_epi8(counts, at(text));
    left -= steps;
    if (left == 0) {
      counts = _mm_sub_epi8(counts, _mm_and_si128(at(lastWhole), _mm_loadu_si128(reinterpret_cast<const __m128i*>(ofRest))));
    }
    found = _mm_add_epi32(found, _mm_sad_epu8(counts, zero));
  } while (left != 0);
  return static_cast<size_t>(_mm_cvtsi128_si32(_mm_add_epi32(found, _mm_srli_si128(found, 8))));
}
#endif

// How many characters are none of printable ASCII. Up to sixteen characters behind the text must be there.
inline size_t CountOthers(const char* text, size_t length) {
#ifdef __SSE2__
  // One more than a printable character is above 0x20, with a sign; all others are below or were 0x7F.
  const __m128i one = _mm_set1_epi8(1), blank = _mm_set1_epi8(0x20);
  return length - CountThoseThat(text, length, [&](__m128i c) { return _mm_cmpgt_epi8(_mm_add_epi8(c, one), blank); });
#else
  size_t found = 0;
  for (size_t at = 0; at < length; ++at) found += static_cast<uint8_t>(text[at] - 0x20) > '~' - 0x20;
  return found;
#endif
}

// How many are controls below 20. Up to sixteen characters behind the text must be there.
inline size_t CountControls(const char* text, size_t length) {
#ifdef __SSE2__
  const __m128i last = _mm_set1_epi8(0x1F);
  return CountThoseThat(text, length, [&](__m128i c) { return _mm_cmpeq_epi8(_mm_min_epu8(c, last), c); });
#else
  size_t found = 0;
  for (size_t at = 0; at < length; ++at) found += static_cast<uint8_t>(text[at]) < 0x20;
  return found;
#endif
}

// Copies sixteen characters with a full stop for controls below 20, to where sixteen have room.
inline void CopyShownSixteen(char* to, const uint8_t* from) {
#ifdef __SSE2__
  const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  const __m128i isShown = _mm_cmpeq_epi8(_mm_max_epu8(c, _mm_set1_epi8(0x20)), c);
  const __m128i shown = _mm_or_si128(_mm_and_si128(isShown, c), _mm_andnot_si128(isShown, _mm_set1_epi8('.')));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), shown);
#else
  for (size_t i = 0; i < kSixteen; ++i) to[i] = from[i] < 0x20 ? '.' : static_cast<char>(from[i]);
#endif
}

// Copies a text of so many bytes up to its first zero; returns where that ends. Sixteen bytes more have room there.
inline char* CopySlice(char* to, const char* from, size_t length) {
#ifdef __SSE2__
  CopyShort(to, from, length);
  for (size_t at = 0; at < length; at += kSixteen) {
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(to + at));
    uint32_t ends = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(c, _mm_setzero_si128())));
    if (length - at < kSixteen) ends &= (1u << (length - at)) - 1;
    if (ends != 0) return to + at + __builtin_ctz(ends);
  }
  return to + length;
#else
  length = strnlen(from, length);
  CopyShort(to, from, length);
  return to + length;
#endif
}

inline void CopySixteen(char* to, const char* from) { std::memcpy(to, from, kSixteen); }

// Reading beside a text, in the same page: what lies there is there, and ignored.
#if defined(__SSE2__) && !defined(__SANITIZE_ADDRESS__) && !defined(__clang__)
constexpr bool kReadsBeside = true;
constexpr size_t kLeastPage = 4096;
// Whether so many characters from here on can be read, if the first can.
inline bool MayRead(const char* text, size_t count) { return reinterpret_cast<uintptr_t>(text) % kLeastPage <= kLeastPage - count; }

// The last address of the text's page from which so many can be read.
inline uintptr_t LastReadable(const char* text, size_t count) {
  return (reinterpret_cast<uintptr_t>(text) | (kLeastPage - 1)) + 1 - count;
}

// Copies sixteen characters; how many of them stand before the first zero.
inline uint32_t CopyUpToZero(char* to, const char* from) {
  const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), c);
  const uint32_t ends = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(c, _mm_setzero_si128())));
  return static_cast<uint32_t>(__builtin_ctz(ends | 1u << kSixteen));
}

// The length of a terminated text. Reads whole aligned sixteens with a byte of the text in each.
inline size_t LengthOfText(const char* text) {
  const uintptr_t beside = reinterpret_cast<uintptr_t>(text) % kSixteen;
  const __m128i* at = reinterpret_cast<const __m128i*>(text - beside);
  const __m128i zero = _mm_setzero_si128();
  const uint32_t first = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_load_si128(at), zero))) >> beside;
  if (first != 0) return static_cast<size_t>(__builtin_ctz(first));
  for (size_t length = kSixteen - beside;; length += kSixteen) {
    const uint32_t ends = static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_load_si128(++at), zero)));
    if (ends != 0) return length + static_cast<size_t>(__builtin_ctz(ends));
  }
}
#else
constexpr bool kReadsBeside = false;
inline bool MayRead(const char*, size_t) { return false; }
inline uintptr_t LastReadable(const char*, size_t) { return 0; }
inline uint32_t CopyUpToZero(char*, const char*) { return 0; }
inline size_t LengthOfText(const char* text) { return std::strlen(text); }
#endif

// Sixteen blanks.
inline void PutBlanks(char* to) { std::memset(to, ' ', kSixteen); }

}  // namespace qxview
