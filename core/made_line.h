// The quick way of a line into the tree, inline for what adds most of them: see RoomForLine in core/lines.h.
#pragma once
#include "core/context.h"
#include "view/line_store.h"

namespace qxview {

// Makes the range table longer; true where there is room for another range.
bool GrowRangeTable(DecodeContext* context);

inline bool StoreRange(DecodeContext* context, ByteRange range) {
  if (context->rangeCount + 1 >= context->rangeCapacity && !GrowRangeTable(context)) [[unlikely]] return false;
  context->rangeTable[context->rangeCount] = range;
  return true;
}

// The lines that may be added to without another question; null where they go another way: outside display mode, while the context
// is silent or has found something, at the frame's bound, in trees that keep none.
inline LineStore* OpenLines(const DecodeContext* context, const DecodeTree* tree) {
  if (context->outputMode != kDisplayMode || context->silent || context->findFound || context->packet.linesLeft <= 0 || !tree) {
    return nullptr;
  }
  return tree->Lines();
}

// The line whose text was written where Room gave it.
inline LineHandle AddMadeLineOf(DecodeContext* context, LineStore* lines, LineHandle parentLine, char* room, int32_t length,
                                int32_t image, ByteRange range) {
  --context->packet.linesLeft;
  if (!StoreRange(context, range)) return 0;
  return lines->Add(parentLine, room, static_cast<uint32_t>(length), image, context->rangeCount++);
}

}  // namespace qxview
