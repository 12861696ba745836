// Google's QUIC before IETF's: what its files share.
#pragma once
#include "core/decoder.h"
#include "decoders/quic/quic.h"

namespace qxview {

// While the frames of a packet in clear are shown.
struct GoogleFrames {
  uint32_t version;      // 46 of Q046
  int32_t numberLength;  // of packet numbers in this packet's header
  bool isBig;            // byte order of numbers
};

void ShowGoogleFrames(const Place& in, Cursor& c, const GoogleFrames& frames);

// A message of tags: "CHLO" and its like, "PRST".
void ShowGoogleMessage(const Place& in, Cursor& c);

// Whether these are frames of which one is a handshake's message.
bool StartsGoogleHandshake(const Field& frames, uint32_t version);

WideField TakeGoogleNumber(Cursor& c, int32_t size, bool isBig);

}  // namespace qxview
