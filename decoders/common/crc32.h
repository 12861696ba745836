// The cyclic redundancy check of 32 bits that Ethernet, ZIP and many protocols share (ISO/IEC 8802-3 3.2.9; ITU-T V.42).
#pragma once
#include <cstdint>

namespace qxview {

struct Crc32Table {
  uint32_t of[256];
};
consteval Crc32Table MakeCrc32Table() {
  constexpr uint32_t kReflected = 0xEDB88320;
  Crc32Table table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t crc = i;
    for (int32_t bit = 0; bit < 8; ++bit) crc = crc & 1 ? crc >> 1 ^ kReflected : crc >> 1;
    table.of[i] = crc;
  }
  return table;
}
inline constexpr Crc32Table kCrc32Table = MakeCrc32Table();

constexpr uint32_t Crc32(const uint8_t* bytes, int32_t length) {
  uint32_t crc = 0xFFFFFFFF;
  for (int32_t i = 0; i < length; ++i) crc = crc >> 8 ^ kCrc32Table.of[(crc ^ bytes[i]) & 0xFF];
  return ~crc;
}

}  // namespace qxview
