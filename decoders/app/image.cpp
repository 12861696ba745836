// Images in bodies: GIF (GIF89a), PNG (W3C, third edition; RFC 2083), JPEG (ITU-T T.81 with JFIF 1.02). Their
// headers and blocks are told; what is compressed in them stays octets.
//
//   GIF   signature, screen, colors; blocks: "!" extension or "," image, each in sub-blocks that count their octets; ";"
//   PNG   signature; chunks: length (32)  type (32)  data  CRC (32)
//   JPEG  segments: marker (16)  length (16)  data; behind a scan's header octets up to the next marker
#include "core/elements.h"
#include "core/line_facts.h"
#include "decoders/app/web_body.h"

namespace qxview {
namespace {

struct Image {
  Field flags, count, length;
};

// GIF: numbers have their low byte first.
constexpr auto kScreen = LittleRows<Image>({
    Text(6, "Version"), Number(2, "Screen Width"), Number(2, "Screen Height"), Word(1),
    Flag(0, "Global Color Map").Into(&Image::flags), Bits(1, 3, "Bits per Color, One Less"), Flag(4, "Color Map Ordered"),
    Bits(5, 3, "Bits per Pixel, One Less").Into(&Image::count), Number(1, "Background Color Index"),
    Number(1, "Pixel Aspect Ratio")});
constexpr auto kPicture = LittleRows<Image>({
    Number(1, "Block"), Number(2, "Left Position"), Number(2, "Top Position"), Number(2, "Width"), Number(2, "Height"), Word(1),
    Flag(0, "Local Color Map").Into(&Image::flags), Flag(1, "Interlaced"), Flag(2, "Color Map Ordered"),
    Bits(3, 2, "Reserved"), Bits(5, 3, "Bits per Pixel, One Less").Into(&Image::count)});
constexpr auto kCodeSize = Rows<Image>({Number(1, "Minimum Code Size")});
constexpr auto kColors = Rows<Image>({Bytes(0, "Color Map").SizedBy(&Image::length)});
constexpr auto kSubBlock = Rows<Image>({Counted(1, Bytes(0, "Sub-Block"))});
constexpr auto kExtensionNames = SortedNames({
    {0x01, "Plain Text"}, {0xF9, "Graphic Control"}, {0xFE, "Comment"}, {0xFF, "Application"}});
constexpr auto kExtension = Rows<Image>({Number(1, "Block"), Hex(1, "Extension", kExtensionNames)});
constexpr uint32_t kExtensionBlock = '!', kPictureBlock = ',', kTrailer = ';';

void ShowColors(const Place& in, Cursor& c, Image& image) {
  if (!image.flags.value) return;
  image.length.value = 3u << (image.count.value + 1);
  ShowRows<Image>(in, c, kColors, image);
}

void ShowSubBlocks(const Place& in, Cursor& c, Image& image) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const bool isLast = PeekU8(c) == 0;
    const int32_t size = 1 + static_cast<int32_t>(PeekU8(c)), left = Left(c);
    const Place under = Under(in, AddLine(in, Ahead(c, size < left ? size : left), "Sub-Block: %d bytes", size - 1));
    ShowRows<Image>(under, c, kSubBlock, image);
    if (isLast || c.ranShort) return;
  }
}

void ShowGif(const Place& in, Cursor& c, Image& image) {
  ShowRows<Image>(in, c, kScreen, image);
  ShowColors(in, c, image);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t block = PeekU8(c);
    if (block == kExtensionBlock) {
      const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 2 ? Left(c) : 2), "Extension: %s",
                                            LookupName(kExtensionNames, PeekU8(c, 1))));
      ShowRows<Image>(under, c, kExtension, image);
      ShowSubBlocks(under, c, image);
    } else if (block == kPictureBlock) {
      const Place under = Under(in, AddLine(in, Ahead(c, Left(c) < 10 ? Left(c) : 10), "Image"));
      ShowRows<Image>(under, c, kPicture, image);
      ShowColors(under, c, image);
      ShowRows<Image>(under, c, kCodeSize, image);
      ShowSubBlocks(under, c, image);
    } else {
      if (block == kTrailer) {
        const Field end = TakeU8(c);
        AddLine(in, end, "Trailer: 0x%.02X", end.value);
      }
      return;
    }
  }
}

// PNG.
constexpr auto kColorNames = SortedNames({
    {0, "Greyscale"}, {2, "Truecolor"}, {3, "Indexed Color"}, {4, "Greyscale with Alpha"}, {6, "Truecolor with Alpha"}});
constexpr auto kDeflateNames = SortedNames({{0, "Deflate"}});
constexpr auto kFilterNames = SortedNames({{0, "Adaptive"}});
constexpr auto kInterlaceNames = SortedNames({{0, "None"}, {1, "Adam7"}});
constexpr auto kIntentNames = SortedNames({
    {0, "Perceptual"}, {1, "Relative Colorimetric"}, {2, "Saturation"}, {3, "Absolute Colorimetric"}});
constexpr auto kUnitNames = SortedNames({{0, "Unknown"}, {1, "Meter"}});
constexpr auto kHeader = Rows<Image>({
    Number(4, "Width"), Number(4, "Height"), Number(1, "Bit Depth"), Number(1, "Color Type", kColorNames),
    Number(1, "Compression Method", kDeflateNames), Number(1, "Filter Method", kFilterNames),
    Number(1, "Interlace Method", kInterlaceNames)});
constexpr auto kIntent = Rows<Image>({Number(1, "Rendering Intent", kIntentNames)});
constexpr auto kGamma = Rows<Image>({Number(4, "Gamma", " / 100000")});
constexpr auto kDensity = Rows<Image>({
    Number(4, "Horizontal Pixels per Unit"), Number(4, "Vertical Pixels per Unit"), Number(1, "Unit", kUnitNames)});
constexpr auto kKeyword = Rows<Image>({Terminated(Text(0, "Keyword")), Text(0, "Text")});
constexpr auto kTime = Rows<Image>({
    Number(2, "Year"), Number(1, "Month"), Number(1, "Day"), Number(1, "Hour"), Number(1, "Minute"), Number(1, "Second")});
constexpr auto kPoints = Rows<Image>({
    Number(4, "White Point X"), Number(4, "White Point Y"), Number(4, "Red X"), Number(4, "Red Y"), Number(4, "Green X"),
    Number(4, "Green Y"), Number(4, "Blue X"), Number(4, "Blue Y")});
constexpr auto kPalette = Rows<Image>({Bytes(0, "Palette")});
constexpr auto kSamples = Rows<Image>({Bytes(0, "Samples")});
constexpr uint32_t Named(const char (&name)[5]) {
  return static_cast<uint32_t>(name[0]) << 24 | static_cast<uint32_t>(name[1]) << 16 | static_cast<uint32_t>(name[2]) << 8 |
         static_cast<uint32_t>(name[3]);
}
constexpr auto kChunks = Choices<Image>({
    {Named("IDAT"), "Image Data"}, {Named("IEND"), "Image End"}, {Named("IHDR"), "Image Header", kHeader},
    {Named("PLTE"), "Palette", kPalette}, {Named("bKGD"), "Background Color", kSamples},
    {Named("cHRM"), "Chromaticities", kPoints}, {Named("gAMA"), "Gamma", kGamma}, {Named("hIST"), "Histogram", kSamples},
    {Named("iCCP"), "Color Profile"}, {Named("iTXt"), "International Text"}, {Named("pHYs"), "Physical Pixels", kDensity},
    {Named("sBIT"), "Significant Bits", kSamples}, {Named("sRGB"), "Standard RGB", kIntent},
    {Named("tEXt"), "Text", kKeyword}, {Named("tIME"), "Time of Last Change", kTime},
    {Named("tRNS"), "Transparency", kSamples}, {Named("zTXt"), "Compressed Text"}});

void ShowPng(const Place& in, Cursor& c, Image& image) {
  const Field signature = TakeBytes(c, 8);
  AddLine(in, signature, "Signature: %s", HexText(signature));
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const Field length = TakeU32(c);
    const Field type = TakeU32(c);
    if (!type.here) return;
    const Choice<Image>* known = FindChoice<Image>(kChunks, type.value);
    Cursor data = TakeCursor(c, length.value);
    const Field sum = TakeU32(c);
    const int32_t size = 8 + Left(data) + (sum.here ? 4 : 0);
    const Place under = Under(in, AddLine(in, Stated(length.offset, size), "Chunk: %s", Text(type)));
    AddLine(under, length, "Length: %u", length.value);
    const Place bits = Under(under, AddLine(under, type, "Type: %s", Text(type)));
    const BitPicture ancillary = BitsOf(type, 2, 1), isPrivate = BitsOf(type, 10, 1), safe = BitsOf(type, 26, 1);
    AddBitLine(bits, type, "%s: Ancillary = %s", ancillary.picture, TrueOrFalse(ancillary.value));
    AddBitLine(bits, type, "%s: Private = %s", isPrivate.picture, TrueOrFalse(isPrivate.value));
    AddBitLine(bits, type, "%s: Safe to Copy = %s", safe.picture, TrueOrFalse(safe.value));
    // keys: none Data
    ShowChoice(under, data, known, image);
    AddLine(under, sum, "CRC: 0x%.08X", sum.value);
    if (!sum.here) return;
  }
}

// JPEG.
constexpr auto kMarkerNames = SortedNames({
    {0xFFC0, "Start of Frame, Baseline"}, {0xFFC1, "Start of Frame, Extended Sequential"}, {0xFFC2, "Start of Frame, Progressive"},
    {0xFFC3, "Start of Frame, Lossless"}, {0xFFC4, "Define Huffman Tables"}, {0xFFCC, "Define Arithmetic Coding"},
    {0xFFD8, "Start of Image"}, {0xFFD9, "End of Image"}, {0xFFDA, "Start of Scan"}, {0xFFDB, "Define Quantization Tables"},
    {0xFFDC, "Define Number of Lines"}, {0xFFDD, "Define Restart Interval"}, {0xFFE0, "Application Segment 0"},
    {0xFFE1, "Application Segment 1"}, {0xFFE2, "Application Segment 2"}, {0xFFED, "Application Segment 13"},
    {0xFFEE, "Application Segment 14"}, {0xFFFE, "Comment"}});
constexpr auto kDensityNames = SortedNames({{0, "None"}, {1, "Dots per Inch"}, {2, "Dots per Centimeter"}});
constexpr auto kJfif = Rows<Image>({
    Terminated(Text(0, "Identifier")), Number(1, "Major Version"), Number(1, "Minor Version"), Number(1, "Units", kDensityNames),
    Number(2, "Horizontal Density"), Number(2, "Vertical Density"), Number(1, "Thumbnail Width"), Number(1, "Thumbnail Height")});
constexpr auto kFrame = Rows<Image>({
    Number(1, "Sample Precision"), Number(2, "Lines"), Number(2, "Samples per Line"), Number(1, "Components").Into(&Image::count)});
constexpr auto kComponent = Rows<Image>({
    Number(1, "Component"), Word(1), Bits(0, 4, "Horizontal Sampling Factor"), Bits(4, 4, "Vertical Sampling Factor"),
    Number(1, "Quantization Table")});
constexpr auto kScan = Rows<Image>({Number(1, "Components in Scan").Into(&Image::count)});
constexpr auto kScanComponent = Rows<Image>({
    Number(1, "Component"), Word(1), Bits(0, 4, "DC Table"), Bits(4, 4, "AC Table")});
constexpr auto kScanTail = Rows<Image>({
    Number(1, "Start of Spectral Selection"), Number(1, "End of Spectral Selection"), Word(1),
    Bits(0, 4, "Successive Approximation High"), Bits(4, 4, "Successive Approximation Low")});
constexpr auto kComment = Rows<Image>({Text(0, "Comment")});
constexpr uint32_t kStart = 0xFFD8, kEnd = 0xFFD9, kScanStart = 0xFFDA, kApplication0 = 0xFFE0, kCommentMarker = 0xFFFE;

void ShowSegment(const Place& in, Cursor c, uint32_t marker, Image& image) {
  if (marker == kApplication0 && PeekIs(c, 0, "JFIF")) {
    ShowRows<Image>(in, c, kJfif, image);
  } else if (marker >= 0xFFC0 && marker <= 0xFFC3) {
    ShowRows<Image>(in, c, kFrame, image);
    for (uint32_t i = 0; i < image.count.value && Left(c) >= 3; ++i) ShowRows<Image>(in, c, kComponent, image);
  } else if (marker == kScanStart) {
    ShowRows<Image>(in, c, kScan, image);
    for (uint32_t i = 0; i < image.count.value && Left(c) >= 2; ++i) ShowRows<Image>(in, c, kScanComponent, image);
    ShowRows<Image>(in, c, kScanTail, image);
  } else if (marker == kCommentMarker) {
    ShowRows<Image>(in, c, kComment, image);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "Segment Data");
}

// What a scan is coded in: up to a marker that is none of its own (0 and the restarts).
int32_t ScanLength(const Cursor& c) {
  for (int32_t at = FindU8(c, 0xFF); at >= 0; at = FindU8(c, 0xFF, at + 1)) {
    const uint32_t next = PeekU8(c, at + 1);
    if (next >= 0xC0 && (next < 0xD0 || next > 0xD7)) return at;
  }
  return Left(c);
}

void ShowJpeg(const Place& in, Cursor& c, Image& image) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t marker = PeekU16(c);
    if (Left(c) < 2 || marker < 0xFFC0) return;
    const bool isAlone = marker == kStart || marker == kEnd;
    const int32_t size = isAlone ? 2 : 2 + static_cast<int32_t>(PeekU16(c, 2));
    Cursor segment = TakeCursor(c, size);
    const Place under = Under(in, AddLine(in, Ahead(segment, Left(segment)), "Segment: %s", LookupName(kMarkerNames, marker)));
    const Field field = TakeU16(segment);
    AddLine(under, field, "Marker: 0x%.04X = %s", marker, LookupName(kMarkerNames, marker));
    if (isAlone) continue;
    const Field length = TakeU16(segment);
    AddLine(under, length, "Length: %u", length.value);
    ShowSegment(under, segment, marker, image);
    if (marker == kScanStart && Left(c) > 0) AddBlock(in, TakeBytes(c, ScanLength(c)), "Entropy-Coded Data");
  }
}

}  // namespace

void ShowImage(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "image");
  const Field whole = Ahead(c, Left(c));
  Image image{};
  if (PeekIs(c, 0, "GIF8")) {
    ShowGif(Under(in, AddLine(in, whole, "GIF: %d bytes", whole.length)), c, image);
  } else if (PeekU32(c) == 0x89504E47) {
    ShowPng(Under(in, AddLine(in, whole, "PNG: %d bytes", whole.length)), c, image);
  } else if (PeekU16(c) == kStart) {
    ShowJpeg(Under(in, AddLine(in, whole, "JPEG: %d bytes", whole.length)), c, image);
  }
  c.ranShort = false;
}

}  // namespace qxview
