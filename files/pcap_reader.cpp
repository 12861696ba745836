// Reader of pcap files, the format of the classic capture library.
//
//    file header                               packet header
//    0  4  magic: byte order and resolution    0  4  seconds since 1970
//    4  2  major version, 2                    4  4  micro- or nanoseconds
//    6  2  minor version, 4                    8  4  captured length
//    8  8  time zone, accuracy: unused        12  4  length on the wire
//   16  4  snapshot length                    16  8  "modified" files: interface, protocol, packet type
//   20  4  link type and FCS bits             the captured bytes follow without padding
//
// The link type word: bits 0 to 15 LINKTYPE, bit 26 says that bits 28 to 31 give the length of the frame check
// sequence in 16-bit units.
#include <new>
#include <utility>

#include "files/capture_formats.h"

namespace qxview {

namespace {

constexpr size_t kFileHeader = 24;
constexpr uint32_t kMicroseconds = 0xA1B2C3D4;
constexpr uint32_t kNanoseconds = 0xA1B23C4D;
constexpr uint32_t kModified = 0xA1B2CD34;

// Which of the two lengths of a packet header comes first.
enum class LengthOrder { kCapturedFirst, kWireFirst, kSmallerFirst };

class PcapReader : public CaptureReader {
 public:
  using CaptureReader::CaptureReader;

  bool ReadFileHeader() {
    const uint8_t* header = source_->Peek(kFileHeader);
    if (!header) {
      CutShort(0, "the file header");
      return false;
    }
    uint32_t magic = order_.Load32(header);
    if (magic != kMicroseconds && magic != kNanoseconds && magic != kModified) {
      order_.swapped = true;
      magic = order_.Load32(header);
    }
    nanosecondsPerTick_ = magic == kNanoseconds ? 1 : 1000;
    packetHeader_ = magic == kModified ? 24 : 16;
    if (!UseVersion(order_.Load16(header + 4), order_.Load16(header + 6))) return false;
    uint32_t link = order_.Load32(header + 20);
    linkType_ = NormalizeLinkType(static_cast<uint16_t>(link));
    interface_.snapLength = order_.Load32(header + 16);
    interface_.timeDigits = magic == kNanoseconds ? 9 : 6;
    if (link & 0x04000000) {
      uint32_t length = (link >> 28) * 2;
      interface_.checkSequenceLength = static_cast<uint8_t>(length < 4 ? length : 4);
    }
    source_->Skip(kFileHeader);
    return true;
  }

 protected:
  ReadResult ReadFrame(CaptureFrame* frame) override {
    if (overhang_ && !source_->Skip(overhang_)) return CutShort(source_->Position(), "a packet");
    overhang_ = 0;
    framePosition_ = source_->Position();
    const uint64_t position = source_->Position();
    const uint8_t* header = source_->Peek(packetHeader_);
    if (!header) {
      if (source_->Remaining() == 0 && source_->Failure().empty()) return ReadResult::kEnd;
      return CutShort(position, "a packet header");
    }
    uint32_t captured = order_.Load32(header + 8);
    uint32_t wire = order_.Load32(header + 12);
    if (lengthOrder_ == LengthOrder::kWireFirst || (lengthOrder_ == LengthOrder::kSmallerFirst && captured > wire)) {
      std::swap(captured, wire);
    }
    if (captured > LargestFrame(linkType_)) {
      return Damaged(position, "a captured length of %u bytes is more than the %u a packet can have", captured,
                     LargestFrame(linkType_));
    }
    frame->nanoseconds =
        int64_t{order_.Load32(header)} * 1000000000 + order_.Load32(header + 4) * nanosecondsPerTick_;
    const size_t most = ByteSource::kLargestPeek - packetHeader_;
    const size_t present = captured < most ? captured : most;
    header = source_->Peek(packetHeader_ + present);
    if (!header) return CutShort(position, "a packet");
    source_->Skip(packetHeader_ + present);
    overhang_ = captured - present;
    frame->capturedLength = captured;
    frame->wireLength = wire;
    frame->data = header + packetHeader_;
    frame->dataLength = static_cast<uint32_t>(present);
    frame->linkType = linkType_;
    frame->interfaceIndex = packetHeader_ == 24 ? order_.Load32(header + 16) : 0;
    frame->interface = &interface_;
    frame->checkSequenceLength = interface_.checkSequenceLength;
    return ReadResult::kFrame;
  }

  bool BeginAt(uint64_t) override { return overhang_ = 0, true; }

 private:
  // Files before version 2.3 hold the lengths the other way round, those of 2.3 either way.
  bool UseVersion(uint16_t major, uint16_t minor) {
    if (major == 543 && minor == 0) {
      lengthOrder_ = LengthOrder::kWireFirst;  // a system's own tcpdump numbered its files so
    } else if (major != 2) {
      Damaged(0, "pcap version %u.%u is not known", major, minor);
      return false;
    } else if (minor < 3) {
      lengthOrder_ = LengthOrder::kWireFirst;
    } else if (minor == 3) {
      lengthOrder_ = LengthOrder::kSmallerFirst;
    }
    return true;
  }

  FileOrder order_;
  int64_t nanosecondsPerTick_ = 1000;
  size_t packetHeader_ = 16;
  LengthOrder lengthOrder_ = LengthOrder::kCapturedFirst;
  uint16_t linkType_ = 0;
  CaptureInterface interface_{};
  uint64_t overhang_ = 0;  // bytes of the last packet that were not shown
};

}  // namespace

std::unique_ptr<CaptureReader> MakePcapReader(std::unique_ptr<ByteSource> source, const char* fileName,
                                              std::string* message) {
  std::unique_ptr<PcapReader> reader(new (std::nothrow) PcapReader(std::move(source), fileName));
  if (!reader) {
    *message = std::string(fileName) + ": out of memory";
    return nullptr;
  }
  if (reader->ReadFileHeader()) return reader;
  *message = reader->Message();
  return nullptr;
}

}  // namespace qxview
