#include "decoders/message_lengths.h"

#include "decoders/app/tls_record.h"
#include "decoders/common/ber_reader.h"

namespace qxview {
namespace {

constexpr int32_t kMostMessage = 1 << 24;   // what is longer is taken for no message

int32_t Checked(int64_t length) { return length > kMostMessage ? kNoMessage : static_cast<int32_t>(length); }

// The next element of the basic encoding rules, of at most four octets of length.
int32_t LengthOfBer(const Cursor& c) {
  if (Left(c) < 2) return 0;
  const uint32_t first = PeekU8(c, 1);
  if (first < 0x80) return 2 + static_cast<int32_t>(first);
  const int32_t octets = static_cast<int32_t>(first & 0x7F);
  if (octets < 1 || octets > 4) return kNoMessage;
  return Left(c) < 2 + octets ? 0 : PeekBer(c).here ? Checked(PeekBer(c).size) : kNoMessage;
}

// Messages that are a sequence, a number first and then what `goesOn` knows: others stand within them, and a segment may
// begin with one of those.
int32_t LengthOfNumberedSequence(const Cursor& c, bool (*goesOn)(uint32_t tag)) {
  constexpr uint32_t kInteger = 2;
  if (PeekU8(c) != kAsnSequence) return kNoMessage;
  const int32_t length = LengthOfBer(c), header = 2 + (PeekU8(c, 1) < 0x80 ? 0 : static_cast<int32_t>(PeekU8(c, 1) & 0x7F));
  if (length > 0 && length <= header) return kNoMessage;   // empty
  if (length <= 0 || Left(c) < header + 2) return length;
  const int32_t next = header + 2 + static_cast<int32_t>(PeekU8(c, header + 1));
  const bool is = PeekU8(c, header) == kInteger && (next >= length || Left(c) <= next || goesOn(PeekU8(c, next)));
  return is ? length : kNoMessage;
}
bool IsOperation(uint32_t tag) { return (tag & 0xC0) == 0x40; }                    // of LDAP: the application's class
bool IsCommunity(uint32_t tag) { return tag == 0x04 || tag == kAsnSequence; }      // or version 3's header

}  // namespace

int32_t LengthOfDnsOverTcp(const Cursor& c) {
  constexpr uint32_t kHeader = 12, kHighestOperation = 6;
  if (Left(c) < 2) return 0;
  if (PeekU16(c) < kHeader || (PeekU16(c, 4) >> 11 & 15) > kHighestOperation) return kNoMessage;
  return 2 + static_cast<int32_t>(PeekU16(c));
}

int32_t LengthOfDceRpc(const Cursor& c) {
  constexpr uint32_t kVersion = 5, kLastType = 19, kHeader = 16, kLittleEndian = 0x10;
  if (PeekU8(c) != kVersion || PeekU8(c, 1) > 1 || PeekU8(c, 2) > kLastType) return kNoMessage;
  if (Left(c) < 10) return 0;
  if ((PeekU8(c, 4) & ~kLittleEndian) != 0 || PeekU8(c, 5) > 3 || PeekU16(c, 6) != 0) return kNoMessage;
  const uint32_t length = PeekU8(c, 4) & kLittleEndian ? PeekLittleU16(c, 8) : PeekU16(c, 8);
  return length < kHeader ? kNoMessage : static_cast<int32_t>(length);
}

int32_t LengthOfNetBiosSession(const Cursor& c) {
  constexpr uint32_t kMessage = 0, kRequest = 0x81, kKeepAlive = 0x85;
  const uint32_t type = PeekU8(c);
  if ((type != kMessage && (type < kRequest || type > kKeepAlive)) || PeekU8(c, 1) > 1) return kNoMessage;
  if (Left(c) < 4) return 0;
  const int32_t length = static_cast<int32_t>(PeekU24(c, 1) & 0x1FFFF);
  return type == kMessage && length == 0 ? kNoMessage : 4 + length;   // zeros within another message
}

int32_t LengthOfSmbOverTcp(const Cursor& c) {
  constexpr uint32_t kMessage = 0, kKeepAlive = 0x85, kFirstMarker = 0xFC;
  if (PeekU8(c) != kMessage && PeekU8(c) != kKeepAlive) return kNoMessage;
  if (Left(c) < 4 || (Left(c) < 8 && PeekU24(c, 1) > 0)) return 0;
  const bool marked = PeekU8(c, 4) >= kFirstMarker && PeekIs(c, 5, "SMB");
  const bool isEmpty = PeekU8(c) == kKeepAlive && PeekU24(c, 1) == 0;
  return marked || isEmpty ? 4 + static_cast<int32_t>(PeekU24(c, 1)) : kNoMessage;
}

int32_t LengthOfLdap(const Cursor& c) {
  if (PeekU8(c) == kAsnSequence) return LengthOfNumberedSequence(c, IsOperation);
  if (PeekU8(c) != 0) return LengthOfTlsRecord(c);   // behind a StartTLS
  return Left(c) < 4 ? 0 : PeekU32(c) > 0 ? 4 + static_cast<int32_t>(PeekU32(c)) : kNoMessage;   // a SASL buffer
}

int32_t LengthOfKerberosOverTcp(const Cursor& c) {
  constexpr uint32_t kMost = 1 << 20;
  if (Left(c) < 4) return 0;
  return PeekU32(c) == 0 || PeekU32(c) > kMost ? kNoMessage : 4 + static_cast<int32_t>(PeekU32(c));
}

int32_t LengthOfSnmpOverTcp(const Cursor& c) { return LengthOfNumberedSequence(c, IsCommunity); }

int32_t LengthOfSmux(const Cursor& c) {
  constexpr uint32_t kApplication = 0x40, kContext = 0xA0;
  const uint32_t tag = PeekU8(c);
  const bool known = (tag & 0xC0) == kApplication ? (tag & 0x1F) <= 4 : tag >= kContext && tag <= kContext + 8;
  return known ? LengthOfBer(c) : kNoMessage;
}

int32_t LengthOfDiameter(const Cursor& c) {
  constexpr uint32_t kHeader = 20;
  if (PeekU8(c) != 1) return kNoMessage;
  if (Left(c) < 5) return 0;
  const uint32_t length = PeekU24(c, 1);
  return length < kHeader || length % 4 != 0 || (PeekU8(c, 4) & 0x0F) != 0 ? kNoMessage : static_cast<int32_t>(length);
}

int32_t LengthOfAgentX(const Cursor& c) {
  constexpr uint32_t kLastType = 18, kNetworkByteOrder = 0x10;
  if (PeekU8(c) != 1 || PeekU8(c, 1) > kLastType || PeekU8(c, 3) != 0) return kNoMessage;
  if (Left(c) < 20) return 0;
  const uint32_t payload = PeekU8(c, 2) & kNetworkByteOrder ? PeekU32(c, 16) : PeekLittleU32(c, 16);
  return payload % 4 == 0 ? Checked(int64_t{20} + payload) : kNoMessage;
}

int32_t LengthOfIpfix(const Cursor& c) {
  constexpr uint32_t kVersion = 10, kHeader = 16;
  if (Left(c) < 4) return 0;
  return PeekU16(c) != kVersion || PeekU16(c, 2) < kHeader ? kNoMessage : static_cast<int32_t>(PeekU16(c, 2));
}

int32_t LengthOfTacacsPlus(const Cursor& c) {
  constexpr uint32_t kMajorVersion = 0xC, kLastType = 3, kMost = 1 << 16;
  if (PeekU8(c) >> 4 != kMajorVersion || PeekU8(c, 1) > kLastType) return kNoMessage;
  return Left(c) < 12 ? 0 : PeekU32(c, 8) > kMost ? kNoMessage : 12 + static_cast<int32_t>(PeekU32(c, 8));
}

int32_t LengthOfLdp(const Cursor& c) {
  constexpr uint32_t kVersion = 1, kLeast = 6;   // of what the length counts
  constexpr int32_t kUncounted = 4;
  if (Left(c) < kUncounted) return 0;
  const uint32_t length = PeekU16(c, 2);
  return PeekU16(c) != kVersion || length < kLeast ? kNoMessage : kUncounted + static_cast<int32_t>(length);
}

int32_t LengthOfBgp(const Cursor& c) {
  constexpr uint8_t kMarker[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  constexpr int32_t kHeader = 19;
  constexpr uint32_t kLastType = 6;
  if (Left(c) < kHeader) return PeekU8(c) == kMarker[0] ? 0 : kNoMessage;
  const uint32_t length = PeekU16(c, sizeof kMarker), type = PeekU8(c, kHeader - 1);
  return PeekIs(c, 0, kMarker) && length >= kHeader && type > 0 && type <= kLastType ? static_cast<int32_t>(length) : kNoMessage;
}

int32_t LengthOfMsdp(const Cursor& c) {
  constexpr uint32_t kLastType = 7, kHeader = 3;
  if (PeekU8(c) == 0 || PeekU8(c) > kLastType) return kNoMessage;
  if (Left(c) < 3) return 0;
  return PeekU16(c, 1) < kHeader ? kNoMessage : static_cast<int32_t>(PeekU16(c, 1));
}

int32_t LengthOfDlep(const Cursor& c) {
  constexpr uint32_t kLastType = 16;
  if (Left(c) < 4) return 0;
  return PeekU16(c) == 0 || PeekU16(c) > kLastType ? kNoMessage : 4 + static_cast<int32_t>(PeekU16(c, 2));
}

int32_t LengthOfRpkiRtr(const Cursor& c) {
  constexpr uint32_t kLastVersion = 2, kLastType = 11, kUnused = 5, kHeader = 8, kMost = 1 << 17;
  const uint32_t type = PeekU8(c, 1);
  if (PeekU8(c) > kLastVersion || type > kLastType || type == kUnused) return kNoMessage;
  if (Left(c) < 8) return 0;
  const uint32_t length = PeekU32(c, 4);
  return length < kHeader || length > kMost ? kNoMessage : static_cast<int32_t>(length);
}

int32_t LengthOfBmp(const Cursor& c) {
  constexpr uint32_t kVersion = 3, kHeader = 6, kMost = 1 << 20, kLastType = 6;
  if (PeekU8(c) != kVersion) return kNoMessage;
  if (Left(c) < 6) return 0;
  const uint32_t length = PeekU32(c, 1);
  return length < kHeader || length > kMost || PeekU8(c, 5) > kLastType ? kNoMessage : static_cast<int32_t>(length);
}

int32_t LengthOfPcep(const Cursor& c) {
  constexpr uint32_t kVersion = 1, kLastType = 13;
  if (PeekU8(c) >> 5 != kVersion || PeekU8(c, 1) > kLastType) return kNoMessage;
  if (Left(c) < 4) return 0;
  const uint32_t length = PeekU16(c, 2);
  return length < 4 || length % 4 != 0 ? kNoMessage : static_cast<int32_t>(length);
}

int32_t LengthOfOpenVpnOverTcp(const Cursor& c) {
  constexpr int32_t kLengthSize = 2;
  constexpr uint32_t kLastOpcode = 11;
  if (Left(c) <= kLengthSize) return 0;
  const uint32_t opcode = PeekU8(c, kLengthSize) >> 3;
  return PeekU16(c) == 0 || opcode == 0 || opcode > kLastOpcode ? kNoMessage
                                                                : kLengthSize + static_cast<int32_t>(PeekU16(c));
}

// RFC 9329: the stream's mark, then messages whose length counts itself.
int32_t LengthOfIpsecOverTcp(const Cursor& c) {
  constexpr int32_t kMarkSize = 6, kLengthSize = 2;
  if (PeekIs(c, 0, "IKETCP")) return kMarkSize;
  if (Left(c) < kLengthSize) return 0;
  return PeekU16(c) <= kLengthSize ? kNoMessage : static_cast<int32_t>(PeekU16(c));
}

int32_t LengthOfTlsRecord(const Cursor& c) {
  constexpr int32_t kHeader = 5;
  if (Left(c) >= kHeader) return StartsTlsRecord(c) ? kHeader + static_cast<int32_t>(PeekU16(c, 3)) : kNoMessage;
  const bool may = PeekU8(c) >= 20 && PeekU8(c) <= 24 && (Left(c) < 2 || PeekU8(c, 1) == 3);
  return may ? 0 : kNoMessage;
}

}  // namespace qxview
