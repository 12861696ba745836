// What ICMP error messages carry behind the datagram that they quote.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Shows an extension structure with its objects under the place's line.
void DecodeIcmpExtensions(const Place& in, Cursor c);

// What stands behind a quote of this length.
inline Cursor Behind(Cursor c, int32_t length) {
  TakeBytes(c, length);
  return c;
}

// Whether the bytes can be an extension structure: by the version alone, or by a good checksum too. The second tells one
// from quoted bytes where a sender does not say how long its quote is.
bool HasIcmpExtensionVersion(const Cursor& c);
bool HasSummedIcmpExtensions(const Cursor& c, bool isCut);   // isCut: the capture ends before the message

}  // namespace qxview
