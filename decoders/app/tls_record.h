// The TLS record header (RFC 8446, RFC 5246): whether a payload starts with one.
//
//   0              1         2         3
//   content type   major 3   minor     length (2)
#pragma once
#include <cstdint>

#include "core/cursor.h"

namespace qxview {

inline bool StartsTlsRecord(const Cursor& c) {
  constexpr uint32_t kChangeCipherSpec = 20, kHeartbeat = 24;
  constexpr uint32_t kMostRecordLength = 16384 + 2048;
  const uint32_t type = PeekU8(c);
  return Left(c) >= 5 && type >= kChangeCipherSpec && type <= kHeartbeat && PeekU8(c, 1) == 3 && PeekU8(c, 2) <= 4 &&
         PeekU16(c, 3) <= kMostRecordLength;
}
inline bool StartsTlsRecord(const uint8_t* data, int32_t length) {
  return StartsTlsRecord(MakeCursor(data, 0, data ? length : 0));
}

}  // namespace qxview
