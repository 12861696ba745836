#include "app/stat_table.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include "core/characters.h"
#include "host/text.h"

namespace qxview {
namespace {

constexpr size_t kGap = 2, kLeastText = 8;   // columns

size_t WidthOf(std::string_view utf8) {
  return static_cast<size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// The first `width` characters.
std::string_view CutTo(std::string_view utf8, size_t width) {
  size_t at = 0, characters = 0;
  for (; at < utf8.size(); ++at) {
    if ((static_cast<unsigned char>(utf8[at]) & 0xC0) == 0x80) continue;
    if (characters++ == width) break;
  }
  return utf8.substr(0, at);
}

}  // namespace

std::string SecondsText(int64_t nanoseconds) {
  char text[40];
  const uint64_t size = nanoseconds < 0 ? 0 - static_cast<uint64_t>(nanoseconds) : static_cast<uint64_t>(nanoseconds);
  std::snprintf(text, sizeof text, "%s%llu.%06llu", nanoseconds < 0 ? "-" : "",
                static_cast<unsigned long long>(size / 1000000000), static_cast<unsigned long long>(size / 1000 % 1000000));
  return text;
}

StatTable& StatTable::Add(Cell cell) {
  row_.push_back(std::move(cell));
  if (row_.size() == columns_.size()) {
    rows_.push_back(std::move(row_));
    row_.clear();
  }
  return *this;
}

StatTable& StatTable::Text(std::string utf8) { return Add({std::move(utf8), 0}); }
StatTable& StatTable::Number(uint64_t number) { return Add({std::to_string(number), static_cast<double>(number)}); }
StatTable& StatTable::Seconds(int64_t nanoseconds) { return Add({SecondsText(nanoseconds), static_cast<double>(nanoseconds)}); }
StatTable& StatTable::Nothing() { return Add({}); }

StatTable& StatTable::Percent(uint64_t part, uint64_t whole) {
  char text[16];
  const double percent = whole ? 100.0 * static_cast<double>(part) / static_cast<double>(whole) : 0;
  std::snprintf(text, sizeof text, "%.2f", percent);
  return Add({text, percent});
}

bool StatTable::Has(const std::string& column) const {
  return std::any_of(columns_.begin(), columns_.end(), [&](const Column& c) { return column == c.name; });
}

void StatTable::Sort(const std::string& column) {
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (column != columns_[i].name) continue;
    std::stable_sort(rows_.begin(), rows_.end(), [&](const auto& a, const auto& b) {
      return columns_[i].isNumber ? a[i].number > b[i].number : a[i].text < b[i].text;
    });
  }
}

// Text columns give way, the widest first, until a row fits.
void StatTable::WriteRows(Output& out, int32_t width) const {
  std::vector<size_t> widths;
  for (size_t i = 0; i < columns_.size(); ++i) {
    size_t widest = std::strlen(columns_[i].title);
    for (const auto& row : rows_) widest = std::max(widest, WidthOf(row[i].text));
    widths.push_back(widest);
  }
  while (width > 0) {
    const size_t all = std::accumulate(widths.begin(), widths.end(), kGap * (widths.size() - 1));
    size_t widest = columns_.size();
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (!columns_[i].isNumber && widths[i] > kLeastText && (widest == columns_.size() || widths[i] > widths[widest])) widest = i;
    }
    if (all <= static_cast<size_t>(width) || widest == columns_.size()) break;
    --widths[widest];
  }
  const auto put = [&](size_t i, std::string_view text, bool last) {
    const std::string shown = EscapeControls(CutTo(text, widths[i]));
    const size_t taken = std::min(WidthOf(shown), widths[i]);
    const std::string blanks(widths[i] - taken, ' ');
    if (columns_[i].isNumber) out.Put(blanks);
    out.Put(shown);
    if (!columns_[i].isNumber && !last) out.Put(blanks);
    out.Put(last ? "\n" : "  ");
  };
  for (size_t i = 0; i < columns_.size(); ++i) put(i, columns_[i].title, i + 1 == columns_.size());
  for (const auto& row : rows_) {
    for (size_t i = 0; i < columns_.size(); ++i) put(i, row[i].text, i + 1 == columns_.size());
  }
}

void StatTable::Write(Output& out, StatFormat format, int32_t width) const {
  if (format == StatFormat::kTable) {
    out.Put(title_);
    out.Put('\n');
    WriteRows(out, width);
    for (const std::string& remark : remarks_) {
      out.Put(remark);
      out.Put('\n');
    }
    return;
  }
  std::vector<std::string> names;
  for (const Column& column : columns_) names.push_back(column.name);
  RecordWriter writer(out, format == StatFormat::kCsv ? RecordFormat::kCsv : RecordFormat::kJson, std::move(names));
  writer.PutHeader();
  for (const auto& row : rows_) {
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (row[i].text.empty()) {
        writer.PutNothing();
      } else if (columns_[i].isNumber) {
        writer.PutNumber(row[i].text);
      } else {
        writer.PutText(row[i].text);
      }
    }
    writer.EndRecord();
  }
}

}  // namespace qxview
