#include <windows.h>
// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <memory>

#include "platform/view_window.h"
#include "platform/win32/tree_control.h"

namespace qxview {
namespace {

constexpr char kWindowClass[] = "QxViewWindow";

// What stands behind a window; it goes with it.
struct ViewWindow {
  ViewWindow(Session* shown, bool filling, void* made)
      : session(shown), fills(filling), control(made), tree(made) {}
  Session* session;
  bool fills;          // the parent's client area
  void* control;
  TreeControl tree;
};

HWND ControlOf(const ViewWindow& window) { return static_cast<HWND>(window.control); }

ViewWindow* StateOf(HWND window) { return reinterpret_cast<ViewWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA)); }

// The session's window: its tree's parent; null when the session shows its lines nowhere.
HWND WindowOf(Session* session) {
  void* control = session->GetView()->tree->NativeHandle();
  return control ? GetParent(static_cast<HWND>(control)) : nullptr;
}

int32_t IndexAmongSiblings(const DecodeTree& tree, LineHandle line) {
  int32_t index = 0;
  for (LineHandle at = tree.FirstChild(tree.Parent(line)); at && at != line; at = tree.NextSibling(at)) ++index;
  return index;
}

// Keeps the path to the line that the user went to, so that the next packet comes up with the same field selected; of
// a deeper line its ancestor at the path's end.
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

// Notes what the user does in the tree and passes it on to the parent, as if the tree were the parent's own.
LRESULT TakeNotification(HWND handle, WPARAM identifier, const NMHDR* note) {
  ViewWindow* window = StateOf(handle);
  if (window && (note->code == TVN_SELCHANGEDA || note->code == TVN_SELCHANGEDW)) {
    const auto* change = reinterpret_cast<const NMTREEVIEWA*>(note);   // both forms agree up to the texts
    const bool byUser = change->action == TVC_BYMOUSE || change->action == TVC_BYKEYBOARD;
    const auto line = reinterpret_cast<LineHandle>(change->itemNew.hItem);
    if (byUser && line) RememberSelection(window, line);
  }
  // Of deleted lines nobody is told: there are thousands with every packet, and none is another packet's.
  const bool deleted = note->code == TVN_DELETEITEMA || note->code == TVN_DELETEITEMW;
  const HWND parent = GetAncestor(handle, GA_PARENT);
  if (deleted || !(GetWindowLongPtrA(handle, GWL_STYLE) & WS_CHILD) || !parent) return 0;
  return SendMessageA(parent, WM_NOTIFY, identifier, reinterpret_cast<LPARAM>(note));
}

// Lines go back to the session's own tree while the control is still there to be emptied.
void TakeFromSession(HWND handle) {
  ViewWindow* window = StateOf(handle);
  if (!window) return;
  window->session->ShowIn(nullptr);
  DestroyTreeControl(window->control);
  SetWindowLongPtrA(handle, GWLP_USERDATA, 0);
  delete window;
}

LRESULT CALLBACK RunViewWindow(HWND handle, UINT message, WPARAM what, LPARAM value) {
  ViewWindow* window = StateOf(handle);
  switch (message) {
    case WM_SIZE:
      if (window) MoveWindow(ControlOf(*window), 0, 0, LOWORD(value), HIWORD(value), TRUE);
      return 0;
    case WM_SETFOCUS:
      if (window) SetFocus(ControlOf(*window));
      return 0;
    case WM_SETFONT:
    case WM_GETFONT:
      return window ? SendMessageA(ControlOf(*window), message, what, value) : 0;
    case WM_NOTIFY:
      return TakeNotification(handle, what, reinterpret_cast<const NMHDR*>(value));
    case WM_DESTROY:
      TakeFromSession(handle);
      return 0;
    default:
      return DefWindowProcA(handle, message, what, value);
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
  windowClass.lpszClassName = kWindowClass;
  RegisterClassA(&windowClass);   // refused when it is there already
  return module;
}

RECT FillingPlace(HWND parent) {
  RECT area{};
  GetClientRect(parent, &area);
  return area;
}

}  // namespace

void* OpenViewWindow(Session* session, void* parent, const WindowPlace& place) {
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
  void* control = CreateTreeControl(handle);
  if (!control) {
    DestroyWindow(handle);
    return nullptr;
  }
  auto window = std::make_unique<ViewWindow>(session, owner && !sized, control);
  // Dump rows stand in columns.
  SendMessageA(ControlOf(*window), WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)), FALSE);
  session->ShowIn(&window->tree);
  SetWindowLongPtrA(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window.release()));
  RECT inside{};
  GetClientRect(handle, &inside);
  MoveWindow(static_cast<HWND>(control), 0, 0, inside.right, inside.bottom, TRUE);
  return handle;
}

bool CloseViewWindow(Session* session) {
  const HWND window = WindowOf(session);
  const bool closed = window && DestroyWindow(window);
  // Refused while there are others; after the last one the library may be unloaded.
  UnregisterClassA(kWindowClass, OwnModule());
  return closed;
}

bool FitViewWindow(Session* session) {
  const HWND handle = WindowOf(session);
  if (!handle) return false;
  const ViewWindow& window = *StateOf(handle);
  if (window.fills) {
    const RECT area = FillingPlace(GetParent(handle));
    MoveWindow(handle, 0, 0, area.right, area.bottom, TRUE);
  }
  const LPARAM selected = SendMessageA(ControlOf(window), TVM_GETNEXTITEM, TVGN_CARET, 0);
  if (selected) SendMessageA(ControlOf(window), TVM_ENSUREVISIBLE, 0, selected);
  return true;
}

bool FocusViewWindow(Session* session) {
  const HWND handle = WindowOf(session);
  if (!handle) return false;
  SetFocus(ControlOf(*StateOf(handle)));
  return true;
}

}  // namespace qxview
