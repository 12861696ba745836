// Hellos of clients and servers (RFC 8446 4.1, RFC 5246 7.4.1): what they offer, and what the connection will be.
#include <cstring>

#include "core/times.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr int32_t kRandomSize = 32;

// The random of a server's hello that asks for another hello (RFC 8446 4.1.3), and the ends of those that say that the
// server could have spoken a later version.
constexpr uint8_t kRetryRandom[kRandomSize] = {
    0xCF, 0x21, 0xAD, 0x74, 0xE5, 0x9A, 0x61, 0x11, 0xBE, 0x1D, 0x8C, 0x02, 0x1E, 0x65, 0xB8, 0x91,
    0xC2, 0xA2, 0x11, 0x16, 0x7A, 0xBB, 0x8C, 0x5E, 0x07, 0x9E, 0x09, 0xE2, 0xC8, 0xA8, 0x33, 0x9C};
constexpr uint8_t kDowngradeTo12[8] = {'D', 'O', 'W', 'N', 'G', 'R', 'D', 1};
constexpr uint8_t kDowngradeTo11[8] = {'D', 'O', 'W', 'N', 'G', 'R', 'D', 0};

constexpr auto kVersion = Rows<TlsMessage>({Hex(2, "Version", TlsVersionName).Into(&TlsMessage::version)});
constexpr auto kSession = Rows<TlsMessage>({Counted(1, Digits("Session ID"))});
constexpr auto kCookie = Rows<TlsMessage>({Counted(1, Digits("Cookie"))});
constexpr auto kSuite = Rows<TlsMessage>({Hex(2, "Cipher Suite", TlsSuiteName)});
constexpr auto kCompression = Rows<TlsMessage>({Number(1, "Compression Method", TlsCompressionName)});
constexpr auto kChosenSuite = Rows<TlsMessage>({Hex(2, "Cipher Suite", TlsSuiteName).Into(&TlsMessage::suite)});

// Its first four octets were the time once.
Field ShowRandom(const Place& in, Cursor& c) {
  Cursor ahead = c;
  const Field random = TakeBytes(c, kRandomSize);
  const Place under = Under(in, AddLine(in, random, "Random: %s", HexDigits(random)));
  if (!random.here) return random;
  const Field time = TakeU32(ahead), bytes = TakeBytes(ahead, kRandomSize - 4);
  AddLine(under, time, "Unix Time: %s", UtcText(time.value));
  AddLine(under, bytes, "Random Bytes: %s", HexDigits(bytes));
  return random;
}

void KeepClientHello(TlsHandshake& handshake, const Field& random) {
  TlsConnection& connection = *handshake.connection;
  if (!random.here) return;
  handshake.sawHello = true;
  const bool isAgain = connection.hasClientRandom && std::memcmp(connection.clientRandom, random.bytes, kRandomSize) == 0;
  if (isAgain) return;
  const TlsMark before[2] = {connection.before[0], connection.before[1]};
  const TlsMark behind[2] = {connection.behind[0], connection.behind[1]};
  connection = TlsConnection{};
  std::memcpy(connection.before, before, sizeof before);
  std::memcpy(connection.behind, behind, sizeof behind);
  for (TlsMark& mark : connection.behind) mark.isEncrypted = 0;
  connection.clientEnd = static_cast<uint8_t>(handshake.end + 1);
  connection.hasClientRandom = 1;
  std::memcpy(connection.clientRandom, random.bytes, kRandomSize);
}

void KeepServerHello(TlsHandshake& handshake, const Field& random, uint32_t version, const Field& suite) {
  TlsConnection& connection = *handshake.connection;
  handshake.sawHello = true;
  connection.version = static_cast<uint16_t>(version);
  if (suite.here) connection.cipherSuite = static_cast<uint16_t>(suite.value);
  if (!connection.clientEnd) connection.clientEnd = static_cast<uint8_t>(2 - handshake.end);
  if (!random.here) return;
  connection.hasServerRandom = 1;
  std::memcpy(connection.serverRandom, random.bytes, kRandomSize);
}

// The version that a server's hello has chosen in its extension, which stands somewhere among them; what its version
// field says without one.
uint32_t ChosenVersion(Cursor c, uint32_t stated) {
  constexpr uint32_t kSupportedVersions = 43;
  constexpr int32_t kMostExtensions = 64;
  TakeU16(c);
  for (int32_t i = 0; i < kMostExtensions && Left(c) >= 4; ++i) {
    const uint32_t type = TakeU16(c).value, length = TakeU16(c).value;
    const Cursor value = TakeCursor(c, length);
    if (type == kSupportedVersions && Left(value) >= 2) stated = PeekU16(value);
  }
  if (stated >= 0x7F20 && stated < 0x7F40) return kDtls13;   // their drafts
  return stated > 0x7F00 && stated < 0x7F20 ? static_cast<uint32_t>(kTls13) : stated;
}

}  // namespace

void ShowClientHello(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, kVersion, message);
  const Field random = ShowRandom(in, c);
  KeepClientHello(*message.handshake, random);
  ShowRows<TlsMessage>(in, c, kSession, message);
  if (message.handshake->carrier == TlsCarrier::kDatagrams) ShowRows<TlsMessage>(in, c, kCookie, message);
  ShowTlsList<TlsMessage>(in, c, 2, "Cipher Suites", kSuite, message);
  ShowTlsList<TlsMessage>(in, c, 1, "Compression Methods", kCompression, message);
  if (Left(c) > 0) ShowTlsExtensions(in, c, message);
  ShowHelloFingerprints(in, message);
}

void ShowServerHello(const Place& in, Cursor& c, TlsMessage& message) {
  ShowRows<TlsMessage>(in, c, kVersion, message);
  // Drafts of version 1.3 before the 22nd had neither session identifier nor compression method.
  const bool isShort = message.version.value >= 0x7F00 && message.version.value < 0x7F16;
  const bool hasRandom = message.type == kServerHello;
  const Field random = hasRandom ? ShowRandom(in, c) : Field{};
  if (random.here) {
    message.isRetry = std::memcmp(random.bytes, kRetryRandom, sizeof kRetryRandom) == 0;
    const Field end = Slice(random, kRandomSize - 8, 8);
    if (message.isRetry) AppendToParent(in, random, " (Hello Retry Request)");
    if (std::memcmp(end.bytes, kDowngradeTo12, 8) == 0) AddLine(in, end, "Downgrade: from TLS 1.3 to TLS 1.2");
    if (std::memcmp(end.bytes, kDowngradeTo11, 8) == 0) AddLine(in, end, "Downgrade: to TLS 1.1 or below");
  }
  if (!isShort && hasRandom) ShowRows<TlsMessage>(in, c, kSession, message);
  ShowRows<TlsMessage>(in, c, kChosenSuite, message);
  if (!isShort && hasRandom) ShowRows<TlsMessage>(in, c, kCompression, message);
  if (!message.isRetry) {
    KeepServerHello(*message.handshake, random, ChosenVersion(c, message.version.value), message.suite);
  }
  if (Left(c) > 0) ShowTlsExtensions(in, c, message);
  ShowHelloFingerprints(in, message);
}

}  // namespace qxview
