// Key exchange messages and signatures (RFC 5246 7.4.3, RFC 8422 5.4, RFC 4279, RFC 5054, RFC 6101): their layout hangs on
// the cipher suite, whose name tells the exchange, and where the suite is not known on which lengths fit.
#include <cstring>

#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr uint32_t kNamedCurve = 3;

constexpr auto kCurveType = Rows<TlsMessage>({
    Number(1, "Curve Type", TlsCurveTypeName).Into(&TlsMessage::choice)});
constexpr auto kNamed = Rows<TlsMessage>({Hex(2, "Named Curve", TlsGroupName).Note(", %s")});
constexpr auto kPrime = Rows<TlsMessage>({
    Counted(1, Digits("Prime")), Counted(1, Digits("Curve Coefficient A")),
    Counted(1, Digits("Curve Coefficient B")), Counted(1, Digits("Base Point")), Counted(1, Digits("Order")),
    Counted(1, Digits("Cofactor"))});
constexpr auto kPoint = Rows<TlsMessage>({Counted(1, Digits("Public Key"))});
constexpr auto kDh = Rows<TlsMessage>({
    Counted(2, Digits("DH Prime (p)")), Counted(2, Digits("DH Generator (g)")), Counted(2, Digits("Public Key"))});
constexpr auto kRsa = Rows<TlsMessage>({Counted(2, Digits("RSA Modulus")), Counted(2, Digits("RSA Exponent"))});
constexpr auto kSrp = Rows<TlsMessage>({
    Counted(2, Digits("SRP Modulus (N)")), Counted(2, Digits("SRP Generator (g)")), Counted(1, Digits("SRP Salt")),
    Counted(2, Digits("SRP Public Key (B)"))});
constexpr auto kSrpClient = Rows<TlsMessage>({Counted(2, Digits("SRP Public Key (A)"))});
constexpr auto kHint = Rows<TlsMessage>({Counted(2, Utf8(0, "PSK Identity Hint"))});
constexpr auto kIdentity = Rows<TlsMessage>({Counted(2, Utf8(0, "PSK Identity"))});
constexpr auto kDhClient = Rows<TlsMessage>({Counted(2, Digits("Public Key"))});
constexpr auto kSecret = Rows<TlsMessage>({Counted(2, Digits("Encrypted Premaster Secret"))});
constexpr auto kBareSecret = Rows<TlsMessage>({Digits("Encrypted Premaster Secret")});
constexpr auto kKerberos = Rows<TlsMessage>({
    Counted(2, Digits("Kerberos Ticket")), Counted(2, Digits("Authenticator")),
    Counted(2, Digits("Encrypted Premaster Secret"))});
constexpr auto kScheme = Rows<TlsMessage>({Hex(2, "Signature Algorithm", TlsSchemeName)});
constexpr auto kSignature = Rows<TlsMessage>({Counted(2, Digits("Signature"))});

enum class Exchange { kUnknown, kRsa, kRsaExport, kDh, kEcdh, kSrp, kKerberos, kPskAlone };
struct KeyExchange {
  Exchange exchange;
  bool hasPsk, isAnonymous;
};

KeyExchange ExchangeOf(const TlsMessage& message) {
  const TlsConnection& connection = *message.handshake->connection;
  if (!connection.version) return {Exchange::kUnknown, false, false};
  const char* name = TlsSuiteName(connection.cipherSuite);
  const char* with = std::strstr(name, "_WITH_");
  const auto has = [&](const char* part) {
    const char* at = std::strstr(name, part);
    return at && with && at < with;
  };
  if (!with) return {Exchange::kUnknown, false, false};
  const bool psk = has("PSK"), anonymous = has("anon");
  if (has("_SRP_")) return {Exchange::kSrp, false, !has("_RSA") && !has("_DSS")};
  if (has("KRB5")) return {Exchange::kKerberos, false, true};
  if (has("ECDH")) return {Exchange::kEcdh, psk, anonymous || psk};
  if (has("DHE_") || has("_DH_") || has("PSK_DHE")) return {Exchange::kDh, psk, anonymous || psk};
  if (has("_RSA_EXPORT")) return {Exchange::kRsaExport, false, false};
  if (has("_RSA")) return {Exchange::kRsa, psk, psk};
  return {psk ? Exchange::kPskAlone : Exchange::kUnknown, psk, true};
}

// Where the suite is not known: a named curve with a point that fits, or else numbers behind their lengths.
Exchange GuessServer(const Cursor& c) {
  const int32_t point = static_cast<int32_t>(PeekU8(c, 3));
  if (PeekU8(c) == kNamedCurve && point > 0 && point + 4 <= Left(c)) return Exchange::kEcdh;
  const int32_t prime = static_cast<int32_t>(PeekU16(c));
  const bool fits = prime >= 32 && prime <= 1024 && prime + 2 < Left(c);
  return fits ? Exchange::kDh : Exchange::kUnknown;
}

void ShowCurve(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr uint32_t kExplicitPrime = 1;
  ShowRows<TlsMessage>(in, c, kCurveType, message);
  if (message.choice.value == kNamedCurve) ShowRows<TlsMessage>(in, c, kNamed, message);
  else if (message.choice.value == kExplicitPrime) ShowRows<TlsMessage>(in, c, kPrime, message);
  else return;
  ShowRows<TlsMessage>(in, c, kPoint, message);
}

}  // namespace

void ShowTlsSignature(const Place& in, Cursor& c, TlsMessage& message) {
  if (Left(c) < 1) return;
  const uint32_t left = static_cast<uint32_t>(Left(c));
  const uint32_t version = message.handshake->connection->version;
  const bool isOld = PeekU16(c) + 2 == left, isNew = PeekU16(c, 2) + 4 == left;
  const bool hasScheme = isNew || (!isOld && version != kSsl3 && version != kTls10 && version != kTls11 && version != kDtls10);
  if (hasScheme) ShowRows<TlsMessage>(in, c, kScheme, message);
  ShowRows<TlsMessage>(in, c, kSignature, message);
}

void ShowServerKeyExchange(const Place& in, Cursor& c, TlsMessage& message) {
  KeyExchange key = ExchangeOf(message);
  if (key.exchange == Exchange::kUnknown) key.exchange = GuessServer(c);
  if (key.hasPsk) ShowRows<TlsMessage>(in, c, kHint, message);
  switch (key.exchange) {
    case Exchange::kEcdh: ShowCurve(in, c, message); break;
    case Exchange::kDh: ShowRows<TlsMessage>(in, c, kDh, message); break;
    case Exchange::kRsaExport: ShowRows<TlsMessage>(in, c, kRsa, message); break;
    case Exchange::kSrp: ShowRows<TlsMessage>(in, c, kSrp, message); break;
    default: return;
  }
  if (!key.isAnonymous) ShowTlsSignature(in, c, message);
}

void ShowClientKeyExchange(const Place& in, Cursor& c, TlsMessage& message) {
  const KeyExchange key = ExchangeOf(message);
  const uint32_t left = static_cast<uint32_t>(Left(c));
  if (key.hasPsk) ShowRows<TlsMessage>(in, c, kIdentity, message);
  switch (key.exchange) {
    case Exchange::kEcdh: return ShowRows<TlsMessage>(in, c, kPoint, message);
    case Exchange::kDh: return ShowRows<TlsMessage>(in, c, kDhClient, message);
    case Exchange::kSrp: return ShowRows<TlsMessage>(in, c, kSrpClient, message);
    case Exchange::kKerberos: return ShowRows<TlsMessage>(in, c, kKerberos, message);
    case Exchange::kRsa:
    case Exchange::kRsaExport:   // SSL 3 has no length in front
      if (message.handshake->connection->version == kSsl3 && PeekU16(c) + 2 != left) {
        return ShowRows<TlsMessage>(in, c, kBareSecret, message);
      }
      return ShowRows<TlsMessage>(in, c, kSecret, message);
    case Exchange::kPskAlone: return;
    case Exchange::kUnknown: break;
  }
  if (PeekU8(c) + 1 == left && left > 1) return ShowRows<TlsMessage>(in, c, kPoint, message);
  if (PeekU16(c) + 2 == left && left > 2) return ShowRows<TlsMessage>(in, c, kSecret, message);
}

}  // namespace qxview
