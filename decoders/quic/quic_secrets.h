// Which keys open a packet of a connection: those of Initial packets, and where the user has a key log, those of the rest.
#pragma once
#include "core/decoder.h"
#include "decoders/quic/quic_protection.h"

namespace qxview {

// Opens the packet into `room`, which takes all that stands behind its header; `destination` is the ID that it goes to.
// kUnavailable where no key is known.
Opening OpenWithKnownKeys(const Place& at, const QuicPacket& packet, QuicSession& session, const Field& destination,
                          uint8_t* room, QuicOpened& out);

}  // namespace qxview
