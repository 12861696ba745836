#include "host/time_text.h"

#include "core/formatter.h"

namespace qxview {
namespace {

struct Date {
  int64_t year;
  uint32_t month, day;
};

// The proleptic Gregorian date of a day counted from 1970-01-01, in years that start in March.
Date DateOfDay(int64_t day) {
  day += 719468;
  const int64_t era = (day >= 0 ? day : day - 146096) / 146097;
  const uint32_t dayOfEra = static_cast<uint32_t>(day - era * 146097);
  const uint32_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const uint32_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const uint32_t shifted = (5 * dayOfYear + 2) / 153;
  const uint32_t month = shifted < 10 ? shifted + 3 : shifted - 9;
  return {static_cast<int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0), month,
          dayOfYear - (153 * shifted + 2) / 5 + 1};
}

}  // namespace

void FormatUtcTime(int64_t nanoseconds, char* out, int32_t size) {
  constexpr int64_t kPerSecond = 1000000000, kPerDay = 86400 * kPerSecond;
  int64_t day = nanoseconds / kPerDay, rest = nanoseconds % kPerDay;
  if (rest < 0) {
    rest += kPerDay;
    --day;
  }
  const Date date = DateOfDay(day);
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
  const Date date = DateOfDay(day);
  FormatInto(out, kAscTimeSize, "%s %s %2u %02u:%02u:%02u %04u\n", kDays[weekday], kMonths[date.month - 1], date.day, second / 3600, second / 60 % 60,
             second % 60, static_cast<uint32_t>(date.year % 10000));
}

}  // namespace qxview
