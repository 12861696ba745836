// Times of packets as text.
#pragma once
#include <cstdint>

namespace qxview {

// "2026-11-21T07:53:33.009197000Z" of nanoseconds since 1970-01-01T00:00:00Z, terminated, within `size` bytes.
void FormatUtcTime(int64_t nanoseconds, char* out, int32_t size);

}  // namespace qxview
