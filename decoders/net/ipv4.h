// The entry of datagrams of either IP version.
#pragma once
#include "core/decoder.h"
#include "core/internet_checksum.h"

namespace qxview {

// Decodes a datagram: its header as a top line at the place, its payload one level deeper. A datagram of version 6 goes
// to the IPv6 decoder as it is. `label`, when there is one, is added to the top line's text at the end. Result: 0 when
// the datagram is too short or of no known version, otherwise the payload decoder's, or 1.
int32_t DecodeIpDatagram(const Place& at, Cursor c, const char* label);

// The same without a label.
int32_t DecodeIPv4(const Place& at, Cursor c);

constexpr int32_t kIPv4HeaderLength = 20;   // without options

// Whether a datagram of version 4 is as most are: no options, in one piece, with something in it, all of it there, its checksum
// good or left to the adapter.
inline bool IsPlainIPv4(const Cursor& c) {
  constexpr uint32_t kVersionAndLength = 0x45, kFragment = 0x3FFF;
  if (Left(c) < kIPv4HeaderLength || PeekU8(c) != kVersionAndLength || (PeekU16(c, 6) & kFragment)) return false;
  const int32_t behind = static_cast<int32_t>(PeekU16(c, 2)) - kIPv4HeaderLength;
  if (behind < 1 || behind > Left(c) - kIPv4HeaderLength) return false;
  return PeekU16(c, 10) == 0 || SumWords(0, c.at, kIPv4HeaderLength) == 0xFFFF;
}

// Of a frame whose lines nobody wants: records and dispatches a plain datagram of TCP or UDP. False, with nothing done, for any
// other.
bool PassPlainDatagram(const Place& at, Cursor c);

}  // namespace qxview
