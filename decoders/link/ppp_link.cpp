// Protocols of PPP that keep a link going: authentication by password (PAP, RFC 1334; SPAP), by challenge (CHAP, RFC 1994) and by
// EAP (RFC 3748), callback (CBCP), reports of quality (RFC 1989), bandwidth on demand (BAP, RFC 2125), several small packets in
// a frame (PPPMux, RFC 3153), and TCP/IP with Van Jacobson's compressed headers (RFC 1144).
#include <cstring>

#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/common/eap.h"
#include "decoders/link/carried.h"
#include "decoders/link/ppp.h"
#include "decoders/net/pseudo_head.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 4;

struct Link {
  Field code, length;
};

constexpr auto kPapNames = SortedNames({{1, "Authenticate-Request"}, {2, "Authenticate-Ack"}, {3, "Authenticate-Nak"}});
constexpr auto kChapNames = SortedNames({{1, "Challenge"}, {2, "Response"}, {3, "Success"}, {4, "Failure"}});
constexpr auto kCallbackNames = SortedNames({{1, "Callback Request"}, {2, "Callback Response"}, {3, "Callback Ack"}});

constexpr auto kPapHeader = Rows<Link>({
    Number(1, "Code", kPapNames).Into(&Link::code), Number(1, "Identifier"), Number(2, "Length").Into(&Link::length)});
constexpr auto kChapHeader = Rows<Link>({
    Number(1, "Code", kChapNames).Into(&Link::code), Number(1, "Identifier"), Number(2, "Length").Into(&Link::length)});
constexpr auto kCallbackHeader = Rows<Link>({
    Number(1, "Code", kCallbackNames).Into(&Link::code), Number(1, "Identifier"),
    Number(2, "Length").Into(&Link::length)});

constexpr auto kCredentials = Rows<Link>({Counted(1, Text(0, "Peer ID")), Counted(1, Text(0, "Password"))});
constexpr auto kCountedMessage = Rows<Link>({Counted(1, Text(0, "Message"))});
constexpr auto kChallenge = Rows<Link>({Counted(1, Bytes(0, "Value")), Text(0, "Name")});
constexpr auto kMessage = Rows<Link>({Text(0, "Message")});

constexpr auto kAddressNames = SortedNames({{1, "PSTN or ISDN"}});
constexpr auto kDelay = Rows<Link>({Number(1, "Callback Delay", " seconds")});
constexpr auto kNumber = Rows<Link>({Number(1, "Address Type", kAddressNames), Terminated(Text(0, "Address"))});
void ShowNumbers(const Place& in, Cursor& c, Link& link) {
  Loop loop;
  while (Left(c) > 1 && MoreAt(in, c, loop)) ShowRows<Link>(in, c, kNumber, link);
}
constexpr auto kCallbackOptions = Choices<Link>({
    {1, "No Callback"}, {2, "Callback to a User-Specified Number", kDelay, ShowNumbers},
    {3, "Callback to a Pre-Specified Number", kDelay, ShowNumbers},
    {4, "Callback to One of a List of Numbers", kDelay, ShowNumbers}});
constexpr ElementForm kOptionForm{.lengthCountsHeader = true};

int32_t DecodePap(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pap");
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "PAP: %s, Identifier %u", LookupName(kPapNames, PeekU8(c)),
                                     PeekU8(c, 1)));
  Link link = ShowRows(in, c, kPapHeader);
  Cursor body = TakeCursor(c, static_cast<int64_t>(link.length.value) - kHeaderSize);
  if (Left(body) > 0) {
    ShowRows<Link>(in, body, link.code.value == 1 ? RowSpan<Link>(kCredentials) : RowSpan<Link>(kCountedMessage), link);
  }
  body.ranShort = false;
  AddBlock(in, Rest(body), "PAP Data");
  CoverBytes(in, c);
  return 1;
}

int32_t DecodeChap(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "chap");
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "CHAP: %s, Identifier %u",
                                     LookupName(kChapNames, PeekU8(c)), PeekU8(c, 1)));
  Link link = ShowRows(in, c, kChapHeader);
  Cursor body = TakeCursor(c, static_cast<int64_t>(link.length.value) - kHeaderSize);
  if (Left(body) > 0) {
    ShowRows<Link>(in, body, link.code.value <= 2 ? RowSpan<Link>(kChallenge) : RowSpan<Link>(kMessage), link);
  }
  body.ranShort = false;
  AddBlock(in, Rest(body), "CHAP Data");
  CoverBytes(in, c);
  return 1;
}

// Shiva's authentication has no public layout behind the header that protocols of PPP share.
constexpr auto kShivaHeader = Rows<Link>({
    Number(1, "Code").Into(&Link::code), Number(1, "Identifier"), Number(2, "Length").Into(&Link::length)});
int32_t DecodeShiva(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "spap");
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SPAP: Code %u, Identifier %u", PeekU8(c), PeekU8(c, 1)));
  const Link link = ShowRows(in, c, kShivaHeader);
  Cursor body = TakeCursor(c, static_cast<int64_t>(link.length.value) - kHeaderSize);
  AddBlock(in, Rest(body), "SPAP Data");
  CoverBytes(in, c);
  return 1;
}

int32_t DecodePppEap(const Place& at, Cursor c) {
  if (Left(c) < kEapHeaderSize) return 0;
  AddEap(at, c);
  return 1;
}

int32_t DecodeCallback(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "cbcp");
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "CBCP: %s, Identifier %u",
                                     LookupName(kCallbackNames, PeekU8(c)), PeekU8(c, 1)));
  Link link = ShowRows(in, c, kCallbackHeader);
  Cursor body = TakeCursor(c, static_cast<int64_t>(link.length.value) - kHeaderSize);
  ShowElements<Link>(in, body, kOptionForm, "Option", kCallbackOptions, link);
  AddBlock(in, Rest(body), "Option Data");
  CoverBytes(in, c);
  return 1;
}

// ---- Link quality and bandwidth.

constexpr auto kReport = Rows<NoValues>({
    Hex(4, "Magic Number"), Number(4, "Last Out LQRs"), Number(4, "Last Out Packets"), Number(4, "Last Out Octets"),
    Number(4, "Peer In LQRs"), Number(4, "Peer In Packets"), Number(4, "Peer In Discards"), Number(4, "Peer In Errors"),
    Number(4, "Peer In Octets"), Number(4, "Peer Out LQRs"), Number(4, "Peer Out Packets"),
    Number(4, "Peer Out Octets")});
constexpr auto kSaved = Rows<NoValues>({
    Number(4, "Save In LQRs"), Number(4, "Save In Packets"), Number(4, "Save In Discards"), Number(4, "Save In Errors"),
    Number(4, "Save In Octets")});

int32_t DecodeQualityReport(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "lqr");
  if (Left(c) < 48) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 48), "Link Quality Report: Magic 0x%.08X", PeekU32(c)));
  ShowRows(in, c, kReport);
  if (Left(c) >= 20) ShowRows(in, c, kSaved);   // what the receiver saw, which it adds to its own copy
  CoverBytes(in, c);
  return 1;
}

constexpr auto kBandwidthNames = SortedNames({
    {1, "Call-Request"}, {2, "Call-Response"}, {3, "Callback-Request"}, {4, "Callback-Response"},
    {5, "Link-Drop-Query-Request"}, {6, "Link-Drop-Query-Response"}, {7, "Call-Status-Indication"},
    {8, "Call-Status-Response"}});
constexpr auto kResponseNames = SortedNames({
    {0, "Request-Ack"}, {1, "Request-Nak"}, {2, "Request-Rej"}, {3, "Request-Full-Nak"}});
// The cause values of Q.931, and one of its own.
constexpr auto kCallNames = SortedNames({
    {0, "Success"}, {1, "Unassigned or Unallocated Number"}, {2, "No Route to Specified Transit Network"},
    {3, "No Route to Destination"}, {6, "Channel Unacceptable"}, {7, "Call Awarded in an Established Channel"},
    {16, "Normal Call Clearing"}, {17, "User Busy"}, {18, "No User Responding"}, {19, "No Answer from User"},
    {20, "Subscriber Absent"}, {21, "Call Rejected"}, {22, "Number Changed"}, {26, "Non-Selected User Clearing"},
    {27, "Destination out of Order"}, {28, "Invalid Number Format"}, {29, "Facility Rejected"},
    {30, "Response to Status Enquiry"}, {31, "Normal, Unspecified"}, {34, "No Circuit Available"},
    {38, "Network out of Order"}, {41, "Temporary Failure"}, {42, "Switching Equipment Congestion"},
    {43, "Access Information Discarded"}, {44, "Requested Circuit Not Available"}, {47, "Resources Unavailable"},
    {49, "Quality of Service Unavailable"}, {50, "Requested Facility Not Subscribed"},
    {57, "Bearer Capability Not Authorized"}, {58, "Bearer Capability Not Presently Available"},
    {63, "Service or Option Not Available"}, {65, "Bearer Capability Not Implemented"},
    {66, "Channel Type Not Implemented"}, {69, "Requested Facility Not Implemented"},
    {70, "Only Restricted Digital Information Available"}, {79, "Service or Option Not Implemented"},
    {81, "Invalid Call Reference"}, {82, "Identified Channel Does Not Exist"}, {83, "No Such Suspended Call"},
    {84, "Call Identity in Use"}, {85, "No Call Suspended"}, {86, "Suspended Call Has Been Cleared"},
    {88, "Incompatible Destination"}, {91, "Invalid Transit Network Selection"}, {95, "Invalid Message"},
    {96, "Mandatory Information Element Missing"}, {97, "Message Type Not Implemented"},
    {98, "Message Not Compatible with Call State"}, {99, "Information Element Not Implemented"},
    {100, "Invalid Information Element Contents"}, {101, "Message Not Compatible with Call State"},
    {102, "Recovery on Timer Expiry"}, {111, "Protocol Error"}, {127, "Interworking, Unspecified"},
    {255, "Failure, No Reason"}});
constexpr auto kActionNames = SortedNames({{0, "No Retry"}, {1, "Retry"}});
constexpr auto kLinkMasks = SortedNames({
    {0x01, "ISDN"}, {0x02, "X.25"}, {0x04, "Analog"}, {0x08, "Switched Digital (Non-ISDN)"},
    {0x10, "ISDN Data over Voice"}});

constexpr auto kBandwidthHeader = Rows<Link>({
    Number(1, "Type", kBandwidthNames).Into(&Link::code), Number(1, "Identifier"),
    Number(2, "Length").Into(&Link::length)});
constexpr auto kResponse = Rows<Link>({Number(1, "Response Code", kResponseNames)});
constexpr auto kLinkType = Rows<Link>({Number(2, "Link Speed", " kbit/s"), Flags(1, "Link Type", kLinkMasks)});
constexpr auto kDigits = Rows<Link>({Number(1, "Unique Digits")});
constexpr auto kText = Rows<Link>({Text(0, nullptr)});
constexpr auto kDiscriminator = Rows<Link>({Number(2, "Link Discriminator")});
constexpr auto kStatus = Rows<Link>({Number(1, "Status", kCallNames), Number(1, "Action", kActionNames)});
constexpr auto kPhoneParts = Choices<Link>({
    {1, "Unique Digits", kDigits}, {2, "Subscriber Number", kText}, {3, "Phone Number Sub Address", kText}});
void ShowPhone(const Place& in, Cursor& c, Link& link) {
  ShowElements<Link>(in, c, kOptionForm, "Suboption", kPhoneParts, link);
}
constexpr auto kBandwidthOptions = Choices<Link>({
    {1, "Link-Type", kLinkType}, {2, "Phone-Delta", {}, ShowPhone}, {3, "No-Phone-Number-Needed"}, {4, "Reason", kText},
    {5, "Link-Discriminator", kDiscriminator}, {6, "Call-Status", kStatus}});

int32_t DecodeBandwidth(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "bap");
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "BAP: %s, Identifier %u",
                                     LookupName(kBandwidthNames, PeekU8(c)), PeekU8(c, 1)));
  Link link = ShowRows(in, c, kBandwidthHeader);
  Cursor body = TakeCursor(c, static_cast<int64_t>(link.length.value) - kHeaderSize);
  if (link.code.value % 2 == 0) ShowRows<Link>(in, body, kResponse, link);
  ShowElements<Link>(in, body, kOptionForm, "Option", kBandwidthOptions, link);
  AddBlock(in, Rest(body), "Option Data");
  CoverBytes(in, c);
  return 1;
}

// ---- Frames with several packets.

// Each subframe says whether a protocol stands in front of it; otherwise it is of the one before.
int32_t DecodeMultiplexed(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "pppmux");
  uint32_t protocol = 0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const bool hasProtocol = PeekU8(c) & 0x80, isLong = PeekU8(c) & 0x40;
    const int32_t length = static_cast<int32_t>(isLong ? PeekU16(c) & 0x3FFF : PeekU8(c) & 0x3F);
    const Field head = isLong ? TakeU16(c) : TakeU8(c);
    if (!head.here) break;
    Cursor subframe = TakeCursor(c, length);
    const Place in = Under(at, AddLine(at, Stated(head.offset, head.length + Left(subframe)), "PPP Subframe: %d bytes", length));
    const BitPicture flag = BitsOf(head, 0, 1), extended = BitsOf(head, 1, 1), size = BitsOf(head, 2, isLong ? 14 : 6);
    AddBitLine(in, head, "%s: Protocol Present = %s", flag.picture, TrueOrFalse(flag.value));
    AddBitLine(in, head, "%s: Length Extension = %s", extended.picture, TrueOrFalse(extended.value));
    AddBitLine(in, head, "%s: Length = %u", size.picture, size.value);
    if (hasProtocol) {
      const Field number = PeekU8(subframe) & 1 ? TakeU8(subframe) : TakeU16(subframe);
      AddLine(in, number, "Protocol: 0x%.04X = %s", number.value, PppProtocolName(number.value));
      protocol = number.value;
    }
    if (protocol) {
      DispatchPppProtocol(in, Deeper(at), subframe, protocol);
    } else {
      AddBlock(in, Rest(subframe), "Default Protocol Data");
    }
  }
  return 1;
}

// ---- Van Jacobson.

constexpr auto kChanges = Rows<NoValues>({
    Hex(1, "Change Mask"), Flag(1, "Connection Number (C)"), Flag(2, "Packet ID (I)"), Flag(3, "Push (P)"),
    Flag(4, "Sequence Number (S)"), Flag(5, "Acknowledgment (A)"), Flag(6, "Window (W)"), Flag(7, "Urgent Pointer (U)")});
constexpr auto kConnection = Rows<NoValues>({Number(1, "Connection Number")});
constexpr auto kTcpChecksum = Rows<NoValues>({Hex(2, "TCP Checksum")});

// A change is a byte, or a zero and two bytes.
void AddDelta(const Place& in, Cursor& c, const char* label) {
  if (PeekU8(c) != 0 || Left(c) < 1) {
    const Field delta = TakeU8(c);
    AddLine(in, delta, "%s: %u", label, delta.value);   // keys: number Packet ID Delta, Sequence Delta, Acknowledgment Delta, Window Delta, Urgent Pointer
    return;
  }
  const Field zero = TakeU8(c), delta = TakeU16(c);
  if (delta.here) AddLine(in, Stated(zero.offset, 3), "%s: %u", label, delta.value);
}

int32_t DecodeVjCompressed(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "vj");
  constexpr uint32_t kC = 0x40, kI = 0x20, kS = 0x08, kA = 0x04, kW = 0x02, kU = 0x01;
  constexpr uint32_t kEchoed = kS | kW | kU, kUnidirectional = kS | kA | kW | kU;   // the most frequent changes have no bytes
  if (Left(c) < 3) return 0;
  const uint32_t mask = PeekU8(c), special = mask & kUnidirectional;
  const bool isSpecial = special == kEchoed || special == kUnidirectional;
  const Place in = Under(at, AddLine(at, Ahead(c, 3), "VJ Compressed TCP%s%s", special == kEchoed ? ", Echoed Data" : "",
                                     special == kUnidirectional ? ", Unidirectional Data" : ""));
  ShowRows(in, c, kChanges);
  if (mask & kC) ShowRows(in, c, kConnection);
  ShowRows(in, c, kTcpChecksum);
  if (!isSpecial) {
    if (mask & kU) AddDelta(in, c, "Urgent Pointer");
    if (mask & kW) AddDelta(in, c, "Window Delta");
    if (mask & kA) AddDelta(in, c, "Acknowledgment Delta");
    if (mask & kS) AddDelta(in, c, "Sequence Delta");
  }
  if (mask & kI) AddDelta(in, c, "Packet ID Delta");
  CoverBytes(in, c);
  return CallDecoder(Deeper(at), c, nullptr, "TCP Data"), 1;
}

constexpr auto kIpHeader = Rows<NoValues>({
    Word(1), Bits(0, 4, "IP Version"), Bits(4, 4, "IP Header Length", " words"), Hex(1, "Type of Service"),
    Number(2, "Total Length"), Hex(2, "Identification"), Hex(2, "Fragment"), Number(1, "Time to Live"),
    Number(1, "Connection Number"), Hex(2, "Header Checksum"), IPv4("Source Address"), IPv4("Destination Address")});

// A whole datagram that has the number of its connection where the protocol stood, which is TCP.
int32_t DecodeVjUncompressed(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "vj");
  constexpr uint8_t kTcp = 6;
  const int32_t header = static_cast<int32_t>(PeekU8(c) & 15) * 4, total = static_cast<int32_t>(PeekU16(c, 2));
  if (Left(c) < 20 || PeekU8(c) >> 4 != 4 || header < 20 || total < header || Left(c) < header) return 0;
  const Field whole = PeekBytes(c, 0, header);
  const Place in = Under(at, AddLine(at, Ahead(c, header), "VJ Uncompressed TCP: Connection %u, %s -> %s", PeekU8(c, 9),
                                     IPv4Text(PeekBytes(c, 12, 4).bytes), IPv4Text(PeekBytes(c, 16, 4).bytes)));
  PacketState& packet = PacketOf(at);
  BeginDatagram(packet);
  packet.ipProtocol = kTcp;
  packet.source = packet.destination = AddressSlot{};
  std::memcpy(packet.source.address + 12, PeekBytes(c, 12, 4).bytes, 4);
  std::memcpy(packet.destination.address + 12, PeekBytes(c, 16, 4).bytes, 4);
  packet.source.kind = packet.destination.kind = kIPv4Kind;
  packet.network.totalLength = total - header;
  packet.network.pseudoHead = PseudoHeadOf(whole.bytes, kTcp, static_cast<uint32_t>(total - header));
  ShowRows(in, c, kIpHeader);
  const Field options = TakeBytes(c, header - 20);
  if (options.length > 0) AddLine(in, options, "IP Options: %s", HexText(options));
  Cursor payload = TakeCursor(c, total - header);
  ReachLayer(at, DispatchTable::kIpProtocol, kTcp, payload);
  return CallDecoder(Deeper(at), payload, FindIpProtocol(kTcp)->decode, "TCP Data");
}

}  // namespace

DecoderFunction FindPppLink(uint32_t protocol) {
  switch (protocol) {
    case 0xC023: return DecodePap;
    case 0xC223: return DecodeChap;
    case 0xC027: return DecodeShiva;
    case 0xC227: return DecodePppEap;
    case 0xC029: return DecodeCallback;
    case 0xC025: return DecodeQualityReport;
    case 0xC02D: return DecodeBandwidth;
    case 0x0059: return DecodeMultiplexed;
    case 0x002D: return DecodeVjCompressed;
    case 0x002F: return DecodeVjUncompressed;
    default: return nullptr;
  }
}

}  // namespace qxview
