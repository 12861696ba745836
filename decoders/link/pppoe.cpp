// PPP over Ethernet (RFC 2516; larger frames: RFC 4638; flow control and link metrics: RFC 5578): how a host finds an access
// concentrator and opens a session with it, and the session's frames.
//
//   version, type   code   session   length   discovery: tags of type (2), length (2), value   session: a PPP frame
#include "core/elements.h"
#include "decoders/link/carried.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 6;
constexpr uint32_t kSessionCode = 0;

constexpr auto kCodeNames = SortedNames({
    {0x00, "Session Data"}, {0x07, "Active Discovery Offer (PADO)"}, {0x09, "Active Discovery Initiation (PADI)"},
    {0x0A, "Active Discovery Session-Grant (PADG)"}, {0x0B, "Active Discovery Session-Credit Response (PADC)"},
    {0x0C, "Active Discovery Quality (PADQ)"}, {0x19, "Active Discovery Request (PADR)"},
    {0x65, "Active Discovery Session-Confirmation (PADS)"}, {0xA7, "Active Discovery Terminate (PADT)"},
    {0xD3, "Active Discovery Message (PADM)"}, {0xD4, "Active Discovery Network (PADN)"}});

struct Pppoe {
  Field code, session, length, vendor, flags;
};
constexpr auto kHeader = Rows<Pppoe>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Type"), Hex(1, "Code", kCodeNames).Into(&Pppoe::code),
    Hex(2, "Session ID").Into(&Pppoe::session), Number(2, "Payload Length").Into(&Pppoe::length)});

constexpr auto kText = Rows<Pppoe>({Utf8(0, nullptr).Note(", %s")});
constexpr auto kBytes = Rows<Pppoe>({Bytes(0, nullptr)});
constexpr auto kVendor = Rows<Pppoe>({Number(4, "Vendor ID").Into(&Pppoe::vendor)});
constexpr auto kCredits = Rows<Pppoe>({Number(2, "Forward Credit Notification"), Number(2, "Backward Credit Notification")});
constexpr auto kMetrics = Rows<Pppoe>({
    Word(2), Bits(0, 11, "Reserved"), Bits(11, 2, "Maximum Data Rate Unit"), Bits(13, 2, "Current Data Rate Unit"),
    Flag(15, "Receive Only"), Number(1, "Relative Link Quality", " %"), Number(1, "Resources", " %"),
    Number(2, "Latency", " milliseconds"), Number(2, "Current Data Rate"), Number(2, "Maximum Data Rate")});
constexpr auto kSequence = Rows<Pppoe>({Number(2, "Sequence Number")});
constexpr auto kScale = Rows<Pppoe>({Number(2, "Credit Scale Factor", " bytes")});
constexpr auto kPayload = Rows<Pppoe>({Number(2, "Maximum Payload", " bytes").Note(", %u bytes")});

// The tags of lines' identities (broadband-forum TR-101 3.9.2) stand behind the number of the forum.
constexpr ElementForm kLineForm{};
constexpr auto kLineText = Rows<Pppoe>({Text(0, nullptr).Note(", %s")});
constexpr auto kRate = Rows<Pppoe>({Number(4, nullptr, " kbit/s").Note(", %u kbit/s")});
constexpr auto kDelay = Rows<Pppoe>({Number(4, nullptr, " milliseconds").Note(", %u milliseconds")});
constexpr auto kLinkNames = SortedNames({{0, "AAL5"}, {1, "Ethernet"}});
constexpr auto kFirstNames = SortedNames({
    {0, "Not Available"}, {1, "Untagged Ethernet"}, {2, "Single-Tagged Ethernet"}});
constexpr auto kSecondNames = SortedNames({
    {0, "Not Available"}, {1, "PPPoA LLC"}, {2, "PPPoA Null"}, {3, "IPoA LLC"}, {4, "IPoA Null"},
    {5, "Ethernet over AAL5 LLC with FCS"}, {6, "Ethernet over AAL5 LLC without FCS"},
    {7, "Ethernet over AAL5 Null with FCS"}, {8, "Ethernet over AAL5 Null without FCS"}});
constexpr auto kEncapsulation = Rows<Pppoe>({
    Number(1, "Data Link", kLinkNames), Number(1, "First Encapsulation", kFirstNames),
    Number(1, "Second Encapsulation", kSecondNames)});
constexpr auto kLineTags = Choices<Pppoe>({
    {0x01, "Agent Circuit ID", kLineText}, {0x02, "Agent Remote ID", kLineText},
    {0x81, "Actual Data Rate Upstream", kRate}, {0x82, "Actual Data Rate Downstream", kRate},
    {0x83, "Minimum Data Rate Upstream", kRate}, {0x84, "Minimum Data Rate Downstream", kRate},
    {0x85, "Attainable Data Rate Upstream", kRate}, {0x86, "Attainable Data Rate Downstream", kRate},
    {0x87, "Maximum Data Rate Upstream", kRate}, {0x88, "Maximum Data Rate Downstream", kRate},
    {0x89, "Minimum Low-Power Data Rate Upstream", kRate}, {0x8A, "Minimum Low-Power Data Rate Downstream", kRate},
    {0x8B, "Maximum Interleaving Delay Upstream", kDelay}, {0x8C, "Actual Interleaving Delay Upstream", kDelay},
    {0x8D, "Maximum Interleaving Delay Downstream", kDelay}, {0x8E, "Actual Interleaving Delay Downstream", kDelay},
    {0x90, "Access Loop Encapsulation", kEncapsulation}, {0xFE, "IWF Session", kBytes}});

void ShowVendor(const Place& in, Cursor& c, Pppoe& pppoe) {
  constexpr uint32_t kBroadbandForum = 3561;
  if (pppoe.vendor.value == kBroadbandForum) {
    ShowElements<Pppoe>(in, c, kLineForm, "Line", kLineTags, pppoe);
    return;
  }
  const Field data = Rest(c);
  if (data.here) AddLine(in, data, "Vendor Data: %s", HexText(data));
}

constexpr ElementForm kTagForm{.typeSize = 2, .lengthSize = 2, .typeLabel = "Tag Type", .lengthLabel = "Tag Length"};
constexpr auto kCreditTags = Choices<Pppoe>({{0x0106, "Credits", kCredits}});
constexpr auto kTags = Choices<Pppoe>({
    {0x0000, "End-Of-List"}, {0x0101, "Service-Name", kText}, {0x0102, "AC-Name", kText},
    {0x0103, "Host-Uniq", kBytes}, {0x0104, "AC-Cookie", kBytes}, {0x0105, "Vendor-Specific", kVendor, ShowVendor},
    {0x0106, "Credits", kCredits}, {0x0107, "Metrics", kMetrics}, {0x0108, "Sequence-Number", kSequence},
    {0x0109, "Credit-Scale-Factor", kScale}, {0x0110, "Relay-Session-Id", kBytes}, {0x0111, "HURL", kText},
    {0x0112, "MOTM", kText}, {0x0120, "PPP-Max-Payload", kPayload}, {0x0121, "IP-Route-Add", kBytes},
    {0x0201, "Service-Name-Error", kText}, {0x0202, "AC-System-Error", kText}, {0x0203, "Generic-Error", kText}});

}  // namespace

int32_t DecodePppoeDiscovery(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const int32_t length = static_cast<int32_t>(PeekU16(c, 4));
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "PPPoE: %s, Session 0x%.04X",
                                     LookupName(kCodeNames, PeekU8(c, 1)), PeekU16(c, 2)));
  Pppoe pppoe = ShowRows(in, c, kHeader);
  Cursor tags = TakeCursor(c, length);
  ShowElements<Pppoe>(in, tags, kTagForm, "Tag", kTags, pppoe);
  AddBlock(in, Rest(tags), "Tag Data");
  CoverBytes(in, c);
  return 1;
}

int32_t DecodePppoeSession(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "PPPoE: Session 0x%.04X", PeekU16(c, 2)));
  const Pppoe pppoe = ShowRows(in, c, kHeader);
  // A session whose credits are granted in its data frames has a tag in front of them.
  if (pppoe.code.value == kSessionCode && PeekU16(c) == 0x0106 && PeekU16(c, 2) == 4) {
    Pppoe inner{};
    Cursor tag = TakeCursor(c, 8);
    ShowElements<Pppoe>(in, tag, kTagForm, "Tag", kCreditTags, inner);
    CoverBytes(in, c);
  }
  // The length counts the frame; what is left is padding of the link, or cut.
  Cursor frame = TakeCursor(c, static_cast<int64_t>(pppoe.length.value));
  return DecodeCarriedFrame(Deeper(at), frame, Carried::kPpp, "PPP Data");
}

}  // namespace qxview
