// What scripts/false_positives.py runs: reads a payload a line, "tcp|udp SOURCE-PORT DESTINATION-PORT HEX", and writes
// the names of the recognisers that claim it, in the order of detection, or "-". Every recogniser is asked, those
// behind the first that claims a payload too.
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "decoders/net/dynamic_udp.h"
#include "decoders/net/recognisers.h"

namespace qxview {
namespace {

struct Named {
  const char* name;
  Recogniser recognise;
};
constexpr Named kOverTcp[] = {{"MSRPC", LooksLikeMsrpc},       {"SMB", LooksLikeSmb},   {"TDS", LooksLikeTds},
                              {"Oracle-TNS", LooksLikeTns},    {"ONC-RPC-record", LooksLikeOncRpcRecord},
                              {"FIX", LooksLikeFix},           {"SIP", LooksLikeSip},   {"GIOP", LooksLikeGiop},
                              {"FCIP", LooksLikeFcip},         {"BitTorrent", LooksLikeBitTorrent}};

std::string ClaimsOverUdp(uint16_t source, uint16_t destination, const std::vector<uint8_t>& payload) {
  const int32_t length = static_cast<int32_t>(payload.size());
  std::string claims = LooksLikeOncRpc(MakeCursor(payload.data(), 0, length)) ? " ONC-RPC" : "";
  if (LooksLikeMpegTs(MakeCursor(payload.data(), 0, length))) claims += " MPEG-TS";
  const DetectionSettings all{0x1B, 0x400, 0};
  uint32_t identifier;
  if (DetermineDynamicUDPPrototol(&all, source, destination, payload.data(), length, &identifier, nullptr, nullptr,
                                  nullptr)) {
    claims += identifier == kLearntRtp ? " RTP" : " RTCP";
  }
  return claims;
}

std::string ClaimsOverTcp(const std::vector<uint8_t>& payload) {
  std::string claims;
  for (const Named& row : kOverTcp) {
    if (row.recognise(MakeCursor(payload.data(), 0, static_cast<int32_t>(payload.size())))) {
      claims += std::string(" ") + row.name;
    }
  }
  return claims;
}

std::vector<uint8_t> BytesOf(const std::string& hex) {
  std::vector<uint8_t> bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2) {
    bytes.push_back(static_cast<uint8_t>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16)));
  }
  return bytes;
}

}  // namespace
}  // namespace qxview

int main() {
  std::ios::sync_with_stdio(false);
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string transport, hex;
    unsigned source = 0, destination = 0;
    words >> transport >> source >> destination >> hex;
    const auto payload = qxview::BytesOf(hex);
    const auto from = static_cast<uint16_t>(source), to = static_cast<uint16_t>(destination);
    const std::string claims =
        transport == "tcp" ? qxview::ClaimsOverTcp(payload) : qxview::ClaimsOverUdp(from, to, payload);
    std::cout << (claims.empty() ? "-" : claims.substr(1)) << '\n';
  }
  return 0;
}
