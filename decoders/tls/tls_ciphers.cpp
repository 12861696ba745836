#include "decoders/tls/tls_ciphers.h"

#include <cstring>

#include "decoders/tls/tls_names.h"

namespace qxview {
namespace {

struct CipherName {
  const char* name;   // as it stands in names of suites
  TlsProtection protection;
  Cipher cipher;
};
// Longer names stand in front of those that they start with.
constexpr CipherName kCipherNames[] = {
    {"_AES_128_GCM", TlsProtection::kSealed, Cipher::kAes128Gcm},
    {"_AES_256_GCM", TlsProtection::kSealed, Cipher::kAes256Gcm},
    {"_AES_128_CCM_8", TlsProtection::kSealed, Cipher::kAes128Ccm8},
    {"_AES_256_CCM_8", TlsProtection::kSealed, Cipher::kAes256Ccm8},
    {"_AES_128_CCM", TlsProtection::kSealed, Cipher::kAes128Ccm},
    {"_AES_256_CCM", TlsProtection::kSealed, Cipher::kAes256Ccm},
    {"_CHACHA20_POLY1305", TlsProtection::kSealed, Cipher::kChaCha20Poly1305},
    {"_ARIA_128_GCM", TlsProtection::kSealed, Cipher::kAria128Gcm},
    {"_ARIA_256_GCM", TlsProtection::kSealed, Cipher::kAria256Gcm},
    {"_AES_128_CBC", TlsProtection::kChained, Cipher::kAes128Cbc},
    {"_AES_256_CBC", TlsProtection::kChained, Cipher::kAes256Cbc},
    {"_3DES_EDE_CBC", TlsProtection::kChained, Cipher::kTripleDesCbc},
    {"_DES_CBC", TlsProtection::kChained, Cipher::kDesCbc},
    {"_CAMELLIA_128_CBC", TlsProtection::kChained, Cipher::kCamellia128Cbc},
    {"_CAMELLIA_256_CBC", TlsProtection::kChained, Cipher::kCamellia256Cbc},
    {"_ARIA_128_CBC", TlsProtection::kChained, Cipher::kAria128Cbc},
    {"_ARIA_256_CBC", TlsProtection::kChained, Cipher::kAria256Cbc},
    {"_SEED_CBC", TlsProtection::kChained, Cipher::kSeedCbc},
    {"_IDEA_CBC", TlsProtection::kChained, Cipher::kIdeaCbc},
    {"_RC4_128", TlsProtection::kStream, Cipher::kNone},
    {"_WITH_NULL", TlsProtection::kNone, Cipher::kNone},
};
struct HashName {
  const char* name;
  HashKind hash;
};
constexpr HashName kHashNames[] = {{"_SHA512", HashKind::kSha512}, {"_SHA384", HashKind::kSha384},
                                   {"_SHA256", HashKind::kSha256}, {"_SHA", HashKind::kSha1}, {"_MD5", HashKind::kMd5}};

constexpr int32_t kRc4KeySize = 16, kSealedNonceSize = 4, kMostKeyBlock = 2 * (kMostHash + kMostKey + 16);

bool EndsWith(const char* text, const char* end) {
  const size_t length = std::strlen(text), wanted = std::strlen(end);
  return length >= wanted && std::strcmp(text + length - wanted, end) == 0;
}


}  // namespace

TlsCiphers CiphersOf(uint32_t suite, uint32_t version) {
  const char* name = TlsSuiteName(suite);
  TlsCiphers found{TlsProtection::kUnknown, Cipher::kNone, HashKind::kSha1, HashKind::kSha256, 0, 0, 0, version == kDtls13};
  const bool is13 = version == kTls13 || version == kDtls13;
  const bool is12 = version == kTls12 || version == kDtls12;
  if (version == kSsl3 || version == kSsl2 || std::strstr(name, "_EXPORT")) return found;
  for (const CipherName& row : kCipherNames) {
    if (!std::strstr(name, row.name)) continue;
    found.protection = row.protection;
    found.cipher = row.cipher;
    break;
  }
  for (const HashName& row : kHashNames) {
    if (!EndsWith(name, row.name)) continue;
    found.code = row.hash;
    break;
  }
  const CipherForm form = FormOf(found.cipher);
  found.keySize = found.protection == TlsProtection::kStream ? kRc4KeySize : form.keySize;
  // Suites of 1.2 name the hash of its key derivation, older ones and those without a name for it have SHA-256.
  found.hash = !is12 && !is13 ? HashKind::kMd5 : found.code == HashKind::kSha384 ? HashKind::kSha384 : HashKind::kSha256;
  if (found.protection == TlsProtection::kSealed) {
    const bool isWhole = is13 || found.cipher == Cipher::kChaCha20Poly1305;
    found.fixedNonceSize = isWhole ? kNonceSize : kSealedNonceSize;
  } else {
    found.codeSize = HashSize(found.code);
    found.fixedNonceSize = form.blockSize;
  }
  return found;
}

bool DeriveKeys(const View* view, const TlsConnection& connection, const TlsCiphers& ciphers, bool ofClient,
                TlsKeys* keys) {
  const ByteSpan clientRandom = {connection.clientRandom, kTlsRandomSize};
  const ByteSpan serverRandom = {connection.serverRandom, kTlsRandomSize};
  TlsSecret master = RecallTlsSecret(view, TlsSecretKind::kMaster, clientRandom);
  if (master.length == 0 && !(connection.negotiated & kTlsExtendedMasterSecret)) {
    const TlsSecret premaster = RecallTlsSecret(view, TlsSecretKind::kPremaster, clientRandom);
    const bool isMade = premaster.length > 0 && TlsPrf(view, ciphers.hash, BytesOf(premaster), "master secret",
                                                       {clientRandom, serverRandom}, master.bytes, 48);
    if (isMade) master.length = 48;
  }
  if (master.length == 0) return false;
  uint8_t block[kMostKeyBlock];
  const int32_t sizes[] = {ciphers.codeSize, ciphers.keySize, ciphers.fixedNonceSize};
  if (!TlsPrf(view, ciphers.hash, BytesOf(master), "key expansion", {serverRandom, clientRandom}, block,
              2 * (sizes[0] + sizes[1] + sizes[2]))) {
    return false;
  }
  uint8_t* const parts[] = {keys->code, keys->key, keys->nonce};
  const uint8_t* from = block;
  for (int32_t i = 0; i < 3; ++i) {
    std::memcpy(parts[i], from + (ofClient ? 0 : sizes[i]), static_cast<size_t>(sizes[i]));
    from += 2 * sizes[i];
  }
  return true;
}

bool DeriveTrafficKeys(const View* view, const TlsSecret& secret, const TlsCiphers& ciphers, TlsKeys* keys) {
  if (secret.length != HashSize(ciphers.hash)) return false;
  std::memcpy(keys->code, secret.bytes, secret.length);
  keys->secretSize = secret.length;
  const bool isDtls = ciphers.isDtls13;
  return HkdfExpandLabel(view, ciphers.hash, BytesOf(secret), isDtls ? "dtls13key" : "tls13 key", {}, keys->key,
                         ciphers.keySize) &&
         HkdfExpandLabel(view, ciphers.hash, BytesOf(secret), isDtls ? "dtls13iv" : "tls13 iv", {}, keys->nonce, kNonceSize);
}

bool UpdateTrafficKeys(const View* view, const TlsCiphers& ciphers, TlsKeys* keys) {
  TlsSecret next{};
  next.length = keys->secretSize;
  return next.length == HashSize(ciphers.hash) &&
         HkdfExpandLabel(view, ciphers.hash, {keys->code, keys->secretSize},
                         ciphers.isDtls13 ? "dtls13traffic upd" : "tls13 traffic upd", {}, next.bytes, next.length) &&
         DeriveTrafficKeys(view, next, ciphers, keys);
}

}  // namespace qxview
