// Times of packets as text.
#pragma once
#include <cstdint>

namespace qxview {

// "2026-11-21T07:53:33.009197000Z" of nanoseconds since 1970-01-01T00:00:00Z, terminated, within `size` bytes.
void FormatUtcTime(int64_t nanoseconds, char* out, int32_t size);

// "Sun Nov 15 00:52:38 2026\n", the layout of the C library's asctime, of seconds since 1970 as the clock shows them.
// Years above 9999 are cut to their last four digits.
constexpr int32_t kAscTimeSize = 26;
void FormatAscTime(int64_t localSeconds, char (&out)[kAscTimeSize]);

}  // namespace qxview
