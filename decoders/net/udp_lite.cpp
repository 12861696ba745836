// Lightweight User Datagram Protocol (RFC 3828): UDP whose checksum need not cover all of the data.
//
//   source port (2) destination port (2) checksum coverage (2) checksum (2) data
#include "core/internet_checksum.h"
#include "core/rows.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/port_dispatch.h"

namespace qxview {

int32_t DecodeUdpLite(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 8;
  if (Left(c) < kHeader) return 0;
  const Cursor whole = c;
  PacketState& packet = PacketOf(at);
  packet.sourcePort = static_cast<uint16_t>(PeekU16(c));
  packet.destinationPort = static_cast<uint16_t>(PeekU16(c, 2));
  bool matchedSource;
  const int32_t identifier = ResolveProtocol(at.view, kIpProtocolUdp, packet.source, packet.sourcePort, packet.destination,
                                             packet.destinationPort, &matchedSource);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "UDP-Lite, [%u] -> [%u]", packet.sourcePort,
                                     packet.destinationPort));
  static constexpr auto kPorts = Rows<NoValues>({Number(2, "Source Port"), Number(2, "Destination Port")});
  ShowRows(in, c, kPorts);
  const Field coverage = TakeU16(c);
  const uint32_t told = coverage.value;
  const char* meaning = told == 0 ? " (whole datagram)" : told < kHeader ? " (not allowed)" : "";
  AddLine(in, coverage, "Checksum Coverage: %u bytes%s", told, meaning);
  const uint32_t covered = told == 0 ? static_cast<uint32_t>(packet.network.totalLength) : told;
  const char* unchecked = packet.network.fragmented                               ? "data fragment - not able to check"
                          : told != 0 && told < kHeader                            ? "no coverage"
                          : static_cast<int64_t>(covered) > Left(whole)            ? "partial packet - not able to check"
                                                                                   : nullptr;
  const uint32_t sum = unchecked ? 0 : SumWords(packet.network.pseudoHead, whole.at, static_cast<int32_t>(covered));
  AddChecksumLine(in, TakeU16(c), "Checksum: ", unchecked, sum, BadChecksum::kAlone);
  if (Left(c) == 0) return 1;
  return DispatchUdpPayload(at, c, identifier);
}

}  // namespace qxview
