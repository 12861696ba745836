// Times of packets, as the packet list's column and a tree's line show them.
#pragma once
#include <cstdint>
#include <string>

namespace qxview {

class Command;

enum class TimeForm { kRelative, kDelta, kDeltaShown, kAbsolute, kUtc, kEpoch, kIso };

// -t of the commands that show times.
void AddTimeOption(Command* command, TimeForm* form);

// When packets were captured, in nanoseconds: this one, the run's first, the one before this (of the first packet itself),
// selected or not, and the one shown before.
struct PacketTimes {
  int64_t now = 0, first = 0, before = 0, shownBefore = 0;
};

class ListTime {
 public:
  explicit ListTime(TimeForm form) : form_(form) {}

  // Writes a packet's time with so many digits behind the point, 6 or 9. Terminated; returns the length. `out` has kSize
  // bytes.
  static constexpr int32_t kSize = 48;
  int32_t Format(const PacketTimes& times, int32_t digits, char* out);
  // The same to the precision that the time has, with what it counts from: a line of a tree.
  std::string Line(const PacketTimes& times, bool isInNanoseconds);

 private:
  int64_t OffsetAt(int64_t seconds);

  TimeForm form_;
  int64_t offsetFrom_ = 0, offsetUntil_ = 0;   // the span of seconds that localOffset_ is good for
  int64_t localOffset_ = 0;                    // seconds east of UTC
};

}  // namespace qxview
