// Bluetooth's host controller interface (Bluetooth Core, volume 4): commands to the controller and its events with
// their
// parameters, and the headers of data. What the data carry is a block.
//
//   of a serial line: packet type (1); of captures with a direction in front: direction (4)
//   command  operation code (2)  length (1)      event  code (1)  length (1)
//   data     handle and flags (2)  length (2; of synchronous data 1)
#include "decoders/link/bluetooth_hci.h"

namespace qxview {
namespace {

enum PacketType : uint32_t { kCommand = 1, kData = 2, kSynchronous = 3, kEvent = 4, kIsochronous = 5 };
enum EventCode : uint32_t { kCommandComplete = 0x0E, kCommandStatus = 0x0F, kLowEnergy = 0x3E };

constexpr auto kTypeNames = SortedNames({
    {1, "Command"}, {2, "ACL Data"}, {3, "Synchronous Data"}, {4, "Event"}, {5, "ISO Data"}});
constexpr auto kDirectionNames = SortedNames({{0, "Host to Controller"}, {1, "Controller to Host"}});
constexpr auto kBoundaryNames = SortedNames({
    {0, "First, Not Automatically Flushable"}, {1, "Continuing"}, {2, "First, Automatically Flushable"}, {3,
    "Complete"}});
constexpr auto kBroadcastNames = SortedNames({{0, "Point-to-Point"}, {1, "Broadcast to Active"}, {2, "Reserved"}, {3,
    "Reserved"}});
constexpr auto kStatusNames = SortedNames({{0, "Good"}, {1, "Possibly Invalid"}, {2, "No Data"}, {3,
    "Partially Lost"}});
constexpr auto kFragmentNames = SortedNames({{0, "First"}, {1, "Continuing"}, {2, "Complete"}, {3, "Last"}});
constexpr auto kGroupNames = SortedNames({
    {1, "Link Control"}, {2, "Link Policy"}, {3, "Controller and Baseband"}, {4, "Informational"}, {5, "Status"}, {6,
    "Testing"},
    {8, "LE Controller"}, {0x3E, "Logo Testing"}, {0x3F, "Vendor Specific"}});
constexpr auto kAdvertisingTypes = SortedNames({
    {0, "Connectable Undirected"}, {1, "Connectable Directed"}, {2, "Scannable Undirected"}, {3, "Not Connectable"},
    {4, "Scan Response"}});
constexpr auto kAddressTypes = SortedNames({
    {0, "Public"}, {1, "Random"}, {2, "Public Identity"}, {3, "Random Identity"}, {0xFF, "Anonymous"}});

struct Hci {
  Field group, command, length, handle, event, reports, dataLength;
};
constexpr auto kOperation = LittleRows<Hci>({
    Hex(2, "Operation Code").Into(&Hci::command), Bits(0, 6, "Group", kGroupNames), Bits(6, 10, "Command Number")});
constexpr auto kLength1 = LittleRows<Hci>({Number(1, "Parameter Length").Into(&Hci::length)});
constexpr auto kDataHead = LittleRows<Hci>({
    Word(2), Bits(4, 12, "Connection Handle").Into(&Hci::handle), Bits(2, 2, "Packet Boundary", kBoundaryNames),
    Bits(0, 2, "Broadcast", kBroadcastNames), Number(2, "Data Length").Into(&Hci::length)});
constexpr auto kSynchronousHead = LittleRows<Hci>({
    Word(2), Bits(4, 12, "Connection Handle").Into(&Hci::handle), Bits(2, 2, "Packet Status", kStatusNames), Bits(0, 2,
    "Reserved"),
    Number(1, "Data Length").Into(&Hci::length)});
constexpr auto kIsochronousHead = LittleRows<Hci>({
    Word(2), Bits(4, 12, "Connection Handle").Into(&Hci::handle), Bits(2, 2, "Fragment", kFragmentNames),
    Flag(1, "Time Stamp Present"), Bits(0, 1, "Reserved"), Word(2), Bits(0, 2, "Reserved"),
    Bits(2, 14, "Data Length").Into(&Hci::length)});
constexpr auto kComplete = LittleRows<Hci>({Number(1, "Allowed Command Packets")});
constexpr auto kReportCount = LittleRows<Hci>({Number(1, "Number of Reports").Into(&Hci::reports)});
constexpr auto kReport = LittleRows<Hci>({
    Number(1, "Advertising Event Type", kAdvertisingTypes), Number(1, "Address Type", kAddressTypes)});
constexpr auto kDataStatusNames = SortedNames({
    {0, "Complete"}, {1, "Incomplete, More to Come"}, {2, "Incomplete, Truncated"}, {3, "Reserved"}});
constexpr auto kExtendedReport = LittleRows<Hci>({
    Hex(2, "Extended Event Type"), Bits(0, 9, "Reserved"), Bits(9, 2, "Data Status", kDataStatusNames), Flag(11, "Legacy"),
    Flag(12, "Scan Response"), Flag(13, "Directed"), Flag(14, "Scannable"), Flag(15, "Connectable"), Number(1, "Address Type",
    kAddressTypes)});
constexpr auto kExtendedReportRest = LittleRows<Hci>({
    Hex(1, "Primary PHY"), Hex(1, "Secondary PHY"), Number(1, "Advertising SID"), Signed(1, "Transmit Power", " dBm"),
    Signed(1, "RSSI", " dBm"), Number(2, "Periodic Interval"), Number(1, "Direct Address Type", kAddressTypes)});
constexpr auto kReportLength = LittleRows<Hci>({Number(1, "Report Data Length").Into(&Hci::dataLength)});
constexpr auto kStrength = LittleRows<Hci>({Signed(1, "RSSI", " dBm")});

struct AddressBytes {
  uint8_t bytes[6];
};
AddressBytes TurnAround(const Field& field) {   // the standard writes the last octet first
  AddressBytes turned{};
  for (int32_t i = 0; i < 6; ++i) turned.bytes[i] = static_cast<uint8_t>(PeekU8(field, 5 - i));
  return turned;
}
void ShowAddress(const Place& in, Cursor& c, const char* name) {
  const Field field = TakeBytes(c, 6);
  const AddressBytes address = TurnAround(field);
  AddLine(in, field, "%s: %s", name, MacText(address.bytes));
}

void ShowParameter(const Place& in, Cursor& c, const HciParameter& parameter) {
  if (parameter.kind == HciKind::kAddress) return ShowAddress(in, c, parameter.name);
  const int32_t size = parameter.size ? parameter.size : Left(c);
  const Field field = TakeBytes(c, size < Left(c) || parameter.kind < HciKind::kText ? size : Left(c));
  if (!field.here || field.length == 0) return;
  const uint64_t number = field.length <= 8 ? detail::NumberOf(field, true) : 0;
  switch (parameter.kind) {
    case HciKind::kNumber:
      // keys: tables decoders/link/bluetooth_hci_tables.cpp
      if (parameter.names) {
        const char* name = LookupName(parameter.names, static_cast<uint32_t>(number), parameter.nameCount, kUnknown);
        AddLine(in, field, "%s: 0x%.02X = %s", parameter.name, static_cast<uint32_t>(number), name);
      } else {
        AddLine(in, field, "%s: %I64u", parameter.name, number);
      }
      return;
    case HciKind::kSigned: {
      const int32_t shift = 64 - 8 * field.length;
      AddLine(in, field, "%s: %I64d", parameter.name, static_cast<int64_t>(number << shift) >> shift);
      return;
    }
    case HciKind::kHex:
      ShowHciBits(Under(in, AddLine(in, field, "%s: 0x%I64X", parameter.name, number)), field, parameter.name);
      return;
    case HciKind::kHandle:
      AddLine(in, field, "%s: 0x%.04X", parameter.name, static_cast<uint32_t>(number) & 0x0FFF);
      return;
    case HciKind::kText: AddLine(in, field, "%s: %s", parameter.name, Text(field)); return;
    default:
      if (field.length <= 64) {
        ShowHciBits(Under(in, AddLine(in, field, "%s: %s", parameter.name, HexText(field))), field, parameter.name);
      } else {
        AddBlock(in, field, parameter.name);
      }
      return;
  }
}

void ShowReports(const Place& in, Cursor& c, bool isExtended, Hci& hci) {
  ShowRows<Hci>(in, c, kReportCount, hci);
  Loop loop;
  for (uint32_t i = 0; i < hci.reports.value && MoreAt(in, c, loop); ++i) {
    const int32_t begin = c.offset;
    const Place under = Under(in, AddLine(in, Ahead(c, 0), "Report #%u", i + 1));
    ShowRows<Hci>(under, c, isExtended ? RowSpan<Hci>(kExtendedReport) : RowSpan<Hci>(kReport), hci);
    ShowAddress(under, c, "Address");
    if (isExtended) {
      ShowRows<Hci>(under, c, kExtendedReportRest, hci);
      ShowAddress(under, c, "Direct Address");
    }
    ShowRows<Hci>(under, c, kReportLength, hci);
    Cursor data = TakeCursor(c, hci.dataLength.value);
    AddBlock(under, Rest(data), "Advertising Data");
    if (!isExtended) ShowRows<Hci>(under, c, kStrength, hci);
    if (!under.dead) SetRange(under, under.parent, begin, c.offset - begin);
  }
}

const char* NameCommand(uint32_t code) {
  const HciCommand* command = FindHciCommand(code);
  return command ? command->name : code >> 10 == 0x3F ? "Vendor Specific" : kUnknown;
}

void ShowCommandEvent(const Place& in, Cursor& c, bool isStatus, Hci& hci) {
  if (isStatus) {
    const Field status = TakeU8(c);
    AddLine(in, status, "Status: 0x%.02X = %s", status.value, NameHciStatus(status.value));
  }
  ShowRows<Hci>(in, c, kComplete, hci);
  const uint32_t code = PeekLittleU16(c);
  ShowRows<Hci>(in, c, kOperation, hci);
  AppendToParent(in, hci.command, ", %s", NameCommand(code));
  if (isStatus) return;
  const HciCommand* command = FindHciCommand(code);
  // A command that failed brings its status alone.
  ShowHciParameters(in, c, command ? command->returned : HciParameters{});
}

void ShowEvent(const Place& in, Cursor& c, uint32_t code, Hci& hci) {
  constexpr uint32_t kAdvertisingReport = 2, kExtendedAdvertisingReport = 13;
  if (code == kCommandComplete || code == kCommandStatus) return ShowCommandEvent(in, c, code == kCommandStatus, hci);
  if (code != kLowEnergy) {
    const HciEvent* event = FindHciEvent(code);
    return ShowHciParameters(in, c, event ? event->parameters : HciParameters{});
  }
  const Field subevent = TakeU8(c);
  const HciEvent* event = FindHciLowEnergyEvent(subevent.value);
  const char* name = event ? event->name : kUnknown;
  AddLine(in, subevent, "Subevent: 0x%.02X = %s", subevent.value, name);
  AppendToParent(in, subevent, ", %s", name);
  if (subevent.value == kAdvertisingReport || subevent.value == kExtendedAdvertisingReport) {
    return ShowReports(in, c, subevent.value == kExtendedAdvertisingReport, hci);
  }
  ShowHciParameters(in, c, event ? event->parameters : HciParameters{});
}

int32_t DecodeCommand(const Place& at, Cursor c) {
  const uint32_t code = PeekLittleU16(c);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Bluetooth HCI Command: %s", NameCommand(code)));
  Hci hci = ShowRows(in, c, kOperation);
  ShowRows<Hci>(in, c, kLength1, hci);
  Cursor parameters = TakeCursor(c, hci.length.value);
  const HciCommand* command = FindHciCommand(code);
  ShowHciParameters(in, parameters, command ? command->sent : HciParameters{});
  parameters.ranShort = false;
  AddBlock(in, Rest(parameters), "Parameters");
  AddBlock(in, Rest(c), "HCI Data");
  return 1;
}

int32_t DecodeEvent(const Place& at, Cursor c) {
  const HciEvent* event = FindHciEvent(PeekU8(c));
  const char* name = event ? event->name : kUnknown;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Bluetooth HCI Event: %s", name));
  const Field code = TakeU8(c);
  AddLine(in, code, "Event Code: 0x%.02X = %s", code.value, name);
  Hci hci{};
  ShowRows<Hci>(in, c, kLength1, hci);
  Cursor parameters = TakeCursor(c, hci.length.value);
  ShowEvent(in, parameters, code.value, hci);
  parameters.ranShort = false;
  AddBlock(in, Rest(parameters), "Parameters");
  AddBlock(in, Rest(c), "HCI Data");
  return 1;
}

int32_t DecodeData(const Place& at, Cursor c, uint32_t type) {
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "Bluetooth HCI %s: Handle 0x%.04X", LookupName(kTypeNames,
      type),
                                     PeekLittleU16(c) & 0x0FFF));
  Hci hci{};
  ShowRows<Hci>(in, c, type == kData ? RowSpan<Hci>(kDataHead) : type == kSynchronous ? RowSpan<Hci>(kSynchronousHead)
                                                                                      : RowSpan<Hci>(kIsochronousHead),
                                                                                          hci);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Data");
  return 1;
}

}  // namespace

void ShowHciParameters(const Place& in, Cursor& c, const HciParameters& parameters) {
  for (int32_t i = 0; i < parameters.count && Left(c) > 0; ++i) ShowParameter(in, c, parameters.rows[i]);
}

int32_t DecodeHci(const Place& at, Cursor c) {
  if (Left(c) < 3) return 0;
  const Field type = TakeU8(c);
  const Place in = Under(at, AddLine(at, type, "Bluetooth HCI Packet: %s", LookupName(kTypeNames, type.value)));
  AddLine(in, type, "Packet Type: %u = %s", type.value, LookupName(kTypeNames, type.value));
  switch (type.value) {
    case kCommand: return DecodeCommand(at, c);
    case kEvent: return DecodeEvent(at, c);
    case kData:
    case kSynchronous:
    case kIsochronous: return DecodeData(at, c, type.value);
    default: return CallDecoder(at, c, nullptr, "HCI Data");
  }
}

int32_t DecodeHciWithDirection(const Place& at, Cursor c) {
  if (Left(c) < 7) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "Bluetooth HCI Direction: %s", LookupName(kDirectionNames,
      PeekU32(c))));
  const Field direction = TakeU32(c);
  AddLine(in, direction, "Direction: %u = %s", direction.value, LookupName(kDirectionNames, direction.value));
  return DecodeHci(at, c);
}

}  // namespace qxview
