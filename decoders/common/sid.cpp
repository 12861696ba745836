#include "decoders/common/sid.h"

namespace qxview {
namespace {

constexpr int32_t kHead = 8, kSubAuthority = 4;
constexpr uint32_t kMostSubAuthorities = 15;

}  // namespace

int32_t SidSize(const Cursor& c) {
  const uint32_t count = PeekU8(c, 1);
  const int32_t size = kHead + kSubAuthority * static_cast<int32_t>(count);
  return count <= kMostSubAuthorities && size <= Left(c) ? size : 0;
}

SidText TextOfSid(const Field& sid) {
  Cursor c = CursorOver(sid);
  const uint32_t revision = TakeU8(c).value, count = TakeU8(c).value;
  const uint64_t high = TakeU16(c).value;
  SidText made;
  FormatInto(made.text, sizeof made.text, "S-%u-%I64u", revision, high << 32 | TakeU32(c).value);
  for (uint32_t i = 0; i < count && Left(c) > 0; ++i) {
    AppendFormat(made.text, sizeof made.text, "-%u", TakeLittleU32(c).value);
  }
  return made;
}

}  // namespace qxview
