// The packet list's text for TLS (RFC 8446, RFC 5246) and the SSL versions before it: the records that a payload starts
// with, the handshake messages in them, versions, server name, alerts.
//
//   0              1         3         5
//   content type   version   length    fragment
//                                      handshake type (1), length (3), body; more messages
#include "decoders/app/summaries.h"
#include "decoders/app/summary_text.h"
#include "decoders/app/tls_record.h"
#include "decoders/tls/tls.h"

namespace qxview {
namespace {

constexpr uint32_t kRecordHeader = 5;
constexpr int32_t kMostRecords = 8, kMostMessages = 8;
enum ContentType : uint32_t { kChangeCipherSpec = 20, kAlert, kHandshake, kApplicationData, kHeartbeat };
enum HandshakeType : uint32_t {
  kHelloRequest = 0, kClientHello = 1, kServerHello = 2, kEndOfEarlyData = 5, kServerHelloDone = 14, kKeyUpdate = 24,
};

constexpr auto kContentNames = SortedNames({
    {20, "Change Cipher Spec"}, {21, "Alert"}, {22, "Handshake"}, {23, "Application Data"}, {24, "Heartbeat"},
});

constexpr auto kHandshakeNames = SortedNames({
    {0, "Hello Request"}, {1, "Client Hello"}, {2, "Server Hello"}, {3, "Hello Verify Request"},
    {4, "New Session Ticket"}, {5, "End of Early Data"}, {8, "Encrypted Extensions"}, {11, "Certificate"},
    {12, "Server Key Exchange"}, {13, "Certificate Request"}, {14, "Server Hello Done"}, {15, "Certificate Verify"},
    {16, "Client Key Exchange"}, {20, "Finished"}, {21, "Certificate URL"}, {22, "Certificate Status"},
    {23, "Supplemental Data"}, {24, "Key Update"}, {25, "Compressed Certificate"}, {254, "Message Hash"},
});

constexpr auto kVersionNames = SortedNames({
    {0x0002, "SSL 2.0"}, {0x0300, "SSL 3.0"}, {0x0301, "TLS 1.0"}, {0x0302, "TLS 1.1"}, {0x0303, "TLS 1.2"},
    {0x0304, "TLS 1.3"},
});

constexpr auto kAlertNames = SortedNames({
    {0, "Close Notify"}, {10, "Unexpected Message"}, {20, "Bad Record MAC"}, {21, "Decryption Failed"},
    {22, "Record Overflow"}, {30, "Decompression Failure"}, {40, "Handshake Failure"}, {41, "No Certificate"},
    {42, "Bad Certificate"}, {43, "Unsupported Certificate"}, {44, "Certificate Revoked"},
    {45, "Certificate Expired"}, {46, "Certificate Unknown"}, {47, "Illegal Parameter"}, {48, "Unknown CA"},
    {49, "Access Denied"}, {50, "Decode Error"}, {51, "Decrypt Error"}, {60, "Export Restriction"},
    {70, "Protocol Version"}, {71, "Insufficient Security"}, {80, "Internal Error"}, {86, "Inappropriate Fallback"},
    {90, "User Canceled"}, {100, "No Renegotiation"}, {109, "Missing Extension"}, {110, "Unsupported Extension"},
    {111, "Certificate Unobtainable"}, {112, "Unrecognized Name"}, {113, "Bad Certificate Status Response"},
    {114, "Bad Certificate Hash Value"}, {115, "Unknown PSK Identity"}, {116, "Certificate Required"},
    {120, "No Application Protocol"},
});

// What is carried on the ports that IANA assigns to a protocol over TLS.
constexpr auto kPortNames = SortedNames({
    {261, "IIOP"}, {443, "HTTP"}, {465, "SMTP"}, {563, "NNTP"}, {636, "LDAP"}, {853, "DNS"}, {989, "FTP Data"},
    {990, "FTP"}, {992, "Telnet"}, {993, "IMAP"}, {994, "IRC"}, {995, "POP3"}, {5061, "SIP"}, {6514, "Syslog"},
    {8443, "HTTP"}, {8883, "MQTT"},
});

struct HelloFacts {
  uint32_t version;
  TextSlice serverName;
};

// Values of the form 0x?A?A stand for none: clients mix them in so that servers learn to ignore what they do not know.
bool IsReserved(uint32_t version) { return (version & 0x0F0F) == 0x0A0A; }

void ReadSupportedVersions(Cursor c, bool fromClient, HelloFacts& facts) {
  if (!fromClient) {
    if (Left(c) >= 2) facts.version = TakeU16(c).value;
    return;
  }
  Cursor list = c;
  TakeU8(list);
  uint32_t highest = 0;
  while (Left(list) >= 2) {
    const uint32_t version = TakeU16(list).value;
    if (!IsReserved(version) && version > highest && version < 0x7F00) highest = version;   // drafts are not shown
  }
  if (highest) facts.version = highest;
}

void ReadServerName(Cursor c, HelloFacts& facts) {
  TakeU16(c);               // length of the list
  if (TakeU8(c).value != 0) return;
  const Field name = TakeBytes(c, TakeU16(c).value);
  if (name.here) facts.serverName = Text(name);
}

// A Client Hello or Server Hello behind its type and length; a cut one gives what its bytes hold.
HelloFacts ReadHello(Cursor c, bool fromClient) {
  constexpr uint32_t kServerNameExtension = 0, kSupportedVersionsExtension = 43;
  constexpr int32_t kMostExtensions = 64;
  HelloFacts facts{TakeU16(c).value, {nullptr, 0}};
  TakeBytes(c, 32);                     // random
  TakeBytes(c, TakeU8(c).value);        // session identifier
  if (fromClient) {
    TakeBytes(c, TakeU16(c).value);     // cipher suites
    TakeBytes(c, TakeU8(c).value);      // compression methods
  } else {
    TakeBytes(c, 3);                    // the suite and method chosen
  }
  TakeU16(c);                           // length of the extensions
  for (int32_t i = 0; i < kMostExtensions && Left(c) >= 4; ++i) {
    const uint32_t type = TakeU16(c).value;
    const uint32_t length = TakeU16(c).value;
    const Cursor body = TakeCursor(c, length);
    if (type == kServerNameExtension && fromClient) ReadServerName(body, facts);
    if (type == kSupportedVersionsExtension) ReadSupportedVersions(body, fromClient, facts);
  }
  return facts;
}

// What is known of a payload's records so far.
struct RecordWalk {
  bool encrypted;            // the cipher was changed in front of this record
  uint32_t messageLacking;   // bytes of the last handshake message that the next record goes on with
};

// The messages of a handshake record.
void DescribeHandshake(SummaryText& text, Cursor c, uint32_t recordLength, RecordWalk& walk) {
  if (!HoldsTlsMessages(c, recordLength, walk.encrypted, walk.messageLacking)) return Add(text, ": Encrypted Message");
  uint32_t left = recordLength;
  const bool goesOn = walk.messageLacking > 0;
  if (goesOn) {
    Add(text, ": Continuation");
    const uint32_t part = walk.messageLacking < left ? walk.messageLacking : left;
    TakeBytes(c, part);
    walk.messageLacking -= part;
    left -= part;
  }
  for (int32_t i = 0; i < kMostMessages && Left(c) >= 4; ++i) {
    const uint32_t type = TakeU8(c).value;
    const uint32_t length = TakeU24(c).value;
    left -= left < 4 ? left : 4;
    walk.messageLacking = length > left ? length - left : 0;
    left -= length < left ? length : left;
    Add(text, i == 0 && !goesOn ? ": " : ", ");
    Add(text, LookupName(kHandshakeNames, type));
    const Cursor body = TakeCursor(c, length);
    if (type != kClientHello && type != kServerHello) continue;
    walk.encrypted = false;
    const HelloFacts facts = ReadHello(body, type == kClientHello);
    if (const char* version = LookupName(kVersionNames, facts.version, nullptr)) Add(text, ", Version: %s", version);
    AddValue(text, "Server Name", facts.serverName);
  }
}

void DescribeAlert(SummaryText& text, Cursor c, uint32_t recordLength) {
  if (recordLength != 2 || Left(c) < 2) return Add(text, "Encrypted Alert");
  const uint32_t level = TakeU8(c).value;
  Add(text, "Alert: %s, %s", level == 1 ? "Warning" : level == 2 ? "Fatal" : kUnknown,
      LookupName(kAlertNames, TakeU8(c).value));
}

void DescribeRecord(SummaryText& text, const Cursor& fragment, uint32_t type, uint32_t recordLength, int32_t port,
                    RecordWalk& walk) {
  if (type == kHandshake) {
    Add(text, "Handshake");
    DescribeHandshake(text, fragment, recordLength, walk);
  } else if (type == kAlert) {
    DescribeAlert(text, fragment, recordLength);
  } else {
    Add(text, LookupName(kContentNames, type));
    const char* carried = LookupName(kPortNames, static_cast<uint32_t>(port), nullptr);
    if (type == kApplicationData && carried) Add(text, " (%s)", carried);
    if (type == kApplicationData) Add(text, ", %u bytes", recordLength);
    if (type == kChangeCipherSpec && recordLength == 1) walk.encrypted = true;
  }
}

// The hello of SSL 2.0, which old clients sent for later versions too: a two-byte length with its top bit set, type 1.
bool IsOldClientHello(const Cursor& c) {
  return Left(c) >= 5 && (PeekU8(c) & 0x80) && PeekU8(c, 2) == 1 && (PeekU8(c, 3) == 3 || PeekU16(c, 3) == 2);
}

// The records of the cursor and the version of the first.
void DescribeRecords(SummaryText& text, Cursor c, int32_t port, TlsStream& stream) {
  uint32_t last = 0;
  RecordWalk walk{stream.encrypted, 0};
  for (int32_t i = 0; i < kMostRecords && StartsTlsRecord(c); ++i) {
    const uint32_t type = TakeU8(c).value;
    const uint32_t version = TakeU16(c).value;
    const uint32_t length = TakeU16(c).value;
    if (i == 0) Add(text, ", %s", LookupName(kVersionNames, version));
    const int32_t here = Left(c) < static_cast<int32_t>(length) ? Left(c) : static_cast<int32_t>(length);
    const Cursor fragment = TakeCursor(c, here);
    if (type != last || type != kApplicationData) {   // a run of application data records is one piece of news
      Add(text, ", ");
      DescribeRecord(text, fragment, type, length, port, walk);
    }
    last = type;
    stream.encrypted = walk.encrypted;
    if (here < static_cast<int32_t>(length)) {
      const int32_t whole = static_cast<int32_t>(length + kRecordHeader);
      const int32_t present = here + static_cast<int32_t>(kRecordHeader);
      Add(text, " [Partial: %d bytes of %d pending]", present, whole);
      stream.pending = whole - present;
      return;
    }
  }
}

}  // namespace

int32_t DescribeTls(const uint8_t* data, int32_t length, char* out, int32_t outSize, int32_t port, TlsStream* stream) {
  TlsStream none{};
  if (!stream) stream = &none;
  const int32_t lacking = stream->pending > 0 ? stream->pending : 0;
  stream->pending = 0;
  SummaryText text;
  if (!BeginSummary(text, data, length, out, outSize)) return 0;
  Add(text, "SSL/TLS");
  Cursor c = MakeCursor(data, 0, length);
  if (IsOldClientHello(c)) {
    const uint32_t version = PeekU16(c, 3);
    Add(text, ", SSL 2.0, Handshake: Client Hello, Version: %s", LookupName(kVersionNames, version));
    return 1;
  }
  // A payload that starts with a record starts afresh, whatever the caller thought was pending.
  if (!StartsTlsRecord(c)) {
    if (lacking == 0) return Add(text, " Continuation Data"), 1;
    const int32_t part = length < lacking ? length : lacking;
    Add(text, " [Continuation: %d bytes of %d pending]", part, lacking);
    if (part < lacking) return stream->pending = lacking - part, 1;
    TakeBytes(c, part);
  }
  DescribeRecords(text, c, port, *stream);
  return 1;
}

}  // namespace qxview
