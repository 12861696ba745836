// Precision Time Protocol, version 1 (IEEE 1588-2002): a message tells all of the clock that sent it.
#include "decoders/link/ptp.h"

namespace qxview {
namespace {

enum Control : uint32_t { kSync = 0, kDelayRequest = 1, kFollowUp = 2, kDelayResponse = 3, kManagement = 4 };
constexpr int32_t kHeaderSize = 40;

constexpr auto kTypeNames = SortedNames({{1, "Event"}, {2, "General"}});
constexpr auto kControlNames = SortedNames({
    {0, "Sync"}, {1, "Delay_Req"}, {2, "Follow_Up"}, {3, "Delay_Resp"}, {4, "Management"}});
constexpr auto kKeyNames = SortedNames({
    {0, "NULL"}, {1, "OBTAIN_IDENTITY"}, {2, "CLOCK_IDENTITY"}, {3, "INITIALIZE_CLOCK"}, {4, "SET_SUBDOMAIN"},
    {5, "CLEAR_DESIGNATED_PREFERRED_MASTER"}, {6, "SET_DESIGNATED_PREFERRED_MASTER"}, {7, "GET_DEFAULT_DATA_SET"},
    {8, "DEFAULT_DATA_SET"}, {9, "UPDATE_DEFAULT_DATA_SET"}, {10, "GET_CURRENT_DATA_SET"}, {11, "CURRENT_DATA_SET"},
    {12, "GET_PARENT_DATA_SET"}, {13, "PARENT_DATA_SET"}, {14, "GET_PORT_DATA_SET"}, {15, "PORT_DATA_SET"},
    {16, "GET_GLOBAL_TIME_DATA_SET"}, {17, "GLOBAL_TIME_DATA_SET"}, {18, "UPDATE_GLOBAL_TIME_PROPERTIES"},
    {19, "GOTO_FAULTY_STATE"}, {20, "GET_FOREIGN_DATA_SET"}, {21, "FOREIGN_DATA_SET"}, {22, "SET_SYNC_INTERVAL"},
    {23, "DISABLE_PORT"}, {24, "ENABLE_PORT"}, {25, "DISABLE_BURST"}, {26, "ENABLE_BURST"}, {27, "SET_TIME"}});
constexpr auto kFlagNames = SortedNames({
    {0x01, "Leap Second 61"}, {0x02, "Leap Second 59"}, {0x04, "Boundary Clock"}, {0x08, "Assist"}, {0x10,
    "External Sync"},
    {0x20, "Parent Statistics"}, {0x40, "Sync Burst"}});

struct Ptp1 {
  Field control, sequence, length, key;
};
constexpr auto kHeader = Rows<Ptp1>({
    Number(2, "Version"), Number(2, "Network Version"), Utf8(16, "Subdomain"), Number(1, "Message Type", kTypeNames),
    Number(1, "Source Communication Technology", kPtp1TechnologyNames), Mac("Source UUID"), Number(2, "Source Port ID"),
    Number(2, "Sequence ID").Into(&Ptp1::sequence), Number(1, "Control", kControlNames).Into(&Ptp1::control),
    Number(1, "Reserved"), Flags(2, "Flags", kFlagNames), Number(4, "Reserved")});
constexpr auto kSyncBody = Rows<Ptp1>({
    Number(4, "Origin Timestamp Seconds"), Signed(4, "Origin Timestamp Nanoseconds"), Number(2, "Epoch Number"),
    Signed(2, "Current UTC Offset", " seconds"), Number(1, "Reserved"),
    Number(1, "Grandmaster Communication Technology", kPtp1TechnologyNames), Mac("Grandmaster UUID"), Number(2,
    "Grandmaster Port ID"),
    Number(2, "Grandmaster Sequence ID"), Number(3, "Reserved"), Number(1, "Grandmaster Clock Stratum", kPtp1StratumNames),
    Text(4, "Grandmaster Clock Identifier"), Number(2, "Reserved"), Signed(2, "Grandmaster Clock Variance"), Number(1,
    "Reserved"),
    Number(1, "Grandmaster Preferred", kFalseTrueNames), Number(1, "Reserved"),
    Number(1, "Grandmaster Is Boundary Clock", kFalseTrueNames), Number(3, "Reserved"), Signed(1, "Sync Interval"),
    Number(2, "Reserved"), Signed(2, "Local Clock Variance"), Number(2, "Reserved"), Number(2, "Local Steps Removed"),
    Number(3, "Reserved"), Number(1, "Local Clock Stratum", kPtp1StratumNames), Text(4, "Local Clock Identifier"),
    Number(1, "Reserved"),
    Number(1, "Parent Communication Technology", kPtp1TechnologyNames), Mac("Parent UUID"), Number(2, "Reserved"),
    Number(2, "Parent Port ID"), Number(2, "Reserved"), Signed(2, "Estimated Master Variance"), Signed(4,
    "Estimated Master Drift"),
    Number(3, "Reserved"), Number(1, "UTC Reasonable", kFalseTrueNames)});
constexpr auto kFollowUpBody = Rows<Ptp1>({
    Number(2, "Reserved"), Number(2, "Associated Sequence ID"), Number(4, "Precise Origin Timestamp Seconds"),
    Signed(4, "Precise Origin Timestamp Nanoseconds")});
constexpr auto kDelayBody = Rows<Ptp1>({
    Number(4, "Delay Receipt Timestamp Seconds"), Signed(4, "Delay Receipt Timestamp Nanoseconds"), Number(1,
    "Reserved"),
    Number(1, "Requesting Communication Technology", kPtp1TechnologyNames), Mac("Requesting UUID"), Number(2,
    "Requesting Port ID"),
    Number(2, "Requesting Sequence ID")});
constexpr auto kManagementBody = Rows<Ptp1>({
    Number(1, "Reserved"), Number(1, "Target Communication Technology", kPtp1TechnologyNames), Mac("Target UUID"),
    Number(2, "Target Port ID"), Number(2, "Starting Boundary Hops"), Number(2, "Boundary Hops"), Number(1, "Reserved"),
    Number(1, "Management Message Key", kKeyNames).Note(", %s").Into(&Ptp1::key), Number(2, "Reserved"),
    Number(2, "Parameter Length").Into(&Ptp1::length)});

RowSpan<Ptp1> BodyOf(uint32_t control) {
  switch (control) {
    case kSync:
    case kDelayRequest: return kSyncBody;
    case kFollowUp: return kFollowUpBody;
    case kDelayResponse: return kDelayBody;
    case kManagement: return kManagementBody;
    default: return {};
  }
}

}  // namespace

int32_t DecodePtp1(const Place& at, Cursor c) {
  if (Left(c) < kHeaderSize) return 0;
  const Ptp1 ahead = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "PTP Version 1: %s, Sequence %u",
                                     LookupName(kControlNames, ahead.control.value), ahead.sequence.value));
  Ptp1 ptp = ShowRows(in, c, kHeader);
  ShowRows<Ptp1>(in, c, BodyOf(ptp.control.value), ptp);
  if (ptp.control.value == kManagement && ptp.length.value) {
    Cursor parameters = TakeCursor(c, static_cast<int32_t>(ptp.length.value));
    ShowPtp1Parameters(in, parameters, ptp.key.value);
  }
  c.ranShort = false;
  AddBlock(in, Rest(c), "PTP Data");
  return 1;
}

}  // namespace qxview
