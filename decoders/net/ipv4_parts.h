// The parts of the IPv4 header that have files of their own.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The type-of-service byte, in the display mode of the settings.
void AddTypeOfService(const Place& in, const Field& service);

// The options area, behind the fixed header.
void DecodeIPv4Options(const Place& in, Cursor area);

}  // namespace qxview
