// The elements within those of IS-IS: of links (RFC 5305, RFC 5307, RFC 8570, RFC 8667), of prefixes (RFC 5130, RFC 7794,
// RFC 8667) and of a router's capabilities (RFC 7981, RFC 8667, RFC 8491, RFC 9352).
#include "decoders/common/traffic_engineering.h"
#include "decoders/net/isis.h"

namespace qxview {
namespace {

constexpr auto kPrefixSidMasks = SortedNames({
    {0x04, "Local"}, {0x08, "Value"}, {0x10, "Explicit Null"}, {0x20, "No PHP"}, {0x40, "Node"}, {0x80, "Readvertisement"}});
constexpr auto kAdjacencyMasks = SortedNames({
    {0x04, "Persistent"}, {0x08, "Set"}, {0x10, "Local"}, {0x20, "Value"}, {0x40, "Backup"}, {0x80, "IPv6"}});
constexpr auto kAttributeMasks = SortedNames({{0x10, "Anycast"}, {0x20, "Node"}, {0x40, "Readvertisement"}, {0x80, "External"}});
constexpr auto kLinkMasks = SortedNames({{0x4000, "Link Excluded from Local Protection"}, {0x8000, "Local Protection Available"}});

constexpr auto kGroup = Rows<Isis>({Hex(4, nullptr)});
constexpr auto kInterfaces = Rows<Isis>({Number(4, "Link Local Identifier"), Number(4, "Link Remote Identifier")});
constexpr auto kAddress4 = Rows<Isis>({IPv4(nullptr).Note(", %s")});
constexpr auto kAddress6 = Rows<Isis>({IPv6(nullptr).Note(", %s")});
constexpr auto kBandwidth = Rows<Isis>({Shown(4, nullptr, ShowBandwidth)});
constexpr auto kUnreserved = Rows<Isis>({
    Shown(4, "Unreserved Bandwidth Priority 0", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 1", ShowBandwidth),
    Shown(4, "Unreserved Bandwidth Priority 2", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 3", ShowBandwidth),
    Shown(4, "Unreserved Bandwidth Priority 4", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 5", ShowBandwidth),
    Shown(4, "Unreserved Bandwidth Priority 6", ShowBandwidth), Shown(4, "Unreserved Bandwidth Priority 7", ShowBandwidth)});
constexpr auto kMetric3 = Rows<Isis>({Number(3, nullptr).Note(", %u")});
constexpr auto kLinkAttributes = Rows<Isis>({Flags(2, "Link Attributes", kLinkMasks)});
constexpr auto kProtection = Rows<Isis>({Hex(1, "Protection Capability"), Hex(1, "Reserved")});
constexpr auto kSwitching = Rows<Isis>({
    Number(1, "Switching Capability", kSwitchingNames), Number(1, "Encoding", kEncodingNames), Hex(2, "Reserved"),
    Shown(4, "Maximum LSP Bandwidth Priority 0", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 1", ShowBandwidth),
    Shown(4, "Maximum LSP Bandwidth Priority 2", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 3", ShowBandwidth),
    Shown(4, "Maximum LSP Bandwidth Priority 4", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 5", ShowBandwidth),
    Shown(4, "Maximum LSP Bandwidth Priority 6", ShowBandwidth), Shown(4, "Maximum LSP Bandwidth Priority 7", ShowBandwidth)});
constexpr auto kNumber4 = Rows<Isis>({Number(4, nullptr).Note(", %u")});
constexpr auto kNumber8 = Rows<Isis>({Number(8, nullptr)});
constexpr auto kAdjacency = Rows<Isis>({Flags(1, "Adjacency Flags", kAdjacencyMasks), Number(1, "Weight")});
constexpr auto kDelay = Rows<Isis>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Delay", " microseconds")});
constexpr auto kDelayRange = Rows<Isis>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Minimum Delay", " microseconds"), Word(4),
    Bits(0, 8, "Reserved 2"), Bits(8, 24, "Maximum Delay", " microseconds")});
constexpr auto kVariation = Rows<Isis>({Word(4), Bits(0, 8, "Reserved"), Bits(8, 24, "Delay Variation", " microseconds")});
constexpr auto kLoss = Rows<Isis>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Link Loss", " times 0.000003 percent")});
constexpr auto kDepth = Rows<Isis>({Number(1, "MSD Type", kDepthNames), Number(1, "MSD Value")});
constexpr auto kPrefixSid = Rows<Isis>({Flags(1, "Prefix SID Flags", kPrefixSidMasks), Number(1, "Algorithm", NameAlgorithm)});
constexpr auto kPrefixAttributes = Rows<Isis>({Flags(1, "Prefix Attribute Flags", kAttributeMasks)});
constexpr auto kLabel3 = Rows<Isis>({Number(3, nullptr).Note(", %u")});
constexpr auto kCapabilityHead = Rows<Isis>({
    Hex(1, "SR Flags"), Flag(0, "MPLS IPv4"), Flag(1, "MPLS IPv6"), Bits(2, 6, "Reserved")});
constexpr auto kBlockHead = Rows<Isis>({Hex(1, "SRLB Flags")});
constexpr auto kRange = Rows<Isis>({Number(3, "Range").Note(", %u labels")});
constexpr auto kAlgorithm = Rows<Isis>({Number(1, "Algorithm", NameAlgorithm).Note(", %s")});
constexpr auto kPreference = Rows<Isis>({Number(1, "Preference")});
constexpr auto kSrv6 = Rows<Isis>({Hex(2, "SRv6 Flags"), Bits(0, 1, "Reserved"), Flag(1, "OAM"), Bits(2, 14, "Reserved 2")});
constexpr auto kFlexible = Rows<Isis>({
    Number(1, "Flexible Algorithm").Note(", %u"), Number(1, "Metric Type"), Number(1, "Calculation Type"), Number(1, "Priority")});
constexpr auto kTag = Rows<Isis>({Number(4, "Administrative Tag")});

void ShowNeighborSystem(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %s", label, SystemIdText(field));
}
constexpr auto kLanAdjacency = Rows<Isis>({
    Flags(1, "Adjacency Flags", kAdjacencyMasks), Number(1, "Weight"), Shown(6, "Neighbor System ID", ShowNeighborSystem)});

// A label of 20 bits in three octets, or an index in four.
void ShowSid(const Place& in, Cursor& c, Isis& isis) {
  if (Left(c) == 3) return ShowRows<Isis>(in, c, kLabel3, isis, "SID/Label");
  if (Left(c) >= 4) ShowRows<Isis>(in, c, kNumber4, isis, "SID/Index");
}
void ShowDepths(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, kDepth, isis);
}
void ShowGroups(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, kGroup, isis, "Extended Administrative Group");
}
void ShowTags(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, kTag, isis);
}
void ShowAlgorithms(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Isis>(in, c, kAlgorithm, isis);
}

// Ranges of labels, each with the element that holds its first.
void ShowRanges(const Place& in, Cursor& c, Isis& isis) {
  static constexpr auto kSid = Choices<Isis>({{1, "SID/Label", {}, ShowSid}});
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    ShowRows<Isis>(in, c, kRange, isis);
    Cursor part = TakeCursor(c, 2 + static_cast<int32_t>(PeekU8(c, 1)));
    ShowElements(in, part, kIsisForm, "Sub-Sub-TLV", kSid, isis);
  }
}

constexpr auto kLinkElements = Choices<Isis>({
    {3, "Administrative Group", kGroup}, {4, "Link Local/Remote Identifiers", kInterfaces},
    {6, "IPv4 Interface Address", kAddress4}, {8, "IPv4 Neighbor Address", kAddress4}, {9, "Maximum Link Bandwidth", kBandwidth},
    {10, "Maximum Reservable Link Bandwidth", kBandwidth}, {11, "Unreserved Bandwidth", kUnreserved},
    {12, "IPv6 Interface Address", kAddress6}, {13, "IPv6 Neighbor Address", kAddress6},
    {14, "Extended Administrative Group", {}, ShowGroups}, {15, "Link MSD", {}, ShowDepths},
    {16, "Application-Specific Link Attributes"}, {17, "Generic Metric"}, {18, "TE Default Metric", kMetric3},
    {19, "Link Attributes", kLinkAttributes}, {20, "Link Protection Type", kProtection},
    {21, "Interface Switching Capability Descriptor", kSwitching}, {22, "Bandwidth Constraints"},
    {23, "Unconstrained TE LSP Count"}, {24, "Remote AS Number", kNumber4}, {25, "IPv4 Remote ASBR Identifier", kAddress4},
    {26, "IPv6 Remote ASBR Identifier", kAddress6}, {27, "Interface Adjustment Capability Descriptor"}, {28, "MTU"},
    {29, "SPB Link Metric", kMetric3}, {30, "SPB A-Link"}, {31, "Adjacency SID", kAdjacency, ShowSid},
    {32, "LAN Adjacency SID", kLanAdjacency, ShowSid}, {33, "Unidirectional Link Delay", kDelay},
    {34, "Min/Max Unidirectional Link Delay", kDelayRange}, {35, "Unidirectional Delay Variation", kVariation},
    {36, "Unidirectional Link Loss", kLoss}, {37, "Unidirectional Residual Bandwidth", kBandwidth},
    {38, "Unidirectional Available Bandwidth", kBandwidth}, {39, "Unidirectional Utilized Bandwidth", kBandwidth},
    {40, "RTM Capability"}, {41, "L2 Bundle Member Adjacency SID"}, {42, "L2 Bundle Member LAN Adjacency SID"},
    {43, "SRv6 End.X SID"}, {44, "SRv6 LAN End.X SID"}, {45, "IPv6 Local ASBR Identifier"}});

constexpr auto kPrefixElements = Choices<Isis>({
    {1, "32-bit Administrative Tag", {}, ShowTags}, {2, "64-bit Administrative Tag", kNumber8},
    {3, "Prefix SID", kPrefixSid, ShowSid}, {4, "Prefix Attribute Flags", kPrefixAttributes}, {5, "SRv6 End SID"},
    {6, "Flexible Algorithm Prefix Metric"}, {11, "IPv4 Source Router ID", kAddress4}, {12, "IPv6 Source Router ID", kAddress6},
    {32, "BIER Information"}});

constexpr auto kCapabilityElements = Choices<Isis>({
    {1, "TE Node Capability Descriptor"}, {2, "SR Capabilities", kCapabilityHead, ShowRanges}, {3, "TE Mesh Group IPv4"},
    {4, "TE Mesh Group IPv6"}, {5, "PCED"}, {6, "Nickname"}, {7, "Trees"}, {8, "Tree Identifiers"},
    {9, "Trees Used Identifiers"}, {10, "Interested VLANs and Spanning Tree Roots"}, {11, "IPv4 TE Router ID", kAddress4},
    {12, "IPv6 TE Router ID", kAddress6}, {13, "TRILL Version"}, {14, "VLAN Group"},
    {15, "Interested Labels and Spanning Tree Roots"}, {16, "RBridge Channel Protocols"}, {17, "Affinity"},
    {18, "Label Group"}, {19, "SR Algorithm", {}, ShowAlgorithms}, {20, "S-BFD Discriminators", kNumber4},
    {21, "Node Administrative Tag", {}, ShowTags}, {22, "SR Local Block", kBlockHead, ShowRanges}, {23, "Node MSD", {}, ShowDepths},
    {24, "SRMS Preference", kPreference}, {25, "SRv6 Capabilities", kSrv6}, {26, "Flexible Algorithm Definition", kFlexible},
    {27, "IS-IS Area Leader"}, {28, "IS-IS Dynamic Flooding"}, {29, "IP Algorithm"}});

}  // namespace

void ShowIsisLinkElements(const Place& in, Cursor& c, Isis& isis) { ShowElements(in, c, kIsisForm, "Sub-TLV", kLinkElements, isis); }
void ShowIsisPrefixElements(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kPrefixElements, isis);
}
void ShowIsisCapabilities(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kCapabilityElements, isis);
}

}  // namespace qxview
