// The Time Synchronization Protocol (TSP) of timed (4.3BSD System Manager's Manual, "The Berkeley UNIX Time
// Synchronization Protocol"): which host of the network leads, and how far are the others off?
//
//   type (1)   version (1)   sequence (2)   seconds (4) and microseconds (4), or hops (1)   name, ended by a zero
#include "core/rows.h"

namespace qxview {
namespace {

constexpr auto kTypeNames = SortedNames({
    {1, "ADJTIME"}, {2, "ACK"}, {3, "MASTERREQ"}, {4, "MASTERACK"}, {5, "SETTIME"}, {6, "MASTERUP"}, {7, "SLAVEUP"},
    {8, "ELECTION"}, {9, "ACCEPT"}, {10, "REFUSE"}, {11, "CONFLICT"}, {12, "RESOLVE"}, {13, "QUIT"}, {14, "DATE"},
    {15, "DATEREQ"}, {16, "DATEACK"}, {17, "TRACEON"}, {18, "TRACEOFF"}, {19, "MSITE"}, {20, "MSITEREQ"}, {21, "TEST"},
    {22, "SETDATE"}, {23, "SETDATEREQ"}, {24, "LOOP"}});
constexpr uint32_t kAdjustTime = 1, kSetTime = 5, kSetDate = 22, kSetDateRequest = 23, kLoopPacket = 24;

constexpr auto kHeader = Rows<NoValues>({
    Number(1, "Type", kTypeNames), Number(1, "Version"), Number(2, "Sequence")});
constexpr auto kAdjustment = Rows<NoValues>({Signed(4, "Seconds"), Signed(4, "Microseconds")});
constexpr auto kDate = Rows<NoValues>({UnixTime(4, "Time"), Number(4, "Microseconds")});
constexpr auto kHops = Rows<NoValues>({Number(1, "Hop Count"), Bytes(7, "Unused")});
constexpr auto kUnused = Rows<NoValues>({Bytes(8, "Unused")});
constexpr auto kName = Rows<NoValues>({Terminated(Text(0, "Machine Name")).Note(", %s")});

RowSpan<NoValues> MiddleRows(uint32_t type) {
  switch (type) {
    case kAdjustTime: return kAdjustment;
    case kSetTime:
    case kSetDate:
    case kSetDateRequest: return kDate;
    case kLoopPacket: return kHops;
    default: return kUnused;
  }
}

}  // namespace

int32_t DecodeTimed(const Place& at, Cursor c) {
  constexpr int32_t kLeast = 12;
  const uint32_t type = PeekU8(c);
  if (Left(c) < kLeast || type < kAdjustTime || type > kLoopPacket) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "TSP: %s", LookupName(kTypeNames, type)));
  NoValues none;
  ShowRows<NoValues>(in, c, kHeader, none);
  ShowRows<NoValues>(in, c, MiddleRows(type), none);
  ShowRows<NoValues>(in, c, kName, none);
  const Field padding = Rest(c);
  AddLine(in, padding, "Padding: %s", HexText(padding));
  return 1;
}

}  // namespace qxview
