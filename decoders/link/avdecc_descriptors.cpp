// The descriptors of an entity's model (IEEE 1722.1 clause 7.2): what a device of audio and video is made of.
#include "decoders/link/avtp.h"

namespace qxview {
namespace {

constexpr auto kDescriptorNames = SortedNames({
    {0x00, "ENTITY"}, {0x01, "CONFIGURATION"}, {0x02, "AUDIO_UNIT"}, {0x03, "VIDEO_UNIT"}, {0x04, "SENSOR_UNIT"},
    {0x05, "STREAM_INPUT"}, {0x06, "STREAM_OUTPUT"}, {0x07, "JACK_INPUT"}, {0x08, "JACK_OUTPUT"}, {0x09, "AVB_INTERFACE"},
    {0x0A, "CLOCK_SOURCE"}, {0x0B, "MEMORY_OBJECT"}, {0x0C, "LOCALE"}, {0x0D, "STRINGS"}, {0x0E, "STREAM_PORT_INPUT"},
    {0x0F, "STREAM_PORT_OUTPUT"}, {0x10, "EXTERNAL_PORT_INPUT"}, {0x11, "EXTERNAL_PORT_OUTPUT"},
    {0x12, "INTERNAL_PORT_INPUT"}, {0x13, "INTERNAL_PORT_OUTPUT"}, {0x14, "AUDIO_CLUSTER"}, {0x15, "VIDEO_CLUSTER"},
    {0x16, "SENSOR_CLUSTER"}, {0x17, "AUDIO_MAP"}, {0x18, "VIDEO_MAP"}, {0x19, "SENSOR_MAP"}, {0x1A, "CONTROL"},
    {0x1B, "SIGNAL_SELECTOR"}, {0x1C, "MIXER"}, {0x1D, "MATRIX"}, {0x1E, "MATRIX_SIGNAL"}, {0x1F, "SIGNAL_SPLITTER"},
    {0x20, "SIGNAL_COMBINER"}, {0x21, "SIGNAL_DEMULTIPLEXER"}, {0x22, "SIGNAL_MULTIPLEXER"}, {0x23, "SIGNAL_TRANSCODER"},
    {0x24, "CLOCK_DOMAIN"}, {0x25, "CONTROL_BLOCK"}, {0xFFFF, "INVALID"}});
constexpr auto kJackTypes = SortedNames({
    {0x00, "SPEAKER"}, {0x01, "HEADPHONE"}, {0x02, "ANALOG_MICROPHONE"}, {0x03, "SPDIF"}, {0x04, "ADAT"}, {0x05, "TDIF"},
    {0x06, "MADI"}, {0x07, "UNBALANCED_ANALOG"}, {0x08, "BALANCED_ANALOG"}, {0x09, "DIGITAL"}, {0x0A, "MIDI"},
    {0x0B, "AES_EBU"}, {0x0C, "COMPOSITE_VIDEO"}, {0x0D, "S_VHS_VIDEO"}, {0x0E, "COMPONENT_VIDEO"}, {0x0F, "DVI"},
    {0x10, "HDMI"}, {0x11, "UDI"}, {0x12, "DISPLAYPORT"}, {0x13, "ANTENNA"}, {0x14, "ANALOG_TUNER"}, {0x15, "ETHERNET"},
    {0x16, "WIFI"}, {0x17, "USB"}, {0x18, "PCI"}, {0x19, "PCI_E"}, {0x1A, "SCSI"}, {0x1B, "ATA"}, {0x1C, "IMAGER"},
    {0x1D, "IR"}, {0x1E, "THUNDERBOLT"}, {0x1F, "SATA"}, {0x20, "SMPTE_LTC"}, {0x21, "DIGITAL_MICROPHONE"},
    {0x22, "AUDIO_MEDIA_CLOCK"}, {0x23, "VIDEO_MEDIA_CLOCK"}, {0x24, "GNSS_CLOCK"}, {0x25, "PPS"}, {0xFFFF, "EXPANSION"}});
constexpr auto kClockTypes = SortedNames({{0, "INTERNAL"}, {1, "EXTERNAL"}, {2, "INPUT_STREAM"}, {0xFFFF, "EXPANSION"}});
constexpr auto kMemoryTypes = SortedNames({
    {0, "FIRMWARE_IMAGE"}, {1, "VENDOR_SPECIFIC"}, {2, "CRASH_DUMP"}, {3, "LOG_OBJECT"}, {4, "AUTOSTART_SETTINGS"},
    {5, "SNAPSHOT_SETTINGS"}, {6, "SVG_MANUFACTURER"}, {7, "SVG_ENTITY"}, {8, "SVG_GENERIC"}, {9, "PNG_MANUFACTURER"},
    {10, "PNG_ENTITY"}, {11, "PNG_GENERIC"}, {12, "DAE_MANUFACTURER"}, {13, "DAE_ENTITY"}, {14, "DAE_GENERIC"}});
constexpr auto kClusterFormats = SortedNames({
    {0x00, "IEC_60958"}, {0x40, "MBLA"}, {0x80, "MIDI"}, {0x88, "SMPTE"}});
constexpr auto kValueTypes = SortedNames({
    {0x00, "LINEAR_INT8"}, {0x01, "LINEAR_UINT8"}, {0x02, "LINEAR_INT16"}, {0x03, "LINEAR_UINT16"}, {0x04, "LINEAR_INT32"},
    {0x05, "LINEAR_UINT32"}, {0x06, "LINEAR_INT64"}, {0x07, "LINEAR_UINT64"}, {0x08, "LINEAR_FLOAT"}, {0x09, "LINEAR_DOUBLE"},
    {0x0A, "SELECTOR_INT8"}, {0x0B, "SELECTOR_UINT8"}, {0x0C, "SELECTOR_INT16"}, {0x0D, "SELECTOR_UINT16"},
    {0x0E, "SELECTOR_INT32"}, {0x0F, "SELECTOR_UINT32"}, {0x10, "SELECTOR_INT64"}, {0x11, "SELECTOR_UINT64"},
    {0x12, "SELECTOR_FLOAT"}, {0x13, "SELECTOR_DOUBLE"}, {0x14, "SELECTOR_STRING"}, {0x15, "ARRAY_INT8"},
    {0x16, "ARRAY_UINT8"}, {0x17, "ARRAY_INT16"}, {0x18, "ARRAY_UINT16"}, {0x19, "ARRAY_INT32"}, {0x1A, "ARRAY_UINT32"},
    {0x1B, "ARRAY_INT64"}, {0x1C, "ARRAY_UINT64"}, {0x1D, "ARRAY_FLOAT"}, {0x1E, "ARRAY_DOUBLE"}, {0x1F, "UTF8"},
    {0x20, "BODE_PLOT"}, {0x21, "SMPTE_TIME"}, {0x22, "SAMPLE_RATE"}, {0x23, "GPTP_TIME"}, {0x3FFE, "VENDOR"},
    {0x3FFF, "EXPANSION"}});
constexpr auto kStreamMasks = SortedNames({
    {0x0001, "CLOCK_SYNC_SOURCE"}, {0x0002, "CLASS_A"}, {0x0004, "CLASS_B"}, {0x0008, "SUPPORTS_ENCRYPTED"},
    {0x0010, "PRIMARY_BACKUP_SUPPORTED"}, {0x0020, "PRIMARY_BACKUP_VALID"}, {0x0040, "SECONDARY_BACKUP_SUPPORTED"},
    {0x0080, "SECONDARY_BACKUP_VALID"}, {0x0100, "TERTIARY_BACKUP_SUPPORTED"}, {0x0200, "TERTIARY_BACKUP_VALID"}});
constexpr auto kJackMasks = SortedNames({{0x0001, "CLOCK_SYNC_SOURCE"}, {0x0002, "CAPTIVE"}});
constexpr auto kPortMasks = SortedNames({
    {0x0001, "CLOCK_SYNC_SOURCE"}, {0x0002, "ASYNC_SAMPLE_RATE_CONV"}, {0x0004, "SYNC_SAMPLE_RATE_CONV"}});
constexpr auto kInterfaceMasks = SortedNames({
    {0x0001, "GPTP_GRANDMASTER_SUPPORTED"}, {0x0002, "GPTP_SUPPORTED"}, {0x0004, "SRP_SUPPORTED"}});
constexpr auto kClockMasks = SortedNames({{0x0001, "STREAM_ID"}, {0x0002, "LOCAL_ID"}});

constexpr auto kHead = Rows<Avtp>({
    Hex(2, "Descriptor Type", AvdeccDescriptorName).Note(", %s").Into(&Avtp::type),
    Number(2, "Descriptor Index").Note(" %u")});
// Strings are referred to by the offset of a descriptor of strings (13 bits) and the number in it.
constexpr auto kNamed = Rows<Avtp>({Text(64, "Object Name").Note(", %s"), Hex(2, "Localized Description")});
constexpr auto kEntity = Rows<Avtp>({
    Hex(8, "Entity ID"), Hex(8, "Entity Model ID"), Flags(4, "Entity Capabilities", kAvdeccEntityMasks),
    Number(2, "Talker Stream Sources"), Flags(2, "Talker Capabilities", kAvdeccStreamMasks),
    Number(2, "Listener Stream Sinks"), Flags(2, "Listener Capabilities", kAvdeccStreamMasks),
    Flags(4, "Controller Capabilities", kAvdeccControllerMasks), Number(4, "Available Index"), Hex(8, "Association ID"),
    Text(64, "Entity Name").Note(", %s"), Hex(2, "Vendor Name String"), Hex(2, "Model Name String"),
    Text(64, "Firmware Version"), Text(64, "Group Name"), Text(64, "Serial Number"), Number(2, "Configurations Count"),
    Number(2, "Current Configuration")});
constexpr auto kConfiguration = Rows<Avtp>({
    Number(2, "Descriptor Counts Count").Into(&Avtp::count), Number(2, "Descriptor Counts Offset")});
constexpr auto kDescriptorCount = Rows<Avtp>({Hex(2, "Counted Descriptor", AvdeccDescriptorName),
    Number(2, "Descriptor Count")});
constexpr auto kUnit = Rows<Avtp>({
    Number(2, "Clock Domain Index"), Number(2, "Number of Stream Input Ports"), Number(2, "Base Stream Input Port"),
    Number(2, "Number of Stream Output Ports"), Number(2, "Base Stream Output Port"),
    Number(2, "Number of External Input Ports"), Number(2, "Base External Input Port"),
    Number(2, "Number of External Output Ports"), Number(2, "Base External Output Port"),
    Number(2, "Number of Internal Input Ports"), Number(2, "Base Internal Input Port"),
    Number(2, "Number of Internal Output Ports"), Number(2, "Base Internal Output Port"), Number(2, "Number of Controls"),
    Number(2, "Base Control"), Number(2, "Number of Signal Selectors"), Number(2, "Base Signal Selector"),
    Number(2, "Number of Mixers"), Number(2, "Base Mixer"), Number(2, "Number of Matrices"), Number(2, "Base Matrix"),
    Number(2, "Number of Splitters"), Number(2, "Base Splitter"), Number(2, "Number of Combiners"),
    Number(2, "Base Combiner"), Number(2, "Number of Demultiplexers"), Number(2, "Base Demultiplexer"),
    Number(2, "Number of Multiplexers"), Number(2, "Base Multiplexer"), Number(2, "Number of Transcoders"),
    Number(2, "Base Transcoder"), Number(2, "Number of Control Blocks"), Number(2, "Base Control Block")});
constexpr auto kUnitRates = Rows<Avtp>({
    Shown(4, "Current Sampling Rate", ShowAvdeccRate), Number(2, "Sampling Rates Offset"),
    Number(2, "Sampling Rates Count").Into(&Avtp::count)});
constexpr auto kUnitRate = Rows<Avtp>({Shown(4, "Sampling Rate", ShowAvdeccRate)});
constexpr auto kStream = Rows<Avtp>({
    Number(2, "Clock Domain Index"), Flags(2, "Stream Flags", kStreamMasks), Shown(8, "Current Format", ShowAvdeccFormat),
    Number(2, "Formats Offset").Into(&Avtp::offset), Number(2, "Number of Formats").Into(&Avtp::count),
    Hex(8, "Backup Talker Entity ID 0"), Number(2, "Backup Talker Unique ID 0"), Hex(8, "Backup Talker Entity ID 1"),
    Number(2, "Backup Talker Unique ID 1"), Hex(8, "Backup Talker Entity ID 2"), Number(2, "Backup Talker Unique ID 2"),
    Hex(8, "Backed-up Talker Entity ID"), Number(2, "Backed-up Talker Unique ID"), Number(2, "AVB Interface Index"),
    Number(4, "Buffer Length", " ns")});
constexpr auto kFormat = Rows<Avtp>({Shown(8, "Format", ShowAvdeccFormat)});
constexpr auto kJack = Rows<Avtp>({
    Flags(2, "Jack Flags", kJackMasks), Hex(2, "Jack Type", kJackTypes), Number(2, "Number of Controls"),
    Number(2, "Base Control")});
constexpr auto kInterface = Rows<Avtp>({
    Mac("MAC Address"), Flags(2, "Interface Flags", kInterfaceMasks), Hex(8, "Clock Identity"), Number(1, "Priority 1"),
    Number(1, "Clock Class"), Number(2, "Offset Scaled Log Variance"), Number(1, "Clock Accuracy"), Number(1, "Priority 2"),
    Number(1, "Domain Number"), Signed(1, "Log Sync Interval"), Signed(1, "Log Announce Interval"),
    Signed(1, "Log Pdelay Interval"), Number(2, "Port Number")});
constexpr auto kClockSource = Rows<Avtp>({
    Flags(2, "Clock Source Flags", kClockMasks), Hex(2, "Clock Source Type", kClockTypes), Hex(8, "Clock Source ID"),
    Hex(2, "Clock Source Location Type", AvdeccDescriptorName), Number(2, "Clock Source Location Index")});
constexpr auto kMemory = Rows<Avtp>({
    Hex(2, "Memory Object Type", kMemoryTypes), Hex(2, "Target Descriptor Type", AvdeccDescriptorName),
    Number(2, "Target Descriptor Index"), Hex(8, "Start Address"), Number(8, "Maximum Length"), Number(8, "Length")});
constexpr auto kLocale = Rows<Avtp>({Text(64, "Locale").Note(", %s"), Number(2, "Number of Strings"),
    Number(2, "Base Strings")});
constexpr auto kString = Rows<Avtp>({Text(64, "String")});
constexpr auto kStreamPort = Rows<Avtp>({
    Number(2, "Clock Domain Index"), Flags(2, "Port Flags", kPortMasks), Number(2, "Number of Controls"),
    Number(2, "Base Control"), Number(2, "Number of Clusters"), Number(2, "Base Cluster"), Number(2, "Number of Maps"),
    Number(2, "Base Map")});
constexpr auto kPort = Rows<Avtp>({
    Number(2, "Clock Domain Index"), Flags(2, "Port Flags", kPortMasks), Number(2, "Number of Controls"),
    Number(2, "Base Control"), Hex(2, "Signal Type", AvdeccDescriptorName), Number(2, "Signal Index"),
    Number(2, "Signal Output"), Number(4, "Block Latency", " ns"), Number(2, "Jack or Internal Index")});
constexpr auto kSignal = Rows<Avtp>({Hex(2, "Signal Type", AvdeccDescriptorName), Number(2, "Signal Index"),
    Number(2, "Signal Output")});
constexpr auto kCluster = Rows<Avtp>({
    Number(4, "Path Latency", " ns"), Number(4, "Block Latency", " ns"), Number(2, "Channel Count"),
    Hex(1, "Cluster Format", kClusterFormats)});
constexpr auto kMap = Rows<Avtp>({Number(2, "Mappings Offset"), Number(2, "Number of Mappings").Into(&Avtp::count)});
constexpr auto kLatencies = Rows<Avtp>({Number(4, "Block Latency", " ns"), Number(4, "Control Latency", " ns"),
    Number(2, "Control Domain")});
constexpr auto kValueType = Rows<Avtp>({
    Word(2), Flag(0, "Read Only"), Flag(1, "Unknown"), Bits(2, 14, "Control Value Type", kValueTypes).Into(&Avtp::status)});
constexpr auto kControl = Rows<Avtp>({
    Hex(8, "Control Type"), Number(4, "Reset Time", " us"), Number(2, "Values Offset"),
    Number(2, "Number of Values").Into(&Avtp::size),
    Hex(2, "Signal Type", AvdeccDescriptorName), Number(2, "Signal Index"), Number(2, "Signal Output")});
constexpr auto kSelector = Rows<Avtp>({
    Number(2, "Sources Offset"), Number(2, "Number of Sources").Into(&Avtp::count),
    Hex(2, "Current Signal Type", AvdeccDescriptorName), Number(2, "Current Signal Index"),
    Number(2, "Current Signal Output"), Hex(2, "Default Signal Type", AvdeccDescriptorName),
    Number(2, "Default Signal Index"), Number(2, "Default Signal Output")});
constexpr auto kMixer = Rows<Avtp>({
    Number(2, "Sources Offset"), Number(2, "Number of Sources").Into(&Avtp::count), Number(2, "Value Offset")});
constexpr auto kMatrix = Rows<Avtp>({
    Hex(8, "Control Type"), Number(2, "Width"), Number(2, "Height"), Number(2, "Values Offset"),
    Number(2, "Number of Values").Into(&Avtp::size), Number(2, "Number of Sources"), Number(2, "Base Source")});
constexpr auto kMatrixSignal = Rows<Avtp>({Number(2, "Signals Count").Into(&Avtp::count), Number(2, "Signals Offset")});
constexpr auto kSplitter = Rows<Avtp>({
    Number(2, "Number of Outputs"), Number(2, "Map Count").Into(&Avtp::count), Number(2, "Map Offset")});
constexpr auto kCombiner = Rows<Avtp>({
    Number(2, "Map Count").Into(&Avtp::size), Number(2, "Map Offset"), Number(2, "Sources Offset"),
    Number(2, "Number of Sources").Into(&Avtp::count)});
constexpr auto kSplitterMap = Rows<Avtp>({Number(2, "Sub-signal Start"), Number(2, "Sub-signal Count"),
    Number(2, "Output Index")});
constexpr auto kTranscoder = Rows<Avtp>({Number(2, "Values Offset"), Number(2, "Number of Values").Into(&Avtp::size)});
constexpr auto kDomain = Rows<Avtp>({
    Number(2, "Clock Source Index"), Number(2, "Clock Sources Offset"), Number(2, "Clock Sources Count").Into(&Avtp::count)});
constexpr auto kDomainSource = Rows<Avtp>({Number(2, "Clock Source")});
constexpr auto kControlBlock = Rows<Avtp>({Number(2, "Number of Controls"), Number(2, "Base Control"),
    Number(2, "Final Control Index")});
constexpr auto kValues = Rows<Avtp>({Bytes(0, "Values")});

void ShowList(const Place& in, Cursor& c, RowSpan<Avtp> rows, Avtp& avtp) {
  Loop loop;
  for (uint32_t i = 0; i < avtp.count.value && MoreAt(in, c, loop); ++i) ShowRows<Avtp>(in, c, rows, avtp);
}

// What stands behind a descriptor's rows: the values of a control, the rest of a cluster, or what no row divides.
void ShowTail(const Place& in, Cursor& c, uint32_t type, Avtp& avtp) {
  constexpr uint32_t kVideo = 0x15, kSensor = 0x16, kControls = 0x1A, kMixers = 0x1C, kMatrices = 0x1D, kTranscoders = 0x23;
  if (type == kVideo || type == kSensor) ShowAvdeccCluster(in, c, type == kVideo);
  if (type == kMixers) ShowAvdeccValues(in, c, avtp.status.value, 1);
  if (type == kControls || type == kMatrices || type == kTranscoders) {
    ShowAvdeccValues(in, c, avtp.status.value, avtp.size.value);
  }
  c.ranShort = false;
  if (Left(c)) ShowRows<Avtp>(in, c, kValues, avtp);
}

// What differs by the descriptor's type, behind its head.
struct Part {
  uint32_t first, last;   // of types
  bool isNamed;
  RowSpan<Avtp> rows[3];
  RowSpan<Avtp> list;     // counted by the last rows
};
constexpr Part kParts[] = {
    {0x00, 0x00, false, {kEntity, {}, {}}, {}}, {0x01, 0x01, true, {kConfiguration, {}, {}}, kDescriptorCount},
    {0x02, 0x02, true, {kUnit, kUnitRates, {}}, kUnitRate}, {0x03, 0x04, true, {kUnit, {}, {}}, {}},
    {0x05, 0x06, true, {kStream, {}, {}}, kFormat}, {0x07, 0x08, true, {kJack, {}, {}}, {}},
    {0x09, 0x09, true, {kInterface, {}, {}}, {}}, {0x0A, 0x0A, true, {kClockSource, {}, {}}, {}},
    {0x0B, 0x0B, true, {kMemory, {}, {}}, {}}, {0x0C, 0x0C, false, {kLocale, {}, {}}, {}},
    {0x0E, 0x0F, false, {kStreamPort, {}, {}}, {}}, {0x10, 0x13, false, {kPort, {}, {}}, {}},
    {0x14, 0x14, true, {kSignal, kCluster, {}}, {}}, {0x15, 0x16, true, {kSignal, {}, {}}, {}},
    {0x1A, 0x1A, true, {kLatencies, kValueType, kControl}, {}}, {0x1B, 0x1B, true, {kLatencies, kSelector, {}}, kSignal},
    {0x1C, 0x1C, true, {kLatencies, kValueType, kMixer}, kSignal}, {0x1D, 0x1D, true, {kLatencies, kValueType, kMatrix}, {}},
    {0x1E, 0x1E, false, {kMatrixSignal, {}, {}}, kSignal}, {0x1F, 0x1F, true, {kLatencies, kSignal, kSplitter}, kSplitterMap},
    {0x20, 0x20, true, {kLatencies, kCombiner, {}}, kSplitterMap},
    {0x21, 0x21, true, {kLatencies, kSignal, kSplitter}, kSplitterMap},
    {0x22, 0x22, true, {kLatencies, kCombiner, {}}, kSplitterMap},
    {0x23, 0x23, true, {kLatencies, kValueType, kTranscoder}, {}}, {0x24, 0x24, true, {kDomain, {}, {}}, kDomainSource},
    {0x25, 0x25, true, {kControlBlock, {}, {}}, {}}};

// --- stream formats ---

constexpr auto kSubtypes = SortedNames({{0x00, "IEC 61883/IIDC"}, {0x01, "MMA Stream"}, {0x02, "AVTP Audio"},
    {0x03, "Compressed Video"},
                                        {0x04, "Clock Reference"}, {0x05, "Time-Synchronous Control"}, {0x06, "SDI Video"},
                                        {0x07, "Raw Video"}, {0x6E, "AES Encrypted Continuous"}, {0x6F, "Vendor Specific"}});
constexpr auto kFormatHead = Rows<Avtp>({Word(1), Flag(0, "Vendor Format"),
    Bits(1, 7, "Format Subtype", kSubtypes).Into(&Avtp::type)});
constexpr auto kBusFormat = Rows<Avtp>({
    Word(1), Flag(0, "IEC 61883"), Bits(1, 6, "Format ID"), Bits(7, 1, "Reserved"), Word(1), Bits(0, 5, "Event Type"),
    Bits(5, 3, "Sampling Frequency"), Number(1, "Data Block Size"), Word(1), Flag(0, "Blocking"), Flag(1, "Nonblocking"),
    Flag(2, "Up To"), Flag(3, "Synchronous Clock"), Bits(4, 4, "Reserved 2"), Number(1, "IEC 60958 Channels"),
    Number(1, "Multi-bit Linear Audio Channels"), Word(1), Bits(0, 4, "MIDI Slots"), Bits(4, 4, "SMPTE Slots")});
constexpr auto kAudioFormat = Rows<Avtp>({
    Word(1), Bits(0, 3, "Reserved"), Flag(3, "Up To"), Bits(4, 4, "Nominal Sample Rate"), Number(1, "Audio Format"),
    Number(1, "Bit Depth"), Word(4), Bits(0, 10, "Channels per Frame"), Bits(10, 10, "Samples per Frame"),
    Bits(20, 12, "Reserved 2")});
constexpr auto kClockFormat = Rows<Avtp>({
    Word(2), Bits(0, 4, "Clock Type"), Bits(4, 12, "Time Stamp Interval"), Number(1, "Time Stamps per Packet"),
    Shown(4, "Clock Rate", ShowAvdeccRate)});

}  // namespace

const char* AvdeccDescriptorName(uint32_t type) { return LookupName(kDescriptorNames, type); }

void ShowAvdeccRate(const Place& in, const Field& field, const char* label) {
  constexpr const char* kPulls[] = {"", " x 1/1.001", " x 1.001", " x 24/25", " x 25/24", " x 1/8", " x Reserved",
      " x Reserved"};
  const uint32_t rate = PeekU32(field);
  // keys: number Sampling Rate, Current Sampling Rate, Clock Rate
  AddLine(in, field, "%s: %u Hz%s", label, rate & 0x1FFFFFFF, kPulls[rate >> 29]);
}

void ShowAvdeccFormat(const Place& in, const Field& field, const char* label) {
  constexpr uint32_t kBus = 0, kAudio = 2, kClock = 4;
  // keys: text Stream Format, Current Format, Format
  const Place under = Under(in, AddLine(in, field, "%s: 0x%s", label, HexDigits(field)));
  Cursor c = CursorOver(field);
  Avtp avtp = ShowRows(under, c, kFormatHead);
  if (avtp.type.value == kBus) ShowRows<Avtp>(under, c, kBusFormat, avtp);
  if (avtp.type.value == kAudio) ShowRows<Avtp>(under, c, kAudioFormat, avtp);
  if (avtp.type.value == kClock) ShowRows<Avtp>(under, c, kClockFormat, avtp);
}

void ShowAvdeccMappings(const Place& in, Cursor& c, uint32_t count) {
  static constexpr auto kMapping = Rows<Avtp>({
      Number(2, "Stream Index"), Number(2, "Stream Channel"), Number(2, "Cluster Offset"), Number(2, "Cluster Channel")});
  Avtp avtp{};
  avtp.count.value = count;
  ShowList(in, c, kMapping, avtp);
}

void ShowAvdeccDescriptor(const Place& in, Cursor& c) {
  constexpr uint32_t kStrings = 0x0D, kAudioMap = 0x17, kVideoMap = 0x18, kSensorMap = 0x19;
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Descriptor"));
  Avtp avtp = ShowRows(under, c, kHead);
  const uint32_t type = avtp.type.value;
  if (type == kStrings) {
    Loop loop;
    while (Left(c) >= 64 && MoreAt(under, c, loop)) ShowRows<Avtp>(under, c, kString, avtp);
  } else if (type == kAudioMap) {
    ShowRows<Avtp>(under, c, kMap, avtp);
    ShowAvdeccMappings(under, c, avtp.count.value);
  } else if (type == kVideoMap || type == kSensorMap) {
    ShowRows<Avtp>(under, c, kMap, avtp);
    ShowAvdeccOtherMappings(under, c, avtp.count.value, type == kVideoMap);
  }
  for (const Part& part : kParts) {
    if (type < part.first || type > part.last) continue;
    if (part.isNamed) ShowRows<Avtp>(under, c, kNamed, avtp);
    for (const RowSpan<Avtp>& rows : part.rows) {
      if (rows.count) ShowRows<Avtp>(under, c, rows, avtp);
    }
    if (part.list.count) ShowList(under, c, part.list, avtp);
  }
  ShowTail(under, c, type, avtp);
}

}  // namespace qxview
