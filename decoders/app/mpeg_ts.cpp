// MPEG transport streams (ISO/IEC 13818-1, H.222.0): packets of 188 bytes with headers, adaptation fields, the starts of PES
// packets and of tables.
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kPacket = 188;
constexpr uint32_t kSync = 0x47;

constexpr auto kScramblingNames = SortedNames({{0, "Not Scrambled"}, {1, "Reserved"}, {2, "Even Key"}, {3, "Odd Key"}});
constexpr auto kControlNames = SortedNames({
    {0, "Reserved"}, {1, "Payload Only"}, {2, "Adaptation Field Only"}, {3, "Adaptation Field and Payload"}});
constexpr auto kTableNames = SortedNames({
    {0x00, "Program Association"}, {0x01, "Conditional Access"}, {0x02, "Program Map"}, {0x03, "Stream Description"},
    {0x40, "Network Information"}, {0x41, "Network Information, Other"}, {0x42, "Service Description"},
    {0x46, "Service Description, Other"}, {0x4A, "Bouquet Association"}, {0x4E, "Event Information"},
    {0x4F, "Event Information, Other"}, {0x70, "Time and Date"}, {0x71, "Running Status"}, {0x73, "Time Offset"}});
constexpr auto kStreamNames = SortedNames({
    {0x01, "MPEG-1 Video"}, {0x02, "MPEG-2 Video"}, {0x03, "MPEG-1 Audio"}, {0x04, "MPEG-2 Audio"}, {0x05, "Private Sections"},
    {0x06, "Private PES"}, {0x0F, "AAC, ADTS"}, {0x10, "MPEG-4 Video"}, {0x11, "AAC, LATM"}, {0x1B, "H.264"}, {0x24, "H.265"},
    {0x33, "H.266"}, {0x81, "AC-3"}, {0x87, "E-AC-3"}});

struct Stream {
  Field length, flags;
};

constexpr auto kHeader = Rows<Stream>({
    Hex(1, "Sync Byte"), Word(2), Flag(0, "Transport Error"), Flag(1, "Payload Unit Start"), Flag(2, "Transport Priority"),
    Bits(3, 13, "PID"), Word(1), Bits(0, 2, "Scrambling", kScramblingNames), Bits(2, 2, "Adaptation Field Control", kControlNames),
    Bits(4, 4, "Continuity Counter")});
constexpr auto kAdaptation = Rows<Stream>({
    Word(1), Flag(0, "Discontinuity"), Flag(1, "Random Access"), Flag(2, "Elementary Stream Priority"), Flag(3, "PCR Present"),
    Flag(4, "OPCR Present"), Flag(5, "Splicing Point"), Flag(6, "Private Data"), Flag(7, "Extension")});
constexpr auto kSplice = Rows<Stream>({Signed(1, "Splice Countdown")});
constexpr auto kPrivate = Rows<Stream>({Counted(1, Bytes(0, "Private Data"))});
constexpr auto kPes = Rows<Stream>({
    Hex(3, "Start Code Prefix"), Hex(1, "Stream ID").Note(", Stream 0x%.02X"), Number(2, "PES Packet Length")});
constexpr auto kPesFlags = Rows<Stream>({
    Word(2), Bits(0, 2, "Marker"), Bits(2, 2, "Scrambling", kScramblingNames), Flag(4, "Priority"), Flag(5, "Data Aligned"),
    Flag(6, "Copyright"), Flag(7, "Original"), Bits(8, 2, "PTS and DTS"), Flag(10, "ESCR"), Flag(11, "ES Rate"),
    Flag(12, "DSM Trick Mode"), Flag(13, "Additional Copy Information"), Flag(14, "CRC"), Flag(15, "PES Extension"),
    Number(1, "Header Data Length").Into(&Stream::length)});
constexpr auto kSection = Rows<Stream>({
    Number(1, "Table ID", kTableNames).Note(", %s"), Word(2), Flag(0, "Section Syntax"), Flag(1, "Private"), Bits(2, 2, "Reserved"),
    Bits(4, 12, "Section Length")});
constexpr auto kSectionHead = Rows<Stream>({
    Number(2, "Table ID Extension"), Word(1), Bits(0, 2, "Reserved"), Bits(2, 5, "Version"), Flag(7, "Current"),
    Number(1, "Section Number"), Number(1, "Last Section Number")});
constexpr auto kProgram = Rows<Stream>({Number(2, "Program Number"), Word(2), Bits(0, 3, "Reserved"), Bits(3, 13, "Program PID")});
constexpr auto kMapHead = Rows<Stream>({
    Word(2), Bits(0, 3, "Reserved"), Bits(3, 13, "PCR PID"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Program Info Length")});
constexpr auto kMapEntry = Rows<Stream>({
    Number(1, "Stream Type", kStreamNames), Word(2), Bits(0, 3, "Reserved"), Bits(3, 13, "Elementary PID"), Word(2),
    Bits(0, 4, "Reserved"), Bits(4, 12, "ES Info Length")});
constexpr auto kCheck = Rows<Stream>({Hex(4, "CRC")});

// A clock of 33 bits at 90 kHz and 9 bits at 27 MHz.
void ShowClock(const Place& in, Cursor& c, const char* label) {
  const Field field = TakeBytes(c, 6);
  const uint64_t base = uint64_t{PeekU32(field)} << 1 | PeekU8(field, 4) >> 7;
  AddLine(in, field, "%s: %I64u * 300 + %u", label, base, PeekU16(field, 4) & 0x1FF);   // keys: number PCR, OPCR
}

// 33 bits with a marker behind 3, 15 and 15 of them.
void ShowTime(const Place& in, Cursor& c, const char* label) {
  const Field field = TakeBytes(c, 5);
  const uint64_t time = uint64_t{PeekU8(field) >> 1 & 7} << 30 | uint64_t{PeekU16(field, 1) >> 1} << 15 | PeekU16(field, 3) >> 1;
  AddLine(in, field, "%s: %I64u / 90000 seconds", label, time);   // keys: number PTS, DTS
}

void ShowAdaptation(const Place& in, Cursor& c, Stream& stream) {
  const uint32_t length = PeekU8(c);
  Cursor field = TakeCursor(c, 1 + length);
  const Place under = Under(in, AddLine(in, Ahead(field, Left(field)), "Adaptation Field: %u bytes", length));
  TakeU8(field);
  if (length == 0) return;
  const uint32_t flags = PeekU8(field);
  ShowRows<Stream>(under, field, kAdaptation, stream);
  if (flags & 0x10) ShowClock(under, field, "PCR");
  if (flags & 0x08) ShowClock(under, field, "OPCR");
  if (flags & 0x04) ShowRows<Stream>(under, field, kSplice, stream);
  if (flags & 0x02) ShowRows<Stream>(under, field, kPrivate, stream);
  const Field rest = Rest(field);
  if (rest.here && (flags & 1)) AddLine(under, rest, "Extension and Stuffing: %u bytes", rest.length);
  if (rest.here && !(flags & 1)) AddLine(under, rest, "Stuffing: %u bytes", rest.length);
}

void ShowPes(const Place& in, Cursor& c, Stream& stream) {
  const uint32_t id = PeekU8(c, 3);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "PES Packet"));
  ShowRows<Stream>(under, c, kPes, stream);
  const bool isPlain = id == 0xBC || id == 0xBE || id == 0xBF || id == 0xF0 || id == 0xF1 || id == 0xF2 || id == 0xF8 || id == 0xFF;
  if (!isPlain && PeekU8(c) >> 6 == 2) {
    const uint32_t times = PeekU8(c, 1) >> 6;
    ShowRows<Stream>(under, c, kPesFlags, stream);
    Cursor head = TakeCursor(c, stream.length.value);
    if (times & 2) ShowTime(under, head, "PTS");
    if (times == 3) ShowTime(under, head, "DTS");
    const Field rest = Rest(head);
    if (rest.here) AddLine(under, rest, "Further Header Data: %s", HexText(rest));
  }
  AddBlock(under, Rest(c), "PES Data");
}

void ShowDescriptors(const Place& in, Cursor c) {
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const Cursor start = c;
    const Field tag = TakeU8(c);
    const Field data = TakeBytes(c, TakeU8(c).value);
    AddLine(in, data.here ? Ahead(start, 2 + data.length) : tag, "Descriptor: 0x%.02X, %s", tag.value, HexText(data));
  }
}

void ShowSection(const Place& in, Cursor& c, Stream& stream) {
  const Field pointer = TakeU8(c);
  AddLine(in, pointer, "Pointer: %u", pointer.value);
  TakeCursor(c, pointer.value);
  const uint32_t table = PeekU8(c), length = PeekU16(c, 1) & 0xFFF;
  Cursor section = TakeCursor(c, 3 + length);
  const Place under = Under(in, AddLine(in, Ahead(section, Left(section)), "Section"));
  const bool isLong = PeekU8(section, 1) & 0x80;
  ShowRows<Stream>(under, section, kSection, stream);
  if (isLong && Left(section) >= 9) {
    ShowRows<Stream>(under, section, kSectionHead, stream);
    Cursor body = TakeCursor(section, Left(section) - 4);
    Loop loop;
    if (table == 0) {
      while (Left(body) >= 4 && MoreAt(under, body, loop)) ShowRows<Stream>(under, body, kProgram, stream);
    } else if (table == 2) {
      const uint32_t information = PeekU16(body, 2) & 0xFFF;
      ShowRows<Stream>(under, body, kMapHead, stream);
      ShowDescriptors(under, TakeCursor(body, information));
      while (Left(body) >= 5 && MoreAt(under, body, loop)) {
        const uint32_t descriptors = PeekU16(body, 3) & 0xFFF;
        ShowRows<Stream>(under, body, kMapEntry, stream);
        ShowDescriptors(under, TakeCursor(body, descriptors));
      }
    }
    AddBlock(under, Rest(body), "Section Data");
    ShowRows<Stream>(under, section, kCheck, stream);
  }
  AddBlock(under, Rest(section), "Section Data");
  const Field stuffing = Rest(c);
  if (stuffing.here) AddLine(in, stuffing, "Stuffing: %u bytes", stuffing.length);
}

void ShowPacket(const Place& at, Cursor c) {
  constexpr uint32_t kNull = 0x1FFF, kStart = 0x4000, kFirstFree = 0x20;
  Stream stream{};
  const uint32_t word = PeekU16(c, 1), pid = word & 0x1FFF, control = PeekU8(c, 3);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "MPEG-TS: PID %u, Continuity %u", pid, control & 0x0F));
  ShowRows<Stream>(in, c, kHeader, stream);
  if (control & 0x20) ShowAdaptation(in, c, stream);
  if (Left(c) == 0) return;
  if (pid == kNull) {
    const Field stuffing = Rest(c);
    return (void)AddLine(in, stuffing, "Null Packet: %u bytes", stuffing.length);
  }
  const bool isClear = control >> 6 == 0;
  if (isClear && (word & kStart)) {
    if (PeekU24(c) == 1) return ShowPes(in, c, stream);
    const uint32_t pointer = PeekU8(c), table = PeekU8(c, 1 + static_cast<int32_t>(pointer));
    if (pid < kFirstFree || (pointer == 0 && table <= 3)) return ShowSection(in, c, stream);
  }
  AddBlock(in, Rest(c), "Payload");
}

}  // namespace

int32_t DecodeMpegTs(const Place& at, Cursor c) {
  if (Left(c) < 4 || PeekU8(c) != kSync) return 0;
  Loop loop;
  while (Left(c) >= 4 && PeekU8(c) == kSync && MoreAt(at, c, loop)) ShowPacket(at, TakeCursor(c, kPacket));
  AddRawRest(at, c, "MPEG-TS Data");
  return 1;
}

}  // namespace qxview
