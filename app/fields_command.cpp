// Values of keys as columns, a line a packet.
#include "app/commands.h"
#include "app/list_time.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/record_writer.h"
#include "platform/interruption.h"

namespace qxview {
namespace {

enum class WhichValues { kAll, kFirst, kLast };

struct FieldsOptions {
  ReadingOptions reading;
  std::vector<std::string> keys;
  RecordFormat format = RecordFormat::kCsv;
  WhichValues values = WhichValues::kAll;
  std::string separator = ",";
  bool noHeader = false;
  TimeForm time = TimeForm::kUtc;
};

class FieldColumns {
 public:
  FieldColumns(const FieldsOptions& options, Output& out)
      : options_(options), time_(options.time), writer_(out, options.format, Names(options)) {
    std::string wrong;
    for (const std::string& key : options.keys) asked_.push_back(query_.Ask(key, &wrong));
  }

  void PutHeader() {
    if (!options_.noHeader) writer_.PutHeader();
  }

  KeyQuery& Query() { return query_; }

  void Put(const CaptureFrame& frame, const PacketTimes& times) {
    if (options_.reading.prefixFile) writer_.PutText(frame.file);
    for (const int32_t asked : asked_) {
      const std::vector<AskedValue>& values = query_.ValuesOf(asked);
      if (options_.values == WhichValues::kAll) {
        items_.clear();
        for (const AskedValue& value : values) items_.push_back(ItemOf(value, times));
        writer_.PutItems(items_, options_.separator);
      } else if (values.empty()) {
        writer_.PutNothing();
      } else {
        PutOne(ItemOf(options_.values == WhichValues::kFirst ? values.front() : values.back(), times));
      }
    }
    writer_.EndRecord();
  }

 private:
  static std::vector<std::string> Names(const FieldsOptions& options) {
    std::vector<std::string> names = options.keys;
    if (options.reading.prefixFile) names.insert(names.begin(), "file");
    return names;
  }
  // A line that only says that something is there is its text.
  RecordWriter::Item ItemOf(const AskedValue& value, const PacketTimes& times) {
    switch (value.kind) {
      case AskedKind::kNumber:
      case AskedKind::kSigned: return {TextOfValue(value), true};
      case AskedKind::kText: return {ToUtf8(value.text), false};
      case AskedKind::kNone: return {ToUtf8(value.line), false};
      case AskedKind::kTime: break;
    }
    char text[ListTime::kSize];
    const int32_t length = time_.Format(times, times.now % 1000 == 0 ? 6 : 9, text);
    return {std::string(text, static_cast<size_t>(length)), false};
  }
  void PutOne(const RecordWriter::Item& item) {
    if (item.isNumber) {
      writer_.PutNumber(item.text);
    } else {
      writer_.PutText(item.text);
    }
  }

  const FieldsOptions& options_;
  ListTime time_;
  RecordWriter writer_;
  KeyQuery query_;
  std::vector<int32_t> asked_;
  std::vector<RecordWriter::Item> items_;
};

int Fields(const FieldsOptions& options) {
  if (options.keys.empty()) return Tell("fields: -e KEY is missing: what the columns show"), kUsage;
  auto out = std::make_unique<Output>();
  FieldColumns first(options, *out);
  first.PutHeader();
  if (const std::string doubt = first.Query().DoubtfulKeys(); !doubt.empty()) Tell("fields: note: " + doubt);
  const int status = ForEachRun(options.reading, [&](PacketRun& captured) {
    std::vector<std::unique_ptr<FieldColumns>> more;   // one a further thread
    captured.ForEachWritten(*out, [&](PacketRun& run, Output& to) -> PacketRun::Handler {
      const bool isFirst = &to == out.get();
      if (!isFirst) more.push_back(std::make_unique<FieldColumns>(options, to));
      FieldColumns& columns = isFirst ? first : *more.back();
      run.AskPackets(&columns.Query());
      return [&](const FrameRecord*, const CaptureFrame& frame, int32_t) {
        columns.Put(frame, run.Times());
        if (options.reading.flushEachPacket) to.Flush();
        return !to.Failed();
      };
    });
    return !out->Failed();
  });
  out->Flush();
  return out->Failed() ? OutputFault() : status;
}

}  // namespace

void AddFieldsCommand(CommandLine* line) {
  auto options = std::make_shared<FieldsOptions>();
  Command& command = line->Add("fields", "values of fields as columns, a line a packet");
  AddReadingOptions(&command, &options->reading);
  AddPrefixOption(&command, &options->reading);
  command.AddOption("-e", "KEY", "a column, may be repeated; qxview protocols --fields lists the keys",
                    [options](const std::string& value, std::string* wrong) {
                      KeyQuery query;
                      if (query.Ask(value, wrong) < 0) return false;
                      constexpr size_t kMostColumns = 64;
                      *wrong = "there are 64 columns already";
                      options->keys.push_back(value);
                      return options->keys.size() <= kMostColumns;
                    });
  command.AddOption("--format", "FORMAT", "csv, tsv or json (an object a line)",
                    [options](const std::string& value, std::string* wrong) {
                      return TakeRecordFormat(value, &options->format, wrong);
                    });
  command.AddChoice<WhichValues>("--values", "WHICH", "of a key that stands several times in a packet: all, first or last",
                                 {{"all", WhichValues::kAll}, {"first", WhichValues::kFirst}, {"last", WhichValues::kLast}},
                                 &options->values);
  command.AddText("--separator", "TEXT", "between several values of a key, a comma if not said", &options->separator);
  command.AddFlag("--no-header", "without the line of the columns' names", &options->noHeader);
  AddTimeOption(&command, &options->time);
  command.SetExamples(
      "Keys of the packet itself: frame.number, frame.time (in the form of -t), frame.length, frame.captured,\n"
      "frame.source, frame.destination, frame.protocol, frame.summary; of the conversation frame.source_address,\n"
      "frame.destination_address, frame.source_port, frame.destination_port; frame.protocols (eth:ip:udp:dns).\n"
      "Examples:\n"
      "  qxview fields capture.pcap -e frame.number -e ip.addr -e dns.qry.name -Y dns\n"
      "  qxview fields capture.pcap -e frame.time -e tcp.srcport --format json --values first");
  command.SetAction([options] {
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Fields(*options) : status;
  });
}

}  // namespace qxview
