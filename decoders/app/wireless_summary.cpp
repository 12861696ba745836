// The packet list's text for 802.11 frames (IEEE 802.11) whose payload has no line of its own: management and control
// frames, data frames that are encrypted or empty.
#include "decoders/app/layer_summaries.h"
#include "decoders/app/wireless_names.h"

namespace qxview {
namespace {

enum Frame : uint32_t {   // type in bits 0 and 1, subtype in bits 2 to 5
  kAssociationRequest = 0x00, kReassociationRequest = 0x08, kProbeRequest = 0x10, kProbeResponse = 0x14,
  kBeacon = 0x20, kDisassociation = 0x28, kAuthentication = 0x2C, kDeauthentication = 0x30,
  kAssociationResponse = 0x04, kReassociationResponse = 0x0C,
};

// The network's name, the first element behind the fixed fields.
void AddNetworkName(SummaryText& text, Cursor c, int32_t fixedFields) {
  constexpr uint32_t kSsid = 0;
  TakeBytes(c, fixedFields);
  const Field element = TakeU8(c), length = TakeU8(c);
  if (!length.here || element.value != kSsid) return;
  const Cursor name = TakeCursor(c, length.value);
  if (length.value == 0) return Add(text, ", SSID: (any)");
  Add(text, ", SSID: ");
  AddPrintable(text, name.at, Left(name), 32);
}

}  // namespace

void DescribeWireless(SummaryText& text, Cursor frame, const PacketState&) {
  constexpr uint32_t kManagementType = 0, kDataType = 2, kProtected = 0x40, kOrder = 0x80;
  constexpr int32_t kHeader = 24, kHtControl = 4;
  Cursor c = frame;
  const Field control = TakeU8(c), flags = TakeU8(c);
  Add(text, "802.11");
  if (!control.here) return;
  Add(text, " %s", WirelessFrameName(control.value));
  const uint32_t kind = control.value >> 2 & 0x3F, type = kind & 3;
  c = frame;
  TakeBytes(c, kHeader - 2);
  const Field sequence = TakeLittleU16(c);
  if (type == kManagementType && flags.here && flags.value & kOrder) TakeBytes(c, kHtControl);
  if ((type == kManagementType || type == kDataType) && sequence.here) {
    Add(text, ", Sequence: %u, Fragment: %u", sequence.value >> 4, sequence.value & 15);
  }
  if (flags.here && flags.value & kProtected) return Add(text, ", Protected");
  switch (type == kManagementType ? kind : 0xFF) {
    case kBeacon:
    case kProbeResponse: return AddNetworkName(text, c, 12);
    case kProbeRequest: return AddNetworkName(text, c, 0);
    case kAssociationRequest: return AddNetworkName(text, c, 4);
    case kReassociationRequest: return AddNetworkName(text, c, 10);
    case kAuthentication: {
      const Field algorithm = TakeLittleU16(c), step = TakeLittleU16(c), status = TakeLittleU16(c);
      if (status.here) {
        Add(text, ", Algorithm: %u, Step: %u, Status: %u", algorithm.value, step.value, status.value);
      }
      return;
    }
    case kAssociationResponse:
    case kReassociationResponse: {
      TakeLittleU16(c);
      const Field status = TakeLittleU16(c);
      if (status.here) Add(text, ", Status: %u", status.value);
      return;
    }
    case kDisassociation:
    case kDeauthentication: {
      const Field reason = TakeLittleU16(c);
      if (reason.here) Add(text, ", Reason: %u", reason.value);
      return;
    }
    default: return;
  }
}

}  // namespace qxview
