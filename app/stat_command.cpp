// Statistics of a capture as tables.
#include <cmath>
#include <cstdlib>

#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/statistics.h"
#include "host/text.h"
#include "platform/interruption.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct StatOptions {
  ReadingOptions reading;
  std::string what;
  std::string key;
  std::string sort;
  StatFormat format = StatFormat::kTable;
  size_t top = SIZE_MAX;
  int64_t interval = 1000000000;   // nanoseconds
};

constexpr const char* kKinds[] = {"protocols", "endpoints", "conversations", "ports", "rate",
                                  "values",    "lengths",   "dns",           "http",  "tcp"};

std::unique_ptr<Statistic> MakeStatistic(const StatOptions& options) {
  const std::string& what = options.what;
  if (what == "protocols") return MakeProtocols();
  if (what == "endpoints") return MakeEndpoints();
  if (what == "conversations") return MakeConversations();
  if (what == "ports") return MakePorts();
  if (what == "rate") return MakeRate(options.interval);
  if (what == "values") return MakeValues(options.key);
  if (what == "lengths") return MakeLengths();
  if (what == "dns") return MakeDns();
  if (what == "http") return MakeHttp();
  return MakeTcp();
}

// Checks what is counted, and takes the key of "values" off the files.
int FinishKind(StatOptions* options) {
  std::string kinds;
  bool isKnown = false;
  for (const char* kind : kKinds) {
    isKnown |= options->what == kind;
    kinds.append(kinds.empty() ? "" : ", ").append(kind);
  }
  if (!isKnown) return Tell("stat: " + QuoteValue(options->what) + " is not counted; WHAT is one of " + kinds), kUsage;
  if (options->what != "values") return kDone;
  std::vector<std::string>& files = options->reading.files;
  if (!files.empty()) {
    options->key = files.front();
    files.erase(files.begin());
  }
  KeyQuery query;
  std::string wrong;
  if (query.Ask(options->key, &wrong) < 0) return Tell("stat values: " + wrong), kUsage;
  if (const std::string doubt = query.DoubtfulKeys(); !doubt.empty()) Tell("stat values: note: " + doubt);
  if (files.empty() && options->reading.filesFrom.empty()) return Tell("stat values: FILE is missing behind the key"), kUsage;
  return kDone;
}

void Count(PacketRun& run, Statistic* statistic) {
  Session& session = run.GetSession();
  const auto take = [&](const FrameRecord* record, const CaptureFrame& frame) {
    const uint32_t length = WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record));
    const PacketTimes& times = run.Times();
    statistic->Take({session.Context().packet, record, frame.number, times.now, times.first, length, run.Host().Record()});
    return true;
  };
  if (statistic->WantsProtocols()) {
    run.ForEachProtocols([&](const FrameRecord* record, const CaptureFrame& frame, const std::vector<const char*>& protocols) {
      statistic->TakeProtocols(protocols);
      return take(record, frame);
    });
  } else if (KeyQuery* query = statistic->Query()) {
    run.ForEachAsked(*query, take);
  } else {
    session.DecodeHeadersOnly();
    run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t) { return take(record, frame); });
  }
}

int Stat(const StatOptions& options) {
  const std::unique_ptr<Statistic> statistic = MakeStatistic(options);
  std::shared_ptr<StandaloneHost> host;   // the last one that a packet came with, which names addresses in the end
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    statistic->LetHostGo();
    host = run.KeepHost();
    Count(run, statistic.get());
    return true;
  });
  auto out = std::make_unique<Output>();
  const char* columns = std::getenv("COLUMNS");
  int32_t width = columns ? std::atoi(columns) : 0;
  if (width <= 0) width = IsTerminal(StandardOutputFile()) ? OutputTerminalSize().columns : 0;
  bool isFirst = true, isSorted = options.sort.empty();
  for (StatTable& table : statistic->Tables()) {
    if (!options.sort.empty() && table.Has(options.sort)) {
      table.Sort(options.sort);
      isSorted = true;
    }
    table.Keep(options.top);
    if (!isFirst && options.format != StatFormat::kJson) out->Put('\n');
    isFirst = false;
    table.Write(*out, options.format, width);
  }
  out->Flush();
  if (!isSorted) Tell("stat: --sort " + QuoteValue(options.sort) + ": there is no such column; those of --format csv are meant");
  if (out->Failed()) return OutputFault();
  return isSorted ? status : std::max<int>(status, kUsage);
}

}  // namespace

void AddStatCommand(CommandLine* line) {
  auto options = std::make_shared<StatOptions>();
  Command& command = line->Add("stat", "statistics of a capture as tables");
  command.AddArgument("WHAT",
                      "protocols, endpoints, conversations, ports, rate, lengths, dns, http, tcp; or values KEY: how often "
                      "a field has each of its values",
                      &options->what);
  AddReadingOptions(&command, &options->reading);
  command.AddChoice<StatFormat>("--format", "FORMAT", "table, json (an object a row) or csv",
                                {{"table", StatFormat::kTable}, {"json", StatFormat::kJson}, {"csv", StatFormat::kCsv}},
                                &options->format);
  command.AddText("--sort", "COLUMN", "by this column, as --format csv names it", &options->sort);
  command.AddNumber("--top", "N", "the first N rows", 1, UINT32_MAX, &options->top);
  command.AddOption("--interval", "SECONDS", "of rate; 1 if not said, down to 0.000001",
                    [options](const std::string& value, std::string* wrong) {
                      const Quantity seconds = ParseQuantity(value);
                      constexpr double kMost = 1e9;
                      *wrong = "a number of seconds from 0.000001 is wanted";
                      if (!seconds.here || seconds.real < 1e-6 || seconds.real > kMost) return false;
                      options->interval = std::llround(seconds.real * 1e9);
                      return true;
                    });
  command.SetExamples(
      "Examples:\n"
      "  qxview stat conversations capture.pcap --sort bytes --top 10\n"
      "  qxview stat rate capture.pcap --interval 0.1 -Y 'tcp.port == 443' --format csv\n"
      "  qxview stat values dns.qry.name capture.pcap");
  command.SetAction([options] {
    int status = FinishKind(options.get());
    if (status == kDone) status = FinishReadingOptions(&options->reading);
    return status == kDone ? Stat(*options) : status;
  });
}

}  // namespace qxview
