// The secrets of TLS and QUIC connections, by what tells a connection from others: who reads key logs tells them, decoders
// ask for them. decoders/tls/tls_secrets.cpp keeps them as state between frames.
#pragma once
#include <cstdint>

#include "core/digest.h"

namespace qxview {

struct View;

// In the words of key logs: what a line's secret is of.
enum class TlsSecretKind : uint32_t {
  kMaster,               // CLIENT_RANDOM: of versions before 1.3
  kPremaster,            // PMS_CLIENT_RANDOM
  kClientEarly, kClientHandshake, kServerHandshake, kClientTraffic, kServerTraffic,
  kEncryptedPremaster,   // RSA: the premaster secret, by the first 8 octets of how it is sent
};

constexpr int32_t kTlsRandomSize = 32, kMostTlsSecret = 64;

struct TlsSecretKey {
  uint8_t random[kTlsRandomSize];   // of the client's hello
  uint32_t kind;
  uint32_t unused;
};

struct TlsSecret {
  uint8_t length;   // 0: none is known
  uint8_t bytes[kMostTlsSecret];
};
inline ByteSpan BytesOf(const TlsSecret& secret) { return {secret.bytes, secret.length}; }

// A random of fewer octets stands with zeros behind it; a secret is cut to kMostTlsSecret.
void RememberTlsSecret(const View* view, TlsSecretKind kind, const ByteSpan& random, const ByteSpan& secret);
TlsSecret RecallTlsSecret(const View* view, TlsSecretKind kind, const ByteSpan& random);

}  // namespace qxview
