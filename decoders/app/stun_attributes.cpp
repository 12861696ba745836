// The attributes of STUN (registry of IANA; RFC 8489 14, RFC 8656 18, RFC 8445 16.1, RFC 5780 7, RFC 6062, 6679, 7635, 7982,
// 8016; those that RFC 3489 had) and of the makers who publish theirs ([MS-TURN], [MS-ICE2], [MS-TURNBWM]; WebRTC).
#include "core/elements.h"
#include "decoders/app/stun.h"
#include "decoders/common/crc32.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .padTo = 4};

constexpr auto kFamilyNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}});
constexpr auto kComprehensionNames = SortedNames({{0, "Required"}, {1, "Optional"}});
constexpr auto kAssignmentNames = SortedNames({{0, "IETF Review"}, {1, "Designated Expert"}});
constexpr auto kAlgorithmNames = SortedNames({{0, "Reserved"}, {1, "MD5"}, {2, "SHA-256"}});
constexpr auto kErrorNames = SortedNames({
    {274, "Disable Candidate"}, {275, "Disable Candidate Pair"}, {300, "Try Alternate"}, {400, "Bad Request"},
    {401, "Unauthenticated"}, {403, "Forbidden"}, {405, "Mobility Forbidden"}, {420, "Unknown Attribute"},
    {430, "Stale Credentials"}, {431, "Integrity Check Failure"}, {432, "Missing Username"}, {433, "Use TLS"},
    {434, "Missing Realm"}, {435, "Missing Nonce"}, {436, "Unknown Username"}, {437, "Allocation Mismatch"},
    {438, "Stale Nonce"}, {440, "Address Family not Supported"}, {441, "Wrong Credentials"},
    {442, "Unsupported Transport Protocol"}, {443, "Peer Address Family Mismatch"}, {446, "Connection Already Exists"},
    {447, "Connection Timeout or Failure"}, {481, "Connection Does Not Exist"}, {486, "Allocation Quota Reached"},
    {487, "Role Conflict"}, {500, "Server Error"}, {508, "Insufficient Capacity"}, {600, "Global Failure"}});
constexpr auto kVersionNames = SortedNames({
    {1, "ICE"}, {2, "MS-ICE2"}, {3, "MS-ICE2 with SHA-256"}, {4, "MS-ICE2 with SHA-256 and IPv6"},
    {5, "Multiplexed TURN over UDP"}, {6, "Multiplexed TURN over UDP and TCP"}});
constexpr auto kImplementationNames = SortedNames({{2, "Messages of RFC 3489bis-02"}, {3, "Messages of RFC 5389"}});
constexpr auto kStreamNames = SortedNames({{1, "Audio"}, {2, "Video"}, {3, "Supplemental Video"}, {4, "Data"}});
constexpr auto kQualityNames = SortedNames({{0, "Best Effort Delivery"}, {1, "Reliable Delivery"}});
constexpr auto kBandwidthNames = SortedNames({{0, "Reservation Check"}, {1, "Reservation Commit"}, {2, "Reservation Update"}});
constexpr auto kLocationNames = SortedNames({{0, "Unknown"}, {1, "Internet"}, {2, "Intranet"}});
constexpr auto kFederationNames = SortedNames({{0, "No Federation"}, {1, "Enterprise Federation"}, {2, "Public Cloud Federation"}});
constexpr auto kNetworkCostNames = SortedNames({
    {0, "Minimum"}, {10, "Low"}, {50, "Unknown"}, {250, "Cellular 5G"}, {500, "Cellular 4G"}, {900, "Cellular"},
    {910, "Cellular 3G"}, {980, "Cellular 2G"}, {999, "Maximum"}});

const char* ProtocolNameOf(uint32_t protocol) { return IpProtocolName(protocol); }

// --- addresses ---

struct ShownAddress {
  Field port, address;
  uint32_t portNumber;
  uint8_t bytes[16];
  bool isSix;
};

ShownAddress ShowAddressFields(const Place& in, Cursor& c, const Stun& stun, bool isHidden) {
  ShownAddress shown{};
  const Field reserved = TakeU8(c);
  AddLine(in, reserved, "Reserved: %s", HexText(reserved));
  const Field family = TakeU8(c);
  AddLine(in, family, "Protocol Family: %u = %s", family.value, LookupName(kFamilyNames, family.value));
  shown.isSix = family.value == 2;
  shown.port = TakeU16(c);
  shown.address = TakeBytes(c, shown.isSix ? 16 : 4);
  shown.portNumber = shown.port.value ^ (isHidden ? PeekU16(stun.mask) : 0);
  for (int32_t i = 0; i < shown.address.length; ++i) {
    shown.bytes[i] = static_cast<uint8_t>(PeekU8(shown.address, i) ^ (isHidden ? PeekU8(stun.mask, i) : 0));
  }
  if (!isHidden) {
    AddLine(in, shown.port, "Port: %u", shown.portNumber);
  } else {
    AddLine(in, shown.port, "Port: %u (XOR-d 0x%.04X)", shown.portNumber, shown.port.value);
  }
  if (!isHidden && shown.isSix) AddLine(in, shown.address, "IP Address: %s", IPv6Text(shown.bytes));
  if (!isHidden && !shown.isSix) AddLine(in, shown.address, "IP Address: %s", IPv4Text(shown.bytes));
  if (isHidden && shown.isSix) {
    AddLine(in, shown.address, "IP Address: %s (XOR-d %s)", IPv6Text(shown.bytes), HexDigits(shown.address));
  }
  if (isHidden && !shown.isSix) {
    AddLine(in, shown.address, "IP Address: %s (XOR-d %s)", IPv4Text(shown.bytes), HexDigits(shown.address));
  }
  return shown;
}

void AppendAddress(const Place& in, const ShownAddress& shown, const char* name) {
  if (shown.isSix) {
    AppendToParent(in, shown.address, ", %s[%s]:%u", name, IPv6Text(shown.bytes), shown.portNumber);
  } else {
    AppendToParent(in, shown.address, ", %s%s:%u", name, IPv4Text(shown.bytes), shown.portNumber);
  }
}

void ShowAddress(const Place& in, Cursor& c, Stun& stun) { AppendAddress(in, ShowAddressFields(in, c, stun, false), ""); }
void ShowHiddenAddress(const Place& in, Cursor& c, Stun& stun) {
  AppendAddress(in, ShowAddressFields(in, c, stun, true), "");
}

// Those that the message's line says, too.
void ShowMapped(const Place& in, Cursor& c, Stun& stun, bool isHidden) {
  const ShownAddress shown = ShowAddressFields(in, c, stun, isHidden);
  AppendAddress(in, shown, "");
  if (!stun.toldMapped) AppendAddress(stun.top, shown, "Mapped ");
  stun.toldMapped = true;
}
void ShowMappedAddress(const Place& in, Cursor& c, Stun& stun) { ShowMapped(in, c, stun, false); }
void ShowHiddenMappedAddress(const Place& in, Cursor& c, Stun& stun) { ShowMapped(in, c, stun, true); }
void ShowPeer(const Place& in, Cursor& c, Stun& stun) {
  const ShownAddress shown = ShowAddressFields(in, c, stun, true);
  AppendAddress(in, shown, "");
  if (!stun.toldPeer) AppendAddress(stun.top, shown, "Peer ");
  stun.toldPeer = true;   // a permission may be for many
}
void ShowRelayed(const Place& in, Cursor& c, Stun& stun) {
  const ShownAddress shown = ShowAddressFields(in, c, stun, true);
  AppendAddress(in, shown, "");
  AppendAddress(stun.top, shown, "Relayed ");
}

// --- the others ---

struct ErrorCode {
  Field hundreds, number;
};
constexpr auto kErrorCode = Rows<ErrorCode>({
    Bytes(2, "Reserved"), Word(1), Bits(0, 5, "Reserved"), Bits(5, 3, "Class").Into(&ErrorCode::hundreds),
    Number(1, "Number").Into(&ErrorCode::number), Utf8(0, "Reason Phrase")});

void ShowError(const Place& in, Cursor& c, Stun& stun) {
  ErrorCode error{};
  ShowRows<ErrorCode>(in, c, kErrorCode, error);
  const uint32_t code = 100 * error.hundreds.value + error.number.value;
  AppendToParent(in, error.number, ", %u %s", code, LookupName(kErrorNames, code));
  AppendToParent(stun.top, error.number, ", %u %s", code, LookupName(kErrorNames, code));
}

// The check covers the message up to its attribute.
void ShowFingerprint(const Place& in, Cursor& c, Stun& stun) {
  constexpr uint32_t kMask = 0x5354554E;
  const int32_t covered = c.offset - 4 - stun.message.offset;
  const Field check = TakeU32(c);
  if (!check.here || !stun.message.bytes || NobodyWants(in)) return;
  const uint32_t right = Crc32(stun.message.bytes, covered) ^ kMask;
  if (check.value == right) {
    AddLine(in, check, "CRC-32: 0x%.08X (Good)", check.value);
  } else {
    AddLine(in, check, "CRC-32: 0x%.08X (BAD should be 0x%.08X)", check.value, right);
  }
}

void ShowUnknownAttributes(const Place& in, Cursor& c, Stun&);

constexpr auto kAlgorithm = Rows<Stun>({
    Number(2, "Algorithm", kAlgorithmNames).Note(", %s"), Number(2, "Parameters Length").Into(&Stun::size)});

// One algorithm with its parameters, or a list of them, each padded to four bytes.
void ShowAlgorithms(const Place& in, Cursor& c, Stun& stun) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<Stun>(in, c, kAlgorithm, stun);
    Cursor parameters = TakeCursor(c, stun.size.value);
    const Field held = Rest(parameters);
    AddLine(in, held, "Parameters: %s", HexText(held));
    TakeCursor(c, -static_cast<int32_t>(stun.size.value) & 3);
  }
}

// A relayed packet may be a message itself: a check of connectivity, as often as not.
void ShowData(const Place& in, Cursor& c, Stun& stun) {
  constexpr int32_t kMostRelays = 8;
  if (stun.depth < kMostRelays && LooksLikeStun(c)) {
    ShowStunMessages(in, TakeCursor(c, Left(c)), stun.depth + 1);
  } else {
    AddBlock(in, Rest(c), "Application Data");
  }
}

constexpr auto kOpaque = Rows<Stun>({Bytes(0, "Value")});
constexpr auto kText = Rows<Stun>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kMac = Rows<Stun>({Bytes(0, "HMAC-SHA1")});
constexpr auto kMac256 = Rows<Stun>({Bytes(0, "HMAC-SHA256")});
constexpr auto kChannelNumber = Rows<Stun>({Hex(2, "Channel Number").Note(", 0x%.04X"), Bytes(0, "Reserved")});
constexpr auto kSeconds = Rows<Stun>({Number(4, nullptr, " seconds").Note(", %u seconds")});
constexpr auto kNumber = Rows<Stun>({Number(4, nullptr).Note(", %u")});
constexpr auto kHexNumber = Rows<Stun>({Hex(4, nullptr)});
constexpr auto kBandwidth = Rows<Stun>({Number(4, "Bandwidth", " kilobits per second")});
constexpr auto kFamily = Rows<Stun>({Number(1, "Protocol Family", kFamilyNames).Note(", %s"), Bytes(3, "Reserved")});
constexpr auto kEvenPort = Rows<Stun>({Word(1), Flag(0, "Reserve Next Port"), Bits(1, 7, "Reserved")});
constexpr auto kTransport = Rows<Stun>({Number(1, "Transport", ProtocolNameOf).Note(", %s"), Bytes(3, "Reserved")});
constexpr auto kChange = Rows<Stun>({Word(4), Flag(29, "Change IP"), Flag(30, "Change Port")});
constexpr auto kToken = Rows<Stun>({Bytes(8, "Token")});
constexpr auto kAccessToken = Rows<Stun>({
    Number(2, "Nonce Length").Into(&Stun::size), Bytes(0, "Nonce").SizedBy(&Stun::size), Bytes(0, "Encrypted Block")});
constexpr auto kPriority = Rows<Stun>({
    Number(4, "Priority").Note(", %u"), Bits(0, 8, "Type Preference"), Bits(8, 16, "Local Preference"),
    Bits(24, 8, "256 - Component ID")});
constexpr auto kTieBreaker = Rows<Stun>({Hex(8, "Tie-Breaker")});
constexpr auto kPort = Rows<Stun>({Number(2, "Port").Note(", %u"), Bytes(0, "Reserved")});
constexpr auto kAddressError = Rows<Stun>({
    Number(1, "Protocol Family", kFamilyNames), Word(2), Bits(0, 13, "Reserved"), Bits(13, 3, "Class"),
    Number(1, "Number"), Utf8(0, "Reason Phrase")});
constexpr auto kIcmp = Rows<Stun>({
    Bytes(2, "Reserved"), Word(2), Bits(0, 7, "ICMP Type"), Bits(7, 9, "ICMP Code"), Bytes(4, "Error Data")});
constexpr auto kLegacyIcmp = Rows<Stun>({Number(1, "ICMP Type"), Number(1, "ICMP Code")});
constexpr auto kTransmit = Rows<Stun>({
    Bytes(2, "Reserved"), Number(1, "Requests"), Number(1, "Responses")});
constexpr auto kEcn = Rows<Stun>({
    Word(4), Bits(0, 29, "Reserved"), Bits(29, 2, "Echo of ECN Field"), Flag(31, "ECN Valid")});
constexpr auto kUserHash = Rows<Stun>({Bytes(0, "User Hash")});
constexpr auto kPadding = Rows<Stun>({Bytes(0, "Padding")});
constexpr auto kClassicCookie = Rows<Stun>({Hex(4, "Magic Cookie")});

constexpr auto kVersion = Rows<Stun>({Number(4, "Version", kVersionNames).Note(", %s")});
constexpr auto kImplementation = Rows<Stun>({Number(4, "Version", kImplementationNames).Note(", %s")});
constexpr auto kSequence = Rows<Stun>({Bytes(20, "Connection ID"), Number(4, "Sequence Number")});
constexpr auto kFoundation = Rows<Stun>({Text(0, "Foundation").Note(", %s")});
constexpr auto kQuality = Rows<Stun>({
    Number(2, "Stream Type", kStreamNames).Note(", %s"), Number(2, "Service Quality", kQualityNames)});
constexpr auto kBandwidthMessage = Rows<Stun>({
    Bytes(2, "Reserved"), Number(2, "Message Type", kBandwidthNames).Note(", %s")});
constexpr auto kReservation = Rows<Stun>({Bytes(16, "Reservation ID")});
constexpr auto kAmount = Rows<Stun>({
    Number(4, "Minimum Send Bandwidth", " kilobits per second"), Number(4, "Maximum Send Bandwidth", " kilobits per second"),
    Number(4, "Minimum Receive Bandwidth", " kilobits per second"),
    Number(4, "Maximum Receive Bandwidth", " kilobits per second")});
constexpr auto kSiteResponse = Rows<Stun>({
    Word(4), Flag(0, "Valid"), Flag(1, "PSTN"), Bits(2, 30, "Reserved"),
    Number(4, "Maximum Send Bandwidth", " kilobits per second"), Number(4, "Maximum Receive Bandwidth", " kilobits per second")});
constexpr auto kLocation = Rows<Stun>({
    Number(1, "Peer Location", kLocationNames), Number(1, "Self Location", kLocationNames),
    Number(1, "Federation", kFederationNames), Bytes(1, "Reserved")});
constexpr auto kSession = Rows<Stun>({Bytes(8, "Session ID")});
constexpr auto kNetworkInfo = Rows<Stun>({Number(2, "Network ID"), Number(2, "Network Cost", kNetworkCostNames)});

constexpr auto kAttributes = Choices<Stun>({
    {0x0000, "Reserved"},
    {0x0001, "MAPPED-ADDRESS", {}, ShowMappedAddress},
    {0x0002, "RESPONSE-ADDRESS", {}, ShowAddress},
    {0x0003, "CHANGE-REQUEST", kChange},
    {0x0004, "SOURCE-ADDRESS", {}, ShowAddress},
    {0x0005, "CHANGED-ADDRESS", {}, ShowAddress},
    {0x0006, "USERNAME", kText},
    {0x0007, "PASSWORD", kText},
    {0x0008, "MESSAGE-INTEGRITY", kMac},
    {0x0009, "ERROR-CODE", {}, ShowError},
    {0x000A, "UNKNOWN-ATTRIBUTES", {}, ShowUnknownAttributes},
    {0x000B, "REFLECTED-FROM", {}, ShowAddress},
    {0x000C, "CHANNEL-NUMBER", kChannelNumber},
    {0x000D, "LIFETIME", kSeconds},
    {0x000E, "ALTERNATE-SERVER (classic)", {}, ShowAddress},
    {0x000F, "MAGIC-COOKIE", kClassicCookie},
    {0x0010, "BANDWIDTH", kBandwidth},
    {0x0011, "DESTINATION-ADDRESS", {}, ShowAddress},
    {0x0012, "XOR-PEER-ADDRESS", {}, ShowPeer},
    {0x0013, "DATA", {}, ShowData},
    {0x0014, "REALM", kText},
    {0x0015, "NONCE", kText},
    {0x0016, "XOR-RELAYED-ADDRESS", {}, ShowRelayed},
    {0x0017, "REQUESTED-ADDRESS-FAMILY", kFamily},
    {0x0018, "EVEN-PORT", kEvenPort},
    {0x0019, "REQUESTED-TRANSPORT", kTransport},
    {0x001A, "DONT-FRAGMENT"},
    {0x001B, "ACCESS-TOKEN", kAccessToken},
    {0x001C, "MESSAGE-INTEGRITY-SHA256", kMac256},
    {0x001D, "PASSWORD-ALGORITHM", {}, ShowAlgorithms},
    {0x001E, "USERHASH", kUserHash},
    {0x0020, "XOR-MAPPED-ADDRESS", {}, ShowHiddenMappedAddress},
    {0x0021, "TIMER-VAL", kNumber},
    {0x0022, "RESERVATION-TOKEN", kToken},
    {0x0024, "PRIORITY", kPriority},
    {0x0025, "USE-CANDIDATE"},
    {0x0026, "PADDING", kPadding},
    {0x0027, "RESPONSE-PORT", kPort},
    {0x0028, "XOR-REFLECTED-FROM", {}, ShowHiddenAddress},
    {0x002A, "CONNECTION-ID", kHexNumber},
    {0x0030, "LEGACY-ICMP", kLegacyIcmp},
    {0x8000, "ADDITIONAL-ADDRESS-FAMILY", kFamily},
    {0x8001, "ADDRESS-ERROR-CODE", kAddressError},
    {0x8002, "PASSWORD-ALGORITHMS", {}, ShowAlgorithms},
    {0x8003, "ALTERNATE-DOMAIN", kText},
    {0x8004, "ICMP", kIcmp},
    {0x8008, "MS-VERSION", kVersion},
    {0x8020, "MS-XOR-MAPPED-ADDRESS", {}, ShowHiddenMappedAddress},
    {0x8022, "SOFTWARE", kText},
    {0x8023, "ALTERNATE-SERVER", {}, ShowAddress},
    {0x8025, "TRANSACTION-TRANSMIT-COUNTER", kTransmit},
    {0x8027, "CACHE-TIMEOUT", kSeconds},
    {0x8028, "FINGERPRINT", {}, ShowFingerprint},
    {0x8029, "ICE-CONTROLLED", kTieBreaker},
    {0x802A, "ICE-CONTROLLING", kTieBreaker},
    {0x802B, "RESPONSE-ORIGIN", {}, ShowAddress},
    {0x802C, "OTHER-ADDRESS", {}, ShowAddress},
    {0x802D, "ECN-CHECK-STUN", kEcn},
    {0x802E, "THIRD-PARTY-AUTHORIZATION", kText},
    {0x8030, "MOBILITY-TICKET", kOpaque},
    {0x8032, "MS-ALTERNATE-HOST-NAME", kText},
    {0x8037, "MS-APP-ID", kOpaque},
    {0x8039, "MS-SECURE-TAG", kOpaque},
    {0x8050, "MS-SEQUENCE-NUMBER", kSequence},
    {0x8054, "CANDIDATE-IDENTIFIER", kFoundation},
    {0x8055, "MS-SERVICE-QUALITY", kQuality},
    {0x8056, "BANDWIDTH-ADMISSION-CONTROL-MESSAGE", kBandwidthMessage},
    {0x8057, "BANDWIDTH-RESERVATION-IDENTIFIER", kReservation},
    {0x8058, "BANDWIDTH-RESERVATION-AMOUNT", kAmount},
    {0x8059, "REMOTE-SITE-ADDRESS", {}, ShowHiddenAddress},
    {0x805A, "REMOTE-RELAY-SITE-ADDRESS", {}, ShowHiddenAddress},
    {0x805B, "LOCAL-SITE-ADDRESS", {}, ShowHiddenAddress},
    {0x805C, "LOCAL-RELAY-SITE-ADDRESS", {}, ShowHiddenAddress},
    {0x805D, "REMOTE-SITE-ADDRESS-RESPONSE", kSiteResponse},
    {0x805E, "REMOTE-RELAY-SITE-ADDRESS-RESPONSE", kSiteResponse},
    {0x805F, "LOCAL-SITE-ADDRESS-RESPONSE", kSiteResponse},
    {0x8060, "LOCAL-RELAY-SITE-ADDRESS-RESPONSE", kSiteResponse},
    {0x8061, "SIP-DIALOG-IDENTIFIER", kText},
    {0x8062, "SIP-CALL-IDENTIFIER", kText},
    {0x8068, "LOCATION-PROFILE", kLocation},
    {0x8070, "MS-IMPLEMENTATION-VERSION", kImplementation},
    {0x8090, "MS-ALTERNATE-MAPPED-ADDRESS", {}, ShowHiddenAddress},
    {0x8095, "MS-MULTIPLEXED-TURN-SESSION-ID", kSession},
    {0xC000, "CISCO-STUN-FLOWDATA", kOpaque},
    {0xC001, "ENF-FLOW-DESCRIPTION", kOpaque},
    {0xC002, "ENF-NETWORK-STATUS", kOpaque},
    {0xC003, "CISCO-WEBEX-FLOW-INFO", kOpaque},
    {0xC056, "CITRIX-TRANSACTION-ID", kOpaque},
    {0xC057, "GOOG-NETWORK-INFO", kNetworkInfo},
    {0xC058, "GOOG-LAST-ICE-CHECK-RECEIVED", kOpaque},
    {0xC059, "GOOG-MISC-INFO", kOpaque},
    {0xC05A, "GOOG-OBSOLETE-1", kOpaque},
    {0xC05B, "GOOG-CONNECTION-ID", kOpaque},
    {0xC05C, "GOOG-DELTA", kOpaque},
    {0xC05D, "GOOG-DELTA-ACK", kOpaque},
    {0xC05E, "GOOG-DELTA-SYNC-REQ", kOpaque},
    {0xC060, "GOOG-MESSAGE-INTEGRITY-32", kMac},
    {0xC070, "META-DTLS-IN-STUN", kOpaque},
    {0xC071, "META-DTLS-IN-STUN-ACKNOWLEDGEMENT", kOpaque},
});

const char* AttributeName(uint32_t type) {
  const Choice<Stun>* choice = FindChoice<Stun>(kAttributes, type);
  return choice ? choice->name : kUnknown;
}

void ShowUnknownAttributes(const Place& in, Cursor& c, Stun&) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const Field type = TakeU16(c);
    AddLine(in, type, "Attribute: 0x%.04X = %s", type.value, AttributeName(type.value));
  }
}

Place ShowHead(const Place& in, const Element& element, const Stun& stun, const char* name) {
  const Place under = Under(in, AddLine(in, element.whole, "Attribute: %s", name));
  const Field& type = element.type;
  const Place bits = Under(under, AddLine(under, type, "Type: 0x%.04X = %s", type.value, name));
  if (!stun.isClassic) {
    const BitPicture optional = BitsOf(type, 0, 1), assigned = BitsOf(type, 1, 1);
    AddBitLine(bits, type, "%s: Comprehension = %u (%s)", optional.picture, optional.value,
               LookupName(kComprehensionNames, optional.value));
    AddBitLine(bits, type, "%s: Assignment = %u (%s)", assigned.picture, assigned.value,
               LookupName(kAssignmentNames, assigned.value));
  }
  AddLine(under, element.length, "Length: %u", element.length.value);
  return under;
}

}  // namespace

void ShowStunAttributes(const Place& in, Cursor& c, Stun& stun) {
  const bool passes = NobodyWants(in);
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, kForm, element)) {
    const Choice<Stun>* choice = FindChoice<Stun>(kAttributes, element.code);
    if (passes && !(choice && choice->show)) continue;   // rows tell the top line nothing
    const Place under = ShowHead(in, element, stun, choice ? choice->name : kUnknown);
    if (choice) {
      ShowChoice(under, element.value, choice, stun);
    } else {
      ShowRows<Stun>(under, element.value, kOpaque, stun);
    }
    const Field& padding = element.padding;
    if (padding.length > 0) AddLine(under, padding, "Padding: %u", padding.length);
  }
}

}  // namespace qxview
