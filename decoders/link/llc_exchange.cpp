// The information fields of 802.2's own commands (IEEE 802.2 5.4): XID tells which types of operation a station has,
// TEST
// comes back as it went, FRMR says which command was in error.
#include "core/rows.h"

namespace qxview {
namespace {

constexpr uint32_t kBasicFormat = 0x81;
constexpr int32_t kBasicSize = 3;

constexpr auto kFormatNames = SortedNames({{0x81, "IEEE Basic"}, {0x82, "LLC Sublayer"}});
constexpr auto kTypeNames = SortedNames({
    {1, "Type 1 (Class I)"}, {2, "Type 2"}, {3, "Types 1 and 2 (Class II)"}, {4, "Type 3"}, {5,
    "Types 1 and 3 (Class III)"},
    {6, "Types 2 and 3"}, {7, "Types 1, 2 and 3 (Class IV)"}});
constexpr auto kBasic = Rows<NoValues>({
    Hex(1, "XID Format", kFormatNames), Word(1), Bits(0, 3, "Reserved"), Bits(3, 5, "LLC Types", kTypeNames), Word(1),
    Bits(0, 7, "Receive Window Size"), Bits(7, 1, "Reserved")});

}  // namespace

int32_t DecodeLlcExchange(const Place& at, Cursor c) {
  if (PeekU8(c) != kBasicFormat || Left(c) < kBasicSize) {
    const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "802.2 Exchange"));
    AddBlock(in, Rest(c), "Test Data");
    return 1;
  }
  const Place in = Under(at, AddLine(at, Ahead(c, kBasicSize), "802.2 Exchange Identification"));
  ShowRows(in, c, kBasic);
  AddBlock(in, Rest(c), "XID Data");
  return 1;
}

}  // namespace qxview
