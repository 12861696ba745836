// The frames of a QUIC packet that was opened, and what their streams carry.
#pragma once
#include "core/decoder.h"
#include "decoders/quic/quic_protection.h"

namespace qxview {

// A packet's frames; `payload` is where they stand in the frame, protected.
void ShowQuicFrames(const Place& in, const Field& payload, const QuicOpened& opened, QuicKind kind, QuicSession& session);

const char* QuicErrorName(uint64_t code);

}  // namespace qxview
