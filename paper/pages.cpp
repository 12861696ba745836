#include "paper/pages.h"

#include <algorithm>
#include <cmath>

#include "core/characters.h"

namespace qxview {
namespace {

constexpr int32_t kFirstLines = 3;    // of a packet, that stay together
constexpr int32_t kMostGrouped = 8;   // lines
constexpr int32_t kHang = 4;
constexpr int32_t kLeastRest = 20;    // columns of a row that goes on with a line

int32_t IndentOf(std::string_view line) {
  return static_cast<int32_t>(std::min(line.find_first_not_of(' '), line.size()));
}

// Octets of the character at the text's beginning.
size_t FirstLength(std::string_view text) {
  const auto length = static_cast<int32_t>(std::min<size_t>(text.size(), 4));
  return static_cast<size_t>(std::max(Utf8At(reinterpret_cast<const uint8_t*>(text.data()), length).octets, 1));
}

// How much of the text a row of so many cells takes: all, or up to a blank in its last third, or as much as there is room for.
size_t RowLength(std::string_view text, int32_t cells) {
  size_t at = 0, blank = 0;
  for (int32_t cell = 0; at < text.size(); ++cell) {
    if (text[at] == ' ' && cell > cells * 2 / 3) blank = at;
    if (cell == cells) return blank > 0 ? blank : at;
    at += FirstLength(text.substr(at));
  }
  return at;
}

}  // namespace

PageGrid GridOf(const PaperForm& form, const CellSize& cell) {
  constexpr double kRounding = 1e-6;
  const double width = form.width - form.margins.left - form.margins.right;
  const double height = form.height - form.margins.top - form.margins.bottom - (kHeadLines + kFootLines) * cell.height;
  return {static_cast<int32_t>(std::floor(std::max(width, 0.0) / cell.width + kRounding)),
          static_cast<int32_t>(std::floor(std::max(height, 0.0) / cell.height + kRounding))};
}

// Two upright pages stand beside each other on a sheet that lies, two that lie above each other on one that stands.
Sheet SheetOf(const PaperForm& form) {
  if (!form.twoUp) return {form.width, form.height, {{0, 0, 1}}};
  Sheet sheet{form.height, form.width, {}};
  const bool beside = sheet.width > sheet.height;
  const double halfWidth = beside ? sheet.width / 2 : sheet.width, halfHeight = beside ? sheet.height : sheet.height / 2;
  const double scale = std::min(halfWidth / form.width, halfHeight / form.height);
  const double x = (halfWidth - scale * form.width) / 2, y = (halfHeight - scale * form.height) / 2;
  sheet.places = {{x, y, scale}, {beside ? x + halfWidth : x, beside ? y : y + halfHeight, scale}};
  return sheet;
}

void PageBreaker::BeginCapture(const std::string& name) {
  PutGroup();
  EndPage();
  page_.capture = name;
}

void PageBreaker::BeginPacket(const PrintedPacket& packet, bool apart) {
  PutGroup();
  packet_ = packet;
  isApart_ = apart;
  hasStarted_ = false;
  packetLines_ = 0;
}

void PageBreaker::Put(std::string_view line, RowKind kind, int32_t hang) {
  const int32_t indent = IndentOf(line);
  const bool joins = packetLines_ > 0 && (packetLines_ < kFirstLines || indent > previousIndent_);
  if (!joins || groupLines_ == kMostGrouped) PutGroup();
  Break(line, kind, hang >= 0 ? hang : indent + kHang);
  ++groupLines_;
  ++packetLines_;
  previousIndent_ = indent;
}

void PageBreaker::Break(std::string_view line, RowKind kind, int32_t hang) {
  const size_t length = RowLength(line, grid_.columns);
  group_.push_back({std::string(line.substr(0, length)), kind});
  if (kind == RowKind::kPacket) kind = RowKind::kTitle;
  hang = std::min(hang, grid_.columns - std::min(kLeastRest, grid_.columns / 2));
  for (line.remove_prefix(length); !line.empty();) {
    line.remove_prefix(static_cast<size_t>(IndentOf(line)));
    if (line.empty()) return;
    const size_t next = RowLength(line, grid_.columns - hang);
    group_.push_back({std::string(static_cast<size_t>(hang), ' ').append(line.substr(0, next)), kind});
    line.remove_prefix(next);
    if (group_.size() > static_cast<size_t>(grid_.rows)) PutGroup();
  }
}

void PageBreaker::PutGroup() {
  const size_t left = static_cast<size_t>(grid_.rows) - std::min(page_.rows.size(), static_cast<size_t>(grid_.rows));
  const size_t wanted = group_.size() + (isApart_ && !hasStarted_ ? 1 : 0);
  if (!page_.rows.empty() && wanted > left && group_.size() <= static_cast<size_t>(grid_.rows) / 2) EndPage();
  for (PageRow& row : group_) PutRow(std::move(row));
  group_.clear();
  groupLines_ = 0;
}

void PageBreaker::PutRow(PageRow row) {
  if (ended_) return;
  if (page_.rows.size() == static_cast<size_t>(grid_.rows)) EndPage();
  const bool isFirst = page_.rows.empty();
  if (isFirst && !titles_.empty()) page_.rows.push_back({titles_, RowKind::kTitle});
  if (isFirst) {
    firstOnPage_ = packet_.number;
    firstContinues_ = hasStarted_;
    page_.time = packet_.time;
  } else if (isApart_ && !hasStarted_) {
    page_.rows.push_back({"", RowKind::kLine});
    if (page_.rows.size() == static_cast<size_t>(grid_.rows)) return PutRow(std::move(row));
  }
  if (!hasStarted_) page_.starts.push_back({packet_.title, static_cast<int32_t>(page_.rows.size())});
  hasStarted_ = true;
  page_.rows.push_back(std::move(row));
  if (packet_.number == 0) return;
  page_.packets = firstOnPage_ == packet_.number ? "Packet " : "Packets ";
  page_.packets += std::to_string(firstOnPage_) + (firstContinues_ ? " (continued)" : "");
  if (firstOnPage_ != packet_.number) page_.packets += " to " + std::to_string(packet_.number);
}

void PageBreaker::EndPage() {
  if (page_.rows.empty() || ended_) return;
  ++page_.number;
  ended_ = !put_(page_);
  page_.rows.clear();
  page_.starts.clear();
}

bool PageBreaker::Finish() {
  PutGroup();
  EndPage();
  return !ended_;
}

}  // namespace qxview
