// Real-Time Messaging (its public text, 1.0): a handshake, then chunks, which are pieces of messages and leave out of
// their headers what the chunk before told.
//
//   handshake   version (1), time (4), zeros (4), octets (1528); time (4), time (4), octets (1528)
//   chunk       format (2), chunk stream (6, or 8 or 16 behind 0 or 1)
//               0: timestamp (24), length (24), type (8), message stream (32, low octet first)   1: without the stream
//               2: timestamp alone   3: nothing; 32 more bits where the timestamp is all ones
#include "decoders/app/rtmp.h"

#include <cstring>

#include "core/byte_origins.h"
#include "core/rows.h"
#include "decoders/app/stream_note.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kVersion = 3, kHandshakePart = 1536, kHandshake = 1 + 2 * kHandshakePart, kDefaultChunk = 128;
constexpr uint32_t kExtendedTime = 0xFFFFFF, kLastType = 22;
constexpr int32_t kMostPieces = 64;
constexpr int32_t kLeastHandshake = 512;   // what its first segment has of it, whatever the path's MTU

constexpr auto kFormatNames = SortedNames({
    {0, "Whole Header"}, {1, "Same Message Stream"}, {2, "Timestamp Alone"}, {3, "No Header"}});
struct Chunk { Field format, id, length, type; };
constexpr auto kBasic = Rows<Chunk>({Word(1), Bits(0, 2, "Format", kFormatNames), Bits(2, 6, "Chunk Stream ID")});
constexpr auto kLonger = Rows<Chunk>({Number(1, "Chunk Stream ID less 64")});
constexpr auto kLongest = Rows<Chunk>({Number(2, "Chunk Stream ID less 64").Little()});
constexpr auto kTime = Rows<Chunk>({Number(3, "Timestamp")});
constexpr auto kDelta = Rows<Chunk>({Number(3, "Timestamp Delta")});
constexpr auto kMessage = Rows<Chunk>({Number(3, "Message Length"), Number(1, "Message Type", RtmpMessageName)});
constexpr auto kStream = Rows<Chunk>({Number(4, "Message Stream ID").Little()});
constexpr auto kLongTime = Rows<Chunk>({Number(4, "Extended Timestamp")});
constexpr auto kOpening = Rows<Chunk>({Number(1, "Version")});
constexpr auto kFirst = Rows<Chunk>({Number(4, "Time"), Hex(4, "Zero or Version")});
constexpr auto kSecond = Rows<Chunk>({Number(4, "Peer Time"), Number(4, "Time Read")});

// What a direction's bytes are shown by; `message` is what there is of one that is not whole yet.
struct Run {
  RtmpDirection now{};
  uint8_t* message = nullptr;
  int32_t length = 0, room = 0, pieceCount = 0;
  BytePiece pieces[kMostPieces];
};

int32_t BasicSize(const Cursor& c) {
  const uint32_t id = PeekU8(c) & 63;
  return id == 0 ? 2 : id == 1 ? 3 : 1;
}
uint32_t ChunkStreamOf(const Cursor& c) {
  const uint32_t id = PeekU8(c) & 63;
  return id == 0 ? 64 + PeekU8(c, 1) : id == 1 ? 64 + PeekLittleU16(c, 1) : id;
}

RtmpChunkStream* FindStream(RtmpDirection& direction, uint32_t id) {
  for (int32_t i = 0; i < direction.count; ++i) {
    if (direction.streams[i].id == id) return &direction.streams[i];
  }
  return nullptr;
}

RtmpChunkStream* AddStream(RtmpDirection& direction, uint32_t id) {
  if (RtmpChunkStream* const known = FindStream(direction, id)) return known;
  if (direction.count == kMostRtmpChunkStreams) {   // the one that came first makes room
    std::memmove(direction.streams, direction.streams + 1, sizeof direction.streams - sizeof *direction.streams);
    --direction.count;
    direction.waiting = 0;
  }
  direction.streams[direction.count] = {id, 0, 0, 0, 0, 0, false};
  return &direction.streams[direction.count++];
}

// The octets of the header that begins here; 0 while there are too few to tell.
int32_t HeaderSize(RtmpDirection& direction, const Cursor& c) {
  constexpr int32_t kSizes[] = {11, 7, 3, 0};
  const uint32_t format = PeekU8(c) >> 6;
  const int32_t basic = BasicSize(c);
  if (Left(c) < basic + (format < 3 ? 3 : 0)) return 0;
  const RtmpChunkStream* known = FindStream(direction, ChunkStreamOf(c));
  const bool isExtended = format < 3 ? PeekU24(c, basic) == kExtendedTime : known && known->isExtended;
  return basic + kSizes[format] + (isExtended ? 4 : 0);
}

// Whether the bytes of a stream that is met in its middle may be a whole header.
bool MayBeChunk(const Cursor& c) {
  constexpr uint32_t kMostStream = 255;
  const int32_t basic = BasicSize(c);
  if (PeekU8(c) >> 6 != 0 || Left(c) < basic + 11) return false;
  const uint32_t type = PeekU8(c, basic + 6);
  const bool isType = (type >= 1 && type <= 9 && type != 7) || (type >= 15 && type <= 20) || type == kLastType;
  return isType && PeekLittleU32(c, basic + 7) <= kMostStream && ChunkStreamOf(c) >= 2;
}

void ShowHandshake(const Place& at, Cursor& c, RtmpDirection& now) {
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, Ahead(c, 1), "RTMP: Handshake"));
  Loop loop;
  while (now.handshakeLeft > 0 && MoreAt(in, c, loop)) {
    const uint32_t passed = kHandshake - now.handshakeLeft, within = passed == 0 ? 0 : (passed - 1) % kHandshakePart;
    const bool isEcho = passed > kHandshakePart;
    const int32_t before = Left(c);
    if (passed == 0) {
      ShowRows(in, c, kOpening);
    } else if (within == 0 && before >= 8) {
      if (isEcho) ShowRows(in, c, kSecond);
      else ShowRows(in, c, kFirst);
    } else {
      const int32_t size = static_cast<int32_t>(kHandshakePart - within);
      AddBlock(in, TakeBytes(c, size < before ? size : before), isEcho ? "Random Echo" : "Random Data");
    }
    now.handshakeLeft -= static_cast<uint32_t>(before - Left(c));
  }
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
}

// Puts the bytes of a chunk behind those of its message that came before.
void Collect(const Place& at, Run& run, const Field& data, uint32_t messageLength, bool isStart, uint8_t number) {
  if (isStart) {
    run.message = TakeFrameMemory(at.view, messageLength);
    run.length = run.pieceCount = 0;
    run.room = static_cast<int32_t>(messageLength);
    run.now.waiting = run.message ? number : 0;
  }
  const bool hasRoom = run.pieceCount < kMostPieces && data.length <= run.room - run.length;
  if (run.now.waiting != number || !run.message || !hasRoom) {
    if (run.now.waiting == number) run.now.waiting = 0;
    return;
  }
  std::memcpy(run.message + run.length, data.bytes, static_cast<size_t>(data.length));
  run.length += data.length;
  run.pieces[run.pieceCount++] = {static_cast<int64_t>(at.view->context->packetNumber), data.offset, data.length};
}

// What is there of a chunk's data: its message where that is whole now.
void ShowData(const Place& in, Cursor& c, Run& run, RtmpChunkStream& stream, uint32_t size, bool isStart) {
  const uint32_t left = static_cast<uint32_t>(Left(c)), here = size < left ? size : left;
  const uint8_t number = static_cast<uint8_t>(&stream - run.now.streams + 1);
  run.now.chunkLeft = size - here;
  run.now.current = number;
  stream.left -= here;
  if (here == 0 && size > 0) return;   // the next segment brings the beginning
  Cursor part = TakeCursor(c, here);
  if (isStart && (stream.left == 0 || !IsRtmpRecord(stream.type))) {
    return ShowRtmpMessage(in, part, stream.type, &run.now.chunkSize);
  }
  const Field data = PeekBytes(part, 0, Left(part));
  if (IsRtmpRecord(stream.type) && stream.length <= kMostRtmpMessage) {
    Collect(in, run, data, stream.length, isStart, number);
    if (stream.left == 0 && run.now.waiting == number) {
      run.now.waiting = 0;
      const Cursor whole = JoinedBytes(in.view, run.message, run.length, run.pieces, run.pieceCount, data.offset);
      return ShowRtmpMessage(in, whole, stream.type, &run.now.chunkSize);
    }
  }
  if (data.length > 0) AddBlock(in, data, IsRtmpRecord(stream.type) ? "Message Data in Part" : "Media Data");
}

// The header's lines, and what it changes; null where what it leaves out is not known.
RtmpChunkStream* TakeHeader(const Place& in, Cursor header, RtmpDirection& now) {
  const uint32_t format = PeekU8(header) >> 6, id = ChunkStreamOf(header);
  const int32_t basic = BasicSize(header);
  RtmpChunkStream* const stream = format == 0 ? AddStream(now, id) : FindStream(now, id);
  if (stream && format < 3) {
    stream->timestamp = PeekU24(header, basic);
    stream->isExtended = stream->timestamp == kExtendedTime;
    stream->left = 0;
  }
  if (stream && format < 2) {
    stream->length = PeekU24(header, basic + 3);
    stream->type = static_cast<uint8_t>(PeekU8(header, basic + 6));
  }
  if (stream && format == 0) stream->messageStream = PeekLittleU32(header, basic + 7);
  ShowRows(in, header, kBasic);
  if (basic == 2) ShowRows(in, header, kLonger);
  if (basic == 3) ShowRows(in, header, kLongest);
  if (format == 0) ShowRows(in, header, kTime);
  if (format == 1 || format == 2) ShowRows(in, header, kDelta);
  if (format < 2) ShowRows(in, header, kMessage);
  if (format == 0) ShowRows(in, header, kStream);
  if (Left(header) > 0) ShowRows(in, header, kLongTime);
  return stream;
}

// False where the stream cannot be followed any longer.
bool ShowChunk(const Place& at, Cursor& c, Run& run, const Cursor& header) {
  const Cursor start = header;
  const LineHandle line = AddLine(at, Ahead(start, Left(start)), "RTMP: ");
  const Place in = Under(at, line);
  RtmpChunkStream* const stream = TakeHeader(in, header, run.now);
  if (!stream) {
    AppendToLine(at, line, "Chunk of a Stream Whose Beginning Is Not Known");
    return false;
  }
  const bool isStart = stream->left == 0;
  if (isStart) stream->left = stream->length;
  AppendToLine(at, line, "%s%s, Chunk Stream %u, %u bytes", RtmpMessageName(stream->type), isStart ? "" : " Continued",
               stream->id, stream->left);
  ShowData(in, c, run, *stream, stream->left < run.now.chunkSize ? stream->left : run.now.chunkSize, isStart);
  if (!in.dead && start.offset < kFirstRegionOffset) SetRange(in, line, start.offset, c.offset - start.offset);
  return true;
}

// The rest of a chunk that the segment before began.
void ShowRest(const Place& at, Cursor& c, Run& run) {
  if (run.now.current < 1 || run.now.current > run.now.count) return;
  RtmpChunkStream& stream = run.now.streams[run.now.current - 1];
  const int32_t left = Left(c);
  const int32_t here = run.now.chunkLeft < static_cast<uint32_t>(left) ? static_cast<int32_t>(run.now.chunkLeft) : left;
  const Place in = Under(at, AddLine(at, Ahead(c, here), "RTMP: %s Continued, Chunk Stream %u, %u bytes",
                                     RtmpMessageName(stream.type), stream.id, stream.left));
  ShowData(in, c, run, stream, run.now.chunkLeft, stream.left == stream.length);
}

// A header of which the segment before had a part, and this one the rest or more of it.
Cursor JoinHeader(const Place& at, const Cursor& c, const RtmpDirection& now) {
  const int32_t kept = now.headerLength, room = kMostRtmpHeader - kept, fresh = Left(c) < room ? Left(c) : room;
  uint8_t* const bytes = TakeFrameMemory(at.view, kMostRtmpHeader);
  const Field more = PeekBytes(c, 0, fresh);
  if (!bytes || !more.here) return {};
  std::memcpy(bytes, now.header, static_cast<size_t>(kept));
  std::memcpy(bytes + kept, more.bytes, static_cast<size_t>(fresh));
  const BytePiece pieces[] = {{0, 0, kept}, {static_cast<int64_t>(at.view->context->packetNumber), c.offset, fresh}};
  return JoinedBytes(at.view, bytes, kept + fresh, pieces, 2, c.offset);
}

bool ShowNext(const Place& at, Cursor& c, Run& run) {
  RtmpDirection& now = run.now;
  const int32_t kept = now.headerLength;
  Cursor header = kept > 0 ? JoinHeader(at, c, now) : c;
  const int32_t size = HeaderSize(now, header);
  if (size == 0 || size > Left(header)) {
    const Field part = Rest(c);
    if (kept + part.length > kMostRtmpHeader) return false;
    std::memcpy(now.header + kept, part.bytes, static_cast<size_t>(part.length));
    now.headerLength = static_cast<uint8_t>(kept + part.length);
    AddLine(at, part, "RTMP: Chunk Header in Part, %d bytes", part.length);
    return true;
  }
  now.headerLength = 0;
  TakeBytes(c, size - kept);
  return ShowChunk(at, c, run, TakeCursor(header, size));
}

// What came before; false for a stream that is met where nothing tells how it goes on.
bool Load(const Place& at, const Cursor& c, Run& run) {
  RequestKey key;
  StateBytes bytes{};
  const bool hasPlace = FindStreamPlace(at, c, &key);
  const RtmpDirection* known = hasPlace ? Recall(at.view, kRtmpDirections, key, 1, &bytes) : nullptr;
  if (!known) {
    run.now.chunkSize = kDefaultChunk;
    if (!MayBeChunk(c) && (PeekU8(c) != kVersion || Left(c) < kLeastHandshake)) return false;
    run.now.handshakeLeft = MayBeChunk(c) ? 0 : kHandshake;
    return true;
  }
  run.now = *known;
  const uint32_t waiting = run.now.waiting;
  if (waiting == 0 || waiting > run.now.count) return true;
  const uint32_t whole = run.now.streams[waiting - 1].length;
  run.message = bytes.length <= whole ? TakeFrameMemory(at.view, whole) : nullptr;
  run.room = static_cast<int32_t>(whole);
  if (!run.message) {
    run.now.waiting = 0;
  } else if (bytes.length > 0) {
    run.length = static_cast<int32_t>(bytes.length);
    std::memcpy(run.message, bytes.data, bytes.length);
    run.pieces[run.pieceCount++] = {0, 0, run.length};
  }
  return true;
}

}  // namespace

int32_t DecodeRtmp(const Place& at, Cursor c) {
  Run run;
  if (Left(c) < 1 || !Load(at, c, run)) return 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (run.now.handshakeLeft > 0) {
      ShowHandshake(at, c, run.now);
    } else if (run.now.chunkLeft > 0) {
      ShowRest(at, c, run);
    } else if (!ShowNext(at, c, run)) {
      AddRawRest(at, c, "RTMP Data");
      return 1;
    }
  }
  RequestKey key;
  if (PacketOf(at).quoted || !FindStreamPlace(at, c, &key)) return 1;
  const uint32_t kept = run.now.waiting && run.message ? static_cast<uint32_t>(run.length) : 0;
  Remember(at.view, kRtmpDirections, key, run.now, {run.message, kept});
  return 1;
}

}  // namespace qxview
