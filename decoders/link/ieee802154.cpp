// IEEE 802.15.4: low-rate wireless networks. What the MAC header's fields are is told by its frame control: which
// addresses
// there are and how long, whether a security header or information elements follow. What is carried above is a block.
//
//   frame control (2)   sequence (1)   PANs (2) and addresses (2 or 8)   security header   elements   payload   check
// (2)
//
// Numbers have their low byte first; so have addresses, which are shown with their high byte first.
#include "core/elements.h"
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/link/ieee802154.h"
#include "decoders/link/medium.h"

namespace qxview {
namespace {

enum FrameType : uint32_t { kBeacon, kData, kAcknowledgement, kCommand, kReservedType, kMultipurpose, kFragment,
    kExtended };
enum AddressMode : uint32_t { kNone = 0, kShort = 2, kExtendedAddress = 3 };
constexpr uint32_t kVersion2015 = 2;

constexpr auto kTypeNames = SortedNames({
    {0, "Beacon"}, {1, "Data"}, {2, "Acknowledgement"}, {3, "Command"}, {4, "Reserved"}, {5, "Multipurpose"},
    {6, "Fragment"}, {7, "Extended"}});
constexpr auto kModeNames = SortedNames({{0, "None"}, {1, "Reserved"}, {2, "Short"}, {3, "Extended"}});
constexpr auto kVersionNames = SortedNames({
    {0, "IEEE 802.15.4-2003"}, {1, "IEEE 802.15.4-2006"}, {2, "IEEE 802.15.4-2015"}, {3, "Reserved"}});
constexpr auto kLevelNames = SortedNames({
    {0, "None"}, {1, "MIC-32"}, {2, "MIC-64"}, {3, "MIC-128"}, {4, "Encryption"}, {5, "Encryption with MIC-32"},
    {6, "Encryption with MIC-64"}, {7, "Encryption with MIC-128"}});
constexpr auto kKeyModeNames = SortedNames({
    {0, "Implicit"}, {1, "Key Index"}, {2, "4-byte Source and Index"}, {3, "8-byte Source and Index"}});
constexpr auto kCommandNames = SortedNames({
    {0x01, "Association Request"}, {0x02, "Association Response"}, {0x03, "Disassociation Notification"},
    {0x04, "Data Request"}, {0x05, "PAN ID Conflict Notification"}, {0x06, "Orphan Notification"}, {0x07,
    "Beacon Request"},
    {0x08, "Coordinator Realignment"}, {0x09, "GTS Request"}, {0x0A, "TRLE Management Request"},
    {0x0B, "TRLE Management Response"}, {0x13, "DSME Association Request"}, {0x14, "DSME Association Response"},
    {0x15, "DSME GTS Request"}, {0x16, "DSME GTS Response"}, {0x17, "DSME GTS Notify"}, {0x18,
    "DSME Information Request"},
    {0x19, "DSME Information Response"}, {0x1A, "DSME Beacon Allocation Notification"},
    {0x1B, "DSME Beacon Collision Notification"}, {0x1C, "DSME Link Report"}, {0x20, "RIT Data Request"},
    {0x21, "DBS Request"}, {0x22, "DBS Response"}, {0x23, "RIT Data Response"}, {0x24, "Vendor Specific"}});
constexpr auto kAssociationStatus = SortedNames({
    {0, "Association Successful"}, {1, "PAN at Capacity"}, {2, "PAN Access Denied"}, {3,
    "Hopping Sequence Offset Duplication"},
    {0x80, "Fast Association Successful"}});
constexpr auto kDisassociationReasons = SortedNames({
    {0, "Reserved"}, {1, "Coordinator Wishes Device to Leave"}, {2, "Device Wishes to Leave"}});
constexpr auto kDirectionNames = SortedNames({{0, "Transmit"}, {1, "Receive"}});
constexpr auto kHeaderElements = SortedNames({
    {0x00, "Vendor Specific Header"}, {0x1A, "LE CSL"}, {0x1B, "LE RIT"}, {0x1C, "DSME PAN Descriptor"},
    {0x1D, "Rendezvous Time"}, {0x1E, "Time Correction"}, {0x21, "Extended DSME PAN Descriptor"},
    {0x22, "Fragment Sequence Context"}, {0x23, "Simplified Superframe"}, {0x24, "Simplified GTS"},
    {0x25, "LECIM Capabilities"}, {0x26, "TRLE Descriptor"}, {0x27, "RCC Capabilities"}, {0x28, "RCCN Descriptor"},
    {0x29, "Global Time"}, {0x2A, "Assigned to WI-SUN"}, {0x2B, "DA"}, {0x7E, "Header Termination 1"},
    {0x7F, "Header Termination 2"}});
constexpr auto kPayloadElements = SortedNames({
    {0, "Encapsulated Service Data Unit"}, {1, "MLME"}, {2, "Vendor Specific"}, {3, "MPX"}, {4, "WI-SUN"}, {5, "IETF"},
    {15, "Payload Termination"}});
constexpr auto kNestedElements = SortedNames({
    {0x09, "TSCH Channel Hopping"}, {0x19, "Nested Channel Time"}, {0x1A, "TSCH Synchronization"},
    {0x1B, "TSCH Slotframe and Link"}, {0x1C, "TSCH Timeslot"}, {0x1D, "Hopping Timing"}, {0x1E,
    "Enhanced Beacon Filter"},
    {0x1F, "MAC Metrics 1"}, {0x20, "MAC Metrics 2"}, {0x21, "Coexistence"},
    {0x22, "SUN Device Capabilities"}, {0x23, "SUN FSK Generic PHY"}, {0x24, "Mode Switch Parameter"},
    {0x25, "PHY Parameter Change"}, {0x26, "O-QPSK PHY Mode"}, {0x27, "PCA Allocation"}, {0x28, "DSSS Operating Mode"},
    {0x29, "FSK Operating Mode"}, {0x2B, "TVWS PHY Operating Mode"}, {0x2C, "TVWS Device Capabilities"},
    {0x2D, "TVWS Device Category"}, {0x2E, "TVWS Device Identification"}, {0x2F, "TVWS Device Location"},
    {0x30, "TVWS Channel Information Query"}, {0x31, "TVWS Channel Information Source"}, {0x32, "CTM"}, {0x33,
    "Timestamp"},
    {0x34, "Timestamp Difference"}, {0x35, "TMCTP"}, {0x36, "RCC PHY Operating Mode"}});

struct Wpan {
  Field type, secured, compressed, sequenceSuppressed, elements, destinationMode, version, sourceMode;
  Field level, keyMode, counterSuppressed, command, panPresent, nonceSuppressed;
};

constexpr auto kControl = LittleRows<Wpan>({
    Hex(2, "Frame Control"), Bits(13, 3, "Frame Type", kTypeNames).Into(&Wpan::type),
    Flag(12, "Security Enabled").Into(&Wpan::secured), Flag(11, "Frame Pending"), Flag(10, "Acknowledgement Request"),
    Flag(9, "PAN ID Compression").Into(&Wpan::compressed), Flag(8, "Reserved"),
    Flag(7, "Sequence Number Suppression").Into(&Wpan::sequenceSuppressed),
    Flag(6, "Information Elements Present").Into(&Wpan::elements),
    Bits(4, 2, "Destination Addressing Mode", kModeNames).Into(&Wpan::destinationMode),
    Bits(2, 2, "Frame Version", kVersionNames).Into(&Wpan::version),
    Bits(0, 2, "Source Addressing Mode", kModeNames).Into(&Wpan::sourceMode)});
// Multipurpose frames have one byte of control unless they say that there are two.
constexpr auto kShortControl = LittleRows<Wpan>({
    Hex(1, "Frame Control"), Bits(5, 3, "Frame Type", kTypeNames).Into(&Wpan::type), Flag(4, "Long Frame Control"),
    Bits(2, 2, "Destination Addressing Mode", kModeNames).Into(&Wpan::destinationMode),
    Bits(0, 2, "Source Addressing Mode", kModeNames).Into(&Wpan::sourceMode)});
constexpr auto kLongControl = LittleRows<Wpan>({
    Hex(2, "Frame Control"), Bits(13, 3, "Frame Type", kTypeNames).Into(&Wpan::type), Flag(12, "Long Frame Control"),
    Bits(10, 2, "Destination Addressing Mode", kModeNames).Into(&Wpan::destinationMode),
    Bits(8, 2, "Source Addressing Mode", kModeNames).Into(&Wpan::sourceMode),
    Flag(7, "PAN ID Present").Into(&Wpan::panPresent), Flag(6, "Security Enabled").Into(&Wpan::secured),
    Flag(5, "Sequence Number Suppression").Into(&Wpan::sequenceSuppressed), Flag(4, "Frame Pending"),
    Bits(2, 2, "Multipurpose Frame Version"), Flag(1, "Acknowledgement Request"),
    Flag(0, "Information Elements Present").Into(&Wpan::elements)});
constexpr auto kSequence = Rows<Wpan>({Number(1, "Sequence Number").Note(", Sequence %u")});
constexpr auto kSecurity = LittleRows<Wpan>({
    Hex(1, "Security Control"), Bits(5, 3, "Security Level", kLevelNames).Into(&Wpan::level),
    Bits(3, 2, "Key Identifier Mode", kKeyModeNames).Into(&Wpan::keyMode),
    Flag(2, "Frame Counter Suppression").Into(&Wpan::counterSuppressed),
    Flag(1, "ASN in Nonce").Into(&Wpan::nonceSuppressed), Bits(0, 1, "Reserved")});
constexpr auto kCounter = LittleRows<Wpan>({Number(4, "Frame Counter")});
constexpr auto kKeySource4 = LittleRows<Wpan>({Hex(4, "Key Source"), Number(1, "Key Index")});
constexpr auto kKeySource8 = LittleRows<Wpan>({Hex(8, "Key Source"), Number(1, "Key Index")});
constexpr auto kKeyIndex = LittleRows<Wpan>({Number(1, "Key Index")});

constexpr auto kSuperframe = LittleRows<Wpan>({
    Hex(2, "Superframe Fields"), Bits(12, 4, "Beacon Order"), Bits(8, 4, "Superframe Order"),
    Bits(4, 4, "Final CAP Slot"), Flag(3, "Battery Life Extension"), Bits(2, 1, "Reserved"), Flag(1, "PAN Coordinator"),
    Flag(0, "Association Permit")});
constexpr auto kGts = LittleRows<Wpan>({
    Hex(1, "GTS Fields"), Flag(0, "GTS Permit"), Bits(1, 4, "Reserved"), Bits(5, 3, "GTS Descriptor Count")});
constexpr auto kGtsDescriptor = LittleRows<Wpan>({
    Hex(2, "GTS Device Address"), Hex(1, "GTS Slots"), Bits(0, 4, "GTS Length"), Bits(4, 4, "GTS Starting Slot")});
constexpr auto kPending = LittleRows<Wpan>({
    Hex(1, "Pending Addresses"), Bits(0, 1, "Reserved"), Bits(1, 3, "Extended Addresses Pending"), Bits(4, 1,
    "Reserved"),
    Bits(5, 3, "Short Addresses Pending")});
constexpr auto kPendingShort = LittleRows<Wpan>({Hex(2, "Pending Short Address")});
constexpr auto kPendingExtended = LittleRows<Wpan>({Hex(8, "Pending Extended Address")});

constexpr auto kCommandId = LittleRows<Wpan>({Number(1, "Command", kCommandNames).Note(", %s").Into(&Wpan::command)});
constexpr auto kAssociationRequest = LittleRows<Wpan>({
    Hex(1, "Capability Information"), Flag(0, "Allocate Address"), Flag(1, "Security Capability"),
    Bits(2, 1, "Reserved"), Flag(3, "Fast Association"), Flag(4, "Receiver On When Idle"), Flag(5, "Mains Powered"),
    Flag(6, "Full-function Device"), Flag(7, "Alternate PAN Coordinator")});
constexpr auto kAssociationResponse = LittleRows<Wpan>({
    Hex(2, "Assigned Short Address"), Number(1, "Association Status", kAssociationStatus)});
constexpr auto kDisassociation = LittleRows<Wpan>({Number(1, "Disassociation Reason", kDisassociationReasons)});
constexpr auto kRealignment = LittleRows<Wpan>({
    Hex(2, "PAN ID"), Hex(2, "Coordinator Short Address"), Number(1, "Channel"), Hex(2, "Short Address")});
constexpr auto kChannelPage = LittleRows<Wpan>({Number(1, "Channel Page")});
constexpr auto kGtsRequest = LittleRows<Wpan>({
    Hex(1, "GTS Characteristics"), Bits(0, 2, "Reserved"), Flag(2, "Allocation"), Bits(3, 1, "GTS Direction",
    kDirectionNames),
    Bits(4, 4, "GTS Length")});

// Fields of the TAP header.
constexpr auto kChecks = SortedNames({{0, "None"}, {1, "CRC-16"}, {2, "CRC-32"}});
constexpr auto kTapCheck = LittleRows<Wpan>({Number(1, "FCS Type", kChecks).Into(&Wpan::type)});
constexpr auto kStrength = LittleRows<Wpan>({Float(4, "RSS")});
constexpr auto kRate = LittleRows<Wpan>({Float(4, "Bit Rate")});
constexpr auto kAssignment = LittleRows<Wpan>({Number(2, "Channel Number"), Number(1, "Channel Page")});
constexpr auto kFskRate = LittleRows<Wpan>({Number(1, "Band"), Number(1, "Modulation"), Number(1, "Mode")});
constexpr auto kTapTime = LittleRows<Wpan>({Number(8, "Time", " ns")});
constexpr auto kSlots = LittleRows<Wpan>({Number(8, "Absolute Slot Number")});
constexpr auto kSlotTime = LittleRows<Wpan>({Number(4, "Timeslot Length", " us")});
constexpr auto kQuality = LittleRows<Wpan>({Number(1, "Link Quality Indicator")});
constexpr auto kFrequency = LittleRows<Wpan>({Float(4, "Center Frequency")});
constexpr auto kTapFields = Choices<Wpan>({
    {0, "FCS Type", kTapCheck}, {1, "Receive Signal Strength", kStrength}, {2, "Bit Rate", kRate},
    {3, "Channel Assignment", kAssignment}, {4, "SUN FSK PHY", kFskRate}, {5, "Start of Frame Timestamp", kTapTime},
    {6, "End of Frame Timestamp", kTapTime}, {7, "Absolute Slot Number", kSlots}, {8, "Start of Slot Timestamp",
    kTapTime},
    {9, "Timeslot Length", kSlotTime}, {10, "Link Quality Indicator", kQuality}, {11, "Channel Center Frequency",
    kFrequency},
    {12, "Channel Plan"}, {13, "PHY Header"}});

// --- parts of a frame ---

void ShowAddress(const Place& in, Cursor& c, uint32_t mode, const char* label) {
  if (mode == kShort) {
    const Field address = TakeLittleU16(c);
    AddLine(in, address, "%s Address: 0x%.04X", label, address.value);
    AppendToParent(in, address, ", %s 0x%.04X", label, address.value);
  } else if (mode == kExtendedAddress) {
    const Field address = TakeBytes(c, 8);
    uint8_t highFirst[8];
    for (int32_t i = 0; i < 8; ++i) highFirst[i] = static_cast<uint8_t>(PeekU8(address, 7 - i));
    const HexSlice text{highFirst, 8, ':'};
    AddLine(in, address, "%s Address: %s", label, text);
    AppendToParent(in, address, ", %s %s", label, text);
  }
}
void ShowPan(const Place& in, Cursor& c, const char* label) {
  const Field pan = TakeLittleU16(c);
  AddLine(in, pan, "%s PAN ID: 0x%.04X", label, pan.value);
}

struct Pans {
  bool destination, source;
};
// Frames of the versions before 2015 leave the source's PAN out when it is the destination's; those of 2015 have a
// table.
Pans PansOf(const Wpan& wpan) {
  const uint32_t to = wpan.destinationMode.value, from = wpan.sourceMode.value;
  const bool compressed = wpan.compressed.value != 0;
  if (wpan.version.value < kVersion2015) return {to != kNone, from != kNone && !(compressed && to != kNone)};
  if (to == kNone && from == kNone) return {compressed, false};
  if (to != kNone && from == kNone) return {!compressed, false};
  if (to == kNone) return {false, !compressed};
  if (to == kExtendedAddress && from == kExtendedAddress) return {!compressed, false};
  return {true, !compressed};
}

void ShowAddresses(const Place& in, Cursor& c, const Wpan& wpan) {
  const Pans pans = wpan.type.value == kMultipurpose ? Pans{wpan.panPresent.value != 0, false} : PansOf(wpan);
  if (pans.destination) ShowPan(in, c, "Destination");
  ShowAddress(in, c, wpan.destinationMode.value, "Destination");
  if (pans.source) ShowPan(in, c, "Source");
  ShowAddress(in, c, wpan.sourceMode.value, "Source");
}

void ShowSecurity(const Place& at, Cursor& c, Wpan& wpan) {
  const Place in = Under(at, AddLine(at, Ahead(c, 1), "Auxiliary Security Header"));
  const int32_t begin = c.offset;
  ShowRows<Wpan>(in, c, kSecurity, wpan);
  if (wpan.version.value < kVersion2015 || !wpan.counterSuppressed.value) ShowRows<Wpan>(in, c, kCounter, wpan);
  if (wpan.keyMode.value == 1) ShowRows<Wpan>(in, c, kKeyIndex, wpan);
  if (wpan.keyMode.value == 2) ShowRows<Wpan>(in, c, kKeySource4, wpan);
  if (wpan.keyMode.value == 3) ShowRows<Wpan>(in, c, kKeySource8, wpan);
  if (!in.dead) SetRange(in, in.parent, begin, c.offset - begin);
}

// An element's head: a word whose upper bit tells the kinds apart, and its length in the lower ones.
struct ElementShape {
  const char* title;
  uint32_t lengthBits, idBits;
  Names names;
  void (*show)(const Place& in, Cursor& c, uint32_t id);
};

// Shows one element; its identifier.
uint32_t ShowElement(const Place& at, Cursor& c, const ElementShape& shape) {
  const uint32_t word = PeekLittleU16(c), id = word >> shape.lengthBits & ((1u << shape.idBits) - 1);
  const uint32_t length = word & ((1u << shape.lengthBits) - 1);
  const int32_t whole = 2 + static_cast<int32_t>(length);
  const Place in = Under(at, AddLine(at, Ahead(c, whole < Left(c) ? whole : Left(c)), "%s: %s", shape.title,
                                     shape.names.NameOf(id)));
  const Field head = TakeLittleU16(c);
  AddLine(in, head, "Element ID: %u = %s", id, shape.names.NameOf(id));
  AddLine(in, head, "Element Length: %u", length);
  Cursor value = TakeCursor(c, length);
  if (shape.show) shape.show(in, value, id);
  value.ranShort = false;
  AddBlock(in, Rest(value), "Element Data");
  return id;
}
void ShowShortValue(const Place& in, Cursor& c, uint32_t id) { ShowWpanNestedElement(in, c, id, false); }
void ShowLongValue(const Place& in, Cursor& c, uint32_t id) { ShowWpanNestedElement(in, c, id, true); }
// Elements of the payload: MLME's nest others, the others are their owners'.
void ShowPayloadValue(const Place& in, Cursor& c, uint32_t id) {
  constexpr uint32_t kManagement = 1, kVendorSpecific = 2;
  constexpr ElementShape kShortShape{"Short Element", 8, 7, kNestedElements, ShowShortValue},
      kLongShape{"Long Element", 11, 4, kNestedElements, ShowLongValue};
  if (id == kVendorSpecific) ShowWpanVendor(in, c);
  if (id != kManagement) return;
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) ShowElement(in, c, PeekLittleU16(c) & 0x8000 ? kLongShape : kShortShape);
}

// True when elements of the payload follow those of the header.
bool ShowHeaderElements(const Place& in, Cursor& c) {
  constexpr uint32_t kTermination1 = 0x7E, kTermination2 = 0x7F;
  constexpr ElementShape kShape{"Header Element", 7, 8, kHeaderElements, ShowWpanHeaderElement};
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t id = ShowElement(in, c, kShape);
    if (id == kTermination1) return true;
    if (id == kTermination2) return false;
  }
  return false;
}
void ShowPayloadElements(const Place& in, Cursor& c) {
  constexpr uint32_t kTermination = 15;
  constexpr ElementShape kShape{"Payload Element", 11, 4, kPayloadElements, ShowPayloadValue};
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    if (ShowElement(in, c, kShape) == kTermination) return;
  }
}

void ShowRepeated(const Place& in, Cursor& c, RowSpan<Wpan> rows, uint32_t count, Wpan& wpan) {
  for (uint32_t i = 0; i < count && Left(c) > 0; ++i) ShowRows<Wpan>(in, c, rows, wpan);
}

void ShowBeacon(const Place& in, Cursor& c, Wpan& wpan) {
  ShowRows<Wpan>(in, c, kSuperframe, wpan);
  const uint32_t descriptors = PeekU8(c) & 7;
  ShowRows<Wpan>(in, c, kGts, wpan);
  if (descriptors) {
    const Field directions = TakeU8(c);
    AddLine(in, directions, "GTS Directions: 0x%.02X", directions.value & 0x7F);
    ShowRepeated(in, c, kGtsDescriptor, descriptors, wpan);
  }
  const uint32_t pending = PeekU8(c);
  ShowRows<Wpan>(in, c, kPending, wpan);
  ShowRepeated(in, c, kPendingShort, pending & 7, wpan);
  ShowRepeated(in, c, kPendingExtended, pending >> 4 & 7, wpan);
}

void ShowCommand(const Place& in, Cursor& c, Wpan& wpan) {
  ShowRows<Wpan>(in, c, kCommandId, wpan);
  switch (wpan.command.value) {
    case 1: return ShowRows<Wpan>(in, c, kAssociationRequest, wpan);
    case 2: return ShowRows<Wpan>(in, c, kAssociationResponse, wpan);
    case 3: return ShowRows<Wpan>(in, c, kDisassociation, wpan);
    case 8:
      ShowRows<Wpan>(in, c, kRealignment, wpan);
      if (Left(c) > 0) ShowRows<Wpan>(in, c, kChannelPage, wpan);
      return;
    case 9: return ShowRows<Wpan>(in, c, kGtsRequest, wpan);
    default: return;
  }
}

int32_t CheckLengthOf(uint32_t level) {
  constexpr int32_t kLengths[] = {0, 4, 8, 16};
  return kLengths[level & 3];
}

uint16_t CheckSequenceOf(const Field& bytes) {   // ITU-T CRC-16, the low bit first, from 0
  uint32_t crc = 0;
  for (int32_t i = 0; i < bytes.length; ++i) {
    crc ^= PeekU8(bytes, i);
    for (int32_t bit = 0; bit < 8; ++bit) crc = crc & 1 ? crc >> 1 ^ 0x8408 : crc >> 1;
  }
  return static_cast<uint16_t>(crc);
}

void ShowHeader(const Place& in, Cursor& c, Wpan& wpan) {
  if ((PeekU8(c) & 7) == kMultipurpose) {
    ShowRows<Wpan>(in, c, PeekU8(c) & 8 ? RowSpan<Wpan>(kLongControl) : RowSpan<Wpan>(kShortControl), wpan);
    wpan.version.value = kVersion2015;   // for the security header
  } else {
    ShowRows<Wpan>(in, c, kControl, wpan);
  }
  const bool mayLackSequence = wpan.version.value >= kVersion2015;
  if (!(mayLackSequence && wpan.sequenceSuppressed.value)) ShowRows<Wpan>(in, c, kSequence, wpan);
  ShowAddresses(in, c, wpan);
}

int32_t DecodeWpanFrame(const Place& at, Cursor c, int32_t checkLength) {
  const KeyedAs keys(PacketOf(at), "wpan");
  if (Left(c) < 2) return 0;
  const uint32_t type = PeekU8(c) & 7;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "IEEE 802.15.4: %s", LookupName(kTypeNames, type)));
  Field check{};
  const Field covered = PeekBytes(c, 0, Left(c) - checkLength);
  if (checkLength && Left(c) > checkLength) check = CutTail(c, checkLength);
  Wpan wpan{};
  ShowHeader(in, c, wpan);
  Field integrity{};
  if (wpan.secured.value) {
    ShowSecurity(in, c, wpan);
    integrity = CutTail(c, CheckLengthOf(wpan.level.value));
  }
  const bool hasPayloadElements = wpan.elements.value && ShowHeaderElements(in, c);
  const bool isOpen = !(wpan.secured.value && wpan.level.value >= 4);
  if (hasPayloadElements && isOpen) ShowPayloadElements(in, c);
  if (type == kBeacon && isOpen && wpan.version.value < kVersion2015) ShowBeacon(in, c, wpan);
  if (type == kCommand && isOpen) ShowCommand(in, c, wpan);
  c.ranShort = false;
  AddBlock(in, Rest(c), !isOpen ? "Encrypted Payload" : type == kBeacon ? "Beacon Payload" : "Payload");
  if (integrity.length > 0) AddLine(in, integrity, "Message Integrity Code: %s", HexText(integrity));
  if (check.here && check.length == 2) {
    const uint32_t told = PeekU8(check, 1) << 8 | PeekU8(check);
    AddLine(in, check, "Frame Check Sequence: 0x%.04X (%s)", told, told == CheckSequenceOf(covered) ? "Good" : "BAD");
  } else if (check.here) {
    AddLine(in, check, "Frame Check Sequence: %s", HexText(check));
  }
  return 1;
}

}  // namespace

int32_t DecodeWpan(const Place& at, Cursor c) { return DecodeWpanFrame(at, c, 2); }
int32_t DecodeWpanWithoutCheck(const Place& at, Cursor c) { return DecodeWpanFrame(at, c, 0); }

// Behind the header of the radio: a preamble of four bytes, the start delimiter, the length.
int32_t DecodeWpanWithRadioHeader(const Place& at, Cursor c) {
  constexpr auto kRadio = LittleRows<NoValues>({
      Hex(4, "Preamble"), Hex(1, "Start Delimiter"), Word(1), Bits(0, 1, "Reserved"), Bits(1, 7, "Frame Length")});
  constexpr int32_t kHeaderSize = 6;
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "IEEE 802.15.4 PHY Header"));
  ShowRows(in, c, kRadio);
  return DecodeWpanFrame(at, c, 2);
}

// Behind fields of type (2), length (2) and value, filled to four bytes.
int32_t DecodeWpanTap(const Place& at, Cursor c) {
  constexpr auto kHead = LittleRows<NoValues>({Number(1, "Version"), Number(1, "Reserved"), Number(2,
      "Header Length")});
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 2, .padTo = 4, .little = true};
  constexpr int32_t kHeaderSize = 4;
  const uint32_t length = PeekLittleU16(c, 2);
  if (Left(c) < kHeaderSize || length < kHeaderSize) return 0;
  Cursor header = TakeCursor(c, length);
  const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "IEEE 802.15.4 TAP Header"));
  ShowRows(in, header, kHead);
  Wpan wpan{};
  ShowElements<Wpan>(in, header, kForm, "Field", kTapFields, wpan);
  const int32_t checkLength = wpan.type.value == 1 ? 2 : wpan.type.value == 2 ? 4 : 0;
  return DecodeWpanFrame(at, c, checkLength);
}

}  // namespace qxview
