#include "decoders/app/direction_run.h"

namespace qxview {

uint32_t TurnPlaceOf(const Cursor& c) {
  constexpr uint32_t kOfFrame = 1u << 30;
  const uint32_t offset = static_cast<uint32_t>(c.offset);
  return offset >= static_cast<uint32_t>(kFirstRegionOffset) ? offset - kFirstRegionOffset : offset + kOfFrame;
}

int32_t StartInFrame(const Place& at, int32_t offset) {
  return RangeOffset(RangeInFrame(at.view->context, MakeByteRange(kFieldKind, offset, 0)));
}

SegmentNews FollowSegment(const Place& at, SegmentTrail& trail, bool isOther, int32_t length, uint32_t* lost) {
  const TcpSegment& segment = PacketOf(at).segment;
  *lost = 0;
  if (at.view->engine->settings.reassembly) return SegmentNews::kNext;   // they come in their order
  const int32_t gap = static_cast<int32_t>(segment.sequence - trail.next);
  if (!segment.here) {   // behind TLS: records, of which a segment may bring several
    if (trail.isKnown && (gap < 0 || (gap == 0 && isOther))) return SegmentNews::kSentAgain;
    trail = {segment.sequence, segment.sequence != 0};
    return SegmentNews::kNext;
  }
  if (trail.isKnown && gap < 0) return SegmentNews::kSentAgain;
  const bool isBehindGap = trail.isKnown && gap > 0;
  if (isBehindGap) *lost = static_cast<uint32_t>(gap);
  trail = {segment.sequence + static_cast<uint32_t>(length) + static_cast<uint32_t>(segment.cut), true};
  return isBehindGap ? SegmentNews::kBehindGap : SegmentNews::kNext;
}

Cursor JoinInFront(const Place& at, const StateBytes& earlier, int64_t packet, int32_t offset, const Cursor& c) {
  const int32_t kept = static_cast<int32_t>(earlier.length);
  uint8_t* const bytes = kept ? TakeFrameMemory(at.view, int64_t{kept} + Left(c)) : nullptr;
  if (!bytes) return c;
  std::memcpy(bytes, earlier.data, earlier.length);
  if (Left(c) > 0) std::memcpy(bytes + kept, c.at, static_cast<size_t>(Left(c)));
  const bool isOfFrame = c.offset < kFirstRegionOffset;   // else several packets brought it
  const int32_t start = StartInFrame(at, c.offset);
  const BytePiece fresh{isOfFrame ? static_cast<int64_t>(at.view->context->packetNumber) : 0, start, Left(c)};
  const BytePiece pieces[] = {{packet, offset, kept}, fresh};
  return JoinedBytes(at.view, bytes, kept + Left(c), pieces, 2, start);
}

}  // namespace qxview
