#include "decoders/app/packet_summaries.h"

#include "core/decoder.h"
#include "decoders/app/http_summary.h"
#include "decoders/app/layer_summaries.h"
#include "decoders/app/rtcp.h"
#include "decoders/app/rtp_summary.h"
#include "decoders/app/tls_record.h"
#include "decoders/link/llc.h"
#include "decoders/states.h"
#include "core/top_line.h"

namespace qxview {
namespace {

constexpr int32_t kEverything = -1;      // of a message's text, of commands
constexpr int32_t kMostTelnetData = 80;
constexpr int32_t kUnicastDns = 0, kLinkLocalDns = 1, kMulticastDns = 2;

// The length hint is the payload's plus the two bytes of the prefix that TCP puts in front.
int32_t SummarizeDnsVariant(const SummaryInput& in, char* out, int32_t size, int32_t variant) {
  constexpr int32_t kTcp = 6, kUdp = 17;
  TextBuffer summary{static_cast<uint16_t>(size), out};
  const int32_t hint = in.length + 2 < UINT16_MAX ? in.length + 2 : UINT16_MAX;
  return DescribeDns(in.data, in.length, &summary, in.isTcp ? kTcp : kUdp, static_cast<uint16_t>(hint), variant);
}

}  // namespace

int32_t SummarizeCarried(const SummaryInput&, char*, int32_t) { return 0; }

int32_t SummarizeDns(const SummaryInput& in, char* out, int32_t size) {
  return SummarizeDnsVariant(in, out, size, kUnicastDns);
}
int32_t SummarizeLlmnr(const SummaryInput& in, char* out, int32_t size) {
  return SummarizeDnsVariant(in, out, size, kLinkLocalDns);
}
int32_t SummarizeMdns(const SummaryInput& in, char* out, int32_t size) {
  return SummarizeDnsVariant(in, out, size, kMulticastDns);
}

int32_t SummarizeTls(const SummaryInput& in, char* out, int32_t size) {
  const int32_t port = in.sourcePort < in.destinationPort ? in.sourcePort : in.destinationPort;
  return DescribeTls(in.data, in.length, out, size, port, in.tls);
}

int32_t SummarizeHttp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeHttp(in.data, in.length, out, size, 0);
}

// Plain HTTP on a port of HTTPS is shown as it is; anything else there is the middle of a record.
int32_t SummarizeHttps(const SummaryInput& in, char* out, int32_t size) {
  constexpr int32_t kRequest = 1, kReply = 2;
  if (StartsTlsRecord(in.data, in.length)) return SummarizeTls(in, out, size);
  const int32_t kind = DescribeHttp(in.data, in.length, out, size, 0);
  return kind == kRequest || kind == kReply ? kind : SummarizeTls(in, out, size);
}

int32_t SummarizeFtp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeFtp(in.data, in.length, out, size, kEverything, 0);
}
int32_t SummarizeFtpData(const SummaryInput& in, char* out, int32_t size) {
  return DescribeFtp(in.data, in.length, out, size, kEverything, 1);
}
int32_t SummarizeSmtp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeSmtp(in.data, in.length, out, size, kEverything);
}
int32_t SummarizeTelnet(const SummaryInput& in, char* out, int32_t size) {
  return DescribeTelnet(in.data, in.length, out, size, kEverything, kMostTelnetData, 1, in.cleanText);
}
int32_t SummarizeMgcp(const SummaryInput& in, char* out, int32_t size) {
  TextBuffer summary{static_cast<uint16_t>(size), out};
  return DescribeMgcp(in.data, in.length, &summary);
}
int32_t SummarizeRtp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeRtp(in.data, in.length, nullptr, 1, out, size);
}
int32_t SummarizeRtcp(const SummaryInput& in, char* out, int32_t size) {
  const Cursor c = MakeCursor(in.data, 0, in.length);
  const int32_t index = SrtcpIndexAt(c);
  if (index == 0) return DescribeRtcp(in.data, in.length, out, size);
  const char* name = RtcpTypeName(PeekU8(c, 1));   // the rest is encrypted
  FormatInto(out, size, "SRTCP %s, SSRC: %u, Index: %u", name ? name : kUnknown, PeekU32(c, 4), PeekU32(c, index) & 0x7FFFFFFF);
  return 1;
}
int32_t SummarizeSmb(const SummaryInput& in, char* out, int32_t size) {
  return DescribeSmb(in.data, in.length, out, size, in.isTcp, 1);
}
int32_t SummarizeFix(const SummaryInput& in, char* out, int32_t size) {
  return DescribeFix(in.data, in.length, out, static_cast<uint16_t>(size));
}
int32_t SummarizeGiop(const SummaryInput& in, char* out, int32_t size) {
  TextBuffer summary{static_cast<uint16_t>(size), out};
  return DescribeGiop(in.data, in.length, &summary);
}

namespace {

// The protocol of what the decode reached; null when the registry has none for it.
const ProtocolRow* ReachedProtocol(const ReachedLayer& reached) {
  const DecoderRow* row = nullptr;
  switch (reached.table) {
    case DispatchTable::kEthertype: row = FindEthertype(static_cast<uint16_t>(reached.key)); break;
    case DispatchTable::kLlc:
      if (reached.key < 0x100) row = FindLlcService(static_cast<LlcService>(reached.key));
      break;
    case DispatchTable::kIpProtocol: {
      const uint8_t key = static_cast<uint8_t>(reached.key);
      row = FindIpProtocol(key);
      if (!row) row = FindIPv6NextHeader(key);
      break;
    }
    case DispatchTable::kApplication: row = FindBuiltinDecoder(reached.key); break;
    default: break;
  }
  return row ? row->protocol : nullptr;
}

// Runs the decoder over the reached payload, with its lines in this tree, or without any. The frame's own state is as it was.
void DecodeReached(View* view, DecoderFunction decode, DecodeTree* tree) {
  DecodeContext& context = *view->context;
  View once = *view;
  if (tree) once.tree = tree;
  const PacketState packet = context.packet;
  const char outputMode = context.outputMode;
  const bool silent = context.silent;
  const uint32_t findFound = context.findFound, rangeCount = context.rangeCount, derivedCount = context.derivedCount;
  LineFacts* const facts = context.facts;
  context.outputMode = tree ? kDisplayMode : kFindMode;
  context.silent = !tree;
  context.findFound = 0;
  context.facts = nullptr;   // they are those of the lines that are shown
  const ReachedLayer& reached = packet.reached;
  TryDecoder(TopLevel(&once, kFirstLevel), MakeCursor(reached.bytes, 0, reached.length), decode, nullptr);
  context.packet = packet;
  context.outputMode = outputMode;
  context.silent = silent;
  context.findFound = findFound;
  context.facts = facts;
  context.rangeCount = rangeCount;   // the tables may have grown
  context.derivedCount = derivedCount;
}

// False when the decoder has no top line for the reached payload.
bool CopyTopLine(View* view, DecoderFunction decode, char* out, int32_t size) {
  TopLineTree tree(view->context);
  DecodeReached(view, decode, &tree);
  CopyString(out, size, tree.Text());
  return tree.Text()[0] != 0;
}

// The summary with what the connection's TLS records before left, for the protocols that TLS carries as a rule.
bool Summarize(const View* view, SummaryFunction summarize, SummaryInput input, char* out, int32_t size) {
  if (!MaySummarizeTls(summarize)) return summarize(input, out, size) && out[0];
  const ConnectionKey key = DirectionOf(view->context->packet);
  const TlsStream* known = Recall(view, kTlsStreams, key);
  const TlsStream before = known ? *known : TlsStream{};
  TlsStream stream = before;
  input.tls = &stream;
  const bool summarized = summarize(input, out, size) && out[0];
  const bool changed = stream.pending != before.pending || stream.encrypted != before.encrypted;
  if (changed) Remember(view, kTlsStreams, key, stream);
  return summarized;
}

// How the frame's line comes about: by the protocol's summary, its decoder's top line, or neither.
struct SummaryWay {
  const ProtocolRow* protocol;
  bool hasSummary, isShownByTop;
};

SummaryWay FindSummaryWay(const PacketState& packet) {
  const ProtocolRow* protocol = ReachedProtocol(packet.reached);
  if (!protocol) return {nullptr, false, false};
  const bool isTop = !protocol->summary || protocol->summary == SummarizeCarried;
  return {protocol, protocol->summary && packet.reached.table == DispatchTable::kApplication, isTop && !HasLayerLine(packet)};
}

SummaryInput InputOf(const View* view) {
  constexpr uint32_t kTcp = 6;
  const PacketState& packet = view->context->packet;
  const bool isTcp = packet.carrier.key == kTcp;
  const bool cleanText = view->engine->settings.cleanText;
  return {packet.reached.bytes, packet.reached.length, packet.sourcePort, packet.destinationPort, isTcp, cleanText, nullptr};
}

}  // namespace

bool MaySummarizeTls(SummaryFunction summary) { return summary == SummarizeTls || summary == SummarizeHttps; }

void SummarizePacket(View* view, char* out, int32_t size) {
  constexpr uint32_t kEthertypeArp = 0x0806, kEthertypeRarp = 0x8035;
  const PacketState& packet = view->context->packet;
  const ReachedLayer& reached = packet.reached;
  const SummaryWay way = FindSummaryWay(packet);
  if (way.hasSummary && Summarize(view, way.protocol->summary, InputOf(view), out, size)) return;
  if (reached.table == DispatchTable::kEthertype && reached.key == kEthertypeRarp) {   // ARP's fields (RFC 903)
    if (CopyTopLine(view, FindEthertype(kEthertypeArp)->decode, out, size)) return;
  }
  if (way.isShownByTop && CopyTopLine(view, way.protocol->decode, out, size)) return AppendQuotedDatagram(packet, out, size);
  DescribeLayers(packet, out, size);
}

bool SummaryIsDecoded(const View* view) {
  const SummaryWay way = FindSummaryWay(view->context->packet);
  return way.isShownByTop && !way.protocol->isPlain;
}

void PassSummary(View* view) {
  const SummaryWay way = FindSummaryWay(view->context->packet);
  char unread[kSummarySize];
  if (way.hasSummary && MaySummarizeTls(way.protocol->summary)) {
    Summarize(view, way.protocol->summary, InputOf(view), unread, sizeof unread);
  }
  if (way.isShownByTop && !way.protocol->isPlain) DecodeReached(view, way.protocol->decode, nullptr);
}

}  // namespace qxview
