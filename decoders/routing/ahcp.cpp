// Ad-Hoc Configuration Protocol (draft-chroboczek-ahcp): addresses and servers for the nodes of a mesh network.
//
//   magic (1)   version (1)   hop count (1)   original hop count (1)   nonce (4)   source (8)   destination (8)
//   type (1)   zero (1)   length (2)   options: type (1), length (1), value; an empty value asks for one
#include "core/elements.h"

namespace qxview {
namespace {

constexpr uint32_t kMagic = 43, kVersion = 1, kMandatory = 1;

constexpr auto kTypeNames = SortedNames({
    {0, "Discover"}, {1, "Offer"}, {2, "Request"}, {3, "Ack"}, {4, "Nack"}, {5, "Release"}});

struct Ahcp {
  Field length;
};
constexpr auto kHead = Rows<Ahcp>({
    Number(1, "Magic"), Number(1, "Version"), Number(1, "Hop Count"), Number(1, "Original Hop Count"), Hex(4, "Nonce"),
    Eui64("Source ID"), Eui64("Destination ID"), Number(1, "Type", kTypeNames), Hex(1, "Reserved"),
    Number(2, "Length").Into(&Ahcp::length)});
constexpr auto kOrigin = Rows<Ahcp>({UnixTime(4, "Origin Time")});
constexpr auto kExpires = Rows<Ahcp>({Number(4, "Expires", " seconds")});
constexpr auto kAddress4 = Rows<Ahcp>({IPv4("IPv4 Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Ahcp>({IPv6("IPv6 Address").Note(", %s")});
constexpr auto kPrefix4 = Rows<Ahcp>({IPv4("IPv4 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u")});
constexpr auto kPrefix6 = Rows<Ahcp>({IPv6("IPv6 Prefix").Note(", %s"), Number(1, "Prefix Length").Note("/%u")});

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Ahcp& ahcp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Ahcp>(in, c, rows, ahcp);
}

constexpr auto kOptions = Choices<Ahcp>({
    {0, "Pad"}, {2, "Origin Time", kOrigin}, {3, "Expires", kExpires}, {4, "My IPv6 Address", {}, ShowEach<kAddress6, 16>},
    {5, "My IPv4 Address", {}, ShowEach<kAddress4, 4>}, {6, "IPv6 Prefix", {}, ShowEach<kPrefix6, 17>},
    {7, "IPv4 Prefix", {}, ShowEach<kPrefix4, 5>}, {8, "IPv6 Address", {}, ShowEach<kAddress6, 16>},
    {9, "IPv4 Address", {}, ShowEach<kAddress4, 4>}, {10, "IPv6 Prefix Delegation", {}, ShowEach<kPrefix6, 17>},
    {11, "IPv4 Prefix Delegation", {}, ShowEach<kPrefix4, 5>}, {12, "Name Server", {}, ShowEach<kAddress6, 16>},
    {13, "NTP Server", {}, ShowEach<kAddress6, 16>}});

// One octet says that the option behind it must be understood.
void ShowOptions(const Place& in, Cursor& c, Ahcp& ahcp) {
  constexpr ElementForm kForm{.padType = 0};
  constexpr auto kMandatoryRow = Rows<Ahcp>({Number(1, "Next Option Is Mandatory")});
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) == kMandatory) {
      ShowRows<Ahcp>(in, c, kMandatoryRow, ahcp);
      continue;
    }
    Cursor one = TakeCursor(c, PeekU8(c) == 0 ? 1 : 2 + int64_t{PeekU8(c, 1)});
    ShowElements<Ahcp>(in, one, kForm, "Option", kOptions, ahcp);
    one.ranShort = false;   // a type without its length
    AddBlock(in, Rest(one), "Option Data");
  }
}

}  // namespace

int32_t DecodeAhcp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 28, kTypePlace = 24;
  if (Left(c) < kHeaderSize || PeekU8(c) != kMagic || PeekU8(c, 1) != kVersion) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "AHCP: %s", LookupName(kTypeNames, PeekU8(c, kTypePlace))));
  Ahcp ahcp = ShowRows(in, c, kHead);
  Cursor body = TakeCursor(c, ahcp.length.value);
  ShowOptions(in, body, ahcp);
  AddBlock(in, Rest(c), "AHCP Data");
  return 1;
}

}  // namespace qxview
