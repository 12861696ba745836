// The pseudo-header that the checksums of TCP and UDP cover (RFC 793, RFC 768).
#pragma once
#include <cstdint>

namespace qxview {

// The one's-complement sum of an IPv4 header's pseudo-header: both addresses, the protocol, and the total length less
// the header length; in words as the machine reads them, folded to 16 bits, to be continued with SumWords. The header
// has at least 20 bytes.
uint32_t PseudoHead(const uint8_t* ipv4Header);

// The same for a transport that does not follow the header at once: the addresses with that protocol and length.
uint32_t PseudoHeadOf(const uint8_t* ipv4Header, uint8_t protocol, uint32_t length);

}  // namespace qxview
