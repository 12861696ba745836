#include "platform/win32/view_commands.h"

// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "core/engine.h"
#include "platform/dialogs.h"
#include "platform/win32/hex_pane.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

// ---- Copying ----

constexpr UINT kLineCharacters = 1252;   // the code page of lines

void CopyText(const ViewWindow& window, const std::string& text) {
  const int length = static_cast<int>(text.size());
  const int wide = length ? MultiByteToWideChar(kLineCharacters, 0, text.data(), length, nullptr, 0) : 0;
  if (!OpenClipboard(window.handle)) return;
  EmptyClipboard();
  const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, (static_cast<size_t>(wide) + 1) * sizeof(wchar_t));
  if (auto* to = block ? static_cast<wchar_t*>(GlobalLock(block)) : nullptr) {
    if (wide) MultiByteToWideChar(kLineCharacters, 0, text.data(), length, to, wide);
    to[wide] = 0;
    GlobalUnlock(block);
    if (!SetClipboardData(CF_UNICODETEXT, block)) GlobalFree(block);
  }
  CloseClipboard();
}

void CopyLine(ViewWindow* window) { CopyText(*window, window->Lines().TextOf(window->tree.Selected())); }
void CopyValue(ViewWindow* window) { CopyText(*window, window->Lines().ValueOf(window->tree.Selected())); }
void CopyFilter(ViewWindow* window) { CopyText(*window, window->Lines().FilterOf(window->tree.Selected())); }

void AddBranch(const ViewWindow& window, LineHandle line, size_t indent, std::string* text) {
  constexpr size_t kMostIndent = 400;
  *text += std::string(std::min(indent, kMostIndent), ' ') + window.Lines().TextOf(line) + "\r\n";
  for (LineHandle child = window.tree.FirstChild(line); child; child = window.tree.NextSibling(child)) {
    AddBranch(window, child, indent + 4, text);
  }
}

void CopyBranch(ViewWindow* window) {
  std::string text;
  if (const LineHandle line = window->tree.Selected()) AddBranch(*window, line, 0, &text);
  CopyText(*window, text);
}

// The record of the packet that is shown; null when nobody has it any more.
const FrameRecord* ShownRecord(const ViewWindow& window) { return window.session->Context().packet.frame; }

void CopyBytes(ViewWindow* window) {
  const FrameRecord* record = ShownRecord(*window);
  const FrameBytes bytes = window->Lines().BytesOf(window->tree.Selected());
  std::string text;
  for (int32_t i = 0; record && i < bytes.length; ++i) {
    char pair[4];
    std::snprintf(pair, sizeof pair, i ? " %02X" : "%02X", FrameData(record)[bytes.offset + i]);
    text += pair;
  }
  CopyText(*window, text);
}

// ---- Finding ----

constexpr int kFindText = 101, kFindInTree = 102, kFindInList = 103, kFindInBytes = 104;

void TakeFindDialog(HWND dialog, ViewWindow* window) {
  wchar_t typed[512];
  GetDlgItemTextW(dialog, kFindText, typed, static_cast<int>(std::size(typed)));
  SearchIn in = SearchIn::kTree;
  if (IsDlgButtonChecked(dialog, kFindInList)) in = SearchIn::kList;
  if (IsDlgButtonChecked(dialog, kFindInBytes)) in = SearchIn::kBytes;
  SearchText search;
  std::string wrong;
  const std::string text = NarrowOf(typed);
  if (!TakeSearch(in, text, &search, &wrong)) return ShowMessageBox(dialog, wrong.c_str(), "Find", BoxStyle::kError);
  window->typed = text;
  window->search = search;
  window->hasSearch = true;
  EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK RunFindDialog(HWND dialog, UINT message, WPARAM what, LPARAM value) {
  auto* window = reinterpret_cast<ViewWindow*>(GetWindowLongPtrA(dialog, GWLP_USERDATA));
  if (message == WM_INITDIALOG) {
    window = reinterpret_cast<ViewWindow*>(value);
    SetWindowLongPtrA(dialog, GWLP_USERDATA, value);
    SetDlgItemTextW(dialog, kFindText, WideOf(window->typed).c_str());
    constexpr int kButtons[] = {kFindInList, kFindInTree, kFindInBytes};   // as SearchIn has them
    CheckRadioButton(dialog, kFindInTree, kFindInBytes, kButtons[static_cast<int>(window->search.in)]);
    EnableWindow(GetDlgItem(dialog, kFindInList), window->listed > 0);
    return TRUE;
  }
  if (message != WM_COMMAND || !window) return FALSE;
  if (LOWORD(what) == IDOK) TakeFindDialog(dialog, window);
  if (LOWORD(what) == IDCANCEL) EndDialog(dialog, IDCANCEL);
  return TRUE;
}

// The number of packets between looks at whether the user pressed Escape.
constexpr uint64_t kPacketsBetweenLooks = 512;

// Goes over the packets from behind the shown one around to itself; 0 when none of them holds it.
template <class Holds>
uint64_t FindPacket(const ViewWindow& window, bool backward, bool* wrapped, const Holds& holds) {
  const uint64_t count = window.packets ? window.packets->Count() : 0;
  uint64_t number = std::min(window.shownNumber, count);
  const HCURSOR before = SetCursor(LoadCursorA(nullptr, IDC_WAIT));
  uint64_t found = 0;
  for (uint64_t i = 0; i < count && !found; ++i) {
    if (i % kPacketsBetweenLooks == 0 && (GetAsyncKeyState(VK_ESCAPE) & 0x8000)) break;
    const bool around = backward ? number <= 1 : number >= count;
    number = around ? (backward ? count : 1) : backward ? number - 1 : number + 1;
    *wrapped |= around;
    if (holds(number)) found = number;
  }
  SetCursor(before);
  return found;
}

void TellFound(ViewWindow* window, bool found, bool wrapped, const std::string& what) {
  if (!found) TellStatus(window, "\"" + what + "\" was not found");
  if (found && wrapped) TellStatus(window, "\"" + what + "\": went on from the other end");
}

void FindInTree(ViewWindow* window, bool backward) {
  const TreeLines lines = window->Lines();
  const LineHandle selected = window->tree.Selected();
  LineHandle found = lines.Find(window->search.literal, selected, backward);
  const bool wrapped = !found;
  if (!found) found = lines.Find(window->search.literal, 0, backward);
  if (found) ChooseLine(window, found);
  TellFound(window, found != 0, wrapped, window->typed);
}

void FindInList(ViewWindow* window, bool backward) {
  bool wrapped = false;
  const uint64_t found = FindPacket(*window, backward, &wrapped, [&](uint64_t number) {
    ListedPacket packet;
    if (!window->packets->Describe(number, &packet)) return false;
    return IsIn(window->search, packet.source) || IsIn(window->search, packet.destination) ||
           IsIn(window->search, packet.summary);
  });
  if (found) window->packets->Show(found);
  TellFound(window, found != 0, wrapped, window->typed);
}

// Selects the line of the bytes that were found, which are marked.
void ChooseBytes(ViewWindow* window, int32_t offset, int32_t length) {
  const LineHandle line = window->Lines().LineAt(offset);
  if (line) ChooseLine(window, line);
  MarkBytes(window->bytes, offset, length);
}

// In the shown packet behind what is marked, then in the others.
void FindInBytes(ViewWindow* window, const SearchText& search, bool backward, const std::string& what) {
  const auto length = static_cast<int32_t>(search.bytes.size());
  const FrameRecord* shown = ShownRecord(*window);
  int32_t at = -1;
  if (shown && !backward && search.offset < 0) {
    const int32_t from = window->Lines().BytesOf(window->tree.Selected()).offset;
    at = FindBytes(search, FrameData(shown), shown->capturedLength, from + 1);
  }
  bool wrapped = false;
  if (at < 0) {
    const uint64_t found = FindPacket(*window, backward, &wrapped, [&](uint64_t number) {
      const FrameRecord* record = window->packets->Lend(number);
      at = record ? FindBytes(search, FrameData(record), record->capturedLength) : -1;
      return at >= 0;
    });
    if (found && found != window->shownNumber) window->packets->Show(found);
  }
  if (at >= 0) ChooseBytes(window, at, length);
  TellFound(window, at >= 0, wrapped, what);
}

void FindAgain(ViewWindow* window, bool backward) {
  switch (window->search.in) {
    case SearchIn::kTree: return FindInTree(window, backward);
    case SearchIn::kList: return FindInList(window, backward);
    case SearchIn::kBytes: return FindInBytes(window, window->search, backward, window->typed);
  }
}

HINSTANCE ModuleOf(const ViewWindow& window) {
  return reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(window.handle, GWLP_HINSTANCE));
}

void Find(ViewWindow* window) {
  const auto value = reinterpret_cast<LPARAM>(window);
  if (DialogBoxParamA(ModuleOf(*window), "QXFIND", window->handle, RunFindDialog, value) == IDOK) FindAgain(window, false);
}

void FindNext(ViewWindow* window) { window->hasSearch ? FindAgain(window, false) : Find(window); }
void FindPrevious(ViewWindow* window) { window->hasSearch ? FindAgain(window, true) : Find(window); }

// The next packet that has the selected line's bytes at the same offset.
void FindSameSegment(ViewWindow* window) {
  const FrameRecord* record = ShownRecord(*window);
  const FrameBytes bytes = window->Lines().BytesOf(window->tree.Selected());
  if (!record || bytes.length == 0) return;
  SearchText search;
  search.in = SearchIn::kBytes;
  search.offset = bytes.offset;
  search.bytes.assign(FrameData(record) + bytes.offset, FrameData(record) + bytes.offset + bytes.length);
  FindInBytes(window, search, false, "the same bytes at this offset");
}

// ---- Going through packets and lines ----

void ShowPacket(ViewWindow* window, uint64_t number) {
  if (window->packets && number >= 1 && number <= window->packets->Count()) window->packets->Show(number);
}
void ShowNext(ViewWindow* window) { ShowPacket(window, window->shownNumber + 1); }
void ShowPrevious(ViewWindow* window) { ShowPacket(window, window->shownNumber - 1); }

// Lines down to this level are seen, and those of the next packets, too.
void ExpandTo(ViewWindow* window, int32_t level) {
  bool* options = window->session->GetEngine()->settings.expandLevel;
  for (int32_t i = 0; i < 3; ++i) options[i] = i + 2 <= level;
  window->tree.HoldRedraw(true);
  for (LineHandle line = window->tree.FirstChild(0); line; line = window->Lines().Next(line)) {
    int32_t depth = 1;
    for (LineHandle at = window->tree.Parent(line); at; at = window->tree.Parent(at)) ++depth;
    if (window->tree.FirstChild(line)) window->tree.Expand(line, depth < level);
  }
  window->tree.HoldRedraw(false);
  SendMessageA(window->control, TVM_ENSUREVISIBLE, 0, static_cast<LPARAM>(window->tree.Selected()));
}

constexpr int32_t kEveryLevel = 1000;
void CollapseAll(ViewWindow* window) { ExpandTo(window, 1); }
void ExpandTo2(ViewWindow* window) { ExpandTo(window, 2); }
void ExpandTo3(ViewWindow* window) { ExpandTo(window, 3); }
void ExpandTo4(ViewWindow* window) { ExpandTo(window, 4); }
void ExpandAll(ViewWindow* window) { ExpandTo(window, kEveryLevel); }

void ToggleMark(ViewWindow* window) {
  window->marks.Toggle(window->shownNumber);
  window->list.Refresh();
  const size_t count = window->marks.All().size();
  TellStatus(window, count == 1 ? "1 packet is marked" : std::to_string(count) + " packets are marked");
}
void ShowNextMark(ViewWindow* window) { ShowPacket(window, window->marks.Next(window->shownNumber)); }
void ShowMarkBefore(ViewWindow* window) { ShowPacket(window, window->marks.Before(window->shownNumber)); }

void NextPane(ViewWindow* window) { FocusNextPane(window, false); }
void PreviousPane(ViewWindow* window) { FocusNextPane(window, true); }

void ToggleList(ViewWindow* window) {
  window->listOpen = !window->listOpen;
  PlacePanes(window);
}
void ToggleBytes(ViewWindow* window) {
  window->bytesOpen = !window->bytesOpen;
  PlacePanes(window);
}

// ---- What the host is asked for ----

void AskHost(ViewWindow* window, int32_t kind) {
  const PacketState& packet = window->session->Context().packet;
  const std::string filter = window->Lines().FilterOf(window->tree.Selected());
  QxViewRequest request{};
  request.size = sizeof request;
  request.kind = kind;
  request.packetNumber = window->session->Context().packetNumber;
  request.source = packet.source;
  request.destination = packet.destination;
  request.sourcePort = packet.sourcePort;
  request.destinationPort = packet.destinationPort;
  request.expression = filter.c_str();
  if (!window->packets->Ask(&request)) TellStatus(window, "the program around does not do that");
}
void StartCapture(ViewWindow* window) { AskHost(window, QX_START_CAPTURE); }
void PostFilter(ViewWindow* window) { AskHost(window, QX_POST_FILTER); }
void FilterCapture(ViewWindow* window) { AskHost(window, QX_FILTER); }

void SaveText(ViewWindow* window) {
  const FileDialog dialog = {true, "Save Packet as Text", "Text (*.TXT)", "*.TXT",
                             "Another program has this file open.\nPlease select a different file name.", "TXT"};
  char path[MAX_PATH] = "";
  std::string wrong;
  if (!AskFileName(window->handle, dialog, path, sizeof path)) return;
  if (window->packets->SaveText(path, &wrong)) return TellStatus(window, std::string("saved to ") + path);
  ShowMessageBox(window->handle, wrong.c_str(), "Save Packet as Text", BoxStyle::kError);
}

// ---- Keys and the menu ----

enum class Needs : uint8_t { kNothing, kLine, kPackets, kHost, kProgram };

// A command: its key with Ctrl or Shift, and how the menu calls it; without a name it has a key alone.
struct Command {
  void (*run)(ViewWindow* window);
  const char* name;   // null: a line between groups
  Needs needs = Needs::kNothing;
  uint8_t key = 0;
  bool control = false, shift = false;
};

constexpr Command kCommands[] = {
    {CopyLine, "&Copy\tCtrl+C", Needs::kLine, 'C', true},
    {CopyBranch, "Copy with &lines below\tCtrl+Shift+C", Needs::kLine, 'C', true, true},
    {CopyValue, "Copy &value", Needs::kLine},
    {CopyBytes, "Copy &bytes", Needs::kLine},
    {CopyFilter, "Copy as fi&lter", Needs::kLine},
    {nullptr, nullptr},
    {Find, "&Find...\tCtrl+F", Needs::kNothing, 'F', true},
    {FindNext, "Find &next\tF3", Needs::kNothing, VK_F3},
    {FindPrevious, "Find &previous\tShift+F3", Needs::kNothing, VK_F3, false, true},
    {FindSameSegment, "Next packet with the &same bytes here\tF4", Needs::kPackets, VK_F4},
    {ToggleMark, "&Mark the packet\tCtrl+M", Needs::kProgram, 'M', true},
    {ShowNextMark, "Next marked pac&ket\tF2", Needs::kPackets, VK_F2},
    {ShowMarkBefore, "Marked packet before\tShift+F2", Needs::kPackets, VK_F2, false, true},
    {nullptr, nullptr},
    {CollapseAll, "C&ollapse all\tCtrl+1", Needs::kNothing, '1', true},
    {ExpandTo2, "Expand to the &2nd level\tCtrl+2", Needs::kNothing, '2', true},
    {ExpandTo3, "Expand to the &3rd level\tCtrl+3", Needs::kNothing, '3', true},
    {ExpandTo4, "Expand to the &4th level\tCtrl+4", Needs::kNothing, '4', true},
    {ExpandAll, "&Expand all\tCtrl+9", Needs::kNothing, '9', true},
    {nullptr, nullptr},
    {StartCapture, "Start c&apture on these addresses", Needs::kHost},
    {PostFilter, "&Post-filter on these addresses", Needs::kHost},
    {FilterCapture, "F&ilter on these addresses", Needs::kHost},
    {nullptr, nullptr},
    {ToggleList, "Packet list\tCtrl+L", Needs::kPackets, 'L', true},
    {ToggleBytes, "B&ytes\tCtrl+B", Needs::kNothing, 'B', true},
    {SaveText, "Save as &text...\tCtrl+S", Needs::kProgram, 'S', true},
    {AskPrint, "&Print...\tCtrl+P", Needs::kProgram, 'P', true},
    {ShowNext, nullptr, Needs::kPackets, VK_F8},
    {ShowPrevious, nullptr, Needs::kPackets, VK_F7},
    {NextPane, nullptr, Needs::kNothing, VK_F6},
    {PreviousPane, nullptr, Needs::kNothing, VK_F6, false, true},
    {NextPane, nullptr, Needs::kNothing, VK_TAB},
    {PreviousPane, nullptr, Needs::kNothing, VK_TAB, false, true},
};

bool IsPossible(const ViewWindow& window, Needs needs) {
  switch (needs) {
    case Needs::kNothing: return true;
    case Needs::kLine: return window.tree.Selected() != 0;
    case Needs::kPackets: return window.listed > 0;
    case Needs::kHost: return window.packets && window.shownNumber > 0 && window.packets->Ask(nullptr);
    case Needs::kProgram: return window.packets && window.shownNumber > 0;
  }
  return false;
}

HMENU MakeMenu(const ViewWindow& window) {
  const HMENU menu = CreatePopupMenu();
  bool between = false;
  for (size_t i = 0; i < std::size(kCommands); ++i) {
    const Command& command = kCommands[i];
    between |= !command.run;
    if (!command.name || (command.needs == Needs::kHost && !IsPossible(window, command.needs))) continue;
    if (between) AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    between = false;
    const bool checked = (command.run == ToggleList && window.listOpen) || (command.run == ToggleBytes && window.bytesOpen);
    const UINT state = (IsPossible(window, command.needs) ? MF_ENABLED : MF_GRAYED) | (checked ? MF_CHECKED : MF_UNCHECKED);
    AppendMenuA(menu, MF_STRING | state, i + 1, command.name);
  }
  return menu;
}

}  // namespace

bool TakeWindowKey(ViewWindow* window, WPARAM key) {
  const bool control = GetKeyState(VK_CONTROL) < 0, shift = GetKeyState(VK_SHIFT) < 0;
  for (const Command& command : kCommands) {
    if (!command.run || command.key != key || command.control != control || command.shift != shift) continue;
    if (IsPossible(*window, command.needs)) command.run(window);
    return true;
  }
  return false;
}

void ShowWindowMenu(ViewWindow* window, int32_t x, int32_t y) {
  if (x < 0 && y < 0) {
    RECT place{};
    GetWindowRect(GetFocus() ? GetFocus() : window->control, &place);
    x = place.left;
    y = place.top;
  }
  const HMENU menu = MakeMenu(*window);
  const BOOL chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, x, y, 0, window->handle, nullptr);
  DestroyMenu(menu);
  if (chosen > 0) kCommands[chosen - 1].run(window);
}

}  // namespace qxview
