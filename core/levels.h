// Nesting levels and the images (icon and style) that lines take from them.
#pragma once
#include <cstdint>

namespace qxview {

constexpr int32_t kImageCount = 23;      // 22 bitmaps; image 22 repeats bitmap 0
constexpr int32_t kRawDataImage = 6;     // top-level raw-data blocks
constexpr int32_t kBitFieldImage = 13;   // bit-field detail lines and dump rows, at every level
constexpr int32_t kFirstLevel = 2;       // level of a frame's first line

constexpr int32_t LevelImage(int32_t level) { return 7 + level; }
constexpr int32_t NextLevel(int32_t level) { return level >= 5 ? 2 : level + 1; }
constexpr int32_t PrevLevel(int32_t level) { return level < 3 ? 5 : level - 1; }

// 1 << n for n below 16, else 0.
constexpr uint32_t BitMask(uint32_t n) { return n < 16 ? 1u << n : 0; }

// How often n / 2 can be halved before it is 0; 0 for n below 2.
constexpr int32_t Log2Floor(uint32_t n) {
  int32_t halvings = 0;
  for (n /= 2; n != 0; n /= 2) ++halvings;
  return halvings;
}

}  // namespace qxview
