#include "decoders/quic/quic_secrets.h"

#include <cstring>

namespace qxview {
namespace {

// The space that a packet's number is of: Initial, Handshake, and 0-RTT with 1-RTT.
int32_t SpaceOf(QuicKind kind) { return kind == QuicKind::kInitial ? 0 : kind == QuicKind::kHandshake ? 1 : 2; }

void NoteNumber(const QuicPacket& packet, QuicSession& session, const QuicOpened& opened) {
  uint64_t& largest = session.state.largest[SpaceOf(packet.kind)][session.sender];
  if (opened.number <= largest) return;
  largest = opened.number;
  session.changed = true;
}

bool IsSame(const QuicId& a, const QuicId& b) {
  return a.length == b.length && std::memcmp(a.octets, b.octets, a.length) == 0;
}

// A client that was sent elsewhere by a Retry packet, or that begins anew, has another first ID.
void BeginAnew(QuicSession& session, const QuicId& original) {
  QuicConnection& state = session.state;
  state.original = original;
  ++state.attempt;
  std::memset(state.largest, 0, sizeof state.largest);
  session.changed = true;
}

Opening TryInitialKeys(const Place& at, const QuicPacket& packet, const QuicSession& session, const QuicId& original,
                       uint8_t* room, QuicOpened& out) {
  const bool fromClient = session.sender == session.state.client;
  const uint64_t largest = session.state.largest[0][session.sender];
  const bool isKnown = HasQuicSalt(packet.version);
  Opening how = Opening::kUnavailable;
  for (int32_t i = 0; i < (isKnown ? 1 : kQuicSaltVersionCount); ++i) {
    QuicKeys keys;
    const uint32_t version = isKnown ? packet.version : kQuicSaltVersions[i];
    if (!MakeInitialKeys(at.view, version, original, fromClient, keys)) return Opening::kUnavailable;
    how = OpenQuicPacket(at.view, keys, packet, largest, room, out);
    if (how == Opening::kOpened) break;
  }
  return how;
}

Opening OpenInitial(const Place& at, const QuicPacket& packet, QuicSession& session, const Field& destination,
                    uint8_t* room, QuicOpened& out) {
  Opening how = TryInitialKeys(at, packet, session, session.state.original, room, out);
  if (how == Opening::kWrong && session.sender == session.state.client) {
    const QuicId own = QuicIdOf(destination);
    if (!IsSame(own, session.state.original)) {
      how = TryInitialKeys(at, packet, session, own, room, out);
      if (how == Opening::kOpened) BeginAnew(session, own);
    }
  }
  return how;
}

}  // namespace

Opening OpenWithKnownKeys(const Place& at, const QuicPacket& packet, QuicSession& session, const Field& destination,
                          uint8_t* room, QuicOpened& out) {
  if (!room) return Opening::kUnavailable;
  Opening how = Opening::kUnavailable;
  if (packet.kind == QuicKind::kInitial) how = OpenInitial(at, packet, session, destination, room, out);
  if (how == Opening::kOpened) NoteNumber(packet, session, out);
  return how;
}

}  // namespace qxview
