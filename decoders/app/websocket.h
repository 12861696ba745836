// WebSocket: messages of both ends over a connection that began as HTTP.
#pragma once
#include "core/decoder.h"
#include "decoders/net/connection_key.h"
#include "decoders/quic/quic.h"

namespace qxview {

struct WebSocketConnection {
  bool deflates;                       // permessage-deflate was agreed on
  bool keepsWindow[2];                 // the end that the upgrade's answer came from, and the other, go on with their window
  uint8_t server;                      // that end, 0 or 1
};

// What a direction leaves. Its bytes are the window of the stream that its messages are compressed in, before the packet's
// last message and behind it.
struct WebSocketSide {
  uint32_t left;                       // octets of a message's frame that are to come
  uint32_t mask, passed;               // its key, and how many octets of it have come
  uint32_t window;
  uint8_t opcode;
  bool isMasked, isCompressed;
};
struct WebSocketDirection {
  QuicTurn turn;
  WebSocketSide before, now;
};

bool IsWebSocketConnection(const Place& at);
int32_t DecodeWebSocket(const Place& at, Cursor c);

}  // namespace qxview
