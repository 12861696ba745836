// Printing from a packet view's window: what, how, a preview of the pages, the printer.
#pragma once
#include <string>

#include "paper/packet_pages.h"
#include "platform/win32/printer.h"

namespace qxview {

struct ViewWindow;

enum class PrintedPackets { kShown, kMarked, kAll, kChosen };

// What was printed last, for the next time.
struct PrintSettings {
  Printer printer;
  PaperParts parts{true, false, false};
  PrintedPackets packets = PrintedPackets::kShown;
  std::string chosen;   // "1-20,30"
  double fontSize = 9;  // points
  bool twoUp = false;
};

// Asks what is to be printed, and prints it or shows it in the preview.
void AskPrint(ViewWindow* window);

}  // namespace qxview
