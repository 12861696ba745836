// The protocol column of the packet list, and how its rows are coloured.
#pragma once
#include <string_view>

#include "core/context.h"

namespace qxview {

// The short name of the uppermost protocol that the frame's headers led to. `scratch` has kMediumNameScratch bytes.
const char* ProtocolNameOf(const PacketState& packet, char* scratch);

// A colour for the kind of protocol, or for trouble that the summary tells of: resets, refusals, bad checksums.
const char* ColorOfPacket(std::string_view protocol, std::string_view summary);

}  // namespace qxview
