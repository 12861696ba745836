// Link types whose header is one of the capture and not of a network: PKTAP of Darwin, IPNET of Solaris, PPI, the
// virtual sockets' monitor of Linux, SLIP's direction, Ethernet with its preamble; and two that carry 802.2 or IP
// alone.
// Their frames go on by the link type that the header names.
#include "core/elements.h"
#include "decoders/link/carried.h"
#include "decoders/link/link_frame.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum LinkType : uint32_t {
  kLinkEthernet = 1, kLinkTokenRing = 6, kLinkPpp = 9, kLinkFddi = 10, kLinkPppHdlc = 50, kLinkCiscoHdlc = 104,
  kLinkWireless = 105, kLinkFrameRelay = 107, kLinkRaw = 101, kLinkRawOld = 12, kLinkRawOther = 14, kLinkRawBsd = 0,
  kLinkIPv4 = 228, kLinkIPv6 = 229,
};

constexpr auto kLinkTypeNames = SortedNames({
    {0, "BSD Loopback"}, {1, "Ethernet"}, {6, "Token Ring"}, {8, "SLIP"}, {9, "PPP"}, {10, "FDDI"}, {12, "Raw IP"},
    {14, "Raw IP"}, {50, "PPP in HDLC-like Framing"}, {101, "Raw IP"}, {104, "Cisco HDLC"}, {105, "IEEE 802.11"},
    {107, "Frame Relay"}, {108, "OpenBSD Loopback"}, {113, "Linux Cooked"}, {127, "IEEE 802.11 with Radiotap Header"},
    {187, "Bluetooth HCI UART"}, {195, "IEEE 802.15.4"}, {228, "Raw IPv4"}, {229, "Raw IPv6"}, {230,
    "IEEE 802.15.4 without Check Sequence"},
    {276, "Linux Cooked 2"}});

// --- PKTAP ---

constexpr auto kRecordTypeNames = SortedNames({{0, "None"}, {1, "Packet"}});
constexpr auto kPktapFlagNames = SortedNames({
    {0x0001, "Incoming"}, {0x0002, "Outgoing"}, {0x0004, "Process Delegated"}, {0x0008, "Interface Delegated"},
    {0x0010, "Transport Delegated"}, {0x0020, "Flow Identified"}, {0x0040, "Retransmitted"}, {0x0080, "New Flow"},
    {0x0100, "Socket"}, {0x0200, "Keepalive"}, {0x0400, "Reassembled"}});
constexpr auto kDarwinFamilyNames = SortedNames({{0, "Unspecified"}, {2, "IPv4"}, {16, "AppleTalk"}, {30, "IPv6"}});

struct Pktap {
  Field length, linkType;
};
constexpr auto kPktap = LittleRows<Pktap>({
    Number(4, "Header Length").Into(&Pktap::length), Number(4, "Record Type", kRecordTypeNames),
    Number(4, "Link Type", kLinkTypeNames).Into(&Pktap::linkType), Utf8(24, "Interface Name").Note(": %s"),
    Flags(4, "Flags", kPktapFlagNames), Number(4, "Protocol Family", kDarwinFamilyNames), Number(4,
    "Link Header Length"),
    Number(4, "Link Trailer Length"), Signed(4, "Process ID"), Utf8(20, "Command"),
    Number(4, "Service Class"), Number(2, "Interface Type"), Number(2, "Interface Unit"), Signed(4,
    "Effective Process ID"),
    Utf8(20, "Effective Command")});
constexpr auto kPktapFlow = LittleRows<Pktap>({
    Hex(4, "Flow ID"), Number(4, "IP Protocol"), UnixTime(4, "Seconds"), Number(4, "Microseconds"), Bytes(16,
    "Process UUID"),
    Bytes(16, "Effective Process UUID")});

// --- IPNET ---

constexpr auto kIpnetFamilyNames = SortedNames({{2, "IPv4"}, {26, "IPv6"}});
constexpr auto kIpnetHookNames = SortedNames({{0, "Inbound"}, {1, "Outbound"}, {2, "Local"}});
struct Ipnet {
  Field family;
};
constexpr auto kIpnet = Rows<Ipnet>({
    Number(1, "Version"), Number(1, "Address Family", kIpnetFamilyNames).Into(&Ipnet::family),
    Number(2, "Hook Type", kIpnetHookNames).Note(", %s"), Number(4, "Packet Length"), Number(4, "Interface Index"),
    Number(4, "Group Interface Index"), Number(4, "Source Zone ID"), Number(4, "Destination Zone ID")});

// --- virtual sockets ---

constexpr auto kVsockOperations = SortedNames({
    {0, "Unknown"}, {1, "Connect"}, {2, "Disconnect"}, {3, "Control"}, {4, "Payload"}});
constexpr auto kVsockTransports = SortedNames({{0, "Unknown"}, {1, "No Information"}, {2, "Virtio"}});
constexpr auto kVirtioTypes = SortedNames({{1, "Stream"}, {2, "Sequenced Packets"}});
constexpr auto kVirtioOperations = SortedNames({
    {0, "Invalid"}, {1, "Request"}, {2, "Response"}, {3, "Reset"}, {4, "Shutdown"}, {5, "Read Write"}, {6,
    "Credit Update"},
    {7, "Credit Request"}});
constexpr auto kVirtioFlags = SortedNames({{1, "No More Receiving or End of Message"}, {2,
    "No More Sending or End of Record"}});
struct Vsock {
  Field operation, transport, length;
  uint64_t sourceCid, destinationCid;
  Field sourcePort, destinationPort;
};
constexpr auto kVsock = LittleRows<Vsock>({
    Number(8, "Source Context ID").Into(&Vsock::sourceCid), Number(8,
    "Destination Context ID").Into(&Vsock::destinationCid),
    Number(4, "Source Port").Into(&Vsock::sourcePort), Number(4, "Destination Port").Into(&Vsock::destinationPort),
    Number(2, "Operation", kVsockOperations).Into(&Vsock::operation),
    Number(2, "Transport", kVsockTransports).Into(&Vsock::transport), Number(2,
    "Transport Header Length").Into(&Vsock::length),
    Hex(2, "Reserved")});
constexpr auto kVirtio = LittleRows<Vsock>({
    Number(8, "Source Context ID"), Number(8, "Destination Context ID"), Number(4, "Source Port"),
    Number(4, "Destination Port"), Number(4, "Length"), Number(2, "Type", kVirtioTypes),
    Number(2, "Virtio Operation", kVirtioOperations), Flags(4, "Flags", kVirtioFlags), Number(4, "Buffer Allocation"),
    Number(4, "Forward Count")});

// --- PPI ---

constexpr auto kPpiFlagNames = SortedNames({{1, "Aligned to 32 Bits"}});
constexpr auto kCommonFlags = SortedNames({
    {1, "Check Sequence Present"}, {2, "Timer in Milliseconds"}, {4, "Check Sequence Invalid"}, {8, "Physical Error"}});
struct Ppi {
  Field flags, length, linkType;
};
constexpr auto kPpi = LittleRows<Ppi>({
    Number(1, "Version"), Flags(1, "Flags", kPpiFlagNames).Into(&Ppi::flags), Number(2,
    "Header Length").Into(&Ppi::length),
    Number(4, "Link Type", kLinkTypeNames).Note(", %s").Into(&Ppi::linkType)});
constexpr auto kChannelFlags = SortedNames({
    {0x0010, "Turbo"}, {0x0020, "CCK"}, {0x0040, "OFDM"}, {0x0080, "2 GHz"}, {0x0100, "5 GHz"}, {0x0200, "Passive Scan"},
    {0x0400, "Dynamic CCK-OFDM"}, {0x0800, "GFSK"}});
constexpr auto kHighFlags = SortedNames({
    {0x01, "Greenfield"}, {0x02, "40 MHz"}, {0x04, "Short Guard Interval"}, {0x08, "Duplicate"}, {0x10, "Aggregate"},
    {0x20, "More Aggregates"}, {0x40, "Delimiter CRC Error after This"}});
constexpr auto kPpiCommon = LittleRows<Ppi>({
    Number(8, "Timer"), Flags(2, "Common Flags", kCommonFlags), Number(2, "Data Rate", " x 500 kbit/s"),
    Number(2, "Channel Frequency", " MHz"), Flags(2, "Channel Flags", kChannelFlags), Number(1, "Hop Set"), Number(1, "Hop Pattern"),
    Signed(1, "Signal", " dBm"), Signed(1, "Noise", " dBm")});
constexpr auto kPpiExtension = LittleRows<Ppi>({
    Flags(4, "MAC Flags", kHighFlags), Number(4, "A-MPDU ID"), Number(1, "Delimiters"), Bytes(0, "Reserved")});
constexpr auto kPpiPhysical = LittleRows<Ppi>({
    Flags(4, "MAC Flags", kHighFlags), Number(4, "A-MPDU ID"), Number(1, "Delimiters"), Number(1, "MCS"),
    Number(1, "Streams"), Number(1, "RSSI, Combined"), Number(1, "RSSI, Antenna 0, Control Channel"),
    Number(1, "RSSI, Antenna 1, Control Channel"), Number(1, "RSSI, Antenna 2, Control Channel"),
    Number(1, "RSSI, Antenna 3, Control Channel"), Number(1, "RSSI, Antenna 0, Extension Channel"),
    Number(1, "RSSI, Antenna 1, Extension Channel"), Number(1, "RSSI, Antenna 2, Extension Channel"),
    Number(1, "RSSI, Antenna 3, Extension Channel"), Number(2, "Extension Channel Frequency", " MHz"),
    Flags(2, "Extension Channel Flags", kChannelFlags), Signed(1, "Signal, Antenna 0", " dBm"),
    Signed(1, "Noise, Antenna 0", " dBm"), Signed(1, "Signal, Antenna 1", " dBm"), Signed(1, "Noise, Antenna 1", " dBm"),
    Signed(1, "Signal, Antenna 2", " dBm"), Signed(1, "Noise, Antenna 2", " dBm"), Signed(1, "Signal, Antenna 3", " dBm"),
    Signed(1, "Noise, Antenna 3", " dBm"), Number(4, "Error Vector Magnitude, Chain 0"),
    Number(4, "Error Vector Magnitude, Chain 1"), Number(4, "Error Vector Magnitude, Chain 2"),
    Number(4, "Error Vector Magnitude, Chain 3")});
constexpr auto kPpiSpectrum = LittleRows<Ppi>({
    Number(4, "Starting Frequency", " kHz"), Number(4, "Resolution", " Hz"), Number(4, "Amplitude Offset"),
    Number(4, "Amplitude Resolution"), Number(2, "Maximum Raw Signal"), Number(2, "Samples"), Bytes(0, "Sample Data")});
constexpr auto kPpiProcess = LittleRows<Ppi>({
    Number(4, "Process ID"), Number(4, "Thread ID"), Counted(1, Utf8(0, "Process Path")), Number(4, "User ID"),
    Counted(1, Utf8(0, "User Name")), Number(4, "Group ID"), Counted(1, Utf8(0, "Group Name"))});
constexpr auto kPpiCapture = LittleRows<Ppi>({Utf8(0, "Capture Information")});
constexpr auto kPpiAggregation = LittleRows<Ppi>({Number(4, "Interface ID")});
constexpr auto kPpiLocation = LittleRows<Ppi>({
    Number(1, "Location Version"), Number(1, "Location Padding"), Number(2, "Location Length"), Hex(4, "Present")});
// The position of a receiver: a bit for each field, in their order. Degrees and metres are fixed point above an offset.
constexpr auto kPositionNames = SortedNames({
    {0x00000001, "GPS Flags Present"}, {0x00000002, "Latitude Present"}, {0x00000004, "Longitude Present"},
    {0x00000008, "Altitude Present"}, {0x00000010, "Altitude above Ground Present"}, {0x00000020, "GPS Time Present"},
    {0x00000040, "Fractional Time Present"}, {0x00000080, "Horizontal Error Present"},
    {0x00000100, "Vertical Error Present"}, {0x00000200, "Time Error Present"}, {0x10000000, "Description Present"},
    {0x20000000, "Application ID Present"}, {0x40000000, "Application Data Present"}, {0x80000000, "Extended"}});
constexpr auto kPpiPosition = LittleRows<Ppi>({
    Number(1, "Location Version"), Number(1, "Location Padding"), Number(2, "Location Length"),
    Flags(4, "Present", kPositionNames).Into(&Ppi::flags)});
constexpr auto kPositionFlags = LittleRows<Ppi>({Hex(4, "GPS Flags")});
constexpr auto kPositionTime = LittleRows<Ppi>({UnixTime(4, "GPS Time")});
constexpr auto kPositionFraction = LittleRows<Ppi>({Number(4, "Fractional Time", " ns")});
constexpr auto kPositionTimeError = LittleRows<Ppi>({Number(4, "Time Error", " ns")});
constexpr auto kPositionText = LittleRows<Ppi>({Utf8(32, "Description")});
constexpr auto kPositionApplication = LittleRows<Ppi>({Hex(4, "Application ID")});
constexpr auto kPositionData = LittleRows<Ppi>({Bytes(60, "Application Data")});
void AddFixed(const Place& in, Cursor& c, const char* label, int64_t offset, int64_t unit, uint32_t digits) {
  const Field field = TakeLittleU32(c);
  const int64_t value = static_cast<int64_t>(field.value) - offset * unit, size = value < 0 ? -value : value;
  ShortText<16> fraction;
  FormatInto(fraction.text, sizeof fraction.text, "%.09u", static_cast<uint32_t>(size % unit));
  // keys: text Latitude, Longitude, Altitude, Altitude above Ground, Horizontal Error, Vertical Error
  AddLine(in, field, "%s: %s%u.%s", label, value < 0 ? "-" : "", static_cast<uint32_t>(size / unit),
          static_cast<const char*>(fraction.text + 9 - digits));
}
void ShowPosition(const Place& in, Cursor& c, Ppi& ppi) {
  constexpr int64_t kSeventh = 10000000, kSixth = 1000000, kFourth = 10000;
  const uint32_t present = ppi.flags.value;
  const auto show = [&](uint32_t bit, RowSpan<Ppi> rows) {
    if (present >> bit & 1 && Left(c) > 0) ShowRows<Ppi>(in, c, rows, ppi);
  };
  show(0, kPositionFlags);
  if (present & 0x002) AddFixed(in, c, "Latitude", 180, kSeventh, 7);
  if (present & 0x004) AddFixed(in, c, "Longitude", 180, kSeventh, 7);
  if (present & 0x008) AddFixed(in, c, "Altitude", 180000, kFourth, 4);
  if (present & 0x010) AddFixed(in, c, "Altitude above Ground", 180000, kFourth, 4);
  show(5, kPositionTime);
  show(6, kPositionFraction);
  if (present & 0x080) AddFixed(in, c, "Horizontal Error", 0, kSixth, 6);
  if (present & 0x100) AddFixed(in, c, "Vertical Error", 0, kSixth, 6);
  show(9, kPositionTimeError);
  show(28, kPositionText);
  show(29, kPositionApplication);
  show(30, kPositionData);
}
constexpr auto kPpiFields = Choices<Ppi>({
    {2, "802.11 Common", kPpiCommon}, {3, "802.11n MAC Extensions", kPpiExtension},
    {4, "802.11n MAC and PHY Extensions", kPpiPhysical}, {5, "Spectrum Map", kPpiSpectrum},
    {6, "Process Information", kPpiProcess}, {7, "Capture Information", kPpiCapture}, {8, "Aggregation",
    kPpiAggregation},
    {9, "802.3"}, {30002, "GPS", kPpiPosition, ShowPosition}, {30003, "Vector", kPpiLocation}, {30004, "Sensor", kPpiLocation},
    {30005, "Antenna", kPpiLocation}});

// --- SLIP ---

constexpr auto kDirections = SortedNames({{0, "Received"}, {1, "Sent"}});
const char* NameCompression(uint32_t type) {
  return type & 0x80 ? "Compressed TCP" : (type & 0xF0) == 0x70 ? "Uncompressed TCP" : "Plain IP";
}

}  // namespace

int32_t DecodeByLinkType(const Place& at, const Cursor& c, uint32_t linkType) {
  switch (linkType) {
    case kLinkEthernet: return DecodeCarriedFrame(at, c, Carried::kEthernet);
    case kLinkTokenRing: return DecodeCarriedFrame(at, c, Carried::kTokenRing);
    case kLinkFddi: return DecodeCarriedFrame(at, c, Carried::kFddi);
    case kLinkPpp:
    case kLinkPppHdlc: return DecodeCarriedFrame(at, c, Carried::kPpp);
    case kLinkCiscoHdlc: return DecodeCarriedFrame(at, c, Carried::kCiscoHdlc);
    case kLinkFrameRelay: return DecodeCarriedFrame(at, c, Carried::kFrameRelay);
    case kLinkWireless: return DecodeCarriedFrame(at, c, Carried::kWireless);
    case kLinkRaw:
    case kLinkRawOld:
    case kLinkRawOther:
    case kLinkIPv4:
    case kLinkIPv6: return DecodeBareIp(Deeper(at), c);
    default: break;
  }
  const DecoderRow* row = FindLinkEncapsulation(kLinkTypeKeys + (linkType & 0xFFFF));
  return CallDecoder(at, c, row && linkType <= 0xFFFF ? row->decode : nullptr, "Raw Data");
}

int32_t DecodePktap(const Place& at, Cursor c) {
  constexpr uint32_t kLeast = 108, kWithFlow = 156, kMost = 4096;
  const uint32_t length = PeekLittleU32(c);
  if (length < kLeast || length > kMost || PeekLittleU32(c, 4) > 1) return 0;
  Cursor header = TakeCursor(c, length);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "PKTAP Header"));
  Pktap pktap = ShowRows(in, header, kPktap);
  if (length >= kWithFlow) ShowRows<Pktap>(in, header, kPktapFlow, pktap);
  AddBlock(in, Rest(header), "Header Data");
  return Left(c) > 0 ? DecodeByLinkType(at, c, pktap.linkType.value) : 1;
}

int32_t DecodeIpnet(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 24;
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "IPNET Header"));
  ShowRows(in, c, kIpnet);
  return Left(c) > 0 ? DecodeBareIp(Deeper(at), c) : 1;
}

int32_t DecodeVsock(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 32;
  constexpr uint32_t kVirtioTransport = 2;
  if (Left(c) < kHeaderSize) return 0;
  const Vsock ahead = PeekRows(c, kVsock);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Virtual Socket: %s, %I64u:%u -> %I64u:%u",
                                     LookupName(kVsockOperations, ahead.operation.value), ahead.sourceCid,
                                     ahead.sourcePort.value, ahead.destinationCid, ahead.destinationPort.value));
  Vsock vsock = ShowRows(in, c, kVsock);
  Cursor header = TakeCursor(c, vsock.length.value);
  if (vsock.transport.value == kVirtioTransport && Left(header) > 0) {
    const Place under = Under(in, AddLine(in, Ahead(header, Left(header)), "Virtio Header"));
    ShowRows<Vsock>(under, header, kVirtio, vsock);
  }
  header.ranShort = false;
  AddBlock(in, Rest(header), "Transport Header Data");
  AddBlock(in, Rest(c), "Payload");
  return 1;
}

int32_t DecodePpi(const Place& at, Cursor c) {
  constexpr uint32_t kHeaderSize = 8;
  const uint32_t length = PeekLittleU16(c, 2);
  if (PeekU8(c) != 0 || length < kHeaderSize || Left(c) < static_cast<int32_t>(kHeaderSize)) return 0;
  Cursor header = TakeCursor(c, length);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "PPI Header"));
  Ppi ppi = ShowRows(in, header, kPpi);
  constexpr ElementForm kPlain{.typeSize = 2, .lengthSize = 2, .little = true};
  constexpr ElementForm kAligned{.typeSize = 2, .lengthSize = 2, .padTo = 4, .little = true};
  // keys: bytes Padding
  ShowElements<Ppi>(in, header, ppi.flags.value & 1 ? kAligned : kPlain, "Field", kPpiFields, ppi);
  return Left(c) > 0 ? DecodeByLinkType(at, c, ppi.linkType.value) : 1;
}

int32_t DecodeSlipFrame(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 16;
  if (Left(c) < kHeaderSize) return 0;
  const char* direction = LookupName(kDirections, PeekU8(c));
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "SLIP Header: %s", direction));
  const Field sent = TakeU8(c);
  AddLine(in, sent, "Direction: %u = %s", sent.value, direction);
  const Field type = TakeU8(c);
  AddLine(in, type, "Packet Type: 0x%.02X = %s", type.value, NameCompression(type.value));
  const Field compressed = TakeBytes(c, kHeaderSize - 2);
  AddLine(in, compressed, "Compressed Header: %s", HexText(compressed));
  return Left(c) > 0 ? DecodeBareIp(Deeper(at), c) : 1;
}

// IEEE 802.3br: a frame or a fragment of one that another frame may have preempted, from its preamble on.
int32_t DecodeMPacket(const Place& at, Cursor c) {
  constexpr auto kStarts = SortedNames({
      {0x07, "Verify"}, {0x19, "Respond"}, {0x4C, "Preemptable Start, Frame 1"}, {0x7F, "Preemptable Start, Frame 2"},
      {0xB3, "Preemptable Start, Frame 3"}, {0xD5, "Express"}, {0xE6, "Preemptable Start, Frame 0"}});
  constexpr auto kContinued = SortedNames({
      {0x52, "Continuation of Frame 1"}, {0x61, "Continuation of Frame 0"}, {0x9E, "Continuation of Frame 2"},
      {0xAD, "Continuation of Frame 3"}});
  constexpr auto kCounts = SortedNames({{0x4C, "1"}, {0x7F, "2"}, {0xB3, "3"}, {0xE6, "0"}});
  constexpr uint32_t kExpress = 0xD5;
  constexpr int32_t kPreamble = 8, kCheck = 4;
  if (Left(c) < kPreamble) return 0;
  const uint32_t last = PeekU8(c, kPreamble - 1), before = PeekU8(c, kPreamble - 2);
  const char* continuation = LookupName(kContinued, before, nullptr);
  const char* kind = continuation ? continuation : LookupName(kStarts, last);
  const Place in = Under(at, AddLine(at, Ahead(c, kPreamble), "Ethernet mPacket: %s", kind));
  const Field preamble = TakeBytes(c, continuation ? kPreamble - 2 : kPreamble - 1);
  AddLine(in, preamble, "Preamble: %s", HexText(preamble));
  const Field delimiter = TakeU8(c);
  AddLine(in, delimiter, "Start Delimiter: 0x%.02X = %s", delimiter.value, kind);
  if (continuation) {
    const Field count = TakeU8(c);
    AddLine(in, count, "Fragment Count: 0x%.02X = %s", count.value, LookupName(kCounts, count.value));
  }
  const bool isStart = !continuation && last != 0x07 && last != 0x19;
  Field check{};
  if (Left(c) > kCheck) check = CutTail(c, kCheck);
  AddLine(in, check, "%s: %s", last == kExpress ? "Frame Check Sequence" : "Fragment Check Sequence", HexText(check));
  if (isStart) return CallDecoder(at, c, DecodeMacHeader, "Ethernet Data");
  return CallDecoder(Deeper(at), c, nullptr, "Fragment Data");
}

}  // namespace qxview
