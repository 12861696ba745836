// CAPWAP's control messages and their elements.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The message behind the header: type, sequence, length, flags, elements.
void ShowCapwapMessage(const Place& in, Cursor& c);
// An 802.11 frame as access points send it to their controller, its frame control in either order.
int32_t DecodeTunnelledWireless(const Place& network, const Cursor& c);
void ShowCapwapElements(const Place& in, Cursor& c);

}  // namespace qxview
