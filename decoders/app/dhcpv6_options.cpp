// The options of DHCP version 6 (IANA's registry; RFC 8415 and the RFCs that add to it), in one another where they say so.
//
//   code (2)   length (2)   value
#include "core/times.h"
#include "decoders/app/dhcpv6.h"
#include "decoders/common/hardware_types.h"

namespace qxview {
namespace {

constexpr uint32_t kCableLabs = 4491;

constexpr auto kStatusNames = SortedNames({
    {0, "Success"}, {1, "UnspecFail"}, {2, "NoAddrsAvail"}, {3, "NoBinding"}, {4, "NotOnLink"}, {5, "UseMulticast"},
    {6, "NoPrefixAvail"}, {7, "UnknownQueryType"}, {8, "MalformedQuery"}, {9, "NotConfigured"}, {10, "NotAllowed"},
    {11, "QueryTerminated"}, {12, "DataMissing"}, {13, "CatchUpComplete"}, {14, "NotSupported"},
    {15, "TLSConnectionRefused"}, {16, "AddressInUse"}, {17, "ConfigurationConflict"},
    {18, "MissingBindingInformation"}, {19, "OutdatedBindingInformation"}, {20, "ServerShuttingDown"},
    {21, "DNSUpdateNotSupported"}, {22, "ExcessiveTimeSkew"}});
constexpr auto kQueryNames = SortedNames({
    {1, "QUERY_BY_ADDRESS"}, {2, "QUERY_BY_CLIENTID"}, {3, "QUERY_BY_RELAY_ID"}, {4, "QUERY_BY_LINK_ADDRESS"},
    {5, "QUERY_BY_REMOTE_ID"}});
constexpr auto kTransportNames = SortedNames({{0, "Reserved"}, {1, "UDP"}, {2, "TCP"}, {3, "TLS"}});
constexpr auto kInterfaceNames = SortedNames({{0, "LANDesk Service Agent Boot ROM"}, {1, "UNDI"}, {2, "UNDI Plus"}});
constexpr auto kBindingNames = SortedNames({
    {0, "Reserved"}, {1, "ACTIVE"}, {2, "EXPIRED"}, {3, "RELEASED"}, {4, "PENDING-FREE"}, {5, "FREE"},
    {6, "FREE-BACKUP"}, {7, "ABANDONED"}, {8, "RESET"}});
constexpr auto kServerNames = SortedNames({
    {0, "Reserved"}, {1, "STARTUP"}, {2, "NORMAL"}, {3, "COMMUNICATIONS-INTERRUPTED"}, {4, "PARTNER-DOWN"},
    {5, "POTENTIAL-CONFLICT"}, {6, "RECOVER"}, {7, "RECOVER-WAIT"}, {8, "RECOVER-DONE"},
    {9, "RESOLUTION-INTERRUPTED"}, {10, "CONFLICT-DONE"}});
constexpr auto kAccessNames = SortedNames({
    {0, "Reserved"}, {1, "Virtual"}, {2, "PPP"}, {3, "IEEE 802.3"}, {4, "IEEE 802.11a/b/g"}, {5, "IEEE 802.16e"},
    {6, "3GPP GERAN"}, {7, "3GPP UTRAN"}, {8, "3GPP E-UTRAN"}, {9, "3GPP2 eHRPD"}, {10, "3GPP2 HRPD"},
    {11, "3GPP2 1xRTT"}, {12, "3GPP2 UMB"}, {13, "3GPP NB-IoT"}, {14, "3GPP NR"}});
constexpr auto kQuadrantNames = SortedNames({
    {0, "Administratively Assigned Identifier"}, {1, "Extended Local Identifier"}, {2, "Reserved"},
    {3, "Standard Assigned Identifier"}});

// An identifier that its maker wrote as a text, or as octets.
void ShowIdentifier(const Place& in, const Field& field, const char* label) {
  bool isText = true;
  for (int32_t i = 0; i < field.length; ++i) isText = isText && PeekU8(field, i) >= 0x20 && PeekU8(field, i) < 0x7F;
  if (isText) {
    AddLine(in, field, "%s: %s", label, Text(field));
    AppendToParent(in, field, ", %s", Text(field));
  } else {
    AddLine(in, field, "%s: %s", label, HexText(field));
  }
}

// Behind its length, which the parent's line tells with it.
void ShowPrefix(const Place& in, Cursor& c, const char* label, DhcpMessage& message) {
  const Field prefix = TakeBytes(c, 16);
  AddLine(in, prefix, "%s: %s", label, IPv6Text(prefix.bytes));
  AppendToParent(in, prefix, ", %s/%u", IPv6Text(prefix.bytes), message.count.value);
}

constexpr auto kAssociation = Rows<DhcpMessage>({
    Hex(4, "IAID"), Number(4, "T1", " seconds"), Number(4, "T2", " seconds")});
constexpr auto kTemporary = Rows<DhcpMessage>({Hex(4, "IAID")});
constexpr auto kAddress = Rows<DhcpMessage>({
    IPv6("IPv6 Address").Note(", %s"), Number(4, "Preferred Lifetime", " seconds"), Number(4, "Valid Lifetime", " seconds")});
constexpr auto kPrefix = Rows<DhcpMessage>({
    Number(4, "Preferred Lifetime", " seconds"), Number(4, "Valid Lifetime", " seconds"),
    Number(1, "Prefix Length").Into(&DhcpMessage::count), Shown("Prefix", ShowPrefix)});
constexpr auto kElapsed = Rows<DhcpMessage>({Number(2, nullptr, " hundredths of a second")});
constexpr auto kStatus = Rows<DhcpMessage>({
    Number(2, "Status Code", kStatusNames).Note(", %s"), Utf8(0, "Status Message").Note(", %s")});
constexpr auto kEnterprise = Rows<DhcpMessage>({
    Number(4, "Enterprise Number", DhcpEnterpriseName).Note(", %s").Into(&DhcpMessage::enterprise)});
constexpr auto kIdentifier = Rows<DhcpMessage>({Shown(0, nullptr, ShowIdentifier)});
constexpr auto kReconfigure = Rows<DhcpMessage>({Number(1, "Message Type", Dhcpv6TypeName).Note(", %s")});
constexpr auto kRemote = Rows<DhcpMessage>({
    Number(4, "Enterprise Number", DhcpEnterpriseName), Shown(0, "Remote ID", ShowIdentifier)});
constexpr auto kQualified = Rows<DhcpMessage>({
    Hex(1, "Flags"), Bits(0, 5, "Reserved"), Flag(5, "Server Does No DNS Updates"), Flag(6, "Server Overrides the Client"),
    Flag(7, "Server Updates the Address Record")});
constexpr auto kQuery = Rows<DhcpMessage>({
    Number(1, "Query Type", kQueryNames).Note(", %s"), IPv6("Link Address")});
constexpr auto kPeer = Rows<DhcpMessage>({IPv6("Peer Address").Note(", %s")});
constexpr auto kInterface = Rows<DhcpMessage>({
    Number(1, "Type", kInterfaceNames), Number(1, "Major Version"), Number(1, "Minor Version")});
constexpr auto kExclude = Rows<DhcpMessage>({Number(1, "Prefix Length").Note(", /%u"), Bytes(0, "Subnet ID")});
constexpr auto kHomePrefix = Rows<DhcpMessage>({
    Number(1, "Prefix Length").Into(&DhcpMessage::count), Shown("Home Network Prefix", ShowPrefix)});
constexpr auto kSelection = Rows<DhcpMessage>({
    IPv6("DNS Recursive Name Server").Note(", %s"), Word(1), Bits(0, 6, "Reserved"),
    Bits(6, 2, "Preference", DhcpSelectionName)});
constexpr auto kKeyCenter = Rows<DhcpMessage>({
    Number(2, "Priority"), Number(2, "Weight"), Number(1, "Transport Type", kTransportNames), Number(2, "Port"),
    IPv6("KDC IPv6 Address").Note(", %s"), Text(0, "Realm Name")});
constexpr auto kAddressSelection = Rows<DhcpMessage>({
    Word(1), Bits(0, 6, "Reserved"), Flag(6, "Automatic Row Additions"), Flag(7, "Privacy Preference")});
constexpr auto kPolicy = Rows<DhcpMessage>({
    Number(1, "Label"), Number(1, "Precedence"), Number(1, "Prefix Length").Into(&DhcpMessage::count)});
constexpr auto kPrefixLength = Rows<DhcpMessage>({Number(1, "Prefix Length").Note(", /%u").Into(&DhcpMessage::count)});
constexpr auto kMapRule = Rows<DhcpMessage>({
    Number(1, "IPv4 Prefix Length"), Number(1, "IPv6 Prefix Length"), Number(1, "EA Length"), Word(1),
    Flag(0, "Well-Known Ports"), Bits(1, 7, "Reserved"), IPv4("Rule IPv4 Prefix"), IPv6("Rule IPv6 Prefix")});
constexpr auto kNonMapRule = Rows<DhcpMessage>({
    Word(1), Flag(0, "Hub and Spoke"), Bits(1, 6, "Reserved"), Flag(7, "Traffic Class Is Here"), Hex(1, "Traffic Class"),
    Number(2, "Domain PMTU")});
constexpr auto kTimeSince2000 = Rows<DhcpMessage>({Shown(4, nullptr, ShowDhcpv6Time)});
constexpr auto kMulticastParameters = Rows<DhcpMessage>({
    Word(1), Flag(0, "Proactive Forwarding"), Bits(1, 7, "Reserved"), Number(1, "Time Unit", " milliseconds"),
    Number(2, "Seed Set Entry Lifetime"), Number(1, "Data Message K"), Number(2, "Data Message Imin"),
    Number(2, "Data Message Imax"), Number(2, "Data Message Timer Expirations"), Number(1, "Control Message K"),
    Number(2, "Control Message Imin"), Number(2, "Control Message Imax"), Number(2, "Control Message Timer Expirations")});
constexpr auto kAccess = Rows<DhcpMessage>({
    Word(2), Bits(0, 8, "Reserved"), Bits(8, 8, "Access Technology Type", kAccessNames)});
constexpr auto kBssid = Rows<DhcpMessage>({Mac(nullptr).Note(", %s")});
constexpr auto kBindingStatus = Rows<DhcpMessage>({Number(1, nullptr, kBindingNames).Note(", %s")});
constexpr auto kConnectFlags = Rows<DhcpMessage>({Word(2), Bits(0, 15, "Reserved"), Flag(15, "Fixed Prefix Length")});
constexpr auto kDnsFlags = Rows<DhcpMessage>({
    Word(2), Bits(0, 12, "Reserved"), Flag(12, "Using Requested FQDN"), Flag(13, "Synthesized Name"),
    Flag(14, "Reverse Is Up to Date"), Flag(15, "Forward Is Up to Date")});
constexpr auto kFailoverVersion = Rows<DhcpMessage>({Number(2, "Major Version"), Number(2, "Minor Version")});
constexpr auto kReconfigureData = Rows<DhcpMessage>({Shown(4, "Reconfigure Time", ShowDhcpv6Time), Bytes(0, "Reconfigure Key")});
constexpr auto kServerFlags = Rows<DhcpMessage>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "Acknowledges Startup"), Flag(6, "Startup"), Flag(7, "Communicated")});
constexpr auto kServerState = Rows<DhcpMessage>({Number(1, nullptr, kServerNames).Note(", %s")});
constexpr auto kLinkLayerAssociation = kAssociation;
constexpr auto kLinkLayer = Rows<DhcpMessage>({
    Number(2, "Link-Layer Type", kHardwareNames), Number(2, "Link-Layer Length").Into(&DhcpMessage::count)});
constexpr auto kResolver = Rows<DhcpMessage>({
    Number(2, "Service Priority"), Number(2, "Name Length").Into(&DhcpMessage::count)});

// What stands behind an option's own fields, or alone in it, are options again.
void ShowInner(const Place& in, Cursor& c, DhcpMessage& message) { ShowDhcpv6Options(in, c, message); }

void ShowOptionCodes(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kCode = Rows<DhcpMessage>({Number(2, "Option Code", Dhcpv6OptionName).Note(", %u")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kCode, message);
}

void ShowRelayedMessage(const Place& in, Cursor& c, DhcpMessage& message) {
  if (message.depth >= kDeepestDhcpv6 || !Left(c)) return;
  ++message.depth;
  ShowDhcpv6Message(in, c, message);
  --message.depth;
}
void ShowRelayed(const Place& in, Cursor& c, DhcpMessage& message) {
  AppendToParent(in, Ahead(c, 0), ", %s", Dhcpv6TypeName(PeekU8(c)));
  ShowRelayedMessage(in, c, message);
}

void ShowVersion4(const Place& in, Cursor& c, DhcpMessage&) {
  const Cursor carried = c;
  if (TryDecoder(in, carried, DecodeDhcp, nullptr)) Rest(c);
}

// Items of a text or octets, each behind its length.
void ShowItems(const Place& in, Cursor& c, const char* label) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const Field length = TakeU16(c);
    AddLine(in, length, "%s Length: %u", label, length.value);
    Cursor item = TakeCursor(c, length.value);
    const Field value = Rest(item);
    if (value.here) ShowIdentifier(in, value, label);
  }
}
void ShowUserClass(const Place& in, Cursor& c, DhcpMessage&) { ShowItems(in, c, "User Class"); }
void ShowVendorClass(const Place& in, Cursor& c, DhcpMessage&) { ShowItems(in, c, "Vendor Class"); }
void ShowParameters(const Place& in, Cursor& c, DhcpMessage&) { ShowItems(in, c, "Parameter"); }

// Options of cable modems, and their codes where a modem asks for them (CableLabs CL-SP-CANN-DHCP-Reg).
void ShowCableCodes(const Place& in, Cursor& c, DhcpMessage& message);
constexpr auto kCable = Choices<DhcpMessage>({
    {1, "Option Request", {}, ShowCableCodes}, {2, "Device Type", kDhcpText},
    {3, "Embedded Components List", kDhcpText}, {4, "Device Serial Number", kDhcpText},
    {5, "Hardware Version Number", kDhcpText}, {6, "Software Version Number", kDhcpText},
    {7, "Boot ROM Version", kDhcpText}, {8, "Vendor OUI", kDhcpBytes}, {9, "Model Number", kDhcpText},
    {10, "Vendor Name", kDhcpText}, {15, "eCM Configuration File Encapsulation", kDhcpBytes},
    {32, "TFTP Server Addresses", {}, ShowDhcpIPv6List}, {33, "Configuration File Name", kDhcpText},
    {34, "Syslog Server Addresses", {}, ShowDhcpIPv6List}, {35, "Modem Capabilities Encoding", kDhcpBytes},
    {36, "Device Identifier", kDhcpBytes}, {37, "Time Protocol Servers", {}, ShowDhcpIPv6List},
    {38, "Time Offset", kDhcpU32}, {39, "IP Preference", kDhcpU8}, {1025, "CMTS Capabilities", kDhcpBytes},
    {1026, "Cable Modem MAC Address", kDhcpBytes}, {1027, "eRouter Container", kDhcpBytes},
    {2170, "CableLabs Client Configuration", {}, ShowDhcpv6CableLabs},
    {2171, "CableLabs IPv6 Client Configuration", kDhcpBytes}});
const char* CableOptionName(uint32_t code) {
  const Choice<DhcpMessage>* choice = FindChoice<DhcpMessage>(kCable, code);
  return choice ? choice->name : kUnknown;
}
void ShowCableCodes(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kCode = Rows<DhcpMessage>({Number(2, "Option Code", CableOptionName).Note(", %u")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kCode, message);
}

void ShowVendorOptions(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kOther = Choices<DhcpMessage>({{65535, "Reserved"}});
  Cursor ahead = c;
  Loop loop;
  Element element;
  while (More(ahead, loop) && TakeElement(ahead, kDhcpWideForm, element)) {
  }
  if (Left(ahead)) return;   // written in another way
  ShowElements(in, c, kDhcpWideForm, "Suboption",
               message.enterprise.value == kCableLabs ? DhcpChoices(kCable) : DhcpChoices(kOther), message);
}

void ShowMobilityAddresses(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kServices = Choices<DhcpMessage>({
      {1, "Information Service", {}, ShowDhcpIPv6List}, {2, "Command Service", {}, ShowDhcpIPv6List},
      {3, "Event Service", {}, ShowDhcpIPv6List}});
  ShowElements(in, c, kDhcpWideForm, "Suboption", kServices, message);
}
void ShowMobilityNames(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kServices = Choices<DhcpMessage>({
      {1, "Information Service", {}, ShowDhcpNames}, {2, "Command Service", {}, ShowDhcpNames},
      {3, "Event Service", {}, ShowDhcpNames}});
  ShowElements(in, c, kDhcpWideForm, "Suboption", kServices, message);
}
void ShowTimeServer(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kSuboptions = Choices<DhcpMessage>({
      {1, "NTP_SUBOPTION_SRV_ADDR", kDhcpIPv6}, {2, "NTP_SUBOPTION_MC_ADDR", kDhcpIPv6},
      {3, "NTP_SUBOPTION_SRV_FQDN", {}, ShowDhcpNames}});
  ShowElements(in, c, kDhcpWideForm, "Suboption", kSuboptions, message);
}

void ShowLinkLayerAddress(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kType = Rows<DhcpMessage>({Number(2, "Link-Layer Type", kHardwareNames)});
  static constexpr auto kMac = Rows<DhcpMessage>({Mac("Link-Layer Address").Note(", %s")});
  static constexpr auto kOther = Rows<DhcpMessage>({Bytes(0, "Link-Layer Address")});
  ShowRows<DhcpMessage>(in, c, kType, message);
  if (!Left(c)) return;
  ShowRows<DhcpMessage>(in, c, Left(c) == 6 ? RowSpan<DhcpMessage>(kMac) : RowSpan<DhcpMessage>(kOther), message);
}

void ShowLinkLayerLease(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kLease = Rows<DhcpMessage>({
      Bytes(0, "Link-Layer Address").Note(", %s").SizedBy(&DhcpMessage::count), Number(4, "Extra Addresses"),
      Number(4, "Valid Lifetime", " seconds")});
  ShowRows<DhcpMessage>(in, c, kLease, message);
  ShowDhcpv6Options(in, c, message);
}

// The octets that the length of a prefix in bits asks for, and options behind it.
void ShowPrefixBits(const Place& in, Cursor& c, DhcpMessage& message) {
  const uint32_t bits = message.count.value;
  if (bits > 128) return;
  const Field prefix = TakeBytes(c, static_cast<int32_t>(bits + 7) / 8);
  uint8_t address[16] = {};
  for (int32_t i = 0; i < 16 && i < prefix.length; ++i) address[i] = PeekU8(prefix, i);
  if (prefix.length) AddLine(in, prefix, "IPv6 Prefix: %s/%u", IPv6Text(address), bits);
  if (Left(c)) ShowDhcpv6Options(in, c, message);
}

void ShowMappingRule(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kRule = Rows<DhcpMessage>({
      Word(1), Bits(0, 7, "Reserved"), Flag(7, "Forwarding Mapping Rule"), Number(1, "EA Length"),
      Number(1, "IPv4 Prefix Length"), IPv4("IPv4 Prefix").Note(", %s"),
      Number(1, "IPv6 Prefix Length").Into(&DhcpMessage::count)});
  ShowRows<DhcpMessage>(in, c, kRule, message);
  ShowPrefixBits(in, c, message);
}

void ShowBinding(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kBinding = Rows<DhcpMessage>({
      IPv4("IPv4 Address").Note(", %s"), Number(1, "IPv6 Prefix Length").Into(&DhcpMessage::count)});
  ShowRows<DhcpMessage>(in, c, kBinding, message);
  ShowPrefixBits(in, c, message);
}

void ShowTranslationPrefixes(const Place& in, Cursor& c, DhcpMessage&) {
  static constexpr const char* kKinds[] = {"Any-Source Multicast", "Source-Specific Multicast", "Unicast"};
  for (const char* kind : kKinds) {
    const Field length = TakeU8(c);
    AddLine(in, length, "%s Prefix Length: %u", kind, length.value);
    const Field prefix = TakeBytes(c, length.value > 128 ? -1 : static_cast<int32_t>(length.value + 7) / 8);
    uint8_t address[16] = {};
    for (int32_t i = 0; i < 16 && i < prefix.length; ++i) address[i] = PeekU8(prefix, i);
    if (prefix.length) AddLine(in, prefix, "%s Prefix: %s/%u", kind, IPv6Text(address), length.value);
  }
  c.ranShort = false;
}

void ShowQuadrants(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kPair = Rows<DhcpMessage>({
      Number(1, "Quadrant", kQuadrantNames).Note(", %s"), Number(1, "Preference").Note(" %u")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kPair, message);
}

void ShowResolver(const Place& in, Cursor& c, DhcpMessage& message) {
  Cursor name = TakeCursor(c, message.count.value);
  name.begin = name.offset;
  ShowDhcpNames(in, name, message);
  const Field length = TakeU16(c);
  AddLine(in, length, "Addresses Length: %u", length.value);
  Cursor addresses = TakeCursor(c, length.value);
  ShowDhcpIPv6List(in, addresses, message);
  ShowDhcpServiceParameters(in, c, message);
}

void ShowDistributionManager(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kTransports = SortedNames({{1, "DNS over TLS"}});
  static constexpr auto kTransport = Rows<DhcpMessage>({Flags(2, "Supported Transports", kTransports)});
  ShowRows<DhcpMessage>(in, c, kTransport, message);
  ShowDhcpNames(in, c, message);
}

constexpr auto kOptions = Choices<DhcpMessage>({
#include "decoders/app/dhcpv6_options.inc"
});

}  // namespace

void ShowDhcpv6Time(const Place& in, const Field& field, const char* label) {
  constexpr int64_t kEpoch = 946684800;   // 2000-01-01, from which these times count
  const uint32_t seconds = PeekU32(field);
  AddLine(in, field, "%s: %s (%u)", label, UtcText(kEpoch + seconds), seconds);
}

const char* Dhcpv6OptionName(uint32_t code) {
  const Choice<DhcpMessage>* choice = FindChoice<DhcpMessage>(kOptions, code);
  return choice ? choice->name : "Unassigned";
}

void ShowDhcpv6Options(const Place& in, Cursor& c, DhcpMessage& message) {
  if (message.depth >= kDeepestDhcpv6) return;
  ++message.depth;
  ShowElements(in, c, kDhcpWideForm, "Option", kOptions, message, "Unassigned");
  --message.depth;
}

}  // namespace qxview
