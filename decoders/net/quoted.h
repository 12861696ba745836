// Datagrams that error messages quote: the start of a datagram that this host, or one before it, once sent.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Decodes a quoted datagram of either IP version as far as it goes. The state of the frame's own datagram (addresses,
// ports, segment) is as it was afterwards; while it runs PacketState::quoted is set.
void DecodeQuotedDatagram(const Place& at, Cursor c);

// The transport of a quoted datagram that ends before its own decoder has enough: 8 bytes of TCP are what most error
// messages hold. False when it is not such a one.
bool ShowQuotedTransport(const Place& at, Cursor c, uint8_t protocol);

}  // namespace qxview
