// The answer of a domain controller to the search that finds one (a search for "netlogon" over UDP, "LDAP ping"):
//
//   opcode (2), reserved (2), flags (4), domain GUID (16), forest, domain, host, NetBIOS domain, NetBIOS host, user,
//   server site, client site, [address of the server: length (1), family (2), port (2), address (4), zeros (8)],
//   versions (4), tokens (2, 2)
//
// Numbers are low octet first. Names are DNS labels; pointers count from the value's start (RFC 1035 4.1.4).
#include "decoders/asn1/ldap.h"
#include "decoders/asn1/ldap_text.h"
#include "decoders/common/guid.h"

namespace qxview {
namespace {

constexpr uint32_t kResponseEx = 23, kUserUnknownEx = 25;

const char* OpcodeName(uint32_t opcode) {
  switch (opcode) {
    case 19: return "Logon Response";
    case 20: return "Logon Pause Response";
    case 21: return "User Unknown";
    case kResponseEx: return "Logon Response (Extended)";
    case 24: return "Logon Pause Response (Extended)";
    case kUserUnknownEx: return "User Unknown (Extended)";
    default: return kUnknown;
  }
}

struct Flag {
  int32_t bit;   // from the lowest
  const char* name;
};
constexpr Flag kFlags[] = {
    {31, "DNS Forest Name"}, {30, "DNS Domain Name"}, {29, "DNS Host Name"}, {16, "2016 Or Later"},
    {15, "2012 R2 Or Later"}, {14, "2012 Or Later"}, {13, "Web Services"}, {12, "Full Secrets"},
    {11, "Read Only With Selected Secrets"}, {10, "Only Application Directory"}, {9, "Good Time Server"},
    {8, "Writable"}, {7, "In Client's Site"}, {6, "Time Server"}, {5, "Key Distribution Center"},
    {4, "Directory Service"}, {3, "LDAP Server"}, {2, "Global Catalog"}, {0, "Primary Domain Controller"}};

// The name at the cursor, which then stands behind it. False when it does not end as names do.
bool TakeName(const Cursor& value, Cursor& c, char* out, int32_t size) {
  constexpr int32_t kMostHops = 32;
  LdapText text(out, size);
  Cursor labels = c;
  bool isBehind = false;   // a pointer was followed: `c` is where it belongs
  for (int32_t hops = 0; hops < kMostHops;) {
    const Field length = TakeU8(labels);
    if (!length.here) return false;
    if (length.value == 0) {
      if (!isBehind) c = labels;
      return true;
    }
    if (length.value >= 0xC0) {
      const Field low = TakeU8(labels);
      if (!low.here) return false;
      if (!isBehind) c = labels;
      isBehind = true;
      ++hops;
      labels = value;
      TakeBytes(labels, (length.value & 0x3F) << 8 | low.value);
      continue;
    }
    const Field label = TakeBytes(labels, length.value);
    if (!label.here || length.value > 63) return false;
    if (!text.IsEmpty()) text.Put(".");
    text.PutValue(CursorOver(label));
    if (isBehind) ++hops;
  }
  return false;
}

bool AddNames(const Place& in, const Cursor& value, Cursor& c) {
  constexpr const char* kTitles[] = {"Forest", "Domain",      "Host",       "NetBIOS Domain", "NetBIOS Host",
                                     "User",   "Server Site", "Client Site"};
  for (const char* title : kTitles) {
    const Cursor start = c;
    char text[kLdapTextSize];
    if (!TakeName(value, c, text, sizeof text)) return false;
    const char* shown = text[0] ? text : "<NULL>";
    AddLine(in, Ahead(start, c.offset - start.offset), "%s: %s", title, shown);
  }
  return true;
}

void AddFlags(const Place& in, const Field& flags) {
  const Place bits = Under(in, AddLine(in, flags, "Flags: 0x%.08X", flags.value));
  for (const Flag& flag : kFlags) {
    const BitPicture picture = BitsOf(flags, 31 - flag.bit, 1);
    AddBitLine(bits, flags, "%s: %s = %s", picture.picture, flag.name, TrueOrFalse(picture.value));
  }
}

void AddAddress(const Place& in, Cursor& c) {
  const Field length = TakeU8(c);
  AddLine(in, length, "Server Address Length: %u", length.value);
  Cursor address = TakeCursor(c, length.value);
  const Field family = TakeLittleU16(address), port = TakeU16(address), octets = TakeBytes(address, 4);
  AddLine(in, family, "Address Family: %u", family.value);
  AddLine(in, port, "Port: %u", port.value);
  AddLine(in, octets, "Server Address: %s", IPv4Text(octets.bytes));
  const Field zeros = Rest(address);
  AddLine(in, zeros, "Reserved: %s", HexText(zeros));
}

}  // namespace

void ShowNetlogon(BerWalk&, const Place& in, Cursor& c, const char*) {
  constexpr int32_t kFixed = 24, kTrailer = 8, kAddress = 17;
  const Cursor value = c;
  if (Left(c) < kFixed || (PeekU8(c) != kResponseEx && PeekU8(c) != kUserUnknownEx) || PeekU8(c, 1) != 0) return;
  const Field opcode = TakeLittleU16(c), reserved = TakeU16(c);
  AddLine(in, opcode, "Opcode: [%u] = %s", opcode.value, OpcodeName(opcode.value));
  AddLine(in, reserved, "Reserved: %u", reserved.value);
  AddFlags(in, TakeLittleU32(c));
  const Field guid = TakeBytes(c, kGuidSize);
  AddLine(in, guid, "Domain GUID: %s", TextOfGuid(guid, GuidOrder::kLittle, GuidLetters::kLower));
  if (!AddNames(in, value, c)) return;
  if (Left(c) >= kAddress + kTrailer) AddAddress(in, c);
  const Field version = TakeLittleU32(c), token = TakeLittleU16(c), lm20Token = TakeLittleU16(c);
  AddLine(in, version, "NT Version: 0x%.08X", version.value);
  AddLine(in, token, "LM NT Token: 0x%.04X", token.value);
  AddLine(in, lm20Token, "LM20 Token: 0x%.04X", lm20Token.value);
}

}  // namespace qxview
