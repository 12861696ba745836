#include "app/shown_packet.h"

#include "app/packet_protocol.h"

namespace qxview {

// The headers are read once more: the lines of the frame stay.
void ShownPacket::Read() {
  if (isRead_) return;
  session_.ReadHeaders(record_);
  Name();
}

void ShownPacket::Name() {
  isRead_ = true;
  FormatPacketAddresses(session_.Context().packet, host_, &addresses_);
  protocol_ = ProtocolNameOf(session_.Context().packet, scratch_);
}

// As the addresses are written, whatever names the user has for them.
void ShownPacket::Spell() {
  Read();
  if (!isSpelled_) FormatPacketAddresses(session_.Context().packet, nullptr, &spelled_);
  isSpelled_ = true;
}

bool ShownPacket::HasPorts() const {
  constexpr uint32_t kTcp = 6, kUdp = 17, kSctp = 132;
  const ReachedLayer& carrier = session_.Context().packet.carrier;
  return carrier.table == DispatchTable::kIpProtocol && (carrier.key == kTcp || carrier.key == kUdp || carrier.key == kSctp);
}

std::string_view ShownPacket::Summary() {
  Read();
  if (!isSummarized_) SummarizePacket(session_.GetView(), summary_, sizeof summary_);
  isSummarized_ = true;
  return summary_;
}

}  // namespace qxview
