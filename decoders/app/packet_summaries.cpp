#include "decoders/app/packet_summaries.h"

#include "core/context.h"
#include "decoders/app/http_summary.h"
#include "decoders/app/layer_summaries.h"
#include "decoders/app/rtp_summary.h"
#include "decoders/app/summaries.h"

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
  return DescribeTls(in.data, in.length, out, size, port, in.tlsPending);
}

int32_t SummarizeHttp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeHttp(in.data, in.length, out, size, 0);
}

// Plain HTTP on a port of HTTPS is shown as it is; anything else there is the middle of a record.
int32_t SummarizeHttps(const SummaryInput& in, char* out, int32_t size) {
  constexpr int32_t kRequest = 1, kReply = 2;
  const int32_t kind = DescribeHttp(in.data, in.length, out, size, 0);
  return kind == kRequest || kind == kReply ? kind : SummarizeTls(in, out, size);
}

int32_t SummarizeSnmp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeSnmp(in.data, in.length, out, size);
}
int32_t SummarizeLdap(const SummaryInput& in, char* out, int32_t size) {
  return DescribeLdap(in.data, in.length, out, size);
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
int32_t SummarizePop3(const SummaryInput& in, char* out, int32_t size) {
  return DescribePop3(in.data, in.length, out, size);
}
int32_t SummarizeTelnet(const SummaryInput& in, char* out, int32_t size) {
  return DescribeTelnet(in.data, in.length, out, size, kEverything, kMostTelnetData, 1, in.cleanText);
}
int32_t SummarizeRtsp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeRtsp(in.data, in.length, out, size);
}
int32_t SummarizeSccp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeSccp(in.data, in.length, out, size);
}
int32_t SummarizeMgcp(const SummaryInput& in, char* out, int32_t size) {
  TextBuffer summary{static_cast<uint16_t>(size), out};
  return DescribeMgcp(in.data, in.length, &summary);
}
int32_t SummarizeMegaco(const SummaryInput& in, char* out, int32_t size) {
  return DescribeMegaco(in.data, in.length, out, size);
}
int32_t SummarizeHostCall(const SummaryInput& in, char* out, int32_t size) {
  return DescribeH323HostCall(in.data, in.length, out, size);
}
int32_t SummarizeGatekeeper(const SummaryInput& in, char* out, int32_t size) {
  return DescribeH323Gatekeeper(in.data, in.length, out, size, 1);
}
int32_t SummarizeH245(const SummaryInput& in, char* out, int32_t size) {
  return DescribeH245(in.data, in.length, out, size);
}
int32_t SummarizeCgp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeCgp(in.data, in.length, out, size);
}
int32_t SummarizeIax2(const SummaryInput& in, char* out, int32_t size) {
  return DescribeIax2(in.data, in.length, out, size);
}
int32_t SummarizeWirelessIds(const SummaryInput& in, char* out, int32_t size) {
  return DescribeWirelessIds(in.data, in.length, out, size);
}
int32_t SummarizeLpd(const SummaryInput& in, char* out, int32_t size) {
  return DescribeLpd(in.data, in.length, out, size);
}
int32_t SummarizeMinet(const SummaryInput& in, char* out, int32_t size) {
  return DescribeMinet(in.data, in.length, out, size, 1);
}
int32_t SummarizeUnistim(const SummaryInput& in, char* out, int32_t size) {
  return DescribeUnistim(in.data, in.length, out, size);
}
int32_t SummarizeRtp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeRtp(in.data, in.length, nullptr, 1, out, size);
}
int32_t SummarizeRtcp(const SummaryInput& in, char* out, int32_t size) {
  return DescribeRtcp(in.data, in.length, out, size);
}
int32_t SummarizeTns(const SummaryInput& in, char* out, int32_t size) {
  return DescribeTns(in.data, in.length, out, size);
}
int32_t SummarizeTds(const SummaryInput& in, char* out, int32_t size) {
  return DescribeTds(in.data, in.length, out, size, 1);
}
int32_t SummarizeSip(const SummaryInput& in, char* out, int32_t size) {
  return DescribeSip(in.data, in.length, out, size, 1);
}
int32_t SummarizeSmb(const SummaryInput& in, char* out, int32_t size) {
  return DescribeSmb(in.data, in.length, out, size, in.isTcp, 1);
}
int32_t SummarizeBitTorrent(const SummaryInput& in, char* out, int32_t size) {
  return DescribeBitTorrent(in.data, in.length, out, size);
}
int32_t SummarizeFix(const SummaryInput& in, char* out, int32_t size) {
  return DescribeFix(in.data, in.length, out, static_cast<uint16_t>(size));
}
int32_t SummarizeGiop(const SummaryInput& in, char* out, int32_t size) {
  TextBuffer summary{static_cast<uint16_t>(size), out};
  return DescribeGiop(in.data, in.length, &summary);
}

struct SummaryRow {
  uint32_t index;
  SummaryFunction summarize;
};
constexpr SummaryRow kRows[] = {
#define QX_SUMMARY(index, function) {index, function},
#include "decoders/app/summary_rows.inc"
#undef QX_SUMMARY
};
constexpr int32_t kRowCount = sizeof kRows / sizeof kRows[0];

constexpr bool RowsAreSorted() {
  for (int32_t i = 1; i < kRowCount; ++i) {
    if (kRows[i].index <= kRows[i - 1].index) return false;
  }
  return true;
}
static_assert(RowsAreSorted());

}  // namespace

SummaryFunction FindSummary(uint32_t builtinIndex) {
  int32_t lower = 0, upper = kRowCount;
  while (lower < upper) {
    const int32_t middle = (lower + upper) / 2;
    if (kRows[middle].index == builtinIndex) return kRows[middle].summarize;
    if (kRows[middle].index < builtinIndex) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

bool WantsTlsPending(uint32_t builtinIndex) {
  const SummaryFunction summarize = FindSummary(builtinIndex);
  return summarize == SummarizeTls || summarize == SummarizeHttps;
}

void SummarizePacket(const PacketState& packet, bool cleanText, int32_t* tlsPending, char* out, int32_t size) {
  constexpr uint32_t kTcp = 6;
  const ReachedLayer& reached = packet.reached;
  const SummaryFunction summarize =
      reached.table == DispatchTable::kApplication ? FindSummary(reached.key) : nullptr;
  const SummaryInput input{reached.bytes,          reached.length, packet.sourcePort, packet.destinationPort,
                           packet.carrier.key == kTcp, cleanText,  tlsPending};
  if (summarize && summarize(input, out, size) && out[0]) return;
  DescribeLayers(packet, out, size);
}

}  // namespace qxview
