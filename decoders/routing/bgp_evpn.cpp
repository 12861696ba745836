// Ethernet VPN routes of BGP (RFC 7432, 9136, 9251, 9572): MAC addresses, segments and multicast of bridged networks.
#include "core/elements.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr auto kRouteNames = SortedNames({
    {1, "Ethernet Auto-Discovery"}, {2, "MAC/IP Advertisement"}, {3, "Inclusive Multicast Ethernet Tag"},
    {4, "Ethernet Segment"}, {5, "IP Prefix"}, {6, "Selective Multicast Ethernet Tag"}, {7, "Multicast Membership Report Synch"},
    {8, "Multicast Leave Synch"}, {9, "Per-Region I-PMSI A-D"}, {10, "S-PMSI A-D"}, {11, "Leaf A-D"}});
constexpr auto kSegmentNames = SortedNames({
    {0, "Arbitrary"}, {1, "LACP"}, {2, "Bridged LAN"}, {3, "MAC-based"}, {4, "Router ID"}, {5, "AS-based"}});

constexpr auto kTag = Rows<Bgp>({Number(4, "Ethernet Tag ID").Note(", Tag %u")});
constexpr auto kMac = Rows<Bgp>({Number(1, "MAC Address Length", " bits"), Mac("MAC Address").Note(", %s")});
constexpr auto kFlags = Rows<Bgp>({
    Hex(1, "Flags"), Flag(4, "Exclude Group"), Flag(5, "IGMPv3 or MLDv2"), Flag(6, "IGMPv2 or MLDv1"), Flag(7, "IGMPv1")});
constexpr auto kLeave = Rows<Bgp>({Hex(4, "Reserved"), Number(1, "Maximum Response Time")});
constexpr auto kRegion = Rows<Bgp>({Bytes(8, "Region ID")});

// What an identifier is made of, by its type; there is an octet of zero behind four and four.
void ShowSegmentParts(const Place& in, const Field& all, uint32_t type, Bgp& bgp) {
  static constexpr auto kAggregated = Rows<Bgp>({Mac("CE LACP System MAC"), Number(2, "CE LACP Port Key"),
      Hex(1, "Reserved")});
  static constexpr auto kBridged = Rows<Bgp>({Mac("Root Bridge MAC"), Number(2, "Root Bridge Priority"),
      Hex(1, "Reserved")});
  static constexpr auto kOfMac = Rows<Bgp>({Mac("System MAC"), Number(3, "Local Discriminator")});
  static constexpr auto kOfRouter = Rows<Bgp>({IPv4("Router ID"), Number(4, "Local Discriminator"),
      Hex(1, "Reserved")});
  static constexpr auto kOfSystem = Rows<Bgp>({Number(4, "AS Number"), Number(4, "Local Discriminator"),
      Hex(1, "Reserved")});
  Cursor c = CursorOver(Slice(all, 1, 9));
  switch (type) {
    case 1: ShowRows<Bgp>(in, c, kAggregated, bgp); break;
    case 2: ShowRows<Bgp>(in, c, kBridged, bgp); break;
    case 3: ShowRows<Bgp>(in, c, kOfMac, bgp); break;
    case 4: ShowRows<Bgp>(in, c, kOfRouter, bgp); break;
    case 5: ShowRows<Bgp>(in, c, kOfSystem, bgp); break;
    default: break;
  }
}

void ShowSegment(const Place& at, Cursor& c, Bgp& bgp) {
  const Field all = TakeBytes(c, 10);
  if (!all.here) return;
  const Place in = Under(at, AddLine(at, all, "Ethernet Segment Identifier: %s", HexText(all)));
  const Field type = Slice(all, 0, 1), value = Slice(all, 1, 9);
  AddLine(in, type, "ESI Type: %u = %s", PeekU8(all), LookupName(kSegmentNames, PeekU8(all)));
  AddLine(in, value, "ESI Value: %s", HexText(value));
  ShowSegmentParts(in, all, PeekU8(all), bgp);
}

// Where the routes are for VXLAN and its like the three octets are an identifier of a network (RFC 8365 5.1.3).
void ShowLabel(const Place& in, Cursor& c, const char* label) {
  const Field field = TakeU24(c);
  if (!field.here) return;
  AddLine(in, field, "%s: %u, as VNI %u", label, field.value >> 4, field.value);
  AppendToParent(in, field, ", Label %u", field.value >> 4);
}

// A prefix and the gateway to it, both of the family that the route's length tells.
void ShowPrefixRoute(const Place& in, Cursor& c) {
  constexpr int32_t kOfIPv4 = 1 + 4 + 4 + 3;
  const bool isFirst = Left(c) <= kOfIPv4;
  const Field bits = TakeU8(c);
  AddLine(in, bits, "IP Prefix Length: %u", bits.value);
  const uint32_t family = isFirst ? kFamilyIPv4 : kFamilyIPv6;
  Cursor prefix = TakeCursor(c, isFirst ? 4 : 16);
  ShowFamilyAddress(in, prefix, "IP Prefix", family);
  AppendToParent(in, bits, "/%u", bits.value);
  ShowFamilyAddress(in, c, "Gateway Address", family);
  ShowLabel(in, c, "MPLS Label");
}

void ShowAddressRoute(const Place& in, Cursor& c, Bgp& bgp) {
  ShowSegment(in, c, bgp);
  ShowRows<Bgp>(in, c, kTag, bgp);
  ShowRows<Bgp>(in, c, kMac, bgp);
  ShowCountedAddress(in, c, "IP Address");   // keys: number IP Address Length
  ShowLabel(in, c, "MPLS Label 1");
  if (Left(c) >= 3) ShowLabel(in, c, "MPLS Label 2");
}

void ShowMembers(const Place& in, Cursor& c, uint32_t type, Bgp& bgp) {
  ShowCountedAddress(in, c, "Source Address");
  ShowCountedAddress(in, c, "Group Address");
  ShowCountedAddress(in, c, "Originating Router");   // keys: number Originating Router Length
  if (type == 8) ShowRows<Bgp>(in, c, kLeave, bgp);
  if (type != 10) ShowRows<Bgp>(in, c, kFlags, bgp);
}

// A leaf answers the route that stands in it; nobody means a leaf of leaves.
void ShowLeaf(const Place& in, Cursor& c, Bgp& bgp) {
  if (bgp.nesting >= kDeepestBgp) return;
  ++bgp.nesting;
  bgp.hasPaths = false;
  Cursor key = TakeCursor(c, 2 + static_cast<int64_t>(PeekU8(c, 1)));
  ShowBgpEvpnRoutes(in, key, bgp);
  --bgp.nesting;
  ShowCountedAddress(in, c, "Originating Router");
}

void ShowRoute(const Place& in, Cursor& c, uint32_t type, Bgp& bgp) {
  constexpr uint32_t kLeafRoute = 11;
  if (type == kLeafRoute) return ShowLeaf(in, c, bgp);
  if (type == 0 || type > kLeafRoute) return;
  ShowRouteDistinguisher(in, c);
  switch (type) {
    case 1:
      ShowSegment(in, c, bgp);
      ShowRows<Bgp>(in, c, kTag, bgp);
      ShowLabel(in, c, "MPLS Label");
      break;
    case 2: ShowAddressRoute(in, c, bgp); break;
    case 3:
      ShowRows<Bgp>(in, c, kTag, bgp);
      ShowCountedAddress(in, c, "Originating Router");
      break;
    case 4:
      ShowSegment(in, c, bgp);
      ShowCountedAddress(in, c, "Originating Router");
      break;
    case 5:
      ShowSegment(in, c, bgp);
      ShowRows<Bgp>(in, c, kTag, bgp);
      ShowPrefixRoute(in, c);
      break;
    case 7:
    case 8: ShowSegment(in, c, bgp); [[fallthrough]];
    case 6:
    case 10:
      ShowRows<Bgp>(in, c, kTag, bgp);
      ShowMembers(in, c, type, bgp);
      break;
    default:
      ShowRows<Bgp>(in, c, kTag, bgp);
      ShowRows<Bgp>(in, c, kRegion, bgp);
      break;
  }
}

}  // namespace

void ShowBgpEvpnRoutes(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Number(1, "Route Type", kRouteNames), Number(1, "Length")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 2 + static_cast<int64_t>(PeekU8(c, 1)));
    const uint32_t type = PeekU8(route);
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "EVPN Route: %s",
        LookupName(kRouteNames, type)));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, route, kHead, bgp);
    ShowRoute(in, route, type, bgp);
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

}  // namespace qxview
