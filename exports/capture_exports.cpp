// The exports over capture buffer files: saves, their messages, and the dialogs that ask for files.
#include <cstddef>
#include <cstdio>

#include "core/context.h"
#include "files/capture_buffer.h"
#include "host/time_text.h"
#include "platform/dialogs.h"
#include "platform/platform.h"
#include "qxview/qxview.h"

using namespace qxview;

namespace {

BufferFile FileOf(const QxSaveRecord* save) {
  return {const_cast<QxSaveRecord*>(save),
          [](void* record, uint8_t* out, int32_t length) {
            return ReadFileBytes(static_cast<QxSaveRecord*>(record)->file, out, length);
          },
          [](void* record, const uint8_t* bytes, int32_t length) {
            const OutputSink sink = FileSink(static_cast<QxSaveRecord*>(record)->file);
            return sink.write(sink.handle, reinterpret_cast<const char*>(bytes), length);
          }};
}

SaveRequest RequestOf(const QxHost* host, const QxSaveRecord* save, const char* localTime) {
  SaveRequest request{};
  request.file = FileOf(save);
  request.append = save->append != 0;
  request.partial = save->savePartial != 0;
  request.partialBytes = save->partialBytes;
  request.source = save->source;
  request.headerByte = save->headerByte;
  request.name = save->name;
  request.localTime = localTime;
  request.firstNumber = save->firstNumber ? save->firstNumber : 1;
  const auto element = QXVIEW_HOST_FUNCTION(host, optionalElement);
  if (save->useOptionalElement && element && !request.append) request.optionalElement = element(host->user);
  return request;
}

// Saves `count` packets; numberOf gives the number of each.
template <class NumberOf>
SaveResult Save(const QxHost* host, const QxSaveRecord* save, uint64_t count, NumberOf numberOf,
                uint32_t* decompressed) {
  if (decompressed) *decompressed = 0;
  const auto askState = QXVIEW_HOST_FUNCTION(host, captureBufferState);
  const auto lend = QXVIEW_HOST_FUNCTION(host, lendPacket);
  QxCaptureBufferState state{};
  state.size = sizeof state;
  if (!save || save->size < sizeof *save || !askState || !lend || askState(host->user, &state) != 1) {
    return kCaptureBusy;
  }
  if (count == 0 || state.packetCount == 0) return kNoPackets;
  const int64_t now = CurrentTime();
  char localTime[kAscTimeSize];
  FormatAscTime(now + LocalOffset(now), localTime);
  CaptureBufferWriter writer;
  SaveResult result = writer.Begin(RequestOf(host, save, localTime));
  for (uint64_t i = 0; i < count && result == kSaved; ++i) {
    const void* record = lend(host->user, numberOf(i));
    result = record ? writer.Add(static_cast<const FrameRecord*>(record)) : kCaptureBusy;
  }
  // What came before a packet that is not there any more is kept.
  if (result == kSaved || result == kCaptureBusy) {
    if (const SaveResult last = writer.Finish(); result == kSaved) result = last;
  }
  const auto countDecompressed = QXVIEW_HOST_FUNCTION(host, decompressedPackets);
  if (decompressed && countDecompressed) *decompressed = countDecompressed(host->user);
  return result;
}

int32_t AskCaptureFile(void* window, bool saving, const char* title, char* fileName, int32_t size) {
  if (!fileName || size < 1) return 0;
  const FileDialog dialog = {saving, title, "Vantrell Capture (*.BFR)", "*.BFR",
                             "File is currently being used by Vantrell or another program.\nPlease select a different "
                             "file name."};
  return AskFileName(window, dialog, fileName, size) ? 1 : 0;
}

}  // namespace

int32_t SaveCaptureBuffer(const QxHost* host, const QxSaveRecord* save, uint32_t* decompressed) try {
  const uint64_t first = save ? save->firstPacket : 0;
  const uint64_t last = save ? save->lastPacket : 0;
  // The whole 64-bit range has one packet more than can be counted, and no buffer holds that many.
  const uint64_t count = first > last ? 0 : last - first == UINT64_MAX ? UINT64_MAX : last - first + 1;
  return Save(host, save, count, [first](uint64_t i) { return first + i; }, decompressed);
} catch (...) {
  return kCaptureBusy;   // nothing is thrown through a C function
}

int32_t QxView_SavePackets(const QxHost* host, const QxSaveRecord* save, const uint64_t* packets, int32_t count,
                           uint32_t* decompressed) try {
  return Save(host, save, packets && count > 0 ? static_cast<uint64_t>(count) : 0,
              [packets](uint64_t i) { return packets[i]; }, decompressed);
} catch (...) {
  return kCaptureBusy;
}

int32_t DisplaySaveBufferResultMsg(void* window, const QxSaveRecord* save, int32_t result, uint32_t count) {
  const SaveMessage message = SaveResultMessage(result);
  const bool hasRecord = save && save->size >= sizeof *save;
  const char* fileName = hasRecord && save->fileName ? save->fileName : "";
  if (!message.text) return 0;
  if (result == kSaved && (count == 0 || !hasRecord || !save->tellDecompressed)) return 0;
  char text[1024];
  if (result == kSaved) {
    std::snprintf(text, sizeof text, message.text, static_cast<unsigned long>(count));
  } else {
    std::snprintf(text, sizeof text, message.text, fileName);
  }
  ShowMessageBox(window, text, message.title ? message.title : fileName,
                 result == kSaved ? BoxStyle::kInformation : message.isError ? BoxStyle::kError : BoxStyle::kPlain);
  return 1;
}

int32_t DisplaySaveBufferDialog(void* window, int32_t fromProbe, char* fileName, int32_t size) {
  return AskCaptureFile(window, true,
                        fromProbe ? "Save Packet Capture Buffer from Remote Probe" : "Save Packet Capture Buffer",
                        fileName, size);
}

int32_t QxView_OpenCaptureFileDlg(void* window, int32_t skipDuplicates, char* fileName, int32_t size) {
  return AskCaptureFile(window, false,
                        skipDuplicates ? "Load Saved Packet Capture Buffer (Skip Duplicates)"
                                       : "Load Saved Packet Capture Buffer",
                        fileName, size);
}

int32_t GetLoadBufferFileName(void* window, int32_t skipDuplicates, char* fileName, int32_t size) {
  return QxView_OpenCaptureFileDlg(window, skipDuplicates, fileName, size);
}
