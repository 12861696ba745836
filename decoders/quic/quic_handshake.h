// TLS's handshake as CRYPTO frames carry it, and what it tells of a connection.
#pragma once
#include "core/decoder.h"
#include "decoders/quic/quic.h"

namespace qxview {

// The messages at the cursor that are whole. Result: their bytes.
int32_t ShowQuicHandshake(const Place& in, Cursor c, QuicSession& session);

}  // namespace qxview
