#include "core/formatter.h"

#include "core/bits.h"
#include "core/bounded_text.h"
#include "core/digits.h"
#include "core/sixteen.h"

namespace qxview {
namespace {

// Where a text goes on, and the terminator's place when it is full.
struct Output {
  char* at;
  char* end;
};

inline size_t RoomOf(const Output& out) { return static_cast<size_t>(out.end - out.at); }

inline void PutBytes(Output& out, const char* text, size_t length) {
  const size_t room = RoomOf(out);
  if (length > room) [[unlikely]] length = room;
  CopyShort(out.at, text, length);
  out.at += length;
}

inline void PutFill(Output& out, char fill, int32_t count) {
  for (; count > 0 && out.at < out.end; --count) *out.at++ = fill;
}

inline bool IsPlain(FormatPiece piece) { return piece.width == 0 && piece.precision == 0; }

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

[[gnu::noinline]] char* PutHexSlice(const Output& whole, FormatPiece piece, const FormatArgument& argument) {
  Output out{whole.at, whole.at + CutLength(piece, RoomOf(whole))};
  const uint8_t* bytes = BytesOf(argument);
  const char separator = static_cast<char>(argument.form >> 8);
  int32_t i = 0;
  // Each byte with a separator behind it, which the next one or the end takes back.
  for (const int32_t step = separator != 0 ? 3 : 2; i < argument.length && out.end - out.at >= 4; ++i) {
    std::memcpy(out.at, kHexPairs + 2 * bytes[i], 2);
    out.at[2] = separator;
    out.at += step;
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

inline char* PutText(Output& out, FormatPiece piece, const FormatArgument& argument) {
  constexpr size_t kMostMade = 48;   // of addresses and pictures, with their terminator
  static_assert(kIPv6TextSize <= kMostMade && kBitPictureSize <= kMostMade);
  const uint32_t form = argument.form & 0xFF;
  const char* text = reinterpret_cast<const char*>(BytesOf(argument));
  if (form == FormatArgument::kTerminated) {
    if (!text) return out.at;
    if (!IsPlain(piece)) return PutCutText(out, piece, argument);
    PutBytes(out, text, LengthOfText(text));
    return out.at;
  }
  const bool isQuick = IsPlain(piece) && RoomOf(out) >= kMostMade;
  if (form == FormatArgument::kBits) return isQuick ? out.at + DrawBits(argument, out.at) : PutMade(out, piece, argument);
  if (!text) return out.at;
  if (form == FormatArgument::kAddress) return isQuick ? out.at + FormatAddress(argument, out.at) : PutMade(out, piece, argument);
  if (form == FormatArgument::kHex) return PutHexSlice(out, piece, argument);
  return PutCutText(out, piece, argument);
}

}  // namespace

int32_t FormatPieces(char* out, int32_t size, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments) {
  Output to{out, out + size - 1};
  for (;; ++pieces, ++arguments) {
    const FormatPiece piece = *pieces;
    if (piece.literalLength > 0) PutBytes(to, text, piece.literalLength);
    text += piece.literalLength + piece.conversionLength;
    switch (static_cast<Conversion>(piece.conversion)) {
      case Conversion::kNone:
        *to.at = 0;
        return static_cast<int32_t>(to.at - out);
      case Conversion::kText:
        to.at = PutText(to, piece, *arguments);
        break;
      case Conversion::kCharacter:
        PutFill(to, static_cast<char>(arguments->value), 1);
        break;
      case Conversion::kUnsigned: {
        const uint64_t value = piece.wide ? arguments->value : static_cast<uint32_t>(arguments->value);
        if (value >= kCountedDigits || RoomOf(to) < kMostDigits) {
          to.at = PutNumber(to, piece, arguments->value);
        } else if (IsPlain(piece)) {
          to.at = PutDigits(to.at, static_cast<uint32_t>(value));
        } else if (piece.precision == 0 && piece.zeroFill && piece.width <= kSixteen) {
          to.at = PutFilledDigits(to.at, static_cast<uint32_t>(value), static_cast<int32_t>(piece.width));
        } else {
          to.at = PutNumber(to, piece, arguments->value);
        }
        break;
      }
      case Conversion::kHexUpper: {
        const uint64_t value = piece.wide ? arguments->value : static_cast<uint32_t>(arguments->value);
        if (piece.width == 0 && piece.precision <= 8 && value <= UINT32_MAX && RoomOf(to) >= kMostDigits) {
          to.at = PutHexDigits(to.at, static_cast<uint32_t>(value), static_cast<int32_t>(piece.precision));
        } else {
          to.at = PutNumber(to, piece, arguments->value);
        }
        break;
      }
      default:
        to.at = PutNumber(to, piece, arguments->value);
    }
  }
}

}  // namespace qxview
