// Records over a stream (RFC 8446 5, RFC 5246 6): headers found over segments, fragments by their content types, and the
// connection's state between frames.
#include "decoders/app/tls_record.h"

#include "core/line_facts.h"
#include "decoders/states.h"
#include "decoders/tls/ssl2.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 5;

struct TlsHeader {
  Field type, version, length;
};
constexpr auto kHeader = Rows<TlsHeader>({
    Number(1, "Content Type", TlsContentName).Into(&TlsHeader::type),
    Hex(2, "Version", TlsVersionName).Into(&TlsHeader::version), Number(2, "Length").Into(&TlsHeader::length)});

// Where the cursor stands in the connection's stream; false where that is not known.
bool SequenceOf(const Place& at, const Cursor& c, uint32_t* sequence) {
  const TcpSegment& segment = PacketOf(at).segment;
  if (!segment.here || !segment.payload || c.at < segment.payload || c.at > segment.payload + segment.length) return false;
  *sequence = segment.sequence + static_cast<uint32_t>(c.at - segment.payload);
  return true;
}

// What is known of the stream at the cursor. A segment that comes again finds what was known before it; behind a gap the
// cipher alone is taken to be the same.
TlsMark StartOf(const Place& at, const Cursor& c, const TlsSession& session) {
  const TlsMark& behind = session.connection.behind[session.end];
  const TlsMark& before = session.connection.before[session.end];
  uint32_t sequence;
  if (SequenceOf(at, c, &sequence)) {
    if (behind.isKnown && behind.sequence == sequence) return behind;
    if (before.isKnown && before.sequence == sequence) return before;
  }
  TlsMark mark{};
  mark.isEncrypted = behind.isEncrypted;
  return mark;
}

TlsHandshake HandshakeOf(TlsSession& session, TlsCarrier carrier) {
  return {&session.connection, carrier, session.fromClient, session.end, 0, 0, {nullptr, 0}, false};
}

// What of a message began in an earlier record.
void ShowMessageRest(const Place& in, Cursor& c, TlsMark& mark) {
  const int64_t size = mark.messageLacking < static_cast<uint32_t>(Left(c)) ? mark.messageLacking : Left(c);
  const Field rest = TakeBytes(c, size);
  AddLine(in, rest, "Handshake Continuation: %s, %d of %u bytes", TlsMessageName(mark.messageType), rest.length,
          mark.messageLacking);
  mark.messageLacking -= static_cast<uint32_t>(rest.length);
}

// The part of a handshake record that is here.
void ShowMessages(const Place& in, TlsSession& session, Cursor& c, TlsMark& mark) {
  if (mark.messageLacking > 0) ShowMessageRest(in, c, mark);
  if (Left(c) < 1) return;
  TlsHandshake handshake = HandshakeOf(session, TlsCarrier::kRecords);
  ShowTlsMessages(in, c, handshake);
  if (handshake.sawHello) mark.isEncrypted = 0;
  mark.messageLacking = handshake.lacking;
  mark.messageType = static_cast<uint8_t>(handshake.lackingType);
}

void ShowAlert(const Place& in, Cursor& c) {
  const Field level = TakeU8(c), description = TakeU8(c);
  AddLine(in, level, "Alert Level: %u = %s", level.value, TlsAlertLevelName(level.value));
  AddLine(in, description, "Alert Description: %u = %s", description.value, TlsAlertName(description.value));
}

void ShowHeartbeat(const Place& in, Cursor& c) {
  constexpr auto kTypes = SortedNames({{1, "Request"}, {2, "Response"}});
  const Field type = TakeU8(c), length = TakeU16(c), payload = TakeBytes(c, length.value);
  AddLine(in, type, "Heartbeat Type: %u = %s", type.value, LookupName(kTypes, type.value));
  AddLine(in, length, "Payload Length: %u%s", length.value, payload.here ? "" : " (more than the record holds)");
  AddLine(in, payload, "Payload: %s", HexText(payload));
  c.ranShort = false;
  const Field padding = Rest(c);
  if (payload.here) AddLine(in, padding, "Padding: %s", HexText(padding));
  else AddLine(in, padding, "Payload: %s", HexText(padding));
}

// Of DTLS 1.3 (RFC 9147 7).
void ShowAck(const Place& in, Cursor& body) {
  const Field length = TakeU16(body);
  AddLine(in, length, "Record Numbers Length: %u", length.value);
  Cursor list = TakeCursor(body, length.value);
  // Drafts before the last ones counted both in 8 octets, the epoch in the first two.
  constexpr uint32_t kMostEpoch = 0xFFFF;
  const bool isOld = Left(list) % 16 != 0 || PeekU32(list) != 0 || PeekU32(list, 4) > kMostEpoch;
  Loop loop;
  while (isOld && MoreAt(in, list, loop)) {
    const Field epoch = TakeU16(list), number = TakeBytes(list, 6);
    AddLine(in, epoch, "Acknowledged Epoch: %u", epoch.value);
    AddLine(in, number, "Acknowledged Sequence Number: %I64u", uint64_t{PeekU16(number)} << 32 | PeekU32(number, 2));
  }
  while (MoreAt(in, list, loop)) {
    const WideField epoch = TakeU64(list), sequence = TakeU64(list);
    AddLine(in, epoch, "Acknowledged Epoch: %I64u", epoch.wide);
    AddLine(in, sequence, "Acknowledged Sequence Number: %I64u", sequence.wide);
  }
}

bool IsEncrypted(const TlsRecord& record, const TlsMark& mark, const Cursor& body) {
  switch (record.type) {
    case kTlsChangeCipherSpec: return record.length != 1;
    case kTlsAlert: return record.length != 2;
    case kTlsHandshakeType: return !HoldsTlsMessages(body, record.length, mark.isEncrypted, mark.messageLacking);
    case kTlsHeartbeat: return mark.isEncrypted;
    default: return true;
  }
}

void ShowFragment(const Place& in, TlsSession& session, const TlsRecord& record, Cursor& body, TlsMark& mark) {
  if (IsEncrypted(record, mark, body)) {
    mark.messageLacking = 0;
    return ShowTlsProtected(in, session, record, body);
  }
  if (record.type == kTlsHandshakeType) return ShowMessages(in, session, body, mark);
  if (record.type == kTlsChangeCipherSpec) mark.isEncrypted = 1;
  ShowTlsContent(in, session, record, record.type, body);
}

// A record that begins at the cursor; its fragment as far as it is here.
void ShowRecord(const Place& in, TlsSession& session, Cursor& c, TlsMark& mark) {
  const Cursor start = c;
  TlsRecord record{};
  Cursor peek = c;
  const TlsHeader ahead = ReadRows(peek, kHeader);
  record.type = ahead.type.value;
  record.version = ahead.version.value;
  record.length = ahead.length.value;
  const int64_t size = int64_t{kHeaderSize} + record.length;
  const int32_t here = size < Left(c) ? static_cast<int32_t>(size) : Left(c);
  record.isWhole = here == size;
  record.whole = Ahead(start, here);
  record.header = Ahead(start, kHeaderSize);
  const Place under = Under(in, AddLine(in, record.whole, "TLS Record: %s, %s, %u bytes%s", TlsContentName(record.type),
                                        TlsVersionName(record.version), record.length,
                                        record.isWhole ? "" : " (cut)"));
  ShowRows(under, c, kHeader);
  Cursor body = TakeCursor(c, record.length);
  const bool isEncrypted = IsEncrypted(record, mark, body);
  ShowFragment(under, session, record, body, mark);
  if (record.isWhole) return;
  mark.recordLacking = static_cast<uint32_t>(size - here);
  mark.recordType = static_cast<uint8_t>(record.type);
  mark.isRecordEncrypted = isEncrypted;
}

// What of a record began in an earlier segment.
void ShowRecordRest(const Place& in, TlsSession& session, Cursor& c, TlsMark& mark) {
  const uint32_t size = mark.recordLacking < static_cast<uint32_t>(Left(c)) ? mark.recordLacking
                                                                            : static_cast<uint32_t>(Left(c));
  Cursor body = TakeCursor(c, size);
  const Place under = Under(in, AddLine(in, Ahead(body, Left(body)), "TLS Record Continuation: %s, %u of %u bytes",
                                        TlsContentName(mark.recordType), size, mark.recordLacking));
  mark.recordLacking -= size;
  if (mark.recordType == kTlsHandshakeType && !mark.isRecordEncrypted && mark.messageLacking > 0) {
    ShowMessages(under, session, body, mark);
  }
  const Field rest = Rest(body);
  AddLine(under, rest, "Encrypted %s: %d bytes", TlsContentName(mark.recordType), rest.length);
}

// A segment may end in a header.
bool KeepHeaderPart(const Place& in, Cursor& c, TlsMark& mark) {
  const int32_t left = Left(c);
  const uint32_t type = PeekU8(c);
  const bool mayBe = left > 0 && left < kHeaderSize && type >= kTlsChangeCipherSpec && type <= kTlsHeartbeat &&
                     (left < 2 || PeekU8(c, 1) == 3);
  if (!mayBe) return false;
  const Field part = Rest(c);
  AddLine(in, part, "TLS Record: start of a header, %d bytes", part.length);
  mark.headerSize = static_cast<uint8_t>(left);
  for (int32_t i = 0; i < left; ++i) mark.header[i] = static_cast<uint8_t>(PeekU8(part, i));
  return true;
}

void ShowHeaderRest(const Place& in, Cursor& c, TlsMark& mark) {
  const Field rest = TakeBytes(c, kHeaderSize - mark.headerSize);
  if (!rest.here) return;
  uint8_t header[kHeaderSize];
  for (int32_t i = 0; i < kHeaderSize; ++i) {
    header[i] = i < mark.headerSize ? mark.header[i] : static_cast<uint8_t>(PeekU8(rest, i - mark.headerSize));
  }
  Cursor whole = MakeCursor(header, 0, kHeaderSize);
  const TlsHeader read = ReadRows(whole, kHeader);
  mark.headerSize = 0;
  mark.recordType = static_cast<uint8_t>(read.type.value);
  mark.recordLacking = read.length.value;
  mark.isRecordEncrypted = read.type.value == kTlsApplicationData || mark.isEncrypted;
  AddLine(in, rest, "TLS Record: rest of a header, %s, %s, %u bytes", TlsContentName(read.type.value),
          TlsVersionName(read.version.value), read.length.value);
}

bool GoesOn(const TlsMark& mark) { return mark.recordLacking > 0 || mark.headerSize > 0; }

}  // namespace

int32_t TlsRecordSize(const Cursor& c) {
  if (Left(c) < kHeaderSize) return -1;
  return StartsTlsRecord(c) ? kHeaderSize + static_cast<int32_t>(PeekU16(c, 3)) : 0;
}

TlsSession BeginTls(const Place& at) {
  const PacketState& packet = PacketOf(at);
  TlsSession session{};
  session.key = ConnectionOf(packet, &session.end);
  session.keeps = !packet.quoted && packet.sourcePort != 0;
  const TlsConnection* known = session.keeps ? Recall(at.view, kTlsConnections, session.key) : nullptr;
  if (known) session.connection = *known;
  const uint8_t client = session.connection.clientEnd;
  session.fromClient = client ? client == session.end + 1 : packet.sourcePort > packet.destinationPort;
  return session;
}

void EndTls(const Place& at, const TlsSession& session) {
  if (session.keeps) Remember(at.view, kTlsConnections, session.key, session.connection);
}

void ShowTlsContent(const Place& in, TlsSession& session, const TlsRecord& record, uint32_t type, Cursor& body) {
  const KeyedAs keys(PacketOf(in), "tls");
  if (type == kTlsChangeCipherSpec) {
    const Field message = TakeU8(body);
    AddLine(in, message, "Change Cipher Spec Message: %u", message.value);
  } else if (type == kTlsAlert) {
    ShowAlert(in, body);
  } else if (type == kTlsHeartbeat) {
    ShowHeartbeat(in, body);
  } else if (type == kTlsHandshakeType) {
    TlsHandshake handshake = HandshakeOf(session, record.isDatagram ? TlsCarrier::kDatagrams : TlsCarrier::kRecords);
    ShowTlsMessages(in, body, handshake);
  } else if (type == kTlsAck && record.isDatagram) {
    ShowAck(in, body);
  } else if (type == kTlsReturnRoutability && record.isDatagram) {
    ShowReturnRoutability(in, body);
  }
  body.ranShort = false;
  AddBlock(in, Rest(body), "Data");
}

void ShowTlsRecords(const Place& in, Cursor& c, TlsSession& session) {
  const KeyedAs keys(PacketOf(in), "tls");
  TlsMark mark = StartOf(in, c, session);
  uint32_t sequence = 0;
  const bool isPlaced = SequenceOf(in, c, &sequence);
  if (isPlaced) session.connection.before[session.end] = mark;
  session.connection.before[session.end].sequence = sequence;
  session.connection.before[session.end].isKnown = isPlaced;
  if (mark.headerSize > 0) ShowHeaderRest(in, c, mark);
  if (mark.recordLacking > 0 && Left(c) > 0) ShowRecordRest(in, session, c, mark);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (StartsTlsRecord(c)) {
      ShowRecord(in, session, c, mark);
    } else if (!ShowSsl2Record(in, c, session) && !KeepHeaderPart(in, c, mark)) {
      AddBlock(in, Rest(c), "SSL/TLS Continuation Data");
    }
  }
  if (!PacketOf(in).limitReached) mark.isKnown = SequenceOf(in, c, &mark.sequence);
  session.connection.behind[session.end] = mark;
}

void ShowTlsUnder(const Place& in, Cursor& c) {
  TlsSession session = BeginTls(in);
  ShowTlsRecords(in, c, session);
  EndTls(in, session);
}

void PassTls(const Place& at, const Cursor& c) {
  Place nowhere = at;
  nowhere.dead = true;
  Cursor passed = c;
  ShowTlsUnder(nowhere, passed);
}

bool StartsTlsHello(const Cursor& c) {
  constexpr uint32_t kLeastHello = 38, kMostHello = 1 << 17;   // version, random, lengths; of certificates' sizes
  if (!StartsTlsRecord(c) || PeekU8(c) != kTlsHandshakeType || Left(c) < 11) return false;
  const uint32_t type = PeekU8(c, 5), length = PeekU24(c, 6), version = PeekU16(c, 9);
  return (type == kClientHello || type == kServerHello) && length >= kLeastHello && length < kMostHello &&
         PeekU16(c, 3) >= 4 && ((version >= kSsl3 && version <= kTls13) || (version >= 0x7F00 && version <= 0x7F1C));
}

bool GoesOverToTls(const Place& at, const Cursor& c) {
  int32_t end;
  const ConnectionKey key = ConnectionOf(PacketOf(at), &end);
  if (Recall(at.view, kTlsUpgrades, key)) return true;
  if (!StartsTlsHello(c)) return false;
  if (!PacketOf(at).quoted) Remember(at.view, kTlsUpgrades, key, TlsUpgrade{1});
  return true;
}

int32_t DecodeTls(const Place& at, Cursor c) {
  TlsSession session = BeginTls(at);
  if (!StartsTlsRecord(c) && !StartsSsl2Hello(c) && !GoesOn(StartOf(at, c, session))) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SSL/TLS"));
  ShowTlsRecords(in, c, session);
  EndTls(at, session);
  return 1;
}

}  // namespace qxview
