// What the management messages of version 1 of the Precision Time Protocol hold (IEEE 1588-2002 clause 7.12): data sets in
// words of four octets, whose fields stand at their end.
#include "core/elements.h"
#include "decoders/link/ptp.h"

namespace qxview {
namespace {

using Set = NoValues;

constexpr auto kStateNames = SortedNames({
    {0, "Initializing"}, {1, "Faulty"}, {2, "Disabled"}, {3, "Listening"}, {4, "Pre-Master"}, {5, "Master"}, {6, "Passive"},
    {7, "Uncalibrated"}, {8, "Slave"}});

constexpr auto kIdentity = Rows<Set>({
    Number(3, "Reserved"), Number(1, "Clock Communication Technology", kPtp1TechnologyNames), Mac("Clock UUID"),
    Number(4, "Reserved"), Number(2, "Clock Port ID"), Bytes(48, "Manufacturer Identity")});
constexpr auto kInitialize = Rows<Set>({Number(2, "Reserved"), Number(2, "Initialization Key")});
constexpr auto kSubdomain = Rows<Set>({Utf8(16, "Subdomain Name")});
constexpr auto kDefault = Rows<Set>({
    Number(3, "Reserved"), Number(1, "Clock Communication Technology", kPtp1TechnologyNames), Mac("Clock UUID"),
    Number(4, "Reserved"), Number(2, "Clock Port ID"), Number(3, "Reserved"), Number(1, "Clock Stratum", kPtp1StratumNames),
    Text(4, "Clock Identifier"), Number(2, "Reserved"), Number(2, "Clock Variance"), Number(3, "Reserved"),
    Number(1, "Follow-Up Capable", kFalseTrueNames), Number(3, "Reserved"), Number(1, "Preferred", kFalseTrueNames),
    Number(3, "Reserved"), Number(1, "Initializable", kFalseTrueNames), Number(3, "Reserved"),
    Number(1, "External Timing", kFalseTrueNames), Number(3, "Reserved"), Number(1, "Is Boundary Clock", kFalseTrueNames),
    Number(3, "Reserved"), Signed(1, "Sync Interval"), Utf8(16, "Subdomain Name"), Number(2, "Reserved"),
    Number(2, "Number of Ports"), Number(2, "Reserved"), Number(2, "Number of Foreign Records")});
constexpr auto kUpdateDefault = Rows<Set>({
    Number(3, "Reserved"), Number(1, "Clock Stratum", kPtp1StratumNames), Text(4, "Clock Identifier"), Number(2, "Reserved"),
    Number(2, "Clock Variance"), Number(3, "Reserved"), Number(1, "Preferred", kFalseTrueNames), Number(3, "Reserved"),
    Signed(1, "Sync Interval"), Utf8(16, "Subdomain Name")});
constexpr auto kCurrent = Rows<Set>({
    Number(2, "Reserved"), Number(2, "Steps Removed"), Number(4, "Offset from Master Seconds"),
    Signed(4, "Offset from Master Nanoseconds"), Number(4, "One-Way Delay Seconds"), Signed(4, "One-Way Delay Nanoseconds")});
constexpr auto kParent = Rows<Set>({
    Number(3, "Reserved"), Number(1, "Parent Communication Technology", kPtp1TechnologyNames), Mac("Parent UUID"),
    Number(4, "Reserved"), Number(2, "Parent Port ID"), Number(2, "Reserved"), Number(2, "Parent Last Sync Sequence Number"),
    Number(3, "Reserved"), Number(1, "Parent Follow-Up Capable", kFalseTrueNames), Number(3, "Reserved"),
    Number(1, "Parent External Timing", kFalseTrueNames), Number(2, "Reserved"), Number(2, "Parent Variance"),
    Number(3, "Reserved"), Number(1, "Parent Statistics", kFalseTrueNames), Number(2, "Reserved"),
    Signed(2, "Observed Variance"), Signed(4, "Observed Drift"), Number(3, "Reserved"),
    Number(1, "UTC Reasonable", kFalseTrueNames), Number(3, "Reserved"),
    Number(1, "Grandmaster Communication Technology", kPtp1TechnologyNames), Mac("Grandmaster UUID"), Number(4, "Reserved"),
    Number(2, "Grandmaster Port ID"), Number(3, "Reserved"), Number(1, "Grandmaster Stratum", kPtp1StratumNames),
    Text(4, "Grandmaster Identifier"), Number(2, "Reserved"), Signed(2, "Grandmaster Variance"), Number(3, "Reserved"),
    Number(1, "Grandmaster Preferred", kFalseTrueNames), Number(3, "Reserved"),
    Number(1, "Grandmaster Is Boundary Clock", kFalseTrueNames), Number(2, "Reserved"),
    Number(2, "Grandmaster Sequence Number")});
constexpr auto kPort = Rows<Set>({
    Number(2, "Reserved"), Number(2, "Returned Port Number"), Number(3, "Reserved"), Number(1, "Port State", kStateNames),
    Number(2, "Reserved"), Number(2, "Last Sync Event Sequence Number"), Number(2, "Reserved"),
    Number(2, "Last General Event Sequence Number"), Number(3, "Reserved"),
    Number(1, "Port Communication Technology", kPtp1TechnologyNames), Mac("Port UUID"), Number(4, "Reserved"),
    Number(2, "Port ID"), Number(3, "Reserved"), Number(1, "Burst Enabled", kFalseTrueNames), Number(1, "Reserved"),
    Number(1, "Subdomain Address Octets"), Number(1, "Event Port Address Octets"), Number(1, "General Port Address Octets"),
    Bytes(4, "Subdomain Address"), Number(2, "Reserved"), Bytes(2, "Event Port Address"), Number(2, "Reserved"),
    Bytes(2, "General Port Address")});
constexpr auto kGlobalTime = Rows<Set>({
    Number(4, "Local Time Seconds"), Signed(4, "Local Time Nanoseconds"), Number(2, "Reserved"),
    Signed(2, "Current UTC Offset", " seconds"), Number(3, "Reserved"), Number(1, "Leap Second 59", kFalseTrueNames),
    Number(3, "Reserved"), Number(1, "Leap Second 61", kFalseTrueNames), Number(2, "Reserved"), Number(2, "Epoch Number")});
constexpr auto kUpdateTime = Rows<Set>({
    Number(2, "Reserved"), Signed(2, "Current UTC Offset", " seconds"), Number(3, "Reserved"),
    Number(1, "Leap Second 59", kFalseTrueNames), Number(3, "Reserved"), Number(1, "Leap Second 61", kFalseTrueNames),
    Number(2, "Reserved"), Number(2, "Epoch Number")});
constexpr auto kGetForeign = Rows<Set>({Number(2, "Reserved"), Number(2, "Record Key")});
constexpr auto kForeign = Rows<Set>({
    Number(2, "Reserved"), Number(2, "Returned Port Number"), Number(2, "Reserved"), Number(2, "Returned Record Number"),
    Number(3, "Reserved"), Number(1, "Foreign Master Communication Technology", kPtp1TechnologyNames),
    Mac("Foreign Master UUID"), Number(4, "Reserved"), Number(2, "Foreign Master Port ID"), Number(2, "Reserved"),
    Number(2, "Foreign Master Syncs")});
constexpr auto kInterval = Rows<Set>({Number(2, "Reserved"), Signed(2, "Sync Interval")});
constexpr auto kTime = Rows<Set>({Number(4, "Local Time Seconds"), Signed(4, "Local Time Nanoseconds")});

// By the management message key; those without parameters have no row.
constexpr auto kSets = Choices<Set>({
    {2, "", kIdentity}, {3, "", kInitialize}, {4, "", kSubdomain}, {8, "", kDefault}, {9, "", kUpdateDefault},
    {11, "", kCurrent}, {13, "", kParent}, {15, "", kPort}, {17, "", kGlobalTime}, {18, "", kUpdateTime},
    {20, "", kGetForeign}, {21, "", kForeign}, {22, "", kInterval}, {27, "", kTime}});

}  // namespace

void ShowPtp1Parameters(const Place& in, Cursor& c, uint32_t key) {
  const Choice<Set>* set = FindChoice<Set>(kSets, key);
  NoValues none;
  if (set) ShowRows<Set>(in, c, set->rows, none);
  c.ranShort = false;
  AddBlock(in, Rest(c), "Parameters");
}

}  // namespace qxview
