// A frame: wishes (1), way (1), number (2), flags (1), the bytes. The way's top bit: a frame of a capture, whose link type is
// the number; else a record of the medium, or a raw one whose Ethertype is the number.
#include "files/record_builder.h"
#include "fuzz/stations.h"
#include "fuzz/targets.h"
#include "host/packet_addresses.h"

namespace qxview::fuzz {
namespace {

constexpr size_t kLongest = 20000;
constexpr uint32_t kMedia = 11;   // the last one: a raw frame

ExactRecord RecordOf(uint32_t way, uint16_t number, uint32_t flags, const Piece& frame) {
  if (way & 0x80) {
    static const auto builder = std::make_unique<RecordBuilder>();
    CaptureFrame captured{};
    captured.number = 1;
    captured.nanoseconds = 1234567890123456789;
    captured.capturedLength = captured.dataLength = static_cast<uint32_t>(frame.size);
    captured.wireLength = static_cast<uint32_t>(frame.size) + (flags & 1 ? 100 : 0);
    captured.data = frame.data;
    captured.linkType = number;
    captured.direction = static_cast<LinkDirection>(flags >> 1 & 3);
    captured.receiveErrors = flags & 8 ? number : 0;
    captured.checkSequenceLength = flags & 0x10 ? 4 : 0;
    return ExactRecord(builder->Build(captured));
  }
  const uint32_t medium = (way & 0x3F) % kMedia;
  ExactRecord record(frame);
  record->mediaType = static_cast<uint8_t>(medium < 10 ? medium : 0);
  record->partial = flags & 1;
  record->direction = static_cast<uint8_t>(flags >> 1 & 3);
  record->receiveErrors = flags & 8 ? flags : 0;
  record->checkSequenceLength = flags & 0x10 ? 4 : 0;
  record->linkType = number;
  if (medium == 10) {
    record->rawEthertype = number;
    record->rawSkip = flags & 0x20 ? 4 : 0;
  }
  if (way & 0x40) record->layout = 0;
  return record;
}

}  // namespace

void RunFrame(const uint8_t* data, size_t size) {
  if (size < 5 || size > kLongest) return;
  Input input(data, size);
  const uint32_t wishes = input.U8(), way = input.U8();
  const auto number = static_cast<uint16_t>(input.U16());
  const uint32_t flags = input.U8();
  const ExactRecord record = RecordOf(way, number, flags, input.Rest());
  if (wishes & kRepaired) {
    const bool isDatagram = record->rawEthertype != 0;
    const size_t skip = isDatagram ? record->rawSkip : 0, length = record->capturedLength;
    if (skip < length) RepairChecksums(record.Frame() + skip, length - skip, !isDatagram);
  }
  Stations stations(wishes);
  const int32_t skipBytes = flags & 0x40 ? 14 : 0;
  stations.Decode(record.get(), skipBytes);
  // Once more, behind what it has taught.
  record->packetNumber = 2;
  stations.Decode(record.get(), skipBytes);
  PacketAddresses addresses;
  FormatPacketAddresses(stations.Shown().Context().packet, stations.Shown().GetEngine()->host, &addresses);
}

}  // namespace qxview::fuzz
