// Inflating what a frame has whole: content codings of HTTP/2, messages of WebSocket.
#pragma once
#include "core/decoder.h"
#include "core/state_table.h"

namespace qxview {

enum class Wrapping : uint8_t { kNone, kZlib, kGzip };

// How far data inflated.
enum class Inflation : uint8_t { kAll, kToBound, kDamaged };
constexpr const char* InflationNote(Inflation how) {
  return how == Inflation::kAll ? "" : how == Inflation::kToBound ? ", more is not inflated" : ", damaged behind them";
}

// Over the octets that the data inflate to, 900,000 of them at most, good as long as the frame is decoded, empty where they do
// not inflate or the frame's memory ends (http_gzip.cpp). Lines of them stand where the data start. `window` is what stood in
// front of them in the same stream. A stream in zlib's wrapping may be without it. `ended`: whether the stream is over.
Cursor InflateInFrame(const Place& at, const Field& data, Wrapping wrapping, StateBytes window, Inflation* how,
                      bool* ended = nullptr);

}  // namespace qxview
