#include "decoders/app/dns.h"

#include "tests/support/decoding.h"

namespace qxview {
int32_t DecodeDns(const Place& at, Cursor c);

namespace testing {
namespace {

constexpr const char* kQuestionHex = R"(
  03 777777 07 6578616D706C65 03 636F6D 00   # www.example.com at 12
  0001 0001
)";

const Bytes kQuery = Hex("1234 0100 0001 0000 0000 0000") + Hex(kQuestionHex);

TEST(Dns, TimeToLiveIsReadFromTheFrameBeyondTheMessage) {
  const Bytes message = Hex("0001 8180 0000 0001 0000 0000  00 0001 0001 0102");
  Record record(message + Hex("0304"));
  TestView view;
  view.Run([](const Place&, Cursor) { return 1; }, {});
  view.context().packet.frame = record.get();
  const int32_t length = static_cast<int32_t>(message.size());
  DecodeDns(TopLevel(&view.view(), 3), MakeCursor(FrameData(record.get()), 0, length));
  EXPECT_NE(view.Text().find("TTL: 16909060 Seconds {17+4}"), std::string::npos) << view.Text();
}

// The image of a top line's level; deeper levels than 3 are taken as 2 from the top line on.
TEST(Dns, LevelsAndImages) {
  TestView view;
  view.Run(DecodeDns, kQuery + kQuery, 5);
  const DecodeTree& tree = view.tree();
  const LineHandle first = tree.FirstChild(0), second = tree.NextSibling(first);
  EXPECT_EQ(tree.Image(first), LevelImage(5));
  EXPECT_EQ(tree.Image(tree.FirstChild(first)), LevelImage(3));
  EXPECT_EQ(tree.Image(second), LevelImage(2));
  const LineHandle question = tree.LastChild(first), flags = tree.NextSibling(tree.FirstChild(first));
  EXPECT_EQ(tree.Image(tree.FirstChild(question)), LevelImage(4));
  EXPECT_EQ(tree.Image(tree.FirstChild(tree.FirstChild(question))), LevelImage(5));
  EXPECT_EQ(tree.Image(tree.FirstChild(flags)), kBitFieldImage);
}

}  // namespace
}  // namespace testing
}  // namespace qxview
