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

}  // namespace qxview
