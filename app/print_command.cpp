#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "platform/new_file.h"

namespace qxview {
namespace {

struct PrintOptions {
  ReadingOptions reading;
  std::string out;
};

int Print(const PrintOptions& options) {
  // A named file is written beside its place and moved there when it is whole: what was there is never half lost.
  NewFile target;
  std::unique_ptr<Output> out;
  std::string message;
  const auto begin = [&] {
    if (!options.out.empty() && !target.Create(options.out, &message)) return Tell(message), false;
    out = options.out.empty() ? std::make_unique<Output>() : std::make_unique<Output>(target.Sink());
    if (!options.out.empty()) YieldTerminal(target.File());
    out->EscapeForTerminal();
    return true;
  };
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    if (!out && !begin()) return false;
    run.ShowNotes(TimeForm::kUtc);
    run.GetSession().SetOutput(kPrintMode, out->File());
    if (options.reading.prefixFile) run.PrefixLines(out.get());
    run.ForEach([&](const FrameRecord*, const CaptureFrame&, int32_t) {
      if (options.reading.flushEachPacket) out->Flush();
      return !out->Failed();
    });
    return !out->Failed();
  });
  if (!out) return message.empty() ? status : kFileFault;
  out->Flush();
  if (options.out.empty()) return out->Failed() ? OutputFault() : status;
  return KeepFile(&target, options.out, !out->Failed(), options.reading, status);
}

}  // namespace

void AddPrintCommand(CommandLine* line) {
  auto options = std::make_shared<PrintOptions>();
  Command& command = line->Add("print", "the lines as the print mode writes them");
  AddReadingOptions(&command, &options->reading);
  AddPrefixOption(&command, &options->reading);
  command.AddFileName("-o", "OUT", "write to this file instead of standard output", &options->out);
  command.SetExamples(
      "Examples:\n"
      "  qxview print capture.pcap | less\n"
      "  qxview print --packets 1-100 -o decode.txt capture.pcap\n"
      "  qxview print --set RangeFilterOn=1 --set RangeFilterStart=14 --set RangeFilterLength=20 capture.pcap");
  command.SetAction([options] {
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Print(*options) : status;
  });
}

}  // namespace qxview
