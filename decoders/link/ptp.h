// What the two parts of the Precision Time Protocol's decoder share.
#pragma once
#include "core/rows.h"

namespace qxview {

// A management message's element, and the elements behind any message.
void ShowPtpElements(const Place& in, Cursor& c);

inline constexpr auto kPtpClassNames = SortedNames({
    {6, "Primary Reference Locked"}, {7, "Primary Reference in Holdover"}, {13, "Application Specific Locked"},
    {14, "Application Specific in Holdover"}, {52, "Degraded Primary Reference A"}, {58,
    "Degraded Application Specific A"},
    {187, "Degraded Primary Reference B"}, {193, "Degraded Application Specific B"}, {248, "Default"}, {255,
    "Slave Only"}});
inline constexpr auto kPtpAccuracyNames = SortedNames({
    {0x17, "within 1 ps"}, {0x18, "within 2.5 ps"}, {0x19, "within 10 ps"}, {0x1A, "within 25 ps"}, {0x1B,
    "within 100 ps"},
    {0x1C, "within 250 ps"}, {0x1D, "within 1 ns"}, {0x1E, "within 2.5 ns"}, {0x1F, "within 10 ns"},
    {0x20, "within 25 ns"}, {0x21, "within 100 ns"}, {0x22, "within 250 ns"}, {0x23, "within 1 us"}, {0x24,
    "within 2.5 us"},
    {0x25, "within 10 us"}, {0x26, "within 25 us"}, {0x27, "within 100 us"}, {0x28, "within 250 us"}, {0x29,
    "within 1 ms"},
    {0x2A, "within 2.5 ms"}, {0x2B, "within 10 ms"}, {0x2C, "within 25 ms"}, {0x2D, "within 100 ms"}, {0x2E,
    "within 250 ms"},
    {0x2F, "within 1 s"}, {0x30, "within 10 s"}, {0x31, "more than 10 s"}, {0xFE, "Unknown"}});
inline constexpr auto kPtpSourceNames = SortedNames({
    {0x10, "Atomic Clock"}, {0x20, "GNSS"}, {0x30, "Terrestrial Radio"}, {0x39, "Serial Time Code"}, {0x40, "PTP"},
    {0x50, "NTP"},
    {0x60, "Hand Set"}, {0x90, "Other"}, {0xA0, "Internal Oscillator"}});

// Of version 1: what a management message's key says of its parameters, to the cursor's end.
void ShowPtp1Parameters(const Place& in, Cursor& c, uint32_t key);
inline constexpr auto kPtp1TechnologyNames = SortedNames({
    {0, "Closed System"}, {1, "IEEE 802.3 (Ethernet)"}, {2, "FOUNDATION Fieldbus"}, {3, "PROFIBUS"}, {4, "LonTalk"},
    {5, "DeviceNet"},
    {6, "SDS"}, {7, "ControlNet"}, {8, "CANopen"}, {243, "IEEE 1394"}, {244, "IEEE 802.11a"}, {245, "IEEE Wireless"},
    {246, "InfiniBand"}, {247, "Bluetooth"}, {248, "IEEE 802.15.1"}, {249, "IEEE 1451.3"}, {250, "IEEE 1451.5"}, {251,
    "USB"},
    {252, "ISA"}, {253, "PCI"}, {254, "VXI"}, {255, "Default"}});
inline constexpr auto kPtp1StratumNames = SortedNames({
    {0, "Set by Master"}, {1, "Primary Reference"}, {2, "Secondary Reference"}, {3, "Secondary, May Issue"}, {4,
    "Default"},
    {255, "Never Best Master"}});

}  // namespace qxview
