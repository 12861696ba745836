// From addresses and ports to the application protocol, and from there to its decoder, for TCP and UDP.
#pragma once
#include "core/context.h"
#include "core/cursor.h"
#include "core/formatter.h"
#include "decoders/net/skimmed_frames.h"

namespace qxview {

struct Place;

constexpr uint8_t kIpProtocolTcp = 6, kIpProtocolUdp = 17;

// The protocol identifier that the user's definitions give to these ends: address definitions first, the source's
// before the destination's, then port definitions, the lower port's first. `ipProtocol` 6 chooses the TCP tables, any
// other the UDP ones. `matchedSource` is set when the match was made on the source side. -1 when nothing matches and
// when the definitions cannot be reached. The address tables are read under the host's lock.
int32_t ResolveProtocol(const View* view, uint8_t ipProtocol, const AddressSlot& source, uint16_t sourcePort,
                        const AddressSlot& destination, uint16_t destinationPort, bool* matchedSource);

// The host's display name of a protocol identifier; empty when it has none and for identifiers below 1.
constexpr int32_t kProtocolNameSize = 64;
ShortText<kProtocolNameSize> ProtocolName(const View* view, int32_t identifier);

// Hands a payload to the decoder that the identifier names, one level deeper than the transport's place `at`; without
// a protocol to dynamic detection. What no decoder takes is a raw data block titled with the protocol's name, "TCP
// Data" or "UDP Data". Result: 1.
int32_t DispatchTcpPayload(const Place& at, Cursor c, int32_t identifier, bool matchedSource);
int32_t DispatchUdpPayload(const Place& at, Cursor c, int32_t identifier);

// Makes the look-ups of these where headers alone are wanted; for Skim::kSummary the packet state is set what the payload reaches.
Skim SkimPayload(const Place& at, const Cursor& c, int32_t identifier, uint8_t ipProtocol);

// What a segment tells of its connection's streams beside its payload, for messages that span segments: where they begin
// and end, and what its receiver has. PacketState::segment is set.
void NoteTcpSegment(const Place& at, const Cursor& c, int32_t identifier, uint32_t acknowledgement);

}  // namespace qxview
