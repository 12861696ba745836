// Protocol Independent Multicast, version 2: sparse mode (RFC 7761), dense mode (RFC 3973), bidirectional (RFC 5015), bootstrap
// (RFC 5059), flooding of sources (RFC 8364): which routers want the packets of which multicast groups?
//
//   version (4 bits) and type (4)   flags or a subtype   checksum (2)   then what the type says
#include "decoders/net/pim.h"

#include "core/internet_checksum.h"
#include "decoders/link/carried.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/ipv6_checksum.h"

namespace qxview {
namespace {

enum PimType : uint32_t {
  kHello = 0, kRegister = 1, kRegisterStop = 2, kJoinPrune = 3, kBootstrap = 4, kAssert = 5, kGraft = 6, kGraftAck = 7,
  kCandidate = 8, kStateRefresh = 9, kElection = 10, kRedirect = 11, kFlooding = 12,
};

constexpr auto kTypeNames = SortedNames({
    {0, "Hello"}, {1, "Register"}, {2, "Register-Stop"}, {3, "Join/Prune"}, {4, "Bootstrap"}, {5, "Assert"}, {6, "Graft"},
    {7, "Graft-Ack"}, {8, "Candidate-RP-Advertisement"}, {9, "State Refresh"}, {10, "DF Election"}, {11, "ECMP Redirect"},
    {12, "PIM Flooding Mechanism"}, {13, "Type Space Extension"}, {14, "Type Space Extension"}, {15, "Type Space Extension"}});
constexpr auto kElectionNames = SortedNames({{1, "Offer"}, {2, "Winner"}, {3, "Backoff"}, {4, "Pass"}});

constexpr auto kHead = Rows<Pim>({Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Type", kTypeNames).Into(&Pim::type)});
constexpr auto kReserved = Rows<Pim>({Hex(1, "Reserved")});
constexpr auto kBootstrapFlags = Rows<Pim>({Hex(1, "Flags"), Flag(0, "No Forward"), Bits(1, 7, "Reserved")});
constexpr auto kSubtype = Rows<Pim>({
    Word(1), Bits(0, 4, "Subtype", kElectionNames).Note(", %s").Into(&Pim::kind), Bits(4, 4, "Reserved")});

// --- hello ---

constexpr auto kSeconds = Rows<Pim>({Number(2, nullptr, " seconds").Note(", %u seconds")});
constexpr auto kPruneDelay = Rows<Pim>({
    Word(2), Flag(0, "Tracking Support"), Bits(1, 15, "Propagation Delay", " milliseconds"),
    Number(2, "Override Interval", " milliseconds")});
constexpr auto kNumber4 = Rows<Pim>({Number(4, nullptr).Note(", %u")});
constexpr auto kNumber2 = Rows<Pim>({Number(2, nullptr).Note(", %u")});
constexpr auto kRefresh = Rows<Pim>({
    Number(1, "Version"), Number(1, "Interval", " seconds"), Hex(2, "Reserved")});
constexpr auto kInterfaceId = Rows<Pim>({IPv4("Router Identifier"), Number(4, "Local Interface ID")});
constexpr auto kSharing = Rows<Pim>({Bytes(3, "Reserved"), Number(1, "Hash Algorithm")});

void ShowAddressList(const Place& in, Cursor& c, Pim&) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowPimUnicast(in, c, "Secondary Address");
}

// Who shares the load of a link (RFC 8775): masks that are hashed, and the candidates, of the addresses' family.
void ShowSharers(const Place& in, Cursor& c, Pim&) {
  constexpr int32_t kMasks = 3;
  constexpr const char* kLabels[] = {"Group Hash Mask", "Source Hash Mask", "RP Hash Mask"};
  // keys: address Group Hash Mask, Source Hash Mask, RP Hash Mask, GDR Candidate
  const bool isSix = PacketOf(in).source.kind == kIPv6Kind;
  const int32_t size = isSix ? 16 : 4;
  Loop loop;
  for (int32_t i = 0; Left(c) >= size && MoreAt(in, c, loop); ++i) {
    const Field address = TakeBytes(c, size);
    const char* label = i < kMasks ? kLabels[i] : "GDR Candidate";
    if (isSix) AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
    else AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
  }
}

constexpr auto kOptions = Choices<Pim>({
    {1, "Hold Time", kSeconds}, {2, "LAN Prune Delay", kPruneDelay}, {17, "Announce"}, {18, "Deprecated"},
    {19, "DR Priority", kNumber4}, {20, "Generation ID", kNumber4}, {21, "State Refresh Capable", kRefresh},
    {22, "Bidirectional Capable"}, {24, "Address List", {}, ShowAddressList}, {26, "Join Attribute"},
    {30, "PIM MT-ID", kNumber2}, {31, "Interface ID", kInterfaceId}, {32, "ECMP Redirect"}, {33, "vPC Peer ID"},
    {34, "DR Load-Balancing Capability", kSharing}, {35, "DR Load-Balancing List", {}, ShowSharers}, {36, "Hierarchical Join/Prune Attribute"},
    {37, "Assert Packing"}, {65001, "Address List (Early)", {}, ShowAddressList}});

// --- the messages ---

constexpr auto kRegisterFlags = Rows<Pim>({
    Hex(4, "Register Flags"), Flag(0, "Border"), Flag(1, "Null-Register"), Bits(2, 30, "Reserved")});
constexpr auto kJoinHead = Rows<Pim>({
    Hex(1, "Reserved"), Number(1, "Number of Groups").Into(&Pim::groups), Number(2, "Hold Time", " seconds")});
constexpr auto kGroupHead = Rows<Pim>({
    Number(2, "Number of Joined Sources").Note(", %u joined").Into(&Pim::joins),
    Number(2, "Number of Pruned Sources").Note(", %u pruned").Into(&Pim::prunes)});
constexpr auto kBootstrapHead = Rows<Pim>({
    Hex(2, "Fragment Tag"), Number(1, "Hash Mask Length"), Number(1, "BSR Priority").Note(", Priority %u")});
constexpr auto kPointCount = Rows<Pim>({
    Number(1, "RP Count"), Number(1, "Fragment RP Count").Into(&Pim::count), Hex(2, "Reserved")});
constexpr auto kPoint = Rows<Pim>({Number(2, "RP Hold Time", " seconds"), Number(1, "RP Priority"), Hex(1, "Reserved")});
constexpr auto kMetric = Rows<Pim>({
    Hex(4, "Preference Word"), Flag(0, "RP Tree"), Bits(1, 31, "Metric Preference"), Number(4, "Metric").Note(", Metric %u")});
constexpr auto kCandidateHead = Rows<Pim>({
    Number(1, "Prefix Count").Into(&Pim::groups), Number(1, "Priority"), Number(2, "Hold Time", " seconds")});
constexpr auto kRefreshTail = Rows<Pim>({
    Number(1, "Mask Length"), Number(1, "TTL"), Hex(1, "Flags"), Flag(0, "Prune Indicator"), Flag(1, "Prune Now"),
    Flag(2, "Assert Override"), Bits(3, 5, "Reserved"), Number(1, "Interval", " seconds")});
constexpr auto kSenderMetric = Rows<Pim>({
    Number(4, "Sender Metric Preference"), Number(4, "Sender Metric")});
constexpr auto kOfferMetric = Rows<Pim>({
    Number(4, "Offering Metric Preference"), Number(4, "Offering Metric"), Number(2, "Interval", " milliseconds")});
constexpr auto kWinnerMetric = Rows<Pim>({Number(4, "New Winner Metric Preference"), Number(4, "New Winner Metric")});
constexpr auto kHoldList = Rows<Pim>({Number(2, "Source Count").Into(&Pim::count), Number(2, "Source Hold Time", " seconds")});

void ShowJoins(const Place& in, Cursor& c, Pim& pim) {
  ShowPimUnicast(in, c, "Upstream Neighbor");
  ShowRows<Pim>(in, c, kJoinHead, pim);
  const uint32_t groups = pim.groups.value;
  Loop loop;
  for (uint32_t i = 0; i < groups && Left(c) >= 8 && MoreAt(in, c, loop); ++i) {
    const Cursor start = c;
    const LineHandle line = AddLine(in, Ahead(c, 8), "Group %u", i + 1);
    const Place under = Under(in, line);
    ShowPimGroup(under, c, "Group");
    ShowRows<Pim>(under, c, kGroupHead, pim);
    const uint32_t joins = pim.joins.value, all = joins + pim.prunes.value;
    Loop sources;
    for (uint32_t j = 0; j < all && Left(c) >= 4 && MoreAt(in, c, sources); ++j) {
      ShowPimSource(under, c, j < joins ? "Joined Source" : "Pruned Source");
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

void ShowBootstrap(const Place& in, Cursor& c, Pim& pim) {
  ShowRows<Pim>(in, c, kBootstrapHead, pim);
  ShowPimUnicast(in, c, "BSR Address");
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) {
    const Cursor start = c;
    const LineHandle line = AddLine(in, Ahead(c, 8), "Group Set");
    const Place under = Under(in, line);
    ShowPimGroup(under, c, "Group");
    ShowRows<Pim>(under, c, kPointCount, pim);
    const uint32_t count = pim.count.value;
    Loop points;
    for (uint32_t i = 0; i < count && Left(c) >= 6 && MoreAt(in, c, points); ++i) {
      ShowPimUnicast(under, c, "RP Address");
      ShowRows<Pim>(under, c, kPoint, pim);
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

// The datagram that a source sent, with an outer header of PIM; of a null register its header alone.
void ShowRegister(const Place& at, const Place& in, Cursor& c, Pim& pim) {
  constexpr uint16_t kIPv4Type = 0x0800, kIPv6Type = 0x86DD;
  ShowRows<Pim>(in, c, kRegisterFlags, pim);
  const uint32_t version = PeekU8(c) >> 4;
  if (!Left(c) || (version != 4 && version != 6)) return;
  DecodeCarriedPacket(Deeper(at), c, version == 4 ? kIPv4Type : kIPv6Type, "Registered Packet");
  Rest(c);
}

void ShowElection(const Place& in, Cursor& c, Pim& pim) {
  enum : uint32_t { kBackoff = 3, kPass = 4 };
  ShowPimUnicast(in, c, "RP Address");
  ShowRows<Pim>(in, c, kSenderMetric, pim);
  if (pim.kind.value == kBackoff) {
    ShowPimUnicast(in, c, "Offering Address");
    ShowRows<Pim>(in, c, kOfferMetric, pim);
  } else if (pim.kind.value == kPass) {
    ShowPimUnicast(in, c, "New Winner Address");
    ShowRows<Pim>(in, c, kWinnerMetric, pim);
  }
}

void ShowSourceHold(const Place& in, Cursor& c, Pim& pim) {
  ShowPimGroup(in, c, "Group");
  ShowRows<Pim>(in, c, kHoldList, pim);
  const uint32_t count = pim.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= 2 && MoreAt(in, c, loop); ++i) ShowPimUnicast(in, c, "Source");
}
constexpr ElementForm kFloodingForm{.typeSize = 2, .lengthSize = 2, .valueLines = true, .typeMask = 0x7FFF};
constexpr auto kFloodingElements = Choices<Pim>({{1, "Group Source Holdtime", {}, ShowSourceHold}});

void ShowBody(const Place& at, const Place& in, Cursor& c, Pim& pim) {
  constexpr ElementForm kOptionForm{.typeSize = 2, .lengthSize = 2, .valueLines = true};
  switch (pim.type.value) {
    case kHello: ShowElements(in, c, kOptionForm, "Option", kOptions, pim); break;
    case kRegister: ShowRegister(at, in, c, pim); break;
    case kRegisterStop:
      ShowPimGroup(in, c, "Group");
      ShowPimUnicast(in, c, "Source");
      break;
    case kJoinPrune: case kGraft: case kGraftAck: ShowJoins(in, c, pim); break;
    case kBootstrap: ShowBootstrap(in, c, pim); break;
    case kAssert:
      ShowPimGroup(in, c, "Group");
      ShowPimUnicast(in, c, "Source");
      ShowRows<Pim>(in, c, kMetric, pim);
      break;
    case kCandidate: {
      ShowRows<Pim>(in, c, kCandidateHead, pim);
      ShowPimUnicast(in, c, "RP Address");
      Loop loop;
      while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowPimGroup(in, c, "Group");
      break;
    }
    case kStateRefresh:
      ShowPimGroup(in, c, "Group");
      ShowPimUnicast(in, c, "Source");
      ShowPimUnicast(in, c, "Originator");
      ShowRows<Pim>(in, c, kMetric, pim);
      ShowRows<Pim>(in, c, kRefreshTail, pim);
      break;
    case kElection: ShowElection(in, c, pim); break;
    case kRedirect:
      ShowPimGroup(in, c, "Group");
      ShowPimUnicast(in, c, "Source");
      ShowPimUnicast(in, c, "Neighbor");
      ShowRows<Pim>(in, c, kMetric, pim);
      break;
    case kFlooding:
      ShowPimUnicast(in, c, "Originator");
      ShowElements(in, c, kFloodingForm, "TLV", kFloodingElements, pim);
      break;
    default: break;
  }
}

// Of a register the first eight octets are summed, and by some senders all; over IPv6 the pseudo-header, too.
void AddChecksum(const Place& in, const Field& checksum, const Field& message, uint32_t type) {
  constexpr uint8_t kPimProtocol = 103;
  constexpr int32_t kRegisterHead = 8;
  const PacketState& state = PacketOf(in);
  const bool isPartial = !message.bytes || state.network.fragmented || state.network.totalLength > message.length;
  const bool isSix = state.source.kind == kIPv6Kind;
  const auto sumOf = [&](int32_t length) {
    const uint32_t head = isSix ? IPv6PseudoHeadOf(state.source.address, state.destination.address, kPimProtocol,
                                                   static_cast<uint32_t>(length)) : 0;
    return SumWords(head, message.bytes, length);
  };
  uint32_t sum = isPartial ? 0 : sumOf(message.length);
  if (!isPartial && type == kRegister && sum != 0xFFFF && message.length >= kRegisterHead) sum = sumOf(kRegisterHead);
  AddChecksumLine(in, checksum, "Checksum:", isPartial ? "Not Checked - Partial Capture" : nullptr, sum, BadChecksum::kAlone);
}

}  // namespace

int32_t DecodePim(const Place& at, Cursor c) {
  if (Left(c) < 4 || PeekU8(c) >> 4 != 2) return 0;
  const Field message = Ahead(c, Left(c));
  const uint32_t type = PeekU8(c) & 15;
  const LineHandle line = AddLine(at, type == kRegister && Left(c) >= 8 ? Ahead(c, 8) : message, "PIMv2 %s", LookupName(kTypeNames, type));
  const Place in = Under(at, line);
  if (type != kRegister && !Displaying(in) && NobodyWants(in)) return 1;   // the datagram in a register is for its own decoders
  Pim pim = ShowRows(in, c, kHead);
  ShowRows<Pim>(in, c, type == kElection   ? RowSpan<Pim>(kSubtype)
                       : type == kBootstrap ? RowSpan<Pim>(kBootstrapFlags)
                                            : RowSpan<Pim>(kReserved), pim);
  AddChecksum(in, TakeU16(c), message, type);
  ShowBody(at, in, c, pim);
  c.ranShort = false;
  AddBlock(in, Rest(c), "PIM Data");
  return 1;
}

}  // namespace qxview
