// Pages on the screen as they will be printed, and the window that tells how far the printing is.
#pragma once
#include <cstdint>
#include <string>

#include "platform/win32/print_job.h"
#include "platform/win32/printer.h"

namespace qxview {

struct PreviewParts {
  HWND owner;
  HINSTANCE module;
  HFONT font;             // of the buttons
  uint32_t dotsPerInch;
  std::string title;      // of the document
  Printer* printer;
};

// Until the user closes it; from there it is printed, too.
void ShowPreview(const PreviewParts& parts, PrintJob* job);

// Asks for the printer and prints; what goes wrong is told.
void PrintPages(const PreviewParts& parts, PrintJob* job);

void UnregisterPreviewWindow(HINSTANCE module);

}  // namespace qxview
