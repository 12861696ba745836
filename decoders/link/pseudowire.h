// Pseudowires: what stands behind an MPLS label stack when it is no IP.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whatever follows the bottom of the stack, the control words of pseudowires (RFC 4385) and associated channels (RFC 5586)
// among it. Nothing names it: it is told by its first bits, and by likeness behind a control word.
int32_t DecodeLabelledPayload(const Place& network, Cursor c);

}  // namespace qxview
