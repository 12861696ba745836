// TLS over datagrams (RFC 9147, RFC 6347, RFC 4347), with connection identifiers (RFC 9146). A datagram holds whole
// records, and each says by its epoch whether it is encrypted.
//
//   until 1.2, and 1.3 in clear   type (1)   version (2)   epoch (2)   sequence (6)   identifier   length (2)
//   1.3                           001CSLEE   identifier    sequence (1 or 2)   length (2)
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 13, kMostIdSize = 20;
constexpr uint32_t kOldVersion = 0x0100;   // of an early implementation

bool IsPlainType(uint32_t type) { return type >= kTlsChangeCipherSpec && type <= kTlsAck + 1; }
bool IsDtlsVersion(uint32_t version) {
  return version == kDtls10 || version == kDtls12 || version == kDtls13 || version == kOldVersion;
}
bool IsShortForm(const Cursor& c) { return (PeekU8(c) & 0xE0) == 0x20; }

// Of a record with an identifier, when the hellos did not tell: the length that lets its end be the payload's.
int32_t IdSizeOf(const Cursor& c, const TlsSession& session) {
  const int32_t known = session.connection.cidLength[session.end];
  if (known > 0 || PeekU8(c) != kTlsWithConnectionId) return known;
  for (int32_t size = 0; size <= kMostIdSize; ++size) {
    if (kHeaderSize + size + static_cast<int32_t>(PeekU16(c, kHeaderSize - 2 + size)) == Left(c)) return size;
  }
  return 0;
}

void ShowFragment(const Place& in, TlsSession& session, const TlsRecord& record, Cursor& body) {
  const bool isClear = record.epoch == 0 && !record.isShort && record.type != kTlsApplicationData &&
                       record.type != kTlsWithConnectionId;
  if (!isClear) return ShowTlsProtected(in, session, record, body);
  ShowTlsContent(in, session, record, record.type, body);
}

void ShowPlainRecord(const Place& at, Cursor& c, TlsSession& session) {
  const Cursor start = c;
  const int32_t idSize = PeekU8(c) == kTlsWithConnectionId ? IdSizeOf(c, session) : 0;
  const Field type = TakeU8(c), version = TakeU16(c), epoch = TakeU16(c), sequence = TakeBytes(c, 6);
  const Field id = TakeBytes(c, idSize), length = TakeU16(c);
  Cursor body = TakeCursor(c, length.value);
  TlsRecord record{};
  record.isDatagram = true;
  record.type = type.value;
  record.version = version.value;
  record.length = length.value;
  record.epoch = epoch.value;
  record.sequence = uint64_t{PeekU16(sequence)} << 32 | PeekU32(sequence, 2);
  record.header = Ahead(start, kHeaderSize + idSize);
  record.whole = Ahead(start, c.offset - start.offset);
  record.isWhole = Left(body) == static_cast<int32_t>(length.value);
  const Place in = Under(at, AddLine(at, record.whole, "DTLS Record: %s, %s, %u bytes%s", TlsContentName(type.value),
                                     TlsVersionName(version.value), length.value, record.isWhole ? "" : " (cut)"));
  AddLine(in, type, "Content Type: %u = %s", type.value, TlsContentName(type.value));
  AddLine(in, version, "Version: 0x%.04X = %s", version.value, TlsVersionName(version.value));
  AddLine(in, epoch, "Epoch: %u", epoch.value);
  AddLine(in, sequence, "Sequence Number: %I64u", record.sequence);
  if (idSize > 0) AddLine(in, id, "Connection ID: %s", HexDigits(id));
  AddLine(in, length, "Length: %u", length.value);
  ShowFragment(in, session, record, body);
}

void ShowShortRecord(const Place& at, Cursor& c, TlsSession& session) {
  constexpr uint32_t kHasId = 0x10, kLongSequence = 0x08, kHasLength = 0x04;
  const Cursor start = c;
  const Field flags = TakeU8(c);
  const Field id = TakeBytes(c, flags.value & kHasId ? session.connection.cidLength[session.end] : 0);
  const Field sequence = flags.value & kLongSequence ? TakeU16(c) : TakeU8(c);
  const Field length = flags.value & kHasLength ? TakeU16(c) : Field{};
  const int32_t headerSize = c.offset - start.offset;
  TlsRecord record{};
  record.isDatagram = record.isShort = true;
  record.type = kTlsApplicationData;
  record.version = kDtls13;
  record.epoch = flags.value & 3;
  record.sequence = sequence.value;
  record.length = length.here ? length.value : static_cast<uint32_t>(Left(c));
  Cursor body = TakeCursor(c, record.length);
  record.header = Ahead(start, headerSize);
  record.whole = Ahead(start, c.offset - start.offset);
  record.isWhole = Left(body) == static_cast<int32_t>(record.length);
  const Place in = Under(at, AddLine(at, record.whole, "DTLS Record: encrypted, DTLS 1.3, %u bytes", record.length));
  const Place bits = Under(in, AddLine(in, flags, "Header Flags: 0x%.02X", flags.value));
  const BitPicture hasId = BitsOf(flags, 3, 1), isLong = BitsOf(flags, 4, 1), hasLength = BitsOf(flags, 5, 1);
  const BitPicture epoch = BitsOf(flags, 6, 2);
  AddBitLine(bits, flags, "%s: Connection ID Present = %s", hasId.picture, LookupName(kFalseTrueNames, hasId.value));
  AddBitLine(bits, flags, "%s: Long Sequence Number = %s", isLong.picture, LookupName(kFalseTrueNames, isLong.value));
  AddBitLine(bits, flags, "%s: Length Present = %s", hasLength.picture, LookupName(kFalseTrueNames, hasLength.value));
  AddBitLine(bits, flags, "%s: Low Bits of Epoch = %u", epoch.picture, epoch.value);
  if (id.length > 0) AddLine(in, id, "Connection ID: %s", HexDigits(id));
  AddLine(in, sequence, "Encrypted Sequence Number: %u", sequence.value);
  AddLine(in, length, "Length: %u", length.value);
  ShowTlsProtected(in, session, record, body);
}

bool StartsPlainRecord(const Cursor& c) {
  return Left(c) >= kHeaderSize && IsPlainType(PeekU8(c)) && IsDtlsVersion(PeekU16(c, 1));
}
bool StartsRecord(const Cursor& c, const TlsSession& session) {
  constexpr int32_t kLeastShort = 2 + 16;   // with the tag of what protects it
  return StartsPlainRecord(c) || (IsShortForm(c) && Left(c) >= kLeastShort &&
                                  session.connection.version == kDtls13);
}

}  // namespace

bool LooksLikeDtls(const Cursor& c) {
  Cursor rest = c;
  if (!StartsPlainRecord(rest)) return false;
  Loop loop;
  while (More(rest, loop)) {
    if (!StartsPlainRecord(rest)) return IsShortForm(rest);
    if (PeekU8(rest) == kTlsWithConnectionId) return true;   // the identifier's length is not known
    TakeBytes(rest, kHeaderSize + static_cast<int64_t>(PeekU16(rest, kHeaderSize - 2)));
  }
  return !rest.ranShort;
}

bool GoesOnAsDtls(const Place& at, const Cursor& c) {
  if (!IsShortForm(c) && PeekU8(c) != kTlsWithConnectionId) return false;
  const TlsSession session = BeginTls(at);
  return session.connection.clientEnd && StartsRecord(c, session);
}

int32_t DecodeDtls(const Place& at, Cursor c) {
  TlsSession session = BeginTls(at);
  if (!StartsRecord(c, session)) return 0;
  const bool isPlain = StartsPlainRecord(c);
  const char* content = isPlain ? TlsContentName(PeekU8(c)) : "Encrypted";
  const char* version = isPlain ? TlsVersionName(PeekU16(c, 1)) : TlsVersionName(kDtls13);
  const bool isMessage = isPlain && PeekU8(c) == kTlsHandshakeType && PeekU16(c, 3) == 0 && Left(c) > kHeaderSize;
  const char* message = isMessage ? TlsMessageName(PeekU8(c, kHeaderSize)) : nullptr;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "DTLS: %s, %s%s%s", content, version, message ? ", " : "",
                                     message ? message : ""));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (!StartsRecord(c, session)) {
      AddBlock(in, Rest(c), "DTLS Data");
    } else if (StartsPlainRecord(c)) {
      ShowPlainRecord(in, c, session);
    } else {
      ShowShortRecord(in, c, session);
    }
  }
  EndTls(at, session);
  return 1;
}

}  // namespace qxview
