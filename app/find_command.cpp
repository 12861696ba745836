#include <algorithm>
#include <limits>

#include "app/colors.h"
#include "app/commands.h"
#include "app/packet_run.h"
#include "app/record_writer.h"
#include "app/tree_writer.h"
#include "core/line_facts.h"
#include "host/text.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct FindOptions {
  ReadingOptions reading;
  std::string text;
  bool backward = false;
  // All of these look through the finished tree.
  bool shown = false, ignoreCase = false, isPattern = false, noDumps = false;
  bool all = false, count = false, asJson = false;
  bool InTree() const { return shown || ignoreCase || isPattern || noDumps || all || count || asJson; }
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

// Looks through the lines as they stand in the finished tree.
class TreeSearch {
 public:
  TreeSearch(const FindOptions& options, Output& out) : options_(options), out_(out) {
    shape_.noDumps = options.noDumps;
  }

  // False with what is wrong with the text.
  bool Take(const std::string& text, std::string* wrong) {
    const bool isPlain = !options_.isPattern && !options_.ignoreCase;
    return isPlain ? literal_.Take(text, wrong)
                   : literal_.TakePattern(options_.isPattern ? text : Escaped(text), wrong, options_.ignoreCase);
  }
  uint64_t Hits() const { return hits_; }

  // Looks through one capture; false when no other one is looked for.
  bool SearchRun(PacketRun& run) {
    Session& session = run.GetSession();
    run.ShowNotes(TimeForm::kUtc);
    if (options_.all || options_.count) return CollectHits(run), true;
    TreeStyle style;
    style.colors = UsesColor(options_.reading.color);
    style.cells = IsTerminal(StandardOutputFile());
    style.markColumn = true;
    style.shape = shape_;
    std::string last;   // with --backward: the tree of the last packet that has the text, until the end
    run.ForEach([&](const FrameRecord*, const CaptureFrame& frame, int32_t) {
      const LineHandle line = SearchTree(session, frame);
      if (!line) return !out_.Failed();
      style.marked = line;
      if (!options_.backward) {
        if (options_.reading.prefixFile) out_.SetLinePrefix(frame.file);
        WriteTree(out_, session, style);
        return false;
      }
      last.clear();
      Output kept({&last, KeepText, nullptr, -1});
      WriteTree(kept, session, style);
      kept.Flush();
      return true;
    });
    out_.Put(last);
    return hits_ == 0;
  }

 private:
  static int32_t KeepText(void* text, const char* bytes, int32_t length) {
    static_cast<std::string*>(text)->append(bytes, static_cast<size_t>(length));
    return length;
  }
  static std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
      if (std::string_view("^$\\.*+?()[]{}|").find(c) != std::string_view::npos) escaped += '\\';
      escaped += c;
    }
    return escaped;
  }

  // All hits of a capture.
  void CollectHits(PacketRun& captured) {
    std::vector<std::unique_ptr<TreeSearch>> searches;   // one a thread
    captured.ForEachWritten(out_, [&](PacketRun& run, Output& to) -> PacketRun::Handler {
      searches.push_back(std::make_unique<TreeSearch>(options_, to));
      TreeSearch& search = *searches.back();
      search.literal_ = literal_;
      if (options_.all) KeepFacts(&run.GetSession().Context(), true);
      return [&](const FrameRecord*, const CaptureFrame& frame, int32_t) {
        search.SearchTree(run.GetSession(), frame);
        return !to.Failed();
      };
    });
    for (const auto& search : searches) hits_ += search->hits_;
  }

  // The packet's first line that holds the text, with --backward its last one; each of them is written with --all.
  LineHandle SearchTree(Session& session, const CaptureFrame& frame) {
    const ArenaTree& tree = session.Tree();
    LineHandle found = 0;
    for (LineHandle line = shape_.FirstUnder(session, 0, 0); line;) {
      AskedValue value;
      value.line = tree.TextOf(line);
      if (literal_.IsPattern() ? literal_.Matches(value) : literal_.IsIn(value)) {
        ++hits_;
        if (!found || options_.backward) found = line;
        if (options_.all) PutHit(session, frame, line);
        if (!options_.all && !options_.count && !options_.backward) return line;
      }
      if (const LineHandle child = shape_.FirstUnder(session, line, 1)) {
        line = child;
        continue;
      }
      LineHandle next;
      while (!(next = shape_.Next(session, line)) && (line = tree.Parent(line))) {}
      line = next;
    }
    return found;
  }

  void PutHit(Session& session, const CaptureFrame& frame, LineHandle line) {
    const ArenaTree& tree = session.Tree();
    int32_t kind, offset;
    uint32_t length;
    const ByteRange range = RangeOfLine(&session.Context(), &tree, line);
    SplitByteRange(&range, &kind, &offset, &length);
    const std::string_view text = tree.TextOf(line);
    if (!options_.asJson) {
      if (options_.reading.prefixFile) out_.SetLinePrefix(frame.file);
      out_.Put(std::to_string(frame.number) + "  [" + std::to_string(offset) + ", " + std::to_string(length) + "]  ");
      PutSafeText(out_, text);
      return out_.Put('\n');
    }
    char key[kKeySize] = "";
    const LineFact* fact = FactOf(&session.Context(), tree.RangeIndex(line));
    if (fact) FormatKey(&session.Context(), *fact, key, sizeof key);
    std::vector<std::string> names{"packet", "offset", "length", "key", "text"};
    if (options_.reading.prefixFile) names.insert(names.begin(), "file");
    RecordWriter writer(out_, RecordFormat::kJson, std::move(names));
    if (options_.reading.prefixFile) writer.PutText(frame.file);
    writer.PutNumber(std::to_string(frame.number));
    writer.PutNumber(std::to_string(offset));
    writer.PutNumber(std::to_string(length));
    if (key[0]) writer.PutText(key); else writer.PutNothing();
    writer.PutText(ToUtf8(text));
    writer.EndRecord();
  }

  const FindOptions& options_;
  Output& out_;
  Literal literal_;
  TreeShape shape_;
  uint64_t hits_ = 0;
};

int FindInTrees(const FindOptions& options) {
  auto out = std::make_unique<Output>();
  TreeSearch search(options, *out);
  std::string wrong;
  if (!search.Take(options.text, &wrong)) return Tell("find: " + wrong), options.isPattern ? kUsage : kNothingFound;
  int status = ForEachRun(options.reading, [&](PacketRun& run) { return search.SearchRun(run) && !out->Failed(); });
  if (options.count) out->Put(std::to_string(search.Hits()) + "\n");
  out->Flush();
  if (out->Failed()) return OutputFault();
  if (search.Hits() > 0) return status;
  Tell("find: no line holds " + QuoteValue(options.text));
  return status == kDone ? static_cast<int>(kNothingFound) : status;
}

int Find(FindOptions options) {
  // The last match is that of the last capture that has one.
  if (options.backward && !options.reading.merge) std::reverse(options.reading.files.begin(), options.reading.files.end());
  if (options.InTree()) return FindInTrees(options);
  std::string text, missing;
  const std::string given = options.text;
  if (!ToLineText(options.text, &text, &missing)) {
    return Tell("find: no line holds " + QuoteValue(missing) + ": lines are in the characters of Windows-1252"),
           kNothingFound;
  }
  if (text.empty() || text.size() >= sizeof(DecodeContext::findText)) {
    return Tell("find: TEXT has 1 to 1023 characters"), kUsage;
  }
  options.text = text;
  ReadingOptions& reading = options.reading;
  bool found = false, written = true;
  const int status = ForEachRun(reading, [&](PacketRun& run) {
    found = FindIn(run, options, &written);
    return !found;
  });
  if (!found) Tell("find: no line holds " + QuoteValue(given));
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
  command.AddFlag("--shown", "look through the finished tree, as decode shows it; so do the options below", &options->shown);
  command.AddFlag("-i", "whatever the case of the letters", &options->ignoreCase);
  command.AddFlag("-E", "TEXT is a regular expression", &options->isPattern);
  command.AddFlag("--no-dumps", "not in the rows of hex dumps", &options->noDumps);
  command.AddFlag("--all", "every hit in a line of its own: packet, bytes, text", &options->all);
  command.AddFlag("--hits", "how many lines hold it", &options->count);
  command.AddChoice<bool>("--format", "FORMAT", "of --all: text, or json (an object a line)", {{"text", false}, {"json", true}},
                          &options->asJson);
  command.SetExamples(
      "The found packet's tree is shown, its found line with '>' in column 0. Exit status 1: nothing found.\n"
      "Examples:\n"
      "  qxview find --all -i -E 'user|password' --no-dumps capture.pcap\n"
      "  qxview find capture.pcap 'Name Does Not Exist'\n"
      "  qxview find --backward capture.pcap.gz 'RST'");
  command.SetAction([options] {
    options->all |= options->asJson;
    const int status = FinishReadingOptions(&options->reading);
    return status == kDone ? Find(*options) : status;
  });
}

}  // namespace qxview
