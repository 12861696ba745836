// Packets and their bytes, as statistics add them up.
#pragma once
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
  int64_t first = 0, last = 0;   // nanoseconds since the run's first packet
  bool firstIsSecond = false;    // of the two ends in the key
  TwoWays& operator+=(const TwoWays& other) {
    there += other.there;
    back += other.back;
    return *this;
  }
};
inline uint64_t PacketsOf(const TwoWays& count) { return count.there.packets + count.back.packets; }
inline uint64_t BytesOf(const TwoWays& count) { return count.there.bytes + count.back.bytes; }

}  // namespace qxview
