// The names of SCCP's messages: 0x0000 on from the phone, 0x0081 and 0x0100 on from the call manager.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kSccpMessageNames = SortedNames({
    {0x0000, "Keep Alive"}, {0x0001, "Register"}, {0x0002, "IP Port"}, {0x0003, "Keypad Button"},
    {0x0004, "Enbloc Call"}, {0x0005, "Stimulus"}, {0x0006, "Off Hook"}, {0x0007, "On Hook"}, {0x0008, "Hook Flash"},
    {0x0009, "Forward Status Request"}, {0x000A, "Speed Dial Status Request"}, {0x000B, "Line Status Request"},
    {0x000C, "Configuration Status Request"}, {0x000D, "Time Date Request"}, {0x000E, "Button Template Request"},
    {0x000F, "Version Request"}, {0x0010, "Capabilities Response"}, {0x0012, "Server Request"}, {0x0020, "Alarm"},
    {0x0021, "Multicast Media Reception Ack"}, {0x0022, "Open Receive Channel Ack"},
    {0x0023, "Connection Statistics Response"}, {0x0024, "Off Hook With Calling Party"},
    {0x0025, "Soft Key Set Request"}, {0x0026, "Soft Key Event"}, {0x0027, "Unregister"},
    {0x0028, "Soft Key Template Request"}, {0x0029, "Register Token Request"}, {0x002A, "Media Transmission Failure"},
    {0x002B, "Headset Status"}, {0x002C, "Media Resource Notification"}, {0x002D, "Register Available Lines"},
    {0x002E, "Device To User Data"}, {0x002F, "Device To User Data Response"}, {0x0030, "Update Capabilities"},
    {0x0032, "Clear Conference"}, {0x0033, "Service URL Status Request"}, {0x0034, "Feature Status Request"},
    {0x0081, "Register Ack"}, {0x0082, "Start Tone"}, {0x0083, "Stop Tone"}, {0x0085, "Set Ringer"},
    {0x0086, "Set Lamp"}, {0x0087, "Set Hook Flash Detect"}, {0x0088, "Set Speaker Mode"},
    {0x0089, "Set Microphone Mode"}, {0x008A, "Start Media Transmission"}, {0x008B, "Stop Media Transmission"},
    {0x008F, "Call Information"}, {0x0090, "Forward Status"}, {0x0091, "Speed Dial Status"}, {0x0092, "Line Status"},
    {0x0093, "Configuration Status"}, {0x0094, "Define Time and Date"}, {0x0095, "Start Session Transmission"},
    {0x0096, "Stop Session Transmission"}, {0x0097, "Button Template"}, {0x0098, "Version"}, {0x0099, "Display Text"},
    {0x009A, "Clear Display"}, {0x009B, "Capabilities Request"}, {0x009D, "Register Reject"},
    {0x009E, "Server Response"}, {0x009F, "Reset"}, {0x0100, "Keep Alive Ack"},
    {0x0101, "Start Multicast Media Reception"}, {0x0102, "Start Multicast Media Transmission"},
    {0x0103, "Stop Multicast Media Reception"}, {0x0104, "Stop Multicast Media Transmission"},
    {0x0105, "Open Receive Channel"}, {0x0106, "Close Receive Channel"}, {0x0107, "Connection Statistics Request"},
    {0x0108, "Soft Key Template"}, {0x0109, "Soft Key Set"}, {0x0110, "Select Soft Keys"}, {0x0111, "Call State"},
    {0x0112, "Display Prompt Status"}, {0x0113, "Clear Prompt Status"}, {0x0114, "Display Notify"},
    {0x0115, "Clear Notify"}, {0x0116, "Activate Call Plane"}, {0x0117, "Deactivate Call Plane"},
    {0x0118, "Unregister Ack"}, {0x0119, "Backspace"}, {0x011A, "Register Token Ack"},
    {0x011B, "Register Token Reject"}, {0x011C, "Start Media Failure Detection"}, {0x011D, "Dialed Number"},
    {0x011E, "User To Device Data"}, {0x011F, "Feature Status"}, {0x0120, "Display Priority Notify"},
    {0x0121, "Clear Priority Notify"}, {0x0122, "Start Announcement"}, {0x0123, "Stop Announcement"},
    {0x0124, "Announcement Finish"}, {0x0127, "Notify DTMF Tone"}, {0x0128, "Send DTMF Tone"},
    {0x012F, "Service URL Status"}, {0x0130, "Call Select Status"}, {0x0142, "Configuration Status v2"},
    {0x0143, "Display Notify v2"}, {0x0144, "Display Priority Notify v2"}, {0x0145, "Display Prompt Status v2"},
    {0x0146, "Feature Status v2"}, {0x0147, "Line Status v2"}, {0x0148, "Service URL Status v2"},
    {0x0149, "Speed Dial Status v2"}, {0x014A, "Call Information v2"}, {0x0154, "Start Media Transmission Ack"},
});

}  // namespace qxview
