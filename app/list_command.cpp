// The packet list: number, time, source, destination, length and summary, one line a packet.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "app/colors.h"
#include "app/commands.h"
#include "app/fast_text.h"
#include "app/list_table.h"
#include "app/list_time.h"
#include "app/output.h"
#include "app/packet_protocol.h"
#include "app/packet_run.h"
#include "app/record_writer.h"
#include "app/tree_writer.h"
#include "core/decoder.h"
#include "core/digits.h"
#include "core/sixteen.h"
#include "decoders/app/packet_summaries.h"
#include "decoders/net/window_scales.h"
#include "host/packet_addresses.h"
#include "platform/interruption.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct ListOptions {
  ReadingOptions reading;
  TimeForm time = TimeForm::kRelative;
  bool wide = false;
  bool asData = false;
  RecordFormat format = RecordFormat::kCsv;   // of data
};

constexpr size_t kMostWidth = 24;   // of a column
constexpr size_t kRowRoom = 8 * kMostWidth + kWrittenAhead;   // what a row takes beside its texts
constexpr size_t kNumberWidth = 6, kTimeWidth = 12, kAddressWidth = 17, kLengthWidth = 5;

// A TCP summary with the window as it is meant: what the segment says, times the scale that the connection agreed on.
std::string ScaleWindow(std::string_view summary, int32_t exponent) {
  constexpr std::string_view kLabel = ", Window: ";
  const size_t label = summary.find(kLabel);
  std::string scaled(summary);
  if (!summary.starts_with("TCP ") || label == summary.npos || exponent < 0) return scaled;
  const char* const first = summary.data() + label + kLabel.size();
  uint64_t window = 0;
  const auto [end, error] = std::from_chars(first, summary.data() + summary.size(), window);
  if (error != std::errc()) return scaled;
  return scaled.replace(label + kLabel.size(), static_cast<size_t>(end - first), std::to_string(window << exponent));
}

// The summary without the name that the protocol's column has shown.
std::string_view WithoutName(std::string_view summary, std::string_view protocol) {
  if (!summary.starts_with(protocol)) return summary;
  std::string_view rest = summary.substr(protocol.size());
  if (rest.starts_with(", ") || rest.starts_with(": ")) rest.remove_prefix(1);
  return rest.starts_with(" ") ? rest.substr(1) : summary;
}

// The rows of a list: in columns of fixed widths as programs read them, or as a table for a person.
class PacketList {
 public:
  PacketList(const ListOptions& options, PacketRun& run, Output& out)
      : run_(run), out_(out), time_(options.time),
        sixDigits_(options.time != TimeForm::kEpoch && options.time != TimeForm::kIso), host_(run.Host().Record()),
        colors_(UsesColor(options.reading.color)) {
    if (colors_) ResetColorsOnSignal();
    if (!options.wide && !IsTerminal(StandardOutputFile())) return;
    constexpr int32_t kOtherLines = 2;   // of a screenful: titles and prompt
    const TerminalSize size = SizeOfTerminal();
    table_.emplace(out, options.wide ? 0 : size.columns, std::max(size.rows - kOtherLines, 1), colors_);
  }

  void Put(const FrameRecord* record, uint64_t number) {
    const PacketState& packet = run_.GetSession().Context().packet;
    char time[ListTime::kSize];
    const int32_t digits = sixDigits_ || record->nanoseconds % 1000 == 0 ? 6 : 9;
    const int32_t timeLength = time_.Format(run_.Times(), digits, time);
    struct {
      PacketAddresses addresses;
      char summary[kSummarySize];
      char behind[kWrittenAhead];   // is read with the texts' last characters
    } texts;
    const PacketAddresses& addresses = texts.addresses;
    const char* const summary = texts.summary;
    FormatPacketAddresses(packet, host_, &texts.addresses);
    const uint32_t length = WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record));
    SummarizePacket(run_.GetSession().GetView(), texts.summary, sizeof texts.summary);
    const std::string_view timeText{time, static_cast<size_t>(timeLength)};
    if (table_) return PutTableRow(number, timeText, addresses, length, summary);
    constexpr size_t kTexts = sizeof texts.addresses + sizeof texts.summary;
    static_assert(kLongestEscape * kTexts + kRowRoom <= Output::kMostRoom);
    char* at = PutNumber(out_.Room(kLongestEscape * kTexts + kRowRoom), number, kNumberWidth);
    at = PutRight(PutGap(at), timeText, kTimeWidth);
    at = PutLeft(PutGap(at), addresses.source);
    at = PutLeft(PutGap(at), addresses.destination);
    at = PutGap(PutNumber(PutGap(at), length, kLengthWidth));
    if (colors_) {
      out_.Took(at);
      PutColoredSummary(packet, summary);
      out_.Put('\n');
    } else {
      at = PutEscaped<false, true>(at, {summary, LengthOfText(summary)});
      *at++ = '\n';
      out_.Took(at);
    }
  }

  // Shows what is there, also what is held back for the columns' widths.
  void Show() {
    if (table_) table_->Show();
    out_.Flush();
  }

 private:
  static TerminalSize SizeOfTerminal() {
    TerminalSize size = OutputTerminalSize();
    const char* columns = std::getenv("COLUMNS");
    const int32_t wanted = columns ? std::atoi(columns) : 0;
    if (wanted > 0) size.columns = wanted;
    return {size.columns > 0 ? size.columns : 80, size.rows > 0 ? size.rows : 24};
  }
  void PutTableRow(uint64_t number, std::string_view time, const PacketAddresses& addresses, uint32_t length,
                   const char* summary) {
    constexpr uint32_t kSyn = 2;
    const PacketState& packet = run_.GetSession().Context().packet;
    char scratch[kMediumNameScratch];
    const char* protocol = ProtocolNameOf(packet, scratch);
    const bool scales = packet.segment.here && !(packet.segment.flags & kSyn);   // a SYN's window never is (RFC 7323)
    const int32_t exponent = scales ? FindWindowScale(TopLevel(run_.GetSession().GetView(), 1)) : kNoWindowScale;
    table_->Put({{std::to_string(number), std::string(time), addresses.source, addresses.destination, protocol,
                  std::to_string(length), std::string(WithoutName(ScaleWindow(summary, exponent), protocol))},
                 ColorOfPacket(protocol, summary)});
  }
  void PutColoredSummary(const PacketState& packet, const char* summary) {
    char scratch[kMediumNameScratch];
    out_.Put(ColorOfPacket(ProtocolNameOf(packet, scratch), summary));
    PutSafeText(out_, summary);
    out_.Put(kPlainText);
  }

  // Each writes from `to` on and returns its end; columns are filled with blanks.
  static char* PutGap(char* to) { return PutLiteral(to, "  "); }
  static char* Fill(char* to, size_t length, size_t width) {
    if (length >= width) return to;
    std::memset(to, ' ', kMostWidth);
    return to + (width - length);
  }
  static char* PutRight(char* to, std::string_view text, size_t width) {
    to = Fill(to, text.size(), width);
    CopyShort(to, text.data(), text.size());
    return to + text.size();
  }
  static char* PutLeft(char* to, const char* text) {
    const size_t length = LengthOfText(text);
    return Fill(PutEscaped<false, true>(to, {text, length}), length, kAddressWidth);
  }
  static char* PutNumber(char* to, uint64_t number, size_t width) {
    // Longer ones fill every column.
    const size_t digits = number < kCountedDigits ? static_cast<size_t>(CountDigits(static_cast<uint32_t>(number))) : width;
    return PutDecimal(Fill(to, digits, width), number);
  }

  PacketRun& run_;
  Output& out_;
  ListTime time_;
  const bool sixDigits_;   // forms that align; the others are exact
  const QxHost* const host_;
  const bool colors_;
  std::optional<ListTable> table_;
};

// The list as data, under the names that its columns have as keys.
class DataList {
 public:
  DataList(const ListOptions& options, Output& out)
      : options_(options), time_(options.time), writer_(out, options.format, Names(options)) {}
  void PutHeader() { writer_.PutHeader(); }
  void Put(PacketRun& run, const FrameRecord* record, const CaptureFrame& frame) {
    ShownPacket packet(run.GetSession(), run.Host().Record());
    packet.Take(record, frame.number, true);
    char time[ListTime::kSize];
    const int32_t timeLength = time_.Format(run.Times(), record->nanoseconds % 1000 == 0 ? 6 : 9, time);
    const std::string_view timeText{time, static_cast<size_t>(timeLength)};
    if (options_.reading.prefixFile) writer_.PutText(frame.file);
    writer_.PutNumber(std::to_string(frame.number));
    const bool isText = options_.time == TimeForm::kAbsolute || options_.time == TimeForm::kUtc || options_.time == TimeForm::kIso;
    if (isText) writer_.PutText(timeText); else writer_.PutNumber(timeText);
    writer_.PutText(ToUtf8(packet.Source()));
    writer_.PutText(ToUtf8(packet.Destination()));
    writer_.PutText(ToUtf8(packet.Protocol()));
    writer_.PutNumber(std::to_string(packet.Length()));
    writer_.PutText(ToUtf8(packet.Summary()));
    writer_.EndRecord();
  }

 private:
  static std::vector<std::string> Names(const ListOptions& options) {
    std::vector<std::string> names{"frame.number",   "frame.time",   "frame.source", "frame.destination",
                                   "frame.protocol", "frame.length", "frame.summary"};
    if (options.reading.prefixFile) names.insert(names.begin(), "file");
    return names;
  }
  const ListOptions& options_;
  ListTime time_;
  RecordWriter writer_;
};

int ListAsData(const ListOptions& options) {
  auto out = std::make_unique<Output>();
  DataList(options, *out).PutHeader();
  const int status = ForEachRun(options.reading, [&](PacketRun& captured) {
    captured.ForEachWritten(*out, [&](PacketRun& run, Output& to) -> PacketRun::Handler {
      run.SummarizePackets();
      const auto list = std::make_shared<DataList>(options, to);
      return [&, list](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
        list->Put(run, record, frame);
        if (options.reading.flushEachPacket) to.Flush();
        return !to.Failed();
      };
    });
    return !out->Failed();
  });
  out->Flush();
  return out->Failed() ? OutputFault() : status;
}

// The table's widths come from the rows so far, so that they are one thread's.
void ListAsTable(const ListOptions& options, PacketRun& run, Output& out) {
  run.GetSession().DecodeHeadersOnly();
  PacketList list(options, run, out);
  SetIdleAction([](void* with) { static_cast<PacketList*>(with)->Show(); }, &list);
  run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
    list.Put(record, frame.number);
    if (options.reading.flushEachPacket) list.Show();
    return !out.Failed();
  });
  SetIdleAction(nullptr, nullptr);
  list.Show();
}

void ListInColumns(const ListOptions& options, PacketRun& captured, Output& out) {
  captured.ForEachWritten(out, [&](PacketRun& run, Output& to) -> PacketRun::Handler {
    run.SummarizePackets();
    if (options.reading.prefixFile) run.PrefixLines(&to);
    const auto list = std::make_shared<PacketList>(options, run, to);
    return [&, list](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
      list->Put(record, frame.number);
      if (options.reading.flushEachPacket) to.Flush();
      return !to.Failed();
    };
  });
}

int List(const ListOptions& options) {
  if (options.asData) return ListAsData(options);
  auto out = std::make_unique<Output>();
  const bool asTable = options.wide || IsTerminal(StandardOutputFile());
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    if (options.reading.prefixFile) run.PrefixLines(out.get());
    if (asTable) ListAsTable(options, run, *out); else ListInColumns(options, run, *out);
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
  AddPrefixOption(&command, &options->reading);
  AddTimeOption(&command, &options->time);
  command.AddFlag("--wide", "with all columns, not cut to the terminal's width", &options->wide);
  command.AddOption("--format", "FORMAT", "as data: csv, tsv or json (an object a line)",
                    [options](const std::string& value, std::string* wrong) {
                      options->asData = true;
                      return TakeRecordFormat(value, &options->format, wrong);
                    });
  command.SetExamples(
      "Examples:\n"
      "  qxview list capture.pcap\n"
      "  qxview list -t u -f 'port 53' capture.pcapng.gz\n"
      "  qxview list --set AliasFile=names.txt --packets 1-100 capture.pcap\n"
      "  tcpdump -U -w - | qxview list -");
  command.SetAction([options] {
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? List(*options) : status;
  });
}

}  // namespace qxview
