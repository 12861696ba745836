// Megaco in its binary form, for the decoder of the text form that it shares ports and transports with.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Whether a sequence of the basic encoding rules stands there that may be a message.
bool IsBinaryMegaco(const Cursor& c);
int32_t DecodeBinaryMegaco(const Place& at, Cursor c);

}  // namespace qxview
