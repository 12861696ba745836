#include "decoders/app/compressed_lines.h"

#include "decoders/app/http_inflate.h"

namespace qxview {
namespace {

constexpr uint32_t kWindow = 32768;
constexpr int32_t kMarkSize = 4;

struct Run : DirectionRun<RequestKey, CompressedDirection> {};

const CompressedConnection* Known(const Place& at) {
  return Recall(at.view, kCompressedConnections, RequestOf(PacketOf(at), 0));
}

// The octets up to behind the last empty block, which ends what was flushed; 0 where none stands there. The last ones of a
// stream may be without it.
int32_t LengthToMark(const Cursor& c) {
  constexpr uint8_t kMark[] = {0, 0, 0xFF, 0xFF};
  for (int32_t end = Left(c); end >= kMarkSize; --end) {
    if (PeekIs(c, end - kMarkSize, kMark)) return end;
  }
  return 0;
}

uint32_t Least(uint32_t a, uint32_t b) { return a < b ? a : b; }

// What the direction goes on with: the last octets of the window and of what it opened to, and those behind the mark.
void Keep(const Place& at, Run& run, const Field& opened, const Field& pending) {
  const uint32_t fresh = static_cast<uint32_t>(opened.length), ofFresh = Least(fresh, kWindow);
  const uint32_t ofOld = Least(run.state.now.window, kWindow - ofFresh);
  const uint32_t rest = static_cast<uint32_t>(pending.length), size = ofOld + ofFresh + rest;
  uint8_t* const bytes = size ? TakeFrameMemory(at.view, size) : nullptr;
  if (size && !bytes) {
    run.state.now.isLost = true;
    return;
  }
  if (ofOld) std::memcpy(bytes, run.now.data + run.state.now.window - ofOld, ofOld);
  const int32_t last = static_cast<int32_t>(ofFresh);
  if (ofFresh) std::memcpy(bytes + ofOld, Slice(opened, opened.length - last, last).bytes, ofFresh);
  if (rest) std::memcpy(bytes + ofOld + ofFresh, pending.bytes, rest);
  run.state.now.window = ofOld + ofFresh;
  run.now = {bytes, size};
}

void Lose(const Place& in, Cursor& c, Run& run) {
  run.state.now.isLost = true;
  run.now = {};
  AddBlock(in, Rest(c), "Compressed Data");
}

void ShowRun(const Place& in, Cursor& c, Run& run, void (*decode)(const Place& in, Cursor& c)) {
  CompressedSide& side = run.state.now;
  const Field whole = Ahead(c, Left(c));
  const uint32_t pending = run.now.length > side.window ? run.now.length - side.window : 0;
  const StateBytes window{run.now.data, side.window};
  const int32_t size = static_cast<int32_t>(pending) + whole.length;
  uint8_t* const bytes = TakeFrameMemory(in.view, size);
  if (!bytes || pending > kMostCompressedPending) return Lose(in, c, run);
  if (pending) std::memcpy(bytes, run.now.data + side.window, pending);
  std::memcpy(bytes + pending, whole.bytes, static_cast<size_t>(whole.length));
  const Field all{bytes, whole.offset, size, 0, true};
  const int32_t mark = LengthToMark(CursorOver(all)), length = mark > 0 ? mark : size;
  Inflation how;
  bool isOver = false;
  Cursor opened = InflateInFrame(in, Slice(all, 0, length), Wrapping::kNone, window, &how, &isOver);
  if (mark == 0 && !isOver) {
    AddBlock(in, Rest(c), "Compressed Data in Part");
    return Keep(in, run, {}, all);
  }
  if (Left(opened) < 1 || how != Inflation::kAll) return Lose(in, c, run);
  const Field plain = Ahead(opened, Left(opened));
  Keep(in, run, plain, Slice(all, length, size - length));
  const DerivedLines derived(in.view);
  const Place under = Under(in, AddLine(in, whole, "Inflated Lines: %d bytes", plain.length));
  decode(under, opened);
}

}  // namespace

void NoteCompressionAsked(const Place& at, const Field& tag) {
  CompressedConnection connection{static_cast<int64_t>(at.view->context->packetNumber), false, 0, {}};
  const CompressedConnection* known = Known(at);
  if (PacketOf(at).quoted || (known && known->isOn) || tag.length > static_cast<int32_t>(sizeof connection.tag)) return;
  connection.tagLength = static_cast<uint8_t>(tag.length);
  if (tag.length > 0) std::memcpy(connection.tag, tag.bytes, static_cast<size_t>(tag.length));
  Remember(at.view, kCompressedConnections, RequestOf(PacketOf(at), 0), connection);
}

void NoteCompressionGranted(const Place& at, const Field& tag) {
  const CompressedConnection* known = Known(at);
  if (!known || known->isOn || known->tagLength != tag.length || PacketOf(at).quoted) return;
  if (tag.length > 0 && std::memcmp(known->tag, tag.bytes, static_cast<size_t>(tag.length)) != 0) return;
  CompressedConnection connection = *known;
  connection.packet = static_cast<int64_t>(at.view->context->packetNumber);
  connection.isOn = true;
  Remember(at.view, kCompressedConnections, RequestOf(PacketOf(at), 0), connection);
}

bool ShowCompressedLines(const Place& at, Cursor& c, const char* protocol, void (*decode)(const Place& in, Cursor& c)) {
  const CompressedConnection* known = Known(at);
  if (!known || !known->isOn || static_cast<int64_t>(at.view->context->packetNumber) <= known->packet) return false;
  Run run{};
  int32_t direction;
  const ConnectionKey connection = ConnectionOf(PacketOf(at), &direction);
  run.key = {connection, {1 + static_cast<uint32_t>(direction), 0, 0, 0}};
  LoadRun(at, kCompressedDirections, c, run);
  CompressedSide& side = run.state.now;
  uint32_t lost;
  const SegmentNews news = FollowSegment(at, side.trail, run.isOther, Left(c), &lost);
  // keys: none Compressed
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "%s: Compressed, %d bytes", protocol, Left(c)));
  if (news == SegmentNews::kSentAgain) {
    AddBlock(in, Rest(c), "Data Sent Again");
    return true;
  }
  if (side.isLost || news == SegmentNews::kBehindGap) Lose(in, c, run);
  else ShowRun(in, c, run, decode);
  SaveRun(at, kCompressedDirections, run);
  return true;
}

}  // namespace qxview
