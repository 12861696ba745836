// Opens the records of DTLS 1.3 (RFC 9147, section 4.2). Their headers have the low bits of the epoch alone, and of the number
// as many, hidden under a mask that is made from the encrypted bytes; the header with its number in clear is sealed with them.
#include <cstring>

#include "decoders/tls/tls_opener.h"

namespace qxview {
namespace {

constexpr uint8_t kHandshakeEpoch = 2, kTrafficEpoch = 3;
constexpr int32_t kMostHeader = 1 + 255 + 2 + 2;   // flags, connection identifier, number, length

struct ShortRecord {
  const View* view;
  const TlsSession* session;
  const TlsRecord* record;
  Field body;
  uint8_t* out;
};

struct RecordNumber {
  uint32_t epoch;
  uint64_t sequence;
};

// The number that is nearest to the one that is next.
uint64_t WholeNumber(uint64_t next, uint64_t low, int32_t bits) {
  const uint64_t window = uint64_t{1} << bits, half = window / 2;
  const uint64_t number = (next & ~(window - 1)) | low;
  if (number + half <= next) return number + window;
  return number > next + half && number >= window ? number - window : number;
}

// Uncovers the number in the header's copy. False when there are too few bytes to make the mask from.
bool UncoverNumber(const ShortRecord& from, const TlsCiphers& ciphers, const TlsOpener& opener,
                   uint8_t (&header)[kMostHeader], uint64_t* number) {
  constexpr int32_t kSample = 16;
  constexpr uint32_t kLongNumber = 0x08, kHasLength = 0x04;
  const Field& whole = from.record->header;
  const uint32_t flags = PeekU8(whole);
  const int32_t size = flags & kLongNumber ? 2 : 1;
  const int32_t at = whole.length - (flags & kHasLength ? 2 : 0) - size;
  const Field sample = Slice(from.body, 0, kSample);
  if (at < 1 || whole.length > kMostHeader || !sample.here || sample.length < kSample) return false;
  const Cipher cipher = ciphers.cipher == Cipher::kChaCha20Poly1305 ? Cipher::kChaCha20
                        : ciphers.keySize == kMostKey               ? Cipher::kAes256Ecb
                                                                    : Cipher::kAes128Ecb;
  uint8_t key[kMostKey], mask[16];
  if (!HkdfExpandLabel(from.view, ciphers.hash, {opener.keys.code, opener.keys.secretSize}, "dtls13sn", {}, key,
                       ciphers.keySize) ||
      !MakeMask(from.view, cipher, key, sample.bytes, mask)) {
    return false;
  }
  std::memcpy(header, whole.bytes, static_cast<size_t>(whole.length));
  uint64_t low = 0;
  for (int32_t i = 0; i < size; ++i) {
    header[at + i] ^= mask[i];
    low = low << 8 | header[at + i];
  }
  *number = WholeNumber(opener.sequence, low, 8 * size);
  return true;
}

bool Try(const ShortRecord& from, TlsOpener& opener, RecordNumber* used) {
  const TlsCiphers ciphers = CiphersOf(opener.suite, opener.version);
  uint8_t header[kMostHeader];
  uint64_t number;
  if (ciphers.protection != TlsProtection::kSealed || !UncoverNumber(from, ciphers, opener, header, &number)) return false;
  if (from.body.length < FormOf(ciphers.cipher).tagSize) return false;
  const ByteSpan over = {header, from.record->header.length};
  // In drafts the epoch is part of the number, as it is in version 1.2.
  for (const uint64_t counted : {number, number | uint64_t{opener.epoch} << 48}) {
    uint8_t nonce[kNonceSize];
    std::memcpy(nonce, opener.keys.nonce, sizeof nonce);
    for (int32_t i = 0; i < 8; ++i) nonce[4 + i] ^= static_cast<uint8_t>(counted >> 8 * (7 - i));
    if (OpenSealed(from.view, ciphers.cipher, opener.keys.key, nonce, over, BytesOf(from.body), from.out) !=
        Opening::kOpened) {
      continue;
    }
    if (number >= opener.sequence) opener.sequence = number + 1;
    *used = {opener.epoch, number};
    return true;
  }
  return false;
}

// An epoch whose secret the key log told.
bool StartEpoch(const ShortRecord& from, uint8_t epoch, TlsOpener* opener) {
  const TlsConnection& connection = from.session->connection;
  using enum TlsSecretKind;
  const bool ofClient = from.session->fromClient;
  const TlsSecretKind kind = epoch < kHandshakeEpoch    ? kClientEarly
                             : epoch == kHandshakeEpoch ? (ofClient ? kClientHandshake : kServerHandshake)
                                                        : (ofClient ? kClientTraffic : kServerTraffic);
  *opener = TlsOpener{};
  opener->suite = connection.cipherSuite;
  opener->version = connection.version;
  opener->epoch = epoch;
  MarkTlsHello(connection, opener);
  const TlsSecret secret = RecallTlsSecret(from.view, kind, {connection.clientRandom, kTlsRandomSize});
  opener->stage = 1;
  return secret.length > 0 && DeriveTrafficKeys(from.view, secret, CiphersOf(opener->suite, opener->version), &opener->keys);
}

// The epoch that is in use, the one behind it, or one that records are late of: its keys are made anew.
bool TryEpochs(const ShortRecord& from, TlsOpener& opener, RecordNumber* number) {
  const uint8_t low = from.record->epoch & 3;
  const bool isNew = opener.stage == 0 || !IsOfTlsHello(from.session->connection, opener);
  if (!isNew && (opener.epoch & 3) == low && Try(from, opener, number)) return true;
  TlsOpener other = opener;
  if (!isNew && opener.epoch >= kTrafficEpoch && ((opener.epoch + 1) & 3) == low) {
    other.sequence = 0;
    ++other.epoch;
    if (UpdateTrafficKeys(from.view, CiphersOf(opener.suite, opener.version), &other.keys) && Try(from, other, number)) {
      opener = other;
      return true;
    }
  }
  const bool mayStart = low != 0 && (low != 1 || from.session->fromClient);
  if (!mayStart || !StartEpoch(from, low, &other) || !Try(from, other, number)) return false;
  if (isNew || opener.epoch < low) opener = other;
  return true;
}

}  // namespace

TlsOpening OpenDtls13Record(const View* view, const TlsSession& session, const TlsRecord& record, const Cursor& body,
                            TlsOpener& opener, uint8_t* out, TlsOpened* opened) {
  if (!record.isWhole) return TlsOpening::kCut;
  const ShortRecord from{view, &session, &record, PeekBytes(body, 0, Left(body)), out};
  const TlsCiphers ciphers = CiphersOf(session.connection.cipherSuite, session.connection.version);
  RecordNumber used{};
  if (!TryEpochs(from, opener, &used)) return TlsOpening::kFailed;
  opened->epoch = used.epoch;
  opened->sequence = used.sequence;
  TakeTlsInner(out, from.body.offset, from.body.length - FormOf(ciphers.cipher).tagSize, opened);
  return TlsOpening::kOpened;
}

}  // namespace qxview
