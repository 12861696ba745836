// One-line summaries for the packet list: each from a payload alone, without a view, state between calls or allocation.
#pragma once
#include <cstdint>

#include "qxview/qxview_types.h"

namespace qxview {

using ::TextBuffer;

// The summary of a DNS message. `transport` is 6 for TCP or 17 for UDP; `lengthHint` minus 4 is the greatest length
// prefix that is taken for one on TCP; `variant` is 0 DNS, 1 LLMNR, 2 multicast DNS. Result: 0 when the data or the
// summary is missing or the length is below 1, else 1. Writes within the summary's capacity, whose last byte is
// always 0; a capacity of 0 takes nothing.
int32_t DescribeDns(const uint8_t* data, int32_t length, TextBuffer* summary, int32_t transport, uint16_t lengthHint,
                    int32_t variant);

}  // namespace qxview
