// Edge virtual bridging (IEEE 802.1Q clauses 41 and 43, once 802.1Qbg): the edge control protocol, and what stations tell
// bridges of their virtual interfaces in it (VDP). Congestion notification (802.1Q clause 33, once 802.1Qau): the tag of flows
// and the messages that slow them down.
#include "core/elements.h"

namespace qxview {
namespace {

struct Edge {
  Field subtype, operation, format, type, size, status, count;
};

// --- edge control ---

constexpr auto kOperationNames = SortedNames({{0, "Request"}, {1, "Acknowledgement"}});
constexpr auto kSubtypeNames = SortedNames({{1, "VDP"}, {2, "Port Extender Control and Status"}, {3, "LRP"}});
constexpr auto kEdgeHead = Rows<Edge>({
    Word(2), Bits(0, 4, "Version"), Bits(4, 2, "Operation", kOperationNames).Note(", %s").Into(&Edge::operation),
    Bits(6, 10, "Subtype", kSubtypeNames).Into(&Edge::subtype), Number(2, "Sequence Number").Note(", Sequence %u")});

// --- virtual interfaces ---

constexpr auto kErrorNames = SortedNames({
    {0, "Success"}, {1, "Invalid Format"}, {2, "Insufficient Resources"}, {3, "Unable to Contact the VSI Manager"},
    {4, "Other Failure"}, {5, "Invalid VID, Group ID or MAC Address"}});
constexpr auto kIdNames = SortedNames({
    {1, "IPv4 Address"}, {2, "IPv6 Address"}, {3, "IEEE 802 MAC Address"}, {4, "Locally Defined"}, {5, "UUID"}});
constexpr auto kFormatNames = SortedNames({
    {1, "VID"}, {2, "MAC and VID"}, {3, "Group and VID"}, {4, "Group, MAC and VID"}});
constexpr auto kInterface = Rows<Edge>({
    Word(1), Bits(0, 1, "Reserved"), Flag(1, "Acknowledgement"), Flag(2, "Suspended or Keep"),
    Flag(3, "Migrating or Hard Error"), Bits(4, 4, "Error Type", kErrorNames), Number(3, "VSI Type ID").Note(", Type %u"),
    Number(1, "VSI Type Version"), Number(1, "VSI ID Format", kIdNames).Into(&Edge::type)});
constexpr auto kId = Rows<Edge>({Bytes(16, "VSI ID")});
constexpr auto kIPv6 = Rows<Edge>({IPv6("VSI ID")});
constexpr auto kFilter = Rows<Edge>({
    Number(1, "Filter Information Format", kFormatNames).Into(&Edge::format),
    Number(2, "Number of Entries").Into(&Edge::count)});
constexpr auto kVlan = Rows<Edge>({Word(2), Flag(0, "Priority Significant"), Bits(1, 3, "Priority"), Bits(4, 12, "VLAN ID")});
constexpr auto kMac = Rows<Edge>({Mac("MAC Address")});
constexpr auto kGroup = Rows<Edge>({Hex(4, "Group ID")});
constexpr auto kManager = Rows<Edge>({IPv6("VSI Manager ID")});
constexpr auto kOrganization = Rows<Edge>({Hex(3, "OUI"), Bytes(0, "Organization Data")});

void ShowInterface(const Place& in, Cursor& c, Edge& edge) {
  constexpr uint32_t kHasMac = 2, kHasGroup = 3, kHasBoth = 4;
  constexpr uint32_t kIPv6Id = 2;
  ShowRows<Edge>(in, c, edge.type.value == kIPv6Id ? RowSpan<Edge>(kIPv6) : RowSpan<Edge>(kId), edge);
  if (Left(c) < 3) return;
  ShowRows<Edge>(in, c, kFilter, edge);
  const uint32_t format = edge.format.value;
  Loop loop;
  for (uint32_t i = 0; i < edge.count.value && MoreAt(in, c, loop); ++i) {
    if (format == kHasGroup || format == kHasBoth) ShowRows<Edge>(in, c, kGroup, edge);
    if (format == kHasMac || format == kHasBoth) ShowRows<Edge>(in, c, kMac, edge);
    ShowRows<Edge>(in, c, kVlan, edge);
  }
}

constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 0, .typeBits = 7};
constexpr auto kElements = Choices<Edge>({
    {1, "Pre-Associate", kInterface, ShowInterface},
    {2, "Pre-Associate with Resource Reservation", kInterface, ShowInterface}, {3, "Associate", kInterface, ShowInterface},
    {4, "De-Associate", kInterface, ShowInterface}, {5, "VSI Manager ID", kManager},
    {127, "Organization Specific", kOrganization}});

}  // namespace

int32_t DecodeEdgeControl(const Place& at, Cursor c) {
  constexpr uint32_t kInterfaces = 1;
  if (Left(c) < 4) return 0;
  const Edge ahead = PeekRows(c, kEdgeHead);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Edge Control: %s",
      LookupName(kSubtypeNames, ahead.subtype.value)));
  Edge edge = ShowRows(in, c, kEdgeHead);
  // keys: number Type, Length
  if (edge.subtype.value == kInterfaces && Left(c) >= 2) {
    // Zeros behind the elements fill the frame.
    Loop loop;
    Element element;
    while (PeekU16(c) != 0 && MoreAt(in, c, loop) && TakeElement(c, kForm, element)) {
      const Choice<Edge>* choice = FindChoice<Edge>(kElements, element.code);
      // keys: text TLV
      const Place under = detail::AddElementHead(in, element, kForm, "TLV", choice ? choice->name : kUnknown);
      ShowChoice<Edge>(under, element.value, choice, edge);
    }
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
  return 1;
}

// --- congestion notification ---

int32_t DecodeCongestionTag(const Place& at, Cursor c) {
  if (Left(c) < 4) return 0;
  const Field flow = TakeU16(c);
  const Place in = Under(at, AddLine(at, Stated(flow.offset, 4), "Congestion Notification Tag: Flow %u", flow.value));
  AddLine(in, flow, "Flow ID: %u", flow.value);
  return DecodeEthernetHeader(in, c);
}

int32_t DecodeCongestionMessage(const Place& at, Cursor c) {
  static constexpr auto kMessage = Rows<Edge>({
      Word(2), Bits(0, 4, "Version"), Bits(4, 6, "Reserved"), Bits(10, 6, "Quantized Feedback").Note(", Feedback %u"),
      Hex(8, "Congestion Point ID"), Signed(2, "Queue Offset", " x 64 octets"), Signed(2, "Queue Delta", " x 64 octets"),
      Word(2), Bits(0, 3, "Encapsulated Priority"), Bits(3, 13, "Reserved"), Mac("Encapsulated Destination Address"),
      Number(2, "Encapsulated Length").Into(&Edge::size)});
  constexpr int32_t kSize = 24;
  if (Left(c) < kSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kSize), "Congestion Notification Message"));
  const Edge edge = ShowRows(in, c, kMessage);
  Cursor frame = TakeCursor(c, static_cast<int32_t>(edge.size.value));
  AddBlock(in, Rest(frame), "Encapsulated Frame");
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
