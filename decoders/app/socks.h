// What SOCKS remembers of a connection between its packets.
#pragma once
#include <cstdint>

namespace qxview {

struct SocksSession {
  uint16_t port;       // that was asked for; 0 while none was
  uint8_t version;
  uint8_t isOpen;      // what follows request and reply is the relayed connection's
  uint32_t asked;      // the request's TCP sequence number, and the reply's: packets may be looked at in any order
  uint32_t answered;
};

}  // namespace qxview
