// What OSPF's opaque advertisements carry (RFC 5250): traffic engineering (RFC 3630, RFC 4203, RFC 7471), graceful restart
// (RFC 3623), router information (RFC 7770), prefixes and links with segment routing (RFC 7684, RFC 8665), what
// computes paths (RFC 5088), meshes
// (RFC 4972), flexible algorithms (RFC 9350), bit index replication (RFC 8444), applications (RFC 9492).
#include "decoders/common/traffic_engineering.h"
#include "decoders/net/ospf.h"

namespace qxview {
namespace {

constexpr auto kOpaqueNames = SortedNames({
    {1, "Traffic Engineering"}, {2, "Sycamore Optical Topology Descriptions"}, {3, "Graceful Restart"}, {4, "Router Information"},
    {5, "L1VPN"}, {6, "Inter-AS Traffic Engineering"}, {7, "Extended Prefix"}, {8, "Extended Link"}, {9, "TTZ"},
    {10, "OSPF Dynamic Flooding"}, {11, "OSPFv2 Extended Inter-Area ASBR"}});
constexpr auto kLinkTypeNames = SortedNames({{1, "Point-to-Point"}, {2, "Multi-Access"}});
constexpr auto kRestartNames = SortedNames({
    {0, "Unknown"}, {1, "Software Restart"}, {2, "Software Reload/Upgrade"}, {3, "Switch to Redundant Control Processor"}});
constexpr auto kRouteNames = SortedNames({
    {0, "Unspecified"}, {1, "Intra-Area"}, {3, "Inter-Area"}, {5, "AS External"}, {7, "NSSA External"}});
constexpr auto kFamilyNames = SortedNames({{0, "IPv4 Unicast"}});
constexpr auto kExtendedLinkNames = SortedNames({
    {1, "Point-to-Point"}, {2, "Transit Network"}, {3, "Stub Network"}, {4, "Virtual Link"}});
constexpr auto kCapabilityMasks = SortedNames({
    {0x02000000, "Two-Part Metric Support"}, {0x04000000, "Experimental TE"}, {0x08000000, "Point-to-Point over LAN"},
    {0x10000000, "Traffic Engineering Support"}, {0x20000000, "Stub Router Support"}, {0x40000000, "Graceful Restart Helper"},
    {0x80000000, "Graceful Restart Capable"}});
constexpr auto kPrefixMasks = SortedNames({{0x20, "Anycast"}, {0x40, "Node"}, {0x80, "Attach"}});
constexpr auto kSidMasks = SortedNames({
    {0x04, "Local"}, {0x08, "Value"}, {0x10, "Explicit Null"}, {0x20, "Mapping Server"}, {0x40, "No PHP"}});
constexpr auto kAdjacencyMasks = SortedNames({
    {0x08, "Persistent"}, {0x10, "Group"}, {0x20, "Local"}, {0x40, "Value"}, {0x80, "Backup"}});

constexpr auto kAddress = Rows<Ospf>({IPv4(nullptr).Note(", %s")});
constexpr auto kNumber = Rows<Ospf>({Number(4, nullptr).Note(", %u")});
constexpr auto kGroups = Rows<Ospf>({Hex(4, nullptr).Note(", %u")});
constexpr auto kLinkType = Rows<Ospf>({Number(1, nullptr, kLinkTypeNames).Note(", %s")});
constexpr auto kBandwidth = Rows<Ospf>({Shown(4, nullptr, ShowBandwidth)});
constexpr auto kInterfaces = Rows<Ospf>({Number(4, "Link Local Identifier"), Number(4, "Link Remote Identifier")});
constexpr auto kProtection = Rows<Ospf>({Hex(1, "Protection Capability"), Bytes(3, "Reserved")});
constexpr auto kSwitching = Rows<Ospf>({
    Number(1, "Switching Capability", kSwitchingNames), Number(1, "Encoding", kEncodingNames), Hex(2, "Reserved"),
    Shown<Ospf>(nullptr, ShowLspBandwidths<Ospf>)});
constexpr auto kDelay = Rows<Ospf>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Delay", " microseconds")});
constexpr auto kDelayRange = Rows<Ospf>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Minimum Delay", " microseconds"), Word(4),
    Bits(0, 8, "Reserved 2"), Bits(8, 24, "Maximum Delay", " microseconds")});
constexpr auto kVariation = Rows<Ospf>({Word(4), Bits(0, 8, "Reserved"), Bits(8, 24, "Delay Variation", " microseconds")});
constexpr auto kLoss = Rows<Ospf>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Link Loss", " times 0.000003 percent")});
constexpr auto kPriorities = Rows<Ospf>({Shown<Ospf>(nullptr, ShowUnreservedBandwidths<Ospf>)});

void ShowAll(const Place& in, Cursor& c, RowSpan<Ospf> rows, int32_t size, Ospf& ospf, const char* title) {
  // keys: address Local Interface IP Address, Remote Interface IP Address, Local Interface IPv6 Address
  // keys: address Remote Interface IPv6 Address
  // keys: number Shared Risk Link Group, Extended Administrative Group
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Ospf>(in, c, rows, ospf, title);
}
void ShowLocalAddresses(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kAddress, 4, ospf, "Local Interface IP Address"); }
void ShowRemoteAddresses(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kAddress, 4, ospf, "Remote Interface IP Address"); }
void ShowRiskGroups(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kGroups, 4, ospf, "Shared Risk Link Group"); }
void ShowAdminGroups(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kGroups, 4, ospf, "Extended Administrative Group"); }

constexpr auto kModelNames = SortedNames({{0, "Russian Dolls"}, {1, "Maximum Allocation"},
    {2, "Maximum Allocation with Reservation"}});
constexpr auto kModel = Rows<Ospf>({Number(1, "Bandwidth Constraints Model", kModelNames), Bytes(3, "Reserved")});
constexpr auto kConstraint = Rows<Ospf>({Shown(4, "Bandwidth Constraint", ShowBandwidth)});
void ShowConstraints(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kConstraint, 4, ospf, nullptr); }
constexpr auto kNeighborId = Rows<Ospf>({Number(4, "Neighbor Interface ID"), IPv4("Neighbor Router ID").Note(", %s")});
constexpr auto kAddress6 = Rows<Ospf>({IPv6(nullptr).Note(", %s")});
void ShowLocalAddresses6(const Place& in, Cursor& c, Ospf& ospf) {
  ShowAll(in, c, kAddress6, 16, ospf, "Local Interface IPv6 Address");
}
void ShowRemoteAddresses6(const Place& in, Cursor& c, Ospf& ospf) {
  ShowAll(in, c, kAddress6, 16, ospf, "Remote Interface IPv6 Address");
}
constexpr auto kAdaptation = Rows<Ospf>({
    Number(1, "Lower Switching Capability", kSwitchingNames), Number(1, "Lower Encoding", kEncodingNames),
    Number(1, "Upper Switching Capability", kSwitchingNames), Number(1, "Upper Encoding", kEncodingNames),
    Shown<Ospf>(nullptr, ShowLspBandwidths<Ospf>)});

constexpr auto kLinkElements = Choices<Ospf>({
    {1, "Link Type", kLinkType}, {2, "Link ID", kAddress}, {3, "Local Interface IP Address", {}, ShowLocalAddresses},
    {4, "Remote Interface IP Address", {}, ShowRemoteAddresses}, {5, "Traffic Engineering Metric", kNumber},
    {6, "Maximum Bandwidth", kBandwidth}, {7, "Maximum Reservable Bandwidth", kBandwidth},
    {8, "Unreserved Bandwidth", kPriorities}, {9, "Administrative Group", kGroups},
    {11, "Link Local/Remote Identifiers", kInterfaces}, {14, "Link Protection Type", kProtection},
    {15, "Interface Switching Capability Descriptor", kSwitching}, {16, "Shared Risk Link Group", {}, ShowRiskGroups},
    {17, "Bandwidth Constraints", kModel, ShowConstraints},
    {18, "Neighbor ID", kNeighborId}, {19, "Local Interface IPv6 Address", {}, ShowLocalAddresses6},
    {20, "Remote Interface IPv6 Address", {}, ShowRemoteAddresses6}, {21, "Remote AS Number", kNumber},
    {22, "IPv4 Remote ASBR ID", kAddress},
    {24, "IPv6 Remote ASBR ID", kAddress6}, {25, "Interface Adjustment Capability Descriptor", kAdaptation},
    {26, "Extended Administrative Group", {}, ShowAdminGroups}, {27, "Unidirectional Link Delay", kDelay},
    {28, "Min/Max Unidirectional Link Delay", kDelayRange}, {29, "Unidirectional Delay Variation", kVariation},
    {30, "Unidirectional Link Loss", kLoss}, {31, "Unidirectional Residual Bandwidth", kBandwidth},
    {32, "Unidirectional Available Bandwidth", kBandwidth}, {33, "Unidirectional Utilized Bandwidth", kBandwidth}});

void ShowLink(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "Sub-TLV", kLinkElements, ospf); }

constexpr auto kNodeAddress = Rows<Ospf>({Number(1, "Prefix Length").Note(", /%u"),
    IPv4("Node Local Address").Note(" of %s")});
constexpr auto kNodeAddress6 = Rows<Ospf>({Number(1, "Prefix Length").Note(", /%u"), Hex(1, "Prefix Options"),
    Hex(2, "Reserved"), IPv6("Node Local Address").Note(" of %s")});
void ShowNodeAddresses(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kNodeAddress, 5, ospf, nullptr); }
void ShowNodeAddresses6(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kNodeAddress6, 20, ospf, nullptr); }
constexpr auto kNodeParts = Choices<Ospf>({
    {1, "Node IPv4 Local Address", {}, ShowNodeAddresses}, {2, "Node IPv6 Local Address", {}, ShowNodeAddresses6}});
void ShowNodeParts(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "Sub-TLV", kNodeParts, ospf);
}
constexpr auto kTraffic = Choices<Ospf>({
    {1, "Router Address", kAddress}, {2, "Link", {}, ShowLink}, {3, "Router IPv6 Address", kAddress6},
    {5, "Node Attribute", {}, ShowNodeParts}});

// --- router information ---

constexpr auto kCapabilities = Rows<Ospf>({Flags(4, "Informational Capabilities", kCapabilityMasks)});
constexpr auto kFunctional = Rows<Ospf>({Hex(4, "Functional Capabilities")});
constexpr auto kHostname = Rows<Ospf>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kAlgorithm = Rows<Ospf>({Number(1, "Algorithm", NameAlgorithm)});
constexpr auto kRange = Rows<Ospf>({Number(3, "Range Size").Note(", %u labels"), Hex(1, "Reserved")});
constexpr auto kLabel3 = Rows<Ospf>({Number(3, nullptr).Note(", %u")});
constexpr auto kPreference = Rows<Ospf>({Number(1, "Preference"), Bytes(3, "Reserved")});
constexpr auto kTag = Rows<Ospf>({Number(4, "Administrative Tag")});
constexpr auto kDepth = Rows<Ospf>({Number(1, "MSD Type", kDepthNames), Number(1, "MSD Value")});
constexpr auto kFlexible = Rows<Ospf>({
    Number(1, "Flexible Algorithm"), Number(1, "Metric Type"), Number(1, "Calculation Type"), Number(1, "Priority")});

// A label of 20 bits in three octets, or an index in four.
void ShowSid(const Place& in, Cursor& c, Ospf& ospf) {
  if (Left(c) == 3) return ShowRows<Ospf>(in, c, kLabel3, ospf, "SID/Label");
  if (Left(c) >= 4) ShowRows<Ospf>(in, c, kNumber, ospf, "SID/Index");
}
constexpr auto kSidElements = Choices<Ospf>({{1, "SID/Label", {}, ShowSid}});
void ShowSids(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "Sub-TLV", kSidElements, ospf); }
void ShowAlgorithms(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kAlgorithm, 1, ospf, nullptr); }
void ShowTags(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kTag, 4, ospf, nullptr); }
void ShowDepths(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kDepth, 2, ospf, nullptr); }

constexpr auto kNodeMasks = SortedNames({
    {0x08000000, "P2MP Branch"}, {0x10000000, "P2MP Bud"}, {0x20000000, "GMPLS"}, {0x40000000, "MPLS"},
    {0x80000000, "P2MP TE"}});
constexpr auto kNode = Rows<Ospf>({Flags(4, "TE Node Capabilities", kNodeMasks)});
constexpr auto kGroup4 = Rows<Ospf>({
    Number(4, "Mesh Group Number").Note(", %u"), IPv4("Tail-End Address"), Counted(1, Utf8(0, "Tail-End Name"))});
constexpr auto kGroup6 = Rows<Ospf>({
    Number(4, "Mesh Group Number").Note(", %u"), IPv6("Tail-End Address"), Counted(1, Utf8(0, "Tail-End Name"))});
void ShowMeshes4(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kGroup4, 9, ospf, nullptr); }
void ShowMeshes6(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kGroup6, 21, ospf, nullptr); }
constexpr auto kComputerMasks = SortedNames({
    {0x00400000, "Multiple Requests"}, {0x00800000, "Global Concurrent Optimization"}, {0x01000000, "Prioritization"},
    {0x02000000, "Additive Constraints"}, {0x04000000, "Synchronized Requests"},
    {0x08000000, "Multiple Objective Functions"},
    {0x10000000, "Link-Diverse Paths"}, {0x20000000, "Equal Paths"}, {0x40000000, "Bidirectional Paths"},
    {0x80000000, "GMPLS Constraints"}});
constexpr auto kScopeMasks = SortedNames({
    {0x04000000, "Inter-Layer"}, {0x08000000, "Inter-AS by Default"}, {0x10000000, "Inter-AS"},
    {0x20000000, "Inter-Area by Default"}, {0x40000000, "Inter-Area"},
    {0x80000000, "Intra-Area"}});
constexpr auto kComputerAddress = Rows<Ospf>({Number(2, "Address Type"), Hex(2, "Reserved")});
constexpr auto kScope = Rows<Ospf>({
    Flags(4, "Path Scope", kScopeMasks), Bits(6, 3, "Intra-Area Preference"), Bits(9, 3, "Inter-Area Preference"),
    Bits(12, 3, "Inter-AS Preference"), Bits(15, 3, "Inter-Layer Preference")});
constexpr auto kDomain = Rows<Ospf>({Number(2, "Domain Type"), Hex(2, "Reserved"),
    IPv4("Domain Identifier").Note(", %s")});
constexpr auto kComputerFlags = Rows<Ospf>({Flags(4, "PCE Capabilities", kComputerMasks)});
void ShowComputerAddress(const Place& in, Cursor& c, Ospf& ospf) {
  // keys: address PCE Address
  ShowRows<Ospf>(in, c, Left(c) >= 16 ? RowSpan<Ospf>(kAddress6) : RowSpan<Ospf>(kAddress), ospf, "PCE Address");
}
constexpr auto kComputerParts = Choices<Ospf>({
    {1, "PCE Address", kComputerAddress, ShowComputerAddress}, {2, "Path Scope", kScope}, {3, "PCE Domain", kDomain},
    {4, "Neighbor PCE Domain", kDomain}, {5, "PCE Capability Flags", kComputerFlags}});
void ShowComputer(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "Sub-TLV", kComputerParts, ospf);
}
constexpr auto kDefinitionFlags = Rows<Ospf>({Hex(4, "Definition Flags"), Flag(0, "Prefix Metric")});
constexpr auto kFlexibleParts = Choices<Ospf>({
    {1, "Exclude Administrative Group", {}, ShowAdminGroups}, {2, "Include Any Administrative Group", {},
    ShowAdminGroups},
    {3, "Include All Administrative Groups", {}, ShowAdminGroups}, {4, "Flexible Algorithm Definition Flags",
    kDefinitionFlags},
    {5, "Exclude Shared Risk Link Groups", {}, ShowRiskGroups}});
void ShowFlexibleParts(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "Sub-TLV", kFlexibleParts, ospf);
}
constexpr auto kLeader = Rows<Ospf>({Number(1, "Leader Priority").Note(", %u"), Number(1, "Leader Algorithm")});
constexpr auto kFloodingAlgorithm = Rows<Ospf>({Number(1, "Flooding Algorithm")});
void ShowFlooding(const Place& in, Cursor& c, Ospf& ospf) { ShowAll(in, c, kFloodingAlgorithm, 1, ospf, nullptr); }
constexpr auto kSrv6 = Rows<Ospf>({Hex(2, "SRv6 Flags"), Flag(1, "OAM"), Hex(2, "Reserved")});
constexpr auto kTunnel = Rows<Ospf>({Number(2, "Tunnel Type").Note(", %u"), Number(2, "Tunnel Length")});
constexpr auto kTunnelBytes = Rows<Ospf>({Bytes(0, "Tunnel Parameters")});
void ShowTunnel(const Place& in, Cursor& c, Ospf& ospf) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const int32_t size = static_cast<int32_t>(PeekU16(c, 2));
    ShowRows<Ospf>(in, c, kTunnel, ospf);
    Cursor part = TakeCursor(c, size);
    if (Left(part)) ShowRows<Ospf>(in, part, kTunnelBytes, ospf);
  }
}

constexpr auto kRouterInformation = Choices<Ospf>({
    {1, "Router Informational Capabilities", kCapabilities}, {2, "Router Functional Capabilities", kFunctional},
    {3, "TE Mesh Group IPv4", {}, ShowMeshes4}, {4, "TE Mesh Group IPv6", {}, ShowMeshes6},
    {5, "TE Node Capability Descriptor", kNode}, {6, "PCED", {}, ShowComputer},
    {7, "Dynamic Hostname", kHostname}, {8, "SR-Algorithm", {}, ShowAlgorithms}, {9, "SID/Label Range", kRange, ShowSids},
    {10, "Node Administrative Tag", {}, ShowTags}, {11, "S-BFD Discriminator", kNumber}, {12, "Node MSD", {}, ShowDepths},
    {13, "Tunnel Encapsulations", {}, ShowTunnel}, {14, "SR Local Block", kRange, ShowSids},
    {15, "SRMS Preference", kPreference},
    {16, "Flexible Algorithm Definition", kFlexible, ShowFlexibleParts}, {17, "Area Leader", kLeader},
    {18, "Dynamic Flooding", {}, ShowFlooding},
    {20, "SRv6 Capabilities", kSrv6}, {21, "IP Algorithm", {}, ShowAlgorithms}});

// --- graceful restart ---

constexpr auto kPeriod = Rows<Ospf>({Number(4, nullptr, " seconds").Note(", %u seconds")});
constexpr auto kReason = Rows<Ospf>({Number(1, nullptr, kRestartNames).Note(", %s")});
constexpr auto kGrace = Choices<Ospf>({
    {1, "Grace Period", kPeriod}, {2, "Graceful Restart Reason", kReason}, {3, "IP Interface Address", kAddress}});

// --- prefixes and links ---

constexpr auto kPrefix = Rows<Ospf>({
    Number(1, "Route Type", kRouteNames), Number(1, "Prefix Length").Note(", /%u"), Number(1, "Address Family", kFamilyNames),
    Flags(1, "Prefix Flags", kPrefixMasks), IPv4("Address Prefix").Note(" of %s")});
constexpr auto kPrefixRange = Rows<Ospf>({
    Number(1, "Prefix Length").Note(", /%u"), Number(1, "Address Family", kFamilyNames), Number(2, "Range Size"),
    Hex(1, "Range Flags"), Flag(0, "Inter-Area"), Bits(1, 7, "Reserved"), Bytes(3, "Reserved 2"), IPv4("Address Prefix").Note(" of %s")});
constexpr auto kPrefixSid = Rows<Ospf>({
    Flags(1, "SID Flags", kSidMasks), Hex(1, "Reserved"), Number(1, "Multi-Topology ID"), Number(1, "Algorithm", NameAlgorithm)});
constexpr auto kExtendedLink = Rows<Ospf>({
    Number(1, "Link Type", kExtendedLinkNames), Bytes(3, "Reserved"), IPv4("Link ID").Note(", %s"), IPv4("Link Data").Note(", %s")});
constexpr auto kAdjacencySid = Rows<Ospf>({
    Flags(1, "Adjacency Flags", kAdjacencyMasks), Hex(1, "Reserved"), Number(1, "Multi-Topology ID"), Number(1, "Weight")});
constexpr auto kLanAdjacencySid = Rows<Ospf>({
    Flags(1, "Adjacency Flags", kAdjacencyMasks), Hex(1, "Reserved"), Number(1, "Multi-Topology ID"), Number(1, "Weight"),
    IPv4("Neighbor ID")});

constexpr auto kFlexibleMetric = Rows<Ospf>({
    Number(1, "Flexible Algorithm").Note(", %u"), Hex(1, "Metric Flags"), Hex(2, "Reserved"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kReplication = Rows<Ospf>({
    Number(1, "Sub-Domain ID"), Number(1, "Multi-Topology ID"), Number(2, "BFR-ID").Note(", %u"),
    Number(1, "BIER Algorithm"),
    Number(1, "IGP Algorithm"), Hex(2, "Reserved")});
constexpr auto kReplicationLabel = Rows<Ospf>({
    Number(1, "Maximum Set Identifier"), Number(3, "BIER Label").Note(", Label %u"), Hex(4, "Encapsulation Word"),
    Bits(0, 4, "Bit String Length")});
constexpr auto kReplicationParts = Choices<Ospf>({{10, "BIER MPLS Encapsulation", kReplicationLabel}});
void ShowReplicationParts(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "Sub-TLV", kReplicationParts, ospf);
}
constexpr auto kMoreFlags = Rows<Ospf>({Bytes(0, "Extended Prefix Flags")});

constexpr auto kPrefixElements = Choices<Ospf>({
    {2, "Prefix SID", kPrefixSid, ShowSid}, {3, "Flexible Algorithm Prefix Metric", kFlexibleMetric},
    {4, "Prefix Source OSPF Router ID", kAddress},
    {5, "Prefix Source Router Address", kAddress}, {9, "BIER", kReplication, ShowReplicationParts},
    {11, "Prefix Extended Flags", kMoreFlags}});
constexpr auto kTiming = Rows<Ospf>({Word(1), Bits(0, 3, "Residence Time Accuracy").Note(", %u"),
    Bits(3, 5, "Reserved"), Bytes(3, "Reserved 2")});
constexpr auto kTwoPart = Rows<Ospf>({Number(1, "Multi-Topology ID"), Hex(1, "Reserved"),
    Number(2, "Network-to-Router Metric").Note(", %u")});
constexpr auto kMaskLengths = Rows<Ospf>({
    Number(1, "Standard Mask Length").Into(&Ospf::size), Number(1, "User Mask Length").Into(&Ospf::count),
    Hex(2, "Reserved")});
constexpr auto kApplicationMasks = SortedNames({
    {0x10000000, "Flexible Algorithm"}, {0x20000000, "Loop-Free Alternate"}, {0x40000000, "Segment Routing Policy"},
    {0x80000000, "RSVP-TE"}});
constexpr auto kStandardMask = Rows<Ospf>({Flags(4, "Standard Applications", kApplicationMasks)});
constexpr auto kUserMask = Rows<Ospf>({Bytes(0, "User-Defined Applications")});
constexpr auto kMember = Rows<Ospf>({Number(4, "Member Link Local Identifier").Note(", %u")});
void ShowForApplications(const Place& in, Cursor& c, Ospf& ospf) {
  ShowOspfApplications(in, c, ospf);
  ShowOspfLinkAttributes(in, c, ospf);
}

constexpr auto kLinkSids = Choices<Ospf>({
    {2, "Adjacency SID", kAdjacencySid, ShowSid}, {3, "LAN Adjacency SID", kLanAdjacencySid, ShowSid},
    {4, "Network-to-Router TE Metric", kTwoPart}, {5, "RTM Capability", kTiming},
    {6, "Link MSD", {}, ShowDepths}, {7, "Graceful Link Shutdown"}, {8, "Remote IPv4 Address", kAddress},
    {9, "Local/Remote Interface ID", kInterfaces}, {10, "Application-Specific Link Attributes", {},
    ShowForApplications},
    {11, "Shared Risk Link Group", {}, ShowRiskGroups}, {12, "Unidirectional Link Delay", kDelay},
    {13, "Min/Max Unidirectional Link Delay", kDelayRange}, {14, "Unidirectional Delay Variation", kVariation},
    {15, "Unidirectional Link Loss", kLoss}, {16, "Unidirectional Residual Bandwidth", kBandwidth},
    {17, "Unidirectional Available Bandwidth", kBandwidth}, {18, "Unidirectional Utilized Bandwidth", kBandwidth},
    {19, "Administrative Group", kGroups}, {20, "Extended Administrative Group", {}, ShowAdminGroups},
    {22, "TE Metric", kNumber}, {23, "Maximum Link Bandwidth", kBandwidth},
    {24, "L2 Bundle Member Attributes", kMember, ShowOspfLinkAttributes}});
void ShowPrefixElements(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "Sub-TLV", kPrefixElements, ospf); }
void ShowLinkSids(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "Sub-TLV", kLinkSids, ospf); }
constexpr auto kBorder = Rows<Ospf>({IPv4("ASBR Router ID").Note(", %s")});
constexpr auto kBorderMetric = Rows<Ospf>({Number(1, "Flexible Algorithm").Note(", %u"), Bytes(3, "Reserved"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kBorderParts = Choices<Ospf>({{1, "Flexible Algorithm ASBR Metric", kBorderMetric}});
void ShowBorderParts(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "Sub-TLV", kBorderParts, ospf);
}
constexpr auto kBorders = Choices<Ospf>({{1, "Extended Inter-Area ASBR", kBorder, ShowBorderParts}});

constexpr auto kExtendedPrefixes = Choices<Ospf>({
    {1, "Extended Prefix", kPrefix, ShowPrefixElements}, {2, "Extended Prefix Range", kPrefixRange, ShowPrefixElements}});
constexpr auto kExtendedLinks = Choices<Ospf>({{1, "Extended Link", kExtendedLink, ShowLinkSids}});

}  // namespace

// Attributes stand within attributes; nobody means it to go deeper than this.
void ShowOspfLinkAttributes(const Place& in, Cursor& c, Ospf& ospf) {
  if (ospf.nesting >= kDeepestLinkAttributes) return;
  ++ospf.nesting;
  ShowLinkSids(in, c, ospf);
  --ospf.nesting;
}

void ShowOspfApplications(const Place& in, Cursor& c, Ospf& ospf) {
  ShowRows<Ospf>(in, c, kMaskLengths, ospf);
  Cursor standard = TakeCursor(c, ospf.size.value), user = TakeCursor(c, ospf.count.value);
  if (Left(standard) >= 4) ShowRows<Ospf>(in, standard, kStandardMask, ospf);
  if (Left(user)) ShowRows<Ospf>(in, user, kUserMask, ospf);
}
void ShowOspfLinkAttribute(const Place& in, Cursor& c, uint32_t code, Ospf& ospf) {
  ShowChoice<Ospf>(in, c, FindChoice<Ospf>(kLinkSids, code), ospf);   // keys: none Data
}

const char* OspfOpaqueName(uint32_t type) { return LookupName(kOpaqueNames, type); }

void ShowOspfTraffic(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "TLV", kTraffic, ospf); }
void ShowOspfRouterInformation(const Place& in, Cursor& c, Ospf& ospf) {
  ShowElements(in, c, kOspfForm, "TLV", kRouterInformation, ospf);
}
void ShowOspfGrace(const Place& in, Cursor& c, Ospf& ospf) { ShowElements(in, c, kOspfForm, "TLV", kGrace, ospf); }

void ShowOspfOpaque(const Place& in, Cursor& c, Ospf& ospf) {
  switch (ospf.opaque.value) {
    case 1: case 6: ShowOspfTraffic(in, c, ospf); break;
    case 3: ShowOspfGrace(in, c, ospf); break;
    case 4: ShowOspfRouterInformation(in, c, ospf); break;
    case 7: ShowElements(in, c, kOspfForm, "TLV", kExtendedPrefixes, ospf); break;
    case 8: ShowElements(in, c, kOspfForm, "TLV", kExtendedLinks, ospf); break;
    case 11: ShowElements(in, c, kOspfForm, "TLV", kBorders, ospf); break;
    default: break;
  }
}

}  // namespace qxview
