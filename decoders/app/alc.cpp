// Asynchronous Layered Coding (RFC 5775) over the Layered Coding Transport (RFC 5651), and FLUTE (RFC 6726), which
// sends files that way: pieces of objects, from one sender to any number of receivers.
//
//   version (4 bits) C PSI S O H reserved A B | header length in words (1) | codepoint (1)
//   congestion control, session (TSI) and object (TOI), each as long as the flags say | extensions | FEC payload ID |
// symbols
#include "core/line_facts.h"
#include "core/rows.h"
#include "decoders/common/header_extension.h"
#include "decoders/common/xml_lines.h"

namespace qxview {
namespace {

constexpr int32_t kLeastHeader = 8;
constexpr auto kExtensionNames = SortedNames({
    {0, "EXT_NOP"}, {1, "EXT_AUTH"}, {2, "EXT_TIME"}, {64, "EXT_FTI"}, {192, "EXT_FDT"}, {193, "EXT_CENC"}});
constexpr auto kFecNames = SortedNames({
    {0, "Compact No-Code"}, {1, "Raptor"}, {2, "Reed-Solomon over GF(2^m)"}, {3, "LDPC Staircase"},
    {4, "LDPC Triangle"},
    {5, "Reed-Solomon over GF(2^8)"}, {6, "RaptorQ"}, {128, "Small Block, Large Block and Expandable"},
    {129, "Small Block Systematic"}, {130, "Compact"}});
constexpr auto kEncodingNames = SortedNames({{0, "none"}, {1, "ZLIB"}, {2, "DEFLATE"}, {3, "GZIP"}});

struct Alc {
  Field flags, words, codepoint;
};
constexpr auto kHeader = Rows<Alc>({
    Hex(2, "Flags").Into(&Alc::flags), Bits(0, 4, "Version"), Bits(4, 2, "Congestion Control Size"),
    Bits(6, 2, "Protocol-Specific Indication"), Flag(8, "TSI Has a Word"), Bits(9, 2, "Words of TOI"),
    Flag(11, "Half-words in TSI and TOI"), Bits(12, 2, "Reserved"), Flag(14, "Close Session"), Flag(15, "Close Object"),
    Number(1, "Header Length", " words").Into(&Alc::words), Number(1, "Codepoint", kFecNames).Into(&Alc::codepoint)});

// EXT_FTI by the FEC encoding ID (RFC 5445, 5510, 5170, 6330): what all have in front, and what some have behind.
constexpr auto kTransferInformation = Rows<Alc>({
    Number(6, "Transfer Length", " bytes"), Number(2, "FEC Instance ID"), Number(2, "Encoding Symbol Length",
                                                                                 " bytes")});
constexpr auto kBlockLength4 = Rows<Alc>({Number(4, "Maximum Source Block Length")});
constexpr auto kBlockLength2 = Rows<Alc>({
    Number(2, "Maximum Source Block Length"), Number(2, "Maximum Number of Encoding Symbols")});
constexpr auto kDeliveryTable = Rows<Alc>({
    Word(3), Bits(0, 4, "FLUTE Version"), Bits(4, 20, "FDT Instance ID")});
constexpr auto kContentEncoding = Rows<Alc>({Number(1, "Content Encoding", kEncodingNames), Number(2, "Reserved")});
constexpr auto kTimeUse = Rows<Alc>({
    Hex(2, "Use"), Flag(0, "SCT-High"), Flag(1, "SCT-Low"), Flag(2, "ERT"), Flag(3, "SLC")});
constexpr auto kTimeWord = Rows<Alc>({Hex(4, "Time Value")});

// FEC payload IDs.
constexpr auto kBlock16 = Rows<Alc>({Number(2, "Source Block Number"), Number(2, "Encoding Symbol ID")});
constexpr auto kBlock24 = Rows<Alc>({Number(3, "Source Block Number"), Number(1, "Encoding Symbol ID")});
constexpr auto kBlock8 = Rows<Alc>({Number(1, "Source Block Number"), Number(3, "Encoding Symbol ID")});
constexpr auto kBlock20 = Rows<Alc>({Word(4), Bits(0, 20, "Source Block Number"), Bits(20, 12, "Encoding Symbol ID")});
constexpr auto kBlock32 = Rows<Alc>({Number(4, "Source Block Number"), Number(4, "Encoding Symbol ID")});
constexpr auto kBlockSmall = Rows<Alc>({
    Number(4, "Source Block Number"), Number(2, "Source Block Length"), Number(2, "Encoding Symbol ID")});

RowSpan<Alc> PayloadIdOf(uint32_t encoding) {
  switch (encoding) {
    case 2: case 5: return kBlock24;
    case 3: case 4: return kBlock20;
    case 6: return kBlock8;
    case 128: return kBlock32;
    case 129: return kBlockSmall;
    default: return kBlock16;
  }
}

void AddNumber(const Place& in, Cursor& c, int32_t size, const char* label) {
  if (size == 0) return;
  const Field field = TakeBytes(c, size);
  if (!field.here) return;
  if (size <= 8) {
    AddLine(in, field, "%s: %I64u", label, detail::NumberOf(field, false));
  } else {
    AddLine(in, field, "%s: %s", label, HexText(field));
  }
}

void ShowExtension(const Place& at, Cursor& c, uint32_t encoding) {
  HeaderExtension extension = TakeHeaderExtension(at, c, kExtensionNames);
  const Place& in = extension.in;
  Cursor& body = extension.body;
  Alc alc{};
  const auto show = [&](RowSpan<Alc> rows) { ShowRows<Alc>(in, body, rows, alc); };
  if (extension.type == 2) {
    show(kTimeUse);
    Loop loop;
    while (Left(body) >= 4 && MoreAt(in, body, loop)) show(kTimeWord);
  } else if (extension.type == 64) {
    show(kTransferInformation);
    if (Left(body)) show(encoding == 129 ? RowSpan<Alc>(kBlockLength2) : RowSpan<Alc>(kBlockLength4));
  } else if (extension.type == 192) {
    show(kDeliveryTable);
  } else if (extension.type == 193) {
    show(kContentEncoding);
  }
  body.ranShort = false;
  const Field rest = Rest(body);
  AddLine(in, rest, "Data: %s", HexText(rest));
}

void ShowDeliveryTable(const Place& in, Cursor& c) {
  const KeyedAs keys(PacketOf(in), "flute");
  ShowXml(in, c);
}

}  // namespace

int32_t DecodeAlc(const Place& at, Cursor c) {
  const uint32_t flags = PeekU16(c);
  const int32_t header = 4 * static_cast<int32_t>(PeekU8(c, 2));
  const int32_t half = flags & 0x10 ? 2 : 0;
  const int32_t control = 4 * (1 + static_cast<int32_t>(flags >> 10 & 3));
  const int32_t session = (flags & 0x80 ? 4 : 0) + half;
  const int32_t object = 4 * static_cast<int32_t>(flags >> 5 & 3) + half;
  if (Left(c) < kLeastHeader || flags >> 12 != 1 || header < 4 + control + session + object) return 0;
  const LineHandle top = AddLine(at, Ahead(c, header < Left(c) ? header : Left(c)), "ALC");
  const Place in = Under(at, top);
  Cursor head = TakeCursor(c, header);
  const Alc alc = ShowRows(in, head, kHeader);
  const Field congestion = TakeBytes(head, control);
  AddLine(in, congestion, "Congestion Control Information: %s", HexText(congestion));
  AddNumber(in, head, session, "Transport Session ID");
  const Cursor objectAt = head;
  AddNumber(in, head, object, "Transport Object ID");
  bool isTable = object > 0 && object <= 8;
  for (int32_t i = 0; isTable && i < object; ++i) isTable = i < Left(objectAt) && PeekU8(objectAt, i) == 0;
  Loop loop;
  while (MoreAt(in, head, loop)) ShowExtension(in, head, alc.codepoint.value);
  if (Left(c) > 0) {
    Alc ignored{};
    ShowRows<Alc>(in, c, PayloadIdOf(alc.codepoint.value), ignored);
  }
  CoverBytes(in, c);
  c.ranShort = false;
  if (isTable && StartsXml(c)) {
    AppendToLine(in, top, ": File Delivery Table");
    ShowDeliveryTable(in, c);
  } else {
    AppendToLine(in, top, ": %u bytes of an object", static_cast<uint32_t>(Left(c)));
    AddBlock(in, Rest(c), "Encoding Symbols");
  }
  return 1;
}

}  // namespace qxview
