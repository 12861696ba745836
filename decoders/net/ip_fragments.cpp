#include "decoders/net/ip_fragments.h"

#include <cstring>

#include "decoders/states.h"

namespace qxview {
namespace {

constexpr int32_t kMostPayload = 65535;
constexpr size_t kPieces = kMostFragments * sizeof(BytePiece);   // in front of joined bytes

// The fragments of one datagram, the one that came first in front.
struct Fragments {
  const IpFragment* of[kMostFragments];
  Cursor spans[kMostFragments];
  int32_t count;
};

Fragments RecallFragments(StateTable& table, const RequestKey& key) {
  Fragments known;
  known.count = 0;
  int32_t back = 0;
  while (back < kMostFragments && table.Recall(&key, back + 1, nullptr)) ++back;
  for (; back > 0; --back) {
    StateBytes bytes{};
    const auto* fragment = static_cast<const IpFragment*>(table.Recall(&key, back, &bytes));
    known.of[known.count] = fragment;
    known.spans[known.count++] = MakeCursor(bytes.data, fragment->offset, static_cast<int32_t>(bytes.length));
  }
  return known;
}

// The first that came of those that hold this byte; -1 for none.
int32_t FindHolder(const Fragments& known, int32_t at) {
  for (int32_t i = 0; i < known.count; ++i) {
    if (known.spans[i].offset <= at && at - known.spans[i].offset < known.spans[i].left) return i;
  }
  return -1;
}

// Adds them up: how many bytes there are, and where the payload ends as far as that is known.
void Count(const Fragments& known, FragmentRun& run, int32_t& end) {
  end = 0;
  for (int32_t i = 0; i < known.count; ++i) {
    run.kept += known.spans[i].left;
    if (known.of[i]->isLast) end = known.spans[i].offset + known.spans[i].left;
  }
  run.needed = end > run.kept ? end - run.kept : 0;
}

// Joins them behind the pieces that they make; false when some are missing.
bool Join(const Fragments& known, int32_t end, FragmentRun& run, BytePiece* pieces, uint8_t* payload) {
  for (int32_t at = 0; at < end; ++run.pieceCount) {
    const int32_t holder = FindHolder(known, at);
    if (holder < 0 || run.pieceCount == kMostFragments) return false;
    Cursor bytes = known.spans[holder];
    const int32_t front = at - bytes.offset;
    TakeBytes(bytes, front);
    int32_t length = Left(bytes) < end - at ? Left(bytes) : end - at;
    for (int32_t i = 0; i < holder; ++i) {   // what came earlier starts within
      const int32_t start = known.spans[i].offset;
      if (start > at && start - at < length) length = start - at;
    }
    const BytePiece& from = known.of[holder]->piece;
    const BytePiece piece{from.packet, from.offset + front, length};
    std::memcpy(pieces + run.pieceCount, &piece, sizeof piece);
    std::memcpy(payload + at, bytes.at, static_cast<size_t>(length));
    at += length;
  }
  const Cursor whole = MakeCursor(payload, 0, end);
  for (int32_t i = 0; i < known.count; ++i) {
    for (int32_t j = 0; j < known.spans[i].left; ++j) {
      run.differing += PeekU8(whole, known.spans[i].offset + j) != PeekU8(known.spans[i], j);
    }
  }
  run.overlapping = run.kept > end ? run.kept - end : 0;
  run.length = end;
  return true;
}

// Whether the fragment is not kept yet: it may be decoded twice.
bool IsNew(const Fragments& known, int64_t packet, uint32_t offset) {
  for (int32_t i = 0; i < known.count; ++i) {
    if (known.of[i]->piece.packet == packet && static_cast<uint32_t>(known.of[i]->offset) == offset) return false;
  }
  return true;
}

// Adds the fragments up and joins them when all are there.
FragmentRun JoinKnown(const Place& at, StateTable& table, const RequestKey& key, const Fragments& known, StateBytes* given) {
  FragmentRun run{};
  int32_t end;
  Count(known, run, end);
  if (end == 0 || run.kept < end || end > kMostPayload) return run;
  uint8_t* memory = TakeFrameMemory(at.view, static_cast<int64_t>(kPieces) + end);
  if (!memory || !Join(known, end, run, reinterpret_cast<BytePiece*>(memory), memory + kPieces)) {
    run.pieceCount = 0;
    return run;
  }
  IpFragment last = *known.of[known.count - 1];
  last.isDone = true;
  table.Revise(&key, 1, &last);
  *given = {memory, static_cast<uint32_t>(kPieces) + static_cast<uint32_t>(end)};
  return run;
}

FragmentRun Take(const Place& at, const Cursor& c, const RequestKey& key, uint32_t offset, bool moreFollow,
                 StateBytes* given) {
  StateTable& table = UnrecordedTable(at.view, kIpFragments);
  const int64_t packet = at.view->context->packetNumber;
  Fragments known = RecallFragments(table, key);
  if (IsNew(known, packet, offset)) {
    // The identification is used again, or far too many came.
    if (known.count == kMostFragments || (known.count > 0 && known.of[known.count - 1]->isDone)) table.Forget(&key);
    const IpFragment own{{packet, c.offset, Left(c)}, static_cast<int32_t>(offset), !moreFollow, false, 0, 0};
    table.Remember(&key, &own, {c.at, static_cast<uint32_t>(Left(c))});
    known = RecallFragments(table, key);
  }
  return JoinKnown(at, table, key, known, given);
}

// Where a fragment without an offset belongs: behind those that are kept, at the start, or (below 0) nowhere.
int32_t PlaceNext(StateTable& table, const RequestKey& key, const Fragments& known, const NextFragment& fragment,
                  int32_t length) {
  const IpFragment* last = known.count ? known.of[known.count - 1] : nullptr;
  int32_t kept = 0;
  for (int32_t i = 0; i < known.count; ++i) kept += known.spans[i].left;
  const int64_t total = last ? known.of[0]->total : 0, end = int64_t{kept} + length;
  const bool follows = last && static_cast<uint8_t>(last->number + 1) == fragment.number;
  const bool isOther = fragment.total && (!follows || fragment.total != total);
  const bool fits = last && !last->isDone && !isOther && (fragment.moreFollow ? end < total : end == total);
  if (fits && known.count + fragment.pieceCount <= kMostFragments) return kept;
  if (known.count) table.Forget(&key);
  return fragment.total && fragment.moreFollow && fragment.total <= kMostPayload ? 0 : -1;
}

FragmentRun TakeNext(const Place& at, Cursor c, const RequestKey& key, const NextFragment& fragment, StateBytes* given) {
  StateTable& table = UnrecordedTable(at.view, kIpFragments);
  const int64_t packet = at.view->context->packetNumber;
  Fragments known = RecallFragments(table, key);
  const IpFragment* last = known.count ? known.of[known.count - 1] : nullptr;
  // The packet may be decoded twice, and its sender may say it twice.
  const bool isAgain = last && last->number == fragment.number && (last->piece.packet == packet || !last->isDone);
  if (!isAgain) {
    int32_t offset = PlaceNext(table, key, known, fragment, Left(c));
    if (offset < 0) return {};
    const uint32_t total = fragment.total ? fragment.total : last ? known.of[0]->total : 0;
    for (int32_t i = 0; i < fragment.pieceCount; ++i) {
      const BytePiece& piece = fragment.pieces[i];
      const Field bytes = TakeBytes(c, piece.length);
      const bool isLast = !fragment.moreFollow && i + 1 == fragment.pieceCount;
      const IpFragment own{piece, offset, isLast, false, fragment.number, total};
      table.Remember(&key, &own, {bytes.bytes, static_cast<uint32_t>(bytes.length)});
      offset += bytes.length;
    }
    known = RecallFragments(table, key);
  }
  FragmentRun run = JoinKnown(at, table, key, known, given);
  if (run.length == 0 && known.count) run.needed = static_cast<int32_t>(known.of[0]->total) - run.kept;
  return run;
}

}  // namespace

Cursor JoinKept(const Place& at, const StateBytes& bytes, int32_t length, int32_t pieceCount, int32_t start) {
  const Cursor none = MakeCursor(nullptr, start, 0);
  if (pieceCount == 0 || length == 0 || bytes.length != kPieces + static_cast<size_t>(length)) return none;
  auto* pieces = reinterpret_cast<BytePiece*>(TakeFrameMemory(at.view, kPieces));
  if (!pieces) return none;
  std::memcpy(pieces, bytes.data, kPieces);
  return JoinedBytes(at.view, bytes.data + kPieces, length, pieces, pieceCount, start);
}

bool JoinsFragments(const Place& at) {
  return at.view->engine->settings.reassembly && !PacketOf(at).quoted && !at.view->context->headersOnly;
}

FragmentRun TakeIpFragment(const Place& at, const Cursor& c, uint32_t identification, uint8_t protocol, uint32_t offset,
                           bool moreFollow, Cursor* joined) {
  RequestKey key{DirectionOf(PacketOf(at)), {identification, protocol, 0, 0}};
  key.connection.ports[0] = key.connection.ports[1] = 0;
  return TakeFragment(at, c, key, offset, moreFollow, joined);
}

FragmentRun TakeFragment(const Place& at, const Cursor& c, const RequestKey& key, uint32_t offset, bool moreFollow,
                         Cursor* joined) {
  FragmentRun run{};
  StateBytes bytes{};
  RecallFromHost(at.view, kFragmentRuns, &run, &bytes, [&](FragmentRun* out, StateBytes* given) {
    *out = Take(at, c, key, offset, moreFollow, given);
    return true;
  });
  *joined = JoinKept(at, bytes, run.length, run.pieceCount, c.offset);
  return run;
}

FragmentRun TakeNextFragment(const Place& at, const Cursor& c, const RequestKey& key, const NextFragment& fragment,
                             Cursor* joined) {
  FragmentRun run{};
  StateBytes bytes{};
  RecallFromHost(at.view, kFragmentRuns, &run, &bytes, [&](FragmentRun* out, StateBytes* given) {
    *out = TakeNext(at, c, key, fragment, given);
    return true;
  });
  *joined = JoinKept(at, bytes, run.length, run.pieceCount, c.offset);
  return run;
}

void TellFragments(const Place& at, const Cursor& c, const FragmentRun& run) {
  const Field cover = Ahead(c, Left(c));
  if (run.length == 0 && run.needed > 0) {
    AddLine(at, cover, "Reassembly: %d bytes of fragments kept, %d more needed", run.kept, run.needed);
  } else if (run.length == 0) {
    AddLine(at, cover, "Reassembly: %d bytes of fragments kept, more needed", run.kept);
  } else if (run.differing > 0) {
    AddLine(at, cover, "Reassembly: %d bytes of fragments overlap, %d of them differ", run.overlapping, run.differing);
  } else if (run.overlapping > 0) {
    AddLine(at, cover, "Reassembly: %d bytes of fragments overlap", run.overlapping);
  }
}

}  // namespace qxview
