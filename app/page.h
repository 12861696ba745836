// Pieces of an HTML page: texts that cannot break out of it, numbers that lead to the packets they count, tables.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/packet_spans.h"

namespace qxview {

// UTF-8 as text or attribute of HTML. Controls are shown as \xNN; bytes that are no UTF-8, and characters that turn the
// direction of text, by the replacement character.
std::string EscapeHtml(std::string_view text);

std::string CountText(uint64_t count);          // "12,345"
std::string BytesText(double bytes);            // "1.23 MB", decimal units
std::string RateText(double count);             // "12,345", "1.23"
std::string TimeText(int64_t nanoseconds);      // "1.25 ms", "12.3 s", "2 h 05 min"
std::string PercentText(uint64_t part, uint64_t whole);
std::string PlainDecimal(double number);        // of SVG: at most three digits behind the point

// What a number was counted of: a filter, how many packets that gives; a filter that asks for the first ones alone says so.
struct Source {
  std::string filter;
  uint64_t packets = 0;
  bool isPart = false;
  static Source Of(const PacketSpans& spans) { return {spans.Filter(), spans.Held(), spans.Held() < spans.Count()}; }
};

// The attributes of an element that shows where its number comes from.
std::string SourceAttributes(const Source& source);
// A text, UTF-8, as such an element.
std::string Figure(std::string_view shown, const Source& source);
inline std::string CountFigure(uint64_t count, const Source& source) { return Figure(CountText(count), source); }

class PageTable {
 public:
  enum class Kind { kText, kNumber, kBar, kMark };
  struct Column {
    const char* title;
    Kind kind = Kind::kNumber;
    bool isExtra = false;   // left out where the page is narrow
  };
  explicit PageTable(std::vector<Column> columns) : columns_(std::move(columns)) {}
  void Row(const std::vector<std::string>& html);
  bool IsEmpty() const { return rows_ == 0; }
  // Rows behind the first ones are opened by the reader.
  std::string Html(size_t shown = SIZE_MAX) const;

 private:
  std::string Head() const;
  std::vector<Column> columns_;
  std::vector<std::string> html_;
  size_t rows_ = 0;
};

}  // namespace qxview
