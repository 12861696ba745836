// Sums and differences of times: damaged captures have times at the ends of what can be counted, and there they stay.
#pragma once
#include <cstdint>

namespace qxview {

inline int64_t TimeBetween(int64_t from, int64_t to) {
  int64_t between;
  return !__builtin_sub_overflow(to, from, &between) ? between : to > from ? INT64_MAX : INT64_MIN;
}
inline int64_t TimeBehind(int64_t from, int64_t time) {
  int64_t sum;
  return !__builtin_add_overflow(from, time, &sum) ? sum : time > 0 ? INT64_MAX : INT64_MIN;
}

}  // namespace qxview
