// The radio headers that 802.11 captures hold in front of a frame: what the receiver measured. They stand in the
// record's extension block, so their lines have no bytes of the frame.
//
//   radiotap   0  version   2  length   4  fields present (bit 31: another such word), then the fields in order of
//              their bits, each aligned to its size; little-endian
//   PPI        0  version   2  length   4  link type, then fields: type (2), length (2), data; little-endian
//   AVS        0  magic   4  length   8  MAC time   16  host time   24  type   28  channel   32  rate   36  antenna
//              40  priority   44  signal type   48  signal   52  noise ...; big-endian
//   Prism      0  code   4  length   8  device, then items: code (4), status (2), length (2), data (4)
#include "core/bounded_loop.h"
#include "core/line_facts.h"
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
  Cursor header;
  int32_t word = 4;   // offset of the present word
  int32_t next = 8;   // offset of the next field
  int32_t bit = 0;
};

RadiotapWalk StartWalk(Cursor c) {
  RadiotapWalk walk{TakeCursor(c, PeekLittleU16(c, 2))};
  while (walk.next + 4 <= Left(walk.header) && (PeekU8(walk.header, walk.next - 1) & 0x80)) walk.next += 4;
  return walk;
}

// The next field that is present, and its bit; not here at the end. A further word is followed as long as it is of the
// same kind; its fields repeat those of the first for one antenna.
Field NextField(RadiotapWalk& walk, int32_t* bit) {
  while (walk.word + 4 <= Left(walk.header)) {
    const uint32_t present = PeekLittleU32(walk.header, walk.word);
    for (; walk.bit < kFieldCount; ++walk.bit) {
      if (!(present >> walk.bit & 1)) continue;
      const RadiotapField known = kFields[walk.bit];
      const int32_t start = (walk.next + known.alignment - 1) / known.alignment * known.alignment;
      walk.next = start + known.size;
      *bit = walk.bit++;
      return PeekBytes(walk.header, start, known.size);
    }
    constexpr uint32_t kMore = 0x80000000, kSameKind = 0x20000000, kUnknownFields = 0x50000000;
    if ((present & kUnknownFields) || !(present & kMore) || !(present & kSameKind)) break;
    walk.word += 4;
    walk.bit = 0;
  }
  return {};
}

constexpr Field kOutside = {nullptr, 0, 0, 0, true};

int32_t Signed(uint32_t byte) { return static_cast<int8_t>(byte); }

void AddChannel(const Place& in, uint32_t frequency, uint32_t flags) {
  AddLine(in, kOutside, "Channel Frequency: %u MHz", frequency);
  AddLine(in, kOutside, "Channel Flags: 0x%.04X%s%s%s%s", flags, flags & 0x20 ? " CCK" : "",
          flags & 0x40 ? " OFDM" : "", flags & 0x80 ? " 2.4 GHz" : "", flags & 0x100 ? " 5 GHz" : "");
}

void AddRate(const Place& in, uint32_t rate) {
  AddLine(in, kOutside, "Data Rate: %u.%u Mbit/s", rate / 2, rate % 2 * 5);
}

void AddRadiotapField(const Place& in, int32_t bit, const Field& field) {
  Cursor c = CursorOver(field);
  const uint32_t byte = PeekU8(c), word = PeekLittleU16(c);
  switch (bit) {
    case 0: AddLine(in, kOutside, "MAC Time: %I64u microseconds", TakeLittleU64(c).wide); break;
    case 1:
      AddLine(in, kOutside, "Flags: 0x%.02X%s%s%s%s", byte, byte & 0x02 ? " Short Preamble" : "",
              byte & 0x10 ? " Check Sequence at End" : "", byte & 0x20 ? " Header Padding" : "",
              byte & 0x40 ? " Bad Check Sequence" : "");
      break;
    case 2: AddRate(in, byte); break;
    case 3: AddChannel(in, word, PeekLittleU16(c, 2)); break;
    case 4: AddLine(in, kOutside, "Hop Set: %u, Pattern: %u", byte, PeekU8(c, 1)); break;
    case 5: AddLine(in, kOutside, "Signal: %d dBm", Signed(byte)); break;
    case 6: AddLine(in, kOutside, "Noise: %d dBm", Signed(byte)); break;
    case 7: AddLine(in, kOutside, "Lock Quality: %u", word); break;
    case 8: AddLine(in, kOutside, "Transmit Attenuation: %u", word); break;
    case 9: AddLine(in, kOutside, "Transmit Attenuation: %u dB", word); break;
    case 10: AddLine(in, kOutside, "Transmit Power: %d dBm", Signed(byte)); break;
    case 11: AddLine(in, kOutside, "Antenna: %u", byte); break;
    case 12: AddLine(in, kOutside, "Signal: %u dB", byte); break;
    case 13: AddLine(in, kOutside, "Noise: %u dB", byte); break;
    case 14: AddLine(in, kOutside, "Receive Flags: 0x%.04X", word); break;
    case 15: AddLine(in, kOutside, "Transmit Flags: 0x%.04X", word); break;
    case 16: AddLine(in, kOutside, "RTS Retries: %u", byte); break;
    case 17: AddLine(in, kOutside, "Data Retries: %u", byte); break;
    case 18: AddChannel(in, PeekLittleU16(c, 4), PeekLittleU32(c)); break;
    case 19:
      AddLine(in, kOutside, "MCS Known: 0x%.02X, Flags: 0x%.02X", byte, PeekU8(c, 1));
      AddLine(in, kOutside, "MCS Index: %u", PeekU8(c, 2));
      break;
    case 20: AddLine(in, kOutside, "A-MPDU Reference: %u", PeekLittleU32(c)); break;
    case 21: AddLine(in, kOutside, "VHT Information: %s", HexText(field)); break;
    case 22: AddLine(in, kOutside, "Time Stamp: %I64u", TakeLittleU64(c).wide); break;
    case 23: AddLine(in, kOutside, "HE Information: %s", HexText(field)); break;
    default: AddLine(in, kOutside, "Field %d: %s", bit, HexText(field)); break;
  }
}

void DecodeRadiotap(const Place& at, const Cursor& c) {
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: Radiotap, %d bytes", Left(c)));
  RadiotapWalk walk = StartWalk(c);
  int32_t bit = 0;
  for (Field field; (field = NextField(walk, &bit)).here && GoesOn(at);) {
    AddRadiotapField(in, bit, field);
  }
}

// The one field of PPI that all 802.11 captures have.
void AddPpiCommon(const Place& in, Cursor c) {
  AddLine(in, kOutside, "MAC Time: %I64u microseconds", TakeLittleU64(c).wide);
  AddLine(in, kOutside, "Flags: 0x%.04X", TakeLittleU16(c).value);
  AddRate(in, TakeLittleU16(c).value);
  AddChannel(in, PeekLittleU16(c), PeekLittleU16(c, 2));
  AddLine(in, kOutside, "Signal: %d dBm", Signed(PeekU8(c, 6)));
  AddLine(in, kOutside, "Noise: %d dBm", Signed(PeekU8(c, 7)));
}

void DecodePpi(const Place& at, Cursor c) {
  constexpr uint32_t kCommon = 2;
  constexpr int32_t kHeader = 8, kCommonLength = 20;
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: PPI, %d bytes", Left(c)));
  const bool aligned = PeekU8(c, 1) & 1;   // every field to four bytes
  TakeBytes(c, kHeader);
  for (Loop loop; Left(c) >= 4 && MoreAt(at, c, loop);) {
    const uint32_t type = TakeLittleU16(c).value;
    const Field length = TakeLittleU16(c), field = TakeBytes(c, length.value);
    if (!field.here) return;
    if (type == kCommon && field.length >= kCommonLength) {
      AddPpiCommon(in, CursorOver(field));
    } else {
      AddLine(in, kOutside, "Field %u: %s", type, HexText(field));
    }
    if (aligned) TakeCursor(c, (4 - Taken(c) % 4) % 4);
  }
}

void DecodeAvs(const Place& at, const Cursor& header) {
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: AVS, %d bytes", Left(header)));
  Cursor c = CursorOver(PeekBytes(header, 8, 48));
  if (Left(c) < 1) return;
  AddLine(in, kOutside, "MAC Time: %I64u", TakeU64(c).wide);
  AddLine(in, kOutside, "Host Time: %I64u", TakeU64(c).wide);
  AddLine(in, kOutside, "Physical Type: %u", TakeU32(c).value);
  AddLine(in, kOutside, "Channel: %u", TakeU32(c).value);
  const uint32_t rate = TakeU32(c).value;
  AddLine(in, kOutside, "Data Rate: %u.%u Mbit/s", rate / 10, rate % 10);
  AddLine(in, kOutside, "Antenna: %u", TakeU32(c).value);
  TakeBytes(c, 8);   // priority and the signal's type
  AddLine(in, kOutside, "Signal: %d dBm", static_cast<int32_t>(TakeU32(c).value));
  AddLine(in, kOutside, "Noise: %d dBm", static_cast<int32_t>(TakeU32(c).value));
}

// Items are in the byte order of the machine that captured; the length of the header tells it.
void DecodePrism(const Place& at, Cursor c) {
  constexpr auto kItems = SortedNames({{1, "Host Time"}, {2, "MAC Time"}, {3, "Channel"}, {4, "RSSI"},
                                       {5, "Signal Quality"}, {6, "Signal"}, {7, "Noise"}, {8, "Data Rate"},
                                       {9, "Transmitted"}, {10, "Frame Length"}});
  const Place in = Under(at, AddLine(at, kOutside, "Radio Information: Prism, %d bytes", Left(c)));
  const bool little = PeekLittleU32(c, 4) == static_cast<uint32_t>(Left(c));
  TakeBytes(c, 24);
  while (Left(c) >= 12) {
    const Cursor item = TakeCursor(c, 12);
    const uint32_t code = little ? PeekLittleU32(item) : PeekU32(item);
    const uint32_t status = little ? PeekLittleU16(item, 4) : PeekU16(item, 4);
    const uint32_t value = little ? PeekLittleU32(item, 8) : PeekU32(item, 8);
    // The number stands in the upper half in one family of drivers and in the lower half in the other.
    const uint32_t number = code & 0xF000 ? code >> 12 & 0xF : code >> 16 & 0xFF;
    if (status == 0) AddLine(in, kOutside, "%s: %u", LookupName(kItems, number), value);
  }
}

Cursor RadioHeaderOf(const FrameRecord* record) {
  int32_t length;
  const uint8_t* bytes = FindExtension(record, kExtensionMedium, &length);
  return MakeCursor(bytes, 0, bytes ? length : 0);
}

}  // namespace

void DecodeRadioHeader(const Place& at) {
  const KeyedAs keys(PacketOf(at), "radio");
  const FrameRecord* record = PacketOf(at).frame;
  const Cursor c = RadioHeaderOf(record);
  if (Left(c) < 8) return;
  switch (record->linkType) {
    case kLinkRadiotap: return DecodeRadiotap(at, c);
    case kLinkPpi: return DecodePpi(at, c);
    case kLinkPrism:
    case kLinkAvs: return (PeekU32(c) & 0xFFFFF000) == kAvsMagic ? DecodeAvs(at, c) : DecodePrism(at, c);
    default: return;
  }
}

bool HasHeaderPadding(const FrameRecord* record) {
  if (record->linkType != kLinkRadiotap) return false;
  RadiotapWalk walk = StartWalk(RadioHeaderOf(record));
  int32_t bit;
  for (Field field; (field = NextField(walk, &bit)).here;) {
    if (bit >= kFlagsBit) return bit == kFlagsBit && (PeekU8(field) & kPaddedFlag);
  }
  return false;
}

}  // namespace qxview
