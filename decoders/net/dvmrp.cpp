// Distance Vector Multicast Routing Protocol, version 1 (RFC 1075) and 3 (draft-ietf-idmr-dvmrp-v3) with the questions about
// neighbors, and multicast traces (draft-ietf-idmr-traceroute-ipm), all of them in IGMP.
#include "decoders/net/dvmrp.h"

#include "core/line_facts.h"
#include "core/rows.h"

namespace qxview {
namespace {

struct Dvmrp {
  Field major, minor, count, mask, kind;
};

constexpr auto kCodeNames = SortedNames({
    {1, "Probe"}, {2, "Route Report"}, {3, "Ask Neighbors"}, {4, "Neighbors"}, {5, "Ask Neighbors 2"}, {6, "Neighbors 2"},
    {7, "Prune"}, {8, "Graft"}, {9, "Graft Acknowledgement"}});
constexpr auto kCapabilityMasks = SortedNames({
    {0x01, "Leaf"}, {0x02, "Prune"}, {0x04, "Generation ID"}, {0x08, "Mtrace"}, {0x10, "SNMP"}, {0x20, "Netmask"}});
constexpr auto kNeighborMasks = SortedNames({
    {0x01, "Tunnel"}, {0x02, "Source Route"}, {0x04, "PIM Neighbor"}, {0x10, "Down"}, {0x20, "Administratively Disabled"},
    {0x40, "Querier"}, {0x80, "Leaf"}});
constexpr auto kCommandNames = SortedNames({
    {0, "Null"}, {2, "Address Family Indicator"}, {3, "Subnet Mask"}, {4, "Metric"}, {5, "Flags0"}, {6, "Infinity"},
    {7, "Destination Address"}, {8, "Requested Destination Address"}, {9, "Non Membership Report"},
    {10, "Non Membership Cancellation"}});

constexpr auto kHead3 = Rows<Dvmrp>({
    Hex(1, "Reserved"), Flags(1, "Capabilities", kCapabilityMasks), Number(1, "Minor Version"), Number(1, "Major Version")});
constexpr auto kGeneration = Rows<Dvmrp>({Number(4, "Generation ID")});
constexpr auto kNeighbor = Rows<Dvmrp>({IPv4("Neighbor Address")});
constexpr auto kPrune = Rows<Dvmrp>({
    IPv4("Source Host Address").Note(", Source %s"), IPv4("Group Address").Note(", Group %s"),
    Number(4, "Prune Lifetime", " seconds")});
constexpr auto kGraft = Rows<Dvmrp>({
    IPv4("Source Host Address").Note(", Source %s"), IPv4("Group Address").Note(", Group %s")});
constexpr auto kMask = Rows<Dvmrp>({IPv4("Source Network Mask")});
constexpr auto kLocal = Rows<Dvmrp>({
    IPv4("Local Address").Note(", %s"), Number(1, "Metric"), Number(1, "Threshold"), Flags(1, "Flags", kNeighborMasks),
    Number(1, "Neighbor Count").Into(&Dvmrp::count)});
constexpr auto kLocal1 = Rows<Dvmrp>({
    IPv4("Local Address").Note(", %s"), Number(1, "Metric"), Number(1, "Threshold"),
    Number(1, "Neighbor Count").Into(&Dvmrp::count)});

void ShowNeighbors(const Place& in, Cursor& c, bool withFlags) {
  Dvmrp dvmrp{};
  Loop loop;
  while (Left(c) >= 7 && MoreAt(in, c, loop)) {
    const Cursor start = c;
    const LineHandle line = AddLine(in, Ahead(c, 7), "Interface");
    const Place under = Under(in, line);
    ShowRows<Dvmrp>(under, c, withFlags ? RowSpan<Dvmrp>(kLocal) : RowSpan<Dvmrp>(kLocal1), dvmrp);
    Loop neighbors;
    for (uint32_t i = 0; i < dvmrp.count.value && Left(c) >= 4 && MoreAt(in, c, neighbors); ++i) {
      ShowRows<Dvmrp>(under, c, kNeighbor, dvmrp);
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

// Networks of one mask, each as many octets as the mask has that are not 0, with its metric; the last one's top bit is set.
void ShowRoutes(const Place& in, Cursor& c) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    const Field mask = TakeBytes(c, 3);
    const uint8_t whole[4] = {0xFF, static_cast<uint8_t>(PeekU8(mask)), static_cast<uint8_t>(PeekU8(mask, 1)),
                              static_cast<uint8_t>(PeekU8(mask, 2))};
    AddLine(in, mask, "Network Mask: %s", IPv4Text(whole));
    const int32_t size = whole[3] ? 4 : whole[2] ? 3 : whole[1] ? 2 : 1;
    Loop routes;
    while (Left(c) > size && MoreAt(in, c, routes)) {
      uint8_t network[4] = {};
      for (int32_t i = 0; i < size; ++i) network[i] = static_cast<uint8_t>(PeekU8(c, i));
      const Place under = Under(in, AddLine(in, Ahead(c, size + 1), "Route: %s", IPv4Text(network)));
      const Field address = TakeBytes(c, size), metric = TakeU8(c);
      AddLine(under, address, "Source Network: %s", IPv4Text(network));
      AddLine(under, metric, "Metric: %u%s", metric.value & 0x7F, metric.value & 0x80 ? ", Last Route" : "");
      if (metric.value & 0x80) break;
    }
  }
}

void ShowVersion3(const Place& in, Cursor& c, uint32_t code) {
  enum : uint32_t { kProbe = 1, kReport = 2, kNeighbors = 4, kNeighbors2 = 6, kPruned = 7, kGrafted = 8, kGraftAck = 9 };
  Dvmrp dvmrp = ShowRows(in, c, kHead3);
  Loop loop;
  switch (code) {
    case kProbe:
      ShowRows<Dvmrp>(in, c, kGeneration, dvmrp);
      while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Dvmrp>(in, c, kNeighbor, dvmrp);
      break;
    case kReport: ShowRoutes(in, c); break;
    case kNeighbors: ShowNeighbors(in, c, false); break;
    case kNeighbors2: ShowNeighbors(in, c, true); break;
    case kPruned: ShowRows<Dvmrp>(in, c, kPrune, dvmrp); break;
    case kGrafted: case kGraftAck: ShowRows<Dvmrp>(in, c, kGraft, dvmrp); break;
    default: break;
  }
  if (code >= kPruned && Left(c) >= 4) ShowRows<Dvmrp>(in, c, kMask, dvmrp);
}

// Commands of an octet and a number or some addresses.
void ShowCommand(const Place& in, Cursor& c) {
  enum : uint32_t { kSubnetMask = 3, kDestination = 7, kRequested = 8, kNonMembership = 9, kCancellation = 10 };
  const Cursor start = c;
  const uint32_t command = PeekU8(c);
  const LineHandle line = AddLine(in, Ahead(c, 2), "Command: %s", LookupName(kCommandNames, command));
  const Place under = Under(in, line);
  const Field code = TakeU8(c), value = TakeU8(c);
  AddLine(under, code, "Command Code: %u = %s", command, LookupName(kCommandNames, command));
  AddLine(under, value, "Value: %u", value.value);
  const bool isList = command >= kDestination && command <= kCancellation;
  const uint32_t addresses = command == kSubnetMask || isList ? value.value : 0;
  Loop loop;
  for (uint32_t i = 0; i < addresses && Left(c) >= 4 && MoreAt(in, c, loop); ++i) {
    const Field address = TakeBytes(c, 4);
    AddLine(under, address, "%s: %s", command == kSubnetMask ? "Subnet Mask" : "Address", IPv4Text(address.bytes));
    if (command == kNonMembership && Left(c) >= 4) {
      const Field hold = TakeU32(c);
      AddLine(under, hold, "Hold Time: %u seconds", hold.value);
    }
  }
  if (line) SetRange(in, line, start.offset, c.offset - start.offset);
}

// --- traces ---

constexpr auto kForwardingNames = SortedNames({
    {0x00, "No Error"}, {0x01, "Wrong Interface"}, {0x02, "Prune Sent"}, {0x03, "Prune Received"}, {0x04, "Scoped"},
    {0x05, "No Route"}, {0x06, "Wrong Last-Hop"}, {0x07, "Not Forwarding"}, {0x08, "Reached RP"}, {0x09, "RPF Interface"},
    {0x0A, "No Multicast"}, {0x0B, "Information Hidden"}, {0x81, "No Space"}, {0x82, "Old Router"},
    {0x83, "Administratively Prohibited"}});
constexpr auto kRoutingNames = SortedNames({
    {1, "DVMRP"}, {2, "MOSPF"}, {3, "PIM"}, {4, "CBT"}, {5, "PIM Using Special Routing Table"},
    {6, "PIM Using a Static Route"}, {7, "DVMRP Using a Static Route"}, {8, "PIM Using MBGP Route"},
    {9, "CBT Using Special Routing Table"}, {10, "CBT Using a Static Route"}, {11, "PIM Using State Created by Assert Processing"}});
constexpr auto kTraceHead = Rows<Dvmrp>({
    IPv4("Multicast Group").Note(", Group %s"), IPv4("Source Address").Note(", Source %s"),
    IPv4("Destination Address").Note(", Destination %s"), IPv4("Response Address"), Number(1, "Response TTL"),
    Number(3, "Query ID")});
constexpr auto kHop = Rows<Dvmrp>({
    Hex(4, "Query Arrival Time"), IPv4("Incoming Interface Address").Note(": %s"), IPv4("Outgoing Interface Address"),
    IPv4("Previous Hop Router Address"), Number(4, "Input Packet Count"), Number(4, "Output Packet Count"),
    Number(4, "Packet Count for This Pair"), Number(1, "Routing Protocol", kRoutingNames), Number(1, "Forwarding TTL"),
    Word(1), Bits(0, 1, "Reserved"), Flag(1, "Subnet Count"), Bits(2, 6, "Source Mask Length"),
    Hex(1, "Forwarding Code", kForwardingNames).Note(", %s")});

}  // namespace

const char* DvmrpName(uint32_t code) { return LookupName(kCodeNames, code); }

void ShowDvmrp(const Place& in, Cursor& c, uint32_t code) {
  const KeyedAs keys(PacketOf(in), "dvmrp");
  constexpr uint32_t kMajor = 3;
  if (PeekU8(c, 3) == kMajor || code > 4) return ShowVersion3(in, c, code);
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowCommand(in, c);
}

void ShowTrace(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "mtrace");
  constexpr int32_t kHopSize = 32;
  Dvmrp trace = ShowRows(in, c, kTraceHead);
  Loop loop;
  while (Left(c) >= kHopSize && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, kHopSize), "Hop"));
    ShowRows<Dvmrp>(under, c, kHop, trace);
  }
}

}  // namespace qxview
