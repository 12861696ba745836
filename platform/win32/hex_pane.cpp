#include "platform/win32/hex_pane.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>
// Behind windows.h, whose types it uses.
#include <windowsx.h>

namespace qxview {
namespace {

constexpr char kClass[] = "QxViewBytes";
constexpr int32_t kRowBytes = 16;
// Columns of a row: "00000000  00 11 .. 77  88 .. FF  characters".
constexpr int32_t kFirstPair = 10, kFirstCharacter = kFirstPair + 3 * kRowBytes + 2, kColumns = kFirstCharacter + kRowBytes;
constexpr int32_t PairColumn(int32_t index) { return kFirstPair + 3 * index + (index >= kRowBytes / 2 ? 1 : 0); }

struct HexPane {
  std::vector<uint8_t> bytes;
  int32_t markOffset = 0, markLength = 0;
  int32_t top = 0;          // the first row in sight
  HFONT font = nullptr;     // the caller's
  int32_t cellWidth = 8, cellHeight = 16;
};

HexPane* PaneOf(HWND window) { return reinterpret_cast<HexPane*>(GetWindowLongPtrA(window, GWLP_USERDATA)); }

int32_t RowCount(const HexPane& pane) {
  return (static_cast<int32_t>(pane.bytes.size()) + kRowBytes - 1) / kRowBytes;
}

int32_t RowsInSight(HWND window, const HexPane& pane) {
  RECT area;
  GetClientRect(window, &area);
  return std::max(1, static_cast<int32_t>(area.bottom) / pane.cellHeight);
}

void ScrollTo(HWND window, HexPane* pane, int32_t top) {
  const int32_t inSight = RowsInSight(window, *pane);
  pane->top = std::clamp(top, 0, std::max(0, RowCount(*pane) - inSight));
  SCROLLINFO scroll{};
  scroll.cbSize = sizeof scroll;
  scroll.fMask = SIF_PAGE | SIF_POS | SIF_RANGE;
  scroll.nMax = std::max(0, RowCount(*pane) - 1);
  scroll.nPage = static_cast<UINT>(inSight);
  scroll.nPos = pane->top;
  SetScrollInfo(window, SB_VERT, &scroll, TRUE);
  InvalidateRect(window, nullptr, FALSE);
}

void TakeFont(HWND window, HexPane* pane, HFONT font) {
  pane->font = font;
  const HDC screen = GetDC(window);
  const HGDIOBJ before = SelectObject(screen, font);
  TEXTMETRICA metrics;
  GetTextMetricsA(screen, &metrics);
  SelectObject(screen, before);
  ReleaseDC(window, screen);
  pane->cellWidth = std::max(1, static_cast<int32_t>(metrics.tmAveCharWidth));
  pane->cellHeight = std::max(1, static_cast<int32_t>(metrics.tmHeight));
  ScrollTo(window, pane, pane->top);
}

class Painter {
 public:
  Painter(HDC target, const HexPane& pane) : target_(target), pane_(pane) {}

  void Row(int32_t row, int32_t y) const {
    const int32_t start = row * kRowBytes;
    const int32_t count = std::min(kRowBytes, static_cast<int32_t>(pane_.bytes.size()) - start);
    char text[8 + 1];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(start));
    Text(0, y, text, 8, COLOR_GRAYTEXT, COLOR_WINDOW);
    for (int32_t i = 0; i < count; ++i) {
      const uint8_t byte = pane_.bytes[static_cast<size_t>(start + i)];
      const bool marked = IsMarked(start + i);
      const int ink = marked ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT, paper = marked ? COLOR_HIGHLIGHT : COLOR_WINDOW;
      // The blank between two marked bytes is marked as well.
      const int32_t wide = marked && i + 1 < count && IsMarked(start + i + 1) ? PairColumn(i + 1) - PairColumn(i) : 2;
      std::snprintf(text, sizeof text, "%02X  ", byte);
      Text(PairColumn(i), y, text, wide, ink, paper);
      const char character = byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
      Text(kFirstCharacter + i, y, &character, 1, ink, paper);
    }
  }

 private:
  bool IsMarked(int32_t offset) const {
    return offset >= pane_.markOffset && offset < pane_.markOffset + pane_.markLength;
  }
  void Text(int32_t column, int32_t y, const char* text, int32_t length, int ink, int paper) const {
    SetTextColor(target_, GetSysColor(ink));
    SetBkColor(target_, GetSysColor(paper));
    const int32_t x = (column + 1) * pane_.cellWidth;
    const RECT cell{x, y, x + length * pane_.cellWidth, y + pane_.cellHeight};
    INT widths[8];
    std::fill(std::begin(widths), std::end(widths), pane_.cellWidth);
    ExtTextOutA(target_, x, y, ETO_OPAQUE, &cell, text, static_cast<UINT>(length), widths);
  }

  HDC target_;
  const HexPane& pane_;
};

void Paint(HWND window, const HexPane& pane) {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(window, &paint);
  RECT area;
  GetClientRect(window, &area);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, std::max<LONG>(1, area.right), std::max<LONG>(1, area.bottom));
  const HGDIOBJ before = SelectObject(memory, bitmap);
  FillRect(memory, &area, GetSysColorBrush(COLOR_WINDOW));
  const HGDIOBJ fontBefore = pane.font ? SelectObject(memory, pane.font) : nullptr;
  const Painter painter(memory, pane);
  const int32_t last = std::min(RowCount(pane), pane.top + RowsInSight(window, pane) + 1);
  for (int32_t row = pane.top; row < last; ++row) painter.Row(row, (row - pane.top) * pane.cellHeight);
  BitBlt(screen, 0, 0, area.right, area.bottom, memory, 0, 0, SRCCOPY);
  if (fontBefore) SelectObject(memory, fontBefore);
  SelectObject(memory, before);
  DeleteObject(bitmap);
  DeleteDC(memory);
  if (GetFocus() == window) DrawFocusRect(screen, &area);
  EndPaint(window, &paint);
}

void Choose(HWND window, const HexPane& pane, int32_t offset) {
  if (offset < 0 || offset >= static_cast<int32_t>(pane.bytes.size())) return;
  const auto identifier = static_cast<UINT_PTR>(GetDlgCtrlID(window));
  ChosenByte chosen{{window, identifier, kByteChosen}, offset};
  SendMessageA(GetParent(window), WM_NOTIFY, identifier, reinterpret_cast<LPARAM>(&chosen));
}

// The byte at a place of the pane; -1 for none.
int32_t ByteAt(const HexPane& pane, int32_t x, int32_t y) {
  const int32_t row = pane.top + y / pane.cellHeight, column = x / pane.cellWidth - 1;
  int32_t index = -1;
  if (column >= kFirstCharacter && column < kColumns) index = column - kFirstCharacter;
  for (int32_t i = 0; i < kRowBytes && index < 0; ++i) {
    if (column >= PairColumn(i) && column < PairColumn(i) + 2) index = i;
  }
  const int32_t offset = row * kRowBytes + index;
  return index >= 0 && y >= 0 && offset < static_cast<int32_t>(pane.bytes.size()) ? offset : -1;
}

void TakeKey(HWND window, const HexPane& pane, WPARAM key) {
  const int32_t page = RowsInSight(window, pane) * kRowBytes, last = static_cast<int32_t>(pane.bytes.size()) - 1;
  const int32_t at = pane.markOffset;
  switch (key) {
    case VK_LEFT: return Choose(window, pane, at - 1);
    case VK_RIGHT: return Choose(window, pane, std::min(last, at + std::max(1, pane.markLength)));
    case VK_UP: return Choose(window, pane, at - kRowBytes);
    case VK_DOWN: return Choose(window, pane, at + kRowBytes);
    case VK_PRIOR: return Choose(window, pane, std::max(0, at - page));
    case VK_NEXT: return Choose(window, pane, std::min(last, at + page));
    case VK_HOME: return Choose(window, pane, 0);
    case VK_END: return Choose(window, pane, last);
    default: return;
  }
}

int32_t ScrolledTop(HWND window, const HexPane& pane, WPARAM how) {
  const int32_t page = RowsInSight(window, pane);
  switch (LOWORD(how)) {
    case SB_LINEUP: return pane.top - 1;
    case SB_LINEDOWN: return pane.top + 1;
    case SB_PAGEUP: return pane.top - page;
    case SB_PAGEDOWN: return pane.top + page;
    case SB_TOP: return 0;
    case SB_BOTTOM: return RowCount(pane);
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: return HIWORD(how);
    default: return pane.top;
  }
}

LRESULT CALLBACK RunHexPane(HWND window, UINT message, WPARAM what, LPARAM value) {
  HexPane* pane = PaneOf(window);
  if (!pane) return DefWindowProcA(window, message, what, value);
  switch (message) {
    case WM_PAINT: return Paint(window, *pane), 0;
    case WM_ERASEBKGND: return 1;
    case WM_SIZE: return ScrollTo(window, pane, pane->top), 0;
    case WM_VSCROLL: return ScrollTo(window, pane, ScrolledTop(window, *pane, what)), 0;
    case WM_MOUSEWHEEL:
      return ScrollTo(window, pane, pane->top - GET_WHEEL_DELTA_WPARAM(what) * 3 / WHEEL_DELTA), 0;
    case WM_SETFONT: return TakeFont(window, pane, reinterpret_cast<HFONT>(what)), 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(pane->font);
    case WM_SETFOCUS:
    case WM_KILLFOCUS: return InvalidateRect(window, nullptr, FALSE), 0;
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_LBUTTONDOWN:
      SetFocus(window);
      return Choose(window, *pane, ByteAt(*pane, GET_X_LPARAM(value), GET_Y_LPARAM(value))), 0;
    case WM_KEYDOWN:
      TakeKey(window, *pane, what);
      return SendMessageA(GetParent(window), message, what, value);   // keys of the whole window
    case WM_NCDESTROY:
      SetWindowLongPtrA(window, GWLP_USERDATA, 0);
      delete pane;
      return 0;
    default: return DefWindowProcA(window, message, what, value);
  }
}

}  // namespace

HWND CreateHexPane(HWND parent, HINSTANCE module) {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = RunHexPane;
  windowClass.hInstance = module;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.lpszClassName = kClass;
  RegisterClassA(&windowClass);   // refused when it is there already
  auto pane = std::make_unique<HexPane>();
  const HWND window = CreateWindowExA(0, kClass, "Bytes", WS_CHILD | WS_TABSTOP | WS_VSCROLL, 0, 0, 0, 0, parent, nullptr,
                                      module, nullptr);
  if (window) SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pane.release()));
  return window;
}

void UnregisterHexPanes(HINSTANCE module) { UnregisterClassA(kClass, module); }

void ShowBytes(HWND window, const uint8_t* bytes, int32_t length) {
  HexPane* pane = PaneOf(window);
  if (!pane) return;
  pane->bytes.assign(bytes, bytes + length);
  pane->markOffset = pane->markLength = 0;
  ScrollTo(window, pane, 0);
}

void MarkBytes(HWND window, int32_t offset, int32_t length) {
  HexPane* pane = PaneOf(window);
  if (!pane) return;
  pane->markOffset = offset;
  pane->markLength = length;
  const int32_t first = offset / kRowBytes, last = (offset + std::max(length, 1) - 1) / kRowBytes;
  const int32_t inSight = RowsInSight(window, *pane);
  int32_t top = pane->top;
  if (length > 0 && last >= top + inSight) top = last - inSight + 1;
  if (length > 0 && first < top) top = first;
  ScrollTo(window, pane, top);
}

}  // namespace qxview
