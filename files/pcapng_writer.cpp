// Writer of pcapng files; their blocks stand in pcapng_reader.cpp. Little-endian, version 1.0.
#include <map>
#include <tuple>
#include <utility>

#include "files/packet_writer.h"
#include "files/pcapng_options.h"

namespace qxview {

namespace {

constexpr uint32_t kMostInterfaces = 65536;
// Ticks are unsigned: an interface with times before 1970 counts them from here on, in whole seconds.
constexpr int64_t kEarlySeconds = -9223372037;
constexpr int64_t kPerSecond = 1000000000;

// The numbers among the options by their length; everything else is texts and octets. Custom options begin with one.
int32_t NumberLength(uint16_t block, uint16_t code, uint16_t length) {
  if (code == 2988 || code == 2989 || code == 19372 || code == 19373) return length >= 4 ? 4 : 0;
  if (block == 6) return code == 2 || code == 4 || code == 5 || code == 6 || code == 32 ? length : 0;
  if (block == 1) return code == 8 || code == 10 || code == 16 || code == 17 ? length : 0;
  return 0;
}

class PcapngWriter : public PacketWriter {
 public:
  PcapngWriter(const OutputSink& sink, bool oneSection) : PacketWriter(sink), oneSection_(oneSection) {}

  void Announce(const CaptureFrame& like) override {
    if (BeginsSection(like)) PutSection(like);
    InterfaceOf(like, CountsMicroseconds(like), like.nanoseconds < 0);
  }

 protected:
  bool Put(const CaptureFrame& frame, uint32_t captured) override {
    if (BeginsSection(frame)) PutSection(frame);
    const bool early = frame.nanoseconds < 0;
    const bool micro = CountsMicroseconds(frame);
    const uint32_t interface = InterfaceOf(frame, micro, early);
    uint64_t ticks = static_cast<uint64_t>(frame.nanoseconds);
    if (early) ticks += static_cast<uint64_t>(-kEarlySeconds) * kPerSecond;
    if (micro) ticks /= 1000;
    body_.clear();
    for (const uint32_t word : {interface, static_cast<uint32_t>(ticks >> 32), static_cast<uint32_t>(ticks), captured,
                                frame.wireLength}) {
      Append32(word);
    }
    Append(frame.data, captured);
    if (!CopyOptions(6, frame.options)) AppendFlags(frame);
    EndOptions();
    PutBlock(6);
    return true;
  }

 private:
  static bool CountsMicroseconds(const CaptureFrame& frame) { return frame.interface && frame.interface->timeDigits == 6; }

  bool BeginsSection(const CaptureFrame& frame) {
    const std::pair<uint32_t, uint32_t> from{Captures(), frame.interface ? frame.interface->section : 0};
    const bool begins = !hasSection_ || (!oneSection_ && from != section_) || interfaces_.size() == kMostInterfaces;
    section_ = from;
    return begins;
  }

  void PutSection(const CaptureFrame& frame) {
    hasSection_ = true;
    interfaces_.clear();
    body_.clear();
    for (const uint32_t word : {0x1A2B3C4Du, 1u, UINT32_MAX, UINT32_MAX}) Append32(word);   // version 1.0, any length
    if (frame.interface) CopyOptions(0, frame.interface->sectionOptions);
    EndOptions();
    PutBlock(0x0A0D0D0A);
  }

  // The number of the interface in the file; one that is new is described first.
  uint32_t InterfaceOf(const CaptureFrame& frame, bool micro, bool early) {
    const Key key{frame.capture, frame.interface ? frame.interface->section : 0, frame.interfaceIndex, frame.linkType,
                  early};
    const auto [found, added] = interfaces_.try_emplace(key, static_cast<uint32_t>(interfaces_.size()));
    if (added) {
      const bool isPcapng = frame.interface && frame.interface->section > 0;
      body_.clear();
      Append32(frame.linkType);
      Append32(isPcapng ? frame.interface->snapLength : 0);
      if (frame.interface) CopyOptions(1, frame.interface->options);
      if (!isPcapng && frame.checkSequenceLength > 0) AppendOption(kInterfaceCheckSequence, &frame.checkSequenceLength, 1);
      const uint8_t resolution = 9;
      if (!micro) AppendOption(kInterfaceResolution, &resolution, 1);
      if (early) AppendOption(kInterfaceTimeOffset, &kEarlySeconds, sizeof kEarlySeconds);
      EndOptions();
      PutBlock(1);
    }
    return found->second;
  }

  // What a capture buffer's record tells of reception, as the flags of a packet.
  void AppendFlags(const CaptureFrame& frame) {
    if (!frame.record) return;
    const uint32_t errors = frame.receiveErrors;
    uint32_t flags = static_cast<uint32_t>(frame.direction) | static_cast<uint32_t>(frame.checkSequenceLength) << 5;
    if (errors & kReceiveCrc) flags |= 1u << 24;
    if (errors & kReceiveTooBig) flags |= 1u << 25;
    if (errors & kReceiveTooSmall) flags |= 1u << 26;
    if (errors & kReceiveAlignment) flags |= 1u << 28;
    if (errors & ~uint32_t{kReceiveCrc | kReceiveTooBig | kReceiveTooSmall | kReceiveAlignment}) flags |= 1u << 31;
    if (flags) AppendOption(kPacketFlags, &flags, sizeof flags);
  }

  // Copies the options of a block that was read, but for those of an interface that say how its times are counted;
  // whether flags are among them.
  bool CopyOptions(uint16_t block, const FileOptions& options) {
    bool hasFlags = false;
    ForEachOption(options, [&](uint16_t code, uint16_t length, const uint8_t* value) {
      if (block == 1 && (code == kInterfaceResolution || code == kInterfaceTimeOffset)) return;
      hasFlags |= code == kPacketFlags;
      const size_t start = body_.size() + 4;
      AppendOption(code, value, length);
      if (!options.swapped) return;
      const int32_t number = NumberLength(block, code, length);
      for (int32_t i = 0; i < number / 2; ++i) std::swap(body_[start + i], body_[start + number - 1 - i]);
    });
    return hasFlags;
  }

  void AppendOption(uint16_t code, const void* value, uint16_t length) {
    if (optionsStart_ == 0) optionsStart_ = body_.size();
    Append32(code | static_cast<uint32_t>(length) << 16);
    Append(value, length);
  }
  void EndOptions() {
    if (optionsStart_ != 0) Append32(0);
    optionsStart_ = 0;
  }
  void Append32(uint32_t word) {
    body_.append(reinterpret_cast<const char*>(&word), sizeof word);
  }
  void Append(const void* bytes, size_t length) {
    body_.append(static_cast<const char*>(bytes), length);
    body_.resize((body_.size() + 3) & ~size_t{3});
  }
  void PutBlock(uint32_t type) {
    const uint32_t length = static_cast<uint32_t>(body_.size() + 12);
    const uint32_t head[2] = {type, length};
    PutBytes(head, sizeof head);
    PutBytes(body_.data(), body_.size());
    PutBytes(&length, sizeof length);
  }

  using Key = std::tuple<uint32_t, uint32_t, uint32_t, uint16_t, bool>;
  const bool oneSection_;
  bool hasSection_ = false;
  std::pair<uint32_t, uint32_t> section_;   // the capture's number, and which of its own
  std::map<Key, uint32_t> interfaces_;
  std::string body_;   // of the block that is being composed
  size_t optionsStart_ = 0;
};

}  // namespace

std::unique_ptr<PacketWriter> MakePcapngWriter(const OutputSink& sink, bool oneSection) {
  return std::make_unique<PcapngWriter>(sink, oneSection);
}

}  // namespace qxview
