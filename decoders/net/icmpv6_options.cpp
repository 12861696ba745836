// Options of neighbour discovery (RFC 4861, RFC 4191, RFC 8106, RFC 3971, RFC 5568, RFC 6275, RFC 6775, RFC 8781).
//
//   0  type (8)   length in units of 8 bytes, type and length included (8)   2  data
//
// A length of 0 cannot be stepped over and ends the options.
#include <cstring>

#include "core/frame_entry.h"
#include "decoders/net/icmpv6.h"

namespace qxview {
namespace {

// An option's data, the bytes behind type and length; summaries go on `in.parent`. What is left is shown as data.
using OptionDecoder = void (*)(const Place& in, Cursor& c, Icmpv6Message& message);

void DecodeLinkLayerAddress(const Place& in, Cursor& c, Icmpv6Message&) {
  constexpr int32_t kMacSize = 6, kEui64Size = 8, kEui64Padded = 14;
  const Field address = TakeBytes(c, Left(c) == kEui64Padded ? kEui64Size : Left(c));
  if (!address.here) return;
  ShortText<80> text{};
  if (address.length == kMacSize) {
    text = CheckAlias(in.view, 0, address.bytes);
  } else {
    FormatInto(text.text, sizeof text.text, "%s", HexText(address));
  }
  AddLine(in, address, "Link-Layer Address: %s", text);
  AppendToParent(in, address, ", %s", text);
}

void DecodePrefixInformation(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Prefix Length: %u", length.value);
  const Field flags = TakeU8(c);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  AddFlag(bits, flags, 0, "On-Link");
  AddFlag(bits, flags, 1, "Autonomous Address Configuration");
  AddFlag(bits, flags, 2, "Router Address");
  AddBitLine(bits, flags, "%s: Reserved", BitsOf(flags, 3, 5).picture);
  AddLifetime(in, c, "Valid Lifetime");
  AddLifetime(in, c, "Preferred Lifetime");
  AddReservedWord(in, c);
  const Field prefix = AddAddress(in, c, "Prefix");
  if (prefix.here) AppendToParent(in, prefix, ", %s/%u", IPv6Text(prefix.bytes), length.value);
}

void DecodeRedirectedHeader(const Place& in, Cursor& c, Icmpv6Message& message) {
  const Field reserved = TakeBytes(c, 6);
  AddLine(in, reserved, "Reserved: %s", HexText(reserved));
  const Field packet = Ahead(c, Left(c));
  if (packet.length < 1) return;
  AddLine(in, packet, "Quoted Packet: %u bytes", packet.length);
  message.quoted = TakeCursor(c, packet.length);
}

void DecodeMtu(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  const Field mtu = TakeU32(c);
  AddLine(in, mtu, "MTU: %u", mtu.value);
  AppendToParent(in, mtu, ", %u", mtu.value);
}

void DecodeAdvertisementInterval(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  const Field interval = TakeU32(c);
  AddLine(in, interval, "Advertisement Interval: %u ms", interval.value);
}

void DecodeHomeAgentInformation(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field flags = TakeU16(c);
  AddLine(in, flags, "Flags: 0x%.04X", flags.value);
  const Field preference = TakeU16(c);
  AddLine(in, preference, "Home Agent Preference: %u", preference.value);
  const Field lifetime = TakeU16(c);
  AddLine(in, lifetime, "Home Agent Lifetime: %u seconds", lifetime.value);
}

void DecodeAddressList(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field reserved = TakeBytes(c, 6);
  AddLine(in, reserved, "Reserved: %s", HexText(reserved));
  for (Loop loop; Left(c) >= 16 && MoreAt(in, c, loop);) AddAddress(in, c, "Address");
}

void DecodeTimestamp(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field reserved = TakeBytes(c, 6);
  AddLine(in, reserved, "Reserved: %s", HexText(reserved));
  const WideField timestamp = TakeU64(c);   // 48 bits of seconds, 16 of their fraction
  AddLine(in, timestamp, "Timestamp: %I64u.%.06u seconds", timestamp.wide >> 16,
          static_cast<uint32_t>((timestamp.wide & 0xFFFF) * 1000000 >> 16));
}

void DecodeNonce(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field nonce = Rest(c);
  AddLine(in, nonce, "Nonce: %s", HexDigits(nonce));
}

// A prefix of which only the bytes that its length needs are sent.
void AddShortPrefix(const Place& in, Cursor& c, uint32_t length) {
  const Field sent = Rest(c);
  uint8_t prefix[16] = {};
  if (sent.here) std::memcpy(prefix, sent.bytes, sent.length < 16 ? static_cast<size_t>(sent.length) : 16);
  AddLine(in, sent, "Prefix: %s", IPv6Text(prefix));
  AppendToParent(in, Stated(0, 0), ", %s/%u", IPv6Text(prefix), length);
}

void DecodeRouteInformation(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Prefix Length: %u", length.value);
  const Field flags = TakeU8(c);
  AddPreference(Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value)), flags);
  const Field lifetime = AddLifetime(in, c, "Route Lifetime");
  if (lifetime.here) AddShortPrefix(in, c, length.value);
}

void DecodeRecursiveServers(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  AddLifetime(in, c, "Lifetime");
  for (Loop loop; Left(c) >= 16 && MoreAt(in, c, loop);) {
    const Field server = AddAddress(in, c, "DNS Server");
    AppendToParent(in, server, ", %s", IPv6Text(server.bytes));
  }
}

void DecodeSearchList(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  AddLifetime(in, c, "Lifetime");
  char name[256];
  for (Loop loop; MoreAt(in, c, loop) && PeekU8(c) != 0;) {
    const Field taken = TakeIPv6DomainName(c, name, sizeof name);
    if (!taken.here) return;
    const char* shown = name;
    AddLine(in, taken, "Domain Name: %s", shown);
    AppendToParent(in, taken, ", %s", shown);
  }
  AddBlock(in, Rest(c), "Padding");
}

void DecodeFlagsExtension(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field flags = TakeBytes(c, 6);
  AddLine(in, flags, "Flags: %s", HexText(flags));
}

void DecodeAddressRegistration(const Place& in, Cursor& c, Icmpv6Message&) {
  constexpr auto kStatusNames = SortedNames({{0, "Success"}, {1, "Duplicate Address"}, {2, "Neighbor Cache Full"},
                                             {3, "Moved"}, {4, "Removed"}, {5, "Validation Requested"}});
  const Field status = TakeU8(c);
  AddLine(in, status, "Status: %u = %s", status.value, LookupName(kStatusNames, status.value));
  const Field reserved = TakeU24(c);
  AddLine(in, reserved, "Reserved: 0x%.06X", reserved.value);
  const Field lifetime = TakeU16(c);
  AddLine(in, lifetime, "Registration Lifetime: %u minutes", lifetime.value);
  const Field owner = TakeBytes(c, 8);
  AddLine(in, owner, "EUI-64: %s", HexText(owner));
}

void DecodeLowPanContext(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Context Length: %u", length.value);
  const Field flags = TakeU8(c);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  AddFlag(bits, flags, 3, "Compression");
  const BitPicture context = BitsOf(flags, 4, 4);
  AddBitLine(bits, flags, "%s: Context Identifier = %u", context.picture, context.value);
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
  const Field lifetime = TakeU16(c);
  AddLine(in, lifetime, "Valid Lifetime: %u minutes", lifetime.value);
  if (lifetime.here) AddShortPrefix(in, c, length.value);
}

void DecodeBorderRouter(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field low = TakeU16(c), high = TakeU16(c);   // in this order: the high half was added later
  AddLine(in, Stated(low.offset, high.here ? 4 : 0), "Version: %u", high.value << 16 | low.value);
  const Field lifetime = TakeU16(c);
  AddLine(in, lifetime, "Valid Lifetime: %u minutes", lifetime.value);
  AddAddress(in, c, "Border Router Address");
}

void DecodeCaptivePortal(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field uri = Rest(c);   // padded with zero bytes, where its text ends
  AddLine(in, uri, "URI: %s", Text(uri));
}

// The prefix under which IPv4 addresses are reached.
void DecodeTranslationPrefix(const Place& in, Cursor& c, Icmpv6Message&) {
  constexpr uint32_t kLengths[8] = {96, 64, 56, 48, 40, 32, 0, 0};   // by the code; two are not assigned
  const Field word = TakeU16(c);
  const BitPicture lifetime = BitsOf(word, 0, 13), code = BitsOf(word, 13, 3);
  AddBitLine(in, word, "%s: Scaled Lifetime = %u * 8 = %u seconds", lifetime.picture, lifetime.value,
             lifetime.value * 8);
  const uint32_t length = kLengths[code.value];
  AddBitLine(in, word, "%s: Prefix Length Code %u = %u bits", code.picture, code.value, length);
  if (word.here) AddShortPrefix(in, c, length);
}

// An address or prefix of a fast handover.
void DecodeHandoverAddress(const Place& in, Cursor& c, Icmpv6Message&) {
  constexpr auto kCodeNames = SortedNames({{1, "Old Care-of Address"}, {2, "New Care-of Address"},
                                           {3, "New Access Router's Address"}, {4, "New Access Router's Prefix"}});
  const Field code = TakeU8(c);
  AddLine(in, code, "Option Code: %u = %s", code.value, LookupName(kCodeNames, code.value));
  const Field length = TakeU8(c);
  AddLine(in, length, "Prefix Length: %u", length.value);
  AddReservedWord(in, c);
  AddAddress(in, c, "Address");
}

void DecodeHandoverLinkLayer(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field code = TakeU8(c);
  AddLine(in, code, "Option Code: %u", code.value);
  const Field address = Rest(c);
  AddLine(in, address, "Link-Layer Address: %s", HexText(address));
}

struct OptionRow {
  uint32_t type;
  const char* name;
  OptionDecoder decode;   // null: by rows, or shown as data
};

constexpr OptionRow kOptions[] = {
    {1, "Source Link-Layer Address", DecodeLinkLayerAddress},
    {2, "Target Link-Layer Address", DecodeLinkLayerAddress},
    {3, "Prefix Information", DecodePrefixInformation},
    {4, "Redirected Header", DecodeRedirectedHeader},
    {5, "MTU", DecodeMtu},
    {6, "NBMA Shortcut Limit", nullptr},
    {7, "Advertisement Interval", DecodeAdvertisementInterval},
    {8, "Home Agent Information", DecodeHomeAgentInformation},
    {9, "Source Address List", DecodeAddressList},
    {10, "Target Address List", DecodeAddressList},
    {11, "Cryptographically Generated Address", nullptr},
    {12, "RSA Signature", nullptr},
    {13, "Timestamp", DecodeTimestamp},
    {14, "Nonce", DecodeNonce},
    {15, "Trust Anchor", nullptr},
    {16, "Certificate", nullptr},
    {17, "IP Address/Prefix", DecodeHandoverAddress},
    {18, "New Router Prefix Information", nullptr},
    {19, "Link-Layer Address", DecodeHandoverLinkLayer},
    {20, "Neighbor Advertisement Acknowledgment", nullptr},
    {23, "Mobility Anchor Point", nullptr},
    {24, "Route Information", DecodeRouteInformation},
    {25, "Recursive DNS Server", DecodeRecursiveServers},
    {26, "Router Advertisement Flags Extension", DecodeFlagsExtension},
    {27, "Handover Key Request", nullptr},
    {28, "Handover Key Reply", nullptr},
    {29, "Handover Assist Information", nullptr},
    {30, "Mobile Node Identifier", nullptr},
    {31, "DNS Search List", DecodeSearchList},
    {32, "Proxy Signature", nullptr},
    {33, "Address Registration", DecodeAddressRegistration},
    {34, "6LoWPAN Context", DecodeLowPanContext},
    {35, "Authoritative Border Router", DecodeBorderRouter},
    {36, "6LoWPAN Capability Indication", nullptr},
    {37, "Captive Portal", DecodeCaptivePortal},
    {38, "PREF64", DecodeTranslationPrefix},
    {39, "Crypto-ID Parameters", nullptr},
    {40, "NDP Signature", nullptr},
    {41, "Resource Directory Address", nullptr},
    {42, "Consistent Uptime", nullptr},
    {138, "Candidate Access Router Discovery Request", nullptr},
    {139, "Candidate Access Router Discovery Reply", nullptr},
    {144, "Encrypted DNS", nullptr},
    {253, "Experiment 1", nullptr},
    {254, "Experiment 2", nullptr},
};

const OptionRow* FindOption(uint32_t type) {
  for (const OptionRow& row : kOptions) {
    if (row.type == type) return &row;
  }
  return nullptr;
}

void DecodeOption(const Place& in, Cursor& c, Icmpv6Message& message) {
  constexpr int32_t kUnit = 8;
  const OptionRow* row = FindOption(PeekU8(c));
  const char* name = row ? row->name : kUnknown;
  const int32_t size = PeekU8(c, 1) * kUnit;
  Cursor option = TakeCursor(c, size > 0 ? size : Left(c));
  const Place under = Under(in, AddLine(in, Ahead(option, Left(option)), "Option: %s", name));
  const Field type = TakeU8(option);
  AddLine(under, type, "Type: %u = %s", type.value, name);
  const Field length = TakeU8(option);
  AddLine(under, length, "Length: %u (%u bytes)%s", length.value, size, size == 0 ? " invalid" : "");
  if (row && row->decode && size > 0) row->decode(under, option, message);
  if (row && !row->decode && size > 0) ShowRareOption(under, type.value, option);
  option.ranShort = false;   // what a decoder could not use is still shown
  AddBlock(under, Rest(option), "Option Data");
}

}  // namespace

Field TakeIPv6DomainName(Cursor& c, char* text, int32_t size) {
  constexpr int32_t kMostLabel = 63;
  const Cursor start = c;
  text[0] = 0;
  for (;;) {
    const Field length = TakeU8(c);
    if (!length.here || length.value > kMostLabel) break;
    if (length.value == 0) {
      Cursor again = start;
      return TakeBytes(again, c.offset - start.offset);
    }
    const Field label = TakeBytes(c, length.value);
    if (!label.here) break;
    AppendFormat(text, size, "%s%s", text[0] ? "." : "", Text(label));
  }
  c = start;
  return {nullptr, c.offset, 0, 0, false};
}

void DecodeNeighborOptions(const Place& in, Cursor& c, Icmpv6Message& message) {
  for (Loop loop; Left(c) >= 2 && MoreAt(in, c, loop);) DecodeOption(in, c, message);
}

}  // namespace qxview
