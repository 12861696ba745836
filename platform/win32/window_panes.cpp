#include "platform/win32/window_panes.h"

// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <algorithm>
#include <cstdio>

#include "platform/win32/hex_pane.h"

namespace qxview {
namespace {

constexpr int32_t kBarHeight = 5, kSmallestPane = 48;   // at 96 dots per inch

int32_t Scaled(const ViewWindow& window, int32_t length) {
  return MulDiv(length, static_cast<int>(window.dotsPerInch), 96);
}

// The dots per inch of the screen that the window is on; systems before Windows 10 have one for all.
uint32_t DotsOf(HWND window) {
  using DpiFunction = UINT(WINAPI*)(HWND);
  static const auto ask = reinterpret_cast<DpiFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("user32.dll"), "GetDpiForWindow")));
  if (const uint32_t dots = ask ? ask(window) : 0) return dots;
  const HDC screen = GetDC(window);
  const int dots = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(window, screen);
  return dots > 0 ? static_cast<uint32_t>(dots) : 96;
}

void TakeFont(HFONT* kept, const LOGFONTA& described) {
  if (*kept) DeleteObject(*kept);
  *kept = CreateFontIndirectA(&described);
}

// The system's font for messages at the size of the window's screen, and one of its height whose characters are all as wide.
void MakeFonts(ViewWindow* window) {
  NONCLIENTMETRICSA metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  const HDC screen = GetDC(nullptr);
  const int systemDots = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  LOGFONTA font = metrics.lfMessageFont;
  font.lfHeight = MulDiv(font.lfHeight, static_cast<int>(window->dotsPerInch), systemDots > 0 ? systemDots : 96);
  TakeFont(&window->textFont, font);
  font.lfWidth = 0;
  font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
  lstrcpynA(font.lfFaceName, "Consolas", sizeof font.lfFaceName);   // another one of a fixed width where it is not there
  TakeFont(&window->fixedFont, font);
}

struct Heights {
  int32_t list, tree, bytes, status;   // 0 for a pane that is not there
};

Heights HeightsOf(const ViewWindow& window) {
  RECT area, line{};
  GetClientRect(window.handle, &area);
  GetWindowRect(window.status, &line);
  const int32_t all = area.bottom, bar = Scaled(window, kBarHeight), least = Scaled(window, kSmallestPane);
  Heights heights{};
  const int32_t lineHeight = std::max<int32_t>(line.bottom - line.top, Scaled(window, 18));
  if (all >= 4 * least) heights.status = lineHeight;
  const int32_t room = all - heights.status;
  // In a low window the bytes go first, then the list: the tree is what it is for.
  const bool hasList = window.listOpen && window.listed > 0 && room >= 2 * least + bar;
  if (hasList) heights.list = std::clamp(room * window.listPart / 1000, least, room - least - bar);
  const int32_t below = room - (hasList ? heights.list + bar : 0);
  const bool hasBytes = window.bytesOpen && below >= 2 * least + bar;
  if (hasBytes) heights.bytes = std::clamp(room * window.bytesPart / 1000, least, below - least - bar);
  heights.tree = below - (hasBytes ? heights.bytes + bar : 0);
  return heights;
}

void PlacePane(HWND pane, int32_t top, int32_t width, int32_t height) {
  if (!pane) return;
  ShowWindow(pane, height > 0 ? SW_SHOWNA : SW_HIDE);
  if (height > 0) MoveWindow(pane, 0, top, width, height, TRUE);
}

int32_t IndexAmongSiblings(const DecodeTree& tree, LineHandle line) {
  int32_t index = 0;
  for (LineHandle at = tree.FirstChild(tree.Parent(line)); at && at != line; at = tree.NextSibling(at)) ++index;
  return index;
}

}  // namespace

bool MakePanes(ViewWindow* window, HINSTANCE module) {
  window->bytes = CreateHexPane(window->handle, module);
  window->status = CreateWindowExA(0, STATUSCLASSNAMEA, "", WS_CHILD | CCS_NOPARENTALIGN | CCS_NORESIZE, 0, 0, 0, 0,
                                   window->handle, nullptr, module, nullptr);
  PacketList& list = window->list;
  if (window->packets && !list.Create(window->handle, module, window->packets, &window->marks, window->dotsPerInch)) return false;
  if (!window->bytes || !window->status) return false;
  window->listed = window->packets ? window->packets->Count() : 0;
  ScalePanes(window);
  return true;
}

void ScalePanes(ViewWindow* window) {
  window->dotsPerInch = DotsOf(window->handle);
  MakeFonts(window);
  const auto give = [](HWND pane, HFONT font) {
    if (pane) SendMessageA(pane, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  };
  give(window->control, window->fixedFont);   // dump rows stand in columns
  give(window->bytes, window->fixedFont);
  give(window->status, window->textFont);
  give(window->list.Window(), window->textFont);
  ScaleTreeControl(window->control, window->dotsPerInch);
  if (window->list.Window()) window->list.ScaleColumns(window->dotsPerInch);
  PlacePanes(window);
}

void PlacePanes(ViewWindow* window) {
  RECT area;
  GetClientRect(window->handle, &area);
  const Heights heights = HeightsOf(*window);
  const int32_t bar = Scaled(*window, kBarHeight);
  const int32_t tree = heights.list ? heights.list + bar : 0, bytes = tree + heights.tree + bar;
  PlacePane(window->list.Window(), 0, area.right, heights.list);
  PlacePane(window->control, tree, area.right, std::max(heights.tree, 1));
  PlacePane(window->bytes, bytes, area.right, heights.bytes);
  PlacePane(window->status, area.bottom - heights.status, area.right, heights.status);
}

int32_t BarAt(const ViewWindow& window, int32_t y) {
  const Heights heights = HeightsOf(window);
  const int32_t bar = Scaled(window, kBarHeight);
  if (heights.list && y >= heights.list && y < heights.list + bar) return 1;
  const int32_t lower = (heights.list ? heights.list + bar : 0) + heights.tree;
  return heights.bytes && y >= lower && y < lower + bar ? 2 : 0;
}

void DragBar(ViewWindow* window, int32_t y) {
  RECT area;
  GetClientRect(window->handle, &area);
  const int32_t room = std::max<int32_t>(1, area.bottom - HeightsOf(*window).status);
  const int32_t part = std::clamp(y * 1000 / room, 50, 950);
  if (window->draggedBar == 1) window->listPart = part;
  if (window->draggedBar == 2) window->bytesPart = 1000 - part;
  PlacePanes(window);
}

void FocusNextPane(ViewWindow* window, bool backward) {
  const HWND panes[] = {window->list.Window(), window->control, window->bytes};
  constexpr int32_t kCount = 3;
  int32_t at = 1;
  for (int32_t i = 0; i < kCount; ++i) {
    if (panes[i] && panes[i] == GetFocus()) at = i;
  }
  for (int32_t step = 1; step < kCount; ++step) {
    const HWND next = panes[(at + (backward ? kCount - step : step)) % kCount];
    if (!next || !(GetWindowLongPtrA(next, GWL_STYLE) & WS_VISIBLE)) continue;
    SetFocus(next);
    return;
  }
}

void TellStatus(ViewWindow* window, const std::string& text) {
  SendMessageA(window->status, SB_SETTEXTA, SB_SIMPLEID, reinterpret_cast<LPARAM>(text.c_str()));
  SendMessageA(window->status, SB_SETTEXTA, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void FollowSelection(ViewWindow* window) {
  const LineHandle line = window->tree.Selected();
  const TreeLines lines = window->Lines();
  const FrameBytes bytes = lines.BytesOf(line);
  MarkBytes(window->bytes, bytes.offset, bytes.length);
  char place[80] = "";
  if (bytes.length > 0) {
    std::snprintf(place, sizeof place, "offset %d (0x%X), %d byte%s", static_cast<int>(bytes.offset),
                  static_cast<unsigned>(bytes.offset), static_cast<int>(bytes.length), bytes.length == 1 ? "" : "s");
  }
  const std::string key = lines.FilterOf(line);
  TellStatus(window, key.empty() || !place[0] ? key + place : key + "    " + place);
}

void ChooseLine(ViewWindow* window, LineHandle line) {
  window->tree.Select(line);
  RememberSelection(window, line);
  FollowSelection(window);
}

// Of a line that stands deeper than the path goes it is the ancestor at the path's end.
void RememberSelection(ViewWindow* window, LineHandle line) {
  View* view = window->session->GetView();
  constexpr int32_t kMost = 3;
  int32_t depth = 0;
  for (LineHandle at = window->tree.Parent(line); at; at = window->tree.Parent(at)) ++depth;
  for (int32_t i = depth + 1; i < kMost; ++i) view->selectionPath[i] = -1;
  for (LineHandle at = line; at; at = window->tree.Parent(at), --depth) {
    if (depth < kMost) view->selectionPath[depth] = IndexAmongSiblings(window->tree, at);
    if (depth == 0) {
      const uint32_t index = window->tree.RangeIndex(at);
      view->currentTopKind = index < view->context->rangeCount ? RangeKind(view->context->rangeTable[index]) : 0;
    }
  }
}

}  // namespace qxview
