#include "decoders/net/quoted.h"

#include "core/line_facts.h"
#include "decoders/net/ipv4.h"

namespace qxview {
namespace {

constexpr uint8_t kProtocolTcp = 6;
constexpr int32_t kLeastTcpHeader = 14;   // up to the flags: where the TCP decoder has a line of its own

int32_t DecodeLabelled(const Place& at, Cursor c) { return DecodeIpDatagram(at, c, "(quoted)"); }

}  // namespace

void DecodeQuotedDatagram(const Place& at, Cursor c) {
  PacketState& packet = PacketOf(at);
  const PacketState own = packet;
  packet.quoted = true;
  CallDecoder(at, c, DecodeLabelled, "Quoted Data");
  const int32_t linesLeft = packet.linesLeft;
  const bool limitReached = packet.limitReached;
  packet = own;
  packet.linesLeft = linesLeft;
  packet.limitReached = limitReached;
}

bool ShowQuotedTransport(const Place& at, Cursor c, uint8_t protocol) {
  const KeyedAs keys(PacketOf(at), "tcp");
  if (protocol != kProtocolTcp || Left(c) >= kLeastTcpHeader) return false;
  const Field cover = Ahead(c, Left(c));
  const Field source = TakeU16(c), destination = TakeU16(c);
  if (!destination.here) return false;
  const Place in = Under(at, AddLine(at, cover, "TCP (quoted), [%u] -> [%u]", source.value, destination.value));
  AddLine(in, source, "Source port: [%u]", source.value);
  AddLine(in, destination, "Destination port: [%u]", destination.value);
  const Field sequence = TakeU32(c);
  AddLine(in, sequence, "Sequence number: %u", sequence.value);
  AddBlock(in, Rest(c), "Quoted Data");
  return true;
}

}  // namespace qxview
