// Writing a text of pieces: the innermost loop of lines, for what includes it beside the line that it makes.
#pragma once
#include <bit>

#include "core/bounded_text.h"
#include "core/digits.h"
#include "core/formatter.h"
#include "core/octet_picture.h"
#include "core/sixteen.h"

namespace qxview::detail {

// Whatever the pieces are, up to the terminator's place at `end`; returns the text's end, as the others do.
char* PutPieces(char* at, char* end, const char* text, const FormatPiece* pieces, const FormatArgument* arguments);
// One conversion in full.
char* PutText(char* at, char* end, FormatPiece piece, const FormatArgument& argument);
char* PutFormedNumber(char* at, char* end, FormatPiece piece, uint64_t value);

// The fields of a piece out of its word: the innermost loop looks at few of them.
constexpr uint32_t BitsAt(uint32_t word, int32_t first, int32_t count) {
  const int32_t shift = std::endian::native == std::endian::little ? first : 32 - first - count;
  return word >> shift & ((1u << count) - 1);
}
constexpr uint32_t MaskAt(int32_t first, int32_t count) {
  return ((1u << count) - 1) << (std::endian::native == std::endian::little ? first : 32 - first - count);
}
inline uint32_t WordOf(FormatPiece piece) {
  uint32_t word;
  std::memcpy(&word, &piece, sizeof word);
  return word;
}
constexpr uint32_t LiteralOf(uint32_t word) { return BitsAt(word, 0, 10); }
constexpr uint32_t ConversionLengthOf(uint32_t word) { return BitsAt(word, 10, 4); }
constexpr uint32_t PrecisionOf(uint32_t word) { return BitsAt(word, 14, 5); }
constexpr Conversion ConversionOf(uint32_t word) { return static_cast<Conversion>(BitsAt(word, 27, 4)); }

// What a word says of its conversion, its size left out.
constexpr uint32_t kFormMask = MaskAt(14, 12) | MaskAt(27, 4);
constexpr uint32_t FormOf(Conversion conversion, uint32_t precision = 0, uint32_t width = 0, uint32_t zeroFill = 0) {
  const auto at = [](uint32_t value, int32_t first, int32_t count) {
    return value << (std::endian::native == std::endian::little ? first : 32 - first - count);
  };
  return at(static_cast<uint32_t>(conversion), 27, 4) | at(precision, 14, 5) | at(width, 19, 6) | at(zeroFill, 25, 1);
}

// What every piece may write without looking at the room that is left: a literal in two steps of sixteen, and what is made.
constexpr size_t kMostMade = 48;   // of addresses, pictures and numbers, with their terminator
constexpr size_t kMostQuickLiteral = 2 * kSixteen;
constexpr ptrdiff_t kAmpleRoom = 96;
static_assert(kAmpleRoom >= static_cast<ptrdiff_t>(kMostQuickLiteral + kMostMade) && kMostMade >= 3 * kSixteen);

// The picture of eight bits, or of sixteen, which nearly all are; null for others.
inline char* PutShortBits(char* at, const FormatArgument& argument) {
  const uint32_t width = argument.form >> 8 & 0xFF, first = argument.form >> 16 & 0xFF, count = argument.form >> 24;
  if ((width != 8 && width != 16) || first + count > width) [[unlikely]] return nullptr;
  const uint32_t mask = ((1u << count) - 1) << (width - first - count);
  const uint32_t value = static_cast<uint32_t>(argument.value);
  if (width == 8) [[likely]] {
    DrawOctet(value, mask, at);
    return at + 8;
  }
  DrawOctet(value >> 8 & 0xFF, mask >> 8, at);
  at[8] = ' ';
  DrawOctet(value & 0xFF, mask & 0xFF, at + 9);
  return at + 17;
}

// A terminated text in front of ample room, in up to three steps of sixteen.
inline char* PutTerminated(char* at, char* end, const FormatPiece& piece, const FormatArgument& argument) {
  const char* text = reinterpret_cast<const char*>(static_cast<uintptr_t>(argument.value));
  char* to = at;
  for (const char* const third = text + 3 * kSixteen; MayRead(text, kSixteen); ) {
    const uint32_t length = CopyUpToZero(to, text);
    if (length < kSixteen) [[likely]] return to + length;
    to += kSixteen;
    text += kSixteen;
    if (text == third) break;
  }
  return PutText(at, end, piece, argument);
}

inline char* PutDigitPair(char* at, const char* pair) {
  std::memcpy(at, pair, 2);
  return at + 2;
}

[[gnu::always_inline]] inline char* WritePieces(char* at, char* const end, const char* text, const FormatPiece* pieces,
                                                const FormatArgument* arguments) {
  if (end - at < kAmpleRoom) [[unlikely]] return PutPieces(at, end, text, pieces, arguments);
  const char* const lastAmple = end - kAmpleRoom;
  const uintptr_t lastQuick = LastReadable(text, kMostQuickLiteral);
  for (;; ++pieces, ++arguments) {
    if (at > lastAmple) [[unlikely]] return PutPieces(at, end, text, pieces, arguments);
    const uint32_t word = WordOf(*pieces);
    const size_t literal = LiteralOf(word);
    if (kReadsBeside && literal <= kMostQuickLiteral && reinterpret_cast<uintptr_t>(text) <= lastQuick) [[likely]] {
      CopySixteen(at, text);
      CopySixteen(at + kSixteen, text + kSixteen);
    } else {
      if (static_cast<size_t>(end - at) < literal + kMostMade) return PutPieces(at, end, text, pieces, arguments);
      CopyShort(at, text, literal);
    }
    at += literal;
    if ((word & MaskAt(27, 4)) == 0) return at;   // no conversion
    text += literal + ConversionLengthOf(word);
    const uint32_t form = word & kFormMask;
    const uint64_t value = arguments->value;
    if (form == FormOf(Conversion::kText)) {
      if (arguments->form == FormatArgument::kTerminated) [[likely]] {
        if (value) [[likely]] at = PutTerminated(at, end, *pieces, *arguments);
        continue;
      }
      if ((arguments->form & 0xFF) == FormatArgument::kBits) {
        if (char* const drawn = PutShortBits(at, *arguments)) {
          at = drawn;
          continue;
        }
      }
      at = PutText(at, end, *pieces, *arguments);
    } else if ((form == FormOf(Conversion::kUnsigned) && value <= UINT32_MAX) ||
               (form == FormOf(Conversion::kSigned) && value <= INT32_MAX)) {
      at = PutDigits(at, static_cast<uint32_t>(value));
    } else if (form == FormOf(Conversion::kHexUpper, 4) && value <= 0xFFFF) {
      at = PutDigitPair(PutDigitPair(at, kHexPairs + 2 * (value >> 8)), kHexPairs + 2 * (value & 0xFF));
    } else if (form == FormOf(Conversion::kHexUpper, 2) && value <= 0xFF) {
      at = PutDigitPair(at, kHexPairs + 2 * value);
    } else if (form == FormOf(Conversion::kUnsigned, 0, 2, 1) && value < 100) {
      at = PutDigitPair(at, kDigitPairs.decimal + 2 * value);
    } else if (ConversionOf(word) == Conversion::kCharacter) {
      *at++ = static_cast<char>(value);
    } else if (ConversionOf(word) == Conversion::kText) {
      at = PutText(at, end, *pieces, *arguments);
    } else {
      at = PutFormedNumber(at, end, *pieces, value);
    }
  }
}

}  // namespace qxview::detail
