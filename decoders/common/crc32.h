// The cyclic redundancy check of 32 bits that Ethernet, ZIP and many protocols share (ISO/IEC 8802-3 3.2.9; ITU-T V.42), and
// Castagnoli's, which SCTP and storage protocols take (RFC 9260 appendix A).
#pragma once
#include <cstdint>

namespace qxview {

struct Crc32Table {
  uint32_t of[256];
};
consteval Crc32Table MakeCrc32Table(uint32_t reflected) {
  Crc32Table table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t crc = i;
    for (int32_t bit = 0; bit < 8; ++bit) crc = crc & 1 ? crc >> 1 ^ reflected : crc >> 1;
    table.of[i] = crc;
  }
  return table;
}
inline constexpr Crc32Table kCrc32Table = MakeCrc32Table(0xEDB88320), kCrc32cTable = MakeCrc32Table(0x82F63B78);

// The register over more bytes; it starts as all ones and is the check when it is inverted.
constexpr uint32_t AddCrc32(const Crc32Table& table, uint32_t crc, const uint8_t* bytes, int32_t length) {
  for (int32_t i = 0; i < length; ++i) crc = crc >> 8 ^ table.of[(crc ^ bytes[i]) & 0xFF];
  return crc;
}
constexpr uint32_t Crc32(const uint8_t* bytes, int32_t length) { return ~AddCrc32(kCrc32Table, 0xFFFFFFFF, bytes, length); }

}  // namespace qxview
