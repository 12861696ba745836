// Feedback of RTCP (RFC 4585, RFC 5104, RFC 6679, RFC 7728, RFC 8888, and what browsers send without an RFC).
#include "decoders/app/rtcp_feedback.h"

#include "core/bounded_loop.h"
#include "core/elements.h"
#include "decoders/app/rtcp.h"

namespace qxview {
namespace {

struct Feedback {
  Field count, name;
};

constexpr auto kPauseNames = SortedNames({{0, "PAUSE"}, {1, "RESUME"}, {2, "PAUSED"}, {3, "REFUSED"}});
constexpr auto kAcquisitionNames = SortedNames({{1, "RAMS-Request"}, {2, "RAMS-Information"}, {3, "RAMS-Termination"}});
constexpr auto kResponseNames = SortedNames({
    {0, "Private Response Code"}, {100, "Parameter Update"}, {200, "Request Accepted"}, {201, "Unicast Burst Completed"},
    {400, "Invalid RAMS-R Syntax"}, {401, "Invalid Minimum Buffer Requirement"}, {402, "Invalid Maximum Buffer Requirement"},
    {403, "Insufficient Maximum Bit Rate"}, {404, "Invalid RAMS-T Syntax"}, {500, "Unspecified Internal Error"},
    {501, "Insufficient Bandwidth"}, {502, "Burst Terminated by Congestion"}, {503, "Insufficient CPU Cycles"},
    {504, "Not Available on This Server"}, {505, "Not Available for This Receiver"}, {506, "Not Available for This Stream"},
    {507, "No Valid Starting Point"}, {508, "No Reference Information"}, {509, "No Stream of This SSRC"},
    {510, "Entire Session Denied"}, {511, "Only Preamble Sent"}, {512, "Denied by Policy"}});
constexpr auto kEcnNames = SortedNames({{0, "Not-ECT"}, {1, "ECT(1)"}, {2, "ECT(0)"}, {3, "CE"}});
constexpr auto kChunkNames = SortedNames({{0, "Run Length"}, {1, "Status Vector"}});
constexpr auto kStatusNames = SortedNames({
    {0, "Not Received"}, {1, "Received, Small Delta"}, {2, "Received, Large or Negative Delta"}, {3, "Reserved"}});

void ShowEach(const Place& in, Cursor& c, RowSpan<Feedback> rows, int32_t size, Feedback& feedback) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Feedback>(in, c, rows, feedback);
}

// Mantissa and exponent of six bits as one number; the fields follow.
template <uint32_t kMantissaBits, uint32_t kBitsBehind>
void ShowRate(const Place& in, Cursor& c, const char* label, Feedback&) {
  constexpr int32_t kSize = static_cast<int32_t>((6 + kMantissaBits + kBitsBehind) / 8);
  const uint32_t word = kSize == 4 ? PeekU32(c) : PeekU24(c);
  const uint32_t exponent = word >> (kMantissaBits + kBitsBehind);
  const uint64_t mantissa = word >> kBitsBehind & ((1u << kMantissaBits) - 1);
  if (Left(c) < kSize || exponent > 45) return;
  AddLine(in, Ahead(c, kSize), "%s: %I64u bits/s", label, mantissa << exponent);   // keys: number Maximum Bit Rate, Bit Rate
}

constexpr auto kLoss = Rows<Feedback>({
    Number(2, "Packet ID").Note(", %u"), Hex(2, "Bit Mask of Following Lost Packets")});
constexpr auto kRate = Rows<Feedback>({
    Hex(4, "SSRC"), Shown<Feedback>("Maximum Bit Rate", ShowRate<17, 9>), Word(4), Bits(0, 6, "Exponent"), Bits(6, 17, "Mantissa"),
    Bits(23, 9, "Measured Overhead")});
constexpr auto kAcquisition = Rows<Feedback>({
    Number(1, "Subformat", kAcquisitionNames).Note(", %s"), Hex(3, "Reserved")});
constexpr auto kAcquisitionReply = Rows<Feedback>({
    Number(1, "Subformat", kAcquisitionNames).Note(", %s"), Number(1, "Message Sequence Number"),
    Number(2, "Response", kResponseNames).Note(", %s")});
constexpr auto kMediaSource = Rows<Feedback>({Hex(4, "Media Sender SSRC")});
constexpr auto kFill = Rows<Feedback>({Number(4, nullptr, " ms").Note(", %u")});
constexpr auto kBitRate = Rows<Feedback>({Number(8, nullptr, " bits/s")});
constexpr auto kFirstPacket = Rows<Feedback>({Number(2, nullptr).Note(", %u")});
constexpr auto kFirstMulticast = Rows<Feedback>({Number(4, nullptr).Note(", %u")});
constexpr auto kAcquisitionFields = Choices<Feedback>({
    {1, "Requested Media Sender SSRCs", {}, [](const Place& in, Cursor& c, Feedback& feedback) {
       ShowEach(in, c, kMediaSource, 4, feedback);
     }},
    {2, "Minimum Buffer Fill Requirement", kFill}, {3, "Maximum Buffer Fill Requirement", kFill},
    {4, "Maximum Receive Bit Rate", kBitRate}, {5, "Preamble Only"}, {31, "Media Sender SSRC", kMediaSource},
    {32, "First Packet's Sequence Number", kFirstPacket}, {33, "Earliest Multicast Join Time", kFill},
    {34, "Burst Duration", kFill}, {35, "Maximum Transmit Bit Rate", kBitRate},
    {61, "First Multicast Packet's Sequence Number", kFirstMulticast}});
constexpr auto kEcn = Rows<Feedback>({
    Number(4, "Extended Highest Sequence"), Number(4, "ECT(0) Counter"), Number(4, "ECT(1) Counter"),
    Number(2, "ECN-CE Counter"), Number(2, "Not-ECT Counter"), Number(2, "Lost Packets Counter"),
    Number(2, "Duplication Counter")});
constexpr auto kPause = Rows<Feedback>({
    Hex(4, "Target SSRC"), Word(1), Bits(0, 4, "Type", kPauseNames), Bits(4, 4, "Reserved"),
    Number(1, "Parameter Length", " words").Into(&Feedback::count), Number(2, "Pause ID")});
constexpr auto kCongestion = Rows<Feedback>({
    Hex(4, "SSRC"), Number(2, "Begin Sequence"), Number(2, "Report Count").Into(&Feedback::count)});
constexpr auto kMetric = Rows<Feedback>({
    Word(2), Flag(0, "Received"), Bits(1, 2, "ECN", kEcnNames), Bits(3, 13, "Arrival Time Offset")});
constexpr auto kWide = Rows<Feedback>({
    Number(2, "Base Sequence").Note(", Sequence %u"), Number(2, "Packet Status Count").Into(&Feedback::count),
    Number(3, "Reference Time", " * 64 milliseconds"), Number(1, "Feedback Packet Count")});
constexpr auto kBudget = Rows<Feedback>({   // 3GPP TS 26.114 7.3.8
    Number(2, "Delay Budget", " milliseconds"), Word(2), Flag(0, "Sign"), Flag(1, "Query"), Bits(2, 14, "Reserved")});
constexpr auto kSlice = Rows<Feedback>({
    Word(4), Bits(0, 13, "First Macroblock"), Bits(13, 13, "Number of Macroblocks"), Bits(26, 6, "Picture ID")});
constexpr auto kPicture = Rows<Feedback>({
    Number(1, "Padding Bits"), Word(1), Flag(0, "Zero"), Bits(1, 7, "Payload Type"), Bytes(0, "Native Bit String")});
constexpr auto kIntra = Rows<Feedback>({Hex(4, "SSRC"), Number(1, "Sequence Number"), Hex(3, "Reserved")});
constexpr auto kTradeOff = Rows<Feedback>({
    Hex(4, "SSRC"), Number(1, "Sequence Number"), Word(3), Bits(0, 19, "Reserved"), Bits(19, 5, "Index")});
constexpr auto kBackChannel = Rows<Feedback>({
    Hex(4, "SSRC"), Number(1, "Sequence Number"), Word(1), Flag(0, "Reserved"), Bits(1, 7, "Payload Type"),
    Counted(2, Bytes(0, "Message"))});
constexpr auto kSource = Rows<Feedback>({Hex(4, "SSRC")});
constexpr auto kBitrate = Rows<Feedback>({
    Text(4, "Unique Identifier"), Number(1, "SSRC Count"), Shown<Feedback>("Bit Rate", ShowRate<18, 0>), Word(3),
    Bits(0, 6, "Exponent"), Bits(6, 18, "Mantissa")});

void ShowPauses(const Place& in, Cursor& c, Feedback& feedback) {
  Loop loop;
  while (Left(c) >= 8 && MoreAt(in, c, loop)) {
    ShowRows<Feedback>(in, c, kPause, feedback);
    if (!feedback.count.value) continue;
    const Field parameters = TakeBytes(c, 4 * feedback.count.value);
    AddLine(in, parameters, "Parameters: %s", HexText(parameters));
  }
}

void ShowCongestion(const Place& in, Cursor& c, Feedback& feedback) {
  constexpr int32_t kTimestamp = 4;
  static constexpr auto kTime = Rows<Feedback>({Hex(4, "Report Timestamp")});
  Loop loop;
  while (Left(c) >= 8 + kTimestamp && MoreAt(in, c, loop)) {
    ShowRows<Feedback>(in, c, kCongestion, feedback);
    Cursor metrics = TakeCursor(c, (2 * int64_t{feedback.count.value} + 3) & ~int64_t{3});
    for (uint32_t i = 0; i < feedback.count.value && Left(metrics) >= 2; ++i) ShowRows<Feedback>(in, metrics, kMetric, feedback);
    const Field padding = Rest(metrics);
    if (padding.here) AddLine(in, padding, "Padding: %s", HexText(padding));
  }
  ShowRows<Feedback>(in, c, kTime, feedback);
}

// What a chunk of two octets tells of the packets that follow one another from its first one on.
struct StatusChunk {
  uint32_t chunk;
  bool IsVector() const { return chunk & 0x8000; }
  bool HasLargeSymbols() const { return chunk & 0x4000; }
  uint32_t Packets() const { return !IsVector() ? chunk & 0x1FFF : HasLargeSymbols() ? 7 : 14; }
  uint32_t StatusOf(uint32_t packet) const {
    if (!IsVector()) return chunk >> 13 & 3;
    return HasLargeSymbols() ? chunk >> (12 - 2 * packet) & 3 : chunk >> (13 - packet) & 1;
  }
};
constexpr auto kRun = Rows<Feedback>({
    Word(2), Bits(0, 1, "Chunk Type", kChunkNames), Bits(1, 2, "Packet Status", kStatusNames), Bits(3, 13, "Run Length")});
constexpr auto kSymbols = Rows<Feedback>({
    Word(2), Bits(0, 1, "Chunk Type", kChunkNames), Bits(1, 1, "Symbol Size"), Bits(2, 14, "Symbols")});

// The octet or two that stand behind the chunks for each packet that came: a quarter of a millisecond each.
void ShowDelta(const Place& in, Cursor& c, uint32_t sequence, uint32_t status) {
  const bool isSmall = status == 1;
  const Field delta = isSmall ? TakeU8(c) : TakeU16(c);
  const int32_t quarters = isSmall ? static_cast<int32_t>(delta.value) : static_cast<int16_t>(delta.value);
  AddLine(in, delta, "Receive Delta: %d * 250 microseconds, Sequence %u", quarters, sequence & 0xFFFF);
}

// Chunks tell of each packet whether it came, the deltas behind them when.
void ShowTransportWide(const Place& in, Cursor& c, Feedback& feedback) {
  const uint32_t first = PeekU16(c);
  ShowRows<Feedback>(in, c, kWide, feedback);
  const uint32_t count = feedback.count.value;
  Cursor chunks = c;
  Loop loop;
  for (uint32_t told = 0; told < count && Left(c) >= 2 && MoreAt(in, c, loop);) {
    const StatusChunk chunk{PeekU16(c)};
    const Place under = Under(in, AddLine(in, Ahead(c, 2), "Packet Chunk: %u packets from %u on", chunk.Packets(),
                                          (first + told) & 0xFFFF));
    const Field word = Ahead(c, 2);
    ShowRows<Feedback>(under, c, chunk.IsVector() ? RowSpan<Feedback>(kSymbols) : RowSpan<Feedback>(kRun), feedback);
    for (uint32_t i = 0; chunk.IsVector() && i < chunk.Packets() && told + i < count; ++i) {
      AddLine(under, word, "Packet %u: %s", (first + told + i) & 0xFFFF, LookupName(kStatusNames, chunk.StatusOf(i)));
    }
    told += chunk.Packets();
  }
  chunks.left = c.offset - chunks.offset;
  for (uint32_t told = 0; told < count && Left(chunks) >= 2;) {
    const StatusChunk chunk{TakeU16(chunks).value};
    const uint32_t packets = chunk.Packets() < count - told ? chunk.Packets() : count - told;
    const bool hasDeltas = chunk.IsVector() || chunk.StatusOf(0) == 1 || chunk.StatusOf(0) == 2;
    for (uint32_t i = 0; hasDeltas && i < packets; ++i) {
      const uint32_t status = chunk.StatusOf(i);
      if (Left(c) < 1) return;
      if (!GoesOn(in)) return AddBlock(in, Rest(c), "Further Elements"), void();
      if (status == 1 || status == 2) ShowDelta(in, c, first + told + i, status);
    }
    told += packets;
  }
  const Field padding = Rest(c);
  if (padding.here) AddLine(in, padding, "Padding: %s", HexText(padding));
}

void ShowAcquisition(const Place& in, Cursor& c, Feedback& feedback) {
  constexpr uint32_t kInformation = 2;
  static constexpr auto kFieldHead = Rows<Feedback>({
      Number(1, "Type"), Hex(1, "Reserved"), Number(2, "Length").Into(&Feedback::count)});
  ShowRows<Feedback>(in, c, PeekU8(c) == kInformation ? RowSpan<Feedback>(kAcquisitionReply) : RowSpan<Feedback>(kAcquisition),
                     feedback);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const Choice<Feedback>* choice = FindChoice<Feedback>(kAcquisitionFields, PeekU8(c));
    const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
    Cursor field = TakeCursor(c, 4 + ((length + 3) & ~3));
    const int32_t whole = Left(field) < 4 + length ? Left(field) : 4 + length;
    const Place under = Under(in, AddLine(in, Ahead(field, whole), "Field: %s", choice ? choice->name : kUnknown));
    ShowRows<Feedback>(under, field, kFieldHead, feedback);
    Cursor value = TakeCursor(field, length);
    ShowChoice<Feedback>(under, value, choice, feedback);   // keys: none Data
    const Field padding = Rest(field);
    if (padding.here) AddLine(under, padding, "Padding: %s", HexText(padding));
  }
}

void ShowTransport(const Place& in, Cursor& c, uint32_t format, Feedback& feedback) {
  switch (format) {
    case 1:
    case 7: ShowEach(in, c, kLoss, 4, feedback); break;
    case 3:
    case 4: ShowEach(in, c, kRate, 8, feedback); break;
    case 6: ShowAcquisition(in, c, feedback); break;
    case 8: ShowRows<Feedback>(in, c, kEcn, feedback); break;
    case 9: ShowPauses(in, c, feedback); break;
    case 10: ShowRows<Feedback>(in, c, kBudget, feedback); break;
    case kRtcpCongestionFeedback: ShowCongestion(in, c, feedback); break;
    case 15: ShowTransportWide(in, c, feedback); break;
    default: break;
  }
}

void ShowPayload(const Place& in, Cursor& c, uint32_t format, Feedback& feedback) {
  constexpr uint32_t kEstimate = 0x52454D42;   // "REMB"
  switch (format) {
    case 2: ShowEach(in, c, kSlice, 4, feedback); break;
    case 3: ShowRows<Feedback>(in, c, kPicture, feedback); break;
    case 4: ShowEach(in, c, kIntra, 8, feedback); break;
    case 5:
    case 6: ShowEach(in, c, kTradeOff, 8, feedback); break;
    case 7: ShowRows<Feedback>(in, c, kBackChannel, feedback); break;
    case 8: ShowEach(in, c, kSource, 4, feedback); break;
    case 15:
      if (PeekU32(c) != kEstimate) break;
      ShowRows<Feedback>(in, c, kBitrate, feedback);
      ShowEach(in, c, kSource, 4, feedback);
      break;
    default: break;
  }
}

}  // namespace

void DecodeRtcpFeedback(const Place& in, Cursor& c, uint32_t packetType, uint32_t format) {
  Feedback feedback{};
  if (packetType == kRtcpTransportFeedback) ShowTransport(in, c, format, feedback);
  if (packetType == kRtcpPayloadFeedback) ShowPayload(in, c, format, feedback);
}

}  // namespace qxview
