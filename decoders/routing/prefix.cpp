#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr auto kFamilyNames = SortedNames({
    {0, "Reserved"}, {1, "IPv4"}, {2, "IPv6"}, {3, "NSAP"}, {4, "HDLC"}, {5, "BBN 1822"}, {6, "802"}, {7, "E.163"},
    {8, "E.164"}, {9, "F.69"}, {10, "X.121"}, {11, "IPX"}, {12, "AppleTalk"}, {13, "DECnet IV"}, {14, "Banyan Vines"},
    {15, "E.164 with NSAP Subaddress"}, {16, "DNS"}, {17, "Distinguished Name"}, {18, "AS Number"},
    {19, "XTP over IPv4"}, {20, "XTP over IPv6"}, {21, "XTP Native Mode"}, {22, "Fibre Channel World-Wide Port Name"},
    {23, "Fibre Channel World-Wide Node Name"}, {24, "GWID"}, {25, "L2VPN"}, {26, "MPLS-TP Section Endpoint"},
    {27, "MPLS-TP LSP Endpoint"}, {28, "MPLS-TP Pseudowire Endpoint"}, {29, "MT IP"}, {30, "MT IPv6"}, {31, "BGP SFC"},
    {16384, "EIGRP Common Service Family"}, {16385, "EIGRP IPv4 Service Family"}, {16386, "EIGRP IPv6 Service Family"},
    {16387, "LCAF"}, {16388, "BGP-LS"}, {16389, "48-bit MAC"}, {16390, "64-bit MAC"}, {16391, "OUI"},
    {16392, "MAC/24"}, {16393, "MAC/40"}, {16394, "IPv6/64"}, {16395, "RBridge Port ID"}, {16396, "TRILL Nickname"},
    {16397, "Universally Unique Identifier"}, {16398, "Routing Policy"}, {16399, "MPLS Namespaces"}});

}  // namespace

const char* AddressFamilyName(uint32_t family) { return LookupName(kFamilyNames, family); }

void ShowPrefix(const Place& in, Cursor& c, const char* label, uint32_t family, uint32_t bits) {
  const Field prefix = TakeBytes(c, (bits + 7) / 8);
  if (!prefix.here) return;
  const Field line = prefix.length > 0 ? prefix : Stated(c.offset, 0);
  uint8_t address[16] = {};
  for (int32_t i = 0; i < prefix.length && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(prefix, i));
  if (family == kFamilyIPv4 && bits <= 32) {
    AddLine(in, line, "%s: %s/%u", label, IPv4Text(address), bits);
    AppendToParent(in, line, ", %s/%u", IPv4Text(address), bits);
  } else if (family == kFamilyIPv6 && bits <= 128) {
    AddLine(in, line, "%s: %s/%u", label, IPv6Text(address), bits);
    AppendToParent(in, line, ", %s/%u", IPv6Text(address), bits);
  } else {
    AddLine(in, line, "%s: %s (%u bits)", label, HexText(prefix), bits);
  }
}

void ShowFamilyAddress(const Place& in, Cursor& c, const char* label, uint32_t family) {
  if (family == kFamilyIPv4) {
    const Field address = TakeBytes(c, 4);
    AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
    AppendToParent(in, address, ", %s", IPv4Text(address.bytes));
  } else if (family == kFamilyIPv6) {
    const Field address = TakeBytes(c, 16);
    AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
    AppendToParent(in, address, ", %s", IPv6Text(address.bytes));
  } else {
    const Field address = Rest(c);
    AddLine(in, address, "%s: %s", label, HexText(address));
  }
}

}  // namespace qxview
