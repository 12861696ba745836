// Flow rules of BGP (RFC 8955; IPv6: RFC 8956; of bridges: draft-ietf-idr-flowspec-l2vpn): which packets a
// rule is for,
// in components of prefixes, addresses, numbers compared and bits masked.
#include "core/elements.h"
#include "decoders/routing/bgp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr auto kComponentNames = SortedNames({
    {1, "Destination Prefix"}, {2, "Source Prefix"}, {3, "IP Protocol"}, {4, "Port"}, {5, "Destination Port"},
    {6, "Source Port"}, {7, "ICMP Type"}, {8, "ICMP Code"}, {9, "TCP Flags"}, {10, "Packet Length"}, {11, "DSCP"},
    {12, "Fragment"}, {13, "Flow Label"}, {14, "Ethernet Type"}, {15, "Source MAC"}, {16, "Destination MAC"},
    {17, "LLC DSAP"},
    {18, "LLC SSAP"}, {19, "LLC Control"}, {20, "SNAP"}, {21, "VLAN ID"}, {22, "VLAN Priority"}, {23, "Inner VLAN ID"},
    {24, "Inner VLAN Priority"}, {25, "Drop Eligible"}, {26, "Inner Drop Eligible"}});
constexpr uint32_t kDestination = 1, kSource = 2, kTcpFlags = 9, kFragment = 12, kSourceMac = 15, kDestinationMac = 16;

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

void ShowFlowMac(const Place& in, Cursor& c) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Address Length: %u", length.value);
  const Field address = TakeBytes(c, length.value);
  if (!address.here) return;
  AddLine(in, address, "MAC Address: %s", HexText(address));
  AppendToParent(in, address, ", %s", HexText(address));
}

void ShowOperator(const Place& in, const Field& op, bool isMask, const LineHandle line) {
  const Place under = Under(in, line);
  const BitPicture end = BitsOf(op, 0, 1), both = BitsOf(op, 1, 1), size = BitsOf(op, 2, 2), fifth = BitsOf(op, 5, 1),
                   sixth = BitsOf(op, 6, 1), last = BitsOf(op, 7, 1);
  AddBitLine(under, op, "%s: End of List = %s", end.picture, TrueOrFalse(end.value));
  AddBitLine(under, op, "%s: And = %s", both.picture, TrueOrFalse(both.value));
  AddBitLine(under, op, "%s: Value Length = %u (%u bytes)", size.picture, size.value, 1u << size.value);
  const BitPicture reserved = BitsOf(op, 4, isMask ? 2 : 1);
  AddBitLine(under, op, "%s: Reserved = %u", reserved.picture, reserved.value);
  if (isMask) {
    AddBitLine(under, op, "%s: Not = %s", sixth.picture, TrueOrFalse(sixth.value));
    AddBitLine(under, op, "%s: Match = %s", last.picture, TrueOrFalse(last.value));
    return;
  }
  AddBitLine(under, op, "%s: Less = %s", fifth.picture, TrueOrFalse(fifth.value));
  AddBitLine(under, op, "%s: Greater = %s", sixth.picture, TrueOrFalse(sixth.value));
  AddBitLine(under, op, "%s: Equal = %s", last.picture, TrueOrFalse(last.value));
}

// The flags of TCP and of fragments that a mask names, in its last octet.
void ShowMaskBits(const Place& in, const Field& value, bool isFragment, const LineHandle line) {
  constexpr const char* kTcpNames[] = {"CWR", "ECE", "URG", "ACK", "PSH", "RST", "SYN", "FIN"};
  constexpr const char* kFragmentNames[] = {"Last Fragment", "First Fragment", "Is a Fragment", "Don't Fragment"};
  const Place under = Under(in, line);
  Field last = Slice(value, value.length - 1, 1);
  last.value = PeekU8(value, value.length - 1);   // a slice has none
  for (int32_t i = isFragment ? 4 : 0; i < 8; ++i) {
    const BitPicture bits = BitsOf(last, i, 1);
    // keys: text CWR, ECE, URG, ACK, PSH, RST, SYN, FIN, Last Fragment, First Fragment, Is a Fragment, Don't Fragment
    AddBitLine(under, last, "%s: %s = %s", bits.picture, isFragment ? kFragmentNames[i - 4] : kTcpNames[i],
        TrueOrFalse(bits.value));
  }
}

// Pairs of an operator and a value, up to the one that says it is the last.
void ShowPairs(const Place& at, Cursor& c, uint32_t type) {
  const bool isMask = type == kTcpFlags || type == kFragment;
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
      ShowOperator(at, op, isMask, AddLine(at, op, "Operator: 0x%02X = %s%s", op.value, joined, how));
      ShowMaskBits(at, value, type == kFragment, AddLine(at, value, "Bits: 0x%I64X", number));
      AppendToParent(at, value, " %s%s 0x%I64X", joined, how, number);
    } else {
      ShowOperator(at, op, isMask, AddLine(at, op, "Operator: 0x%02X = %s%s", op.value, joined,
          ComparisonText(op.value)));
      AddLine(at, value, "Value: %I64u", number);
      AppendToParent(at, value, " %s%s %I64u", joined, ComparisonText(op.value), number);
    }
    isFirst = false;
    if (op.value & kLast) return;
  }
}

}  // namespace

const char* BgpFlowComponentName(uint32_t type) { return LookupName(kComponentNames, type); }

void ShowBgpFlowComponent(const Place& in, Cursor& c, uint32_t type, uint32_t afi) {
  if (type == kDestination || type == kSource) {
    ShowFlowPrefix(in, c, afi);
  } else if (type == kSourceMac || type == kDestinationMac) {
    ShowFlowMac(in, c);
  } else {
    ShowPairs(in, c, type);
  }
}

void ShowBgpFlows(const Place& at, Cursor& c, uint32_t afi, uint32_t safi, Bgp& bgp) {
  constexpr uint32_t kFlowVpn = 134, kLong = 0xF0;
  Loop loop;
  while (MoreAt(at, c, loop)) {
    const Cursor whole = c;
    const Field path = TakeBgpPath(c, bgp);
    const bool isLong = PeekU8(c) >= kLong;
    const int64_t size = isLong ? 2 + static_cast<int64_t>(PeekU16(c) & 0xFFF) : 1 + static_cast<int64_t>(PeekU8(c));
    Cursor flow = TakeCursor(c, size);
    const Place in = Under(at, AddLine(at, Ahead(whole, path.length + Left(flow)), "Flow Specification"));
    ShowBgpPath(in, path);
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
      ShowBgpFlowComponent(under, flow, type.value, afi);
      SetRange(under, line, start.offset, flow.offset - start.offset);
    }
  }
}

}  // namespace qxview
