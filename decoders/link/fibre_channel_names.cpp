#include "decoders/link/fibre_channel_names.h"

#include "core/name_table.h"

namespace qxview {
namespace {

// Delimiters by the last two bytes of their ordered sets; the second byte of an end tells the invalid ones.
constexpr auto kStarts = SortedNames({{0x1717, "SOFc1"}, {0x1919, "SOFc4"}, {0x3535, "SOFn2"}, {0x3636, "SOFn3"},
                                      {0x3737, "SOFn1"}, {0x3939, "SOFn4"}, {0x5555, "SOFi2"}, {0x5656, "SOFi3"},
                                      {0x5757, "SOFi1"}, {0x5858, "SOFf"}, {0x5959, "SOFi4"}});
constexpr auto kClasses = SortedNames({{0x1717, " Class 1"}, {0x1919, " Class 4"}, {0x3535, " Class 2"},
                                       {0x3636, " Class 3"}, {0x3737, " Class 1"}, {0x3939, " Class 4"},
                                       {0x5555, " Class 2"}, {0x5656, " Class 3"}, {0x5757, " Class 1"},
                                       {0x5858, " Class F"}, {0x5959, " Class 4"}});
constexpr auto kEnds = SortedNames({{0x7575, "EOFt"}, {0x9595, "EOFdt"}, {0x9999, "EOFrt"}, {0xD5D5, "EOFn"},
                                    {0xF5F5, "EOFa"}});
constexpr auto kInvalidEnds = SortedNames({{0x9595, "EOFdti"}, {0x9999, "EOFrti"}, {0xD5D5, "EOFni"}});

constexpr auto kRouting = SortedNames({{0x0, "Device Data"}, {0x2, "Extended Link Service"}, {0x3, "FC-4 Link Data"},
                                       {0x4, "Video Data"}, {0x5, "Extended Header"}, {0x8, "Basic Link Service"},
                                       {0xC, "Link Control"}});
constexpr auto kInformation = SortedNames({
    {0x0, "Uncategorized Information"}, {0x1, "Solicited Data"}, {0x2, "Unsolicited Control"},
    {0x3, "Solicited Control"}, {0x4, "Unsolicited Data"}, {0x5, "Data Descriptor"}, {0x6, "Unsolicited Command"},
    {0x7, "Command Status"}});
constexpr auto kLinkServices = SortedNames({
    {0x80, "NOP"}, {0x81, "ABTS"}, {0x82, "RMC"}, {0x84, "BA_ACC"}, {0x85, "BA_RJT"}, {0x86, "PRMT"},
    {0xC0, "ACK_1"}, {0xC1, "ACK_0"}, {0xC2, "P_RJT"}, {0xC3, "F_RJT"}, {0xC4, "P_BSY"}, {0xC5, "F_BSY Data"},
    {0xC6, "F_BSY Link Control"}, {0xC7, "LCR"}, {0xC8, "NTY"}, {0xC9, "END"}});

constexpr auto kTypes = SortedNames({
    {0x00, "Basic Link Service"}, {0x01, "Extended Link Service"}, {0x04, "LLC/SNAP"}, {0x05, "IP over FC"},
    {0x08, "SCSI FCP"}, {0x09, "SCSI GPP"}, {0x0A, "IPI-3 Master"}, {0x0B, "IPI-3 Slave"}, {0x0C, "IPI-3 Peer"},
    {0x18, "SBCCS Channel"}, {0x19, "SBCCS Control Unit"}, {0x1B, "FC-SB Channel"}, {0x1C, "FC-SB Control Unit"},
    {0x20, "Common Transport"}, {0x22, "Switch Internal Link Service"}, {0x23, "Arbitrated Loop"}, {0x24, "SNMP"},
    {0x28, "NVMe"}, {0x40, "HIPPI"}, {0x48, "MAC"}, {0x58, "Virtual Interface"}, {0x5B, "Fabric Application"}});

constexpr auto kWellKnown = SortedNames({
    {0xFFFFF0, "N_Port Controller"}, {0xFFFFF4, "Event Server"}, {0xFFFFF5, "Multicast Server"},
    {0xFFFFF6, "Clock Synchronization Server"}, {0xFFFFF7, "Key Distribution Server"}, {0xFFFFF8, "Alias Server"},
    {0xFFFFF9, "Quality of Service Facilitator"}, {0xFFFFFA, "Management Server"}, {0xFFFFFB, "Time Server"},
    {0xFFFFFC, "Directory Server"}, {0xFFFFFD, "Fabric Controller"}, {0xFFFFFE, "Fabric F_Port"},
    {0xFFFFFF, "Broadcast"}});

}  // namespace

const char* StartOfFrameName(uint32_t orderedSet) { return LookupName(kStarts, orderedSet & 0xFFFF); }
const char* FrameClassName(uint32_t orderedSet) { return LookupName(kClasses, orderedSet & 0xFFFF, ""); }

const char* EndOfFrameName(uint32_t orderedSet) {
  const uint32_t second = orderedSet >> 16 & 0xFF;
  const bool invalid = second == 0x8A || second == 0xAA;
  return invalid ? LookupName(kInvalidEnds, orderedSet & 0xFFFF) : LookupName(kEnds, orderedSet & 0xFFFF);
}

const char* RoutingName(uint32_t routingControl) { return LookupName(kRouting, routingControl >> 4, "Reserved"); }

const char* InformationName(uint32_t routingControl) {
  return routingControl >= 0x80 ? LookupName(kLinkServices, routingControl)
                                : LookupName(kInformation, routingControl & 0x0F, "Reserved");
}

const char* DataTypeName(uint32_t type) { return LookupName(kTypes, type); }
const char* WellKnownAddressName(uint32_t address) { return LookupName(kWellKnown, address, nullptr); }

}  // namespace qxview
