// Questions: what is a filter and what is not, how values compare, and that a decode for a question's lines alone finds in every
// sample what the whole tree says.
#include "query/filter.h"

#include <gtest/gtest.h>

#include "query/probe.h"
#include "tests/support/samples.h"

namespace qxview::testing {
namespace {

struct NoPacket final : PacketTold {
  uint64_t Number() const override { return 7; }
  int64_t Nanoseconds() const override { return 1763723731716513000; }   // 2025-11-21 11:15:31.716513
  uint32_t Length() const override { return 99; }
  uint32_t Captured() const override { return 64; }
  std::string_view Source() override { return "192.0.2.1"; }
  std::string_view Destination() override { return "gateway [2001:db8::1]"; }
  std::string_view Protocol() override { return "DNS"; }
  std::string_view Summary() override { return "DNS Query: www.example.test"; }
};

// Of the packet above, which has no lines.
bool Holds(const char* expression) {
  FilterFault fault;
  const auto filter = Filter::Parse(expression, &fault);
  EXPECT_TRUE(filter) << expression << ": " << fault.message;
  if (!filter) return false;
  NoPacket told;
  const std::unique_ptr<DecodeContext, decltype(&DestroyDecodeContext)> context(CreateDecodeContext(), DestroyDecodeContext);
  const ArenaTree tree;
  filter->Keys().Collect(*context, tree, told);
  return filter->Holds();
}

TEST(Filters, CompareNumbersAddressesTextsAndTimes) {
  for (const char* expression : {
           "frame.number == 7", "frame.number == 0x07", "frame.number in {1, 5..8}", "frame.len >= 99 and frame.cap_len < 99",
           "frame.number != 8", "not frame.number == 8", "!(frame.number > 7) && frame.number ge 7", "frame.len > frame.captured",
           "frame.source == 192.0.2.0/24", "frame.source == \"192.0.2.1\"", "frame.source < 192.0.2.10", "frame.number > 6.5",
           "frame.destination == 2001:db8::/32", "frame.destination != 2001:db9::/32", "frame.summary contains \"example\"",
           "frame.summary matches \"WWW\\.ex.*t$\"", "frame.summary ~ '^dns'", "frame.protocol == DNS", "frame.protocol in {DNS HTTP}",
           "frame.time >= \"2025-11-21 11:15:31\"", "frame.time < 2025-11-22", "frame.time > 1763723731", "frame.time",
           "frame.number == 1 or frame.number == 2 or frame.number == 7", "frame.number == 7 or frame.number == 1 and tcp"}) {
    EXPECT_TRUE(Holds(expression)) << expression;
  }
  for (const char* expression :
       {"frame.number == 8", "frame.number in {8..9}", "frame.source == 10.0.0.0/8", "frame.source == 192.0.2.1/33", "tcp", "ip.addr",
        "ip.addr != 10.0.0.1", "frame.summary contains \"EXAMPLE\"", "frame.summary matches \"^www\"", "frame.time < 2025-11-21",
        "line contains \"x\"", "frame.protocol > frame.summary", "frame.number == -7", "frame.number == seven"}) {
    EXPECT_FALSE(Holds(expression)) << expression;
  }
}

TEST(Filters, SayWhatIsWrongAndWhere) {
  struct {
    const char* expression;
    size_t at, length;
    const char* message;
  } const kWrong[] = {
      {"", 0, 1, "a filter is wanted, for example tcp.port == 80"},
      {"tcp.prt == 80", 0, 7, "there is no key \"tcp.prt\"; the nearest is tcp.port; qxview protocols --fields tcp lists those of tcp"},
      {"tcp and nosuch", 8, 6, "there is no key \"nosuch\""},
      {"tcp.port ==", 11, 1, "a value is wanted behind this"},
      {"tcp.port == == 3", 12, 2, "a value is wanted here"},
      {"(tcp or udp", 0, 1, "this ( is not closed"},
      {"tcp udp", 4, 3, "and or or is missing in front of this"},
      {"tcp.port in {80", 12, 1, "this { is not closed"},
      {"tcp.port in {}", 13, 1, "nothing is in these braces"},
      {"tcp.port in 80", 12, 2, "{ is wanted here, as in tcp.port in {80, 443, 8000..8080}"},
      {"http matches \"a(b\"", 13, 5, "a ( is not closed, or a ) stands alone"},
      {"http matches \"(a)\\1\"", 13, 7, "references to groups are not known"},
      {"http contains \"a", 14, 1, "this text is not closed"},
      {"line == 3", 5, 2, "a line is asked with contains or matches"},
      {"tcp ; udp", 4, 1, "this character starts nothing in a filter"},
      {"http contains \"\xE4\xB8\xAD\"", 14, 5, "no line holds \"\xE4\xB8\xAD\": lines are in the characters of Windows-1252"},
  };
  for (const auto& wrong : kWrong) {
    FilterFault fault;
    EXPECT_FALSE(Filter::Parse(wrong.expression, &fault)) << wrong.expression;
    EXPECT_EQ(fault.at, wrong.at) << wrong.expression;
    EXPECT_EQ(fault.length, wrong.length) << wrong.expression;
    EXPECT_EQ(fault.message.substr(0, std::string_view(wrong.message).size()), wrong.message);
  }
  FilterFault fault;
  EXPECT_FALSE(Filter::Parse(std::string(300, '(') + "tcp" + std::string(300, ')'), &fault));
  EXPECT_FALSE(Filter::Parse(std::string(20000, ' ') + "tcp", &fault));
  std::string chain = "tcp";
  for (int32_t i = 0; i < 2000; ++i) chain += " or udp";
  EXPECT_TRUE(Filter::Parse(chain, &fault));
}

// Pieces of filters in any order: each is taken or told with a place inside it, and asking it ends.
TEST(Filters, TakeAnyPiecesInAnyOrder) {
  static constexpr const char* kPieces[] = {
      "tcp", "frame.number", "ip.addr", "frame.summary", "line", "==", "!=", "<", ">=", "contains", "matches", "in", "{", "}", "(",
      ")", "and", "or", "not", "!", "&&", ",", "..", "7", "0x1F", "-1.5", "10.0.0.0/8", "fe80::/10", "\"a\"", "\"[a\"", "\"(a|b)*\\x41\"",
      "'", "2025-11-21", "\xC3\xA4", "\xFF", ";", "dns.question_record/dns.domain_name", "/", "frame.time", "ip.src"};
  uint32_t state = 1;
  const auto random = [&state](size_t below) { return (state = state * 1664525 + 1013904223) / 65536 % below; };
  NoPacket told;
  const std::unique_ptr<DecodeContext, decltype(&DestroyDecodeContext)> context(CreateDecodeContext(), DestroyDecodeContext);
  const ArenaTree tree;
  int32_t taken = 0;
  for (int32_t i = 0; i < 800; ++i) {
    std::string expression;
    for (size_t pieces = 1 + random(9); pieces > 0; --pieces) {
      expression += kPieces[random(std::size(kPieces))];
      expression += " ";
    }
    FilterFault fault;
    const auto filter = Filter::Parse(expression, &fault);
    if (!filter) {
      ASSERT_FALSE(fault.message.empty()) << expression;
      ASSERT_LE(fault.at, expression.size()) << expression;
      continue;
    }
    ++taken;
    filter->Keys().Collect(*context, tree, told);
    filter->Holds();
  }
  EXPECT_GT(taken, 15);
}

using Answers = std::vector<std::string>;

Answers AnswersOf(const KeyQuery& query) {
  Answers answers;
  for (int32_t asked = 0; asked < query.Count(); ++asked) {
    for (const AskedValue& value : query.ValuesOf(asked)) {
      answers.push_back(std::to_string(asked) + " " + TextOfValue(value) + " " + std::string(value.line));
    }
  }
  return answers;
}

// The keys of one question: of one protocol, of several, under one another, of the frame.
const std::vector<std::vector<const char*>> kQuestions = {
    {"ip.addr", "frame.number", "ip"},
    {"tcp.port", "udp.port", "tcp.options.mss_val"},
    {"dns.qry.name", "dns", "udp"},
    {"http", "http.header", "http.code"},
    {"eth.addr", "vlan.id", "frame.interface", "frame.network"},
    {"tls", "smb.command", "ldap", "kerberos", "snmp"},
    {"tcp", "icmp/ip.source", "arp.opcode"},
    {"frame.network"},
    {"frame", "tcp"},
    {"ip.src", "ip.dst", "tcp.srcport", "tcp.dstport"},
    {"tcp.finish", "tcp.flags.syn", "ip.flags.df", "udp.checksum"},
    {"dns.domain_name", "snmp.version", "eth", "http.host", "tls.version"},
};

TEST(Probe, FindsInEverySampleWhatTheWholeTreeSays) {
  NamingHost host;
  const auto session = Session::Create(&host.host, {});
  ASSERT_TRUE(session);
  Probe probe(*session);
  NoPacket told;
  size_t found = 0;
  for (const std::string& sample : Samples()) {
    for (const auto& names : kQuestions) {
      KeyQuery whole, own;
      std::string wrong;
      for (const char* name : names) {
        ASSERT_GE(whole.Ask(name, &wrong), 0) << wrong;
        own.Ask(name, &wrong);
      }
      ForEachRecord(sample, [&](const FrameRecord* record) {
        constexpr uint64_t kEnough = 120;   // of a sample
        if (record->packetNumber > kEnough) return;
        KeepFacts(&session->Context(), true);
        session->Decode(record);
        whole.Collect(session->Context(), session->Tree(), told);
        const Answers wanted = AnswersOf(whole);
        KeepFacts(&session->Context(), false);
        ASSERT_TRUE(probe.Ask(own, record, told));
        EXPECT_EQ(AnswersOf(own), wanted) << sample << ", packet " << record->packetNumber;
        found += wanted.size();
      });
    }
  }
  EXPECT_GT(found, 10000u);
}

// Numbers, addresses and texts in all comparisons, names of numbers, lines that get their number later, groups of lines.
constexpr const char* kTakingFilters[] = {
    "ip.addr == 10.0.0.0/8 or ip.addr == 192.168.0.0/16",
    "ip.addr != 192.168.0.0/16",
    "ip.src contains \"1\" and ip.dst > 100.0.0.0",
    "ip.src == ip.dst or ipv6.src == ipv6.dst",
    "ip.ttl < 64 and ip.proto == UDP",
    "not ip.ttl == 64 and ip.protocol == 6",
    "ip.ttl contains \"4\" or ip.ttl == 255",
    "ip.flags.df == 1 or ip.fragment contains \"First\"",
    "ip.precedence == 0 and ip and ip.total_ip_length > 60",
    "ipv6.addr == fe80::/10 or ipv6.addr == 2001::/16",
    "tcp.port in {80, 443, 1000..40000} and tcp.flags.syn == 0",
    "tcp.finish == 1 or tcp.flags.push == 1",
    "tcp.flags contains \"SYN\" or tcp.window > 8000",
    "tcp.srcport < tcp.dstport or udp.srcport == 53",
    "udp.port != 53 and udp.length > 50",
    "eth.addr == ff:ff:ff:ff:ff:ff or eth.src contains \"02\"",
    "eth.dst != 01:00:5e:00:00:00/24 or eth.ethertype == 0x86dd",
    "vlan.id or arp.opcode == 1 or arp.src.proto_ipv4 == 192.0.2.0/24",
    "dns.transaction_id < 40000 and dns.qry.name contains \"e\"",
    "dns.domain_name == \".\" or dns.ttl > 100",
    "snmp.version == 1 or snmp.request_id > 5 or ldap.message_id == 2",
    "frame.network contains \"Ethernet\" and ip.ttl == 64 and frame",
    "icmp/ip.source == 192.0.2.0/24 or icmp.type == 8",
};

TEST(Probe, AnswersWithValuesThatItTakesAsWithTheWholeTree) {
  NamingHost host;
  const auto session = Session::Create(&host.host, {});
  ASSERT_TRUE(session);
  Probe probe(*session);
  NoPacket told;
  std::vector<std::unique_ptr<Filter>> taking, collecting;
  std::vector<size_t> held(std::size(kTakingFilters));
  for (const char* expression : kTakingFilters) {
    FilterFault fault;
    taking.push_back(Filter::Parse(expression, &fault));
    ASSERT_TRUE(taking.back()) << expression << ": " << fault.message;
    collecting.push_back(std::make_unique<Filter>());
    ASSERT_GE(collecting.back()->Add(expression, &fault), 0);
  }
  for (const std::string& sample : Samples()) {
    ForEachRecord(sample, [&](const FrameRecord* record) {
      constexpr uint64_t kEnough = 60;   // of a sample
      if (record->packetNumber > kEnough) return;
      KeepFacts(&session->Context(), true);
      session->Decode(record);
      for (const auto& filter : collecting) filter->Keys().Collect(session->Context(), session->Tree(), told);
      std::vector<bool> wanted;
      for (const auto& filter : collecting) wanted.push_back(filter->Holds());
      KeepFacts(&session->Context(), false);
      for (size_t i = 0; i < taking.size(); ++i) {
        ASSERT_TRUE(probe.Ask(taking[i]->Keys(), record, told));
        EXPECT_EQ(taking[i]->Holds(), wanted[i]) << kTakingFilters[i] << ", " << sample << ", packet " << record->packetNumber;
        held[i] += wanted[i];
      }
    });
  }
  for (size_t i = 0; i < held.size(); ++i) EXPECT_GT(held[i], 0u) << kTakingFilters[i];
}

}  // namespace
}  // namespace qxview::testing
