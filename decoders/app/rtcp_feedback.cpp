// Feedback of RTCP (RFC 4585, RFC 5104, RFC 6679, RFC 7728, RFC 8888, and what browsers send without an RFC) and its
// extended reports (RFC 3611).
#include "decoders/app/rtcp_feedback.h"

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
constexpr auto kHopNames = SortedNames({{0, "None"}, {1, "IPv4 Time to Live"}, {2, "IPv6 Hop Limit"}});
constexpr auto kConcealmentNames = SortedNames({
    {0, "Unspecified"}, {1, "Disabled"}, {2, "Enhanced"}, {3, "Standard"}});
constexpr auto kJitterNames = SortedNames({
    {0, "Unknown"}, {1, "Reserved"}, {2, "Non-Adaptive"}, {3, "Adaptive"}});

void ShowEach(const Place& in, Cursor& c, RowSpan<Feedback> rows, int32_t size, Feedback& feedback) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Feedback>(in, c, rows, feedback);
}

constexpr auto kLoss = Rows<Feedback>({
    Number(2, "Packet ID").Note(", %u"), Hex(2, "Bit Mask of Following Lost Packets")});
constexpr auto kRate = Rows<Feedback>({
    Hex(4, "SSRC"), Word(4), Bits(0, 6, "Exponent"), Bits(6, 17, "Mantissa"), Bits(23, 9, "Measured Overhead")});
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
    Text(4, "Unique Identifier"), Number(1, "SSRC Count"), Word(3), Bits(0, 6, "Exponent"), Bits(6, 18, "Mantissa")});

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

// Chunks tell of each packet whether it came, a delta of one octet or two stands behind for each that did.
void ShowTransportWide(const Place& in, Cursor& c, Feedback& feedback) {
  constexpr uint32_t kVector = 0x8000, kLargeSymbols = 0x4000;
  static constexpr auto kRun = Rows<Feedback>({
      Word(2), Bits(0, 1, "Chunk Type", kChunkNames), Bits(1, 2, "Packet Status", kStatusNames), Bits(3, 13, "Run Length")});
  static constexpr auto kSymbols = Rows<Feedback>({
      Word(2), Bits(0, 1, "Chunk Type", kChunkNames), Bits(1, 1, "Symbol Size"), Bits(2, 14, "Symbols")});
  ShowRows<Feedback>(in, c, kWide, feedback);
  uint32_t left = feedback.count.value;
  Loop loop;
  while (left > 0 && Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t chunk = PeekU16(c);
    const bool isVector = chunk & kVector;
    ShowRows<Feedback>(in, c, isVector ? RowSpan<Feedback>(kSymbols) : RowSpan<Feedback>(kRun), feedback);
    const uint32_t told = !isVector ? chunk & 0x1FFF : chunk & kLargeSymbols ? 7 : 14;
    left = told < left ? left - told : 0;
  }
  const Field deltas = Rest(c);
  if (deltas.here) AddLine(in, deltas, "Receive Deltas: %s", HexText(deltas));
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

// --- Extended reports ---

constexpr auto kSpan = Rows<Feedback>({Hex(4, "SSRC"), Number(2, "Begin Sequence"), Number(2, "End Sequence")});
constexpr auto kRunChunk = Rows<Feedback>({Hex(2, "Chunk")});
constexpr auto kReceipt = Rows<Feedback>({Number(4, "Receipt Time")});
constexpr auto kReference = Rows<Feedback>({NtpTime("NTP Timestamp")});
constexpr auto kDelay = Rows<Feedback>({
    Hex(4, "SSRC"), Hex(4, "Last RR Timestamp"), Number(4, "Delay Since Last RR", " / 65536 seconds")});
constexpr auto kStatistics = Rows<Feedback>({
    Number(4, "Lost Packets"), Number(4, "Duplicate Packets"), Number(4, "Minimum Jitter"), Number(4, "Maximum Jitter"),
    Number(4, "Mean Jitter"), Number(4, "Jitter Deviation"), Number(1, "Minimum TTL or Hop Limit"),
    Number(1, "Maximum TTL or Hop Limit"), Number(1, "Mean TTL or Hop Limit"), Number(1, "Deviation of TTL or Hop Limit")});
constexpr auto kVoice = Rows<Feedback>({
    Hex(4, "SSRC"), Number(1, "Loss Rate", " / 256"), Number(1, "Discard Rate", " / 256"),
    Number(1, "Burst Density", " / 256"), Number(1, "Gap Density", " / 256"), Number(2, "Burst Duration", " milliseconds"),
    Number(2, "Gap Duration", " milliseconds"), Number(2, "Round Trip Delay", " milliseconds"),
    Number(2, "End System Delay", " milliseconds"), Signed(1, "Signal Level", " dBm"), Signed(1, "Noise Level", " dBm"),
    Number(1, "Residual Echo Return Loss", " dB"), Number(1, "Gmin"), Number(1, "R Factor"), Number(1, "External R Factor"),
    Number(1, "MOS-LQ", " / 10"), Number(1, "MOS-CQ", " / 10"), Word(1), Bits(0, 2, "Packet Loss Concealment", kConcealmentNames),
    Bits(2, 2, "Jitter Buffer", kJitterNames), Bits(4, 4, "Jitter Buffer Rate"), Hex(1, "Reserved"),
    Number(2, "Jitter Buffer Nominal Delay", " milliseconds"), Number(2, "Jitter Buffer Maximum Delay", " milliseconds"),
    Number(2, "Jitter Buffer Absolute Maximum Delay", " milliseconds")});

constexpr auto kReportNames = SortedNames({
    {1, "Loss RLE"}, {2, "Duplicate RLE"}, {3, "Packet Receipt Times"}, {4, "Receiver Reference Time"}, {5, "DLRR"},
    {6, "Statistics Summary"}, {7, "VoIP Metrics"}, {8, "RTCP XR"}, {9, "Texas Instruments Extended VoIP Quality"},
    {10, "Post-Repair Loss RLE"}, {11, "Multicast Acquisition"}, {12, "IDMS"}, {13, "ECN Summary Report"},
    {14, "Measurement Information"}, {15, "Packet Delay Variation Metrics"}, {16, "Delay Metrics"},
    {17, "Burst/Gap Loss Summary Statistics"}, {18, "Burst/Gap Discard Summary Statistics"},
    {19, "Frame Impairment Statistics Summary"}, {20, "Burst/Gap Loss Metrics"}, {21, "Burst/Gap Discard Metrics"},
    {22, "MPEG2 Transport Stream PSI-Independent Decodability Statistics Metrics"}, {23, "De-Jitter Buffer Metrics"},
    {24, "Discard Count Metrics"}, {25, "DRLE (Discard RLE Report)"}, {26, "BDR (Bytes Discarded Report)"},
    {27, "RFISD (RTP Flows Initial Synchronization Delay)"}, {28, "RFSO (RTP Flows Synchronization Offset Metrics)"},
    {29, "MOS Metrics"}, {30, "LCB (Loss Concealment Metrics)"}, {31, "CSB (Concealed Seconds Metrics)"},
    {32, "MPEG2 Transport Stream PSI Decodability Statistics Metrics"}, {33, "Post-Repair Loss Count Metrics"},
    {34, "Video Loss Concealment Metric"}, {35, "Independent Burst/Gap Discard Metrics"}});

constexpr auto kRunHead = Rows<Feedback>({
    Number(1, "Block Type", kReportNames), Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Thinning")});
constexpr auto kSummaryHead = Rows<Feedback>({
    Number(1, "Block Type", kReportNames), Word(1), Flag(0, "Loss Report"), Flag(1, "Duplicate Report"), Flag(2, "Jitter"),
    Bits(3, 2, "TTL or Hop Limit", kHopNames), Bits(5, 3, "Reserved")});
constexpr auto kPlainHead = Rows<Feedback>({Number(1, "Block Type", kReportNames), Hex(1, "Type-Specific")});
constexpr auto kLength = Rows<Feedback>({Number(2, "Block Length", " words")});

}  // namespace

void DecodeRtcpFeedback(const Place& in, Cursor& c, uint32_t packetType, uint32_t format) {
  Feedback feedback{};
  if (packetType == kRtcpTransportFeedback) ShowTransport(in, c, format, feedback);
  if (packetType == kRtcpPayloadFeedback) ShowPayload(in, c, format, feedback);
}

void DecodeRtcpReport(const Place& in, Cursor c) {
  Feedback feedback{};
  const uint32_t type = PeekU8(c);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Report Block: %u = %s, %u bytes", type,
                                        LookupName(kReportNames, type), Left(c)));
  const bool hasRuns = type >= 1 && type <= 3;
  ShowRows<Feedback>(under, c, hasRuns     ? RowSpan<Feedback>(kRunHead)
                               : type == 6 ? RowSpan<Feedback>(kSummaryHead)
                                           : RowSpan<Feedback>(kPlainHead), feedback);
  ShowRows<Feedback>(under, c, kLength, feedback);
  if (hasRuns || type == 6) ShowRows<Feedback>(under, c, kSpan, feedback);
  if (type == 1 || type == 2) ShowEach(under, c, kRunChunk, 2, feedback);
  if (type == 3) ShowEach(under, c, kReceipt, 4, feedback);
  if (type == 4) ShowRows<Feedback>(under, c, kReference, feedback);
  if (type == 5) ShowEach(under, c, kDelay, 12, feedback);
  if (type == 6) ShowRows<Feedback>(under, c, kStatistics, feedback);
  if (type == 7) ShowRows<Feedback>(under, c, kVoice, feedback);
  AddBlock(under, Rest(c), "Report Block Data");
}

}  // namespace qxview
