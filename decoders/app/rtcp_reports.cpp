// Extended reports of RTCP (RFC 3611 and the RFCs that its registry of block types names) and the packets that few send:
// those of H.261 (RFC 2032), time codes (RFC 5484), jitter (RFC 5450), summaries of receivers (RFC 5760), tokens (RFC 6284),
// synchronisation between receivers (RFC 7272), reporting groups (RFC 8861).
#include "core/elements.h"
#include "decoders/app/rtcp_feedback.h"

namespace qxview {
namespace {

struct Report {
  Field length, kind;
};

constexpr auto kHopNames = SortedNames({{0, "None"}, {1, "IPv4 Time to Live"}, {2, "IPv6 Hop Limit"}});
constexpr auto kConcealmentNames = SortedNames({
    {0, "Unspecified"}, {1, "Disabled"}, {2, "Enhanced"}, {3, "Standard"}});
constexpr auto kJitterNames = SortedNames({
    {0, "Unknown"}, {1, "Reserved"}, {2, "Non-Adaptive"}, {3, "Adaptive"}});
constexpr auto kIntervalNames = SortedNames({{0, "Reserved"}, {1, "Sampled"}, {2, "Interval"}, {3, "Cumulative"}});
constexpr auto kVariationNames = SortedNames({{0, "MAPDV2"}, {1, "2-Point Packet Delay Variation"}});
constexpr auto kDiscardNames = SortedNames({
    {0, "Duplicate Packets"}, {1, "Too Early"}, {2, "Too Late"}, {3, "Early and Late"}});
constexpr auto kClientNames = SortedNames({{1, "Synchronization Client"}, {2, "Media Synchronization Application Server"}});

constexpr auto kSpan = Rows<Report>({Hex(4, "SSRC"), Number(2, "Begin Sequence"), Number(2, "End Sequence")});
constexpr auto kReceipt = Rows<Report>({Number(4, "Receipt Time")});
constexpr auto kReference = Rows<Report>({NtpTime("NTP Timestamp")});
constexpr auto kDelay = Rows<Report>({
    Hex(4, "SSRC"), Hex(4, "Last RR Timestamp"), Number(4, "Delay Since Last RR", " / 65536 seconds")});
constexpr auto kStatistics = Rows<Report>({
    Hex(4, "SSRC"), Number(2, "Begin Sequence"), Number(2, "End Sequence"),
    Number(4, "Lost Packets"), Number(4, "Duplicate Packets"), Number(4, "Minimum Jitter"), Number(4, "Maximum Jitter"),
    Number(4, "Mean Jitter"), Number(4, "Jitter Deviation"), Number(1, "Minimum TTL or Hop Limit"),
    Number(1, "Maximum TTL or Hop Limit"), Number(1, "Mean TTL or Hop Limit"), Number(1, "Deviation of TTL or Hop Limit")});
constexpr auto kVoice = Rows<Report>({
    Hex(4, "SSRC"), Number(1, "Loss Rate", " / 256"), Number(1, "Discard Rate", " / 256"),
    Number(1, "Burst Density", " / 256"), Number(1, "Gap Density", " / 256"), Number(2, "Burst Duration", " milliseconds"),
    Number(2, "Gap Duration", " milliseconds"), Number(2, "Round Trip Delay", " milliseconds"),
    Number(2, "End System Delay", " milliseconds"), Signed(1, "Signal Level", " dBm"), Signed(1, "Noise Level", " dBm"),
    Number(1, "Residual Echo Return Loss", " dB"), Number(1, "Gmin"), Number(1, "R Factor"), Number(1, "External R Factor"),
    Number(1, "MOS-LQ", " / 10"), Number(1, "MOS-CQ", " / 10"), Word(1), Bits(0, 2, "Packet Loss Concealment", kConcealmentNames),
    Bits(2, 2, "Jitter Buffer", kJitterNames), Bits(4, 4, "Jitter Buffer Rate"), Hex(1, "Reserved"),
    Number(2, "Jitter Buffer Nominal Delay", " milliseconds"), Number(2, "Jitter Buffer Maximum Delay", " milliseconds"),
    Number(2, "Jitter Buffer Absolute Maximum Delay", " milliseconds")});
constexpr auto kNetworkQuality = Rows<Report>({   // RFC 5093
    Number(2, "Begin Sequence"), Number(2, "End Sequence"), Number(2, "Maximum Delay Difference"), Number(2, "Delay Range"),
    Number(4, "Sum of Delay Variations"), Number(2, "Measurement Cycles"), Number(2, "Jitter Buffer Events"),
    Hex(1, "Reserved"), Number(3, "Degradation by the Network"), Hex(1, "Reserved"), Number(3, "Degradation by Jitter"),
    Hex(1, "Reserved"), Number(3, "Errored Seconds"), Hex(1, "Reserved"), Number(3, "Severely Errored Seconds")});
constexpr auto kMulticastHead = Rows<Report>({
    Hex(4, "Primary Multicast SSRC"), Number(2, "Status"), Hex(2, "Reserved")});
constexpr auto kSynchronisation = Rows<Report>({   // RFC 7272
    Word(4), Bits(0, 8, "Payload Type"), Bits(8, 24, "Reserved"), Hex(4, "Media Stream Correlation Identifier"), Hex(4, "SSRC"),
    NtpTime("Packet Received"), Number(4, "Packet Received RTP Timestamp"), Hex(4, "Packet Presented NTP Timestamp")});
constexpr auto kEcnSummary = Rows<Report>({
    Hex(4, "SSRC"), Number(4, "ECT(0) Counter"), Number(4, "ECT(1) Counter"), Number(2, "ECN-CE Counter"),
    Number(2, "Not-ECT Counter"), Number(2, "Lost Packets Counter"), Number(2, "Duplication Counter")});
constexpr auto kMeasurement = Rows<Report>({
    Hex(4, "SSRC"), Hex(2, "Reserved"), Number(2, "First Sequence"), Number(4, "Extended First Sequence of Interval"),
    Number(4, "Extended Last Sequence"), Number(4, "Interval Duration", " / 65536 seconds"),
    Number(4, "Cumulative Duration", " seconds"), Number(4, "Cumulative Duration Fraction", " / 4294967296 seconds")});
constexpr auto kVariation = Rows<Report>({
    Hex(4, "SSRC"), Signed(2, "Positive Threshold or Peak", " / 16 milliseconds"), Number(2, "Positive Percentile", " / 256"),
    Signed(2, "Negative Threshold or Peak", " / 16 milliseconds"), Number(2, "Negative Percentile", " / 256"),
    Signed(2, "Mean Delay Variation", " / 16 milliseconds"), Hex(2, "Reserved")});
constexpr auto kDelays = Rows<Report>({
    Hex(4, "SSRC"), Number(4, "Mean Network Round Trip Delay", " / 65536 seconds"),
    Number(4, "Minimum Network Round Trip Delay", " / 65536 seconds"),
    Number(4, "Maximum Network Round Trip Delay", " / 65536 seconds"), Number(4, "End System Delay", " seconds"),
    Number(4, "End System Delay Fraction", " / 4294967296 seconds")});
constexpr auto kLossSummary = Rows<Report>({
    Hex(4, "SSRC"), Number(2, "Burst Loss Rate", " / 32768"), Number(2, "Gap Loss Rate", " / 32768"),
    Number(2, "Mean Burst Duration", " milliseconds"), Number(2, "Variance of Burst Duration")});
constexpr auto kDiscardSummary = Rows<Report>({
    Hex(4, "SSRC"), Number(2, "Burst Discard Rate", " / 32768"), Number(2, "Gap Discard Rate", " / 32768")});
constexpr auto kBurstLoss = Rows<Report>({
    Hex(4, "SSRC"), Number(1, "Threshold"), Number(3, "Sum of Burst Durations", " milliseconds"),
    Number(3, "Packets Lost in Bursts"), Number(3, "Packets Expected in Bursts"), Word(2), Bits(0, 12, "Number of Bursts"),
    Bits(12, 4, "Sum of Squares of Burst Durations, High"), Number(4, "Sum of Squares of Burst Durations, Low")});
constexpr auto kBurstDiscard = Rows<Report>({
    Hex(4, "SSRC"), Number(1, "Threshold"), Number(3, "Packets Discarded in Bursts"), Number(3, "Packets Expected in Bursts"),
    Hex(1, "Reserved")});
constexpr auto kTransportStream = Rows<Report>({   // RFC 6990
    Hex(4, "SSRC"), Number(2, "Begin Sequence"), Number(2, "End Sequence"), Number(4, "Sync Losses"),
    Number(4, "Sync Byte Errors"), Number(4, "Continuity Count Errors"), Number(4, "Transport Errors"), Number(4, "PCR Errors"),
    Number(4, "PCR Repetition Errors"), Number(4, "PCR Discontinuity Indicator Errors"), Number(4, "PCR Accuracy Errors"),
    Number(4, "PTS Errors")});
constexpr auto kJitterBuffer = Rows<Report>({
    Hex(4, "SSRC"), Number(2, "Jitter Buffer Nominal Delay", " milliseconds"),
    Number(2, "Jitter Buffer Maximum Delay", " milliseconds"), Number(2, "High Water Mark", " milliseconds"),
    Number(2, "Low Water Mark", " milliseconds")});
constexpr auto kDiscards = Rows<Report>({Hex(4, "SSRC"), Number(4, "Discarded Packets")});
constexpr auto kDiscardedBytes = Rows<Report>({Hex(4, "SSRC"), Number(4, "Discarded Bytes")});
constexpr auto kInitialDelay = Rows<Report>({
    Hex(4, "SSRC"), Number(4, "Initial Synchronization Delay", " / 65536 seconds")});
constexpr auto kOffset = Rows<Report>({
    Hex(4, "SSRC"), Hex(4, "Reference SSRC"), Signed(4, "Synchronization Offset", " seconds"),
    Number(4, "Synchronization Offset Fraction", " / 4294967296 seconds")});
constexpr auto kScore = Rows<Report>({
    Word(4), Flag(0, "Multichannel"), Bits(1, 8, "Calculation Algorithm"), Bits(9, 7, "Payload Type"),
    Bits(16, 16, "MOS Value", " / 256")});
constexpr auto kChannelScore = Rows<Report>({
    Word(4), Flag(0, "Multichannel"), Bits(1, 8, "Calculation Algorithm"), Bits(9, 7, "Payload Type"),
    Bits(16, 3, "Channel"), Bits(19, 13, "MOS Value", " / 256")});
constexpr auto kScoreHead = Rows<Report>({Hex(4, "SSRC")});
constexpr auto kConcealment = Rows<Report>({
    Hex(4, "SSRC"), Number(4, "On-Time Playout Duration", " milliseconds"),
    Number(4, "Loss Concealment Duration", " milliseconds"),
    Number(4, "Buffer Adjustment Concealment Duration", " milliseconds"), Number(2, "Playout Interrupt Count"),
    Hex(2, "Reserved"), Number(4, "Mean Playout Interrupt Size", " milliseconds")});
constexpr auto kConcealedSeconds = Rows<Report>({
    Hex(4, "SSRC"), Number(4, "Unimpaired Seconds"), Number(4, "Concealed Seconds"), Number(2, "Severely Concealed Seconds"),
    Hex(1, "Reserved"), Number(1, "Severely Concealed Threshold", " milliseconds")});
constexpr auto kRepair = Rows<Report>({
    Hex(4, "SSRC"), Number(2, "Begin Sequence"), Number(2, "End Sequence"), Number(2, "Unrepaired Packets"),
    Number(2, "Repaired Packets")});

void ShowEach(const Place& in, Cursor& c, RowSpan<Report> rows, int32_t size, Report& report) {
  Loop loop;
  while (Left(c) >= size && MoreAt(in, c, loop)) ShowRows<Report>(in, c, rows, report);
}

// RFC 3611 4.1.1: a run of packets that came or did not, a bit for each of 15, or the filling of the last word.
void ShowRuns(const Place& in, Cursor& c, Report& report) {
  static constexpr auto kKinds = SortedNames({{0, "Run Length"}, {1, "Bit Vector"}});
  static constexpr auto kRun = Rows<Report>({
      Word(2), Bits(0, 1, "Chunk Type", kKinds), Flag(1, "Run of Received"), Bits(2, 14, "Run Length")});
  static constexpr auto kVector = Rows<Report>({Word(2), Bits(0, 1, "Chunk Type", kKinds), Bits(1, 15, "Bit Vector")});
  ShowRows<Report>(in, c, kSpan, report);
  Loop loop;
  while (Left(c) >= 2 && MoreAt(in, c, loop)) {
    const uint32_t chunk = PeekU16(c);
    const Place under = Under(in, AddLine(in, Ahead(c, 2), "Chunk: 0x%.04X", chunk));
    if (chunk == 0) {
      TakeU16(c);
      AppendToLine(in, under.parent, ", Terminating Null");
      continue;
    }
    ShowRows<Report>(under, c, chunk & 0x8000 ? RowSpan<Report>(kVector) : RowSpan<Report>(kRun), report);
  }
}

void ShowReceipts(const Place& in, Cursor& c, Report& report) {
  ShowRows<Report>(in, c, kSpan, report);
  ShowEach(in, c, kReceipt, 4, report);
}
void ShowDelays(const Place& in, Cursor& c, Report& report) { ShowEach(in, c, kDelay, 12, report); }
void ShowEcn(const Place& in, Cursor& c, Report& report) { ShowEach(in, c, kEcnSummary, 20, report); }

void ShowScores(const Place& in, Cursor& c, Report& report) {
  ShowRows<Report>(in, c, kScoreHead, report);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    ShowRows<Report>(in, c, PeekU8(c) & 0x80 ? RowSpan<Report>(kChannelScore) : RowSpan<Report>(kScore), report);
  }
}

constexpr auto kSequence = Rows<Report>({Number(2, nullptr)});
constexpr auto kMilliseconds = Rows<Report>({Number(4, nullptr, " milliseconds")});
constexpr auto kAcquisitions = Choices<Report>({   // RFC 6332
    {1, "First Packet's Sequence Number", kSequence}, {2, "Join Time", kMilliseconds},
    {3, "Request to Multicast Delta Time", kMilliseconds}, {4, "Request to Presentation Delta Time", kMilliseconds}});

void ShowAcquisition(const Place& in, Cursor& c, Report& report) {
  static constexpr auto kHead = Rows<Report>({
      Number(1, "Type"), Hex(1, "Reserved"), Number(2, "Length").Into(&Report::length)});
  ShowRows<Report>(in, c, kMulticastHead, report);
  Loop loop;
  while (Left(c) >= 4 && MoreAt(in, c, loop)) {
    const Choice<Report>* choice = FindChoice<Report>(kAcquisitions, PeekU8(c));
    const int32_t length = static_cast<int32_t>(PeekU16(c, 2));
    Cursor field = TakeCursor(c, 4 + ((length + 3) & ~3));
    const Place under = Under(in, AddLine(in, Ahead(field, Left(field)), "Element: %s", choice ? choice->name : kUnknown));
    ShowRows<Report>(under, field, kHead, report);
    Cursor value = TakeCursor(field, length);
    ShowChoice<Report>(under, value, choice, report);   // keys: none Data
    const Field padding = Rest(field);
    if (padding.here) AddLine(under, padding, "Padding: %s", HexText(padding));
  }
}

// The octet behind a block's type is its own.
constexpr auto kRunOctet = Rows<Report>({Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Thinning")});
constexpr auto kDiscardRunOctet = Rows<Report>({
    Word(1), Bits(0, 3, "Reserved"), Flag(3, "Early"), Bits(4, 4, "Thinning")});
constexpr auto kSummaryOctet = Rows<Report>({
    Word(1), Flag(0, "Loss Report"), Flag(1, "Duplicate Report"), Flag(2, "Jitter"), Bits(3, 2, "TTL or Hop Limit", kHopNames),
    Bits(5, 3, "Reserved")});
constexpr auto kMethodOctet = Rows<Report>({Number(1, "Acquisition Method")});
constexpr auto kClientOctet = Rows<Report>({
    Word(1), Bits(0, 4, "Sender Type", kClientNames), Bits(4, 3, "Reserved"), Flag(7, "Packet Presented")});
constexpr auto kIntervalOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Bits(2, 6, "Reserved")});
constexpr auto kVariationOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Bits(2, 4, "Variation Metric", kVariationNames),
    Bits(6, 2, "Reserved")});
constexpr auto kCombinedOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Flag(2, "Loss and Discard Combined"), Bits(3, 5, "Reserved")});
constexpr auto kBufferOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Flag(2, "Adaptive Jitter Buffer"), Bits(3, 5, "Reserved")});
constexpr auto kDiscardOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Bits(2, 2, "Discard Type", kDiscardNames), Bits(4, 4, "Reserved")});
constexpr auto kEarlyOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Flag(2, "Early"), Bits(3, 5, "Reserved")});
constexpr auto kConcealOctet = Rows<Report>({
    Word(1), Bits(0, 2, "Interval Metric", kIntervalNames), Bits(2, 4, "Packet Loss Concealment"), Bits(6, 2, "Reserved")});
constexpr auto kPlainOctet = Rows<Report>({Hex(1, "Type-Specific")});

struct Block {
  uint8_t type;
  const char* name;
  RowSpan<Report> octet = {}, rows = {};
  void (*show)(const Place& in, Cursor& c, Report& report) = nullptr;
};
constexpr Block kBlocks[] = {
    {1, "Loss RLE", kRunOctet, {}, ShowRuns}, {2, "Duplicate RLE", kRunOctet, {}, ShowRuns},
    {3, "Packet Receipt Times", kRunOctet, {}, ShowReceipts}, {4, "Receiver Reference Time", {}, kReference},
    {5, "DLRR", {}, {}, ShowDelays}, {6, "Statistics Summary", kSummaryOctet, kStatistics}, {7, "VoIP Metrics", {}, kVoice},
    {8, "RTCP XR", {}, kNetworkQuality}, {9, "Texas Instruments Extended VoIP Quality"},
    {10, "Post-Repair Loss RLE", kRunOctet, {}, ShowRuns}, {11, "Multicast Acquisition", kMethodOctet, {}, ShowAcquisition},
    {12, "IDMS", kClientOctet, kSynchronisation}, {13, "ECN Summary Report", {}, {}, ShowEcn},
    {14, "Measurement Information", {}, kMeasurement}, {15, "Packet Delay Variation Metrics", kVariationOctet, kVariation},
    {16, "Delay Metrics", kIntervalOctet, kDelays},
    {17, "Burst/Gap Loss Summary Statistics", kIntervalOctet, kLossSummary},
    {18, "Burst/Gap Discard Summary Statistics", kIntervalOctet, kDiscardSummary},
    {19, "Frame Impairment Statistics Summary"}, {20, "Burst/Gap Loss Metrics", kCombinedOctet, kBurstLoss},
    {21, "Burst/Gap Discard Metrics", kIntervalOctet, kBurstDiscard},
    {22, "MPEG2 Transport Stream PSI-Independent Decodability Statistics Metrics", {}, kTransportStream},
    {23, "De-Jitter Buffer Metrics", kBufferOctet, kJitterBuffer}, {24, "Discard Count Metrics", kDiscardOctet, kDiscards},
    {25, "DRLE (Discard RLE Report)", kDiscardRunOctet, {}, ShowRuns},
    {26, "BDR (Bytes Discarded Report)", kEarlyOctet, kDiscardedBytes},
    {27, "RFISD (RTP Flows Initial Synchronization Delay)", kIntervalOctet, kInitialDelay},
    {28, "RFSO (RTP Flows Synchronization Offset Metrics)", kIntervalOctet, kOffset},
    {29, "MOS Metrics", kIntervalOctet, {}, ShowScores}, {30, "LCB (Loss Concealment Metrics)", kConcealOctet, kConcealment},
    {31, "CSB (Concealed Seconds Metrics)", kConcealOctet, kConcealedSeconds},
    {32, "MPEG2 Transport Stream PSI Decodability Statistics Metrics"},
    {33, "Post-Repair Loss Count Metrics", {}, kRepair}, {34, "Video Loss Concealment Metric"},
    {35, "Independent Burst/Gap Discard Metrics"}};

const Block* FindBlock(uint32_t type) {
  for (const Block& block : kBlocks) {
    if (block.type == type) return &block;
  }
  return nullptr;
}
const char* BlockName(uint32_t type) {
  const Block* block = FindBlock(type);
  return block ? block->name : kUnknown;
}

// --- Summaries of receivers (RFC 5760): blocks of type, length in words, and what the type says ---

constexpr auto kTargetNames = SortedNames({
    {0, "IPv4 Feedback Target"}, {1, "IPv6 Feedback Target"}, {2, "Feedback Target Name"}, {4, "Loss"}, {5, "Jitter"},
    {6, "Round-Trip Time"}, {7, "Cumulative Loss"}, {8, "Collisions"}, {10, "General Statistics"},
    {11, "RTCP Bandwidth Indication"}, {12, "RTCP Group and Average Packet Size"}});
constexpr auto kTarget4 = Rows<Report>({Number(2, "Port"), IPv4("Address")});
constexpr auto kTarget6 = Rows<Report>({Number(2, "Port"), IPv6("Address")});
constexpr auto kTargetName = Rows<Report>({Number(2, "Port"), Text(0, "Name")});
constexpr auto kDistribution = Rows<Report>({
    Word(2), Bits(0, 12, "Number of Buckets"), Bits(12, 4, "Multiplicative Factor"), Number(4, "Minimum Distribution Value"),
    Number(4, "Maximum Distribution Value"), Bytes(0, "Buckets")});
constexpr auto kStatisticsBlock = Rows<Report>({
    Hex(2, "Reserved"), Number(1, "Median Fraction Lost", " / 256"), Number(3, "Highest Cumulative Loss"),
    Number(4, "Median Jitter")});
constexpr auto kBandwidth = Rows<Report>({
    Word(2), Flag(0, "Sender"), Flag(1, "Receivers"), Bits(2, 14, "Reserved"), Number(4, "RTCP Bandwidth", " / 65536 kbit/s")});
constexpr auto kGroup = Rows<Report>({Number(2, "Average Packet Size"), Number(4, "Receiver Group Size")});
constexpr auto kReservedWord = Rows<Report>({Hex(2, "Reserved")});
constexpr auto kEachSource = Rows<Report>({Hex(4, "SSRC")});

void ShowSummaryBlock(const Place& in, Cursor& c, uint32_t type, Report& report) {
  switch (type) {
    case 0: return ShowRows<Report>(in, c, kTarget4, report);
    case 1: return ShowRows<Report>(in, c, kTarget6, report);
    case 2: return ShowRows<Report>(in, c, kTargetName, report);
    case 4:
    case 5:
    case 6:
    case 7: return ShowRows<Report>(in, c, kDistribution, report);
    case 8:
      ShowRows<Report>(in, c, kReservedWord, report);
      return ShowEach(in, c, kEachSource, 4, report);
    case 10: return ShowRows<Report>(in, c, kStatisticsBlock, report);
    case 11: return ShowRows<Report>(in, c, kBandwidth, report);
    case 12: return ShowRows<Report>(in, c, kGroup, report);
    default: return;
  }
}

void ShowSummary(const Place& in, Cursor& c, Report& report) {
  static constexpr auto kHead = Rows<Report>({Hex(4, "SSRC"), Hex(4, "Summarized SSRC"), NtpTime("NTP Timestamp")});
  static constexpr auto kBlockHead = Rows<Report>({
      Number(1, "Sub-Report Block Type", kTargetNames), Number(1, "Length", " words")});
  ShowRows<Report>(in, c, kHead, report);
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const uint32_t type = PeekU8(c), words = PeekU8(c, 1);
    Cursor block = TakeCursor(c, words ? 4 * words : 4);
    const Place under = Under(in, AddLine(in, Ahead(block, Left(block)), "Sub-Report Block: %s", LookupName(kTargetNames, type)));
    ShowRows<Report>(under, block, kBlockHead, report);
    ShowSummaryBlock(under, block, type, report);
    AddBlock(under, Rest(block), "Sub-Report Data");
  }
}

constexpr auto kLossesH261 = Rows<Report>({
    Hex(4, "SSRC"), Number(2, "First Sequence Lost"), Hex(2, "Bit Mask of Following Lost Packets")});
constexpr auto kTimeCode = Rows<Report>({
    Hex(4, "SSRC"), Number(4, "RTP Timestamp"), Word(4), Flag(0, "Negative"), Bits(1, 5, "Hours"), Bits(6, 6, "Minutes"),
    Bits(12, 6, "Seconds"), Bits(18, 6, "Frames"), Bits(24, 8, "Reserved")});
constexpr auto kInterarrival = Rows<Report>({Number(4, "Interarrival Jitter")});
constexpr auto kTokenRequest = Rows<Report>({Hex(4, "SSRC"), Hex(8, "Random Nonce")});
constexpr auto kTokenAnswer = Rows<Report>({Hex(4, "SSRC"), Hex(4, "Requesting Client SSRC"), Hex(8, "Random Nonce")});
constexpr auto kSettings = Rows<Report>({
    Hex(4, "SSRC"), Hex(4, "Media Source SSRC"), Hex(4, "Media Stream Correlation Identifier"), NtpTime("Packet Received"),
    Number(4, "Packet Received RTP Timestamp"), NtpTime("Packet Presented")});

}  // namespace

void DecodeRtcpOther(const Place& in, Cursor& c, uint32_t packetType, uint32_t count) {
  constexpr uint32_t kRequest = 1;
  Report report{};
  switch (packetType) {
    case 192: return ShowRows<Report>(in, c, kEachSource, report);
    case 193: return ShowRows<Report>(in, c, kLossesH261, report);
    case 194: return ShowRows<Report>(in, c, kTimeCode, report);
    case 195: return ShowEach(in, c, kInterarrival, 4, report);
    case 209: return ShowSummary(in, c, report);
    case 210:
      return ShowRows<Report>(in, c, count == kRequest ? RowSpan<Report>(kTokenRequest) : RowSpan<Report>(kTokenAnswer), report);
    case 211: return ShowRows<Report>(in, c, kSettings, report);
    case 212: return ShowEach(in, c, kEachSource, 4, report);
    default: return;
  }
}

void DecodeRtcpReport(const Place& in, Cursor c) {
  static constexpr auto kType = Rows<Report>({Number(1, "Block Type", BlockName)});
  static constexpr auto kLength = Rows<Report>({Number(2, "Block Length", " words")});
  Report report{};
  const uint32_t type = PeekU8(c);
  const Place under = Under(in, AddLine(in, Ahead(c, Left(c)), "Report Block: %u = %s, %u bytes", type, BlockName(type), Left(c)));
  const Block* block = FindBlock(type);
  ShowRows<Report>(under, c, kType, report);
  ShowRows<Report>(under, c, block && block->octet.count ? block->octet : RowSpan<Report>(kPlainOctet), report);
  ShowRows<Report>(under, c, kLength, report);
  if (block && block->rows.count) ShowRows<Report>(under, c, block->rows, report);
  if (block && block->show) block->show(under, c, report);
  AddBlock(under, Rest(c), "Report Block Data");
}

}  // namespace qxview
