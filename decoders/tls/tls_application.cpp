// What opened application data are handed to: the protocol that both ends agreed on (RFC 7301; IANA, ALPN Protocol IDs),
// else the one that has the port without TLS, where it has one of its own (IANA, Service Names and Port Numbers).
#include <cstring>

#include "core/lines.h"
#include "decoders/app/http2.h"
#include "decoders/net/port_dispatch.h"
#include "decoders/tls/tls_opener.h"

namespace qxview {

int32_t DecodeHttps(const Place& at, Cursor c);

namespace {

struct AgreedPort {
  const char* protocol;   // an identifier of ALPN
  uint16_t port;          // of its protocol in clear; 0: shown as a block
};
constexpr AgreedPort kAgreed[] = {
    {"http/0.9", 80}, {"http/1.0", 80}, {"http/1.1", 80}, {"h2", 0}, {"h3", 0}, {"dot", 53}, {"ftp", 21}, {"imap", 143},
    {"pop3", 110}, {"nntp", 119}, {"nnsp", 119}, {"sip/2", 5060}, {"stun.turn", 3478}, {"stun.nat-discovery", 3478},
    {"xmpp-client", 5222}, {"xmpp-server", 5269}, {"mqtt", 1883}, {"irc", 194}, {"smb", 445}, {"coap", 5683}, {"co", 5683}};

struct SecurePort {
  uint16_t secure, clear;
};
constexpr SecurePort kSecurePorts[] = {
    {443, 80}, {465, 25}, {563, 119}, {636, 389}, {853, 53}, {989, 20}, {990, 21}, {992, 23}, {993, 143}, {994, 194},
    {995, 110}, {2083, 1812}, {3269, 389}, {5061, 5060}, {5223, 5222}, {5270, 5269}, {5349, 3478}, {5658, 3868},
    {5671, 5672}, {5684, 5683}, {5868, 3868}, {6514, 601}, {8243, 80}, {8443, 80}, {8883, 1883}};

// The port whose clear protocol the data are of; the server's own where it has no other (a connection that began in clear).
uint16_t ClearPortOf(const TlsConnection& connection, uint16_t server, bool* isAgreed) {
  constexpr size_t kMost = sizeof connection.alpn;
  char agreed[kMost + 1] = {};
  std::memcpy(agreed, connection.alpn, connection.alpnLength < kMost ? connection.alpnLength : kMost);
  for (const AgreedPort& row : kAgreed) {
    if (connection.alpnLength == 0 || std::strcmp(agreed, row.protocol) != 0) continue;
    *isAgreed = true;
    return row.port;
  }
  for (const SecurePort& row : kSecurePorts) {
    if (row.secure == server) return row.clear;
  }
  return server;
}

const DecoderRow* RowOf(DoorKind kind, uint32_t port) {
  const DecoderRowSpan table = RegistryTable(kind);
  for (int32_t i = 0; i < table.count; ++i) {
    if (table.rows[i].key == port) return &table.rows[i];
  }
  return nullptr;
}

bool IsTls(const DecoderRow* row) {
  return row->decode == DecodeTls || row->decode == DecodeDtls || row->decode == DecodeHttps;
}

// A message of HTTP starts here.
bool LooksLikeHttp(const Cursor& c) {
  return PeekIs(c, 0, "HTTP/1.") || PeekIs(c, 0, "GET ") || PeekIs(c, 0, "POST ") || PeekIs(c, 0, "HEAD ") ||
         PeekIs(c, 0, "PUT ") || PeekIs(c, 0, "DELETE ") || PeekIs(c, 0, "OPTIONS ") || PeekIs(c, 0, "PATCH ");
}

const DecoderRow* FindInner(const TlsConnection& connection, const TlsRecord& record, const Cursor& c, uint16_t* server) {
  constexpr uint16_t kHttpPort = 80;
  bool isAgreed = false;
  *server = ClearPortOf(connection, *server, &isAgreed);
  const DoorKind first = record.isDatagram ? DoorKind::kUdpPort : DoorKind::kTcpPort;
  const DoorKind second = record.isDatagram ? DoorKind::kTcpPort : DoorKind::kUdpPort;
  for (const DoorKind kind : {first, second}) {
    const DecoderRow* row = *server ? RowOf(kind, *server) : nullptr;
    if (row && !IsTls(row)) return row;
  }
  constexpr uint32_t kHttp2Row = kHttp2Protocol & 0xFFFF;
  if (connection.alpnLength == 2 && std::memcmp(connection.alpn, "h2", 2) == 0) return FindBuiltinDecoder(kHttp2Row);
  if (!isAgreed && StartsHttp2(c)) return FindBuiltinDecoder(kHttp2Row);
  if (isAgreed || !LooksLikeHttp(c)) return nullptr;
  *server = kHttpPort;
  return RowOf(DoorKind::kTcpPort, kHttpPort);
}

}  // namespace

void ShowTlsApplicationData(const Place& in, const TlsSession& session, const TlsRecord& record, Cursor& c) {
  const Field data = Rest(c);
  AddLine(in, data.here ? data : Stated(c.offset, 0), "Decrypted Application Data: %d bytes", data.length);
  if (in.dead || !data.here) return;
  PacketState& packet = PacketOf(in);
  uint16_t& server = session.fromClient ? packet.destinationPort : packet.sourcePort;
  const uint16_t serverBefore = server;
  const TcpSegment segment = packet.segment;
  const DecoderRow* row = FindInner(session.connection, record, CursorOver(data), &server);
  // The segments that the host keeps are not those of what is inside.
  packet.segment = TcpSegment{};
  packet.segment.sequence = segment.sequence;   // tells what was sent again
  if (row) {
    CallDecoder(Deeper(in), CursorOver(data), row->decode, "Application Data");
  } else {
    AddBlock(in, data, session.connection.alpnLength ? "Application Data of the Agreed Protocol" : "Application Data");
  }
  packet.segment = segment;
  server = serverBefore;
}

}  // namespace qxview
