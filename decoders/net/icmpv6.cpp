// Internet Control Message Protocol for IPv6 (RFC 4443): errors about packets, echo, and the messages by which the
// nodes of a link find each other, their routers and their multicast groups.
//
//   0  type (8)   code (8)   checksum (16)     4  body
//
// Types below 128 are errors: a word of their own, then as much of the packet they are about as fits.
#include "decoders/net/icmpv6.h"

#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"
#include "decoders/net/icmp_extensions.h"
#include "decoders/net/quoted.h"
#include "decoders/net/rpl.h"

namespace qxview {
namespace {

constexpr uint32_t kDestinationUnreachable = 1, kTimeExceeded = 3, kParameterProblem = 4, kRplControl = 155,
                   kRouterRenumbering = 138, kNodeQuery = 139, kNodeResponse = 140, kExtendedEchoReply = 161;

constexpr auto kUnreachableCodes = SortedNames({
    {0, "No Route to Destination"}, {1, "Communication Administratively Prohibited"},
    {2, "Beyond Scope of Source Address"}, {3, "Address Unreachable"}, {4, "Port Unreachable"},
    {5, "Source Address Failed Ingress/Egress Policy"}, {6, "Reject Route to Destination"},
    {7, "Error in Source Routing Header"}, {8, "Headers Too Long"}});
constexpr auto kTimeExceededCodes = SortedNames({
    {0, "Hop Limit Exceeded in Transit"}, {1, "Fragment Reassembly Time Exceeded"}});
constexpr auto kParameterProblemCodes = SortedNames({
    {0, "Erroneous Header Field"}, {1, "Unrecognized Next Header"}, {2, "Unrecognized IPv6 Option"},
    {3, "First Fragment Has Incomplete Header Chain"}, {4, "Upper-Layer Header Error"},
    {5, "Unrecognized Next Header at Intermediate Node"}, {6, "Extension Header Too Big"},
    {7, "Extension Header Chain Too Long"}, {8, "Too Many Extension Headers"},
    {9, "Too Many Options in Extension Header"}, {10, "Option Too Big"}});
constexpr auto kRenumberingCodes = SortedNames({{0, "Command"}, {1, "Result"}, {255, "Sequence Number Reset"}});
constexpr auto kQueryCodes = SortedNames({{0, "Subject Is an IPv6 Address"}, {1, "Subject Is a Name"},
                                          {2, "Subject Is an IPv4 Address"}});
constexpr auto kResponseCodes = SortedNames({{0, "Success"}, {1, "Refused"}, {2, "Unknown Query Type"}});
constexpr auto kExtendedEchoCodes = SortedNames({
    {0, "No Error"}, {1, "Malformed Query"}, {2, "No Such Interface"}, {3, "No Such Table Entry"},
    {4, "Multiple Interfaces Satisfy Query"}});
const char* CodeName(uint32_t type, uint32_t code) {
  switch (type) {
    case kDestinationUnreachable: return LookupName(kUnreachableCodes, code);
    case kTimeExceeded: return LookupName(kTimeExceededCodes, code);
    case kParameterProblem: return LookupName(kParameterProblemCodes, code);
    case kRplControl: return RplCodeName(code);
    case kRouterRenumbering: return LookupName(kRenumberingCodes, code);
    case kNodeQuery: return LookupName(kQueryCodes, code);
    case kNodeResponse: return LookupName(kResponseCodes, code);
    case kExtendedEchoReply: return LookupName(kExtendedEchoCodes, code);
    default: return nullptr;
  }
}

// The packet that an error is about, and behind a length of it (RFC 4884) what the error adds to it.
void TakeQuotedPacket(const Place& in, Cursor& c, Icmpv6Message& message, int32_t declared) {
  if (Left(c) < 1) return;
  int32_t quoted = Left(c);
  if (declared > 0 && declared < quoted && HasIcmpExtensionVersion(Behind(c, declared))) {
    quoted = declared;   // some senders leave anything in the byte: the length counts if the rest bears it out
  }
  message.quoted = TakeCursor(c, quoted);
  AddLine(in, Ahead(message.quoted, quoted), "Quoted Packet: %d bytes", quoted);
  if (Left(c) > 0) DecodeIcmpExtensions(in, TakeCursor(c, Left(c)));
}

void DecodeExtensibleError(const Place& in, Cursor& c, Icmpv6Message& message) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Quoted Packet Length: %u * 8 = %u bytes", length.value, length.value * 8);
  const Field unused = TakeU24(c);
  AddLine(in, unused, "Unused: 0x%.06X", unused.value);
  TakeQuotedPacket(in, c, message, static_cast<int32_t>(length.value) * 8);
}

void DecodePacketTooBig(const Place& in, Cursor& c, Icmpv6Message& message) {
  const Field mtu = TakeU32(c);
  AddLine(in, mtu, "MTU: %u", mtu.value);
  AppendToParent(in, mtu, ", MTU = %u", mtu.value);
  TakeQuotedPacket(in, c, message, 0);
}

void DecodeParameterProblem(const Place& in, Cursor& c, Icmpv6Message& message) {
  const Field pointer = TakeU32(c);
  AddLine(in, pointer, "Pointer: %u", pointer.value);
  TakeQuotedPacket(in, c, message, 0);
}

void DecodeEcho(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field identifier = TakeU16(c);
  AddLine(in, identifier, "Identifier: 0x%.04X (%u)", identifier.value, identifier.value);
  const Field sequence = TakeU16(c);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  AppendToParent(in, sequence, ", Identifier = %u, Sequence Number = %u", identifier.value, sequence.value);
  AddBlock(in, Rest(c), "Echo Data");
}

// Home agents of a mobile node's prefix (RFC 6275).
void DecodeHomeAgentDiscovery(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field identifier = TakeU16(c);
  AddLine(in, identifier, "Identifier: 0x%.04X (%u)", identifier.value, identifier.value);
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  for (Loop loop; Left(c) >= 16 && MoreAt(in, c, loop);) AddAddress(in, c, "Home Agent Address");
}

struct MessageRow {
  uint32_t type;
  const char* name;
  Icmpv6Body decode;   // null: the body is shown as data
};

// In the order of the types.
constexpr MessageRow kMessages[] = {
    {1, "Destination Unreachable", DecodeExtensibleError},
    {2, "Packet Too Big", DecodePacketTooBig},
    {3, "Time Exceeded", DecodeExtensibleError},
    {4, "Parameter Problem", DecodeParameterProblem},
    {128, "Echo Request", DecodeEcho},
    {129, "Echo Reply", DecodeEcho},
    {130, "Multicast Listener Query", DecodeListenerQuery},
    {131, "Multicast Listener Report", DecodeListenerReport},
    {132, "Multicast Listener Done", DecodeListenerReport},
    {133, "Router Solicitation", DecodeIPv6RouterSolicitation},
    {134, "Router Advertisement", DecodeIPv6RouterAdvertisement},
    {135, "Neighbor Solicitation", DecodeNeighborSolicitation},
    {136, "Neighbor Advertisement", DecodeNeighborAdvertisement},
    {137, "Redirect", DecodeRedirect},
    {138, "Router Renumbering", DecodeRouterRenumbering},
    {139, "Node Information Query", DecodeNodeInformation},
    {140, "Node Information Response", DecodeNodeInformation},
    {141, "Inverse Neighbor Discovery Solicitation", DecodeInverseDiscovery},
    {142, "Inverse Neighbor Discovery Advertisement", DecodeInverseDiscovery},
    {143, "Multicast Listener Report Version 2", DecodeListenerReport2},
    {144, "Home Agent Address Discovery Request", DecodeHomeAgentDiscovery},
    {145, "Home Agent Address Discovery Reply", DecodeHomeAgentDiscovery},
    {146, "Mobile Prefix Solicitation", DecodeMobilePrefixSolicitation},
    {147, "Mobile Prefix Advertisement", DecodeMobilePrefixAdvertisement},
    {148, "Certification Path Solicitation", DecodePathSolicitation},
    {149, "Certification Path Advertisement", DecodePathAdvertisement},
    {150, "Experimental Mobility", DecodeExperimentalMobility},
    {151, "Multicast Router Advertisement", DecodeMulticastRouterAdvertisement},
    {152, "Multicast Router Solicitation", nullptr},
    {153, "Multicast Router Termination", nullptr},
    {154, "Fast Handover", DecodeFastHandover},
    {155, "RPL Control", DecodeRpl},
    {156, "ILNPv6 Locator Update", DecodeLocatorUpdate},
    {157, "Duplicate Address Request", DecodeDuplicateAddress},
    {158, "Duplicate Address Confirmation", DecodeDuplicateAddress},
    {159, "MPL Control", DecodeMplControl},
    {160, "Extended Echo Request", DecodeIPv6ExtendedEcho},
    {161, "Extended Echo Reply", DecodeIPv6ExtendedEcho},
};

const MessageRow* FindMessage(uint32_t type) {
  for (const MessageRow& row : kMessages) {
    if (row.type == type) return &row;
  }
  return nullptr;
}

// `whole` is the message from its type on; the checksum of one that was cut cannot be checked.
void ShowChecksum(const Place& in, Cursor& c, const Cursor& whole) {
  const NetworkState& network = PacketOf(in).network;
  const Field checksum = TakeU16(c);
  const uint32_t sum = SumWords(network.pseudoHead, whole.at, Left(whole));
  const char* unchecked = network.totalLength > Left(whole) ? "Not Checked - Partial Capture" : nullptr;
  if (!AddChecksumLine(in, checksum, "Checksum:", unchecked, sum, BadChecksum::kWithRight)) {
    AppendToParent(in, checksum, " (Bad Checksum)");
  }
}

}  // namespace

void AddReservedWord(const Place& in, Cursor& c) {
  const Field reserved = TakeU32(c);
  AddLine(in, reserved, "Reserved: 0x%.08X", reserved.value);
}

Field AddAddress(const Place& in, Cursor& c, const char* label) {
  const Field address = TakeBytes(c, 16);
  if (address.here) AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
  return address;
}

Field AddLifetime(const Place& in, Cursor& c, const char* label) {
  constexpr uint32_t kForever = 0xFFFFFFFF;
  const Field lifetime = TakeU32(c);
  AddLine(in, lifetime, "%s: %u seconds%s", label, lifetime.value, lifetime.value == kForever ? " (infinite)" : "");
  return lifetime;
}

void AddFlag(const Place& in, const Field& flags, int32_t bit, const char* name) {
  const BitPicture picture = BitsOf(flags, bit, 1);
  AddBitLine(in, flags, "%s: %s = %s", picture.picture, name, TrueOrFalse(picture.value));
}

void AddPreference(const Place& in, const Field& flags) {
  constexpr const char* kPreferences[] = {"Medium", "High", "Reserved", "Low"};
  const BitPicture preference = BitsOf(flags, 3, 2);
  AddBitLine(in, flags, "%s: Router Preference = %s", preference.picture, kPreferences[preference.value]);
}

int32_t DecodeIcmpv6(const Place& at, Cursor c) {
  const int32_t declared = PacketOf(at).network.totalLength;
  Cursor body = TakeCursor(c, declared > 0 ? declared : Left(c));
  if (Left(body) < 4) return 0;
  const Cursor whole = body;
  const MessageRow* row = FindMessage(PeekU8(whole));
  const char* name = row ? row->name : kUnknown;
  const Place in = Under(at, AddLine(at, Ahead(body, Left(body)), "ICMPv6: %s", name));

  const Field type = TakeU8(body);
  AddLine(in, type, "Type: %u = %s", type.value, name);
  const Field code = TakeU8(body);
  if (const char* codeName = CodeName(type.value, code.value)) {
    AddLine(in, code, "Code: %u = %s", code.value, codeName);
    AppendToParent(in, code, ", %s", codeName);
  } else {
    AddLine(in, code, "Code: %u", code.value);
  }
  ShowChecksum(in, body, whole);

  Icmpv6Message message{type.value, code.value, MakeCursor(nullptr, body.offset, 0)};
  if (row && row->decode) row->decode(in, body, message);
  body.ranShort = false;   // what a body could not use is still shown
  AddBlock(in, Rest(body), "ICMPv6 Data");
  if (Left(message.quoted) > 0) DecodeQuotedDatagram(Deeper(at), message.quoted);
  AddRawRest(at, c, "Trailing Data");   // behind the packet's declared end
  return 1;
}

}  // namespace qxview
