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

// One for each priority of eight.
inline constexpr auto kLspBandwidths = Rows<NoValues>({
    Shown(4, "Maximum LSP Bandwidth Priority 0", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 1", ShowBandwidth),
    Shown(4, "Maximum LSP Bandwidth Priority 2", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 3", ShowBandwidth),
    Shown(4, "Maximum LSP Bandwidth Priority 4", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 5", ShowBandwidth),
    Shown(4, "Maximum LSP Bandwidth Priority 6", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 7", ShowBandwidth)});
inline constexpr auto kUnreservedBandwidths = Rows<NoValues>({
    Shown(4, "Unreserved Bandwidth Priority 0", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 1", ShowBandwidth),
    Shown(4, "Unreserved Bandwidth Priority 2", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 3", ShowBandwidth),
    Shown(4, "Unreserved Bandwidth Priority 4", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 5", ShowBandwidth),
    Shown(4, "Unreserved Bandwidth Priority 6", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 7", ShowBandwidth)});
template <class T>
void ShowLspBandwidths(const Place& in, Cursor& c, const char*, T&) {
  ShowRows(in, c, kLspBandwidths);
}
template <class T>
void ShowUnreservedBandwidths(const Place& in, Cursor& c, const char*, T&) {
  ShowRows(in, c, kUnreservedBandwidths);
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
// What a segment of IPv6 does (IANA's SRv6 endpoint behaviors).
inline constexpr auto kEndpointNames = SortedNames({
    {0x0000, "Reserved"}, {0x0001, "End"}, {0x0002, "End with PSP"}, {0x0003, "End with USP"},
    {0x0004, "End with PSP and USP"},
    {0x0005, "End.X"}, {0x0006, "End.X with PSP"}, {0x0007, "End.X with USP"}, {0x0008, "End.X with PSP and USP"},
    {0x0009, "End.T"}, {0x000A, "End.T with PSP"}, {0x000B, "End.T with USP"}, {0x000C, "End.T with PSP and USP"},
    {0x000E, "End.B6.Encaps"}, {0x000F, "End.BM"}, {0x0010, "End.DX6"}, {0x0011, "End.DX4"}, {0x0012, "End.DT6"},
    {0x0013, "End.DT4"}, {0x0014, "End.DT46"}, {0x0015, "End.DX2"}, {0x0016, "End.DX2V"}, {0x0017, "End.DT2U"},
    {0x0018, "End.DT2M"}, {0x001B, "End.B6.Encaps.Red"}, {0x001C, "End with USD"}, {0x001D, "End with PSP and USD"},
    {0x001E, "End with USP and USD"}, {0x001F, "End with PSP, USP and USD"}, {0x0020, "End.X with USD"},
    {0x0021, "End.X with PSP and USD"}, {0x0022, "End.X with USP and USD"}, {0x0023, "End.X with PSP, USP and USD"},
    {0x0024, "End.T with USD"}, {0x0025, "End.T with PSP and USD"}, {0x0026, "End.T with USP and USD"},
    {0x0027, "End.T with PSP, USP and USD"}, {0x0028, "End.MAP"}, {0x0029, "End.Limit"},
    {0x002A, "End with NEXT-ONLY-CSID"},
    {0x002B, "End with NEXT-CSID"}, {0x002C, "End with NEXT-CSID and PSP"}, {0x002D, "End with NEXT-CSID and USP"},
    {0x002E, "End with NEXT-CSID, PSP and USP"}, {0x002F, "End with NEXT-CSID and USD"},
    {0x0030, "End with NEXT-CSID, PSP and USD"}, {0x0031, "End with NEXT-CSID, USP and USD"},
    {0x0032, "End with NEXT-CSID, PSP, USP and USD"}, {0x0033, "End.X with NEXT-ONLY-CSID"},
    {0x0034, "End.X with NEXT-CSID"},
    {0x0035, "End.X with NEXT-CSID and PSP"}, {0x0036, "End.X with NEXT-CSID and USP"},
    {0x0037, "End.X with NEXT-CSID, PSP and USP"}, {0x0038, "End.X with NEXT-CSID and USD"},
    {0x0039, "End.X with NEXT-CSID, PSP and USD"}, {0x003A, "End.X with NEXT-CSID, USP and USD"},
    {0x003B, "End.X with NEXT-CSID, PSP, USP and USD"}, {0x003C, "End.DX6 with NEXT-CSID"},
    {0x003D, "End.DX4 with NEXT-CSID"},
    {0x003E, "End.DT6 with NEXT-CSID"}, {0x003F, "End.DT4 with NEXT-CSID"}, {0x0040, "End.DT46 with NEXT-CSID"},
    {0x0041, "End.DX2 with NEXT-CSID"}, {0x0042, "End.DX2V with NEXT-CSID"}, {0x0043, "End.DT2U with NEXT-CSID"},
    {0x0044, "End.DT2M with NEXT-CSID"}, {0x0045, "End.M.GTP6.D"}, {0x0046, "End.M.GTP6.Di"}, {0x0047, "End.M.GTP6.E"},
    {0x0048, "End.M.GTP4.E"}, {0x0049, "End.M"}, {0x004A, "End.Replicate"}, {0xFFFF, "Opaque"}});

}  // namespace qxview
