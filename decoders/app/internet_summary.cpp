// The packet list's text for what IP carries beside transports: ICMP (RFC 792), ICMPv6 (RFC 4443, RFC 4861, RFC 3810),
// IGMP (RFC 3376), GRE (RFC 2784), ESP (RFC 4303), mobility headers (RFC 6275).
#include "core/dispatch.h"
#include "decoders/app/layer_summaries.h"
#include "decoders/net/icmp_names.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

// The datagram that an error message quotes: ": UDP 10.0.0.1:53 -> 10.0.0.2:40000".
void AddQuoted(SummaryText& text, Cursor c) {
  constexpr uint32_t kTcp = 6, kUdp = 17;
  const Cursor start = c;
  const Field version = TakeU8(c);
  if (!version.here) return;
  const bool isFour = version.value >> 4 == 4;
  int32_t header = isFour ? static_cast<int32_t>(version.value & 15) * 4 : 40;
  Cursor fields = start;
  TakeBytes(fields, isFour ? 9 : 6);
  const Field protocol = TakeU8(fields);
  TakeBytes(fields, isFour ? 2 : 1);
  const Field source = TakeBytes(fields, isFour ? 4 : 16), destination = TakeBytes(fields, isFour ? 4 : 16);
  if (!destination.here || (version.value >> 4 != 6 && !isFour)) return;
  Cursor ports = start;
  TakeBytes(ports, header);
  const Field sourcePort = TakeU16(ports), destinationPort = TakeU16(ports);
  const bool hasPorts = destinationPort.here && (protocol.value == kTcp || protocol.value == kUdp);
  Add(text, ", Quoted: %s ", IpProtocolName(protocol.value));
  if (isFour) {
    Add(text, "%s", IPv4Text(source.bytes));
  } else {
    Add(text, "%s", IPv6Text(source.bytes));
  }
  if (hasPorts) Add(text, " port %u", sourcePort.value);
  if (isFour) {
    Add(text, " -> %s", IPv4Text(destination.bytes));
  } else {
    Add(text, " -> %s", IPv6Text(destination.bytes));
  }
  if (hasPorts) Add(text, " port %u", destinationPort.value);
}

constexpr auto kIcmpv6Names = SortedNames({
    {1, "Destination Unreachable"}, {2, "Packet Too Big"}, {3, "Time Exceeded"}, {4, "Parameter Problem"},
    {128, "Echo Request"}, {129, "Echo Reply"}, {130, "Multicast Listener Query"},
    {131, "Multicast Listener Report"}, {132, "Multicast Listener Done"}, {133, "Router Solicitation"},
    {134, "Router Advertisement"}, {135, "Neighbor Solicitation"}, {136, "Neighbor Advertisement"},
    {137, "Redirect"}, {138, "Router Renumbering"}, {139, "Node Information Query"},
    {140, "Node Information Response"}, {141, "Inverse Neighbor Solicitation"},
    {142, "Inverse Neighbor Advertisement"}, {143, "Multicast Listener Report v2"},
    {144, "Home Agent Discovery Request"}, {145, "Home Agent Discovery Reply"},
    {146, "Mobile Prefix Solicitation"}, {147, "Mobile Prefix Advertisement"},
    {148, "Certification Path Solicitation"}, {149, "Certification Path Advertisement"},
    {151, "Multicast Router Advertisement"}, {152, "Multicast Router Solicitation"},
    {153, "Multicast Router Termination"}, {154, "Fast Handover"}, {155, "RPL Control"},
    {157, "Duplicate Address Request"}, {158, "Duplicate Address Confirmation"}, {160, "Extended Echo Request"},
    {161, "Extended Echo Reply"},
});

constexpr const char* kUnreachableNames[] = {
    "No Route", "Administratively Prohibited", "Beyond Scope Of Source", "Address Unreachable", "Port Unreachable",
    "Source Address Failed Policy", "Reject Route",
};

constexpr auto kIgmpNames = SortedNames({
    {0x11, "Membership Query"}, {0x12, "Membership Report v1"}, {0x13, "DVMRP"}, {0x14, "PIM v1"},
    {0x15, "Trace"}, {0x16, "Membership Report v2"}, {0x17, "Leave Group"}, {0x1E, "Multicast Traceroute Response"},
    {0x1F, "Multicast Traceroute"}, {0x22, "Membership Report v3"}, {0x30, "Multicast Router Advertisement"},
    {0x31, "Multicast Router Solicitation"}, {0x32, "Multicast Router Termination"},
});

constexpr auto kMobilityNames = SortedNames({
    {0, "Binding Refresh Request"}, {1, "Home Test Init"}, {2, "Care-of Test Init"}, {3, "Home Test"},
    {4, "Care-of Test"}, {5, "Binding Update"}, {6, "Binding Acknowledgement"}, {7, "Binding Error"},
    {8, "Fast Binding Update"}, {9, "Fast Binding Acknowledgement"}, {10, "Fast Neighbor Advertisement"},
    {12, "Home Agent Switch"}, {13, "Heartbeat"}, {16, "Binding Revocation"},
});

}  // namespace

void DescribeIcmp(SummaryText& text, Cursor c, const PacketState&) {
  enum Type : uint32_t {
    kEchoReply = 0, kUnreachable = 3, kQuench = 4, kRedirect = 5, kEcho = 8, kTimeExceeded = 11, kParameter = 12,
    kTimestamp = 13, kAddressMaskReply = 18,
  };
  const Field type = TakeU8(c), code = TakeU8(c);
  TakeU16(c);   // checksum
  Add(text, "ICMP");
  if (!type.here) return;
  Add(text, " %s", IcmpTypeName(type.value));
  const char* codeName = code.here ? IcmpCodeName(type.value, code.value) : nullptr;
  if (codeName) Add(text, ": %s", codeName);
  if (type.value == kEcho || type.value == kEchoReply ||
      (type.value >= kTimestamp && type.value <= kAddressMaskReply)) {
    const Field identifier = TakeU16(c), sequence = TakeU16(c);
    if (sequence.here) Add(text, ", Identifier: %u, Sequence: %u", identifier.value, sequence.value);
    return;
  }
  if (type.value == kRedirect) {
    const Field gateway = TakeBytes(c, 4);
    if (gateway.here) Add(text, ", Gateway: %s", IPv4Text(gateway.bytes));
  } else if (type.value == kUnreachable || type.value == kQuench || type.value == kTimeExceeded ||
             type.value == kParameter) {
    TakeU32(c);
  } else {
    return;
  }
  AddQuoted(text, c);
}

void DescribeIcmpv6(SummaryText& text, Cursor c, const PacketState&) {
  enum Type : uint32_t {
    kUnreachable = 1, kTooBig = 2, kExceeded = 3, kParameter = 4, kEcho = 128, kEchoReply = 129, kQuery = 130,
    kDone = 132, kSolicitation = 135, kAdvertisement = 136,
  };
  const Field type = TakeU8(c), code = TakeU8(c);
  TakeU16(c);   // checksum
  Add(text, "ICMPv6");
  if (!type.here) return;
  Add(text, " %s", LookupName(kIcmpv6Names, type.value));
  switch (type.value) {
    case kUnreachable:
      if (code.here && code.value < sizeof kUnreachableNames / sizeof kUnreachableNames[0]) {
        Add(text, ": %s", kUnreachableNames[code.value]);
      }
      [[fallthrough]];
    case kExceeded:
    case kParameter:
      TakeU32(c);
      return AddQuoted(text, c);
    case kTooBig: {
      const Field size = TakeU32(c);
      if (size.here) Add(text, ", MTU: %u", size.value);
      return AddQuoted(text, c);
    }
    case kEcho:
    case kEchoReply: {
      const Field identifier = TakeU16(c), sequence = TakeU16(c);
      if (sequence.here) Add(text, ", Identifier: %u, Sequence: %u", identifier.value, sequence.value);
      return;
    }
    default: break;
  }
  const bool hasTarget = (type.value >= kQuery && type.value <= kDone) || type.value == kSolicitation ||
                         type.value == kAdvertisement;
  if (!hasTarget) return;
  TakeU32(c);
  const Field target = TakeBytes(c, 16);
  if (target.here) Add(text, ", %s: %s", type.value <= kDone ? "Group" : "Target", IPv6Text(target.bytes));
}

void DescribeIgmp(SummaryText& text, Cursor c, const PacketState&) {
  enum Type : uint32_t { kReport3 = 0x22 };
  const Field type = TakeU8(c);
  TakeBytes(c, 3);
  Add(text, "IGMP");
  if (!type.here) return;
  Add(text, " %s", LookupName(kIgmpNames, type.value));
  if (type.value != kReport3) {
    const Field group = TakeBytes(c, 4);
    if (group.here) Add(text, ", Group: %s", IPv4Text(group.bytes));
    return;
  }
  TakeU16(c);
  const Field records = TakeU16(c);
  const Field recordType = TakeU8(c);
  TakeBytes(c, 3);
  const Field group = TakeBytes(c, 4);
  if (records.here) Add(text, ", Records: %u", records.value);
  if (group.here) Add(text, ", Group: %s, Record Type: %u", IPv4Text(group.bytes), recordType.value);
}

void DescribeGre(SummaryText& text, Cursor c, const PacketState&) {
  constexpr uint32_t kChecksum = 0x8000, kRouting = 0x4000, kKey = 0x2000, kSequence = 0x1000;
  const Field flags = TakeU16(c), protocol = TakeU16(c);
  Add(text, "GRE");
  if (!protocol.here) return;
  const char* name = EthertypeName(static_cast<uint16_t>(protocol.value));
  if (name) {
    Add(text, " %s", name);
  } else {
    Add(text, " Protocol 0x%.04X", protocol.value);
  }
  Add(text, ", Version: %u", flags.value & 7);
  if (flags.value & (kChecksum | kRouting)) TakeU32(c);
  if (flags.value & kKey) {
    const Field key = TakeU32(c);
    if (key.here) Add(text, ", Key: 0x%.08X", key.value);
  }
  if (flags.value & kSequence) {
    const Field sequence = TakeU32(c);
    if (sequence.here) Add(text, ", Sequence: %u", sequence.value);
  }
}

void DescribeEsp(SummaryText& text, Cursor c, const PacketState&) {
  const Field index = TakeU32(c), sequence = TakeU32(c);
  Add(text, "ESP");
  if (index.here) Add(text, ", SPI: 0x%.08X", index.value);
  if (sequence.here) Add(text, ", Sequence: %u", sequence.value);
}

void DescribeMobility(SummaryText& text, Cursor c, const PacketState&) {
  TakeU16(c);   // next header, length
  const Field type = TakeU8(c);
  Add(text, "IPv6 Mobility");
  if (type.here) Add(text, " %s", LookupName(kMobilityNames, type.value));
}

}  // namespace qxview
