// The bytes of a conversation in their order, both sides told apart.
#include <optional>

#include "app/colors.h"
#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/stream_order.h"
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
  bool isTcp = false, isUdp = false, isTls = false;   // TLS: what the records of a conversation over TCP were opened to
  uint64_t stream = 0;
  FollowFormat format = FollowFormat::kText;
  Sides sides = Sides::kBoth;
};

// Writes what one side sent, and says when the other one goes on.
class StreamWriter final : public StreamTarget {
 public:
  StreamWriter(const FollowOptions& options, Output& out)
      : options_(options), out_(out), colors_(options.format != FollowFormat::kRaw && UsesColor(options.reading.color)) {}

  void Name(bool isSecond, std::string end) override { ends_[isSecond] = std::move(end); }

  void Put(bool isSecond, uint64_t packet, const uint8_t* bytes, size_t length) override {
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

  void PutGap(bool isSecond, uint64_t packet, uint64_t length) override {
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

class Follower {
 public:
  Follower(const FollowOptions& options, Output& out)
      : options_(options), writer_(options, out), stream_(writer_), records_(writer_) {}

  RecordListener Listener() {
    return {[](void* with, const OpenedRecord& record) { static_cast<FollowedRecords*>(with)->Note(record); }, &records_};
  }

  void Take(const PacketState& packet, uint64_t number, const QxHost* host) {
    TcpHeader header;
    const bool isTcp = ReadTcpHeader(packet, &header);
    const bool isUdp = !isTcp && IsUdpPacket(packet);
    if (options_.isTls) {
      const bool isOfStream = isTcp && !packet.quoted && streams_.NumberOf(packet, &header) == options_.stream;
      return isOfStream ? records_.Take(packet, number, host) : records_.Drop();
    }
    const bool isAny = !options_.isTcp && !options_.isUdp;   // what --where lets through
    if (packet.quoted || (isAny ? !isTcp && !isUdp : options_.isTcp ? !isTcp : !isUdp)) return;
    if (isAny) return stream_.TakeAsItComes(packet, isTcp, number, host);
    if (streams_.NumberOf(packet, isTcp ? &header : nullptr) != options_.stream) return;
    stream_.Take(packet, isTcp ? &header : nullptr, number, host);
  }

  bool Finish() {
    stream_.Finish();
    records_.Finish();
    writer_.Finish();
    return !stream_.IsEmpty() || !records_.IsEmpty();
  }

  // Whether nothing of a connection of TLS was opened.
  bool IsClosed() const { return options_.isTls && !records_.IsEmpty() && records_.Opened() == 0; }
  // What keeps it closed, or a part of it; an empty text when all was opened.
  std::string WhyClosed() const {
    const std::string name = "follow: tls:" + std::to_string(options_.stream);
    if (!IsClosed()) {
      if (records_.Failed() == 0) return "";
      return name + ": records that could not be opened, and are left out: " + std::to_string(records_.Failed());
    }
    if (records_.Failed() > 0) return name + ": no record can be opened: the secrets are others', or its cipher is not supported";
    if (records_.WithoutSecrets() == 0) return name + ": there are no encrypted records in this conversation";
    return name + ": its secrets are not known: a key log is named with --set TlsKeyLog=FILE, or stands in the capture";
  }

 private:
  const FollowOptions& options_;
  StreamWriter writer_;
  Streams streams_;
  FollowedStream stream_;
  FollowedRecords records_;
};

int Follow(const FollowOptions& options) {
  auto out = std::make_unique<Output>();
  Follower follower(options, *out);
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    run.GetSession().DecodeHeadersOnly();
    if (options.isTls) {
      run.GetSession().Context().headersOnly = false;   // nothing is shown, but all is decoded
      if (!ListenToRecords(run.GetSession().GetView(), follower.Listener())) return Tell("no memory for what is encrypted"), false;
    }
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
  const std::string closed = follower.WhyClosed();
  if (!closed.empty()) Tell(closed);
  if (follower.IsClosed()) return std::max(status, static_cast<int>(kNothingFound));
  return found || status != kDone ? status : static_cast<int>(kNothingFound);
}

}  // namespace

void AddFollowCommand(CommandLine* line) {
  auto options = std::make_shared<FollowOptions>();
  Command& command = line->Add("follow", "the bytes of a conversation, both sides in order");
  AddReadingOptions(&command, &options->reading);
  command.AddOption("--stream", "tcp:N|udp:N|tls:N",
                    "the N-th conversation, from 0; tls: what that of TCP has encrypted, where its secrets are known; without it all "
                    "that --where lets through",
                    [options](const std::string& value, std::string* wrong) {
                      options->isTcp = value.starts_with("tcp:");
                      options->isUdp = value.starts_with("udp:");
                      options->isTls = value.starts_with("tls:");
                      int64_t number = -1;
                      *wrong = "tcp:N, udp:N or tls:N is wanted, N from 0";
                      if (!options->isTcp && !options->isUdp && !options->isTls) return false;
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
      "  qxview follow capture.pcapng --stream tls:0 --set TlsKeyLog=keys.log\n"
      "  qxview follow capture.pcap -Y 'udp.port == 514'");
  command.SetAction([options] {
    if (options->isTls) options->reading.reassemble = true;   // records go over segments
    const bool isNamed = options->isTcp || options->isUdp || options->isTls;
    if (!isNamed && options->reading.where.empty() && options->reading.filter.empty()) {
      return Tell("follow: --stream or --where is missing: which conversation"), static_cast<int>(kUsage);
    }
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Follow(*options) : status;
  });
}

}  // namespace qxview
