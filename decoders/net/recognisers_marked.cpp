// Protocols whose messages start with a mark of their own.
//
//   SMB/CIFS:    0, 24 bits of length, FF 'S' 'M' 'B', command, ...      (RFC 1002 session message or direct TCP)
//   GIOP:        'G' 'I' 'O' 'P', version (2), flags, type, size (4)     (CORBA 3, chapter 15)
//   FCIP:        protocol, version, their complements; the same again; flags, 0, complements;
//                frame length and its complement; time stamp (8); CRC    (RFC 3643, RFC 3821)
//   BitTorrent:  19, "BitTorrent protocol", ...                          (BEP 3)
#include <cstring>

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
bool IsComplemented(const uint8_t* word) { return (word[0] ^ word[2]) == 0xFF && (word[1] ^ word[3]) == 0xFF; }

}  // namespace

bool LooksLikeSmb(const Cursor& c) {
  constexpr int32_t kSessionHeader = 4, kSmbHeader = 32;
  constexpr uint32_t kLeastMessage = kSmbHeader + 3;   // the counts of no words and no bytes
  constexpr uint8_t kMark[] = {0xFF, 'S', 'M', 'B'};
  if (Left(c) < kSessionHeader + kSmbHeader) return false;
  return c.at[0] == 0 && ReadU24(c.at + 1) >= kLeastMessage && std::memcmp(c.at + 4, kMark, sizeof kMark) == 0;
}

bool LooksLikeGiop(const Cursor& c) {
  constexpr int32_t kHeader = 12;
  if (Left(c) < kHeader || std::memcmp(c.at, "GIOP", 4) != 0) return false;
  const uint32_t major = c.at[4], minor = c.at[5], flags = c.at[6], type = c.at[7];
  if (major != 1 || minor > 3 || (minor == 0 ? flags > 1 : flags > 3)) return false;
  if (type > kGiopFragment || (type == kGiopFragment && minor == 0)) return false;
  return IsGiopSize(type, flags & 1 ? ReadLittleU32(c.at + 8) : ReadU32(c.at + 8));
}

bool LooksLikeFcip(const Cursor& c) {
  constexpr int32_t kHeader = 28;
  constexpr uint32_t kShortestFrame = 15, kLongestFrame = 545;   // words, the encapsulation header included
  constexpr uint8_t kProtocolAndVersion[] = {1, 1, 0xFE, 0xFE};
  if (Left(c) < kHeader) return false;
  const uint8_t* p = c.at;
  if (std::memcmp(p, kProtocolAndVersion, 4) != 0 || std::memcmp(p + 4, kProtocolAndVersion, 4) != 0) return false;
  if (!IsComplemented(p + 8) || p[9] != 0 || (p[8] & 0x7E) != 0) return false;
  if (!IsComplemented(p + 12) || (p[12] & 0xF8) != 0) return false;   // reserved flags of the length's word
  const uint32_t words = ReadU16(p + 12) & 0x3FF;
  return words >= kShortestFrame && words <= kLongestFrame;
}

bool LooksLikeBitTorrent(const Cursor& c) {
  constexpr char kName[] = "BitTorrent protocol";
  return Left(c) >= 20 && std::memcmp(c.at + 1, kName, 19) == 0;
}

}  // namespace qxview
