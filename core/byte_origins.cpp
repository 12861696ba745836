#include "core/byte_origins.h"

#include <cstdlib>
#include <cstring>

#include "core/context.h"

namespace qxview {
namespace {

constexpr int32_t kFirstBlock = 64 << 10;
constexpr int32_t kRegionsEnd = 1 << 26;   // ranges hold 27 bits of a signed offset

struct Region {
  int32_t first, length;
  int32_t start;               // of the frame's payload
  const BytePiece* pieces;
  int32_t pieceCount;
};

struct Block {
  Block* before;
  int32_t size, used;
};

}  // namespace

struct ByteOrigins {
  Region* regions;
  int32_t count, capacity;
  int32_t nextOffset;
  Block* blocks;      // the newest first
  int32_t taken;      // bytes of blocks
};

namespace {

void FreeBlocks(ByteOrigins* origins, bool keepFirst) {
  while (Block* block = origins->blocks) {
    if (keepFirst && !block->before && block->size == kFirstBlock) {
      block->used = 0;
      origins->taken = block->size;
      return;
    }
    origins->blocks = block->before;
    std::free(block);
  }
  origins->taken = 0;
}

bool AddBlock(ByteOrigins* origins, int32_t least) {
  const int32_t size = least > kFirstBlock ? least : kFirstBlock;
  if (size > kMostFrameMemory - origins->taken) return false;
  auto* block = static_cast<Block*>(std::malloc(sizeof(Block) + static_cast<size_t>(size)));
  if (!block) return false;
  *block = {origins->blocks, size, 0};
  origins->blocks = block;
  origins->taken += size;
  return true;
}

Region* AddRegion(ByteOrigins* origins, int32_t length) {
  if (origins->count == kMostRegions || length > kRegionsEnd - origins->nextOffset) return nullptr;
  if (origins->count == origins->capacity) {
    const int32_t capacity = origins->capacity ? 2 * origins->capacity : 16;
    void* grown = std::realloc(origins->regions, static_cast<size_t>(capacity) * sizeof(Region));
    if (!grown) return nullptr;
    origins->regions = static_cast<Region*>(grown);
    origins->capacity = capacity;
  }
  Region* region = &origins->regions[origins->count++];
  *region = {origins->nextOffset, length, 0, nullptr, 0};
  origins->nextOffset += length;
  return region;
}

const Region* FindRegion(const ByteOrigins* origins, int32_t offset) {
  int32_t lower = 0, upper = origins->count;
  while (lower < upper) {
    const int32_t middle = (lower + upper) / 2;
    if (origins->regions[middle].first <= offset) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return lower > 0 ? &origins->regions[lower - 1] : nullptr;
}

// The part of a region's range that the current packet brought; the rest goes to `earlier`.
ByteRange SortPieces(const Region& region, ByteRange range, int64_t packet, BytePiece* earlier, int32_t mostEarlier,
                     int32_t* earlierCount) {
  const int64_t from = RangeOffset(range) - region.first;
  const int64_t end = from + RangeLength(range);
  int32_t ownFrom = region.start, ownEnd = region.start;
  int64_t at = 0;   // where the piece starts in the region
  for (int32_t i = 0; i < region.pieceCount && at < end; at += region.pieces[i++].length) {
    const BytePiece& piece = region.pieces[i];
    const int64_t first = from > at ? from : at, last = end < at + piece.length ? end : at + piece.length;
    if (first >= last) continue;
    const int32_t offset = piece.offset + static_cast<int32_t>(first - at), length = static_cast<int32_t>(last - first);
    if (piece.packet == packet) {
      if (ownFrom == ownEnd) ownFrom = offset;
      ownEnd = offset + length;
    } else {
      // Of bytes that were joined in that packet already the packet alone is known.
      const bool isKnown = piece.offset < kFirstRegionOffset;
      if (*earlierCount < mostEarlier) earlier[*earlierCount] = {piece.packet, isKnown ? offset : 0, isKnown ? length : 0};
      ++*earlierCount;
    }
  }
  return MakeByteRange(RangeKind(range), ownFrom, ownEnd > ownFrom ? ownEnd - ownFrom : 0);
}

}  // namespace

ByteOrigins* CreateByteOrigins() {
  auto* origins = static_cast<ByteOrigins*>(std::calloc(1, sizeof(ByteOrigins)));
  if (origins) origins->nextOffset = kFirstRegionOffset;
  return origins;
}

void DestroyByteOrigins(ByteOrigins* origins) {
  if (!origins) return;
  FreeBlocks(origins, false);
  std::free(origins->regions);
  std::free(origins);
}

void ForgetOrigins(ByteOrigins* origins) {
  if (origins->nextOffset == kFirstRegionOffset && origins->taken == 0) return;
  FreeBlocks(origins, true);
  origins->count = 0;
  origins->nextOffset = kFirstRegionOffset;
}

uint8_t* TakeFrameMemory(View* view, int64_t size) {
  ByteOrigins* origins = view->context->origins;
  if (size < 1 || size > kMostFrameMemory) return nullptr;
  const int32_t wanted = (static_cast<int32_t>(size) + 15) & ~15;
  Block* block = origins->blocks;
  if ((!block || block->size - block->used < wanted) && !AddBlock(origins, wanted)) return nullptr;
  block = origins->blocks;
  uint8_t* memory = reinterpret_cast<uint8_t*>(block + 1) + block->used;
  block->used += wanted;
  return memory;
}

Cursor JoinedBytes(View* view, const uint8_t* bytes, int32_t length, const BytePiece* pieces, int32_t pieceCount,
                   int32_t start) {
  if (length < 1 || pieceCount < 1) return MakeCursor(nullptr, start, 0);
  const size_t size = static_cast<size_t>(pieceCount) * sizeof(BytePiece);
  auto* kept = reinterpret_cast<BytePiece*>(TakeFrameMemory(view, static_cast<int64_t>(size)));
  Region* region = kept ? AddRegion(view->context->origins, length) : nullptr;
  if (!region) return MakeCursor(nullptr, start, 0);
  std::memcpy(kept, pieces, size);
  region->pieces = kept;
  region->pieceCount = pieceCount;
  region->start = start;
  return MakeCursor(bytes, region->first, length);
}

OwnRange FindOwnRange(const DecodeContext* context, ByteRange range, BytePiece* earlier, int32_t mostEarlier) {
  OwnRange own{range, 0};
  // Joined bytes may be joined again, as segments are whose datagrams came in fragments: each region leads to one before it.
  // Pieces that are kept for later packets may say such an offset: it is good while their packet is the current one.
  for (int32_t before = INT32_MAX; IsInRegion(own.range);) {
    const int32_t offset = RangeOffset(own.range);
    const Region* region = offset < before ? FindRegion(context->origins, offset) : nullptr;
    if (!region) return {MakeByteRange(RangeKind(range), 0, 0), own.earlierCount};
    before = region->first;
    own.range = SortPieces(*region, own.range, context->packetNumber, earlier, mostEarlier, &own.earlierCount);
  }
  return own;
}

}  // namespace qxview
