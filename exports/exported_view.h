// What a view pointer of the exports stands for, and how the exports say what went wrong.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "files/record_builder.h"
#include "host/completed_host.h"
#include "host/packet_addresses.h"
#include "host/session.h"
#include "platform/view_window.h"
#include "qxview/qxview.h"

namespace qxview {

// The texts of a packet's line in the list, in UTF-8; made when they are first asked for.
struct PacketLineTexts {
  bool made = false;
  std::string source, destination, summary;
};

struct ExportedView {
  std::unique_ptr<StandaloneHost> ownHost;     // serves what the caller's record does not
  std::unique_ptr<CompletedHost> lentHost;     // around the caller's record, where there is one
  std::unique_ptr<Session> session;
  std::unique_ptr<OutputFile> output;
  QxMessageFunction message = nullptr;
  void* messageUser = nullptr;
  std::string keyLogFault;                     // told when somebody can be
  std::vector<uint16_t> toldLinkTypes;
  uint64_t packets = 0;
  bool hasPacket = false;                      // whether `record` holds one
  PacketLineTexts line;
  RecordBuilder builder;
  std::unique_ptr<WindowPackets> windowPackets;   // what its window lists
  std::vector<char> text, utf8;                // a line's while it is visited
  std::string valueText;
  alignas(8) uint8_t record[kMaxRecord + 1];   // the last packet that was decoded
};

inline ExportedView* ViewOf(void* view) { return static_cast<ExportedView*>(view); }

// Where the lines are: in memory, or in the view's window.
inline DecodeTree& TreeOf(void* view) { return *ViewOf(view)->session->GetView()->tree; }

// Whether everything that the header tells lies within the record.
inline bool IsSound(const FrameRecord* record) {
  return record->dataOffset >= kBareRecordHeader && record->dataOffset + record->capturedLength <= record->recordLength;
}

// Keeps the reason of a failure for QxView_LastError on this thread; the result is false, 0 and null.
bool Fail(const char* reason);
void ForgetError();

void TellUser(const ExportedView* view, int32_t kind, const std::string& text);

// Copies a record out as far as the caller's goes, whose first member is its size; false when it has none.
template <class Record>
bool GiveRecord(Record* out, Record filled) {
  constexpr uint32_t kSmallest = 16;
  if (!out || out->size < kSmallest) return Fail("the record to fill is missing, or its size is not set");
  const uint32_t size = out->size;
  filled.size = size;
  std::memcpy(out, &filled, size < sizeof filled ? size : sizeof filled);
  return true;
}

}  // namespace qxview
