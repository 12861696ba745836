#include "decoders/quic/quic_secrets.h"

#include <cstring>

#include "decoders/states.h"
#include "decoders/tls/tls_ciphers.h"

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

bool RecallInitialKeys(const View* view, uint32_t version, const QuicId& original, bool fromClient, QuicKeys& out) {
  QuicInitialKey key{};
  key.version = version;
  key.fromClient = fromClient;
  key.original.length = original.length;
  std::memcpy(key.original.octets, original.octets, original.length);
  if (const QuicKeys* known = Recall(view, kQuicInitialKeys, key)) return out = *known, true;
  if (!MakeInitialKeys(view, version, original, fromClient, out)) return false;
  Remember(view, kQuicInitialKeys, key, out);
  return true;
}

Opening TryInitialKeys(const Attempt& attempt, const QuicId& original) {
  const uint32_t own = attempt.packet.version;
  const bool isKnown = HasQuicSalt(own);
  Opening how = Opening::kUnavailable;
  for (int32_t i = 0; i < (isKnown ? 1 : kQuicSaltVersionCount); ++i) {
    QuicKeys keys{};
    const uint32_t version = isKnown ? own : kQuicSaltVersions[i];
    if (!RecallInitialKeys(attempt.at.view, version, original, attempt.FromClient(), keys)) return Opening::kUnavailable;
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

// --- by a key log ---

// The suites that QUIC has (RFC 9001, section 5.3).
constexpr uint16_t kSuites[] = {0x1301, 0x1302, 0x1303, 0x1304};

TlsSecret SecretOf(const Attempt& attempt) {
  const bool ofClient = attempt.FromClient();
  TlsSecretKind kind = ofClient ? TlsSecretKind::kClientTraffic : TlsSecretKind::kServerTraffic;
  if (attempt.packet.kind == QuicKind::kZeroRtt) kind = TlsSecretKind::kClientEarly;
  if (attempt.packet.kind == QuicKind::kHandshake) {
    kind = ofClient ? TlsSecretKind::kClientHandshake : TlsSecretKind::kServerHandshake;
  }
  return RecallTlsSecret(attempt.at.view, kind, {attempt.session.state.clientRandom, kTlsRandomSize});
}

// The keys that stay: of 0-RTT and Handshake packets.
Opening TrySecret(const Attempt& attempt, const TlsCiphers& ciphers, const TlsSecret& secret) {
  QuicKeys keys;
  const bool isMade = MakeQuicKeys(attempt.at.view, attempt.packet.version, ciphers.hash, ciphers.cipher, BytesOf(secret), keys);
  return isMade ? attempt.Open(keys) : Opening::kUnavailable;
}

// A secret of 1-RTT packets with the keys that follow from it, and the phase that such packets say. The key of the header
// protection is never renewed.
struct Generation {
  uint8_t secret[kMostQuicSecret];
  uint8_t length, phase;
  QuicKeys keys;
};

bool MakeKeys(const Attempt& attempt, const TlsCiphers& ciphers, Generation& of) {
  uint8_t headerKey[kMostKey];
  std::memcpy(headerKey, of.keys.headerKey, sizeof headerKey);
  if (!MakeQuicKeys(attempt.at.view, attempt.packet.version, ciphers.hash, ciphers.cipher, {of.secret, of.length}, of.keys)) {
    return false;
  }
  std::memcpy(of.keys.headerKey, headerKey, sizeof headerKey);
  return true;
}

// Tries a secret, and those that its next updates make, as far as the packet's phase fits. `from` ends with the last.
Opening TryGenerations(const Attempt& attempt, const TlsCiphers& ciphers, int32_t updates, Generation& from,
                       uint8_t* before) {
  constexpr uint32_t kPhaseShift = 2;
  Opening how = Opening::kWrong;
  for (int32_t i = 0;; ++i) {
    const uint32_t said = attempt.out.first >> kPhaseShift & 1;
    if (i == 0 || said == from.phase) {
      if (!MakeKeys(attempt, ciphers, from)) return Opening::kUnavailable;
      how = attempt.Open(from.keys);
    }
    if (how != Opening::kWrong || i == updates) return how;
    std::memcpy(before, from.secret, sizeof from.secret);
    const ByteSpan old{before, from.length};
    if (!UpdateQuicSecret(attempt.at.view, attempt.packet.version, ciphers.hash, old, from.secret)) return Opening::kUnavailable;
    from.phase ^= 1;
  }
}

// The ends renew their keys as they like (RFC 9001, section 6); packets of the keys before may come late, and those of a
// whole phase may be missing.
Opening TryTraffic(const Attempt& attempt, const TlsCiphers& ciphers, const TlsSecret& secret) {
  constexpr int32_t kMostUpdates = 3;
  QuicTrafficKey key{attempt.session.key, {}, static_cast<uint64_t>(attempt.session.sender | attempt.session.state.attempt << 8)};
  std::memcpy(key.clientRandom, attempt.session.state.clientRandom, sizeof key.clientRandom);
  const QuicTraffic* known = Recall(attempt.at.view, kQuicTraffic, key);
  QuicTraffic traffic = known ? *known : QuicTraffic{};
  Generation first{};
  first.length = secret.length;
  std::memcpy(first.secret, secret.bytes, secret.length);
  if (!MakeQuicKeys(attempt.at.view, attempt.packet.version, ciphers.hash, ciphers.cipher, BytesOf(secret), first.keys)) {
    return Opening::kUnavailable;
  }
  uint8_t before[kMostQuicSecret];
  Generation now = first;
  if (traffic.length == secret.length) {
    std::memcpy(now.secret, traffic.current, sizeof now.secret);
    now.phase = traffic.phase;
  }
  const uint8_t phase = now.phase;
  std::memcpy(before, now.secret, sizeof before);
  Opening how = TryGenerations(attempt, ciphers, kMostUpdates, now, before);
  const bool isRenewed = std::memcmp(traffic.current, now.secret, sizeof now.secret) != 0;
  if (how == Opening::kOpened && (traffic.length == 0 || isRenewed)) {
    traffic.length = secret.length;
    traffic.phase = now.phase;
    std::memcpy(traffic.previous, before, sizeof before);
    std::memcpy(traffic.current, now.secret, sizeof now.secret);
    if (!PacketOf(attempt.at).quoted) Remember(attempt.at.view, kQuicTraffic, key, traffic);
  }
  if (how != Opening::kWrong || traffic.length == 0) return how;
  Generation old = first;
  std::memcpy(old.secret, traffic.previous, sizeof old.secret);
  old.phase = phase ^ 1;
  how = TryGenerations(attempt, ciphers, 0, old, before);
  return how == Opening::kWrong ? TryGenerations(attempt, ciphers, kMostUpdates, first, before) : how;
}

// The server's choice of a suite; before it is known, and for 0-RTT packets, which may be of another, what the secret is
// long enough for.
Opening OpenByKeyLog(const Attempt& attempt) {
  QuicConnection& state = attempt.session.state;
  const TlsSecret secret = SecretOf(attempt);
  if (secret.length == 0 || secret.length > kMostQuicSecret) return Opening::kUnavailable;
  const bool isEarly = attempt.packet.kind == QuicKind::kZeroRtt;
  Opening how = Opening::kUnavailable;
  for (const uint16_t suite : kSuites) {
    const TlsCiphers ciphers = CiphersOf(suite, kTls13);
    if (HashSize(ciphers.hash) != secret.length || (!isEarly && state.cipherSuite && state.cipherSuite != suite)) continue;
    how = attempt.packet.kind == QuicKind::kOneRtt ? TryTraffic(attempt, ciphers, secret) : TrySecret(attempt, ciphers, secret);
    if (how == Opening::kUnavailable) break;
    if (how != Opening::kOpened) continue;
    if (!isEarly && state.cipherSuite != suite) {
      state.cipherSuite = suite;
      attempt.session.changed = true;
    }
    break;
  }
  return how;
}

}  // namespace

Opening OpenWithKnownKeys(const Place& at, const QuicPacket& packet, QuicSession& session, const Field& destination,
                          uint8_t* room, QuicOpened& out) {
  if (!room) return Opening::kUnavailable;
  const Attempt attempt{at, packet, session, room, out};
  const Opening how = packet.kind == QuicKind::kInitial ? OpenInitial(attempt, destination) : OpenByKeyLog(attempt);
  if (how == Opening::kOpened) NoteNumber(packet, session, out);
  return how;
}

}  // namespace qxview
