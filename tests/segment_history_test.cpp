#include "host/segment_history.h"

#include <gtest/gtest.h>

#include <string>

namespace qxview::testing {
namespace {

AddressSlot Host(uint8_t last, uint32_t kind = 1) {
  AddressSlot slot{};
  slot.address[15] = last;
  slot.kind = kind;
  return slot;
}

struct History : SegmentHistory {
  using SegmentHistory::SegmentHistory;
  void Send(uint8_t from, uint16_t port, const std::string& text, int64_t packet, uint32_t flags = 0) {
    const TcpSegment segment{reinterpret_cast<const uint8_t*>(text.data()), static_cast<int32_t>(text.size()),
                             static_cast<uint32_t>(1000 + packet), flags, true};
    Record(Host(from), port, Host(9), 80, segment, packet);
  }
  std::string Earlier(uint8_t from, uint16_t port, int32_t back) {
    QxSegment found{};
    if (!Find(Host(from), port, Host(9), 80, back, &found)) return "none";
    EXPECT_EQ(found.sequence, 1000 + found.packetNumber);
    return std::string(reinterpret_cast<const char*>(found.payload), static_cast<size_t>(found.length));
  }
};

TEST(SegmentHistory, KeepsEachConnectionAndDirection) {
  History history;
  history.Send(1, 5000, "a", 1);
  history.Send(1, 5001, "b", 2);
  history.Send(2, 5000, "c", 3);
  history.Send(1, 5000, "", 4);
  history.Send(1, 5000, "d", 5, 1);
  history.Send(1, 5000, "d", 6);  // sent again: kept as it came
  EXPECT_EQ(history.Earlier(1, 5000, 1), "d");
  EXPECT_EQ(history.Earlier(1, 5000, 2), "d");
  EXPECT_EQ(history.Earlier(1, 5000, 3), "a");
  EXPECT_EQ(history.Earlier(1, 5000, 4), "none");
  EXPECT_EQ(history.Earlier(1, 5000, 0), "none");
  EXPECT_EQ(history.Earlier(1, 5000, -1), "none");
  EXPECT_EQ(history.Earlier(1, 5001, 1), "b");
  EXPECT_EQ(history.Earlier(2, 5000, 1), "c");
  QxSegment found{};
  EXPECT_FALSE(history.Find(Host(9), 80, Host(1), 5000, 1, &found)) << "the other direction";
  EXPECT_FALSE(history.Find(Host(1, 2), 5000, Host(9, 2), 80, 1, &found)) << "IPv6 addresses of the same bytes";
  ASSERT_TRUE(history.Find(Host(1), 5000, Host(9), 80, 2, &found));
  EXPECT_EQ(found.flags, 1u);
  EXPECT_EQ(found.packetNumber, 5);
}

TEST(SegmentHistory, KeepsTheLastHundredAndAStart) {
  History history;
  for (int i = 1; i <= 250; ++i)
    history.Send(1, 5000, std::string(static_cast<size_t>(1 + i % 7 * 300), 'x') + std::to_string(i), i);
  for (int back = 1; back <= 101; ++back) {
    const std::string number = std::to_string(251 - back);
    EXPECT_TRUE(history.Earlier(1, 5000, back).ends_with("x" + number)) << back;
  }
  EXPECT_EQ(history.Earlier(1, 5000, 102), "none");
}

TEST(SegmentHistory, ForgetsTheConnectionsThatWereSilentLongest) {
  constexpr size_t kBound = 64 << 10;
  History history(kBound);
  history.Send(1, 1, "kept alive", 1);
  for (uint16_t port = 2; port < 3000; ++port) {
    history.Send(1, port, port % 2 ? std::string(3000, 'x') : "y", port);
    history.Send(1, 1, "kept alive", port);
    ASSERT_LE(history.MemoryUsed(), kBound);
    ASSERT_EQ(history.Earlier(1, port, 1), port % 2 ? std::string(3000, 'x') : "y");
  }
  EXPECT_EQ(history.Earlier(1, 1, 50), "kept alive");
  EXPECT_EQ(history.Earlier(1, 2, 1), "none");
  EXPECT_EQ(history.Earlier(1, 2998, 1), "y");
  history.Send(2, 1, std::string(kBound, 'x'), 1);
  EXPECT_EQ(history.MemoryUsed(), 0u) << "a connection beyond the bound alone is forgotten, too";
  EXPECT_EQ(history.Earlier(2, 1, 1), "none");
}

}  // namespace
}  // namespace qxview::testing
