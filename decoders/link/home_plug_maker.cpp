// Messages that stations of HomePlug AV understand beside the standard's, as far as their maker published them: memory, modules
// of firmware, statistics of links, networks, loopback.
#include "decoders/link/home_plug.h"

namespace qxview {
namespace {

constexpr auto kRoleNames = SortedNames({{0, "Station"}, {1, "Proxy Coordinator"}, {2, "Coordinator"}});
constexpr auto kControlNames = SortedNames({{0, "Read"}, {1, "Clear"}, {2, "Read and Clear"}});
constexpr uint32_t kTransmit = 0, kReceive = 1;
constexpr auto kDirectionNames = SortedNames({{kTransmit, "Transmit"}, {kReceive, "Receive"}, {2, "Both"}});
constexpr auto kSnifferNames = SortedNames({{0, "Disable"}, {1, "Enable"}, {2, "No Change"}});
constexpr auto kActionNames = SortedNames({
    {0, "Loader Ready"}, {1, "Firmware Update Ready"}, {2, "PIB Update Ready"}, {3, "Firmware and PIB Update Ready"},
    {4, "Background Loader Ready"}});
constexpr auto kModuleNames = SortedNames({{0, "MAC Soft Loader Image"}, {1, "MAC Software Image"}, {2, "PIB"},
                                           {0x10, "Write Alternate Flash"}});

constexpr auto kStatus = LittleRows<HomePlug>({Number(1, "Status").Hex()});
constexpr auto kSoftware = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(1, "Device ID"), Counted(1, Text(0, "Software Version").Note(", %s"))});
constexpr auto kMemory = LittleRows<HomePlug>({Hex(4, "Memory Address"), Number(4, "Memory Length")});
constexpr auto kMemoryData = LittleRows<HomePlug>({
    Hex(4, "Memory Address"), Number(4, "Memory Length").Into(&HomePlug::length),
    Bytes(0, "Memory Data").SizedBy(&HomePlug::length)});
constexpr auto kMemoryStatus = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Hex(4, "Memory Address"), Number(4, "Memory Length")});
constexpr auto kMemoryAnswer = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Hex(4, "Memory Address"), Number(4, "Memory Length").Into(&HomePlug::length),
    Bytes(0, "Memory Data").SizedBy(&HomePlug::length)});
constexpr auto kImage = LittleRows<HomePlug>({
    Hex(4, "Image Load Address"), Number(4, "Image Length"), Hex(4, "Image Checksum"), Hex(4, "Image Start Address")});
constexpr auto kNvm = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Hex(4, "NVM Type"), Number(4, "NVM Page Size"), Number(4, "NVM Block Size"),
    Number(4, "NVM Size")});
constexpr auto kModule = LittleRows<HomePlug>({
    Number(1, "Module ID"), Hex(1, "Reserved"), Number(2, "Module Length").Into(&HomePlug::length), Number(4, "Module Offset"),
    Hex(4, "Module Checksum"), Bytes(0, "Module Data").SizedBy(&HomePlug::length)});
constexpr auto kModuleStatus = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(1, "Module ID", kModuleNames), Hex(1, "Reserved"), Number(2, "Module Length"),
    Number(4, "Module Offset")});
constexpr auto kModuleRead = LittleRows<HomePlug>({
    Number(1, "Module ID", kModuleNames), Hex(1, "Reserved"), Number(2, "Module Length"), Number(4, "Module Offset")});
constexpr auto kModuleAnswer = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Hex(3, "Reserved"), Number(1, "Module ID", kModuleNames), Hex(1, "Reserved"),
    Number(2, "Module Length").Into(&HomePlug::length), Number(4, "Module Offset"), Hex(4, "Module Checksum"),
    Bytes(0, "Module Data").SizedBy(&HomePlug::length)});
constexpr auto kModuleKeep = LittleRows<HomePlug>({Number(1, "Module ID", kModuleNames)});
constexpr auto kModuleKept = LittleRows<HomePlug>({Number(1, "Status").Hex(), Number(1, "Module ID", kModuleNames)});
constexpr auto kSniffer = LittleRows<HomePlug>({Number(1, "Sniffer Control", kSnifferNames)});
constexpr auto kSnifferAnswer = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(1, "Sniffer State"), Mac("Sniffer Address")});
constexpr auto kSniffed = LittleRows<HomePlug>({
    Number(1, "Sniffer Type"), Number(1, "Direction", kDirectionNames), Number(8, "System Time"), Number(4, "Beacon Time"),
    Bytes(0, "Frame Control")});
constexpr auto kKey = LittleRows<HomePlug>({
    Number(1, "Encryption Key Select"), Bytes(16, "Network Membership Key"), Number(1, "Payload Encryption Key Select"),
    Mac("Remote Address"), Bytes(16, "Device Access Key")});
constexpr auto kMaker = LittleRows<HomePlug>({Number(1, "Status").Hex(),
    Counted(1, Text(0, "Manufacturer String").Note(", %s"))});

// --- reports ---

constexpr auto kReport = LittleRows<HomePlug>({Number(2, "Session ID"), Number(1, "Clear")});
constexpr auto kWatchdog = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(2, "Session ID"), Number(1, "Parts"), Number(1, "Current Part"),
    Number(2, "Report Length").Into(&HomePlug::length), Number(1, "Report Offset"),
    Bytes(0, "Report Data").SizedBy(&HomePlug::length)});
constexpr auto kCheckpoint = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(1, "Major Version"), Number(1, "Minor Version"), Bytes(14, "Reserved"),
    Number(2, "Session ID"), Number(4, "Total Size"), Number(4, "Block Offset"), Number(4, "Byte Index"), Number(1, "Parts"),
    Number(1, "Current Part"), Number(2, "Report Length").Into(&HomePlug::length), Number(1, "Report Offset"),
    Bytes(0, "Report Data").SizedBy(&HomePlug::length)});
constexpr auto kAttributes = LittleRows<HomePlug>({Hex(4, "Cookie"), Number(1, "Report Type")});
constexpr auto kAttributesAnswer = LittleRows<HomePlug>({
    Number(2, "Status").Hex(), Hex(4, "Cookie"), Number(1, "Report Type"), Number(2, "Attributes Size"),
    Text(16, "Hardware Platform"), Text(16, "Software Platform"), Number(4, "Major Version"), Number(4, "Minor Version"),
    Number(4, "Software Subversion"), Number(4, "Build Number"), Hex(4, "Reserved"), Text(8, "Build Date"), Text(12, "Release Type"),
    Word(1), Bits(6, 2, "SDRAM Type"), Bits(4, 2, "Reserved"), Bits(2, 2, "Line Frequency"), Bits(0, 2, "Zero Cross"),
    Number(4, "SDRAM Size"), Number(1, "Authorization Mode")});

// --- links and networks ---

constexpr auto kStatistics = LittleRows<HomePlug>({
    Number(1, "Control", kControlNames), Number(1, "Direction", kDirectionNames), Number(1, "Link ID"), Mac("Peer Address")});
constexpr auto kStatisticsAnswer = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(1, "Direction", kDirectionNames).Into(&HomePlug::more), Number(1, "Link ID"),
    Number(1, "TEI")});
constexpr auto kSent = LittleRows<HomePlug>({
    Number(8, "MPDUs Acknowledged"), Number(8, "MPDUs Collided"), Number(8, "MPDUs Failed"), Number(8, "PBs Sent"),
    Number(8, "PBs Failed")});
constexpr auto kReceived = LittleRows<HomePlug>({
    Number(8, "MPDUs Received"), Number(8, "MPDUs Not Received"), Number(8, "PBs Received"), Number(8, "PBs Not Received"),
    Number(8, "Turbo Bits Received"), Number(8, "Turbo Bits in Error"), Number(1, "Intervals").Into(&HomePlug::count)});
constexpr auto kInterval = LittleRows<HomePlug>({
    Number(1, "PHY Rate"), Number(8, "PBs Received"), Number(8, "PBs Not Received"), Number(8, "Turbo Bits Received"),
    Number(8, "Turbo Bits in Error")});
void ShowStatistics(const Place& in, Cursor& c, HomePlug& out) {
  const uint32_t direction = out.more.value;
  if (direction != kReceive && Left(c)) ShowRows<HomePlug>(in, c, kSent, out);
  if (direction == kTransmit || !Left(c)) return;
  ShowRows<HomePlug>(in, c, kReceived, out);
  ShowList(in, c, kInterval, out);
}
constexpr auto kNetworks = LittleRows<HomePlug>({Number(1, "Networks").Into(&HomePlug::count)});
constexpr auto kNetwork = LittleRows<HomePlug>({
    Bytes(7, "Network ID"), Number(1, "Short Network ID"), Number(1, "TEI"), Number(1, "Station Role", kRoleNames),
    Mac("Coordinator MAC Address"), Number(1, "Coordinator TEI"), Number(1, "Stations").Into(&HomePlug::count)});
constexpr auto kStation = LittleRows<HomePlug>({
    Mac("Station MAC Address"), Number(1, "TEI"), Mac("Bridged Address"), Number(1, "Average Transmit Rate", " Mbit/s"),
    Number(1, "Average Receive Rate", " Mbit/s")});
void ShowNetworks(const Place& in, Cursor& c, HomePlug& out) {
  const uint32_t networks = out.count.value;
  Loop loop;
  for (uint32_t i = 0; i < networks && MoreAt(in, c, loop); ++i) {
    ShowRows<HomePlug>(in, c, kNetwork, out);
    ShowList(in, c, kStation, out);
  }
}

// --- what else ---

constexpr auto kLoopback = LittleRows<HomePlug>({
    Number(1, "Duration", " seconds"), Hex(1, "Reserved"), Number(2, "Length").Into(&HomePlug::length),
    Bytes(0, "Loopback Data").SizedBy(&HomePlug::length)});
constexpr auto kLooped = LittleRows<HomePlug>({
    Number(1, "Status").Hex(), Number(1, "Duration", " seconds"), Number(2, "Length")});
constexpr auto kLoopState = LittleRows<HomePlug>({Number(1, "Status").Hex(), Number(1, "Loopback State")});
constexpr auto kSdram = LittleRows<HomePlug>({
    Number(4, "SDRAM Size"), Hex(4, "Configuration Register"), Hex(4, "Timing 0"), Hex(4, "Timing 1"), Hex(4, "Control"),
    Hex(4, "Refresh"), Hex(4, "Clock Register"), Hex(4, "Checksum")});
constexpr auto kAction = LittleRows<HomePlug>({Number(1, "Host Action", kActionNames).Note(", %s")});

constexpr HomePlugMessage kMessages[] = {
    {0xA000 | kConfirmation, kSoftware, {}, nullptr}, {0xA004 | kRequest, kMemoryData, {}, nullptr},
    {0xA004 | kConfirmation, kMemoryStatus, {}, nullptr}, {0xA008 | kRequest, kMemory, {}, nullptr},
    {0xA008 | kConfirmation, kMemoryAnswer, {}, nullptr}, {0xA00C | kRequest, kImage, {}, nullptr},
    {0xA00C | kConfirmation, kStatus, {}, nullptr}, {0xA010 | kConfirmation, kNvm, {}, nullptr},
    {0xA01C | kConfirmation, kStatus, {}, nullptr}, {0xA020 | kRequest, kModule, {}, nullptr},
    {0xA020 | kConfirmation, kModuleStatus, {}, nullptr}, {0xA020 | kIndication, kModuleKept, {}, nullptr},
    {0xA024 | kRequest, kModuleRead, {}, nullptr}, {0xA024 | kConfirmation, kModuleAnswer, {}, nullptr},
    {0xA028 | kRequest, kModuleKeep, {}, nullptr}, {0xA028 | kConfirmation, kModuleKept, {}, nullptr},
    {0xA02C | kRequest, kReport, {}, nullptr}, {0xA02C | kIndication, kWatchdog, {}, nullptr},
    {0xA030 | kRequest, kStatistics, {}, nullptr}, {0xA030 | kConfirmation, kStatisticsAnswer, {}, ShowStatistics},
    {0xA034 | kRequest, kSniffer, {}, nullptr}, {0xA034 | kConfirmation, kSnifferAnswer, {}, nullptr},
    {0xA034 | kIndication, kSniffed, {}, nullptr}, {0xA038 | kConfirmation, kNetworks, {}, ShowNetworks},
    {0xA040 | kRequest, kReport, {}, nullptr}, {0xA040 | kIndication, kCheckpoint, {}, nullptr},
    {0xA048 | kRequest, kLoopback, {}, nullptr}, {0xA048 | kConfirmation, kLooped, {}, nullptr},
    {0xA04C | kConfirmation, kLoopState, {}, nullptr}, {0xA050 | kRequest, kKey, {}, nullptr},
    {0xA050 | kConfirmation, kStatus, {}, nullptr}, {0xA054 | kConfirmation, kMaker, {}, nullptr},
    {0xA05C | kRequest, kSdram, {}, nullptr}, {0xA05C | kConfirmation, kStatus, {}, nullptr},
    {0xA060 | kIndication, kAction, {}, nullptr}, {0xA060 | kResponse, kStatus, {}, nullptr},
    {0xA068 | kRequest, kAttributes, {}, nullptr}, {0xA068 | kConfirmation, kAttributesAnswer, {}, nullptr},
    {0xA07C | kConfirmation, kStatus, {}, nullptr}};

}  // namespace

const HomePlugMessage* FindMakerMessage(uint32_t type) {
  for (const HomePlugMessage& message : kMessages) {
    if (message.type == type) return &message;
  }
  return nullptr;
}

}  // namespace qxview
