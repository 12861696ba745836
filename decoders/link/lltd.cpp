// Link Layer Topology Discovery ([MS-LLTD]): which stations are here, and which switches join them; and the tests of
// its
// service for streams.
//
//   0        1        2         3         4                 10               16
//   version  service  reserved  function  real destination  real source      transaction or sequence
#include "core/elements.h"
#include "core/rows.h"

namespace qxview {
namespace {

enum Function : uint32_t {
  kDiscover, kHello, kEmit, kTrain, kProbe, kAck, kQuery, kQueryResponse, kReset, kCharge, kFlat, kQueryLarge,
      kQueryLargeResponse,
};
enum QosFunction : uint32_t {
  kInitialize, kReady, kQosProbe, kQosQuery, kQosQueryResponse, kQosReset, kQosError, kQosAck, kSnapshot, kResult,
      kLease,
};
constexpr uint32_t kQos = 2;

constexpr auto kServiceNames = SortedNames({{0, "Topology Discovery"}, {1, "Quick Discovery"}, {2, "QoS Diagnostics"}});
constexpr auto kFunctionNames = SortedNames({
    {0, "Discover"}, {1, "Hello"}, {2, "Emit"}, {3, "Train"}, {4, "Probe"}, {5, "ACK"}, {6, "Query"}, {7, "QueryResp"},
    {8, "Reset"},
    {9, "Charge"}, {10, "Flat"}, {11, "QueryLargeTlv"}, {12, "QueryLargeTlvResp"}});
constexpr auto kQosFunctionNames = SortedNames({
    {0, "QosInitializeSink"}, {1, "QosReady"}, {2, "QosProbe"}, {3, "QosQuery"}, {4, "QosQueryResp"}, {5, "QosReset"},
    {6, "QosError"}, {7, "QosAck"}, {8, "QosCounterSnapshot"}, {9, "QosCounterResult"}, {10, "QosCounterLease"}});
constexpr auto kCharacteristicNames = SortedNames({
    {0x08000000, "Loopback"}, {0x10000000, "Management Web Page"}, {0x20000000, "Full Duplex"}, {0x40000000,
    "NAT, Private Side"},
    {0x80000000, "NAT, Public Side"}});
constexpr auto kQosCharacteristics = SortedNames({
    {0x20000000, "802.1p"}, {0x40000000, "802.1Q"}, {0x80000000, "Layer 2 Forwarding"}});
constexpr auto kWirelessNames = SortedNames({{0, "Ad Hoc"}, {1, "Infrastructure"}, {2, "Automatic or Unknown"}});
constexpr auto kRadioNames = SortedNames({
    {0, "Unknown"}, {1, "FHSS"}, {2, "DSSS"}, {3, "IR Baseband"}, {4, "OFDM"}, {5, "HRDSSS"}, {6, "ERP"}});
constexpr auto kMediumNames = SortedNames({{6, "Ethernet"}, {9, "Token Ring"}, {15, "FDDI"}, {71, "IEEE 802.11"}, {144,
    "IEEE 1394"}});
constexpr auto kEmitNames = SortedNames({{0, "Train"}, {1, "Probe"}});
constexpr auto kRecvNames = SortedNames({{0, "Probe"}, {1, "ARP or ICMPv6"}});
constexpr auto kTestNames = SortedNames({{0, "Timed Probe"}, {1, "Probegap"}, {2, "Probegap with Tag"}});
constexpr auto kErrorNames = SortedNames({
    {0, "Insufficient Resources"}, {1, "Busy"}, {2, "Interrupt Moderation Not Available"}});

struct Lltd {
  Field service, function, count;
};
constexpr auto kHeader = Rows<Lltd>({
    Number(1, "Version"), Number(1, "Type of Service", kServiceNames).Into(&Lltd::service), Number(1, "Reserved")});
constexpr auto kAddresses = Rows<Lltd>({Mac("Real Destination"), Mac("Real Source")});
constexpr auto kTransaction = Rows<Lltd>({Number(2, "Transaction ID")});
constexpr auto kSequence = Rows<Lltd>({Number(2, "Sequence Number")});
constexpr auto kDiscoverBody = Rows<Lltd>({Number(2, "Generation"), Number(2, "Stations").Into(&Lltd::count)});
constexpr auto kStation = Rows<Lltd>({Mac("Station")});
constexpr auto kHelloBody = Rows<Lltd>({Number(2, "Generation"), Mac("Current Mapper"), Mac("Apparent Mapper")});
constexpr auto kCount = Rows<Lltd>({Number(2, "Descriptors").Into(&Lltd::count)});
constexpr auto kMoreCount = Rows<Lltd>({Word(2), Flag(0, "More"), Bits(1, 1, "Reserved"), Bits(2, 14,
    "Descriptors").Into(&Lltd::count)});
constexpr auto kEmitee = Rows<Lltd>({
    Number(1, "Emitted Frame", kEmitNames), Number(1, "Pause", " ms"), Mac("Emitted Source"),
    Mac("Emitted Destination")});
constexpr auto kReceived = Rows<Lltd>({
    Number(2, "Received Frame", kRecvNames), Mac("Received Real Source"), Mac("Received Source"),
    Mac("Received Destination")});
constexpr auto kFlatBody = Rows<Lltd>({Number(4, "Current Transmit Credit", " bytes"), Number(2,
    "Current Transmit Credit Packets")});
constexpr auto kLargeQuery = Rows<Lltd>({Number(1, "Queried TLV"), Number(3, "Offset")});
constexpr auto kLargeAnswer = Rows<Lltd>({
    Word(2), Flag(0, "More"), Bits(1, 1, "Reserved"), Bits(2, 14, "Data Length").Into(&Lltd::count), Bytes(0,
    "TLV Data").SizedBy(&Lltd::count)});

// --- what stations tell of themselves ---

constexpr auto kHost = Rows<Lltd>({Mac("Host ID").Note(", %s")});
constexpr auto kCharacteristics = Rows<Lltd>({Flags(4, "Characteristics", kCharacteristicNames)});
constexpr auto kMedium = Rows<Lltd>({Number(4, "Interface Type", kMediumNames)});
constexpr auto kWireless = Rows<Lltd>({Number(1, "Wireless Mode", kWirelessNames)});
constexpr auto kBssid = Rows<Lltd>({Mac("BSSID")});
constexpr auto kName = Rows<Lltd>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kWideName = Rows<Lltd>({Utf16(0, nullptr).Little().Note(", %s")});
constexpr auto kFour = Rows<Lltd>({IPv4("Address").Note(", %s")});
constexpr auto kSix = Rows<Lltd>({IPv6("Address").Note(", %s")});
constexpr auto kRate = Rows<Lltd>({Number(2, "Rate", " x 500 kbit/s")});
constexpr auto kFrequency = Rows<Lltd>({Number(8, "Performance Counter Frequency", " Hz")});
constexpr auto kSpeed = Rows<Lltd>({Number(4, "Link Speed", " x 100 bit/s")});
constexpr auto kStrength = Rows<Lltd>({Signed(4, "Signal Strength", " dBm")});
constexpr auto kUuid = Rows<Lltd>({Bytes(16, "UUID")});
constexpr auto kQosFlags = Rows<Lltd>({Flags(4, "QoS Characteristics", kQosCharacteristics)});
constexpr auto kRadio = Rows<Lltd>({Number(1, "Physical Medium", kRadioNames)});
constexpr auto kWorkingSet = Rows<Lltd>({Number(2, "Sees-list Working Set")});
constexpr auto kAssociated = Rows<Lltd>({
    Mac("Associated Station"), Number(2, "Maximum Operational Rate", " x 500 kbit/s"),
    Number(1, "Physical Medium", kRadioNames), Number(1, "Reserved")});
constexpr auto kAncestor = Rows<Lltd>({Mac("Access Point")});
void ShowAssociations(const Place& in, Cursor& c, Lltd& lltd) {
  Loop loop;
  while (Left(c) >= 10 && MoreAt(in, c, loop)) ShowRows<Lltd>(in, c, kAssociated, lltd);
}
void ShowLineage(const Place& in, Cursor& c, Lltd& lltd) {
  Loop loop;
  while (Left(c) >= 6 && MoreAt(in, c, loop)) ShowRows<Lltd>(in, c, kAncestor, lltd);
}
// What an access point is made of: a version, then descriptors.
constexpr auto kComponentVersion = Rows<Lltd>({Number(1, "Component Table Version")});
constexpr auto kBridge = Rows<Lltd>({Number(1, "Behavior")});
constexpr auto kBand = Rows<Lltd>({
    Number(2, "Maximum Operational Rate", " x 500 kbit/s"), Number(1, "Physical Medium", kRadioNames),
    Number(1, "Wireless Mode", kWirelessNames), Mac("BSSID")});
constexpr auto kSwitch = Rows<Lltd>({Number(4, "Link Speed", " x 100 bit/s")});
constexpr auto kComponents = Choices<Lltd>({
    {0, "Bridge", kBridge}, {1, "Wireless Radio Band", kBand}, {2, "Built-in Switch", kSwitch}});
void ShowComponents(const Place& in, Cursor& c, Lltd& lltd) {
  if (Left(c) < 1) return;   // too large for this message: it is queried
  ShowRows<Lltd>(in, c, kComponentVersion, lltd);
  ShowElements<Lltd>(in, c, ElementForm{}, "Component", kComponents, lltd);
}
constexpr auto kProperties = Choices<Lltd>({
    {0, "End of Property List"}, {1, "Host ID", kHost}, {2, "Characteristics", kCharacteristics}, {3,
    "Physical Medium", kMedium},
    {4, "Wireless Mode", kWireless}, {5, "802.11 BSSID", kBssid}, {6, "802.11 SSID", kName}, {7, "IPv4 Address", kFour},
    {8, "IPv6 Address", kSix}, {9, "802.11 Maximum Operational Rate", kRate}, {10, "Performance Counter Frequency",
    kFrequency},
    {12, "Link Speed", kSpeed}, {13, "802.11 RSSI", kStrength}, {14, "Icon Image"}, {15, "Machine Name", kWideName},
    {16, "Support Information", kWideName}, {17, "Friendly Name", kWideName}, {18, "Device UUID", kUuid},
    {19, "Hardware ID", kWideName}, {20, "QoS Characteristics", kQosFlags}, {21, "802.11 Physical Medium", kRadio},
    {22, "AP Association Table", {}, ShowAssociations}, {23, "Detailed Icon Image"},
    {24, "Sees-list Working Set", kWorkingSet}, {25, "Component Table", {}, ShowComponents},
    {26, "Repeater AP Lineage", {}, ShowLineage},
    {27, "Repeater AP Table"}});

void ShowDescriptors(const Place& in, Cursor& c, RowSpan<Lltd> rows, const char* title, Lltd& lltd) {
  Loop loop;
  for (uint32_t i = 0; i < lltd.count.value && MoreAt(in, c, loop); ++i) {
    const int32_t begin = c.offset;
    // keys: none Emitee, Receivee, Event, Snapshot
    const Place under = Under(in, AddLine(in, Ahead(c, 0), "%s #%u", title, i + 1));
    ShowRows<Lltd>(under, c, rows, lltd);
    if (!under.dead) SetRange(under, under.parent, begin, c.offset - begin);
  }
}

void ShowDiscovery(const Place& in, Cursor& c, Lltd& lltd) {
  constexpr ElementForm kForm{.endType = 0};
  switch (lltd.function.value) {
    case kDiscover: {
      ShowRows<Lltd>(in, c, kDiscoverBody, lltd);
      Loop loop;
      for (uint32_t i = 0; i < lltd.count.value && MoreAt(in, c, loop); ++i) ShowRows<Lltd>(in, c, kStation, lltd);
      return;
    }
    case kHello:
      ShowRows<Lltd>(in, c, kHelloBody, lltd);
      return ShowElements<Lltd>(in, c, kForm, "Property", kProperties, lltd, kUnknown);
    case kEmit:
      ShowRows<Lltd>(in, c, kCount, lltd);
      return ShowDescriptors(in, c, kEmitee, "Emitee", lltd);
    case kQueryResponse:
      ShowRows<Lltd>(in, c, kMoreCount, lltd);
      return ShowDescriptors(in, c, kReceived, "Receivee", lltd);
    case kFlat: return ShowRows<Lltd>(in, c, kFlatBody, lltd);
    case kQueryLarge: return ShowRows<Lltd>(in, c, kLargeQuery, lltd);
    case kQueryLargeResponse: return ShowRows<Lltd>(in, c, kLargeAnswer, lltd);
    default: return;
  }
}

// --- tests for streams ---

constexpr auto kSink = Rows<Lltd>({Number(1, "Interrupt Moderation")});
constexpr auto kReadyBody = Rows<Lltd>({Number(4, "Sink Link Speed", " x 100 bit/s"), Number(8,
    "Performance Counter Frequency", " Hz")});
constexpr auto kProbeBody = Rows<Lltd>({
    Number(8, "Controller Transmit Time Stamp"), Number(8, "Sink Receive Time Stamp"), Number(8,
    "Sink Transmit Time Stamp"),
    Number(1, "Test Type", kTestNames), Number(1, "Packet ID"), Word(1), Flag(0, "Tagged"), Bits(1, 7, "802.1p Value"),
    Bytes(0, "Probe Payload")});
constexpr auto kQosCount = Rows<Lltd>({Word(2), Bits(0, 2, "Reserved"), Bits(2, 14, "Events").Into(&Lltd::count)});
constexpr auto kQosEvent = Rows<Lltd>({
    Number(8, "Controller Time Stamp"), Number(8, "Sink Time Stamp"), Number(1, "Packet ID"), Number(1, "Reserved")});
constexpr auto kErrorBody = Rows<Lltd>({Number(2, "Error Code", kErrorNames).Note(", %s")});
constexpr auto kSnapshotBody = Rows<Lltd>({Number(1, "History Size")});
constexpr auto kResultBody = Rows<Lltd>({
    Number(1, "Subsecond Span"), Number(1, "Byte Scale"), Number(1, "Packet Scale"), Number(1,
    "History Size").Into(&Lltd::count)});
constexpr auto kCounters = Rows<Lltd>({
    Number(2, "Bytes Received"), Number(2, "Packets Received"), Number(2, "Bytes Sent"), Number(2, "Packets Sent")});

void ShowQos(const Place& in, Cursor& c, Lltd& lltd) {
  switch (lltd.function.value) {
    case kInitialize: return ShowRows<Lltd>(in, c, kSink, lltd);
    case kReady: return ShowRows<Lltd>(in, c, kReadyBody, lltd);
    case kQosProbe: return ShowRows<Lltd>(in, c, kProbeBody, lltd);
    case kQosQueryResponse:
      ShowRows<Lltd>(in, c, kQosCount, lltd);
      return ShowDescriptors(in, c, kQosEvent, "Event", lltd);
    case kQosError: return ShowRows<Lltd>(in, c, kErrorBody, lltd);
    case kSnapshot: return ShowRows<Lltd>(in, c, kSnapshotBody, lltd);
    case kResult:
      ShowRows<Lltd>(in, c, kResultBody, lltd);
      return ShowDescriptors(in, c, kCounters, "Snapshot", lltd);
    default: return;
  }
}

}  // namespace

int32_t DecodeLltd(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 18;
  if (Left(c) < kHeaderSize || PeekU8(c) != 1) return 0;
  const bool isQos = PeekU8(c, 1) == kQos;
  const char* function = isQos ? LookupName(kQosFunctionNames, PeekU8(c, 3)) : LookupName(kFunctionNames, PeekU8(c, 3));
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "LLTD: %s", function));
  Lltd lltd = ShowRows(in, c, kHeader);
  lltd.function = TakeU8(c);
  AddLine(in, lltd.function, "Function: %u = %s", lltd.function.value, function);
  ShowRows<Lltd>(in, c, kAddresses, lltd);
  const bool isTransaction = !isQos && lltd.function.value == kDiscover;
  ShowRows<Lltd>(in, c, isTransaction ? RowSpan<Lltd>(kTransaction) : RowSpan<Lltd>(kSequence), lltd);
  isQos ? ShowQos(in, c, lltd) : ShowDiscovery(in, c, lltd);
  c.ranShort = false;
  AddBlock(in, Rest(c), "LLTD Data");
  return 1;
}

}  // namespace qxview
