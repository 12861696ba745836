// Mass storage over USB by bulk transfers alone (Bulk-Only Transport 1.0): the wrapper of a SCSI command, and its status.
#include "core/rows.h"
#include "decoders/link/usb.h"

namespace qxview {
namespace {

struct Storage {
  Field length;
};
constexpr auto kTransferDirections = SortedNames({{0, "Host to Device"}, {1, "Device to Host"}});
constexpr auto kOperations = SortedNames({
    {0x00, "TEST UNIT READY"}, {0x03, "REQUEST SENSE"}, {0x04, "FORMAT UNIT"}, {0x08, "READ(6)"}, {0x0A, "WRITE(6)"},
    {0x12, "INQUIRY"}, {0x15, "MODE SELECT(6)"}, {0x1A, "MODE SENSE(6)"}, {0x1B, "START STOP UNIT"},
    {0x1D, "SEND DIAGNOSTIC"}, {0x1E, "PREVENT ALLOW MEDIUM REMOVAL"}, {0x23, "READ FORMAT CAPACITIES"},
    {0x25, "READ CAPACITY(10)"}, {0x28, "READ(10)"}, {0x2A, "WRITE(10)"}, {0x2B, "SEEK(10)"}, {0x2E, "WRITE AND VERIFY(10)"},
    {0x2F, "VERIFY(10)"}, {0x35, "SYNCHRONIZE CACHE(10)"}, {0x42, "UNMAP"}, {0x43, "READ TOC"}, {0x46, "GET CONFIGURATION"},
    {0x4A, "GET EVENT STATUS NOTIFICATION"}, {0x51, "READ DISC INFORMATION"}, {0x55, "MODE SELECT(10)"},
    {0x5A, "MODE SENSE(10)"}, {0x85, "ATA PASS-THROUGH(16)"}, {0x88, "READ(16)"}, {0x8A, "WRITE(16)"},
    {0x9E, "SERVICE ACTION IN(16)"}, {0xA0, "REPORT LUNS"}, {0xA1, "ATA PASS-THROUGH(12)"}, {0xA8, "READ(12)"},
    {0xAA, "WRITE(12)"}});
constexpr auto kStatusNames = SortedNames({{0, "Command Passed"}, {1, "Command Failed"}, {2, "Phase Error"}});
constexpr auto kCommand = LittleRows<Storage>({
    Hex(4, "Signature"), Hex(4, "Tag"), Number(4, "Transfer Length", " bytes"), Hex(1, "Flags"),
    Bits(0, 1, "Transfer Direction", kTransferDirections), Bits(1, 7, "Reserved"), Word(1), Bits(0, 4, "Reserved"),
    Bits(4, 4, "Logical Unit"), Word(1), Bits(0, 3, "Reserved"), Bits(3, 5, "Command Length", " bytes").Into(&Storage::length)});
constexpr auto kStatus = LittleRows<Storage>({
    Hex(4, "Signature"), Hex(4, "Tag"), Number(4, "Residue", " bytes"), Number(1, "Status", kStatusNames).Note(", %s")});

}  // namespace

void ShowUsbStorage(const Place& in, Cursor& c) {
  constexpr uint32_t kCommandMark = 0x55534243, kStatusMark = 0x55534253;
  constexpr int32_t kCommandSize = 31, kStatusSize = 13;
  const bool isCommand = PeekU32(c) == kCommandMark && Left(c) == kCommandSize;
  if (!isCommand && (PeekU32(c) != kStatusMark || Left(c) != kStatusSize)) return;
  Storage storage{};
  if (!isCommand) {
    const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Command Status Wrapper"));
    return ShowRows<Storage>(under, c, kStatus, storage);
  }
  const uint32_t operation = PeekU8(c, 15);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Command Block Wrapper: %s", LookupName(kOperations, operation)));
  ShowRows<Storage>(under, c, kCommand, storage);
  const Field code = TakeU8(c), block = Rest(c);
  AddLine(under, code, "Operation Code: 0x%.02X = %s", code.value, LookupName(kOperations, code.value));
  AddLine(under, block, "Command Block: %s", HexText(block));
}

}  // namespace qxview
