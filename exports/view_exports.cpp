// The exports over views: making them, decoding into them, and the plain functions of names and version.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "core/bounded_text.h"
#include "core/formatter.h"
#include "core/frame_entry.h"
#include "core/line_facts.h"
#include "exports/view_packets.h"
#include "files/capture_formats.h"
#include "host/key_log.h"
#include "platform/mib_modules.h"
#include "platform/platform.h"
#include "qxview/version.h"

using namespace qxview;

namespace {

thread_local char lastError[512];   // plain bytes: a thread may end while the library is unloaded

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

std::unique_ptr<StandaloneHost> MakeOwnHost(const QxHost* lent, const char* settings, std::string* message) {
  bool fileFault;
  HostOptions options;
  if (settings) {
    options.settingsText = settings;
  } else if (!lent) {
    options.userSettings = FindUserSettings();
  }
  options.applicationDirectory = ExecutableDirectory();
  options.readMibModules = ReadMibModules;
  return StandaloneHost::Create(options, message, &fileFault);
}

std::unique_ptr<ExportedView> MakeView(const QxHost* lent, const char* settings, std::string* message) {
  auto view = std::make_unique<ExportedView>();
  view->ownHost = MakeOwnHost(lent, settings, message);
  if (!view->ownHost) return nullptr;
  if (lent) view->lentHost = std::make_unique<CompletedHost>(lent, *view->ownHost, settings != nullptr);
  const QxHost* host = lent ? view->lentHost->Record() : view->ownHost->Record();
  view->session = Session::Create(host, PlatformLibraryLoader());
  if (!view->session) return *message = "out of memory", nullptr;
  view->ownHost->Attach(view->session.get());
  const char* keyLog = view->session->GetEngine()->settings.tlsKeyLog;
  if (keyLog[0]) ReadKeyLog(view->session->GetView(), keyLog, &view->keyLogFault);
  return view;
}

void TellLinkType(ExportedView* view, const FrameRecord* record) {
  if (!view->message || !HasFullHeader(record) || FindFrameDecoder(record)) return;
  for (const uint16_t told : view->toldLinkTypes) {
    if (told == record->linkType) return;
  }
  view->toldLinkTypes.push_back(record->linkType);
  TellUser(view, QXVIEW_NOTE, "link type " + std::to_string(record->linkType) + " (" + LinkTypeName(record->linkType) +
                                  ") has no decoder; its packets are not decoded");
}

// The user libraries that the settings name are loaded with the view; those that are not are told of.
void TellLibraries(const ExportedView* view) {
  const Engine& engine = *view->session->GetEngine();
  const auto read = QXVIEW_HOST_FUNCTION(engine.host, readSetting);
  int32_t named = 0;
  for (char path[1024]; read && named < kMostCustomLibraries; ++named) {
    char name[32];
    FormatInto(name, sizeof name, "CustomLibrary%u", named);
    if (read(engine.host->user, name, path, sizeof path) != 1 || !path[0]) break;
  }
  if (const int32_t missing = named - engine.libraries.count; missing > 0) {
    TellUser(view, QXVIEW_NOTE, std::to_string(missing) + " of " + std::to_string(named) +
                                    " user libraries are not loaded: " + LibraryFailure());
  }
}

// Decodes the record in the view's own memory.
int32_t DecodeOwnRecord(ExportedView* view, uint32_t userParam1, uint32_t userParam2, int32_t skipBytes) try {
  const auto* record = reinterpret_cast<const FrameRecord*>(view->record);
  view->hasPacket = true;
  view->line.made = false;
  const int32_t handled = view->session->Decode(record, userParam1, userParam2, skipBytes);
  if (!view->lentHost || view->lentHost->KeepsSegments()) view->ownHost->FinishPacket();
  if ((record->flags & kRecordCutToFit) && view->message) {
    TellUser(view, QXVIEW_NOTE, "packet " + std::to_string(record->packetNumber) +
                                    " is longer than a record holds and was cut");
  }
  TellLinkType(view, record);
  ShowFrameInWindow(view->session.get(), record);
  return handled;
} catch (...) {
  return Fail("out of memory");
}

bool CheckBytes(void* view, const uint8_t* data, int32_t length) {
  ForgetError();
  if (!view) return Fail("there is no view");
  if (length < 0) return Fail("the length is negative");
  return data || length == 0 ? true : Fail("there are no bytes");
}

}  // namespace

namespace qxview {

bool Fail(const char* reason) {
  CopyString(lastError, sizeof lastError, reason);
  return false;
}

void ForgetError() { lastError[0] = 0; }

void TellUser(const ExportedView* view, int32_t kind, const std::string& text) {
  if (view->message) view->message(view->messageUser, kind, text.c_str());
}

}  // namespace qxview

uint32_t GetQxViewVersion(void) { return (QXVIEW_VERSION_MAJOR << 8) + QXVIEW_VERSION_MINOR; }

const char* GetNameDescriptorPlus(const NameTableEntry* table, uint32_t code, int32_t count,
                                  const char* defaultName) {
  return FindName(table, code, count, defaultName);
}

const char* QxView_LastError(void) { return lastError; }

void* QxView_CreateView(const QxHost* host) try {
  ForgetError();
  std::string message;
  auto view = MakeView(host, nullptr, &message);
  if (!view) {
    Fail(message.c_str());
    std::fprintf(stderr, "qxview: %s\n", message.c_str());
  }
  return view.release();
} catch (...) {
  return Fail("out of memory"), nullptr;   // nothing is thrown through a C function; only memory can have run out
}

void* QxView_CreateViewWith(const QxViewOptions* options) try {
  ForgetError();
  QxViewOptions told{};
  // Members are as wide as pointers: half of one is none.
  if (options) std::memcpy(&told, options, std::min<size_t>(options->size / sizeof(void*) * sizeof(void*), sizeof told));
  std::string message;
  auto view = MakeView(told.host, told.settings, &message);
  if (view) {
    view->message = told.message;
    view->messageUser = told.messageUser;
    TellLibraries(view.get());
    if (!view->keyLogFault.empty()) TellUser(view.get(), QXVIEW_NOTE, view->keyLogFault);
    if (const int32_t count = view->session->GetEngine()->unreadableSettings) {
      TellUser(view.get(), QXVIEW_NOTE,
               std::to_string(count) + " settings of the host are no numbers and keep their defaults");
    }
  } else {
    Fail(message.c_str());
    if (told.message) told.message(told.messageUser, QXVIEW_ERROR, message.c_str());
  }
  return view.release();
} catch (...) {
  return Fail("out of memory"), nullptr;
}

void QxView_DestroyView(void* view) {
  if (!view) return;
  EndOutput(ViewOf(view));
  CloseViewWindow(ViewOf(view)->session.get());
  delete ViewOf(view);
}

int32_t QxView_SetOutput(void* view, int32_t mode, intptr_t file) try {
  ForgetError();
  if (!view) return Fail("there is no view");
  if (mode != kDisplayMode && mode != kPrintMode && mode != kSaveMode && mode != QXVIEW_LIST) {
    return Fail("there is no such output mode");
  }
  ExportedView* exported = ViewOf(view);
  const bool good = EndOutput(exported);
  if (mode == QXVIEW_LIST) {
    ClearDecodeLists(view);
    exported->session->DecodeHeadersOnly();
  } else if (mode != kDisplayMode) {
    exported->output = std::make_unique<OutputFile>();
    OpenOutput(exported->output.get(), FileSink(file));
    exported->session->SetOutput(static_cast<char>(mode), exported->output.get());
  }
  return good ? 1 : Fail("an earlier write to the file did not succeed");
} catch (...) {
  return Fail("out of memory");
}

int32_t QxView_DecodeFrame(void* view, const void* frameRecord, uint32_t userParam1, uint32_t userParam2,
                           int32_t skipBytes) {
  ForgetError();
  if (!view || !frameRecord) return Fail(view ? "there is no record" : "there is no view");
  FrameRecord head{};
  std::memcpy(&head, frameRecord, kBareRecordHeader);
  if (!IsSound(&head)) return Fail("the record's lengths contradict each other");
  // What the list shows of the packet may be asked for when the caller's record is gone.
  std::memmove(ViewOf(view)->record, frameRecord, head.recordLength);
  std::memcpy(ViewOf(view)->record, &head, kBareRecordHeader);   // as it was checked
  return DecodeOwnRecord(ViewOf(view), userParam1, userParam2, skipBytes);
}

int32_t QxView_DecodeBytes(void* view, int32_t mediaType, const uint8_t* data, int32_t length,
                           uint32_t originalLength, int64_t nanoseconds) {
  if (!CheckBytes(view, data, length)) return 0;
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
  return DecodeOwnRecord(exported, 0, 0, 0);
}

int32_t QxView_DecodeLinkType(void* view, uint16_t linkType, const uint8_t* data, int32_t length,
                              uint32_t originalLength, int64_t nanoseconds) {
  if (!CheckBytes(view, data, length)) return 0;
  ExportedView* exported = ViewOf(view);
  CaptureFrame frame{};
  frame.number = ++exported->packets;
  frame.nanoseconds = nanoseconds;
  frame.capturedLength = frame.dataLength = static_cast<uint32_t>(length);
  frame.wireLength = originalLength;
  frame.data = data;
  frame.linkType = NormalizeLinkType(linkType);
  const FrameRecord* record = exported->builder.Build(frame);
  std::memcpy(exported->record, record, record->recordLength);
  return DecodeOwnRecord(exported, 0, 0, 0);
}

int64_t GetCurrentPacketNumber(void* view) {
  return view ? CurrentPacketNumber(ViewOf(view)->session->GetView()) : -1;
}

void ClearDecodeLists(void* view) {
  if (view) ClearDecodeTree(ViewOf(view)->session->GetView(), &TreeOf(view), true);
}

void* CreateViewWindow(void* view, void* parent, int32_t left, int32_t top, int32_t width, int32_t height) try {
  if (!view) return nullptr;
  ExportedView* exported = ViewOf(view);
  if (!exported->windowPackets) exported->windowPackets = std::make_unique<ViewPackets>(exported);
  KeepFacts(&exported->session->Context(), true);   // the selected line's key is shown
  return OpenViewWindow(exported->session.get(), parent, {left, top, width, height}, exported->windowPackets.get());
} catch (...) {
  return nullptr;
}

int32_t CorrectView(void* view) { return view && FitViewWindow(ViewOf(view)->session.get()) ? 1 : 0; }

int32_t SetFocusOnDecodeList(void* view) { return view && FocusViewWindow(ViewOf(view)->session.get()) ? 1 : 0; }
