// The texts that records are known by, and octets that are no encoding.
#include <cstring>

#include "decoders/asn1/kerberos_names.h"
#include "decoders/asn1/kerberos_types.h"
#include "decoders/common/nt_status.h"

namespace qxview {
namespace {

struct SetBit {
  int32_t bit;
  const char* name;
};
constexpr SetBit kEncryptionSet[] = {
    {0, "des-cbc-crc"}, {1, "des-cbc-md5"}, {2, "rc4-hmac"}, {3, "aes128-cts-hmac-sha1-96"},
    {4, "aes256-cts-hmac-sha1-96"}, {5, "aes256-cts-hmac-sha1-96 for Session Keys"}, {16, "FAST"},
    {17, "Compound Identity"}, {18, "Claims"}, {19, "Resource SID Compression Disabled"}};

void DescribeCode(const NameTableEntry* names, int32_t count, const Cursor& fields, uint32_t tag, char* out,
                  int32_t outSize) {
  const uint32_t code = KrbCodeOf(fields, tag);
  FormatInto(out, outSize, "[%d] = %s", code, LookupName(names, code, count, kUndefined));
}

template <size_t kRows>
void DescribeCode(const NameTable<kRows>& names, const Cursor& fields, uint32_t tag, char* out, int32_t outSize) {
  DescribeCode(names.rows, static_cast<int32_t>(kRows), fields, tag, out, outSize);
}

}  // namespace

uint32_t KrbCodeOf(const Cursor& fields, uint32_t tag) {
  return static_cast<uint32_t>(BerInteger(TakeBerContents(KrbFieldOf(fields, tag), kAsnInteger)));
}

TextSlice KrbTextOf(const Cursor& fields, uint32_t tag) {
  return BerText(TakeBerContents(KrbFieldOf(fields, tag), kAsnGeneralString));
}

void DescribePrincipal(const Cursor& fields, char* out, int32_t outSize) {
  Cursor parts = TakeBerContents(KrbFieldOf(fields, 1), kAsnSequence);
  const int32_t room = outSize - 1;
  bool isFirst = true;
  for (Loop loop; More(parts, loop) && static_cast<int32_t>(strnlen(out, static_cast<size_t>(outSize))) < room;) {
    const BerElement part = TakeBer(parts);
    const TextSlice text = BerText(part.contents);
    AppendFormat(out, outSize, "%s%s%s", isFirst ? "" : "/", text, IsCut(part) ? "..." : "");
    isFirst = false;
  }
}

void DescribeTicket(const Cursor& fields, char* out, int32_t outSize) {
  DescribePrincipal(TakeBerContents(KrbFieldOf(fields, 2), kAsnSequence), out, outSize);
  AppendFormat(out, outSize, "@%s", KrbTextOf(fields, 1));
}

void DescribeAddress(const Cursor& fields, char* out, int32_t outSize) {
  constexpr uint32_t kIPv4 = 2, kNetBios = 20, kIPv6 = 24;
  const uint32_t type = KrbCodeOf(fields, 0);
  const Cursor octets = TakeBerContents(KrbFieldOf(fields, 1), kAsnOctetString);
  const int32_t length = Left(octets);
  if (type == kIPv4 && length == 4) {
    FormatInto(out, outSize, "%s", IPv4Text(octets.at));
  } else if (type == kIPv6 && length == 16) {
    FormatInto(out, outSize, "%s", IPv6Text(octets.at));
  } else if (type == kNetBios) {
    int32_t shown = length;   // filled up with blanks
    while (shown > 0 && PeekU8(octets, shown - 1) == ' ') --shown;
    FormatInto(out, outSize, "%s", Text(Ahead(octets, shown)));
  } else {
    DescribeCode(kKrbAddressNames, fields, 0, out, outSize);
  }
}

void DescribeEncryption(const Cursor& fields, char* out, int32_t outSize) {
  DescribeCode(kKrbEncryptionNames, fields, 0, out, outSize);
}
void DescribeChecksum(const Cursor& fields, char* out, int32_t outSize) {
  DescribeCode(kKrbChecksumNames, fields, 0, out, outSize);
}
// Typed data number their two fields from 0, pre-authentication data from 1.
void DescribePaData(const Cursor& fields, char* out, int32_t outSize) {
  DescribeCode(kKrbPaNames, fields, Left(KrbFieldOf(fields, 0)) > 0 ? 0 : 1, out, outSize);
}
void DescribeAuthorization(const Cursor& fields, char* out, int32_t outSize) {
  DescribeCode(kKrbAuthorizationNames, fields, 0, out, outSize);
}

void ShowPasswordResult(BerWalk&, const Place& at, Cursor& c, const char*) {
  const Field result = TakeU16(c);
  AddLine(at, result, "Result Code: [%u] = %s", result.value,
          LookupName(kKrbPasswordResultNames, result.value, kUndefined));
  const Field text = Rest(c);
  if (!text.here || !std::memchr(text.bytes, 0, static_cast<size_t>(text.length))) {
    AddLine(at, text, "Result String: %s", Text(text));
  } else {
    AddBlock(at, text, "Result Data");
  }
}

void ShowEncryptionSet(BerWalk&, const Place& at, Cursor& c, const char*) {
  const Field set = TakeLittleU32(c);
  for (const SetBit& row : kEncryptionSet) {
    const BitPicture one = BitsOf(set, 31 - row.bit, 1);
    AddBitLine(at, set, "%s: %s = %s", one.picture, row.name, TrueOrFalse(one.value));
  }
}

void ShowExtendedError(BerWalk&, const Place& at, Cursor& c, const char*) {
  const Field status = TakeLittleU32(c), reserved = TakeLittleU32(c), flags = TakeLittleU32(c);
  const char* name = NtStatusName(status.value);
  AddLine(at, status, "Status: [0x%.08X] = %s", status.value, name ? name : kUndefined);
  AddLine(at, reserved, "Reserved: 0x%.08X", reserved.value);
  AddLine(at, flags, "Flags: 0x%.08X", flags.value);
}

}  // namespace qxview
