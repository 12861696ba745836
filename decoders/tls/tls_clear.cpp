// Whether a handshake record is in clear: nothing in it says so, but messages have types and lengths.
#include "decoders/tls/tls_messages.h"

namespace qxview {
namespace {

bool MayBeMessage(uint32_t type, uint32_t length) {
  constexpr uint32_t kMostMessage = 1 << 17;   // of certificates
  switch (type) {
    case kHelloRequest:
    case kEndOfEarlyData:
    case kServerHelloDone: return length == 0;
    case kKeyUpdate: return length == 1;
    case kHelloRetryRequest:   // of drafts, of datagrams, and what is never in clear
    case kRequestConnectionId:
    case kNewConnectionId:
    case kClientCertificateRequest:
    case kEktKey:
    case kNextProtocol:
    case kChannelId: return false;
    default: return length < kMostMessage && LookupTlsMessage(type);
  }
}

}  // namespace

bool StartsTlsMessage(const Cursor& c) { return Left(c) >= 4 && MayBeMessage(PeekU8(c), PeekU24(c, 1)); }

bool HoldsTlsMessages(Cursor c, uint32_t recordLength, bool isEncrypted, uint32_t messageLacking) {
  uint32_t left = recordLength;
  if (messageLacking >= left) return !isEncrypted;
  left -= messageLacking;
  TakeBytes(c, messageLacking);
  if (isEncrypted && (messageLacking > 0 || Left(c) < 4)) return false;
  while (Left(c) >= 4) {
    const uint32_t type = TakeU8(c).value, length = TakeU24(c).value;
    left -= left < 4 ? left : 4;
    if (!MayBeMessage(type, length)) return false;
    if (isEncrypted && (length != left || (type != kClientHello && type != kServerHello))) return false;
    if (length >= left) return true;
    left -= length;
    TakeBytes(c, length);
  }
  // A few bytes behind a message are none.
  return c.ranShort || static_cast<uint32_t>(Left(c)) < left || recordLength < 4;
}

}  // namespace qxview
