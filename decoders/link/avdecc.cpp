// Discovery, enumeration, connection management and control of audio and video devices (IEEE 1722.1), over AVTP: which
// entities are here (ADP), what are they made of and how are they set (AECP), who listens to whom (ACMP)?
#include "decoders/link/avtp.h"

namespace qxview {
namespace {

enum Subtype : uint32_t { kDiscovery = 0xFA, kControl = 0xFB, kConnections = 0xFC };
enum AecpMessage : uint32_t { kModelCommand = 0, kModelResponse = 1, kAddressCommand = 2, kAddressResponse = 3,
                              kVendorCommand = 6, kVendorResponse = 7 };

// --- discovery ---

constexpr auto kDiscoveryNames = SortedNames({{0, "ENTITY_AVAILABLE"}, {1, "ENTITY_DEPARTING"}, {2, "ENTITY_DISCOVER"}});
constexpr auto kDiscoveryBody = Rows<Avtp>({
    Word(1), Flag(0, "Header Specific"), Bits(1, 3, "Version"), Bits(4, 4, "Message Type", kDiscoveryNames).Note(", %s"),
    Word(2), Bits(0, 5, "Valid Time", " x 2 seconds"), Bits(5, 11, "Control Data Length"),
    Hex(8, "Entity ID").Note(", Entity 0x%.016I64X"), Hex(8, "Entity Model ID"),
    Flags(4, "Entity Capabilities", kAvdeccEntityMasks), Number(2, "Talker Stream Sources"),
    Flags(2, "Talker Capabilities", kAvdeccStreamMasks), Number(2, "Listener Stream Sinks"),
    Flags(2, "Listener Capabilities", kAvdeccStreamMasks), Flags(4, "Controller Capabilities", kAvdeccControllerMasks),
    Number(4, "Available Index"), Hex(8, "gPTP Grandmaster ID"), Number(1, "gPTP Domain Number"), Hex(1, "Reserved"),
    Number(2, "Current Configuration Index"), Number(2, "Identify Control Index"), Number(2, "Interface Index"),
    Hex(8, "Association ID"), Hex(4, "Reserved")});

// --- connections ---

constexpr auto kConnectionNames = SortedNames({
    {0, "CONNECT_TX_COMMAND"}, {1, "CONNECT_TX_RESPONSE"}, {2, "DISCONNECT_TX_COMMAND"}, {3, "DISCONNECT_TX_RESPONSE"},
    {4, "GET_TX_STATE_COMMAND"}, {5, "GET_TX_STATE_RESPONSE"}, {6, "CONNECT_RX_COMMAND"}, {7, "CONNECT_RX_RESPONSE"},
    {8, "DISCONNECT_RX_COMMAND"}, {9, "DISCONNECT_RX_RESPONSE"}, {10, "GET_RX_STATE_COMMAND"}, {11, "GET_RX_STATE_RESPONSE"},
    {12, "GET_TX_CONNECTION_COMMAND"}, {13, "GET_TX_CONNECTION_RESPONSE"}});
constexpr auto kConnectionStatus = SortedNames({
    {0, "SUCCESS"}, {1, "LISTENER_UNKNOWN_ID"}, {2, "TALKER_UNKNOWN_ID"}, {3, "TALKER_DEST_MAC_FAIL"},
    {4, "TALKER_NO_STREAM_INDEX"}, {5, "TALKER_NO_BANDWIDTH"}, {6, "TALKER_EXCLUSIVE"}, {7, "LISTENER_TALKER_TIMEOUT"},
    {8, "LISTENER_EXCLUSIVE"}, {9, "STATE_UNAVAILABLE"}, {10, "NOT_CONNECTED"}, {11, "NO_SUCH_CONNECTION"},
    {12, "COULD_NOT_SEND_MESSAGE"}, {13, "TALKER_MISBEHAVING"}, {14, "LISTENER_MISBEHAVING"},
    {16, "CONTROLLER_NOT_AUTHORIZED"}, {17, "INCOMPATIBLE_REQUEST"}, {31, "NOT_SUPPORTED"}});
constexpr auto kConnectionMasks = SortedNames({
    {0x0001, "CLASS_B"}, {0x0002, "FAST_CONNECT"}, {0x0004, "SAVED_STATE"}, {0x0008, "STREAMING_WAIT"},
    {0x0010, "SUPPORTS_ENCRYPTED"}, {0x0020, "ENCRYPTED_PDU"}, {0x0040, "SRP_REGISTRATION_FAILED"},
    {0x0080, "CL_ENTRIES_VALID"}, {0x0100, "NO_SRP"}, {0x0200, "UDP"}});
constexpr auto kConnectionBody = Rows<Avtp>({
    Word(1), Flag(0, "Header Specific"), Bits(1, 3, "Version"), Bits(4, 4, "Message Type", kConnectionNames).Note(", %s"),
    Word(2), Bits(0, 5, "Status", kConnectionStatus), Bits(5, 11, "Control Data Length"), Hex(8, "Stream ID"),
    Hex(8, "Controller Entity ID"), Hex(8, "Talker Entity ID"), Hex(8, "Listener Entity ID"), Number(2, "Talker Unique ID"),
    Number(2, "Listener Unique ID"), Mac("Stream Destination Address"), Number(2, "Connection Count"),
    Number(2, "Sequence ID").Note(", Sequence %u"), Flags(2, "Flags", kConnectionMasks), Number(2, "Stream VLAN ID"),
    Number(2, "Connected Listeners Entries")});

// --- enumeration and control ---

constexpr auto kControlNames = SortedNames({
    {0, "AEM_COMMAND"}, {1, "AEM_RESPONSE"}, {2, "ADDRESS_ACCESS_COMMAND"}, {3, "ADDRESS_ACCESS_RESPONSE"},
    {4, "AVC_COMMAND"}, {5, "AVC_RESPONSE"}, {6, "VENDOR_UNIQUE_COMMAND"}, {7, "VENDOR_UNIQUE_RESPONSE"},
    {8, "HDCP_APM_COMMAND"}, {9, "HDCP_APM_RESPONSE"}, {14, "EXTENDED_COMMAND"}, {15, "EXTENDED_RESPONSE"}});
constexpr auto kModelStatus = SortedNames({
    {0, "SUCCESS"}, {1, "NOT_IMPLEMENTED"}, {2, "NO_SUCH_DESCRIPTOR"}, {3, "ENTITY_LOCKED"}, {4, "ENTITY_ACQUIRED"},
    {5, "NOT_AUTHENTICATED"}, {6, "AUTHENTICATION_DISABLED"}, {7, "BAD_ARGUMENTS"}, {8, "NO_RESOURCES"}, {9, "IN_PROGRESS"},
    {10, "ENTITY_MISBEHAVING"}, {11, "NOT_SUPPORTED"}, {12, "STREAM_IS_RUNNING"}});
constexpr auto kCommandNames = SortedNames({
    {0x00, "ACQUIRE_ENTITY"}, {0x01, "LOCK_ENTITY"}, {0x02, "ENTITY_AVAILABLE"}, {0x03, "CONTROLLER_AVAILABLE"},
    {0x04, "READ_DESCRIPTOR"}, {0x05, "WRITE_DESCRIPTOR"}, {0x06, "SET_CONFIGURATION"}, {0x07, "GET_CONFIGURATION"},
    {0x08, "SET_STREAM_FORMAT"}, {0x09, "GET_STREAM_FORMAT"}, {0x0A, "SET_VIDEO_FORMAT"}, {0x0B, "GET_VIDEO_FORMAT"},
    {0x0C, "SET_SENSOR_FORMAT"}, {0x0D, "GET_SENSOR_FORMAT"}, {0x0E, "SET_STREAM_INFO"}, {0x0F, "GET_STREAM_INFO"},
    {0x10, "SET_NAME"}, {0x11, "GET_NAME"}, {0x12, "SET_ASSOCIATION_ID"}, {0x13, "GET_ASSOCIATION_ID"},
    {0x14, "SET_SAMPLING_RATE"}, {0x15, "GET_SAMPLING_RATE"}, {0x16, "SET_CLOCK_SOURCE"}, {0x17, "GET_CLOCK_SOURCE"},
    {0x18, "SET_CONTROL"}, {0x19, "GET_CONTROL"}, {0x1A, "INCREMENT_CONTROL"}, {0x1B, "DECREMENT_CONTROL"},
    {0x1C, "SET_SIGNAL_SELECTOR"}, {0x1D, "GET_SIGNAL_SELECTOR"}, {0x1E, "SET_MIXER"}, {0x1F, "GET_MIXER"},
    {0x20, "SET_MATRIX"}, {0x21, "GET_MATRIX"}, {0x22, "START_STREAMING"}, {0x23, "STOP_STREAMING"},
    {0x24, "REGISTER_UNSOLICITED_NOTIFICATION"}, {0x25, "DEREGISTER_UNSOLICITED_NOTIFICATION"},
    {0x26, "IDENTIFY_NOTIFICATION"}, {0x27, "GET_AVB_INFO"}, {0x28, "GET_AS_PATH"}, {0x29, "GET_COUNTERS"}, {0x2A, "REBOOT"},
    {0x2B, "GET_AUDIO_MAP"}, {0x2C, "ADD_AUDIO_MAPPINGS"}, {0x2D, "REMOVE_AUDIO_MAPPINGS"}, {0x2E, "GET_VIDEO_MAP"},
    {0x2F, "ADD_VIDEO_MAPPINGS"}, {0x30, "REMOVE_VIDEO_MAPPINGS"}, {0x31, "GET_SENSOR_MAP"}, {0x32, "ADD_SENSOR_MAPPINGS"},
    {0x33, "REMOVE_SENSOR_MAPPINGS"}, {0x34, "START_OPERATION"}, {0x35, "ABORT_OPERATION"}, {0x36, "OPERATION_STATUS"},
    {0x37, "AUTH_ADD_KEY"}, {0x38, "AUTH_DELETE_KEY"}, {0x39, "AUTH_GET_KEY_LIST"}, {0x3A, "AUTH_GET_KEY"},
    {0x3B, "AUTH_ADD_KEY_TO_CHAIN"}, {0x3C, "AUTH_DELETE_KEY_FROM_CHAIN"}, {0x3D, "AUTH_GET_KEYCHAIN_LIST"},
    {0x3E, "AUTH_GET_IDENTITY"}, {0x3F, "AUTH_ADD_TOKEN"}, {0x40, "AUTH_DELETE_TOKEN"}, {0x41, "AUTHENTICATE"},
    {0x42, "DEAUTHENTICATE"}, {0x43, "ENABLE_TRANSPORT_SECURITY"}, {0x44, "DISABLE_TRANSPORT_SECURITY"},
    {0x45, "ENABLE_STREAM_ENCRYPTION"}, {0x46, "DISABLE_STREAM_ENCRYPTION"}, {0x47, "SET_MEMORY_OBJECT_LENGTH"},
    {0x48, "GET_MEMORY_OBJECT_LENGTH"}, {0x49, "SET_STREAM_BACKUP"}, {0x4A, "GET_STREAM_BACKUP"}, {0x4B, "GET_DYNAMIC_INFO"},
    {0x4C, "SET_MAX_TRANSIT_TIME"}, {0x4D, "GET_MAX_TRANSIT_TIME"}, {0x4E, "SET_SAMPLING_RATE_RANGE"},
    {0x4F, "GET_SAMPLING_RATE_RANGE"}, {0x7FFF, "EXPANSION"}});
constexpr auto kReleaseMasks = SortedNames({{0x00000001, "PERSISTENT"}, {0x80000000, "RELEASE"}});
constexpr auto kUnlockMasks = SortedNames({{0x00000001, "UNLOCK"}});
constexpr auto kInfoMasks = SortedNames({
    {0x00000001, "CLASS_B"}, {0x00000002, "FAST_CONNECT"}, {0x00000004, "SAVED_STATE"}, {0x00000008, "STREAMING_WAIT"},
    {0x00000010, "SUPPORTS_ENCRYPTED"}, {0x00000020, "ENCRYPTED_PDU"}, {0x00000040, "SRP_REGISTRATION_FAILED"},
    {0x02000000, "STREAM_VLAN_ID_VALID"}, {0x04000000, "CONNECTED"}, {0x08000000, "MSRP_FAILURE_VALID"},
    {0x10000000, "STREAM_DEST_MAC_VALID"}, {0x20000000, "MSRP_ACC_LAT_VALID"}, {0x40000000, "STREAM_ID_VALID"},
    {0x80000000, "STREAM_FORMAT_VALID"}});
constexpr auto kInterfaceMasks = SortedNames({{0x01, "AS_CAPABLE"}, {0x02, "GPTP_ENABLED"}, {0x04, "SRP_ENABLED"}});

constexpr auto kControlHead = Rows<Avtp>({
    Word(1), Flag(0, "Header Specific"), Bits(1, 3, "Version"),
    Bits(4, 4, "Message Type", kControlNames).Into(&Avtp::message), Word(2), Bits(0, 5, "Status", kModelStatus),
    Bits(5, 11, "Control Data Length"), Hex(8, "Target Entity ID"), Hex(8, "Controller Entity ID"),
    Number(2, "Sequence ID").Note(", Sequence %u")});
constexpr auto kCommandHead = Rows<Avtp>({
    Word(2), Flag(0, "Unsolicited"), Bits(1, 15, "Command Type", kCommandNames).Into(&Avtp::type)});
constexpr auto kTarget = Rows<Avtp>({
    Hex(2, "Descriptor Type", AvdeccDescriptorName).Note(", %s").Into(&Avtp::type),
    Number(2, "Descriptor Index").Note(" %u")});
constexpr auto kAcquire = Rows<Avtp>({Flags(4, "Flags", kReleaseMasks), Hex(8, "Owner Entity ID")});
constexpr auto kLock = Rows<Avtp>({Flags(4, "Flags", kUnlockMasks), Hex(8, "Locked Entity ID")});
constexpr auto kAvailable = Rows<Avtp>({Hex(4, "Flags"), Hex(8, "Acquired Controller ID"), Hex(8, "Locked Controller ID")});
constexpr auto kRead = Rows<Avtp>({Number(2, "Configuration Index"), Hex(2, "Reserved")});
constexpr auto kConfiguration = Rows<Avtp>({Hex(2, "Reserved"), Number(2, "Configuration Index")});
constexpr auto kStreamFormat = Rows<Avtp>({Shown(8, "Stream Format", ShowAvdeccFormat)});
constexpr auto kFormat4 = Rows<Avtp>({Hex(4, "Format Specific"), Hex(2, "Aspect Ratio"), Hex(2, "Color Space"),
    Hex(4, "Frame Size")});
constexpr auto kStreamInfo = Rows<Avtp>({
    Flags(4, "Stream Information Flags", kInfoMasks), Shown(8, "Stream Format", ShowAvdeccFormat), Hex(8, "Stream ID"),
    Number(4, "MSRP Accumulated Latency", " ns"), Mac("Stream Destination Address"), Number(1, "MSRP Failure Code"),
    Hex(1, "Reserved"), Hex(8, "MSRP Failure Bridge ID"), Number(2, "Stream VLAN ID"), Hex(2, "Reserved")});
constexpr auto kNameTarget = Rows<Avtp>({Number(2, "Name Index"), Number(2, "Configuration Index")});
constexpr auto kName = Rows<Avtp>({Text(64, "Name").Note(", %s")});
constexpr auto kAssociation = Rows<Avtp>({Hex(8, "Association ID")});
constexpr auto kRate = Rows<Avtp>({Shown(4, "Sampling Rate", ShowAvdeccRate)});
constexpr auto kSource = Rows<Avtp>({Number(2, "Clock Source Index"), Hex(2, "Reserved")});
constexpr auto kIndexes = Rows<Avtp>({Number(2, "Index Count").Into(&Avtp::count), Hex(2, "Reserved")});
constexpr auto kIndex = Rows<Avtp>({Number(2, "Index")});
constexpr auto kSelector = Rows<Avtp>({
    Hex(2, "Signal Type", AvdeccDescriptorName), Number(2, "Signal Index"), Number(2, "Signal Output"), Hex(2, "Reserved")});
constexpr auto kMatrix = Rows<Avtp>({
    Number(2, "Matrix Column"), Number(2, "Matrix Row"), Number(2, "Region Width"), Number(2, "Region Height"), Word(2),
    Flag(0, "Repeat"), Bits(1, 3, "Direction"), Bits(4, 12, "Value Count"), Number(2, "Item Offset")});
constexpr auto kInterface = Rows<Avtp>({
    Hex(8, "gPTP Grandmaster ID"), Number(4, "Propagation Delay", " ns"), Number(1, "gPTP Domain Number"),
    Flags(1, "Interface Flags", kInterfaceMasks), Number(2, "MSRP Mappings").Into(&Avtp::count)});
constexpr auto kMapping = Rows<Avtp>({Number(1, "Traffic Class"), Number(1, "Priority"), Number(2, "VLAN ID")});
constexpr auto kPathTarget = Rows<Avtp>({Number(2, "Descriptor Index"), Number(2, "Path Count").Into(&Avtp::count)});
constexpr auto kPath = Rows<Avtp>({Hex(8, "Clock Identity")});
constexpr auto kCounters = Rows<Avtp>({Hex(4, "Valid Counters").Into(&Avtp::flags)});
constexpr auto kMapTarget = Rows<Avtp>({Number(2, "Map Index"), Hex(2, "Reserved")});
constexpr auto kMapAnswer = Rows<Avtp>({
    Number(2, "Map Index"), Number(2, "Number of Maps"), Number(2, "Number of Mappings").Into(&Avtp::count),
    Hex(2, "Reserved")});
constexpr auto kMapChange = Rows<Avtp>({Number(2, "Number of Mappings").Into(&Avtp::count), Hex(2, "Reserved")});
constexpr auto kOperation = Rows<Avtp>({Number(2, "Operation ID"), Number(2, "Operation Type")});
constexpr auto kOperationStatus = Rows<Avtp>({Number(2, "Operation ID"), Number(2, "Percent Complete")});
constexpr auto kKey = Rows<Avtp>({
    Hex(8, "Key EUI"), Word(4), Bits(0, 3, "Keychain ID"), Bits(3, 3, "Key Type"), Flag(6, "Continued"),
    Bits(7, 14, "Reserved"), Bits(21, 11, "Key Length")});
constexpr auto kToken = Rows<Avtp>({Word(4), Bits(0, 21, "Reserved"), Bits(21, 11, "Token Length")});
constexpr auto kMemory = Rows<Avtp>({Number(2, "Configuration Index"), Number(2, "Memory Object Index"),
    Number(8, "Length")});
constexpr auto kBackup = Rows<Avtp>({
    Hex(8, "Backup Talker Entity ID 0"), Number(2, "Backup Talker Unique ID 0"), Hex(2, "Reserved"),
    Hex(8, "Backup Talker Entity ID 1"), Number(2, "Backup Talker Unique ID 1"), Hex(2, "Reserved"),
    Hex(8, "Backup Talker Entity ID 2"), Number(2, "Backup Talker Unique ID 2"), Hex(2, "Reserved"),
    Hex(8, "Backed-up Talker Entity ID"), Number(2, "Backed-up Talker Unique ID"), Hex(2, "Reserved")});
constexpr auto kTransit = Rows<Avtp>({Number(8, "Maximum Transit Time", " ns")});
constexpr auto kData = Rows<Avtp>({Bytes(0, "Values")});

// The parts of a command that its number tells: whether it names a descriptor, what stands behind in commands and
// responses that set, and what in those that answer.
void ShowCount(const Place& in, Cursor& c, RowSpan<Avtp> rows, Avtp& avtp) {
  Loop loop;
  for (uint32_t i = 0; i < avtp.count.value && MoreAt(in, c, loop); ++i) ShowRows<Avtp>(in, c, rows, avtp);
}

const char* NameCounter(uint32_t descriptor, uint32_t bit) {
  constexpr auto kInterfaceCounters = SortedNames({
      {0, "Link Up"}, {1, "Link Down"}, {2, "Frames Transmitted"}, {3, "Frames Received"}, {4, "Receive CRC Errors"},
      {5, "gPTP Grandmaster Changed"}});
  constexpr auto kDomainCounters = SortedNames({{0, "Locked"}, {1, "Unlocked"}});
  constexpr auto kInputCounters = SortedNames({
      {0, "Media Locked"}, {1, "Media Unlocked"}, {2, "Stream Interrupted"}, {3, "Sequence Number Mismatch"},
      {4, "Media Reset"}, {5, "Time Stamp Uncertain"}, {6, "Time Stamp Valid"}, {7, "Time Stamp Not Valid"},
      {8, "Unsupported Format"}, {9, "Late Time Stamp"}, {10, "Early Time Stamp"}, {11, "Frames Received"},
      {12, "Frames Transmitted"}});
  constexpr auto kSpecificCounters = SortedNames({
      {24, "Entity Specific 8"}, {25, "Entity Specific 7"}, {26, "Entity Specific 6"}, {27, "Entity Specific 5"},
      {28, "Entity Specific 4"}, {29, "Entity Specific 3"}, {30, "Entity Specific 2"}, {31, "Entity Specific 1"}});
  if (bit >= 24) return LookupName(kSpecificCounters, bit);
  switch (descriptor) {
    case 0x05:
    case 0x06: return LookupName(kInputCounters, bit, "Counter");
    case 0x09: return LookupName(kInterfaceCounters, bit, "Counter");
    case 0x24: return LookupName(kDomainCounters, bit, "Counter");
    default: return "Counter";
  }
}

// A block of 32 counters, of which a mask says which count.
void ShowCounters(const Place& in, Cursor& c, uint32_t descriptor, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kCounters, avtp);
  for (uint32_t bit = 0; bit < 32; ++bit) {
    const Field counter = TakeU32(c);
    // keys: number Link Up, Link Down, Frames Transmitted, Frames Received, Receive CRC Errors, gPTP Grandmaster Changed
    // keys: number Locked, Unlocked, Media Locked, Media Unlocked, Stream Interrupted, Sequence Number Mismatch, Media Reset
    // keys: number Time Stamp Uncertain, Time Stamp Valid, Time Stamp Not Valid, Unsupported Format, Late Time Stamp
    // keys: number Early Time Stamp, Counter, Entity Specific 1, Entity Specific 2, Entity Specific 3, Entity Specific 4
    // keys: number Entity Specific 5, Entity Specific 6, Entity Specific 7, Entity Specific 8
    if (avtp.flags.value >> bit & 1) AddLine(in, counter, "%s: %u", NameCounter(descriptor, bit), counter.value);
  }
}

bool NamesDescriptor(uint32_t command) {
  switch (command) {
    case 0x02: case 0x03: case 0x04: case 0x05: case 0x06: case 0x07: case 0x12: case 0x13: case 0x24: case 0x25: case 0x28:
    case 0x39: case 0x3A: case 0x37: case 0x38: case 0x3B: case 0x3C: case 0x3D: case 0x3E: case 0x3F: case 0x40: case 0x41:
    case 0x42: case 0x43: case 0x44: case 0x47: case 0x48: case 0x4B: return false;
    default: return true;
  }
}

// What commands hold that bring something along, and responses that answer.
RowSpan<Avtp> RowsOf(uint32_t command) {
  switch (command) {
    case 0x00: return kAcquire;
    case 0x01: return kLock;
    case 0x06: case 0x07: return kConfiguration;
    case 0x08: case 0x09: return kStreamFormat;
    case 0x0A: case 0x0B: case 0x0C: case 0x0D: return kFormat4;
    case 0x0E: case 0x0F: return kStreamInfo;
    case 0x12: case 0x13: return kAssociation;
    case 0x14: case 0x15: return kRate;
    case 0x16: case 0x17: return kSource;
    case 0x1C: case 0x1D: return kSelector;
    case 0x34: return kOperation;
    case 0x35: return kOperationStatus;
    case 0x36: return kOperationStatus;
    case 0x47: case 0x48: return kMemory;
    case 0x49: case 0x4A: return kBackup;
    case 0x4C: case 0x4D: return kTransit;
    default: return {};
  }
}

// Commands that carry a list, or whose responses differ from them.
void ShowOther(const Place& in, Cursor& c, uint32_t command, bool isResponse, Avtp& avtp) {
  const uint32_t descriptor = avtp.type.value;
  switch (command) {
    case 0x02: if (Left(c)) ShowRows<Avtp>(in, c, kAvailable, avtp); return;
    case 0x04:
    case 0x05:
      ShowRows<Avtp>(in, c, kRead, avtp);
      if (command == 0x04 && !isResponse) return ShowRows<Avtp>(in, c, kTarget, avtp);
      return ShowAvdeccDescriptor(in, c);
    case 0x10:
    case 0x11:
      ShowRows<Avtp>(in, c, kNameTarget, avtp);
      if (Left(c)) ShowRows<Avtp>(in, c, kName, avtp);
      return;
    case 0x18: case 0x19: case 0x1E: case 0x1F: if (Left(c)) ShowRows<Avtp>(in, c, kData, avtp); return;
    case 0x1A: case 0x1B:
      ShowRows<Avtp>(in, c, kIndexes, avtp);
      return ShowCount(in, c, kIndex, avtp);
    case 0x20: case 0x21:
      ShowRows<Avtp>(in, c, kMatrix, avtp);
      if (Left(c)) ShowRows<Avtp>(in, c, kData, avtp);
      return;
    case 0x27:
      if (!isResponse) return;
      ShowRows<Avtp>(in, c, kInterface, avtp);
      return ShowCount(in, c, kMapping, avtp);
    case 0x28:
      ShowRows<Avtp>(in, c, kPathTarget, avtp);
      return isResponse ? ShowCount(in, c, kPath, avtp) : void();
    case 0x29: return isResponse ? ShowCounters(in, c, descriptor, avtp) : void();
    case 0x2B:
      if (!isResponse) return ShowRows<Avtp>(in, c, kMapTarget, avtp);
      ShowRows<Avtp>(in, c, kMapAnswer, avtp);
      return ShowAvdeccMappings(in, c, avtp.count.value);
    case 0x2C: case 0x2D:
      ShowRows<Avtp>(in, c, kMapChange, avtp);
      return ShowAvdeccMappings(in, c, avtp.count.value);
    case 0x2E: case 0x31:
      if (!isResponse) return ShowRows<Avtp>(in, c, kMapTarget, avtp);
      ShowRows<Avtp>(in, c, kMapAnswer, avtp);
      return ShowAvdeccOtherMappings(in, c, avtp.count.value, command == 0x2E);
    case 0x2F: case 0x30: case 0x32: case 0x33:
      ShowRows<Avtp>(in, c, kMapChange, avtp);
      return ShowAvdeccOtherMappings(in, c, avtp.count.value, command <= 0x30);
    case 0x37: case 0x3A: ShowRows<Avtp>(in, c, kKey, avtp); break;
    case 0x3F: case 0x41: ShowRows<Avtp>(in, c, kToken, avtp); break;
    default: break;
  }
}

void ShowModel(const Place& at, const Place& in, LineHandle line, Cursor& c, bool isResponse, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kCommandHead, avtp);
  const uint32_t command = avtp.type.value;
  if (avtp.type.here) AppendToLine(at, line, ", %s", LookupName(kCommandNames, command));
  // An acquisition names its descriptor behind the owner.
  const bool namesLast = command <= 0x01;
  if (NamesDescriptor(command) && !namesLast) ShowRows<Avtp>(in, c, kTarget, avtp);
  if (Left(c)) ShowRows<Avtp>(in, c, RowsOf(command), avtp);
  if (namesLast) ShowRows<Avtp>(in, c, kTarget, avtp);
  ShowOther(in, c, command, isResponse, avtp);
}

constexpr auto kAddressModes = SortedNames({{0, "READ"}, {1, "WRITE"}, {2, "EXECUTE"}});
constexpr auto kAddressCount = Rows<Avtp>({Number(2, "TLV Count").Into(&Avtp::count)});
constexpr auto kAddressHead = Rows<Avtp>({
    Word(2), Bits(0, 4, "Mode", kAddressModes), Bits(4, 12, "Length").Into(&Avtp::length), Hex(8, "Address")});
constexpr auto kMemoryData = Rows<Avtp>({Bytes(0, "Memory Data")});
constexpr auto kVendor = Rows<Avtp>({Hex(6, "Protocol ID"), Bytes(0, "Payload Data")});

void ShowAddresses(const Place& in, Cursor& c, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kAddressCount, avtp);
  Loop loop;
  for (uint32_t i = 0; i < avtp.count.value && MoreAt(in, c, loop); ++i) {
    const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 10 ? Left(c) : 10), "TLV %u", i + 1));
    ShowRows<Avtp>(under, c, kAddressHead, avtp);
    Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
    if (Left(data)) ShowRows<Avtp>(under, data, kMemoryData, avtp);
  }
}

}  // namespace

bool ShowAvdecc(const Place& at, const Place& in, LineHandle line, Cursor& c, uint32_t subtype) {
  Avtp avtp{};
  switch (subtype) {
    case kDiscovery: ShowRows<Avtp>(in, c, kDiscoveryBody, avtp); return true;
    case kConnections: ShowRows<Avtp>(in, c, kConnectionBody, avtp); return true;
    case kControl: break;
    default: return false;
  }
  ShowRows<Avtp>(in, c, kControlHead, avtp);
  switch (avtp.message.value) {
    case kModelCommand:
    case kModelResponse: ShowModel(at, in, line, c, avtp.message.value == kModelResponse, avtp); break;
    case kAddressCommand:
    case kAddressResponse: ShowAddresses(in, c, avtp); break;
    case kVendorCommand:
    case kVendorResponse: ShowRows<Avtp>(in, c, kVendor, avtp); break;
    default: break;
  }
  return true;
}

}  // namespace qxview
