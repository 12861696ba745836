// Media Gateway Control Protocol (RFC 3435, RFC 3660): a call agent commands gateways in lines of text; several messages may
// stand in a datagram, a dot in a line of its own between them.
//
//   CRCX 1204 aaln/1@gateway.example MGCP 1.0        or       200 1204 OK
//   C: A3C47F21456789F0
//   (empty line, session description)
#include "core/bounded_loop.h"
#include "decoders/common/header_lines.h"

namespace qxview {

int32_t DecodeSdp(const Place& at, Cursor c);

namespace {

constexpr struct {
  const char* verb;
  const char* name;
} kVerbs[] = {
    {"EPCF", "Endpoint Configuration"}, {"CRCX", "Create Connection"}, {"MDCX", "Modify Connection"},
    {"DLCX", "Delete Connection"}, {"RQNT", "Notification Request"}, {"NTFY", "Notify"}, {"AUEP", "Audit Endpoint"},
    {"AUCX", "Audit Connection"}, {"RSIP", "Restart in Progress"}, {"MESG", "Message"}};
constexpr struct {
  const char* code;
  const char* name;
} kParameters[] = {
    {"K", "Response Acknowledgement"}, {"B", "Bearer Information"}, {"C", "Call ID"}, {"I", "Connection ID"},
    {"N", "Notified Entity"}, {"X", "Request Identifier"}, {"L", "Local Connection Options"}, {"M", "Connection Mode"},
    {"R", "Requested Events"}, {"S", "Signal Requests"}, {"D", "Digit Map"}, {"O", "Observed Events"},
    {"P", "Connection Parameters"}, {"E", "Reason Code"}, {"Z", "Specific Endpoint ID"}, {"Z2", "Second Endpoint ID"},
    {"I2", "Second Connection ID"}, {"F", "Requested Information"}, {"Q", "Quarantine Handling"}, {"T", "Detect Events"},
    {"RM", "Restart Method"}, {"RD", "Restart Delay"}, {"A", "Capabilities"}, {"ES", "Event States"},
    {"PL", "Package List"}, {"MD", "Maximum MGCP Datagram"}};
// What lists of parameters consist of, parted by commas that stand in no parentheses.
constexpr struct {
  const char* code;
  const char* label;
} kLists[] = {
    {"A", "Capability"}, {"B", "Bearer Attribute"}, {"ES", "Event"}, {"F", "Information Code"}, {"K", "Transaction Range"},
    {"L", "Option"}, {"O", "Event"}, {"P", "Statistic"}, {"PL", "Package"}, {"Q", "Handling"}, {"R", "Event"}, {"S", "Signal"},
    {"T", "Event"}};
constexpr auto kReasons = SortedNames({
    {0, "Endpoint State Is Nominal"}, {900, "Endpoint Malfunctioning"}, {901, "Endpoint Taken Out of Service"},
    {902, "Loss of Lower Layer Connectivity"}, {903, "QoS Resource Reservation Lost"}, {904, "Manual Intervention"},
    {905, "Facility Failure"}});
constexpr auto kReplies = SortedNames({
    {0, "Acknowledged"}, {100, "Being Executed"}, {101, "Queued"}, {200, "Executed Normally"}, {250, "Connection Deleted"},
    {400, "Transient Error"}, {401, "Phone Already Off-Hook"}, {402, "Phone Already On-Hook"},
    {403, "Insufficient Resources Now"}, {404, "Insufficient Bandwidth Now"}, {405, "Endpoint Restarting"},
    {406, "Timed Out"}, {407, "Aborted"}, {409, "Internal Overload"}, {410, "No Endpoint Available"},
    {500, "Unknown Endpoint"}, {501, "Endpoint Not Ready"}, {502, "Insufficient Resources"}, {503, "All Of Not Supported"},
    {504, "Unknown Command"}, {505, "Unsupported Remote Description"}, {506, "Both Remote Descriptions Unsupported"},
    {507, "Unsupported Functionality"}, {508, "Unsupported Quarantine Handling"}, {509, "Bad Remote Description"},
    {510, "Protocol Error"}, {511, "Unrecognized Extension"}, {512, "Cannot Detect Event"}, {513, "Cannot Generate Signal"},
    {514, "Cannot Send Announcement"}, {515, "Incorrect Connection ID"}, {516, "Incorrect Call ID"},
    {517, "Unsupported Mode"}, {518, "Unsupported Package"}, {519, "No Digit Map"}, {520, "Endpoint Restarting"},
    {521, "Redirected"}, {522, "No Such Event or Signal"}, {523, "Unknown Action"}, {524, "Inconsistent Options"},
    {525, "Unknown Extension in Options"}, {526, "Insufficient Bandwidth"}, {527, "Missing Remote Description"},
    {528, "Incompatible Version"}, {529, "Internal Hardware Failure"}, {530, "Signaling Error"}, {531, "Trunk Group Failure"},
    {532, "Unsupported Local Options"}, {533, "Response Too Large"}, {534, "Codec Negotiation Failure"},
    {535, "Packetization Period Not Supported"}, {536, "Unsupported Restart Method"}, {537, "Unsupported Digit Map Extension"},
    {538, "Event or Signal Parameter Error"}, {539, "Unsupported Command Parameter"}, {540, "Connection Limit Exceeded"},
    {541, "Unsupported Local Options Parameter"}});

const char* VerbName(const Field& verb) {
  for (const auto& each : kVerbs) {
    if (IsWord(verb, each.verb)) return each.name;
  }
  return nullptr;
}

const char* ParameterName(const Field& code) {
  for (const auto& each : kParameters) {
    if (IsWord(code, each.code)) return each.name;
  }
  return nullptr;
}

// The first line: a command with its transaction, endpoint and version, or a reply with its code and transaction.
Place ShowFirstLine(const Place& at, const Field& message, const TextLine& line) {
  Field rest = line.text;
  const Field first = TakeWord(rest), transaction = TakeWord(rest);
  if (const char* name = VerbName(first)) {
    const Place in = Under(at, AddLine(at, message, "MGCP: %s, Transaction %s", name, Text(transaction)));
    const Place parts = Under(in, AddTextLine(in, line.whole, "Command", line.text));
    AddLine(parts, first, "Verb: %s = %s", Text(first), name);
    AddTextLine(parts, transaction, "Transaction ID");
    AddTextLine(parts, TakeWord(rest), "Endpoint");
    AddTextLine(parts, Trimmed(rest), "Version");
    return in;
  }
  const int32_t code = DecimalOf(first);
  const char* name = LookupName(kReplies, static_cast<uint32_t>(code));
  const Place in = Under(at, AddLine(at, message, "MGCP: %u %s, Transaction %s", code, name, Text(transaction)));
  const Place parts = Under(in, AddTextLine(in, line.whole, "Reply", line.text));
  AddLine(parts, first, "Return Code: %u = %s", code, name);
  AddTextLine(parts, transaction, "Transaction ID");
  rest = Trimmed(rest);
  if (rest.length > 0) AddTextLine(parts, rest, "Commentary");
  return in;
}

void ShowItems(const Place& in, const Field& code, const Field& value) {
  if (IsWord(code, "E")) {
    Field rest = value;
    const Field number = TakeWord(rest);
    const int32_t reason = DecimalOf(number);
    if (reason >= 0) AddLine(in, number, "Reason: %u = %s", reason, LookupName(kReasons, static_cast<uint32_t>(reason)));
    return;
  }
  const char* label = nullptr;
  for (const auto& each : kLists) {
    if (IsWord(code, each.code)) label = each.label;
  }
  int32_t start = 0, depth = 0;
  for (int32_t at = 0; label && at <= value.length && GoesOn(in); ++at) {
    const uint32_t c = PeekU8(value, at);
    depth += c == '(' ? 1 : c == ')' && depth > 0 ? -1 : 0;
    if (at < value.length && (c != ',' || depth > 0)) continue;
    const Field item = Trimmed(Slice(value, start, at - start));
    // keys: text Capability, Bearer Attribute, Event, Information Code, Transaction Range, Option, Statistic, Package, Handling
    // keys: text Signal
    if (item.length > 0) AddTextLine(in, item, label);
    start = at + 1;
  }
}

bool IsFirstLine(const Field& line) {
  Field rest = line;
  const Field first = TakeWord(rest);
  return TakeWord(rest).here && (VerbName(first) || (first.length == 3 && DecimalOf(first) >= 0));
}

bool DecodeMessage(const Place& at, Cursor& c) {
  const Cursor start = c;
  TextLine line;
  if (!TakeLine(c, line) || !IsFirstLine(line.text)) return false;
  const Place in = ShowFirstLine(at, Ahead(start, Left(start)), line);
  HeaderLine header;
  Loop loop;
  while (MoreAt(in, c, loop) && TakeHeader(c, header)) {
    ShowItems(Under(in, ShowHeader(in, header, ParameterName(header.name))), header.name, header.value);
  }
  ShowEndOfHeaders(in, c);
  // A session description goes on to the dot that parts messages.
  int32_t end = 0;
  Cursor ahead = c;
  Loop lines;
  while (More(ahead, lines) && TakeLine(ahead, line)) {
    if (line.text.length == 1 && line.text.bytes[0] == '.') break;
    end = ahead.offset - c.offset;
  }
  Cursor body = TakeCursor(c, end);
  if (!in.dead) SetRange(in, in.parent, start.offset, c.offset - start.offset);
  if (Left(body) > 0) CallDecoder(Deeper(at), body, DecodeSdp, "MGCP Data");
  if (PeekU8(c) == '.') {
    TakeLine(c, line);
    AddLine(at, line.whole, "MGCP: Next Message");
  }
  return true;
}

}  // namespace

int32_t DecodeMgcp(const Place& at, Cursor c) {
  int32_t shown = 0;
  Loop loop;
  while (MoreAt(at, c, loop) && DecodeMessage(at, c)) ++shown;
  if (shown == 0) return 0;
  AddRawRest(at, c, "MGCP Data");
  return 1;
}

}  // namespace qxview
