// The sections of a report's page, off what was counted.
#pragma once
#include <string>
#include <vector>

#include "app/report_counts.h"

namespace qxview {

struct ReportedCapture {
  struct File {
    std::string name;
    uint64_t size = 0;       // 0: not known
    std::string digest;      // SHA-256 in hexadecimal; empty: not known
  };
  std::vector<File> files;
  std::string command;       // that lists its packets: "qxview list --modern capture.pcap"
  std::string where;         // what the packets were chosen by beside that; empty: nothing
  bool isDamaged = false;    // it could not be read to its end
};

// Of one run: its number on the page, from 1.
std::string ReportArticle(const ReportCounts& counts, const ReportedCapture& capture, size_t number);

// Sections, each in a file of its own where it is large.
std::string Section(const std::string& id, const char* title, const std::string& html, bool isWide = true);
std::string Empty(const char* text);
std::string TroubleSection(const ReportCounts& counts, const std::string& id);
std::string TcpSection(const ReportCounts& counts, const std::string& id);
std::string ExchangeSection(const Exchanges& exchanges, const char* protocol, const std::string& id);
std::string HostsSections(const ReportCounts& counts, const std::string& id);
std::string PortsSection(const ReportCounts& counts, const std::string& id);
std::string ConversationsSection(const ReportCounts& counts, const std::string& id);

// An address as a filter's value, and as the page shows it: behind its name, where it has one.
std::string AddressLiteral(const std::string& address);
std::string ShownHost(const ReportCounts& counts, const std::string& address);

// How often something took how long.
std::string TimesPlot(const ResponseTimesPlot& times, const char* about);

}  // namespace qxview
