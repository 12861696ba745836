// Home Networking Control Protocol (RFC 7788), a profile of the Distributed Node Consensus Protocol (RFC 7787): the routers
// of a home agree on prefixes, addresses and names.
//
//   elements: type (2)   length (2)   value, filled up to four octets; values may end in elements
#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/app/dhcp.h"
#include "decoders/app/dhcpv6.h"

namespace qxview {
namespace {

constexpr auto kVerdictNames = SortedNames({
    {0, "Neutral"}, {1, "Cached Trust"}, {2, "Cached Distrust"}, {3, "Configured Trust"}, {4, "Configured Distrust"}});

struct Hncp {
  Field bits;
  int32_t nesting;
};

constexpr auto kNode = Rows<Hncp>({Hex(4, "Node Identifier").Note(", 0x%.08X")});
constexpr auto kEndpoint = Rows<Hncp>({
    Hex(4, "Node Identifier").Note(", 0x%.08X"), Number(4, "Endpoint Identifier").Note(", Endpoint %u")});
constexpr auto kNetwork = Rows<Hncp>({Hex(8, "Network State Hash")});
constexpr auto kState = Rows<Hncp>({
    Hex(4, "Node Identifier").Note(", 0x%.08X"), Number(4, "Sequence Number"),
    Number(4, "Since Origination", " milliseconds"), Hex(8, "Node Data Hash")});
constexpr auto kPeer = Rows<Hncp>({
    Hex(4, "Peer Node Identifier").Note(", 0x%.08X"), Number(4, "Peer Endpoint Identifier"),
    Number(4, "Local Endpoint Identifier")});
constexpr auto kAlive = Rows<Hncp>({
    Number(4, "Endpoint Identifier"), Number(4, "Interval", " milliseconds").Note(", %u milliseconds")});
constexpr auto kTrust = Rows<Hncp>({
    Number(1, "Verdict", kVerdictNames).Note(", %s"), Hex(3, "Reserved"), Bytes(32, "SHA-256 Fingerprint"),
    Utf8(0, "Common Name")});
constexpr auto kVersion = Rows<Hncp>({
    Hex(2, "Reserved"), Word(2), Bits(0, 4, "Managed PSK"), Bits(4, 4, "Prefix Delegation"),
    Bits(8, 4, "Hostname Assignment"), Bits(12, 4, "Legacy DHCP"), Utf8(0, "User Agent").Note(", %s")});
constexpr auto kDelegated = Rows<Hncp>({
    Number(4, "Valid Lifetime", " milliseconds"), Number(4, "Preferred Lifetime", " milliseconds"),
    Number(1, "Prefix Length").Into(&Hncp::bits)});
constexpr auto kAssigned = Rows<Hncp>({
    Number(4, "Endpoint Identifier"), Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Priority"),
    Number(1, "Prefix Length").Into(&Hncp::bits)});
constexpr auto kAddress = Rows<Hncp>({Number(4, "Endpoint Identifier"), IPv6("IP Address").Note(", %s")});
constexpr auto kZone = Rows<Hncp>({
    IPv6("IP Address"), Word(1), Bits(0, 5, "Reserved"), Flag(5, "Legacy Browsing"), Flag(6, "Browsable"),
    Flag(7, "Search")});
constexpr auto kName = Rows<Hncp>({IPv6("IP Address").Note(", %s"), Counted(1, Utf8(0, "Name")).Note(", %s")});
constexpr auto kKey = Rows<Hncp>({Bytes(32, "Pre-Shared Key")});

void ShowTlvs(const Place& in, Cursor& c, Hncp& hncp);

// A prefix in as many octets as it needs, filled up to four octets of the element where elements follow.
void ShowPrefixOf(const Place& in, Cursor& c, Hncp& hncp, uint32_t bits) {
  constexpr uint32_t kMapped = 96;
  if (bits > 128) return;
  const Field taken = TakeBytes(c, (bits + 7) / 8);
  if (!taken.here) return;
  uint8_t prefix[16] = {};
  for (int32_t i = 0; i < taken.length; ++i) prefix[i] = static_cast<uint8_t>(PeekU8(taken, i));
  const Field line = taken.length ? taken : Stated(c.offset, 0);
  const bool isFour = bits >= kMapped && prefix[0] == 0 && prefix[10] == 0xFF && prefix[11] == 0xFF;
  if (isFour) {
    AddLine(in, line, "Prefix: %s/%u", IPv4Text(prefix + 12), bits - kMapped);
    AppendToParent(in, line, ", %s/%u", IPv4Text(prefix + 12), bits - kMapped);
  } else {
    AddLine(in, line, "Prefix: %s/%u", IPv6Text(prefix), bits);
    AppendToParent(in, line, ", %s/%u", IPv6Text(prefix), bits);
  }
  const int32_t beyond = Taken(c) % 4;
  if (beyond && Left(c) >= 4 - beyond) {
    const Field padding = TakeBytes(c, 4 - beyond);
    AddLine(in, padding, "Padding: %s", HexText(padding));
  }
  ShowTlvs(in, c, hncp);
}
void ShowOwnPrefix(const Place& in, Cursor& c, Hncp& hncp) { ShowPrefixOf(in, c, hncp, hncp.bits.value); }

// Labels of a name, one after the other.
void ShowName(const Place& in, Cursor& c, Hncp&) {
  Cursor labels = c;
  char name[256] = {};
  Loop loop;
  while (More(labels, loop)) {
    const Field length = TakeU8(labels);
    if (length.value == 0 || length.value > 63) break;
    const Field label = TakeBytes(labels, length.value);
    if (label.here) AppendFormat(name, sizeof name, "%s%s", name[0] ? "." : "", Text(label));
  }
  const char* shown = name;
  const Field taken = TakeBytes(c, labels.offset - c.offset);
  AddLine(in, taken, "Name: %s", shown);
  AppendToParent(in, taken, ", %s", shown);
}

// What a prefix is meant for: a prefix, a domain, the internet or a firewall's rules.
void ShowPolicy(const Place& in, Cursor& c, Hncp& hncp) {
  constexpr uint32_t kLastPrefix = 128, kDomain = 129;
  static constexpr auto kPolicyNames = SortedNames({
      {0, "Internet Connectivity"}, {128, "Dedicated Prefix"}, {129, "DNS Zone"}, {130, "Opaque UTF-8 String"},
      {131, "Restrictive Assignment"}});
  const Field type = TakeU8(c);
  const bool isPrefix = type.value > 0 && type.value < kLastPrefix;
  AddLine(in, type, "Policy Type: %u = %s", type.value,
          isPrefix ? "Dedicated Prefix" : LookupName(kPolicyNames, type.value));
  if (isPrefix || type.value == kLastPrefix) {
    ShowPrefixOf(in, c, hncp, type.value);
  } else {
    if (type.value == kDomain) ShowName(in, c, hncp);
    const Field value = Rest(c);
    AddLine(in, value, "Policy: %s", Text(value));
  }
}

void ShowDhcpv4(const Place& in, Cursor& c, Hncp&) {
  const KeyedAs keys(PacketOf(in), "dhcp");
  DhcpMessage message{};
  ShowDhcpOptions(in, c, message);
}
void ShowDhcpv6(const Place& in, Cursor& c, Hncp&) {
  const KeyedAs keys(PacketOf(in), "dhcpv6");
  DhcpMessage message{};
  ShowDhcpv6Options(in, c, message);
}

constexpr auto kTlvs = Choices<Hncp>({
    {1, "Request Network State"}, {2, "Request Node State", kNode}, {3, "Node Endpoint", kEndpoint},
    {4, "Network State", kNetwork}, {5, "Node State", kState, ShowTlvs}, {8, "Peer", kPeer, ShowTlvs},
    {9, "Keep-Alive Interval", kAlive}, {10, "Trust Verdict", kTrust}, {32, "HNCP-Version", kVersion},
    {33, "External Connection", {}, ShowTlvs}, {34, "Delegated Prefix", kDelegated, ShowOwnPrefix},
    {35, "Assigned Prefix", kAssigned, ShowOwnPrefix}, {36, "Node Address", kAddress, ShowTlvs},
    {37, "DHCPv4 Data", {}, ShowDhcpv4}, {38, "DHCPv6 Data", {}, ShowDhcpv6}, {39, "DNS Delegated Zone", kZone, ShowName},
    {40, "Domain Name", {}, ShowName}, {41, "Node Name", kName}, {42, "Managed PSK", kKey},
    {43, "Prefix Policy", {}, ShowPolicy}});

void ShowTlvs(const Place& in, Cursor& c, Hncp& hncp) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .padTo = 4, .valueLines = true};
  if (hncp.nesting >= kDeepestHncp) return;
  ++hncp.nesting;
  ShowElements<Hncp>(in, c, kForm, "TLV", kTlvs, hncp);
  --hncp.nesting;
}

}  // namespace

int32_t DecodeHncp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4;
  const Choice<Hncp>* first = FindChoice<Hncp>(kTlvs, PeekU16(c));
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "HNCP: %s", first ? first->name : kUnknown));
  Hncp hncp{};
  ShowTlvs(in, c, hncp);
  c.ranShort = false;
  AddBlock(in, Rest(c), "HNCP Data");
  return 1;
}

}  // namespace qxview
