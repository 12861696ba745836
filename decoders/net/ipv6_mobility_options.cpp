// Options of mobility messages (RFC 6275 and those of proxies, RFC 5213, of IPv4, RFC 5844, of identities, RFC 4283, of
// authentication, RFC 4285, of networks, RFC 3963, and more of the registry).
//
//   type (8), length (8), data; Pad1 is its type byte alone
#include "core/elements.h"
#include "decoders/common/tells_all.h"
#include "decoders/net/ipv6_extensions.h"

namespace qxview {
namespace {

struct Option {
  Field type, size;
};

// Labels of the first options keep a blank in front of their colon.
void ShowUnits(const Place& in, const Field& time, const char* label) {
  const uint32_t units = PeekU16(time);
  AddLine(in, time, "%s: %u (in 4-second time units = %u seconds)", label, units, units * 4);
}

constexpr auto kAdvice = Rows<Option>({Shown(2, "Refresh Interval ", ShowUnits)});
constexpr auto kAlternate = Rows<Option>({IPv6("Alternate Care-of Address ")});
constexpr auto kNonces = Rows<Option>({Number(2, "Home Nonce Index "), Number(2, "Care-of Nonce Index ")});
void ShowAuthenticator(const Place& in, Cursor& c, Option&) {
  TellBytes(in, Ahead(c, Left(c)), "Authenticator");
  AddBlock(in, Rest(c), "Authenticator");
}

constexpr auto kPrefix = Rows<Option>({Number(1, "Reserved"), Number(1, "Prefix Length"), IPv6("Prefix")});
constexpr auto kLinkCodes = SortedNames({
    {0, "Wildcard"}, {1, "Of the New Access Point"}, {2, "Of the Mobile Node"}, {3, "Of the Proxy's Source"},
    {4, "Of the Source of the Proxy Solicitation"}, {5, "Access Point in Neighborhood"},
    {6, "No Prefix Information"}, {7, "No Fast Handovers"}});
constexpr auto kLinkLayer = Rows<Option>({Number(1, "Option Code", kLinkCodes), Bytes(0, "Link-Layer Address")});
constexpr auto kIdentityNames = SortedNames({
    {1, "Network Access Identifier"}, {2, "IPv6 Address"}, {3, "IMSI"}, {4, "P-TMSI"}, {5, "EUI-48 Address"},
    {6, "EUI-64 Address"}, {7, "GUTI"}, {8, "DUID-LLT"}, {9, "DUID-EN"}, {10, "DUID-LL"}, {11, "DUID-UUID"}});
void ShowIdentity(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kSubtype = Rows<Option>({Number(1, "Subtype", kIdentityNames).Into(&Option::type)});
  static constexpr auto kText = Rows<Option>({Text(0, "Identifier")});
  static constexpr auto kBytes = Rows<Option>({Bytes(0, "Identifier")});
  ShowRows<Option>(in, c, kSubtype, option);
  ShowRows<Option>(in, c, option.type.value == 1 ? RowSpan<Option>(kText) : RowSpan<Option>(kBytes), option);
}
constexpr auto kAuthNames = SortedNames({{1, "Mobile Node to Home Agent"}, {2, "Mobile Node to Authentication Server"}});
constexpr auto kAuth = Rows<Option>({
    Number(1, "Subtype", kAuthNames), Hex(4, "Security Parameters Index"), Bytes(0, "Authentication Data")});
constexpr auto kMessageId = Rows<Option>({NtpTime("Timestamp")});
constexpr auto kParameters = Rows<Option>({Bytes(0, "Parameters")});
constexpr auto kSignature = Rows<Option>({Bytes(0, "Signature")});
constexpr auto kPermanentToken = Rows<Option>({Bytes(0, "Permanent Home Keygen Token")});
constexpr auto kCareOfToken = Rows<Option>({Bytes(0, "Care-of Keygen Token")});
constexpr auto kDnsUpdate = Rows<Option>({
    Number(1, "Status"), Word(1), Flag(0, "Remove"), Bits(1, 7, "Reserved"), Bytes(0, "Domain Name")});
constexpr auto kExperiment = Rows<Option>({Bytes(0, "Experimental Data")});
constexpr auto kVendor = Rows<Option>({Number(4, "Vendor"), Number(1, "Subtype"), Bytes(0, "Vendor Data")});
constexpr auto kService = Rows<Option>({Text(0, "Service")});
constexpr auto kFastAuth = Rows<Option>({Hex(4, "Security Parameters Index"), Bytes(0, "Authenticator")});
constexpr auto kHandoffNames = SortedNames({
    {0, "Reserved"}, {1, "Attachment over a new interface"}, {2, "Handoff between two interfaces of the mobile node"},
    {3, "Handoff between gateways for the same interface"}, {4, "Handoff state unknown"},
    {5, "Handoff state not changed"}});
constexpr auto kHandoff = Rows<Option>({Number(1, "Reserved"), Number(1, "Handoff Indicator", kHandoffNames)});
constexpr auto kTechnologyNames = SortedNames({
    {0, "Reserved"}, {1, "Virtual"}, {2, "PPP"}, {3, "IEEE 802.3"}, {4, "IEEE 802.11a/b/g"}, {5, "IEEE 802.16e"},
    {6, "3GPP GERAN"}, {7, "3GPP UTRAN"}, {8, "3GPP E-UTRAN"}, {9, "3GPP2 eHRPD"}, {10, "3GPP2 HRPD"}, {11, "3GPP2 1xRTT"},
    {12, "3GPP2 UMB"}, {13, "3GPP NB-IoT"}});
constexpr auto kTechnology = Rows<Option>({Number(1, "Reserved"), Number(1, "Access Technology", kTechnologyNames)});
constexpr auto kLinkIdentifier = Rows<Option>({Number(2, "Reserved"), Bytes(0, "Link-Layer Identifier")});
constexpr auto kLinkLocal = Rows<Option>({IPv6("Link-Local Address")});
void ShowTimestamp(const Place& in, Cursor& c, Option&) {
  const WideField timestamp = TakeU64(c);   // 48 bits of seconds, 16 of their fraction
  AddLine(in, timestamp, "Timestamp: %I64u.%.06u seconds", timestamp.wide >> 16,
          static_cast<uint32_t>((timestamp.wide & 0xFFFF) * 1000000 >> 16));
}
constexpr auto kRestart = Rows<Option>({Number(4, "Restart Counter")});
constexpr auto kHome4 = Rows<Option>({
    Word(2), Bits(0, 6, "Prefix Length"), Flag(6, "Prefix Requested"), Bits(7, 9, "Reserved"), IPv4("IPv4 Home Address")});
constexpr auto kStatus4Names = SortedNames({
    {0, "Success"}, {1, "Success, prefix given was changed"}, {128, "Failure, reason unspecified"},
    {129, "Administratively prohibited"}, {130, "Incorrect IPv4 home address"}, {131, "Invalid IPv4 address"},
    {132, "Dynamic IPv4 home address assignment not available"}, {133, "Prefix allocation unauthorized"}});
constexpr auto kHome4Reply = Rows<Option>({
    Number(1, "Status", kStatus4Names), Word(1), Bits(0, 6, "Prefix Length"), Bits(6, 2, "Reserved"),
    IPv4("IPv4 Home Address")});
constexpr auto kHome4Request = Rows<Option>({
    Word(2), Bits(0, 6, "Prefix Length"), Bits(6, 10, "Reserved"), IPv4("IPv4 Home Address")});
constexpr auto kTranslation = Rows<Option>({
    Word(2), Flag(0, "UDP Encapsulation Required"), Bits(1, 15, "Reserved"), Number(4, "Refresh Time", " seconds")});
constexpr auto kCareOf4 = Rows<Option>({Number(2, "Reserved"), IPv4("IPv4 Care-of Address")});
void ShowTunnelKey(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kReserved = Rows<Option>({Number(2, "Reserved")});
  static constexpr auto kKey = Rows<Option>({Hex(4, "GRE Key")});
  ShowRows<Option>(in, c, kReserved, option);
  if (Left(c) > 0) ShowRows<Option>(in, c, kKey, option);
}
constexpr auto kAddressCodes = SortedNames({
    {1, "Old Care-of Address"}, {2, "New Care-of Address"}, {3, "New Access Router's Address"},
    {4, "New Access Router's Prefix"}});
constexpr auto kAddressOrPrefix = Rows<Option>({
    Number(1, "Option Code", kAddressCodes), Number(1, "Prefix Length"), IPv6("Address")});

// An address whose kind its length tells.
void ShowAddress(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kAddress4 = Rows<Option>({IPv4("Address")});
  static constexpr auto kAddress6 = Rows<Option>({IPv6("Address")});
  if (Left(c) == 4) return ShowRows<Option>(in, c, kAddress4, option);
  if (Left(c) >= 16) ShowRows<Option>(in, c, kAddress6, option);
}
constexpr auto kBinding = Rows<Option>({
    Number(2, "Binding ID"), Number(1, "Status"), Word(1), Flag(0, "Simultaneous Home and Foreign Binding"),
    Bits(1, 7, "Priority")});
constexpr auto kRouter4 = Rows<Option>({Number(2, "Reserved"), IPv4("IPv4 Default Router")});
constexpr auto kDhcpMode = Rows<Option>({Word(2), Bits(0, 15, "Reserved"), Flag(15, "DHCP Server")});
void ShowContextRequest(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kReserved = Rows<Option>({Number(2, "Reserved")});
  static constexpr auto kRequest = Rows<Option>({
      Number(1, "Requested Option"), Number(1, "Request Length").Into(&Option::size),
      Bytes(0, "Request Data").SizedBy(&Option::size)});
  ShowRows<Option>(in, c, kReserved, option);
  for (Loop loop; MoreAt(in, c, loop);) ShowRows<Option>(in, c, kRequest, option);
}
constexpr auto kAnchorCodes = SortedNames({{1, "IPv6"}, {2, "IPv4"}});
constexpr auto kAnchor = Rows<Option>({Number(1, "Option Code", kAnchorCodes), Number(1, "Reserved")});
constexpr auto kInterfaceId = Rows<Option>({Bytes(0, "Interface Identifier")});
constexpr auto kTransient = Rows<Option>({
    Word(1), Flag(0, "Late Path Switch"), Bits(1, 7, "Reserved"), Number(1, "Lifetime", " * 100 ms")});
void ShowFlows(const Place& in, Cursor& c, Option& option) {
  static constexpr auto kFlow = Rows<Option>({Number(2, "Flow Identifier")});
  for (Loop loop; MoreAt(in, c, loop);) ShowRows<Option>(in, c, kFlow, option);
}
constexpr auto kFlowBinding = Rows<Option>({
    Number(2, "Flow Identifier"), Number(2, "Flow Priority"), Number(1, "Reserved"), Number(1, "Status"),
    Bytes(0, "Suboptions")});
constexpr auto kReserved2 = Rows<Option>({Number(2, "Reserved")});
constexpr auto kRedirect = Rows<Option>({
    Word(2), Flag(0, "Use Proxy Addresses"), Flag(1, "IPv4 Address"), Bits(2, 14, "Reserved")});
constexpr auto kLoad = Rows<Option>({
    Number(2, "Priority"), Number(4, "Sessions in Use"), Number(4, "Maximum Sessions"), Number(4, "Used Capacity"),
    Number(4, "Maximum Capacity")});
constexpr auto kAlternate4 = Rows<Option>({IPv4("Alternate IPv4 Care-of Address")});
constexpr auto kGroup = Rows<Option>({Number(1, "Subtype"), Number(1, "Reserved"), Number(4, "Mobile Node Group")});
constexpr auto kGateway = Rows<Option>({Number(1, "Reserved"), Number(1, "Address Length"), IPv6("Address")});
constexpr auto kDelegated = Rows<Option>({
    Word(1), Flag(0, "IPv4 Prefix"), Bits(1, 7, "Reserved"), Number(1, "Prefix Length")});
constexpr auto kQuality = Rows<Option>({
    Number(1, "Service Request ID"), Number(1, "Traffic Class"), Number(1, "Operational Code"), Number(1, "Reserved"),
    Bytes(0, "Attributes")});
constexpr auto kGatewayIdentity = Rows<Option>({
    Number(1, "Subtype"), Number(1, "Reserved"), Bytes(0, "Identifier")});

// Where a mobile node is: the network's name, a place, an operator.
struct Network {
  Field size;
};
constexpr auto kNetworkName = Rows<Network>({
    Word(1), Flag(0, "UTF-8"), Bits(1, 7, "Reserved"), Counted(1, Utf8(0, "Network Name")),
    Counted(1, Utf8(0, "Access Point Name"))});
constexpr auto kGeography = Rows<Network>({Signed(3, "Latitude", " / 32768 degrees"), Signed(3, "Longitude", " / 32768 degrees")});
constexpr auto kOperatorNames = SortedNames({{1, "Private Enterprise Number"}, {2, "Realm"}});
constexpr auto kOperator = Rows<Network>({Number(1, "Operator Type", kOperatorNames), Bytes(0, "Operator")});
constexpr auto kNetworks = Choices<Network>({
    {1, "Network Identifier", kNetworkName}, {2, "Geolocation", kGeography}, {3, "Operator Identifier", kOperator}});
void ShowNetwork(const Place& in, Cursor& c, Option&) {
  Network network{};
  ShowElements(in, c, {}, "Suboption", kNetworks, network);
}

constexpr auto kOptions = Choices<Option>({
    {2, "Binding Refresh Advice", kAdvice}, {3, "Alternate Care-of Address", kAlternate}, {4, "Nonce Indices", kNonces},
    {5, "Binding Authorization Data", {}, ShowAuthenticator}, {6, "Mobile Network Prefix", kPrefix},
    {7, "Mobility Header Link-Layer Address", kLinkLayer}, {8, "Mobile Node Identifier", {}, ShowIdentity},
    {9, "Mobility Message Authentication", kAuth}, {10, "Replay Protection", kMessageId},
    {11, "CGA Parameters Request"}, {12, "CGA Parameters", kParameters}, {13, "Signature", kSignature},
    {14, "Permanent Home Keygen Token", kPermanentToken}, {15, "Care-of Test Init"}, {16, "Care-of Test", kCareOfToken},
    {17, "DNS Update", kDnsUpdate}, {18, "Experimental Mobility", kExperiment}, {19, "Vendor-Specific Mobility", kVendor},
    {20, "Service Selection", kService}, {21, "Binding Authorization Data for Fast Handovers", kFastAuth},
    {22, "Home Network Prefix", kPrefix}, {23, "Handoff Indicator", kHandoff}, {24, "Access Technology Type", kTechnology},
    {25, "Mobile Node Link-Layer Identifier", kLinkIdentifier}, {26, "Link-Local Address", kLinkLocal},
    {27, "Timestamp", {}, ShowTimestamp}, {28, "Restart Counter", kRestart}, {29, "IPv4 Home Address", kHome4},
    {30, "IPv4 Address Acknowledgement", kHome4Reply}, {31, "NAT Detection", kTranslation},
    {32, "IPv4 Care-of Address", kCareOf4}, {33, "GRE Key", {}, ShowTunnelKey},
    {34, "Mobility Header IPv6 Address/Prefix", kAddressOrPrefix}, {35, "Binding Identifier", kBinding, ShowAddress},
    {36, "IPv4 Home Address Request", kHome4Request}, {37, "IPv4 Home Address Reply", kHome4Reply},
    {38, "IPv4 Default-Router Address", kRouter4}, {39, "IPv4 DHCP Support Mode", kDhcpMode},
    {40, "Context Request", {}, ShowContextRequest}, {41, "Local Mobility Anchor Address", kAnchor, ShowAddress},
    {42, "Mobile Node Link-Local Address Interface Identifier", kInterfaceId}, {43, "Transient Binding", kTransient},
    {44, "Flow Summary", {}, ShowFlows}, {45, "Flow Identification", kFlowBinding}, {46, "Redirect Capability", kReserved2},
    {47, "Redirect", kRedirect, ShowAddress}, {48, "Load Information", kLoad}, {49, "Alternate IPv4 Care-of Address", kAlternate4},
    {50, "Mobile Node Group Identifier", kGroup}, {51, "Mobile Access Gateway IPv6 Address", kGateway},
    {52, "Access Network Identifier", {}, ShowNetwork}, {53, "IPv4 Traffic Offload Selector"},
    {54, "Dynamic IP Multicast Selector"}, {55, "Delegated Mobile Network Prefix", kDelegated, ShowAddress},
    {56, "Active Multicast Subscription IPv4"}, {57, "Active Multicast Subscription IPv6"}, {58, "Quality of Service", kQuality},
    {59, "Local Mobility Anchor User-Plane Address", kReserved2, ShowAddress}, {60, "Multicast Mobility"},
    {61, "Deferred Flow Mobility"}, {62, "Flow Mobility"}, {63, "Controlled Gateway Parameters"}, {64, "Multipath Binding"},
    {65, "Mobile Access Gateway Identifier", kGatewayIdentity}, {66, "Anchored Prefix"}, {67, "Local Prefix"},
    {68, "Previous Gateway"}, {69, "Serving Gateway"}, {70, "Link-Local Address of the Logical Interface"},
    {71, "Link-Layer Address of the Logical Interface"}});
constexpr uint32_t kPad1 = 0, kPadN = 1, kRefreshAdvice = 2, kAuthorization = 5;   // those between the two stand by their names
constexpr auto kHead = Rows<Option>({Number(1, "Type "), Number(1, "Length ")});

void DecodePadding(const Place& in, Cursor& c) {
  const Field length = Slice(TakeU16(c), 1, 1);
  AddLine(in, length, "Length : %u bytes", PeekU8(length));
  TellBytes(in, Ahead(c, Left(c)), "Padding");
  AddBlock(in, Rest(c), "Padding");
}

// An option with a length; `c` holds all of it that is in its header.
void DecodeLongOption(const Place& in, Cursor c) {
  const Field whole = Ahead(c, Left(c));
  const uint32_t type = PeekU8(c);
  if (type == kPadN) return DecodePadding(Under(in, AddLine(in, whole, "PadN")), c);
  const Choice<Option>* known = FindChoice<Option>(kOptions, type);
  const bool isNamed = type >= kRefreshAdvice && type <= kAuthorization;
  // keys: none Mobility Option Data
  const Place under = Under(in, AddLine(in, whole, "%s", isNamed ? known->name : "Mobility Option Data"));
  Option option{};
  ShowRows<Option>(under, c, kHead, option);
  if (isNamed || !known) return ShowChoice(under, c, known, option);
  const LineHandle line = AddLine(under, Ahead(c, Left(c)), "Option: %s", known->name);
  if (Left(c) > 0) ShowChoice(Under(under, line), c, known, option);
}

}  // namespace

void DecodeMobilityOptions(const Place& in, Cursor& c) {
  if (Left(c) < 1) return;
  const Place options = Under(in, AddLine(in, Ahead(c, Left(c)), "Mobility Options"));
  for (Loop loop; MoreAt(in, c, loop);) {
    if (PeekU8(c) == kPad1) {
      const Field pad = TakeU8(c);
      AddLine(Under(options, AddLine(options, pad, "Pad1")), pad, "Type : %u  (padding)", pad.value);
    } else if (Left(c) < 2 || static_cast<int32_t>(PeekU8(c, 1)) > Left(c) - 2) {
      AddBlock(options, Rest(c), "Mobility Support Options Data");   // an option that runs past its header
    } else {
      DecodeLongOption(options, TakeCursor(c, 2 + PeekU8(c, 1)));
    }
  }
}

}  // namespace qxview
