#include "files/record_builder.h"

#include <cstring>
#include <new>

#include "files/link_header.h"

namespace qxview {

namespace {

constexpr uint32_t kExtensionHead = 4;

// The part of a check sequence of `length` bytes that is there when the capture cut the frame's end off.
uint8_t PresentCheckSequence(uint32_t length, uint32_t captured, uint32_t wire) {
  uint32_t missing = wire > captured ? wire - captured : 0;
  return missing < length ? static_cast<uint8_t>(length - missing) : 0;
}

}  // namespace

const FrameRecord* RecordBuilder::Build(const CaptureFrame& frame) {
  const LinkHeader link = ReadLinkHeader(frame);
  // A header that would leave no room for itself is cut like a frame that does.
  const uint32_t lead = link.hasWanLink ? sizeof(WanLink) : 0;
  const uint32_t mostMoved = kMaxRecord - kRecordHeader - kExtensionHead - lead;
  const uint32_t moved = link.moved < mostMoved ? link.moved : mostMoved;
  const uint32_t extension = lead + moved ? kExtensionHead + lead + moved : 0;
  const uint32_t dataOffset = kRecordHeader + extension;
  const uint32_t captured = frame.capturedLength - link.moved;
  const uint32_t wire = frame.wireLength > link.moved ? frame.wireLength - link.moved : 0;
  const uint32_t available = frame.dataLength - link.moved;
  const uint32_t room = kMaxRecord - dataOffset;
  const uint32_t kept = available < room ? available : room;
  const bool cut = kept < captured || moved < link.moved;

  FrameRecord* record = new (bytes_) FrameRecord{};
  record->nanoseconds = frame.nanoseconds;
  record->capturedLength = static_cast<uint16_t>(kept);
  record->flags = cut ? kRecordCutToFit : 0;
  record->dataOffset = static_cast<uint16_t>(dataOffset);
  record->recordLength = static_cast<uint16_t>(dataOffset + kept);
  record->mediaType = static_cast<uint8_t>(link.medium);
  record->partial = cut;
  record->layout = 1;
  record->direction = static_cast<uint8_t>(link.direction);
  record->receiveErrors = frame.receiveErrors | link.receiveErrors;
  record->packetNumber = frame.number;
  record->wireLength = wire;
  record->linkType = frame.linkType;
  record->checkSequenceLength = PresentCheckSequence(link.checkSequenceLength, cut ? captured : kept, wire);
  record->rawSkip = link.rawSkip;
  record->rawEthertype = link.rawEthertype;
  if (extension) {
    const uint16_t head[2] = {link.extensionTag, static_cast<uint16_t>(extension)};
    const WanLink wan{record->direction, record->linkNumber};
    uint8_t* at = bytes_ + kRecordHeader;
    std::memcpy(at, head, kExtensionHead);
    if (lead) std::memcpy(at + kExtensionHead, &wan, lead);
    if (moved) std::memcpy(at + kExtensionHead + lead, frame.data, moved);
  }
  if (kept) std::memcpy(bytes_ + dataOffset, frame.data + link.moved, kept);
  if (cut) ++cutFrames_;
  return record;
}

}  // namespace qxview
