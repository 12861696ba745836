// The objects of RSVP by class and C-Type: sessions, hops, styles, labels, tunnels and what else its extensions define.
#include "decoders/net/ip_protocol_names.h"
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

const char* CarriedName(uint32_t protocol) { return IpProtocolName(protocol); }
const char* NetworkName(uint32_t ethertype) {
  const char* name = EthertypeName(static_cast<uint16_t>(ethertype));
  return name ? name : kUnknown;
}

constexpr auto kSessionMasks = SortedNames({{0x01, "Edge Policing"}});
constexpr auto kSession4 = Rows<Rsvp>({
    IPv4("Destination Address").Note(", %s"), Number(1, "Protocol ID", CarriedName).Note(", %s"),
    Flags(1, "Session Flags", kSessionMasks), Number(2, "Destination Port").Note(", Port %u")});
constexpr auto kSession6 = Rows<Rsvp>({
    IPv6("Destination Address").Note(", %s"), Number(1, "Protocol ID", CarriedName).Note(", %s"),
    Flags(1, "Session Flags", kSessionMasks), Number(2, "Destination Port").Note(", Port %u")});
constexpr auto kTunnel4 = Rows<Rsvp>({
    IPv4("Tunnel Endpoint Address").Note(", %s"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv4("Extended Tunnel ID").Note(", Extended %s")});
constexpr auto kTunnel6 = Rows<Rsvp>({
    IPv6("Tunnel Endpoint Address").Note(", %s"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv6("Extended Tunnel ID")});
constexpr auto kMultipoint4 = Rows<Rsvp>({
    Hex(4, "P2MP ID").Note(", P2MP 0x%.08X"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv4("Extended Tunnel ID")});
constexpr auto kMultipoint6 = Rows<Rsvp>({
    Hex(4, "P2MP ID").Note(", P2MP 0x%.08X"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv6("Extended Tunnel ID")});

constexpr auto kHop4 = Rows<Rsvp>({IPv4("Neighbor Address").Note(", %s"), Hex(4, "Logical Interface Handle")});
constexpr auto kHop6 = Rows<Rsvp>({IPv6("Neighbor Address").Note(", %s"), Hex(4, "Logical Interface Handle")});
constexpr auto kInterface4 = Rows<Rsvp>({IPv4("Interface Address").Note(", %s")});
constexpr auto kInterface6 = Rows<Rsvp>({IPv6("Interface Address").Note(", %s")});
constexpr auto kInterface = Rows<Rsvp>({
    IPv4("Interface Router ID").Note(", %s"), Number(4, "Interface ID").Note(", Interface %u")});
constexpr auto kInterfaces = Choices<Rsvp>({
    {1, "IPv4", kInterface4}, {2, "IPv6", kInterface6}, {3, "IF_INDEX", kInterface},
    {4, "COMPONENT_IF_DOWNSTREAM", kInterface}, {5, "COMPONENT_IF_UPSTREAM", kInterface}});
void ShowInterfaces(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowElements<Rsvp>(in, c, kRsvpForm, "Interface", kInterfaces, rsvp);
}

constexpr auto kIntegrityMasks = SortedNames({{0x01, "Handshake"}});
constexpr auto kIntegrity = Rows<Rsvp>({
    Flags(1, "Integrity Flags", kIntegrityMasks), Number(1, "Reserved"), Bytes(6, "Key Identifier"),
    Number(8, "Sequence Number"), Bytes(0, "Keyed Message Digest")});
constexpr auto kTimes = Rows<Rsvp>({Number(4, "Refresh Period", " milliseconds").Note(", %u ms")});

constexpr auto kErrorMasks = SortedNames({
    {0x01, "In Place"}, {0x02, "Not Guilty"}, {0x04, "Path State Removed"}});
constexpr auto kErrorCode = Rows<Rsvp>({
    Flags(1, "Error Flags", kErrorMasks), Number(1, "Error Code", RsvpErrorName).Note(", %s").Into(&Rsvp::code)});
constexpr auto kErrorNode4 = Rows<Rsvp>({IPv4("Error Node Address").Note(", %s")});
constexpr auto kErrorNode6 = Rows<Rsvp>({IPv6("Error Node Address").Note(", %s")});
void ShowError(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowRows<Rsvp>(in, c, kErrorCode, rsvp);
  const Field value = TakeU16(c);
  const char* name = RsvpErrorValueName(rsvp.code.value, value.value);
  if (name) {
    AddLine(in, value, "Error Value: %u = %s", value.value, name);
    AppendToParent(in, value, ", %s", name);
  } else {
    AddLine(in, value, "Error Value: %u", value.value);
  }
  ShowInterfaces(in, c, rsvp);
}

constexpr auto kScope4 = Rows<Rsvp>({IPv4("Source Address").Note(", %s")});
constexpr auto kScope6 = Rows<Rsvp>({IPv6("Source Address").Note(", %s")});
void ShowScope4(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kScope4, rsvp);
}
void ShowScope6(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 16 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kScope6, rsvp);
}

constexpr auto kStyleNames = SortedNames({
    {0x0A, "Fixed Filter"}, {0x11, "Wildcard Filter"}, {0x12, "Shared Explicit"}});
constexpr auto kSharingNames = SortedNames({{0, "Reserved"}, {1, "Distinct"}, {2, "Shared"}, {3, "Reserved"}});
constexpr auto kSelectionNames = SortedNames({{0, "Reserved"}, {1, "Wildcard"}, {2, "Explicit"}});
constexpr auto kStyle = Rows<Rsvp>({
    Hex(1, "Style Flags"), Number(3, "Option Vector", kStyleNames).Note(", %s"), Bits(0, 19, "Reserved"),
    Bits(19, 2, "Sharing", kSharingNames), Bits(21, 3, "Sender Selection", kSelectionNames)});

constexpr auto kSender4 = Rows<Rsvp>({
    IPv4("Sender Address").Note(", %s"), Number(2, "Reserved"), Number(2, "Sender Port").Note(", Port %u")});
constexpr auto kSender6 = Rows<Rsvp>({
    IPv6("Sender Address").Note(", %s"), Number(2, "Reserved"), Number(2, "Sender Port").Note(", Port %u")});
constexpr auto kSenderFlow = Rows<Rsvp>({
    IPv6("Sender Address").Note(", %s"), Number(1, "Reserved"), Hex(3, "Flow Label")});
constexpr auto kSenderTunnel4 = Rows<Rsvp>({
    IPv4("Tunnel Sender Address").Note(", %s"), Number(2, "Reserved"), Number(2, "LSP ID").Note(", LSP %u")});
constexpr auto kSenderTunnel6 = Rows<Rsvp>({
    IPv6("Tunnel Sender Address").Note(", %s"), Number(2, "Reserved"), Number(2, "LSP ID").Note(", LSP %u")});
constexpr auto kSubGroup4 = Rows<Rsvp>({
    IPv4("Sub-Group Originator ID"), Number(2, "Reserved"), Number(2, "Sub-Group ID")});
constexpr auto kSubGroup6 = Rows<Rsvp>({
    IPv6("Sub-Group Originator ID"), Number(2, "Reserved"), Number(2, "Sub-Group ID")});
void ShowSubGroup4(const Place& in, Cursor& c, Rsvp& rsvp) { ShowRows<Rsvp>(in, c, kSubGroup4, rsvp); }
void ShowSubGroup6(const Place& in, Cursor& c, Rsvp& rsvp) { ShowRows<Rsvp>(in, c, kSubGroup6, rsvp); }

constexpr auto kSonet = Rows<Rsvp>({
    Number(1, "Signal Type"), Number(1, "Requested Contiguous Concatenation"),
    Number(2, "Number of Contiguous Components"),
    Number(2, "Number of Virtual Components"), Number(2, "Multiplier"), Hex(4, "Transparency"), Hex(4, "Profile")});
constexpr auto kOptical = Rows<Rsvp>({
    Number(1, "Signal Type"), Number(1, "Reserved"), Number(2, "Number of Multiplexed Components"),
    Number(2, "Number of Virtual Components"), Number(2, "Multiplier"), Bytes(8, "Reserved")});
constexpr auto kEthernet = Rows<Rsvp>({Number(2, "Switching Granularity"), Number(2, "MTU")});
constexpr auto kProfile = Rows<Rsvp>({
    Hex(1, "Profile Flags"), Number(1, "Profile Index"), Number(2, "Reserved"), Float(4, "Committed Information Rate"),
    Float(4, "Committed Burst Size"), Float(4, "Excess Information Rate"), Float(4, "Excess Burst Size")});
constexpr auto kProfiles = Choices<Rsvp>({
    {2, "Ethernet Bandwidth Profile", kProfile}, {129, "Ethernet Bandwidth Profile", kProfile}});
void ShowProfiles(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowElements<Rsvp>(in, c, kRsvpForm, "Ethernet Parameter", kProfiles, rsvp);
}

constexpr auto kReceiver4 = Rows<Rsvp>({IPv4("Receiver Address").Note(", %s")});
constexpr auto kReceiver6 = Rows<Rsvp>({IPv6("Receiver Address").Note(", %s")});
constexpr auto kLabelRow = Rows<Rsvp>({Number(4, "Label").Note(", %u")});
constexpr auto kWaveband = Rows<Rsvp>({Hex(4, "Waveband ID"), Hex(4, "Start Label"), Hex(4, "End Label")});
void ShowLabels(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kLabelRow, rsvp);
}

constexpr auto kEncodingNames = SortedNames({
    {1, "Packet"}, {2, "Ethernet"}, {3, "ANSI/ETSI PDH"}, {5, "SDH/SONET"}, {7, "Digital Wrapper"}, {8, "Lambda"},
    {9, "Fiber"}, {11, "FibreChannel"}, {12, "G.709 ODUk"}, {13, "G.709 Optical Channel"}, {14, "Line"}});
constexpr auto kSwitchingNames = SortedNames({
    {1, "PSC-1"}, {2, "PSC-2"}, {3, "PSC-3"}, {4, "PSC-4"}, {30, "EVPL"}, {40, "802.1 PBB-TE"}, {51, "L2SC"},
    {100, "TDM"}, {110, "OTN-TDM"}, {125, "DCSC"}, {150, "LSC"}, {151, "WSON-LSC"}, {152, "Flexi-Grid-LSC"},
    {200, "FSC"}});
constexpr auto kRequest = Rows<Rsvp>({Number(2, "Reserved"), Hex(2, "L3PID", NetworkName).Note(", %s")});
constexpr auto kRequestAtm = Rows<Rsvp>({
    Number(2, "Reserved"), Hex(2, "L3PID", NetworkName).Note(", %s"), Hex(2, "Minimum VPI"), Hex(2, "Minimum VCI"),
    Hex(2, "Maximum VPI"), Hex(2, "Maximum VCI")});
constexpr auto kRequestFrameRelay = Rows<Rsvp>({
    Number(2, "Reserved"), Hex(2, "L3PID", NetworkName).Note(", %s"), Hex(4, "Minimum DLCI"), Hex(4, "Maximum DLCI")});
constexpr auto kRequestGeneral = Rows<Rsvp>({
    Number(1, "LSP Encoding Type", kEncodingNames).Note(", %s"), Number(1, "Switching Type", kSwitchingNames),
    Hex(2, "Generalized PID", NetworkName)});

constexpr auto kHello = Rows<Rsvp>({Hex(4, "Source Instance"), Hex(4, "Destination Instance")});
constexpr auto kMessageMasks = SortedNames({{0x01, "ACK Desired"}});
constexpr auto kMessageId = Rows<Rsvp>({
    Flags(1, "Message ID Flags", kMessageMasks), Hex(3, "Epoch"), Number(4, "Message Identifier").Note(", %u")});
constexpr auto kMessageList = Rows<Rsvp>({Flags(1, "Message ID Flags", kMessageMasks), Hex(3, "Epoch")});
constexpr auto kMessageNumber = Rows<Rsvp>({Number(4, "Message Identifier").Note(", %u")});
void ShowMessageIds(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kMessageNumber, rsvp);
}

constexpr auto kActionNames = SortedNames({
    {0, "Inclusive List"}, {1, "Exclusive List"}, {2, "Inclusive Range"}, {3, "Exclusive Range"}});
constexpr auto kLabelSet = Rows<Rsvp>({
    Number(1, "Action", kActionNames), Word(3), Bits(0, 10, "Reserved"), Bits(10, 14, "Label Type")});
constexpr auto kProtection = Rows<Rsvp>({
    Word(4), Flag(0, "Secondary"), Bits(1, 25, "Reserved"), Bits(26, 6, "Link Flags")});
constexpr auto kProtection2 = Rows<Rsvp>({
    Word(4), Flag(0, "Secondary"), Flag(1, "Protecting"), Flag(2, "Notification"), Flag(3, "Operational"),
    Bits(4, 4, "Reserved"), Bits(8, 6, "LSP Flags"), Bits(14, 12, "Reserved"), Bits(26, 6, "Link Flags"),
    Hex(4, "Segment Recovery Flags")});
constexpr auto kDetour = Rows<Rsvp>({
    IPv4("Point of Local Repair").Note(", %s"), IPv4("Avoided Node").Note(" avoids %s")});
void ShowDetours(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kDetour, rsvp);
}
constexpr auto kRerouteMasks = SortedNames({{0x01, "One-to-One Backup Desired"}, {0x02, "Facility Backup Desired"}});
constexpr auto kReroute = Rows<Rsvp>({
    Number(1, "Setup Priority"), Number(1, "Holding Priority"), Number(1, "Hop Limit"),
    Flags(1, "Fast Reroute Flags", kRerouteMasks), Float(4, "Bandwidth"), Hex(4, "Include Any"), Hex(4, "Exclude Any"),
    Hex(4, "Include All")});
constexpr auto kReroute7 = Rows<Rsvp>({
    Number(1, "Setup Priority"), Number(1, "Holding Priority"), Number(1, "Hop Limit"), Number(1, "Reserved"),
    Float(4, "Bandwidth"), Hex(4, "Include Any"), Hex(4, "Exclude Any")});
constexpr auto kAttributeMasks = SortedNames({
    {0x01, "Local Protection Desired"}, {0x02, "Label Recording Desired"}, {0x04, "SE Style Desired"},
    {0x08, "Bandwidth Protection Desired"}, {0x10, "Node Protection Desired"}, {0x20, "Path Re-evaluation Request"},
    {0x40, "Soft Preemption Desired"}});
constexpr auto kAffinities = Rows<Rsvp>({
    Hex(4, "Exclude Any"), Hex(4, "Include Any"), Hex(4, "Include All"), Number(1, "Setup Priority"),
    Number(1, "Holding Priority"), Flags(1, "Session Attribute Flags", kAttributeMasks),
    Number(1, "Name Length").Into(&Rsvp::size), Utf8(0, "Session Name").Note(", %s").SizedBy(&Rsvp::size)});
constexpr auto kAttribute = Rows<Rsvp>({
    Number(1, "Setup Priority"), Number(1, "Holding Priority"), Flags(1, "Session Attribute Flags", kAttributeMasks),
    Number(1, "Name Length").Into(&Rsvp::size), Utf8(0, "Session Name").Note(", %s").SizedBy(&Rsvp::size)});
constexpr auto kPadding = Rows<Rsvp>({Bytes(0, "Padding")});
void ShowPadding(const Place& in, Cursor& c, Rsvp& rsvp) {
  if (Left(c) > 0 && Left(c) < 8) ShowRows<Rsvp>(in, c, kPadding, rsvp);
}

constexpr auto kDscp = Rows<Rsvp>({Hex(3, "Reserved"), Word(1), Bits(0, 2, "Reserved"), Bits(2, 6, "DSCP")});
void ShowDscps(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kDscp, rsvp);
}
constexpr auto kRestart = Rows<Rsvp>({
    Number(4, "Restart Time", " milliseconds"), Number(4, "Recovery Time", " milliseconds")});
constexpr auto kCapabilityMasks = SortedNames({
    {1, "RecoveryPath Srefresh Capable"}, {2, "RecoveryPath Transmit Enabled"}, {4, "RecoveryPath Desired"}});
constexpr auto kCapability = Rows<Rsvp>({Flags(4, "Capability Flags", kCapabilityMasks)});
constexpr auto kNotifyNode4 = Rows<Rsvp>({IPv4("Notify Node Address").Note(", %s")});
constexpr auto kNotifyNode6 = Rows<Rsvp>({IPv6("Notify Node Address").Note(", %s")});
constexpr auto kAdministrative = Rows<Rsvp>({
    Word(4), Flag(0, "Reflect"), Bits(1, 26, "Reserved"), Flag(27, "Handover"), Flag(28, "Lockout or Inhibit Alarm"),
    Flag(29, "Testing"), Flag(30, "Administratively Down"), Flag(31, "Deletion in Progress")});
constexpr auto kTunnelInterface = Rows<Rsvp>({IPv4("LSR Router ID").Note(", %s"), Number(4, "Interface ID")});
constexpr auto kAssociationNames = SortedNames({
    {0, "Reserved"}, {1, "Recovery"}, {2, "Resource Sharing"}, {3, "Double-Sided Associated Bidirectional"},
    {4, "Single-Sided Associated Bidirectional"}});
constexpr auto kAssociation4 = Rows<Rsvp>({
    Number(2, "Association Type", kAssociationNames), Number(2, "Association ID"),
    IPv4("Association Source").Note(", %s")});
constexpr auto kAssociation6 = Rows<Rsvp>({
    Number(2, "Association Type", kAssociationNames), Number(2, "Association ID"),
    IPv6("Association Source").Note(", %s")});
constexpr auto kClassType = Rows<Rsvp>({Word(4), Bits(0, 29, "Reserved"), Bits(29, 3, "Class Type")});
constexpr auto kSubPath4 = Rows<Rsvp>({IPv4("S2L Sub-LSP Destination").Note(", %s")});
constexpr auto kSubPath6 = Rows<Rsvp>({IPv6("S2L Sub-LSP Destination").Note(", %s")});
constexpr auto kCall = Rows<Rsvp>({Number(1, "Call ID Type"), Bytes(0, "Call ID")});

// The end points of connections that users ask optical networks for (OIF UNI 1.0).
constexpr auto kAddressKinds = SortedNames({{1, "IPv4"}, {2, "IPv6"}, {3, "NSAP"}});
constexpr auto kKind = Rows<Rsvp>({Number(1, "Subtype", kAddressKinds).Into(&Rsvp::code)});
constexpr auto kTna4 = Rows<Rsvp>({IPv4("Transport Network Address").Note(", %s")});
constexpr auto kTna6 = Rows<Rsvp>({IPv6("Transport Network Address").Note(", %s")});
constexpr auto kTnaOther = Rows<Rsvp>({Bytes(0, "Transport Network Address")});
void ShowTna(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowRows<Rsvp>(in, c, kKind, rsvp);
  const uint32_t kind = rsvp.code.value;
  ShowRows<Rsvp>(in, c, kind == 1   ? RowSpan<Rsvp>(kTna4)
                        : kind == 2 ? RowSpan<Rsvp>(kTna6)
                                    : RowSpan<Rsvp>(kTnaOther), rsvp);
}
constexpr auto kUniOther = Rows<Rsvp>({Number(1, "Subtype"), Bytes(0, nullptr)});
constexpr auto kUniParts = Choices<Rsvp>({
    {1, "Source Address", {}, ShowTna}, {2, "Destination Address", {}, ShowTna}, {3, "Diversity", kUniOther},
    {4, "Egress Label", kUniOther}, {5, "Service Level", kUniOther}});
void ShowUni(const Place& in, Cursor& c, Rsvp& rsvp) {
  constexpr ElementForm kForm{.lengthSize = 2, .padTo = 4, .lengthCountsHeader = true, .lengthFirst = true,
    .valueLines = true};
  ShowElements<Rsvp>(in, c, kForm, "Subobject", kUniParts, rsvp);
}

// What aggregates of reservations are named by (RFC 3175).
constexpr auto kAggregate4 = Rows<Rsvp>({
    IPv4("Destination Address").Note(", %s"), Number(3, "Reserved"), Number(1, "DSCP").Note(", DSCP %u")});
constexpr auto kAggregate6 = Rows<Rsvp>({
    IPv6("Destination Address").Note(", %s"), Number(3, "Reserved"), Number(1, "DSCP").Note(", DSCP %u")});
constexpr auto kAggregator4 = Rows<Rsvp>({IPv4("Aggregator Address").Note(", %s")});
constexpr auto kAggregator6 = Rows<Rsvp>({IPv6("Aggregator Address").Note(", %s")});
constexpr auto kDetour6 = Rows<Rsvp>({
    IPv6("Point of Local Repair").Note(", %s"), IPv6("Avoided Node").Note(" avoids %s")});
void ShowDetours6(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 32 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kDetour6, rsvp);
}
constexpr auto kChallenge = Rows<Rsvp>({
    Hex(1, "Challenge Flags"), Number(1, "Reserved"), Bytes(6, "Key Identifier"), Bytes(0, "Challenge Cookie")});
constexpr auto kMapCount = Rows<Rsvp>({
    Word(4), Bits(0, 28, "Reserved"), Bits(28, 4, "Number of Mappings").Note(", %u mappings")});
constexpr auto kMap = Rows<Rsvp>({
    Word(4), Bits(0, 13, "Reserved"), Bits(13, 3, "EXP"), Bits(16, 6, "PHB DSCP"), Bits(22, 8, "PHB Reserved"),
    Flag(30, "PHB Set"), Flag(31, "Private PHB")});
void ShowMaps(const Place& in, Cursor& c, Rsvp& rsvp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kMap, rsvp);
}
constexpr auto kScheduling = Rows<Rsvp>({
    Number(2, "Reserved"), Hex(2, "PHB Scheduling Class").Note(", 0x%.04X"), Bits(0, 6, "PHB DSCP"),
    Bits(6, 8, "PHB Reserved"), Flag(14, "PHB Set"), Flag(15, "Private PHB")});
constexpr auto kUserError = Rows<Rsvp>({
    Number(4, "Enterprise Number"), Number(1, "Suborganization"), Number(1, "Description Length").Into(&Rsvp::size),
    Number(2, "User Error Value").Note(", %u"), Utf8(0, "Error Description").Note(", %s").SizedBy(&Rsvp::size),
    Bytes(0, "Padding")});

constexpr auto kObjects = Choices<Rsvp>({
    {0x0101, "IPv4", kSession4}, {0x0102, "IPv6", kSession6}, {0x0107, "LSP Tunnel IPv4", kTunnel4},
    {0x0108, "LSP Tunnel IPv6", kTunnel6}, {0x0109, "Aggregate IPv4", kAggregate4},
    {0x010A, "Aggregate IPv6", kAggregate6}, {0x010B, "UNI IPv4", kTunnel4},
    {0x010D, "P2MP LSP Tunnel IPv4", kMultipoint4},
    {0x010E, "P2MP LSP Tunnel IPv6", kMultipoint6}, {0x010F, "E-NNI IPv4", kTunnel4}, {0x0301, "IPv4", kHop4},
    {0x0302, "IPv6", kHop6}, {0x0303, "IPv4 IF_ID", kHop4, ShowInterfaces},
    {0x0304, "IPv6 IF_ID", kHop6, ShowInterfaces},
    {0x0401, "Integrity", kIntegrity}, {0x0501, "Time Values", kTimes}, {0x0601, "IPv4", kErrorNode4, ShowError},
    {0x0602, "IPv6", kErrorNode6, ShowError}, {0x0603, "IPv4 IF_ID", kErrorNode4, ShowError},
    {0x0604, "IPv6 IF_ID", kErrorNode6, ShowError}, {0x0701, "IPv4", {}, ShowScope4}, {0x0702, "IPv6", {}, ShowScope6},
    {0x0801, "Style", kStyle}, {0x0902, "Integrated Services", {}, ShowRsvpFlow}, {0x0904, "SONET/SDH", kSonet},
    {0x0905, "G.709", kOptical}, {0x0906, "Ethernet", kEthernet, ShowProfiles}, {0x0A01, "IPv4", kSender4},
    {0x0A02, "IPv6", kSender6}, {0x0A03, "IPv6 Flow Label", kSenderFlow}, {0x0A07, "LSP Tunnel IPv4", kSenderTunnel4},
    {0x0A08, "LSP Tunnel IPv6", kSenderTunnel6}, {0x0A09, "Aggregate IPv4", kAggregator4},
    {0x0A0A, "Aggregate IPv6", kAggregator6}, {0x0A0C, "P2MP LSP IPv4", kSenderTunnel4, ShowSubGroup4},
    {0x0A0D, "P2MP LSP IPv6", kSenderTunnel6, ShowSubGroup6}, {0x0B01, "IPv4", kSender4}, {0x0B02, "IPv6", kSender6},
    {0x0B03, "IPv6 Flow Label", kSenderFlow}, {0x0B07, "LSP Tunnel IPv4", kSenderTunnel4},
    {0x0B08, "LSP Tunnel IPv6", kSenderTunnel6}, {0x0B09, "Aggregate IPv4", kAggregator4},
    {0x0B0A, "Aggregate IPv6", kAggregator6}, {0x0B0C, "P2MP LSP IPv4", kSenderTunnel4, ShowSubGroup4},
    {0x0B0D, "P2MP LSP IPv6", kSenderTunnel6, ShowSubGroup6}, {0x0C02, "Integrated Services", {}, ShowRsvpFlow},
    {0x0C04, "SONET/SDH", kSonet}, {0x0C05, "G.709", kOptical}, {0x0C06, "Ethernet", kEthernet, ShowProfiles},
    {0x0D02, "Integrated Services", {}, ShowRsvpFlow}, {0x0E01, "Policy Data", {}, ShowRsvpPolicies},
    {0x0F01, "IPv4", kReceiver4},
    {0x0F02, "IPv6", kReceiver6}, {0x1001, "Label", {}, ShowLabels}, {0x1002, "Generalized Label", {}, ShowLabels},
    {0x1003, "Waveband", kWaveband}, {0x1301, "Label Request", kRequest}, {0x1302, "ATM Label Request", kRequestAtm},
    {0x1303, "Frame Relay Label Request", kRequestFrameRelay}, {0x1304, "Generalized Label Request", kRequestGeneral},
    {0x1401, "Explicit Route", {}, ShowRsvpExplicitRoute}, {0x1501, "Record Route", {}, ShowRsvpRecordedRoute},
    {0x1601, "Request", kHello}, {0x1602, "Acknowledgement", kHello}, {0x1701, "Message ID", kMessageId},
    {0x1801, "Acknowledgement", kMessageId}, {0x1802, "Negative Acknowledgement", kMessageId},
    {0x1901, "Message ID List", kMessageList, ShowMessageIds}, {0x2201, "Label", {}, ShowLabels},
    {0x2202, "Generalized Label", {}, ShowLabels}, {0x2203, "Waveband", kWaveband}, {0x2301, "Label", {}, ShowLabels},
    {0x2302, "Generalized Label", {}, ShowLabels}, {0x2303, "Waveband", kWaveband},
    {0x2401, "Label Set", kLabelSet, ShowLabels}, {0x2501, "Link Protection", kProtection},
    {0x2502, "LSP Protection", kProtection2}, {0x2601, "Primary Path Route", {}, ShowRsvpExplicitRoute},
    {0x3201, "IPv4", kSubPath4}, {0x3202, "IPv6", kSubPath6}, {0x3F07, "Detour", {}, ShowDetours},
    {0x3F08, "Detour IPv6", {}, ShowDetours6}, {0x4001, "Challenge", kChallenge},
    {0x4101, "E-LSP", kMapCount, ShowMaps}, {0x4102, "L-LSP", kScheduling},
    {0x4201, "Class Type", kClassType}, {0x4301, "LSP Required Attributes", {}, ShowRsvpPathAttributes},
    {0x8101, "Label", {}, ShowLabels}, {0x8102, "Generalized Label", {}, ShowLabels}, {0x8103, "Waveband", kWaveband},
    {0x8201, "Label Set", kLabelSet, ShowLabels}, {0x8301, "Restart Capability", kRestart},
    {0x8601, "Capability", kCapability}, {0xC101, "LSP Tunnel Interface", kTunnelInterface},
    {0xC201, "User Error", kUserError}, {0xC301, "IPv4", kNotifyNode4}, {0xC302, "IPv6", kNotifyNode6},
    {0xC401, "Administrative Status", kAdministrative},
    {0xC501, "LSP Attributes", {}, ShowRsvpPathAttributes}, {0xC701, "IPv4", kAssociation4},
    {0xC702, "IPv6", kAssociation6}, {0xC801, "Secondary Explicit Route", {}, ShowRsvpExplicitRoute},
    {0xC901, "Secondary Record Route", {}, ShowRsvpRecordedRoute}, {0xCD01, "Fast Reroute", kReroute},
    {0xCD07, "Fast Reroute (Type 7)", kReroute7},
    {0xCF01, "Session Attribute with Affinities", kAffinities, ShowPadding},
    {0xCF07, "Session Attribute", kAttribute, ShowPadding}, {0xE101, "DCLASS", {}, ShowDscps},
    {0xE501, "Generalized UNI", {}, ShowUni}, {0xE601, "Operator Specific", kCall}, {0xE602, "Globally Unique", kCall},
    {0xE801, "Exclude Route", {}, ShowRsvpExcludedRoute}});

}  // namespace

const Choice<Rsvp>* FindRsvpObject(uint32_t kind) {
  const Choice<Rsvp>* choice = FindChoice<Rsvp>(kObjects, kind);
  return choice ? choice : FindRareRsvpObject(kind);
}
void ShowRsvpErrorSpec(const Place& in, Cursor& c, Rsvp& rsvp) { ShowError(in, c, rsvp); }

}  // namespace qxview
