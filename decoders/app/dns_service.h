// Service parameters (RFC 9460 2.2): keys and values of SVCB and HTTPS records, which DHCP and router advertisements carry
// as well (RFC 9463).
#pragma once
#include "core/decoder.h"

namespace qxview {

// All parameters that the cursor holds, a line each with its fields under it.
void ShowServiceParameters(const Place& in, Cursor& c);

}  // namespace qxview
