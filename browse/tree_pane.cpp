#include "browse/tree_pane.h"

#include <algorithm>

namespace qxview {
namespace {

constexpr int32_t kMostDepth = 200;   // trees are not as deep; a bound for the calls of one another
constexpr size_t kMostChoices = 1000;

}  // namespace

void TreePane::Take(View* view, ArenaTree* tree) {
  view_ = view;
  tree_ = tree;
  if (levels_) SetLevels(tree_->FirstChild(0), 0);
  if (!choices_.empty()) ApplyChoices(tree_->FirstChild(0), "", 0);
  Restore();
}

void TreePane::AddSeen(LineHandle first, int32_t depth) {
  for (LineHandle line = first; line; line = tree_->NextSibling(line)) {
    const LineHandle child = tree_->FirstChild(line);
    const bool isExpanded = child && tree_->IsExpanded(line);
    seen_.push_back({line, depth, child != 0, isExpanded});
    if (isExpanded && depth < kMostDepth) AddSeen(child, depth + 1);
  }
}

void TreePane::Refresh() {
  seen_.clear();
  AddSeen(tree_->FirstChild(0), 0);
  selected_ = std::min(selected_, seen_.empty() ? 0 : seen_.size() - 1);
}

// A line's name among its neighbours: its key, or the start of its text.
std::string TreePane::StepNameOf(LineHandle line) const {
  std::string key = KeyOf(line);
  if (!key.empty()) return key;
  key = TextOf(line);
  key.resize(std::min(key.find_first_of(":=0123456789"), key.size()));
  return key;
}

std::string TreePane::PathOf(LineHandle line) const {
  std::string path;
  for (LineHandle at = line; at; at = tree_->Parent(at)) path.insert(0, StepNameOf(at)).insert(0, 1, '/');
  return path;
}

void TreePane::ApplyChoices(LineHandle first, const std::string& path, int32_t depth) {
  constexpr int32_t kMostLines = 2000;   // under one line: those of long lists are alike
  int32_t lines = 0;
  for (LineHandle line = first; line && lines < kMostLines; line = tree_->NextSibling(line), ++lines) {
    const LineHandle child = tree_->FirstChild(line);
    if (!child) continue;
    const std::string here = path + "/" + StepNameOf(line);
    const auto choice = choices_.find(here);
    if (choice != choices_.end()) tree_->Expand(line, choice->second);
    if (depth < kMostDepth) ApplyChoices(child, here, depth + 1);
  }
}

// By index as far as there are lines, but rather to a neighbour with the key that was selected than to another one.
void TreePane::Restore() {
  LineHandle reached = 0;
  for (const Step& step : place_) {
    LineHandle at = 0, alike = 0;
    int32_t index = 0;
    for (LineHandle line = tree_->FirstChild(reached); line; line = tree_->NextSibling(line), ++index) {
      const bool isHere = index == step.index;
      if (isHere) at = line;
      if ((!alike || isHere) && StepNameOf(line) == step.key) alike = line;
      if (alike && index >= step.index) break;
    }
    if (!at && !alike) break;
    reached = alike ? alike : at;
  }
  const std::vector<Step> place = place_;
  Refresh();
  if (reached) SelectLine(reached);
  if (!reached) selected_ = 0;
  if (!place.empty()) place_ = place;   // a packet that has less does not make the place forgotten
}

void TreePane::RememberPlace() {
  place_.clear();
  for (LineHandle line = Selected(); line; line = tree_->Parent(line)) {
    int32_t index = 0;
    for (LineHandle at = tree_->FirstChild(tree_->Parent(line)); at && at != line; at = tree_->NextSibling(at)) ++index;
    place_.insert(place_.begin(), {index, StepNameOf(line)});
  }
}

void TreePane::Select(size_t index) {
  if (seen_.empty()) return;
  selected_ = std::min(index, seen_.size() - 1);
  RememberPlace();
}

void TreePane::SelectLine(LineHandle line) {
  bool opened = false;
  for (LineHandle at = tree_->Parent(line); at; at = tree_->Parent(at)) {
    opened |= !tree_->IsExpanded(at);
    tree_->Expand(at, true);
  }
  if (opened || seen_.empty()) Refresh();
  const auto found = std::find_if(seen_.begin(), seen_.end(), [&](const SeenLine& seen) { return seen.line == line; });
  if (found != seen_.end()) Select(static_cast<size_t>(found - seen_.begin()));
}

void TreePane::Expand(size_t index, bool expanded) {
  if (index >= seen_.size() || !seen_[index].hasChildren) return;
  const LineHandle line = seen_[index].line, selected = Selected();
  tree_->Expand(line, expanded);
  if (choices_.size() >= kMostChoices) choices_.clear();
  choices_[PathOf(line)] = expanded;
  Refresh();
  for (LineHandle at = selected; at; at = tree_->Parent(at)) {   // what was selected below goes up to what is still seen
    const auto found = std::find_if(seen_.begin(), seen_.end(), [&](const SeenLine& seen) { return seen.line == at; });
    if (found == seen_.end()) continue;
    return Select(static_cast<size_t>(found - seen_.begin()));
  }
}

void TreePane::MarkUnder(LineHandle line, bool expanded) {
  for (LineHandle child = tree_->FirstChild(line); child; child = tree_->NextSibling(child)) {
    if (!tree_->FirstChild(child)) continue;
    tree_->Expand(child, expanded);
    MarkUnder(child, expanded);
  }
}

void TreePane::ExpandUnder(size_t index, bool expanded) {
  if (index >= seen_.size()) return;
  MarkUnder(seen_[index].line, expanded);
  Expand(index, expanded);
}

void TreePane::SetLevels(LineHandle first, int32_t depth) {
  for (LineHandle line = first; line; line = tree_->NextSibling(line)) {
    const LineHandle child = tree_->FirstChild(line);
    if (!child) continue;
    tree_->Expand(line, depth + 1 < levels_);
    if (depth < kMostDepth) SetLevels(child, depth + 1);
  }
}

void TreePane::ShowLevels(int32_t levels) {
  levels_ = levels;
  choices_.clear();
  if (!tree_) return;
  const LineHandle selected = Selected();
  SetLevels(tree_->FirstChild(0), 0);
  Refresh();
  for (LineHandle at = selected; at; at = tree_->Parent(at)) {
    const auto found = std::find_if(seen_.begin(), seen_.end(), [&](const SeenLine& seen) { return seen.line == at; });
    if (found == seen_.end()) continue;
    return Select(static_cast<size_t>(found - seen_.begin()));
  }
}

size_t TreePane::ParentOf(size_t index) const {
  for (size_t at = index; at-- > 0;) {
    if (seen_[at].depth < seen_[index].depth) return at;
  }
  return index;
}

}  // namespace qxview
