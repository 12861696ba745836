// Secrets of connections, as key logs and captures told them.
#include "core/tls_secrets.h"

#include <cstring>

#include "decoders/states.h"

namespace qxview {
namespace {

TlsSecretKey KeyOf(TlsSecretKind kind, const ByteSpan& random) {
  TlsSecretKey key{};
  const int32_t length = random.length < kTlsRandomSize ? random.length : kTlsRandomSize;
  if (length > 0) std::memcpy(key.random, random.data, static_cast<size_t>(length));
  key.kind = static_cast<uint32_t>(kind);
  return key;
}

}  // namespace

void RememberTlsSecret(const View* view, TlsSecretKind kind, const ByteSpan& random, const ByteSpan& secret) {
  TlsSecret value{};
  value.length = static_cast<uint8_t>(secret.length < kMostTlsSecret ? secret.length : kMostTlsSecret);
  if (value.length > 0) std::memcpy(value.bytes, secret.data, value.length);
  Remember(view, kTlsSecrets, KeyOf(kind, random), value);
}

TlsSecret RecallTlsSecret(const View* view, TlsSecretKind kind, const ByteSpan& random) {
  const TlsSecret* secret = Recall(view, kTlsSecrets, KeyOf(kind, random));
  return secret ? *secret : TlsSecret{};
}

}  // namespace qxview
