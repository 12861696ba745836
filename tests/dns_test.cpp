#include "decoders/app/dns.h"

#include "tests/support/decoding.h"

namespace qxview {
int32_t DecodeDns(const Place& at, Cursor c);
int32_t DecodeLlmnr(const Place& at, Cursor c);
int32_t DecodeMdns(const Place& at, Cursor c);

namespace testing {
namespace {

// A segment from a client's port to the server's.
int32_t DecodeDnsOverTcp(const Place& at, Cursor c) {
  PacketOf(at).ipProtocol = 6;
  PacketOf(at).sourcePort = 40000;
  PacketOf(at).destinationPort = 53;
  return DecodeDns(at, c);
}

constexpr const char* kQuestionHex = R"(
  03 777777 07 6578616D706C65 03 636F6D 00   # www.example.com at 12
  0001 0001
)";

const Bytes kQuery = Hex("1234 0100 0001 0000 0000 0000") + Hex(kQuestionHex);

const Bytes kResponse = Hex("1234 8180 0001 0002 0001 0000") + Hex(kQuestionHex) + Hex(R"(
  C00C 0005 0001 00000E10 0006  03 637331 C010             # CNAME cs1.example.com, the name at 45
  C02D 0001 0001 0000003C 0009  5DB8D822 5DB8D823 FF       # two addresses and a byte more
  C010 0006 0001 00000E10 0021                             # SOA
       02 6E73 C010  05 61646D696E C010
       78A3F601 00001C20 00000E10 00127500 00000E10
)");

TEST(Dns, Query) {
  EXPECT_EQ(TreeOfRun(DecodeDns, kQuery), R"(DNS: Query, www.example.com {0+45}
  Transaction ID: 0x1234 {0+2}
  Flags: QR=Query, OPCODE=Standard Query, AA=F, TC=F, RD=T, RA=F, RCODE=Success {2+2}
    0.......: (QR) Query/Response = Query {2+1}
    .0000...: (OPCODE) Operation Code [0] = Standard Query {2+1}
    .....0..: (AA) Authoritative Answer = False {2+1}
    ......0.: (TC) Truncation = False {2+1}
    .......1: (RD) Recursion Desired = True {2+1}
    0.......: (RA) Recursion Available = False {3+1}
    .000....: Reserved {3+1}
    ....0000: (RCODE) Result Code [0] = Success {3+1}
  Question Record Count: 1 {4+2}
  Answer Record Count: 0 {6+2}
  Authority Record Count: 0 {8+2}
  Additional Record Count: 0 {10+2}
  Question Record #1:www.example.com, Type=Host Record (A), Class=Internet {12+21}
    Domain Name:www.example.com {12+17}
      Name Section: www {12+4}
      Name Section: example {16+8}
      Name Section: com {24+4}
      Name Terminator: 0x00 {28+1}
    Type: [0x0001] = Host Record (A) {29+2}
    Class: [0x0001] = Internet {31+2}
)");
}

// The lines below the header's.
std::string EntriesOf(const std::string& tree) {
  const size_t at = tree.find("Additional Record Count");
  return at == std::string::npos ? tree : tree.substr(tree.find('\n', at) + 1);
}

TEST(Dns, ResponseWithNamesAddressesAndAuthority) {
  const std::string tree = TreeOfRun(DecodeDns, kResponse);
  EXPECT_EQ(tree.substr(0, tree.find('\n')),
            "DNS: Response, www.example.com, cs1.example.com, cs1.example.com=93.184.216.34=93.184.216.35 {0+129}");
  EXPECT_EQ(EntriesOf(tree), R"(  Question Record #1:www.example.com, Type=Host Record (A), Class=Internet {12+21}
    Domain Name:www.example.com {12+17}
      Name Section: www {12+4}
      Name Section: example {16+8}
      Name Section: com {24+4}
      Name Terminator: 0x00 {28+1}
    Type: [0x0001] = Host Record (A) {29+2}
    Class: [0x0001] = Internet {31+2}
  Answer Record #1:www.example.com, Type=Alias (CNAME), Class=Internet, cs1.example.com {33+18}
    Domain Name:www.example.com {33+2}
      Name Pointer: [0xC00C] = www.example.com {33+2}
    Type: [0x0005] = Alias (CNAME) {35+2}
    Class: [0x0001] = Internet {37+2}
    TTL: 3600 Seconds {39+4}
    Data Length: 6 {43+2}
    Name Server:cs1.example.com {45+6}
      Name Section: cs1 {45+4}
      Name Pointer: [0xC010] = example.com {49+2}
  Answer Record #2:cs1.example.com, Type=Host Record (A), Class=Internet, 93.184.216.34, 93.184.216.35 {51+21}
    Domain Name:cs1.example.com {51+2}
      Name Pointer: [0xC02D] = cs1.example.com {51+2}
    Type: [0x0001] = Host Record (A) {53+2}
    Class: [0x0001] = Internet {55+2}
    TTL: 60 Seconds {57+4}
    Data Length: 9 {61+2}
    Host Address: 93.184.216.34 {63+4}
    Host Address: 93.184.216.35 {67+4}
    Additional DNS Data {71+1}
  Authority Record #1:example.com, Type=Start of Zone Authority (SOA), Class=Internet, ns.example.com, admin.example.com {72+45}
    Domain Name:example.com {72+2}
      Name Pointer: [0xC010] = example.com {72+2}
    Type: [0x0006] = Start of Zone Authority (SOA) {74+2}
    Class: [0x0001] = Internet {76+2}
    TTL: 3600 Seconds {78+4}
    Data Length: 33 {82+2}
    Primary name Server:ns.example.com {84+5}
      Name Section: ns {84+3}
      Name Pointer: [0xC010] = example.com {87+2}
    Authority's Mailbox:admin.example.com {89+8}
      Name Section: admin {89+6}
      Name Pointer: [0xC010] = example.com {95+2}
    Serial Number: 0x78A3F601 {97+4}
    Refresh Interval: 7200 {101+4}
    Retry Interval: 3600 {105+4}
    Expiration Limit: 1209600 {109+4}
    Minimum TTL: 3600 {113+4}
)");
}

TEST(Dns, AddressRecordOfIPv6EndsTheWalk) {
  const Bytes header = Hex("0001 8180 0000 0002 0000 0000");
  const Bytes address = Hex("00 001C 0001 0000003C 0010  20010DB8 00000000 00000000 00000001");
  EXPECT_EQ(EntriesOf(TreeOfRun(DecodeDns, header + address)),
            R"(  Answer Record #1:, Type=All Associated Records (AAAA), Class=Internet {12+27}
    Domain Name: {12+1}
      Name Terminator: 0x00 {12+1}
    Type: [0x001C] = All Associated Records (AAAA) {13+2}
    Class: [0x0001] = Internet {15+2}
    TTL: 60 Seconds {17+4}
    Data Length: 16 {21+2}
    IPv6 Address:20010DB8::01 {23+16}
      Type : Global Unicast {23+16}
      Address : 20010DB8::01 {23+16}
)");
  const std::string two = EntriesOf(TreeOfRun(DecodeDns, header + address + address));
  EXPECT_NE(two.find("    DNS Data {23+43}\n"), std::string::npos) << two;
  EXPECT_EQ(two.find("IPv6 Address"), std::string::npos) << two;
  EXPECT_EQ(two.find("Answer Record #2"), std::string::npos) << two;
}

// The dispatch value 5 (AD and the highest RCODE bit), not the operation code, makes an update.
TEST(Dns, UpdateNamesItsSectionsAndKeepsTheStandardFlags) {
  const Bytes update = Hex("00AA 2828 0001 0001 0001 0000  01 61 00 0006 0001") +
                       Hex("C00C 00FF 0064 00000000 0000") + Hex("C00C 0063 0001 00000000 0003 010203");
  const std::string tree = TreeOfRun(DecodeLlmnr, update);
  EXPECT_EQ(tree.substr(0, tree.find('\n')), "Microsoft LLMNR: Query, a {0+58}");
  EXPECT_NE(tree.find("Flags: QR=Query, OPCODE=Update, AA=F, TC=F, RD=F, RA=F, RCODE=RR Set Does Not Exist {2+2}"),
            std::string::npos) << tree;
  EXPECT_NE(tree.find(R"(  Zone Entry Count: 1 {4+2}
  Prerequisite Record Count: 1 {6+2}
  Update Record Count: 1 {8+2}
  Additional Record Count: 0 {10+2}
  Zone Record #1:a, Type=Start of Zone Authority (SOA), Class=Internet {12+7}
)"), std::string::npos) << tree;
  EXPECT_NE(tree.find(R"(  Answer Record #1:a, Type=All (ANY), Class=0x0064 {19+12}
    Domain Name:a {19+2}
      Name Pointer: [0xC00C] = a {19+2}
    Type: [0x00FF] = All (ANY) {21+2}
    Class: [0x0064] = Reserved {23+2}
    TTL: 0 Seconds {25+4}
    Data Length: 0 {29+2}
  Authority Record #1:a, Type=Undefined, Class=Internet {31+15}
)"), std::string::npos) << tree;
  EXPECT_NE(tree.find("    DNS Data {43+3}\n"), std::string::npos) << tree;
}

TEST(Dns, MulticastVariantsHaveFlagsOfTheirOwn) {
  const Bytes message = Hex("0000 8500 0000 0000 0000 0000");
  EXPECT_EQ(TreeOfRun(DecodeMdns, message), R"(Multicast DNS: Response {0+24}
  Transaction ID: 0x0000 {0+2}
  Flags: QR=Response, OPCODE=Standard Query, C = T, TC=F, T=T, RCODE=Success {2+2}
    1.......: (QR) Query/Response = Response {2+1}
    .0000...: (OPCODE) Operation Code [0] = Standard Query {2+1}
    .....1..: (C) Conflict = True {2+1}
    ......0.: (TC) Truncation = False {2+1}
    .......1: (T) Tentative = True {2+1}
    0000....: Reserved {3+1}
    ....0000: (RCODE) Result Code [0] = Success {3+1}
  Question Record Count: 0 {4+2}
  Answer Record Count: 0 {6+2}
  Authority Record Count: 0 {8+2}
  Additional Record Count: 0 {10+2}
)");
  EXPECT_EQ(TreeOfRun(DecodeLlmnr, Hex("01")), "Microsoft LLMNR: {0+12}\n  DNS Data {0+1}\n");
}

TEST(Dns, ShortUnknownAndFollowingMessages) {
  EXPECT_EQ(TreeOfRun(DecodeDns, Bytes(11)), "DNS: {0+12}\n  DNS Data {0+11}\n");
  EXPECT_EQ(TreeOfRun(DecodeDns, Hex("0001 0020 0000 0000 0000 0000 FFFF")), "DNS: {0+14}\n  DNS Data {0+14}\n")
      << "the AD bit alone is the dispatch value 4";
  for (const char* decoded : {"0001 0080 0000 0000 0000 0000", "0001 0010 0000 0000 0000 0000"}) {
    EXPECT_NE(TreeOfRun(DecodeDns, Hex(decoded)).find("Transaction ID"), std::string::npos) << decoded;
  }
  const std::string two = TreeOfRun(DecodeDns, kQuery + kQuery + Hex("00"));
  EXPECT_NE(two.find("\nDNS: Query, www.example.com {33+45}\n"), std::string::npos) << two;
  EXPECT_NE(two.find("\nDNS: {66+12}\n  DNS Data {66+1}\n"), std::string::npos) << two;
  EXPECT_EQ(TreeOfRun(DecodeDns, {}), "");
}

TEST(Dns, EndsQuietlyWhereTheBytesEnd) {
  const auto cut = [](size_t length) {
    Bytes bytes = kResponse;
    bytes.resize(length);
    return EntriesOf(TreeOfRun(DecodeDns, bytes));
  };
  const auto expect = [](const std::string& tree, const char* part) {
    EXPECT_NE(tree.find(part), std::string::npos) << part << " in\n" << tree;
  };
  expect(cut(41), "  Answer Record #1:www.example.com, Type=Alias (CNAME), Class=Internet {33+12}\n");
  expect(cut(41), "    TTL: 0 Seconds {39+4}\n");   // read whole, zero beyond the data
  expect(cut(48), ", Class=Internet, cs {33+18}\n");   // the data length counts as it stands
  // An answer of fewer than 6 bytes is shown but not taken; the message ends there.
  const std::string shortest = cut(55);
  expect(shortest, "  Answer Record #2:cs1.example.com, Type=Host Record (A) {51+10}\n");
  expect(shortest, "\nDNS: {51+12}\n  DNS Data {51+4}\n");
  EXPECT_EQ(shortest.find("Authority"), std::string::npos);
}

TEST(Dns, TimeToLiveIsReadFromTheFrameBeyondTheMessage) {
  const Bytes message = Hex("0001 8180 0000 0001 0000 0000  00 0001 0001 0102");
  Record record(message + Hex("0304"));
  TestView view;
  view.Run([](const Place&, Cursor) { return 1; }, {});
  view.context().packet.frame = record.get();
  const int32_t length = static_cast<int32_t>(message.size());
  DecodeDns(TopLevel(&view.view(), 3), MakeCursor(FrameData(record.get()), 0, length));
  EXPECT_NE(view.Text().find("TTL: 16909060 Seconds {17+4}"), std::string::npos) << view.Text();
}

TEST(Dns, RejectedPointers) {
  const std::string question = EntriesOf(TreeOfRun(DecodeDns, Hex("0001 0100 0001 0000 0000 0000 C00C 0001 0001")));
  EXPECT_EQ(question, R"(  Question Record #1: {12+0}
    Malformed DNS Name Field Data {12+6}
  DNS Data {0+18}
)");
  // In a response and in a record the name ends the message without that block.
  EXPECT_EQ(EntriesOf(TreeOfRun(DecodeDns, Hex("0001 8180 0001 0000 0000 0000 01 61 C010 0001 0001"))),
            R"(  Question Record #1:a. {12+0}
    Domain Name:a. {12+2}
      Name Section: a {12+2}
  DNS Data {0+20}
)");
  const Bytes response = Hex("0001 8180 0000 0001 0000 0000  C00C 0001 0001 00000000 0000");
  const std::string record = TreeOfRun(DecodeDns, kQuery + response);
  EXPECT_NE(record.find("\n  Answer Record #1: {45+6}\n  DNS Data {33+24}\n"), std::string::npos) << record;
  EXPECT_EQ(record.find("Malformed"), std::string::npos);
  // An update that fails is stepped over: the next message starts behind its header.
  const std::string update = TreeOfRun(DecodeDns, Hex("0001 0028 0001 0000 0000 0000 C00C") + kQuery);
  EXPECT_NE(update.find("\nDNS:"), std::string::npos) << update;
}

TEST(Dns, TcpFramingAndContinuation) {
  const auto framed = [](uint16_t length, const Bytes& message) {
    return Bytes{static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)} + message;
  };
  const std::string tree = TreeOfRun(DecodeDnsOverTcp, framed(33, kQuery) + framed(33, kQuery));
  EXPECT_EQ(tree.find("DNS: Query, www.example.com {0+45}\n  DNS Length: 33 {0+2}\n  Transaction ID: 0x1234 {2+2}\n"),
            0u) << tree;
  EXPECT_NE(tree.find("\nDNS: Query, www.example.com {35+45}\n  DNS Length: 33 {35+2}\n"), std::string::npos) << tree;

  const std::string whole = "DNS Continuation Data {8:0+35}\n";
  EXPECT_EQ(TreeOfRun(DecodeDnsOverTcp, framed(36, kQuery)), whole) << "the prefix is more than all bytes";
  Bytes recursive = framed(36, kQuery);
  recursive[5] = 0x80;   // RD and RA make up for the prefix
  EXPECT_NE(TreeOfRun(DecodeDnsOverTcp, recursive), whole);
  Bytes response = framed(33, kQuery);
  response[4] = 0x81;    // the client's side is now the destination, port 53
  EXPECT_EQ(TreeOfRun(DecodeDnsOverTcp, response), whole);
  Bytes operation = framed(33, kQuery);
  operation[4] = 0x31;
  EXPECT_EQ(TreeOfRun(DecodeDnsOverTcp, operation), whole);
  operation[4] = 0x01;
  operation[5] = 0x0B;
  EXPECT_EQ(TreeOfRun(DecodeDnsOverTcp, operation), whole);
  EXPECT_EQ(TreeOfRun(DecodeDnsOverTcp, Hex("0000000000")), "DNS Continuation Data {8:0+5}\n");
  EXPECT_EQ(TreeOfRun(DecodeDnsOverTcp, Hex("000212340100")),
            "DNS: {0+12}\n  DNS Length: 2 {0+2}\n  DNS Data {2+4}\n");
}

// The image of a top line's level; deeper levels than 3 are taken as 2 from the top line on.
TEST(Dns, LevelsAndImages) {
  TestView view;
  view.Run(DecodeDns, kQuery + kQuery, 5);
  const DecodeTree& tree = view.tree();
  const LineHandle first = tree.FirstChild(0), second = tree.NextSibling(first);
  EXPECT_EQ(tree.Image(first), LevelImage(5));
  EXPECT_EQ(tree.Image(tree.FirstChild(first)), LevelImage(3));
  EXPECT_EQ(tree.Image(second), LevelImage(2));
  const LineHandle question = tree.LastChild(first), flags = tree.NextSibling(tree.FirstChild(first));
  EXPECT_EQ(tree.Image(tree.FirstChild(question)), LevelImage(4));
  EXPECT_EQ(tree.Image(tree.FirstChild(tree.FirstChild(question))), LevelImage(5));
  EXPECT_EQ(tree.Image(tree.FirstChild(flags)), kBitFieldImage);
}

}  // namespace
}  // namespace testing
}  // namespace qxview
