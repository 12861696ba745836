// Every frame of the samples as it is: print mode writes as many lines as display mode adds, decoding allocates nothing.
#include "tests/support/samples.h"

namespace qxview::testing {
namespace {

class Sample : public ::testing::TestWithParam<std::string> {};

TEST_P(Sample, PrintAsManyLinesAsTheyShowAndAllocateNothing) {
  NamingHost host;
  TestView view(&host);
  Engine* engine = view.view().engine;
  ForEachRecord(GetParam(), [&](const FrameRecord* record) {
    ClearDecodeTree(&view.view(), &view.tree(), true);
    DecodeFrame(&view.view(), record, 0, 0, 0);
    const uint32_t shown = view.context().rangeCount;
    view.context().outputMode = kPrintMode;
    engine->textLinesWritten = 0;
    const uint64_t before = CountAllocations();
    DecodeFrame(&view.view(), record, 0, 0, 0);
    EXPECT_EQ(CountAllocations(), before);
    view.context().outputMode = kDisplayMode;
    EXPECT_EQ(engine->textLinesWritten, shown) << view.Text();
  });
}

#ifdef _WIN32
TEST_P(Sample, ShowTheSameInATreeControl) {
  TestView arena, control(nullptr, TreeKind::kControl);
  ForEachRecord(GetParam(), [&](const FrameRecord* record) {
    for (TestView* view : {&arena, &control}) {
      ClearDecodeTree(&view->view(), &view->tree(), true);
      DecodeFrame(&view->view(), record, 0, 0, 0);
    }
    EXPECT_EQ(control.Text(true), arena.Text(true));
  });
}
#endif

INSTANTIATE_TEST_SUITE_P(All, Sample, ::testing::ValuesIn(Samples()), [](const auto& info) {
  std::string name = info.param;
  std::erase(name, '-');
  return name;
});

}  // namespace
}  // namespace qxview::testing
