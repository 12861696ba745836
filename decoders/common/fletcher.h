// The checksum of OSI protocols and of OSPF's link state advertisements (ISO 8473 annex C, RFC 1008): two sums modulo 255.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether the sums over the field, its checksum among the bytes, come out as 0.
inline bool FletcherHolds(const Field& field) {
  uint32_t first = 0, second = 0;
  for (Cursor c = CursorOver(field); Left(c);) {
    first = (first + TakeU8(c).value) % 255;
    second = (second + first) % 255;
  }
  return field.here && first == 0 && second == 0;
}

// "Checksum: 0x1234 (Good)"; without a verdict where `whole` is not here, and a checksum of 0 is none.
inline void AddFletcherLine(const Place& in, const Field& checksum, const Field& whole) {
  if (!whole.here || !whole.bytes) {
    AddLine(in, checksum, "Checksum: 0x%.04X", checksum.value);
    return;
  }
  AddLine(in, checksum, "Checksum: 0x%.04X (%s)", checksum.value,
          checksum.value == 0 ? "Not Used" : FletcherHolds(whole) ? "Good" : "BAD");
}

}  // namespace qxview
