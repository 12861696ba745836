// Lines on paper: what is broken where, what stays together, and that nothing is lost.
#include "paper/pages.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "paper/page_store.h"

namespace qxview {
namespace {

// The pages that lines give: "text" a row, titles with '*', first rows of packets with '#'.
class Printing {
 public:
  explicit Printing(const PageGrid& grid)
      : breaker(grid, [this](const Page& page) { return pages.push_back(page), static_cast<int64_t>(pages.size()) != stopsBehind; }) {}
  std::vector<std::string> Rows(size_t page) const {
    std::vector<std::string> rows;
    for (const PageRow& row : pages.at(page).rows) {
      rows.push_back((row.kind == RowKind::kPacket ? "#" : row.kind == RowKind::kTitle ? "*" : "") + row.text);
    }
    return rows;
  }
  void Fill(int32_t count) {
    for (int32_t i = 0; i < count; ++i) breaker.Put("line", RowKind::kLine);
  }

  std::vector<Page> pages;
  int64_t stopsBehind = 0;
  PageBreaker breaker;
};

using Rows = std::vector<std::string>;

TEST(Pages, LongLinesGoOnUnderTheirIndent) {
  Printing printing({20, 20});
  printing.breaker.BeginPacket({1, "", "one"}, true);
  printing.breaker.Put("Packet 1: with much to say", RowKind::kPacket);
  printing.breaker.Put("  0123456789012345678901234567890123456789", RowKind::kLine);
  printing.breaker.Put("  Na\u00EFve caf\u00E9s \u20AC\u20AC\u20AC\u20AC\u20AC \u00FC\u00FC", RowKind::kLine);
  printing.breaker.Put("Summary begins and goes on", RowKind::kLine, 8);
  printing.breaker.Put("as wide as the page!", RowKind::kLine);
  printing.breaker.Put("and a blank behind   ", RowKind::kLine);
  ASSERT_TRUE(printing.breaker.Finish());
  EXPECT_EQ(printing.Rows(0),
            (Rows{"#Packet 1: with much", "*    to say", "  012345678901234567", "      89012345678901", "      23456789",
                  "  Na\u00EFve caf\u00E9s \u20AC\u20AC\u20AC\u20AC\u20AC", "      \u00FC\u00FC", "Summary begins and", "        goes on",
                  "as wide as the page!", "and a blank behind  "}));
}

TEST(Pages, ATitleStaysWithWhatIsBelowIt) {
  Printing printing({40, 10});
  printing.breaker.BeginCapture("a.pcap");
  printing.breaker.BeginPacket({1, "noon", "one"}, true);
  printing.Fill(8);
  printing.breaker.Put("Title", RowKind::kTitle);
  printing.breaker.Put("  group", RowKind::kLine);
  printing.breaker.Put("    field", RowKind::kLine);
  printing.breaker.Put("  next", RowKind::kLine);
  printing.breaker.BeginPacket({2, "one", "two"}, true);
  printing.Fill(3);
  printing.breaker.BeginPacket({3, "two", "three"}, true);
  printing.Fill(3);   // there is room for the empty row and one more
  printing.breaker.BeginCapture("b.pcap");
  printing.breaker.BeginPacket({1, "three", "four"}, true);
  printing.Fill(1);
  ASSERT_TRUE(printing.breaker.Finish());
  ASSERT_EQ(printing.pages.size(), 4u);
  EXPECT_EQ(printing.pages[0].rows.size(), 8u);
  EXPECT_EQ(printing.Rows(1), (Rows{"*Title", "  group", "    field", "  next", "", "line", "line", "line"}));
  EXPECT_EQ(printing.Rows(2), (Rows{"line", "line", "line"}));
  const Page& second = printing.pages[1];
  EXPECT_EQ(second.packets, "Packets 1 (continued) to 2");
  EXPECT_EQ(second.time, "noon");
  ASSERT_EQ(second.starts.size(), 1u);
  EXPECT_TRUE(second.starts[0].title == "two" && second.starts[0].row == 5);
  EXPECT_TRUE(printing.pages[2].packets == "Packet 3" && printing.pages[2].capture == "a.pcap");
  EXPECT_TRUE(printing.pages[3].packets == "Packet 1" && printing.pages[3].capture == "b.pcap" && printing.pages[3].number == 4);
}

TEST(Pages, NothingIsLostAndNoPageIsTooLong) {
  std::mt19937 random(7);
  for (int32_t round = 0; round < 200; ++round) {
    const PageGrid grid{40 + static_cast<int32_t>(random() % 80), 10 + static_cast<int32_t>(random() % 60)};
    Printing printing(grid);
    const bool hasTitles = round % 3 == 0;
    if (hasTitles) printing.breaker.SetColumnTitles("No.");
    std::string wanted, shown;
    for (uint64_t packet = 1; packet < 20; ++packet) {
      printing.breaker.BeginPacket({packet, "", "title"}, round % 2 == 0);
      for (uint32_t lines = random() % 30; lines > 0; --lines) {
        std::string line(random() % 3 * 4 * (random() % 8), ' ');
        // One line in fifty is longer than a page.
        for (uint32_t length = random() % (random() % 50 == 0 ? 9000 : 130); length > 0; --length) {
          line += random() % 6 == 0 ? ' ' : static_cast<char>('a' + random() % 26);
        }
        printing.breaker.Put(line, RowKind::kLine);
        wanted += line;
      }
    }
    ASSERT_TRUE(printing.breaker.Finish());
    for (const Page& page : printing.pages) {
      ASSERT_LE(page.rows.size(), static_cast<size_t>(grid.rows));
      for (size_t i = 0; i < page.rows.size(); ++i) {
        ASSERT_LE(page.rows[i].text.size(), static_cast<size_t>(grid.columns));
        if (i > 0 || !hasTitles) shown += page.rows[i].text;
      }
    }
    std::erase(wanted, ' ');
    std::erase(shown, ' ');
    ASSERT_EQ(shown, wanted) << round;
  }
}

TEST(Pages, ColumnTitlesLeadEachPageAndAPageThatFailsIsTheLast) {
  Printing printing({40, 10});
  printing.stopsBehind = 2;
  printing.breaker.SetColumnTitles("No.  Time");
  for (uint64_t number = 1; number <= 100; ++number) {
    printing.breaker.BeginPacket({number, "", ""}, false);
    printing.Fill(1);
  }
  EXPECT_FALSE(printing.breaker.Finish());
  ASSERT_EQ(printing.pages.size(), 2u);
  EXPECT_EQ(printing.Rows(1).front(), "*No.  Time");
  EXPECT_EQ(printing.pages[1].packets, "Packets 10 to 18");
}

TEST(Pages, TwoPagesShareASheet) {
  for (const bool lies : {false, true}) {
    PaperForm form;
    form.twoUp = true;
    if (lies) std::swap(form.width, form.height);
    const Sheet sheet = SheetOf(form);
    ASSERT_EQ(sheet.places.size(), 2u);
    const Sheet::Place &a = sheet.places[0], &b = sheet.places[1];
    EXPECT_NEAR(a.scale, 0.7071, 0.001);
    EXPECT_TRUE(lies ? a.y + a.scale * form.height <= b.y + 0.01 : a.x + a.scale * form.width <= b.x + 0.01);
    EXPECT_LE(b.x + b.scale * form.width, sheet.width + 0.01);
    EXPECT_LE(b.y + b.scale * form.height, sheet.height + 0.01);
  }
  PaperForm small;
  small.margins = EqualMargins(400);
  EXPECT_EQ(GridOf(small, {5.4, 11}).columns, 0);
}

TEST(PageStores, GiveBackEveryPageInAnyOrder) {
  std::string reason;
  const std::unique_ptr<PageStore> store = PageStore::Create(&reason);
  ASSERT_TRUE(store) << reason;
  Printing printing({40, 12});
  printing.breaker.BeginCapture("caf\u00E9.pcap");
  for (uint64_t i = 1; i <= 50; ++i) {
    printing.breaker.BeginPacket({i, "noon", "title"}, true);
    printing.breaker.Put("Packet " + std::to_string(i), RowKind::kPacket);
    printing.Fill(static_cast<int32_t>(i % 7));
  }
  ASSERT_TRUE(printing.breaker.Finish());
  for (const Page& page : printing.pages) ASSERT_TRUE(store->Add(page));
  ASSERT_EQ(store->Count(), static_cast<int64_t>(printing.pages.size()));
  for (size_t i = printing.pages.size(); i-- > 0;) {
    Page page;
    ASSERT_TRUE(store->Read(static_cast<int64_t>(i) + 1, &page));
    const Page& put = printing.pages[i];
    EXPECT_TRUE(page.number == put.number && page.capture == put.capture && page.packets == put.packets && page.time == put.time);
    ASSERT_EQ(page.rows.size(), put.rows.size());
    for (size_t row = 0; row < put.rows.size(); ++row) {
      EXPECT_TRUE(page.rows[row].text == put.rows[row].text && page.rows[row].kind == put.rows[row].kind);
    }
  }
  Page page;
  EXPECT_FALSE(store->Read(0, &page) || store->Read(store->Count() + 1, &page));
}

}  // namespace
}  // namespace qxview
