// What BGP says of the way to a next hop: tunnel encapsulations (RFC 9012, with policies of RFC 9830), segments of prefixes
// (RFC 8669, 9252), and the signatures of BGPsec (RFC 8205).
#include "core/elements.h"
#include "decoders/common/traffic_engineering.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/bgp_names.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr auto kSubNames = SortedNames({
    {0, "Reserved"}, {1, "Encapsulation"}, {2, "Protocol Type"}, {3, "IPsec Tunnel Authenticator"}, {4, "Color"},
    {5, "Load-Balancing Block"}, {6, "Tunnel Egress Endpoint"}, {7, "DS Field"}, {8, "UDP Destination Port"},
    {9, "Embedded Label Handling"}, {10, "MPLS Label Stack"}, {11, "Prefix-SID"}, {12, "Preference"}, {13, "Binding SID"},
    {14, "Explicit Null Label Policy"}, {15, "Policy Priority"}, {16, "SPI/SI Representation"}, {17, "SFC MPLS Label"},
    {20, "SRv6 Binding SID"}, {128, "Segment List"}, {129, "Policy Candidate Path Name"}, {130, "Policy Name"}});
constexpr auto kEmbeddedNames = SortedNames({{1, "Payload is MPLS"}, {2, "Payload is IP"}});
constexpr auto kNullNames = SortedNames({
    {0, "Reserved"}, {1, "IPv4 Explicit Null"}, {2, "IPv6 Explicit Null"}, {3, "Both"}, {4, "None"}});
constexpr auto kSegmentNames = SortedNames({
    {1, "Type A (SR-MPLS Label)"}, {3, "Type C (IPv4 Prefix)"}, {4, "Type D (IPv6 Prefix for SR-MPLS)"},
    {5, "Type E (IPv4 Prefix with Interface)"}, {6, "Type F (IPv4 Link)"}, {7, "Type G (IPv6 Link with Interface)"},
    {8, "Type H (IPv6 Link)"}, {9, "Weight"}, {13, "Type B (SRv6 SID)"}, {14, "Type I (IPv6 Prefix for SRv6)"},
    {15, "Type J (IPv6 Link with Interface for SRv6)"}, {16, "Type K (IPv6 Link for SRv6)"}});

struct SubForm {
  Field type, length;
  Cursor value;
  Place in;
};

// Sub-TLVs count their length in one octet below 128 and in two from there on.
bool TakeSub(const Place& at, Cursor& c, const char* title, const Names& names, SubForm& out) {
  if (Left(c) < 2) return false;
  const uint32_t type = PeekU8(c);
  const bool isLong = type >= 128;
  Cursor all = TakeCursor(c, (isLong ? 3 : 2) + static_cast<int64_t>(isLong ? PeekU16(c, 1) : PeekU8(c, 1)));
  out.in = Under(at, AddLine(at, Ahead(all, Left(all)), "%s: %s", title, names.NameOf(type)));
  out.type = TakeU8(all);
  out.length = isLong ? TakeU16(all) : TakeU8(all);
  AddLine(out.in, out.type, "Type: %u = %s", type, names.NameOf(type));
  AddLine(out.in, out.length, "Length: %u", out.length.value);
  out.value = all;
  return true;
}

// Segments by prefixes and links (RFC 9831), each with a SID behind it where one is meant.
constexpr auto kFlags4 = Rows<Bgp>({
    Hex(1, "Segment Flags"), Flag(0, "Verification"), Flag(1, "Algorithm Present"), Flag(2, "SID Present"),
    Flag(3, "Behavior Present"),
    Number(1, "Algorithm")});
constexpr auto kSegmentBehavior = Rows<Bgp>({
    Hex(2, "Endpoint Behavior", kEndpointNames), Hex(2, "Reserved"), Number(1, "Locator Block Length"),
    Number(1, "Locator Node Length"),
    Number(1, "Function Length"), Number(1, "Argument Length")});
constexpr auto kNode4 = Rows<Bgp>({IPv4("Node Address").Note(", %s")});
constexpr auto kNode6 = Rows<Bgp>({IPv6("Node Address").Note(", %s")});
constexpr auto kNodeLink4 = Rows<Bgp>({Number(4, "Local Interface ID"), IPv4("Node Address").Note(", %s")});
constexpr auto kLink4 = Rows<Bgp>({IPv4("Local Address").Note(", %s"), IPv4("Remote Address").Note(", %s")});
constexpr auto kLink6 = Rows<Bgp>({IPv6("Local Address").Note(", %s"), IPv6("Remote Address").Note(", %s")});
constexpr auto kInterfaceLink6 = Rows<Bgp>({
    Number(4, "Local Interface ID"), IPv6("Local Address").Note(", %s"), Number(4, "Remote Interface ID"),
    IPv6("Remote Address").Note(", %s")});
void ShowSegmentLabel(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kLabel = Rows<Bgp>({
      Word(4), Bits(0, 20, "Label").Note(", %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom"), Bits(24, 8, "TTL")});
  ShowRows<Bgp>(in, c, kLabel, bgp);
}
void ShowSegmentSid(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kSid = Rows<Bgp>({IPv6("SRv6 SID").Note(", %s")});
  ShowRows<Bgp>(in, c, kSid, bgp);
  if (Left(c) >= 8) ShowRows<Bgp>(in, c, kSegmentBehavior, bgp);
}
constexpr auto kSegments = Choices<Bgp>({
    {3, "Type C", kNode4, ShowSegmentLabel}, {4, "Type D", kNode6, ShowSegmentLabel},
    {5, "Type E", kNodeLink4, ShowSegmentLabel},
    {6, "Type F", kLink4, ShowSegmentLabel}, {7, "Type G", kInterfaceLink6, ShowSegmentLabel},
    {8, "Type H", kLink6, ShowSegmentLabel},
    {14, "Type I", kNode6, ShowSegmentSid}, {15, "Type J", kInterfaceLink6, ShowSegmentSid},
    {16, "Type K", kLink6, ShowSegmentSid}});

void ShowSegments(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kReserved = Rows<Bgp>({Hex(1, "Reserved")});
  static constexpr auto kFlags = Rows<Bgp>({
      Hex(1, "Segment Flags"), Flag(0, "Verification"), Flag(1, "Algorithm Present"), Flag(2, "SID Present"),
      Flag(3, "Behavior Present"), Hex(1, "Reserved")});
  static constexpr auto kLabel = Rows<Bgp>({
      Word(4), Bits(0, 20, "Label").Note(", %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom"), Bits(24, 8, "TTL")});
  static constexpr auto kSid = Rows<Bgp>({IPv6("SRv6 SID").Note(", %s")});
  static constexpr auto kWeight = Rows<Bgp>({Hex(1, "Weight Flags"), Hex(1, "Reserved"), Number(4, "Weight").Note(", %u")});
  ShowRows<Bgp>(at, c, kReserved, bgp);
  SubForm segment;
  Loop loop;
  while (MoreAt(at, c, loop) && TakeSub(at, c, "Segment", kSegmentNames, segment)) {
    const uint32_t type = segment.type.value;
    if (const Choice<Bgp>* choice = FindChoice<Bgp>(kSegments, type)) {
      ShowRows<Bgp>(segment.in, segment.value, kFlags4, bgp);
      ShowRows<Bgp>(segment.in, segment.value, choice->rows, bgp);
      if (choice->show && Left(segment.value)) choice->show(segment.in, segment.value, bgp);
    } else if (type == 9) {
      ShowRows<Bgp>(segment.in, segment.value, kWeight, bgp);
    } else if (type == 1 || type == 13) {
      ShowRows<Bgp>(segment.in, segment.value, kFlags, bgp);
      ShowRows<Bgp>(segment.in, segment.value, type == 1 ? RowSpan<Bgp>(kLabel) : RowSpan<Bgp>(kSid), bgp);
      if (type != 1 && Left(segment.value) >= 8) ShowRows<Bgp>(segment.in, segment.value, kSegmentBehavior, bgp);
    }
    segment.value.ranShort = false;
    AddBlock(segment.in, Rest(segment.value), "Segment Data");
  }
}

void ShowEncapsulation(const Place& in, Cursor& c, uint32_t tunnel, Bgp& bgp) {
  static constexpr auto kNetwork = Rows<Bgp>({
      Hex(1, "Flags"), Flag(0, "Network Identifier Valid"), Flag(1, "MAC Address Valid"), Number(3, "Virtual Network Identifier"),
      Mac("MAC Address"), Hex(2, "Reserved")});
  static constexpr auto kExtension = Rows<Bgp>({
      Hex(1, "Flags"), Bits(0, 2, "GPE Version"), Flag(2, "Network Identifier Valid"), Flag(3, "MAC Address Valid"),
      Number(3, "Virtual Network Identifier"), Mac("MAC Address"), Hex(2, "Reserved")});
  static constexpr auto kSession = Rows<Bgp>({Hex(4, "Session ID"), Bytes(0, "Cookie")});
  static constexpr auto kKey = Rows<Bgp>({Hex(4, "GRE Key")});
  if (tunnel == 8 || tunnel == 9) ShowRows<Bgp>(in, c, kNetwork, bgp);
  if (tunnel == 12) ShowRows<Bgp>(in, c, kExtension, bgp);
  if (tunnel == 1) ShowRows<Bgp>(in, c, kSession, bgp);
  if (tunnel == 2 || tunnel == 11) ShowRows<Bgp>(in, c, kKey, bgp);
}

void ShowEndpoint(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Hex(4, "Reserved"), Number(2, "Address Family", AddressFamilyName).Into(&Bgp::afi)});
  ShowRows<Bgp>(in, c, kHead, bgp);
  if (Left(c)) ShowFamilyAddress(in, c, "Endpoint", bgp.afi.value);
}

void ShowBinding(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({Hex(1, "Binding Flags"), Flag(0, "Specified SID Only"), Flag(1, "Drop upon Invalid"), Hex(1, "Reserved")});
  static constexpr auto kLabel = Rows<Bgp>({Word(4), Bits(0, 20, "Binding Label").Note(", %u"), Bits(20, 12, "Reserved")});
  static constexpr auto kSid = Rows<Bgp>({IPv6("Binding SID").Note(", %s")});
  ShowRows<Bgp>(in, c, kHead, bgp);
  if (Left(c) >= 16) {
    ShowRows<Bgp>(in, c, kSid, bgp);
    if (Left(c) >= 8) ShowRows<Bgp>(in, c, kSegmentBehavior, bgp);
  }
  if (Left(c) >= 4) ShowRows<Bgp>(in, c, kLabel, bgp);
}

constexpr auto kAuthenticator = Rows<Bgp>({Number(2, "Authenticator Type"), Bytes(0, "Authenticator Value")});
constexpr auto kBalancing = Rows<Bgp>({Number(2, "Load-Balancing Block").Note(", %u")});
constexpr auto kServicePath = Rows<Bgp>({Number(3, "Service Path Identifier").Note(", %u"),
    Number(1, "Service Index").Note(":%u")});
constexpr auto kProtocol = Rows<Bgp>({Hex(2, "Protocol Type").Note(", 0x%04X")});
constexpr auto kColor = Rows<Bgp>({Hex(2, "Community Type"), Hex(2, "Color Flags"), Number(4, "Color").Note(", %u")});
constexpr auto kServices = Rows<Bgp>({Hex(1, "DS Field")});
constexpr auto kPort = Rows<Bgp>({Number(2, "UDP Destination Port").Note(", %u")});
constexpr auto kEmbedded = Rows<Bgp>({Number(1, "Embedded Label Handling", kEmbeddedNames)});
constexpr auto kPreference = Rows<Bgp>({Hex(1, "Preference Flags"), Hex(1, "Reserved"), Number(4, "Preference").Note(", %u")});
constexpr auto kNullPolicy = Rows<Bgp>({Hex(1, "Policy Flags"), Hex(1, "Reserved"), Number(1, "Explicit Null Label Policy", kNullNames)});
constexpr auto kPriority = Rows<Bgp>({Number(1, "Priority").Note(", %u"), Hex(1, "Reserved")});
constexpr auto kName = Rows<Bgp>({Hex(1, "Reserved"), Utf8(0, "Name").Note(", %s")});

void ShowStack(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kEntry = Rows<Bgp>({
      Word(4), Bits(0, 20, "Label").Note(", %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom"), Bits(24, 8, "TTL")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kEntry, bgp);
}

void ShowSub(const Place& in, Cursor& c, uint32_t type, uint32_t tunnel, Bgp& bgp) {
  switch (type) {
    case 1: return ShowEncapsulation(in, c, tunnel, bgp);
    case 2: ShowRows<Bgp>(in, c, kProtocol, bgp); return;
    case 3: ShowRows<Bgp>(in, c, kAuthenticator, bgp); return;
    case 4: ShowRows<Bgp>(in, c, kColor, bgp); return;
    case 5: ShowRows<Bgp>(in, c, kBalancing, bgp); return;
    case 6: return ShowEndpoint(in, c, bgp);
    case 7: ShowRows<Bgp>(in, c, kServices, bgp); return;
    case 8: ShowRows<Bgp>(in, c, kPort, bgp); return;
    case 9: ShowRows<Bgp>(in, c, kEmbedded, bgp); return;
    case 10: return ShowStack(in, c, bgp);
    case 11: return ShowBgpPrefixSid(in, c, bgp);
    case 12: ShowRows<Bgp>(in, c, kPreference, bgp); return;
    case 13:
    case 20: return ShowBinding(in, c, bgp);
    case 14: ShowRows<Bgp>(in, c, kNullPolicy, bgp); return;
    case 15: ShowRows<Bgp>(in, c, kPriority, bgp); return;
    case 16: ShowRows<Bgp>(in, c, kServicePath, bgp); return;
    case 17: return ShowStack(in, c, bgp);
    case 128: return ShowSegments(in, c, bgp);
    case 129:
    case 130: ShowRows<Bgp>(in, c, kName, bgp); return;
    default: return;
  }
}

constexpr ElementForm kForm{.typeSize = 1, .lengthSize = 2, .valueLines = true};

// SRv6 services: a SID with its behavior, and how its bits are divided (RFC 9252).
void ShowService(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kReserved = Rows<Bgp>({Hex(1, "Reserved")});
  static constexpr auto kSid = Rows<Bgp>({
      Hex(1, "Reserved"), IPv6("SRv6 SID").Note(", %s"), Hex(1, "SID Flags"), Hex(2, "Endpoint Behavior"), Hex(1, "Reserved")});
  static constexpr auto kStructure = Rows<Bgp>({
      Number(1, "Locator Block Length"), Number(1, "Locator Node Length"), Number(1, "Function Length"),
      Number(1, "Argument Length"), Number(1, "Transposition Length"), Number(1, "Transposition Offset")});
  static constexpr auto kStructures = Choices<Bgp>({{1, "SID Structure", kStructure}});
  static constexpr auto kSids = Choices<Bgp>({{1, "SID Information", kSid, [](const Place& in, Cursor& inner, Bgp& out) {
                                                  ShowElements<Bgp>(in, inner, kForm,
                                                                    "SID Data", kStructures, out);
                                                }}});
  ShowRows<Bgp>(at, c, kReserved, bgp);
  ShowElements<Bgp>(at, c, kForm, "Service", kSids, bgp);
}

void ShowBlocks(const Place& in, Cursor& c, Bgp& bgp) {
  static constexpr auto kFlags = Rows<Bgp>({Hex(2, "Flags")});
  static constexpr auto kBlock = Rows<Bgp>({Number(3, "SRGB Base"), Number(3, "SRGB Range")});
  ShowRows<Bgp>(in, c, kFlags, bgp);
  Loop loop;
  while (Left(c) >= 6 && MoreAt(in, c, loop)) ShowRows<Bgp>(in, c, kBlock, bgp);
}

constexpr auto kIndex = Rows<Bgp>({Hex(1, "Reserved"), Hex(2, "Flags"), Number(4, "Label Index").Note(", %u")});
constexpr auto kPrefixSids = Choices<Bgp>({
    {1, "Label-Index", kIndex}, {3, "Originator SRGB", {}, ShowBlocks}, {5, "SRv6 L3 Service", {}, ShowService},
    {6, "SRv6 L2 Service", {}, ShowService}});

}  // namespace

void ShowBgpTunnels(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kHead = Rows<Bgp>({
      Number(2, "Tunnel Type", kBgpTunnelNames).Into(&Bgp::type), Number(2, "Tunnel Length").Into(&Bgp::length)});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const uint32_t tunnel = PeekU16(c);
    Cursor all = TakeCursor(c, 4 + static_cast<int64_t>(PeekU16(c, 2)));
    const Place in = Under(at, AddLine(at, Ahead(all, Left(all)), "Tunnel: %s", LookupName(kBgpTunnelNames, tunnel)));
    ShowRows<Bgp>(in, all, kHead, bgp);
    SubForm sub;
    Loop each;
    while (MoreAt(in, all, each) && TakeSub(in, all, "Sub-TLV", kSubNames, sub)) {
      ShowSub(sub.in, sub.value, sub.type.value, tunnel, bgp);
      sub.value.ranShort = false;
      AddBlock(sub.in, Rest(sub.value), "Sub-TLV Data");
    }
  }
}

void ShowBgpPrefixSid(const Place& in, Cursor& c, Bgp& bgp) {
  ShowElements<Bgp>(in, c, kForm, "TLV", kPrefixSids, bgp);
}

void ShowBgpSignatures(const Place& at, Cursor& c, Bgp& bgp) {
  static constexpr auto kPath = Rows<Bgp>({Number(2, "Secure Path Length").Into(&Bgp::length)});
  static constexpr auto kSystem = Rows<Bgp>({
      Number(1, "Prepends"), Hex(1, "Path Flags"), Flag(0, "Confederation Segment"), Number(4, "AS Number").Note(" %u")});
  static constexpr auto kBlock = Rows<Bgp>({
      Number(2, "Signature Block Length").Into(&Bgp::length), Number(1, "Algorithm Suite")});
  static constexpr auto kSignature = Rows<Bgp>({
      Bytes(20, "Subject Key Identifier"), Number(2, "Signature Length").Into(&Bgp::count),
      Bytes(0, "Signature").SizedBy(&Bgp::count)});
  ShowRows<Bgp>(at, c, kPath, bgp);
  Cursor path = TakeCursor(c, bgp.length.value > 2 ? bgp.length.value - 2 : 0);
  Loop loop;
  while (Left(path) >= 6 && MoreAt(at, path, loop)) ShowRows<Bgp>(at, path, kSystem, bgp);
  while (Left(c) >= 3 && MoreAt(at, c, loop)) {
    const int32_t said = static_cast<int32_t>(PeekU16(c));
    Cursor block = TakeCursor(c, said < 3 ? Left(c) : said);   // one shorter than its head cannot tell where the next starts
    const Place in = Under(at, AddLine(at, Ahead(block, Left(block)), "Signature Block"));
    ShowRows<Bgp>(in, block, kBlock, bgp);
    Loop each;
    while (Left(block) >= 22 && MoreAt(in, block, each)) ShowRows<Bgp>(in, block, kSignature, bgp);
    block.ranShort = false;
    AddBlock(in, Rest(block), "Signature Data");
  }
}

}  // namespace qxview
