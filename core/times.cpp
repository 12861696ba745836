#include "core/times.h"

#include "core/civil_date.h"
#include "core/digits.h"

namespace qxview {
namespace {

int32_t WriteNotSet(const DeferredText&, char* out, int32_t size) { return FormatInto(out, size, "Not set"); }

char* PutPair(char* to, char before, uint32_t below100) {
  *to = before;
  std::memcpy(to + 1, kDigitPairs.decimal + 2 * below100, 2);
  return to + 3;
}

char* PutSecond(char* to, int64_t second) {
  const CivilTime time = TimeOfSecond(second);
  const uint32_t year = static_cast<uint32_t>(time.year);
  if (year < 10000) [[likely]] {
    std::memcpy(to, kDigitPairs.decimal + 2 * (year / 100), 2);
    std::memcpy(to + 2, kDigitPairs.decimal + 2 * (year % 100), 2);
    to += 4;
  } else {
    to = PutDigits(to, year);
  }
  to = PutPair(PutPair(to, '-', time.month), '-', time.day);
  return PutPair(PutPair(PutPair(to, ' ', time.hour), ':', time.minute), ':', time.second);
}

// A second with the first digits of its nanoseconds. Written aside, as there may be less room.
int32_t WriteUtc(const DeferredText& text, char* out, int32_t size) {
  constexpr int32_t kMostDigits = 9;
  const auto& time = static_cast<const TimeText&>(text);
  char made[48];
  char* at = PutSecond(made, time.time);
  if (time.digits > 0) {
    *at = '.';
    uint32_t scale = 1000000000, left = time.nanoseconds % scale;
    for (int32_t i = 1; i <= kMostDigits; i += 3) {
      scale /= 1000;
      std::memcpy(at + i, kDigitPairs.triples[left / scale], 3);
      left %= scale;
    }
    at += 1 + (time.digits > kMostDigits ? kMostDigits : time.digits);
  }
  *at = 0;
  const int32_t length = static_cast<int32_t>(at - made);
  if (length >= size) return FormatInto(out, size, "%s", static_cast<const char*>(made));
  std::memcpy(out, made, static_cast<size_t>(length) + 1);
  return length;
}

int32_t WriteDos(const DeferredText& text, char* out, int32_t size) {
  const uint64_t words = static_cast<uint64_t>(static_cast<const TimeText&>(text).time);
  const uint32_t date = static_cast<uint32_t>(words >> 32), time = static_cast<uint32_t>(words);
  return FormatInto(out, size, "%.04u-%.02u-%.02u %.02u:%.02u:%.02u", 1980 + (date >> 9), date >> 5 & 15, date & 31, time >> 11,
                    time >> 5 & 63, 2 * (time & 31));
}

int32_t WriteSpan(const DeferredText& text, char* out, int32_t size) {
  const uint32_t span = static_cast<uint32_t>(static_cast<const TimeText&>(text).time);
  const uint32_t millionths = static_cast<uint32_t>(uint64_t{span & 0xFFFF} * 1000000 >> 16);
  return FormatInto(out, size, "%u.%.06u seconds", span >> 16, millionths);
}

TimeText NotSet() { return {{WriteNotSet}, 0, 0, 0}; }

}  // namespace

TimeText UnixTimeText(uint32_t seconds) { return seconds == 0 || seconds == UINT32_MAX ? NotSet() : UtcText(seconds); }

TimeText FileTimeText(uint64_t ticks) {
  constexpr uint64_t kTicksASecond = 10000000;
  constexpr int64_t kSecondsTo1970 = 11644473600;
  if (ticks == 0 || ticks >= uint64_t{1} << 63) return NotSet();
  const uint32_t fraction = static_cast<uint32_t>(ticks % kTicksASecond);
  return UtcText(static_cast<int64_t>(ticks / kTicksASecond) - kSecondsTo1970, 100 * fraction, fraction ? 7 : 0);
}

TimeText DosTimeText(uint32_t date, uint32_t time) {
  if (date == 0 && time == 0) return NotSet();
  return {{WriteDos}, static_cast<int64_t>(uint64_t{date} << 32 | time), 0, 0};
}

TimeText NtpTimeText(uint64_t timestamp) {
  constexpr int64_t kSecondsTo1970 = 2208988800, kEra = int64_t{1} << 32;
  if (timestamp == 0) return NotSet();
  const int64_t second = static_cast<int64_t>(timestamp >> 32) - kSecondsTo1970;
  const uint32_t nanoseconds = static_cast<uint32_t>((timestamp & UINT32_MAX) * 1000000000 >> 32);
  return UtcText(timestamp >> 63 ? second : second + kEra, nanoseconds, nanoseconds ? 9 : 0);
}

TimeText UtcText(int64_t seconds, uint32_t nanoseconds, int32_t digits) { return {{WriteUtc}, seconds, nanoseconds, digits}; }

TimeText NtpSpanText(uint32_t span) { return {{WriteSpan}, span, 0, 0}; }

}  // namespace qxview
