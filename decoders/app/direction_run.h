// What a direction of a connection leaves between packets, of protocols whose frames run over segments and over records of TLS:
// the side as it was before the packet and behind its last frame, each with bytes of its own. So a packet that is looked at
// again finds what it found at first.
#pragma once
#include <cstring>

#include "core/byte_origins.h"
#include "core/decoder.h"
#include "decoders/quic/quic.h"
#include "decoders/states.h"

namespace qxview {

// Where bytes stand in a packet, for a turn: joined ones come first.
uint32_t TurnPlaceOf(const Cursor& c);
// Where in the frame a place stands that may be one of joined bytes.
int32_t StartInFrame(const Place& at, int32_t offset);

// The numbers of a direction's segments.
struct SegmentTrail {
  uint32_t next;        // of the segment that goes on
  bool isKnown;
};
enum class SegmentNews : uint8_t { kNext, kSentAgain, kBehindGap };
// What the packet's segment is to the trail, which goes on behind it. `lost`: bytes that are missing in front of it.
// `isOther`: another packet was the last one.
SegmentNews FollowSegment(const Place& at, SegmentTrail& trail, bool isOther, int32_t length, uint32_t* lost);

// A side has `kept`, how many bytes go with it, and `trail`.
template <class Side>
struct DirectionState {
  QuicTurn turn;        // the packet and the place in it of the last bytes that were shown
  uint32_t pass;        // counts how often a packet was looked at
  Side before, now;     // their bytes stand one after the other
};

// The state of a direction while the frames of a packet are shown.
template <class Key, class Direction>
struct DirectionRun {
  Key key;
  QuicTurn turn;
  Direction state;
  StateBytes before, now;   // what goes with the sides
  bool isOther;             // another packet was the last one
};

template <class Key, class Direction>
void LoadRun(const Place& at, StateId<Key, Direction> table, const Cursor& c, DirectionRun<Key, Direction>& run) {
  StateBytes bytes{};
  run.turn = {static_cast<uint64_t>(at.view->context->packetNumber) + 1, TurnPlaceOf(c)};
  const Direction* known = Recall(at.view, table, run.key, 1, &bytes);
  run.state.pass = 1;
  if (!known) return;
  run.state = *known;
  const bool isSame = known->turn.packet == run.turn.packet, isAgain = isSame && run.turn.frame <= known->turn.frame;
  if (!isSame || isAgain) ++run.state.pass;
  const uint32_t first = known->before.kept, second = known->now.kept;
  run.isOther = !isSame;
  TakeTurn(run.turn, run.state.turn, run.state.before, run.state.now);
  if (bytes.length == 0 || first + second > bytes.length) return;
  // What this look needs of them: a packet that is looked at again takes no more memory than at first.
  const uint32_t from = isSame ? 0 : first, length = (isSame ? first : 0) + (isAgain ? 0 : second);
  uint8_t* const copy = TakeFrameMemory(at.view, length);   // the next look-up may take its place
  if (!copy) return;
  if (length) std::memcpy(copy, bytes.data + from, length);
  run.before = {copy, isSame ? first : second};
  run.now = isSame && !isAgain ? StateBytes{copy + first, second} : run.before;
}

template <class Key, class Direction>
void SaveRun(const Place& at, StateId<Key, Direction> table, DirectionRun<Key, Direction>& run) {
  const uint32_t length = run.before.length + run.now.length;
  if (PacketOf(at).quoted) return;
  run.state.turn = run.turn;
  run.state.before.kept = run.before.length;
  run.state.now.kept = run.now.length;
  uint8_t* const bytes = length ? TakeFrameMemory(at.view, length) : nullptr;
  if (length && !bytes) return;
  if (run.before.length) std::memcpy(bytes, run.before.data, run.before.length);
  if (run.now.length) std::memcpy(bytes + run.before.length, run.now.data, run.now.length);
  Remember(at.view, table, run.key, run.state, {bytes, length});
}

// Bytes that an earlier packet, or an earlier place in this one, left, in front of those of the cursor; the cursor itself
// where there are none, or no memory. `packet` and `offset` tell where they stood; 0 where that is not known.
Cursor JoinInFront(const Place& at, const StateBytes& earlier, int64_t packet, int32_t offset, const Cursor& c);

}  // namespace qxview
