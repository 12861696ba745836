// The link state advertisements of OSPF version 3 (RFC 5340 annex A.4), with those that carry elements (RFC 8362, RFC 5187,
// RFC 5329, RFC 7770, RFC 8666, RFC 9513).
#include "decoders/common/traffic_engineering.h"
#include "decoders/net/ospf.h"

namespace qxview {
namespace {

enum : uint32_t { kFunctionMask = 0x1FFF };

constexpr auto kFunctionNames = SortedNames({
    {1, "Router"}, {2, "Network"}, {3, "Inter-Area Prefix"}, {4, "Inter-Area Router"}, {5, "AS External"},
    {6, "Group Membership"}, {7, "NSSA"}, {8, "Link"}, {9, "Intra-Area Prefix"}, {10, "Intra-Area TE"}, {11, "Grace"},
    {12, "Router Information"}, {13, "Inter-AS TE"}, {14, "L1VPN"}, {15, "AutoConfiguration"}, {16, "Dynamic Flooding"},
    {33, "Extended Router"}, {34, "Extended Network"}, {35, "Extended Inter-Area Prefix"},
    {36, "Extended Inter-Area Router"}, {37, "Extended AS External"}, {38, "Unused"}, {39, "Extended Type-7"},
    {40, "Extended Link"}, {41, "Extended Intra-Area Prefix"}, {42, "SRv6 Locator"}});
constexpr auto kLinkNames = SortedNames({
    {1, "Point-to-Point"}, {2, "Transit Network"}, {3, "Reserved"}, {4, "Virtual Link"}});
constexpr auto kRouterMasks = SortedNames({
    {0x01, "Area Border Router"}, {0x02, "AS Boundary Router"}, {0x04, "Virtual Link Endpoint"},
    {0x08, "Wild-Card Multicast Receiver"}, {0x10, "NSSA Translator"}});
constexpr auto kPrefixMasks = SortedNames({
    {0x01, "No Unicast"}, {0x02, "Local Address"}, {0x04, "Multicast"}, {0x08, "Propagate"}, {0x10, "DN"}, {0x20, "Node"},
    {0x40, "Anycast"}});
constexpr auto kExternalMasks = SortedNames({{0x01, "Route Tag"}, {0x02, "Forwarding Address"}, {0x04, "Type 2 Metric"}});

constexpr auto kRouter = Rows<Ospf>({Flags(1, "Router Flags", kRouterMasks), Flags(3, "Options", kOspf3OptionMasks)});
constexpr auto kLink = Rows<Ospf>({
    Number(1, "Link Type", kLinkNames).Note(", %s"), Hex(1, "Reserved"), Number(2, "Metric").Note(", Metric %u"),
    Number(4, "Interface ID"), Number(4, "Neighbor Interface ID"), IPv4("Neighbor Router ID").Note(", Neighbor %s")});
constexpr auto kNetwork = Rows<Ospf>({Hex(1, "Reserved"), Flags(3, "Options", kOspf3OptionMasks)});
constexpr auto kAttached = Rows<Ospf>({IPv4("Attached Router")});
constexpr auto kInterPrefix = Rows<Ospf>({Hex(1, "Reserved"), Number(3, "Metric").Note(", Metric %u")});
constexpr auto kPrefix = Rows<Ospf>({
    Number(1, "Prefix Length").Into(&Ospf::size), Flags(1, "Prefix Options", kPrefixMasks)});
constexpr auto kReservedWord = Rows<Ospf>({Hex(2, "Reserved")});
constexpr auto kMetricWord = Rows<Ospf>({Number(2, "Metric").Note(", Metric %u")});
constexpr auto kReferencedWord = Rows<Ospf>({Hex(2, "Referenced LS Type", Ospf3LsaName).Into(&Ospf::kind)});
constexpr auto kInterRouter = Rows<Ospf>({
    Hex(1, "Reserved"), Flags(3, "Options", kOspf3OptionMasks), Hex(1, "Reserved 2"), Number(3, "Metric").Note(", Metric %u"),
    IPv4("Destination Router ID").Note(", %s")});
constexpr auto kExternal = Rows<Ospf>({
    Flags(1, "External Flags", kExternalMasks).Into(&Ospf::flags), Number(3, "Metric").Note(", Metric %u")});
constexpr auto kForwarding = Rows<Ospf>({IPv6("Forwarding Address")});
constexpr auto kTag = Rows<Ospf>({Number(4, "External Route Tag")});
constexpr auto kReferencedId = Rows<Ospf>({IPv4("Referenced Link State ID")});
constexpr auto kLinkLocal = Rows<Ospf>({
    Number(1, "Router Priority"), Flags(3, "Options", kOspf3OptionMasks), IPv6("Link-Local Interface Address"),
    Number(4, "Number of Prefixes").Into(&Ospf::count)});
constexpr auto kIntraPrefix = Rows<Ospf>({
    Number(2, "Number of Prefixes").Into(&Ospf::count), Hex(2, "Referenced LS Type", Ospf3LsaName),
    IPv4("Referenced Link State ID"), IPv4("Referenced Advertising Router")});

// Length, options and the word of the advertisement, then the address.
void ShowPrefix(const Place& in, Cursor& c, Ospf& ospf, RowSpan<Ospf> word) {
  const uint32_t bits = PeekU8(c);
  const int32_t size = 4 + static_cast<int32_t>((bits + 31) / 32 * 4);
  Cursor part = TakeCursor(c, size);
  const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Prefix"));
  ShowRows<Ospf>(under, part, kPrefix, ospf);
  ShowRows<Ospf>(under, part, word, ospf);
  ShowOspf3Prefix(under, part, bits, "Address Prefix");
}

void ShowPrefixes(const Place& in, Cursor& c, Ospf& ospf, RowSpan<Ospf> word) {
  const uint32_t count = ospf.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= 4 && MoreAt(in, c, loop); ++i) ShowPrefix(in, c, ospf, word);
}

void ShowLinks(const Place& in, Cursor& c, Ospf& ospf) {
  constexpr int32_t kLinkSize = 16;
  Loop loop;
  while (Left(c) >= kLinkSize && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, kLinkSize), "Link"));
    ShowRows<Ospf>(under, c, kLink, ospf);
  }
}

void ShowRouters(const Place& in, Cursor& c, Ospf& ospf) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ospf>(in, c, kAttached, ospf);
}

void ShowExternal(const Place& in, Cursor& c, Ospf& ospf) {
  enum : uint32_t { kHasTag = 1, kHasForwarding = 2 };
  ShowRows<Ospf>(in, c, kExternal, ospf);
  ShowPrefix(in, c, ospf, kReferencedWord);
  const bool isReferenced = ospf.kind.value != 0;
  if (ospf.flags.value & kHasForwarding) ShowRows<Ospf>(in, c, kForwarding, ospf);
  if (ospf.flags.value & kHasTag) ShowRows<Ospf>(in, c, kTag, ospf);
  if (isReferenced) ShowRows<Ospf>(in, c, kReferencedId, ospf);
}

// --- elements (RFC 8362) ---

constexpr auto kAttachedId = Rows<Ospf>({IPv4("Adjacent Neighbor Router ID")});
constexpr auto kInterPrefixElement = Rows<Ospf>({Hex(1, "Reserved"), Number(3, "Metric").Note(", Metric %u")});
constexpr auto kExternalElement = Rows<Ospf>({
    Flags(1, "External Flags", kExternalMasks), Number(3, "Metric").Note(", Metric %u")});
constexpr auto kIntraPrefixElement = Rows<Ospf>({Hex(2, "Reserved"), Number(2, "Metric").Note(", Metric %u")});
constexpr auto kLinkLocalIPv6 = Rows<Ospf>({IPv6("IPv6 Link-Local Address").Note(", %s")});
constexpr auto kLinkLocalIPv4 = Rows<Ospf>({IPv4("IPv4 Link-Local Address").Note(", %s")});
constexpr auto kForwarding4 = Rows<Ospf>({IPv4("IPv4 Forwarding Address")});
constexpr auto kPrefixSidMasks = SortedNames({{0x04, "Local"}, {0x08, "Value"}, {0x10, "Explicit Null"},
    {0x20, "Mapping Server"}, {0x40, "No PHP"}});
constexpr auto kAdjacencyMasks = SortedNames({{0x08, "Persistent"}, {0x10, "Group"}, {0x20, "Local"}, {0x40, "Value"},
    {0x80, "Backup"}});
constexpr auto kPrefixSid = Rows<Ospf>({Flags(1, "SID Flags", kPrefixSidMasks), Number(1, "Algorithm", NameAlgorithm),
    Hex(2, "Reserved")});
constexpr auto kAdjacencySid = Rows<Ospf>({Flags(1, "Adjacency Flags", kAdjacencyMasks), Number(1, "Weight"),
    Hex(2, "Reserved")});
constexpr auto kLanAdjacencySid = Rows<Ospf>({
    Flags(1, "Adjacency Flags", kAdjacencyMasks), Number(1, "Weight"), Hex(2, "Reserved"), IPv4("Neighbor Router ID")});
constexpr auto kLabel = Rows<Ospf>({Number(3, "SID/Label").Note(", %u")});
constexpr auto kIndex = Rows<Ospf>({Number(4, "SID/Index").Note(", %u")});
// A label of 20 bits in three octets, or an index in four.
void ShowSid(const Place& in, Cursor& c, Ospf& ospf) {
  if (Left(c) == 3) return ShowRows<Ospf>(in, c, kLabel, ospf);
  if (Left(c) >= 4) ShowRows<Ospf>(in, c, kIndex, ospf);
}
constexpr auto kDepth = Rows<Ospf>({Number(1, "MSD Type", kDepthNames), Number(1, "MSD Value")});
void ShowDepths(const Place& in, Cursor& c, Ospf& ospf) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Ospf>(in, c, kDepth, ospf);
}
constexpr auto kFlexibleMetric = Rows<Ospf>({
    Number(1, "Flexible Algorithm").Note(", %u"), Hex(1, "Metric Flags"), Hex(2, "Reserved"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kSourceRouter = Rows<Ospf>({IPv4("Prefix Source Router ID").Note(", %s")});
constexpr auto kSourceAddress = Rows<Ospf>({IPv6("Prefix Source Router Address").Note(", %s")});
constexpr auto kStructure = Rows<Ospf>({
    Number(1, "Locator Block Length"), Number(1, "Locator Node Length"), Number(1, "Function Length"),
    Number(1, "Argument Length")});
constexpr auto kStructures = Choices<Ospf>({{10, "SRv6 SID Structure", kStructure},
    {30, "SRv6 SID Structure", kStructure}});
void ShowStructure(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "Sub-Sub-TLV", kStructures, ospf);
}
constexpr auto kEndX = Rows<Ospf>({
    Hex(2, "Endpoint Behavior", kEndpointNames), Hex(1, "SID Flags"), Hex(1, "Reserved"),
    Number(1, "Algorithm", NameAlgorithm), Number(1, "Weight"),
    Hex(2, "Reserved 2"), IPv6("SRv6 SID").Note(", %s")});
constexpr auto kEndXLan = Rows<Ospf>({
    Hex(2, "Endpoint Behavior", kEndpointNames), Hex(1, "SID Flags"), Hex(1, "Reserved"),
    Number(1, "Algorithm", NameAlgorithm), Number(1, "Weight"),
    Hex(2, "Reserved 2"), IPv4("Neighbor Router ID"), IPv6("SRv6 SID").Note(", %s")});
// Attributes of links, numbered otherwise than in version 2 (RFC 9492), and members of bundles (RFC 9356).
template <uint32_t code>
void ShowLinkAttribute(const Place& in, Cursor& c, Ospf& ospf) { ShowOspfLinkAttribute(in, c, code, ospf); }
constexpr auto kLocalAddress = Rows<Ospf>({IPv6("Local Interface IPv6 Address").Note(", %s")});
constexpr auto kRemoteAddress = Rows<Ospf>({IPv6("Remote Interface IPv6 Address").Note(", %s")});
constexpr auto kMember = Rows<Ospf>({Number(4, "Member Link Local Identifier").Note(", %u")});
void ShowNested(const Place& in, Cursor& c, Ospf& ospf);
void ShowForApplications(const Place& in, Cursor& c, Ospf& ospf) {
  ShowOspfApplications(in, c, ospf);
  ShowNested(in, c, ospf);
}

constexpr auto kSubElements = Choices<Ospf>({
    {1, "IPv6 Forwarding Address", kForwarding}, {2, "IPv4 Forwarding Address", kForwarding4}, {3, "Route Tag", kTag},
    {4, "Prefix SID", kPrefixSid, ShowSid}, {5, "Adjacency SID", kAdjacencySid, ShowSid},
    {6, "LAN Adjacency SID", kLanAdjacencySid, ShowSid},
    {7, "SID/Label", {}, ShowSid}, {8, "Graceful Link Shutdown"}, {9, "Link MSD", {}, ShowDepths},
    {11, "Application-Specific Link Attributes", {}, ShowForApplications},
    {12, "Shared Risk Link Group", {}, ShowLinkAttribute<11>}, {13, "Unidirectional Link Delay", {}, ShowLinkAttribute<12>},
    {14, "Min/Max Unidirectional Link Delay", {}, ShowLinkAttribute<13>},
    {15, "Unidirectional Delay Variation", {}, ShowLinkAttribute<14>},
    {16, "Unidirectional Link Loss", {}, ShowLinkAttribute<15>},
    {17, "Unidirectional Residual Bandwidth", {}, ShowLinkAttribute<16>},
    {18, "Unidirectional Available Bandwidth", {}, ShowLinkAttribute<17>},
    {19, "Unidirectional Utilized Bandwidth", {}, ShowLinkAttribute<18>},
    {20, "Administrative Group", {}, ShowLinkAttribute<19>},
    {21, "Extended Administrative Group", {}, ShowLinkAttribute<20>}, {22, "TE Metric", {}, ShowLinkAttribute<22>},
    {23, "Maximum Link Bandwidth", {}, ShowLinkAttribute<23>}, {24, "Local Interface IPv6 Address", kLocalAddress},
    {25, "Remote Interface IPv6 Address", kRemoteAddress}, {26, "Flexible Algorithm Prefix Metric", kFlexibleMetric},
    {27, "Prefix Source OSPF Router ID", kSourceRouter}, {28, "Prefix Source Router Address", kSourceAddress},
    {29, "L2 Bundle Member Attributes", kMember, ShowNested}, {31, "SRv6 End.X SID", kEndX, ShowStructure}, {32, "SRv6 LAN End.X SID", kEndXLan, ShowStructure}});

void ShowSubElements(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "Sub-TLV", kSubElements, ospf); }
// Attributes stand within attributes; nobody means it to go deeper than this.
void ShowNested(const Place& in, Cursor& c, Ospf& ospf) {
  if (ospf.nesting >= kDeepestLinkAttributes) return;
  ++ospf.nesting;
  ShowSubElements(in, c, ospf);
  --ospf.nesting;
}
void ShowNeighbors(const Place& in, Cursor& c, Ospf& ospf) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ospf>(in, c, kAttachedId, ospf);
}
void ShowElementPrefix(const Place& in, Cursor& c, Ospf& ospf) {
  ShowPrefix(in, c, ospf, kReservedWord);
  ShowSubElements(in, c, ospf);
}

constexpr auto kPrefixRange = Rows<Ospf>({
    Number(1, "Prefix Length").Into(&Ospf::size), Number(1, "Address Family"), Number(2, "Range Size"),
    Hex(1, "Range Flags"), Bytes(3, "Reserved")});
void ShowPrefixRange(const Place& in, Cursor& c, Ospf& ospf) {
  ShowRows<Ospf>(in, c, kPrefixRange, ospf);
  ShowOspf3Prefix(in, c, ospf.size.value, "Address Prefix");
  ShowSubElements(in, c, ospf);
}

constexpr auto kElements = Choices<Ospf>({
    {1, "Router-Link", kLink, ShowSubElements}, {2, "Attached-Routers", {}, ShowNeighbors},
    {3, "Inter-Area-Prefix", kInterPrefixElement, ShowElementPrefix}, {4, "Inter-Area-Router", kInterRouter, ShowSubElements},
    {5, "External-Prefix", kExternalElement, ShowElementPrefix}, {6, "Intra-Area-Prefix", kIntraPrefixElement, ShowElementPrefix},
    {7, "IPv6 Link-Local Address", kLinkLocalIPv6, ShowSubElements},
    {8, "IPv4 Link-Local Address", kLinkLocalIPv4, ShowSubElements}, {9, "Extended Prefix Range", {},
    ShowPrefixRange}});

// --- locators of segments (RFC 9513) ---

constexpr auto kRouteNames = SortedNames({
    {1, "Intra-Area"}, {2, "Inter-Area"}, {3, "AS External Type 1"}, {4, "AS External Type 2"},
    {5, "NSSA External Type 1"},
    {6, "NSSA External Type 2"}});
constexpr auto kLocator = Rows<Ospf>({
    Number(1, "Route Type", kRouteNames).Note(", %s"), Number(1, "Algorithm", NameAlgorithm),
    Number(1, "Locator Length").Into(&Ospf::size),
    Flags(1, "Prefix Options", kPrefixMasks), Number(4, "Metric")});
constexpr auto kEndSid = Rows<Ospf>({
    Hex(1, "SID Flags"), Hex(1, "Reserved"), Hex(2, "Endpoint Behavior", kEndpointNames),
    IPv6("SRv6 SID").Note(", %s")});
constexpr auto kLocatorParts = Choices<Ospf>({
    {1, "SRv6 End SID", kEndSid, ShowStructure}, {2, "IPv6 Forwarding Address", kForwarding}, {3, "Route Tag", kTag},
    {4, "Prefix Source OSPF Router ID", kSourceRouter}, {5, "Prefix Source Router Address", kSourceAddress}});
void ShowLocator(const Place& in, Cursor& c, Ospf& ospf) {
  ShowOspf3Prefix(in, c, ospf.size.value, "Locator");
  ShowElements(in, c, kOspfForm, "Sub-TLV", kLocatorParts, ospf);
}
constexpr auto kLocators = Choices<Ospf>({{1, "SRv6 Locator", kLocator, ShowLocator}});
constexpr auto kReferences = Rows<Ospf>({
    Hex(2, "Reserved"), Hex(2, "Referenced LS Type", Ospf3LsaName), IPv4("Referenced Link State ID"),
    IPv4("Referenced Advertising Router")});
constexpr auto kExtendedLinkHead = Rows<Ospf>({Number(1, "Router Priority"), Flags(3, "Options", kOspf3OptionMasks)});

}  // namespace

const char* Ospf3LsaName(uint32_t type) { return LookupName(kFunctionNames, type & kFunctionMask); }

void ShowOspf3Prefix(const Place& in, Cursor& c, uint32_t bits, const char* label) {
  constexpr uint32_t kMostBits = 128;
  if (bits > kMostBits) return;
  const Field prefix = TakeBytes(c, static_cast<int32_t>((bits + 31) / 32 * 4));
  if (!prefix.here) return;
  uint8_t address[16] = {};
  for (int32_t i = 0; i < prefix.length; ++i) address[i] = static_cast<uint8_t>(PeekU8(prefix, i));
  AddLine(in, prefix, "%s: %s/%u", label, IPv6Text(address), bits);
  AppendToParent(in, prefix, ", %s/%u", IPv6Text(address), bits);
}

void ShowOspf3Extended(const Place& in, Cursor& c, Ospf& ospf) {
  switch (ospf.type.value & kFunctionMask) {
    case 33: ShowRows<Ospf>(in, c, kRouter, ospf); break;
    case 34: ShowRows<Ospf>(in, c, kNetwork, ospf); break;
    case 40: ShowRows<Ospf>(in, c, kExtendedLinkHead, ospf); break;
    case 41: ShowRows<Ospf>(in, c, kReferences, ospf); break;
    default: break;
  }
  ShowElements(in, c, kOspfForm, "TLV", kElements, ospf);
}

void ShowOspf3Advertisement(const Place& in, Cursor& c, Ospf& ospf) {
  switch (ospf.type.value & kFunctionMask) {
    case 1:
      ShowRows<Ospf>(in, c, kRouter, ospf);
      ShowLinks(in, c, ospf);
      break;
    case 2:
      ShowRows<Ospf>(in, c, kNetwork, ospf);
      ShowRouters(in, c, ospf);
      break;
    case 3:
      ShowRows<Ospf>(in, c, kInterPrefix, ospf);
      ShowPrefix(in, c, ospf, kReservedWord);
      break;
    case 4: ShowRows<Ospf>(in, c, kInterRouter, ospf); break;
    case 5: case 7: ShowExternal(in, c, ospf); break;
    case 8:
      ShowRows<Ospf>(in, c, kLinkLocal, ospf);
      ShowPrefixes(in, c, ospf, kReservedWord);
      break;
    case 9:
      ShowRows<Ospf>(in, c, kIntraPrefix, ospf);
      ShowPrefixes(in, c, ospf, kMetricWord);
      break;
    case 10: case 13: ShowOspfTraffic(in, c, ospf); break;
    case 11: ShowOspfGrace(in, c, ospf); break;
    case 12: ShowOspfRouterInformation(in, c, ospf); break;
    case 33: case 34: case 35: case 36: case 37: case 39: case 40: case 41: ShowOspf3Extended(in, c, ospf); break;
    case 42: ShowElements(in, c, kOspfForm, "TLV", kLocators, ospf); break;
    default: break;
  }
}

}  // namespace qxview
