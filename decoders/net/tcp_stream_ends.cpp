// What segments tell of TCP streams beside their bytes: where they begin, and what the other end has.
#include "decoders/net/tcp_streams.h"
#include "decoders/states.h"

namespace qxview {

void BeginTcpStream(const Place& at, uint32_t firstSequence, uint16_t protocol) {
  if (Replays(at.view)) return;
  const ConnectionKey key = DirectionOf(PacketOf(at));
  StateTable& streams = UnrecordedTable(at.view, kTcpStreams);
  const auto* known = static_cast<const TcpStream*>(streams.Recall(&key, 1, nullptr));
  if (known && Beyond(known->next, firstSequence) >= 0 && Beyond(known->next, firstSequence) < kMostStreamBytes) return;
  TcpStream stream{};
  stream.packet = INT64_MIN;
  stream.next = firstSequence;
  stream.protocol = protocol;
  UnrecordedTable(at.view, kTcpPieces).Forget(&key);
  UnrecordedTable(at.view, kTcpAhead).Forget(&key);
  streams.Remember(&key, &stream, {});
}

void AcknowledgeTcpStream(const Place& at, uint32_t number) {
  if (Replays(at.view) || UnrecordedTable(at.view, kTcpAhead).Count() == 0) return;
  const PacketState& packet = PacketOf(at);
  PacketState other{};
  other.source = packet.destination;
  other.destination = packet.source;
  other.sourcePort = packet.destinationPort;
  other.destinationPort = packet.sourcePort;
  const ConnectionKey key = DirectionOf(other);
  StateTable& streams = UnrecordedTable(at.view, kTcpStreams);
  const auto* known = static_cast<const TcpStream*>(streams.Recall(&key, 1, nullptr));
  if (!known || known->ahead == 0 || Beyond(number, known->next) <= 0) return;
  TcpStream stream = *known;
  stream.isLost = true;
  streams.Revise(&key, 1, &stream);
}

}  // namespace qxview
