// The time column of the packet list.
#pragma once
#include <cstdint>

namespace qxview {

enum class TimeForm { kRelative, kDelta, kAbsolute, kUtc };

class ListTime {
 public:
  explicit ListTime(TimeForm form) : form_(form) {}

  // Writes a packet's time, to the microsecond: since the capture's first packet, since the packet before it, or the date
  // and time of day. Terminated; returns the length. `out` has kSize bytes.
  static constexpr int32_t kSize = 40;
  int32_t Format(int64_t nanoseconds, int64_t first, int64_t before, char* out);

 private:
  int64_t OffsetAt(int64_t seconds);

  TimeForm form_;
  int64_t offsetFrom_ = 0, offsetUntil_ = 0;   // the span of seconds that localOffset_ is good for
  int64_t localOffset_ = 0;                    // seconds east of UTC
};

}  // namespace qxview
