// Protocols of text over several segments: what one segment leaves for the next, with the setting Reassembly and without.
#include <gtest/gtest.h>
#include <zlib.h>

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

struct Deflater {
  z_stream stream{};
  Deflater() { deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY); }
  ~Deflater() { deflateEnd(&stream); }
  Bytes Take(const std::string& text) {
    Bytes plain = Ascii(text), out(text.size() + 100);
    stream.next_in = plain.data();
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_SYNC_FLUSH);
    return Bytes(out.begin(), out.end() - static_cast<ptrdiff_t>(stream.avail_out));
  }
};

// Behind the answer that grants it each direction is one stream, which later segments refer back in; one that lacks a segment
// stays closed.
TEST(TextStreams, LinesGoOverToCompression) {
  const struct {
    uint16_t port;
    std::string asks, refuses, grants, command, shows, answer, answers;
  } kTalks[] = {
      {143, "a1 COMPRESS DEFLATE\r\n", "a1 NO not now\r\n", "a1 OK active\r\n", "a2 SELECT \"box of letters\"\r\n", "Command: SELECT",
       "* OK [READ-WRITE] the box of letters is selected\r\na2 OK done\r\n", "Answered"},
      {119, "COMPRESS DEFLATE\r\n", "503 not now\r\n", "206 active\r\n", "GROUP misc.test.letters\r\n", "Verb: GROUP",
       "211 1234 3000234 3002322 misc.test.letters\r\n", "Reply Code: 211"}};
  for (const auto& talk : kTalks) {
    for (const bool reassembles : {false, true}) {
      Talk wire(reassembles);
      Deflater client, server;
      wire.Send(40000, talk.port, talk.asks);
      wire.Send(talk.port, 40000, talk.refuses, true);
      EXPECT_EQ(wire.Send(40000, talk.port, talk.command).find("Compressed"), std::string::npos);
      wire.Send(40000, talk.port, talk.asks);
      wire.Send(talk.port, 40000, talk.grants, true);
      for (int i = 0; i < 3; ++i) {
        const std::string shown = wire.Send(40000, talk.port, client.Take(talk.command));
        EXPECT_NE(shown.find("Inflated Lines: "), std::string::npos) << shown;
        EXPECT_NE(shown.find(talk.shows), std::string::npos) << shown;
      }
      const Bytes answer = server.Take(talk.answer);
      const auto middle = answer.begin() + static_cast<ptrdiff_t>(answer.size() / 2);
      EXPECT_NE(wire.Send(talk.port, 40000, Bytes(answer.begin(), middle), true).find("in Part"), std::string::npos);
      const std::string joined = wire.Send(talk.port, 40000, Bytes(middle, answer.end()), true);
      EXPECT_NE(joined.find(talk.answers == "Answered" ? "Response: a2 OK done" : talk.answers), std::string::npos) << joined;
      EXPECT_NE(wire.Send(talk.port, 40000, Ascii("no stream"), true).find("in Part"), std::string::npos);
      const std::string damaged = wire.Send(talk.port, 40000, Hex("0000FFFF"), true);
      EXPECT_NE(damaged.find("Compressed Data"), std::string::npos) << damaged;
    }
  }
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
