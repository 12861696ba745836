// Ethernet operations, administration and maintenance of one link (IEEE 802.3 clause 57), and what organizations carry in
// the same way (IEEE 802.3 annex 57B): the synchronization status messages of ITU-T G.8264. The subtype of the slow protocols
// stands in front.
//
//   subtype (1) = 3    flags (2)   code (1)   elements: type (1), length of the whole (1), value
//   subtype (1) = 10   organization (3)   what it says
#include "core/elements.h"
#include "core/rows.h"

namespace qxview {
namespace {

enum OamCode : uint32_t { kInformation, kEvents, kVariableRequest, kVariableResponse, kLoopback, kOrganization = 0xFE };

constexpr auto kSubtypeNames = SortedNames({{3, "OAM"}, {10, "Organization Specific"}});
constexpr auto kCodeNames = SortedNames({
    {0, "Information"}, {1, "Event Notification"}, {2, "Variable Request"}, {3, "Variable Response"}, {4,
    "Loopback Control"},
    {0xFE, "Organization Specific"}});
constexpr auto kParserNames = SortedNames({{0, "Forward"}, {1, "Loop Back"}, {2, "Discard"}, {3, "Reserved"}});
constexpr auto kMuxNames = SortedNames({{0, "Forward"}, {1, "Discard"}});
constexpr auto kModeNames = SortedNames({{0, "Passive"}, {1, "Active"}});
constexpr auto kLoopbackNames = SortedNames({{1, "Enable Remote Loopback"}, {2, "Disable Remote Loopback"}});
constexpr auto kBranchNames = SortedNames({{3, "Object"}, {4, "Package"}, {5, "Binding"}, {6, "Name Binding"}, {7,
    "Attribute"}, {9, "Action"}});
constexpr auto kIndicationNames = SortedNames({
    {0x01, "Too Long for the PDU"}, {0x20, "Attribute Undetermined Error"}, {0x21, "Attribute Unavailable"},
    {0x22, "Attribute Overflow"}, {0x23, "Attribute Unknown"}, {0x40, "Object End of List"}, {0x60,
    "Package Undetermined Error"},
    {0x61, "Package Unavailable"}, {0x62, "Package Overflow"}, {0x63, "Package Unknown"}});

struct Oam {
  Field code, width, organization, subtype;
};

constexpr auto kHeader = Rows<Oam>({
    Number(1, "Subtype", kSubtypeNames), Hex(2, "Flags"), Bits(0, 9, "Reserved"), Flag(9, "Remote Stable"),
    Flag(10, "Remote Evaluating"), Flag(11, "Local Stable"), Flag(12, "Local Evaluating"), Flag(13, "Critical Event"),
    Flag(14, "Dying Gasp"), Flag(15, "Link Fault"), Number(1, "Code", kCodeNames).Into(&Oam::code)});
constexpr auto kInfo = Rows<Oam>({
    Number(1, "OAM Version"), Number(2, "Revision"), Word(1), Bits(0, 5, "Reserved"), Bits(5, 1, "Multiplexer Action",
    kMuxNames),
    Bits(6, 2, "Parser Action", kParserNames), Word(1), Bits(0, 3, "Reserved"), Flag(3, "Variable Retrieval"),
    Flag(4, "Link Events"), Flag(5, "Remote Loopback"), Flag(6, "Unidirectional Support"), Bits(7, 1, "OAM Mode",
    kModeNames),
    Word(2), Bits(0, 5, "Reserved"), Bits(5, 11, "Maximum OAMPDU Size"), Hex(3, "OUI"), Hex(4,
    "Vendor Specific Information")});
constexpr auto kVendor = Rows<Oam>({Hex(3, "OUI"), Bytes(0, "Organization Data")});
constexpr auto kInfoElements = Choices<Oam>({
    {0, "End"}, {1, "Local Information", kInfo}, {2, "Remote Information", kInfo}, {0xFE, "Organization Specific",
    kVendor}});

constexpr auto kSequence = Rows<Oam>({Number(2, "Sequence Number").Note(", Sequence %u")});
constexpr auto kSymbols = Rows<Oam>({
    Number(2, "Event Time Stamp", " x 100 ms"), Number(8, "Symbol Window"), Number(8, "Symbol Threshold"), Number(8,
    "Errored Symbols"),
    Number(8, "Error Running Total"), Number(4, "Event Running Total")});
constexpr auto kFrames = Rows<Oam>({
    Number(2, "Event Time Stamp", " x 100 ms"), Number(2, "Frame Window", " x 100 ms"), Number(4, "Frame Threshold"),
    Number(4, "Errored Frames"),
    Number(8, "Error Running Total"), Number(4, "Event Running Total")});
constexpr auto kPeriods = Rows<Oam>({
    Number(2, "Event Time Stamp", " x 100 ms"), Number(4, "Frame Period Window"), Number(4, "Frame Threshold"),
    Number(4, "Errored Frames"),
    Number(8, "Error Running Total"), Number(4, "Event Running Total")});
constexpr auto kSeconds = Rows<Oam>({
    Number(2, "Event Time Stamp", " x 100 ms"), Number(2, "Seconds Summary Window", " x 100 ms"), Number(2,
    "Seconds Threshold"),
    Number(2, "Errored Seconds"), Number(4, "Seconds Error Running Total"), Number(4, "Event Running Total")});
constexpr auto kEventElements = Choices<Oam>({
    {0, "End"}, {1, "Errored Symbol Period", kSymbols}, {2, "Errored Frame", kFrames}, {3, "Errored Frame Period",
    kPeriods},
    {4, "Errored Frame Seconds Summary", kSeconds}, {0xFE, "Organization Specific", kVendor}});

constexpr auto kDescriptor = Rows<Oam>({Number(1, "Branch", kBranchNames), Number(2, "Leaf")});
constexpr auto kLoopbackBody = Rows<Oam>({Number(1, "Loopback Command", kLoopbackNames).Note(", %s")});

void ShowVariables(const Place& in, Cursor& c, bool isResponse, Oam& oam) {
  Loop loop;
  while (PeekU8(c) != 0 && MoreAt(in, c, loop)) {
    const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 3 ? Left(c) : 3), "Variable"));
    ShowRows<Oam>(under, c, kDescriptor, oam);
    if (!isResponse) continue;
    const Field width = TakeU8(c);
    if (width.value & 0x80) {
      AddLine(under, width, "Indication: 0x%.02X = %s", width.value & 0x7F, LookupName(kIndicationNames, width.value &
      0x7F));
      continue;
    }
    AddLine(under, width, "Width: %u", width.value);
    const Field value = TakeBytes(c, width.value ? width.value : 128);
    AddLine(under, value, "Value: %s", HexText(value));
  }
  if (Left(c) > 0) AddLine(in, TakeU8(c), "End");
}

// --- synchronization status ---

constexpr auto kOrganizationNames = SortedNames({{0x0019A7, "ITU-T"}, {0x001B19, "IEEE 1588"}, {0x0080C2,
    "IEEE 802.1"}});
constexpr auto kItuSubtypes = SortedNames({{1, "ESMC"}});
constexpr auto kQualityNames = SortedNames({
    {0x0, "QL-STU, QL-UNK"}, {0x1, "QL-PRS"}, {0x2, "QL-PRC"}, {0x3, "QL-INV3"}, {0x4, "QL-SSU-A, QL-TNC"}, {0x5,
    "QL-INV5"},
    {0x6, "QL-INV6"}, {0x7, "QL-ST2"}, {0x8, "QL-SSU-B"}, {0x9, "QL-INV9"}, {0xA, "QL-EEC2, QL-ST3"},
    {0xB, "QL-EEC1, QL-SEC"}, {0xC, "QL-SMC"}, {0xD, "QL-ST3E"}, {0xE, "QL-PROV"}, {0xF, "QL-DNU, QL-DUS"}});
constexpr auto kEnhancedNames = SortedNames({
    {0x20, "QL-PRTC"}, {0x21, "QL-ePRTC"}, {0x22, "QL-eEEC"}, {0x23, "QL-ePRC"}, {0xFF, "QL of the SSM Code"}});
constexpr auto kMessageNames = SortedNames({{0, "Information"}, {1, "Event"}});

constexpr auto kOssp = Rows<Oam>({
    Number(1, "Subtype", kSubtypeNames), Hex(3, "Organization", kOrganizationNames).Into(&Oam::organization)});
constexpr auto kItu = Rows<Oam>({Number(2, "ITU Subtype", kItuSubtypes).Into(&Oam::subtype)});
constexpr auto kEsmc = Rows<Oam>({
    Word(4), Bits(0, 4, "Version"), Bits(4, 1, "Event Flag", kMessageNames), Bits(5, 27, "Reserved")});
constexpr auto kQuality = Rows<Oam>({Word(1), Bits(0, 4, "Unused"), Bits(4, 4, "SSM Code", kQualityNames)});
constexpr auto kExtended = Rows<Oam>({
    Hex(1, "Enhanced SSM Code", kEnhancedNames), Eui64("SyncE Clock Identity"), Word(1), Bits(0, 6, "Reserved"),
    Flag(6, "Chain Has Other Clocks"), Flag(7, "Partial Chain"), Number(1, "Cascaded Enhanced Clocks"), Number(1,
    "Cascaded Clocks"),
    Bytes(5, "Reserved")});
constexpr auto kEsmcElements = Choices<Oam>({{1, "Quality Level", kQuality}, {2, "Extended Quality Level", kExtended}});

void ShowEsmc(const Place& in, Cursor& c, Oam& oam) {
  ShowRows<Oam>(in, c, kEsmc, oam);
  // keys: text TLV
  // keys: number Type, Length
  constexpr ElementForm kForm{.lengthSize = 2, .lengthCountsHeader = true};
  Loop loop;
  Element element;
  while (PeekU8(c) != 0 && MoreAt(in, c, loop) && TakeElement(c, kForm, element)) {
    const Choice<Oam>* choice = FindChoice<Oam>(kEsmcElements, element.code);
    const Place under = detail::AddElementHead(in, element, kForm, "TLV", choice ? choice->name : kUnknown);
    ShowChoice<Oam>(under, element.value, choice, oam);
  }
}

}  // namespace

int32_t DecodeEthernetOam(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Field whole = Ahead(c, Left(c));
  const Place in = Under(at, AddLine(at, whole, "Ethernet OAM: %s", LookupName(kCodeNames, PeekU8(c, 3))));
  Oam oam = ShowRows(in, c, kHeader);
  constexpr ElementForm kForm{.lengthCountsHeader = true, .endType = 0};
  switch (oam.code.value) {
    case kInformation: ShowElements<Oam>(in, c, kForm, "TLV", kInfoElements, oam); break;
    case kEvents:
      ShowRows<Oam>(in, c, kSequence, oam);
      ShowElements<Oam>(in, c, kForm, "TLV", kEventElements, oam);
      break;
    case kVariableRequest:
    case kVariableResponse: ShowVariables(in, c, oam.code.value == kVariableResponse, oam); break;
    case kLoopback: ShowRows<Oam>(in, c, kLoopbackBody, oam); break;
    case kOrganization: ShowRows<Oam>(in, c, kVendor, oam); break;
    default: break;
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

int32_t DecodeOrganizationSlowProtocol(const Place& at, Cursor c) {
  constexpr uint32_t kItuT = 0x0019A7, kEsmcSubtype = 1;
  if (Left(c) < 4) return 0;
  const bool isEsmc = PeekU24(c, 1) == kItuT && PeekU16(c, 4) == kEsmcSubtype;
  const Place in = Under(at, isEsmc ? AddLine(at, Ahead(c, Left(c)), "Ethernet Synchronization Message Channel")
                                    : AddLine(at, Ahead(c, Left(c)), "Organization Specific Slow Protocol"));
  Oam oam = ShowRows(in, c, kOssp);
  if (oam.organization.value == kItuT) ShowRows<Oam>(in, c, kItu, oam);
  if (isEsmc) ShowEsmc(in, c, oam);
  c.ranShort = false;
  AddBlock(in, Rest(c), isEsmc ? "Padding" : "Organization Data");
  return 1;
}

}  // namespace qxview
