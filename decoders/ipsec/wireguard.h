// WireGuard: what dispatching asks of it.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kWireGuardProtocol = 0x10273;   // as definitions name it

// Whether the bytes are one whole message: its type, its reserved octets and its length agree.
bool LooksLikeWireGuard(const Cursor& c);

}  // namespace qxview
