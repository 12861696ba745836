// The packet view's window as a user drives it: its list, tree and bytes in step, its keys, its dialogs, its menu.
#include "tests/windows/library.h"
// Behind windows.h, whose types they use.
#include <commctrl.h>
#include <dlgs.h>
#include <winspool.h>

#include <cstdio>

namespace {

LRESULT Send(HWND window, UINT message, WPARAM what = 0, LPARAM value = 0) {
  return SendMessageA(window, message, what, value);
}

// Three packets in a buffer: an ARP request, a question of DNS, its answer. What the window asks is noted.
struct Buffer {
  std::vector<Bytes> records;
  std::vector<int32_t> asked;
  std::string expression;

  void Add(const char* hex) {
    const Bytes frame = Hex(hex);
    Bytes record(48);
    const uint16_t captured = static_cast<uint16_t>(frame.size()), whole = static_cast<uint16_t>(48 + frame.size());
    const uint64_t number = records.size() + 1;
    const uint32_t wire = captured;
    std::memcpy(&record[8], &captured, 2);
    record[12] = 48;
    std::memcpy(&record[14], &whole, 2);
    record[18] = 1;
    std::memcpy(&record[24], &number, 8);
    std::memcpy(&record[32], &wire, 4);
    record.insert(record.end(), frame.begin(), frame.end());
    records.push_back(record);
  }
};

constexpr char kUdpHead[] = "020000000001 020000000002 0800 4500 ";
const std::string kQuestion = std::string(kUdpHead) + "003A 0001 4000 40 11 0000 C0000201 C0000202  8000 0035 0026 0000"
                              "1234 0100 0001 0000 0000 0000 03777777 076578616D706C65 00 0001 0001 0000";
const std::string kAnswer = std::string(kUdpHead) + "0049 0001 4000 40 11 0000 C0000202 C0000201  0035 8000 0035 0000"
                            "1234 8580 0001 0001 0000 0000 03777777 076578616D706C65 00 0001 0001"
                            "C00C 0001 0001 0000012C 0004 C0000250";

int32_t CountPackets(void* user, QxCaptureBufferState* out) {
  out->packetCount = static_cast<Buffer*>(user)->records.size();
  return 1;
}
const void* LendPacket(void* user, uint64_t number) {
  Buffer* buffer = static_cast<Buffer*>(user);
  return number >= 1 && number <= buffer->records.size() ? buffer->records[static_cast<size_t>(number) - 1].data() : nullptr;
}
int32_t TakeRequest(void* user, const QxViewRequest* request) {
  if (!request) return 1;
  static_cast<Buffer*>(user)->asked.push_back(request->kind);
  static_cast<Buffer*>(user)->expression = request->expression;
  return request->source.address[12] == 0xC0;
}

// Does something with a window of the system's as soon as it is shown, on a thread of its own.
class WhenShown {
 public:
  using Act = void (*)(HWND window, const std::string& text);
  WhenShown(const char* className, const char* title, std::string text, Act act)
      : class_(className), title_(title), text_(std::move(text)), act_(act) {
    thread_ = CreateThread(nullptr, 0, Enter, this, 0, nullptr);
  }
  bool Done() {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    return done_;
  }

 private:
  static constexpr int kMostTries = 1500;   // every 20 ms
  static DWORD WINAPI Enter(void* self) { return static_cast<WhenShown*>(self)->Run(), 0; }
  void Run() {
    for (int i = 0; i < kMostTries && !done_; ++i) {
      Sleep(20);
      const HWND window = FindWindowA(class_, title_);
      if (!window || !IsWindowVisible(window)) continue;
      done_ = true;
      act_(window, text_);
    }
  }
  const char *class_, *title_;
  std::string text_;
  Act act_;
  HANDLE thread_;
  bool done_ = false;
};

class PacketWindow : public ::testing::Test {
 protected:
  void SetUp() override {
    buffer_.Add("FFFFFFFFFFFF 020000000002 0806 0001 0800 06 04 0001 020000000002 C0000202 000000000000 C0000201");
    buffer_.Add(kQuestion.c_str());
    buffer_.Add(kAnswer.c_str());
    host_.size = sizeof host_;
    host_.user = &buffer_;
    host_.captureBufferState = CountPackets;
    host_.lendPacket = LendPacket;
    host_.viewRequest = TakeRequest;
    view_ = FIND(library_, QxView_CreateView)(&host_);
    parent_ = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 700, 600, nullptr, nullptr, nullptr, nullptr);
    window_ = static_cast<HWND>(FIND(library_, CreateViewWindow)(view_, parent_, 0, 0, 0, 0));
    ASSERT_TRUE(window_) << "it needs a display";
    list_ = FindWindowExA(window_, nullptr, WC_LISTVIEWA, nullptr);
    tree_ = FindWindowExA(window_, nullptr, WC_TREEVIEWA, nullptr);
    bytes_ = FindWindowExA(window_, nullptr, "QxViewBytes", nullptr);
    status_ = FindWindowExA(window_, nullptr, STATUSCLASSNAMEA, nullptr);
    ASSERT_TRUE(list_ && tree_ && bytes_ && status_);
  }
  void TearDown() override {
    FIND(library_, QxView_DestroyView)(view_);
    DestroyWindow(parent_);
  }

  void Choose(uint64_t number) {
    LVITEMA item{};
    item.state = item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    Send(list_, LVM_SETITEMSTATE, static_cast<WPARAM>(number - 1), reinterpret_cast<LPARAM>(&item));
  }
  std::string Cell(int row, int column) {
    char text[300] = "";
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    Send(list_, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
  }
  uintptr_t Selected() { return static_cast<uintptr_t>(Send(tree_, TVM_GETNEXTITEM, TVGN_CARET)); }
  std::string SelectedText() {
    char text[600] = "";
    FIND(library_, QxView_LineText)(view_, Selected(), text, sizeof text);
    return text;
  }
  std::string Status() {
    char text[600] = "";
    Send(status_, SB_GETTEXTA, 0, reinterpret_cast<LPARAM>(text));
    return text;
  }
  // A key with Ctrl or Shift held down, as the thread's keyboard state has them.
  void Press(HWND pane, WPARAM key, bool control = false, bool shift = false) {
    BYTE keys[256] = {};
    keys[VK_CONTROL] = control ? 0x80 : 0;
    keys[VK_SHIFT] = shift ? 0x80 : 0;
    SetKeyboardState(keys);
    Send(pane, WM_KEYDOWN, key);
    std::memset(keys, 0, sizeof keys);
    SetKeyboardState(keys);
  }
  // Where a byte stands in its pane, as the pane's font has it.
  LPARAM PlaceOfByte(int offset) {
    const HDC screen = GetDC(bytes_);
    const HGDIOBJ before = SelectObject(screen, reinterpret_cast<HFONT>(Send(bytes_, WM_GETFONT)));
    TEXTMETRICA metrics;
    GetTextMetricsA(screen, &metrics);
    SelectObject(screen, before);
    ReleaseDC(bytes_, screen);
    const int column = 11 + offset % 16 * 3 + (offset % 16 > 7);
    return MAKELPARAM(column * metrics.tmAveCharWidth + 2, offset / 16 * metrics.tmHeight + 2);
  }
  void LookFor(const std::string& text) {
    WhenShown dialog("#32770", "Find", text, [](HWND shown, const std::string& typed) {
      SetDlgItemTextA(shown, 101, typed.c_str());
      PostMessageA(shown, WM_COMMAND, IDOK, 0);
    });
    Press(tree_, 'F', true);
    EXPECT_TRUE(dialog.Done());
  }

  Library library_;
  Registry registry_;
  Buffer buffer_;
  QxHost host_{};
  void* view_ = nullptr;
  HWND parent_ = nullptr, window_ = nullptr, list_ = nullptr, tree_ = nullptr, bytes_ = nullptr, status_ = nullptr;
};

TEST_F(PacketWindow, ListsWhatTheHostLendsAndShowsWhatIsSelected) {
  EXPECT_EQ(Send(list_, LVM_GETITEMCOUNT), 3);
  EXPECT_EQ(Cell(1, 2), "192.0.2.1");
  EXPECT_EQ(Cell(1, 4), "73");
  EXPECT_NE(Cell(2, 5).find("DNS Response"), std::string::npos) << Cell(2, 5);
  Choose(3);
  EXPECT_EQ(FIND(library_, GetCurrentPacketNumber)(view_), 3);
  Press(tree_, VK_F7);
  EXPECT_EQ(FIND(library_, GetCurrentPacketNumber)(view_), 2);
  EXPECT_EQ(Send(list_, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 1) << "the list follows";
  buffer_.Add(kAnswer.c_str());
  Send(window_, WM_TIMER, 1);
  EXPECT_EQ(Send(list_, LVM_GETITEMCOUNT), 4) << "packets that come are listed";
}

TEST_F(PacketWindow, KeepsLinesAndBytesInStep) {
  Choose(3);
  Send(bytes_, WM_LBUTTONDOWN, 0, PlaceOfByte(22));
  EXPECT_EQ(SelectedText(), "Time to live: 64");
  EXPECT_EQ(Status(), "ip.time_to_live == 64    offset 22 (0x16), 1 byte");
  Press(bytes_, VK_RIGHT);
  EXPECT_EQ(SelectedText().rfind("Protocol: 17", 0), 0u) << SelectedText();
  Press(tree_, VK_F7);
  EXPECT_EQ(SelectedText().rfind("Protocol: 17", 0), 0u) << "the next packet has the same line selected";
  Press(bytes_, VK_END);
  EXPECT_EQ(Status().rfind("dns", 0), 0u) << Status();
  Press(tree_, VK_HOME);
  EXPECT_NE(Status().find("offset 0"), std::string::npos) << "a line's bytes are marked and told";
}

TEST_F(PacketWindow, FindsTextBytesAndTheSameSegment) {
  Choose(2);
  LookFor("www");
  EXPECT_NE(SelectedText().find("www"), std::string::npos) << SelectedText();
  const uintptr_t first = Selected();
  Press(tree_, VK_F3);
  EXPECT_NE(Selected(), first);
  Press(tree_, VK_F3, false, true);
  EXPECT_EQ(Selected(), first);
  LookFor("no such text");
  EXPECT_EQ(Status(), "\"no such text\" was not found");
  // 12 34 at offset 42 is what the answer has there, too.
  Send(bytes_, WM_LBUTTONDOWN, 0, PlaceOfByte(42));
  Press(tree_, VK_F4);
  EXPECT_EQ(FIND(library_, GetCurrentPacketNumber)(view_), 3);
}

TEST_F(PacketWindow, ExpandsCopiesAndGoesFromPaneToPane) {
  Choose(3);
  Press(tree_, '9', true);
  int all = 0, some = 0;
  const auto count = [&](int* seen) {
    *seen = 0;
    for (LRESULT at = Send(tree_, TVM_GETNEXTITEM, TVGN_ROOT); at; at = Send(tree_, TVM_GETNEXTITEM, TVGN_NEXTVISIBLE, at)) {
      ++*seen;
    }
  };
  count(&all);
  Press(tree_, '1', true);
  count(&some);
  EXPECT_LT(some, all / 4);
  Press(tree_, '3', true);
  Send(bytes_, WM_LBUTTONDOWN, 0, PlaceOfByte(22));
  Press(tree_, 'C', true);
  ASSERT_TRUE(OpenClipboard(nullptr));
  const HANDLE copied = GetClipboardData(CF_TEXT);
  EXPECT_STREQ(copied ? static_cast<const char*>(GlobalLock(copied)) : "", "Time to live: 64");
  CloseClipboard();
  SetFocus(tree_);
  for (const HWND pane : {bytes_, list_, tree_}) {
    Press(GetFocus(), VK_F6);
    EXPECT_EQ(GetFocus(), pane);
  }
  Press(tree_, VK_F6, false, true);
  EXPECT_EQ(GetFocus(), list_);
}

TEST_F(PacketWindow, ClosesPanesAndBearsAnySize) {
  Choose(3);
  Press(tree_, 'B', true);
  EXPECT_FALSE(IsWindowVisible(bytes_));
  Press(tree_, 'L', true);
  EXPECT_FALSE(IsWindowVisible(list_));
  Press(tree_, 'L', true);
  Press(tree_, 'B', true);
  EXPECT_TRUE(IsWindowVisible(bytes_) && IsWindowVisible(list_));
  for (const int height : {60, 1, 0, 600}) {
    SetWindowPos(parent_, nullptr, 0, 0, height, height, SWP_NOMOVE | SWP_NOZORDER);
    FIND(library_, CorrectView)(view_);
    EXPECT_TRUE(IsWindowVisible(tree_));
    EXPECT_EQ(IsWindowVisible(bytes_) != 0, height == 600) << height;
  }
  RECT before, after;
  GetWindowRect(list_, &before);
  Send(window_, WM_LBUTTONDOWN, 0, MAKELPARAM(10, before.bottom - before.top + 1));
  Send(window_, WM_MOUSEMOVE, 0, MAKELPARAM(10, 250));
  Send(window_, WM_LBUTTONUP, 0, MAKELPARAM(10, 250));
  GetWindowRect(list_, &after);
  EXPECT_GT(after.bottom, before.bottom) << "the bar between panes moves";
}

TEST_F(PacketWindow, AsksTheHostByItsMenu) {
  Choose(3);
  Send(bytes_, WM_LBUTTONDOWN, 0, PlaceOfByte(22));
  WhenShown menu("#32768", nullptr, "", [](HWND, const std::string&) {
    const HWND owner = FindWindowA("STATIC", nullptr);
    PostMessageA(FindWindowExA(owner, nullptr, "QxViewWindow", nullptr), WM_KEYDOWN, 'A', 0);
    Sleep(1000);
    PostMessageA(FindWindowExA(owner, nullptr, "QxViewWindow", nullptr), WM_KEYDOWN, VK_ESCAPE, 0);   // should it stand still
  });
  Send(window_, WM_CONTEXTMENU, 0, MAKELPARAM(100, 100));
  EXPECT_TRUE(menu.Done());
  EXPECT_EQ(buffer_.asked, std::vector<int32_t>{QX_START_CAPTURE});
  EXPECT_EQ(buffer_.expression, "ip.time_to_live == 64");
}

TEST_F(PacketWindow, SavesThePacketAsText) {
  TemporaryFile file;
  const std::string path = std::string(file.Name()) + ".txt";
  Choose(3);
  WhenShown dialog("#32770", "Save Packet as Text", path, [](HWND shown, const std::string& name) {
    for (int i = 0; i < 50 && !GetDlgItem(shown, edt1) && !GetDlgItem(shown, cmb13); ++i) Sleep(20);
    SetDlgItemTextA(shown, GetDlgItem(shown, edt1) ? edt1 : cmb13, name.c_str());
    PostMessageA(shown, WM_COMMAND, IDOK, 0);
  });
  Press(tree_, 'S', true);
  EXPECT_TRUE(dialog.Done());
  FILE* saved = std::fopen(path.c_str(), "rb");
  ASSERT_TRUE(saved) << Status();
  char text[200] = "";
  const size_t got = std::fread(text, 1, sizeof text - 1, saved);
  std::fclose(saved);
  DeleteFileA(path.c_str());
  EXPECT_EQ(std::string(text, got).rfind("Packet 3:", 0), 0u) << text;
  EXPECT_NE(FIND(library_, QxView_FirstLine)(view_), 0u) << "the tree is shown as before";
}

// A printer of Wine's that writes PostScript into a file; there for as long as this is.
class PostScriptPrinter {
 public:
  explicit PostScriptPrinter(const std::string& folder) : ppd_(folder + "qxview.ppd"), out_(folder + "qxview.ps") {
    FILE* file = std::fopen(ppd_.c_str(), "wb");
    std::fputs(kDescription, file);
    std::fclose(file);
    char name[] = "qxview test", driver[] = "wineps.drv", type[] = "RAW", processor[] = "winprint";
    DRIVER_INFO_3A drives{};
    drives.cVersion = 3;
    drives.pName = name;
    drives.pDriverPath = drives.pConfigFile = driver;
    drives.pDataFile = ppd_.data();
    drives.pDefaultDataType = type;
    AddPrinterDriverExA(nullptr, 3, reinterpret_cast<BYTE*>(&drives), APD_COPY_NEW_FILES | APD_COPY_FROM_DIRECTORY);
    PRINTER_INFO_2A printer{};
    printer.pPrinterName = printer.pDriverName = name;
    printer.pPortName = out_.data();
    printer.pPrintProcessor = processor;
    printer.pDatatype = type;
    printer_ = AddPrinterA(nullptr, 2, reinterpret_cast<BYTE*>(&printer));
    if (!printer_) {   // left by a run that broke off
      PRINTER_DEFAULTSA all{nullptr, nullptr, PRINTER_ALL_ACCESS};
      OpenPrinterA(name, &printer_, &all);
      SetPrinterA(printer_, 2, reinterpret_cast<BYTE*>(&printer), 0);
    }
    SetDefaultPrinterA(name);
  }
  ~PostScriptPrinter() {
    DeletePrinter(printer_);
    ClosePrinter(printer_);
    DeleteFileA(ppd_.c_str());
    DeleteFileA(out_.c_str());
  }
  bool Good() const { return printer_ != nullptr; }
  const std::string& File() const { return out_; }
  // The texts of the pages that were printed, without what is no letter and no digit: they are shown glyph by glyph, by name.
  std::vector<std::string> Pages() const {
    constexpr const char* kDigits[] = {"zero", "one", "two", "three", "four", "five", "six", "seven", "eight", "nine"};
    std::vector<std::string> pages;
    FILE* file = std::fopen(out_.c_str(), "rb");
    char line[400], glyph[100];
    while (file && std::fgets(line, sizeof line, file)) {
      if (std::strncmp(line, "%%Page:", 7) == 0) pages.emplace_back();
      if (pages.empty() || std::sscanf(line, "/%99s glyphshow", glyph) != 1 || !std::strstr(line, " glyphshow")) continue;
      if (!glyph[1]) pages.back() += glyph[0];
      for (int i = 0; i < 10; ++i) {
        if (std::strcmp(glyph, kDigits[i]) == 0) pages.back() += static_cast<char>('0' + i);
      }
    }
    if (file) std::fclose(file);
    return pages;
  }

 private:
  static constexpr char kDescription[] =
      "*PPD-Adobe: \"4.3\"\r\n*FormatVersion: \"4.3\"\r\n*LanguageEncoding: ISOLatin1\r\n*Product: \"(test)\"\r\n"
      "*ModelName: \"qxview test\"\r\n*NickName: \"qxview test\"\r\n*LanguageLevel: \"3\"\r\n*TTRasterizer: Type42\r\n"
      "*LandscapeOrientation: Plus90\r\n*DefaultResolution: 600dpi\r\n*OpenUI *PageSize/Media Size: PickOne\r\n"
      "*OrderDependency: 10 AnySetup *PageSize\r\n*DefaultPageSize: A5\r\n*PageSize A5/A5: \"\"\r\n*CloseUI: *PageSize\r\n"
      "*DefaultImageableArea: A5\r\n*ImageableArea A5/A5: \"18 36 402 577\"\r\n*DefaultPaperDimension: A5\r\n"
      "*PaperDimension A5/A5: \"420 595\"\r\n";
  std::string ppd_, out_;
  HANDLE printer_ = nullptr;
};

bool IsWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

constexpr int kPrintTree = 201, kPrintList = 202, kPrintBytes = 203, kPrintMarked = 205, kPrintChosen = 207, kPrintChosenText = 208,
              kPrintFont = 209, kPrintTwoUp = 210, kPrintPreview = 213;
constexpr int kPreviewPrint = 401, kPreviewNext = 403, kPreviewLarger = 404, kPreviewClose = 408;

// What the preview tells of its page, once all pages are made.
std::string ToldBy(HWND preview) {
  char text[200] = "";
  for (int i = 0; i < 500 && (!text[0] || std::strstr(text, "...")); ++i) {
    Sleep(20);
    GetWindowTextA(FindWindowExA(preview, nullptr, "STATIC", nullptr), text, sizeof text);
  }
  return text;
}
std::vector<std::string> told;

TEST_F(PacketWindow, PrintsWhatItsPreviewShows) {
  if (!IsWine()) GTEST_SKIP() << "a printer of the user's is no place for this";
  char folder[MAX_PATH];
  GetTempPathA(sizeof folder, folder);
  PostScriptPrinter printer(folder);
  ASSERT_TRUE(printer.Good());
  told.clear();
  Choose(1);
  WhenShown dialog("#32770", "Print Packets", "", [](HWND shown, const std::string&) {
    CheckDlgButton(shown, kPrintList, BST_CHECKED);
    CheckDlgButton(shown, kPrintBytes, BST_CHECKED);
    CheckRadioButton(shown, 204, kPrintChosen, kPrintChosen);
    SetDlgItemTextA(shown, kPrintChosenText, "2-");
    PostMessageA(shown, WM_COMMAND, kPrintPreview, 0);
  });
  WhenShown preview("QxViewPreview", nullptr, "", [](HWND shown, const std::string&) {
    told.push_back(ToldBy(shown));
    Send(shown, WM_COMMAND, kPreviewNext, reinterpret_cast<LPARAM>(shown));
    Send(shown, WM_COMMAND, kPreviewLarger, reinterpret_cast<LPARAM>(shown));
    told.push_back(ToldBy(shown));
    PostMessageA(shown, WM_COMMAND, kPreviewPrint, reinterpret_cast<LPARAM>(shown));
  });
  WhenShown ask("#32770", "Print", printer.File(), [](HWND shown, const std::string& printed) {
    const HWND before = FindWindowA("QxViewPreview", nullptr);
    PostMessageA(shown, WM_COMMAND, IDOK, 0);
    for (int i = 0; i < 1500 && GetFileAttributesA(printed.c_str()) == INVALID_FILE_ATTRIBUTES; ++i) Sleep(20);
    for (int i = 0; i < 500 && !IsWindowEnabled(before); ++i) Sleep(20);
    PostMessageA(before, WM_COMMAND, kPreviewClose, reinterpret_cast<LPARAM>(before));
  });
  Press(tree_, 'P', true);
  EXPECT_TRUE(dialog.Done() && preview.Done() && ask.Done());
  const std::vector<std::string> pages = printer.Pages();
  ASSERT_GT(pages.size(), 1u) << ::testing::PrintToString(told);
  const std::string count = std::to_string(pages.size());
  EXPECT_EQ(told, (std::vector<std::string>{"Page 1 of " + count, "Page 2 of " + count}));
  std::string all;
  for (size_t i = 0; i < pages.size(); ++i) {
    // Its head, what the window calls itself, and its number.
    EXPECT_EQ(pages[i].rfind("Packet", 0), 0u) << pages[i];
    EXPECT_NE(pages[i].find("Packets" + std::to_string(i + 1)), std::string::npos) << pages[i];
    all += pages[i];
  }
  EXPECT_NE(pages[0].find("Packet273bytescaptured"), std::string::npos) << pages[0];
  EXPECT_LT(all.find("Packet273bytescaptured"), all.find("Packet387bytescaptured")) << all;
  EXPECT_EQ(all.find("Packet160"), std::string::npos) << "nobody wanted the first one";
  EXPECT_NE(all.find("Timetolive64"), std::string::npos);
  EXPECT_NE(all.find("DomainName"), std::string::npos);
  EXPECT_NE(all.find("Bytes0000020000000001020000000002"), std::string::npos) << all;
  EXPECT_EQ(FIND(library_, GetCurrentPacketNumber)(view_), 1) << "what is shown stays";
}

TEST_F(PacketWindow, PrintsMarkedPacketsTwoPagesOnASheet) {
  told.clear();
  for (const uint64_t number : {1u, 3u}) {
    Choose(number);
    Press(tree_, 'M', true);
  }
  EXPECT_EQ(Cell(0, 0) + Cell(1, 0) + Cell(2, 0), "* 12* 3");
  EXPECT_EQ(Status(), "2 packets are marked");
  Press(tree_, VK_F2);
  EXPECT_EQ(FIND(library_, GetCurrentPacketNumber)(view_), 1) << "around to the first one that is marked";
  WhenShown dialog("#32770", "Print Packets", "", [](HWND shown, const std::string&) {
    CheckRadioButton(shown, 204, kPrintChosen, kPrintMarked);
    CheckDlgButton(shown, kPrintTwoUp, BST_CHECKED);
    SetDlgItemTextA(shown, kPrintFont, "15");
    PostMessageA(shown, WM_COMMAND, kPrintPreview, 0);
  });
  WhenShown preview("QxViewPreview", nullptr, "", [](HWND shown, const std::string&) {
    told.push_back(ToldBy(shown));
    PostMessageA(shown, WM_KEYDOWN, VK_END, 0);
    PostMessageA(shown, WM_KEYDOWN, VK_PRIOR, 0);
    PostMessageA(shown, WM_KEYDOWN, VK_NEXT, 0);
    Sleep(500);
    told.push_back(ToldBy(shown));
    PostMessageA(shown, WM_KEYDOWN, VK_ESCAPE, 0);
  });
  Press(tree_, 'P', true);
  EXPECT_TRUE(dialog.Done() && preview.Done());
  ASSERT_EQ(told.size(), 2u);
  EXPECT_EQ(told[0].rfind("Pages 1 and 2 of ", 0), 0u) << ::testing::PrintToString(told);
  EXPECT_EQ(told[1].rfind("Page", 0), 0u) << told[1];
  EXPECT_NE(told[0], told[1]);
}

TEST_F(PacketWindow, TellsWhatCannotBePrinted) {
  told.clear();
  Choose(1);
  WhenShown dialog("#32770", "Print Packets", "", [](HWND shown, const std::string&) {
    const auto refused = [shown] {
      PostMessageA(shown, WM_COMMAND, kPrintPreview, 0);
      HWND box = nullptr;
      for (int i = 0; i < 500 && !(box = FindWindowA("#32770", "Print")); ++i) Sleep(20);
      char text[300] = "";
      GetDlgItemTextA(box, 0xFFFF, text, sizeof text);
      told.push_back(text);
      SendMessageA(box, WM_CLOSE, 0, 0);
      for (int i = 0; i < 500 && IsWindow(box); ++i) Sleep(20);
    };
    CheckRadioButton(shown, 204, kPrintChosen, kPrintChosen);
    SetDlgItemTextA(shown, kPrintChosenText, "3-x");
    refused();
    CheckRadioButton(shown, 204, kPrintChosen, 204);
    SetDlgItemTextA(shown, kPrintFont, "99");
    refused();
    CheckDlgButton(shown, kPrintTree, BST_UNCHECKED);
    refused();
    PostMessageA(shown, WM_COMMAND, IDCANCEL, 0);
  });
  Press(tree_, 'P', true);
  EXPECT_TRUE(dialog.Done());
  ASSERT_EQ(told.size(), 3u);
  EXPECT_NE(told[0].find("\"3-x\" is no packet number"), std::string::npos) << told[0];
  EXPECT_NE(told[1].find("from 3 to 36"), std::string::npos) << told[1];
  EXPECT_NE(told[2].find("at least one"), std::string::npos) << told[2];
}

}  // namespace
