// The messages of a handshake: what their files share.
#pragma once
#include "core/elements.h"
#include "decoders/common/digits.h"
#include "decoders/tls/tls.h"
#include "decoders/tls/tls_names.h"

namespace qxview {

enum TlsMessageType : uint32_t {
  kHelloRequest = 0, kClientHello = 1, kServerHello = 2, kHelloVerifyRequest = 3, kNewSessionTicket = 4,
  kEndOfEarlyData = 5, kHelloRetryRequest = 6, kEncryptedExtensions = 8, kRequestConnectionId = 9,
  kNewConnectionId = 10, kCertificate = 11, kServerKeyExchange = 12, kCertificateRequest = 13, kServerHelloDone = 14,
  kCertificateVerify = 15, kClientKeyExchange = 16, kClientCertificateRequest = 17,
  kFinished = 20, kCertificateUrl = 21, kCertificateStatus = 22,
  kSupplementalData = 23, kKeyUpdate = 24, kCompressedCertificate = 25, kEktKey = 26,
  kNextProtocol = 67, kChannelId = 203, kMessageHash = 254,
};

// A message while it is shown. Its rows keep their values here.
struct TlsMessage {
  TlsHandshake* handshake;
  uint32_t type;             // TlsMessageType
  bool isRetry;              // a server's hello that asks for another one of the client
  bool isSpoken13;           // the layouts of version 1.3
  Field version, suite, choice;
  Cursor body;               // of the whole message, as far as it is there
};

// Hellos bring the connection up to date.
void ShowClientHello(const Place& in, Cursor& c, TlsMessage& message);
void ShowServerHello(const Place& in, Cursor& c, TlsMessage& message);
void ShowTlsExtensions(const Place& in, Cursor& c, TlsMessage& message);   // with the length in front of them
void ShowEncryptedHello(const Place& in, Cursor& c, TlsMessage& message);
void ShowHelloFingerprints(const Place& in, const TlsMessage& message);

void ShowServerKeyExchange(const Place& in, Cursor& c, TlsMessage& message);
void ShowClientKeyExchange(const Place& in, Cursor& c, TlsMessage& message);
void ShowTlsSignature(const Place& in, Cursor& c, TlsMessage& message);    // with its scheme from version 1.2 on

void ShowTlsCertificates(const Place& in, Cursor& c, TlsMessage& message);
void ShowCertificateStatus(const Place& in, Cursor& c, TlsMessage& message);
void ShowCertificateRequest(const Place& in, Cursor& c, TlsMessage& message);
// Distinguished names, each behind its length (RFC 8446 4.2.4, RFC 5246 7.4.4).
void ShowTlsAuthorities(const Place& in, Cursor& c, TlsMessage& message);
void ShowTimestampList(const Place& in, Cursor& c);   // of certificate transparency (RFC 6962 3.3)

// Of what is rarely met.
void ShowTransparencyItems(const Place& in, Cursor& c, TlsMessage& message);
void ShowTicketPinning(const Place& in, Cursor& c, TlsMessage& message);
void ShowEktCiphers(const Place& in, Cursor& c, TlsMessage& message);
void ShowEktKey(const Place& in, Cursor& c, TlsMessage& message);
void ShowChannelId(const Place& in, Cursor& c, TlsMessage& message);
void ShowSupplementalData(const Place& in, Cursor& c, TlsMessage& message);
void ShowReturnRoutability(const Place& in, Cursor& c);   // a record's content

inline Field TakeSize(Cursor& c, int32_t size) { return size == 1 ? TakeU8(c) : size == 2 ? TakeU16(c) : TakeU24(c); }

// A list behind the octets that count it: the line of its length, and what it holds under a line of its own.
Cursor TakeTlsList(const Place& in, Cursor& c, int32_t countSize, const char* title, Place* under);

// Items of the same rows.
template <class T>
void ShowTlsList(const Place& in, Cursor& c, int32_t countSize, const char* title, std::type_identity_t<RowSpan<T>> each,
                 T& out) {
  Place under;
  Cursor list = TakeTlsList(in, c, countSize, title, &under);
  Loop loop;
  while (MoreAt(under, list, loop)) ShowRows<T>(under, list, each, out);
  list.ranShort = false;   // what is left of an item that is cut
  AddBlock(under, Rest(list), "Data");
}

}  // namespace qxview
