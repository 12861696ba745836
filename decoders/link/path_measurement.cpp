// Loss and delay of label switched paths (RFC 6374; responses over UDP: RFC 7876): a query counts or stamps at both ends, and
// a response brings that back.
//
//   version, flags (1)   control code (1)   length (2)   formats (4)   session, traffic class (4)   times and counters (8 each)
//   TLVs: type (1)   length (1)   value
#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/link/associated_channel.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr int32_t kHeadSize = 12, kValueSize = 8, kValues = 4;
constexpr uint32_t kDirectLoss = 0x000A, kInferredLoss = 0x000B, kDelay = 0x000C;
constexpr uint32_t kResponse = 0x8;

constexpr auto kQueryNames = SortedNames({
    {0, "In-Band Response Requested"}, {1, "Out-of-Band Response Requested"}, {2, "No Response Requested"}});
constexpr auto kResponseNames = SortedNames({
    {0x01, "Success"}, {0x02, "Data Format Invalid"}, {0x03, "Initialization in Progress"},
    {0x04, "Data Reset Occurred"}, {0x05, "Resource Temporarily Unavailable"}, {0x10, "Unspecified Error"},
    {0x11, "Unsupported Version"}, {0x12, "Unsupported Control Code"}, {0x13, "Unsupported Data Format"},
    {0x14, "Authentication Failure"}, {0x15, "Invalid Destination Node Identifier"}, {0x16, "Connection Mismatch"},
    {0x17, "Unsupported Mandatory TLV Object"}, {0x18, "Unsupported Query Interval"}, {0x19, "Administrative Block"},
    {0x1A, "Resource Unavailable"}, {0x1B, "Resource Released"}, {0x1C, "Invalid Message"}, {0x1D, "Protocol Error"}});
constexpr uint32_t kNull = 0, kNtp = 2, kPtp = 3;
constexpr auto kFormatNames = SortedNames({
    {kNull, "Null"}, {1, "Sequence Number"}, {kNtp, "NTP"}, {kPtp, "Truncated PTP"}});

struct Measurement {
  Field flags, format, receiverFormat, family;
};

constexpr auto kFirst = Rows<Measurement>({
    Word(1), Bits(0, 4, "Version"), Flag(4, "Response"), Flag(5, "Traffic-Class-Specific"), Bits(6, 2, "Reserved")});
constexpr auto kQuery = Rows<Measurement>({Number(1, "Control Code", kQueryNames)});
constexpr auto kReply = Rows<Measurement>({Number(1, "Control Code", kResponseNames).Note(", %s")});
constexpr auto kLength = Rows<Measurement>({Number(2, "Message Length")});
constexpr auto kLossFormats = Rows<Measurement>({
    Word(1), Flag(0, "Extended Counters"), Flag(1, "Octets Counted"), Bits(2, 2, "Reserved"),
    Bits(4, 4, "Origin Timestamp Format", kFormatNames).Into(&Measurement::format), Number(3, "Reserved")});
constexpr auto kDelayFormats = Rows<Measurement>({
    Word(4), Bits(0, 4, "Querier Timestamp Format", kFormatNames).Into(&Measurement::format),
    Bits(4, 4, "Responder Timestamp Format", kFormatNames).Into(&Measurement::receiverFormat),
    Bits(8, 4, "Responder's Preferred Timestamp Format", kFormatNames), Bits(12, 20, "Reserved")});
constexpr auto kBothFormats = Rows<Measurement>({
    Word(4), Flag(0, "Extended Counters"), Flag(1, "Octets Counted"), Bits(2, 2, "Reserved"),
    Bits(4, 4, "Querier Timestamp Format", kFormatNames).Into(&Measurement::format),
    Bits(8, 4, "Responder Timestamp Format", kFormatNames).Into(&Measurement::receiverFormat),
    Bits(12, 4, "Responder's Preferred Timestamp Format", kFormatNames), Bits(16, 16, "Reserved")});
constexpr auto kSession = Rows<Measurement>({
    Word(4), Bits(0, 26, "Session Identifier").Note(", Session %u"), Bits(26, 6, "Differentiated Services Code Point")});

constexpr auto kReturnAddress = Rows<Measurement>({
    Number(2, "Address Family", AddressFamilyName).Into(&Measurement::family)});
void ShowAddress(const Place& in, Cursor& c, Measurement& measurement) {
  ShowFamilyAddress(in, c, "Address", measurement.family.value);
}
constexpr auto kInterval = Rows<Measurement>({Number(4, "Session Query Interval", " milliseconds")});
constexpr auto kPort = Rows<Measurement>({Number(2, "UDP Destination Port")});
void ShowReturnAddress(const Place& in, Cursor& c, Measurement&) {
  ShowFamilyAddress(in, c, "Address", Left(c) == 4 ? kFamilyIPv4 : kFamilyIPv6);
}
constexpr auto kPadding = Rows<Measurement>({Bytes(0, "Padding")});
constexpr auto kTlvs = Choices<Measurement>({
    {0, "Padding - Copy in Response", kPadding}, {1, "Return Address", kReturnAddress, ShowAddress},
    {2, "Session Query Interval", kInterval}, {3, "Loopback Request"}, {127, "Experimental"},
    {128, "Padding - Do Not Copy in Response", kPadding}, {129, "Destination Address", kReturnAddress, ShowAddress},
    {130, "Source Address", kReturnAddress, ShowAddress}, {131, "UDP Return", kPort, ShowReturnAddress},
    {255, "Experimental"}});

constexpr auto kNumberValue = Rows<Measurement>({Number(8, nullptr)});
constexpr auto kNtpValue = Rows<Measurement>({NtpTime(nullptr)});
constexpr auto kPtpValue = Rows<Measurement>({Number(4, nullptr, " seconds"), Number(4, nullptr, " nanoseconds")});

// What a query brought stands in the third and fourth place of its response. Each end writes in its own format: the querier when
// it sends the query and gets the response, the responder in between.
void ShowTimes(const Place& in, Cursor& c, Measurement& measurement, bool isResponse) {
  static constexpr const char* kLabels[kValues] = {"Timestamp 1", "Timestamp 2", "Timestamp 3", "Timestamp 4"};
  for (int32_t i = 0; i < kValues && Left(c) >= kValueSize; ++i) {
    const bool isQuerier = isResponse ? i == 1 || i == 2 : i % 2 == 0;
    const uint32_t format = isQuerier ? measurement.format.value : measurement.receiverFormat.value;
    if (format == kNtp) {
      // keys: time Timestamp 1, Timestamp 2, Timestamp 3, Timestamp 4
      ShowRows<Measurement>(in, c, kNtpValue, measurement, kLabels[i]);
    } else {
      const RowSpan<Measurement> rows = format == kPtp ? RowSpan<Measurement>(kPtpValue) : kNumberValue;
      // keys: number Timestamp 1, Timestamp 2, Timestamp 3, Timestamp 4
      ShowRows<Measurement>(in, c, rows, measurement, kLabels[i]);
    }
  }
}

void ShowCounters(const Place& in, Cursor& c, Measurement& measurement) {
  static constexpr const char* kLabels[kValues] = {"Counter 1", "Counter 2", "Counter 3", "Counter 4"};
  for (int32_t i = 0; i < kValues && Left(c) >= kValueSize; ++i) {
    ShowRows<Measurement>(in, c, kNumberValue, measurement, kLabels[i]);
  }
}

constexpr auto kOriginNumber = Rows<Measurement>({Number(8, "Origin Timestamp")});
constexpr auto kOriginNtp = Rows<Measurement>({NtpTime("Origin Timestamp")});
constexpr auto kOriginPtp = Rows<Measurement>({
    Number(4, "Origin Timestamp", " seconds"), Number(4, "Origin Timestamp", " nanoseconds")});

void ShowOrigin(const Place& in, Cursor& c, Measurement& measurement) {
  const uint32_t format = measurement.format.value;
  ShowRows<Measurement>(in, c, format == kNtp   ? RowSpan<Measurement>(kOriginNtp)
                               : format == kPtp ? RowSpan<Measurement>(kOriginPtp)
                                                : RowSpan<Measurement>(kOriginNumber), measurement);
}

}  // namespace

int32_t DecodePathMeasurement(const Place& at, Cursor c, uint32_t type) {
  if (Left(c) < kHeadSize) return 0;
  const KeyedAs keys(PacketOf(at), "mpls_pm");
  const bool isResponse = (PeekU8(c) & kResponse) != 0, isLoss = type == kDirectLoss || type == kInferredLoss;
  const uint32_t length = PeekU16(c, 2);
  Cursor message = TakeCursor(c, length < kHeadSize ? Left(c) : static_cast<int32_t>(length));
  const char* what = isLoss ? "Loss" : type == kDelay ? "Delay" : "Loss and Delay";
  const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "Path Measurement: %s %s", what,
                                     isResponse ? "Response" : "Query"));
  Measurement measurement = ShowRows(in, message, kFirst);
  const auto show = [&](RowSpan<Measurement> rows) { ShowRows<Measurement>(in, message, rows, measurement); };
  show(isResponse ? RowSpan<Measurement>(kReply) : RowSpan<Measurement>(kQuery));
  show(kLength);
  show(isLoss ? RowSpan<Measurement>(kLossFormats) : type == kDelay ? RowSpan<Measurement>(kDelayFormats) : kBothFormats);
  show(kSession);
  if (isLoss) {
    ShowOrigin(in, message, measurement);
  } else {
    ShowTimes(in, message, measurement, isResponse);
  }
  if (type != kDelay) ShowCounters(in, message, measurement);
  constexpr ElementForm kForm{};
  ShowElements<Measurement>(in, message, kForm, "TLV", kTlvs, measurement);
  message.ranShort = false;   // what is left of a message that is cut
  AddBlock(in, Rest(message), "Measurement Data");
  AddRawRest(at, c, "Measurement Data");
  return 1;
}

}  // namespace qxview
