// Entries of DNS sections: questions, and resource records with their data by type.
#include <cstring>

#include "decoders/app/dns.h"
#include "decoders/app/dns_data.h"
#include "decoders/app/dnscrypt.h"

namespace qxview {
namespace {

constexpr size_t kLongestSection = 40;
constexpr const char* kDataTitle = "DNS Data";

constexpr auto kTypeNames = SortedNames({
    {1, "Host Record (A)"}, {2, "Name Server (NS)"}, {5, "Alias (CNAME)"}, {6, "Start of Zone Authority (SOA)"},
    {12, "Reverse Lookup (PTR)"}, {13, "Host Information (HINFO)"}, {15, "Mail Exchanger (MX)"},
    {28, "All Associated Records (AAAA)"}, {33, "Service (SRV)"}, {251, "Incremental Zone Transfer (IXFR)"},
    {252, "Standard Zone Transfer (SXFR"},   // the parenthesis is open: users search for it as it stands
    {255, "All (ANY)"}});

const char* SectionLabel(const char* section) {
  return section && std::strlen(section) <= kLongestSection ? section : "Standard";
}

// The class by its name. In multicast DNS its top bit asks for an answer to the asker alone, or says that the record is
// all that there is of its kind; in options of EDNS the class is none.
void AddClass(const Place& in, Cursor& c, const DnsMessage& message, uint32_t type, bool isQuestion) {
  constexpr uint32_t kTopBit = 0x8000;
  if (type == kDnsTypeOpt && !isQuestion) return;   // with the time to live, by their own meanings
  const Field recordClass = TakeU16(c);
  const uint32_t number = message.isMulticast ? recordClass.value & ~kTopBit : recordClass.value;
  const char* name = DnsClassName(number);
  AppendToParent(in, recordClass, ", Class=%s", name);
  const Place under = Under(in, AddLine(in, recordClass, "Class: [0x%.04X] = %s", recordClass.value, name));
  if (!message.isMulticast) return;
  const auto [picture, isSet] = BitsOf(recordClass, 0, 1);
  AddBitLine(under, recordClass, "%s: %s = %s", picture, isQuestion ? "Unicast Response Wanted" : "Cache Flush",
             TrueOrFalse(isSet));
  const auto [rest, plain] = BitsOf(recordClass, 1, 15);
  AddBitLine(under, recordClass, "%s: Class = %u (%s)", rest, plain, name);
}

// Name, type and class of an entry. The entry's line takes their texts and grows by what they cover. Where one is
// missing the cursor is left short, which ends the message.
int32_t DecodeNameTypeClass(const Place& in, Cursor& c, DnsMessage& message, uint32_t* typeOut, bool isQuestion) {
  constexpr uint32_t kInternet = 1;
  const int32_t begin = c.offset;
  if (!DecodeDnsNameField(in, c, message, "Domain Name")) return 0;
  const Field type = TakeU16(c);
  const char* typeName =
      message.hasAllRecords ? DnsTypeName(type.value) : LookupName(kTypeNames, type.value, kUndefined);
  AppendToParent(in, type, ", Type=%s", typeName);
  AddLine(in, type, "Type: [0x%.04X] = %s", type.value, typeName);
  *typeOut = type.value;
  if (message.hasAllRecords) {
    AddClass(in, c, message, type.value, isQuestion);
    ExtendDecodeLineRange(in.view, in.tree, in.parent, c.offset - begin);
    return 1;
  }
  const Field recordClass = TakeU16(c);
  const bool isInternet = recordClass.value == kInternet;
  if (isInternet) {
    AppendToParent(in, recordClass, ", Class=Internet");
  } else {
    AppendToParent(in, recordClass, ", Class=0x%.04X", recordClass.value);
  }
  AddLine(in, recordClass, "Class: [0x%.04X] = %s", recordClass.value, isInternet ? "Internet" : "Reserved");
  ExtendDecodeLineRange(in.view, in.tree, in.parent, c.offset - begin);
  return 1;
}

// The byte `ahead` of the cursor: beyond the message from the frame where it has one, else 0.
uint32_t PeekByte(const Place& at, Cursor c, int32_t ahead) {
  c.ranShort = false;
  if (ahead < c.left) return PeekU8(c, ahead);
  const FrameRecord* frame = PacketOf(at).frame;
  if (!frame) return 0;
  const Cursor whole = MakeCursor(FrameData(frame), 0, static_cast<int32_t>(frame->capturedLength));
  const uintptr_t begin = reinterpret_cast<uintptr_t>(whole.at);
  const uintptr_t wanted = reinterpret_cast<uintptr_t>(c.at) + static_cast<uintptr_t>(ahead);
  const bool inFrame = wanted >= begin && wanted - begin < frame->capturedLength;
  return inFrame ? PeekU8(whole, static_cast<int32_t>(wanted - begin)) : 0;
}

// The time to live is read whole even where the message ends inside it.
void AddTimeToLive(const Place& in, Cursor& c) {
  uint32_t seconds = 0;
  for (int32_t i = 0; i < 4; ++i) seconds = seconds << 8 | PeekByte(in, c, i);
  AddLine(in, Stated(c.offset, 4), "TTL: %u Seconds", seconds);
  TakeBytes(c, c.left < 4 ? c.left : 4);
}

void DecodeHostAddresses(const Place& in, Cursor& data, const DnsMessage& message, bool answersQuery) {
  Loop loop;
  while (data.left >= 4 && MoreAt(in, data, loop)) {
    const Field address = TakeBytes(data, 4);
    const auto text = IPv4Text(address.bytes);
    if (answersQuery) AppendToLine(in, message.topLine, "=%s", text);
    AppendToParent(in, address, ", %s", text);
    AddLine(in, address, "Host Address: %s", text);
  }
}

// A name of NS, CNAME and PTR data: one title serves all three.
int32_t DecodeDataName(const Place& in, Cursor& data, DnsMessage& message, bool answersQuery) {
  if (answersQuery) {
    DnsNameText name;
    if (!ExpandNameAt(message, data, name)) return 0;
    AppendToLine(in, message.topLine, ", %s", name);
  }
  AppendToLine(in, in.parent, ", ");
  return DecodeDnsNameField(in, data, message, "Name Server");
}

int32_t DecodeZoneAuthority(const Place& in, Cursor& data, DnsMessage& message) {
  static constexpr const char* kNames[] = {"Primary name Server", "Authority's Mailbox"};
  static constexpr const char* kTimes[] = {"Refresh Interval", "Retry Interval", "Expiration Limit", "Minimum TTL"};
  for (const char* title : kNames) {
    if (data.left < 1) return 1;
    AppendToLine(in, in.parent, ", ");
    if (!DecodeDnsNameField(in, data, message, title)) return 0;
  }
  if (data.left < 4) return 1;
  const Field serial = TakeU32(data);
  AddLine(in, serial, "Serial Number: 0x%.08X", serial.value);
  for (const char* title : kTimes) {
    if (data.left < 4) return 1;
    const Field seconds = TakeU32(data);
    AddLine(in, seconds, "%s: %u", title, seconds.value);
  }
  return 1;
}

// AAAA data are all that is left of the message, whatever length the record gives: traces are compared with those of
// earlier releases, where an AAAA record has always ended the walk.
void DecodeIPv6Address(const Place& in, Cursor& c) {
  const Field data = Rest(c);
  if (data.length != 16) {
    AddBlock(in, data, kDataTitle);
    return;
  }
  const LineHandle line = AddLine(in, data, "IPv6 Address");
  const Place under = Under(in, line);
  const auto text = DnsIPv6Text(data.bytes);
  AddLine(under, data, "Type : %s", DnsIPv6Class(data.bytes));
  AddLine(under, data, "Address : %s", text);
  AppendToLine(in, line, ":%s", text);
}

int32_t DecodeRecordData(const Place& in, Cursor& data, DnsMessage& message, uint32_t type, bool answersQuery) {
  switch (type) {
    case kDnsTypeA:
      DecodeHostAddresses(in, data, message, answersQuery);
      break;
    case kDnsTypeNs:
    case kDnsTypeCname:
    case kDnsTypePtr:
      if (!DecodeDataName(in, data, message, answersQuery)) return 0;
      break;
    case kDnsTypeSoa:
      if (!DecodeZoneAuthority(in, data, message)) return 0;
      break;
    default:
      if (type == kDnsTypeTxt) NoteDnscryptCertificate(in, data);
      if (message.hasAllRecords) return DecodeDnsData(in, data, message, type);
      AddBlock(in, Rest(data), kDataTitle);
      return 1;
  }
  AddBlock(in, Rest(data), "Additional DNS Data");
  return 1;
}

}  // namespace

int32_t DecodeDnsQuestion(const Place& at, Cursor& c, DnsMessage& message, const char* section, uint32_t number) {
  const Place in = Under(at, AddLine(at, Ahead(c, 0), "%s Record #%u:", SectionLabel(section), number));
  if (!message.isResponse) {
    DnsNameText name;
    if (!ExpandNameAt(message, c, name)) {
      AddBlock(in, Rest(c), "Malformed DNS Name Field Data");
      return 0;
    }
    if (name.text[0]) AppendToLine(at, message.topLine, ", %s", name);
  }
  uint32_t type = 0;
  return DecodeNameTypeClass(in, c, message, &type, true);
}

int32_t DecodeDnsResourceRecord(const Place& at, Cursor& c, DnsMessage& message, const char* section, uint32_t number,
                                bool answersQuery) {
  // The 6 bytes are those of TTL and data length; the other parts extend the range.
  const Place in = Under(at, AddLine(at, Stated(c.offset, 6), "%s Record #%u:", SectionLabel(section), number));
  if (answersQuery) {
    DnsNameText owner;
    if (!ExpandNameAt(message, c, owner)) return 0;
    if (owner.text[0]) AppendToLine(at, message.topLine, ", %s", owner);
  }
  uint32_t type = 0;
  if (!DecodeNameTypeClass(in, c, message, &type, false)) return 0;
  if (Left(c) < 1) return 1;
  if (message.hasAllRecords && type == kDnsTypeOpt) {
    DecodeDnsOptHead(in, c);
  } else {
    AddTimeToLive(in, c);
  }
  const Field dataLength = TakeU16(c);
  AddLine(in, dataLength, "Data Length: %u", dataLength.value);
  ExtendDecodeLineRange(in.view, in.tree, in.parent, static_cast<int32_t>(dataLength.value));
  if (dataLength.value < 1 || c.left < 1) return 1;
  if (type == kDnsTypeAaaa && !message.hasAllRecords) {
    DecodeIPv6Address(in, c);
    return 1;
  }
  Cursor data = TakeCursor(c, dataLength.value);
  return DecodeRecordData(in, data, message, type, answersQuery);
}

}  // namespace qxview
