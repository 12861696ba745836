#include "decoders/ipsec/openvpn_streams.h"

#include <cstring>

#include "core/engine.h"
#include "decoders/net/ip_fragments.h"
#include "decoders/states.h"
#include "decoders/tls/tls.h"

namespace qxview {
namespace {

constexpr uint32_t kNowhere = 0xFFFFFFFF;

const VpnPiece* Find(StateTable& table, VpnPieceKey key, uint32_t number, StateBytes* bytes = nullptr) {
  key.number = number;
  return static_cast<const VpnPiece*>(table.Recall(&key, 1, bytes));
}

// The bytes of whole records at the start; `isOther` when something else follows them.
int32_t WholeRecords(Cursor c, bool* isOther) {
  const int32_t start = c.offset;
  while (Left(c) > 0) {
    const int32_t size = TlsRecordSize(c);
    *isOther = size == 0 || (size < 0 && (PeekU8(c) < kTlsChangeCipherSpec || PeekU8(c) > kTlsHeartbeat));
    if (size <= 0 || size > Left(c)) break;
    TakeBytes(c, size);
  }
  return c.offset - start;
}

// Behind the packet before it, as the first of its session, or where a record begins.
void PlacePiece(StateTable& table, const VpnPieceKey& key, const Cursor& c, VpnPiece& own) {
  const VpnPiece* before = Find(table, key, key.number - 1);
  own.lastNumber = key.number;
  own.frontNumber = key.number;
  own.openNumber = kNowhere;
  own.isPlaced = true;
  if (before && before->isPlaced) {
    own.position = before->position + static_cast<uint32_t>(before->piece.length);
    if (before->openNumber != kNowhere) {
      own.frontNumber = before->openNumber;
      own.frontAt = before->openAt;
    }
  } else if (key.number == 1 || TlsRecordSize(c) > 0) {
    constexpr uint32_t kMostData = 1 << 14;
    own.position = key.number * kMostData;
  } else {
    own.isPlaced = false;
    own.isAhead = true;
  }
}

// Those that wait for this one have their place now.
void PlaceWaiting(StateTable& table, VpnPieceKey key, VpnPiece& own) {
  uint32_t position = own.position + static_cast<uint32_t>(own.piece.length);
  for (uint32_t number = key.number + 1; number < key.number + kMostVpnAhead; ++number) {
    const VpnPiece* next = Find(table, key, number);
    if (!next || next->isPlaced) return;
    VpnPiece placed = *next;
    placed.isPlaced = true;
    placed.position = position;
    position += static_cast<uint32_t>(placed.piece.length);
    VpnPieceKey at = key;
    at.number = number;
    table.Revise(&at, 1, &placed);
    own.lastNumber = number;
  }
}

// The bytes from the start of the record that is open in front of the packet on.
struct Gathered {
  BytePiece* pieces;
  uint8_t* room;
  int32_t count, length;
  int32_t before;        // bytes in front of the packet's own
};

bool Gather(View* view, StateTable& table, const VpnPieceKey& key, const VpnPiece& own, Gathered& all) {
  constexpr size_t kPieces = kMostFragments * sizeof(BytePiece);
  uint8_t* memory = TakeFrameMemory(view, static_cast<int64_t>(kPieces) + kMostVpnBytes);
  if (!memory) return false;
  all.pieces = reinterpret_cast<BytePiece*>(memory);
  all.room = memory + kPieces;
  for (uint32_t number = own.frontNumber;; ++number) {
    StateBytes bytes;
    const VpnPiece* piece = Find(table, key, number, &bytes);
    const uint32_t front = number == own.frontNumber ? own.frontAt : 0;
    if (!piece || front > bytes.length || all.count == kMostFragments) return false;
    const int32_t length = static_cast<int32_t>(bytes.length - front);
    if (length > kMostVpnBytes - all.length) return false;
    if (number == key.number) all.before = all.length - static_cast<int32_t>(front);
    const BytePiece part{piece->piece.packet, piece->piece.offset + static_cast<int32_t>(front), length};
    std::memcpy(all.pieces + all.count++, &part, sizeof part);
    if (length > 0) std::memcpy(all.room + all.length, bytes.data + front, static_cast<size_t>(length));
    all.length += length;
    if (number == own.lastNumber) return true;
  }
}

// The packet and the place in its data that stand `length` bytes behind the first; cuts the pieces there.
void CutPieces(Gathered& all, int32_t length, VpnPiece& own) {
  int32_t left = length, count = 0;
  while (count < all.count && left >= all.pieces[count].length) left -= all.pieces[count++].length;
  own.openNumber = own.frontNumber + static_cast<uint32_t>(count);
  own.openAt = static_cast<uint32_t>(left) + (count == 0 ? own.frontAt : 0);
  if (left > 0) all.pieces[count++].length = left;
  all.count = count;
}

VpnRun JoinRecords(const Place& at, StateTable& table, const VpnPieceKey& key, VpnPiece& own, StateBytes* given) {
  VpnRun run{};
  Gathered all{};
  bool isOther = false;
  const bool isThere = Gather(at.view, table, key, own, all);
  const int32_t whole = isThere ? WholeRecords(MakeCursor(all.room, 0, all.length), &isOther) : 0;
  if (!isThere || (isOther && whole == 0)) return run;   // shown as what goes on with something
  CutPieces(all, whole, own);
  if (isOther) own.openNumber = kNowhere;
  run.isPlaced = true;
  run.shown = whole;
  run.position = own.position - static_cast<uint32_t>(all.before);
  const int32_t behind = whole - all.before;
  run.own = behind < 0 ? 0 : behind < own.piece.length ? behind : own.piece.length;
  const bool isAlone = all.before == 0 && behind <= own.piece.length;
  run.pieceCount = isAlone ? 0 : all.count;
  *given = {reinterpret_cast<uint8_t*>(all.pieces), static_cast<uint32_t>(kMostFragments * sizeof(BytePiece)) +
                                                      static_cast<uint32_t>(whole)};
  return run;
}

VpnRun Take(const Place& at, const Cursor& c, const VpnPieceKey& key, StateBytes* given) {
  StateTable& table = UnrecordedTable(at.view, kVpnPieces);
  const bool joins = at.view->engine->settings.reassembly;
  const int64_t packet = at.view->context->packetNumber;
  const VpnPiece* known = Find(table, key, key.number);
  const bool isNew = !known;
  VpnPiece own{};
  if (known) {
    own = *known;
  } else {
    own.piece = {packet, c.offset, Left(c)};
    PlacePiece(table, key, c, own);
    table.Remember(&key, &own, joins ? StateBytes{c.at, static_cast<uint32_t>(Left(c))} : StateBytes{nullptr, 0});
    if (own.isPlaced) PlaceWaiting(table, key, own);
  }
  VpnRun run{};
  run.isPlaced = own.isPlaced && !own.isAhead;
  run.isAhead = own.isAhead;
  run.isSeen = own.piece.packet != packet;
  run.position = own.position;
  if (joins && run.isPlaced && !run.isSeen) run = JoinRecords(at, table, key, own, given);
  if (!isNew) return run;
  if (own.lastNumber != key.number) {   // what is open behind the last of those that had come early
    VpnPieceKey lastKey = key;
    lastKey.number = own.lastNumber;
    VpnPiece last = *Find(table, key, own.lastNumber);
    last.openNumber = own.openNumber;
    last.openAt = own.openAt;
    table.Revise(&lastKey, 1, &last);
  }
  table.Revise(&key, 1, &own);
  return run;
}

}  // namespace

VpnRun TakeVpnData(const Place& at, const Cursor& c, const VpnPieceKey& key, Cursor* joined) {
  VpnRun run{};
  StateBytes bytes{};
  RecallFromHost(at.view, kVpnRuns, &run, &bytes, [&](VpnRun* out, StateBytes* given) {
    *out = Take(at, c, key, given);
    return true;
  });
  *joined = JoinKept(at, bytes, run.shown, run.pieceCount, c.offset);
  return run;
}

}  // namespace qxview
