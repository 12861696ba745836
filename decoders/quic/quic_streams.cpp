#include "decoders/quic/quic_streams.h"

#include <cstring>

#include "core/byte_origins.h"
#include "core/crypto.h"
#include "decoders/quic/http3.h"
#include "decoders/quic/quic_handshake.h"
#include "decoders/states.h"

namespace qxview {
namespace {

QuicStreamKey KeyOf(const QuicSession& session, uint64_t stream, uint32_t space) {
  return {session.key, stream, space | static_cast<uint32_t>(session.sender) << 8, session.state.attempt};
}

using Part = QuicStreamPart;

// Bytes of several packets, of which this field is the last: what is shown of them stands where it starts.
Cursor JoinedCursor(const Place& in, const uint8_t* bytes, uint32_t length, const Field& last) {
  const int32_t size = static_cast<int32_t>(length);
  uint8_t* const kept = TakeFrameMemory(in.view, size);
  if (!kept) return MakeCursor(bytes, last.offset, 0);
  std::memcpy(kept, bytes, length);
  const BytePiece none{};   // which packets brought them is not kept
  return JoinedBytes(in.view, kept, size, &none, 1, last.offset);
}

// Adds a piece to those in order, joining what touches. False when there are too many.
bool AddPiece(Part& part, uint32_t at, uint32_t length) {
  Part::Piece merged{at, length}, out[kMostQuicPieces + 1];
  uint32_t kept = 0, place = 0;
  for (uint32_t i = 0; i < part.pieceCount; ++i) {
    const Part::Piece& piece = part.pieces[i];
    const uint32_t end = piece.from + piece.length, mergedEnd = merged.from + merged.length;
    if (end < merged.from) {
      out[kept++] = piece;
      place = kept;
    } else if (piece.from > mergedEnd) {
      out[kept++] = piece;
    } else {
      merged.from = piece.from < merged.from ? piece.from : merged.from;
      merged.length = (end > mergedEnd ? end : mergedEnd) - merged.from;
    }
  }
  if (kept == kMostQuicPieces) return false;
  std::memmove(out + place + 1, out + place, (kept - place) * sizeof out[0]);
  out[place] = merged;
  part.pieceCount = kept + 1;
  std::memcpy(part.pieces, out, part.pieceCount * sizeof out[0]);
  return true;
}

uint32_t ExtentOf(const Part& part) {
  return part.pieceCount ? part.pieces[part.pieceCount - 1].from + part.pieces[part.pieceCount - 1].length : 0;
}
uint32_t ExtentOf(const QuicStream& stream) {
  const uint32_t before = ExtentOf(stream.before), now = ExtentOf(stream.now);
  return before > now ? before : now;
}

// Drops what stands in front of `first`; the bytes that are kept start at `origin` from now on.
void Trim(Part& part, uint32_t first, uint32_t origin) {
  uint32_t kept = 0;
  for (uint32_t i = 0; i < part.pieceCount; ++i) {
    Part::Piece piece = part.pieces[i];
    const uint32_t end = piece.from + piece.length;
    if (end <= first) continue;
    const uint32_t at = piece.from > first ? piece.from : first;
    part.pieces[kept++] = {at - origin, end - at};
  }
  part.pieceCount = kept;
}

// Shows what is whole of the bytes in order, and says how many it took.
using Consumer = int32_t (*)(const Place& in, Cursor c, bool isLast, Part& part, QuicSession& session, uint64_t id);

// A stream while the data of a frame are added.
struct Joining {
  QuicStreamKey key;
  QuicStream stream;
  StateBytes kept;       // from `before.done` on
};

Joining FindStream(const Place& in, const QuicStreamKey& key, const QuicSession& session) {
  Joining joining{key, {}, {nullptr, 0}};
  QuicStream& stream = joining.stream;
  if (const QuicStream* known = Recall(in.view, kQuicStreams, key, 1, &joining.kept)) stream = *known;
  const uint64_t start = stream.before.done;
  TakeTurn(session.turn, stream.turn, stream.before, stream.now);
  const uint32_t passed = static_cast<uint32_t>(stream.before.done - start);
  if (passed > 0) {
    Trim(stream.before, passed, passed);
    stream.now = stream.before;
    const uint32_t gone = passed < joining.kept.length ? passed : joining.kept.length;
    joining.kept = {joining.kept.data + gone, joining.kept.length - gone};
  }
  return joining;
}

void KeepStream(const Place& in, const Joining& joining, const StateBytes& bytes) {
  if (!PacketOf(in).quoted) Remember(in.view, kQuicStreams, joining.key, joining.stream, bytes);
}

// What the bytes that are kept and the fresh ones are together; `room` takes the extent of all.
void LayBytes(const Joining& joining, uint32_t at, const Field& fresh, uint8_t* room, uint32_t extent) {
  std::memset(room, 0, extent);
  const uint32_t old = joining.kept.length < extent ? joining.kept.length : extent;
  if (old) std::memcpy(room, joining.kept.data, old);
  std::memcpy(room + at, fresh.bytes, static_cast<size_t>(fresh.length));
}

void Join(const Place& in, const Field& data, uint64_t offset, bool isLast, Joining& joining, QuicSession& session,
          Consumer consume) {
  QuicStream& stream = joining.stream;
  Part& now = stream.now;
  const uint64_t base = stream.before.done, end = offset + static_cast<uint64_t>(data.length);
  if (end <= now.done) {
    if (data.length) AddLine(in, data, "Retransmitted: %d bytes", data.length);
    if (data.length == 0 && isLast && end == now.done && ExtentOf(now) <= now.done - base) {   // nothing but the end
      consume(in, CursorOver(data), true, now, session, joining.key.stream);
      KeepStream(in, joining, joining.kept);
    }
    return;
  }
  if (end - base > kMostQuicAhead) {
    AddLine(in, data, "Out of Order: %d bytes, too far ahead", data.length);
    return;
  }
  const int32_t skipped = offset < now.done ? static_cast<int32_t>(now.done - offset) : 0;
  const Field fresh = Slice(data, skipped, data.length - skipped);
  const uint32_t at = static_cast<uint32_t>(offset + static_cast<uint64_t>(skipped) - base);
  const uint32_t first = static_cast<uint32_t>(now.done - base);
  uint32_t used = 0;
  const bool isNext = at == first && ExtentOf(now) <= first;   // nothing has to be joined
  if (isNext) {
    used = static_cast<uint32_t>(consume(in, CursorOver(fresh), isLast, now, session, joining.key.stream));
    now.done += used;
    if (used == static_cast<uint32_t>(fresh.length) && ExtentOf(stream.before) == 0) {
      now.pieceCount = 0;
      return KeepStream(in, joining, {nullptr, 0});
    }
  }
  if (!AddPiece(now, at, static_cast<uint32_t>(fresh.length))) {
    AddLine(in, data, "Out of Order: %d bytes, in too many pieces", data.length);
    return;
  }
  const uint32_t extent = ExtentOf(stream);
  OpenedBytes room(in.view, static_cast<int32_t>(extent));
  if (!room.data) return;
  LayBytes(joining, at, fresh, room.data, extent);
  if (!isNext && now.pieces[0].from <= first) {
    const uint32_t length = now.pieces[0].from + now.pieces[0].length - first;
    used = static_cast<uint32_t>(consume(in, JoinedCursor(in, room.data + first, length, data), isLast, now, session,
                                         joining.key.stream));
    now.done += used;
  } else if (!isNext) {
    AddLine(in, data, "Out of Order: %d bytes, kept", data.length);
  }
  Trim(now, first + used, 0);
  KeepStream(in, joining, {room.data, extent});   // as many for a packet that is looked at again
}

int32_t ConsumeHandshake(const Place& in, Cursor c, bool, Part&, QuicSession& session, uint64_t) {
  return ShowQuicHandshake(in, c, session);
}
int32_t ConsumeStream(const Place& in, Cursor c, bool isLast, Part& part, QuicSession& session, uint64_t id) {
  return ShowHttp3Stream(in, c, isLast, id, part, session);
}

}  // namespace

void ShowQuicCryptoData(const Place& in, const Field& data, uint64_t offset, QuicKind kind, QuicSession& session) {
  const uint32_t space = kind == QuicKind::kInitial ? 0 : kind == QuicKind::kHandshake ? 1 : 2;
  Joining joining = FindStream(in, KeyOf(session, space, space), session);
  Join(in, data, offset, false, joining, session, ConsumeHandshake);
}

void ShowQuicStreamData(const Place& in, const Field& data, uint64_t stream, uint64_t offset, bool isLast,
                        QuicSession& session) {
  Joining joining = FindStream(in, KeyOf(session, stream, 3), session);
  Join(in, data, offset, isLast, joining, session, ConsumeStream);
}

}  // namespace qxview
