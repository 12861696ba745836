// The body of ICMP router advertisements.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Behind the checksum: the routers' addresses, then the extensions of mobility agents.
void DecodeRouterAdvertisement(const Place& in, Cursor& c);

}  // namespace qxview
