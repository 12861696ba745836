#include "app/view/viewer.h"

#include <algorithm>

#include "core/frame_record.h"

namespace qxview {

Viewer::Viewer(Screen& screen, ViewedCapture& capture, Remembered& remembered, int64_t input, bool isLive)
    : screen_(screen),
      capture_(capture),
      remembered_(remembered),
      input_(input),
      isLive_(isLive),
      sticks_(isLive),
      time_(remembered.time) {
  std::string wrong;
  if (!TakeColumns(remembered_.columns, &wrong)) TakeColumns(remembered_.columns = Remembered().columns, &wrong);
}

int Viewer::Run() {
  Work();
  while (!quits_) {
    if (isDirty_) Draw();
    isDirty_ = false;
    const bool busy = Work();
    constexpr int32_t kLookAgain = 200;   // for what a file has got meanwhile
    constexpr int32_t kPieces = 12;       // of work between two pictures of its progress
    Key key;
    const int64_t input = capture_.Index().IsComplete() ? -1 : input_;   // one that has ended is always ready
    bool got = screen_.ReadKey(&key, busy ? 0 : kLookAgain, input);
    for (int32_t i = 0; busy && !got && i < kPieces && screen_.Ended() == 0 && Work(); ++i) {
      got = screen_.ReadKey(&key, 0);
    }
    isDirty_ = isDirty_ || busy || got;
    for (; got && !quits_; got = screen_.ReadKey(&key, 0)) TakeKey(key);
    if (screen_.TakeInterrupt()) {
      isDirty_ = true;
      if (!task_ && !prompt_ && !overlay_) return 2;   // SIGINT
      task_ = nullptr;
      prompt_.reset();
      overlay_ = nullptr;
    }
    if (screen_.Ended()) return screen_.Ended();
  }
  return 0;
}

// A piece of everything that goes on beside; false when nothing does.
bool Viewer::Work() {
  const uint64_t count = capture_.ShownCount(), known = capture_.Known();
  bool busy = capture_.Work();
  if (task_) {
    busy = true;
    const auto step = task_;   // which may start another one
    const std::string name = taskName_;
    if (!step() && taskName_ == name) task_ = nullptr, taskName_.clear();
  }
  if (overlay_) busy |= overlay_->Work();
  const bool becameKnown = capture_.ShownNumber() == number_ && known < number_ && capture_.Known() >= number_;
  isDirty_ |= becameKnown || capture_.ShownCount() != count;
  FitFilter();
  const uint64_t shown = capture_.ShownCount();
  if (shown && (number_ == 0 || (sticks_ && shown != count))) Select(capture_.NumberAt(sticks_ ? shown - 1 : 0));
  return busy;
}

// When a filter is done, the selected packet is one that it lets through.
void Viewer::FitFilter() {
  if (!filterRuns_ || !capture_.IsFilterDone()) return;
  filterRuns_ = false;
  isDirty_ = true;
  const uint64_t count = capture_.ShownCount();
  if (count == 0) return Note("no packet is let through", true);
  Select(capture_.NumberAt(std::min(capture_.PlaceOf(number_), count - 1)));
}

uint64_t Viewer::Place() const {
  const uint64_t count = capture_.ShownCount();
  return count ? std::min(capture_.PlaceOf(number_), count - 1) : 0;
}

void Viewer::Select(uint64_t number) {
  if (number != number_) same_.reset(), byte_ = -1;
  number_ = number;
}

void Viewer::SelectPlace(uint64_t place) {
  const uint64_t count = capture_.ShownCount();
  if (count == 0) return;
  place = std::min(place, count - 1);
  sticks_ = isLive_ && place + 1 == count;
  Select(capture_.NumberAt(place));
}

void Viewer::Jump(uint64_t number) {
  if (number_) places_.Visit(number_);
  places_.Visit(number);
  sticks_ = false;
  Select(number);
}

// Decodes the selected packet, once more when what the packets in front teach is known by now.
void Viewer::EnsureShown() {
  if (number_ == 0) return;
  const bool isNew = capture_.ShownNumber() != number_;
  if (!isNew && (capture_.IsShownWhole() || capture_.Known() < number_)) return;
  if (!capture_.Show(number_)) return Note(std::string("packet ") + std::to_string(number_) + " cannot be read any more", true);
  tree_.Take(capture_.Tree().GetView(), &capture_.Tree().Tree());
}

int32_t Viewer::PageOf(Pane pane) const { return std::max(rects_[pane].rows - 2, 1); }

void Viewer::MoveList(int64_t by) {
  const uint64_t place = Place();
  SelectPlace(by < 0 && place < static_cast<uint64_t>(-by) ? 0 : place + static_cast<uint64_t>(by));
}

void Viewer::MoveTree(int64_t by) {
  EnsureShown();
  const auto at = static_cast<int64_t>(tree_.SelectedIndex()) + by;
  tree_.Select(static_cast<size_t>(std::max<int64_t>(at, 0)));
  byte_ = -1;
}

void Viewer::MoveBytes(int64_t by) {
  EnsureShown();
  if (!capture_.ShownRecord()) return;
  const int64_t from = byte_ >= 0 ? byte_ : tree_.BytesOf(tree_.Selected()).offset;
  const int64_t last = capture_.ShownRecord()->capturedLength - 1;
  SelectByte(static_cast<int32_t>(std::clamp<int64_t>(from + by, 0, std::max<int64_t>(last, 0))));
}

void Viewer::SelectByte(int32_t offset) {
  if (const LineHandle line = tree_.LineAt(offset)) tree_.SelectLine(line);
  byte_ = offset;
}

// Left and right; false where the pane does nothing with them.
bool Viewer::MoveAcross(int32_t code) {
  const bool right = code == kKeyRight || code == 'l';
  if (focus_ == kBytesPane) return MoveBytes(right ? 1 : -1), true;
  if (focus_ != kTreePane) return false;
  EnsureShown();
  const size_t at = tree_.SelectedIndex();
  if (at >= tree_.Lines().size()) return true;
  const SeenLine& line = tree_.Lines()[at];
  if (right) {
    if (line.hasChildren && line.isExpanded) tree_.Select(at + 1);
    else tree_.Expand(at, true);
  } else if (line.isExpanded) {
    tree_.Expand(at, false);
  } else {
    tree_.Select(tree_.ParentOf(at));
  }
  byte_ = -1;
  return true;
}

void Viewer::Move(const Key& key) {
  const auto move = [this](int64_t by) {
    if (focus_ == kListPane) MoveList(by);
    if (focus_ == kTreePane) MoveTree(by);
    if (focus_ == kBytesPane) MoveBytes(by * BytesInRow(rects_[kBytesPane]));
  };
  constexpr int64_t kFar = int64_t{1} << 40;
  switch (key.code) {
    case kKeyUp: case 'k': return move(-1);
    case kKeyDown: case 'j': return move(1);
    case kKeyPageUp: return move(-PageOf(focus_));
    case kKeyPageDown: return move(PageOf(focus_));
    case kKeyHome: return focus_ == kListPane ? SelectPlace(0) : move(-kFar);
    case kKeyEnd: return focus_ == kListPane ? SelectPlace(UINT64_MAX) : move(kFar);
    case kKeyLeft: case kKeyRight: case 'h': case 'l': MoveAcross(key.code); return;
    case kKeyMouse: return TakeMouse(key);
    default: break;
  }
}

void Viewer::TakeMouse(const Key& key) {
  if (key.mouse == MouseDeed::kRelease && pressedRow_ >= 0) {
    const int32_t by = pressedRow_ - key.row;
    pressedRow_ = -1;
    focus_ = pressed_;
    return by ? Resize(by) : void();
  }
  for (uint8_t i = 0; i < kPanes; ++i) {
    const Rect& rect = rects_[i];
    if (!rect.Holds(key.row, key.column)) continue;
    const auto pane = static_cast<Pane>(i);
    if (key.mouse == MouseDeed::kWheelUp || key.mouse == MouseDeed::kWheelDown) {
      constexpr int32_t kLines = 3;
      const int32_t by = key.mouse == MouseDeed::kWheelUp ? -kLines : kLines;
      if (pane == kListPane) return MoveList(by);
      if (pane == kTreePane) return MoveTree(by);
      return MoveBytes(by * BytesInRow(rect));
    }
    if (key.mouse == MouseDeed::kRelease) return;
    focus_ = pane;
    const int32_t row = key.row - rect.row - 1;
    if (row < 0) {
      pressed_ = pane;
      pressedRow_ = key.row;
      return;
    }
    if (pane == kListPane) return SelectPlace(top_ + static_cast<uint64_t>(row));
    if (pane == kTreePane) {
      const size_t index = treeTop_ + static_cast<size_t>(row);
      if (index >= tree_.Lines().size()) return;
      const SeenLine line = tree_.Lines()[index];
      tree_.Select(index);
      byte_ = -1;
      const bool isOnSign = key.column - rect.column < 2 * line.depth + 2;
      if (line.hasChildren && (isOnSign || key.mouse == MouseDeed::kDouble)) tree_.Expand(index, !line.isExpanded);
      return;
    }
    const int32_t perRow = BytesInRow(rect), half = perRow / 2;
    int32_t column = key.column - rect.column - 6;   // behind the offset
    const int32_t characters = 3 * perRow + 2;
    int32_t byte = column >= characters ? column - characters : column > 3 * half ? (column - 1) / 3 : column / 3;
    byte = std::clamp(byte, 0, perRow - 1);
    const int32_t offset = (bytesTop_ + row) * perRow + byte;
    if (capture_.ShownRecord() && offset < static_cast<int32_t>(capture_.ShownRecord()->capturedLength)) SelectByte(offset);
    return;
  }
}

void Viewer::TakeKey(const Key& key) {
  isDirty_ = true;
  if (key.code == kKeyResize) return;
  if (overlay_ && !prompt_) {
    if (!overlay_->TakeKey(key, screen_)) overlay_ = nullptr;
  } else if (prompt_) {
    Prompt prompt = std::move(*prompt_);   // what it does may ask for more
    prompt_.reset();
    const bool goesOn = prompt.TakeKey(key);
    if (goesOn && !prompt_) prompt_.emplace(std::move(prompt));
  } else {
    note_.clear();
    bool isTaken = false;
    for (const Action& action : Actions()) {
      if (std::find(action.keys.begin(), action.keys.end(), key.code) == action.keys.end()) continue;
      (this->*action.run)();
      isTaken = true;
      break;
    }
    if (!isTaken) Move(key);
  }
  if (opened_) overlay_ = std::move(opened_);
}

}  // namespace qxview
