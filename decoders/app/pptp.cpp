// Point-to-Point Tunneling Protocol (RFC 2637): the control connection that opens calls, whose frames GRE then carries.
//
//   length   message type (1)   magic cookie   control message type   reserved   then fields of fixed size by the type
#include "core/elements.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 12;
constexpr uint32_t kMagicCookie = 0x1A2B3C4D;

constexpr auto kMessageNames = SortedNames({{1, "Control Message"}, {2, "Management Message"}});
constexpr auto kControlNames = SortedNames({
    {1, "Start-Control-Connection-Request"}, {2, "Start-Control-Connection-Reply"},
    {3, "Stop-Control-Connection-Request"}, {4, "Stop-Control-Connection-Reply"}, {5, "Echo-Request"},
    {6, "Echo-Reply"}, {7, "Outgoing-Call-Request"}, {8, "Outgoing-Call-Reply"}, {9, "Incoming-Call-Request"},
    {10, "Incoming-Call-Reply"}, {11, "Incoming-Call-Connected"}, {12, "Call-Clear-Request"},
    {13, "Call-Disconnect-Notify"}, {14, "WAN-Error-Notify"}, {15, "Set-Link-Info"}});
constexpr auto kStartResults = SortedNames({
    {1, "Successful"}, {2, "General Error"}, {3, "Command Channel Already Exists"}, {4, "Not Authorized"},
    {5, "Protocol Version Not Supported"}});
constexpr auto kErrorNames = SortedNames({
    {0, "None"}, {1, "Not Connected"}, {2, "Bad Format"}, {3, "Bad Value"}, {4, "No Resource"}, {5, "Bad Call ID"},
    {6, "PAC Error"}});
constexpr auto kStopReasons = SortedNames({{1, "None"}, {2, "Stop Protocol"}, {3, "Stop Local Shutdown"}});
constexpr auto kResultNames = SortedNames({{1, "OK"}, {2, "General Error"}});
constexpr auto kOutgoingResults = SortedNames({
    {1, "Connected"}, {2, "General Error"}, {3, "No Carrier"}, {4, "Busy"}, {5, "No Dial Tone"}, {6, "Time-Out"},
    {7, "Do Not Accept"}});
constexpr auto kIncomingResults = SortedNames({{1, "Connect"}, {2, "General Error"}, {3, "Do Not Accept"}});
constexpr auto kDisconnectResults = SortedNames({
    {1, "Lost Carrier"}, {2, "General Error"}, {3, "Admin Shutdown"}, {4, "Request"}});
constexpr auto kFramingMasks = SortedNames({{1, "Asynchronous Framing"}, {2, "Synchronous Framing"}});
constexpr auto kBearerMasks = SortedNames({{1, "Analog Access"}, {2, "Digital Access"}});

struct Pptp {
  Field length, type;
};
constexpr auto kHeader = Rows<Pptp>({
    Number(2, "Length").Into(&Pptp::length), Number(2, "Message Type", kMessageNames), Hex(4, "Magic Cookie"),
    Number(2, "Control Message Type", kControlNames).Into(&Pptp::type), Number(2, "Reserved")});
constexpr auto kStartRequest = Rows<Pptp>({
    Hex(2, "Protocol Version"), Bytes(2, "Reserved"), Flags(4, "Framing Capabilities", kFramingMasks),
    Flags(4, "Bearer Capabilities", kBearerMasks), Number(2, "Maximum Channels"), Number(2, "Firmware Revision"),
    Text(64, "Host Name"), Text(64, "Vendor Name")});
constexpr auto kStartReply = Rows<Pptp>({
    Hex(2, "Protocol Version"), Number(1, "Result Code", kStartResults).Note(", %s"),
    Number(1, "Error Code", kErrorNames), Flags(4, "Framing Capabilities", kFramingMasks),
    Flags(4, "Bearer Capabilities", kBearerMasks), Number(2, "Maximum Channels"), Number(2, "Firmware Revision"),
    Text(64, "Host Name"), Text(64, "Vendor Name")});
constexpr auto kStopRequest = Rows<Pptp>({Number(1, "Reason", kStopReasons).Note(", %s"), Bytes(3, "Reserved")});
constexpr auto kStopReply = Rows<Pptp>({
    Number(1, "Result Code", kResultNames), Number(1, "Error Code", kErrorNames), Bytes(2, "Reserved")});
constexpr auto kEchoRequest = Rows<Pptp>({Number(4, "Identifier")});
constexpr auto kEchoReply = Rows<Pptp>({
    Number(4, "Identifier"), Number(1, "Result Code", kResultNames), Number(1, "Error Code", kErrorNames),
    Bytes(2, "Reserved")});
constexpr auto kOutgoingRequest = Rows<Pptp>({
    Number(2, "Call ID").Note(", Call %u"), Number(2, "Call Serial Number"), Number(4, "Minimum BPS"),
    Number(4, "Maximum BPS"), Flags(4, "Bearer Type", kBearerMasks), Flags(4, "Framing Type", kFramingMasks),
    Number(2, "Packet Receive Window Size"), Number(2, "Packet Processing Delay", " tenths of a second"),
    Number(2, "Phone Number Length"), Bytes(2, "Reserved"), Text(64, "Phone Number"), Text(64, "Subaddress")});
constexpr auto kOutgoingReply = Rows<Pptp>({
    Number(2, "Call ID").Note(", Call %u"), Number(2, "Peer's Call ID").Note(", Peer's Call %u"),
    Number(1, "Result Code", kOutgoingResults).Note(", %s"), Number(1, "Error Code", kErrorNames),
    Number(2, "Cause Code"), Number(4, "Connect Speed"), Number(2, "Packet Receive Window Size"),
    Number(2, "Packet Processing Delay", " tenths of a second"), Number(4, "Physical Channel ID")});
constexpr auto kIncomingRequest = Rows<Pptp>({
    Number(2, "Call ID").Note(", Call %u"), Number(2, "Call Serial Number"), Flags(4, "Bearer Type", kBearerMasks),
    Number(4, "Physical Channel ID"), Number(2, "Dialed Number Length"), Number(2, "Dialing Number Length"),
    Text(64, "Dialed Number"), Text(64, "Dialing Number"), Text(64, "Subaddress")});
constexpr auto kIncomingReply = Rows<Pptp>({
    Number(2, "Call ID").Note(", Call %u"), Number(2, "Peer's Call ID").Note(", Peer's Call %u"),
    Number(1, "Result Code", kIncomingResults).Note(", %s"), Number(1, "Error Code", kErrorNames),
    Number(2, "Packet Receive Window Size"), Number(2, "Packet Processing Delay", " tenths of a second"),
    Bytes(2, "Reserved")});
constexpr auto kIncomingConnected = Rows<Pptp>({
    Number(2, "Peer's Call ID").Note(", Peer's Call %u"), Bytes(2, "Reserved"), Number(4, "Connect Speed"),
    Number(2, "Packet Receive Window Size"), Number(2, "Packet Processing Delay", " tenths of a second"),
    Flags(4, "Framing Type", kFramingMasks)});
constexpr auto kClear = Rows<Pptp>({Number(2, "Call ID").Note(", Call %u"), Bytes(2, "Reserved")});
constexpr auto kDisconnect = Rows<Pptp>({
    Number(2, "Call ID").Note(", Call %u"), Number(1, "Result Code", kDisconnectResults).Note(", %s"),
    Number(1, "Error Code", kErrorNames), Number(2, "Cause Code"), Bytes(2, "Reserved"), Text(128, "Call Statistics")});
constexpr auto kErrors = Rows<Pptp>({
    Number(2, "Peer's Call ID").Note(", Peer's Call %u"), Bytes(2, "Reserved"), Number(4, "CRC Errors"),
    Number(4, "Framing Errors"), Number(4, "Hardware Overruns"), Number(4, "Buffer Overruns"),
    Number(4, "Time-Out Errors"), Number(4, "Alignment Errors")});
constexpr auto kLinkInfo = Rows<Pptp>({
    Number(2, "Peer's Call ID").Note(", Peer's Call %u"), Bytes(2, "Reserved"), Hex(4, "Send ACCM"),
    Hex(4, "Receive ACCM")});

constexpr auto kMessages = Choices<Pptp>({
    {1, "", kStartRequest}, {2, "", kStartReply}, {3, "", kStopRequest}, {4, "", kStopReply}, {5, "", kEchoRequest},
    {6, "", kEchoReply}, {7, "", kOutgoingRequest}, {8, "", kOutgoingReply}, {9, "", kIncomingRequest},
    {10, "", kIncomingReply}, {11, "", kIncomingConnected}, {12, "", kClear}, {13, "", kDisconnect},
    {14, "", kErrors}, {15, "", kLinkInfo}});

}  // namespace

int32_t DecodePptp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || PeekU32(c, 4) != kMagicCookie) return 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && PeekU32(c, 4) == kMagicCookie && MoreAt(at, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU16(c));
    Cursor message = TakeCursor(c, length < kHeaderSize ? kHeaderSize : length);
    const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "PPTP: %s",
                                       LookupName(kControlNames, PeekU16(message, 8))));
    Pptp pptp = ShowRows(in, message, kHeader);
    ShowChoice<Pptp>(in, message, FindChoice<Pptp>(kMessages, pptp.type.value), pptp);
  }
  if (Left(c) > 0) AddRawRest(at, c, "PPTP Data");
  return 1;
}

}  // namespace qxview
