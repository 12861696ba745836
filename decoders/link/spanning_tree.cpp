// Spanning tree in all its forms (IEEE 802.1D-2004, IEEE 802.1Q clause 14 for multiple trees and shortest paths), per VLAN as
// switches send it behind a SNAP header, and the registration protocols that share its LLC address (IEEE 802.1D-2004 clause 12:
// GVRP, GMRP): which ports of the bridges form a tree without loops?
//
//   protocol (2)   version   type   flags   root (8)   path cost (4)   bridge (8)   port (2)   four times (2 each)
//   rapid trees go on: length of version 1 (0); multiple trees: length of version 3, the region and a record for each tree;
//   shortest paths: length of version 4, the auxiliary region and what was agreed on
#include "core/elements.h"
#include "decoders/common/bridge_id.h"

namespace qxview {
namespace {

enum : uint32_t { kConfiguration = 0, kRapid = 2, kTopologyChange = 0x80 };
enum : uint32_t { kMultipleVersion = 3, kShortestPathVersion = 4 };

constexpr auto kProtocolNames = SortedNames({{0, "Spanning Tree"}, {1, "GARP"}});
constexpr auto kVersionNames = SortedNames({
    {0, "STP"}, {2, "RSTP"}, {3, "MSTP"}, {4, "SPT"}});
constexpr auto kTypeNames = SortedNames({
    {0x00, "Configuration"}, {0x02, "Rapid/Multiple Spanning Tree"}, {0x80, "Topology Change Notification"}});
constexpr auto kRoleNames = SortedNames({{0, "Unknown"}, {1, "Alternate or Backup"}, {2, "Root"}, {3, "Designated"}});
constexpr auto kMstiRoleNames = SortedNames({{0, "Master"}, {1, "Alternate or Backup"}, {2, "Root"}, {3, "Designated"}});

struct Bpdu {
  Field version, type, root, cost, bridge, port, length, vlan;
};

// Times in units of 1/256 second.
void ShowTime(const Place& in, const Field& field, const char* label) {
  const uint32_t ticks = PeekU16(field), thousandths = (ticks & 255) * 1000 / 256;
  if (thousandths) {
    AddLine(in, field, "%s: %u.%.03u seconds", label, ticks >> 8, thousandths);
  } else {
    AddLine(in, field, "%s: %u seconds", label, ticks >> 8);
  }
}

constexpr auto kHeader = Rows<Bpdu>({
    Hex(2, "Protocol Identifier", kProtocolNames), Number(1, "Version", kVersionNames).Into(&Bpdu::version),
    Hex(1, "BPDU Type", kTypeNames).Into(&Bpdu::type)});
constexpr auto kVector = Rows<Bpdu>({
    Hex(1, "Flags"), Flag(0, "Topology Change Acknowledgement"), Flag(1, "Agreement"), Flag(2, "Forwarding"),
    Flag(3, "Learning"), Bits(4, 2, "Port Role", kRoleNames), Flag(6, "Proposal"), Flag(7, "Topology Change"),
    Shown(8, "Root Identifier", ShowBridgeId).Into(&Bpdu::root), Number(4, "Root Path Cost").Into(&Bpdu::cost),
    Shown(8, "Bridge Identifier", ShowBridgeId).Into(&Bpdu::bridge),
    Hex(2, "Port Identifier").Into(&Bpdu::port), Bits(0, 4, "Port Priority / 16"), Bits(4, 12, "Port Number"),
    Shown(2, "Message Age", ShowTime), Shown(2, "Maximum Age", ShowTime), Shown(2, "Hello Time", ShowTime),
    Shown(2, "Forward Delay", ShowTime)});
constexpr auto kLength1 = Rows<Bpdu>({Number(1, "Version 1 Length")});
constexpr auto kLength3 = Rows<Bpdu>({Number(2, "Version 3 Length").Into(&Bpdu::length)});
constexpr auto kLength4 = Rows<Bpdu>({Number(2, "Version 4 Length").Into(&Bpdu::length)});
constexpr auto kRegion = Rows<Bpdu>({
    Number(1, "MST Configuration Format Selector"), Text(32, "MST Configuration Name"),
    Number(2, "MST Configuration Revision Level"), Bytes(16, "MST Configuration Digest")});
constexpr auto kCist = Rows<Bpdu>({
    Number(4, "CIST Internal Root Path Cost"), Shown(8, "CIST Bridge Identifier", ShowBridgeId),
    Number(1, "CIST Remaining Hops")});
constexpr auto kInstance = Rows<Bpdu>({
    Hex(1, "MSTI Flags"), Flag(0, "Master"), Flag(1, "Agreement"), Flag(2, "Forwarding"), Flag(3, "Learning"),
    Bits(4, 2, "Port Role", kMstiRoleNames), Flag(6, "Proposal"), Flag(7, "Topology Change"),
    Shown(8, "Regional Root Identifier", ShowBridgeId), Number(4, "Internal Root Path Cost"),
    Hex(1, "Bridge Priority"), Bits(0, 4, "Bridge Priority / 4096"), Hex(1, "Port Priority"),
    Bits(0, 4, "Port Priority / 16"), Number(1, "Remaining Hops")});
constexpr auto kAuxiliaryRegion = Rows<Bpdu>({
    Number(1, "Auxiliary MCID Format Selector"), Text(32, "Auxiliary MCID Name"),
    Number(2, "Auxiliary MCID Revision Level"), Bytes(16, "Auxiliary MCID Digest")});
constexpr auto kAgreement = Rows<Bpdu>({
    Hex(1, "Agreement Flags"), Bits(0, 2, "Reserved"), Flag(2, "Restricted Role"), Flag(3, "Agreement Valid"),
    Bits(4, 2, "Discarded Agreement Number"), Bits(6, 2, "Agreement Number"), Number(1, "Reserved"), Word(1),
    Bits(0, 4, "Agreement Digest Format Identifier"), Bits(4, 4, "Agreement Digest Format Capabilities"), Word(1),
    Bits(0, 4, "Agreement Digest Convention Identifier"), Bits(4, 4, "Agreement Digest Convention Capabilities"),
    Number(2, "Agreement Digest Edge Count"), Bytes(8, "Agreement Digest Reserved"), Bytes(20, "Computed Topology Digest")});

void ShowInstances(const Place& in, Cursor& c, Bpdu& bpdu) {
  constexpr int32_t kInstanceSize = 16;
  Loop loop;
  for (uint32_t number = 1; Left(c) >= kInstanceSize && MoreAt(in, c, loop); ++number) {
    const uint32_t instance = (PeekU8(c, 1) & 15) << 8 | PeekU8(c, 2);
    const Place under = Under(in, AddLine(in, Ahead(c, kInstanceSize), "MST Instance: %u", instance));
    ShowRows<Bpdu>(under, c, kInstance, bpdu);
  }
}

// A length that is too small for a region is taken for all that is there: some senders count the trees alone.
void ShowRegions(const Place& in, Cursor& c, Bpdu& bpdu) {
  constexpr uint32_t kSmallestRegion = 64;
  ShowRows<Bpdu>(in, c, kLength3, bpdu);
  const bool isSmall = bpdu.length.value < kSmallestRegion && bpdu.version.value < kShortestPathVersion;
  Cursor part = TakeCursor(c, isSmall ? Left(c) : static_cast<int32_t>(bpdu.length.value));
  if (Left(part)) {
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "MST Extension"));
    ShowRows<Bpdu>(under, part, kRegion, bpdu);
    ShowRows<Bpdu>(under, part, kCist, bpdu);
    ShowInstances(under, part, bpdu);
    part.ranShort = false;
    AddBlock(under, Rest(part), "Data");
  }
  if (bpdu.version.value < kShortestPathVersion || Left(c) < 2) return;
  ShowRows<Bpdu>(in, c, kLength4, bpdu);
  Cursor agreed = TakeCursor(c, bpdu.length.value);
  if (!Left(agreed)) return;
  const Place under = Under(in, AddLine(in, Ahead(agreed, Left(agreed)), "SPT Extension"));
  ShowRows<Bpdu>(under, agreed, kAuxiliaryRegion, bpdu);
  ShowRows<Bpdu>(under, agreed, kAgreement, bpdu);
  agreed.ranShort = false;
  AddBlock(under, Rest(agreed), "Data");
}

void AddTopLine(const Place& at, LineHandle line, const Bpdu& bpdu) {
  if (bpdu.bridge.here) {
    AppendToLine(at, line, ", Root %u/%s, Cost %u, Port 0x%.04X", PeekU16(bpdu.root), MacText(Slice(bpdu.root, 2, 6).bytes),
                 bpdu.cost.value, bpdu.port.value);
  }
}

// The fields up to where its version ends; the VLAN's element of per-VLAN trees is left.
int32_t ShowBpdu(const Place& at, Cursor& c, const char* title, Place* top) {
  const Bpdu ahead = PeekRows(c, kHeader);
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "%s: %s, %s", title, LookupName(kVersionNames, ahead.version.value),
                                  LookupName(kTypeNames, ahead.type.value));
  const Place in = *top = Under(at, line);
  Bpdu bpdu = ShowRows(in, c, kHeader);
  if (bpdu.type.value != kConfiguration && bpdu.type.value != kRapid) return 1;
  ShowRows<Bpdu>(in, c, kVector, bpdu);
  AddTopLine(at, line, bpdu);
  if (bpdu.type.value != kRapid || Left(c) < 1) return 1;
  ShowRows<Bpdu>(in, c, kLength1, bpdu);
  if (bpdu.version.value >= kMultipleVersion && Left(c) >= 2) ShowRegions(in, c, bpdu);
  return 1;
}

// --- registration ---

constexpr auto kGarpEventNames = SortedNames({
    {0, "Leave All"}, {1, "Join Empty"}, {2, "Join In"}, {3, "Leave Empty"}, {4, "Leave In"}, {5, "Empty"}});
constexpr auto kServiceNames = SortedNames({{0, "All Groups"}, {1, "All Unregistered Groups"}});

struct Garp {
  Field type, length, event;
};
constexpr auto kGarpHeader = Rows<Garp>({Hex(2, "Protocol Identifier", kProtocolNames)});
constexpr auto kAttributeType = Rows<Garp>({Number(1, "Attribute Type").Into(&Garp::type)});
constexpr auto kAttribute = Rows<Garp>({
    Number(1, "Attribute Length").Into(&Garp::length), Number(1, "Event", kGarpEventNames).Note(", %s").Into(&Garp::event)});
constexpr auto kVlanValue = Rows<Garp>({Number(2, "VLAN").Note(", VLAN %u")});
constexpr auto kGroupValue = Rows<Garp>({Mac("Group Address").Note(", %s")});
constexpr auto kServiceValue = Rows<Garp>({Number(1, "Service Requirement", kServiceNames).Note(", %s")});

// GVRP and GMRP differ in their destination address alone: the size of a value tells whose it is.
void ShowGarpValue(const Place& in, Cursor& value, Garp& garp) {
  constexpr int32_t kVlanSize = 2, kGroupSize = 6, kServiceSize = 1;
  if (Left(value) == kVlanSize) ShowRows<Garp>(in, value, kVlanValue, garp);
  if (Left(value) == kGroupSize) ShowRows<Garp>(in, value, kGroupValue, garp);
  if (Left(value) == kServiceSize) ShowRows<Garp>(in, value, kServiceValue, garp);
  AddBlock(in, Rest(value), "Attribute Value");
}

void ShowGarpMessage(const Place& in, Cursor& c) {
  const Cursor start = c;
  const LineHandle line = AddLine(in, Ahead(c, 1), "Message");
  const Place under = Under(in, line);
  Garp garp = ShowRows(under, c, kAttributeType);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) == 0) {
      AddLine(under, TakeU8(c), "End of Attributes");
      break;
    }
    const uint32_t length = PeekU8(c);
    Cursor value = TakeCursor(c, length < 2 ? 2 : length);
    const Place attribute = Under(under, AddLine(under, Ahead(value, Left(value)), "Attribute"));
    ShowRows<Garp>(attribute, value, kAttribute, garp);
    ShowGarpValue(attribute, value, garp);
  }
  if (line) SetRange(in, line, start.offset, c.offset - start.offset);
}

int32_t DecodeGarp(const Place& at, Cursor c) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "GARP: Registration of VLANs or Groups"));
  ShowRows(in, c, kGarpHeader);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) == 0) {
      AddLine(in, TakeU8(c), "End of Messages");
      break;
    }
    ShowGarpMessage(in, c);
  }
  CoverBytes(in, c);
  AddBlock(in, Rest(c), "GARP Data");
  return 1;
}

}  // namespace

int32_t DecodeSpanningTree(const Place& at, Cursor c) {
  constexpr uint32_t kSpanningTreeProtocol = 0, kGarpProtocol = 1;
  if (Left(c) < 3) return 0;
  if (PeekU16(c) == kGarpProtocol) return DecodeGarp(at, c);
  if (Left(c) < 4 || PeekU16(c) != kSpanningTreeProtocol) return 0;
  Place in{};
  ShowBpdu(at, c, "Spanning Tree", &in);
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Spanning Tree Data");
  return 1;
}

// Of switches that keep a tree for each VLAN: behind the fields the VLAN that the sender meant.
int32_t DecodeVlanSpanningTree(const Place& at, Cursor c) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2};
  static constexpr auto kOriginatingVlan = Rows<Bpdu>({Number(2, nullptr).Note(" %u").Into(&Bpdu::vlan)});
  static constexpr auto kElements = Choices<Bpdu>({{0, "Originating VLAN", kOriginatingVlan}});
  constexpr int32_t kElementSize = 6;
  if (Left(c) < 4 || PeekU16(c) != 0) return 0;
  const uint32_t type = PeekU8(c, 3);
  Place in{};
  ShowBpdu(at, c, "Per-VLAN Spanning Tree", &in);
  if (type == kConfiguration && Left(c) > kElementSize) {
    const Field padding = TakeU8(c);
    AddLine(in, padding, "Padding: %u", padding.value);
  }
  Bpdu bpdu{};
  if (Left(c) >= kElementSize) ShowElements(in, c, kForm, "Element", kElements, bpdu);
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Spanning Tree Data");
  return 1;
}

}  // namespace qxview
