// The pseudo-headers that the checksums of TCP, UDP and ICMPv6 cover over IPv6 (RFC 8200 section 8.1).
#pragma once
#include <cstdint>

namespace qxview {

// The one's-complement sum of the pseudo-header of a 40-byte IPv6 header: both addresses, Next Header and Payload
// Length as the fixed header has them, also where extension headers stand between it and the transport. The two bytes
// of the result in memory are the sum, high byte first; read as a machine word it is to be continued with SumWords.
uint16_t CalculateIPv6PseudoChecksum(const uint8_t* ipv6Header);

// The same for what really follows the extension headers, between these ends (16 bytes each).
uint32_t IPv6PseudoHeadOf(const uint8_t* source, const uint8_t* destination, uint8_t protocol, uint32_t length);

}  // namespace qxview
