#include "decoders/common/guid.h"

#include "core/digits.h"

namespace qxview {

GuidText TextOfGuid(const Field& guid, GuidOrder order, GuidLetters letters) {
  constexpr uint8_t kBig[kGuidSize] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  constexpr uint8_t kLittle[kGuidSize] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  GuidText made{};
  if (!guid.here || guid.length != kGuidSize) return made;
  const char* digits = letters == GuidLetters::kUpper ? kHexUpper : kHexLower;
  const Cursor c = CursorOver(guid);
  char* out = made.text;
  for (int32_t i = 0; i < kGuidSize; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) *out++ = '-';
    const uint32_t byte = PeekU8(c, order == GuidOrder::kBig ? kBig[i] : kLittle[i]);
    *out++ = digits[byte >> 4];
    *out++ = digits[byte & 15];
  }
  return made;
}

void ShowLittleGuid(const Place& in, const Field& guid, const char* label) {
  AddLine(in, guid, "%s: {%s}", label, TextOfGuid(guid, GuidOrder::kLittle));
}

}  // namespace qxview
