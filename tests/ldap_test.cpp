#include "decoders/asn1/ldap.h"

#include "tests/support/decoding.h"
#include "tests/support/transport.h"

namespace qxview::testing {
namespace {

Bytes TextBytes(const std::string& text) { return Bytes(text.begin(), text.end()); }
// An element around its contents, with the length in as few octets as it takes.
Bytes Wrap(uint8_t identifier, const Bytes& contents) {
  const size_t size = contents.size();
  const Bytes length = size < 128     ? Bytes{static_cast<uint8_t>(size)}
                       : size < 65536 ? Bytes{0x82, static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(size)}
                                      : Bytes{0x83, static_cast<uint8_t>(size >> 16), static_cast<uint8_t>(size >> 8),
                                              static_cast<uint8_t>(size)};
  return Bytes{identifier} + length + contents;
}
Bytes Str(const std::string& text, uint8_t identifier = 0x04) { return Wrap(identifier, TextBytes(text)); }
Bytes Message(const Bytes& operation, const Bytes& controls = {}) {
  return Wrap(0x30, Hex("02 01 07") + operation + (controls.empty() ? controls : Wrap(0xA0, controls)));
}
Bytes Control(const std::string& oid, const Bytes& value) { return Wrap(0x30, Str(oid) + Wrap(0x04, value)); }
Bytes Search(const Bytes& filter) {
  return Wrap(0x63, Str("dc=test") + Hex("0A0102 0A0100 020100 020100 0101FF") + filter + Wrap(0x30, Str("cn")));
}
Bytes Item(uint8_t kind, const std::string& name, const std::string& value) {
  return Wrap(kind, Str(name) + Str(value));
}
const Bytes kUnbind = Hex("42 00");

// The lines without those of the elements themselves.
std::string Outline(const Bytes& payload, uint8_t ipProtocol = 0) {
  TestView view;
  view.Decode({});
  view.tree().Clear();
  view.context().packet.ipProtocol = ipProtocol;
  view.context().packet.linesLeft = 4 * kMostLines;   // the payload's own bounds come first
  const Bytes exact(payload);
  DecodeLdap(TopLevel(&view.view(), 5), MakeCursor(exact.data(), 0, static_cast<int32_t>(exact.size())));
  const std::string tree = view.Text();
  std::string kept;
  for (size_t at = 0; at < tree.size();) {
    const size_t end = tree.find('\n', at);
    const std::string line = tree.substr(at, end - at), body = line.substr(line.find_first_not_of(' '));
    const bool isPart = body.rfind("ASN ", 0) == 0 || body.rfind("Enumeration", 0) == 0 ||
                        body.rfind("Length  ", 0) == 0 || body[0] == '.' || body[0] == '0' || body[0] == '1' ||
                        body.find(" Type: {") != std::string::npos || body.find(" Length: ") != std::string::npos;
    if (!isPart) kept += line.substr(0, line.rfind(" {")) + "\n";
    at = end + 1;
  }
  return kept;
}

std::string TopLine(const Bytes& operation, const Bytes& controls = {}) {
  const std::string outline = Outline(Message(operation, controls));
  return outline.substr(0, outline.find('\n'));
}
std::string FilterText(const Bytes& filter) {
  const std::string line = TopLine(Search(filter));
  const std::string head = "LDAP: Search Request, ID=7, dc=test, Subtree, ";
  return line.rfind(head, 0) == 0 ? line.substr(head.size()) : line;
}

// What the recorded messages do not have: the rest is in the golden decode of ldap.pcap.
TEST(Ldap, TopLines) {
  const Bytes refused = Hex("0A0131 0400") + Str("why");
  EXPECT_EQ(TopLine(Wrap(0x60, Hex("020103") + Str("cn=a") + Hex("8900"))),
            "LDAP: Bind Request, ID=7, Version 3, cn=a, Sicily Package Discovery");
  EXPECT_EQ(TopLine(Wrap(0x61, refused)), "LDAP: Bind Response, ID=7, Invalid Credentials, why");
  EXPECT_EQ(TopLine(Wrap(0x66, Str("cn=a"))), "LDAP: Modify Request, ID=7, cn=a");
  EXPECT_EQ(TopLine(Hex("4A 04") + TextBytes("cn=a")), "LDAP: Delete Request, ID=7, cn=a");
  EXPECT_EQ(TopLine(Hex("50 02 0102")), "LDAP: Abandon Request, ID=7, Message 258");
  EXPECT_EQ(TopLine(Wrap(0x78, refused + Str("1.3.6.1.4.1.1466.20036", 0x8A))),
            "LDAP: Extended Response, ID=7, Invalid Credentials, why, Notice Of Disconnection");
  EXPECT_EQ(TopLine(kUnbind), "LDAP: Unbind Request, ID=7");
  EXPECT_EQ(TopLine(Wrap(0x68, Str(std::string(400, 'n')))).size(), 305u);
}

TEST(Ldap, Filters) {
  const Bytes present = Str("cn", 0x87);
  EXPECT_EQ(FilterText(present), "(cn=*)");
  EXPECT_EQ(FilterText(Wrap(0xA2, Wrap(0xA0, present + Item(0xA6, "a", "1")))), "(!(&(cn=*)(a<=1)))");
  EXPECT_EQ(FilterText(Item(0xA3, "o", "a*(b)\\\x01\xC3\xA4\xE4\xE2\x82\xAC\xE4\xB8\x89")),
            "(o=a\\2A\\28b\\29\\5C\\01\xE4\\E4\x80\\E4\\B8\\89)")
      << "what has a place in Windows-1252 stands there, the rest is escaped";
  EXPECT_EQ(FilterText(Wrap(0xA4, Str("cn") + Wrap(0x30, Str("x", 0x81)))), "(cn=*x*)");
  EXPECT_EQ(FilterText(Wrap(0xA4, Str("cn") + Wrap(0x30, Str("x", 0x82)))), "(cn=*x)");
  EXPECT_EQ(FilterText(Wrap(0xA4, Str("cn") + Wrap(0x30, Str("a", 0x80) + Str("b", 0x81) + Str("c", 0x81)))),
            "(cn=a*b*c*)");
  EXPECT_EQ(FilterText(Wrap(0xA9, Str("2.4", 0x81) + Str("v", 0x83) + Hex("8401FF"))), "(:dn:2.4:=v)");
  EXPECT_EQ(FilterText(Wrap(0xA0, {})), "(&)");
  EXPECT_EQ(FilterText(Hex("AA00")), "(?)");
  Bytes deep = present;
  for (int i = 0; i < 70; ++i) deep = Wrap(0xA2, deep);
  const std::string outline = Outline(Message(Search(deep)));
  EXPECT_EQ(outline.substr(0, outline.find('\n')).size(), 46u + 3 * 63 + 5)
      << "the text stops at the bound as well";
  EXPECT_NE(outline.find("\n" + std::string(16, ' ') + "Filter: (!("), std::string::npos);
  EXPECT_EQ(outline.find("\n" + std::string(18, ' ') + "Filter: "), std::string::npos) << "no deeper than the eighth";
  EXPECT_NE(outline.find("Undefined Data"), std::string::npos) << "the last of them";
  EXPECT_NE(outline.find("\n  Attributes: cn\n"), std::string::npos);
}

TEST(Ldap, ValuesOfControlsAndExtendedOperations) {
  const Bytes uuid = Hex("04 10 00112233 4455 6677 8899 AABBCCDDEEFF");
  const auto outlineOf = [](const std::string& oid, const Bytes& value) {
    const std::string outline = Outline(Message(kUnbind, Control(oid, value)));
    return outline.substr(outline.find("    Control: "));
  };
  EXPECT_EQ(outlineOf("1.3.6.1.4.1.4203.1.9.1.2", Wrap(0x30, Hex("0A0102") + uuid)),
            "    Control: 1.3.6.1.4.1.4203.1.9.1.2 = Sync State\n"
            "      Object Identifier: 1.3.6.1.4.1.4203.1.9.1.2 = Sync State\n"
            "      Control Value:\n"
            "        State: [2] = Modify\n"
            "        Entry UUID: 00112233-4455-6677-8899-aabbccddeeff\n");
  const struct {
    std::string oid;
    Bytes value;
    std::vector<std::string> lines;
  } kCases[] = {
      {"1.3.6.1.1.12", Item(0xA3, "cn", "a"), {"= Assertion\n", "        Filter: (cn=a)\n"}},
      {"1.3.6.1.4.1.42.2.27.8.5.1", Wrap(0x30, Hex("A003 800178 810101")),
       {"= Password Policy", "Warning:\n", "Seconds Before Expiration: 120\n", "Error: [1] = Account Locked\n"}},
      {"1.2.826.0.1.3344810.2.3", Wrap(0x30, Str("a", 0x87) + Str("b", 0x87)), {"Filter: (a=*)\n", "Filter: (b=*)\n"}},
      {"2.16.840.1.113730.3.4.9", Wrap(0x30, Hex("020100 020109") + Str("m", 0x81)), {"Greater Than Or Equal: m\n"}},
      {"1.3.6.1.4.1.4203.1.10.1", Hex("0101FF"), {"Visibility: True\n"}},
      {"1.2.840.113556.1.4.841", Wrap(0x30, Hex("020101 020102 0400 0500")), {"Cookie: <NULL>\n", "Undefined Data\n"}},
      {"2.16.840.1.113730.3.4.18", TextBytes("u:ann"), {"= Proxied Authorization\n", "Control Value: u:ann\n"}},
      {"1.2.3.4.5", Wrap(0x30, Hex("020101")), {"Control: 1.2.3.4.5\n", "Control Value: 30 03 02 01 01\n"}},
      {std::string("1.3.6.1.1.12\0\0\0\0\0\0\0\0\0\0\0\0", 24), Hex("30"), {"Control: 31 2E 33"}},
      {"1.2.840.113556.1.4.319", Hex("30"), {"= Paged Results\n", "Control Value: 0\n"}},
  };
  for (const auto& test : kCases) ExpectInOrder(outlineOf(test.oid, test.value), test.lines);

  const Bytes idSet = Wrap(0xA3, Str("c") + Hex("0101FF") + Wrap(0x31, uuid));
  const auto info = Outline(Message(Wrap(0x79, Str("1.3.6.1.4.1.4203.1.9.1.4", 0x80) + Wrap(0x81, idSet))));
  ExpectInOrder(info, {"Sync ID Set:\n", "Cookie: c\n", "Refresh Deletes: True\n", "Entries:\n", "Entry UUID: 0011"});
  const Bytes done = Hex("0A0100 0400 0400");
  ExpectInOrder(Outline(Message(Wrap(0x78, done + Wrap(0x8B, Wrap(0x30, Str("secret", 0x80)))))),
                {"Response Value:\n", "Generated Password: secret\n"});
  ExpectInOrder(Outline(Message(Wrap(0x78, done + Wrap(0x8B, TextBytes("dn:cn=a"))))), {"Response Value: dn:cn=a\n"});
}

TEST(Ldap, ValuesOfAttributes) {
  const auto valueOf = [](const std::string& name, const Bytes& value) {
    const std::string outline =
        Outline(Message(Wrap(0x64, Str("") + Wrap(0x30, Wrap(0x30, Str(name) + Wrap(0x31, Wrap(0x04, value)))))));
    return outline.substr(outline.find("Values:\n") + 16);
  };
  EXPECT_EQ(valueOf("objectguid", Hex("33221100 5544 7766 8899 AABBCCDDEEFF")),
            "Value: 00112233-4455-6677-8899-aabbccddeeff\n");
  EXPECT_EQ(valueOf("objectSid", Hex("01 02 000000000005 20000000 20020000")), "Value: S-1-5-32-544\n");
  EXPECT_EQ(valueOf("objectSid", Hex("01 03 000000000005 20000000 20020000")),
            "Value: 01 03 00 00 00 00 00 05 20 00 00 00 20 02 00 00\n");
  EXPECT_EQ(valueOf("cn", Hex("C3A4 C3")), "Value: C3 A4 C3\n") << "no UTF-8";
  ExpectInOrder(valueOf("cn", Hex("41 0A 42")), {"Value: A\\0AB\n"});
  // Names with pointers into the value; the address in front of the versions.
  const Bytes names = Hex("04746573740473697465 00 C018 026463 C018 02") + TextBytes("NB") + Hex("00 00 00 C01D C01D") +
                      Hex("10 0200 0185 C0000202 0000000000000000 05000000 FFFF FFFF");
  const std::string answer = valueOf("Netlogon", Hex("1700 0000 FD030000 00112233445566778899AABBCCDDEEFF") + names);
  ExpectInOrder(answer, {"Command: [23] = SAM Logon Response EX\n", "Flags: 0x000003FD\n",
                         "Domain GUID: {33221100-5544-7766-8899-AABBCCDDEEFF}\n", "DNS Forest Name: test.site\n",
                         "DNS Domain Name: test.site\n", "DNS Host Name: dc.test.site\n", "NetBIOS Domain Name: NB\n",
                         "NetBIOS Computer Name: <null string>\n", "User Name: <null string>\n",
                         "DC Site Name: site\n", "Client Site Name: site\n", "Port: 389\n",
                         "DC IP Address: 192.0.2.2\n", "NT Version: 0x00000005\n", "LM 2.0 Token: 0xFFFF\n"});
}

TEST(Ldap, SegmentsOfAStream) {
  const Bytes unbind = Message(kUnbind), entry = Message(Wrap(0x64, Str("cn=a") + Hex("30 00")));
  const auto part = [](const Bytes& of, size_t first, size_t count) {
    return Bytes(of.begin() + static_cast<ptrdiff_t>(first), of.begin() + static_cast<ptrdiff_t>(first + count));
  };
  const auto tops = [&](const Bytes& payload, uint8_t ipProtocol = 6) {
    const std::string outline = Outline(payload, ipProtocol);
    std::string kept;
    for (size_t at = 0; at < outline.size(); at = outline.find('\n', at) + 1) {
      if (outline[at] != ' ') kept += outline.substr(at, outline.find('\n', at) - at) + "; ";
    }
    return kept;
  };
  const std::string kUnbindLine = "LDAP: Unbind Request, ID=7; ", kRest = "LDAP Continuation Data; ";
  EXPECT_EQ(tops(unbind + unbind + Hex("30")), kUnbindLine + kUnbindLine + kRest);
  EXPECT_EQ(tops(part(entry, 0, 12)), "LDAP: Search Result Entry, ID=7, cn=, 12 of 15 Bytes; ");
  EXPECT_EQ(tops(part(entry, 9, 6) + entry + unbind), kRest + "LDAP: Search Result Entry, ID=7, cn=a; " + kUnbindLine);
  EXPECT_EQ(tops(Hex("30 05 02 01 07 64 7F") + TextBytes("abc")), "LDAP: Search Result Entry, ID=7; " + kRest);
  EXPECT_EQ(tops(TextBytes("abc"), 17), "") << "datagrams begin with a message";
  EXPECT_EQ(tops(Hex("160301 0001 00")), "SSL/TLS; ");

  const Bytes length = Hex("00000017"), trailer = Hex("00112233445566778899 0001 00000003");
  EXPECT_EQ(tops(length + unbind + trailer + length + unbind + trailer),
            "LDAP: SASL Buffer, 23 Bytes; " + kUnbindLine + "LDAP: SASL Buffer, 23 Bytes; " + kUnbindLine);
  ExpectInOrder(Outline(length + unbind + trailer), {"Message Authentication Code: 00 11", "Sequence Number: 3\n"});
  EXPECT_EQ(tops(Hex("00000004 DEADBEEF")), "LDAP: SASL Buffer, 4 Bytes; ");
  EXPECT_EQ(tops(Hex("00000005 DEADBEEF")), kRest) << "nothing says that it is one";
  const Bytes sealed = Hex("0504 06 FF 0010 001C 0000000000000009 DEADBEEF");
  EXPECT_EQ(tops(Hex("00000100") + sealed), "LDAP: SASL Buffer, 20 of 256 Bytes; ");
  ExpectInOrder(Outline(Hex("00000014") + sealed), {"Token ID: 0x0504", "Sequence Number: 9\n", "Encrypted Data\n"});
  const Bytes turned = Hex("0504 00 FF 0002 0002 0000000000000009 ABCD") + unbind;
  EXPECT_EQ(tops(Hex("00000019") + turned), "LDAP: SASL Buffer, 25 Bytes; " + kUnbindLine);
  const Bytes gss = Wrap(0x60, Hex("06 03 2A0304 0201 1100 FFFF FFFF 0000000000000001 0000000000000002") +
                                   Hex("0000000000000003") + unbind);
  EXPECT_EQ(tops(Hex("0000002E") + gss), "LDAP: SASL Buffer, 46 Bytes; " + kUnbindLine);
  EXPECT_EQ(tops(Hex("00000017 01000000 1122334455667788 05000000") + unbind),
            "LDAP: SASL Buffer, 23 Bytes; " + kUnbindLine);
}

int32_t ResultOf(const Bytes& payload) {
  TestView view;
  return view.Run(DecodeLdap, payload);
}

TEST(Ldap, Results) {
  ASSERT_TRUE(FindBuiltinDecoder(0x07));
  EXPECT_EQ(FindBuiltinDecoder(0x07)->decode, &DecodeLdap);
  EXPECT_EQ(ResultOf(Message(kUnbind)), 1);
  EXPECT_EQ(ResultOf(Hex("30 06 02 01 07 42 00")), 2) << "one octet more is to come";
  EXPECT_EQ(ResultOf(Hex("30 05 02 01 07 5F 00")), 0) << "no operation";
  EXPECT_EQ(ResultOf(Hex("30 80 02 01 07 42 00 00 00")), 0) << "no definite length";
  EXPECT_EQ(ResultOf(Hex("30 09 02 05 0000000007 42 00")), 0) << "no message ID";
  EXPECT_EQ(ResultOf(Hex("30 84 FFFFFFFF 02 01 07 42 00")), 0);
  EXPECT_EQ(ResultOf(Hex("30 84 7FFFFFFF 02 01 07 64 84 FFFFFFFF 04 01 61")), 2);
  EXPECT_EQ(ResultOf({}), 1);
}

TEST(Ldap, WhatIsPastTheBoundIsDumped) {
  const std::string names = Outline(Message(Wrap(0x73, Repeat(Str("ldap://a/"), kMostLdapElements))));
  EXPECT_NE(names.find("  URI: ldap://a/\n  More Elements\n"), std::string::npos);
  const std::string messages = Outline(Repeat(Message(kUnbind), kMostLdapElements));
  EXPECT_NE(messages.find("\nMore LDAP Messages\n"), std::string::npos);
}

TEST(Ldap, HostilePayloadsAreBounded) {
  const auto times = [](const Bytes& what, size_t size) { return Repeat(what, size / what.size()); };
  constexpr size_t kSize = 60000;
  Bytes deep;
  for (int i = 0; i < 10000; ++i) deep = deep + Hex("A0 84 0000FF00");
  Bytes within = Wrap(0xA9, times(Hex("8000"), kSize));
  for (int i = 0; i < 60; ++i) within = Wrap(0xA2, within);
  const struct {
    const char* what;
    Bytes payload;
  } kCases[] = {
      {"extensible matches of many parts", Message(Search(within))},
      {"filters nested without an end", Message(Search(deep))},
      {"filters of no definite length", Message(Search(times(Hex("A2 80"), 20000)))},
      {"empty filters", Message(Search(Wrap(0xA0, times(Hex("A000"), kSize))))},
      {"present filters", Message(Search(Wrap(0xA1, times(Hex("8700"), kSize))))},
      {"substrings", Message(Search(Wrap(0xA4, Str("a") + Wrap(0x30, times(Hex("8100"), kSize)))))},
      {"attributes", Message(Wrap(0x64, Str("") + Wrap(0x30, times(Hex("30040400 3100"), kSize))))},
      {"values",
       Message(Wrap(0x64, Str("") + Wrap(0x30, Wrap(0x30, Str("a") + Wrap(0x31, times(Hex("0400"), kSize))))))},
      {"selected attributes", Message(Wrap(0x63, Str("") + Hex("0A0102 0A0100 020100 020100 010100 870161") +
                                                     Wrap(0x30, times(Hex("0400"), kSize))))},
      {"controls", Message(kUnbind, times(Hex("3000"), kSize))},
      {"named controls", Message(kUnbind, times(Wrap(0x30, Str("1.2.840.113556.1.4.9")), kSize))},
      {"messages", times(Message(kUnbind), kSize)},
      {"message heads", times(Hex("30 82 FFFF 02 01 07"), kSize)},
      {"SASL buffers", times(Hex("00000010 01000000 1122334455667788 05000000"), kSize)},
      {"one long string", Message(Wrap(0x68, Wrap(0x04, Bytes(kSize, 'a'))))},
      {"lengths", Message(Wrap(0x64, times(Hex("04 84 FFFFFFFF"), kSize)))},
  };
  for (const auto& test : kCases) {
    double best = 1e9;
    TestView view;
    for (int run = 0; run < 3; ++run) {
      ClearDecodeTree(&view.view(), &view.tree(), true);
      best = std::min(best, RunOnSmallStack([&] { view.Run(DecodeLdap, test.payload); }));
    }
    EXPECT_LT(best, kMostMilliseconds) << test.what;
    if (std::getenv("QXVIEW_TIMES")) printf("%8.3f ms  %s\n", best, test.what);
  }
}

}  // namespace
}  // namespace qxview::testing
