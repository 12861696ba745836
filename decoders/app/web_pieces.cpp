#include "decoders/app/web_pieces.h"

#include <cstring>

#include "decoders/app/direction_run.h"

namespace qxview {
namespace {

RequestKey KeyOf(const WebStreamKey& key, const WebPieces& pieces, uint32_t number) {
  return {key.direction, {key.stream, key.kind, pieces.body, number}};
}

}  // namespace

void KeepPiece(const Place& in, const WebStreamKey& key, WebPieces& pieces, const Field& piece) {
  if (piece.length < 1 || pieces.isLost) return;
  const uint32_t length = static_cast<uint32_t>(piece.length);
  if (!key.keeps || pieces.count == kMostWebPieces || length > kMostPiecedBytes - pieces.length) {
    pieces.isLost = true;
    return;
  }
  const bool isOfFrame = piece.offset < kFirstRegionOffset;   // else several packets brought it
  const WebPiece kept{isOfFrame ? static_cast<int64_t>(in.view->context->packetNumber) : 0, isOfFrame ? piece.offset : 0, 0};
  Remember(in.view, kWebPieces, KeyOf(key, pieces, pieces.count), kept, {piece.bytes, length});
  ++pieces.count;
  pieces.length += length;
}

Cursor JoinPieces(const Place& in, const WebStreamKey& key, WebPieces& pieces, int32_t start) {
  const WebPieces whole = pieces;
  DropPieces(pieces);
  const Cursor none = MakeCursor(nullptr, start, 0);
  if (whole.isLost || whole.count == 0) return none;
  uint8_t* const bytes = TakeFrameMemory(in.view, whole.length);
  auto* const places = reinterpret_cast<BytePiece*>(TakeFrameMemory(in.view, int64_t{whole.count} * int64_t{sizeof(BytePiece)}));
  if (!bytes || !places) return none;
  uint32_t used = 0;
  for (uint32_t i = 0; i < whole.count; ++i) {
    StateBytes kept{};
    const WebPiece* piece = Recall(in.view, kWebPieces, KeyOf(key, whole, i), 1, &kept);
    if (!piece || kept.length > whole.length - used) return none;
    std::memcpy(bytes + used, kept.data, kept.length);
    places[i] = {piece->packet, piece->offset, static_cast<int32_t>(kept.length)};
    used += kept.length;
  }
  if (used != whole.length) return none;
  return JoinedBytes(in.view, bytes, static_cast<int32_t>(used), places, static_cast<int32_t>(whole.count),
                     StartInFrame(in, start));
}

}  // namespace qxview
