#include "core/characters.h"

#include <cstring>

namespace qxview {

std::string_view Utf8Of(uint8_t character, char* scratch) {
  const uint32_t point = CodeOfWindows1252(character);
  if (point < 0x80) {
    scratch[0] = static_cast<char>(point);
    return {scratch, 1};
  }
  if (point < 0x800) {
    scratch[0] = static_cast<char>(0xC0 | point >> 6);
    scratch[1] = static_cast<char>(0x80 | (point & 0x3F));
    return {scratch, 2};
  }
  scratch[0] = static_cast<char>(0xE0 | point >> 12);
  scratch[1] = static_cast<char>(0x80 | (point >> 6 & 0x3F));
  scratch[2] = static_cast<char>(0x80 | (point & 0x3F));
  return {scratch, 3};
}

int32_t ConvertToUtf8(std::string_view text, char* out, int32_t outSize) {
  int32_t needed = 0, written = 0;
  bool fits = out && outSize > 0;
  for (const char c : text) {
    char scratch[kMostUtf8Octets];
    const std::string_view bytes = Utf8Of(static_cast<uint8_t>(c), scratch);
    needed += static_cast<int32_t>(bytes.size());
    fits = fits && needed < outSize;
    if (!fits) continue;
    std::memcpy(out + written, bytes.data(), bytes.size());
    written = needed;
  }
  if (out && outSize > 0) out[written] = 0;
  return needed;
}

}  // namespace qxview
