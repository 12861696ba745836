// The IP authentication header, which stands between an IP header and what it protects.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Shows the authentication header that the cursor stands on, as a top line at the place, and moves the cursor behind
// it. False when the header is cut or its length is too small to be one; what is there has been shown then and nothing
// may follow. `nextHeader` is the protocol of what follows.
bool DecodeAh(const Place& at, Cursor& c, uint8_t* nextHeader);

}  // namespace qxview
