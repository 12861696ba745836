#include "decoders/app/summaries.h"
#include "tests/support/summary_cases.h"

namespace qxview::testing {
namespace {

using Data = const uint8_t*;

SummaryMember Ftp(int32_t limit, int32_t isData) {
  return [=](Data d, int32_t n, char* out, int32_t size) { return DescribeFtp(d, n, out, size, limit, isData); };
}
SummaryMember Smtp(int32_t limit) {
  return [=](Data d, int32_t n, char* out, int32_t size) { return DescribeSmtp(d, n, out, size, limit); };
}
SummaryMember Telnet(int32_t commands, int32_t dataLimit, int32_t printableOnly, bool clean) {
  return [=](Data d, int32_t n, char* out, int32_t size) {
    return DescribeTelnet(d, n, out, size, commands, dataLimit, printableOnly, clean);
  };
}
SummaryMember Sip(int32_t flag) {
  return [=](Data d, int32_t n, char* out, int32_t size) { return DescribeSip(d, n, out, size, flag); };
}
SummaryMember Mgcp() {
  return [](Data d, int32_t n, char* out, int32_t size) {
    TextBuffer buffer{static_cast<uint16_t>(size), out};
    return DescribeMgcp(d, n, &buffer);
  };
}
SummaryMember Fix() {
  return [](Data d, int32_t n, char* out, int32_t size) {
    return DescribeFix(d, n, out, static_cast<uint16_t>(size < 0 ? 0 : size));
  };
}

void AddFileTransfer(std::vector<SummaryCase>& cases) {
  const auto add = [&](SummaryMember member, const std::string& message, const std::string& text, int32_t result = 1) {
    cases.push_back({"FTP", std::move(member), Ascii(message), text, result});
  };
  add(Ftp(-1, 0), "USER anonymous\r\nPASS x\r\n", "FTP Command: USER anonymous");
  add(Ftp(-1, 0), "PWD\r\n", "FTP Command: PWD");
  add(Ftp(-1, 0), "user anonymous\r\n", "FTP Command: user");
  add(Ftp(-1, 0), "XYZZY a b\r\n", "FTP Command: XYZZY");
  add(Ftp(-1, 0), "USERS a\r\n", "FTP Command: USERS");
  add(Ftp(-1, 0), std::string(80, 'w') + " x\r\n", "FTP Command: " + std::string(64, 'w'));
  add(Ftp(-1, 0), "220 Welcome\r\nnext", "FTP Reply Code: 220, Message: Welcome");
  add(Ftp(3, 0), "220 Welcome\r\n", "FTP Reply Code: 220, Message: Wel");
  add(Ftp(0, 0), "220 Welcome\r\n", "FTP Reply Code: 220");
  add(Ftp(-1, 0), "220-\001bell\r\n", "FTP Reply Code: 220");
  add(Ftp(-1, 0), "220 \r\n", "FTP Reply Code: 220");
  add(Ftp(-1, 0), "220", "FTP Reply Code: 220");
  add(Ftp(-1, 0), "2200 x\r\n", "FTP Command: 2200");
  add(Ftp(-1, 0), " x\r\n", "FTP Data");
  add(Ftp(-1, 0), "\r\nUSER x\r\n", "", 0);
  add(Ftp(-1, 0), "NOOP\rx\n", "FTP Command: NOOP\rx\n");   // no CR LF: the whole payload is the line
  add(Ftp(-1, 1), "\r\nbytes", "FTP Data ");
}

void AddMail(std::vector<SummaryCase>& cases) {
  const auto smtp = [&](int32_t limit, const std::string& message, const std::string& text) {
    cases.push_back({"SMTP", Smtp(limit), Ascii(message), text});
  };
  smtp(-1, "250 2.1.0 Ok\r\n", "SMTP Reply: 250, Message: 2.1.0 Ok");
  smtp(-1, "250-SIZE 100\r\n250 HELP\r\n", "SMTP Reply: 250, Message: -SIZE 100");
  smtp(4, "250 2.1.0 Ok\r\n", "SMTP Reply: 250, Message: 2.1.");
  smtp(0, "250 2.1.0 Ok\r\n", "SMTP Reply: 250");
  smtp(-1, "354\r\n", "SMTP Reply: 354");
  smtp(-1, "220 a\tb\001c\r\n", "SMTP Reply: 220, Message: a bc");
  smtp(-1, "220 " + std::string(400, 'm'), "SMTP Reply: 220, Message: " + std::string(300, 'm'));
  smtp(350, "220 " + std::string(400, 'm'), "SMTP Reply: 220, Message: " + std::string(350, 'm'));
  smtp(-1, "MAIL FROM:<a@b.example> SIZE=9\r\n", "SMTP Command: MAIL FROM:, Message: <a@b.example> SIZE=9");
  smtp(-1, "rcpt to: <c@d.example>\r\n", "SMTP Command: rcpt to:, Message: <c@d.example>");
  smtp(-1, "EHLO client.example\r\n", "SMTP Command: EHLO, Message: client.example");
  smtp(-1, "DATA\r\n", "SMTP Command: DATA");
  smtp(-1, "DATABASE\r\n", "SMTP Data");
  smtp(-1, "\r\nSubject: x\r\n", "SMTP Data");
  smtp(-1, "25", "SMTP Data");
  const auto pop3 = [&](const std::string& message, const std::string& text, int32_t result = 1) {
    cases.push_back({"POP3", DescribePop3, Ascii(message), text, result});
  };
  pop3("RETR 1\r\n", "POP3 Command: RETR 1");
  pop3("TOP 1 10\r\n", "POP3 Command: TOP 1 10");
  pop3("STAT\r\n", "POP3 Command: STAT");
  pop3("+OK 120 octets\r\nbody", "POP3 Response: +OK 120 octets");
  pop3("-ERR no such message\r\n", "POP3 Response: -ERR no such message");
  pop3("+OK\r\n", "POP3 Data");
  pop3("TOP\r\n", "POP3 Data");
  pop3("stat\r\n", "POP3 Data");
  pop3("\r\n+OK x\r\n", "", 0);
}

void AddTerminal(std::vector<SummaryCase>& cases) {
  const auto add = [&](SummaryMember member, const Bytes& message, const std::string& text) {
    cases.push_back({"Telnet", std::move(member), message, text});
  };
  const SummaryMember plain = Telnet(-1, 80, 1, true);
  add(plain, Hex("FFFD18 FFFB1F FFF9"),
      "TELNET Command: Do, Option: Terminal Type, Command: Will, Option: Negotiate About Window Size, "
      "Command: Go Ahead");
  add(Telnet(1, 80, 1, true), Hex("FFFD18 FFFB1F"), "TELNET Command: Do, Option: Terminal Type");
  add(Telnet(0, 80, 1, true), Hex("FFFD18"), "TELNET Data");
  add(plain, Hex("FFFD"), "TELNET Command: Do");
  add(plain, Hex("FFFDC8"), "TELNET Command: Do, Option: Unknown");
  add(plain, Hex("FFFB03 41 FFFB01"), "TELNET Command: Will, Option: Suppress Go Ahead");
  add(plain, Hex("FF00"), "TELNET Data");
  add(plain, Hex("FF"), "TELNET Data");
  add(plain, Ascii("login: \r\n"), "TELNET Data: login: ");
  add(Telnet(-1, 80, 0, true), Ascii("a\r\n\xE4z"), "TELNET Data: a...z");
  add(Telnet(-1, 80, 1, false), Ascii("a\r\n"), "TELNET Data: a..");
  add(Telnet(-1, 3, 0, true), Ascii("abcdef"), "TELNET Data: abc");
  add(Telnet(-1, -1, 0, true), Ascii(std::string(300, 'a')), "TELNET Data: " + std::string(300, 'a'));
  add(Telnet(-1, 0, 0, true), Ascii("abc"), "TELNET Data");
  add(plain, Ascii("\r\n"), "TELNET Data");
}

void AddCalls(std::vector<SummaryCase>& cases) {
  const std::string invite =
      "INVITE sip:bob@example.org SIP/2.0\r\nVia: SIP/2.0/UDP h\r\nf: \"A\" <sip:alice@example.org>;tag=1\r\n"
      "To: sip:bob@example.org;x=1\r\nCall-ID: 77@h\r\nCSeq: 4 INVITE\r\n\r\nFrom: body\r\n";
  cases.push_back({"SIP", Sip(1), Ascii(invite),
                   "SIP INVITE sip:bob@example.org, From: sip:alice@example.org, To: sip:bob@example.org, "
                   "CSeq: 4 INVITE, Call-ID: 77@h"});
  cases.push_back({"SIP", Sip(0), Ascii("SIP/2.0 486 Busy Here\r\nCSeq: 4 INVITE\r\nCall-ID: 77@h\r\n\r\n"),
                   "SIP Status: 486 Busy Here, CSeq: 4 INVITE"});
  cases.push_back({"SIP", Sip(1), Ascii("SIP/2.0\r\n\r\n"), "", 0});
  cases.push_back({"SIP", Sip(1), Ascii("\r\n\r\n"), "", 0});
  cases.push_back({"SIP", Sip(1), Ascii("GET / HTTP/1.1\r\n\r\n"), "", 0});
  cases.push_back({"RTSP", DescribeRtsp,
                   Ascii("SETUP rtsp://h/a RTSP/1.0\r\nCSeq: 3\r\nTransport: RTP/AVP\r\n\r\n"),
                   "RTSP SETUP rtsp://h/a, CSeq: 3"});
  cases.push_back({"RTSP", DescribeRtsp, Ascii("RTSP/1.0 200 OK\r\nCSeq: 3\r\nSession: 9;timeout=60\r\n\r\n"),
                   "RTSP Status: 200 OK, CSeq: 3, Session: 9;timeout=60"});
  cases.push_back({"RTSP", DescribeRtsp, Hex("24 01 0010 80C8"), "RTSP Interleaved Data, Channel: 1, Length: 16"});
  cases.push_back({"RTSP", DescribeRtsp, Ascii("v=0\r\n"), "RTSP Data"});
  cases.push_back({"MGCP", Mgcp(), Ascii("CRCX 1204 aaln/1@gw.example.org MGCP 1.0\r\nC: A3\r\n"),
                   "MGCP Command: CRCX (Create Connection), Transaction: 1204, Endpoint: aaln/1@gw.example.org"});
  cases.push_back({"MGCP", Mgcp(), Ascii("200 1204 OK\r\nI: FDE\r\n"), "MGCP Response: 200 OK, Transaction: 1204"});
  cases.push_back({"MGCP", Mgcp(), Ascii("\r\n"), "", 0});
  cases.push_back({"Megaco", DescribeMegaco,
                   Ascii("MEGACO/1 [192.0.2.1]:2944\r\nTransaction = 9998 {\r\n Context = $ {\r\n  Add = A4444 {\r\n"
                         "   Media { Stream = 1 } },\r\n  W-Subtract = * } }"),
                   "Megaco H.248 Text - Transaction = 9998, Context = $, Add = A4444, Subtract = *, "
                   "From: [192.0.2.1]:2944"});
  cases.push_back({"Megaco", DescribeMegaco, Ascii("!/1 <gw> P=9{C=1{N=t{}}}"),
                   "Megaco H.248 Text - Reply = 9, Context = 1, Notify = t, From: <gw>"});
  cases.push_back({"Megaco", DescribeMegaco, Ascii("nothing"), "Megaco H.248 Text - Data"});
}

void AddOrders(std::vector<SummaryCase>& cases) {
  const auto fix = [&](std::string message, const std::string& text) {
    for (char& c : message) c = c == '|' ? '\x01' : c;
    cases.push_back({"FIX", Fix(), Ascii(message), text});
  };
  fix("8=FIX.4.2|9=99|35=D|34=4|49=BUYER|56=SELLER|11=O1|55=IBM|54=1|38=100|44=9.5|10=128|8=FIX.4.2|35=0|",
      "New Order - Single, Sequence: 4, Sender: BUYER, Target: SELLER, Order: O1, Symbol: IBM, Side: Buy, "
      "Quantity: 100, Price: 9.5");
  fix("x|10=001|8=FIX.4.4|9=9|35=AE|34=7|", "Trade Capture Report, Sequence: 7");
  fix("8=FIX.4.4|9=9|35=8|39=2|58=done|", "Execution Report, Status: Filled, Text: done");
  fix("8=FIX.4.4|9=9|35=Zz|", "FIX Message Zz");
  fix("8=FIX.4.4|9", "FIX");
  fix("nothing", "FIX Data");
  const auto lpd = [&](const Bytes& message, const std::string& text) {
    cases.push_back({"LPD", DescribeLpd, message, text});
  };
  lpd(Hex("02") + Ascii("lp0\n"), "LPD Receive Job: lp0");
  lpd(Hex("03") + Ascii("123 dfA001host\n"), "LPD Data File: 123 dfA001host");
  lpd(Hex("02") + Ascii("77 cfA001host\n"), "LPD Control File: 77 cfA001host");
  lpd(Hex("03") + Ascii("lp0 user\n"), "LPD Queue State (Short): lp0 user");
  lpd(Hex("00"), "LPD Acknowledgement");
  lpd(Hex("01"), "LPD Negative Acknowledgement (1)");
  lpd(Ascii("%!PS\n"), "LPD Data");
}

}  // namespace

std::vector<SummaryCase> TextProtocolCases() {
  std::vector<SummaryCase> cases;
  AddFileTransfer(cases);
  AddMail(cases);
  AddTerminal(cases);
  AddCalls(cases);
  AddOrders(cases);
  return cases;
}

}  // namespace qxview::testing
