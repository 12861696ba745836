// Data centre bridging in LLDP: the elements of IEEE 802.1Q (annex D: transmission selection, priority flow control,
// application priorities), and the two forms from before it, each with a list of elements of its own in one of LLDP's.
#include "decoders/link/lldp.h"

namespace qxview {
namespace {

constexpr auto kAlgorithmNames = SortedNames({
    {0, "Strict Priority"}, {1, "Credit-Based Shaper"}, {2, "Enhanced Transmission Selection"}, {255, "Vendor Specific"}});
constexpr auto kSelectorNames = SortedNames({
    {0, "Reserved"}, {1, "Ethertype"}, {2, "TCP or SCTP Port"}, {3, "UDP or DCCP Port"}, {4, "TCP, SCTP, UDP or DCCP Port"},
    {5, "DSCP"}});
constexpr auto kApplicationNames = SortedNames({
    {860, "iSCSI"}, {3260, "iSCSI"}, {0x8906, "FCoE"}, {0x8914, "FIP"}, {0x8915, "RoCE"}});
constexpr auto kCeeSelectorNames = SortedNames({{0, "Ethertype"}, {1, "TCP or UDP Port"}});

constexpr auto kPriorities = Rows<Lldp>({
    Hex(4, "Priority Assignment"), Bits(0, 4, "Priority 0 Class"), Bits(4, 4, "Priority 1 Class"), Bits(8, 4, "Priority 2 Class"),
    Bits(12, 4, "Priority 3 Class"), Bits(16, 4, "Priority 4 Class"), Bits(20, 4, "Priority 5 Class"),
    Bits(24, 4, "Priority 6 Class"), Bits(28, 4, "Priority 7 Class")});
constexpr auto kBandwidths = Rows<Lldp>({
    Number(1, "Bandwidth of Class 0", " percent"), Number(1, "Bandwidth of Class 1", " percent"),
    Number(1, "Bandwidth of Class 2", " percent"), Number(1, "Bandwidth of Class 3", " percent"),
    Number(1, "Bandwidth of Class 4", " percent"), Number(1, "Bandwidth of Class 5", " percent"),
    Number(1, "Bandwidth of Class 6", " percent"), Number(1, "Bandwidth of Class 7", " percent")});
constexpr auto kAlgorithms = Rows<Lldp>({
    Number(1, "Algorithm of Class 0", kAlgorithmNames), Number(1, "Algorithm of Class 1", kAlgorithmNames),
    Number(1, "Algorithm of Class 2", kAlgorithmNames), Number(1, "Algorithm of Class 3", kAlgorithmNames),
    Number(1, "Algorithm of Class 4", kAlgorithmNames), Number(1, "Algorithm of Class 5", kAlgorithmNames),
    Number(1, "Algorithm of Class 6", kAlgorithmNames), Number(1, "Algorithm of Class 7", kAlgorithmNames)});
constexpr auto kMaximumNumberOfTrafficClassesNames = SortedNames({
    {0, "8"}, {1, "1"}, {2, "2"}, {3, "3"}, {4, "4"}, {5, "5"}, {6, "6"}, {7, "7"}});
constexpr auto kConfiguration = Rows<Lldp>({
    Hex(1, "ETS Flags"), Flag(0, "Willing"), Flag(1, "Credit-Based Shaper"), Bits(2, 3, "Reserved"),
    Bits(5, 3, "Maximum Number of Traffic Classes", kMaximumNumberOfTrafficClassesNames)});
constexpr auto kRecommendation = Rows<Lldp>({Hex(1, "Reserved")});
constexpr auto kFlowControl = Rows<Lldp>({
    Hex(1, "PFC Flags"), Flag(0, "Willing"), Flag(1, "MACsec Bypass Capability"), Bits(2, 2, "Reserved"),
    Bits(4, 4, "Maximum Number of PFC Classes"), Hex(1, "PFC Enable"), Flag(0, "PFC of Priority 7"), Flag(1, "PFC of Priority 6"),
    Flag(2, "PFC of Priority 5"), Flag(3, "PFC of Priority 4"), Flag(4, "PFC of Priority 3"), Flag(5, "PFC of Priority 2"),
    Flag(6, "PFC of Priority 1"), Flag(7, "PFC of Priority 0")});
constexpr auto kApplication = Rows<Lldp>({
    Hex(1, "Application Priority"), Bits(0, 3, "Priority").Into(&Lldp::kind), Bits(3, 2, "Reserved"),
    Bits(5, 3, "Selector", kSelectorNames).Into(&Lldp::subtype), Number(2, "Protocol", kApplicationNames).Into(&Lldp::size)});
constexpr auto kReserved = Rows<Lldp>({Hex(1, "Reserved")});

void ShowClasses(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kPriorities, lldp);
  ShowRows<Lldp>(in, c, kBandwidths, lldp);
  ShowRows<Lldp>(in, c, kAlgorithms, lldp);
}
void ShowApplications(const Place& in, Cursor& c, Lldp& lldp) {
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, 3), "Application: %u, Priority %u", PeekU16(c, 1), PeekU8(c) >> 5));
    ShowRows<Lldp>(under, c, kApplication, lldp);
  }
}

// --- the forms from before the standard: elements of 7 and 9 bits within, each with a version and flags in front ---

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 0, .typeBits = 7};

constexpr auto kControl = Rows<Lldp>({
    Number(1, "Operating Version"), Number(1, "Maximum Version"), Number(4, "Sequence Number").Note(", Sequence %u"),
    Number(4, "Acknowledgement Number").Note(", Acknowledgement %u")});
constexpr auto kFeature = Rows<Lldp>({
    Number(1, "Operating Version"), Number(1, "Maximum Version"), Hex(1, "Flags"), Flag(0, "Enabled"), Flag(1, "Willing"),
    Flag(2, "Error"), Bits(3, 5, "Reserved")});
constexpr auto kSubtype = Rows<Lldp>({Number(1, "Feature Subtype")});
constexpr auto kCeeGroups = Rows<Lldp>({
    Hex(4, "Priority Groups"), Bits(0, 4, "Group of Priority 0"), Bits(4, 4, "Group of Priority 1"), Bits(8, 4, "Group of Priority 2"),
    Bits(12, 4, "Group of Priority 3"), Bits(16, 4, "Group of Priority 4"), Bits(20, 4, "Group of Priority 5"),
    Bits(24, 4, "Group of Priority 6"), Bits(28, 4, "Group of Priority 7")});
constexpr auto kCeeBandwidths = Rows<Lldp>({
    Number(1, "Bandwidth of Group 0", " percent"), Number(1, "Bandwidth of Group 1", " percent"),
    Number(1, "Bandwidth of Group 2", " percent"), Number(1, "Bandwidth of Group 3", " percent"),
    Number(1, "Bandwidth of Group 4", " percent"), Number(1, "Bandwidth of Group 5", " percent"),
    Number(1, "Bandwidth of Group 6", " percent"), Number(1, "Bandwidth of Group 7", " percent")});
constexpr auto kCeeClasses = Rows<Lldp>({Number(1, "Number of Traffic Classes Supported")});
constexpr auto kCeeFlow = Rows<Lldp>({
    Hex(1, "PFC Enable"), Flag(0, "PFC of Priority 7"), Flag(1, "PFC of Priority 6"), Flag(2, "PFC of Priority 5"),
    Flag(3, "PFC of Priority 4"), Flag(4, "PFC of Priority 3"), Flag(5, "PFC of Priority 2"), Flag(6, "PFC of Priority 1"),
    Flag(7, "PFC of Priority 0")});
constexpr auto kCeeFlowClasses = Rows<Lldp>({Number(1, "Number of PFC Classes Supported")});
constexpr auto kCeeApplication = Rows<Lldp>({
    Number(2, "Protocol", kApplicationNames).Note(", %s"), Hex(3, "OUI and Selector"), Bits(0, 6, "OUI High"),
    Bits(6, 2, "Selector", kCeeSelectorNames), Bits(8, 16, "OUI Low"), Hex(1, "Priority Map")});
constexpr auto kLinkState = Rows<Lldp>({Hex(1, "Logical Link State")});
constexpr auto kUserPriority = Rows<Lldp>({
    Hex(2, "User Priority"), Bits(0, 3, "Bandwidth Group"), Bits(3, 2, "Strict Priority"), Bits(5, 3, "Reserved"),
    Bits(8, 8, "Bandwidth", " percent")});
constexpr auto kCinApplication = Rows<Lldp>({Hex(1, "Priority Map")});

void ShowCeeGroups(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  ShowRows<Lldp>(in, c, kCeeGroups, lldp);
  ShowRows<Lldp>(in, c, kCeeBandwidths, lldp);
  ShowRows<Lldp>(in, c, kCeeClasses, lldp);
}
void ShowCeeFlow(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  ShowRows<Lldp>(in, c, kCeeFlow, lldp);
  ShowRows<Lldp>(in, c, kCeeFlowClasses, lldp);
}
void ShowCeeApplications(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  Loop loop;
  while (Left(c) >= 6 && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, 6), "Application: 0x%.04X", PeekU16(c)));
    ShowRows<Lldp>(under, c, kCeeApplication, lldp);
  }
}
void ShowCinGroups(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  ShowRows<Lldp>(in, c, kCeeBandwidths, lldp);
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowRows<Lldp>(in, c, kUserPriority, lldp);
}
void ShowCinFlow(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  ShowRows<Lldp>(in, c, kCeeFlow, lldp);
}
void ShowCinMap(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  ShowRows<Lldp>(in, c, kCinApplication, lldp);
}
void ShowCinLink(const Place& in, Cursor& c, Lldp& lldp) {
  ShowRows<Lldp>(in, c, kSubtype, lldp);
  ShowRows<Lldp>(in, c, kLinkState, lldp);
}

constexpr auto kCee = Choices<Lldp>({
    {1, "DCBX Control", kControl}, {2, "Priority Groups", kFeature, ShowCeeGroups},
    {3, "Priority-Based Flow Control", kFeature, ShowCeeFlow}, {4, "Application Protocol", kFeature, ShowCeeApplications}});
constexpr auto kCin = Choices<Lldp>({
    {1, "DCBX Control", kControl}, {2, "Priority Groups", kFeature, ShowCinGroups},
    {3, "Priority-Based Flow Control", kFeature, ShowCinFlow}, {4, "Bandwidth Management", kFeature, ShowCinGroups},
    {5, "FCoE Application", kFeature, ShowCinMap}, {6, "FCoE Logical Link Status", kFeature, ShowCinLink},
    {7, "LAN Logical Link Status", kFeature, ShowCinLink}});

void ShowCee(const Place& in, Cursor& c, Lldp& lldp) { ShowElements(in, c, kForm, "DCBX Feature", kCee, lldp); }
void ShowCin(const Place& in, Cursor& c, Lldp& lldp) { ShowElements(in, c, kForm, "DCBX Feature", kCin, lldp); }

constexpr auto kExchange = Choices<Lldp>({
    {LldpCode(0x001B21, 1), "CIN DCBX", {}, ShowCin}, {LldpCode(0x001B21, 2), "CEE DCBX", {}, ShowCee},
    {LldpCode(0x0080C2, 9), "ETS Configuration", kConfiguration, ShowClasses},
    {LldpCode(0x0080C2, 10), "ETS Recommendation", kRecommendation, ShowClasses},
    {LldpCode(0x0080C2, 11), "Priority-Based Flow Control", kFlowControl},
    {LldpCode(0x0080C2, 12), "Application Priority", kReserved, ShowApplications},
    {LldpCode(0x0080C2, 16), "Application VLAN", kReserved}});

}  // namespace

const Choice<Lldp>* FindLldpExchange(uint32_t code) { return FindChoice<Lldp>(kExchange, code); }

}  // namespace qxview
