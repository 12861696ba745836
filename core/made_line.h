// The quick way of a line into the tree, inline for what adds most of them: see RoomForLine in core/lines.h.
#pragma once
#include "core/context.h"

namespace qxview {

// Makes the range table longer; true where there is room for another range.
bool GrowRangeTable(DecodeContext* context);

inline bool StoreRange(DecodeContext* context, ByteRange range) {
  if (context->rangeCount + 1 >= context->rangeCapacity && !GrowRangeTable(context)) [[unlikely]] return false;
  context->rangeTable[context->rangeCount] = range;
  return true;
}

inline char* RoomForLineOf(const DecodeContext* context, LineHandle parentLine, DecodeTree* tree, int32_t size) {
  if (context->outputMode != kDisplayMode || context->silent || context->findFound || context->packet.linesLeft <= 0 || !tree) {
    return nullptr;
  }
  return tree->RoomForText(parentLine, size);
}

inline LineHandle AddMadeLineOf(DecodeContext* context, LineHandle parentLine, int32_t length, int32_t image, DecodeTree* tree,
                                ByteRange range) {
  --context->packet.linesLeft;
  if (!StoreRange(context, range)) return 0;
  const LineHandle line = tree->AppendMade(parentLine, length, image, context->rangeCount);
  if (line) ++context->rangeCount;
  return line;
}

}  // namespace qxview
