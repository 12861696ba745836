// The headers that 802.11 captures carry in front of a frame.
//
//    radiotap                         AVS                          Prism                     PPI
//    0  1  version                    0  4  0x80211001 or ..02     0  4  message code        0  1  version
//    2  2  header length              4  4  header length          4  4  header length       1  1  flags
//    4  4  what is present; bit 31:   ...                          8 16  device              2  2  header length
//          another such word                                       ...                       4  4  link type of the
//          rest
//    then the fields, each aligned to                                                        then fields:
//    its size                                                                                type (2), length (2),
//    data little-endian                    big-endian                   the capturing machine's   little-endian
#include <cstring>

#include "files/link_header.h"

namespace qxview {

namespace {

uint32_t LittleEndian16(const uint8_t* at) { return static_cast<uint32_t>(at[0] | at[1] << 8); }
uint32_t LittleEndian32(const uint8_t* at) { return LittleEndian16(at) | LittleEndian16(at + 2) << 16; }
uint32_t BigEndian32(const uint8_t* at) { return __builtin_bswap32(LittleEndian32(at)); }

constexpr uint32_t kLeastHeader = 8;  // of all four kinds

// Moves a header of the length that it claims; false when that makes no sense, and then all of the captured bytes:
// what follows the header cannot be found.
bool MoveHeader(uint32_t claimed, uint32_t length, LinkHeader* link) {
  link->medium = Medium::kWireless;
  link->extensionTag = kExtensionMedium;
  const bool sensible = claimed >= kLeastHeader && claimed <= length;
  link->moved = sensible ? claimed : length;
  return sensible;
}

void UseCheckSequenceFlags(bool present, bool bad, LinkHeader* link) {
  if (present) link->checkSequenceLength = 4;
  if (bad) link->receiveErrors |= kReceiveCrc;
}

}  // namespace

void ReadRadiotap(const uint8_t* data, uint32_t length, LinkHeader* link) {
  uint32_t header = length >= kLeastHeader ? LittleEndian16(data + 2) : 0;
  if (!MoveHeader(header, length, link)) return;
  uint32_t at = 4;
  while (at + 8 <= header && data[at + 3] & 0x80) at += 4;
  at += 4;
  uint32_t present = LittleEndian32(data + 4);
  if (present & 1) at = ((at + 7) & ~7u) + 8;  // TSFT, the one field in front of the flags
  if (!(present & 2) || at >= header) return;
  UseCheckSequenceFlags(data[at] & 0x10, data[at] & 0x40, link);
}

void ReadPerPacketInformation(const uint8_t* data, uint32_t length, LinkHeader* link) {
  // The rest may be of any link type; only 802.11 is a medium with a place for the header.
  if (length >= kLeastHeader && LittleEndian32(data + 4) != 105) return;
  uint32_t header = length >= kLeastHeader ? LittleEndian16(data + 2) : 0;
  if (!MoveHeader(header, length, link)) return;
  for (uint32_t at = 8; at + 4 <= header;) {
    uint32_t type = LittleEndian16(data + at);
    uint32_t size = LittleEndian16(data + at + 2);
    if (size > header - at - 4) return;
    if (type == 2 && size >= 10) {  // 802.11 common: time (8), flags (2)
      uint32_t flags = LittleEndian16(data + at + 12);
      UseCheckSequenceFlags(flags & 1, flags & 4, link);
      return;
    }
    at += 4 + size;
  }
}

void ReadPrismOrAvs(const uint8_t* data, uint32_t length, LinkHeader* link) {
  constexpr uint32_t kAvsMagic = 0x80211000;
  constexpr uint32_t kLargestHeader = 4096;  // a length above it is one in the other byte order
  uint32_t header = 0;
  if (length >= kLeastHeader && (BigEndian32(data) & 0xFFFFF000) == kAvsMagic) {
    header = BigEndian32(data + 4);
  } else if (length >= kLeastHeader) {
    header = LittleEndian32(data + 4);
    if (header > kLargestHeader) header = BigEndian32(data + 4);
  }
  MoveHeader(header, length, link);
}

}  // namespace qxview
