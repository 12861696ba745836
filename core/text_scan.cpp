#include "core/text_scan.h"

#include "core/safe_text.h"
#include "core/sixteen.h"

namespace qxview {

int32_t FindAny(const Field& text, int32_t at, std::string_view wanted) {
  if (!text.bytes) return text.length;
#ifdef __SSE2__
  constexpr int32_t kStep = kSixteen;
  for (; at + kStep <= text.length; at += kStep) {
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.bytes + at));
    __m128i found = _mm_setzero_si128();
    for (const char one : wanted) found = _mm_or_si128(found, _mm_cmpeq_epi8(c, _mm_set1_epi8(one)));
    if (const int mask = _mm_movemask_epi8(found)) return at + __builtin_ctz(static_cast<uint32_t>(mask));
  }
#endif
  while (at < text.length && wanted.find(static_cast<char>(text.bytes[at])) == std::string_view::npos) ++at;
  return at;
}

int32_t CountPlain(const Cursor& c) {
  return static_cast<int32_t>(EndOfPlain({reinterpret_cast<const char*>(c.at), static_cast<size_t>(Left(c))}, 0));
}

}  // namespace qxview
