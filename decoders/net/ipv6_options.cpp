// What options and routing headers of IPv6 hold: router alert (RFC 2711), tunnel limit (RFC 2473), jumbo payloads (RFC 2675),
// CALIPSO (RFC 5570), duplicate detection (RFC 6621), delays (RFC 8250), in-situ OAM (RFC 9486, RFC 9197), marking
// (RFC 9343), path MTU (RFC 9268), Quick-Start (RFC 4782), MPL (RFC 7731), ILNP (RFC 6744), line identification
// (RFC 6788), depth-first forwarding (RFC 6971); segment routing (RFC 8754) and compact routing headers (RFC 9631).
#include "core/elements.h"
#include "decoders/net/ipv6_extensions.h"

namespace qxview {
namespace {

struct Option {
  Field word, type, remaining, flags;
};

const char* AlertName(uint32_t value) {
  static constexpr auto kNames = SortedNames({
      {0, "Multicast Listener Discovery"}, {1, "RSVP"}, {2, "Active Networks"}, {3, "Reserved"},
      {68, "NSIS NATFW NSLP"}, {69, "MPLS OAM"}, {65535, "Reserved"}});
  if (value >= 4 && value <= 35) return "Aggregated Reservation Nesting Level";
  if (value >= 36 && value <= 67) return "QoS NSLP Aggregation Level";
  return LookupName(kNames, value, "Unassigned");
}

constexpr auto kTunnelLimit = Rows<Option>({Number(1, "Tunnel Encapsulation Limit")});
constexpr auto kRouterAlert = Rows<Option>({Number(2, "Router Alert", AlertName)});
constexpr auto kJumbo = Rows<Option>({Number(4, "Jumbo Payload Length")});
constexpr auto kLabel = Rows<Option>({
    Number(4, "Domain of Interpretation"), Number(1, "Compartment Length", " * 4 bytes"),
    Number(1, "Sensitivity Level"), Hex(2, "Checksum"), Bytes(0, "Compartment Bitmap")});
constexpr auto kMetrics = Rows<Option>({
    Number(1, "Scale of Delta Time Last Received"), Number(1, "Scale of Delta Time Last Sent"),
    Number(2, "Packet Sequence Number This Packet"), Number(2, "Packet Sequence Number Last Received"),
    Number(2, "Delta Time Last Received"), Number(2, "Delta Time Last Sent")});
constexpr auto kMarking = Rows<Option>({
    Word(4), Bits(0, 20, "Flow Monitoring Identification"), Flag(20, "Loss"), Flag(21, "Delay"), Bits(22, 10, "Reserved")});
constexpr auto kPathMtu = Rows<Option>({
    Number(2, "Minimum Path MTU"), Word(2), Bits(0, 15, "Returned Path MTU", " * 2 bytes"), Flag(15, "Return")});
constexpr auto kNonce = Rows<Option>({Bytes(0, "Nonce")});
constexpr auto kEndpoint = Rows<Option>({Bytes(0, "Endpoint Identification")});
constexpr auto kExperiment = Rows<Option>({Bytes(0, "Experimental Data")});
constexpr auto kForwarding = Rows<Option>({
    Word(1), Bits(0, 2, "Version"), Flag(2, "Duplicate"), Flag(3, "Return"), Bits(4, 4, "Reserved"),
    Number(2, "Sequence Number")});
constexpr auto kLine = Rows<Option>({Counted(1, Text(0, "Line ID"))});

void ShowDuplicateDetection(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kHash = Rows<Option>({Word(1), Flag(0, "Hash Assist")});
  static constexpr auto kHashValue = Rows<Option>({Bytes(0, "Hash Assist Value")});
  static constexpr auto kTaggerNames = SortedNames({{0, "None"}, {1, "Default"}, {2, "IPv4 Address"},
                                                    {3, "IPv6 Address"}});
  static constexpr auto kTagged = Rows<Option>({
      Word(1), Flag(0, "Hash Assist"), Bits(1, 3, "Tagger ID Type", kTaggerNames).Into(&Option::type),
      Bits(4, 4, "Tagger ID Length").Into(&Option::word)});
  static constexpr auto kTagger = Rows<Option>({Bytes(0, "Tagger ID").SizedBy(&Option::word)});
  static constexpr auto kIdentifier = Rows<Option>({Bytes(0, "Identifier")});
  if (PeekU8(c) & 0x80) {
    Cursor first = c;   // the bit belongs to the value, too
    ShowRows<Option>(in, first, kHash, option);
    return ShowRows<Option>(in, c, kHashValue, option);
  }
  ShowRows<Option>(in, c, kTagged, option);
  option.word.value += 1;
  if (option.type.value) ShowRows<Option>(in, c, kTagger, option);
  ShowRows<Option>(in, c, kIdentifier, option);
}

void ShowQuickStart(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kFunctions = SortedNames({{0, "Rate Request"}, {8, "Report of Approved Rate"}});
  static constexpr auto kRows = Rows<Option>({
      Word(1), Bits(0, 4, "Function", kFunctions), Bits(4, 4, "Rate"), Number(1, "Quick-Start TTL"), Word(4),
      Bits(0, 30, "Quick-Start Nonce"), Bits(30, 2, "Reserved")});
  ShowRows<Option>(in, c, kRows, option);
}

void ShowMulticastForwarding(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kSeeds = SortedNames({{0, "IPv6 Source Address"}, {1, "16 bits"}, {2, "64 bits"}, {3, "128 bits"}});
  static constexpr auto kRows = Rows<Option>({
      Word(1), Bits(0, 2, "Seed ID Length", kSeeds), Flag(2, "Largest Sequence"), Bits(3, 1, "Version"),
      Bits(4, 4, "Reserved"), Number(1, "Sequence")});
  static constexpr auto kSeed = Rows<Option>({Bytes(0, "Seed ID")});
  ShowRows<Option>(in, c, kRows, option);
  if (Left(c) > 0) ShowRows<Option>(in, c, kSeed, option);
}

// In-situ OAM.
constexpr auto kTraceTypes = SortedNames({
    {0x000001, "Reserved"}, {0x000002, "Opaque State Snapshot"}, {0x001000, "Buffer Occupancy"},
    {0x002000, "Namespace Specific Data, Wide"}, {0x004000, "Ingress and Egress Interfaces, Wide"},
    {0x008000, "Hop Limit and Node ID, Wide"}, {0x010000, "Checksum Complement"}, {0x020000, "Queue Depth"},
    {0x040000, "Namespace Specific Data"}, {0x080000, "Transit Delay"}, {0x100000, "Timestamp Fraction"},
    {0x200000, "Timestamp Seconds"}, {0x400000, "Ingress and Egress Interfaces"}, {0x800000, "Hop Limit and Node ID"}});
constexpr uint32_t kSnapshot = 0x000002;
constexpr auto kTraceHead = Rows<Option>({
    Number(2, "Namespace ID"), Word(2), Bits(0, 5, "Node Data Length", " * 4 bytes").Into(&Option::word),
    Flag(5, "Overflow"), Flag(6, "Loopback"), Flag(7, "Active"), Bits(8, 1, "Reserved"),
    Bits(9, 7, "Remaining Length", " * 4 bytes").Into(&Option::remaining),
    Flags(3, "Trace Type", kTraceTypes).Into(&Option::type), Hex(1, "Reserved")});

// What a node adds for each bit of the type, from the highest on.
constexpr auto kNode = Rows<Option>({Number(1, "Hop Limit"), Hex(3, "Node ID")});
constexpr auto kInterfaces = Rows<Option>({Number(2, "Ingress Interface"), Number(2, "Egress Interface")});
constexpr auto kSeconds = Rows<Option>({Number(4, "Timestamp Seconds")});
constexpr auto kFraction = Rows<Option>({Number(4, "Timestamp Fraction")});
constexpr auto kDelay = Rows<Option>({Word(4), Flag(0, "Delay Overflow"), Bits(1, 31, "Transit Delay")});
constexpr auto kSpecific = Rows<Option>({Hex(4, "Namespace Specific Data")});
constexpr auto kQueue = Rows<Option>({Number(4, "Queue Depth")});
constexpr auto kComplement = Rows<Option>({Hex(4, "Checksum Complement")});
constexpr auto kWideNode = Rows<Option>({Number(1, "Hop Limit"), Hex(7, "Node ID")});
constexpr auto kWideInterfaces = Rows<Option>({Number(4, "Ingress Interface"), Number(4, "Egress Interface")});
constexpr auto kWideSpecific = Rows<Option>({Hex(8, "Namespace Specific Data")});
constexpr auto kOccupancy = Rows<Option>({Number(4, "Buffer Occupancy")});
constexpr auto kUndefinedData = Rows<Option>({Hex(4, "Undefined Data")});
constexpr RowSpan<Option> kNodeParts[] = {kNode, kInterfaces, kSeconds, kFraction, kDelay, kSpecific, kQueue, kComplement,
                                          kWideNode, kWideInterfaces, kWideSpecific, kOccupancy};

void ShowNodeData(const Place& in, Cursor c, Option& option) {
  for (uint32_t bit = 0; bit < 22; ++bit) {
    if (!(option.type.value >> (23 - bit) & 1)) continue;
    ShowRows<Option>(in, c, bit < 12 ? kNodeParts[bit] : RowSpan<Option>(kUndefinedData), option);
  }
  AddBlock(in, Rest(c), "Node Data");
}

// A node's opaque state: length in words, schema, data. Its size is the node's own.
void ShowSnapshot(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kRows = Rows<Option>({Number(1, "Snapshot Length", " * 4 bytes").Into(&Option::flags),
                                              Hex(3, "Schema ID")});
  static constexpr auto kData = Rows<Option>({Bytes(0, "Snapshot Data").SizedBy(&Option::flags)});
  ShowRows<Option>(in, c, kRows, option);
  option.flags.value *= 4;
  if (option.flags.value) ShowRows<Option>(in, c, kData, option);
}

void ShowTrace(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kFree = Rows<Option>({Bytes(0, "Free Space").SizedBy(&Option::remaining)});
  const bool isPreallocated = option.flags.value == 0;
  ShowRows<Option>(in, c, kTraceHead, option);
  option.remaining.value *= 4;
  if (isPreallocated && option.remaining.value) ShowRows<Option>(in, c, kFree, option);
  const int32_t size = static_cast<int32_t>(option.word.value) * 4;
  Loop loop;
  for (uint32_t number = 1; size > 0 && Left(c) >= size && MoreAt(in, c, loop); ++number) {
    const Place node = Under(in, AddLine(in, Ahead(c, size), "Node %u", number));
    ShowNodeData(node, TakeCursor(c, size), option);
    if (option.type.value & kSnapshot) ShowSnapshot(node, c, option);
  }
}

void ShowProof(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kRows = Rows<Option>({
      Number(2, "Namespace ID"), Number(1, "Proof of Transit Type"), Hex(1, "Flags"), Hex(8, "Packet ID"),
      Hex(8, "Cumulative")});
  ShowRows<Option>(in, c, kRows, option);
}

void ShowEdgeToEdge(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kTypes = SortedNames({{0x1000, "Timestamp Fraction"}, {0x2000, "Timestamp Seconds"},
                                              {0x4000, "Sequence Number of 4 Octets"}, {0x8000, "Sequence Number of 8 Octets"}});
  static constexpr auto kHead = Rows<Option>({
      Number(2, "Namespace ID"), Flags(2, "Edge-to-Edge Type", kTypes).Into(&Option::type)});
  static constexpr auto kLong = Rows<Option>({Number(8, "Sequence Number")});
  static constexpr auto kShort = Rows<Option>({Number(4, "Sequence Number")});
  ShowRows<Option>(in, c, kHead, option);
  const RowSpan<Option> parts[] = {kLong, kShort, kSeconds, kFraction};
  for (uint32_t bit = 0; bit < 4; ++bit) {
    if (option.type.value >> (15 - bit) & 1) ShowRows<Option>(in, c, parts[bit], option);
  }
}

void ShowDirectExport(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kHead = Rows<Option>({
      Number(2, "Namespace ID"), Hex(1, "Flags"), Hex(1, "Extension Flags").Into(&Option::flags),
      Flags(3, "Trace Type", kTraceTypes), Hex(1, "Reserved")});
  static constexpr auto kFlow = Rows<Option>({Number(4, "Flow ID")});
  static constexpr auto kSequence = Rows<Option>({Number(4, "Sequence Number")});
  ShowRows<Option>(in, c, kHead, option);
  if (option.flags.value & 0x80) ShowRows<Option>(in, c, kFlow, option);
  if (option.flags.value & 0x40) ShowRows<Option>(in, c, kSequence, option);
}

constexpr auto kOamTypes = Choices<Option>({
    {0, "Pre-allocated Trace", {}, ShowTrace}, {1, "Incremental Trace", {}, ShowTrace},
    {2, "Proof of Transit", {}, ShowProof}, {3, "Edge-to-Edge", {}, ShowEdgeToEdge},
    {4, "Direct Export", {}, ShowDirectExport}});

void ShowOam(const Place& in, Cursor& c, Option& option) {
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved: 0x%.02X", reserved.value);
  const Field type = option.flags = TakeU8(c);
  const Choice<Option>* known = FindChoice<Option>(kOamTypes, type.value);
  AddLine(in, type, "OAM Option Type: %u = %s", type.value, known ? known->name : kUnknown);
  ShowChoice(in, c, known, option);
}

constexpr auto kOptions = Choices<Option>({
    {0x04, "Tunnel Encapsulation Limit", kTunnelLimit}, {0x05, "Router Alert", kRouterAlert}, {0x07, "CALIPSO", kLabel},
    {0x08, "SMF Duplicate Packet Detection", {}, ShowDuplicateDetection},
    {0x0F, "Performance and Diagnostic Metrics", kMetrics}, {0x11, "In Situ OAM", {}, ShowOam},
    {0x12, "Alternate Marking", kMarking}, {0x1E, "Experiment", kExperiment}, {0x26, "Quick-Start", {}, ShowQuickStart},
    {0x30, "Minimum Path MTU", kPathMtu}, {0x31, "In Situ OAM", {}, ShowOam}, {0x32, "Alternate Marking", kMarking},
    {0x3E, "Experiment", kExperiment}, {0x5E, "Experiment", kExperiment}, {0x6D, "MPL", {}, ShowMulticastForwarding},
    {0x7E, "Experiment", kExperiment}, {0x8A, "Endpoint Identification", kEndpoint}, {0x8B, "ILNP Nonce", kNonce},
    {0x8C, "Line Identification", kLine}, {0x9E, "Experiment", kExperiment}, {0xBE, "Experiment", kExperiment},
    {0xC2, "Jumbo Payload", kJumbo}, {0xDE, "Experiment", kExperiment}, {0xEE, "Depth-First Forwarding", kForwarding},
    {0xFE, "Experiment", kExperiment}});

// Behind the segments of a segment routing header.
constexpr auto kHmac = Rows<Option>({
    Word(2), Flag(0, "Destination Address Verification Disabled"), Bits(1, 15, "Reserved"), Hex(4, "HMAC Key ID"),
    Bytes(0, "HMAC")});
constexpr auto kPadding = Rows<Option>({Bytes(0, "Padding")});
constexpr auto kNodeAddress = Rows<Option>({Hex(1, "Reserved"), Hex(1, "Flags"), IPv6("Node")});
constexpr auto kContainer = Rows<Option>({Hex(1, "Reserved"), Hex(1, "Flags"), Bytes(16, "Container")});
constexpr auto kSegmentElements = Choices<Option>({
    {0, "Pad1"}, {1, "Ingress Node", kNodeAddress}, {2, "Egress Node", kNodeAddress},
    {3, "Opaque Container", kContainer}, {4, "PadN", kPadding}, {5, "HMAC", kHmac}, {6, "NSH Carrier"},
    {124, "Experiment"}, {125, "Experiment"}, {126, "Experiment"}, {252, "Experiment"}, {253, "Experiment"},
    {254, "Experiment"}});

}  // namespace

bool ShowIPv6Option(const Place& in, uint32_t type, Cursor& c) {
  const Choice<Option>* known = FindChoice<Option>(kOptions, type);
  if (!known) return false;
  Option option{};
  ShowRows<Option>(in, c, known->rows, option);
  if (known->show) known->show(in, c, option);
  c.ranShort = false;   // what is left of a field that is cut
  return true;
}

void ShowSegmentRoute(const Place& in, Cursor& c, HeaderChain& chain, uint32_t segmentsLeft) {
  static constexpr auto kHead = Rows<Option>({
      Number(1, "Last Entry").Into(&Option::word), Hex(1, "Flags"), Hex(2, "Tag")});
  static constexpr ElementForm kForm{.padType = 0};
  if (segmentsLeft > 0 && Left(c) >= 4 + 16) {
    chain.destination = PeekBytes(c, 4, 16).bytes;   // the list of segments is in reverse order
  }
  Option route{};
  ShowRows<Option>(in, c, kHead, route);
  for (uint32_t number = 0; number <= route.word.value && Left(c) >= 16; ++number) {
    const Field segment = TakeBytes(c, 16);
    AddLine(in, segment, "Segment %u: %s", number, IPv6Text(segment.bytes));
  }
  ShowElements(in, c, kForm, "TLV", kSegmentElements, route);
}

void ShowCompactRoute(const Place& in, Cursor& c, bool isWide) {
  static constexpr auto kNarrow = Rows<NoValues>({Number(2, "Segment Identifier")});
  static constexpr auto kWide = Rows<NoValues>({Number(4, "Segment Identifier")});
  NoValues none;
  for (Loop loop; Left(c) >= (isWide ? 4 : 2) && MoreAt(in, c, loop);) {
    ShowRows<NoValues>(in, c, isWide ? RowSpan<NoValues>(kWide) : RowSpan<NoValues>(kNarrow), none);
  }
}

}  // namespace qxview
