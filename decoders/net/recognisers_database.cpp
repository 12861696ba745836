// Database protocols.
//
// TDS (tabular data stream), big-endian header, then a message by type:
//   0     1       2       4     6       7
//   type  status  length  SPID  packet  window (0)
//
// TNS (transparent network substrate), big-endian; since version 315 the length may take the checksum's place too:
//   0       2             4     5         6
//   length  checksum (0)  type  reserved  header checksum (0)     then by type
#include <cstring>

#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

constexpr int32_t kTdsHeader = 8;
constexpr uint32_t kLargestTdsPacket = 32767;
constexpr uint32_t kTdsBatch = 1, kTdsOldLogin = 2, kTdsCall = 3, kTdsReply = 4, kTdsAttention = 6, kTdsBulk = 7,
                   kTdsTransaction = 14, kTdsCommand = 15, kTdsLogin = 16, kTdsNegotiation = 17, kTdsPrelogin = 18;

// The options of a prelogin: token, offset, length, up to a terminator; the values follow them in the packet.
bool IsPrelogin(Cursor c) {
  const uint32_t size = static_cast<uint32_t>(Left(c));
  for (int32_t options = 0; options < 16; ++options) {
    const Field token = TakeU8(c);
    if (!token.here) return false;
    if (token.value == 0xFF) return options > 0;
    const Field offset = TakeU16(c);
    const Field length = TakeU16(c);
    if (!length.here || token.value > 9 || offset.value < 6 || offset.value + length.value > size) return false;
  }
  return false;
}

// The encryption of a login is negotiated inside prelogin packets: a TLS record's start.
bool IsTlsRecord(const Cursor& c) {
  return Left(c) >= 3 && c.at[0] >= 20 && c.at[0] <= 23 && c.at[1] == 3 && c.at[2] <= 4;
}

// Tokens that a reply may start with.
bool IsReplyToken(uint32_t token) {
  constexpr uint8_t kTokens[] = {0x79, 0x81, 0x88, 0xA0, 0xA4, 0xA5, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE,
                                 0xD1, 0xD2, 0xD3, 0xE2, 0xE3, 0xE4, 0xE5, 0xEC, 0xED, 0xEE, 0xFD, 0xFE, 0xFF};
  for (const uint8_t known : kTokens) {
    if (known == token) return true;
  }
  return false;
}

// Tokens with a 16-bit length must fit the packet; results of rows have no length of their own.
bool IsReply(const Cursor& c, bool whole) {
  if (Left(c) < 3) return false;
  const uint32_t token = c.at[0], size = static_cast<uint32_t>(Left(c));
  if (token == 0) return IsPrelogin(c);
  if (!IsReplyToken(token)) return false;
  const bool counted = token == 0xE3 || token == 0xAA || token == 0xAB || token == 0xAD || token == 0xED;
  if (counted) return !whole || 3 + ReadLittleU16(c.at + 1) <= size;
  const bool done = token >= 0xFD;
  return !done || (size >= 9 && (c.at[2] & 0xFE) == 0);   // status has nine bits
}

// The headers that requests start with since version 7.2: total length, then the transaction descriptor.
bool HasRequestHeaders(const Cursor& c) {
  return Left(c) >= 22 && ReadLittleU32(c.at) >= 22 && ReadLittleU32(c.at) <= 256 && ReadLittleU32(c.at + 4) == 18 &&
         ReadLittleU16(c.at + 8) == 2;
}

// Two-byte characters of a statement or a name: printable, with white space.
bool IsWideText(Cursor c, int32_t characters) {
  if (Left(c) < 2) return false;
  for (int32_t i = 0; i < characters && Left(c) >= 2; ++i) {
    const uint32_t character = TakeLittleU16(c).value;
    const bool space = character == '\t' || character == '\r' || character == '\n';
    if (!space && (character < ' ' || character > '~')) return false;
  }
  return true;
}

bool IsCall(Cursor c) {
  if (HasRequestHeaders(c)) return true;
  const Field nameLength = TakeLittleU16(c);
  if (!nameLength.here) return false;
  if (nameLength.value == 0xFFFF) {   // a procedure by its number
    const Field number = TakeLittleU16(c);
    return number.here && number.value >= 1 && number.value <= 15;
  }
  return nameLength.value >= 1 && nameLength.value <= 523 && IsWideText(c, static_cast<int32_t>(nameLength.value));
}

// Five names of 30 bytes, each with its length behind it.
bool IsOldLogin(const Cursor& c) {
  if (Left(c) < 4 * 31) return false;
  for (int32_t i = 0; i < 4; ++i) {
    if (c.at[31 * i + 30] > 30) return false;
  }
  return c.at[30] + c.at[61] > 0;
}

bool IsLogin(const Cursor& c) {
  if (Left(c) < 36) return false;
  const uint32_t length = ReadLittleU32(c.at), version = ReadLittleU32(c.at + 4);
  return length >= 86 && length <= 0x20000 && (version >> 24 & 0xF8) == 0x70 && (version & 0x00F00000) <= 0x00B00000;
}

bool IsSecurityToken(const Cursor& c) {
  constexpr char kNtlm[] = "NTLMSSP";
  if (Left(c) < 8) return false;
  const bool negotiation = (c.at[0] == 0x60 || c.at[0] == 0xA1) && c.at[1] >= 0x30;   // of mechanisms
  return negotiation || std::memcmp(c.at, kNtlm, sizeof kNtlm) == 0;
}

// The tokens that requests of version 5 start with.
bool IsCommandToken(uint32_t token) { return token == 0x21 || token == 0xE2 || token == 0xE6 || token == 0xE7; }

// The start of a message by its type; `whole` when all of the packet was captured.
bool IsTdsMessage(uint32_t type, const Cursor& c, bool whole) {
  switch (type) {
    case kTdsBatch: return HasRequestHeaders(c) || IsWideText(c, 16);
    case kTdsOldLogin: return IsOldLogin(c);
    case kTdsCall: return IsCall(c);
    case kTdsReply: return IsReply(c, whole);
    case kTdsAttention: return Left(c) == 0;
    case kTdsBulk: return Left(c) >= 3 && c.at[0] == 0x81;
    case kTdsTransaction: return HasRequestHeaders(c);
    case kTdsCommand: return whole && Left(c) >= 5 && IsCommandToken(c.at[0]);
    case kTdsLogin: return IsLogin(c);
    case kTdsNegotiation: return IsSecurityToken(c);
    case kTdsPrelogin: return IsPrelogin(c) || IsTlsRecord(c);
    default: return false;
  }
}

constexpr uint32_t kTnsConnect = 1, kTnsAccept = 2, kTnsRefuse = 4, kTnsRedirect = 5, kTnsData = 6, kTnsNull = 7,
                   kTnsResend = 11, kTnsMarker = 12;
constexpr uint32_t kTnsHeader = 8, kOldestTns = 300, kNewestTns = 330;

bool IsTnsVersion(uint32_t version) { return version >= kOldestTns && version <= kNewestTns; }

// The connect data stand at their offset to the end of the packet, or come in a packet of their own.
bool IsTnsConnect(const uint8_t* p, uint32_t length, uint32_t captured) {
  if (length < 34 || captured < 34 || !IsTnsVersion(ReadU16(p + 8))) return false;
  const uint32_t dataLength = ReadU16(p + 24), dataOffset = ReadU16(p + 26);
  if (ReadU16(p + 10) > ReadU16(p + 8) || dataOffset < 34) return false;
  return dataOffset + dataLength == length || dataOffset == length;
}

bool IsTnsAccept(const uint8_t* p, uint32_t length, uint32_t captured) {
  if (length < 24 || captured < 24 || !IsTnsVersion(ReadU16(p + 8))) return false;
  const uint32_t dataLength = ReadU16(p + 18), dataOffset = ReadU16(p + 20);
  return dataLength == 0 || dataOffset + dataLength == length;
}

// Flags of the ten that are defined, then a function of the client protocol or the marker of service negotiation. The
// last packet of a session has flags alone.
bool IsTnsData(const uint8_t* p, uint32_t length, uint32_t captured) {
  if (length < 10 || captured < 10) return false;
  const uint32_t flags = ReadU16(p + 8);
  if ((flags & ~0x89EFu) != 0) return false;
  if (length == 10) return flags == 0x40;
  if (captured >= 14 && ReadU32(p + 10) == 0xDEADBEEF) return true;
  return captured >= 12 && p[10] >= 1 && p[10] <= 0x22;
}

bool IsTnsBody(const uint8_t* p, uint32_t length, uint32_t captured) {
  switch (p[4]) {
    case kTnsConnect: return IsTnsConnect(p, length, captured);
    case kTnsAccept: return IsTnsAccept(p, length, captured);
    case kTnsRefuse: return length >= 12 && captured >= 12 && 12 + ReadU16(p + 10) == length;
    case kTnsRedirect: return length > 10 && captured >= 10 && 10 + ReadU16(p + 8) == length;
    case kTnsData: return IsTnsData(p, length, captured);
    case kTnsNull: case kTnsResend: return length == 8;
    case kTnsMarker: return length == 11 && captured >= 11 && p[8] <= 1 && p[9] == 0 && p[10] <= 3;
    default: return false;
  }
}

}  // namespace

bool LooksLikeTds(const Cursor& c) {
  Cursor in = c;
  const Field type = TakeU8(in);
  const Field status = TakeU8(in);
  const Field length = TakeU16(in);
  const Field process = TakeU16(in);
  const Field packet = TakeU8(in);
  const Field window = TakeU8(in);
  if (!window.here || window.value != 0 || (status.value & ~0x1Bu) != 0 || packet.value > 1) return false;
  if (length.value < kTdsHeader || length.value > kLargestTdsPacket) return false;
  if (type.value != kTdsReply && process.value != 0) return false;   // clients leave it to the server
  const bool last = (status.value & 1) != 0;
  const bool whole = static_cast<uint32_t>(Left(c)) >= length.value;
  if (!last && length.value < 512) return false;   // only full packets are continued, and 512 is the smallest size
  return IsTdsMessage(type.value, TakeCursor(in, length.value - kTdsHeader), whole);
}

bool LooksLikeTns(const Cursor& c) {
  constexpr uint32_t kLargestPacket = 0x200000;
  if (Left(c) < static_cast<int32_t>(kTnsHeader)) return false;
  const uint8_t* p = c.at;
  const uint32_t captured = static_cast<uint32_t>(Left(c));
  const bool wide = ReadU16(p) == 0;
  const uint32_t length = wide ? ReadU32(p) : ReadU16(p);
  if (length < kTnsHeader || length > kLargestPacket) return false;
  if ((!wide && ReadU16(p + 2) != 0) || ReadU16(p + 6) != 0) return false;
  if (length > captured && p[4] != kTnsData) return false;            // only data are longer than a segment
  if (length > captured && captured < 512) return false;
  if (length + kTnsHeader <= captured && p[length + 4] > 19) return false;   // the next packet's type
  return IsTnsBody(p, length, captured);
}

}  // namespace qxview
