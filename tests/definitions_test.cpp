#include "host/protocol_definitions.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/dispatch.h"
#include "host/alias_table.h"

namespace qxview {
namespace {

AddressSlot V4(uint32_t address) {
  AddressSlot slot{{}, 1};
  for (int i = 0; i < 4; ++i) slot.address[12 + i] = static_cast<uint8_t>(address >> (24 - 8 * i));
  return slot;
}

// The kind and bytes of an address text; "none" for a text that is no address.
std::string Parsed(const std::string& text) {
  AliasKind kind;
  std::array<uint8_t, 16> address;
  if (!ParseAddress(text, &kind, &address)) return "none";
  std::string shown = std::to_string(static_cast<int>(kind));
  for (int i = 0; i < (kind == AliasKind::kHardware ? 6 : kind == AliasKind::kIPv4 ? 4 : 16); ++i) {
    shown += (i ? "." : ": ") + std::to_string(address[static_cast<size_t>(i)]);
  }
  return shown;
}

AddressSlot V6(uint16_t first, uint16_t second, uint8_t last) {
  AddressSlot slot{{static_cast<uint8_t>(first >> 8), static_cast<uint8_t>(first), static_cast<uint8_t>(second >> 8),
                    static_cast<uint8_t>(second)}, 2};
  slot.address[15] = last;
  return slot;
}

int32_t PortOf(ProtocolDefinitions& definitions, int32_t which, uint16_t port) {
  int32_t identifier = 0;
  return ProtocolDefinitions::FindPort(definitions.Table(which), port, &identifier) ? identifier : 0;
}

int32_t AddressOf(ProtocolDefinitions& definitions, int32_t which, const AddressSlot& address, uint16_t port) {
  int32_t identifier = 0;
  return ProtocolDefinitions::FindAddress(definitions.Table(which), &address, port, &identifier) ? identifier : 0;
}

int32_t IdentifierOf(const HashEntry* entry) { return entry ? entry->identifier : -1; }

TEST(HashTables, KeepFormsKindsAndOrdersApart) {
  HashTable* table = HashCreate();
  const AddressSlot a = V4(0x0A000001), b = V4(0x0A000002);
  AddressSlot sixth = a;
  sixth.kind = 2;
  AddressSlot stray = a;
  stray.address[0] = 9;   // a byte that the kind does not use
  HashEntry* port = HashInsert(table, 80, 1);
  HashEntry* end = HashInsertGenericIPPort(table, a, 80, 2);
  HashEntry* pair = HashInsertIpPortPairWithAttrByte(table, {a, 80}, {b, 1025}, 7, 3);
  HashEntry* addresses = HashInsertNetAddrPair(table, a, b, 4);
  EXPECT_EQ(HashCount(table), 4u);
  EXPECT_EQ(HashFind(table, 80), port);
  EXPECT_EQ(HashFind(table, 81), nullptr);
  EXPECT_EQ(HashFindGenericIPPort(table, stray, 80), end);
  EXPECT_EQ(HashFindGenericIPPort(table, sixth, 80), nullptr);
  EXPECT_EQ(HashFindGenericIPPort(table, a, 0), nullptr);
  EXPECT_EQ(HashFindIpPortPairWithAttrByte(table, {a, 80}, {b, 1025}, 7), pair);
  EXPECT_EQ(HashFindIpPortPairWithAttrByte(table, {a, 80}, {b, 1025}, 8), nullptr);
  EXPECT_EQ(HashFindIpPortPairWithAttrByte(table, {b, 1025}, {a, 80}, 7), nullptr);
  EXPECT_EQ(HashFindNetAddrPair(table, a, b), addresses);
  EXPECT_EQ(HashFindNetAddrPair(table, b, a), nullptr);
  EXPECT_EQ(HashInsert(table, 80, 9), port) << "an insertion over an entry keeps it";
  EXPECT_EQ(IdentifierOf(port), 9);
  HashDestroy(table);
}

TEST(HashTables, WalksStandRemovals) {
  HashTable* table = HashCreate();
  for (uint16_t port = 1; port <= 5; ++port) HashInsert(table, port, port);
  HashIterator* walk = HashIteratorCreate(table);
  EXPECT_EQ(IdentifierOf(HashIteratorNext(walk)), 1);
  EXPECT_TRUE(HashRemove(table, HashFind(table, 1)));
  EXPECT_TRUE(HashRemove(table, HashFind(table, 2)));   // the one that would come next
  EXPECT_EQ(IdentifierOf(HashIteratorNext(walk)), 3);
  HashRemoveAll(table);
  EXPECT_EQ(HashIteratorNext(walk), nullptr);
  HashInsert(table, 6, 6);
  EXPECT_FALSE(HashRemove(table, nullptr));
  HashDestroy(table);
  EXPECT_EQ(HashIteratorNext(walk), nullptr) << "the table is gone";
  HashIteratorDestroy(walk);
  EXPECT_EQ(HashFind(nullptr, 1), nullptr);
  EXPECT_EQ(HashIteratorCreate(nullptr), nullptr);
}

TEST(AddressText, ReadsEveryNotationAndNothingElse) {
  EXPECT_EQ(Parsed("192.0.2.255"), "1: 192.0.2.255");
  EXPECT_EQ(Parsed("::"), "2: 0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0");
  EXPECT_EQ(Parsed("::1"), "2: 0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.1");
  EXPECT_EQ(Parsed("2001:DB8::5"), "2: 32.1.13.184.0.0.0.0.0.0.0.0.0.0.0.5");
  EXPECT_EQ(Parsed("1::"), "2: 0.1.0.0.0.0.0.0.0.0.0.0.0.0.0.0");
  EXPECT_EQ(Parsed("1:2:3:4:5:6:7:8"), "2: 0.1.0.2.0.3.0.4.0.5.0.6.0.7.0.8");
  EXPECT_EQ(Parsed("1:2:3:4:5:6:192.0.2.7"), "2: 0.1.0.2.0.3.0.4.0.5.0.6.192.0.2.7");
  EXPECT_EQ(Parsed("::ffff:192.0.2.7"), "2: 0.0.0.0.0.0.0.0.0.0.255.255.192.0.2.7");
  for (const char* wrong :
       {"", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2..4", "1.2.3.4 ", "+1.2.3.4", "a.b.c.d", "1.2.3.0004", ":", ":::",
        "1::2::3", "1:2:3:4:5:6:7", "1:2:3:4:5:6:7:8:9", "1:2:3:4::5:6:7:8", "12345::", "g::", "1:", ":1", "1::2:",
        "::1%eth0", "1:2:3:4:5:6:7:1.2.3.4", "1.2.3.4::"}) {
    EXPECT_EQ(Parsed(wrong), "none") << wrong;
  }
}

TEST(Definitions, DefaultsNameDecodersThatExist) {
  ProtocolDefinitions definitions;
  for (const int32_t which : {QX_TCP_PORTS, QX_UDP_PORTS}) {
    const DecoderRowSpan ports = RegistryTable(which == QX_TCP_PORTS ? DoorKind::kTcpPort : DoorKind::kUdpPort);
    for (int32_t i = 0; i < ports.count; ++i) {
      char name[64] = "";
      ProtocolDefinitions::DisplayName(PortOf(definitions, which, static_cast<uint16_t>(ports.rows[i].key)), name,
                                       sizeof name);
      EXPECT_STREQ(name, ports.rows[i].name) << ports.rows[i].key;
    }
  }
  EXPECT_EQ(PortOf(definitions, QX_TCP_PORTS, 80), 0x10004);
  EXPECT_EQ(PortOf(definitions, QX_TCP_PORTS, 443), 0x10005);
  EXPECT_EQ(PortOf(definitions, QX_UDP_PORTS, 80), 0);
  EXPECT_EQ(PortOf(definitions, QX_TCP_PORTS, 111), 0x10063) << "behind record markers";
  EXPECT_EQ(PortOf(definitions, QX_UDP_PORTS, 111), 0x1008E);
}

TEST(Definitions, TakesEveryFormAndOverrides) {
  ProtocolDefinitions definitions;
  for (const char* text : {"tcp:8081=HTTP", " UDP : 10.0.0.1 : 5000 = snmp ", "tcp:10.0.0.1:0=http",
                           "tcp:[2001:db8::1]:80=HTTP", "tcp:80=netbios session SERVICE", "udp:700=ONC RPC"}) {
    const auto wrong = definitions.AddDefinition(text);
    EXPECT_FALSE(wrong) << *wrong;
  }
  EXPECT_EQ(PortOf(definitions, QX_TCP_PORTS, 8081), 0x10004);
  EXPECT_EQ(AddressOf(definitions, QX_UDP_ADDRESSES, V4(0x0A000001), 5000), 0x10006);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, V4(0x0A000001), 5000), 0);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, V4(0x0A000001), 0), 0x10004);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, V6(0x2001, 0xDB8, 1), 80), 0x10004);
  EXPECT_EQ(PortOf(definitions, QX_TCP_PORTS, 80), 0x1000B) << "over the built-in one";
  EXPECT_EQ(PortOf(definitions, QX_UDP_PORTS, 700), 0x1008E);
  const auto list = definitions.List();
  const auto http = std::find_if(list.begin(), list.end(), [](const auto& row) { return row.name == "HTTP"; });
  ASSERT_NE(http, list.end());
  EXPECT_EQ(http->identifier, 0x10004);
  EXPECT_EQ(http->definitions, (std::vector<std::string>{"tcp:591", "tcp:631", "tcp:8008", "tcp:8080", "tcp:8081", "tcp:10.0.0.1:0",
                                                         "tcp:[2001:db8::1]:80"}));
}

TEST(Definitions, RefusalsNameTheFault) {
  const std::pair<const char*, const char*> kCases[] = {
      {"tcp:99999=HTTP", "port \"99999\" is not a number from 1 to 65535"},
      {"tcp:0=HTTP", "port \"0\" is not a number from 1 to 65535"},
      {"tcp:=HTTP", "port \"\" is not"},
      {"tcp:-1=HTTP", "port \"-1\" is not"},
      {"tcp:80x=HTTP", "port \"80x\" is not"},
      {"tcp:99999999999999999999=HTTP", "port \"99999999999999999999\" is not"},
      {"udp:10.0.0.1:65536=SNMP", "port \"65536\" is not a number from 0 to 65535"},
      {"tcp:8081=NOTHING", "protocol \"NOTHING\" is unknown"},
      {"tcp:8081=", "protocol \"\" is unknown"},
      {"sctp:8081=HTTP", "transport \"sctp\" is neither tcp nor udp"},
      {"udp:10.0.0.999:5000=SNMP", "address \"10.0.0.999\" is not an IPv4 address"},
      {"udp:host:5000=SNMP", "address \"host\" is not an IPv4 address"},
      {"tcp:2001:db8::1:80=HTTP", "an IPv6 address stands in brackets"},
      {"tcp:[2001:db8::1::]:80=HTTP", "address \"2001:db8::1::\" is not an IPv6 address"},
      {"tcp:[2001:db8::1=HTTP", "is not closed"},
      {"tcp:[2001:db8::1]=HTTP", "no port follows the address \"2001:db8::1\""},
      {"tcp:8081", "no \"=\""},
      {"8081=HTTP", "no transport"},
      {"", "no \"=\""},
  };
  ProtocolDefinitions definitions;
  for (const auto& [text, fault] : kCases) {
    const auto wrong = definitions.AddDefinition(text);
    ASSERT_TRUE(wrong) << text;
    EXPECT_NE(wrong->find(fault), std::string::npos) << *wrong;
    EXPECT_NE(wrong->find(std::string("\"").append(text).append("\"")), std::string::npos) << *wrong;
  }
  EXPECT_EQ(PortOf(definitions, QX_TCP_PORTS, 8081), 0) << "nothing of a refused definition stays";
}

TEST(Definitions, LearntEndsAnswerBehindTheUsersWord) {
  ProtocolDefinitions definitions;
  const AddressSlot host = V4(0xC0000201);
  const DynamicRecord record{1, 2, 3};
  definitions.Learn(QX_OVER_TCP, 0x1010065, &host, 4000, nullptr);
  definitions.Learn(QX_OVER_UDP, 0x2050059, &host, 4000, &record);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, host, 4000), 0x1010065);
  EXPECT_EQ(AddressOf(definitions, QX_UDP_ADDRESSES, host, 4000), 0x2050059);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, host, 4001), 0);
  definitions.Learn(QX_OVER_TCP, 0x1010065, &host, 0, nullptr);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, host, 0), 0) << "it would claim every port of the address";
  definitions.Learn(0, 0x1010065, &host, 5000, nullptr);
  definitions.Learn(QX_OVER_TCP, 0, &host, 5000, nullptr);
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, host, 5000), 0);
  definitions.AddDefinition("tcp:192.0.2.1:4000=HTTP");
  EXPECT_EQ(AddressOf(definitions, QX_TCP_ADDRESSES, host, 4000), 0x10004);
  definitions.ForgetLearnt();
  EXPECT_EQ(AddressOf(definitions, QX_UDP_ADDRESSES, host, 4000), 0);
}

TEST(Definitions, AMillionConversationsStayInsideTheBound) {
  ProtocolDefinitions definitions;
  constexpr uint32_t kMany = 1000000;
  const uint32_t kept = kMostConversations;
  for (uint32_t i = 0; i < kMany; ++i) {
    const AddressSlot host = V4(i / 8);
    definitions.Learn(QX_OVER_UDP, 0x2050059, &host, static_cast<uint16_t>(1 + i % 8), nullptr);
  }
  EXPECT_EQ(definitions.CountLearnt(QX_OVER_UDP), kept);
  const auto knows = [&](uint32_t i) {
    return AddressOf(definitions, QX_UDP_ADDRESSES, V4(i / 8), static_cast<uint16_t>(1 + i % 8)) != 0;
  };
  EXPECT_TRUE(knows(kMany - 1));
  EXPECT_TRUE(knows(kMany - kept));
  EXPECT_FALSE(knows(kMany - kept - 1));
  EXPECT_FALSE(knows(0));
}

TEST(ConversationTable, WhatIsLearntAgainIsTheNewest) {
  ConversationTable table(2);
  const auto learn = [&](uint16_t port, int32_t identifier) { table.Learn({V4(1), port}, {identifier, {}}); };
  learn(1, 11);
  learn(2, 12);
  learn(1, 13);
  learn(3, 14);
  EXPECT_EQ(table.Count(), 2u);
  ASSERT_NE(table.Find(V4(1), 1), nullptr);
  EXPECT_EQ(table.Find(V4(1), 1)->identifier, 13);
  EXPECT_EQ(table.Find(V4(1), 2), nullptr);
}

}  // namespace
}  // namespace qxview
