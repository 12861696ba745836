// The frames of gQUIC (wire layout document): streams and acknowledgements, whose types hold the sizes of their fields, and
// the others, which have a number each.
#include "core/rows.h"
#include "decoders/quic/gquic.h"
#include "decoders/quic/gquic_names.h"

namespace qxview {
namespace {

enum FrameBits : uint32_t { kStreamBit = 0x80, kAckBit = 0x40, kFeedbackBit = 0x20 };
enum FrameType : uint32_t {
  kPadding, kReset, kClose, kGoAway, kWindowUpdate, kBlocked, kStopWaiting, kPing, kCrypto,
};
constexpr uint32_t kFirstWithNewAck = 34;
constexpr uint8_t kAckSizes[] = {1, 2, 4, 6};

constexpr auto kAckSizeNames = SortedNames({{0, "1 byte"}, {1, "2 bytes"}, {2, "4 bytes"}, {3, "6 bytes"}});
constexpr auto kOffsetNames = SortedNames({
    {0, "0 bytes"}, {1, "2 bytes"}, {2, "3 bytes"}, {3, "4 bytes"}, {4, "5 bytes"}, {5, "6 bytes"}, {6, "7 bytes"},
    {7, "8 bytes"}});
constexpr auto kStreamSizeNames = SortedNames({{0, "1 byte"}, {1, "2 bytes"}, {2, "3 bytes"}, {3, "4 bytes"}});
constexpr auto kStreamType = Rows<NoValues>({
    Hex(1, "Frame Type"), Flag(0, "Stream"), Flag(1, "FIN"), Flag(2, "Data Length"), Bits(3, 3, "Offset Length", kOffsetNames),
    Bits(6, 2, "Stream ID Length", kStreamSizeNames)});
constexpr auto kOldAckType = Rows<NoValues>({
    Hex(1, "Frame Type"), Bits(0, 2, "ACK"), Flag(2, "NACK"), Flag(3, "Truncated"),
    Bits(4, 2, "Largest Observed Length", kAckSizeNames), Bits(6, 2, "Missing Packet Length", kAckSizeNames)});
constexpr auto kAckType = Rows<NoValues>({
    Hex(1, "Frame Type"), Bits(0, 2, "ACK"), Flag(2, "Several Blocks"), Flag(3, "Unused"),
    Bits(4, 2, "Largest Acked Length", kAckSizeNames), Bits(6, 2, "ACK Block Length", kAckSizeNames)});
constexpr auto kType = Rows<NoValues>({Hex(1, "Frame Type", kGoogleFrameNames)});

struct Walk {
  const Place& in;
  Cursor& c;
  const GoogleFrames& frames;

  // keys: number
  uint64_t Show(int32_t size, const char* label) const {
    const WideField number = TakeGoogleNumber(c, size, frames.isBig);
    AddLine(in, number, "%s: %I64u", label, number.wide);
    return number.here ? number.wide : 0;
  }
};

void ShowReason(const Walk& walk) {
  const uint64_t length = walk.Show(2, "Reason Phrase Length");
  const Field reason = TakeBytes(walk.c, static_cast<int64_t>(length));
  if (reason.length) AddLine(walk.in, reason, "Reason Phrase: %s", Text(reason));
}

void ShowError(const Walk& walk, const Names& names) {
  const WideField code = TakeGoogleNumber(walk.c, 4, walk.frames.isBig);
  AddLine(walk.in, code, "Error Code: %u = %s", code.value, names.NameOf(code.value));
}

void ShowPadding(const Place& in, Cursor& c) {
  int32_t length = 0;
  while (length < Left(c) && PeekU8(c, length) == 0) ++length;
  const Place frame = Under(in, AddLine(in, Ahead(c, length), "Frame: PADDING, %d bytes", length));
  ShowRows(frame, c, kType);
  const Field run = TakeBytes(c, length - 1);
  if (length > 1) AddLine(frame, run, "Padding: %d bytes", run.length);
}

void ShowStream(const Walk& walk, uint32_t type) {
  ShowRows(walk.in, walk.c, kStreamType);
  const uint32_t offsetCode = type >> 2 & 7;
  const uint64_t stream = walk.Show(static_cast<int32_t>(type & 3) + 1, "Stream ID");
  const uint64_t offset = offsetCode ? walk.Show(static_cast<int32_t>(offsetCode) + 1, "Offset") : 0;
  int32_t length = Left(walk.c);
  if (type & 0x20) length = static_cast<int32_t>(walk.Show(2, "Data Length"));
  AppendToParent(walk.in, Ahead(walk.c, 0), ", Stream %I64u, %d bytes at %I64u", stream, length, offset);
  Cursor data = TakeCursor(walk.c, length);
  constexpr uint64_t kHandshakeStream = 1;
  if (stream == kHandshakeStream) ShowGoogleMessage(walk.in, data);   // one of several may start anywhere
  const Field rest = Rest(data);
  if (rest.here) AddLine(walk.in, rest, "Stream Data: %d bytes", rest.length);
}

void ShowCrypto(const Walk& walk) {
  ShowRows(walk.in, walk.c, kType);
  const uint64_t offset = walk.Show(8, "Offset"), length = walk.Show(2, "Length");
  AppendToParent(walk.in, Ahead(walk.c, 0), ", %I64u bytes at %I64u", length, offset);
  Cursor data = TakeCursor(walk.c, static_cast<int64_t>(length));
  ShowGoogleMessage(walk.in, data);
  const Field rest = Rest(data);
  if (rest.here) AddLine(walk.in, rest, "Crypto Data: %d bytes", rest.length);
}

// When the packets came in: the first against the connection's start, the others against the one before.
void ShowTimestamps(const Walk& walk, const char* delta) {
  uint64_t count = walk.Show(1, "Timestamps");
  Loop loop;
  for (bool isFirst = true; count > 0 && MoreAt(walk.in, walk.c, loop); --count, isFirst = false) {
    walk.Show(1, delta);
    walk.Show(isFirst ? 4 : 2, isFirst ? "First Timestamp" : "Time since Previous Timestamp");
  }
}

void ShowOldAck(const Walk& walk, uint32_t type) {
  ShowRows(walk.in, walk.c, kOldAckType);
  const int32_t largestSize = kAckSizes[type >> 2 & 3];
  walk.Show(1, "Received Entropy");
  const uint64_t largest = walk.Show(largestSize, "Largest Observed");
  AppendToParent(walk.in, Ahead(walk.c, 0), ", up to %I64u", largest);
  walk.Show(2, "ACK Delay Time");
  ShowTimestamps(walk, "Delta from Largest Observed");
  if (!(type & 0x20)) return;
  Loop loop;
  uint64_t ranges = walk.Show(1, "Missing Ranges");
  for (; ranges > 0 && MoreAt(walk.in, walk.c, loop); --ranges) {
    walk.Show(kAckSizes[type & 3], "Missing Packet Delta");
    walk.Show(1, "Range Length");
  }
  Loop revivedLoop;
  uint64_t revived = walk.Show(1, "Revived Packets");
  for (; revived > 0 && MoreAt(walk.in, walk.c, revivedLoop); --revived) walk.Show(largestSize, "Revived Packet");
}

void ShowAck(const Walk& walk, uint32_t type) {
  ShowRows(walk.in, walk.c, kAckType);
  const int32_t blockSize = kAckSizes[type & 3];
  const uint64_t largest = walk.Show(kAckSizes[type >> 2 & 3], "Largest Acked");
  AppendToParent(walk.in, Ahead(walk.c, 0), ", up to %I64u", largest);
  walk.Show(2, "Largest Acked Delta Time");
  uint64_t blocks = type & 0x20 ? walk.Show(1, "ACK Blocks") : 0;
  walk.Show(blockSize, "First ACK Block Length");
  Loop loop;
  for (; blocks > 0 && MoreAt(walk.in, walk.c, loop); --blocks) {
    walk.Show(1, "Gap to Next Block");
    walk.Show(blockSize, "ACK Block Length");
  }
  ShowTimestamps(walk, "Delta from Largest Acked");
}

// A frame with a type of its own; false for one that nothing tells the end of.
bool ShowNumbered(const Walk& walk, uint32_t type) {
  if (type > kCrypto) return false;
  if (type == kCrypto) {
    ShowCrypto(walk);
    return true;
  }
  ShowRows(walk.in, walk.c, kType);
  switch (type) {
    case kReset:
      walk.Show(4, "Stream ID");
      walk.Show(8, "Byte Offset");
      ShowError(walk, kGoogleStreamErrorNames);
      break;
    case kClose:
      ShowError(walk, kGoogleErrorNames);
      ShowReason(walk);
      break;
    case kGoAway:
      ShowError(walk, kGoogleErrorNames);
      walk.Show(4, "Last Good Stream ID");
      ShowReason(walk);
      break;
    case kWindowUpdate:
      walk.Show(4, "Stream ID");
      walk.Show(8, "Byte Offset");
      break;
    case kBlocked: walk.Show(4, "Stream ID"); break;
    case kStopWaiting:
      if (walk.frames.version < kFirstWithNewAck) walk.Show(1, "Sent Entropy");
      walk.Show(walk.frames.numberLength, "Least Unacked Delta");
      break;
    default: break;
  }
  return true;
}

const char* FrameName(uint32_t type) {
  if (type & kStreamBit) return "STREAM";
  if (type & kAckBit) return "ACK";
  return LookupName(kGoogleFrameNames, type);
}

}  // namespace

void ShowGoogleFrames(const Place& in, Cursor& c, const GoogleFrames& frames) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t type = PeekU8(c);
    if (type == kPadding) {
      ShowPadding(in, c);
      continue;
    }
    const int32_t start = c.offset;
    const Place under = Under(in, AddLine(in, Ahead(c, 1), "Frame: %s", FrameName(type)));
    const Walk walk{under, c, frames};
    if (type & kStreamBit) {
      ShowStream(walk, type);
    } else if (type & kAckBit) {
      if (frames.version < kFirstWithNewAck) {
        ShowOldAck(walk, type);
      } else {
        ShowAck(walk, type);
      }
    } else if (!ShowNumbered(walk, type)) {
      ShowRows(under, c, kType);
      AddBlock(under, Rest(c), "Data");
    }
    if (!under.dead) SetRange(under, under.parent, start, c.offset - start);
    if (c.ranShort) {
      c.ranShort = false;
      AddBlock(in, Rest(c), "Data");
    }
  }
}

bool StartsGoogleHandshake(const Field& frames, uint32_t version) {
  constexpr int32_t kFarthest = 64;
  Cursor c = CursorOver(frames);
  if (version < kFirstWithNewAck) TakeU8(c);
  for (int32_t at = 0; at < kFarthest; ++at) {
    if (PeekIs(c, at, "CHLO") || PeekIs(c, at, "REJ\0") || PeekIs(c, at, "SHLO") || PeekIs(c, at, "SCUP")) return true;
  }
  return false;
}

}  // namespace qxview
