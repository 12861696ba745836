// Setup packets and the standard descriptors of USB (USB 2.0 chapter 9, USB 3.2 chapter 9, HID 1.11 6.2).
#include "core/elements.h"
#include "decoders/link/usb.h"

namespace qxview {
namespace {

constexpr auto kRequestTypes = SortedNames({{0, "Standard"}, {1, "Class"}, {2, "Vendor"}, {3, "Reserved"}});
constexpr auto kRecipients = SortedNames({{0, "Device"}, {1, "Interface"}, {2, "Endpoint"}, {3, "Other"}});
constexpr auto kDirections = SortedNames({{0, "Host to Device"}, {1, "Device to Host"}});
constexpr auto kRequests = SortedNames({
    {0, "GET_STATUS"}, {1, "CLEAR_FEATURE"}, {3, "SET_FEATURE"}, {5, "SET_ADDRESS"}, {6, "GET_DESCRIPTOR"}, {7,
    "SET_DESCRIPTOR"},
    {8, "GET_CONFIGURATION"}, {9, "SET_CONFIGURATION"}, {10, "GET_INTERFACE"}, {11, "SET_INTERFACE"}, {12,
    "SYNCH_FRAME"},
    {48, "SET_SEL"}, {49, "SET_ISOCH_DELAY"}});
constexpr auto kDescriptorTypes = SortedNames({
    {1, "Device"}, {2, "Configuration"}, {3, "String"}, {4, "Interface"}, {5, "Endpoint"}, {6, "Device Qualifier"},
    {7, "Other Speed Configuration"}, {8, "Interface Power"}, {9, "OTG"}, {10, "Debug"}, {11, "Interface Association"},
    {15, "Binary Object Store"}, {16, "Device Capability"}, {0x21, "HID"}, {0x22, "HID Report"}, {0x23, "HID Physical"},
    {0x24, "Class Specific Interface"}, {0x25, "Class Specific Endpoint"}, {0x29, "Hub"}, {0x2A, "SuperSpeed Hub"},
    {0x30, "SuperSpeed Endpoint Companion"}, {0x31, "SuperSpeedPlus Isochronous Endpoint Companion"}});
constexpr auto kFeatures = SortedNames({{0, "ENDPOINT_HALT"}, {1, "DEVICE_REMOTE_WAKEUP"}, {2, "TEST_MODE"}});
constexpr auto kClasses = SortedNames({
    {0x00, "Told by the Interfaces"}, {0x01, "Audio"}, {0x02, "Communications"}, {0x03, "HID"}, {0x05, "Physical"},
    {0x06, "Image"},
    {0x07, "Printer"}, {0x08, "Mass Storage"}, {0x09, "Hub"}, {0x0A, "CDC Data"}, {0x0B, "Smart Card"}, {0x0D,
    "Content Security"},
    {0x0E, "Video"}, {0x0F, "Personal Healthcare"}, {0x10, "Audio and Video"}, {0x11, "Billboard"}, {0x12,
    "Type-C Bridge"},
    {0x13, "Bulk Display"}, {0x14, "MCTP"}, {0x3C, "I3C"}, {0xDC, "Diagnostic"}, {0xE0, "Wireless Controller"},
    {0xEF, "Miscellaneous"}, {0xFE, "Application Specific"}, {0xFF, "Vendor Specific"}});
constexpr auto kTransfers = SortedNames({{0, "Control"}, {1, "Isochronous"}, {2, "Bulk"}, {3, "Interrupt"}});
constexpr auto kSynchronizations = SortedNames({{0, "None"}, {1, "Asynchronous"}, {2, "Adaptive"}, {3, "Synchronous"}});
constexpr auto kUsages = SortedNames({{0, "Data"}, {1, "Feedback"}, {2, "Implicit Feedback"}, {3, "Reserved"}});
constexpr auto kCapabilities = SortedNames({
    {1, "Wireless USB"}, {2, "USB 2.0 Extension"}, {3, "SuperSpeed USB"}, {4, "Container ID"}, {5, "Platform"},
    {6, "Power Delivery"}, {7, "Battery Information"}, {8, "PD Consumer Port"}, {9, "PD Provider Port"}, {10,
    "SuperSpeedPlus"},
    {11, "Precision Time Measurement"}, {12, "Wireless USB Extension"}, {13, "Billboard"}, {14, "Authentication"},
    {15, "Billboard Extended"}, {16, "Configuration Summary"}});

// Requests of classes, by what they are addressed to: hubs, and interfaces of human interface devices, communications and
// mass storage.
constexpr auto kHubRequests = SortedNames({
    {0, "GET_STATUS"}, {1, "CLEAR_FEATURE"}, {3, "SET_FEATURE"}, {6, "GET_DESCRIPTOR"}, {7, "SET_DESCRIPTOR"},
    {8, "CLEAR_TT_BUFFER"}, {9, "RESET_TT"}, {10, "GET_TT_STATE"}, {11, "STOP_TT"}, {12, "SET_HUB_DEPTH"},
    {13, "GET_PORT_ERR_COUNT"}});
constexpr auto kInterfaceRequests = SortedNames({
    {0x01, "GET_REPORT"}, {0x02, "GET_IDLE"}, {0x03, "GET_PROTOCOL"}, {0x09, "SET_REPORT"}, {0x0A, "SET_IDLE"},
    {0x0B, "SET_PROTOCOL"}, {0x20, "SET_LINE_CODING"}, {0x21, "GET_LINE_CODING"}, {0x22, "SET_CONTROL_LINE_STATE"},
    {0x23, "SEND_BREAK"}, {0xFE, "GET_MAX_LUN"}, {0xFF, "BULK_ONLY_RESET"}});
constexpr auto kHubFeatures = SortedNames({
    {0, "C_HUB_LOCAL_POWER or PORT_CONNECTION"}, {1, "C_HUB_OVER_CURRENT or PORT_ENABLE"}, {2, "PORT_SUSPEND"},
    {3, "PORT_OVER_CURRENT"}, {4, "PORT_RESET"}, {5, "PORT_LINK_STATE"}, {8, "PORT_POWER"}, {9, "PORT_LOW_SPEED"},
    {16, "C_PORT_CONNECTION"}, {17, "C_PORT_ENABLE"}, {18, "C_PORT_SUSPEND"}, {19, "C_PORT_OVER_CURRENT"},
    {20, "C_PORT_RESET"}, {21, "PORT_TEST"}, {22, "PORT_INDICATOR"}, {23, "PORT_U1_TIMEOUT"}, {24, "PORT_U2_TIMEOUT"},
    {25, "C_PORT_LINK_STATE"}, {26, "C_PORT_CONFIG_ERROR"}, {27, "PORT_REMOTE_WAKE_MASK"}, {28, "BH_PORT_RESET"},
    {29, "C_BH_PORT_RESET"}, {30, "FORCE_LINKPM_ACCEPT"}});
constexpr auto kReportTypes = SortedNames({{1, "Input"}, {2, "Output"}, {3, "Feature"}});

struct Setup {
  Field type, kind, request, subordinate;
};
constexpr auto kType = LittleRows<Setup>({
    Hex(1, "Request Type").Into(&Setup::type), Bits(0, 1, "Request Direction", kDirections),
    Bits(1, 2, "Request Kind", kRequestTypes).Into(&Setup::kind), Bits(3, 5, "Recipient", kRecipients)});
constexpr auto kStandard = LittleRows<Setup>({Number(1, "Request", kRequests).Into(&Setup::request)});
constexpr auto kOtherRequest = LittleRows<Setup>({Number(1, "Request").Into(&Setup::request)});
constexpr auto kHubRequest = LittleRows<Setup>({Number(1, "Request", kHubRequests)});
constexpr auto kInterfaceRequest = LittleRows<Setup>({Number(1, "Request", kInterfaceRequests)});
constexpr auto kHubValue = LittleRows<Setup>({Number(2, "Hub Feature", kHubFeatures), Number(1, "Port"), Number(1, "Selector")});
constexpr auto kReportValue = LittleRows<Setup>({
    Number(1, "Report ID"), Number(1, "Report Type", kReportTypes), Number(2, "Interface")});
constexpr auto kIdleValue = LittleRows<Setup>({
    Number(1, "Report ID"), Number(1, "Idle Rate", " x 4 ms"), Number(2, "Interface")});
constexpr auto kDescriptorValue = LittleRows<Setup>({
    Number(1, "Descriptor Index"), Number(1, "Descriptor Type", kDescriptorTypes), Hex(2, "Language or Index")});
constexpr auto kFeatureValue = LittleRows<Setup>({Number(2, "Feature", kFeatures), Number(2, "Index")});
constexpr auto kAddressValue = LittleRows<Setup>({Number(2, "Device Address"), Number(2, "Index")});
constexpr auto kConfigurationValue = LittleRows<Setup>({Number(2, "Configuration"), Number(2, "Index")});
constexpr auto kInterfaceValue = LittleRows<Setup>({Number(2, "Alternate Setting"), Number(2, "Interface")});
constexpr auto kPlainValue = LittleRows<Setup>({Hex(2, "Value"), Hex(2, "Index")});
constexpr auto kLength = LittleRows<Setup>({Number(2, "Wanted Length")});

RowSpan<Setup> ValueOf(uint32_t request) {
  switch (request) {
    case 1:
    case 3: return kFeatureValue;
    case 5: return kAddressValue;
    case 6:
    case 7: return kDescriptorValue;
    case 9: return kConfigurationValue;
    case 10:
    case 11: return kInterfaceValue;
    default: return kPlainValue;
  }
}

RowSpan<Setup> ClassValueOf(bool isInterface, uint32_t request) {
  if (!isInterface && (request == 1 || request == 3)) return kHubValue;
  if (!isInterface && (request == 6 || request == 7)) return kDescriptorValue;
  if (isInterface && (request == 1 || request == 9)) return kReportValue;
  if (isInterface && (request == 2 || request == 10)) return kIdleValue;
  return kPlainValue;
}

// --- descriptors ---

constexpr auto kDevice = LittleRows<Setup>({
    Hex(2, "USB Version"), Hex(1, "Device Class", kClasses), Hex(1, "Device Subclass"), Hex(1, "Device Protocol"),
    Number(1, "Maximum Packet Size of Endpoint 0"), Hex(2, "Vendor ID"), Hex(2, "Product ID"), Hex(2, "Device Version"),
    Number(1, "Manufacturer String"), Number(1, "Product String"), Number(1, "Serial Number String"),
    Number(1, "Number of Configurations")});
constexpr auto kConfiguration = LittleRows<Setup>({
    Number(2, "Total Length"), Number(1, "Number of Interfaces"), Number(1, "Configuration Value"),
    Number(1, "Configuration String"), Hex(1, "Attributes"), Bits(0, 1, "Always Set"), Flag(1, "Self Powered"),
    Flag(2, "Remote Wakeup"), Bits(3, 5, "Reserved"), Number(1, "Maximum Power", " x 2 mA")});
constexpr auto kInterface = LittleRows<Setup>({
    Number(1, "Interface Number"), Number(1, "Alternate Setting"), Number(1, "Number of Endpoints"),
    Hex(1, "Interface Class", kClasses), Hex(1, "Interface Subclass"), Hex(1, "Interface Protocol"), Number(1,
    "Interface String")});
constexpr auto kEndpoint = LittleRows<Setup>({
    Hex(1, "Endpoint Address"), Bits(0, 1, "Endpoint Direction", kDirections), Bits(1, 3, "Reserved"), Bits(4, 4,
    "Endpoint Number"),
    Hex(1, "Attributes"), Bits(0, 2, "Reserved"), Bits(2, 2, "Usage", kUsages), Bits(4, 2, "Synchronization",
    kSynchronizations),
    Bits(6, 2, "Transfer Kind", kTransfers), Hex(2, "Maximum Packet Size"), Bits(3, 2, "Additional Transactions"),
    Bits(5, 11, "Packet Size"), Number(1, "Polling Interval")});
constexpr auto kQualifier = LittleRows<Setup>({
    Hex(2, "USB Version"), Hex(1, "Device Class", kClasses), Hex(1, "Device Subclass"), Hex(1, "Device Protocol"),
    Number(1, "Maximum Packet Size of Endpoint 0"), Number(1, "Number of Configurations"), Number(1, "Reserved")});
constexpr auto kAssociation = LittleRows<Setup>({
    Number(1, "First Interface"), Number(1, "Interface Count"), Hex(1, "Function Class", kClasses), Hex(1,
    "Function Subclass"),
    Hex(1, "Function Protocol"), Number(1, "Function String")});
constexpr auto kText = LittleRows<Setup>({Utf16(0, "String").Note(", %s")});
constexpr auto kStore = LittleRows<Setup>({Number(2, "Total Length"), Number(1, "Number of Capabilities")});
constexpr auto kCapability = LittleRows<Setup>({
    Number(1, "Capability", kCapabilities).Note(", %s").Into(&Setup::kind)});
constexpr auto kCapabilityData = LittleRows<Setup>({Bytes(0, "Capability Data")});
constexpr auto kExtension = LittleRows<Setup>({
    Hex(4, "Attributes"), Bits(0, 16, "Reserved"), Bits(16, 4, "Deep BESL"), Bits(20, 4, "Baseline BESL"),
    Bits(24, 3, "Reserved"), Flag(27, "Deep BESL Valid"), Flag(28, "Baseline BESL Valid"), Flag(29, "BESL"),
    Flag(30, "Link Power Management"), Bits(31, 1, "Reserved")});
constexpr auto kSuperSpeed = LittleRows<Setup>({
    Hex(1, "Attributes"), Bits(0, 6, "Reserved"), Flag(6, "Latency Tolerance Messages"), Bits(7, 1, "Reserved"),
    Hex(2, "Speeds Supported"), Flag(15, "Low Speed"), Flag(14, "Full Speed"), Flag(13, "High Speed"),
    Flag(12, "5 Gbit/s"), Bits(0, 12, "Reserved"), Number(1, "Lowest Speed with Full Functionality"),
    Number(1, "U1 Exit Latency", " us"), Number(2, "U2 Exit Latency", " us")});
constexpr auto kIdentified = LittleRows<Setup>({
    Number(1, "Reserved"), Bytes(16, "UUID"), Bytes(0, "Capability Data")});
constexpr auto kSuperSpeedPlus = LittleRows<Setup>({
    Number(1, "Reserved"), Hex(4, "Attributes"), Hex(2, "Functionality Support"), Hex(2, "Reserved"),
    Bytes(0, "Sublink Speed Attributes")});
void ShowCapability(const Place& in, Cursor& c, Setup& setup) {
  const uint32_t kind = setup.kind.value;
  if (Left(c) < 1) return;
  ShowRows<Setup>(in, c, kind == 2 && Left(c) == 4          ? RowSpan<Setup>(kExtension)
                         : kind == 3 && Left(c) == 7        ? RowSpan<Setup>(kSuperSpeed)
                         : (kind == 4 || kind == 5) && Left(c) >= 17 ? RowSpan<Setup>(kIdentified)
                         : kind == 10 && Left(c) >= 9       ? RowSpan<Setup>(kSuperSpeedPlus)
                                                            : RowSpan<Setup>(kCapabilityData), setup);
}
constexpr auto kHid = LittleRows<Setup>({
    Hex(2, "HID Version"), Number(1, "Country Code"), Number(1, "Number of HID Descriptors"),
    Number(1, "Subordinate Descriptor Type", kDescriptorTypes), Number(2, "Subordinate Descriptor Length")});
constexpr auto kClassSpecific = LittleRows<Setup>({Hex(1, "Subtype"), Bytes(0, "Class Specific Data")});
constexpr auto kCompanion = LittleRows<Setup>({
    Number(1, "Maximum Burst"), Hex(1, "Attributes"), Number(2, "Bytes per Interval")});
constexpr auto kHub = LittleRows<Setup>({
    Number(1, "Number of Ports"), Hex(2, "Hub Characteristics"), Number(1, "Power On to Power Good", " x 2 ms"),
    Number(1, "Maximum Current", " mA"), Bytes(0, "Port Masks")});
constexpr auto kOtg = LittleRows<Setup>({
    Hex(1, "Attributes"), Bits(0, 5, "Reserved"), Flag(5, "ADP"), Flag(6, "HNP"), Flag(7, "SRP")});

constexpr auto kDescriptors = Choices<Setup>({
    {1, "Device", kDevice}, {2, "Configuration", kConfiguration}, {3, "String", kText}, {4, "Interface", kInterface},
    {5, "Endpoint", kEndpoint}, {6, "Device Qualifier", kQualifier}, {7, "Other Speed Configuration", kConfiguration},
    {9, "OTG", kOtg},
    {11, "Interface Association", kAssociation}, {15, "Binary Object Store", kStore}, {16, "Device Capability", kCapability,
    ShowCapability},
    {0x21, "HID", kHid}, {0x24, "Class Specific Interface", kClassSpecific}, {0x25, "Class Specific Endpoint",
    kClassSpecific},
    {0x29, "Hub", kHub}, {0x30, "SuperSpeed Endpoint Companion", kCompanion}});

}  // namespace

void ShowUsbSetup(const Place& in, Cursor& c) {
  constexpr int32_t kSize = 8;
  if (Left(c) < kSize) return;
  const bool isStandard = (PeekU8(c) >> 5 & 3) == 0;
  const uint32_t request = PeekU8(c, 1);
  const bool isClass = (PeekU8(c) >> 5 & 3) == 1, isInterface = (PeekU8(c) & 31) == 1;
  const bool isHub = isClass && !isInterface && (PeekU8(c) & 31) != 2;
  const char* name = isStandard ? LookupName(kRequests, request)
                     : isHub ? LookupName(kHubRequests, request)
                     : isClass && isInterface && LookupName(kInterfaceRequests, request, nullptr)
                         ? LookupName(kInterfaceRequests, request)
                         : LookupName(kRequestTypes, PeekU8(c) >> 5 & 3);
  AppendToParent(in, Ahead(c, kSize), ", %s", name);
  const Place under = Under(in, AddLine(in, Ahead(c, kSize), "Setup Packet: %s", name));
  Setup setup = ShowRows(under, c, kType);
  ShowRows<Setup>(under, c, isStandard                 ? RowSpan<Setup>(kStandard)
                            : isHub                    ? RowSpan<Setup>(kHubRequest)
                            : isClass && isInterface   ? RowSpan<Setup>(kInterfaceRequest)
                                                       : RowSpan<Setup>(kOtherRequest), setup);
  ShowRows<Setup>(under, c, isStandard                       ? ValueOf(request)
                            : isHub || (isClass && isInterface) ? ClassValueOf(isInterface, request)
                                                             : RowSpan<Setup>(kPlainValue), setup);
  ShowRows<Setup>(under, c, kLength, setup);
}

void ShowUsbDescriptors(const Place& in, Cursor& c) {
  constexpr ElementForm kForm{.lengthCountsHeader = true, .lengthFirst = true};
  Setup setup{};
  ShowElements<Setup>(in, c, kForm, "Descriptor", kDescriptors, setup);
}

}  // namespace qxview
