// How QUIC's packets are protected (RFC 9001, 9369): keys from secrets, header protection, payloads. What protects Initial
// packets comes from their connection ID and a salt of the version that everybody knows.
#pragma once
#include "core/crypto.h"
#include "decoders/quic/quic.h"

namespace qxview {

struct QuicKeys {
  Cipher cipher, mask;
  uint8_t key[kMostKey], vector[kNonceSize], headerKey[kMostKey];
};

// What the keys of Initial packets are made of: they are kept for the packets that follow.
struct QuicInitialKey {
  uint32_t version;
  uint8_t fromClient;
  QuicId original;
  uint8_t unused[6];
};

// What a packet says under its protection.
struct QuicOpened {
  uint32_t first;          // its first byte
  int32_t numberLength;
  uint64_t number;
  const uint8_t* payload;  // of `length` bytes
  int32_t length;
};

// The keys of a secret.
bool MakeQuicKeys(const View* view, uint32_t version, HashKind hash, Cipher cipher, const ByteSpan& secret, QuicKeys& out);

// The secret behind an update of keys; `out` is as long as the secret.
bool UpdateQuicSecret(const View* view, uint32_t version, HashKind hash, const ByteSpan& secret, uint8_t* out);

// The keys of Initial packets, from the connection ID that the client chose and the salt of a version.
bool MakeInitialKeys(const View* view, uint32_t version, const QuicId& original, bool fromClient, QuicKeys& out);

// Opens a packet into `room`, which takes what stands behind `numberAt`. `largest` is the space's largest packet number so
// far.
Opening OpenQuicPacket(const View* view, const QuicKeys& keys, const QuicPacket& packet, uint64_t largest, uint8_t* room,
                       QuicOpened& out);

// Whether the tag at a Retry packet's end was made for a client that chose this ID; kUnavailable for versions without one.
Opening CheckRetryTag(const View* view, const QuicPacket& packet, const QuicId& original);

// Versions whose salt is not known may follow any of these.
extern const uint32_t kQuicSaltVersions[];
extern const int32_t kQuicSaltVersionCount;
bool HasQuicSalt(uint32_t version);

}  // namespace qxview
