#include "paper/packet_pages.h"

#include <algorithm>
#include <iterator>

#include "core/frame_rows.h"
#include "core/safe_text.h"

namespace qxview {
namespace {

constexpr size_t kMostBookmark = 160;

// The columns of the list, which are those of `qxview list`; on a narrow page the protocol is left to the summary.
struct ListCell {
  const char* title;
  int32_t width;   // 0: the rest
  bool isNumber, isForWide;
};
constexpr ListCell kListCells[] = {{"No.", 6, true, false},          {"Time", 10, true, false},
                                   {"Source", 17, false, false},     {"Destination", 17, false, false},
                                   {"Protocol", 9, false, true},     {"Length", 6, true, false},
                                   {"Summary", 0, false, false}};
constexpr int32_t kWideColumns = 120;

int32_t CellsOfUtf8(std::string_view text) {
  return static_cast<int32_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// *hang: the column where the last one begins.
template <typename CellText>
std::string ListRowOf(bool isWide, CellText&& textOf, int32_t* hang) {
  std::string row;
  for (size_t i = 0; i < std::size(kListCells); ++i) {
    const ListCell& cell = kListCells[i];
    if (cell.isForWide && !isWide) continue;
    const std::string text = textOf(i);
    const std::string fill(static_cast<size_t>(std::max(cell.width - CellsOfUtf8(text), 0)), ' ');
    if (i > 0) row += "  ";
    if (cell.width == 0) *hang = CellsOfUtf8(row);
    row += cell.isNumber ? fill + text : text + fill;
  }
  return row.erase(row.find_last_not_of(' ') + 1);
}

// In UTF-8, without controls.
std::string Shown(std::string_view text) {
  std::string shown;
  PutSafely(text, [&shown](std::string_view piece) { shown += piece; });
  return shown;
}

}  // namespace

PacketPages::PacketPages(PageBreaker* breaker, const PageGrid& grid, const PaperParts& parts, bool tellsProtocols)
    : breaker_(breaker), parts_(parts), isWide_(tellsProtocols && grid.columns >= kWideColumns) {
  if (parts.HasListAlone()) breaker->SetColumnTitles(ListRowOf(isWide_, [](size_t i) { return kListCells[i].title; }, &hang_));
}

void PacketPages::Put(const PaperPacket& packet) {
  const std::string number = std::to_string(packet.number);
  breaker_->BeginPacket({packet.number, std::string(packet.time), number + "  " + Shown(packet.summary.substr(0, kMostBookmark))},
                        !parts_.HasListAlone());
  if (parts_.list) PutListRow(packet);
  if (parts_.tree) PutTree(packet.lines);
  if (parts_.bytes) PutBytes(packet);
}

void PacketPages::PutListRow(const PaperPacket& packet) {
  const std::string cells[] = {std::to_string(packet.number), std::string(packet.elapsed), Shown(packet.source),
                               Shown(packet.destination), Shown(packet.protocol), std::to_string(packet.length),
                               Shown(packet.summary)};
  static_assert(std::size(cells) == std::size(kListCells));
  if (parts_.HasListAlone()) {
    const std::string row = ListRowOf(isWide_, [&](size_t i) { return cells[i]; }, &hang_);
    return breaker_->Put(row, RowKind::kLine, hang_);
  }
  std::string row = cells[0];   // above a tree nothing stands below it in columns
  for (size_t i = 1; i < std::size(cells); ++i) {
    if (!cells[i].empty()) row += (i == 3 ? " -> " : "  ") + cells[i];
  }
  breaker_->Put(row, RowKind::kPacket);
}

void PacketPages::PutTree(std::string_view lines) {
  bool isFirst = !parts_.list;
  while (!lines.empty()) {
    const size_t end = std::min(lines.find('\n'), lines.size());
    std::string_view line = lines.substr(0, end);
    lines.remove_prefix(std::min(end + 1, lines.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const bool isTitle = !line.starts_with(' ');
    breaker_->Put(Shown(line), isFirst ? RowKind::kPacket : isTitle ? RowKind::kTitle : RowKind::kLine);
    isFirst = false;
  }
}

void PacketPages::PutBytes(const PaperPacket& packet) {
  constexpr std::string_view kIndent = "    ";
  const bool isFirst = !parts_.list && !parts_.tree;
  breaker_->Put(isFirst ? "Packet " + std::to_string(packet.number) + ":" : "Bytes:", isFirst ? RowKind::kPacket : RowKind::kTitle);
  for (int32_t at = 0; at < packet.captured; at += kFrameRowBytes) {
    char row[kFrameRowSize + kIndent.size()];
    std::copy(kIndent.begin(), kIndent.end(), row);
    const int32_t length =
        FormatFrameRow(row + kIndent.size(), at, packet.bytes + at, std::min<int32_t>(kFrameRowBytes, packet.captured - at));
    breaker_->Put({row, kIndent.size() + static_cast<size_t>(length)}, RowKind::kLine);
  }
}

}  // namespace qxview
