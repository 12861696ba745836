// Detecting label switched paths' faults, also called LSP ping (RFC 8029; segments: RFC 8287, BFD: RFC 5884, return
// paths: RFC 7110): does a packet of this class reach the router that it should, and through which ones?
//
//   version (2)   flags (2)   type (1)   reply mode (1)   return code, subcode (1 each)   handle (4)   sequence (4)
//   times sent and received (8 each)   TLVs, filled up to four
#include "core/elements.h"
#include "decoders/routing/ldp.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 32;
constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .padTo = 4, .valueLines = true};

struct Ping {
  Field type, family, length, flags;
};

constexpr auto kTypeNames = SortedNames({
    {1, "MPLS Echo Request"}, {2, "MPLS Echo Reply"}, {3, "MPLS Proxy Ping Request"}, {4, "MPLS Proxy Ping Reply"}});
constexpr auto kModeNames = SortedNames({
    {1, "Do Not Reply"}, {2, "Reply via an IPv4/IPv6 UDP Packet"},
    {3, "Reply via an IPv4/IPv6 UDP Packet with Router Alert"}, {4, "Reply via Application-Level Control Channel"},
    {5, "Reply via Specified Path"}});
constexpr auto kReturnNames = SortedNames({
    {0, "No Return Code"}, {1, "Malformed Echo Request Received"}, {2, "One or More of the TLVs Was Not Understood"},
    {3, "Replying Router Is an Egress for the FEC at Stack-Depth"},
    {4, "Replying Router Has No Mapping for the FEC at Stack-Depth"}, {5, "Downstream Mapping Mismatch"},
    {6, "Upstream Interface Index Unknown"}, {7, "Reserved"}, {8, "Label Switched at Stack-Depth"},
    {9, "Label Switched but No MPLS Forwarding at Stack-Depth"},
    {10, "Mapping for This FEC Is Not the Given Label at Stack-Depth"}, {11, "No Label Entry at Stack-Depth"},
    {12, "Protocol Not Associated with Interface at FEC Stack-Depth"}, {13, "Premature Termination of Ping"},
    {14, "See DDMAP TLV for Meaning of Return Code and Return Subcode"}, {15, "Label Switched with FEC Change"},
    {16, "Proxy Ping Not Authorized"}, {17, "Proxy Ping Parameters Need to Be Modified"},
    {18, "MPLS Echo Request Could Not Be Sent"}, {19, "Replying Router Has FEC Mapping for Topmost FEC"},
    {20, "One or More TLVs Not Returned Due to MTU Size"}, {33, "OAM Problem/Unsupported BFD Version"},
    {34, "OAM Problem/Unsupported BFD Encapsulation Format"}, {35, "OAM Problem/Unsupported BFD Authentication Type"},
    {36, "OAM Problem/Mismatch of BFD Authentication Key ID"},
    {37, "OAM Problem/Unsupported Timestamp Format"}, {38, "OAM Problem/Unsupported Delay Mode"},
    {39, "OAM Problem/Unsupported Loss Mode"}, {40, "OAM Problem/Delay Variation Unsupported"},
    {41, "OAM Problem/Dyadic Mode Unsupported"}, {42, "OAM Problem/Loopback Mode Unsupported"},
    {43, "OAM Problem/Combined Mode Unsupported"}, {44, "OAM Problem/Fault Management Signaling Unsupported"},
    {45, "OAM Problem/Unable to Create Fault Management Association"}});
constexpr auto kFlagMasks = SortedNames({
    {1, "Validate FEC Stack"}, {2, "Respond Only If TTL Expired"}, {4, "Validate Reverse Path"}});

constexpr auto kHeader = Rows<Ping>({
    Number(2, "Version"), Flags(2, "Global Flags", kFlagMasks), Number(1, "Message Type", kTypeNames).Into(&Ping::type),
    Number(1, "Reply Mode", kModeNames), Number(1, "Return Code", kReturnNames), Number(1, "Return Subcode"),
    Hex(4, "Sender's Handle"), Number(4, "Sequence Number").Note(", Sequence %u"), NtpTime("Timestamp Sent"),
    NtpTime("Timestamp Received")});

constexpr auto kPrefix4 = Rows<Ping>({
    IPv4("IPv4 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Bytes(0, "Reserved")});
constexpr auto kPrefix6 = Rows<Ping>({
    IPv6("IPv6 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Bytes(0, "Reserved")});
constexpr auto kTunnel4 = Rows<Ping>({
    IPv4("Tunnel Endpoint Address").Note(", %s"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv4("Extended Tunnel ID"), IPv4("Tunnel Sender Address"), Number(2, "Reserved"),
    Number(2, "LSP ID").Note(", LSP %u")});
constexpr auto kTunnel6 = Rows<Ping>({
    IPv6("Tunnel Endpoint Address").Note(", %s"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv6("Extended Tunnel ID"), IPv6("Tunnel Sender Address"), Number(2, "Reserved"),
    Number(2, "LSP ID").Note(", LSP %u")});
constexpr auto kVpn4 = Rows<Ping>({
    Hex(8, "Route Distinguisher"), IPv4("IPv4 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u"),
    Bytes(0, "Reserved")});
constexpr auto kVpn6 = Rows<Ping>({
    Hex(8, "Route Distinguisher"), IPv6("IPv6 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u"),
    Bytes(0, "Reserved")});
constexpr auto kEndpoint = Rows<Ping>({
    Hex(8, "Route Distinguisher"), Number(2, "Sender's VE ID"), Number(2, "Receiver's VE ID"),
    Number(2, "Encapsulation Type", PseudowireTypeName), Hex(2, "Reserved")});
constexpr auto kOldPw = Rows<Ping>({
    IPv4("Remote PE Address").Note(", %s"), Number(4, "Pseudowire ID").Note(", ID %u"),
    Number(2, "Pseudowire Type", PseudowireTypeName), Hex(2, "Reserved")});
constexpr auto kPw4 = Rows<Ping>({
    IPv4("Sender's PE Address"), IPv4("Remote PE Address").Note(", %s"), Number(4, "Pseudowire ID").Note(", ID %u"),
    Number(2, "Pseudowire Type", PseudowireTypeName), Hex(2, "Reserved")});
constexpr auto kPw6 = Rows<Ping>({
    IPv6("Sender's PE Address"), IPv6("Remote PE Address").Note(", %s"), Number(4, "Pseudowire ID").Note(", ID %u"),
    Number(2, "Pseudowire Type", PseudowireTypeName), Hex(2, "Reserved")});
constexpr auto kGeneral4 = Rows<Ping>({
    IPv4("Sender's PE Address"), IPv4("Remote PE Address").Note(", %s"),
    Number(2, "Pseudowire Type", PseudowireTypeName),
    Number(1, "AGI Type"), Counted(1, Bytes(0, "AGI")), Number(1, "SAI Type"), Counted(1, Bytes(0, "SAI")),
    Number(1, "TAI Type"), Counted(1, Bytes(0, "TAI")), Bytes(0, "Padding")});
constexpr auto kGeneral6 = Rows<Ping>({
    IPv6("Sender's PE Address"), IPv6("Remote PE Address").Note(", %s"),
    Number(2, "Pseudowire Type", PseudowireTypeName),
    Number(1, "AGI Type"), Counted(1, Bytes(0, "AGI")), Number(1, "SAI Type"), Counted(1, Bytes(0, "SAI")),
    Number(1, "TAI Type"), Counted(1, Bytes(0, "TAI")), Bytes(0, "Padding")});
constexpr auto kNil = Rows<Ping>({Word(4), Bits(0, 20, "Label"), Bits(20, 12, "Reserved")});
constexpr auto kProtocolNames = SortedNames({{0, "Any"}, {1, "OSPF"}, {2, "IS-IS"}});
constexpr auto kSegment4 = Rows<Ping>({
    IPv4("IPv4 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Number(1, "IGP", kProtocolNames),
    Hex(2, "Reserved")});
constexpr auto kSegment6 = Rows<Ping>({
    IPv6("IPv6 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u"), Number(1, "IGP", kProtocolNames),
    Hex(2, "Reserved")});
constexpr auto kStatic = Rows<Ping>({
    Hex(4, "Source Global ID"), IPv4("Source Node ID"), Number(2, "Source Tunnel Number"), Number(2, "LSP Number"),
    Hex(4, "Destination Global ID"), IPv4("Destination Node ID"), Number(2, "Destination Tunnel Number"),
    Hex(2, "Reserved")});
constexpr auto kMultipoint4 = Rows<Ping>({
    Hex(4, "P2MP ID").Note(", P2MP 0x%.08X"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv4("Extended Tunnel ID"), IPv4("Tunnel Sender Address"), Number(2, "Reserved"),
    Number(2, "LSP ID").Note(", LSP %u")});
constexpr auto kMultipoint6 = Rows<Ping>({
    Hex(4, "P2MP ID").Note(", P2MP 0x%.08X"), Number(2, "Reserved"), Number(2, "Tunnel ID").Note(", Tunnel %u"),
    IPv6("Extended Tunnel ID"), IPv6("Tunnel Sender Address"), Number(2, "Reserved"),
    Number(2, "LSP ID").Note(", LSP %u")});
constexpr auto kStaticPw = Rows<Ping>({
    Hex(8, "Service Identifier"), Hex(4, "Source Global ID"), IPv4("Source Node ID"),
    Number(4, "Source Attachment Circuit ID"), Hex(4, "Destination Global ID"), IPv4("Destination Node ID"),
    Number(4, "Destination Attachment Circuit ID")});

// A multicast tree of label distribution: its root, and what its routers call it (RFC 6425 3.1.2).
constexpr auto kTreeRoot = Rows<Ping>({
    Number(2, "Address Family", AddressFamilyName).Into(&Ping::family), Number(1, "Address Length").Into(&Ping::length)});
constexpr auto kTreeName = Rows<Ping>({Counted(2, Bytes(0, "Opaque Value")), Bytes(0, "Padding")});
void ShowTree(const Place& in, Cursor& c, Ping& ping) {
  ShowRows<Ping>(in, c, kTreeRoot, ping);
  Cursor root = TakeCursor(c, ping.length.value);
  ShowFamilyAddress(in, root, "Root LSR Address", ping.family.value);
  ShowRows<Ping>(in, c, kTreeName, ping);
}

// The ends of an adjacency are told as its type and its protocol tell them (RFC 8287 5.3).
constexpr auto kAdjacencyNames = SortedNames({
    {0, "Unnumbered"}, {1, "Parallel"}, {4, "IPv4"}, {6, "IPv6"}});
constexpr auto kAdjacency = Rows<Ping>({
    Number(1, "Adjacency Type", kAdjacencyNames).Into(&Ping::family), Number(1, "IGP", kProtocolNames).Into(&Ping::type),
    Hex(2, "Reserved")});
constexpr auto kLinks4 = Rows<Ping>({
    IPv4("Local Interface Address").Note(", %s"), IPv4("Remote Interface Address").Note(" -> %s")});
constexpr auto kLinks6 = Rows<Ping>({
    IPv6("Local Interface Address").Note(", %s"), IPv6("Remote Interface Address").Note(" -> %s")});
constexpr auto kLinks = Rows<Ping>({Number(4, "Local Interface ID"), Number(4, "Remote Interface ID")});
constexpr auto kRouters = Rows<Ping>({IPv4("Advertising Node ID"), IPv4("Receiving Node ID")});
constexpr auto kSystems = Rows<Ping>({Bytes(6, "Advertising System ID"), Bytes(6, "Receiving System ID")});
void ShowAdjacency(const Place& in, Cursor& c, Ping& ping) {
  constexpr uint32_t kIsIs = 2, kAdjacency4 = 4, kAdjacency6 = 6;
  ShowRows<Ping>(in, c, kAdjacency, ping);
  const uint32_t kind = ping.family.value, igp = ping.type.value;
  ShowRows<Ping>(in, c, kind == kAdjacency4   ? RowSpan<Ping>(kLinks4)
                        : kind == kAdjacency6 ? RowSpan<Ping>(kLinks6)
                                              : RowSpan<Ping>(kLinks), ping);
  ShowRows<Ping>(in, c, igp == kIsIs ? RowSpan<Ping>(kSystems) : RowSpan<Ping>(kRouters), ping);
}

constexpr auto kFecs = Choices<Ping>({
    {1, "LDP IPv4 Prefix", kPrefix4}, {2, "LDP IPv6 Prefix", kPrefix6}, {3, "RSVP IPv4 LSP", kTunnel4},
    {4, "RSVP IPv6 LSP", kTunnel6}, {6, "VPN IPv4 Prefix", kVpn4}, {7, "VPN IPv6 Prefix", kVpn6},
    {8, "L2 VPN Endpoint", kEndpoint}, {9, "FEC 128 Pseudowire (Deprecated)", kOldPw},
    {10, "FEC 128 Pseudowire - IPv4", kPw4}, {11, "FEC 129 Pseudowire - IPv4", kGeneral4},
    {12, "BGP Labeled IPv4 Prefix", kPrefix4}, {13, "BGP Labeled IPv6 Prefix", kPrefix6},
    {14, "Generic IPv4 Prefix", kPrefix4}, {15, "Generic IPv6 Prefix", kPrefix6}, {16, "Nil FEC", kNil},
    {17, "RSVP P2MP IPv4 Session", kMultipoint4}, {18, "RSVP P2MP IPv6 Session", kMultipoint6},
    {19, "Multicast P2MP LDP FEC Stack", {}, ShowTree}, {20, "Multicast MP2MP LDP FEC Stack", {}, ShowTree},
    {22, "Static LSP", kStatic}, {23, "Static Pseudowire", kStaticPw},
    {24, "FEC 128 Pseudowire - IPv6", kPw6}, {25, "FEC 129 Pseudowire - IPv6", kGeneral6},
    {34, "IPv4 IGP-Prefix Segment ID", kSegment4}, {35, "IPv6 IGP-Prefix Segment ID", kSegment6},
    {36, "IGP-Adjacency Segment ID", {}, ShowAdjacency}});
void ShowFecs(const Place& in, Cursor& c, Ping& ping) { ShowElements<Ping>(in, c, kForm, "FEC", kFecs, ping); }

constexpr auto kAddressNames = SortedNames({
    {0, "Non IP"}, {1, "IPv4 Numbered"}, {2, "IPv4 Unnumbered"}, {3, "IPv6 Numbered"}, {4, "IPv6 Unnumbered"}});
constexpr auto kMappingMasks = SortedNames({{1, "Treat as a Non-IP Packet"}, {2, "Interface and Label Stack Request"}});
constexpr auto kMapping = Rows<Ping>({
    Number(2, "MTU"), Number(1, "Address Type", kAddressNames).Into(&Ping::family),
    Flags(1, "Downstream Flags", kMappingMasks)});
constexpr auto kNumbered4 = Rows<Ping>({IPv4("Downstream Address").Note(", %s"), IPv4("Downstream Interface Address")});
constexpr auto kUnnumbered4 = Rows<Ping>({
    IPv4("Downstream Address").Note(", %s"), Number(4, "Downstream Interface Index")});
constexpr auto kNumbered6 = Rows<Ping>({IPv6("Downstream Address").Note(", %s"), IPv6("Downstream Interface Address")});
constexpr auto kUnnumbered6 = Rows<Ping>({
    IPv6("Downstream Address").Note(", %s"), Number(4, "Downstream Interface Index")});
constexpr auto kMultipathNames = SortedNames({
    {0, "No Multipath"}, {2, "IP Address"}, {4, "IP Address Range"}, {8, "Bit-Masked IP Address Set"},
    {9, "Bit-Masked Label Set"}});
constexpr auto kMultipath = Rows<Ping>({
    Number(1, "Multipath Type", kMultipathNames), Number(1, "Depth Limit"),
    Counted(2, Bytes(0, "Multipath Information"))});
constexpr auto kDetailPath = Rows<Ping>({
    Number(1, "Multipath Type", kMultipathNames), Counted(2, Bytes(0, "Multipath Information")),
    Number(1, "Reserved")});
constexpr auto kSourceNames = SortedNames({{0, "Unknown"}, {1, "Static"}, {2, "BGP"}, {3, "LDP"}, {4, "RSVP-TE"},
                                           {5, "OSPF"}, {6, "IS-IS"}});
constexpr auto kLabel = Rows<Ping>({
    Word(4), Bits(0, 20, "Label").Note(", %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom of Stack"),
    Bits(24, 8, "Protocol", kSourceNames)});
constexpr auto kStackLabel = Rows<Ping>({
    Word(4), Bits(0, 20, "Label").Note(", %u"), Bits(20, 3, "Traffic Class"), Flag(23, "Bottom of Stack"),
    Bits(24, 8, "TTL")});
constexpr auto kCodes = Rows<Ping>({
    Number(1, "Return Code", kReturnNames), Number(1, "Return Subcode"),
    Number(2, "Sub-TLV Length").Into(&Ping::length)});

void ShowInterface(const Place& in, Cursor& c, Ping& ping) {
  constexpr uint32_t kIpv6Numbered = 3, kIpv6Unnumbered = 4, kIpv4Numbered = 1;
  const uint32_t type = ping.family.value;
  ShowRows<Ping>(in, c, type == kIpv4Numbered     ? RowSpan<Ping>(kNumbered4)
                        : type == kIpv6Numbered   ? RowSpan<Ping>(kNumbered6)
                        : type == kIpv6Unnumbered ? RowSpan<Ping>(kUnnumbered6)
                                                  : RowSpan<Ping>(kUnnumbered4), ping);
}
void ShowLabels(const Place& in, Cursor& c, Ping& ping) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ping>(in, c, kLabel, ping);
}
void ShowStack(const Place& in, Cursor& c, Ping& ping) {
  ShowInterface(in, c, ping);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Ping>(in, c, kStackLabel, ping);
}
void ShowMapping(const Place& in, Cursor& c, Ping& ping) {
  ShowInterface(in, c, ping);
  ShowRows<Ping>(in, c, kMultipath, ping);
  ShowLabels(in, c, ping);
}

constexpr auto kChangeNames = SortedNames({{1, "POP"}, {2, "PUSH"}});
constexpr auto kChange = Rows<Ping>({
    Number(1, "Operation Type", kChangeNames), Number(1, "Address Type", kAddressNames).Into(&Ping::family),
    Counted(1, Bytes(0, "FEC TLV Position")), Number(1, "Reserved")});
constexpr auto kDetails = Choices<Ping>({
    {1, "Multipath Data", kDetailPath}, {2, "Label Stack", {}, ShowLabels}, {3, "FEC Stack Change", kChange}});
void ShowDetailed(const Place& in, Cursor& c, Ping& ping) {
  ShowInterface(in, c, ping);
  ShowRows<Ping>(in, c, kCodes, ping);
  Cursor parts = TakeCursor(c, ping.length.value);
  ShowElements<Ping>(in, parts, kForm, "Detail", kDetails, ping);
}

constexpr auto kPadNames = SortedNames({{1, "Drop from Reply"}, {2, "Copy to Reply"}});
constexpr auto kPad = Rows<Ping>({Number(1, "Pad Action", kPadNames), Bytes(0, "Pad")});
constexpr auto kVendor = Rows<Ping>({Number(4, "Vendor Enterprise Number")});
constexpr auto kStackHead = Rows<Ping>({
    Number(1, "Address Type", kAddressNames).Into(&Ping::family), Hex(3, "Reserved")});
void ShowErrored(const Place& in, Cursor& c, Ping& ping);
constexpr auto kResponder4 = Rows<Ping>({IPv4("Responder Address").Note(", %s")});
constexpr auto kResponder6 = Rows<Ping>({IPv6("Responder Address").Note(", %s")});
constexpr auto kResponders = Choices<Ping>({
    {1, "IPv4 Egress Address", kResponder4}, {2, "IPv6 Egress Address", kResponder6},
    {3, "IPv4 Node Address", kResponder4}, {4, "IPv6 Node Address", kResponder6}});
void ShowResponders(const Place& in, Cursor& c, Ping& ping) {
  ShowElements<Ping>(in, c, kForm, "Identifier", kResponders, ping);
}
constexpr auto kProxy = Rows<Ping>({
    Number(1, "Address Type", kAddressNames).Into(&Ping::family), Number(1, "Reply Mode", kModeNames),
    Hex(2, "Proxy Flags"), Number(1, "TTL"), Number(1, "Requested DSCP"), Number(2, "Source UDP Port"),
    Hex(2, "Proxied Global Flags"), Number(2, "MPLS Payload Size")});
constexpr auto kReplyTo = Rows<Ping>({
    Number(1, "Address Type", kAddressNames).Into(&Ping::family), Hex(3, "Reserved")});
constexpr auto kTo4 = Rows<Ping>({IPv4("Address").Note(", %s")});
constexpr auto kTo6 = Rows<Ping>({IPv6("Address").Note(", %s")});
void ShowTo(const Place& in, Cursor& c, Ping& ping) {
  constexpr uint32_t kFirstIpv6 = 3, kLastIpv6 = 4;
  const bool isSix = ping.family.value >= kFirstIpv6 && ping.family.value <= kLastIpv6;
  ShowRows<Ping>(in, c, isSix ? RowSpan<Ping>(kTo6) : RowSpan<Ping>(kTo4), ping);
}
constexpr auto kNextHop = Choices<Ping>({{1, "IPv4 Next Hop", kTo4}, {2, "IPv6 Next Hop", kTo6}});
void ShowProxied(const Place& in, Cursor& c, Ping& ping) {
  ShowTo(in, c, ping);
  ShowElements<Ping>(in, c, kForm, "Next Hop", kNextHop, ping);
}
constexpr auto kTos = Rows<Ping>({Hex(1, "Reply TOS"), Hex(3, "Reserved")});
constexpr auto kDiscriminator = Rows<Ping>({Hex(4, "BFD Discriminator")});
constexpr auto kJitter = Rows<Ping>({Number(4, "Echo Jitter", " milliseconds")});
constexpr auto kNode = Rows<Ping>({Hex(4, "Global ID"), IPv4("Node ID")});
constexpr auto kPath = Rows<Ping>({Hex(2, "Reply Path Return Code"), Hex(2, "Reply Path Flags")});
constexpr auto kClass = Rows<Ping>({Word(4), Bits(0, 3, "Reply Traffic Class"), Bits(3, 29, "Reserved")});

constexpr auto kTlvs = Choices<Ping>({
    {1, "Target FEC Stack", {}, ShowFecs}, {2, "Downstream Mapping", kMapping, ShowMapping}, {3, "Pad", kPad},
    {5, "Vendor Enterprise Number", kVendor}, {7, "Interface and Label Stack", kStackHead, ShowStack},
    {9, "Errored TLVs", {}, ShowErrored}, {10, "Reply TOS Byte", kTos}, {11, "P2MP Responder Identifier", {}, ShowResponders},
    {12, "Echo Jitter", kJitter}, {13, "Source ID", kNode}, {14, "Destination ID", kNode},
    {15, "BFD Discriminator", kDiscriminator}, {20, "Downstream Detailed Mapping", kMapping, ShowDetailed},
    {21, "Reply Path", kPath, ShowFecs}, {22, "Reply TC", kClass}, {23, "Proxy Echo Parameters", kProxy, ShowProxied},
    {24, "Reply-to Address", kReplyTo, ShowTo}});

// TLVs that were not understood come back as they were; those within are not opened again.
constexpr auto kErroredTlv = Rows<Ping>({Number(2, "Errored TLV Type"), Counted(2, Bytes(0, "Errored TLV"))});
void ShowErrored(const Place& in, Cursor& c, Ping& ping) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const int32_t size = static_cast<int32_t>(PeekU16(c, 2));
    ShowRows<Ping>(in, c, kErroredTlv, ping);
    TakeBytes(c, -size & 3);
  }
}

}  // namespace

int32_t DecodeLspPing(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || PeekU16(c) != 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "LSP Ping: %s", LookupName(kTypeNames, PeekU8(c, 4))));
  Ping ping = ShowRows(in, c, kHeader);
  ShowElements<Ping>(in, c, kForm, "TLV", kTlvs, ping);
  c.ranShort = false;   // what is left of a TLV that is cut
  AddBlock(in, Rest(c), "LSP Ping Data");
  return 1;
}

}  // namespace qxview
