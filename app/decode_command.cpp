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
  const bool asText = options.format == Format::kText, asJson = options.format == Format::kJson;
  const int status = ForEachRun(options.reading, [&](PacketRun& captured) {
    captured.ShowNotes(options.time);
    captured.ForEachWritten(*out, [&](PacketRun& run, Output& to) -> PacketRun::Handler {
      Session& session = run.GetSession();
      const bool lists = asJson && options.keys;
      if (lists) run.ListPackets();
      if ((options.keys || !options.shape.only.empty()) && !KeepFacts(&session.Context(), true)) hasMemory = false;
      if (asText) session.SetOutput(kSaveMode, to.File());
      if (options.reading.prefixFile && !asJson) run.PrefixLines(&to);
      return [&, lists](const FrameRecord* record, const CaptureFrame& frame, int32_t handled) {
        if (!hasMemory) return false;
        if (asJson) {
          const char* const file = options.reading.prefixFile ? frame.file : nullptr;
          const PacketListing* const listing = lists ? &run.Listing() : nullptr;
          WriteJson(to, session, {record, frame.number, handled, options.bytes, options.keys, file, &options.shape, listing});
        } else if (!asText) {
          // Of several threads only the first packet's knows that nothing stands in front.
          if (first) first = false; else to.Put('\n');
          WriteTree(to, session, style);
          if (options.bytes) WriteFrameBytes(to, record);
        }
        if (options.reading.flushEachPacket) to.Flush();
        return !to.Failed();
      };
    });
    return hasMemory && !out->Failed();
  });
  out->Flush();
  if (!hasMemory) return Tell("no memory for keys"), kFileFault;
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
