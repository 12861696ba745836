// What the commands of IPMI hold.
#pragma once
#include "core/rows.h"

namespace qxview {

// The fields of a request, or of a response behind a completion code that tells no fault. `key` is the request's network
// function above bit 8 and the command; no rows for a command whose data its maker alone knows.
RowSpan<NoValues> IpmiDataRows(uint32_t key, bool isResponse);

}  // namespace qxview
