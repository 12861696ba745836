// The names of Internet protocol numbers (IANA, Assigned Internet Protocol Numbers).
#pragma once
#include <cstdint>

namespace qxview {

// The name of a protocol carried by IPv4; `otherwise` for a number without one.
const char* IpProtocolName(uint32_t protocol, const char* otherwise = "Unassigned");

// The name of an IPv6 next header: the same names for 0 to 133, "unknown header type" above.
const char* NextHeaderName(uint32_t nextHeader);

}  // namespace qxview
