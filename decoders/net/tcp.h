// The TCP decoder for callers that know more than the network state of the packet.
#pragma once
#include "core/context.h"
#include "core/cursor.h"

namespace qxview {

struct Place;

// Decodes the segment that the cursor is over, then its payload. With `strictCheck` a checksum field that the sending
// host left to its adapter, or left empty, is a bad one. Result: 1 when the header was shown; 0 for fewer than 14
// bytes, where nothing is.
int32_t DecodeTcpSegment(const Place& at, Cursor c, const NetworkState& network, bool strictCheck);

// Whether a segment that has all its header is one whose payload is not decoded, as its checksum is bad.
bool IsBadTcpSegment(const View* view, const Cursor& c, const NetworkState& network);

}  // namespace qxview
