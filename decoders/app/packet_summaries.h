// The packet list's adapters: from the built-in decoder that a payload was resolved to, to the summary of its protocol.
#pragma once
#include "core/dispatch.h"
#include "decoders/app/summaries.h"

namespace qxview {

struct View;

struct SummaryInput {
  const uint8_t* data;        // the application payload
  int32_t length;
  uint16_t sourcePort, destinationPort;
  bool isTcp;
  bool cleanText;             // the user's cleaning option
  TlsStream* tls;             // the connection's, for TLS; may be null
};

// The summary of a protocol, as the registry's rows name it: writes one line into `out` of `outSize` bytes, always
// terminated. 0 when the payload is not of the protocol after all.

// A summary that takes the payload alone, and one with a flag that adds the numbers which tell messages apart.
template <int32_t (*kDescribe)(const uint8_t*, int32_t, char*, int32_t)>
int32_t Plainly(const SummaryInput& in, char* out, int32_t outSize) {
  return kDescribe(in.data, in.length, out, outSize);
}
template <int32_t (*kDescribe)(const uint8_t*, int32_t, char*, int32_t, int32_t)>
int32_t Numbered(const SummaryInput& in, char* out, int32_t outSize) {
  return kDescribe(in.data, in.length, out, outSize, 1);
}

// Of a tunnel: its decoder runs for the list, too, and the line is that of what it carries; of a message that carries
// nothing it is the top line.
int32_t SummarizeCarried(const SummaryInput& in, char* out, int32_t outSize);

int32_t SummarizeDns(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeLlmnr(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeMdns(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeHttp(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeHttps(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeTls(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeFtp(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeFtpData(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeSmtp(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeTelnet(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeMgcp(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeRtcp(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeRtp(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeSmb(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeFix(const SummaryInput& in, char* out, int32_t outSize);
int32_t SummarizeGiop(const SummaryInput& in, char* out, int32_t outSize);

// Those that tell of records of TLS, which go on in segments behind: of the others a payload alone tells all.
bool MaySummarizeTls(SummaryFunction summary);

constexpr int32_t kSummarySize = 512;

// The line of the frame whose headers the view has just decoded: the application's summary, its decoder's top line, or
// the line of the layer that was reached. Once a frame: what its TLS records leave is kept for the connection's next
// ones. size >= 1.
void SummarizePacket(View* view, char* out, int32_t size);

// What SummarizePacket does for later frames, with the same look-ups of state, and no line.
void PassSummary(View* view);

// Whether that takes a decoder's work, so that SummarizePacket costs hardly more.
bool SummaryIsDecoded(const View* view);

// Protocols without an exported summary (rpc_summary.cpp).
int32_t DescribeOncRpc(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeNetBiosDatagram(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeNetBiosSession(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeFcip(const SummaryInput& in, char* out, int32_t outSize);

}  // namespace qxview
