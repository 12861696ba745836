// Cisco Discovery Protocol, as its maker's documents describe it: which device of this maker is at the other end?
//
//   version   hold time   checksum (2)   then elements: type (2), length (2, with these 4), value
#include "decoders/link/cisco_discovery.h"

#include "core/internet_checksum.h"
#include "decoders/common/checksum_line.h"
#include "decoders/common/object_id.h"
#include "decoders/link/lldp.h"

namespace qxview {
namespace {

constexpr auto kCapabilityMasks = SortedNames({
    {0x0001, "Router"}, {0x0002, "Transparent Bridge"}, {0x0004, "Source-Route Bridge"}, {0x0008, "Switch"}, {0x0010, "Host"},
    {0x0020, "IGMP Capable"}, {0x0040, "Repeater"}, {0x0080, "VoIP Phone"}, {0x0100, "Remotely Managed Device"},
    {0x0200, "CVTA or STP Dispute Resolution"}, {0x0400, "Two-Port MAC Relay"}});
constexpr auto kProtocolTypes = SortedNames({{1, "NLPID"}, {2, "802.2"}});
constexpr auto kDuplexNames = SortedNames({{0, "Half"}, {1, "Full"}});
constexpr auto kHelloNames = SortedNames({{0x0112, "Cluster Management"}, {0x0115, "MDP"}});

constexpr auto kHead = Rows<Discovery>({
    Number(1, "Version").Into(&Discovery::version), Number(1, "Time to Live", " seconds")});
constexpr auto kText = Rows<Discovery>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kCapabilities = Rows<Discovery>({Flags(4, "Capabilities", kCapabilityMasks)});
constexpr auto kVlan = Rows<Discovery>({Number(2, nullptr).Note(", %u")});
constexpr auto kDuplex = Rows<Discovery>({Number(1, "Duplex", kDuplexNames).Note(", %s")});
constexpr auto kVoice = Rows<Discovery>({Hex(1, "Voice Data"), Number(2, "Voice VLAN").Note(", %u")});
constexpr auto kByte = Rows<Discovery>({Hex(1, nullptr).Note(", %u")});
constexpr auto kMilliwatts = Rows<Discovery>({Number(2, nullptr, " milliwatts").Note(", %u milliwatts")});
constexpr auto kMtu = Rows<Discovery>({Number(4, "MTU").Note(", %u")});
constexpr auto kLocation = Rows<Discovery>({Number(1, "Location Form"), Utf8(0, "Location").Note(", %s")});
constexpr auto kPowerLevels = Rows<Discovery>({Number(2, "Request ID"), Number(2, "Management ID")});
constexpr auto kLevel = Rows<Discovery>({Number(4, "Power", " milliwatts")});
constexpr auto kSparePower = Rows<Discovery>({
    Hex(1, "Spare Pair Power"), Bits(0, 4, "Reserved"), Flag(4, "PSE Spare Pair Enabled"), Flag(5, "PD Spare Pair Desired"),
    Flag(6, "Spare Pair Detection Required"), Flag(7, "Four-Wire Supported")});
constexpr auto kHello = Rows<Discovery>({
    Hex(3, "Organizational Code").Into(&Discovery::organization),
    Hex(2, "Protocol", kHelloNames).Note(", %s").Into(&Discovery::protocol)});
constexpr auto kCluster = Rows<Discovery>({
    IPv4("Cluster Master"), IPv4("Cluster Member"), Hex(1, "Cluster Version"), Hex(1, "Cluster Subversion"),
    Hex(1, "Cluster Status"), Hex(1, "Cluster Data"), Mac("Cluster Commander MAC"), Mac("Switch MAC"), Hex(1, "Cluster Data 2"),
    Number(2, "Management VLAN")});
constexpr auto kAddress = Rows<Discovery>({
    Number(1, "Protocol Type", kProtocolTypes), Number(1, "Protocol Length").Into(&Discovery::size),
    Bytes(0, "Protocol").SizedBy(&Discovery::size), Number(2, "Address Length").Into(&Discovery::count)});

void ShowHello(const Place& in, Cursor& c, Discovery& out) {
  constexpr uint32_t kCisco = 0x00000C, kClusterManagement = 0x0112;
  if (out.organization.value == kCisco && out.protocol.value == kClusterManagement && Left(c) >= 27) {
    ShowRows<Discovery>(in, c, kCluster, out);
  }
}

void ShowVersion(const Place& in, Cursor& c, Discovery&) { ShowTextLines(in, c, "Software Version"); }

void ShowPowerLevels(const Place& in, Cursor& c, Discovery& out) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Discovery>(in, c, kLevel, out);
}

// Prefixes of networks that hang at the sender, or for on-demand routing the address of its default router alone.
void ShowPrefixes(const Place& in, Cursor& c, Discovery&) {
  if (Left(c) == 4) {
    const Field router = TakeBytes(c, 4);
    AddLine(in, router, "Default Router: %s", IPv4Text(router.bytes));
    return;
  }
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    const Cursor start = c;
    const Field address = TakeBytes(c, 4), length = TakeU8(c);
    const Place under = Under(in, AddLine(in, Ahead(start, 5), "IP Prefix: %s/%u", IPv4Text(address.bytes), length.value));
    AddLine(under, address, "Prefix: %s", IPv4Text(address.bytes));
    AddLine(under, length, "Prefix Length: %u", length.value);
  }
}

void ShowObjectId(const Place& in, Cursor& c, Discovery&) {
  const Field oid = Rest(c);
  AddLine(in, oid, "System Object ID: %s", TextOfObjectId(CursorOver(oid)));
}

constexpr auto kElements = Choices<Discovery>({
    {1, "Device ID", kText}, {2, "Addresses", {}, ShowDiscoveryAddresses}, {3, "Port ID", kText},
    {4, "Capabilities", kCapabilities}, {5, "Software Version", {}, ShowVersion}, {6, "Platform", kText},
    {7, "IP Prefixes", {}, ShowPrefixes}, {8, "Protocol Hello", kHello, ShowHello}, {9, "VTP Management Domain", kText},
    {10, "Native VLAN", kVlan}, {11, "Duplex", kDuplex}, {14, "VoIP VLAN Reply", kVoice}, {15, "VoIP VLAN Query", kVoice},
    {16, "Power Consumption", kMilliwatts}, {17, "MTU", kMtu}, {18, "Trust Bitmap", kByte}, {19, "Untrusted Port CoS", kByte},
    {20, "System Name", kText}, {21, "System Object ID", {}, ShowObjectId},
    {22, "Management Addresses", {}, ShowDiscoveryAddresses}, {23, "Location", kLocation}, {24, "External Port ID", kText},
    {25, "Power Requested", kPowerLevels, ShowPowerLevels}, {26, "Power Available", kPowerLevels, ShowPowerLevels},
    {27, "Port Unidirectional", kByte}, {29, "EnergyWise"}, {31, "Spare Pair Power over Ethernet", kSparePower}});

// Of an odd number of octets the last one counts as the low half of its word, and as a negative number from 0x80 on: the
// protocol has always summed so.
uint32_t SumDiscovery(const Field& message) {
  const int32_t even = message.length & ~1;
  uint32_t sum = SumWords(0, message.bytes, even);
  if (message.length & 1) {
    const uint32_t last = PeekU8(message, even);
    const uint8_t word[2] = {static_cast<uint8_t>(last & 0x80 ? 0xFF : 0), static_cast<uint8_t>(last & 0x80 ? last - 1 : last)};
    sum = SumWords(sum, word, 2);
  }
  return sum;
}

}  // namespace

void ShowDiscoveryAddresses(const Place& in, Cursor& c, Discovery& out) {
  constexpr uint8_t kIpv4[] = {0xCC}, kIpv6[] = {0xAA, 0xAA, 0x03, 0x00, 0x00, 0x00, 0x86, 0xDD};
  const Field count = TakeU32(c);
  AddLine(in, count, "Number of Addresses: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && Left(c) >= 5 && MoreAt(in, c, loop); ++i) {
    const Cursor start = c;
    const bool isFour = PeekU8(c) == 1 && PeekIs(c, 2, kIpv4), isSix = PeekU8(c) == 2 && PeekIs(c, 2, kIpv6);
    const LineHandle line = AddLine(in, Ahead(c, 5), "Address");
    const Place under = Under(in, line);
    ShowRows<Discovery>(under, c, kAddress, out);
    Cursor value = TakeCursor(c, out.count.value);
    const Field address = Rest(value);
    if (isFour && address.length == 4) {
      AddLine(under, address, "IP Address: %s", IPv4Text(address.bytes));
      AppendToParent(under, address, ": %s", IPv4Text(address.bytes));
      AppendToParent(in, address, ", %s", IPv4Text(address.bytes));
    } else if (isSix && address.length == 16) {
      AddLine(under, address, "IPv6 Address: %s", IPv6Text(address.bytes));
      AppendToParent(under, address, ": %s", IPv6Text(address.bytes));
      AppendToParent(in, address, ", %s", IPv6Text(address.bytes));
    } else {
      AddLine(under, address, "Address: %s", HexText(address));
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

int32_t ShowDiscovery(const Place& at, Cursor c, const char* title, ChoiceSpan<Discovery> elements) {
  constexpr uint32_t kDeviceId = 1, kPortId = 3;
  if (Left(c) < 4) return 0;
  const Field message = Ahead(c, Left(c));
  const LineHandle top = AddLine(at, message, "%s", title);
  const Place in = Under(at, top);
  Discovery out = ShowRows(in, c, kHead);
  AddChecksumLine(in, TakeU16(c), "Checksum:", nullptr, SumDiscovery(message), BadChecksum::kAlone);
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, kDiscoveryForm, element)) {
    const Choice<Discovery>* choice = FindChoice<Discovery>(elements, element.code);
    // keys: text Element
    // keys: number Type, Length
    const Place under = detail::AddElementHead(in, element, kDiscoveryForm, "Element", choice ? choice->name : kUnknown);
    if (element.code == kDeviceId || element.code == kPortId) {
      const Field name = PeekBytes(element.value, 0, Left(element.value));
      AppendToLine(at, top, ", %s %s", element.code == kDeviceId ? "Device" : "Port", Text(name));
    }
    ShowChoice(under, element.value, choice, out);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
  return 1;
}

int32_t DecodeCdp(const Place& at, Cursor c) { return ShowDiscovery(at, c, "CDP: Discovery", kElements); }

}  // namespace qxview
