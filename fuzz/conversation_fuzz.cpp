// The packets of two ends: wishes (1), the server's port (2), then packets: what it is (1), a number (1), length (2), bytes.
//   bits 0-2  0 TCP, 1 UDP, 2 SCTP, 3 a whole Ethernet frame, 4 the datagram of any IP protocol, whose number it is;
//             5 TCP and 6 UDP in two fragments, 7 TCP of another connection
//   bit 3     from the server
//   bit 4     over IPv6
//   bits 5-7  of TCP: 0 next in its direction, 1 the last one again, 2 a gap of `number` before it, 3 behind one that is
//             still to come, 4 overlapping by `number`, 5 with SYN, 6 with FIN, 7 with RST; of others a time `number`
//             seconds later
// Sequence numbers, lengths and checksums are right, so that states, histories and reassembly are reached.
#include "files/record_builder.h"
#include "fuzz/stations.h"
#include "fuzz/targets.h"
#include "host/state_log.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 24000, kMostPackets = 40, kMostPayload = 4000;
constexpr uint16_t kClientPort = 49152, kOtherClientPort = 49200;

using Bytes = std::vector<uint8_t>;

void Put(Bytes& out, const uint8_t* bytes, size_t size) {
  const size_t at = out.size();
  out.resize(at + size);
  if (size) std::memcpy(out.data() + at, bytes, size);
}
template <size_t kSize>
void Put(Bytes& out, const uint8_t (&bytes)[kSize]) {
  Put(out, bytes, kSize);
}
void PutU16(Bytes& out, uint32_t value) {
  out.push_back(static_cast<uint8_t>(value >> 8));
  out.push_back(static_cast<uint8_t>(value));
}
void PutU32(Bytes& out, uint32_t value) {
  PutU16(out, value >> 16);
  PutU16(out, value & 0xFFFF);
}

struct Direction {
  uint32_t next = 1000;           // sequence number
  uint32_t lastStart = 1000;
  uint32_t held = 0;              // bytes that a later packet brings
};

struct PacketHead {
  bool fromServer, overIPv6;
  uint16_t serverPort, clientPort, identification;
};

Bytes Ports(const PacketHead& head) {
  Bytes out;
  PutU16(out, head.fromServer ? head.serverPort : head.clientPort);
  PutU16(out, head.fromServer ? head.clientPort : head.serverPort);
  return out;
}

// Frames of the datagram with the transport's bytes, in two fragments where that is wanted.
void AddFrames(std::vector<Bytes>& frames, const PacketHead& head, uint8_t protocol, const Bytes& carried, bool inFragments) {
  const uint8_t from = head.fromServer ? 2 : 1, to = head.fromServer ? 1 : 2;
  // The checksum is made over the whole datagram, before it is cut.
  Bytes whole;
  Put(whole, {2, 0, 0, 0, 0, to, 2, 0, 0, 0, 0, from});
  if (head.overIPv6) {
    Put(whole, {0x86, 0xDD, 0x60, 0, 0, 0});
    PutU16(whole, static_cast<uint32_t>(carried.size()));
    Put(whole, {protocol, 64});
    for (const uint8_t end : {from, to}) Put(whole, {0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, end});
  } else {
    Put(whole, {8, 0, 0x45, 0});
    PutU16(whole, static_cast<uint32_t>(20 + carried.size()));
    PutU16(whole, head.identification);
    Put(whole, {0, 0, 64, protocol, 0, 0, 10, 0, 0, from, 10, 0, 0, to});
  }
  const size_t header = whole.size();
  Put(whole, carried.data(), carried.size());
  RepairChecksums(whole.data(), whole.size(), true);
  const size_t first = inFragments ? carried.size() / 2 & ~size_t{7} : 0;
  if (first == 0 || head.overIPv6) {
    frames.push_back(std::move(whole));
    return;
  }
  for (const bool isFirst : {true, false}) {
    const size_t at = isFirst ? 0 : first, length = isFirst ? first : carried.size() - first;
    Bytes piece(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(header));
    Put(piece, whole.data() + header + at, length);
    piece[16] = static_cast<uint8_t>((20 + length) >> 8);
    piece[17] = static_cast<uint8_t>(20 + length);
    piece[20] = static_cast<uint8_t>((isFirst ? 0x20 : 0) | at >> 11);
    piece[21] = static_cast<uint8_t>(at >> 3);
    RepairChecksums(piece.data(), piece.size(), true);
    frames.push_back(std::move(piece));
  }
}

// A segment at the place in its direction that `what` says.
Bytes Segment(const PacketHead& head, Direction& own, const Direction& other, uint32_t what, uint32_t number,
              const Piece& payload) {
  uint32_t sequence = own.next;
  uint8_t flags = 0x18;
  if (what == 1) sequence = own.lastStart;
  if (what == 2) sequence += number;
  if (what == 3) own.held = number + 1;
  if (what == 3) sequence += own.held;
  if (what == 4) sequence -= number;
  if (what == 5) flags = head.fromServer ? 0x12 : 0x02;
  if (what == 6) flags |= 0x01;
  if (what == 7) flags = 0x14;
  own.lastStart = sequence;
  if (what != 1 && what != 3) own.next = sequence + static_cast<uint32_t>(payload.size) + (what == 5 || what == 6);
  Bytes out = Ports(head);
  PutU32(out, sequence);
  PutU32(out, flags & 0x10 ? other.next : 0);
  Put(out, {0x50, flags, 0x20, 0, 0, 0, 0, 0});
  Put(out, payload.data, payload.size);
  return out;
}

struct TimedFrame {
  Bytes bytes;
  int64_t nanoseconds;
};

std::vector<TimedFrame> FramesOf(Input& input, uint16_t serverPort) {
  std::vector<TimedFrame> timed;
  Direction directions[2][2];   // of the two connections: from the client, from the server
  int64_t now = 1700000000000000000;
  while (input.Left() >= 4 && timed.size() < kMostPackets) {
    const uint32_t kind = input.U8(), number = input.U8();
    const Piece payload = input.Take(input.U16() % kMostPayload);
    const uint32_t what = kind >> 5;
    const uint8_t form = kind & 7;
    PacketHead head{(kind & 8) != 0, (kind & 16) != 0, serverPort, form == 7 ? kOtherClientPort : kClientPort,
                    static_cast<uint16_t>(timed.size() + 1)};
    std::vector<Bytes> frames;
    if (form == 0 || form == 5 || form == 7) {
      Direction(&pair)[2] = directions[form == 7];
      AddFrames(frames, head, 6, Segment(head, pair[head.fromServer], pair[!head.fromServer], what, number, payload), form == 5);
    } else if (form == 3) {
      frames.emplace_back(payload.data, payload.data + payload.size);
    } else if (form == 4) {
      AddFrames(frames, head, static_cast<uint8_t>(number), Bytes(payload.data, payload.data + payload.size), false);
    } else {
      Bytes carried = Ports(head);
      if (form == 2) {
        Put(carried, {0, 0, 0, 1, 0, 0, 0, 0});
      } else {
        PutU16(carried, static_cast<uint32_t>(8 + payload.size));
        PutU16(carried, 0);
      }
      Put(carried, payload.data, payload.size);
      AddFrames(frames, head, form == 2 ? 132 : 17, carried, form == 6);
      if (what) now += int64_t{number} * 1000000000;
    }
    for (Bytes& frame : frames) timed.push_back({std::move(frame), now += 1000000});
  }
  return timed;
}

ExactRecord RecordOf(const TimedFrame& frame, uint64_t number) {
  ExactRecord record({frame.bytes.data(), frame.bytes.size()});
  record->packetNumber = number;
  record->nanoseconds = frame.nanoseconds;
  return record;
}

std::string TextOf(const ArenaTree& tree) {
  std::string text;
  for (LineHandle line = 1; line <= tree.LineCount(); ++line) (text += tree.TextOf(line)) += '\n';
  return text;
}

// Frames that are passed teach what those that are shown do: whatever is passed of them, the others have the same lines.
void CheckPassed(uint32_t wishes, const std::vector<TimedFrame>& frames, const std::vector<std::string>& texts) {
  const Station station(wishes, kDisplayMode);
  for (size_t i = 0; i < texts.size(); ++i) {
    const ExactRecord record = RecordOf(frames[i], i + 1);
    const bool isShown = i % 4 == 3 || i + 1 == texts.size();
    if (isShown) station.session->Decode(record.get());
    else station.session->Pass(record.get());
    station.host->FinishPacket();
    const std::string text = isShown ? TextOf(station.session->Tree()) : texts[i];
    if (text != texts[i]) Fail("behind passed frames a frame has the same lines", (texts[i] + "--- behind them\n" + text).c_str());
  }
}

// What the look-ups gave is noted; behind it each frame gives its lines again, the last one first.
void CheckReplay(uint32_t wishes, const std::vector<TimedFrame>& frames) {
  size_t whole = 0;   // frames in front of the first one at whose bound something was left out
  Station first(wishes, kDisplayMode);
  StateLog log;
  log.Record(first.session->GetEngine());
  std::vector<size_t> starts;
  std::vector<std::string> texts;
  for (size_t i = 0; i < frames.size(); ++i) {
    starts.push_back(log.End());
    const ExactRecord record = RecordOf(frames[i], i + 1);
    first.session->Decode(record.get());
    first.host->FinishPacket();
    texts.push_back(TextOf(first.session->Tree()));
    if (whole == i && !first.session->Context().packet.limitReached) ++whole;
  }
  log.Record(nullptr);
  Expect(log.Complete(), "memory for a log of states");
  Station second(wishes, kDisplayMode);
  StateReplay replay(log, second.session->GetEngine());
  for (size_t i = frames.size(); i-- > 0;) {
    replay.Seek(starts[i]);
    const ExactRecord record = RecordOf(frames[i], i + 1);
    second.session->Decode(record.get());
    const std::string again = TextOf(second.session->Tree());
    if (again != texts[i]) Fail("a replayed frame has the same lines", (texts[i] + "--- replayed\n" + again).c_str());
    Expect(replay.InStep(), "a replay is asked what was asked before");
  }
  texts.resize(whole);
  CheckPassed(wishes, frames, texts);
}

}  // namespace

void RunConversation(const uint8_t* data, size_t size) {
  if (size < 7 || size > kLongest) return;
  Input input(data, size);
  const uint32_t wishes = input.U8();
  const auto serverPort = static_cast<uint16_t>(input.U16());
  const std::vector<TimedFrame> frames = FramesOf(input, serverPort);
  {
    Stations stations(wishes);
    for (size_t i = 0; i < frames.size(); ++i) {
      const ExactRecord record = RecordOf(frames[i], i + 1);
      stations.Decode(record.get());
    }
  }
  if (wishes & kKeys) CheckReplay(wishes, frames);
}

}  // namespace qxview::fuzz
