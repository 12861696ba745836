#include "app/view/prompt.h"

#include <algorithm>

#include "core/characters.h"

namespace qxview {
namespace {

bool GoesOn(char c) { return (static_cast<uint8_t>(c) & 0xC0) == 0x80; }   // a character of UTF-8

int32_t CellsOf(const std::string& text) {
  return static_cast<int32_t>(std::count_if(text.begin(), text.end(), [](char c) { return !GoesOn(c); }));
}

void AppendUtf8(uint32_t code, std::string* out) {
  if (code < 0x80) {
    *out += static_cast<char>(code);
    return;
  }
  const int32_t more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  static constexpr uint8_t kFirst[] = {0, 0xC0, 0xE0, 0xF0};
  *out += static_cast<char>(kFirst[more] | code >> (6 * more));
  for (int32_t i = more; i-- > 0;) *out += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
}

}  // namespace

size_t Prompt::WordStart() const {
  const size_t found = at_ ? text_.find_last_of(" ()!&|={},<>\"", at_ - 1) : text_.npos;
  return found == text_.npos ? 0 : found + 1;
}

// As far as all candidates agree; then one after another.
void Prompt::CompleteWord() {
  if (!complete_) return;
  if (candidates_.empty()) {
    wordStart_ = WordStart();
    const std::string word = text_.substr(wordStart_, at_ - wordStart_);
    candidates_ = complete_(word);
    candidate_ = 0;
    if (candidates_.empty()) return;
    std::string common = candidates_.front();
    for (const std::string& other : candidates_) {
      const auto differ = std::mismatch(common.begin(), common.end(), other.begin(), other.end());
      common.erase(differ.first, common.end());
    }
    const bool isLonger = common.size() > word.size();
    const bool isOnly = candidates_.size() == 1;
    if (isLonger || isOnly) {
      text_.replace(wordStart_, at_ - wordStart_, common);
      at_ = wordStart_ + common.size();
      if (isOnly) candidates_.clear();
      return Look();
    }
  } else {
    candidate_ = (candidate_ + 1) % candidates_.size();
  }
  text_.replace(wordStart_, at_ - wordStart_, candidates_[candidate_]);
  at_ = wordStart_ + candidates_[candidate_].size();
  Look();
}

void Prompt::Recall(int32_t step) {
  if (!before_) return;
  const int32_t next = recalled_ + step;
  if (next < -1 || next >= static_cast<int32_t>(before_->size())) return;
  if (recalled_ < 0) typed_ = text_;
  recalled_ = next;
  text_ = next < 0 ? typed_ : (*before_)[static_cast<size_t>(next)];
  at_ = text_.size();
  Look();
}

void Prompt::Look() {
  wrong_.clear();
  isRight_ = !check_ || text_.empty() || check_(text_, &wrong_);
}

bool Prompt::Accept() {
  std::string wrong;
  if (!take_(text_, &wrong)) {
    isRight_ = false;
    wrong_ = wrong;
    return true;
  }
  if (before_ && !text_.empty()) {
    before_->erase(std::remove(before_->begin(), before_->end(), text_), before_->end());
    before_->insert(before_->begin(), text_);
    constexpr size_t kMost = 50;
    if (before_->size() > kMost) before_->resize(kMost);
  }
  return false;
}

bool Prompt::TakeKey(const Key& key) {
  if (key.code == kKeyTab) return CompleteWord(), true;
  candidates_.clear();
  switch (key.code) {
    case kKeyEscape: return false;
    case kKeyEnter: return Accept();
    case kKeyUp: return Recall(1), true;
    case kKeyDown: return Recall(-1), true;
    case kKeyLeft:
      while (at_ > 0 && GoesOn(text_[--at_])) {}
      return true;
    case kKeyRight:
      if (at_ < text_.size()) ++at_;
      while (at_ < text_.size() && GoesOn(text_[at_])) ++at_;
      return true;
    case kKeyHome: case ControlKey('A'): return at_ = 0, true;
    case kKeyEnd: case ControlKey('E'): return at_ = text_.size(), true;
    case ControlKey('U'): text_.erase(0, at_), at_ = 0; break;
    case ControlKey('K'): text_.erase(at_); break;
    case ControlKey('W'): {
      const size_t from = WordStart();
      const size_t start = from < at_ ? from : at_ ? at_ - 1 : 0;
      text_.erase(start, at_ - start);
      at_ = start;
      break;
    }
    case kKeyBackspace: {
      if (at_ == 0) return true;
      size_t from = at_ - 1;
      while (from > 0 && GoesOn(text_[from])) --from;
      text_.erase(from, at_ - from);
      at_ = from;
      break;
    }
    case kKeyDelete: {
      size_t end = std::min(at_ + 1, text_.size());
      while (end < text_.size() && GoesOn(text_[end])) ++end;
      text_.erase(at_, end - at_);
      break;
    }
    default:
      if (key.code < ' ' || key.code >= kKeyUp || text_.size() > 16000) return true;
      std::string typed;
      AppendUtf8(static_cast<uint32_t>(key.code), &typed);
      text_.insert(at_, typed);
      at_ += typed.size();
  }
  recalled_ = -1;
  Look();
  return true;
}

void Prompt::Draw(Screen& screen, int32_t row) const {
  const int32_t width = screen.Columns();
  screen.Fill(row, 0, width, Style::kPlain);
  const int32_t titled = screen.PutUtf8(row, 0, title_ + " ", width * 2 / 3, Style::kTitle);
  const int32_t room = std::max(width - titled - 1, 1);
  size_t from = 0;   // so that the cursor is seen
  while (CellsOf(text_.substr(from, at_ - from)) > room) {
    ++from;
    while (from < text_.size() && GoesOn(text_[from])) ++from;
  }
  const Style style = text_.empty() || !check_ ? Style::kPlain : isRight_ ? Style::kGood : Style::kWrong;
  screen.PutUtf8(row, titled, text_.substr(from), room + 1, isRight_ ? style : Style::kWrong);
  screen.SetCursor(row, titled + CellsOf(text_.substr(from, at_ - from)));
  if (row == 0) return;
  if (!candidates_.empty()) {
    std::string shown;
    for (size_t i = candidate_; i < candidates_.size() && shown.size() < static_cast<size_t>(width); ++i) {
      shown += candidates_[i] + "  ";
    }
    screen.Fill(row - 1, 0, width, Style::kBar);
    screen.PutUtf8(row - 1, 0, std::to_string(candidates_.size()) + ": " + shown, width, Style::kBar);
  } else if (!wrong_.empty()) {
    screen.Fill(row - 1, 0, width, Style::kBar);
    screen.PutUtf8(row - 1, 0, wrong_.substr(0, wrong_.find('\n')), width, Style::kBar);
  }
}

}  // namespace qxview
