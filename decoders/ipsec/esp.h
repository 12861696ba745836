// IP Encapsulating Security Payload, which UDP and TCP carry, too.
#pragma once
#include "core/decoder.h"

namespace qxview {

int32_t DecodeEsp(const Place& at, Cursor c);

}  // namespace qxview
