// The library as a Windows program meets it: loaded by name, its functions looked up by their plain names, its settings in
// the registry, its message boxes and dialogs on a screen.
#include <gtest/gtest.h>
#include <windows.h>
// Behind windows.h, whose types it uses.
#include <dlgs.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/windows/library.h"

namespace {

// In front of the others: what loading costs before anything that the library needs has been loaded.
TEST(Library, LoadsQuickly) {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  double best = 1e9;
  for (int round = 0; round < 5; ++round) {
    QueryPerformanceCounter(&start);
    const Library library;
    QueryPerformanceCounter(&end);
    ASSERT_TRUE(library.Good());
    const double milliseconds = 1e3 * static_cast<double>(end.QuadPart - start.QuadPart) /
                                static_cast<double>(frequency.QuadPart);
    if (round == 0) std::printf("loading the library took %.2f ms the first time, ", milliseconds);
    best = milliseconds < best ? milliseconds : best;
  }
  std::printf("%.2f ms at best\n", best);
  EXPECT_LT(best, 20);   // most of it puts the addresses in the decoders' tables right, some 160,000
}

TEST(Library, AnswersByItsPlainNames) {
  const Library library;
  EXPECT_GE(FIND(library, GetQxViewVersion)(), 0x700u);
  const NameTableEntry names[] = {{7, "seven"}, {3, "three"}};
  EXPECT_STREQ(FIND(library, GetNameDescriptorPlus)(names, 3, 2, "none"), "three");
  char out[100];
  const std::string request = "GET /a HTTP/1.1\r\nHost: h.example\r\n\r\n";
  EXPECT_EQ(FIND(library, GetHTTPDescription)(reinterpret_cast<const uint8_t*>(request.data()),
                                              static_cast<int32_t>(request.size()), out, sizeof out, 0), 1);
  EXPECT_STREQ(out, "HTTP GET http://h.example/a");
}

class View {
 public:
  explicit View(const Library& library) : library_(library), view_(FIND(library, QxView_CreateView)(nullptr)) {}
  ~View() { FIND(library_, QxView_DestroyView)(view_); }
  void* Get() const { return view_; }
  void Decode(const Bytes& frame) {
    FIND(library_, QxView_DecodeBytes)(view_, 0, frame.data(), static_cast<int32_t>(frame.size()),
                                       static_cast<uint32_t>(frame.size()), 0);
  }
  // The texts of the lines under one, with what is under them.
  std::string Text() { return TextOf(FIND(library_, QxView_FirstLine)(view_), ""); }

 private:
  std::string TextOf(uintptr_t line, const std::string& indent) {
    std::string all;
    for (; line; line = FIND(library_, QxView_NextLine)(view_, line)) {
      char text[600];
      FIND(library_, QxView_LineText)(view_, line, text, sizeof text);
      all += indent + text + "\n" + TextOf(FIND(library_, QxView_FirstChild)(view_, line), indent + "  ");
    }
    return all;
  }
  const Library& library_;
  void* view_;
};

const Bytes kDatagram = Hex("020000000001 020000000002 0800  4510 0020 0001 4000 40 11 0000 C0000201 C0000202"
                            "1F90 1F91 000C 0000 41424344");
const Bytes kLamp = Hex("020000000001 020000000002 88B5  4C414D50 01 07 0032  00000000");

TEST(Settings, ComeFromTheRegistry) {
  const Library library;
  Registry registry;
  {
    View view(library);
    view.Decode(kDatagram);
    EXPECT_NE(view.Text().find("Type of Service: Routine Precedence"), std::string::npos) << view.Text();
    EXPECT_EQ(view.Text().find("[8080] HTTP"), std::string::npos);
  }
  registry.Set("View", "TypeOfServiceMode", "0x2");
  registry.Set("View", "WindowPlacement", "is the analyzer's");
  registry.Set("Protocols", "udp:8080", "DNS");
  {
    View view(library);
    view.Decode(kDatagram);
    EXPECT_NE(view.Text().find("DSCP"), std::string::npos) << view.Text();
    EXPECT_NE(view.Text().find("DNS"), std::string::npos) << view.Text();
  }
  registry.Set("View", "TypeOfServiceMode", "two");
  EXPECT_EQ(View(library).Get(), nullptr) << "a value that is not of its kind is refused";
}

TEST(Settings, NameUserDecoderLibraries) {
  const Library library;
  Registry registry;
  registry.Set("View", "CustomLibrary0", "plugins\\lamp_decoder.dll");
  registry.Set("View", "CustomLibrary1", "plugins\\missing.dll");
  View view(library);
  view.Decode(kLamp);
  const std::string lines = "LAMP: Lamp Control Message\n  Version: 1\n  Lamp: 7\n  Brightness: 50 %\n";
  EXPECT_EQ(view.Text(), lines);
  void* window = FIND(library, CreateViewWindow)(view.Get(), nullptr, 0, 0, 300, 200);
  ASSERT_NE(window, nullptr);
  view.Decode(kLamp);
  EXPECT_EQ(view.Text(), lines) << "in a window the library adds items to the tree view control";
  int32_t offset;
  uint32_t length;
  EXPECT_EQ(FIND(library, QxView_LineRange)(view.Get(), FIND(library, QxView_FirstLine)(view.Get()), &offset, &length,
                                            nullptr), 1);
  EXPECT_EQ(offset, 14);
  EXPECT_EQ(length, 8u);
  TemporaryFile file;
  ASSERT_EQ(FIND(library, QxView_SetOutput)(view.Get(), QXVIEW_SAVE, file.Handle()), 1);
  view.Decode(kLamp);
  FIND(library, QxView_SetOutput)(view.Get(), QXVIEW_DISPLAY, 0);
  EXPECT_EQ(file.Read(), "LAMP: Lamp Control Message\r\n    Version: 1\r\n    Lamp: 7\r\n    Brightness: 50 %\r\n");
}

TEST(Windows, ShowTheLinesOfTheirView) {
  const Library library;
  Registry registry;
  View view(library);
  EXPECT_EQ(FIND(library, CorrectView)(view.Get()), 0);
  EXPECT_EQ(FIND(library, SetFocusOnDecodeList)(view.Get()), 0);
  view.Decode(kDatagram);
  const std::string lines = view.Text();
  const HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
  ASSERT_TRUE(FIND(library, CreateViewWindow)(view.Get(), parent, 0, 0, 0, 0));
  EXPECT_EQ(view.Text(), "");
  view.Decode(kDatagram);
  EXPECT_EQ(view.Text(), std::string(lines).replace(7, 1, "2")) << "the second packet";
  const uintptr_t top = FIND(library, QxView_FirstLine)(view.Get());
  EXPECT_EQ(FIND(library, QxView_LineImage)(view.Get(), top), 9);
  EXPECT_EQ(FIND(library, QxView_LineImage)(view.Get(), 1000), -1);
  EXPECT_EQ(FIND(library, QxView_LineRange)(view.Get(), 0, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(FIND(library, CorrectView)(view.Get()), 1);
  EXPECT_EQ(FIND(library, SetFocusOnDecodeList)(view.Get()), 1);
  FIND(library, ClearDecodeLists)(view.Get());
  EXPECT_EQ(view.Text(), "");
  DestroyWindow(parent);
  view.Decode(kDatagram);
  EXPECT_EQ(view.Text(), std::string(lines).replace(7, 1, "3")) << "back in memory";
}

TEST(Embedding, VisitsLinesOfATreeAndTellsWhatIsWrong) {
  const Library library;
  Registry registry;
  QxViewOptions options{};
  options.size = sizeof options;
  options.settings = "[View]\nNonsense = 1\n";
  const QxView_CreateViewWithFunction create = FIND(library, QxView_CreateViewWith);
  EXPECT_EQ(create(&options), nullptr);
  EXPECT_STREQ(FIND(library, QxView_LastError)(), "the settings, line 2: there is no setting \"Nonsense\"");
  EXPECT_EQ(FIND(library, QxView_OpenCapture)("c:\\no\\such"), nullptr);
  EXPECT_NE(std::string(FIND(library, QxView_LastError)()).find("no\\such"), std::string::npos);
  View view(library);
  EXPECT_EQ(FIND(library, QxView_DecodeLinkType)(view.Get(), 1, kDatagram.data(), 46, 46, 0), 1);
  std::string all;
  const auto keep = [](void* user, const QxLineInfo* line) -> int32_t {
    *static_cast<std::string*>(user) += std::string(static_cast<size_t>(2 * line->depth), ' ') + line->text + "\n";
    return 0;
  };
  EXPECT_GT(FIND(library, QxView_VisitLines)(view.Get(), keep, &all), 10);
  EXPECT_EQ(all, view.Text());
  QxPacketLine line{};
  line.size = sizeof line;
  EXPECT_EQ(FIND(library, QxView_PacketLine)(view.Get(), &line), 1);
  EXPECT_STREQ(line.source, "192.0.2.1");
}

TEST(Files, LinesAreWrittenToAHandle) {
  const Library library;
  Registry registry;
  TemporaryFile file;
  View view(library);
  ASSERT_EQ(FIND(library, QxView_SetOutput)(view.Get(), QXVIEW_SAVE, file.Handle()), 1);
  view.Decode(kDatagram);
  EXPECT_EQ(FIND(library, QxView_SetOutput)(view.Get(), QXVIEW_DISPLAY, 0), 1);
  EXPECT_EQ(file.Read().rfind("Packet 1:  46 bytes captured\r\n", 0), 0u) << file.Read();
}

TEST(Files, PacketsAreSavedAndAppended) {
  const Library library;
  static uint8_t record[132] = {};
  record[12] = 32;         // the data's offset
  record[10] = record[8] = 100;
  QxHost host{};
  host.size = sizeof host;
  host.captureBufferState = [](void*, QxCaptureBufferState* state) -> int32_t { return state->packetCount = 3, 1; };
  host.lendPacket = [](void*, uint64_t) -> const void* {
    const uint16_t whole = sizeof record;
    std::memcpy(record + 14, &whole, sizeof whole);
    return record;
  };
  TemporaryFile file;
  QxSaveRecord save{};
  save.size = sizeof save;
  save.file = file.Handle();
  save.firstPacket = 1;
  save.lastPacket = 3;
  EXPECT_EQ(FIND(library, SaveCaptureBuffer)(&host, &save, nullptr), 1);
  const size_t length = file.Read().size();
  EXPECT_GT(length, 3 * sizeof record);
  save.append = 1;
  file.Rewind();
  EXPECT_EQ(FIND(library, SaveCaptureBuffer)(&host, &save, nullptr), 1);
  EXPECT_EQ(file.Read().size(), length + 3 * sizeof record);
}

// Answers boxes and dialogs with one title, each with a button of its own, and notes what they show.
class Answers {
 public:
  Answers(const char* title, std::vector<int> buttons) : title_(title), buttons_(std::move(buttons)) {
    thread_ = CreateThread(nullptr, 0, Enter, this, 0, nullptr);
  }
  // What was shown, "filter: NAME" for a dialog that asks for a file.
  std::vector<std::string> Shown() {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    return shown_;
  }

 private:
  static constexpr int kMostTries = 500;   // every 20 ms

  static DWORD WINAPI Enter(void* self) { return static_cast<Answers*>(self)->Give(), 0; }
  void Give() {
    HWND before = nullptr;
    for (const int button : buttons_) {
      HWND window = nullptr;
      for (int i = 0; i < kMostTries && (!window || window == before || !IsWindowVisible(window)); ++i) {
        Sleep(20);
        window = FindWindowA("#32770", title_);
      }
      if (!window) return;
      shown_.push_back(TextOf(window));
      PostMessageA(window, WM_COMMAND, static_cast<WPARAM>(button), 0);
      before = window;
    }
  }
  static std::string TextOf(HWND window) {
    char text[1000] = "";
    if (HWND filters = GetDlgItem(window, cmb1)) {
      SendMessageA(filters, CB_GETLBTEXT, 0, reinterpret_cast<LPARAM>(text));
      return std::string("filter: ") + text;
    }
    EnumChildWindows(window, KeepLongest, reinterpret_cast<LPARAM>(text));
    return text;
  }
  static BOOL CALLBACK KeepLongest(HWND child, LPARAM out) {
    char* best = reinterpret_cast<char*>(out);
    char own[1000] = "";
    GetWindowTextA(child, own, sizeof own);
    if (std::strlen(own) > std::strlen(best)) std::strcpy(best, own);
    return TRUE;
  }

  const char* title_;
  std::vector<int> buttons_;
  std::vector<std::string> shown_;
  HANDLE thread_;
};

using Texts = std::vector<std::string>;

TEST(Boxes, ShowTheResultOfASave) {
  const Library library;
  const auto show = FIND(library, DisplaySaveBufferResultMsg);
  QxSaveRecord save{};
  save.size = sizeof save;
  save.fileName = "c:\\a.bfr";
  Answers named("c:\\a.bfr", {IDOK});
  EXPECT_EQ(show(nullptr, &save, 11, 0), 1);
  EXPECT_EQ(named.Shown(), Texts{"No packets to save."});
  Answers titled("Save Packet Buffer", {IDOK});
  EXPECT_EQ(show(nullptr, &save, 13, 0), 1);
  EXPECT_EQ(titled.Shown(), Texts{"Unable to save packet buffer: c:\\a.bfr."});
  EXPECT_EQ(show(nullptr, &save, 1, 0), 0) << "success shows nothing";
}

TEST(Dialogs, AskForCaptureFiles) {
  const Library library;
  const Texts asked = {"filter: Vantrell Capture (*.BFR)"};
  char name[MAX_PATH] = "";
  const auto cancelled = [&](const char* title, auto* show, int32_t flag) {
    Answers answers(title, {IDCANCEL});
    EXPECT_EQ(show(nullptr, flag, name, sizeof name), 0) << title;
    EXPECT_EQ(answers.Shown(), asked) << title;
  };
  const auto save = FIND(library, DisplaySaveBufferDialog);
  const auto load = FIND(library, GetLoadBufferFileName), open = FIND(library, QxView_OpenCaptureFileDlg);
  cancelled("Save Packet Capture Buffer", save, 0);
  cancelled("Save Packet Capture Buffer from Remote Probe", save, 1);
  cancelled("Load Saved Packet Capture Buffer", load, 0);
  cancelled("Load Saved Packet Capture Buffer (Skip Duplicates)", open, 1);
}

TEST(Dialogs, RefuseAFileThatAnotherProgramHolds) {
  const Library library;
  char name[MAX_PATH];
  TemporaryFile held;
  std::strcpy(name, held.Name());
  Answers answers("Load Saved Packet Capture Buffer", {IDOK, IDOK, IDCANCEL});
  EXPECT_EQ(FIND(library, GetLoadBufferFileName)(nullptr, 0, name, sizeof name), 0);
  const std::string filter = "filter: Vantrell Capture (*.BFR)";
  EXPECT_EQ(answers.Shown(), (Texts{filter, "File is currently being used by Vantrell or another program.\nPlease "
                                            "select a different file name.", filter}));
}

}  // namespace
