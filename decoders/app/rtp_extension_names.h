// The names of RTP's header extensions (RFC 8285), which session descriptions announce by URIs.
#pragma once
#include "core/cursor.h"

namespace qxview {

constexpr uint8_t kRtpExtensions = 18;

// The extension of a URI, from 1; 0 for one that is not known.
uint8_t RtpExtensionOf(const Field& uri);
const char* RtpExtensionName(uint8_t extension);

}  // namespace qxview
