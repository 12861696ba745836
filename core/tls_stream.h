// What the TLS records of a connection leave for the ones behind them.
#pragma once
#include <cstdint>

namespace qxview {

// What a connection's payloads of one direction leave for the next one.
struct TlsStream {
  int32_t pending;   // bytes that the last record still lacks
  bool encrypted;    // its cipher was changed: handshake messages are not to be read
};

}  // namespace qxview
