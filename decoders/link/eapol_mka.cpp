// MACsec key agreement (IEEE 802.1X-2010 11.11): parameter sets, each filled to four bytes, and a check at the end.
//
//   0     1             2                             4
//   type  of the type   of the type (4), length (12)  body
//
// The first set has a version in place of the type.
#include "core/elements.h"
#include "decoders/link/eapol.h"

namespace qxview {
namespace {

enum SetType : uint32_t {
  kLivePeers = 1, kPotentialPeers = 2, kSakUse = 3, kDistributedSak = 4, kDistributedCak = 5, kDomain = 6,
  kAnnouncementSet = 7, kExtendedNumbers = 8, kCheckIndicator = 255,
};
constexpr int32_t kSetHeader = 4, kCheckSize = 16;

constexpr auto kSetNames = SortedNames({
    {1, "Live Peer List"}, {2, "Potential Peer List"}, {3, "MACsec SAK Use"}, {4, "Distributed SAK"}, {5,
    "Distributed CAK"},
    {6, "Key Management Domain"}, {7, "Announcement"}, {8, "XPN"}, {255, "ICV Indicator"}});
constexpr auto kCapabilityNames = SortedNames({
    {0, "MACsec Not Implemented"}, {1, "Integrity Without Confidentiality"},
    {2, "Confidentiality with Offset 0"}, {3, "Confidentiality with Offset 0, 30 or 50"}});
constexpr auto kAgilityNames = SortedNames({{0x0080C201, "IEEE 802.1X-2010"}});
constexpr auto kOffsetNames = SortedNames({
    {0, "No Confidentiality"}, {1, "Offset 0"}, {2, "Offset 30"}, {3, "Offset 50"}});

struct Mka {
  Field length, peers;
  uint64_t suite;
};
constexpr auto kBasic = Rows<Mka>({
    Number(1, "MKA Version"), Number(1, "Key Server Priority"), Word(2), Flag(0, "Key Server"), Flag(1,
    "MACsec Desired"),
    Bits(2, 2, "MACsec Capability", kCapabilityNames), Bits(4, 12, "Parameter Set Length").Into(&Mka::length)});
// The secure channel's identifier is an address and a port.
void ShowChannel(const Place& in, Cursor& c, const char* label, Mka&) {
  const Field channel = PeekBytes(c, 0, 8);
  AddLine(in, channel, "%s: %s", label, HexText(channel));
}
constexpr auto kBasicBody = Rows<Mka>({
    Shown("SCI", ShowChannel), Mac("SCI Address"), Hex(2, "SCI Port"), Bytes(12, "Actor Member Identifier"), Number(4, "Actor Message Number"),
    Hex(4, "Algorithm Agility", kAgilityNames), Bytes(0, "CAK Name")});
constexpr auto kType = Rows<Mka>({Number(1, "Parameter Set Type", kSetNames)});
constexpr auto kPlainHead = Rows<Mka>({
    Number(1, "Reserved"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12, "Parameter Set Length").Into(&Mka::length)});
constexpr auto kPeerHead = Rows<Mka>({
    Hex(1, "Key Server SSCI"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12,
    "Parameter Set Length").Into(&Mka::length)});
constexpr auto kUseHead = Rows<Mka>({
    Word(1), Bits(0, 2, "Latest Key AN"), Flag(2, "Latest Key Transmitting"), Flag(3, "Latest Key Receiving"),
    Bits(4, 2, "Old Key AN"), Flag(6, "Old Key Transmitting"), Flag(7, "Old Key Receiving"), Word(2), Flag(0,
    "Plain Transmit"),
    Flag(1, "Plain Receive"), Bits(2, 1, "Reserved"), Flag(3, "Delay Protect"),
    Bits(4, 12, "Parameter Set Length").Into(&Mka::length)});
constexpr auto kSakHead = Rows<Mka>({
    Word(1), Bits(0, 2, "Distributed AN"), Bits(2, 2, "Confidentiality Offset", kOffsetNames), Bits(4, 4, "Reserved"),
    Word(2),
    Bits(0, 4, "Reserved"), Bits(4, 12, "Parameter Set Length").Into(&Mka::length)});
constexpr auto kExtendedHead = Rows<Mka>({
    Number(1, "Suspension Time"), Word(2), Bits(0, 4, "Reserved"), Bits(4, 12,
    "Parameter Set Length").Into(&Mka::length)});

constexpr auto kPeer = Rows<Mka>({Bytes(12, "Peer Member Identifier"), Number(4, "Peer Message Number")});
constexpr auto kUse = Rows<Mka>({
    Bytes(12, "Latest Key Server Member Identifier"), Number(4, "Latest Key Number"), Number(4,
    "Latest Lowest Acceptable PN"),
    Bytes(12, "Old Key Server Member Identifier"), Number(4, "Old Key Number"), Number(4, "Old Lowest Acceptable PN")});
// By the low half of the identifier.
constexpr auto kSuiteNames = SortedNames({
    {0x01000001, "GCM-AES-128"}, {0x01000002, "GCM-AES-256"}, {0x01000003, "GCM-AES-XPN-128"},
    {0x01000004, "GCM-AES-XPN-256"}});
constexpr auto kSak = Rows<Mka>({Number(4, "Key Number"), Bytes(24, "Wrapped SAK")});
constexpr auto kSakNumber = Rows<Mka>({Number(4, "Key Number")});
constexpr auto kSakSuite = Rows<Mka>({Hex(8, "MACsec Cipher Suite", kSuiteNames), Bytes(0, "Wrapped SAK")});
constexpr auto kCak = Rows<Mka>({Bytes(24, "Wrapped CAK"), Bytes(0, "CAK Name")});
constexpr auto kDomainName = Rows<Mka>({Utf8(0, "Domain")});
constexpr auto kExtended = Rows<Mka>({Number(4, "Latest Lowest Acceptable PN High"), Number(4,
    "Old Lowest Acceptable PN High")});
constexpr auto kCheck = Rows<Mka>({Bytes(16, "Integrity Check Value")});

RowSpan<Mka> HeadOf(uint32_t type) {
  switch (type) {
    case kLivePeers:
    case kPotentialPeers: return kPeerHead;
    case kSakUse: return kUseHead;
    case kDistributedSak: return kSakHead;
    case kExtendedNumbers: return kExtendedHead;
    default: return kPlainHead;
  }
}

void ShowBody(const Place& in, Cursor& c, uint32_t type, Mka& mka) {
  switch (type) {
    case kLivePeers:
    case kPotentialPeers: {
      Loop loop;
      while (MoreAt(in, c, loop)) ShowRows<Mka>(in, c, kPeer, mka);
      return;
    }
    case kSakUse:
      if (Left(c) > 0) ShowRows<Mka>(in, c, kUse, mka);
      return;
    case kDistributedSak:
      if (Left(c) == 28) return ShowRows<Mka>(in, c, kSak, mka);
      if (Left(c) < 1) return;   // MACsec is not to be used
      ShowRows<Mka>(in, c, kSakNumber, mka);
      return ShowRows<Mka>(in, c, kSakSuite, mka);
    case kDistributedCak: return ShowRows<Mka>(in, c, kCak, mka);
    case kDomain: return ShowRows<Mka>(in, c, kDomainName, mka);
    case kAnnouncementSet: return ShowAnnouncement(in, c);
    case kExtendedNumbers: return ShowRows<Mka>(in, c, kExtended, mka);
    default: return;
  }
}

// A set's header, its body, and what fills it to four bytes. The cursor stands behind it.
void ShowSet(const Place& at, Cursor& c, bool isFirst) {
  const uint32_t type = PeekU8(c), length = PeekU16(c, 2) & 0xFFF;
  const bool isCheck = !isFirst && type == kCheckIndicator;
  const char* name = isFirst ? "Basic Parameter Set" : LookupName(kSetNames, type);
  const int32_t whole = kSetHeader + static_cast<int32_t>(length);
  const Place in = Under(at, AddLine(at, Ahead(c, whole < Left(c) ? whole : Left(c)), "Parameter Set: %s", name));
  Mka mka{};
  if (isFirst) {
    ShowRows<Mka>(in, c, kBasic, mka);
  } else {
    ShowRows<Mka>(in, c, kType, mka);
    ShowRows<Mka>(in, c, HeadOf(type), mka);
  }
  Cursor body = TakeCursor(c, length);
  if (isFirst) {
    ShowRows<Mka>(in, body, kBasicBody, mka);
  } else if (isCheck) {
    ShowRows<Mka>(in, body, kCheck, mka);
  } else {
    ShowBody(in, body, type, mka);
  }
  body.ranShort = false;
  AddBlock(in, Rest(body), "Parameter Set Data");
  const Field padding = TakeBytes(c, length % 4 && Left(c) > 3 ? 4 - length % 4 : 0);
  if (padding.length > 0) AddLine(in, padding, "Padding: %s", HexText(padding));
}

// --- announcements ---

constexpr auto kAccessNames = SortedNames({
    {0, "No Access"}, {1, "Remedial Access"}, {2, "Restricted Access"}, {3, "Expected Access"}});
constexpr auto kStatusNames = SortedNames({{0, "Not Authenticated"}, {1, "In Progress"}, {2, "Failed"}, {3,
    "Succeeded"}});
constexpr auto kCapabilityFlags = SortedNames({
    {0x01, "EAP"}, {0x02, "EAP and MKA"}, {0x04, "EAP, MKA and MACsec"}, {0x08, "MKA"}, {0x10, "MKA and MACsec"},
    {0x20, "Higher Layer Fallback"}, {0x40, "Vendor Specific Capability"}});
constexpr auto kAccess = Rows<Mka>({
    Word(1), Bits(0, 2, "Access Status", kStatusNames), Flag(2, "Access Requested"), Bits(3, 2,
    "Unauthenticated Access", kAccessNames),
    Bits(5, 3, "Virtual Port Access"), Flags(1, "Access Capabilities", kCapabilityFlags)});
constexpr auto kSuites = Rows<Mka>({
    Number(2, "Implementation Capability"), Hex(8, "MACsec Cipher Suite", kSuiteNames)});
constexpr auto kIdentifier = Rows<Mka>({Utf8(0, "Network Identity")});
constexpr auto kOrganization = Rows<Mka>({Hex(3, "Organization"), Number(1, "Subtype"), Bytes(0, "Information")});
void ShowSuiteList(const Place& in, Cursor& c, Mka& mka) {
  Loop loop;
  while (MoreAt(in, c, loop)) ShowRows<Mka>(in, c, kSuites, mka);
}
constexpr auto kAnnouncements = Choices<Mka>({
    {111, "Access Information", kAccess}, {112, "MACsec Cipher Suites", {}, ShowSuiteList}, {113,
    "Key Management Domain", kDomainName},
    {114, "Network Identifier", kIdentifier}, {126, "Organizationally Specific Set", kOrganization},
    {127, "Organizationally Specific", kOrganization}});

}  // namespace

void ShowAnnouncement(const Place& in, Cursor& c) {
  constexpr ElementForm kForm{.typeSize = 2, .typeBits = 7};
  Mka mka{};
  ShowElements<Mka>(in, c, kForm, "Announcement", kAnnouncements, mka);
}

void ShowKeyAgreement(const Place& in, Cursor& c) {
  bool isFirst = true, checked = false;
  Loop loop;
  while (Left(c) >= kSetHeader && !checked && MoreAt(in, c, loop)) {
    const bool isIndicator = !isFirst && PeekU8(c) == kCheckIndicator;
    if (!isFirst && !isIndicator && Left(c) <= kCheckSize) break;   // a check without an indicator
    ShowSet(in, c, isFirst);
    checked = isIndicator;
    isFirst = false;
  }
  Mka mka{};
  if (!checked && Left(c) >= kCheckSize) ShowRows<Mka>(in, c, kCheck, mka);
}

}  // namespace qxview
