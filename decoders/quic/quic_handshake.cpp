#include "decoders/quic/quic_handshake.h"

#include <cstring>

#include "core/line_facts.h"
#include "decoders/tls/tls.h"

namespace qxview {
namespace {

constexpr int32_t kMessageHeader = 4;

// The bytes of the messages that are whole.
int32_t WholeMessages(const Cursor& c) {
  int32_t at = 0;
  while (Left(c) - at >= kMessageHeader) {
    const int32_t length = kMessageHeader + static_cast<int32_t>(PeekU24(c, at + 1));
    if (length > Left(c) - at) break;
    at += length;
  }
  return at;
}

bool IsProtocol(const TlsConnection& connection, const char* name) {
  const size_t length = std::strlen(name);
  return connection.alpnLength >= length && std::memcmp(connection.alpn, name, length) == 0;
}

// What the messages told of the connection.
void LearnFrom(const TlsConnection& told, QuicSession& session) {
  QuicConnection& state = session.state;
  if (told.hasClientRandom && std::memcmp(state.clientRandom, told.clientRandom, sizeof state.clientRandom) != 0) {
    std::memcpy(state.clientRandom, told.clientRandom, sizeof state.clientRandom);
    session.changed = true;
  }
  if (told.cipherSuite && told.cipherSuite != state.cipherSuite) {
    state.cipherSuite = told.cipherSuite;
    session.changed = true;
  }
  QuicContent content = QuicContent::kUnknown;
  if (IsProtocol(told, "h3")) content = QuicContent::kHttp3;
  if (IsProtocol(told, "doq")) content = QuicContent::kDns;
  if (content != QuicContent::kUnknown && content != state.content) {
    state.content = content;
    session.changed = true;
  }
}

}  // namespace

int32_t ShowQuicHandshake(const Place& in, Cursor c, QuicSession& session) {
  const int32_t whole = WholeMessages(c);
  if (whole == 0) {
    if (Left(c)) AddLine(in, Ahead(c, Left(c)), "Handshake Message in Part: %d bytes", Left(c));
    return 0;
  }
  TlsConnection connection{};
  connection.version = kTls13;
  connection.cipherSuite = session.state.cipherSuite;
  TlsHandshake handshake{};
  handshake.connection = &connection;
  handshake.carrier = TlsCarrier::kQuic;
  handshake.fromClient = session.sender == session.state.client;
  handshake.end = session.sender;
  Cursor messages = TakeCursor(c, whole);
  {
    const KeyedAs keys(PacketOf(in), "tls");
    ShowTlsMessages(in, messages, handshake);
  }
  LearnFrom(connection, session);
  if (handshake.serverName.length > 0) AppendToLine(in, session.packetLine, ", %s", handshake.serverName);
  return whole;
}

}  // namespace qxview
