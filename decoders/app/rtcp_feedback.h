// The bodies of RTCP's feedback messages and extended reports by their formats, and of the packets that few send.
#pragma once
#include "core/decoder.h"

namespace qxview {

constexpr uint32_t kRtcpCongestionFeedback = 11;   // of 205; each of its streams names its own source

// What stands behind the sources of transport-layer (205) and payload-specific (206) feedback.
void DecodeRtcpFeedback(const Place& in, Cursor& c, uint32_t packetType, uint32_t format);
// A block of an extended report (207), its header included.
void DecodeRtcpReport(const Place& in, Cursor c);
// What stands behind the header of a packet of the types 192 to 195 and 209 to 212; nothing for others.
void DecodeRtcpOther(const Place& in, Cursor& c, uint32_t packetType, uint32_t count);

}  // namespace qxview
