// HTTP/2: what its files share, and what others ask of it.
#pragma once
#include "decoders/app/web_body.h"
#include "decoders/net/connection_key.h"
#include "decoders/quic/quic.h"

namespace qxview {

constexpr int32_t kHttp2Protocol = 0x10390;   // as definitions name it

int32_t DecodeHttp2(const Place& at, Cursor c);
bool StartsHttp2(const Cursor& c);             // the preface of a client
bool StartsHttp2Settings(const Cursor& c);     // of a server, whose first frame they are
bool LooksLikeHttp2(const Cursor& c);          // the preface, or a frame that can be one
bool IsHttp2Connection(const Place& at);       // the current packet's, by what was seen of it

// What a direction of a connection leaves for the packets behind: as it was before the packet, and after its last frame.
struct Http2Side {
  uint32_t nextSequence;       // of the segment that goes on
  uint32_t bodyLeft;           // of a frame that is shown as it comes
  uint32_t bodyStream;
  uint32_t headerStream;       // whose header block goes on in a CONTINUATION
  uint64_t inserted;           // entries of the sender's table
  uint32_t kept;               // bytes of a frame that is waited for
  bool hasSequence;
};
struct Http2Direction {
  QuicTurn turn;               // the packet and the place in it of the last bytes that were shown
  uint32_t pass;               // counts how often a packet was looked at
  Http2Side before, now;       // their bytes stand one after the other
};

// Where bytes stand, for a turn: joined ones come first in a packet.
uint32_t TurnPlaceOf(const Cursor& c);

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
  uint64_t packet;
  uint32_t pass;
  bool keeps;                  // what it leaves is remembered
  uint32_t type, flags, stream;
  Field length, padding, item;
  LineHandle top;              // the frame's own line
};

// What a frame holds, behind its header (http2_frames.cpp), and a piece of the data of a stream.
void ShowHttp2Payload(const Place& in, Cursor& c, Http2Frame& frame);
void ShowHttp2Body(const Place& in, Cursor& c, Http2Frame& frame);
const char* Http2FrameName(uint32_t type);
void ShowHttp2Head(const Place& in, Cursor& c, uint32_t type);
void RememberHttp2Body(const Place& in, const Http2Frame& frame, const WebBody& body);   // what headers say of it

// A header block, or the piece of it that a frame brings (hpack.cpp).
void ShowHpackFields(const Place& in, Cursor& c, Http2Frame& frame);

}  // namespace qxview
