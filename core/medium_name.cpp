#include "core/frame_entry.h"

namespace qxview {

const char* MediumName(const FrameRecord* record, char* scratch) {
  if (IsRawFrame(record)) return "RawIP";
  switch (static_cast<Medium>(record->mediaType)) {
    case Medium::kEthernet:
      return "Ethernet";
    case Medium::kTokenRing:
      return "TokenRing";
    case Medium::kFddi:
      return "FDDI";
    case Medium::kWan:
    case Medium::kWanUnoffered:
      return "WAN";
    case Medium::kAtm:
      return "ATM";
    case Medium::kFibreChannel:
      return "FibreChannel";
    case Medium::kWireless:
      return "802.11";
    default:
      break;
  }
  if (const DecoderRow* decoder = FindFrameDecoder(record)) return decoder->name;
  std::memcpy(scratch, "Medium", 6);
  char* out = scratch + 6;
  unsigned number = record->mediaType;
  if (number >= 100) *out++ = static_cast<char>('0' + number / 100);
  if (number >= 10) *out++ = static_cast<char>('0' + number / 10 % 10);
  *out++ = static_cast<char>('0' + number % 10);
  *out = '\0';
  return scratch;
}

}  // namespace qxview
