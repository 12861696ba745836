// The options of a TCP header.
#pragma once
#include "core/cursor.h"

namespace qxview {

struct Place;

// Shows the options of an area of `declared` bytes, of which the cursor is over those captured, numbered from 1, as
// children of the place's line, up to the end of option list, the end of the area or a length that cannot be. Result:
// the exponent of the window scale option, or kNoWindowScale.
int32_t DecodeTcpOptions(const Place& in, Cursor c, int32_t declared);

}  // namespace qxview
