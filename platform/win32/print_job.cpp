#include "platform/win32/print_job.h"

#include <algorithm>

#include "platform/win32/wide_text.h"

namespace qxview {

std::unique_ptr<PrintJob> PrintJob::Start(WindowPackets* packets, PrintChoice choice, const PaperForm& form, std::string* wrong) {
  std::unique_ptr<PrintJob> job(new PrintJob(form));
  choice.grid = GridOf(form, job->pages_.Cell());
  if (!IsWorthPrinting(choice.grid)) {
    *wrong = "A page has room for " + std::to_string(choice.grid.columns) + " columns and " + std::to_string(choice.grid.rows) +
             " lines; " + std::to_string(kLeastColumns) + " and " + std::to_string(kLeastRows) +
             " are the least: larger paper, a smaller font or smaller margins.";
    return nullptr;
  }
  job->store_ = PageStore::Create(wrong);
  if (!job->store_) return nullptr;
  PrintJob* const self = job.get();
  job->run_ = packets->StartPages(choice, [self](const Page& page) {
    if (self->store_->Add(page)) return true;
    self->fault_ = "There is no room for the pages among the temporary files.";
    return false;
  });
  if (!job->run_) return *wrong = "There is no memory to print with.", nullptr;
  return job;
}

bool PrintJob::Work() {
  constexpr int32_t kPackets = 32;   // between two looks at what the user does
  if (!isDone_) isDone_ = !run_->Advance(kPackets);
  return !isDone_;
}

void PrintJob::DrawSheet(HDC target, int64_t sheet, const SheetPlace& place) const {
  for (int32_t i = 0; i < PerSheet(); ++i) {
    Page page;
    if (store_->Read(sheet * PerSheet() + i + 1, &page)) pages_.Draw(target, page, place, static_cast<size_t>(i));
  }
}

bool PrintJob::HasPage(int64_t number, const std::function<bool(int64_t)>& goesOn) {
  while (Pages() < number && Work()) {
    if (!goesOn(number)) return false;
  }
  return Pages() >= number;
}

bool PrintJob::PrintSheet(HDC printer, int64_t first, int64_t last) {
  constexpr double kPointsPerInch = 72;
  const SheetPlace place{-static_cast<double>(GetDeviceCaps(printer, PHYSICALOFFSETX)),
                         -static_cast<double>(GetDeviceCaps(printer, PHYSICALOFFSETY)),
                         GetDeviceCaps(printer, LOGPIXELSX) / kPointsPerInch, GetDeviceCaps(printer, LOGPIXELSY) / kPointsPerInch};
  if (StartPage(printer) <= 0) return false;
  for (int64_t number = first; number <= last; ++number) {
    Page page;
    if (store_->Read(number, &page)) pages_.Draw(printer, page, place, static_cast<size_t>(number - first));
  }
  return EndPage(printer) > 0;
}

bool PrintJob::Print(HDC printer, const std::string& title, const Printer::Wanted& wanted,
                     const std::function<bool(int64_t page)>& goesOn, std::string* wrong) {
  const int64_t first = wanted.firstPage, last = wanted.lastPage;
  wrong->clear();
  const std::wstring name = WideOf(title);
  DOCINFOW document{};
  document.cbSize = sizeof document;
  document.lpszDocName = name.c_str();
  if (wanted.toFile) document.lpszOutput = L"FILE:";
  if (StartDocW(printer, &document) <= 0) return *wrong = "The printer takes nothing: " + ErrorText(GetLastError()), false;
  bool good = true;
  for (int64_t page = first; good && page <= last; page += PerSheet()) {
    if (!(good = goesOn(page)) || !HasPage(page, goesOn)) break;
    const int64_t end = std::min(last, page + PerSheet() - 1);
    HasPage(end, goesOn);
    good = PrintSheet(printer, page, std::min(end, Pages()));
    if (!good) *wrong = "The printer stopped at page " + std::to_string(page) + ": " + ErrorText(GetLastError());
  }
  if (good && Pages() < first && fault_.empty()) *wrong = "There are " + std::to_string(Pages()) + " pages.";
  if (good && !fault_.empty()) *wrong = fault_;
  good = good && wrong->empty() && (isDone_ || Pages() >= last);
  good ? EndDoc(printer) : AbortDoc(printer);
  return good;
}

}  // namespace qxview
