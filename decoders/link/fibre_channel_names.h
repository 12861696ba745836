// The names of Fibre Channel's codes (FC-FS).
#pragma once
#include <cstdint>

namespace qxview {

// Delimiters, by the four bytes of their ordered set.
const char* StartOfFrameName(uint32_t orderedSet);
const char* FrameClassName(uint32_t orderedSet);   // " Class 3" by the start of the frame; empty when it has none
const char* EndOfFrameName(uint32_t orderedSet);

// The two halves of R_CTL: what is routed, and what it is.
const char* RoutingName(uint32_t routingControl);
const char* InformationName(uint32_t routingControl);

const char* DataTypeName(uint32_t type);
const char* WellKnownAddressName(uint32_t address);   // null for one that is not well known

}  // namespace qxview
