#include "core/formatter.h"

#include <bit>

#include "core/bits.h"
#include "core/piece_writer.h"

namespace qxview {

namespace detail {
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
      std::memcpy(&digits, kHexPairs + size_t{bytes[at]} * 2, sizeof digits);
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

static_assert(kIPv6TextSize <= kMostMade && kBitPictureSize <= kMostMade && kMostDigits <= kMostMade);
constexpr bool IsPlain(uint32_t word) { return (word & MaskAt(14, 11)) == 0; }   // no precision, no width

}  // namespace

char* PutText(char* at, char* end, FormatPiece piece, const FormatArgument& argument) {
  const Output out{at, end};
  const uint32_t form = argument.form & 0xFF;
  const bool isQuick = IsPlain(WordOf(piece)) && RoomOf(out) >= kMostMade;
  if (form == FormatArgument::kBits) return isQuick ? at + DrawBits(argument, at) : PutMade(out, piece, argument);
  if (argument.value == 0) return at;
  if (form == FormatArgument::kSlice && isQuick) {
    if (argument.length <= 0) return at;
    const size_t length = static_cast<size_t>(argument.length);
    if (RoomOf(out) >= length + kSixteen) return CopySlice(at, reinterpret_cast<const char*>(BytesOf(argument)), length);
  }
  if (form == FormatArgument::kAddress) return isQuick ? at + FormatAddress(argument, at) : PutMade(out, piece, argument);
  if (form == FormatArgument::kHex) return PutHexSlice(out, piece, argument);
  if (form == FormatArgument::kDeferred) return PutDeferred(out, piece, argument);
  return PutCutText(out, piece, argument);
}

// In the ways that most texts have them where there is room.
char* PutFormedNumber(char* at, char* end, FormatPiece piece, uint64_t given) {
  const uint64_t value = piece.wide ? given : static_cast<uint32_t>(given);
  if (value <= UINT32_MAX && end - at >= static_cast<ptrdiff_t>(kMostDigits)) {
    const uint32_t number = static_cast<uint32_t>(value);
    const Conversion conversion = static_cast<Conversion>(piece.conversion);
    if (conversion == Conversion::kHexUpper && piece.width == 0 && piece.precision <= 8) {
      return PutHexDigits(at, number, static_cast<int32_t>(piece.precision));
    }
    const bool isUnsigned = conversion == Conversion::kUnsigned && piece.precision == 0;
    if (isUnsigned && piece.width > 0 && piece.width <= 10 && number >= kPowersOfTen[piece.width - 1]) return PutDigits(at, number);
    if (isUnsigned && piece.width <= kSixteen && value < kCountedDigits) {
      return PutFilledDigits(at, number, static_cast<int32_t>(piece.width), piece.zeroFill ? '0' : ' ');
    }
  }
  return PutNumber({at, end}, piece, given);
}

char* PutPieces(char* at, char* end, const char* text, const FormatPiece* pieces, const FormatArgument* arguments) {
  for (;; ++pieces, ++arguments) {
    const uint32_t word = WordOf(*pieces);
    at = PutBytes(at, end, text, LiteralOf(word));
    text += LiteralOf(word) + ConversionLengthOf(word);
    switch (ConversionOf(word)) {
      case Conversion::kNone: return at;
      case Conversion::kCharacter:
        if (at < end) *at++ = static_cast<char>(arguments->value);
        break;
      case Conversion::kText: at = PutText(at, end, *pieces, *arguments); break;
      default: at = PutFormedNumber(at, end, *pieces, arguments->value);
    }
  }
}

}  // namespace detail

int32_t FormatPieces(char* out, int32_t size, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments) {
  char* const at = detail::WritePieces(out, out + size - 1, text, pieces, arguments);
  *at = 0;
  return static_cast<int32_t>(at - out);
}

}  // namespace qxview
