// What tells the connection of the current packet from others: the keys of most state between frames.
#pragma once
#include <cstdint>

#include "core/context.h"

namespace qxview {

// Both ends of a connection, the lower one first, so that both directions find it.
struct ConnectionKey {
  uint8_t addresses[2][16];
  uint16_t ports[2];
  uint8_t kinds[2];
  uint8_t unused[2];
};

// The key of the current packet's connection; `direction` is the end that the packet came from, 0 or 1.
ConnectionKey ConnectionOf(const PacketState& packet, int32_t* direction);

// The key of the current packet's connection in the packet's direction: its source is the first end.
ConnectionKey DirectionOf(const PacketState& packet);

// A connection and the numbers by which its requests and replies find each other.
struct RequestKey {
  ConnectionKey connection;
  uint32_t numbers[4];
};
inline RequestKey RequestOf(const PacketState& packet, uint32_t a, uint32_t b = 0, uint32_t c = 0, uint32_t d = 0) {
  int32_t direction;
  return {ConnectionOf(packet, &direction), {a, b, c, d}};
}

}  // namespace qxview
