// Reading network addresses from text, as users write them in definitions and name lists.
#pragma once
#include <string_view>

#include "qxview/qxview_types.h"

namespace qxview {

// Four decimal numbers of 0 to 255 with dots between; kind 1. False, and `out` untouched, for anything else.
bool ParseIPv4Address(std::string_view text, AddressSlot* out);

// The notations of RFC 4291 section 2.2 without brackets and zone: groups of up to four hexadecimal digits, one "::",
// an IPv4 address as the last two groups; kind 2.
bool ParseIPv6Address(std::string_view text, AddressSlot* out);

}  // namespace qxview
