// Loops that step along no cursor: along bits, characters, what was inflated.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether such a loop goes on: it ends where lists do. MoreAt is for those along a cursor, and shows what is left.
inline bool GoesOn(const Place& at) {
  const PacketState& packet = PacketOf(at);
  return !packet.limitReached && packet.linesLeft > packet.listsEnd;
}

}  // namespace qxview
