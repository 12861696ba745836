#include "app/list_time.h"

#include <ctime>

#include "core/formatter.h"
#include "host/time_text.h"

namespace qxview {
namespace {

constexpr int64_t kPerSecond = 1000000000;

int64_t FloorSeconds(int64_t nanoseconds) {
  return nanoseconds / kPerSecond - (nanoseconds % kPerSecond < 0 ? 1 : 0);
}

bool LocalTimeOf(int64_t seconds, std::tm* local) {
  const std::time_t time = static_cast<std::time_t>(seconds);
#ifdef _WIN32
  return localtime_s(local, &time) == 0;
#else
  return localtime_r(&time, local) != nullptr;
#endif
}

// Days since 1970-01-01 of a date of the Gregorian calendar.
int64_t DayOf(int64_t year, int32_t month, int32_t day) {
  year -= month <= 2 ? 1 : 0;
  const int64_t era = (year >= 0 ? year : year - 399) / 400;
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

}  // namespace

int64_t ListTime::LocalOffset(int64_t seconds) {
  constexpr int64_t kSpan = 900;   // zones change on quarters of an hour, and a capture has many packets in one
  if (seconds >= offsetFrom_ && seconds < offsetUntil_) return localOffset_;
  std::tm local{};
  localOffset_ = 0;
  if (LocalTimeOf(seconds, &local)) {
    const int64_t shown = DayOf(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) * 86400 +
                          local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
    localOffset_ = shown - seconds;
  }
  offsetFrom_ = seconds - ((seconds % kSpan) + kSpan) % kSpan;
  offsetUntil_ = offsetFrom_ + kSpan;
  return localOffset_;
}

int32_t ListTime::Format(int64_t nanoseconds, int64_t first, int64_t before, char* out) {
  if (form_ == TimeForm::kAbsolute || form_ == TimeForm::kUtc) {
    if (form_ == TimeForm::kAbsolute) nanoseconds += LocalOffset(FloorSeconds(nanoseconds)) * kPerSecond;
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
