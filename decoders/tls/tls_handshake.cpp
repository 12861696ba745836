// The messages of a handshake (RFC 8446 4, RFC 5246 7.4, RFC 6347 4.2, RFC 9147 5).
#include "core/line_facts.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr auto kUpdateNames = SortedNames({{0, "update_not_requested"}, {1, "update_requested"}});
constexpr auto kUsageNames = SortedNames({{0, "cid_immediate"}, {1, "cid_spare"}});
constexpr auto kChainNames = SortedNames({{0, "individual_certs"}, {1, "pkipath"}});

constexpr auto kVerifyRequest = Rows<TlsMessage>({
    Hex(2, "Version", TlsVersionName), Counted(1, Digits("Cookie"))});
constexpr auto kTicket = Rows<TlsMessage>({Number(4, "Ticket Lifetime", " seconds"), Counted(2, Digits("Ticket"))});
constexpr auto kTicket13 = Rows<TlsMessage>({
    Number(4, "Ticket Lifetime", " seconds"), Number(4, "Ticket Age Add"), Counted(1, Digits("Ticket Nonce")),
    Counted(2, Digits("Ticket"))});
constexpr auto kVerifyData = Rows<TlsMessage>({Digits("Verify Data")});
constexpr auto kHash = Rows<TlsMessage>({Digits("Hash")});
constexpr auto kUpdate = Rows<TlsMessage>({Number(1, "Key Update Request", kUpdateNames)});
constexpr auto kCompressed = Rows<TlsMessage>({
    Number(2, "Compression Algorithm", TlsCertificateCompressionName), Number(3, "Uncompressed Length"),
    Counted(3, Digits("Compressed Certificate"))});
constexpr auto kNext = Rows<TlsMessage>({Counted(1, Text(0, "Selected Protocol")), Counted(1, Digits("Padding"))});
constexpr auto kRequestIds = Rows<TlsMessage>({Number(1, "Connection IDs Wanted")});
constexpr auto kNewId = Rows<TlsMessage>({Counted(1, Digits("Connection ID"))});
constexpr auto kUsage = Rows<TlsMessage>({Number(1, "Usage", kUsageNames)});
constexpr auto kChain = Rows<TlsMessage>({Number(1, "Chain Type", kChainNames)});
constexpr auto kUrl = Rows<TlsMessage>({Counted(2, Text(0, "URL")), Number(1, "Padding"), Bytes(20, "SHA-1 Hash")});

void ShowTicket(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.isSpoken13) {
    ShowRows<TlsMessage>(in, c, kTicket13, message);
    ShowTlsExtensions(in, c, message);
  } else if (Left(c) > 0) {
    ShowRows<TlsMessage>(in, c, kTicket, message);
  }
}
void ShowNewIds(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 2, "Connection IDs", kNewId, message);
  ShowRows<TlsMessage>(in, c, kUsage, message);
}
void ShowUrls(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, kChain, message);
  ShowTlsList<TlsMessage>(in, c, 2, "URLs and Hashes", kUrl, message);
}

constexpr auto kBodies = Choices<TlsMessage>({
    {kHelloRequest, "Hello Request"}, {kClientHello, "Client Hello", {}, ShowClientHello},
    {kServerHello, "Server Hello", {}, ShowServerHello}, {kHelloVerifyRequest, "Hello Verify Request", kVerifyRequest},
    {kNewSessionTicket, "New Session Ticket", {}, ShowTicket}, {kEndOfEarlyData, "End of Early Data"},
    {kHelloRetryRequest, "Hello Retry Request", {}, ShowServerHello},
    {kEncryptedExtensions, "Encrypted Extensions", {}, ShowTlsExtensions},
    {kRequestConnectionId, "Request Connection ID", kRequestIds},
    {kNewConnectionId, "New Connection ID", {}, ShowNewIds}, {kCertificate, "Certificate", {}, ShowTlsCertificates},
    {kServerKeyExchange, "Server Key Exchange", {}, ShowServerKeyExchange},
    {kCertificateRequest, "Certificate Request", {}, ShowCertificateRequest},
    {kServerHelloDone, "Server Hello Done"}, {kCertificateVerify, "Certificate Verify", {}, ShowTlsSignature},
    {kClientKeyExchange, "Client Key Exchange", {}, ShowClientKeyExchange},
    {kClientCertificateRequest, "Client Certificate Request", {}, ShowCertificateRequest},
    {kFinished, "Finished", kVerifyData},
    {kCertificateUrl, "Certificate URL", {}, ShowUrls},
    {kCertificateStatus, "Certificate Status", {}, ShowCertificateStatus},
    {kSupplementalData, "Supplemental Data", {}, ShowSupplementalData}, {kKeyUpdate, "Key Update", kUpdate},
    {kCompressedCertificate, "Compressed Certificate", kCompressed},
    {kEktKey, "EKT Key", {}, ShowEktKey}, {kNextProtocol, "Next Protocol", kNext},
    {kChannelId, "Encrypted Extensions (Channel ID)", {}, ShowChannelId}, {kMessageHash, "Message Hash", kHash}});

struct MessageHeader {
  Field type, length;
  Field number, offset, size;   // DTLS: of the fragment
};

MessageHeader TakeHeader(Cursor& c, TlsCarrier carrier) {
  MessageHeader header{};
  header.type = TakeU8(c);
  header.length = TakeU24(c);
  if (carrier != TlsCarrier::kDatagrams) return header;
  header.number = TakeU16(c);
  header.offset = TakeU24(c);
  header.size = TakeU24(c);
  return header;
}

void ShowBody(const Place& in, Cursor& body, uint32_t type, TlsHandshake& handshake) {
  TlsMessage message{};
  message.handshake = &handshake;
  message.type = type;
  message.body = body;
  message.isSpoken13 = handshake.connection->version == kTls13 || handshake.connection->version == kDtls13;
  ShowChoice<TlsMessage>(in, body, FindChoice<TlsMessage>(kBodies, type), message);
}

// A fragment's bytes are kept until the message is whole, which is shown there.
void ShowFragment(const Place& in, const Cursor& body, const MessageHeader& header, TlsHandshake& handshake) {
  const uint32_t type = header.type.value, offset = header.offset.value, length = header.length.value;
  const RequestKey key{DirectionOf(PacketOf(in)), {header.number.value, type << 24 | length, kDtlsProtocol, 0}};
  Cursor joined;
  const FragmentRun run = TakeFragment(in, body, key, offset, offset + header.size.value < length, &joined);
  TellFragments(in, body, run);
  if (run.length > 0 && static_cast<uint32_t>(run.length) == length) ShowBody(in, joined, type, handshake);
}

// One message, or a fragment of one. False when its header is not there.
bool ShowMessage(const Place& in, Cursor& c, TlsHandshake& handshake) {
  const bool fragments = handshake.carrier == TlsCarrier::kDatagrams;
  const Cursor start = c;
  const MessageHeader header = TakeHeader(c, handshake.carrier);
  if (c.ranShort) {
    c = start;
    AddBlock(in, Rest(c), "Start of a Message");
    return false;
  }
  const uint32_t type = header.type.value, length = fragments ? header.size.value : header.length.value;
  Cursor body = TakeCursor(c, length);
  const int32_t here = Left(body);
  const Field whole = Ahead(start, c.offset - start.offset);
  const bool isPart = fragments && (header.offset.value > 0 || header.size.value < header.length.value);
  const Place under = Under(in, AddLine(in, whole, "Handshake: %s%s", TlsMessageName(type), isPart ? " (Fragment)" : ""));
  AddLine(under, header.type, "Handshake Type: %u = %s", type, TlsMessageName(type));
  AddLine(under, header.length, "Length: %u", header.length.value);
  AddLine(under, header.number, "Message Sequence: %u", header.number.value);
  AddLine(under, header.offset, "Fragment Offset: %u", header.offset.value);
  AddLine(under, header.size, "Fragment Length: %u", header.size.value);
  if (isPart && JoinsFragments(in) && here > 0 && static_cast<uint32_t>(here) == length) {
    ShowFragment(under, body, header, handshake);
    return true;
  }
  if (fragments && header.offset.value > 0) {
    AddLine(under, Rest(body), "Fragment: %d bytes", here);
  } else {
    ShowBody(under, body, type, handshake);
  }
  if (static_cast<uint32_t>(here) < length) {
    handshake.lacking = length - static_cast<uint32_t>(here);
    handshake.lackingType = type;
    // keys: none Missing
    AddLine(under, Stated(c.offset, 0), "[Missing: %u of %u bytes]", handshake.lacking, length);
  }
  return true;
}

}  // namespace

Cursor TakeTlsList(const Place& in, Cursor& c, int32_t countSize, const char* title, Place* under) {
  const Field length = TakeSize(c, countSize);
  AddLine(in, length, "%s Length: %u", title, length.value);
  Cursor list = TakeCursor(c, length.value);
  const bool isEmpty = Left(list) < 1;
  *under = isEmpty ? in : Under(in, AddLine(in, Ahead(list, Left(list)), "%s:", title));
  return list;
}

void ShowTlsMessages(const Place& in, Cursor& c, TlsHandshake& handshake) {
  const KeyedAs keys(PacketOf(in), "tls");
  Loop loop;
  while (MoreAt(in, c, loop) && ShowMessage(in, c, handshake)) {
  }
}

}  // namespace qxview
