#include "app/commands.h"
#include "app/packet_run.h"
#include "app/save_format.h"
#include "files/capture_buffer.h"
#include "files/packet_writer.h"
#include "host/text.h"
#include "host/time_text.h"
#include "platform/existing_file.h"
#include "platform/interruption.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct SaveOptions {
  ReadingOptions reading;
  std::string out, name;
  SaveFormat format = SaveFormat::kByName;
  bool append = false;
  int32_t partialBytes = -1;
  bool ToStandardOutput() const { return out == "-"; }
};

// The format by the name's ending; false, told, for options that do not go with it.
bool SettleFormat(SaveOptions* options) {
  const auto refuse = [](const std::string& text) { return Tell("save: " + text), false; };
  if (options->format == SaveFormat::kByName && options->append) options->format = SaveFormat::kCaptureBuffer;
  if (options->format == SaveFormat::kByName) {
    if (const char* ending = CompressedEnding(options->out)) {
      return refuse("what is saved is not compressed; for a name that ends in " + std::string(ending) +
                    " write to standard output: qxview save --format pcap FILE - | gzip >" + QuoteValue(options->out));
    }
    options->format = FormatOfName(options->out);
    if (options->format == SaveFormat::kByName) options->format = SaveFormat::kCaptureBuffer;
  }
  if (options->ToStandardOutput() && IsTerminal(StandardOutputFile())) {
    return refuse("a capture is nothing for a terminal: name a file, or lead standard output elsewhere");
  }
  if (options->ToStandardOutput() && options->append) return refuse("--append needs a file to add to");
  if (options->format == SaveFormat::kCaptureBuffer) return true;
  if (options->append) {
    return refuse("--append adds to capture buffer files (BFR) alone; several captures become one file when all are "
                  "named: qxview save FILE... OUT");
  }
  if (!options->name.empty()) return refuse("--name: only capture buffer files (BFR) keep a name");
  return true;
}

// The code's message on standard error; the exit status for it.
int TellResult(const std::string& file, SaveResult result, std::string why) {
  if (why.starts_with(file + ": ")) why.erase(0, file.size() + 2);
  char text[600] = "";
  if (const SaveMessage message = SaveResultMessage(result); message.text) {
    std::snprintf(text, sizeof text, message.text, file.c_str());
  }
  for (char* at = text; *at; ++at) *at = *at == '\n' ? ' ' : *at;
  Tell(file + ": " + text + (why.empty() ? "" : " (" + why + ")"));
  return kFileFault;
}

// Where a save writes: standard output, a new file that is moved into its place at the end, or the end of an existing one,
// which is cut back to what it was when the save fails.
class SaveTarget {
 public:
  SaveResult Open(const SaveOptions& options, std::string* why) {
    append_ = options.append;
    toStandardOutput_ = options.ToStandardOutput();
    if (toStandardOutput_) return kSaved;
    if (!append_) return fresh_.Create(options.out, why) ? kSaved : kCannotOpenForWriting;
    for (const std::string& file : options.reading.files) {
      // Reading would follow the growing file for as long as the disk has room.
      if (IsSameFile(file, options.out)) return *why = "it is the file that is read", kCannotOpenForAppending;
    }
    return existing_.Open(options.out, why) ? kSaved : kCannotOpenForAppending;
  }
  OutputSink Sink() const { return toStandardOutput_ ? FileSink(StandardOutputFile()) : fresh_.Sink(); }
  BufferFile File() {
    return append_ ? existing_.File()
                   : BufferFile{this, nullptr, [](void* target, const uint8_t* bytes, int32_t length) {
                       const OutputSink sink = static_cast<SaveTarget*>(target)->Sink();
                       return sink.write(sink.handle, reinterpret_cast<const char*>(bytes), length);
                     }};
  }
  bool Replaces() const { return !toStandardOutput_ && fresh_.Replaces(); }
  bool Keep(std::string* why) {
    return toStandardOutput_ || (append_ ? existing_.Keep(why) : fresh_.Keep(why));
  }

 private:
  bool append_ = false, toStandardOutput_ = false;
  NewFile fresh_;
  ExistingFile existing_;
};

// One save of all captures: into a capture buffer file, or through the writer of another kind of file.
class SaveJob {
 public:
  explicit SaveJob(const SaveOptions& options)
      : options_(options), shown_(options.ToStandardOutput() ? "standard output" : options.out) {}

  int Run() {
    const ReadingOptions& reading = options_.reading;
    const int status = ForEachRun(reading, [&](PacketRun& run) {
      // The target is opened once there is something to read.
      if (!begun_) Begin();
      begun_ = true;
      if (result_ == kSaved) SaveCapture(run);
      return result_ == kSaved;
    });
    SetIdleAction(nullptr, nullptr);
    return begun_ ? End(status) : status;
  }

 private:
  void Begin() {
    result_ = target_.Open(options_, &why_);
    if (result_ != kSaved) return;
    if (options_.format == SaveFormat::kPcap) writer_ = MakePcapWriter(target_.Sink());
    if (options_.format == SaveFormat::kPcapng) writer_ = MakePcapngWriter(target_.Sink(), options_.reading.merge);
    if (!writer_) BeginBuffer();
    if (options_.ToStandardOutput()) SetIdleAction([](void* job) { static_cast<SaveJob*>(job)->Flush(); }, this);
  }

  // Writes what is held back: whoever reads along sees it while input is waited for.
  void Flush() {
    if (writer_) writer_->Flush();
    if (!writer_ && result_ == kSaved) result_ = buffer_.Finish();
  }

  void BeginBuffer() {
    const int64_t now = CurrentTime();
    char localTime[kAscTimeSize];
    FormatAscTime(now + LocalOffset(now), localTime);
    SaveRequest request{};
    request.file = target_.File();
    request.append = options_.append;
    request.partial = options_.partialBytes >= 0;
    request.partialBytes = static_cast<uint16_t>(options_.partialBytes);
    request.name = options_.name.c_str();
    request.localTime = localTime;
    request.firstNumber = 1;
    result_ = buffer_.Begin(request);
    if (result_ != kSaved) why_ = WriteFailure();
    if (result_ == kHeaderWriteFailed && why_.empty()) why_ = "out of memory";
  }

  void SaveCapture(PacketRun& run) {
    const bool flushes = options_.reading.flushEachPacket;
    if (!writer_) {
      run.ForEachRecord([&](const FrameRecord* record, const CaptureFrame&) {
        result_ = buffer_.Add(record);
        if (flushes) Flush();
        return result_ == kSaved;
      });
      return;
    }
    writer_->BeginCapture();
    const uint32_t most = options_.partialBytes >= 0 ? static_cast<uint32_t>(options_.partialBytes) : UINT32_MAX;
    run.ForEachFrame([&](const CaptureFrame& frame) {
      if (!writer_->Add(frame, most)) result_ = kBufferWriteFailed;
      if (flushes) Flush();
      return result_ == kSaved;
    });
  }

  int End(int status) {
    if (result_ == kSaved && (writer_ ? writer_->Written() : buffer_.Written()) == 0) result_ = kNoPackets;
    if (result_ == kSaved && writer_ && !writer_->Finish()) result_ = kLastWriteFailed;
    if (result_ == kSaved && !writer_) result_ = buffer_.Finish();
    if (result_ == kSaved && MayLackItsEnd(options_.reading, status) && target_.Replaces()) {
      return Tell(shown_ + ": stays as it was"), status;
    }
    if (result_ != kSaved && writer_ && !writer_->Message().empty()) return Tell(writer_->Message()), kFileFault;
    if (result_ == kBufferWriteFailed || result_ == kLastWriteFailed) why_ = WriteFailure();
    if (result_ == kSaved && !target_.Keep(&why_)) result_ = kLastWriteFailed;
    if (result_ != kSaved) return TellResult(shown_, result_, why_);
    if (const uint64_t lost = writer_ ? writer_->LostComments() : 0) {
      Tell(shown_ + ": pcap keeps no comments, and " + std::to_string(lost) + (lost == 1 ? " was" : " were") +
           " left out: --format pcapng");
    }
    return status;
  }

  const SaveOptions& options_;
  const std::string shown_;
  SaveTarget target_;
  CaptureBufferWriter buffer_;
  std::unique_ptr<PacketWriter> writer_;   // null: into the capture buffer file
  SaveResult result_ = kSaved;
  std::string why_;
  bool begun_ = false;
};

}  // namespace

void AddSaveCommand(CommandLine* line) {
  auto options = std::make_shared<SaveOptions>();
  Command& command = line->Add("save", "packets to a capture file: BFR, pcap or pcapng");
  AddReadingOptions(&command, &options->reading);
  command.AddArgument("OUT", "the capture file, - for standard output", &options->out);
  AddSaveFormat(&command, "pcap, pcapng or bfr (capture buffer file); else by the name's ending, bfr when it has none of these",
                &options->format);
  command.AddFlag("--append", "add the packets to the end of an existing capture buffer file", &options->append);
  command.AddNumber("--partial", "BYTES", "cut packets to this many bytes", 0, 65535, &options->partialBytes);
  command.AddOption("--name", "TEXT", "the name kept in a capture buffer file, at most 260 characters",
                    [options](const std::string& value, std::string* wrong) {
                      *wrong = "a text of at most 260 characters is wanted";
                      options->name = value;
                      return value.size() <= kLongestBufferName;
                    });
  command.SetExamples(
      "Examples:\n"
      "  qxview save capture.pcap packets.bfr\n"
      "  qxview save --format pcapng --merge eth0.pcap eth1.pcap both.pcapng\n"
      "  qxview save --format pcap -f 'port 53' capture.pcapng.gz - | tcpdump -r -\n"
      "  qxview save --append --packets 10-20 --partial 64 more.pcapng packets.bfr");
  command.SetAction([options] {
    if (!SettleFormat(options.get())) return static_cast<int>(kUsage);
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? SaveJob(*options).Run() : status;
  });
}

}  // namespace qxview
