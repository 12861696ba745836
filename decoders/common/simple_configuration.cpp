// The attributes of Wi-Fi Simple Configuration (Wi-Fi Alliance, version 2.0): how a station gets a network's name and key.
// EAP carries them as an expanded type, IEEE 1905.1 in an element.
#include "core/line_facts.h"
#include "decoders/common/eap.h"

namespace qxview {
namespace {

constexpr auto kOctets = Rows<Eap>({Bytes(0, nullptr)});
constexpr auto kName = Rows<Eap>({Utf8(0, nullptr)});
constexpr auto kNumber2 = Rows<Eap>({Number(2, nullptr)});
constexpr auto kByte = Rows<Eap>({Number(1, nullptr)});
constexpr auto kAddress = Rows<Eap>({Mac(nullptr)});
constexpr auto kAuthenticationMasks = SortedNames({
    {0x0001, "Open"}, {0x0002, "WPA-PSK"}, {0x0004, "Shared"}, {0x0008, "WPA"}, {0x0010, "WPA2"}, {0x0020, "WPA2-PSK"}});
constexpr auto kEncryptionMasks = SortedNames({{0x0001, "None"}, {0x0002, "WEP"}, {0x0004, "TKIP"}, {0x0008, "AES"}});
constexpr auto kMethodMasks = SortedNames({
    {0x0001, "USB"}, {0x0002, "Ethernet"}, {0x0004, "Label"}, {0x0008, "Display"}, {0x0010, "External NFC Token"},
    {0x0020, "Integrated NFC Token"}, {0x0040, "NFC Interface"}, {0x0080, "Push Button"}, {0x0100, "Keypad"},
    {0x0200, "Virtual Push Button"}, {0x0400, "Physical Push Button"}, {0x1000, "P2PS"}, {0x2000, "Virtual Display"},
    {0x4000, "Physical Display"}});
constexpr auto kConnectionMasks = SortedNames({{0x01, "ESS"}, {0x02, "IBSS"}});
constexpr auto kBandMasks = SortedNames({{0x01, "2.4 GHz"}, {0x02, "5 GHz"}, {0x04, "60 GHz"}});
constexpr auto kMessageTypes = SortedNames({
    {1, "Beacon"}, {2, "Probe Request"}, {3, "Probe Response"}, {4, "M1"}, {5, "M2"}, {6, "M2D"}, {7, "M3"}, {8, "M4"},
    {9, "M5"}, {10, "M6"}, {11, "M7"}, {12, "M8"}, {13, "WSC_ACK"}, {14, "WSC_NACK"}, {15, "WSC_DONE"}});
constexpr auto kPasswordIds = SortedNames({
    {0, "Default (PIN)"}, {1, "User-specified"}, {2, "Machine-specified"}, {3, "Rekey"}, {4, "Push Button"},
    {5, "Registrar-specified"}, {7, "NFC Connection Handover"}, {8, "P2PS"}});
constexpr auto kAssociationNames = SortedNames({
    {0, "Not Associated"}, {1, "Connection Success"}, {2, "Configuration Failure"}, {3, "Association Failure"},
    {4, "IP Failure"}});
constexpr auto kWscErrors = SortedNames({
    {0, "No Error"}, {1, "OOB Interface Read Error"}, {2, "Decryption CRC Failure"}, {3, "2.4 GHz Channel Not Supported"},
    {4, "5.0 GHz Channel Not Supported"}, {5, "Signal Too Weak"}, {6, "Network Authentication Failure"},
    {7, "Network Association Failure"}, {8, "No DHCP Response"}, {9, "Failed DHCP Configuration"},
    {10, "IP Address Conflict"}, {11, "Could Not Connect to Registrar"}, {12, "Multiple PBC Sessions Detected"},
    {13, "Rogue Activity Suspected"}, {14, "Device Busy"}, {15, "Setup Locked"}, {16, "Message Timeout"},
    {17, "Registration Session Timeout"}, {18, "Device Password Authentication Failure"},
    {19, "60 GHz Channel Not Supported"}, {20, "Public Key Hash Mismatch"}});
constexpr auto kRequestTypes = SortedNames({
    {0, "Enrollee, Info Only"}, {1, "Enrollee, Open 802.1X"}, {2, "Registrar"}, {3, "WLAN Manager Registrar"}});
constexpr auto kResponseTypes = SortedNames({
    {0, "Enrollee, Info Only"}, {1, "Enrollee, Open 802.1X"}, {2, "Registrar"}, {3, "AP"}});
constexpr auto kStateNames = SortedNames({{1, "Not Configured"}, {2, "Configured"}});
constexpr auto kAuthentications = Rows<Eap>({Flags(2, nullptr, kAuthenticationMasks)});
constexpr auto kEncryptions = Rows<Eap>({Flags(2, nullptr, kEncryptionMasks)});
constexpr auto kConfigurations = Rows<Eap>({Flags(2, nullptr, kMethodMasks)});
constexpr auto kConnections = Rows<Eap>({Flags(1, nullptr, kConnectionMasks)});
constexpr auto kBands = Rows<Eap>({Flags(1, nullptr, kBandMasks)});
constexpr auto kMessageType = Rows<Eap>({Number(1, nullptr, kMessageTypes).Note(", %s")});
constexpr auto kPasswordId = Rows<Eap>({Number(2, nullptr, kPasswordIds)});
constexpr auto kAssociation = Rows<Eap>({Number(2, nullptr, kAssociationNames)});
constexpr auto kWscError = Rows<Eap>({Number(2, nullptr, kWscErrors)});
constexpr auto kRequestType = Rows<Eap>({Number(1, nullptr, kRequestTypes)});
constexpr auto kResponseType = Rows<Eap>({Number(1, nullptr, kResponseTypes)});
constexpr auto kState = Rows<Eap>({Number(1, nullptr, kStateNames)});
constexpr auto kWscVersion = Rows<Eap>({Number(1, nullptr), Bits(0, 4, "Major Version"), Bits(4, 4, "Minor Version")});
constexpr auto kDeviceType = Rows<Eap>({Number(2, "Device Category"), Hex(4, "Device OUI"), Number(2, "Device Subcategory")});
constexpr auto kWscAttributes = Choices<Eap>({
    {0x1001, "AP Channel", kNumber2}, {0x1002, "Association State", kAssociation},
    {0x1003, "Authentication Type", kAuthentications}, {0x1004, "Authentication Type Flags", kAuthentications},
    {0x1005, "Authenticator", kOctets}, {0x1008, "Configuration Methods", kConfigurations},
    {0x1009, "Configuration Error", kWscError}, {0x100B, "Confirmation URL IPv4", kName}, {0x100C,
    "Confirmation URL IPv6", kName},
    {0x100D, "Connection Type", kConnections}, {0x100E, "Credential", kOctets}, {0x100F, "Encryption Type", kEncryptions},
    {0x1010, "Encryption Type Flags", kEncryptions}, {0x1011, "Device Name", kName},
    {0x1012, "Device Password ID", kPasswordId}, {0x1014, "E-Hash1", kOctets}, {0x1015, "E-Hash2", kOctets},
    {0x1016, "E-SNonce1", kOctets}, {0x1017, "E-SNonce2", kOctets},
    {0x1018, "Encrypted Settings", kOctets}, {0x101A, "Enrollee Nonce", kOctets}, {0x101B, "Feature ID", kOctets},
    {0x101E, "Key Wrap Authenticator", kOctets}, {0x1020, "MAC Address", kAddress}, {0x1021, "Manufacturer", kName},
    {0x1022, "Message Type", kMessageType}, {0x1023, "Model Name", kName}, {0x1024, "Model Number", kName},
    {0x1026, "Network Index", kByte}, {0x1027, "Network Key", kOctets}, {0x1028, "Network Key Index", kByte},
    {0x1029, "New Device Name", kName}, {0x102A, "New Password", kOctets}, {0x102C, "OOB Device Password", kOctets},
    {0x102D, "OS Version", kOctets}, {0x102F, "Power Level", kByte}, {0x1030, "PSK Current", kByte}, {0x1031,
    "PSK Max", kByte},
    {0x1032, "Public Key", kOctets}, {0x1035, "Reboot", kByte}, {0x1036, "Reboot Current", kByte}, {0x1037,
    "Reboot Max", kByte},
    {0x1038, "Total Networks", kByte}, {0x1039, "Registrar Nonce", kOctets}, {0x103A, "Request Type", kRequestType},
    {0x103B, "Response Type", kResponseType}, {0x103C, "RF Bands", kBands}, {0x103D, "R-Hash1", kOctets}, {0x103E, "R-Hash2",
    kOctets},
    {0x103F, "R-SNonce1", kOctets}, {0x1040, "R-SNonce2", kOctets}, {0x1041, "Selected Registrar", kByte},
    {0x1042, "Serial Number", kName}, {0x1044, "Wi-Fi Protected Setup State", kState}, {0x1045, "SSID", kName},
    {0x1046, "Total Networks", kByte}, {0x1047, "UUID-E", kOctets}, {0x1048, "UUID-R", kOctets},
    {0x1049, "Vendor Extension", kOctets}, {0x104A, "Version", kWscVersion}, {0x104B, "X.509 Certificate Request", kOctets},
    {0x104C, "X.509 Certificate", kOctets}, {0x104D, "EAP Identity", kName}, {0x104E, "Message Counter", kOctets},
    {0x104F, "Public Key Hash", kOctets}, {0x1050, "Rekey Key", kOctets}, {0x1051, "Key Lifetime", kOctets},
    {0x1052, "Permitted Configuration Methods", kConfigurations},
    {0x1053, "Selected Registrar Configuration Methods", kConfigurations}, {0x1054, "Primary Device Type", kDeviceType},
    {0x1055, "Secondary Device Type List", kOctets}, {0x1056, "Portable Device", kByte},
    {0x1057, "AP Setup Locked", kByte}, {0x1058, "Application Extension", kOctets}, {0x1059, "EAP Type", kOctets},
    {0x1060, "Initialization Vector", kOctets}, {0x1061, "Key Provided Automatically", kByte}, {0x1062,
    "802.1X Enabled", kByte},
    {0x1063, "AppSessionKey", kOctets}, {0x1064, "WEP Transmit Key", kByte}, {0x106A, "Requested Device Type",
    kOctets}});

}  // namespace

void ShowSimpleConfiguration(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "eap");
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2};
  Eap eap{};
  ShowElements<Eap>(in, c, kForm, "Attribute", kWscAttributes, eap);
}


}  // namespace qxview
