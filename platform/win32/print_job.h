// Packets of a view on their way to paper: pages that are made as far as somebody wants them, and kept.
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "paper/page_store.h"
#include "platform/view_window.h"
#include "platform/win32/gdi_pages.h"
#include "platform/win32/printer.h"

namespace qxview {

class PrintJob {
 public:
  // Null with what is wrong, such as a page that has no room.
  static std::unique_ptr<PrintJob> Start(WindowPackets* packets, PrintChoice choice, const PaperForm& form, std::string* wrong);

  // Goes over some packets more; false when all pages are made.
  bool Work();
  bool IsDone() const { return isDone_; }
  // What ended it before all pages were made; empty for nothing.
  const std::string& Fault() const { return fault_; }
  uint64_t Looked() const { return run_->Looked(); }

  int64_t Pages() const { return store_->Count(); }
  int32_t PerSheet() const { return pages_.Form().twoUp ? 2 : 1; }
  int64_t Sheets() const { return (Pages() + PerSheet() - 1) / PerSheet(); }
  const GdiPages& Look() const { return pages_; }
  // Its pages; from 0.
  void DrawSheet(HDC target, int64_t sheet, const SheetPlace& place) const;

  // Prints the pages that are wanted, once, as they are made; false with what is wrong, or an empty text when `goesOn`, which is
  // asked before each sheet, said no.
  bool Print(HDC printer, const std::string& title, const Printer::Wanted& wanted, const std::function<bool(int64_t page)>& goesOn,
             std::string* wrong);

 private:
  PrintJob(const PaperForm& form) : pages_(form) {}
  bool HasPage(int64_t number, const std::function<bool(int64_t)>& goesOn);
  bool PrintSheet(HDC printer, int64_t first, int64_t last);

  GdiPages pages_;
  std::unique_ptr<PageStore> store_;
  std::unique_ptr<PagesRun> run_;
  bool isDone_ = false;
  std::string fault_;
};

}  // namespace qxview
