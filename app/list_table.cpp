#include "app/list_table.h"

#include <algorithm>

#include "app/colors.h"
#include "app/tree_writer.h"

namespace qxview {
namespace {

constexpr int32_t kNarrow = 100;          // below, columns stand one blank apart
constexpr int32_t kIPv4Width = 15;
constexpr int32_t kLeastSummary = 20;
constexpr int32_t kMostProtocol = 10;
constexpr const char* kTitles[kListColumns] = {"No.", "Time", "Source", "Destination", "Proto", "Len", "Summary"};
constexpr const char* kEllipsis = "\u2026";

bool IsRight(size_t column) { return column == kNumber || column == kTime || column == kLength; }

// The first of `text` that fits into so many cells, with an ellipsis where something is left out; its cells.
int32_t PutFitted(Output& out, std::string_view text, int32_t cells) {
  const int32_t whole = CellsOf(text);
  if (whole <= cells) return PutSafeText(out, text), whole;
  int32_t taken = 0;
  size_t length = 0;
  while (length < text.size() && taken + CellsOf(text.substr(length, 1)) < cells) {
    taken += CellsOf(text.substr(length++, 1));
  }
  PutSafeText(out, text.substr(0, length));
  if (cells > 0) out.Put(kEllipsis);
  return taken + (cells > 0 ? 1 : 0);
}

// The ends of an address tell more than its middle.
int32_t PutAddress(Output& out, std::string_view text, int32_t cells) {
  if (CellsOf(text) <= cells || cells < 3) return PutFitted(out, text, cells);
  const size_t tail = static_cast<size_t>(cells - 1) / 2;
  const int32_t head = PutFitted(out, text.substr(0, text.size() - tail), cells - static_cast<int32_t>(tail));
  PutSafeText(out, text.substr(text.size() - tail));
  return head + static_cast<int32_t>(tail);
}

void PutBlanks(Output& out, int32_t count) {
  for (; count > 0; --count) out.Put(' ');
}

}  // namespace

void ListTable::Put(ListRow row) {
  for (std::string& cell : row.cells) {
    if (cell.empty()) cell.push_back('-');
  }
  if (shown_) return Write(row, row.color);
  held_.push_back(std::move(row));
  if (static_cast<int32_t>(held_.size()) >= rows_) Show();
}

void ListTable::Show() {
  if (shown_ || held_.empty()) return;
  SetWidths();
  PutHeader();
  shown_ = true;
  for (const ListRow& row : held_) Write(row, row.color);
  held_.clear();
}

void ListTable::SetWidths() {
  for (size_t column = 0; column < kSummary; ++column) {
    int32_t widest = static_cast<int32_t>(std::string_view(kTitles[column]).size());
    for (const ListRow& row : held_) widest = std::max(widest, CellsOf(row.cells[column]));
    widths_[column] = widest;
  }
  // Numbers and times grow, and what is less than a screenful tells little of the addresses to come.
  widths_[kNumber] = std::max(widths_[kNumber], 4);
  widths_[kTime] = std::max(widths_[kTime], 9);
  if (static_cast<int32_t>(held_.size()) < rows_) {
    widths_[kSource] = std::max(widths_[kSource], kIPv4Width);
    widths_[kDestination] = std::max(widths_[kDestination], kIPv4Width);
  }
  if (width_ == 0) return;
  gap_ = width_ < kNarrow ? 1 : 2;
  widths_[kProtocol] = std::min(widths_[kProtocol], kMostProtocol);
  ShareAddresses();
}

// IPv4 addresses are shown whole where there is room for some summary; longer ones leave it two fifths of the width.
void ListTable::ShareAddresses() {
  int32_t rest = width_ - gap_ * static_cast<int32_t>(kSummary);
  for (const size_t column : {kNumber, kTime, kProtocol, kLength}) rest -= widths_[column];
  const int32_t room = std::max(rest - width_ * 2 / 5, std::min(2 * kIPv4Width, rest - kLeastSummary));
  int32_t& source = widths_[kSource];
  int32_t& destination = widths_[kDestination];
  if (source + destination <= room) return;
  const int32_t half = std::max(room / 2, 3);
  const int32_t wanted = std::min(source, std::max(half, room - destination));
  destination = std::min(destination, std::max(half, room - wanted));
  source = wanted;
}

void ListTable::PutHeader() {
  ListRow titles{{}, kNoColor};
  for (size_t column = 0; column < kListColumns; ++column) titles.cells[column] = kTitles[column];
  if (colors_) out_.Put(kBoldText);
  Write(titles, kNoColor);
  if (colors_) out_.Put(kPlainText);
}

void ListTable::Write(const ListRow& row, const char* color) {
  if (!colors_) color = kNoColor;
  int32_t at = 0;
  for (size_t column = 0; column < kSummary; ++column) {
    const std::string& cell = row.cells[column];
    if (IsRight(column)) widths_[column] = std::max(widths_[column], CellsOf(cell));
    const int32_t width = widths_[column];
    if (IsRight(column)) PutBlanks(out_, width - CellsOf(cell));
    if (column == kProtocol) out_.Put(color);
    int32_t cells;
    if (column == kSource || column == kDestination) {
      cells = PutAddress(out_, cell, width_ ? width : CellsOf(cell));
    } else {
      cells = PutFitted(out_, cell, width_ ? width : CellsOf(cell));
    }
    if (column == kProtocol && color[0]) out_.Put(kPlainText);
    if (!IsRight(column)) PutBlanks(out_, width - cells);
    PutBlanks(out_, gap_);
    at += std::max(width, cells) + gap_;
  }
  out_.Put(color);
  const std::string& summary = row.cells[kSummary];
  PutFitted(out_, summary, width_ ? std::max(width_ - at, 0) : CellsOf(summary));
  if (color[0]) out_.Put(kPlainText);
  out_.Put('\n');
}

}  // namespace qxview
