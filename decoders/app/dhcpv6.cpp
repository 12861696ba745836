// Dynamic Host Configuration Protocol for IPv6 (RFC 8415; lease queries: RFC 5007, RFC 5460; failover: RFC 8156): which
// addresses and prefixes may this station use?
//
//   clients and servers   type (1)   transaction (3)                                         options
//   relay agents          type (1)   hop count (1)   link address (16)   peer address (16)   options
//
// Over TCP every message stands behind its length in two octets.
#include "decoders/app/dhcpv6.h"

#include "decoders/net/port_dispatch.h"

namespace qxview {
namespace {

constexpr uint32_t kRelayForward = 12, kRelayReply = 13, kQuery4 = 20, kResponse4 = 21, kHighestType = 37;
constexpr uint32_t kFirstFailover = 24, kLastFailover = 35;
constexpr int32_t kHeaderSize = 4, kRelayHeaderSize = 34;

constexpr auto kTypeNames = SortedNames({
    {1, "SOLICIT"}, {2, "ADVERTISE"}, {3, "REQUEST"}, {4, "CONFIRM"}, {5, "RENEW"}, {6, "REBIND"}, {7, "REPLY"},
    {8, "RELEASE"}, {9, "DECLINE"}, {10, "RECONFIGURE"}, {11, "INFORMATION-REQUEST"}, {12, "RELAY-FORW"},
    {13, "RELAY-REPL"}, {14, "LEASEQUERY"}, {15, "LEASEQUERY-REPLY"}, {16, "LEASEQUERY-DONE"}, {17, "LEASEQUERY-DATA"},
    {18, "RECONFIGURE-REQUEST"}, {19, "RECONFIGURE-REPLY"}, {20, "DHCPV4-QUERY"}, {21, "DHCPV4-RESPONSE"},
    {22, "ACTIVELEASEQUERY"}, {23, "STARTTLS"}, {24, "BNDUPD"}, {25, "BNDREPLY"}, {26, "POOLREQ"}, {27, "POOLRESP"},
    {28, "UPDREQ"}, {29, "UPDREQALL"}, {30, "UPDDONE"}, {31, "CONNECT"}, {32, "CONNECTREPLY"}, {33, "DISCONNECT"},
    {34, "STATE"}, {35, "CONTACT"}, {36, "ADDR-REG-INFORM"}, {37, "ADDR-REG-REPLY"}});

constexpr auto kType = Rows<DhcpMessage>({Number(1, "Message Type", kTypeNames).Into(&DhcpMessage::code)});
constexpr auto kTransaction = Rows<DhcpMessage>({Hex(3, "Transaction ID")});
constexpr auto kRelay = Rows<DhcpMessage>({Number(1, "Hop Count"), IPv6("Link Address"), IPv6("Peer Address").Note(", Peer %s")});
constexpr auto kQueryFlags = Rows<DhcpMessage>({Word(3), Flag(0, "Unicast"), Bits(1, 23, "Reserved")});
constexpr auto kSentTime = Rows<DhcpMessage>({Shown(4, "Sent Time", ShowDhcpv6Time)});

bool IsRelay(uint32_t type) { return type == kRelayForward || type == kRelayReply; }

// The address or prefix that the message is about, for its top line: the first of its identity associations.
Field FindLease(Cursor options, int32_t depth) {
  constexpr uint32_t kAddresses = 3, kTemporary = 4, kAddress = 5, kRelayed = 9, kPrefixes = 25, kPrefix = 26;
  constexpr int32_t kMostDepth = 4, kAssociation = 12, kPrefixAt = 9;
  Loop loop;
  Element element;
  while (depth < kMostDepth && More(options, loop) && TakeElement(options, kDhcpWideForm, element)) {
    Cursor value = element.value;
    if (element.code == kAddress) return TakeBytes(value, 16);
    if (element.code == kPrefix) {
      TakeBytes(value, kPrefixAt);
      return TakeBytes(value, 16);
    }
    if (element.code == kRelayed) {
      TakeBytes(value, IsRelay(PeekU8(value)) ? kRelayHeaderSize : kHeaderSize);
    } else if (element.code == kAddresses || element.code == kPrefixes) {
      TakeBytes(value, kAssociation);
    } else if (element.code == kTemporary) {
      TakeBytes(value, 4);
    } else {
      continue;
    }
    const Field found = FindLease(value, depth + 1);
    if (found.here) return found;
  }
  return {nullptr, 0, 0, 0, false};
}

// The hardware address in the identifier of the client, where it has one.
Field FindClient(Cursor options, int32_t depth) {
  constexpr uint32_t kClient = 1, kRelayed = 9, kWithTime = 1, kAlone = 3;
  constexpr int32_t kMostDepth = 4, kMacSize = 6;
  Loop loop;
  Element element;
  while (depth < kMostDepth && More(options, loop) && TakeElement(options, kDhcpWideForm, element)) {
    Cursor value = element.value;
    if (element.code == kClient) {
      const uint32_t type = TakeU16(value).value;
      TakeBytes(value, type == kWithTime ? 6 : 2);
      if ((type == kWithTime || type == kAlone) && Left(value) == kMacSize) return Rest(value);
    } else if (element.code == kRelayed) {
      TakeBytes(value, IsRelay(PeekU8(value)) ? kRelayHeaderSize : kHeaderSize);
      return FindClient(value, depth + 1);
    }
  }
  return {nullptr, 0, 0, 0, false};
}

// `length` stands in front of it over TCP, and is not here otherwise.
int32_t ShowMessage(const Place& at, Cursor& c, const Field& length) {
  const uint32_t type = PeekU8(c);
  if (type < 1 || type > kHighestType || Left(c) < (IsRelay(type) ? kRelayHeaderSize : kHeaderSize)) return 0;
  Cursor options = c;
  TakeBytes(options, IsRelay(type) ? kRelayHeaderSize : kHeaderSize);
  const Field lease = FindLease(options, 0);
  const Field client = FindClient(options, 0);
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "DHCPv6: %s%s%s%s%s", Dhcpv6TypeName(type),
                                  lease.here ? ", " : "", IPv6Text(lease.bytes), client.here ? ", Client " : "",
                                  MacText(client.bytes));
  DhcpMessage message{};
  const Place in = Under(at, line);
  AddLine(in, length, "Message Length: %u", length.value);
  ShowDhcpv6Message(in, c, message);
  AddBlock(in, Rest(c), "DHCPv6 Data");
  return 1;
}

}  // namespace

const char* Dhcpv6TypeName(uint32_t type) { return LookupName(kTypeNames, type); }

void ShowDhcpv6Message(const Place& in, Cursor& c, DhcpMessage& message) {
  const uint32_t type = PeekU8(c);
  ShowRows<DhcpMessage>(in, c, kType, message);
  ShowRows<DhcpMessage>(in, c, IsRelay(type)                                ? RowSpan<DhcpMessage>(kRelay)
                               : type == kQuery4 || type == kResponse4     ? RowSpan<DhcpMessage>(kQueryFlags)
                                                                           : RowSpan<DhcpMessage>(kTransaction), message);
  if (type >= kFirstFailover && type <= kLastFailover) ShowRows<DhcpMessage>(in, c, kSentTime, message);
  ShowDhcpv6Options(in, c, message);
}

int32_t DecodeDhcpv6(const Place& at, Cursor c) {
  if (PacketOf(at).ipProtocol != kIpProtocolTcp) return ShowMessage(at, c, {nullptr, 0, 0, 0, false});
  int32_t result = 0;
  Loop loop;
  while (Left(c) > 2 && MoreAt(at, c, loop)) {
    Cursor ahead = c;
    const Field length = TakeU16(ahead);
    Cursor one = TakeCursor(ahead, length.value);
    if (!ShowMessage(at, one, length)) break;
    c = ahead;
    result = 1;
  }
  if (result) AddRawRest(at, c, "DHCPv6 Data");
  return result;
}

}  // namespace qxview
