// Records as data: CSV (RFC 4180), tab-separated values, or JSON, one object a line. What a spreadsheet would take for a formula
// is given as text.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "app/output.h"

namespace qxview {

class Command;

enum class RecordFormat { kCsv, kTsv, kJson };

class RecordWriter {
 public:
  RecordWriter(Output& out, RecordFormat format, std::vector<std::string> columns)
      : out_(out), format_(format), columns_(std::move(columns)) {}

  void PutHeader();   // the columns' names; nothing in JSON

  // A record's cells in the order of the columns, then its end.
  void PutText(std::string_view utf8);
  void PutNumber(std::string_view digits);
  void PutNothing();   // an empty cell, null in JSON
  // A cell of several: in JSON an array, else joined by the separator.
  struct Item {
    std::string text;   // UTF-8
    bool isNumber;
  };
  void PutItems(const std::vector<Item>& items, std::string_view separator);
  void EndRecord();

 private:
  void StartCell();
  void PutJsonString(std::string_view utf8);
  void PutCell(std::string_view text, bool isNumber);

  Output& out_;
  RecordFormat format_;
  std::vector<std::string> columns_;
  size_t column_ = 0;
};

// Takes "csv", "tsv" or "json".
bool TakeRecordFormat(const std::string& value, RecordFormat* format, std::string* wrong);

// A text in the characters of lines as UTF-8.
std::string ToUtf8(std::string_view lineText);

}  // namespace qxview
