// What is known of the current packet beside its lines, worked out when somebody asks.
#pragma once
#include "core/frame_entry.h"
#include "decoders/app/packet_summaries.h"
#include "host/packet_addresses.h"
#include "host/session.h"
#include "query/key_query.h"

namespace qxview {

class ShownPacket final : public PacketTold {
 public:
  ShownPacket(Session& session, const QxHost* host) : session_(session), host_(host) {}

  // `isRead`: the session read the packet's headers, and nothing since.
  void Take(const FrameRecord* record, uint64_t number, bool isRead = false) {
    record_ = record;
    number_ = number;
    isRead_ = isSummarized_ = isSpelled_ = false;
    if (isRead) Name();
  }

  uint64_t Number() const override { return number_; }
  int64_t Nanoseconds() const override { return record_->nanoseconds; }
  uint32_t Length() const override { return WireLength(record_) + static_cast<uint32_t>(MovedHeaderLength(record_)); }
  uint32_t Captured() const override {
    return record_->capturedLength + static_cast<uint32_t>(MovedHeaderLength(record_));
  }
  std::string_view Source() override { return Read(), addresses_.source; }
  std::string_view Destination() override { return Read(), addresses_.destination; }
  std::string_view Protocol() override { return Read(), protocol_; }
  std::string_view Summary() override;
  std::string_view SourceAddress() override { return Spell(), spelled_.source; }
  std::string_view DestinationAddress() override { return Spell(), spelled_.destination; }
  int32_t SourcePort() override { return Read(), HasPorts() ? session_.Context().packet.sourcePort : -1; }
  int32_t DestinationPort() override { return Read(), HasPorts() ? session_.Context().packet.destinationPort : -1; }

 private:
  void Read();
  void Name();
  void Spell();
  bool HasPorts() const;

  Session& session_;
  const QxHost* host_;
  const FrameRecord* record_ = nullptr;
  uint64_t number_ = 0;
  bool isRead_ = false, isSummarized_ = false, isSpelled_ = false;
  PacketAddresses addresses_{}, spelled_{};
  char scratch_[kMediumNameScratch];
  const char* protocol_ = "";
  char summary_[kSummarySize];
};

}  // namespace qxview
