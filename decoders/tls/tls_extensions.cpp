// Extensions (RFC 8446 4.2, RFC 6066 and those that the registry names): what clients offer, servers choose, and
// certificates, requests and tickets carry. Many have one layout in a client's hello and another elsewhere.
#include <cstring>

#include "decoders/asn1/x509.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

bool IsOffer(const TlsMessage& message) { return message.type == kClientHello; }

constexpr auto kNameTypes = SortedNames({{0, "host_name"}});
constexpr auto kFragmentLengths = SortedNames({{1, "512 bytes"}, {2, "1024 bytes"}, {3, "2048 bytes"}, {4, "4096 bytes"}});
constexpr auto kAuthorityTypes = SortedNames({
    {0, "pre_agreed"}, {1, "key_sha1_hash"}, {2, "x509_name"}, {3, "cert_sha1_hash"}});
constexpr auto kHeartbeatModes = SortedNames({{1, "peer_allowed_to_send"}, {2, "peer_not_allowed_to_send"}});
constexpr auto kTokenParameters = SortedNames({{0, "rsa2048_pkcs1.5"}, {1, "rsa2048_pss"}, {2, "ecdsap256"}});
constexpr auto kCachedTypes = SortedNames({{1, "cert"}, {2, "cert_req"}});

constexpr auto kServerName = Rows<TlsMessage>({
    Number(1, "Name Type", kNameTypes), Counted(2, Text(0, "Server Name")).Note(", %s").Into(&TlsMessage::choice)});
constexpr auto kFragmentLength = Rows<TlsMessage>({Number(1, "Maximum Fragment Length", kFragmentLengths)});
constexpr auto kGroup = Rows<TlsMessage>({Hex(2, "Supported Group", TlsGroupName)});
constexpr auto kPointFormat = Rows<TlsMessage>({Number(1, "EC Point Format", TlsPointFormatName)});
constexpr auto kScheme = Rows<TlsMessage>({Hex(2, "Signature Algorithm", TlsSchemeName)});
constexpr auto kUserName = Rows<TlsMessage>({Counted(1, Utf8(0, "SRP User Name"))});
constexpr auto kSrtpProfile = Rows<TlsMessage>({Hex(2, "SRTP Protection Profile", SrtpProfileName)});
constexpr auto kSrtpMki = Rows<TlsMessage>({Counted(1, Digits("MKI"))});
constexpr auto kHeartbeat = Rows<TlsMessage>({Number(1, "Heartbeat Mode", kHeartbeatModes)});
constexpr auto kProtocol = Rows<TlsMessage>({
    Counted(1, Text(0, "ALPN Protocol")).Note(", %s").Into(&TlsMessage::choice)});
constexpr auto kNextProtocol = Rows<TlsMessage>({Counted(1, Text(0, "Next Protocol"))});
constexpr auto kSettingsProtocol = Rows<TlsMessage>({Counted(1, Text(0, "Supported Protocol"))});
constexpr auto kCertificateType = Rows<TlsMessage>({Number(1, "Certificate Type", TlsCertificateTypeName)});
constexpr auto kPadding = Rows<TlsMessage>({Digits("Padding Data")});
constexpr auto kTokenVersion = Rows<TlsMessage>({Number(1, "Token Binding Major Version"), Number(1, "Minor Version")});
constexpr auto kTokenParameter = Rows<TlsMessage>({Number(1, "Key Parameters", kTokenParameters)});
constexpr auto kCompression = Rows<TlsMessage>({Number(2, "Compression Algorithm", TlsCertificateCompressionName)});
constexpr auto kSizeLimit = Rows<TlsMessage>({Number(2, "Record Size Limit")});
constexpr auto kTicket = Rows<TlsMessage>({Digits("Session Ticket")});
constexpr auto kVersionOffered = Rows<TlsMessage>({Hex(2, "Supported Version", TlsVersionName)});
constexpr auto kVersionChosen = Rows<TlsMessage>({Hex(2, "Supported Version", TlsVersionName).Note(", %s")});
constexpr auto kCookie = Rows<TlsMessage>({Counted(2, Digits("Cookie"))});
constexpr auto kPskMode = Rows<TlsMessage>({Number(1, "PSK Key Exchange Mode", TlsPskModeName)});
constexpr auto kEntry = Rows<TlsMessage>({
    Hex(2, "Group", TlsGroupName).Into(&TlsMessage::choice), Counted(2, Digits("Key Exchange"))});
constexpr auto kGroupChosen = Rows<TlsMessage>({Hex(2, "Selected Group", TlsGroupName).Note(", %s")});
constexpr auto kIdentity = Rows<TlsMessage>({Counted(2, Digits("Identity")), Number(4, "Obfuscated Ticket Age")});
constexpr auto kBinder = Rows<TlsMessage>({Counted(1, Digits("PSK Binder"))});
constexpr auto kSelectedIdentity = Rows<TlsMessage>({Number(2, "Selected Identity")});
constexpr auto kEarlyDataSize = Rows<TlsMessage>({Number(4, "Maximum Early Data Size")});
constexpr auto kConnectionId = Rows<TlsMessage>({Counted(1, Bytes(0, "Connection ID")).Into(&TlsMessage::choice)});
constexpr auto kIdHash = Rows<TlsMessage>({Counted(1, Digits("External ID Hash"))});
constexpr auto kExternalSession = Rows<TlsMessage>({Counted(1, Digits("External Session ID"))});
constexpr auto kTicketsWanted = Rows<TlsMessage>({Number(1, "New Session Count"), Number(1, "Resumption Count")});
constexpr auto kTicketsExpected = Rows<TlsMessage>({Number(1, "Expected Count")});
constexpr auto kPort = Rows<TlsMessage>({Number(2, "Port")});
constexpr auto kChain = Rows<TlsMessage>({Number(2, "Extension Support Lifetime"), Digits("Authentication Chain")});
constexpr auto kFlags = Rows<TlsMessage>({Counted(1, Digits("Flags"))});
constexpr auto kRenegotiated = Rows<TlsMessage>({Counted(1, Digits("Renegotiation Info"))});
constexpr auto kPassword = Rows<TlsMessage>({Counted(1, Digits("Password Name"))});
constexpr auto kSalt = Rows<TlsMessage>({Counted(2, Digits("Password Salt"))});
constexpr auto kMapping = Rows<TlsMessage>({Number(1, "User Mapping Type", TlsMappingName)});
constexpr auto kAuthorization = Rows<TlsMessage>({Number(1, "Authorization Format", TlsAuthorizationName)});
constexpr auto kCached = Rows<TlsMessage>({
    Number(1, "Cached Information Type", kCachedTypes), Counted(1, Digits("Hash Value"))});
constexpr auto kCachedType = Rows<TlsMessage>({Number(1, "Cached Information Type", kCachedTypes)});
constexpr auto kStatusType = Rows<TlsMessage>({
    Number(1, "Status Type", TlsStatusTypeName).Into(&TlsMessage::choice)});
constexpr auto kRequestLength = Rows<TlsMessage>({Number(2, "Request Length")});
constexpr auto kResponderId = Rows<TlsMessage>({Counted(2, Digits("Responder ID"))});
constexpr auto kRequestExtensions = Rows<TlsMessage>({Counted(2, Digits("Request Extensions"))});
constexpr auto kAuthorityType = Rows<TlsMessage>({
    Number(1, "Identifier Type", kAuthorityTypes).Into(&TlsMessage::choice)});
constexpr auto kAuthorityHash = Rows<TlsMessage>({Bytes(20, "SHA-1 Hash")});
constexpr auto kCredential = Rows<TlsMessage>({
    Number(4, "Valid Time", " seconds"), Hex(2, "Certificate Verify Algorithm", TlsSchemeName)});
constexpr auto kOuterExtension = Rows<TlsMessage>({Number(2, "Outer Extension", TlsExtensionName)});
constexpr auto kEncryptedName = Rows<TlsMessage>({
    Hex(2, "Cipher Suite", TlsSuiteName), Hex(2, "Group", TlsGroupName), Counted(2, Digits("Key Exchange")),
    Counted(2, Digits("Record Digest")), Counted(2, Digits("Encrypted Server Name"))});
constexpr auto kOther = Rows<TlsMessage>({Digits("Extension Data")});

void ShowServerNames(const Place& in, Cursor& c, TlsMessage& message) {
  if (Left(c) < 1) return;   // a server's answer
  const Field length = TakeU16(c);
  AddLine(in, length, "Server Name List Length: %u", length.value);
  Cursor list = TakeCursor(c, length.value);
  Loop loop;
  while (MoreAt(in, list, loop)) {
    ShowRows<TlsMessage>(in, list, kServerName, message);
    if (message.choice.here && message.choice.bytes) message.handshake->serverName = Text(message.choice);
  }
}

void ShowFormats(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 1, "EC Point Formats", kPointFormat, message);
}
void ShowGroups(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 2, "Supported Groups", kGroup, message);
}
void ShowSchemes(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 2, "Signature Algorithms", kScheme, message);
}
void ShowSrtp(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 2, "SRTP Protection Profiles", kSrtpProfile, message);
  ShowRows<TlsMessage>(in, c, kSrtpMki, message);
}
void ShowProtocols(const Place& in, Cursor& c, TlsMessage& message) {
  const Field length = TakeU16(c);
  AddLine(in, length, "ALPN Length: %u", length.value);
  Cursor list = TakeCursor(c, length.value);
  Loop loop;
  while (MoreAt(in, list, loop)) ShowRows<TlsMessage>(in, list, kProtocol, message);
  TlsConnection& connection = *message.handshake->connection;
  const int32_t size = message.choice.length;
  if (IsOffer(message) || !message.choice.here || size > static_cast<int32_t>(sizeof connection.alpn)) return;
  std::memcpy(connection.alpn, message.choice.bytes, static_cast<size_t>(size));
  connection.alpnLength = static_cast<uint8_t>(size);
}
void ShowNextProtocols(const Place& in, Cursor& c, TlsMessage& message) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<TlsMessage>(in, c, kNextProtocol, message);
}
void ShowSettings(const Place& in, Cursor& c, TlsMessage& message) {
  if (IsOffer(message)) return ShowTlsList<TlsMessage>(in, c, 2, "Supported Protocols", kSettingsProtocol, message);
  ShowRows<TlsMessage>(in, c, kOther, message);
}
void ShowCertificateTypes(const Place& in, Cursor& c, TlsMessage& message) {
  if (IsOffer(message)) return ShowTlsList<TlsMessage>(in, c, 1, "Certificate Types", kCertificateType, message);
  ShowRows<TlsMessage>(in, c, kCertificateType, message);
}
void ShowTokenBinding(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, kTokenVersion, message);
  ShowTlsList<TlsMessage>(in, c, 1, "Key Parameters List", kTokenParameter, message);
}
void ShowCompressions(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 1, "Compression Algorithms", kCompression, message);
}
void ShowTicket(const Place& in, Cursor& c, TlsMessage& message) {
  if (Left(c) > 0) ShowRows<TlsMessage>(in, c, kTicket, message);
}
void ShowVersions(const Place& in, Cursor& c, TlsMessage& message) {
  if (IsOffer(message)) return ShowTlsList<TlsMessage>(in, c, 1, "Supported Versions", kVersionOffered, message);
  ShowRows<TlsMessage>(in, c, kVersionChosen, message);
}
void ShowModes(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 1, "PSK Key Exchange Modes", kPskMode, message);
}

void ShowEntry(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr int32_t kEntryHeader = 4;
  const int32_t size = kEntryHeader + static_cast<int32_t>(PeekU16(c, 2));
  const Field whole = Ahead(c, size < Left(c) ? size : Left(c));
  const Place under = Under(in, AddLine(in, whole, "Key Share Entry: %s", TlsGroupName(PeekU16(c))));
  ShowRows<TlsMessage>(under, c, kEntry, message);
}
void ShowKeyShare(const Place& in, Cursor& c, TlsMessage& message) {
  const bool isGroup = message.isRetry || message.type == kHelloRetryRequest || (!IsOffer(message) && Left(c) == 2);
  if (isGroup) return ShowRows<TlsMessage>(in, c, kGroupChosen, message);
  if (!IsOffer(message)) return ShowEntry(in, c, message);
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Key Shares", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) ShowEntry(under, list, message);
}
void ShowPreSharedKey(const Place& in, Cursor& c, TlsMessage& message) {
  if (!IsOffer(message)) return ShowRows<TlsMessage>(in, c, kSelectedIdentity, message);
  ShowTlsList<TlsMessage>(in, c, 2, "PSK Identities", kIdentity, message);
  ShowTlsList<TlsMessage>(in, c, 2, "PSK Binders", kBinder, message);
}
void ShowEarlyData(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.type == kNewSessionTicket) ShowRows<TlsMessage>(in, c, kEarlyDataSize, message);
}

// What each end says here is what records sent to it carry.
void ShowConnectionId(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, kConnectionId, message);
  const TlsHandshake& handshake = *message.handshake;
  if (message.choice.here) {
    handshake.connection->cidLength[1 - (handshake.end & 1)] = static_cast<uint8_t>(message.choice.length);
  }
}
void ShowTicketRequest(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, IsOffer(message) ? RowSpan<TlsMessage>(kTicketsWanted)
                                               : RowSpan<TlsMessage>(kTicketsExpected), message);
}
void ShowDnsChain(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, IsOffer(message) ? RowSpan<TlsMessage>(kPort) : RowSpan<TlsMessage>(kChain), message);
}
void ShowPasswordName(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, kPassword, message);
}
void ShowMappings(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 1, "User Mapping Types", kMapping, message);
}
void ShowAuthorizations(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 1, "Authorization Formats", kAuthorization, message);
}
void ShowCached(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 2, "Cached Information",
                          IsOffer(message) ? RowSpan<TlsMessage>(kCached) : RowSpan<TlsMessage>(kCachedType), message);
}

void ShowStatusRequest(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.type == kCertificate) return ShowCertificateStatus(in, c, message);
  if (Left(c) < 1) return;
  ShowRows<TlsMessage>(in, c, kStatusType, message);
  ShowTlsList<TlsMessage>(in, c, 2, "Responder IDs", kResponderId, message);
  ShowRows<TlsMessage>(in, c, kRequestExtensions, message);
}
void ShowStatusRequests(const Place& in, Cursor& c, TlsMessage& message) {
  if (Left(c) < 1) return;
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Status Requests", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    ShowRows<TlsMessage>(under, list, kStatusType, message);
    ShowRows<TlsMessage>(under, list, kRequestLength, message);
    ShowTlsList<TlsMessage>(under, list, 2, "Responder IDs", kResponderId, message);
    ShowRows<TlsMessage>(under, list, kRequestExtensions, message);
  }
}

void ShowTrustedAuthorities(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr uint32_t kPreAgreed = 0, kName = 2;
  if (!IsOffer(message)) return;
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Trusted Authorities", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    ShowRows<TlsMessage>(under, list, kAuthorityType, message);
    if (message.choice.value == kPreAgreed) continue;
    if (message.choice.value != kName) {
      ShowRows<TlsMessage>(under, list, kAuthorityHash, message);
      continue;
    }
    const Field length = TakeU16(list);
    AddLine(under, length, "Distinguished Name Length: %u", length.value);
    Cursor name = TakeCursor(list, length.value);
    ShowX509Name(under, name, "Distinguished Name");
  }
}

void ShowOidFilters(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr auto kFilter = Rows<TlsMessage>({
      Counted(1, Digits("Certificate Extension OID")), Counted(2, Digits("Certificate Extension Values"))});
  ShowTlsList<TlsMessage>(in, c, 2, "OID Filters", kFilter, message);
}
void ShowTimestamps(const Place& in, Cursor& c, TlsMessage&) {
  if (Left(c) > 0) ShowTimestampList(in, c);
}

// A credential that an end's certificate vouches for (RFC 9345); a client offers the algorithms it takes.
void ShowDelegatedCredential(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.type != kCertificate) return ShowSchemes(in, c, message);
  ShowRows<TlsMessage>(in, c, kCredential, message);
  const Field length = TakeU24(c);
  AddLine(in, length, "Public Key Length: %u", length.value);
  Cursor key = TakeCursor(c, length.value);
  ShowX509PublicKey(in, key);
  ShowTlsSignature(in, c, message);
}
void ShowOuterExtensions(const Place& in, Cursor& c, TlsMessage& message) {
  ShowTlsList<TlsMessage>(in, c, 1, "Outer Extensions", kOuterExtension, message);
}
void ShowEncryptedName(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr auto kNameNonce = Rows<TlsMessage>({Bytes(16, "Nonce")});
  ShowRows<TlsMessage>(in, c, IsOffer(message) ? RowSpan<TlsMessage>(kEncryptedName) : RowSpan<TlsMessage>(kNameNonce),
                       message);
}
void ShowQuicParameters(const Place& in, Cursor& c, TlsMessage&) { ShowQuicTransportParameters(in, c); }

// What both ends have of the extensions that change how records are made.
void ShowAgreed(const TlsMessage& message, uint32_t bit) {
  TlsConnection& connection = *message.handshake->connection;
  if (IsOffer(message)) connection.offered |= bit;
  if (message.type == kServerHello || message.type == kEncryptedExtensions) connection.negotiated |= bit;
}
void AgreeOnMac(const Place&, Cursor&, TlsMessage& message) { ShowAgreed(message, kTlsEncryptThenMac); }
void AgreeOnSecret(const Place&, Cursor&, TlsMessage& message) { ShowAgreed(message, kTlsExtendedMasterSecret); }
void AgreeOnHmac(const Place&, Cursor&, TlsMessage& message) { ShowAgreed(message, kTlsTruncatedHmac); }
void AgreeOnEarlyData(const Place& in, Cursor& c, TlsMessage& message) {
  ShowAgreed(message, kTlsEarlyData);
  ShowEarlyData(in, c, message);
}
void AgreeOnConnectionId(const Place& in, Cursor& c, TlsMessage& message) {
  ShowAgreed(message, kTlsConnectionIds);
  ShowConnectionId(in, c, message);
}

// Those that have no more than a name are told apart by TlsExtensionName.
constexpr auto kExtensions = Choices<TlsMessage>({
    {0, nullptr, {}, ShowServerNames}, {1, nullptr, kFragmentLength}, {3, nullptr, {}, ShowTrustedAuthorities},
    {4, nullptr, {}, AgreeOnHmac}, {5, nullptr, {}, ShowStatusRequest}, {6, nullptr, {}, ShowMappings},
    {7, nullptr, {}, ShowAuthorizations}, {8, nullptr, {}, ShowAuthorizations}, {9, nullptr, {}, ShowCertificateTypes},
    {10, nullptr, {}, ShowGroups}, {11, nullptr, {}, ShowFormats}, {12, nullptr, kUserName},
    {13, nullptr, {}, ShowSchemes}, {14, nullptr, {}, ShowSrtp}, {15, nullptr, kHeartbeat},
    {16, nullptr, {}, ShowProtocols}, {17, nullptr, {}, ShowStatusRequests}, {18, nullptr, {}, ShowTimestamps},
    {19, nullptr, {}, ShowCertificateTypes}, {20, nullptr, {}, ShowCertificateTypes}, {21, nullptr, kPadding},
    {22, nullptr, {}, AgreeOnMac}, {23, nullptr, {}, AgreeOnSecret}, {24, nullptr, {}, ShowTokenBinding},
    {25, nullptr, {}, ShowCached}, {27, nullptr, {}, ShowCompressions}, {28, nullptr, kSizeLimit},
    {29, nullptr, {}, ShowPasswordName}, {30, nullptr, {}, ShowPasswordName}, {31, nullptr, kSalt},
    {32, nullptr, {}, ShowTicketPinning}, {34, nullptr, {}, ShowDelegatedCredential}, {35, nullptr, {}, ShowTicket},
    {39, nullptr, {}, ShowEktCiphers}, {41, nullptr, {}, ShowPreSharedKey},
    {42, nullptr, {}, AgreeOnEarlyData}, {43, nullptr, {}, ShowVersions}, {44, nullptr, kCookie},
    {45, nullptr, {}, ShowModes}, {47, nullptr, {}, ShowTlsAuthorities}, {48, nullptr, {}, ShowOidFilters},
    {50, nullptr, {}, ShowSchemes}, {51, nullptr, {}, ShowKeyShare}, {52, nullptr, {}, ShowTransparencyItems},
    {53, nullptr, kConnectionId},
    {54, nullptr, {}, AgreeOnConnectionId}, {55, nullptr, kIdHash}, {56, nullptr, kExternalSession},
    {57, nullptr, {}, ShowQuicParameters}, {58, nullptr, {}, ShowTicketRequest}, {59, nullptr, {}, ShowDnsChain},
    {62, nullptr, kFlags}, {13172, nullptr, {}, ShowNextProtocols}, {17513, nullptr, {}, ShowSettings},
    {17613, nullptr, {}, ShowSettings}, {0xFD00, nullptr, {}, ShowOuterExtensions},
    {0xFE0D, nullptr, {}, ShowEncryptedHello}, {0xFF01, nullptr, kRenegotiated},
    {0xFFA5, nullptr, {}, ShowQuicParameters}, {0xFFCE, nullptr, {}, ShowEncryptedName}});
constexpr Choice<TlsMessage> kUnexplained{0, nullptr, kOther};

void ShowExtension(const Place& in, Cursor& c, TlsMessage& message) {
  const Cursor start = c;
  const Field type = TakeU16(c), length = TakeU16(c);
  if (!length.here) {
    c = start;
    return static_cast<void>(AddBlock(in, Rest(c), "Data"));
  }
  Cursor value = TakeCursor(c, length.value);
  const char* name = TlsExtensionName(type.value);
  const Place under = Under(in, AddLine(in, Ahead(start, c.offset - start.offset), "Extension: %s", name));
  AddLine(under, type, "Type: %u = %s", type.value, name);
  AddLine(under, length, "Length: %u", length.value);
  if (Left(value) < 1 && length.value > 0) return;   // cut
  const Choice<TlsMessage>* choice = FindChoice<TlsMessage>(kExtensions, type.value);
  message.choice = Field{};
  ShowChoice<TlsMessage>(under, value, choice || Left(value) < 1 ? choice : &kUnexplained, message);
}

}  // namespace

void ShowTlsExtensions(const Place& in, Cursor& c, TlsMessage& message) {
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Extensions", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) ShowExtension(under, list, message);
}

}  // namespace qxview
