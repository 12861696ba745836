// printf-style formatting whose texts are checked and taken apart at compile time.
//
// The texts of lines hold "%s %c %d %i %u %x %X" with width, precision, the 0 flag, and the sizes "l" and "I64".
// C's printf reads some of these differently on each platform; here "l" is 32 bits and "I64" 64 bits everywhere.
// A text whose conversions do not fit its arguments does not compile. A percent sign is written as an argument.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace qxview {

// Bytes of the frame shown as text, up to their first zero byte; any other byte goes into the line as it is.
struct TextSlice {
  const char* text;
  int32_t length;
};

// Bytes shown as two upper-case hexadecimal digits each, with `separator` between them (none when it is zero).
struct HexSlice {
  const uint8_t* bytes;
  int32_t length;
  char separator;
};

// An address of the frame, written in its notation when the line is formatted; an empty text for null.
enum class AddressForm : uint32_t { kIPv4, kMac, kIPv6 };
template <AddressForm kForm>
struct AddressBytes {
  const uint8_t* bytes;
};

// The picture of some bits of a value, drawn when the line is formatted.
struct BitSlice {
  uint32_t value;
  uint8_t width, firstBit, bitCount;
};

// Short texts that are made while a line is formatted: they hold their characters themselves.
template <int32_t kSize>
struct ShortText {
  char text[kSize];
};

// A text that is made when the line is formatted, of what stands behind this: `write` gives the length that it wrote.
struct DeferredText {
  int32_t (*write)(const DeferredText& text, char* out, int32_t size);
};
constexpr int32_t kMostDeferred = 80;

struct FormatArgument {
  enum Form : uint32_t { kNumber, kTerminated, kSlice, kHex, kAddress, kBits, kDeferred };
  uint64_t value;   // the number, or the address of the text
  int32_t length;   // of a slice
  uint32_t form;    // Form in the low byte; above it a separator, an AddressForm, or width, first bit and count of bits
};

// Those of one text, of which there may be none.
template <size_t kCount>
struct FormatArguments {
  FormatArgument of[kCount > 0 ? kCount : 1];
};

template <class T>
  requires(std::is_integral_v<T> || std::is_enum_v<T>)
constexpr FormatArgument ArgumentOf(T number) {
  return {static_cast<uint64_t>(static_cast<int64_t>(number)), 0, FormatArgument::kNumber};
}
inline FormatArgument ArgumentOf(const char* text) {
  return {reinterpret_cast<uintptr_t>(text), 0, FormatArgument::kTerminated};
}
inline FormatArgument ArgumentOf(const TextSlice& slice) {
  return {reinterpret_cast<uintptr_t>(slice.text), slice.length, FormatArgument::kSlice};
}
inline FormatArgument ArgumentOf(const HexSlice& slice) {
  return {reinterpret_cast<uintptr_t>(slice.bytes), slice.length,
          FormatArgument::kHex | static_cast<uint32_t>(static_cast<uint8_t>(slice.separator)) << 8};
}
template <AddressForm kForm>
FormatArgument ArgumentOf(const AddressBytes<kForm>& address) {
  return {reinterpret_cast<uintptr_t>(address.bytes), 0,
          FormatArgument::kAddress | static_cast<uint32_t>(kForm) << 8};
}
inline FormatArgument ArgumentOf(const DeferredText& text) {
  return {reinterpret_cast<uintptr_t>(&text), 0, FormatArgument::kDeferred};
}
inline FormatArgument ArgumentOf(const BitSlice& bits) {
  const uint32_t place = static_cast<uint32_t>(bits.width) | static_cast<uint32_t>(bits.firstBit) << 8 |
                         static_cast<uint32_t>(bits.bitCount) << 16;
  return {bits.value, 0, FormatArgument::kBits | place << 8};
}
template <int32_t kSize>
FormatArgument ArgumentOf(const ShortText<kSize>& made) {
  return {reinterpret_cast<uintptr_t>(made.text), 0, FormatArgument::kTerminated};
}

enum class Conversion : uint32_t { kNone, kText, kCharacter, kSigned, kUnsigned, kHexUpper, kHexLower };

// A literal run and the conversion behind it, in one word so that a call site builds its pieces from immediates.
struct FormatPiece {
  uint32_t literalLength : 10;
  uint32_t conversionLength : 4;   // characters of the conversion in the text
  uint32_t precision : 5;          // least digits of a number, most characters of a text; 0: none
  uint32_t width : 6;
  uint32_t zeroFill : 1;
  uint32_t wide : 1;               // 64 bits
  uint32_t conversion : 4;
};
static_assert(sizeof(FormatPiece) == 4);

// Not defined: a call while a text is checked is the compiler's message.
void FormatTextHasAnUnknownConversion();
void FormatTextHasMoreConversionsThanArguments();
void FormatTextHasFewerConversionsThanArguments();
void FormatTextConvertsTextButTheArgumentIsANumber();
void FormatTextConvertsANumberButTheArgumentIsText();
void FormatTextConverts32BitsButTheArgumentHas64();
void FormatTextHasTooLongALiteral();

enum class ArgumentKind { kNumber32, kNumber64, kText };
template <class T>
constexpr ArgumentKind KindOfArgument() {
  if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
    return sizeof(T) > 4 ? ArgumentKind::kNumber64 : ArgumentKind::kNumber32;
  } else {
    return ArgumentKind::kText;
  }
}

// Reads one conversion that starts behind the percent sign at text[at]; returns the place behind it.
constexpr int32_t ReadConversion(const char* text, int32_t at, FormatPiece& piece) {
  const int32_t start = at - 1;
  piece.zeroFill = text[at] == '0';
  uint32_t width = 0, precision = 0;
  bool hasPrecision = false;
  for (; text[at] >= '0' && text[at] <= '9'; ++at) width = width * 10 + static_cast<uint32_t>(text[at] - '0');
  if (text[at] == '.') {
    hasPrecision = true;
    for (++at; text[at] >= '0' && text[at] <= '9'; ++at) {
      precision = precision * 10 + static_cast<uint32_t>(text[at] - '0');
    }
  }
  if (text[at] == 'l') {
    ++at;
  } else if (text[at] == 'I' && text[at + 1] == '6' && text[at + 2] == '4') {
    piece.wide = 1;
    at += 3;
  }
  Conversion conversion = Conversion::kNone;
  switch (text[at]) {
    case 's': conversion = Conversion::kText; break;
    case 'c': conversion = Conversion::kCharacter; break;
    case 'd':
    case 'i': conversion = Conversion::kSigned; break;
    case 'u': conversion = Conversion::kUnsigned; break;
    case 'X': conversion = Conversion::kHexUpper; break;
    case 'x': conversion = Conversion::kHexLower; break;
    default: FormatTextHasAnUnknownConversion();
  }
  if (width > 60 || precision > 30 || at - start > 14) FormatTextHasAnUnknownConversion();
  if (hasPrecision && (conversion == Conversion::kCharacter || (conversion == Conversion::kText && precision == 0))) {
    FormatTextHasAnUnknownConversion();
  }
  piece.width = width;
  piece.precision = precision;
  piece.conversion = static_cast<uint32_t>(conversion);
  piece.conversionLength = static_cast<uint32_t>(at + 1 - start);
  return at + 1;
}

constexpr uint32_t LiteralLength(int32_t length) {
  if (length > 1023) FormatTextHasTooLongALiteral();   // the bits that a piece has for it
  return static_cast<uint32_t>(length);
}

// A text taken apart for arguments of these types. Its constructor runs at compile time only.
template <class... Args>
struct FormatText {
  static constexpr int32_t kCount = static_cast<int32_t>(sizeof...(Args));
  const char* text;
  FormatPiece pieces[kCount + 1];

  template <size_t kSize>
  consteval FormatText(const char (&literal)[kSize]) : text(literal), pieces{} {  // NOLINT: implicit by design
    constexpr ArgumentKind kinds[kCount + 1] = {KindOfArgument<Args>()..., ArgumentKind::kText};
    int32_t count = 0, literalStart = 0, at = 0;
    while (literal[at] != 0) {
      if (literal[at] != '%') {
        ++at;
        continue;
      }
      if (count == kCount) FormatTextHasMoreConversionsThanArguments();
      FormatPiece& piece = pieces[count];
      piece.literalLength = LiteralLength(at - literalStart);
      at = literalStart = ReadConversion(literal, at + 1, piece);
      const bool wantsText = piece.conversion == static_cast<uint32_t>(Conversion::kText);
      if (wantsText && kinds[count] != ArgumentKind::kText) FormatTextConvertsTextButTheArgumentIsANumber();
      if (!wantsText && kinds[count] == ArgumentKind::kText) FormatTextConvertsANumberButTheArgumentIsText();
      if (!piece.wide && kinds[count] == ArgumentKind::kNumber64) FormatTextConverts32BitsButTheArgumentHas64();
      ++count;
    }
    if (count != kCount) FormatTextHasFewerConversionsThanArguments();
    pieces[count].literalLength = LiteralLength(at - literalStart);
  }
};

// Writes the text into `out` of `size` bytes, cut to fit and terminated; returns the length written. size >= 1.
int32_t FormatPieces(char* out, int32_t size, const char* text, const FormatPiece* pieces,
                     const FormatArgument* arguments);

// As C's snprintf, but returns the length written and does nothing for a null buffer or a size below 1.
template <class... Args>
int32_t FormatInto(char* out, int32_t size, FormatText<std::type_identity_t<Args>...> text, const Args&... args) {
  if (!out || size < 1) return 0;
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  return FormatPieces(out, size, text.text, text.pieces, arguments.of);
}

// Appends behind the text that `out` holds, within `size` bytes in all; returns the new length.
template <class... Args>
int32_t AppendFormat(char* out, int32_t size, FormatText<std::type_identity_t<Args>...> text, const Args&... args) {
  if (!out || size < 1) return 0;
  const int32_t used = static_cast<int32_t>(strnlen(out, static_cast<size_t>(size)));
  if (used >= size) return used;
  const FormatArguments<sizeof...(Args)> arguments = {{ArgumentOf(args)...}};
  return used + FormatPieces(out + used, size - used, text.text, text.pieces, arguments.of);
}

}  // namespace qxview
