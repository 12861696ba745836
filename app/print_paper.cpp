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
#include "host/text_output.h"
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

// "tree,list".
bool TakeWhat(const std::string& value, PaperOptions* options, std::string* wrong) {
  *wrong = "tree, list, bytes or several of them with commas are wanted, or all";
  for (size_t at = 0; at <= value.size();) {
    const size_t end = std::min(value.find(',', at), value.size());
    const std::string word = value.substr(at, end - at);
    const bool all = word == "all";
    if (!all && word != "tree" && word != "list" && word != "bytes") return false;
    options->parts.tree |= all || word == "tree";
    options->parts.list |= all || word == "list";
    options->parts.bytes |= all || word == "bytes";
    at = end + 1;
  }
  return true;
}

class PaperPrinter {
 public:
  PaperPrinter(const ReadingOptions& reading, const PaperOptions& options) : reading_(reading), options_(options) {
    if (!options.parts.tree && !options.parts.list && !options.parts.bytes) options_.parts.tree = true;
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

  bool Begin() {
    if (!ToStandardOutput() && !target_.Create(options_.pdf, &message_)) return Tell(message_), false;
    const OutputSink sink = ToStandardOutput() ? FileSink(StandardOutputFile()) : target_.Sink();
    writer_ = PdfWriter::Create(options_.form, sink, Title(), &message_);
    if (!writer_) return Tell(message_), false;
    const PageGrid grid = GridOf(options_.form, writer_->Cell());
    if (!IsWorthPrinting(grid)) {
      message_ = "a page has room for " + std::to_string(grid.columns) + " columns and " + std::to_string(grid.rows) +
                 " lines; " + std::to_string(kLeastColumns) + " and " + std::to_string(kLeastRows) +
                 " are the least: larger paper, a smaller font or margin";
      return Tell("print: " + message_), false;
    }
    breaker_ = std::make_unique<PageBreaker>(grid, [this](const Page& page) { return writer_->Put(page); });
    pages_ = std::make_unique<PacketPages>(breaker_.get(), grid, options_.parts);
    return true;
  }

  bool PrintRun(PacketRun& run) {
    if (!breaker_ && !Begin()) return false;
    Session& session = run.GetSession();
    ShownPacket packet(session, run.Host().Record());
    bool isFirst = true;
    if (options_.parts.tree) {
      run.ShowNotes(TimeForm::kUtc);
      session.SetOutput(kPrintMode, lines_.File());
    } else {
      session.DecodeHeadersOnly();
    }
    run.ForEach([&](const FrameRecord* record, const CaptureFrame& frame, int32_t) {
      if (isFirst) breaker_->BeginCapture(reading_.merge ? Title() : frame.file);
      isFirst = false;
      packet.Take(record, frame.number, !options_.parts.tree);
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
    const std::string lines = lines_.Take();   // before the packet's headers are read once more
    const int32_t digits = record->nanoseconds % 1000 == 0 ? 6 : 9;
    char utc[ListTime::kSize] = "", elapsed[ListTime::kSize];
    if (times.now != 0) utc_.Format(times, digits, utc);
    relative_.Format(times, digits, elapsed);
    const std::string head = utc[0] ? std::string(utc) + " UTC" : "";
    pages_->Put({packet.Number(), head, elapsed, packet.Source(), packet.Destination(), packet.Protocol(), packet.Summary(),
                 packet.Length(), lines, FrameData(record), record->capturedLength});
  }

  const ReadingOptions& reading_;
  PaperOptions options_;
  ListTime utc_{TimeForm::kUtc}, relative_{TimeForm::kRelative};
  std::string message_;
  NewFile target_;
  std::unique_ptr<PdfWriter> writer_;
  std::unique_ptr<PageBreaker> breaker_;
  std::unique_ptr<PacketPages> pages_;
  TextOutput lines_;
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
    to->form.margins = EqualMargins(millimetres * kPointsPerMillimetre);
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
