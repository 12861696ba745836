// Virtual Router Redundancy Protocol, version 2 (RFC 3768) and 3 (RFC 5798, RFC 9568): which router answers for a shared
// address? The Common Address Redundancy Protocol has its number and first octet, and says so by the words of its digest.
#include "core/internet_checksum.h"
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/common/checksum_line.h"

namespace qxview {
namespace {

constexpr uint32_t kVersion2 = 2, kVersion3 = 3;
constexpr int32_t kHeaderSize = 8;

constexpr auto kTypeNames = SortedNames({{1, "ADVERTISEMENT"}});
constexpr auto kPriorityNames = SortedNames({{0, "Master Stops"}, {100, "Default"}, {255, "Address Owner"}});
constexpr auto kAuthenticationNames = SortedNames({
    {0, "No Authentication"}, {1, "Simple Text Password"}, {2, "IP Authentication Header"}});

struct Vrrp {
  Field version, router, priority, count;
};

constexpr auto kHeader = Rows<Vrrp>({
    Word(1), Bits(0, 4, "Version").Into(&Vrrp::version), Bits(4, 4, "Type", kTypeNames),
    Number(1, "Virtual Router ID").Into(&Vrrp::router),
    Number(1, "Priority", NamesOr(kPriorityNames, "Backup")).Into(&Vrrp::priority),
    Number(1, "Address Count").Into(&Vrrp::count)});
constexpr auto kInterval2 = Rows<Vrrp>({
    Number(1, "Authentication Type", kAuthenticationNames), Number(1, "Advertisement Interval", " seconds")});
constexpr auto kInterval3 = Rows<Vrrp>({
    Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Maximum Advertisement Interval", " centiseconds")});
constexpr auto kAddress4 = Rows<Vrrp>({IPv4("IP Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Vrrp>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kPassword = Rows<Vrrp>({Bytes(8, "Authentication Data")});

// Version 3 sums the pseudo-header, too; over IPv4 some of its senders leave that out, as version 2 does.
void AddChecksum(const Place& in, const Field& checksum, const Field& message, uint32_t version) {
  const NetworkState& network = PacketOf(in).network;
  const bool whole = message.bytes && !network.fragmented && network.totalLength <= message.length;
  uint32_t sum = whole ? SumWords(0, message.bytes, message.length) : 0;
  if (version == kVersion3 && whole && sum != 0xFFFF) sum = SumWords(network.pseudoHead, message.bytes, message.length);
  AddChecksumLine(in, checksum, "Checksum:", whole ? nullptr : "Not Checked - Partial Capture", sum, BadChecksum::kAlone);
}

// --- CARP ---

constexpr int32_t kCarpSize = 36;
constexpr uint32_t kCarpWords = 7;   // of counter and digest

constexpr auto kCarpHead = Rows<NoValues>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Type", kTypeNames), Number(1, "Virtual Host ID"),
    Number(1, "Advertisement Skew"), Number(1, "Authentication Length", " words"), Number(1, "Demotion"),
    Number(1, "Advertisement Interval", " seconds")});
constexpr auto kCarpTail = Rows<NoValues>({Number(8, "Counter"), Bytes(20, "HMAC")});

// Seven addresses would make a longer message.
bool IsCarp(const Cursor& c) { return Left(c) == kCarpSize && PeekU8(c, 3) == kCarpWords; }

int32_t ShowCarp(const Place& at, Cursor c) {
  const KeyedAs keys(PacketOf(at), "carp");
  const Field message = Ahead(c, Left(c));
  const Place in = Under(at, AddLine(at, message, "CARP: Virtual Host %u", PeekU8(c, 1)));
  ShowRows(in, c, kCarpHead);
  AddChecksum(in, TakeU16(c), message, kVersion2);
  ShowRows(in, c, kCarpTail);
  return 1;
}

}  // namespace

int32_t DecodeVrrp(const Place& at, Cursor c) {
  const uint32_t version = PeekU8(c) >> 4;
  if (version == kVersion2 && IsCarp(c)) return ShowCarp(at, c);
  if (Left(c) < kHeaderSize || (version != kVersion2 && version != kVersion3)) return 0;
  const Field message = Ahead(c, Left(c));
  const Vrrp ahead = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "VRRP: Version %u, Router %u, Priority %u", version,
                                     ahead.router.value, ahead.priority.value));
  Vrrp vrrp = ShowRows(in, c, kHeader);
  ShowRows<Vrrp>(in, c, version == kVersion2 ? RowSpan<Vrrp>(kInterval2) : RowSpan<Vrrp>(kInterval3), vrrp);
  AddChecksum(in, TakeU16(c), message, version);
  const bool isSix = PacketOf(at).source.kind == kIPv6Kind;
  Loop loop;
  for (uint32_t number = 0; number < vrrp.count.value && MoreAt(in, c, loop); ++number) {
    ShowRows<Vrrp>(in, c, isSix ? RowSpan<Vrrp>(kAddress6) : RowSpan<Vrrp>(kAddress4), vrrp);
  }
  if (version == kVersion2) ShowRows<Vrrp>(in, c, kPassword, vrrp);
  CoverBytes(in, c);
  c.ranShort = false;   // what is left of an address that is cut
  AddBlock(in, Rest(c), "VRRP Data");
  return 1;
}

}  // namespace qxview
