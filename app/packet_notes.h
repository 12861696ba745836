// What a capture tells of a packet beside its bytes, as lines under the packet's first one: its time, and of pcapng the
// interface, the direction and the comments.
#pragma once
#include <memory>
#include <string>

#include "app/list_time.h"
#include "core/frame_record.h"
#include "files/capture_reader.h"

namespace qxview {

class PacketNotes {
 public:
  explicit PacketNotes(TimeForm form) : form_(form), time_(form) {}

  // The record with its notes in an extension block, good until the next call; itself where there is nothing to add, or no
  // room.
  const FrameRecord* Add(const FrameRecord* record, const CaptureFrame& frame, const PacketTimes& times);

 private:
  void AddInterface(const CaptureFrame& frame);

  TimeForm form_;
  ListTime time_;
  std::string notes_;
  alignas(8) uint8_t bytes_[kMaxRecord];
};

}  // namespace qxview
