// Cisco Auto-RP: which routers offer themselves as rendezvous points of multicast groups, and which one a mapping agent
// chose (its maker's text "pim-autorp-spec01").
//
//   0             1         2..3       4..7
//   version type  RP count  hold time  reserved
//   each RP: address (4), PIM version (1), group count (1); each group: sign (1), mask length (1), prefix (4)
#include "core/rows.h"

namespace qxview {
namespace {

constexpr auto kVersionNames = SortedNames({{1, "1 or 1+"}});
constexpr auto kTypeNames = SortedNames({{1, "RP Announcement"}, {2, "RP Mapping"}});
constexpr auto kPimNames = SortedNames({{0, "Unknown"}, {1, "Version 1"}, {2, "Version 2"}, {3, "Versions 1 and 2"}});
constexpr auto kSignNames = SortedNames({{0, "Positive"}, {1, "Negative"}});

struct AutoRp {
  Field version, type, points, address, groups, sign, mask, prefix;
};
constexpr auto kHeader = Rows<AutoRp>({
    Word(1), Bits(0, 4, "Version", kVersionNames).Into(&AutoRp::version),
    Bits(4, 4, "Type", kTypeNames).Into(&AutoRp::type), Number(1, "RP Count").Into(&AutoRp::points),
    Number(2, "Hold Time", " seconds"), Hex(4, "Reserved")});
constexpr auto kPoint = Rows<AutoRp>({
    IPv4("RP Address").Into(&AutoRp::address), Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "PIM Version", kPimNames),
    Number(1, "Group Count").Into(&AutoRp::groups)});
constexpr auto kGroup = Rows<AutoRp>({
    Word(1), Bits(0, 7, "Reserved"), Bits(7, 1, "Prefix Sign", kSignNames).Into(&AutoRp::sign),
    Number(1, "Mask Length").Into(&AutoRp::mask), IPv4("Group Prefix").Into(&AutoRp::prefix)});

}  // namespace

int32_t DecodeAutoRp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 8, kPointSize = 6, kGroupSize = 6;
  const AutoRp ahead = PeekRows(c, kHeader);
  if (Left(c) < kHeaderSize || ahead.version.value != 1) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Auto-RP: %s, %u RPs", LookupName(kTypeNames, ahead.type.value),
                                     ahead.points.value));
  ShowRows(in, c, kHeader);
  Loop loop;
  for (uint32_t i = 0; i < ahead.points.value && Left(c) >= kPointSize && MoreAt(in, c, loop); ++i) {
    AutoRp point = PeekRows(c, kPoint);
    const int32_t size = kPointSize + kGroupSize * static_cast<int32_t>(point.groups.value);
    const Place under = Under(in, AddLine(in, Ahead(c, size < Left(c) ? size : Left(c)), "RP: %s, %u groups",
                                          IPv4Text(point.address.bytes), point.groups.value));
    ShowRows<AutoRp>(under, c, kPoint, point);
    Loop groups;
    for (uint32_t j = 0; j < point.groups.value && Left(c) >= kGroupSize && MoreAt(under, c, groups); ++j) {
      const AutoRp group = PeekRows(c, kGroup);
      const Place each = Under(under, AddLine(under, Ahead(c, kGroupSize), "Group: %s%s/%u", group.sign.value ? "not " : "",
                                              IPv4Text(group.prefix.bytes), group.mask.value));
      ShowRows(each, c, kGroup);
    }
  }
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace qxview
