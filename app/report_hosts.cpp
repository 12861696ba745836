// Who talks to whom, on a report's page.
#include <algorithm>

#include "app/page_plots.h"
#include "app/report_sections.h"

namespace qxview {
namespace {

using Kind = PageTable::Kind;
using HostEntry = std::pair<const std::string, HostCount>;

// Most packets first; of as many, by the key, so that a report of a capture is the same every time.
template <typename Entry, typename Packets>
std::vector<const Entry*> ByPackets(const std::unordered_map<std::string, typename Entry::second_type>& map,
                                    const Packets& packetsOf) {
  std::vector<const Entry*> sorted;
  for (const Entry& entry : map) sorted.push_back(&entry);
  std::sort(sorted.begin(), sorted.end(), [&](const Entry* a, const Entry* b) {
    const uint64_t one = packetsOf(a->second), other = packetsOf(b->second);
    return one != other ? one > other : a->first < b->first;
  });
  return sorted;
}

std::string Others(uint64_t merged, uint64_t packets, const char* what) {
  if (merged == 0) return {};
  return "<p class=\"note\">Others: " + CountText(merged) + " " + what + " that counted least, with " + CountText(packets) + " packets.</p>\n";
}

std::string MatrixSection(const ReportCounts& counts, const std::vector<const HostEntry*>& hosts, const std::string& id) {
  constexpr size_t kMostHosts = 12;
  HeatMap map{"Packets from each host, by row, to each, by column", {}, {}};
  const size_t count = std::min(hosts.size(), kMostHosts);
  for (size_t row = 0; row < count; ++row) {
    const std::string& from = hosts[row]->first;
    map.names.push_back(ShownHost(counts, from));
    for (size_t column = 0; column < count; ++column) {
      const std::string& to = hosts[column]->first;
      const auto found = counts.pairs.All().find(ReportCounts::PairKey(from, to));
      const Traffic traffic = found == counts.pairs.All().end() ? Traffic{} : found->second;
      map.cells.push_back({traffic.packets,
                           from + " to " + to + ": " + CountText(traffic.packets) + " packets, " + BytesText(static_cast<double>(traffic.bytes)),
                           {"frame.source_address == " + AddressLiteral(from) + " and frame.destination_address == " + AddressLiteral(to),
                            traffic.packets}});
    }
  }
  std::string legend = "<p class=\"key\">From the row's host to the column's; fewer packets";
  for (const char* shade : {"s1", "s2", "s3", "s4", "s5"}) legend += std::string(" <i class=\"swatch ") + shade + "\"></i>";
  return Section(id + "matrix", "Who sends to whom", legend + " more</p>\n" + DrawHeatMap(map), false);
}

// A conversation's packets: of either direction, by both ends.
std::string ConversationFilter(const ReportCounts& counts, const std::string& transport, const std::vector<std::string>& ends) {
  const std::string &a = ends[0], &aPort = ends[1], &b = ends[2], &bPort = ends[3];
  const auto half = [](const char* side, const std::string& address, const std::string& port) {
    return std::string("frame.") + side + "_address == " + AddressLiteral(address) + " and frame." + side + "_port == " + port;
  };
  // The ends may be told apart by what they are, unless the same addresses use the same ports the other way round, too.
  const std::string crossed = transport + "\n" + a + "\n" + bPort + "\n" + b + "\n" + aPort + "\n";
  const std::string reverse = transport + "\n" + b + "\n" + aPort + "\n" + a + "\n" + bPort + "\n";
  const auto& all = counts.conversations.All();
  if (a != b && aPort != bPort && !all.contains(crossed) && !all.contains(reverse) && counts.conversations.Merged() == 0) {
    return transport + " and frame.address == " + AddressLiteral(a) + " and frame.address == " + AddressLiteral(b) +
           " and frame.port == " + aPort + " and frame.port == " + bPort;
  }
  return transport + " and (" + half("source", a, aPort) + " and " + half("destination", b, bPort) + " or " + half("source", b, bPort) +
         " and " + half("destination", a, aPort) + ")";
}

std::string EndHtml(const ReportCounts& counts, const std::string& address, const std::string& port) {
  const std::string shown = ShownHost(counts, address);
  const bool isSix = shown == address && address.find(':') != address.npos;
  return "<code>" + EscapeHtml(isSix ? "[" + shown + "]:" + port : shown + ":" + port) + "</code>";
}

}  // namespace

std::string AddressLiteral(const std::string& address) {
  const bool isPlain = !address.empty() && address.find_first_not_of("0123456789abcdefABCDEF.:") == address.npos;
  return isPlain ? address : FilterLiteral(address);
}

std::string ShownHost(const ReportCounts& counts, const std::string& address) {
  const auto found = counts.hosts.All().find(address);
  return found == counts.hosts.All().end() || found->second.name.empty() ? address : found->second.name;
}

std::string HostsSections(const ReportCounts& counts, const std::string& id) {
  const auto hosts = ByPackets<HostEntry>(counts.hosts.All(), [](const HostCount& host) { return host.all.packets; });
  if (hosts.empty()) return Section(id + "hosts", "Top talkers", Empty("No packet has an address."));
  constexpr size_t kShown = 12, kMost = 100;
  PageTable table({{"Host", Kind::kText}, {"Sent and received", Kind::kBar, true}, {"Packets"}, {"Bytes"}, {"Sent", Kind::kNumber, true}});
  uint64_t most = 1;
  for (const HostEntry* host : hosts) most = std::max(most, host->second.sent.bytes + host->second.received.bytes);
  for (size_t i = 0; i < hosts.size() && i < kMost; ++i) {
    const auto& [address, host] = *hosts[i];
    const Source source{"frame.address == " + AddressLiteral(address), host.all.packets};
    const std::string shown = ShownHost(counts, address);
    table.Row({"<code>" + EscapeHtml(shown) + "</code>" + (shown == address ? "" : " <small>" + EscapeHtml(address) + "</small>"),
               DrawParts(static_cast<double>(host.sent.bytes) / static_cast<double>(most),
                         static_cast<double>(host.received.bytes) / static_cast<double>(most)),
               CountFigure(host.all.packets, source), Figure(BytesText(static_cast<double>(host.all.bytes)), source),
               Figure(BytesText(static_cast<double>(host.sent.bytes)),
                      {"frame.source_address == " + AddressLiteral(address), host.sent.packets})});
  }
  std::string html = "<p class=\"key\">Bytes <i class=\"swatch s5\"></i> sent <i class=\"swatch s2\"></i> received</p>\n" + table.Html(kShown);
  if (hosts.size() > kMost) html += "<p class=\"note\">The " + CountText(kMost) + " with most packets of " + CountText(hosts.size()) + ".</p>\n";
  html += Others(counts.hosts.Merged(), counts.hosts.Others().all.packets, "hosts");
  return Section(id + "hosts", "Top talkers", html, false) + MatrixSection(counts, hosts, id);
}

std::string ConversationsSection(const ReportCounts& counts, const std::string& id) {
  using Entry = std::pair<const std::string, TwoWays>;
  const auto conversations = ByPackets<Entry>(counts.conversations.All(), [](const TwoWays& count) { return PacketsOf(count); });
  if (conversations.empty()) return Section(id + "conversations", "Conversations", Empty("No TCP, UDP or SCTP in this capture."));
  constexpr size_t kShown = 10, kMost = 100;
  PageTable table({{"From", Kind::kText}, {"To", Kind::kText}, {"", Kind::kText, true}, {"Packets"}, {"Bytes"}, {"Answered", Kind::kNumber, true},
                   {"Started", Kind::kNumber, true}, {"Lasted", Kind::kNumber, true}});
  for (size_t i = 0; i < conversations.size() && i < kMost; ++i) {
    const auto& [key, count] = *conversations[i];
    std::vector<std::string> parts = ReportCounts::Split(key);
    const std::string transport = parts[0];
    parts.erase(parts.begin());
    const Source source{ConversationFilter(counts, transport, parts), PacketsOf(count)};
    std::string one = EndHtml(counts, parts[0], parts[1]), other = EndHtml(counts, parts[2], parts[3]);
    if (count.firstIsSecond) one.swap(other);
    table.Row({one, other, ProtocolTitle(transport), CountFigure(PacketsOf(count), source),
               Figure(BytesText(static_cast<double>(BytesOf(count))), source), BytesText(static_cast<double>(count.back.bytes)),
               EscapeHtml(TimeText(count.first)), EscapeHtml(TimeText(TimeBetween(count.first, count.last)))});
  }
  std::string html = table.Html(kShown);
  if (conversations.size() > kMost) {
    html += "<p class=\"note\">The " + CountText(kMost) + " with most packets of " + CountText(conversations.size()) + ".</p>\n";
  }
  html += Others(counts.conversations.Merged(), PacketsOf(counts.conversations.Others()), "conversations");
  return Section(id + "conversations", "Conversations", html);
}

std::string PortsSection(const ReportCounts& counts, const std::string& id) {
  std::vector<uint32_t> sorted;
  for (uint32_t port = 0; port < counts.ports.size(); ++port) {
    if (counts.ports[port].all.packets) sorted.push_back(port);
  }
  if (sorted.empty()) return Section(id + "ports", "Ports", Empty("No TCP, UDP or SCTP in this capture."), false);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [&](uint32_t a, uint32_t b) { return counts.ports[a].all.packets > counts.ports[b].all.packets; });
  constexpr size_t kShown = 10, kMost = 50;
  PageTable table({{"Port", Kind::kMark}, {"Over", Kind::kText}, {"", Kind::kBar}, {"Packets"}, {"Bytes"}});
  for (size_t i = 0; i < sorted.size() && i < kMost; ++i) {
    const PortCount& count = counts.ports[sorted[i]];
    const Source source{"frame.port == " + std::to_string(sorted[i]), count.all.packets};
    std::string over;
    for (size_t t = 0; t < kTransports.size(); ++t) {
      if (count.transports >> t & 1) over += (over.empty() ? "" : ", ") + ProtocolTitle(kTransports[t]);
    }
    table.Row({std::to_string(sorted[i]), over,
               DrawParts(static_cast<double>(count.all.packets) / static_cast<double>(counts.ports[sorted[0]].all.packets), 0),
               CountFigure(count.all.packets, source), Figure(BytesText(static_cast<double>(count.all.bytes)), source)});
  }
  std::string html = table.Html(kShown);
  if (sorted.size() > kMost) html += "<p class=\"note\">The " + CountText(kMost) + " with most packets of " + CountText(sorted.size()) + ".</p>\n";
  return Section(id + "ports", "Ports", html, false);
}

}  // namespace qxview
