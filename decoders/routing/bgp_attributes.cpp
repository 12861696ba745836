// Path attributes of BGP (RFC 4271 4.3 and what IANA's registry has since).
//
//   flags (1) type (1) length (1, or 2 where the flag says so) value
#include "core/elements.h"
#include "decoders/common/traffic_engineering.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/bgp_names.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr uint32_t kExtendedLength = 0x10;
constexpr auto kOriginNames = SortedNames({{0, "IGP"}, {1, "EGP"}, {2, "INCOMPLETE"}});
constexpr auto kSegmentNames = SortedNames({
    {1, "AS_SET"}, {2, "AS_SEQUENCE"}, {3, "AS_CONFED_SEQUENCE"}, {4, "AS_CONFED_SET"}});
constexpr auto kPmsiNames = SortedNames({
    {0, "No Tunnel"}, {1, "RSVP-TE P2MP LSP"}, {2, "mLDP P2MP LSP"}, {3, "PIM-SSM Tree"}, {4, "PIM-SM Tree"},
    {5, "BIDIR-PIM Tree"}, {6, "Ingress Replication"}, {7, "mLDP MP2MP LSP"}, {8, "Transport Tunnel"},
    {9, "Assisted-Replication Tunnel"}, {10, "BIER"}, {11, "SR-MPLS P2MP Tree"}, {0x0C, "SRv6 P2MP Tree"},
    {0x7F, "Composite Tunnel"}, {0xFF, "Reserved"}});
constexpr auto kDomainNames = SortedNames({{0, "Local"}, {1, "VPN-IPv4"}, {2, "VPN-IPv6"}, {70, "EVPN"}, {128, "IPv4 VPN"}});

constexpr auto kHead = Rows<Bgp>({
    Hex(1, "Flags").Into(&Bgp::flags), Flag(0, "Optional"), Flag(1, "Transitive"), Flag(2, "Partial"), Flag(3, "Extended Length"),
    Number(1, "Type Code", kBgpAttributeNames).Into(&Bgp::code)});

constexpr auto kOrigin = Rows<Bgp>({Number(1, "Origin", kOriginNames).Note(", %s")});
constexpr auto kNextHop = Rows<Bgp>({IPv4("Next Hop").Note(", %s")});
constexpr auto kMetric = Rows<Bgp>({Number(4, "Multiple Exit Discriminator").Note(", %u")});
constexpr auto kPreference = Rows<Bgp>({Number(4, "Local Preference").Note(", %u")});
constexpr auto kAggregator2 = Rows<Bgp>({Number(2, "Aggregator AS").Note(", AS %u"), IPv4("Aggregator").Note(", %s")});
constexpr auto kAggregator4 = Rows<Bgp>({Number(4, "Aggregator AS").Note(", AS %u"), IPv4("Aggregator").Note(", %s")});
constexpr auto kOriginator = Rows<Bgp>({IPv4("Originator ID").Note(", %s")});
constexpr auto kCluster = Rows<Bgp>({IPv4("Cluster ID").Note(", %s")});
constexpr auto kConnector = Rows<Bgp>({Number(2, "Connector Type"), Bytes(0, "Connector Value")});
constexpr auto kPathLimit = Rows<Bgp>({Number(1, "Upper Bound"), Number(4, "AS Number").Note(", AS %u")});
constexpr auto kLargeCommunity = Rows<Bgp>({
    Number(4, "Global Administrator"), Number(4, "Local Data 1"), Number(4, "Local Data 2")});
constexpr auto kOnly = Rows<Bgp>({Number(4, "AS Number").Note(", AS %u")});
constexpr auto kBytes = Rows<Bgp>({Bytes(0, nullptr)});
constexpr auto kSetOrigin = Rows<Bgp>({Number(4, "Origin AS").Note(", AS %u")});
constexpr auto kDiscriminator = Rows<Bgp>({Number(1, "BFD Mode"), Hex(4, "BFD Discriminator").Note(", 0x%08X")});
constexpr auto kPreferenceOf = Rows<Bgp>({Number(2, "AS Number").Note(", AS %u"),
    Number(4, "Destination Preference").Note(", %u")});
constexpr auto kAdvertiser = Rows<Bgp>({IPv4("Advertiser").Note(", %s")});
constexpr auto kRouteCluster = Rows<Bgp>({IPv4("Route Cluster ID").Note(", %s")});
constexpr auto kEngineering = Rows<Bgp>({
    Number(1, "Switching Capability", kSwitchingNames), Number(1, "Encoding", kEncodingNames), Hex(2, "Reserved"),
    Shown<Bgp>(nullptr, ShowLspBandwidths<Bgp>)});

void ShowDiscriminator(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kSource = Rows<Bgp>({Bytes(0, "Source Address")});
  static constexpr auto kParts = Choices<Bgp>({{1, "Source IP Address", kSource}});
  ShowElements<Bgp>(in, c, ElementForm{}, "TLV", kParts, bgp);
}

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, rows, bgp);
}

// Whether the segments of a path fill it to the byte with numbers of this width.
bool Fits(const Cursor& path, int32_t width) {
  Cursor c = path;
  while (Left(c) >= 2) {
    const uint32_t type = TakeU8(c).value;
    const int32_t length = static_cast<int32_t>(TakeU8(c).value) * width;
    if (type < 1 || type > 4 || length == 0 || length > Left(c)) return false;
    TakeBytes(c, length);
  }
  return Left(c) == 0;
}

void ShowSegments(const Place& at, Cursor& c, int32_t width, Bgp&) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU8(c), count = PeekU8(c, 1);
    Cursor segment = TakeCursor(c, 2 + static_cast<int64_t>(count) * width);
    const LineHandle line = AddLine(at, Ahead(segment, Left(segment)), "Segment: %s", LookupName(kSegmentNames, type));
    const Place in = Under(at, line);
    const Field kind = TakeU8(segment), length = TakeU8(segment);
    AddLine(in, kind, "Segment Type: %u = %s", kind.value, LookupName(kSegmentNames, kind.value));
    AddLine(in, length, "Segment Length: %u", length.value);
    Loop each;
    while (Left(segment) >= width && MoreAt(in, segment, each)) {
      const Field number = width == 4 ? TakeU32(segment) : TakeU16(segment);
      AddLine(in, number, "AS Number: %u", number.value);
      AppendToLine(in, line, " %u", number.value);
      AppendToParent(at, number, " %u", number.value);
    }
  }
}

// What the session's opening said, unless the bytes decide otherwise: the opening of a session that came since was missed;
// without an opening what the bytes fit.
void ShowPath(const Place& in, Cursor& c, Bgp& bgp) {
  constexpr int32_t kBothWidths = 2 + 4;
  AppendToParent(in, Ahead(c, 0), ":");
  if (bgp.known || bgp.isWidthTold) {
    const int32_t told = bgp.session.wide[0] && bgp.session.wide[1] ? 4 : 2, other = kBothWidths - told;
    const bool isOther = !Fits(c, told) && Fits(c, other);
    if (isOther) {
      AddLine(in, Stated(c.offset, 0), "AS Number Width: %d bytes (as the path tells, %d were announced)", other, told);
    }
    ShowSegments(in, c, isOther ? other : told, bgp);
    return;
  }
  if (!Left(c)) return;
  const bool isWide = Fits(c, 4) || !Fits(c, 2);
  AddLine(in, Stated(c.offset, 0), "AS Number Width: %d bytes (assumed, the opening was not seen)", isWide ? 4 : 2);
  ShowSegments(in, c, isWide ? 4 : 2, bgp);
}
void ShowWidePath(const Place& in, Cursor& c, Bgp& bgp) {
  AppendToParent(in, Ahead(c, 0), ":");
  ShowSegments(in, c, 4, bgp);
}
void ShowAggregator(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, Left(c) >= 8 ? RowSpan<Bgp>(kAggregator4) : RowSpan<Bgp>(kAggregator2), bgp);
}

void ShowCommunities(const Place& in, Cursor& c, Bgp&) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const Field community = TakeU32(c);
    const char* name = LookupName(kBgpCommunityNames, community.value, nullptr);
    const uint32_t system = community.value >> 16, value = community.value & 0xFFFF;
    if (name) {
      AddLine(in, community, "Community: %u:%u = %s", system, value, name);
    } else {
      AddLine(in, community, "Community: %u:%u", system, value);
    }
    AppendToParent(in, community, " %u:%u", system, value);
  }
}
void ShowLargeCommunities(const Place& at, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= 12 && MoreAt(at, c, loop)) {
    const uint32_t a = PeekU32(c), b = PeekU32(c, 4), d = PeekU32(c, 8);
    const Place in = Under(at, AddLine(at, Ahead(c, 12), "Large Community: %u:%u:%u", a, b, d));
    AppendToParent(at, Ahead(c, 12), " %u:%u:%u", a, b, d);
    ShowRows<Bgp>(in, c, kLargeCommunity, bgp);
  }
}

constexpr auto kFamily = Rows<Bgp>({
    Number(2, "Address Family", AddressFamilyName).Note(", %s").Into(&Bgp::afi),
    Number(1, "Subsequent Address Family", kBgpSafiNames).Note(" %s").Into(&Bgp::safi)});

// One address or two, of IPv6 the global one and that of the link; VPNs have route distinguishers in front.
void ShowNextHops(const Place& in, Cursor& c, uint32_t safi) {
  constexpr uint32_t kVpn = 128, kMulticastVpn = 129, kFlowVpn = 134;
  const bool isVpn = (safi == kVpn || safi == kMulticastVpn || safi == kFlowVpn) && Left(c) % 4 == 0 && Left(c) >= 12;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t distinguisher = isVpn ? 8 : 0;
    const int32_t size = Left(c) - distinguisher >= 16 ? 16 : 4;
    if (Left(c) < distinguisher + 4) break;
    if (isVpn) ShowRouteDistinguisher(in, c);
    ShowFamilyAddress(in, c, "Next Hop", size == 16 ? kFamilyIPv6 : kFamilyIPv4);
  }
  c.ranShort = false;
  const Field rest = Rest(c);
  if (rest.here) AddLine(in, rest, "Next Hop: %s", HexText(rest));
}

void ShowReach(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kFamily, bgp);
  const uint32_t afi = bgp.afi.value, safi = bgp.safi.value;
  const Field length = TakeU8(c);
  AddLine(in, length, "Next Hop Length: %u", length.value);
  Cursor hops = TakeCursor(c, length.value);
  ShowNextHops(in, hops, safi);
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved: %u", reserved.value);
  ShowBgpRoutes(in, c, afi, safi, "Prefix", bgp);
}
void ShowUnreach(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kFamily, bgp);
  if (!Left(c)) AppendToParent(in, Ahead(c, 0), ", End-of-RIB");
  ShowBgpRoutes(in, c, bgp.afi.value, bgp.safi.value, "Withdrawn Prefix", bgp);
}

void ShowPmsi(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kFirst = Rows<Bgp>({
      Hex(1, "PMSI Flags"), Flag(0, "Extension"), Flag(7, "Leaf Information Required"),
      Number(1, "Tunnel Type", kPmsiNames).Note(", %s").Into(&Bgp::type)});
  static constexpr auto kTraffic = Rows<Bgp>({
      IPv4("Extended Tunnel ID"), Hex(2, "Reserved"), Number(2, "Tunnel ID"), IPv4("P2MP ID")});
  static constexpr auto kTree4 = Rows<Bgp>({IPv4("Sender Address"), IPv4("Group Address")});
  static constexpr auto kTree6 = Rows<Bgp>({IPv6("Sender Address"), IPv6("Group Address")});
  static constexpr auto kForward = Rows<Bgp>({
      Number(1, "FEC Element Type"), Number(2, "Address Family", AddressFamilyName).Into(&Bgp::afi), Number(1, "Address Length")});
  ShowRows<Bgp>(in, c, kFirst, bgp);
  ShowMplsLabel(in, c, "MPLS Label");
  const uint32_t type = bgp.type.value;
  if (type == 1) ShowRows<Bgp>(in, c, kTraffic, bgp);
  if (type == 2 || type == 7) {
    ShowRows<Bgp>(in, c, kForward, bgp);
    if (bgp.afi.value == kFamilyIPv4 || bgp.afi.value == kFamilyIPv6) ShowFamilyAddress(in, c, "Root Node Address", bgp.afi.value);
    const Field opaque = TakeU16(c);
    AddLine(in, opaque, "Opaque Length: %u", opaque.value);
    const Field value = TakeBytes(c, opaque.value);
    if (value.here && value.length) AddLine(in, value, "Opaque Value: %s", HexText(value));
  }
  if (type >= 3 && type <= 5) ShowRows<Bgp>(in, c, Left(c) >= 32 ? RowSpan<Bgp>(kTree6) : RowSpan<Bgp>(kTree4), bgp);
  static constexpr auto kReplication = Rows<Bgp>({Number(1, "Sub-Domain ID"), Number(2, "BFR-ID").Note(", %u")});
  static constexpr auto kTreeId = Rows<Bgp>({Number(4, "Tree ID").Note(", %u")});
  if (type == 10) ShowRows<Bgp>(in, c, kReplication, bgp);
  if (type == 11 || type == 12) ShowRows<Bgp>(in, c, kTreeId, bgp);
  if ((type == 6 || (type >= 9 && type <= 12)) && Left(c)) ShowFamilyAddress(in, c, "Tunnel Endpoint",
      Left(c) >= 16 ? kFamilyIPv6 : kFamilyIPv4);
}

void ShowMetrics(const Place& in, Cursor& c, Bgp& bgp) {
  constexpr ElementForm kForm{.typeSize = 1, .lengthSize = 2, .lengthCountsHeader = true, .valueLines = true};
  static constexpr auto kAccumulated = Rows<Bgp>({Number(8, "Accumulated Metric").Note(", %I64u")});
  static constexpr auto kMetrics = Choices<Bgp>({{1, "AIGP", kAccumulated}});
  ShowElements<Bgp>(in, c, kForm, "TLV", kMetrics, bgp);
}

void ShowLabels(const Place& in, Cursor& c, Bgp&) {
  Loop loop;
  while (Left(c) >= 7 && MoreAt(in, c, loop)) {
    ShowFamilyAddress(in, c, "PE Address", kFamilyIPv4);
    ShowMplsLabel(in, c, "PE Label");
  }
}

// Sets of attributes may hold sets; nobody means it.
void ShowSet(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, kSetOrigin, bgp);
  if (bgp.nesting >= kDeepestBgp) return;
  ++bgp.nesting;
  const bool known = bgp.known;
  bgp.known = false;   // the customer's session is another one
  ShowBgpAttributes(in, c, bgp);
  bgp.known = known;
  --bgp.nesting;
}

void ShowDomains(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kCount = Rows<Bgp>({Number(1, "Domains").Into(&Bgp::count)});
  static constexpr auto kDomain = Rows<Bgp>({Number(4, "Domain Global"), Number(2, "Domain Local")});
  static constexpr auto kType = Rows<Bgp>({Number(1, "Inter-Subnet Forwarding Type", kDomainNames)});
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) {
    ShowRows<Bgp>(in, c, kCount, bgp);
    for (uint32_t i = 0; i < bgp.count.value && Left(c) >= 6; ++i) ShowRows<Bgp>(in, c, kDomain, bgp);
    ShowRows<Bgp>(in, c, kType, bgp);
  }
}

// Bit index replication (RFC 9793).
constexpr auto kReplication = Rows<Bgp>({
    Number(1, "Sub-Domain ID").Note(", Sub-Domain %u"), Number(2, "BFR-ID").Note(", BFR-ID %u"), Hex(1, "Reserved")});
constexpr auto kEncapsulation = Rows<Bgp>({
    Number(1, "Maximum Set Identifier"), Word(3), Bits(0, 4, "Bit String Length"), Bits(4, 20, "Label").Note(", Label %u")});
constexpr auto kReplicationHop4 = Rows<Bgp>({IPv4("BIER Next Hop").Note(", %s")});
constexpr auto kReplicationHop6 = Rows<Bgp>({IPv6("BIER Next Hop").Note(", %s")});
void ShowReplicationHop(const Place& in, Cursor& c, Bgp& bgp) {
  ShowRows<Bgp>(in, c, Left(c) >= 16 ? RowSpan<Bgp>(kReplicationHop6) : RowSpan<Bgp>(kReplicationHop4), bgp);
}
constexpr ElementForm kWideForm{.typeSize = 2, .lengthSize = 2, .valueLines = true};
constexpr auto kReplicationParts = Choices<Bgp>({
    {1, "MPLS Encapsulation", kEncapsulation}, {2, "Non-MPLS Encapsulation", kEncapsulation},
    {3, "Next Hop", {}, ShowReplicationHop}});
void ShowReplicationParts(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kWideForm, "Sub-TLV", kReplicationParts, bgp);
}
constexpr auto kReplications = Choices<Bgp>({{1, "BIER", kReplication, ShowReplicationParts}});
void ShowReplications(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kWideForm, "TLV", kReplications, bgp);
}

constexpr auto kAttributes = Choices<Bgp>({
    {1, "ORIGIN", kOrigin}, {2, "AS_PATH", {}, ShowPath}, {3, "NEXT_HOP", kNextHop}, {4, "MULTI_EXIT_DISC", kMetric},
    {5, "LOCAL_PREF", kPreference}, {7, "AGGREGATOR", {}, ShowAggregator}, {8, "COMMUNITIES", {}, ShowCommunities},
    {9, "ORIGINATOR_ID", kOriginator}, {10, "CLUSTER_LIST", {}, ShowEach<kCluster, 4>}, {11, "DPA", kPreferenceOf},
    {12, "ADVERTISER", kAdvertiser}, {13, "RCID_PATH / CLUSTER_ID", {}, ShowEach<kRouteCluster, 4>},
    {14, "MP_REACH_NLRI", {}, ShowReach},
    {15, "MP_UNREACH_NLRI", {}, ShowUnreach}, {16, "EXTENDED COMMUNITIES", {}, ShowBgpExtendedCommunities},
    {17, "AS4_PATH", {}, ShowWidePath}, {18, "AS4_AGGREGATOR", kAggregator4}, {20, "Connector", kConnector},
    {21, "AS_PATHLIMIT", kPathLimit}, {22, "PMSI_TUNNEL", {}, ShowPmsi}, {23, "Tunnel Encapsulation", {}, ShowBgpTunnels},
    {24, "Traffic Engineering", {}, ShowEach<kEngineering, 36>},
    {25, "IPv6 Address Specific Extended Community", {}, ShowBgpCommunities6}, {26, "AIGP", {}, ShowMetrics},
    {27, "PE Distinguisher Labels", {}, ShowLabels}, {28, "Entropy Label Capability", kBytes},
    {29, "BGP-LS", {}, ShowBgpLinkStateAttribute}, {32, "LARGE_COMMUNITY", {}, ShowLargeCommunities},
    {33, "BGPsec_Path", {}, ShowBgpSignatures}, {34, "BGP Community Container", {}, ShowBgpContainers},
    {35, "Only to Customer", kOnly}, {36, "D-PATH", {}, ShowDomains},
    {37, "SFP", {}, ShowBgpServicePath},
    {38, "BFD Discriminator", kDiscriminator, ShowDiscriminator}, {39, "Next Hop Dependent Characteristics", {},
    ShowBgpHopCharacteristics}, {40, "BGP Prefix-SID", {}, ShowBgpPrefixSid},
    {41, "BIER", {}, ShowReplications},
    {99, "BGP-LS", {}, ShowBgpLinkStateAttribute}, {128, "ATTR_SET", {}, ShowSet}});

}  // namespace

void ShowBgpAttributes(const Place& at, Cursor& c, Bgp& bgp) {
  Loop loop;
  while (Left(c) >= 3 && MoreAt(at, c, loop)) {
    const bool isLong = PeekU8(c) & kExtendedLength;
    const uint32_t code = PeekU8(c, 1);
    const int64_t length = isLong ? PeekU16(c, 2) : PeekU8(c, 2);
    Cursor attribute = TakeCursor(c, (isLong ? 4 : 3) + length);
    const Place in = Under(at, AddLine(at, Ahead(attribute, Left(attribute)), "Attribute: %s",
                                       LookupName(kBgpAttributeNames, code)));
    ShowRows<Bgp>(in, attribute, kHead, bgp);
    const Field size = isLong ? TakeU16(attribute) : TakeU8(attribute);
    AddLine(in, size, "Length: %u", size.value);
    ShowChoice<Bgp>(in, attribute, FindChoice<Bgp>(kAttributes, code), bgp);   // keys: none Data
  }
  AddBlock(at, Rest(c), "Attribute Data");   // too short for a head
}

}  // namespace qxview
