// Live packets: to a file or a ring of files, to any of the commands that read captures, or to both.
#include <algorithm>
#include <charconv>

#include "app/capture_files.h"
#include "app/commands.h"
#include "app/output.h"
#include "app/progress.h"
#include "app/time_sums.h"
#include "host/text.h"
#include "platform/interruption.h"
#include "platform/live_capture.h"
#include "platform/platform.h"
#ifdef QXVIEW_HAS_SCREEN
#include "app/view/live_view.h"
#endif

namespace qxview {

void AddReadingCommands(CommandLine* line) {
  AddDecodeCommand(line);
  AddFieldsCommand(line);
  AddFindCommand(line);
  AddFollowCommand(line);
  AddListCommand(line);
  AddPrintCommand(line);
  AddProtocolsCommand(line);
  AddReportCommand(line);
  AddSaveCommand(line);
  AddStatCommand(line);
  AddXmlCommand(line);
}

namespace {

struct CaptureOptions {
  LiveOptions live;
  std::string out;
  SaveFormat format = SaveFormat::kByName;
  RingOptions ring;
  bool staysOut = false, lists = false;
  std::vector<std::string> command;
};

// Gives on what it reads, and saves it before.
class SavingReader final : public CaptureReader {
 public:
  SavingReader(std::unique_ptr<CaptureReader> reader, CaptureFiles* files)
      : CaptureReader(nullptr, reader->FileName().c_str()), reader_(std::move(reader)), files_(files) {}
  uint64_t FilePosition() const override { return reader_->FilePosition(); }
  uint64_t FileSize() const override { return 0; }

 protected:
  bool IsInterrupted() const override { return false; }
  ReadResult ReadFrame(CaptureFrame* frame) override {
    const ReadResult result = reader_->Next(frame);
    if (result == ReadResult::kDamaged) return DamagedAs(reader_->Message());
    if (result != ReadResult::kFrame) return result;
    const bool good = files_->Message().empty() && files_->Add(*frame);
    // A burst is written in large pieces; whoever reads along waits a second at most.
    if (good && TimeBetween(flushed_, frame->nanoseconds) < kFlushAfter) return result;
    flushed_ = frame->nanoseconds;
    return good && files_->Flush() ? result : DamagedAs(files_->Message());
  }

 private:
  static constexpr int64_t kFlushAfter = 1000000000;
  std::unique_ptr<CaptureReader> reader_;
  CaptureFiles* const files_;
  int64_t flushed_ = 0;
};

std::string Amount(uint64_t count, const char* one) {
  return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

void TellCounts(LiveCapture& capture) {
  for (const LiveCounts& counts : capture.Count()) {
    Tell(counts.interface + ": " + Amount(counts.captured, "packet") + " captured, " +
         std::to_string(counts.kernelDropped) + " dropped by the kernel" +
         (counts.kernelDropped > 0 ? " for want of buffer (-B)" : "") + ", " + std::to_string(counts.interfaceDropped) +
         " dropped by the interface");
  }
}

class CaptureJob {
 public:
  explicit CaptureJob(const CaptureOptions& options) : options_(options) {}

  int Run() {
    EndInputOnSignals();
    TakeSignalAsEnd();
    int status = options_.command.empty() ? Save() : RunCommand();
    if (files_ && !files_->Finish()) {
      if (status != kFileFault) Tell(files_->Message());
      status = kFileFault;
    }
    if (capture_) TellCounts(*capture_);
    return isMisuse_ ? kUsage : status;
  }

 private:
  // A command whose own words are wrong never gets here: nothing is captured and no file is made.
  std::unique_ptr<CaptureReader> MakeReader(std::string* message) {
    capture_ = LiveCapture::Open(options_.live, message, &isMisuse_);
    if (!capture_) return nullptr;
    if (!options_.out.empty()) {
      files_ = std::make_unique<CaptureFiles>(options_.out, options_.format, options_.ring, capture_->Interfaces());
      if (!files_->Begin()) return *message = files_->Message(), files_ = nullptr, capture_ = nullptr, nullptr;
    }
    Tell("capturing on " + capture_->Name());
    if (!files_) return capture_->MakeReader(nullptr);
    auto reader = capture_->MakeReader([files = files_.get()] { files->Flush(); });
    return std::make_unique<SavingReader>(std::move(reader), files_.get());
  }

  // What is shown of packets that are saved is how many bytes there are.
  int Save() {
    std::string message;
    const auto reader = MakeReader(&message);
    if (!reader) return Tell(message), kFileFault;
    Progress progress;
    CaptureFrame frame;
    ReadResult result;
    while ((result = reader->Next(&frame)) == ReadResult::kFrame) {
      if ((frame.number & 0xFF) == 0) progress.Show(reader->FilePosition(), 0);
    }
    EraseProgress();
    if (result == ReadResult::kDamaged) return Tell(reader->Message()), kFileFault;
    return kDone;
  }

  int RunCommand() {
    const LiveInput live{InterfaceNames(), [this](std::string* message) { return MakeReader(message); }};
    CommandLine line(&live);
    AddReadingCommands(&line);
    std::vector<std::string> words{"qxview"};
    words.insert(words.end(), options_.command.begin(), options_.command.end());
    return line.Run(words);
  }

  std::string InterfaceNames() const {
    std::string names;
    for (const std::string& name : options_.live.interfaces) names += (names.empty() ? "" : ", ") + name;
    return names.empty() ? "the network" : names;
  }

  const CaptureOptions& options_;
  std::unique_ptr<LiveCapture> capture_;
  std::unique_ptr<CaptureFiles> files_;
  bool isMisuse_ = false;
};

#ifdef QXVIEW_HAS_SCREEN
// What is looked at is a file that the packets are saved to.
int CaptureAndView(CaptureOptions options) {
  std::vector<std::string> words{"qxview", "view", "--live"};
  words.insert(words.end(), options.command.begin() + 1, options.command.end());
  options.command.clear();
  const bool isKept = !options.out.empty();
  std::string message;
  if (options.ring.IsUsed()) return Tell("capture: the view shows one file, not a ring of them"), kUsage;
  if (!isKept) options.out = MakeLiveFile(&message);
  if (options.out.empty()) return Tell(message), kFileFault;
  words.push_back(options.out);
  return ViewLive(options.out, isKept, [&] { return CaptureJob(options).Run(); }, [&words] {
    CommandLine line;
    AddViewCommand(&line);
    return line.Run(words);
  });
}
#endif

int ListInterfaces() {
  std::vector<LiveInterface> interfaces;
  std::string message;
  if (!LiveCapture::ListInterfaces(&interfaces, &message)) return Tell(message), kFileFault;
  size_t width = 0;
  for (const LiveInterface& interface : interfaces) width = std::max(width, interface.name.size());
  Output out;
  for (const LiveInterface& interface : interfaces) {
    std::string line = interface.name;
    line.resize(width + 2, ' ');
    line += interface.state;
    for (const std::string& address : interface.addresses) line += "  " + address;
    if (!interface.description.empty()) line += "  (" + interface.description + ")";
    out.Put(line + "\n");
  }
  out.Flush();
  return out.Failed() ? OutputFault() : kDone;
}

// What is wrong with the options together is told.
bool Settle(CaptureOptions* options) {
  const auto refuse = [](const std::string& text) { return Tell("capture: " + text), false; };
  options->live.promiscuous = !options->staysOut;
  const RingOptions& ring = options->ring;
  if ((ring.IsUsed() || ring.files > 0) && options->out.empty()) return refuse("a ring of files needs -w FILE");
  if (ring.files > 0 && !ring.IsUsed()) return refuse("--ring-files needs --ring-size or --ring-time, which end a file");
  if (options->out == "-" && ring.IsUsed()) return refuse("a ring of files needs names: -w FILE");
  if (options->out == "-" && !options->command.empty()) return refuse("-w - and a command both write to standard output");
  if (options->out == "-" && IsTerminal(StandardOutputFile())) {
    return refuse("a capture is nothing for a terminal: name a file, or lead standard output elsewhere");
  }
  if (const char* ending = CompressedEnding(options->out); ending && options->format == SaveFormat::kByName) {
    return refuse("what is saved is not compressed; for a name that ends in " + std::string(ending) +
                  " write to standard output: qxview capture -w - | gzip >" + QuoteValue(options->out));
  }
  if (options->format == SaveFormat::kByName) options->format = FormatOfName(options->out);
  if (options->format == SaveFormat::kByName) options->format = SaveFormat::kPcapng;
  if (options->out.empty() && options->command.empty()) options->command.push_back("list");
  return true;
}

// A number of bytes, also as 100k, 100M or 2G.
bool TakeBytes(const std::string& value, uint64_t* bytes, std::string* wrong) {
  *wrong = "a number of bytes is wanted, at least 1000; 500k, 100M and 2G are understood";
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), *bytes);
  const std::string_view unit(end, static_cast<size_t>(value.data() + value.size() - end));
  const uint64_t factor = unit.empty()                    ? 1
                          : EqualsIgnoringCase(unit, "k") ? 1000
                          : EqualsIgnoringCase(unit, "m") ? 1000000
                          : EqualsIgnoringCase(unit, "g") ? 1000000000
                                                          : 0;
  if (error != std::errc() || factor == 0 || *bytes > UINT64_MAX / factor) return false;
  *bytes *= factor;
  return *bytes >= 1000;
}

void AddOptions(Command* command, CaptureOptions* options) {
  LiveOptions& live = options->live;
  command->AddTexts("-i,--interface", "NAME", "the interface, may be repeated; any: all of them; else the first there is",
                    &live.interfaces);
  command->AddFlag("-D,--list-interfaces", "the interfaces that there are", &options->lists);
  command->AddFileName("-w,--write", "FILE", "save the packets; - for standard output. With a command, too, both are done",
                       &options->out);
  AddSaveFormat(command, "of -w: pcap, pcapng or bfr (capture buffer file); else by the name's ending, pcapng when it has none of these",
                &options->format);
  command->AddText("-f,--filter", "EXPR", "only packets that match a BPF expression; the kernel leaves out the others",
                   &live.filter);
  command->AddNumber("-c,--count", "N", "stop after N packets", 1, UINT64_MAX, &live.count);
  command->AddNumber("--duration", "SECONDS", "stop after so long", 1, 1000000000, &live.seconds);
  command->AddNumber("-s,--snaplen", "BYTES", "of each packet at most; 262144 unless told", 1, 262144, &live.snapLength);
  command->AddFlag("-p,--no-promiscuous", "only what is addressed to this machine", &options->staysOut);
  command->AddNumber("-B,--buffer", "MB", "of the kernel for packets that wait to be read; 16 unless told", 1, 2000,
                     &live.bufferMegabytes);
  command->AddOption("--ring-size", "BYTES", "begin a new file before one gets larger: 500k, 100M, 2G",
                     [options](const std::string& value, std::string* wrong) {
                       return TakeBytes(value, &options->ring.bytes, wrong);
                     });
  command->AddNumber("--ring-time", "SECONDS", "begin a new file after so long", 1, 1000000000, &options->ring.seconds);
  command->AddNumber("--ring-files", "N", "keep the newest N files; the oldest is removed", 1, 1000000, &options->ring.files);
  command->AddRest("COMMAND", "what to do with the packets, without FILE; list when nothing is said", &options->command);
}

}  // namespace

void AddCaptureCommand(CommandLine* line) {
  auto options = std::make_shared<CaptureOptions>();
  Command& command = line->Add("capture", "live packets: to a file, or to any of the other commands");
  AddOptions(&command, options.get());
  command.SetExamples(
      "Ctrl-C ends it, and what has arrived is kept. Files of a ring are numbered and dated: capture_00001_20261122183000.pcapng.\n\n"
      "Examples:\n"
      "  qxview capture -i eth0\n"
      "  qxview capture -i eth0 -w all.pcapng list -Y 'dns or tls'\n"
      "  qxview capture -i eth0 -f 'port 53' fields -e ip.src -e dns.qry.name\n"
      "  qxview capture -i eth0 -w ring.pcapng --ring-size 100M --ring-files 10\n"
      "  qxview capture -i any --duration 60 stat conversations\n"
      "  qxview capture -i eth0 view\n"
      "  sudo setcap cap_net_raw,cap_net_admin+ep /usr/bin/qxview");
  command.SetAction([options]() -> int {
    if (options->lists) return ListInterfaces();
    if (!Settle(options.get())) return kUsage;
#ifdef QXVIEW_HAS_SCREEN
    if (!options->command.empty() && options->command.front() == "view") return CaptureAndView(*options);
#endif
    return CaptureJob(*options).Run();
  });
}

}  // namespace qxview
