// Options within options of DHCP version 4: those of a vendor class (option 43: PXE of the Preboot Execution Environment
// 2.1, RFC 4578; cable modems; residential gateways), of enterprises (RFC 3925), of relay agents (RFC 3046 and after), of
// cable telephony (RFC 3495).
#include <cstring>

#include "decoders/app/dhcp.h"

namespace qxview {
namespace {

constexpr uint32_t kBroadbandForum = 3561, kCableLabs = 4491;

// --- Vendor classes ---

void ShowBootServers(const Place& in, Cursor& c, DhcpMessage& message);
void ShowBootMenu(const Place& in, Cursor& c, DhcpMessage& message);

constexpr auto kBootServerNames = SortedNames({
    {0, "PXE Bootstrap Server"}, {1, "Windows NT Boot Server"}, {2, "Intel LCM Boot Server"},
    {3, "DOS/UNDI Boot Server"}, {4, "NEC ESMPRO Boot Server"}, {5, "WSoD Boot Server"}, {6, "LCCM Boot Server"},
    {7, "Unicenter TNG Boot Server"}, {8, "OpenView Boot Server"}});
constexpr auto kControl = Rows<DhcpMessage>({
    Word(1), Bits(0, 4, "Reserved"), Flag(4, "Download Without Prompt"), Flag(5, "Accept Listed Servers Only"),
    Flag(6, "No Multicast Discovery"), Flag(7, "No Broadcast Discovery")});
constexpr auto kPrompt = Rows<DhcpMessage>({
    Number(1, "Timeout", " seconds"), Text(0, "Prompt").Note(", %s")});
constexpr auto kItem = Rows<DhcpMessage>({
    Number(2, "Boot Server Type", kBootServerNames).Note(", %s"), Hex(2, "Layer")});
constexpr auto kPxe = Choices<DhcpMessage>({
    {1, "PXE_MTFTP_IP", kDhcpIPv4}, {2, "PXE_MTFTP_CPORT", kDhcpU16}, {3, "PXE_MTFTP_SPORT", kDhcpU16},
    {4, "PXE_MTFTP_TMOUT", kDhcpU8}, {5, "PXE_MTFTP_DELAY", kDhcpU8}, {6, "PXE_DISCOVERY_CONTROL", kControl},
    {7, "PXE_DISCOVERY_MCAST_ADDR", kDhcpIPv4}, {8, "PXE_BOOT_SERVERS", {}, ShowBootServers},
    {9, "PXE_BOOT_MENU", {}, ShowBootMenu}, {10, "PXE_MENU_PROMPT", kPrompt},
    {11, "PXE_MCAST_ADDRS_ALLOC", kDhcpBytes}, {12, "PXE_CREDENTIAL_TYPES", kDhcpBytes},
    {64, "LCM_SERVER", kDhcpIPv4}, {65, "LCM_DOMAIN", kDhcpText}, {66, "LCM_NIC_TYPE", kDhcpBytes},
    {67, "LCM_NIC_OPTION", kDhcpBytes}, {71, "PXE_BOOT_ITEM", kItem}, {255, "End"}});

constexpr auto kMicrosoftNames = SortedNames({{1, "Enabled"}, {2, "Disabled"}});
constexpr auto kMicrosoftSwitch = Rows<DhcpMessage>({Number(4, nullptr, kMicrosoftNames).Note(", %s")});
constexpr auto kMicrosoft = Choices<DhcpMessage>({
    {1, "NetBIOS over TCP/IP", kMicrosoftSwitch}, {2, "Release DHCP Lease on Shutdown", kDhcpU32},
    {3, "Default Router Metric Base", kDhcpU32}, {94, "Rogue Server Detection Request", kDhcpBytes},
    {95, "Rogue Server Detection Domain", kDhcpText}, {255, "End"}});

constexpr auto kCable = Choices<DhcpMessage>({
    {1, "Suboption Request List", kDhcpBytes}, {2, "Device Type", kDhcpText}, {3, "eSAFE Types", kDhcpText},
    {4, "Device Serial Number", kDhcpText}, {5, "Hardware Version Number", kDhcpText},
    {6, "Software Version Number", kDhcpText}, {7, "Boot ROM Version", kDhcpText}, {8, "Vendor OUI", kDhcpBytes},
    {9, "Model Number", kDhcpText}, {10, "Vendor Name", kDhcpText}, {31, "MTA MAC Address", kDhcpBytes},
    {32, "Correlation ID", kDhcpU32}, {51, "Vendor Name", kDhcpText}, {52, "eCM/eSTB Capabilities", kDhcpBytes},
    {53, "Device Identification", kDhcpBytes}, {54, "Device Serial Number", kDhcpText}, {255, "End"}});

constexpr auto kGateway = Choices<DhcpMessage>({
    {1, "ACS URL", kDhcpText}, {2, "Provisioning Code", kDhcpText}, {3, "CWMP Retry Minimum Wait Interval", kDhcpText},
    {4, "CWMP Retry Interval Multiplier", kDhcpText}, {255, "End"}});

constexpr auto kAccessPoint = Choices<DhcpMessage>({
    {102, "Lightweight Access Point Controller", {}, ShowDhcpIPv4List},
    {241, "Lightweight Access Point Controllers", {}, ShowDhcpIPv4List}, {255, "End"}});

constexpr auto kNone = Choices<DhcpMessage>({{255, "End"}});

void ShowBootServers(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kHead = Rows<DhcpMessage>({
      Number(2, "Boot Server Type", kBootServerNames), Number(1, "Address Count").Into(&DhcpMessage::count)});
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) {
    ShowRows<DhcpMessage>(in, c, kHead, message);
    Cursor addresses = TakeCursor(c, 4 * static_cast<int64_t>(message.count.value));
    ShowDhcpIPv4List(in, addresses, message);
  }
}

void ShowBootMenu(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kEntry = Rows<DhcpMessage>({
      Number(2, "Boot Server Type", kBootServerNames), Counted(1, Text(0, "Description")).Note(", %s")});
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kEntry, message);
}

struct VendorClass {
  const char* prefix;
  DhcpChoices choices;
};
constexpr VendorClass kVendorClasses[] = {
    {"PXEClient", kPxe}, {"MSFT", kMicrosoft}, {"docsis", kCable}, {"pktc", kCable}, {"CM", kCable},
    {"OpenCable", kCable}, {"dslforum.org", kGateway}, {"Cisco AP", kAccessPoint}, {"Airespace", kAccessPoint}};

DhcpChoices VendorChoices(const DhcpMessage& message) {
  for (const VendorClass& known : kVendorClasses) {
    const size_t length = std::strlen(known.prefix);
    if (message.vendorClass && static_cast<size_t>(message.vendorClassLength) >= length &&
        std::memcmp(message.vendorClass, known.prefix, length) == 0) {
      return known.choices;
    }
  }
  return kNone;
}

// Whether the octets are types and lengths up to their end: what is written otherwise is a text or a block.
bool AreSuboptions(Cursor c) {
  Loop loop;
  while (More(c, loop)) {
    const uint32_t type = TakeU8(c).value;
    if (type == 255) return true;
    if (type == 0) continue;
    TakeBytes(c, TakeU8(c).value);
    if (c.ranShort) return false;
  }
  return !c.ranShort;
}

bool IsText(const Cursor& c) {
  for (int32_t i = 0; i < c.left; ++i) {
    if (PeekU8(c, i) < 0x20 || PeekU8(c, i) > 0x7E) return false;
  }
  return c.left > 0;
}

}  // namespace

void ShowDhcpVendorOptions(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr ElementForm kForm{.padType = 0, .endType = 255};
  static constexpr auto kValue = Rows<DhcpMessage>({Text(0, "Vendor-Specific Information").Note(", %s")});
  if (IsText(c)) return ShowRows<DhcpMessage>(in, c, kValue, message);
  if (AreSuboptions(c)) ShowElements(in, c, kForm, "Suboption", VendorChoices(message), message);
}

// --- Enterprises ---

namespace {

constexpr auto kEnterprise = Rows<DhcpMessage>({
    Number(4, "Enterprise Number", DhcpEnterpriseName).Note(", %s").Into(&DhcpMessage::enterprise),
    Number(1, "Data Length").Into(&DhcpMessage::count)});

constexpr auto kForum = Choices<DhcpMessage>({
    {1, "DeviceManufacturerOUI", kDhcpText}, {2, "DeviceSerialNumber", kDhcpText}, {3, "DeviceProductClass", kDhcpText},
    {4, "GatewayManufacturerOUI", kDhcpText}, {5, "GatewaySerialNumber", kDhcpText},
    {6, "GatewayProductClass", kDhcpText}, {11, "ACS URL", kDhcpText}, {12, "Provisioning Code", kDhcpText},
    {13, "CWMP Retry Minimum Wait Interval", kDhcpText}, {14, "CWMP Retry Interval Multiplier", kDhcpText}});

constexpr auto kEnvironmentNames = SortedNames({{1, "CableLabs"}, {2, "Euro-CableLabs"}, {3, "Chinese"}});
constexpr auto kEnvironment = Rows<DhcpMessage>({Number(1, nullptr, kEnvironmentNames).Note(", %s")});
constexpr auto kLabs = Choices<DhcpMessage>({
    {1, "Option Request", kDhcpBytes}, {2, "TFTP Server Addresses", {}, ShowDhcpIPv4List},
    {3, "eRouter Container", kDhcpBytes}, {4, "MIB Environment Indicator", kEnvironment},
    {5, "Modem Capabilities", kDhcpBytes}, {6, "Legacy Network Selection", kDhcpBytes}});

}  // namespace

void ShowDhcpVendorClasses(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kClass = Rows<DhcpMessage>({Text(0, "Vendor Class").Note(", %s")});
  static constexpr auto kData = Rows<DhcpMessage>({Bytes(0, "Vendor Class")});
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    ShowRows<DhcpMessage>(in, c, kEnterprise, message);
    Cursor data = TakeCursor(c, message.count.value);
    if (!Left(data)) continue;
    ShowRows<DhcpMessage>(in, data, IsText(data) ? RowSpan<DhcpMessage>(kClass) : RowSpan<DhcpMessage>(kData), message);
  }
}

void ShowDhcpVendorInformation(const Place& in, Cursor& c, DhcpMessage& message) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    ShowRows<DhcpMessage>(in, c, kEnterprise, message);
    Cursor data = TakeCursor(c, message.count.value);
    const uint32_t enterprise = message.enterprise.value;
    const DhcpChoices choices = enterprise == kBroadbandForum ? DhcpChoices(kForum)
                                : enterprise == kCableLabs    ? DhcpChoices(kLabs)
                                                              : DhcpChoices(kNone);
    if (AreSuboptions(data)) ShowElements(in, data, kDhcpSuboptionForm, "Suboption", choices, message);
    AddBlock(in, Rest(data), "Data");
  }
}

// --- Relay agents ---

namespace {

// Identifiers of circuits are texts or numbers of their maker.
void ShowIdentifier(const Place& in, const Field& field, const char* label) {
  const Cursor c = CursorOver(field);
  if (IsText(c)) {
    AddLine(in, field, "%s: %s", label, Text(field));
    AppendToParent(in, field, ", %s", Text(field));
  } else {
    AddLine(in, field, "%s: %s", label, HexText(field));
    AppendToParent(in, field, ", %s", HexText(field));
  }
}

void ShowRelayEnterprises(const Place& in, Cursor& c, DhcpMessage& message) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    ShowRows<DhcpMessage>(in, c, kEnterprise, message);
    Cursor data = TakeCursor(c, message.count.value);
    AddBlock(in, Rest(data), "Data");
  }
}

constexpr auto kAccessNames = SortedNames({
    {1, "Virtual"}, {2, "PPP"}, {3, "IEEE 802.3"}, {4, "IEEE 802.11a/b/g"}, {5, "IEEE 802.16e"},
    {6, "3GPP GERAN"}, {7, "3GPP UTRAN"}, {8, "3GPP E-UTRAN"}, {9, "3GPP2 eHRPD"}, {10, "3GPP2 HRPD"},
    {11, "3GPP2 1xRTT"}, {12, "3GPP2 UMB"}, {13, "3GPP NB-IoT"}, {14, "3GPP NR"}});
constexpr auto kRelayFlags = Rows<DhcpMessage>({Word(1), Flag(0, "Unicast"), Bits(1, 7, "Reserved")});
constexpr auto kRelayAlgorithms = SortedNames({{0, "Reserved"}, {1, "HMAC-SHA1"}});
constexpr auto kRelayAuthentication = Rows<DhcpMessage>({
    Number(1, "Algorithm", kRelayAlgorithms), Word(1), Bits(0, 4, "Must Be Zero"),
    Bits(4, 4, "Replay Detection Method"), Hex(8, "Replay Detection"), Hex(4, "Relay Identifier"),
    Bytes(0, "Authentication Information")});
constexpr auto kCircuit = Rows<DhcpMessage>({Shown(0, nullptr, ShowIdentifier)});
constexpr auto kAccess = Rows<DhcpMessage>({Word(2), Bits(0, 8, "Reserved"), Bits(8, 8, "Access Technology Type", kAccessNames)});
constexpr auto kDevice = Rows<DhcpMessage>({Hex(4, nullptr)});
constexpr auto kRelay = Choices<DhcpMessage>({
    {1, "Agent Circuit ID", kCircuit}, {2, "Agent Remote ID", kCircuit}, {4, "DOCSIS Device Class", kDevice},
    {5, "Link Selection", kDhcpIPv4}, {6, "Subscriber-ID", kCircuit}, {7, "RADIUS Attributes", {}, ShowDhcpRadius},
    {8, "Authentication", kRelayAuthentication}, {9, "Vendor-Specific Information", {}, ShowRelayEnterprises},
    {10, "Relay Agent Flags", kRelayFlags}, {11, "Server Identifier Override", kDhcpIPv4},
    {12, "Relay Agent Identifier", {}, ShowDhcpDuid}, {13, "Access-Technology-Type", kAccess},
    {14, "Access-Network-Name", kDhcpUtf8}, {15, "Access-Point-Name", kDhcpUtf8},
    {16, "Access-Point-BSSID", kDhcpBytes}, {17, "Operator-Identifier", kDhcpBytes}, {18, "Operator-Realm", kDhcpUtf8},
    {19, "Relay Source Port"}, {150, "Link Selection (private)", kDhcpIPv4},
    {151, "Virtual Subnet Selection", {}, ShowDhcpSubnetSelection}, {152, "Virtual Subnet Selection Control"}});

}  // namespace

void ShowDhcpRelayInformation(const Place& in, Cursor& c, DhcpMessage& message) {
  ShowElements(in, c, kDhcpSuboptionForm, "Suboption", kRelay, message);
}

// --- Cable telephony ---

namespace {

void ShowProvisioningServer(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kTypeNames = SortedNames({{0, "Fully Qualified Domain Name"}, {1, "IPv4 Address"}});
  static constexpr auto kType = Rows<DhcpMessage>({Number(1, "Type", kTypeNames).Into(&DhcpMessage::code)});
  ShowRows<DhcpMessage>(in, c, kType, message);
  if (message.code.value == 0) {
    ShowDhcpNames(in, c, message);
  } else {
    ShowDhcpIPv4List(in, c, message);
  }
}

constexpr auto kBackoff = Rows<DhcpMessage>({
    Number(4, "Nominal Timeout"), Number(4, "Maximum Timeout"), Number(4, "Maximum Retry Count")});
constexpr auto kTicketControl = Rows<DhcpMessage>({
    Word(2), Bits(0, 14, "Reserved"), Flag(14, "Invalidate Call Management Tickets"),
    Flag(15, "Invalidate Provisioning Application Tickets")});
constexpr auto kTelephony = Choices<DhcpMessage>({
    {1, "TSP's Primary DHCP Server Address", kDhcpIPv4}, {2, "TSP's Secondary DHCP Server Address", kDhcpIPv4},
    {3, "TSP's Provisioning Server Address", {}, ShowProvisioningServer},
    {4, "TSP's AS-REQ/AS-REP Backoff and Retry", kBackoff}, {5, "TSP's AP-REQ/AP-REP Backoff and Retry", kBackoff},
    {6, "TSP's Kerberos Realm Name", {}, ShowDhcpNames}, {7, "TSP's Ticket Granting Server Utilization", kDhcpU8},
    {8, "TSP's Provisioning Timer Value", kDhcpU8}, {9, "Security Ticket Control", kTicketControl},
    {10, "Key Distribution Center IP Address", {}, ShowDhcpIPv4List}});

}  // namespace

void ShowDhcpCableLabs(const Place& in, Cursor& c, DhcpMessage& message) {
  ShowElements(in, c, kDhcpSuboptionForm, "Suboption", kTelephony, message);
}
void ShowDhcpv6CableLabs(const Place& in, Cursor& c, DhcpMessage& message) {
  ShowElements(in, c, kDhcpWideForm, "Suboption", kTelephony, message);
}

}  // namespace qxview
