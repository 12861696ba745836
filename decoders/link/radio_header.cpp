// The radio headers that 802.11 captures hold in front of a frame: what the receiver measured. They stand in the
// record's extension block, so their lines have no bytes of the frame.
//
//   radiotap   0  version   2  length   4  fields present (bit 31: another such word), then the fields in order of
//              their bits, each aligned to its size; little-endian
//   PPI        0  version   2  length   4  link type, then fields: type (2), length (2), data; little-endian
//   AVS        0  magic   4  length   8  MAC time   16  host time   24  type   28  channel   32  rate   36  antenna
//              40  priority   44  signal type   48  signal   52  noise ...; big-endian
//   Prism      0  code   4  length   8  device, then items: code (4), status (2), length (2), data (4)
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum LinkType : uint16_t { kLinkPrism = 119, kLinkRadiotap = 127, kLinkAvs = 163, kLinkPpi = 192 };
constexpr uint32_t kAvsMagic = 0x80211000;

struct RadiotapField {
  uint8_t alignment, size;
};
// By bit of the present word; a size of 0 is a field that is not known, and what follows it cannot be found.
constexpr RadiotapField kFields[] = {
    {8, 8}, {1, 1}, {1, 1}, {2, 4}, {2, 2}, {1, 1}, {1, 1}, {2, 2}, {2, 2}, {2, 2}, {1, 1}, {1, 1},
    {1, 1}, {1, 1}, {2, 2}, {2, 2}, {1, 1}, {1, 1}, {4, 8}, {1, 3}, {4, 8}, {2, 12}, {8, 12}, {2, 12},
    {2, 12}, {2, 6}, {1, 1}, {2, 4}};
constexpr int32_t kFieldCount = sizeof kFields / sizeof kFields[0];
constexpr int32_t kFlagsBit = 1;
constexpr uint32_t kPaddedFlag = 0x20;

// Where the fields of a radiotap header stand: a walk over the present words and the fields behind them.
struct RadiotapWalk {
  const uint8_t* bytes;
  int32_t length;
  int32_t word;       // offset of the present word
  int32_t at;         // offset of the next field
  int32_t bit;
};

RadiotapWalk StartWalk(const uint8_t* bytes, int32_t length) {
  RadiotapWalk walk{bytes, length, 4, 8, 0};
  if (length < 8) return {bytes, length, 4, 8, kFieldCount};
  const int32_t stated = static_cast<int32_t>(ReadLittleU16(bytes + 2));
  if (stated < length) walk.length = stated;
  while (walk.at + 4 <= walk.length && (bytes[walk.at - 1] & 0x80)) walk.at += 4;
  return walk;
}

// The next field that is present: its bit and its bytes; null at the end. A further word is followed as long as it is
// of the same kind; its fields repeat those of the first for one antenna.
const uint8_t* NextField(RadiotapWalk& walk, int32_t* bit) {
  while (walk.word + 4 <= walk.length) {
    const uint32_t present = ReadLittleU32(walk.bytes + walk.word);
    for (; walk.bit < kFieldCount; ++walk.bit) {
      if (!(present >> walk.bit & 1)) continue;
      const RadiotapField field = kFields[walk.bit];
      const int32_t start = (walk.at + field.alignment - 1) / field.alignment * field.alignment;
      if (start + field.size > walk.length) return nullptr;
      walk.at = start + field.size;
      *bit = walk.bit++;
      return walk.bytes + start;
    }
    constexpr uint32_t kMore = 0x80000000, kSameKind = 0x20000000, kUnknownFields = 0x50000000;
    if ((present & kUnknownFields) || !(present & kMore) || !(present & kSameKind)) return nullptr;
    walk.word += 4;
    walk.bit = 0;
  }
  return nullptr;
}

constexpr Field kOutside = {nullptr, 0, 0, 0, true};

int32_t Signed(uint8_t byte) { return static_cast<int8_t>(byte); }

void AddChannel(const Place& in, uint32_t frequency, uint32_t flags) {
  AddLine(in, kOutside, "Channel Frequency: %u MHz", frequency);
  AddLine(in, kOutside, "Channel Flags: 0x%.04X%s%s%s%s", flags, flags & 0x20 ? " CCK" : "",
          flags & 0x40 ? " OFDM" : "", flags & 0x80 ? " 2.4 GHz" : "", flags & 0x100 ? " 5 GHz" : "");
}

void AddModulation(const Place& in, const uint8_t* field) {
  AddLine(in, kOutside, "MCS Known: 0x%.02X, Flags: 0x%.02X", field[0], field[1]);
  AddLine(in, kOutside, "MCS Index: %u", field[2]);
}

void AddRadiotapField(const Place& in, int32_t bit, const uint8_t* field) {
  switch (bit) {
    case 0: AddLine(in, kOutside, "MAC Time: %I64u microseconds", ReadLittleU64(field)); break;
    case 1:
      AddLine(in, kOutside, "Flags: 0x%.02X%s%s%s%s", field[0], field[0] & 0x02 ? " Short Preamble" : "",
              field[0] & 0x10 ? " Check Sequence at End" : "", field[0] & 0x20 ? " Header Padding" : "",
              field[0] & 0x40 ? " Bad Check Sequence" : "");
      break;
    case 2: AddLine(in, kOutside, "Data Rate: %u.%u Mbit/s", field[0] / 2, field[0] % 2 * 5); break;
    case 3: AddChannel(in, ReadLittleU16(field), ReadLittleU16(field + 2)); break;
    case 4: AddLine(in, kOutside, "Hop Set: %u, Pattern: %u", field[0], field[1]); break;
    case 5: AddLine(in, kOutside, "Signal: %d dBm", Signed(field[0])); break;
    case 6: AddLine(in, kOutside, "Noise: %d dBm", Signed(field[0])); break;
    case 7: AddLine(in, kOutside, "Lock Quality: %u", ReadLittleU16(field)); break;
    case 8: AddLine(in, kOutside, "Transmit Attenuation: %u", ReadLittleU16(field)); break;
    case 9: AddLine(in, kOutside, "Transmit Attenuation: %u dB", ReadLittleU16(field)); break;
    case 10: AddLine(in, kOutside, "Transmit Power: %d dBm", Signed(field[0])); break;
    case 11: AddLine(in, kOutside, "Antenna: %u", field[0]); break;
    case 12: AddLine(in, kOutside, "Signal: %u dB", field[0]); break;
    case 13: AddLine(in, kOutside, "Noise: %u dB", field[0]); break;
    case 14: AddLine(in, kOutside, "Receive Flags: 0x%.04X", ReadLittleU16(field)); break;
    case 15: AddLine(in, kOutside, "Transmit Flags: 0x%.04X", ReadLittleU16(field)); break;
    case 16: AddLine(in, kOutside, "RTS Retries: %u", field[0]); break;
    case 17: AddLine(in, kOutside, "Data Retries: %u", field[0]); break;
    case 18: AddChannel(in, ReadLittleU16(field + 4), ReadLittleU32(field)); break;
    case 19: AddModulation(in, field); break;
    case 20: AddLine(in, kOutside, "A-MPDU Reference: %u", ReadLittleU32(field)); break;
    case 21: AddLine(in, kOutside, "VHT Information: %s", HexSlice{field, 12, ' '}); break;
    case 22: AddLine(in, kOutside, "Time Stamp: %I64u", ReadLittleU64(field)); break;
    case 23: AddLine(in, kOutside, "HE Information: %s", HexSlice{field, 12, ' '}); break;
    default: AddLine(in, kOutside, "Field %d: %s", bit, HexSlice{field, kFields[bit].size, ' '}); break;
  }
}

void DecodeRadiotap(const Place& at, const uint8_t* bytes, int32_t length) {
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: Radiotap, %d bytes", length));
  RadiotapWalk walk = StartWalk(bytes, length);
  int32_t bit;
  while (const uint8_t* field = NextField(walk, &bit)) {
    if (PacketOf(at).limitReached) return;
    AddRadiotapField(in, bit, field);
  }
}

// The one field of PPI that all 802.11 captures have.
void AddPpiCommon(const Place& in, const uint8_t* field) {
  AddLine(in, kOutside, "MAC Time: %I64u microseconds", ReadLittleU64(field));
  AddLine(in, kOutside, "Flags: 0x%.04X", ReadLittleU16(field + 8));
  const uint32_t rate = ReadLittleU16(field + 10);
  AddLine(in, kOutside, "Data Rate: %u.%u Mbit/s", rate / 2, rate % 2 * 5);
  AddChannel(in, ReadLittleU16(field + 12), ReadLittleU16(field + 14));
  AddLine(in, kOutside, "Signal: %d dBm", Signed(field[18]));
  AddLine(in, kOutside, "Noise: %d dBm", Signed(field[19]));
}

void DecodePpi(const Place& at, const uint8_t* bytes, int32_t length) {
  constexpr uint32_t kCommon = 2;
  constexpr int32_t kCommonLength = 20;
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: PPI, %d bytes", length));
  const bool aligned = bytes[1] & 1;   // every field to four bytes
  for (int32_t field = 8; field + 4 <= length && !PacketOf(at).limitReached;) {
    const uint32_t type = ReadLittleU16(bytes + field);
    const int32_t size = static_cast<int32_t>(ReadLittleU16(bytes + field + 2));
    if (size > length - field - 4) return;
    if (type == kCommon && size >= kCommonLength) {
      AddPpiCommon(in, bytes + field + 4);
    } else {
      AddLine(in, kOutside, "Field %u: %s", type, HexSlice{bytes + field + 4, size, ' '});
    }
    field += 4 + size;
    if (aligned) field = (field + 3) / 4 * 4;
  }
}

void DecodeAvs(const Place& at, const uint8_t* bytes, int32_t length) {
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: AVS, %d bytes", length));
  if (length < 56) return;
  AddLine(in, kOutside, "MAC Time: %I64u", ReadU64(bytes + 8));
  AddLine(in, kOutside, "Host Time: %I64u", ReadU64(bytes + 16));
  AddLine(in, kOutside, "Physical Type: %u", ReadU32(bytes + 24));
  AddLine(in, kOutside, "Channel: %u", ReadU32(bytes + 28));
  const uint32_t rate = ReadU32(bytes + 32);
  AddLine(in, kOutside, "Data Rate: %u.%u Mbit/s", rate / 10, rate % 10);
  AddLine(in, kOutside, "Antenna: %u", ReadU32(bytes + 36));
  AddLine(in, kOutside, "Signal: %d dBm", static_cast<int32_t>(ReadU32(bytes + 48)));
  AddLine(in, kOutside, "Noise: %d dBm", static_cast<int32_t>(ReadU32(bytes + 52)));
}

// Items are in the byte order of the machine that captured; the length of the header tells it.
void DecodePrism(const Place& at, const uint8_t* bytes, int32_t length) {
  constexpr auto kItems = SortedNames({{1, "Host Time"}, {2, "MAC Time"}, {3, "Channel"}, {4, "RSSI"},
                                       {5, "Signal Quality"}, {6, "Signal"}, {7, "Noise"}, {8, "Data Rate"},
                                       {9, "Transmitted"}, {10, "Frame Length"}});
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: Prism, %d bytes", length));
  if (length < 24) return;
  const bool little = ReadLittleU32(bytes + 4) == static_cast<uint32_t>(length);
  for (int32_t item = 24; item + 12 <= length; item += 12) {
    const uint32_t code = little ? ReadLittleU32(bytes + item) : ReadU32(bytes + item);
    const uint32_t status = little ? ReadLittleU16(bytes + item + 4) : ReadU16(bytes + item + 4);
    const uint32_t value = little ? ReadLittleU32(bytes + item + 8) : ReadU32(bytes + item + 8);
    // The number stands in the upper half in one family of drivers and in the lower half in the other.
    const uint32_t number = code & 0xF000 ? code >> 12 & 0xF : code >> 16 & 0xFF;
    if (status == 0) AddLine(in, kOutside, "%s: %u", LookupName(kItems, number), value);
  }
}

}  // namespace

void DecodeRadioHeader(const Place& at) {
  const FrameRecord* record = PacketOf(at).frame;
  int32_t length;
  const uint8_t* bytes = FindExtension(record, kExtensionMedium, &length);
  if (!bytes || length < 8) return;
  switch (record->linkType) {
    case kLinkRadiotap: return DecodeRadiotap(at, bytes, length);
    case kLinkPpi: return DecodePpi(at, bytes, length);
    case kLinkPrism:
    case kLinkAvs:
      if ((ReadU32(bytes) & 0xFFFFF000) == kAvsMagic) return DecodeAvs(at, bytes, length);
      return DecodePrism(at, bytes, length);
    default: return;
  }
}

bool HasHeaderPadding(const FrameRecord* record) {
  int32_t length, bit;
  const uint8_t* bytes = FindExtension(record, kExtensionMedium, &length);
  if (!bytes || record->linkType != kLinkRadiotap) return false;
  RadiotapWalk walk = StartWalk(bytes, length);
  while (const uint8_t* field = NextField(walk, &bit)) {
    if (bit >= kFlagsBit) return bit == kFlagsBit && (field[0] & kPaddedFlag);
  }
  return false;
}

}  // namespace qxview
