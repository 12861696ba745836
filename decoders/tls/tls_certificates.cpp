// Certificates and what belongs to them: chains (RFC 8446 4.4.2, RFC 5246 7.4.2), requests, their status (RFC 6066 8,
// RFC 6961) and the timestamps of certificate transparency (RFC 6962 3).
#include "core/times.h"
#include "decoders/asn1/x509.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr auto kContext = Rows<TlsMessage>({Counted(1, Digits("Request Context"))});
constexpr auto kType = Rows<TlsMessage>({Number(1, "Certificate Type", TlsClientCertificateTypeName)});
constexpr auto kScheme = Rows<TlsMessage>({Hex(2, "Signature Algorithm", TlsSchemeName)});
constexpr auto kStatusType = Rows<TlsMessage>({
    Number(1, "Status Type", TlsStatusTypeName).Into(&TlsMessage::choice)});
constexpr auto kVersionNames = SortedNames({{0, "v1"}});

// A DER value behind a length of three octets.
Cursor TakeCounted(const Place& in, Cursor& c, const char* title) {
  const Field length = TakeU24(c);
  AddLine(in, length, "%s Length: %u", title, length.value);
  Cursor value = TakeCursor(c, length.value);
  return value;
}

void ShowTimestamp(const Place& in, Cursor& c) {
  const Field version = TakeU8(c), log = TakeBytes(c, 32);
  AddLine(in, version, "SCT Version: %u = %s", version.value, LookupName(kVersionNames, version.value));
  AddLine(in, log, "Log ID: %s", HexDigits(log));
  const WideField time = TakeU64(c);
  const uint64_t seconds = time.wide / 1000;
  AddLine(in, time, "Timestamp: %s",
          UtcText(seconds > INT32_MAX * int64_t{100} ? 0 : static_cast<int64_t>(seconds),
                  static_cast<uint32_t>(time.wide % 1000) * 1000000, 3));
  const Field extensionsLength = TakeU16(c), extensions = TakeBytes(c, extensionsLength.value);
  AddLine(in, extensionsLength, "SCT Extensions Length: %u", extensionsLength.value);
  if (extensions.length > 0) AddLine(in, extensions, "SCT Extensions: %s", HexDigits(extensions));
  const Field scheme = TakeU16(c), signatureLength = TakeU16(c), signature = TakeBytes(c, signatureLength.value);
  AddLine(in, scheme, "Signature Algorithm: 0x%.04X = %s", scheme.value, TlsSchemeName(scheme.value));
  AddLine(in, signatureLength, "Signature Length: %u", signatureLength.value);
  AddLine(in, signature, "Signature: %s", HexDigits(signature));
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
}

}  // namespace

void ShowTimestampList(const Place& in, Cursor& c) {
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Signed Certificate Timestamps", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    const Field length = TakeU16(list);
    Cursor item = TakeCursor(list, length.value);
    const Place entry = Under(under, AddLine(under, Ahead(item, Left(item)), "Signed Certificate Timestamp:"));
    AddLine(entry, length, "SCT Length: %u", length.value);
    ShowTimestamp(entry, item);
  }
  list.ranShort = false;
  AddBlock(under, Rest(list), "Data");
}

void ShowTlsCertificates(const Place& in, Cursor& c, TlsMessage& message) {
  if (message.isSpoken13) ShowRows<TlsMessage>(in, c, kContext, message);
  Place under;
  Cursor list = TakeTlsList(in, c, 3, "Certificates", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    Cursor certificate = TakeCounted(under, list, "Certificate");
    ShowX509Certificate(under, certificate);
    if (message.isSpoken13 && Left(list) > 0) ShowTlsExtensions(under, list, message);
  }
}

void ShowCertificateStatus(const Place& in, Cursor& c, TlsMessage& message) {
  constexpr uint32_t kOcspMulti = 2;
  ShowRows<TlsMessage>(in, c, kStatusType, message);
  if (message.choice.value != kOcspMulti) {
    Cursor response = TakeCounted(in, c, "OCSP Response");
    return ShowOcspResponse(in, response);
  }
  Place under;
  Cursor list = TakeTlsList(in, c, 3, "OCSP Responses", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    Cursor response = TakeCounted(under, list, "OCSP Response");
    if (Left(response) > 0) ShowOcspResponse(under, response);
  }
}

void ShowCertificateRequest(const Place& in, Cursor& c, TlsMessage& message) {
  const uint32_t version = message.handshake->connection->version;
  if (message.isSpoken13) {
    ShowRows<TlsMessage>(in, c, kContext, message);
    return ShowTlsExtensions(in, c, message);
  }
  ShowTlsList<TlsMessage>(in, c, 1, "Certificate Types", kType, message);
  // The names alone fill the rest of older versions' requests.
  const bool hasSchemes = version == kTls12 || version == kDtls12 ||
                          (version == 0 && PeekU16(c) + 2 != static_cast<uint32_t>(Left(c)));
  if (hasSchemes) ShowTlsList<TlsMessage>(in, c, 2, "Signature Algorithms", kScheme, message);
  ShowTlsAuthorities(in, c, message);
}

void ShowTlsAuthorities(const Place& in, Cursor& c, TlsMessage&) {
  Place under;
  Cursor list = TakeTlsList(in, c, 2, "Distinguished Names", &under);
  Loop loop;
  while (MoreAt(under, list, loop)) {
    const Field length = TakeU16(list);
    AddLine(under, length, "Distinguished Name Length: %u", length.value);
    Cursor name = TakeCursor(list, length.value);
    ShowX509Name(under, name, "Distinguished Name");
  }
}

}  // namespace qxview
