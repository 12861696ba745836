// Dynamic Host Configuration Protocol for IPv6 (RFC 8415): its messages, which options may carry, and its options.
#pragma once
#include "decoders/app/dhcp.h"

namespace qxview {

// One of IANA's registry of message types.
const char* Dhcpv6TypeName(uint32_t type);

// Seconds since 2000, in a line.
void ShowDhcpv6Time(const Place& in, const Field& field, const char* label);

// The fields and options of a message under its line, those that it relays included.
void ShowDhcpv6Message(const Place& in, Cursor& c, DhcpMessage& message);
void ShowDhcpv6Options(const Place& in, Cursor& c, DhcpMessage& message);

}  // namespace qxview
