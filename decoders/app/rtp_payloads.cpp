// What stands in RTP's payloads in front of coded media (RFC 2198, 2250, 2435, 2733, 3389, 3558, 3640, 4175, 4184, 4588, 4733,
// 4867, 5109, 5215, 6416, 7587, 8331, 8627 and others; pictures are in rtp_video.cpp).
#include "decoders/app/rtp_payloads.h"

#include "core/rows.h"
#include "decoders/app/media_sessions.h"
#include "decoders/app/rtp_video.h"
#include "decoders/common/header_lines.h"

namespace qxview {

int32_t DecodeMpegTs(const Place& at, Cursor c);

namespace {

constexpr auto kEventNames = SortedNames({
    {0, "DTMF 0"}, {1, "DTMF 1"}, {2, "DTMF 2"}, {3, "DTMF 3"}, {4, "DTMF 4"}, {5, "DTMF 5"}, {6, "DTMF 6"}, {7, "DTMF 7"},
    {8, "DTMF 8"}, {9, "DTMF 9"}, {10, "DTMF *"}, {11, "DTMF #"}, {12, "DTMF A"}, {13, "DTMF B"}, {14, "DTMF C"},
    {15, "DTMF D"}, {16, "Flash"}, {32, "ANS"}, {33, "/ANS"}, {34, "ANSam"}, {35, "/ANSam"}, {36, "CNG"},
    {37, "V.21 Channel 1, 0 Bit"}, {38, "V.21 Channel 1, 1 Bit"}, {39, "V.21 Channel 2, 0 Bit"},
    {40, "V.21 Channel 2, 1 Bit"}, {41, "CRdi"}, {42, "CRdr"}, {43, "CRe"}, {44, "ESi"}, {45, "ESr"}, {46, "MRdi"},
    {47, "MRdr"}, {48, "MRe"}, {49, "CT"}, {64, "Off Hook"}, {65, "On Hook"}, {66, "Dial Tone"},
    {67, "Internal Dial Tone"}, {68, "Special Dial Tone"}, {69, "Second Dial Tone"}, {70, "Ringing Tone"},
    {71, "Special Ringing Tone"}, {72, "Busy Tone"}, {73, "Congestion Tone"}, {74, "Special Information Tone"},
    {75, "Comfort Tone"}, {76, "Hold Tone"}, {77, "Record Tone"}, {78, "Caller Waiting Tone"}, {79, "Call Waiting Tone"},
    {80, "Pay Tone"}, {81, "Positive Indication Tone"}, {82, "Negative Indication Tone"}, {83, "Warning Tone"},
    {84, "Intrusion Tone"}, {85, "Calling Card Service Tone"}, {86, "Payphone Recognition Tone"},
    {87, "CPE Alerting Signal"}, {88, "Off-Hook Warning Tone"}, {89, "Ring"}});
constexpr auto kAmrNames = SortedNames({
    {0, "4.75 kbit/s"}, {1, "5.15 kbit/s"}, {2, "5.90 kbit/s"}, {3, "6.70 kbit/s"}, {4, "7.40 kbit/s"}, {5, "7.95 kbit/s"},
    {6, "10.2 kbit/s"}, {7, "12.2 kbit/s"}, {8, "Comfort Noise"}, {9, "GSM-EFR SID"}, {10, "TDMA-EFR SID"},
    {11, "PDC-EFR SID"}, {14, "Speech Lost"}, {15, "No Data"}});
constexpr auto kWideAmrNames = SortedNames({
    {0, "6.60 kbit/s"}, {1, "8.85 kbit/s"}, {2, "12.65 kbit/s"}, {3, "14.25 kbit/s"}, {4, "15.85 kbit/s"}, {5, "18.25 kbit/s"},
    {6, "19.85 kbit/s"}, {7, "23.05 kbit/s"}, {8, "23.85 kbit/s"}, {9, "Comfort Noise"}, {14, "Speech Lost"},
    {15, "No Data"}});
constexpr auto kOpusNames = SortedNames({
    {0, "SILK NB, 10 ms"}, {1, "SILK NB, 20 ms"}, {2, "SILK NB, 40 ms"}, {3, "SILK NB, 60 ms"}, {4, "SILK MB, 10 ms"},
    {5, "SILK MB, 20 ms"}, {6, "SILK MB, 40 ms"}, {7, "SILK MB, 60 ms"}, {8, "SILK WB, 10 ms"}, {9, "SILK WB, 20 ms"},
    {10, "SILK WB, 40 ms"}, {11, "SILK WB, 60 ms"}, {12, "Hybrid SWB, 10 ms"}, {13, "Hybrid SWB, 20 ms"},
    {14, "Hybrid FB, 10 ms"}, {15, "Hybrid FB, 20 ms"}, {16, "CELT NB, 2.5 ms"}, {17, "CELT NB, 5 ms"}, {18, "CELT NB, 10 ms"},
    {19, "CELT NB, 20 ms"}, {20, "CELT WB, 2.5 ms"}, {21, "CELT WB, 5 ms"}, {22, "CELT WB, 10 ms"}, {23, "CELT WB, 20 ms"},
    {24, "CELT SWB, 2.5 ms"}, {25, "CELT SWB, 5 ms"}, {26, "CELT SWB, 10 ms"}, {27, "CELT SWB, 20 ms"},
    {28, "CELT FB, 2.5 ms"}, {29, "CELT FB, 5 ms"}, {30, "CELT FB, 10 ms"}, {31, "CELT FB, 20 ms"}});
constexpr auto kOpusCounts = SortedNames({
    {0, "One Frame"}, {1, "Two Frames of Equal Size"}, {2, "Two Frames"}, {3, "Counted Frames"}});
constexpr auto kLayerNames = SortedNames({{0, "Reserved"}, {1, "Layer III"}, {2, "Layer II"}, {3, "Layer I"}});
constexpr auto kMpegNames = SortedNames({{0, "MPEG 2.5"}, {1, "Reserved"}, {2, "MPEG 2"}, {3, "MPEG 1"}});
constexpr auto kModeNames = SortedNames({{0, "Stereo"}, {1, "Joint Stereo"}, {2, "Dual Channel"}, {3, "Single Channel"}});
constexpr auto kPictureNames = SortedNames({{1, "I"}, {2, "P"}, {3, "B"}, {4, "D"}});
constexpr auto kAc3Names = SortedNames({
    {0, "Complete Frames"}, {1, "First Fragment, 5/8 of the Frame"}, {2, "First Fragment"}, {3, "Further Fragment"}});
constexpr auto kFragmentNames = SortedNames({{0, "Not Fragmented"}, {1, "Start"}, {2, "Continuation"}, {3, "End"}});
constexpr auto kVorbisNames = SortedNames({{0, "Raw"}, {1, "Packed Configuration"}, {2, "Comment"}, {3, "Reserved"}});
constexpr auto kRateNames = SortedNames({
    {0, "Blank"}, {1, "1/8"}, {2, "1/4"}, {3, "1/2"}, {4, "Full"}, {5, "Erasure"}, {14, "Erasure"}});

struct Payload {
  Field count, offset, more, bits;
};

constexpr auto kEvent = Rows<Payload>({
    Number(1, "Event", kEventNames).Note(", %s"), Word(1), Flag(0, "End"), Flag(1, "Reserved"), Bits(2, 6, "Volume", " -dBm0"),
    Number(2, "Duration")});
constexpr auto kTone = Rows<Payload>({
    Word(2), Bits(0, 9, "Modulation", " Hz"), Flag(9, "Divided by Three"), Bits(10, 6, "Volume", " -dBm0"), Number(2, "Duration")});
constexpr auto kFrequency = Rows<Payload>({Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Frequency", " Hz")});
constexpr auto kNoise = Rows<Payload>({
    Word(1), Flag(0, "Reserved"), Bits(1, 7, "Noise Level", " -dBov"), Bytes(0, "Reflection Coefficients")});
constexpr auto kAmrAligned = Rows<Payload>({Word(1), Bits(0, 4, "Codec Mode Request", kAmrNames), Bits(4, 4, "Reserved")});
constexpr auto kAmrEntry = Rows<Payload>({
    Word(1), Flag(0, "More Frames"), Bits(1, 4, "Frame Type", kAmrNames), Flag(5, "Quality"), Bits(6, 2, "Padding")});
constexpr auto kAmrPacked = Rows<Payload>({
    Word(2), Bits(0, 4, "Codec Mode Request", kAmrNames), Flag(4, "More Frames"), Bits(5, 4, "Frame Type", kAmrNames),
    Flag(9, "Quality"), Bits(10, 6, "First Bits")});
constexpr auto kWideAligned = Rows<Payload>({Word(1), Bits(0, 4, "Codec Mode Request", kWideAmrNames), Bits(4, 4, "Reserved")});
constexpr auto kWideEntry = Rows<Payload>({
    Word(1), Flag(0, "More Frames"), Bits(1, 4, "Frame Type", kWideAmrNames), Flag(5, "Quality"), Bits(6, 2, "Padding")});
constexpr auto kWidePacked = Rows<Payload>({
    Word(2), Bits(0, 4, "Codec Mode Request", kWideAmrNames), Flag(4, "More Frames"), Bits(5, 4, "Frame Type", kWideAmrNames),
    Flag(9, "Quality"), Bits(10, 6, "First Bits")});
constexpr auto kOpus = Rows<Payload>({
    Word(1), Bits(0, 5, "Configuration", kOpusNames), Flag(5, "Stereo"), Bits(6, 2, "Frame Count Code", kOpusCounts)});
constexpr auto kOpusCount = Rows<Payload>({Word(1), Flag(0, "Variable Bit Rate"), Flag(1, "Padding"), Bits(2, 6, "Frames")});
constexpr auto kMpegAudio = Rows<Payload>({Hex(2, "Reserved"), Number(2, "Fragment Offset").Into(&Payload::offset)});
constexpr auto kMpegAudioFrame = Rows<Payload>({
    Word(4), Bits(0, 11, "Sync Word"), Bits(11, 2, "Version", kMpegNames), Bits(13, 2, "Layer", kLayerNames),
    Flag(15, "No Check"), Bits(16, 4, "Bit Rate Index"), Bits(20, 2, "Sampling Rate Index"), Flag(22, "Padding"), Flag(23, "Private"),
    Bits(24, 2, "Channel Mode", kModeNames), Bits(26, 2, "Mode Extension"), Flag(28, "Copyright"), Flag(29, "Original"),
    Bits(30, 2, "Emphasis")});
constexpr auto kMpegVideo = Rows<Payload>({
    Word(4), Bits(0, 5, "Reserved"), Flag(5, "MPEG-2 Header").Into(&Payload::more), Bits(6, 10, "Temporal Reference"),
    Flag(16, "Active N"), Flag(17, "New Picture Header"), Flag(18, "Sequence Header"), Flag(19, "Beginning of Slice"),
    Flag(20, "End of Slice"), Bits(21, 3, "Picture Type", kPictureNames), Flag(24, "Full Pel Backward Vector"),
    Bits(25, 3, "Backward F Code"), Flag(28, "Full Pel Forward Vector"), Bits(29, 3, "Forward F Code")});
constexpr auto kMpeg2Video = Rows<Payload>({
    Word(4), Flag(0, "Reserved"), Flag(1, "Extensions Present"), Bits(2, 4, "F Code 0,0"), Bits(6, 4, "F Code 0,1"),
    Bits(10, 4, "F Code 1,0"), Bits(14, 4, "F Code 1,1"), Bits(18, 2, "Intra DC Precision"), Bits(20, 2, "Picture Structure"),
    Flag(22, "Top Field First"), Flag(23, "Frame Prediction"), Flag(24, "Concealment Motion Vectors"), Flag(25, "Q Scale Type"),
    Flag(26, "Intra VLC Format"), Flag(27, "Alternate Scan"), Flag(28, "Repeat First Field"), Flag(29, "Chroma 4:2:0"),
    Flag(30, "Progressive Frame"), Flag(31, "Composite Display")});
constexpr auto kAuLength = Rows<Payload>({Number(2, "AU Headers Length", " bits").Into(&Payload::count)});
constexpr auto kAu = Rows<Payload>({Word(2), Bits(0, 13, "AU Size"), Bits(13, 3, "AU Index")});
constexpr auto kShortAu = Rows<Payload>({Word(1), Bits(0, 6, "AU Size"), Bits(6, 2, "AU Index")});
constexpr auto kUlpFec = Rows<Payload>({
    Word(4), Flag(0, "Extension"), Flag(1, "Long Mask").Into(&Payload::more), Flag(2, "Padding Recovery"),
    Flag(3, "Extension Recovery"), Bits(4, 4, "CSRC Count Recovery"), Flag(8, "Marker Recovery"),
    Bits(9, 7, "Payload Type Recovery"), Bits(16, 16, "Sequence Base"), Number(4, "Timestamp Recovery"),
    Number(2, "Length Recovery"), Number(2, "Protection Length"), Hex(2, "Mask")});
constexpr auto kLongMask = Rows<Payload>({Hex(4, "Mask Continued")});
constexpr auto kFlexFec = Rows<Payload>({
    Word(4), Flag(0, "Retransmission"), Flag(1, "Fixed Mask").Into(&Payload::more), Flag(2, "Padding Recovery"),
    Flag(3, "Extension Recovery"), Bits(4, 4, "CSRC Count Recovery"), Flag(8, "Marker Recovery"),
    Bits(9, 7, "Payload Type Recovery"), Bits(16, 16, "Length Recovery"), Number(4, "Timestamp Recovery")});
constexpr auto kFlexFixed = Rows<Payload>({Number(2, "Sequence Base"), Number(1, "Columns"), Number(1, "Rows")});
constexpr auto kFlexMask = Rows<Payload>({
    Number(2, "Sequence Base"), Word(2), Flag(0, "Last Mask").Into(&Payload::more), Bits(1, 15, "Mask 0 to 14")});
constexpr auto kFlexMask2 = Rows<Payload>({Word(4), Flag(0, "Last Mask").Into(&Payload::more), Bits(1, 31, "Mask 15 to 45")});
constexpr auto kFlexMask3 = Rows<Payload>({Hex(8, "Mask 46 to 109")});
constexpr auto kParity = Rows<Payload>({
    Number(2, "Sequence Base"), Number(2, "Length Recovery"), Word(1), Flag(0, "Extension"), Bits(1, 7, "Payload Type Recovery"),
    Hex(3, "Mask"), Number(4, "Timestamp Recovery")});
constexpr auto kRetransmission = Rows<Payload>({Number(2, "Original Sequence").Note(", Sequence %u")});
constexpr auto kText = Rows<Payload>({Utf8(0, "Text")});
constexpr auto kInterleave = Rows<Payload>({
    Word(2), Bits(0, 2, "Reserved"), Bits(2, 3, "Interleave Length"), Bits(5, 3, "Interleave Index"), Bits(8, 3, "Mode Request"),
    Bits(11, 5, "Frames Less One").Into(&Payload::count)});
constexpr auto kRates = Rows<Payload>({
    Word(1), Bits(0, 4, "Frame Type", kRateNames), Bits(4, 4, "Next Frame Type", kRateNames)});
constexpr auto kQcelp = Rows<Payload>({
    Word(1), Bits(0, 2, "Reserved"), Bits(2, 3, "Interleave Length"), Bits(5, 3, "Interleave Index")});
constexpr auto kDvi = Rows<Payload>({Signed(2, "Predicted Value"), Number(1, "Step Index"), Hex(1, "Reserved")});
constexpr auto kAc3 = Rows<Payload>({
    Word(1), Bits(0, 6, "Reserved"), Bits(6, 2, "Frame Type", kAc3Names), Number(1, "Number of Frames")});
constexpr auto kEac3 = Rows<Payload>({
    Word(1), Bits(0, 7, "Reserved"), Flag(7, "Fragments"), Number(1, "Number of Frames")});
constexpr auto kVorbis = Rows<Payload>({
    Word(4), Bits(0, 24, "Configuration"), Bits(24, 2, "Fragment Type", kFragmentNames), Bits(26, 2, "Data Type", kVorbisNames),
    Bits(28, 4, "Packets").Into(&Payload::count)});
constexpr auto kRaw = Rows<Payload>({Number(2, "Extended Sequence")});
constexpr auto kRawLine = Rows<Payload>({
    Number(2, "Length"), Word(2), Flag(0, "Second Field"), Bits(1, 15, "Line Number"), Word(2),
    Flag(0, "Continuation").Into(&Payload::more), Bits(1, 15, "Offset")});
constexpr auto kAncillary = Rows<Payload>({
    Number(2, "Extended Sequence"), Number(2, "Length"), Number(1, "Ancillary Packets"), Word(3), Bits(0, 2, "Field"),
    Bits(2, 22, "Reserved")});

void ShowEach(const Place& in, Cursor& c, RowSpan<Payload> rows, int32_t size, Payload& payload) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Payload>(in, c, rows, payload);
}

// Octets are aligned where the session says so (RFC 4867 8.1).
void ShowAmr(const Place& in, Cursor& c, const MediaFormat* format, bool isWide, Payload& payload) {
  if (!format || format->mode != 1) {
    return ShowRows<Payload>(in, c, isWide ? RowSpan<Payload>(kWidePacked) : RowSpan<Payload>(kAmrPacked), payload);
  }
  ShowRows<Payload>(in, c, isWide ? RowSpan<Payload>(kWideAligned) : RowSpan<Payload>(kAmrAligned), payload);
  Loop loop;
  for (bool more = true; more && MoreAt(in, c, loop);) {
    more = PeekU8(c) & 0x80;
    ShowRows<Payload>(in, c, isWide ? RowSpan<Payload>(kWideEntry) : RowSpan<Payload>(kAmrEntry), payload);
  }
}

void ShowMpegAudio(const Place& in, Cursor& c, Payload& payload) {
  ShowRows<Payload>(in, c, kMpegAudio, payload);
  if (payload.offset.value == 0 && PeekU16(c) >> 5 == 0x7FF) ShowRows<Payload>(in, c, kMpegAudioFrame, payload);
}

// LATM: the length of each payload in octets of 255 and a last one (RFC 6416 6.3).
void ShowLatm(const Place& in, Cursor& c) {
  const Cursor start = c;
  int32_t length = 0;
  Loop loop;
  while (More(c, loop)) {
    const uint32_t octet = TakeU8(c).value;
    length += static_cast<int32_t>(octet);
    if (octet != 255) break;
  }
  AddLine(in, Ahead(start, c.offset - start.offset), "Payload Length: %u bytes", length);
}

void ShowAccessUnits(const Place& in, Cursor& c, const MediaFormat* format, Payload& payload) {
  constexpr uint8_t kShort = 6;
  ShowRows<Payload>(in, c, kAuLength, payload);
  Cursor headers = TakeCursor(c, (payload.count.value + 7) / 8);
  const bool isShort = format && format->mode == kShort;
  ShowEach(in, headers, isShort ? RowSpan<Payload>(kShortAu) : RowSpan<Payload>(kAu), isShort ? 1 : 2, payload);
}

void ShowFlexFec(const Place& in, Cursor& c, Payload& payload) {
  const bool isFixed = PeekU8(c) & 0x40;
  ShowRows<Payload>(in, c, kFlexFec, payload);
  if (isFixed) return ShowRows<Payload>(in, c, kFlexFixed, payload);
  bool isLast = PeekU8(c, 2) & 0x80;
  ShowRows<Payload>(in, c, kFlexMask, payload);
  if (isLast) return;
  isLast = PeekU8(c) & 0x80;
  ShowRows<Payload>(in, c, kFlexMask2, payload);
  if (!isLast) ShowRows<Payload>(in, c, kFlexMask3, payload);
}

void ShowRawVideo(const Place& in, Cursor& c, Payload& payload) {
  ShowRows<Payload>(in, c, kRaw, payload);
  Loop loop;
  for (bool more = true; more && Left(c) >= 6 && MoreAt(in, c, loop);) {
    more = PeekU8(c, 4) & 0x80;
    ShowRows<Payload>(in, c, kRawLine, payload);
  }
}

// Blocks of other payload types, the older ones in front (RFC 2198): their headers first, then their data.
void ShowRedundant(const Place& in, Cursor& c) {
  static constexpr auto kOlder = Rows<Payload>({
      Word(4), Flag(0, "More Blocks"), Bits(1, 7, "Block Payload Type"), Bits(8, 14, "Timestamp Offset"), Bits(22, 10, "Block Length")});
  static constexpr auto kLast = Rows<Payload>({Word(1), Flag(0, "More Blocks"), Bits(1, 7, "Block Payload Type")});
  Payload payload{};
  Cursor headers = c;
  Loop loop;
  while ((PeekU8(c) & 0x80) && MoreAt(in, c, loop)) ShowRows<Payload>(in, c, kOlder, payload);
  ShowRows<Payload>(in, c, kLast, payload);
  for (int32_t i = 0; (PeekU8(headers) & 0x80) && Left(headers) >= 4 && i < 64; ++i) {
    const Field block = TakeBytes(c, TakeU32(headers).value & 0x3FF);
    if (block.here && block.length > 0) AddBlock(in, block, "Redundant Block");
  }
}

enum class Encoding : uint8_t {
  kEvent, kTone, kNoise, kAmr, kWideAmr, kOpus, kMpegAudio, kMpegVideo, kTransport, kLatm, kAccessUnits, kRedundant, kUlpFec,
  kFlexFec, kParity, kRetransmission, kText, kInterleaved, kQcelp, kDvi, kAc3, kEac3, kVorbis, kRaw, kAncillary, kVideo
};
constexpr struct {
  const char* name;
  Encoding encoding;
} kEncodings[] = {
    {"telephone-event", Encoding::kEvent}, {"tone", Encoding::kTone}, {"CN", Encoding::kNoise}, {"AMR", Encoding::kAmr},
    {"AMR-WB", Encoding::kWideAmr}, {"opus", Encoding::kOpus}, {"MPA", Encoding::kMpegAudio}, {"MPV", Encoding::kMpegVideo},
    {"MP2T", Encoding::kTransport}, {"MP4A-LATM", Encoding::kLatm}, {"mpeg4-generic", Encoding::kAccessUnits},
    {"red", Encoding::kRedundant}, {"ulpfec", Encoding::kUlpFec}, {"flexfec", Encoding::kFlexFec},
    {"flexfec-03", Encoding::kFlexFec}, {"parityfec", Encoding::kParity}, {"rtx", Encoding::kRetransmission},
    {"t140", Encoding::kText}, {"EVRC", Encoding::kInterleaved}, {"EVRCB", Encoding::kInterleaved},
    {"EVRCWB", Encoding::kInterleaved}, {"SMV", Encoding::kInterleaved}, {"QCELP", Encoding::kQcelp}, {"DVI4", Encoding::kDvi},
    {"DVI", Encoding::kDvi}, {"ac3", Encoding::kAc3}, {"eac3", Encoding::kEac3}, {"vorbis", Encoding::kVorbis},
    {"theora", Encoding::kVorbis}, {"raw", Encoding::kRaw}, {"smpte291", Encoding::kAncillary}};

bool FindEncoding(const char* name, Encoding& out) {
  const Field field{reinterpret_cast<const uint8_t*>(name), 0, static_cast<int32_t>(std::strlen(name)), 0, true};
  for (const auto& row : kEncodings) {
    if (!IsWord(field, row.name)) continue;
    out = row.encoding;
    return true;
  }
  out = Encoding::kVideo;
  return IsVideoEncoding(field);
}

void ShowMpegVideo(const Place& in, Cursor& c, Payload& payload) {
  const bool hasMore = PeekU8(c) & 0x04;
  ShowRows<Payload>(in, c, kMpegVideo, payload);
  if (hasMore) ShowRows<Payload>(in, c, kMpeg2Video, payload);
}

void ShowUlpFec(const Place& in, Cursor& c, Payload& payload) {
  const bool isLong = PeekU8(c) & 0x40;
  ShowRows<Payload>(in, c, kUlpFec, payload);
  if (isLong) ShowRows<Payload>(in, c, kLongMask, payload);
}

// A type of four bits for each frame, then the frames.
void ShowInterleaved(const Place& in, Cursor& c, Payload& payload) {
  const uint32_t frames = (PeekU16(c) & 0x1F) + 1;
  ShowRows<Payload>(in, c, kInterleave, payload);
  Cursor types = TakeCursor(c, (frames + 1) / 2);
  ShowEach(in, types, kRates, 1, payload);
}

void ShowVorbis(const Place& in, Cursor& c, Payload& payload) {
  const uint32_t packets = PeekU8(c, 3) & 0x0F;
  ShowRows<Payload>(in, c, kVorbis, payload);
  Loop loop;
  for (uint32_t i = 0; i < packets && MoreAt(in, c, loop); ++i) {
    const Field length = TakeU16(c);
    AddLine(in, length, "Packet Length: %u", length.value);
    AddBlock(in, TakeBytes(c, length.value), "Packet Data");
  }
}

void ShowHead(const Place& in, Cursor& c, Encoding encoding, const char* name, const MediaFormat* format) {
  Payload payload{};
  switch (encoding) {
    case Encoding::kEvent: return ShowEach(in, c, kEvent, 4, payload);
    case Encoding::kTone:
      ShowRows<Payload>(in, c, kTone, payload);
      return ShowEach(in, c, kFrequency, 2, payload);
    case Encoding::kNoise: return ShowRows<Payload>(in, c, kNoise, payload);
    case Encoding::kAmr:
    case Encoding::kWideAmr: return ShowAmr(in, c, format, encoding == Encoding::kWideAmr, payload);
    case Encoding::kOpus: {
      const bool isCounted = (PeekU8(c) & 3) == 3;
      ShowRows<Payload>(in, c, kOpus, payload);
      if (isCounted) ShowRows<Payload>(in, c, kOpusCount, payload);
      return;
    }
    case Encoding::kMpegAudio: return ShowMpegAudio(in, c, payload);
    case Encoding::kMpegVideo: return ShowMpegVideo(in, c, payload);
    case Encoding::kLatm: return ShowLatm(in, c);
    case Encoding::kAccessUnits: return ShowAccessUnits(in, c, format, payload);
    case Encoding::kRedundant: return ShowRedundant(in, c);
    case Encoding::kUlpFec: return ShowUlpFec(in, c, payload);
    case Encoding::kFlexFec: return ShowFlexFec(in, c, payload);
    case Encoding::kParity: return ShowRows<Payload>(in, c, kParity, payload);
    case Encoding::kRetransmission: return ShowRows<Payload>(in, c, kRetransmission, payload);
    case Encoding::kText: return ShowRows<Payload>(in, c, kText, payload);
    case Encoding::kInterleaved: return ShowInterleaved(in, c, payload);
    case Encoding::kQcelp: return ShowRows<Payload>(in, c, kQcelp, payload);
    case Encoding::kDvi: return ShowRows<Payload>(in, c, kDvi, payload);
    case Encoding::kAc3: return ShowRows<Payload>(in, c, kAc3, payload);
    case Encoding::kEac3: return ShowRows<Payload>(in, c, kEac3, payload);
    case Encoding::kVorbis: return ShowVorbis(in, c, payload);
    case Encoding::kRaw: return ShowRawVideo(in, c, payload);
    case Encoding::kAncillary: return ShowRows<Payload>(in, c, kAncillary, payload);
    case Encoding::kVideo: return ShowVideoPayload(in, c, name);
    case Encoding::kTransport: return;
  }
}

}  // namespace

bool ShowRtpPayload(const Place& at, Cursor& c, const char* name, const MediaFormat* format) {
  Encoding encoding;
  if (Left(c) == 0 || !FindEncoding(name, encoding)) return false;
  if (encoding == Encoding::kTransport) return TryDecoder(Deeper(at), c, DecodeMpegTs, nullptr);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "RTP Payload: %s", name));
  ShowHead(in, c, encoding, name, format);
  c.ranShort = false;   // what is left of a header that is cut
  AddBlock(in, Rest(c), "Coded Data");
  return true;
}

}  // namespace qxview
