// The tree pane of a packet view: which lines are seen, which one is selected, what its bytes are, and how that is found again
// in the next packet.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "browse/tree_lines.h"
#include "core/context.h"
#include "view/arena_tree.h"

namespace qxview {

struct SeenLine {
  LineHandle line;
  int32_t depth;     // from 0
  bool hasChildren, isExpanded;
};

class TreePane {
 public:
  // Another packet was decoded into the view's tree, expanded as the view's mask and the options of the levels have it. What
  // the user opened and closed stays so for lines of the same keys, and the selected line's place is looked for.
  void Take(View* view, ArenaTree* tree);

  const std::vector<SeenLine>& Lines() const { return seen_; }
  size_t SelectedIndex() const { return selected_; }
  LineHandle Selected() const { return seen_.empty() ? 0 : seen_[selected_].line; }
  void Select(size_t index);
  // Opens what the line is under.
  void SelectLine(LineHandle line);

  void Expand(size_t index, bool expanded);
  void ExpandUnder(size_t index, bool expanded);   // with everything below
  // Lines down to this level, 1 to 4 and beyond, are seen, deeper ones are not; the next packets' as well.
  void ShowLevels(int32_t levels);
  // The line that the one at this index is under; itself at the top.
  size_t ParentOf(size_t index) const;

  std::string TextOf(LineHandle line) const { return Any().TextOf(line); }
  FrameBytes BytesOf(LineHandle line) const { return Any().BytesOf(line); }
  LineHandle LineAt(int32_t offset) const { return Any().LineAt(offset); }
  std::string KeyOf(LineHandle line) const { return Any().KeyOf(line); }
  std::string FilterOf(LineHandle line) const { return Any().FilterOf(line); }
  std::string ValueOf(LineHandle line) const { return Any().ValueOf(line); }
  // The next line in the tree's order behind `from` (0: from the start) that holds the text, whether it is seen or not.
  LineHandle Find(const Literal& text, LineHandle from, bool backward) const { return Any().Find(text, from, backward); }

 private:
  struct Step {
    int32_t index;
    std::string key;
  };
  TreeLines Any() const { return {view_, tree_}; }   // seen or not
  void Refresh();
  void AddSeen(LineHandle first, int32_t depth);
  void Restore();
  void ApplyChoices(LineHandle first, const std::string& path, int32_t depth);
  std::string StepNameOf(LineHandle line) const;
  std::string PathOf(LineHandle line) const;
  void RememberPlace();
  void SetLevels(LineHandle first, int32_t depth);
  void MarkUnder(LineHandle line, bool expanded);

  View* view_ = nullptr;
  ArenaTree* tree_ = nullptr;
  std::vector<SeenLine> seen_;
  size_t selected_ = 0;
  std::vector<Step> place_;               // of the selected line, the outermost step first
  std::map<std::string, bool> choices_;   // what the user opened and closed, by the keys on the way there
  int32_t levels_ = 0;                    // 0: as the view has it
};

}  // namespace qxview
