// Transport Layer Security, all versions (RFC 8446, RFC 5246, RFC 4346, RFC 2246, RFC 6101), and its form over datagrams
// (RFC 9147, RFC 6347, RFC 4347): what others call, and what is known of a connection.
//
//   TLS       type (1)   version (2)   length (2)   fragment
//   DTLS      type (1)   version (2)   epoch (2)   sequence number (6)   length (2)   fragment
//   messages of a handshake: type (1)   length (3)   in DTLS: number (2), fragment offset (3), fragment length (3)   body
//
// A payload is decoded as it stands: a record that is cut shows what is there of it, and how many bytes it lacks is kept
// for the connection's next segment, as are the bytes that the last message of a handshake goes on with.
#pragma once
#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {

constexpr int32_t kTlsProtocol = 0x1001E, kDtlsProtocol = 0x10260;   // as definitions name them

enum TlsContentType : uint32_t {
  kTlsChangeCipherSpec = 20, kTlsAlert = 21, kTlsHandshakeType = 22, kTlsApplicationData = 23, kTlsHeartbeat = 24,
  kTlsWithConnectionId = 25, kTlsAck = 26, kTlsReturnRoutability = 27,
};
enum TlsVersionNumber : uint32_t {
  kSsl2 = 0x0002, kSsl3 = 0x0300, kTls10 = 0x0301, kTls11 = 0x0302, kTls12 = 0x0303, kTls13 = 0x0304,
  kDtls10 = 0xFEFF, kDtls12 = 0xFEFD, kDtls13 = 0xFEFC,
};

// Where a direction's stream of records stands: in front of the byte with this TCP sequence number.
struct TlsMark {
  uint32_t sequence;
  uint32_t recordLacking;    // bytes of a record that began before
  uint32_t messageLacking;   // bytes of a handshake's message that began in an earlier record
  uint8_t isKnown;
  uint8_t isEncrypted;       // the cipher was changed: messages are not to be read
  uint8_t recordType;        // of the record that lacks bytes
  uint8_t messageType;       // of the message that does
  uint8_t isRecordEncrypted;
  uint8_t headerSize;        // octets of a record's header that the stream was cut in, and these
  uint8_t header[5];
};

enum TlsNegotiated : uint32_t {   // bits: extensions that both ends have agreed on
  kTlsEncryptThenMac = 1, kTlsExtendedMasterSecret = 2, kTlsTruncatedHmac = 4, kTlsConnectionIds = 8, kTlsEarlyData = 16,
};

// What hellos have told of a connection. A decode works on a copy of its own.
struct TlsConnection {
  uint16_t version;          // negotiated, as TlsVersionNumber has it; 0: not known
  uint16_t cipherSuite;      // with `version` alone
  uint32_t offered, negotiated;   // TlsNegotiated: by the client's hello, by both
  uint8_t clientEnd;         // 1 and 2: the first, the second end of the key; 0: not known
  uint8_t hasClientRandom, hasServerRandom;
  uint8_t alpnLength;        // of the protocol that the server chose; 0: none is known
  char alpn[16];
  uint8_t clientRandom[32], serverRandom[32];
  uint8_t cidLength[2];      // DTLS: of the identifiers in records that this end of the key sends
  uint8_t unused[2];
  TlsMark before[2], behind[2];   // an end's last segment: where it began, where it ended
};

// One decode of a connection's bytes.
struct TlsSession {
  TlsConnection connection;  // brought up to date, and remembered when the decode is over
  ConnectionKey key;
  int32_t end;               // of the key: the sender, 0 or 1
  bool fromClient;           // by the hello that was seen, else by the ports
  bool keeps;                // whether the connection is looked up and remembered at all
};

// A record while it is shown.
struct TlsRecord {
  Field header;              // its octets; in DTLS 1.3's short form the flags octet and what it calls for
  Field whole;               // header and fragment, as far as they are there
  uint32_t type, version, length;   // `length` as the header states it
  uint32_t epoch;            // DTLS
  uint64_t sequence;         // DTLS: 48 bits, or what the short form has of it
  bool isDatagram, isWhole;  // the whole fragment is here
  bool isShort;              // DTLS 1.3's header, whose sequence number is hidden
};

// Every record's fragment that is encrypted passes here, its body whole or cut: a line with its length. What opens
// records hands their contents to ShowTlsContent.
void ShowTlsProtected(const Place& in, TlsSession& session, const TlsRecord& record, Cursor& body);

// The fragment of a record in clear, or what one was opened to, by its content type.
void ShowTlsContent(const Place& in, TlsSession& session, const TlsRecord& record, uint32_t type, Cursor& body);

enum class TlsCarrier : uint8_t { kRecords, kDatagrams, kQuic };

// A run of handshake messages: how they are to be read and what they told.
struct TlsHandshake {
  TlsConnection* connection;   // never null
  TlsCarrier carrier;
  bool fromClient;
  int32_t end;                 // of the connection's key; for the connection identifiers of DTLS
  uint32_t lacking;            // set: bytes of the last message that are not here
  uint32_t lackingType;
  TextSlice serverName;        // set by a client's hello, good as long as the frame
  bool sawHello;               // of either side: a handshake starts anew
};

// The messages at the cursor, which goes on to its end; the last may be cut. For what carries them without records, too:
// QUIC's CRYPTO frames, with a connection of their own whose version is kTls13.
void ShowTlsMessages(const Place& in, Cursor& c, TlsHandshake& handshake);

// Whether the handshake record at the cursor holds messages in clear: each has a type and a length that can be, and together
// they fill the record, the last one going on in the next. Behind a change of the cipher, hellos alone are in clear: those
// of a handshake that begins anew. What was not captured is taken to fit. `messageLacking`: bytes that the last message of
// the record before lacks.
bool HoldsTlsMessages(Cursor c, uint32_t recordLength, bool isEncrypted, uint32_t messageLacking);
// Whether a message of a handshake begins here that can be: a known type and a length that it may have.
bool StartsTlsMessage(const Cursor& c);

// Transport parameters of QUIC (RFC 9000 18), which a hello carries.
void ShowQuicTransportParameters(const Place& in, Cursor& c);

// The records at the cursor with lines of their own under the place, whatever carries them. `session` by BeginTls.
TlsSession BeginTls(const Place& at);
void ShowTlsRecords(const Place& in, Cursor& c, TlsSession& session);
void EndTls(const Place& at, const TlsSession& session);

// What leads to TLS. A payload that neither starts a record nor goes on with one is none of theirs (result 0).
int32_t DecodeTls(const Place& at, Cursor c);
int32_t DecodeDtls(const Place& at, Cursor c);
// The payload is of a connection and under a line of its own already: HTTPS.
void ShowTlsUnder(const Place& in, Cursor& c);
// The payload is shown elsewhere: the connection's records are counted on.
void PassTls(const Place& at, const Cursor& c);

// A hello's record at the start of a payload: a client's or a server's, of SSL 3 and later.
bool StartsTlsHello(const Cursor& c);
// Whether a datagram holds records of DTLS and nothing else (RFC 7983: its first byte is 20 to 63).
bool LooksLikeDtls(const Cursor& c);
// Whether it may be a record of version 1.3 whose connection's hellos were seen: its header shows nothing else.
bool GoesOnAsDtls(const Place& at, const Cursor& c);
// The size of the record at the cursor, header included; 0 for none, -1 where the header is not all there.
int32_t TlsRecordSize(const Cursor& c);

// The connections that went over to TLS behind a start in clear (STARTTLS and its like).
struct TlsUpgrade {
  uint32_t isTls;
};
bool GoesOverToTls(const Place& at, const Cursor& c);

}  // namespace qxview
