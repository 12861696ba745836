// Learning: what detection found out about an address and port, for the packets that follow.
#pragma once
#include <cstdint>

#include "qxview/qxview_host.h"

namespace qxview {

struct View;

// Records in the host's conversation table that this address and port carry this protocol, so that later resolutions
// find it among the address definitions. transport: QX_OVER_TCP or QX_OVER_UDP; port2 and port3 are -1; extra may be
// null. Does nothing for an identifier below 1, without definitions, when neither transport is set, and in a datagram
// that an error message quotes.
void Learn(const View* view, uint32_t transport, int32_t identifier, const AddressSlot& address, uint16_t port,
           int32_t port2, int32_t port3, const DynamicRecord* extra);

}  // namespace qxview
