// What IGMP carries for multicast routing beside PIM: DVMRP (type 0x13) and traces (0x1E, 0x1F), from the octet behind IGMP's
// checksum on.
#pragma once
#include "core/decoder.h"

namespace qxview {

void ShowDvmrp(const Place& in, Cursor& c, uint32_t code);
const char* DvmrpName(uint32_t code);
void ShowTrace(const Place& in, Cursor& c);

}  // namespace qxview
