// What single bits of the parameters of Bluetooth's host controller interface mean (Bluetooth Core 5.3, volume 4, part E,
// clause 7; volume 2, part C, 3.3; volume 6, part B, 4.6).
#include <cstring>

#include "decoders/link/bluetooth_hci.h"

namespace qxview {
namespace {

constexpr auto kAirCodings = SortedNames({{0, "CVSD"}, {1, "u-law"}, {2, "A-law"}, {3, "Transparent"}});
constexpr auto kInputCodings = SortedNames({{0, "Linear"}, {1, "u-law"}, {2, "A-law"}, {3, "Reserved"}});
constexpr auto kInputFormats = SortedNames({
    {0, "One's Complement"}, {1, "Two's Complement"}, {2, "Sign-Magnitude"}, {3, "Unsigned"}});
constexpr auto kSampleSizes = SortedNames({{0, "8 Bits"}, {1, "16 Bits"}});
constexpr auto kFlowTypes = SortedNames({{0, "No Traffic"}, {1, "Best Effort"}, {2, "Guaranteed"}});
constexpr auto kAclPackets = LittleRows<NoValues>({
    Word(2), Flag(0, "DH5"), Flag(1, "DM5"), Flag(2, "3-DH5 Barred"), Flag(3, "2-DH5 Barred"), Flag(4, "DH3"),
    Flag(5, "DM3"), Flag(6, "3-DH3 Barred"), Flag(7, "2-DH3 Barred"), Bits(8, 3, "Reserved"), Flag(11, "DH1"),
    Flag(12, "DM1"), Flag(13, "3-DH1 Barred"), Flag(14, "2-DH1 Barred"), Bits(15, 1, "Reserved")});
constexpr auto kSynchronousPackets = LittleRows<NoValues>({
    Word(2), Bits(0, 6, "Reserved"), Flag(6, "3-EV5 Barred"), Flag(7, "2-EV5 Barred"), Flag(8, "3-EV3 Barred"),
    Flag(9, "2-EV3 Barred"), Flag(10, "EV5"), Flag(11, "EV4"), Flag(12, "EV3"), Flag(13, "HV3"), Flag(14, "HV2"),
    Flag(15, "HV1")});
constexpr auto kVoice = LittleRows<NoValues>({
    Word(2), Bits(0, 6, "Reserved"), Bits(6, 2, "Input Coding", kInputCodings),
    Bits(8, 2, "Input Data Format", kInputFormats), Bits(10, 1, "Input Sample Size", kSampleSizes),
    Bits(11, 3, "Linear PCM Bit Position"), Bits(14, 2, "Air Coding Format", kAirCodings)});
constexpr auto kClock = LittleRows<NoValues>({
    Word(2), Flag(0, "Clock Offset Valid"), Bits(1, 15, "Clock Offset, Bits 16 to 2")});
constexpr auto kLinkFeatures = LittleRows<NoValues>({
    Word(1), Flag(7, "3-Slot Packets"), Flag(6, "5-Slot Packets"), Flag(5, "Encryption"), Flag(4, "Slot Offset"),
    Flag(3, "Timing Accuracy"), Flag(2, "Role Switch"), Flag(1, "Hold Mode"), Flag(0, "Sniff Mode"), Word(1),
    Flag(7, "Park State"), Flag(6, "Power Control Requests"), Flag(5, "Channel Quality Driven Data Rate"),
    Flag(4, "SCO Link"), Flag(3, "HV2 Packets"), Flag(2, "HV3 Packets"), Flag(1, "u-law Log Synchronous Data"),
    Flag(0, "A-law Log Synchronous Data"), Word(1), Flag(7, "CVSD Synchronous Data"),
    Flag(6, "Paging Parameter Negotiation"), Flag(5, "Power Control"), Flag(4, "Transparent Synchronous Data"),
    Bits(1, 3, "Flow Control Lag"), Flag(0, "Broadcast Encryption"), Word(1), Bits(7, 1, "Reserved"),
    Flag(6, "EDR ACL 2 Mbit/s"), Flag(5, "EDR ACL 3 Mbit/s"), Flag(4, "Enhanced Inquiry Scan"),
    Flag(3, "Interlaced Inquiry Scan"), Flag(2, "Interlaced Page Scan"), Flag(1, "RSSI with Inquiry Results"),
    Flag(0, "EV3 Packets"), Word(1), Flag(7, "EV4 Packets"), Flag(6, "EV5 Packets"), Bits(5, 1, "Reserved"),
    Flag(4, "AFH Capable Peripheral"), Flag(3, "AFH Classification Peripheral"), Flag(2, "BR/EDR Not Supported"),
    Flag(1, "LE Supported by Controller"), Flag(0, "3-Slot EDR ACL Packets"), Word(1),
    Flag(7, "5-Slot EDR ACL Packets"), Flag(6, "Sniff Subrating"), Flag(5, "Pause Encryption"),
    Flag(4, "AFH Capable Central"), Flag(3, "AFH Classification Central"), Flag(2, "EDR eSCO 2 Mbit/s"),
    Flag(1, "EDR eSCO 3 Mbit/s"), Flag(0, "3-Slot EDR eSCO Packets"), Word(1), Flag(7, "Extended Inquiry Response"),
    Flag(6, "LE and BR/EDR at Once"), Bits(5, 1, "Reserved"), Flag(4, "Secure Simple Pairing"),
    Flag(3, "Encapsulated PDU"), Flag(2, "Erroneous Data Reporting"), Flag(1, "Non-Flushable Packet Boundary"),
    Bits(0, 1, "Reserved"), Word(1), Flag(7, "Supervision Timeout Changed Event"),
    Flag(6, "Variable Inquiry Power Level"), Flag(5, "Enhanced Power Control"), Bits(1, 4, "Reserved"),
    Flag(0, "Extended Features")});
constexpr auto kEvents = LittleRows<NoValues>({
    Word(1), Flag(7, "Inquiry Complete"), Flag(6, "Inquiry Result"), Flag(5, "Connection Complete"),
    Flag(4, "Connection Request"), Flag(3, "Disconnection Complete"), Flag(2, "Authentication Complete"),
    Flag(1, "Remote Name Request Complete"), Flag(0, "Encryption Change"), Word(1),
    Flag(7, "Change Connection Link Key Complete"), Flag(6, "Link Key Type Changed"),
    Flag(5, "Read Remote Supported Features Complete"), Flag(4, "Read Remote Version Information Complete"),
    Flag(3, "QoS Setup Complete"), Bits(1, 2, "Reserved"), Flag(0, "Hardware Error"), Word(1),
    Flag(7, "Flush Occurred"), Flag(6, "Role Change"), Bits(5, 1, "Reserved"), Flag(4, "Mode Change"),
    Flag(3, "Return Link Keys"), Flag(2, "PIN Code Request"), Flag(1, "Link Key Request"),
    Flag(0, "Link Key Notification"), Word(1), Flag(7, "Loopback Command"), Flag(6, "Data Buffer Overflow"),
    Flag(5, "Maximum Slots Change"), Flag(4, "Read Clock Offset Complete"), Flag(3, "Connection Packet Type Changed"),
    Flag(2, "QoS Violation"), Flag(1, "Page Scan Mode Change"), Flag(0, "Page Scan Repetition Mode Change"), Word(1),
    Flag(7, "Flow Specification Complete"), Flag(6, "Inquiry Result with RSSI"),
    Flag(5, "Read Remote Extended Features Complete"), Bits(0, 5, "Reserved"), Word(1), Bits(5, 3, "Reserved"),
    Flag(4, "Synchronous Connection Complete"), Flag(3, "Synchronous Connection Changed"),
    Flag(2, "Sniff Subrating Changed"), Flag(1, "Extended Inquiry Result"), Flag(0, "Encryption Key Refresh Complete"),
    Word(1), Flag(7, "IO Capability Request"), Flag(6, "IO Capability Response"), Flag(5, "User Confirmation Request"),
    Flag(4, "User Passkey Request"), Flag(3, "Remote OOB Data Request"), Flag(2, "Simple Pairing Complete"),
    Bits(1, 1, "Reserved"), Flag(0, "Supervision Timeout Changed"), Word(1), Flag(7, "Enhanced Flush Complete"),
    Bits(6, 1, "Reserved"), Flag(5, "User Passkey Notification"), Flag(4, "Keypress Notification"),
    Flag(3, "Remote Host Supported Features"), Flag(2, "LE Meta"), Bits(0, 2, "Reserved")});
constexpr auto kLowEnergyEvents = LittleRows<NoValues>({
    Word(1), Flag(7, "LE Connection Complete"), Flag(6, "LE Advertising Report"),
    Flag(5, "LE Connection Update Complete"), Flag(4, "LE Read Remote Features Complete"),
    Flag(3, "LE Long Term Key Request"), Flag(2, "LE Remote Connection Parameter Request"),
    Flag(1, "LE Data Length Change"), Flag(0, "LE Read Local P-256 Public Key Complete"), Word(1),
    Flag(7, "LE Generate DHKey Complete"), Flag(6, "LE Enhanced Connection Complete"),
    Flag(5, "LE Directed Advertising Report"), Flag(4, "LE PHY Update Complete"),
    Flag(3, "LE Extended Advertising Report"), Flag(2, "LE Periodic Advertising Sync Established"),
    Flag(1, "LE Periodic Advertising Report"), Flag(0, "LE Periodic Advertising Sync Lost"), Word(1),
    Flag(7, "LE Scan Timeout"), Flag(6, "LE Advertising Set Terminated"), Flag(5, "LE Scan Request Received"),
    Flag(4, "LE Channel Selection Algorithm"), Flag(3, "LE Connectionless IQ Report"),
    Flag(2, "LE Connection IQ Report"), Flag(1, "LE CTE Request Failed"),
    Flag(0, "LE Periodic Advertising Sync Transfer Received"), Word(1), Flag(7, "LE CIS Established"),
    Flag(6, "LE CIS Request"), Flag(5, "LE Create BIG Complete"), Flag(4, "LE Terminate BIG Complete"),
    Flag(3, "LE BIG Sync Established"), Flag(2, "LE BIG Sync Lost"), Flag(1, "LE Request Peer SCA Complete"),
    Flag(0, "LE Path Loss Threshold"), Word(1), Flag(7, "LE Transmit Power Reporting"),
    Flag(6, "LE BIGInfo Advertising Report"), Flag(5, "LE Subrate Change"), Bits(0, 5, "Reserved"), Word(1),
    Bits(0, 8, "Reserved"), Word(1), Bits(0, 8, "Reserved"), Word(1), Bits(0, 8, "Reserved")});
constexpr auto kLowEnergyFeatures = LittleRows<NoValues>({
    Word(1), Flag(7, "LE Encryption"), Flag(6, "Connection Parameters Request"), Flag(5, "Extended Reject Indication"),
    Flag(4, "Peripheral-Initiated Features Exchange"), Flag(3, "LE Ping"), Flag(2, "LE Data Packet Length Extension"),
    Flag(1, "LL Privacy"), Flag(0, "Extended Scanner Filter Policies"), Word(1), Flag(7, "LE 2M PHY"),
    Flag(6, "Stable Modulation Index, Transmitter"), Flag(5, "Stable Modulation Index, Receiver"),
    Flag(4, "LE Coded PHY"), Flag(3, "LE Extended Advertising"), Flag(2, "LE Periodic Advertising"),
    Flag(1, "Channel Selection Algorithm 2"), Flag(0, "LE Power Class 1"), Word(1),
    Flag(7, "Minimum Number of Used Channels"), Flag(6, "Connection CTE Request"), Flag(5, "Connection CTE Response"),
    Flag(4, "Connectionless CTE Transmitter"), Flag(3, "Connectionless CTE Receiver"),
    Flag(2, "Antenna Switching during Transmission (AoD)"), Flag(1, "Antenna Switching during Reception (AoA)"),
    Flag(0, "Receiving Constant Tone Extensions"), Word(1), Flag(7, "Sync Transfer, Sender"),
    Flag(6, "Sync Transfer, Recipient"), Flag(5, "Sleep Clock Accuracy Updates"),
    Flag(4, "Remote Public Key Validation"), Flag(3, "Connected Isochronous Stream, Central"),
    Flag(2, "Connected Isochronous Stream, Peripheral"), Flag(1, "Isochronous Broadcaster"),
    Flag(0, "Synchronized Receiver"), Word(1), Flag(7, "Connected Isochronous Stream, Host"),
    Flag(6, "LE Power Control Request"), Flag(5, "LE Power Change Indication"), Flag(4, "LE Path Loss Monitoring"),
    Flag(3, "Periodic Advertising ADI"), Flag(2, "Connection Subrating"), Flag(1, "Connection Subrating, Host"),
    Flag(0, "Channel Classification"), Word(1), Bits(0, 8, "Reserved"), Word(1), Bits(0, 8, "Reserved"), Word(1),
    Bits(0, 8, "Reserved")});
constexpr auto kPhys = LittleRows<NoValues>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "LE Coded"), Flag(6, "LE 2M"), Flag(7, "LE 1M")});
constexpr auto kPreferences = LittleRows<NoValues>({
    Word(1), Bits(0, 6, "Reserved"), Flag(6, "No Receive Preference"), Flag(7, "No Transmit Preference")});
constexpr auto kFlow = LittleRows<NoValues>({
    Number(1, "Flow Identifier"), Number(1, "Service Type", kFlowTypes), Number(2, "Maximum SDU Size", " bytes"),
    Number(4, "SDU Inter-Arrival Time", " us"), Number(4, "Access Latency", " us"), Number(4, "Flush Timeout", " us")});

constexpr auto kAdvertisingChannels = LittleRows<NoValues>({
    Word(1), Bits(0, 5, "Reserved"), Flag(5, "Channel 39"), Flag(6, "Channel 38"), Flag(7, "Channel 37")});
constexpr auto kChannels = LittleRows<NoValues>({
    Word(1), Flag(7, "Channel 0"), Flag(6, "Channel 1"), Flag(5, "Channel 2"), Flag(4, "Channel 3"), Flag(3,
    "Channel 4"), Flag(2, "Channel 5"), Flag(1, "Channel 6"), Flag(0, "Channel 7"), Word(1), Flag(7, "Channel 8"),
    Flag(6, "Channel 9"), Flag(5, "Channel 10"), Flag(4, "Channel 11"), Flag(3, "Channel 12"), Flag(2, "Channel 13"),
    Flag(1, "Channel 14"), Flag(0, "Channel 15"), Word(1), Flag(7, "Channel 16"), Flag(6, "Channel 17"), Flag(5,
    "Channel 18"), Flag(4, "Channel 19"), Flag(3, "Channel 20"), Flag(2, "Channel 21"), Flag(1, "Channel 22"), Flag(0,
    "Channel 23"), Word(1), Flag(7, "Channel 24"), Flag(6, "Channel 25"), Flag(5, "Channel 26"), Flag(4,
    "Channel 27"), Flag(3, "Channel 28"), Flag(2, "Channel 29"), Flag(1, "Channel 30"), Flag(0, "Channel 31"),
    Word(1), Flag(7, "Channel 32"), Flag(6, "Channel 33"), Flag(5, "Channel 34"), Flag(4, "Channel 35"), Flag(3,
    "Channel 36"), Bits(0, 3, "Reserved")});

struct Meaning {
  const char* name;
  int32_t size;   // bytes
  RowSpan<NoValues> rows;
};
constexpr Meaning kMeanings[] = {
    {"Packet Type", 2, kAclPackets}, {"Synchronous Packet Type", 2, kSynchronousPackets}, {"Voice Setting", 2, kVoice},
    {"Clock Offset", 2, kClock}, {"LMP Features", 8, kLinkFeatures}, {"Event Mask", 8, kEvents},
    {"LE Event Mask", 8, kLowEnergyEvents}, {"LE Features", 8, kLowEnergyFeatures}, {"Transmit PHYs", 1, kPhys},
    {"Receive PHYs", 1, kPhys}, {"Scanning PHYs", 1, kPhys}, {"Initiating PHYs", 1, kPhys},
    {"All PHYs", 1, kPreferences}, {"Host Features", 8, kLinkFeatures}, {"Channel Map", 1, kAdvertisingChannels},
    {"Channel Map", 5, kChannels},
    {"Transmit Flow", 16, kFlow}, {"Receive Flow", 16, kFlow}};

}  // namespace

void ShowHciBits(const Place& in, const Field& field, const char* parameter) {
  for (const Meaning& meaning : kMeanings) {
    if (meaning.size != field.length || std::strcmp(meaning.name, parameter) != 0) continue;
    Cursor c = CursorOver(field);
    NoValues none;
    ShowRows<NoValues>(in, c, meaning.rows, none);
  }
}

}  // namespace qxview
