// Internet Group Management Protocol (RFC 1112, RFC 2236, RFC 3376): which multicast groups have members on this link?
//
//   0  type   1  maximum response time   2  checksum   4  group
//   version 3 queries go on:   8  suppress (1 bit), robustness (3)   9  query interval   10  sources, their addresses
//   version 3 reports:         4  reserved   6  group records   8  records
//   a record:  0  type   1  words of auxiliary data   2  number of sources   4  group   8  sources, auxiliary data
//
// Multicast router discovery (RFC 4286), routers that tell switches which groups they want (RGMP, RFC 3488) and the messages
// of older routing protocols use further types.
#include "core/decoder.h"
#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/dvmrp.h"
#include "decoders/net/pim.h"

namespace qxview {
namespace {

enum IgmpType : uint32_t {
  kQuery = 0x11, kDvmrp = 0x13, kPim1 = 0x14, kTraceResponse = 0x1E, kTrace = 0x1F, kReportV3 = 0x22,
  kRouterAdvertisement = 0x30, kRgmpLeave = 0xFC, kRgmpJoin = 0xFD, kRgmpBye = 0xFE, kRgmpHello = 0xFF,
};
constexpr int32_t kShortMessage = 8;

constexpr auto kTypeNames = SortedNames({
    {0x11, "Membership Query"}, {0x12, "Version 1 Membership Report"}, {0x13, "DVMRP"}, {0x14, "PIM Version 1"},
    {0x15, "Cisco Trace"}, {0x16, "Version 2 Membership Report"}, {0x17, "Leave Group"},
    {0x1E, "Multicast Traceroute Response"}, {0x1F, "Multicast Traceroute"}, {0x22, "Version 3 Membership Report"},
    {0x30, "Multicast Router Advertisement"}, {0x31, "Multicast Router Solicitation"},
    {0x32, "Multicast Router Termination"}, {0xFC, "RGMP Leave Group"}, {0xFD, "RGMP Join Group"}, {0xFE, "RGMP Bye"},
    {0xFF, "RGMP Hello"}});

constexpr auto kRecordNames = SortedNames({
    {1, "Mode Is Include"}, {2, "Mode Is Exclude"}, {3, "Change to Include Mode"}, {4, "Change to Exclude Mode"},
    {5, "Allow New Sources"}, {6, "Block Old Sources"}});

// Times above 127 are a mantissa and an exponent.
uint32_t ReadTimeCode(uint32_t code) { return code < 128 ? code : (16 | (code & 15)) << ((code >> 4 & 7) + 3); }

Field AddGroup(const Place& in, Cursor& c) {
  const Field group = TakeBytes(c, 4);
  if (!group.here) return group;
  AddLine(in, group, "Group Address: %s", IPv4Text(group.bytes));
  AppendToParent(in, group, ", Group = %s", IPv4Text(group.bytes));
  return group;
}

void AddSources(const Place& in, Cursor& c, uint32_t count) {
  Loop loop;
  for (uint32_t number = 1; number <= count && MoreAt(in, c, loop); ++number) {
    const Field source = TakeBytes(c, 4);
    if (source.here) AddLine(in, source, "Source Address %u: %s", number, IPv4Text(source.bytes));
  }
}

void DecodeQueryTail(const Place& in, Cursor& c) {
  const Field flags = TakeU8(c);
  const BitPicture suppress = BitsOf(flags, 4, 1), robustness = BitsOf(flags, 5, 3);
  AddBitLine(in, flags, "%s: Suppress Router-Side Processing = %s", suppress.picture,
             TrueOrFalse(suppress.value));
  AddBitLine(in, flags, "%s: Querier's Robustness Variable = %u", robustness.picture, robustness.value);
  const Field interval = TakeU8(c);
  AddLine(in, interval, "Querier's Query Interval: %u seconds", ReadTimeCode(interval.value));
  const Field count = TakeU16(c);
  AddLine(in, count, "Number of Sources: %u", count.value);
  AddSources(in, c, count.value);
}

void DecodeRecord(const Place& in, Cursor& c) {
  const Cursor start = c;
  const Field type = TakeU8(c), auxiliary = TakeU8(c), count = TakeU16(c), group = TakeBytes(c, 4);
  if (!group.here) return;
  const char* name = LookupName(kRecordNames, type.value);
  const LineHandle line = AddLine(in, Ahead(start, Taken(c) - Taken(start)), "Group Record: %s, %s", name,
                                  IPv4Text(group.bytes));
  const Place under = Under(in, line);
  AddLine(under, type, "Record Type: %u = %s", type.value, name);
  AddLine(under, auxiliary, "Auxiliary Data Length: %u * 4 = %u bytes", auxiliary.value, auxiliary.value * 4);
  AddLine(under, count, "Number of Sources: %u", count.value);
  AddLine(under, group, "Group Address: %s", IPv4Text(group.bytes));
  AddSources(under, c, count.value);
  if (auxiliary.value > 0) AddBlock(under, TakeBytes(c, static_cast<int64_t>(auxiliary.value) * 4), "Auxiliary Data");
  SetRange(in, line, start.offset, c.offset - start.offset);
}

void DecodeReport(const Place& in, Cursor& c) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  const Field count = TakeU16(c);
  AddLine(in, count, "Number of Group Records: %u", count.value);
  AppendToParent(in, count, ", Group Records = %u", count.value);
  Loop loop;
  for (uint32_t number = 0; number < count.value && MoreAt(in, c, loop); ++number) DecodeRecord(in, c);
}

void AddChecksum(const Place& in, const Field& checksum, const uint8_t* bytes, int32_t length) {
  const NetworkState& network = PacketOf(in).network;
  const bool partial = network.fragmented || network.offloaded || network.totalLength > length;
  AddChecksumLine(in, checksum, "Checksum:", partial ? "Not Checked - Partial Capture" : nullptr,
                  SumWords(0, bytes, length), BadChecksum::kAlone);
}

void AddResponseTime(const Place& in, const Field& time, uint32_t type, bool version3) {
  if (type == kDvmrp || type == kPim1) {
    const char* name = type == kPim1 ? Pim1Name(time.value) : DvmrpName(time.value);
    AddLine(in, time, "Code: %u = %s", time.value, name);
    AppendToParent(in, time, " %s", name);
    return;
  }
  if (type == kTrace || type == kTraceResponse) {
    AddLine(in, time, "Number of Hops: %u", time.value);
    return;
  }
  if (type != kQuery) {
    AddLine(in, time, "%s: %u", type == kRouterAdvertisement ? "Advertisement Interval" : "Reserved", time.value);
    return;
  }
  const uint32_t tenths = version3 ? ReadTimeCode(time.value) : time.value;
  AddLine(in, time, "Maximum Response Time: %u.%u seconds", tenths / 10, tenths % 10);
}

}  // namespace

int32_t DecodeIgmp(const Place& at, Cursor c) {
  enum : uint32_t { kReportV1 = 0x12, kReportV2 = 0x16, kLeave = 0x17 };
  if (Left(c) < 4) return 0;
  const Cursor start = c;
  const Field type = TakeU8(c), time = TakeU8(c), checksum = TakeU16(c);
  const bool version3 = type.value == kReportV3 || (type.value == kQuery && Left(start) > kShortMessage);
  const char* name = LookupName(kTypeNames, type.value);
  const char* version = type.value != kQuery ? "" : version3 ? "Version 3 " : time.value ? "Version 2 " : "Version 1 ";
  const Place in = Under(at, AddLine(at, Ahead(start, Left(start)), "IGMP: %s%s", version, name));
  AddLine(in, type, "Type: 0x%.02X = %s", type.value, name);
  AddResponseTime(in, time, type.value, version3);
  AddChecksum(in, checksum, start.at, Left(start));
  switch (type.value) {
    case kReportV3: DecodeReport(in, c); break;
    case kQuery: case kReportV1: case kReportV2: case kLeave:
    case kRgmpLeave: case kRgmpJoin: case kRgmpBye: case kRgmpHello:
      AddGroup(in, c);
      if (version3) DecodeQueryTail(in, c);
      break;
    case kRouterAdvertisement: {
      const Field interval = TakeU16(c), robustness = TakeU16(c);
      AddLine(in, interval, "Query Interval: %u seconds", interval.value);
      AddLine(in, robustness, "Robustness Variable: %u", robustness.value);
      break;
    }
    case kDvmrp: ShowDvmrp(in, c, time.value); break;
    case kPim1: ShowPim1(in, c, time.value); break;
    case kTrace: case kTraceResponse: ShowTrace(in, c); break;
    default: break;
  }
  AddBlock(in, Rest(c), "IGMP Data");
  return 1;
}

}  // namespace qxview
