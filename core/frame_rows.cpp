#include "core/frame_rows.h"

#include <cstring>

#include "core/digits.h"
#include "core/formatter.h"

namespace qxview {

int32_t FormatFrameRow(char* out, int32_t at, const uint8_t* bytes, int32_t count) {
  char* end = out + FormatInto(out, kFrameRowSize, "%.04X  ", at);
  char characters[kFrameRowBytes];
  for (int32_t i = 0; i < kFrameRowBytes; ++i, end += 3) {
    if (i == kFrameRowBytes / 2) *end++ = ' ';
    std::memset(end, ' ', 3);
    if (i >= count) continue;
    std::memcpy(end, kHexPairs + 2 * bytes[i], 2);
    characters[i] = bytes[i] >= 0x20 && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
  }
  std::memset(end, ' ', 2);
  std::memcpy(end + 2, characters, static_cast<size_t>(count));
  return static_cast<int32_t>(end - out) + 2 + count;
}

}  // namespace qxview
