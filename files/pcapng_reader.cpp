// Reader of pcapng files.
//
//    every block: 0 4 type | 4 4 total length | body | total length again      in the byte order of its section
//    section header   0x0A0D0D0A: 8 4 byte-order magic | 12 4 version | 16 8 section length | options
//    interface            1: 8 2 link type | 12 4 snapshot length | options
//    enhanced packet      6: 8 4 interface | 12 8 ticks, high word first | 20 4 captured | 24 4 wire | data | options
//    simple packet        3: 8 4 wire | data; always of interface 0, without a time
//    packet (obsolete)    2: 8 2 interface | 10 2 drops | 12 8 ticks | 20 4 captured | 24 4 wire | data | options
//    decryption secrets  10: 8 4 kind | 12 4 length | secrets | options
//
// Data and options are padded to 4 bytes. Every other block is passed over.
#include <new>
#include <vector>

#include "files/pcapng_options.h"

namespace qxview {

namespace {

enum BlockType : uint32_t {
  kSectionHeader = 0x0A0D0D0A,
  kInterface = 1,
  kObsoletePacket = 2,
  kSimplePacket = 3,
  kEnhancedPacket = 6,
  kSecrets = 10,
};
constexpr uint32_t kByteOrderMagic = 0x1A2B3C4D;
constexpr uint32_t kSmallestBlock = 12;
constexpr uint32_t kLargestBlock = kLargestMessageFrame + (1u << 20);
constexpr uint32_t kMostInterfaces = 65536;

// What is kept of the options of a section and its interfaces; those of a file that goes beyond are passed over.
constexpr size_t kMostKeptOptions = 4u << 20;

struct Interface {
  uint16_t linkType;
  TickScale scale;
  CaptureInterface told;
  std::vector<uint8_t> options;   // which `told` points into
};

// What a section tells of its packets.
struct Section {
  uint64_t start = 0;
  uint32_t number = 0;
  FileOrder order;
  std::vector<Interface> interfaces;
  uint64_t interfacesUntil = 0;   // the blocks in front of this byte were read
  std::vector<uint8_t> options;
};

// Sections that are kept for going back to their packets.
constexpr size_t kMostSections = 65536;

// Writers give the length of the check sequence in bytes or in bits.
uint8_t CheckSequenceBytes(uint8_t length) {
  if (length == 16 || length == 32) return length / 8;
  return length <= 4 ? length : 0;
}

uint32_t ReceiveErrorsOf(uint32_t flags) {
  uint32_t errors = 0;
  if (flags & 1u << 24) errors |= kReceiveCrc;
  if (flags & 1u << 25) errors |= kReceiveTooBig;
  if (flags & 1u << 26) errors |= kReceiveTooSmall;
  if (flags & 1u << 28) errors |= kReceiveAlignment;
  if (flags & (1u << 27 | 7u << 29)) errors |= kReceiveOther;  // gap, start delimiter, preamble, symbol
  return errors;
}

class PcapngReader : public CaptureReader {
 public:
  using CaptureReader::CaptureReader;
  void KeepForSeek() override { keepsSections_ = true; }

 protected:
  bool BeginAt(uint64_t position) override {
    open_ = 0;
    shown_ = 0;
    while (current_ + 1 < sections_.size() && sections_[current_ + 1].start <= position) ++current_;
    while (current_ > 0 && sections_[current_].start > position) --current_;
    return sections_[current_].start <= position;
  }

  ReadResult ReadFrame(CaptureFrame* frame) override {
    for (;;) {
      if (!CloseBlock()) return ReadResult::kDamaged;
      start_ = framePosition_ = source_->Position();
      const uint8_t* head = source_->Peek(8);
      if (!head) {
        if (source_->Remaining() == 0 && source_->Failure().empty()) return ReadResult::kEnd;
        return CutShort(start_, "a block header");
      }
      // The type of a section header reads alike in both orders: it comes before its own order is known.
      uint32_t type = Order().Load32(head);
      ReadResult result = type == kSectionHeader ? ReadSection() : ReadBlock(type, frame);
      if (result != ReadResult::kEnd) return result;
    }
  }

 private:
  // The functions below give kFrame for a packet, kDamaged, and kEnd when the block held no packet.

  ReadResult ReadSection() {
    const uint8_t* block = source_->Peek(16);
    if (!block) return CutShort(start_, "a section header");
    FileOrder order;
    if (order.Load32(block + 8) != kByteOrderMagic) {
      order.swapped = true;
      if (order.Load32(block + 8) != kByteOrderMagic) {
        return Damaged(start_, "a section header without a byte-order magic");
      }
    }
    uint16_t major = order.Load16(block + 12);
    if (major != 1) return Damaged(start_, "pcapng version %u.%u is not known", major, order.Load16(block + 14));
    BeginSection(order);
    const uint32_t length = LoadLength(block + 4);
    block = OpenBlock(length, 28, "a section header");
    if (!block) return ReadResult::kDamaged;
    if (Now().options.empty()) Now().options = KeepOptions(block + 24, OptionsEnd(block, length));
    return ReadResult::kEnd;
  }

  Section& Now() { return sections_[current_]; }
  const FileOrder& Order() const { return sections_[current_].order; }

  // One that was read before is the current one again.
  void BeginSection(const FileOrder& order) {
    if (Now().number > 0 && Now().start == start_) return;
    if (current_ + 1 < sections_.size() && sections_[current_ + 1].start == start_) {
      ++current_;
      return;
    }
    const uint32_t number = sections_.back().number + 1;
    if (!keepsSections_ || number == 1 || sections_.size() >= kMostSections) {
      sections_.clear();
      keptOptions_ = 0;
    }
    sections_.push_back({start_, number, order, {}, 0, {}});
    current_ = sections_.size() - 1;
  }

  ReadResult ReadBlock(uint32_t type, CaptureFrame* frame) {
    uint32_t length = LoadLength(source_->Peek(8) + 4);
    switch (type) {
      case kInterface:
        return ReadInterface(length);
      case kEnhancedPacket:
        return ReadPacket(length, false, frame);
      case kObsoletePacket:
        return ReadPacket(length, true, frame);
      case kSimplePacket:
        return ReadSimplePacket(length, frame);
      case kSecrets:
        return ReadSecrets(length);
      default:
        return PassBlock(length, kSmallestBlock, "a block");
    }
  }

  // Blocks are padded to 4 bytes, also where their writer did not count the padding.
  uint32_t LoadLength(const uint8_t* at) const { return (Order().Load32(at) + 3) & ~3u; }

  // Checks the length of the block at the cursor and that the start of it, up to a window, is there; null after
  // damage.
  const uint8_t* OpenBlock(uint32_t length, uint32_t least, const char* what) {
    if (length < least || length > kLargestBlock) {
      Damaged(start_, "%s with a length of %u bytes", what, length);
      return nullptr;
    }
    shown_ = length < ByteSource::kLargestPeek ? length : ByteSource::kLargestPeek;
    const uint8_t* block = source_->Peek(shown_);
    if (!block) {
      CutShort(start_, what);
      return nullptr;
    }
    if (shown_ == length && !CheckClosingLength(block + length - 4, length)) return nullptr;
    open_ = whole_ = length;
    return block;
  }

  bool CheckClosingLength(const uint8_t* at, uint32_t length) {
    if (LoadLength(at) == length) return true;
    Damaged(start_, "a block begins with a length of %u bytes and ends with one of %u", length, LoadLength(at));
    return false;
  }

  // Moves behind the open block. Only here is the end of a block seen that is longer than the window.
  bool CloseBlock() {
    uint32_t length = open_;
    open_ = 0;
    if (length <= shown_) return source_->Skip(length);
    const uint8_t* closing = source_->Skip(length - 4) ? source_->Peek(4) : nullptr;
    if (!closing) CutShort(start_, "a block");
    return closing && CheckClosingLength(closing, whole_) && source_->Skip(4);
  }

  ReadResult PassBlock(uint32_t length, uint32_t least, const char* what) {
    return OpenBlock(length, least, what) ? ReadResult::kEnd : ReadResult::kDamaged;
  }

  ReadResult ReadInterface(uint32_t length) {
    const uint8_t* block = OpenBlock(length, 20, "an interface description");
    if (!block) return ReadResult::kDamaged;
    if (start_ < Now().interfacesUntil) return ReadResult::kEnd;
    Now().interfacesUntil = start_ + 1;
    std::vector<Interface>& interfaces = Now().interfaces;
    if (interfaces.size() == kMostInterfaces) return Damaged(start_, "more than %u interfaces", kMostInterfaces);
    Interface added{NormalizeLinkType(Order().Load16(block + 8)), {}, {}, {}};
    const uint8_t* const end = OptionsEnd(block, length);
    ForEachOption({block + 16, static_cast<uint32_t>(end - block - 16), Order().swapped},
                  [&](uint16_t code, uint16_t size, const uint8_t* at) {
                    if (code == kInterfaceResolution && size == 1) added.scale.resolution = *at;
                    if (code == kInterfaceCheckSequence && size == 1) {
                      added.told.checkSequenceLength = CheckSequenceBytes(*at);
                    }
                    if (code == kInterfaceTimeOffset && size == 8) {
                      added.scale.offsetSeconds = static_cast<int64_t>(Order().Load64(at));
                    }
                  });
    added.options = KeepOptions(block + 16, end);
    added.told.section = Now().number;
    added.told.snapLength = Order().Load32(block + 12);
    added.told.timeDigits = added.scale.resolution <= 6 ? 6 : 9;
    interfaces.push_back(std::move(added));
    return ReadResult::kEnd;
  }

  // The secrets may be more than stands in the window.
  ReadResult ReadSecrets(uint32_t length) {
    const uint8_t* block = OpenBlock(length, 20, "a block of secrets");
    if (!block) return ReadResult::kDamaged;
    const uint32_t kind = Order().Load32(block + 8);
    uint32_t left = Order().Load32(block + 12);
    if (left > length - 20) {
      return Damaged(start_, "%u bytes of secrets in a block with room for %u", left, length - 20);
    }
    if (!secrets_ || left == 0) return ReadResult::kEnd;
    uint32_t behind = length - 16;   // of the block
    source_->Skip(16);
    while (left > 0) {
      const uint8_t* piece = source_->Peek(1);
      if (!piece) return CutShort(start_, "a block of secrets");
      const uint32_t size = source_->Remaining() < left ? static_cast<uint32_t>(source_->Remaining()) : left;
      left -= size;
      secrets_(kind, piece, size, left == 0);
      source_->Skip(size);
      behind -= size;
    }
    open_ = behind;
    shown_ = 0;
    return ReadResult::kEnd;
  }

  std::vector<uint8_t> KeepOptions(const uint8_t* at, const uint8_t* end) {
    const size_t length = static_cast<size_t>(end - at);
    if (length > kMostKeptOptions - keptOptions_) return {};
    keptOptions_ += length;
    return {at, end};
  }
  FileOptions OptionsAt(const uint8_t* at, size_t length) const {
    return {at, static_cast<uint32_t>(length), Order().swapped};
  }

  ReadResult ReadPacket(uint32_t length, bool obsolete, CaptureFrame* frame) {
    const uint8_t* block = OpenBlock(length, 32, "a packet block");
    if (!block) return ReadResult::kDamaged;
    uint32_t index = obsolete ? Order().Load16(block + 8) : Order().Load32(block + 8);
    Interface* from = FindInterface(index);
    if (!from) return ReadResult::kDamaged;
    uint32_t captured = Order().Load32(block + 20);
    if (!FillData(block, 28, captured, length - 32, *from, frame)) return ReadResult::kDamaged;
    frame->interfaceIndex = index;
    frame->wireLength = Order().Load32(block + 24);
    uint64_t ticks = uint64_t{Order().Load32(block + 12)} << 32 | Order().Load32(block + 16);
    frame->nanoseconds = TicksToNanoseconds(ticks, from->scale);
    const uint8_t* end = OptionsEnd(block, length);
    size_t padded = 28 + ((size_t{captured} + 3) & ~size_t{3});
    if (padded < static_cast<size_t>(end - block)) {
      frame->options = OptionsAt(block + padded, static_cast<size_t>(end - block) - padded);
      ForEachOption(frame->options, [&](uint16_t code, uint16_t size, const uint8_t* at) {
        if (code == kPacketFlags && size == 4) UsePacketFlags(Order().Load32(at), frame);
      });
    }
    return ReadResult::kFrame;
  }

  ReadResult ReadSimplePacket(uint32_t length, CaptureFrame* frame) {
    const uint8_t* block = OpenBlock(length, 16, "a simple packet block");
    if (!block) return ReadResult::kDamaged;
    Interface* from = FindInterface(0);
    if (!from) return ReadResult::kDamaged;
    uint32_t wire = Order().Load32(block + 8);
    uint32_t captured = from->told.snapLength && from->told.snapLength < wire ? from->told.snapLength : wire;
    if (!FillData(block, 12, captured, length - 16, *from, frame)) return ReadResult::kDamaged;
    frame->interfaceIndex = 0;
    frame->wireLength = wire;
    frame->nanoseconds = 0;
    return ReadResult::kFrame;
  }

  // Sets the fields that every kind of packet block shares; `room` is what its block has for data.
  bool FillData(const uint8_t* block, size_t at, uint32_t captured, uint32_t room, Interface& from,
                CaptureFrame* frame) {
    if (captured > LargestFrame(from.linkType)) {
      Damaged(start_, "a captured length of %u bytes is more than the %u a packet can have", captured,
              LargestFrame(from.linkType));
      return false;
    }
    if (captured > room) {
      Damaged(start_, "a captured length of %u bytes in a block with room for %u", captured, room);
      return false;
    }
    frame->capturedLength = captured;
    frame->data = block + at;
    frame->dataLength = captured < shown_ - at ? captured : static_cast<uint32_t>(shown_ - at);
    frame->linkType = from.linkType;
    frame->checkSequenceLength = from.told.checkSequenceLength;
    from.told.options = OptionsAt(from.options.data(), from.options.size());
    from.told.sectionOptions = OptionsAt(Now().options.data(), Now().options.size());
    frame->interface = &from.told;
    return true;
  }

  void UsePacketFlags(uint32_t flags, CaptureFrame* frame) {
    if ((flags & 3) == 1) frame->direction = LinkDirection::kReceived;
    if ((flags & 3) == 2) frame->direction = LinkDirection::kSent;
    uint8_t checkSequence = flags >> 5 & 15;
    if (checkSequence && checkSequence <= 4) frame->checkSequenceLength = checkSequence;
    frame->receiveErrors = ReceiveErrorsOf(flags);
  }

  Interface* FindInterface(uint32_t index) {
    std::vector<Interface>& interfaces = Now().interfaces;
    if (index < interfaces.size()) return &interfaces[index];
    Damaged(start_, "a packet of interface %u in a section with %u", index,
            static_cast<uint32_t>(interfaces.size()));
    return nullptr;
  }

  // The end of what is shown of a block, without its closing length.
  const uint8_t* OptionsEnd(const uint8_t* block, uint32_t length) const {
    return block + (shown_ == length ? length - 4 : shown_);
  }

  std::vector<Section> sections_ = std::vector<Section>(1);   // all that were read, when they are kept
  size_t current_ = 0;
  bool keepsSections_ = false;
  size_t keptOptions_ = 0;
  uint64_t start_ = 0;                 // of the current block
  size_t shown_ = 0;                   // how much of it stands in the window
  uint32_t open_ = 0;                  // what is left of it, until it is left
  uint32_t whole_ = 0;                 // its length
};

}  // namespace

std::unique_ptr<CaptureReader> MakePcapngReader(std::unique_ptr<ByteSource> source, const char* fileName,
                                                std::string* message) {
  std::unique_ptr<CaptureReader> reader(new (std::nothrow) PcapngReader(std::move(source), fileName));
  if (!reader) *message = std::string(fileName) + ": out of memory";
  return reader;
}

}  // namespace qxview
