#include "platform/win32/print_window.h"

#include <charconv>
#include <cstdio>

#include "platform/dialogs.h"
#include "platform/win32/preview_window.h"
#include "platform/win32/print_job.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/window_panes.h"

namespace qxview {
namespace {

// As resources/window.rc has them.
constexpr int kTree = 201, kList = 202, kBytes = 203, kShown = 204, kMarked = 205, kAll = 206, kChosen = 207, kChosenText = 208,
              kFontSize = 209, kTwoUp = 210, kPrinter = 211, kSetUp = 212, kPreview = 213;
constexpr double kSmallestFont = 3, kLargestFont = 36;
constexpr char kTitle[] = "Print";

std::string TextOf(HWND dialog, int item) {
  wchar_t text[1024];
  GetDlgItemTextW(dialog, item, text, 1024);
  return NarrowOf(text);
}

void FillDialog(HWND dialog, ViewWindow* window) {
  PrintSettings& settings = window->printing;
  settings.printer.TakeDefault();
  CheckDlgButton(dialog, kTree, settings.parts.tree);
  CheckDlgButton(dialog, kList, settings.parts.list);
  CheckDlgButton(dialog, kBytes, settings.parts.bytes);
  const bool hasMarks = !window->marks.All().empty();
  EnableWindow(GetDlgItem(dialog, kMarked), hasMarks);
  if (settings.packets == PrintedPackets::kMarked && !hasMarks) settings.packets = PrintedPackets::kShown;
  CheckRadioButton(dialog, kShown, kChosen, kShown + static_cast<int>(settings.packets));
  SetDlgItemTextW(dialog, kChosenText, WideOf(settings.chosen).c_str());
  char size[16];
  std::snprintf(size, sizeof size, "%g", settings.fontSize);
  SetDlgItemTextA(dialog, kFontSize, size);
  CheckDlgButton(dialog, kTwoUp, settings.twoUp);
  SetDlgItemTextW(dialog, kPrinter, WideOf(settings.printer.Describe()).c_str());
}

bool TakeFontSize(const std::string& text, double* size) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *size);
  return error == std::errc() && end == text.data() + text.size() && *size >= kSmallestFont && *size <= kLargestFont;
}

// False when something is wrong, which was told.
bool TakeDialog(HWND dialog, PrintSettings* settings) {
  const auto checked = [dialog](int item) { return IsDlgButtonChecked(dialog, item) == BST_CHECKED; };
  const auto refuse = [dialog](int item, const std::string& why) {
    ShowMessageBox(dialog, why.c_str(), kTitle, BoxStyle::kError);
    SetFocus(GetDlgItem(dialog, item));
    return false;
  };
  settings->parts = {checked(kTree), checked(kList), checked(kBytes)};
  if (!checked(kTree) && !checked(kList) && !checked(kBytes)) {
    return refuse(kTree, "Tree, list, bytes: at least one of them is wanted.");
  }
  for (int item = kShown; item <= kChosen; ++item) {
    if (checked(item)) settings->packets = static_cast<PrintedPackets>(item - kShown);
  }
  settings->chosen = TextOf(dialog, kChosenText);
  PacketSelection selection;
  std::string wrong;
  if (settings->packets == PrintedPackets::kChosen && !selection.Parse(settings->chosen, &wrong)) {
    return refuse(kChosenText, "Packets: " + wrong);
  }
  if (!TakeFontSize(TextOf(dialog, kFontSize), &settings->fontSize)) {
    return refuse(kFontSize, "Font size: a number from 3 to 36 is wanted.");
  }
  settings->twoUp = checked(kTwoUp);
  return true;
}

INT_PTR CALLBACK RunPrintDialog(HWND dialog, UINT message, WPARAM what, LPARAM value) {
  auto* window = reinterpret_cast<ViewWindow*>(GetWindowLongPtrA(dialog, GWLP_USERDATA));
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(dialog, GWLP_USERDATA, value);
    FillDialog(dialog, reinterpret_cast<ViewWindow*>(value));
    return TRUE;
  }
  if (message != WM_COMMAND || !window) return FALSE;
  switch (LOWORD(what)) {
    case kSetUp:
      if (window->printing.printer.SetUp(dialog)) {
        SetDlgItemTextW(dialog, kPrinter, WideOf(window->printing.printer.Describe()).c_str());
      }
      return TRUE;
    case kChosenText:
      if (HIWORD(what) == EN_CHANGE && GetFocus() == GetDlgItem(dialog, kChosenText)) {
        CheckRadioButton(dialog, kShown, kChosen, kChosen);
      }
      return TRUE;
    case kPreview:
    case IDOK:
      if (TakeDialog(dialog, &window->printing)) EndDialog(dialog, LOWORD(what));
      return TRUE;
    case IDCANCEL: return EndDialog(dialog, IDCANCEL), TRUE;
    default: return FALSE;
  }
}

// What the program around calls itself stands in the head of each page.
std::string TitleOf(const ViewWindow& window) {
  wchar_t text[512] = L"";
  GetWindowTextW(GetAncestor(window.handle, GA_ROOT), text, 512);
  return text[0] ? NarrowOf(text) : "Packets";
}

PrintChoice ChoiceOf(const ViewWindow& window) {
  const PrintSettings& settings = window.printing;
  PrintChoice choice;
  choice.parts = settings.parts;
  choice.title = TitleOf(window);
  std::string wrong;
  switch (settings.packets) {
    case PrintedPackets::kShown: choice.packets.Add(window.shownNumber); break;
    case PrintedPackets::kMarked:
      for (const uint64_t number : window.marks.All()) choice.packets.Add(number);
      break;
    case PrintedPackets::kAll: break;
    case PrintedPackets::kChosen: choice.packets.Parse(settings.chosen, &wrong); break;
  }
  return choice;
}

}  // namespace

void AskPrint(ViewWindow* window) {
  const HWND handle = window->handle;
  const auto module = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(handle, GWLP_HINSTANCE));
  const INT_PTR answer = DialogBoxParamA(module, "QXPRINT", handle, RunPrintDialog, reinterpret_cast<LPARAM>(window));
  if ((answer != IDOK && answer != kPreview) || !IsWindow(handle)) return;
  PrintSettings& settings = window->printing;
  const PrintChoice choice = ChoiceOf(*window);
  std::string wrong;
  const auto job = PrintJob::Start(window->packets, choice, settings.printer.Form(settings.fontSize, settings.twoUp), &wrong);
  if (!job) return ShowMessageBox(handle, wrong.c_str(), kTitle, BoxStyle::kError);
  const PreviewParts parts{handle, module, window->textFont, window->dotsPerInch, choice.title, &settings.printer};
  if (answer == kPreview) {
    ShowPreview(parts, job.get());
  } else {
    PrintPages(parts, job.get());
  }
}

}  // namespace qxview
