#include <CLI/CLI.hpp>

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
  PacketRun run;
  if (!run.Open(options.reading)) return run.Status();
  // A named file is written beside its place and moved there when it is whole: what was there is never half lost.
  NewFile target;
  std::string message;
  if (!options.out.empty() && !target.Create(options.out, &message)) return Tell(message), kFileFault;
  auto out = options.out.empty() ? std::make_unique<Output>() : std::make_unique<Output>(target.Sink());
  run.GetSession().SetOutput(kPrintMode, out->File());
  const int status = run.ForEach([&](const FrameRecord*, const CaptureFrame&, int32_t) {
    if (options.reading.flushEachPacket) out->Flush();
    return !out->Failed();
  });
  out->Flush();
  if (options.out.empty()) return out->Failed() ? OutputFault() : status;
  return KeepFile(&target, options.out, !out->Failed(), status);
}

}  // namespace

void AddPrintCommand(CLI::App* app, int* status) {
  auto options = std::make_shared<PrintOptions>();
  CLI::App* command = app->add_subcommand("print", "the lines as the print mode writes them");
  AddReadingOptions(command, &options->reading);
  command->add_option("-o", options->out, "write to this file instead of standard output")->type_name("OUT");
  command->footer(
      "Examples:\n"
      "  qxview print capture.pcap | less\n"
      "  qxview print --packets 1-100 -o decode.txt capture.pcap\n"
      "  qxview print --set RangeFilterOn=1 --set RangeFilterStart=14 --set RangeFilterLength=20 capture.pcap");
  command->callback([options, status] {
    *status = FinishReadingOptions(&options->reading) ? Print(*options) : kUsage;
  });
}

}  // namespace qxview
