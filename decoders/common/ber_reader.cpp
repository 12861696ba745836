#include "decoders/common/ber_reader.h"

namespace qxview {

BerLength TakeBerLength(Cursor& c) {
  BerLength length{};
  length.first = TakeU8(c);
  length.isLong = (length.first.value & 0x80) != 0;
  length.value = length.first.value & 0x7F;
  length.here = length.first.here;
  if (!length.isLong) return length;
  length.octets = TakeBytes(c, length.value);
  length.here = length.octets.here;
  length.value = BerNumber(CursorOver(length.octets));
  return length;
}

BerElement TakeBer(Cursor& c) {
  constexpr uint32_t kIndefinite = 0x80;
  Cursor rest = c;
  const uint32_t identifier = TakeU8(rest).value;
  const BerLength length = TakeBerLength(rest);
  BerElement element{};
  element.here = length.here && length.first.value != kIndefinite && length.value <= INT32_MAX;
  if (element.here) {
    element.identifier = identifier;
    element.size = int64_t{Taken(rest)} - Taken(c) + length.value;
    element.contents = TakeCursor(rest, length.value);
  }
  element.whole = TakeCursor(c, element.here ? element.size : Left(c));
  if (!element.here) element.contents = c;
  return element;
}

Cursor TakeBerContents(Cursor c, uint32_t identifier) {
  const BerElement element = TakeBer(c);
  return element.here && element.identifier == identifier ? element.contents : Cursor{};
}

Cursor FindBerContents(Cursor c, uint32_t identifier) {
  constexpr int32_t kMostElements = 32;   // more than any sequence has kinds of
  for (int32_t i = 0; i < kMostElements && Left(c) > 0; ++i) {
    const BerElement element = TakeBer(c);
    if (element.here && element.identifier == identifier) return element.contents;
  }
  return Cursor{};
}

uint32_t BerNumber(const Cursor& contents) {
  const int32_t count = Left(contents);
  uint32_t number = 0;
  for (int32_t i = count > 4 ? count - 4 : 0; i < count; ++i) number = number << 8 | PeekU8(contents, i);
  return number;
}

int32_t BerInteger(const Cursor& contents) {
  const uint32_t number = BerNumber(contents);
  const int32_t count = Left(contents);
  if (count < 1 || count > 3 || !(PeekU8(contents) & 0x80)) return static_cast<int32_t>(number);
  return static_cast<int32_t>(number | UINT32_MAX << 8 * count);
}

}  // namespace qxview
