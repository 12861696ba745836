// Multiple registration (IEEE 802.1Q clause 10 and 11, MVRP for VLANs; clause 10.9, MMRP for groups; clause 35, MSRP for
// streams): what of these do the stations behind a port want?
//
//   version   then messages: attribute type   attribute length   [MSRP: length of the list (2)]   vectors
//   a vector: leave all (3 bits), number of values (13)   first value   events of three values an octet
//   two octets of 0 end a message's vectors, and the messages
#include "core/rows.h"
#include "decoders/common/bridge_id.h"

namespace qxview {
namespace {

struct Registration {
  Field type, length, listLength, leaveAll, count, vlan;
};

constexpr auto kEventNames = SortedNames({
    {0, "New"}, {1, "Join In"}, {2, "In"}, {3, "Join Mt"}, {4, "Mt"}, {5, "Leave"}});
constexpr auto kListenerNames = SortedNames({{0, "Ignore"}, {1, "Asking Failed"}, {2, "Ready"}, {3, "Ready Failed"}});
constexpr auto kLeaveAllNames = SortedNames({{0, "Null"}, {1, "Leave All"}});
constexpr auto kServiceNames = SortedNames({{0, "All Groups"}, {1, "All Unregistered Groups"}});
constexpr auto kRankNames = SortedNames({{0, "Emergency"}, {1, "Non-Emergency"}});
constexpr auto kClassNames = SortedNames({{5, "B"}, {6, "A"}});
constexpr auto kFailureNames = SortedNames({
    {1, "Insufficient Bandwidth"}, {2, "Insufficient Bridge Resources"}, {3, "Insufficient Bandwidth for Traffic Class"},
    {4, "StreamID Already in Use"}, {5, "Stream Destination Address Already in Use"},
    {6, "Stream Preempted by Higher Rank"}, {7, "Reported Latency Has Changed"}, {8, "Egress Port Is Not AVB Capable"},
    {9, "Use a Different Destination Address"}, {10, "Out of MSRP Resources"}, {11, "Out of MMRP Resources"},
    {12, "Cannot Store Destination Address"}, {13, "Requested Priority Is Not an SR Class Priority"},
    {14, "MaxFrameSize Is Too Large for Media"}, {15, "MaxFanInPorts Limit Has Been Reached"},
    {16, "Changes in FirstValue for a Registered StreamID"}, {17, "VLAN Is Blocked on This Egress Port"},
    {18, "VLAN Tagging Is Disabled on This Egress Port"}, {19, "SR Class Priority Mismatch"},
    {20, "Enhanced Feature Cannot Be Propagated to Original Port"}, {21, "MaxLatency Exceeded"},
    {22, "Nearest Bridge Cannot Provide Network Identification for Stream Transformation"},
    {23, "Stream Transformation Not Supported"}, {24, "Stream Identification Type Not Supported for Stream Transformation"},
    {25, "Enhanced Feature Cannot Be Supported Without a CNC"}});

// The address of the talker, and a number of its own for each stream.
void ShowStream(const Place& in, const Field& field, const char* label) {
  Cursor c = CursorOver(field);
  const Place under = Under(in, AddLine(in, field, "%s: 0x%s", label, HexDigits(field)));
  const Field source = TakeBytes(c, 6), number = TakeU16(c);
  AddLine(under, source, "Stream Source: %s", MacText(source.bytes));
  AddLine(under, number, "Stream Unique ID: %u", number.value);
  AppendToParent(in, field, ", %s %u", MacText(source.bytes), number.value);
}

constexpr auto kVlan = Rows<Registration>({Number(2, "VLAN").Note(", VLAN %u")});
constexpr auto kServiceInstance = Rows<Registration>({Number(4, "I-SID").Note(", I-SID %u")});
constexpr auto kService = Rows<Registration>({Number(1, "Service Requirement", kServiceNames).Note(", %s")});
constexpr auto kGroup = Rows<Registration>({Mac("MAC Address").Note(", %s")});
constexpr auto kTalker = Rows<Registration>({
    Shown(8, "Stream ID", ShowStream), Mac("Destination Address"),
    Number(2, "VLAN"), Number(2, "Maximum Frame Size"), Number(2, "Maximum Interval Frames"), Hex(1, "Priority and Rank"),
    Bits(0, 3, "Priority"), Bits(3, 1, "Rank", kRankNames), Bits(4, 4, "Reserved"),
    Number(4, "Accumulated Latency", " nanoseconds")});
constexpr auto kFailure = Rows<Registration>({
    Shown(8, "Failing Bridge", ShowBridgeId), Number(1, "Failure Code", kFailureNames).Note(", %s")});
constexpr auto kListener = Rows<Registration>({Shown(8, "Stream ID", ShowStream)});
constexpr auto kDomain = Rows<Registration>({
    Number(1, "SR Class ID", kClassNames).Note(", Class %s"), Number(1, "SR Class Priority"), Number(2, "SR Class VLAN")});

// What a value of an attribute type looks like.
struct Attribute {
  const char* name;
  RowSpan<Registration> rows, more;
  bool isListener;
};
struct Application {
  const char* title;
  const Attribute* attributes;
  uint32_t count;
  bool hasListLength;
};
constexpr Attribute kMvrp[] = {{"VLAN", kVlan, {}, false}};
constexpr Attribute kMmrp[] = {{"Service Requirement", kService, {}, false}, {"MAC Address", kGroup, {}, false}};
constexpr Attribute kMirp[] = {{"I-SID", kServiceInstance, {}, false}};
constexpr Attribute kMsrp[] = {{"Talker Advertise", kTalker, {}, false}, {"Talker Failed", kTalker, kFailure, false},
                               {"Listener", kListener, {}, true}, {"Domain", kDomain, {}, false}};

constexpr auto kAttributeHead = Rows<Registration>({Number(1, "Attribute Length").Into(&Registration::length)});
constexpr auto kListHead = Rows<Registration>({Number(2, "Attribute List Length").Into(&Registration::listLength)});
constexpr auto kVectorHead = Rows<Registration>({
    Hex(2, "Vector Header"), Bits(0, 3, "Leave All Event", kLeaveAllNames).Into(&Registration::leaveAll),
    Bits(3, 13, "Number of Values").Into(&Registration::count)});

// Three events of six each in an octet, or four of four.
void ShowEvents(const Place& in, Cursor& c, uint32_t count, bool byFour) {
  Loop loop;
  for (uint32_t first = 0; first < count && MoreAt(in, c, loop); first += byFour ? 4 : 3) {
    const Field packed = TakeU8(c);
    const Place under = Under(in,
        AddLine(in, packed, "%s: 0x%.02X", byFour ? "Listener Declarations" : "Events", packed.value));
    const uint32_t of = packed.value;
    const uint32_t three[4] = {of / 36, of / 6 % 6, of % 6, 0}, four[4] = {of >> 6, of >> 4 & 3, of >> 2 & 3, of & 3};
    const uint32_t* events = byFour ? four : three;
    for (uint32_t i = 0; i < (byFour ? 4u : 3u) && first + i < count; ++i) {
      if (byFour) {
        AddLine(under, packed, "Listener Declaration %u: %u = %s", first + i + 1, events[i],
            LookupName(kListenerNames, events[i]));
      } else {
        AddLine(under, packed, "Event %u: %u = %s", first + i + 1, events[i], LookupName(kEventNames, events[i]));
      }
      if (first + i == 0) {
        AppendToParent(in, packed, ", %s",
            byFour ? LookupName(kListenerNames, events[i]) : LookupName(kEventNames, events[i]));
      }
    }
  }
}

void ShowVector(const Place& in, Cursor& c, const Attribute* attribute, Registration& out) {
  const Cursor start = c;
  const LineHandle line = AddLine(in, Ahead(c, 2), "Vector");
  const Place under = Under(in, line);
  ShowRows<Registration>(under, c, kVectorHead, out);
  Cursor value = TakeCursor(c, out.length.value);
  if (attribute && Left(value)) {
    ShowRows<Registration>(under, value, attribute->rows, out);
    if (attribute->more.count) ShowRows<Registration>(under, value, attribute->more, out);
  }
  value.ranShort = false;
  AddBlock(under, Rest(value), "First Value");
  ShowEvents(under, c, out.count.value, false);
  if (attribute && attribute->isListener) ShowEvents(under, c, out.count.value, true);
  if (line) SetRange(in, line, start.offset, c.offset - start.offset);
}

void ShowMessage(const Place& in, Cursor& c, const Application& application) {
  const Cursor start = c;
  const uint32_t type = PeekU8(c);
  const Attribute* attribute = type >= 1 && type <= application.count ? &application.attributes[type - 1] : nullptr;
  const char* name = attribute ? attribute->name : kUnknown;
  const LineHandle line = AddLine(in, Ahead(c, 2 < Left(c) ? 2 : Left(c)), "Message: %s", name);
  const Place under = Under(in, line);
  const Field typeField = TakeU8(c);
  AddLine(under, typeField, "Attribute Type: %u = %s", type, name);
  Registration out{};
  ShowRows<Registration>(under, c, kAttributeHead, out);
  if (application.hasListLength) ShowRows<Registration>(under, c, kListHead, out);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU16(c) == 0) {
      AddLine(under, TakeBytes(c, Left(c) < 2 ? Left(c) : 2), "End Mark: 0x0000");
      break;
    }
    ShowVector(under, c, attribute, out);
  }
  if (line) SetRange(in, line, start.offset, c.offset - start.offset);
}

int32_t DecodeRegistration(const Place& at, Cursor c, const Application& application) {
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "%s: Registration", application.title));
  const Field version = TakeU8(c);
  AddLine(in, version, "Protocol Version: %u", version.value);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    if (PeekU8(c) == 0) {
      AddLine(in, TakeBytes(c, Left(c) < 2 ? 1 : 2), "End Mark: 0x0000");
      break;
    }
    ShowMessage(in, c, application);
  }
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace

int32_t DecodeMvrp(const Place& at, Cursor c) { return DecodeRegistration(at, c, {"MVRP", kMvrp, 1, false}); }
int32_t DecodeMmrp(const Place& at, Cursor c) { return DecodeRegistration(at, c, {"MMRP", kMmrp, 2, false}); }
int32_t DecodeMirp(const Place& at, Cursor c) { return DecodeRegistration(at, c, {"MIRP", kMirp, 1, false}); }
int32_t DecodeMsrp(const Place& at, Cursor c) { return DecodeRegistration(at, c, {"MSRP", kMsrp, 4, true}); }

}  // namespace qxview
