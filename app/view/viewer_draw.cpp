// How the panes look.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "app/colors.h"
#include "app/packet_protocol.h"
#include "app/record_writer.h"
#include "app/view/viewer.h"
#include "core/digits.h"
#include "core/lines.h"

namespace qxview {
namespace {

constexpr const char* kOwnColumns[] = {"number", "time", "source", "destination", "protocol", "length", "summary"};
constexpr const char* kTitles[] = {"No.", "Time", "Source", "Destination", "Proto", "Len", "Summary"};
constexpr size_t kMostRows = 4000;   // of the list that are kept

int32_t OwnColumn(const std::string& key) {
  for (int32_t i = 0; i < 7; ++i) {
    if (key == kOwnColumns[i]) return i;
  }
  return -1;
}
bool IsRight(const std::string& key) { return key == "number" || key == "time" || key == "length"; }

Style StyleOfPacket(const PacketRow& row) {
  static constexpr std::pair<std::string_view, Style> kStyles[] = {
      {kBoldRed, Style::kTrouble}, {kBlue, Style::kBlue},   {kGreen, Style::kGreen},    {kTeal, Style::kTeal},
      {kViolet, Style::kViolet},   {kBrown, Style::kBrown}, {kMagenta, Style::kMagenta}};
  const std::string_view color = ColorOfPacket(row.protocol, row.summary);
  for (const auto& [name, style] : kStyles) {
    if (color == name) return style;
  }
  return Style::kPlain;
}

Style StyleOfLine(int32_t image, bool isTop) {
  if (isTop) return Style::kLink;
  switch (image) {
    case LevelImage(2): return Style::kTeal;
    case LevelImage(3): return Style::kGreen;
    case LevelImage(4): return Style::kBrown;
    case LevelImage(5): return Style::kMagenta;
    case kBitFieldImage: return Style::kFaint;
    default: return Style::kPlain;
  }
}

}  // namespace

bool Viewer::TakeColumns(const std::string& spec, std::string* wrong) {
  std::vector<Column> columns;
  KeyQuery keys;
  for (size_t at = 0; at < spec.size();) {
    const size_t end = std::min(spec.find(' ', at), spec.size());
    std::string key = spec.substr(at, end - at);
    at = end + 1;
    if (key.empty()) continue;
    int32_t width = 0;
    if (const size_t colon = key.rfind(':'); colon != key.npos) {
      width = std::atoi(key.c_str() + colon + 1);
      key.resize(colon);
      if (width < 1 || width > 500) return *wrong = "behind the colon of a column is its width, from 1 to 500", false;
    }
    if (OwnColumn(key) < 0 && keys.Ask(key, wrong) < 0) return false;
    columns.push_back({key, width});
  }
  if (columns.empty()) return *wrong = "a list has at least one column", false;
  columns_ = std::move(columns);
  columnKeys_ = std::move(keys);
  cells_.clear();
  return true;
}

const Viewer::Cells& Viewer::CellsOf(uint64_t number) {
  const auto found = cells_.find(number);
  if (found != cells_.end() && (found->second.row.isKnown || capture_.Known() < number)) return found->second;
  if (cells_.size() > kMostRows) cells_.clear();
  Cells cells;
  capture_.ReadRow(number, &cells.row);
  if (columnKeys_.Count() > 0 && capture_.Asks(columnKeys_, number)) {
    for (int32_t i = 0; i < columnKeys_.Count(); ++i) {
      std::string text;
      constexpr size_t kLongest = 300;
      for (const AskedValue& value : columnKeys_.ValuesOf(i)) {
        if (text.size() < kLongest) text.append(text.empty() ? "" : ",").append(TextOfValue(value));
      }
      cells.extra.push_back(std::move(text));
    }
  }
  return cells_[number] = std::move(cells);
}

std::string Viewer::CellText(const Cells& cells, size_t column, uint64_t place) {
  const PacketRow& row = cells.row;
  switch (OwnColumn(columns_[column].key)) {
    case 0: return std::to_string(row.number);
    case 1: {
      PacketTimes times;
      times.now = times.first = times.before = times.shownBefore = row.nanoseconds;
      const TimeForm form = remembered_.time;
      if (form == TimeForm::kRelative) capture_.ReadTime(1, &times.first);
      if (form == TimeForm::kDelta && row.number > 1) capture_.ReadTime(row.number - 1, &times.before);
      if (form == TimeForm::kDeltaShown && place > 0) capture_.ReadTime(capture_.NumberAt(place - 1), &times.shownBefore);
      char text[ListTime::kSize];
      time_.Format(times, form < TimeForm::kEpoch || row.nanoseconds % 1000 == 0 ? 6 : 9, text);
      return text;
    }
    case 2: return row.source;
    case 3: return row.destination;
    case 4: return row.protocol;
    case 5: return std::to_string(row.length);
    case 6: return row.summary;
    default: break;
  }
  size_t extra = 0;
  for (size_t i = 0; i < column; ++i) extra += OwnColumn(columns_[i].key) < 0;
  return extra < cells.extra.size() ? cells.extra[extra] : "";
}

// As the rows that are seen want it; the summary, or else the last column, gets what is left.
std::vector<int32_t> Viewer::WidthsFor(const Rect& rect, uint64_t first, uint64_t count) {
  std::vector<int32_t> widths;
  size_t rest = columns_.size() - 1;
  int32_t used = 0;
  for (size_t i = 0; i < columns_.size(); ++i) {
    const Column& column = columns_[i];
    const int32_t own = OwnColumn(column.key);
    if (own == 6) rest = i;
    int32_t width = column.width;
    if (width == 0) {
      width = own >= 0 ? static_cast<int32_t>(std::strlen(kTitles[own])) : 6;
      for (uint64_t place = first; place < first + count; ++place) {
        const std::string text = CellText(CellsOf(capture_.NumberAt(place)), i, place);
        width = std::max(width, static_cast<int32_t>(text.size()));
      }
      const int32_t most = own == 2 || own == 3 ? std::max(rect.columns / 6, 9) : own == 4 ? 10 : own >= 0 ? 30 : 24;
      width = std::min(width, most);
    }
    widths.push_back(width);
    used += width + 1;
  }
  used -= widths[rest] + 1;
  widths[rest] = std::max(rect.columns - used, columns_[rest].width ? columns_[rest].width : 1);
  return widths;
}

void Viewer::Arrange() {
  const int32_t rows = screen_.Rows(), columns = screen_.Columns();
  const int32_t top = rows >= 8 ? 1 : 0, bottom = rows >= 2 ? rows - 1 : rows, room = bottom - top;
  for (Rect& rect : rects_) rect = Rect{};
  bool open[kPanes];
  constexpr int32_t kLeastRoom = 9;   // for more than one pane
  for (int32_t i = 0; i < kPanes; ++i) open[i] = open_[i] && !(zoomed_ || room < kLeastRoom);
  if (!open[0] && !open[1] && !open[2]) open[focus_] = true;
  constexpr int32_t kBytesWidth = 75, kLeastBeside = 120;
  const bool beside = remembered_.beside && open[kTreePane] && open[kBytesPane] && columns >= kLeastBeside;
  int32_t shares = 0, left = room, at = top;
  for (int32_t i = 0; i < kPanes; ++i) shares += open[i] && !(beside && i == kBytesPane) ? remembered_.shares[i] : 0;
  for (int32_t i = 0; i < kPanes; ++i) {
    if (!open[i] || (beside && i == kBytesPane)) continue;
    int32_t height = std::max(room * remembered_.shares[i] / std::max(shares, 1), 2);
    bool isLast = true;
    for (int32_t k = i + 1; k < kPanes; ++k) isLast &= !open[k] || (beside && k == kBytesPane);
    if (isLast) height = left;
    rects_[i] = {at, 0, std::min(height, left), columns};
    at += rects_[i].rows;
    left -= rects_[i].rows;
  }
  if (beside) {
    rects_[kBytesPane] = rects_[kTreePane];
    rects_[kTreePane].columns -= kBytesWidth;
    rects_[kBytesPane].column = rects_[kTreePane].columns;
    rects_[kBytesPane].columns = kBytesWidth;
  }
  if (rects_[focus_].rows == 0) {
    for (uint8_t i = 0; i < kPanes; ++i) {
      if (rects_[i].rows) focus_ = static_cast<Pane>(i);
    }
  }
}

void Viewer::DrawHead(const Rect& rect, Pane pane, const std::string& title) {
  const Style style = focus_ == pane ? Style::kTitle : Style::kBar;
  screen_.Fill(rect.row, rect.column, rect.columns, style);
  screen_.PutUtf8(rect.row, rect.column, (focus_ == pane ? ">" : " ") + title, rect.columns, style);
}

void Viewer::Draw() {
  Arrange();
  if (overlay_) {
    overlay_->Draw(screen_);
  } else {
    EnsureShown();
    screen_.Clear();
    if (rects_[kListPane].rows) DrawList(rects_[kListPane]);
    if (rects_[kTreePane].rows) DrawTree(rects_[kTreePane]);
    if (rects_[kBytesPane].rows) DrawBytes(rects_[kBytesPane]);
    if (screen_.Rows() >= 8) DrawBar();
    if (screen_.Rows() >= 2) DrawStatus();
  }
  screen_.HideCursor();
  if (prompt_) prompt_->Draw(screen_, screen_.Rows() - 1);
  screen_.Show();
}

void Viewer::DrawBar() {
  const int32_t columns = screen_.Columns();
  const PacketIndex& index = capture_.Index();
  screen_.Fill(0, 0, columns, Style::kBar);
  std::string text = " " + index.Name() + "  ";
  const std::string count = std::to_string(index.Count());
  text += capture_.IsFiltered() ? std::to_string(capture_.ShownCount()) + " of " + count + " packets" : count + " packets";
  if (!marks_.All().empty()) text += std::string(", ") + std::to_string(marks_.All().size()) + " marked";
  int32_t at = screen_.PutUtf8(0, 0, text, columns, Style::kBar);
  if (capture_.IsFiltered()) {
    at += screen_.PutUtf8(0, at, "  filter: ", columns - at, Style::kBar);
    screen_.PutUtf8(0, at, capture_.FilterText(), columns - at - 8, Style::kTitle);
  }
  screen_.PutUtf8(0, columns - 7, " ? help", 7, Style::kBar);
}

std::string Viewer::StatusText() const {
  if (!taskName_.empty()) return taskName_ + "; Esc ends it";
  const PacketIndex& index = capture_.Index();
  if (!index.IsCaughtUp()) {
    const int percent = index.Percent();
    return percent < 0 ? "reading" : std::string("reading ") + std::to_string(percent) + " %";
  }
  if (filterRuns_) return "filtering";
  if (capture_.Known() < index.Count() && index.Count()) {
    return "learning " + std::to_string(capture_.Known() * 100 / index.Count()) + " %";
  }
  if (!index.Fault().empty()) return index.Fault();
  return isLive_ && !index.IsComplete() ? (sticks_ ? "live, at the end" : "live") : "";
}

void Viewer::DrawStatus() {
  const int32_t row = screen_.Rows() - 1, columns = screen_.Columns();
  const std::string right = StatusText();
  const bool isFault = !right.empty() && right == capture_.Index().Fault();
  screen_.Fill(row, 0, columns, Style::kBar);
  int32_t room = columns;
  if (!right.empty()) {
    const int32_t length = std::min(static_cast<int32_t>(right.size()) + 1, note_.empty() ? columns / 2 + 8 : columns / 3);
    room = columns - length;
    screen_.PutUtf8(row, room, right, length, isFault ? Style::kWrong : Style::kTitle);
  }
  if (!note_.empty()) {
    screen_.PutUtf8(row, 0, " " + note_, room, noteIsWrong_ ? Style::kWrong : Style::kTitle);
    return;
  }
  if (capture_.ShownNumber() != number_ || tree_.Lines().empty()) return;
  const LineHandle line = tree_.Selected();
  const FrameBytes bytes = tree_.BytesOf(line);
  std::string text = tree_.KeyOf(line).insert(0, 1, ' ');
  if (bytes.length) {
    text += std::string("  bytes ") + std::to_string(bytes.offset);
    if (bytes.length > 1) text += std::string("-") + std::to_string(bytes.offset + bytes.length - 1);
    text += std::string(" (") + std::to_string(bytes.length) + ")";
  }
  screen_.Put(row, 0, text, room, Style::kBar);
}

void Viewer::DrawRow(const Rect& rect, int32_t row, uint64_t place, const std::vector<int32_t>& widths) {
  const uint64_t number = capture_.NumberAt(place);
  const Cells& cells = CellsOf(number);
  const bool isSelected = place == Place(), isMarked = marks_.Has(number);
  const Style style = isSelected  ? focus_ == kListPane ? Style::kSelected : Style::kSelectedElsewhere
                      : isMarked ? Style::kMarked
                                 : StyleOfPacket(cells.row);
  if (isSelected) screen_.Fill(row, rect.column, rect.columns, style);
  int32_t at = rect.column;
  for (size_t i = 0; i < columns_.size() && at < rect.columns; ++i) {
    const std::string text = CellText(cells, i, place);
    const bool right = IsRight(columns_[i].key);
    const int32_t free = right ? widths[i] - static_cast<int32_t>(text.size()) : 0;
    const bool isCalm = i + 1 < columns_.size() && columns_[i].key != "protocol" && !isSelected && !isMarked;
    screen_.Put(row, at + std::max(free, 0), text, std::min(widths[i], rect.columns - at), isCalm ? Style::kPlain : style);
    at += widths[i];
    if (i == 0 && isMarked) screen_.PutUtf8(row, at, "*", 1, style);
    ++at;
  }
}

void Viewer::DrawList(const Rect& rect) {
  const uint64_t count = capture_.ShownCount();
  const auto seen = static_cast<uint64_t>(std::max(rect.rows - 1, 1));
  const uint64_t place = Place();
  if (place < top_) top_ = place;
  if (place >= top_ + seen) top_ = place - seen + 1;
  if (count >= seen && top_ + seen > count) top_ = count - seen;
  if (count < seen) top_ = 0;
  const uint64_t rows = std::min(seen, count - std::min(top_, count));
  const std::vector<int32_t> widths = WidthsFor(rect, top_, rows);
  DrawHead(rect, kListPane, "");
  int32_t at = rect.column + 1;
  for (size_t i = 0; i < columns_.size() && at < rect.columns; ++i) {
    const int32_t own = OwnColumn(columns_[i].key);
    const std::string title = own >= 0 ? kTitles[own] : columns_[i].key;
    const int32_t free = IsRight(columns_[i].key) ? widths[i] - static_cast<int32_t>(title.size()) - (i == 0) : 0;
    screen_.PutUtf8(rect.row, at + std::max(free, 0) - (i ? 1 : 0), title, std::min(widths[i], rect.columns - at),
                    focus_ == kListPane ? Style::kTitle : Style::kBar);
    at += widths[i] + 1;
  }
  for (uint64_t i = 0; i < rows; ++i) DrawRow(rect, rect.row + 1 + static_cast<int32_t>(i), top_ + i, widths);
  if (count == 0 && rect.rows > 1) {
    const std::string fault = capture_.Index().Fault();
    const bool isMade = !filterRuns_ && capture_.Index().IsCaughtUp();
    const std::string told = !isMade ? "..." : fault.empty() ? "no packets" : fault;
    screen_.PutUtf8(rect.row + 1, rect.column + 1, told, rect.columns - 1, Style::kFaint);
  }
}

void Viewer::DrawTree(const Rect& rect) {
  DrawHead(rect, kTreePane, number_ ? std::string("Packet ") + std::to_string(number_) : "Tree");
  if (number_ == 0 || capture_.ShownNumber() != number_) return;
  const std::vector<SeenLine>& lines = tree_.Lines();
  const auto seen = static_cast<size_t>(std::max(rect.rows - 1, 1));
  const size_t selected = tree_.SelectedIndex();
  if (selected < treeTop_) treeTop_ = selected;
  if (selected >= treeTop_ + seen) treeTop_ = selected - seen + 1;
  if (treeTop_ + seen > lines.size()) treeTop_ = lines.size() > seen ? lines.size() - seen : 0;
  for (size_t i = 0; i < seen && treeTop_ + i < lines.size(); ++i) {
    const SeenLine& line = lines[treeTop_ + i];
    const int32_t row = rect.row + 1 + static_cast<int32_t>(i);
    const bool isSelected = treeTop_ + i == selected;
    const Style style = isSelected ? focus_ == kTreePane ? Style::kSelected : Style::kSelectedElsewhere
                                   : StyleOfLine(capture_.Tree().Tree().Image(line.line), line.depth == 0);
    if (isSelected) screen_.Fill(row, rect.column, rect.columns, style);
    const int32_t at = rect.column + std::min(2 * line.depth, rect.columns / 2);
    const char* sign = !line.hasChildren    ? " "
                       : screen_.HasUtf8() ? (line.isExpanded ? "\u25BE" : "\u25B8")
                                           : (line.isExpanded ? "-" : "+");
    screen_.PutUtf8(row, at, sign, 1, style);
    screen_.Put(row, at + 2, tree_.TextOf(line.line), rect.column + rect.columns - at - 2, style);
  }
}

void Viewer::DrawByteRow(const Rect& rect, int32_t row, int32_t offset, FrameBytes marked) {
  const FrameRecord* record = capture_.ShownRecord();
  const uint8_t* bytes = FrameData(record);
  const auto length = static_cast<int32_t>(record->capturedLength);
  const int32_t perRow = BytesInRow(rect);
  char text[16];
  std::snprintf(text, sizeof text, "%04X  ", static_cast<unsigned>(offset));
  int32_t at = rect.column;
  screen_.Put(row, at, text, rect.columns, Style::kFaint);
  at += 6;
  const auto styleOf = [&](int32_t i) {
    if (i == byte_) return Style::kSelected;
    return i >= marked.offset && i < marked.offset + marked.length ? Style::kBytes : Style::kPlain;
  };
  const int32_t right = rect.column + rect.columns;
  for (int32_t i = 0; i < perRow && offset + i < length; ++i) {
    const int32_t column = at + 3 * i + (i >= perRow / 2 ? 1 : 0);
    const Style style = styleOf(offset + i);
    if (column < right) screen_.Put(row, column, {kHexPairs + 2 * bytes[offset + i], 2}, right - column, style);
    const bool goesOn = style == Style::kBytes && i + 1 < perRow && styleOf(offset + i + 1) == style;
    const int32_t gap = std::min(i + 1 == perRow / 2 ? 2 : 1, right - column - 2);
    if (goesOn && gap > 0) screen_.Fill(row, column + 2, gap, style);
    const int32_t character = at + 3 * perRow + 2 + i;
    const uint8_t c = bytes[offset + i];
    const char shown = c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '.';
    const Style faint = style == Style::kPlain && shown == '.' ? Style::kFaint : style;
    if (character < right) screen_.Put(row, character, {&shown, 1}, 1, faint);
  }
}

void Viewer::DrawBytes(const Rect& rect) {
  const bool isShown = number_ && capture_.ShownNumber() == number_ && capture_.ShownRecord();
  const auto length = isShown ? static_cast<int32_t>(capture_.ShownRecord()->capturedLength) : 0;
  DrawHead(rect, kBytesPane, std::string("Bytes ") + std::to_string(length));
  if (!isShown) return;
  const FrameBytes marked = tree_.BytesOf(tree_.Selected());
  const int32_t perRow = BytesInRow(rect), seen = std::max(rect.rows - 1, 1), rows = (length + perRow - 1) / perRow;
  const int32_t wanted = (byte_ >= 0 ? byte_ : marked.offset) / perRow;
  const int32_t end = byte_ >= 0 || marked.length == 0 ? wanted : (marked.offset + marked.length - 1) / perRow;
  if (end >= bytesTop_ + seen) bytesTop_ = end - seen + 1;
  if (wanted < bytesTop_) bytesTop_ = wanted;
  if (wanted >= bytesTop_ + seen) bytesTop_ = wanted;
  bytesTop_ = std::clamp(bytesTop_, 0, std::max(rows - seen, 0));
  for (int32_t i = 0; i < seen && bytesTop_ + i < rows; ++i) DrawByteRow(rect, rect.row + 1 + i, (bytesTop_ + i) * perRow, marked);
}

}  // namespace qxview
