// The PROXY protocol, versions 1 and 2 (proxy-protocol.txt of its makers): for whom does this proxy open the
// connection? The header stands in front of all other bytes of a connection; what follows it goes to the connection's
// own decoder.
//
//   version 1   "PROXY TCP4 source destination port port\r\n"
//   version 2   signature (12)   version and command (1)   family and transport (1)   length (2)   addresses   TLVs
#include "decoders/app/proxy_protocol.h"

#include "core/elements.h"
#include "decoders/net/port_dispatch.h"

namespace qxview {
namespace {

constexpr uint8_t kSignature[] = {0x0D, 0x0A, 0x0D, 0x0A, 0x00, 0x0D, 0x0A, 0x51, 0x55, 0x49, 0x54, 0x0A};
constexpr int32_t kSignatureSize = 12, kHeaderSize = 16, kMostLine = 107;
constexpr uint32_t kVersion2 = 2;

constexpr auto kCommandNames = SortedNames({{0, "LOCAL"}, {1, "PROXY"}});
constexpr auto kFamilyNames = SortedNames({{0, "AF_UNSPEC"}, {1, "AF_INET"}, {2, "AF_INET6"}, {3, "AF_UNIX"}});
constexpr auto kTransportNames = SortedNames({{0, "UNSPEC"}, {1, "STREAM"}, {2, "DGRAM"}});

struct Proxy {
  Field version, family, length;
  Field header;   // all of it, for its checksum
  bool isChecked;
};

constexpr auto kFixed = Rows<Proxy>({
    Bytes(12, "Signature"), Word(1), Bits(0, 4, "Version").Into(&Proxy::version),
    Bits(4, 4, "Command", kCommandNames).Note(", %s"), Word(1),
    Bits(0, 4, "Address Family", kFamilyNames).Into(&Proxy::family),
    Bits(4, 4, "Transport Protocol", kTransportNames), Number(2, "Length").Into(&Proxy::length)});
constexpr auto kAddresses4 = Rows<Proxy>({
    IPv4("Source Address").Note(", %s"), IPv4("Destination Address").Note(" -> %s"), Number(2, "Source Port"),
    Number(2, "Destination Port")});
constexpr auto kAddresses6 = Rows<Proxy>({
    IPv6("Source Address").Note(", %s"), IPv6("Destination Address").Note(" -> %s"), Number(2, "Source Port"),
    Number(2, "Destination Port")});
constexpr auto kSockets = Rows<Proxy>({Text(108, "Source Path").Note(", %s"), Text(108, "Destination Path")});

constexpr auto kPlainText = Rows<Proxy>({Utf8(0, nullptr)});
constexpr auto kPlainBytes = Rows<Proxy>({Bytes(0, nullptr)});
constexpr auto kClientMasks = SortedNames({
    {0x01, "Client Connected over TLS"}, {0x02, "Client Certificate on This Connection"},
    {0x04, "Client Certificate in This Session"}});
constexpr auto kVerifyNames = SortedNames({{0, "Verified"}});
constexpr auto kTls = Rows<Proxy>({
    Flags(1, "Client", kClientMasks), Number(4, "Verify", NamesOr(kVerifyNames, "Not Verified"))});
constexpr auto kCloud = Rows<Proxy>({Hex(1, "Subtype"), Bytes(0, "Identifier")});

constexpr auto kTlsParts = Choices<Proxy>({
    {0x21, "TLS Version", kPlainText}, {0x22, "Common Name", kPlainText}, {0x23, "Cipher", kPlainText},
    {0x24, "Signature Algorithm", kPlainText}, {0x25, "Key Algorithm", kPlainText},
    {0x26, "Key Exchange Group", kPlainText},
    {0x27, "Signature Scheme", kPlainText}, {0x28, "Client Certificate", kPlainBytes}});
constexpr ElementForm kForm{.lengthSize = 2};

void ShowTls(const Place& in, Cursor& c, Proxy& proxy) { ShowElements<Proxy>(in, c, kForm, "TLS", kTlsParts, proxy); }

// CRC32c (RFC 4960 appendix B) over the header with zeros in the place of the sum.
uint32_t SumOf(const Field& header, const Field& sum) {
  constexpr uint32_t kPolynomial = 0x82F63B78;
  uint32_t crc = 0xFFFFFFFF;
  for (int32_t i = 0; i < header.length; ++i) {
    const int32_t at = header.offset + i;
    const bool isSum = at >= sum.offset && at < sum.offset + sum.length;
    crc ^= isSum ? 0 : PeekU8(header, i);
    for (int32_t bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? kPolynomial : 0);
  }
  return ~crc;
}
void ShowChecksum(const Place& in, Cursor& c, Proxy& proxy) {
  const Field sum = TakeU32(c);
  const char* verdict = proxy.isChecked                         ? "Not Checked - Another Stands in Front"
                        : !proxy.header.bytes                   ? "Not Checked - Partial Capture"
                        : SumOf(proxy.header, sum) == sum.value ? "Good"
                                                                : "BAD";
  proxy.isChecked = true;   // a header has one: each would take all of its bytes
  AddLine(in, sum, "Checksum (CRC32c): 0x%.08X (%s)", sum.value, verdict);
}

constexpr auto kParts = Choices<Proxy>({
    {0x01, "Application Protocol (ALPN)", kPlainText}, {0x02, "Authority", kPlainText},
    {0x03, "CRC32c Checksum", {}, ShowChecksum}, {0x04, "No Operation", kPlainBytes}, {0x05, "Unique ID", kPlainBytes},
    {0x20, "TLS", kTls, ShowTls}, {0x30, "Network Namespace", kPlainText}, {0xEA, "Cloud Endpoint (EA)", kCloud},
    {0xEE, "Cloud Endpoint (EE)", kCloud}});

void ShowHeader2(const Place& at, Cursor& c) {
  const Proxy ahead = PeekRows(c, kFixed);
  const int32_t stated = kHeaderSize + static_cast<int32_t>(ahead.length.value);
  Cursor header = TakeCursor(c, stated);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "PROXY Protocol: Version 2"));
  Proxy proxy{};
  if (Left(header) == stated) proxy.header = PeekBytes(header, 0, stated);
  ShowRows<Proxy>(in, header, kFixed, proxy);
  switch (proxy.family.value) {
    case 1: ShowRows<Proxy>(in, header, kAddresses4, proxy); break;
    case 2: ShowRows<Proxy>(in, header, kAddresses6, proxy); break;
    case 3: ShowRows<Proxy>(in, header, kSockets, proxy); break;
    default: break;
  }
  ShowElements<Proxy>(in, header, kForm, "TLV", kParts, proxy);
  header.ranShort = false;   // what is left of a header that is cut
  AddBlock(in, Rest(header), "PROXY Protocol Data");
}

// The next word of the line and the blank behind it.
Field TakeWord(Cursor& c) {
  const int32_t blank = FindU8(c, ' ');
  const Field word = TakeBytes(c, blank >= 0 ? blank : Left(c));
  TakeBytes(c, Left(c) > 0 ? 1 : 0);
  return word;
}

void ShowHeader1(const Place& at, Cursor& c) {
  constexpr int32_t kPrefix = 6;
  const int32_t end = FindU8(c, '\n');
  const int32_t size = end >= 0 && end < kMostLine ? end + 1 : Left(c) < kMostLine ? Left(c) : kMostLine;
  Cursor line = TakeCursor(c, size);
  const Place in = Under(at, AddLine(at, Ahead(line, size), "PROXY Protocol: Version 1"));
  TakeBytes(line, kPrefix);
  const int32_t text = FindU8(line, '\r') >= 0 ? FindU8(line, '\r') : Left(line);
  Cursor words = TakeCursor(line, text);
  const Field family = TakeWord(words);
  AddLine(in, family, "Protocol: %s", Text(family));
  const Field source = TakeWord(words), destination = TakeWord(words), from = TakeWord(words), to = TakeWord(words);
  if (source.length > 0) AddLine(in, source, "Source Address: %s", Text(source));
  if (destination.length > 0) AddLine(in, destination, "Destination Address: %s", Text(destination));
  if (from.length > 0) AddLine(in, from, "Source Port: %s", Text(from));
  if (to.length > 0) AddLine(in, to, "Destination Port: %s", Text(to));
  if (to.length > 0) AppendToParent(in, to, ", %s:%s -> %s:%s", Text(source), Text(from), Text(destination), Text(to));
}

}  // namespace

bool StartsProxyHeader(const Cursor& c) {
  if (PeekIs(c, 0, kSignature)) return Left(c) >= kHeaderSize && PeekU8(c, kSignatureSize) >> 4 == kVersion2;
  return PeekIs(c, 0, "PROXY TCP4 ") || PeekIs(c, 0, "PROXY TCP6 ") || PeekIs(c, 0, "PROXY UNKNOWN");
}

int32_t DecodeProxyProtocol(const Place& at, Cursor c) {
  if (!StartsProxyHeader(c)) return 0;
  if (PeekU8(c) == 'P') {
    ShowHeader1(at, c);
  } else {
    ShowHeader2(at, c);
  }
  if (Left(c) < 1) return 1;
  const PacketState& packet = PacketOf(at);
  const bool isTcp = packet.ipProtocol == kIpProtocolTcp;
  bool matchedSource;
  const uint8_t transport = isTcp ? kIpProtocolTcp : kIpProtocolUdp;
  const int32_t identifier = ResolveProtocol(at.view, transport, packet.source, packet.sourcePort,
                                             packet.destination, packet.destinationPort, &matchedSource);
  return isTcp ? DispatchTcpPayload(at, c, identifier, matchedSource) : DispatchUdpPayload(at, c, identifier);
}

}  // namespace qxview
