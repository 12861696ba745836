#include "app/list_time.h"

#include "app/command_line.h"
#include "app/fast_text.h"
#include "app/time_sums.h"
#include "core/formatter.h"
#include "host/time_text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

constexpr int64_t kPerSecond = 1000000000;

int64_t FloorSeconds(int64_t nanoseconds) {
  return nanoseconds / kPerSecond - (nanoseconds % kPerSecond < 0 ? 1 : 0);
}

}  // namespace

int64_t ListTime::OffsetAt(int64_t seconds) {
  constexpr int64_t kSpan = 900;   // zones change on quarters of an hour, and a capture has many packets in one
  if (seconds >= offsetFrom_ && seconds < offsetUntil_) return localOffset_;
  localOffset_ = LocalOffset(seconds);
  offsetFrom_ = seconds - ((seconds % kSpan) + kSpan) % kSpan;
  offsetUntil_ = offsetFrom_ + kSpan;
  return localOffset_;
}

int32_t ListTime::Format(const PacketTimes& times, int32_t digits, char* out) {
  int64_t nanoseconds = times.now;
  if (form_ == TimeForm::kAbsolute || form_ == TimeForm::kUtc || form_ == TimeForm::kIso) {
    if (form_ == TimeForm::kAbsolute) nanoseconds = TimeBehind(nanoseconds, OffsetAt(FloorSeconds(nanoseconds)) * kPerSecond);
    FormatUtcTime(nanoseconds, out, kSize);
    int32_t length = 20 + digits;
    if (form_ == TimeForm::kIso) {
      out[length++] = 'Z';
    } else {
      out[10] = ' ';   // in place of the T between date and time
    }
    out[length] = 0;
    return length;
  }
  const int64_t start = form_ == TimeForm::kEpoch      ? 0
                        : form_ == TimeForm::kRelative ? times.first
                        : form_ == TimeForm::kDelta    ? times.before
                                                       : times.shownBefore;
  const int64_t elapsed = static_cast<int64_t>(static_cast<uint64_t>(nanoseconds) - static_cast<uint64_t>(start));
  const uint64_t size = elapsed < 0 ? 0 - static_cast<uint64_t>(elapsed) : static_cast<uint64_t>(elapsed);
  const uint32_t fraction = static_cast<uint32_t>(size % kPerSecond);
  char* at = out;
  if (elapsed < 0) *at++ = '-';
  at = PutDecimal(at, size / kPerSecond);
  *at++ = '.';
  at = PutFilledDigits(at, digits == 9 ? fraction : fraction / 1000, digits, '0');
  *at = 0;
  return static_cast<int32_t>(at - out);
}

std::string ListTime::Line(const PacketTimes& times, bool isInNanoseconds) {
  static constexpr const char* kSince[] = {" since the first packet", " since the packet before",
                                           " since the packet shown before", " local time", " UTC", "", ""};
  char text[kSize];
  Format(times, isInNanoseconds || times.now % 1000 != 0 ? 9 : 6, text);
  return std::string("Time: ") + text + kSince[static_cast<size_t>(form_)];
}

void AddTimeOption(Command* command, TimeForm* form) {
  command->AddChoice<TimeForm>("-t", "FORM",
                               "time: r since the first packet, d since the one before, dd since the one shown before, "
                               "a local, u UTC, e seconds since 1970, i ISO 8601",
                               {{"r", TimeForm::kRelative},
                                {"d", TimeForm::kDelta},
                                {"dd", TimeForm::kDeltaShown},
                                {"a", TimeForm::kAbsolute},
                                {"u", TimeForm::kUtc},
                                {"e", TimeForm::kEpoch},
                                {"i", TimeForm::kIso}},
                               form);
}

}  // namespace qxview
