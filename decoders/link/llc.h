// 802.2 headers: what they can carry beside SNAP, which are the keys of the registry's table of LLC services, and the
// parts of their decoder.
#pragma once
#include "core/decoder.h"

namespace qxview {

enum class LlcService : uint32_t {
  kNone, kXidTest, kOsiNull, kClnp, kEsIs, kIsIs, kOsiOther, kIpx, kNetBios, kVinesBa, kVines, kSpanningTree, kSna,
};

const DecoderRow* FindLlcService(LlcService service);   // null for kNone

// What numbers of other registries lead to, among the link encapsulations of the registry: the protocol of a maker behind a
// SNAP header, by the maker's code and its number, and a slow protocol's subtype (IEEE 802.3 annex 57A).
constexpr uint32_t SnapKey(uint32_t oui, uint32_t protocol) { return (oui & 0xFFFF) << 16 | protocol; }
constexpr uint32_t SlowProtocolKey(uint32_t subtype) { return 0x88090000 | subtype; }

// The service of an OSI network-layer identifier.
LlcService OsiService(uint32_t nlpid);

// The line of a control field of one or two bytes: its format and what it says.
void AddControlLine(const Place& in, const Field& control);

// The organizational code and the protocol of a SNAP header, under `in`. `top` is the header's line: the protocol's
// name is appended to it. The rest at `network`.
int32_t DecodeSnapFields(const Place& in, LineHandle top, const Place& network, Cursor c);

// The line of an OUI, and of the Ethertype or other protocol behind it; the protocol's name, null when it has none.
void AddOrganization(const Place& in, const Field& oui);
const char* AddSnapProtocol(const Place& in, const Field& protocol);

// Dispatches the payload of a SNAP header.
int32_t DispatchSnap(const Place& network, const Cursor& c, uint32_t oui, uint16_t protocol);

// The name of what an 802.2 header carries: the Ethertype's behind a SNAP header, else the service's; "Unknown" when
// nothing names it.
const char* NameLlcPayload(Cursor c);

}  // namespace qxview
