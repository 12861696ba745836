#include "host/packet_addresses.h"

#include <cstddef>
#include <cstring>

#include "core/bounded_text.h"
#include "core/engine.h"

namespace qxview {
namespace {

constexpr uint32_t kHardwareKind = kNoAddress;   // as the host is asked
constexpr int32_t kMac = 6;

void PutAddress(const QxHost* host, uint32_t kind, const uint8_t* address, char* out) {
  const auto alias = QXVIEW_HOST_FUNCTION(host, addressAlias);
  if (alias && alias(host->user, kind, address, out, kAddressTextSize) == 1) return;
  switch (kind) {
    case kIPv4Kind: FormatIPv4(address, out); break;
    case kIPv6Kind: FormatIPv6(address, out); break;
    default: FormatMac(address, out); break;
  }
}

void PutSlot(const QxHost* host, const AddressSlot& slot, char* out) {
  out[0] = 0;
  if (slot.kind == kIPv4Kind) PutAddress(host, kIPv4Kind, slot.address + 12, out);
  if (slot.kind == kIPv6Kind) PutAddress(host, kIPv6Kind, slot.address, out);
}

// Where a medium's header holds its addresses, from the frame's start; negative for none.
struct AddressPlaces {
  int32_t source, destination;
};

// Between the radio cells of access points the addresses move (IEEE 802.11, 9.3.2.1); control frames have one or two.
AddressPlaces WirelessPlaces(const uint8_t* frame, int32_t length) {
  constexpr AddressPlaces kByDirection[] = {{10, 4}, {10, 16}, {16, 4}, {24, 16}};
  constexpr uint32_t kControl = 1, kData = 2;
  if (length < 2) return {-1, -1};
  const uint32_t type = frame[0] >> 2 & 3, subtype = frame[0] >> 4;
  if (type == kControl) {
    constexpr uint32_t kClearToSend = 12, kAcknowledgement = 13;
    return {subtype == kClearToSend || subtype == kAcknowledgement ? -1 : 10, 4};
  }
  return kByDirection[type == kData ? frame[1] & 3 : 0];
}

AddressPlaces PlacesOf(const FrameRecord* record) {
  if (IsRawFrame(record)) return {-1, -1};
  switch (static_cast<Medium>(record->mediaType)) {
    case Medium::kEthernet: return {6, 0};
    case Medium::kTokenRing: return {8, 2};
    case Medium::kFddi: return {7, 1};
    case Medium::kWireless: return WirelessPlaces(FrameData(record), record->capturedLength);
    default: return {-1, -1};
  }
}

void PutHardware(const QxHost* host, const FrameRecord* record, int32_t place, bool source, char* out) {
  out[0] = 0;
  if (place < 0 || place + kMac > record->capturedLength) return;
  uint8_t address[kMac];
  std::memcpy(address, FrameData(record) + place, kMac);
  // The bit of a Token Ring source address that says that routing information follows is none of the address.
  if (source && record->mediaType == static_cast<uint8_t>(Medium::kTokenRing)) address[0] &= 0x7F;
  PutAddress(host, kHardwareKind, address, out);
}

}  // namespace

void FormatPacketAddresses(const PacketState& packet, const QxHost* host, PacketAddresses* out) {
  if (packet.source.kind != 0 || packet.destination.kind != 0) {
    PutSlot(host, packet.source, out->source);
    PutSlot(host, packet.destination, out->destination);
    return;
  }
  const AddressPlaces places = PlacesOf(packet.frame);
  PutHardware(host, packet.frame, places.source, true, out->source);
  PutHardware(host, packet.frame, places.destination, false, out->destination);
}

void FormatEndAddress(const AddressSlot& slot, const QxHost* host, char (&out)[kAddressTextSize]) {
  if (slot.kind == kNoAddress) return PutAddress(host, kHardwareKind, slot.address, out);
  PutSlot(host, slot, out);
}

}  // namespace qxview
