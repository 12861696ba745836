// The packet record that a capture buffer lends for each frame; the frame's bytes follow inside it.
//
//    0  8  time stamp, nanoseconds since 1970-01-01T00:00:00Z (signed)
//    8  2  captured length: bytes of the frame that are present
//   10  2  record flags (RecordFlag)
//   12  2  data offset: length of this header with its extension blocks
//   14  2  record length: header plus data
//   16  1  medium (Medium)
//   17  1  partial flag: 1 when the frame was cut when it was saved
//   18  1  layout: 1 when bytes 32 to 47 are as below, 0 for a bare header of 32 bytes
//   19  1  direction (LinkDirection)
//   20  4  receive errors (ReceiveError)
//   24  8  packet number
//   32  4  length of the frame on the wire, with whatever check sequence the capture holds
//   36  2  link type of the capture (the pcap LINKTYPE number), 0 when the medium says all
//   38  1  bytes of check sequence that the frame's bytes end with (0 to 4: one cut on capture may hold a part); with
//          byte 17 set, that they ended with before saving cut them
//   39  1  raw frames: bytes in front of the network header
//   40  2  raw frames: Ethertype (or RawProtocol) of what starts there; 0 for frames with a medium header
//   42  2  link number of WAN frames without an extension block
//   44  4  zero
//   48     extension blocks, each: tag (2), length of the whole block (2), data; to the data offset
//
// All fields are little-endian in memory and on disk: a capture file holds these bytes as they are.
#pragma once
#include <cstdint>
#include <cstring>

namespace qxview {

enum class Medium : uint8_t {
  kEthernet = 0, kTokenRing = 1, kFddi = 2, kWan = 3, kWanUnoffered = 4, kNone5 = 5,
  kAtm = 6, kNone7 = 7, kFibreChannel = 8, kWireless = 9,
};

enum ReceiveError : uint32_t {
  kReceiveAlignment = 0x01, kReceiveCrc = 0x02, kReceiveTooSmall = 0x04, kReceiveTooBig = 0x08,
  kReceiveOther = 0x10, kReceiveAbort = 0x40, kReceiveRBit = 0x80,
};

enum class LinkDirection : uint8_t { kUnknown = 0, kReceived = 1, kSent = 2 };

enum RecordFlag : uint16_t {
  kRecordCutToFit = 1,   // the frame was longer than a record can hold
};

enum ExtensionTag : uint16_t {
  kExtensionOriginalNumber = 1,  // 8 bytes: the frame's number in the buffer it was captured in
  kExtensionMedium = 258,        // media 3 and 4: a WanLink, then what was captured in front of the frame; 9: radio header
  kExtensionAtm = 264,           // medium 6: cell information, the four bytes of a SunATM header as captured
};

// What a raw frame holds where it has no Ethertype.
enum RawProtocol : uint16_t {
  kRawNovell = 0x0001,    // IPX directly behind an 802.3 length
  kRawLlc = 0x0004,       // an 802.2 header
  kRawUnknown = 0xFFFF,   // nothing is known of it
};

constexpr int32_t kBareRecordHeader = 32;
constexpr int32_t kRecordHeader = 48;
constexpr int32_t kMaxRecord = 65535;   // header plus data: the record length has 16 bits

#pragma pack(push, 1)
struct FrameRecord {
  int64_t nanoseconds;
  uint16_t capturedLength;
  uint16_t flags;
  uint16_t dataOffset;
  uint16_t recordLength;
  uint8_t mediaType;
  uint8_t partial;
  uint8_t layout;
  uint8_t direction;
  uint32_t receiveErrors;
  uint64_t packetNumber;
  uint32_t wireLength;
  uint16_t linkType;
  uint8_t checkSequenceLength;
  uint8_t rawSkip;
  uint16_t rawEthertype;
  uint16_t linkNumber;
  uint32_t zero;
};
#pragma pack(pop)
static_assert(sizeof(FrameRecord) == kRecordHeader);

// The frame's bytes.
inline const uint8_t* FrameData(const FrameRecord* record) {
  return reinterpret_cast<const uint8_t*>(record) + record->dataOffset;
}

// Whether bytes 32 to 47 are there.
inline bool HasFullHeader(const FrameRecord* record) {
  return record->layout == 1 && record->dataOffset >= kRecordHeader;
}

// Length on the wire; the captured length when the record does not say.
inline uint32_t WireLength(const FrameRecord* record) {
  return HasFullHeader(record) ? record->wireLength : record->capturedLength;
}

// Bytes of check sequence that the captured bytes end with.
inline int32_t HeldCheckSequence(const FrameRecord* record) {
  if (!HasFullHeader(record)) return 0;
  const int64_t cut = record->partial == 1 ? int64_t{record->wireLength} - record->capturedLength : 0;
  const int64_t held = record->checkSequenceLength - (cut > 0 ? cut : 0);
  return held > 0 ? static_cast<int32_t>(held) : 0;
}

// The data of the first extension block with this tag (the block's start plus 4) and its length; null when there is none.
inline const uint8_t* FindExtension(const FrameRecord* record, uint16_t tag, int32_t* length) {
  const uint8_t* base = reinterpret_cast<const uint8_t*>(record);
  *length = 0;
  if (!HasFullHeader(record)) return nullptr;
  for (int32_t at = kRecordHeader; at + 4 <= record->dataOffset;) {
    uint16_t head[2];
    std::memcpy(head, base + at, 4);
    if (head[1] < 4 || at + head[1] > record->dataOffset) return nullptr;
    if (head[0] == tag) {
      *length = head[1] - 4;
      return base + at + 4;
    }
    at += head[1];
  }
  return nullptr;
}

inline bool IsWan(const FrameRecord* record) {
  return record->mediaType == static_cast<uint8_t>(Medium::kWan) ||
         record->mediaType == static_cast<uint8_t>(Medium::kWanUnoffered);
}

// What the extension block of a WAN frame begins with.
struct WanLink {
  uint16_t direction;   // a LinkDirection
  uint16_t number;
};

// The direction and link number of a WAN frame. Records without the block tell them in their header.
inline WanLink ReadWanLink(const FrameRecord* record) {
  WanLink link{};
  int32_t length;
  const uint8_t* block = FindExtension(record, kExtensionMedium, &length);
  if (length >= static_cast<int32_t>(sizeof link)) {
    std::memcpy(&link, block, sizeof link);
  } else if (HasFullHeader(record)) {
    link = {record->direction, record->linkNumber};
  }
  return link;
}

// What the capture held in front of the frame and stands in an extension block now (radio and cell headers, the octet
// of a WAN frame's direction): the lengths that a capture file gives are the record's plus its length. Null when there
// is none.
inline const uint8_t* FindMovedHeader(const FrameRecord* record, int32_t* length) {
  *length = 0;
  if (IsWan(record)) {
    constexpr int32_t kLink = sizeof(WanLink);
    const uint8_t* block = FindExtension(record, kExtensionMedium, length);
    *length = *length > kLink ? *length - kLink : 0;
    return *length > 0 ? block + kLink : nullptr;
  }
  if (record->mediaType == static_cast<uint8_t>(Medium::kWireless)) return FindExtension(record, kExtensionMedium, length);
  if (record->mediaType == static_cast<uint8_t>(Medium::kAtm)) return FindExtension(record, kExtensionAtm, length);
  return nullptr;
}
inline int32_t MovedHeaderLength(const FrameRecord* record) {
  int32_t length;
  FindMovedHeader(record, &length);
  return length;
}
inline const uint8_t* MovedHeader(const FrameRecord* record) {
  int32_t length;
  return FindMovedHeader(record, &length);
}

// Whether the frame has no medium header: raw IP, loopback and cooked captures.
inline bool IsRawFrame(const FrameRecord* record) { return HasFullHeader(record) && record->rawEthertype != 0; }

// The name of the frame's medium as programs read it: "Ethernet", "RawIP", ...; "Medium5" and the like, composed in
// `scratch`, for numbers without a decoder.
constexpr int32_t kMediumNameScratch = 12;
const char* MediumName(const FrameRecord* record, char* scratch);

}  // namespace qxview
