#include <cstdint>
#include <limits>

#include "files/capture_formats.h"

namespace qxview {

namespace {

constexpr uint64_t kNanosecondsPerSecond = 1000000000;

struct SplitTime {
  uint64_t seconds;
  uint64_t nanoseconds;  // below one second
};

SplitTime SplitDecimal(uint64_t ticks, unsigned exponent) {
  if (exponent > 19) {
    // So many ticks make a second that 64 bits of them do not.
    uint64_t perNanosecond = 100000000000u;
    for (unsigned i = 20; i < exponent; ++i) {
      if (perNanosecond > std::numeric_limits<uint64_t>::max() / 10) return {0, 0};
      perNanosecond *= 10;
    }
    return {0, ticks / perNanosecond};
  }
  uint64_t perSecond = 1;
  for (unsigned i = 0; i < exponent; ++i) perSecond *= 10;
  uint64_t rest = ticks % perSecond;
  uint64_t nanoseconds =
      exponent <= 9 ? rest * (kNanosecondsPerSecond / perSecond) : rest / (perSecond / kNanosecondsPerSecond);
  return {ticks / perSecond, nanoseconds};
}

SplitTime SplitBinary(uint64_t ticks, unsigned exponent) {
  uint64_t seconds = exponent < 64 ? ticks >> exponent : 0;
  uint64_t rest = exponent < 64 ? ticks & ((uint64_t{1} << exponent) - 1) : ticks;
  // rest * 10^9 has up to 94 bits: kept as `high` with the 32 lowest bits apart.
  uint64_t low = (rest & 0xFFFFFFFF) * kNanosecondsPerSecond;
  uint64_t high = (rest >> 32) * kNanosecondsPerSecond + (low >> 32);
  if (exponent < 32) return {seconds, (rest * kNanosecondsPerSecond) >> exponent};
  return {seconds, exponent - 32 < 64 ? high >> (exponent - 32) : 0};
}

}  // namespace

int64_t TicksToNanoseconds(uint64_t ticks, const TickScale& scale) {
  unsigned exponent = scale.resolution & 0x7F;
  SplitTime time = scale.resolution & 0x80 ? SplitBinary(ticks, exponent) : SplitDecimal(ticks, exponent);
  // Whole microseconds: formats that keep those give the same time back.
  constexpr int64_t kMost = std::numeric_limits<int64_t>::max() / 1000 * 1000;
  constexpr int64_t kLeast = std::numeric_limits<int64_t>::min() / 1000 * 1000;
  int64_t seconds, nanoseconds;
  if (__builtin_add_overflow(scale.offsetSeconds, time.seconds, &seconds)) return kMost;
  if (__builtin_mul_overflow(seconds, static_cast<int64_t>(kNanosecondsPerSecond), &nanoseconds)) {
    return seconds < 0 ? kLeast : kMost;
  }
  if (__builtin_add_overflow(nanoseconds, static_cast<int64_t>(time.nanoseconds), &nanoseconds)) return kMost;
  return nanoseconds;
}

}  // namespace qxview
