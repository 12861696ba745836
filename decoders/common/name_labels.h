// Names as DNS writes them (RFC 1035 4.1.4), in which NetBIOS and logon servers write theirs: labels of a length and so
// many characters up to a length of 0, or up to a pointer to an earlier name of the message.
//
// DNS messages themselves are read by decoders/app/dns_names.cpp, which shares one bound among all names of a payload.
#pragma once
#include "core/cursor.h"

namespace qxview {

constexpr uint32_t kLongestLabel = 63;   // greater lengths are the first byte of a pointer

// All bytes that the cursor was made over.
inline Field WholeOf(const Cursor& c) { return {c.at - Taken(c), c.begin, Taken(c) + c.left, 0, true}; }

// Hands the labels of the name at the cursor to `put` one by one; it says whether it wants more of those behind a pointer,
// which the cursor does not stand behind. Pointers count from the message's first byte and lead strictly backwards: one
// that does not ends the name. The cursor goes on behind the name in place; it is short where the name is cut there.
template <class Put>
void TakeNameLabels(Cursor& c, const Field& message, Put put) {
  constexpr int32_t kMostHops = 8, kMostPointedLabels = 20;   // names have one pointer; these bound what others cost
  Cursor at = c;
  int32_t hops = 0, pointedLabels = 0, lowest = c.offset - message.offset;
  for (;;) {
    const Field length = TakeU8(at);
    if (length.value > kLongestLabel) {
      const Field low = TakeU8(at);
      if (hops == 0) c = at;
      const int32_t target = static_cast<int32_t>((length.value & 0x3F) << 8 | low.value);
      if (!low.here || ++hops > kMostHops || target >= lowest || target >= message.length) return;
      lowest = target;
      at = CursorOver(Slice(message, target, message.length - target));
      continue;
    }
    const Field label = TakeBytes(at, length.value);
    if (hops == 0) c = at;
    if (!label.here || length.value == 0) return;
    const bool wantsMore = put(label);
    if (hops > 0 && (!wantsMore || ++pointedLabels == kMostPointedLabels)) return;
  }
}

}  // namespace qxview
