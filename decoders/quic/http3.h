// HTTP/3 (RFC 9114) and DNS (RFC 9250) on the streams of a QUIC connection.
#pragma once
#include "core/decoder.h"
#include "decoders/quic/quic_streams.h"

namespace qxview {

// The bytes of a stream that nothing before them is missing of, behind those that were taken. Result: how many of them are
// not needed any more.
int32_t ShowHttp3Stream(const Place& in, Cursor c, bool isLast, uint64_t id, QuicStreamPart& stream, QuicSession& session);

// A datagram: of which request it is, and what it carries.
void ShowHttp3Datagram(const Place& in, Cursor c, const char* label);

const char* Http3ErrorName(uint32_t code);   // null for none

}  // namespace qxview
