// Networks of several media in a home (IEEE 1905.1-2013 and 1905.1a-2014): which devices are there, over which links, how
// good are those? The elements that the Wi-Fi Alliance added for access points of several makers (Multi-AP) stand in files
// of their own.
//
//   version   reserved   message type (2)   message ID (2)   fragment   flags   elements: type (1), length (2), value
#include "core/elements.h"
#include "decoders/common/eap.h"
#include "decoders/link/ieee1905.h"

namespace qxview {
namespace {

using Home = HomeNetwork;

constexpr auto kMessageNames = SortedNames({
    {0x0000, "Topology Discovery"}, {0x0001, "Topology Notification"}, {0x0002, "Topology Query"},
    {0x0003, "Topology Response"}, {0x0004, "Vendor Specific"}, {0x0005, "Link Metric Query"},
    {0x0006, "Link Metric Response"}, {0x0007, "AP-Autoconfiguration Search"}, {0x0008, "AP-Autoconfiguration Response"},
    {0x0009, "AP-Autoconfiguration WSC"}, {0x000A, "AP-Autoconfiguration Renew"}, {0x000B, "Push Button Event Notification"},
    {0x000C, "Push Button Join Notification"}, {0x000D, "Higher Layer Query"}, {0x000E, "Higher Layer Response"},
    {0x000F, "Interface Power Change Request"}, {0x0010, "Interface Power Change Response"}, {0x0011, "Generic PHY Query"},
    {0x0012, "Generic PHY Response"}, {0x8000, "1905 Acknowledgement"}, {0x8001, "AP Capability Query"},
    {0x8002, "AP Capability Report"}, {0x8003, "Multi-AP Policy Configuration Request"}, {0x8004, "Channel Preference Query"},
    {0x8005, "Channel Preference Report"}, {0x8006, "Channel Selection Request"}, {0x8007, "Channel Selection Response"},
    {0x8008, "Operating Channel Report"}, {0x8009, "Client Capability Query"}, {0x800A, "Client Capability Report"},
    {0x800B, "AP Metrics Query"}, {0x800C, "AP Metrics Response"}, {0x800D, "Associated STA Link Metrics Query"},
    {0x800E, "Associated STA Link Metrics Response"}, {0x800F, "Unassociated STA Link Metrics Query"},
    {0x8010, "Unassociated STA Link Metrics Response"}, {0x8011, "Beacon Metrics Query"}, {0x8012, "Beacon Metrics Response"},
    {0x8013, "Combined Infrastructure Metrics"}, {0x8014, "Client Steering Request"}, {0x8015, "Client Steering BTM Report"},
    {0x8016, "Client Association Control Request"}, {0x8017, "Steering Completed"}, {0x8018, "Higher Layer Data"},
    {0x8019, "Backhaul Steering Request"}, {0x801A, "Backhaul Steering Response"}, {0x801B, "Channel Scan Request"},
    {0x801C, "Channel Scan Report"}, {0x801D, "DPP CCE Indication"}, {0x801E, "1905 Rekey Request"},
    {0x801F, "1905 Decryption Failure"}, {0x8020, "CAC Request"}, {0x8021, "CAC Termination"},
    {0x8022, "Client Disassociation Statistics"}, {0x8023, "Service Prioritization Request"}, {0x8024, "Error Response"},
    {0x8025, "Association Status Notification"}, {0x8026, "Tunneled"}, {0x8027, "Backhaul STA Capability Query"},
    {0x8028, "Backhaul STA Capability Report"}, {0x8029, "Proxied Encapsulated DPP"}, {0x802A, "Direct Encapsulated DPP"},
    {0x802B, "Reconfiguration Trigger"}, {0x802C, "BSS Configuration Request"}, {0x802D, "BSS Configuration Response"},
    {0x802E, "BSS Configuration Result"}, {0x802F, "Chirp Notification"}, {0x8030, "1905 Encapsulated EAPOL"},
    {0x8031, "DPP Bootstrapping URI Notification"}, {0x8032, "Anticipated Channel Preference"}, {0x8033, "Failed Connection"},
    {0x8035, "Agent List"}});
constexpr auto kMediaNames = SortedNames({
    {0x0000, "IEEE 802.3u Fast Ethernet"}, {0x0001, "IEEE 802.3ab Gigabit Ethernet"}, {0x0100, "IEEE 802.11b (2.4 GHz)"},
    {0x0101, "IEEE 802.11g (2.4 GHz)"}, {0x0102, "IEEE 802.11a (5 GHz)"}, {0x0103, "IEEE 802.11n (2.4 GHz)"},
    {0x0104, "IEEE 802.11n (5 GHz)"}, {0x0105, "IEEE 802.11ac (5 GHz)"}, {0x0106, "IEEE 802.11ad (60 GHz)"},
    {0x0107, "IEEE 802.11af"}, {0x0108, "IEEE 802.11ax"}, {0x0200, "IEEE 1901 Wavelet"}, {0x0201, "IEEE 1901 FFT"},
    {0x0300, "MoCA 1.1"}, {0xFFFF, "Generic PHY"}});
constexpr auto kQueryNames = SortedNames({{0, "All Neighbours"}, {1, "One Neighbour"}});
constexpr auto kRequestedNames = SortedNames({{0, "Transmit"}, {1, "Receive"}, {2, "Transmit and Receive"}});
constexpr auto kRoleNames = SortedNames({{0, "Registrar"}});
constexpr auto kBandNames = SortedNames({{0, "2.4 GHz"}, {1, "5 GHz"}, {2, "60 GHz"}});
constexpr auto kResultNames = SortedNames({{0, "Invalid Neighbour"}});
constexpr auto kProfileNames = SortedNames({{0, "1905.1"}, {1, "1905.1a"}});
constexpr auto kPowerNames = SortedNames({{0, "Off"}, {1, "On"}, {2, "Save"}});
constexpr auto kPowerResults = SortedNames({{0, "Completed"}, {1, "No Change"}, {2, "Alternative Change"}});
constexpr auto kIPv4Names = SortedNames({{0, "Unknown"}, {1, "DHCP"}, {2, "Static"}, {3, "Auto-IP"}});
constexpr auto kIPv6Names = SortedNames({{0, "Unknown"}, {1, "DHCP"}, {2, "Static"}, {3, "SLAAC"}});

constexpr auto kHeader = Rows<Home>({
    Number(1, "Message Version"), Hex(1, "Reserved"), Hex(2, "Message Type", kMessageNames).Into(&Home::type),
    Number(2, "Message ID").Note(", Message %u"), Number(1, "Fragment ID"), Word(1), Flag(0, "Last Fragment"),
    Flag(1, "Relay Indicator"), Bits(2, 6, "Reserved")});

constexpr auto kAl = Rows<Home>({Mac("AL MAC Address").Note(", %s")});
constexpr auto kMac = Rows<Home>({Mac("MAC Address").Note(", %s")});
constexpr auto kLocal = Rows<Home>({Mac("Local Interface").Note(", %s")});
constexpr auto kNeighbour = Rows<Home>({Mac("Neighbour MAC Address")});
constexpr auto kHomeNeighbour = Rows<Home>({Mac("Neighbour AL MAC Address"), Word(1), Flag(0, "Bridge Between"),
    Bits(1, 7, "Reserved")});
constexpr auto kInterfaces = Rows<Home>({Mac("AL MAC Address").Note(", %s"),
    Number(1, "Local Interfaces").Into(&Home::count)});
constexpr auto kInterface = Rows<Home>({
    Mac("Local Interface"), Hex(2, "Media Type", kMediaNames), Counted(1, Bytes(0, "Media Specific Information"))});
constexpr auto kTuples = Rows<Home>({Number(1, "Bridging Tuples").Into(&Home::count)});
constexpr auto kTuple = Rows<Home>({Number(1, "MAC Addresses of the Tuple").Into(&Home::inner)});
constexpr auto kBridged = Rows<Home>({Mac("Bridged Interface")});
constexpr auto kQuery = Rows<Home>({Number(1, "Query Type", kQueryNames).Into(&Home::kind)});
constexpr auto kRequested = Rows<Home>({Number(1, "Link Metrics Requested", kRequestedNames)});
constexpr auto kMetrics = Rows<Home>({Mac("Responder AL MAC Address"), Mac("Neighbour AL MAC Address").Note(", %s")});
constexpr auto kTransmit = Rows<Home>({
    Mac("Local Interface"), Mac("Neighbour Interface"), Hex(2, "Media Type", kMediaNames),
    Number(1, "Bridge Between", kFalseTrueNames), Number(4, "Packet Errors"), Number(4, "Transmitted Packets"),
    Number(2, "MAC Throughput Capacity", " Mbit/s"), Number(2, "Link Availability", " percent"),
    Number(2, "PHY Rate", " Mbit/s")});
constexpr auto kReceive = Rows<Home>({
    Mac("Local Interface"), Mac("Neighbour Interface"), Hex(2, "Media Type", kMediaNames), Number(4, "Packet Errors"),
    Number(4, "Received Packets"), Number(1, "RSSI", " dB")});
constexpr auto kVendor = Rows<Home>({Hex(3, "Vendor OUI").Note(", 0x%.06X"), Bytes(0, "Vendor Information")});
constexpr auto kResult = Rows<Home>({Number(1, "Result Code", kResultNames).Note(", %s")});
constexpr auto kRole = Rows<Home>({Number(1, "Role", kRoleNames).Note(", %s")});
constexpr auto kBand = Rows<Home>({Number(1, "Frequency Band", kBandNames).Note(", %s")});
constexpr auto kMedia = Rows<Home>({Number(1, "Media Types").Into(&Home::count)});
constexpr auto kMedium = Rows<Home>({Hex(2, "Media Type", kMediaNames), Counted(1, Bytes(0, "Media Specific Information"))});
constexpr auto kPushed = Rows<Home>({
    Mac("Sender AL MAC Address").Note(", %s"), Number(2, "Push Button Event Message ID"), Mac("Joining Interface"),
    Mac("New Device Interface")});
constexpr auto kPhyInterface = Rows<Home>({
    Mac("Local Interface"), Hex(3, "PHY OUI"), Number(1, "PHY Variant"), Text(32, "PHY Variant Name"),
    Number(1, "Description URL Length").Into(&Home::inner), Number(1, "Media Specific Length").Into(&Home::size),
    Utf8(0, "Description URL").SizedBy(&Home::inner), Bytes(0, "Media Specific Information").SizedBy(&Home::size)});
constexpr auto kIdentity = Rows<Home>({
    Text(64, "Friendly Name").Note(", %s"), Text(64, "Manufacturer Name"), Text(64, "Manufacturer Model")});
constexpr auto kUrl = Rows<Home>({Utf8(0, "Control URL").Note(", %s")});
constexpr auto kEntries = Rows<Home>({Number(1, "Interfaces").Into(&Home::count)});
constexpr auto kAddressedInterface = Rows<Home>({Mac("Local Interface"), Number(1, "IPv4 Addresses").Into(&Home::inner)});
constexpr auto kIPv4Entry = Rows<Home>({Number(1, "IPv4 Address Type", kIPv4Names), IPv4("IPv4 Address"),
    IPv4("DHCP Server")});
constexpr auto kSixInterface = Rows<Home>({
    Mac("Local Interface"), IPv6("Link-Local Address"), Number(1, "IPv6 Addresses").Into(&Home::inner)});
constexpr auto kIPv6Entry = Rows<Home>({Number(1, "IPv6 Address Type", kIPv6Names), IPv6("IPv6 Address"),
    IPv6("Address Origin")});
constexpr auto kPhyEvent = Rows<Home>({Hex(3, "PHY OUI"), Number(1, "PHY Variant"),
    Counted(1, Bytes(0, "Media Specific Information"))});
constexpr auto kProfile = Rows<Home>({Number(1, "1905 Profile", kProfileNames).Note(", %s")});
constexpr auto kPowerOff = Rows<Home>({
    Mac("Local Interface"), Hex(2, "Media Type", kMediaNames), Hex(3, "PHY OUI"), Number(1, "PHY Variant"),
    Counted(1, Bytes(0, "Media Specific Information"))});
constexpr auto kPowerChange = Rows<Home>({Mac("Local Interface"), Number(1, "Requested Power State", kPowerNames)});
constexpr auto kPowerStatus = Rows<Home>({Mac("Local Interface"), Number(1, "Power Change Result", kPowerResults)});
constexpr auto kLayer2Interface = Rows<Home>({Mac("Local Interface"), Number(2, "Neighbour Devices").Into(&Home::inner)});
constexpr auto kLayer2Neighbour = Rows<Home>({Mac("Neighbour MAC Address"), Number(2, "Devices Behind").Into(&Home::size)});
constexpr auto kBehind = Rows<Home>({Mac("Device Behind")});

void ShowAll(const Place& in, Cursor& c, RowSpan<Home> rows, Home& home) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Home>(in, c, rows, home);
}

void ShowInterfaces(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kInterface, home); }
void ShowTuples(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kTuple, kBridged, home); }
void ShowNeighbours(const Place& in, Cursor& c, Home& home) { ShowAll(in, c, kNeighbour, home); }
void ShowHomeNeighbours(const Place& in, Cursor& c, Home& home) { ShowAll(in, c, kHomeNeighbour, home); }
void ShowQuery(const Place& in, Cursor& c, Home& home) {
  if (home.kind.value == 1) ShowRows<Home>(in, c, kNeighbour, home);
  ShowRows<Home>(in, c, kRequested, home);
}
void ShowTransmit(const Place& in, Cursor& c, Home& home) { ShowAll(in, c, kTransmit, home); }
void ShowReceive(const Place& in, Cursor& c, Home& home) { ShowAll(in, c, kReceive, home); }
void ShowSetup(const Place& in, Cursor& c, Home&) { ShowSimpleConfiguration(in, c); }
void ShowMedia(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kMedium, home); }
void ShowPhys(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kPhyInterface, home); }
void ShowFour(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kAddressedInterface, kIPv4Entry, home); }
void ShowSix(const Place& in, Cursor& c, Home& home) { ShowNested(in, c, kSixInterface, kIPv6Entry, home); }
void ShowPhyEvents(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kPhyEvent, home); }
void ShowPowerOff(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kPowerOff, home); }
void ShowPowerChange(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kPowerChange, home); }
void ShowPowerStatus(const Place& in, Cursor& c, Home& home) { ShowCounted(in, c, home.count.value, kPowerStatus, home); }
void ShowLayer2(const Place& in, Cursor& c, Home& home) {
  const uint32_t count = home.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) {
    ShowRows<Home>(in, c, kLayer2Interface, home);
    const uint32_t neighbours = home.inner.value;
    Loop within;
    for (uint32_t n = 0; n < neighbours && MoreAt(in, c, within); ++n) {
      ShowRows<Home>(in, c, kLayer2Neighbour, home);
      ShowCounted(in, c, home.size.value, kBehind, home);
    }
  }
}

constexpr auto kElements = Choices<Home>({
    {0x00, "End of Message"}, {0x01, "AL MAC Address", kAl}, {0x02, "MAC Address", kMac},
    {0x03, "Device Information", kInterfaces, ShowInterfaces}, {0x04, "Device Bridging Capability", kTuples, ShowTuples},
    {0x06, "Non-1905 Neighbour Devices", kLocal, ShowNeighbours},
    {0x07, "1905 Neighbour Devices", kLocal, ShowHomeNeighbours}, {0x08, "Link Metric Query", kQuery, ShowQuery},
    {0x09, "Transmitter Link Metric", kMetrics, ShowTransmit}, {0x0A, "Receiver Link Metric", kMetrics, ShowReceive},
    {0x0B, "Vendor Specific", kVendor}, {0x0C, "Link Metric Result Code", kResult}, {0x0D, "Searched Role", kRole},
    {0x0E, "Autoconfiguration Frequency Band", kBand}, {0x0F, "Supported Role", kRole},
    {0x10, "Supported Frequency Band", kBand}, {0x11, "WSC", {}, ShowSetup},
    {0x12, "Push Button Event Notification", kMedia, ShowMedia}, {0x13, "Push Button Join Notification", kPushed},
    {0x14, "Generic PHY Device Information", kInterfaces, ShowPhys}, {0x15, "Device Identification", kIdentity},
    {0x16, "Control URL", kUrl}, {0x17, "IPv4", kEntries, ShowFour}, {0x18, "IPv6", kEntries, ShowSix},
    {0x19, "Push Button Generic PHY Event", kMedia, ShowPhyEvents}, {0x1A, "1905 Profile Version", kProfile},
    {0x1B, "Power Off Interface", kEntries, ShowPowerOff},
    {0x1C, "Interface Power Change Information", kEntries, ShowPowerChange},
    {0x1D, "Interface Power Change Status", kEntries, ShowPowerStatus}, {0x1E, "L2 Neighbour Device", kEntries, ShowLayer2}});

}  // namespace

int32_t DecodeIeee1905(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 8;
  constexpr ElementForm kForm{.lengthSize = 2};
  if (Left(c) < kHeaderSize) return 0;
  const Home ahead = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IEEE 1905.1: %s", LookupName(kMessageNames, ahead.type.value)));
  Home home = ShowRows(in, c, kHeader);
  Loop loop;
  Element element;
  while (MoreAt(in, c, loop) && TakeElement(c, kForm, element)) {
    const Choice<Home>* choice = FindChoice<Home>(kElements, element.code);
    if (!choice) choice = FindMultiApElement(element.code);
    // keys: text TLV
    // keys: number Type, Length
    const Place under = detail::AddElementHead(in, element, kForm, "TLV", choice ? choice->name : kUnknown);
    ShowChoice<Home>(under, element.value, choice, home);   // keys: none Data
    if (element.code == 0) break;
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
