// What TCP options carry that came after the first ones: Multipath TCP (RFC 8684, its version 0: RFC 6824), fast open
// (RFC 7413), authentication (RFC 5925), user timeouts (RFC 5482), accurate ECN (RFC 9768), Quick-Start (RFC 4782),
// encryption negotiation (RFC 8547), the options of SCPS (CCSDS 714.0) and experiments by their number (RFC 6994).
#include "core/elements.h"
#include "decoders/net/tcp_options.h"

namespace qxview {
namespace {

struct Option {
  Field word, ack, sequence;
  Field flags;
};

constexpr auto kJoinFlags = Rows<Option>({Word(1), Bits(4, 3, "Reserved"), Flag(7, "Backup")});
constexpr auto kAddressNumber = Rows<Option>({Number(1, "Address ID")});

// The word that starts with the subtype has been read in part: these rows begin at the octet that holds it.
constexpr auto kCapable = Rows<Option>({
    Word(1), Bits(4, 4, "Version"), Hex(1, "Multipath Flags"), Flag(0, "Checksum Required"), Flag(1, "Extensibility"),
    Flag(2, "No Additional Subflows to This Address"), Bits(3, 4, "Reserved"), Flag(7, "HMAC-SHA256")});
constexpr auto kKeys = Rows<Option>({Hex(8, "Sender's Key")});
constexpr auto kReceiverKey = Rows<Option>({Hex(8, "Receiver's Key")});
constexpr auto kDataLength = Rows<Option>({Number(2, "Data-Level Length")});
constexpr auto kChecksum = Rows<Option>({Hex(2, "Checksum")});

void ShowCapable(const Place& in, Cursor& c, Option& option) {
  ShowRows<Option>(in, c, kCapable, option);
  if (Left(c) >= 8) ShowRows<Option>(in, c, kKeys, option);
  if (Left(c) >= 8) ShowRows<Option>(in, c, kReceiverKey, option);
  if (Left(c) >= 2) ShowRows<Option>(in, c, kDataLength, option);
  if (Left(c) >= 2) ShowRows<Option>(in, c, kChecksum, option);
}

// Told from one another by their length: a request, its answer, and the third segment of the handshake.
void ShowJoin(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kRequest = Rows<Option>({Hex(4, "Receiver's Token"), Hex(4, "Sender's Random Number")});
  static constexpr auto kAnswer = Rows<Option>({Hex(8, "Sender's Truncated HMAC"), Hex(4, "Sender's Random Number")});
  static constexpr auto kLast = Rows<Option>({Word(2), Bits(4, 12, "Reserved"), Bytes(20, "Sender's HMAC")});
  if (Left(c) >= 22) return ShowRows<Option>(in, c, kLast, option);
  ShowRows<Option>(in, c, kJoinFlags, option);
  ShowRows<Option>(in, c, kAddressNumber, option);
  if (Left(c) >= 12) return ShowRows<Option>(in, c, kAnswer, option);
  ShowRows<Option>(in, c, kRequest, option);
}

void ShowSignal(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kFlags = Rows<Option>({
      Hex(2, "Multipath Flags").Into(&Option::flags), Bits(4, 7, "Reserved"), Flag(11, "Data FIN"),
      Flag(12, "Data Sequence Number of 8 Octets"), Flag(13, "Data Sequence Number Present"),
      Flag(14, "Data Acknowledgment of 8 Octets"), Flag(15, "Data Acknowledgment Present")});
  static constexpr auto kAck4 = Rows<Option>({Number(4, "Data Acknowledgment")});
  static constexpr auto kAck8 = Rows<Option>({Number(8, "Data Acknowledgment")});
  static constexpr auto kNumber4 = Rows<Option>({Number(4, "Data Sequence Number")});
  static constexpr auto kNumber8 = Rows<Option>({Number(8, "Data Sequence Number")});
  static constexpr auto kMapping = Rows<Option>({Number(4, "Subflow Sequence Number"), Number(2, "Data-Level Length")});
  ShowRows<Option>(in, c, kFlags, option);
  const uint32_t flags = option.flags.value;
  if (flags & 1) ShowRows<Option>(in, c, flags & 2 ? RowSpan<Option>(kAck8) : RowSpan<Option>(kAck4), option);
  if (!(flags & 4)) return;
  ShowRows<Option>(in, c, flags & 8 ? RowSpan<Option>(kNumber8) : RowSpan<Option>(kNumber4), option);
  ShowRows<Option>(in, c, kMapping, option);
  if (Left(c) >= 2) ShowRows<Option>(in, c, kChecksum, option);
}

// Version 0 tells the version of IP where version 1 has flags; the lengths lie apart in both.
void ShowAddAddress(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kIpVersion = Rows<Option>({Word(1), Bits(4, 4, "IP Version")});
  static constexpr auto kFlags = Rows<Option>({Word(1), Bits(4, 3, "Reserved"), Flag(7, "Echo")});
  static constexpr auto kAddress4 = Rows<Option>({IPv4("Address")});
  static constexpr auto kAddress6 = Rows<Option>({IPv6("Address")});
  static constexpr auto kPort = Rows<Option>({Number(2, "Address Port")});
  static constexpr auto kHmac = Rows<Option>({Hex(8, "Truncated HMAC")});
  const uint32_t nibble = PeekU8(c) & 15;
  const bool isVersion0 = nibble == 4 || nibble == 6;
  const int32_t rest = Left(c) - 2;
  ShowRows<Option>(in, c, isVersion0 ? RowSpan<Option>(kIpVersion) : RowSpan<Option>(kFlags), option);
  ShowRows<Option>(in, c, kAddressNumber, option);
  ShowRows<Option>(in, c, rest < 16 ? RowSpan<Option>(kAddress4) : RowSpan<Option>(kAddress6), option);
  if (Left(c) == 2 || Left(c) == 10) ShowRows<Option>(in, c, kPort, option);
  if (Left(c) == 8) ShowRows<Option>(in, c, kHmac, option);
}

void ShowRemoveAddress(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kReserved = Rows<Option>({Word(1), Bits(4, 4, "Reserved")});
  ShowRows<Option>(in, c, kReserved, option);
  for (Loop loop; MoreAt(in, c, loop);) ShowRows<Option>(in, c, kAddressNumber, option);
}

void ShowPriority(const Place& in, Cursor& c, Option& option) {
  ShowRows<Option>(in, c, kJoinFlags, option);
  if (Left(c) >= 1) ShowRows<Option>(in, c, kAddressNumber, option);
}

constexpr auto kResetReasons = SortedNames({
    {0, "Unspecified error"}, {1, "MPTCP-specific error"}, {2, "Lack of resources"},
    {3, "Administratively prohibited"}, {4, "Too much outstanding data"}, {5, "Unacceptable performance"},
    {6, "Middlebox interference"}});
constexpr auto kFail = Rows<Option>({Word(2), Bits(4, 12, "Reserved"), Number(8, "Data Sequence Number")});
constexpr auto kFastClose = Rows<Option>({Word(2), Bits(4, 12, "Reserved"), Hex(8, "Receiver's Key")});
constexpr auto kReset = Rows<Option>({
    Word(1), Bits(4, 2, "Reserved"), Flag(6, "Checksum Worked"), Flag(7, "Transient"),
    Number(1, "Reason", kResetReasons)});

constexpr auto kSubtypes = Choices<Option>({
    {0, "Multipath Capable", {}, ShowCapable}, {1, "Join Connection", {}, ShowJoin},
    {2, "Data Sequence Signal", {}, ShowSignal}, {3, "Add Address", {}, ShowAddAddress},
    {4, "Remove Address", {}, ShowRemoveAddress}, {5, "Change Subflow Priority", {}, ShowPriority},
    {6, "Fallback", kFail}, {7, "Fast Close", kFastClose}, {8, "Subflow Reset", kReset}, {15, "Private Use"}});

void ShowMultipath(const Place& in, Cursor& c, Option& option) {
  const Field first = Ahead(c, 1);
  if (!first.here) return;
  Cursor peek = c;
  const Field octet = TakeU8(peek);
  const BitPicture subtype = BitsOf(octet, 0, 4);
  const Choice<Option>* known = FindChoice<Option>(kSubtypes, subtype.value);
  AddBitLine(in, octet, "%s: Subtype = %u (%s)", subtype.picture, subtype.value, known ? known->name : kUnknown);
  ShowChoice(in, c, known, option);
}

constexpr auto kCapabilities = Rows<Option>({
    Word(1), Flag(0, "Best Effort Transport Service"), Flag(1, "Selective Negative Acknowledgments, Short Form"),
    Flag(2, "Selective Negative Acknowledgments, Long Form"), Flag(3, "Header Compression"),
    Flag(4, "Network Layer Timestamps"), Bits(5, 3, "Reserved"), Number(1, "Connection ID")});

// Capabilities that are bound to a connection number, in steps of 16 bits: a space and its capabilities.
void ShowExtendedCapabilities(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kBinding = Rows<Option>({
      Word(1), Bits(0, 4, "Binding Space"), Bits(4, 4, "Extended Capability Length").Into(&Option::word)});
  static constexpr auto kData = Rows<Option>({Bytes(0, "Extended Capabilities").SizedBy(&Option::word)});
  for (Loop loop; MoreAt(in, c, loop);) {
    ShowRows<Option>(in, c, kBinding, option);
    option.word.value = option.word.value * 2 + 1;   // steps of 16 bits behind the octet that stands here
    ShowRows<Option>(in, c, kData, option);
  }
}

constexpr auto kNegative = Rows<Option>({
    Number(2, "Offset", " * maximum segment size"), Number(2, "Size", " * maximum segment size")});
void ShowSegmentsMissing(const Place& in, Cursor& c, Option&) {
  static constexpr auto kVector = Rows<NoValues>({Bytes(0, "Bit Vector")});
  if (Left(c) > 0) ShowRows(in, c, kVector);
}

constexpr auto kRates = SortedNames({
    {0, "0 kbit/s"}, {1, "80 kbit/s"}, {2, "160 kbit/s"}, {3, "320 kbit/s"}, {4, "640 kbit/s"}, {5, "1.28 Mbit/s"},
    {6, "2.56 Mbit/s"}, {7, "5.12 Mbit/s"}, {8, "10.24 Mbit/s"}, {9, "20.48 Mbit/s"}, {10, "40.96 Mbit/s"},
    {11, "81.92 Mbit/s"}, {12, "163.84 Mbit/s"}, {13, "327.68 Mbit/s"}, {14, "655.36 Mbit/s"}, {15, "1.31072 Gbit/s"}});
constexpr auto kQuickStart = Rows<Option>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Rate Request", kRates), Number(1, "TTL Difference"), Word(4),
    Bits(0, 30, "Nonce"), Bits(30, 2, "Reserved")});
constexpr auto kGranularity = SortedNames({{0, "seconds"}, {1, "minutes"}});
constexpr auto kUserTimeout =
    Rows<Option>({Word(2), Bits(0, 1, "Granularity", kGranularity), Bits(1, 15, "User Timeout")});
constexpr auto kAuthentication =
    Rows<Option>({Number(1, "Key ID"), Number(1, "Receive Next Key ID"), Bytes(0, "MAC")});
constexpr auto kCookie = Rows<Option>({Bytes(0, "Fast Open Cookie")});

// The counters of one order; those at the end may be left out.
void ShowCounters(const Place& in, Cursor& c, const char* const (&labels)[3]) {
  for (const char* label : labels) {
    if (Left(c) < 3) return;
    const Field counter = TakeU24(c);
    // keys: number EE0B, ECEB, EE1B
    AddLine(in, counter, "%s: %u", label, counter.value);
  }
}
void ShowCountersOrder0(const Place& in, Cursor& c, Option&) { ShowCounters(in, c, {"EE0B", "ECEB", "EE1B"}); }
void ShowCountersOrder1(const Place& in, Cursor& c, Option&) { ShowCounters(in, c, {"EE1B", "ECEB", "EE0B"}); }

constexpr auto kEncryptionNames = SortedNames({
    {0x20, "Reserved"}, {0x21, "TCPCRYPT_ECDHE_P256"}, {0x22, "TCPCRYPT_ECDHE_P521"},
    {0x23, "TCPCRYPT_ECDHE_Curve25519"}, {0x24, "TCPCRYPT_ECDHE_Curve448"}, {0x30, "Reserved"}});

// Suboptions of an octet; the high bit says that data follow: as many as the octet before said, or all that are left.
void ShowEncryption(const Place& in, Cursor& c, Option&) {
  uint32_t size = 0;
  for (Loop loop; MoreAt(in, c, loop);) {
    const Field octet = TakeU8(c);
    if (octet.value < 0x20) {
      const BitPicture aware = BitsOf(octet, 6, 1), role = BitsOf(octet, 7, 1);
      const Place bits = Under(in, AddLine(in, octet, "Global Suboption: 0x%.02X", octet.value));
      AddBitLine(bits, octet, "%s: Application Aware = %s", aware.picture, TrueOrFalse(aware.value));
      AddBitLine(bits, octet, "%s: Passive Role = %s", role.picture, TrueOrFalse(role.value));
    } else if (octet.value >= 0x80 && octet.value < 0xA0) {
      size = (octet.value & 31) + 1;
      AddLine(in, octet, "Suboption Length: %u", size);
    } else {
      AddLine(in, octet, "Encryption Protocol: 0x%.02X = %s", octet.value,
              LookupName(kEncryptionNames, octet.value & 0x7F));
      if (octet.value < 0x80) continue;
      const Field data = TakeBytes(c, size && static_cast<int32_t>(size) <= Left(c) ? static_cast<int32_t>(size) : Left(c));
      AddLine(in, data, "Suboption Data: %s", HexText(data));
      size = 0;
    }
  }
}

constexpr auto kExperimentNames = SortedNames({
    {0x00AC, "ACK Rate Request"}, {0x0348, "Host ID"}, {0x0A0D, "Autonomous System Compensation"},
    {0x0CA0, "Capability Option"}, {0x0ED0, "Extended Data Offset"}, {0x454E, "Encryption Negotiation"},
    {0x5323, "Service Number"}, {0x75EC, "Timestamp Interval"}, {0xACC0, "Accurate ECN, Order 0"},
    {0xACC1, "Accurate ECN, Order 1"}, {0xACCE, "Accurate ECN"}, {0xE2D4, "Shared Memory Communications over RDMA"},
    {0xF989, "Fast Open"}, {0xF990, "Low Latency"}});

void ShowExperiment(const Place& in, Cursor& c, Option& option) {
  const Field number = TakeU16(c);
  AddLine(in, number, "Experiment Identifier: 0x%.04X = %s", number.value,
          LookupName(kExperimentNames, number.value));
  switch (number.value) {
    case 0xF989: return ShowRows<Option>(in, c, kCookie, option);
    case 0xACC0: case 0xACCE: return ShowCountersOrder0(in, c, option);
    case 0xACC1: return ShowCountersOrder1(in, c, option);
    case 0x454E: return ShowEncryption(in, c, option);
    default: return;
  }
}

constexpr auto kOptions = Choices<Option>({
    {20, "SCPS Capabilities", kCapabilities, ShowExtendedCapabilities},
    {21, "Selective Negative Acknowledgements", kNegative, ShowSegmentsMissing},
    {27, "Quick-Start Response", kQuickStart}, {28, "User Timeout", kUserTimeout},
    {29, "TCP Authentication", kAuthentication}, {30, "Multipath TCP", {}, ShowMultipath},
    {34, "TCP Fast Open Cookie", kCookie}, {69, "Encryption Negotiation", {}, ShowEncryption},
    {172, "Accurate ECN Order 0", {}, ShowCountersOrder0}, {174, "Accurate ECN Order 1", {}, ShowCountersOrder1},
    {253, "Experiment 1", {}, ShowExperiment}, {254, "Experiment 2", {}, ShowExperiment}});

}  // namespace

void ShowTcpOptionValue(const Place& in, uint32_t kind, Cursor& c) {
  Option option{};
  // keys: none Data
  ShowChoice(in, c, FindChoice<Option>(kOptions, kind), option);
}

}  // namespace qxview
