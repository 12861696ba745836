// SSL 2.0: records of two octets of length, in front of the hellos of clients and servers. What follows them is encrypted
// or of a later version.
//
//   1 and length (15 bits)   type (1)   version (2)   ...
#include "decoders/tls/ssl2.h"

#include "decoders/asn1/x509.h"
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

constexpr uint32_t kClient = 1, kServer = 4;
constexpr auto kTypeNames = SortedNames({
    {0, "Error"}, {1, "Client Hello"}, {2, "Client Master Key"}, {3, "Client Finished"}, {4, "Server Hello"},
    {5, "Server Verify"}, {6, "Server Finished"}, {7, "Request Certificate"}, {8, "Client Certificate"}});

struct Hello {
  Field version, suites, sessionId, challenge, certificate;
};
constexpr auto kClientRows = Rows<Hello>({
    Hex(2, "Version", TlsVersionName).Into(&Hello::version), Number(2, "Cipher Suites Length").Into(&Hello::suites),
    Number(2, "Session ID Length").Into(&Hello::sessionId), Number(2, "Challenge Length").Into(&Hello::challenge)});
constexpr auto kServerRows = Rows<Hello>({
    Number(1, "Session ID Hit"), Number(1, "Certificate Type"), Hex(2, "Version", TlsVersionName).Into(&Hello::version),
    Number(2, "Certificate Length").Into(&Hello::certificate), Number(2, "Cipher Suites Length").Into(&Hello::suites),
    Number(2, "Connection ID Length").Into(&Hello::challenge)});
constexpr auto kSuite = Rows<Hello>({Hex(3, "Cipher Suite", Ssl2SuiteName)});
constexpr auto kClientTail = Rows<Hello>({
    Bytes(0, "Session ID").SizedBy(&Hello::sessionId), Bytes(0, "Challenge").SizedBy(&Hello::challenge)});
constexpr auto kConnectionId = Rows<Hello>({Bytes(0, "Connection ID").SizedBy(&Hello::challenge)});

void ShowSuites(const Place& in, Cursor& c, Hello& hello) {
  Cursor suites = TakeCursor(c, hello.suites.value);
  if (Left(suites) < 1) return;
  const Place under = Under(in, AddLine(in, Ahead(suites, Left(suites)), "Cipher Suites:"));
  Loop loop;
  while (MoreAt(under, suites, loop)) ShowRows<Hello>(under, suites, kSuite, hello);
}

}  // namespace

bool StartsSsl2Hello(const Cursor& c) {
  const uint32_t length = PeekU16(c) & 0x7FFF, type = PeekU8(c, 2);
  if (!(PeekU8(c) & 0x80) || Left(c) < 11) return false;
  if (type == kClient) {
    const uint32_t version = PeekU16(c, 3), suites = PeekU16(c, 5), session = PeekU16(c, 7), challenge = PeekU16(c, 9);
    const bool isKnown = version == kSsl2 || (version >= kSsl3 && version <= kTls13);
    return isKnown && suites > 0 && suites % 3 == 0 && length == 9 + suites + session + challenge;
  }
  return type == kServer && PeekU16(c, 5) == kSsl2 &&
         length == 11 + PeekU16(c, 7) + PeekU16(c, 9) + PeekU16(c, 11);
}

bool ShowSsl2Record(const Place& in, Cursor& c, TlsSession& session) {
  if (!StartsSsl2Hello(c)) return false;
  const uint32_t stated = (PeekU16(c) & 0x7FFF) + 2, type = PeekU8(c, 2);
  const int32_t here = static_cast<int32_t>(stated) < Left(c) ? static_cast<int32_t>(stated) : Left(c);
  const Place under = Under(in, AddLine(in, Ahead(c, here), "SSL 2.0 Record: %s", LookupName(kTypeNames, type)));
  Cursor record = TakeCursor(c, stated);
  const Field length = TakeU16(record), kind = TakeU8(record);
  AddLine(under, length, "Length: %u", length.value & 0x7FFF);
  AddLine(under, kind, "Handshake Message Type: %u = %s", kind.value, LookupName(kTypeNames, kind.value));
  if (type == kClient) {
    Hello hello = ShowRows(under, record, kClientRows);
    ShowSuites(under, record, hello);
    ShowRows<Hello>(under, record, kClientTail, hello);
    session.connection.clientEnd = static_cast<uint8_t>(session.end + 1);
  } else {
    Hello hello = ShowRows(under, record, kServerRows);
    Cursor certificate = TakeCursor(record, hello.certificate.value);
    if (Left(certificate) > 0) ShowX509Certificate(under, certificate);
    ShowSuites(under, record, hello);
    ShowRows<Hello>(under, record, kConnectionId, hello);
    session.connection.version = kSsl2;
  }
  record.ranShort = false;
  AddBlock(under, Rest(record), "Data");
  return true;
}

}  // namespace qxview
