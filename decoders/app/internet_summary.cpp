// The packet list's text for what IP carries beside transports: GRE (RFC 2784), ESP (RFC 4303), mobility headers (RFC 6275).
#include "core/dispatch.h"
#include "decoders/app/layer_summaries.h"
#include "decoders/net/icmp_names.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr auto kMobilityNames = SortedNames({
    {0, "Binding Refresh Request"}, {1, "Home Test Init"}, {2, "Care-of Test Init"}, {3, "Home Test"},
    {4, "Care-of Test"}, {5, "Binding Update"}, {6, "Binding Acknowledgement"}, {7, "Binding Error"},
    {8, "Fast Binding Update"}, {9, "Fast Binding Acknowledgement"}, {10, "Fast Neighbor Advertisement"},
    {12, "Home Agent Switch"}, {13, "Heartbeat"}, {16, "Binding Revocation"},
});

}  // namespace

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

void AppendQuotedDatagram(const PacketState& packet, char* out, int32_t size) {
  constexpr uint32_t kIcmp = 1, kIcmpv6 = 58, kTcp = 6, kUdp = 17;
  const ReachedLayer& reached = packet.reached;
  if (reached.table != DispatchTable::kIpProtocol || (reached.key != kIcmp && reached.key != kIcmpv6)) return;
  Cursor c = MakeCursor(reached.bytes, 0, reached.length);
  const uint32_t type = TakeU8(c).value;
  const bool isError = reached.key == kIcmpv6 ? type >= 1 && type <= 4 : (type >= 3 && type <= 5) || type == 11 || type == 12;
  TakeBytes(c, 7);
  const uint32_t version = PeekU8(c) >> 4;
  if (!isError || (version != 4 && version != 6)) return;
  const bool isFour = version == 4;
  Cursor ports = c, addresses = c;
  TakeBytes(ports, isFour ? static_cast<int32_t>(PeekU8(c) & 15) * 4 : 40);
  const uint32_t protocol = PeekU8(c, isFour ? 9 : 6);
  TakeBytes(addresses, isFour ? 12 : 8);
  const Field source = TakeBytes(addresses, isFour ? 4 : 16), destination = TakeBytes(addresses, isFour ? 4 : 16);
  if (!destination.here) return;
  const Field sourcePort = TakeU16(ports), destinationPort = TakeU16(ports);
  const bool hasPorts = destinationPort.here && (protocol == kTcp || protocol == kUdp);
  const auto add = [&](const Field& address, const Field& port) {
    if (isFour) {
      AppendFormat(out, size, "%s", IPv4Text(address.bytes));
    } else {
      AppendFormat(out, size, "%s", IPv6Text(address.bytes));
    }
    if (hasPorts) AppendFormat(out, size, " port %u", port.value);
  };
  AppendFormat(out, size, ", Quoted: %s ", IpProtocolName(protocol));
  add(source, sourcePort);
  AppendFormat(out, size, " -> ");
  add(destination, destinationPort);
}

}  // namespace qxview
