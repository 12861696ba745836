// Slow protocols (IEEE 802.3 annex 57A) and the two of them that join links into one: LACP (IEEE 802.1AX clause 6) and its
// marker protocol: which links of two systems belong together, and is everything on one of them delivered?
//
//   subtype   version   then elements: type, length with this header, value; 1 to 3 are an end's state, 0 ends them
//   what other subtypes carry is found by their number among the link encapsulations of the registry
#include "core/elements.h"
#include "decoders/link/llc.h"

namespace qxview {
namespace {

constexpr auto kSubtypeNames = SortedNames({
    {1, "LACP"}, {2, "Marker"}, {3, "OAM"}, {10, "Organization Specific"}, {11, "Digital Substation Monitoring"}});

struct Slow {
  Field system, key, state, count;
};

constexpr ElementForm kForm{.lengthCountsHeader = true, .endType = 0};
constexpr ElementForm kLongForm{.lengthCountsHeader = true};   // of version 1, whose end has a length, too

constexpr auto kHead = Rows<Slow>({Number(1, "Subtype", kSubtypeNames), Number(1, "Version")});
constexpr auto kEnd = Rows<Slow>({
    Number(2, "System Priority"), Mac("System ID").Note(", System %s").Into(&Slow::system),
    Number(2, "Key").Note(", Key %u").Into(&Slow::key), Number(2, "Port Priority"), Number(2, "Port").Note(", Port %u"),
    Hex(1, "State").Note(", State 0x%.02X").Into(&Slow::state), Flag(0, "Expired"), Flag(1, "Defaulted"),
    Flag(2, "Distributing"), Flag(3, "Collecting"), Flag(4, "Synchronization"), Flag(5, "Aggregation"),
    Flag(6, "Short Timeout"), Flag(7, "Activity"), Bytes(3, "Reserved")});
constexpr auto kCollector = Rows<Slow>({Number(2, "Maximum Delay", " tens of microseconds"), Bytes(12, "Reserved")});
constexpr auto kPortAlgorithm = Rows<Slow>({Hex(4, "Port Algorithm")});
constexpr auto kConversationDigest = Rows<Slow>({Number(1, "Link Number ID"), Bytes(16, "Port Conversation ID Digest")});
constexpr auto kConversationMask = Rows<Slow>({Hex(1, "Conversation Mask State"), Bytes(0, "Port Conversation Mask")});
constexpr auto kServiceDigest = Rows<Slow>({Bytes(16, "Port Conversation Service Mapping Digest")});
constexpr auto kLacp = Choices<Slow>({
    {0, "Terminator"}, {1, "Actor", kEnd}, {2, "Partner", kEnd}, {3, "Collector", kCollector},
    {4, "Port Algorithm", kPortAlgorithm}, {5, "Port Conversation ID Digest", kConversationDigest},
    {6, "Port Conversation Mask 1", kConversationMask}, {7, "Port Conversation Mask 2", kConversationMask},
    {8, "Port Conversation Mask 3", kConversationMask}, {9, "Port Conversation Mask 4", kConversationMask},
    {10, "Port Conversation Service Mapping", kServiceDigest}});
constexpr auto kMarkerFields = Rows<Slow>({
    Number(2, "Requester Port"), Mac("Requester System").Note(", %s"), Number(4, "Transaction ID").Note(", Transaction %u"),
    Hex(2, "Padding")});
constexpr auto kMarkers = Choices<Slow>({
    {0, "Terminator"}, {1, "Marker Information", kMarkerFields}, {2, "Marker Response", kMarkerFields}});

// Elements up to the one of length 0, and the octets that fill the frame behind it.
void ShowList(const Place& in, Cursor& c, const char* title, ChoiceSpan<Slow> choices) {
  Slow out{};
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) == 0) {
      const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 2 ? 1 : 2), "%s: Terminator", title));
      const Field type = TakeU8(c), length = TakeU8(c);
      AddLine(under, type, "Type: %u = Terminator", type.value);
      AddLine(under, length, "Length: %u", length.value);
      break;
    }
    Element element;
    if (!TakeElement(c, kLongForm, element)) break;
    const Choice<Slow>* choice = FindChoice<Slow>(choices, element.code);
    const Place under = detail::AddElementHead(in, element, kForm, title, choice ? choice->name : kUnknown);
    ShowChoice(under, element.value, choice, out);
  }
  c.ranShort = false;
  const Field padding = Rest(c);
  constexpr int32_t kReserved = 90;   // the octets behind the elements: of LACP 50, of markers 90, fewer when a frame is cut
  if (padding.here && padding.length <= kReserved) {
    AddLine(in, padding, "Reserved: %s", HexText(padding));
  } else {
    AddBlock(in, padding, "Data");
  }
}

}  // namespace

int32_t DecodeLacp(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Field whole = Ahead(c, Left(c));
  const Field actor = PeekBytes(c, 6, 6), partner = PeekBytes(c, 26, 6);
  const bool isPlain = PeekU8(c, 2) == 1 && PeekU8(c, 22) == 2 && actor.here && partner.here;
  const Place in = Under(at, isPlain ? AddLine(at, whole, "LACP: Actor %s Port %u, Partner %s Port %u", MacText(actor.bytes),
                                               PeekU16(c, 16), MacText(partner.bytes), PeekU16(c, 36))
                                     : AddLine(at, whole, "LACP"));
  ShowRows(in, c, kHead);
  ShowList(in, c, "LACP Element", kLacp);
  return 1;
}

int32_t DecodeMarker(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Marker Protocol: %s", PeekU8(c, 2) == 2 ? "Response" : "Information"));
  ShowRows(in, c, kHead);
  ShowList(in, c, "Marker Element", kMarkers);
  return 1;
}

int32_t DecodeSlowProtocols(const Place& at, Cursor c) {
  const DecoderRow* row = Left(c) ? FindLinkEncapsulation(SlowProtocolKey(PeekU8(c))) : nullptr;
  return CallDecoder(at, c, row ? row->decode : nullptr, "Raw Packet");
}

}  // namespace qxview
