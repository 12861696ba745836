#include <windows.h>

#include "platform/platform.h"

namespace qxview {
namespace {

constexpr int64_t kTicksPerSecond = 10000000;
constexpr int64_t kEpoch = 11644473600;   // seconds from 1601, where Windows counts from, to 1970

}  // namespace

int64_t CurrentTime() {
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  const int64_t ticks = static_cast<int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime;
  return ticks / kTicksPerSecond - kEpoch;
}

// By the rules that the zone had in that year, which the C library's local time does not know.
int64_t LocalOffset(int64_t utcSeconds) {
  constexpr int64_t kLast = INT64_MAX / kTicksPerSecond - kEpoch;
  if (utcSeconds < -kEpoch || utcSeconds > kLast) return 0;
  const int64_t ticks = (utcSeconds + kEpoch) * kTicksPerSecond;
  FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  SYSTEMTIME utc, local;
  TIME_ZONE_INFORMATION zone;
  if (!FileTimeToSystemTime(&time, &utc) || !GetTimeZoneInformationForYear(utc.wYear, nullptr, &zone) ||
      !SystemTimeToTzSpecificLocalTime(&zone, &utc, &local) || !SystemTimeToFileTime(&local, &time)) {
    return 0;
  }
  const int64_t localTicks = static_cast<int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
  return (localTicks - ticks) / kTicksPerSecond;
}

}  // namespace qxview
