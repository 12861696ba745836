#include "decoders/app/flow_elements.h"

#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr FlowElement kElements[] = {
#define QX_ELEMENT(number, name, kind) {number, FlowKind::k##kind, name},
#include "decoders/app/flow_elements.inc"
#undef QX_ELEMENT
};

consteval bool InOrder() {
  for (size_t i = 1; i < sizeof kElements / sizeof kElements[0]; ++i) {
    if (kElements[i].number <= kElements[i - 1].number) return false;
  }
  return true;
}
static_assert(InOrder());

constexpr auto kEnterpriseNames = SortedNames({
    {9, "ciscoSystems"}, {2636, "Juniper Networks"}, {3054, "Ixia"}, {5951, "NetScaler"}, {6871, "CERT"},
    {10704, "Barracuda"}, {13745, "Plixer"}, {25461, "Palo Alto Networks"}, {26866, "Gigamon"},
    {29305, "IPFIX Reverse"},
    {35632, "ntop"}, {39499, "VMware Nicira"}, {47729, "Niagara Networks"}});

// The registry's values of elements.
constexpr auto kSamplingNames = SortedNames({
    {0, "No Sampling"}, {1, "Deterministic Sampling"}, {2, "Random Sampling"}});
constexpr auto kSamplerModeNames = SortedNames({{1, "Deterministic"}, {2, "Random"}});
constexpr auto kEngineNames = SortedNames({{0, "RP"}, {1, "VIP/Linecard"}, {2, "PFC/DFC"}});
constexpr auto kTopLabelNames = SortedNames({
    {0, "Unknown"}, {1, "TE-MIDPT"}, {2, "Pseudowire"}, {3, "VPN"}, {4, "BGP"}, {5, "LDP"}});
constexpr auto kDirectionNames = SortedNames({{0, "Ingress"}, {1, "Egress"}});
constexpr auto kEndReasonNames = SortedNames({
    {1, "Idle Timeout"}, {2, "Active Timeout"}, {3, "End of Flow Detected"}, {4, "Forced End"},
    {5, "Lack of Resources"}});
constexpr auto kObservationPointNames = SortedNames({
    {0, "Invalid"}, {1, "Physical Port"}, {2, "Port Channel"}, {3, "VLAN"}});
constexpr auto kBiflowNames = SortedNames({
    {0, "Arbitrary"}, {1, "Initiator"}, {2, "Reverse Initiator"}, {3, "Perimeter"}});
constexpr auto kNatEventNames = SortedNames({
    {0, "Reserved"}, {1, "NAT Translation Create (Historic)"}, {2, "NAT Translation Delete (Historic)"},
    {3, "NAT Addresses Exhausted"}, {4, "NAT44 Session Create"}, {5, "NAT44 Session Delete"},
    {6, "NAT64 Session Create"}, {7, "NAT64 Session Delete"}, {8, "NAT44 BIB Create"}, {9, "NAT44 BIB Delete"},
    {10, "NAT64 BIB Create"}, {11, "NAT64 BIB Delete"}, {12, "NAT Ports Exhausted"}, {13, "Quota Exceeded"},
    {14, "Address Binding Create"}, {15, "Address Binding Delete"}, {16, "Port Block Allocation"},
    {17, "Port Block De-allocation"}, {18, "Threshold Reached"}});
constexpr auto kFirewallNames = SortedNames({
    {0, "Ignore"}, {1, "Flow Created"}, {2, "Flow Deleted"}, {3, "Flow Denied"}, {4, "Flow Alert"},
    {5, "Flow Update"}});
constexpr auto kNatTypeNames = SortedNames({
    {0, "Unknown"}, {1, "NAT44 Translated"}, {2, "NAT64 Translated"}, {3, "NAT46 Translated"},
    {4, "IPv4 No NAT"}, {5, "NAT66 Translated"}, {6, "IPv6 No NAT"}});
constexpr auto kSelectorNames = SortedNames({
    {0, "Reserved"}, {1, "Systematic Count-Based Sampling"}, {2, "Systematic Time-Based Sampling"},
    {3, "Random n-out-of-N Sampling"}, {4, "Uniform Probabilistic Sampling"}, {5, "Property Match Filtering"},
    {6, "Hash Based Filtering Using BOB"}, {7, "Hash Based Filtering Using IPSX"},
    {8, "Hash Based Filtering Using CRC"},
    {9, "Flow-State Dependent Intermediate Flow Selection Process"}});
constexpr auto kDataTypeNames = SortedNames({
    {0, "octetArray"}, {1, "unsigned8"}, {2, "unsigned16"}, {3, "unsigned32"}, {4, "unsigned64"}, {5, "signed8"},
    {6, "signed16"}, {7, "signed32"}, {8, "signed64"}, {9, "float32"}, {10, "float64"}, {11, "boolean"},
    {12, "macAddress"}, {13, "string"}, {14, "dateTimeSeconds"}, {15, "dateTimeMilliseconds"},
    {16, "dateTimeMicroseconds"}, {17, "dateTimeNanoseconds"}, {18, "ipv4Address"}, {19, "ipv6Address"},
    {20, "basicList"}, {21, "subTemplateList"}, {22, "subTemplateMultiList"}, {23, "unsigned256"}});
constexpr auto kElementSemanticsNames = SortedNames({
    {0, "default"}, {1, "quantity"}, {2, "totalCounter"}, {3, "deltaCounter"}, {4, "identifier"}, {5, "flags"},
    {6, "list"}, {7, "snmpCounter"}, {8, "snmpGauge"}});
constexpr auto kUnitNames = SortedNames({
    {0, "none"}, {1, "bits"}, {2, "octets"}, {3, "packets"}, {4, "flows"}, {5, "seconds"}, {6, "milliseconds"},
    {7, "microseconds"}, {8, "nanoseconds"}, {9, "4-octet words"}, {10, "messages"}, {11, "hops"}, {12, "entries"},
    {13, "frames"}, {14, "ports"}, {15, "inferred"}});
constexpr auto kLinkFrameNames = SortedNames({{1, "IEEE 802.3 Ethernet"}, {2, "IEEE 802.11 MAC"}});
constexpr auto kMibSemanticsNames = SortedNames({
    {0, "undefined"}, {1, "begin"}, {2, "end"}, {3, "export"}, {4, "average"}});
constexpr auto kQuotaNames = SortedNames({
    {0, "Reserved"}, {1, "Maximum Session Entries"}, {2, "Maximum BIB Entries"}, {3, "Maximum Entries per User"},
    {4, "Maximum Active Hosts or Subscribers"}, {5, "Maximum Fragments Pending Reassembly"}});
constexpr auto kThresholdNames = SortedNames({
    {0, "Reserved"}, {1, "Address Pool High Threshold Event"}, {2, "Address Pool Low Threshold Event"},
    {3, "Address and Port Mapping High Threshold Event"}, {4, "Address and Port Mapping per User High Threshold Event"},
    {5, "Global Address Mapping High Threshold Event"}});
constexpr auto kExtendedFirewallNames = SortedNames({
    {0, "Ignore"}, {1001, "Flow Denied by an Ingress ACL"}, {1002, "Flow Denied by an Egress ACL"},
    {1003, "Flow Denied by Security Appliance"}, {1004, "Flow Denied, TCP Flow Beginning without SYN"}});
constexpr auto kApplicationEngineNames = SortedNames({
    {0, "Invalid"}, {1, "IANA-L3"}, {2, "PANA-L3"}, {3, "IANA-L4"}, {4, "PANA-L4"}, {6, "USER-Defined"},
    {12, "PANA-L2"}, {13, "PANA-L7"}, {18, "ETHERTYPE"}, {19, "LLC"}, {20, "PANA-L7-PEN"}, {21, "Qosmos ixEngine"},
    {22, "ntop nDPI"}});

const char* EthertypeOr(uint32_t type) {
  const char* name = EthertypeName(static_cast<uint16_t>(type));
  return name ? name : kUnknown;
}

struct NamedElement {
  uint16_t number;
  Names names;
};
constexpr NamedElement kNamed[] = {
    {4, FlowProtocolName}, {35, kSamplingNames}, {38, kEngineNames},
    {46, kTopLabelNames}, {49, kSamplerModeNames}, {61, kDirectionNames}, {136, kEndReasonNames},
    {193, FlowProtocolName}, {196, FlowProtocolName}, {230, kNatEventNames}, {233, kFirewallNames},
    {239, kBiflowNames}, {256, EthertypeOr}, {277, kObservationPointNames}, {297, kNatTypeNames}, {298, kNatTypeNames},
    {304, kSelectorNames}, {339, kDataTypeNames}, {344, kElementSemanticsNames}, {345, kUnitNames},
    {408, kLinkFrameNames}, {448, kMibSemanticsNames}, {466, kQuotaNames}, {467, kThresholdNames},
    {33002, kExtendedFirewallNames}};

struct FlowValue {
  Field size;   // of the value, for rows that are as long as a template says
};
using FlowForm = RowTable<FlowValue, 1>;
consteval FlowForm Form(RowData row) { return Rows<FlowValue>({Row<FlowValue>(row).SizedBy(&FlowValue::size)}); }

// By FlowKind, lists left out.
constexpr FlowForm kForms[] = {
    Form(Bytes(0, nullptr)), Form(Number(8, nullptr)), Form(Signed(8, nullptr)), Form(Float(8, nullptr)),
    Form(Number(8, nullptr, kFalseTrueNames)), Form(Mac(nullptr)), Form(Utf8(0, nullptr)), Form(UnixTime(4, nullptr)),
    Form(UnixMilliseconds(nullptr)), Form(NtpTime(nullptr)), Form(NtpTime(nullptr)), Form(IPv4(nullptr)),
    Form(IPv6(nullptr)), Form(Number(8, nullptr, " seconds")), Form(Number(8, nullptr, " milliseconds")),
    Form(Number(8, nullptr, " microseconds")), Form(Number(8, nullptr, " nanoseconds"))};
constexpr auto kIcmpTypeAndCode = Rows<FlowValue>({
    Number(2, nullptr), Bits(0, 8, "ICMP Type"), Bits(8, 8, "ICMP Code")});
constexpr auto kTcpFlags1 = Rows<FlowValue>({Flags(1, nullptr, kFlowTcpFlagNames)});
constexpr auto kTcpFlags2 = Rows<FlowValue>({Flags(2, nullptr, kFlowTcpFlagNames)});
constexpr auto kTypeOfService = Rows<FlowValue>({Hex(1, nullptr), Bits(0, 6, "DSCP"), Bits(6, 2, "ECN")});

const char* ForwardingReason(uint32_t status) {
  constexpr auto kReasons = SortedNames({
      {0x00, "Unknown"}, {0x40, "Forwarded"}, {0x41, "Fragmented"}, {0x42, "Not Fragmented"}, {0x80, "Dropped"},
      {0x81, "ACL Deny"}, {0x82, "ACL Drop"}, {0x83, "Unroutable"}, {0x84, "Adjacency"},
      {0x85, "Fragmentation and DF Set"}, {0x86, "Bad Header Checksum"}, {0x87, "Bad Total Length"},
      {0x88, "Bad Header Length"}, {0x89, "Bad TTL"}, {0x8A, "Policer"}, {0x8B, "WRED"}, {0x8C, "RPF"},
      {0x8D, "For Us"}, {0x8E, "Bad Output Interface"}, {0x8F, "Hardware"}, {0xC0, "Consumed"},
      {0xC1, "Punt Adjacency"}, {0xC2, "Incomplete Adjacency"}, {0xC3, "For Us"}});
  return LookupName(kReasons, status);
}
constexpr auto kForwardingStatusNames = SortedNames({{0, "Unknown"}, {1, "Forwarded"}, {2, "Dropped"},
    {3, "Consumed"}});
constexpr auto kForwarding = Rows<FlowValue>({
    Number(1, nullptr, ForwardingReason), Bits(0, 2, "Status", kForwardingStatusNames), Bits(2, 6, "Reason Code")});
constexpr auto kApplication = Rows<FlowValue>({
    Number(1, "Classification Engine ID", kApplicationEngineNames), Bytes(0, "Selector ID")});

bool Fits(FlowKind kind, int32_t length) {
  switch (kind) {
    case FlowKind::kFloat: return length == 4 || length == 8;
    case FlowKind::kMac: return length == 6;
    case FlowKind::kIPv4: return length == 4;
    case FlowKind::kIPv6: return length == 16;
    case FlowKind::kSeconds: return length == 4 || length == 8;
    case FlowKind::kMilliseconds:
    case FlowKind::kMicroseconds:
    case FlowKind::kNanoseconds: return length == 8;
    case FlowKind::kOctets:
    case FlowKind::kText: return true;
    default: return length <= 8;
  }
}

void KeepForSketch(uint32_t number, const Field& value, FlowSketch& sketch) {
  Field field = value;
  field.value = static_cast<uint32_t>(detail::NumberOf(field, false));
  switch (number) {
    case 1: case 85:
      sketch.octets = detail::NumberOf(field, false);
      sketch.hasOctets = true;
      break;
    case 2: case 86:
      sketch.packets = detail::NumberOf(field, false);
      sketch.hasPackets = true;
      break;
    case 4: sketch.protocol = field; break;
    case 7: sketch.sourcePort = field; break;
    case 8: case 27: sketch.source = field; break;
    case 11: sketch.destinationPort = field; break;
    case 12: case 28: sketch.destination = field; break;
    default: break;
  }
}

// The elements whose values have parts. False for any other.
bool ShowParts(const Place& in, Cursor& value, uint32_t number, const char* label) {
  FlowValue out{};
  const auto show = [&](RowSpan<FlowValue> rows) {
    ShowRows<FlowValue>(in, value, rows, out, label);
    return true;
  };
  const int32_t length = Left(value);
  if (number == 5 && length == 1) return show(kTypeOfService);
  if (number == 6 && length == 1) return show(kTcpFlags1);
  if (number == 6 && length == 2) return show(kTcpFlags2);
  if ((number == 32 || number == 139) && length == 2) return show(kIcmpTypeAndCode);
  if (number == 89 && length == 1) return show(kForwarding);
  if (number != 95 || length < 2) return false;
  const Place under = Under(in, AddLine(in, Ahead(value, length), "%s", label));
  ShowRows<FlowValue>(under, value, kApplication, out);
  return true;
}

}  // namespace

const char* FlowProtocolName(uint32_t protocol) { return IpProtocolName(protocol); }

const FlowElement* FindFlowElement(uint32_t number) {
  size_t lower = 0, upper = sizeof kElements / sizeof kElements[0];
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    if (kElements[middle].number == number) return &kElements[middle];
    if (kElements[middle].number < number) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

const char* FlowEnterpriseName(uint32_t enterprise) { return LookupName(kEnterpriseNames, enterprise); }

ShortText<96> FlowFieldName(uint32_t enterprise, uint32_t number) {
  ShortText<96> name;
  const FlowElement* element =
      enterprise == 0 || enterprise == kReverseEnterprise ? FindFlowElement(number) : nullptr;
  if (element) {
    FormatInto(name.text, sizeof name.text, "%s%s", enterprise ? "reverse " : "", element->name);
  } else if (enterprise) {
    FormatInto(name.text, sizeof name.text, "Enterprise %u Element %u", enterprise, number);
  } else {
    FormatInto(name.text, sizeof name.text, "Element %u", number);
  }
  return name;
}

void ShowFlowValue(const Place& in, Cursor value, uint32_t enterprise, uint32_t number, FlowSketch& sketch) {
  const int32_t length = Left(value);
  const Field field = Ahead(value, length);
  const FlowElement* element = enterprise == 0 || enterprise == kReverseEnterprise ? FindFlowElement(number) : nullptr;
  if (enterprise == 0) KeepForSketch(number, field, sketch);
  const auto name = FlowFieldName(enterprise, number);
  if (length == 0) {
    AddLine(in, field, "%s:", name.text);
    return;
  }
  if (element && ShowParts(in, value, number, name.text)) return;
  FlowKind kind = element ? element->kind : FlowKind::kOctets;
  if (kind >= FlowKind::kList || !Fits(kind, length)) kind = FlowKind::kOctets;
  for (const NamedElement& named : kNamed) {
    if (!element || named.number != number || length > 4) continue;
    const uint32_t code = static_cast<uint32_t>(detail::NumberOf(field, false));
    AddLine(in, field, "%s: %u = %s", name.text, code, named.names.NameOf(code));
    return;
  }
  if (kind == FlowKind::kBoolean) {   // RFC 7011 6.1.5: 1 is true, 2 false
    AddLine(in, field, "%s: %u = %s", name.text, PeekU8(value), PeekU8(value) == 1 ? "True" : "False");
    return;
  }
  FlowValue out{};
  out.size.value = static_cast<uint32_t>(length);
  ShowRows<FlowValue>(in, value, kForms[static_cast<size_t>(kind)], out, name.text);
}

void AddFlowSketch(const Place& in, const FlowSketch& sketch) {
  if (!Displaying(in)) return;
  const auto append = [&](const Field& address, const Field& port) {
    const bool isFour = address.length == 4;
    const bool isSix = address.length == 16;
    if (isFour) AppendToParent(in, address, "%s", IPv4Text(address.bytes));
    if (isSix) AppendToParent(in, address, "[%s]", IPv6Text(address.bytes));
    if (port.here && port.value) AppendToParent(in, port, ":%u", port.value);
  };
  if (sketch.source.here && sketch.destination.here) {
    AppendToParent(in, sketch.source, ", ");
    append(sketch.source, sketch.sourcePort);
    AppendToParent(in, sketch.source, " -> ");
    append(sketch.destination, sketch.destinationPort);
  }
  if (sketch.protocol.here) AppendToParent(in, sketch.protocol, ", %s", FlowProtocolName(sketch.protocol.value));
  if (sketch.hasPackets) AppendToLine(in, in.parent, ", %I64u packets", sketch.packets);
  if (sketch.hasOctets) AppendToLine(in, in.parent, ", %I64u octets", sketch.octets);
}

}  // namespace qxview
