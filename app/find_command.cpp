#include <limits>

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

void StartFind(DecodeContext& context, const FindOptions& options) {
  CopyString(context.findText, sizeof context.findText, options.text.c_str());
  context.outputMode = kFindMode;
  context.findFound = 0;
  context.findLineIndex = -1;
  context.findLineLimit = std::numeric_limits<int32_t>::max();
  context.findLineCounter = 0;
  context.findBounded = options.backward ? 1 : 0;
}

// Decodes the packet of a match for display, at once, while what packets before it left is as it was. The tree stays
// until the next match.
void KeepMatch(Session& session, const FrameRecord* record) {
  DecodeContext& context = session.Context();
  context.foundLineHandle = context.matchedLine = 0;
  session.SetOutput(kDisplayMode, nullptr);
  session.Decode(record);
  session.SetOutput(kFindMode, nullptr);
}

// The kept packet with its line marked; where a user library added the line in a way of its own, the one that reads so.
// False when it could not be written.
bool ShowMatch(PacketRun& run, const FindOptions& options) {
  Session& session = run.GetSession();
  Output out;
  TreeStyle style;
  style.colors = UsesColor(options.reading.color);
  style.cells = IsTerminal(StandardOutputFile());
  style.markColumn = true;
  style.marked = session.Context().matchedLine ? session.Context().matchedLine : session.Context().foundLineHandle;
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
  int32_t lastIndex = -1;
  int status = run.ForEach([&](const FrameRecord* record, const CaptureFrame&, int32_t) {
    if (context.findFound && context.findLineIndex != lastIndex) {
      lastIndex = context.findLineIndex;
      KeepMatch(run.GetSession(), record);
      return options.backward;
    }
    return true;
  });
  if (!context.findFound) return status == kDone ? kNothingFound : status;
  return ShowMatch(run, options) ? status : OutputFault();
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
