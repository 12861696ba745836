// WebSocket: messages of both ends over a connection that began as HTTP, or over a stream of HTTP/2.
#pragma once
#include "decoders/app/direction_run.h"
#include "decoders/app/web_pieces.h"

namespace qxview {

constexpr int32_t kWebSocketProtocol = 0x10391;   // as definitions name it

struct WebSocketConnection {
  bool deflates;                       // permessage-deflate was agreed on
  bool keepsWindow[2];                 // the end that the upgrade's answer came from, and the other, go on with their window
  uint8_t server;                      // that end, 0 or 1
};

// What a direction leaves. Its bytes are the window of the stream that its messages are compressed in.
struct WebSocketSide {
  SegmentTrail trail;
  uint32_t kept;
  uint32_t left;                       // octets of a frame that are to come
  uint32_t mask, passed;               // its key, and how many octets of it have come
  WebPieces pieces;                    // of a message that is not whole
  uint8_t opcode, message;             // of the frame, and of the message that it is of
  bool isMasked, isFinal;
  bool isCompressed, isJoined;         // the message: shown when it is whole
  uint8_t headLength, head[14];        // of a frame whose head is not whole
};
struct WebSocketDirection : DirectionState<WebSocketSide> {};

bool IsWebSocketConnection(const Place& at);
int32_t DecodeWebSocket(const Place& at, Cursor c);
void ShowWebSocketFrames(const Place& at, Cursor& c, uint32_t stream);   // of HTTP/2

}  // namespace qxview
