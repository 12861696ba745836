// Pictures in RTP: H.261 (RFC 4587), H.263 (RFC 2190, 4629), H.264 (RFC 6184, 6190), H.265 (RFC 7798), H.266 (RFC 9328),
// VP8 (RFC 7741), VP9 (RFC 9628), AV1 (its public payload text), JPEG (RFC 2435), JPEG 2000 (RFC 5371).
#include "decoders/app/rtp_video.h"

#include "core/rows.h"
#include "decoders/common/header_lines.h"

namespace qxview {
namespace {

constexpr auto kNal264Names = SortedNames({
    {1, "Slice"}, {2, "Slice Partition A"}, {3, "Slice Partition B"}, {4, "Slice Partition C"}, {5, "Slice of an IDR Picture"},
    {6, "SEI"}, {7, "Sequence Parameter Set"}, {8, "Picture Parameter Set"}, {9, "Access Unit Delimiter"}, {10, "End of Sequence"},
    {11, "End of Stream"}, {12, "Filler Data"}, {13, "Sequence Parameter Set Extension"}, {14, "Prefix"},
    {15, "Subset Sequence Parameter Set"}, {19, "Auxiliary Slice"}, {20, "Slice Extension"}, {24, "STAP-A"}, {25, "STAP-B"},
    {26, "MTAP16"}, {27, "MTAP24"}, {28, "FU-A"}, {29, "FU-B"}, {30, "PACSI"}});
constexpr auto kProfile264Names = SortedNames({
    {66, "Baseline"}, {77, "Main"}, {83, "Scalable Baseline"}, {86, "Scalable High"}, {88, "Extended"}, {100, "High"},
    {110, "High 10"}, {122, "High 4:2:2"}, {244, "High 4:4:4 Predictive"}});
constexpr auto kNal265Names = SortedNames({
    {0, "TRAIL_N"}, {1, "TRAIL_R"}, {2, "TSA_N"}, {3, "TSA_R"}, {4, "STSA_N"}, {5, "STSA_R"}, {6, "RADL_N"}, {7, "RADL_R"},
    {8, "RASL_N"}, {9, "RASL_R"}, {16, "BLA_W_LP"}, {17, "BLA_W_RADL"}, {18, "BLA_N_LP"}, {19, "IDR_W_RADL"},
    {20, "IDR_N_LP"}, {21, "CRA"}, {32, "Video Parameter Set"}, {33, "Sequence Parameter Set"}, {34, "Picture Parameter Set"},
    {35, "Access Unit Delimiter"}, {36, "End of Sequence"}, {37, "End of Bitstream"}, {38, "Filler Data"}, {39, "Prefix SEI"},
    {40, "Suffix SEI"}, {48, "Aggregation Packet"}, {49, "Fragmentation Unit"}, {50, "PACI"}});
constexpr auto kNal266Names = SortedNames({
    {0, "TRAIL"}, {1, "STSA"}, {2, "RADL"}, {3, "RASL"}, {7, "IDR_W_RADL"}, {8, "IDR_N_LP"}, {9, "CRA"}, {10, "GDR"},
    {12, "Operating Point Information"}, {13, "Decoding Capability Information"}, {14, "Video Parameter Set"},
    {15, "Sequence Parameter Set"}, {16, "Picture Parameter Set"}, {17, "Prefix APS"}, {18, "Suffix APS"},
    {19, "Picture Header"}, {20, "Access Unit Delimiter"}, {21, "End of Sequence"}, {22, "End of Bitstream"},
    {23, "Prefix SEI"}, {24, "Suffix SEI"}, {25, "Filler Data"}, {28, "Aggregation Packet"}, {29, "Fragmentation Unit"}});
constexpr auto kObuNames = SortedNames({
    {1, "Sequence Header"}, {2, "Temporal Delimiter"}, {3, "Frame Header"}, {4, "Tile Group"}, {5, "Metadata"}, {6, "Frame"},
    {7, "Redundant Frame Header"}, {8, "Tile List"}, {15, "Padding"}});
constexpr auto kSourceNames = SortedNames({
    {1, "sub-QCIF"}, {2, "QCIF"}, {3, "CIF"}, {4, "4CIF"}, {5, "16CIF"}});
constexpr auto kFrameNames = SortedNames({{0, "Key Frame"}, {1, "Inter Frame"}});

struct Video {
  Field length, count;
};

constexpr auto kH261 = Rows<Video>({
    Word(4), Bits(0, 3, "Start Bits"), Bits(3, 3, "End Bits"), Flag(6, "Intra-Frame"), Flag(7, "Motion Vectors"),
    Bits(8, 4, "Group of Blocks"), Bits(12, 5, "Macroblock Address"), Bits(17, 5, "Quantizer"), Bits(22, 5, "Horizontal Motion Vector"),
    Bits(27, 5, "Vertical Motion Vector")});
constexpr auto kH263A = Rows<Video>({
    Word(4), Flag(0, "Mode B or C"), Flag(1, "PB-Frames"), Bits(2, 3, "Start Bits"), Bits(5, 3, "End Bits"),
    Bits(8, 3, "Source Format", kSourceNames), Flag(11, "Inter-Coded"), Flag(12, "Unrestricted Motion Vector"),
    Flag(13, "Syntax-Based Arithmetic Coding"), Flag(14, "Advanced Prediction"), Bits(15, 4, "Reserved"),
    Bits(19, 2, "Differential Quantization"), Bits(21, 3, "Temporal Reference of B"), Bits(24, 8, "Temporal Reference")});
constexpr auto kH263B = Rows<Video>({
    Word(4), Flag(0, "Mode B or C"), Flag(1, "PB-Frames"), Bits(2, 3, "Start Bits"), Bits(5, 3, "End Bits"),
    Bits(8, 3, "Source Format", kSourceNames), Bits(11, 5, "Quantizer"), Bits(16, 5, "Group of Blocks"),
    Bits(21, 9, "Macroblock Address"), Bits(30, 2, "Reserved"), Word(4), Flag(0, "Inter-Coded"),
    Flag(1, "Unrestricted Motion Vector"), Flag(2, "Syntax-Based Arithmetic Coding"), Flag(3, "Advanced Prediction"),
    Bits(4, 7, "Horizontal Motion Vector 1"), Bits(11, 7, "Vertical Motion Vector 1"), Bits(18, 7, "Horizontal Motion Vector 2"),
    Bits(25, 7, "Vertical Motion Vector 2")});
constexpr auto kH263C = Rows<Video>({
    Word(4), Bits(0, 19, "Reserved"), Bits(19, 2, "Differential Quantization"), Bits(21, 3, "Temporal Reference of B"),
    Bits(24, 8, "Temporal Reference")});
constexpr auto kH263Plus = Rows<Video>({
    Word(2), Bits(0, 5, "Reserved"), Flag(5, "Start Code"), Flag(6, "Video Redundancy Coding"),
    Bits(7, 6, "Extra Picture Header Length"), Bits(13, 3, "Extra Picture Header Unused Bits")});
constexpr auto kRedundancy = Rows<Video>({
    Word(1), Bits(0, 3, "Thread ID"), Bits(3, 4, "Thread Packet"), Flag(7, "Synchronization Frame")});

constexpr auto kNal264 = Rows<Video>({
    Word(1), Flag(0, "Forbidden"), Bits(1, 2, "NRI"), Bits(3, 5, "NAL Unit Type", kNal264Names)});
constexpr auto kFragment264 = Rows<Video>({
    Word(1), Flag(0, "Start"), Flag(1, "End"), Flag(2, "Reserved"), Bits(3, 5, "Fragmented Type", kNal264Names)});
constexpr auto kSequence264 = Rows<Video>({
    Number(1, "Profile", kProfile264Names), Hex(1, "Constraints"), Number(1, "Level", " / 10")});
constexpr auto kScalable = Rows<Video>({
    Word(3), Flag(0, "Scalable Extension"), Flag(1, "IDR"), Bits(2, 6, "Priority ID"), Flag(8, "No Inter-Layer Prediction"),
    Bits(9, 3, "Dependency ID"), Bits(12, 4, "Quality ID"), Bits(16, 3, "Temporal ID"), Flag(19, "Use Reference Base Picture"),
    Flag(20, "Discardable"), Flag(21, "Output"), Bits(22, 2, "Reserved")});
constexpr auto kOrder = Rows<Video>({Number(2, "Decoding Order Number")});
constexpr auto kUnitSize = Rows<Video>({Number(2, "NAL Unit Size").Into(&Video::length)});
constexpr auto kTime16 = Rows<Video>({Number(1, "Decoding Order Difference"), Number(2, "Timestamp Offset")});
constexpr auto kTime24 = Rows<Video>({Number(1, "Decoding Order Difference"), Number(3, "Timestamp Offset")});
constexpr auto kNal265 = Rows<Video>({
    Word(2), Flag(0, "Forbidden"), Bits(1, 6, "NAL Unit Type", kNal265Names), Bits(7, 6, "Layer ID"), Bits(13, 3, "Temporal ID Plus One")});
constexpr auto kFragment265 = Rows<Video>({
    Word(1), Flag(0, "Start"), Flag(1, "End"), Bits(2, 6, "Fragmented Type", kNal265Names)});
constexpr auto kPaci = Rows<Video>({
    Word(2), Flag(0, "A"), Bits(1, 6, "Carried Type", kNal265Names), Bits(7, 5, "Extension Size"), Bits(12, 3, "Extension Flags"),
    Flag(15, "Y")});
constexpr auto kNal266 = Rows<Video>({
    Word(2), Flag(0, "Forbidden"), Flag(1, "Reserved"), Bits(2, 6, "Layer ID"), Bits(8, 5, "NAL Unit Type", kNal266Names),
    Bits(13, 3, "Temporal ID Plus One")});
constexpr auto kFragment266 = Rows<Video>({
    Word(1), Flag(0, "Start"), Flag(1, "End"), Flag(2, "Last of Picture"), Bits(3, 5, "Fragmented Type", kNal266Names)});

constexpr auto kVp8 = Rows<Video>({
    Word(1), Flag(0, "Extended"), Flag(1, "Reserved"), Flag(2, "Non-Reference"), Flag(3, "Start of Partition"),
    Flag(4, "Reserved"), Bits(5, 3, "Partition Index")});
constexpr auto kVp8Extension = Rows<Video>({
    Word(1), Flag(0, "Picture ID Present"), Flag(1, "TL0PICIDX Present"), Flag(2, "TID Present"), Flag(3, "KEYIDX Present"),
    Bits(4, 4, "Reserved")});
constexpr auto kShortPicture = Rows<Video>({Word(1), Flag(0, "Long Picture ID"), Bits(1, 7, "Picture ID")});
constexpr auto kLongPicture = Rows<Video>({Word(2), Flag(0, "Long Picture ID"), Bits(1, 15, "Picture ID")});
constexpr auto kPictureIndex = Rows<Video>({Number(1, "TL0PICIDX")});
constexpr auto kVp8Layer = Rows<Video>({
    Word(1), Bits(0, 2, "Temporal Layer"), Flag(2, "Layer Sync"), Bits(3, 5, "KEYIDX")});
constexpr auto kVp8Frame = Rows<Video>({
    Word(3), Bits(0, 3, "Size, Low Bits"), Flag(3, "Show Frame"), Bits(4, 3, "Version"), Bits(7, 1, "Frame Type", kFrameNames),
    Bits(8, 8, "Size, Middle Bits"), Bits(16, 8, "Size, High Bits")});
constexpr auto kVp8Key = LittleRows<Video>({Hex(3, "Start Code"), Number(2, "Width"), Number(2, "Height")});
constexpr auto kVp9 = Rows<Video>({
    Word(1), Flag(0, "Picture ID Present"), Flag(1, "Inter-Picture Predicted"), Flag(2, "Layer Indices Present"),
    Flag(3, "Flexible Mode"), Flag(4, "Start of Frame"), Flag(5, "End of Frame"), Flag(6, "Scalability Structure Present"),
    Flag(7, "Not a Reference for Upper Layers")});
constexpr auto kVp9Layer = Rows<Video>({
    Word(1), Bits(0, 3, "Temporal Layer"), Flag(3, "Switching Up Point"), Bits(4, 3, "Spatial Layer"),
    Flag(7, "Inter-Layer Dependency")});
constexpr auto kVp9Reference = Rows<Video>({Word(1), Bits(0, 7, "Reference Difference"), Flag(7, "More References")});
constexpr auto kVp9Structure = Rows<Video>({
    Word(1), Bits(0, 3, "Spatial Layers Less One"), Flag(3, "Frame Sizes Present"), Flag(4, "Picture Group Present"),
    Bits(5, 3, "Reserved")});
constexpr auto kVp9Size = Rows<Video>({Number(2, "Width"), Number(2, "Height")});
constexpr auto kVp9Group = Rows<Video>({Number(1, "Pictures in Group")});
constexpr auto kVp9Picture = Rows<Video>({
    Word(1), Bits(0, 3, "Temporal Layer"), Flag(3, "Switching Up Point"), Bits(4, 2, "References"), Bits(6, 2, "Reserved")});
constexpr auto kVp9Difference = Rows<Video>({Number(1, "Picture Difference")});
constexpr auto kAv1 = Rows<Video>({
    Word(1), Flag(0, "Continues an OBU"), Flag(1, "OBU Continues"), Bits(2, 2, "OBU Count"), Flag(4, "New Coded Video Sequence"),
    Bits(5, 3, "Reserved")});
constexpr auto kObu = Rows<Video>({
    Word(1), Flag(0, "Forbidden"), Bits(1, 4, "OBU Type", kObuNames), Flag(5, "Extension"), Flag(6, "Has Size"), Flag(7, "Reserved")});
constexpr auto kObuExtension = Rows<Video>({
    Word(1), Bits(0, 3, "Temporal Layer"), Bits(3, 2, "Spatial Layer"), Bits(5, 3, "Reserved")});

constexpr auto kJpeg = Rows<Video>({
    Number(1, "Type-Specific"), Number(3, "Fragment Offset"), Number(1, "Type"), Number(1, "Quality"), Number(1, "Width", " * 8"),
    Number(1, "Height", " * 8")});
constexpr auto kRestart = Rows<Video>({
    Number(2, "Restart Interval"), Word(2), Flag(0, "First"), Flag(1, "Last"), Bits(2, 14, "Restart Count")});
constexpr auto kTables = Rows<Video>({
    Hex(1, "Reserved"), Hex(1, "Precision"), Number(2, "Tables Length").Into(&Video::length),
    Bytes(0, "Quantization Tables").SizedBy(&Video::length)});
constexpr auto kJpeg2000 = Rows<Video>({
    Word(1), Bits(0, 2, "Image Type"), Bits(2, 2, "Main Header Flag"), Bits(4, 3, "Main Header ID"), Flag(7, "Tile Invalid"),
    Number(1, "Priority"), Number(2, "Tile Number"), Hex(1, "Reserved"), Number(3, "Fragment Offset")});

void Show(const Place& in, Cursor& c, RowSpan<Video> rows, Video& video) { ShowRows<Video>(in, c, rows, video); }

void ShowH263(const Place& in, Cursor& c, Video& video) {
  const uint32_t mode = PeekU8(c) >> 6;
  Show(in, c, mode < 2 ? RowSpan<Video>(kH263A) : RowSpan<Video>(kH263B), video);
  if (mode == 3) Show(in, c, kH263C, video);
}

void ShowH263Plus(const Place& in, Cursor& c, Video& video) {
  const uint32_t head = PeekU16(c);
  Show(in, c, kH263Plus, video);
  if (head & 0x0200) Show(in, c, kRedundancy, video);
  const int32_t extra = static_cast<int32_t>(head >> 3 & 0x3F);
  if (extra > 0) AddBlock(in, TakeBytes(c, extra), "Extra Picture Header");
}

void ShowUnit264(const Place& in, Cursor& c, Video& video) {
  constexpr uint32_t kSequenceSet = 7, kPrefix = 14, kSubsetSet = 15, kExtension = 20;
  const uint32_t type = PeekU8(c) & 0x1F;
  Show(in, c, kNal264, video);
  if (type == kSequenceSet || type == kSubsetSet) Show(in, c, kSequence264, video);
  if (type == kPrefix || type == kExtension) Show(in, c, kScalable, video);
}

// Units of a size each; those of times of their own have them in front.
void ShowUnits264(const Place& in, Cursor& c, uint32_t type, Video& video) {
  constexpr uint32_t kMtap16 = 26, kMtap24 = 27;
  Loop loop;
  while (Left(c) >= 3 && MoreAt(in, c, loop)) {
    Show(in, c, kUnitSize, video);
    Cursor unit = TakeCursor(c, video.length.value);
    const Place under = Under(in, AddLine(in, Ahead(unit, Left(unit)), "NAL Unit: %u bytes", Left(unit)));
    if (type == kMtap16) Show(under, unit, kTime16, video);
    if (type == kMtap24) Show(under, unit, kTime24, video);
    ShowUnit264(under, unit, video);
    AddBlock(under, Rest(unit), "NAL Unit Data");
  }
}

void ShowH264(const Place& in, Cursor& c, Video& video) {
  constexpr uint32_t kStapA = 24, kStapB = 25, kMtap16 = 26, kMtap24 = 27, kFuA = 28, kFuB = 29;
  const uint32_t type = PeekU8(c) & 0x1F;
  if (type < kStapA || type > kFuB) return ShowUnit264(in, c, video);
  Show(in, c, kNal264, video);
  if (type == kFuA || type == kFuB) {
    Show(in, c, kFragment264, video);
    if (type == kFuB) Show(in, c, kOrder, video);
    return;
  }
  if (type == kStapB || type == kMtap16 || type == kMtap24) Show(in, c, kOrder, video);
  ShowUnits264(in, c, type, video);
}

void ShowUnitsOf(const Place& in, Cursor& c, RowSpan<Video> head, Video& video) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    Show(in, c, kUnitSize, video);
    Cursor unit = TakeCursor(c, video.length.value);
    const Place under = Under(in, AddLine(in, Ahead(unit, Left(unit)), "NAL Unit: %u bytes", Left(unit)));
    Show(under, unit, head, video);
    AddBlock(under, Rest(unit), "NAL Unit Data");
  }
}

void ShowH265(const Place& in, Cursor& c, Video& video) {
  const uint32_t type = PeekU8(c) >> 1 & 0x3F;
  Show(in, c, kNal265, video);
  if (type == 48) ShowUnitsOf(in, c, kNal265, video);
  if (type == 49) Show(in, c, kFragment265, video);
  if (type == 50) Show(in, c, kPaci, video);
}

void ShowH266(const Place& in, Cursor& c, Video& video) {
  const uint32_t type = PeekU8(c, 1) >> 3;
  Show(in, c, kNal266, video);
  if (type == 28) ShowUnitsOf(in, c, kNal266, video);
  if (type == 29) Show(in, c, kFragment266, video);
}

void ShowPictureId(const Place& in, Cursor& c, Video& video) {
  Show(in, c, PeekU8(c) & 0x80 ? RowSpan<Video>(kLongPicture) : RowSpan<Video>(kShortPicture), video);
}

void ShowVp8(const Place& in, Cursor& c, Video& video) {
  const uint32_t head = PeekU8(c), extension = head & 0x80 ? PeekU8(c, 1) : 0;
  Show(in, c, kVp8, video);
  if (head & 0x80) Show(in, c, kVp8Extension, video);
  if (extension & 0x80) ShowPictureId(in, c, video);
  if (extension & 0x40) Show(in, c, kPictureIndex, video);
  if (extension & 0x30) Show(in, c, kVp8Layer, video);
  const bool startsFrame = (head & 0x10) && (head & 0x07) == 0;
  if (!startsFrame || Left(c) < 3) return;
  const bool isKey = (PeekU8(c) & 1) == 0;
  Show(in, c, kVp8Frame, video);
  if (isKey && Left(c) >= 7) Show(in, c, kVp8Key, video);
}

void ShowVp9Structure(const Place& in, Cursor& c, Video& video) {
  const uint32_t head = PeekU8(c);
  Show(in, c, kVp9Structure, video);
  for (uint32_t i = 0; (head & 0x10) && i <= head >> 5; ++i) Show(in, c, kVp9Size, video);
  if (!(head & 0x08)) return;
  const uint32_t pictures = PeekU8(c);
  Show(in, c, kVp9Group, video);
  Loop loop;
  for (uint32_t i = 0; i < pictures && MoreAt(in, c, loop); ++i) {
    const uint32_t references = PeekU8(c) >> 2 & 3;
    Show(in, c, kVp9Picture, video);
    for (uint32_t each = 0; each < references; ++each) Show(in, c, kVp9Difference, video);
  }
}

void ShowVp9(const Place& in, Cursor& c, Video& video) {
  const uint32_t head = PeekU8(c);
  const bool isFlexible = head & 0x10, isPredicted = head & 0x40;
  Show(in, c, kVp9, video);
  if (head & 0x80) ShowPictureId(in, c, video);
  if (head & 0x20) {
    Show(in, c, kVp9Layer, video);
    if (!isFlexible) Show(in, c, kPictureIndex, video);
  }
  for (int32_t i = 0; isFlexible && isPredicted && i < 3 && Left(c) > 0; ++i) {
    const bool more = PeekU8(c) & 1;
    Show(in, c, kVp9Reference, video);
    if (!more) break;
  }
  if (head & 0x02) ShowVp9Structure(in, c, video);
}

// A number of seven bits an octet, the low ones first.
uint32_t TakeLeb(const Place& in, Cursor& c) {
  const Cursor start = c;
  uint32_t value = 0;
  for (uint32_t shift = 0; shift < 32 && Left(c) > 0; shift += 7) {
    const uint32_t octet = TakeU8(c).value;
    value |= (octet & 0x7F) << shift;
    if (!(octet & 0x80)) break;
  }
  AddLine(in, Ahead(start, c.offset - start.offset), "OBU Length: %u", value);
  return value;
}

void ShowAv1(const Place& in, Cursor& c, Video& video) {
  const uint32_t head = PeekU8(c), count = head >> 4 & 3;
  bool continues = head & 0x80;
  Show(in, c, kAv1, video);
  Loop loop;
  for (uint32_t i = 1; MoreAt(in, c, loop) && (count == 0 || i <= count); ++i) {
    const uint32_t length = count != 0 && i == count ? static_cast<uint32_t>(Left(c)) : TakeLeb(in, c);
    Cursor obu = TakeCursor(c, length);
    const Place under = Under(in, AddLine(in, Ahead(obu, Left(obu)), "OBU: %u bytes", Left(obu)));
    const uint32_t first = PeekU8(obu);
    if (!continues && Left(obu) > 0) {
      Show(under, obu, kObu, video);
      if (first & 0x04) Show(under, obu, kObuExtension, video);
      if (first & 0x02) TakeLeb(under, obu);
    }
    continues = false;
    AddBlock(under, Rest(obu), "OBU Data");
  }
}

void ShowJpeg(const Place& in, Cursor& c, Video& video) {
  const uint32_t offset = PeekU24(c, 1), type = PeekU8(c, 4), quality = PeekU8(c, 5);
  Show(in, c, kJpeg, video);
  if (type >= 64 && type <= 127) Show(in, c, kRestart, video);
  if (quality >= 128 && offset == 0) Show(in, c, kTables, video);
}

void ShowH261(const Place& in, Cursor& c, Video& video) { Show(in, c, kH261, video); }
void ShowJpeg2000(const Place& in, Cursor& c, Video& video) { Show(in, c, kJpeg2000, video); }

constexpr struct {
  const char* name;
  void (*show)(const Place& in, Cursor& c, Video& video);
} kVideos[] = {
    {"H261", ShowH261}, {"H263", ShowH263}, {"H263-1998", ShowH263Plus}, {"H263-2000", ShowH263Plus}, {"H264", ShowH264},
    {"H264-SVC", ShowH264}, {"H265", ShowH265}, {"H266", ShowH266}, {"VP8", ShowVp8}, {"VP9", ShowVp9}, {"AV1", ShowAv1},
    {"JPEG", ShowJpeg}, {"jpeg2000", ShowJpeg2000}};

}  // namespace

bool IsVideoEncoding(const Field& name) {
  for (const auto& row : kVideos) {
    if (IsWord(name, row.name)) return true;
  }
  return false;
}

void ShowVideoPayload(const Place& in, Cursor& c, const char* name) {
  const Field field{reinterpret_cast<const uint8_t*>(name), 0, static_cast<int32_t>(std::strlen(name)), 0, true};
  Video video{};
  for (const auto& row : kVideos) {
    if (IsWord(field, row.name)) return row.show(in, c, video);
  }
}

}  // namespace qxview
