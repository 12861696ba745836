// USB as captures have it: the requests between Linux's or Windows' drivers and their host controller, with the setup
// packets
// and descriptors of control transfers (USB 2.0 chapter 9). What classes of devices carry is a block.
//
//   Linux     ID (8)  event  transfer  endpoint  device  bus (2)  no setup  no data  time (8, 4)  status (4)  lengths
// (4, 4)
//             setup (8)  [interval (4)  start frame (4)  flags (4)  descriptors (4)]  descriptors of frames  data
//   Windows   header length (2)  ID (8)  status (4)  function (2)  information  bus (2)  device (2)  endpoint  transfer
//             data length (4)  of the transfer
#include "decoders/link/usb.h"

#include "core/rows.h"

namespace qxview {
namespace {

enum Transfer : uint32_t { kIsochronous = 0, kInterrupt = 1, kControl = 2, kBulk = 3 };

constexpr auto kEventNames = SortedNames({{'C', "Complete"}, {'E', "Submission Error"}, {'S', "Submit"}});
constexpr auto kTransferNames = SortedNames({{0, "Isochronous"}, {1, "Interrupt"}, {2, "Control"}, {3, "Bulk"}});
constexpr auto kDirectionNames = SortedNames({{0, "Out"}, {1, "In"}});
constexpr auto kPresenceNames = SortedNames({{0, "Present"}, {'-', "Absent"}, {'<', "Absent, In"}, {'>',
    "Absent, Out"}});
constexpr auto kFunctionNames = SortedNames({
    {0x00, "Select Configuration"}, {0x01, "Select Interface"}, {0x02, "Abort Pipe"}, {0x03,
    "Take Frame Length Control"},
    {0x04, "Release Frame Length Control"}, {0x05, "Get Frame Length"}, {0x06, "Set Frame Length"},
    {0x07, "Get Current Frame Number"}, {0x08, "Control Transfer"}, {0x09, "Bulk or Interrupt Transfer"},
    {0x0A, "Isochronous Transfer"}, {0x0B, "Get Descriptor from Device"}, {0x0C, "Set Descriptor to Device"},
    {0x0D, "Set Feature to Device"}, {0x0E, "Set Feature to Interface"}, {0x0F, "Set Feature to Endpoint"},
    {0x10, "Clear Feature to Device"}, {0x11, "Clear Feature to Interface"}, {0x12, "Clear Feature to Endpoint"},
    {0x13, "Get Status from Device"}, {0x14, "Get Status from Interface"}, {0x15, "Get Status from Endpoint"},
    {0x17, "Vendor Device"}, {0x18, "Vendor Interface"}, {0x19, "Vendor Endpoint"}, {0x1A, "Class Device"},
    {0x1B, "Class Interface"}, {0x1C, "Class Endpoint"}, {0x1E, "Sync Reset Pipe and Clear Stall"}, {0x1F,
    "Class Other"},
    {0x20, "Vendor Other"}, {0x21, "Get Status from Other"}, {0x22, "Clear Feature to Other"}, {0x23,
    "Set Feature to Other"},
    {0x24, "Get Descriptor from Endpoint"}, {0x25, "Set Descriptor to Endpoint"}, {0x26, "Get Configuration"},
    {0x27, "Get Interface"}, {0x28, "Get Descriptor from Interface"}, {0x29, "Set Descriptor to Interface"},
    {0x2A, "Get OS Feature Descriptor"}, {0x30, "Sync Reset Pipe"}, {0x31, "Sync Clear Stall"}, {0x32,
    "Control Transfer Ex"}});
constexpr auto kStageNames = SortedNames({{0, "Setup"}, {1, "Data"}, {2, "Status"}, {3, "Complete"}});

constexpr auto kTransferFlags = SortedNames({
    {0x00000001, "Short Is an Error"}, {0x00000002, "Isochronous as Soon as Possible"}, {0x00000004, "No Transfer DMA Map"},
    {0x00000020, "No FSBR"}, {0x00000040, "Zero Packet"}, {0x00000080, "No Interrupt"}, {0x00000100, "Free Buffer"},
    {0x00000200, "Inward"}, {0x00010000, "DMA Map Single"}, {0x00020000, "DMA Map Page"}, {0x00040000, "DMA Map Scatter"},
    {0x00080000, "Map Local"}, {0x00100000, "Setup Map Single"}, {0x00200000, "Setup Map Local"},
    {0x00400000, "DMA Scatter Combined"}, {0x00800000, "Aligned Temporary Buffer"}});

struct Usb {
  Field event, transfer, endpoint, device, bus, setupFlag, dataFlag, urbLength, dataLength, frames, headerLength, stage;
};

// --- Linux ---

constexpr auto kLinux = LittleRows<Usb>({
    Hex(8, "URB ID"), Number(1, "Event", kEventNames).Into(&Usb::event),
    Number(1, "Transfer Type", kTransferNames).Into(&Usb::transfer), Hex(1, "Endpoint").Into(&Usb::endpoint),
    Bits(0, 1, "Direction", kDirectionNames), Bits(1, 3, "Reserved"), Bits(4, 4, "Endpoint Number"),
    Number(1, "Device").Into(&Usb::device), Number(2, "Bus").Into(&Usb::bus),
    Number(1, "Setup", kPresenceNames).Into(&Usb::setupFlag), Number(1, "Data", kPresenceNames).Into(&Usb::dataFlag),
    Signed(8, "Seconds"), Signed(4, "Microseconds"), Signed(4, "Status"), Number(4, "URB Length").Into(&Usb::urbLength),
    Number(4, "Data Length").Into(&Usb::dataLength)});
constexpr auto kUnusedSetup = LittleRows<Usb>({Bytes(8, "Unused Setup")});
constexpr auto kIsochronousSetup = LittleRows<Usb>({
    Signed(4, "Isochronous Errors"), Number(4, "Isochronous Descriptors")});
constexpr auto kLinuxMore = LittleRows<Usb>({
    Signed(4, "Interval"), Signed(4, "Start Frame"), Flags(4, "Transfer Flags", kTransferFlags), Number(4,
    "Frame Descriptors").Into(&Usb::frames)});
constexpr auto kFrame = LittleRows<Usb>({
    Signed(4, "Frame Status"), Number(4, "Frame Offset"), Number(4, "Frame Length"), Number(4, "Frame Padding")});

// --- Windows ---

constexpr auto kWindows = LittleRows<Usb>({
    Number(2, "Header Length").Into(&Usb::headerLength), Hex(8, "IRP ID"), Hex(4, "USBD Status"),
    Number(2, "Function", kFunctionNames), Word(1), Bits(0, 7, "Reserved"), Flag(7, "From Device to Host"),
    Number(2, "Bus").Into(&Usb::bus), Number(2, "Device").Into(&Usb::device), Hex(1, "Endpoint").Into(&Usb::endpoint),
    Bits(0, 1, "Direction", kDirectionNames), Bits(1, 3, "Reserved"), Bits(4, 4, "Endpoint Number"),
    Number(1, "Transfer Type", kTransferNames).Into(&Usb::transfer), Number(4, "Data Length").Into(&Usb::dataLength)});
constexpr auto kStage = LittleRows<Usb>({Number(1, "Control Stage", kStageNames).Note(", %s").Into(&Usb::stage)});
constexpr auto kWindowsFrames = LittleRows<Usb>({
    Number(4, "Start Frame"), Number(4, "Frame Descriptors").Into(&Usb::frames), Number(4, "Error Count")});
constexpr auto kWindowsFrame = LittleRows<Usb>({Number(4, "Frame Offset"), Number(4, "Frame Length"), Hex(4,
    "Frame Status")});

void ShowFrames(const Place& in, Cursor& c, RowSpan<Usb> rows, Usb& usb) {
  Loop loop;
  for (uint32_t i = 0; i < usb.frames.value && MoreAt(in, c, loop); ++i) {
    const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 12 ? Left(c) : 12), "Frame Descriptor #%u", i + 1));
    ShowRows<Usb>(under, c, rows, usb);
  }
}

void ShowData(const Place& in, Cursor& c, bool hasDescriptors) {
  if (hasDescriptors) ShowUsbDescriptors(in, c);
  ShowUsbStorage(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "USB Data");
}

const char* NameEvent(uint32_t event) { return LookupName(kEventNames, event); }

// Whether the data of a control transfer are descriptors: what the request before asked for is not kept, so the bytes
// tell.
bool StartDescriptors(const Cursor& c) {
  const uint32_t length = PeekU8(c), type = PeekU8(c, 1);
  if (type == 1) return length == 18;
  if (type == 2 || type == 7) return length == 9;
  if (type == 3) return length >= 2 && length <= static_cast<uint32_t>(Left(c)) && length % 2 == 0;
  if (type == 6) return length == 10;
  return type == 15 && length == 5;
}

int32_t DecodeLinuxUsb(const Place& at, Cursor c, bool hasMore) {
  constexpr int32_t kHeader = 48, kMore = 16;
  if (Left(c) < kHeader) return 0;
  const Usb ahead = PeekRows(c, kLinux);
  const int32_t whole = kHeader + (hasMore ? kMore : 0);
  const Place in = Under(at, AddLine(at, Ahead(c, whole < Left(c) ? whole : Left(c)),
      "USB: %s %s, Bus %u, Device %u, Endpoint %u",
                                     LookupName(kTransferNames, ahead.transfer.value), NameEvent(ahead.event.value),
                                     ahead.bus.value, ahead.device.value, ahead.endpoint.value & 15));
  Usb usb = ShowRows(in, c, kLinux);
  const bool hasSetup = usb.setupFlag.value == 0;
  if (hasSetup && usb.transfer.value == kControl) {
    ShowUsbSetup(in, c);
  } else {
    ShowRows<Usb>(in, c, usb.transfer.value == kIsochronous ? RowSpan<Usb>(kIsochronousSetup) :
    RowSpan<Usb>(kUnusedSetup), usb);
  }
  if (hasMore) ShowRows<Usb>(in, c, kLinuxMore, usb);
  if (hasMore && usb.transfer.value == kIsochronous) ShowFrames(in, c, kFrame, usb);
  ShowData(in, c, usb.transfer.value == kControl && StartDescriptors(c));
  return 1;
}

}  // namespace

int32_t DecodeUsbLinux(const Place& at, Cursor c) { return DecodeLinuxUsb(at, c, false); }
int32_t DecodeUsbLinuxMapped(const Place& at, Cursor c) { return DecodeLinuxUsb(at, c, true); }

int32_t DecodeUsbWindows(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 27;
  constexpr uint32_t kSetupStage = 0;
  if (Left(c) < kHeader || PeekLittleU16(c) < kHeader) return 0;
  const Usb ahead = PeekRows(c, kWindows);
  Cursor header = TakeCursor(c, ahead.headerLength.value);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "USB: %s, Bus %u, Device %u, Endpoint %u",
                                     LookupName(kTransferNames, ahead.transfer.value), ahead.bus.value,
                                     ahead.device.value,
                                     ahead.endpoint.value & 15));
  Usb usb = ShowRows(in, header, kWindows);
  usb.stage.value = kSetupStage + 1;
  if (usb.transfer.value == kControl && Left(header) > 0) ShowRows<Usb>(in, header, kStage, usb);
  if (usb.transfer.value == kIsochronous) {
    ShowRows<Usb>(in, header, kWindowsFrames, usb);
    ShowFrames(in, header, kWindowsFrame, usb);
  }
  header.ranShort = false;
  AddBlock(in, Rest(header), "Header Data");
  if (usb.stage.value == kSetupStage && Left(c) >= 8) ShowUsbSetup(in, c);
  ShowData(in, c, usb.transfer.value == kControl && StartDescriptors(c));
  return 1;
}

}  // namespace qxview
