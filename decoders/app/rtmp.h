// Real-Time Messaging: what its files share.
#pragma once
#include "core/decoder.h"
#include "decoders/net/connection_key.h"

namespace qxview {

// A chunk stream of a direction: the header that later chunks leave out, and how much of its message is to come.
struct RtmpChunkStream {
  uint32_t id, timestamp, length, left, messageStream;
  uint8_t type;
  bool isExtended;
};
constexpr int32_t kMostRtmpChunkStreams = 12, kMostRtmpHeader = 18;

// What a segment leaves, kept under the place of the byte behind it; its bytes are what came of a message that is opened when
// it is whole.
struct RtmpDirection {
  uint32_t chunkSize;
  uint32_t handshakeLeft;   // octets of it that are to come
  uint32_t chunkLeft;       // the same of the last chunk
  uint8_t current, count;   // the chunk stream that it belongs to, how many there are
  uint8_t waiting;          // the chunk stream whose bytes are kept, from 1
  uint8_t headerLength;
  uint8_t header[kMostRtmpHeader];
  RtmpChunkStream streams[kMostRtmpChunkStreams];
};

const char* RtmpMessageName(uint32_t type);
// Whether a message is opened once it is whole: all but media.
bool IsRtmpRecord(uint32_t type);
// A message; of media what is there of it. Set Chunk Size changes the direction's.
void ShowRtmpMessage(const Place& in, Cursor c, uint32_t type, uint32_t* chunkSize);

// Values of the Action Message Format, versions 0 and 3, to the end of the cursor.
void ShowAmf0Values(const Place& in, Cursor& c);
void ShowAmf3Values(const Place& in, Cursor& c);
// A string without its marker, which is the line's text.
Field TakeAmf0Text(const Place& in, Cursor& c, const char* label);

}  // namespace qxview
