#include <cstring>
#include <limits>
#include <vector>

#include "app/colors.h"
#include "app/commands.h"
#include "app/packet_run.h"
#include "app/tree_writer.h"
#include "host/text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct FindOptions {
  ReadingOptions reading;
  std::string text;
  bool backward = false;
};

// A record kept while the pass goes on: the packet of the last match so far, and which of its lines matched.
struct KeptRecord {
  std::vector<uint8_t> bytes;
  int32_t line = 0;
  void Keep(const FrameRecord* record, int32_t matchedLine) {
    const auto* from = reinterpret_cast<const uint8_t*>(record);
    bytes.assign(from, from + record->recordLength);
    line = matchedLine;
  }
  const FrameRecord* Get() const { return reinterpret_cast<const FrameRecord*>(bytes.data()); }
};

void StartFind(DecodeContext& context, const FindOptions& options) {
  CopyString(context.findText, sizeof context.findText, options.text.c_str());
  context.outputMode = kFindMode;
  context.findFound = 0;
  context.findLineIndex = -1;
  context.findLineLimit = std::numeric_limits<int32_t>::max();
  context.findLineCounter = 0;
  context.findBounded = options.backward ? 1 : 0;
}

// The line that was added as the `index`-th of its packet, if it reads as the found one; else the one that the display
// selected by its text.
LineHandle MatchedLine(Session& session, int32_t index) {
  const ArenaTree& tree = session.Tree();
  const DecodeContext& context = session.Context();
  for (LineHandle line = 1; line <= tree.LineCount(); ++line) {
    if (static_cast<int32_t>(tree.RangeIndex(line)) == index &&
        std::strncmp(tree.TextOf(line), context.findLine, sizeof context.findLine - 1) == 0) {
      return line;
    }
  }
  return context.foundLineHandle;
}

// The packet of the match, decoded again for display with its line marked; false when that could not be written.
bool ShowMatch(PacketRun& run, const KeptRecord& found, const FindOptions& options) {
  Session& session = run.GetSession();
  session.SetOutput(kDisplayMode, nullptr);
  session.Context().foundLineHandle = 0;
  session.Decode(found.Get());
  Output out;
  TreeStyle style;
  style.colors = UsesColor(options.reading.color);
  style.cells = IsTerminal(StandardOutputFile());
  style.markColumn = true;
  style.marked = MatchedLine(session, found.line);
  WriteTree(out, session, style);
  out.Flush();
  return !out.Failed();
}

int Find(FindOptions options) {
  PacketRun run;
  std::string text, missing;
  if (!Windows1252Of(options.text, &text, &missing)) {
    return Tell("find: no line holds " + QuoteValue(missing) + ": lines are in the characters of Windows-1252"),
           kNothingFound;
  }
  if (text.empty() || text.size() >= sizeof(DecodeContext::findText)) {
    return Tell("find: TEXT has 1 to 1023 characters"), kUsage;
  }
  options.text = text;
  if (!run.Open(options.reading)) return run.Status();
  DecodeContext& context = run.GetSession().Context();
  StartFind(context, options);
  KeptRecord found;
  int32_t lastIndex = -1, packetStart = 0;
  int status = run.ForEach([&](const FrameRecord* record, const CaptureFrame&, int32_t) {
    if (context.findFound && context.findLineIndex != lastIndex) {
      lastIndex = context.findLineIndex;
      found.Keep(record, lastIndex - packetStart);
      if (!options.backward) return false;
    }
    packetStart = context.findLineCounter;
    return true;
  });
  if (!context.findFound) return status == kDone ? kNothingFound : status;
  return ShowMatch(run, found, options) ? status : OutputFault();
}

}  // namespace

void AddFindCommand(CommandLine* line) {
  auto options = std::make_shared<FindOptions>();
  Command& command = line->Add("find", "the first packet and line that hold a text");
  AddReadingOptions(&command, &options->reading);
  command.AddArgument("TEXT", "the text, case-sensitive", &options->text);
  command.AddFlag("--backward", "the last match instead of the first", &options->backward);
  command.SetExamples(
      "The found packet's tree is shown, its found line with '>' in column 0. Exit status 1: nothing found.\n"
      "Examples:\n"
      "  qxview find capture.pcap 'Name Does Not Exist'\n"
      "  qxview find --backward capture.pcap.gz 'RST'");
  command.SetAction([options] {
    FinishReadingOptions(&options->reading);
    return Find(*options);
  });
}

}  // namespace qxview
