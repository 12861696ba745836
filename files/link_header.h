// What the link type of a frame and the bytes in front of its medium or network header tell: inside files/ only.
#pragma once
#include <cstdint>

#include "files/capture_reader.h"

namespace qxview {

struct LinkHeader {
  Medium medium = Medium::kNone5;
  uint32_t moved = 0;         // leading bytes that belong into an extension block
  uint16_t extensionTag = 0;  // and its tag
  bool hasWanLink = false;    // the block begins with a WanLink
  uint8_t rawSkip = 0;
  uint16_t rawEthertype = 0;  // 0: the frame has a medium header
  LinkDirection direction = LinkDirection::kUnknown;
  uint32_t receiveErrors = 0;
  uint8_t checkSequenceLength = 0;
};

// Reads nothing outside the frame's data; `moved` and `rawSkip` are within them.
LinkHeader ReadLinkHeader(const CaptureFrame& frame);

// The radio headers of 802.11 captures; these set medium, moved, extensionTag and what the header says of errors and
// the check sequence.
void ReadRadiotap(const uint8_t* data, uint32_t length, LinkHeader* link);
void ReadPerPacketInformation(const uint8_t* data, uint32_t length, LinkHeader* link);
void ReadPrismOrAvs(const uint8_t* data, uint32_t length, LinkHeader* link);

}  // namespace qxview
