// The calendar: dates of days counted from 1970-01-01, and times of seconds counted from there.
#pragma once
#include <cstdint>

namespace qxview {

struct CivilDate {
  int64_t year;
  uint32_t month, day;   // from 1
};

// The proleptic Gregorian date of a day, 0 being 1970-01-01.
CivilDate DateOfDay(int64_t day);

struct CivilTime : CivilDate {
  int64_t dayNumber;   // from 1970-01-01
  uint32_t hour, minute, second;
};

// The date and time of day of a second, 0 being the first of 1970-01-01.
CivilTime TimeOfSecond(int64_t second);

}  // namespace qxview
