// The packet list as a person at a terminal sees it: columns as wide as the first screenful wants them, rows no wider
// than the terminal.
#pragma once
#include <array>
#include <string>
#include <vector>

#include "app/output.h"

namespace qxview {

enum ListColumn : size_t { kNumber, kTime, kSource, kDestination, kProtocol, kLength, kSummary, kListColumns };

struct ListRow {
  std::array<std::string, kListColumns> cells;   // characters of Windows-1252; an empty one is shown as "-"
  const char* color;                             // of protocol and summary, where there are colours
};

class ListTable {
 public:
  // `width` in columns, 0 for rows that are never cut; `rows` are looked at before the first is shown.
  ListTable(Output& out, int32_t width, int32_t rows, bool colors)
      : out_(out), width_(width), rows_(rows), colors_(colors) {}

  void Put(ListRow row);
  // Shows what is held back.
  void Show();

 private:
  void SetWidths();
  void ShareAddresses();
  void Write(const ListRow& row, const char* color);
  void PutHeader();

  Output& out_;
  const int32_t width_, rows_;
  const bool colors_;
  bool shown_ = false;
  int32_t gap_ = 2;
  std::array<int32_t, kListColumns> widths_{};
  std::vector<ListRow> held_;
};

}  // namespace qxview
