// Precision Time Protocol, version 2 (IEEE 1588-2008, IEEE 1588-2019) and its profile for bridged networks, gPTP
// (IEEE 802.1AS): what time is it, to the nanosecond? Over Ethernet and over UDP; version 1 is decoded elsewhere.
//
//   0                 1                2       4       5    6      8           16       20      30        32       33
//   SDO, type         minor, version   length  domain  SDO  flags  correction  of type  source  sequence  control  log
// interval
#include "decoders/link/ptp.h"

#include "core/line_facts.h"

namespace qxview {

int32_t DecodePtp1(const Place& at, Cursor c);

namespace {

enum MessageType : uint32_t {
  kSync = 0, kDelayRequest = 1, kPeerDelayRequest = 2, kPeerDelayResponse = 3, kFollowUp = 8, kDelayResponse = 9,
  kPeerDelayFollowUp = 10, kAnnounce = 11, kSignaling = 12, kManagement = 13,
};
constexpr int32_t kHeaderSize = 34;

constexpr auto kTypeNames = SortedNames({
    {0, "Sync"}, {1, "Delay_Req"}, {2, "Pdelay_Req"}, {3, "Pdelay_Resp"}, {8, "Follow_Up"}, {9, "Delay_Resp"},
    {10, "Pdelay_Resp_Follow_Up"}, {11, "Announce"}, {12, "Signaling"}, {13, "Management"}});
constexpr auto kControlNames = SortedNames({
    {0, "Sync"}, {1, "Delay_Req"}, {2, "Follow_Up"}, {3, "Delay_Resp"}, {4, "Management"}, {5, "Other"}});
constexpr auto kActionNames = SortedNames({{0, "GET"}, {1, "SET"}, {2, "RESPONSE"}, {3, "COMMAND"}, {4,
    "ACKNOWLEDGE"}});
constexpr auto kSdoNames = SortedNames({{0, "IEEE 1588"}, {1, "IEEE 802.1AS"}, {2, "Common Mean Link Delay Service"}});

struct Ptp {
  Field sdo, type, version, length, domain, sequence;
};

// The correction counts nanoseconds in units of 2^-16.
void ShowCorrection(const Place& in, const Field& field, const char* label) {
  const int64_t scaled = static_cast<int64_t>(uint64_t{PeekU32(field)} << 32 | PeekU32(field, 4));
  const uint64_t size = scaled < 0 ? ~static_cast<uint64_t>(scaled) + 1 : static_cast<uint64_t>(scaled);
  AddLine(in, field, "%s: %s%I64u.%06u ns", label, scaled < 0 ? "-" : "", size >> 16,
          static_cast<uint32_t>((size & 0xFFFF) * 1000000 >> 16));
}

constexpr auto kHeader = Rows<Ptp>({
    Word(1), Bits(0, 4, "Major SDO ID", kSdoNames).Into(&Ptp::sdo), Bits(4, 4, "Message Type",
    kTypeNames).Into(&Ptp::type),
    Word(1), Bits(0, 4, "Minor Version"), Bits(4, 4, "Version").Into(&Ptp::version),
    Number(2, "Message Length").Into(&Ptp::length), Number(1, "Domain Number").Into(&Ptp::domain), Number(1,
    "Minor SDO ID"),
    Hex(2, "Flags"), Flag(0, "Security"), Bits(1, 2, "Profile Specific"), Flag(5, "Unicast"), Flag(6, "Two Step"),
    Flag(7, "Alternate Master"), Flag(9, "Synchronization Uncertain"), Flag(10, "Frequency Traceable"),
    Flag(11, "Time Traceable"), Flag(12, "PTP Timescale"), Flag(13, "UTC Reasonable"), Flag(14, "Leap Second 59"),
    Flag(15, "Leap Second 61"), Shown(8, "Correction", ShowCorrection), Hex(4, "Message Type Specific"),
    Eui64("Source Clock Identity"), Number(2, "Source Port ID"), Number(2, "Sequence ID").Into(&Ptp::sequence),
    Number(1, "Control", kControlNames), Signed(1, "Log Message Interval")});

constexpr auto kOrigin = Rows<Ptp>({Number(6, "Origin Timestamp Seconds"), Number(4, "Origin Timestamp Nanoseconds")});
constexpr auto kPrecise = Rows<Ptp>({
    Number(6, "Precise Origin Timestamp Seconds"), Number(4, "Precise Origin Timestamp Nanoseconds")});
constexpr auto kReceived = Rows<Ptp>({
    Number(6, "Receive Timestamp Seconds"), Number(4, "Receive Timestamp Nanoseconds"),
    Eui64("Requesting Clock Identity"),
    Number(2, "Requesting Port ID")});
constexpr auto kPeerRequest = Rows<Ptp>({
    Number(6, "Origin Timestamp Seconds"), Number(4, "Origin Timestamp Nanoseconds"), Bytes(10, "Reserved")});
constexpr auto kPeerResponse = Rows<Ptp>({
    Number(6, "Request Receipt Timestamp Seconds"), Number(4, "Request Receipt Timestamp Nanoseconds"),
    Eui64("Requesting Clock Identity"), Number(2, "Requesting Port ID")});
constexpr auto kPeerFollowUp = Rows<Ptp>({
    Number(6, "Response Origin Timestamp Seconds"), Number(4, "Response Origin Timestamp Nanoseconds"),
    Eui64("Requesting Clock Identity"), Number(2, "Requesting Port ID")});
constexpr auto kAnnounceBody = Rows<Ptp>({
    Number(6, "Origin Timestamp Seconds"), Number(4, "Origin Timestamp Nanoseconds"),
    Signed(2, "Current UTC Offset", " seconds"), Number(1, "Reserved"), Number(1, "Grandmaster Priority 1"),
    Number(1, "Grandmaster Clock Class", kPtpClassNames), Hex(1, "Grandmaster Clock Accuracy", kPtpAccuracyNames),
    Number(2, "Grandmaster Clock Variance"), Number(1, "Grandmaster Priority 2"), Eui64("Grandmaster Identity"),
    Number(2, "Steps Removed"), Hex(1, "Time Source", kPtpSourceNames)});
constexpr auto kSignalingBody = Rows<Ptp>({Eui64("Target Clock Identity"), Number(2, "Target Port ID")});
constexpr auto kManagementBody = Rows<Ptp>({
    Eui64("Target Clock Identity"), Number(2, "Target Port ID"), Number(1, "Starting Boundary Hops"), Number(1,
    "Boundary Hops"),
    Word(1), Bits(0, 4, "Reserved"), Bits(4, 4, "Action", kActionNames), Number(1, "Reserved")});

RowSpan<Ptp> BodyOf(uint32_t type) {
  switch (type) {
    case kSync:
    case kDelayRequest: return kOrigin;
    case kPeerDelayRequest: return kPeerRequest;
    case kPeerDelayResponse: return kPeerResponse;
    case kFollowUp: return kPrecise;
    case kDelayResponse: return kReceived;
    case kPeerDelayFollowUp: return kPeerFollowUp;
    case kAnnounce: return kAnnounceBody;
    case kSignaling: return kSignalingBody;
    case kManagement: return kManagementBody;
    default: return {};
  }
}

}  // namespace

int32_t DecodePtp(const Place& at, Cursor c) {
  const uint32_t version = PeekU8(c, 1) & 15;
  if (PeekU16(c) == 1) return DecodePtp1(at, c);
  if (version != 2 || Left(c) < kHeaderSize) return 0;
  const Ptp ahead = PeekRows(c, kHeader);
  Cursor message = TakeCursor(c, ahead.length.value < kHeaderSize ? kHeaderSize : ahead.length.value);
  const Place in = Under(at, AddLine(at, Ahead(message, Left(message)), "PTP: %s, Domain %u, Sequence %u",
                                     LookupName(kTypeNames, ahead.type.value), ahead.domain.value,
                                     ahead.sequence.value));
  if (NobodyWants(in)) return 1;
  Ptp ptp = ShowRows(in, message, kHeader);
  ShowRows<Ptp>(in, message, BodyOf(ptp.type.value), ptp);
  if (Left(message) > 0) ShowPtpElements(in, message);
  message.ranShort = false;
  AddBlock(in, Rest(message), "PTP Data");
  AddBlock(in, Rest(c), "Padding");
  return 1;
}

}  // namespace qxview
