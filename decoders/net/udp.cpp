// User Datagram Protocol (RFC 768).
//
//   0            2                 4       6         8
//   source port  destination port  length  checksum  data
#include "core/custom_libraries.h"
#include "core/decoder.h"
#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/port_dispatch.h"

namespace qxview {
namespace {

constexpr int32_t kHeader = 8;

// Why the checksum tells nothing; null where it does.
const char* WhyUnchecked(uint32_t stored, const NetworkState& network, bool partial) {
  if (stored == 0) return "not used";
  if (network.fragmented) return "data fragment - not able to check";
  if (network.offloaded) return "segmentation offload - not able to check";
  return partial ? "partial packet - not able to check" : nullptr;
}

void AddHeaderLines(const Place& in, Cursor& c) {
  if (Silent(in)) {   // a bad checksum stops nothing
    constexpr int32_t kLines = 4;
    CountLines(in, kLines);
    TakeBytes(c, kHeader);
    return;
  }
  const NetworkState& network = PacketOf(in).network;
  const Cursor datagram = c;
  const Field source = TakeU16(c);
  AddLine(in, source, "Source port: [%u]", source.value);
  const Field destination = TakeU16(c);
  AddLine(in, destination, "Destination port: [%u]", destination.value);

  const Field length = TakeU16(c);
  const bool partial = static_cast<int32_t>(length.value) > Left(datagram);
  if (partial || network.fragmented) {
    AddLine(in, length, "UDP length: %.2d,  captured: %.2d; partial capture or fragmented packet ", length.value,
            Left(datagram));
  } else {
    AddLine(in, length, "UDP length: %.2d", length.value);
  }
  const uint32_t sum = network.fragmented ? 0 : SumWords(network.pseudoHead, datagram.at, Left(datagram));
  const Field checksum = TakeU16(c);
  AddChecksumLine(in, checksum, "Checksum: ", WhyUnchecked(checksum.value, network, partial), sum, BadChecksum::kAlone);
}

}  // namespace

int32_t DecodeUdp(const Place& at, Cursor c) {
  if (Left(c) < kHeader) return 0;
  PacketState& packet = PacketOf(at);
  packet.sourcePort = static_cast<uint16_t>(PeekU16(c));
  packet.destinationPort = static_cast<uint16_t>(PeekU16(c, 2));

  bool matchedSource;
  const int32_t identifier = ResolveProtocol(at.view, kIpProtocolUdp, packet.source, packet.sourcePort,
                                             packet.destination, packet.destinationPort, &matchedSource);
  const auto name = ProtocolName(at.view, Silent(at) ? 0 : identifier);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "UDP%s, [%u] %s -> [%u] %s",
                                     packet.network.fragmented ? " First Fragment" : "", packet.sourcePort,
                                     matchedSource ? name.text : "", packet.destinationPort,
                                     matchedSource ? "" : name.text));
  AddHeaderLines(in, c);
  if (Left(c) == 0) return 1;
  if (!packet.quoted && OfferPayload(at, PayloadHook::kUdp, c)) return 1;
  return DispatchUdpPayload(at, c, identifier);
}

}  // namespace qxview
