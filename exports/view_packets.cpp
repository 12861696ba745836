#include "exports/view_packets.h"

#include "core/engine.h"
#include "decoders/app/packet_summaries.h"
#include "platform/new_file.h"

namespace qxview {

uint64_t ViewPackets::Count() {
  const auto ask = QXVIEW_HOST_FUNCTION(host_, captureBufferState);
  QxCaptureBufferState state{};
  state.size = sizeof state;
  return ask && host_->lendPacket && ask(host_->user, &state) == 1 ? state.packetCount : 0;
}

const FrameRecord* ViewPackets::Lend(uint64_t number) {
  const auto lend = QXVIEW_HOST_FUNCTION(host_, lendPacket);
  const auto* record = lend ? static_cast<const FrameRecord*>(lend(host_->user, number)) : nullptr;
  return record && IsSound(record) ? record : nullptr;
}

bool ViewPackets::Describe(uint64_t number, ListedPacket* out) {
  const FrameRecord* record = Lend(number);
  if (!record) return false;
  if (!rows_) {
    rows_ = Session::Create(host_, {});   // user libraries show lines, not rows
    if (!rows_) return false;
    rows_->DecodeHeadersOnly();
  }
  rows_->Decode(record);
  PacketAddresses addresses;
  FormatPacketAddresses(rows_->Context().packet, host_, &addresses);
  char summary[kSummarySize];
  SummarizePacket(rows_->GetView(), summary, sizeof summary);
  const uint32_t length = WireLength(record) + static_cast<uint32_t>(MovedHeaderLength(record));
  *out = {record->nanoseconds, length, addresses.source, addresses.destination, summary};
  return true;
}

bool ViewPackets::Show(uint64_t number) {
  const FrameRecord* record = Lend(number);
  return record && (QxView_DecodeFrame(view_, record, 0, 0, 0), true);
}

bool ViewPackets::Ask(const QxViewRequest* request) {
  const auto ask = QXVIEW_HOST_FUNCTION(host_, viewRequest);
  return ask && ask(host_->user, request) == 1;
}

bool ViewPackets::SaveText(const std::string& path, std::string* wrong) {
  NewFile file;
  if (!view_->hasPacket) return *wrong = "there is no packet", false;
  if (!file.Create(path, wrong)) return false;
  const auto* record = reinterpret_cast<const FrameRecord*>(view_->record);
  auto output = std::make_unique<OutputFile>();
  OpenOutput(output.get(), file.Sink());
  view_->session->SetOutput(kSaveMode, output.get());
  view_->session->Decode(record);
  FlushOutput(output.get());
  const bool good = !output->failed;
  view_->session->SetOutput(kDisplayMode, nullptr);
  // The lines that are shown have their ranges back.
  view_->session->Decode(record);
  ShowFrameInWindow(view_->session.get(), record);
  return good ? file.Keep(wrong) : (*wrong = path + ": the lines could not be written", false);
}

}  // namespace qxview
