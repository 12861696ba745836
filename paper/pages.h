// Lines on paper: how many of which length a page takes, and what stands on which page. Whoever draws them (a PDF file, a
// printer, a preview) has the same pages.
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qxview {

constexpr double kPointsPerMillimetre = 72 / 25.4;

struct PaperMargins {
  double left, top, right, bottom;
};
constexpr PaperMargins EqualMargins(double margin) { return {margin, margin, margin, margin}; }

// All in points.
struct PaperForm {
  double width = 595.28, height = 841.89;   // of a page as it is read, turned already: A4
  PaperMargins margins = EqualMargins(12 * kPointsPerMillimetre);
  double fontSize = 9;
  bool twoUp = false;                       // two pages on each sheet
};

// A character of the font, in which all are of one width, and from one line to the next.
struct CellSize {
  double width, height;
};

// What a page has room for between its head and its foot.
struct PageGrid {
  int32_t columns, rows;
};
constexpr int32_t kLeastColumns = 40, kLeastRows = 10;   // of a page that is worth printing
constexpr double kHeadLines = 2, kFootLines = 1.5;       // heights, in lines
PageGrid GridOf(const PaperForm& form, const CellSize& cell);

constexpr bool IsWorthPrinting(const PageGrid& grid) { return grid.columns >= kLeastColumns && grid.rows >= kLeastRows; }

// How a page looks, whoever draws it: heights in the font's size, from line to line, down to the letters' feet, and of the rule
// under the head in lines; levels of gray, 0 for black.
constexpr double kLineHeight = 1.22, kBaseline = 0.92, kRuleAt = 1.35, kRuleHeight = 0.5, kBandBeyond = 2;
constexpr double kBlack = 0.07, kGray = 0.35, kRule = 0.6, kBand = 0.91;

// A sheet of paper and where its pages stand, scaled from their upper left corners.
struct Sheet {
  struct Place {
    double x, y, scale;
  };
  double width, height;
  std::vector<Place> places;
};
Sheet SheetOf(const PaperForm& form);

enum class RowKind : uint8_t {
  kLine,
  kTitle,    // of a layer, or of columns
  kPacket,   // the first of a packet
};

struct PageRow {
  std::string text;   // UTF-8, a cell a character
  RowKind kind;
};

struct PrintedPacket {
  uint64_t number = 0;
  std::string time;
  std::string title;   // for a bookmark
};

struct Page {
  struct Start {
    std::string title;
    int32_t row;
  };
  int64_t number = 0;
  std::string capture, packets, time;   // the head: time is that of the first packet
  std::vector<PageRow> rows;
  std::vector<Start> starts;            // the packets that begin here
};

// Breaks lines at the margin, with their indent, and rows into pages. A line is not parted from the first one below it, nor
// a packet's first lines from one another. Holds a page.
class PageBreaker {
 public:
  // False ends the printing.
  using PutPage = std::function<bool(const Page& page)>;
  PageBreaker(const PageGrid& grid, PutPage put) : grid_(grid), put_(std::move(put)) {}

  void BeginCapture(const std::string& name);
  // A row that each page begins with; empty: none.
  void SetColumnTitles(const std::string& titles) { titles_ = titles; }
  // `apart`: with an empty row in front of it, but at the top of a page.
  void BeginPacket(const PrintedPacket& packet, bool apart);
  // Where the line is broken it goes on at the column `hang`, by itself four behind its own indent.
  void Put(std::string_view line, RowKind kind, int32_t hang = -1);
  // The last page; false when the printing was ended.
  bool Finish();
  bool IsEnded() const { return ended_; }
  int64_t Pages() const { return page_.number; }

 private:
  void Break(std::string_view line, RowKind kind, int32_t hang);
  void PutGroup();
  void PutRow(PageRow row);
  void EndPage();

  const PageGrid grid_;
  const PutPage put_;
  std::string titles_;
  Page page_;
  PrintedPacket packet_;
  uint64_t firstOnPage_ = 0;
  bool firstContinues_ = false;
  bool isApart_ = false;         // the packet wants a row in front of it
  bool hasStarted_ = true;       // something of the packet stands on a page
  std::vector<PageRow> group_;   // rows that stay on one page
  int32_t groupLines_ = 0, packetLines_ = 0, previousIndent_ = 0;
  bool ended_ = false;
};

}  // namespace qxview
