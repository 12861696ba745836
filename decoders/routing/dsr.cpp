// Dynamic Source Routing (RFC 4728): packets carry the way that they take, found by asking the neighbours.
//
//   next header (1)   flow state (1 bit), reserved   payload length (2)   options: type (1), length (1), value
//   flow state header: next header (1)   1, hop count (7)   flow (2)
//
// Behind it stands what the next header says.
#include "core/elements.h"
#include "core/internet_checksum.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr uint32_t kUnreachable = 1, kUnsupported = 3, kUnknownFlow = 129, kNoDefaultFlow = 130;

constexpr auto kErrorNames = SortedNames({
    {1, "Node Unreachable"}, {2, "Flow State Not Supported"}, {3, "Option Not Supported"}, {129, "Unknown Flow"},
    {130, "Default Flow Unknown"}});

const char* NextName(uint32_t protocol) { return IpProtocolName(protocol); }

struct Dsr {
  Field next, length, code;
};
constexpr auto kHead = Rows<Dsr>({
    Number(1, "Next Header", NextName).Into(&Dsr::next), Word(1), Flag(0, "Flow State Header"),
    Bits(1, 7, "Reserved"), Number(2, "Payload Length").Into(&Dsr::length)});
constexpr auto kFlowHead = Rows<Dsr>({
    Number(1, "Next Header", NextName).Into(&Dsr::next), Word(1), Flag(0, "Flow State Header"),
    Bits(1, 7, "Hop Count"), Number(2, "Flow ID")});

constexpr auto kZeros = Rows<Dsr>({Bytes(0, "Padding")});
constexpr auto kRequest = Rows<Dsr>({Number(2, "Identification"), IPv4("Target Address").Note(", %s")});
constexpr auto kReply = Rows<Dsr>({Word(1), Flag(0, "Last Hop External"), Bits(1, 7, "Reserved")});
constexpr auto kError = Rows<Dsr>({
    Number(1, "Error Type", kErrorNames).Note(", %s").Into(&Dsr::code), Word(1), Bits(0, 4, "Reserved"),
    Bits(4, 4, "Salvage"), IPv4("Error Source Address"), IPv4("Error Destination Address")});
constexpr auto kNode = Rows<Dsr>({IPv4("Unreachable Node Address").Note(", %s")});
constexpr auto kOption = Rows<Dsr>({Number(1, "Unsupported Option").Note(", %u")});
constexpr auto kFlow = Rows<Dsr>({IPv4("Original Destination Address"), Number(2, "Flow ID")});
constexpr auto kNoFlow = Rows<Dsr>({IPv4("Original Destination Address")});
constexpr auto kAsking = Rows<Dsr>({Number(2, "Identification")});
constexpr auto kAnswer = Rows<Dsr>({
    Number(2, "Identification"), IPv4("Source Address").Note(", %s"), IPv4("Destination Address").Note(" to %s")});
constexpr auto kRoute = Rows<Dsr>({
    Word(2), Flag(0, "First Hop External"), Flag(1, "Last Hop External"), Bits(2, 4, "Reserved"), Bits(6, 4, "Salvage"),
    Bits(10, 6, "Segments Left")});
constexpr auto kHop = Rows<Dsr>({IPv4("Address").Note(", %s")});
constexpr auto kTimeout = Rows<Dsr>({Number(2, "Timeout", " seconds")});
constexpr auto kDestination = Rows<Dsr>({Number(2, "New Flow ID"), IPv4("New IP Destination Address").Note(", %s")});

void ShowHops(const Place& in, Cursor& c, Dsr& dsr) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Dsr>(in, c, kHop, dsr);
}
void ShowError(const Place& in, Cursor& c, Dsr& dsr) {
  switch (dsr.code.value) {
    case kUnreachable: ShowRows<Dsr>(in, c, kNode, dsr); break;
    case kUnsupported: ShowRows<Dsr>(in, c, kOption, dsr); break;
    case kUnknownFlow: ShowRows<Dsr>(in, c, kFlow, dsr); break;
    case kNoDefaultFlow: ShowRows<Dsr>(in, c, kNoFlow, dsr); break;
    default: break;
  }
}

constexpr auto kOptions = Choices<Dsr>({
    {0, "PadN", kZeros}, {1, "Route Request", kRequest, ShowHops}, {2, "Route Reply", kReply, ShowHops},
    {3, "Route Error", kError, ShowError}, {32, "Acknowledgement", kAnswer}, {96, "Source Route", kRoute, ShowHops},
    {128, "Timeout", kTimeout}, {129, "Destination and Flow ID", kDestination},
    {160, "Acknowledgement Request", kAsking, ShowHops}, {224, "Pad1"}});

// What the checksums of the packet behind this header were made with.
uint32_t PseudoHeadBehind(const PacketState& packet) {
  const auto length = static_cast<uint32_t>(packet.network.totalLength);
  const uint8_t tail[4] = {0, packet.ipProtocol, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
  const uint32_t sum = SumWords(SumWords(0, packet.source.address, 4), packet.destination.address, 4);
  return SumWords(sum, tail, sizeof tail);
}

}  // namespace

int32_t DecodeDsr(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4, kPad1 = 224;
  constexpr uint32_t kFlowState = 0x80, kNoNextHeader = 59;
  constexpr ElementForm kForm{.padType = kPad1};
  if (Left(c) < kHeaderSize) return 0;
  const bool isFlow = PeekU8(c, 1) & kFlowState;
  const int64_t size = kHeaderSize + (isFlow ? 0 : int64_t{PeekU16(c, 2)});
  Cursor header = TakeCursor(c, size);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "DSR: %s", isFlow ? "Flow State" : "Options"));
  Dsr dsr{};
  ShowRows<Dsr>(in, header, isFlow ? RowSpan<Dsr>(kFlowHead) : RowSpan<Dsr>(kHead), dsr);
  ShowElements<Dsr>(in, header, kForm, "Option", kOptions, dsr);
  header.ranShort = false;
  AddBlock(in, Rest(header), "DSR Data");
  if (!Left(c) || dsr.next.value == kNoNextHeader) return AddRawRest(at, c, "DSR Data"), 1;
  PacketState& packet = PacketOf(at);
  packet.ipProtocol = static_cast<uint8_t>(dsr.next.value);
  if (packet.network.totalLength > size) packet.network.totalLength -= static_cast<int32_t>(size);
  packet.network.pseudoHead = PseudoHeadBehind(packet);
  ReachLayer(at, DispatchTable::kIpProtocol, dsr.next.value, c);
  const DecoderRow* row = FindIpProtocol(static_cast<uint8_t>(dsr.next.value));
  return CallDecoder(Deeper(at), c, row ? row->decode : nullptr, "Raw Data"), 1;
}

}  // namespace qxview
