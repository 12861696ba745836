// The attribute-value pairs of L2TP's control messages.
#pragma once
#include "core/decoder.h"

namespace qxview {

// All that the cursor holds, a line each. `version` is that of the header.
void ShowL2tpAvps(const Place& in, Cursor& c);
const char* L2tpMessageName(uint32_t message);

}  // namespace qxview
