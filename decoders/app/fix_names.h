// The names of FIX messages by the value of field 35, one or two characters.
#pragma once
#include "core/name_table.h"
#include "decoders/app/summary_text.h"

namespace qxview {

constexpr uint32_t FixKey(char first, char second = 0) {
  return static_cast<uint32_t>(static_cast<uint8_t>(first)) |
         static_cast<uint32_t>(static_cast<uint8_t>(second)) << 8;
}

// Keyed by the first character, the second one (or zero) above it.
inline constexpr auto kFixMessageNames = SortedNames({
    {FixKey('0'), "Heartbeat"}, {FixKey('1'), "Test Request"}, {FixKey('2'), "Resend Request"},
    {FixKey('3'), "Reject"}, {FixKey('4'), "Sequence Reset"}, {FixKey('5'), "Logout"},
    {FixKey('6'), "Indication of Interest"}, {FixKey('7'), "Advertisement"}, {FixKey('8'), "Execution Report"},
    {FixKey('9'), "Order Cancel Reject"}, {FixKey('A'), "Logon"}, {FixKey('B'), "News"}, {FixKey('C'), "Email"},
    {FixKey('D'), "New Order - Single"}, {FixKey('E'), "New Order - List"}, {FixKey('F'), "Order Cancel Request"},
    {FixKey('G'), "Order Cancel/Replace Request"}, {FixKey('H'), "Order Status Request"},
    {FixKey('J'), "Allocation Instruction"}, {FixKey('K'), "List Cancel Request"}, {FixKey('L'), "List Execute"},
    {FixKey('M'), "List Status Request"}, {FixKey('N'), "List Status"}, {FixKey('P'), "Allocation Instruction Ack"},
    {FixKey('Q'), "Don't Know Trade"}, {FixKey('R'), "Quote Request"}, {FixKey('S'), "Quote"},
    {FixKey('T'), "Settlement Instructions"}, {FixKey('V'), "Market Data Request"},
    {FixKey('W'), "Market Data - Snapshot/Full Refresh"}, {FixKey('X'), "Market Data - Incremental Refresh"},
    {FixKey('Y'), "Market Data Request Reject"}, {FixKey('Z'), "Quote Cancel"}, {FixKey('a'), "Quote Status Request"},
    {FixKey('b'), "Mass Quote Acknowledgement"}, {FixKey('c'), "Security Definition Request"},
    {FixKey('d'), "Security Definition"}, {FixKey('e'), "Security Status Request"}, {FixKey('f'), "Security Status"},
    {FixKey('g'), "Trading Session Status Request"}, {FixKey('h'), "Trading Session Status"},
    {FixKey('i'), "Mass Quote"}, {FixKey('j'), "Business Message Reject"}, {FixKey('k'), "Bid Request"},
    {FixKey('l'), "Bid Response"}, {FixKey('m'), "List Strike Price"}, {FixKey('n'), "XML Message"},
    {FixKey('o'), "Registration Instructions"}, {FixKey('p'), "Registration Instructions Response"},
    {FixKey('q'), "Order Mass Cancel Request"}, {FixKey('r'), "Order Mass Cancel Report"},
    {FixKey('s'), "New Order - Cross"}, {FixKey('t'), "Cross Order Cancel/Replace Request"},
    {FixKey('u'), "Cross Order Cancel Request"}, {FixKey('v'), "Security Type Request"},
    {FixKey('w'), "Security Types"}, {FixKey('x'), "Security List Request"}, {FixKey('y'), "Security List"},
    {FixKey('z'), "Derivative Security List Request"},
    {FixKey('A', 'A'), "Derivative Security List"}, {FixKey('B', 'A'), "Collateral Report"},
    {FixKey('A', 'B'), "New Order - Multileg"}, {FixKey('B', 'B'), "Collateral Inquiry"},
    {FixKey('A', 'C'), "Multileg Order Cancel/Replace"},
    {FixKey('B', 'C'), "Network Counterparty System Status Request"},
    {FixKey('A', 'D'), "Trade Capture Report Request"},
    {FixKey('B', 'D'), "Network Counterparty System Status Response"},
    {FixKey('A', 'E'), "Trade Capture Report"}, {FixKey('B', 'E'), "User Request"},
    {FixKey('A', 'F'), "Order Mass Status Request"}, {FixKey('B', 'F'), "User Response"},
    {FixKey('A', 'G'), "Quote Request Reject"}, {FixKey('B', 'G'), "Collateral Inquiry Ack"},
    {FixKey('A', 'H'), "RFQ Request"}, {FixKey('B', 'H'), "Confirmation Request"},
    {FixKey('A', 'I'), "Quote Status Report"}, {FixKey('A', 'J'), "Quote Response"},
    {FixKey('A', 'K'), "Confirmation"}, {FixKey('A', 'L'), "Position Maintenance Request"},
    {FixKey('A', 'M'), "Position Maintenance Report"}, {FixKey('A', 'N'), "Request For Positions"},
    {FixKey('A', 'O'), "Request For Positions Ack"}, {FixKey('A', 'P'), "Position Report"},
    {FixKey('A', 'Q'), "Trade Capture Report Request Ack"}, {FixKey('A', 'R'), "Trade Capture Report Ack"},
    {FixKey('A', 'S'), "Allocation Report"}, {FixKey('A', 'T'), "Allocation Report Ack"},
    {FixKey('A', 'U'), "Confirmation Ack"}, {FixKey('A', 'V'), "Settlement Instruction Request"},
    {FixKey('A', 'W'), "Assignment Report"}, {FixKey('A', 'X'), "Collateral Request"},
    {FixKey('A', 'Y'), "Collateral Assignment"}, {FixKey('A', 'Z'), "Collateral Response"},
});

// Null for a type that is not in the table.
inline const char* FixMessageName(const TextSlice& type) {
  if (type.length < 1 || type.length > 2) return nullptr;
  return LookupName(kFixMessageNames, FixKey(type.text[0], type.length > 1 ? type.text[1] : '\0'), nullptr);
}

}  // namespace qxview
