#include "app/page_plots.h"

#include <algorithm>
#include <cmath>

namespace qxview {
namespace {

std::string Percent(double part) { return PlainDecimal(part * 100) + "%"; }

std::string Start(const std::string& about, int32_t height) {
  return "<svg class=\"plot\" role=\"img\" aria-label=\"" + EscapeHtml(about) + "\" width=\"100%\" height=\"" + std::to_string(height) +
         "\">\n";
}

std::string Rect(const char* kind, double x, double y, double width, double height) {
  return std::string("<rect class=\"") + kind + "\" x=\"" + Percent(x) + "\" y=\"" + PlainDecimal(y) + "\" width=\"" + Percent(width) +
         "\" height=\"" + PlainDecimal(height) + "\"/>";
}

std::string Text(const std::string& classes, const std::string& x, double y, std::string_view text) {
  return "<text class=\"" + classes + "\" x=\"" + x + "\" y=\"" + PlainDecimal(y) + "\">" + EscapeHtml(text) + "</text>";
}

// What is pointed at: its marks, what it says, and where its number comes from.
std::string Group(const char* kind, const std::string& about, const Source& source, const std::string& marks) {
  return std::string("<g class=\"") + kind + "\"" + SourceAttributes(source) + "><title>" + EscapeHtml(about) + "</title>" + marks + "</g>\n";
}

}  // namespace

double RoundStep(double most, size_t ticks, double least) {
  const double wanted = std::max(most / static_cast<double>(ticks), least);
  double power = std::pow(10, std::floor(std::log10(wanted)));
  for (;; power *= 10) {
    for (const double step : {1.0, 2.0, 5.0}) {
      if (step * power >= wanted * (1 - 1e-9)) return step * power;
    }
  }
}

std::string DrawBars(const BarPlot& plot) {
  constexpr int32_t kAbove = 14, kBelow = 20;
  double most = 1;
  for (const PlotBar& bar : plot.bars) most = std::max(most, bar.value);
  const double step = RoundStep(most, 3, 1), top = std::ceil(most / step - 1e-9) * step;
  const auto yOf = [&](double value) { return kAbove + plot.height * (1 - value / top); };
  const int32_t height = kAbove + plot.height + kBelow;
  std::string axis = "<svg class=\"axis\" width=\"52\" height=\"" + std::to_string(height) + "\" aria-hidden=\"true\">\n";
  std::string svg = Start(plot.about, height);
  for (double value = step; value <= top * (1 + 1e-9); value += step) {
    const double y = std::round(yOf(value));
    svg += "<line class=\"grid\" x1=\"0\" x2=\"100%\" y1=\"" + PlainDecimal(y + 0.5) + "\" y2=\"" + PlainDecimal(y + 0.5) + "\"/>\n";
    axis += Text("tick e", "45", y + 4, plot.label(value)) + "\n";
  }
  const double width = 1.0 / static_cast<double>(std::max<size_t>(plot.bars.size(), 1)), gap = width * (plot.isWide ? 0.12 : 0.06);
  for (size_t i = 0; i < plot.bars.size(); ++i) {
    const PlotBar& bar = plot.bars[i];
    if (bar.value <= 0) continue;
    const double x = static_cast<double>(i) * width;
    const double rise = std::max(plot.height * bar.value / top, 1.5);
    svg += Group("bar", bar.about, bar.source,
                 Rect("hit", x, kAbove, width, plot.height) +
                     Rect("v", x + gap / 2, kAbove + plot.height - rise, width - gap, rise));
  }
  const std::string base = PlainDecimal(kAbove + plot.height + 0.5);
  svg += "<line class=\"base\" x1=\"0\" x2=\"100%\" y1=\"" + base + "\" y2=\"" + base + "\"/>\n";
  for (const PlotTick& tick : plot.ticks) {
    const char* anchor = tick.at < 0.02 ? "tick" : tick.at > 0.96 ? "tick e" : "tick m";
    svg += Text(anchor, Percent(tick.at), kAbove + plot.height + 15, tick.text) + "\n";
  }
  return "<div class=\"chart\">" + axis + "</svg>\n" + svg + "</svg></div>\n";
}

std::string DrawParts(double first, double second) {
  return "<svg class=\"parts\" width=\"100%\" height=\"10\" aria-hidden=\"true\">" + Rect("v", 0, 0, first, 10) +
         Rect("w", first, 0, second, 10) + "</svg>";
}

std::string DrawHeatMap(const HeatMap& map) {
  constexpr double kNames = 0.36, kRow = 24, kHead = 20;
  const size_t count = map.names.size();
  const double cell = (1 - kNames) / static_cast<double>(count);
  uint64_t most = 1;
  for (const HeatMap::Cell& one : map.cells) most = std::max(most, one.packets);
  std::string svg = Start(map.about, static_cast<int32_t>(kHead + kRow * static_cast<double>(count)));
  for (size_t row = 0; row < count; ++row) {
    const double y = kHead + kRow * static_cast<double>(row);
    const std::string number = std::to_string(row + 1);
    svg += Text("tick m", Percent(kNames + cell * (static_cast<double>(row) + 0.5)), kHead - 6, number);
    svg += Text("tick e", "16", y + 16, number);
    svg += "<svg x=\"22\" y=\"" + PlainDecimal(y) + "\" width=\"" + Percent(kNames - 0.07) + "\" height=\"" + PlainDecimal(kRow) + "\">" +
           Text("name", "0", 16, map.names[row]) + "<title>" + EscapeHtml(map.names[row]) + "</title></svg>\n";
    for (size_t column = 0; column < count; ++column) {
      const HeatMap::Cell& one = map.cells[row * count + column];
      const double x = kNames + cell * static_cast<double>(column);
      if (one.packets == 0) {
        svg += Rect("none", x + cell * 0.04, y + 1, cell * 0.92, kRow - 2) + "\n";
        continue;
      }
      // Shades by the logarithm: a few large conversations would leave all others pale.
      const double shade = std::log(static_cast<double>(one.packets) + 1) / std::log(static_cast<double>(most) + 1);
      const int32_t level = std::clamp(static_cast<int32_t>(std::ceil(shade * 5)), 1, 5);
      const std::string kind = "v s" + std::to_string(level);
      svg += Group("cell", one.about, one.source, Rect(kind.c_str(), x + cell * 0.04, y + 1, cell * 0.92, kRow - 2));
    }
  }
  return svg + "</svg>\n";
}

std::string DrawIcicle(const ProtocolTree& tree, const std::function<Source(const std::string& path, const Traffic&)>& sourceOf) {
  constexpr double kRow = 27, kLeast = 0.002;
  constexpr size_t kLevels = 8;
  const auto whole = static_cast<double>(tree.Root().traffic.packets);
  std::string rects;
  size_t deepest = 0;
  const std::function<void(const ProtocolTree::Node&, const std::string&, double, size_t)> draw =
      [&](const ProtocolTree::Node& node, const std::string& path, double x, size_t level) {
        if (level == kLevels) return;
        for (const auto* child : node.ByPackets()) {
          const auto& [name, under] = *child;
          const double width = static_cast<double>(under.traffic.packets) / whole;
          if (width < kLeast) continue;   // too narrow to be seen; the table has it
          const std::string way = path.empty() ? name : path + ":" + name;
          const double y = kRow * static_cast<double>(level);
          const std::string kind = "v l" + std::to_string(level % 4);
          const std::string title = ProtocolTitle(name);
          std::string marks = Rect(kind.c_str(), 0, 0.5, 1, kRow - 1);
          constexpr double kCharacter = 0.0085;   // of the width of a page that is not wide
          if (width > kCharacter * static_cast<double>(title.size())) marks += Text("in", "5", 18, title);
          rects += "<svg x=\"" + Percent(x) + "\" y=\"" + PlainDecimal(y) + "\" width=\"" + Percent(width) + "\" height=\"" +
                   PlainDecimal(kRow) + "\">" +
                   Group("cell", title + ": " + CountText(under.traffic.packets) + " packets, " +
                                     PercentText(under.traffic.packets, tree.Root().traffic.packets) + ", " +
                                     BytesText(static_cast<double>(under.traffic.bytes)),
                         sourceOf(way, under.traffic), marks) +
                   "</svg>";
          deepest = std::max(deepest, level + 1);
          draw(under, way, x, level + 1);
          x += width;
        }
      };
  draw(tree.Root(), "", 0, 0);
  return Start("Protocols by packets, each under the one that carries it", static_cast<int32_t>(kRow * static_cast<double>(deepest))) +
         rects + "</svg>\n";
}

}  // namespace qxview
