// The elements within those of IS-IS: of links (RFC 5305, RFC 5307, RFC 8570, RFC 8667), of prefixes (RFC 5130, RFC 7794,
// RFC 8667, RFC 8401) and of a router's capabilities (RFC 7981, RFC 8667, RFC 8491, RFC 9352, RFC 9350, RFC 5088).
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
constexpr auto kUnreserved = Rows<Isis>({Shown<Isis>(nullptr, ShowUnreservedBandwidths<Isis>)});
constexpr auto kMetric3 = Rows<Isis>({Number(3, nullptr).Note(", %u")});
constexpr auto kLinkAttributes = Rows<Isis>({Flags(2, "Link Attributes", kLinkMasks)});
constexpr auto kProtection = Rows<Isis>({Hex(1, "Protection Capability"), Hex(1, "Reserved")});
constexpr auto kSwitching = Rows<Isis>({
    Number(1, "Switching Capability", kSwitchingNames), Number(1, "Encoding", kEncodingNames), Hex(2, "Reserved"),
    Shown<Isis>(nullptr, ShowLspBandwidths<Isis>)});
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

// --- attributes for applications (RFC 9479), constraints of bandwidth (RFC 4124), adaptation (RFC 6001), timing
// (RFC 8169) ---

constexpr auto kApplicationMasks = SortedNames({
    {0x10, "Flexible Algorithm"}, {0x20, "Loop-Free Alternate"}, {0x40, "Segment Routing Policy"}, {0x80, "RSVP-TE"}});
constexpr auto kMaskLengths = Rows<Isis>({
    Hex(1, "Standard Mask Octet"), Flag(0, "Legacy"), Bits(1, 7, "Standard Mask Length").Into(&Isis::size),
    Hex(1, "User Mask Octet"),
    Bits(0, 1, "Reserved"), Bits(1, 7, "User Mask Length").Into(&Isis::count)});
constexpr auto kStandardMask = Rows<Isis>({Flags(1, "Standard Applications", kApplicationMasks)});
constexpr auto kMoreMask = Rows<Isis>({Bytes(0, "More Standard Applications")});
constexpr auto kUserMask = Rows<Isis>({Bytes(0, "User-Defined Applications")});

constexpr auto kModelNames = SortedNames({{0, "Russian Dolls"}, {1, "Maximum Allocation"},
    {2, "Maximum Allocation with Reservation"}});
constexpr auto kModel = Rows<Isis>({Number(1, "Bandwidth Constraints Model", kModelNames), Bytes(3, "Reserved")});
constexpr auto kConstraint = Rows<Isis>({Shown(4, "Bandwidth Constraint", ShowBandwidth)});
constexpr auto kNumber2 = Rows<Isis>({Number(2, nullptr).Note(", %u")});
constexpr auto kGeneric = Rows<Isis>({Number(1, "Metric Type"), Number(3, "Metric").Note(", %u")});
constexpr auto kAdaptation = Rows<Isis>({
    Number(1, "Lower Switching Capability", kSwitchingNames), Number(1, "Lower Encoding", kEncodingNames),
    Number(1, "Upper Switching Capability", kSwitchingNames), Number(1, "Upper Encoding", kEncodingNames),
    Shown<Isis>(nullptr, ShowLspBandwidths<Isis>)});
constexpr auto kMtu = Rows<Isis>({Word(1), Flag(0, "MTU Test Failed"), Bits(1, 7, "Reserved"),
    Number(2, "MTU").Note(", %u")});
constexpr auto kBridgeLink = Rows<Isis>({Number(3, "Link Metric").Note(", %u"), Number(1, "Number of Ports"),
    Hex(2, "Port Identifier")});
constexpr auto kBridgeOpaque = Rows<Isis>({Hex(4, "ECT Algorithm"), Bytes(0, "ECT Information")});
constexpr auto kTiming = Rows<Isis>({Word(1), Bits(0, 3, "Residence Time Accuracy").Note(", %u"),
    Bits(3, 5, "Reserved"), Bytes(0, "Timing Value")});
constexpr auto kBundleAdjacency = Rows<Isis>({Flags(1, "Adjacency Flags", kAdjacencyMasks), Number(1, "Weight"),
    Bytes(0, "Member SIDs").Note(", %s")});
constexpr auto kBundleLanAdjacency = Rows<Isis>({
    Flags(1, "Adjacency Flags", kAdjacencyMasks), Number(1, "Weight"), Shown(6, "Neighbor System ID",
    ShowNeighborSystem),
    Bytes(0, "Member SIDs").Note(", %s")});
constexpr auto kReflector = Rows<Isis>({Number(4, "Flood Reflection Cluster ID").Note(", %u")});

void ShowConstraints(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kModel, isis);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, kConstraint, isis);
}

void ShowForApplications(const Place& in, Cursor& c, Isis& isis) {
  ShowIsisApplications(in, c, isis);
  if (isis.nesting >= kDeepestLinkAttributes) return;
  ++isis.nesting;
  ShowIsisLinkElements(in, c, isis);
  --isis.nesting;
}

// --- segments of IPv6 (RFC 9352) ---

constexpr auto kCrossMasks = SortedNames({{0x20, "Persistent"}, {0x40, "Set"}, {0x80, "Backup"}});
constexpr auto kCrossConnect = Rows<Isis>({
    Flags(1, "SID Flags", kCrossMasks), Number(1, "Algorithm", NameAlgorithm), Number(1, "Weight"),
    Hex(2, "Endpoint Behavior", kEndpointNames),
    IPv6("SRv6 SID").Note(", %s"), Number(1, "Sub-Sub-TLV Length")});
constexpr auto kLanSystem = Rows<Isis>({Shown(6, "Neighbor System ID", ShowNeighborSystem)});
constexpr auto kEndSid = Rows<Isis>({
    Hex(1, "SID Flags"), Hex(2, "Endpoint Behavior", kEndpointNames), IPv6("SRv6 SID").Note(", %s"),
    Number(1, "Sub-Sub-TLV Length")});
constexpr auto kStructure = Rows<Isis>({
    Number(1, "Locator Block Length"), Number(1, "Locator Node Length"), Number(1, "Function Length"),
    Number(1, "Argument Length")});
constexpr auto kSidParts = Choices<Isis>({{1, "SRv6 SID Structure", kStructure}});
void ShowSidParts(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-Sub-TLV", kSidParts, isis);
}
void ShowLanCross(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kCrossConnect, isis);
  ShowSidParts(in, c, isis);
}

// --- of prefixes: metrics of flexible algorithms (RFC 9350), bit index replication (RFC 8401) ---

constexpr auto kFlexibleMetric = Rows<Isis>({Number(1, "Flexible Algorithm").Note(", %u"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kReplication = Rows<Isis>({
    Number(1, "BIER Algorithm"), Number(1, "IGP Algorithm", NameAlgorithm), Number(1, "Sub-Domain ID"),
    Number(2, "BFR-ID").Note(", %u")});
constexpr auto kReplicationLabel = Rows<Isis>({
    Number(1, "Maximum Set Identifier"), Hex(3, "Encapsulation Word"), Bits(0, 4, "Bit String Length"),
    Bits(4, 20, "Label").Note(", Label %u")});
constexpr auto kReplicationParts = Choices<Isis>({{1, "BIER MPLS Encapsulation", kReplicationLabel}});
void ShowReplicationParts(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-Sub-TLV", kReplicationParts, isis);
}

// --- of routers: path computation (RFC 5089), meshes (RFC 4972), flexible algorithms, flooding (RFC 9667) ---

constexpr auto kNodeMasks = SortedNames({
    {0x08, "P2MP Branch"}, {0x10, "P2MP Bud"}, {0x20, "GMPLS"}, {0x40, "MPLS"}, {0x80, "P2MP TE"}});
constexpr auto kNode = Rows<Isis>({Flags(1, "TE Node Capabilities", kNodeMasks), Bytes(0, "More Capabilities")});
constexpr auto kGroup4 = Rows<Isis>({
    Number(4, "Mesh Group Number").Note(", %u"), IPv4("Tail-End Address"), Counted(1, Utf8(0, "Tail-End Name"))});
constexpr auto kGroup6 = Rows<Isis>({
    Number(4, "Mesh Group Number").Note(", %u"), IPv6("Tail-End Address"), Counted(1, Utf8(0, "Tail-End Name"))});
constexpr auto kScopeMasks = SortedNames({
    {0x0200, "Inter-Layer"}, {0x0400, "Inter-AS by Default"}, {0x0800, "Inter-AS"}, {0x1000, "Inter-Area by Default"},
    {0x2000, "Inter-Area"}, {0x4000, "Intra-Area"}});
constexpr auto kScope = Rows<Isis>({
    Flags(2, "Path Scope", kScopeMasks), Word(2), Bits(0, 3, "Intra-Area Preference"),
    Bits(3, 3, "Inter-Area Preference"),
    Bits(6, 3, "Inter-AS Preference"), Bits(9, 3, "Inter-Layer Preference"), Bits(12, 4, "Reserved")});
constexpr auto kComputerMasks = SortedNames({
    {0x00400000, "Multiple Requests"}, {0x00800000, "Global Concurrent Optimization"}, {0x01000000, "Prioritization"},
    {0x02000000, "Additive Constraints"}, {0x04000000, "Synchronized Requests"},
    {0x08000000, "Multiple Objective Functions"}, {0x10000000, "Link-Diverse Paths"}, {0x20000000, "Equal Paths"},
    {0x40000000, "Bidirectional Paths"}, {0x80000000, "GMPLS Constraints"}});
constexpr auto kComputerFlags = Rows<Isis>({Flags(4, "PCE Capabilities", kComputerMasks)});
constexpr auto kAddressType = Rows<Isis>({Number(1, "Address Type")});
constexpr auto kDomain = Rows<Isis>({Number(1, "Domain Type"), Bytes(0, "Domain Identifier")});
void ShowComputerAddress(const Place& in, Cursor& c, Isis& isis) {
  // keys: address PCE Address
  ShowRows<Isis>(in, c, Left(c) >= 16 ? RowSpan<Isis>(kAddress6) : RowSpan<Isis>(kAddress4), isis, "PCE Address");
}
constexpr auto kComputerParts = Choices<Isis>({
    {1, "PCE Address", kAddressType, ShowComputerAddress}, {2, "Path Scope", kScope}, {3, "PCE Domain", kDomain},
    {4, "Neighbor PCE Domain", kDomain}, {5, "PCE Capability Flags", kComputerFlags}});
void ShowComputer(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-Sub-TLV", kComputerParts, isis);
}
template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Isis& isis) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Isis>(in, c, rows, isis);
}
constexpr auto kFlexibleFlags = Rows<Isis>({Hex(1, "Definition Flags"), Flag(0, "Prefix Metric"),
    Bytes(0, "More Flags")});
constexpr auto kRiskGroup = Rows<Isis>({Number(4, "Shared Risk Link Group")});
constexpr auto kFlexibleParts = Choices<Isis>({
    {1, "Exclude Administrative Group", {}, ShowGroups}, {2, "Include Any Administrative Group", {}, ShowGroups},
    {3, "Include All Administrative Groups", {}, ShowGroups}, {4, "Flexible Algorithm Definition Flags",
    kFlexibleFlags},
    {5, "Exclude Shared Risk Link Groups", {}, ShowEach<kRiskGroup, 4>}});
void ShowFlexibleParts(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-Sub-TLV", kFlexibleParts, isis);
}
constexpr auto kLeader = Rows<Isis>({Number(1, "Leader Priority").Note(", %u"), Number(1, "Leader Algorithm")});
constexpr auto kFloodingAlgorithm = Rows<Isis>({Number(1, "Flooding Algorithm")});
template <uint32_t type>
void ShowBridge(const Place& in, Cursor& c, Isis& isis) { ShowIsisBridgeCapability(in, c, type, isis); }

constexpr auto kLinkElements = Choices<Isis>({
    {3, "Administrative Group", kGroup}, {4, "Link Local/Remote Identifiers", kInterfaces},
    {6, "IPv4 Interface Address", kAddress4}, {8, "IPv4 Neighbor Address", kAddress4}, {9, "Maximum Link Bandwidth", kBandwidth},
    {10, "Maximum Reservable Link Bandwidth", kBandwidth}, {11, "Unreserved Bandwidth", kUnreserved},
    {12, "IPv6 Interface Address", kAddress6}, {13, "IPv6 Neighbor Address", kAddress6},
    {14, "Extended Administrative Group", {}, ShowGroups}, {15, "Link MSD", {}, ShowDepths},
    {16, "Application-Specific Link Attributes", {}, ShowForApplications}, {17, "Generic Metric", kGeneric},
    {18, "TE Default Metric", kMetric3},
    {19, "Link Attributes", kLinkAttributes}, {20, "Link Protection Type", kProtection},
    {21, "Interface Switching Capability Descriptor", kSwitching}, {22, "Bandwidth Constraints", {}, ShowConstraints},
    {23, "Unconstrained TE LSP Count", kNumber2}, {24, "Remote AS Number", kNumber4},
    {25, "IPv4 Remote ASBR Identifier", kAddress4},
    {26, "IPv6 Remote ASBR Identifier", kAddress6}, {27, "Interface Adjustment Capability Descriptor", kAdaptation},
    {28, "MTU", kMtu},
    {29, "SPB Link Metric", kBridgeLink}, {30, "SPB Adjacency Opaque ECT Algorithm", kBridgeOpaque},
    {31, "Adjacency SID", kAdjacency, ShowSid},
    {32, "LAN Adjacency SID", kLanAdjacency, ShowSid}, {33, "Unidirectional Link Delay", kDelay},
    {34, "Min/Max Unidirectional Link Delay", kDelayRange}, {35, "Unidirectional Delay Variation", kVariation},
    {36, "Unidirectional Link Loss", kLoss}, {37, "Unidirectional Residual Bandwidth", kBandwidth},
    {38, "Unidirectional Available Bandwidth", kBandwidth}, {39, "Unidirectional Utilized Bandwidth", kBandwidth},
    {40, "RTM Capability", kTiming}, {41, "L2 Bundle Member Adjacency SID", kBundleAdjacency},
    {42, "L2 Bundle Member LAN Adjacency SID", kBundleLanAdjacency},
    {43, "SRv6 End.X SID", kCrossConnect, ShowSidParts}, {44, "SRv6 LAN End.X SID", kLanSystem, ShowLanCross},
    {45, "IPv6 Local ASBR Identifier", kAddress6}, {161, "Flood Reflection Adjacency", kReflector}});

constexpr auto kPrefixElements = Choices<Isis>({
    {1, "32-bit Administrative Tag", {}, ShowTags}, {2, "64-bit Administrative Tag", kNumber8},
    {3, "Prefix SID", kPrefixSid, ShowSid}, {4, "Prefix Attribute Flags", kPrefixAttributes},
    {5, "SRv6 End SID", kEndSid, ShowSidParts},
    {6, "Flexible Algorithm Prefix Metric", kFlexibleMetric}, {11, "IPv4 Source Router ID", kAddress4},
    {12, "IPv6 Source Router ID", kAddress6},
    {32, "BIER Information", kReplication, ShowReplicationParts}});

constexpr auto kCapabilityElements = Choices<Isis>({
    {1, "TE Node Capability Descriptor", kNode}, {2, "SR Capabilities", kCapabilityHead, ShowRanges},
    {3, "TE Mesh Group IPv4", {}, ShowEach<kGroup4, 9>},
    {4, "TE Mesh Group IPv6", {}, ShowEach<kGroup6, 21>}, {5, "PCED", {}, ShowComputer},
    {6, "Nickname", {}, ShowBridge<6>},
    {7, "Trees", {}, ShowBridge<7>}, {8, "Tree Identifiers", {}, ShowBridge<8>},
    {9, "Trees Used Identifiers", {}, ShowBridge<9>},
    {10, "Interested VLANs and Spanning Tree Roots", {}, ShowBridge<10>}, {11, "IPv4 TE Router ID", kAddress4},
    {12, "IPv6 TE Router ID", kAddress6}, {13, "TRILL Version", {}, ShowBridge<13>},
    {14, "VLAN Group", {}, ShowBridge<14>},
    {15, "Interested Labels and Spanning Tree Roots", {}, ShowBridge<15>},
    {16, "RBridge Channel Protocols", {}, ShowBridge<16>},
    {17, "Affinity", {}, ShowBridge<17>}, {18, "Label Group", {}, ShowBridge<18>},
    {19, "SR Algorithm", {}, ShowAlgorithms}, {20, "S-BFD Discriminators", kNumber4},
    {21, "Node Administrative Tag", {}, ShowTags}, {22, "SR Local Block", kBlockHead, ShowRanges}, {23, "Node MSD", {}, ShowDepths},
    {24, "SRMS Preference", kPreference}, {25, "SRv6 Capabilities", kSrv6},
    {26, "Flexible Algorithm Definition", kFlexible, ShowFlexibleParts},
    {27, "IS-IS Area Leader", kLeader}, {28, "IS-IS Dynamic Flooding", {}, ShowEach<kFloodingAlgorithm, 1>},
    {29, "IP Algorithm", {}, ShowAlgorithms}});

}  // namespace

void ShowIsisApplications(const Place& in, Cursor& c, Isis& isis) {
  ShowRows<Isis>(in, c, kMaskLengths, isis);
  Cursor standard = TakeCursor(c, isis.size.value), user = TakeCursor(c, isis.count.value);
  if (Left(standard)) ShowRows<Isis>(in, standard, kStandardMask, isis);
  if (Left(standard)) ShowRows<Isis>(in, standard, kMoreMask, isis);
  if (Left(user)) ShowRows<Isis>(in, user, kUserMask, isis);
}
void ShowIsisSidElements(const Place& in, Cursor& c, Isis& isis) {
  static constexpr auto kSids = Choices<Isis>({{1, "SID/Label", {}, ShowSid}, {3, "Prefix SID", kPrefixSid, ShowSid}});
  ShowElements(in, c, kIsisForm, "Sub-TLV", kSids, isis);
}
void ShowIsisLinkElements(const Place& in, Cursor& c, Isis& isis) { ShowElements(in, c, kIsisForm, "Sub-TLV", kLinkElements, isis); }
void ShowIsisPrefixElements(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kPrefixElements, isis);
}
void ShowIsisCapabilities(const Place& in, Cursor& c, Isis& isis) {
  ShowElements(in, c, kIsisForm, "Sub-TLV", kCapabilityElements, isis);
}

}  // namespace qxview
