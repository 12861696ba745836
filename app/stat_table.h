// Tables of statistics: made once, shown for a person or as data.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "app/record_writer.h"

namespace qxview {

enum class StatFormat { kTable, kJson, kCsv };

class StatTable {
 public:
  struct Column {
    const char* name;    // of data: lower case
    const char* title;   // for a person
    bool isNumber;
  };
  struct Cell {
    std::string text;       // UTF-8
    double number = 0;      // what a column of numbers is sorted by
  };

  StatTable(std::string title, std::vector<Column> columns) : title_(std::move(title)), columns_(std::move(columns)) {}

  // A row's cells in the order of the columns; the row is added when it is full.
  StatTable& Text(std::string utf8);
  StatTable& Number(uint64_t number);
  StatTable& Seconds(int64_t nanoseconds);
  StatTable& Percent(uint64_t part, uint64_t whole);
  StatTable& Nothing();

  bool Has(const std::string& column) const;
  const std::vector<Column>& Columns() const { return columns_; }
  size_t Rows() const { return rows_.size(); }
  const std::string& Title() const { return title_; }
  const std::vector<std::vector<Cell>>& AllRows() const { return rows_; }
  // Largest first for numbers, texts by their characters; rows that are the same stay in their order.
  void Sort(const std::string& column);
  // Keeps the first rows.
  void Keep(size_t most) { if (rows_.size() > most) rows_.resize(most); }
  // A line under the table: what was merged, or left out.
  void Remark(std::string text) { remarks_.push_back(std::move(text)); }

  void Write(Output& out, StatFormat format, int32_t width) const;   // `width` of a terminal; 0: rows are not cut

 private:
  StatTable& Add(Cell cell);
  void WriteRows(Output& out, int32_t width) const;

  std::string title_;
  std::vector<Column> columns_;
  std::vector<std::vector<Cell>> rows_;
  std::vector<Cell> row_;
  std::vector<std::string> remarks_;
};

// Nanoseconds as seconds with six digits behind the point.
std::string SecondsText(int64_t nanoseconds);

}  // namespace qxview
