#include "platform/win32/preview_window.h"

#include <algorithm>
#include <cmath>
#include <iterator>
// Behind windows.h, whose types it uses.
#include <windowsx.h>

#include "platform/dialogs.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

constexpr char kClass[] = "QxViewPreview";
constexpr double kPointsPerInch = 72;
constexpr int kTold = 301;   // of the progress, as resources/window.rc has it

// The window that owns another takes no input while that is there.
class OwnerDisabled {
 public:
  explicit OwnerDisabled(HWND owner) : owner_(GetAncestor(owner, GA_ROOT)), was_(!EnableWindow(owner_, FALSE)) {}
  ~OwnerDisabled() { End(); }
  void End() {
    if (was_) EnableWindow(owner_, TRUE);
    was_ = false;
  }

 private:
  HWND owner_;
  bool was_;
};

// ---- Printing, with a window that tells about it ----

INT_PTR CALLBACK RunProgress(HWND dialog, UINT message, WPARAM what, LPARAM) {
  if (message == WM_COMMAND && LOWORD(what) == IDCANCEL) SetWindowLongPtrA(dialog, GWLP_USERDATA, 1);
  return message == WM_INITDIALOG;
}

// Takes what came in; false when the program is to end.
bool TakeMessages(HWND dialog) {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) return PostQuitMessage(static_cast<int>(message.wParam)), false;
    if (dialog && IsDialogMessageA(dialog, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return true;
}

}  // namespace

void PrintPages(const PreviewParts& parts, PrintJob* job) {
  Printer::Wanted wanted;
  if (!parts.printer->Ask(parts.owner, job->IsDone() ? job->Pages() : 0, &wanted)) return;
  const HDC printer = parts.printer->Open(job->Look().Form());
  if (!printer) return ShowMessageBox(parts.owner, "The printer does not answer.", "Print", BoxStyle::kError);
  std::string wrong;
  {
    OwnerDisabled disabled(parts.owner);
    const HWND progress = CreateDialogParamA(parts.module, "QXPRINTING", parts.owner, RunProgress, 0);
    ShowWindow(progress, SW_SHOW);
    const auto goesOn = [progress](int64_t page) {
      SetDlgItemTextA(progress, kTold, ("Page " + std::to_string(page)).c_str());
      return TakeMessages(progress) && IsWindow(progress) && GetWindowLongPtrA(progress, GWLP_USERDATA) == 0;
    };
    for (int32_t copy = 0; copy < wanted.copies; ++copy) {
      if (!job->Print(printer, parts.title, wanted, goesOn, &wrong)) break;
    }
    disabled.End();   // before the window in front of it goes, so that it is the next one
    if (IsWindow(progress)) DestroyWindow(progress);
  }
  DeleteDC(printer);
  if (!wrong.empty() && IsWindow(parts.owner)) ShowMessageBox(parts.owner, wrong.c_str(), "Print", BoxStyle::kError);
}

namespace {

// ---- The preview ----

enum class Fit { kPage, kWidth, kFree };
enum Deed { kDeedPrint = 401, kDeedBefore, kDeedNext, kDeedLarger, kDeedSmaller, kDeedFitPage, kDeedFitWidth, kDeedClose,
            kDeedFirst, kDeedLast };
struct Button {
  const char* text;
  int32_t width;   // at 96 dots per inch
  Deed deed;
};
constexpr Button kButtons[] = {{"&Print...", 72, kDeedPrint},   {"Pre&vious", 72, kDeedBefore},     {"&Next", 60, kDeedNext},
                               {"Zoom &in", 66, kDeedLarger},   {"Zoom &out", 72, kDeedSmaller},
                               {"Whole pa&ge", 84, kDeedFitPage}, {"Page &width", 80, kDeedFitWidth}, {"&Close", 60, kDeedClose}};
constexpr int32_t kBarHeight = 34, kButtonHeight = 24, kGap = 4, kAround = 14;   // at 96 dots per inch

class Preview {
 public:
  Preview(const PreviewParts& parts, PrintJob* job) : parts_(parts), job_(job) {}

  bool Open();
  // Until it is closed.
  void Run();
  LRESULT Take(UINT message, WPARAM what, LPARAM value);

 private:
  int32_t Scaled(int32_t length) const { return MulDiv(length, static_cast<int>(parts_.dotsPerInch), 96); }
  RECT Area() const;
  double PixelsPerPoint() const;
  SIZE SheetSize() const;
  bool TakeKey(const MSG& message);
  void Do(Deed deed);
  void GoTo(int64_t sheet);
  void Zoom(double factor);
  void SetScrolls();
  void Scroll(int bar, int32_t to);
  void TakeScroll(int bar, WORD what);
  void TellPage();
  void Paint();
  void PlaceButtons();

  const PreviewParts parts_;
  PrintJob* const job_;
  HWND handle_ = nullptr, told_ = nullptr;
  int64_t sheet_ = 0, toldPages_ = -1;
  Fit fit_ = Fit::kPage;
  double zoom_ = 1;
  bool closed_ = false;
};

LRESULT CALLBACK RunPreviewWindow(HWND handle, UINT message, WPARAM what, LPARAM value) {
  auto* preview = reinterpret_cast<Preview*>(GetWindowLongPtrA(handle, GWLP_USERDATA));
  return preview ? preview->Take(message, what, value) : DefWindowProcA(handle, message, what, value);
}

bool Preview::Open() {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = RunPreviewWindow;
  windowClass.hInstance = parts_.module;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = kClass;
  RegisterClassA(&windowClass);   // refused when it is there already
  RECT place{};
  GetWindowRect(GetAncestor(parts_.owner, GA_ROOT), &place);
  const int width = std::max<int>(place.right - place.left, Scaled(700));
  const int height = std::max<int>(place.bottom - place.top, Scaled(500));
  handle_ = CreateWindowExA(0, kClass, "Print Preview", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_HSCROLL | WS_VSCROLL, place.left,
                            place.top, width, height, GetAncestor(parts_.owner, GA_ROOT), nullptr, parts_.module, nullptr);
  if (!handle_) return false;
  for (const Button& button : kButtons) {
    CreateWindowExA(0, "BUTTON", button.text, WS_CHILD | WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, 0, 0, 0, 0, handle_,
                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(button.deed)), parts_.module, nullptr);
  }
  told_ = CreateWindowExA(0, "STATIC", "", WS_CHILD | WS_VISIBLE | SS_CENTERIMAGE | SS_NOPREFIX, 0, 0, 0, 0, handle_, nullptr,
                          parts_.module, nullptr);
  for (HWND child = GetWindow(handle_, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    SendMessageA(child, WM_SETFONT, reinterpret_cast<WPARAM>(parts_.font), FALSE);
  }
  PlaceButtons();
  SetWindowLongPtrA(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  ShowWindow(handle_, SW_SHOW);
  SetFocus(GetDlgItem(handle_, kDeedNext));
  return true;
}

void Preview::PlaceButtons() {
  int32_t x = Scaled(kGap);
  const int32_t y = Scaled((kBarHeight - kButtonHeight) / 2);
  for (const Button& button : kButtons) {
    MoveWindow(GetDlgItem(handle_, button.deed), x, y, Scaled(button.width), Scaled(kButtonHeight), FALSE);
    x += Scaled(button.width + kGap);
  }
  MoveWindow(told_, x + Scaled(kGap), y, Scaled(260), Scaled(kButtonHeight), FALSE);
}

void Preview::Run() {
  OwnerDisabled disabled(parts_.owner);
  while (!closed_) {
    MSG message;
    if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (job_->IsDone() || !job_->Work()) TellPage(), WaitMessage(); else TellPage();
      continue;
    }
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    if (message.message == WM_KEYDOWN && GetAncestor(message.hwnd, GA_ROOT) == handle_ && TakeKey(message)) continue;
    if (IsDialogMessageA(handle_, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  disabled.End();
  if (!closed_) DestroyWindow(handle_);
}

RECT Preview::Area() const {
  RECT area{};
  GetClientRect(handle_, &area);
  area.top = Scaled(kBarHeight);
  return area;
}

double Preview::PixelsPerPoint() const {
  const Sheet sheet = job_->Look().GetSheet();
  const RECT area = Area();
  const double room = 2.0 * Scaled(kAround);
  const double across = std::max(1.0, area.right - area.left - room) / sheet.width;
  if (fit_ == Fit::kWidth) return across;
  if (fit_ == Fit::kPage) return std::min(across, std::max(1.0, area.bottom - area.top - room) / sheet.height);
  return zoom_ * parts_.dotsPerInch / kPointsPerInch;
}

SIZE Preview::SheetSize() const {
  const Sheet sheet = job_->Look().GetSheet();
  const double scale = PixelsPerPoint();
  return {std::lround(sheet.width * scale), std::lround(sheet.height * scale)};
}

void Preview::GoTo(int64_t sheet) {
  // The last page is known when all are made.
  while (sheet >= job_->Sheets() && job_->Work()) {
  }
  sheet = std::clamp<int64_t>(sheet, 0, std::max<int64_t>(job_->Sheets() - 1, 0));
  if (sheet != sheet_) SetScrollPos(handle_, SB_VERT, 0, TRUE);
  sheet_ = sheet;
  toldPages_ = -1;
  TellPage();
  InvalidateRect(handle_, nullptr, FALSE);
}

void Preview::TellPage() {
  if (toldPages_ == job_->Pages() + (job_->IsDone() ? 1 : 0)) return;
  const int64_t before = toldPages_;
  toldPages_ = job_->Pages() + (job_->IsDone() ? 1 : 0);
  const int64_t first = sheet_ * job_->PerSheet() + 1;
  const int64_t last = std::min(first + job_->PerSheet() - 1, std::max(job_->Pages(), first));
  std::string text = first == last ? "Page " : "Pages " + std::to_string(first) + " and ";
  text += std::to_string(last);
  text += " of " + std::to_string(job_->Pages()) + (job_->IsDone() ? "" : "...");
  if (!job_->Fault().empty()) text += ". " + job_->Fault();
  SetWindowTextW(told_, WideOf(text).c_str());
  EnableWindow(GetDlgItem(handle_, kDeedBefore), sheet_ > 0);
  EnableWindow(GetDlgItem(handle_, kDeedNext), sheet_ + 1 < job_->Sheets() || !job_->IsDone());
  if (before <= last) InvalidateRect(handle_, nullptr, FALSE);   // what is shown has come
}

void Preview::Zoom(double factor) {
  constexpr double kLeast = 0.1, kMost = 8;
  if (fit_ != Fit::kFree) zoom_ = PixelsPerPoint() * kPointsPerInch / parts_.dotsPerInch;
  fit_ = Fit::kFree;
  zoom_ = std::clamp(zoom_ * factor, kLeast, kMost);
  SetScrolls();
}

void Preview::SetScrolls() {
  const RECT area = Area();
  const SIZE sheet = SheetSize();
  const auto set = [this](int bar, int32_t whole, int32_t room) {
    SCROLLINFO scroll{};
    scroll.cbSize = sizeof scroll;
    scroll.fMask = SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL;
    scroll.nMax = std::max(0, whole + 2 * Scaled(kAround) - 1);
    scroll.nPage = static_cast<UINT>(std::max(room, 0));
    SetScrollInfo(handle_, bar, &scroll, TRUE);
  };
  set(SB_HORZ, sheet.cx, area.right - area.left);
  set(SB_VERT, sheet.cy, area.bottom - area.top);
  InvalidateRect(handle_, nullptr, FALSE);
}

void Preview::Scroll(int bar, int32_t to) {
  SetScrollPos(handle_, bar, to, TRUE);   // within the range
  InvalidateRect(handle_, nullptr, FALSE);
}

void Preview::TakeScroll(int bar, WORD what) {
  SCROLLINFO scroll{};
  scroll.cbSize = sizeof scroll;
  scroll.fMask = SIF_ALL;
  GetScrollInfo(handle_, bar, &scroll);
  const int32_t line = Scaled(40), page = static_cast<int32_t>(scroll.nPage), most = scroll.nMax - page + 1;
  switch (what) {
    case SB_LINEUP: return Scroll(bar, scroll.nPos - line);
    case SB_LINEDOWN: return Scroll(bar, std::min(scroll.nPos + line, most));
    case SB_PAGEUP: return Scroll(bar, scroll.nPos - page);
    case SB_PAGEDOWN: return Scroll(bar, std::min(scroll.nPos + page, most));
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: return Scroll(bar, scroll.nTrackPos);
    default: return;
  }
}

void Preview::Do(Deed deed) {
  constexpr double kStep = 1.25;
  switch (deed) {
    case kDeedPrint: {
      PreviewParts parts = parts_;
      parts.owner = handle_;
      return PrintPages(parts, job_);
    }
    case kDeedBefore: return GoTo(sheet_ - 1);
    case kDeedNext: return GoTo(sheet_ + 1);
    case kDeedFirst: return GoTo(0);
    case kDeedLast: return GoTo(INT64_MAX);
    case kDeedLarger: return Zoom(kStep);
    case kDeedSmaller: return Zoom(1 / kStep);
    case kDeedFitPage:
    case kDeedFitWidth:
      fit_ = deed == kDeedFitPage ? Fit::kPage : Fit::kWidth;
      return SetScrolls();
    case kDeedClose: DestroyWindow(handle_); return;
  }
}

bool Preview::TakeKey(const MSG& message) {
  const bool control = GetKeyState(VK_CONTROL) < 0;
  switch (message.wParam) {
    case VK_NEXT: return Do(kDeedNext), true;
    case VK_PRIOR: return Do(kDeedBefore), true;
    case VK_HOME: return Do(kDeedFirst), true;
    case VK_END: return Do(kDeedLast), true;
    case VK_ADD:
    case VK_OEM_PLUS: return Do(kDeedLarger), true;
    case VK_SUBTRACT:
    case VK_OEM_MINUS: return Do(kDeedSmaller), true;
    case VK_UP: return TakeScroll(SB_VERT, SB_LINEUP), true;
    case VK_DOWN: return TakeScroll(SB_VERT, SB_LINEDOWN), true;
    case VK_ESCAPE: return Do(kDeedClose), true;
    case 'P': return control ? (Do(kDeedPrint), true) : false;
    default: return false;
  }
}

void Preview::Paint() {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(handle_, &paint);
  const RECT area = Area();
  const int width = std::max<int>(1, area.right - area.left), height = std::max<int>(1, area.bottom - area.top);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  const RECT all{0, 0, width, height};
  FillRect(memory, &all, GetSysColorBrush(COLOR_APPWORKSPACE));
  const SIZE size = SheetSize();
  const int around = Scaled(kAround);
  // In the middle where there is room, else where it was scrolled to.
  const int left = size.cx + 2 * around <= width ? (width - size.cx) / 2 : around - GetScrollPos(handle_, SB_HORZ);
  const int top = size.cy + 2 * around <= height ? (height - size.cy) / 2 : around - GetScrollPos(handle_, SB_VERT);
  const RECT sheet{left, top, left + size.cx, top + size.cy}, shadow{left + 3, top + 3, left + size.cx + 3, top + size.cy + 3};
  FillRect(memory, &shadow, GetSysColorBrush(COLOR_3DDKSHADOW));
  FillRect(memory, &sheet, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  IntersectClipRect(memory, sheet.left, sheet.top, sheet.right, sheet.bottom);
  const double scale = PixelsPerPoint();
  job_->DrawSheet(memory, sheet_, {static_cast<double>(left), static_cast<double>(top), scale, scale});
  SelectClipRgn(memory, nullptr);
  BitBlt(screen, area.left, area.top, width, height, memory, 0, 0, SRCCOPY);
  SelectObject(memory, before);
  DeleteObject(bitmap);
  DeleteDC(memory);
  EndPaint(handle_, &paint);
}

LRESULT Preview::Take(UINT message, WPARAM what, LPARAM value) {
  switch (message) {
    case WM_PAINT: return Paint(), 0;
    case WM_SIZE: return SetScrolls(), 0;
    case WM_VSCROLL: return TakeScroll(SB_VERT, LOWORD(what)), 0;
    case WM_HSCROLL: return TakeScroll(SB_HORZ, LOWORD(what)), 0;
    case WM_MOUSEWHEEL: {
      const bool up = GET_WHEEL_DELTA_WPARAM(what) > 0;
      if (GET_KEYSTATE_WPARAM(what) & MK_CONTROL) return Do(up ? kDeedLarger : kDeedSmaller), 0;
      for (int i = 0; i < 3; ++i) TakeScroll(SB_VERT, up ? SB_LINEUP : SB_LINEDOWN);
      return 0;
    }
    case WM_COMMAND:
      if (value) Do(static_cast<Deed>(LOWORD(what)));
      return 0;
    case WM_DESTROY:
      closed_ = true;
      SetWindowLongPtrA(handle_, GWLP_USERDATA, 0);
      // Before the system takes this window away, so that the one behind it comes up and not another program's.
      EnableWindow(GetWindow(handle_, GW_OWNER), TRUE);
      return 0;
    default: return DefWindowProcA(handle_, message, what, value);
  }
}

}  // namespace

void ShowPreview(const PreviewParts& parts, PrintJob* job) {
  while (job->Pages() == 0 && job->Work()) {
  }
  Preview preview(parts, job);
  if (preview.Open()) preview.Run();
}

void UnregisterPreviewWindow(HINSTANCE module) { UnregisterClassA(kClass, module); }

}  // namespace qxview
