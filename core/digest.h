// MD5 (RFC 1321) and SHA-256 (FIPS 180-4): what fingerprints and obfuscated bodies are made of, on every machine. All
// other cryptography is in core/crypto.h.
#pragma once
#include <cstdint>

namespace qxview {

struct ByteSpan {
  const uint8_t* data;
  int32_t length;
};

constexpr int32_t kMd5Size = 16, kSha256Size = 32;

// Takes bytes in pieces of any length; Finish gives the digest and ends it.
struct Md5 {
  uint32_t state[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
  uint64_t length = 0;
  uint8_t block[64];

  void Add(const ByteSpan& bytes);
  void Finish(uint8_t out[kMd5Size]);
};

struct Sha256 {
  uint32_t state[8] = {0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A, 0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
  uint64_t length = 0;
  uint8_t block[64];

  void Add(const ByteSpan& bytes);
  void Finish(uint8_t out[kSha256Size]);
};

}  // namespace qxview
