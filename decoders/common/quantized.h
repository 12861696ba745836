// Round trip times and rates that reliable multicast quantizes into an octet and two (RFC 5401 3.7.4, RFC 5740 4.2.3.1).
#pragma once
#include "core/rows.h"

namespace qxview {

struct QuantizedTimes {
  uint32_t micros[256];
};

// The first 31 count microseconds, the others stand a thirteenth of a natural logarithm apart below 1000 seconds.
consteval QuantizedTimes MakeQuantizedTimes() {
  constexpr double kStep = 0.92596107864231632;   // exp(-1/13)
  QuantizedTimes times{};
  double micros = 1e9;
  for (int32_t i = 255; i >= 31; --i, micros *= kStep) times.micros[i] = static_cast<uint32_t>(micros + 0.5);
  for (int32_t i = 30; i >= 0; --i) times.micros[i] = static_cast<uint32_t>(i + 1);
  return times;
}

inline void ShowQuantizedTime(const Place& in, const Field& field, const char* label) {
  static constexpr QuantizedTimes kTimes = MakeQuantizedTimes();
  const uint32_t quantized = PeekU8(field), micros = kTimes.micros[quantized];
  AddLine(in, field, "%s: %u = %u.%.06u seconds", label, quantized, micros / 1000000, micros % 1000000);
}
consteval RowData QuantizedTime(const char* label) { return Shown(1, label, ShowQuantizedTime); }

// Twelve bits of mantissa below 10, four of the exponent.
inline void ShowQuantizedRate(const Place& in, const Field& field, const char* label) {
  const uint32_t quantized = PeekU16(field);
  uint64_t rate = quantized >> 4;
  for (uint32_t i = quantized & 0xF; i > 0; --i) rate *= 10;
  rate = rate < (uint64_t{1} << 60) ? rate * 10 / 4096 : rate / 4096 * 10;
  AddLine(in, field, "%s: %u = %I64u bytes/s", label, quantized, rate);
}
consteval RowData QuantizedRate(const char* label) { return Shown(2, label, ShowQuantizedRate); }

}  // namespace qxview
