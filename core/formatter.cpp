#include "core/formatter.h"

#include <bit>

#include "core/bits.h"
#include "core/bounded_text.h"
#include "core/digits.h"
#include "core/octet_picture.h"
#include "core/sixteen.h"

namespace qxview {
namespace {

// Where a text goes on, and the terminator's place when it is full.
struct Output {
  char* at;
  char* end;
};

inline size_t RoomOf(const Output& out) { return static_cast<size_t>(out.end - out.at); }

inline char* PutBytes(char* at, const char* end, const char* text, size_t length) {
  const size_t room = static_cast<size_t>(end - at);
  if (length > room) [[unlikely]] length = room;
  CopyShort(at, text, length);
  return at + length;
}
inline void PutBytes(Output& out, const char* text, size_t length) { out.at = PutBytes(out.at, out.end, text, length); }

inline void PutFill(Output& out, char fill, int32_t count) {
  for (; count > 0 && out.at < out.end; --count) *out.at++ = fill;
}

constexpr size_t kMostDigits = 20;

[[gnu::noinline]] char* PutNumber(Output out, FormatPiece piece, uint64_t value) {
  char digits[64];
  char* const end = digits + sizeof digits;
  char* at = end;
  bool negative = false;
  switch (static_cast<Conversion>(piece.conversion)) {
    case Conversion::kSigned: {
      const int64_t number = piece.wide ? static_cast<int64_t>(value) : static_cast<int32_t>(value);
      negative = number < 0;
      at = WriteDecimal(end, negative ? 0 - static_cast<uint64_t>(number) : static_cast<uint64_t>(number));
      break;
    }
    case Conversion::kUnsigned: at = WriteDecimal(end, piece.wide ? value : static_cast<uint32_t>(value)); break;
    default:
      at = WriteHex(end, piece.wide ? value : static_cast<uint32_t>(value),
                    static_cast<Conversion>(piece.conversion) == Conversion::kHexUpper ? kHexUpper : kHexLower);
  }
  const int32_t wanted = static_cast<int32_t>(piece.precision);
  while (end - at < wanted) *--at = '0';
  const int32_t fill = static_cast<int32_t>(piece.width) - static_cast<int32_t>(end - at) - (negative ? 1 : 0);
  if (!piece.zeroFill) PutFill(out, ' ', fill);
  if (negative) PutFill(out, '-', 1);
  if (piece.zeroFill) PutFill(out, '0', fill);
  PutBytes(out, at, static_cast<size_t>(end - at));
  return out.at;
}

// The length of a text that the conversion's precision cuts.
inline size_t CutLength(FormatPiece piece, size_t length) {
  return piece.precision != 0 && length > piece.precision ? piece.precision : length;
}

inline const uint8_t* BytesOf(const FormatArgument& argument) {
  return reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(argument.value));
}

[[gnu::noinline]] char* PutHexSlice(const Output whole, FormatPiece piece, const FormatArgument& argument) {
  Output out{whole.at, whole.at + CutLength(piece, RoomOf(whole))};
  const uint8_t* bytes = BytesOf(argument);
  const char separator = static_cast<char>(argument.form >> 8);
  int32_t i = 0;
  // Each byte with a separator behind it, which the next one or the end takes back.
  const int32_t step = separator != 0 ? 3 : 2;
  if (std::endian::native == std::endian::little) {   // four bytes in a word or two
    const uint64_t between = static_cast<uint8_t>(separator);
    const auto pair = [&](int32_t at) {
      uint16_t digits;
      std::memcpy(&digits, kHexPairs + 2 * bytes[at], sizeof digits);
      return uint64_t{digits};
    };
    for (; i + 4 <= argument.length && out.end - out.at >= 4 * 4; i += 4, out.at += 4 * step) {
      if (separator == 0) {
        const uint64_t all = pair(i) | pair(i + 1) << 16 | pair(i + 2) << 32 | pair(i + 3) << 48;
        std::memcpy(out.at, &all, sizeof all);
        continue;
      }
      const uint64_t first = pair(i) | between << 16 | pair(i + 1) << 24 | between << 40 | pair(i + 2) << 48;
      const uint32_t second = static_cast<uint32_t>(between | pair(i + 3) << 8 | between << 24);
      std::memcpy(out.at, &first, sizeof first);
      std::memcpy(out.at + sizeof first, &second, sizeof second);
    }
  }
  for (; i < argument.length && out.end - out.at >= 4; ++i, out.at += step) {
    std::memcpy(out.at, kHexPairs + 2 * bytes[i], 2);
    out.at[2] = separator;
  }
  if (i > 0 && separator != 0) --out.at;
  for (; i < argument.length && out.at < out.end; ++i) {
    if (i > 0 && separator != 0) PutFill(out, separator, 1);
    PutBytes(out, kHexPairs + 2 * bytes[i], 2);
  }
  return out.at;
}

inline void PutFilled(Output& out, FormatPiece piece, const char* text, size_t length) {
  if (piece.width > length) PutFill(out, ' ', static_cast<int32_t>(piece.width - length));
  PutBytes(out, text, length);
}

inline int32_t FormatAddress(const FormatArgument& argument, char* out) {
  const uint8_t* address = BytesOf(argument);
  switch (static_cast<AddressForm>(argument.form >> 8)) {
    case AddressForm::kIPv4: return FormatIPv4(address, out);
    case AddressForm::kMac: return FormatMac(address, out);
    case AddressForm::kIPv6: return FormatIPv6(address, out);
  }
  return 0;
}

inline int32_t DrawBits(const FormatArgument& argument, char* out) {
  const int32_t width = argument.form >> 8 & 0xFF;
  FormatBits(static_cast<uint32_t>(argument.value), width, out, argument.form >> 16 & 0xFF, argument.form >> 24 & 0xFF);
  return width + width / 8 - 1;
}

// A text that is made, where it is not cut, filled, or near the end.
[[gnu::noinline]] char* PutMade(Output out, FormatPiece piece, const FormatArgument& argument) {
  char made[kIPv6TextSize > kBitPictureSize ? kIPv6TextSize : kBitPictureSize];
  const bool isBits = (argument.form & 0xFF) == FormatArgument::kBits;
  const int32_t length = isBits ? DrawBits(argument, made) : FormatAddress(argument, made);
  PutFilled(out, piece, made, CutLength(piece, static_cast<size_t>(length)));
  return out.at;
}

[[gnu::noinline]] char* PutDeferred(Output out, FormatPiece piece, const FormatArgument& argument) {
  char made[kMostDeferred];
  const auto& text = *reinterpret_cast<const DeferredText*>(BytesOf(argument));
  const int32_t length = text.write(text, made, sizeof made);
  PutFilled(out, piece, made, CutLength(piece, static_cast<size_t>(length)));
  return out.at;
}

[[gnu::noinline]] char* PutCutText(Output out, FormatPiece piece, const FormatArgument& argument) {
  const char* text = reinterpret_cast<const char*>(BytesOf(argument));
  size_t length = 0;
  if ((argument.form & 0xFF) == FormatArgument::kTerminated) {
    length = piece.precision == 0 ? std::strlen(text) : strnlen(text, piece.precision);
  } else if (argument.length > 0) {
    length = strnlen(text, CutLength(piece, static_cast<size_t>(argument.length)));
  }
  PutFilled(out, piece, text, length);
  return out.at;
}

// The fields of a piece out of its word: the innermost loop looks at few of them.
constexpr uint32_t BitsAt(uint32_t word, int32_t first, int32_t count) {
  const int32_t shift = std::endian::native == std::endian::little ? first : 32 - first - count;
  return word >> shift & ((1u << count) - 1);
}
inline uint32_t WordOf(FormatPiece piece) {
  uint32_t word;
  std::memcpy(&word, &piece, sizeof word);
  return word;
}
constexpr uint32_t LiteralOf(uint32_t word) { return BitsAt(word, 0, 10); }
constexpr uint32_t ConversionLengthOf(uint32_t word) { return BitsAt(word, 10, 4); }
constexpr bool IsPlain(uint32_t word) { return BitsAt(word, 14, 11) == 0; }   // no precision, no width
constexpr uint32_t PrecisionOf(uint32_t word) { return BitsAt(word, 14, 5); }
constexpr uint32_t WidthOf(uint32_t word) { return BitsAt(word, 19, 6); }
constexpr bool IsWide(uint32_t word) { return BitsAt(word, 26, 1) != 0; }
constexpr Conversion ConversionOf(uint32_t word) { return static_cast<Conversion>(BitsAt(word, 27, 4)); }

constexpr uint32_t MaskAt(int32_t first, int32_t count) {
  return ((1u << count) - 1) << (std::endian::native == std::endian::little ? first : 32 - first - count);
}
// Whether this is the conversion, with neither precision nor width.
constexpr bool IsPlain(uint32_t word, Conversion conversion) {
  constexpr uint32_t kWidths = MaskAt(14, 11), kConversion = MaskAt(27, 4);
  constexpr uint32_t kOne = kConversion & ~(kConversion << 1);   // the lowest bit of it
  return (word & (kWidths | kConversion)) == kOne * static_cast<uint32_t>(conversion);
}

constexpr size_t kMostMade = 48;   // of addresses, pictures and numbers, with their terminator
static_assert(kIPv6TextSize <= kMostMade && kBitPictureSize <= kMostMade && kMostDigits <= kMostMade);

// The other forms of texts than a terminated one that is neither cut nor filled.
[[gnu::noinline]] char* PutText(Output out, FormatPiece piece, const FormatArgument& argument) {
  const uint32_t form = argument.form & 0xFF;
  const bool isQuick = IsPlain(WordOf(piece)) && RoomOf(out) >= kMostMade;
  if (form == FormatArgument::kBits) return isQuick ? out.at + DrawBits(argument, out.at) : PutMade(out, piece, argument);
  if (argument.value == 0) return out.at;
  if (form == FormatArgument::kAddress) return isQuick ? out.at + FormatAddress(argument, out.at) : PutMade(out, piece, argument);
  if (form == FormatArgument::kHex) return PutHexSlice(out, piece, argument);
  if (form == FormatArgument::kDeferred) return PutDeferred(out, piece, argument);
  return PutCutText(out, piece, argument);
}

// Numbers that are filled or have a least count of digits, in the ways that most texts have them.
[[gnu::noinline]] char* PutFormedNumber(Output out, FormatPiece piece, uint64_t given) {
  const uint64_t value = piece.wide ? given : static_cast<uint32_t>(given);
  if (value <= UINT32_MAX && RoomOf(out) >= kMostDigits) {
    const uint32_t number = static_cast<uint32_t>(value);
    const Conversion conversion = static_cast<Conversion>(piece.conversion);
    if (conversion == Conversion::kHexUpper && piece.width == 0 && piece.precision <= 8) {
      return PutHexDigits(out.at, number, static_cast<int32_t>(piece.precision));
    }
    if (conversion == Conversion::kUnsigned && piece.precision == 0 && piece.width <= kSixteen && value < kCountedDigits) {
      return PutFilledDigits(out.at, number, static_cast<int32_t>(piece.width), piece.zeroFill ? '0' : ' ');
    }
  }
  return PutNumber(out, piece, given);
}

// What every piece may write without looking at the room that is left: a literal in two steps of sixteen, and what is made.
constexpr size_t kMostQuickLiteral = 2 * kSixteen;
constexpr ptrdiff_t kAmpleRoom = 96;
static_assert(kAmpleRoom >= static_cast<ptrdiff_t>(kMostQuickLiteral + kMostMade) && kMostMade >= 2 * kSixteen);

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

// A terminated text in front of ample room; what is longer than sixteen characters is copied up to the end.
inline char* PutTerminated(char* at, const char* end, const char* text) {
  if (MayRead(text, kSixteen)) [[likely]] {
    const uint32_t length = CopyUpToZero(at, text);
    if (length < kSixteen) [[likely]] return at + length;
    at += kSixteen;
    text += kSixteen;
  }
  return PutBytes(at, end, text, LengthOfText(text));
}

// The rest of a text where its end is near, piece by piece.
[[gnu::noinline]] char* PutPieces(char* at, char* end, const char* text, const FormatPiece* pieces,
                                  const FormatArgument* arguments) {
  for (;; ++pieces, ++arguments) {
    const uint32_t word = WordOf(*pieces);
    at = PutBytes(at, end, text, LiteralOf(word));
    text += LiteralOf(word) + ConversionLengthOf(word);
    switch (ConversionOf(word)) {
      case Conversion::kNone: return at;
      case Conversion::kCharacter:
        if (at < end) *at++ = static_cast<char>(arguments->value);
        break;
      case Conversion::kText: at = PutText({at, end}, *pieces, *arguments); break;
      default: at = PutFormedNumber({at, end}, *pieces, arguments->value);
    }
  }
}

}  // namespace

int32_t FormatPieces(char* out, int32_t size, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments) {
  char* at = out;
  char* const end = out + size - 1;
  for (;; ++pieces, ++arguments) {
    if (end - at < kAmpleRoom) [[unlikely]] {
      at = PutPieces(at, end, text, pieces, arguments);
      break;
    }
    const uint32_t word = WordOf(*pieces);
    const size_t literal = LiteralOf(word);
    if (literal <= kMostQuickLiteral && MayRead(text, kMostQuickLiteral)) [[likely]] {
      CopySixteen(at, text);
      CopySixteen(at + kSixteen, text + kSixteen);
    } else {
      if (static_cast<size_t>(end - at) < literal + kMostMade) {
        at = PutPieces(at, end, text, pieces, arguments);
        break;
      }
      CopyShort(at, text, literal);
    }
    at += literal;
    text += literal + ConversionLengthOf(word);
    if (IsPlain(word, Conversion::kText)) {
      const FormatArgument& argument = *arguments;
      if (argument.form == FormatArgument::kTerminated) {
        if (argument.value) at = PutTerminated(at, end, reinterpret_cast<const char*>(BytesOf(argument)));
      } else if (char* drawn; (argument.form & 0xFF) == FormatArgument::kBits && (drawn = PutShortBits(at, argument)) != nullptr) {
        at = drawn;
      } else {
        at = PutText({at, end}, *pieces, argument);
      }
      continue;
    }
    switch (ConversionOf(word)) {
      case Conversion::kNone: *at = 0; return static_cast<int32_t>(at - out);
      case Conversion::kCharacter: *at++ = static_cast<char>(arguments->value); continue;
      case Conversion::kText: at = PutText({at, end}, *pieces, *arguments); continue;
      case Conversion::kSigned:
      case Conversion::kUnsigned: {
        // A negative number is one of many digits here.
        const uint64_t value = IsWide(word) ? arguments->value : static_cast<uint32_t>(arguments->value);
        if (IsPlain(word) && value < kCountedDigits) {
          at = PutDigits(at, static_cast<uint32_t>(value));
        } else {
          at = PutFormedNumber({at, end}, *pieces, arguments->value);
        }
        continue;
      }
      case Conversion::kHexUpper: {
        const uint64_t value = IsWide(word) ? arguments->value : static_cast<uint32_t>(arguments->value);
        if (value <= UINT32_MAX && WidthOf(word) == 0 && PrecisionOf(word) <= 8) {
          at = PutHexDigits(at, static_cast<uint32_t>(value), static_cast<int32_t>(PrecisionOf(word)));
        } else {
          at = PutFormedNumber({at, end}, *pieces, arguments->value);
        }
        continue;
      }
      default: at = PutFormedNumber({at, end}, *pieces, arguments->value);
    }
  }
  *at = 0;
  return static_cast<int32_t>(at - out);
}

}  // namespace qxview
