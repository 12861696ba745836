// Multicast listener discovery (RFC 2710, version 2: RFC 3810) and multicast router discovery (RFC 4286): which groups
// are listened to on this link, and who forwards them?
//
//   version 1   4  maximum response delay (16)   reserved (16)   8  multicast address (128)
//   query 2     as version 1, then 24  reserved (4), suppress (1), robustness (3)   25  interval code (8)
//               26  number of sources (16)   28  sources
//   report 2    4  reserved (16)   number of records (16)   8  records: type (8), auxiliary words (8),
//               number of sources (16), multicast address (128), sources, auxiliary data
#include "decoders/net/icmpv6.h"

namespace qxview {
namespace {

constexpr int32_t kAddressSize = 16;

// A code whose high bit makes it a small floating-point number: a 1 and `fractionBits` of fraction, 3 bits of exponent.
uint32_t ExpandCode(uint32_t code, int32_t fractionBits) {
  if (!(code >> (fractionBits + 3))) return code;
  const uint32_t fraction = (code & ((1u << fractionBits) - 1)) | 1u << fractionBits;
  return fraction << ((code >> fractionBits & 7) + 3);
}

// As many addresses as are told and there.
void AddSources(const Place& in, Cursor& c, uint32_t count) {
  Loop loop;
  for (uint32_t i = 0; i < count && Left(c) >= kAddressSize && MoreAt(in, c, loop); ++i) {
    const Field source = TakeBytes(c, kAddressSize);
    AddLine(in, source, "Source Address %u: %s", i + 1, IPv6Text(source.bytes));
  }
}

void AddReservedHalf(const Place& in, Cursor& c) {
  const Field reserved = TakeU16(c);
  AddLine(in, reserved, "Reserved: 0x%.04X", reserved.value);
}

void AddGroup(const Place& in, Cursor& c) {
  const Field group = AddAddress(in, c, "Multicast Address");
  if (group.here) AppendToParent(in, group, ", %s", IPv6Text(group.bytes));
}

void DecodeRecord(const Place& in, Cursor& c) {
  constexpr auto kRecordNames = SortedNames({{1, "Mode Is Include"}, {2, "Mode Is Exclude"},
                                             {3, "Change to Include Mode"}, {4, "Change to Exclude Mode"},
                                             {5, "Allow New Sources"}, {6, "Block Old Sources"}});
  const Cursor start = c;
  const Field type = TakeU8(c);
  const char* name = LookupName(kRecordNames, type.value);
  const LineHandle line = AddLine(in, type, "Multicast Address Record: %s", name);
  const Place record = Under(in, line);
  AddLine(record, type, "Record Type: %u = %s", type.value, name);
  const Field auxiliary = TakeU8(c);
  AddLine(record, auxiliary, "Auxiliary Data Length: %u * 4 = %u bytes", auxiliary.value, auxiliary.value * 4);
  const Field count = TakeU16(c);
  AddLine(record, count, "Number of Sources: %u", count.value);
  AddGroup(record, c);
  AddSources(record, c, count.value);
  AddBlock(record, auxiliary.value > 0 ? TakeBytes(c, auxiliary.value * 4) : Field{}, "Auxiliary Data");
  SetRange(in, line, start.offset, c.offset - start.offset);
}

}  // namespace

void DecodeListenerQuery(const Place& in, Cursor& c, Icmpv6Message&) {
  constexpr int32_t kVersion2Body = 24;   // behind the checksum
  const bool version2 = Left(c) >= kVersion2Body;
  const Field delay = TakeU16(c);
  if (version2) {
    AddLine(in, delay, "Maximum Response Code: %u (%u ms)", delay.value, ExpandCode(delay.value, 12));
  } else {
    AddLine(in, delay, "Maximum Response Delay: %u ms", delay.value);
  }
  AddReservedHalf(in, c);
  AddGroup(in, c);
  if (!version2) return;
  const Field flags = TakeU8(c);
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.02X", flags.value));
  AddFlag(bits, flags, 4, "Suppress Router-Side Processing");
  const BitPicture robustness = BitsOf(flags, 5, 3);
  AddBitLine(bits, flags, "%s: Querier's Robustness Variable = %u", robustness.picture, robustness.value);
  const Field interval = TakeU8(c);
  AddLine(in, interval, "Querier's Query Interval Code: %u (%u seconds)", interval.value,
          ExpandCode(interval.value, 4));
  const Field count = TakeU16(c);
  AddLine(in, count, "Number of Sources: %u", count.value);
  AddSources(in, c, count.value);
}

void DecodeListenerReport(const Place& in, Cursor& c, Icmpv6Message&) {
  const Field delay = TakeU16(c);
  AddLine(in, delay, "Maximum Response Delay: %u ms", delay.value);
  AddReservedHalf(in, c);
  AddGroup(in, c);
}

void DecodeListenerReport2(const Place& in, Cursor& c, Icmpv6Message&) {
  AddReservedHalf(in, c);
  const Field count = TakeU16(c);
  AddLine(in, count, "Number of Multicast Address Records: %u", count.value);
  Loop loop;
  for (uint32_t i = 0; i < count.value && MoreAt(in, c, loop); ++i) DecodeRecord(in, c);
}

// The code of the message is the interval.
void DecodeMulticastRouterAdvertisement(const Place& in, Cursor& c, Icmpv6Message& message) {
  AppendToParent(in, Stated(0, 0), ", Interval = %u seconds", message.code);
  const Field interval = TakeU16(c);
  AddLine(in, interval, "Query Interval: %u seconds", interval.value);
  const Field robustness = TakeU16(c);
  AddLine(in, robustness, "Robustness Variable: %u", robustness.value);
}

}  // namespace qxview
