// Address Resolution Protocol (RFC 826), reverse (RFC 903) and inverse (RFC 2390): which station has this address?
//
//   0         2         4     5     6
//   hardware  protocol  hlen  plen  opcode   source hardware, source protocol, target hardware, target protocol
#include "core/decoder.h"
#include "core/frame_entry.h"
#include "decoders/common/hardware_types.h"
#include "decoders/link/arp_names.h"

namespace qxview {
namespace {

constexpr uint32_t kProtocolIPv4 = 0x0800;

// An address in the notation of its kind: the user's name for it where there is one, else plain bytes.
struct AddressText {
  ShortText<80> text;
};
AddressText NameAddress(const Place& at, const Field& address, bool isIPv4) {
  AddressText made{};
  if (!address.bytes) return made;
  if (isIPv4) {
    made.text = CheckAlias(at.view, 1, address.bytes);
  } else if (address.length == 6) {
    made.text = CheckAlias(at.view, 0, address.bytes);
  } else {
    FormatInto(made.text.text, sizeof made.text.text, "%s", HexText(address));
  }
  return made;
}

// One station: a hardware and a protocol address, of the lengths that the header gave.
void DecodeStation(const Place& in, Cursor& c, const char* who, const Field& hardwareLength,
                   const Field& protocolLength, bool isIPv4) {
  const Field hardware = TakeBytes(c, hardwareLength.value);
  AddLine(in, hardware, "%s Hardware Address: %s", who, NameAddress(in, hardware, false).text);
  const Field protocol = TakeBytes(c, protocolLength.value);
  const auto name = NameAddress(in, protocol, isIPv4).text;
  AddLine(in, protocol, "%s %s Address: %s", who, isIPv4 ? "IP" : "Protocol", name);
  AppendToParent(in, protocol, ", %s %s", who, name);
}

int32_t DecodePacket(const Place& at, Cursor c, const char* title) {
  if (Left(c) < 8) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 8), "%s:", title));

  const Field hardware = TakeU16(c);
  AddLine(in, hardware, "Hardware Type: %u = %s", hardware.value, LookupName(kHardwareNames, hardware.value));
  const Field protocol = TakeU16(c);
  const char* protocolName = EthertypeName(static_cast<uint16_t>(protocol.value));
  AddLine(in, protocol, "Protocol Type: 0x%.04X = %s", protocol.value, protocolName ? protocolName : kUnknown);
  const Field hardwareLength = TakeU8(c);
  AddLine(in, hardwareLength, "Hardware Address Length: %u", hardwareLength.value);
  const Field protocolLength = TakeU8(c);
  AddLine(in, protocolLength, "Protocol Address Length: %u", protocolLength.value);
  const Field opcode = TakeU16(c);
  const char* operation = LookupName(kArpOperationNames, opcode.value);
  AddLine(in, opcode, "Operation: %u = %s", opcode.value, operation);
  AppendToParent(in, opcode, " %s", operation);

  const bool isIPv4 = protocol.value == kProtocolIPv4 && protocolLength.value == 4;
  DecodeStation(in, c, "Source", hardwareLength, protocolLength, isIPv4);
  DecodeStation(in, c, "Target", hardwareLength, protocolLength, isIPv4);
  CoverBytes(in, c);   // frames are padded behind the addresses: the top line covers what was read
  return 1;
}

}  // namespace

int32_t DecodeArp(const Place& at, Cursor c) { return DecodePacket(at, c, "ARP"); }
int32_t DecodeRarp(const Place& at, Cursor c) { return DecodePacket(at, c, "RARP"); }

}  // namespace qxview
