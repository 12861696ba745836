#include "decoders/common/object_id.h"

namespace qxview {

bool TakeObjectIdNumber(Cursor& c, uint32_t* number) {
  *number = 0;
  while (Left(c) > 0) {
    const uint32_t octet = TakeU8(c).value;
    *number = *number << 7 | (octet & 0x7F);
    if (!(octet & 0x80)) return true;
  }
  return false;
}

ObjectIdText TextOfObjectId(Cursor contents) {
  constexpr int32_t kRoomForMore = 16;   // a number, or what says that there are more
  ObjectIdText made{};
  uint32_t number;
  if (!TakeObjectIdNumber(contents, &number)) return made;
  const uint32_t root = number < 80 ? number / 40 : 2;
  int32_t used = FormatInto(made.text, sizeof made.text, "%u.%u", root, number - 40 * root);
  while (TakeObjectIdNumber(contents, &number)) {
    if (used + kRoomForMore > static_cast<int32_t>(sizeof made.text)) {
      FormatInto(made.text + used, kRoomForMore, "...");
      break;
    }
    used += FormatInto(made.text + used, kRoomForMore, ".%u", number);
  }
  return made;
}

}  // namespace qxview
