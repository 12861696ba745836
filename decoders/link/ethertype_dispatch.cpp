// Ethertypes: from the type field of Ethernet II, SNAP, tags and labels to the network-layer decoder.
#include "core/decoder.h"

namespace qxview {

int32_t ShowRawPacket(const Place& at, Cursor c);

int32_t DispatchEthertype(const Place& at, Cursor c, uint16_t ethertype) {
  constexpr uint16_t kArp = 0x0806;
  if (Left(c) < 4) return 0;
  ReachLayer(at, DispatchTable::kEthertype, ethertype, c);
  const DecoderRow* row = FindEthertype(ethertype);
  if (ethertype == kArp && PacketOf(at).frame->mediaType == static_cast<uint8_t>(Medium::kAtm)) {
    row = FindLinkEncapsulation(kAtmArpKey);
  }
  if (!row) return ShowRawPacket(at, c);
  return TryDecoder(at, c, row->decode, "Raw Packet");
}

}  // namespace qxview
