// The options of a TCP header.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Shows the options of an area of `declared` bytes, of which the cursor is over those captured, numbered from 1, as
// children of the place's line, up to the end of option list, the end of the area or a length that cannot be. Result:
// the exponent of the window scale option, or kNoWindowScale.
int32_t DecodeTcpOptions(const Place& in, Cursor c, int32_t declared);

// What an option of a later kind holds, behind its length, under its line (tcp_option_values.cpp).
void ShowTcpOptionValue(const Place& in, uint32_t kind, Cursor& c);

}  // namespace qxview
