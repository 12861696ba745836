// Printing from the view: pages of a PDF file, or the text that the print command writes.
#include <algorithm>

#include "app/view/viewer.h"
#include "host/text.h"
#include "paper/packet_pages.h"
#include "platform/new_file.h"
#include "platform/pdf_writer.h"

namespace qxview {
namespace {

// What is being printed, a packet at a time.
class Printing {
 public:
  Printing(ViewedCapture& capture, const PaperParts& parts) : capture_(capture), parts_(parts) {}

  bool Open(const std::string& path, std::string* wrong) {
    constexpr std::string_view kEnding = ".pdf";
    path_ = path;
    const bool isPdf = path.size() > kEnding.size() && EqualsIgnoringCase(path.substr(path.size() - kEnding.size()), kEnding);
    if (!isPdf && (parts_.list || parts_.bytes)) return *wrong = "rows and bytes are for pages: a name that ends in .pdf", false;
    if (!file_.Create(path, wrong)) return false;
    if (!isPdf) return true;
    writer_ = PdfWriter::Create(PaperForm(), file_.Sink(), capture_.Index().Name(), wrong);
    if (!writer_) return false;
    const PageGrid grid = GridOf(PaperForm(), writer_->Cell());
    breaker_ = std::make_unique<PageBreaker>(grid, [this](const Page& page) { return writer_->Put(page); });
    pages_ = std::make_unique<PacketPages>(breaker_.get(), grid, parts_);
    breaker_->BeginCapture(capture_.Index().Name());
    return true;
  }

  // False when it cannot be written.
  bool Put(uint64_t number) {
    std::string lines;
    if (parts_.tree && !capture_.PrintLines(number, &lines)) return true;   // nobody has it any more
    ++count_;
    if (pages_) return PutOnPages(number, lines);
    const OutputSink sink = file_.Sink();
    return sink.write(sink.handle, lines.data(), static_cast<int32_t>(lines.size())) == 1;
  }

  std::string Finish(bool isWhole, bool* good) {
    std::string why;
    *good = isWhole && (!breaker_ || (breaker_->Finish() && writer_->Finish())) && file_.Keep(&why);
    if (!*good) return path_ + ": not printed" + (why.empty() ? "" : ": " + why);
    std::string told = std::to_string(count_) + (count_ == 1 ? " packet" : " packets") + " printed in " + path_;
    if (breaker_) told += breaker_->Pages() == 1 ? ", a page" : ", " + std::to_string(breaker_->Pages()) + " pages";
    return told;
  }

 private:
  bool PutOnPages(uint64_t number, const std::string& lines) {
    PacketRow row;
    const uint8_t* bytes;
    int32_t length;
    PacketTimes times;
    if (!capture_.ReadTime(1, &times.first) || !capture_.ReadRow(number, &row)) return true;
    times.now = row.nanoseconds;
    const int32_t digits = row.nanoseconds % 1000 == 0 ? 6 : 9;
    char utc[ListTime::kSize] = "", elapsed[ListTime::kSize];
    if (times.now != 0) utc_.Format(times, digits, utc);
    relative_.Format(times, digits, elapsed);
    const std::string head = utc[0] ? std::string(utc) + " UTC" : "";
    if (!capture_.ReadBytes(number, &bytes, &length)) return true;
    pages_->Put({number, head, elapsed, row.source, row.destination, row.protocol, row.summary, row.length, lines, bytes, length});
    return !breaker_->IsEnded();
  }

  ViewedCapture& capture_;
  const PaperParts parts_;
  std::string path_;
  NewFile file_;
  std::unique_ptr<PdfWriter> writer_;
  std::unique_ptr<PageBreaker> breaker_;   // null: text
  std::unique_ptr<PacketPages> pages_;
  ListTime utc_{TimeForm::kUtc}, relative_{TimeForm::kRelative};
  uint64_t count_ = 0;
};

}  // namespace

void Viewer::ShowPrintMenu() {
  if (number_ == 0) return;
  Open(std::make_unique<MenuOverlay>(
      "Print", std::vector<MenuOverlay::Choice>{
                   {'p', "this packet", [this] { ShowPartsMenu({number_}); }},
                   {'m', "the marked packets",
                    [this] {
                      if (marks_.All().empty()) return Note("no packet is marked");
                      ShowPartsMenu({marks_.All().begin(), marks_.All().end()});
                    }},
                   {'a', capture_.IsFiltered() ? "the packets that the filter lets through" : "all packets",
                    [this] { ShowPartsMenu({}); }},
               }));
}

// numbers: none for all that are shown.
void Viewer::ShowPartsMenu(const std::vector<uint64_t>& numbers) {
  const auto choice = [this, &numbers](int32_t key, const char* about, PaperParts parts) {
    return MenuOverlay::Choice{key, about, [this, numbers, parts] { AskPrintFile(numbers, parts); }};
  };
  Open(std::make_unique<MenuOverlay>("Print of each packet",
                                     std::vector<MenuOverlay::Choice>{choice('t', "the tree", {true, false, false}),
                                                                      choice('l', "the row of the list", {false, true, false}),
                                                                      choice('b', "the bytes", {false, false, true}),
                                                                      choice('a', "all three", {true, true, true})}));
}

void Viewer::AskPrintFile(const std::vector<uint64_t>& numbers, const PaperParts& parts) {
  Ask(Prompt("print in (.pdf: pages, else text)", "", [=, this](const std::string& path, std::string* wrong) {
    auto printing = std::make_shared<Printing>(capture_, parts);
    if (capture_.Index().Name() == path) return *wrong = "it is the file that is looked at", false;
    if (!printing->Open(path, wrong)) return false;
    auto at = std::make_shared<uint64_t>(0);
    StartTask("printing", [=, this] {
      constexpr int32_t kPiece = 16;
      bool good = true;
      for (int32_t i = 0; i < kPiece && good; ++i, ++*at) {
        const uint64_t count = numbers.empty() ? capture_.ShownCount() : numbers.size();
        if (*at >= count) {
          const std::string told = printing->Finish(true, &good);
          return Note(told, !good), false;
        }
        const uint64_t number = numbers.empty() ? capture_.NumberAt(*at) : numbers[static_cast<size_t>(*at)];
        if (!capture_.IsKnown(number)) return true;   // what the packets in front teach will be soon
        good = printing->Put(number);
      }
      if (good) return true;
      const std::string told = printing->Finish(false, &good);
      return Note(told, true), false;
    });
    return true;
  }));
}

}  // namespace qxview
