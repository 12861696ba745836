// Protocols whose messages start with a mark of their own.
//
//   SMB/CIFS:    0, 24 bits of length, FF 'S' 'M' 'B', command, ...      (RFC 1002 session message or direct TCP)
//   GIOP:        'G' 'I' 'O' 'P', version (2), flags, type, size (4)     (CORBA 3, chapter 15)
//   FCIP:        protocol, version, their complements; the same again; flags, 0, complements;
//                frame length and its complement; time stamp (8); CRC    (RFC 3643, RFC 3821)
//   MPEG-TS:     'G', 187 further octets, for each packet                (ISO/IEC 13818-1)
//   BitTorrent:  19, "BitTorrent protocol", ...                          (BEP 3)
#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

constexpr uint32_t kGiopCancel = 2, kGiopClose = 5, kGiopError = 6, kGiopFragment = 7;

// The size that a message has behind its header: none for closing and errors, a request's number for cancelling.
bool IsGiopSize(uint32_t type, uint32_t size) {
  constexpr uint32_t kLargestMessage = 0x4000000;
  if (type == kGiopClose || type == kGiopError) return size == 0;
  if (type == kGiopCancel) return size == 4;
  return size >= 4 && size <= kLargestMessage;
}

// Two bytes and their complements.
bool IsComplemented(const Cursor& c, int32_t at) { return (PeekU16(c, at) ^ PeekU16(c, at + 2)) == 0xFFFF; }

}  // namespace

bool LooksLikeSmb(const Cursor& c) {
  constexpr int32_t kSessionHeader = 4, kSmbHeader = 32;
  constexpr uint32_t kLeastMessage = kSmbHeader + 3;   // the counts of no words and no bytes
  constexpr uint8_t kMark[] = {0xFF, 'S', 'M', 'B'};
  if (Left(c) < kSessionHeader + kSmbHeader) return false;
  return PeekU8(c) == 0 && PeekU24(c, 1) >= kLeastMessage && PeekIs(c, 4, kMark);
}

bool LooksLikeGiop(const Cursor& c) {
  constexpr int32_t kHeader = 12;
  if (Left(c) < kHeader || !PeekIs(c, 0, "GIOP")) return false;
  const uint32_t major = PeekU8(c, 4), minor = PeekU8(c, 5), flags = PeekU8(c, 6), type = PeekU8(c, 7);
  if (major != 1 || minor > 3 || (minor == 0 ? flags > 1 : flags > 3)) return false;
  if (type > kGiopFragment || (type == kGiopFragment && minor == 0)) return false;
  return IsGiopSize(type, flags & 1 ? PeekLittleU32(c, 8) : PeekU32(c, 8));
}

bool LooksLikeFcip(const Cursor& c) {
  constexpr int32_t kHeader = 28;
  constexpr uint32_t kShortestFrame = 15, kLongestFrame = 545;   // words, the encapsulation header included
  constexpr uint8_t kProtocolAndVersion[] = {1, 1, 0xFE, 0xFE};
  if (Left(c) < kHeader) return false;
  if (!PeekIs(c, 0, kProtocolAndVersion) || !PeekIs(c, 4, kProtocolAndVersion)) return false;
  if (!IsComplemented(c, 8) || PeekU8(c, 9) != 0 || (PeekU8(c, 8) & 0x7E) != 0) return false;
  if (!IsComplemented(c, 12) || (PeekU8(c, 12) & 0xF8) != 0) return false;   // reserved flags of the length's word
  const uint32_t words = PeekU16(c, 12) & 0x3FF;
  return words >= kShortestFrame && words <= kLongestFrame;
}

bool LooksLikeMpegTs(const Cursor& c) {
  constexpr int32_t kPacket = 188;
  constexpr uint32_t kSync = 0x47, kReservedControl = 0x30;
  if (Left(c) < 2 * kPacket || Left(c) % kPacket != 0) return false;
  for (int32_t at = 0; at < Left(c); at += kPacket) {
    if (PeekU8(c, at) != kSync || (PeekU8(c, at + 3) & kReservedControl) == 0) return false;
  }
  return true;
}

bool LooksLikeBitTorrent(const Cursor& c) { return PeekIs(c, 1, "BitTorrent protocol"); }

}  // namespace qxview
