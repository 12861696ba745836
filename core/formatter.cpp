#include "core/formatter.h"

#include "core/bits.h"
#include "core/bounded_text.h"
#include "core/digits.h"

namespace qxview {
namespace {

struct Output {
  char* at;
  char* end;   // the terminator's place when the buffer is full
};

inline void PutBytes(Output& out, const char* text, size_t length) {
  const size_t room = static_cast<size_t>(out.end - out.at);
  if (length > room) length = room;
  CopyShort(out.at, text, length);
  out.at += length;
}

inline void PutFill(Output& out, char fill, int32_t count) {
  for (; count > 0 && out.at < out.end; --count) *out.at++ = fill;
}

void PutNumber(Output& out, const FormatPiece& piece, uint64_t value) {
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
    case Conversion::kUnsigned:
      if (value < 10 && piece.precision < 2 && piece.width == 0) {
        return PutFill(out, static_cast<char>('0' + value), 1);
      }
      at = WriteDecimal(end, piece.wide ? value : static_cast<uint32_t>(value));
      break;
    default:
      at = WriteHex(end, piece.wide ? value : static_cast<uint32_t>(value),
                    static_cast<Conversion>(piece.conversion) == Conversion::kHexUpper ? kHexUpper : kHexLower);
  }
  const int32_t wanted = static_cast<int32_t>(piece.precision);
  while (end - at < wanted) *--at = '0';
  if (piece.width == 0) {
    if (negative) *--at = '-';
    PutBytes(out, at, static_cast<size_t>(end - at));
    return;
  }
  const int32_t fill = static_cast<int32_t>(piece.width) - static_cast<int32_t>(end - at) - (negative ? 1 : 0);
  if (!piece.zeroFill) PutFill(out, ' ', fill);
  if (negative) PutFill(out, '-', 1);
  if (piece.zeroFill) PutFill(out, '0', fill);
  PutBytes(out, at, static_cast<size_t>(end - at));
}

// The length of a text that the conversion's precision cuts.
inline size_t CutLength(const FormatPiece& piece, size_t length) {
  return piece.precision != 0 && length > piece.precision ? piece.precision : length;
}

void PutHexSlice(Output& whole, const FormatPiece& piece, const FormatArgument& argument) {
  Output out{whole.at, whole.at + CutLength(piece, static_cast<size_t>(whole.end - whole.at))};
  const uint8_t* bytes = reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(argument.value));
  const char separator = static_cast<char>(argument.form >> 8);
  for (int32_t i = 0; i < argument.length && out.at < out.end; ++i) {
    if (i > 0 && separator != 0) PutFill(out, separator, 1);
    PutBytes(out, kHexPairs + 2 * bytes[i], 2);
  }
  whole.at = out.at;
}

inline void PutFilled(Output& out, const FormatPiece& piece, const char* text, size_t length) {
  if (piece.width > length) PutFill(out, ' ', static_cast<int32_t>(piece.width - length));
  PutBytes(out, text, length);
}

void PutAddress(Output& out, const FormatPiece& piece, const FormatArgument& argument) {
  const uint8_t* address = reinterpret_cast<const uint8_t*>(static_cast<uintptr_t>(argument.value));
  char text[kIPv6TextSize];
  int32_t length = 0;
  switch (static_cast<AddressForm>(argument.form >> 8)) {
    case AddressForm::kIPv4: length = FormatIPv4(address, text); break;
    case AddressForm::kMac: length = FormatMac(address, text); break;
    case AddressForm::kIPv6: length = FormatIPv6(address, text); break;
  }
  PutFilled(out, piece, text, CutLength(piece, static_cast<size_t>(length)));
}

void PutBits(Output& out, const FormatPiece& piece, const FormatArgument& argument) {
  char picture[kBitPictureSize];
  const int32_t width = argument.form >> 8 & 0xFF;
  FormatBits(static_cast<uint32_t>(argument.value), width, picture, argument.form >> 16 & 0xFF,
             argument.form >> 24 & 0xFF);
  PutFilled(out, piece, picture, CutLength(piece, static_cast<size_t>(width + width / 8 - 1)));
}

inline void PutText(Output& out, const FormatPiece& piece, const FormatArgument& argument) {
  const char* text = reinterpret_cast<const char*>(static_cast<uintptr_t>(argument.value));
  const uint32_t form = argument.form & 0xFF;
  if (form == FormatArgument::kBits) return PutBits(out, piece, argument);
  if (!text) return;
  if (form == FormatArgument::kHex) return PutHexSlice(out, piece, argument);
  if (form == FormatArgument::kAddress) return PutAddress(out, piece, argument);
  size_t length = 0;
  if (form == FormatArgument::kTerminated) {
    length = piece.precision == 0 ? std::strlen(text) : strnlen(text, piece.precision);
  } else if (argument.length > 0) {
    length = strnlen(text, CutLength(piece, static_cast<size_t>(argument.length)));
  }
  PutFilled(out, piece, text, length);
}

}  // namespace

int32_t FormatPieces(char* out, int32_t size, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments) {
  Output to{out, out + size - 1};
  for (;; ++pieces, ++arguments) {
    const FormatPiece piece = *pieces;
    PutBytes(to, text, piece.literalLength);
    text += piece.literalLength + piece.conversionLength;
    switch (static_cast<Conversion>(piece.conversion)) {
      case Conversion::kNone:
        *to.at = 0;
        return static_cast<int32_t>(to.at - out);
      case Conversion::kText:
        PutText(to, piece, *arguments);
        break;
      case Conversion::kCharacter:
        PutFill(to, static_cast<char>(arguments->value), 1);
        break;
      default:
        PutNumber(to, piece, arguments->value);
    }
  }
}

}  // namespace qxview
