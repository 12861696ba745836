// Frames and datagrams inside others: the one entry by which tunnels, encapsulations and samples open what they carry.
//
// A carried frame starts at its link's header and a datagram at its own. Nesting is counted, the layer that is reached
// becomes the carried one's, and an inner datagram puts its addresses, ports, checksum state and segment in the place of
// the outer one's, so that its conversation is what is looked up and learnt.
#pragma once
#include "core/decoder.h"

namespace qxview {

enum class Carried : uint8_t {
  kUnknown, kEthernet, kTokenRing, kFddi, kWireless, kPpp, kCiscoHdlc, kFrameRelay, kLlc, kMpls,
  kIp,     // of the version that its first four bits tell
};

// The frame at the network's place; what has no decoder or declines is a block with the title. Result: 1.
int32_t DecodeCarriedFrame(const Place& network, const Cursor& c, Carried link, const char* title = "Raw Data");

// The same for a payload that an Ethertype names.
int32_t DecodeCarriedPacket(const Place& network, const Cursor& c, uint16_t ethertype, const char* title = "Raw Data");

// What bytes that nothing names start like: an IP header, a MAC header with a type that is known, or neither.
Carried GuessCarried(const Cursor& c);

// A type that has a decoder or a length that fits, and a source that is a station: groups send nothing.
bool LooksLikeMacHeader(const Cursor& c);

}  // namespace qxview
