// Telnet (RFC 854): the names of its commands and options, and what is asked between its files.
#pragma once
#include "core/rows.h"

namespace qxview {

constexpr uint8_t kTelnetIac = 255, kTelnetSubnegotiation = 250, kTelnetSubnegotiationEnd = 240;
constexpr uint8_t kFirstTelnetCommandWithOption = 250, kLastTelnetCommandWithOption = 254;

inline constexpr auto kTelnetCommandNames = SortedNames({
    {236, "End of File"},       {237, "Suspend Process"},      {238, "Abort Process"},  {239, "End of Record"},
    {240, "Subnegotiation End"}, {241, "No Operation"},        {242, "Data Mark"},      {243, "Break"},
    {244, "Interrupt Process"}, {245, "Abort Output"},         {246, "Are You There"},  {247, "Erase Character"},
    {248, "Erase Line"},        {249, "Go Ahead"},             {250, "Subnegotiation"}, {251, "Will"},
    {252, "Won't"},             {253, "Do"},                   {254, "Don't"},
});

inline constexpr auto kTelnetOptionNames = SortedNames({
    {0, "Binary Transmission"}, {1, "Echo"}, {2, "Reconnection"}, {3, "Suppress Go Ahead"},
    {4, "Approximate Message Size Negotiation"}, {5, "Status"}, {6, "Timing Mark"},
    {7, "Remote Controlled Trans and Echo"}, {8, "Output Line Width"}, {9, "Output Page Size"},
    {10, "Output Carriage-Return Disposition"}, {11, "Output Horizontal Tab Stops"},
    {12, "Output Horizontal Tab Disposition"}, {13, "Output Formfeed Disposition"}, {14, "Output Vertical Tabstops"},
    {15, "Output Vertical Tab Disposition"}, {16, "Output Linefeed Disposition"}, {17, "Extended ASCII"}, {18, "Logout"},
    {19, "Byte Macro"}, {20, "Data Entry Terminal"}, {21, "SUPDUP"}, {22, "SUPDUP Output"}, {23, "Send Location"},
    {24, "Terminal Type"}, {25, "End of Record"}, {26, "TACACS User Identification"}, {27, "Output Marking"},
    {28, "Terminal Location Number"}, {29, "Telnet 3270 Regime"}, {30, "X.3 PAD"},
    {31, "Negotiate About Window Size"}, {32, "Terminal Speed"}, {33, "Remote Flow Control"}, {34, "Linemode"},
    {35, "X Display Location"}, {36, "Environment"}, {37, "Authentication"}, {38, "Encryption"},
    {39, "New Environment"}, {40, "TN3270E"}, {41, "XAUTH"}, {42, "Charset"}, {43, "Remote Serial Port"},
    {44, "Com Port Control"}, {45, "Suppress Local Echo"}, {46, "Start TLS"}, {47, "Kermit"}, {48, "Send-URL"},
    {49, "Forward X"}, {138, "Pragma Logon"}, {139, "SSPI Logon"}, {140, "Pragma Heartbeat"},
    {255, "Extended Options List"},
});

// The name of an option, of those among them that no registry has.
const char* TelnetOptionName(uint32_t option);

// What a direction of a connection has gone over to, and the packet that did it. What a packet shows does not depend on
// its having been shown before.
struct TelnetMode {
  int64_t packet;
  uint32_t isCompressed, isEncrypted;
};

// What a subnegotiation of `option` holds, with doubled octets of 255 undone, and the mode that it goes over to.
struct Telnet {
  Field command, option, separator, version;
  bool isCompressed, isEncrypted;
};
void ShowTelnetSubnegotiation(const Place& in, Cursor& c, Telnet& telnet);

}  // namespace qxview
