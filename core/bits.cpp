#include "core/bits.h"

#include "core/octet_picture.h"

namespace qxview {

uint32_t FormatBits(uint32_t value, int32_t width, char* picture, int32_t firstBit, int32_t bitCount) {
  if (firstBit < 0) firstBit = 0;
  if (firstBit > width) firstBit = width;
  if (bitCount < 0) bitCount = 0;
  if (bitCount > width - firstBit) bitCount = width - firstBit;
  const uint64_t field = ((uint64_t{1} << bitCount) - 1) << (width - firstBit - bitCount);
  if (width == 8) {
    DrawOctet(value & 0xFF, static_cast<uint32_t>(field), picture);
    picture[8] = 0;
    return static_cast<uint32_t>((value & field) >> (width - firstBit - bitCount));
  }
  char* at = picture;
  for (int32_t shift = width - 8; shift >= 0; shift -= 8) {
    if (at != picture) *at++ = ' ';
    DrawOctet(value >> shift & 0xFF, static_cast<uint32_t>(field >> shift) & 0xFF, at);
    at += 8;
  }
  *at = 0;
  return static_cast<uint32_t>((value & field) >> (width - firstBit - bitCount));
}

uint32_t FormatBitField8(uint32_t value, char* picture, int32_t firstBit, int32_t bitCount) {
  if (firstBit >= 0 && bitCount >= 0 && firstBit + bitCount <= 8) {
    return FormatBits(value & 0xFF, 8, picture, firstBit, bitCount);
  }
  constexpr int32_t kMostPositions = 64;
  if (firstBit < 0) firstBit = 0;
  if (firstBit > kMostPositions) firstBit = kMostPositions;
  if (bitCount < 0) bitCount = 0;
  if (bitCount > kMostPositions - firstBit) bitCount = kMostPositions - firstBit;
  const int32_t positions = firstBit + bitCount > 8 ? firstBit + bitCount : 8;
  uint32_t field = 0;
  for (int32_t i = 0; i < positions; ++i) {
    const uint32_t bit = i < 8 ? value >> (7 - i) & 1 : 0;   // what lies past the byte is not there
    const bool inField = i >= firstBit && i < firstBit + bitCount;
    picture[i] = !inField ? '.' : bit ? '1' : '0';
    if (inField) field = field << 1 | bit;
  }
  picture[positions] = 0;
  return field;
}

uint32_t FormatBitField32(uint32_t value, char* picture, int32_t firstBit, int32_t bitCount) {
  return FormatBits(value, 32, picture, firstBit, bitCount);
}

}  // namespace qxview
