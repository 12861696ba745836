// HTTP/2 (RFC 9113): requests and responses as frames on streams of one connection.
//
//   preface of the client, 24 octets   frames: length (24)  type (8)  flags (8)  reserved, stream (31)  payload
//
// Frames run over segments and over records of TLS: the rest of one that is short is waited for, the data of a longer one are
// shown as they come. What a direction leaves is kept with the state that it had before the packet, so that a packet which is
// looked at again finds what it found at first.
#include "decoders/app/http2.h"

#include <cstring>

#include "core/byte_origins.h"
#include "core/line_facts.h"
#include "decoders/message_lengths.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kHeadSize = 9, kPrefaceSize = 24;
constexpr int32_t kMostKeptFrame = 24 << 10;   // longer ones are shown as they come
constexpr uint32_t kData = 0;
constexpr char kPreface[] = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";

struct Head {
  uint32_t length, type, flags, stream;
  bool isReserved;
};
Head PeekHead(const Cursor& c) {
  const uint32_t stream = PeekU32(c, 5);
  return {PeekU32(c) >> 8, PeekU8(c, 3), PeekU8(c, 4), stream & 0x7FFFFFFF, (stream >> 31) != 0};
}

// A frame that its type allows; strict, for it decides where nothing else is known.
bool IsLikely(const Head& head) {
  constexpr uint32_t kMostLength = 1 << 20;
  if (head.isReserved || head.length > kMostLength) return false;
  switch (head.type) {
    case 0: return head.stream != 0 && (head.flags & ~0x09u) == 0;
    case 1: return head.stream != 0 && head.length > 0 && (head.flags & ~0x2Du) == 0;
    case 2: return head.stream != 0 && head.length == 5 && head.flags == 0;
    case 3: return head.stream != 0 && head.length == 4 && head.flags == 0;
    case 4: return head.stream == 0 && head.length % 6 == 0 && head.length <= 120 && head.flags <= 1;
    case 6: return head.stream == 0 && head.length == 8 && head.flags <= 1;
    case 7: return head.stream == 0 && head.length >= 8 && head.flags == 0;
    case 8: return head.length == 4 && head.flags == 0;
    case 9: return head.stream != 0 && (head.flags & ~0x04u) == 0;
    default: return false;
  }
}

// The state of the packet's direction while its frames are shown.
struct Run {
  ConnectionKey key;
  Http2Direction state;
  QuicTurn turn;
  StateBytes before, now;   // what stood in wait before the packet, and what does now
  bool keeps, isOther;      // isOther: another packet was the last one
};

void Load(const Place& at, Run& run) {
  StateBytes bytes{};
  const Http2Direction* known = Recall(at.view, kHttp2Directions, run.key, 1, &bytes);
  run.state.pass = 1;
  if (!known) return;
  run.state = *known;
  const bool isSame = known->turn.packet == run.turn.packet, isAgain = isSame && run.turn.frame <= known->turn.frame;
  if (!isSame || isAgain) ++run.state.pass;
  const uint32_t first = known->before.kept, second = known->now.kept;
  run.isOther = !isSame;
  TakeTurn(run.turn, run.state.turn, run.state.before, run.state.now);
  if (first + second > bytes.length || bytes.length == 0) return;
  uint8_t* const copy = TakeFrameMemory(at.view, bytes.length);   // the next look-up may take its place
  if (!copy) return;
  std::memcpy(copy, bytes.data, bytes.length);
  // What is waited for goes with its side.
  run.before = isSame ? StateBytes{copy, first} : StateBytes{copy + first, second};
  run.now = isSame && !isAgain ? StateBytes{copy + first, second} : run.before;
}

void Save(const Place& at, Run& run) {
  const uint32_t length = run.before.length + run.now.length;
  if (PacketOf(at).quoted) return;
  run.state.turn = run.turn;
  run.state.before.kept = run.before.length;
  run.state.now.kept = run.now.length;
  uint8_t* const bytes = length ? TakeFrameMemory(at.view, length) : nullptr;
  if (length && !bytes) return;
  if (run.before.length) std::memcpy(bytes, run.before.data, run.before.length);
  if (run.now.length) std::memcpy(bytes + run.before.length, run.now.data, run.now.length);
  Remember(at.view, kHttp2Directions, run.key, run.state, {bytes, length});
}

// Where segments are missing, or come again, by their numbers. False for one that was shown.
bool FollowSegment(const Place& at, Run& run, int32_t length) {
  const TcpSegment& segment = PacketOf(at).segment;
  Http2Side& side = run.state.now;
  if (at.view->engine->settings.reassembly) return true;
  const int32_t gap = static_cast<int32_t>(segment.sequence - side.nextSequence);
  if (!segment.here) {   // behind TLS: records, of which a segment may bring several
    if (side.hasSequence && (gap < 0 || (gap == 0 && run.isOther))) return false;
    side.nextSequence = segment.sequence;
    side.hasSequence = segment.sequence != 0;
    return true;
  }
  if (side.hasSequence && gap < 0) return false;
  if (side.hasSequence && gap > 0) {
    const uint32_t lost = static_cast<uint32_t>(gap);
    side.bodyLeft = lost < side.bodyLeft ? side.bodyLeft - lost : 0;
    run.now = {};
  }
  side.nextSequence = segment.sequence + static_cast<uint32_t>(length) + static_cast<uint32_t>(segment.cut);
  side.hasSequence = true;
  return true;
}

// The bytes that were waited for with those that came.
Cursor Join(const Place& at, Run& run, const Cursor& c) {
  const int32_t kept = static_cast<int32_t>(run.now.length);
  uint8_t* const bytes = kept ? TakeFrameMemory(at.view, int64_t{kept} + Left(c)) : nullptr;
  if (!bytes) return c;
  std::memcpy(bytes, run.now.data, run.now.length);
  std::memcpy(bytes + kept, c.at, static_cast<size_t>(Left(c)));
  const BytePiece pieces[] = {{0, 0, kept}, {static_cast<int64_t>(at.view->context->packetNumber), c.offset, Left(c)}};
  run.now = {};
  return JoinedBytes(at.view, bytes, kept + Left(c), pieces, 2, c.offset);
}

Http2Frame FrameOf(Run& run, const Head& head, LineHandle top) {
  return {&run.state.now, run.turn.packet, run.state.pass, run.keeps, head.type, head.flags, head.stream, {}, {}, {}, top};
}

// Data of a frame that came before.
void ShowRest(const Place& at, Cursor& c, Run& run) {
  Http2Side& side = run.state.now;
  const int32_t left = Left(c);
  const int32_t here = side.bodyLeft < static_cast<uint32_t>(left) ? static_cast<int32_t>(side.bodyLeft) : left;
  side.bodyLeft -= static_cast<uint32_t>(here);
  const LineHandle top = AddLine(at, Ahead(c, here), "HTTP/2: Continued, Stream %u, %d bytes, %u to come", side.bodyStream,
                                 here, side.bodyLeft);
  Http2Frame frame = FrameOf(run, {0, kData, 0, side.bodyStream, false}, top);
  Cursor body = TakeCursor(c, here);
  ShowHttp2Body(Under(at, top), body, frame);
}

// A frame; one that is not whole is waited for, or shown as far as it came.
void ShowFrame(const Place& at, Cursor& c, Run& run) {
  const int32_t left = Left(c);
  const Head head = PeekHead(c);
  const int64_t size = left < kHeadSize ? kHeadSize : int64_t{kHeadSize} + head.length;
  const bool isShownAsItComes = left >= kHeadSize && (head.type == kData || size > kMostKeptFrame);
  if (size > left && !isShownAsItComes) {
    AddLine(at, Ahead(c, left), "HTTP/2: Frame in Part, %d of %d bytes", left, static_cast<int32_t>(size));
    const Field rest = Rest(c);
    run.now = {rest.bytes, static_cast<uint32_t>(rest.length)};
    return;
  }
  const int32_t here = size < left ? static_cast<int32_t>(size) : left;
  const LineHandle top = AddLine(at, Ahead(c, here), "HTTP/2: %s, Stream %u, %u bytes", Http2FrameName(head.type),
                                 head.stream, head.length);
  const Place in = Under(at, top);
  Cursor content = TakeCursor(c, here);
  ShowHttp2Head(in, content, head.type);
  Http2Frame frame = FrameOf(run, head, top);
  if (here < size) {
    run.state.now.bodyLeft = static_cast<uint32_t>(size - here);
    run.state.now.bodyStream = head.stream;
    if (head.type != kData) {
      AddBlock(in, Rest(content), "Data in Part");
      return;
    }
  }
  ShowHttp2Payload(in, content, frame);
}

void ShowFrames(const Place& at, Cursor& c, Run& run) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    if (run.state.now.bodyLeft > 0) {
      ShowRest(at, c, run);
    } else if (StartsHttp2(c)) {
      const Field preface = TakeBytes(c, kPrefaceSize);
      AddLine(at, preface, "HTTP/2: Connection Preface, %s", Text(Slice(preface, 0, 14)));
    } else {
      ShowFrame(at, c, run);
    }
  }
}

}  // namespace

uint32_t TurnPlaceOf(const Cursor& c) {
  constexpr uint32_t kOfFrame = 1u << 30;
  const uint32_t offset = static_cast<uint32_t>(c.offset);
  return offset >= static_cast<uint32_t>(kFirstRegionOffset) ? offset - kFirstRegionOffset : offset + kOfFrame;
}

bool StartsHttp2(const Cursor& c) { return PeekIs(c, 0, kPreface); }

bool StartsHttp2Settings(const Cursor& c) {
  constexpr uint32_t kSettings = 4, kHighestKnown = 9, kFurther = 0x10;
  const Head head = PeekHead(c);
  if (head.type != kSettings || head.flags != 0 || !IsLikely(head) || Left(c) < kHeadSize + static_cast<int32_t>(head.length)) {
    return false;
  }
  for (uint32_t at = 0; at < head.length; at += 6) {
    const uint32_t number = PeekU16(c, kHeadSize + static_cast<int32_t>(at));
    if (number == 0 || (number > kHighestKnown && number < kFurther)) return false;
  }
  return head.length > 0;
}

bool LooksLikeHttp2(const Cursor& c) { return StartsHttp2(c) || (Left(c) >= kHeadSize && IsLikely(PeekHead(c))); }

bool IsHttp2Connection(const Place& at) {
  int32_t direction;
  return Recall(at.view, kHttp2Connections, ConnectionOf(PacketOf(at), &direction)) != nullptr;
}

int32_t LengthOfHttp2(const Cursor& c) {
  if (StartsHttp2(c)) return kPrefaceSize;
  if (Left(c) < kHeadSize) return 0;
  const Head head = PeekHead(c);
  return IsLikely(head) || head.type > 9 ? kHeadSize + static_cast<int32_t>(head.length) : kNoMessage;
}

int32_t DecodeHttp2(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "http2");
  const bool isKnown = IsHttp2Connection(at);
  if (Left(c) < 1 || (!isKnown && !LooksLikeHttp2(c))) return 0;
  int32_t direction;
  if (!isKnown && !PacketOf(at).quoted) Remember(at.view, kHttp2Connections, ConnectionOf(PacketOf(at), &direction), {true});
  Run run{DirectionOf(PacketOf(at)), {}, {static_cast<uint64_t>(at.view->context->packetNumber) + 1, TurnPlaceOf(c)}, {}, {},
          !PacketOf(at).quoted, false};
  Load(at, run);
  const bool isNew = FollowSegment(at, run, Left(c));
  if (!isNew) {   // its fields would be read by a table that has gone on
    const Field again = Rest(c);
    AddBlock(Under(at, AddLine(at, again, "HTTP/2: Sent Again, %d bytes", again.length)), again, "Data");
    return 1;
  }
  Cursor joined = Join(at, run, c);
  const bool isLost = run.state.now.bodyLeft == 0 && Left(joined) == Left(c) && !LooksLikeHttp2(c) && Left(c) >= kHeadSize &&
                      PeekU8(c, 3) <= 9;
  if (isLost) {
    AddBlock(Under(at, AddLine(at, Ahead(c, Left(c)), "HTTP/2: In the Middle of a Frame")), Rest(c), "Data");
  } else {
    ShowFrames(at, joined, run);
  }
  Save(at, run);
  return 1;
}

}  // namespace qxview
