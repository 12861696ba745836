// The packet list's text for TCP (RFC 9293), UDP (RFC 768) and SCTP (RFC 9260) segments whose payload has no summary of
// its own: ports with the names of the services on them, and what the header says.
#include "core/internet_checksum.h"
#include "decoders/app/layer_summaries.h"
#include "decoders/app/service_names.h"
#include "decoders/net/sctp.h"

namespace qxview {
namespace {

// "Port: 51000 -> 179 (BGP)": the service's name stands with its port.
void AddPorts(SummaryText& text, uint32_t source, uint32_t destination, bool isUdp) {
  const char* sourceName = ServiceName(source, isUdp);
  const char* destinationName = ServiceName(destination, isUdp);
  if (!sourceName && !destinationName) return Add(text, ", Port: %u -> %u", source, destination);
  const bool isSource = sourceName && (!destinationName || source < destination);
  if (isSource) return Add(text, ", Port: %u (%s) -> %u", source, sourceName, destination);
  Add(text, ", Port: %u -> %u (%s)", source, destination, destinationName);
}

// Whether a segment's checksum fails, which is why its payload was not looked at.
bool HasBadChecksum(const Cursor& segment, const PacketState& packet) {
  const NetworkState& network = packet.network;
  if (packet.reached.table == DispatchTable::kApplication || network.fragmented || network.offloaded) {
    return false;
  }
  return Left(segment) == network.totalLength && SumWords(network.pseudoHead, segment.at, Left(segment)) != 0xFFFF;
}

}  // namespace

void DescribeTcp(SummaryText& text, Cursor c, const PacketState& packet) {
  static constexpr const char* kFlagNames[] = {" FIN", " SYN", " RST", " PSH", " ACK", " URG", " ECE", " CWR"};
  constexpr uint32_t kAck = 0x10;
  const Cursor start = c;
  const Field source = TakeU16(c), destination = TakeU16(c);
  const Field sequence = TakeU32(c), acknowledgement = TakeU32(c);
  const Field offset = TakeU8(c), flags = TakeU8(c), window = TakeU16(c);
  Add(text, "TCP");
  for (int32_t bit = 0; bit < 8 && flags.here; ++bit) {
    if (flags.value >> bit & 1) Add(text, kFlagNames[bit]);
  }
  if (destination.here) AddPorts(text, source.value, destination.value, false);
  const int32_t header = offset.here ? static_cast<int32_t>(offset.value >> 4) * 4 : Left(start);
  const int32_t length = Left(start) > header ? Left(start) - header : 0;
  if (window.here && flags.value & kAck) {   // as most are
    Add(text, ", Sequence: %u, Acknowledgement: %u, Window: %u, Length: %u", sequence.value, acknowledgement.value, window.value,
        static_cast<uint32_t>(length));
  } else {
    if (sequence.here) Add(text, ", Sequence: %u", sequence.value);
    if (flags.here && flags.value & kAck) Add(text, ", Acknowledgement: %u", acknowledgement.value);
    if (window.here) Add(text, ", Window: %u", window.value);
    Add(text, ", Length: %u", static_cast<uint32_t>(length));
  }
  if (length > 0 && HasBadChecksum(start, packet)) Add(text, ", Bad Checksum");
}

void DescribeUdp(SummaryText& text, Cursor c, const PacketState&) {
  constexpr uint32_t kHeader = 8;
  const Field source = TakeU16(c), destination = TakeU16(c), length = TakeU16(c);
  Add(text, "UDP");
  if (destination.here) AddPorts(text, source.value, destination.value, true);
  if (length.here) Add(text, ", Length: %u", length.value > kHeader ? length.value - kHeader : 0);
}

void DescribeSctp(SummaryText& text, Cursor c, const PacketState&) {
  constexpr int32_t kMostChunks = 8;
  const Field source = TakeU16(c), destination = TakeU16(c);
  const Field tag = TakeU32(c);
  TakeU32(c);   // checksum
  Add(text, "SCTP");
  for (int32_t i = 0; i < kMostChunks && Left(c) >= 4; ++i) {
    const uint32_t chunk = TakeU8(c).value;
    TakeU8(c);
    const uint32_t length = TakeU16(c).value;
    Add(text, i == 0 ? " " : " + ");
    Add(text, LookupName(kSctpChunkNames, chunk));
    if (length < 4) break;
    TakeCursor(c, (length + 3) / 4 * 4 - 4);   // chunks are padded to words
  }
  if (destination.here) AddPorts(text, source.value, destination.value, false);
  if (tag.here) Add(text, ", Tag: 0x%.08X", tag.value);
}

}  // namespace qxview
