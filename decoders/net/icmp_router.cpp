// ICMP router advertisements (RFC 1256) with the extensions of mobility agents (RFC 5944).
//
//   0  number of addresses   1  words an address entry   2  lifetime   4  entries: address, preference level
//   an extension:  0  type   1  length of what follows   2  data;  type 0 is a padding byte alone
#include "decoders/net/icmp_router.h"

#include "core/rows.h"
#include "decoders/common/tells_all.h"

namespace qxview {
namespace {

enum ExtensionType : uint32_t { kPadding = 0, kMobilityAgent = 16, kPrefixLengths = 19, kChallenge = 24 };

constexpr auto kAgent = Rows<NoValues>({
    Number(2, "Sequence Number"), Number(2, "Registration Lifetime", " seconds"), Hex(2, "Flags"),
    Flag(0, "Registration Required"), Flag(1, "Busy"), Flag(2, "Home Agent"), Flag(3, "Foreign Agent"),
    Flag(4, "Minimal Encapsulation"), Flag(5, "GRE Encapsulation"), Flag(6, "Reserved"), Flag(7, "Reverse Tunneling"),
    Flag(8, "UDP Tunneling"), Flag(9, "Revocation Support")});
constexpr auto kPrefixLength = Rows<NoValues>({Number(1, "Prefix Length")});
constexpr auto kCareOf = Rows<NoValues>({IPv4("Care-of Address")});

void AddMobilityAgent(const Place& in, Cursor c) {
  ShowRows(in, c, kAgent);
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows(in, c, kCareOf);
}

void DecodeAgentExtensions(const Place& in, Cursor& c) {
  Loop loop;
  while (MoreAt(in, c, loop)) {
    const int32_t declared = PeekU8(c) == kPadding ? 1 : Left(c) > 1 ? 2 + PeekU8(c, 1) : 1;
    Cursor extension = TakeCursor(c, declared);
    const Field cover = Ahead(extension, Left(extension));
    const Field type = TakeU8(extension);
    if (type.value == kPadding) {
      AddLine(in, type, "One-byte Padding");
      continue;
    }
    const char* name = type.value == kMobilityAgent   ? "Mobility Agent Advertisement"
                       : type.value == kPrefixLengths ? "Prefix-Lengths"
                                                      : "Unknown";
    const Place under = Under(in, AddLine(in, cover, "Extension: %u = %s", type.value, name));
    const Field length = TakeU8(extension);
    AddLine(under, length, "Length: %u", length.value);
    if (type.value == kMobilityAgent) {
      AddMobilityAgent(under, extension);
    } else {
      if (type.value == kPrefixLengths) {
        Cursor lengths = extension;
        for (Loop each; TellsAll(under) && MoreAt(under, lengths, each);) ShowRows(under, lengths, kPrefixLength);
      } else {   // challenges: RFC 4721
        TellBytes(under, Ahead(extension, Left(extension)), type.value == kChallenge ? "Challenge" : "Extension Value");
      }
      AddBlock(under, Rest(extension), type.value == kPrefixLengths ? "Prefix Lengths" : "Extension Data");
    }
  }
}

}  // namespace

void DecodeRouterAdvertisement(const Place& in, Cursor& c) {
  const Field count = TakeU8(c), words = TakeU8(c), lifetime = TakeU16(c);
  AddLine(in, count, "Number of Addresses: %u", count.value);
  AddLine(in, words, "Address Entry Size: %u * 4 = %u bytes", words.value, words.value * 4);
  AddLine(in, lifetime, "Lifetime: %u seconds", lifetime.value);
  if (!lifetime.here || words.value < 2) return;
  Loop loop;
  for (uint32_t number = 1; number <= count.value && MoreAt(in, c, loop); ++number) {
    Cursor entry = TakeCursor(c, words.value * 4);
    const Field cover = Ahead(entry, Left(entry));
    const Field address = TakeBytes(entry, 4), preference = TakeU32(entry);
    if (!address.here) return;
    const Place under = Under(in, AddLine(in, cover, "Router %u: %s", number, IPv4Text(address.bytes)));
    AddLine(under, address, "Router Address: %s", IPv4Text(address.bytes));
    AddLine(under, preference, "Preference Level: %d", static_cast<int32_t>(preference.value));
    AddBlock(under, Rest(entry), "Entry Data");
  }
  DecodeAgentExtensions(in, c);
}

}  // namespace qxview
