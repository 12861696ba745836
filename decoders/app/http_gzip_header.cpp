// The header of a gzip member (RFC 1952).
//
//   0     1     2       3      4      8            9   10
//   1F    8B    method  flags  MTIME  extra flags  OS  [XLEN, extra field] [name, 0] [comment, 0] [CRC16]
//
// Numbers are little-endian in the format. MTIME and the length of an extra subfield are shown as they read from left to
// right, which is how they have always been shown here.

#include "decoders/app/http_message.h"

namespace qxview {
namespace {

constexpr uint32_t kHeaderCrc = 0x02, kExtra = 0x04, kName = 0x08, kComment = 0x10;
constexpr int32_t kMostText = 511;

constexpr auto kMethodNames = SortedNames({{0, "Reserved"}, {1, "Reserved"}, {2, "Reserved"}, {3, "Reserved"},
                                           {4, "Reserved"}, {5, "Reserved"}, {6, "Reserved"}, {7, "Reserved"},
                                           {8, "deflate"}});

constexpr auto kExtraFlagNames = SortedNames({{2, "Compressor used maximum compression, slowest algorithm"},
                                              {4, "Compressor used fastest algorithm"}});

// The two blanks of row 11 are in the text that users search for.
constexpr auto kSystemNames = SortedNames({{0, "FAT filesystem (MS-DOS, OS/2, NT/Win32)"},
                                           {1, "Amiga"},
                                           {2, "VMS (or OpenVMS)"},
                                           {3, "Unix"},
                                           {4, "VM/CMS"},
                                           {5, "Atari TOS"},
                                           {6, "HPFS filesystem (OS/2, NT)"},
                                           {7, "Macintosh"},
                                           {8, "Z-System"},
                                           {9, "CP/M"},
                                           {10, "TOPS-20"},
                                           {11, "NTFS filesystem  (NT)"},
                                           {12, "QDOS"},
                                           {13, "Acorn RISCOS"},
                                           {255, "unknown"}});

// Where the header's lines go and what they cover.
struct HeaderPlace {
  Place in;
  int32_t offset;   // of the payload in the frame
  bool elsewhere;   // the header's bytes are those of an earlier frame
};

Field CoverOf(const HeaderPlace& header, const Field& field) {
  return header.elsewhere && field.here ? Stated(header.offset, 0) : field;
}

const char* UpperTruth(uint32_t value) { return value ? "TRUE" : "FALSE"; }

void ShowFlags(const HeaderPlace& header, const Field& flags) {
  const Field cover = CoverOf(header, flags);
  const Place in = Under(header.in, AddLine(header.in, cover, "Flags"));
  const auto [reserved, reservedValue] = BitsOf(flags, 0, 3);
  AddBitLine(in, cover, "%s : Reserved", reserved);
  const auto [comment, commentSet] = BitsOf(flags, 3, 1);
  AddBitLine(in, cover, "%s : FCOMMENT: %s", comment, UpperTruth(commentSet));
  const auto [name, nameSet] = BitsOf(flags, 4, 1);
  AddBitLine(in, cover, "%s : FNAME: %s", name, UpperTruth(nameSet));
  const auto [extra, extraSet] = BitsOf(flags, 5, 1);
  AddBitLine(in, cover, "%s : FEXTRA: %s", extra, UpperTruth(extraSet));
  const auto [crc, crcSet] = BitsOf(flags, 6, 1);
  AddBitLine(in, cover, "%s : FHCRC: %s", crc, UpperTruth(crcSet));
  const auto [text, textSet] = BitsOf(flags, 7, 1);
  AddBitLine(in, cover, "%s : FTEXT: %s", text, UpperTruth(textSet));
}

// A zero would end the line's text.
char ShownCharacter(const Field& field) { return field.value ? static_cast<char>(field.value) : '.'; }

void ShowSubfield(const HeaderPlace& header, const Place& in, Cursor& c) {
  const Field first = TakeU8(c);
  AddLine(in, CoverOf(header, first), "SI1 : 0x%X  ('%c')", first.value, ShownCharacter(first));
  const Field second = TakeU8(c);
  AddLine(in, CoverOf(header, second), "SI2 : 0x%X  ('%c')", second.value, ShownCharacter(second));
  const Field length = TakeU16(c);
  AddLine(in, CoverOf(header, length), "Length : %u", length.value);
  if (!length.here) return;
  Cursor inner = TakeCursor(c, length.value);
  const Field data = Rest(inner);
  if (!header.elsewhere) {
    AddBlock(in, data, "Subfield Data");
  } else if (data.here) {
    AddLine(in, CoverOf(header, data), "Subfield Data");
  }
}

void ShowExtraField(const HeaderPlace& header, Cursor& c) {
  const Field length = TakeLittleU16(c);
  const int32_t there = static_cast<int32_t>(length.value) < Left(c) ? static_cast<int32_t>(length.value) : Left(c);
  const Field whole{length.bytes, length.offset, 2 + there, 0, length.here};
  const Place in = Under(header.in, AddLine(header.in, CoverOf(header, whole), "Extra Field"));
  AddLine(in, CoverOf(header, length), "XLEN : 0x%X", length.value);
  Cursor subfields = TakeCursor(c, length.value);
  Loop loop;
  while (MoreAt(in, subfields, loop)) ShowSubfield(header, in, subfields);
  if (there < static_cast<int32_t>(length.value)) c.ranShort = true;
}

// A text up to its zero. False when it is too long or does not end: the header's lines end there.
bool ShowText(const HeaderPlace& header, Cursor& c, const char* label) {
  const int32_t zero = FindU8(c, 0);
  if (zero < 0 || zero > kMostText) return false;
  const Field text = TakeBytes(c, zero + 1);
  AddLine(header.in, CoverOf(header, text), "%s : %s", label, Text(text));
  return true;
}

}  // namespace

void ShowGzipHeader(const Place& in, Cursor c, bool elsewhere) {
  const HeaderPlace header{in, c.offset, elsewhere};
  const Field first = TakeU8(c);
  AddLine(in, CoverOf(header, first), "Identification 1 : 0x%X", first.value);
  const Field second = TakeU8(c);
  AddLine(in, CoverOf(header, second), "Identification 2 : 0x%X", second.value);
  const Field method = TakeU8(c);
  AddLine(in, CoverOf(header, method), "Compression Method : %u  (%s)", method.value,
          LookupName(kMethodNames, method.value));
  const Field flags = TakeU8(c);
  if (flags.here) ShowFlags(header, flags);
  const Field time = TakeU32(c);
  const LineHandle timeLine = AddLine(in, CoverOf(header, time), "MTIME : 0x%X", time.value);
  if (time.here && time.value == 0) AppendToLine(in, timeLine, "  (No time stamp is available)");
  const Field extraFlags = TakeU8(c);
  const char* extraName = LookupName(kExtraFlagNames, extraFlags.value, nullptr);
  AddLine(in, CoverOf(header, extraFlags), "Extra Flags : %u  (%s)", extraFlags.value, extraName ? extraName : kUnknown);
  if (!extraName) return;
  const Field system = TakeU8(c);
  AddLine(in, CoverOf(header, system), "Operating System : %u  (%s)", system.value,
          LookupName(kSystemNames, system.value));
  if (flags.value & kExtra) ShowExtraField(header, c);
  if (flags.value & kName && !ShowText(header, c, "Original File Name")) return;
  if (flags.value & kComment && !ShowText(header, c, "File Comment")) return;
  if (flags.value & kHeaderCrc) {
    const Field crc = TakeLittleU16(c);
    AddLine(in, CoverOf(header, crc), "Cyclic Redundancy Check  [CRC] : %u", crc.value);
  }
}

namespace {

void PassText(Cursor& c) {
  const int32_t zero = FindU8(c, 0);
  TakeBytes(c, zero < 0 ? -1 : zero + 1);
}

}  // namespace

int32_t GzipHeaderLength(const uint8_t* bytes, int32_t length) {
  Cursor c = MakeCursor(bytes, 0, length);
  const Field fixed = TakeBytes(c, 10);
  if (!fixed.here) return -1;
  const uint32_t flags = PeekU8(fixed, 3);
  if (flags & kExtra) TakeBytes(c, TakeLittleU16(c).value);
  if (flags & kName) PassText(c);
  if (flags & kComment) PassText(c);
  if (flags & kHeaderCrc) TakeBytes(c, 2);
  return c.ranShort ? -1 : Taken(c);
}

}  // namespace qxview
