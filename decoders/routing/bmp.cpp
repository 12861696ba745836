// BGP Monitoring Protocol (RFC 7854; routes that go out: RFC 8671, routes in use: RFC 9069): a router shows a station what its
// neighbours tell it.
//
//   version (1)   length with all (4)   type (1)   [the neighbour: type, flags, distinguisher, address, number, time]   body
//
// Sessions of its neighbours are learnt from the OPEN messages that it shows.
#include <cstring>

#include "core/elements.h"
#include "decoders/message_lengths.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/bgp_names.h"
#include "decoders/routing/prefix.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 6;
enum : uint32_t { kMonitoring = 0, kStatistics = 1, kPeerDown = 2, kPeerUp = 3, kInitiation = 4, kTermination = 5, kMirroring = 6 };

constexpr auto kTypeNames = SortedNames({
    {0, "Route Monitoring"}, {1, "Statistics Report"}, {2, "Peer Down Notification"}, {3, "Peer Up Notification"},
    {4, "Initiation"}, {5, "Termination"}, {6, "Route Mirroring"}});
constexpr auto kPeerNames = SortedNames({
    {0, "Global Instance Peer"}, {1, "RD Instance Peer"}, {2, "Local Instance Peer"}, {3, "Loc-RIB Instance Peer"}});
constexpr auto kDownNames = SortedNames({
    {1, "Local System Closed, Notification Follows"}, {2, "Local System Closed, No Notification"},
    {3, "Remote System Closed, Notification Follows"}, {4, "Remote System Closed, No Notification"},
    {5, "Peer Is No Longer Monitored"}, {6, "Local System Closed, TLV Data Follows"}});
constexpr auto kTerminationNames = SortedNames({
    {0, "Administratively Closed"}, {1, "Unspecified"}, {2, "Out of Resources"}, {3, "Redundant Connection"},
    {4, "Permanently Administratively Closed"}});
constexpr auto kMirrorNames = SortedNames({{0, "Errored PDU"}, {1, "Messages Lost"}});

struct Bmp {
  Field type, peer, flags, count, reason;
  Field distinguisher, address;
};

constexpr auto kHead = Rows<Bmp>({
    Number(1, "Version"), Number(4, "Length"), Number(1, "Message Type", kTypeNames).Into(&Bmp::type)});
constexpr auto kPeerType = Rows<Bmp>({Number(1, "Peer Type", kPeerNames).Note(", %s").Into(&Bmp::peer)});
constexpr auto kPeerFlags = Rows<Bmp>({
    Hex(1, "Peer Flags").Into(&Bmp::flags), Flag(0, "IPv6"), Flag(1, "Post-Policy"), Flag(2, "2-Octet AS_PATH"),
    Flag(3, "Adj-RIB-Out"), Bits(4, 4, "Reserved"), Bytes(8, "Peer Distinguisher").Into(&Bmp::distinguisher)});
constexpr auto kLocalFlags = Rows<Bmp>({
    Hex(1, "Peer Flags").Into(&Bmp::flags), Flag(0, "Filtered"), Bits(1, 7, "Reserved"),
    Bytes(8, "Peer Distinguisher").Into(&Bmp::distinguisher)});
constexpr auto kPeerAddress4 = Rows<Bmp>({
    Bytes(12, "Unused"), IPv4("Peer Address").Note(", %s").Into(&Bmp::address)});
constexpr auto kPeerAddress6 = Rows<Bmp>({IPv6("Peer Address").Note(", %s").Into(&Bmp::address)});
constexpr auto kPeerTail = Rows<Bmp>({
    Number(4, "Peer AS").Note(", AS %u"), IPv4("Peer BGP ID"), UnixTime(4, "Timestamp"),
    Number(4, "Timestamp Fraction", " microseconds")});
constexpr auto kLocalAddress4 = Rows<Bmp>({Bytes(12, "Unused"), IPv4("Local Address").Note(", %s")});
constexpr auto kLocalAddress6 = Rows<Bmp>({IPv6("Local Address").Note(", %s")});
constexpr auto kPorts = Rows<Bmp>({Number(2, "Local Port"), Number(2, "Remote Port")});
constexpr auto kStatisticsHead = Rows<Bmp>({Number(4, "Statistics Count")});
constexpr auto kDown = Rows<Bmp>({Number(1, "Reason", kDownNames).Note(", %s").Into(&Bmp::reason)});
constexpr auto kEvent = Rows<Bmp>({Number(2, "FSM Event Code").Note(", Event %u")});

constexpr auto kText = Rows<Bmp>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kCounter = Rows<Bmp>({Number(4, "Count").Note(", %u")});
constexpr auto kGauge = Rows<Bmp>({Number(8, "Count").Note(", %I64u")});
constexpr auto kFamilyGauge = Rows<Bmp>({
    Number(2, "Address Family", AddressFamilyName).Note(", %s"), Number(1, "Subsequent Address Family", kBgpSafiNames).Note(" %s"),
    Number(8, "Count").Note(", %I64u")});
constexpr auto kClosing = Rows<Bmp>({Number(2, "Termination Reason", kTerminationNames).Note(", %s")});
constexpr auto kMirror = Rows<Bmp>({Number(2, "Mirroring Information", kMirrorNames).Note(", %s")});

constexpr auto kInformation = Choices<Bmp>({
    {0, "String", kText}, {1, "System Description", kText}, {2, "System Name", kText}, {3, "VRF/Table Name", kText},
    {4, "Admin Label", kText}});
constexpr auto kTerminations = Choices<Bmp>({{0, "String", kText}, {1, "Reason", kClosing}});
constexpr auto kStatisticsTypes = Choices<Bmp>({
    {0, "Prefixes Rejected by Inbound Policy", kCounter}, {1, "Duplicate Prefix Advertisements", kCounter},
    {2, "Duplicate Withdraws", kCounter}, {3, "Updates Invalidated by CLUSTER_LIST Loop", kCounter},
    {4, "Updates Invalidated by AS_PATH Loop", kCounter}, {5, "Updates Invalidated by ORIGINATOR_ID", kCounter},
    {6, "Updates Invalidated by AS_CONFED Loop", kCounter}, {7, "Routes in Adj-RIBs-In", kGauge},
    {8, "Routes in Loc-RIB", kGauge}, {9, "Routes in Adj-RIB-In of a Family", kFamilyGauge},
    {10, "Routes in Loc-RIB of a Family", kFamilyGauge}, {11, "Updates Treated as Withdraw", kCounter},
    {12, "Prefixes Treated as Withdraw", kCounter}, {13, "Duplicate Update Messages", kCounter},
    {14, "Routes in Pre-Policy Adj-RIBs-Out", kGauge}, {15, "Routes in Post-Policy Adj-RIBs-Out", kGauge},
    {16, "Routes in Pre-Policy Adj-RIB-Out of a Family", kFamilyGauge},
    {17, "Routes in Post-Policy Adj-RIB-Out of a Family", kFamilyGauge}});

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .valueLines = true};

// The neighbour's session as the router has it: the router is the first end.
ConnectionKey SessionOf(const PacketState& packet, const Bmp& bmp) {
  ConnectionKey key{};
  std::memcpy(key.addresses[0], packet.source.address, sizeof key.addresses[0]);
  for (int32_t i = 0; i < bmp.address.length; ++i) key.addresses[1][i] = static_cast<uint8_t>(PeekU8(bmp.address, i));
  key.ports[0] = static_cast<uint16_t>(PeekU32(bmp.distinguisher, 4));
  key.ports[1] = static_cast<uint16_t>(bmp.peer.value);
  key.kinds[0] = static_cast<uint8_t>(packet.source.kind);
  key.kinds[1] = static_cast<uint8_t>(bmp.address.length);
  key.unused[0] = kMonitoring + 1;   // no connection has it
  return key;
}

// The router and the neighbour send in turn; without a flag numbers of systems are wide.
constexpr int32_t kRouter = 0, kNeighbour = 1;
void ShowMessages(const Place& in, Cursor& c, const Bmp& bmp) {
  constexpr uint32_t kNarrow = 0x20, kOut = 0x10, kLocalPeer = 3;
  const bool isLocal = bmp.peer.value == kLocalPeer;
  Bgp bgp{};
  if (const BgpSession* session = Recall(in.view, kBgpSessions, SessionOf(PacketOf(in), bmp))) bgp.session = *session;
  bgp.known = bgp.session.seen[0] && bgp.session.seen[1];
  bgp.session.wide[0] = bgp.session.wide[1] = isLocal || !(bmp.flags.value & kNarrow);
  bgp.isWidthTold = true;
  bgp.direction = bmp.flags.value & kOut && !isLocal ? kRouter : kNeighbour;
  ShowBgpMessages(in, c, bgp);
}

void ShowPeerUp(const Place& in, Cursor& c, Bmp& bmp) {
  const bool isFour = PeekU32(c) == 0 && PeekU32(c, 4) == 0 && PeekU32(c, 8) == 0;
  ShowRows<Bmp>(in, c, isFour ? RowSpan<Bmp>(kLocalAddress4) : RowSpan<Bmp>(kLocalAddress6), bmp);
  ShowRows<Bmp>(in, c, kPorts, bmp);
  Bgp bgp{};
  for (int32_t end = kRouter; end <= kNeighbour; ++end) {
    Cursor open = TakeCursor(c, LengthOfBgp(c) > 0 ? LengthOfBgp(c) : 0);
    bgp.direction = end;
    ShowBgpMessages(in, open, bgp);
  }
  if (!PacketOf(in).quoted) Remember(in.view, kBgpSessions, SessionOf(PacketOf(in), bmp), bgp.session);
  ShowElements<Bmp>(in, c, kForm, "TLV", kInformation, bmp);
}

void ShowPeerDown(const Place& in, Cursor& c, Bmp& bmp) {
  constexpr uint32_t kLocalNotice = 1, kLocalEvent = 2, kRemoteNotice = 3, kTlvs = 6;
  ShowRows<Bmp>(in, c, kDown, bmp);
  const uint32_t reason = bmp.reason.value;
  if (reason == kLocalNotice || reason == kRemoteNotice) ShowMessages(in, c, bmp);
  if (reason == kLocalEvent) ShowRows<Bmp>(in, c, kEvent, bmp);
  if (reason == kTlvs) ShowElements<Bmp>(in, c, kForm, "TLV", kInformation, bmp);
}

void ShowMirrored(const Place& in, Cursor& c, Bmp& bmp) { ShowMessages(in, c, bmp); }
constexpr auto kMirrored = Choices<Bmp>({{0, "BGP Message", {}, ShowMirrored}, {1, "Information", kMirror}});

void ShowPeer(const Place& at, Cursor& c, Bmp& bmp) {
  constexpr int32_t kPeerSize = 42;
  constexpr uint32_t kLocalPeer = 3, kIsSix = 0x80;
  Cursor peer = TakeCursor(c, kPeerSize);
  const Place in = Under(at, AddLine(at, Ahead(peer, Left(peer)), "Peer"));
  ShowRows<Bmp>(in, peer, kPeerType, bmp);
  const bool isLocal = bmp.peer.value == kLocalPeer;
  ShowRows<Bmp>(in, peer, isLocal ? RowSpan<Bmp>(kLocalFlags) : RowSpan<Bmp>(kPeerFlags), bmp);
  const bool isSix = !isLocal && bmp.flags.value & kIsSix;
  ShowRows<Bmp>(in, peer, isSix ? RowSpan<Bmp>(kPeerAddress6) : RowSpan<Bmp>(kPeerAddress4), bmp);
  ShowRows<Bmp>(in, peer, kPeerTail, bmp);
}

void ShowBody(const Place& in, Cursor& c, Bmp& bmp) {
  const uint32_t type = bmp.type.value;
  if (type != kInitiation && type != kTermination) ShowPeer(in, c, bmp);
  switch (type) {
    case kMonitoring: ShowMessages(in, c, bmp); break;
    case kStatistics:
      ShowRows<Bmp>(in, c, kStatisticsHead, bmp);
      ShowElements<Bmp>(in, c, kForm, "Statistic", kStatisticsTypes, bmp);
      break;
    case kPeerDown: ShowPeerDown(in, c, bmp); break;
    case kPeerUp: ShowPeerUp(in, c, bmp); break;
    case kInitiation: ShowElements<Bmp>(in, c, kForm, "TLV", kInformation, bmp); break;
    case kTermination: ShowElements<Bmp>(in, c, kForm, "TLV", kTerminations, bmp); break;
    case kMirroring: ShowElements<Bmp>(in, c, kForm, "TLV", kMirrored, bmp); break;
    default: break;
  }
}

}  // namespace

int32_t DecodeBmp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || LengthOfBmp(c) == kNoMessage) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && LengthOfBmp(c) != kNoMessage && MoreAt(at, c, loop)) {
    Cursor message = TakeCursor(c, LengthOfBmp(c));
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "BMP: %s", LookupName(kTypeNames, PeekU8(message, 5))));
    Bmp bmp = ShowRows(in, message, kHead);
    ShowBody(in, message, bmp);
    message.ranShort = false;   // what is left of a message that is cut
    AddBlock(in, Rest(message), "Message Data");
  }
  AddRawRest(at, c, "BMP Data");
  return 1;
}

}  // namespace qxview
