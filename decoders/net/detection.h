// Dynamic protocol detection: recognising the protocol of payloads that no definition claims.
#pragma once
#include "core/cursor.h"

namespace qxview {

struct Place;

// Offers a TCP or UDP payload (`ipProtocol` 6 or 17) to the recognisers. The one that knows it decodes it one level
// deeper than the transport's place `at` and learns the source address and port. Result: 1, or 0 when none does.
int32_t DetectDynamicProtocol(const Place& at, Cursor c, uint16_t sourcePort, uint16_t destinationPort,
                              uint8_t ipProtocol);

// Tells what that would take it for, 0 for nothing, with the look-ups that it makes and no more; false where it would learn, or
// where only decoding tells.
bool SkimDynamicProtocol(const Place& at, const Cursor& c, uint16_t sourcePort, uint16_t destinationPort, uint8_t ipProtocol,
                         int32_t* identifier);

}  // namespace qxview
