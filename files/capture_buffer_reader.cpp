// Reader of capture buffer files (docs/capture-file.md).
//
//    fixed header                                    information elements, up to the first record
//    0  32  version text, zero-padded                0  2  type
//   32   2  offset of the first record               2  2  length of the whole element
//   34   1  a byte of the saving program's           4     data
//   35   1  number of information elements
//
// Records follow one another, each as core/frame_record.h has it.
#include <new>

#include "files/capture_buffer.h"
#include "files/capture_formats.h"

namespace qxview {
namespace {

// The pcap number of the frame's link type. Where the record tells none it follows from the medium; of the protocols of
// WAN lines the first bytes tell one from another.
uint16_t LinkTypeOf(const FrameRecord* record) {
  if (HasFullHeader(record) && (record->linkType != 0 || IsRawFrame(record))) return record->linkType;
  const uint8_t* data = FrameData(record);
  const uint32_t start = record->capturedLength >= 2 ? data[0] << 8 | data[1] : 0;
  switch (static_cast<Medium>(record->mediaType)) {
    case Medium::kEthernet: return 1;
    case Medium::kTokenRing: return 6;
    case Medium::kFddi: return 10;
    case Medium::kWan:
    case Medium::kWanUnoffered: return start == 0xFF03 ? 9 : start == 0x0F00 || start == 0x8F00 ? 104 : 107;
    case Medium::kAtm: return MovedHeaderLength(record) > 0 ? 123 : 100;
    case Medium::kFibreChannel: return 224;
    case Medium::kWireless: return 105;
    default: return 147;   // for private use
  }
}

// Bytes of check sequence that the length on the wire counts: of one that the capture cut the record tells those that
// are there.
uint8_t CheckSequenceOf(const FrameRecord* record) {
  if (!HasFullHeader(record)) return 0;
  const uint32_t present = record->checkSequenceLength;
  const uint32_t missing = record->wireLength > record->capturedLength ? record->wireLength - record->capturedLength : 0;
  return static_cast<uint8_t>(present > 0 && missing <= 4 && present + missing <= 4 ? present + missing : present);
}

class CaptureBufferReader : public CaptureReader {
 public:
  using CaptureReader::CaptureReader;

  bool ReadFileHeader() {
    const uint8_t* header = source_->Peek(kBufferHeader);
    if (!header) return CutShort(0, "the file header"), false;
    const char* version = reinterpret_cast<const char*>(header) + kBufferMagic;
    if (std::memcmp(version, kBufferVersion + kBufferMagic, sizeof kBufferVersion - 1 - kBufferMagic) != 0) {
      char shown[7] = "";
      for (size_t i = 0; i < 6; ++i) shown[i] = version[i] >= 0x20 && version[i] < 0x7F ? version[i] : '.';
      Damaged(kBufferMagic, "capture buffer version \"%s\" is not known", shown);
      return false;
    }
    const uint32_t start = header[kVersionField] | static_cast<uint32_t>(header[kVersionField + 1]) << 8;
    const uint32_t elements = header[35];
    if (start < static_cast<uint32_t>(kBufferHeader)) {
      Damaged(kVersionField, "the first record cannot stand at byte %u, inside the file header", start);
      return false;
    }
    source_->Skip(kBufferHeader);
    return WalkElements(start, elements);
  }

 protected:
  ReadResult ReadFrame(CaptureFrame* frame) override {
    const uint64_t position = framePosition_ = source_->Position();
    const uint8_t* bytes = source_->Peek(kBareRecordHeader);
    if (!bytes) {
      if (source_->Remaining() > 0 || !source_->Failure().empty()) return CutShort(position, "a record header");
      return elementFault_.empty() ? ReadResult::kEnd : Damaged(elementPosition_, "%s", elementFault_.c_str());
    }
    FrameRecord head{};
    std::memcpy(&head, bytes, kBareRecordHeader);
    if (head.dataOffset < kBareRecordHeader || head.dataOffset + head.capturedLength > head.recordLength) {
      return Damaged(position, "a record of %u bytes cannot hold a header of %u and %u captured bytes",
                     head.recordLength, head.dataOffset, head.capturedLength);
    }
    bytes = source_->Peek(head.recordLength);
    if (!bytes) return CutShort(position, "a record");
    std::memcpy(record_, bytes, head.recordLength);
    source_->Skip(head.recordLength);
    Describe(frame);
    return ReadResult::kFrame;
  }

 private:
  // The elements are passed over; what is wrong with them is told when the records have been read.
  bool WalkElements(uint32_t start, uint32_t elements) {
    uint32_t at = kBufferHeader, seen = 0;
    for (; at < start && elementFault_.empty(); ++seen) {
      const uint8_t* element = start - at >= 4 ? source_->Peek(4) : nullptr;
      const uint32_t length = element ? element[2] | static_cast<uint32_t>(element[3]) << 8 : 0;
      if (length < 4 || length > start - at || !source_->Skip(length)) {
        Fault(at, "an information element does not fit in front of the first record");
        break;
      }
      at += length;
    }
    if (elementFault_.empty() && seen != elements) {
      Fault(35, "the header counts other information elements than there are");
    }
    if (at < start && !source_->Skip(start - at)) return CutShort(source_->Position(), "the file header"), false;
    return true;
  }

  void Fault(uint64_t position, const char* what) {
    elementPosition_ = position;
    elementFault_ = what;
  }

  // The frame as its capture held it: what was moved into an extension block goes back in front of the bytes.
  void Describe(CaptureFrame* frame) {
    const auto* record = reinterpret_cast<const FrameRecord*>(record_);
    int32_t movedLength;
    const uint8_t* moved = FindMovedHeader(record, &movedLength);
    frame->record = record;
    frame->nanoseconds = record->nanoseconds;
    frame->capturedLength = record->capturedLength + static_cast<uint32_t>(movedLength);
    frame->wireLength = WireLength(record) + static_cast<uint32_t>(movedLength);
    frame->data = FrameData(record);
    if (moved && moved + movedLength == frame->data) {
      frame->data = moved;
    } else if (moved) {   // another block stands between them
      std::memcpy(joined_, moved, static_cast<size_t>(movedLength));
      std::memcpy(joined_ + movedLength, FrameData(record), record->capturedLength);
      frame->data = joined_;
    }
    frame->dataLength = frame->capturedLength;
    frame->linkType = LinkTypeOf(record);
    frame->receiveErrors = record->receiveErrors;
    frame->direction = static_cast<LinkDirection>(record->direction);
    frame->checkSequenceLength = CheckSequenceOf(record);
  }

  alignas(8) uint8_t record_[kMaxRecord + 1];
  uint8_t joined_[kMaxRecord];
  std::string elementFault_;
  uint64_t elementPosition_ = 0;
};

}  // namespace

std::unique_ptr<CaptureReader> MakeCaptureBufferReader(std::unique_ptr<ByteSource> source, const char* fileName,
                                                       std::string* message) {
  std::unique_ptr<CaptureBufferReader> reader(new (std::nothrow) CaptureBufferReader(std::move(source), fileName));
  if (!reader) return *message = std::string(fileName) + ": out of memory", nullptr;
  if (reader->ReadFileHeader()) return reader;
  *message = reader->Message();
  return nullptr;
}

}  // namespace qxview
