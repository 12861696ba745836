#include "decoders/net/ipv6_checksum.h"

#include "core/internet_checksum.h"

namespace qxview {

uint16_t CalculateIPv6PseudoChecksum(const uint8_t* ipv6Header) {
  constexpr int32_t kPayloadLength = 4, kNextHeader = 6, kAddresses = 8, kAddressesSize = 32;
  const uint8_t rest[4] = {0, ipv6Header[kNextHeader], ipv6Header[kPayloadLength], ipv6Header[kPayloadLength + 1]};
  return static_cast<uint16_t>(SumWords(SumWords(0, ipv6Header + kAddresses, kAddressesSize), rest, sizeof rest));
}

uint32_t IPv6PseudoHeadOf(const uint8_t* source, const uint8_t* destination, uint8_t protocol, uint32_t length) {
  const uint8_t rest[8] = {static_cast<uint8_t>(length >> 24), static_cast<uint8_t>(length >> 16),
                           static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length), 0, 0, 0, protocol};
  return SumWords(SumWords(SumWords(0, source, 16), destination, 16), rest, sizeof rest);
}

}  // namespace qxview
