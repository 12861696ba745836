// The calendar: dates of days counted from 1970-01-01.
#pragma once
#include <cstdint>

namespace qxview {

struct CivilDate {
  int64_t year;
  uint32_t month, day;   // from 1
};

// The proleptic Gregorian date of a day, 0 being 1970-01-01.
CivilDate DateOfDay(int64_t day);

}  // namespace qxview
