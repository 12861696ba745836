// DNSCrypt, version 2 of its protocol (dnscrypt.info/protocol, draft-denis-dprive-dnscrypt), with relayed queries
// (Anonymized DNSCrypt): queries and responses of DNS that a key of the resolver's hides, on whatever port it listens.
//
//   query      client magic (8)     client's public key (32)   client's nonce (12)    encrypted query
//   response   resolver magic (8)   client's nonce (12)        resolver's nonce (12)  encrypted response
//   relayed    FF (8) 00 00         server's address (16)      server's port (2)      query
//
// Over TCP a length (2) stands in front. Only the resolver's certificate, a text of DNS, says how queries begin.
#include "decoders/app/dnscrypt.h"

#include <cstring>

#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/quic/quic.h"
#include "decoders/states.h"

namespace qxview {

int32_t DecodeDns(const Place& at, Cursor c);

namespace {

constexpr int32_t kMagicSize = 8, kQueryHeader = 52, kTag = 16, kLengthSize = 2, kMostMagics = 4;
constexpr int32_t kLeastDatagram = 256 + kQueryHeader + kTag;   // queries over UDP are filled up
constexpr char kResolverMagic[] = "r6fnvWj8";
constexpr char kRelayMagic[] = "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF";

constexpr auto kSystemNames = SortedNames({{1, "X25519-XSalsa20Poly1305"}, {2, "X25519-XChacha20Poly1305"}});

constexpr auto kLength = Rows<NoValues>({Number(2, "Message Length")});
constexpr auto kQuery = Rows<NoValues>({
    Bytes(kMagicSize, "Client Magic"), Bytes(32, "Client Public Key"), Bytes(12, "Client Nonce")});
constexpr auto kResponse = Rows<NoValues>({
    Text(kMagicSize, "Resolver Magic"), Bytes(12, "Client Nonce"), Bytes(12, "Resolver Nonce")});
constexpr auto kRelay = Rows<NoValues>({
    Bytes(10, "Anonymized Query Magic"), IPv6("Server Address").Note(" %s"), Number(2, "Server Port").Note(", Port %u")});
constexpr auto kCertificate = Rows<NoValues>({
    Text(4, "Certificate Magic"), Number(2, "Encryption System", kSystemNames), Number(2, "Protocol Minor Version"),
    Bytes(64, "Signature"), Bytes(32, "Resolver Public Key"), Bytes(kMagicSize, "Client Magic"), Number(4, "Serial Number"),
    UnixTime(4, "Valid From"), UnixTime(4, "Valid Until")});
constexpr int32_t kMagicInCertificate = 104, kCertificateSize = 124;

bool IsTcp(uint8_t transport) {
  constexpr uint8_t kTcp = 6;
  return transport == kTcp;
}

DnscryptServer ServerOf(const PacketState& packet, bool isSource) {
  const AddressSlot& end = isSource ? packet.source : packet.destination;
  DnscryptServer server{};
  std::memcpy(server.address, end.address, sizeof server.address);
  server.port = isSource ? packet.sourcePort : packet.destinationPort;
  server.kind = static_cast<uint8_t>(end.kind);
  server.transport = packet.ipProtocol;
  return server;
}

bool IsRelayed(const Cursor& message) { return PeekIs(message, 0, kRelayMagic) && PeekU16(message, kMagicSize) == 0; }

// A query to a resolver that was seen before.
bool IsQueryTo(const Place& at, const DnscryptServer& server, const Cursor& message) {
  const Field own = PeekBytes(message, 0, kMagicSize);
  if (!own.here) return false;
  for (int32_t back = 1; back <= kMostMagics; ++back) {
    const DnscryptMagic* magic = Recall(at.view, kDnscryptServers, server, back);
    if (!magic) return false;
    if (!magic->isKnown) return !LooksLikeQuic(message) && !IsQuicConnection(at);
    if (std::memcmp(magic->octets, own.bytes, kMagicSize) == 0) return true;
  }
  return false;
}

void NoteMagic(const Place& at, const DnscryptServer& server, const Field& octets) {
  DnscryptMagic magic{};
  if (octets.here) std::memcpy(magic.octets, octets.bytes, kMagicSize);
  magic.isKnown = octets.here;
  for (int32_t back = 1; back <= kMostMagics; ++back) {
    const DnscryptMagic* known = Recall(at.view, kDnscryptServers, server, back);
    if (!known) break;
    if (!octets.here || (known->isKnown && std::memcmp(known->octets, magic.octets, kMagicSize) == 0)) return;
    if (!known->isKnown) return Revise(at.view, kDnscryptServers, server, back, magic);
  }
  Remember(at.view, kDnscryptServers, server, magic);
}

// The message under the line, whatever is left of it encrypted.
void ShowMessage(const Place& in, Cursor& c, bool isResponse) {
  if (isResponse) {
    ShowRows(in, c, kResponse);
  } else {
    ShowRows(in, c, kQuery);
  }
  c.ranShort = false;
  const Field rest = Rest(c);
  if (rest.length < 1) return;
  if (isResponse) {
    AddLine(in, rest, "Encrypted Response: %d bytes", rest.length);
  } else {
    AddLine(in, rest, "Encrypted Query: %d bytes", rest.length);
  }
}

}  // namespace

bool LooksLikeDnscrypt(const Place& at, const Cursor& c, uint8_t transport) {
  const bool isTcp = IsTcp(transport);
  const int32_t prefix = isTcp ? kLengthSize : 0;
  if (Left(c) < prefix + kQueryHeader) return false;
  const int32_t length = isTcp ? static_cast<int32_t>(PeekU16(c)) : Left(c);
  if (length < Left(c) - prefix) return false;
  Cursor message = c;
  TakeBytes(message, prefix);
  if (PeekIs(message, 0, kResolverMagic)) return true;
  if (length != Left(message)) return false;
  if (IsRelayed(message)) return true;
  if (length < (isTcp ? kQueryHeader + kTag : kLeastDatagram)) return false;
  return IsQueryTo(at, ServerOf(PacketOf(at), false), message);
}

bool AsksForDnscrypt(const Cursor& c, uint8_t transport) {
  constexpr int32_t kDnsHeader = 12;
  return PeekIs(c, kDnsHeader + (IsTcp(transport) ? kLengthSize : 0), "\1" "2\15dnscrypt-cert");
}

bool StartsDnscryptCertificate(const Cursor& text) { return Left(text) >= kCertificateSize && PeekIs(text, 0, "DNSC"); }

void ShowDnscryptCertificate(const Place& in, Cursor& text) {
  const KeyedAs keys(PacketOf(in), "dnscrypt");
  const Place under = Under(in, AddLine(in, Ahead(text, Left(text)), "DNSCrypt Certificate: %d bytes", Left(text)));
  ShowRows(under, text, kCertificate);
  const Field extensions = Rest(text);
  if (extensions.length) AddLine(under, extensions, "Extensions: %s", HexDigits(extensions));
}

void NoteDnscryptCertificate(const Place& at, Cursor data) {
  const Cursor text = TakeCursor(data, TakeU8(data).value);
  if (!StartsDnscryptCertificate(text) || PacketOf(at).quoted) return;
  NoteMagic(at, ServerOf(PacketOf(at), true), PeekBytes(text, kMagicInCertificate, kMagicSize));
}

int32_t DecodeDnscrypt(const Place& at, Cursor c) {
  const PacketState& packet = PacketOf(at);
  const bool isTcp = IsTcp(packet.ipProtocol);
  Cursor message = c;
  if (isTcp) TakeBytes(message, kLengthSize);
  if (Left(message) < kQueryHeader || message.ranShort) return 0;
  const bool isResponse = PeekIs(message, 0, kResolverMagic), isRelayed = IsRelayed(message);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "DNSCrypt: %s", isResponse  ? "Response"
                                                                            : isRelayed ? "Relayed Query to"
                                                                                        : "Query"));
  if (isTcp) ShowRows(in, c, kLength);
  if (isRelayed) {
    ShowRows(in, c, kRelay);
    if (AsksForDnscrypt(c, 0)) {   // behind a relay even a certificate is asked for in this way
      CallDecoder(Deeper(in), c, DecodeDns, "DNS Data");
      return 1;
    }
  }
  if (!packet.quoted) {
    const Field magic = PeekBytes(c, 0, kMagicSize);
    if (isResponse) NoteMagic(at, ServerOf(packet, true), Field{});
    if (!isResponse && !isRelayed) NoteMagic(at, ServerOf(packet, false), magic);
  }
  ShowMessage(in, c, isResponse);
  return 1;
}

}  // namespace qxview
