// The Extensible Authentication Protocol (RFC 3748), which 802.1X, RADIUS, PPP and others carry.
//
//   code (1)   identifier (1)   length of all (2)   and in requests and responses: type (1), what the type says
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kEapHeaderSize = 4;

// The packet at the cursor, under the place's line, as far as it is there. Result: how many of its bytes are missing.
int32_t AddEap(const Place& in, Cursor& c);

}  // namespace qxview
