// Packet selection by a BPF expression (libpcap's language), where libpcap is there.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

namespace qxview {

class BpfFilter {
 public:
  // Null with a message that names the expression and what is wrong with it.
  static std::unique_ptr<BpfFilter> Create(const std::string& expression, std::string* message);
  virtual ~BpfFilter() = default;

  // Whether a frame of this LINKTYPE, as it was captured, matches. An expression that makes no sense for a link type
  // (a hardware address on raw IP), or a link type that libpcap does not know, matches none of its frames; *why then
  // says so, once for each link type.
  virtual bool Matches(uint16_t linkType, const uint8_t* data, uint32_t length, uint32_t wireLength,
                       std::string* why) = 0;
};

}  // namespace qxview
