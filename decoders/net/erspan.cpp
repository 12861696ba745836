// ERSPAN (draft-foschiano-erspan-03): frames that a switch mirrors to an analyser behind GRE.
//
//   type I    no header
//   type II   version, VLAN | class, encapsulation, truncated, session | reserved, index           8 bytes
//   type III  version, VLAN | class, frame state, truncated, session | timestamp | group tag | ...  12 bytes, and
//             8 of the platform's own when the last bit says so
#include "decoders/net/erspan.h"

#include "core/elements.h"
#include "decoders/common/ahead_cut.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr uint32_t kTypeII = 1, kTypeIII = 2;
constexpr uint32_t kIpFrame = 2;

constexpr auto kVersionNames = SortedNames({{0, "Type I"}, {1, "Type II"}, {2, "Type III"}});
constexpr auto kEncapsulationNames = SortedNames({
    {0, "Originally Untagged"}, {1, "ISL"}, {2, "IEEE 802.1Q"}, {3, "Tag Preserved in Frame"}});
constexpr auto kStateNames = SortedNames({
    {0, "Good or Unknown"}, {1, "Short Frame"}, {2, "Oversized Frame"}, {3, "Bad CRC or Alignment"}});
constexpr auto kFrameNames = SortedNames({{0, "Ethernet"}, {2, "IP"}});
constexpr auto kDirectionNames = SortedNames({{0, "Ingress"}, {1, "Egress"}});
constexpr auto kGranularityNames = SortedNames({
    {0, "100 microseconds"}, {1, "100 nanoseconds"}, {2, "IEEE 1588"}, {3, "User Configurable"}});
constexpr auto kPlatformNames = SortedNames({
    {1, "VSM Domain and Port"}, {3, "Port and Upper Timestamp"}, {4, "Reserved"}, {5, "Switch, Port and Seconds"},
    {6, "Switch, Port and Seconds"}, {7, "Source Index and Upper Timestamp"}});

struct Erspan {
  Field session, frameType, more;
};
constexpr auto kHeaderII = Rows<Erspan>({
    Word(4), Bits(0, 4, "Version", kVersionNames), Bits(4, 12, "VLAN"), Bits(16, 3, "Class of Service"),
    Bits(19, 2, "Encapsulation", kEncapsulationNames), Flag(21, "Truncated"),
    Bits(22, 10, "Session ID").Into(&Erspan::session), Word(4), Bits(0, 12, "Reserved"), Bits(12, 20, "Index")});
constexpr auto kHeaderIII = Rows<Erspan>({
    Word(4), Bits(0, 4, "Version", kVersionNames), Bits(4, 12, "VLAN"), Bits(16, 3, "Class of Service"),
    Bits(19, 2, "Frame State", kStateNames), Flag(21, "Truncated"), Bits(22, 10, "Session ID").Into(&Erspan::session),
    Number(4, "Timestamp"), Number(2, "Security Group Tag"), Word(2), Flag(0, "Ethernet Frame Present"),
    Bits(1, 5, "Frame Type", kFrameNames).Into(&Erspan::frameType), Bits(6, 6, "Hardware ID"),
    Bits(12, 1, "Direction", kDirectionNames), Bits(13, 2, "Timestamp Granularity", kGranularityNames),
    Flag(15, "Platform Subheader Present").Into(&Erspan::more)});

constexpr auto kDomain = Rows<Erspan>({
    Word(4), Bits(0, 6, "Platform ID", kPlatformNames), Bits(6, 14, "Reserved"), Bits(20, 12, "VSM Domain ID"),
    Number(4, "Port ID or Index")});
constexpr auto kPortAndTime = Rows<Erspan>({
    Word(4), Bits(0, 6, "Platform ID", kPlatformNames), Bits(6, 12, "Reserved"), Bits(18, 14, "Port ID or Index"),
    Number(4, "Upper Timestamp")});
constexpr auto kSwitch = Rows<Erspan>({
    Word(4), Bits(0, 6, "Platform ID", kPlatformNames), Bits(6, 10, "Switch ID"), Bits(16, 16, "Port ID or Index"),
    Number(4, "Timestamp", " seconds")});
constexpr auto kSource = Rows<Erspan>({
    Word(4), Bits(0, 6, "Platform ID", kPlatformNames), Bits(6, 6, "Reserved"), Bits(12, 20, "Source Index"),
    Number(4, "Upper Timestamp")});
constexpr auto kOther = Rows<Erspan>({
    Word(4), Bits(0, 6, "Platform ID", kPlatformNames), Bits(6, 26, "Reserved"), Number(4, "Reserved")});

void ShowPlatform(const Place& at, Cursor& c, Erspan& erspan) {
  const uint32_t platform = PeekU8(c) >> 2;
  const Place in = Under(at, AddLine(at, AheadCut(c, 8), "Platform Subheader: %s", LookupName(kPlatformNames, platform)));
  switch (platform) {
    case 1: return ShowRows<Erspan>(in, c, kDomain, erspan);
    case 3: return ShowRows<Erspan>(in, c, kPortAndTime, erspan);
    case 5:
    case 6: return ShowRows<Erspan>(in, c, kSwitch, erspan);
    case 7: return ShowRows<Erspan>(in, c, kSource, erspan);
    default: return ShowRows<Erspan>(in, c, kOther, erspan);
  }
}

}  // namespace

int32_t DecodeErspan(const Place& at, Cursor c) {
  const uint32_t version = PeekU8(c) >> 4;
  const int32_t size = version == kTypeIII ? 12 : 8;
  if (Left(c) < size || (version != kTypeII && version != kTypeIII)) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, size), "ERSPAN: %s, Session %u", LookupName(kVersionNames, version),
                                     PeekU16(c, 2) & 0x3FF));
  Erspan erspan{};
  ShowRows<Erspan>(in, c, version == kTypeIII ? RowSpan<Erspan>(kHeaderIII) : RowSpan<Erspan>(kHeaderII), erspan);
  if (erspan.more.value) ShowPlatform(in, c, erspan);
  CoverBytes(in, c);
  const bool isIp = version == kTypeIII && erspan.frameType.value == kIpFrame;
  return DecodeCarriedFrame(Deeper(at), c, isIp ? Carried::kIp : Carried::kEthernet);
}

int32_t DecodeErspanPlain(const Place& at, Cursor c) {
  AddLine(at, Ahead(c, 0), "ERSPAN: Type I");
  return DecodeCarriedFrame(Deeper(at), c, Carried::kEthernet);
}

}  // namespace qxview
