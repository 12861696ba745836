// Pragmatic General Multicast (RFC 3208): data for a group, what was lost asked for again.
//
//   source port (2) destination port (2) type (1) options (1) checksum (2) global source (6) TSDU length (2) | by type
#include "core/internet_checksum.h"
#include "core/rows.h"
#include "decoders/common/checksum_line.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 16;
constexpr uint32_t kSpm = 0, kPoll = 1, kPolr = 2, kOriginalData = 4, kRepairData = 5, kNak = 8, kNullNak = 9,
    kConfirm = 10, kAcknowledge = 14;
constexpr uint32_t kHasOptions = 0x01, kEndOfOptions = 0x80;

constexpr auto kTypeNames = SortedNames({
    {0, "SPM"}, {1, "POLL"}, {2, "POLR"}, {4, "ODATA"}, {5, "RDATA"}, {8, "NAK"}, {9, "NNAK"}, {10, "NCF"},
    {13, "SPMR"}, {14, "ACK"}});
constexpr auto kOptionNames = SortedNames({
    {0x00, "OPT_LENGTH"}, {0x01, "OPT_FRAGMENT"}, {0x02, "OPT_NAK_LIST"}, {0x03, "OPT_JOIN"}, {0x04, "OPT_NAK_BO_IVL"},
    {0x05, "OPT_NAK_BO_RNG"}, {0x07, "OPT_REDIRECT"}, {0x08, "OPT_PARITY_PRM"}, {0x09, "OPT_PARITY_GRP"},
    {0x0A, "OPT_CURR_TGSIZE"}, {0x0B, "OPT_NBR_UNREACH"}, {0x0C, "OPT_PATH_NLA"}, {0x0D, "OPT_SYN"}, {0x0E, "OPT_FIN"},
    {0x0F, "OPT_RST"}, {0x10, "OPT_CR"}, {0x11, "OPT_CRQST"}, {0x12, "OPT_PGMCC_DATA"}, {0x13, "OPT_PGMCC_FEEDBACK"},
    {0x7F, "OPT_INVALID"}});
constexpr auto kFamilyNames = SortedNames({{0, "Reserved"}, {1, "IPv4"}, {2, "IPv6"}});
constexpr auto kExtensibilityNames = SortedNames({{0, "Ignore"}, {1, "Invalidate"}, {2, "Discard"}});
constexpr auto kPollNames = SortedNames({{0, "PGM_POLL_GENERAL"}, {1, "PGM_POLL_DLR"}});
constexpr auto kResetNames = SortedNames({{0, "Normal"}});

struct Pgm {
  Field type, options, length;
};

void ShowAddress(const Place& in, Cursor& c, const char* label, Pgm&) {
  // keys: number Path NLA Family, Source NLA Family, Group NLA Family, Local Repairer NLA Family, Acker NLA Family
  // keys: address Path NLA, Source NLA, Group NLA, Local Repairer NLA, Acker NLA
  const Field family = TakeU16(c), reserved = TakeU16(c);
  AddLine(in, family, "%s Family: %u = %s", label, family.value, LookupName(kFamilyNames, family.value));
  AddLine(in, reserved, "Reserved: %u", reserved.value);
  if (family.value != 1 && family.value != 2) return;
  const Field address = TakeBytes(c, family.value == 1 ? 4 : 16);
  if (family.value == 1) AddLine(in, address, "%s: %s", label, IPv4Text(address.bytes));
  if (family.value == 2) AddLine(in, address, "%s: %s", label, IPv6Text(address.bytes));
}
void ShowSequences(const Place& in, Cursor& c, const char* label, Pgm&) {
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const Field sequence = TakeU32(c);
    AddLine(in, sequence, "%s: %u", label, sequence.value);
  }
}
consteval Row<Pgm> AddressOf(const char* label) { return Shown<Pgm>(label, ShowAddress); }

constexpr auto kHeader = Rows<Pgm>({
    Number(2, "Source Port"), Number(2, "Destination Port"), Number(1, "Type", kTypeNames).Into(&Pgm::type),
    Hex(1, "Options").Into(&Pgm::options), Flag(0, "Parity"), Flag(1, "Variable Packet Length"),
    Bits(2, 4, "Reserved"), Flag(6, "Network Significant"), Flag(7, "Options Present")});
constexpr auto kSource = Rows<Pgm>({
    Bytes(6, "Global Source ID"), Number(2, "TSDU Length").Into(&Pgm::length)});
constexpr auto kSpmRows = Rows<Pgm>({
    Number(4, "SPM Sequence Number").Note(", Sequence %u"), Number(4, "Trailing Edge Sequence Number"),
    Number(4, "Leading Edge Sequence Number"), AddressOf("Path NLA")});
constexpr auto kPollRows = Rows<Pgm>({
    Number(4, "Poll Sequence Number").Note(", Sequence %u"), Number(2, "Poll Round"), Number(2, "Poll Sub-type",
        kPollNames),
    AddressOf("Path NLA"), Number(4, "Poll Back-off Interval", " microseconds"), Hex(4, "Random String"),
    Hex(4, "Matching Bit-Mask")});
constexpr auto kPolrRows = Rows<Pgm>({
    Number(4, "Poll Response Sequence Number").Note(", Sequence %u"), Number(2, "Poll Response Round"),
    Number(2, "Reserved")});
constexpr auto kDataRows = Rows<Pgm>({
    Number(4, "Data Sequence Number").Note(", Sequence %u"), Number(4, "Trailing Edge Sequence Number")});
constexpr auto kNakRows = Rows<Pgm>({
    Number(4, "Requested Sequence Number").Note(", Sequence %u"), AddressOf("Source NLA"), AddressOf("Group NLA")});
constexpr auto kAcknowledgeRows = Rows<Pgm>({
    Number(4, "Highest Received Sequence Number").Note(", Sequence %u"), Hex(4, "Bitmap of Received Packets")});

RowSpan<Pgm> BodyOf(uint32_t type) {
  switch (type) {
    case kSpm: return kSpmRows;
    case kPoll: return kPollRows;
    case kPolr: return kPolrRows;
    case kOriginalData:
    case kRepairData: return kDataRows;
    case kNak:
    case kNullNak:
    case kConfirm: return kNakRows;
    case kAcknowledge: return kAcknowledgeRows;
    default: return {};
  }
}

// What options hold behind their type, length and the octet of extensibility.
constexpr auto kReserved = Rows<Pgm>({Number(1, "Reserved")});
constexpr auto kFragment = Rows<Pgm>({
    Number(1, "Reserved"), Number(4, "First Sequence Number"), Number(4, "Offset"), Number(4, "Length")});
constexpr auto kNakList = Rows<Pgm>({
    Number(1, "Reserved"), Shown<Pgm>("Requested Sequence Number", ShowSequences)});
constexpr auto kJoin = Rows<Pgm>({Number(1, "Reserved"), Number(4, "Minimum Sequence Number")});
constexpr auto kBackOffInterval = Rows<Pgm>({
    Number(1, "Reserved"), Number(4, "Back-off Interval", " microseconds"),
    Number(4, "Back-off Interval Sequence Number")});
constexpr auto kBackOffRange = Rows<Pgm>({
    Number(1, "Reserved"), Number(4, "Maximum Back-off Interval", " microseconds"),
    Number(4, "Minimum Back-off Interval", " microseconds")});
constexpr auto kRedirect = Rows<Pgm>({Number(1, "Reserved"), AddressOf("Local Repairer NLA")});
constexpr auto kParityParameters = Rows<Pgm>({
    Word(1), Bits(0, 6, "Reserved"), Flag(6, "Pro-active Parity"), Flag(7, "On-demand Parity"),
    Number(4, "Transmission Group Size")});
constexpr auto kParityGroup = Rows<Pgm>({Number(1, "Reserved"), Number(4, "Parity Group Number")});
constexpr auto kGroupSize = Rows<Pgm>({Number(1, "Reserved"), Number(4, "Actual Transmission Group Size")});
constexpr auto kPathAddress = Rows<Pgm>({Number(1, "Reserved"), IPv4("Path NLA")});
constexpr auto kReset = Rows<Pgm>({Word(1), Flag(0, "N Bit"), Bits(1, 6, "Error Code", kResetNames),
    Bits(7, 1, "Reserved")});
constexpr auto kCongestionData = Rows<Pgm>({
    Number(1, "Reserved"), Number(4, "Time Stamp"), AddressOf("Acker NLA")});
void ShowFeedback(const Place& in, Cursor& c, const char*, Pgm&) {
  const Field family = TakeU16(c), loss = TakeU16(c);
  AddLine(in, family, "Acker NLA Family: %u = %s", family.value, LookupName(kFamilyNames, family.value));
  AddLine(in, loss, "Loss Rate: %u", loss.value);
  const Field address = TakeBytes(c, family.value == 2 ? 16 : 4);
  if (family.value == 2) AddLine(in, address, "Acker NLA: %s", IPv6Text(address.bytes));
  if (family.value != 2) AddLine(in, address, "Acker NLA: %s", IPv4Text(address.bytes));
}
constexpr auto kCongestionFeedback = Rows<Pgm>({
    Number(1, "Reserved"), Number(4, "Time Stamp"), Shown<Pgm>(nullptr, ShowFeedback)});

RowSpan<Pgm> OptionOf(uint32_t type) {
  switch (type) {
    case 0x01: return kFragment;
    case 0x02: return kNakList;
    case 0x03: return kJoin;
    case 0x04: return kBackOffInterval;
    case 0x05: return kBackOffRange;
    case 0x07: return kRedirect;
    case 0x08: return kParityParameters;
    case 0x09: return kParityGroup;
    case 0x0A: return kGroupSize;
    case 0x0C: return kPathAddress;
    case 0x0F: return kReset;
    case 0x12: return kCongestionData;
    case 0x13: return kCongestionFeedback;
    default: return kReserved;
  }
}

// The first option tells the length of all.
void ShowOptions(const Place& at, Cursor& c) {
  const uint32_t total = PeekU16(c, 2);
  Cursor options = TakeCursor(c, PeekU8(c) == 0 && total >= 4 ? static_cast<int64_t>(total) : Left(c));
  const Place in = Under(at, AddLine(at, Ahead(options, Left(options)), "Options"));
  Loop loop;
  bool isLast = false;
  while (!isLast && Left(options) >= 2 && MoreAt(in, options, loop)) {
    const Cursor start = options;
    const Field type = TakeU8(options), length = TakeU8(options);
    const uint32_t kind = type.value & 0x7F;
    isLast = type.value & kEndOfOptions;
    Cursor body = TakeCursor(options, length.value < 2 ? Left(options) : static_cast<int32_t>(length.value) - 2);
    const char* name = LookupName(kOptionNames, kind);
    const Place under = Under(in, AddLine(in, Ahead(start, options.offset - start.offset), "Option: %s", name));
    const BitPicture end = BitsOf(type, 0, 1), number = BitsOf(type, 1, 7);
    AddBitLine(under, type, "%s: Last Option = %s", end.picture, TrueOrFalse(end.value));
    AddBitLine(under, type, "%s: Type = %u (%s)", number.picture, number.value, name);
    AddLine(under, length, "Length: %u", length.value);
    if (kind == 0) {
      const Field all = TakeU16(body);
      AddLine(under, all, "Total Length: %u", all.value);
    } else {
      constexpr auto kExtensibility = Rows<Pgm>({
          Word(1), Flag(0, "Encoded"), Bits(1, 5, "Reserved"), Bits(6, 2, "Extensibility", kExtensibilityNames)});
      Pgm ignored{};
      ShowRows<Pgm>(under, body, kExtensibility, ignored);
      ShowRows<Pgm>(under, body, OptionOf(kind), ignored);
    }
    body.ranShort = false;
    AddBlock(under, Rest(body), "Option Data");
  }
  options.ranShort = false;
  AddBlock(in, Rest(options), "Option Data");
}

}  // namespace

int32_t DecodePgm(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Field message = Ahead(c, Left(c));
  const uint32_t type = PeekU8(c, 4);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "PGM: %s, [%u] -> [%u]", LookupName(kTypeNames, type),
                                     PeekU16(c), PeekU16(c, 2)));
  Pgm pgm = ShowRows(in, c, kHeader);
  const Field checksum = TakeU16(c);
  const NetworkState& network = PacketOf(in).network;
  const char* unchecked = checksum.value == 0                                                ? "Not Used"
                          : network.fragmented || network.totalLength > message.length ? "Not Checked - Partial Capture"
                                                                                             : nullptr;
  AddChecksumLine(in, checksum, "Checksum:", unchecked, SumWords(0, message.bytes, message.length),
                  BadChecksum::kAlone);
  ShowRows<Pgm>(in, c, kSource, pgm);
  ShowRows<Pgm>(in, c, BodyOf(type), pgm);
  if (pgm.options.value & kHasOptions && Left(c) >= 4) ShowOptions(in, c);
  CoverBytes(in, c);
  c.ranShort = false;
  AddRawRest(Deeper(at), c, "PGM Data");
  return 1;
}

}  // namespace qxview
