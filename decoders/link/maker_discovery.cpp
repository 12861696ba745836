// Discovery protocols of makers other than CDP's, as far as they are public: EDP with ESRP, FDP, SONMP and MNDP: which device
// is at the other end of this link?
#include "decoders/link/cisco_discovery.h"
#include "decoders/link/lldp.h"

namespace qxview {
namespace {

// --- FDP: the form of CDP with elements of its own ---

constexpr auto kText = Rows<Discovery>({Utf8(0, nullptr).Note(", %s")});
// A bit for each VLAN, the lowest one first.
void ShowVlanMap(const Place& in, Cursor& c, Discovery&) {
  Loop loop;
  for (uint32_t vlan = 1; MoreAt(in, c, loop); vlan += 8) {
    const Field octet = TakeU8(c);
    for (uint32_t bit = 0; bit < 8; ++bit) {
      if (octet.value >> bit & 1) AddLine(in, octet, "VLAN: %u", vlan + bit);
    }
  }
}
void ShowVersion(const Place& in, Cursor& c, Discovery&) { ShowTextLines(in, c, "Software Version"); }

constexpr auto kFdp = Choices<Discovery>({
    {0x0001, "Device ID", kText}, {0x0002, "Addresses", {}, ShowDiscoveryAddresses}, {0x0003, "Interface", kText},
    {0x0004, "Capabilities", kText}, {0x0005, "Software Version", {}, ShowVersion}, {0x0006, "Platform", kText},
    {0x0101, "VLAN Bitmap", {}, ShowVlanMap}, {0x0102, "Tag Type"}});

// --- EDP ---

struct Edp {
  Field type, length;
};
constexpr auto kEdpHead = Rows<Edp>({
    Number(1, "Version"), Hex(1, "Reserved"), Number(2, "Length"), Hex(2, "Checksum"), Number(2, "Sequence Number"),
    Number(2, "Machine ID Type"), Mac("Machine ID").Note(", %s")});
constexpr auto kEdpElementHead = Rows<Edp>({
    Hex(1, "Marker"), Number(1, "Element Type").Into(&Edp::type), Number(2, "Element Length").Into(&Edp::length)});
constexpr auto kDisplay = Rows<Edp>({Utf8(0, "Display Name").Note(", %s")});
constexpr auto kInformation = Rows<Edp>({
    Number(2, "Slot").Note(", Slot %u"), Number(2, "Port").Note(" Port %u"), Number(2, "Virtual Chassis"),
    Bytes(6, "Reserved"), Hex(4, "Software Version"), Bytes(16, "Connections")});
constexpr auto kVlan = Rows<Edp>({
    Hex(1, "Flags"), Flag(0, "Has an IP Interface"), Bits(1, 7, "Reserved"), Number(1, "Reserved 2"),
    Number(2, "VLAN ID").Note(", VLAN %u"), Hex(4, "Reserved 3"), IPv4("IP Address").Note(", %s"),
    Utf8(0, "VLAN Name").Note(", %s")});
constexpr auto kEsrp = Rows<Edp>({
    Number(1, "Protocol"), Number(1, "Group"), Number(2, "Priority").Note(", Priority %u"),
    Number(2, "State").Note(", State %u"), Number(2, "Ports"), IPv4("Virtual IP Address").Note(", %s"),
    Mac("System MAC Address"), Hex(2, "Reserved"), Number(2, "Hello Timer"), Bytes(0, "Reserved 2")});
// RFC 3619: which of a ring's ports is blocked?
constexpr auto kEapsTypes = SortedNames({{5, "Health"}, {6, "Ring Up, Flush FDB"}, {7, "Ring Down, Flush FDB"},
    {8, "Link Down"}});
constexpr auto kEapsStates = SortedNames({
    {0, "Idle"}, {1, "Complete"}, {2, "Failed"}, {3, "Links Up"}, {4, "Link Down"}, {5, "Pre-Forwarding"}});
constexpr auto kEaps = Rows<Edp>({
    Number(1, "EAPS Version"), Number(1, "EAPS Type", kEapsTypes).Note(", %s"), Number(2, "Control VLAN").Note(", VLAN %u"),
    Hex(4, "Reserved"), Mac("System MAC Address"), Number(2, "Hello Timer"), Number(2, "Fail Timer"),
    Number(1, "EAPS State", kEapsStates).Note(", %s"), Hex(1, "Reserved"), Number(2, "Hello Sequence"),
    Bytes(0, "Reserved 2")});
constexpr auto kEdpNames = SortedNames({
    {0, "Null"}, {1, "Display"}, {2, "Information"}, {5, "VLAN"}, {8, "ESRP"}, {11, "EAPS"}});

void ShowEdpElement(const Place& in, Cursor value, Edp& edp) {
  switch (edp.type.value) {
    case 1: ShowRows<Edp>(in, value, kDisplay, edp); break;
    case 2: ShowRows<Edp>(in, value, kInformation, edp); break;
    case 5: ShowRows<Edp>(in, value, kVlan, edp); break;
    case 8: ShowRows<Edp>(in, value, kEsrp, edp); break;
    case 11: ShowRows<Edp>(in, value, kEaps, edp); break;
    default: break;
  }
  value.ranShort = false;
  AddBlock(in, Rest(value), "Data");
}

// --- SONMP ---

constexpr auto kBackplaneNames = SortedNames({
    {1, "Other"}, {2, "Ethernet"}, {3, "Ethernet and Token Ring"}, {4, "Ethernet and FDDI"},
    {5, "Ethernet, Token Ring and FDDI"}, {6, "Ethernet and Token Ring with Redundant Power"},
    {7, "Ethernet and Token Ring and FDDI with Redundant Power"}, {8, "Token Ring"},
    {9, "Ethernet, Token Ring and Fast Ethernet"}, {10, "Ethernet and Fast Ethernet"},
    {11, "Ethernet, Token Ring, Fast Ethernet with Redundant Power"}, {12, "Ethernet, Fast Ethernet, Gigabit Ethernet"}});
constexpr auto kStateNames = SortedNames({
    {1, "Topology Changed"}, {2, "Heartbeat"}, {3, "New"}});
constexpr auto kSonmp = Rows<NoValues>({
    IPv4("IP Address").Note(", %s"), Hex(3, "Segment ID").Note(", Segment 0x%.06X"), Number(1, "Chassis Type"),
    Number(1, "Backplane Type", kBackplaneNames), Number(1, "State", kStateNames), Number(1, "Number of Links")});

// --- MNDP ---

struct Mndp {
  Field sequence;
};
constexpr ElementForm kMndpForm{.typeSize = 2, .lengthSize = 2};
constexpr auto kMndpHead = Rows<Mndp>({Hex(2, "Header"), Number(2, "Sequence Number").Note(", Sequence %u")});
constexpr auto kMndpText = Rows<Mndp>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kMndpMac = Rows<Mndp>({Mac(nullptr).Note(", %s")});
constexpr auto kUptime = Rows<Mndp>({Number(4, nullptr, " seconds").Little()});
constexpr auto kSecondsNames = SortedNames({
    {0, "None"}, {1, "Simple"}, {2, "Uncompressed Headers"}, {3, "Uncompressed All"}});
constexpr auto kPacking = Rows<Mndp>({Number(1, nullptr, kSecondsNames)});
constexpr auto kMndpIPv6 = Rows<Mndp>({IPv6(nullptr).Note(", %s")});
constexpr auto kMndpIPv4 = Rows<Mndp>({IPv4(nullptr).Note(", %s")});
constexpr auto kMndp = Choices<Mndp>({
    {1, "MAC Address", kMndpMac}, {5, "Identity", kMndpText}, {7, "Software Version", kMndpText}, {8, "Platform", kMndpText},
    {10, "Uptime", kUptime}, {11, "Software ID", kMndpText}, {12, "Board", kMndpText}, {14, "Unpack", kPacking},
    {15, "IPv6 Address", kMndpIPv6}, {16, "Interface Name", kMndpText}, {17, "IPv4 Address", kMndpIPv4}});

}  // namespace

int32_t DecodeFdp(const Place& at, Cursor c) { return ShowDiscovery(at, c, "FDP: Discovery", kFdp); }

int32_t DecodeEdp(const Place& at, Cursor c) {
  constexpr int32_t kHeadSize = 16, kElementHead = 4;
  constexpr uint32_t kMarker = 0x99;
  if (Left(c) < kHeadSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "EDP: Discovery"));
  Edp edp = ShowRows(in, c, kEdpHead);
  Loop loop;
  while (Left(c) >= kElementHead && PeekU8(c) == kMarker && MoreAt(in, c, loop)) {
    const uint32_t length = PeekU16(c, 2);
    Cursor element = TakeCursor(c, length < 4 ? 4 : length);
    const Place under = Under(in,
        AddLine(in, Ahead(element, Left(element)), "Element: %s", LookupName(kEdpNames, PeekU8(element, 1))));
    ShowRows<Edp>(under, element, kEdpElementHead, edp);
    ShowEdpElement(under, element, edp);
    if (edp.type.value == 0) break;
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
  return 1;
}

int32_t DecodeSonmp(const Place& at, Cursor c) {
  constexpr int32_t kSize = 11;
  if (Left(c) < kSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kSize), "SONMP: Topology"));
  ShowRows(in, c, kSonmp);
  AddBlock(in, Rest(c), "Data");
  return 1;
}

int32_t DecodeMndp(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "MNDP: %s", Left(c) > 4 ? "Discovery" : "Request"));
  Mndp mndp = ShowRows(in, c, kMndpHead);
  ShowElements(in, c, kMndpForm, "Element", kMndp, mndp);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace qxview
