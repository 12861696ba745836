// Routes of BGP's younger families: service function chains (RFC 9015), colors of intents (RFC 9871), user planes of
// mobile networks (draft-ietf-bess-mup-safi), segments of pseudowires (RFC 7267), endpoints of encapsulations (RFC 5512),
// edges of wide area networks (draft-ietf-idr-sdwan-edge-discovery), policies (draft-ietf-idr-rpd).
#include "core/elements.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr auto kChainNames = SortedNames({{1, "Service Function Instance"}, {2, "Service Function Path"}});
constexpr auto kMobileNames = SortedNames({
    {1, "Interwork Segment Discovery"}, {2, "Direct Segment Discovery"}, {3, "Type 1 Session Transformed"},
    {4, "Type 2 Session Transformed"}});
constexpr auto kArchitectureNames = SortedNames({{1, "3GPP 5G"}});
constexpr auto kColorNames = SortedNames({{1, "Color-Aware"}, {2, "IP Prefix"}});

uint32_t AddressBits(uint32_t afi) { return afi == kFamilyIPv6 ? 128 : 32; }

void ShowPrefixWithLength(const Place& in, Cursor& c, uint32_t afi) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Prefix Length: %u", length.value);
  ShowPrefix(in, c, "Prefix", afi, length.value);
}

// --- colors ---

constexpr auto kColorHead = Rows<Bgp>({
    Number(1, "Length").Into(&Bgp::length), Number(1, "Key Length").Into(&Bgp::count),
    Number(1, "Route Type", kColorNames).Into(&Bgp::type)});
constexpr auto kColor = Rows<Bgp>({Number(4, "Color").Note(", Color %u")});
constexpr auto kIndex = Rows<Bgp>({Hex(1, "Reserved"), Hex(2, "Flags"), Number(4, "Label Index").Note(", %u")});
constexpr auto kSid = Rows<Bgp>({Bytes(0, "SRv6 SID").Note(", %s")});
void ShowLabels(const Place& in, Cursor& c, Bgp&) {
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) ShowMplsLabel(in, c, "Label");
}
constexpr auto kColorParts = Choices<Bgp>({{1, "Label", {}, ShowLabels}, {2, "Label Index", kIndex},
    {3, "SRv6 SID", kSid}});

// --- mobile user planes ---

constexpr auto kMobileHead = Rows<Bgp>({
    Number(1, "Architecture Type", kArchitectureNames), Number(2, "Route Type", kMobileNames).Into(&Bgp::type),
    Number(1, "Length")});
constexpr auto kSession = Rows<Bgp>({Hex(4, "Tunnel Endpoint ID").Note(", TEID 0x%08X"),
    Number(1, "QoS Flow Identifier").Note(", QFI %u")});

// The endpoint's length counts the identifier behind the address, too, in whole or in its first bits.
void ShowEndpoint(const Place& in, Cursor& c, uint32_t afi) {
  const Field bits = TakeU8(c);
  AddLine(in, bits, "Endpoint Length: %u bits", bits.value);
  ShowFamilyAddress(in, c, "Endpoint Address", afi);
  const uint32_t more = bits.value > AddressBits(afi) ? bits.value - AddressBits(afi) : 0;
  const Field tunnel = TakeBytes(c, (more + 7) / 8);
  if (tunnel.here && tunnel.length) AddLine(in, tunnel, "Tunnel Endpoint ID: %s (%u bits)", HexText(tunnel), more);
}
void ShowMobile(const Place& in, Cursor& c, uint32_t type, uint32_t afi, Bgp& bgp) {
  ShowRouteDistinguisher(in, c);
  switch (type) {
    case 1: ShowPrefixWithLength(in, c, afi); break;
    case 2: ShowFamilyAddress(in, c, "Segment Address", afi); break;
    case 3:
      ShowPrefixWithLength(in, c, afi);
      ShowRows<Bgp>(in, c, kSession, bgp);
      ShowCountedAddress(in, c, "Endpoint Address");   // keys: number Endpoint Address Length
      if (Left(c)) ShowCountedAddress(in, c, "Source Address");
      break;
    case 4: ShowEndpoint(in, c, afi); break;
    default: break;
  }
}

}  // namespace

void ShowBgpServiceChains(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Number(2, "Route Type", kChainNames), Number(2, "Length")});
  static constexpr auto kFunction = Rows<Bgp>({Number(2, "Service Function Type").Note(", Type %u")});
  static constexpr auto kPath = Rows<Bgp>({Number(3, "Service Path Identifier").Note(", Path %u")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU16(c);
    Cursor route = TakeCursor(c, 4 + static_cast<int64_t>(PeekU16(c, 2)));
    const Place in = Under(at, AddLine(at, Ahead(route, Left(route)), "Service Chain Route: %s",
        LookupName(kChainNames, type)));
    ShowRows<Bgp>(in, route, kHead, bgp);
    ShowRouteDistinguisher(in, route);
    if (type == 1) ShowRows<Bgp>(in, route, kFunction, bgp);
    if (type == 2) ShowRows<Bgp>(in, route, kPath, bgp);
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

void ShowBgpColorRoutes(const Place& at, Cursor& c, uint32_t afi, bool isVpn, Bgp& bgp) {
  constexpr ElementForm kForm{.valueLines = true, .typeMask = 0x3F};
  Loop loop;
  while (Left(c) >= 3 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 1 + static_cast<int64_t>(PeekU8(c)));
    const uint32_t type = PeekU8(route, 2);
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "CAR Route: %s",
        LookupName(kColorNames, type)));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, route, kColorHead, bgp);
    Cursor key = TakeCursor(route, bgp.count.value);
    if (isVpn) ShowRouteDistinguisher(in, key);
    ShowPrefixWithLength(in, key, afi);
    if (type == 1) ShowRows<Bgp>(in, key, kColor, bgp);
    ShowElements<Bgp>(in, route, kForm, "TLV", kColorParts, bgp);
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

void ShowBgpMobileRoutes(const Place& at, Cursor& c, uint32_t afi, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    Cursor route = TakeCursor(c, 4 + static_cast<int64_t>(PeekU8(c, 3)));
    const uint32_t type = PeekU16(route, 1);
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "MUP Route: %s",
        LookupName(kMobileNames, type)));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, route, kMobileHead, bgp);
    ShowMobile(in, route, type, afi, bgp);
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

void ShowBgpPseudowires(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kAttachment = Rows<Bgp>({Number(4, "Global ID"), Hex(4, "Prefix").Note(", 0x%08X"),
      Number(4, "Attachment Circuit").Note(", AC %u")});
  Loop loop;
  while (Left(c) >= 9 && MoreAt(at, c, loop)) {
    Cursor route = TakeCursor(c, 1 + (static_cast<int64_t>(PeekU8(c)) + 7) / 8);
    const Place in = Under(at, AddLine(at, Ahead(route, Left(route)), "Pseudowire Endpoint"));
    const Field length = TakeU8(route);
    AddLine(in, length, "Prefix Length: %u", length.value);
    ShowRouteDistinguisher(in, route);
    ShowRows<Bgp>(in, route, kAttachment, bgp);
  }
}

void ShowBgpEndpoints(const Place& at, Cursor& c, uint32_t afi, Bgp&) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(at, c, loop)) {
    Cursor route = TakeCursor(c, 1 + (static_cast<int64_t>(PeekU8(c)) + 7) / 8);
    const Place in = Under(at, AddLine(at, Ahead(route, Left(route)), "Encapsulation Endpoint"));
    const Field length = TakeU8(route);
    AddLine(in, length, "Prefix Length: %u", length.value);
    ShowFamilyAddress(in, route, "Endpoint", afi);
  }
}

void ShowBgpEdges(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Number(2, "Route Type"), Number(2, "Length")});
  static constexpr auto kEdge = Rows<Bgp>({Number(4, "Port Local ID").Note(", Port %u"), Number(4, "Color").Note(", Color %u")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    const uint32_t type = PeekU16(c);
    Cursor route = TakeCursor(c, 4 + static_cast<int64_t>(PeekU16(c, 2)));
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(route)), "SD-WAN Route"));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, route, kHead, bgp);
    if (type == 1) {
      ShowRows<Bgp>(in, route, kEdge, bgp);
      ShowFamilyAddress(in, route, "Node Address", Left(route) >= 16 ? kFamilyIPv6 : kFamilyIPv4);
    }
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

void ShowBgpPolicies(const Place& at, Cursor& c, uint32_t afi, Bgp& bgp) {
  static constexpr auto kPolicyNames = SortedNames({{1, "Export"}, {2, "Import"}});
  static constexpr auto kHead = Rows<Bgp>({
      Number(1, "Length"), Number(1, "Policy Type", kPolicyNames).Note(", %s"), Number(4, "Distinguisher").Note(", %u")});
  Loop loop;
  while (Left(c) >= 6 && MoreAt(at, c, loop)) {
    Cursor route = TakeCursor(c, 1 + static_cast<int64_t>(PeekU8(c)));
    const Place in = Under(at, AddLine(at, Ahead(route, Left(route)), "Routing Policy"));
    ShowRows<Bgp>(in, route, kHead, bgp);
    ShowFamilyAddress(in, route, "Peer", afi);
    route.ranShort = false;
    AddBlock(in, Rest(route), "Route Data");
  }
}

// --- attributes: containers of communities, service paths, what a next hop can do ---

namespace {
constexpr auto kWide = Rows<Bgp>({
    Hex(4, "Community").Note(", 0x%08X"), Number(4, "Source AS").Note(", AS %u"), Number(4, "Context AS")});
constexpr auto kContainerNames = SortedNames({{1, "Wide Community"}});
constexpr auto kValue = Rows<Bgp>({Bytes(0, "Value")});
constexpr ElementForm kLongForm{.lengthSize = 2, .valueLines = true};

// What targets and parameters are made of (draft-ietf-idr-wide-bgp-communities).
constexpr auto kAtomSystem = Rows<Bgp>({Number(4, "AS Number").Note(", AS %u")});
constexpr auto kAtomNumber = Rows<Bgp>({Number(4, "Integer").Note(", %u")});
constexpr auto kAtomFloat = Rows<Bgp>({Float(4, "Number")});
constexpr auto kAtomText = Rows<Bgp>({Utf8(0, "Text").Note(", %s")});
template <const auto& rows>
void ShowWords(const Place& in, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, rows, bgp);
}
constexpr auto kAtoms = Choices<Bgp>({
    {1, "Autonomous System Numbers", {}, ShowWords<kAtomSystem>}, {2, "IPv4 Prefixes"}, {3, "IPv6 Prefixes"},
    {4, "Integers", {}, ShowWords<kAtomNumber>}, {5, "Floating Point Numbers", {}, ShowWords<kAtomFloat>},
    {6, "Neighbor Classes"}, {7, "User-Defined Classes"}, {8, "Text", kAtomText}});
void ShowAtoms(const Place& in, Cursor& c, Bgp& bgp) { ShowElements<Bgp>(in, c, kLongForm, "Atom", kAtoms, bgp); }
constexpr auto kWideParts = Choices<Bgp>({
    {1, "Targets", {}, ShowAtoms}, {2, "Exclude Targets", {}, ShowAtoms}, {3, "Parameters", {}, ShowAtoms}});

constexpr auto kAssociation = Rows<Bgp>({Number(1, "Association Type")});
constexpr auto kAssociated = Rows<Bgp>({Number(3, "Associated Service Path Identifier")});
void ShowAssociation(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRouteDistinguisher(in, c);
  ShowRows<Bgp>(in, c, kAssociated, bgp);
}
constexpr auto kHop = Rows<Bgp>({Number(1, "Service Index").Note(", %u")});
constexpr auto kFunctions = Rows<Bgp>({Number(2, "Service Function Type").Note(", Type %u")});
void ShowInstances(const Place& in, Cursor& c, Bgp&) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRouteDistinguisher(in, c);
}
constexpr auto kSwapping = Rows<Bgp>({Number(1, "Swapping Type"), Bytes(0, "Swapping Value")});
constexpr auto kHopParts = Choices<Bgp>({{3, "Service Function Type", kFunctions, ShowInstances},
    {4, "MPLS Swapping/Stacking", kSwapping}});
void ShowHop(const Place& in, Cursor& c, Bgp& bgp) { ShowElements<Bgp>(in, c, kLongForm, "Sub-TLV", kHopParts, bgp); }
constexpr auto kPathParts = Choices<Bgp>({
    {1, "Association", kAssociation, ShowAssociation}, {2, "Hop", kHop, ShowHop},
    {4, "MPLS Swapping/Stacking", kSwapping}});
}  // namespace

void ShowBgpContainers(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({
      Number(2, "Container Type", kContainerNames), Hex(1, "Container Flags"), Flag(0, "Transitive"),
      Flag(1, "Confederation"),
      Hex(1, "Reserved"), Number(2, "Container Length")});
  Loop loop;
  while (Left(c) >= 6 && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU16(c);
    Cursor container = TakeCursor(c, 6 + static_cast<int64_t>(PeekU16(c, 4)));
    const Place in = Under(at, AddLine(at, Ahead(container, Left(container)), "Container: %s",
        LookupName(kContainerNames, type)));
    ShowRows<Bgp>(in, container, kHead, bgp);
    if (type == 1) {
      ShowRows<Bgp>(in, container, kWide, bgp);
      ShowElements<Bgp>(in, container, kLongForm, "TLV", kWideParts, bgp);
    }
    container.ranShort = false;
    AddBlock(in, Rest(container), "Container Data");
  }
}

void ShowBgpServicePath(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kLongForm, "TLV", kPathParts, bgp);
}

void ShowBgpHopCharacteristics(const Place& in, Cursor& c, Bgp& bgp) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .valueLines = true};
  static constexpr auto kHead = Rows<Bgp>({
      Number(2, "Address Family", AddressFamilyName).Into(&Bgp::afi), Number(1, "Subsequent Address Family"),
      Number(1, "Next Hop Length").Into(&Bgp::length)});
  static constexpr auto kParts = Choices<Bgp>({{1, "Entropy Label", kValue}, {3, "BGP Identifier", kValue}});
  ShowRows<Bgp>(in, c, kHead, bgp);
  Cursor hop = TakeCursor(c, bgp.length.value);
  if (Left(hop)) ShowFamilyAddress(in, hop, "Next Hop", Left(hop) >= 16 ? kFamilyIPv6 : kFamilyIPv4);
  ShowElements<Bgp>(in, c, kForm, "Characteristic", kParts, bgp);
}

}  // namespace qxview
