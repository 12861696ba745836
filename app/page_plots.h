// Plots of a page as SVG. Places across are in percent and texts in pixels, so that a plot fills whatever width it is given and
// its texts keep their size.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "app/page.h"
#include "app/protocol_tree.h"

namespace qxview {

struct PlotBar {
  double value;
  std::string about;   // UTF-8, shown when it is pointed at
  Source source;
};

struct PlotTick {
  double at;           // 0 to 1
  std::string text;
};

struct BarPlot {
  std::string about;   // for those who cannot see it
  std::vector<PlotBar> bars;
  std::vector<PlotTick> ticks;   // below
  std::function<std::string(double)> label;   // of what the height means
  int32_t height = 120;
  bool isWide = false;   // few bars, with gaps between them
};
std::string DrawBars(const BarPlot& plot);

// The round steps, 1, 2 or 5 times a power of ten, that divide 0 to `most` into up to `ticks`; at least `least`.
double RoundStep(double most, size_t ticks, double least);

// A bar beside others in a table: its parts of the longest one, the first darker.
std::string DrawParts(double first, double second);

struct HeatMap {
  std::string about;
  std::vector<std::string> names;   // of rows and columns, UTF-8
  struct Cell {
    uint64_t packets;
    std::string about;
    Source source;
  };
  std::vector<Cell> cells;          // row by row
};
std::string DrawHeatMap(const HeatMap& map);

// Protocols in one another: each as wide as its packets, under the one that it stands in.
std::string DrawIcicle(const ProtocolTree& tree, const std::function<Source(const std::string& path, const Traffic&)>& sourceOf);

}  // namespace qxview
