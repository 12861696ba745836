#include "host/time_text.h"

#include "core/civil_date.h"
#include "core/formatter.h"

namespace qxview {

void FormatUtcTime(int64_t nanoseconds, char* out, int32_t size) {
  constexpr int64_t kPerSecond = 1000000000, kPerDay = 86400 * kPerSecond;
  int64_t day = nanoseconds / kPerDay, rest = nanoseconds % kPerDay;
  if (rest < 0) {
    rest += kPerDay;
    --day;
  }
  const CivilDate date = DateOfDay(day);
  const uint32_t seconds = static_cast<uint32_t>(rest / kPerSecond);
  FormatInto(out, size, "%04u-%02u-%02uT%02u:%02u:%02u.%09uZ", static_cast<uint32_t>(date.year), date.month, date.day,
             seconds / 3600, seconds / 60 % 60, seconds % 60, static_cast<uint32_t>(rest % kPerSecond));
}

void FormatAscTime(int64_t localSeconds, char (&out)[kAscTimeSize]) {
  constexpr int64_t kPerDay = 86400;
  constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const int64_t day = localSeconds / kPerDay - (localSeconds % kPerDay < 0 ? 1 : 0);
  const uint32_t second = static_cast<uint32_t>(localSeconds - day * kPerDay);
  const uint32_t weekday = static_cast<uint32_t>(((day + 4) % 7 + 7) % 7);   // 1970 began on a Thursday
  const CivilDate date = DateOfDay(day);
  FormatInto(out, kAscTimeSize, "%s %s %2u %02u:%02u:%02u %04u\n", kDays[weekday], kMonths[date.month - 1],
             date.day, second / 3600, second / 60 % 60, second % 60, static_cast<uint32_t>(date.year % 10000));
}

}  // namespace qxview
