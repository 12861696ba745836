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
  std::memset(state.traffic, 0, sizeof state.traffic);
  session.changed = true;
}

// A packet while keys are tried on it.
struct Attempt {
  const Place& at;
  const QuicPacket& packet;
  QuicSession& session;
  uint8_t* room;
  QuicOpened& out;

  bool FromClient() const { return session.sender == session.state.client; }
  Opening Open(const QuicKeys& keys) const {
    return OpenQuicPacket(at.view, keys, packet, session.state.largest[SpaceOf(packet.kind)][session.sender], room, out);
  }
};

// --- Initial packets ---

Opening TryInitialKeys(const Attempt& attempt, const QuicId& original) {
  const uint32_t own = attempt.packet.version;
  const bool isKnown = HasQuicSalt(own);
  Opening how = Opening::kUnavailable;
  for (int32_t i = 0; i < (isKnown ? 1 : kQuicSaltVersionCount); ++i) {
    QuicKeys keys;
    const uint32_t version = isKnown ? own : kQuicSaltVersions[i];
    if (!MakeInitialKeys(attempt.at.view, version, original, attempt.FromClient(), keys)) return Opening::kUnavailable;
    how = attempt.Open(keys);
    if (how == Opening::kOpened) break;
  }
  return how;
}

Opening OpenInitial(const Attempt& attempt, const Field& destination) {
  QuicSession& session = attempt.session;
  Opening how = TryInitialKeys(attempt, session.state.original);
  if (how == Opening::kWrong && attempt.FromClient()) {
    const QuicId own = QuicIdOf(destination);
    if (!IsSame(own, session.state.original)) {
      how = TryInitialKeys(attempt, own);
      if (how == Opening::kOpened) BeginAnew(session, own);
    }
  }
  return how;
}

}  // namespace

Opening OpenWithKnownKeys(const Place& at, const QuicPacket& packet, QuicSession& session, const Field& destination,
                          uint8_t* room, QuicOpened& out) {
  if (!room) return Opening::kUnavailable;
  const Attempt attempt{at, packet, session, room, out};
  if (packet.kind != QuicKind::kInitial) return Opening::kUnavailable;
  const Opening how = OpenInitial(attempt, destination);
  if (how == Opening::kOpened) NoteNumber(packet, session, out);
  return how;
}

}  // namespace qxview
