// Information elements of GTP's control messages, versions 0 and 1, and of charging.
#pragma once
#include "core/decoder.h"

namespace qxview {

void ShowGtpElements(const Place& in, Cursor& c, bool isVersion0);
// A charging data record in the basic encoding rules.
void ShowChargingRecord(const Place& at, Cursor& c);
const char* GtpMessageName(uint32_t message);

}  // namespace qxview
