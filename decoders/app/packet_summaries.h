// The packet list's adapters: from the built-in decoder that a payload was resolved to, to the summary of its protocol.
#pragma once
#include <cstdint>

namespace qxview {

struct PacketState;

struct SummaryInput {
  const uint8_t* data;        // the application payload
  int32_t length;
  uint16_t sourcePort, destinationPort;
  bool isTcp;
  bool cleanText;             // the user's cleaning option
  int32_t* tlsPending;        // the connection's, for TLS; may be null
};

// Writes one line into `out` of `outSize` bytes, always terminated. 0 when the payload is not of the protocol after all.
using SummaryFunction = int32_t (*)(const SummaryInput& in, char* out, int32_t outSize);

// The summary of a built-in decoder's protocol; null when it has none.
SummaryFunction FindSummary(uint32_t builtinIndex);

// Whether the protocol is carried over TLS as a rule, so that its adapter wants `tlsPending`.
bool WantsTlsPending(uint32_t builtinIndex);

constexpr int32_t kSummarySize = 512;

// The line of the frame whose headers were decoded into `packet`: the application's summary, or that of the layer that
// was reached. `cleanText` and `tlsPending` as above. size >= 1.
void SummarizePacket(const PacketState& packet, bool cleanText, int32_t* tlsPending, char* out, int32_t size);

// Protocols without an exported summary (rpc_summary.cpp).
int32_t DescribeOncRpc(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeMsrpc(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeKerberos(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeNetBiosName(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeNetBiosDatagram(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeNetBiosSession(const SummaryInput& in, char* out, int32_t outSize);
int32_t DescribeFcip(const SummaryInput& in, char* out, int32_t outSize);

}  // namespace qxview
