// The fields of flow records (NetFlow version 9, IPFIX): names and types by IANA's registry, and how a value is shown.
#pragma once
#include "core/rows.h"

namespace qxview {

enum class FlowKind : uint8_t {
  kOctets, kUnsigned, kSigned, kFloat, kBoolean, kMac, kText, kSeconds, kMilliseconds, kMicroseconds, kNanoseconds,
  kIPv4, kIPv6, kSpanSeconds, kSpanMilliseconds, kSpanMicroseconds, kSpanNanoseconds,
  kList, kTemplateList, kTemplateMultiList,   // RFC 6313; the decoder of templates takes them apart
};

struct FlowElement {
  uint16_t number;
  FlowKind kind;
  const char* name;
};

// Null for a number without a name.
const FlowElement* FindFlowElement(uint32_t number);

constexpr uint32_t kReverseEnterprise = 29305;   // RFC 5103: the element of the other direction of a flow
const char* FlowEnterpriseName(uint32_t enterprise);

// A field's name: the element's, the reverse one's, or the enterprise and the number.
ShortText<96> FlowFieldName(uint32_t enterprise, uint32_t number);

// What a flow's line says of it: filled while its fields are shown.
struct FlowSketch {
  Field source, destination, sourcePort, destinationPort, protocol;
  uint64_t packets, octets;
  bool hasPackets, hasOctets;
};
void AddFlowSketch(const Place& in, const FlowSketch& sketch);

// A line, and lines under it, of a value that is no list.
void ShowFlowValue(const Place& in, Cursor value, uint32_t enterprise, uint32_t number, FlowSketch& sketch);

// The name of an IP protocol, for rows.
const char* FlowProtocolName(uint32_t protocol);

inline constexpr auto kFlowTcpFlagNames = SortedNames({
    {0x01, "FIN"}, {0x02, "SYN"}, {0x04, "RST"}, {0x08, "PSH"}, {0x10, "ACK"}, {0x20, "URG"}, {0x40, "ECE"},
    {0x80, "CWR"}, {0x100, "AE"}});

}  // namespace qxview
