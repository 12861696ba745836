// KNXnet/IP (ISO 22510, EN 13321-2): building control over IP: devices are searched for and described, a tunnel or a group of
// routers carries the bus's telegrams in common external message interface (cEMI) frames.
//
//   header length 6, version 0x10, service (2), total length (2); structures of a length, a type and contents
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 6;

constexpr auto kServiceNames = SortedNames({
    {0x0201, "Search Request"}, {0x0202, "Search Response"}, {0x0203, "Description Request"},
    {0x0204, "Description Response"}, {0x0205, "Connect Request"}, {0x0206, "Connect Response"},
    {0x0207, "Connection State Request"}, {0x0208, "Connection State Response"}, {0x0209, "Disconnect Request"},
    {0x020A, "Disconnect Response"}, {0x020B, "Extended Search Request"}, {0x020C, "Extended Search Response"},
    {0x0310, "Configuration Request"}, {0x0311, "Configuration Acknowledgement"}, {0x0420, "Tunnelling Request"},
    {0x0421, "Tunnelling Acknowledgement"}, {0x0422, "Tunnelling Feature Get"}, {0x0423, "Tunnelling Feature Response"},
    {0x0424, "Tunnelling Feature Set"}, {0x0425, "Tunnelling Feature Info"}, {0x0530, "Routing Indication"},
    {0x0531, "Routing Lost Message"}, {0x0532, "Routing Busy"}, {0x0533, "Routing System Broadcast"},
    {0x0740, "Remote Diagnostic Request"}, {0x0741, "Remote Diagnostic Response"},
    {0x0742, "Remote Basic Configuration Request"}, {0x0743, "Remote Reset Request"}, {0x0950, "Secure Wrapper"},
    {0x0951, "Session Request"}, {0x0952, "Session Response"}, {0x0953, "Session Authenticate"},
    {0x0954, "Session Status"}, {0x0955, "Timer Notify"}});
constexpr auto kHostNames = SortedNames({{1, "IPv4 UDP"}, {2, "IPv4 TCP"}});
constexpr auto kConnectionNames = SortedNames({
    {0x03, "Device Management"}, {0x04, "Tunnel"}, {0x06, "Remote Logging"}, {0x07, "Remote Configuration"},
    {0x08, "Object Server"}});
constexpr auto kLayerNames = SortedNames({{0x02, "Link Layer"}, {0x04, "Raw"}, {0x80, "Bus Monitor"}});
constexpr auto kStatusNames = SortedNames({
    {0x00, "No Error"}, {0x01, "Host Protocol Type Not Supported"}, {0x02, "Version Not Supported"},
    {0x04, "Sequence Number Out of Order"}, {0x21, "Connection ID Unknown"}, {0x22, "Connection Type Not Supported"},
    {0x23, "Connection Option Not Supported"}, {0x24, "No More Connections"}, {0x26, "Data Connection Error"},
    {0x27, "KNX Connection Error"}, {0x29, "Tunnelling Layer Not Supported"}});
constexpr auto kBlockNames = SortedNames({
    {0x01, "Device Information"}, {0x02, "Supported Service Families"}, {0x03, "IP Configuration"},
    {0x04, "Current IP Configuration"}, {0x05, "KNX Addresses"}, {0x06, "Secured Service Families"},
    {0x07, "Tunnelling Information"}, {0x08, "Extended Device Information"}, {0xFE, "Manufacturer Data"}});
constexpr auto kMediumNames = SortedNames({
    {0x01, "Reserved"}, {0x02, "Twisted Pair 1"}, {0x04, "Power Line 110"}, {0x10, "Radio Frequency"}, {0x20, "IP"}});
constexpr auto kFamilyNames = SortedNames({
    {0x02, "Core"}, {0x03, "Device Management"}, {0x04, "Tunnelling"}, {0x05, "Routing"}, {0x06, "Remote Logging"},
    {0x07, "Remote Configuration and Diagnosis"}, {0x08, "Object Server"}, {0x09, "Security"}});
constexpr auto kMessageNames = SortedNames({
    {0x10, "L_Raw.req"}, {0x11, "L_Data.req"}, {0x13, "L_Poll_Data.req"}, {0x25, "L_Poll_Data.con"}, {0x29, "L_Data.ind"},
    {0x2B, "L_Busmon.ind"}, {0x2D, "L_Raw.ind"}, {0x2E, "L_Data.con"}, {0x2F, "L_Raw.con"}, {0xF0, "M_Reset.ind"},
    {0xF1, "M_Reset.req"}, {0xF5, "M_PropWrite.con"}, {0xF6, "M_PropWrite.req"}, {0xF7, "M_PropInfo.ind"},
    {0xFB, "M_PropRead.con"}, {0xFC, "M_PropRead.req"}});
constexpr auto kFrameNames = SortedNames({{0, "Extended"}, {1, "Standard"}});
constexpr auto kPriorityNames = SortedNames({{0, "System"}, {1, "Normal"}, {2, "Urgent"}, {3, "Low"}});
constexpr auto kAddressTypeNames = SortedNames({{0, "Individual"}, {1, "Group"}});
constexpr auto kPacketNames = SortedNames({
    {0, "Unnumbered Data"}, {1, "Numbered Data"}, {2, "Unnumbered Control"}, {3, "Numbered Control"}});
constexpr auto kApplicationNames = SortedNames({
    {0, "GroupValueRead"}, {1, "GroupValueResponse"}, {2, "GroupValueWrite"}, {3, "IndividualAddressWrite"},
    {4, "IndividualAddressRead"}, {5, "IndividualAddressResponse"}, {6, "AdcRead"}, {7, "AdcResponse"}, {8, "MemoryRead"},
    {9, "MemoryResponse"}, {10, "MemoryWrite"}, {11, "UserMessage"}, {12, "DeviceDescriptorRead"},
    {13, "DeviceDescriptorResponse"}, {14, "Restart"}, {15, "Escape"}});

struct Knx {
  Field length, type, size, kind, isGroup, info;
};

void ShowIndividual(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %u.%u.%u", label, field.bytes[0] >> 4, field.bytes[0] & 15, field.bytes[1]);
}
void ShowGroup(const Place& in, const Field& field, const char* label) {
  AddLine(in, field, "%s: %u/%u/%u", label, field.bytes[0] >> 3, field.bytes[0] & 7, field.bytes[1]);
}

constexpr auto kHeader = Rows<Knx>({
    Number(1, "Header Length"), Hex(1, "Protocol Version"), Hex(2, "Service Type", kServiceNames).Into(&Knx::type),
    Number(2, "Total Length").Into(&Knx::length)});
constexpr auto kEndpoint = Rows<Knx>({
    Number(1, "Structure Length"), Number(1, "Host Protocol", kHostNames), IPv4("IP Address").Note(" %s"),
    Number(2, "Port").Note(":%u")});
constexpr auto kBlockHead = Rows<Knx>({
    Number(1, "Structure Length").Into(&Knx::size), Hex(1, "Description Type", kBlockNames).Into(&Knx::kind)});
constexpr auto kDevice = Rows<Knx>({
    Hex(1, "KNX Medium", kMediumNames), Word(1), Bits(0, 7, "Reserved"), Flag(7, "Programming Mode"),
    Shown(2, "Individual Address", ShowIndividual), Hex(2, "Project Installation ID"), Bytes(6, "Serial Number"),
    IPv4("Routing Multicast Address"), Mac("MAC Address"), Text(30, "Friendly Name").Note(", %s")});
constexpr auto kFamily = Rows<Knx>({
    Hex(1, "Service Family", kFamilyNames), Number(1, "Version")});
constexpr auto kIpConfig = Rows<Knx>({
    IPv4("IP Address"), IPv4("Subnet Mask"), IPv4("Default Gateway"), Hex(1, "IP Capabilities"),
    Hex(1, "IP Assignment Method")});
constexpr auto kCurrentConfig = Rows<Knx>({
    IPv4("IP Address"), IPv4("Subnet Mask"), IPv4("Default Gateway"), IPv4("DHCP Server"), Hex(1, "IP Assignment Method"),
    Bytes(1, "Reserved")});
constexpr auto kAddress = Rows<Knx>({Shown(2, "Individual Address", ShowIndividual)});
constexpr auto kMaker = Rows<Knx>({Hex(2, "Manufacturer ID"), Bytes(0, "Manufacturer Data")});

void ShowEndpoint(const Place& at, Cursor& c, const char* title) {
  const int32_t size = static_cast<int32_t>(PeekU8(c));
  if (size < 8 || Left(c) < 8) return;
  Cursor own = TakeCursor(c, size);
  const Place in = Under(at, AddLine(at, Ahead(own, Left(own)), "%s:", title));
  ShowRows(in, own, kEndpoint);
  AddBlock(in, Rest(own), "Data");
}

void ShowBlockValue(const Place& in, Cursor& c, uint32_t kind, Knx& knx) {
  Loop loop;
  switch (kind) {
    case 0x01: ShowRows<Knx>(in, c, kDevice, knx); break;
    case 0x02:
    case 0x06:
      while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Knx>(in, c, kFamily, knx);
      break;
    case 0x03: ShowRows<Knx>(in, c, kIpConfig, knx); break;
    case 0x04: ShowRows<Knx>(in, c, kCurrentConfig, knx); break;
    case 0x05:
      while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Knx>(in, c, kAddress, knx);
      break;
    case 0xFE: ShowRows<Knx>(in, c, kMaker, knx); break;
    default: break;
  }
  AddBlock(in, Rest(c), "Data");
}

void ShowDescriptions(const Place& at, Cursor& c, Knx& knx) {
  Loop loop;
  while (Left(c) >= 2 && PeekU8(c) >= 2 && MoreAt(at, c, loop)) {
    Cursor own = TakeCursor(c, PeekU8(c));
    const Place in = Under(at, AddLine(at, Ahead(own, Left(own)), "Description: %s", LookupName(kBlockNames, PeekU8(own, 1))));
    ShowRows<Knx>(in, own, kBlockHead, knx);
    ShowBlockValue(in, own, knx.kind.value, knx);
  }
}

constexpr auto kCemi = Rows<Knx>({
    Hex(1, "Message Code", kMessageNames).Note(" %s").Into(&Knx::kind),
    Number(1, "Additional Information Length").Into(&Knx::info)});
constexpr auto kMoreInfo = Rows<Knx>({Bytes(0, "Additional Information").SizedBy(&Knx::info)});
constexpr auto kLinkHeader = Rows<Knx>({
    Word(1), Bits(0, 1, "Frame Type", kFrameNames), Bits(1, 1, "Reserved"), Bits(2, 1, "Do Not Repeat"),
    Bits(3, 1, "Broadcast"), Bits(4, 2, "Priority", kPriorityNames), Flag(6, "Acknowledge Request"), Flag(7, "Error"),
    Word(1), Bits(0, 1, "Destination Address Type", kAddressTypeNames).Into(&Knx::isGroup), Bits(1, 3, "Hop Count"),
    Bits(4, 4, "Extended Frame Format"), Shown(2, "Source Address", ShowIndividual)});
constexpr auto kToGroup = Rows<Knx>({Shown(2, "Destination Address", ShowGroup), Number(1, "Data Length")});
constexpr auto kToDevice = Rows<Knx>({Shown(2, "Destination Address", ShowIndividual), Number(1, "Data Length")});
constexpr auto kTransport = Rows<Knx>({
    Word(2), Bits(0, 2, "Packet Type", kPacketNames), Bits(2, 4, "Sequence Number"),
    Bits(6, 4, "Application Service", kApplicationNames).Note(", %s"), Bits(10, 6, "Short Data")});
constexpr auto kTransportControl = Rows<Knx>({
    Word(1), Bits(0, 2, "Packet Type", kPacketNames), Bits(2, 4, "Sequence Number"), Bits(6, 2, "Control")});

void ShowCemi(const Place& at, Cursor& c, Knx& knx) {
  constexpr uint32_t kFirstManagement = 0xF0;
  if (Left(c) < 2) return;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "cEMI:"));
  ShowRows<Knx>(in, c, kCemi, knx);
  if (knx.info.value > 0) ShowRows<Knx>(in, c, kMoreInfo, knx);
  const uint32_t code = knx.kind.value;
  if (code >= kFirstManagement || code == 0x2B || Left(c) < 7) {
    AddBlock(in, Rest(c), "Message Data");
    return;
  }
  ShowRows<Knx>(in, c, kLinkHeader, knx);
  ShowRows<Knx>(in, c, knx.isGroup.value ? RowSpan<Knx>(kToGroup) : RowSpan<Knx>(kToDevice), knx);
  const bool isControl = PeekU8(c) & 0x80;
  ShowRows<Knx>(in, c, isControl ? RowSpan<Knx>(kTransportControl) : RowSpan<Knx>(kTransport), knx);
  AddBlock(in, Rest(c), "Application Data");
}

constexpr auto kConnectionInfo = Rows<Knx>({
    Number(1, "Structure Length").Into(&Knx::size), Hex(1, "Connection Type", kConnectionNames).Note(" %s").Into(&Knx::kind)});
constexpr auto kTunnelLayer = Rows<Knx>({Hex(1, "KNX Layer", kLayerNames), Bytes(1, "Reserved")});
constexpr auto kChannelStatus = Rows<Knx>({
    Number(1, "Communication Channel ID"), Hex(1, "Status", kStatusNames)});
constexpr auto kChannel = Rows<Knx>({Number(1, "Communication Channel ID"), Bytes(1, "Reserved")});
constexpr auto kSequence = Rows<Knx>({
    Number(1, "Structure Length"), Number(1, "Communication Channel ID"), Number(1, "Sequence Counter"),
    Hex(1, "Status", kStatusNames)});
constexpr auto kLost = Rows<Knx>({
    Number(1, "Structure Length"), Hex(1, "Device State"), Number(2, "Lost Messages")});
constexpr auto kBusy = Rows<Knx>({
    Number(1, "Structure Length"), Hex(1, "Device State"), Number(2, "Wait Time", " milliseconds"), Hex(2, "Control")});

// What a connection is for (of a request), or what came of it (of a response).
void ShowConnection(const Place& at, Cursor& c, Knx& knx, bool isRequest) {
  if (Left(c) < 2 || PeekU8(c) < 2) return;
  Cursor own = TakeCursor(c, PeekU8(c));
  const Place in = Under(at, AddLine(at, Ahead(own, Left(own)), "%s:",
                                       isRequest ? "Connection Request Information" : "Connection Response Data"));
  ShowRows<Knx>(in, own, kConnectionInfo, knx);
  if (knx.kind.value == 0x04 && Left(own) >= 2) {
    ShowRows<Knx>(in, own, isRequest ? RowSpan<Knx>(kTunnelLayer) : RowSpan<Knx>(kAddress), knx);
  }
  AddBlock(in, Rest(own), "Data");
}

void ShowService(const Place& in, Cursor& c, uint32_t service, Knx& knx) {
  switch (service) {
    case 0x0201: return ShowEndpoint(in, c, "Discovery Endpoint");
    case 0x0202:
    case 0x020C: ShowEndpoint(in, c, "Control Endpoint"); [[fallthrough]];
    case 0x0204: return ShowDescriptions(in, c, knx);
    case 0x0203: return ShowEndpoint(in, c, "Control Endpoint");
    case 0x0205:
      ShowEndpoint(in, c, "Control Endpoint");
      ShowEndpoint(in, c, "Data Endpoint");
      return ShowConnection(in, c, knx, true);
    case 0x0206:
      ShowRows<Knx>(in, c, kChannelStatus, knx);
      ShowEndpoint(in, c, "Data Endpoint");
      return ShowConnection(in, c, knx, false);
    case 0x0207:
    case 0x0209:
      ShowRows<Knx>(in, c, kChannel, knx);
      return ShowEndpoint(in, c, "Control Endpoint");
    case 0x0208:
    case 0x020A: return ShowRows<Knx>(in, c, kChannelStatus, knx);
    case 0x020B: return ShowEndpoint(in, c, "Discovery Endpoint");
    case 0x0310:
    case 0x0420:
      ShowRows<Knx>(in, c, kSequence, knx);
      return ShowCemi(in, c, knx);
    case 0x0311:
    case 0x0421: return ShowRows<Knx>(in, c, kSequence, knx);
    case 0x0530: return ShowCemi(in, c, knx);
    case 0x0531: return ShowRows<Knx>(in, c, kLost, knx);
    case 0x0532: return ShowRows<Knx>(in, c, kBusy, knx);
    default: return;
  }
}

}  // namespace

int32_t DecodeKnxNetIp(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize || PeekU8(c) != kHeaderSize || PeekU8(c, 1) != 0x10) return 0;
  int32_t shown = 0;
  Loop loop;
  while (PeekU16(c) == 0x0610 && MoreAt(at, c, loop)) {
    const Knx ahead = PeekRows(c, kHeader);
    const int32_t length = static_cast<int32_t>(ahead.length.value);
    Cursor own = TakeCursor(c, length < kHeaderSize ? Left(c) : length);
    const Place in = Under(at, AddLine(at, Ahead(own, Left(own)), "KNXnet/IP: %s", LookupName(kServiceNames, ahead.type.value)));
    Knx knx = ShowRows(in, own, kHeader);
    ShowService(in, own, ahead.type.value, knx);
    AddBlock(in, Rest(own), "Data");
    ++shown;
  }
  AddRawRest(at, c, "KNXnet/IP Data");
  return shown > 0;
}

}  // namespace qxview
