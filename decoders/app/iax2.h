// What full frames of IAX2 tell of a call for its mini and meta frames.
#pragma once
#include <cstdint>

namespace qxview {

struct IaxCall {
  uint64_t voice, video;   // the formats, a bit each
  uint32_t time;           // of the last full frame, in milliseconds
  uint32_t unused;
};

}  // namespace qxview
