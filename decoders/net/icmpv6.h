// The bodies of ICMPv6 messages: what the families of messages give to the decoder of the header that they share.
#pragma once
#include "core/decoder.h"

namespace qxview {

// What a message's decoder knows and leaves.
struct Icmpv6Message {
  uint32_t type, code;
  Cursor quoted;   // a packet that the message quotes; decoded behind the message's own lines
};

// Shows a message's body, the bytes behind the checksum, under the message's line; summaries go on `in.parent`.
// What is left in the cursor is shown by the caller as data.
using Icmpv6Body = void (*)(const Place& in, Cursor& c, Icmpv6Message& message);

// Neighbour discovery (icmpv6_neighbour.cpp).
void DecodeIPv6RouterSolicitation(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeIPv6RouterAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeNeighborSolicitation(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeNeighborAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeRedirect(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeInverseDiscovery(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeFastHandover(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeMobilePrefixSolicitation(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeMobilePrefixAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message);

// About nodes and routers (icmpv6_nodes.cpp).
void DecodeRouterRenumbering(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeNodeInformation(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeDuplicateAddress(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeLocatorUpdate(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodePathSolicitation(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodePathAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeExperimentalMobility(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeMplControl(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeIPv6ExtendedEcho(const Place& in, Cursor& c, Icmpv6Message& message);

// The options of neighbour discovery (icmpv6_options.cpp): all that is left in the cursor.
void DecodeNeighborOptions(const Place& in, Cursor& c, Icmpv6Message& message);

// Multicast listeners and routers (icmpv6_mld.cpp).
void DecodeListenerQuery(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeListenerReport(const Place& in, Cursor& c, Icmpv6Message& message);   // and done
void DecodeListenerReport2(const Place& in, Cursor& c, Icmpv6Message& message);
void DecodeMulticastRouterAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message);

// The next domain name, labels without compression, as dotted text. Not here when a label runs past the bytes.
Field TakeIPv6DomainName(Cursor& c, char* text, int32_t size);

// What options of securing discovery, handovers and mobility hold (icmpv6_rare_options.cpp).
void ShowRareOption(const Place& in, uint32_t type, Cursor& c);

// Lines that several families share.
void AddReservedWord(const Place& in, Cursor& c);
Field AddAddress(const Place& in, Cursor& c, const char* label);                    // an IPv6 address of 16 bytes
Field AddLifetime(const Place& in, Cursor& c, const char* label);                   // 32 bits of seconds
void AddFlag(const Place& in, const Field& flags, int32_t bit, const char* name);   // counted from the highest bit
void AddPreference(const Place& in, const Field& flags);                            // of a router (RFC 4191)

}  // namespace qxview
