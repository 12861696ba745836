// Where somebody stands, as DHCP, RADIUS and others tell it: coordinates (RFC 3825, RFC 6225) and the elements of civic
// addresses (RFC 4776).
#pragma once
#include "core/decoder.h"

namespace qxview {

// 16 octets: latitude, longitude and altitude with how exact they are, and the datum; in the form of either RFC.
constexpr int32_t kGeoConfigurationSize = 16;
void ShowGeoConfiguration(const Place& in, Cursor& c);
void ShowGeoLocation(const Place& in, Cursor& c);
// To the cursor's end.
void ShowCivicElements(const Place& in, Cursor& c);

}  // namespace qxview
