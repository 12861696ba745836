// The PROXY protocol: what dispatching asks of it.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr int32_t kProxyProtocol = 0x10277;   // as definitions name it

// Whether the bytes start a header of either version.
bool StartsProxyHeader(const Cursor& c);

}  // namespace qxview
