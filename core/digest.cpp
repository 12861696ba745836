#include "core/digest.h"

#ifdef __x86_64__
#include <cpuid.h>
#include <immintrin.h>
#endif

#include <bit>
#include <cstring>

#include "core/cursor.h"

namespace qxview {
namespace {

constexpr uint8_t kMd5Shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

// The first 32 bits of the sine of 1 to 64.
constexpr uint32_t kMd5Sines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391};

constexpr uint32_t kSha256Constants[64] = {
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

void MixMd5(uint32_t (&state)[4], const uint8_t* block) {
  uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
  for (uint32_t i = 0; i < 64; ++i) {
    const uint32_t round = i / 16;
    const uint32_t mixed = round == 0   ? (b & c) | (~b & d)
                           : round == 1 ? (d & b) | (~d & c)
                           : round == 2 ? b ^ c ^ d
                                        : c ^ (b | ~d);
    constexpr uint8_t kStep[4] = {1, 5, 3, 7}, kStart[4] = {0, 1, 5, 0};
    const uint32_t word = ReadLittleU32(block + 4 * ((kStep[round] * i + kStart[round]) % 16));
    const uint32_t turned = std::rotl(a + mixed + kMd5Sines[i] + word, kMd5Shifts[round][i % 4]);
    a = d;
    d = c;
    c = b;
    b += turned;
  }
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
}

// Eight rounds, after which each word stands where it stood before: none has to be moved.
inline void MixEight(uint32_t (&v)[8], const uint32_t* words, const uint32_t* constants) {
  const auto round = [&](uint32_t a, uint32_t b, uint32_t c, uint32_t& d, uint32_t e, uint32_t f, uint32_t g, uint32_t& h,
                         int32_t i) {
    const uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + (g ^ (e & (f ^ g))) + constants[i] +
                           words[i];
    d += first;
    h = first + (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) | (c & (a | b)));
  };
  auto& [a, b, c, d, e, f, g, h] = v;
  round(a, b, c, d, e, f, g, h, 0);
  round(h, a, b, c, d, e, f, g, 1);
  round(g, h, a, b, c, d, e, f, 2);
  round(f, g, h, a, b, c, d, e, 3);
  round(e, f, g, h, a, b, c, d, 4);
  round(d, e, f, g, h, a, b, c, 5);
  round(c, d, e, f, g, h, a, b, 6);
  round(b, c, d, e, f, g, h, a, 7);
}

void MixSha256ByWords(uint32_t (&state)[8], const uint8_t* block) {
  uint32_t words[64];
  for (int32_t i = 0; i < 16; ++i) words[i] = ReadU32(block + 4 * i);
  for (int32_t i = 16; i < 64; ++i) {
    const uint32_t low = words[i - 15], high = words[i - 2];
    words[i] = words[i - 16] + (std::rotr(low, 7) ^ std::rotr(low, 18) ^ low >> 3) + words[i - 7] +
               (std::rotr(high, 17) ^ std::rotr(high, 19) ^ high >> 10);
  }
  uint32_t v[8];
  std::memcpy(v, state, sizeof v);
  for (int32_t i = 0; i < 64; i += 8) MixEight(v, words + i, kSha256Constants + i);
  for (int32_t i = 0; i < 8; ++i) state[i] += v[i];
}

#ifdef __x86_64__
// The same by the processor's own instructions, in a seventh of the time. Each makes two rounds over the words a, b, e and f and
// the words c, d, g and h. The 32-bit builds keep the other way tested.
[[gnu::target("sha,sse4.1")]] void MixSha256BySha(uint32_t (&state)[8], const uint8_t* block) {
  const auto load = [](const void* at) __attribute__((target("sha,sse4.1"), always_inline)) {
    return _mm_loadu_si128(static_cast<const __m128i*>(at));
  };
  const __m128i bigEndian = _mm_set_epi64x(0x0C0D0E0F08090A0B, 0x0405060700010203);
  const __m128i low = _mm_shuffle_epi32(load(state), 0xB1), high = _mm_shuffle_epi32(load(state + 4), 0x1B);
  const __m128i firstBefore = _mm_alignr_epi8(low, high, 8), secondBefore = _mm_blend_epi16(high, low, 0xF0);
  __m128i first = firstBefore, second = secondBefore, words[4];
  for (int32_t i = 0; i < 4; ++i) words[i] = _mm_shuffle_epi8(load(block + 16 * i), bigEndian);
#pragma GCC unroll 16
  for (int32_t i = 0; i < 16; ++i) {
    __m128i& each = words[i % 4];
    const __m128i mixed = _mm_add_epi32(each, load(kSha256Constants + 4 * i));
    second = _mm_sha256rnds2_epu32(second, first, mixed);
    first = _mm_sha256rnds2_epu32(first, second, _mm_shuffle_epi32(mixed, 0x0E));
    const __m128i last = words[(i + 3) % 4];
    const __m128i part = _mm_sha256msg1_epu32(each, words[(i + 1) % 4]), between = _mm_alignr_epi8(last, words[(i + 2) % 4], 4);
    each = _mm_sha256msg2_epu32(_mm_add_epi32(part, between), last);   // of four rounds later; the last ones are not used
  }
  first = _mm_shuffle_epi32(_mm_add_epi32(first, firstBefore), 0x1B);
  second = _mm_shuffle_epi32(_mm_add_epi32(second, secondBefore), 0xB1);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state), _mm_blend_epi16(first, second, 0xF0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(state + 4), _mm_alignr_epi8(second, first, 8));
}

bool HasShaInstructions() {
  uint32_t a = 0, b = 0, c = 0, d = 0;
  if (!__get_cpuid(1, &a, &b, &c, &d) || !(c & bit_SSE4_1)) return false;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) && (b & bit_SHA);
}
const bool hasShaInstructions = HasShaInstructions();

void MixSha256(uint32_t (&state)[8], const uint8_t* block) {
  return hasShaInstructions ? MixSha256BySha(state, block) : MixSha256ByWords(state, block);
}
#else
void MixSha256(uint32_t (&state)[8], const uint8_t* block) { MixSha256ByWords(state, block); }
#endif

// Both digests take blocks of 64 bytes and end with a bit, zeros and the number of bits.
template <class State, class Mix>
void AddTo(State& digest, const ByteSpan& bytes, Mix mix) {
  const uint8_t* at = bytes.data;
  for (int32_t left = bytes.length; left > 0;) {
    const int32_t held = static_cast<int32_t>(digest.length % 64), taken = left < 64 - held ? left : 64 - held;
    std::memcpy(digest.block + held, at, static_cast<size_t>(taken));
    digest.length += static_cast<uint64_t>(taken);
    at += taken;
    left -= taken;
    if (held + taken == 64) mix(digest.state, digest.block);
  }
}

template <class State>
void Pad(State& digest, bool bigEndian) {
  const uint64_t bits = digest.length * 8;
  uint8_t end[72] = {0x80};
  const int32_t zeros = static_cast<int32_t>((119 - digest.length % 64) % 64);
  for (int32_t i = 0; i < 8; ++i) end[1 + zeros + i] = static_cast<uint8_t>(bits >> 8 * (bigEndian ? 7 - i : i));
  digest.Add({end, 1 + zeros + 8});
}

}  // namespace

void Md5::Add(const ByteSpan& bytes) { AddTo(*this, bytes, MixMd5); }

void Md5::Finish(uint8_t out[kMd5Size]) {
  Pad(*this, false);
  for (int32_t i = 0; i < kMd5Size; ++i) out[i] = static_cast<uint8_t>(state[i / 4] >> 8 * (i % 4));
}

void Sha256::Add(const ByteSpan& bytes) { AddTo(*this, bytes, MixSha256); }

void Sha256::Finish(uint8_t out[kSha256Size]) {
  Pad(*this, true);
  for (int32_t i = 0; i < kSha256Size; ++i) out[i] = static_cast<uint8_t>(state[i / 4] >> 8 * (3 - i % 4));
}

}  // namespace qxview
