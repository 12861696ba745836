// NetFlow: which flows did a router see? Versions 1, 5, 7 and 8, whose records are fixed (as their exporters document
// them); version 9 (RFC 3954) and what came of it, IPFIX, stand in ipfix.cpp.
#include "decoders/app/flow_elements.h"
#include "decoders/app/flow_templates.h"

namespace qxview {

int32_t DecodeIpfix(const Place& at, Cursor c);

namespace {

constexpr auto kSamplingModeNames = SortedNames({
    {0, "No Sampling"}, {1, "Packet Interval Sampling"}, {2, "Random Sampling"}});
constexpr auto kEngineNames = SortedNames({{0, "RP"}, {1, "VIP/Linecard"}, {2, "PFC/DFC"}});
constexpr auto kAggregationNames = SortedNames({
    {1, "Router AS"}, {2, "Router Protocol and Port"}, {3, "Router Source Prefix"}, {4, "Router Destination Prefix"},
    {5, "Router Prefix"}, {6, "Destination Only"}, {7, "Source and Destination"}, {8, "Full Flow"},
    {9, "Router ToS AS"}, {10, "Router ToS Protocol and Port"}, {11, "Router ToS Source Prefix"},
    {12, "Router ToS Destination Prefix"}, {13, "Router ToS Prefix"}, {14, "Router Prefix, Protocol and Port"}});

struct Flow {
  Field count, scheme;
  Field source, destination, sourcePort, destinationPort, protocol;
  uint64_t packets, octets;
};

constexpr auto kStart = Rows<Flow>({
    Number(2, "Version"), Number(2, "Count").Into(&Flow::count), Number(4, "System Uptime", " milliseconds"),
    UnixTime(4, "Unix Seconds"), Number(4, "Unix Nanoseconds")});
constexpr auto kSequence = Rows<Flow>({Number(4, "Flow Sequence")});
constexpr auto kEngine = Rows<Flow>({Number(1, "Engine Type", kEngineNames), Number(1, "Engine ID")});
constexpr auto kSampling = Rows<Flow>({
    Word(2), Bits(0, 2, "Sampling Mode", kSamplingModeNames), Bits(2, 14, "Sampling Interval")});
constexpr auto kAggregation = Rows<Flow>({
    Number(1, "Aggregation", kAggregationNames).Note(", %s").Into(&Flow::scheme), Number(1, "Aggregation Version")});
constexpr auto kReserved4 = Rows<Flow>({Bytes(4, "Reserved")});

// Pieces that records are made of.
constexpr auto kAddresses = Rows<Flow>({
    IPv4("Source Address").Into(&Flow::source), IPv4("Destination Address").Into(&Flow::destination)});
constexpr auto kNextHop = Rows<Flow>({
    IPv4("Next Hop"), Number(2, "Input Interface"), Number(2, "Output Interface")});
constexpr auto kCounters = Rows<Flow>({
    Number(4, "Packets").Into(&Flow::packets), Number(4, "Octets").Into(&Flow::octets),
    Number(4, "First Switched", " milliseconds"), Number(4, "Last Switched", " milliseconds")});
constexpr auto kPorts = Rows<Flow>({
    Number(2, "Source Port").Into(&Flow::sourcePort), Number(2, "Destination Port").Into(&Flow::destinationPort)});
constexpr auto kSystems = Rows<Flow>({Number(2, "Source AS"), Number(2, "Destination AS")});
constexpr auto kInterfaces = Rows<Flow>({Number(2, "Input Interface"), Number(2, "Output Interface")});
constexpr auto kOutputFirst = Rows<Flow>({Number(2, "Output Interface"), Number(2, "Input Interface")});
constexpr auto kMasks = Rows<Flow>({Number(1, "Source Mask"), Number(1, "Destination Mask")});
constexpr auto kFlowCount = Rows<Flow>({Number(4, "Flows")});
constexpr auto kPadding1 = Rows<Flow>({Bytes(1, "Padding")});
constexpr auto kPadding2 = Rows<Flow>({Bytes(2, "Padding")});
constexpr auto kProtocol = Rows<Flow>({Number(1, "Protocol", FlowProtocolName).Into(&Flow::protocol)});
constexpr auto kService = Rows<Flow>({Hex(1, "Type of Service")});
constexpr auto kMarkedService = Rows<Flow>({Hex(1, "Marked Type of Service")});
constexpr auto kTcpFlags = Rows<Flow>({Flags(1, "TCP Flags", kFlowTcpFlagNames)});
constexpr auto kSourcePrefix = Rows<Flow>({IPv4("Source Prefix"), Number(1, "Source Mask")});
constexpr auto kDestinationPrefix = Rows<Flow>({IPv4("Destination Prefix"), Number(1, "Destination Mask")});
constexpr auto kPrefixes = Rows<Flow>({
    IPv4("Source Prefix"), IPv4("Destination Prefix"), Number(1, "Destination Mask"), Number(1, "Source Mask")});
constexpr auto kExtraPackets = Rows<Flow>({Number(4, "Extra Packets"), IPv4("Router Shortcut")});
constexpr auto kDestination = Rows<Flow>({IPv4("Destination Address").Into(&Flow::destination)});
constexpr auto kSource = Rows<Flow>({IPv4("Source Address").Into(&Flow::source)});
constexpr auto kPortsBack = Rows<Flow>({
    Number(2, "Destination Port").Into(&Flow::destinationPort), Number(2, "Source Port").Into(&Flow::sourcePort)});
constexpr auto kSourceSystem = Rows<Flow>({Number(2, "Source AS"), Number(2, "Input Interface")});
constexpr auto kDestinationSystem = Rows<Flow>({Number(2, "Destination AS"), Number(2, "Output Interface")});
constexpr auto kOutput = Rows<Flow>({Number(2, "Output Interface")});
constexpr auto kRetransmissions = Rows<Flow>({
    Number(1, "TCP Retransmissions"), Number(1, "TCP Retransmission Seconds"), Number(1, "TCP Missequenced Packets"),
    Bytes(4, "Reserved")});
constexpr auto kShortcut = Rows<Flow>({Hex(2, "Flags (Invalid Fields)"), IPv4("Router Shortcut")});
constexpr auto kValidFields = Rows<Flow>({Hex(1, "Flags (Invalid Fields)")});

// The headers and records of the versions, piece by piece.
constexpr int32_t kMostPieces = 11;
struct Layout {
  int32_t length;
  RowSpan<Flow> pieces[kMostPieces];
};
constexpr Layout kHeader1{16, {kStart}};
constexpr Layout kHeader5{24, {kStart, kSequence, kEngine, kSampling}};
constexpr Layout kHeader7{24, {kStart, kSequence, kReserved4}};
constexpr Layout kHeader8{28, {kStart, kSequence, kEngine, kAggregation, kReserved4}};
constexpr Layout kRecord1{48, {kAddresses, kNextHop, kCounters, kPorts, kPadding2, kProtocol, kService, kTcpFlags,
                               kRetransmissions}};
constexpr Layout kRecord5{48, {kAddresses, kNextHop, kCounters, kPorts, kPadding1, kTcpFlags, kProtocol, kService,
                               kSystems, kMasks, kPadding2}};
constexpr Layout kRecord7{52, {kAddresses, kNextHop, kCounters, kPorts, kValidFields, kTcpFlags, kProtocol, kService,
                               kSystems, kMasks, kShortcut}};
constexpr Layout kRecords8[] = {
    {28, {kFlowCount, kCounters, kSystems, kInterfaces}},
    {28, {kFlowCount, kCounters, kProtocol, kPadding1, kPadding2, kPorts}},
    {32, {kFlowCount, kCounters, kSourcePrefix, kPadding1, kSourceSystem, kPadding2}},
    {32, {kFlowCount, kCounters, kDestinationPrefix, kPadding1, kDestinationSystem, kPadding2}},
    {40, {kFlowCount, kCounters, kPrefixes, kPadding2, kSystems, kInterfaces}},
    {32, {kDestination, kCounters, kOutput, kService, kMarkedService, kExtraPackets}},
    {40, {kDestination, kSource, kCounters, kOutputFirst, kService, kMarkedService, kPadding2, kExtraPackets}},
    {44, {kDestination, kSource, kPortsBack, kCounters, kOutputFirst, kService, kProtocol, kMarkedService, kPadding1,
          kExtraPackets}},
    {32, {kFlowCount, kCounters, kSystems, kInterfaces, kService, kPadding1, kPadding2}},
    {32, {kFlowCount, kCounters, kProtocol, kService, kPadding2, kPorts, kInterfaces}},
    {32, {kFlowCount, kCounters, kSourcePrefix, kService, kSourceSystem, kPadding2}},
    {32, {kFlowCount, kCounters, kDestinationPrefix, kService, kDestinationSystem, kPadding2}},
    {40, {kFlowCount, kCounters, kPrefixes, kService, kPadding1, kSystems, kInterfaces}},
    {40, {kFlowCount, kCounters, kPrefixes, kService, kProtocol, kPorts, kInterfaces}},
};

void ShowLayout(const Place& in, Cursor& c, const Layout& layout, Flow& flow) {
  for (const RowSpan<Flow>& piece : layout.pieces) {
    if (piece.count) ShowRows<Flow>(in, c, piece, flow);
  }
}

void ShowRecord(const Place& at, Cursor& c, const Layout& layout, uint32_t number) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c) < layout.length ? Left(c) : layout.length), "Flow %u",
                                     number));
  Flow flow{};
  ShowLayout(in, c, layout, flow);
  AddFlowSketch(in, {flow.source, flow.destination, flow.sourcePort, flow.destinationPort, flow.protocol, flow.packets,
                     flow.octets, true, true});
}

}  // namespace

int32_t DecodeNetFlow(const Place& at, Cursor c) {
  const uint32_t version = PeekU16(c);
  if (version == 9) return DecodeFlowMessages(at, c);
  if (version == 10) return TryDecoder(at, c, DecodeIpfix, nullptr);
  const Layout* header = version == 1   ? &kHeader1
                         : version == 5 ? &kHeader5
                         : version == 7 ? &kHeader7
                         : version == 8 ? &kHeader8
                                        : nullptr;
  if (!header || Left(c) < header->length) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, header->length), "NetFlow: Version %u, %u Flows", version,
                                     PeekU16(c, 2)));
  Flow flow{};
  ShowLayout(in, c, *header, flow);
  const uint32_t scheme = flow.scheme.value;
  const Layout* record = version == 1                  ? &kRecord1
                         : version == 5                ? &kRecord5
                         : version == 7                ? &kRecord7
                         : scheme >= 1 && scheme <= 14 ? &kRecords8[scheme - 1]
                                                       : nullptr;
  Loop loop;
  for (uint32_t number = 1; record && number <= flow.count.value && MoreAt(in, c, loop); ++number) {
    ShowRecord(in, c, *record, number);
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "NetFlow Data");
  return 1;
}

}  // namespace qxview
