#include "host/time_text.h"

#include "core/civil_date.h"
#include "core/formatter.h"

namespace qxview {

void FormatUtcTime(int64_t nanoseconds, char* out, int32_t size) {
  constexpr int64_t kPerSecond = 1000000000;
  const int64_t second = nanoseconds / kPerSecond - (nanoseconds % kPerSecond < 0 ? 1 : 0);
  const CivilTime time = TimeOfSecond(second);
  FormatInto(out, size, "%04u-%02u-%02uT%02u:%02u:%02u.%09uZ", static_cast<uint32_t>(time.year), time.month, time.day,
             time.hour, time.minute, time.second, static_cast<uint32_t>(nanoseconds - second * kPerSecond));
}

void FormatAscTime(int64_t localSeconds, char (&out)[kAscTimeSize]) {
  constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const CivilTime time = TimeOfSecond(localSeconds);
  const uint32_t weekday = static_cast<uint32_t>(((time.dayNumber + 4) % 7 + 7) % 7);   // 1970 began on a Thursday
  FormatInto(out, kAscTimeSize, "%s %s %2u %02u:%02u:%02u %04u\n", kDays[weekday], kMonths[time.month - 1],
             time.day, time.hour, time.minute, time.second, static_cast<uint32_t>(time.year % 10000));
}

}  // namespace qxview
