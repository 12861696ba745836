// Writer of pcap files; their layout stands in pcap_reader.cpp. Little-endian, version 2.4.
#include "files/capture_formats.h"
#include "files/packet_writer.h"
#include "files/pcapng_options.h"

namespace qxview {

PacketWriter::PacketWriter(const OutputSink& sink) : out_(std::make_unique<OutputFile>()) {
  OpenOutput(out_.get(), sink);
}

bool PacketWriter::Add(const CaptureFrame& frame, uint32_t mostBytes) {
  const uint32_t captured = frame.dataLength < mostBytes ? frame.dataLength : mostBytes;
  if (!Put(frame, captured)) return false;
  ++written_;
  return !out_->failed;
}

bool PacketWriter::Finish() {
  FlushOutput(out_.get());
  return !out_->failed;
}

bool PacketWriter::Refuse(const CaptureFrame& frame, const std::string& why) {
  message_ = std::string(frame.file) + ": packet " + std::to_string(frame.number) + " " + why;
  return false;
}

namespace {

constexpr int64_t kPerSecond = 1000000000;

class PcapWriter : public PacketWriter {
 public:
  using PacketWriter::PacketWriter;

  void Announce(const CaptureFrame& like) override {
    if (!hasBegun_) Begin(like);
    hasBegun_ = true;
  }

 protected:
  bool Put(const CaptureFrame& frame, uint32_t captured) override {
    Announce(frame);
    if (frame.linkType != linkType_) {
      return Refuse(frame, "is of link type " + std::to_string(frame.linkType) + " (" + LinkTypeName(frame.linkType) +
                               ") behind others of " + std::to_string(linkType_) +
                               ", and a pcap file has one: --format pcapng");
    }
    const int64_t seconds = frame.nanoseconds / kPerSecond, rest = frame.nanoseconds % kPerSecond;
    if (frame.nanoseconds < 0 || seconds > UINT32_MAX) {
      return Refuse(frame, "is of a time outside 1970 to 2106, which pcap cannot hold: --format pcapng");
    }
    if (rest % nanosecondsPerTick_ != 0) {
      return Refuse(frame, "has a time in nanoseconds behind others in microseconds, and a pcap file has one of them: "
                           "--format pcapng");
    }
    const uint32_t header[4] = {static_cast<uint32_t>(seconds), static_cast<uint32_t>(rest / nanosecondsPerTick_),
                                captured, frame.wireLength};
    PutBytes(header, sizeof header);
    PutBytes(frame.data, captured);
    CountComments(frame);
    return true;
  }

 private:
  void Begin(const CaptureFrame& frame) {
    linkType_ = frame.linkType;
    // The interfaces of a pcapng file may count differently, and the later ones are not known yet.
    const bool micro = frame.interface && frame.interface->section == 0 && frame.interface->timeDigits == 6;
    nanosecondsPerTick_ = micro ? 1000 : 1;
    uint32_t link = linkType_;
    // The word counts a check sequence in 16-bit units.
    if (frame.checkSequenceLength > 0) link |= 0x04000000u | static_cast<uint32_t>(frame.checkSequenceLength / 2) << 28;
    const uint32_t header[6] = {micro ? 0xA1B2C3D4 : 0xA1B23C4D, 2 | 4 << 16, 0, 0, LargestFrame(linkType_), link};
    PutBytes(header, sizeof header);
  }

  void CountComments(const CaptureFrame& frame) {
    ForEachOption(frame.options, [&](uint16_t code, uint16_t, const uint8_t*) { lostComments_ += code == kOptionComment; });
  }

  bool hasBegun_ = false;
  uint16_t linkType_ = 0;
  int64_t nanosecondsPerTick_ = 1;
};

}  // namespace

std::unique_ptr<PacketWriter> MakePcapWriter(const OutputSink& sink) { return std::make_unique<PcapWriter>(sink); }

}  // namespace qxview
