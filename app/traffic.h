// Packets and their bytes, as statistics add them up.
#pragma once
#include <algorithm>
#include <cstdint>

namespace qxview {

struct Traffic {
  uint64_t packets = 0, bytes = 0;
  Traffic& operator+=(const Traffic& other) {
    packets += other.packets;
    bytes += other.bytes;
    return *this;
  }
};

// Both directions: from the end that sent first, and back.
struct TwoWays {
  Traffic there, back;
  int64_t first = 0, last = 0;   // of all packets, nanoseconds since the run's first one
  bool firstIsSecond = false;    // of the two ends in the key

  // Counts a packet; `swapped`: the end that sent it stands second in the key.
  void Add(bool isNew, bool swapped, int64_t since, uint64_t length) {
    if (isNew) {
      first = last = since;
      firstIsSecond = swapped;
    }
    first = std::min(first, since);   // where the clock was set back
    last = std::max(last, since);
    (swapped == firstIsSecond ? there : back) += {1, length};
  }
  TwoWays& operator+=(const TwoWays& other) {
    there += other.there;
    back += other.back;
    return *this;
  }
};
inline uint64_t PacketsOf(const TwoWays& count) { return count.there.packets + count.back.packets; }
inline uint64_t BytesOf(const TwoWays& count) { return count.there.bytes + count.back.bytes; }

}  // namespace qxview
