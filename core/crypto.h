// Cryptography for decoders whose user has the keys. MD5, SHA-256 and what rests on them alone is the program's own; the
// rest is OpenSSL's, whose library is looked for when something is first asked of it. Without it, and without memory,
// functions give false and decoders say that the bytes are encrypted.
//
// Contexts are made once for an engine and used again, so that decoding allocates nothing on top of their first use. What
// is opened stands in a buffer of the engine's for as long as an OpenedBytes lives.
#pragma once
#include <cstdint>
#include <initializer_list>

#include "core/budgets.h"
#include "core/cursor.h"
#include "core/digest.h"

namespace qxview {

struct Engine;
struct View;

inline ByteSpan BytesOf(const Field& field) { return {field.bytes, field.bytes ? field.length : 0}; }

enum class HashKind : uint8_t { kMd5, kSha1, kSha256, kSha384, kSha512, kCount };
constexpr int32_t kMostHash = 64;
int32_t HashSize(HashKind kind);

// The digest of the parts behind one another. `out` takes HashSize bytes.
bool HashOf(const View* view, HashKind kind, std::initializer_list<ByteSpan> parts, uint8_t* out);
// RFC 2104.
bool HmacOf(const View* view, HashKind kind, const ByteSpan& key, std::initializer_list<ByteSpan> parts, uint8_t* out);
// RFC 5869 without its info.
bool HkdfExtract(const View* view, HashKind kind, const ByteSpan& salt, const ByteSpan& secret, uint8_t* out);
// A secret that several keys come from: what their digests begin with is worked out once. The secret's bytes must stay.
class HkdfSecret {
 public:
  HkdfSecret(const View* view, HashKind kind, const ByteSpan& secret);
  bool ExpandLabel(const char* label, const ByteSpan& context, uint8_t* out, int32_t length) const;

 private:
  bool Hmac(std::initializer_list<ByteSpan> parts, uint8_t* out) const;

  const View* view_;
  HashKind kind_;
  ByteSpan secret_;
  bool isBegun_ = false;
  Sha256 inner_{}, outer_{};
};
// RFC 8446, section 7.1: `label` with its prefix, as "tls13 key" or "dtls13key".
bool HkdfExpandLabel(const View* view, HashKind kind, const ByteSpan& secret, const char* label, const ByteSpan& context,
                     uint8_t* out, int32_t length);
// The pseudo-random function of TLS 1.2 (RFC 5246, section 5) with the given hash; with kMd5 that of TLS 1.0 and 1.1.
bool TlsPrf(const View* view, HashKind kind, const ByteSpan& secret, const char* label,
            std::initializer_list<ByteSpan> seed, uint8_t* out, int32_t length);

enum class Cipher : uint8_t {
  kNone,
  // Authenticated: OpenSealed.
  kAes128Gcm, kAes256Gcm, kAes128Ccm, kAes256Ccm, kAes128Ccm8, kAes256Ccm8, kChaCha20Poly1305, kAria128Gcm, kAria256Gcm,
  // Chained blocks: OpenChained.
  kAes128Cbc, kAes256Cbc, kTripleDesCbc, kDesCbc, kCamellia128Cbc, kCamellia256Cbc, kAria128Cbc, kAria256Cbc, kSeedCbc,
  kIdeaCbc, kAes192Cbc,
  // Masks: MakeMask.
  kAes128Ecb, kAes256Ecb, kChaCha20,
  kCount
};

struct CipherForm {
  int32_t keySize;
  int32_t blockSize;   // of chained ciphers, whose initialisation vector is as long
  int32_t tagSize;     // of authenticated ones, whose nonce has 12 bytes
};
CipherForm FormOf(Cipher cipher);
constexpr int32_t kMostKey = 32, kNonceSize = 12;

enum class Opening : uint8_t { kOpened, kWrong, kUnavailable };

// Opens what an authenticated cipher sealed, the tag at its end, and says whether the tag holds. `out` takes what is
// left of `sealed` without the tag; it is not to be shown unless the tag holds.
Opening OpenSealed(const View* view, Cipher cipher, const uint8_t* key, const uint8_t* nonce, const ByteSpan& additional,
                   const ByteSpan& sealed, uint8_t* out);

// Whole blocks of a chained cipher; the padding stays.
Opening OpenChained(const View* view, Cipher cipher, const uint8_t* key, const uint8_t* vector, const ByteSpan& blocks,
                    uint8_t* out);

// The mask over header fields: AES of the sample, or ChaCha20's key stream by its counter and nonce (RFC 9001, section
// 5.4; RFC 9147, section 4.2.3).
bool MakeMask(const View* view, Cipher cipher, const uint8_t* key, const uint8_t sample[16], uint8_t mask[16]);

// RC4's state: few bytes, so that a connection's may be kept between its records.
struct Rc4 {
  uint8_t i = 0, j = 0;
  uint8_t s[256];

  void Start(const ByteSpan& key);
  void Open(const ByteSpan& bytes, uint8_t* out);   // a null `out`: passes over them
};

// Bytes of the engine's buffer for opened data; the place of those opened last is used again first. Null `data` when
// there is no room.
class OpenedBytes {
 public:
  OpenedBytes(const View* view, int32_t size);
  ~OpenedBytes();
  OpenedBytes(const OpenedBytes&) = delete;
  OpenedBytes& operator=(const OpenedBytes&) = delete;
  uint8_t* data = nullptr;

 private:
  Engine* engine_;
  int32_t size_ = 0;
};

// What an engine keeps for all this; made at the first use.
struct Crypto;
void DestroyCrypto(Engine* engine);

}  // namespace qxview
