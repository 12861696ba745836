// What PPP carries beside network protocols: its control, authentication and link protocols.
#pragma once
#include "core/decoder.h"

namespace qxview {

// The decoder of a protocol number of PPP; null for one that has none. The families: control protocols with options
// (ppp_control.cpp), authentication and link management (ppp_link.cpp).
DecoderFunction FindPppControl(uint32_t protocol);
DecoderFunction FindPppLink(uint32_t protocol);

// A payload by its protocol number: lines of the header go under `in`, the rest to `network`. Also for the subframes of a
// multiplexed frame.
int32_t DispatchPppProtocol(const Place& in, const Place& network, Cursor c, uint32_t protocol);
// The options of LCP, as tunnels report them.
void ShowLcpOptions(const Place& in, Cursor& c);
const char* PppProtocolName(uint32_t protocol);

}  // namespace qxview
