#include "app/report_findings.h"

#include <algorithm>

#include "app/record_writer.h"

namespace qxview {
namespace {

constexpr char kQuestion[] = "dns.question_record/dns.domain_name";

constexpr Findings::Row kRows[] = {
    {Weight::kFault, "IPv4 header checksum is bad", "the header was damaged, or the capturing card calculates it",
     "ip.header_checksum contains \"BAD\""},
    {Weight::kFault, "TCP checksum is bad", "damaged on its way, or calculated by the capturing card", "tcp.checksum contains \"BAD\""},
    {Weight::kFault, "UDP checksum is bad", "damaged on its way, or calculated by the capturing card", "udp.checksum contains \"BAD\""},
    {Weight::kFault, "ICMP checksum is bad", "the message was damaged",
     "icmp.checksum contains \"BAD\" or icmpv6.checksum contains \"BAD\""},
    {Weight::kFault, "SCTP checksum is bad", "the packet was damaged", "sctp.checksum contains \"BAD\""},
    {Weight::kFault, "DNS name that cannot be read", "a name's pointers lead nowhere, or it is cut", "dns.malformed_dns_name_field_data"},
    {Weight::kFault, "DNS server failure", "the server could not answer (SERVFAIL)",
     "dns.qr_query_response == 1 and dns.rcode_result_code == 2"},
    {Weight::kWarning, "DNS name does not exist", "the answer was NXDOMAIN", "dns.qr_query_response == 1 and dns.rcode_result_code == 3"},
    {Weight::kWarning, "DNS refused or failed otherwise", "FORMERR, NOTIMP, REFUSED and others",
     "dns.qr_query_response == 1 and dns.rcode_result_code in {1, 4..15}"},
    {Weight::kNote, "DNS answer is truncated", "the client has to ask again over TCP", "dns.tc_truncation == 1"},
    {Weight::kFault, "HTTP server error", "status 500 to 599", "http.response.code in {500..599}"},
    {Weight::kWarning, "HTTP client error", "status 400 to 499", "http.response.code in {400..499}"},
    {Weight::kWarning, "Destination unreachable", "ICMP tells that packets did not arrive", "icmp.type == 3 or icmpv6.type == 1"},
    {Weight::kWarning, "Time or hop limit exceeded", "a loop, a long way, or a trace of the route", "icmp.type == 11 or icmpv6.type == 3"},
    {Weight::kWarning, "Packet too big, or its header is wrong", "ICMP tells of sizes and parameters",
     "icmp.type == 12 or icmpv6.type in {2, 4}"},
    {Weight::kNote, "Redirect", "a router names a better one", "icmp.type == 5 or icmpv6.type == 137"},
    {Weight::kWarning, "TCP connection reset", "refused, or ended at once", "tcp.flags.reset == 1"},
    {Weight::kWarning, "TCP window of zero", "the receiver does not keep up",
     "tcp.window_size_value == 0 and tcp.flags.reset == 0 and tcp.flags.syn == 0 and tcp.flags.fin == 0"},
    {Weight::kWarning, "TLS alert", "fatal ones, in the clear", "tls.alert_level == 2"},
    {Weight::kWarning, "SIP request failed", "status 400 and above", "sip.status_code >= 400"},
    {Weight::kWarning, "Mail refused", "SMTP replies 400 and above", "smtp.reply_code >= 400"},
    {Weight::kWarning, "FTP command failed", "replies 400 and above", "ftp.reply_code >= 400"},
    {Weight::kWarning, "RADIUS access rejected", "the user or device was not let in", "radius.code == 3"},
    {Weight::kWarning, "DHCP server says no", "an address was refused (NAK) or declined", "dhcp.dhcp_msg_type in {4, 6}"},
    {Weight::kNote, "Packet is cut in the capture", "fewer bytes were captured than sent", "frame.captured < frame.length"},
};

}  // namespace

std::string FilterLiteral(std::string_view utf8) {
  Literal literal;
  std::string wrong;
  constexpr size_t kMost = 1000;
  if (utf8.empty() || utf8.size() > kMost || !literal.Take(utf8, &wrong)) return {};
  std::string quoted = "\"";
  for (const char c : utf8) {
    if (static_cast<uint8_t>(c) < 0x20 || c == 0x7F) {
      constexpr char kDigits[] = "0123456789ABCDEF";
      quoted.append("\\x").append(1, kDigits[c >> 4 & 0xF]).append(1, kDigits[c & 0xF]);
      continue;
    }
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

Findings::Findings(Filter* filter) {
  FilterFault fault;
  for (const Row& row : kRows) counts_.push_back({&row, filter->Add(row.filter, &fault)});
}

void Findings::Take(const Filter& filter, uint64_t number, uint64_t bytes) {
  for (Count& count : counts_) {
    if (count.expression < 0 || !filter.HoldsFor(count.expression)) continue;
    if (count.packets++ == 0) count.first = number;
    count.bytes += bytes;
  }
}

LearntNames::LearntNames(KeyQuery* query) {
  std::string wrong;
  question_ = query->Ask(kQuestion, &wrong);
  ipv4_ = query->Ask("dns.host_address", &wrong);
  ipv6_ = query->Ask("dns.ipv6_address", &wrong);
  server_ = query->Ask("tls.server_name", &wrong);
  header_ = query->Ask("http.header", &wrong);
  client_ = query->Ask("dhcp.hostname", &wrong);
  clientAddress_ = query->Ask("dhcp.client_hardware_address", &wrong);
}

// `name` as its key's line has it; behind "Host: " of a header of HTTP.
void LearntNames::Learn(const char* how, const std::string& address, const AskedValue& name, const char* nameKey,
                        const char* addressKey) {
  constexpr size_t kMostNames = 20000;
  const std::string text = ToUtf8(TextOfValue(name)), literal = FilterLiteral(text);
  if (literal.empty() || address.empty()) return;
  const std::string key = std::string(how) + '\n' + address + '\n' + text;
  auto found = names_.find(key);
  if (found == names_.end()) {
    if (names_.size() >= kMostNames) {
      ++leftOut_;
      return;
    }
    const size_t colon = std::string_view(nameKey) == "http.header" ? text.find(": ") + 2 : 0;
    const std::string filter = std::string(nameKey) + " == " + literal + " and " + addressKey + " == " + address;
    found = names_.emplace(key, Name{address, text.substr(colon), how, filter}).first;
  }
  if (ofThis_.insert(&found->second).second) ++found->second.packets;
}

void LearntNames::Take(const KeyQuery& query, const std::string& destination) {
  ofThis_.clear();
  const auto addressOf = [](const AskedValue& value) { return ToUtf8(TextOfValue(value)); };
  // Of an answer's addresses, whatever aliases lead to them, the name that was asked for.
  if (const std::vector<AskedValue>& questions = query.ValuesOf(question_); questions.size() == 1) {
    for (const AskedValue& value : query.ValuesOf(ipv4_)) Learn("DNS", addressOf(value), questions[0], kQuestion, "dns.host_address");
    for (const AskedValue& value : query.ValuesOf(ipv6_)) Learn("DNS", addressOf(value), questions[0], kQuestion, "dns.ipv6_address");
  }
  for (const AskedValue& value : query.ValuesOf(server_)) {
    Learn("TLS", destination, value, "tls.server_name", "frame.destination_address");
  }
  for (const AskedValue& value : query.ValuesOf(header_)) {
    if (value.text.starts_with("Host: ")) Learn("HTTP", destination, value, "http.header", "frame.destination_address");
  }
  if (const std::vector<AskedValue>& clients = query.ValuesOf(clientAddress_); clients.size() == 1) {
    for (const AskedValue& value : query.ValuesOf(client_)) {
      Learn("DHCP", addressOf(clients[0]), value, "dhcp.hostname", "dhcp.client_hardware_address");
    }
  }
}

std::vector<LearntNames::Name> LearntNames::ByPackets() const {
  std::vector<Name> sorted;
  for (const auto& [key, name] : names_) sorted.push_back(name);
  std::stable_sort(sorted.begin(), sorted.end(), [](const Name& a, const Name& b) { return a.packets > b.packets; });
  return sorted;
}

HardwareOwners::HardwareOwners(KeyQuery* query) {
  std::string wrong;
  address_ = query->Ask("arp.source_ip_address", &wrong);
  hardware_ = query->Ask("arp.source_hardware_address", &wrong);
}

void HardwareOwners::Take(const KeyQuery& query) {
  constexpr size_t kMostAddresses = 20000, kMostOwners = 32;
  const std::vector<AskedValue>&addresses = query.ValuesOf(address_), &hardware = query.ValuesOf(hardware_);
  if (addresses.size() != 1 || hardware.size() != 1) return;
  const std::string address = ToUtf8(TextOfValue(addresses[0]));
  if (address == "0.0.0.0") return;   // who asks whether an address is free has none yet
  if (owners_.size() >= kMostAddresses && !owners_.contains(address)) return;
  std::map<std::string, uint64_t>& owners = owners_[address];
  const std::string owner = ToUtf8(TextOfValue(hardware[0]));
  if (owners.size() < kMostOwners || owners.contains(owner)) ++owners[owner];
}

std::vector<std::pair<std::string, std::map<std::string, uint64_t>>> HardwareOwners::Shared() const {
  std::vector<std::pair<std::string, std::map<std::string, uint64_t>>> shared;
  for (const auto& entry : owners_) {
    if (entry.second.size() > 1) shared.push_back(entry);
  }
  return shared;
}

}  // namespace qxview
