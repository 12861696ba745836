// DNSCrypt: what dispatching and DNS ask of it, and what is remembered of its resolvers.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kDnscryptProtocol = 0x1026A;   // as definitions name it

// A resolver, by its end.
struct DnscryptServer {
  uint8_t address[16];
  uint16_t port;
  uint8_t kind, transport;
  uint8_t unused[4];
};
// How queries to it begin: each of its certificates says so, and until one was seen the first query that was answered.
struct DnscryptMagic {
  uint8_t octets[8];
  uint32_t isKnown;
};

// Whether a payload is of DNSCrypt: a response or a relayed query by what it begins with, a query by its resolver.
bool LooksLikeDnscrypt(const Place& at, const Cursor& c, uint8_t transport);

// Whether it is a message of DNS about a resolver's certificates, which stands in clear on the resolver's port.
bool AsksForDnscrypt(const Cursor& c, uint8_t transport);

// A certificate in the text of a TXT record: its lines; what it says of the resolver that it came from.
bool StartsDnscryptCertificate(const Cursor& text);
void ShowDnscryptCertificate(const Place& in, Cursor& text);
void NoteDnscryptCertificate(const Place& at, Cursor data);

}  // namespace qxview
