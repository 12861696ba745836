#include "app/print_paper.h"

#include <algorithm>
#include <charconv>

#include "app/commands.h"
#include "app/list_time.h"
#include "app/output.h"
#include "app/packet_run.h"
#include "app/shown_packet.h"
#include "app/tree_writer.h"
#include "host/text.h"
#include "platform/new_file.h"
#include "platform/pdf_writer.h"
#include "platform/platform.h"

namespace qxview {
namespace {

struct PaperSize {
  const char* name;
  double width, height;   // points
};
constexpr PaperSize kPaperSizes[] = {{"A4", 595.28, 841.89}, {"A3", 841.89, 1190.55}, {"A5", 419.53, 595.28},
                                     {"Letter", 612, 792},   {"Legal", 612, 1008},    {"Tabloid", 792, 1224}};
constexpr size_t kMostBookmark = 160;

// "tree,list".
bool TakeWhat(const std::string& value, PaperOptions* options, std::string* wrong) {
  *wrong = "tree, list, bytes or several of them with commas are wanted, or all";
  for (size_t at = 0; at <= value.size();) {
    const size_t end = std::min(value.find(',', at), value.size());
    const std::string word = value.substr(at, end - at);
    const bool all = word == "all";
    if (!all && word != "tree" && word != "list" && word != "bytes") return false;
    options->tree |= all || word == "tree";
    options->list |= all || word == "list";
    options->bytes |= all || word == "bytes";
    at = end + 1;
  }
  return true;
}

// Everything that is put becomes a text of its own.
class TextOutput {
 public:
  TextOutput() : out_(OutputSink{this,
                                 [](void* self, const char* bytes, int32_t length) {
                                   static_cast<TextOutput*>(self)->text_.append(bytes, static_cast<size_t>(length));
                                   return int32_t{1};
                                 },
                                 [](void* self, int64_t bytes) {
                                   std::string& text = static_cast<TextOutput*>(self)->text_;
                                   text.resize(text.size() - static_cast<size_t>(bytes));
                                   return int32_t{1};
                                 },
                                 -1}) {}
  Output& Out() { return out_; }
  // What was put since it was cleared.
  const std::string& Text() { return out_.Flush(), text_; }
  void Clear() { out_.Flush(), text_.clear(); }

 private:
  std::string text_;
  Output out_;
};

// The columns of the list, which are those of `qxview list`; on a narrow page the protocol is left to the summary.
struct ListCell {
  const char* title;
  int32_t width;   // 0: the rest
  bool isNumber, isForWide;
};
constexpr ListCell kListCells[] = {{"No.", 6, true, false},          {"Time", 10, true, false},
                                   {"Source", 17, false, false},     {"Destination", 17, false, false},
                                   {"Protocol", 9, false, true},     {"Length", 6, true, false},
                                   {"Summary", 0, false, false}};
constexpr int32_t kWideColumns = 120;

int32_t CellsOfUtf8(std::string_view text) {
  return static_cast<int32_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// *hang: the column where the last one begins.
template <typename CellText>
std::string ListRowOf(bool isWide, CellText&& textOf, int32_t* hang) {
  std::string row;
  for (size_t i = 0; i < std::size(kListCells); ++i) {
    const ListCell& cell = kListCells[i];
    if (cell.isForWide && !isWide) continue;
    const std::string text = textOf(i);
    const std::string fill(static_cast<size_t>(std::max(cell.width - CellsOfUtf8(text), 0)), ' ');
    if (i > 0) row += "  ";
    if (cell.width == 0) *hang = CellsOfUtf8(row);
    row += cell.isNumber ? fill + text : text + fill;
  }
  return row.erase(row.find_last_not_of(' ') + 1);
}

class PaperPrinter {
 public:
  PaperPrinter(const ReadingOptions& reading, const PaperOptions& options) : reading_(reading), options_(options) {
    if (!options.tree && !options.list && !options.bytes) options_.tree = true;
    if (options.landscape) std::swap(options_.form.width, options_.form.height);
  }

  int Print() {
    const int status = ForEachRun(reading_, [this](PacketRun& run) { return PrintRun(run); });
    if (!breaker_) return message_.empty() ? status : kFileFault;   // nothing could be read, or written
    breaker_->Finish();
    if (breaker_->Pages() == 0) breaker_->Put("No packets", RowKind::kTitle);
    const bool good = breaker_->Finish() && writer_->Finish();
    writer_ = nullptr;
    if (!ToStandardOutput()) return KeepFile(&target_, options_.pdf, good, reading_, status);
    if (!good) Tell("standard output: " + WriteFailure());
    return good ? status : kFileFault;
  }

 private:
  bool ToStandardOutput() const { return options_.pdf == "-"; }
  bool HasListAlone() const { return options_.list && !options_.tree && !options_.bytes; }

  bool Begin() {
    if (!ToStandardOutput() && !target_.Create(options_.pdf, &message_)) return Tell(message_), false;
    const OutputSink sink = ToStandardOutput() ? FileSink(StandardOutputFile()) : target_.Sink();
    writer_ = PdfWriter::Create(options_.form, sink, Title(), &message_);
    if (!writer_) return Tell(message_), false;
    const PageGrid grid = GridOf(options_.form, writer_->Cell());
    if (grid.columns < kLeastColumns || grid.rows < kLeastRows) {
      message_ = "a page has room for " + std::to_string(grid.columns) + " columns and " + std::to_string(grid.rows) +
                 " lines; " + std::to_string(kLeastColumns) + " and " + std::to_string(kLeastRows) +
                 " are the least: larger paper, a smaller font or margin";
      return Tell("print: " + message_), false;
    }
    isWide_ = grid.columns >= kWideColumns;
    breaker_ = std::make_unique<PageBreaker>(grid, [this](const Page& page) { return writer_->Put(page); });
    return true;
  }

  bool PrintRun(PacketRun& run) {
    if (!breaker_ && !Begin()) return false;
    Session& session = run.GetSession();
    ShownPacket packet(session, run.Host().Record());
    bool isFirst = true;
    if (options_.tree) {
      run.ShowNotes(TimeForm::kUtc);
      session.SetOutput(kPrintMode, lines_.Out().File());
    } else {
      session.DecodeHeadersOnly();
    }
    if (HasListAlone()) breaker_->SetColumnTitles(ListRowOf(isWide_, [](size_t i) { return kListCells[i].title; }, &hang_));
    run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
      if (isFirst) breaker_->BeginCapture(reading_.merge ? Title() : frame.file);
      isFirst = false;
      packet.Take(record, frame.number, !options_.tree);
      PutPacket(packet, run.Times(), record);
      return !breaker_->IsEnded();
    });
    return !breaker_->IsEnded();
  }

  std::string Title() const {
    std::string title;
    for (const std::string& file : reading_.files) title += (title.empty() ? "" : ", ") + file;
    return title;
  }

  void PutPacket(ShownPacket& packet, const PacketTimes& times, const FrameRecord* record) {
    const std::string lines = lines_.Text();   // before the packet's headers are read once more
    lines_.Clear();
    char time[ListTime::kSize] = "";
    if (times.now != 0) utc_.Format(times, record->nanoseconds % 1000 == 0 ? 6 : 9, time);
    const std::string number = std::to_string(packet.Number());
    const std::string summary = Shown(packet.Summary());
    breaker_->BeginPacket({packet.Number(), time[0] ? std::string(time) + " UTC" : "",
                           number + "  " + Shown(packet.Summary().substr(0, kMostBookmark))}, !HasListAlone());
    if (options_.list) PutListRow(packet, times, record, number, summary);
    if (options_.tree) PutTree(lines);
    if (options_.bytes) PutBytes(record, number);
  }

  void PutListRow(ShownPacket& packet, const PacketTimes& times, const FrameRecord* record, const std::string& number,
                  const std::string& summary) {
    char time[ListTime::kSize];
    relative_.Format(times, record->nanoseconds % 1000 == 0 ? 6 : 9, time);
    const std::string cells[] = {number, time, Shown(packet.Source()), Shown(packet.Destination()), Shown(packet.Protocol()),
                                 std::to_string(packet.Length()), summary};
    static_assert(std::size(cells) == std::size(kListCells));
    if (HasListAlone()) {
      const std::string row = ListRowOf(isWide_, [&](size_t i) { return cells[i]; }, &hang_);
      return breaker_->Put(row, RowKind::kLine, hang_);
    }
    std::string row = number;   // above a tree nothing stands below it in columns
    for (size_t i = 1; i < std::size(cells); ++i) row += (i == 3 ? " -> " : "  ") + cells[i];
    breaker_->Put(row, RowKind::kPacket);
  }

  void PutTree(std::string_view lines) {
    bool isFirst = !options_.list;
    while (!lines.empty()) {
      const size_t end = std::min(lines.find('\n'), lines.size());
      std::string_view line = lines.substr(0, end);
      lines.remove_prefix(std::min(end + 1, lines.size()));
      if (line.ends_with('\r')) line.remove_suffix(1);
      const bool isTitle = !line.starts_with(' ');
      breaker_->Put(Shown(line), isFirst ? RowKind::kPacket : isTitle ? RowKind::kTitle : RowKind::kLine);
      isFirst = false;
    }
  }

  void PutBytes(const FrameRecord* record, const std::string& number) {
    const bool isFirst = !options_.list && !options_.tree;
    breaker_->Put(isFirst ? "Packet " + number + ":" : "Bytes:", isFirst ? RowKind::kPacket : RowKind::kTitle);
    shown_.Clear();
    WriteFrameBytes(shown_.Out(), record);
    std::string_view rows = shown_.Text();
    for (size_t end; (end = rows.find('\n')) != rows.npos; rows.remove_prefix(end + 1)) {
      breaker_->Put("    " + std::string(rows.substr(0, end)), RowKind::kLine);
    }
  }

  // In UTF-8, without controls.
  std::string Shown(std::string_view text) {
    shown_.Clear();
    PutSafeText(shown_.Out(), text);
    return shown_.Text();
  }

  const ReadingOptions& reading_;
  PaperOptions options_;
  ListTime utc_{TimeForm::kUtc}, relative_{TimeForm::kRelative};
  int32_t hang_ = 0;
  bool isWide_ = false;
  std::string message_;
  NewFile target_;
  std::unique_ptr<PdfWriter> writer_;
  std::unique_ptr<PageBreaker> breaker_;
  TextOutput lines_, shown_;
};

bool TakePaper(const std::string& value, PaperOptions* options, std::string* wrong) {
  *wrong = "";
  for (const PaperSize& size : kPaperSizes) {
    *wrong += (wrong->empty() ? "" : ", ") + std::string(size.name);
    if (!EqualsIgnoringCase(value, size.name)) continue;
    options->form.width = size.width;
    options->form.height = size.height;
    return true;
  }
  *wrong += " are the sizes";
  return false;
}

bool TakePart(const std::string& value, double least, double most, double* number, std::string* wrong) {
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), *number);
  *wrong = "a number from " + std::to_string(static_cast<int>(least)) + " to " + std::to_string(static_cast<int>(most)) + " is wanted";
  return error == std::errc() && end == value.data() + value.size() && *number >= least && *number <= most;
}

}  // namespace

void AddPaperOptions(Command* command, PaperOptions* options) {
  command->AddFileName("--pdf", "OUT", "pages of a PDF file instead of text; - for standard output", &options->pdf);
  const auto add = [command, options](const char* name, const char* valueName, const char* about, auto take) {
    command->AddOption(name, valueName, about, [=](const std::string& value, std::string* wrong) {
      options->given = name;
      return take(value, options, wrong);
    });
  };
  add("--what", "PARTS", "of --pdf: tree, list, bytes, several of them with commas, or all; the tree unless told", TakeWhat);
  add("--paper", "SIZE", "A4 (unless told), A3, A5, Letter, Legal or Tabloid", TakePaper);
  add("--margin", "MM", "on each side; 12 unless told", [](const std::string& value, PaperOptions* to, std::string* wrong) {
    double millimetres = 0;
    const bool good = TakePart(value, 0, 100, &millimetres, wrong);
    to->form.margin = millimetres * kPointsPerMillimetre;
    return good;
  });
  add("--font-size", "PT", "of the lines; 9 unless told", [](const std::string& value, PaperOptions* to, std::string* wrong) {
    return TakePart(value, 3, 36, &to->form.fontSize, wrong);
  });
  command->AddFlag("--landscape", "pages that lie", &options->landscape);
  command->AddFlag("--two-up", "two pages on each sheet", &options->form.twoUp);
}

int PrintOnPaper(const ReadingOptions& reading, const PaperOptions& options) {
  return PaperPrinter(reading, options).Print();
}

}  // namespace qxview
