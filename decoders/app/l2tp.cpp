// Layer Two Tunneling Protocol: PPP over UDP (version 2, RFC 2661) and any link over UDP or IP (version 3, RFC 3931).
//
//   version 2          flags, version   [length]   tunnel   session   [Ns, Nr]   [offset]   PPP, or AVPs
//   version 3 control  [0 over IP]   flags, version   length   control connection   Ns   Nr   AVPs
//   version 3 data     [flags, version, reserved over UDP]   session   cookie   sublayer   the frame
//
// Neither the cookie's length nor the sublayer of version 3 is in the packet: both are told by what stands behind them.
#include "decoders/app/l2tp.h"

#include "core/elements.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr uint32_t kControl = 0x8000, kLength = 0x4000, kSequence = 0x0800, kOffset = 0x0200;
constexpr uint32_t kVersionMask = 15, kPppFraming = 0xFF03;

struct L2tp {
  Field length, offset, session, sequence;
};
constexpr auto kTypeNames = SortedNames({{0, "Data"}, {1, "Control"}});
constexpr auto kFlagRows = Rows<L2tp>({
    Hex(2, "Flags and Version"), Bits(0, 1, "Type", kTypeNames), Flag(1, "Length Present"), Bits(2, 2, "Reserved"),
    Flag(4, "Sequence Present"), Bits(5, 1, "Reserved"), Flag(6, "Offset Present"), Flag(7, "Priority"),
    Bits(8, 4, "Reserved"), Bits(12, 4, "Version")});
constexpr auto kLengthRow = Rows<L2tp>({Number(2, "Length").Into(&L2tp::length)});
constexpr auto kTunnel = Rows<L2tp>({
    Number(2, "Tunnel ID").Note(", Tunnel %u"), Number(2, "Session ID").Note(", Session %u")});
constexpr auto kNumbers = Rows<L2tp>({Number(2, "Ns").Note(", Ns %u"), Number(2, "Nr").Note(", Nr %u")});
constexpr auto kOffsetRow = Rows<L2tp>({Number(2, "Offset Size").Into(&L2tp::offset)});
constexpr auto kConnection = Rows<L2tp>({Hex(4, "Control Connection ID").Note(", Connection 0x%.08X")});
constexpr auto kReserved = Rows<L2tp>({Hex(2, "Reserved")});
constexpr auto kSessionRow = Rows<L2tp>({Hex(4, "Session ID")});
constexpr auto kSublayer = Rows<L2tp>({
    Word(4), Flag(1, "Sequence Valid"), Bits(8, 24, "Sequence Number")});

// A control message behind its flags; the cursor stands on the length.
void ShowControl(const Place& in, Cursor c, uint32_t flags, bool isThree) {
  constexpr int32_t kFlagsSize = 2;
  const int32_t declared = static_cast<int32_t>(PeekU16(c)) - kFlagsSize;
  Cursor body = flags & kLength ? TakeCursor(c, declared < 2 ? 2 : declared) : TakeCursor(c, Left(c));
  L2tp l2tp{};
  if (flags & kLength) ShowRows<L2tp>(in, body, kLengthRow, l2tp);
  ShowRows<L2tp>(in, body, isThree ? RowSpan<L2tp>(kConnection) : RowSpan<L2tp>(kTunnel), l2tp);
  if (flags & kSequence) ShowRows<L2tp>(in, body, kNumbers, l2tp);
  if (Left(body) == 0) AddLine(in, Stated(body.offset, 0), "Zero-Length Body Acknowledgment");
  ShowL2tpAvps(in, body);
  AddBlock(in, Rest(body), "AVP Data");
  AddBlock(in, Rest(c), "Data");
}

int32_t DecodeTwo(const Place& in, Cursor c, uint32_t flags) {
  L2tp l2tp{};
  if (flags & kLength) ShowRows<L2tp>(in, c, kLengthRow, l2tp);
  ShowRows<L2tp>(in, c, kTunnel, l2tp);
  if (flags & kSequence) ShowRows<L2tp>(in, c, kNumbers, l2tp);
  if (flags & kOffset) {
    ShowRows<L2tp>(in, c, kOffsetRow, l2tp);
    const Field padding = TakeBytes(c, static_cast<int64_t>(l2tp.offset.value));
    if (padding.length > 0) AddLine(in, padding, "Offset Padding: %s", HexText(padding));
  }
  CoverBytes(in, c);
  return DecodeCarriedFrame(Deeper(in), c, Carried::kPpp, "PPP Data");
}

// What a session carries starts like a link or a datagram: the first place where one fits ends the cookie and the sublayer.
int32_t DecodeSession(const Place& in, Cursor c) {
  constexpr int32_t kCookies[] = {0, 4, 8}, kSublayers[] = {0, 4};
  ShowRows(in, c, kSessionRow);
  for (const int32_t cookie : kCookies) {
    for (const int32_t sublayer : kSublayers) {
      Cursor frame = c;
      const Field secret = TakeBytes(frame, cookie);
      const uint32_t first = PeekU32(frame);
      Cursor behind = frame;
      TakeBytes(behind, sublayer);
      if (sublayer && (first & 0xBF000000)) continue;   // only the bit of the sequence may be set
      const bool isPpp = PeekU16(behind) == kPppFraming;
      const Carried carried = isPpp ? Carried::kPpp : GuessCarried(behind);
      if (carried == Carried::kUnknown) continue;
      if (cookie) AddLine(in, secret, "Cookie: %s (by a guess of its length)", HexText(secret));
      if (sublayer) ShowRows(in, frame, kSublayer);
      SetRange(in, in.parent, in.parent ? c.begin : 0, frame.offset - c.begin);
      return DecodeCarriedFrame(Deeper(in), frame, carried, "Session Data");
    }
  }
  CoverBytes(in, c);
  return DecodeCarriedFrame(Deeper(in), c, Carried::kUnknown, "Session Data");
}

const char* NameMessage(const Cursor& c, uint32_t flags) {
  if (!(flags & kControl)) return "Data";
  const int32_t avps = (flags & kLength ? 4 : 2) + 4 + (flags & kSequence ? 4 : 0);
  const bool isMessage = Left(c) >= avps + 8 && PeekU16(c, avps + 2) == 0 && PeekU16(c, avps + 4) == 0;
  return isMessage ? L2tpMessageName(PeekU16(c, avps + 6)) : "Control";
}

}  // namespace

int32_t DecodeL2tp(const Place& at, Cursor c) {
  const uint32_t flags = PeekU16(c), version = flags & kVersionMask;
  if (Left(c) < 6 || (version != 2 && version != 3)) return 0;
  const bool isThree = version == 3;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "L2TP: Version %u, %s", version, NameMessage(c, flags)));
  ShowRows(in, c, kFlagRows);
  if (flags & kControl) {
    ShowControl(in, c, flags, isThree);
    return 1;
  }
  if (!isThree) return DecodeTwo(in, c, flags);
  ShowRows(in, c, kReserved);
  return DecodeSession(in, c);
}

// Over IP a session of 0 stands in front of control messages.
int32_t DecodeL2tpOverIp(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const bool isControl = PeekU32(c) == 0;
  Cursor behind = c;
  TakeBytes(behind, 4);
  const uint32_t flags = PeekU16(behind);
  const Place in = isControl ? Under(at, AddLine(at, Ahead(c, Left(c)), "L2TP: Version 3, %s", NameMessage(behind, flags)))
                             : Under(at, AddLine(at, Ahead(c, 4), "L2TP: Version 3, Session 0x%.08X", PeekU32(c)));
  if (!isControl) return DecodeSession(in, c);
  ShowRows(in, c, kSessionRow);
  ShowRows(in, c, kFlagRows);
  ShowControl(in, c, flags, true);
  return 1;
}

}  // namespace qxview
