#include "decoders/tls/tls_opener.h"

#include <cstring>

namespace qxview {
namespace {

enum TlsStage : uint8_t { kNoKeys, kEarly, kHandshake, kTraffic, kUntil12 };

constexpr int32_t kExplicitNonceSize = 8, kHelloPart = 8;
constexpr int32_t kTruncatedCodeSize = 10;
constexpr uint64_t kKeptVectors = 4;

struct Attempt {
  const View* view;
  const TlsSession* session;
  const TlsRecord* record;
  Field body;
  uint8_t* out;
  int32_t first, length;   // of what was opened, in the body's bytes
};

bool Is13(uint32_t version) { return version == kTls13 || version == kDtls13; }

// Whether the record's type is inside, behind its content.
bool HidesType(const Attempt& attempt, const TlsOpener& opener) {
  return Is13(opener.version) || attempt.record->type == kTlsWithConnectionId;
}

void PutNumber(uint8_t* out, uint64_t number, int32_t size) {
  for (int32_t i = 0; i < size; ++i) out[i] = static_cast<uint8_t>(number >> 8 * (size - 1 - i));
}

constexpr int32_t kMostAdditional = 8 + 1 + 1 + 1 + 2 + 8 + 255 + 2;

// What a tag or a code is over besides the bytes: the record's number, type, version and length; with a connection
// identifier the form of RFC 9146, section 5.
int32_t MakeAdditional(const Attempt& attempt, uint64_t sequence, int32_t length, uint8_t (&out)[kMostAdditional]) {
  const TlsRecord& record = *attempt.record;
  int32_t used = 0;
  const auto put = [&](uint64_t number, int32_t size) {
    PutNumber(out + used, number, size);
    used += size;
  };
  if (record.type == kTlsWithConnectionId) {
    constexpr int32_t kPlainHeader = 13;
    const Field id = Slice(record.header, kPlainHeader - 2, record.header.length - kPlainHeader);
    put(UINT64_MAX, 8);
    put(kTlsWithConnectionId, 1);
    put(static_cast<uint64_t>(id.length), 1);
    put(kTlsWithConnectionId, 1);
    put(record.version, 2);
    put(sequence, 8);
    if (id.here && id.bytes && id.length < 256) {
      std::memcpy(out + used, id.bytes, static_cast<size_t>(id.length));
      used += id.length;
    }
  } else {
    put(sequence, 8);
    put(record.type, 1);
    put(record.version, 2);
  }
  put(static_cast<uint64_t>(length), 2);
  return used;
}

bool TrySealed(Attempt& attempt, const TlsCiphers& ciphers, const TlsOpener& opener, uint64_t sequence) {
  const bool isExplicit = ciphers.fixedNonceSize < kNonceSize;
  const int32_t tagSize = FormOf(ciphers.cipher).tagSize;
  attempt.first = isExplicit ? kExplicitNonceSize : 0;
  attempt.length = attempt.body.length - attempt.first - tagSize;
  if (attempt.length < 0) return false;
  uint8_t nonce[kNonceSize] = {}, additional[kMostAdditional];
  std::memcpy(nonce, opener.keys.nonce, static_cast<size_t>(ciphers.fixedNonceSize));
  for (int32_t i = 0; i < 8; ++i) {
    if (isExplicit) nonce[4 + i] = static_cast<uint8_t>(PeekU8(attempt.body, i));
    else nonce[4 + i] ^= static_cast<uint8_t>(sequence >> 8 * (7 - i));
  }
  ByteSpan over = BytesOf(attempt.record->header);
  if (!Is13(opener.version)) over = {additional, MakeAdditional(attempt, sequence, attempt.length, additional)};
  const Field sealed = Slice(attempt.body, attempt.first, attempt.length + tagSize);
  return OpenSealed(attempt.view, ciphers.cipher, opener.keys.key, nonce, over, BytesOf(sealed),
                    attempt.out + attempt.first) == Opening::kOpened;
}

// Whether the authentication code over `bytes`, which stands at `code`, is the one that it should be.
bool CodeHolds(const Attempt& attempt, const TlsCiphers& ciphers, const TlsOpener& opener, uint64_t sequence,
               const ByteSpan& bytes, const uint8_t* code, int32_t codeSize) {
  uint8_t additional[kMostAdditional], made[kMostHash];
  const int32_t used = MakeAdditional(attempt, sequence, bytes.length, additional);
  return HmacOf(attempt.view, ciphers.code, {opener.keys.code, ciphers.codeSize}, {{additional, used}, bytes}, made) &&
         std::memcmp(made, code, static_cast<size_t>(codeSize)) == 0;
}

int32_t CodeSizeOf(const Attempt& attempt, const TlsCiphers& ciphers) {
  return attempt.session->connection.negotiated & kTlsTruncatedHmac ? kTruncatedCodeSize : ciphers.codeSize;
}

// A code behind the content, and nothing else: RC4 and no cipher at all.
bool EndsInCode(Attempt& attempt, const TlsCiphers& ciphers, const TlsOpener& opener, uint64_t sequence) {
  const int32_t codeSize = CodeSizeOf(attempt, ciphers);
  attempt.first = 0;
  attempt.length = attempt.body.length - codeSize;
  return attempt.length >= 0 && CodeHolds(attempt, ciphers, opener, sequence, {attempt.out, attempt.length},
                                          attempt.out + attempt.length, codeSize);
}

// The bytes in front of the padding, whose octets all say its length; -1 where they do not.
int32_t WithoutPadding(const uint8_t* bytes, int32_t length) {
  const int32_t padding = bytes[length - 1];
  if (padding + 1 > length) return -1;
  for (int32_t i = 1; i <= padding; ++i) {
    if (bytes[length - 1 - i] != padding) return -1;
  }
  return length - 1 - padding;
}

bool TryChained(Attempt& attempt, const TlsCiphers& ciphers, const TlsOpener& opener, uint64_t sequence) {
  const int32_t blockSize = FormOf(ciphers.cipher).blockSize, codeSize = CodeSizeOf(attempt, ciphers);
  const bool isExplicit = opener.version != kTls10;
  const bool codeIsOutside = attempt.session->connection.negotiated & kTlsEncryptThenMac;
  const int32_t encrypted = attempt.body.length - (codeIsOutside ? codeSize : 0);
  attempt.first = isExplicit ? blockSize : 0;
  if (encrypted - attempt.first < blockSize) return false;
  const Field blocks = Slice(attempt.body, attempt.first, encrypted - attempt.first);
  const uint8_t* vector = isExplicit ? BytesOf(attempt.body).data : opener.keys.nonce;
  uint8_t* const out = attempt.out + attempt.first;
  if (OpenChained(attempt.view, ciphers.cipher, opener.keys.key, vector, BytesOf(blocks), out) != Opening::kOpened) return false;
  const int32_t length = WithoutPadding(out, blocks.length);
  if (codeIsOutside) {
    attempt.length = length;
    const Field code = Slice(attempt.body, encrypted, codeSize);
    return length >= 0 && CodeHolds(attempt, ciphers, opener, sequence, BytesOf(Slice(attempt.body, 0, encrypted)),
                                    BytesOf(code).data, codeSize);
  }
  attempt.length = length - codeSize;
  return attempt.length >= 0 &&
         CodeHolds(attempt, ciphers, opener, sequence, {out, attempt.length}, out + attempt.length, codeSize);
}

bool Try(Attempt& attempt, const TlsOpener& opener, uint64_t sequence) {
  const TlsCiphers ciphers = CiphersOf(opener.suite, opener.version);
  switch (ciphers.protection) {
    case TlsProtection::kSealed: return TrySealed(attempt, ciphers, opener, sequence);
    case TlsProtection::kChained: return TryChained(attempt, ciphers, opener, sequence);
    case TlsProtection::kStream: {
      Rc4 stream = opener.stream;
      stream.Open(BytesOf(attempt.body), attempt.out);
      return EndsInCode(attempt, ciphers, opener, sequence);
    }
    case TlsProtection::kNone:
      std::memcpy(attempt.out, BytesOf(attempt.body).data, static_cast<size_t>(attempt.body.length));
      return EndsInCode(attempt, ciphers, opener, sequence);
    default: return false;
  }
}

// The number that the record must have, as far as it says one.
uint64_t NumberOf(const TlsRecord& record, const TlsOpener& opener) {
  return record.isDatagram ? uint64_t{record.epoch} << 48 | record.sequence : opener.sequence;
}

TlsSecretKind SecretOf(uint8_t stage, bool fromClient) {
  if (stage == kEarly) return TlsSecretKind::kClientEarly;
  if (stage == kHandshake) return fromClient ? TlsSecretKind::kClientHandshake : TlsSecretKind::kServerHandshake;
  return fromClient ? TlsSecretKind::kClientTraffic : TlsSecretKind::kServerTraffic;
}

// The opener of a stage whose first record this may be.
bool StartStage(const Attempt& attempt, uint8_t stage, uint32_t suite, uint32_t version, TlsOpener* opener) {
  const TlsSession& session = *attempt.session;
  *opener = TlsOpener{};
  opener->stage = stage;
  opener->suite = static_cast<uint16_t>(suite);
  opener->version = static_cast<uint16_t>(version);
  MarkTlsHello(session.connection, opener);
  const TlsCiphers ciphers = CiphersOf(suite, version);
  if (stage == kUntil12) {
    if (!DeriveKeys(attempt.view, session.connection, ciphers, session.fromClient, &opener->keys)) return false;
    if (ciphers.protection == TlsProtection::kStream) opener->stream.Start({opener->keys.key, ciphers.keySize});
    return true;
  }
  const TlsSecret secret = RecallTlsSecret(attempt.view, SecretOf(stage, session.fromClient),
                                           {session.connection.clientRandom, kTlsRandomSize});
  return secret.length > 0 && DeriveTrafficKeys(attempt.view, secret, ciphers, &opener->keys);
}

// The stages that may begin with this record. True with `opener` as the one that opened it.
bool TryStages(Attempt& attempt, TlsOpener& opener) {
  constexpr uint16_t kSuites13[] = {0x1301, 0x1302, 0x1303, 0x1304, 0x1305};
  const TlsSession& session = *attempt.session;
  const TlsConnection& connection = session.connection;
  const bool isNew = opener.stage == kNoKeys || !IsOfTlsHello(connection, opener);
  const auto starts = [&](uint8_t stage, uint32_t suite, uint32_t version) {
    TlsOpener next;
    if (!StartStage(attempt, stage, suite, version, &next) || !Try(attempt, next, NumberOf(*attempt.record, next))) return false;
    opener = next;
    return true;
  };
  if (!attempt.record->isDatagram && session.fromClient && (isNew || opener.stage == kEarly)) {
    // Data before the server's hello are under a suite of an earlier connection.
    if (RecallTlsSecret(attempt.view, TlsSecretKind::kClientEarly, {connection.clientRandom, kTlsRandomSize}).length > 0) {
      for (const uint16_t suite : kSuites13) {
        if (isNew && starts(kEarly, suite, kTls13)) return true;
      }
    }
  }
  if (!Is13(connection.version)) return isNew && connection.version && starts(kUntil12, connection.cipherSuite, connection.version);
  const uint8_t first = isNew ? uint8_t{kHandshake} : static_cast<uint8_t>(opener.stage + 1);
  for (uint8_t stage = first; stage <= kTraffic; ++stage) {
    if (starts(stage, connection.cipherSuite, connection.version)) return true;
  }
  if (isNew || opener.stage != kTraffic) return false;
  TlsOpener next = opener;
  next.sequence = 0;
  const bool updated = UpdateTrafficKeys(attempt.view, CiphersOf(opener.suite, opener.version), &next.keys) &&
                       Try(attempt, next, NumberOf(*attempt.record, next));
  if (updated) opener = next;
  return updated;
}

// Whether a record is begun by the last block of the one before it.
bool IsChain(const TlsCiphers& ciphers, const TlsOpener& opener) {
  return ciphers.protection == TlsProtection::kChained && opener.version == kTls10;
}

// Another number than the one that is next: of a segment that comes again, or behind one that is missing.
bool TrySearch(Attempt& attempt, const TlsOpener& opener, uint64_t* sequence) {
  const TlsCiphers ciphers = CiphersOf(opener.suite, opener.version);
  const bool isStream = ciphers.protection == TlsProtection::kStream;   // whose bytes are gone
  const bool isChain = IsChain(ciphers, opener);
  if (attempt.record->isDatagram || isStream || opener.stage == kNoKeys || opener.failures > kMostSealedFailures) return false;
  for (uint64_t step = 1; step <= kMostSealedNumbers; ++step) {
    *sequence = opener.sequence + step;
    if (Try(attempt, opener, *sequence)) return true;
    *sequence = opener.sequence - step;
    if (step > opener.sequence || (isChain && step > kKeptVectors)) continue;
    TlsOpener earlier = opener;
    if (isChain) std::memcpy(earlier.keys.nonce, opener.vectors[*sequence % kKeptVectors], sizeof opener.vectors[0]);
    if (Try(attempt, earlier, *sequence)) return true;
  }
  return false;
}

bool IsOpenable(uint32_t suite, uint32_t version) { return CiphersOf(suite, version).protection != TlsProtection::kUnknown; }

// What goes on in the record behind this one: the last block, the stream of key bytes, the number.
void GoOn(const Attempt& attempt, TlsOpener& opener, uint64_t sequence, bool opened, int32_t length) {
  const TlsCiphers ciphers = CiphersOf(opener.suite, opener.version);
  if (opened && !attempt.record->isDatagram && sequence < opener.sequence) return;   // it was seen before
  if (ciphers.protection == TlsProtection::kStream) opener.stream.Open({nullptr, length}, nullptr);
  const int32_t blockSize = FormOf(ciphers.cipher).blockSize;
  if (IsChain(ciphers, opener) && attempt.body.length >= blockSize) {
    std::memcpy(opener.vectors[sequence % kKeptVectors], opener.keys.nonce, sizeof opener.vectors[0]);
    const int32_t outside = attempt.session->connection.negotiated & kTlsEncryptThenMac ? CodeSizeOf(attempt, ciphers) : 0;
    const Field last = Slice(attempt.body, attempt.body.length - outside - blockSize, blockSize);
    if (last.here) std::memcpy(opener.keys.nonce, last.bytes, static_cast<size_t>(blockSize));
  }
  if (!attempt.record->isDatagram) opener.sequence = sequence + 1;
}

}  // namespace

void MarkTlsHello(const TlsConnection& connection, TlsOpener* opener) {
  std::memcpy(opener->hello, connection.clientRandom, kHelloPart);
  std::memcpy(opener->hello + kHelloPart, connection.serverRandom, kHelloPart);
}

bool IsOfTlsHello(const TlsConnection& connection, const TlsOpener& opener) {
  return std::memcmp(opener.hello, connection.clientRandom, kHelloPart) == 0 &&
         std::memcmp(opener.hello + kHelloPart, connection.serverRandom, kHelloPart) == 0;
}

// The content in front of its type and the zeros that pad it.
void TakeTlsInner(const uint8_t* content, int32_t offset, int32_t length, TlsOpened* opened) {
  int32_t end = length;
  while (end > 0 && content[end - 1] == 0) --end;
  opened->padding = {content + end, offset + end, length - end, 0, length > end};
  if (end > 0) --end;
  Cursor type = MakeCursor(content + end, offset + end, length - end);
  opened->innerType = TakeU8(type);
  opened->type = opened->innerType.value;
  opened->content = MakeCursor(content, offset, end);
}

bool HasTlsSecrets(const View* view, const TlsSession& session) {
  const ByteSpan random = {session.connection.clientRandom, kTlsRandomSize};
  const auto has = [&](TlsSecretKind kind) { return RecallTlsSecret(view, kind, random).length > 0; };
  if (!session.connection.hasClientRandom) return false;
  return has(TlsSecretKind::kMaster) || has(SecretOf(kHandshake, session.fromClient)) ||
         has(SecretOf(kTraffic, session.fromClient)) || has(TlsSecretKind::kPremaster) ||
         (session.fromClient && has(TlsSecretKind::kClientEarly));
}

TlsOpening OpenTlsRecord(const View* view, const TlsSession& session, const TlsRecord& record, const Cursor& body,
                         TlsOpener& opener, uint8_t* out, TlsOpened* opened) {
  const TlsConnection& connection = session.connection;
  if (opener.stage == kNoKeys && connection.version && !IsOpenable(connection.cipherSuite, connection.version)) {
    return TlsOpening::kUnsupported;
  }
  if (record.isShort) return OpenDtls13Record(view, session, record, body, opener, out, opened);
  Attempt attempt{view, &session, &record, PeekBytes(body, 0, Left(body)), out, 0, 0};
  if (!record.isWhole) {
    if (opener.stage != kNoKeys) GoOn(attempt, opener, opener.sequence, false, static_cast<int32_t>(record.length));
    return TlsOpening::kCut;
  }
  uint64_t sequence = NumberOf(record, opener);
  bool good = opener.stage != kNoKeys && Try(attempt, opener, sequence);
  if (!good && TryStages(attempt, opener)) {
    good = true;
    sequence = NumberOf(record, opener);
  }
  good = good || TrySearch(attempt, opener, &sequence);
  if (!good) {
    if (opener.failures < UINT8_MAX) ++opener.failures;
    if (opener.stage != kNoKeys) GoOn(attempt, opener, opener.sequence, false, attempt.body.length);
    return TlsOpening::kFailed;
  }
  opener.failures = 0;
  opened->sequence = sequence;
  opened->type = record.type;
  opened->innerType = opened->padding = Field{};
  opened->content = MakeCursor(out + attempt.first, attempt.body.offset + attempt.first, attempt.length);
  if (HidesType(attempt, opener)) {
    TakeTlsInner(out + attempt.first, attempt.body.offset + attempt.first, attempt.length, opened);
  }
  GoOn(attempt, opener, sequence, true, attempt.body.length);
  return TlsOpening::kOpened;
}

}  // namespace qxview
