// HTTP/2: what its files share, and what others ask of it.
#pragma once
#include "decoders/app/direction_run.h"
#include "decoders/app/web_body.h"
#include "decoders/net/connection_key.h"

namespace qxview {

constexpr int32_t kHttp2Protocol = 0x10390;   // as definitions name it

int32_t DecodeHttp2(const Place& at, Cursor c);
bool StartsHttp2(const Cursor& c);             // the preface of a client
bool StartsHttp2Settings(const Cursor& c);     // of a server, whose first frame they are
bool LooksLikeHttp2(const Cursor& c);          // the preface, or a frame that can be one
bool IsHttp2Connection(const Place& at);       // the current packet's, by what was seen of it

// What a direction of a connection leaves for the packets behind. Its bytes are those of a frame that is waited for, and behind
// them those of a header field that goes on in a CONTINUATION.
struct Http2Side {
  SegmentTrail trail;
  uint32_t kept;
  uint32_t fieldKept;          // of those, the field's
  int64_t fieldPacket;         // where they stood
  int32_t fieldOffset;
  bool isInStep;               // the next byte goes on where the last one that was shown ended
  bool isFieldLost;            // it was too long to be kept
  uint32_t bodyLeft;           // of a frame that is shown as it comes
  uint32_t bodyPadding;        // of those, at its end
  uint32_t bodyStream;
  uint32_t bodyFlags;
  uint32_t headerStream;       // whose header block goes on in a CONTINUATION
  uint64_t inserted;           // entries of the sender's table
};
struct Http2Direction : DirectionState<Http2Side> {};

struct Http2Connection {
  bool isKnown;
};

// What a direction of a stream carries.
struct Http2Stream {
  uint64_t packet;
  uint32_t pass;
  WebBody before, now;
};

// A frame while it is shown.
struct Http2Frame {
  Http2Side* side;
  StateBytes* fieldPart;       // of a header field that goes on
  uint64_t packet;
  uint32_t pass;
  bool keeps;                  // what it leaves is remembered
  uint32_t type, flags, stream;
  Field length, padding, item;
  int32_t end;                 // where its header block ends
  LineHandle top;              // the frame's own line
};

// What a frame holds, behind its header (http2_frames.cpp), and a piece of the data of a stream.
void ShowHttp2Payload(const Place& in, Cursor& c, Http2Frame& frame);
void ShowHttp2Body(const Place& in, Cursor& c, Http2Frame& frame);
const char* Http2FrameName(uint32_t type);
void ShowHttp2Head(const Place& in, Cursor& c, uint32_t type);
void ShowHttp2Setting(const Place& in, Cursor& c);

// What header fields say of a stream and its body, and what is remembered of it.
struct Http2Notes {
  WebBody body;
  bool isTunnel;               // extended CONNECT: messages of WebSocket in both directions
  bool deflates, clientForgets, serverForgets;
};
Http2Notes BeginHttp2Notes(const Place& in, const Http2Frame& frame);
void KeepHttp2Notes(const Place& in, Http2Frame& frame, const Http2Notes& notes);

// A header block, or the piece of it that a frame brings (hpack.cpp).
void ShowHpackFields(const Place& in, Cursor& c, Http2Frame& frame);

}  // namespace qxview
