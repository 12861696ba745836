// The rows of a frame's own dump, which are no lines.
#pragma once
#include <cstdint>

namespace qxview {

// "0010  41 42 ..  43 44 ..   AB..CD" with a dot for what is not ASCII, of up to kFrameRowBytes bytes
// that begin at `at`; not terminated. Returns its length, below kFrameRowSize.
constexpr int32_t kFrameRowBytes = 16, kFrameRowSize = 88;
int32_t FormatFrameRow(char* out, int32_t at, const uint8_t* bytes, int32_t count);

}  // namespace qxview
