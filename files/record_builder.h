// Makes the packet record that decoders and capture buffers work with from a frame as a capture file holds it.
//
// The link type gives the medium:
//    Ethernet 0 | Token Ring 1 | FDDI 2 | PPP, HDLC PPP, Cisco HDLC, Frame Relay 3 | RFC 1483 and SunATM 6 |
//    Fibre Channel FC-2 8 | 802.11 with any radio header 9 | everything else 5, which has no decoder
// Raw IP, BSD loopback and Linux cooked frames have no medium header: they take Ethernet's number, `rawSkip` is the
// length of what stands in front of the network header and `rawEthertype` its kind. A radio or SunATM header and the
// octet that tells a WAN frame's direction are moved out of the frame into an extension block; the record's lengths are
// those of the frame without them. A WAN frame whose direction is known has a block that begins with it.
#pragma once
#include <cstdint>

#include "core/frame_record.h"
#include "files/capture_reader.h"

namespace qxview {

class RecordBuilder {
 public:
  // The record of a frame, valid until the next call. A frame that does not fit a record is cut, and marked with
  // kRecordCutToFit and as partial. Never allocates.
  const FrameRecord* Build(const CaptureFrame& frame);

  // Frames cut to fit so far.
  uint64_t CutFrames() const { return cutFrames_; }

 private:
  alignas(8) uint8_t bytes_[kMaxRecord];
  uint64_t cutFrames_ = 0;
};

}  // namespace qxview
