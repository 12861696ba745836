// Times as frames hold them, as texts of the universal time: "2026-01-02 03:04:05", with a fraction where the form has
// one that is not 0.
#pragma once
#include "core/formatter.h"

namespace qxview {

// Made when its line is formatted: most are of lines that nobody wants.
struct TimeText : DeferredText {
  int64_t time;            // in the unit of its form
  uint32_t nanoseconds;
  int32_t digits;
};

TimeText UnixTimeText(uint32_t seconds);                 // since 1970; "Not set" for 0 and all ones
TimeText FileTimeText(uint64_t ticks);                   // 100 ns since 1601; "Not set" for 0 and from 2^63 on
TimeText DosTimeText(uint32_t date, uint32_t time);      // two words of local time; "Not set" where both are 0
// Seconds and their fraction since 1900, or since 2036 where the top bit is clear (RFC 4330 3); "Not set" for 0.
TimeText NtpTimeText(uint64_t timestamp);

// Seconds since 1970 with `digits` (0 to 9) digits of the fraction behind them, which is in nanoseconds.
TimeText UtcText(int64_t seconds, uint32_t nanoseconds = 0, int32_t digits = 0);
// Seconds and their fraction, 16 bits each (RFC 5905): "0.015625 seconds".
TimeText NtpSpanText(uint32_t span);

}  // namespace qxview
