// Headers of pictures in RTP: H.261 to H.266, VP8, VP9, AV1, JPEG.
#pragma once
#include "core/decoder.h"

namespace qxview {

bool IsVideoEncoding(const Field& name);
void ShowVideoPayload(const Place& in, Cursor& c, const char* name);

}  // namespace qxview
