// GPRS tunnelling: users' packets through the core of a mobile network (GTP-U, 3GPP TS 29.281), the control messages that set
// the tunnels up (GTP version 1, TS 29.060, and 0, TS 09.60), and charging records (GTP', TS 32.295).
//
//   version 1   flags   type   length   tunnel endpoint   [sequence (2), N-PDU number, next extension type]   extensions
//   version 0   flags   type   length   sequence   flow label   N-PDU number   FF FF FF   tunnel identifier (8)
//   GTP'        flags   type   length   sequence   [version 0 with the long header: up to 20 bytes]
//
// A G-PDU does not say what it carries: IP shows itself by its first bits, PPP and Ethernet by their headers.
#include "decoders/net/gtp.h"

#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/common/mobile_identity.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr uint32_t kData = 255, kEndMarker = 254;
constexpr uint32_t kPduSession = 0x85;

constexpr auto kProtocolNames = SortedNames({{0, "GTP'"}, {1, "GTP"}});
constexpr auto kExtensionNames = SortedNames({
    {0x00, "No More Extension Headers"}, {0x01, "MBMS Support Indication"},
    {0x02, "MS Info Change Reporting Support Indication"}, {0x03, "Long PDCP PDU Number"},
    {0x20, "Service Class Indicator"}, {0x40, "UDP Port"}, {0x81, "RAN Container"}, {0x82, "Long PDCP PDU Number"},
    {0x83, "Xw RAN Container"}, {0x84, "NR RAN Container"}, {0x85, "PDU Session Container"},
    {0xC0, "PDCP PDU Number"}, {0xC1, "Suspend Request"}, {0xC2, "Suspend Response"}});
constexpr auto kSessionNames = SortedNames({
    {0, "Downlink PDU Session Information"}, {1, "Uplink PDU Session Information"}});
constexpr auto kRanNames = SortedNames({
    {0, "Downlink User Data"}, {1, "Downlink Data Delivery Status"}, {2, "Assistance Information Data"}});

struct Gtp {
  Field flags, type, length, tunnel, next, session;
};
constexpr auto kHeader1 = Rows<Gtp>({
    Hex(1, "Flags"), Bits(0, 3, "Version"), Bits(3, 1, "Protocol Type", kProtocolNames), Bits(4, 1, "Reserved"),
    Flag(5, "Extension Header Present"), Flag(6, "Sequence Number Present"), Flag(7, "N-PDU Number Present"),
    Number(1, "Message Type", GtpMessageName).Into(&Gtp::type), Number(2, "Length").Into(&Gtp::length),
    Hex(4, "Tunnel Endpoint Identifier (TEID)").Into(&Gtp::tunnel)});
constexpr auto kOptional = Rows<Gtp>({
    Number(2, "Sequence Number"), Number(1, "N-PDU Number"),
    Hex(1, "Next Extension Header Type", kExtensionNames).Into(&Gtp::next)});
constexpr auto kHeader0 = Rows<Gtp>({
    Hex(1, "Flags"), Bits(0, 3, "Version"), Bits(3, 1, "Protocol Type", kProtocolNames), Bits(4, 3, "Reserved"),
    Flag(7, "SNDCP N-PDU Number Present"), Number(1, "Message Type", GtpMessageName).Into(&Gtp::type),
    Number(2, "Length").Into(&Gtp::length), Number(2, "Sequence Number"), Number(2, "Flow Label"),
    Number(1, "SNDCP N-PDU LLC Number"), Hex(3, "Spare")});
constexpr auto kHeaderPrime = Rows<Gtp>({
    Hex(1, "Flags"), Bits(0, 3, "Version"), Bits(3, 1, "Protocol Type", kProtocolNames), Bits(4, 3, "Reserved"),
    Bits(7, 1, "Header Length Bit"), Number(1, "Message Type", GtpMessageName).Into(&Gtp::type),
    Number(2, "Length").Into(&Gtp::length), Number(2, "Sequence Number").Note(", Sequence %u")});
constexpr auto kSpare = Rows<Gtp>({Bytes(14, "Spare")});

// What extension headers hold; their length counts in words of four bytes.
constexpr auto kLength = Rows<Gtp>({Number(1, "Extension Header Length", " words")});
constexpr auto kNext = Rows<Gtp>({Hex(1, "Next Extension Header Type", kExtensionNames).Into(&Gtp::next)});
constexpr auto kServiceClass = Rows<Gtp>({Hex(1, "Service Class Indicator"), Hex(1, "Spare")});
constexpr auto kPort = Rows<Gtp>({Number(2, "UDP Port")});
constexpr auto kPdcp = Rows<Gtp>({Number(2, "PDCP PDU Number")});
constexpr auto kLongPdcp = Rows<Gtp>({
    Word(3), Bits(0, 6, "Spare"), Bits(6, 18, "Long PDCP PDU Number"), Hex(3, "Spare")});
constexpr auto kDownlink = Rows<Gtp>({
    Word(1), Bits(0, 4, "PDU Type", kSessionNames), Flag(4, "QoS Monitoring Packet"), Flag(5, "Sequence Number Presence"),
    Flag(6, "MBS Sequence Number Presence"), Bits(7, 1, "Spare"), Word(1), Flag(0, "Paging Policy Presence (PPP)"),
    Flag(1, "Reflective QoS Indicator (RQI)"), Bits(2, 6, "QoS Flow Identifier (QFI)")});
constexpr auto kUplink = Rows<Gtp>({
    Word(1), Bits(0, 4, "PDU Type", kSessionNames), Flag(4, "QoS Monitoring Packet"), Flag(5, "Downlink Delay Indication"),
    Flag(6, "Uplink Delay Indication"), Flag(7, "Sequence Number Presence"), Word(1), Flag(0, "N3/N9 Delay Indication"),
    Flag(1, "New IE Flag"), Bits(2, 6, "QoS Flow Identifier (QFI)")});
constexpr auto kPaging = Rows<Gtp>({Word(1), Bits(0, 3, "Paging Policy Indicator (PPI)"), Bits(3, 5, "Spare")});
constexpr auto kRan = Rows<Gtp>({Word(1), Bits(0, 4, "PDU Type", kRanNames), Bits(4, 4, "Flags")});

void ShowSession(const Place& in, Cursor& c, Gtp& gtp) {
  const bool isDownlink = PeekU8(c) >> 4 == 0, hasPaging = PeekU8(c, 1) & 0x80;
  ShowRows<Gtp>(in, c, isDownlink ? RowSpan<Gtp>(kDownlink) : RowSpan<Gtp>(kUplink), gtp);
  if (isDownlink && hasPaging) ShowRows<Gtp>(in, c, kPaging, gtp);
  const Field rest = Rest(c);
  if (rest.here) AddLine(in, rest, "Padding: %s", HexText(rest));
}
constexpr auto kExtensions = Choices<Gtp>({
    {0x03, "Long PDCP PDU Number", kLongPdcp}, {0x20, "Service Class Indicator", kServiceClass}, {0x40, "UDP Port", kPort},
    {0x82, "Long PDCP PDU Number", kLongPdcp}, {0x84, "NR RAN Container", kRan},
    {0x85, "PDU Session Container", {}, ShowSession}, {0xC0, "PDCP PDU Number", kPdcp}});

// Each extension header ends with the type of the next.
void ShowExtensions(const Place& at, Cursor& c, Gtp& gtp) {
  Loop loop;
  while (gtp.next.value != 0 && PeekU8(c) != 0 && MoreAt(at, c, loop)) {
    const int32_t size = static_cast<int32_t>(PeekU8(c)) * 4;
    Cursor header = TakeCursor(c, size);
    const uint32_t type = gtp.next.value;
    gtp.next = Field{};
    const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "Extension Header: %s",
                                       LookupName(kExtensionNames, type)));
    ShowRows<Gtp>(in, header, kLength, gtp);
    Cursor body = TakeCursor(header, size - 2);
    ShowChoice<Gtp>(in, body, FindChoice<Gtp>(kExtensions, type), gtp);
    ShowRows<Gtp>(in, header, kNext, gtp);
  }
}

int32_t DecodeUserData(const Place& network, const Cursor& c, bool isSession) {
  constexpr uint32_t kPppFraming = 0xFF03;
  if (PeekU16(c) == kPppFraming) return DecodeCarriedFrame(network, c, Carried::kPpp, "User Data");
  Carried carried = GuessCarried(c);
  if (carried == Carried::kUnknown && isSession && LooksLikeMacHeader(c)) carried = Carried::kEthernet;
  return DecodeCarriedFrame(network, c, carried, "User Data");
}

int32_t DecodeVersion1(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 8;
  constexpr uint32_t kAnyOptional = 7, kHasExtension = 4;
  if (Left(c) < kHeader) return 0;
  const uint32_t flags = PeekU8(c), type = PeekU8(c, 1);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "GTP: Version 1, %s, TEID 0x%.08X", GtpMessageName(type),
                                     PeekU32(c, 4)));
  Gtp gtp = ShowRows(in, c, kHeader1);
  Cursor body = TakeCursor(c, static_cast<int64_t>(gtp.length.value));
  body.begin = c.begin;
  if (flags & kAnyOptional) ShowRows<Gtp>(in, body, kOptional, gtp);
  const bool isSession = gtp.next.value == kPduSession;
  if (flags & kHasExtension) ShowExtensions(in, body, gtp);
  if (type == kData || type == kEndMarker) {
    CoverBytes(in, body);
    return DecodeUserData(Deeper(at), body, isSession);
  }
  ShowGtpElements(in, body, false);
  CoverBytes(in, body);
  return 1;
}

int32_t DecodeVersion0(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 20;
  if (Left(c) < kHeader) return 0;
  const uint32_t type = PeekU8(c, 1);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader), "GTP: Version 0, %s", GtpMessageName(type)));
  const Gtp gtp = ShowRows(in, c, kHeader0);
  const Field identifier = TakeBytes(c, 8);
  const Place tunnel = Under(in, AddLine(in, identifier, "Tunnel Identifier (TID): %s", HexDigits(identifier)));
  AddDigits(tunnel, identifier, "IMSI and NSAPI");
  Cursor body = TakeCursor(c, static_cast<int64_t>(gtp.length.value));
  body.begin = c.begin;
  if (type == kData) return DecodeUserData(Deeper(at), body, false);
  ShowGtpElements(in, body, true);
  CoverBytes(in, body);
  return 1;
}

// Charging: the long header of version 0 is that of GTP with bytes that mean nothing.
int32_t DecodePrime(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 6, kLongHeader = 20;
  const bool isLong = PeekU8(c) >> 5 == 0 && !(PeekU8(c) & 1);
  if (Left(c) < (isLong ? kLongHeader : kHeader)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "GTP': Version %u, %s", PeekU8(c) >> 5,
                                     GtpMessageName(PeekU8(c, 1))));
  Gtp gtp = ShowRows(in, c, kHeaderPrime);
  if (isLong) ShowRows<Gtp>(in, c, kSpare, gtp);
  Cursor body = TakeCursor(c, static_cast<int64_t>(gtp.length.value));
  body.begin = c.begin;
  ShowGtpElements(in, body, false);
  CoverBytes(in, body);
  return 1;
}

}  // namespace

// One entry for all: the first byte tells the version, and whether it is charging. Version 2 has another header; its bit
// where the charging protocol has its own is set for a tunnel's identifier, so that the port tells the two apart.
int32_t DecodeGtp(const Place& at, Cursor c) {
  constexpr uint16_t kChargingPort = 3386;
  const uint32_t version = PeekU8(c) >> 5;
  const bool isCharging = PacketOf(at).sourcePort == kChargingPort || PacketOf(at).destinationPort == kChargingPort;
  if (version > 2 || Left(c) < 6 || (version == 2 && !isCharging)) return 0;
  if (!(PeekU8(c) & 0x10)) return DecodePrime(at, c);
  if (version == 2) return 0;
  return version == 1 ? DecodeVersion1(at, c) : DecodeVersion0(at, c);
}

}  // namespace qxview
