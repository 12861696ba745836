#include "tests/support/trees.h"

#include <cstdlib>

#ifdef _WIN32
#include <windows.h>

#include "platform/win32/tree_control.h"
#endif

namespace qxview::testing {

#ifdef _WIN32

// A tree view control in a window that is not shown. Making one takes a while, so one is kept for the next test.
struct TestTree::Control {
  Control() : window(spare ? spare : MakeWindow()), tree(window) { spare = nullptr; }
  ~Control() {
    tree.Clear();
    if (spare) DestroyTreeControl(spare);
    spare = window;
  }
  static void* MakeWindow() {
    const HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
    void* made = CreateTreeControl(parent);
    if (!made) {
      ADD_FAILURE() << "no tree view control: it needs a display";
      std::abort();
    }
    return made;
  }
  static inline void* spare = nullptr;
  void* window;
  TreeControl tree;
};

std::vector<TreeKind> TreeKinds() { return {TreeKind::kArena, TreeKind::kControl}; }

TestTree::TestTree(TreeKind kind) {
  if (kind == TreeKind::kArena) return;
  control_ = std::make_unique<Control>();
  tree_ = &control_->tree;
}

#else

struct TestTree::Control {};
std::vector<TreeKind> TreeKinds() { return {TreeKind::kArena}; }
TestTree::TestTree(TreeKind) {}

#endif

TestTree::~TestTree() = default;

std::string TreeName(const ::testing::TestParamInfo<TreeKind>& kind) {
  return kind.param == TreeKind::kArena ? "Arena" : "Control";
}

std::string TestTree::Text(LineHandle line) const {
  std::string text(2048, 0);
  text.resize(static_cast<size_t>(tree_->GetText(line, text.data(), static_cast<int32_t>(text.size()))));
  return text;
}

}  // namespace qxview::testing
