// The TLS record header (RFC 8446, RFC 5246): whether a payload starts with one.
//
//   0              1         2         3
//   content type   major 3   minor     length (2)
#pragma once
#include <cstdint>

#include "core/cursor.h"

namespace qxview {

inline bool StartsTlsRecord(const uint8_t* data, int32_t length) {
  constexpr uint32_t kChangeCipherSpec = 20, kHeartbeat = 24;
  constexpr uint32_t kMostRecordLength = 16384 + 2048;
  if (!data || length < 5) return false;
  return data[0] >= kChangeCipherSpec && data[0] <= kHeartbeat && data[1] == 3 && data[2] <= 4 &&
         ReadU16(data + 3) <= kMostRecordLength;
}

}  // namespace qxview
