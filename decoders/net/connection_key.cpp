#include "decoders/net/connection_key.h"

#include <cstring>

namespace qxview {
namespace {

void PutEnd(ConnectionKey& key, int32_t end, const AddressSlot& address, uint16_t port) {
  std::memcpy(key.addresses[end], address.address, sizeof address.address);
  key.ports[end] = port;
  key.kinds[end] = static_cast<uint8_t>(address.kind);
}

}  // namespace

ConnectionKey ConnectionOf(const PacketState& packet, int32_t* direction) {
  const int32_t order = std::memcmp(packet.source.address, packet.destination.address, 16);
  const bool sourceFirst = order < 0 || (order == 0 && packet.sourcePort <= packet.destinationPort);
  *direction = sourceFirst ? 0 : 1;
  ConnectionKey key{};
  PutEnd(key, *direction, packet.source, packet.sourcePort);
  PutEnd(key, 1 - *direction, packet.destination, packet.destinationPort);
  return key;
}

uint64_t HashKey(const void* key, uint32_t size) {
  uint64_t mixed = 0;
  for (uint32_t at = 0; at + 8 <= size; at += 8) {
    uint64_t word;
    std::memcpy(&word, static_cast<const uint8_t*>(key) + at, sizeof word);
    mixed = (mixed ^ word) * 0x9E3779B97F4A7C15u;
    mixed ^= mixed >> 32;
  }
  return mixed;
}

}  // namespace qxview
