// Microsoft's compression of PPP's datagrams (MPPC, RFC 2118), and their encryption (MPPE, RFC 3078), which share a header. What is
// compressed refers to a history of 8192 bytes, which each packet goes on with unless it says that it begins anew: it is
// opened where the capture has all packets since then.
//
//   flushed, at front, compressed, encrypted   coherency count (12)   data
//
// The header does not say that it is this one: the options of CCP do, which the capture may not have; what PPTP carries is
// taken for it without them.
#include "decoders/link/ppp_compression.h"

#include <cstring>

#include "core/byte_origins.h"
#include "core/engine.h"
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/link/carried.h"
#include "decoders/link/ppp.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kFlushed = 0x8000, kAtFront = 0x4000, kCompressed = 0x2000, kEncrypted = 0x1000, kCountMask = 0x0FFF;
constexpr int32_t kHistory = kPointHistory;

constexpr auto kHeader = Rows<NoValues>({
    Hex(2, "Flags and Coherency Count"), Flag(0, "Flushed"), Flag(1, "At Front"), Flag(2, "Compressed"),
    Flag(3, "Encrypted"), Bits(4, 12, "Coherency Count")});

// The bits of a compressed packet, the high one of each byte first.
struct BitReader {
  Cursor c;
  uint32_t held = 0;
  int32_t count = 0;
  bool ranShort = false;

  uint32_t Take(int32_t bits) {
    while (count < bits) {
      if (Left(c) < 1) {
        ranShort = true;
        return 0;
      }
      held = held << 8 | TakeU8(c).value;
      count += 8;
    }
    count -= bits;
    return held >> count & ((1u << bits) - 1);
  }
  int32_t TakeOnes(int32_t most) {
    int32_t ones = 0;
    while (ones < most && Take(1) && !ranShort) ++ones;
    return ones;
  }
};

// How far back a copy starts, when the first two bits of its token were ones.
int32_t TakeOffset(BitReader& bits) {
  if (bits.Take(1) == 0) return static_cast<int32_t>(bits.Take(13)) + 320;
  if (bits.Take(1) == 0) return static_cast<int32_t>(bits.Take(8)) + 64;
  return static_cast<int32_t>(bits.Take(6));
}
// Three in one bit; from four on the ones count the bits behind them.
int32_t TakeLength(BitReader& bits) {
  constexpr int32_t kMostOnes = 11;
  const int32_t ones = bits.TakeOnes(kMostOnes);
  if (ones == 0) return 3;
  return (1 << (ones + 1)) + static_cast<int32_t>(bits.Take(ones + 1));
}

// Goes on with the history at `end`; -1 when the packet does not open. What stands behind the last token fills its byte.
int32_t Decompress(const Cursor& c, uint8_t* history, int32_t end) {
  constexpr int32_t kLeastToken = 8;   // bits of a literal
  BitReader bits{c};
  while (Left(bits.c) * 8 + bits.count >= kLeastToken) {
    int32_t offset = 0, length = 1;
    uint32_t literal = 0;
    if (bits.Take(1) == 0) {
      literal = bits.Take(7);
    } else if (bits.Take(1) == 0) {
      literal = 0x80 | bits.Take(7);
    } else {
      offset = TakeOffset(bits);
      length = TakeLength(bits);
      if (offset == 0 || offset > end) return -1;
    }
    if (bits.ranShort || length > kHistory - end) return -1;
    for (; length > 0; --length, ++end) history[end] = offset ? history[end - offset] : static_cast<uint8_t>(literal);
  }
  return end;
}

// What the packet opened to when it was decoded before; null for one that was not.
const PointRun* FindRun(StateTable& table, const ConnectionKey& key, int64_t packet, int32_t offset, StateBytes* bytes) {
  for (int32_t back = 1; back <= kMostPointRuns; ++back) {
    const auto* run = static_cast<const PointRun*>(table.Recall(&key, back, bytes));
    if (!run || (run->packet == packet && run->offset == offset)) return run;
  }
  return nullptr;
}

// What a packet opens to, worked out once: the history behind it, and where its own bytes start there.
PointRun Open(const Place& at, const Cursor& c, uint32_t head, const ConnectionKey& key, StateBytes* given) {
  StateTable& table = UnrecordedTable(at.view, kPointHistories);
  const int64_t packet = at.view->context->packetNumber;
  if (const PointRun* before = FindRun(table, key, packet, c.offset, given)) return *before;
  StateBytes kept{};
  const auto* last = static_cast<const PointRun*>(table.Recall(&key, 1, &kept));
  PointRun run{packet, c.offset, 0, -1, head & kCountMask};
  uint8_t* history = TakeFrameMemory(at.view, kHistory);
  if (!history || (last && last->packet > packet)) return run;
  std::memset(history, 0, kHistory);
  const bool goesOn = !(head & kFlushed) && last && last->end >= 0 && last->count == ((run.count - 1) & kCountMask);
  if (goesOn) std::memcpy(history, kept.data, kHistory);
  if (goesOn || (head & kFlushed)) {
    run.start = goesOn && !(head & kAtFront) ? last->end : 0;
    run.end = head & kEncrypted ? -1 : head & kCompressed ? Decompress(c, history, run.start) : run.start;
  }
  *given = {history, static_cast<uint32_t>(kHistory)};
  table.Remember(&key, &run, *given);
  return run;
}

void ShowCompressed(const Place& in, const Cursor& c, uint32_t head) {
  PointRun run{};
  StateBytes bytes{};
  const ConnectionKey key = DirectionOf(PacketOf(in));
  const bool mayOpen = !PacketOf(in).quoted && !in.view->context->headersOnly;
  if (mayOpen) {
    RecallFromHost(in.view, kPointRuns, &run, &bytes, [&](PointRun* out, StateBytes* given) {
      *out = Open(in, c, head, key, given);
      return true;
    });
  }
  if (!(head & kCompressed)) return;
  AddLine(in, Ahead(c, Left(c)), "Compressed Data: %d bytes", Left(c));
  const int32_t length = run.end - run.start;
  if (length < 1 || run.start < 0 || run.end > kHistory || bytes.length != static_cast<uint32_t>(kHistory)) return;
  uint8_t* packet = TakeFrameMemory(in.view, length);
  if (!packet) return;
  std::memcpy(packet, bytes.data + run.start, static_cast<size_t>(length));
  const BytePiece none{};   // no byte of the frame is one of the opened packet's
  DecodeCarriedFrame(Deeper(in), JoinedBytes(in.view, packet, length, &none, 1, c.offset), Carried::kPpp, "Decompressed Data");
}

// The algorithms by their options of CCP (RFC 1962).
constexpr auto kAlgorithmNames = SortedNames({
    {0, "OUI"}, {1, "Predictor Type 1"}, {2, "Predictor Type 2"}, {3, "Puddle Jumper"}, {16, "Hewlett-Packard PPC"},
    {17, "Stac Electronics LZS"}, {18, "Microsoft PPE/PPC"}, {19, "Gandalf FZA"}, {20, "V.42bis"}, {21, "BSD LZW Compress"},
    {23, "LZS-DCP"}, {24, "MVRCA (Magnalink)"}, {25, "DCE"}, {26, "Deflate"}, {27, "V.44/LZJH"}});

constexpr auto kSequence = Rows<NoValues>({Number(2, "Sequence Number")});

}  // namespace

int32_t DecodePppCompressed(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "mppc");
  constexpr uint8_t kGre = 47;
  int32_t direction;
  const PacketState& packet = PacketOf(at);
  const PppCompression* agreed = Recall(at.view, kPppCompressions, ConnectionOf(packet, &direction));
  const uint32_t option = agreed ? agreed->option : packet.ipProtocol == kGre ? kPointCompression : 0;
  if (Left(c) < 2 || option == 0) return 0;
  if (option != kPointCompression) {
    AddLine(at, Ahead(c, Left(c)), "Compressed Data: %d bytes, %s", Left(c), LookupName(kAlgorithmNames, option));
    return 1;
  }
  const uint32_t head = PeekU16(c);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "%s: Coherency Count %u%s",
                                     head & kEncrypted ? "MPPE" : "MPPC", head & kCountMask,
                                     head & kFlushed ? ", Flushed" : ""));
  ShowRows(in, c, kHeader);
  if (head & kEncrypted) {
    AddLine(in, Ahead(c, Left(c)), "Encrypted Data: %d bytes", Left(c));
    return 1;
  }
  ShowCompressed(in, c, head);
  if (!(head & kCompressed)) DecodeCarriedFrame(Deeper(at), c, Carried::kPpp, "PPP Data");
  return 1;
}

// What ECP's algorithms have in common: the number of the packet in front of what DES or Triple DES made of it (RFC 2419, 2420).
int32_t DecodePppEncrypted(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "ecp");
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "PPP Encrypted: Sequence %u", PeekU16(c)));
  ShowRows(in, c, kSequence);
  AddLine(in, Ahead(c, Left(c)), "Encrypted Data: %d bytes", Left(c));
  return 1;
}

}  // namespace qxview
