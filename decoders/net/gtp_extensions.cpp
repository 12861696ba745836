// The extension headers of GTP (3GPP TS 29.281 5.2) and what the containers among them hold: of a PDU session (TS 38.415), of
// the user plane between nodes of New Radio (TS 38.425) and of LTE (TS 36.425, 36.465).
//
//   length in words of four bytes   content   type of the next header
#include "core/elements.h"
#include "core/times.h"
#include "decoders/net/gtp_parts.h"

namespace qxview {
namespace {

constexpr auto kExtensionNames = SortedNames({
    {0x00, "No More Extension Headers"}, {0x01, "MBMS Support Indication"},
    {0x02, "MS Info Change Reporting Support Indication"}, {0x03, "Long PDCP PDU Number"},
    {0x20, "Service Class Indicator"}, {0x40, "UDP Port"}, {0x81, "RAN Container"}, {0x82, "Long PDCP PDU Number"},
    {0x83, "Xw RAN Container"}, {0x84, "NR RAN Container"}, {0x85, "PDU Session Container"},
    {0xC0, "PDCP PDU Number"}, {0xC1, "Suspend Request"}, {0xC2, "Suspend Response"}});
constexpr auto kSessionNames = SortedNames({
    {0, "Downlink PDU Session Information"}, {1, "Uplink PDU Session Information"}});
constexpr auto kRanNames = SortedNames({
    {0, "Downlink User Data"}, {1, "Downlink Data Delivery Status"}, {2, "Assistance Information Data"}});
constexpr auto kCauseNames = SortedNames({
    {0, "Unknown"}, {1, "Radio Link Outage"}, {2, "Radio Link Resume"}, {3, "Uplink Radio Link Outage"},
    {4, "Downlink Radio Link Outage"}, {5, "Uplink Radio Link Resume"}, {6, "Downlink Radio Link Resume"}});
constexpr auto kAssistanceNames = SortedNames({
    {0, "Unknown"}, {1, "Average CQI"}, {2, "Average HARQ Failure"}, {3, "Average HARQ Retransmissions"},
    {4, "Downlink Radio Quality Index"}, {5, "Uplink Radio Quality Index"}, {6, "Power Headroom Report"}});
constexpr auto kSuggestionNames = SortedNames({{0, "Not Suggested"}, {1, "Suggested"}});

struct Extension {
  Field first, second, count;
};
using Span = RowSpan<Extension>;
constexpr auto kLength = Rows<Extension>({Number(1, "Extension Header Length", " words")});
constexpr auto kNext = Rows<Extension>({Hex(1, "Next Extension Header Type", kExtensionNames).Into(&Extension::first)});
constexpr auto kServiceClass = Rows<Extension>({Hex(1, "Service Class Indicator"), Hex(1, "Spare")});
constexpr auto kPort = Rows<Extension>({Number(2, "UDP Port")});
constexpr auto kPdcp = Rows<Extension>({Number(2, "PDCP PDU Number")});
constexpr auto kLongPdcp = Rows<Extension>({
    Word(3), Bits(0, 6, "Spare"), Bits(6, 18, "Long PDCP PDU Number"), Hex(3, "Spare")});
constexpr auto kSpare = Rows<Extension>({Bytes(0, "Spare")});

void ShowPadding(const Place& in, Cursor& c) {
  const Field rest = Rest(c);
  if (rest.here) AddLine(in, rest, "Padding: %s", HexText(rest));
}
bool Has(const Field& field, uint32_t mask) { return field.value & mask; }

// ---- The PDU session.

constexpr auto kDownlink = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 4, "PDU Type", kSessionNames), Flag(4, "QoS Monitoring Packet"),
    Flag(5, "Sequence Number Presence"), Flag(6, "MBS Sequence Number Presence"), Bits(7, 1, "Spare"),
    Word(1).Into(&Extension::second), Flag(0, "Paging Policy Presence (PPP)"), Flag(1, "Reflective QoS Indicator (RQI)"),
    Bits(2, 6, "QoS Flow Identifier (QFI)")});
constexpr auto kUplink = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 4, "PDU Type", kSessionNames), Flag(4, "QoS Monitoring Packet"),
    Flag(5, "Downlink Delay Indication"), Flag(6, "Uplink Delay Indication"), Flag(7, "Sequence Number Presence"),
    Word(1).Into(&Extension::second), Flag(0, "N3/N9 Delay Indication"), Flag(1, "New IE Flag"),
    Bits(2, 6, "QoS Flow Identifier (QFI)")});
constexpr auto kPaging = Rows<Extension>({Word(1), Bits(0, 3, "Paging Policy Indicator (PPI)"), Bits(3, 5, "Spare")});
constexpr auto kSendingTime = Rows<Extension>({NtpTime("Downlink Sending Time")});
constexpr auto kUplinkTimes = Rows<Extension>({
    NtpTime("Downlink Sending Time, Repeated"), NtpTime("Downlink Received Time"), NtpTime("Uplink Sending Time")});
constexpr auto kDownlinkSequence = Rows<Extension>({Number(3, "Downlink QFI Sequence Number")});
constexpr auto kBroadcastSequence = Rows<Extension>({Number(4, "Downlink MBS QFI Sequence Number")});
constexpr auto kUplinkSequence = Rows<Extension>({Number(3, "Uplink QFI Sequence Number")});
constexpr auto kDownlinkDelay = Rows<Extension>({Number(4, "Downlink Delay Result")});
constexpr auto kUplinkDelay = Rows<Extension>({Number(4, "Uplink Delay Result")});
constexpr auto kCoreDelay = Rows<Extension>({Number(4, "N3/N9 Delay Result")});
constexpr auto kNewElements = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 7, "Spare"), Flag(7, "D1 Uplink PDCP Delay Result Indication")});
constexpr auto kPdcpDelay = Rows<Extension>({Number(1, "D1 Uplink PDCP Delay Result")});

void ShowSession(const Place& in, Cursor& c, Extension& extension) {
  const auto show = [&](bool present, Span rows) {
    if (present && Left(c) > 0) ShowRows<Extension>(in, c, rows, extension);
  };
  const bool isDownlink = PeekU8(c) >> 4 == 0;
  show(true, isDownlink ? Span(kDownlink) : Span(kUplink));
  const Field first = extension.first, second = extension.second;
  if (isDownlink) {
    show(Has(second, 0x80), kPaging);
    show(Has(first, 0x08), kSendingTime);
    show(Has(first, 0x04), kDownlinkSequence);
    show(Has(first, 0x02), kBroadcastSequence);
  } else {
    show(Has(first, 0x08), kUplinkTimes);
    show(Has(first, 0x04), kDownlinkDelay);
    show(Has(first, 0x02), kUplinkDelay);
    show(Has(first, 0x01), kUplinkSequence);
    show(Has(second, 0x80), kCoreDelay);
    show(Has(second, 0x40), kNewElements);
    show(Has(second, 0x40) && Has(extension.first, 0x01), kPdcpDelay);
  }
  ShowPadding(in, c);
}

// ---- New Radio's user plane.

constexpr auto kData = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 4, "PDU Type", kRanNames), Bits(4, 1, "Spare"), Flag(5, "Downlink Discard Blocks"),
    Flag(6, "Downlink Flush"), Flag(7, "Report Polling"), Word(1).Into(&Extension::second), Bits(0, 3, "Spare"),
    Flag(3, "Request Out-of-Sequence Report"), Flag(4, "Report Delivered"), Flag(5, "User Data Existence"),
    Flag(6, "Assistance Information Report Polling"), Flag(7, "Retransmission"), Number(3, "NR-U Sequence Number")});
constexpr auto kDiscarded = Rows<Extension>({Number(3, "Downlink Discard NR PDCP PDU Sequence Number")});
constexpr auto kBlocks = Rows<Extension>({Number(1, "Downlink Discard Blocks").Into(&Extension::count)});
constexpr auto kBlock = Rows<Extension>({
    Number(3, "Discarded Block Start Sequence Number"), Number(1, "Discarded Block Size")});
constexpr auto kReported = Rows<Extension>({Number(3, "Downlink Report NR PDCP PDU Sequence Number")});

constexpr auto kStatus = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 4, "PDU Type", kRanNames), Flag(4, "Highest Transmitted Sequence Number Present"),
    Flag(5, "Highest Delivered Sequence Number Present"), Flag(6, "Final Frame"), Flag(7, "Lost Packet Report"),
    Word(1).Into(&Extension::second), Bits(0, 3, "Spare"), Flag(3, "Delivered Ranges Present"), Flag(4, "Data Rate Present"),
    Flag(5, "Retransmitted Sequence Number Present"), Flag(6, "Delivered Retransmitted Sequence Number Present"),
    Flag(7, "Cause Report"), Number(4, "Desired Buffer Size", " bytes")});
constexpr auto kRate = Rows<Extension>({Number(4, "Desired Data Rate", " bytes/s")});
constexpr auto kLostRanges = Rows<Extension>({Number(1, "Lost Ranges").Into(&Extension::count)});
constexpr auto kLostRange = Rows<Extension>({
    Number(3, "Start of Lost NR-U Sequence Numbers"), Number(3, "End of Lost NR-U Sequence Numbers")});
constexpr auto kHighestDelivered = Rows<Extension>({Number(3, "Highest Delivered NR PDCP Sequence Number")});
constexpr auto kHighestSent = Rows<Extension>({Number(3, "Highest Transmitted NR PDCP Sequence Number")});
constexpr auto kCause = Rows<Extension>({Number(1, "Cause", kCauseNames)});
constexpr auto kDeliveredAgain = Rows<Extension>({Number(3, "Delivered Retransmitted NR PDCP Sequence Number")});
constexpr auto kSentAgain = Rows<Extension>({Number(3, "Retransmitted NR PDCP Sequence Number")});
constexpr auto kDeliveredRanges = Rows<Extension>({Number(1, "Delivered Ranges").Into(&Extension::count)});
constexpr auto kDeliveredRange = Rows<Extension>({
    Number(3, "Start of Delivered NR PDCP Sequence Numbers"), Number(3, "End of Delivered NR PDCP Sequence Numbers")});

constexpr auto kAssistance = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 4, "PDU Type", kRanNames), Flag(4, "PDCP Duplication Indication"),
    Flag(5, "Assistance Information Present"), Flag(6, "Uplink Delay Present"), Flag(7, "Downlink Delay Present"), Word(1),
    Bits(0, 7, "Spare"), Bits(7, 1, "PDCP Duplication Activation", kSuggestionNames)});
constexpr auto kAssistances = Rows<Extension>({Number(1, "Assistance Information Fields").Into(&Extension::count)});
constexpr auto kAssistanceField = Rows<Extension>({
    Number(1, "Assistance Information Type", kAssistanceNames), Counted(1, Bytes(0, "Radio Quality Assistance"))});
constexpr auto kUnitUplinkDelay = Rows<Extension>({Number(4, "Uplink Delay of the Distributed Unit")});
constexpr auto kUnitDownlinkDelay = Rows<Extension>({Number(4, "Downlink Delay of the Distributed Unit")});

void ShowCounted(const Place& in, Cursor& c, Span head, Span each, Extension& extension) {
  ShowRows<Extension>(in, c, head, extension);
  const uint32_t count = extension.count.value;
  Loop loop;
  for (uint32_t i = 0; i < count && MoreAt(in, c, loop); ++i) ShowRows<Extension>(in, c, each, extension);
}

void ShowNewRadio(const Place& in, Cursor& c, Extension& extension) {
  constexpr uint32_t kDataType = 0, kStatusType = 1, kAssistanceType = 2;
  const auto show = [&](bool present, Span rows) {
    if (present && Left(c) > 0) ShowRows<Extension>(in, c, rows, extension);
  };
  const auto count = [&](bool present, Span head, Span each) {
    if (present && Left(c) > 0) ShowCounted(in, c, head, each, extension);
  };
  const uint32_t type = PeekU8(c) >> 4;
  if (type > kAssistanceType) return;
  show(true, type == kDataType ? Span(kData) : type == kStatusType ? Span(kStatus) : Span(kAssistance));
  const Field first = extension.first, second = extension.second;
  if (type == kDataType) {
    show(Has(first, 0x02), kDiscarded);
    count(Has(first, 0x04), kBlocks, kBlock);
    show(Has(second, 0x08), kReported);
  } else if (type == kStatusType) {
    show(Has(second, 0x08), kRate);
    count(Has(first, 0x01), kLostRanges, kLostRange);
    show(Has(first, 0x04), kHighestDelivered);
    show(Has(first, 0x08), kHighestSent);
    show(Has(second, 0x01), kCause);
    show(Has(second, 0x02), kDeliveredAgain);
    show(Has(second, 0x04), kSentAgain);
    count(Has(second, 0x10), kDeliveredRanges, kDeliveredRange);
  } else {
    count(Has(first, 0x04), kAssistances, kAssistanceField);
    show(Has(first, 0x02), kUnitUplinkDelay);
    show(Has(first, 0x01), kUnitDownlinkDelay);
  }
  ShowPadding(in, c);
}

// ---- LTE's user plane, between base stations (X2) and to wireless LANs (Xw).

constexpr auto kLteData = Rows<Extension>({
    Word(1), Bits(0, 4, "PDU Type", kRanNames), Bits(4, 4, "Spare"), Number(3, "User Plane Sequence Number")});
constexpr auto kLteStatus = Rows<Extension>({
    Word(1).Into(&Extension::first), Bits(0, 4, "PDU Type", kRanNames), Bits(4, 2, "Spare"), Flag(6, "Final Frame"),
    Flag(7, "Lost Packet Report"), Number(2, "Highest Delivered PDCP Sequence Number"),
    Number(4, "Desired Buffer Size of the Bearer", " bytes"), Number(4, "Minimum Desired Buffer Size of the UE", " bytes")});
constexpr auto kLteLost = Rows<Extension>({
    Number(3, "Start of Lost Sequence Numbers"), Number(3, "End of Lost Sequence Numbers")});

void ShowLte(const Place& in, Cursor& c, Extension& extension) {
  const uint32_t type = PeekU8(c) >> 4;
  if (type > 1) return;
  ShowRows<Extension>(in, c, type ? Span(kLteStatus) : Span(kLteData), extension);
  if (type && Has(extension.first, 0x01) && Left(c) > 0) ShowCounted(in, c, kLostRanges, kLteLost, extension);
  ShowPadding(in, c);
}

constexpr auto kExtensions = Choices<Extension>({
    {0x01, "MBMS Support Indication", kSpare}, {0x02, "MS Info Change Reporting Support Indication", kSpare},
    {0x03, "Long PDCP PDU Number", kLongPdcp}, {0x20, "Service Class Indicator", kServiceClass}, {0x40, "UDP Port", kPort},
    {0x81, "RAN Container", {}, ShowLte}, {0x82, "Long PDCP PDU Number", kLongPdcp}, {0x83, "Xw RAN Container", {}, ShowLte},
    {0x84, "NR RAN Container", {}, ShowNewRadio}, {0x85, "PDU Session Container", {}, ShowSession},
    {0xC0, "PDCP PDU Number", kPdcp}, {0xC1, "Suspend Request", kSpare}, {0xC2, "Suspend Response", kSpare}});

}  // namespace

const char* GtpExtensionName(uint32_t type) { return LookupName(kExtensionNames, type); }

// Each extension header ends with the type of the next.
void ShowGtpExtensions(const Place& at, Cursor& c, uint32_t type) {
  Loop loop;
  while (type != 0 && PeekU8(c) != 0 && MoreAt(at, c, loop)) {
    const int32_t size = static_cast<int32_t>(PeekU8(c)) * 4;
    Cursor header = TakeCursor(c, size);
    const Place in = Under(at, AddLine(at, Ahead(header, Left(header)), "Extension Header: %s", GtpExtensionName(type)));
    Extension extension{};
    ShowRows<Extension>(in, header, kLength, extension);
    Cursor body = TakeCursor(header, size - 2);
    ShowChoice<Extension>(in, body, FindChoice<Extension>(kExtensions, type), extension);
    extension.first = Field{};
    ShowRows<Extension>(in, header, kNext, extension);
    type = extension.first.value;
  }
}

}  // namespace qxview
