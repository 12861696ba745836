// Bodies and messages that come in pieces, over frames and packets, until they are whole: of HTTP/2, HTTP/3, gRPC, WebSocket.
#pragma once
#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {

// What is kept of a body. It is numbered among those of its stream, so that a packet which is looked at again finds its pieces.
struct WebPieces {
  uint32_t body, count, length;
  bool isLost;          // one was not kept, or is none any more
};

// A piece of a direction's stream.
struct WebPiece {
  int64_t packet;
  int32_t offset;
  uint32_t unused;
};

constexpr uint32_t kPiecesOfHttp2 = 0, kPiecesOfWebSocket = 1, kPiecesOfHttp3 = 2;

// The stream whose bodies they are: nothing is kept where `keeps` is not set.
struct WebStreamKey {
  ConnectionKey direction;
  uint32_t stream, kind;
  bool keeps;
};

void KeepPiece(const Place& in, const WebStreamKey& key, WebPieces& pieces, const Field& piece);
// All that was kept, in its order; empty where it is not whole. The next body begins behind it.
Cursor JoinPieces(const Place& in, const WebStreamKey& key, WebPieces& pieces, int32_t start);
inline void DropPieces(WebPieces& pieces) { pieces = {pieces.body + 1, 0, 0, false}; }

}  // namespace qxview
