// Routes that BGP announces and withdraws: prefixes of IPv4 and IPv6 (RFC 4271, 4760), with labels (RFC 8277), of VPNs (RFC 4364,
// 4659), route targets that are wanted (RFC 4684), virtual private LANs (RFC 4761, 6074), policies (RFC 9830), multicast VPNs
// (RFC 6514); path identifiers in front of them (RFC 7911).
#include "core/elements.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/bgp_names.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr uint32_t kUnicast = 1, kMulticast = 2, kLabelled = 4, kMulticastVpn = 5, kVpls = 65, kTunnelMdt = 66, kEvpn = 70,
                   kLinkState = 71, kLinkStateVpn = 72, kPolicy = 73, kTransport = 76, kLinkStatePath = 80,
                       kPseudowires = 6,
                   kEndpoints = 7, kLanMulticast = 8, kServiceChains = 9, kEdges = 74, kRouting = 75, kColors = 83,
                   kColorsVpn = 84, kMobile = 85, kVpn = 128,
                       kVpnMulticast = 129, kTargets = 132,
                   kFlow = 133, kFlowVpn = 134;
constexpr uint32_t kLayer2 = 25;
constexpr uint32_t kBottom = 1, kWithdrawnLabel = 0x800000;
constexpr int32_t kDistinguisherBits = 64;

constexpr auto kMulticastRouteNames = SortedNames({
    {1, "Intra-AS I-PMSI A-D"}, {2, "Inter-AS I-PMSI A-D"}, {3, "S-PMSI A-D"}, {4, "Leaf A-D"}, {5, "Source Active A-D"},
    {6, "Shared Tree Join"}, {7, "Source Tree Join"}});

// Whether prefixes fill the routes to the byte, with path identifiers or without.
bool Fits(const Cursor& routes, bool hasPaths, uint32_t mostBits) {
  Cursor c = routes;
  while (Left(c) > 0) {
    if (hasPaths) TakeU32(c);
    const uint32_t bits = TakeU8(c).value;
    if (bits > mostBits || static_cast<int32_t>((bits + 7) / 8) > Left(c)) return false;
    TakeBytes(c, (bits + 7) / 8);
  }
  return !c.ranShort;
}

// What the opening said, unless the bytes decide otherwise; `note` is what lines say of it.
bool HasPaths(const Cursor& c, uint32_t mostBits, const Bgp& bgp, const char** note) {
  *note = "";
  if (bgp.known) {
    if (Fits(c, bgp.hasPaths, mostBits) || !Fits(c, !bgp.hasPaths, mostBits)) return bgp.hasPaths;
    *note = " (as the bytes tell, the opening said otherwise)";
    return !bgp.hasPaths;
  }
  if (Left(c) < 5 || Fits(c, false, mostBits) || !Fits(c, true, mostBits)) return false;
  *note = " (assumed, the opening was not seen)";
  return true;
}

// Labels down to the bottom of the stack, or the one that stands for none. Result: their bits.
uint32_t ShowLabels(const Place& in, Cursor& c, uint32_t bits) {
  uint32_t shown = 0;
  while (shown + 24 <= bits && Left(c) >= 3) {
    const uint32_t label = PeekU24(c);
    ShowMplsLabel(in, c, "Label");
    shown += 24;
    if (label & kBottom || label == kWithdrawnLabel || label == 0) break;
  }
  return shown;
}

void ShowPrefixes(const Place& at, Cursor& c, uint32_t afi, uint32_t safi, const char* what, const Bgp& bgp) {
  const bool isVpn = safi == kVpn || safi == kVpnMulticast || safi == kTransport;
  const bool isLabelled = safi == kLabelled || safi == kVpn || safi == kTransport;
  const uint32_t mostBits = (afi == kFamilyIPv6 ? 128 : 32) + (isVpn ? kDistinguisherBits : 0) + (isLabelled ? 24 * 8 : 0);
  const char* note;
  const bool hasPaths = HasPaths(c, mostBits, bgp, &note);
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const int32_t bytes = (hasPaths ? 5 : 1) + (static_cast<int32_t>(PeekU8(c, hasPaths ? 4 : 0)) + 7) / 8;
    Cursor route = TakeCursor(c, bytes);
    const Place in = Under(at, AddLine(at, Ahead(route, Left(route)), "%s", what));
    if (hasPaths) {
      const Field path = TakeU32(route);
      AddLine(in, path, "Path Identifier: %u%s", path.value, note);
    }
    const Field length = TakeU8(route);
    AddLine(in, length, "Prefix Length: %u", length.value);
    uint32_t bits = length.value;
    if (isLabelled) bits -= ShowLabels(in, route, bits);
    if (isVpn && bits >= kDistinguisherBits) {
      ShowRouteDistinguisher(in, route);
      bits -= kDistinguisherBits;
    }
    ShowPrefix(in, route, "Network", afi, bits);
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");   // of a length that no prefix of the family has
  }
}

void ShowTargets(const Place& at, Cursor& c, const char* what, Bgp& bgp) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 1 + (static_cast<int64_t>(PeekU8(c)) + 7) / 8);
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "%s: Route Target", what));
    ShowBgpPath(in, path);
    const Field length = TakeU8(route);
    AddLine(in, length, "Prefix Length: %u", length.value);
    if (!length.value) continue;
    const Field origin = TakeU32(route);
    AddLine(in, origin, "Origin AS: %u", origin.value);
    if (Left(route) == 8) {
      ShowBgpExtendedCommunities(in, route, bgp);
    } else if (Left(route)) {
      const Field target = Rest(route);
      AddLine(in, target, "Route Target: %s", HexText(target));
    }
  }
}

void ShowPrivateLans(const Place& at, Cursor& c, const char* what, Bgp& bgp) {
  static constexpr auto kEdge = Rows<Bgp>({
      Number(2, "VE ID").Note(", VE %u"), Number(2, "VE Block Offset"), Number(2, "VE Block Size")});
  constexpr int32_t kDiscovery = 12;
  Loop loop;
  while (Left(c) >= 2 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 2 + static_cast<int64_t>(PeekU16(c)));
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "%s: VPLS", what));
    ShowBgpPath(in, path);
    const Field length = TakeU16(route);
    AddLine(in, length, "Length: %u", length.value);
    ShowRouteDistinguisher(in, route);
    if (length.value == kDiscovery) {
      ShowFamilyAddress(in, route, "PE Address", kFamilyIPv4);
      continue;
    }
    ShowRows<Bgp>(in, route, kEdge, bgp);
    ShowMplsLabel(in, route, "Label Block Base");
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

void ShowPolicies(const Place& at, Cursor& c, uint32_t afi, const char* what, Bgp& bgp) {
  static constexpr auto kRows = Rows<Bgp>({
      Number(1, "Length", " bits").Into(&Bgp::length), Number(4, "Distinguisher"), Number(4, "Color").Note(", Color %u")});
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 1 + static_cast<int64_t>(PeekU8(c)) / 8);
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "%s: SR Policy", what));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, route, kRows, bgp);
    ShowFamilyAddress(in, route, "Endpoint", afi);
  }
}

void ShowTree(const Place& at, Cursor& c, const char* what, Bgp& bgp) {
  static constexpr auto kRows = Rows<Bgp>({IPv4("PE Address").Note(", %s"), IPv4("Group Address").Note(", %s")});
  Loop loop;
  while (Left(c) >= 17 && MoreAt(at, c, loop)) {
    Cursor route = TakeCursor(c, 17);
    const Place in = Under(at, AddLine(at, Ahead(route, Left(route)), "%s: MDT", what));
    const Field length = TakeU8(route);
    AddLine(in, length, "Prefix Length: %u", length.value);
    ShowRouteDistinguisher(in, route);
    ShowRows<Bgp>(in, route, kRows, bgp);
  }
}

}  // namespace

// A leaf's key is the route that it answers; nobody means a leaf of leaves.
void ShowBgpMulticastRoutes(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Number(1, "Route Type", kMulticastRouteNames).Into(&Bgp::type), Number(1, "Length")});
  static constexpr auto kSource = Rows<Bgp>({Number(4, "Source AS").Note(", AS %u")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 2 + static_cast<int64_t>(PeekU8(c, 1)));
    const uint32_t type = PeekU8(route);
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "MVPN Route: %s",
        LookupName(kMulticastRouteNames, type)));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, route, kHead, bgp);
    if (type == 4 && bgp.nesting >= kDeepestBgp) {
      AddBlock(in, Rest(route), "Route Data");
      continue;
    }
    if (type == 4) {
      ++bgp.nesting;
      bgp.hasPaths = false;
      Cursor key = TakeCursor(route, 2 + static_cast<int64_t>(PeekU8(route, 1)));
      ShowBgpMulticastRoutes(in, key, bgp);
      --bgp.nesting;
    } else if (type >= 1 && type <= 7) {
      ShowRouteDistinguisher(in, route);
    }
    if (type == 2 || type == 6 || type == 7) ShowRows<Bgp>(in, route, kSource, bgp);
    if (type == 3 || (type >= 5 && type <= 7)) {
      ShowCountedAddress(in, route, "Source Address");
      ShowCountedAddress(in, route, "Group Address");
    }
    if (type == 1 || type == 3 || type == 4) {
      ShowFamilyAddress(in, route, "Originating Router", Left(route) >= 16 ? kFamilyIPv6 : kFamilyIPv4);
    }
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

Field TakeBgpPath(Cursor& c, const Bgp& bgp) { return bgp.hasPaths ? TakeU32(c) : Field{}; }
void ShowBgpPath(const Place& in, const Field& path) { AddLine(in, path, "Path Identifier: %u", path.value); }

void ShowBgpRoutes(const Place& in, Cursor& c, uint32_t afi, uint32_t safi, const char* what, Bgp& bgp) {
  const bool isInternet = afi == kFamilyIPv4 || afi == kFamilyIPv6;
  const uint32_t paths = bgp.session.sendsPaths[bgp.direction] & bgp.session.receivesPaths[1 - bgp.direction];
  bgp.hasPaths = bgp.known && (paths & BgpFamilyBit(afi, safi));
  const bool isOfSystems = safi == kUnicast || safi == kMulticast || safi == kLabelled;
  if (isInternet && (isOfSystems || safi == kVpn || safi == kVpnMulticast || safi == kTransport)) {
    return ShowPrefixes(in, c, afi, safi, what, bgp);
  }
  switch (safi) {
    case kPseudowires: return ShowBgpPseudowires(in, c, bgp);
    case kEndpoints: return ShowBgpEndpoints(in, c, afi, bgp);
    case kServiceChains: return ShowBgpServiceChains(in, c, bgp);
    case kColors:
    case kColorsVpn: return ShowBgpColorRoutes(in, c, afi, safi == kColorsVpn, bgp);
    case kEdges: return ShowBgpEdges(in, c, bgp);
    case kRouting: return ShowBgpPolicies(in, c, afi, bgp);
    case kMobile: return ShowBgpMobileRoutes(in, c, afi, bgp);
    case kLanMulticast:   // of virtual LANs with the same types (RFC 7117)
    case kMulticastVpn: return ShowBgpMulticastRoutes(in, c, bgp);
    case kVpls: return ShowPrivateLans(in, c, what, bgp);
    case kTunnelMdt: return ShowTree(in, c, what, bgp);
    case kEvpn:
      if (afi == kLayer2) return ShowBgpEvpnRoutes(in, c, bgp);
      break;
    case kLinkState:
    case kLinkStatePath:
    case kLinkStateVpn: return ShowBgpLinkStates(in, c, safi, bgp);
    case kPolicy: return ShowPolicies(in, c, afi, what, bgp);
    case kTargets: return ShowTargets(in, c, what, bgp);
    case kFlow:
    case kFlowVpn: return ShowBgpFlows(in, c, afi, safi, bgp);
    default: break;
  }
  AddBlock(in, Rest(c), "Routes");
}

// Of a system's number or an address, and a number (RFC 4364 4.2).
void ShowRouteDistinguisher(const Place& in, Cursor& c) {
  constexpr uint32_t kByAddress = 1, kByWideSystem = 2;
  const uint32_t type = PeekU16(c);
  const Field all = TakeBytes(c, 8);
  if (!all.here) return;
  if (type == 0) {
    AddLine(in, all, "Route Distinguisher: %u:%u", PeekU16(all, 2), PeekU32(all, 4));
    AppendToParent(in, all, ", RD %u:%u", PeekU16(all, 2), PeekU32(all, 4));
  } else if (type == kByAddress) {
    const Field address = Slice(all, 2, 4);
    AddLine(in, all, "Route Distinguisher: %s:%u", IPv4Text(address.bytes), PeekU16(all, 6));
    AppendToParent(in, all, ", RD %s:%u", IPv4Text(address.bytes), PeekU16(all, 6));
  } else if (type == kByWideSystem) {
    AddLine(in, all, "Route Distinguisher: %u:%u", PeekU32(all, 2), PeekU16(all, 6));
    AppendToParent(in, all, ", RD %u:%u", PeekU32(all, 2), PeekU16(all, 6));
  } else {
    AddLine(in, all, "Route Distinguisher: %s", HexText(all));
  }
}

void ShowMplsLabel(const Place& in, Cursor& c, const char* label) {
  const Field stack = TakeU24(c);
  if (!stack.here) return;
  const char* note = stack.value == kWithdrawnLabel ? " (withdrawn)" : stack.value & kBottom ? " (bottom)" : "";
  AddLine(in, stack, "%s: %u%s", label, stack.value >> 4, note);
  AppendToParent(in, stack, ", Label %u", stack.value >> 4);
}

void ShowCountedAddress(const Place& in, Cursor& c, const char* label) {
  const Field bits = TakeU8(c);
  AddLine(in, bits, "%s Length: %u bits", label, bits.value);   // keys: number Source Address Length, Group Address Length
  if (bits.value == 32) return ShowFamilyAddress(in, c, label, kFamilyIPv4);
  if (bits.value == 128) return ShowFamilyAddress(in, c, label, kFamilyIPv6);
  if (!bits.value) return;
  const Field other = TakeBytes(c, (bits.value + 7) / 8);
  if (other.here) AddLine(in, other, "%s: %s", label, HexText(other));
}

}  // namespace qxview
