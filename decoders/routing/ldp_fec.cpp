// The elements of forwarding equivalence classes in LDP (RFC 5036 3.4.1, RFC 5918, RFC 6388, RFC 7307, RFC 8077) and
// the parameters of pseudowires (RFC 4446): which packets is a label for?
#include "decoders/routing/ldp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr uint32_t kWildcard = 1, kPrefix = 2, kHost = 3, kRouted = 4, kHsmpUp = 9, kHsmpDown = 10;
constexpr uint32_t kTypedWildcard = 5, kP2mp = 6, kMp2mpUp = 7, kMp2mpDown = 8;
constexpr uint32_t kPwId = 128, kGeneralizedPwId = 129, kP2mpPwUp = 130, kP2mpPwDown = 132;

constexpr auto kElementNames = SortedNames({
    {1, "Wildcard"}, {2, "Prefix"}, {3, "Host Address"}, {4, "CR-LSP"}, {5, "Typed Wildcard"}, {6, "P2MP"}, {7, "MP2MP Upstream"},
    {8, "MP2MP Downstream"}, {9, "HSMP Upstream"}, {10, "HSMP Downstream"}, {128, "PWid"}, {129, "Generalized PWid"},
    {130, "P2MP PW Upstream"}, {131, "Protection"}, {132, "P2MP PW Downstream"}});
constexpr auto kPwNames = SortedNames({
    {0x0000, "Reserved"}, {0x0001, "Frame Relay DLCI (Martini)"}, {0x0002, "ATM AAL5 SDU VCC Transport"},
    {0x0003, "ATM Transparent Cell Transport"}, {0x0004, "Ethernet Tagged Mode"}, {0x0005, "Ethernet"},
    {0x0006, "HDLC"},
    {0x0007, "PPP"}, {0x0008, "SONET/SDH Circuit Emulation Service over MPLS"},
    {0x0009, "ATM N-to-One VCC Cell Transport"},
    {0x000A, "ATM N-to-One VPC Cell Transport"}, {0x000B, "IP Layer 2 Transport"},
    {0x000C, "ATM One-to-One VCC Cell Mode"}, {0x000D, "ATM One-to-One VPC Cell Mode"},
    {0x000E, "ATM AAL5 PDU VCC Transport"}, {0x000F, "Frame Relay Port Mode"},
    {0x0010, "SONET/SDH Circuit Emulation over Packet"}, {0x0011, "Structure-Agnostic E1 over Packet"},
    {0x0012, "Structure-Agnostic T1 over Packet"}, {0x0013, "Structure-Agnostic E3 over Packet"},
    {0x0014, "Structure-Agnostic T3 over Packet"}, {0x0015, "CESoPSN Basic Mode"}, {0x0016, "TDMoIP AAL1 Mode"},
    {0x0017, "CESoPSN TDM with CAS"}, {0x0018, "TDMoIP AAL2 Mode"}, {0x0019, "Frame Relay DLCI"},
    {0x001A, "ROHC Transport Header-Compressed Packets"}, {0x001B, "ECRTP Transport Header-Compressed Packets"},
    {0x001C, "IPHC Transport Header-Compressed Packets"}, {0x001D, "cRTP Transport Header-Compressed Packets"},
    {0x001E, "ATM VP Virtual Trunk"}, {0x001F, "FC Port Mode"}, {0x7FFF, "Wildcard"}});

constexpr auto kFamily = Rows<Ldp>({Number(2, "Address Family", AddressFamilyName).Into(&Ldp::family)});
constexpr auto kBits = Rows<Ldp>({Number(1, "Prefix Length").Into(&Ldp::bits)});
constexpr auto kSize = Rows<Ldp>({Number(1, "Address Length").Into(&Ldp::size)});
constexpr auto kTyped = Rows<Ldp>({
    Number(1, "Wildcard FEC Element Type", kElementNames), Counted(1, Bytes(0, "Additional FEC Information"))});
constexpr auto kOpaqueLength = Rows<Ldp>({Number(2, "Opaque Length").Into(&Ldp::length)});
constexpr auto kPw = Rows<Ldp>({
    Word(2), Flag(0, "Control Word"), Bits(1, 15, "Pseudowire Type", PseudowireTypeName).Note(", %s"),
    Number(1, "Pseudowire Information Length").Into(&Ldp::length)});
constexpr auto kPwGroup = Rows<Ldp>({Number(4, "Group ID")});
constexpr auto kPwNumber = Rows<Ldp>({Number(4, "Pseudowire ID").Note(", ID %u")});
constexpr auto kAgi = Rows<Ldp>({
    Number(1, "Attachment Group Identifier Type"), Counted(1, Bytes(0, "Attachment Group Identifier"))});
constexpr auto kSaii = Rows<Ldp>({
    Number(1, "Source Attachment Identifier Type"), Counted(1, Bytes(0, "Source Attachment Identifier"))});
constexpr auto kTaii = Rows<Ldp>({
    Number(1, "Target Attachment Identifier Type"), Counted(1, Bytes(0, "Target Attachment Identifier"))});

constexpr auto kMtu = Rows<Ldp>({Number(2, "Interface MTU").Note(", %u")});
constexpr auto kCells = Rows<Ldp>({Number(2, "Maximum Number of Concatenated ATM Cells")});
constexpr auto kDescription = Rows<Ldp>({Utf8(0, "Interface Description").Note(", %s")});
constexpr auto kPayload = Rows<Ldp>({Number(2, "CEP/TDM Payload Bytes")});
constexpr auto kCepOptions = Rows<Ldp>({Hex(2, "CEP Options")});
constexpr auto kVlan = Rows<Ldp>({Number(2, "Requested VLAN ID")});
constexpr auto kRate = Rows<Ldp>({Number(4, "CEP/TDM Bit Rate")});
constexpr auto kDlci = Rows<Ldp>({Number(2, "Frame Relay DLCI Length")});
constexpr auto kFragments = Rows<Ldp>({Bytes(0, "Fragmentation Indicator")});
constexpr auto kRetention = Rows<Ldp>({Number(2, "FCS Length")});
constexpr auto kTdm = Rows<Ldp>({Bytes(0, "TDM Options")});
constexpr auto kChannelMasks = SortedNames({
    {1, "Control Word as Channel"}, {2, "Router Alert Label as Channel"}, {4, "TTL Expiry as Channel"},
    {8, "Generic Associated Channel Label as Channel"}});
constexpr auto kVerificationMasks = SortedNames({
    {0x01, "ICMP Ping"}, {0x02, "LSP Ping"}, {0x04, "BFD IP/UDP, Fault Detection"},
    {0x08, "BFD IP/UDP, Fault Detection and Status"}, {0x10, "BFD PW-ACH, Fault Detection"},
    {0x20, "BFD PW-ACH, Fault Detection and Status"}});
constexpr auto kVccv = Rows<Ldp>({
    Flags(1, "Control Channel Types", kChannelMasks), Flags(1, "Connectivity Verification Types", kVerificationMasks)});
constexpr auto kFlow = Rows<Ldp>({
    Word(2), Flag(0, "Transmit Flow Labels"), Flag(1, "Receive Flow Labels"), Bits(2, 14, "Reserved")});
constexpr auto kAal1Cells = Rows<Ldp>({Number(2, "Cells per Packet")});
constexpr auto kAal1Mode = Rows<Ldp>({Number(2, "AAL1 Mode")});
constexpr auto kStackable = Rows<Ldp>({Hex(2, "Stack Capability")});
constexpr auto kGenericFlags = Rows<Ldp>({Hex(2, "Generic Protocol Flags")});
constexpr auto kTreeFlags = Rows<Ldp>({
    Word(2), Bits(0, 14, "Reserved"), Flag(14, "VLAN Mapping"), Flag(15, "Leaf Only")});
constexpr auto kOtherParameter = Rows<Ldp>({Bytes(0, nullptr)});

constexpr auto kParameters = Choices<Ldp>({
    {0x01, "Interface MTU", kMtu}, {0x02, "Concatenated ATM Cells", kCells},
    {0x03, "Interface Description", kDescription},
    {0x04, "CEP/TDM Payload", kPayload}, {0x05, "CEP Options", kCepOptions}, {0x06, "Requested VLAN", kVlan},
    {0x07, "CEP/TDM Bit Rate", kRate}, {0x08, "DLCI Length", kDlci}, {0x09, "Fragmentation", kFragments},
    {0x0A, "FCS Retention", kRetention}, {0x0B, "TDM Options", kTdm}, {0x0C, "VCCV", kVccv},
    {0x0D, "ROHC over MPLS Configuration", kOtherParameter}, {0x0E, "TDMoIP AAL1 Cells per Packet", kAal1Cells},
    {0x0F, "CRTP/ECRTP/IPHC over MPLS Configuration", kOtherParameter}, {0x10, "TDMoIP AAL1 Mode", kAal1Mode},
    {0x11, "TDMoIP AAL2 Options", kOtherParameter}, {0x16, "Stack Capability", kStackable}, {0x17, "Flow Label", kFlow},
    {0x18, "PW Generic Protocol Flags", kGenericFlags}, {0x19, "VCCV Extended CV", kOtherParameter},
    {0x1A, "E-Tree", kTreeFlags}});

constexpr auto kSwitchId = Rows<Ldp>({Number(4, "Pseudowire ID of the Last Segment")});
constexpr auto kSwitchText = Rows<Ldp>({Utf8(0, "Switching Point Description").Note(", %s")});
constexpr auto kLocal4 = Rows<Ldp>({IPv4("Local Address of the Switching Point").Note(", %s")});
constexpr auto kRemote4 = Rows<Ldp>({IPv4("Remote Address of the Switching Point").Note(", %s")});
constexpr auto kSwitchBytes = Rows<Ldp>({Bytes(0, nullptr)});
constexpr auto kSwitches = Choices<Ldp>({
    {1, "Last Segment", kSwitchId}, {2, "Description", kSwitchText}, {3, "Local Address", kLocal4},
    {4, "Remote Address", kRemote4}, {5, "FEC of the Last Segment", kSwitchBytes},
    {6, "Layer 2 PW Address of the Switching Point", kSwitchBytes}});

constexpr auto kLspNumber = Rows<Ldp>({Number(4, "LSP ID").Note(", %u")});
constexpr auto kOpaqueBytes = Rows<Ldp>({Bytes(0, nullptr)});
constexpr auto kTransit4 = Rows<Ldp>({IPv4("Source").Note(", %s"), IPv4("Group").Note(", %s")});
constexpr auto kTransit6 = Rows<Ldp>({IPv6("Source").Note(", %s"), IPv6("Group").Note(", %s")});
constexpr auto kShared4 = Rows<Ldp>({
    Number(1, "Mask Length"), IPv4("Rendezvous Point").Note(", %s"), IPv4("Group").Note(", %s")});
constexpr auto kShared6 = Rows<Ldp>({
    Number(1, "Mask Length"), IPv6("Rendezvous Point").Note(", %s"), IPv6("Group").Note(", %s")});
constexpr auto kVpnInner = Rows<Ldp>({
    Hex(8, "Route Distinguisher"), Number(1, "Inner FEC Element Type", kElementNames)});
constexpr auto kInnerType = Rows<Ldp>({Number(1, "Inner FEC Element Type", kElementNames)});
void ShowInner(const Place& in, Cursor& c, Ldp& ldp);
constexpr auto kOpaques = Choices<Ldp>({
    {1, "Generic LSP Identifier", kLspNumber}, {2, "Extended Type", kOpaqueBytes},
    {3, "Transit IPv4 Source", kTransit4}, {4, "Transit IPv6 Source", kTransit6},
    {5, "Transit IPv4 Bidirectional", kShared4}, {6, "Transit IPv6 Bidirectional", kShared6},
    {7, "Recursive Opaque", kInnerType, ShowInner}, {8, "VPN-Recursive Opaque", kVpnInner, ShowInner}});

// A class inside another one: its opaque value holds no further one.
void ShowInner(const Place& in, Cursor& c, Ldp& ldp) {
  ShowRows<Ldp>(in, c, kFamily, ldp);
  ShowRows<Ldp>(in, c, kSize, ldp);
  Cursor address = TakeCursor(c, ldp.size.value);
  ShowFamilyAddress(in, address, "Root Node Address", ldp.family.value);
  ShowRows<Ldp>(in, c, kOpaqueLength, ldp);
  AddBlock(in, Rest(c), "Inner Opaque Value");
}

void ShowMultipoint(const Place& in, Cursor& c, Ldp& ldp) {
  constexpr ElementForm kForm{.lengthSize = 2, .valueLines = true};
  ShowRows<Ldp>(in, c, kFamily, ldp);
  ShowRows<Ldp>(in, c, kSize, ldp);
  Cursor address = TakeCursor(c, ldp.size.value);
  ShowFamilyAddress(in, address, "Root Node Address", ldp.family.value);
  ShowRows<Ldp>(in, c, kOpaqueLength, ldp);
  Cursor opaque = TakeCursor(c, ldp.length.value);
  ShowElements<Ldp>(in, opaque, kForm, "Opaque Value", kOpaques, ldp);
}

// The information length counts identifier and parameters, and is 0 where the group alone is meant.
void ShowPw(const Place& in, Cursor& c, Ldp& ldp) {
  constexpr int32_t kIdSize = 4;
  ShowRows<Ldp>(in, c, kPw, ldp);
  const uint32_t length = ldp.length.value;
  ShowRows<Ldp>(in, c, kPwGroup, ldp);
  Cursor information = TakeCursor(c, length);
  if (Left(information) >= kIdSize) ShowRows<Ldp>(in, information, kPwNumber, ldp);
  ShowLdpParameters(in, information, ldp);
}

void ShowGeneralizedPw(const Place& in, Cursor& c, Ldp& ldp) {
  ShowRows<Ldp>(in, c, kPw, ldp);
  Cursor information = TakeCursor(c, ldp.length.value);
  ShowRows<Ldp>(in, information, kAgi, ldp);
  ShowRows<Ldp>(in, information, kSaii, ldp);
  if (Left(information) > 0) ShowRows<Ldp>(in, information, kTaii, ldp);
}

void ShowFec(const Place& in, Cursor& c, uint32_t type, Ldp& ldp) {
  switch (type) {
    case kWildcard:
    case kRouted: return;
    case kPrefix:
      ShowRows<Ldp>(in, c, kFamily, ldp);
      ShowRows<Ldp>(in, c, kBits, ldp);
      ShowPrefix(in, c, "Prefix", ldp.family.value, ldp.bits.value);
      return;
    case kHost: {
      ShowRows<Ldp>(in, c, kFamily, ldp);
      ShowRows<Ldp>(in, c, kSize, ldp);
      Cursor address = TakeCursor(c, ldp.size.value);
      ShowFamilyAddress(in, address, "Host Address", ldp.family.value);
      return;
    }
    case kTypedWildcard: ShowRows<Ldp>(in, c, kTyped, ldp); return;
    case kP2mp:
    case kMp2mpUp:
    case kMp2mpDown:
    case kHsmpUp:
    case kHsmpDown: ShowMultipoint(in, c, ldp); return;
    case kPwId: ShowPw(in, c, ldp); return;
    case kGeneralizedPwId:
    case kP2mpPwUp:
    case kP2mpPwDown: ShowGeneralizedPw(in, c, ldp); return;
    default: AddBlock(in, Rest(c), "FEC Data");
  }
}

}  // namespace

const char* PseudowireTypeName(uint32_t type) { return LookupName(kPwNames, type); }

void ShowLdpParameters(const Place& in, Cursor& c, Ldp& ldp) {
  constexpr ElementForm kForm{.lengthCountsHeader = true, .valueLines = true};
  ShowElements<Ldp>(in, c, kForm, "Interface Parameter", kParameters, ldp);
}

void ShowLdpSwitchingPoints(const Place& in, Cursor& c, Ldp& ldp) {
  ShowElements<Ldp>(in, c, ElementForm{}, "Switching Point", kSwitches, ldp);
}

void ShowLdpFecs(const Place& in, Cursor& c, Ldp& ldp) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Cursor start = c;
    const Field type = TakeU8(c);
    const Place under = Under(in, AddLine(in, Ahead(start, 1),
    "FEC Element: %s", LookupName(kElementNames, type.value)));
    AddLine(under, type, "FEC Element Type: %u = %s", type.value, LookupName(kElementNames, type.value));
    ShowFec(under, c, type.value, ldp);
    if (!under.dead) SetRange(under, under.parent, start.offset, c.offset - start.offset);
  }
}

}  // namespace qxview
