// IPv6 Routing Protocol for Low-Power and Lossy Networks (RFC 6550; metrics: RFC 6551, routes between two nodes: RFC 6997,
// cleaning up: RFC 9009): sensors build graphs towards their roots.
//
//   [security: flags, algorithm, modes, flags (1 each)   counter (4)   key]   base of the code   options: type, length (1 each)
#include "decoders/net/rpl.h"

#include "core/elements.h"
#include "core/line_facts.h"

namespace qxview {
namespace {

enum : uint32_t {
  kSolicitation = 0x00, kObject = 0x01, kAdvertisement = 0x02, kAcknowledgement = 0x03, kDiscoveryReply = 0x04,
  kDiscoveryAck = 0x05, kCleanup = 0x07, kCleanupAck = 0x08, kConsistency = 0x0A, kSecure = 0x80,
};

constexpr auto kCodeNames = SortedNames({
    {0x00, "DODAG Information Solicitation"}, {0x01, "DODAG Information Object"},
    {0x02, "Destination Advertisement Object"}, {0x03, "Destination Advertisement Object Acknowledgement"},
    {0x04, "P2P Discovery Reply Object"}, {0x05, "P2P Discovery Reply Object Acknowledgement"},
    {0x06, "Measurement Object"}, {0x07, "Destination Cleanup Object"},
    {0x08, "Destination Cleanup Object Acknowledgement"}, {0x80, "Secure DODAG Information Solicitation"},
    {0x81, "Secure DODAG Information Object"}, {0x82, "Secure Destination Advertisement Object"},
    {0x83, "Secure Destination Advertisement Object Acknowledgement"}, {0x84, "Secure P2P Discovery Reply Object"},
    {0x85, "Secure P2P Discovery Reply Object Acknowledgement"}, {0x86, "Secure Measurement Object"},
    {0x87, "Secure Destination Cleanup Object"}, {0x88, "Secure Destination Cleanup Object Acknowledgement"},
    {0x8A, "Consistency Check"}});
constexpr auto kModeNames = SortedNames({
    {0, "No Downward Routes"}, {1, "Non-Storing"}, {2, "Storing, No Multicast"}, {3, "Storing, Multicast"},
    {4, "P2P Route Discovery"}, {5, "Non-Storing, Multicast"}});
constexpr auto kPreferenceNames = SortedNames({{0, "Medium"}, {1, "High"}, {2, "Reserved"}, {3, "Low"}});
constexpr auto kObjectiveNames = SortedNames({{0, "Objective Function Zero"}, {1, "Minimum Rank with Hysteresis"}});
constexpr auto kAlgorithmNames = SortedNames({{0, "CCM with AES-128, RSA with SHA-256"}});
constexpr auto kKeyNames = SortedNames({
    {0, "Group Key by Index"}, {1, "Pair Key"}, {2, "Group Key by Source and Index"}, {3, "Signature Key"}});
constexpr auto kMetricNames = SortedNames({
    {1, "Node State and Attribute"}, {2, "Node Energy"}, {3, "Hop Count"}, {4, "Link Throughput"}, {5, "Link Latency"},
    {6, "Link Quality Level"}, {7, "Link ETX"}, {8, "Link Color"}});
constexpr auto kAggregationNames = SortedNames({{0, "Additive"}, {1, "Maximum"}, {2, "Minimum"}, {3, "Multiplicative"}});
constexpr auto kEnergyNames = SortedNames({{0, "Mains"}, {1, "Battery"}, {2, "Scavenger"}});

struct Rpl {
  Field hasRoot, mode, level, length, type, constraint, compression, bits;
};

constexpr auto kSecurity = Rows<Rpl>({
    Word(1), Flag(0, "Counter Is Time"), Bits(1, 7, "Reserved"), Number(1, "Algorithm", kAlgorithmNames),
    Word(1), Bits(0, 2, "Key Identifier Mode", kKeyNames).Into(&Rpl::mode), Bits(2, 3, "Reserved"),
    Bits(5, 3, "Security Level").Into(&Rpl::level), Hex(1, "Flags"), Number(4, "Counter")});
constexpr auto kKeySource = Rows<Rpl>({Bytes(8, "Key Source")});
constexpr auto kKeyIndex = Rows<Rpl>({Number(1, "Key Index")});
constexpr auto kSolicitationBase = Rows<Rpl>({Hex(1, "Flags"), Hex(1, "Reserved")});
constexpr auto kObjectBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Number(1, "Version Number"), Number(2, "Rank").Note(", Rank %u"),
    Hex(1, "Flags"), Flag(0, "Grounded"), Bits(1, 1, "Zero"), Bits(2, 3, "Mode of Operation", kModeNames),
    Bits(5, 3, "DODAG Preference"), Number(1, "Destination Advertisement Trigger Sequence Number"), Hex(1, "Flags"),
    Hex(1, "Reserved"), IPv6("DODAG ID").Note(", %s")});
constexpr auto kAdvertisementBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Hex(1, "Flags"), Flag(0, "Acknowledgement Requested"),
    Flag(1, "DODAG ID Present").Into(&Rpl::hasRoot), Bits(2, 6, "Reserved"), Hex(1, "Reserved"),
    Number(1, "DAO Sequence")});
constexpr auto kAcknowledgementBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Hex(1, "Flags"), Flag(0, "DODAG ID Present").Into(&Rpl::hasRoot),
    Bits(1, 7, "Reserved"), Number(1, "DAO Sequence"), Number(1, "Status").Note(", Status %u")});
constexpr auto kCleanupBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Hex(1, "Flags"), Flag(0, "Acknowledgement Requested"),
    Flag(1, "DODAG ID Present").Into(&Rpl::hasRoot), Bits(2, 6, "Reserved"), Number(1, "Status"),
    Number(1, "DCO Sequence")});
constexpr auto kCleanupAckBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Hex(1, "Flags"), Flag(0, "DODAG ID Present").Into(&Rpl::hasRoot),
    Bits(1, 7, "Reserved"), Number(1, "DCO Sequence"), Number(1, "Status").Note(", Status %u")});
constexpr auto kReplyBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Number(1, "Version Number"), Hex(2, "Flags"), Flag(0, "Stop"),
    Flag(1, "Acknowledgement Requested"), Bits(2, 2, "Sequence"), Bits(4, 12, "Reserved"),
    IPv6("DODAG ID").Note(", %s")});
constexpr auto kReplyAckBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Number(1, "Version Number"), Hex(2, "Flags"),
    Bits(0, 2, "Sequence"), Bits(2, 14, "Reserved"), IPv6("DODAG ID").Note(", %s")});
constexpr auto kConsistencyBase = Rows<Rpl>({
    Number(1, "RPL Instance ID").Note(", Instance %u"), Hex(1, "Flags"), Flag(0, "Response"), Bits(1, 7, "Reserved"),
    Hex(2, "Nonce"), IPv6("DODAG ID"), Number(4, "Destination Counter")});
constexpr auto kRoot = Rows<Rpl>({IPv6("DODAG ID").Note(", %s")});

// --- Options ---

constexpr auto kZeros = Rows<Rpl>({Bytes(0, "Padding")});
constexpr auto kRouteHead = Rows<Rpl>({
    Number(1, "Prefix Length").Into(&Rpl::bits), Word(1), Bits(0, 3, "Reserved"),
    Bits(3, 2, "Preference", kPreferenceNames), Bits(5, 3, "Reserved"), Number(4, "Route Lifetime", " seconds")});
constexpr auto kConfiguration = Rows<Rpl>({
    Word(1), Bits(0, 4, "Flags"), Flag(4, "Authentication Enabled"), Bits(5, 3, "Path Control Size"),
    Number(1, "DIO Interval Doublings"), Number(1, "DIO Interval Minimum"), Number(1, "DIO Redundancy Constant"),
    Number(2, "Maximum Rank Increase"), Number(2, "Minimum Hop Rank Increase"),
    Number(2, "Objective Code Point", kObjectiveNames).Note(", %s"), Hex(1, "Reserved"), Number(1, "Default Lifetime"),
    Number(2, "Lifetime Unit", " seconds")});
constexpr auto kTargetHead = Rows<Rpl>({Hex(1, "Flags"), Number(1, "Prefix Length").Into(&Rpl::bits)});
constexpr auto kTransit = Rows<Rpl>({
    Hex(1, "Flags"), Flag(0, "External"), Flag(1, "Invalidate Previous Route"), Bits(2, 6, "Reserved"),
    Number(1, "Path Control"), Number(1, "Path Sequence"), Number(1, "Path Lifetime").Note(", Lifetime %u")});
constexpr auto kParent = Rows<Rpl>({IPv6("Parent Address").Note(", %s")});
constexpr auto kSolicited = Rows<Rpl>({
    Number(1, "RPL Instance ID"), Hex(1, "Flags"), Flag(0, "Version Predicate"), Flag(1, "Instance ID Predicate"),
    Flag(2, "DODAG ID Predicate"), Bits(3, 5, "Reserved"), IPv6("DODAG ID").Note(", %s"), Number(1, "Version Number")});
constexpr auto kPrefix = Rows<Rpl>({
    Number(1, "Prefix Length"), Hex(1, "Flags"), Flag(0, "On-Link"), Flag(1, "Autonomous Address Configuration"),
    Flag(2, "Router Address"), Bits(3, 5, "Reserved"), Number(4, "Valid Lifetime", " seconds"),
    Number(4, "Preferred Lifetime", " seconds"), Hex(4, "Reserved"), IPv6("Prefix").Note(", %s")});
constexpr auto kDescriptor = Rows<Rpl>({Hex(4, "Descriptor")});
constexpr auto kDiscovery = Rows<Rpl>({
    Word(1), Flag(0, "Reply"), Flag(1, "Hop-by-Hop"), Bits(2, 2, "Number of Routes"),
    Bits(4, 4, "Compression").Into(&Rpl::compression), Word(1), Bits(0, 2, "Lifetime"), Bits(2, 6, "Maximum Rank")});

constexpr auto kMetricHead = Rows<Rpl>({
    Number(1, "Metric Type", kMetricNames).Into(&Rpl::type), Hex(2, "Flags"), Bits(0, 5, "Reserved"),
    Flag(5, "Partial Recording"), Flag(6, "Constraint").Into(&Rpl::constraint), Flag(7, "Optional"),
    Flag(8, "Recorded"), Bits(9, 3, "Aggregation", kAggregationNames), Bits(12, 4, "Precedence"),
    Number(1, "Metric Length").Into(&Rpl::length)});
constexpr auto kNodeState = Rows<Rpl>({
    Hex(1, "Reserved"), Word(1), Bits(0, 6, "Reserved"), Flag(6, "Data Aggregation"), Flag(7, "Overloaded")});
constexpr auto kEnergy = Rows<Rpl>({
    Word(2), Bits(0, 4, "Reserved"), Flag(4, "Include"), Bits(5, 2, "Energy Type", kEnergyNames),
    Flag(7, "Estimation Present"), Bits(8, 8, "Energy Estimation")});
constexpr auto kHops = Rows<Rpl>({Word(2), Bits(0, 4, "Reserved"), Bits(4, 4, "Flags"), Bits(8, 8, "Hop Count").Note(", %u")});
constexpr auto kThroughput = Rows<Rpl>({Number(4, "Throughput", " bytes per second").Note(", %u")});
constexpr auto kLatency = Rows<Rpl>({Number(4, "Latency", " microseconds").Note(", %u")});
constexpr auto kReserved = Rows<Rpl>({Hex(1, "Reserved")});
constexpr auto kQuality = Rows<Rpl>({Word(1), Bits(0, 3, "Link Quality Level"), Bits(3, 5, "Counter")});
constexpr auto kTransmissions = Rows<Rpl>({Number(2, "Expected Transmissions", " / 128").Note(", %u / 128")});
constexpr auto kColor = Rows<Rpl>({Word(2), Bits(0, 10, "Link Color"), Bits(10, 6, "Counter")});
constexpr auto kColorLimit = Rows<Rpl>({Word(2), Bits(0, 10, "Link Color"), Bits(10, 5, "Reserved"), Flag(15, "Include")});

template <const auto& rows>
void ShowEach(const Place& in, Cursor& c, Rpl& rpl) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Rpl>(in, c, rows, rpl);
}

void ShowMetricBody(const Place& in, Cursor& c, Rpl& rpl) {
  switch (rpl.type.value) {
    case 1: ShowRows<Rpl>(in, c, kNodeState, rpl); break;
    case 2: ShowEach<kEnergy>(in, c, rpl); break;
    case 3: ShowRows<Rpl>(in, c, kHops, rpl); break;
    case 4: ShowEach<kThroughput>(in, c, rpl); break;
    case 5: ShowEach<kLatency>(in, c, rpl); break;
    case 6:
      ShowRows<Rpl>(in, c, kReserved, rpl);
      ShowEach<kQuality>(in, c, rpl);
      break;
    case 7: ShowEach<kTransmissions>(in, c, rpl); break;
    case 8:
      ShowRows<Rpl>(in, c, kReserved, rpl);
      if (rpl.constraint.value) ShowRows<Rpl>(in, c, kColorLimit, rpl);
      else ShowEach<kColor>(in, c, rpl);
      break;
    default: break;
  }
}
void ShowMetrics(const Place& at, Cursor& c, Rpl& rpl) {
  constexpr int32_t kHead = 4;
  Loop loop;
  while (Left(c) >= kHead && MoreAt(at, c, loop)) {
    Cursor metric = TakeCursor(c, kHead + int64_t{PeekU8(c, 3)});
    const Place in = Under(at, AddLine(at, Ahead(metric, Left(metric)), "Metric: %s",
                                       LookupName(kMetricNames, PeekU8(metric))));
    ShowRows<Rpl>(in, metric, kMetricHead, rpl);
    ShowMetricBody(in, metric, rpl);
    metric.ranShort = false;   // what is left of a metric that is cut
    AddBlock(in, Rest(metric), "Metric Data");
  }
}

// A prefix in as many octets as the option has, up to those that its length needs.
void ShowPrefix(const Place& in, Cursor& c, const char* label, uint32_t bits) {
  const int32_t wanted = static_cast<int32_t>((bits + 7) / 8);
  const Field taken = TakeBytes(c, wanted < Left(c) ? wanted : Left(c));
  uint8_t prefix[16] = {};
  for (int32_t i = 0; i < taken.length && i < 16; ++i) prefix[i] = static_cast<uint8_t>(PeekU8(taken, i));
  const Field line = taken.length ? taken : Stated(c.offset, 0);
  AddLine(in, line, "%s: %s/%u", label, IPv6Text(prefix), bits);
  AppendToParent(in, line, ", %s/%u", IPv6Text(prefix), bits);
}
// keys: text Prefix, Target
void ShowRoute(const Place& in, Cursor& c, Rpl& rpl) { ShowPrefix(in, c, "Prefix", rpl.bits.value); }
void ShowTarget(const Place& in, Cursor& c, Rpl& rpl) { ShowPrefix(in, c, "Target", rpl.bits.value); }
void ShowParent(const Place& in, Cursor& c, Rpl& rpl) {
  if (Left(c) >= 16) ShowRows<Rpl>(in, c, kParent, rpl);
}

// Addresses without the octets that they share with the root's.
void ShowDiscovery(const Place& in, Cursor& c, Rpl& rpl) {
  const int32_t size = 16 - static_cast<int32_t>(rpl.compression.value);
  const Field target = TakeBytes(c, size);
  AddLine(in, target, "Target Address: %s", HexText(target));
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) {
    const Field address = TakeBytes(c, size);
    AddLine(in, address, "Address: %s", HexText(address));
  }
}

constexpr auto kOptions = Choices<Rpl>({
    {0, "Pad1"}, {1, "PadN", kZeros}, {2, "DAG Metric Container", {}, ShowMetrics},
    {3, "Route Information", kRouteHead, ShowRoute}, {4, "DODAG Configuration", kConfiguration},
    {5, "RPL Target", kTargetHead, ShowTarget}, {6, "Transit Information", kTransit, ShowParent},
    {7, "Solicited Information", kSolicited}, {8, "Prefix Information", kPrefix}, {9, "RPL Target Descriptor", kDescriptor},
    {10, "P2P Route Discovery", kDiscovery, ShowDiscovery}});

// --- Messages ---

RowSpan<Rpl> BaseOf(uint32_t code) {
  switch (code) {
    case kSolicitation: return kSolicitationBase;
    case kObject: return kObjectBase;
    case kAdvertisement: return kAdvertisementBase;
    case kAcknowledgement: return kAcknowledgementBase;
    case kDiscoveryReply: return kReplyBase;
    case kDiscoveryAck: return kReplyAckBase;
    case kCleanup: return kCleanupBase;
    case kCleanupAck: return kCleanupAckBase;
    case kConsistency: return kConsistencyBase;
    default: return {};
  }
}

// Result: the octets of the authentication code behind the message; -1 for a message that is encrypted.
int32_t ShowSecurity(const Place& at, Cursor& c, Rpl& rpl) {
  constexpr uint32_t kByIndex = 0, kBySource = 2, kSignature = 3;
  constexpr int32_t kSizes[2][2] = {{4, 8}, {384, 256}};
  const Cursor start = c;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Security"));
  ShowRows<Rpl>(in, c, kSecurity, rpl);
  const uint32_t mode = rpl.mode.value, level = rpl.level.value;
  const bool encrypted = level & 1;
  if (mode == kBySource || (mode == kSignature && encrypted)) ShowRows<Rpl>(in, c, kKeySource, rpl);
  if (mode == kByIndex || mode == kBySource || (mode == kSignature && encrypted)) ShowRows<Rpl>(in, c, kKeyIndex, rpl);
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  return encrypted ? -1 : level < 4 ? kSizes[mode == kSignature][level / 2] : 0;
}

constexpr auto kOptionFlags = Rows<Rpl>({
    Hex(1, "Flags"), Flag(0, "Down"), Flag(1, "Rank Error"), Flag(2, "Forwarding Error"), Bits(3, 5, "Reserved"),
    Number(1, "RPL Instance ID").Note(", Instance %u"), Number(2, "Sender Rank").Note(", Rank %u")});
constexpr auto kRouteFields = Rows<Rpl>({
    Word(4), Bits(0, 4, "Compressed Octets").Into(&Rpl::compression),
    Bits(4, 4, "Compressed Octets of the Last").Into(&Rpl::level), Bits(8, 4, "Padding").Into(&Rpl::length),
    Bits(12, 20, "Reserved")});

}  // namespace

const char* RplCodeName(uint32_t code) { return LookupName(kCodeNames, code); }

void DecodeRpl(const Place& in, Cursor& c, Icmpv6Message& message) {
  constexpr ElementForm kForm{.padType = 0};
  const KeyedAs keys(PacketOf(in), "rpl");
  Rpl rpl{};
  int32_t trailer = 0;
  if (message.code & kSecure) trailer = ShowSecurity(in, c, rpl);
  if (trailer < 0) {
    AddBlock(in, Rest(c), "Encrypted Message");
    return;
  }
  Cursor body = TakeCursor(c, Left(c) - trailer);
  const RowSpan<Rpl> base = BaseOf(message.code & ~kSecure);
  ShowRows<Rpl>(in, body, base, rpl);
  if (rpl.hasRoot.value) ShowRows<Rpl>(in, body, kRoot, rpl);
  if (base.count) ShowElements<Rpl>(in, body, kForm, "Option", kOptions, rpl);
  body.ranShort = false;
  AddBlock(in, Rest(body), "RPL Data");
  const Field code = Rest(c);
  AddLine(in, code, "Authentication Code: %s", HexText(code));
}

void ShowRplOption(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "rpl");
  ShowRows(in, c, kOptionFlags);
}

// Addresses leave out the octets that they share with the destination.
void ShowRplRoute(const Place& in, Cursor& c, HeaderChain& chain, uint32_t segmentsLeft) {
  const KeyedAs keys(PacketOf(in), "rpl");
  const Rpl rpl = ShowRows(in, c, kRouteFields);
  const int32_t padding = static_cast<int32_t>(rpl.length.value);
  Cursor addresses = TakeCursor(c, Left(c) - padding);
  const int32_t size = 16 - static_cast<int32_t>(rpl.compression.value);
  const int32_t lastSize = 16 - static_cast<int32_t>(rpl.level.value);
  uint32_t number = 0;
  Loop loop;
  while (MoreAt(in, addresses, loop)) {
    const bool isLast = Left(addresses) < size + lastSize;
    const Field taken = TakeBytes(addresses, isLast ? lastSize : size);
    if (!taken.here) break;
    const int32_t shared = 16 - taken.length;
    uint8_t address[16];
    for (int32_t i = 0; i < 16; ++i) {
      address[i] = i < shared ? (chain.destination ? chain.destination[i] : uint8_t{0})
                              : static_cast<uint8_t>(PeekU8(taken, i - shared));
    }
    AddLine(in, taken, "Address %2u: %s", ++number, IPv6Text(address));
    if (isLast && shared == 0 && segmentsLeft > 0) chain.destination = taken.bytes;
  }
  addresses.ranShort = false;
  AddBlock(in, Rest(addresses), "Address Data");
  const Field pad = Rest(c);
  AddLine(in, pad, "Padding: %s", HexText(pad));
}

}  // namespace qxview
