// Wake-on-LAN: what dispatching asks of it.
#pragma once
#include "core/cursor.h"

namespace qxview {

constexpr int32_t kMagicPacketProtocol = 0x10244;   // as definitions name it

// Whether a payload is a magic packet: over UDP it may come to any port.
bool LooksLikeMagicPacket(const Cursor& c);

}  // namespace qxview
