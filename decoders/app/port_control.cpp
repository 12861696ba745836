// NAT Port Mapping Protocol (RFC 6886), version 0, and the Port Control Protocol that follows it (RFC 6887), version 2,
// with its options (RFC 7220, RFC 7225, RFC 7652, RFC 7753, RFC 7843): may an inner address be reached from outside,
// and by which port?
//
//   NAT-PMP   version (1)   operation (1)   of responses: result (2), epoch (4)   ports, lifetime
//   PCP       version (1)   operation (1)   reserved   lifetime (4)   client's address or epoch   data   options
#include "core/elements.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

constexpr uint32_t kResponse = 0x80;
constexpr int32_t kPcpHeader = 24;

constexpr auto kMappingNames = SortedNames({
    {0, "External Address Request"}, {1, "Map UDP Request"}, {2, "Map TCP Request"}, {128, "External Address Response"},
    {129, "Map UDP Response"}, {130, "Map TCP Response"}});
constexpr auto kMappingResults = SortedNames({
    {0, "Success"}, {1, "Unsupported Version"}, {2, "Not Authorized/Refused"}, {3, "Network Failure"},
    {4, "Out of Resources"}, {5, "Unsupported Opcode"}});
constexpr auto kOperationNames = SortedNames({{0, "ANNOUNCE"}, {1, "MAP"}, {2, "PEER"}, {3, "AUTHENTICATION"}});
constexpr auto kResultNames = SortedNames({
    {0, "SUCCESS"}, {1, "UNSUPP_VERSION"}, {2, "NOT_AUTHORIZED"}, {3, "MALFORMED_REQUEST"}, {4, "UNSUPP_OPCODE"},
    {5, "UNSUPP_OPTION"}, {6, "MALFORMED_OPTION"}, {7, "NETWORK_FAILURE"}, {8, "NO_RESOURCES"}, {9, "UNSUPP_PROTOCOL"},
    {10, "USER_EX_QUOTA"}, {11, "CANNOT_PROVIDE_EXTERNAL"}, {12, "ADDRESS_MISMATCH"}, {13, "EXCESSIVE_REMOTE_PEERS"},
    {14, "INITIATION"}, {15, "AUTHENTICATION_REQUIRED"}, {16, "AUTHENTICATION_FAILED"},
    {17, "AUTHENTICATION_SUCCEEDED"}, {18, "SESSION_TERMINATED"}, {19, "UNKNOWN_SESSION_ID"},
    {20, "DOWNGRADE_ATTACK_DETECTED"}, {21, "AUTHENTICATION_REQUEST"}, {22, "AUTHENTICATION_REPLY"},
    {23, "UNSUPP_THIRD_PARTY_ID_LENGTH"}, {24, "THIRD_PARTY_ID_UNKNOWN"}, {25, "THIRD_PARTY_MISSING_OPTION"}});

const char* CarriedName(uint32_t protocol) { return protocol == 0 ? "All Protocols" : IpProtocolName(protocol); }

struct Mapping {
  Field operation, result, code, length;
};

constexpr auto kMappingHeader = Rows<Mapping>({
    Number(1, "Version"), Number(1, "Operation", kMappingNames).Into(&Mapping::operation)});
constexpr auto kMappingStatus = Rows<Mapping>({
    Number(2, "Result Code", kMappingResults), Number(4, "Seconds Since Start of Epoch")});
constexpr auto kExternalAddress = Rows<Mapping>({IPv4("External IP Address").Note(", %s")});
constexpr auto kMapRequest = Rows<Mapping>({
    Number(2, "Reserved"), Number(2, "Internal Port").Note(", Port %u"),
    Number(2, "Suggested External Port").Note(" to %u"), Number(4, "Requested Lifetime", " seconds")});
constexpr auto kMapResponse = Rows<Mapping>({
    Number(2, "Internal Port").Note(", Port %u"), Number(2, "Mapped External Port").Note(" to %u"),
    Number(4, "Lifetime", " seconds")});

constexpr auto kHeader = Rows<Mapping>({
    Number(1, "Version"), Word(1), Flag(0, "Response"),
    Bits(1, 7, "Operation", kOperationNames).Into(&Mapping::operation)});
constexpr auto kRequestHeader = Rows<Mapping>({
    Number(2, "Reserved"), Number(4, "Requested Lifetime", " seconds"), IPv6("Client IP Address")});
constexpr auto kResponseHeader = Rows<Mapping>({
    Number(1, "Reserved"), Number(1, "Result Code", kResultNames).Note(", %s"), Number(4, "Lifetime", " seconds"),
    Number(4, "Epoch Time", " seconds"), Bytes(12, "Reserved")});
constexpr auto kAskedMap = Rows<Mapping>({
    Bytes(12, "Mapping Nonce"), Number(1, "Protocol", CarriedName), Bytes(3, "Reserved"),
    Number(2, "Internal Port").Note(", Port %u"), Number(2, "Suggested External Port").Note(" to %u"),
    IPv6("Suggested External IP Address")});
constexpr auto kGivenMap = Rows<Mapping>({
    Bytes(12, "Mapping Nonce"), Number(1, "Protocol", CarriedName), Bytes(3, "Reserved"),
    Number(2, "Internal Port").Note(", Port %u"), Number(2, "Assigned External Port").Note(" to %u"),
    IPv6("Assigned External IP Address").Note(", %s")});
constexpr auto kPeer = Rows<Mapping>({
    Number(2, "Remote Peer Port"), Number(2, "Reserved"), IPv6("Remote Peer IP Address")});
constexpr auto kAuthentication = Rows<Mapping>({Hex(4, "Session ID"), Number(4, "Sequence Number")});

constexpr auto kOptionHead = Rows<Mapping>({
    Number(1, "Option Code").Into(&Mapping::code), Number(1, "Reserved"),
    Number(2, "Option Length").Into(&Mapping::length)});
constexpr auto kThirdParty = Rows<Mapping>({IPv6("Internal IP Address")});
constexpr auto kFilter = Rows<Mapping>({
    Number(1, "Reserved"), Number(1, "Prefix Length"), Number(2, "Remote Peer Port"), IPv6("Remote Peer IP Address")});
constexpr auto kNonce = Rows<Mapping>({Hex(4, "Nonce")});
constexpr auto kTag = Rows<Mapping>({
    Hex(4, "Session ID"), Number(4, "Sequence Number"), Hex(4, "Key ID"), Bytes(0, "Authentication Data")});
constexpr auto kPaTag = Rows<Mapping>({Hex(4, "Key ID"), Bytes(0, "Authentication Data")});
constexpr auto kPayload = Rows<Mapping>({Bytes(0, "EAP Message")});
constexpr auto kAlgorithm = Rows<Mapping>({Number(4, nullptr)});
constexpr auto kSeconds = Rows<Mapping>({Number(4, "Session Lifetime", " seconds")});
constexpr auto kReceived = Rows<Mapping>({Number(4, "Received Sequence Number")});
constexpr auto kIndicator = Rows<Mapping>({Bytes(0, nullptr)});
constexpr auto kDescription = Rows<Mapping>({Utf8(0, "Description")});
constexpr auto kPrefix64 = Rows<Mapping>({Number(2, "Prefix64 Length"), Bytes(0, "Prefix64 and Suffix")});
constexpr auto kPortSet = Rows<Mapping>({
    Number(2, "Port Set Size"), Number(2, "First Internal Port"), Word(1), Bits(0, 7, "Reserved"),
    Flag(7, "Parity Preservation")});

constexpr auto kOptions = Choices<Mapping>({
    {1, "THIRD_PARTY", kThirdParty}, {2, "PREFER_FAILURE"}, {3, "FILTER", kFilter}, {4, "NONCE", kNonce},
    {5, "AUTHENTICATION_TAG", kTag}, {6, "PA_AUTHENTICATION_TAG", kPaTag}, {7, "EAP_PAYLOAD", kPayload},
    {8, "PRF", kAlgorithm}, {9, "MAC_ALGORITHM", kAlgorithm}, {10, "SESSION_LIFETIME", kSeconds},
    {11, "RECEIVED_PAK", kReceived}, {12, "ID_INDICATOR", kIndicator}, {13, "THIRD_PARTY_ID", kIndicator},
    {128, "DESCRIPTION", kDescription}, {129, "PREFIX64", kPrefix64}, {130, "PORT_SET", kPortSet}});

int32_t DecodeNatPmp(const Place& at, Cursor& c) {
  const Mapping ahead = PeekRows(c, kMappingHeader);
  const uint32_t operation = ahead.operation.value;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "NAT-PMP: %s", LookupName(kMappingNames, operation)));
  Mapping mapping = ShowRows(in, c, kMappingHeader);
  if (operation & kResponse) ShowRows<Mapping>(in, c, kMappingStatus, mapping);
  if (operation == kResponse) {
    ShowRows<Mapping>(in, c, kExternalAddress, mapping);
  } else if (Left(c) > 0) {
    const bool isResponse = operation & kResponse;
    ShowRows<Mapping>(in, c, isResponse ? RowSpan<Mapping>(kMapResponse) : RowSpan<Mapping>(kMapRequest), mapping);
  }
  c.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(c), "Data");
  return 1;
}

// Code, reserved, length, and a value that is padded to words.
void ShowOptions(const Place& in, Cursor& c) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const int32_t length = static_cast<int32_t>(PeekU16(c, 2)), padding = (4 - length % 4) % 4;
    const int32_t size = 4 + length + padding;
    const Choice<Mapping>* choice = FindChoice<Mapping>(kOptions, PeekU8(c));
    const Place under = Under(in, AddLine(in, Ahead(c, size < Left(c) ? size : Left(c)), "Option: %s",
                                          choice ? choice->name : kUnknown));
    Mapping option = ShowRows(under, c, kOptionHead);
    Cursor value = TakeCursor(c, length);
    ShowChoice<Mapping>(under, value, choice, option);
    const Field filler = TakeBytes(c, padding < Left(c) ? padding : Left(c));
    if (filler.length > 0) AddLine(under, filler, "Padding: %s", HexText(filler));
  }
}

int32_t DecodePcp(const Place& at, Cursor& c) {
  constexpr uint32_t kMap = 1, kPeerOperation = 2, kAuthenticate = 3;
  if (Left(c) < kPcpHeader) return 0;
  const uint32_t operation = PeekU8(c, 1) & ~kResponse;
  const bool isResponse = PeekU8(c, 1) & kResponse;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "PCP: %s %s", LookupName(kOperationNames, operation),
                                     isResponse ? "Response" : "Request"));
  Mapping mapping = ShowRows(in, c, kHeader);
  ShowRows<Mapping>(in, c, isResponse ? RowSpan<Mapping>(kResponseHeader) : RowSpan<Mapping>(kRequestHeader), mapping);
  if ((operation == kMap || operation == kPeerOperation) && Left(c) > 0) {
    ShowRows<Mapping>(in, c, isResponse ? RowSpan<Mapping>(kGivenMap) : RowSpan<Mapping>(kAskedMap), mapping);
    if (operation == kPeerOperation) ShowRows<Mapping>(in, c, kPeer, mapping);
  } else if (operation == kAuthenticate && Left(c) > 0) {
    ShowRows<Mapping>(in, c, kAuthentication, mapping);
  }
  ShowOptions(in, c);
  c.ranShort = false;   // what is left of a field that is cut
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace

int32_t DecodePortControl(const Place& at, Cursor c) {
  if (Left(c) < 2 || PeekU8(c) > 2) return 0;
  return PeekU8(c) == 0 ? DecodeNatPmp(at, c) : DecodePcp(at, c);
}

}  // namespace qxview
