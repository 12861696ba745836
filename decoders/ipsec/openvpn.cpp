// OpenVPN (draft-ietf-openvpn-wire-protocol): who opens a tunnel, which control packets were acknowledged, how much
// went through it? Control packets may be signed or encrypted by keys that both ends were given; nothing in them says
// so, so the layout is taken that is plausible, and the line says which.
//
//   of TCP: length (2)   opcode and key (1)   session (8)   [HMAC (16 to 64)   packet (4)   time (4)]
//   count of acknowledged packets (1)   their numbers (4 each)   [the other end's session (8)]   packet (4)   TLS
#include "core/engine.h"
#include "core/rows.h"
#include "decoders/ipsec/openvpn_streams.h"

namespace qxview {
namespace {

constexpr uint32_t kControl = 4, kAck = 5, kData1 = 6, kData2 = 9, kReset3 = 10, kControlWkc = 11;
constexpr int32_t kHeaderSize = 9;         // opcode and session
constexpr int32_t kProtectionSize = 8;     // packet number and time
constexpr int32_t kCryptTag = 32;
constexpr uint32_t kMostAcks = 8;
constexpr int32_t kTlsIndex = 0x1E;        // of the registry

constexpr auto kOpcodeNames = SortedNames({
    {1, "P_CONTROL_HARD_RESET_CLIENT_V1"}, {2, "P_CONTROL_HARD_RESET_SERVER_V1"}, {3, "P_CONTROL_SOFT_RESET_V1"},
    {4, "P_CONTROL_V1"}, {5, "P_ACK_V1"}, {6, "P_DATA_V1"}, {7, "P_CONTROL_HARD_RESET_CLIENT_V2"},
    {8, "P_CONTROL_HARD_RESET_SERVER_V2"}, {9, "P_DATA_V2"}, {10, "P_CONTROL_HARD_RESET_CLIENT_V3"},
    {11, "P_CONTROL_WKC_V1"}});

struct OpenVpn {
  Field opcode, keyId, hmacSize, acks, message;
  uint64_t session;
};

constexpr auto kType = Rows<OpenVpn>({
    Hex(1, "Type"), Bits(0, 5, "Opcode", kOpcodeNames).Into(&OpenVpn::opcode), Bits(5, 3, "Key ID").Into(&OpenVpn::keyId)});
constexpr auto kPeer = Rows<OpenVpn>({Number(3, "Peer ID").Note(", Peer %u")});
constexpr auto kSession = Rows<OpenVpn>({Hex(8, "Session ID").Into(&OpenVpn::session)});
constexpr auto kHmac = Rows<OpenVpn>({Bytes(0, "HMAC").SizedBy(&OpenVpn::hmacSize)});
constexpr auto kReplay = Rows<OpenVpn>({Number(4, "Packet ID"), UnixTime(4, "Net Time")});
constexpr auto kAckCount = Rows<OpenVpn>({Number(1, "Acknowledged Packets").Into(&OpenVpn::acks)});
constexpr auto kAckRow = Rows<OpenVpn>({Number(4, "Acknowledged Packet ID").Note(", Acknowledged %u")});
constexpr auto kRemote = Rows<OpenVpn>({Hex(8, "Remote Session ID")});
constexpr auto kMessage = Rows<OpenVpn>({Number(4, "Message Packet ID").Note(", Packet %u").Into(&OpenVpn::message)});

enum class Wrapping { kUnknown, kPlain, kSigned, kEncrypted };
struct Layout {
  Wrapping wrapping;
  int32_t hmacSize;
};

bool IsTime(uint32_t seconds) { return seconds > 0x40000000 && seconds < 0x90000000; }   // 2004 to 2046

// Whether acknowledgements and a packet number can stand at `at`: both count from 0 for each session.
bool HasMessage(const Cursor& c, int32_t at, uint32_t opcode) {
  constexpr uint32_t kMostNumber = 0xFFFF;
  if (at >= Left(c)) return false;
  const uint32_t acks = PeekU8(c, at);
  if (acks > kMostAcks) return false;
  const int32_t count = static_cast<int32_t>(acks);
  const int32_t numbers = at + 1 + 4 * count + (count > 0 ? 8 : 0);
  const int32_t end = numbers + (opcode == kAck ? 0 : 4);
  if (end > Left(c) || (opcode == kAck && (end != Left(c) || acks == 0))) return false;
  for (int32_t i = 0; i < count; ++i) {
    if (PeekU32(c, at + 1 + 4 * i) > kMostNumber) return false;
  }
  return opcode == kAck || PeekU32(c, numbers) <= kMostNumber;
}

// Where both ends have a key for it, packets are numbered from 1; clients that bring their own start elsewhere.
Layout GuessLayout(const Cursor& c, uint32_t opcode) {
  constexpr uint32_t kMostPacket = 0xFFFFFF;
  constexpr int32_t kHmacSizes[] = {20, 32, 16, 28, 48, 64};
  const uint32_t packet = PeekU32(c, kHeaderSize);
  const bool mayBeSealed = packet > 0 && IsTime(PeekU32(c, kHeaderSize + 4)) &&
                           Left(c) >= kHeaderSize + kProtectionSize + kCryptTag;
  if (mayBeSealed && packet <= kMostPacket) return {Wrapping::kEncrypted, kCryptTag};
  if (HasMessage(c, kHeaderSize, opcode)) return {Wrapping::kPlain, 0};
  for (const int32_t size : kHmacSizes) {
    const int32_t at = kHeaderSize + size;
    if (PeekU32(c, at) == 0 || PeekU32(c, at) > kMostPacket || !IsTime(PeekU32(c, at + 4))) continue;
    if (HasMessage(c, at + kProtectionSize, opcode)) return {Wrapping::kSigned, size};
  }
  return {mayBeSealed ? Wrapping::kEncrypted : Wrapping::kUnknown, mayBeSealed ? kCryptTag : 0};
}

const char* WrappingName(Wrapping wrapping) {
  return wrapping == Wrapping::kPlain       ? ""
         : wrapping == Wrapping::kSigned    ? " (assuming tls-auth)"
         : wrapping == Wrapping::kEncrypted ? " (assuming tls-crypt)"
                                            : " (of a layout that is not known)";
}

// The records at the cursor, which stand at this place in the session's stream. False when nothing is known to begin there.
bool ShowRecords(const Place& at, Cursor c, uint32_t position, uint32_t session) {
  const DecoderRow* row = FindBuiltinDecoder(kTlsIndex);
  c.begin = c.offset;
  PacketState& packet = PacketOf(at);
  const TcpSegment carrier = packet.segment;   // of OpenVPN itself; TLS asks for the segment of its records
  packet.segment = TcpSegment{.payload = c.at, .length = Left(c), .sequence = session + position, .flags = 0, .here = true};
  const bool isShown = row && TryDecoder(Deeper(at), c, row->decode, "OpenVPN TLS Data");
  packet.segment = carrier;
  return isShown;
}

void ShowTls(const Place& at, const Place& in, Cursor& c, const OpenVpn& vpn) {
  if (Left(c) < 1) return;
  const uint32_t session[2] = {static_cast<uint32_t>(vpn.session >> 32), static_cast<uint32_t>(vpn.session)};
  const VpnPieceKey key{DirectionOf(PacketOf(at)), {session[0], session[1]}, vpn.keyId.value, vpn.message.value};
  Cursor joined;
  VpnRun run{};
  const bool isKept = vpn.message.here && !PacketOf(at).quoted;
  if (isKept) run = TakeVpnData(at, c, key, &joined);
  const bool joins = isKept && at.view->engine->settings.reassembly;
  const Cursor own = c;
  const Field data = Rest(c);
  if (joins && run.isSeen) {
    AddLine(in, data, "TLS Data: %d bytes (came before)", data.length);
  } else if (joins && run.isAhead) {
    AddLine(in, data, "TLS Data: %d bytes (kept, what is before them is missing)", data.length);
  } else if (joins && run.isPlaced) {
    const Field rest = Slice(data, run.own, data.length - run.own);
    if (rest.length > 0) AddLine(in, rest, "TLS Data: %d bytes (kept for the rest of their record)", rest.length);
    const Cursor shown = run.pieceCount > 0 ? joined : CursorOver(Slice(data, 0, run.shown));
    if (run.shown > 0) ShowRecords(at, shown, run.position, session[1]);
  } else if (!ShowRecords(at, own, run.position, session[1])) {
    AddLine(in, data, "TLS Data: %d bytes (continued)", data.length);
  }
}

// A client's key, wrapped for the server, stands at the end; its own end says how long it is.
void ShowSealed(const Place& in, Cursor& c, uint32_t opcode) {
  constexpr int32_t kLengthSize = 2;
  const int32_t left = Left(c);
  const bool hasKey = opcode == kReset3 || opcode == kControlWkc;
  const int32_t key = hasKey ? static_cast<int32_t>(PeekU16(c, left - kLengthSize)) : 0;
  const Field sealed = TakeBytes(c, key >= kLengthSize && key <= left ? left - key : left);
  if (sealed.length > 0) AddLine(in, sealed, "Encrypted Data: %d bytes", sealed.length);
  const Field wrapped = TakeBytes(c, Left(c) - kLengthSize);
  AddLine(in, wrapped, "Wrapped Client Key: %d bytes", wrapped.length);
  const Field size = TakeU16(c);
  AddLine(in, size, "Wrapped Client Key Length: %u", size.value);
}

void ShowControl(const Place& at, const Place& in, Cursor& c, const Layout& layout, OpenVpn& vpn) {
  const uint32_t opcode = vpn.opcode.value;
  ShowRows<OpenVpn>(in, c, kSession, vpn);
  vpn.hmacSize.value = static_cast<uint32_t>(layout.hmacSize);
  if (layout.wrapping == Wrapping::kEncrypted) {
    ShowRows<OpenVpn>(in, c, kReplay, vpn);
    ShowRows<OpenVpn>(in, c, kHmac, vpn);
  } else if (layout.wrapping == Wrapping::kSigned) {
    ShowRows<OpenVpn>(in, c, kHmac, vpn);
    ShowRows<OpenVpn>(in, c, kReplay, vpn);
  }
  if (layout.wrapping == Wrapping::kEncrypted || layout.wrapping == Wrapping::kUnknown) {
    ShowSealed(in, c, opcode);
    return;
  }
  ShowRows<OpenVpn>(in, c, kAckCount, vpn);
  Loop loop;
  for (uint32_t i = 0; i < vpn.acks.value && MoreAt(in, c, loop); ++i) ShowRows<OpenVpn>(in, c, kAckRow, vpn);
  if (vpn.acks.value > 0) ShowRows<OpenVpn>(in, c, kRemote, vpn);
  if (opcode != kAck) ShowRows<OpenVpn>(in, c, kMessage, vpn);
  if (opcode == kControl) {
    ShowTls(at, in, c, vpn);
    return;
  }
  AddBlock(in, Rest(c), "OpenVPN Data");
}

bool IsOpcode(uint32_t opcode) { return opcode >= 1 && opcode <= kControlWkc; }

// Over TCP the packet's length stands in front of it.
int32_t DecodePacket(const Place& at, Cursor& c, bool hasLength) {
  const Cursor start = c;
  const Field length = hasLength ? TakeU16(c) : Field{};
  c.begin = c.offset;
  const uint32_t opcode = PeekU8(c) >> 3;
  const bool isData = opcode == kData1 || opcode == kData2;
  if (!IsOpcode(opcode) || Left(c) < (isData ? 2 : kHeaderSize)) return 0;
  const Layout layout = isData ? Layout{Wrapping::kPlain, 0} : GuessLayout(c, opcode);
  const Place in = Under(at, AddLine(at, Ahead(start, Left(start)), "OpenVPN: %s%s", LookupName(kOpcodeNames, opcode),
                                     WrappingName(layout.wrapping)));
  AddLine(in, length, "Packet Length: %u", length.value);
  OpenVpn vpn = ShowRows(in, c, kType);
  if (!isData) {
    ShowControl(at, in, c, layout, vpn);
    return 1;
  }
  if (opcode == kData2) ShowRows<OpenVpn>(in, c, kPeer, vpn);
  const Field sealed = Rest(c);
  AddLine(in, sealed, "Encrypted Data: %d bytes", sealed.length);
  return 1;
}

}  // namespace

int32_t DecodeOpenVpn(const Place& at, Cursor c) { return DecodePacket(at, c, false); }

// Each packet stands behind its length; a segment may start within one.
int32_t DecodeOpenVpnOverTcp(const Place& at, Cursor c) {
  constexpr int32_t kLengthSize = 2;
  if (Left(c) <= kLengthSize || PeekU16(c) == 0 || !IsOpcode(PeekU8(c, kLengthSize) >> 3)) return 0;
  Loop loop;
  while (Left(c) > kLengthSize && PeekU16(c) > 0 && IsOpcode(PeekU8(c, kLengthSize) >> 3) && MoreAt(at, c, loop)) {
    Cursor packet = TakeCursor(c, int64_t{PeekU16(c)} + kLengthSize);
    Cursor whole = packet;
    if (!DecodePacket(at, packet, true)) AddRawRest(at, whole, "OpenVPN Data");
  }
  AddRawRest(at, c, "OpenVPN Data");
  return 1;
}

}  // namespace qxview
