#include "decoders/net/port_dispatch.h"

#include <cstddef>
#include <initializer_list>

#include "core/decoder.h"
#include "decoders/app/dnscrypt.h"
#include "decoders/app/ftp_data.h"
#include "decoders/app/rtcp.h"
#include "decoders/app/packet_summaries.h"
#include "decoders/app/proxy_protocol.h"
#include "decoders/app/stun.h"
#include "decoders/link/wake_on_lan.h"
#include "decoders/net/detection.h"
#include "decoders/net/dynamic_udp.h"
#include "decoders/net/stream_messages.h"
#include "decoders/net/tcp_streams.h"
#include "decoders/quic/quic.h"
#include "decoders/states.h"
#include "decoders/tls/tls.h"

namespace qxview {

int32_t DeclineData(const Place& at, Cursor c);

namespace {

constexpr int32_t kNoProtocol = -1, kDnsProtocol = 0x10001, kFtpDataProtocol = 0x1000D;
constexpr int32_t kBuiltinProtocol = 0x10000;   // the low 16 bits of the identifier are the decoder's index

bool IsEmpty(const AddressSlot& slot) {
  const int32_t first = slot.kind == kIPv4Kind ? 12 : slot.kind == kIPv6Kind ? 0 : 16;
  for (int32_t i = first; i < 16; ++i) {
    if (slot.address[i]) return false;
  }
  return true;
}

// Address definitions; a port of 0 stands for any port of the address. The table is read under its lock, which what a record
// answers does without: replays of several threads would wait for each other. False when none matches.
bool ResolveByAddress(const View* view, void* table, const AddressSlot& source, uint16_t sourcePort,
                      const AddressSlot& destination, uint16_t destinationPort, int32_t* identifier,
                      bool* matchedSource) {
  const auto ask = [&](AddressDefinition* out, StateBytes*) {
    const QxHost* host = view->engine->host;
    const auto hashFind = QXVIEW_HOST_FUNCTION(host, hashFindGenericIPPort);
    if (!hashFind) return false;
    const auto lock = QXVIEW_HOST_FUNCTION(host, lockTable), unlock = QXVIEW_HOST_FUNCTION(host, unlockTable);
    const auto finds = [&](const AddressSlot& address, uint16_t port) {
      return hashFind(host->user, table, &address, port, &out->identifier) != 0;
    };
    if (lock) lock(host->user, table);
    out->matchedSource = (!IsEmpty(source) && finds(source, 0)) || (sourcePort != 0 && finds(source, sourcePort));
    const bool isKnown = out->matchedSource != 0;
    const bool found = isKnown || (!IsEmpty(destination) && (finds(destination, 0) ||
                                                             (destinationPort != 0 && finds(destination, destinationPort))));
    if (unlock) unlock(host->user, table);
    return found;
  };
  AddressDefinition defined{};
  if (!RecallFromHost(view, kAddressDefinitions, &defined, nullptr, ask)) return false;
  *identifier = defined.identifier;
  *matchedSource = defined.matchedSource != 0;
  return true;
}

// Port definitions: the lower port, which is the service's more often than not, is tried first.
int32_t ResolveByPort(const QxHost* host, void* table, uint16_t sourcePort, uint16_t destinationPort,
                      bool* matchedSource) {
  const auto hashFind = QXVIEW_HOST_FUNCTION(host, hashFind);
  if (!hashFind) return kNoProtocol;
  int32_t identifier = 0;
  const auto has = [&](uint16_t port) { return port != 0 && hashFind(host->user, table, port, &identifier) != 0; };
  const bool sourceFirst = sourcePort < destinationPort;
  if (!sourceFirst && has(destinationPort)) return identifier;
  if (has(sourcePort)) {
    *matchedSource = true;
    return identifier;
  }
  return sourceFirst && has(destinationPort) ? identifier : kNoProtocol;
}

void StorePayload(PacketState& packet, const Cursor& c, bool matchedSource) {
  packet.payload = c.at;
  packet.payloadLength = Left(c);
  packet.payloadOffset = c.offset;
  packet.matchedSource = matchedSource ? 1 : 0;
}

// The protocols whose connections go over to TLS when both ends have agreed on it (STARTTLS and its like). What HTTP's
// proxies pass on (CONNECT) is continued data unless connections are followed.
bool MayStartTls(const View* view, int32_t identifier) {
  constexpr int32_t kHttp = 0x10004;
  constexpr int32_t kLdap = 0x10007, kFtp = 0x1000C, kFtpData = 0x1000D, kSmtp = 0x1000E, kPop3 = 0x1000F;
  constexpr int32_t kImap = 0x10250, kXmpp = 0x10252, kNntp = 0x10254, kManageSieve = 0x103F0;
  switch (identifier > 0 ? identifier & (kBuiltinProtocol | 0xFFFF) : 0) {
    case kLdap:
    case kFtp:
    case kFtpData:
    case kSmtp:
    case kPop3:
    case kImap:
    case kXmpp:
    case kNntp:
    case kManageSieve: return true;
    case kHttp: return view->engine->settings.reassembly;
    default: return false;
  }
}

// DTLS and QUIC stand on the same ports (RFC 9443), and others where QUIC is let through: what is not told by its bytes or
// its connection is left to detection.
int32_t SortDtlsAndQuic(const Place& at, int32_t identifier, int32_t index, const Cursor& c) {
  if (LooksLikeDtls(c)) return kDtlsProtocol;
  if (LooksLikeQuic(c) || IsQuicConnection(at)) return kQuicProtocol;
  return index == kQuicProtocol ? kNoProtocol : identifier;
}

// What shares a port with media: the first byte tells STUN, DTLS, TURN's channel data and media apart (RFC 7983), the
// second one RTCP from RTP (RFC 5761).
int32_t SortMedia(int32_t identifier, const Cursor& c) {
  constexpr int32_t kZrtpProtocol = kBuiltinProtocol | 0x3B1;
  constexpr uint32_t kFirstDtls = 20, kFirstChannel = 64, kLastChannel = 79, kFirstRtcp = 192, kLastRtcp = 223;
  constexpr int32_t kRtpHeader = 12;
  if (LooksLikeStun(c)) return kStunProtocol;
  const uint32_t first = PeekU8(c), second = PeekU8(c, 1);
  if (first >= kFirstDtls && first < kFirstChannel && LooksLikeDtls(c)) return kDtlsProtocol;
  if (first >= kFirstChannel && first <= kLastChannel && StartsStun(c)) return kStunProtocol;
  if (PeekIs(c, 4, "ZRTP") && first >> 4 == 1) return kZrtpProtocol;
  if (first >> 6 != 2) return identifier;
  const bool isControl = second >= kFirstRtcp && second <= kLastRtcp;
  RtcpHeader header;
  if (isControl) return ReadRtcpHeader(c, &header) && header.length <= Left(c) ? kLearntRtcp : identifier;
  return Left(c) >= kRtpHeader ? kLearntRtp : identifier;
}

// Magic packets and DNSCrypt go to any port, TLS begins within other protocols, and media share theirs: the first bytes tell
// whose a payload is.
int32_t SortByFirstBytes(const Place& at, int32_t identifier, const Cursor& c, uint8_t ipProtocol) {
  if (ipProtocol == kIpProtocolTcp && MayStartTls(at.view, identifier) && GoesOverToTls(at, c)) return kTlsProtocol;
  if (ipProtocol != kIpProtocolTcp && LooksLikeMagicPacket(c)) return kMagicPacketProtocol;
  if (StartsProxyHeader(c)) return kProxyProtocol;
  if (LooksLikeDnscrypt(at, c, ipProtocol)) return kDnscryptProtocol;
  if (AsksForDnscrypt(c, ipProtocol)) return kDnsProtocol;
  constexpr int32_t kIndex = kBuiltinProtocol | 0xFFFF;
  const int32_t index = identifier & kIndex;
  if (identifier > 0 && index == kStunProtocol) return StartsStun(c) ? identifier : kNoProtocol;
  if (ipProtocol != kIpProtocolTcp && identifier > 0 && (index == kDtlsProtocol || index == kQuicProtocol)) {
    return SortDtlsAndQuic(at, identifier, index, c);
  }
  const bool isMedia = identifier > 0 && (index == (kLearntRtp & kIndex) || index == (kLearntRtcp & kIndex));
  return isMedia && ipProtocol != kIpProtocolTcp ? SortMedia(identifier, c) : identifier;
}

const DecoderRow* RowOf(int32_t identifier) {
  const bool builtin = identifier >= 1 && (identifier & kBuiltinProtocol);
  return builtin ? FindBuiltinDecoder(static_cast<uint32_t>(identifier) & 0xFFFF) : nullptr;
}

// The decoder that the ports' definitions name beside the one that had its turn.
const DecoderRow* OtherPortsRow(const Place& at, const DecoderRow* row, uint8_t ipProtocol) {
  const PacketState& packet = PacketOf(at);
  const QxHost* host = at.view->engine->host;
  const auto definitionTable = QXVIEW_HOST_FUNCTION(host, definitionTable);
  if (!definitionTable) return nullptr;
  void* ports = definitionTable(host->user, ipProtocol == kIpProtocolTcp ? QX_TCP_PORTS : QX_UDP_PORTS);
  bool matchedSource;
  for (const uint16_t port : {packet.sourcePort, packet.destinationPort}) {
    const DecoderRow* other = ports ? RowOf(ResolveByPort(host, ports, port, 0, &matchedSource)) : nullptr;
    if (other && other != row) return other;
  }
  return nullptr;
}

// A decoder that sees at once that the bytes are none of its protocol's gives way to the one of the other port, and that
// to detection. Those whose ports are theirs alone show what they do not know as a block of theirs; SIP's is borrowed by what
// wants to pass firewalls.
bool GivesWay(const DecoderRow* row) {
  constexpr uint32_t kFirst = 0xA0, kLast = 0xCF, kFirstOfMore = 0x200, kSip = 0x64;
  return row && row->decode != DeclineData &&
         (row->key >= kFirstOfMore || (row->key >= kFirst && row->key <= kLast) || row->key == kSip);
}

bool TryOther(const Place& at, const Cursor& c, const DecoderRow* row, uint8_t ipProtocol) {
  const PacketState& packet = PacketOf(at);
  const int32_t linesLeft = packet.linesLeft;
  if (TryDecoder(Deeper(at), c, row->decode, nullptr)) return true;
  if (packet.linesLeft != linesLeft || packet.limitReached) return false;   // it showed something all the same
  const DecoderRow* other = OtherPortsRow(at, row, ipProtocol);
  if (other && TryDecoder(Deeper(at), c, other->decode, nullptr)) return true;
  return packet.linesLeft == linesLeft && at.view->engine->settings.detection.on &&
         DetectDynamicProtocol(at, c, packet.sourcePort, packet.destinationPort, ipProtocol);
}

bool IsOnQuicPort(int32_t defined) {
  return defined > 0 && (defined & (kBuiltinProtocol | 0xFFFF)) == kQuicProtocol;
}

int32_t DispatchPayload(const Place& at, Cursor c, int32_t defined, bool matchedSource, uint8_t ipProtocol) {
  PacketState& packet = PacketOf(at);
  const int32_t identifier = SortByFirstBytes(at, defined, c, ipProtocol);
  const char* unnamed = ipProtocol == kIpProtocolTcp ? "TCP Data" : "UDP Data";
  StorePayload(packet, c, matchedSource);
  c.begin = c.offset;
  const bool builtin = identifier >= 1 && (identifier & kBuiltinProtocol);
  ReachLayer(at, DispatchTable::kApplication, builtin ? static_cast<uint32_t>(identifier) & 0xFFFF : kNoApplication, c);
  if (identifier < 1) {
    if (!at.view->engine->settings.detection.on ||
        !DetectDynamicProtocol(at, c, packet.sourcePort, packet.destinationPort, ipProtocol)) {
      if (!IsOnQuicPort(defined)) return AddRawRest(at, c, unnamed), 1;
      ReachLayer(at, DispatchTable::kApplication, kQuicProtocol & 0xFFFF, c);   // a short header, whatever connection's
      if (!at.view->context->headersOnly) CallDecoder(Deeper(at), c, DecodeQuic, unnamed);
    }
    return 1;
  }
  // Indices past the last built-in decoder have no row, nor have the holes of the table.
  const DecoderRow* row = RowOf(identifier);
  const bool carries = row && row->protocol->summary == SummarizeCarried;   // whose headers go on
  constexpr uint32_t kFtp = 0x0C;
  const bool teaches = row && row->key == kFtp;   // which ends carry its data
  if (at.view->context->headersOnly && !carries && !teaches) return 1;
  char title[kProtocolNameSize + 8];
  const char* shown = unnamed;
  if (!Silent(at)) {
    const auto name = ProtocolName(at.view, identifier);
    FormatInto(title, sizeof title, "%s Data", name);
    if (name.text[0]) shown = title;
  }
  if (JoinsMessages(at, row)) {
    ShowStreamMessages(Deeper(at), c, *row, shown);
  } else if (!GivesWay(row)) {
    CallDecoder(Deeper(at), c, row ? row->decode : nullptr, shown);
  } else if (!TryOther(at, c, row, ipProtocol)) {
    AddRawRest(at, c, shown);
  }
  return 1;
}

}  // namespace

int32_t ResolveProtocol(const View* view, uint8_t ipProtocol, const AddressSlot& source, uint16_t sourcePort,
                        const AddressSlot& destination, uint16_t destinationPort, bool* matchedSource) {
  *matchedSource = false;
  const QxHost* host = view->engine->host;
  const auto definitionTable = QXVIEW_HOST_FUNCTION(host, definitionTable);
  if (!definitionTable) return kNoProtocol;
  const bool tcp = ipProtocol == kIpProtocolTcp;
  void* addresses = definitionTable(host->user, tcp ? QX_TCP_ADDRESSES : QX_UDP_ADDRESSES);
  int32_t identifier = kNoProtocol;
  if (addresses && ResolveByAddress(view, addresses, source, sourcePort, destination, destinationPort, &identifier,
                                    matchedSource)) {
    return identifier;
  }
  void* ports = definitionTable(host->user, tcp ? QX_TCP_PORTS : QX_UDP_PORTS);
  return ports ? ResolveByPort(host, ports, sourcePort, destinationPort, matchedSource) : kNoProtocol;
}

ShortText<kProtocolNameSize> ProtocolName(const View* view, int32_t identifier) {
  ShortText<kProtocolNameSize> name;
  name.text[0] = 0;
  const QxHost* host = view->engine->host;
  const auto displayName = QXVIEW_HOST_FUNCTION(host, protocolDisplayName);
  if (identifier < 1 || !displayName) return name;
  if (displayName(host->user, identifier, name.text, sizeof name.text) != 1) name.text[0] = 0;
  return name;
}

void NoteTcpSegment(const Place& at, const Cursor& c, int32_t identifier, uint32_t acknowledgement) {
  constexpr uint32_t kFin = 1, kSyn = 2, kRst = 4, kAck = 16;
  const DecoderRow* row = RowOf(identifier);
  if (!JoinsMessages(at, row)) return;
  const TcpSegment& segment = PacketOf(at).segment;
  if (segment.flags & kAck) AcknowledgeTcpStream(at, acknowledgement);
  if (segment.flags & kSyn) BeginTcpStream(at, segment.sequence, static_cast<uint16_t>(row->key));
  if (Left(c) > 0 || !(segment.flags & (kFin | kRst))) return;
  char title[kProtocolNameSize + 8];
  FormatInto(title, sizeof title, "%s Data", ProtocolName(at.view, identifier));
  ShowStreamMessages(Deeper(at), c, *row, title);
}

int32_t DispatchTcpPayload(const Place& at, Cursor c, int32_t identifier, bool matchedSource) {
  if (IsFtpData(at.view)) identifier = kFtpDataProtocol;
  return DispatchPayload(at, c, identifier, matchedSource, kIpProtocolTcp);
}

Skim SkimPayload(const Place& at, const Cursor& c, int32_t defined, uint8_t ipProtocol) {
  const PacketState& packet = PacketOf(at);
  if (ipProtocol == kIpProtocolTcp) {
    if (MayStartTls(at.view, defined)) return Skim::kNot;
    if (IsFtpData(at.view)) defined = kFtpDataProtocol;
  }
  int32_t identifier = SortByFirstBytes(at, defined, c, ipProtocol);
  if (identifier < 1) {
    if (IsOnQuicPort(defined)) return Skim::kNot;
    const bool isTold = !at.view->engine->settings.detection.on ||
                        SkimDynamicProtocol(at, c, packet.sourcePort, packet.destinationPort, ipProtocol, &identifier);
    if (!isTold) return Skim::kNot;
    if (identifier < 1) return Skim::kDone;
  }
  const DecoderRow* row = RowOf(identifier);
  if (!row || row->protocol->summary == SummarizeCarried) return Skim::kNot;
  if (!row->protocol->summary) return row->protocol->isPlain ? Skim::kDone : Skim::kNot;
  if (!MaySummarizeTls(row->protocol->summary)) return Skim::kDone;
  ReachLayer(at, DispatchTable::kApplication, row->key, c);
  return Skim::kSummary;
}

int32_t DispatchUdpPayload(const Place& at, Cursor c, int32_t identifier) {
  return DispatchPayload(at, c, identifier, false, kIpProtocolUdp);
}

}  // namespace qxview
