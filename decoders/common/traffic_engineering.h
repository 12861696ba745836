// What link state protocols say of links for traffic engineering alike (RFC 3630, RFC 5305): bandwidths are floating point
// numbers of bytes a second.
#pragma once
#include <cstring>

#include "core/rows.h"

namespace qxview {

inline void ShowBandwidth(const Place& in, const Field& field, const char* label) {
  constexpr float kMost = 9e18f;
  const uint32_t bits = PeekU32(field);
  float number;
  std::memcpy(&number, &bits, sizeof number);
  if (number >= 0 && number < kMost) {
    const uint64_t whole = static_cast<uint64_t>(number);
    AddLine(in, field, "%s: %I64u bytes/s (%I64u bits/s)", label, whole, whole * 8);
  } else {
    AddLine(in, field, "%s: 0x%.08X", label, bits);
  }
}

// What a switching capability is of (RFC 4203, RFC 5307 and the registry of GMPLS signaling parameters).
inline constexpr auto kSwitchingNames = SortedNames({
    {1, "Packet-Switch Capable 1"}, {2, "Packet-Switch Capable 2"}, {3, "Packet-Switch Capable 3"},
    {4, "Packet-Switch Capable 4"}, {30, "Ethernet Virtual Private Line"}, {40, "802.1 PBB-TE"},
    {51, "Layer-2 Switch Capable"}, {100, "Time-Division Multiplexing"}, {101, "OTN-TDM Capable"},
    {102, "Data-Channel Switching Capable"}, {103, "SCSI"}, {125, "DCSC"}, {150, "Lambda-Switch Capable"},
    {151, "WSON-LSC"}, {152, "Flexi-Grid-LSC"}, {200, "Fiber-Switch Capable"}});
inline constexpr auto kEncodingNames = SortedNames({
    {1, "Packet"}, {2, "Ethernet"}, {3, "ANSI/ETSI PDH"}, {4, "Reserved"}, {5, "SDH/SONET"}, {6, "Reserved"},
    {7, "Digital Wrapper"}, {8, "Lambda"}, {9, "Fiber"}, {10, "Reserved"}, {11, "Fiber Channel"}, {12, "G.709 ODUk"},
    {13, "G.709 Optical Channel"}, {14, "Line"}});
// Algorithms of segment routing (IANA's IGP algorithm types).
inline const char* NameAlgorithm(uint32_t algorithm) {
  return algorithm == 0 ? "Shortest Path First" : algorithm == 1 ? "Strict Shortest Path First"
         : algorithm >= 128 ? "Flexible Algorithm" : kUnknown;
}
// Kinds of maximum SID depth (IANA's IGP MSD types).
inline constexpr auto kDepthNames = SortedNames({
    {0, "Reserved"}, {1, "Base MPLS Imposition MSD"}, {2, "ERLD-MSD"}, {41, "SRH Max SL"}, {42, "SRH Max End Pop"},
    {44, "SRH Max H.encaps"}, {45, "SRH Max End D"}});

}  // namespace qxview
