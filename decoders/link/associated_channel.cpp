// Associated channels of MPLS (RFC 5586; pseudowires: RFC 5085): continuity checks and verification (RFC 6428), coordination of
// protection (RFC 6378, 7271), faults (RFC 6427), locks (RFC 6435), residence times (RFC 8169), static pseudowires (RFC 6478,
// 7769), advertisements (RFC 7212), management and signalling channels (RFC 5718).
//
//   1 (4 bits)   version (4)   reserved (8)   channel type (16)   the message
#include "decoders/link/associated_channel.h"

#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/link/carried.h"
#include "decoders/link/medium.h"
#include "decoders/routing/prefix.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 4;
constexpr uint32_t kManagement = 0x0001, kSignaling = 0x0002, kBfd = 0x0007, kDirectLoss = 0x000A, kLastMeasured = 0x000E;
constexpr uint32_t kResidence = 0x000F, kIpv4 = 0x0021, kContinuity = 0x0022, kVerification = 0x0023, kProtection = 0x0024;
constexpr uint32_t kOnDemand = 0x0025, kLock = 0x0026, kPseudowire = 0x0027, kWithdraw = 0x0028, kIpv6 = 0x0057;
constexpr uint32_t kFault = 0x0058, kAdvertisement = 0x0059, kOam = 0x8902;

constexpr auto kChannelNames = SortedNames({
    {0x0000, "Reserved"}, {kManagement, "Management Communication Channel (MCC)"},
    {kSignaling, "Signaling Communication Channel (SCC)"}, {kBfd, "BFD Control, without IP and UDP"},
    {kDirectLoss, "MPLS Direct Loss Measurement"}, {0x000B, "MPLS Inferred Loss Measurement"},
    {0x000C, "MPLS Delay Measurement"}, {0x000D, "MPLS Direct Loss and Delay Measurement"},
    {kLastMeasured, "MPLS Inferred Loss and Delay Measurement"}, {kResidence, "Residence Time Measurement"},
    {kIpv4, "IPv4"}, {kContinuity, "MPLS-TP Continuity Check"}, {kVerification, "MPLS-TP Connectivity Verification"},
    {kProtection, "Protection State Coordination"}, {kOnDemand, "On-Demand Connectivity Verification"},
    {kLock, "Lock Instruct"}, {kPseudowire, "Pseudowire OAM"}, {kWithdraw, "MAC Withdraw OAM"}, {kIpv6, "IPv6"},
    {kFault, "Fault OAM"}, {kAdvertisement, "G-ACh Advertisement"}, {0x7FF8, "Experimental"},
    {0x7FF9, "Experimental"}, {0x7FFA, "Experimental"}, {0x7FFB, "Experimental"}, {0x7FFC, "Experimental"},
    {0x7FFD, "Experimental"}, {0x7FFE, "Experimental"}, {0x7FFF, "Experimental"}, {kOam, "MPLS-TP OAM"}});

constexpr auto kChannel = Rows<NoValues>({
    Word(2), Bits(0, 4, "Channel Indication"), Bits(4, 4, "Version"), Bits(8, 8, "Reserved"),
    Hex(2, "Channel Type", kChannelNames)});

struct Channel {
  Field length, type, size;
};

// Who a maintenance end point is (RFC 6428 3.5).
constexpr auto kSectionPoint = Rows<Channel>({
    Number(4, "Global ID"), IPv4("Node ID").Note(", %s"), Number(4, "Interface Number")});
constexpr auto kPathPoint = Rows<Channel>({
    Number(4, "Global ID"), IPv4("Node ID").Note(", %s"), Number(2, "Tunnel Number"), Number(2, "LSP Number")});
constexpr auto kPseudowirePoint = Rows<Channel>({
    Number(4, "Global ID"), IPv4("Node ID").Note(", %s"), Number(4, "Attachment Circuit ID"),
    Number(1, "Attachment Group Type"), Counted(1, Bytes(0, "Attachment Group"))});
constexpr auto kPoints = Choices<Channel>({
    {0, "Section", kSectionPoint}, {1, "LSP", kPathPoint}, {2, "Pseudowire", kPseudowirePoint}});
constexpr ElementForm kWideForm{.typeSize = 2, .lengthSize = 2};

void ShowPoints(const Place& in, Cursor& c, Channel& channel) {
  ShowElements<Channel>(in, c, kWideForm, "MEP Source ID", kPoints, channel);
}

constexpr auto kRequestNames = SortedNames({
    {0, "No Request"}, {1, "Do Not Revert"}, {2, "Reverse Request"}, {3, "Exercise"}, {4, "Wait-to-Restore"},
    {5, "Manual Switch"}, {6, "Manual Switch-over for Recovery"}, {7, "Signal Degrade"}, {10, "Signal Fail"},
    {12, "Forced Switch"}, {14, "Lockout of Protection"}});
constexpr auto kSwitchingNames = SortedNames({
    {1, "Unidirectional, Permanent Bridge"}, {2, "Bidirectional, Selector Bridge"},
    {3, "Bidirectional, Permanent Bridge"}});
constexpr auto kRevertiveNames = SortedNames({{0, "Non-Revertive"}, {1, "Revertive"}});
constexpr auto kFaultPathNames = SortedNames({{0, "Protection"}, {1, "Working"}});
constexpr auto kDataPathNames = SortedNames({{0, "Protection Path Not in Use"}, {1, "Protection Path in Use"}});
constexpr auto kState = Rows<Channel>({
    Word(2), Bits(0, 2, "Version"), Bits(2, 4, "Request", kRequestNames), Bits(6, 2, "Protection Type", kSwitchingNames),
    Flag(8, "Revertive", kRevertiveNames), Bits(9, 7, "Reserved"), Number(1, "Fault Path", kFaultPathNames),
    Number(1, "Data Path", kDataPathNames), Number(2, "TLV Length").Into(&Channel::length), Number(2, "Reserved")});
constexpr auto kCapabilityMasks = SortedNames({
    {0x08000000, "Exercise"}, {0x10000000, "Protection Against Signal Degrade"},
    {0x20000000, "Manual Switch to Working"}, {0x40000000, "Non-Revertive Behavior Modification"},
    {0x80000000, "Priority Modification"}});
constexpr auto kCapabilities = Rows<Channel>({Flags(4, "Capability Flags", kCapabilityMasks)});
constexpr auto kStateTlvs = Choices<Channel>({{1, "Capabilities", kCapabilities}});
void ShowState(const Place& in, Cursor& c, Channel& channel) {
  ShowRows<Channel>(in, c, kState, channel);
  Cursor tlvs = TakeCursor(c, channel.length.value);
  ShowElements<Channel>(in, tlvs, kWideForm, "TLV", kStateTlvs, channel);
}

constexpr auto kFaultNames = SortedNames({{1, "Alarm Indication Signal"}, {2, "Lock Report"}});
constexpr auto kFaultMessage = Rows<Channel>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Reserved"), Number(1, "Message Type", kFaultNames).Note(", %s"),
    Word(1), Bits(0, 6, "Reserved"), Flag(6, "Link Down"), Flag(7, "Removed").Into(&Channel::type),
    Number(1, "Refresh Timer", " seconds"), Number(1, "Total TLV Length").Into(&Channel::length)});
constexpr auto kInterface = Rows<Channel>({IPv4("Node ID").Note(", %s"), Number(4, "Interface Number")});
constexpr auto kGlobal = Rows<Channel>({Number(4, "Global ID")});
constexpr auto kFaultTlvs = Choices<Channel>({{1, "Interface Identifier", kInterface}, {2, "Global Identifier", kGlobal}});
void ShowFault(const Place& in, Cursor& c, Channel& channel) {
  ShowRows<Channel>(in, c, kFaultMessage, channel);
  Cursor tlvs = TakeCursor(c, channel.length.value);
  constexpr ElementForm kForm{};
  ShowElements<Channel>(in, tlvs, kForm, "TLV", kFaultTlvs, channel);
}

constexpr auto kLockMessage = Rows<Channel>({
    Word(3), Bits(0, 4, "Version"), Bits(4, 20, "Reserved"), Number(1, "Refresh Timer", " seconds")});

// Static pseudowires use the TLVs of label distribution (RFC 5036) without its messages.
constexpr auto kPseudowireHead = Rows<Channel>({
    Number(2, "Refresh Timer", " seconds"), Number(1, "TLV Length").Into(&Channel::length),
    Word(1), Flag(0, "Acknowledgement"), Bits(1, 7, "Flags")});
constexpr auto kWithdrawHead = Rows<Channel>({
    Number(2, "Reserved"), Number(1, "TLV Length").Into(&Channel::length),
    Word(1), Flag(0, "Acknowledgement"), Flag(1, "Reset"), Bits(2, 6, "Flags")});
constexpr auto kSequence = Rows<Channel>({Number(4, "Sequence Number")});
constexpr auto kStatusMasks = SortedNames({
    {0x01, "Pseudowire Not Forwarding"}, {0x02, "Local Attachment Circuit Receive Fault"},
    {0x04, "Local Attachment Circuit Transmit Fault"}, {0x08, "Local PSN-Facing Receive Fault"},
    {0x10, "Local PSN-Facing Transmit Fault"}, {0x20, "Standby Forwarding"}, {0x40, "Switchover Request"}});
constexpr auto kStatus = Rows<Channel>({Flags(4, "Pseudowire Status", kStatusMasks)});
constexpr auto kMacRow = Rows<Channel>({Mac("MAC Address").Note(", %s")});
void ShowMacs(const Place& in, Cursor& c, Channel& channel) {
  constexpr int32_t kMacSize = 6;
  Loop loop;
  while (Left(c) >= kMacSize && MoreAt(in, c, loop)) ShowRows<Channel>(in, c, kMacRow, channel);
}
constexpr auto kPseudowireTlvs = Choices<Channel>({
    {0x0001, "Sequence Number", kSequence}, {0x0404, "MAC List", {}, ShowMacs}, {0x096A, "Pseudowire Status", kStatus}});
const char* PseudowireTlvName(uint32_t type) {
  const Choice<Channel>* choice = FindChoice<Channel>(kPseudowireTlvs, type);
  return choice ? choice->name : kUnknown;
}
constexpr auto kPseudowireTlv = Rows<Channel>({
    Word(2), Flag(0, "Unknown TLV Is Ignored"), Flag(1, "Unknown TLV Is Forwarded"),
    Bits(2, 14, "TLV Type", PseudowireTlvName), Number(2, "TLV Length")});
void ShowPseudowireTlvs(const Place& in, Cursor& c, Channel& channel) {
  constexpr uint32_t kTypeMask = 0x3FFF;
  Cursor tlvs = TakeCursor(c, channel.length.value);
  Loop loop;
  while (Left(tlvs) >= kHeaderSize && MoreAt(in, tlvs, loop)) {
    Cursor tlv = TakeCursor(tlvs, int64_t{PeekU16(tlvs, 2)} + kHeaderSize);
    const uint32_t type = PeekU16(tlv) & kTypeMask;
    const Place under = Under(in, AddLine(in, Ahead(tlv, Left(tlv)), "TLV: %s", PseudowireTlvName(type)));
    ShowRows<Channel>(under, tlv, kPseudowireTlv, channel);
    ShowChoice<Channel>(under, tlv, FindChoice<Channel>(kPseudowireTlvs, type), channel);
  }
}

constexpr auto kAdvertisementHead = Rows<Channel>({
    Word(2), Bits(0, 4, "Version"), Bits(4, 12, "Reserved"), Number(2, "Message Length"),
    Number(4, "Message Identifier").Note(", Message %u"), NtpTime("Timestamp")});
constexpr auto kApplicationNames = SortedNames({{0, "G-ACh Advertisement Protocol"}});
constexpr auto kBlock = Rows<Channel>({
    Number(2, "Application ID", kApplicationNames).Into(&Channel::type), Number(2, "Element Length"),
    Number(2, "Lifetime", " seconds"), Number(2, "Reserved")});
constexpr auto kAddress = Rows<Channel>({
    Number(2, "Reserved"), Number(2, "Address Family", AddressFamilyName).Into(&Channel::type)});
void ShowSource(const Place& in, Cursor& c, Channel& channel) {
  ShowFamilyAddress(in, c, "Source Address", channel.type.value);
}
constexpr auto kAsked = Rows<Channel>({Number(2, "Application ID", kApplicationNames)});
void ShowAsked(const Place& in, Cursor& c, Channel& channel) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Channel>(in, c, kAsked, channel);
}
constexpr auto kSuppress = Rows<Channel>({Number(2, "Duration", " seconds")});
constexpr auto kAuthentication = Rows<Channel>({
    Number(2, "Reserved"), Number(2, "Key ID"), Bytes(0, "Authentication Data")});
constexpr auto kBlockTlvs = Choices<Channel>({
    {0, "Source Address", kAddress, ShowSource}, {1, "Request", {}, ShowAsked}, {2, "Flush"},
    {3, "Suppress", kSuppress, ShowAsked}, {4, "Authentication", kAuthentication}});
constexpr auto kTlvHead = Rows<Channel>({
    Number(1, "TLV Type"), Number(1, "Reserved"), Number(2, "TLV Length")});

// The types of the protocol's own block; those of an application are its own.
void ShowBlock(const Place& in, Cursor& c, Channel& channel) {
  ShowRows<Channel>(in, c, kBlock, channel);
  const bool isOwn = channel.type.value == 0;
  Loop loop;
  while (Left(c) >= kHeaderSize && MoreAt(in, c, loop)) {
    Cursor tlv = TakeCursor(c, int64_t{PeekU16(c, 2)} + kHeaderSize);
    const Choice<Channel>* choice = isOwn ? FindChoice<Channel>(kBlockTlvs, PeekU8(tlv)) : nullptr;
    const Place under = Under(in, AddLine(in, Ahead(tlv, Left(tlv)), "TLV: %s", choice ? choice->name : kUnknown));
    ShowRows<Channel>(under, tlv, kTlvHead, channel);
    ShowChoice<Channel>(under, tlv, choice, channel);
  }
}
void ShowAdvertisement(const Place& in, Cursor& c, Channel& channel) {
  ShowRows<Channel>(in, c, kAdvertisementHead, channel);
  Loop loop;
  while (Left(c) >= kHeaderSize && MoreAt(in, c, loop)) {
    const int32_t size = static_cast<int32_t>(PeekU16(c, 2));
    Cursor block = TakeCursor(c, size < 2 * kHeaderSize ? 2 * kHeaderSize : size);
    const Place under = Under(in, AddLine(in, Ahead(block, Left(block)), "Application Data Block: %s",
                                          LookupName(kApplicationNames, PeekU16(block))));
    ShowBlock(under, block, channel);
    AddBlock(under, Rest(block), "Data");
  }
}

constexpr auto kResidenceNames = SortedNames({
    {1, "No Payload"}, {2, "PTP over Ethernet"}, {3, "PTP over IPv4"}, {4, "PTP over IPv6"}, {5, "NTP"}});
constexpr auto kResidenceMessage = Rows<Channel>({
    Number(8, "Scratch Pad"), Number(2, "Timing Packet Type", kResidenceNames).Note(", %s"),
    Number(2, "Timing Packet Length").Into(&Channel::length), Number(2, "Sub-TLV Type"), Number(2, "Sub-TLV Length"),
    Word(4), Flag(0, "Two-Step"), Bits(1, 27, "Flags"), Bits(28, 4, "PTP Message Type"), Bytes(10, "PTP Port ID"),
    Number(2, "PTP Sequence ID")});

constexpr auto kChannels = Choices<Channel>({
    {kResidence, "Residence Time Measurement", kResidenceMessage},
    {kProtection, "Protection State Coordination", {}, ShowState}, {kLock, "Lock Instruct", kLockMessage, ShowPoints},
    {kPseudowire, "Pseudowire OAM", kPseudowireHead, ShowPseudowireTlvs},
    {kWithdraw, "MAC Withdraw", kWithdrawHead, ShowPseudowireTlvs}, {kFault, "Fault OAM", {}, ShowFault},
    {kAdvertisement, "G-ACh Advertisement", {}, ShowAdvertisement}});

// Protocols that run over UDP elsewhere are found by their port.
int32_t DecodeOfPort(const Place& carried, const Cursor& c, uint32_t port, const char* title) {
  const DecoderRowSpan ports = RegistryTable(DoorKind::kUdpPort);
  for (int32_t i = 0; i < ports.count; ++i) {
    if (ports.rows[i].key == port) return CallDecoder(carried, c, ports.rows[i].decode, title);
  }
  return CallDecoder(carried, c, nullptr, title);
}

// Continuity checks are plain; behind those of verification stands whose they are.
int32_t DecodeVerification(const Place& in, const Place& carried, Cursor c) {
  constexpr uint32_t kBfdPort = 3784;
  const KeyedAs keys(PacketOf(in), "gach");
  Cursor control = TakeCursor(c, PeekU8(c, 3));
  DecodeOfPort(carried, control, kBfdPort, "BFD Data");
  Channel channel{};
  ShowPoints(in, c, channel);
  AddRawRest(carried, c, "BFD Data");
  return 1;
}

// False for a type whose message another decoder shows.
bool DecodeMessage(const Place& at, Cursor c, uint32_t type) {
  const KeyedAs keys(PacketOf(at), "gach");
  const Choice<Channel>* choice = FindChoice<Channel>(kChannels, type);
  if (!choice) return false;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Channel Message: %s", choice->name));
  Channel channel{};
  ShowChoice<Channel>(in, c, choice, channel);
  return true;
}

}  // namespace

const char* AssociatedChannelName(uint32_t type) { return LookupName(kChannelNames, type, nullptr); }

int32_t DecodeAssociatedChannel(const Place& network, Cursor c) {
  constexpr uint32_t kBfdPort = 3784, kLspPingPort = 3503;
  const uint32_t type = PeekU16(c, 2);
  const Place in = Under(network, AddLine(network, Ahead(c, kHeaderSize), "Associated Channel: %s",
                                          LookupName(kChannelNames, type)));
  ShowRows(in, c, kChannel);
  const Place carried = Deeper(network);
  if (DecodeMessage(carried, c, type)) return 1;
  if (type >= kDirectLoss && type <= kLastMeasured) {
    if (DecodePathMeasurement(carried, c, type)) return 1;
    return CallDecoder(carried, c, nullptr, "Measurement Data");
  }
  switch (type) {
    case kIpv4:
    case kIpv6: return DecodeCarriedFrame(carried, c, Carried::kIp);
    case kManagement:
    case kSignaling: return DecodeCarriedFrame(carried, c, Carried::kPpp);
    case kBfd:
    case kContinuity: return DecodeOfPort(carried, c, kBfdPort, "BFD Data");
    case kVerification: return DecodeVerification(in, carried, c);
    case kOnDemand: return DecodeOfPort(carried, c, kLspPingPort, "LSP Ping Data");
    case kOam: return DecodeCarriedPacket(carried, c, kOam);
    default: return DecodeCarriedFrame(carried, c, Carried::kUnknown, "Channel Data");
  }
}

}  // namespace qxview
