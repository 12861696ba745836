#include "core/civil_date.h"

namespace qxview {

// In eras of 400 years, with years that start in March: the leap day is a year's last.
CivilDate DateOfDay(int64_t day) {
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

CivilTime TimeOfSecond(int64_t second) {
  constexpr int64_t kPerDay = 86400;
  const int64_t day = second / kPerDay - (second % kPerDay < 0 ? 1 : 0);
  const uint32_t ofDay = static_cast<uint32_t>(second - day * kPerDay);
  return {DateOfDay(day), day, ofDay / 3600, ofDay / 60 % 60, ofDay % 60};
}

}  // namespace qxview
