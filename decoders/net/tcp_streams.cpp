#include "decoders/net/tcp_streams.h"

#include <cstring>

#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kFin = 1, kRst = 4;
constexpr int32_t kFarOff = 1 << 24;             // of another connection between the same ends

// One segment on its way into the stream of its direction.
class StreamWork {
 public:
  StreamWork(const Place& at, const Cursor& c, const ProtocolRow& protocol)
      : view_(at.view), key_(DirectionOf(PacketOf(at))), streams_(UnrecordedTable(view_, kTcpStreams)),
        pieces_(UnrecordedTable(view_, kTcpPieces)), ahead_(UnrecordedTable(view_, kTcpAhead)), c_(c),
        segment_(PacketOf(at).segment), packet_(at.view->context->packetNumber),
        time_(PacketOf(at).frame ? PacketOf(at).frame->nanoseconds : 0),
        messageLength_(protocol.messageLength), takesRuns_(protocol.takesRuns) {}

  // Works out what is to be shown; `bytes` gets the pieces and behind them the bytes, where there are pieces.
  StreamRun Take(uint16_t protocol, StateBytes* bytes) {
    Open(protocol);
    if (stream_.packet == packet_ && stream_.sequence == segment_.sequence) {
      CopyJoined(bytes);
      return stream_.run;
    }
    Compact();
    stream_.packet = packet_;
    stream_.sequence = segment_.sequence;
    run_ = {};
    Settle();
    stream_.run = run_;
    streams_.Revise(&key_, 1, &stream_);
    CopyJoined(bytes);
    return run_;
  }

 private:
  int32_t Length() const { return Left(c_); }

  void Open(uint16_t protocol) {
    const auto* known = static_cast<const TcpStream*>(streams_.Recall(&key_, 1, nullptr));
    const int32_t distance = known ? Beyond(segment_.sequence, known->next) : 0;
    const bool isNear = known && distance > -kFarOff && distance < kFarOff;
    if (isNear && known->protocol == protocol) {
      stream_ = *known;
      return;
    }
    if (isNear && known->kept == known->used && !known->skips) {   // gone over to TLS, whose segments may wait behind a gap
      stream_ = *known;
      stream_.protocol = protocol;
      stream_.messageLength = 0;
      return;
    }
    stream_ = TcpStream{};
    stream_.protocol = protocol;
    stream_.packet = INT64_MIN;
    stream_.next = segment_.sequence;
    pieces_.Forget(&key_);
    ahead_.Forget(&key_);
    streams_.Remember(&key_, &stream_, {});
  }

  // Nothing is kept any more; the stream goes on with this number.
  void Reset(uint32_t next) {
    DropKept();
    if (stream_.ahead) ahead_.Forget(&key_);
    stream_.ahead = 0;
    stream_.next = next;
    stream_.skips = stream_.skipsToEnd = stream_.isLost = false;
  }

  void DropKept() {
    if (stream_.kept) streams_.DropFront(&key_, static_cast<uint32_t>(stream_.kept));
    pieces_.Forget(&key_);
    stream_.kept = stream_.used = stream_.pieces = stream_.messageLength = 0;
  }

  // What the last packet showed is needed no more.
  void Compact() {
    if (stream_.used == 0) return;
    if (stream_.used >= stream_.kept) return DropKept();
    StreamPiece first{};
    int32_t left = stream_.kept - stream_.used, count = 0;
    // From the last piece on, as many as the rest came in.
    const StreamPiece* piece = nullptr;
    while (left > 0 && (piece = RecallPiece(count + 1))) {
      first = *piece;
      left -= piece->piece.length;
      ++count;
    }
    if (!piece) return DropKept();
    pieces_.KeepLast(&key_, static_cast<uint32_t>(count));
    first.piece.offset -= left;   // the first one's front was shown
    first.piece.length += left;
    pieces_.Revise(&key_, count, &first);
    streams_.DropFront(&key_, static_cast<uint32_t>(stream_.used));
    stream_.kept -= stream_.used;
    stream_.used = 0;
    stream_.pieces = count;
  }

  const StreamPiece* RecallPiece(int32_t back) {
    return static_cast<const StreamPiece*>(pieces_.Recall(&key_, back, nullptr));
  }

  // Finds the segment's place: in order, behind a gap, or before what has come.
  void Settle() {
    const bool ends = segment_.flags & (kFin | kRst);
    int32_t distance = Beyond(segment_.sequence, stream_.next);
    if (distance > 0 && stream_.skips) {   // what is missing of a long message is not waited for
      Reset(segment_.sequence);
      distance = 0;
    }
    if (distance > 0) {
      if (Length() == 0) return;   // what ends the connection may come before the rest of it
      if (!GivesUpGap(distance)) return WaitAhead(distance);
      CloseGap();
      distance = Beyond(segment_.sequence, stream_.next);
      if (distance > 0) {   // behind another gap: those before were not shown together
        run_.lost += distance;
        Reset(segment_.sequence);
        distance = 0;
      }
    }
    if (distance < 0 && FillsHole()) return;
    if (distance < 0) {
      run_.seen = -distance < Length() ? -distance : Length();
      CountDiffering();
      if (run_.seen == Length()) {
        run_.answer = StreamAnswer::kSeen;
        return;
      }
    }
    TakeInOrder(ends);
  }

  bool GivesUpGap(int32_t distance) const {
    return stream_.isLost || stream_.ahead >= kMostAheadSegments || distance + Length() > kMostAheadBytes ||
           segment_.cut > 0 || (stream_.ahead > 0 && time_ - stream_.gapTime > kLongestGap) || StandsAlone();
  }

  // Between messages a segment that holds nothing but whole ones is shown at once, unless their order counts.
  bool StandsAlone() const {
    int32_t length;
    return !takesRuns_ && stream_.kept == 0 && stream_.ahead == 0 && WholeMessages(c_, &length) == Length();
  }

  void WaitAhead(int32_t distance) {
    run_.answer = StreamAnswer::kAhead;
    run_.waiting = Length();
    run_.needed = distance;
    // What is missing may never come: a message that starts here is shown as far as this segment has it.
    if (!takesRuns_ && messageLength_(c_) > 0) run_.plain = Length();
    if (stream_.ahead == 0) stream_.gapTime = time_;
    const AheadSegment kept{segment_.sequence, c_.offset, packet_, false};
    ahead_.Remember(&key_, &kept, {c_.at, static_cast<uint32_t>(Length())});
    stream_.ahead = static_cast<uint16_t>(stream_.ahead + 1);
  }

  // The lowest number that came behind the gap is where the stream goes on.
  void CloseGap() {
    uint32_t lowest = segment_.sequence;
    for (int32_t back = 1; back <= stream_.ahead; ++back) {
      const auto* piece = static_cast<const AheadSegment*>(ahead_.Recall(&key_, back, nullptr));
      if (piece && !piece->used && Beyond(lowest, piece->sequence) > 0) lowest = piece->sequence;
    }
    run_.lost = Beyond(lowest, stream_.next);
    stream_.holeStart = stream_.next;
    stream_.holeEnd = lowest;
    DropKept();
    stream_.next = lowest;
    stream_.isLost = false;
    TakeAhead();
  }

  // What comes late of bytes that were given up stands for itself.
  bool FillsHole() {
    const uint32_t end = segment_.sequence + static_cast<uint32_t>(Length());
    if (Length() == 0 || Beyond(segment_.sequence, stream_.holeStart) < 0 || Beyond(stream_.holeEnd, end) < 0) return false;
    stream_.holeStart = end;
    run_.plain = Length();
    return true;
  }

  // Compares what came before with what is still kept of it.
  void CountDiffering() {
    StateBytes kept{};
    if (stream_.kept == 0 || !streams_.Recall(&key_, 1, &kept)) return;
    const Cursor before = MakeCursor(kept.data, 0, static_cast<int32_t>(kept.length));
    const int32_t first = Left(before) - Beyond(stream_.next, segment_.sequence);
    for (int32_t i = first < 0 ? -first : 0; i < run_.seen && first + i < Left(before); ++i) {
      run_.differing += PeekU8(before, first + i) != PeekU8(c_, i);
    }
  }

  // The segment's new bytes stand where the stream goes on.
  void TakeInOrder(bool ends) {
    Cursor own = c_;
    TakeBytes(own, run_.seen);
    if (stream_.skips) TakeSkipped(own);
    if (segment_.cut > 0) return TakeCut(own);
    if (stream_.kept == 0 && stream_.ahead == 0) {
      ShowOwn(own, ends);
    } else {
      Keep(own.at, Left(own), {packet_, own.offset, Left(own)});
      TakeAhead();
      ShowKept(own, ends);
    }
    if (ends && stream_.ahead == 0) stream_.skips = stream_.skipsToEnd = false;
  }

  // What of the segment belongs to a message that is not kept.
  void TakeSkipped(Cursor& own) {
    const int32_t lacks = Beyond(stream_.skipEnd, stream_.next);
    const int32_t count = stream_.skipsToEnd || lacks > Left(own) ? Left(own) : lacks > 0 ? lacks : 0;
    run_.plain = count;
    TakeBytes(own, count);
    stream_.next += static_cast<uint32_t>(count);
    if (!stream_.skipsToEnd && Beyond(stream_.skipEnd, stream_.next) <= 0) stream_.skips = false;
  }

  // The capture left bytes out, so that nothing can be joined over them.
  void TakeCut(const Cursor& own) {
    const uint32_t end = stream_.next + static_cast<uint32_t>(Left(own) + segment_.cut);
    const int32_t length = stream_.kept == 0 && Left(own) > 0 ? messageLength_(own) : 0;
    const uint32_t messageEnd = stream_.next + static_cast<uint32_t>(length > 0 ? length : 0);
    run_.plain += Left(own);
    Reset(end);
    if (length == kMessageToTheEnd || (length > 0 && Beyond(messageEnd, end) > 0)) Skip(length, messageEnd);
  }

  void Skip(int32_t length, uint32_t end) {
    stream_.skips = true;
    stream_.skipsToEnd = length == kMessageToTheEnd;
    stream_.skipEnd = end;
  }

  // The bytes of whole messages from `c` on. `length` gets what the next one's is told to be.
  int32_t WholeMessages(Cursor c, int32_t* length) const {
    const int32_t before = c.offset;
    *length = 0;
    while (Left(c) > 0) {
      *length = messageLength_(c);
      if (*length < 1 || *length > Left(c)) break;
      TakeBytes(c, *length);
      *length = 0;
    }
    return c.offset - before;
  }

  // Nothing was kept: the segment's own bytes are looked at where they are.
  void ShowOwn(Cursor own, bool ends) {
    int32_t length;
    const int32_t whole = WholeMessages(own, &length), rest = Left(own) - whole;
    const uint32_t restStart = stream_.next + static_cast<uint32_t>(whole);
    stream_.next += static_cast<uint32_t>(Left(own));
    run_.shown = whole;
    if (rest == 0) return;
    const bool tooLong = length != kMessageToTheEnd && length > kMostStreamBytes;
    if (length < 0 || ends || tooLong) {
      run_.shown = Left(own);
      run_.isCut = length >= 0;
      if (tooLong && !ends) Skip(length, restStart + static_cast<uint32_t>(length));
      return;
    }
    TakeBytes(own, whole);
    Keep(own.at, rest, {packet_, own.offset, rest}, false);
    Wait(length);
  }

  // What is kept, the segment's bytes among it.
  void ShowKept(const Cursor& own, bool ends) {
    StateBytes kept{};
    if (!streams_.Recall(&key_, 1, &kept) || static_cast<int32_t>(kept.length) != stream_.kept) return Reset(stream_.next);
    const Cursor all = MakeCursor(kept.data, 0, stream_.kept);
    int32_t length = stream_.messageLength, whole = 0;
    if (length == 0 || (length != kMessageToTheEnd && length <= stream_.kept)) whole = WholeMessages(all, &length);
    const bool tooMuch = stream_.kept >= kMostStreamBytes || stream_.pieces >= kMostStreamPieces;
    const bool tooLong = tooMuch || (length != kMessageToTheEnd && length > kMostStreamBytes);
    const int32_t rest = stream_.kept - whole;
    if (rest > 0 && (length < 0 || tooLong || (ends && stream_.ahead == 0))) {
      run_.isCut = length >= 0;
      const uint32_t restStart = stream_.next - static_cast<uint32_t>(rest);
      if (tooLong && !ends && length > 0) Skip(length, restStart + static_cast<uint32_t>(length));
      whole = stream_.kept;
    }
    run_.shown = whole;
    stream_.used = whole;
    run_.pieceCount = CountPieces(whole);
    if (whole > 0 && run_.pieceCount == 0) {   // their places made room for others: this segment stands for itself
      run_.lost += stream_.kept - Left(own);
      run_.shown = Left(own);
      return DropKept();
    }
    if (whole < stream_.kept) Wait(length);
  }

  void Wait(int32_t length) {
    run_.waiting = stream_.kept - stream_.used;
    stream_.messageLength = length > 0 ? length : 0;
    run_.needed = length > 0 && length != kMessageToTheEnd ? length - run_.waiting : 0;
  }

  // Adds bytes to what is kept.
  void Keep(const uint8_t* bytes, int32_t length, const BytePiece& piece, bool advances = true) {
    if (length < 1) return;
    const StreamPiece kept{piece};
    if (!streams_.Extend(&key_, {bytes, static_cast<uint32_t>(length)})) {   // the stream itself may have gone
      pieces_.Forget(&key_);
      stream_.kept = stream_.used = stream_.pieces = stream_.messageLength = 0;
      streams_.Remember(&key_, &stream_, {});
    } else {
      pieces_.Remember(&key_, &kept, {});
      stream_.kept += length;
      ++stream_.pieces;
    }
    if (advances) stream_.next += static_cast<uint32_t>(length);
  }

  // Segments that waited for what has come, in the order of their numbers.
  void TakeAhead() {
    bool found = stream_.ahead > 0;
    int32_t unused = 0;
    while (found && stream_.kept < kMostStreamBytes) {
      found = false;
      unused = 0;
      for (int32_t back = stream_.ahead; back >= 1; --back) {
        StateBytes bytes{};
        const auto* known = static_cast<const AheadSegment*>(ahead_.Recall(&key_, back, &bytes));
        if (!known || known->used) continue;
        AheadSegment segment = *known;
        const int32_t old = Beyond(stream_.next, segment.sequence), length = static_cast<int32_t>(bytes.length);
        if (old < 0) {
          ++unused;
          continue;
        }
        if (old < length) Keep(bytes.data + old, length - old, {segment.packet, segment.offset + old, length - old});
        segment.used = found = true;
        ahead_.Revise(&key_, back, &segment);
      }
    }
    if (stream_.ahead > 0 && unused == 0 && !found) {
      ahead_.Forget(&key_);
      stream_.ahead = 0;
    }
  }

  // How many pieces the first bytes kept came in.
  int32_t CountPieces(int32_t length) {
    int32_t count = 0;
    for (int32_t at = 0; at < length && count < stream_.pieces; ++count) {
      const StreamPiece* piece = RecallPiece(stream_.pieces - count);
      if (!piece) return 0;
      at += piece->piece.length;
    }
    return count;
  }

  void CopyJoined(StateBytes* bytes) {
    const StreamRun& run = stream_.run;
    *bytes = {};
    if (run.pieceCount == 0 || run.shown == 0) return;
    const size_t size = static_cast<size_t>(run.pieceCount) * sizeof(BytePiece);
    uint8_t* memory = TakeFrameMemory(view_, static_cast<int64_t>(size) + run.shown);
    StateBytes kept{};
    if (!memory || !streams_.Recall(&key_, 1, &kept) || static_cast<int32_t>(kept.length) < run.shown) return;
    for (int32_t i = 0; i < run.pieceCount; ++i) {
      const StreamPiece* piece = RecallPiece(stream_.pieces - i);
      if (!piece) return;
      std::memcpy(memory + static_cast<size_t>(i) * sizeof(BytePiece), &piece->piece, sizeof(BytePiece));
    }
    std::memcpy(memory + size, kept.data, static_cast<size_t>(run.shown));
    *bytes = {memory, static_cast<uint32_t>(size) + static_cast<uint32_t>(run.shown)};
  }

  View* view_;
  ConnectionKey key_;
  StateTable &streams_, &pieces_, &ahead_;
  Cursor c_;
  const TcpSegment& segment_;
  int64_t packet_;
  int64_t time_;
  MessageLengthFunction messageLength_;
  bool takesRuns_;
  TcpStream stream_;
  StreamRun run_;
};

}  // namespace

StreamRun TakeTcpSegment(const Place& at, const Cursor& c, const DecoderRow& row, Cursor* joined) {
  StreamRun run{};
  StateBytes bytes{};
  RecallFromHost(at.view, kStreamRuns, &run, &bytes, [&](StreamRun* out, StateBytes* given) {
    *out = StreamWork(at, c, *row.protocol).Take(static_cast<uint16_t>(row.key), given);
    return true;
  });
  *joined = MakeCursor(nullptr, c.offset, 0);
  if (run.pieceCount == 0 || run.shown == 0) return run;
  const size_t size = static_cast<size_t>(run.pieceCount) * sizeof(BytePiece);
  auto* pieces = reinterpret_cast<BytePiece*>(TakeFrameMemory(at.view, static_cast<int64_t>(size)));
  if (pieces && bytes.length == size + static_cast<size_t>(run.shown)) {
    std::memcpy(pieces, bytes.data, size);
    *joined = JoinedBytes(at.view, bytes.data + size, run.shown, pieces, run.pieceCount, c.offset);
  }
  if (Left(*joined) == 0) run.shown = 0;   // no memory
  return run;
}

}  // namespace qxview
