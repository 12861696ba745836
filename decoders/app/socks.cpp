// SOCKS, versions 4 (with 4A's names) and 5 (RFC 1928; passwords: RFC 1929, GSS-API: RFC 1961): to where shall this
// server open a connection, and did it? What is relayed then goes to the decoder of the port that was asked for.
//
//   4   version (1)   command or reply (1)   port (2)   address (4)   user, terminated   [name, terminated]
//   5   version (1)   methods, counted   |   version (1)   command or reply (1)   0   address type (1)   address   port
#include "decoders/app/socks.h"

#include "core/rows.h"
#include "decoders/net/port_dispatch.h"
#include "decoders/states.h"

namespace qxview {
namespace {

constexpr uint32_t kIPv4 = 1, kDomain = 3, kIPv6 = 4;
constexpr uint32_t kVersion4 = 4, kVersion5 = 5;

constexpr auto kCommandNames = SortedNames({{1, "Connect"}, {2, "Bind"}, {3, "UDP Associate"}});
constexpr auto kReply4Names = SortedNames({
    {90, "Request Granted"}, {91, "Request Rejected or Failed"},
    {92, "Rejected: No Identification Server at the Client"},
    {93, "Rejected: Client and Identification Server Name Different Users"}});
constexpr auto kReply5Names = SortedNames({
    {0, "Succeeded"}, {1, "General SOCKS Server Failure"}, {2, "Connection Not Allowed by Ruleset"},
    {3, "Network Unreachable"}, {4, "Host Unreachable"}, {5, "Connection Refused"}, {6, "TTL Expired"},
    {7, "Command Not Supported"}, {8, "Address Type Not Supported"}});
constexpr auto kMethodNames = SortedNames({
    {0, "No Authentication Required"}, {1, "GSSAPI"}, {2, "Username/Password"},
    {3, "Challenge-Handshake Authentication Protocol"}, {5, "Challenge-Response Authentication Method"},
    {6, "Secure Sockets Layer"}, {7, "NDS Authentication"}, {8, "Multi-Authentication Framework"},
    {9, "JSON Parameter Block"}, {255, "No Acceptable Methods"}});
constexpr auto kAddressNames = SortedNames({{1, "IPv4"}, {3, "Domain Name"}, {4, "IPv6"}});
constexpr auto kStatusNames = SortedNames({{0, "Success"}});
constexpr auto kTokenNames = SortedNames({
    {1, "Authentication"}, {2, "Protection Level"}, {3, "Encapsulated Data"}, {255, "Refused"}});

struct Socks {
  Field version, code, port, address, type, count;
};

constexpr auto kRequest4 = Rows<Socks>({
    Number(1, "Version"), Number(1, "Command", kCommandNames).Note(" %s Request").Into(&Socks::code),
    Number(2, "Port").Into(&Socks::port), IPv4("IP Address").Note(", %s").Into(&Socks::address),
    Terminated(Text(0, "User ID"))});
constexpr auto kName4 = Rows<Socks>({Terminated(Text(0, "Host Name")).Note(", %s")});
constexpr auto kReply4 = Rows<Socks>({
    Number(1, "Reply Version"), Number(1, "Reply", kReply4Names).Note(", %s").Into(&Socks::code),
    Number(2, "Bound Port"), IPv4("Bound Address")});
constexpr auto kMethods = Rows<Socks>({Number(1, "Version"), Number(1, "Number of Methods").Into(&Socks::count)});
constexpr auto kMethod = Rows<Socks>({Number(1, "Method", kMethodNames).Note(", %s")});
constexpr auto kChosen = Rows<Socks>({Number(1, "Version"), Number(1, "Chosen Method", kMethodNames).Note(", %s")});
constexpr auto kPassword = Rows<Socks>({
    Number(1, "Subnegotiation Version"), Counted(1, Text(0, "User Name")).Note(", %s"),
    Counted(1, Text(0, "Password"))});
constexpr auto kStatus = Rows<Socks>({
    Number(1, "Subnegotiation Version"), Number(1, "Status", NamesOr(kStatusNames, "Failure")).Note(", %s")});
constexpr auto kToken = Rows<Socks>({
    Number(1, "Subnegotiation Version"), Number(1, "Message Type", kTokenNames).Note(", %s"),
    Counted(2, Bytes(0, "Token"))});
constexpr auto kRequest5 = Rows<Socks>({
    Number(1, "Version"), Number(1, "Command", kCommandNames).Note(" %s Request").Into(&Socks::code),
    Number(1, "Reserved"), Number(1, "Address Type", kAddressNames).Into(&Socks::type)});
constexpr auto kReply5 = Rows<Socks>({
    Number(1, "Version"), Number(1, "Reply", kReply5Names).Note(", %s").Into(&Socks::code), Number(1, "Reserved"),
    Number(1, "Address Type", kAddressNames).Into(&Socks::type)});
constexpr auto kAddress4 = Rows<Socks>({
    IPv4("Address").Note(", %s"), Number(2, "Port").Note(":%u").Into(&Socks::port)});
constexpr auto kAddress6 = Rows<Socks>({
    IPv6("Address").Note(", %s"), Number(2, "Port").Note(" port %u").Into(&Socks::port)});
constexpr auto kAddressName = Rows<Socks>({
    Counted(1, Text(0, "Domain Name")).Note(", %s"), Number(2, "Port").Note(":%u").Into(&Socks::port)});
constexpr auto kDatagram = Rows<Socks>({
    Number(2, "Reserved"), Number(1, "Fragment").NoteWhenSet(", Fragment %u").Into(&Socks::code),
    Number(1, "Address Type", kAddressNames).Into(&Socks::type)});

// The size of an address and its port behind a type at `at`; 0 for another type.
int32_t AddressSize(const Cursor& c, int32_t at) {
  switch (PeekU8(c, at)) {
    case kIPv4: return 4 + 2;
    case kDomain: return 1 + static_cast<int32_t>(PeekU8(c, at + 1)) + 2;
    case kIPv6: return 16 + 2;
    default: return 0;
  }
}
RowSpan<Socks> AddressRows(uint32_t type) {
  return type == kIPv4 ? RowSpan<Socks>(kAddress4) : type == kIPv6 ? RowSpan<Socks>(kAddress6) : RowSpan<Socks>(kAddressName);
}

struct Relay {
  ConnectionKey key;
  SocksSession session;
  bool isReply;     // from the server
  bool isQuoted;
};
void Keep(const Place& at, const Relay& relay) {
  if (!relay.isQuoted) Remember(at.view, kSocksSessions, relay.key, relay.session);
}
// A request that comes again changes nothing.
void KeepRequest(const Place& at, Relay& relay, const Field& port, uint32_t version) {
  const uint32_t sequence = PacketOf(at).segment.sequence;
  if (relay.session.version != 0 && relay.session.asked == sequence) return;
  relay.session = {static_cast<uint16_t>(port.value), static_cast<uint8_t>(version), 0, sequence, 0};
  Keep(at, relay);
}
bool IsRelayed(const SocksSession& session, uint32_t sequence, bool isReply) {
  const uint32_t last = isReply ? session.answered : session.asked;
  return session.isOpen && static_cast<int32_t>(sequence - last) > 0;
}

bool IsRequest5(const Cursor& c) {
  const uint32_t command = PeekU8(c, 1);
  const int32_t size = AddressSize(c, 3);
  return PeekU8(c) == kVersion5 && command >= 1 && command <= 3 && PeekU8(c, 2) == 0 && size > 0 && Left(c) >= 4 + size;
}
bool IsMethods(const Cursor& c) {
  return PeekU8(c) == kVersion5 && Left(c) == 2 + static_cast<int32_t>(PeekU8(c, 1));
}
bool IsPassword(const Cursor& c) {
  const int32_t user = static_cast<int32_t>(PeekU8(c, 1));
  const int32_t password = static_cast<int32_t>(PeekU8(c, 2 + user));
  return PeekU8(c) == 1 && user > 0 && PeekU8(c, 2) >= ' ' && Left(c) == 3 + user + password;
}
bool IsToken(const Cursor& c) {
  const uint32_t type = PeekU8(c, 1);
  return PeekU8(c) == 1 && type >= 1 && type <= 3 && Left(c) == 4 + static_cast<int32_t>(PeekU16(c, 2));
}

void ShowRequest4(const Place& in, Cursor& c, const Place& at, Relay& relay) {
  Socks socks = ShowRows(in, c, kRequest4);
  const uint32_t address = PeekU32(socks.address);
  if (address > 0 && address < 0x100) ShowRows<Socks>(in, c, kName4, socks);   // 0.0.0.x: the server asks for the name
  KeepRequest(at, relay, socks.port, kVersion4);
}

void ShowRequest5(const Place& in, Cursor& c, const Place& at, Relay& relay) {
  Socks socks = ShowRows(in, c, kRequest5);
  ShowRows<Socks>(in, c, AddressRows(socks.type.value), socks);
  KeepRequest(at, relay, socks.port, kVersion5);
}

void ShowMethods(const Place& in, Cursor& c) {
  Socks socks = ShowRows(in, c, kMethods);
  Loop loop;
  for (uint32_t i = 0; i < socks.count.value && MoreAt(in, c, loop); ++i) ShowRows<Socks>(in, c, kMethod, socks);
}

// What clients send, by its shape.
bool ShowAsked(const Place& at, Cursor& c, Relay& relay) {
  const bool is4 = PeekU8(c) == kVersion4 && PeekU8(c, 1) >= 1 && PeekU8(c, 1) <= 2 && FindU8(c, 0, 8) >= 0;
  const bool isRequest = IsRequest5(c), isMethods = IsMethods(c), isPassword = IsPassword(c);
  if (!is4 && !isRequest && !isMethods && !isPassword && !IsToken(c)) return false;
  const uint32_t version = is4 ? kVersion4 : kVersion5;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SOCKS%u:", version));
  if (is4) {
    ShowRequest4(in, c, at, relay);
  } else if (isRequest) {
    ShowRequest5(in, c, at, relay);
  } else if (isMethods) {
    AppendToParent(in, PeekBytes(c, 0, 1), " Methods");
    ShowMethods(in, c);
  } else if (isPassword) {
    AppendToParent(in, PeekBytes(c, 0, 1), " Password");
    ShowRows(in, c, kPassword);
  } else {
    AppendToParent(in, PeekBytes(c, 0, 1), " GSSAPI");
    ShowRows(in, c, kToken);
  }
  CoverBytes(in, c);
  return true;
}

// What servers answer.
bool ShowAnswered(const Place& at, Cursor& c, Relay& relay) {
  const uint32_t first = PeekU8(c), second = PeekU8(c, 1);
  const bool isReply4 = first == 0 && second >= 90 && second <= 93 && Left(c) >= 8;
  const int32_t size = AddressSize(c, 3);
  const bool isReply5 = first == kVersion5 && PeekU8(c, 2) == 0 && size > 0 && Left(c) >= 4 + size;
  const bool isChosen = first == kVersion5 && Left(c) == 2, isStatus = first == 1 && Left(c) == 2;
  if (!isReply4 && !isReply5 && !isChosen && !isStatus && !IsToken(c)) return false;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "SOCKS%u: Reply", isReply4 ? kVersion4 : kVersion5));
  if (isReply4 || isReply5) {
    Socks socks{};
    ShowRows<Socks>(in, c, isReply4 ? RowSpan<Socks>(kReply4) : RowSpan<Socks>(kReply5), socks);
    if (isReply5) ShowRows<Socks>(in, c, AddressRows(socks.type.value), socks);
    constexpr uint32_t kGranted4 = 90;
    relay.session.isOpen = socks.code.value == (isReply4 ? kGranted4 : 0u);
    relay.session.answered = PacketOf(at).segment.sequence;
    if (relay.session.version != 0) Keep(at, relay);
  } else if (isChosen) {
    ShowRows(in, c, kChosen);
  } else if (isStatus) {
    ShowRows(in, c, kStatus);
  } else {
    ShowRows(in, c, kToken);
  }
  CoverBytes(in, c);
  return true;
}

// The relayed bytes, to the decoder of the port that was asked for.
int32_t ShowRelayed(const Place& at, Cursor c, uint16_t port, uint8_t transport) {
  if (Left(c) < 1) return 1;
  bool matchedSource;
  const int32_t identifier = ResolveProtocol(at.view, transport, AddressSlot{}, 0, AddressSlot{}, port, &matchedSource);
  return transport == kIpProtocolTcp ? DispatchTcpPayload(at, c, identifier, matchedSource)
                                     : DispatchUdpPayload(at, c, identifier);
}

}  // namespace

int32_t DecodeSocks(const Place& at, Cursor c) {
  const PacketState& packet = PacketOf(at);
  int32_t direction;
  Relay relay{ConnectionOf(packet, &direction), {}, packet.matchedSource != 0, packet.quoted};
  const SocksSession* known = Recall(at.view, kSocksSessions, relay.key);
  if (known) relay.session = *known;
  if (IsRelayed(relay.session, packet.segment.sequence, relay.isReply)) {
    return ShowRelayed(at, c, relay.session.port, kIpProtocolTcp);
  }
  // The service's port tells who speaks; definitions of addresses may not know.
  const bool isShown = relay.isReply ? ShowAnswered(at, c, relay) || ShowAsked(at, c, relay)
                                     : ShowAsked(at, c, relay) || ShowAnswered(at, c, relay);
  if (!isShown) return 0;
  return ShowRelayed(at, c, relay.session.port, kIpProtocolTcp);
}

// RFC 1928 7: a header in front of each datagram.
int32_t DecodeSocksDatagram(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 4;
  if (Left(c) < kHeader || PeekU16(c) != 0 || AddressSize(c, 3) == 0 || Left(c) < kHeader + AddressSize(c, 3)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeader + AddressSize(c, 3)), "SOCKS5: Datagram"));
  Socks socks = ShowRows(in, c, kDatagram);
  ShowRows<Socks>(in, c, AddressRows(socks.type.value), socks);
  if (socks.code.value != 0) {
    AddRawRest(at, c, "SOCKS Fragment Data");
    return 1;
  }
  return ShowRelayed(at, c, static_cast<uint16_t>(socks.port.value), kIpProtocolUdp);
}

}  // namespace qxview
