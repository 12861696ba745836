// Payloads of RTP by their encodings, and the elements of its header extensions by their names.
#pragma once
#include "core/decoder.h"

namespace qxview {

struct MediaFormat;

// Shows what an element of a header extension holds (rtp_extension_names.h).
void ShowRtpExtension(const Place& in, Cursor c, uint8_t extension);

// What stands in front of the coded media, for encodings that have such a header; what is behind it is a block. `encoding`
// is the name of a session description. False where the encoding has none.
bool ShowRtpPayload(const Place& at, Cursor& c, const char* encoding, const MediaFormat* format);

}  // namespace qxview
