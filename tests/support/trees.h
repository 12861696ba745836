// The decode trees that tests run over: the arena everywhere, on Windows the tree view control too.
#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "view/arena_tree.h"

namespace qxview::testing {

enum class TreeKind { kArena, kControl };

// What this system has. For ::testing::ValuesIn, with TreeName as the names of the cases.
std::vector<TreeKind> TreeKinds();
std::string TreeName(const ::testing::TestParamInfo<TreeKind>& kind);

class TestTree {
 public:
  explicit TestTree(TreeKind kind);
  ~TestTree();
  DecodeTree& operator*() const { return *tree_; }
  DecodeTree* operator->() const { return tree_; }
  std::string Text(LineHandle line) const;

 private:
  ArenaTree arena_;
  struct Control;
  std::unique_ptr<Control> control_;
  DecodeTree* tree_ = &arena_;
};

}  // namespace qxview::testing
