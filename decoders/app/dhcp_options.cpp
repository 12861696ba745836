// The options of DHCP version 4 and BOOTP vendor extensions (IANA's registry; RFC 2132 and the RFCs that add to it).
//
//   code (1)   length (1)   value          0: padding and 255: the end have no length
#include "decoders/app/dhcp.h"

namespace qxview {
namespace {

constexpr uint32_t kPad = 0, kEnd = 255, kFirstPrivate = 224;

constexpr auto kMessageTypeNames = SortedNames({
    {1, "DHCPDISCOVER"}, {2, "DHCPOFFER"}, {3, "DHCPREQUEST"}, {4, "DHCPDECLINE"}, {5, "DHCPACK"}, {6, "DHCPNAK"},
    {7, "DHCPRELEASE"}, {8, "DHCPINFORM"}, {9, "DHCPFORCERENEW"}, {10, "DHCPLEASEQUERY"}, {11, "DHCPLEASEUNASSIGNED"},
    {12, "DHCPLEASEUNKNOWN"}, {13, "DHCPLEASEACTIVE"}, {14, "DHCPBULKLEASEQUERY"}, {15, "DHCPLEASEQUERYDONE"},
    {16, "DHCPACTIVELEASEQUERY"}, {17, "DHCPLEASEQUERYSTATUS"}, {18, "DHCPTLS"}});
constexpr auto kEnabledNames = SortedNames({{0, "Disabled"}, {1, "Enabled"}});
constexpr auto kLocalNames = SortedNames({
    {0, "Some Subnets May Have a Smaller MTU"}, {1, "All Subnets Have the Same MTU"}});
constexpr auto kEncapsulationNames = SortedNames({{0, "Ethernet II (RFC 894)"}, {1, "IEEE 802.3 (RFC 1042)"}});
constexpr auto kGarbageNames = SortedNames({{0, "No Garbage Octet"}, {1, "Garbage Octet"}});
constexpr auto kNodeNames = SortedNames({{1, "B-Node"}, {2, "P-Node"}, {4, "M-Node"}, {8, "H-Node"}});
constexpr auto kOverloadNames = SortedNames({
    {1, "File Field Holds Options"}, {2, "Server Name Field Holds Options"}, {3, "Both Fields Hold Options"}});
constexpr auto kAutoNames = SortedNames({{0, "Do Not Auto-Configure"}, {1, "Auto-Configure"}});
constexpr auto kServiceNames = SortedNames({
    {0, "Local Naming Information"}, {6, "Domain Name Server"}, {41, "NIS"}, {44, "NetBIOS Name Server"}, {65, "NIS+"}});
constexpr auto kStatusNames = SortedNames({
    {0, "Success"}, {1, "UnspecFail"}, {2, "QueryTerminated"}, {3, "MalformedQuery"}, {4, "NotAllowed"},
    {5, "DataMissing"}, {6, "ConnectionActive"}, {7, "CatchUpComplete"}, {8, "TLSConnectionRefused"}});
constexpr auto kStateNames = SortedNames({
    {1, "AVAILABLE"}, {2, "ACTIVE"}, {3, "EXPIRED"}, {4, "RELEASED"}, {5, "ABANDONED"}, {6, "RESET"}, {7, "REMOTE"},
    {8, "TRANSITIONING"}});
constexpr auto kInterfaceNames = SortedNames({{1, "UNDI"}});
constexpr auto kIdentifierNames = SortedNames({{0, "GUID"}});
constexpr auto kAlgorithmNames = SortedNames({{1, "HMAC-MD5"}});
constexpr auto kEncodingNames = SortedNames({{0, "ASCII"}, {1, "DNS Wire Format"}});

constexpr auto kTimeOffset = Rows<DhcpMessage>({Signed(4, nullptr, " seconds").Note(", %d seconds")});
constexpr auto kBlocks = Rows<DhcpMessage>({Number(2, nullptr, " blocks of 512 octets").Note(", %u")});
constexpr auto kEnabled = Rows<DhcpMessage>({Number(1, nullptr, kEnabledNames).Note(", %s")});
constexpr auto kLocal = Rows<DhcpMessage>({Number(1, nullptr, kLocalNames)});
constexpr auto kEncapsulation = Rows<DhcpMessage>({Number(1, nullptr, kEncapsulationNames).Note(", %s")});
constexpr auto kGarbage = Rows<DhcpMessage>({Number(1, nullptr, kGarbageNames)});
constexpr auto kNode = Rows<DhcpMessage>({Number(1, nullptr, kNodeNames).Note(", %s")});
constexpr auto kOverload = Rows<DhcpMessage>({Number(1, nullptr, kOverloadNames).Note(", %s")});
constexpr auto kMessageType = Rows<DhcpMessage>({Number(1, nullptr, kMessageTypeNames).Note(", %s")});
constexpr auto kAuto = Rows<DhcpMessage>({Number(1, nullptr, kAutoNames).Note(", %s")});
constexpr auto kState = Rows<DhcpMessage>({Number(1, nullptr, kStateNames).Note(", %s")});
constexpr auto kSource = Rows<DhcpMessage>({
    Word(1), Bits(0, 7, "Unassigned"), Flag(7, "Remote")});
constexpr auto kStatus = Rows<DhcpMessage>({
    Number(1, "Status Code", kStatusNames).Note(", %s"), Utf8(0, "Status Message").Note(", %s")});
constexpr auto kInterface = Rows<DhcpMessage>({
    Number(1, "Type", kInterfaceNames), Number(1, "Major Version"), Number(1, "Minor Version")});
constexpr auto kMachine = Rows<DhcpMessage>({
    Number(1, "Type", kIdentifierNames), Bytes(16, "Identifier").Note(", %s")});
constexpr auto kNonce = Rows<DhcpMessage>({Number(1, "Algorithm", kAlgorithmNames)});
constexpr auto kIPv6Mapping = Rows<DhcpMessage>({
    Number(1, "IPv4 Mask Length"), Number(1, "6rd Prefix Length"), IPv6("6rd Prefix").Note(", %s")});
constexpr auto kMandatory = Rows<DhcpMessage>({Number(1, "Mandatory")});
constexpr auto kScopes = Rows<DhcpMessage>({Utf8(0, "Service Scope List").Note(", %s")});
constexpr auto kVlan = Rows<DhcpMessage>({Bytes(0, nullptr).Note(", %s")});
constexpr auto kMagic = Rows<DhcpMessage>({Hex(4, nullptr)});

void ShowPairs(const Place& in, Cursor& c, const char* first, const char* second) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) {
    const Field left = TakeBytes(c, 4), right = TakeBytes(c, 4);
    AddLine(in, left, "%s: %s", first, IPv4Text(left.bytes));
    AddLine(in, right, "%s: %s", second, IPv4Text(right.bytes));
    AppendToParent(in, left, ", %s %s", IPv4Text(left.bytes), IPv4Text(right.bytes));
  }
}
void ShowPolicies(const Place& in, Cursor& c, DhcpMessage&) {
  ShowPairs(in, c, "IP Address", "Subnet Mask");
}
void ShowRoutes(const Place& in, Cursor& c, DhcpMessage&) {
  ShowPairs(in, c, "Destination", "Router");
}

// Destinations of so many bits, their octets alone, and the router of each (RFC 3442).
void ShowClasslessRoutes(const Place& in, Cursor& c, DhcpMessage&) {
  Loop loop;
  while (Left(c) >= 5 && PeekU8(c) <= 32 && MoreAt(in, c, loop)) {
    const Field width = TakeU8(c);
    const Field network = TakeBytes(c, (width.value + 7) / 8), router = TakeBytes(c, 4);
    if (!router.here) break;
    uint8_t address[4] = {};
    for (int32_t i = 0; i < 4 && i < network.length; ++i) address[i] = PeekU8(network, i);
    AddLine(in, width, "Prefix Length: %u", width.value);
    if (network.length) AddLine(in, network, "Destination: %s", IPv4Text(address));
    AddLine(in, router, "Router: %s", IPv4Text(router.bytes));
    AppendToParent(in, router, ", %s/%u %s", IPv4Text(address), width.value, IPv4Text(router.bytes));
  }
}

void ShowPlateaus(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kSize = Rows<DhcpMessage>({Number(2, "MTU").Note(", %u")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kSize, message);
}

void ShowParameters(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kCode = Rows<DhcpMessage>({Number(1, "Option Code", DhcpOptionName).Note(", %u")});
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kCode, message);
}

void ShowSearch(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kService = Rows<DhcpMessage>({Number(2, "Name Service", kServiceNames).Note(", %s")});
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kService, message);
}

// Classes that are counted each (RFC 3004); many clients write one text without a count.
void ShowUserClasses(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kClass = Rows<DhcpMessage>({Counted(1, Text(0, "User Class")).Note(", %s")});
  static constexpr auto kPlain = Rows<DhcpMessage>({Text(0, "User Class").Note(", %s")});
  Cursor ahead = c;
  Loop steps;
  while (More(ahead, steps)) TakeBytes(ahead, TakeU8(ahead).value);
  if (ahead.ranShort || c.left < 2 || PeekU8(c) == 0) return ShowRows<DhcpMessage>(in, c, kPlain, message);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<DhcpMessage>(in, c, kClass, message);
}

void ShowDirectoryAgents(const Place& in, Cursor& c, DhcpMessage& message) {
  ShowRows<DhcpMessage>(in, c, kMandatory, message);
  ShowDhcpIPv4List(in, c, message);
}

// RFC 4702: a name in the wire format of DNS where its flag says so, else as a text.
void ShowQualifiedName(const Place& in, Cursor& c, DhcpMessage& message) {
  constexpr uint32_t kEncoded = 0x04;
  static constexpr auto kFlags = Rows<DhcpMessage>({
      Hex(1, "Flags").Into(&DhcpMessage::code), Bits(0, 4, "Reserved"),
      Flag(4, "Server Does No DNS Updates"), Bits(5, 1, "Encoding", kEncodingNames),
      Flag(6, "Server Overrides the Client"), Flag(7, "Server Updates the Address Record"),
      Number(1, "A-RR Result"), Number(1, "PTR-RR Result")});
  static constexpr auto kName = Rows<DhcpMessage>({Text(0, "Domain Name").Note(", %s")});
  ShowRows<DhcpMessage>(in, c, kFlags, message);
  if (!Left(c)) return;
  if (message.code.value & kEncoded) {
    ShowDhcpNames(in, c, message);
  } else {
    ShowRows<DhcpMessage>(in, c, kName, message);
  }
}

void ShowStorageNames(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kFunctionNames = SortedNames({
      {0x0001, "Enabled"}, {0x0002, "DD-Based Authorization"}, {0x0004, "Security Policy Distribution"}});
  static constexpr auto kAccessNames = SortedNames({
      {0x0001, "Enabled"}, {0x0002, "Control Node"}, {0x0004, "iSCSI Target"}, {0x0008, "iSCSI Initiator"},
      {0x0010, "iFCP Target Port"}, {0x0020, "iFCP Initiator Port"}});
  static constexpr auto kAdministrationNames = SortedNames({
      {0x0001, "Enabled"}, {0x0002, "Heartbeat"}, {0x0004, "Management SCNs"}, {0x0008, "Default Discovery Domain"}});
  static constexpr auto kSecurityNames = SortedNames({
      {0x0001, "Enabled"}, {0x0002, "IKE/IPsec"}, {0x0004, "Main Mode"}, {0x0008, "Aggressive Mode"}, {0x0010, "PFS"},
      {0x0020, "Transport Mode"}, {0x0040, "Tunnel Mode"}});
  static constexpr auto kRows = Rows<DhcpMessage>({
      Flags(2, "iSNS Functions", kFunctionNames), Flags(2, "Discovery Domain Access", kAccessNames),
      Flags(2, "Administrative Flags", kAdministrationNames), Flags(4, "Server Security Bitmap", kSecurityNames)});
  ShowRows<DhcpMessage>(in, c, kRows, message);
  ShowDhcpIPv4List(in, c, message);
}

// Names (encoding 0) or addresses (1), RFC 3361.
void ShowSipServers(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kNames = SortedNames({{0, "Fully Qualified Domain Names"}, {1, "IPv4 Addresses"}});
  static constexpr auto kEncoding = Rows<DhcpMessage>({Number(1, "Encoding", kNames).Into(&DhcpMessage::code)});
  ShowRows<DhcpMessage>(in, c, kEncoding, message);
  if (message.code.value == 0) ShowDhcpNames(in, c, message);
  if (message.code.value == 1) ShowDhcpIPv4List(in, c, message);
}

void ShowNetWare(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kSuboptions = Choices<DhcpMessage>({
      {1, "NWIP_DOES_NOT_EXIST"}, {2, "NWIP_EXIST_IN_OPTIONS_AREA"}, {3, "NWIP_EXIST_IN_SNAME_FILE"},
      {4, "NWIP_EXIST_BUT_TOO_BIG"}, {5, "NSQ_BROADCAST", kEnabled}, {6, "PREFERRED_DSS", {}, ShowDhcpIPv4List},
      {7, "NEAREST_NWIP_SERVER", {}, ShowDhcpIPv4List}, {8, "AUTORETRIES", kDhcpU8}, {9, "AUTORETRY_SECS", kDhcpU8},
      {10, "NWIP_1_1", kEnabled}, {11, "PRIMARY_DSS", kDhcpIPv4}});
  ShowElements(in, c, kDhcpSuboptionForm, "Suboption", kSuboptions, message);
}

void ShowMobilityAddresses(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kServices = Choices<DhcpMessage>({
      {1, "Information Service", {}, ShowDhcpIPv4List}, {2, "Command Service", {}, ShowDhcpIPv4List},
      {3, "Event Service", {}, ShowDhcpIPv4List}});
  ShowElements(in, c, kDhcpSuboptionForm, "Suboption", kServices, message);
}
void ShowMobilityNames(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kServices = Choices<DhcpMessage>({
      {1, "Information Service", {}, ShowDhcpNames}, {2, "Command Service", {}, ShowDhcpNames},
      {3, "Event Service", {}, ShowDhcpNames}});
  ShowElements(in, c, kDhcpSuboptionForm, "Suboption", kServices, message);
}

void ShowResolverSelection(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kRows = Rows<DhcpMessage>({
      Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "Preference", DhcpSelectionName),
      IPv4("Primary Resolver").Note(", %s"), IPv4("Secondary Resolver").Note(", %s")});
  ShowRows<DhcpMessage>(in, c, kRows, message);
  ShowDhcpNames(in, c, message);
}

void ShowControlServers(const Place& in, Cursor& c, DhcpMessage& message) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field length = TakeU8(c);
    AddLine(in, length, "List Length: %u", length.value);
    Cursor list = TakeCursor(c, length.value);
    ShowDhcpIPv4List(in, list, message);
    AddBlock(in, Rest(list), "Data");
  }
}

void ShowRelayPrefix(const Place& in, Cursor& c, DhcpMessage& message) {
  ShowRows<DhcpMessage>(in, c, kIPv6Mapping, message);
  ShowDhcpIPv4List(in, c, message);
}

// Encrypted resolvers (RFC 9463), one behind the other.
void ShowResolvers(const Place& in, Cursor& c, DhcpMessage& message) {
  Loop loop;
  while (Left(c) >= 5 && MoreAt(in, c, loop)) {
    const Field length = TakeU16(c);
    AddLine(in, length, "Instance Length: %u", length.value);
    Cursor one = TakeCursor(c, length.value);
    const Field priority = TakeU16(one);
    AddLine(in, priority, "Service Priority: %u", priority.value);
    const Field nameLength = TakeU8(one);
    AddLine(in, nameLength, "Name Length: %u", nameLength.value);
    Cursor name = TakeCursor(one, nameLength.value);
    name.begin = name.offset;
    ShowDhcpNames(in, name, message);
    const Field size = TakeU8(one);
    AddLine(in, size, "Addresses Length: %u", size.value);
    Cursor addresses = TakeCursor(one, size.value);
    ShowDhcpIPv4List(in, addresses, message);
    ShowDhcpServiceParameters(in, one, message);
    AddBlock(in, Rest(one), "Data");
  }
}

void ShowSubnetAllocation(const Place& in, Cursor& c, DhcpMessage& message) {
  static constexpr auto kFlags = Rows<DhcpMessage>({Word(1), Bits(0, 7, "Reserved"), Flag(7, "Server May Not Use Suballocation")});
  static constexpr auto kRequest = Rows<DhcpMessage>({
      Word(1), Bits(0, 6, "Reserved"), Flag(6, "Information Wanted"), Flag(7, "Hierarchical"),
      Number(1, "Prefix Length").Note(", /%u")});
  static constexpr auto kSubnet = Rows<DhcpMessage>({
      Word(1), Bits(0, 6, "Reserved"), Flag(6, "Client's Own"), Flag(7, "Server's"), IPv4("Network").Note(", %s"),
      Number(1, "Prefix Length").Note("/%u"), Word(1), Bits(0, 6, "Reserved"), Flag(6, "Hierarchical"),
      Flag(7, "Deprecated"), Number(1, "Statistics Length").Into(&DhcpMessage::count),
      Bytes(0, "Statistics").SizedBy(&DhcpMessage::count)});
  static constexpr auto kSuboptions = Choices<DhcpMessage>({
      {1, "Subnet-Request", kRequest}, {2, "Subnet-Information", kSubnet}, {3, "Subnet-Name", kDhcpText},
      {4, "Suggested-Lease-Time", kDhcpSeconds}});
  ShowRows<DhcpMessage>(in, c, kFlags, message);
  ShowElements(in, c, kDhcpSuboptionForm, "Suboption", kSuboptions, message);
}

// The value that a name of the option shows: rows, then a function for the rest.
constexpr auto kOptions = Choices<DhcpMessage>({
#include "decoders/app/dhcp_options.inc"
});

constexpr ElementForm kForm{.padType = kPad, .endType = kEnd, .typeLabel = "Option Code"};

}  // namespace

const char* DhcpMessageTypeName(uint32_t type) { return LookupName(kMessageTypeNames, type); }

const char* DhcpOptionName(uint32_t code) {
  const Choice<DhcpMessage>* choice = FindChoice<DhcpMessage>(kOptions, code);
  return choice ? choice->name : code >= kFirstPrivate ? "Private Use" : "Unassigned";
}

const ElementForm& DhcpOptionForm() { return kForm; }

// Padding is one line, however much there is. A value that is too long for an option goes on in the next one of the same
// code (RFC 3396).
void ShowDhcpOptions(const Place& in, Cursor& c, DhcpMessage& message) {
  constexpr int32_t kFull = 255;
  uint32_t goesOn = kPad;
  Loop loop;
  while (MoreAt(in, c, loop)) {
    int32_t size = 0;
    while (size < Left(c) && PeekU8(c, size) == kPad) ++size;
    if (size > 0) {
      const Field padding = TakeBytes(c, size);
      AddLine(in, padding, "Padding: %u bytes", size);
      continue;
    }
    const uint32_t code = PeekU8(c);
    const bool ends = code == kEnd;
    Cursor one = TakeCursor(c, ends ? 1 : 2 + static_cast<int32_t>(PeekU8(c, 1)));
    const char* title = code == goesOn ? "Option (Continued)" : "Option";
    goesOn = Left(one) == 2 + kFull ? code : kPad;
    ShowElements(in, one, kForm, title, kOptions, message, code >= kFirstPrivate ? "Private Use" : "Unassigned");
    AddBlock(in, Rest(one), "Data");
    if (ends) break;
  }
}

}  // namespace qxview
