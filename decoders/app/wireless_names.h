// The names of 802.11 frames (IEEE 802.11-2016, 9.2.4.1.3).
#pragma once
#include "core/name_table.h"

namespace qxview {

// By type (bits 0 and 1) and subtype (bits 2 to 5): the first byte of the frame control field without its version bits.
inline constexpr auto kWirelessFrameNames = SortedNames({
    {0x00, "Association Request"}, {0x02, "Data"}, {0x04, "Association Response"},
    {0x06, "Data + CF-Ack"}, {0x08, "Reassociation Request"}, {0x09, "Trigger"}, {0x0A, "Data + CF-Poll"},
    {0x0C, "Reassociation Response"}, {0x0E, "Data + CF-Ack + CF-Poll"}, {0x10, "Probe Request"},
    {0x11, "Beamforming Report Poll"}, {0x12, "Null"}, {0x14, "Probe Response"},
    {0x15, "VHT NDP Announcement"}, {0x16, "CF-Ack"}, {0x18, "Timing Advertisement"},
    {0x19, "Control Frame Extension"}, {0x1A, "CF-Poll"}, {0x1D, "Control Wrapper"}, {0x1E, "CF-Ack + CF-Poll"},
    {0x20, "Beacon"}, {0x21, "Block Ack Request"}, {0x22, "QoS Data"}, {0x24, "ATIM"}, {0x25, "Block Ack"},
    {0x26, "QoS Data + CF-Ack"}, {0x28, "Disassociation"}, {0x29, "PS-Poll"}, {0x2A, "QoS Data + CF-Poll"},
    {0x2C, "Authentication"}, {0x2D, "Request To Send"}, {0x2E, "QoS Data + CF-Ack + CF-Poll"},
    {0x30, "Deauthentication"}, {0x31, "Clear To Send"}, {0x32, "QoS Null"}, {0x34, "Action"}, {0x35, "Acknowledgement"},
    {0x38, "Action No Ack"}, {0x39, "CF-End"}, {0x3A, "QoS CF-Poll"}, {0x3D, "CF-End + CF-Ack"},
    {0x3E, "QoS CF-Ack + CF-Poll"},
});

// The name of the frame whose frame control field starts with this byte.
inline const char* WirelessFrameName(uint32_t frameControl) {
  return LookupName(kWirelessFrameNames, frameControl >> 2 & 0x3F);
}

}  // namespace qxview
