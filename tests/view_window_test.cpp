// The packet view's window: lines go into its tree view control, and what the user does there comes back to the view.
#ifdef _WIN32
#include <windows.h>
// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "platform/view_window.h"
#include "platform/win32/tree_control.h"
#include "tests/support/decoding.h"

namespace qxview::testing {
namespace {

LRESULT Send(HWND window, UINT message, WPARAM what = 0, LPARAM value = 0) {
  return SendMessageA(window, message, what, value);
}

std::vector<UINT> notes;   // notifications that reached the parent
LRESULT CALLBACK TakeNotes(HWND window, UINT message, WPARAM what, LPARAM value) {
  if (message == WM_NOTIFY) notes.push_back(reinterpret_cast<const NMHDR*>(value)->code);
  return DefWindowProcA(window, message, what, value);
}

class ViewWindows : public ::testing::Test {
 protected:
  void SetUp() override {
    parent_ = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 500, 400, nullptr, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(parent_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(TakeNotes));
    notes.clear();
    session_ = Session::Create(&host_.host, {});
    ASSERT_TRUE(parent_ && session_) << "it needs a display";
  }
  void TearDown() override {
    CloseViewWindow(session_.get());
    DestroyWindow(parent_);
  }
  HWND Open(const WindowPlace& place = {}) {
    return static_cast<HWND>(OpenViewWindow(session_.get(), parent_, place));
  }
  void DecodeArp() {
    session_->Decode(arp_.get());
  }
  DecodeTree& Tree() { return *session_->GetView()->tree; }
  Record arp_{Ethernet(0x0806, Hex("0001 0800 06 04 0001") + Bytes(38))};   // stays while it is shown
  TestHost host_;
  HWND parent_ = nullptr;
  std::unique_ptr<Session> session_;
};

TEST_F(ViewWindows, ShowWhatTheSessionDecodes) {
  DecodeArp();
  const HWND window = Open();
  ASSERT_TRUE(window);
  EXPECT_EQ(Open(), nullptr) << "a view has one window";
  EXPECT_EQ(Tree().FirstChild(0), 0u) << "empty until the next packet";
  const HWND control = GetWindow(window, GW_CHILD);
  EXPECT_EQ(Tree().NativeHandle(), control);
  DecodeArp();
  EXPECT_EQ(static_cast<uint32_t>(Send(control, TVM_GETCOUNT)), session_->Context().rangeCount);
  EXPECT_GT(session_->Context().rangeCount, 10u);
  EXPECT_TRUE(Tree().IsExpanded(Tree().FirstChild(0)));
  EXPECT_EQ(session_->Tree().FirstChild(0), 0u);
}

TEST_F(ViewWindows, LeaveOutWhatIsTooMuch) {
  const HWND control = GetWindow(Open(), GW_CHILD);
  for (int round = 0; round < 2; ++round) {   // the second one starts afresh
    Tree().Clear();
    Tree().HoldRedraw(true);
    LineHandle last = 0;
    for (uint32_t i = 0; i < kMostItems + 2000; ++i) last = Tree().Append({0, "line", 4, 9, i, false});
    Tree().SetText(last, "one of them", 11);
    Tree().HoldRedraw(false);
    char text[64];
    Tree().GetText(last, text, sizeof text);
    EXPECT_STREQ(text, "Lines left out of this window: 2000");
    EXPECT_EQ(static_cast<uint32_t>(Send(control, TVM_GETCOUNT)), kMostItems + 1);
  }
}

// What every image shows, as the bytes of the bitmap that it is drawn into.
std::vector<std::string> DrawImages(HIMAGELIST images) {
  std::vector<std::string> drawn;
  const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
  BITMAPINFO form{};
  form.bmiHeader = {sizeof form.bmiHeader, 16, 16, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits;
  const HBITMAP bitmap = CreateDIBSection(memory, &form, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  for (int image = 0; image < ImageList_GetImageCount(images); ++image) {
    PatBlt(memory, 0, 0, 16, 16, WHITENESS);
    ImageList_Draw(images, image, memory, 0, 0, ILD_TRANSPARENT);
    GdiFlush();
    drawn.emplace_back(static_cast<const char*>(bits), 16 * 16 * 4);
  }
  DeleteObject(SelectObject(memory, before));
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return drawn;
}

TEST_F(ViewWindows, HaveAnImageForEveryStyle) {
  const HWND control = GetWindow(Open(), GW_CHILD);
  const auto images = reinterpret_cast<HIMAGELIST>(Send(control, TVM_GETIMAGELIST, TVSIL_NORMAL));
  int width = 0, height = 0;
  ImageList_GetIconSize(images, &width, &height);
  EXPECT_EQ(width, 15);
  EXPECT_EQ(height, 16);
  const std::vector<std::string> drawn = DrawImages(images);
  ASSERT_EQ(drawn.size(), 23u);
  EXPECT_EQ(drawn[22], drawn[0]);
  EXPECT_EQ(std::set<std::string>(drawn.begin(), drawn.end()).size(), 22u) << "no two styles look the same";
  const std::string corner = drawn[9].substr(drawn[9].size() - 16 * 4, 3);   // rows stand from below
  EXPECT_EQ(corner, "\xFF\xFF\xFF") << "what is around the picture shows the window";
}

TEST_F(ViewWindows, KeepTheLineThatTheUserSelects) {
  const HWND control = GetWindow(Open(), GW_CHILD);
  DecodeArp();
  notes.clear();
  Send(control, TVM_SELECTITEM, TVGN_CARET, static_cast<LPARAM>(Tree().FirstChild(0)));
  const int32_t* path = session_->GetView()->selectionPath;
  EXPECT_EQ(path[0], 0);
  EXPECT_EQ(path[1], -1) << "what a program selects is not the user's choice";
  for (int i = 0; i < 2; ++i) Send(control, WM_KEYDOWN, VK_DOWN);
  EXPECT_EQ(std::vector<int32_t>(path, path + 3), (std::vector<int32_t>{0, 1, -1}));
  EXPECT_EQ(std::count(notes.begin(), notes.end(), static_cast<UINT>(TVN_SELCHANGEDA)), 3);
  DecodeArp();
  const LineHandle top = Tree().FirstChild(0);
  EXPECT_EQ(Tree().Selected(), Tree().NextSibling(Tree().FirstChild(top)));
  EXPECT_EQ(std::count(notes.begin(), notes.end(), static_cast<UINT>(TVN_DELETEITEMA)), 0);
  EXPECT_EQ(session_->GetView()->currentTopKind, kFieldKind);
}

TEST_F(ViewWindows, FillTheirParentOrKeepTheirPlace) {
  HWND window = Open();
  SetWindowPos(parent_, nullptr, 0, 0, 700, 300, SWP_NOMOVE | SWP_NOZORDER);
  EXPECT_TRUE(FitViewWindow(session_.get()));
  RECT area, inside, control;
  GetClientRect(parent_, &area);
  GetClientRect(window, &inside);
  GetWindowRect(GetWindow(window, GW_CHILD), &control);
  EXPECT_TRUE(EqualRect(&area, &inside));
  EXPECT_EQ(control.right - control.left, area.right);
  EXPECT_TRUE(CloseViewWindow(session_.get()));
  window = Open({10, 20, 100, 50});
  FitViewWindow(session_.get());
  GetClientRect(window, &inside);
  EXPECT_EQ(inside.right, 100);
  EXPECT_EQ(inside.bottom, 50);
  const LRESULT font = reinterpret_cast<LRESULT>(GetStockObject(SYSTEM_FONT));
  Send(window, WM_SETFONT, static_cast<WPARAM>(font));
  EXPECT_EQ(Send(GetWindow(window, GW_CHILD), WM_GETFONT), font);
  ShowWindow(parent_, SW_SHOW);
  EXPECT_TRUE(FocusViewWindow(session_.get()));
  EXPECT_EQ(GetFocus(), GetWindow(window, GW_CHILD));
}

TEST_F(ViewWindows, MayGoAtAnyTime) {
  Open();
  DecodeArp();
  DestroyWindow(parent_);   // takes its children along
  EXPECT_EQ(session_->GetView()->tree, &session_->Tree());
  EXPECT_FALSE(CloseViewWindow(session_.get()));
  EXPECT_FALSE(FitViewWindow(session_.get()));
  EXPECT_FALSE(FocusViewWindow(session_.get()));
  DecodeArp();
  EXPECT_NE(session_->Tree().FirstChild(0), 0u);
  const HWND own = static_cast<HWND>(OpenViewWindow(session_.get(), nullptr, {}));
  ASSERT_TRUE(own);
  DecodeArp();
  EXPECT_TRUE(FitViewWindow(session_.get()));
  Send(own, WM_CLOSE);
  EXPECT_FALSE(IsWindow(own));
  EXPECT_EQ(session_->GetView()->tree, &session_->Tree());
}

}  // namespace
}  // namespace qxview::testing
#endif
