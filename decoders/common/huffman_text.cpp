#include "decoders/common/huffman_text.h"

namespace qxview {
namespace {

constexpr int32_t kSymbols = 257, kMostBits = 30;

// The lengths of the codes (RFC 7541, appendix B). The codes follow: shorter ones first, those of a length in the order of
// their symbols.
constexpr uint8_t kLengths[kSymbols] = {
    13, 23, 28, 28, 28, 28, 28, 28, 28, 24, 30, 28, 28, 30, 28, 28, 28, 28, 28, 28, 28, 28, 30, 28, 28, 28, 28, 28, 28, 28, 28, 28,
    6,  10, 10, 12, 13, 6,  8,  11, 10, 10, 8,  11, 8,  6,  6,  6,  5,  5,  5,  6,  6,  6,  6,  6,  6,  6,  7,  8,  15, 6,  12, 10,
    13, 6,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  7,  8,  7,  8,  13, 19, 13, 14, 6,
    15, 5,  6,  5,  6,  5,  6,  6,  6,  5,  7,  7,  6,  6,  6,  5,  6,  7,  6,  5,  5,  6,  7,  7,  7,  7,  7,  15, 11, 14, 13, 28,
    20, 22, 20, 20, 22, 22, 22, 23, 22, 23, 23, 23, 23, 23, 24, 23, 24, 24, 22, 23, 24, 23, 23, 23, 23, 21, 22, 23, 22, 23, 23, 24,
    22, 21, 20, 22, 22, 23, 23, 21, 23, 22, 22, 24, 21, 22, 23, 23, 21, 21, 22, 21, 23, 22, 23, 23, 20, 22, 22, 22, 23, 22, 22, 23,
    26, 26, 20, 19, 22, 23, 22, 25, 26, 26, 26, 27, 27, 26, 24, 25, 19, 21, 26, 27, 27, 26, 27, 24, 21, 21, 26, 26, 28, 27, 27, 27,
    20, 24, 20, 21, 22, 21, 21, 23, 22, 22, 25, 25, 24, 24, 26, 23, 26, 27, 26, 26, 27, 27, 27, 27, 27, 28, 27, 27, 27, 27, 27, 26,
    30};

// Symbols in the order of their codes; for each length the first code and where its symbols start.
struct Code {
  uint16_t symbols[kSymbols];
  uint32_t first[kMostBits + 1];
  uint16_t start[kMostBits + 2];
};
consteval Code MakeCode() {
  Code code{};
  uint32_t next = 0;
  uint16_t count = 0;
  for (int32_t bits = 1; bits <= kMostBits; ++bits) {
    next <<= 1;
    code.first[bits] = next;
    code.start[bits] = count;
    for (int32_t symbol = 0; symbol < kSymbols; ++symbol) {
      if (kLengths[symbol] != bits) continue;
      code.symbols[count++] = static_cast<uint16_t>(symbol);
      ++next;
    }
  }
  code.start[kMostBits + 1] = count;
  return code;
}
constexpr Code kCode = MakeCode();

}  // namespace

WideField TakePrefixedNumber(Cursor& c, int32_t prefixBits) {
  constexpr int32_t kMostShift = 56;
  const uint32_t most = (1u << prefixBits) - 1;
  uint64_t value = PeekU8(c) & most;
  int32_t length = 1;
  if (value == most) {
    for (int32_t shift = 0;; shift += 7) {
      if (length >= Left(c) || shift > kMostShift) {
        length = Left(c) + 1;
        break;
      }
      const uint32_t octet = PeekU8(c, length++);
      value += static_cast<uint64_t>(octet & 0x7F) << shift;
      if (!(octet & 0x80)) break;
    }
  }
  WideField number{TakeBytes(c, length), 0};
  if (number.here) {
    number.wide = value;
    number.value = static_cast<uint32_t>(value);
  }
  return number;
}

int32_t ReadHuffmanText(const Field& coded, char* out, int32_t size) {
  int32_t length = 0, bits = 0;
  uint32_t code = 0;
  for (int32_t at = 0; at < 8 * coded.length && length < size; ++at) {
    code = code << 1 | (PeekU8(coded, at / 8) >> (7 - at % 8) & 1);
    if (++bits > kMostBits) break;
    const uint32_t count = static_cast<uint32_t>(kCode.start[bits + 1] - kCode.start[bits]);
    if (code < kCode.first[bits] || code - kCode.first[bits] >= count) continue;
    const uint16_t symbol = kCode.symbols[kCode.start[bits] + code - kCode.first[bits]];
    if (symbol > 255) break;
    out[length++] = static_cast<char>(symbol);
    code = 0;
    bits = 0;
  }
  return length;
}

CompressedText TakeCompressedText(Cursor& c, int32_t prefixBits, char* room, int32_t size) {
  CompressedText text{};
  const Cursor start = c;
  text.isCoded = PeekU8(c) >> prefixBits & 1;
  const WideField length = TakePrefixedNumber(c, prefixBits);
  const Field bytes = TakeBytes(c, static_cast<int64_t>(length.wide));
  text.here = bytes.here;
  text.whole = PeekBytes(start, 0, c.offset - start.offset);
  if (!bytes.here) return text;
  text.text = text.isCoded ? TextSlice{room, ReadHuffmanText(bytes, room, size)} : Text(bytes);
  return text;
}

}  // namespace qxview
