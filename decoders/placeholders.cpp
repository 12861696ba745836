// Rows of the registry whose protocol has no decoder of its own yet: the block that their place gives for data
// without a decoder. A protocol that gets its decoder changes the name in its row.
#include "core/decoder.h"

namespace qxview {

// Ethertypes: a "Raw Packet" block is the decode.
int32_t ShowRawPacket(const Place& at, Cursor c) { return AddRawRest(at, c, "Raw Packet"); }

// Everywhere else the caller's own fallback is the block: it titles data by what it knows of them.
int32_t DeclineData(const Place&, Cursor) { return 0; }

// OSI network-layer identifiers without a decoder add nothing.
int32_t ShowNothing(const Place&, Cursor) { return 1; }

}  // namespace qxview
