// SNAP (IEEE 802, RFC 1042): whose protocol, and which.
//
//   0                     3                            5
//   organizational code   protocol: an Ethertype when  payload
//                         the code is 0
//
// The code 00-80-C2 is that of bridged traffic: a frame of another LAN follows with its MAC header. LANs and WANs pad
// in front of that header in their own ways (RFC 2427 for Frame Relay, RFC 2684 for ATM).
#include "decoders/link/carried.h"
#include "decoders/link/llc.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

constexpr uint32_t kBridgedLanOui = 0x0080C2;
constexpr uint16_t kAppleTalk = 0x809B;
constexpr uint32_t kBridgedBpdu = 0x000E;
constexpr int32_t kBridgedHeader = 16;

constexpr auto kOuiNames = SortedNames({{0x000000, "Default"}, {0x00000C, "Cisco"}, {0x00000F, "NeXT"},
                                        {0x000010, "Sytek"}, {0x00001D, "Cabletron"}, {0x000020, "DIAB"}});

enum class BridgedMedium { kOther, kEthernet, kTokenRing, kFddi };

// The low numbers carry the frame's check sequence, the high ones do not.
BridgedMedium MediumOf(uint32_t type) {
  switch (type) {
    case 1: case 7: return BridgedMedium::kEthernet;
    case 3: case 9: return BridgedMedium::kTokenRing;
    case 4: case 10: return BridgedMedium::kFddi;
    default: return BridgedMedium::kOther;
  }
}

// Adds the lines of a bridged frame's medium; none for a medium without a name.
BridgedMedium AddBridgedMedium(const Place& in, const Field& oui, const Field& type) {
  AddLine(in, oui, "Organizational Code: 0x%.06X = Routed LAN Traffic", oui.value);
  const BridgedMedium medium = MediumOf(type.value);
  switch (medium) {
    case BridgedMedium::kEthernet: AddLine(in, type, "Network Type: 0x%.04X - Ethernet", type.value); break;
    case BridgedMedium::kTokenRing: AddLine(in, type, "Network Type: 0x%.04X - Token Ring", type.value); break;
    case BridgedMedium::kFddi: AddLine(in, type, "Network Type: 0x%.04X - FDDI", type.value); break;
    case BridgedMedium::kOther: break;
  }
  return medium;
}

// On a LAN the carried MAC header is passed over.
int32_t DecodeBridgedLan(const Place& in, const Place& network, const Field& oui, Cursor c) {
  const Field type = TakeU16(c);
  if (AddBridgedMedium(in, oui, type) == BridgedMedium::kOther) return CallDecoder(network, c, nullptr, "Raw Data");
  TakeBytes(c, kBridgedHeader);
  const Field ethertype = TakeU16(c);
  if (!ethertype.here) return 1;
  return DispatchSnap(network, c, 0, static_cast<uint16_t>(ethertype.value));
}

int32_t DecodeBridgedFrame(const Place& in, const Place& network, const Field& oui, Cursor c, int32_t padding) {
  const Field type = TakeU16(c);
  const BridgedMedium medium = AddBridgedMedium(in, oui, type);
  if (medium == BridgedMedium::kOther) {
    AddLine(in, type, "Network Type: 0x%.04X", type.value);
    const bool isBpdu = type.here && type.value == kBridgedBpdu;
    return CallDecoder(network, c, isBpdu ? FindLlcService(LlcService::kSpanningTree)->decode : nullptr, "Raw Data");
  }
  // Token Ring's access control is a byte of padding on links without room for it; FDDI has none.
  const Field pad = TakeBytes(c, padding + (medium == BridgedMedium::kFddi ? 1 : 0));
  if (pad.length > 0) AddLine(in, pad, "Padding: %s", HexText(pad));
  switch (medium) {
    case BridgedMedium::kTokenRing: return DecodeCarriedFrame(network, c, Carried::kTokenRing);
    case BridgedMedium::kFddi: return DecodeCarriedFrame(network, c, Carried::kFddi);
    default: return DecodeCarriedFrame(network, c, Carried::kEthernet);
  }
}

}  // namespace

void AddOrganization(const Place& in, const Field& oui) {
  AddLine(in, oui, "Organizational Code: 0x%.06X = %s", oui.value,
          LookupName(kOuiNames, oui.value, "Vendor Specific"));
}

const char* AddSnapProtocol(const Place& in, const Field& protocol) {
  const char* name = protocol.here ? EthertypeName(static_cast<uint16_t>(protocol.value)) : nullptr;
  if (name) {
    AddLine(in, protocol, "Ethertype: [0x%.04X] = %s", protocol.value, name);
  } else {
    AddLine(in, protocol, "Protocol: 0x%.04X", protocol.value);
  }
  return name;
}

int32_t DispatchSnap(const Place& network, const Cursor& c, uint32_t oui, uint16_t protocol) {
  const DecoderRow* ofMaker = oui ? FindLinkEncapsulation(SnapKey(oui, protocol)) : nullptr;
  if (ofMaker) return CallDecoder(network, c, ofMaker->decode, "Raw Data");
  if (protocol == kAppleTalk) return CallDecoder(network, c, FindEthertype(kAppleTalk)->decode, "Raw Data");
  const int32_t handled = DispatchEthertype(network, c, protocol);
  return handled ? handled : CallDecoder(network, c, nullptr, "Raw Data");
}

int32_t DecodeSnapFields(const Place& in, LineHandle top, const Place& network, Cursor c) {
  const Field oui = TakeU24(c);
  if (oui.here && oui.value == kBridgedLanOui) return DecodeBridgedLan(in, network, oui, c);
  AddOrganization(in, oui);
  const Field protocol = TakeU16(c);
  if (!protocol.here) return 1;
  if (const char* name = AddSnapProtocol(in, protocol)) AppendToLine(in, top, " Ethertype = %s", name);
  DispatchSnap(network, c, oui.value, static_cast<uint16_t>(protocol.value));
  return 1;
}

int32_t DecodeEncapsulatedSnap(const Place& in, const Place& network, Cursor c, int32_t padding) {
  const Field oui = TakeU24(c);
  if (oui.here && oui.value == kBridgedLanOui) return DecodeBridgedFrame(in, network, oui, c, padding);
  AddOrganization(in, oui);
  const Field protocol = TakeU16(c);
  if (!protocol.here) return 1;
  AddSnapProtocol(in, protocol);
  DispatchSnap(network, c, oui.value, static_cast<uint16_t>(protocol.value));
  return 1;
}

}  // namespace qxview
