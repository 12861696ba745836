// QUIC's packet protection (RFC 9001, section 5; RFC 9369, section 3.3): the salts and retry keys of the versions, keys,
// header protection, payloads.
#include "decoders/quic/quic_protection.h"

#include <cstring>

namespace qxview {
namespace {

constexpr int32_t kSaltSize = 20, kRetryKeySize = 16;
constexpr uint32_t kVersion2Draft = 0x709A50C4;

struct Salt {
  uint32_t lastDraft;   // of the drafts that share it
  uint8_t bytes[kSaltSize];
};
constexpr Salt kDraftSalts[] = {
    {20, {0xEF, 0x4F, 0xB0, 0xAB, 0xB4, 0x74, 0x70, 0xC4, 0x1B, 0xEF, 0xCF, 0x80, 0x31, 0x33, 0x4F, 0xAE, 0x48, 0x5E, 0x09, 0xA0}},
    {22, {0x7F, 0xBC, 0xDB, 0x0E, 0x7C, 0x66, 0xBB, 0xE9, 0x2A, 0x96, 0xCD, 0x21, 0x51, 0x9E, 0xBD, 0x7A, 0x02, 0x64, 0x4A, 0x27}},
    {28, {0xC3, 0xEE, 0xF7, 0x12, 0xC7, 0x2E, 0xBB, 0x5A, 0x11, 0xA7, 0xD2, 0x43, 0x2B, 0xB4, 0x63, 0x65, 0xBE, 0xF9, 0xF5, 0x02}},
    {32, {0xAF, 0xBF, 0xEC, 0x28, 0x99, 0x93, 0xD2, 0x4C, 0x9E, 0x97, 0x86, 0xF1, 0x9C, 0x61, 0x11, 0xE0, 0x43, 0x90, 0xA8, 0x99}},
};
constexpr uint8_t kSalt1[kSaltSize] = {0x38, 0x76, 0x2C, 0xF7, 0xF5, 0x59, 0x34, 0xB3, 0x4D, 0x17,
                                       0x9A, 0xE6, 0xA4, 0xC8, 0x0C, 0xAD, 0xCC, 0xBB, 0x7F, 0x0A};
constexpr uint8_t kSalt2[kSaltSize] = {0x0D, 0xED, 0xE3, 0xDE, 0xF7, 0x00, 0xA6, 0xDB, 0x81, 0x93,
                                       0x81, 0xBE, 0x6E, 0x26, 0x9D, 0xCB, 0xF9, 0xBD, 0x2E, 0xD9};
constexpr uint8_t kSalt2Draft[kSaltSize] = {0xA7, 0x07, 0xC2, 0x03, 0xA5, 0x9B, 0x47, 0x18, 0x4A, 0x1D,
                                            0x62, 0xCA, 0x57, 0x04, 0x06, 0xEA, 0x7A, 0xE3, 0xE5, 0xD3};
constexpr uint8_t kSaltQ050[kSaltSize] = {0x50, 0x45, 0x74, 0xEF, 0xD0, 0x66, 0xFE, 0x2F, 0x9D, 0x94,
                                          0x5C, 0xFC, 0xDB, 0xD3, 0xA7, 0xF0, 0xD3, 0xB5, 0x6B, 0x45};
constexpr uint8_t kSaltT050[kSaltSize] = {0x7F, 0xF5, 0x79, 0xE5, 0xAC, 0xD0, 0x72, 0x91, 0x55, 0x80,
                                          0x30, 0x4C, 0x43, 0xA2, 0x36, 0x7C, 0x60, 0x48, 0x83, 0x10};
constexpr uint8_t kSaltT051[kSaltSize] = {0x7A, 0x4E, 0xDE, 0xF4, 0xE7, 0xCC, 0xEE, 0x5F, 0xA4, 0x50,
                                          0x6C, 0x19, 0x12, 0x4F, 0xC8, 0xCC, 0xDA, 0x6E, 0x03, 0x3D};

const uint8_t* SaltOf(uint32_t version) {
  constexpr uint32_t kQ050 = 0x51303530, kT050 = 0x54303530, kT051 = 0x54303531;
  switch (version) {
    case kQuicVersion1: return kSalt1;
    case kQuicVersion2: return kSalt2;
    case kVersion2Draft: return kSalt2Draft;
    case kQ050: return kSaltQ050;
    case kT050: return kSaltT050;
    case kT051: return kSaltT051;
    default: break;
  }
  const uint32_t draft = QuicDraftOf(version);
  if (draft == 0) return nullptr;
  for (const Salt& salt : kDraftSalts) {
    if (draft <= salt.lastDraft) return salt.bytes;
  }
  return kSalt1;
}

struct RetryKey {
  uint8_t key[kRetryKeySize], nonce[kNonceSize];
};
constexpr RetryKey kRetry25 = {
    {0x4D, 0x32, 0xEC, 0xDB, 0x2A, 0x21, 0x33, 0xC8, 0x41, 0xE4, 0x04, 0x3D, 0xF2, 0x7D, 0x44, 0x30},
    {0x4D, 0x16, 0x11, 0xD0, 0x55, 0x13, 0xA5, 0x52, 0xC5, 0x87, 0xD5, 0x75}};
constexpr RetryKey kRetry29 = {
    {0xCC, 0xCE, 0x18, 0x7E, 0xD0, 0x9A, 0x09, 0xD0, 0x57, 0x28, 0x15, 0x5A, 0x6C, 0xB9, 0x6B, 0xE1},
    {0xE5, 0x49, 0x30, 0xF9, 0x7F, 0x21, 0x36, 0xF0, 0x53, 0x0A, 0x8C, 0x1C}};
constexpr RetryKey kRetry1 = {
    {0xBE, 0x0C, 0x69, 0x0B, 0x9F, 0x66, 0x57, 0x5A, 0x1D, 0x76, 0x6B, 0x54, 0xE3, 0x68, 0xC8, 0x4E},
    {0x46, 0x15, 0x99, 0xD3, 0x5D, 0x63, 0x2B, 0xF2, 0x23, 0x98, 0x25, 0xBB}};
constexpr RetryKey kRetry2 = {
    {0x8F, 0xB4, 0xB0, 0x1B, 0x56, 0xAC, 0x48, 0xE2, 0x60, 0xFB, 0xCB, 0xCE, 0xAD, 0x7C, 0xCC, 0x92},
    {0xD8, 0x69, 0x69, 0xBC, 0x2D, 0x7C, 0x6D, 0x99, 0x90, 0xEF, 0xB0, 0x4A}};

const RetryKey* RetryKeyOf(uint32_t version) {
  if (version == kQuicVersion1) return &kRetry1;
  if (version == kQuicVersion2) return &kRetry2;
  const uint32_t draft = QuicDraftOf(version);
  if (draft < 25) return nullptr;
  return draft < 29 ? &kRetry25 : draft < 33 ? &kRetry29 : &kRetry1;
}

bool Expand(const HkdfSecret& secret, uint32_t version, const char* label, const char* label2, uint8_t* out, int32_t length) {
  return secret.ExpandLabel(version == kQuicVersion2 ? label2 : label, {nullptr, 0}, out, length);
}

Cipher MaskOf(Cipher cipher) {
  if (cipher == Cipher::kChaCha20Poly1305) return Cipher::kChaCha20;
  return cipher == Cipher::kAes256Gcm ? Cipher::kAes256Ecb : Cipher::kAes128Ecb;
}

// The packet number that is nearest to the one behind the largest so far (RFC 9000 A.3).
uint64_t WholeNumber(uint64_t largest, uint64_t sent, int32_t length) {
  const uint64_t expected = largest + 1, window = uint64_t{1} << 8 * length, half = window / 2;
  const uint64_t candidate = (expected & ~(window - 1)) | sent;
  if (candidate + half <= expected && candidate < (uint64_t{1} << 62) - window) return candidate + window;
  if (candidate > expected + half && candidate >= window) return candidate - window;
  return candidate;
}

}  // namespace

const uint32_t kQuicSaltVersions[] = {kQuicVersion1, 0xFF00001D, 0xFF00001B, kQuicVersion2, 0xFF000016};
const int32_t kQuicSaltVersionCount = static_cast<int32_t>(sizeof kQuicSaltVersions / sizeof kQuicSaltVersions[0]);

bool HasQuicSalt(uint32_t version) { return SaltOf(version) != nullptr; }

bool MakeQuicKeys(const View* view, uint32_t version, HashKind hash, Cipher cipher, const ByteSpan& secret,
                  QuicKeys& out) {
  out.cipher = cipher;
  out.mask = MaskOf(cipher);
  const int32_t size = FormOf(cipher).keySize;
  const HkdfSecret from(view, hash, secret);
  return Expand(from, version, "tls13 quic key", "tls13 quicv2 key", out.key, size) &&
         Expand(from, version, "tls13 quic iv", "tls13 quicv2 iv", out.vector, kNonceSize) &&
         Expand(from, version, "tls13 quic hp", "tls13 quicv2 hp", out.headerKey, size);
}

bool UpdateQuicSecret(const View* view, uint32_t version, HashKind hash, const ByteSpan& secret, uint8_t* out) {
  return Expand({view, hash, secret}, version, "tls13 quic ku", "tls13 quicv2 ku", out, secret.length);
}

bool MakeInitialKeys(const View* view, uint32_t version, const QuicId& original, bool fromClient, QuicKeys& out) {
  const uint8_t* salt = SaltOf(version);
  uint8_t initial[kSha256Size], secret[kSha256Size];
  return salt && HkdfExtract(view, HashKind::kSha256, {salt, kSaltSize}, {original.octets, original.length}, initial) &&
         HkdfExpandLabel(view, HashKind::kSha256, {initial, sizeof initial}, fromClient ? "tls13 client in" : "tls13 server in",
                         {nullptr, 0}, secret, sizeof secret) &&
         MakeQuicKeys(view, version, HashKind::kSha256, Cipher::kAes128Gcm, {secret, sizeof secret}, out);
}

Opening OpenQuicPacket(const View* view, const QuicKeys& keys, const QuicPacket& packet, uint64_t largest, uint8_t* room,
                       QuicOpened& out) {
  constexpr int32_t kSample = 16, kMostNumber = 4;
  const Field sample = PeekBytes(packet.whole, packet.numberAt + kMostNumber, kSample);
  const Field header = PeekBytes(packet.whole, 0, packet.numberAt + kMostNumber);
  uint8_t mask[16];
  if (!sample.here) return Opening::kWrong;
  if (!MakeMask(view, keys.mask, keys.headerKey, sample.bytes, mask)) return Opening::kUnavailable;

  const uint32_t first = PeekU8(packet.whole);
  out.first = first ^ (mask[0] & (first & 0x80 ? 0x0Fu : 0x1Fu));
  out.numberLength = static_cast<int32_t>(out.first & 3) + 1;
  const int32_t headerLength = packet.numberAt + out.numberLength;
  OpenedBytes additional(view, headerLength);
  if (!additional.data) return Opening::kUnavailable;
  std::memcpy(additional.data, header.bytes, static_cast<size_t>(headerLength));
  additional.data[0] = static_cast<uint8_t>(out.first);
  uint64_t sent = 0;
  for (int32_t i = 0; i < out.numberLength; ++i) {
    uint8_t& octet = additional.data[packet.numberAt + i];
    octet ^= mask[1 + i];
    sent = sent << 8 | octet;
  }
  out.number = WholeNumber(largest, sent, out.numberLength);

  uint8_t nonce[kNonceSize];
  for (int32_t i = 0; i < kNonceSize; ++i) {
    const int32_t shift = 8 * (kNonceSize - 1 - i);
    nonce[i] = static_cast<uint8_t>(keys.vector[i] ^ (shift < 64 ? out.number >> shift & 0xFF : 0));
  }
  const Field sealed = PeekBytes(packet.whole, headerLength, Left(packet.whole) - headerLength);
  out.payload = room;
  out.length = sealed.length - kQuicTagLength;
  if (!sealed.here || out.length < 0) return Opening::kWrong;
  return OpenSealed(view, keys.cipher, keys.key, nonce, {additional.data, headerLength}, BytesOf(sealed), room);
}

Opening CheckRetryTag(const View* view, const QuicPacket& packet, const QuicId& original) {
  const RetryKey* retry = RetryKeyOf(packet.version);
  const int32_t length = Left(packet.whole) - kQuicTagLength;
  if (!retry || length < 0 || packet.cut) return Opening::kUnavailable;
  const int32_t size = 1 + original.length + length;
  OpenedBytes pseudo(view, size);
  if (!pseudo.data) return Opening::kUnavailable;
  pseudo.data[0] = original.length;
  std::memcpy(pseudo.data + 1, original.octets, original.length);
  std::memcpy(pseudo.data + 1 + original.length, packet.whole.at, static_cast<size_t>(length));
  uint8_t nothing[1];
  return OpenSealed(view, Cipher::kAes128Gcm, retry->key, retry->nonce, {pseudo.data, size},
                    BytesOf(PeekBytes(packet.whole, length, kQuicTagLength)), nothing);
}

}  // namespace qxview
