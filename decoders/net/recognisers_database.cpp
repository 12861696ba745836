// Database protocols.
//
// TDS (tabular data stream), big-endian header, then a message by type:
//   0     1       2       4     6       7
//   type  status  length  SPID  packet  window (0)
//
// TNS (transparent network substrate), big-endian; since version 315 the length may take the checksum's place too:
//   0       2             4     5         6
//   length  checksum (0)  type  reserved  header checksum (0)     then by type
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
  return Left(c) >= 3 && PeekU8(c) >= 20 && PeekU8(c) <= 23 && PeekU8(c, 1) == 3 && PeekU8(c, 2) <= 4;
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
  const uint32_t token = PeekU8(c), size = static_cast<uint32_t>(Left(c));
  if (token == 0) return IsPrelogin(c);
  if (!IsReplyToken(token)) return false;
  const bool counted = token == 0xE3 || token == 0xAA || token == 0xAB || token == 0xAD || token == 0xED;
  if (counted) return !whole || 3 + PeekLittleU16(c, 1) <= size;
  const bool done = token >= 0xFD;
  return !done || (size >= 9 && (PeekU8(c, 2) & 0xFE) == 0);   // status has nine bits
}

// The headers that requests start with since version 7.2: total length, then the transaction descriptor.
bool HasRequestHeaders(const Cursor& c) {
  return Left(c) >= 22 && PeekLittleU32(c) >= 22 && PeekLittleU32(c) <= 256 && PeekLittleU32(c, 4) == 18 &&
         PeekLittleU16(c, 8) == 2;
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
    if (PeekU8(c, 31 * i + 30) > 30) return false;
  }
  return PeekU8(c, 30) + PeekU8(c, 61) > 0;
}

bool IsLogin(const Cursor& c) {
  if (Left(c) < 36) return false;
  const uint32_t length = PeekLittleU32(c), version = PeekLittleU32(c, 4);
  return length >= 86 && length <= 0x20000 && (version >> 24 & 0xF8) == 0x70 && (version & 0x00F00000) <= 0x00B00000;
}

bool IsSecurityToken(const Cursor& c) {
  if (Left(c) < 8) return false;
  const bool negotiation = (PeekU8(c) == 0x60 || PeekU8(c) == 0xA1) && PeekU8(c, 1) >= 0x30;   // of mechanisms
  return negotiation || PeekIs(c, 0, "NTLMSSP\0");
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
    case kTdsBulk: return Left(c) >= 3 && PeekU8(c) == 0x81;
    case kTdsTransaction: return HasRequestHeaders(c);
    case kTdsCommand: return whole && Left(c) >= 5 && IsCommandToken(PeekU8(c));
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
bool IsTnsConnect(const Cursor& c, uint32_t length) {
  if (length < 34 || Left(c) < 34 || !IsTnsVersion(PeekU16(c, 8))) return false;
  const uint32_t dataLength = PeekU16(c, 24), dataOffset = PeekU16(c, 26);
  if (PeekU16(c, 10) > PeekU16(c, 8) || dataOffset < 34) return false;
  return dataOffset + dataLength == length || dataOffset == length;
}

bool IsTnsAccept(const Cursor& c, uint32_t length) {
  if (length < 24 || Left(c) < 24 || !IsTnsVersion(PeekU16(c, 8))) return false;
  const uint32_t dataLength = PeekU16(c, 18), dataOffset = PeekU16(c, 20);
  return dataLength == 0 || dataOffset + dataLength == length;
}

// Flags of the ten that are defined, then a function of the client protocol or the marker of service negotiation. The
// last packet of a session has flags alone.
bool IsTnsData(const Cursor& c, uint32_t length) {
  if (length < 10 || Left(c) < 10) return false;
  const uint32_t flags = PeekU16(c, 8);
  if ((flags & ~0x89EFu) != 0) return false;
  if (length == 10) return flags == 0x40;
  if (PeekU32(c, 10) == 0xDEADBEEF) return true;
  return Left(c) >= 12 && PeekU8(c, 10) >= 1 && PeekU8(c, 10) <= 0x22;
}

bool IsTnsBody(const Cursor& c, uint32_t length) {
  switch (PeekU8(c, 4)) {
    case kTnsConnect: return IsTnsConnect(c, length);
    case kTnsAccept: return IsTnsAccept(c, length);
    case kTnsRefuse: return length >= 12 && Left(c) >= 12 && 12 + PeekU16(c, 10) == length;
    case kTnsRedirect: return length > 10 && Left(c) >= 10 && 10 + PeekU16(c, 8) == length;
    case kTnsData: return IsTnsData(c, length);
    case kTnsNull: case kTnsResend: return length == 8;
    case kTnsMarker:
      return length == 11 && Left(c) >= 11 && PeekU8(c, 8) <= 1 && PeekU8(c, 9) == 0 && PeekU8(c, 10) <= 3;
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
  const uint32_t captured = static_cast<uint32_t>(Left(c));
  const bool wide = PeekU16(c) == 0;
  const uint32_t length = wide ? PeekU32(c) : PeekU16(c);
  if (length < kTnsHeader || length > kLargestPacket) return false;
  if ((!wide && PeekU16(c, 2) != 0) || PeekU16(c, 6) != 0) return false;
  if (length > captured && PeekU8(c, 4) != kTnsData) return false;            // only data are longer than a segment
  if (length > captured && captured < 512) return false;
  const uint32_t nextType = PeekU8(c, static_cast<int32_t>(length) + 4);
  if (length + kTnsHeader <= captured && nextType > 19) return false;
  return IsTnsBody(c, length);
}

}  // namespace qxview
