// Pages drawn through GDI: on a printer, in its preview, in a metafile. What stands on a page is the same on all of them.
#pragma once
#include "paper/pages.h"
// Behind a header of the library, which keeps it from naming macros min and max.
#include <windows.h>

namespace qxview {

// A place for a sheet: where its upper left corner is, in the device's pixels, and how many of them a point takes.
struct SheetPlace {
  double left, top;
  double pixelsAcross, pixelsDown;   // of a point
};

class GdiPages {
 public:
  explicit GdiPages(const PaperForm& form);
  ~GdiPages();
  GdiPages(const GdiPages&) = delete;
  GdiPages& operator=(const GdiPages&) = delete;

  CellSize Cell() const { return cell_; }
  const PaperForm& Form() const { return form_; }
  Sheet GetSheet() const { return SheetOf(form_); }
  // In one of the sheet's places, counted from 0.
  void Draw(HDC target, const Page& page, const SheetPlace& sheet, size_t place) const;

 private:
  void DrawHead(HDC target, const Page& page) const;
  void DrawRow(HDC target, const PageRow& row, int32_t index) const;

  const PaperForm form_;
  CellSize cell_{};
  HFONT plain_, bold_, head_;
};

}  // namespace qxview
