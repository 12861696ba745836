// The exports over captures: opening one, stepping through its packets, and a packet's line in the list.
#include <cstring>

#include "core/characters.h"
#include "decoders/app/packet_summaries.h"
#include "exports/exported_view.h"

using namespace qxview;

namespace {

// What a capture pointer stands for.
struct ExportedCapture {
  std::unique_ptr<CaptureReader> reader;
  RecordBuilder builder;
};

ExportedCapture* CaptureOf(void* capture) { return static_cast<ExportedCapture*>(capture); }

QxPacket Describe(const CaptureFrame& frame, const FrameRecord* record) {
  QxPacket packet{};
  packet.linkType = frame.linkType;
  packet.direction = static_cast<uint16_t>(frame.direction);
  packet.number = frame.number;
  packet.nanoseconds = frame.nanoseconds;
  packet.capturedLength = frame.dataLength;
  packet.originalLength = frame.wireLength;
  packet.data = frame.data;
  packet.record = record;
  packet.interfaceIndex = frame.interfaceIndex;
  return packet;
}

std::string Utf8(std::string_view text) {
  std::string converted(text.size() * kMostUtf8Octets + 1, 0);
  converted.resize(static_cast<size_t>(ConvertToUtf8(text, converted.data(), static_cast<int32_t>(converted.size()))));
  return converted;
}

void MakeLine(ExportedView* view, const FrameRecord* record) {
  Session& session = *view->session;
  if (!session.Context().headersOnly) session.ReadHeaders(record);
  const PacketState& packet = session.Context().packet;
  PacketAddresses addresses;
  FormatPacketAddresses(packet, session.GetEngine()->host, &addresses);
  char summary[kSummarySize];
  SummarizePacket(session.GetView(), summary, sizeof summary);
  view->line = {true, Utf8(addresses.source), Utf8(addresses.destination), Utf8(summary)};
}

}  // namespace

void* QxView_OpenCapture(const char* path) try {
  ForgetError();
  if (!path) return Fail("there is no path"), nullptr;
  auto capture = std::make_unique<ExportedCapture>();
  std::string message;
  capture->reader = OpenCapture(path, &message);
  if (!capture->reader) return Fail(message.c_str()), nullptr;
  return capture.release();
} catch (...) {
  return Fail("out of memory"), nullptr;
}

int32_t QxView_NextPacket(void* capture, QxPacket* packet) try {
  ForgetError();
  if (!capture) return Fail("there is no capture"), -1;
  if (!GiveRecord(packet, QxPacket{})) return -1;
  CaptureFrame frame;
  switch (CaptureOf(capture)->reader->Next(&frame)) {
    case ReadResult::kFrame: break;
    case ReadResult::kEnd: return 0;
    case ReadResult::kDamaged: return Fail(CaptureOf(capture)->reader->Message().c_str()), -1;
  }
  const FrameRecord* record = frame.record ? frame.record : CaptureOf(capture)->builder.Build(frame);
  GiveRecord(packet, Describe(frame, record));
  return 1;
} catch (...) {
  return Fail("out of memory"), -1;
}

int32_t QxView_CapturePercent(void* capture) { return capture ? CaptureOf(capture)->reader->Percent() : -1; }

void QxView_CloseCapture(void* capture) { delete CaptureOf(capture); }

int32_t QxView_PacketLine(void* view, QxPacketLine* line) try {
  ForgetError();
  if (!view || !ViewOf(view)->hasPacket) return Fail(view ? "no packet has been decoded" : "there is no view");
  ExportedView* exported = ViewOf(view);
  const auto* record = reinterpret_cast<const FrameRecord*>(exported->record);
  if (!exported->line.made) MakeLine(exported, record);
  QxPacketLine filled{};
  filled.length = WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record));
  filled.number = record->packetNumber;
  filled.nanoseconds = record->nanoseconds;
  filled.source = exported->line.source.c_str();
  filled.destination = exported->line.destination.c_str();
  filled.summary = exported->line.summary.c_str();
  return GiveRecord(line, filled) ? 1 : 0;
} catch (...) {
  return Fail("out of memory");
}
