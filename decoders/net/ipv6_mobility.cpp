// The IPv6 mobility header (RFC 6275, fast handovers: RFC 5568): how a node that moves keeps its address. Its home agent
// and its peers learn from these messages where it is reached now (the care-of address).
//
//   0  payload protocol (8)   length in units of 8 bytes beyond the first 8 (8)   type (8)   reserved (8)
//   4  checksum (16)          6  message, then options: type (8), length (8), data; Pad1 is its type byte alone
#include "core/elements.h"
#include "decoders/net/ipv6_extensions.h"

namespace qxview {
namespace {

constexpr auto kBindingStatusNames = SortedNames({
    {0, "Binding Update accepted"}, {1, "Accepted but prefix discovery necessary"},
    {128, "Reason unspecified"}, {129, "Administratively prohibited"}, {130, "Insufficient resources"},
    {131, "Home registration not supported"}, {132, "Not home subnet"}, {133, "Not home agent for this mobile node"},
    {134, "Duplicate Address Detection failed"}, {135, "Sequence number out of window"},
    {136, "Expired home nonce index"}, {137, "Expired care-of nonce index"}, {138, "Expired nonces"},
    {139, "Registration type change disallowed"}, {140, "Mobile Router operation not permitted"},
    {141, "Invalid prefix"}, {142, "Not authorized for prefix"}, {143, "Forwarding setup failed"}});

constexpr auto kBindingErrorNames = SortedNames({
    {1, "Unknown binding for Home Address destination option"}, {2, "Unrecognized mobility header type"}});

constexpr auto kFastBindingStatusNames = SortedNames({
    {0, "Fast Binding Update accepted"}, {1, "Accepted but new care-of address invalid"},
    {128, "Reason unspecified"}, {129, "Administratively prohibited"}, {130, "Insufficient resources"},
    {131, "Incorrect interface identifier length"}});

constexpr auto kHandoverCodeNames = SortedNames({
    {0, "Handover accepted, new care-of address valid"}, {1, "Handover accepted, new care-of address not valid"},
    {2, "Handover accepted, new care-of address assigned"}, {3, "Handover accepted, use previous care-of address"},
    {4, "Message sent unsolicited"}, {128, "Handover not accepted, reason unspecified"},
    {129, "Administratively prohibited"}, {130, "Insufficient resources"}});

// Labels of this header keep a blank in front of their colon.
void ShowUnits(const Place& in, const Field& time, const char* label) {
  const uint32_t units = PeekU16(time);
  AddLine(in, time, "%s: %u (in 4-second time units = %u seconds)", label, units, units * 4);
}
constexpr RowData kReserved8 = Number(1, "Reserved "), kReserved16 = Number(2, "Reserved "),
                  kSequence = Number(2, "Sequence "), kLifetime = Shown(2, "Lifetime ", ShowUnits),
                  kKeyManagement = Flag(0, "Key Management Mobility Capability");

struct Mobility {
  Field count;
};
constexpr auto kRefreshRows = Rows<Mobility>({kReserved16});
constexpr auto kHomeTestInitRows = Rows<Mobility>({Word(2), Number(8, "Home Init Cookie ")});
constexpr auto kCareOfTestInitRows = Rows<Mobility>({Word(2), Number(8, "Care-of Init Cookie ")});
constexpr auto kHomeTestRows = Rows<Mobility>({
    Number(2, "Home Nonce Index "), Number(8, "Home Init Cookie "), Number(8, "Home Keygen Token ")});
constexpr auto kCareOfTestRows = Rows<Mobility>({
    Number(2, "Care-of Nonce Index "), Number(8, "Care-of Init Cookie "), Number(8, "Care-of Keygen Token ")});
constexpr auto kUpdateRows = Rows<Mobility>({
    kSequence, Hex(2, "Flags "), Flag(0, "Acknowledge"), Flag(1, "Home Registration"),
    Flag(2, "Link-Local Address Compatibility"), Flag(3, "Key Management Mobility Capability"),
    Flag(4, "MAP Registration"), Flag(5, "Mobile Router"), Flag(6, "Proxy Registration"), Flag(7, "UDP Encapsulation"),
    kLifetime});
constexpr auto kAcknowledgementRows = Rows<Mobility>({
    Number(1, "Status ", kBindingStatusNames), Hex(1, "Flags "), kKeyManagement, Flag(1, "Mobile Router"),
    Flag(2, "Proxy Registration"), Flag(3, "TLV-header format"), kSequence, kLifetime});
constexpr auto kErrorRows = Rows<Mobility>({
    Number(1, "Status ", kBindingErrorNames), kReserved8, IPv6("Home Address ")});
constexpr auto kFastAcknowledgementRows = Rows<Mobility>({
    Number(1, "Status ", kFastBindingStatusNames), Hex(1, "Flags "), kKeyManagement, kSequence, kLifetime});
constexpr auto kAgentSwitchRows =
    Rows<Mobility>({Number(1, "Number of Addresses ").Into(&Mobility::count), kReserved8});
constexpr auto kHeartbeatRows = Rows<Mobility>({
    Hex(2, "Flags "), Flag(14, "Unsolicited"), Flag(15, "Response"), Number(4, "Sequence ")});
constexpr auto kHandoverRows = Rows<Mobility>({
    kSequence, Hex(1, "Flags "), Flag(0, "Assigned Address Configuration"), Flag(1, "Buffer"), Number(1, "Code ")});
constexpr auto kHandoverAcknowledgeRows =
    Rows<Mobility>({kSequence, kReserved8, Number(1, "Code ", kHandoverCodeNames)});

void ShowAgentAddresses(const Place& in, Cursor& c, Mobility& message) {
  static constexpr auto kAddress = Rows<NoValues>({IPv6("Home Agent Address ")});
  for (uint32_t i = 0; i < message.count.value && Left(c) >= 16; ++i) ShowRows(in, c, kAddress);
}

constexpr auto kMessages = Choices<Mobility>({
    {0, "Binding Refresh Request", kRefreshRows}, {1, "Home Test Init", kHomeTestInitRows},
    {2, "Care-of Test Init", kCareOfTestInitRows}, {3, "Home Test", kHomeTestRows},
    {4, "Care-of Test", kCareOfTestRows}, {5, "Binding Update", kUpdateRows},
    {6, "Binding Acknowledgement", kAcknowledgementRows}, {7, "Binding Error", kErrorRows},
    {8, "Fast Binding Update", kUpdateRows}, {9, "Fast Binding Acknowledgement", kFastAcknowledgementRows},
    {10, "Fast Neighbor Advertisement", kRefreshRows}, {11, "Experimental Mobility Header"},
    {12, "Home Agent Switch", kAgentSwitchRows, ShowAgentAddresses}, {13, "Heartbeat", kHeartbeatRows},
    {14, "Handover Initiate", kHandoverRows}, {15, "Handover Acknowledge", kHandoverAcknowledgeRows},
    {16, "Binding Revocation"}, {17, "Localized Routing Initiation"}, {18, "Localized Routing Acknowledgment"},
    {19, "Update Notification"}, {20, "Update Notification Acknowledgement"}, {21, "Flow Binding"},
    {22, "Subscription Query"}, {23, "Subscription Response"}});
const char* MessageName(uint32_t type) {
  const Choice<Mobility>* known = FindChoice<Mobility>(kMessages, type);
  return known ? known->name : kUnknown;
}

void DecodePadding(const Place& in, Cursor& c) {
  const Field length = Slice(TakeU16(c), 1, 1);
  AddLine(in, length, "Length : %u bytes", PeekU8(length));
  AddBlock(in, Rest(c), "Padding");
}

constexpr auto kAdviceRows = Rows<Mobility>({Shown(2, "Refresh Interval ", ShowUnits)});
constexpr auto kAlternateRows = Rows<Mobility>({IPv6("Alternate Care-of Address ")});
constexpr auto kNonceRows = Rows<Mobility>({Number(2, "Home Nonce Index "), Number(2, "Care-of Nonce Index ")});
void ShowAuthenticator(const Place& in, Cursor& c, Mobility&) { AddBlock(in, Rest(c), "Authenticator"); }

constexpr auto kOptions = Choices<Mobility>({
    {2, "Binding Refresh Advice", kAdviceRows}, {3, "Alternate Care-of Address", kAlternateRows},
    {4, "Nonce Indices", kNonceRows}, {5, "Binding Authorization Data", {}, ShowAuthenticator}});
constexpr uint32_t kPad1 = 0, kPadN = 1;

constexpr auto kOtherRows = Rows<NoValues>({Number(1, "Type "), Number(1, "Length ")});

void DecodeOtherOption(const Place& in, Cursor& c) {
  ShowRows(in, c, kOtherRows);
  AddBlock(in, Rest(c), "Data");
}

// An option with a length; `c` holds all of it that is in its header.
void DecodeLongOption(const Place& in, Cursor c) {
  const Field whole = Ahead(c, Left(c));
  const uint32_t type = PeekU8(c);
  if (type == kPadN) return DecodePadding(Under(in, AddLine(in, whole, "PadN")), c);
  if (const Choice<Mobility>* known = FindChoice<Mobility>(kOptions, type)) {
    Mobility option{};
    TakeU16(c);   // type and length
    return ShowChoice(Under(in, AddLine(in, whole, "%s", known->name)), c, known, option);
  }
  DecodeOtherOption(Under(in, AddLine(in, whole, "Mobility Option Data")), c);
}

void DecodeOptions(const Place& in, Cursor& c) {
  if (Left(c) < 1) return;
  const Place options = Under(in, AddLine(in, Ahead(c, Left(c)), "Mobility Options"));
  for (Loop loop; MoreAt(in, c, loop);) {
    if (PeekU8(c) == kPad1) {
      const Field pad = TakeU8(c);
      AddLine(Under(options, AddLine(options, pad, "Pad1")), pad, "Type : %u  (padding)", pad.value);
    } else if (Left(c) < 2 || static_cast<int32_t>(PeekU8(c, 1)) > Left(c) - 2) {
      AddBlock(options, Rest(c), "Mobility Support Options Data");   // an option that runs past its header
    } else {
      DecodeLongOption(options, TakeCursor(c, 2 + PeekU8(c, 1)));
    }
  }
}

void DecodeMessage(const Place& in, Cursor& c, uint32_t type) {
  const Choice<Mobility>* known = FindChoice<Mobility>(kMessages, type);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "%s Message", known ? known->name : "Mobility"));
  if (known && known->rows.count) {
    Mobility message{};
    ShowRows(under, c, known->rows, message);
    if (known->show) known->show(under, c, message);
    return DecodeOptions(under, c);
  }
  AddBlock(under, Rest(c), "Message Data");
}

struct Header {
  Field type, checksum;
};
constexpr auto kHeader = Rows<Header>({
    Number(1, "Length of the header excluding first 8 octets"),
    Number(1, "Mobility Header Type", MessageName).Into(&Header::type), Number(1, "Reserved"),
    Hex(2, "Checksum").Into(&Header::checksum)});

}  // namespace

bool DecodeMobilityHeader(const Place& at, Cursor& c, HeaderChain& chain) {
  ReachLayer(at, DispatchTable::kIpProtocol, kMobilityHeader, c);
  const int32_t size = DeclaredHeaderSize(c);
  if (size == 0) return EndChain(at, c);
  const LineHandle top = AddLine(at, CapturedPart(c, size), "IPv6 Mobility Header: %u bytes", size);
  const Place in = Under(at, top);
  Cursor header = TakeCursor(c, size);
  TakeNextHeader(in, header, chain);
  const Header fields = ShowRows(in, header, kHeader);
  if (fields.checksum.here) DecodeMessage(in, header, fields.type.value);
  return Left(c) > 0;
}

}  // namespace qxview
