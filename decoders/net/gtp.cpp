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
#include "decoders/net/gtp_parts.h"

namespace qxview {
namespace {

constexpr uint32_t kData = 255, kEndMarker = 254;
constexpr uint32_t kPduSession = 0x85;

constexpr auto kProtocolNames = SortedNames({{0, "GTP'"}, {1, "GTP"}});
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
    Hex(1, "Next Extension Header Type", GtpExtensionName).Into(&Gtp::next)});
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
  if (flags & kHasExtension) ShowGtpExtensions(in, body, gtp.next.value);
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
