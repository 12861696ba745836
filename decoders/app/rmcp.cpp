// Remote Management Control Protocol (DMTF DSP0136): ASF messages, and IPMI (IPMI 2.0) in sessions of version 1.5 and
// 2.0 (RMCP+): is this machine well, and may I switch it on?
//
//   version (1) reserved (1) sequence (1) class (1)
//   IPMI 1.5:  authentication type (1) sequence (4) session (4) [code (16)] length (1) message
//   RMCP+:     6 (1) payload type (1) [OEM (6)] session (4) sequence (4) length (2) payload [trailer]
//   message:   address (1) function/LUN (1) checksum (1) address (1) sequence/LUN (1) command (1) data checksum (1)
//
// RMCP and ASF have their high byte first, IPMI its low one.
#include "core/rows.h"
#include "decoders/app/ipmi_commands.h"
#include "decoders/app/ipmi_names.h"

namespace qxview {
namespace {

constexpr uint32_t kClassAsf = 6, kClassIpmi = 7, kAcknowledge = 0x80;
constexpr uint32_t kRmcpPlus = 6;
constexpr uint32_t kEncrypted = 0x80, kAuthenticated = 0x40;

constexpr auto kClassNames = SortedNames({{6, "ASF"}, {7, "IPMI"}, {8, "OEM Defined"}});
constexpr auto kMessageTypeNames = SortedNames({{0, "Normal RMCP"}, {1, "RMCP ACK"}});
constexpr auto kEnterpriseNames = SortedNames({{343, "Intel"}, {412, "DMTF"}, {4542, "ASF"}});
constexpr auto kAsfNames = SortedNames({
    {0x10, "Reset"}, {0x11, "Power-up"}, {0x12, "Unconditional Power-down"}, {0x13, "Power Cycle"},
    {0x40, "Presence Pong"}, {0x41, "Capabilities Response"}, {0x42, "System State Response"},
    {0x43, "Open Session Response"}, {0x44, "Close Session Response"}, {0x80, "Presence Ping"},
    {0x81, "Capabilities Request"}, {0x82, "System State Request"}, {0x83, "Open Session Request"},
    {0x84, "Close Session Request"}, {0xC0, "RAKP Message 1"}, {0xC1, "RAKP Message 2"}, {0xC2, "RAKP Message 3"}});
constexpr auto kSystemStateNames = SortedNames({
    {0, "S0/G0 \"Working\""}, {1, "S1"}, {2, "S2"}, {3, "S3"}, {4, "S4"}, {5, "S5/G2 \"Soft-off\""}, {6, "S4/S5"},
    {7, "G3/S5 \"Mechanical Off\""}, {8, "Sleeping"}, {9, "G1 Sleeping"}, {10, "S5 Entered by Override"},
    {11, "Legacy On"},
    {12, "Legacy Off"}, {14, "Unknown"}});
struct Rmcp {
  Field classOf, asfType, length, function, command, payload;
  LineHandle top;
};

constexpr auto kHeader = Rows<Rmcp>({
    Hex(1, "Version"), Hex(1, "Reserved"), Hex(1, "Sequence Number"), Hex(1, "Class of Message").Into(&Rmcp::classOf),
    Bits(0, 1, "Message Type", kMessageTypeNames), Bits(1, 2, "Reserved"), Bits(3, 5, "Class", kClassNames)});
constexpr auto kAsf = Rows<Rmcp>({
    Number(4, "IANA Enterprise Number", kEnterpriseNames), Hex(1, "Message Type", kAsfNames).Into(&Rmcp::asfType),
    Number(1, "Message Tag"), Number(1, "Reserved"), Number(1, "Data Length").Into(&Rmcp::length)});
constexpr auto kPong = Rows<Rmcp>({
    Number(4, "IANA Enterprise Number", kEnterpriseNames), Hex(4, "OEM Defined"), Hex(1, "Supported Entities"),
    Flag(0, "IPMI Supported"), Bits(1, 3, "Reserved"), Bits(4, 4, "ASF Version"), Hex(1, "Supported Interactions"),
    Flag(0, "Security Extensions"), Bits(1, 1, "Reserved"), Flag(2, "DMTF DASH"), Bits(3, 5, "Reserved"),
    Bytes(6, "Reserved")});
constexpr auto kCapabilities = Rows<Rmcp>({
    Number(4, "IANA Enterprise Number", kEnterpriseNames), Hex(4, "OEM Defined"), Hex(2, "Special Commands"),
    Hex(1, "System Capabilities"), Hex(4, "System Firmware Capabilities"), Bytes(5, "Reserved")});
constexpr auto kSystemState = Rows<Rmcp>({
    Number(1, "System State", kSystemStateNames), Number(1, "Watchdog State"), Bytes(2, "Reserved")});

constexpr auto kSessionType = Rows<Rmcp>({Number(1, "Authentication Type", kIpmiAuthenticationNames)});
constexpr auto kSession15 = Rows<Rmcp>({
    Hex(4, "Session Sequence Number").Little(), Hex(4, "Session ID").Little()});
constexpr auto kCode = Rows<Rmcp>({Bytes(16, "Authentication Code")});
constexpr auto kLength15 = Rows<Rmcp>({Number(1, "Message Length").Into(&Rmcp::length)});
constexpr auto kPayloadType = Rows<Rmcp>({
    Hex(1, "Payload Type Word").Into(&Rmcp::payload), Flag(0, "Encrypted"), Flag(1, "Authenticated"),
    Bits(2, 6, "Payload Type", kIpmiPayloadNames)});
constexpr auto kOemPayload = Rows<Rmcp>({Number(4, "OEM IANA").Little(), Number(2, "OEM Payload ID").Little()});
constexpr auto kSession20 = Rows<Rmcp>({
    Hex(4, "Session ID").Little(), Hex(4, "Session Sequence Number").Little(),
    Number(2, "Message Length").Little().Into(&Rmcp::length)});

constexpr auto kOpenRequest = Rows<Rmcp>({
    Hex(1, "Message Tag"), Number(1, "Requested Maximum Privilege Level", kIpmiPrivilegeNames), Bytes(2, "Reserved"),
    Hex(4, "Remote Console Session ID").Little()});
constexpr auto kOpenResponse = Rows<Rmcp>({
    Hex(1, "Message Tag"), Hex(1, "Status Code", kIpmiStatusNames).Note(", %s"),
    Number(1, "Maximum Privilege Level", kIpmiPrivilegeNames), Number(1, "Reserved"),
    Hex(4, "Remote Console Session ID").Little(), Hex(4, "Managed System Session ID").Little()});
constexpr auto kRakp1 = Rows<Rmcp>({
    Hex(1, "Message Tag"), Bytes(3, "Reserved"), Hex(4, "Managed System Session ID").Little(),
    Bytes(16, "Remote Console Random Number"), Word(1), Bits(0, 3, "Reserved"), Flag(3, "Name-Only Lookup"),
    Bits(4, 4, "Requested Maximum Privilege Level", kIpmiPrivilegeNames), Bytes(2, "Reserved"),
    Counted(1, Text(0, "User Name")).Note(", %s")});
constexpr auto kRakp2 = Rows<Rmcp>({
    Hex(1, "Message Tag"), Hex(1, "Status Code", kIpmiStatusNames).Note(", %s"), Bytes(2, "Reserved"),
    Hex(4, "Remote Console Session ID").Little(), Bytes(16, "Managed System Random Number"),
    Bytes(16, "Managed System GUID"), Bytes(0, "Key Exchange Authentication Code")});
constexpr auto kRakp3 = Rows<Rmcp>({
    Hex(1, "Message Tag"), Hex(1, "Status Code", kIpmiStatusNames).Note(", %s"), Bytes(2, "Reserved"),
    Hex(4, "Managed System Session ID").Little(), Bytes(0, "Key Exchange Authentication Code")});
constexpr auto kRakp4 = Rows<Rmcp>({
    Hex(1, "Message Tag"), Hex(1, "Status Code", kIpmiStatusNames).Note(", %s"), Bytes(2, "Reserved"),
    Hex(4, "Remote Console Session ID").Little(), Bytes(0, "Integrity Check Value")});
constexpr auto kSol = Rows<Rmcp>({
    Number(1, "Packet Sequence Number"), Number(1, "Acknowledged Sequence Number"),
    Number(1, "Accepted Character Count"),
    Hex(1, "Operation/Status"), Bytes(0, "Characters")});

constexpr auto kTarget = Rows<Rmcp>({
    Hex(1, "Target Address"), Word(1), Bits(0, 6, "Network Function", kIpmiFunctionNames).Into(&Rmcp::function),
    Bits(6, 2, "LUN")});
constexpr auto kSource = Rows<Rmcp>({
    Hex(1, "Source Address"), Word(1), Bits(0, 6, "Sequence Number"), Bits(6, 2, "LUN")});

// Both checksums make the bytes before them, from the last one on, come to zero.
void AddChecksum(const Place& in, const Field& checksum, const Field& covered) {
  if (!checksum.here || !covered.bytes) return;
  uint32_t sum = checksum.value;
  for (int32_t i = 0; i < covered.length; ++i) sum += covered.bytes[i];
  AddLine(in, checksum, "Checksum: 0x%02X (%s)", checksum.value, (sum & 0xFF) == 0 ? "Good" : "BAD");
}

void ShowMessage(const Place& at, Cursor& c, Rmcp& rmcp) {
  const Cursor start = c;
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "IPMI Message");
  const Place in = Under(at, line);
  ShowRows<Rmcp>(in, c, kTarget, rmcp);
  const Field head = Ahead(start, 2);
  AddChecksum(in, TakeU8(c), head);
  const Cursor body = c;
  ShowRows<Rmcp>(in, c, kSource, rmcp);
  const uint32_t function = rmcp.function.value;
  const Field command = TakeU8(c);
  const uint32_t key = (function & ~1u) << 8 | command.value;
  const char* name = LookupName(kIpmiCommandNames, key);
  AddLine(in, command, "Command: 0x%02X = %s", command.value, name);
  if (command.here) AppendToLine(in, rmcp.top, ", %s%s", name, function & 1 ? " Response" : "");
  if (command.here) AppendToLine(in, line, ": %s, %s", name, LookupName(kIpmiFunctionNames, function));
  Cursor data = TakeCursor(c, Left(c) - 1);
  const bool isResponse = function & 1;
  uint32_t completion = 0;
  if (isResponse) {
    const Field code = TakeU8(data);
    completion = code.value;
    const char* codeName = completion >= 0x01 && completion <= 0x7E ? "Device Specific"
                           : completion >= 0x80 && completion <= 0xBE ? "Command Specific"
                                                                      : LookupName(kIpmiCompletionNames, completion);
    AddLine(in, code, "Completion Code: 0x%02X = %s", code.value, codeName);
  }
  NoValues none;
  if (completion == 0 && Left(data) > 0) ShowRows<NoValues>(in, data, IpmiDataRows(key, isResponse), none);
  data.ranShort = false;
  const Field rest = Rest(data);
  AddLine(in, rest, "Data: %s", HexText(rest));
  const Field covered = Ahead(body, c.offset - body.offset);
  AddChecksum(in, TakeU8(c), covered);
}

void ShowAlgorithms(const Place& at, Cursor& c) {
  constexpr const char* kKinds[] = {"Authentication", "Integrity", "Confidentiality"};
  Loop loop;
  while (Left(c) >= 8 && MoreAt(at, c, loop)) {
    const uint32_t type = PeekU8(c);
    const Place in = Under(at, AddLine(at, Ahead(c, 8), "%s Payload", type < 3 ? kKinds[type] : kUnknown));
    const Field kind = TakeU8(c), reserved = TakeU16(c), length = TakeU8(c), algorithm = TakeU8(c), rest = TakeU24(c);
    AddLine(in, kind, "Payload Type: %u = %s", kind.value, type < 3 ? kKinds[type] : kUnknown);
    AddLine(in, reserved, "Reserved: %u", reserved.value);
    AddLine(in, length, "Payload Length: %u", length.value);
    AddLine(in, algorithm, "Algorithm: %u = %s", algorithm.value,
            LookupName(kIpmiAlgorithmNames, kind.value << 8 | (algorithm.value & 0x3F)));
    AddLine(in, rest, "Reserved: %u", rest.value);
  }
}

void ShowPayload(const Place& in, Cursor& c, Rmcp& rmcp) {
  const uint32_t type = rmcp.payload.value & 0x3F;
  if (rmcp.payload.value & kEncrypted) {
    AddBlock(in, Rest(c), "Encrypted Payload");
    return;
  }
  switch (type) {
    case 0x00: ShowMessage(in, c, rmcp); break;
    case 0x01: ShowRows<Rmcp>(in, c, kSol, rmcp); break;
    case 0x10: ShowRows<Rmcp>(in, c, kOpenRequest, rmcp); ShowAlgorithms(in, c); break;
    case 0x11: ShowRows<Rmcp>(in, c, kOpenResponse, rmcp); ShowAlgorithms(in, c); break;
    case 0x12: ShowRows<Rmcp>(in, c, kRakp1, rmcp); break;
    case 0x13: ShowRows<Rmcp>(in, c, kRakp2, rmcp); break;
    case 0x14: ShowRows<Rmcp>(in, c, kRakp3, rmcp); break;
    case 0x15: ShowRows<Rmcp>(in, c, kRakp4, rmcp); break;
    default: break;
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Payload Data");
}

// Behind an authenticated payload: bytes that fill it up, how many, what follows, and the code.
void ShowTrailer(const Place& in, Cursor& c) {
  const Cursor start = c;
  int32_t fill = 0;
  while (fill < Left(start) && start.at[fill] == 0xFF && fill < 4) ++fill;
  const Field padding = fill ? TakeBytes(c, fill) : Field{};
  AddLine(in, padding, "Integrity Padding: %s", HexText(padding));
  const Field length = TakeU8(c), next = TakeU8(c);
  AddLine(in, length, "Pad Length: %u", length.value);
  AddLine(in, next, "Next Header: 0x%02X", next.value);
  const Field code = Rest(c);
  AddLine(in, code, "Authentication Code: %s", HexText(code));
}

void ShowIpmi(const Place& at, Cursor& c, Rmcp& rmcp) {
  const uint32_t authentication = PeekU8(c);
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "IPMI Session: Version %s",
                                  authentication == kRmcpPlus ? "2.0" : "1.5");
  const Place in = Under(at, line);
  ShowRows<Rmcp>(in, c, kSessionType, rmcp);
  if (authentication != kRmcpPlus) {
    ShowRows<Rmcp>(in, c, kSession15, rmcp);
    if (authentication != 0) ShowRows<Rmcp>(in, c, kCode, rmcp);
    ShowRows<Rmcp>(in, c, kLength15, rmcp);
    Cursor message = TakeCursor(c, rmcp.length.value);
    if (Left(message)) ShowMessage(in, message, rmcp);
    return;
  }
  ShowRows<Rmcp>(in, c, kPayloadType, rmcp);
  AppendToLine(in, line, ", %s", LookupName(kIpmiPayloadNames, rmcp.payload.value & 0x3F));
  const uint32_t payload = rmcp.payload.value & 0x3F;
  if (payload != 0) AppendToLine(in, rmcp.top, ", %s", LookupName(kIpmiPayloadNames, payload));
  if ((rmcp.payload.value & 0x3F) == 2) ShowRows<Rmcp>(in, c, kOemPayload, rmcp);
  ShowRows<Rmcp>(in, c, kSession20, rmcp);
  Cursor held = TakeCursor(c, rmcp.length.value);
  if (Left(held)) ShowPayload(in, held, rmcp);
  if (rmcp.payload.value & kAuthenticated && Left(c)) ShowTrailer(in, c);
}

void ShowAsf(const Place& at, Cursor& c, Rmcp& rmcp) {
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "ASF: %s", LookupName(kAsfNames, PeekU8(c, 4)));
  const Place in = Under(at, line);
  ShowRows<Rmcp>(in, c, kAsf, rmcp);
  Cursor data = TakeCursor(c, rmcp.length.value);
  const uint32_t type = rmcp.asfType.value;
  if (Left(data)) {
    ShowRows<Rmcp>(in, data, type == 0x40   ? RowSpan<Rmcp>(kPong)
                             : type == 0x41 ? RowSpan<Rmcp>(kCapabilities)
                             : type == 0x42 ? RowSpan<Rmcp>(kSystemState)
                                            : RowSpan<Rmcp>(), rmcp);
  }
  data.ranShort = false;
  AddBlock(in, Rest(data), "ASF Data");
}

}  // namespace

int32_t DecodeRmcp(const Place& at, Cursor c) {
  if (Left(c) < 4 || PeekU8(c) != 6 || (PeekU8(c, 3) & 0x60) != 0) return 0;
  const uint32_t kind = PeekU8(c, 3) & 0x1F;
  const bool isAcknowledge = PeekU8(c, 3) & kAcknowledge;
  const LineHandle top = AddLine(at, Ahead(c, 4), "RMCP: %s%s", LookupName(kClassNames, kind),
                                 isAcknowledge ? ", Acknowledge" : "");
  const Place in = Under(at, top);
  Rmcp rmcp = ShowRows(in, c, kHeader);
  rmcp.top = top;
  if (!isAcknowledge && Left(c)) {
    if (kind == kClassAsf) {
      AppendToLine(in, top, ", %s", LookupName(kAsfNames, PeekU8(c, 4)));
      ShowAsf(in, c, rmcp);
    } else if (kind == kClassIpmi) {
      ShowIpmi(in, c, rmcp);
    }
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "RMCP Data");
  return 1;
}

}  // namespace qxview
