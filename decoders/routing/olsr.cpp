// Optimized Link State Routing, version 1 (RFC 3626): chosen neighbours flood what links a mobile network has.
//
//   packet    length (2)   number (2)   messages
//   message   type (1)   validity (1)   size with all (2)   originator   hops to live (1)   hops (1)   number (2)   body
//
// Addresses are those of the network: 4 octets, or 16. Messages of link qualities (type 201 and 202) are widely used.
#include "core/elements.h"

namespace qxview {
namespace {

constexpr int32_t kPacketHeader = 4, kLinkHeader = 4;
enum : uint32_t { kHello = 1, kTopology = 2, kInterfaces = 3, kNetworks = 4, kNames = 130,
                kQualityHello = 201, kQualityTopology = 202 };

constexpr auto kTypeNames = SortedNames({
    {1, "HELLO"}, {2, "TC"}, {3, "MID"}, {4, "HNA"}, {130, "Name Service"}, {201, "LQ HELLO"}, {202, "LQ TC"}});
constexpr auto kLinkNames = SortedNames({
    {0, "Unspecified Link"}, {1, "Asymmetric Link"}, {2, "Symmetric Link"}, {3, "Lost Link"}});
constexpr auto kNeighborNames = SortedNames({
    {0, "Not Neighbor"}, {1, "Symmetric Neighbor"}, {2, "MPR Neighbor"}});
constexpr auto kWillingnessNames = SortedNames({{0, "Never"}, {1, "Low"}, {3, "Default"}, {6, "High"}, {7, "Always"}});
constexpr auto kNameTypes = SortedNames({
    {0, "Name"}, {1, "Forwarder"}, {2, "Service"}, {3, "Location"}, {4, "MAC Address"}, {5, "Wind"}});

struct Olsr {
  Field size;
};
constexpr auto kPacket = Rows<Olsr>({Number(2, "Packet Length"), Number(2, "Packet Sequence Number")});
constexpr auto kType = Rows<Olsr>({Number(1, "Message Type", kTypeNames)});
constexpr auto kSize = Rows<Olsr>({Number(2, "Message Size")});
constexpr auto kCounts = Rows<Olsr>({
    Number(1, "Time to Live"), Number(1, "Hop Count"), Number(2, "Message Sequence Number")});
constexpr auto kReserved = Rows<Olsr>({Hex(2, "Reserved")});
constexpr auto kWillingness = Rows<Olsr>({Number(1, "Willingness", kWillingnessNames)});
constexpr auto kTopologyHead = Rows<Olsr>({Number(2, "Advertised Neighbor Sequence Number"), Hex(2, "Reserved")});
constexpr auto kLinkHead = Rows<Olsr>({
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 2, "Neighbor Type", kNeighborNames), Bits(6, 2, "Link Type", kLinkNames),
    Hex(1, "Reserved"), Number(2, "Link Message Size")});
constexpr auto kQuality = Rows<Olsr>({Number(1, "Link Quality"), Number(1, "Neighbor Link Quality"), Hex(2, "Reserved")});
constexpr auto kNameHead = Rows<Olsr>({Number(2, "Name Service Version"), Number(2, "Name Count")});
constexpr auto kNameEntry = Rows<Olsr>({Number(2, "Name Type", kNameTypes), Number(2, "Name Length").Into(&Olsr::size)});

// A sixteenth of a second, a mantissa of sixteenths and an exponent.
void ShowTime(const Place& in, Cursor& c, const char* label) {
  const Field time = TakeU8(c);
  const uint32_t mantissa = 16 + (time.value >> 4), exponent = time.value & 15;
  const uint64_t milliseconds = (uint64_t{mantissa} << exponent) * 1000 / 256;
  AddLine(in, time, "%s: %I64u.%.03u seconds", label, milliseconds / 1000, static_cast<uint32_t>(milliseconds % 1000));
}
// keys: number Validity Time, Hello Emission Interval
void ShowAddress(const Place& in, Cursor& c, bool isSix, const char* label, bool noted) {
  const Field address = TakeBytes(c, isSix ? 16 : 4);
  if (!address.here) return;
  if (isSix) {
    AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
    if (noted) AppendToParent(in, address, ", %s", IPv6Text(address.bytes));
  } else {
    AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
    if (noted) AppendToParent(in, address, ", %s", IPv4Text(address.bytes));
  }
}
// keys: text Originator Address, Neighbor Address, Interface Address, Network Address, Netmask, Address
void ShowAddresses(const Place& in, Cursor& c, bool isSix, const char* label, bool hasQuality) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowAddress(in, c, isSix, label, true);
    if (hasQuality) ShowRows(in, c, kQuality);
  }
}

void ShowLinks(const Place& at, Cursor& c, bool isSix, bool hasQuality) {
  ShowRows(at, c, kReserved);
  ShowTime(at, c, "Hello Emission Interval");
  ShowRows(at, c, kWillingness);
  Loop loop;
  while (Left(c) >= kLinkHeader && PeekU16(c, 2) >= kLinkHeader && MoreAt(at, c, loop)) {
    const uint32_t code = PeekU8(c);
    Cursor link = TakeCursor(c, PeekU16(c, 2));
    const Place in = Under(at, AddLine(at, Ahead(link, Left(link)), "Link: %s, %s", LookupName(kLinkNames, code & 3),
                                       LookupName(kNeighborNames, code >> 2 & 3)));
    ShowRows(in, link, kLinkHead);
    ShowAddresses(in, link, isSix, "Neighbor Address", hasQuality);
    link.ranShort = false;   // what is left of an address that is cut
    AddBlock(in, Rest(link), "Link Data");
  }
}

// A name for an address, each filled up to four octets.
void ShowNames(const Place& at, Cursor& c, bool isSix) {
  Olsr olsr = ShowRows(at, c, kNameHead);
  Loop loop;
  while (Left(c) >= 8 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Name"));
    ShowRows<Olsr>(in, c, kNameEntry, olsr);
    c.begin = c.offset;
    ShowAddress(in, c, isSix, "Address", false);
    if (!isSix) {
      const Field filler = TakeBytes(c, 12);
      AddLine(in, filler, "Padding: %s", HexText(filler));
    }
    const Field name = TakeBytes(c, olsr.size.value);
    AddLine(in, name, "Name: %s", Text(name));
    AppendToParent(in, name, ": %s", Text(name));
    const Field padding = TakeBytes(c, (4 - name.length % 4) % 4);
    if (padding.length) AddLine(in, padding, "Padding: %s", HexText(padding));
    if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  }
}

void ShowBody(const Place& in, Cursor& c, uint32_t type, bool isSix) {
  switch (type) {
    case kHello: case kQualityHello: ShowLinks(in, c, isSix, type == kQualityHello); break;
    case kTopology: case kQualityTopology:
      ShowRows(in, c, kTopologyHead);
      ShowAddresses(in, c, isSix, "Neighbor Address", type == kQualityTopology);
      break;
    case kInterfaces: ShowAddresses(in, c, isSix, "Interface Address", false); break;
    case kNetworks: {
      Loop loop;
      while (MoreAt(in, c, loop)) {
        ShowAddress(in, c, isSix, "Network Address", true);
        ShowAddress(in, c, isSix, "Netmask", true);
      }
      break;
    }
    case kNames: ShowNames(in, c, isSix); break;
    default: break;
  }
}

}  // namespace

int32_t DecodeOlsr(const Place& at, Cursor c) {
  const bool isSix = PacketOf(at).source.kind == kIPv6Kind;
  const int32_t headerSize = isSix ? 24 : 12;
  if (Left(c) < kPacketHeader || PeekU16(c) < kPacketHeader) return 0;
  Cursor packet = TakeCursor(c, PeekU16(c));
  const Place in = Under(at, AddLine(at, Ahead(packet, Left(packet)), "OLSR: Packet %u", PeekU16(packet, 2)));
  ShowRows(in, packet, kPacket);
  Loop loop;
  while (Left(packet) >= headerSize && static_cast<int32_t>(PeekU16(packet, 2)) >= headerSize && MoreAt(in, packet, loop)) {
    const uint32_t type = PeekU8(packet);
    Cursor message = TakeCursor(packet, PeekU16(packet, 2));
    const Place under = Under(in, AddLine(in, Ahead(message, Left(message)), "Message: %s", LookupName(kTypeNames, type)));
    ShowRows(under, message, kType);
    ShowTime(under, message, "Validity Time");
    ShowRows(under, message, kSize);
    ShowAddress(under, message, isSix, "Originator Address", true);
    ShowRows(under, message, kCounts);
    ShowBody(under, message, type, isSix);
    message.ranShort = false;   // what is left of a message that is cut
    AddBlock(under, Rest(message), "Message Data");
  }
  AddBlock(in, Rest(packet), "OLSR Data");
  AddRawRest(at, c, "OLSR Data");
  return 1;
}

}  // namespace qxview
