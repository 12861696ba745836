// The IPv6 mobility header (RFC 6275, fast handovers: RFC 5568): how a node that moves keeps its address. Its home agent
// and its peers learn from these messages where it is reached now (the care-of address).
//
//   0  payload protocol (8)   length in units of 8 bytes beyond the first 8 (8)   type (8)   reserved (8)
//   4  checksum (16)          6  message, then options: type (8), length (8), data; Pad1 is its type byte alone
#include "core/elements.h"
#include "decoders/common/tells_all.h"
#include "decoders/net/ipv6_extensions.h"

namespace qxview {
namespace {

constexpr auto kBindingStatusNames = SortedNames({
    {0, "Binding Update accepted"}, {1, "Accepted but prefix discovery necessary"},
    {2, "GRE key option not required"}, {3, "GRE tunneling accepted, TLV header not supported"},
    {4, "Multiple care-of addresses: not complete"}, {5, "Multiple care-of addresses: return home without discovery"},
    {6, "Accepted, settings of transient binding ignored"},
    {128, "Reason unspecified"}, {129, "Administratively prohibited"}, {130, "Insufficient resources"},
    {131, "Home registration not supported"}, {132, "Not home subnet"}, {133, "Not home agent for this mobile node"},
    {134, "Duplicate Address Detection failed"}, {135, "Sequence number out of window"},
    {136, "Expired home nonce index"}, {137, "Expired care-of nonce index"}, {138, "Expired nonces"},
    {139, "Registration type change disallowed"}, {140, "Mobile Router operation not permitted"},
    {141, "Invalid prefix"}, {142, "Not authorized for prefix"}, {143, "Forwarding setup failed"},
    {144, "Proxy registration not supported"}, {145, "Proxy registration not supported by the local mobility anchor"},
    {146, "Proxy registrations from this gateway not allowed"}, {147, "No home address for this identifier"},
    {148, "Invalid timestamp option"}, {149, "Permanent home keygen token exists"},
    {150, "Non-null home nonce index expected"}, {151, "Service authorization failed"},
    {152, "Proxy registration not enabled"}, {153, "Not local mobility anchor for this mobile node"},
    {154, "Gateway not authorized for proxy registration"}, {155, "Not authorized for home network prefix"},
    {156, "Timestamp mismatch"}, {157, "Timestamp lower than previously accepted"},
    {158, "Missing home network prefix option"}, {159, "Prefix set does not match"},
    {160, "Missing mobile node identifier option"}, {161, "Missing handoff indicator option"},
    {162, "Missing access technology type option"}, {163, "GRE key option required"},
    {164, "Multiple care-of addresses: malformed"}, {165, "Binding without multiple care-of addresses exists"},
    {166, "Multiple care-of addresses prohibited"}, {167, "Unknown care-of address"},
    {168, "Bulk registration prohibited"}, {169, "Simultaneous home and foreign binding prohibited"},
    {170, "Not authorized for IPv4 mobility service"}, {171, "Not authorized for IPv4 home address"},
    {172, "Not authorized for IPv6 mobility service"}, {173, "Assignment of several IPv4 home addresses not supported"},
    {174, "Invalid care-of address"}, {175, "Invalid mobile node group identifier"},
    {176, "Reinitialize security association with home agent controller"},
    {177, "Not authorized for delegated mobile network prefix"}, {178, "Requested prefix not in use"}});

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
    Flag(8, "TLV-header format"), Flag(9, "Bulk Binding Update"),
    kLifetime});
constexpr auto kAcknowledgementRows = Rows<Mobility>({
    Number(1, "Status ", kBindingStatusNames), Hex(1, "Flags "), kKeyManagement, Flag(1, "Mobile Router"),
    Flag(2, "Proxy Registration"), Flag(3, "TLV-header format"), Flag(4, "Bulk Binding Update"), kSequence, kLifetime});
constexpr auto kErrorRows = Rows<Mobility>({
    Number(1, "Status ", kBindingErrorNames), kReserved8, IPv6("Home Address ")});
constexpr auto kFastAcknowledgementRows = Rows<Mobility>({
    Number(1, "Status ", kFastBindingStatusNames), Hex(1, "Flags "), kKeyManagement, kSequence, kLifetime});
constexpr auto kAgentSwitchRows =
    Rows<Mobility>({Number(1, "Number of Addresses ").Into(&Mobility::count), kReserved8});
constexpr auto kHeartbeatRows = Rows<Mobility>({
    Hex(2, "Flags "), Flag(14, "Unsolicited"), Flag(15, "Response"), Number(4, "Sequence ")});
constexpr auto kHandoverRows = Rows<Mobility>({
    kSequence, Hex(1, "Flags "), Flag(0, "Assigned Address Configuration"), Flag(1, "Buffer"), Flag(2, "Proxy"), Flag(3, "Forwarding"),
    Number(1, "Code ")});
constexpr auto kHandoverAcknowledgeRows =
    Rows<Mobility>({kSequence, kReserved8, Number(1, "Code ", kHandoverCodeNames)});

constexpr auto kRevocationTypes = SortedNames({{1, "Binding Revocation Indication"},
                                               {2, "Binding Revocation Acknowledgement"}});
constexpr auto kTriggerNames = SortedNames({
    {0, "Unspecified"}, {1, "Administrative reason"}, {2, "Inter-gateway handover, same access technology"},
    {3, "Inter-gateway handover, different access technology"}, {4, "Inter-gateway handover, unknown"},
    {5, "User initiated session termination"}, {6, "Access network session termination"}, {7, "Out-of-sync state of bindings"},
    {128, "Per-peer policy"}, {129, "Revoking mobility node local policy"}});
constexpr auto kRevocationStatus = SortedNames({
    {0, "Success"}, {1, "Partial success"}, {128, "Binding does not exist"}, {129, "IPv4 home address binding does not exist"},
    {130, "Global revocation not authorized"}, {131, "Revoked mobile nodes identity required"},
    {132, "Revocation failed, mobile node attached"}, {133, "Revocation trigger not supported"},
    {134, "Revocation function not supported"}, {135, "Proxy binding revocation not supported"}});
constexpr auto kRevocationRows = Rows<Mobility>({
    Number(1, "Revocation Type ", kRevocationTypes).Into(&Mobility::count)});
constexpr auto kTriggerRow = Rows<Mobility>({Number(1, "Revocation Trigger ", kTriggerNames)});
constexpr auto kStatusRow = Rows<Mobility>({Number(1, "Status ", kRevocationStatus)});
constexpr auto kRevocationFlags = Rows<Mobility>({
    kSequence, Hex(2, "Flags "), Flag(0, "Proxy Binding"), Flag(1, "IPv4 Home Address Binding Only"), Flag(2, "Global")});
void ShowRevocation(const Place& in, Cursor& c, Mobility& message) {
  ShowRows<Mobility>(in, c, message.count.value == 1 ? RowSpan<Mobility>(kTriggerRow) : RowSpan<Mobility>(kStatusRow), message);
  ShowRows<Mobility>(in, c, kRevocationFlags, message);
}

constexpr auto kRoutingStatus = SortedNames({
    {0, "Success"}, {128, "Localized routing not allowed"}, {129, "Mobile node not attached"}});
constexpr auto kReasonNames = SortedNames({
    {1, "Force re-registration"}, {2, "Update session parameters"}, {3, "Vendor-specific reason"},
    {4, "Acknowledgement of bulk re-registration"}, {5, "Gateway's status"}, {6, "Update of controlled parameters"}});
constexpr auto kNotifyStatus = SortedNames({
    {0, "Success"}, {128, "Failed to update session parameters"}, {129, "Missing vendor-specific option"}});
constexpr auto kRoutingRows = Rows<Mobility>({kSequence, kReserved16, kLifetime});
constexpr auto kRoutingAcknowledgementRows = Rows<Mobility>({
    kSequence, Word(1), Flag(0, "Unsolicited"), Bits(1, 7, "Reserved"), Number(1, "Status ", kRoutingStatus), kLifetime});
constexpr auto kNotificationRows = Rows<Mobility>({
    kSequence, Number(2, "Notification Reason ", kReasonNames), Hex(2, "Flags "), Flag(0, "Acknowledgement Requested"),
    Flag(1, "Retransmission")});
constexpr auto kNotificationAcknowledgementRows = Rows<Mobility>({
    kSequence, Number(1, "Status ", kNotifyStatus), Hex(3, "Reserved ")});

void ShowAgentAddresses(const Place& in, Cursor& c, Mobility& message) {
  static constexpr auto kAddress = Rows<NoValues>({IPv6("Home Agent Address ")});
  for (uint32_t i = 0; i < message.count.value && Left(c) >= 16; ++i) ShowRows(in, c, kAddress);
}

constexpr uint32_t kHomeTestInit = 1, kCareOfTestInit = 2;
constexpr auto kMessages = Choices<Mobility>({
    {0, "Binding Refresh Request", kRefreshRows}, {1, "Home Test Init", kHomeTestInitRows},
    {2, "Care-of Test Init", kCareOfTestInitRows}, {3, "Home Test", kHomeTestRows},
    {4, "Care-of Test", kCareOfTestRows}, {5, "Binding Update", kUpdateRows},
    {6, "Binding Acknowledgement", kAcknowledgementRows}, {7, "Binding Error", kErrorRows},
    {8, "Fast Binding Update", kUpdateRows}, {9, "Fast Binding Acknowledgement", kFastAcknowledgementRows},
    {10, "Fast Neighbor Advertisement", kRefreshRows}, {11, "Experimental Mobility Header"},
    {12, "Home Agent Switch", kAgentSwitchRows, ShowAgentAddresses}, {13, "Heartbeat", kHeartbeatRows},
    {14, "Handover Initiate", kHandoverRows}, {15, "Handover Acknowledge", kHandoverAcknowledgeRows},
    {16, "Binding Revocation", kRevocationRows, ShowRevocation},
    {17, "Localized Routing Initiation", kRoutingRows},
    {18, "Localized Routing Acknowledgment", kRoutingAcknowledgementRows}, {19, "Update Notification", kNotificationRows},
    {20, "Update Notification Acknowledgement", kNotificationAcknowledgementRows}, {21, "Flow Binding"},
    {22, "Subscription Query"}, {23, "Subscription Response"}});
const char* MessageName(uint32_t type) {
  const Choice<Mobility>* known = FindChoice<Mobility>(kMessages, type);
  return known ? known->name : kUnknown;
}

void DecodeMessage(const Place& in, Cursor& c, uint32_t type) {
  const Choice<Mobility>* known = FindChoice<Mobility>(kMessages, type);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "%s Message", known ? known->name : "Mobility"));
  if (known && known->rows.count) {
    Mobility message{};
    if (type == kHomeTestInit || type == kCareOfTestInit) TellBytes(under, Ahead(c, 2), "Reserved");
    ShowRows(under, c, known->rows, message);
    if (known->show) known->show(under, c, message);
    return DecodeMobilityOptions(under, c);
  }
  TellBytes(under, Ahead(c, Left(c)), "Message Value");
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

bool IsDraftMobilityHeader(const Cursor& c) {
  constexpr uint32_t kHighestType = 12;   // of the time
  return Left(c) >= 8 && PeekU8(c, 2) <= kHighestType;
}

bool DecodeMobilityHeader(const Place& at, Cursor& c, HeaderChain& chain) {
  ReachLayer(at, DispatchTable::kIpProtocol, chain.nextHeader, c);
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
