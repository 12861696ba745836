// Lists whose elements give many lines for few bytes: they end in a block once the frame has more lines than anyone reads.
#pragma once
#include "core/decoder.h"

namespace qxview {

inline bool HasManyLines(const Place& at) {
  const PacketState& packet = PacketOf(at);
  return packet.frame && MostLinesOf(packet.frame->capturedLength) - packet.linesLeft > kLinesOfLists;
}

// Whether a list goes on with the element at the cursor. Where it does not because the frame has so many lines, all that is left is
// a block.
inline bool ListGoesOn(const Place& in, Cursor& c, Loop& loop) {
  if (!MoreAt(in, c, loop)) return false;
  if (!HasManyLines(in)) [[likely]] return true;
  AddBlock(in, Rest(c), "Further Elements");
  return false;
}

}  // namespace qxview
