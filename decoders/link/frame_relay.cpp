// Frame Relay (Q.922 core, RFC 2427): virtual circuits over one line.
//
//   address (Q.922), 2 to 4 bytes, the last one odd      then, RFC 2427       or, Cisco encapsulation
//     DLCI (6 bits)   C/R   0                              0x03               an Ethertype
//     DLCI (4)  FECN  BECN  DE  0 or 1                     0x00, optional
//     DLCI (7)  0 or 1                                     NLPID
//     DLCI (6)  D/C   1                                    payload
//
// With the D/C bit set, the last six bits are a control indication (DL-CORE) and not of the DLCI.
#include "core/line_facts.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint32_t kUnnumberedInformation = 0x03;
constexpr int32_t kMostAddressBytes = 4;

struct Address {
  Field bytes[kMostAddressBytes];
  int32_t count;
  uint32_t dlci;
  bool control;   // the last byte of three or four holds a control indication
};

// False when no byte of four ends the address, or when the bytes end.
bool TakeAddress(Cursor& c, Address* address) {
  *address = {};
  while (address->count < kMostAddressBytes) {
    const Field byte = TakeU8(c);
    if (!byte.here) return false;
    address->bytes[address->count++] = byte;
    const bool last = byte.value & 1;
    switch (address->count) {
      case 1: address->dlci = byte.value >> 2; break;
      case 2: address->dlci = address->dlci << 4 | byte.value >> 4; break;
      default:
        if (!last) {
          address->dlci = address->dlci << 7 | byte.value >> 1;
          break;
        }
        address->control = byte.value & 2;
        if (!address->control) address->dlci = address->dlci << 6 | byte.value >> 2;
        break;
    }
    if (last) return address->count >= 2;
  }
  return false;
}

void AddExtension(const Place& in, const Field& byte) {
  const BitPicture last = BitsOf(byte, 7, 1);
  AddBitLine(in, byte, "%s: Address Extension = %s", last.picture, last.value ? "Last Byte" : "More Bytes");
}

void AddFlag(const Place& in, const Field& byte, int32_t bit, const char* name) {
  const BitPicture flag = BitsOf(byte, bit, 1);
  AddBitLine(in, byte, "%s: %s = %u", flag.picture, name, flag.value);
}

void AddDlciPart(const Place& in, const Field& byte, int32_t bits, const char* which) {
  const BitPicture part = BitsOf(byte, 0, bits);
  AddBitLine(in, byte, "%s: %sDLCI = %u", part.picture, which, part.value);
}

void AddAddressLines(const Place& in, const Address& address) {
  const Field* bytes = address.bytes;
  AddDlciPart(in, bytes[0], 6, "Upper ");
  AddFlag(in, bytes[0], 6, "Command/Response");
  AddExtension(in, bytes[0]);
  AddDlciPart(in, bytes[1], 4, address.count == 2 ? "Lower " : "Second ");
  AddFlag(in, bytes[1], 4, "Forward Congestion (FECN)");
  AddFlag(in, bytes[1], 5, "Backward Congestion (BECN)");
  AddFlag(in, bytes[1], 6, "Discard Eligibility (DE)");
  AddExtension(in, bytes[1]);
  for (int32_t i = 2; i < address.count; ++i) {
    const bool last = i == address.count - 1;
    if (last && address.control) {
      const BitPicture control = BitsOf(bytes[i], 0, 6);
      AddBitLine(in, bytes[i], "%s: DL-CORE Control = %u", control.picture, control.value);
    } else {
      AddDlciPart(in, bytes[i], last ? 6 : 7, last ? "Lower " : "Third ");
    }
    if (last) AddFlag(in, bytes[i], 6, "Control Indication (D/C)");
    AddExtension(in, bytes[i]);
  }
}

// An information or supervisory control field (LAPF) instead of an Ethertype: no Ethertype has this number, and an
// identifier follows.
bool IsNumbered(const Cursor& c) {
  if (Left(c) < 3 || (PeekU8(c) & 3) == 3 || EthertypeName(static_cast<uint16_t>(PeekU16(c)))) return false;
  return NlpidName(PeekU8(c, 2)) != nullptr;
}

// What follows the address; the header's lines go under `in`.
int32_t DecodePayload(const Place& in, const Place& network, Cursor c) {
  if (Left(c) < 1) return 1;
  const bool numbered = IsNumbered(c);
  if (PeekU8(c) != kUnnumberedInformation && !numbered) {
    const Field ethertype = TakeU16(c);
    if (!ethertype.here) return 1;
    const char* name = EthertypeName(static_cast<uint16_t>(ethertype.value));
    AddLine(in, ethertype, "Ethertype: 0x%.04X = %s", ethertype.value, name ? name : kUnknown);
    return DispatchSnap(network, c, 0, static_cast<uint16_t>(ethertype.value));
  }
  AddControlLine(in, numbered ? TakeU16(c) : TakeU8(c));
  if (Left(c) >= 1 && PeekU8(c) == 0) {
    const Field pad = TakeU8(c);
    AddLine(in, pad, "Padding: 0x%.02X", pad.value);
  }
  return DispatchNlpid(in, network, c);
}

}  // namespace

bool LooksLikeFrameRelay(Cursor c) {
  Address address;
  if (!TakeAddress(c, &address) || Left(c) < 2) return false;
  if (PeekU8(c) == kUnnumberedInformation) {
    const int32_t pad = PeekU8(c, 1) == 0 && Left(c) > 2 ? 1 : 0;
    return NlpidName(PeekU8(c, 1 + pad)) != nullptr;
  }
  return EthertypeName(static_cast<uint16_t>(PeekU16(c))) != nullptr;
}

int32_t DecodeFrameRelay(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "fr");
  const Cursor start = c;
  Address address;
  if (!TakeAddress(c, &address)) return 0;
  const Field header = Ahead(start, address.count);
  const LineHandle top = AddLine(at, header, "Frame Relay Header:  DLCI = %u", address.dlci);
  const Place in = Under(at, top);
  const Place addressIn = Under(in, AddLine(in, header, "Address: DLCI = %u", address.dlci));
  AddAddressLines(addressIn, address);
  DecodePayload(in, Deeper(at), c);
  return 1;
}

}  // namespace qxview
