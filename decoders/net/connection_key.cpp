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

ConnectionKey DirectionOf(const PacketState& packet) {
  ConnectionKey key{};
  PutEnd(key, 0, packet.source, packet.sourcePort);
  PutEnd(key, 1, packet.destination, packet.destinationPort);
  return key;
}

}  // namespace qxview
