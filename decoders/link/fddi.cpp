// FDDI frames (ISO 9314-2).
//
//   0              1            7       13
//   frame control  destination  source  802.2, station management or MAC data
//
//   frame control   class (1)  address length (1)  format (2)  control (4)
#include "core/line_facts.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderLength = 1 + 2 * kMacAddressLength;
constexpr uint32_t kLlcFormat = 1;

constexpr auto kFormats = SortedNames({{0, "MAC or SMT"}, {1, "LLC"}, {2, "Implementer"}, {3, "Reserved"}});

struct FrameType {
  const char* name;
  bool carriesLlc;
};

FrameType TypeOf(uint32_t control) {
  const uint32_t format = control >> 4 & 3;
  if (format == kLlcFormat) return {control & 0x80 ? "LLC Synchronous" : "LLC Asynchronous", true};
  if (format == 2) return {"Implementer", false};
  if (format == 3) return {"Reserved", false};
  switch (control) {
    case 0x00: case 0x40: return {"Void", false};
    case 0x80: return {"Token", false};
    case 0xC0: return {"Restricted Token", false};
    case 0x41: return {"SMT", false};
    case 0x4F: return {"SMT Next Station Addressing", false};
    case 0x82: case 0xC2: return {"MAC Beacon", false};
    case 0x83: case 0xC3: return {"MAC Claim", false};
    default: return {control & 0x80 ? "MAC" : "SMT", false};
  }
}

const char* NameProtocol(Cursor c) {
  if (Left(c) < 1) return kUnknown;
  const FrameType type = TypeOf(PeekU8(c));
  if (!type.carriesLlc) return type.name;
  TakeBytes(c, kHeaderLength);
  return NameLlcPayload(c);
}

void AddControlLines(const Place& in, const Field& control) {
  AddLine(in, control, "Frame Control: 0x%.02X = %s", control.value, TypeOf(control.value).name);
  const BitPicture synchronous = BitsOf(control, 0, 1), length = BitsOf(control, 1, 1);
  const BitPicture format = BitsOf(control, 2, 2), detail = BitsOf(control, 4, 4);
  AddBitLine(in, control, "%s: Class = %s", synchronous.picture, synchronous.value ? "Synchronous" : "Asynchronous");
  AddBitLine(in, control, "%s: Address Length = %s", length.picture, length.value ? "48 bits" : "16 bits");
  AddBitLine(in, control, "%s: Format = %s", format.picture, LookupName(kFormats, format.value));
  if (format.value == kLlcFormat) {
    AddBitLine(in, control, "%s: Priority = %u", detail.picture, detail.value & 7);
  } else {
    AddBitLine(in, control, "%s: Control = %u", detail.picture, detail.value);
  }
}

}  // namespace

int32_t DecodeFddiHeader(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "fddi");
  if (Left(c) < kHeaderLength) return 0;
  const LineHandle top =
      AddLine(at, Ahead(c, kHeaderLength), "FDDI Header:  %s -> %s",
              CheckAlias(at.view, 0, PeekBytes(c, 1 + kMacAddressLength, kMacAddressLength).bytes),
              CheckAlias(at.view, 0, PeekBytes(c, 1, kMacAddressLength).bytes));
  const Place in = Under(at, top);
  const Field control = TakeU8(c);
  AddControlLines(in, control);
  AddAddress(in, TakeBytes(c, kMacAddressLength), "Destination");
  AddAddress(in, TakeBytes(c, kMacAddressLength), "Source");
  const FrameType type = TypeOf(control.value);
  ShortText<64> title;
  FormatInto(title.text, sizeof title.text, "%s Data", type.name);
  CallDecoder(Deeper(at), c, type.carriesLlc ? DecodeLlc : nullptr, type.carriesLlc ? "Raw Data" : title.text);
  return 1;
}

int32_t DecodeFddiFrame(const Place& at, Cursor c) {
  if (OfferFrame(at, c)) return 1;
  const FrameRecord* record = PacketOf(at).frame;
  const Cursor frame = c;
  const Field checkSequence = CutCheckSequence(at, c);
  const Place in = AddFrameSummary(at, frame);
  const Field whole = Ahead(frame, Left(frame));
  AddLine(in, whole, "Network: FDDI,  Frame type:  %s,  Protocol:  %s",
          Left(c) >= 1 ? TypeOf(PeekU8(c)).name : kUnknown, NameProtocol(c));
  AddLine(in, whole, "Frame size (including 4 bytes CRC):  %lu", SizeWithCheckSequence(record, 4));
  AddClosingSummaryLines(in, frame, OriginalNumber::kShownWide, checkSequence);
  AddCaptureLines(in);
  CallDecoder(at, c, DecodeFddiHeader, "Raw Data");
  return 1;
}

}  // namespace qxview
