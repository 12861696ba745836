// What tells the connection of the current packet from others, in either direction.
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
static_assert(sizeof(ConnectionKey) == 40, "compared and hashed as bytes");

// The key of the current packet's connection; `direction` is the end that the packet came from, 0 or 1.
ConnectionKey ConnectionOf(const PacketState& packet, int32_t* direction);

// A hash of `size` bytes, a multiple of 8.
uint64_t HashKey(const void* key, uint32_t size);

}  // namespace qxview
