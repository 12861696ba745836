#include "app/view/overlay.h"

#include <algorithm>

namespace qxview {
namespace {

struct Scrolled {
  size_t at;
  bool moved;
};

// What a key of movement makes of a place among `count`, with so many seen at once.
Scrolled Move(const Key& key, size_t at, size_t count, size_t page) {
  const size_t last = count ? count - 1 : 0;
  page = std::max<size_t>(page, 1);
  switch (key.code) {
    case kKeyUp: case 'k': return {at ? at - 1 : 0, true};
    case kKeyDown: case 'j': return {std::min(at + 1, last), true};
    case kKeyPageUp: return {at > page ? at - page : 0, true};
    case kKeyPageDown: case ' ': return {std::min(at + page, last), true};
    case kKeyHome: return {0, true};
    case kKeyEnd: return {last, true};
    case kKeyMouse:
      if (key.mouse == MouseDeed::kWheelUp) return {at > 3 ? at - 3 : 0, true};
      if (key.mouse == MouseDeed::kWheelDown) return {std::min(at + 3, last), true};
      return {at, false};
    default: return {at, false};
  }
}

bool IsClosing(int32_t code) { return code == 'q' || code == kKeyEscape; }

void DrawHead(Screen& screen, const std::string& title, const std::string& keys) {
  const int32_t width = screen.Columns(), bottom = screen.Rows() - 1;
  screen.Fill(0, 0, width, Style::kTitle);
  screen.PutUtf8(0, 0, " " + title, width, Style::kTitle);
  if (bottom == 0) return;
  screen.Fill(bottom, 0, width, Style::kBar);
  screen.PutUtf8(bottom, 0, " " + keys, width, Style::kBar);
}

std::string Lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
  return text;
}

}  // namespace

void TextOverlay::Draw(Screen& screen) {
  screen.Clear();
  DrawHead(screen, title_, isTyping_ ? "/" + wanted_ : keys_);
  for (int32_t row = 1; row < screen.Rows() - 1; ++row) {
    const size_t index = top_ + static_cast<size_t>(row - 1);
    if (index >= lines_.size()) break;
    const TextLine& line = lines_[index];
    const std::string_view text = line.text;
    const std::string_view shown = text.substr(std::min(text.size(), static_cast<size_t>(shift_)));
    if (line.isUtf8) screen.PutUtf8(row, 0, shown, screen.Columns(), line.style);
    else screen.Put(row, 0, shown, screen.Columns(), line.style);
  }
}

bool TextOverlay::Find(bool again) {
  const std::string wanted = Lower(wanted_);
  for (size_t i = 0; i < lines_.size(); ++i) {
    const size_t at = (top_ + (again ? 1 : 0) + i) % lines_.size();
    if (Lower(lines_[at].text).find(wanted) == std::string::npos) continue;
    top_ = at;
    return true;
  }
  return false;
}

bool TextOverlay::TakeKey(const Key& key, Screen& screen) {
  if (isTyping_) {
    if (key.code == kKeyEnter || key.code == kKeyEscape) isTyping_ = false;
    if (key.code == kKeyBackspace && !wanted_.empty()) wanted_.pop_back();
    if (key.code >= ' ' && key.code < 0x7F) wanted_ += static_cast<char>(key.code);
    if (!wanted_.empty()) Find(false);
    return true;
  }
  const Scrolled moved = Move(key, top_, lines_.size(), static_cast<size_t>(std::max(screen.Rows() - 3, 1)));
  top_ = moved.at;
  if (key.code == '/') isTyping_ = true, wanted_.clear();
  if (key.code == 'n' && !wanted_.empty()) Find(true);
  if (key.code == kKeyRight) shift_ += 8;
  if (key.code == kKeyLeft) shift_ = std::max(shift_ - 8, 0);
  return moved.moved || !IsClosing(key.code);
}

void MenuOverlay::Draw(Screen& screen) {
  const int32_t width = std::min(screen.Columns(), 60), rows = static_cast<int32_t>(choices_.size());
  const int32_t left = (screen.Columns() - width) / 2, top = std::max((screen.Rows() - rows - 1) / 2, 0);
  screen.Fill(top, left, width, Style::kTitle);
  screen.PutUtf8(top, left, " " + title_, width, Style::kTitle);
  const int32_t seen = std::max(screen.Rows() - top - 1, 1);
  const int32_t from = std::max(static_cast<int32_t>(selected_) - seen + 1, 0);
  for (int32_t i = from; i < rows && i - from < seen; ++i) {
    const Choice& choice = choices_[static_cast<size_t>(i)];
    const Style style = static_cast<size_t>(i) == selected_ ? Style::kSelected : Style::kBar;
    screen.Fill(top + 1 + i - from, left, width, style);
    screen.PutUtf8(top + 1 + i - from, left, std::string("  ") + NameOfKey(choice.key) + "  " + choice.about, width, style);
  }
}

bool MenuOverlay::TakeKey(const Key& key, Screen&) {
  for (const Choice& choice : choices_) {
    if (choice.key == key.code) return choice.take(), false;
  }
  if (key.code == kKeyEnter && selected_ < choices_.size()) return choices_[selected_].take(), false;
  const Scrolled moved = Move(key, selected_, choices_.size(), 5);
  selected_ = moved.at;
  return moved.moved || !IsClosing(key.code);
}

void TableOverlay::SetTable(std::string title, std::vector<Column> columns, std::vector<Row> rows) {
  title_ = std::move(title);
  if (columns.size() != columns_.size()) sorted_ = -1, selected_ = 0;
  columns_ = std::move(columns);
  rows_ = std::move(rows);
  Sort();
  widths_.assign(columns_.size(), 0);
  constexpr int32_t kMostWidth = 46;
  for (size_t i = 0; i < columns_.size(); ++i) {
    size_t widest = columns_[i].title.size();
    for (const Row& row : rows_) widest = std::max(widest, i < row.size() ? row[i].text.size() : 0);
    widths_[i] = std::min(static_cast<int32_t>(widest), kMostWidth);
  }
  selected_ = std::min(selected_, rows_.empty() ? 0 : rows_.size() - 1);
}

void TableOverlay::Sort() {
  if (sorted_ < 0) return;
  const auto column = static_cast<size_t>(sorted_);
  const bool isNumber = columns_[column].isNumber;
  std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& a, const Row& b) {
    return isNumber ? a[column].number > b[column].number : a[column].text < b[column].text;
  });
}

void TableOverlay::Draw(Screen& screen) {
  screen.Clear();
  DrawHead(screen, title_, KeysText());
  const int32_t width = screen.Columns(), seen = std::max(screen.Rows() - 3, 1);
  if (selected_ < top_) top_ = selected_;
  if (selected_ >= top_ + static_cast<size_t>(seen)) top_ = selected_ - static_cast<size_t>(seen) + 1;
  const auto put = [&](int32_t row, const auto& textOf, Style style) {
    screen.Fill(row, 0, width, style);
    int32_t at = 1;
    for (size_t i = 0; i < columns_.size() && at < width; ++i) {
      const std::string& text = textOf(i);
      const int32_t free = columns_[i].isNumber ? widths_[i] - static_cast<int32_t>(text.size()) : 0;
      screen.PutUtf8(row, at + std::max(free, 0), text, std::min(widths_[i], width - at), style);
      at += widths_[i] + 2;
    }
  };
  put(1, [&](size_t i) -> const std::string& { return columns_[i].title; }, Style::kBar);
  for (int32_t row = 0; row < seen && row + 2 < screen.Rows() - 1; ++row) {
    const size_t index = top_ + static_cast<size_t>(row);
    if (index >= rows_.size()) break;
    put(row + 2, [&](size_t i) -> const std::string& { return rows_[index][i].text; },
        index == selected_ ? Style::kSelected : Style::kPlain);
  }
}

bool TableOverlay::TakeKey(const Key& key, Screen& screen) {
  bool goesOn = true;
  if (TakeOwnKey(key.code, &goesOn)) return goesOn;
  if (key.code == kKeyEnter) return selected_ >= rows_.size() || Choose(rows_[selected_]);
  if (key.code == 's' && !columns_.empty()) {
    sorted_ = (sorted_ + 1) % static_cast<int32_t>(columns_.size());
    Sort();
  }
  if (key.code == kKeyMouse && (key.mouse == MouseDeed::kPress || key.mouse == MouseDeed::kDouble) && key.row >= 2) {
    const size_t index = top_ + static_cast<size_t>(key.row - 2);
    if (index < rows_.size()) selected_ = index;
    if (key.mouse == MouseDeed::kDouble && selected_ < rows_.size()) return Choose(rows_[selected_]);
    return true;
  }
  const Scrolled moved = Move(key, selected_, rows_.size(), static_cast<size_t>(std::max(screen.Rows() - 4, 1)));
  selected_ = moved.at;
  return moved.moved || !IsClosing(key.code);
}

}  // namespace qxview
