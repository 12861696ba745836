// Payloads: what of a connection's stream a packet holds.
#include "decoders/asn1/ldap.h"

#include "decoders/app/tls_record.h"
#include "decoders/asn1/ldap_names.h"
#include "decoders/net/port_dispatch.h"

namespace qxview {
namespace {

constexpr uint32_t kTlsBuiltin = 0x1E;
constexpr const char* kContinuationTitle = "LDAP Continuation Data";

// Whether a whole message head starts here whose lengths agree with one another, as they do nowhere inside a message
// but by design: the operation ends where the message does, or its controls do.
bool IsMessageHead(const Cursor& c) {
  BerElement message;
  if (!StartsMessage(c, message)) return false;
  Cursor rest = message.contents;
  TakeBytes(rest, PeekBer(rest).size);
  const BerElement operation = PeekBer(rest);
  if (!operation.here) return false;
  const int64_t behind = message.size - (rest.offset - c.offset) - operation.size;
  if (behind <= 0 || IsCut(operation)) return behind >= 0 && (behind == 0 || IsCut(message));
  TakeBytes(rest, operation.size);
  if (Left(rest) == 0) return IsCut(message);
  const BerElement controls = PeekBer(rest);
  return controls.here && controls.identifier == kLdapControls && controls.size == behind;
}

// The octets in front of the next message; all when there is none.
Cursor TakeUntilMessage(Cursor& c) {
  const int32_t left = Left(c);
  int32_t i = 1;
  for (; i < left; ++i) {
    if (PeekU8(c, i) != kAsnSequence) continue;
    Cursor head = c;
    TakeBytes(head, i);
    if (IsMessageHead(head)) break;
  }
  return TakeCursor(c, i);
}

}  // namespace

int32_t DecodeLdap(const Place& at, Cursor c) {
  if (StartsTlsRecord(c)) {
    return CallDecoder(at, c, FindBuiltinDecoder(kTlsBuiltin)->decode, "SSL/TLS Data");
  }
  BerWalk walk{&kLdapTitles, kMostLdapElements};
  bool isKnown = PacketOf(at).ipProtocol == kIpProtocolTcp;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const int32_t start = c.offset;
    if (!ShowLdapMessages(at, c, walk)) return kAsnTruncated;
    while (ShowSaslBuffer(at, c, walk)) {
    }
    if (c.offset > start) {
      isKnown = true;
      continue;
    }
    if (!isKnown) return kAsnNotThisType;
    Cursor part = TakeUntilMessage(c);
    AddRawRest(at, part, kContinuationTitle);
  }
  return kAsnDecoded;
}

}  // namespace qxview
