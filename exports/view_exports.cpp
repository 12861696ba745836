// The exports over views: embedding, and the plain functions of names and version.
#include <cstdio>
#include <cstring>

#include "host/session.h"
#include "host/standalone_host.h"
#include "platform/mib_modules.h"
#include "platform/platform.h"
#include "platform/view_window.h"
#include "qxview/qxview.h"
#include "qxview/version.h"

using namespace qxview;

namespace {

// What a view pointer stands for.
struct ExportedView {
  std::unique_ptr<StandaloneHost> ownHost;   // when the caller lent none
  std::unique_ptr<Session> session;
  std::unique_ptr<OutputFile> output;
  uint64_t packets = 0;
  alignas(8) uint8_t record[kMaxRecord];
};

ExportedView* ViewOf(void* view) { return static_cast<ExportedView*>(view); }

bool EndOutput(ExportedView* view) {
  bool good = true;
  if (view->output) {
    FlushOutput(view->output.get());
    good = !view->output->failed;
  }
  view->session->SetOutput(kDisplayMode, nullptr);
  view->output.reset();
  return good;
}

int32_t DecodeRecord(ExportedView* view, const FrameRecord* record, uint32_t userParam1, uint32_t userParam2,
                     int32_t skipBytes) {
  const int32_t handled = view->session->Decode(record, userParam1, userParam2, skipBytes);
  if (view->ownHost) view->ownHost->FinishPacket();
  return handled;
}

// Where the lines are: in memory, or in the view's window.
DecodeTree& TreeOf(void* view) { return *ViewOf(view)->session->GetView()->tree; }

}  // namespace

uint32_t GetQxViewVersion(void) { return (QXVIEW_VERSION_MAJOR << 8) + QXVIEW_VERSION_MINOR; }

const char* GetNameDescriptorPlus(const NameTableEntry* table, uint32_t code, int32_t count,
                                  const char* defaultName) {
  return FindName(table, code, count, defaultName);
}

void* QxView_CreateView(const QxHost* host) try {
  auto view = std::make_unique<ExportedView>();
  if (!host) {
    std::string message;
    bool fileFault;
    HostOptions options;
    options.userSettings = FindUserSettings();
    options.applicationDirectory = ExecutableDirectory();
    options.readMibModules = ReadMibModules;
    view->ownHost = StandaloneHost::Create(options, &message, &fileFault);
    if (!view->ownHost) {
      std::fprintf(stderr, "qxview: %s\n", message.c_str());
      return nullptr;
    }
    host = view->ownHost->Record();
  }
  view->session = Session::Create(host, PlatformLibraryLoader());
  if (!view->session) return nullptr;
  if (view->ownHost) view->ownHost->Attach(view->session.get());
  return view.release();
} catch (...) {
  return nullptr;   // nothing is thrown through a C function; only memory can have run out
}

void QxView_DestroyView(void* view) {
  if (!view) return;
  EndOutput(ViewOf(view));
  CloseViewWindow(ViewOf(view)->session.get());
  delete ViewOf(view);
}

int32_t QxView_SetOutput(void* view, int32_t mode, intptr_t file) try {
  if (!view || (mode != kDisplayMode && mode != kPrintMode && mode != kSaveMode)) return 0;
  ExportedView* exported = ViewOf(view);
  const bool good = EndOutput(exported);
  if (mode != kDisplayMode) {
    exported->output = std::make_unique<OutputFile>();
    OpenOutput(exported->output.get(), FileSink(file));
    exported->session->SetOutput(static_cast<char>(mode), exported->output.get());
  }
  return good ? 1 : 0;
} catch (...) {
  return 0;
}

int32_t QxView_DecodeFrame(void* view, const void* frameRecord, uint32_t userParam1, uint32_t userParam2,
                           int32_t skipBytes) {
  if (!view || !frameRecord) return 0;
  return DecodeRecord(ViewOf(view), static_cast<const FrameRecord*>(frameRecord), userParam1, userParam2, skipBytes);
}

int32_t QxView_DecodeBytes(void* view, int32_t mediaType, const uint8_t* data, int32_t length,
                           uint32_t originalLength, int64_t nanoseconds) {
  if (!view || length < 0 || (length > 0 && !data)) return 0;
  ExportedView* exported = ViewOf(view);
  const int32_t kept = length < kMaxRecord - kRecordHeader ? length : kMaxRecord - kRecordHeader;
  FrameRecord* record = reinterpret_cast<FrameRecord*>(exported->record);
  *record = FrameRecord{};
  record->nanoseconds = nanoseconds;
  record->capturedLength = static_cast<uint16_t>(kept);
  record->flags = kept < length ? kRecordCutToFit : 0;
  record->dataOffset = kRecordHeader;
  record->recordLength = static_cast<uint16_t>(kRecordHeader + kept);
  record->mediaType = static_cast<uint8_t>(mediaType < 0 || mediaType > 255 ? 255 : mediaType);
  record->layout = 1;
  record->packetNumber = ++exported->packets;
  record->wireLength = originalLength;
  if (kept > 0) std::memcpy(exported->record + kRecordHeader, data, static_cast<size_t>(kept));
  return DecodeRecord(exported, record, 0, 0, 0);
}

uintptr_t QxView_FirstLine(void* view) { return view ? TreeOf(view).FirstChild(0) : 0; }

uintptr_t QxView_NextLine(void* view, uintptr_t line) {
  return view && line ? TreeOf(view).NextSibling(line) : 0;
}

uintptr_t QxView_FirstChild(void* view, uintptr_t line) {
  return view && line ? TreeOf(view).FirstChild(line) : 0;
}

int32_t QxView_LineText(void* view, uintptr_t line, char* out, int32_t outSize) {
  if (!out || outSize < 1) return 0;
  out[0] = 0;
  return view ? TreeOf(view).GetText(line, out, outSize) : 0;
}

int32_t QxView_LineRange(void* view, uintptr_t line, int32_t* offset, uint32_t* length, int32_t* kind) {
  const bool held = view && TreeOf(view).Holds(line);
  const uint32_t index = held ? TreeOf(view).RangeIndex(line) : 0;
  // A line that a user decoder library added may have any index.
  const ByteRange* range = nullptr;
  if (held && index < ViewOf(view)->session->Context().rangeCount) {
    range = &ViewOf(view)->session->Context().rangeTable[index];
  }
  SplitByteRange(range, kind, offset, length);
  return range != nullptr;
}

int32_t QxView_LineImage(void* view, uintptr_t line) {
  return view && TreeOf(view).Holds(line) ? TreeOf(view).Image(line) : -1;
}

int64_t GetCurrentPacketNumber(void* view) {
  return view ? CurrentPacketNumber(ViewOf(view)->session->GetView()) : -1;
}

void ClearDecodeLists(void* view) {
  if (view) ClearDecodeTree(ViewOf(view)->session->GetView(), &TreeOf(view), true);
}

void* CreateViewWindow(void* view, void* parent, int32_t left, int32_t top, int32_t width, int32_t height) try {
  return view ? OpenViewWindow(ViewOf(view)->session.get(), parent, {left, top, width, height}) : nullptr;
} catch (...) {
  return nullptr;
}

int32_t CorrectView(void* view) { return view && FitViewWindow(ViewOf(view)->session.get()) ? 1 : 0; }

int32_t SetFocusOnDecodeList(void* view) { return view && FocusViewWindow(ViewOf(view)->session.get()) ? 1 : 0; }
