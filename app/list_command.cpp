// The packet list: number, time, source, destination, length and summary, one line a packet.
#include <algorithm>

#include "app/commands.h"
#include "app/list_time.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/tree_writer.h"
#include "core/digits.h"
#include "decoders/app/packet_summaries.h"
#include "host/packet_addresses.h"
#include "host/tls_pending.h"

namespace qxview {
namespace {

struct ListOptions {
  ReadingOptions reading;
  TimeForm time = TimeForm::kRelative;
};

constexpr size_t kNumberWidth = 6, kTimeWidth = 12, kAddressWidth = 17, kLengthWidth = 5;

class PacketList {
 public:
  PacketList(const ListOptions& options, PacketRun& run, Output& out)
      : run_(run), out_(out), time_(options.time), host_(run.Host().Record()),
        cleanText_(run.GetSession().GetEngine()->settings.cleanText) {}

  void Put(const FrameRecord* record, uint64_t number) {
    const PacketState& packet = run_.GetSession().Context().packet;
    PutNumber(number, kNumberWidth);
    char text[kSummarySize];
    const int32_t timeLength =
        time_.Format(record->nanoseconds, run_.FirstTime(), run_.TimeBefore(), text);
    PutRight({text, static_cast<size_t>(timeLength)}, kTimeWidth);
    PacketAddresses addresses;
    FormatPacketAddresses(packet, host_, &addresses);
    PutLeft(addresses.source);
    PutLeft(addresses.destination);
    PutNumber(WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record)), kLengthWidth);
    out_.Put("  ");
    int32_t* pending = nullptr;
    const ReachedLayer& reached = packet.reached;
    if (reached.table == DispatchTable::kApplication && WantsTlsPending(reached.key)) pending = tls_.Find(packet);
    SummarizePacket(run_.GetSession().GetView(), cleanText_, pending, text, sizeof text);
    PutSafeText(out_, text);
    out_.Put('\n');
  }

 private:
  void Fill(size_t length, size_t width) {
    static constexpr std::string_view kBlanks = "                                        ";
    if (length < width) out_.Put(kBlanks.substr(0, width - length));
  }
  void PutRight(std::string_view text, size_t width) {
    out_.Put("  ");
    Fill(text.size(), width);
    out_.Put(text);
  }
  void PutLeft(std::string_view text) {
    out_.Put("  ");
    PutSafeText(out_, text);
    Fill(text.size(), kAddressWidth);
  }
  void PutNumber(uint64_t number, size_t width) {
    char digits[24];
    char* const end = digits + sizeof digits;
    const char* at = WriteDecimal(end, number);
    const std::string_view text{at, static_cast<size_t>(end - at)};
    if (width == kNumberWidth) {
      Fill(text.size(), width);
      out_.Put(text);
    } else {
      PutRight(text, width);
    }
  }

  PacketRun& run_;
  Output& out_;
  ListTime time_;
  const QxHost* const host_;
  const bool cleanText_;
  TlsPending tls_;
};

int List(const ListOptions& options) {
  PacketRun run;
  if (!run.Open(options.reading)) return run.Status();
  run.GetSession().DecodeHeadersOnly();
  auto out = std::make_unique<Output>();
  PacketList list(options, run, *out);
  const int status = run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
    list.Put(record, frame.number);
    if (options.reading.flushEachPacket) out->Flush();
    return !out->Failed();
  });
  out->Flush();
  return out->Failed() ? OutputFault() : status;
}

}  // namespace

void AddListCommand(CommandLine* line) {
  auto options = std::make_shared<ListOptions>();
  Command& command = line->Add("list", "one line a packet: number, time, addresses, length, summary");
  AddReadingOptions(&command, &options->reading);
  command.AddChoice<TimeForm>("-t", "FORM",
                              "time: r since the first packet, d since the one before, a local, u UTC",
                              {{"r", TimeForm::kRelative},
                               {"d", TimeForm::kDelta},
                               {"a", TimeForm::kAbsolute},
                               {"u", TimeForm::kUtc}},
                              &options->time);
  command.SetExamples(
      "Examples:\n"
      "  qxview list capture.pcap\n"
      "  qxview list -t u -f 'port 53' capture.pcapng.gz\n"
      "  qxview list --set AliasFile=names.txt --packets 1-100 capture.pcap\n"
      "  tcpdump -U -w - | qxview list -");
  command.SetAction([options] {
    FinishReadingOptions(&options->reading);
    return List(*options);
  });
}

}  // namespace qxview
