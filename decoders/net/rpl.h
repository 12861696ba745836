// IPv6 Routing Protocol for Low-Power and Lossy Networks: what packets carry of it.
#pragma once
#include "decoders/net/icmpv6.h"
#include "decoders/net/ipv6_extensions.h"

namespace qxview {

// Its control messages (RFC 6550), a type of ICMPv6.
void DecodeRpl(const Place& in, Cursor& c, Icmpv6Message& message);
const char* RplCodeName(uint32_t code);

// The data of its option (RFC 6553) and of its routing header (RFC 6554), whose last address is where the packet goes.
void ShowRplOption(const Place& in, Cursor& c);
void ShowRplRoute(const Place& in, Cursor& c, HeaderChain& chain, uint32_t segmentsLeft);

}  // namespace qxview
