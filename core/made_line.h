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
  const uint32_t mode = static_cast<uint8_t>(context->outputMode) | uint32_t{context->silent} << 8;   // one word, one look
  if (mode != static_cast<uint8_t>(kDisplayMode) || context->findFound || context->packet.linesLeft <= 0 || !tree) {
    return nullptr;
  }
  return tree->Lines();
}

// Whether a line with a text of so many bytes can be added there without anything else to do.
inline bool HasRoomForLine(const DecodeContext& context, const LineStore& lines, LineHandle parent, uint32_t size) {
  return parent <= lines.count && lines.HasRoom(1, size) && lines.lines[parent].depth <= LineStore::kDeepestPrinted &&
         !lines.isLinked && context.rangeCount + 1 < context.rangeCapacity;
}

// The line whose text was written where Room gave it.
inline LineHandle AddMadeLineOf(DecodeContext* context, LineStore* lines, LineHandle parentLine, char* room, int32_t length,
                                int32_t image, ByteRange range) {
  --context->packet.linesLeft;
  if (!StoreRange(context, range)) return 0;
  return lines->Add(parentLine, room, static_cast<uint32_t>(length), image, context->rangeCount++);
}

}  // namespace qxview
