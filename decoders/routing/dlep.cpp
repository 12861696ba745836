// Dynamic Link Exchange Protocol (RFC 8175): a radio tells its router which destinations it reaches, and how well.
// Extensions: hops (RFC 8629), pauses (RFC 8651), link identifiers (RFC 8703), latency ranges (RFC 8757).
//
//   signals over UDP    "DLEP"   type (2)   length (2)   data items: type (2), length (2), value
//   messages over TCP            type (2)   length (2)   data items
#include "core/elements.h"

namespace qxview {
namespace {

constexpr int32_t kMark = 4, kHeaderSize = 4;
constexpr uint32_t kLastMessage = 16;

constexpr auto kSignalNames = SortedNames({{1, "Peer Discovery"}, {2, "Peer Offer"}});
constexpr auto kMessageNames = SortedNames({
    {1, "Session Initialization"}, {2, "Session Initialization Response"}, {3, "Session Update"},
    {4, "Session Update Response"}, {5, "Session Termination"}, {6, "Session Termination Response"},
    {7, "Destination Up"}, {8, "Destination Up Response"}, {9, "Destination Announce"},
    {10, "Destination Announce Response"}, {11, "Destination Down"}, {12, "Destination Down Response"},
    {13, "Destination Update"}, {14, "Link Characteristics Request"}, {15, "Link Characteristics Response"},
    {16, "Heartbeat"}});
constexpr auto kStatusNames = SortedNames({
    {0, "Success"}, {1, "Not Interested"}, {2, "Request Denied"}, {3, "Inconsistent Data"}, {128, "Unknown Message"},
    {129, "Unexpected Message"}, {130, "Invalid Data"}, {131, "Invalid Destination"}, {132, "Timed Out"},
    {255, "Shutting Down"}});
constexpr auto kExtensionNames = SortedNames({
    {0, "Reserved"}, {1, "Multi-Hop Forwarding"}, {2, "Control-Plane-Based Pause"}, {3, "Link Identifiers"},
    {4, "Latency Range"}});
constexpr auto kAddDropNames = SortedNames({{0, "Drop"}, {1, "Add"}});
constexpr auto kHopActionNames = SortedNames({
    {0, "Reset"}, {1, "Terminate"}, {2, "Direct Connection"}, {3, "Suppress Forwarding"}});

struct Dlep {
  Field count, size;
};

constexpr auto kHead = Rows<Dlep>({Number(2, "Length")});
constexpr auto kStatus = Rows<Dlep>({Number(1, "Status Code", kStatusNames).Note(", %s"), Utf8(0, "Text")});
constexpr auto kPoint4 = Rows<Dlep>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Use TLS"), IPv4("IPv4 Address").Note(", %s")});
constexpr auto kPoint6 = Rows<Dlep>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Use TLS"), IPv6("IPv6 Address").Note(", %s")});
constexpr auto kPort = Rows<Dlep>({Number(2, "TCP Port").Note(", Port %u")});
constexpr auto kPeer = Rows<Dlep>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Secured Medium"), Utf8(0, "Peer Description").Note(", %s")});
constexpr auto kHeartbeat = Rows<Dlep>({Number(4, "Heartbeat Interval", " milliseconds").Note(", %u ms")});
constexpr auto kExtension = Rows<Dlep>({Number(2, "Extension", kExtensionNames).Note(", %s")});
constexpr auto kFlags = Rows<Dlep>({Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Add/Drop", kAddDropNames)});
constexpr auto kAddress4 = Rows<Dlep>({IPv4("IPv4 Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Dlep>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kSubnet4 = Rows<Dlep>({IPv4("IPv4 Subnet").Note(", %s"), Number(1, "Prefix Length").Note("/%u")});
constexpr auto kSubnet6 = Rows<Dlep>({IPv6("IPv6 Subnet").Note(", %s"), Number(1, "Prefix Length").Note("/%u")});
constexpr auto kRate = Rows<Dlep>({Number(8, "Data Rate", " bits per second").Note(", %I64u bits per second")});
constexpr auto kLatency = Rows<Dlep>({Number(8, "Latency", " microseconds").Note(", %I64u microseconds")});
constexpr auto kResources = Rows<Dlep>({Number(1, "Resources", " percent").Note(", %u percent")});
constexpr auto kQuality = Rows<Dlep>({Number(1, "Relative Link Quality", " percent").Note(", %u percent")});
constexpr auto kUnit = Rows<Dlep>({Number(2, "MTU", " bytes").Note(", %u bytes")});
constexpr auto kHops = Rows<Dlep>({
    Word(1), Flag(0, "Direct Connection Possible"), Bits(1, 7, "Reserved"), Number(1, "Hop Count").Note(", %u hops")});
constexpr auto kHopControl = Rows<Dlep>({Number(2, "Hop Control Action", kHopActionNames).Note(", %s")});
constexpr auto kQueueHead = Rows<Dlep>({
    Number(1, "Number of Queues").Into(&Dlep::count), Word(1), Bits(0, 4, "Scale"), Bits(4, 4, "Reserved"),
    Hex(2, "Reserved")});
constexpr auto kQueue = Rows<Dlep>({
    Number(1, "Queue Index"), Hex(1, "Reserved"), Word(2), Bits(0, 4, "Number of DSCPs").Into(&Dlep::size),
    Bits(4, 12, "Queue Size")});
constexpr auto kIndex = Rows<Dlep>({Number(1, "Queue Index").Note(", %u")});
constexpr auto kIdLength = Rows<Dlep>({Number(2, "Link Identifier Length")});
constexpr auto kId = Rows<Dlep>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Add/Drop", kAddDropNames), Bytes(0, "Link Identifier")});
constexpr auto kRange = Rows<Dlep>({
    Number(8, "Maximum Latency", " microseconds"), Number(8, "Minimum Latency", " microseconds")});
constexpr auto kMac48 = Rows<Dlep>({Mac("MAC Address").Note(", %s")});
constexpr auto kMac64 = Rows<Dlep>({Eui64("MAC Address").Note(", %s")});
constexpr auto kDscp = Rows<Dlep>({Number(1, "DSCP")});

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Dlep& dlep) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Dlep>(in, c, rows, dlep);
}
void ShowPort(const Place& in, Cursor& c, Dlep& dlep) {
  if (Left(c)) ShowRows<Dlep>(in, c, kPort, dlep);
}
void ShowMac(const Place& in, Cursor& c, Dlep& dlep) {
  ShowRows<Dlep>(in, c, Left(c) == 8 ? RowSpan<Dlep>(kMac64) : RowSpan<Dlep>(kMac48), dlep);
}
// The class selectors of a queue are packed, each in an octet, and the queue filled up to four.
void ShowQueues(const Place& in, Cursor& c, Dlep& dlep) {
  Loop loop;
  for (uint32_t i = 0; i < dlep.count.value && Left(c) >= 4 && MoreAt(in, c, loop); ++i) {
    ShowRows<Dlep>(in, c, kQueue, dlep);
    Loop each;
    for (uint32_t j = 0; j < dlep.size.value && MoreAt(in, c, each); ++j) ShowRows<Dlep>(in, c, kDscp, dlep);
    const int32_t beyond = static_cast<int32_t>(dlep.size.value % 4);
    const Field padding = beyond ? TakeBytes(c, 4 - beyond) : Field{};
    AddLine(in, padding, "Padding: %s", HexText(padding));
  }
}

template <const auto& rows>
void ShowMore(const Place& in, Cursor& c, Dlep& dlep) { ShowRows<Dlep>(in, c, rows, dlep); }

constexpr auto kItems = Choices<Dlep>({
    {1, "Status", kStatus}, {2, "IPv4 Connection Point", kPoint4, ShowPort}, {3, "IPv6 Connection Point", kPoint6, ShowPort},
    {4, "Peer Type", kPeer}, {5, "Heartbeat Interval", kHeartbeat},
    {6, "Extensions Supported", {}, ShowEach<kExtension, 2>}, {7, "MAC Address", {}, ShowMac},
    {8, "IPv4 Address", kFlags, ShowMore<kAddress4>}, {9, "IPv6 Address", kFlags, ShowMore<kAddress6>},
    {10, "IPv4 Attached Subnet", kFlags, ShowMore<kSubnet4>}, {11, "IPv6 Attached Subnet", kFlags, ShowMore<kSubnet6>},
    {12, "Maximum Data Rate (Receive)", kRate}, {13, "Maximum Data Rate (Transmit)", kRate},
    {14, "Current Data Rate (Receive)", kRate}, {15, "Current Data Rate (Transmit)", kRate}, {16, "Latency", kLatency},
    {17, "Resources", kResources}, {18, "Relative Link Quality (Receive)", kQuality},
    {19, "Relative Link Quality (Transmit)", kQuality}, {20, "Maximum Transmission Unit", kUnit}, {21, "Hop Count", kHops},
    {22, "Hop Control", kHopControl}, {23, "Queue Parameters", kQueueHead, ShowQueues},
    {24, "Pause", {}, ShowEach<kIndex, 1>}, {25, "Restart", {}, ShowEach<kIndex, 1>},
    {26, "Link Identifier Length", kIdLength}, {27, "Link Identifier", kId}, {28, "Latency Range", kRange}});

void ShowMessage(const Place& at, Cursor& c, bool isSignal) {
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .valueLines = true};
  const uint32_t type = PeekU16(c, isSignal ? kMark : 0);
  const char* name = isSignal ? LookupName(kSignalNames, type) : LookupName(kMessageNames, type);
  const int32_t head = isSignal ? kMark + kHeaderSize : kHeaderSize;
  Cursor message = TakeCursor(c, int64_t{PeekU16(c, head - 2)} + head);
  const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "DLEP: %s %s", name,
                                     isSignal ? "Signal" : "Message"));
  if (isSignal) {
    const Field mark = TakeBytes(message, kMark);
    AddLine(in, mark, "Signal Prefix: %s", Text(mark));
  }
  const Field number = TakeU16(message);
  AddLine(in, number, "Type: %u = %s", number.value, name);
  Dlep dlep = ShowRows(in, message, kHead);
  ShowElements<Dlep>(in, message, kForm, "Data Item", kItems, dlep);
  message.ranShort = false;   // what is left of an item that is cut
  AddBlock(in, Rest(message), "DLEP Data");
}

}  // namespace

int32_t DecodeDlep(const Place& at, Cursor c) {
  const bool isSignal = PeekIs(c, 0, "DLEP");
  if (Left(c) < kHeaderSize || (!isSignal && (PeekU16(c) == 0 || PeekU16(c) > kLastMessage))) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && MoreAt(at, c, loop)) {
    const bool isNext = PeekIs(c, 0, "DLEP") ? Left(c) >= kMark + kHeaderSize : PeekU16(c) - 1 < kLastMessage;
    if (!isNext) break;
    ShowMessage(at, c, PeekIs(c, 0, "DLEP"));
  }
  AddRawRest(at, c, "DLEP Data");
  return 1;
}

}  // namespace qxview
