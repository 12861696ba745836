// Where the bytes stood that a decoder reads and that the current frame did not bring alone: what several frames brought,
// joined. Each run of such bytes is a region with offsets of its own, far behind those of any frame. A decoder walks it
// with a cursor as ever; who reads the range of a line gets what the range is in the frame, and can ask where the rest of
// its bytes stood.
#pragma once
#include <cstdint>

#include "core/budgets.h"
#include "core/byte_range.h"
#include "core/cursor.h"

namespace qxview {

struct DecodeContext;
struct View;

// What a packet brought of joined bytes.
struct BytePiece {
  int64_t packet;    // its number
  int32_t offset;    // in that packet's frame
  int32_t length;
};

// Bytes that are good until the next frame is decoded; null for none, without memory, and past the frame's bound.
uint8_t* TakeFrameMemory(View* view, int64_t size);

// A cursor over bytes that these pieces brought, in their order; what the current packet brought has its place in the
// frame, the others have none but `start`, where the frame's payload begins. The bytes must stay good as long as the
// frame is decoded. The cursor is empty when there is no memory.
Cursor JoinedBytes(View* view, const uint8_t* bytes, int32_t length, const BytePiece* pieces, int32_t pieceCount,
                   int32_t start);

// The offsets of regions start here; those of frames end before.
constexpr int32_t kFirstRegionOffset = 1 << 24;
constexpr bool IsInRegion(ByteRange range) { return RangeOffset(range) >= kFirstRegionOffset; }

// A range in the current frame for one that may be of a region. The pieces of its bytes that other packets brought go to
// `earlier`, as many as fit; their number is in `earlierCount`.
struct OwnRange {
  ByteRange range;
  int32_t earlierCount;
};
OwnRange FindOwnRange(const DecodeContext* context, ByteRange range, BytePiece* earlier = nullptr,
                      int32_t mostEarlier = 0);
inline ByteRange RangeInFrame(const DecodeContext* context, ByteRange range) {
  return IsInRegion(range) ? FindOwnRange(context, range).range : range;
}

// The regions and the memory of a context's current frame.
struct ByteOrigins;
ByteOrigins* CreateByteOrigins();   // null when there is no memory
void DestroyByteOrigins(ByteOrigins* origins);
void ForgetOrigins(ByteOrigins* origins);   // a new frame begins

}  // namespace qxview
