#include <algorithm>
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
bool ShowMatch(PacketRun& run, const FindOptions& options, const std::string& file) {
  Session& session = run.GetSession();
  Output out;
  if (options.reading.prefixFile) out.SetLinePrefix(file);
  TreeStyle style;
  style.colors = UsesColor(options.reading.color);
  style.cells = IsTerminal(StandardOutputFile());
  style.markColumn = true;
  style.marked = session.Context().matchedLine ? session.Context().matchedLine : session.Context().foundLineHandle;
  WriteTree(out, session, style);
  out.Flush();
  return !out.Failed();
}

// Looks through one capture; whether the text was found, and its packet shown or *written false.
bool FindIn(PacketRun& run, const FindOptions& options, bool* written) {
  DecodeContext& context = run.GetSession().Context();
  StartFind(context, options);
  run.ShowNotes(TimeForm::kUtc);
  int32_t lastIndex = -1;
  std::string file;
  run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
    if (context.findFound && context.findLineIndex != lastIndex) {
      lastIndex = context.findLineIndex;
      file = frame.file;
      KeepMatch(run.GetSession(), record);
      return options.backward;
    }
    return true;
  });
  if (context.findFound) *written = ShowMatch(run, options, file);
  return context.findFound;
}

int Find(FindOptions options) {
  std::string text, missing;
  if (!ToLineText(options.text, &text, &missing)) {
    return Tell("find: no line holds " + QuoteValue(missing) + ": lines are in the characters of Windows-1252"),
           kNothingFound;
  }
  if (text.empty() || text.size() >= sizeof(DecodeContext::findText)) {
    return Tell("find: TEXT has 1 to 1023 characters"), kUsage;
  }
  options.text = text;
  // The last match is that of the last capture that has one.
  ReadingOptions& reading = options.reading;
  if (options.backward && !reading.merge) std::reverse(reading.files.begin(), reading.files.end());
  bool found = false, written = true;
  const int status = ForEachRun(reading, [&](PacketRun& run) {
    found = FindIn(run, options, &written);
    return !found;
  });
  if (!found) return status == kDone ? kNothingFound : status;
  return written ? status : OutputFault();
}

}  // namespace

void AddFindCommand(CommandLine* line) {
  auto options = std::make_shared<FindOptions>();
  Command& command = line->Add("find", "the first packet and line that hold a text");
  AddReadingOptions(&command, &options->reading);
  command.AddArgument("TEXT", "the text, case-sensitive", &options->text);
  AddPrefixOption(&command, &options->reading);
  command.AddFlag("--backward", "the last match instead of the first", &options->backward);
  command.SetExamples(
      "The found packet's tree is shown, its found line with '>' in column 0. Exit status 1: nothing found.\n"
      "Examples:\n"
      "  qxview find capture.pcap 'Name Does Not Exist'\n"
      "  qxview find --backward capture.pcap.gz 'RST'");
  command.SetAction([options] {
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Find(*options) : status;
  });
}

}  // namespace qxview
