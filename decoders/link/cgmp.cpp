// Cisco Group Management Protocol, as its maker describes it: a router tells switches which stations joined which groups.
//
//   version, type (4 bits each)   reserved (2)   count (1)   pairs of a group's and a station's address (6 each)
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 4, kPairSize = 12;

constexpr auto kTypeNames = SortedNames({{0, "Join"}, {1, "Leave"}});

struct Cgmp {
  Field type, count;
};
constexpr auto kHead = Rows<Cgmp>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Type", kTypeNames).Into(&Cgmp::type), Hex(2, "Reserved"),
    Number(1, "Count").Into(&Cgmp::count)});
constexpr auto kPair = Rows<Cgmp>({
    Mac("Group Destination Address").Note(", %s"), Mac("Unicast Source Address").Note(" of %s")});

}  // namespace

int32_t DecodeCgmp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "CGMP: %s", LookupName(kTypeNames, PeekU8(c) & 15)));
  Cgmp cgmp = ShowRows(in, c, kHead);
  Loop loop;
  for (uint32_t i = 0; i < cgmp.count.value && Left(c) >= kPairSize && MoreAt(in, c, loop); ++i) {
    ShowRows<Cgmp>(Under(in, AddLine(in, Ahead(c, kPairSize), "Entry %u", i + 1)), c, kPair, cgmp);
  }
  AddBlock(in, Rest(c), "CGMP Data");   // padding of the frame
  return 1;
}

}  // namespace qxview
