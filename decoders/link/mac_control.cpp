// MAC control (IEEE 802.3 clause 31 and its annexes): pause, pause by priority (802.1Q clause 36), and the protocol by which an
// optical line terminal gives its units their turns (multipoint control, clauses 64 and 77).
//
//   operation code (2)   multipoint control: time stamp (4)   what the code says   zeros up to the smallest frame
#include "core/rows.h"

namespace qxview {
namespace {

enum Operation : uint32_t {
  kPause = 0x0001, kGate = 0x0002, kReport = 0x0003, kRegisterRequest = 0x0004, kRegister = 0x0005,
      kRegisterAck = 0x0006,
  kPriorityPause = 0x0101, kExtension = 0xFFFE,
};

constexpr auto kOperationNames = SortedNames({
    {0x0001, "Pause"}, {0x0002, "Gate"}, {0x0003, "Report"}, {0x0004, "Register Request"}, {0x0005, "Register"},
    {0x0006, "Register Acknowledge"}, {0x0101, "Priority Flow Control"}, {0xFFFE, "Extension"}});
constexpr auto kRequestNames = SortedNames({{1, "Register"}, {3, "Deregister"}});
constexpr auto kRegisterNames = SortedNames({{1, "Reregister"}, {2, "Deregister"}, {3, "Acknowledge"}, {4,
    "Not Acknowledge"}});
constexpr auto kAckNames = SortedNames({{0, "Not Acknowledge"}, {1, "Acknowledge"}});
constexpr auto kClassNames = SortedNames({
    {0x01, "Class 0 Enabled"}, {0x02, "Class 1 Enabled"}, {0x04, "Class 2 Enabled"}, {0x08, "Class 3 Enabled"},
    {0x10, "Class 4 Enabled"}, {0x20, "Class 5 Enabled"}, {0x40, "Class 6 Enabled"}, {0x80, "Class 7 Enabled"}});

struct Control {
  Field operation, grants, isDiscovery, sets;
};
constexpr auto kOperation = Rows<Control>({Hex(2, "Operation Code", kOperationNames).Into(&Control::operation)});
constexpr auto kPauseBody = Rows<Control>({Number(2, "Pause Time", " quanta").Note(", %u quanta")});
constexpr auto kPriorityBody = Rows<Control>({
    Flags(2, "Class Enable Vector", kClassNames), Number(2, "Class 0 Time", " quanta"), Number(2, "Class 1 Time",
    " quanta"),
    Number(2, "Class 2 Time", " quanta"), Number(2, "Class 3 Time", " quanta"), Number(2, "Class 4 Time", " quanta"),
    Number(2, "Class 5 Time", " quanta"), Number(2, "Class 6 Time", " quanta"), Number(2, "Class 7 Time", " quanta")});
constexpr auto kTime = Rows<Control>({Number(4, "Time Stamp", " x 16 ns")});
constexpr auto kGateFlags = Rows<Control>({
    Hex(1, "Gate Flags"), Flag(0, "Force Report Grant 4"), Flag(1, "Force Report Grant 3"), Flag(2,
    "Force Report Grant 2"),
    Flag(3, "Force Report Grant 1"), Flag(4, "Discovery").Into(&Control::isDiscovery),
    Bits(5, 3, "Number of Grants").Into(&Control::grants)});
constexpr auto kGrant = Rows<Control>({Number(4, "Grant Start Time"), Number(2, "Grant Length")});
constexpr auto kDiscovery = Rows<Control>({
    Number(2, "Sync Time"), Word(2), Bits(0, 10, "Reserved"), Flag(10, "10G Discovery Window"), Flag(11,
    "1G Discovery Window"),
    Bits(12, 2, "Reserved"), Flag(14, "10G Upstream"), Flag(15, "1G Upstream")});
constexpr auto kReportHead = Rows<Control>({Number(1, "Number of Queue Sets").Into(&Control::sets)});
constexpr auto kRequest = Rows<Control>({
    Number(1, "Request", kRequestNames).Note(", %s"), Number(1, "Pending Grants"), Hex(2, "Discovery Information"),
    Bits(0, 10, "Reserved"), Flag(10, "10G Registration Attempt"), Flag(11, "1G Registration Attempt"), Bits(12, 2, "Reserved"),
    Flag(14, "10G Upstream Capable"), Flag(15, "1G Upstream Capable"),
    Number(1, "Laser On Time"), Number(1, "Laser Off Time")});
constexpr auto kRegisterBody = Rows<Control>({
    Number(2, "Assigned Port").Note(", Port %u"), Number(1, "Register Flags", kRegisterNames).Note(", %s"), Number(2,
    "Sync Time"),
    Number(1, "Echoed Pending Grants"), Number(1, "Target Laser On Time"), Number(1, "Target Laser Off Time")});
constexpr auto kAckBody = Rows<Control>({
    Number(1, "Acknowledge Flags", kAckNames).Note(", %s"), Number(2, "Echoed Assigned Port"), Number(2,
    "Echoed Sync Time")});
constexpr auto kExtensionBody = Rows<Control>({Hex(3, "OUI"), Hex(2, "Extension Operation Code")});

void ShowGate(const Place& in, Cursor& c, Control& control) {
  ShowRows<Control>(in, c, kGateFlags, control);
  for (uint32_t i = 0; i < control.grants.value && i < 4; ++i) ShowRows<Control>(in, c, kGrant, control);
  if (control.isDiscovery.value) ShowRows<Control>(in, c, kDiscovery, control);
}

void ShowReport(const Place& in, Cursor& c, Control& control) {
  ShowRows<Control>(in, c, kReportHead, control);
  Loop loop;
  for (uint32_t i = 0; i < control.sets.value && MoreAt(in, c, loop); ++i) {
    const Field bitmap = TakeU8(c);
    AddLine(in, bitmap, "Report Bitmap: 0x%.02X", bitmap.value);
    for (uint32_t queue = 0; queue < 8; ++queue) {
      if (!(bitmap.value >> queue & 1)) continue;
      const Field length = TakeU16(c);
      AddLine(in, length, "Queue #%u Report: %u", queue, length.value);
    }
  }
}

bool IsMultipoint(uint32_t operation) { return operation >= kGate && operation <= kRegisterAck; }

}  // namespace

int32_t DecodeMacControl(const Place& at, Cursor c) {
  if (Left(c) < 2) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "MAC Control: %s", LookupName(kOperationNames,
      PeekU16(c))));
  Control control = ShowRows(in, c, kOperation);
  const uint32_t operation = control.operation.value;
  if (IsMultipoint(operation)) ShowRows<Control>(in, c, kTime, control);
  switch (operation) {
    case kPause: ShowRows<Control>(in, c, kPauseBody, control); break;
    case kPriorityPause: ShowRows<Control>(in, c, kPriorityBody, control); break;
    case kGate: ShowGate(in, c, control); break;
    case kReport: ShowReport(in, c, control); break;
    case kRegisterRequest: ShowRows<Control>(in, c, kRequest, control); break;
    case kRegister: ShowRows<Control>(in, c, kRegisterBody, control); break;
    case kRegisterAck: ShowRows<Control>(in, c, kAckBody, control); break;
    case kExtension: ShowRows<Control>(in, c, kExtensionBody, control); break;
    default: break;
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
