// Codecs that RTP streams carry: those with a payload type of their own (RFC 3551) and those that sessions negotiate.
#pragma once
#include <cstdint>

namespace qxview {

constexpr int32_t kRtpCodecs = 87;
constexpr int32_t kDynamicCodec = 26;           // what types 96 to 127 are without a negotiation
constexpr uint8_t kNoStaticType = 255;

enum class MediaKind : uint8_t { kNone, kAudio, kVideo, kAudioVideo, kData, kApplication, kControl, kText, kMessage,
                                 kStillImage };

struct RtpCodec {
  uint8_t payloadType;         // kNoStaticType for none
  MediaKind kind;
  uint32_t clockRate;          // Hz; 0 when there is none to tell
  const char* name;
  const char* encodingName;    // in session descriptions; null for none
};

// The codec of a number from 0 to kRtpCodecs - 1.
const RtpCodec& RtpCodecAt(int32_t number);

// The codec of a payload type: kDynamicCodec's for 96 to 127; null for a type without one and for what is none.
const RtpCodec* FindRtpCodec(int32_t payloadType);

// The codec of an encoding name, in any case of letters: the one with this clock rate, else the first; null for none.
const RtpCodec* FindRtpEncoding(const char* encodingName, uint32_t clockRate);

}  // namespace qxview
