// What HTTP's cases are written with: payloads as text, and a connection whose earlier segments the host lends.
#pragma once
#include <string>

#include "host/segment_history.h"
#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview {
int32_t DecodeHttp(const Place& at, Cursor c);

namespace testing {

inline Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }

// Decodes the bytes as the payload of a TCP segment of the connection that all cases share.
inline int32_t DecodeHttpSegment(const Place& at, Cursor c) {
  PacketOf(at).segment = {c.at, Left(c), 0, 0, true};
  return DecodeHttp(at, c);
}

// A host with the history of one connection.
struct HttpHost : TestHost {
  HttpHost() {
    host.earlierSegment = [](void* user, const AddressSlot* source, uint16_t sourcePort,
                             const AddressSlot* destination, uint16_t destinationPort, int32_t back, QxSegment* out) {
      auto* self = static_cast<HttpHost*>(static_cast<TestHost*>(user));
      return int32_t{self->history.Find(*source, sourcePort, *destination, destinationPort, back, out)};
    };
  }
  HttpHost& Sent(const Bytes& payload, uint32_t flags = 0) {
    const TcpSegment segment{payload.data(), static_cast<int32_t>(payload.size()), 0, flags, true};
    history.Record({}, 0, {}, 0, segment, ++packets);
    return *this;
  }
  SegmentHistory history;
  int64_t packets = 0;
};

// The tree of a payload behind what the connection sent before.
inline std::string TreeAfter(HttpHost& host, const Bytes& payload) {
  TestView view(&host);
  view.Run(DecodeHttpSegment, payload);
  return view.Text();
}

// How much slower a build with sanitizers may be.
#if defined(__SANITIZE_ADDRESS__)
constexpr double kSlowness = 20;
#else
constexpr double kSlowness = 1;
#endif

}  // namespace testing
}  // namespace qxview
