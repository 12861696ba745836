// The Network Time Protocol: what its files share.
#pragma once
#include "core/rows.h"

namespace qxview {

constexpr int32_t kPrivateNtpSize = 8;

constexpr auto kNtpLeapNames = SortedNames({
    {0, "No Warning"}, {1, "Last Minute of the Day Has 61 Seconds"}, {2, "Last Minute of the Day Has 59 Seconds"},
    {3, "Unknown (Clock Unsynchronized)"}});
constexpr auto kNtpModeNames = SortedNames({
    {0, "Reserved"}, {1, "Symmetric Active"}, {2, "Symmetric Passive"}, {3, "Client"}, {4, "Server"},
    {5, "Broadcast"}, {6, "Control Message"}, {7, "Private Use"}});
constexpr auto kNtpClockNames = SortedNames({
    {0, "Operating Within Nominals"}, {1, "Reply Timeout"}, {2, "Bad Reply Format"}, {3, "Hardware or Software Fault"},
    {4, "Propagation Failure"}, {5, "Bad Date Format or Value"}, {6, "Bad Time Format or Value"}});

struct Ntp {
  Field version, mode, stratum;
  Field operation, association, count;              // of control messages
  Field request, items, itemSize;                   // of private ones
};

// A message of mode 7.
void DecodePrivateNtp(const Place& in, Cursor& c, Ntp& ntp);

}  // namespace qxview
