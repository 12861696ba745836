// What is kept of the compression that the ends of a PPP link agreed on, and of what it compressed.
#pragma once
#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {

// The algorithm by its option of CCP.
struct PppCompression {
  uint32_t option, unused;
};
constexpr uint32_t kPointCompression = 18;   // Microsoft's

// A packet of Microsoft's compression: what it opened to lies from `start` to `end` in the history that is kept with it. An end of
// -1: it did not open.
struct PointRun {
  int64_t packet;
  int32_t offset, start, end;
  uint32_t count;   // of coherency
};
constexpr int32_t kPointHistory = 8192, kMostPointRuns = 64;

// Protocols 0x00FD and 0x0053.
int32_t DecodePppCompressed(const Place& at, Cursor c);
int32_t DecodePppEncrypted(const Place& at, Cursor c);

}  // namespace qxview
