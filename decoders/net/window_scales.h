// TCP window scales (RFC 7323): what the SYN segments of a connection said, for the windows of its later segments.
#pragma once
#include <cstdint>

namespace qxview {

struct Place;

constexpr int32_t kNoWindowScale = -1;

struct WindowScales {
  struct Direction {
    uint32_t synSequence;
    int8_t exponent;
    bool synSeen;
    bool answers;   // the SYN was an answer
  } directions[2];  // from the first end of the connection's key, from the second
};

// Takes in a SYN segment of the current packet's connection and direction: its sequence number, whether it also
// acknowledges, and the exponent of its option (kNoWindowScale without one, above 14 taken as 14). A SYN that does not
// acknowledge and has a new sequence number opens the connection afresh.
void RecordSynSegment(const Place& at, uint32_t sequence, bool acknowledges, int32_t exponent);

// The exponent for windows in the current packet's direction; kNoWindowScale unless both sides sent the option.
int32_t FindWindowScale(const Place& at);

}  // namespace qxview
