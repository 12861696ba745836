#include <span>

#include "tests/support/smb_messages.h"

namespace qxview::testing {
namespace {

int32_t DecodeOrContinue(const Place& at, Cursor c) { return DecodeSmb(at, c.at, Left(c), c.offset, true); }

// The blocks of a message's tree; of flags and AndX groups only the line itself, so that a case fits on a
// page.
std::string BlocksOf(const Bytes& message) {
  const std::string tree = TreeOfRun(DecodeOneSmb, message);
  std::string out;
  bool inBlock = false;
  for (size_t at = 0; at < tree.size();) {
    const size_t end = tree.find('\n', at);
    const std::string line = tree.substr(at, end - at);
    at = end + 1;
    if (line.find("And X ") != std::string::npos || line.find("  AndX: No Command") != std::string::npos) continue;
    inBlock = inBlock || line.starts_with("  SMB - ");
    const bool isBit = line.find(" = True") != std::string::npos || line.find(" = False") != std::string::npos;
    if (inBlock && !isBit) out += line.substr(2) + "\n";
  }
  return out;
}

TEST(Smb, ShowsTheHeader) {
  const Bytes message = Header(115, kResponse, kUnicode, "6D0000C0") + Block("");
  // The marker's first byte is shown as it is.
  EXPECT_EQ(std::string("\n").append(TreeOfRun(DecodeOneSmb, message)), R"(
CIFS: Server Response - Session Setup AndX (Including User Login)   (TID=0x0002, PID=0x0001:0x0003, UID=0x0004, MID=0x0005) {0+32}
  SMB Header: Command [115] = Session Setup AndX (Including User Login) {0+32}
    CIFS Protocol Marker: )" "\xFF" R"(SMB = SMB {0+4}
    Command: [115] = Session Setup AndX (Including User Login) {4+1}
    NT Status: [0xC000006D] = STATUS_LOGON_FAILURE {5+4}
    Flags: SD=False, GB=False, PC=True, CA=False, OL=False, SN=False, SR=True {9+1}
      .......0: (SD) Supports Sub-Dialect = False {9+1}
      ......0.: (GB) Client Guarantees Receive Buffer = False {9+1}
      .....0..:      Reserved (must be zero) {9+1}
      ....1...: (PC) All Pathnames are Caseless = True {9+1}
      ...0....: (CA) All Paths Sent are Already Canonicalized = False {9+1}
      ..0.....: (OL) Requesting File Be Opportunistically Locked  = False {9+1}
      .0......: (SN) Server Notify Client = False {9+1}
      1.......: (SR) Server Response to a Client Request = True {9+1}
    Flags2: LC=True, EA=False, SS=False, CP=False, LN=False, ES=False, DF=False, RP=False, 32=True, UC=True: PID High = 1  {10+2}
      ........ .......1: (LC) Server May Return Long Components in Path Names = True {10+2}
      ........ ......0.: (EA) Client is Aware of Extended Attributes = False {10+2}
      ........ .....0..: (SS) Client is Security Signature Enabled = False {10+2}
      ........ ....0...: (CP) Compression = False {10+2}
      ........ ..00....: Reserved {10+2}
      ........ .0......: (LN) Is a Long Name = False {10+2}
      .....000 0.......:      Reserved {10+2}
      ....0... ........: (ES) Client is Aware of Extended Security = False {10+2}
      ...0.... ........: (DF) Pathnames Should Resolve in the Distributed File System = False {10+2}
      ..0..... ........: (RP) Read Permitted with Execute Permission = False {10+2}
      .1...... ........: (32) 32 Bit Error Code = True {10+2}
      1....... ........: (UC) STRING Data Type is Unicode = True {10+2}
    PID High: 1  {12+2}
    Security Signature: 11 22 33 44 55 66 77 88 {14+8}
    Pad: 00 00 {22+2}
    TID: 2  {24+2}
    PID: 3  {26+2}
    UID: 4  {28+2}
    MID: 5  {30+2}
  SMB - Session Setup AndX (Including User Login) {32+3}
    Word Count: 0 {32+1}
    Byte Count: 0  {33+2}
)");
}

struct BlockCase {
  const char* name;
  Bytes message;
  const char* blocks;
};

const BlockCase kFileCases[] = {
    {"a create response of 50 words",
     Header(162, kResponse, kUnicode) +
         Block("FF 00 0000  02 3412 01000000  00406D25EB53BF01 0000000000000000 0000000000000000"
               "FFFFFFFFFFFFFFFF 10000000 0010000000000000 0400000000000000 0200 FF05 00"
       "000102030405060708090A0B0C0D0E0F 1122334455667788 FF011F00 00000000"), R"(
SMB - NT Create AndX {32+103}
  Word Count: 50 {32+1}
  Opportunistic Lock Level: [2] = Batch {37+1}
  FID: 0x1234 {38+2}
  Create Action: [1] = File Opened {40+4}
  Creation Time: 2000-01-01 00:00:00 {44+8}
  Last Access Time: Not set {52+8}
  Last Write Time: Not set {60+8}
  Change Time: Not set {68+8}
  File Attributes: 0x00000010 {76+4}
  Allocation Size: 4096 {80+8}
  End of File: 4 {88+8}
  File Type: [2] = Message Mode Named Pipe {96+2}
  Pipe State: 0x05FF {98+2}
    ........ 11111111: Instances = 255 {98+2}
    ......01 ........: Read Mode (0 Bytes, 1 Messages) = 1 {98+2}
    ....01.. ........: Type (0 Bytes, 1 Messages) = 1 {98+2}
  Volume GUID: 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F {101+16}
  File ID: 0x8877665544332211 {117+8}
  Maximal Access Rights: 0x001F01FF {125+4}
  Guest Maximal Access Rights: 0x00000000 {129+4}
  Byte Count: 0  {133+2}
)"},
    {"an open response of 19 words",
     Header(45, kResponse, kOem) +
         Block("FF 00 0000 0340 2000 80436D38 2A000000 4200 0000 0000 0180 00000000 0000"
               "FF011F00 00000000"), R"(
SMB - Open AndX {32+41}
  Word Count: 19 {32+1}
  FID: 0x4003 {37+2}
  File Attributes: 0x0020 {39+2}
  Last Write Time: 2000-01-01 00:00:00 {41+4}
  File Size: 42 {45+4}
  Access Mode: 0x0042 {49+2}
    ........ .....010: Access = Read and Write {49+2}
    ........ .100....: Sharing = Deny None {49+2}
    .....000 ........: Locality = Unknown {49+2}
  File Type: [0] = Disk File or Directory {51+2}
  Pipe State: 0x0000 {53+2}
    ........ 00000000: Instances = 0 {53+2}
    ......00 ........: Read Mode (0 Bytes, 1 Messages) = 0 {53+2}
    ....00.. ........: Type (0 Bytes, 1 Messages) = 0 {53+2}
  Open Results: 0x8001 {55+2}
    ........ ......01: Action = File Existed and was Opened {55+2}
  Server FID: 0x00000000 {57+4}
  Reserved: 0x0000 {61+2}
  Maximal Access Rights: 0x001F01FF {63+4}
  Guest Maximal Access Rights: 0x00000000 {67+4}
  Byte Count: 0  {71+2}
)"},
    {"a name that the server made up, with a format in front",
     Header(14, kResponse, kUnicode) + Block("0100", Hex("04") + Oem("TEMP1")), R"(
SMB - Create Temporary File {32+12}
  Word Count: 1 {32+1}
  FID: 0x0001 {33+2}
  Byte Count: 7  {35+2}
  Buffer Format: [4] = ASCII {37+1}
  File Name: TEMP1 {38+6}
)"},
    {"the bare name", Header(14, kResponse, kUnicode) + Block("0100", Oem("TEMP1")), R"(
SMB - Create Temporary File {32+11}
  Word Count: 1 {32+1}
  FID: 0x0001 {33+2}
  Byte Count: 6  {35+2}
  File Name: TEMP1 {37+6}
)"},
    {"a copy that failed on a file", Header(41, kResponse, kOem) + Block("0200", Hex("04") + Oem("a.txt")), R"(
SMB - Copy {32+12}
  Word Count: 1 {32+1}
  Count of Files Copied: 2 {33+2}
  Byte Count: 7  {35+2}
  Buffer Format: [4] = ASCII {37+1}
  Error File Name: a.txt {38+6}
)"},
    {"words that a field has no room in", Header(4, kRequest, kOem) + Block("0140 1122"), R"(
SMB - Close File {32+7}
  Word Count: 2 {32+1}
  FID: 0x4001 {33+2}
  Word Data {35+2}
  Byte Count: 0  {37+2}
)"},
    {"an odd byte behind a two-byte text", Header(16, kRequest, kUnicode) + Block("", Hex("04 6100 62")), R"(
SMB - Check Directory Path {32+7}
  Word Count: 0 {32+1}
  Byte Count: 4  {33+2}
  Buffer Format: [4] = ASCII {35+1}
  Directory Name: a {36+3}
)"},
};

const BlockCase kDataCases[] = {
    {"a write of more than its message", Header(47, kRequest, kUnicode) +
     Block("FF 00 0000 0140 00000000 00000000 0800 0000 0000 0900 4000 01000000", Hex("EE 41424344")), R"(
SMB - Write AndX {32+36}
  Word Count: 14 {32+1}
  FID: 0x4001 {37+2}
  Offset: 0 {39+4}
  Timeout: 0 {43+4}
  Write Mode: 0x0008 {47+2}
  Remaining: 0 {49+2}
  Data Length High: 0 {51+2}
  Data Length: 9 {53+2}
  Data Offset: 64 {55+2}
  Offset High: 1 {57+4}
  Byte Count: 5  {61+2}
  Pad: EE {63+1}
  Data Bytes {64+4}
)"},
    {"the first piece of a pipe's raw message", Header(47, kRequest, kUnicode) +
     Block("FF 00 0000 0140 00000000 00000000 0C00 0000 0000 0500 4000 00000000", Hex("EE 0300 414243")), R"(
SMB - Write AndX {32+37}
  Word Count: 14 {32+1}
  FID: 0x4001 {37+2}
  Offset: 0 {39+4}
  Timeout: 0 {43+4}
  Write Mode: 0x000C {47+2}
  Remaining: 0 {49+2}
  Data Length High: 0 {51+2}
  Data Length: 5 {53+2}
  Data Offset: 64 {55+2}
  Offset High: 0 {57+4}
  Byte Count: 6  {61+2}
  Pad: EE {63+1}
  Message Length: 3 {64+2}
  Data Bytes {66+3}
)"},
    {"data in front of where the words end", Header(46, kResponse, kUnicode) +
     Block("FF 00 0000 0000 0000 0000 0400 0100 0000 0000000000000000", Hex("41424344 45")), R"(
SMB - Read AndX {32+32}
  Word Count: 12 {32+1}
  Remaining: 0 {37+2}
  Data Compaction Mode: 0 {39+2}
  Reserved: 0x0000 {41+2}
  Data Length: 4 {43+2}
  Data Offset: 1 {45+2}
  Data Length High: 0 {47+2}
  Reserved: 00 00 00 00 00 00 00 00 {49+8}
  Byte Count: 5  {57+2}
  Data Bytes {59+4}
  Byte Data {63+1}
)"},
    {"a read of more than 64 KB in the message's rest", Header(46, kResponse, kUnicode) +
     Block("FF 00 0000 0000 0000 0000 0200 3C00 0100 0000000000000000", Hex("00")) + Bytes(17, 0x41), R"(
SMB - Read AndX {32+45}
  Word Count: 12 {32+1}
  Remaining: 0 {37+2}
  Data Compaction Mode: 0 {39+2}
  Reserved: 0x0000 {41+2}
  Data Length: 2 {43+2}
  Data Offset: 60 {45+2}
  Data Length High: 1 {47+2}
  Reserved: 00 00 00 00 00 00 00 00 {49+8}
  Byte Count: 1  {57+2}
  Pad: 00 {59+1}
  Data Bytes {60+17}
)"},
    {"a write and close of 12 words", Header(44, kRequest, kOem) +
     Block("0140 0200 00000000 00000000 000000000000000000000000", Hex("00 4142")), R"(
SMB - Write and Close {32+30}
  Word Count: 12 {32+1}
  FID: 0x4001 {33+2}
  Count: 2 {35+2}
  Offset: 0 {37+4}
  Last Write Time: Not set {41+4}
  Reserved: 00 00 00 00 00 00 00 00 00 00 00 00 {45+12}
  Byte Count: 3  {57+2}
  Pad: 00 {59+1}
  Data Bytes {60+2}
)"},
    {"a multiplexed read", Header(27, kResponse, kOem) +
     Block("00000000 0400 0000 0000 0000 0400 3400", Hex("0000000000 41424344")), R"(
SMB - Read Block Multiplexed {32+28}
  Word Count: 8 {32+1}
  Offset: 0 {33+4}
  Count: 4 {37+2}
  Remaining: 0 {39+2}
  Data Compaction Mode: 0 {41+2}
  Reserved: 0x0000 {43+2}
  Data Length: 4 {45+2}
  Data Offset: 52 {47+2}
  Byte Count: 9  {49+2}
  Pad: 00 {51+1}
  Data Bytes {52+4}
  Byte Data {56+4}
)"},
    {"an IOCTL with parameters and data", Header(39, kRequest, kOem) +
     Block("0140 5300 6000 0300 0200 0000 2000 00000000 0000 0300 4000 0200 4400", Hex("00 010203 00 0A0B 0C")), R"(
SMB - IOCTL {32+39}
  Word Count: 14 {32+1}
  FID: 0x4001 {33+2}
  Category: 0x0053 {35+2}
  Function: 0x0060 {37+2}
  Total Parameter Count: 3 {39+2}
  Total Data Count: 2 {41+2}
  Maximum Parameter Count: 0 {43+2}
  Maximum Data Count: 32 {45+2}
  Timeout: 0 {47+4}
  Reserved: 0x0000 {51+2}
  Parameter Count: 3 {53+2}
  Parameter Offset: 64 {55+2}
  Data Count: 2 {57+2}
  Data Offset: 68 {59+2}
  Byte Count: 8  {61+2}
  Pad: 00 {63+1}
  Parameter Bytes {64+3}
  Pad1: 00 {67+1}
  Data Bytes {68+2}
  Byte Data {70+1}
)"},
    {"a server that asks for the rest of a raw write", Header(29, kRequest, kOem) + Block("FFFF"), R"(
SMB - Write Block Raw {32+5}
  Word Count: 1 {32+1}
  Remaining: 65535 {33+2}
  Byte Count: 0  {35+2}
)"},
    {"locks of both kinds, fewer than stated", Header(36, kRequest, kOem) +
     Block("FF 00 0000 0140 00 00 FFFFFFFF 0100 FFFF", Hex("0300 01000000 02000000  0300 04000000 05000000 FF")), R"(
SMB - Lock/Unlock Byte Ranges AndX {32+40}
  Word Count: 8 {32+1}
  FID: 0x4001 {37+2}
  Type of Lock: 0x00 {39+1}
  New Opportunistic Lock Level: [0] = None {40+1}
  Timeout: 4294967295 {41+4}
  Number of Unlocks: 1 {45+2}
  Number of Locks: 65535 {47+2}
  Byte Count: 21  {49+2}
  Unlock {51+10}
    PID: 3 {51+2}
    Offset: 1 {53+4}
    Length: 2 {57+4}
  Lock {61+10}
    PID: 3 {61+2}
    Offset: 4 {63+4}
    Length: 5 {67+4}
  Byte Data {71+1}
)"},
    {"a search that goes on", Header(129, kRequest, kOem) + Block("0A00 1600", Hex("04") + Oem("*.*") +
     Hex("05 1500 00 0102030405060708090A0B0C0D0E0F10 AABBCCDD")), R"(
SMB - Search Directory {32+36}
  Word Count: 2 {32+1}
  Maximum Count: 10 {33+2}
  Search Attributes: 0x0016 {35+2}
  Byte Count: 29  {37+2}
  Buffer Format: [4] = ASCII {39+1}
  File Name: *.* {40+4}
  Buffer Format: [5] = Variable Block {44+1}
  Resume Key Length: 21 {45+2}
  Resume Key {47+21}
    Reserved: 0x00 {47+1}
    Server State: 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 {48+16}
    Client State: AA BB CC DD {64+4}
)"},
    {"an entry of a search and a cut one", Header(130, kResponse, kOem) +
     Block("0200", Hex("05 5600 00 0102030405060708090A0B0C0D0E0F10 AABBCCDD"
     "20 6318 5A5C 2A000000 412E5458540000000000000000 00 0102")), R"(
SMB - Find First {32+54}
  Word Count: 1 {32+1}
  Count: 2 {33+2}
  Byte Count: 49  {35+2}
  Buffer Format: [5] = Variable Block {37+1}
  Data Length: 86 {38+2}
  Directory Entry: A.TXT {40+43}
    Resume Key {40+21}
      Reserved: 0x00 {40+1}
      Server State: 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 {41+16}
      Client State: AA BB CC DD {57+4}
    File Attributes: 0x20 {61+1}
    Last Write Time: 2026-02-26 03:03:06 {62+4}
    File Size: 42 {66+4}
    File Name: A.TXT {70+13}
  Byte Data {83+3}
)"},
    {"an entry of a print queue", Header(195, kResponse, kOem) +
     Block("0100 0100", Hex("01 1C00 5A5C 6318 03 0700 64000000 00") + Oem("report") + Bytes(9)), R"(
SMB - Return Print Cue {32+38}
  Word Count: 2 {32+1}
  Count: 1 {33+2}
  Restart Index: 1 {35+2}
  Byte Count: 31  {37+2}
  Buffer Format: [1] = Data Block {39+1}
  Data Length: 28 {40+2}
  Print Queue Entry {42+28}
    File Time: 2026-02-26 03:03:06 {42+4}
    Status: [3] = Awaiting Print {46+1}
    Spool File Number: 7 {47+2}
    Spool File Size: 100 {49+4}
    Reserved: 0x00 {53+1}
    Spool File Name: report {54+16}
)"},
};

const BlockCase kSessionCases[] = {
    {"a response of LAN Manager's dialect", Header(114, kResponse, kOem) +
     Block("0200 0300 0411 3200 0100 0300 01000000 6318 5A5C C4FF 0800 0000",
           Hex("0102030405060708") + Oem("GROUP")), R"(
SMB - Negotiate Protocol {32+43}
  Word Count: 13 {32+1}
  Dialect Index: 2 {33+2}
  Security Mode: 0x0003 {35+2}
  Maximum Buffer Size: 4356 {37+2}
  Maximum Multiplex Count: 50 {39+2}
  Maximum Virtual Circuits: 1 {41+2}
  Raw Mode: 0x0003 {43+2}
  Session Key: 0x00000001 {45+4}
  Server Time: 2026-02-26 03:03:06 {49+4}
  Server Time Zone: -60 {53+2}
  Encryption Key Length: 8 {55+2}
  Reserved: 0x0000 {57+2}
  Byte Count: 14  {59+2}
  Encryption Key: 01 02 03 04 05 06 07 08 {61+8}
  Primary Domain: GROUP {69+6}
)"},
    {"no dialect", Header(114, kResponse, kOem) + Block("FFFF"), R"(
SMB - Negotiate Protocol {32+5}
  Word Count: 1 {32+1}
  Dialect Index: 65535 {33+2}
  Byte Count: 0  {35+2}
)"},
    {"names of two bytes a character that are not aligned", Header(114, kResponse, kOem) +
     Block("0000 03 3200 0100 04110000 00000100 01000000 04000000 0000000000000000 0000 08",
      Hex("0102030405060708") + Wide("GROUP") + Wide("HOST")), R"(
SMB - Negotiate Protocol {32+67}
  Word Count: 17 {32+1}
  Dialect Index: 0 {33+2}
  Security Mode: 0x03 {35+1}
  Maximum Multiplex Count: 50 {36+2}
  Maximum Virtual Circuits: 1 {38+2}
  Maximum Buffer Size: 4356 {40+4}
  Maximum Raw Size: 65536 {44+4}
  Session Key: 0x00000001 {48+4}
  Capabilities: 0x00000004 {52+4}
  System Time: Not set {56+8}
  Server Time Zone: 0 {64+2}
  Encryption Key Length: 8 {66+1}
  Byte Count: 30  {67+2}
  Encryption Key: 01 02 03 04 05 06 07 08 {69+8}
  Primary Domain: GROUP {77+12}
  Server Name: HOST {89+10}
)"},
    {"one password", Header(115, kRequest, kOem) + Block("FF 00 0000 0411 0200 0100 00000000 0300 00000000",
      Oem("pw") + Oem("bob") + Oem("") + Oem("DOS") + Oem("LM")), R"(
SMB - Session Setup AndX (Including User Login) {32+38}
  Word Count: 10 {32+1}
  Maximum Buffer Size: 4356 {37+2}
  Maximum Multiplex Count: 2 {39+2}
  Virtual Circuit Number: 1 {41+2}
  Session Key: 0x00000000 {43+4}
  Password Length: 3 {47+2}
  Reserved: 0x00000000 {49+4}
  Byte Count: 15  {53+2}
  Password: 70 77 00 {55+3}
  Account: bob {58+4}
  Primary Domain: <null string> {62+1}
  Native OS: DOS {63+4}
  Native LAN Manager: LM {67+3}
)"},
    {"a response of version 2, and a chained connect", Header(115, kRequest, kUnicode) +
     Block("75 00 9000 0411 0200 0100 00000000 0100 3800 00000000 54000000",
      Hex("00  00112233445566778899AABBCCDDEEFF 01 01 0000 00000000 00406D25EB53BF01 0102030405060708 00000000"
          "0200 0200 4400  0000 0000") + Bytes(2) + Wide("bob") + Wide("D") + Wide("OS") + Wide("LM")) +
     Hex("00 00") + Block("FF 00 0000 0000 0100", Hex("00") + Wide("\\\\H\\S") + Oem("A:")), R"(
SMB - Session Setup AndX (Including User Login) {32+112}
  Word Count: 13 {32+1}
  AndX: Tree Connect AndX {33+4}
  Maximum Buffer Size: 4356 {37+2}
  Maximum Multiplex Count: 2 {39+2}
  Virtual Circuit Number: 1 {41+2}
  Session Key: 0x00000000 {43+4}
  OEM Password Length: 1 {47+2}
  Unicode Password Length: 56 {49+2}
  Reserved: 0x00000000 {51+4}
  Capabilities: 0x00000054 {55+4}
  Byte Count: 81  {59+2}
  OEM Password: 00 {61+1}
  Unicode Password {62+56}
    NT Proof: 00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF {62+16}
    Response Version: 1 {78+1}
    Highest Response Version: 1 {79+1}
    Reserved: 0x0000 {80+2}
    Reserved: 0x00000000 {82+4}
    Time: 2000-01-01 00:00:00 {86+8}
    Client Challenge: 01 02 03 04 05 06 07 08 {94+8}
    Reserved: 0x00000000 {102+4}
    Target Information {106+12}
      Pair: NetBIOS Domain Name {106+6}
        ID: [2] = NetBIOS Domain Name {106+2}
        Length: 2 {108+2}
        Value: D {110+2}
      Pair: End of List {112+4}
        ID: [0] = End of List {112+2}
        Length: 0 {114+2}
      Pad: 00 00 {116+2}
  Account: bob {118+8}
  Primary Domain: D {126+4}
  Native OS: OS {130+6}
  Native LAN Manager: LM {136+6}
  Pad: 00 00 {142+2}
SMB - Tree Connect AndX {144+27}
  Word Count: 4 {144+1}
  Flags: 0x0000 {149+2}
  Password Length: 1 {151+2}
  Byte Count: 16  {153+2}
  Password: 00 {155+1}
  Path: \\H\S {156+12}
  Service: A: {168+3}
)"},
    {"a login of NTLM alone, with a name outside the message", Header(115, kRequest, kUnicode) +
     Block("FF 00 0000 0411 0200 0100 00000000 6400 00000000 54000080",
           Hex("4E544C4D53535000 03000000  0100 0100 58000000  0000 0000 58000000  0200 0200 59000000"
               "0600 0600 5B000000  0200 0200 FFFFFFFF  0300 0300 61000000  01020060  0601 0100 000000 0F"
               "00112233445566778899AABBCCDDEEFF  AA 4400 620033004DD8 0A0B0C 00") + Wide("OS") + Wide("LM")), R"(
SMB - Session Setup AndX (Including User Login) {32+140}
  Word Count: 12 {32+1}
  Maximum Buffer Size: 4356 {37+2}
  Maximum Multiplex Count: 2 {39+2}
  Virtual Circuit Number: 1 {41+2}
  Session Key: 0x00000000 {43+4}
  Security Blob Length: 100 {47+2}
  Reserved: 0x00000000 {49+4}
  Capabilities: 0x80000054 {53+4}
  Byte Count: 113  {57+2}
  Security Blob {59+100}
    NTLMSSP: Authenticate {59+100}
      Signature: NTLMSSP {59+8}
      Message Type: [3] = Authenticate {67+4}
      LAN Manager Response Buffer {71+8}
        Length: 1 {71+2}
        Maximum Length: 1 {73+2}
        Offset: 88 {75+4}
      NT Response Buffer {79+8}
        Length: 0 {79+2}
        Maximum Length: 0 {81+2}
        Offset: 88 {83+4}
      Domain Name Buffer {87+8}
        Length: 2 {87+2}
        Maximum Length: 2 {89+2}
        Offset: 89 {91+4}
      User Name Buffer {95+8}
        Length: 6 {95+2}
        Maximum Length: 6 {97+2}
        Offset: 91 {99+4}
      Workstation Name Buffer {103+8}
        Length: 2 {103+2}
        Maximum Length: 2 {105+2}
        Offset: 4294967295 {107+4}
      Session Key Buffer {111+8}
        Length: 3 {111+2}
        Maximum Length: 3 {113+2}
        Offset: 97 {115+4}
      Negotiate Flags: 0x60000201 {119+4}
      Version {123+8}
        Major: 6 {123+1}
        Minor: 1 {124+1}
        Build: 1 {125+2}
        Reserved: 00 00 00 {127+3}
        NTLM Revision: 15 {130+1}
      Integrity Code: 00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF {131+16}
      Domain Name: D {148+2}
      User Name: b3? {150+6}
      LAN Manager Response: AA {147+1}
      Session Key: 0A 0B 0C {156+3}
  Pad: 00 {159+1}
  Native OS: OS {160+6}
  Native LAN Manager: LM {166+6}
)"},
    {"a core connect of one byte a character though flags 2 say two", Header(112, kRequest, kUnicode) +
     Block("", Hex("04") + Oem("\\\\H\\S") + Hex("04") + Oem("") + Hex("04") + Oem("LPT1:")), R"(
SMB - Tree Connect {32+19}
  Word Count: 0 {32+1}
  Byte Count: 16  {33+2}
  Buffer Format: [4] = ASCII {35+1}
  Path: \\H\S {36+6}
  Buffer Format: [4] = ASCII {42+1}
  Password: <null string> {43+1}
  Buffer Format: [4] = ASCII {44+1}
  Service: LPT1: {45+6}
)"},
};

void ExpectBlocks(std::span<const BlockCase> cases) {
  for (const BlockCase& c : cases) {
    EXPECT_EQ(BlocksOf(c.message), c.blocks + 1) << c.name;
  }
}

TEST(Smb, Files) { ExpectBlocks(kFileCases); }
TEST(Smb, Data) { ExpectBlocks(kDataCases); }
TEST(Smb, Sessions) { ExpectBlocks(kSessionCases); }

TEST(Smb, RefusesWhatIsNoMessage) {
  TestView view;
  const Bytes header = Header(43, kRequest, kOem);
  EXPECT_EQ(view.Run(DecodeOneSmb, header), kSmbTruncated) << "one byte short of a block";
  EXPECT_EQ(view.Text(), "");
  EXPECT_EQ(view.Run(DecodeOneSmb, Bytes(40, 0x41)), kSmbNotDecoded);
  EXPECT_EQ(view.Run(DecodeOrContinue, Bytes(40, 0x41)), kSmbDecoded);
  EXPECT_EQ(view.Text(), "CIFS: Continuation Data, 40 bytes {0+40}\n  SMB Continuation Data {0+40}\n");
  EXPECT_EQ(view.Run(DecodeOneSmb, header + Hex("0A") + Bytes(15)), kSmbTruncated) << "ten words in 15 bytes";
}

TEST(Smb, CommandsWithoutFieldsAreDumps) {
  EXPECT_EQ(BlocksOf(Header(96, kRequest, kOem) + Hex("01 1122 0300 AABBCC DDEE")),
            "SMB - Undefined {32+10}\n  Word Count: 1 {32+1}\n  Word Data {33+2}\n  Byte Count: 3  {35+2}\n"
            "  Byte Data {37+3}\n  Buffer {40+2}\n");
  const std::string none = TreeOfRun(DecodeOneSmb, Header(255, kRequest, kDosError, "02000600") + Hex("00 0900 AA"));
  ExpectInOrder(none, {"CIFS: Client Request - No Command Follows   (TID=0x0002, PID=0x0001:0x0003",
                       "SMB Header: Command [255] = No Command Follows", "Error Class: [2] = ERRSRV {5+1}",
                       "Error Code: [6] = ERRinvnetname {7+2}", "SMB - No Command Follows {32+4}", "Byte Data {35+1}"});
}

// A logoff whose next block is told to be at an offset, with another logoff behind it at 39.
TEST(Smb, ChainsGoForwardOnly) {
  struct ChainCase {
    const char* name;
    uint8_t next;
    int offset;
    int headings;
    int32_t result;
  };
  constexpr ChainCase kCases[] = {
      {"in order", 116, 39, 2, kSmbDecoded},          {"the end of the chain", 255, 39, 1, kSmbDecoded},
      {"itself", 116, 32, 1, kSmbDecoded},            {"the header", 116, 0, 1, kSmbDecoded},
      {"past the end", 116, 46, 1, kSmbDecoded},      {"far past the end", 116, 0xFFFF, 1, kSmbDecoded},
      {"inside its own words", 116, 35, 2, kSmbTruncated}, {"an unknown command", 96, 39, 2, kSmbDecoded},
      {"no AndX command", 113, 39, 2, kSmbDecoded},   {"with a gap", 116, 40, 2, kSmbTruncated},
  };
  for (const ChainCase& c : kCases) {
    const Bytes first = Hex("02") + Bytes{c.next, 0} + Little(c.offset, 2) + Hex("0000");
    const Bytes message = Header(116, kRequest, kOem) + first + Block("FF 00 0000");
    TestView view;
    EXPECT_EQ(view.Run(DecodeOneSmb, message), c.result) << c.name;
    const std::string tree = view.Text();
    int headings = 0;
    for (size_t at = tree.find("  SMB - "); at != std::string::npos; at = tree.find("  SMB - ", at + 1)) ++headings;
    EXPECT_EQ(headings, c.headings) << c.name << "\n" << tree;
  }
}

TEST(Smb, SegmentsHoldMessagesBehindTheirLength) {
  const Bytes echo = Header(43, kRequest, kOem) + Block("0100", Hex("AA"));
  const Bytes framed = Hex("00 00 0026") + echo;
  ExpectInOrder(TreeOfRun(DecodeSmbOverTcp, framed + Hex("85 00 0000") + framed + Hex("00 01 FFFF") + echo),
                {"SMB over TCP {0+4}", "Message Type: 0x00 = Session Message {0+1}", "Reserved: 0x00 {1+1}",
                 "Message Length: 38 {2+2}", "CIFS: Client Request - Echo", "SMB - Echo {36+6}", "SMB over TCP {42+4}",
                 "0x85 = Session Keep Alive", "SMB over TCP {46+4}", "SMB - Echo {82+6}", "Reserved: 0x01",
                 "Message Length: 65535", "SMB - Echo {124+6}"});
  TestView view;
  EXPECT_EQ(view.Run(DecodeSmbOverTcp, Hex("01 00 0026") + echo), kSmbNotDecoded);
  EXPECT_EQ(view.Run(DecodeSmbOverTcp, Hex("00 00 0020") + Header(43, kRequest, kOem)), kSmbTruncated);
}

TEST(Smb, HostileMessagesAreBounded) {
  const Bytes negotiate = Header(114, kRequest, kOem) + Hex("00 FFFF");
  const Bytes setup = Header(115, kRequest, kOem) + Hex("0C FF000000") + Bytes(10) +
                      Hex("F0FF") + Bytes(8) + Hex("FFFF");
  Bytes chain = Header(116, kRequest, kOem), overlaid = chain;
  for (int at = 39; at < 65500; at += 7) chain = chain + Hex("02 74 00") + Little(at, 2) + Hex("0000");
  for (int at = 37; at < 65500; at += 5) overlaid = overlaid + Hex("02 74 00") + Little(at, 2);
  const struct {
    const char* name;
    Bytes message;
  } kCases[] = {
      {"empty dialects", negotiate + Repeat(Hex("02 00"), 32767)},
      {"dialects without a format", negotiate + Bytes(65535)},
      {"ranges to lock", Header(36, kRequest, kOem) + Hex("08 FF000000 0000 00 00 00000000 FFFF FFFF FFFF") +
                             Bytes(65535)},
      {"directory entries", Header(129, kResponse, kOem) + Hex("01 FFFF FFFF 05 FFFF") + Bytes(65532)},
      {"a chain of the smallest blocks", chain},
      {"a chain of blocks that overlap", overlaid},
      {"mechanisms", setup + Hex("60 83 00FFEE 06 01 2B A0 83 00FFE0 30 83 00FFD8 A0 83 00FFD0 30 83 00FFC8") +
                         Repeat(Hex("06 00"), 32700)},
      {"nested tokens", setup + Repeat(Hex("60 80"), 32700)},
      {"one long object identifier", setup + Hex("60 83 00FFEE 06 83 00FFD0") + Bytes(65520, 0x01)},
      {"pairs", setup + Hex("4E544C4D53535000 02000000 0000 0000 00000000 00000000") + Bytes(16) +
                    Hex("A0FF A0FF 30000000") +
                    Repeat(Hex("01 00 00 00"), 16370)},
      {"bytes of a message of 128 KB", Header(47, kRequest, kOem) +
       Block("FF 00 0000 0140 00000000 00000000 0000 0000 FFFF FFFF 4000") + Bytes(131072)},
  };
  constexpr double kMost = 200;   // milliseconds: far above what any takes, far below what a quadratic walk would
  for (const auto& c : kCases) {
    const double took = TimeOnSmallStack({c.message});
    EXPECT_LT(took, kMost) << c.name;
    RecordProperty(c.name, std::to_string(took));
  }
}

}  // namespace
}  // namespace qxview::testing
