// NACK-Oriented Reliable Multicast (RFC 5740): objects for a group, whose receivers say what they miss.
//
//   version (4 bits) type (4 bits) | header length in words (1) | sequence (2) | source (4) | by type | extensions |
// data
#include "core/rows.h"
#include "decoders/common/header_extension.h"
#include "decoders/common/quantized.h"

namespace qxview {
namespace {

constexpr int32_t kLeastHeader = 8;
constexpr uint32_t kInfo = 1, kData = 2, kCommand = 3, kNack = 4, kAcknowledge = 5;
constexpr uint32_t kFlush = 1, kSquelch = 3, kCongestion = 4, kRepairAdvertisement = 5, kAckRequest = 6;

constexpr auto kTypeNames = SortedNames({
    {1, "NORM_INFO"}, {2, "NORM_DATA"}, {3, "NORM_CMD"}, {4, "NORM_NACK"}, {5, "NORM_ACK"}, {6, "NORM_REPORT"}});
constexpr auto kCommandNames = SortedNames({
    {1, "NORM_CMD(FLUSH)"}, {2, "NORM_CMD(EOT)"}, {3, "NORM_CMD(SQUELCH)"}, {4, "NORM_CMD(CC)"},
    {5, "NORM_CMD(REPAIR_ADV)"}, {6, "NORM_CMD(ACK_REQ)"}, {7, "NORM_CMD(APPLICATION)"}});
constexpr auto kAckNames = SortedNames({{1, "NORM_ACK_CC"}, {2, "NORM_ACK_FLUSH"}});
constexpr auto kFormNames = SortedNames({{1, "NORM_NACK_ITEMS"}, {2, "NORM_NACK_RANGES"}, {3, "NORM_NACK_ERASURES"}});
constexpr auto kObjectFlagNames = SortedNames({
    {0x01, "NORM_FLAG_REPAIR"}, {0x02, "NORM_FLAG_EXPLICIT"}, {0x04, "NORM_FLAG_INFO"}, {0x08, "NORM_FLAG_UNRELIABLE"},
    {0x10, "NORM_FLAG_FILE"}, {0x20, "NORM_FLAG_STREAM"}});
constexpr auto kRepairFlagNames = SortedNames({
    {0x01, "NORM_NACK_SEGMENT"}, {0x02, "NORM_NACK_BLOCK"}, {0x04, "NORM_NACK_INFO"}, {0x08, "NORM_NACK_OBJECT"}});
constexpr auto kNodeFlagNames = SortedNames({
    {0x01, "NORM_FLAG_CC_CLR"}, {0x02, "NORM_FLAG_CC_PLR"}, {0x04, "NORM_FLAG_CC_RTT"}, {0x08, "NORM_FLAG_CC_START"},
    {0x10, "NORM_FLAG_CC_LEAVE"}});
constexpr auto kExtensionNames = SortedNames({{1, "EXT_AUTH"}, {3, "EXT_CC"}, {64, "EXT_FTI"}, {128, "EXT_RATE"}});

struct Norm {
  Field type, words, command, fec, length;
};
constexpr auto kHeader = Rows<Norm>({
    Word(1), Bits(0, 4, "Version"), Bits(4, 4, "Type", kTypeNames).Into(&Norm::type),
    Number(1, "Header Length", " words").Into(&Norm::words), Number(2, "Sequence"), IPv4("Source ID")});
constexpr auto kSender = Rows<Norm>({
    Number(2, "Instance ID"), QuantizedTime("Quantized Group Round Trip Time"), Word(1), Bits(0, 4, "Back-off Factor"),
    Bits(4, 4, "Quantized Group Size")});
constexpr auto kObject = Rows<Norm>({
    Flags(1, "Flags", kObjectFlagNames), Number(1, "FEC Encoding ID").Into(&Norm::fec),
    Number(2, "Object Transport ID")});
constexpr auto kCommandObject = Rows<Norm>({
    Number(1, "FEC Encoding ID").Into(&Norm::fec), Number(2, "Object Transport ID")});
constexpr auto kCommandType = Rows<Norm>({Number(1, "Sub-type", kCommandNames).Note(", %s").Into(&Norm::command)});
constexpr auto kCongestionRows = Rows<Norm>({
    Number(1, "Reserved"), Number(2, "CC Sequence"), Number(4, "Send Time", " seconds"),
    Number(4, "Send Time Fraction", " microseconds")});
constexpr auto kCongestionNode = Rows<Norm>({
    IPv4("CC Node ID"), Flags(1, "CC Flags", kNodeFlagNames), QuantizedTime("CC Round Trip Time"), QuantizedRate("CC Rate")});
constexpr auto kAckRequestRows = Rows<Norm>({
    Number(1, "Reserved"), Number(1, "Ack Type", kAckNames), Number(1, "Ack ID")});
constexpr auto kAdvertisement = Rows<Norm>({Hex(1, "Flags"), Number(2, "Reserved")});
constexpr auto kReserved3 = Rows<Norm>({Bytes(3, "Reserved")});
constexpr auto kNackRows = Rows<Norm>({
    IPv4("Server ID"), Number(2, "Instance ID"), Number(2, "Reserved"), Number(4, "GRTT Response", " seconds"),
    Number(4, "GRTT Response Fraction", " microseconds")});
constexpr auto kAckRows = Rows<Norm>({
    IPv4("Server ID"), Number(2, "Instance ID"), Number(1, "Ack Type", kAckNames).Note(", %s"), Number(1, "Ack ID"),
    Number(4, "GRTT Response", " seconds"), Number(4, "GRTT Response Fraction", " microseconds")});
constexpr auto kNode = Rows<Norm>({IPv4("Node ID")});
constexpr auto kRepair = Rows<Norm>({
    Number(1, "Form", kFormNames), Flags(1, "Flags", kRepairFlagNames),
    Number(2, "Length", " bytes").Into(&Norm::length)});
constexpr auto kRepairItem = Rows<Norm>({
    Number(1, "FEC Encoding ID").Into(&Norm::fec), Number(1, "Reserved"), Number(2, "Object Transport ID")});

// FEC payload IDs (RFC 5445, 5510), by the encoding.
constexpr auto kBlock5 = Rows<Norm>({Number(3, "Source Block Number"), Number(1, "Encoding Symbol ID")});
constexpr auto kBlock129 = Rows<Norm>({
    Number(4, "Source Block Number"), Number(2, "Source Block Length"), Number(2, "Encoding Symbol ID")});
constexpr auto kBlock0 = Rows<Norm>({Number(2, "Source Block Number"), Number(2, "Encoding Symbol ID")});
void ShowPayloadId(const Place& in, Cursor& c, Norm& norm) {
  const uint32_t encoding = norm.fec.value;
  ShowRows<Norm>(in, c, encoding == 129                    ? RowSpan<Norm>(kBlock129)
                        : encoding == 2 || encoding == 5 ? RowSpan<Norm>(kBlock5)
                                                         : RowSpan<Norm>(kBlock0), norm);
}

// A share of 65535.
void ShowLoss(const Place& in, const Field& field, const char* label) {
  const uint32_t loss = PeekU16(field), hundredths = loss * 10000 / 65535;
  AddLine(in, field, "%s: %u = %u.%.02u percent", label, loss, hundredths / 100, hundredths % 100);
}

// The rest of a command's content: nodes.
void ShowNodes(const Place& in, Cursor& c, Norm& norm) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) ShowRows<Norm>(in, c, kNode, norm);
}

constexpr auto kCongestionExtension = Rows<Norm>({
    Number(2, "CC Sequence"), Flags(1, "CC Flags", kNodeFlagNames), QuantizedTime("CC Round Trip Time"),
    Shown(2, "CC Loss", ShowLoss), QuantizedRate("CC Rate"), Hex(2, "Reserved")});
constexpr auto kRateExtension = Rows<Norm>({Number(1, "Reserved"), QuantizedRate("Send Rate")});
// Transmission information, of the encodings of RFC 5510 and 5445.
constexpr auto kObject5 = Rows<Norm>({
    Number(6, "Object Size", " bytes"), Number(2, "Segment Size", " bytes"), Number(1, "Maximum Block Length"),
    Number(1, "Parity Segments")});
constexpr auto kObject129 = Rows<Norm>({
    Number(6, "Object Size", " bytes"), Number(2, "FEC Instance ID"), Number(2, "Segment Size", " bytes"),
    Number(2, "Maximum Block Length"), Number(2, "Parity Segments")});
constexpr auto kObjectSize = Rows<Norm>({Number(6, "Object Size", " bytes")});

RowSpan<Norm> ExtensionRows(uint32_t type, uint32_t encoding) {
  switch (type) {
    case 3: return kCongestionExtension;
    case 64:
      return encoding == 129 ? RowSpan<Norm>(kObject129) : encoding == 5 ? RowSpan<Norm>(kObject5) : RowSpan<Norm>(kObjectSize);
    case 128: return kRateExtension;
    default: return {};
  }
}

void ShowExtensions(const Place& at, Cursor& c, Norm& norm) {
  Loop loop;
  while (MoreAt(at, c, loop)) {
    HeaderExtension extension = TakeHeaderExtension(at, c, kExtensionNames);
    ShowRows<Norm>(extension.in, extension.body, ExtensionRows(extension.type, norm.fec.value), norm);
    extension.body.ranShort = false;
    const Field rest = Rest(extension.body);
    if (rest.here) AddLine(extension.in, rest, "Data: %s", HexText(rest));
  }
}

void ShowRepairs(const Place& at, Cursor& c, Norm& norm) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(at, c, loop)) {
    const Cursor start = c;
    const LineHandle line = AddLine(at, Ahead(c, 4), "Repair Request");
    const Place in = Under(at, line);
    ShowRows<Norm>(in, c, kRepair, norm);
    Cursor items = TakeCursor(c, norm.length.value);
    Loop each;
    while (Left(items) >= 4 && MoreAt(in, items, each)) {
      ShowRows<Norm>(in, items, kRepairItem, norm);
      ShowPayloadId(in, items, norm);
    }
    if (line) SetRange(in, line, start.offset, c.offset - start.offset);
  }
}

// A command's fields, all within the header or with its extensions and content behind.
void ShowCommand(const Place& in, Cursor& head, Cursor& c, Norm& norm) {
  ShowRows<Norm>(in, head, kCommandType, norm);
  const uint32_t command = norm.command.value;
  if (command == kFlush || command == kSquelch) {
    ShowRows<Norm>(in, head, kCommandObject, norm);
    ShowPayloadId(in, head, norm);
  } else {
    ShowRows<Norm>(in, head, command == kCongestion            ? RowSpan<Norm>(kCongestionRows)
                             : command == kRepairAdvertisement ? RowSpan<Norm>(kAdvertisement)
                             : command == kAckRequest          ? RowSpan<Norm>(kAckRequestRows)
                                                               : RowSpan<Norm>(kReserved3), norm);
  }
  ShowExtensions(in, head, norm);
  Loop loop;
  if (command == kCongestion) {
    while (Left(c) >= 8 && MoreAt(in, c, loop)) ShowRows<Norm>(in, c, kCongestionNode, norm);
  } else if (command == kRepairAdvertisement) {
    ShowRepairs(in, c, norm);
  } else if (command == kSquelch) {
    while (Left(c) >= 2 && MoreAt(in, c, loop)) {
      const Field object = TakeU16(c);
      AddLine(in, object, "Invalid Object: %u", object.value);
    }
  } else if (command == kFlush || command == kAckRequest) {
    ShowNodes(in, c, norm);
  }
}

}  // namespace

int32_t DecodeNorm(const Place& at, Cursor c) {
  const uint32_t type = PeekU8(c) & 0xF;
  const int32_t header = 4 * static_cast<int32_t>(PeekU8(c, 1));
  if (Left(c) < kLeastHeader || PeekU8(c) >> 4 != 1 || header < kLeastHeader || type < 1 || type > 6) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, header < Left(c) ? header : Left(c)), "NORM: %s",
                                     LookupName(kTypeNames, type)));
  Cursor head = TakeCursor(c, header);
  Norm norm = ShowRows(in, head, kHeader);
  if (type == kInfo || type == kData) {
    ShowRows<Norm>(in, head, kSender, norm);
    ShowRows<Norm>(in, head, kObject, norm);
    if (type == kData) ShowPayloadId(in, head, norm);
  } else if (type == kCommand) {
    ShowRows<Norm>(in, head, kSender, norm);
    ShowCommand(in, head, c, norm);
  } else if (type == kNack || type == kAcknowledge) {
    ShowRows<Norm>(in, head, type == kNack ? RowSpan<Norm>(kNackRows) : RowSpan<Norm>(kAckRows), norm);
  }
  ShowExtensions(in, head, norm);
  if (type == kNack) ShowRepairs(in, c, norm);
  CoverBytes(in, c);
  c.ranShort = false;
  AddBlock(in, Rest(c), "NORM Data");
  return 1;
}

}  // namespace qxview
