#include "core/times.h"

#include "core/civil_date.h"

namespace qxview {
namespace {

constexpr TimeText kNotSet{"Not set"};

TimeText TextOfSecond(int64_t second) {
  const CivilTime time = TimeOfSecond(second);
  TimeText out;
  FormatInto(out.text, sizeof out.text, "%.04u-%.02u-%.02u %.02u:%.02u:%.02u", static_cast<uint32_t>(time.year),
             time.month, time.day, time.hour, time.minute, time.second);
  return out;
}

}  // namespace

TimeText UnixTimeText(uint32_t seconds) {
  return seconds == 0 || seconds == UINT32_MAX ? kNotSet : TextOfSecond(seconds);
}

TimeText FileTimeText(uint64_t ticks) {
  constexpr uint64_t kTicksASecond = 10000000;
  constexpr int64_t kSecondsTo1970 = 11644473600;
  if (ticks == 0 || ticks >= uint64_t{1} << 63) return kNotSet;
  TimeText out = TextOfSecond(static_cast<int64_t>(ticks / kTicksASecond) - kSecondsTo1970);
  const uint32_t fraction = static_cast<uint32_t>(ticks % kTicksASecond);
  if (fraction) AppendFormat(out.text, sizeof out.text, ".%.07u", fraction);
  return out;
}

TimeText DosTimeText(uint32_t date, uint32_t time) {
  if (date == 0 && time == 0) return kNotSet;
  TimeText out;
  FormatInto(out.text, sizeof out.text, "%.04u-%.02u-%.02u %.02u:%.02u:%.02u", 1980 + (date >> 9), date >> 5 & 15,
             date & 31, time >> 11, time >> 5 & 63, 2 * (time & 31));
  return out;
}

TimeText NtpTimeText(uint64_t timestamp) {
  constexpr int64_t kSecondsTo1970 = 2208988800, kEra = int64_t{1} << 32;
  if (timestamp == 0) return kNotSet;
  const int64_t second = static_cast<int64_t>(timestamp >> 32) - kSecondsTo1970;
  TimeText out = TextOfSecond(timestamp >> 63 ? second : second + kEra);
  const uint32_t nanoseconds = static_cast<uint32_t>((timestamp & UINT32_MAX) * 1000000000 >> 32);
  if (nanoseconds) AppendFormat(out.text, sizeof out.text, ".%.09u", nanoseconds);
  return out;
}

TimeText UtcText(int64_t seconds, uint32_t nanoseconds, int32_t digits) {
  TimeText made = TextOfSecond(seconds);
  if (digits < 1) return made;
  char fraction[16];
  FormatInto(fraction, sizeof fraction, ".%.09u", nanoseconds);
  fraction[1 + (digits > 9 ? 9 : digits)] = 0;
  AppendFormat(made.text, sizeof made.text, "%s", static_cast<const char*>(fraction));
  return made;
}

TimeText NtpSpanText(uint32_t span) {
  TimeText made;
  const uint32_t millionths = static_cast<uint32_t>(uint64_t{span & 0xFFFF} * 1000000 >> 16);
  FormatInto(made.text, sizeof made.text, "%u.%.06u seconds", span >> 16, millionths);
  return made;
}

}  // namespace qxview
