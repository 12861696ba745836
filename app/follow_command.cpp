// The bytes of a conversation in their order, both sides told apart.
#include <cstring>
#include <deque>
#include <map>
#include <optional>

#include "app/colors.h"
#include "app/commands.h"
#include "app/output.h"
#include "app/packet_ends.h"
#include "app/packet_run.h"
#include "app/tcp_header.h"
#include "app/tree_writer.h"
#include "core/digits.h"
#include "host/text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

enum class FollowFormat { kText, kHex, kRaw };
enum class Sides { kBoth, kFirst, kSecond };

struct FollowOptions {
  ReadingOptions reading;
  bool isTcp = false, isUdp = false;
  uint64_t stream = 0;
  FollowFormat format = FollowFormat::kText;
  Sides sides = Sides::kBoth;
};

// Writes what one side sent, and says when the other one goes on.
class StreamWriter {
 public:
  StreamWriter(const FollowOptions& options, Output& out)
      : options_(options), out_(out), colors_(options.format != FollowFormat::kRaw && UsesColor(options.reading.color)) {}

  void Name(bool isSecond, std::string end) { ends_[isSecond] = std::move(end); }

  void Put(bool isSecond, uint64_t packet, const uint8_t* bytes, size_t length) {
    if (!Turn(isSecond, packet) || length == 0) return;
    sent_[isSecond] += length;
    const std::string_view text{reinterpret_cast<const char*>(bytes), length};
    switch (options_.format) {
      case FollowFormat::kRaw: return out_.Put(text);
      case FollowFormat::kHex: return PutDump(isSecond, bytes, length);
      case FollowFormat::kText: break;
    }
    for (size_t at = 0; at < length;) {   // line ends as they are, other controls as they are shown in trees
      const size_t end = std::min(text.find('\n', at), length);
      std::string_view line = text.substr(at, end - at);
      if (end < length && line.ends_with('\r')) line.remove_suffix(1);
      PutSafeText(out_, line);
      if (end < length) out_.Put('\n');
      atLineStart_ = end < length;
      at = end + 1;
    }
  }

  // Bytes that the capture does not have.
  void PutGap(bool isSecond, uint64_t packet, uint64_t length) {
    missing_ += length;
    if (!Turn(isSecond, packet) || options_.format == FollowFormat::kRaw) return;
    if (!atLineStart_) out_.Put('\n');
    out_.Put('[');
    out_.Put(std::to_string(length));
    out_.Put(" bytes are missing in the capture]\n");
    atLineStart_ = true;
    sent_[isSecond] += length;
  }

  void Finish() {
    if (!atLineStart_) out_.Put('\n');
    if (colors_) out_.Put(kPlainText);
    if (missing_ && options_.format == FollowFormat::kRaw) Tell("follow: " + std::to_string(missing_) + " bytes are missing in the capture");
  }

 private:
  // False where this side is not wanted.
  bool Turn(bool isSecond, uint64_t packet) {
    if (options_.sides != Sides::kBoth && isSecond != (options_.sides == Sides::kSecond)) return false;
    if (turn_ == isSecond) return true;
    turn_ = isSecond;
    if (options_.format == FollowFormat::kRaw) return true;
    if (!atLineStart_) out_.Put('\n');
    if (colors_) out_.Put(isSecond ? kBlue : kMagenta);
    out_.Put("--- " + ends_[isSecond] + " to " + ends_[!isSecond] + ", packet " + std::to_string(packet) + "\n");
    atLineStart_ = true;
    return true;
  }

  // Rows of sixteen bytes with their place in what the side sent; the second side's are indented.
  void PutDump(bool isSecond, const uint8_t* bytes, size_t length) {
    constexpr size_t kRow = 16;
    uint64_t place = sent_[isSecond] - length;
    for (size_t at = 0; at < length; at += kRow, place += kRow) {
      const size_t count = std::min(kRow, length - at);
      char row[32];
      std::snprintf(row, sizeof row, "%s%08llX ", isSecond ? "    " : "", static_cast<unsigned long long>(place));
      out_.Put(row);
      std::string characters;
      for (size_t i = 0; i < kRow; ++i) {
        if (i == kRow / 2) out_.Put(' ');
        out_.Put(' ');
        out_.Put(i < count ? std::string_view(kHexPairs + 2 * bytes[at + i], 2) : "  ");
        if (i < count) characters += bytes[at + i] >= 0x20 && bytes[at + i] < 0x7F ? static_cast<char>(bytes[at + i]) : '.';
      }
      out_.Put("  " + characters + "\n");
    }
  }

  const FollowOptions& options_;
  Output& out_;
  const bool colors_;
  std::string ends_[2];
  std::optional<bool> turn_;
  uint64_t sent_[2] = {0, 0};
  uint64_t missing_ = 0;
  bool atLineStart_ = true;
};

// One direction of a TCP connection: puts segments in order. What stands behind a gap waits until the gap is closed, the other
// end has acknowledged it, or too much waits.
class SegmentOrder {
 public:
  SegmentOrder(StreamWriter& writer, bool isSecond) : writer_(writer), isSecond_(isSecond) {}

  void Start(uint32_t sequence) {
    next_ = sequence;
    started_ = true;
  }
  bool HasStarted() const { return started_; }

  void Take(uint32_t sequence, const uint8_t* bytes, size_t length, size_t cut, uint64_t packet) {
    if (!started_) Start(sequence);
    waiting_.push_back({sequence, std::string(reinterpret_cast<const char*>(bytes), length), cut, packet});
    held_ += length + cut;
    Release();
    constexpr size_t kMostSegments = 256, kMostHeld = 4 << 20;
    while (waiting_.size() > kMostSegments || held_ > kMostHeld) SkipGap();
  }
  // The other end has all in front of this.
  void Acknowledge(uint32_t sequence) {
    while (!waiting_.empty() && SequenceDistance(next_, sequence) > 0) SkipGap();
  }
  void Finish() {
    while (!waiting_.empty()) SkipGap();
  }

 private:
  struct Segment {
    uint32_t sequence;
    std::string bytes;
    size_t cut;   // bytes behind them that were not captured
    uint64_t packet;
  };

  // Writes what follows on what was written.
  void Release() {
    for (bool found = true; found;) {
      found = false;
      for (size_t i = 0; i < waiting_.size(); ++i) {
        const Segment& segment = waiting_[i];
        const int32_t ahead = SequenceDistance(next_, segment.sequence);
        if (ahead > 0) continue;
        const Segment taken = std::move(waiting_[i]);
        waiting_.erase(waiting_.begin() + static_cast<ptrdiff_t>(i));
        held_ -= taken.bytes.size() + taken.cut;
        const size_t known = static_cast<size_t>(-static_cast<int64_t>(ahead));
        const size_t all = taken.bytes.size() + taken.cut;
        if (known < taken.bytes.size()) {
          writer_.Put(isSecond_, taken.packet, reinterpret_cast<const uint8_t*>(taken.bytes.data()) + known,
                      taken.bytes.size() - known);
        }
        if (taken.cut && known < all) writer_.PutGap(isSecond_, taken.packet, all - std::max(known, taken.bytes.size()));
        if (known < all) next_ += static_cast<uint32_t>(all - known);
        found = true;
        break;
      }
    }
  }
  // Gives up the bytes in front of the segment that comes first.
  void SkipGap() {
    const Segment* first = &waiting_.front();
    for (const Segment& segment : waiting_) {
      if (SequenceDistance(segment.sequence, first->sequence) > 0) first = &segment;
    }
    const int32_t gap = SequenceDistance(next_, first->sequence);
    if (gap > 0) writer_.PutGap(isSecond_, first->packet, static_cast<uint64_t>(gap));
    next_ = first->sequence;
    Release();
  }

  StreamWriter& writer_;
  const bool isSecond_;
  bool started_ = false;
  uint32_t next_ = 0;
  size_t held_ = 0;
  std::deque<Segment> waiting_;
};

// Tells the streams of a capture apart: they are counted from 0 in the order of their first packets. A connection that starts
// anew between the same ends is another one.
class Streams {
 public:
  // The stream's number; UINT64_MAX when there are too many to tell.
  uint64_t NumberOf(const PacketState& packet, const TcpHeader* tcp) {
    constexpr size_t kMost = 2000000;
    const auto [at, isNew] = streams_.try_emplace(EndPair(SourceEnd(packet), DestinationEnd(packet)).bytes);
    if (isNew && streams_.size() > kMost) return streams_.erase(at), UINT64_MAX;
    Stream& stream = at->second;
    const bool isSyn = tcp && (tcp->flags & (kTcpSyn | kTcpAck)) == kTcpSyn;
    if (isNew || (isSyn && stream.hasStart && stream.start != tcp->sequence)) stream.number = count_++;
    if (isSyn) {
      stream.hasStart = true;
      stream.start = tcp->sequence;
    }
    return stream.number;
  }

 private:
  struct Stream {
    uint64_t number = 0;
    uint32_t start = 0;
    bool hasStart = false;
  };
  std::map<std::string, Stream> streams_;
  uint64_t count_ = 0;
};

class Follower {
 public:
  Follower(const FollowOptions& options, Output& out) : options_(options), writer_(options, out) {}

  void Take(const PacketState& packet, uint64_t number, const QxHost* host) {
    TcpHeader header;
    const bool isTcp = ReadTcpHeader(packet, &header);
    constexpr uint32_t kUdp = 17;
    const bool isUdp = !isTcp && packet.carrier.table == DispatchTable::kIpProtocol && packet.carrier.key == kUdp;
    const bool isAny = !options_.isTcp && !options_.isUdp;   // what --where lets through
    if (packet.quoted || (isAny ? !isTcp && !isUdp : options_.isTcp ? !isTcp : !isUdp)) return;
    if (!isAny && streams_.NumberOf(packet, isTcp ? &header : nullptr) != options_.stream) return;
    found_ = true;
    const std::string from = BytesOf(SourceEnd(packet));
    if (first_.empty()) first_ = from;
    // Of several conversations each end that is not the first one's is the other side.
    const bool isSecond = from != first_;
    writer_.Name(isSecond, EndTextOf(SourceEnd(packet), host));
    writer_.Name(!isSecond, EndTextOf(DestinationEnd(packet), host));
    if (isUdp || isAny) {
      const uint8_t* bytes = isTcp ? packet.segment.payload : packet.carrier.bytes + 8;
      const int32_t length = isTcp ? packet.segment.length : packet.carrier.length - 8;
      if (length > 0) writer_.Put(isSecond, number, bytes, static_cast<size_t>(length));
      return;
    }
    SegmentOrder& way = ways_[isSecond];
    if (header.flags & kTcpSyn) way.Start(header.sequence + 1);
    if (header.flags & kTcpAck) ways_[!isSecond].Acknowledge(header.acknowledgement);
    const TcpSegment& segment = packet.segment;
    if (segment.length + segment.cut > 0) {
      way.Take(header.sequence, segment.payload, static_cast<size_t>(segment.length), static_cast<size_t>(segment.cut), number);
    }
  }

  bool Finish() {
    for (SegmentOrder& way : ways_) way.Finish();
    writer_.Finish();
    return found_;
  }

 private:
  const FollowOptions& options_;
  StreamWriter writer_;
  Streams streams_;
  SegmentOrder ways_[2] = {{writer_, false}, {writer_, true}};
  std::string first_;
  bool found_ = false;
};

int Follow(const FollowOptions& options) {
  auto out = std::make_unique<Output>();
  Follower follower(options, *out);
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    run.GetSession().DecodeHeadersOnly();
    run.ForEach([&](const FrameRecord*, const CaptureFrame& frame, int32_t) {
      follower.Take(run.GetSession().Context().packet, frame.number, run.Host().Record());
      return !out->Failed();
    });
    return !out->Failed();
  });
  const bool found = follower.Finish();
  out->Flush();
  if (out->Failed()) return OutputFault();
  if (!found) Tell("follow: there is no such stream");
  return found || status != kDone ? status : static_cast<int>(kNothingFound);
}

}  // namespace

void AddFollowCommand(CommandLine* line) {
  auto options = std::make_shared<FollowOptions>();
  Command& command = line->Add("follow", "the bytes of a conversation, both sides in order");
  AddReadingOptions(&command, &options->reading);
  command.AddOption("--stream", "tcp:N|udp:N", "the N-th conversation, from 0; without it all that --where lets through",
                    [options](const std::string& value, std::string* wrong) {
                      options->isTcp = value.starts_with("tcp:");
                      options->isUdp = value.starts_with("udp:");
                      int64_t number = -1;
                      *wrong = "tcp:N or udp:N is wanted, N from 0";
                      if (!options->isTcp && !options->isUdp) return false;
                      if (!ParseNumber(value.substr(4), &number) || number < 0) return false;
                      options->stream = static_cast<uint64_t>(number);
                      return true;
                    });
  command.AddChoice<FollowFormat>("--format", "FORMAT", "text, hex or raw (the bytes alone)",
                                  {{"text", FollowFormat::kText}, {"hex", FollowFormat::kHex}, {"raw", FollowFormat::kRaw}},
                                  &options->format);
  command.AddChoice<Sides>("--side", "SIDE", "both, a (the end that sent first) or b",
                           {{"both", Sides::kBoth}, {"a", Sides::kFirst}, {"b", Sides::kSecond}}, &options->sides);
  command.SetExamples(
      "Segments of TCP are put in order; what comes again is left out, what is missing is said.\n"
      "Examples:\n"
      "  qxview follow capture.pcap --stream tcp:0\n"
      "  qxview follow capture.pcap --stream tcp:3 --side b --format raw > answer.bin\n"
      "  qxview follow capture.pcap -Y 'udp.port == 514'");
  command.SetAction([options] {
    if (!options->isTcp && !options->isUdp && options->reading.where.empty() && options->reading.filter.empty()) {
      return Tell("follow: --stream or --where is missing: which conversation"), static_cast<int>(kUsage);
    }
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Follow(*options) : status;
  });
}

}  // namespace qxview
