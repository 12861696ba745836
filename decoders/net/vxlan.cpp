// Virtual networks over UDP: VXLAN (RFC 7348), with a group policy (draft-smith-vxlan-group-policy) and with a protocol of
// its own (VXLAN-GPE, draft-ietf-nvo3-vxlan-gpe), and the service header that steers packets through functions on their way
// (NSH, RFC 8300), which GPE and an Ethertype carry.
//
//   VXLAN   flags   group policy ID (or reserved, next protocol)   network identifier (24)   reserved
//   NSH     version, O, time to live, length, metadata type, next protocol   path (24), index   metadata
#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr uint32_t kHasProtocol = 0x04, kHasPolicy = 0x80;
constexpr int32_t kVxlanSize = 8, kServiceSize = 8;

constexpr auto kNextNames = SortedNames({
    {1, "IPv4"}, {2, "IPv6"}, {3, "Ethernet"}, {4, "NSH"}, {5, "MPLS"}, {6, "Group-Based Policy"}, {7, "vBNG"},
    {0x7E, "Experimentation"}, {0x7F, "Experimentation"}, {0x80, "Group-Based Policy Shim"}, {0x81, "iOAM Shim"},
    {0xFE, "Experimentation"}, {0xFF, "Experimentation"}});
constexpr auto kServiceNextNames = SortedNames({
    {1, "IPv4"}, {2, "IPv6"}, {3, "Ethernet"}, {4, "NSH"}, {5, "MPLS"}, {6, "IOAM"}, {7, "Active SFC OAM"}, {0xFE, "Experiment 1"},
    {0xFF, "Experiment 2"}});
constexpr auto kMetadataNames = SortedNames({{1, "Fixed Length"}, {2, "Variable Length"}, {15, "Experimental"}});
constexpr auto kClassNames = SortedNames({
    {0x0000, "IETF Base NSH"}, {0x0101, "Ericsson"}, {0x0102, "3GPP"}, {0x0103, "Cisco"}, {0x0200, "Broadband Forum"}});

struct Overlay {
  Field identifier, next, metadata, length, path, policy;
};
constexpr auto kPlain = Rows<Overlay>({
    Hex(2, "Flags"), Flag(0, "Group Policy"), Flag(4, "Network Identifier Valid"), Flag(9, "Do Not Learn"),
    Flag(12, "Policy Applied"), Number(2, "Group Policy ID").Into(&Overlay::policy),
    Number(3, "Network Identifier (VNI)").Into(&Overlay::identifier), Hex(1, "Reserved")});
constexpr auto kGeneric = Rows<Overlay>({
    Hex(1, "Flags"), Bits(2, 2, "Version"), Flag(4, "Instance"), Flag(5, "Next Protocol Present"),
    Flag(6, "Ingress Replication"), Flag(7, "OAM"), Hex(2, "Reserved"),
    Number(1, "Next Protocol", kNextNames).Into(&Overlay::next),
    Number(3, "Network Identifier (VNI)").Into(&Overlay::identifier), Hex(1, "Reserved")});

constexpr auto kService = Rows<Overlay>({
    Hex(2, "Base Header"), Bits(0, 2, "Version"), Flag(2, "OAM"), Bits(3, 1, "Unassigned"),
    Bits(4, 6, "Time to Live"), Bits(10, 6, "Length", " words").Into(&Overlay::length), Word(1),
    Bits(0, 4, "Unassigned"), Bits(4, 4, "Metadata Type", kMetadataNames).Into(&Overlay::metadata),
    Number(1, "Next Protocol", kServiceNextNames).Into(&Overlay::next),
    Number(3, "Service Path Identifier").Into(&Overlay::path), Number(1, "Service Index")});
constexpr auto kFixedMetadata = Rows<Overlay>({
    Hex(4, "Context Header 1"), Hex(4, "Context Header 2"), Hex(4, "Context Header 3"), Hex(4, "Context Header 4")});
constexpr auto kVariableMetadata = Rows<Overlay>({
    Hex(2, "Metadata Class", kClassNames), Number(1, "Type"), Word(1), Bits(0, 1, "Unassigned"),
    Bits(1, 7, "Length", " bytes").Into(&Overlay::length)});
// The types of the IETF's class (RFC 8979, 9145, 9263).
constexpr auto kContextNames = SortedNames({
    {0x00, "Subscriber Identifier"}, {0x01, "Performance Policy Identifier"}, {0x02, "MAC#1 Context"}, {0x03, "MAC#2 Context"},
    {0x04, "Forwarding Context"}, {0x05, "Tenant Identifier"}, {0x06, "Ingress Network Node"},
    {0x07, "Ingress Network Interface"}, {0x08, "Flow Identifier"}, {0x09, "Source and Destination Groups"},
    {0x0A, "Policy Identifier"}});
constexpr auto kForwardingNames = SortedNames({
    {0, "VLAN"}, {1, "Two VLANs"}, {2, "MPLS VPN Label"}, {3, "Virtual Network Identifier (VNI)"}, {4, "Session"}});
constexpr auto kOneVlan = Rows<Overlay>({
    Word(4), Bits(0, 4, "Context Type", kForwardingNames), Bits(4, 16, "Reserved"), Bits(20, 12, "VLAN ID")});
constexpr auto kTwoVlans = Rows<Overlay>({
    Word(4), Bits(0, 4, "Context Type", kForwardingNames), Bits(4, 4, "Reserved"), Bits(8, 12, "Service VLAN ID"),
    Bits(20, 12, "Customer VLAN ID")});
constexpr auto kVpnLabel = Rows<Overlay>({
    Word(4), Bits(0, 4, "Context Type", kForwardingNames), Bits(4, 8, "Reserved"), Bits(12, 20, "MPLS VPN Label")});
constexpr auto kNetwork = Rows<Overlay>({
    Word(4), Bits(0, 4, "Context Type", kForwardingNames), Bits(4, 4, "Reserved"),
    Bits(8, 24, "Virtual Network Identifier (VNI)")});
constexpr auto kSession = Rows<Overlay>({
    Word(4), Bits(0, 4, "Context Type", kForwardingNames), Bits(4, 28, "Reserved"), Hex(4, "Session ID")});
constexpr auto kFlowIdentifier = Rows<Overlay>({Word(4), Bits(0, 12, "Reserved"), Bits(12, 20, "Flow Identifier")});
constexpr auto kVariableValue = Rows<Overlay>({Bytes(0, "Metadata").SizedBy(&Overlay::length)});

int32_t DecodeNext(const Place& network, const Cursor& c, uint32_t next, const char* title) {
  switch (next) {
    case 1:
    case 2: return DecodeCarriedFrame(network, c, Carried::kIp, title);
    case 3: return DecodeCarriedFrame(network, c, Carried::kEthernet, title);
    case 4: return DecodeCarriedPacket(network, c, 0x894F, title);
    case 5: return DecodeCarriedFrame(network, c, Carried::kMpls, title);
    default: return DecodeCarriedFrame(network, c, Carried::kUnknown, title);
  }
}

void ShowContext(const Place& in, Cursor& c, uint32_t number, uint32_t type, Overlay& overlay) {
  constexpr RowSpan<Overlay> kForwarding[] = {kOneVlan, kTwoVlans, kVpnLabel, kNetwork, kSession};
  constexpr uint32_t kForwardingType = 4, kFlowType = 8;
  const uint32_t kind = PeekU8(c) >> 4, length = overlay.length.value;
  const bool isOfIetf = number == 0;
  if (isOfIetf) AppendToParent(in, overlay.length, ", %s", LookupName(kContextNames, type));
  if (isOfIetf && type == kForwardingType && kind < 5 && length == (kind == 4 ? 8u : 4u)) {
    ShowRows<Overlay>(in, c, kForwarding[kind], overlay);
  } else if (isOfIetf && type == kFlowType && length == 4) {
    ShowRows<Overlay>(in, c, kFlowIdentifier, overlay);
  } else {
    ShowRows<Overlay>(in, c, kVariableValue, overlay);
  }
}

void ShowMetadata(const Place& at, Cursor c, Overlay& overlay) {
  if (overlay.metadata.value == 1) ShowRows<Overlay>(at, c, kFixedMetadata, overlay);
  Loop loop;
  while (overlay.metadata.value == 2 && Left(c) >= 4 && MoreAt(at, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU8(c, 3) & 0x7F), padded = (length + 3) & ~3;
    const Cursor head = c;
    const Place in = Under(at, AddLine(at, AheadCut(c, 4 + padded), "Context Header: Class 0x%.04X, Type %u", PeekU16(c),
                                       PeekU8(c, 2)));
    ShowRows<Overlay>(in, c, kVariableMetadata, overlay);
    ShowContext(in, c, PeekU16(head), PeekU8(head, 2), overlay);
    const Field padding = TakeBytes(c, padded - length);
    if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
  }
  c.ranShort = false;
  AddBlock(at, Rest(c), "Metadata");
}

}  // namespace

int32_t DecodeVxlan(const Place& at, Cursor c) {
  constexpr uint32_t kValid = 0x08;
  if (Left(c) < kVxlanSize || !(PeekU8(c) & kValid)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kVxlanSize), "VXLAN: Network %u%s", PeekU24(c, 4),
                                     PeekU8(c) & kHasPolicy ? ", Group Policy" : ""));
  ShowRows(in, c, kPlain);
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet, "VXLAN Data");
}

int32_t DecodeVxlanGpe(const Place& at, Cursor c) {
  if (Left(c) < kVxlanSize) return 0;
  const bool hasProtocol = PeekU8(c) & kHasProtocol;
  const Place in = Under(at, AddLine(at, Ahead(c, kVxlanSize), "VXLAN-GPE: Network %u, %s", PeekU24(c, 4),
                                     hasProtocol ? LookupName(kNextNames, PeekU8(c, 3)) : "Ethernet"));
  const Overlay overlay = ShowRows(in, c, kGeneric);
  if (!hasProtocol) return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet, "VXLAN-GPE Data");
  return DecodeNext(Deeper(at), c, overlay.next.value, "VXLAN-GPE Data");
}

int32_t DecodeServiceHeader(const Place& at, Cursor c) {
  const int32_t size = static_cast<int32_t>(PeekU8(c, 1) & 0x3F) * 4;
  if (Left(c) < kServiceSize || PeekU8(c) >> 6 != 0 || size < kServiceSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kServiceSize), "NSH: Path %u, Index %u, %s", PeekU24(c, 4), PeekU8(c, 7),
                                     LookupName(kServiceNextNames, PeekU8(c, 3))));
  Overlay overlay = ShowRows(in, c, kService);
  ShowMetadata(in, TakeCursor(c, size - kServiceSize), overlay);
  CoverBytes(in, c);
  return DecodeNext(Deeper(at), c, overlay.next.value, "NSH Data");
}

}  // namespace qxview
