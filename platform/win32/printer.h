// The printer that the user chose, with its paper and margins, by the system's own dialogs.
#pragma once
#include <cstdint>
#include <string>

#include "platform/win32/gdi_pages.h"

namespace qxview {

class Printer {
 public:
  Printer() = default;
  ~Printer();
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

  // The default printer, once; nothing is shown, and nothing changes where there is none.
  void TakeDefault();
  // "HP LaserJet: 210 x 297 mm"
  std::string Describe() const;
  // A page of its paper. What it cannot print on is margin, however small that was asked for.
  PaperForm Form(double fontSize, bool twoUp) const;

  // Paper, way up and margins. False when the user left it.
  bool SetUp(HWND owner);

  struct Wanted {
    int64_t firstPage = 1, lastPage = INT64_MAX;
    int32_t copies = 1;    // that the printer's driver does not make
    bool toFile = false;   // which the system asks for
  };
  // Printer, pages and copies; mostPages: 0 where nobody knows yet. False when the user left it.
  bool Ask(HWND owner, int64_t mostPages, Wanted* wanted);
  // For the sheets of a form: two pages on one are on paper that is turned. Null when the printer does not answer.
  HDC Open(const PaperForm& form) const;

 private:
  HDC MakeContext(bool toPrint, bool turned) const;

  HGLOBAL mode_ = nullptr, names_ = nullptr;   // DEVMODEW, DEVNAMES
  RECT margins_{1200, 1200, 1200, 1200};       // hundredths of a millimetre
  POINT paper_{};                              // the same; 0 until told
  bool asked_ = false;
};

}  // namespace qxview
