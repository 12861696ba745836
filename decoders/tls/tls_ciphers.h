// What protects records under a cipher suite, and the keys that follow from a connection's secrets (RFC 5246 6.3,
// RFC 8446 7.3).
#pragma once
#include "core/crypto.h"
#include "core/tls_secrets.h"
#include "decoders/tls/tls.h"

namespace qxview {

enum class TlsProtection : uint8_t {
  kUnknown,   // or one that is not opened here
  kNone,      // a code alone
  kStream,    // RC4 and a code
  kChained,   // blocks and a code
  kSealed,
};

struct TlsCiphers {
  TlsProtection protection;
  Cipher cipher;
  HashKind code;       // of message authentication codes
  HashKind hash;       // that keys are derived with
  int32_t keySize, codeSize, fixedNonceSize;   // bytes
  bool isDtls13;       // whose labels differ
};

// By the suite's name, which says it all but for what the version adds.
TlsCiphers CiphersOf(uint32_t suite, uint32_t version);

// What opens the records of one direction.
struct TlsKeys {
  uint8_t key[kMostKey];
  uint8_t nonce[16];              // its fixed part, or the block before the first
  uint8_t code[kMostHash];        // the key of authentication codes; from 1.3 on the secret that the next keys follow from
  uint8_t secretSize;
};

// The keys until 1.2; false when the secret is not known or the library is not here.
bool DeriveKeys(const View* view, const TlsConnection& connection, const TlsCiphers& ciphers, bool ofClient, TlsKeys* keys);
// The keys that follow from a traffic secret.
bool DeriveTrafficKeys(const View* view, const TlsSecret& secret, const TlsCiphers& ciphers, TlsKeys* keys);
// The keys behind an update of them.
bool UpdateTrafficKeys(const View* view, const TlsCiphers& ciphers, TlsKeys* keys);

}  // namespace qxview
