// Link state in BGP (RFC 9552; segment routing: RFC 9085, 9086, 9514; performance: RFC 8571; administrative groups: RFC 9104):
// what an interior protocol knows of nodes, links and prefixes, told to others.
#include "core/elements.h"
#include "decoders/common/traffic_engineering.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .valueLines = true};

constexpr auto kRouteNames = SortedNames({
    {0, "Reserved"}, {1, "Node"}, {2, "Link"}, {3, "IPv4 Topology Prefix"}, {4, "IPv6 Topology Prefix"}, {5, "SR Policy Candidate Path"},
    {6, "SRv6 SID"}, {7, "Stub Link"}});
constexpr auto kProtocolNames = SortedNames({
    {0, "Reserved"}, {1, "IS-IS Level 1"}, {2, "IS-IS Level 2"}, {3, "OSPFv2"}, {4, "Direct"}, {5, "Static Configuration"},
    {6, "OSPFv3"}, {7, "BGP"}, {8, "RSVP-TE"}, {9, "Segment Routing"}});
constexpr auto kOspfRouteNames = SortedNames({
    {0, "Reserved"}, {1, "Intra-Area"}, {2, "Inter-Area"}, {3, "External 1"}, {4, "External 2"}, {5, "NSSA 1"}, {6, "NSSA 2"}});
constexpr auto kMsdNames = SortedNames({
    {0, "Reserved"}, {1, "Base MPLS Imposition"}, {2, "ERLD"}, {41, "SRH Max Segments Left"}, {42, "SRH Max End Pop"},
    {44, "SRH Max H.encaps"}, {45, "SRH Max End D"}});

constexpr auto kNumber4 = Rows<Bgp>({Number(4, nullptr).Note(", %u")});
constexpr auto kHex4 = Rows<Bgp>({Hex(4, nullptr).Note(", 0x%08X")});
constexpr auto kFloat = Rows<Bgp>({Float(4, nullptr)});
constexpr auto kIPv4 = Rows<Bgp>({IPv4(nullptr).Note(", %s")});
constexpr auto kIPv6 = Rows<Bgp>({IPv6(nullptr).Note(", %s")});
constexpr auto kBytes = Rows<Bgp>({Bytes(0, nullptr).Note(", %s")});
constexpr auto kText = Rows<Bgp>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kLinkIds = Rows<Bgp>({Number(4, "Link Local Identifier").Note(", %u"), Number(4, "Link Remote Identifier").Note(", %u")});
constexpr auto kOspfRoute = Rows<Bgp>({Number(1, "OSPF Route Type", kOspfRouteNames).Note(", %s")});
constexpr auto kTopology = Rows<Bgp>({Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Multi-Topology ID").Note(", %u")});
constexpr auto kNodeFlags = Rows<Bgp>({
    Hex(1, "Node Flags"), Flag(0, "Overload"), Flag(1, "Attached"), Flag(2, "External"), Flag(3, "ABR"), Flag(4, "Router"),
    Flag(5, "V6")});
constexpr auto kProtection = Rows<Bgp>({
    Hex(2, "Link Protection Type"), Flag(0, "Extra Traffic"), Flag(1, "Unprotected"), Flag(2, "Shared"),
    Flag(3, "Dedicated 1:1"), Flag(4, "Dedicated 1+1"), Flag(5, "Enhanced")});
constexpr auto kLabelling = Rows<Bgp>({Hex(1, "MPLS Protocol Mask"), Flag(0, "LDP"), Flag(1, "RSVP-TE")});
constexpr auto kIgpFlags = Rows<Bgp>({
    Hex(1, "IGP Flags"), Flag(0, "Down"), Flag(1, "No Unicast"), Flag(2, "Local Address"), Flag(3, "Propagate NSSA")});
constexpr auto kDelay = Rows<Bgp>({Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Delay", " microseconds").Note(", %u")});
constexpr auto kDelays = Rows<Bgp>({
    Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Minimum Delay", " microseconds").Note(", %u"), Word(4),
    Bits(0, 8, "Reserved"), Bits(8, 24, "Maximum Delay", " microseconds").Note(", %u")});
constexpr auto kVariation = Rows<Bgp>({Word(4), Bits(0, 8, "Reserved"), Bits(8, 24, "Delay Variation", " microseconds").Note(", %u")});
constexpr auto kLoss = Rows<Bgp>({Word(4), Flag(0, "Anomalous"), Bits(1, 7, "Reserved"), Bits(8, 24, "Link Loss").Note(", %u")});
constexpr auto kPeerSid = Rows<Bgp>({
    Hex(1, "SID Flags"), Flag(0, "Value"), Flag(1, "Local"), Flag(2, "Backup"), Flag(3, "Persistent"), Number(1, "Weight"),
    Hex(2, "Reserved"), Bytes(0, "SID").Note(", %s")});
constexpr auto kAdjacencySid = Rows<Bgp>({
    Hex(1, "SID Flags"), Number(1, "Weight"), Hex(2, "Reserved"), Bytes(0, "SID").Note(", %s")});
constexpr auto kLanSid = Rows<Bgp>({Hex(1, "SID Flags"), Number(1, "Weight"), Hex(2, "Reserved")});
constexpr auto kLanSystem = Rows<Bgp>({Bytes(6, "Neighbor System ID").Note(", %s")});
constexpr auto kLanRouter = Rows<Bgp>({IPv4("Neighbor Router ID").Note(", %s")});
constexpr auto kPrefixSid = Rows<Bgp>({
    Hex(1, "SID Flags"), Number(1, "Algorithm"), Hex(2, "Reserved"), Bytes(0, "SID").Note(", %s")});
constexpr auto kSid = Rows<Bgp>({Bytes(0, "SID").Note(", %s")});
constexpr auto kBehavior = Rows<Bgp>({Hex(2, "Endpoint Behavior", kEndpointNames), Hex(1, "Behavior Flags"),
    Number(1, "Algorithm")});
constexpr auto kSidStructure = Rows<Bgp>({
    Number(1, "Locator Block Length"), Number(1, "Locator Node Length"), Number(1, "Function Length"), Number(1, "Argument Length")});

// Metrics have one octet, two or three, as the protocol has them.
void ShowMetric(const Place& in, Cursor& c, Bgp&) {
  const Field metric = Left(c) >= 3 ? TakeU24(c) : Left(c) == 2 ? TakeU16(c) : TakeU8(c);
  AddLine(in, metric, "IGP Metric: %u", metric.value);
  AppendToParent(in, metric, ", %u", metric.value);
}
void ShowBandwidths(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kEach = Rows<Bgp>({Float(4, "Unreserved Bandwidth")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kEach, bgp);
}
void ShowTopologies(const Place& in, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kTopology, bgp);
}
void ShowGroups(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kGroup = Rows<Bgp>({Number(4, "Shared Risk Link Group").Note(", %u")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kGroup, bgp);
}
void ShowDepths(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kDepth = Rows<Bgp>({Number(1, "MSD Type", kMsdNames), Number(1, "MSD Value")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kDepth, bgp);
}
void ShowAlgorithms(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kAlgorithm = Rows<Bgp>({Number(1, "Algorithm").Note(", %u")});
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kAlgorithm, bgp);
}
// The neighbor is a system of IS-IS or a router of OSPF, as the length tells.
void ShowLanSid(const Place& in, Cursor& c, Bgp& bgp) {
  constexpr int32_t kLeastOfSystem = 9;
  ShowRows<Bgp>(in, c, Left(c) >= kLeastOfSystem ? RowSpan<Bgp>(kLanSystem) : RowSpan<Bgp>(kLanRouter), bgp);
  if (Left(c)) ShowRows<Bgp>(in, c, kSid, bgp);
}
constexpr auto kSidChoices = Choices<Bgp>({{1161, "SID/Label", kSid}});
void ShowBlocks(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kFlags = Rows<Bgp>({Hex(1, "Capability Flags"), Hex(1, "Reserved")});
  static constexpr auto kRange = Rows<Bgp>({Number(3, "Range Size")});
  ShowRows<Bgp>(in, c, kFlags, bgp);
  Loop loop;
  while (Left(c) >= 7 && MoreAt(in, c, loop)) {
    ShowRows<Bgp>(in, c, kRange, bgp);
    Cursor sid = TakeCursor(c, 4 + static_cast<int64_t>(PeekU16(c, 2)));
    ShowElements<Bgp>(in, sid, kForm, "TLV", kSidChoices, bgp);
  }
}
void ShowReached(const Place& in, Cursor& c, Bgp& bgp) {
  const Field bits = TakeU8(c);
  AddLine(in, bits, "Prefix Length: %u", bits.value);
  ShowPrefix(in, c, "Prefix", bgp.type.value == 4 ? kFamilyIPv6 : kFamilyIPv4, bits.value);
}

// --- segments of IPv6, ranges, flexible algorithms, bundles, policies (RFC 9514, 9085, 9351, 9857) ---

constexpr auto kFlags2 = Rows<Bgp>({Hex(2, "Flags"), Hex(2, "Reserved")});
constexpr auto kWeight = Rows<Bgp>({Number(1, nullptr).Note(", %u")});
constexpr auto kEndX = Rows<Bgp>({
    Hex(2, "Endpoint Behavior", kEndpointNames), Hex(1, "SID Flags"), Number(1, "Algorithm"), Number(1, "Weight"),
    Hex(1, "Reserved")});
constexpr auto kEndXNeighbor = Rows<Bgp>({Bytes(6, "Neighbor System ID")});
constexpr auto kEndXRouter = Rows<Bgp>({IPv4("Neighbor Router ID")});
constexpr auto kSid6 = Rows<Bgp>({IPv6("SRv6 SID").Note(", %s")});
constexpr auto kLocator = Rows<Bgp>({Hex(1, "Locator Flags"), Number(1, "Algorithm"), Hex(2, "Reserved"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kPeer = Rows<Bgp>({
    Hex(1, "SID Flags"), Number(1, "Weight"), Hex(2, "Reserved"), Number(4, "Peer AS").Note(", AS %u"),
    IPv4("Peer BGP Identifier").Note(", %s")});
constexpr auto kRange = Rows<Bgp>({Hex(1, "Range Flags"), Hex(1, "Reserved"), Number(2, "Range Size").Note(", %u")});
constexpr auto kReflector = Rows<Bgp>({Hex(4, "S-BFD Discriminator")});
constexpr auto kExtendedTag = Rows<Bgp>({Hex(8, "Extended Route Tag")});
constexpr auto kExtendedGroup = Rows<Bgp>({Hex(4, "Extended Administrative Group")});
constexpr auto kGroupMask = Rows<Bgp>({Hex(4, nullptr)});
constexpr auto kFlexible = Rows<Bgp>({
    Number(1, "Flexible Algorithm").Note(", %u"), Number(1, "Metric Type"), Number(1, "Calculation Type"),
    Number(1, "Priority")});
constexpr auto kFlexibleMetric = Rows<Bgp>({
    Number(1, "Flexible Algorithm").Note(", %u"), Hex(1, "Flags"), Hex(2, "Reserved"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kMember = Rows<Bgp>({Number(4, "Member Link Local Identifier").Note(", %u")});
constexpr auto kMaskLengths = Rows<Bgp>({
    Number(1, "Standard Mask Length").Into(&Bgp::count), Number(1, "User Mask Length").Into(&Bgp::code),
    Hex(2, "Reserved")});
constexpr auto kMask = Rows<Bgp>({Bytes(0, "Applications")});
constexpr auto kUserMask = Rows<Bgp>({Bytes(0, "User-Defined Applications")});
constexpr auto kState = Rows<Bgp>({
    Number(1, "Priority"), Hex(1, "Reserved"), Hex(2, "State Flags"), Flag(0, "Administratively Shut"),
    Flag(1, "Active"), Flag(2, "Backup"),
    Flag(3, "Evaluated"), Flag(4, "Valid"), Flag(5, "On Demand"), Flag(6, "Delegated"), Flag(7, "Provisioned by PCE"),
    Flag(8, "Eligible"),
    Flag(9, "Dropping"), Flag(10, "Transit Eligible"), Flag(11, "Dropping upon Invalid"),
    Number(4, "Preference").Note(", %u")});
constexpr auto kListHead = Rows<Bgp>({
    Hex(2, "List Flags"), Hex(2, "Reserved"), Number(2, "Multi-Topology ID"), Number(1, "Algorithm"),
    Hex(1, "Reserved 2"), Number(4, "Weight").Note(", Weight %u")});
constexpr auto kSegmentHead = Rows<Bgp>({Number(1, "Segment Type").Note(", Type %u").Into(&Bgp::code), Hex(1, "Reserved"),
    Hex(2, "Segment Flags"), Flag(0, "SID Present").Into(&Bgp::flags), Flag(1, "Explicit"), Flag(2, "Verified"),
    Flag(3, "Resolved"), Flag(4, "Algorithm Present")});
constexpr auto kSegmentLabel = Rows<Bgp>({
    Word(4), Bits(0, 20, "Label").Note(", Label %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom"), Bits(24, 8, "TTL")});
constexpr auto kSegmentAlgorithm = Rows<Bgp>({Number(1, "Algorithm", NameAlgorithm)});
constexpr auto kSegmentNode4 = Rows<Bgp>({Number(1, "Algorithm", NameAlgorithm), IPv4("Node Address").Note(", %s")});
constexpr auto kSegmentNode6 = Rows<Bgp>({Number(1, "Algorithm", NameAlgorithm), IPv6("Node Address").Note(", %s")});
constexpr auto kSegmentInterface4 = Rows<Bgp>({IPv4("Node Address").Note(", %s"), Number(4, "Local Interface ID")});
constexpr auto kSegmentLink4 = Rows<Bgp>({IPv4("Local Address").Note(", %s"), IPv4("Remote Address").Note(", %s")});
constexpr auto kSegmentInterface6 = Rows<Bgp>({
    IPv6("Local Node Address").Note(", %s"), Number(4, "Local Interface ID"), IPv6("Remote Node Address").Note(", %s"),
    Number(4, "Remote Interface ID")});
constexpr auto kSegmentLink6 = Rows<Bgp>({IPv6("Local Address").Note(", %s"), IPv6("Remote Address").Note(", %s")});

// What computes or bounds a candidate path (RFC 9857 5.6).
constexpr auto kConstraints = Rows<Bgp>({
    Hex(2, "Constraint Flags"), Hex(2, "Reserved"), Number(2, "Multi-Topology ID"), Number(1, "Algorithm", NameAlgorithm),
    Hex(1, "Reserved 2")});
constexpr auto kAffinity = Rows<Bgp>({
    Number(1, "Exclude Any Size").Into(&Bgp::count), Number(1, "Include Any Size").Into(&Bgp::code),
    Number(1, "Include All Size").Into(&Bgp::length), Hex(1, "Reserved")});
constexpr auto kExcludeAny = Rows<Bgp>({Hex(4, "Exclude Any")});
constexpr auto kIncludeAny = Rows<Bgp>({Hex(4, "Include Any")});
constexpr auto kIncludeAll = Rows<Bgp>({Hex(4, "Include All")});
constexpr auto kRisk = Rows<Bgp>({Number(4, "Shared Risk Link Group").Note(", %u")});
constexpr auto kDisjoint = Rows<Bgp>({
    Hex(1, "Request Flags"), Flag(0, "SRLG Disjoint"), Flag(1, "Node Disjoint"), Flag(2, "Link Disjoint"),
    Flag(3, "Fall Back"), Flag(4, "Fall Back to the IGP Path"), Hex(1, "Status Flags"), Flag(0, "SRLG Disjoint"),
    Flag(1, "Node Disjoint"), Flag(2, "Link Disjoint"), Flag(3, "Fall Back"), Flag(4, "Fall Back to the IGP Path"),
    Flag(5, "Path Not Computed"), Hex(2, "Reserved"), Bytes(0, "Disjoint Group Identifier").Note(", %s")});
constexpr auto kBothWays = Rows<Bgp>({
    Hex(2, "Bidirectional Flags"), Flag(0, "Reverse"), Flag(1, "Co-Routed"), Hex(2, "Reserved"),
    Bytes(0, "Bidirectional Group Identifier").Note(", %s")});
constexpr auto kMetricBound = Rows<Bgp>({
    Number(1, "Metric Type").Note(", Type %u"), Hex(1, "Metric Flags"), Flag(0, "Optimization"), Flag(1, "Margin"),
    Flag(2, "Absolute Margin"), Flag(3, "Bound"), Hex(2, "Reserved"), Number(4, "Metric Margin"),
    Number(4, "Metric Bound").Note(", up to %u")});
constexpr auto kPathMetric = Rows<Bgp>({
    Number(1, "Metric Type").Note(", Type %u"), Hex(1, "Metric Flags"), Hex(2, "Reserved"), Number(4, "Metric Margin"),
    Number(4, "Metric Bound"), Number(4, "Metric Value").Note(", %u")});
constexpr auto kCandidate = Rows<Bgp>({
    Number(1, "Protocol Origin").Note(", Origin %u"), Hex(1, "Candidate Flags"),
    Flag(0, "Endpoint Is IPv6").Into(&Bgp::flags),
    Flag(1, "Originator Is IPv6").Into(&Bgp::count), Hex(2, "Reserved")});
constexpr auto kCandidateColor = Rows<Bgp>({Number(4, "Color").Note(", Color %u"), Number(4, "Originator AS")});
constexpr auto kCandidateId = Rows<Bgp>({Number(4, "Discriminator")});

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, rows, bgp);
}
constexpr auto kSidParts = Choices<Bgp>({{1252, "SRv6 SID Structure", kSidStructure}});
constexpr auto kSegmentParts = Choices<Bgp>({
    {1250, "SRv6 Endpoint Behavior", kBehavior}, {1252, "SRv6 SID Structure", kSidStructure}});
void ShowSid6(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kSid6, bgp);
  ShowElements<Bgp>(in, c, kForm, "Sub-TLV", kSidParts, bgp);
}
void ShowNeighborSid6(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kEndXNeighbor, bgp);
  ShowSid6(in, c, bgp);
}
void ShowRouterSid6(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kEndXRouter, bgp);
  ShowSid6(in, c, bgp);
}
void ShowEither(const Place& in, Cursor& c, Bgp& bgp, const char* label) {
  // keys: address Forwarding Address, Source Router Address, Endpoint, Originator Address, Tunnel Address
  ShowRows<Bgp>(in, c, Left(c) >= 16 ? RowSpan<Bgp>(kIPv6) : RowSpan<Bgp>(kIPv4), bgp, label);
}
void ShowForwarding(const Place& in, Cursor& c, Bgp& bgp) { ShowEither(in, c, bgp, "Forwarding Address"); }
void ShowSourceRouter(const Place& in, Cursor& c, Bgp& bgp) { ShowEither(in, c, bgp, "Source Router Address"); }
void ShowTunnelAddress(const Place& in, Cursor& c, Bgp& bgp) { ShowEither(in, c, bgp, "Tunnel Address"); }
constexpr auto kRangeParts = Choices<Bgp>({{1158, "Prefix-SID", kPrefixSid}});
void ShowRangeParts(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kForm, "Sub-TLV", kRangeParts, bgp);
}
// Within their element: masks are labelled by what they exclude or include.
constexpr auto kFlexibleParts = Choices<Bgp>({
    {1040, "Exclude Any Affinity", kGroupMask}, {1041, "Include Any Affinity", kGroupMask},
    {1042, "Include All Affinity", kGroupMask},
    {1043, "Flexible Algorithm Definition Flags", kBytes}, {1045, "Exclude Shared Risk Link Group", kGroupMask},
    {1046, "Unsupported", kBytes}});
void ShowFlexibleParts(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kForm, "Sub-TLV", kFlexibleParts, bgp);
}
void ShowNested(const Place& in, Cursor& c, Bgp& bgp) {
  if (bgp.nesting >= kDeepestBgp) return;
  ++bgp.nesting;
  ShowBgpLinkStateAttribute(in, c, bgp);
  --bgp.nesting;
}
void ShowForApplications(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kMaskLengths, bgp);
  Cursor standard = TakeCursor(c, bgp.count.value), user = TakeCursor(c, bgp.code.value);
  if (Left(standard)) ShowRows<Bgp>(in, standard, kMask, bgp);
  if (Left(user)) ShowRows<Bgp>(in, user, kUserMask, bgp);
  ShowNested(in, c, bgp);
}
// A binding SID and the one that was asked for, labels or SIDs of IPv6 by their size.
void ShowBinding(const Place& in, Cursor& c, Bgp& bgp) {
  // keys: address Binding SID, Provisioned Binding SID
  // keys: number Binding Label, Provisioned Binding Label
  static constexpr auto kLabel = Rows<Bgp>({Number(4, nullptr).Note(", 0x%08X")});
  const bool isSix = Left(c) >= 32;
  if (isSix || Left(c) >= 4) ShowRows<Bgp>(in, c, isSix ? RowSpan<Bgp>(kIPv6) : RowSpan<Bgp>(kLabel), bgp,
      isSix ? "Binding SID" : "Binding Label");
  if (Left(c) >= (isSix ? 16 : 4)) {
    ShowRows<Bgp>(in, c, isSix ? RowSpan<Bgp>(kIPv6) : RowSpan<Bgp>(kLabel), bgp,
        isSix ? "Provisioned Binding SID" : "Provisioned Binding Label");
  }
  ShowElements<Bgp>(in, c, kForm, "Sub-TLV", kSidParts, bgp);
}
void ShowCandidate(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kCandidate, bgp);
  const bool isSix = bgp.flags.value, isOriginatorSix = bgp.count.value;
  ShowRows<Bgp>(in, c, isSix ? RowSpan<Bgp>(kIPv6) : RowSpan<Bgp>(kIPv4), bgp, "Endpoint");
  ShowRows<Bgp>(in, c, kCandidateColor, bgp);
  ShowRows<Bgp>(in, c, isOriginatorSix ? RowSpan<Bgp>(kIPv6) : RowSpan<Bgp>(kIPv4), bgp, "Originator Address");
  ShowRows<Bgp>(in, c, kCandidateId, bgp);
}
// The SID where there is one, of MPLS or of IPv6 by the segment's type, and what it was asked for by.
void ShowSegment(const Place& in, Cursor& c, Bgp& bgp) {
  constexpr uint32_t kLastType = 11;
  constexpr RowSpan<Bgp> kDescriptors[kLastType + 1] = {
      {}, kSegmentAlgorithm, kSegmentAlgorithm, kSegmentNode4, kSegmentNode6, kSegmentInterface4, kSegmentLink4,
      kSegmentInterface6, kSegmentLink6, kSegmentNode6, kSegmentInterface6, kSegmentLink6};
  const uint32_t type = bgp.code.value;
  if (type == 0 || type > kLastType) return;
  const bool isOfIPv6 = type == 2 || type >= 9;
  if (bgp.flags.value) ShowRows<Bgp>(in, c, isOfIPv6 ? RowSpan<Bgp>(kSid6) : RowSpan<Bgp>(kSegmentLabel), bgp);
  if (Left(c)) ShowRows<Bgp>(in, c, kDescriptors[type], bgp);
  ShowElements<Bgp>(in, c, kForm, "Sub-TLV", kSegmentParts, bgp);
}
void ShowAffinity(const Place& in, Cursor& c, Bgp& bgp) {
  const auto show = [&](const Field& count, RowSpan<Bgp> rows) {
    for (uint32_t i = 0; i < count.value && Left(c) >= 4; ++i) ShowRows<Bgp>(in, c, rows, bgp);
  };
  show(bgp.count, kExcludeAny);
  show(bgp.code, kIncludeAny);
  show(bgp.length, kIncludeAll);
}
constexpr auto kConstraintParts = Choices<Bgp>({
    {1208, "SR Affinity Constraint", kAffinity, ShowAffinity}, {1209, "SR SRLG Constraint", {}, ShowEach<kRisk, 4>},
    {1210, "SR Bandwidth Constraint", kFloat}, {1211, "SR Disjoint Group Constraint", kDisjoint},
    {1214, "SR Bidirectional Group Constraint", kBothWays}, {1215, "SR Metric Constraint", kMetricBound}});
void ShowConstraints(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kForm, "Sub-TLV", kConstraintParts, bgp);
}
constexpr auto kTunnel2 = Rows<Bgp>({Number(2, nullptr).Note(", %u")});

constexpr auto kNodeParts = Choices<Bgp>({
    {512, "Autonomous System", kNumber4}, {513, "BGP-LS Identifier", kHex4}, {514, "OSPF Area-ID", kIPv4},
    {515, "IGP Router-ID", kBytes}, {516, "BGP Router-ID", kIPv4}, {517, "BGP Confederation Member", kNumber4}});
void ShowNode(const Place& in, Cursor& c, Bgp& bgp) { ShowElements<Bgp>(in, c, kForm, "Descriptor", kNodeParts, bgp); }

constexpr auto kDescriptors = Choices<Bgp>({
    {256, "Local Node Descriptors", {}, ShowNode}, {257, "Remote Node Descriptors", {}, ShowNode},
    {258, "Link Local/Remote Identifiers", kLinkIds}, {259, "IPv4 Interface Address", kIPv4},
    {260, "IPv4 Neighbor Address", kIPv4}, {261, "IPv6 Interface Address", kIPv6}, {262, "IPv6 Neighbor Address", kIPv6},
    {263, "Multi-Topology Identifier", {}, ShowTopologies}, {264, "OSPF Route Type", kOspfRoute},
    {265, "IP Reachability Information", {}, ShowReached}, {518, "SRv6 SID Information", kIPv6},
    {550, "Tunnel ID", kTunnel2}, {551, "LSP ID", kTunnel2},
    {552, "Tunnel Head-End Address", {}, ShowTunnelAddress}, {553, "Tunnel Tail-End Address", {}, ShowTunnelAddress},
    {554, "SR Policy Candidate Path", {}, ShowCandidate}});

constexpr auto kAttributes = Choices<Bgp>({
    {263, "Multi-Topology Identifier", {}, ShowTopologies}, {266, "Node MSD", {}, ShowDepths}, {267, "Link MSD", {}, ShowDepths},
    {1024, "Node Flag Bits", kNodeFlags}, {1025, "Opaque Node Attribute", kBytes}, {1026, "Node Name", kText},
    {1027, "IS-IS Area Identifier", kBytes}, {1028, "IPv4 Router-ID of Local Node", kIPv4},
    {1029, "IPv6 Router-ID of Local Node", kIPv6}, {1030, "IPv4 Router-ID of Remote Node", kIPv4},
    {1031, "IPv6 Router-ID of Remote Node", kIPv6}, {1032, "S-BFD Discriminators", {}, ShowEach<kReflector, 4>},
    {1034, "SR Capabilities", {}, ShowBlocks},
    {1035, "SR Algorithm", {}, ShowAlgorithms}, {1036, "SR Local Block", {}, ShowBlocks},
    {1037, "SRMS Preference", kWeight},
    {1038, "SRv6 Capabilities", kFlags2}, {1039, "Flexible Algorithm Definition", kFlexible, ShowFlexibleParts},
    {1044, "Flexible Algorithm Prefix Metric", kFlexibleMetric}, {1088, "Administrative Group", kHex4},
    {1089, "Maximum Link Bandwidth", kFloat},
    {1090, "Maximum Reservable Link Bandwidth", kFloat}, {1091, "Unreserved Bandwidth", {}, ShowBandwidths},
    {1092, "TE Default Metric", kNumber4}, {1093, "Link Protection Type", kProtection}, {1094, "MPLS Protocol Mask", kLabelling},
    {1095, "IGP Metric", {}, ShowMetric}, {1096, "Shared Risk Link Group", {}, ShowGroups},
    {1097, "Opaque Link Attribute", kBytes}, {1098, "Link Name", kText}, {1099, "Adjacency SID", kAdjacencySid},
    {1100, "LAN Adjacency SID", kLanSid, ShowLanSid}, {1101, "Peer Node SID", kPeerSid}, {1102, "Peer Adjacency SID", kPeerSid},
    {1103, "Peer Set SID", kPeerSid}, {1106, "SRv6 End.X SID", kEndX, ShowSid6},
    {1107, "IS-IS SRv6 LAN End.X SID", kEndX, ShowNeighborSid6},
    {1108, "OSPFv3 SRv6 LAN End.X SID", kEndX, ShowRouterSid6},
    {1114, "Unidirectional Link Delay", kDelay}, {1115, "Min/Max Unidirectional Link Delay", kDelays},
    {1116, "Unidirectional Delay Variation", kVariation}, {1117, "Unidirectional Link Loss", kLoss},
    {1118, "Unidirectional Residual Bandwidth", kFloat}, {1119, "Unidirectional Available Bandwidth", kFloat},
    {1120, "Unidirectional Utilized Bandwidth", kFloat}, {1121, "Graceful Link Shutdown"},
    {1122, "Application-Specific Link Attributes", {},
    ShowForApplications},
    {1152, "IGP Flags", kIgpFlags}, {1153, "IGP Route Tag", kHex4}, {1154, "IGP Extended Route Tag", {},
    ShowEach<kExtendedTag, 8>},
    {1155, "Prefix Metric", kNumber4}, {1156, "OSPF Forwarding Address", {}, ShowForwarding},
    {1157, "Opaque Prefix Attribute", kBytes},
    {1158, "Prefix-SID", kPrefixSid}, {1159, "Range", kRange, ShowRangeParts}, {1161, "SID/Label", kSid},
    {1162, "SRv6 Locator", kLocator},
    {1170, "Prefix Attribute Flags", kBytes}, {1171, "Source Router Identifier", {}, ShowSourceRouter},
    {1172, "Layer 2 Bundle Member Attributes", kMember, ShowNested},
    {1173, "Extended Administrative Group", {}, ShowEach<kExtendedGroup, 4>}, {1174, "Source OSPF Router-ID", kIPv4},
    {1201, "SR Binding SID", kFlags2, ShowBinding},
    {1202, "SR Candidate Path State", kState}, {1203, "SR Candidate Path Name", kText},
    {1204, "SR Candidate Path Constraints", kConstraints, ShowConstraints},
    {1205, "SR Segment List", kListHead, ShowNested},
    {1206, "SR Segment", kSegmentHead, ShowSegment}, {1207, "SR Segment List Metric", kPathMetric},
    {1212, "SRv6 Binding SID", kFlags2, ShowBinding}, {1213, "SR Policy Name", kText},
    {1216, "SR Segment List Bandwidth", kFloat}, {1217, "SR Segment List Identifier", kNumber4},
    {1250, "SRv6 Endpoint Behavior", kBehavior},
    {1251, "SRv6 BGP Peer Node SID", kPeer}, {1252, "SRv6 SID Structure", kSidStructure}});

}  // namespace

void ShowBgpLinkStates(const Place& at, Cursor& c, uint32_t safi, Bgp& bgp) {
  constexpr uint32_t kOfVpn = 72;
  static constexpr auto kHead = Rows<Bgp>({
      Number(2, "NLRI Type", kRouteNames).Into(&Bgp::type), Number(2, "NLRI Length").Into(&Bgp::length)});
  static constexpr auto kSource = Rows<Bgp>({Number(1, "Protocol-ID", kProtocolNames).Note(", %s"), Hex(8, "Identifier")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Field path = TakeBgpPath(c, bgp);
    const uint32_t type = PeekU16(c);
    Cursor state = TakeCursor(c, 4 + static_cast<int64_t>(PeekU16(c, 2)));
    const Place in = Under(at, AddLine(at, Ahead(start, path.length + Left(state)), "Link State: %s",
        LookupName(kRouteNames, type)));
    ShowBgpPath(in, path);
    ShowRows<Bgp>(in, state, kHead, bgp);
    if (safi == kOfVpn) ShowRouteDistinguisher(in, state);
    ShowRows<Bgp>(in, state, kSource, bgp);
    ShowElements<Bgp>(in, state, kForm, "TLV", kDescriptors, bgp);
  }
}

void ShowBgpLinkStateAttribute(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kForm, "TLV", kAttributes, bgp);
}

}  // namespace qxview
