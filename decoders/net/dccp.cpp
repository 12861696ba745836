// Datagram Congestion Control Protocol (RFC 4340; congestion control 3: RFC 4342, faster restart and small packets: RFC 5622;
// service codes: RFC 5595; the simultaneous open of NAT traversal: RFC 5596).
//
//   source port (2) destination port (2) data offset (1, in words) CCVal/CsCov (1) checksum (2)
//   reserved, type, X (1) sequence number (3, or 7 with a reserved octet where X is set)
//   what the type adds | options up to the data offset | data
#include "core/elements.h"
#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/port_dispatch.h"

namespace qxview {
namespace {

constexpr int32_t kShortHeader = 12, kLongHeader = 16;
constexpr uint32_t kRequest = 0, kResponse = 1, kData = 2, kDataAck = 4, kReset = 7, kListen = 10;

constexpr auto kTypeNames = SortedNames({
    {0, "Request"}, {1, "Response"}, {2, "Data"}, {3, "Ack"}, {4, "DataAck"}, {5, "CloseReq"}, {6, "Close"},
    {7, "Reset"}, {8, "Sync"}, {9, "SyncAck"}, {10, "Listen"}});
constexpr auto kResetNames = SortedNames({
    {0, "Unspecified"}, {1, "Closed"}, {2, "Aborted"}, {3, "No Connection"}, {4, "Packet Error"}, {5, "Option Error"},
    {6, "Mandatory Error"}, {7, "Connection Refused"}, {8, "Bad Service Code"}, {9, "Too Busy"},
    {10, "Bad Init Cookie"}, {11, "Aggression Penalty"}});
constexpr auto kFeatureNames = SortedNames({
    {1, "Congestion Control ID"}, {2, "Allow Short Sequence Numbers"}, {3, "Sequence Window"}, {4, "ECN Incapable"},
    {5, "Ack Ratio"}, {6, "Send Ack Vector"}, {7, "Send NDP Count"}, {8, "Minimum Checksum Coverage"},
    {9, "Check Data Checksum"}, {192, "Send Loss Event Rate"}});
constexpr auto kDropNames = SortedNames({
    {0, "Protocol Constraints"}, {1, "Application Not Listening"}, {2, "Receive Buffer"}, {3, "Corrupt"},
    {7, "Delivered Corrupt"}});
constexpr auto kVectorNames = SortedNames({{0, "Received"}, {1, "Received ECN Marked"}, {2, "Reserved"}, {3, "Not Yet Received"}});

struct Dccp {
  Field offset, coverage, type;
};

constexpr auto kPorts = Rows<Dccp>({
    Number(2, "Source Port"), Number(2, "Destination Port"), Number(1, "Data Offset", " words").Into(&Dccp::offset), Word(1),
    Bits(0, 4, "CCVal"), Bits(4, 4, "Checksum Coverage").Into(&Dccp::coverage)});
constexpr auto kType = Rows<Dccp>({
    Word(1), Bits(0, 3, "Reserved"), Bits(3, 4, "Type", kTypeNames).Into(&Dccp::type), Flag(7, "Extended Sequence Numbers")});
constexpr auto kShortSequence = Rows<Dccp>({Number(3, "Sequence Number").Note(", Sequence %u")});
constexpr auto kLongSequence = Rows<Dccp>({Hex(1, "Reserved"), Number(6, "Sequence Number").Note(", Sequence %I64u")});
constexpr auto kShortAck = Rows<Dccp>({Hex(1, "Reserved"), Number(3, "Acknowledgement Number").Note(", Ack %u")});
constexpr auto kLongAck = Rows<Dccp>({Hex(2, "Reserved"), Number(6, "Acknowledgement Number").Note(", Ack %I64u")});
constexpr auto kServiceNames = SortedNames({
    {0x00000000, "None"}, {0x006C7470, "Licklider Transmission Protocol"}, {0x44495343, "Discard"},
    {0x52544350, "RTCP"}, {0x52545041, "RTP, Audio"}, {0x5254504F, "RTP, Other Media"}, {0x52545054, "RTP, Text"},
    {0x52545056, "RTP, Video"}, {0x53594C47, "Syslog"}, {0x64746E31, "Bundle Protocol"},
    {0x6E706D70, "NetPerfMeter Data"}, {0xFFFFFFFF, "Invalid"}});
void ShowServiceCode(const Place& in, const Field& field, const char* label) {
  const uint32_t code = PeekU32(field);
  const char* name = LookupName(kServiceNames, code, nullptr);
  if (name) AddLine(in, field, "%s: 0x%.08X = %s", label, code, name);
  else AddLine(in, field, "%s: 0x%.08X", label, code);
}
constexpr auto kService = Rows<Dccp>({Shown(4, "Service Code", ShowServiceCode)});
constexpr auto kResetCode = Rows<Dccp>({
    Number(1, "Reset Code", kResetNames).Note(", %s"), Hex(1, "Data 1"), Hex(1, "Data 2"), Hex(1, "Data 3")});

// A feature and the values that are wanted or agreed, most wanted first; the sequence window and the ratio are numbers.
void ShowFeature(const Place& in, Cursor& c, Dccp&) {
  constexpr uint32_t kWindow = 3, kRatio = 5;
  const Field feature = TakeU8(c);
  const char* name = LookupName(kFeatureNames, feature.value);
  AddLine(in, feature, "Feature: %u = %s", feature.value, name);
  AppendToParent(in, feature, ", %s", name);
  const Field values = Rest(c);
  if (!values.here || values.length == 0) return;
  if (feature.value == kWindow || feature.value == kRatio) {
    uint64_t number = 0;
    for (int32_t i = 0; i < values.length && i < 6; ++i) number = number << 8 | PeekU8(values, i);
    AddLine(in, values, "Feature Value: %I64u", number);
  } else {
    AddLine(in, values, "Feature Values: %s", HexText(values));
  }
}
void ShowVector(const Place& in, Cursor& c, Dccp& dccp) {
  static constexpr auto kRun = Rows<Dccp>({Word(1), Bits(0, 2, "State", kVectorNames), Bits(2, 6, "Run Length")});
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Dccp>(in, c, kRun, dccp);
}
void ShowDropped(const Place& in, Cursor& c, Dccp& dccp) {
  static constexpr auto kNormal = Rows<Dccp>({Word(1), Bits(0, 1, "Drop Block"), Bits(1, 7, "Run Length")});
  static constexpr auto kDrop = Rows<Dccp>({
      Word(1), Bits(0, 1, "Drop Block"), Bits(1, 3, "Drop Code", kDropNames), Bits(4, 4, "Run Length")});
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowRows<Dccp>(in, c, PeekU8(c) & 0x80 ? RowSpan<Dccp>(kDrop) : RowSpan<Dccp>(kNormal), dccp);
  }
}
// Of hundredths of milliseconds, in two octets or four.
void ShowElapsed(const Place& in, Cursor& c, Dccp&) {
  const Field elapsed = Left(c) >= 4 ? TakeU32(c) : TakeU16(c);
  AddLine(in, elapsed, "Elapsed Time: %u x 10 microseconds", elapsed.value);
}
void ShowEcho(const Place& in, Cursor& c, Dccp& dccp) {
  const Field echo = TakeU32(c);
  AddLine(in, echo, "Timestamp Echo: %u", echo.value);
  if (Left(c) >= 2) ShowElapsed(in, c, dccp);
}
void ShowCount(const Place& in, Cursor& c, Dccp&) {
  uint64_t count = 0;
  const Field field = Rest(c);
  for (int32_t i = 0; i < field.length && i < 6; ++i) count = count << 8 | PeekU8(field, i);
  AddLine(in, field, "NDP Count: %I64u", count);
}
void ShowIntervals(const Place& in, Cursor& c, Dccp& dccp) {
  static constexpr auto kSkip = Rows<Dccp>({Number(1, "Skip Length")});
  static constexpr auto kInterval = Rows<Dccp>({
      Number(3, "Lossless Length"), Word(3), Bits(0, 1, "ECN Nonce Echo"), Bits(1, 23, "Loss Length"), Number(3, "Data Length")});
  ShowRows<Dccp>(in, c, kSkip, dccp);
  Loop loop;
  while (Left(c) >= 9 && MoreAt(in, c, loop)) ShowRows<Dccp>(in, c, kInterval, dccp);
}

constexpr auto kBytes = Rows<Dccp>({Bytes(0, nullptr)});
constexpr auto kTimestamp = Rows<Dccp>({Number(4, "Timestamp", " x 10 microseconds")});
constexpr auto kDataSum = Rows<Dccp>({Hex(4, "Data Checksum")});
constexpr auto kLossRate = Rows<Dccp>({Number(4, "Loss Event Rate")});
constexpr auto kReceiveRate = Rows<Dccp>({Number(4, "Receive Rate", " bytes/s")});
constexpr auto kDropped = Rows<Dccp>({Number(3, "Dropped Packets")});

constexpr auto kOptions = Choices<Dccp>({
    {32, "Change L", {}, ShowFeature}, {33, "Confirm L", {}, ShowFeature}, {34, "Change R", {}, ShowFeature},
    {35, "Confirm R", {}, ShowFeature}, {36, "Init Cookie", kBytes}, {37, "NDP Count", {}, ShowCount},
    {38, "Ack Vector, Nonce 0", {}, ShowVector}, {39, "Ack Vector, Nonce 1", {}, ShowVector},
    {40, "Data Dropped", {}, ShowDropped}, {41, "Timestamp", kTimestamp}, {42, "Timestamp Echo", {}, ShowEcho},
    {43, "Elapsed Time", {}, ShowElapsed}, {44, "Data Checksum", kDataSum}, {192, "Loss Event Rate", kLossRate},
    {193, "Loss Intervals", {}, ShowIntervals}, {194, "Receive Rate", kReceiveRate}, {195, "Dropped Packets", kDropped}});
constexpr auto kSingleNames = SortedNames({{0, "Padding"}, {1, "Mandatory"}, {2, "Slow Receiver"}});

// Options below 32 are one octet.
void ShowOptions(const Place& in, Cursor& c, Dccp& dccp) {
  constexpr uint32_t kFirstLong = 32;
  static constexpr auto kHead = Rows<Dccp>({Number(1, "Type"), Number(1, "Length")});
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t type = PeekU8(c);
    if (type < kFirstLong) {
      AddLine(in, TakeU8(c), "Option: %u = %s", type, LookupName(kSingleNames, type));
      continue;
    }
    const int32_t length = static_cast<int32_t>(PeekU8(c, 1));
    if (length < 2 || length > Left(c)) break;
    Cursor option = TakeCursor(c, length);
    const Choice<Dccp>* choice = FindChoice<Dccp>(kOptions, type);
    const char* name = choice ? choice->name : type >= 128 ? "Congestion Control Option" : kUnknown;
    const Place under = Under(in, AddLine(in, Ahead(option, length), "Option: %s", name));
    ShowRows<Dccp>(under, option, kHead, dccp);
    ShowChoice<Dccp>(under, option, choice, dccp);   // keys: none Data
  }
  AddBlock(in, Rest(c), "Option Data");
}

// Coverage 0 is all, else the header and so many words of data less one.
void AddChecksum(const Place& in, const Cursor& packet, Cursor& c, const Dccp& dccp) {
  const NetworkState& network = PacketOf(in).network;
  const int32_t header = 4 * static_cast<int32_t>(dccp.offset.value), coverage = static_cast<int32_t>(dccp.coverage.value);
  const int32_t covered = coverage == 0 ? network.totalLength : header + 4 * (coverage - 1);
  const char* unchecked = network.fragmented        ? "data fragment - not able to check"
                          : covered > Left(packet) ? "partial packet - not able to check"
                                                   : nullptr;
  const uint32_t sum = unchecked ? 0 : SumWords(network.pseudoHead, packet.at, covered);
  AddChecksumLine(in, TakeU16(c), "Checksum: ", unchecked, sum, BadChecksum::kAlone);
}

}  // namespace

int32_t DecodeDccp(const Place& at, Cursor c) {
  const bool isLong = PeekU8(c, 8) & 1;
  if (Left(c) < (isLong ? kLongHeader : kShortHeader)) return 0;
  const Cursor whole = c;
  PacketState& packet = PacketOf(at);
  packet.sourcePort = static_cast<uint16_t>(PeekU16(c));
  packet.destinationPort = static_cast<uint16_t>(PeekU16(c, 2));
  const uint32_t type = PeekU8(c, 8) >> 1 & 0xF;
  const int32_t declared = 4 * static_cast<int32_t>(PeekU8(c, 4));
  const Place in = Under(at, AddLine(at, Ahead(c, declared < Left(c) ? declared : Left(c)), "DCCP, [%u] -> [%u], %s",
                                     packet.sourcePort, packet.destinationPort, LookupName(kTypeNames, type)));
  Dccp dccp = ShowRows(in, c, kPorts);
  AddChecksum(in, whole, c, dccp);
  ShowRows<Dccp>(in, c, kType, dccp);
  ShowRows<Dccp>(in, c, isLong ? RowSpan<Dccp>(kLongSequence) : RowSpan<Dccp>(kShortSequence), dccp);
  if (type != kRequest && type != kData && type != kListen) {
    ShowRows<Dccp>(in, c, isLong ? RowSpan<Dccp>(kLongAck) : RowSpan<Dccp>(kShortAck), dccp);
  }
  if (type == kRequest || type == kResponse || type == kListen) ShowRows<Dccp>(in, c, kService, dccp);
  if (type == kReset) ShowRows<Dccp>(in, c, kResetCode, dccp);
  Cursor options = TakeCursor(c, declared - Taken(c));
  ShowOptions(in, options, dccp);
  if (Left(c) == 0) return 1;
  if (type != kData && type != kDataAck && type != kRequest && type != kResponse) {
    AddBlock(in, Rest(c), "Ignored Data");
    return 1;
  }
  bool matchedSource;
  const int32_t identifier = ResolveProtocol(at.view, kIpProtocolUdp, packet.source, packet.sourcePort, packet.destination,
                                             packet.destinationPort, &matchedSource);
  return DispatchUdpPayload(at, c, identifier);
}

}  // namespace qxview
