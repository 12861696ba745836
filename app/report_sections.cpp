#include "app/report_sections.h"

#include <algorithm>

#include "app/page_plots.h"
#include "files/capture_reader.h"
#include "host/time_text.h"

namespace qxview {
namespace {

using Kind = PageTable::Kind;

// "2026-11-21 11:15:31.004" of a time that a person reads.
std::string ClockText(int64_t nanoseconds) {
  char text[40];
  FormatUtcTime(nanoseconds, text, sizeof text);
  std::string made = text;
  if (const size_t zone = made.find('T'); zone != made.npos) made[zone] = ' ';
  return made.substr(0, made.find('.') + 4);
}

std::string TimeLiteral(int64_t nanoseconds) {
  char text[40];
  FormatUtcTime(nanoseconds, text, sizeof text);
  return std::string("\"") + text + "\"";
}

Source AllPackets(const ReportCounts& counts) { return {"", counts.all.packets}; }

// "LINKTYPE_LINUX_SLL2" as "Linux SLL2".
std::string MediumText(uint16_t linkType) {
  std::string name = LinkTypeName(linkType);
  if (name.starts_with("LINKTYPE_")) name.erase(0, 9);
  return name + " (link type " + std::to_string(linkType) + ")";
}

std::string Tile(const char* label, const std::string& html, const std::string& below) {
  return std::string("<div class=\"tile\"><dt>") + label + "</dt><dd>" + html + "</dd>" +
         (below.empty() ? "" : "<dd class=\"more\">" + below + "</dd>") + "</div>\n";
}

std::string GlanceSection(const ReportCounts& counts, const std::string& id) {
  const Traffic& all = counts.all;
  const int64_t duration = TimeBetween(counts.earliest, counts.latest);
  const double seconds = static_cast<double>(duration) / 1e9;
  const auto bytes = static_cast<double>(all.bytes);
  std::string html = "<dl class=\"tiles\">\n";
  html += Tile("Packets", CountFigure(all.packets, AllPackets(counts)),
               seconds > 0 ? RateText(static_cast<double>(all.packets) / seconds) + " per second" : "");
  html += Tile("On the wire", Figure(BytesText(bytes), AllPackets(counts)),
               seconds > 0 ? BytesText(bytes / seconds) + " per second" : CountText(all.bytes) + " bytes");
  html += Tile("Captured", BytesText(static_cast<double>(counts.captured)),
               counts.captured < all.bytes ? PercentText(counts.captured, all.bytes) + " of it" : "every byte");
  html += Tile("Duration", EscapeHtml(TimeText(duration)), "");
  html += Tile("Average size", BytesText(bytes / static_cast<double>(all.packets)), "per packet");
  html += Tile("Hosts", CountText(counts.hosts.All().size() + counts.hosts.Merged()),
               CountText(counts.conversations.All().size() + counts.conversations.Merged()) + " conversations");
  html += "</dl>\n<dl class=\"facts\"><dt>First packet</dt><dd>" + ClockText(counts.earliest) + " UTC</dd><dt>Last packet</dt><dd>" +
          ClockText(counts.latest) + " UTC</dd><dt>Media</dt><dd>";
  bool isFirst = true;
  for (const uint16_t linkType : counts.linkTypes) {
    html += (isFirst ? "" : ", ") + EscapeHtml(MediumText(linkType));
    isFirst = false;
  }
  return Section(id + "glance", "At a glance", html + "</dd></dl>\n");
}

// Packets and bytes, one plot over the other, by the same intervals.
std::string RateSection(const ReportCounts& counts, const std::string& id) {
  if (counts.latest == counts.first) return Section(id + "rate", "Rate over time", Empty("All packets carry the same time."));
  constexpr size_t kMostBars = 120, kMostTicks = 6;
  int64_t interval = 0;
  const std::vector<Traffic> bars = counts.rate.Rounded(kMostBars, &interval);
  const int64_t whole = interval * static_cast<int64_t>(bars.size());
  const std::string length = TimeText(interval), per = length.starts_with("1 ") ? length.substr(2) : length;
  BarPlot packets{"Packets per " + per, {}, {}, [](double n) { return CountText(static_cast<uint64_t>(n)); }};
  BarPlot bytes{"Bytes per " + per, {}, {}, [](double n) { return BytesText(n); }};
  for (size_t i = 0; i < bars.size(); ++i) {
    const int64_t start = TimeBehind(counts.first, interval * static_cast<int64_t>(i));
    const Source source{"frame.time >= " + TimeLiteral(start) + " and frame.time < " +
                            TimeLiteral(TimeBehind(start, interval)),
                        bars[i].packets};
    const std::string about = ClockText(start) + ", for " + length + ": " + CountText(bars[i].packets) +
                              " packets, " + BytesText(static_cast<double>(bars[i].bytes));
    packets.bars.push_back({static_cast<double>(bars[i].packets), about, source});
    bytes.bars.push_back({static_cast<double>(bars[i].bytes), about, source});
  }
  const int64_t step = RoundInterval(whole / static_cast<int64_t>(kMostTicks), interval);
  for (int64_t at = 0; at <= whole; at += step) {
    bytes.ticks.push_back({static_cast<double>(at) / static_cast<double>(whole), at ? TimeText(at) : "0"});
  }
  std::string html = "<p class=\"key\">Packets per " + EscapeHtml(per) + "</p>\n" + DrawBars(packets) +
                     "<p class=\"key\">Bytes per " + EscapeHtml(per) + "</p>\n" + DrawBars(bytes);
  if (counts.rate.Early()) {
    html += "<p class=\"note\">" + CountFigure(counts.rate.Early(), {"frame.time < " + TimeLiteral(counts.first), counts.rate.Early()}) +
            " packets are earlier than the first one and not drawn: the clock was set back.</p>\n";
  }
  return Section(id + "rate", "Rate over time", html);
}

// The way into the packet, as a filter asks for those that go it, whatever comes behind.
Source WaySource(const std::string& path, const Traffic& traffic) {
  std::string pattern;
  for (const char c : path) {
    if (c == '.' || c == '+' || c == '*') pattern += '\\';
    pattern += c;
  }
  return {"frame.protocols matches \"^" + pattern + "(:|$)\"", traffic.packets};
}

void AddProtocolRows(const ProtocolTree::Node& node, const ProtocolTree& tree, const std::string& path, size_t depth,
                     PageTable* table) {
  const Traffic& all = tree.Root().traffic;
  for (const auto* child : node.ByPackets()) {
    const auto& [name, under] = *child;
    const std::string way = path.empty() ? name : path + ":" + name;
    const Source source = WaySource(way, under.traffic);
    constexpr size_t kDeepest = 12;
    const double part = static_cast<double>(under.traffic.packets) / static_cast<double>(all.packets);
    table->Row({"<span class=\"i" + std::to_string(std::min(depth, kDeepest)) + "\">" + EscapeHtml(ProtocolTitle(name)) + "</span>",
                DrawParts(part, 0), CountFigure(under.traffic.packets, source), PercentText(under.traffic.packets, all.packets),
                Figure(BytesText(static_cast<double>(under.traffic.bytes)), source), CountText(under.last)});
    AddProtocolRows(under, tree, way, depth + 1, table);
  }
}

std::string ProtocolsSection(const ReportCounts& counts, const std::string& id) {
  constexpr size_t kShown = 16;
  PageTable table({{"Protocol", Kind::kText}, {"", Kind::kBar, true}, {"Packets"}, {"Share", Kind::kNumber, true}, {"Bytes"},
                   {"Innermost", Kind::kNumber, true}});
  AddProtocolRows(counts.protocols.Root(), counts.protocols, "", 0, &table);
  if (table.IsEmpty()) return Section(id + "protocols", "Protocols", Empty("No packet has a protocol that is decoded."));
  std::string html = DrawIcicle(counts.protocols, WaySource) + table.Html(kShown);
  if (!counts.protocols.IsWhole()) html += "<p class=\"note\">There are more ways into packets than are counted: the deepest are left out.</p>\n";
  return Section(id + "protocols", "Protocols", html);
}

std::string LengthsSection(const ReportCounts& counts, const std::string& id) {
  BarPlot plot{"Packets by their length in bytes", {}, {}, [](double n) { return CountText(static_cast<uint64_t>(n)); }, 120, true};
  const auto& from = ReportCounts::kLengthsFrom;
  for (size_t i = 0; i < from.size(); ++i) {
    const Traffic& traffic = counts.lengths[i];
    const bool isLast = i + 1 == from.size();
    std::string filter = "frame.length >= " + std::to_string(from[i]);
    if (!isLast) filter += " and frame.length < " + std::to_string(from[i + 1]);
    const std::string range = isLast ? std::to_string(from[i]) + " bytes and more" : std::to_string(from[i]) + " to " + std::to_string(from[i + 1] - 1) + " bytes";
    plot.bars.push_back({static_cast<double>(traffic.packets), range + ": " + CountText(traffic.packets) + " packets, " +
                                                                   PercentText(traffic.packets, counts.all.packets),
                         {filter, traffic.packets}});
    plot.ticks.push_back({static_cast<double>(i) / static_cast<double>(from.size()), std::to_string(from[i])});
  }
  return Section(id + "lengths", "Packet lengths", "<p class=\"key\">Packets by bytes on the wire</p>\n" + DrawBars(plot), false);
}

std::string NamesSection(const ReportCounts& counts, const std::string& id) {
  constexpr size_t kShown = 10;
  PageTable table({{"Address", Kind::kText}, {"Name", Kind::kText}, {"Told by", Kind::kText, true}, {"Packets"}});
  for (const LearntNames::Name& name : counts.names.ByPackets()) {
    table.Row({"<code>" + EscapeHtml(name.address) + "</code>", EscapeHtml(name.name), name.how, CountFigure(name.packets, {name.filter, name.packets})});
  }
  std::string html = table.IsEmpty() ? Empty("No packet tells the name of an address.") : table.Html(kShown);
  if (counts.names.LeftOut()) html += "<p class=\"note\">" + CountText(counts.names.LeftOut()) + " packets tell more names than are kept.</p>\n";
  return Section(id + "names", "Names learnt", html);
}

std::string ArticleHead(const ReportedCapture& capture, const std::string& id) {
  std::string title, files;
  for (const ReportedCapture::File& file : capture.files) {
    const size_t slash = file.name.find_last_of('/');
    title += (title.empty() ? "" : ", ") + EscapeHtml(slash == file.name.npos ? file.name : file.name.substr(slash + 1));
    files += "<li>" + EscapeHtml(file.name);
    if (file.size) files += " \xC2\xB7 " + BytesText(static_cast<double>(file.size));
    if (!file.digest.empty()) files += " \xC2\xB7 SHA-256 <code>" + file.digest + "</code>";
    files += "</li>\n";
  }
  std::string head = "<article id=\"" + id + "\" data-command=\"" + EscapeHtml(capture.command) + "\" data-where=\"" +
                     EscapeHtml(capture.where) + "\">\n<header><h1>" + title + "</h1>\n<ul class=\"files\">\n" + files + "</ul>\n";
  if (!capture.where.empty()) head += "<p class=\"note\">Only packets of which this is true: <code>" + EscapeHtml(capture.where) + "</code></p>\n";
  if (capture.isDamaged) head += "<p class=\"note strong\">The capture could not be read to its end: what came before is counted.</p>\n";
  return head + "</header>\n";
}

}  // namespace

std::string Section(const std::string& id, const char* title, const std::string& html, bool isWide) {
  return "<section id=\"" + id + "\"" + (isWide ? " class=\"wide\"" : "") + "><h2>" + title + "</h2>\n" + html + "</section>\n";
}

std::string Empty(const char* text) { return std::string("<p class=\"empty\">") + text + "</p>\n"; }

std::string ReportArticle(const ReportCounts& counts, const ReportedCapture& capture, size_t number) {
  const std::string name = "c" + std::to_string(number), id = name + "-";
  std::string html = ArticleHead(capture, name);
  if (counts.all.packets == 0) return html + Section(id + "glance", "At a glance", Empty("There is no packet.")) + "</article>\n";
  html += "<nav aria-label=\"Sections\">";
  constexpr std::pair<const char*, const char*> kSections[] = {
      {"trouble", "Trouble"}, {"rate", "Rate"}, {"protocols", "Protocols"}, {"hosts", "Hosts"}, {"conversations", "Conversations"},
      {"ports", "Ports"}, {"lengths", "Lengths"}, {"dns", "DNS"}, {"http", "HTTP"}, {"tcp", "TCP"}, {"names", "Names"}};
  for (const auto& [section, title] : kSections) html += "<a href=\"#" + id + section + "\">" + title + "</a>";
  html += "</nav>\n<div class=\"sections\">\n" + GlanceSection(counts, id) + TroubleSection(counts, id) + RateSection(counts, id) +
          ProtocolsSection(counts, id) + HostsSections(counts, id) + ConversationsSection(counts, id);
  // Two stacks beside one another, so that a short section leaves no hole.
  html += "<div class=\"stack\">" + PortsSection(counts, id) + ExchangeSection(counts.dns, "DNS", id + "dns") +
          "</div>\n<div class=\"stack\">" + LengthsSection(counts, id) + ExchangeSection(counts.http, "HTTP", id + "http") + "</div>\n" +
          TcpSection(counts, id) + NamesSection(counts, id);
  return html + "</div>\n</article>\n";
}

}  // namespace qxview
