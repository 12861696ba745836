// The NetBIOS services and NetBIOS Frames: names, pointers, messages over several segments, and hostile ones. The forms
// that real hosts send stand in the golden decode of netbios.pcap.
#include "decoders/netbios/netbios.h"

#include <chrono>
#include <cstdlib>

#include "tests/support/decoding.h"
#include "tests/support/http_cases.h"

namespace qxview::testing {
namespace {

// A name's label in first-level encoding.
Bytes Encoded(const std::string& name, uint8_t suffix) {
  std::string plain = name;
  plain.resize(15, ' ');
  plain += static_cast<char>(suffix);
  Bytes label{32};
  for (const char c : plain) {
    label.push_back(static_cast<uint8_t>('A' + (static_cast<uint8_t>(c) >> 4)));
    label.push_back(static_cast<uint8_t>('A' + (c & 15)));
  }
  return label;
}

const Bytes kServer = Encoded("SERVER", 0x20) + Hex("00"), kClient = Encoded("CLIENT", 0x00) + Hex("00");
const Bytes kSmb = Hex("FF534D42 72 00000000 18 0140 0000 0000000000000000 0000 0000 0100 0000 0000 00 0000");

std::string FirstLine(const std::string& tree) { return tree.substr(0, tree.find('\n')); }

// The top lines of a tree.
std::vector<std::string> Tops(const std::string& tree) {
  std::vector<std::string> tops;
  for (size_t at = 0; at < tree.size(); at = tree.find('\n', at) + 1) {
    if (tree[at] != ' ') tops.push_back(tree.substr(at, tree.find('\n', at) - at));
  }
  return tops;
}

TEST(NetBios, NamesAreDecodedWithScopeSuffixAndPointers) {
  const auto query = [](const Bytes& name) {
    return TreeOfRun(DecodeNetBiosName, Hex("0001 0110 0001 0000 0000 0000") + name + Hex("0020 0001"));
  };
  const auto top = [&](const Bytes& name) { return FirstLine(query(name)); };
  EXPECT_EQ(query(Encoded("SERVER", 0x1B) + Hex("03 6F7267 00")).substr(0, 78),
            "NetBIOS Name Service: Query Request, SERVER<1B>.org {0+54}\n  Transaction ID: 0");
  ExpectInOrder(query(Encoded("SERVER", 0x1B) + Hex("03 6F7267 00")),
                {"Question: SERVER<1B>.org, NB {12+42}", "Name: SERVER<1B>.org = Domain Master Browser {12+38}",
                 "Label Length: 32 {12+1}", "Name: SERVER {13+30}", "Suffix: <1B> = Domain Master Browser {43+2}",
                 "Label Length: 3 {45+1}", "Scope Label: org {46+3}", "End of Name {49+1}",
                 "Type: 0x0020 = NB {50+2}"});
  EXPECT_NE(top(Encoded(std::string("*\0", 2) + std::string(13, 0), 0)).find(", *<00>"), std::string::npos);
  EXPECT_NE(top(Encoded("\x01\x02__MSBROWSE__\x02", 0x01)).find(", <01><02>__MSBROWSE__<02><01>"), std::string::npos);
  EXPECT_NE(query(Hex("20") + Bytes(32, 'x') + Hex("00")).find("(not in first-level encoding)"), std::string::npos);
  // Pointers lead backwards; to itself, forwards and outside they end the name.
  for (const char* pointer : {"C00C", "C00E", "C014", "FFFF"}) {
    ExpectInOrder(query(Hex(pointer)), {"Name:  (not in first-level encoding) {12+2}", "Compression Pointer: Offset",
                                        "Type: 0x0020 = NB {14+2}"});
  }
}

TEST(NetBios, RecordsOfRedirectionAndShortOnes) {
  const Bytes redirect = Hex("0002 8080 0000 0000 0001 0001") + kServer + Hex("0002 0001 00000000 0022") + kClient +
                         Hex("C038 0001 0001 0000003C 0004 C0000205");
  ExpectInOrder(TreeOfRun(DecodeNetBiosName, redirect),
                {"Authority Record: SERVER<20>, NS", "Time to Live: 0 seconds = Infinite", "Name Server: CLIENT<00>",
                 "Additional Record: CLIENT<00>, A", "Time to Live: 60 seconds", "Address: 192.0.2.5"});
  // More names and more data than there are.
  const Bytes status = Hex("0003 8400 0000 0001 0000 0000") + kServer + Hex("0021 0001 00000000 FFFF FF") +
                       Hex("53455256455220202020202020202020 0400 5345");
  ExpectInOrder(TreeOfRun(DecodeNetBiosName, status),
                {"Data Length: 65535", "Number of Names: 255", "SERVER<20>: Unique, B-Node, Active", "Statistics"});
  const Bytes counts = Hex("0004 0110 FFFF FFFF FFFF FFFF") + kServer + Hex("0020 0001 C00C 0020");
  const std::string tree = TreeOfRun(DecodeNetBiosName, counts);
  ExpectInOrder(tree, {"Question: SERVER<20>, NB {12+38}", "Question: SERVER<20> {50+4}"});
  EXPECT_EQ(tree.find("Answer: "), std::string::npos);
  EXPECT_EQ(TreeOfRun(DecodeNetBiosName, Bytes(11)), "");
}

TEST(NetBios, DatagramsHandTheirDataOn) {
  const auto datagram = [](const char* offset, const Bytes& data) {
    const size_t length = kClient.size() + kServer.size() + data.size();
    return Hex("11 0A 0001 C0000201 008A") + Bytes{static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)} +
           Hex(offset) + kClient + kServer + data;
  };
  EXPECT_EQ(Tops(TreeOfRun(DecodeNetBiosDatagram, datagram("0000", kSmb))),
            (std::vector<std::string>{
                "NetBIOS Datagram Service: Direct Group Datagram, CLIENT<00> -> SERVER<20> {0+82}",
                "CIFS: Client Request - Negotiate Protocol   (TID=0x0000, PID=0x0000:0x0001, UID=0x0000, MID=0x0000) "
                "{82+32}"}));
  // A later fragment, data that is no SMB, and a length that lies.
  for (const Bytes& message :
       {datagram("0200", kSmb), datagram("0000", Bytes(40, 'x')), datagram("0000", Hex("FF53"))}) {
    ExpectInOrder(TreeOfRun(DecodeNetBiosDatagram, message), {"Destination Name: SERVER<20>", "User Data {82"});
    EXPECT_EQ(Tops(TreeOfRun(DecodeNetBiosDatagram, message)).size(), 1u);
  }
  ExpectInOrder(TreeOfRun(DecodeNetBiosDatagram, Hex("10 02 0001 C0000201 008A 0010 0000") + kClient),
                {"Datagram Length: 16", "Extra Data {30"});
  ExpectInOrder(TreeOfRun(DecodeNetBiosDatagram, Hex("16 02 0001 C0000201 008A") + kServer),
                {"Negative Query Response, SERVER<20>", "Destination Name: SERVER<20> = File Server Service"});
}

TEST(NetBios, SessionsOfSeveralMessagesAndSegments) {
  const auto tops = [](const Bytes& segment) { return Tops(TreeOfRun(DecodeNetBiosSession, segment)); };
  using Lines = std::vector<std::string>;
  const std::string cifs =
      "CIFS: Client Request - Negotiate Protocol   (TID=0x0000, PID=0x0000:0x0001, UID=0x0000, MID=0x0000) ";
  EXPECT_EQ(tops(Hex("85000000 00000023") + kSmb + Hex("00000023") + kSmb + Hex("83000001 82")),
            (Lines{"NetBIOS Session Service: Session Keep-Alive {0+4}",
                   "NetBIOS Session Service: Session Message, 35 bytes {4+4}", cifs + "{8+32}",
                   "NetBIOS Session Service: Session Message, 35 bytes {43+4}", cifs + "{47+32}",
                   "NetBIOS Session Service: Negative Session Response, Called Name Not Present {82+5}"}));
  // A message that goes on in later segments, its length with the extension bit, and what goes on with one.
  const std::string large = TreeOfRun(DecodeNetBiosSession, Hex("00011000") + kSmb);
  ExpectInOrder(large, {"Session Message, 35 of 69632 bytes {0+4}", ".......1: Length Extension = 1",
                        "Length: 4096 (69632 with the extension)", cifs + "{4+32}"});
  EXPECT_EQ(tops(Bytes(100, 'x')), (Lines{"CIFS: Continuation Data, 100 bytes {0+100}"}));
  EXPECT_EQ(tops(Bytes(100)), (Lines{"CIFS: Continuation Data, 100 bytes {0+100}"}));
  EXPECT_EQ(tops(Hex("00000004 01020304")), (Lines{"NetBIOS Session Service: Session Message, 4 bytes {0+4}",
                                                   "CIFS: Continuation Data, 4 bytes {4+4}"}));
  EXPECT_EQ(tops(Hex("00000004 01020304 01020304")), (Lines{"CIFS: Continuation Data, 12 bytes {0+12}"}));
  EXPECT_EQ(tops(Hex("00000023")), (Lines{"NetBIOS Session Service: Session Message, 0 of 35 bytes {0+4}"}));
  ExpectInOrder(TreeOfRun(DecodeNetBiosSession, Hex("00000040 FE534D42") + Bytes(60)), {"SMB 2 Message {4+64}"});
  ExpectInOrder(TreeOfRun(DecodeNetBiosSession, Hex("81000044") + kServer + kClient),
                {"Session Request, CLIENT<00> -> SERVER<20> {0+72}", "Called Name: SERVER<20>"});
}

TEST(NetBios, FramesWithoutANetworkLayer) {
  const Bytes plain = Hex("534552564552202020202020202020 20 434C49454E54202020202020202020 00");
  const struct {
    const char* header;
    std::vector<std::string> texts;
  } kCases[] = {
      {"2C00 FFEF 00 00 0000 0000 0100", {"Add Group Name Query, CLIENT<00> {", "Domain/Workgroup"}},
      {"2C00 FFEF 0A 00 0500 0000 0700", {"Name Query, CLIENT<00> -> SERVER<20>", "Local Session Number = 5"}},
      {"2C00 FFEF 0F 02 1080 0000 0700", {"Names Sent So Far", "Frame Too Short for Status = True", "Data = 16"}},
      {"0E00 FFEF 17 81 B505 0100 0200 0304", {"Session Confirm, Session 4 -> 3", "Version 2.00", "1461 = Largest"}},
      {"0E00 FFEF 18 00 0100 0000 0000 0304", {"Session End", "1 = Abnormal End"}},
      {"0E00 FFEF 19 8F 0001 0000 0000 0304", {"Largest Frame Value = 7", "Source Session Number: 4"}},
      {"0E00 FFEF 16 0C 0000 0000 0000 0304", {"Data Only Last", "Acknowledgement with Data Allowed = True"}},
  };
  for (const auto& c : kCases) {
    const Bytes frame = Hex(c.header) + (c.header[0] == '2' ? plain : Bytes{});
    ExpectInOrder(TreeOfRun(DecodeNetBiosFrame, frame), c.texts);
  }
  const Bytes data = Hex("0E00 FFEF 15 00 0000 0000 0000 0304");
  EXPECT_EQ(Tops(TreeOfRun(DecodeNetBiosFrame, data + kSmb)).size(), 2u);
  EXPECT_EQ(Tops(TreeOfRun(DecodeNetBiosFrame, data + Bytes(40, 'x')))[1], "CIFS: Continuation Data, 40 bytes {14+40}");
  EXPECT_EQ(TreeOfRun(DecodeNetBiosFrame, Hex("0E00 FFEE 15 00 0000 0000 0000 0304")), "") << "another delimiter";
  EXPECT_EQ(TreeOfRun(DecodeNetBiosFrame, Hex("0D00 FFEF 15 00 0000 0000 0000 0304")), "") << "a header too short";
}

TEST(NetBios, HostileMessagesAreBounded) {
  const Bytes counts = Hex("0001 8400 FFFF FFFF FFFF FFFF");
  Bytes chain = counts;   // names of which each points to the one before it
  for (int at = 12; at < 16000; at += 8) {
    chain = chain + Hex("01 78") + (at == 12 ? Hex("0000") : Bytes{static_cast<uint8_t>(0xC0 | (at - 8) >> 8),
                                                                  static_cast<uint8_t>(at - 8)}) + Hex("0020 0001");
  }
  const struct {
    const char* name;
    DecoderFunction decode;
    Bytes message;
  } kCases[] = {
      {"keep-alives", DecodeNetBiosSession, Repeat(Hex("85000000"), 16384)},
      {"empty messages", DecodeNetBiosSession, Repeat(Hex("00000001 41"), 13107)},
      {"questions that point to one name", DecodeNetBiosName,
       counts + Repeat(Hex("01 61"), 150) + Hex("00 0020 0001") + Repeat(Hex("C00C 0020 0001"), 10800)},
      {"names in a chain of pointers", DecodeNetBiosName, chain},
      {"a name of all labels", DecodeNetBiosName, counts + Repeat(Hex("01 61"), 32700)},
      {"addresses", DecodeNetBiosName, Hex("0001 8400 0000 0001 0000 0000 00 0020 0001 00000000 FFFF") + Bytes(65500)},
  };
  constexpr double kMost = 200;   // milliseconds: far above what any takes, far below what a quadratic walk would
  for (const auto& c : kCases) {
    double best = 1e9;
    RunOnSmallStack([&] {
      TestView view;
      best = BestMilliseconds([&] {
        ClearDecodeTree(&view.view(), &view.tree(), true);
        view.Run(c.decode, c.message);
      });
    });
    EXPECT_LT(best, kMost * kSlowness) << c.name;
    if (std::getenv("QXVIEW_TIMES")) printf("%8.3f ms  %s\n", best, c.name);
  }
}

}  // namespace
}  // namespace qxview::testing
