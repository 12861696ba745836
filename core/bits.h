// Bit pictures: a field's bits drawn as digits, the rest of its octet as full stops ("..101...").
#pragma once
#include <cstdint>

#include "core/formatter.h"

namespace qxview {

// Writes an eight-position picture of the byte, most significant bit first, and a terminator: the `bitCount`
// positions from `firstBit` on hold digits, the others full stops. A field that runs past position 8 lengthens the
// picture; it is bounded at 64 positions. Returns the field's value.
uint32_t FormatBitField8(uint32_t value, char* picture, int32_t firstBit, int32_t bitCount);

// The same for 32 bits, with a blank after every eight positions: 35 characters.
uint32_t FormatBitField32(uint32_t value, char* picture, int32_t firstBit, int32_t bitCount);

// The same for the `width` (8, 16, 24 or 32) low bits of the value, high octet first.
uint32_t FormatBits(uint32_t value, int32_t width, char* picture, int32_t firstBit, int32_t bitCount);

constexpr int32_t kBitPictureSize = 36;   // of up to 32 bits

// How lines name a bit.
constexpr const char* TrueOrFalse(uint32_t bit) { return bit ? "True" : "False"; }
constexpr const char* SetOrNotSet(uint32_t bit) { return bit ? "Set" : "Not Set"; }

// Some bits of a field: their picture, an argument of a line's text, and their value.
struct BitPicture {
  BitSlice picture;
  uint32_t value;
};

}  // namespace qxview
