// The one-line summaries of RTP and RTCP packets, and the names of codecs.
#pragma once
#include <cstdint>

#include "qxview/qxview_types.h"

namespace qxview {

using ::RtpMedia;
using ::RtpStream;

// "RTP Payload: PCMU(G.711) Audio at 8000 Hz, Sequence: 1, Time: 160", with ", SSRC: %u" when `showSsrc`. Negotiated
// types are looked up in `stream`, which may be null. 0, with an empty text, when the payload is not RTP of a known
// type; 0 also when an argument is missing.
int32_t DescribeRtp(const uint8_t* data, int32_t length, const RtpStream* stream, int32_t showSsrc, char* out,
                    int32_t outSize);

// The display name of a payload type; an empty text when it has none. Never null.
const char* RtpCodecName(int32_t payloadType);

// "RTCP Sender Report, NTP Time: 1.2, Jitter: 3, Delay: 0.500000 sec, Source Description": the first packet, with its
// first report block, and the second one's name.
int32_t DescribeRtcp(const uint8_t* data, int32_t length, char* out, int32_t outSize);

}  // namespace qxview
