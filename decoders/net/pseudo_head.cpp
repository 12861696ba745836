#include "decoders/net/pseudo_head.h"

#include <cstring>

#include "core/cursor.h"
#include "core/internet_checksum.h"

namespace qxview {

uint32_t PseudoHeadOf(const uint8_t* ipv4Header, uint8_t protocol, uint32_t length) {
  uint8_t pseudo[12] = {0, protocol, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
  std::memcpy(pseudo + 4, ipv4Header + 12, 8);
  return SumWords(0, pseudo, sizeof pseudo);
}

uint32_t PseudoHead(const uint8_t* ipv4Header) {
  const uint32_t headerLength = (ipv4Header[0] & 15u) * 4;
  return PseudoHeadOf(ipv4Header, ipv4Header[9], (ReadU16(ipv4Header + 2) - headerLength) & 0xFFFF);
}

}  // namespace qxview
