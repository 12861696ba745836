// HTTP/2 (RFC 9113): requests and responses as frames on streams of one connection.
//
//   preface of the client, 24 octets   frames: length (24)  type (8)  flags (8)  reserved, stream (31)  payload
//
// Frames run over segments and over records of TLS: the rest of one that is short is waited for, the data of a longer one are
// shown as they come. What a direction leaves is kept with the state that it had before the packet, so that a packet which is
// looked at again finds what it found at first.
#include "decoders/app/http2.h"

#include <cstring>

#include "core/line_facts.h"
#include "decoders/message_lengths.h"

namespace qxview {
namespace {

constexpr int32_t kHeadSize = 9, kPrefaceSize = 24;
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
struct Run : DirectionRun<ConnectionKey, Http2Direction> {
  StateBytes fieldPart;
  bool keeps;
};

void Load(const Place& at, const Cursor& c, Run& run) {
  LoadRun(at, kHttp2Directions, c, run);
  const uint32_t field = run.state.now.fieldKept < run.now.length ? run.state.now.fieldKept : run.now.length;
  run.now.length -= field;
  if (field) run.fieldPart = {run.now.data + run.now.length, field};
}

void Save(const Place& at, Run& run) {
  run.state.now.fieldKept = run.fieldPart.length;
  if (run.fieldPart.length) {
    uint8_t* const both = TakeFrameMemory(at.view, int64_t{run.now.length} + run.fieldPart.length);
    if (!both) return;
    if (run.now.length) std::memcpy(both, run.now.data, run.now.length);
    std::memcpy(both + run.now.length, run.fieldPart.data, run.fieldPart.length);
    run.now = {both, run.now.length + run.fieldPart.length};
  }
  SaveRun(at, kHttp2Directions, run);
}

Http2Frame FrameOf(Run& run, const Head& head, LineHandle top) {
  return {&run.state.now, &run.fieldPart, run.turn.packet, run.state.pass, run.keeps, head.type, head.flags, head.stream, {}, {},
          {}, 0, top};
}

// Data of a frame that came before.
void ShowRest(const Place& at, Cursor& c, Run& run) {
  Http2Side& side = run.state.now;
  const int32_t left = Left(c);
  const int32_t here = side.bodyLeft < static_cast<uint32_t>(left) ? static_cast<int32_t>(side.bodyLeft) : left;
  side.bodyLeft -= static_cast<uint32_t>(here);
  const LineHandle top = AddLine(at, Ahead(c, here), "HTTP/2: Continued, Stream %u, %d bytes, %u to come", side.bodyStream,
                                 here, side.bodyLeft);
  Http2Frame frame = FrameOf(run, {0, kData, side.bodyFlags, side.bodyStream, false}, top);
  const uint32_t padding = side.bodyPadding > side.bodyLeft ? side.bodyPadding - side.bodyLeft : 0;   // of it, what is here
  const int32_t shown = here > static_cast<int32_t>(padding) ? here - static_cast<int32_t>(padding) : 0;
  Cursor body = TakeCursor(c, shown);
  ShowHttp2Body(Under(at, top), body, frame);
  AddBlock(Under(at, top), TakeBytes(c, here - shown), "Padding");
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
    run.state.now.bodyFlags = head.type == kData ? head.flags : 0;
    run.state.now.bodyPadding = 0;
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
  Run run{};
  run.key = DirectionOf(PacketOf(at));
  run.keeps = !PacketOf(at).quoted;
  Load(at, c, run);
  uint32_t lost;
  const SegmentNews news = FollowSegment(at, run.state.now.trail, run.isOther, Left(c), &lost);
  if (news == SegmentNews::kSentAgain) {   // its fields would be read by a table that has gone on
    const Field again = Rest(c);
    AddBlock(Under(at, AddLine(at, again, "HTTP/2: Sent Again, %d bytes", again.length)), again, "Data");
    return 1;
  }
  if (news == SegmentNews::kBehindGap) {
    uint32_t& bodyLeft = run.state.now.bodyLeft;
    bodyLeft = lost < bodyLeft ? bodyLeft - lost : 0;
    run.state.now.isInStep = false;
    run.now = run.fieldPart = {};
  }
  const bool isJoined = run.now.length > 0;
  Cursor joined = JoinInFront(at, run.now, 0, c.offset, c);
  run.now = {};
  bool& isInStep = run.state.now.isInStep;
  const bool isLost = !isInStep && run.state.now.bodyLeft == 0 && !isJoined && !LooksLikeHttp2(c) && Left(c) >= kHeadSize &&
                      PeekU8(c, 3) <= 9;
  isInStep = !isLost;
  if (isLost) {
    AddBlock(Under(at, AddLine(at, Ahead(c, Left(c)), "HTTP/2: In the Middle of a Frame")), Rest(c), "Data");
  } else {
    ShowFrames(at, joined, run);
  }
  Save(at, run);
  return 1;
}

}  // namespace qxview
