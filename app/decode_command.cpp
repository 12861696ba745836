#include "app/colors.h"
#include "app/commands.h"
#include "app/json_writer.h"
#include "app/packet_run.h"
#include "app/tree_writer.h"
#include "core/line_facts.h"
#include "platform/interruption.h"
#include "platform/platform.h"

namespace qxview {
namespace {

enum class Format { kTree, kText, kJson };

struct DecodeOptions {
  ReadingOptions reading;
  Format format = Format::kTree;
  TimeForm time = TimeForm::kUtc;
  bool ranges = false;
  bool keys = false;
  bool bytes = false;
  TreeShape shape;
};

int Decode(const DecodeOptions& options) {
  auto out = std::make_unique<Output>();
  if (options.format == Format::kText) out->EscapeForTerminal();
  TreeStyle style;
  style.colors = options.format == Format::kTree && UsesColor(options.reading.color);
  if (style.colors && IsTerminal(StandardOutputFile())) ResetColorsOnSignal();
  style.ranges = options.ranges;
  style.keys = options.keys;
  style.shape = options.shape;
  style.cells = IsTerminal(StandardOutputFile());
  bool first = true, hasMemory = true;
  const int status = ForEachRun(options.reading, [&](PacketRun& run) {
    Session& session = run.GetSession();
    hasMemory = (!options.keys && options.shape.only.empty()) || KeepFacts(&session.Context(), true);
    if (!hasMemory) return Tell("no memory for keys"), false;
    run.ShowNotes(options.time);
    if (options.format == Format::kText) session.SetOutput(kSaveMode, out->File());
    if (options.reading.prefixFile && options.format != Format::kJson) run.PrefixLines(out.get());
    run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t handled) {
      if (options.format == Format::kJson) {
        const char* const file = options.reading.prefixFile ? frame.file : nullptr;
        const QxHost* const host = options.keys ? run.Host().Record() : nullptr;
        WriteJson(*out, session, {record, frame.number, handled, options.bytes, options.keys, file, &options.shape, host});
      } else if (options.format == Format::kTree) {
        if (!first) out->Put('\n');
        first = false;
        WriteTree(*out, session, style);
        if (options.bytes) WriteFrameBytes(*out, record);
      }
      if (options.reading.flushEachPacket) out->Flush();
      return !out->Failed();
    });
    return !out->Failed();
  });
  out->Flush();
  if (!hasMemory) return kFileFault;
  return out->Failed() ? OutputFault() : status;
}

}  // namespace

void AddDecodeCommand(CommandLine* line) {
  auto options = std::make_shared<DecodeOptions>();
  Command& command = line->Add("decode", "the decode tree of every packet");
  AddReadingOptions(&command, &options->reading);
  AddPrefixOption(&command, &options->reading);
  command.AddChoice<Format>("--format", "FORMAT", "tree, text (as the save-as-text mode writes) or json",
                            {{"tree", Format::kTree}, {"text", Format::kText}, {"json", Format::kJson}},
                            &options->format);
  AddTimeOption(&command, &options->time);
  AddShapeOptions(&command, &options->shape);
  command.AddFlag("--ranges", "each line's byte range behind it (tree)", &options->ranges);
  command.AddFlag("--keys", "each line's key and value: behind it, in json as \"key\" and \"value\"", &options->keys);
  command.AddFlag("-x", "the frame's bytes: behind its tree, in json as \"bytes\"", &options->bytes);
  command.SetExamples(
      "Examples:\n"
      "  qxview decode capture.pcap\n"
      "  qxview decode --packets 3-9 --ranges -x capture.pcapng.gz\n"
      "  qxview decode -d tcp:8080=HTTP --format json capture.pcap\n"
      "  qxview decode --only http,tls --no-dumps -Y 'ip.addr == 192.0.2.1' capture.pcap\n"
      "  tcpdump -U -w - | qxview decode -");
  command.SetAction([options] {
    if (options->format == Format::kText && options->shape.IsUsed()) {
      return Tell("decode: --only, --depth and --no-dumps are for the formats tree and json; text is what the "
                  "save-as-text mode writes"), static_cast<int>(kUsage);
    }
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Decode(*options) : status;
  });
}

}  // namespace qxview
