// What went wrong, and how long answers took, on a report's page.
#include <algorithm>

#include "app/page_plots.h"
#include "app/report_sections.h"

namespace qxview {
namespace {

using Kind = PageTable::Kind;

struct WeightText {
  const char *mark, *title;
};
constexpr WeightText kWeights[] = {{"\xE2\x96\xB2", "fault"}, {"\xE2\x97\x86", "warning"}, {"\xE2\x97\x8B", "note"}};

std::string WeightHtml(Weight weight) {
  const WeightText& text = kWeights[static_cast<size_t>(weight)];
  return std::string("<span class=\"weight ") + text.title + "\"><b aria-hidden=\"true\">" + text.mark + "</b> " + text.title + "</span>";
}

struct Trouble {
  Weight weight;
  std::string title, about;   // HTML
  uint64_t count;
  Source source;
  uint64_t first;             // packet; 0: not told
};

void AddOwners(const ReportCounts& counts, std::vector<Trouble>* all) {
  for (const auto& [address, owners] : counts.owners.Shared()) {
    uint64_t packets = 0;
    std::string claims;
    for (const auto& [hardware, count] : owners) {
      packets += count;
      claims += (claims.empty() ? "" : ", ") + ("<code>" + EscapeHtml(hardware) + "</code> ") +
                CountFigure(count, {"arp.source_ip_address == " + AddressLiteral(address) + " and arp.source_hardware_address == " + AddressLiteral(hardware), count});
    }
    all->push_back({Weight::kWarning, "Address claimed by several stations", "<code>" + EscapeHtml(address) + "</code> by " + claims, packets,
                    {"arp.source_ip_address == " + AddressLiteral(address), packets}, 0});
  }
}

std::vector<Trouble> TroubleOf(const ReportCounts& counts) {
  std::vector<Trouble> all;
  for (const Findings::Count& found : counts.findings.All()) {
    if (found.packets == 0) continue;
    all.push_back({found.row->weight, EscapeHtml(found.row->title), EscapeHtml(found.row->about), found.packets,
                   {found.row->filter, found.packets}, found.first});
  }
  const auto add = [&](Weight weight, const char* title, const char* about, const PacketSpans& spans) {
    if (spans.Count()) all.push_back({weight, title, about, spans.Count(), Source::Of(spans), spans.First()});
  };
  add(Weight::kWarning, "TCP segments sent again", "retransmissions: loss, or acknowledgements that came late", counts.again);
  add(Weight::kWarning, "TCP segments missing", "lost on their way, or not captured", counts.missing);
  add(Weight::kNote, "TCP segments out of order", "they fill gaps that were there before", counts.outOfOrder);
  add(Weight::kWarning, "Connection attempts without an answer", "nobody took up the handshake", counts.unanswered);
  add(Weight::kWarning, "DNS queries without an answer", "within the capture", counts.dns.Unanswered());
  add(Weight::kNote, "HTTP requests without an answer", "within the capture, or answered in encrypted form", counts.http.Unanswered());
  AddOwners(counts, &all);
  std::stable_sort(all.begin(), all.end(), [](const Trouble& a, const Trouble& b) {
    return a.weight != b.weight ? a.weight < b.weight : a.count > b.count;
  });
  return all;
}

std::string PacketFigure(uint64_t number) {
  return Figure(CountText(number), {"frame.number == " + std::to_string(number), 1});
}

std::string CountOrZero(uint64_t count) { return count ? CountText(count) : "<span class=\"zero\">0</span>"; }

std::string ServersTable(const Exchanges& exchanges) {
  using Entry = std::pair<const std::string, Exchanges::Server>;
  std::vector<const Entry*> servers;
  for (const Entry& server : exchanges.Servers()) servers.push_back(&server);
  std::stable_sort(servers.begin(), servers.end(), [](const Entry* a, const Entry* b) {
    return a->second.requests + a->second.answers > b->second.requests + b->second.answers;
  });
  PageTable table({{"Server", Kind::kText}, {"Asked"}, {"Answered"}, {"Least", Kind::kNumber, true}, {"Average"}, {"Most", Kind::kNumber, true}});
  for (size_t i = 0; i < servers.size() && i < 100; ++i) {
    const auto& [address, server] = *servers[i];
    const std::string literal = AddressLiteral(address);
    table.Row({"<code>" + EscapeHtml(address) + "</code>",
               CountFigure(server.requests, {std::string(exchanges.Filters().request) + " and frame.destination_address == " + literal, server.requests}),
               CountFigure(server.answers, {std::string(exchanges.Filters().answer) + " and frame.source_address == " + literal, server.answers}),
               server.timed ? EscapeHtml(TimeText(server.least)) : "",
               server.timed ? EscapeHtml(TimeText(server.sum / static_cast<int64_t>(server.timed))) : "",
               server.timed ? EscapeHtml(TimeText(server.most)) : ""});
  }
  constexpr size_t kShown = 6;
  return "<h3>Servers</h3>\n" + table.Html(kShown);
}

std::string SlowestTable(const Exchanges& exchanges) {
  PageTable table({{"Request", Kind::kText}, {"Server", Kind::kText, true}, {"Took"}, {"Packets"}});
  for (const Exchanges::Slow& slow : exchanges.Slowest()) {
    table.Row({"<span class=\"long\">" + EscapeHtml(slow.what) + "</span>", "<code>" + EscapeHtml(slow.server) + "</code>", EscapeHtml(TimeText(slow.took)),
               PacketFigure(slow.asked) + "\xE2\x80\x89\xE2\x86\x92\xE2\x80\x89" + PacketFigure(slow.answered)});
  }
  return table.IsEmpty() ? "" : "<h3>Slowest</h3>\n" + table.Html();
}

}  // namespace

std::string TimesPlot(const ResponseTimesPlot& times, const char* about) {
  size_t first = 0, end = ResponseTimesPlot::kBars;
  while (first < end && times.bars[first].Count() == 0) ++first;
  while (end > first && times.bars[end - 1].Count() == 0) --end;
  constexpr size_t kLeastBars = 9;   // a single one would be a wall
  while (end - first < kLeastBars) {
    if (first > 0) --first;
    if (end < ResponseTimesPlot::kBars) ++end;
  }
  BarPlot plot{about, {}, {}, [](double n) { return CountText(static_cast<uint64_t>(n)); }, 90, true};
  for (size_t i = first; i < end; ++i) {
    const bool isLast = i + 1 == ResponseTimesPlot::kBars;
    const std::string from = TimeText(i ? ResponseTimesPlot::EndOf(i - 1) : 0), to = TimeText(ResponseTimesPlot::EndOf(i));
    plot.bars.push_back({static_cast<double>(times.bars[i].Count()),
                         (isLast ? "above " + from : from + " to " + to) + ": " + CountText(times.bars[i].Count()), Source::Of(times.bars[i])});
    plot.ticks.push_back({static_cast<double>(i - first) / static_cast<double>(end - first), i ? from : CountOrZero(0)});
  }
  constexpr size_t kMostTicks = 8;   // else those of the powers of ten
  if (plot.ticks.size() > kMostTicks) {
    std::erase_if(plot.ticks, [&](const PlotTick& tick) { return tick.text.find_first_of("25") != std::string::npos; });
  }
  const auto average = times.sum / static_cast<int64_t>(times.count);
  return "<p class=\"key\">" + std::string(about) + ": average " + EscapeHtml(TimeText(average)) + ", from " + EscapeHtml(TimeText(times.least)) +
         " to " + EscapeHtml(TimeText(times.most)) + "</p>\n" + DrawBars(plot);
}

std::string TroubleSection(const ReportCounts& counts, const std::string& id) {
  PageTable table({{"", Kind::kMark}, {"What", Kind::kText}, {"Packets"}, {"First", Kind::kNumber, true}});
  for (const Trouble& trouble : TroubleOf(counts)) {
    table.Row({WeightHtml(trouble.weight), trouble.title + "<br><small>" + trouble.about + "</small>", CountFigure(trouble.count, trouble.source),
               trouble.first ? PacketFigure(trouble.first) : ""});
  }
  return Section(id + "trouble", "Trouble found", table.IsEmpty() ? Empty("No trouble found.") : table.Html());
}

std::string TcpSection(const ReportCounts& counts, const std::string& id) {
  const auto& connections = counts.tcp.All();
  if (connections.All().empty()) return Section(id + "tcp", "TCP", Empty("No TCP in this capture."));
  using Entry = std::pair<const std::string, TcpConnections::Connection>;
  const auto sum = [](const TcpTrouble& t) { return t.again + t.outOfOrder + t.missing + t.zeroWindows + t.resets; };
  std::vector<const Entry*> worst;
  for (const Entry& entry : connections.All()) {
    if (sum(entry.second.trouble)) worst.push_back(&entry);
  }
  std::sort(worst.begin(), worst.end(), [&](const Entry* a, const Entry* b) {
    const uint64_t one = sum(a->second.trouble), other = sum(b->second.trouble);
    return one != other ? one > other : a->first < b->first;
  });
  std::string html = "<p class=\"key\">" + CountText(connections.All().size() + connections.Merged()) + " connections with " +
                     CountText(counts.tcpSegments) + " segments; duplicate acknowledgements: " +
                     (counts.duplicates.Count() ? CountFigure(counts.duplicates.Count(), Source::Of(counts.duplicates)) : "none") + "</p>\n";
  if (counts.handshakes.count) html += TimesPlot(counts.handshakes, "Handshakes");
  PageTable table({{"From", Kind::kText}, {"To", Kind::kText}, {"Segments"}, {"Sent again"}, {"Out of order", Kind::kNumber, true}, {"Missing"},
                   {"Zero windows", Kind::kNumber, true}, {"Resets"}});
  for (size_t i = 0; i < worst.size() && i < 50; ++i) {
    const auto& [key, connection] = *worst[i];
    const PacketEnd from = TcpConnections::FirstEnd(key, connection), to = TcpConnections::OtherEnd(key, connection);
    const TcpTrouble& t = connection.trouble;
    const auto half = [](const char* side, const PacketEnd& end) {
      return std::string("frame.") + side + "_address == " + AddressLiteral(AddressTextOf(end, nullptr)) + " and frame." + side +
             "_port == " + std::to_string(end.port);
    };
    const std::string both = "(" + half("source", from) + " and " + half("destination", to) + " or " + half("source", to) + " and " +
                             half("destination", from) + ")";
    const Source source{"tcp and " + both, connection.packets};
    table.Row({"<code>" + EscapeHtml(EndTextOf(from, nullptr)) + "</code>", "<code>" + EscapeHtml(EndTextOf(to, nullptr)) + "</code>",
               CountFigure(connection.packets, source), CountOrZero(t.again), CountOrZero(t.outOfOrder), CountOrZero(t.missing),
               CountOrZero(t.zeroWindows),
               t.resets ? CountFigure(t.resets, {"tcp.flags.reset == 1 and " + both, t.resets}) : CountOrZero(0)});
  }
  constexpr size_t kShown = 8;
  html += table.IsEmpty() ? Empty("No connection lost or repeated anything.") : "<h3>Connections with trouble</h3>\n" + table.Html(kShown);
  if (connections.Merged()) {
    html += "<p class=\"note\">Others: " + CountText(connections.Merged()) + " connections of few packets, with " +
            CountText(connections.Others().packets) + " packets.</p>\n";
  }
  return Section(id + "tcp", "TCP", html);
}

std::string ExchangeSection(const Exchanges& exchanges, const char* protocol, const std::string& id) {
  const std::string title = std::string(protocol) + " response times";
  if (exchanges.IsEmpty()) return Section(id, title.c_str(), Empty(("No " + std::string(protocol) + " in this capture.").c_str()), false);
  std::string html = exchanges.Times().count ? TimesPlot(exchanges.Times(), "Answers") : Empty("No request and its answer are both in this capture.");
  html += ServersTable(exchanges) + SlowestTable(exchanges);
  if (exchanges.Merged()) html += "<p class=\"note\">Others: " + CountText(exchanges.Merged()) + " packets of further servers.</p>\n";
  return Section(id, title.c_str(), html, false);
}

}  // namespace qxview
