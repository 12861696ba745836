// The records of sFlow samples: what a flow sample tells beside the header, and counters.
#pragma once
#include "core/rows.h"

namespace qxview::sflow {

inline constexpr auto kAddressTypeNames = SortedNames({{0, "Unknown"}, {1, "IPv4"}, {2, "IPv6"}});

// Formats of enterprise 0 that the samples of versions 2 and 4 hold as well.
constexpr uint32_t kSampledHeader = 1, kSampledIPv4 = 3, kSampledIPv6 = 4;

// The name of a record by its format: enterprise in the upper 20 bits, number below.
const char* RecordName(uint32_t format, bool isCounters);

// The lines of a format's word.
void AddFormat(const Place& in, const Field& format, uint32_t enterprise, uint32_t number, const char* name);

// What a record holds; the older versions leave some fields out.
void ShowFlowRecord(const Place& in, Cursor& c, uint32_t format, uint32_t version);
void ShowCounters(const Place& in, Cursor& c, uint32_t format);

}  // namespace qxview::sflow
