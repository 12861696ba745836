// What chunks of the Stream Control Transmission Protocol carry beyond their fields: parameters (RFC 9260, 4895, 5061, 6525,
// 3758, 9653) and causes of errors (RFC 9260 3.3.10, 4895 5, 5061 4.3).
#include "core/elements.h"
#include "decoders/net/sctp.h"

namespace qxview {
namespace {

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .padTo = 4, .lengthCountsHeader = true};

constexpr auto kAddressNames = SortedNames({{5, "IPv4 Address"}, {6, "IPv6 Address"}, {11, "Host Name Address"}});
constexpr auto kHmacNames = SortedNames({{0, "Reserved"}, {1, "SHA-1"}, {2, "Reserved"}, {3, "SHA-256"}});
constexpr auto kResultNames = SortedNames({
    {0, "Success - Nothing to Do"}, {1, "Success - Performed"}, {2, "Denied"}, {3, "Error - Wrong SSN"},
    {4, "Error - Request Already in Progress"}, {5, "Error - Bad Sequence Number"}, {6, "In Progress"}});
constexpr auto kErrorMethodNames = SortedNames({{0, "Reserved"}, {1, "SCTP over DTLS"}});

constexpr auto kBytes = Rows<Sctp>({Bytes(0, nullptr)});
constexpr auto kIPv4 = Rows<Sctp>({IPv4(nullptr).Note(", %s")});
constexpr auto kIPv6 = Rows<Sctp>({IPv6(nullptr).Note(", %s")});
constexpr auto kHost = Rows<Sctp>({Text(0, nullptr).Note(", %s")});
constexpr auto kPreservative = Rows<Sctp>({Number(4, "Suggested Life-Span Increment", " ms").Note(", %u ms")});
constexpr auto kAddressType = Rows<Sctp>({Number(2, "Address Type", kAddressNames)});
constexpr auto kChunkType = Rows<Sctp>({Number(1, "Chunk Type", kSctpChunkNames)});
constexpr auto kHmac = Rows<Sctp>({Number(2, "HMAC Identifier", kHmacNames)});
constexpr auto kStream = Rows<Sctp>({Number(2, "Stream Number")});
constexpr auto kOutgoing = Rows<Sctp>({
    Number(4, "Request Sequence Number"), Number(4, "Response Sequence Number"), Number(4, "Last Assigned TSN")});
constexpr auto kRequest = Rows<Sctp>({Number(4, "Request Sequence Number")});
constexpr auto kResponse = Rows<Sctp>({
    Number(4, "Response Sequence Number"), Number(4, "Result", kResultNames).Note(", %s"), Number(4, "Sender's Next TSN"),
    Number(4, "Receiver's Next TSN")});
constexpr auto kStreams = Rows<Sctp>({
    Number(4, "Request Sequence Number"), Number(2, "New Streams").Note(", %u"), Hex(2, "Reserved")});
constexpr auto kCorrelation = Rows<Sctp>({Hex(4, "Correlation ID")});
constexpr auto kAdaptation = Rows<Sctp>({Hex(4, "Adaptation Code Point")});
constexpr auto kZeroChecksum = Rows<Sctp>({Number(4, "Error Detection Method", kErrorMethodNames)});

template <const auto& rows, int32_t size>
void ShowEach(const Place& in, Cursor& c, Sctp& sctp) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Sctp>(in, c, rows, sctp);
}
void ShowNested(const Place& in, Cursor& c, Sctp& sctp) {
  ShowRows<Sctp>(in, c, kCorrelation, sctp);
  if (Left(c) >= 4) ShowSctpParameters(in, c, sctp);
}
void ShowFailure(const Place& in, Cursor& c, Sctp& sctp) {
  ShowRows<Sctp>(in, c, kCorrelation, sctp);
  ShowSctpCauses(in, c, sctp);
}

constexpr auto kParameters = Choices<Sctp>({
    {0x0001, "Heartbeat Info", kBytes}, {0x0005, "IPv4 Address", kIPv4}, {0x0006, "IPv6 Address", kIPv6},
    {0x0007, "State Cookie", kBytes}, {0x0008, "Unrecognized Parameter", {}, ShowSctpParameters},
    {0x0009, "Cookie Preservative", kPreservative}, {0x000B, "Host Name Address", kHost},
    {0x000C, "Supported Address Types", {}, ShowEach<kAddressType, 2>},
    {0x000D, "Outgoing SSN Reset Request", kOutgoing, ShowEach<kStream, 2>},
    {0x000E, "Incoming SSN Reset Request", kRequest, ShowEach<kStream, 2>}, {0x000F, "SSN/TSN Reset Request", kRequest},
    {0x0010, "Re-configuration Response", kResponse}, {0x0011, "Add Outgoing Streams Request", kStreams},
    {0x0012, "Add Incoming Streams Request", kStreams}, {0x8000, "ECN Capable"},
    {0x8001, "Zero Checksum Acceptable", kZeroChecksum}, {0x8002, "Random", kBytes},
    {0x8003, "Chunk List", {}, ShowEach<kChunkType, 1>}, {0x8004, "Requested HMAC Algorithm", {}, ShowEach<kHmac, 2>},
    {0x8005, "Padding", kBytes}, {0x8008, "Supported Extensions", {}, ShowEach<kChunkType, 1>},
    {0xC000, "Forward TSN Supported"}, {0xC001, "Add IP Address", {}, ShowNested},
    {0xC002, "Delete IP Address", {}, ShowNested}, {0xC003, "Error Cause Indication", {}, ShowFailure},
    {0xC004, "Set Primary Address", {}, ShowNested}, {0xC005, "Success Indication", {}, ShowNested},
    {0xC006, "Adaptation Layer Indication", kAdaptation}});

constexpr auto kInvalidStream = Rows<Sctp>({Number(2, "Stream Identifier").Note(", %u"), Hex(2, "Reserved")});
constexpr auto kMissing = Rows<Sctp>({Number(4, "Missing Parameters")});
constexpr auto kMissingType = Rows<Sctp>({Hex(2, "Missing Parameter Type")});
constexpr auto kStale = Rows<Sctp>({Number(4, "Measure of Staleness", " microseconds")});
constexpr auto kNoData = Rows<Sctp>({Number(4, "TSN")});
constexpr auto kReason = Rows<Sctp>({Text(0, "Upper Layer Abort Reason").Note(", %s")});
constexpr auto kInformation = Rows<Sctp>({Text(0, "Additional Information").Note(", %s")});

constexpr auto kCauses = Choices<Sctp>({
    {1, "Invalid Stream Identifier", kInvalidStream}, {2, "Missing Mandatory Parameter", kMissing, ShowEach<kMissingType, 2>},
    {3, "Stale Cookie", kStale}, {4, "Out of Resource"}, {5, "Unresolvable Address", {}, ShowSctpParameters},
    {6, "Unrecognized Chunk Type", kBytes}, {7, "Invalid Mandatory Parameter"},
    {8, "Unrecognized Parameters", {}, ShowSctpParameters}, {9, "No User Data", kNoData},
    {10, "Cookie Received While Shutting Down"}, {11, "Restart with New Addresses", {}, ShowSctpParameters},
    {12, "User-Initiated Abort", kReason}, {13, "Protocol Violation", kInformation},
    {0x00A0, "Request to Delete Last Remaining IP Address", {}, ShowSctpParameters},
    {0x00A1, "Operation Refused Due to Resource Shortage", {}, ShowSctpParameters},
    {0x00A2, "Request to Delete Source IP Address", {}, ShowSctpParameters},
    {0x00A3, "Association Aborted Due to Illegal ASCONF-ACK"},
    {0x00A4, "Request Refused - No Authorization", {}, ShowSctpParameters},
    {0x0105, "Unsupported HMAC Identifier", {}, ShowEach<kHmac, 2>}});

}  // namespace

// Parameters stand within parameters and causes; nobody means it to go deeper than this.
void ShowSctpParameters(const Place& in, Cursor& c, Sctp& sctp) {
  if (sctp.nesting >= kDeepestSctp) return;
  ++sctp.nesting;
  ShowElements<Sctp>(in, c, kForm, "Parameter", kParameters, sctp);
  --sctp.nesting;
}

void ShowSctpCauses(const Place& in, Cursor& c, Sctp& sctp) {
  ShowElements<Sctp>(in, c, kForm, "Cause", kCauses, sctp);
}

}  // namespace qxview
