#include "app/record_writer.h"

#include "core/characters.h"
#include "core/digits.h"

namespace qxview {
namespace {

// What a spreadsheet runs as a formula when a cell starts with it.
bool StartsFormula(std::string_view text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text[0]) != std::string_view::npos;
}

}  // namespace

std::string ToUtf8(std::string_view lineText) {
  std::string text;
  char scratch[kMostUtf8Octets + 1];
  for (const char c : lineText) text += Utf8Of(static_cast<uint8_t>(c), scratch);
  return text;
}

void RecordWriter::PutHeader() {
  if (format_ == RecordFormat::kJson) return;
  for (const std::string& column : columns_) PutText(column);
  EndRecord();
}

void RecordWriter::StartCell() {
  if (format_ == RecordFormat::kJson) {
    out_.Put(column_ == 0 ? '{' : ',');
    PutJsonString(columns_[column_]);
    out_.Put(':');
  } else if (column_ > 0) {
    out_.Put(format_ == RecordFormat::kCsv ? ',' : '\t');
  }
  ++column_;
}

void RecordWriter::PutJsonString(std::string_view utf8) {
  out_.Put('"');
  for (size_t at = 0; at < utf8.size();) {
    const Utf8Character next =
        Utf8At(reinterpret_cast<const uint8_t*>(utf8.data()) + at, static_cast<int32_t>(utf8.size() - at));
    const uint8_t byte = static_cast<uint8_t>(utf8[at]);
    char scratch[kMostUtf8Octets + 1];
    if (next.octets == 0) {
      out_.Put(Utf8Of(byte, scratch));   // a byte of another encoding, as the lines have it
    } else if (byte < 0x20 || byte == 0x7F) {
      out_.Put("\\u00");
      out_.Put({kHexPairs + 2 * byte, 2});
    } else {
      if (byte == '"' || byte == '\\') out_.Put('\\');
      out_.Put(utf8.substr(at, static_cast<size_t>(next.octets)));
    }
    at += next.octets ? static_cast<size_t>(next.octets) : 1;
  }
  out_.Put('"');
}

// Behind StartCell; not in JSON.
void RecordWriter::PutCell(std::string_view text, bool isNumber) {
  const bool guarded = !isNumber && StartsFormula(text);
  if (format_ == RecordFormat::kTsv) {
    if (guarded) out_.Put('\'');
    for (const char c : text) {
      if (c == '\t' || c == '\n' || c == '\r' || c == '\\') out_.Put('\\');
      out_.Put(c == '\t' ? 't' : c == '\n' ? 'n' : c == '\r' ? 'r' : c);
    }
    return;
  }
  if (!guarded && text.find_first_of(",\"\r\n") == text.npos) return out_.Put(text);
  out_.Put('"');
  if (guarded) out_.Put('\'');
  for (const char c : text) {
    if (c == '"') out_.Put('"');
    out_.Put(c);
  }
  out_.Put('"');
}

void RecordWriter::PutText(std::string_view utf8) {
  StartCell();
  if (format_ == RecordFormat::kJson) {
    PutJsonString(utf8);
  } else {
    PutCell(utf8, false);
  }
}

void RecordWriter::PutNumber(std::string_view digits) {
  StartCell();
  if (format_ == RecordFormat::kJson) {
    out_.Put(digits);
  } else {
    PutCell(digits, true);
  }
}

void RecordWriter::PutNothing() {
  StartCell();
  if (format_ == RecordFormat::kJson) out_.Put("null");
}

void RecordWriter::PutItems(const std::vector<Item>& items, std::string_view separator) {
  StartCell();
  if (format_ == RecordFormat::kJson) {
    out_.Put('[');
    for (size_t i = 0; i < items.size(); ++i) {
      if (i > 0) out_.Put(',');
      if (items[i].isNumber) out_.Put(items[i].text); else PutJsonString(items[i].text);
    }
    return out_.Put(']');
  }
  std::string joined;
  for (size_t i = 0; i < items.size(); ++i) joined.append(i > 0 ? separator : "").append(items[i].text);
  PutCell(joined, items.size() == 1 && items[0].isNumber);
}

void RecordWriter::EndRecord() {
  column_ = 0;
  out_.Put(format_ == RecordFormat::kJson ? "}\n" : format_ == RecordFormat::kCsv ? "\r\n" : "\n");
}

bool TakeRecordFormat(const std::string& value, RecordFormat* format, std::string* wrong) {
  *format = value == "json" ? RecordFormat::kJson : value == "tsv" ? RecordFormat::kTsv : RecordFormat::kCsv;
  *wrong = "csv, tsv or json is wanted";
  return value == "csv" || value == "tsv" || value == "json";
}

}  // namespace qxview
