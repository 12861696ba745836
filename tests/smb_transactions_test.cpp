#include "decoders/smb/smb_requests.h"
#include "tests/support/smb_messages.h"

namespace qxview::testing {
namespace {

// A transaction's message: its counts and offsets come from the parts.
struct Parts {
  int command = 50;
  Way way = kRequest;
  Flags2 flags2 = kUnicode;
  Bytes setup = {}, name = {}, parameters = {}, data = {};
  int function = 0;       // of NT Transaction
  int displacement = 0;   // of the data
};

Bytes Message(const Parts& p) {
  const bool isNt = p.command >= 160, isReply = p.way == kResponse;
  const size_t width = isNt ? 4 : 2;
  const size_t fixed = isNt ? (isReply ? 36 : 38) : (isReply ? 20 : 28);
  const size_t bytesAt = 32 + 1 + fixed + p.setup.size() + 2;
  const auto align = [](size_t at) { return (at + 3) & ~size_t{3}; };
  const size_t parametersAt = align(bytesAt + p.name.size());
  const size_t dataAt = align(parametersAt + p.parameters.size());
  const int size = static_cast<int>(width);
  const auto place = [&](size_t count, size_t at) { return Little(count, size) + Little(at, size); };
  const Bytes totals = Little(p.parameters.size(), size) + Little(p.data.size(), size);
  Bytes words;
  if (isReply) {
    words = (isNt ? Bytes(3) + totals : totals + Bytes(2)) + place(p.parameters.size(), parametersAt) + Bytes(width) +
            place(p.data.size(), dataAt) + Little(static_cast<size_t>(p.displacement), size) +
            Little(p.setup.size() / 2, 1) + (isNt ? Bytes{} : Bytes(1));
  } else {
    words = (isNt ? Bytes(3) : Bytes{}) + totals + Bytes(2 * width) + (isNt ? Bytes{} : Bytes(10)) +
            place(p.parameters.size(), parametersAt) + place(p.data.size(), dataAt) + Little(p.setup.size() / 2, 1) +
            (isNt ? Little(static_cast<size_t>(p.function), 2) : Bytes(1));
  }
  words = words + p.setup;
  Bytes bytes = p.name + Bytes(parametersAt - bytesAt - p.name.size()) + p.parameters;
  if (!p.data.empty()) bytes = bytes + Bytes(dataAt - parametersAt - p.parameters.size()) + p.data;
  return Header(p.command, p.way, p.flags2) + Little(words.size() / 2, 1) + words + Little(bytes.size(), 2) + bytes;
}

Bytes Trans2(int subcommand, const Bytes& parameters, const Bytes& data = {}) {
  return Message({.setup = Little(static_cast<size_t>(subcommand), 2), .name = Bytes(1), .parameters = parameters, .data = data});
}
Bytes Trans2Reply(const Bytes& parameters, const Bytes& data, int displacement = 0) {
  return Message({.way = kResponse, .parameters = parameters, .data = data, .displacement = displacement});
}

Bytes Nt(int function, const Bytes& parameters, const Bytes& data = {}, const Bytes& setup = {}) {
  return Message({.command = 160, .setup = setup, .parameters = parameters, .data = data, .function = function});
}
Bytes NtReply(const Bytes& parameters, const Bytes& data, const Bytes& setup = {}) {
  return Message({.command = 160, .way = kResponse, .setup = setup, .parameters = parameters, .data = data});
}
Bytes Rap(int function, const char* parameters, const char* data, const Bytes& values, const Bytes& sent = {}) {
  return Message({.command = 37, .flags2 = kOem, .name = Oem("\\PIPE\\LANMAN"),
                  .parameters = Little(static_cast<size_t>(function), 2) + Oem(parameters) + Oem(data) + values,
                  .data = sent});
}
Bytes RapReply(const Bytes& parameters, const Bytes& data) {
  return Message({.command = 37, .way = kResponse, .flags2 = kOem, .parameters = parameters, .data = data});
}
Bytes Mailslot(const char* name, const Bytes& data, Flags2 flags2 = kOem) {
  return Message({.command = 37, .flags2 = flags2, .setup = Hex("0100 0000 0200"), .name = Oem(name), .data = data});
}
Bytes Pipe(int function, const Bytes& data, Way way = kRequest) {
  if (way == kResponse) return Message({.command = 37, .way = way, .data = data});
  return Message({.command = 37, .setup = Little(static_cast<size_t>(function), 2) + Hex("0140"),
                  .name = Bytes(1) + Wide("\\PIPE\\"), .data = data});
}

// What the last message shows behind its byte count, offsets from the message's first byte; no bit lines.
std::string BytesOf(const std::vector<Bytes>& messages) {
  TestView view;
  for (const Bytes& message : messages) view.Run(DecodeOneSmb, message);
  const std::string tree = view.Text();
  std::string out;
  bool behind = false;
  for (size_t at = 0; at < tree.size();) {
    const size_t end = tree.find('\n', at);
    const std::string line = tree.substr(at, end - at);
    at = end + 1;
    const bool isBit = line.find(" = True") != std::string::npos || line.find(" = False") != std::string::npos;
    if (behind && !isBit) out += line + "\n";
    behind = behind || line.find("    Byte Count: ") == 0;
  }
  return out;
}

TEST(SmbTransactions, RequestsAreKeptByConnectionAndMessage) {
  TestView view;
  View& v = view.view();
  Record record({}, 0);
  PacketState& packet = v.context->packet;
  const Place at = TopLevel(&v, 3);
  SmbMessage message{{}, 50, 0, 1, 2, 3, 4, false, false};
  const auto learn = [&](uint64_t number, uint32_t function) {
    record->packetNumber = number;
    packet.frame = record.get();
    LearnSmbRequest(at, message, {function, 0, 0, false, {}, {}, {}});
  };
  const auto find = [&](uint64_t number) {
    record->packetNumber = number;
    SmbRequest found;
    return FindSmbRequest(at, message, &found) ? static_cast<int>(found.function) : -1;
  };
  learn(5, 1);
  learn(9, 2);
  EXPECT_EQ(find(4), -1) << "a reply in front of every request";
  EXPECT_EQ(find(7), 1);
  EXPECT_EQ(find(10), 2) << "the last request before the reply";
  learn(9, 3);
  EXPECT_EQ(find(10), 3) << "a packet decoded once more replaces what it said";
  packet.quoted = true;
  learn(9, 4);
  EXPECT_EQ(find(10), -1) << "nothing is learnt from or told to a quoted packet";
  packet.quoted = false;
  EXPECT_EQ(find(10), 3);
  message.command = 51;
  EXPECT_EQ(find(10), 3) << "secondary messages go with their transaction";
  for (uint32_t SmbMessage::* part : {&SmbMessage::tid, &SmbMessage::pid, &SmbMessage::uid, &SmbMessage::mid}) {
    SmbMessage other = message;
    ++(other.*part);
    SmbRequest found;
    EXPECT_FALSE(FindSmbRequest(at, other, &found));
  }
  packet.sourcePort = 1;
  EXPECT_EQ(find(10), -1) << "another connection";
  for (uint32_t i = 0; i < 100000; ++i) {
    message.mid = i & 0xFFFF;
    message.uid = i >> 16;
    learn(20, i);
  }
  for (uint32_t i = 99900; i < 100000; ++i) {
    message.mid = i & 0xFFFF;
    message.uid = i >> 16;
    EXPECT_EQ(find(21), static_cast<int>(i)) << "the latest stay";
  }
  packet.frame = nullptr;
}

TEST(SmbTransactions, BytesStandWhereTheWordsSay) {
  const Bytes request = Trans2(7, Hex("0140 0801"));
  const Bytes reply = Trans2Reply(Hex("0000"), Little(4, 4) + Hex("6100 6200"));
  EXPECT_EQ(std::string("\n").append(BytesOf({request, reply})), R"(
    Query File Information Reply {55+13}
      Pad: 00 {55+1}
      Parameter Bytes {56+2}
        EA Error Offset: 0 {56+2}
      Pad1: 00 00 {58+2}
      Data Bytes {60+8}
        File Name Length: 4 {60+4}
        File Name: ab {64+4}
)");
  const std::string dumps = "    Pad: 00 {55+1}\n    Parameter Bytes {56+2}\n    Pad1: 00 00 {58+2}\n    Data Bytes {60+8}\n";
  EXPECT_EQ(BytesOf({reply}), dumps) << "no request";
  // A later part of the data is a dump though the request is known.
  const std::string later = BytesOf({request, Trans2Reply({}, Hex("01020304"), 8)});
  EXPECT_NE(later.find("Data Bytes {56+4}\n"), std::string::npos) << later;
  EXPECT_EQ(later.find("File Name"), std::string::npos);
  const Bytes secondary = Header(51, kRequest, kOem) +
                          Block("0600 0800 0200 3800 0400 0400 3C00 0400 FFFF", Hex("000000 AAAA 0000 BBBBBBBB"));
  EXPECT_EQ(BytesOf({secondary}), "    Pad: 00 00 00 {53+3}\n    Parameter Bytes {56+2}\n    Pad1: 00 00 {58+2}\n"
                                  "    Data Bytes {60+4}\n");
  // Data in front of the parameters, and offsets that are nowhere.
  Bytes swapped = reply;
  swapped[32 + 1 + 8] = 64, swapped[32 + 1 + 14] = 56;
  ExpectInOrder(BytesOf({request, swapped}), {"Pad: 00 {55+1}", "Parameter Bytes {64+2}", "Data Bytes {56+8}"});
  for (const uint8_t offset : {0x00, 0x20, 0x37 - 1, 0xFF}) {
    Bytes lost = reply;
    lost[32 + 1 + 8] = lost[32 + 1 + 14] = offset;
    EXPECT_EQ(BytesOf({lost}), "    Byte Data {55+13}\n") << int{offset};
  }
}

// Every level's fields end where the published structure does, with its last field there.
TEST(SmbTransactions, LevelsHaveTheirPublishedSizes) {
  const struct {
    int subcommand, level;
    size_t size;
    const char* last;
  } kRows[] = {
      {5, 0x001, 22, "Attributes: "}, {5, 0x002, 26, "EA Size: "}, {5, 0x004, 4, "EA List Size: "},
      {5, 0x101, 40, "Reserved: "}, {5, 0x102, 24, "Reserved: "}, {5, 0x103, 4, "EA Size: "},
      {5, 0x104, 4, "File Name Length: "}, {5, 0x107, 72, "File Name Length: "}, {5, 0x109, 24, "Stream Allocation"},
      {5, 0x10B, 16, "Reserved: "}, {5, 0x200, 100, "Number Of Links: "}, {5, 0x204, 6, "Default Entries: "},
      {5, 0x206, 16, "Attribute Flags: "}, {5, 0x20B, 116, "File Flags Mask: "}, {5, 1006, 8, "Index Number: "},
      {5, 1018, 100, "File Name Length: "}, {5, 1023, 8, "Completion Mode: "}, {5, 1024, 40, "Named Pipe End: "},
      {5, 1025, 12, "Maximum Collection"}, {5, 1034, 56, "Reserved: "}, {5, 1035, 8, "Reparse Tag: "},
      {3, 0x001, 18, "Bytes Per Sector: "}, {3, 0x102, 18, "Reserved: "}, {3, 0x103, 24, "Bytes Per Sector: "},
      {3, 0x104, 8, "Device Characteristics: "}, {3, 0x105, 12, "File System Name Length: "},
      {3, 0x200, 12, "Capabilities High: "}, {3, 0x201, 56, "File System Identifier: "}, {3, 1006, 48, "Padding: "},
      {3, 1007, 32, "Bytes Per Sector: "}, {3, 1008, 64, "Extended Info: "}};
  for (const auto& row : kRows) {
    const Bytes level = Little(static_cast<size_t>(row.level), 2);
    const Bytes request = Trans2(row.subcommand, row.subcommand == 5 ? level + Bytes(4) + Wide("a") : level);
    const Bytes reply = Trans2Reply({}, Bytes(row.size));
    const std::string tree = BytesOf({request, reply});
    const size_t start = tree.rfind('\n', tree.size() - 2) + 1;
    const std::string last = tree.substr(start, tree.size() - start - 1);
    EXPECT_NE(last.find(row.last), std::string::npos) << row.level << "\n" << tree;
    const size_t brace = last.rfind('{');
    EXPECT_EQ(std::stoi(last.substr(brace + 1)) + std::stoi(last.substr(last.find('+', brace) + 1)),
              static_cast<int>(reply.size())) << row.level << "\n" << tree;
  }
}

TEST(SmbTransactions, EntriesGoAsFarAsTheirOffsetsCanBeTrusted) {
  const Bytes request = Trans2(1, Hex("1600 0A00 0000 0301 00000000") + Wide("*"));
  const auto entry = [](uint32_t next, const char* name) {
    const Bytes text = Wide(name);
    return Little(next, 4) + Bytes(4) + Little(text.size() - 2, 4) + Bytes(text.begin(), text.end() - 2);
  };
  const auto entries = [&](uint32_t next) {
    const std::string tree = BytesOf({request, Trans2Reply(Bytes(10), entry(next, "ab") + entry(0, "cd"))});
    size_t count = 0;
    for (size_t at = tree.find("Entry: "); at != std::string::npos; at = tree.find("Entry: ", at + 1)) ++count;
    return count;
  };
  EXPECT_EQ(entries(16), 2u);
  for (const uint32_t next : {0u, 1u, 11u, 32u, 33u, 0x80000000u, 0xFFFFFFF0u}) EXPECT_EQ(entries(next), 1u) << next;
  ExpectInOrder(BytesOf({request, Trans2Reply(Bytes(10), entry(16, "ab") + entry(0, "cd"))}),
                {"Data Bytes {68+32}", "Entry: ab {68+16}", "Next Entry Offset: 16 {68+4}", "File Name: ab {80+4}",
                 "Entry: cd {84+16}", "File Name: cd {96+4}"});
}

TEST(SmbTransactions, RemoteAdministrationFollowsItsDescriptors) {
  const Bytes shares = Rap(0, "WrLeh", "B13BWz", Hex("0100 FF0F"));
  const Bytes entry = Oem("files") + Bytes(7) + Hex("00 0000");
  EXPECT_EQ(std::string("\n").append(BytesOf({shares, RapReply(Hex("0000 1000 0200 0300"),
                                                               entry + Hex("38001111") + entry + Hex("FF7F0000") +
                                                                   Hex("41 00"))})), R"(
    NetShareEnum Reply {55+51}
      Pad: 00 {55+1}
      Parameter Bytes {56+8}
        Return Status: [0] = Success {56+2}
        Converter: 16 {58+2}
        Entries Returned: 2 {60+2}
        Entries Available: 3 {62+2}
      Data Bytes {64+42}
        Entry: files {64+20}
          Network Name: files {64+13}
          Pad: 0 {77+1}
          Type: [0] = Disk {78+2}
          Remark Offset: 286326840 {80+4}
          Remark: A {104+2}
        Entry: files {84+20}
          Network Name: files {84+13}
          Pad: 0 {97+1}
          Type: [0] = Disk {98+2}
          Remark Offset: 32767 {100+4}
)");
  // A call that nobody published, all letters, and an auxiliary descriptor.
  const Bytes other = Rap(999, "WDzb3F2rsOPTLeghi9?", "B4WN", Hex("0100 02000000 4100 AABBCC 0000 0300 0400 0500") +
                          Oem("B2W"), Bytes(8));
  ExpectInOrder(BytesOf({other}),
                {"Remote Administration Call Request", "Function: [999] = Undefined", "Parameter Descriptor: WDzb3F2rsOPTLeghi9?",
                 "W Parameter (word) {", "b Parameter (byte string) {", "F Parameter (padding) {", "? Parameter (Undefined)",
                 "Data Descriptor: B4WN", "N Field (auxiliary structures)", "W Parameter (word): 1", "D Parameter (double word): 2",
                 "z Parameter (string): A", "b Parameter (byte string): AA BB CC", "F Parameter (padding): 00 00",
                 "P Parameter (parameter number): 3", "T Parameter (send buffer length): 4",
                 "L Parameter (receive buffer length): 5", "Auxiliary Descriptor: B2W", "Data Bytes {", "Entry {"});
  ExpectInOrder(BytesOf({other, RapReply(Hex("3930 0000 0100 77 0200 03000000"), Oem("abc") + Hex("0700 0200") +
                                                                           Hex("6161 0100 6262 0200"))}),
                {"Return Status: [12345] = Undefined", "e Parameter (entries returned): 1", "g Parameter (received bytes): 77",
                 "h Parameter (received word): 2", "i Parameter (received double word): 3", "Entry {",
                 "B Field (byte string): 61 62 63 00", "W Field (word): 7", "N Field (auxiliary structures): 2",
                 "Auxiliary Entry {", "B Field (byte string): 61 61", "Auxiliary Entry {", "W Field (word): 2"});
  // A descriptor that is too long to be kept leaves the reply's data a dump.
  const std::string tree = BytesOf({Rap(0, "WrLeh", std::string(70, 'W').c_str(), Hex("0100 FF0F")),
                                    RapReply(Hex("0000 0000 0100 0100"), Bytes(140))});
  ExpectInOrder(tree, {"Return Status: [0] = Success", "Data Bytes {64+140}", "Data Bytes {64+140}"});
}

TEST(SmbTransactions, MailslotsAreReadByTheirName) {
  const Bytes names = Hex("03 64 63 31 07 65 78 61 6D 70 6C 65 04 74 65 73 74 00");   // dc1.example.test at 24
  const struct {
    const char* slot;
    Bytes data;
    std::vector<std::string> expected;
  } kRows[] = {
      {"\\MAILSLOT\\BROWSE", Hex("0A 02 78563412") + Oem("ONE") + Oem("TWO"),
       {"Command: [10] = Get Backup List Response", "Token: 0x12345678", "Backup Server: ONE", "Backup Server: TWO"}},
      {"\\mailslot\\browse", Hex("0E 03"), {"Reset State Request", "Type: 0x03"}},
      {"\\MAILSLOT\\LANMAN", Hex("01 00 03000000 0405 3C00") + Oem("HOST") + Oem("words"),
       {"Host Announcement", "Version Minor: 5", "Periodicity (seconds): 60", "Server Name: HOST", "Comment: words"}},
      {"\\MAILSLOT\\NET\\NETLOGON",
       Hex("1200 0100") + Wide("HOST") + Wide("user") + Oem("\\MAILSLOT\\NET\\GETDC1") +
           Hex("80000000 0C000000 000000 01 01 000000000005 12000000 02000000 FFFF FFFF"),
       {"SAM Logon Request", "Computer Name: HOST", "User Name: user", "Mailslot Name: \\MAILSLOT\\NET\\GETDC1",
        "Domain SID Size: 12", "Domain SID: S-1-5-18", "NT Version: 0x00000002", "LM 2.0 Token: 0xFFFF"}},
      {"\\MAILSLOT\\NET\\GETDC1",
       Hex("1700 0000 FD030000") + Bytes(16) + names + Hex("C01C C018 02 47 47 00 03 44 43 31 00 00 C0FF C0") + Hex("3E") +
           Hex("01000000 FFFF FFFF"),
       {"SAM Logon Response EX", "Flags: 0x000003FD", "DNS Forest Name: dc1.example.test", "DNS Domain Name: example.test",
        "DNS Host Name: dc1.example.test", "NetBIOS Domain Name: GG", "NetBIOS Computer Name: DC1",
        "User Name: <null string>", "DC Site Name: <null string>", "Client Site Name: <null string>",
        "NT Version: 0x00000001"}},
      {"\\MAILSLOT\\OTHER", Hex("0102"), {"Mailslot Write Request", "Data Bytes {"}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.slot);
    ExpectInOrder(BytesOf({Mailslot(row.slot, row.data)}), row.expected);
  }
}

TEST(SmbTransactions, SecurityDescriptorsStayInsideTheirBytes) {
  const Bytes sid = Hex("01 02 000000000005 20000000 20020000"), guid = Bytes(16, 0x11);
  const Bytes acl = Hex("0400 4400 0200 0000  00 00 1400 01000000 01 01 000000000001 00000000") +
                    Hex("05 00 2800 FF011F00 01000000") + guid + Hex("01 01 000000000005 12000000");
  const Bytes descriptor = Hex("0100 0480 14000000 00000000 00000000 24000000") + sid + acl;
  const Bytes request = Nt(6, Hex("0140 0000 07000000"));
  ExpectInOrder(BytesOf({request, NtReply(Little(descriptor.size(), 4), descriptor)}),
                {"NT Transact Query Security Descriptor Reply", "Length Needed: 104", "Security Descriptor {76+104}",
                 "Owner SID: S-1-5-32-544 {96+16}", "DACL {112+68}", "ACE {120+20}", "SID: S-1-1-0 {128+12}", "ACE {140+40}",
                 "Object Flags: 0x00000001", "Object Type: {11111111-1111-1111-1111-111111111111} {152+16}",
                 "SID: S-1-5-18 {168+12}"});
  for (const uint32_t offset : {1u, 19u, 100u, 104u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    Bytes lies = descriptor;
    for (const int at : {4, 16}) std::copy_n(Little(offset, 4).begin(), 4, lies.begin() + at);
  }
}

TEST(SmbTransactions, PipesHandCallsToTheirDecoder) {
  const Bytes head = Hex("05 00 0D 03 10000000 1500 0000 07000000");
  const std::string nak = BytesOf({Pipe(0x26, head + Hex("0400 01 0500"))});
  ExpectInOrder(nak, {"Transact Named Pipe Request", "MSRPC: Bind Reject {84+21}", "Call ID: 7 {96+4}",
                      "Reject Reason: [4] = Protocol Version Not Supported", "Version: 5.0 {103+2}"});
  // Big-endian, an object, and a verifier behind the stub.
  const Bytes call = Hex("05 01 00 83 00000000 0038 0004 00000001  00000004 0002 0009") + Bytes(16, 0x22) +
                     Hex("DEADBEEF 0A 06 00 00 00000000 11223344");
  const std::string tree = BytesOf({Pipe(0x26, {}), Pipe(0x26, call + head, kResponse)});
  ExpectInOrder(tree, {"MSRPC: Request, Operation 9", "Data Form: Big-Endian, ASCII, IEEE", "Allocation Hint: 4",
                       "Context ID: 2", "Object: 22222222-2222-2222-2222-222222222222", "Stub Data",
                       "Authentication Type: [10] = NTLM", "Authentication Level: [6] = Packet Privacy",
                       "Authentication Value", "MSRPC: Bind Reject"});
  const Bytes fault = Hex("05 00 03 03 10000000 2000 0000 01000000 00000000 0000 00 00 0500001C 00000000");
  ExpectInOrder(BytesOf({Pipe(0x54, fault)}), {"Call Named Pipe", "MSRPC: Fault", "Status: 0x1C000005"});
  ExpectInOrder(BytesOf({Pipe(0x37, Hex("0600"))}), {"Write Named Pipe Request", "Data Bytes {84+2}"});
  // Payloads of other protocols that start alike.
  ASSERT_TRUE(FindBuiltinDecoder(0x80));
  for (const char* other : {"05 00 00 01 01000000 5300 0300 0B445249 5645525F 4E414D45", "04 00 0B 03 10000000 1000 0000 00000000",
                            "05 00 0B 03 10000001 1000 0000 00000000", "05 00 0B 03 10000000 1000 0100 00000000"}) {
    TestView view;
    EXPECT_EQ(view.Run(FindBuiltinDecoder(0x80)->decode, Hex(other)), 0) << other;
  }
}

TEST(SmbTransactions, HostileMessagesAreBounded) {
  constexpr size_t kSize = 65300;
  const auto fill = [](const Bytes& bytes) { return Repeat(bytes, kSize / bytes.size()); };
  const auto find = [](int level) { return Trans2(1, Hex("1600 0000 0600") + Little(level, 2) + Bytes(4) + Wide("*")); };
  const auto query = [](int level) { return Trans2(5, Little(level, 2) + Bytes(4) + Wide("x")); };
  const Bytes found = Bytes(10), rapReply = Hex("0000 0000 FFFF FFFF");
  const Bytes list = Hex("0100 0480 00000000 00000000 00000000 14000000 0200 FFFF FFFF 0000");
  const struct {
    const char* name;
    std::vector<Bytes> messages;
  } kCases[] = {
      {"names", {find(0x103), Trans2Reply(found, fill(Little(12, 4) + Bytes(8)))}},
      {"directory entries", {find(0x101), Trans2Reply(found, fill(Little(64, 4) + Bytes(60)))}},
      {"dated entries", {find(1), Trans2Reply(found, Bytes(kSize))}},
      {"dated entries with attributes", {find(3), Trans2Reply(found, Bytes(kSize))}},
      {"extended attributes", {query(4), Trans2Reply(Bytes(2), Little(kSize, 4) + Bytes(kSize))}},
      {"POSIX entries", {query(0x204), Trans2Reply(Bytes(2), Bytes(kSize))}},
      {"access control entries", {Nt(6, Bytes(8)), NtReply(Bytes(4), list + fill(Hex("00 00 1000 FFFFFFFF 01 00") + Bytes(6)))}},
      {"referrals", {Trans2(16, Hex("0300") + Wide("a")), Trans2Reply({}, Hex("0000 FFFF 00000000") + fill(Hex("0300 0800") + Bytes(4)))}},
      {"shares", {Rap(0, "WrLeh", "B13", Bytes(4)), RapReply(rapReply, Bytes(kSize))}},
      {"servers", {Rap(104, "WrLehDz", "B16BBDz", Bytes(4)), RapReply(rapReply, fill(Bytes(22) + Hex("01000000")))}},
      {"pointers to one text", {Rap(0, "WrLeh", "zzzzzzzz", Bytes(4)), RapReply(rapReply, Bytes(kSize, 0x41))}},
      {"pointers to one run of bytes", {Rap(0, "WrLeh", "b9999", Bytes(4)), RapReply(rapReply, Bytes(kSize, 0x41))}},
      {"auxiliary structures", {Rap(0, "WrLeh", "NW", Bytes(4) + Oem("WW")), RapReply(rapReply, Bytes(kSize, 0xFF))}},
      {"a descriptor", {Rap(0, std::string(60000, 'z').c_str(), "", Bytes(4))}},
      {"counts that overflow", {Rap(0, "WrLeh", "W99999999999D65535B4294967295", Bytes(4)), RapReply(rapReply, Bytes(kSize))}},
      {"backup servers", {Mailslot("\\MAILSLOT\\BROWSE", Hex("0A FF") + Bytes(kSize))}},
      {"fragments", {Pipe(0x26, fill(Hex("05 00 0B 03 10000000 1000 0000 00000000")))}},
  };
  constexpr double kMost = 200;   // milliseconds: far above what any takes, far below what a quadratic walk would
  for (const auto& c : kCases) {
    const double took = TimeOnSmallStack(c.messages);
    EXPECT_LT(took, kMost) << c.name;
    RecordProperty(c.name, std::to_string(took));
  }
}

}  // namespace
}  // namespace qxview::testing
