// The decode tree itself, whatever stands behind it: what decoders, user libraries and the view ask of it.
#include <cstring>
#include <random>

#include "tests/support/trees.h"

namespace qxview::testing {
namespace {

class Tree : public ::testing::TestWithParam<TreeKind> {
 protected:
  LineHandle Add(LineHandle parent, const std::string& text, uint32_t index = 0, int32_t image = 9,
                 bool selected = false) {
    return tree_->Append({parent, text.c_str(), static_cast<int32_t>(text.size()), image, index, selected});
  }
  // All lines, each with its children in parentheses.
  std::string Outline(LineHandle parent = 0) {
    std::string out;
    for (LineHandle line = tree_->FirstChild(parent); line; line = tree_->NextSibling(line)) {
      EXPECT_EQ(tree_->Parent(line), parent);
      if (!out.empty()) out += ' ';
      out += tree_.Text(line);
      if (tree_->FirstChild(line)) out.append("(").append(Outline(line)).append(")");
    }
    return out;
  }
  TestTree tree_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Trees, Tree, ::testing::ValuesIn(TreeKinds()), TreeName);

TEST_P(Tree, KeepsLinesInOrderWithTheirTags) {
  EXPECT_EQ(tree_->FirstChild(0), 0u);
  EXPECT_EQ(tree_->LastChild(0), 0u);
  const LineHandle a = Add(0, "a", 7, 22), b = Add(0, "b", 0xFFFFFFFF, 6);
  const LineHandle a1 = Add(a, "a1"), a2 = Add(a, "a2");
  Add(a1, "a11");
  EXPECT_EQ(Outline(), "a(a1(a11) a2) b");
  EXPECT_EQ(tree_->LastChild(0), b);
  EXPECT_EQ(tree_->LastChild(a), a2);
  EXPECT_EQ(tree_->LastChild(a2), 0u);
  EXPECT_EQ(tree_->RangeIndex(a), 7u);
  EXPECT_EQ(tree_->RangeIndex(b), 0xFFFFFFFFu);
  EXPECT_EQ(tree_->Image(a), 22);
  EXPECT_EQ(tree_->Image(b), 6);
  tree_->SetRangeIndex(a, 8);
  EXPECT_EQ(tree_->RangeIndex(a), 8u);
  EXPECT_EQ(tree_.Text(a), "a");
  EXPECT_TRUE(tree_->Holds(a2));
  EXPECT_FALSE(tree_->Holds(0));
  tree_->Clear();
  EXPECT_EQ(Outline(), "");
  Add(0, "again");
  EXPECT_EQ(Outline(), "again");
}

TEST_P(Tree, GivesEveryByteBack) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  const LineHandle line = Add(0, all);
  EXPECT_EQ(tree_.Text(line), all);
  for (const size_t length : {0, 259, 260, 261, 300, 1100}) {
    const std::string text(length, '\xE4');
    tree_->SetText(line, text.c_str(), static_cast<int32_t>(length));
    EXPECT_EQ(tree_.Text(line), text);
    EXPECT_EQ(tree_.Text(Add(line, text)), text);
  }
  tree_->SetText(line, "0123456789", 10);
  for (const int32_t size : {12, 11, 10, 5, 1}) {
    char out[16] = "###############";
    const int32_t kept = size > 10 ? 10 : size - 1;
    EXPECT_EQ(tree_->GetText(line, out, size), kept);
    EXPECT_EQ(std::string(out), std::string("0123456789").substr(0, static_cast<size_t>(kept)));
    EXPECT_EQ(out[size], '#');
  }
  char untouched = '#';
  EXPECT_EQ(tree_->GetText(line, &untouched, 0), 0);
  EXPECT_EQ(untouched, '#');
  EXPECT_EQ(tree_->GetText(0, &untouched, 1), 0);
}

TEST_P(Tree, DeletesSubtreesAndTheSelectionInThem) {
  const LineHandle a = Add(0, "a"), b = Add(0, "b"), c = Add(0, "c");
  Add(a, "a1");
  const LineHandle b1 = Add(b, "b1"), b11 = Add(b1, "b11");
  Add(b, "b2");
  tree_->Select(b11);
  EXPECT_EQ(tree_->Selected(), b11);
  tree_->Delete(b1);
  EXPECT_EQ(Outline(), "a(a1) b(b2) c");
  EXPECT_EQ(tree_->Selected(), 0u) << "no neighbour takes the selection over";
  tree_->Select(a);
  tree_->Delete(c);
  EXPECT_EQ(tree_->Selected(), a);
  tree_->Delete(0);
  tree_->Delete(b);
  tree_->Delete(a);
  EXPECT_EQ(Outline(), "");
  EXPECT_EQ(tree_->Selected(), 0u);
}

TEST_P(Tree, SelectsAndExpands) {
  tree_->HoldRedraw(true);
  const LineHandle top = Add(0, "top");
  const LineHandle found = Add(top, "found", 1, 9, true);
  const LineHandle other = Add(top, "other");
  EXPECT_EQ(tree_->Selected(), found);
  EXPECT_FALSE(tree_->IsExpanded(top));
  tree_->Expand(top, true);
  EXPECT_TRUE(tree_->IsExpanded(top));
  tree_->Expand(top, false);
  EXPECT_FALSE(tree_->IsExpanded(top));
  tree_->ScrollToTop();
  tree_->HoldRedraw(false);
  EXPECT_EQ(tree_->Selected(), found) << "what was found stays marked until another line is selected";
  tree_->Select(other);
  EXPECT_EQ(tree_->Selected(), other);
  tree_->Select(0);
  EXPECT_EQ(tree_->Selected(), 0u);
}

TEST_P(Tree, HoldsDeepAndWideTrees) {
  LineHandle line = 0;
  for (int depth = 0; depth < 1000; ++depth) line = Add(line, "d");
  int depth = 0;
  for (LineHandle at = line; at; at = tree_->Parent(at)) ++depth;
  EXPECT_EQ(depth, 1000);
  for (uint32_t i = 0; i < 3000; ++i) Add(tree_->FirstChild(0), "w", i);
  EXPECT_EQ(tree_->RangeIndex(tree_->LastChild(tree_->FirstChild(0))), 2999u);
  tree_->Delete(tree_->FirstChild(0));
  EXPECT_EQ(tree_->FirstChild(0), 0u);
}

TEST_P(Tree, ExpandsWholeLevels) {
  const LineHandle top = Add(0, "top"), first = Add(top, "first"), second = Add(first, "second"), third = Add(second, "third");
  Add(third, "fourth");
  if (!tree_->ExpandLevels({true, false, true})) return;   // told line by line
  for (const auto& [line, expanded] : {std::pair{top, false}, {first, true}, {second, false}, {third, true}}) {
    EXPECT_EQ(tree_->IsExpanded(line), expanded) << line;
  }
  EXPECT_FALSE(tree_->IsExpanded(tree_->FirstChild(third)));
  tree_->Expand(first, false);
  tree_->Expand(second, true);
  EXPECT_FALSE(tree_->IsExpanded(first));
  EXPECT_TRUE(tree_->IsExpanded(second));
  EXPECT_FALSE(tree_->ExpandLevels({true, true, true})) << "what lines were told by themselves stays";
}

// A tree's lines as they are printed, by steps from line to line.
std::string PrintedByWalk(const ArenaTree& tree, LineHandle parent = 0, int depth = 0) {
  std::string out;
  for (LineHandle line = tree.FirstChild(parent); line; line = tree.NextSibling(line)) {
    EXPECT_EQ(tree.DepthOf(line), depth);
    out.append(static_cast<size_t>(2 * depth), ' ').append(tree.TextOf(line)).push_back('\n');
    out += PrintedByWalk(tree, line, depth + 1);
  }
  return out;
}

// The same from the runs that stand ready; false where the tree has none.
bool PrintRuns(const ArenaTree& tree, std::string* out, size_t* others) {
  if (!tree.IsInOrder()) return false;
  for (LineHandle line = tree.FirstChild(0); line;) {
    const std::string_view lines = tree.PrintedFrom(&line);
    if (!lines.empty()) {
      out->append(lines);
      continue;
    }
    out->append(static_cast<size_t>(2 * tree.DepthOf(line)), ' ').append(tree.TextOf(line)).push_back('\n');
    ++*others;
    line = tree.Holds(line + 1) ? line + 1 : 0;
  }
  return true;
}

#ifdef __SANITIZE_ADDRESS__   // 40 times as slow there
constexpr int kRounds = 600;
#else
constexpr int kRounds = 3000;
#endif

TEST(ArenaTrees, AreWhatTheirRunsSay) {
  std::mt19937 random(7);
  ArenaTree tree;
  size_t ready = 0;
  for (int round = 0; round < kRounds; ++round) {
    tree.Clear();
    std::vector<LineHandle> path{0};   // the last line, those above it and the top
    const uint32_t edits = random() % 8, breaks = random() % 200 == 0 ? 1 : 0, deep = random() % 4;
    for (uint32_t i = random() % (round % 50 == 0 ? 2000 : 60); i > 0; --i) {
      const size_t kept = random() % 3 < deep ? path.size() : 1 + random() % path.size();
      path.resize(kept);
      const LineHandle parent = breaks && random() % 20 == 0 ? random() % (tree.LineCount() + 1) : path.back();
      std::string text(random() % 70, 'x');
      for (char& c : text) c = static_cast<char>(' ' + random() % 95);
      if (random() % 10 == 0) text += "\n\x01\x7F\x80\xFF"[random() % 5];
      const auto length = static_cast<int32_t>(text.size());
      LineHandle line;
      LineStore& store = *tree.Lines();
      const uint32_t way = random() % 3;
      if (way == 0) {
        line = tree.Append({parent, text.c_str(), length, 9, i, false});
      } else if (way == 1 && store.HasRoom(1, 80) && !store.isLinked && tree.DepthOf(parent) < int32_t{LineStore::kDeepestPrinted}) {
        const LineStore::Begun begun = store.Begin(static_cast<uint32_t>(parent), 9, i);
        line = store.End(begun, begun.room + text.copy(begun.room, text.size()));
      } else {
        char* const room = tree.Lines()->Room(parent, 80);
        ASSERT_TRUE(room);
        std::memcpy(room, text.c_str(), text.size() + 1);
        line = tree.Lines()->Add(parent, room, static_cast<uint32_t>(length), 9, i);
      }
      EXPECT_EQ(tree.TextOf(line), text);
      EXPECT_EQ(tree.RangeIndex(line), i);
      path.push_back(line);
      while (random() % 8 < edits) {
        const LineHandle edited = random() % 2 ? line : 1 + random() % tree.LineCount();
        const std::string changed = std::string(tree.TextOf(edited)).substr(0, random() % 90) + std::string(random() % 30, 'e');
        tree.SetText(edited, changed.c_str(), static_cast<int32_t>(changed.size()));
        EXPECT_EQ(tree.TextOf(edited), changed);
      }
      if (breaks && random() % 30 == 0) {
        tree.Delete(line);
        path.pop_back();
      }
    }
    std::string printed;
    size_t others = 0;
    if (!PrintRuns(tree, &printed, &others)) continue;
    EXPECT_EQ(printed, PrintedByWalk(tree));
    ready += tree.LineCount() - others;
  }
  EXPECT_GT(ready, 6u * kRounds);
  EXPECT_FALSE(tree.Lines()->Room(tree.LineCount() + 1, 10));
}

TEST(ArenaTrees, GiveBackWhatManyFramesDoWithout) {
  ArenaTree tree;
  const LineStore& store = *tree.Lines();
  const auto fill = [&tree](uint32_t lines, size_t width) {
    tree.Clear();
    const std::string text(width, 'x');
    const LineHandle first = tree.Append({0, text.c_str(), static_cast<int32_t>(width), 9, 0, false});
    for (uint32_t i = 1; i < lines; ++i) {
      const LineHandle line = tree.Append({first, text.c_str(), static_cast<int32_t>(width), 9, i, false});
      if (i % 64 == 0) tree.SetText(line - 1, "edited", 6);
    }
    EXPECT_TRUE(tree.LastChild(0));
    std::string printed;
    size_t others = 0;
    EXPECT_TRUE(PrintRuns(tree, &printed, &others));
    EXPECT_EQ(printed, PrintedByWalk(tree));
    EXPECT_EQ(tree.LineCount(), lines);
  };
  for (int i = 0; i < 3; ++i) {
    fill(20000, 60);
    const uint32_t lines = store.capacity, text = store.textCapacity;
    EXPECT_GE(lines, 20000u);
    EXPECT_GE(text, 1u << 20);
    const auto wait = [&tree](uint32_t frames) {
      for (; frames > 0; --frames) {
        tree.Clear();
        tree.Append({0, "small", 5, 9, 0, false});
      }
    };
    wait(kFramesWithout - 1);
    EXPECT_EQ(store.capacity, lines) << "large frames among small ones move nothing";
    EXPECT_EQ(store.textCapacity, text);
    fill(20000, 60);   // the last small one is cleared
    wait(kFramesWithout + 1);
    fill(100, 40);
    EXPECT_EQ(store.capacity, kKeptLines);
    EXPECT_EQ(store.textCapacity, kKeptText);
    fill(10, 100000);   // few lines, much text
    EXPECT_EQ(store.capacity, kKeptLines);
    EXPECT_GT(store.textCapacity, kKeptText);
  }
}

}  // namespace
}  // namespace qxview::testing
