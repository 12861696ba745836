// The bytes of TCP connections in their order (RFC 9293 section 3.4), for messages that span segments. What a direction
// sent and no whole message used yet is kept, with the packets that brought it; segments behind a gap wait for it. What
// a packet lets be shown is worked out once, when it comes, and recorded: the same packet gets the same answer again.
#pragma once
#include "core/byte_origins.h"
#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {

enum class StreamAnswer : uint8_t {
  kShow,     // bytes to decode, or none but what is kept for later
  kAhead,    // bytes before this segment are missing: it waits for them
  kSeen,     // nothing but what an earlier segment brought
};

// What becomes of the segment, and of what was kept before it.
struct StreamRun {
  StreamAnswer answer;
  bool isCut;             // the last message to show is not whole, and nothing more of it will come together
  uint8_t unused[2];
  int32_t seen;           // bytes in front of the segment that were brought before
  int32_t differing;      // of those, how many are others than before
  int32_t plain;          // bytes behind them to be shown as they stand: of a message too long to be kept, or behind a gap
  int32_t shown;          // bytes to show in messages
  int32_t pieceCount;     // of packets that brought those; 0 where all stand in this segment
  int32_t waiting;        // bytes kept for later
  int32_t needed;         // bytes that their message still lacks; 0 when that is not known
  int32_t lost;           // bytes before this segment that were given up
};

// One direction of a connection.
struct TcpStream {
  int64_t packet;             // the last one
  uint32_t sequence;          // its segment's
  uint32_t next;              // the number of the first byte that has not come
  uint32_t skipEnd;           // the end of a message that is too long to be kept
  int32_t used;               // bytes kept in front that were shown with the last packet
  int32_t kept;               // bytes kept, those included
  int32_t pieces;
  int32_t messageLength;      // of the one that starts behind the used bytes; 0 when it is not known
  uint16_t ahead;             // segments behind a gap
  uint16_t protocol;
  bool skips, skipsToEnd;
  bool isLost;                // the gap: the receiver acknowledged what is behind it
  int64_t gapTime;            // when the first segment behind the gap came
  uint32_t holeStart, holeEnd;   // bytes that were not waited for, and may still come
  StreamRun run;              // the last packet's
};
struct StreamPiece {
  BytePiece piece;
};
struct AheadSegment {
  uint32_t sequence;
  int32_t offset;             // in its frame
  int64_t packet;
  bool used;
};

// How far a sequence number is behind another one in their circle.
inline int32_t Beyond(uint32_t number, uint32_t other) { return static_cast<int32_t>(number - other); }

// The stream of the current packet's direction begins with this sequence number: a SYN segment came.
void BeginTcpStream(const Place& at, uint32_t firstSequence, uint16_t protocol);
// The other direction's receiver has all bytes before this number.
void AcknowledgeTcpStream(const Place& at, uint32_t number);

// Takes in the current packet's segment (PacketState::segment) with its payload, of this protocol's decoder. The bytes to
// show stand in `joined` where the segment does not hold all of them; empty otherwise.
StreamRun TakeTcpSegment(const Place& at, const Cursor& c, const DecoderRow& row, Cursor* joined);

}  // namespace qxview
