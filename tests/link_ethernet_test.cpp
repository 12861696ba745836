#include "tests/support/decoding.h"
#include "tests/support/small_stack.h"

namespace qxview::testing {
namespace {

const Bytes kAddresses = Hex("02 00 00 00 00 01  02 00 00 00 00 02");

TEST(Ethernet, CheckSequenceOfTheCaptureIsNoPayload) {
  Record record(kAddresses + Hex("88B5 01 02 03 04 05 DE AD BE EF"));
  record->checkSequenceLength = 4;
  ExpectInOrder(TreeOf(record), {"Frame network size: 23 (including 4 bytes CRC) {0+23}",
                                 "Frame Check Sequence: DE AD BE EF {19+4}", "Raw Packet {8:14+5}"});
  record->wireLength = 25;
  record->partial = 1;   // two bytes were cut when it was saved
  ExpectInOrder(TreeOf(record), {"Frame network size: 25 (including 4 bytes CRC) {0+23}",
                                 "Frame Check Sequence: BE EF {21+2}", "Raw Packet {8:14+7}"});
}

// What a decode of hostile nesting costs: 60,000 bytes decode on a small stack and in milliseconds.
double DecodeOnSmallStack(const Bytes& frame, std::string* tree) {
  double best = 0;
  TestView view;
  RunOnSmallStack([&] {
    Record record(frame);
    best = BestMilliseconds([&] { view.Decode(record); });
  });
  *tree = view.Text();
  return best;
}

TEST(Hostile, SixtyThousandBytesOfNestingAreQuickOnASmallStack) {
  const struct {
    const char* name;
    Bytes frame;
    const char* shown;
  } cases[] = {
      {"VLAN tags", kAddresses + Repeat(Hex("8100 0001"), 15000), "Raw Packet {8:"},
      {"service tags and VNTags", kAddresses + Repeat(Hex("88A8 0001 8926 0000 0000"), 6000), "Raw Packet {8:"},
      {"MPLS labels", Ethernet(0x8847, Repeat(Hex("0001 0040"), 15000)), "Raw Data {8:"},
      {"MPLS in Ethernet in MPLS", Repeat(Ethernet(0x8847, Hex("0001 0140 0000 0000")), 2700), "Raw"},
      {"lying lengths", kAddresses + Repeat(Hex("05DC AA AA 03 00 80 C2 0007 FFFF"), 5000), "Raw"},
  };
  for (const auto& c : cases) {
    std::string tree;
    const double milliseconds = DecodeOnSmallStack(c.frame, &tree);
    EXPECT_LT(milliseconds, kMostMilliseconds) << c.name;
    EXPECT_NE(tree.find(c.shown), std::string::npos) << c.name;
    RecordProperty(c.name, std::to_string(milliseconds));
  }
}

}  // namespace
}  // namespace qxview::testing
