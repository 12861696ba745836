// The entry of datagrams of either IP version.
#pragma once
#include "core/decoder.h"

namespace qxview {

// Decodes a datagram: its header as a top line at the place, its payload one level deeper. A datagram of version 6 goes
// to the IPv6 decoder as it is. `label`, when there is one, is added to the top line's text at the end. Result: 0 when
// the datagram is too short or of no known version, otherwise the payload decoder's, or 1.
int32_t DecodeIpDatagram(const Place& at, Cursor c, const char* label);

// The same without a label.
int32_t DecodeIPv4(const Place& at, Cursor c);

// Of a frame whose lines nobody wants: records and dispatches a datagram as most are (no options, in one piece, all of it there,
// its checksum good, TCP or UDP in it). False, with nothing done, for any other.
bool PassPlainDatagram(const Place& at, Cursor c);

}  // namespace qxview
