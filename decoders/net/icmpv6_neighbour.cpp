// Neighbour discovery (RFC 4861) and the messages built like it: inverse discovery (RFC 3122), mobile prefixes
// (RFC 6275) and fast handovers (RFC 5568). Who on this link has that address, which routers and prefixes are there?
//
//   router solicitation      4  reserved (32)   8  options
//   router advertisement     4  hop limit (8)   flags (8)   router lifetime (16)   8  reachable time (32)
//                            12 retransmission timer (32)   16 options
//   neighbour messages       4  flags or reserved (32)   8  target (128)   24  options
//   redirect                 4  reserved (32)   8  target (128)   24  destination (128)   40  options
#include "decoders/net/icmpv6.h"

namespace qxview {

void DecodeIPv6RouterSolicitation(const Place& in, Cursor& c, Icmpv6Message& message) {
  AddReservedWord(in, c);
  DecodeNeighborOptions(in, c, message);
}

void DecodeIPv6RouterAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message) {
  const Field hopLimit = TakeU8(c);
  AddLine(in, hopLimit, "Hop Limit: %u%s", hopLimit.value, hopLimit.value == 0 ? " (unspecified)" : "");
  const Field flags = TakeU8(c);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  AddFlag(bits, flags, 0, "Managed Address Configuration");
  AddFlag(bits, flags, 1, "Other Configuration");
  AddFlag(bits, flags, 2, "Home Agent");
  AddPreference(bits, flags);
  AddFlag(bits, flags, 5, "Neighbor Discovery Proxy");
  AddBitLine(bits, flags, "%s: Reserved", BitsOf(flags, 6, 2).picture);
  const Field lifetime = TakeU16(c);
  AddLine(in, lifetime, "Router Lifetime: %u seconds%s", lifetime.value,
          lifetime.value == 0 ? " (not a default router)" : "");
  const Field reachable = TakeU32(c);
  AddLine(in, reachable, "Reachable Time: %u ms%s", reachable.value, reachable.value == 0 ? " (unspecified)" : "");
  const Field timer = TakeU32(c);
  AddLine(in, timer, "Retransmission Timer: %u ms%s", timer.value, timer.value == 0 ? " (unspecified)" : "");
  DecodeNeighborOptions(in, c, message);
}

void DecodeNeighborSolicitation(const Place& in, Cursor& c, Icmpv6Message& message) {
  AddReservedWord(in, c);
  const Field target = AddAddress(in, c, "Target Address");
  if (target.here) AppendToParent(in, target, " for %s", IPv6Text(target.bytes));
  DecodeNeighborOptions(in, c, message);
}

void DecodeNeighborAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message) {
  const Field flags = TakeU32(c);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.08X", flags.value));
  AddFlag(bits, flags, 0, "Router");
  AddFlag(bits, flags, 1, "Solicited");
  AddFlag(bits, flags, 2, "Override");
  AddBitLine(bits, flags, "%s: Reserved", BitsOf(flags, 3, 29).picture);
  const Field target = AddAddress(in, c, "Target Address");
  if (target.here) AppendToParent(in, target, " of %s", IPv6Text(target.bytes));
  DecodeNeighborOptions(in, c, message);
}

void DecodeRedirect(const Place& in, Cursor& c, Icmpv6Message& message) {
  AddReservedWord(in, c);
  const Field target = AddAddress(in, c, "Target Address");
  const Field destination = AddAddress(in, c, "Destination Address");
  if (destination.here) {
    AppendToParent(in, destination, ", %s is reached by %s", IPv6Text(destination.bytes), IPv6Text(target.bytes));
  }
  DecodeNeighborOptions(in, c, message);
}

void DecodeInverseDiscovery(const Place& in, Cursor& c, Icmpv6Message& message) {
  AddReservedWord(in, c);
  DecodeNeighborOptions(in, c, message);
}

namespace {

Field AddIdentifier(const Place& in, Cursor& c) {
  const Field identifier = TakeU16(c);
  AddLine(in, identifier, "Identifier: 0x%.04X (%u)", identifier.value, identifier.value);
  return identifier;
}

}  // namespace

void DecodeMobilePrefixSolicitation(const Place& in, Cursor& c, Icmpv6Message&) {
  AddIdentifier(in, c);
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
}

void DecodeMobilePrefixAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message) {
  AddIdentifier(in, c);
  const Field flags = TakeU16(c);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.04X", flags.value));
  AddFlag(bits, flags, 0, "Managed Address Configuration");
  AddFlag(bits, flags, 1, "Other Configuration");
  DecodeNeighborOptions(in, c, message);
}

void DecodeFastHandover(const Place& in, Cursor& c, Icmpv6Message& message) {
  constexpr auto kSubtypeNames = SortedNames({{2, "Router Solicitation for Proxy Advertisement"},
                                              {3, "Proxy Router Advertisement"}, {4, "Handover Initiate"},
                                              {5, "Handover Acknowledge"}});
  const Field subtype = TakeU8(c);
  const char* name = LookupName(kSubtypeNames, subtype.value);
  AddLine(in, subtype, "Subtype: %u = %s", subtype.value, name);
  AppendToParent(in, subtype, ", %s", name);
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved: 0x%.02X", reserved.value);
  AddIdentifier(in, c);
  DecodeNeighborOptions(in, c, message);
}

}  // namespace qxview
