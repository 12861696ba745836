// CAPWAP's control messages and their elements.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The message behind the header: type, sequence, length, flags, elements.
void ShowCapwapMessage(const Place& in, Cursor& c);
void ShowCapwapElements(const Place& in, Cursor& c);

}  // namespace qxview
