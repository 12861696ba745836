// Audio Video Transport Protocol (IEEE 1722-2016): samples, pictures, clocks and messages of control buses, each to be
// presented at a time of gPTP; and MAAP (annex B), by which talkers get multicast addresses. Over Ethernet and UDP (annex J).
//
//   0        1                        2         3    4          12          16               20      22
//   subtype  stream valid, version..  sequence  ..   stream ID  time stamp  of the format    length  of the format
#include "decoders/link/avtp.h"

namespace qxview {
namespace {

enum Subtype : uint32_t {
  kBus = 0x00, kMedia = 0x01, kAudio = 0x02, kVideo = 0x03, kClock = 0x04, kTimeControl = 0x05, kRawVideo = 0x07,
  kVendorStream = 0x6F, kControl = 0x82, kMaap = 0xFE,
};

constexpr auto kSubtypeNames = SortedNames({
    {0x00, "IEC 61883/IIDC"}, {0x01, "MMA Stream"}, {0x02, "AVTP Audio"}, {0x03, "Compressed Video"},
    {0x04, "Clock Reference"}, {0x05, "Time-Synchronous Control"}, {0x06, "SDI Video"}, {0x07, "Raw Video"},
    {0x6E, "AES Encrypted Continuous"}, {0x6F, "Vendor Specific Stream"}, {0x7F, "Experimental Stream"},
    {0x82, "Non-Time-Synchronous Control"}, {0xEC, "ECC Signed Control"}, {0xED, "ECC Encrypted Control"},
    {0xEE, "AES Encrypted Discrete"}, {0xFA, "Discovery (ADP)"}, {0xFB, "Enumeration and Control (AECP)"},
    {0xFC, "Connection Management (ACMP)"}, {0xFE, "Address Acquisition (MAAP)"}, {0xFF, "Experimental Control"}});

constexpr auto kHead = Rows<Avtp>({Hex(1, "Subtype", kSubtypeNames).Into(&Avtp::subtype)});
constexpr auto kStreamFlags = Rows<Avtp>({
    Word(1), Flag(0, "Stream ID Valid"), Bits(1, 3, "Version"), Flag(4, "Media Clock Restart"), Bits(5, 2, "Reserved"),
    Flag(7, "Time Stamp Valid"), Number(1, "Sequence Number").Note(", Sequence %u")});
constexpr auto kUncertain = Rows<Avtp>({Word(1), Bits(0, 7, "Reserved"), Flag(7, "Time Stamp Uncertain")});
constexpr auto kStream = Rows<Avtp>({Hex(8, "Stream ID"), Number(4, "AVTP Time Stamp", " ns")});
constexpr auto kDataLength = Rows<Avtp>({Number(2, "Stream Data Length").Into(&Avtp::length)});
constexpr auto kReserved4 = Rows<Avtp>({Hex(4, "Reserved")});
constexpr auto kReserved2 = Rows<Avtp>({Hex(2, "Reserved")});

// --- what IEEE 1394 carries: IEC 61883 and IIDC ---

constexpr auto kBusFlags = Rows<Avtp>({
    Word(1), Flag(0, "Stream ID Valid"), Bits(1, 3, "Version"), Flag(4, "Media Clock Restart"), Bits(5, 1, "Reserved"),
    Flag(6, "Gateway Information Valid"), Flag(7, "Time Stamp Valid"), Number(1, "Sequence Number").Note(", Sequence %u")});
constexpr auto kTagNames = SortedNames({{0, "No CIP Header"}, {1, "CIP Header"}});
constexpr auto kGateway = Rows<Avtp>({Hex(4, "Gateway Information")});
constexpr auto kBusHead = Rows<Avtp>({
    Word(1), Bits(0, 2, "Tag", kTagNames).Into(&Avtp::type), Bits(2, 6, "Channel"), Word(1), Bits(0, 4, "Transaction Code"),
    Bits(4, 4, "Synchronization Code")});
constexpr auto kFormatNames = SortedNames({
    {0x00, "IEC 61883-2 (SD-DVCR)"}, {0x01, "IEC 61883-8 (BT.601)"}, {0x10, "IEC 61883-6 (Audio and Music)"},
    {0x20, "IEC 61883-4 (MPEG2-TS)"}, {0x21, "IEC 61883-7 (ITU-R BO.1294)"}, {0x3F, "No Data"}});
constexpr auto kCip = Rows<Avtp>({
    Word(1), Bits(0, 2, "Quadlet Indicator 1"), Bits(2, 6, "Source ID"), Number(1, "Data Block Size").Into(&Avtp::size),
    Word(1), Bits(0, 2, "Fraction Number"), Bits(2, 3, "Quadlet Padding Count"),
    Flag(5, "Source Packet Header").Into(&Avtp::flags), Bits(6, 2, "Reserved"), Number(1, "Data Block Continuity"), Word(1),
    Bits(0, 2, "Quadlet Indicator 2"), Bits(2, 6, "Format ID", kFormatNames).Into(&Avtp::type)});
constexpr auto kAudioRates = SortedNames({
    {0, "32 kHz"}, {1, "44.1 kHz"}, {2, "48 kHz"}, {3, "88.2 kHz"}, {4, "96 kHz"}, {5, "176.4 kHz"}, {6, "192 kHz"}});
constexpr auto kMusicEvents = SortedNames({{0, "AM824"}, {1, "24-bit x 4 Audio Pack"}, {2, "32-bit Floating Point"},
                                           {3, "32-bit Generic"}});
constexpr auto kMusic = Rows<Avtp>({
    Word(1), Bits(0, 1, "Reserved"), Bits(1, 2, "Event Type", kMusicEvents).Into(&Avtp::message),
    Bits(3, 1, "Rate Control Without Commands"), Bits(4, 1, "Reserved"), Bits(5, 3, "Sampling Frequency", kAudioRates),
    Hex(2, "Synchronization Time Stamp (SYT)")});
constexpr auto kTransport = Rows<Avtp>({Hex(3, "Format Dependent Field"), Flag(0, "Time Shift"), Bits(1, 23, "Reserved")});
constexpr auto kScramblingNames = SortedNames({{0, "Not Scrambled"}, {2, "Even Key"}, {3, "Odd Key"}});
constexpr auto kAdaptationNames = SortedNames({{1, "Payload"}, {2, "Adaptation Field"}, {3, "Adaptation Field and Payload"}});
// ISO/IEC 13818-1, 2.4.3.2.
constexpr auto kTransportPacket = Rows<Avtp>({
    Number(4, "Source Packet Time Stamp"), Hex(1, "Sync Byte"), Word(2), Flag(0, "Transport Error"),
    Flag(1, "Payload Unit Start"), Bits(2, 1, "Transport Priority"), Bits(3, 13, "PID"), Word(1),
    Bits(0, 2, "Scrambling", kScramblingNames), Bits(2, 2, "Adaptation", kAdaptationNames), Bits(4, 4, "Continuity Counter"),
    Bytes(184, "Transport Packet")});
constexpr auto kFields = Rows<Avtp>({Hex(1, "Format Dependent Field"), Hex(2, "Synchronization Time Stamp (SYT)")});

constexpr auto kQuadlet = Rows<Avtp>({Number(4, "Sample")});

// Blocks of quadlets: a label says what each of them is.
void ShowMusic(const Place& in, Cursor& c, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kMusic, avtp);
  const uint32_t event = avtp.message.value, blockSize = avtp.size.value * 4;
  Loop loop;
  for (uint32_t block = 1; blockSize && Left(c) >= 4 && MoreAt(in, c, loop); ++block) {
    Cursor part = TakeCursor(c, static_cast<int32_t>(blockSize));
    const Place under = Under(in, AddLine(in, Ahead(part, Left(part)), "Data Block %u", block));
    Loop quadlets;
    while (Left(part) >= 4 && MoreAt(in, part, quadlets)) {
      if (event) {
        ShowRows<Avtp>(under, part, kQuadlet, avtp);
        continue;
      }
      const Field label = TakeU8(part), sample = TakeU24(part);
      const uint32_t kind = label.value;
      const char* name = kind < 0x40    ? "IEC 60958"
                         : kind < 0x50  ? "Multi-bit Linear Audio"
                         : kind < 0x58  ? "One-bit Audio"
                         : kind >= 0x80 && kind < 0x84 ? "MIDI"
                         : kind >= 0x88 && kind < 0x8C ? "SMPTE Time Code"
                         : kind >= 0x8C && kind < 0x90 ? "Sample Count"
                         : kind >= 0xC0 && kind < 0xF0 ? "Ancillary Data"
                                                       : kUnknown;
      AddLine(under, label, "Label: 0x%.02X = %s", kind, name);
      AddLine(under, sample, "Data: 0x%.06X", sample.value);
    }
  }
}

void ShowBus(const Place& in, Cursor& c, Avtp& avtp) {
  constexpr uint32_t kMusicFormat = 0x10, kTransportFormat = 0x20;
  ShowRows<Avtp>(in, c, kBusFlags, avtp);
  ShowRows<Avtp>(in, c, kUncertain, avtp);
  ShowRows<Avtp>(in, c, kStream, avtp);
  ShowRows<Avtp>(in, c, kGateway, avtp);
  ShowRows<Avtp>(in, c, kDataLength, avtp);
  ShowRows<Avtp>(in, c, kBusHead, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  if (avtp.type.value == 1) {
    ShowRows<Avtp>(in, data, kCip, avtp);
    const uint32_t format = avtp.type.value;
    if (format == kMusicFormat) {
      ShowMusic(in, data, avtp);
    } else if (format == kTransportFormat) {
      ShowRows<Avtp>(in, data, kTransport, avtp);
      Loop loop;
      while (Left(data) >= 192 && MoreAt(in, data, loop)) ShowRows<Avtp>(in, data, kTransportPacket, avtp);
    } else {
      ShowRows<Avtp>(in, data, kFields, avtp);
    }
  }
  data.ranShort = false;
  AddBlock(in, Rest(data), "Stream Data");
}

// --- audio ---

constexpr auto kAudioFormats = SortedNames({
    {0, "User Specified"}, {1, "32-bit Floating Point"}, {2, "32-bit Integer"}, {3, "24-bit Integer"},
    {4, "16-bit Integer"}, {5, "AES3, 32-bit"}});
constexpr auto kSampleRates = SortedNames({
    {0, "User Specified"}, {1, "8 kHz"}, {2, "16 kHz"}, {3, "32 kHz"}, {4, "44.1 kHz"}, {5, "48 kHz"}, {6, "88.2 kHz"},
    {7, "96 kHz"}, {8, "176.4 kHz"}, {9, "192 kHz"}, {10, "24 kHz"}});
constexpr auto kSparse = SortedNames({{0, "In Every Packet"}, {1, "In Every Eighth Packet"}});
constexpr auto kAudioHead = Rows<Avtp>({Number(1, "Format", kAudioFormats).Into(&Avtp::type)});
constexpr auto kSamples = Rows<Avtp>({
    Word(2), Bits(0, 4, "Nominal Sample Rate", kSampleRates), Bits(4, 2, "Reserved"),
    Bits(6, 10, "Channels per Frame").Into(&Avtp::count), Number(1, "Bit Depth"),
    Number(2, "Stream Data Length").Into(&Avtp::length), Word(1), Bits(0, 3, "Reserved"),
    Bits(3, 1, "Sparse Time Stamp", kSparse), Bits(4, 4, "Event"), Hex(1, "Reserved")});
constexpr auto kAes = Rows<Avtp>({
    Word(2), Bits(0, 4, "Nominal Frame Rate", kSampleRates), Bits(4, 2, "Reserved"), Bits(6, 10, "Streams per Frame"),
    Hex(1, "AES3 Data Type High"), Number(2, "Stream Data Length").Into(&Avtp::length), Word(1),
    Bits(0, 3, "AES3 Data Type Reference"), Bits(3, 1, "Sparse Time Stamp", kSparse), Bits(4, 4, "Event"),
    Hex(1, "AES3 Data Type Low")});
constexpr auto kAnyAudio = Rows<Avtp>({Hex(3, "Format Data"), Number(2, "Stream Data Length").Into(&Avtp::length),
    Hex(2, "Format Data")});

void ShowStreamHead(const Place& in, Cursor& c, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kStreamFlags, avtp);
  ShowRows<Avtp>(in, c, kUncertain, avtp);
  ShowRows<Avtp>(in, c, kStream, avtp);
}

// Frames of one sample a channel.
void ShowSamples(const Place& in, Cursor& c, uint32_t format, uint32_t channels) {
  const int32_t size = format == 4 ? 2 : format == 3 ? 3 : 4;
  Loop loop;
  for (uint32_t frame = 1; channels && Left(c) >= size && MoreAt(in, c, loop); ++frame) {
    Cursor part = TakeCursor(c, static_cast<int32_t>(channels) * size);
    const Field samples = Rest(part);
    AddLine(in, samples, "Sample Frame %u: %s", frame, HexText(samples));
  }
}

void ShowAudio(const Place& in, Cursor& c, Avtp& avtp) {
  ShowStreamHead(in, c, avtp);
  ShowRows<Avtp>(in, c, kAudioHead, avtp);
  const uint32_t format = avtp.type.value;
  const bool isSampled = format >= 1 && format <= 4;
  ShowRows<Avtp>(in, c, isSampled ? RowSpan<Avtp>(kSamples) : format == 5 ? RowSpan<Avtp>(kAes) : RowSpan<Avtp>(kAnyAudio),
      avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  if (isSampled) ShowSamples(in, data, format, avtp.count.value);
  data.ranShort = false;
  AddBlock(in, Rest(data), "Audio Data");
}

// --- video ---

constexpr auto kVideoFormats = SortedNames({{2, "RFC Payload Type"}});
constexpr auto kVideoSubtypes = SortedNames({{0, "MJPEG"}, {1, "H.264"}, {2, "JPEG 2000"}});
constexpr auto kVideoHead = Rows<Avtp>({
    Number(1, "Format", kVideoFormats), Number(1, "Format Subtype", kVideoSubtypes).Note(", %s").Into(&Avtp::type),
    Hex(2, "Reserved"), Number(2, "Stream Data Length").Into(&Avtp::length), Word(1), Bits(0, 2, "Reserved"),
    Flag(2, "H.264 Time Stamp Valid"), Flag(3, "Last Packet of the Frame"), Bits(4, 4, "Event"), Hex(1, "Reserved")});
constexpr auto kMotionJpeg = Rows<Avtp>({
    Number(1, "Type Specific"), Number(3, "Fragment Offset"), Number(1, "JPEG Type"), Number(1, "Quantization"),
    Number(1, "Width / 8"), Number(1, "Height / 8")});
constexpr auto kH264 = Rows<Avtp>({Number(4, "H.264 Time Stamp"), Word(1), Flag(0, "Forbidden Bit"),
    Bits(1, 2, "Reference Indication"),
                                   Bits(3, 5, "NAL Unit Type")});
constexpr auto kJpeg2000 = Rows<Avtp>({
    Word(1), Bits(0, 2, "Interlace"), Bits(2, 2, "Main Header Flag"), Bits(4, 3, "Main Header ID"),
    Flag(7, "Tile Field Invalid"), Number(1, "Priority"), Number(2, "Tile Number"), Number(1, "Reserved"),
    Number(3, "Fragment Offset")});

void ShowVideo(const Place& in, Cursor& c, Avtp& avtp) {
  ShowStreamHead(in, c, avtp);
  ShowRows<Avtp>(in, c, kVideoHead, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  const uint32_t kind = avtp.type.value;
  if (kind <= 2) {
    ShowRows<Avtp>(in, data, kind == 0 ? RowSpan<Avtp>(kMotionJpeg) : kind == 1 ? RowSpan<Avtp>(kH264) :
        RowSpan<Avtp>(kJpeg2000), avtp);
  }
  data.ranShort = false;
  AddBlock(in, Rest(data), "Video Data");
}

constexpr auto kPixelDepths = SortedNames({{1, "8 Bits"}, {2, "10 Bits"}, {3, "12 Bits"}, {4, "16 Bits"},
    {0xF, "User Specified"}});
constexpr auto kPixelFormats = SortedNames({
    {0, "Mono"}, {1, "4:1:1"}, {2, "4:2:0"}, {3, "4:2:2"}, {4, "4:4:4"}, {5, "4:2:2:4"}, {6, "4:4:4:4"}, {7, "Bayer GRBG"},
    {8, "Bayer RGGB"}, {9, "Bayer BGGR"}, {10, "Bayer GBRG"}, {0xF, "User Specified"}});
constexpr auto kRawHead = Rows<Avtp>({
    Number(2, "Active Pixels"), Number(2, "Total Lines"), Number(2, "Stream Data Length").Into(&Avtp::length), Word(2),
    Flag(0, "Active Pixels Only"), Bits(1, 1, "Reserved"), Flag(2, "Second Field"), Flag(3, "End of Frame"),
    Bits(4, 4, "Event"), Flag(8, "Pull-down"), Flag(9, "Interlaced"), Bits(10, 6, "Reserved 2"), Hex(1, "Reserved"), Word(1),
    Bits(0, 4, "Pixel Depth", kPixelDepths), Bits(4, 4, "Pixel Format", kPixelFormats), Number(1, "Frame Rate"), Word(1),
    Bits(0, 4, "Color Space"), Bits(4, 4, "Number of Lines"), Hex(1, "Reserved"), Number(1, "Interval Sequence Number"),
    Number(2, "Line Number")});

void ShowRawVideo(const Place& in, Cursor& c, Avtp& avtp) {
  ShowStreamHead(in, c, avtp);
  ShowRows<Avtp>(in, c, kRawHead, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  AddBlock(in, Rest(data), "Video Data");
}

// --- clock reference ---

constexpr auto kClockTypes = SortedNames({
    {0, "User Specified"}, {1, "Audio Sample"}, {2, "Video Frame"}, {3, "Video Line"}, {4, "Machine Cycle"}});
constexpr auto kPullNames = SortedNames({
    {0, "x 1"}, {1, "x 1/1.001"}, {2, "x 1.001"}, {3, "x 24/25"}, {4, "x 25/24"}, {5, "x 1/8"}});
constexpr auto kClockHead = Rows<Avtp>({
    Word(1), Flag(0, "Stream ID Valid"), Bits(1, 3, "Version"), Flag(4, "Media Clock Restart"), Bits(5, 1, "Reserved"),
    Flag(6, "Frame Synchronization"), Flag(7, "Time Stamp Uncertain"), Number(1, "Sequence Number").Note(", Sequence %u"),
    Number(1, "Clock Type", kClockTypes).Note(", %s"), Hex(8, "Stream ID"), Word(4), Bits(0, 3, "Pull", kPullNames),
    Bits(3, 29, "Base Frequency", " Hz"), Number(2, "Clock Data Length").Into(&Avtp::length),
    Number(2, "Time Stamp Interval")});
constexpr auto kClockTime = Rows<Avtp>({Number(8, "Clock Time Stamp", " ns")});

void ShowClock(const Place& in, Cursor& c, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kClockHead, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  Loop loop;
  while (Left(data) >= 8 && MoreAt(in, data, loop)) ShowRows<Avtp>(in, data, kClockTime, avtp);
  data.ranShort = false;
  AddBlock(in, Rest(data), "Clock Data");
}

// --- messages of control buses ---

constexpr auto kFlexRay = Rows<Avtp>({
    Word(1), Bits(0, 2, "Padding"), Flag(2, "Message Time Stamp Valid"), Bits(3, 5, "Bus ID"), Word(1),
    Bits(0, 2, "Reserved"), Bits(2, 2, "Channel"), Flag(4, "Startup Frame"), Flag(5, "Synchronization Frame"),
    Flag(6, "Payload Preamble"), Flag(7, "Null Frame"), Number(8, "Message Time Stamp", " ns"), Word(4),
    Bits(0, 11, "Frame ID").Note(", Frame %u"), Bits(11, 15, "Reserved"), Bits(26, 6, "Cycle")});
constexpr auto kCanFlags = Rows<Avtp>({
    Word(1), Bits(0, 2, "Padding"), Flag(2, "Message Time Stamp Valid"), Flag(3, "Remote Transmission Request"),
    Flag(4, "Extended Frame Format"), Flag(5, "Bit Rate Switch"), Flag(6, "Flexible Data Rate"),
    Flag(7, "Error State Indicator"), Word(1), Bits(0, 3, "Reserved"), Bits(3, 5, "Bus ID")});
constexpr auto kMessageTime = Rows<Avtp>({Number(8, "Message Time Stamp", " ns")});
constexpr auto kCanId = Rows<Avtp>({Word(4), Bits(0, 3, "Reserved"), Bits(3, 29, "CAN ID").Note(", ID %u")});
constexpr auto kLin = Rows<Avtp>({
    Word(1), Bits(0, 2, "Padding"), Flag(2, "Message Time Stamp Valid"), Bits(3, 5, "Bus ID"),
    Hex(1, "LIN ID").Note(", ID 0x%.02X"), Number(8, "Message Time Stamp", " ns")});
constexpr auto kMost = Rows<Avtp>({
    Word(1), Bits(0, 2, "Padding"), Flag(2, "Message Time Stamp Valid"), Bits(3, 5, "Network ID"), Hex(1, "Reserved"),
    Number(8, "Message Time Stamp", " ns"), Hex(2, "Device ID"), Hex(1, "Function Block ID"), Hex(1, "Instance ID"), Word(2),
    Bits(0, 12, "Function ID"), Bits(12, 4, "Operation Type"), Hex(2, "Reserved")});
constexpr auto kPurpose = Rows<Avtp>({Hex(6, "Message ID")});
constexpr auto kSerial = Rows<Avtp>({
    Word(1), Bits(0, 2, "Padding"), Flag(2, "Data Carrier Detect"), Flag(3, "Data Terminal Ready"), Flag(4, "Data Set Ready"),
    Flag(5, "Request to Send"), Flag(6, "Clear to Send"), Flag(7, "Ring Indication"), Hex(1, "Reserved")});
constexpr auto kParallel = Rows<Avtp>({Word(1), Bits(0, 2, "Padding"), Bits(2, 6, "Reserved"), Number(1, "Bit Width")});
constexpr auto kSensorSizes = SortedNames({{0, "Within the Message"}, {1, "8 Bits"}, {2, "16 Bits"}, {3, "32 Bits"}});
constexpr auto kSensor = Rows<Avtp>({
    Word(1), Flag(0, "Message Time Stamp Valid"), Bits(1, 7, "Number of Sensors"), Word(1),
    Bits(0, 2, "Sensor Size", kSensorSizes), Bits(2, 6, "Sensor Group")});
constexpr auto kAecp = Rows<Avtp>({Hex(2, "Reserved")});

void ShowTimedCan(const Place& in, Cursor& c, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kMessageTime, avtp);
  ShowRows<Avtp>(in, c, kCanId, avtp);
}
void ShowCan(const Place& in, Cursor& c, Avtp& avtp) { ShowRows<Avtp>(in, c, kCanId, avtp); }
void ShowTime(const Place& in, Cursor& c, Avtp& avtp) { ShowRows<Avtp>(in, c, kMessageTime, avtp); }

constexpr auto kMessages = Choices<Avtp>({
    {0x00, "FlexRay", kFlexRay}, {0x01, "CAN", kCanFlags, ShowTimedCan}, {0x02, "Abbreviated CAN", kCanFlags, ShowCan},
    {0x03, "LIN", kLin}, {0x04, "MOST", kMost}, {0x05, "General Purpose Control", kPurpose}, {0x06, "Serial Port", kSerial},
    {0x07, "Parallel Port", kParallel}, {0x08, "Sensor", kSensor, ShowTime}, {0x09, "Abbreviated Sensor", kSensor},
    {0x0A, "Control by AECP", kAecp}, {0x0B, "Video Ancillary Data"}});

void ShowMessages(const Place& in, Cursor& c, Avtp& avtp) {
  // keys: number Type, Length
  constexpr ElementForm kForm{.typeSize = 2, .lengthSize = 0, .unit = 4, .typeBits = 7, .lengthCountsHeader = true};
  ShowElements<Avtp>(in, c, kForm, "Control Message", kMessages, avtp);
}

constexpr auto kControlHead = Rows<Avtp>({
    Word(2), Flag(0, "Stream ID Valid"), Bits(1, 3, "Version"), Bits(4, 1, "Reserved"),
    Bits(5, 11, "Control Data Length").Into(&Avtp::length), Number(1, "Sequence Number").Note(", Sequence %u"),
    Hex(8, "Stream ID")});

void ShowTimedMessages(const Place& in, Cursor& c, Avtp& avtp) {
  ShowStreamHead(in, c, avtp);
  ShowRows<Avtp>(in, c, kReserved4, avtp);
  ShowRows<Avtp>(in, c, kDataLength, avtp);
  ShowRows<Avtp>(in, c, kReserved2, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  ShowMessages(in, data, avtp);
}
void ShowPlainMessages(const Place& in, Cursor& c, Avtp& avtp) {
  ShowRows<Avtp>(in, c, kControlHead, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  ShowMessages(in, data, avtp);
}

// --- other streams, addresses ---

constexpr auto kOtherStream = Rows<Avtp>({
    Hex(4, "Format Specific Data"), Number(2, "Stream Data Length").Into(&Avtp::length), Hex(2, "Format Specific Data")});
constexpr auto kOrganization = Rows<Avtp>({Eui64("Vendor ID")});
void ShowStream(const Place& in, Cursor& c, Avtp& avtp) {
  ShowStreamHead(in, c, avtp);
  ShowRows<Avtp>(in, c, kOtherStream, avtp);
  Cursor data = TakeCursor(c, static_cast<int32_t>(avtp.length.value));
  if (avtp.subtype.value == kVendorStream) ShowRows<Avtp>(in, data, kOrganization, avtp);
  data.ranShort = false;
  AddBlock(in, Rest(data), "Stream Data");
}

constexpr auto kMaapNames = SortedNames({{1, "MAAP_PROBE"}, {2, "MAAP_DEFEND"}, {3, "MAAP_ANNOUNCE"}});
constexpr auto kMaapBody = Rows<Avtp>({
    Word(1), Flag(0, "Header Specific"), Bits(1, 3, "Version"), Bits(4, 4, "Message Type", kMaapNames).Note(", %s"), Word(2),
    Bits(0, 5, "MAAP Version"), Bits(5, 11, "Control Data Length"), Hex(8, "Stream ID"),
    Mac("Requested Start Address").Note(", %s"), Number(2, "Requested Count").Note(" x %u"), Mac("Conflict Start Address"),
    Number(2, "Conflict Count")});

constexpr auto kOther = Rows<Avtp>({Word(1), Flag(0, "Header Specific"), Bits(1, 3, "Version"), Bits(4, 4, "Type Specific")});

}  // namespace

int32_t DecodeAvtp(const Place& at, Cursor c) {
  constexpr int32_t kHeader = 4;
  if (Left(c) < kHeader) return 0;
  const uint32_t subtype = PeekU8(c);
  const LineHandle line = AddLine(at, Ahead(c, Left(c)), "AVTP: %s", LookupName(kSubtypeNames, subtype));
  const Place in = Under(at, line);
  Avtp avtp = ShowRows(in, c, kHead);
  if (!ShowAvdecc(at, in, line, c, subtype)) {
    switch (subtype) {
      case kBus: ShowBus(in, c, avtp); break;
      case kAudio: ShowAudio(in, c, avtp); break;
      case kVideo: ShowVideo(in, c, avtp); break;
      case kClock: ShowClock(in, c, avtp); break;
      case kTimeControl: ShowTimedMessages(in, c, avtp); break;
      case kRawVideo: ShowRawVideo(in, c, avtp); break;
      case kControl: ShowPlainMessages(in, c, avtp); break;
      case kMaap: ShowRows<Avtp>(in, c, kMaapBody, avtp); break;
      default:
        if (subtype < 0x80) ShowStream(in, c, avtp);   // the lower half are streams
        else ShowRows<Avtp>(in, c, kOther, avtp);
        break;
    }
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "AVTP Data");
  return 1;
}

int32_t DecodeAvtpOverUdp(const Place& at, Cursor c) {
  static constexpr auto kSequence = Rows<Avtp>({Number(4, "Encapsulation Sequence Number")});
  if (Left(c) < 8) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, 4), "AVTP over UDP"));
  ShowRows(in, c, kSequence);
  return CallDecoder(at, c, DecodeAvtp, "AVTP Data");
}

}  // namespace qxview
