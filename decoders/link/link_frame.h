// What a capture's link type leads to, for decoders that carry frames of any.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The frame that the cursor stands on, by its LINKTYPE number: its own header's lines at the place, the rest deeper.
// What
// has no decoder is a block.
int32_t DecodeByLinkType(const Place& at, const Cursor& c, uint32_t linkType);

// An IP packet without anything in front, by its version; what is no IP is a block.
int32_t DecodeBareIp(const Place& at, const Cursor& c);

// Netlink messages (RFC 3549) of a family.
int32_t DecodeNetlinkMessages(const Place& at, Cursor c, uint32_t family);

}  // namespace qxview
