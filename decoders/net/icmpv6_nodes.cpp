// Messages of ICMPv6 about nodes and routers: renumbering (RFC 2894), node information (RFC 4620), certification paths
// (RFC 3971), locators (RFC 6743), duplicate addresses of low-power links (RFC 6775), MPL (RFC 7731) and extended echo
// (RFC 8335).
#include "core/elements.h"
#include "decoders/net/icmp_extensions.h"
#include "decoders/net/icmpv6.h"

namespace qxview {
namespace {

struct Values {
  Field query, length, uses;
};

constexpr uint32_t kCommand = 0, kResult = 1;
constexpr auto kOperations = SortedNames({{1, "ADD"}, {2, "CHANGE"}, {3, "SET-GLOBAL"}});
constexpr auto kRenumbering = Rows<Values>({
    Number(4, "Sequence Number"), Number(1, "Segment Number"), Hex(1, "Flags"), Flag(0, "Test Command"),
    Flag(1, "Result Requested"), Flag(2, "All Interfaces"), Flag(3, "Site-Specific"), Flag(4, "Processed Previously"),
    Bits(5, 3, "Reserved"), Number(2, "Maximum Delay", " ms"), Hex(4, "Reserved")});
constexpr auto kMatch = Rows<Values>({
    Number(1, "Operation", kOperations), Number(1, "Operation Length", " * 8 bytes").Into(&Values::length), Number(1, "Ordinal"),
    Number(1, "Match Length"), Number(1, "Minimum Length"), Number(1, "Maximum Length"), Hex(2, "Reserved"),
    IPv6("Match Prefix")});
constexpr auto kUse = Rows<Values>({
    Number(1, "Use Length"), Number(1, "Keep Length"), Hex(1, "Flag Mask"), Flag(0, "On-Link"), Flag(1, "Autonomous"),
    Bits(2, 6, "Reserved"), Hex(1, "Router Advertisement Flags"), Flag(0, "On-Link"), Flag(1, "Autonomous"),
    Bits(2, 6, "Reserved"), Number(4, "Valid Lifetime", " seconds"), Number(4, "Preferred Lifetime", " seconds"), Hex(4, "Flags"),
    Flag(0, "Decrement Valid Lifetime"), Flag(1, "Decrement Preferred Lifetime"), Bits(2, 30, "Reserved"),
    IPv6("Use Prefix")});
constexpr auto kMatched = Rows<Values>({
    Hex(2, "Flags"), Bits(0, 14, "Reserved"), Flag(14, "Prefix Out of Bounds"), Flag(15, "Forbidden Interface"),
    Number(1, "Ordinal"), Number(1, "Matched Length"), Number(4, "Interface Index"), IPv6("Matched Prefix")});

constexpr auto kQueryNames = SortedNames({
    {0, "NOOP"}, {1, "Supported Query Types"}, {2, "Node Name"}, {3, "Node Addresses"}, {4, "IPv4 Addresses"}});
constexpr uint32_t kNameQuery = 2, kAddressQuery = 3, kIPv4Query = 4;
constexpr auto kInformation = Rows<Values>({
    Number(2, "Query Type", kQueryNames).Note(", %s").Into(&Values::query), Hex(2, "Flags"), Bits(0, 10, "Reserved"),
    Flag(10, "Global-Scope Addresses"), Flag(11, "Site-Local Addresses"), Flag(12, "Link-Local Addresses"),
    Flag(13, "Compatible or Mapped Addresses"), Flag(14, "All Unicast Addresses"), Flag(15, "Truncated"), Hex(8, "Nonce")});
constexpr auto kTimeToLive = Rows<Values>({Number(4, "Time to Live", " seconds")});
constexpr auto kNodeAddress = Rows<Values>({Number(4, "Time to Live", " seconds"), IPv6("Node Address")});
constexpr auto kNodeIPv4 = Rows<Values>({Number(4, "Time to Live", " seconds"), IPv4("Node Address")});
constexpr auto kSubjectIPv4 = Rows<Values>({IPv4("Subject")});

// Names, one after the other; a name that is not whole ends in two empty labels.
void ShowNames(const Place& in, Cursor& c, const char* label) {
  char name[256];
  for (Loop loop; MoreAt(in, c, loop);) {
    const Field taken = TakeIPv6DomainName(c, name, sizeof name);
    if (!taken.here) return;
    const char* shown = name;
    // keys: text Subject, Node Name
    AddLine(in, taken, "%s: %s", label, shown);
  }
}

// What is asked about, by the code.
void ShowSubject(const Place& in, Cursor& c, const Icmpv6Message& message, Values& values) {
  if (message.code == 0 && Left(c) >= 16) AddAddress(in, c, "Subject");
  if (message.code == 1) ShowNames(in, c, "Subject");
  if (message.code == 2 && Left(c) >= 4) ShowRows<Values>(in, c, kSubjectIPv4, values);
}

constexpr auto kStatusNames = SortedNames({
    {0, "Success"}, {1, "Duplicate Address"}, {2, "Neighbor Cache Full"}, {3, "Moved"}, {4, "Removed"},
    {5, "Validation Requested"}, {6, "Duplicate Source Address"}, {7, "Invalid Source Address"},
    {8, "Registered Address Topologically Incorrect"}, {9, "6LBR Registry Saturated"}, {10, "Validation Failed"}});
constexpr auto kDuplicate = Rows<NoValues>({
    Number(1, "Status", kStatusNames), Hex(1, "Reserved"), Number(2, "Registration Lifetime", " minutes"), Eui64("EUI-64"),
    IPv6("Registered Address")});
constexpr auto kLocatorOperations = SortedNames({{1, "Advertisement"}, {2, "Acknowledgement"}});
constexpr auto kLocators = Rows<NoValues>({
    Number(1, "Number of Locators"), Number(1, "Operation", kLocatorOperations), Hex(2, "Reserved")});
constexpr auto kLocator = Rows<NoValues>({
    Hex(8, "Locator"), Number(2, "Preference"), Number(2, "Lifetime", " seconds")});
constexpr auto kPathSolicitation = Rows<NoValues>({Number(2, "Identifier"), Number(2, "Component")});
constexpr auto kPathAdvertisement = Rows<NoValues>({
    Number(2, "Identifier"), Number(2, "All Components"), Number(2, "Component"), Hex(2, "Reserved")});
constexpr auto kExperimental = Rows<NoValues>({Number(1, "Subtype"), Hex(3, "Reserved")});
constexpr auto kSeedNames = SortedNames({
    {0, "IPv6 Source Address"}, {1, "16 bits"}, {2, "64 bits"}, {3, "128 bits"}});
struct Seed {
  Field bits, size;
};
constexpr auto kSeed = Rows<Seed>({
    Number(1, "Minimum Sequence Number"), Word(1), Bits(0, 6, "Bit Vector Length").Into(&Seed::bits),
    Bits(6, 2, "Seed ID Length", kSeedNames).Into(&Seed::size)});
constexpr auto kSeedId = Rows<Seed>({Bytes(0, "Seed ID").SizedBy(&Seed::size)});
constexpr auto kVector = Rows<Seed>({Bytes(0, "Buffered Messages").SizedBy(&Seed::bits)});

}  // namespace

void DecodeRouterRenumbering(const Place& in, Cursor& c, Icmpv6Message& message) {
  Values values{};
  ShowRows<Values>(in, c, kRenumbering, values);
  if (message.code != kCommand && message.code != kResult) return;
  constexpr int32_t kMatchSize = 24, kUseSize = 32;
  for (Loop loop; Left(c) >= kMatchSize && MoreAt(in, c, loop);) {
    if (message.code == kResult) {
      ShowRows<Values>(Under(in, AddLine(in, Ahead(c, kMatchSize), "Result")), c, kMatched, values);
      continue;
    }
    const int32_t size = PeekU8(c, 1) * 8;
    if (size < kMatchSize) return;
    Cursor command = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(command, Left(command)), "Prefix Control Operation"));
    ShowRows<Values>(under, command, kMatch, values);
    for (Loop uses; Left(command) >= kUseSize && MoreAt(under, command, uses);) {
      ShowRows<Values>(Under(under, AddLine(under, Ahead(command, kUseSize), "Use Prefix Part")), command, kUse, values);
    }
    AddBlock(under, Rest(command), "Data");
  }
}

void DecodeNodeInformation(const Place& in, Cursor& c, Icmpv6Message& message) {
  constexpr uint32_t kQuery = 139;
  Values values{};
  ShowRows<Values>(in, c, kInformation, values);
  if (message.type == kQuery) {
    ShowSubject(in, c, message, values);
  } else if (values.query.value == kNameQuery && Left(c) >= 4) {
    ShowRows<Values>(in, c, kTimeToLive, values);
    ShowNames(in, c, "Node Name");
  } else if (values.query.value == kAddressQuery) {
    for (Loop loop; Left(c) >= 20 && MoreAt(in, c, loop);) ShowRows<Values>(in, c, kNodeAddress, values);
  } else if (values.query.value == kIPv4Query) {
    for (Loop loop; Left(c) >= 8 && MoreAt(in, c, loop);) ShowRows<Values>(in, c, kNodeIPv4, values);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Node Information Data");
}

void DecodeDuplicateAddress(const Place& in, Cursor& c, Icmpv6Message&) { ShowRows(in, c, kDuplicate); }

void DecodeLocatorUpdate(const Place& in, Cursor& c, Icmpv6Message&) {
  ShowRows(in, c, kLocators);
  for (Loop loop; Left(c) >= 12 && MoreAt(in, c, loop);) ShowRows(in, c, kLocator);
}

void DecodePathSolicitation(const Place& in, Cursor& c, Icmpv6Message& message) {
  ShowRows(in, c, kPathSolicitation);
  DecodeNeighborOptions(in, c, message);
}

void DecodePathAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message) {
  ShowRows(in, c, kPathAdvertisement);
  DecodeNeighborOptions(in, c, message);
}

void DecodeExperimentalMobility(const Place& in, Cursor& c, Icmpv6Message& message) {
  ShowRows(in, c, kExperimental);
  DecodeNeighborOptions(in, c, message);
}

void DecodeMplControl(const Place& in, Cursor& c, Icmpv6Message&) {
  constexpr uint32_t kSizes[] = {0, 2, 8, 16};
  for (Loop loop; MoreAt(in, c, loop);) {
    const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 2 ? Left(c) : 2), "Seed Info"));
    Seed seed{};
    ShowRows<Seed>(under, c, kSeed, seed);
    seed.size.value = kSizes[seed.size.value & 3];
    if (seed.size.value) ShowRows<Seed>(under, c, kSeedId, seed);
    if (seed.bits.value) ShowRows<Seed>(under, c, kVector, seed);
  }
}

// The identifier, a byte of sequence and a byte of flags or state; a request names an interface in an object.
void DecodeIPv6ExtendedEcho(const Place& in, Cursor& c, Icmpv6Message& message) {
  constexpr uint32_t kRequest = 160;
  static constexpr auto kStates = SortedNames({{0, "Reserved"}, {1, "Incomplete"}, {2, "Reachable"}, {3, "Stale"},
                                               {4, "Delay"}, {5, "Probe"}, {6, "Failed"}, {7, "Reserved"}});
  static constexpr auto kAsked = Rows<NoValues>({Hex(1, "Flags"), Bits(0, 7, "Reserved"), Flag(7, "Local")});
  static constexpr auto kAnswered = Rows<NoValues>({
      Hex(1, "Flags"), Bits(0, 3, "State", kStates), Bits(3, 2, "Reserved"), Flag(5, "Active"), Flag(6, "IPv4 Running"),
      Flag(7, "IPv6 Running")});
  const Field identifier = TakeU16(c);
  AddLine(in, identifier, "Identifier: 0x%.04X (%u)", identifier.value, identifier.value);
  const Field sequence = TakeU8(c);
  AddLine(in, sequence, "Sequence Number: %u", sequence.value);
  if (message.type != kRequest) {
    ShowRows(in, c, kAnswered);
    return;
  }
  ShowRows(in, c, kAsked);
  if (HasIcmpExtensionVersion(c)) DecodeIcmpExtensions(in, TakeCursor(c, Left(c)));
}

}  // namespace qxview
