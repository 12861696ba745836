#include "decoders/app/rtp_extension_names.h"

#include "core/name_table.h"
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

constexpr struct {
  const char* uri;
  const char* name;
} kNames[] = {
    {"urn:ietf:params:rtp-hdrext:ssrc-audio-level", "Client-to-Mixer Audio Level"},
    {"urn:ietf:params:rtp-hdrext:csrc-audio-level", "Mixer-to-Client Audio Level"},
    {"urn:ietf:params:rtp-hdrext:toffset", "Transmission Time Offset"},
    {"http://www.webrtc.org/experiments/rtp-hdrext/abs-send-time", "Absolute Send Time"},
    {"http://www.ietf.org/id/draft-holmer-rmcat-transport-wide-cc-extensions-01", "Transport-Wide Sequence"},
    {"urn:ietf:params:rtp-hdrext:sdes:mid", "Media Identification"},
    {"urn:ietf:params:rtp-hdrext:sdes:rtp-stream-id", "RTP Stream ID"},
    {"urn:ietf:params:rtp-hdrext:sdes:repaired-rtp-stream-id", "Repaired RTP Stream ID"},
    {"urn:ietf:params:rtp-hdrext:sdes:cname", "Canonical Name"},
    {"urn:3gpp:video-orientation", "Video Orientation"},
    {"http://www.webrtc.org/experiments/rtp-hdrext/playout-delay", "Playout Delay"},
    {"http://www.webrtc.org/experiments/rtp-hdrext/video-content-type", "Video Content Type"},
    {"http://www.webrtc.org/experiments/rtp-hdrext/video-timing", "Video Timing"},
    {"http://www.webrtc.org/experiments/rtp-hdrext/color-space", "Color Space"},
    {"http://www.webrtc.org/experiments/rtp-hdrext/abs-capture-time", "Absolute Capture Time"},
    {"urn:ietf:params:rtp-hdrext:ntp-64", "NTP Timestamp"},
    {"urn:ietf:params:rtp-hdrext:framemarking", "Frame Marking"},
    {"https://aomediacodec.github.io/av1-rtp-spec/#dependency-descriptor-rtp-header-extension",
     "Dependency Descriptor"},
};
static_assert(sizeof kNames / sizeof kNames[0] == kRtpExtensions);

}  // namespace

uint8_t RtpExtensionOf(const Field& uri) {
  for (uint8_t i = 0; uri.here && i < kRtpExtensions; ++i) {
    if (IsWord(uri, kNames[i].uri)) return static_cast<uint8_t>(i + 1);
  }
  return 0;
}

const char* RtpExtensionName(uint8_t extension) {
  return extension >= 1 && extension <= kRtpExtensions ? kNames[extension - 1].name : kUnknown;
}

}  // namespace qxview
