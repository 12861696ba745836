// Flow specifications of BGP (RFC 8955; IPv6: RFC 8956): which packets a rule is for, in components of prefixes, numbers compared
// and bits masked.
#include "core/elements.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr auto kComponentNames = SortedNames({
    {1, "Destination Prefix"}, {2, "Source Prefix"}, {3, "IP Protocol"}, {4, "Port"}, {5, "Destination Port"},
    {6, "Source Port"}, {7, "ICMP Type"}, {8, "ICMP Code"}, {9, "TCP Flags"}, {10, "Packet Length"}, {11, "DSCP"},
    {12, "Fragment"}, {13, "Flow Label"}});
constexpr uint32_t kDestination = 1, kSource = 2, kTcpFlags = 9, kFragment = 12;

const char* ComparisonText(uint32_t op) {
  constexpr const char* kTexts[] = {"never", "=", ">", ">=", "<", "<=", "!=", "always"};
  return kTexts[op & 7];
}

// Prefixes of IPv6 have an offset, and as many bits behind it as lie between both.
void ShowFlowPrefix(const Place& in, Cursor& c, uint32_t afi) {
  const Field bits = TakeU8(c);
  AddLine(in, bits, "Prefix Length: %u", bits.value);
  if (afi != kFamilyIPv6) return ShowPrefix(in, c, "Prefix", kFamilyIPv4, bits.value);
  const Field offset = TakeU8(c);
  AddLine(in, offset, "Prefix Offset: %u", offset.value);
  if (offset.value == 0) return ShowPrefix(in, c, "Prefix", kFamilyIPv6, bits.value);
  const uint32_t pattern = bits.value > offset.value ? bits.value - offset.value : 0;
  const Field value = TakeBytes(c, (pattern + 7) / 8);
  if (value.here) AddLine(in, value, "Pattern: %s", HexText(value));
}

// Pairs of an operator and a value, up to the one that says it is the last.
void ShowPairs(const Place& at, Cursor& c, bool isMask) {
  constexpr uint32_t kLast = 0x80, kAnd = 0x40, kNot = 0x02, kMatch = 0x01;
  Loop loop;
  bool isFirst = true;
  while (MoreAt(at, c, loop)) {
    const Field op = TakeU8(c);
    const int32_t size = 1 << (op.value >> 4 & 3);
    const Field value = TakeBytes(c, size);
    if (!value.here) return;
    uint64_t number = 0;
    for (int32_t i = 0; i < value.length; ++i) number = number << 8 | PeekU8(value, i);
    const char* joined = isFirst ? "" : op.value & kAnd ? "and " : "or ";
    if (isMask) {
      const char* how = op.value & kMatch ? (op.value & kNot ? "not all of" : "all of")
                                          : (op.value & kNot ? "none of" : "any of");
      AddLine(at, op, "Operator: 0x%02X = %s%s", op.value, joined, how);
      AddLine(at, value, "Bits: 0x%I64X", number);
      AppendToParent(at, value, " %s%s 0x%I64X", joined, how, number);
    } else {
      AddLine(at, op, "Operator: 0x%02X = %s%s", op.value, joined, ComparisonText(op.value));
      AddLine(at, value, "Value: %I64u", number);
      AppendToParent(at, value, " %s%s %I64u", joined, ComparisonText(op.value), number);
    }
    isFirst = false;
    if (op.value & kLast) return;
  }
}

}  // namespace

void ShowBgpFlows(const Place& at, Cursor& c, uint32_t afi, uint32_t safi, Bgp&) {
  constexpr uint32_t kFlowVpn = 134, kLong = 0xF0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const bool isLong = PeekU8(c) >= kLong;
    const int64_t size = isLong ? 2 + static_cast<int64_t>(PeekU16(c) & 0xFFF) : 1 + static_cast<int64_t>(PeekU8(c));
    Cursor flow = TakeCursor(c, size);
    const Place in = Under(at, AddLine(at, Ahead(flow, Left(flow)), "Flow Specification"));
    const Field length = isLong ? TakeU16(flow) : TakeU8(flow);
    AddLine(in, length, "Length: %u", length.value & (isLong ? 0xFFF : 0xFF));
    if (safi == kFlowVpn) ShowRouteDistinguisher(in, flow);
    Loop each;
    while (MoreAt(in, flow, each)) {
      const Cursor start = flow;
      const Field type = TakeU8(flow);
      const LineHandle line = AddLine(in, type, "Component: %s", LookupName(kComponentNames, type.value));
      const Place under = Under(in, line);
      AddLine(under, type, "Type: %u = %s", type.value, LookupName(kComponentNames, type.value));
      if (type.value == kDestination || type.value == kSource) {
        ShowFlowPrefix(under, flow, afi);
      } else {
        ShowPairs(under, flow, type.value == kTcpFlags || type.value == kFragment);
      }
      SetRange(under, line, start.offset, flow.offset - start.offset);
    }
  }
}

}  // namespace qxview
