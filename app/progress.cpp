#include "app/progress.h"

#include <algorithm>
#include <cstdio>

#include "platform/platform.h"

namespace qxview {
namespace {

constexpr std::chrono::milliseconds kBetween{200};
constexpr double kFirstRate = 1;   // seconds: before that a rate says nothing
constexpr double kShortWait = 5;   // seconds that nobody needs to be told

int shownWidth = 0;
bool yields = false;

// "12 MB", in decimal units.
int PutAmount(double bytes, char* out, size_t size) {
  static constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB"};
  size_t unit = 0;
  for (; bytes >= 1000 && unit < std::size(kUnits) - 1; ++unit) bytes /= 1000;
  return std::snprintf(out, size, bytes < 10 && unit > 0 ? "%.1f %s" : "%.0f %s", bytes, kUnits[unit]);
}

int PutTimeLeft(double seconds, char* out, size_t size) {
  const auto whole = static_cast<unsigned long long>(std::min(seconds, 1e9));
  if (whole < 3600) return std::snprintf(out, size, "  %llu:%02llu left", whole / 60, whole % 60);
  return std::snprintf(out, size, "  %llu:%02llu:%02llu left", whole / 3600, whole / 60 % 60, whole % 60);
}

}  // namespace

void Progress::Show(uint64_t read, uint64_t size) {
  const Clock::time_point now = Clock::now();
  if (now - shown_ < kBetween) return;
  shown_ = now;
  if (yields || !StandardErrorIsTerminal()) return;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(read) / seconds;
  char text[100];
  int length = 0;
  const auto room = [&] { return sizeof text - static_cast<size_t>(length); };
  if (size > 0) {
    const double part = static_cast<double>(std::min(read, size)) / static_cast<double>(size);
    length += std::snprintf(text, room(), "%d%%", static_cast<int>(part * 100));
  } else {
    length += PutAmount(static_cast<double>(read), text, room());
  }
  if (seconds >= kFirstRate) {
    length += std::snprintf(text + length, room(), "  ");
    length += PutAmount(rate, text + length, room());
    length += std::snprintf(text + length, room(), "/s");
    const double left = size > read && read > 0 ? static_cast<double>(size - read) / rate : 0;
    if (left > kShortWait) length += PutTimeLeft(left, text + length, room());
  }
  std::fprintf(stderr, "\r%-*s", shownWidth, text);
  shownWidth = std::max(length, shownWidth);
}

void EraseProgress() {
  if (shownWidth > 0) std::fprintf(stderr, "\r%*s\r", shownWidth, "");
  shownWidth = 0;
}

void YieldTerminal(int64_t file) { yields = IsTerminal(file); }

}  // namespace qxview
