// What SOCKS remembers of a connection between its packets.
#pragma once
#include <cstdint>

namespace qxview {

struct SocksSession {
  uint16_t port;       // that was asked for; 0 while none was
  uint8_t version;
  uint8_t isOpen;      // what comes now is the relayed connection's
};

}  // namespace qxview
