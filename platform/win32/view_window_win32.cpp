#include "platform/win32/window_panes.h"

// Behind windows.h, whose types it uses.
#include <commctrl.h>
#include <windowsx.h>

#include <memory>

#include "platform/win32/hex_pane.h"
#include "platform/win32/preview_window.h"
#include "platform/win32/view_commands.h"

namespace qxview {
namespace {

constexpr char kWindowClass[] = "QxViewWindow";
constexpr UINT_PTR kCountTimer = 1;
constexpr UINT kCountMilliseconds = 500;   // between looks at how many packets there are
constexpr UINT kDpiChangedAfterParent = 0x02E3, kDpiChanged = 0x02E0;   // newer than the headers of some compilers

// The session's window: its tree's parent; null when the session shows its lines nowhere.
HWND WindowOf(Session* session) {
  void* control = session->GetView()->tree->NativeHandle();
  return control ? GetParent(static_cast<HWND>(control)) : nullptr;
}

// What the user does in the tree is passed on to the parent, as if the tree were the parent's own.
LRESULT PassOn(const ViewWindow& window, WPARAM identifier, const NMHDR* note) {
  // Of deleted lines nobody is told: there are thousands with every packet, and none is another packet's.
  const bool deleted = note->code == TVN_DELETEITEMA || note->code == TVN_DELETEITEMW;
  const HWND parent = GetAncestor(window.handle, GA_PARENT);
  if (deleted || !(GetWindowLongPtrA(window.handle, GWL_STYLE) & WS_CHILD) || !parent) return 0;
  return SendMessageA(parent, WM_NOTIFY, identifier, reinterpret_cast<LPARAM>(note));
}

// The line under the pointer is the one that the menu is about.
void SelectUnderPointer(ViewWindow* window) {
  TVHITTESTINFO hit{};
  GetCursorPos(&hit.pt);
  ScreenToClient(window->control, &hit.pt);
  if (SendMessageA(window->control, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)) && hit.hItem) {
    ChooseLine(window, reinterpret_cast<LineHandle>(hit.hItem));
  }
}

LRESULT TakeTreeNote(ViewWindow* window, WPARAM identifier, const NMHDR* note) {
  switch (note->code) {
    case TVN_SELCHANGEDA:
    case TVN_SELCHANGEDW: {
      const auto* change = reinterpret_cast<const NMTREEVIEWA*>(note);   // both forms agree up to the texts
      const bool byUser = change->action == TVC_BYMOUSE || change->action == TVC_BYKEYBOARD;
      const auto line = reinterpret_cast<LineHandle>(change->itemNew.hItem);
      if (byUser && line) RememberSelection(window, line);
      if (line) FollowSelection(window);
      break;
    }
    case TVN_KEYDOWN:
      if (TakeWindowKey(window, reinterpret_cast<const NMTVKEYDOWN*>(note)->wVKey)) return 1;
      break;
    case NM_RCLICK: SelectUnderPointer(window); break;
    default: break;
  }
  return PassOn(*window, identifier, note);
}

LRESULT TakeListNote(ViewWindow* window, const NMHDR* note) {
  switch (note->code) {
    case LVN_GETDISPINFOA: window->list.FillCell(reinterpret_cast<LPARAM>(note)); return 0;
    case LVN_KEYDOWN: return TakeWindowKey(window, reinterpret_cast<const NMLVKEYDOWN*>(note)->wVKey);
    case LVN_ITEMCHANGED: {
      const auto* change = reinterpret_cast<const NMLISTVIEW*>(note);
      const bool selected = (change->uNewState & LVIS_SELECTED) && !(change->uOldState & LVIS_SELECTED);
      const uint64_t number = static_cast<uint64_t>(change->iItem) + 1;
      if (selected && change->iItem >= 0 && number != window->shownNumber) window->packets->Show(number);
      return 0;
    }
    default: return 0;
  }
}

LRESULT TakeNotification(ViewWindow* window, WPARAM identifier, const NMHDR* note) {
  if (note->hwndFrom == window->control) return TakeTreeNote(window, identifier, note);
  if (note->hwndFrom == window->list.Window() && note->hwndFrom) return TakeListNote(window, note);
  if (note->hwndFrom == window->bytes && note->code == kByteChosen) {
    const int32_t offset = reinterpret_cast<const ChosenByte*>(note)->offset;
    if (const LineHandle line = window->Lines().LineAt(offset)) ChooseLine(window, line);
  }
  return 0;
}

// Packets that came meanwhile are listed.
void CountPackets(ViewWindow* window) {
  const uint64_t count = window->packets ? window->packets->Count() : 0;
  if (count == window->listed) return;
  const bool first = window->listed == 0 || count == 0;
  window->listed = count;
  window->list.Refresh();
  if (first) PlacePanes(window);
}

// Lines go back to the session's own tree while the control is still there to be emptied.
void TakeFromSession(HWND handle) {
  ViewWindow* window = WindowStateOf(handle);
  if (!window) return;
  KillTimer(handle, kCountTimer);
  window->session->ShowIn(nullptr);
  DestroyTreeControl(window->control);
  SetWindowLongPtrA(handle, GWLP_USERDATA, 0);
  if (window->textFont) DeleteObject(window->textFont);
  if (window->fixedFont) DeleteObject(window->fixedFont);
  delete window;
}

LRESULT SetPointer(const ViewWindow& window, HWND handle, UINT message, WPARAM what, LPARAM value) {
  POINT at;
  GetCursorPos(&at);
  ScreenToClient(handle, &at);
  if (reinterpret_cast<HWND>(what) != handle || !BarAt(window, at.y)) return DefWindowProcA(handle, message, what, value);
  SetCursor(LoadCursorA(nullptr, IDC_SIZENS));
  return TRUE;
}

void TakeMouse(ViewWindow* window, UINT message, int32_t y) {
  if (message == WM_LBUTTONDOWN && (window->draggedBar = BarAt(*window, y)) != 0) SetCapture(window->handle);
  if (message == WM_MOUSEMOVE && window->draggedBar) DragBar(window, y);
  if (message == WM_LBUTTONUP && window->draggedBar) ReleaseCapture();
}

LRESULT CALLBACK RunViewWindow(HWND handle, UINT message, WPARAM what, LPARAM value) {
  ViewWindow* window = WindowStateOf(handle);
  if (!window) return DefWindowProcA(handle, message, what, value);
  switch (message) {
    case WM_SIZE: return PlacePanes(window), 0;
    case WM_SETFOCUS: return SetFocus(window->control), 0;
    case WM_SETFONT:
      SendMessageA(window->bytes, message, what, value);
      return SendMessageA(window->control, message, what, value);
    case WM_GETFONT: return SendMessageA(window->control, message, what, value);
    case WM_NOTIFY: return TakeNotification(window, what, reinterpret_cast<const NMHDR*>(value));
    case WM_KEYDOWN: return TakeWindowKey(window, what), 0;
    case WM_CONTEXTMENU: return ShowWindowMenu(window, GET_X_LPARAM(value), GET_Y_LPARAM(value)), 0;
    case WM_SETCURSOR: return SetPointer(*window, handle, message, what, value);
    case WM_LBUTTONDOWN:
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP: return TakeMouse(window, message, GET_Y_LPARAM(value)), 0;
    case WM_CAPTURECHANGED: return window->draggedBar = 0;
    case WM_TIMER:
      if (what == kCountTimer) CountPackets(window);
      return 0;
    case kDpiChangedAfterParent: return ScalePanes(window), 0;
    case kDpiChanged: {   // of a window of its own: the system tells where it stands now
      const RECT* place = reinterpret_cast<const RECT*>(value);
      MoveWindow(handle, place->left, place->top, place->right - place->left, place->bottom - place->top, TRUE);
      return ScalePanes(window), 0;
    }
    case WM_DESTROY: return TakeFromSession(handle), 0;
    default: return DefWindowProcA(handle, message, what, value);
  }
}

HINSTANCE OwnModule() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     kWindowClass, &module);
  return module;
}

HINSTANCE RegisterWindowClass() {
  const HINSTANCE module = OwnModule();
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = RunViewWindow;
  windowClass.hInstance = module;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);   // of the bars between panes
  windowClass.lpszClassName = kWindowClass;
  RegisterClassA(&windowClass);   // refused when it is there already
  return module;
}

RECT FillingPlace(HWND parent) {
  RECT area{};
  GetClientRect(parent, &area);
  return area;
}

// The tree is made first: it is the window's first child.
bool Furnish(HWND handle, Session* session, WindowPackets* packets, bool fills) {
  const HINSTANCE module = OwnModule();
  const HWND control = static_cast<HWND>(CreateTreeControl(handle));
  if (!control) return false;
  auto window = std::make_unique<ViewWindow>(session, packets, handle, control);
  window->fills = fills;
  const bool made = MakePanes(window.get(), module);
  session->ShowIn(&window->tree);
  SetWindowLongPtrA(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window.release()));
  if (made && packets) SetTimer(handle, kCountTimer, kCountMilliseconds, nullptr);
  return made;
}

}  // namespace

ViewWindow* WindowStateOf(HWND window) { return reinterpret_cast<ViewWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA)); }

void* OpenViewWindow(Session* session, void* parent, const WindowPlace& place, WindowPackets* packets) {
  if (WindowOf(session)) return nullptr;
  const HWND owner = static_cast<HWND>(parent);
  const bool sized = place.width > 0 && place.height > 0;
  RECT at{place.left, place.top, place.left + place.width, place.top + place.height};
  if (owner && !sized) at = FillingPlace(owner);
  const DWORD style = WS_VISIBLE | WS_CLIPCHILDREN | (owner ? WS_CHILD : WS_OVERLAPPEDWINDOW);
  const bool anywhere = !owner && !sized;
  const HWND handle = CreateWindowExA(owner ? WS_EX_CONTROLPARENT : 0, kWindowClass, "Packet Decode", style,
                                      anywhere ? CW_USEDEFAULT : at.left, anywhere ? CW_USEDEFAULT : at.top,
                                      anywhere ? CW_USEDEFAULT : at.right - at.left,
                                      anywhere ? CW_USEDEFAULT : at.bottom - at.top, owner, nullptr,
                                      RegisterWindowClass(), nullptr);
  if (!handle) return nullptr;
  if (!Furnish(handle, session, packets, owner && !sized)) {
    DestroyWindow(handle);
    return nullptr;
  }
  PlacePanes(WindowStateOf(handle));
  return handle;
}

void ShowFrameInWindow(Session* session, const FrameRecord* record) {
  const HWND handle = WindowOf(session);
  if (!handle) return;
  ViewWindow* window = WindowStateOf(handle);
  ShowBytes(window->bytes, FrameData(record), record->capturedLength);
  window->shownNumber = record->packetNumber;
  CountPackets(window);
  if (window->list.Window() && record->packetNumber <= window->listed) window->list.Select(record->packetNumber);
  FollowSelection(window);
}

bool CloseViewWindow(Session* session) {
  const HWND window = WindowOf(session);
  const bool closed = window && DestroyWindow(window);
  // Refused while there are others; after the last one the library may be unloaded.
  UnregisterClassA(kWindowClass, OwnModule());
  UnregisterHexPanes(OwnModule());
  UnregisterPreviewWindow(OwnModule());
  return closed;
}

bool FitViewWindow(Session* session) {
  const HWND handle = WindowOf(session);
  if (!handle) return false;
  const ViewWindow& window = *WindowStateOf(handle);
  if (window.fills) {
    const RECT area = FillingPlace(GetParent(handle));
    MoveWindow(handle, 0, 0, area.right, area.bottom, TRUE);
  }
  const LPARAM selected = SendMessageA(window.control, TVM_GETNEXTITEM, TVGN_CARET, 0);
  if (selected) SendMessageA(window.control, TVM_ENSUREVISIBLE, 0, selected);
  return true;
}

bool FocusViewWindow(Session* session) {
  const HWND handle = WindowOf(session);
  if (!handle) return false;
  SetFocus(WindowStateOf(handle)->control);
  return true;
}

}  // namespace qxview
