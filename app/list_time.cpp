#include "app/list_time.h"

#include "core/formatter.h"
#include "host/time_text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

constexpr int64_t kPerSecond = 1000000000;

int64_t FloorSeconds(int64_t nanoseconds) {
  return nanoseconds / kPerSecond - (nanoseconds % kPerSecond < 0 ? 1 : 0);
}

}  // namespace

int64_t ListTime::OffsetAt(int64_t seconds) {
  constexpr int64_t kSpan = 900;   // zones change on quarters of an hour, and a capture has many packets in one
  if (seconds >= offsetFrom_ && seconds < offsetUntil_) return localOffset_;
  localOffset_ = LocalOffset(seconds);
  offsetFrom_ = seconds - ((seconds % kSpan) + kSpan) % kSpan;
  offsetUntil_ = offsetFrom_ + kSpan;
  return localOffset_;
}

int32_t ListTime::Format(int64_t nanoseconds, int64_t first, int64_t before, char* out) {
  if (form_ == TimeForm::kAbsolute || form_ == TimeForm::kUtc) {
    if (form_ == TimeForm::kAbsolute) nanoseconds += OffsetAt(FloorSeconds(nanoseconds)) * kPerSecond;
    FormatUtcTime(nanoseconds, out, kSize);
    out[10] = ' ';   // in place of the T between date and time
    out[26] = 0;     // to the microsecond
    return 26;
  }
  const uint64_t start = static_cast<uint64_t>(form_ == TimeForm::kRelative ? first : before);
  const int64_t elapsed = static_cast<int64_t>(static_cast<uint64_t>(nanoseconds) - start);
  const uint64_t size = elapsed < 0 ? 0 - static_cast<uint64_t>(elapsed) : static_cast<uint64_t>(elapsed);
  const uint32_t micro = static_cast<uint32_t>(size % kPerSecond / 1000);
  return FormatInto(out, kSize, "%s%I64u.%06u", elapsed < 0 ? "-" : "", size / kPerSecond, micro);
}

}  // namespace qxview
