// What ICMP error messages carry behind the datagram that they quote.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Shows an extension structure with its objects under the place's line.
void DecodeIcmpExtensions(const Place& in, Cursor c);

// Whether the bytes can be an extension structure: by the version alone, or by a good checksum too. The second tells one
// from quoted bytes where a sender does not say how long its quote is.
bool HasIcmpExtensionVersion(const uint8_t* bytes, int32_t length);
bool HasSummedIcmpExtensions(const uint8_t* bytes, int32_t length);

}  // namespace qxview
