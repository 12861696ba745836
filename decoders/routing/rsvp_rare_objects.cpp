// Objects of RSVP that few networks send: of shared media (RFC 2814), diagnosis (RFC 2745), alarms (RFC 4783), associations
// with more identifiers (RFC 6780), calls (RFC 6001), generic aggregates (RFC 4860), traffic of optical channels (RFC 7139,
// RFC 7792), and the attributes of paths (RFC 5420, RFC 6060, RFC 7260).
#include "decoders/routing/rsvp.h"

namespace qxview {
namespace {

// --- a manager of bandwidth for a shared subnet (RFC 2814) ---

constexpr auto kManager4 = Rows<Rsvp>({IPv4("DSBM Address").Note(", %s")});
constexpr auto kManager6 = Rows<Rsvp>({IPv6("DSBM Address").Note(", %s")});
constexpr auto kPriority = Rows<Rsvp>({Hex(3, "Reserved"), Number(1, "SBM Priority").Note(", %u")});
constexpr auto kTimers = Rows<Rsvp>({
    Hex(2, "Reserved"), Number(1, "Dead Interval", " seconds"), Number(1, "Refresh Interval", " seconds")});
constexpr auto kHopMac = Rows<Rsvp>({Mac("Previous Hop MAC Address").Note(", %s"), Hex(2, "Reserved")});
constexpr auto kNextMac = Rows<Rsvp>({Mac("Next Hop MAC Address").Note(", %s"), Hex(2, "Reserved")});
constexpr auto kNext4 = Rows<Rsvp>({IPv4("Next Hop Address").Note(", %s")});
constexpr auto kNext6 = Rows<Rsvp>({IPv6("Next Hop Address").Note(", %s")});
constexpr auto kLoopback4 = Rows<Rsvp>({IPv4("LAN Loopback Address").Note(", %s")});
constexpr auto kLoopback6 = Rows<Rsvp>({IPv6("LAN Loopback Address").Note(", %s")});
constexpr auto kTrafficClass = Rows<Rsvp>({Word(4), Bits(0, 29, "Reserved"), Bits(29, 3, "User Priority").Note(", %u")});

// --- associations with a global source and identifiers of any length ---

constexpr auto kAssociationNames = SortedNames({
    {0, "Reserved"}, {1, "Recovery"}, {2, "Resource Sharing"}, {3, "Double-Sided Associated Bidirectional"},
    {4, "Single-Sided Associated Bidirectional"}});
constexpr auto kAssociation4 = Rows<Rsvp>({
    Number(2, "Association Type", kAssociationNames), Number(2, "Association ID").Note(", %u"),
    IPv4("Association Source").Note(", %s"), Number(4, "Global Association Source"), Bytes(0, "Extended Association ID")});
constexpr auto kAssociation6 = Rows<Rsvp>({
    Number(2, "Association Type", kAssociationNames), Number(2, "Association ID").Note(", %u"),
    IPv6("Association Source").Note(", %s"), Number(4, "Global Association Source"), Bytes(0, "Extended Association ID")});

// --- alarms: as errors ---

constexpr auto kNode4 = Rows<Rsvp>({IPv4("Alarm Node Address").Note(", %s")});
constexpr auto kNode6 = Rows<Rsvp>({IPv6("Alarm Node Address").Note(", %s")});

// --- aggregates (RFC 4860) ---

constexpr auto kAggregate4 = Rows<Rsvp>({
    IPv4("Destination Address").Note(", %s"), Hex(1, "Reserved"), Hex(1, "Aggregate Flags"), Hex(2, "PHB ID"),
    Hex(2, "Reserved 2"), Number(2, "Virtual Destination Port"), Hex(4, "Extended Virtual Destination Port")});
constexpr auto kAggregate6 = Rows<Rsvp>({
    IPv6("Destination Address").Note(", %s"), Hex(1, "Reserved"), Hex(1, "Aggregate Flags"), Hex(2, "PHB ID"),
    Hex(2, "Reserved 2"), Number(2, "Virtual Destination Port"), IPv6("Extended Virtual Destination Port")});

// --- traffic of optical channels ---

constexpr auto kSignalNames = SortedNames({
    {1, "ODU1"}, {2, "ODU2"}, {3, "ODU3"}, {4, "ODU4"}, {6, "OCh 2.5 Gbit/s"}, {7, "OCh 10 Gbit/s"},
    {8, "OCh 40 Gbit/s"}, {9, "OCh 100 Gbit/s"}, {10, "ODU0"}, {11, "ODU2e"}, {20, "ODUflex(CBR)"},
    {21, "ODUflex(GFP-F), Resizable"}, {22, "ODUflex(GFP-F), Not Resizable"}});
constexpr auto kChannel = Rows<Rsvp>({
    Number(1, "Signal Type", kSignalNames).Note(", %s"), Hex(3, "Reserved"), Number(2, "Number of Virtual Components"),
    Number(2, "Multiplier"), Float(4, "Bit Rate")});
constexpr auto kSlot = Rows<Rsvp>({Number(2, "Slot Width").Note(", m = %u"), Hex(2, "Reserved")});

// --- attributes of paths ---

constexpr auto kAttributeMasks = SortedNames({
    {0x00040000, "Loopback"}, {0x00080000, "SRLG Collection"}, {0x00100000, "OAM MIP Entities Desired"},
    {0x00200000, "OAM MEP Entities Desired"}, {0x00400000, "Entropy Label Capability"},
    {0x00800000, "Out-of-Band Mapping"}, {0x01000000, "Non-PHP Behavior"}, {0x02000000, "Pre-Planned LSP"},
    {0x04000000, "LSP Stitching Desired"}, {0x08000000, "Contiguous LSP"}, {0x10000000, "LSP Integrity Required"},
    {0x20000000, "Segment-Based Re-Routing"}, {0x40000000, "Boundary Re-Routing"},
    {0x80000000, "End-to-End Re-Routing"}});
constexpr auto kFlags = Rows<Rsvp>({Flags(4, "Attribute Flags", kAttributeMasks)});
void ShowFlags(const Place& in, Cursor& c, Rsvp& rsvp) {
  static constexpr auto kMore = Rows<Rsvp>({Hex(4, "More Attribute Flags")});
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Rsvp>(in, c, kMore, rsvp);
}
constexpr auto kMaintenance = Rows<Rsvp>({Number(1, "OAM Type").Note(", %u"), Hex(3, "Reserved")});
constexpr auto kMaintenanceFlags = Rows<Rsvp>({
    Hex(4, "OAM Function Flags"), Flag(0, "Continuity Check"), Flag(1, "Connectivity Verification"),
    Flag(2, "Fault Management Signals"), Flag(3, "Performance Monitoring, Loss"),
    Flag(4, "Performance Monitoring, Delay"), Flag(5, "Throughput Measurement")});
constexpr auto kMaintenanceParts = Choices<Rsvp>({{1, "OAM Function Flags", kMaintenanceFlags}});
void ShowMaintenance(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowElements<Rsvp>(in, c, kRsvpForm, "OAM Sub-TLV", kMaintenanceParts, rsvp);
}
constexpr auto kPathAttributes = Choices<Rsvp>({
    {1, "Attribute Flags", kFlags, ShowFlags}, {2, "Service ID"},
    {3, "OAM Configuration", kMaintenance, ShowMaintenance}});

constexpr auto kObjects = Choices<Rsvp>({
    {0x0111, "Generic Aggregate IPv4", kAggregate4}, {0x0112, "Generic Aggregate IPv6", kAggregate6},
    {0x0907, "OTN-TDM", kChannel}, {0x0908, "SSON", kSlot}, {0x0C07, "OTN-TDM", kChannel}, {0x0C08, "SSON", kSlot},
    {0x2A01, "IPv4", kManager4}, {0x2A02, "IPv6", kManager6}, {0x2B01, "SBM Priority", kPriority},
    {0x2C01, "DSBM Timer Intervals", kTimers}, {0xA101, "Canonical MAC Address", kHopMac},
    {0xA201, "Canonical MAC Address", kNextMac}, {0xA301, "IPv4", kNext4}, {0xA302, "IPv6", kNext6},
    {0xA401, "IPv4", kLoopback4}, {0xA402, "IPv6", kLoopback6}, {0xA501, "Traffic Class", kTrafficClass},
    {0xC603, "IPv4 IF_ID", kNode4, ShowRsvpErrorSpec}, {0xC604, "IPv6 IF_ID", kNode6, ShowRsvpErrorSpec},
    {0xC703, "Extended IPv4", kAssociation4}, {0xC704, "Extended IPv6", kAssociation6},
    {0xCA01, "Call Attributes", {}, ShowRsvpPathAttributes}});

}  // namespace

const Choice<Rsvp>* FindRareRsvpObject(uint32_t kind) { return FindChoice<Rsvp>(kObjects, kind); }

void ShowRsvpPathAttributes(const Place& in, Cursor& c, Rsvp& rsvp) {
  ShowElements<Rsvp>(in, c, kRsvpForm, "LSP Attribute", kPathAttributes, rsvp);
}

}  // namespace qxview
