// A Windows program that shows packets with qxview.dll: a capture's packet as a tree in the upper part of its window,
// the packet's bytes in the lower one, with those of the selected line marked.
//
//   windows_host CAPTURE [PACKET [TEXT]]     CAPTURE: a pcap file of an Ethernet; the packet's number, from 1; a text:
//                                            the first line that holds it is selected
//
// Page Down and Page Up with Ctrl show the next and the previous packet.
#include <windows.h>
// Behind windows.h, whose types it uses.
#include <commctrl.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "qxview/qxview.h"

namespace {

// ---- The library: loaded at run time, its functions by their names ----

HMODULE library;

#define QX(name) reinterpret_cast<decltype(&name)>(reinterpret_cast<void*>(GetProcAddress(library, #name)))

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

const QxHost* Host() {
  static QxHost host{};
  host.size = sizeof host;
  host.readSetting = ReadSetting;
  host.addressAlias = AddressAlias;
  host.definitionTable = DefinitionTable;
  host.hashFind = HashFind;
  return &host;
}

// ---- The capture: packets as records, the form that capture buffers hold them in (docs/capture-file.md) ----

struct Record {
  int64_t nanoseconds;
  uint16_t capturedLength, flags, dataOffset, recordLength;
  uint8_t medium, partial, layout, direction;
  uint32_t receiveErrors;
  uint64_t packetNumber;
  uint32_t wireLength;
  uint8_t unused[12];
  uint8_t bytes[65535 - 48];
};
static_assert(offsetof(Record, bytes) == 48);

// The packets of a pcap file in this machine's byte order, with times in microseconds.
std::vector<std::unique_ptr<Record>> ReadCapture(const char* name) {
  std::vector<std::unique_ptr<Record>> packets;
  FILE* file = std::fopen(name, "rb");
  uint32_t header[6], packet[4];   // of the file; seconds, microseconds, length captured and on the wire
  if (file && std::fread(header, sizeof header, 1, file) == 1 && header[0] == 0xA1B2C3D4 && header[5] == 1) {
    while (std::fread(packet, sizeof packet, 1, file) == 1 && packet[2] <= sizeof Record::bytes) {
      auto record = std::make_unique<Record>();
      if (packet[2] && std::fread(record->bytes, packet[2], 1, file) != 1) break;
      record->nanoseconds = packet[0] * 1000000000ll + packet[1] * 1000ll;
      record->capturedLength = static_cast<uint16_t>(packet[2]);
      record->dataOffset = offsetof(Record, bytes);
      record->recordLength = static_cast<uint16_t>(record->dataOffset + packet[2]);
      record->layout = 1;
      record->packetNumber = packets.size() + 1;
      record->wireLength = packet[3];
      packets.push_back(std::move(record));
    }
  }
  if (file) std::fclose(file);
  return packets;
}

// ---- The window ----

std::vector<std::unique_ptr<Record>> packets;
size_t shown;
void* view;
HWND tree, bytes;   // the view's window, with the tree view control in it; an edit control
constexpr int kBytesHeight = 80;

// The packet's bytes as text, sixteen a row; a byte's digits stand at 3 * index of its row, whose length is kRow.
constexpr size_t kRow = 3 * 16 + 1;

void ShowBytes() {
  std::string text;
  for (size_t i = 0; i < packets[shown]->capturedLength; ++i) {
    char digits[8];
    std::snprintf(digits, sizeof digits, i % 16 == 15 ? "%02X\r\n" : "%02X ", packets[shown]->bytes[i]);
    text += digits;
  }
  SetWindowTextA(bytes, text.c_str());
}

void MarkBytesOf(uintptr_t line) {
  int32_t offset = 0;
  uint32_t length = 0;
  QX(QxView_LineRange)(view, line, &offset, &length, nullptr);
  const auto place = [](size_t index) { return index / 16 * kRow + index % 16 * 3; };
  const size_t first = static_cast<size_t>(offset), last = first + length - 1;
  SendMessageA(bytes, EM_SETSEL, length ? place(first) : 0, length ? static_cast<LPARAM>(place(last) + 2) : 0);
  SendMessageA(bytes, EM_SCROLLCARET, 0, 0);
}

void ShowPacket(HWND window, size_t index) {
  if (index >= packets.size()) return;
  shown = index;
  ShowBytes();
  QX(QxView_DecodeFrame)(view, packets[index].get(), 0, 0, 0);
  char title[80];
  std::snprintf(title, sizeof title, "qxview - packet %zu of %zu", index + 1, packets.size());
  SetWindowTextA(window, title);
}

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

void PlaceParts(HWND window) {
  RECT area;
  GetClientRect(window, &area);
  const int height = area.bottom > kBytesHeight ? area.bottom - kBytesHeight : 0;
  MoveWindow(tree, 0, 0, area.right, height, TRUE);
  MoveWindow(bytes, 0, height, area.right, kBytesHeight, TRUE);
  QX(CorrectView)(view);
}

LRESULT CALLBACK RunWindow(HWND window, UINT message, WPARAM what, LPARAM value) {
  switch (message) {
    case WM_CREATE: {
      const DWORD style = WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_NOHIDESEL;
      bytes = CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "", style, 0, 0, 0, 0, window, nullptr, nullptr, nullptr);
      SendMessageA(bytes, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)), TRUE);
      tree = static_cast<HWND>(QX(CreateViewWindow)(view, window, 0, 0, 100, 100));
      return tree ? 0 : -1;
    }
    case WM_SIZE:
      PlaceParts(window);
      return 0;
    case WM_SETFOCUS:
      QX(SetFocusOnDecodeList)(view);
      return 0;
    case WM_NOTIFY: {   // of the tree view control
      const auto* note = reinterpret_cast<const NMTREEVIEWA*>(value);
      if (note->hdr.code == TVN_SELCHANGEDA) MarkBytesOf(reinterpret_cast<uintptr_t>(note->itemNew.hItem));
      const auto* key = reinterpret_cast<const NMTVKEYDOWN*>(value);
      if (note->hdr.code == TVN_KEYDOWN && GetKeyState(VK_CONTROL) < 0) {
        if (key->wVKey == VK_NEXT) ShowPacket(window, shown + 1);
        if (key->wVKey == VK_PRIOR && shown > 0) ShowPacket(window, shown - 1);
      }
      return 0;
    }
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcA(window, message, what, value);
  }
}

int Fail(const char* message) {
  std::fprintf(stderr, "windows_host: %s\n", message);
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2) return Fail("usage: windows_host CAPTURE [PACKET [TEXT]]");
  packets = ReadCapture(arguments[1]);
  if (packets.empty()) return Fail("no packets there");
  library = LoadLibraryA("qxview.dll");
  if (!library) return Fail("qxview.dll cannot be loaded");
  view = QX(QxView_CreateView)(Host());
  if (!view) return Fail("no view");

  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = RunWindow;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "WindowsHost";
  RegisterClassA(&windowClass);
  const HWND window = CreateWindowExA(0, windowClass.lpszClassName, "qxview", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 20,
                                      20, 800, 770, nullptr, nullptr, windowClass.hInstance, nullptr);
  if (!window) return Fail("no window");
  ShowPacket(window, count > 2 ? std::strtoul(arguments[2], nullptr, 10) - 1 : 0);
  ShowWindow(window, SW_SHOW);
  if (count > 3) {
    const uintptr_t line = FindLine(QX(QxView_FirstLine)(view), arguments[3]);
    SendMessageA(GetWindow(tree, GW_CHILD), TVM_SELECTITEM, TVGN_CARET, static_cast<LPARAM>(line));
  }
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  QX(QxView_DestroyView)(view);
  FreeLibrary(library);
  return 0;
}
