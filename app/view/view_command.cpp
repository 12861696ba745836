// qxview view FILE: the packet view at a terminal.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "app/commands.h"
#include "app/packet_notes.h"
#include "app/shown_packet.h"
#include "app/view/remembered.h"
#include "app/view/screen.h"
#include "app/view/viewer.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct ViewOptions {
  ReadingOptions reading;
  std::string file, theme;
  TimeForm time = TimeForm::kRelative;
  bool givesTime = false, noMouse = false, isLive = false;
};

// What comes through a pipe, as far as it is there.
class PipeInput final : public CaptureInput {
 public:
  explicit PipeInput(int file) : file_(file) {}
  ~PipeInput() override {
    if (file_ != STDIN_FILENO) close(file_);
  }
  Given Take(uint8_t* out, size_t size, size_t* length) override {
    pollfd wait{file_, POLLIN, 0};
    if (poll(&wait, 1, 0) <= 0) return Given::kNothingNow;
    const ssize_t got = read(file_, out, size);
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) return Given::kNothingNow;
    if (got < 0) failure_ = std::strerror(errno);
    if (got <= 0) return Given::kEnd;
    *length = static_cast<size_t>(got);
    return Given::kSome;
  }
  std::string Failure() const override { return failure_; }

 private:
  int file_;
  std::string failure_;
};

bool TakeTheme(const std::string& word, Theme* theme) {
  static constexpr const char* kWords[] = {"auto", "dark", "light", "16", "none"};
  for (uint8_t i = 0; i < 5; ++i) {
    if (word == kWords[i]) return *theme = static_cast<Theme>(i), true;
  }
  return false;
}

CaptureParts PartsOf(const ReadingOptions& reading) {
  CaptureParts parts;
  parts.host = reading.host;
  parts.loader = PlatformLibraryLoader();
  parts.tell = [](Session& session, const QxHost* host, const FrameRecord* record, uint64_t number) {
    auto told = std::make_shared<ShownPacket>(session, host);
    told->Take(record, number);
    return told;
  };
  auto notes = std::make_shared<PacketNotes>(TimeForm::kUtc);
  parts.addNotes = [notes](const FrameRecord* record, const CaptureFrame& frame) {
    PacketTimes times;
    times.now = times.first = times.before = times.shownBefore = frame.nanoseconds;
    return notes->Add(record, frame, times);
  };
  return parts;
}

// A pipe is read while it is looked at; -1 for what can be read again and again.
int OpenPipe(const std::string& path) {
  if (path == "-") return STDIN_FILENO;
  struct stat about {};
  if (stat(path.c_str(), &about) != 0 || S_ISREG(about.st_mode) || S_ISDIR(about.st_mode)) return -1;
  return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

int ShowView(const ViewOptions& options) {
  Remembered remembered;
  remembered.Load();
  if (options.givesTime) remembered.time = options.time;
  if (!options.theme.empty()) remembered.theme = options.theme;
  Theme theme = Theme::kAuto;
  TakeTheme(remembered.theme, &theme);
  if (options.file == "-" && isatty(STDIN_FILENO)) return Tell("view: standard input is the terminal: which capture?"), kUsage;
  const int pipe = OpenPipe(options.file);
  std::unique_ptr<CaptureInput> input;
  if (pipe >= 0) input = std::make_unique<PipeInput>(pipe);
  std::string message;
  const auto capture = ViewedCapture::Open(options.file, std::move(input), PartsOf(options.reading), &message);
  if (!capture) return Tell(message), kFileFault;
  FilterFault fault;
  if (!capture->SetFilter(options.reading.where, &fault)) return Tell("--where: " + fault.message), kUsage;
  int endedBy = 0;
  {
    Screen screen;
    if (!screen.Open(theme, !options.noMouse, &message)) return Tell(message), kUsage;
    Viewer viewer(screen, *capture, remembered, pipe, options.isLive || pipe >= 0);
    endedBy = viewer.Run();
  }
  remembered.Save();
  if (endedBy) std::raise(endedBy);
  return kDone;
}

}  // namespace

void AddViewCommand(CommandLine* line) {
  auto options = std::make_shared<ViewOptions>();
  Command& command = line->Add("view", "packets on the screen: the list, the tree and the bytes, with keys and mouse");
  command.AddArgument("FILE", "pcap, pcapng or BFR file, compressed or not; - for standard input", &options->file);
  AddWhereOption(&command, &options->reading);
  AddDecodingOptions(&command, &options->reading);
  command.AddOption("-t", "FORM", "times of the list, as in qxview list; the key t changes them",
                    [options](const std::string& value, std::string* wrong) {
                      static constexpr const char* kForms[] = {"r", "d", "dd", "a", "u", "e", "i"};
                      for (int32_t i = 0; i < 7; ++i) {
                        if (value != kForms[i]) continue;
                        options->time = static_cast<TimeForm>(i);
                        return options->givesTime = true;
                      }
                      *wrong = "r, d, dd, a, u, e or i is wanted";
                      return false;
                    });
  command.AddOption("--theme", "THEME", "colours: auto, dark, light, 16 (those that every terminal has) or none",
                    [options](const std::string& value, std::string* wrong) {
                      Theme theme;
                      options->theme = value;
                      *wrong = "auto, dark, light, 16 or none is wanted";
                      return TakeTheme(value, &theme);
                    });
  command.AddFlag("--live", "the file is still written to: stay at its end until moved, as with a pipe", &options->isLive);
  command.AddFlag("--no-mouse", "leave the mouse to the terminal", &options->noMouse);
  command.SetExamples(
      "The key ? shows all keys; q leaves. qxview FILE at a terminal does the same.\n"
      "Examples:\n"
      "  qxview view capture.pcapng\n"
      "  qxview view -Y 'dns.qry.name contains \"example\"' capture.pcap.gz\n"
      "  qxview capture -i eth0 view\n"
      "  tcpdump -U -w - | qxview view -");
  command.SetAction([options] {
    options->reading.files = {options->file};
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? ShowView(*options) : status;
  });
  // A capture alone is looked at, where somebody sits at the terminal.
  line->SetDefault("view", [](const std::string& word) {
    struct stat about {};
    return !word.starts_with("-") && IsTerminal(StandardOutputFile()) && stat(word.c_str(), &about) == 0 && !S_ISDIR(about.st_mode);
  });
}

}  // namespace qxview
