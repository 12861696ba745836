#include "app/commands.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/print_paper.h"
#include "platform/new_file.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct PrintOptions {
  ReadingOptions reading;
  std::string out;
  PaperOptions paper;
};

// What is wrong with the options together is told.
bool Settle(const PrintOptions& options) {
  const auto refuse = [](const std::string& text) { return Tell("print: " + text), false; };
  const PaperOptions& paper = options.paper;
  if (paper.pdf.empty()) {
    const std::string given = !paper.given.empty() ? paper.given : paper.landscape ? "--landscape" : paper.form.twoUp ? "--two-up" : "";
    return given.empty() || refuse(given + " is for pages: --pdf OUT");
  }
  if (!options.out.empty()) return refuse("-o and --pdf are two ways of printing: one at a time");
  if (options.reading.prefixFile) return refuse("the head of each page names the capture; --prefix-file is for text");
  if (paper.pdf == "-" && IsTerminal(StandardOutputFile())) {
    return refuse("a PDF file is nothing for a terminal: name a file, or lead standard output elsewhere");
  }
  return true;
}

int PrintText(const PrintOptions& options) {
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
  Command& command = line->Add("print", "the lines as the print mode writes them, as text or pages");
  AddReadingOptions(&command, &options->reading);
  AddPrefixOption(&command, &options->reading);
  command.AddFileName("-o", "OUT", "write to this file instead of standard output", &options->out);
  AddPaperOptions(&command, &options->paper);
  command.SetExamples(
      "Examples:\n"
      "  qxview print capture.pcap | less\n"
      "  qxview print --packets 1-100 -o decode.txt capture.pcap\n"
      "  qxview print --pdf decode.pdf --what list,tree -Y dns capture.pcap\n"
      "  qxview print --pdf list.pdf --what list --paper Letter --landscape --two-up capture.pcap\n"
      "  qxview print --set RangeFilterOn=1 --set RangeFilterStart=14 --set RangeFilterLength=20 capture.pcap");
  command.SetAction([options]() -> int {
    if (!Settle(*options)) return kUsage;
    const int status = FinishReadingOptions(&options->reading);
    if (status != kDone) return status;
    return options->paper.pdf.empty() ? PrintText(*options) : PrintOnPaper(options->reading, options->paper);
  });
}

}  // namespace qxview
