// Routing Information Protocol, version 1 (RFC 1058) and 2 (RFC 2453, with authentication by RFC 2082 and RFC 4822), and RIPng
// (RFC 2080): which networks are how many hops away?
//
//   command   version   0 (2)   then entries of 20 octets
#include "core/rows.h"

namespace qxview {
namespace {

struct Rip {
  Field command, version, family, kind, size, metric, length;
};

constexpr int32_t kEntrySize = 20;
constexpr uint32_t kAuthentication = 0xFFFF, kDigest = 3, kTrailer = 1;

constexpr auto kCommandNames = SortedNames({
    {1, "Request"}, {2, "Response"}, {3, "Trace On"}, {4, "Trace Off"}, {5, "Reserved"}, {6, "Triggered Request"},
    {7, "Triggered Response"}, {8, "Triggered Acknowledgement"}, {9, "Update Request"}, {10, "Update Response"},
    {11, "Update Acknowledgement"}});
constexpr auto kFamilyNames = SortedNames({{0, "Unspecified"}, {2, "IP"}, {0xFFFF, "Authentication"}});
constexpr auto kKindNames = SortedNames({{1, "Authentication Trailer"}, {2, "Simple Password"}, {3, "Keyed Message Digest"}});

constexpr auto kHead = Rows<Rip>({
    Number(1, "Command", kCommandNames).Into(&Rip::command), Number(1, "Version").Into(&Rip::version)});
constexpr auto kZero = Rows<Rip>({Hex(2, "Reserved")});
constexpr auto kDomain = Rows<Rip>({Number(2, "Routing Domain")});
constexpr auto kFamily = Rows<Rip>({Number(2, "Address Family", kFamilyNames).Into(&Rip::family)});
constexpr auto kEntry1 = Rows<Rip>({
    Hex(2, "Reserved"), IPv4("IP Address").Note(": %s"), Bytes(8, "Reserved"), Number(4, "Metric").Note(", Metric %u")});
constexpr auto kEntry2 = Rows<Rip>({
    Number(2, "Route Tag"), IPv4("IP Address").Note(": %s"), IPv4("Netmask").Note("/%s"), IPv4("Next Hop"),
    Number(4, "Metric").Note(", Metric %u")});
constexpr auto kKind = Rows<Rip>({Number(2, "Authentication Type", kKindNames).Note(": %s").Into(&Rip::kind)});
constexpr auto kPassword = Rows<Rip>({Text(16, "Password")});
constexpr auto kDigestRows = Rows<Rip>({
    Number(2, "Digest Offset"), Number(1, "Key ID"), Number(1, "Authentication Data Length").Into(&Rip::size),
    Number(4, "Sequence Number"), Bytes(8, "Reserved")});
constexpr auto kTrailerRows = Rows<Rip>({Bytes(0, "Authentication Data")});

void ShowAuthentication(const Place& in, Cursor& entry, Cursor& c, Rip& rip) {
  ShowRows<Rip>(in, entry, kKind, rip);
  if (rip.kind.value == kDigest) {
    ShowRows<Rip>(in, entry, kDigestRows, rip);
  } else if (rip.kind.value == kTrailer) {
    ShowRows<Rip>(in, entry, kTrailerRows, rip);
    const Field rest = Rest(c);   // a digest of more than 16 octets
    AddLine(in, rest, "More Authentication Data: %s", HexText(rest));
  } else {
    ShowRows<Rip>(in, entry, kPassword, rip);
  }
}

}  // namespace

int32_t DecodeRip(const Place& at, Cursor c) {
  constexpr int32_t kHeadSize = 4;
  const Rip ahead = PeekRows(c, kHead);
  if (Left(c) < kHeadSize || !ahead.command.value || ahead.command.value > 11 || ahead.version.value > 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "RIP Version %u %s", ahead.version.value,
                                     LookupName(kCommandNames, ahead.command.value)));
  Rip rip = ShowRows(in, c, kHead);
  ShowRows<Rip>(in, c, rip.version.value == 2 ? RowSpan<Rip>(kDomain) : RowSpan<Rip>(kZero), rip);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const bool isAuthentication = rip.version.value == 2 && PeekU16(c) == kAuthentication;
    Cursor entry = TakeCursor(c, kEntrySize);
    const Place under = Under(in, AddLine(in, Ahead(entry, Left(entry)), "%s", isAuthentication ? "Authentication" : "Route"));
    ShowRows<Rip>(under, entry, kFamily, rip);
    if (isAuthentication) ShowAuthentication(under, entry, c, rip);
    else ShowRows<Rip>(under, entry, rip.version.value == 2 ? RowSpan<Rip>(kEntry2) : RowSpan<Rip>(kEntry1), rip);
    entry.ranShort = false;
    AddBlock(under, Rest(entry), "Data");
  }
  AddBlock(in, Rest(c), "RIP Data");
  return 1;
}

int32_t DecodeRipng(const Place& at, Cursor c) {
  static constexpr auto kRoute = Rows<Rip>({
      IPv6("IPv6 Prefix").Note(": %s"), Number(2, "Route Tag"), Number(1, "Prefix Length").Note("/%u"),
      Number(1, "Metric").Note(", Metric %u")});
  const Rip ahead = PeekRows(c, kHead);
  if (Left(c) < 4 || !ahead.command.value || ahead.command.value > 11) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "RIPng %s", LookupName(kCommandNames, ahead.command.value)));
  Rip rip = ShowRows(in, c, kHead);
  ShowRows<Rip>(in, c, kZero, rip);
  Loop loop;
  while (Left(c) >= kEntrySize && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, kEntrySize), "%s", PeekU8(c, 19) == 255 ? "Next Hop" : "Route"));
    ShowRows<Rip>(under, c, kRoute, rip);
  }
  AddBlock(in, Rest(c), "RIPng Data");
  return 1;
}

}  // namespace qxview
