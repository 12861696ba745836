#include "app/commands.h"
#include "app/packet_run.h"
#include "files/capture_buffer.h"
#include "host/time_text.h"
#include "platform/existing_file.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct SaveOptions {
  ReadingOptions reading;
  std::string out, name;
  bool append = false;
  int32_t partialBytes = -1;
};

// The code's message on standard error; the exit status for it.
int TellResult(const std::string& file, SaveResult result, const std::string& why) {
  char text[600] = "";
  if (const SaveMessage message = SaveResultMessage(result); message.text) {
    std::snprintf(text, sizeof text, message.text, file.c_str());
  }
  for (char* at = text; *at; ++at) *at = *at == '\n' ? ' ' : *at;
  Tell(file + ": " + text + (why.empty() ? "" : " (" + why + ")"));
  return kFileFault;
}

// Where a save writes: a new file that is moved into its place at the end, or the end of an existing one, which is cut
// back to what it was when the save fails.
class SaveTarget {
 public:
  SaveResult Open(const SaveOptions& options, std::string* why) {
    append_ = options.append;
    if (append_ && IsSameFile(options.reading.file, options.out)) {
      // Reading would follow the growing file for as long as the disk has room.
      return *why = "it is the file that is read", kCannotOpenForAppending;
    }
    if (!append_) return fresh_.Create(options.out, why) ? kSaved : kCannotOpenForWriting;
    return existing_.Open(options.out, why) ? kSaved : kCannotOpenForAppending;
  }
  BufferFile File() {
    return append_ ? existing_.File()
                   : BufferFile{this, nullptr, [](void* target, const uint8_t* bytes, int32_t length) {
                       const OutputSink sink = static_cast<SaveTarget*>(target)->fresh_.Sink();
                       return sink.write(sink.handle, reinterpret_cast<const char*>(bytes), length);
                     }};
  }
  bool Replaces() const { return fresh_.Replaces(); }
  bool Keep(std::string* why) { return append_ ? existing_.Keep(why) : fresh_.Keep(why); }

 private:
  bool append_ = false;
  NewFile fresh_;
  ExistingFile existing_;
};

int Save(const SaveOptions& options) {
  std::string why;
  PacketRun run;
  if (!run.Open(options.reading)) return run.Status();
  SaveTarget target;
  SaveResult result = target.Open(options, &why);
  if (result != kSaved) return TellResult(options.out, result, why);

  const int64_t now = CurrentTime();
  char localTime[kAscTimeSize];
  FormatAscTime(now + LocalOffset(now), localTime);
  SaveRequest request{};
  request.file = target.File();
  request.append = options.append;
  request.partial = options.partialBytes >= 0;
  request.partialBytes = static_cast<uint16_t>(options.partialBytes);
  request.name = options.name.c_str();
  request.localTime = localTime;
  request.firstNumber = 1;
  CaptureBufferWriter writer;
  result = writer.Begin(request);
  if (result != kSaved) return TellResult(options.out, result, WriteFailure());
  const int status = run.ForEachRecord([&](const FrameRecord* record, const CaptureFrame&) {
    result = writer.Add(record);
    return result == kSaved;
  });
  if (result == kSaved && writer.Written() == 0) result = kNoPackets;
  if (result == kSaved) result = writer.Finish();
  if (result == kSaved && status == kFileFault && target.Replaces()) {
    return Tell(options.out + ": stays as it was"), status;
  }
  if (result == kBufferWriteFailed || result == kLastWriteFailed) why = WriteFailure();
  if (result == kSaved && !target.Keep(&why)) result = kLastWriteFailed;
  return result == kSaved ? status : TellResult(options.out, result, why);
}

}  // namespace

void AddSaveCommand(CommandLine* line) {
  auto options = std::make_shared<SaveOptions>();
  Command& command = line->Add("save", "packets to a capture buffer file");
  AddReadingOptions(&command, &options->reading);
  command.AddArgument("OUT", "the capture buffer file", &options->out);
  command.AddFlag("--append", "add the packets to the end of an existing file", &options->append);
  command.AddNumber("--partial", "BYTES", "cut packets to this many bytes", 0, 65535, &options->partialBytes);
  command.AddOption("--name", "TEXT", "the name kept in the file, at most 260 characters",
                    [options](const std::string& value, std::string* wrong) {
                      *wrong = "a text of at most 260 characters is wanted";
                      options->name = value;
                      return value.size() <= kLongestBufferName;
                    });
  command.SetExamples(
      "Examples:\n"
      "  qxview save capture.pcap packets.bfr\n"
      "  qxview save --append --packets 10-20 --partial 64 more.pcapng packets.bfr");
  command.SetAction([options] {
    FinishReadingOptions(&options->reading);
    return Save(*options);
  });
}

}  // namespace qxview
