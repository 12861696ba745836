// Protocol Independent Multicast, version 1, as IGMP carries it (type 0x14) and its Internet-Draft describes it
// (draft-ietf-idmr-pim-spec): code and checksum are IGMP's, then
//
//   version (4 bits) and reserved (28)   what the code says
#include "decoders/net/pim.h"

#include "core/line_facts.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

enum Pim1Code : uint32_t { kQuery = 0, kRegister = 1, kRegisterStop = 2, kJoinPrune = 3, kReachability = 4, kAssert = 5,
                           kGraft = 6, kGraftAck = 7, kMode = 8 };

constexpr auto kCodeNames = SortedNames({
    {0, "Router Query"}, {1, "Register"}, {2, "Register-Stop"}, {3, "Join/Prune"}, {4, "RP Reachability"}, {5, "Assert"},
    {6, "Graft"}, {7, "Graft-Ack"}, {8, "Mode"}});
constexpr auto kModeNames = SortedNames({{0, "Dense"}, {1, "Sparse"}, {2, "Sparse-Dense"}});

constexpr auto kVersion = Rows<Pim>({Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Reserved"), Bytes(3, "Reserved 2")});
constexpr auto kQueryRows = Rows<Pim>({
    Word(1), Bits(0, 4, "Mode", kModeNames), Bits(4, 4, "Reserved"), Hex(1, "Reserved 2"), Number(2, "Hold Time", " seconds")});
constexpr auto kStop = Rows<Pim>({IPv4("Group Address").Note(", Group %s"), IPv4("Source Address").Note(", Source %s")});
constexpr auto kJoinHead = Rows<Pim>({
    IPv4("Upstream Neighbor").Note(", %s"), Hex(2, "Reserved"), Number(2, "Hold Time", " seconds"), Hex(1, "Reserved"),
    Number(1, "Mask Length"), Number(1, "Address Length"), Number(1, "Number of Groups").Into(&Pim::groups)});
constexpr auto kGroup = Rows<Pim>({
    IPv4("Group Address").Note(": %s"), IPv4("Group Mask"), Number(2, "Number of Joined Sources").Into(&Pim::joins),
    Number(2, "Number of Pruned Sources").Into(&Pim::prunes)});
constexpr auto kSource = Rows<Pim>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "Sparse"), Flag(6, "Wild Card"), Flag(7, "Rendezvous Point Tree"),
    Number(1, "Mask Length"), IPv4("Source Address").Note(": %s")});
constexpr auto kReach = Rows<Pim>({
    IPv4("Group Address").Note(", Group %s"), IPv4("Group Mask"), IPv4("RP Address").Note(", RP %s"), Hex(2, "Reserved"),
    Number(2, "Hold Time", " seconds")});
constexpr auto kAssertRows = Rows<Pim>({
    IPv4("Group Address").Note(", Group %s"), IPv4("Group Mask"), IPv4("Source Address").Note(", Source %s"),
    Hex(4, "Preference Word"), Flag(0, "RP Tree"), Bits(1, 31, "Metric Preference"), Number(4, "Metric").Note(", Metric %u")});

void ShowJoins(const Place& in, Cursor& c, Pim& pim) {
  constexpr int32_t kGroupSize = 12, kSourceSize = 6;
  ShowRows<Pim>(in, c, kJoinHead, pim);
  const uint32_t groups = pim.groups.value;
  Loop loop;
  for (uint32_t i = 0; i < groups && Left(c) >= kGroupSize && MoreAt(in, c, loop); ++i) {
    const Cursor start = c;
    const LineHandle line = AddLine(in, Ahead(c, kGroupSize), "Group");
    const Place under = Under(in, line);
    ShowRows<Pim>(under, c, kGroup, pim);
    const uint32_t joins = pim.joins.value, all = joins + pim.prunes.value;
    Loop sources;
    for (uint32_t j = 0; j < all && Left(c) >= kSourceSize && MoreAt(in, c, sources); ++j) {
      const Place source = Under(under, AddLine(under, Ahead(c, kSourceSize), "%s Source", j < joins ? "Joined" : "Pruned"));
      ShowRows<Pim>(source, c, kSource, pim);
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

}  // namespace

const char* Pim1Name(uint32_t code) { return LookupName(kCodeNames, code); }

void ShowPim1(const Place& in, Cursor& c, uint32_t code) {
  const KeyedAs keys(PacketOf(in), "pim");
  Pim pim{};
  ShowRows<Pim>(in, c, kVersion, pim);
  switch (code) {
    case kQuery: case kMode: ShowRows<Pim>(in, c, kQueryRows, pim); break;
    case kRegister:
      if (Left(c)) {
        DecodeCarriedFrame(Deeper(in), c, Carried::kIp, "Registered Packet");
        Rest(c);
      }
      break;
    case kRegisterStop: ShowRows<Pim>(in, c, kStop, pim); break;
    case kJoinPrune: case kGraft: case kGraftAck: ShowJoins(in, c, pim); break;
    case kReachability: ShowRows<Pim>(in, c, kReach, pim); break;
    case kAssert: ShowRows<Pim>(in, c, kAssertRows, pim); break;
    default: break;
  }
}

}  // namespace qxview
