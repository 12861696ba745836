// Link Management Protocol (RFC 4204; SONET/SDH: RFC 4207, optical line systems: RFC 4209): which links lead to this
// neighbour, are they connected as both sides think, and do they work?
//
//   version (4 bits), reserved, flags (1)   type (1)   length (2)   reserved (2)
//   objects: negotiable and C-Type (1)   class (1)   length of all (2)   what they hold
#include "core/elements.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 8, kObjectHeader = 4;

constexpr auto kTypeNames = SortedNames({
    {1, "Config"}, {2, "ConfigAck"}, {3, "ConfigNack"}, {4, "Hello"}, {5, "BeginVerify"}, {6, "BeginVerifyAck"},
    {7, "BeginVerifyNack"}, {8, "EndVerify"}, {9, "EndVerifyAck"}, {10, "Test"}, {11, "TestStatusSuccess"},
    {12, "TestStatusFailure"}, {13, "TestStatusAck"}, {14, "LinkSummary"}, {15, "LinkSummaryAck"},
    {16, "LinkSummaryNack"}, {17, "ChannelStatus"}, {18, "ChannelStatusAck"}, {19, "ChannelStatusRequest"},
    {20, "ChannelStatusResponse"}, {21, "TraceMonitor"}, {22, "TraceMonitorAck"}, {23, "TraceMonitorNack"},
    {24, "TraceMismatch"}, {25, "TraceMismatchAck"}, {26, "TraceReq"}, {27, "TraceReport"}, {28, "TraceReqNack"},
    {29, "InsertTrace"}, {30, "InsertTraceAck"}, {31, "InsertTraceNack"}, {50, "ServiceConfig"},
    {51, "ServiceConfigAck"},
    {52, "ServiceConfigNack"}, {241, "DiscoveryResponse"}, {242, "DiscoveryResponseAck"},
    {243, "DiscoveryResponseNack"}});
constexpr auto kClassNames = SortedNames({
    {1, "CONTROL_CHANNEL_ID"}, {2, "NODE_ID"}, {3, "LINK_ID"}, {4, "INTERFACE_ID"}, {5, "MESSAGE_ID"}, {6, "CONFIG"},
    {7, "HELLO"}, {8, "BEGIN_VERIFY"}, {9, "BEGIN_VERIFY_ACK"}, {10, "VERIFY_ID"}, {11, "TE_LINK"}, {12, "DATA_LINK"},
    {13, "CHANNEL_STATUS"}, {14, "CHANNEL_STATUS_REQUEST"}, {20, "ERROR_CODE"}, {21, "TRACE"}, {22, "TRACE_REQ"},
    {51, "SERVICE_CONFIG"}, {248, "DA_DCN_ADDRESS"}, {249, "LOCAL_LAD_INFO"}});
constexpr auto kFlagMasks = SortedNames({{1, "Control Channel Down"}, {2, "LMP Restart"}});

struct Lmp {
  Field type, length;
};
constexpr auto kHeader = Rows<Lmp>({
    Word(2), Bits(0, 4, "Version"), Bits(4, 12, "Reserved"), Flags(1, "Flags", kFlagMasks),
    Number(1, "Message Type", kTypeNames).Into(&Lmp::type), Number(2, "Message Length").Into(&Lmp::length),
    Number(2, "Reserved")});
constexpr auto kObjectHead = Rows<Lmp>({
    Word(1), Flag(0, "Negotiable"), Bits(1, 7, "C-Type"), Number(1, "Object Class", kClassNames),
    Number(2, "Object Length")});

constexpr auto kLocalChannel = Rows<Lmp>({Number(4, "Local Control Channel ID").Note(", %u")});
constexpr auto kRemoteChannel = Rows<Lmp>({Number(4, "Remote Control Channel ID").Note(", %u")});
constexpr auto kLocalNode = Rows<Lmp>({IPv4("Local Node ID").Note(", %s")});
constexpr auto kRemoteNode = Rows<Lmp>({IPv4("Remote Node ID").Note(", %s")});
constexpr auto kLocal4 = Rows<Lmp>({IPv4("Local ID").Note(", %s")});
constexpr auto kRemote4 = Rows<Lmp>({IPv4("Remote ID").Note(", %s")});
constexpr auto kLocal6 = Rows<Lmp>({IPv6("Local ID").Note(", %s")});
constexpr auto kRemote6 = Rows<Lmp>({IPv6("Remote ID").Note(", %s")});
constexpr auto kLocalNumber = Rows<Lmp>({Number(4, "Local Unnumbered ID").Note(", %u")});
constexpr auto kRemoteNumber = Rows<Lmp>({Number(4, "Remote Unnumbered ID").Note(", %u")});
constexpr auto kMessageId = Rows<Lmp>({Number(4, "Message ID").Note(", %u")});
constexpr auto kConfig = Rows<Lmp>({
    Number(2, "Hello Interval", " milliseconds"), Number(2, "Hello Dead Interval", " milliseconds")});
constexpr auto kHello = Rows<Lmp>({Number(4, "Transmit Sequence Number"), Number(4, "Receive Sequence Number")});
constexpr auto kEncodingNames = SortedNames({
    {1, "Packet"}, {2, "Ethernet"}, {3, "ANSI/ETSI PDH"}, {5, "SDH/SONET"}, {7, "Digital Wrapper"}, {8, "Lambda"},
    {9, "Fiber"}, {11, "FibreChannel"}, {12, "G.709 ODUk"}, {13, "G.709 Optical Channel"}, {14, "Line"}});
constexpr auto kVerifyMasks = SortedNames({{1, "Verify All Links"}, {2, "Data Link Type Is a Port"}});
constexpr auto kTransportMasks = SortedNames({
    {0x0800, "64-byte J1 Trace"}, {0x1000, "16-byte J1 Trace"}, {0x2000, "64-byte J0 Trace"},
    {0x4000, "16-byte J0 Trace"},
    {0x8000, "Payload Test"}});
constexpr auto kBeginVerify = Rows<Lmp>({
    Flags(2, "Verify Flags", kVerifyMasks), Number(2, "Verify Interval", " milliseconds"),
    Number(4, "Number of Data Links"),
    Number(1, "Encoding Type", kEncodingNames), Number(1, "Reserved"),
    Flags(2, "Verify Transport Mechanism", kTransportMasks), Float(4, "Transmission Rate"), Float(4, "Wavelength")});
constexpr auto kVerifyAck = Rows<Lmp>({
    Number(2, "Verify Dead Interval", " milliseconds"), Hex(2, "Verify Transport Response")});
constexpr auto kVerifyId = Rows<Lmp>({Number(4, "Verify ID").Note(", %u")});
constexpr auto kTeMasks = SortedNames({{1, "Fault Management Supported"}, {2, "Link Verification Supported"}});
constexpr auto kTeLink4 = Rows<Lmp>({
    Flags(1, "TE Link Flags", kTeMasks), Hex(3, "Reserved"), IPv4("Local Link ID").Note(", %s"),
    IPv4("Remote Link ID")});
constexpr auto kTeLink6 = Rows<Lmp>({
    Flags(1, "TE Link Flags", kTeMasks), Hex(3, "Reserved"), IPv6("Local Link ID").Note(", %s"),
    IPv6("Remote Link ID")});
constexpr auto kTeLinkNumber = Rows<Lmp>({
    Flags(1, "TE Link Flags", kTeMasks), Hex(3, "Reserved"), Number(4, "Local Link Number").Note(", %u"),
    Number(4, "Remote Link Number")});
constexpr auto kDataMasks = SortedNames({
    {1, "Interface Is a Port"}, {2, "Allocated for User Traffic"}, {4, "Failed Link"}});
constexpr auto kDataLink4 = Rows<Lmp>({
    Flags(1, "Data Link Flags", kDataMasks), Hex(3, "Reserved"), IPv4("Local Interface ID").Note(", %s"),
    IPv4("Remote Interface ID")});
constexpr auto kDataLink6 = Rows<Lmp>({
    Flags(1, "Data Link Flags", kDataMasks), Hex(3, "Reserved"), IPv6("Local Interface ID").Note(", %s"),
    IPv6("Remote Interface ID")});
constexpr auto kDataLinkNumber = Rows<Lmp>({
    Flags(1, "Data Link Flags", kDataMasks), Hex(3, "Reserved"), Number(4, "Local Interface Number").Note(", %u"),
    Number(4, "Remote Interface Number")});
constexpr auto kSwitching = Rows<Lmp>({
    Number(1, "Switching Type"), Number(1, "Encoding Type", kEncodingNames), Float(4, "Minimum Reservable Bandwidth"),
    Float(4, "Maximum Reservable Bandwidth")});
constexpr auto kWavelength = Rows<Lmp>({Hex(2, "Reserved"), Number(4, "Wavelength Number")});
constexpr auto kSubobjects = Choices<Lmp>({
    {1, "Interface Switching Capability", kSwitching}, {2, "Wavelength", kWavelength}});
void ShowSubobjects(const Place& in, Cursor& c, Lmp& lmp) {
  constexpr ElementForm kForm{.lengthCountsHeader = true, .valueLines = true};
  ShowElements<Lmp>(in, c, kForm, "Subobject", kSubobjects, lmp);
}

constexpr auto kStateNames = SortedNames({{1, "Signal Okay"}, {2, "Signal Degrade"}, {3, "Signal Fail"}});
constexpr auto kState = Rows<Lmp>({
    Word(4), Flag(0, "Active"), Flag(1, "Transmit Direction"),
    Bits(2, 30, "Channel Status", kStateNames).Note(", %s")});
constexpr auto kChannel4 = Rows<Lmp>({IPv4("Interface ID").Note(", %s")});
constexpr auto kChannel6 = Rows<Lmp>({IPv6("Interface ID").Note(", %s")});
constexpr auto kChannelNumber = Rows<Lmp>({Number(4, "Interface Number").Note(", %u")});
void ShowStates(const Place& in, Cursor& c, Lmp& lmp, RowSpan<Lmp> interface, bool hasState) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    ShowRows<Lmp>(in, c, interface, lmp);
    if (hasState) ShowRows<Lmp>(in, c, kState, lmp);
  }
}
void ShowStates4(const Place& in, Cursor& c, Lmp& lmp) { ShowStates(in, c, lmp, kChannel4, true); }
void ShowStates6(const Place& in, Cursor& c, Lmp& lmp) { ShowStates(in, c, lmp, kChannel6, true); }
void ShowStatesOfNumbers(const Place& in, Cursor& c, Lmp& lmp) { ShowStates(in, c, lmp, kChannelNumber, true); }
void ShowAsked4(const Place& in, Cursor& c, Lmp& lmp) { ShowStates(in, c, lmp, kChannel4, false); }
void ShowAsked6(const Place& in, Cursor& c, Lmp& lmp) { ShowStates(in, c, lmp, kChannel6, false); }
void ShowAskedNumbers(const Place& in, Cursor& c, Lmp& lmp) { ShowStates(in, c, lmp, kChannelNumber, false); }

constexpr auto kVerifyErrors = SortedNames({
    {0x01, "Link Verification Procedure Not Supported"}, {0x02, "Unwilling to Verify"},
    {0x04, "Unsupported Verification Transport Mechanism"}, {0x08, "Link ID Configuration Error"},
    {0x10, "Unknown Object C-Type"}});
constexpr auto kSummaryErrors = SortedNames({
    {0x01, "Unacceptable Non-Negotiable LINK_SUMMARY Parameters"}, {0x02, "Renegotiate LINK_SUMMARY Parameters"},
    {0x04, "Invalid TE_LINK Object"}, {0x08, "Invalid DATA_LINK Object"}, {0x10, "Unknown TE_LINK C-Type"},
    {0x20, "Unknown DATA_LINK C-Type"}});
constexpr auto kVerifyError = Rows<Lmp>({Flags(4, "Begin Verify Errors", kVerifyErrors)});
constexpr auto kSummaryError = Rows<Lmp>({Flags(4, "Link Summary Errors", kSummaryErrors)});

// Traces of SONET and SDH (RFC 4207 4): what a link's other end shall show.
constexpr auto kTraceNames = SortedNames({
    {1, "SONET Section Trace (J0)"}, {2, "SONET Path Trace (J1)"}, {3, "SDH Section Trace (J0)"},
    {4, "SDH Path Trace (J1)"}});
constexpr auto kTrace = Rows<Lmp>({
    Number(2, "Trace Type", kTraceNames).Note(", %s"), Counted(2, Text(0, "Trace Message")).Note(", %s")});
void ShowTraces(const Place& in, Cursor& c, Lmp& lmp) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Lmp>(in, c, kTrace, lmp);
}
constexpr auto kTraceRequest = Rows<Lmp>({Number(2, "Trace Type", kTraceNames).Note(", %s"), Number(2, "Reserved")});
constexpr auto kBehaviorMasks = SortedNames({
    {0x20000000, "Data Channel Status Confirmation"}, {0x40000000, "Optical Line Systems"},
    {0x80000000, "SONET/SDH Testing"}});
constexpr auto kBehavior = Rows<Lmp>({Flags(4, "Behavior Flags", kBehaviorMasks)});

// By class (high octet) and C-Type.
constexpr auto kObjects = Choices<Lmp>({
    {0x0101, "Local", kLocalChannel}, {0x0102, "Remote", kRemoteChannel}, {0x0201, "Local", kLocalNode},
    {0x0202, "Remote", kRemoteNode}, {0x0301, "Local", kLocal4}, {0x0302, "Remote", kRemote4},
    {0x0303, "Local", kLocal6},
    {0x0304, "Remote", kRemote6}, {0x0305, "Local", kLocalNumber}, {0x0306, "Remote", kRemoteNumber},
    {0x0401, "Local", kLocal4}, {0x0402, "Remote", kRemote4}, {0x0403, "Local", kLocal6}, {0x0404, "Remote", kRemote6},
    {0x0405, "Local", kLocalNumber}, {0x0406, "Remote", kRemoteNumber}, {0x0501, "Message ID", kMessageId},
    {0x0502, "Message ID Acknowledgement", kMessageId}, {0x0601, "Hello Configuration", kConfig},
    {0x0603, "Behavior Configuration", kBehavior},
    {0x0701, "Hello", kHello},
    {0x0801, "Begin Verify", kBeginVerify}, {0x0901, "Begin Verify Acknowledgement", kVerifyAck},
    {0x0A01, "Verify ID", kVerifyId}, {0x0B01, "IPv4", kTeLink4}, {0x0B02, "IPv6", kTeLink6},
    {0x0B03, "Unnumbered", kTeLinkNumber}, {0x0C01, "IPv4", kDataLink4, ShowSubobjects},
    {0x0C02, "IPv6", kDataLink6, ShowSubobjects}, {0x0C03, "Unnumbered", kDataLinkNumber, ShowSubobjects},
    {0x0D01, "IPv4", {}, ShowStates4}, {0x0D02, "IPv6", {}, ShowStates6}, {0x0D03, "Unnumbered", {},
    ShowStatesOfNumbers},
    {0x0E01, "IPv4", {}, ShowAsked4}, {0x0E02, "IPv6", {}, ShowAsked6}, {0x0E03, "Unnumbered", {}, ShowAskedNumbers},
    {0x1401, "Begin Verify Error", kVerifyError}, {0x1402, "Link Summary Error", kSummaryError},
    {0x1501, "Trace", {}, ShowTraces}, {0x1601, "Trace Request", kTraceRequest}});

}  // namespace

int32_t DecodeLmp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || PeekU8(c) >> 4 != 1 || PeekU16(c, 4) < kHeaderSize) return 0;
  Cursor message = TakeCursor(c, PeekU16(c, 4));
  const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "LMP: %s Message",
                                     LookupName(kTypeNames, PeekU8(message, 3))));
  Lmp lmp = ShowRows(in, message, kHeader);
  Loop loop;
  while (Left(message) >= kObjectHeader && PeekU16(message, 2) >= kObjectHeader && MoreAt(in, message, loop)) {
    Cursor object = TakeCursor(message, PeekU16(message, 2));
    const uint32_t kind = PeekU8(object, 1) << 8 | (PeekU8(object) & 0x7F);
    const Place under = Under(in, AddLine(in, Ahead(object, Left(object)), "Object: %s",
                                          LookupName(kClassNames, kind >> 8)));
    ShowRows<Lmp>(under, object, kObjectHead, lmp);
    ShowChoice<Lmp>(under, object, FindChoice<Lmp>(kObjects, kind), lmp);   // keys: none Data
  }
  AddBlock(in, Rest(message), "LMP Data");
  AddRawRest(at, c, "LMP Data");
  return 1;
}

}  // namespace qxview
