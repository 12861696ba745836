// A Windows program around qxview.dll: it lends a capture's packets, and the view's window shows them in a list, the selected
// one as a tree and as bytes.
//
//   windows_host CAPTURE [PACKET [TEXT]]     CAPTURE: a file of any form that qxview reads; the packet's number, from 1; a
//                                            text: the first line that holds it is selected
//
// The view's keys are those of its menu (right mouse button, Shift+F10).
#include <windows.h>
// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qxview/qxview.h"

namespace {

// ---- The library: loaded at run time, its functions by their names ----

HMODULE library;

#define QX(name) reinterpret_cast<decltype(&name)>(reinterpret_cast<void*>(GetProcAddress(library, #name)))

// ---- The capture: packets as the records that capture buffers hold (docs/capture-file.md), which begin with the packet's time
// and have their length in bytes 14 and 15 ----

std::vector<std::vector<char>> packets;

void ReadCapture(const char* name) {
  void* capture = QX(QxView_OpenCapture)(name);
  QxPacket packet{};
  packet.size = sizeof packet;
  while (capture && QX(QxView_NextPacket)(capture, &packet) == 1) {
    const char* record = static_cast<const char*>(packet.record);
    uint16_t length;
    std::memcpy(&length, record + 14, sizeof length);
    packets.emplace_back(record, record + length);
  }
  QX(QxView_CloseCapture)(capture);
}

int32_t CountPackets(void*, QxCaptureBufferState* out) {
  out->packetCount = packets.size();
  return 1;
}

const void* LendPacket(void*, uint64_t number) {
  return number >= 1 && number <= packets.size() ? packets[static_cast<size_t>(number) - 1].data() : nullptr;
}

// ---- What the module asks of its host: settings, names of addresses, protocols of ports ----

int32_t ReadSetting(void*, const char* name, char* out, int32_t outSize) {
  if (std::strncmp(name, "Expand", 6) != 0) return 0;   // the others have their defaults
  lstrcpynA(out, "1", outSize);
  return 1;
}

int32_t AddressAlias(void*, uint32_t kind, const uint8_t* address, char* out, int32_t outSize) {
  constexpr uint8_t kOurs[] = {2, 0, 0, 0, 0};
  if (kind != 0 || std::memcmp(address, kOurs, sizeof kOurs) != 0) return 0;   // hardware addresses alone
  lstrcpynA(out, address[5] == 1 ? "desk" : "server", outSize);
  return 1;
}

struct PortRow {
  uint16_t port;
  int32_t identifier;   // as `qxview protocols` lists them
};
constexpr PortRow kPorts[] = {{21, 0x1000C}, {23, 0x10010}, {25, 0x1000E},
                              {53, 0x10001}, {80, 0x10004}, {110, 0x1000F}};

void* DefinitionTable(void*, int32_t which) {
  const bool ports = which == QX_TCP_PORTS || which == QX_UDP_PORTS;
  return ports ? const_cast<PortRow*>(kPorts) : nullptr;
}

int32_t HashFind(void*, void*, uint16_t port, int32_t* identifier) {
  for (const PortRow& row : kPorts) {
    if (row.port != port) continue;
    *identifier = row.identifier;
    return 1;
  }
  return 0;
}

// A program that captures would start it or set its filter; this one tells what it was asked for.
HWND window;
int32_t TakeRequest(void*, const QxViewRequest* request) {
  if (!request) return 1;   // these are offered
  const char* const kKinds[] = {"", "Start capture", "Post-filter", "Filter"};
  char text[400];
  const auto* from = request->source.address + 12;
  const auto* to = request->destination.address + 12;
  std::snprintf(text, sizeof text, "%s: %u.%u.%u.%u port %u, %u.%u.%u.%u port %u; the line: %s", kKinds[request->kind],
                from[0], from[1], from[2], from[3], request->sourcePort, to[0], to[1], to[2], to[3],
                request->destinationPort, request->expression);
  SetWindowTextA(window, text);
  return 1;
}

const QxHost* Host() {
  static QxHost host{};
  host.size = sizeof host;
  host.readSetting = ReadSetting;
  host.addressAlias = AddressAlias;
  host.definitionTable = DefinitionTable;
  host.hashFind = HashFind;
  host.captureBufferState = CountPackets;
  host.lendPacket = LendPacket;
  host.viewRequest = TakeRequest;
  return &host;
}

// ---- The window ----

void* view;

// The first line that holds the text, from this one and its siblings on; 0 when none does.
uintptr_t FindLine(uintptr_t line, const char* text) {
  for (; line; line = QX(QxView_NextLine)(view, line)) {
    char held[512];
    QX(QxView_LineText)(view, line, held, sizeof held);
    if (std::strstr(held, text)) return line;
    if (const uintptr_t below = FindLine(QX(QxView_FirstChild)(view, line), text)) return below;
  }
  return 0;
}

LRESULT CALLBACK RunWindow(HWND handle, UINT message, WPARAM what, LPARAM value) {
  switch (message) {
    case WM_CREATE: return QX(CreateViewWindow)(view, handle, 0, 0, 0, 0) ? 0 : -1;
    case WM_SIZE: return QX(CorrectView)(view), 0;
    case WM_SETFOCUS: return QX(SetFocusOnDecodeList)(view), 0;
    case WM_DESTROY: return PostQuitMessage(0), 0;
    default: return DefWindowProcA(handle, message, what, value);
  }
}

int Fail(const char* message) {
  std::fprintf(stderr, "windows_host: %s\n", message);
  return 1;
}

void ShowPacket(size_t number, const char* text) {
  if (number >= 1 && number <= packets.size()) QX(QxView_DecodeFrame)(view, packets[number - 1].data(), 0, 0, 0);
  const HWND tree = FindWindowExA(GetWindow(window, GW_CHILD), nullptr, WC_TREEVIEWA, nullptr);
  const uintptr_t line = text ? FindLine(QX(QxView_FirstLine)(view), text) : 0;
  if (line) SendMessageA(tree, TVM_SELECTITEM, TVGN_CARET, static_cast<LPARAM>(line));
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return Fail("usage: windows_host CAPTURE [PACKET [TEXT]]");
  library = LoadLibraryA("qxview.dll");
  if (!library) return Fail("qxview.dll cannot be loaded");
  ReadCapture(arguments[1]);
  if (packets.empty()) return Fail("no packets there");
  view = QX(QxView_CreateView)(Host());
  if (!view) return Fail("no view");

  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = RunWindow;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "WindowsHost";
  RegisterClassA(&windowClass);
  const std::string title = std::string("qxview - ") + arguments[1];
  const int width = GetSystemMetrics(SM_CXSCREEN) - 40, height = GetSystemMetrics(SM_CYSCREEN) - 40;
  window = CreateWindowExA(0, windowClass.lpszClassName, title.c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 20, 20,
                           width, height, nullptr, nullptr, windowClass.hInstance, nullptr);
  if (!window) return Fail("no window");
  ShowWindow(window, SW_SHOW);
  ShowPacket(count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 1, count > 3 ? arguments[3] : nullptr);
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  QX(QxView_DestroyView)(view);
  FreeLibrary(library);
  return 0;
}
