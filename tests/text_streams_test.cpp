// Protocols of text over several segments: what one segment leaves for the next, with the setting Reassembly and without.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "tests/support/cases.h"
#include "tests/support/samples.h"

namespace qxview::testing {
namespace {

Bytes Ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }

struct ReassemblingHost : NamingHost {
  explicit ReassemblingHost(bool reassembles) {
    settings = {{"Reassembly", reassembles ? "1" : "0"}, {"IgnoreChecksums", "1"}};
  }
};

// Two ends that talk: each segment follows the one that its end sent before between the same ports.
class Talk {
 public:
  explicit Talk(bool reassembles = false) : host_(reassembles) {}

  // The application's lines without their ranges.
  std::string Send(uint16_t from, uint16_t to, const Bytes& payload, bool toClient = false) {
    uint32_t& sequence = sequences_[{from, to}];
    TcpParts parts;
    parts.sourcePort = from;
    parts.destinationPort = to;
    parts.sequence = 1000 + sequence;
    parts.payload = payload;
    sequence += static_cast<uint32_t>(payload.size());
    Bytes datagram = IPv4(6, Tcp(parts));
    if (toClient) std::swap_ranges(datagram.begin() + 12, datagram.begin() + 16, datagram.begin() + 16);
    Record record(Ethernet(0x0800, datagram));
    record->packetNumber = ++number_;
    view_.Decode(record);
    return ApplicationOf(view_.Text());
  }
  std::string Send(uint16_t from, uint16_t to, const std::string& payload, bool toClient = false) {
    return Send(from, to, Ascii(payload), toClient);
  }

 private:
  static std::string ApplicationOf(const std::string& tree) {
    std::string text, line;
    bool behindTcp = false;
    std::istringstream lines(tree);
    while (std::getline(lines, line)) {
      const bool isTop = !line.starts_with(' ');
      if (isTop && line.starts_with("TCP ")) behindTcp = true;
      else if (behindTcp && (isTop || !text.empty())) text += line.substr(0, line.rfind(" {")) + "\n";
    }
    return text;
  }

  ReassemblingHost host_;
  TestView view_{&host_};
  std::map<std::pair<uint16_t, uint16_t>, uint32_t> sequences_;
  uint64_t number_ = 0;
};

// Messages that are cut anywhere are shown as those that are whole.
TEST(TextStreams, MessagesAreJoinedWhereverTheyAreCut) {
  const std::string ymsg = "YMSG" + std::string("\0\x10\0\0\0\x09\0\x4C\0\0\0\0\0\0\0\0", 16) + "1\xC0\x80" "anna\xC0\x80";
  const std::pair<uint16_t, std::string> messages[] = {
      {5050, ymsg},
      {602, "MSG 0 1 . 52 12\r\nhello world!END\r\n"},
      {3690, "( success ( 1 2 ( ) ( edit-pipeline svndiff1 ) ) 3:a)( ) "},
      {2575, "\x0BMSH|^~\\&|A|B\rPID|1\r\x1C\r"},
      {5222, "<message to='a@b.example'><body>x > y</body><x a=\"'>\"/></message>"},
  };
  for (const auto& [port, message] : messages) {
    Talk whole(true);
    const std::string expected = whole.Send(40000, port, message);
    for (size_t cut = 1; cut < message.size(); ++cut) {
      Talk talk(true);
      EXPECT_TRUE(talk.Send(40000, port, message.substr(0, cut)).starts_with("Reassembly: ")) << port << " " << cut;
      EXPECT_EQ(talk.Send(40000, port, message.substr(cut)), expected) << port << " " << cut;
    }
  }
}

TEST(TextStreams, DataConnectionsAreLearntFromTheControlConnection) {
  Talk talk;
  EXPECT_EQ(talk.Send(40001, 5001, "hello\r\n").find("FTP Data"), std::string::npos);
  talk.Send(21, 40000, "227 Passive (10,0,0,2,19,137)\r\n", true);
  EXPECT_EQ(talk.Send(5001, 40001, "a list\r\n", true), "FTP Data: a list\n  Line: a list\n");
  talk.Send(21, 40000, "229 Extended (|||5002|)\r\n", true);
  EXPECT_EQ(talk.Send(40002, 5002, Hex("00 01 02")), "FTP Data: 3 bytes\n  Data\n");
  talk.Send(40000, 21, "EPRT |1|10.0.0.1|5003|\r\n");
  EXPECT_EQ(talk.Send(20, 5003, "file", true), "FTP Data: file\n  Line: file\n");
  // A server's own services stay what they are.
  talk.Send(21, 40000, "227 Passive (10,0,0,2,0,25)\r\n", true);
  EXPECT_TRUE(talk.Send(40003, 25, "NOOP\r\n").starts_with("SMTP: NOOP\n"));
}

// What a session description in properties of binary Megaco announces is known of the datagrams that follow.
TEST(TextStreams, MediaAreLearntFromPropertiesOfGateways) {
  NamingHost host;
  host.settings = {{"IgnoreChecksums", "1"}};
  TestView view(&host);
  const auto send = [&view](const Bytes& ports, const Bytes& payload, uint64_t number) {
    const Bytes length{static_cast<uint8_t>((payload.size() + 8) >> 8), static_cast<uint8_t>(payload.size() + 8)};
    Bytes datagram = IPv4(17, ports + length + Hex("0000") + payload);
    const Bytes gateway = Hex("C0000209");
    std::copy(gateway.begin(), gateway.end(), datagram.begin() + 12);
    Record record(Ethernet(0x0800, datagram));
    record->packetNumber = number;
    view.Decode(record);
    return view.Text();
  };
  const Bytes media = Hex("80 60 0001 00000000 00000001 FC") + Bytes(20, 1);
  EXPECT_EQ(send(Hex("7530 0050"), media, 1).find("opus"), std::string::npos);
  for (const DecodeCase& each : CasesOf("megaco_binary")) {
    if (each.title.find("a session description in properties") != std::string::npos) send(Hex("0B81 0B81"), each.payload.bytes, 2);
  }
  EXPECT_NE(send(Hex("7530 0050"), media, 3).find("opus"), std::string::npos) << view.Text();
}

TEST(TextStreams, ElementsAndScriptsGoOnInTheNextSegment) {
  Talk talk;
  talk.Send(40000, 5222, "<iq to='anna@example.test' id='1");
  EXPECT_EQ(talk.Send(40000, 5222, "2'/><presence/>"), "XMPP: Continued Element\n  Rest of Tag: 2'/>\n  presence\n");
  EXPECT_EQ(talk.Send(40000, 5222, "<presence/>"), "XMPP: presence\n  presence\n");

  talk.Send(40001, 4190, "PUTSCRIPT \"main\" {12+}\r\nkeep;\n");
  EXPECT_EQ(talk.Send(40001, 4190, "stop;\n\r\nNOOP\r\n"),
            "ManageSieve: Continued Script\n  Script Line: stop;\n  End of Line\n  Command: NOOP\n    Verb: NOOP\n");
}

}  // namespace
}  // namespace qxview::testing
