#include "decoders/net/detection.h"

#include "core/custom_libraries.h"
#include "core/decoder.h"
#include "decoders/app/http2.h"
#include "decoders/app/rtcp.h"
#include "decoders/app/stun.h"
#include "decoders/ipsec/wireguard.h"
#include "decoders/net/dynamic_udp.h"
#include "decoders/net/learn.h"
#include "decoders/net/port_dispatch.h"
#include "decoders/net/recognisers.h"
#include "decoders/net/stream_messages.h"
#include "decoders/quic/quic.h"
#include "decoders/tls/tls.h"

namespace qxview {
namespace {

constexpr int32_t kLearntOncRpc = 0x201008E, kLearntQuic = QX_OVER_UDP | kQuicProtocol;
constexpr int32_t kMpegTsProtocol = 0x103B7;
constexpr uint32_t kRtcpDetection = 2;   // of the first word of settings, as those of the next line
constexpr uint32_t kMsrpcDetection = 8, kFixDetection = 16;   // of the first word of settings
constexpr uint32_t kGiopDetection = 0x400;                    // of the second

// A payload that is looked at, and between which ports it was carried.
struct Offered {
  const Settings& settings;
  uint16_t sourcePort, destinationPort;
};

// The settings and ports that a row of the table asks for.
using Condition = bool (*)(const Offered& offered);
bool Always(const Offered&) { return true; }
bool MsrpcIsOn(const Offered& offered) { return offered.settings.detection.flags & kMsrpcDetection; }
bool FixIsOn(const Offered& offered) { return offered.settings.detection.flags & kFixDetection; }
bool GiopIsOn(const Offered& offered) { return offered.settings.detection.flags2 & kGiopDetection; }
bool TdsIsOn(const Offered& offered) { return !offered.settings.detection.tdsOff; }
// A message of HTTP says where it ends, so that the next one is found: where messages are joined, any port may have it.
bool MessagesAreJoined(const Offered& offered) { return offered.settings.reassembly; }
bool IsExternalPort(const Offered& offered) {
  const uint16_t port = offered.settings.externalDecoderPort;
  return port != 0 && (offered.sourcePort == port || offered.destinationPort == port);
}

struct DetectionRow {
  Recogniser recognise;   // null: the external plug-in, which tells by decoding
  Condition applies;
  int32_t identifier;     // learnt; its low 16 bits are the decoder's index
};

// Over TCP. The first row that recognises the payload has it, so the order is behaviour.
constexpr DetectionRow kOverTcp[] = {
    {LooksLikeMsrpc, MsrpcIsOn, 0x1050080},
    {LooksLikeSmb, Always, 0x1010065},
    {LooksLikeTds, TdsIsOn, 0x1030061},
    {LooksLikeTns, Always, 0x1030060},
    {LooksLikeOncRpcRecord, Always, 0x1010063},
    {LooksLikeFix, FixIsOn, 0x105009A},
    {LooksLikeSip, Always, 0x1010064},
    {nullptr, IsExternalPort, 0},
    {LooksLikeGiop, GiopIsOn, 0x10500B1},
    {LooksLikeFcip, Always, 0x1010070},
    {LooksLikeBitTorrent, Always, 0x101007E},
    {StartsTlsHello, Always, 0x101001E},
    {StartsHttp2, Always, 0x1010390},
    {StartsHttp2Settings, Always, 0x1010390},
    {AsksForWebSocket, Always, 0x1010004},
    {LooksLikeHttp, MessagesAreJoined, 0x1010004},
};

// The decoder behind the identifier, or, where it has none or declines, a block under the protocol's display name.
void DecodeRecognised(const Place& at, const Cursor& c, int32_t identifier) {
  ReachLayer(at, DispatchTable::kApplication, static_cast<uint32_t>(identifier) & 0xFFFF, c);
  if (at.view->context->headersOnly) return;
  const DecoderRow* row = FindBuiltinDecoder(static_cast<uint32_t>(identifier) & 0xFFFF);
  char title[kProtocolNameSize + 8] = "Data";
  if (!Silent(at)) {
    const auto known = ProtocolName(at.view, identifier);
    const char* name = known.text[0] || !row ? known.text : row->name;
    FormatInto(title, sizeof title, "%s Data", name);
  }
  if (JoinsMessages(at, row)) {
    ShowStreamMessages(Deeper(at), c, *row, title);
  } else {
    CallDecoder(Deeper(at), c, row ? row->decode : nullptr, title);
  }
}

// What a payload shows itself to be.
struct Recognised {
  enum class Learns : uint8_t { kNothing, kBefore, kBehind };   // the stream's protocol: in front of the decode, or behind it
  int32_t identifier;   // 0: the external plug-in has shown it
  Learns learns = Learns::kNothing;
  bool hasRecord = false;
  DynamicRecord record{};
};
using Learns = Recognised::Learns;

bool RecogniseOverTcp(const Place& at, const Cursor& c, const Offered& offered, Recognised& out) {
  if (LooksLikeStunOverTcp(c)) return out = {kStunProtocol}, true;   // connections are tried out for media, which follow there
  for (const DetectionRow& row : kOverTcp) {
    if (!row.applies(offered)) continue;
    if (!row.recognise) {
      if (!PacketOf(at).quoted && OfferExternal(Deeper(at), c)) return out = {0}, true;
    } else if (row.recognise(c)) {
      return out = {row.identifier, Learns::kBehind}, true;
    }
  }
  return false;
}

bool RecogniseOverUdp(const Place& at, const Cursor& c, const Offered& offered, Recognised& out) {
  const DetectionSettingsWords& words = offered.settings.detection;
  const DetectionSettings settings{words.flags, words.flags2, words.tdsOff ? 1 : 0};
  // Each of these messages shows itself, and STUN's port is of media as well: nothing to learn.
  if (LooksLikeStun(c)) return out = {kStunProtocol}, true;
  if (LooksLikeWireGuard(c)) return out = {kWireGuardProtocol}, true;
  if (LooksLikeMpegTs(c)) return out = {kMpegTsProtocol}, true;
  if (LooksLikeOncRpc(c)) return out = {kLearntOncRpc, Learns::kBehind}, true;
  // Learnt first: the record belongs to the stream whatever its decoder makes of the payload.
  uint32_t identifier;
  out = {0, Learns::kBefore, true};
  if (DetermineDynamicUDPPrototol(&settings, offered.sourcePort, offered.destinationPort, c.at, Left(c), &identifier, nullptr,
                                  nullptr, &out.record)) {
    return out.identifier = static_cast<int32_t>(identifier), true;
  }
  // Media that STUN and DTLS have made way for. On QUIC's port a short header may look so, whose connection is not known.
  constexpr uint16_t kQuicPort = 443;
  const bool isOnQuicPort = offered.sourcePort == kQuicPort || offered.destinationPort == kQuicPort;
  const bool isRtcp = (words.flags & kRtcpDetection) && !isOnQuicPort && SrtcpIndexAt(c) > 0;
  if (isRtcp) return out = {kLearntRtcp, Learns::kBefore}, true;
  if (LooksLikeDtls(c) || GoesOnAsDtls(at, c)) return out = {kDtlsProtocol}, true;   // as with STUN
  if (LooksLikeQuic(c)) return out = {kLearntQuic, Learns::kBefore}, true;   // short headers say nothing
  return false;
}

bool Recognise(const Place& at, const Cursor& c, const Offered& offered, uint8_t ipProtocol, Recognised& out) {
  return ipProtocol == kIpProtocolTcp ? RecogniseOverTcp(at, c, offered, out) : RecogniseOverUdp(at, c, offered, out);
}

}  // namespace

int32_t DetectDynamicProtocol(const Place& at, Cursor c, uint16_t sourcePort, uint16_t destinationPort,
                              uint8_t ipProtocol) {
  if (Left(c) < 1) return 0;
  const Offered offered{at.view->engine->settings, sourcePort, destinationPort};
  Recognised found;
  if (!Recognise(at, c, offered, ipProtocol, found)) return 0;
  if (!found.identifier) return 1;
  const AddressSlot source = PacketOf(at).source;   // a carried datagram would put its own in its place
  const uint32_t transport = ipProtocol == kIpProtocolTcp ? QX_OVER_TCP : QX_OVER_UDP;
  const auto learn = [&] {
    Learn(at.view, transport, found.identifier, source, sourcePort, -1, -1, found.hasRecord ? &found.record : nullptr);
  };
  if (found.learns == Learns::kBefore) learn();
  DecodeRecognised(at, c, found.identifier);
  if (found.learns == Learns::kBehind) learn();
  return 1;
}

bool SkimDynamicProtocol(const Place& at, const Cursor& c, uint16_t sourcePort, uint16_t destinationPort, uint8_t ipProtocol,
                         int32_t* identifier) {
  const Offered offered{at.view->engine->settings, sourcePort, destinationPort};
  if (ipProtocol == kIpProtocolTcp && IsExternalPort(offered)) return false;
  Recognised found;
  *identifier = Recognise(at, c, offered, ipProtocol, found) ? found.identifier : 0;
  return !*identifier || found.learns == Learns::kNothing;
}

}  // namespace qxview
