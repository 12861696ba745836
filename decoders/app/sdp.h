// Session descriptions whose lines something else carries one by one: properties of Megaco's binary form.
#pragma once
#include "core/decoder.h"

namespace qxview {

// What a line of this type says, taken apart.
void ShowSdpValue(const Place& in, uint8_t type, const Field& value);
// Learns what a description announces, without lines.
void AnnounceSdp(const Place& at, Cursor description);

}  // namespace qxview
