// Enhanced Interior Gateway Routing Protocol (RFC 7868): which networks can be reached over which neighbor, and how well?
//
//   version   opcode   checksum (2)   flags (4)   sequence (4)   acknowledgement (4)   virtual router (2)   AS (2)   elements
#include "core/elements.h"
#include "core/internet_checksum.h"
#include "core/line_facts.h"
#include "decoders/common/checksum_line.h"
#include "decoders/routing/bgp.h"

namespace qxview {
namespace {

struct Eigrp {
  Field opcode, flags, family, size, acknowledgement, system;
};

constexpr auto kOpcodeNames = SortedNames({
    {1, "Update"}, {2, "Request"}, {3, "Query"}, {4, "Reply"}, {5, "Hello"}, {6, "IPX SAP"}, {7, "Probe"},
    {8, "Acknowledgement"}, {9, "Stub Information"}, {10, "SIA Query"}, {11, "SIA Reply"}});
constexpr auto kFlagMasks = SortedNames({
    {0x01, "Initial Update"}, {0x02, "Conditional Receive"}, {0x04, "Restart"}, {0x08, "End of Table"}});
constexpr auto kStubMasks = SortedNames({
    {0x01, "Connected"}, {0x02, "Static"}, {0x04, "Summary"}, {0x08, "Receive-Only"}, {0x10, "Redistributed"}, {0x20, "Leak-Map"}});
constexpr auto kRouteMasks = SortedNames({
    {0x01, "Source Withdraw"}, {0x02, "Candidate Default"}, {0x04, "Active"}, {0x08, "Replicated"}});
constexpr auto kExternalMasks = SortedNames({{0x01, "External"}, {0x02, "Candidate Default"}});
constexpr auto kProtocolNames = SortedNames({
    {0, "Reserved"}, {1, "IGRP"}, {2, "EIGRP"}, {3, "Static"}, {4, "RIP"}, {5, "Hello"}, {6, "OSPF"}, {7, "IS-IS"}, {8, "EGP"}, {9, "BGP"},
    {10, "IDRP"}, {11, "Connected"}});
constexpr auto kFamilyNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}, {16384, "EIGRP Service Family"}});
constexpr auto kDigestNames = SortedNames({{1, "Text"}, {2, "MD5"}, {3, "SHA-256"}});

constexpr auto kHead = Rows<Eigrp>({Number(1, "Version"), Number(1, "Opcode", kOpcodeNames).Into(&Eigrp::opcode)});
constexpr auto kNumbers = Rows<Eigrp>({
    Flags(4, "Flags", kFlagMasks), Number(4, "Sequence Number"),
    Number(4, "Acknowledgement Number").Into(&Eigrp::acknowledgement), Number(2, "Virtual Router ID"),
    Number(2, "Autonomous System").Note(", AS %u")});
constexpr auto kParameters = Rows<Eigrp>({
    Number(1, "K1"), Number(1, "K2"), Number(1, "K3"), Number(1, "K4"), Number(1, "K5"), Number(1, "K6"),
    Number(2, "Hold Time", " seconds").Note(", Hold Time %u")});
constexpr auto kAuthentication = Rows<Eigrp>({
    Number(2, "Authentication Type", kDigestNames).Note(", %s"), Number(2, "Authentication Length").Into(&Eigrp::size),
    Number(4, "Key ID"), Number(4, "Key Sequence"), Bytes(8, "Padding"), Bytes(0, "Digest")});
constexpr auto kVersion = Rows<Eigrp>({
    Hex(2, "IOS Release Version"), Bits(0, 8, "IOS Major"), Bits(8, 8, "IOS Minor"), Hex(2, "EIGRP Release Version"),
    Bits(0, 8, "EIGRP Major"), Bits(8, 8, "EIGRP Minor")});
constexpr auto kMulticast = Rows<Eigrp>({Number(4, "Next Multicast Sequence").Note(", %u")});
constexpr auto kStub = Rows<Eigrp>({Flags(2, "Stub Flags", kStubMasks)});
constexpr auto kMetric = Rows<Eigrp>({
    Number(4, "Scaled Delay"), Number(4, "Scaled Bandwidth"), Number(3, "MTU"), Number(1, "Hop Count"), Number(1, "Reliability"),
    Number(1, "Load"), Number(1, "Internal Tag"), Flags(1, "Route Flags", kRouteMasks)});
constexpr auto kExternal = Rows<Eigrp>({
    IPv4("Originating Router"), Number(4, "Originating AS"), Number(4, "Administrative Tag"), Number(4, "External Metric"),
    Hex(2, "Reserved"), Number(1, "External Protocol", kProtocolNames), Flags(1, "External Flags", kExternalMasks)});
constexpr auto kNextHop4 = Rows<Eigrp>({IPv4("Next Hop")});
constexpr auto kNextHop6 = Rows<Eigrp>({IPv6("Next Hop IPv6")});
constexpr auto kRouter = Rows<Eigrp>({
    Number(2, "Topology ID"), Number(2, "Address Family", kFamilyNames).Into(&Eigrp::family), IPv4("Router ID")});
constexpr auto kWide = Rows<Eigrp>({
    Number(1, "Extended Attribute Offset").Into(&Eigrp::size), Number(1, "Priority"), Number(1, "Reliability"), Number(1, "Load"),
    Number(3, "MTU"), Number(1, "Hop Count"), Number(6, "Delay", " picoseconds"), Number(6, "Bandwidth", " kilobits/s"),
    Hex(2, "Reserved"), Flags(2, "Opaque Flags", kRouteMasks)});

void ShowSequence(const Place& in, Cursor& c, Eigrp&) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field length = TakeU8(c);
    AddLine(in, length, "Address Length: %u", length.value);
    Cursor part = TakeCursor(c, length.value);
    const Field address = Rest(part);
    if (address.length == 4) AddLine(in, address, "IP Address: %s", IPv4Text(address.bytes));
    else if (address.length == 16) AddLine(in, address, "IPv6 Address: %s", IPv6Text(address.bytes));
    else AddLine(in, address, "Address: %s", HexText(address));
  }
}

// A length in bits and as many octets as hold it, one at least; of version 6 one more below all of them.
void ShowDestinations(const Place& in, Cursor& c, bool isSix) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t bits = PeekU8(c), most = isSix ? 128 : 32;
    const uint32_t size = isSix ? (bits >= most ? 16 : bits / 8 + 1) : bits >= most ? 4 : bits ? (bits + 7) / 8 : 1;
    uint8_t address[16] = {};
    const Field found = PeekBytes(c, 1, static_cast<int32_t>(size));
    for (int32_t i = 0; i < found.length && i < 16; ++i) address[i] = static_cast<uint8_t>(PeekU8(found, i));
    Cursor part = TakeCursor(c, 1 + static_cast<int32_t>(size));
    const Field whole = Ahead(part, Left(part));
    const Place under = Under(in, isSix ? AddLine(in, whole, "Destination: %s/%u", IPv6Text(address), bits)
                                        : AddLine(in, whole, "Destination: %s/%u", IPv4Text(address), bits));
    if (isSix) AppendToParent(in, found, ", %s/%u", IPv6Text(address), bits);
    else AppendToParent(in, found, ", %s/%u", IPv4Text(address), bits);
    const Field length = TakeU8(part), value = Rest(part);
    AddLine(under, length, "Prefix Length: %u", bits);
    if (isSix) AddLine(under, value, "Prefix: %s", IPv6Text(address));
    else AddLine(under, value, "Prefix: %s", IPv4Text(address));
  }
}

void ShowRoute(const Place& in, Cursor& c, Eigrp& eigrp, bool isSix, bool isExternal) {
  ShowRows<Eigrp>(in, c, isSix ? RowSpan<Eigrp>(kNextHop6) : RowSpan<Eigrp>(kNextHop4), eigrp);
  if (isExternal) ShowRows<Eigrp>(in, c, kExternal, eigrp);
  ShowRows<Eigrp>(in, c, kMetric, eigrp);
  ShowDestinations(in, c, isSix);
}
void ShowInternal4(const Place& in, Cursor& c, Eigrp& eigrp) { ShowRoute(in, c, eigrp, false, false); }
void ShowExternal4(const Place& in, Cursor& c, Eigrp& eigrp) { ShowRoute(in, c, eigrp, false, true); }
void ShowInternal6(const Place& in, Cursor& c, Eigrp& eigrp) { ShowRoute(in, c, eigrp, true, false); }
void ShowExternal6(const Place& in, Cursor& c, Eigrp& eigrp) { ShowRoute(in, c, eigrp, true, true); }

// --- communities, and the families that are older than the standard: AppleTalk by cable ranges, IPX by networks ---

constexpr auto kCommunityHead = Rows<Eigrp>({
    Hex(2, "Reserved"), Number(2, "Community Length").Into(&Eigrp::size)});
constexpr auto kDestination4 = Rows<Eigrp>({IPv4("Destination").Note(", %s")});
constexpr auto kDestination6 = Rows<Eigrp>({IPv6("Destination").Note(", %s")});
void ShowCommunityList(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "bgp");
  Bgp bgp{};
  ShowBgpExtendedCommunities(in, c, bgp);
}
void ShowCommunities(const Place& in, Cursor& c, Eigrp& eigrp) {
  ShowRows<Eigrp>(in, c, kCommunityHead, eigrp);
  Cursor list = TakeCursor(c, eigrp.size.value);
  ShowCommunityList(in, list);
}

constexpr auto kTopologies = Rows<Eigrp>({
    Hex(2, "Topology List Flags"), Number(2, "Topology List Size")});
constexpr auto kTopology = Rows<Eigrp>({Number(2, "Topology ID").Note(", %u")});
void ShowTopologies(const Place& in, Cursor& c, Eigrp& eigrp) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Eigrp>(in, c, kTopology, eigrp);
}

constexpr auto kOldExternal = Rows<Eigrp>({
    Number(4, "Originating AS"), Number(4, "Administrative Tag"), Number(1, "External Protocol", kProtocolNames),
    Flags(1, "External Flags", kExternalMasks)});
constexpr auto kHopTalk = Rows<Eigrp>({Hex(4, "Next Hop Address")});
constexpr auto kOriginTalk = Rows<Eigrp>({Hex(4, "Originating Router")});
constexpr auto kMetricTalk = Rows<Eigrp>({Number(2, "External Metric")});
constexpr auto kCable = Rows<Eigrp>({Number(2, "Cable Range Start").Note(", %u"), Number(2, "Cable Range End").Note(" to %u")});
constexpr auto kCableRouter = Rows<Eigrp>({Hex(4, "AppleTalk Router ID")});
constexpr auto kHopIpx = Rows<Eigrp>({Hex(4, "Next Hop Network"), Mac("Next Hop Node")});
constexpr auto kOriginIpx = Rows<Eigrp>({Mac("Originating Router Node")});
constexpr auto kMetricIpx = Rows<Eigrp>({Number(2, "External Delay"), Number(2, "External Metric")});
constexpr auto kNetworkIpx = Rows<Eigrp>({Hex(4, "Destination Network").Note(", 0x%08X")});
void ShowTalk(const Place& in, Cursor& c, Eigrp& eigrp, bool isExternal) {
  ShowRows<Eigrp>(in, c, kHopTalk, eigrp);
  if (isExternal) {
    ShowRows<Eigrp>(in, c, kOriginTalk, eigrp);
    ShowRows<Eigrp>(in, c, kOldExternal, eigrp);
    ShowRows<Eigrp>(in, c, kMetricTalk, eigrp);
  }
  ShowRows<Eigrp>(in, c, kMetric, eigrp);
  ShowRows<Eigrp>(in, c, kCable, eigrp);
}
void ShowIpx(const Place& in, Cursor& c, Eigrp& eigrp, bool isExternal) {
  ShowRows<Eigrp>(in, c, kHopIpx, eigrp);
  if (isExternal) {
    ShowRows<Eigrp>(in, c, kOriginIpx, eigrp);
    ShowRows<Eigrp>(in, c, kOldExternal, eigrp);
    ShowRows<Eigrp>(in, c, kMetricIpx, eigrp);
  }
  ShowRows<Eigrp>(in, c, kMetric, eigrp);
  ShowRows<Eigrp>(in, c, kNetworkIpx, eigrp);
}
void ShowCableRouter(const Place& in, Cursor& c, Eigrp& eigrp) { ShowRows<Eigrp>(in, c, kCableRouter, eigrp); }
void ShowTalkInternal(const Place& in, Cursor& c, Eigrp& eigrp) { ShowTalk(in, c, eigrp, false); }
void ShowTalkExternal(const Place& in, Cursor& c, Eigrp& eigrp) { ShowTalk(in, c, eigrp, true); }
void ShowIpxInternal(const Place& in, Cursor& c, Eigrp& eigrp) { ShowIpx(in, c, eigrp, false); }
void ShowIpxExternal(const Place& in, Cursor& c, Eigrp& eigrp) { ShowIpx(in, c, eigrp, true); }

// Attributes of wide metrics: an opcode, and how many words of two octets it has.
constexpr auto kAttributeNames = SortedNames({
    {0, "No Operation"}, {1, "Scaled Metric"}, {2, "Administrative Tag"}, {3, "Community List"}, {4, "Jitter"},
    {5, "Quiescent Energy"}, {6, "Energy"}, {7, "Additional Paths"}});
constexpr auto kAttributeHead = Rows<Eigrp>({
    Number(1, "Opcode", kAttributeNames), Number(1, "Offset", " words").Into(&Eigrp::flags)});
constexpr auto kTag = Rows<Eigrp>({Number(4, "Administrative Tag").Note(", %u")});
constexpr auto kAttributeBytes = Rows<Eigrp>({Bytes(0, "Attribute Value")});
void ShowAttributes(const Place& at, Cursor& c, Eigrp& eigrp) {
  constexpr uint32_t kTagCode = 2, kCommunityCode = 3;
  Loop loop;
  while (Left(c) >= 2 && MoreAt(at, c, loop)) {
    const uint32_t code = PeekU8(c);
    Cursor one = TakeCursor(c, code ? 2 + 2 * static_cast<int32_t>(PeekU8(c, 1)) : 2);
    const Place in = Under(at, AddLine(at, Ahead(one, Left(one)), "Extended Attribute: %s", LookupName(kAttributeNames, code)));
    ShowRows<Eigrp>(in, one, kAttributeHead, eigrp);
    if (code == kTagCode) ShowRows<Eigrp>(in, one, kTag, eigrp);
    if (code == kCommunityCode && Left(one)) ShowCommunityList(in, one);
    if (Left(one)) ShowRows<Eigrp>(in, one, kAttributeBytes, eigrp);
  }
  c.ranShort = false;
  const Field rest = Rest(c);
  if (rest.length) AddLine(at, rest, "Extended Attributes: %s", HexText(rest));
}

// Of any family, with metrics of 48 bits; the offset counts words of attributes behind them.
void ShowWide(const Place& in, Cursor& c, Eigrp& eigrp, bool isExternal) {
  constexpr uint32_t kIpv6Family = 2;
  ShowRows<Eigrp>(in, c, kRouter, eigrp);
  ShowRows<Eigrp>(in, c, kWide, eigrp);
  if (eigrp.size.value) {
    Cursor attributes = TakeCursor(c, static_cast<int64_t>(eigrp.size.value) * 2);
    ShowAttributes(in, attributes, eigrp);
  }
  const bool isSix = eigrp.family.value == kIpv6Family;
  if (isExternal) ShowRows<Eigrp>(in, c, kExternal, eigrp);
  ShowRows<Eigrp>(in, c, isSix ? RowSpan<Eigrp>(kNextHop6) : RowSpan<Eigrp>(kNextHop4), eigrp);
  ShowDestinations(in, c, isSix);
}
void ShowWideInternal(const Place& in, Cursor& c, Eigrp& eigrp) { ShowWide(in, c, eigrp, false); }
void ShowWideExternal(const Place& in, Cursor& c, Eigrp& eigrp) { ShowWide(in, c, eigrp, true); }

constexpr auto kElements = Choices<Eigrp>({
    {0x0001, "Parameters", kParameters}, {0x0002, "Authentication", kAuthentication}, {0x0003, "Sequence", {}, ShowSequence},
    {0x0004, "Software Version", kVersion}, {0x0005, "Next Multicast Sequence", kMulticast},
    {0x0006, "Peer Stub Information", kStub}, {0x0007, "Peer Termination List", {}, ShowSequence},
    {0x0008, "Peer Topology ID List", kTopologies, ShowTopologies}, {0x0102, "IPv4 Internal Route", {}, ShowInternal4},
    {0x0103, "IPv4 External Route", {}, ShowExternal4}, {0x0104, "IPv4 Community", kDestination4, ShowCommunities},
    {0x0202, "AppleTalk Internal Route", {}, ShowTalkInternal}, {0x0203, "AppleTalk External Route", {}, ShowTalkExternal},
    {0x0204, "AppleTalk Cable Configuration", kCable, ShowCableRouter}, {0x0302, "IPX Internal Route", {}, ShowIpxInternal},
    {0x0303, "IPX External Route", {}, ShowIpxExternal}, {0x0402, "IPv6 Internal Route", {}, ShowInternal6},
    {0x0403, "IPv6 External Route", {}, ShowExternal6}, {0x0404, "IPv6 Community", kDestination6, ShowCommunities},
    {0x0602, "Multiprotocol Internal Route", {}, ShowWideInternal},
    {0x0603, "Multiprotocol External Route", {}, ShowWideExternal}, {0x0604, "Multiprotocol Community"}});

}  // namespace

int32_t DecodeEigrp(const Place& at, Cursor c) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .lengthCountsHeader = true, .valueLines = true};
  constexpr int32_t kHeadSize = 20;
  constexpr uint32_t kHello = 5;
  if (Left(c) < kHeadSize) return 0;
  const Field message = Ahead(c, Left(c));
  const uint32_t opcode = PeekU8(c, 1);
  const char* name = opcode == kHello && PeekU32(c, 12) ? "Acknowledgement" : LookupName(kOpcodeNames, opcode);
  const Place in = Under(at, AddLine(at, message, "EIGRP %s", name));
  Eigrp eigrp = ShowRows(in, c, kHead);
  const NetworkState& network = PacketOf(at).network;
  const bool isPartial = !message.bytes || network.fragmented || network.totalLength > message.length;
  AddChecksumLine(in, TakeU16(c), "Checksum:", isPartial ? "Not Checked - Partial Capture" : nullptr,
                  isPartial ? 0 : SumWords(0, message.bytes, message.length), BadChecksum::kAlone);
  ShowRows<Eigrp>(in, c, kNumbers, eigrp);
  ShowElements(in, c, kForm, "TLV", kElements, eigrp);
  c.ranShort = false;
  AddBlock(in, Rest(c), "EIGRP Data");
  return 1;
}

}  // namespace qxview
