// Extended communities of BGP (RFC 4360, 7153 and IANA's registries): eight octets that a type and a subtype explain, or twenty
// with an address of IPv6 (RFC 5701).
#include "core/elements.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/bgp_names.h"

namespace qxview {
namespace {

constexpr uint32_t kNotTransitive = 0x40, kExperimental = 0x80;
constexpr auto kTypeNames = SortedNames({
    {0x00, "Transitive Two-Octet AS-Specific"}, {0x01, "Transitive IPv4-Address-Specific"},
    {0x02, "Transitive Four-Octet AS-Specific"}, {0x03, "Transitive Opaque"}, {0x04, "QoS Marking"}, {0x05, "CoS Capability"},
    {0x06, "EVPN"}, {0x07, "FlowSpec Transitive"}, {0x08, "Flow Spec Redirect/Mirror to IP Next-Hop"},
    {0x09, "Flow Spec Redirect to Indirection ID"}, {0x0A, "Transitive Transport Class"}, {0x0B, "Service Function Chain"},
    {0x0C, "Mobile User Plane"}, {0x40, "Non-Transitive Two-Octet AS-Specific"}, {0x41, "Non-Transitive IPv4-Address-Specific"},
    {0x42, "Non-Transitive Four-Octet AS-Specific"}, {0x43, "Non-Transitive Opaque"}, {0x44, "QoS Marking"},
    {0x47, "FlowSpec Non-Transitive"}, {0x4A, "Non-Transitive Transport Class"}, {0x80, "Generic Transitive"},
    {0x81, "Generic Transitive Part 2"}, {0x82, "Generic Transitive Part 3"}, {0x88, "EIGRP"}});
constexpr auto kOspfNames = SortedNames({
    {1, "Intra-Area"}, {2, "Intra-Area"}, {3, "Inter-Area"}, {5, "External"}, {7, "NSSA"}, {129, "Sham Link"}});
constexpr auto kValidationNames = SortedNames({{0, "Valid"}, {1, "Not Found"}, {2, "Invalid"}});
constexpr auto kElectionNames = SortedNames({
    {0, "Default"}, {1, "Highest Random Weight"}, {2, "Preference-based"}, {31, "Reserved for Experiment"}});
constexpr auto kLayer2Names = SortedNames({
    {1, "Frame Relay"}, {2, "ATM AAL5"}, {3, "ATM Transparent Cell"}, {4, "Ethernet Tagged"}, {5, "Ethernet"}, {6, "HDLC"},
    {7, "PPP"}, {8, "SONET/SDH CEM"}, {9, "ATM n-to-one VCC"}, {10, "ATM n-to-one VPC"}, {11, "IP Layer 2 Transport"},
    {15, "Frame Relay Port Mode"}, {17, "Structure-Agnostic E1"}, {18, "Structure-Agnostic T1"}, {19, "VPLS"},
    {20, "Structure-Agnostic T3"}, {21, "CESoPSN"}, {22, "Octet-aligned E1"}, {64, "IP Interworking"}});
constexpr auto kModeNames = SortedNames({{0, "All-Active"}, {1, "Single-Active"}});

// The value behind type and subtype, six octets.
constexpr auto kSystem2 = Rows<Bgp>({Number(2, "AS Number").Note(" %u"), Number(4, "Local Administrator").Note(":%u")});
constexpr auto kAddress = Rows<Bgp>({IPv4("IPv4 Address").Note(" %s"), Number(2, "Local Administrator").Note(":%u")});
constexpr auto kSystem4 = Rows<Bgp>({Number(4, "AS Number").Note(" %u"), Number(2, "Local Administrator").Note(":%u")});
constexpr auto kOpaque = Rows<Bgp>({Bytes(6, "Value").Note(" %s")});
constexpr auto kBandwidth = Rows<Bgp>({Number(2, "AS Number").Note(" %u"), Float(4, "Bandwidth (bytes/s)")});
constexpr auto kRate = Rows<Bgp>({Number(2, "AS Number").Note(" %u"), Float(4, "Rate")});
constexpr auto kAction = Rows<Bgp>({
    Bytes(5, "Reserved"), Word(1), Bits(0, 6, "Reserved"), Flag(6, "Sample"), Flag(7, "Terminal Action")});
constexpr auto kMarking = Rows<Bgp>({Bytes(5, "Reserved"), Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "DSCP").Note(" %u")});
constexpr auto kColor = Rows<Bgp>({Hex(2, "Flags"), Bits(0, 2, "Color-Only"), Number(4, "Color").Note(" %u")});
constexpr auto kEncapsulation = Rows<Bgp>({Hex(4, "Reserved"), Number(2, "Tunnel Type", kBgpTunnelNames).Note(" %s")});
constexpr auto kCost = Rows<Bgp>({Number(1, "Point of Insertion"), Number(1, "Community ID"), Number(4, "Cost").Note(" %u")});
constexpr auto kOspfRoute = Rows<Bgp>({
    IPv4("Area").Note(" %s"), Number(1, "Route Type", kOspfNames).Note(" %s"), Hex(1, "Options"), Flag(7, "External Type 2")});
constexpr auto kOspfRouter = Rows<Bgp>({IPv4("Router ID").Note(" %s"), Hex(2, "Reserved")});
constexpr auto kValidation = Rows<Bgp>({Bytes(5, "Reserved"), Number(1, "Validation State", kValidationNames).Note(" %s")});
constexpr auto kMobility = Rows<Bgp>({
    Hex(1, "Flags"), Flag(7, "Sticky"), Hex(1, "Reserved"), Number(4, "Sequence Number").Note(" %u")});
constexpr auto kSegment = Rows<Bgp>({
    Hex(1, "Flags"), Bits(6, 1, "Reserved"), Flag(7, "Single-Active", kModeNames), Hex(2, "Reserved"), Word(3),
    Bits(0, 20, "ESI Label").Note(" Label %u"), Bits(20, 4, "Reserved")});
constexpr auto kMac = Rows<Bgp>({Mac(nullptr).Note(" %s")});
constexpr auto kLayer2 = Rows<Bgp>({
    Hex(2, "Control Flags"), Flag(11, "Flow Label"), Flag(13, "Control Word"), Flag(14, "Primary"), Flag(15, "Backup"),
    Number(2, "Layer 2 MTU").Note(" MTU %u"), Hex(2, "Reserved")});
constexpr auto kTree = Rows<Bgp>({
    Hex(1, "Flags"), Flag(7, "Leaf"), Hex(2, "Reserved"), Word(3), Bits(0, 20, "Leaf Label"), Bits(20, 4, "Reserved")});
constexpr auto kElection = Rows<Bgp>({
    Word(1), Bits(0, 3, "Reserved"), Bits(3, 5, "Algorithm", kElectionNames).Note(" %s"), Hex(2, "Bitmap"),
    Flag(1, "AC-Influenced"), Hex(1, "Reserved"), Number(2, "Preference")});
constexpr auto kService = Rows<Bgp>({Hex(1, "Reserved"), Number(3, "Service Instance ID").Note(" %u"), Hex(2, "Reserved")});
constexpr auto kMulticastFlags = Rows<Bgp>({
    Hex(2, "Flags"), Flag(14, "MLD Proxy"), Flag(15, "IGMP Proxy"), Hex(4, "Reserved")});
constexpr auto kInfo = Rows<Bgp>({
    Number(1, "Encapsulation Type", kLayer2Names).Note(" %s"), Hex(1, "Control Flags"), Flag(6, "Control Word"),
    Flag(7, "Sequenced Delivery"), Number(2, "Layer 2 MTU"), Number(2, "Preference")});
constexpr auto kNeighbour = Rows<Bgp>({
    Hex(1, "Flags"), Flag(4, "Immutable"), Flag(6, "Override"), Flag(7, "Router"), Bytes(5, "Reserved")});

constexpr auto kRouteId = Rows<Bgp>({IPv4("OSPF Router ID").Note(" %s"), Hex(2, "Reserved")});
constexpr auto kPmsiFlags = Rows<Bgp>({Bytes(6, "Additional PMSI Flags")});
constexpr auto kLabelSpace = Rows<Bgp>({Number(2, "ID Type"), Number(4, "Label Space ID").Note(" %u")});
constexpr auto kAttachment = Rows<Bgp>({Hex(2, "Reserved"), Number(4, "Attachment Circuit ID").Note(" %u")});
constexpr auto kCarving = Rows<Bgp>({Number(4, "Timestamp Seconds").Note(" %u"), Number(2, "Timestamp Fraction")});
constexpr auto kEvpnBandwidth = Rows<Bgp>({Number(1, "Value Units"), Hex(1, "Reserved"),
    Number(4, "Value Weight").Note(" %u")});
constexpr auto kMirror = Rows<Bgp>({IPv4("Next Hop").Note(" %s"), Hex(2, "Flags"), Flag(15, "Copy")});
constexpr auto kIndirection = Rows<Bgp>({Hex(1, "Flags"), Flag(7, "Copy"), Number(1, "Tunnel ID"),
    Hex(4, "Generalized ID").Note(" 0x%08X")});
constexpr auto kTransport = Rows<Bgp>({Hex(2, "Reserved"), Number(4, "Transport Class ID").Note(" %u")});
constexpr auto kChaining = Rows<Bgp>({Number(2, "SFIR Pool Type"), Number(4, "SFIR Pool Value").Note(" %u")});
constexpr auto kDirect = Rows<Bgp>({Number(2, "Direct Segment Administrator").Note(" %u"),
    Number(4, "Direct Segment ID").Note(":%u")});
constexpr auto kSecurity = Rows<Bgp>({Hex(4, "Reserved"), Number(2, "Security Group Tag").Note(" %u")});
constexpr auto kLeafInfo = Rows<Bgp>({Hex(2, "E-Tree Flags"), Flag(14, "Root"), Flag(15, "Leaf"), Hex(4, "Reserved")});
constexpr auto kClassifier = Rows<Bgp>({Number(3, "Service Path Identifier").Note(" %u"),
    Number(1, "Service Index").Note(":%u"), Number(2, "Service Function Type")});
constexpr auto kEmpty = Rows<Bgp>({Bytes(6, "Reserved")});

// Communities of a type of their own: which metrics a route of EIGRP had (by its vendor's text).
constexpr auto kEigrpFlags = Rows<Bgp>({Hex(2, "Route Flags"), Flag(0, "Internal"), Number(4, "Route Tag").Note(" %u")});
constexpr auto kEigrpDelay = Rows<Bgp>({Number(2, "AS Number").Note(" %u"), Number(4, "Delay").Note(":%u")});
constexpr auto kEigrpBandwidth = Rows<Bgp>({
    Number(1, "Reliability"), Number(1, "Hop Count"), Number(4, "Bandwidth").Note(" %u")});
constexpr auto kEigrpLoad = Rows<Bgp>({Hex(1, "Reserved"), Number(1, "Load"), Number(4, "MTU").Note(" %u")});
constexpr auto kEigrpExternal = Rows<Bgp>({Number(2, "External AS").Note(" %u"), IPv4("External Router ID").Note(":%s")});
constexpr auto kEigrpProtocol = Rows<Bgp>({Number(2, "External Protocol").Note(" %u"), Number(4, "External Metric").Note(":%u")});

constexpr auto kCommunities = Choices<Bgp>({
    {0x0004, "Link Bandwidth", kBandwidth}, {0x0107, "OSPF Route ID", kRouteId}, {0x010C, "Redirect to IP", kMirror},
    {0x0300, "BGP Origin Validation State", kValidation}, {0x0301, "Cost", kCost},
    {0x0306, "OSPF Route Type", kOspfRoute}, {0x0307, "Additional PMSI Flags", kPmsiFlags},
    {0x0308, "Context-Specific Label Space", kLabelSpace}, {0x030B, "Color", kColor},
    {0x030C, "Encapsulation", kEncapsulation},
    {0x030D, "Default Gateway", kEmpty},
    {0x0600, "MAC Mobility", kMobility}, {0x0601, "ESI Label", kSegment}, {0x0602, "ES-Import Route Target", kMac},
    {0x0603, "Router's MAC", kMac}, {0x0604, "Layer 2 Attributes", kLayer2}, {0x0605, "E-Tree", kTree},
    {0x0606, "DF Election", kElection}, {0x0607, "I-SID", kService}, {0x0608, "ARP/ND", kNeighbour},
    {0x0609, "Multicast Flags", kMulticastFlags}, {0x060A, "EVI Route Target", kSystem2}, {0x060B, "EVI Route Target", kAddress},
    {0x060C, "EVI Route Target", kSystem4}, {0x060E, "EVPN Attachment Circuit", kAttachment},
    {0x060F, "Service Carving Timestamp", kCarving}, {0x0610, "Link Bandwidth", kEvpnBandwidth},
    {0x0800, "Redirect/Mirror to IP", kMirror},
    {0x0900, "Redirect to Indirection ID", kIndirection}, {0x0A00, "Transport Class", kTransport},
    {0x0B00, "Service Chaining", kChaining},
    {0x0C00, "MUP Direct Segment", kDirect}, {0x8000, "OSPF Route Type", kOspfRoute},
    {0x8001, "OSPF Router ID", kOspfRouter},
    {0x8004, "Security Group", kSecurity}, {0x8006, "Traffic Rate", kRate}, {0x8007, "Traffic Action", kAction},
    {0x8008, "Redirect", kSystem2},
    {0x8009, "Traffic Marking", kMarking}, {0x800A, "Layer 2 Info", kInfo}, {0x800B, "E-Tree Info", kLeafInfo},
    {0x800C, "Traffic Rate", kRate},
    {0x800D, "Service Function Chain Classifier", kClassifier},
    {0x8108, "Redirect", kAddress}, {0x8208, "Redirect", kSystem4},
    {0x8800, "EIGRP Route", kEigrpFlags}, {0x8801, "EIGRP Delay", kEigrpDelay}, {0x8802, "EIGRP Bandwidth", kEigrpBandwidth},
    {0x8803, "EIGRP Load", kEigrpLoad}, {0x8804, "EIGRP External Router", kEigrpExternal},
    {0x8805, "EIGRP External Protocol", kEigrpProtocol}});

RowSpan<Bgp> RowsOf(uint32_t type) {
  switch (type) {
    case 0x00: return kSystem2;
    case 0x01: return kAddress;
    case 0x02: return kSystem4;
    default: return kOpaque;
  }
}

}  // namespace

void ShowBgpExtendedCommunities(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Number(1, "Type", kTypeNames)});
  Loop loop;
  while (Left(c) >= 8 && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU8(c), plain = type & kExperimental ? type : type & ~kNotTransitive;
    const uint32_t key = plain << 8 | PeekU8(c, 1);
    const char* name = LookupName(kBgpExtendedNames, key);
    Cursor community = TakeCursor(c, 8);
    const Place in = Under(at, AddLine(at, Ahead(community, 8), "Extended Community: %s", name));
    ShowRows<Bgp>(in, community, kHead, bgp);
    const Field sub = TakeU8(community);
    AddLine(in, sub, "Subtype: 0x%02X = %s", sub.value, name);
    const Choice<Bgp>* choice = FindChoice<Bgp>(kCommunities, key);
    ShowRows<Bgp>(in, community, choice ? choice->rows : RowsOf(plain), bgp, choice ? choice->name : nullptr);
  }
  c.ranShort = false;
  const Field rest = Rest(c);
  if (rest.here) AddLine(at, rest, "Rest: %s", HexText(rest));
}

void ShowBgpCommunities6(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kNames = SortedNames({
      {0x0002, "Route Target"}, {0x0003, "Route Origin"}, {0x000B, "VRF Route Import"}, {0x000C, "Flow-spec Redirect to IPv6"},
      {0x000D, "Flow-spec RT-Redirect"}, {0x0010, "Cisco VPN-Distinguisher"}, {0x0011, "UUID-based Route Target"},
      {0x0012, "Inter-Area P2MP Segmented Next-Hop"}});
  static constexpr auto kRows = Rows<Bgp>({
      Number(1, "Type", kTypeNames), Hex(1, "Subtype"), IPv6("IPv6 Address").Note(" %s"), Number(2, "Local Administrator").Note(":%u")});
  Loop loop;
  while (Left(c) >= 20 && MoreAt(at, c, loop)) {
    const uint32_t key = PeekU16(c) & ~(kNotTransitive << 8);
    const Place in = Under(at, AddLine(at, Ahead(c, 20), "IPv6 Extended Community: %s", LookupName(kNames, key)));
    ShowRows<Bgp>(in, c, kRows, bgp);
  }
}

}  // namespace qxview
