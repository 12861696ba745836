#include "decoders/common/mobile_identity.h"

namespace qxview {

void AddDigits(const Place& in, const Field& field, const char* name) {
  char digits[64];
  int32_t used = 0;
  for (int32_t i = 0; i < field.length && used < static_cast<int32_t>(sizeof digits) - 3; ++i) {
    const uint32_t halves[] = {PeekU8(field, i) & 0xFu, static_cast<uint32_t>(PeekU8(field, i)) >> 4};
    for (const uint32_t half : halves) {
      if (half < 15) digits[used++] = "0123456789*#abc"[half];
    }
  }
  digits[used] = 0;
  AddLine(in, field, "%s: %s", name, static_cast<const char*>(digits));
  AppendToParent(in, field, ", %s", static_cast<const char*>(digits));
}

void AddNetwork(const Place& in, const Field& field, const char* name) {
  if (field.length < 3 || !field.bytes) return;
  const uint8_t* b = field.bytes;
  const uint32_t country = (b[0] & 0xFu) * 100 + static_cast<uint32_t>(b[0] >> 4) * 10 + (b[1] & 0xFu);
  const uint32_t third = b[1] >> 4, network = (b[2] & 0xFu) * 10 + static_cast<uint32_t>(b[2] >> 4);
  if (third == 15) {
    AddLine(in, field, "%s: MCC %03u, MNC %02u", name, country, network);
  } else {
    AddLine(in, field, "%s: MCC %03u, MNC %03u", name, country, network * 10 + third);
  }
}

}  // namespace qxview
