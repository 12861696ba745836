// How mobile networks write numbers of subscribers and operators (3GPP TS 24.008).
#pragma once
#include "core/decoder.h"

namespace qxview {

// Octets that hold digits in halves, the lower one first, up to a half of ones: IMSI, MSISDN, IMEI.
void AddDigits(const Place& in, const Field& field, const char* name);

// Country and network of an operator: MCC and MNC in halves of three octets.
void AddNetwork(const Place& in, const Field& field, const char* name);

}  // namespace qxview
