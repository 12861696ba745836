// Inflating what a frame has whole: content codings of HTTP/2, messages of WebSocket.
#pragma once
#include "core/decoder.h"
#include "core/state_table.h"

namespace qxview {

enum class Wrapping : uint8_t { kNone, kZlib, kGzip };

// Over the octets that the data inflate to, a bounded number of them, good until the next call, empty where they do not
// inflate (http_gzip.cpp). Lines of them stand where the data start. `window` is what stood in front of them in the same stream.
Cursor InflateInFrame(const Place& at, const Field& data, Wrapping wrapping, StateBytes window = {});

}  // namespace qxview
