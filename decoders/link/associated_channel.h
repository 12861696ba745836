// Associated channels of label switched paths, pseudowires and sections: messages about the path beside what it carries.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The name of a channel's type, null for one that the registry leaves free.
const char* AssociatedChannelName(uint32_t type);

// The channel's header and its message.
int32_t DecodeAssociatedChannel(const Place& network, Cursor c);

// Loss and delay of a path (RFC 6374) by the channel's type.
int32_t DecodePathMeasurement(const Place& at, Cursor c, uint32_t type);

}  // namespace qxview
