// Bidirectional Forwarding Detection (RFC 5880; one hop: RFC 5881, several: RFC 5883, link aggregation: RFC 7130,
// seamless: RFC 7880, 7881): does the path to this neighbour forward packets?
//
//   version, diagnostic (1)   state, flags (1)   detection multiplier (1)   length (1)   discriminators (4 each)
//   intervals (4 each)   [authentication: type (1), length (1), key (1), ...]
#include "core/rows.h"

namespace qxview {
namespace {

constexpr int32_t kHeaderSize = 24;
constexpr uint32_t kSimple = 1, kMd5 = 2, kMeticulousMd5 = 3, kSha1 = 4, kMeticulousSha1 = 5;

constexpr auto kDiagnosticNames = SortedNames({
    {0, "No Diagnostic"}, {1, "Control Detection Time Expired"}, {2, "Echo Function Failed"},
    {3, "Neighbor Signaled Session Down"}, {4, "Forwarding Plane Reset"}, {5, "Path Down"},
    {6, "Concatenated Path Down"}, {7, "Administratively Down"}, {8, "Reverse Concatenated Path Down"},
    {9, "Mis-Connectivity Defect"}});
constexpr auto kStateNames = SortedNames({{0, "AdminDown"}, {1, "Down"}, {2, "Init"}, {3, "Up"}});
constexpr auto kAuthenticationNames = SortedNames({
    {0, "Reserved"}, {1, "Simple Password"}, {2, "Keyed MD5"}, {3, "Meticulous Keyed MD5"}, {4, "Keyed SHA1"},
    {5, "Meticulous Keyed SHA1"}});

struct Bfd {
  Field version, state, authenticated, length, type, size;
};

constexpr auto kHeader = Rows<Bfd>({
    Word(1), Bits(0, 3, "Version").Into(&Bfd::version), Bits(3, 5, "Diagnostic", kDiagnosticNames),
    Hex(1, "State and Flags"), Bits(0, 2, "State", kStateNames).Into(&Bfd::state), Flag(2, "Poll"), Flag(3, "Final"),
    Flag(4, "Control Plane Independent"), Flag(5, "Authentication Present").Into(&Bfd::authenticated),
    Flag(6, "Demand"),
    Flag(7, "Multipoint"), Number(1, "Detection Time Multiplier"), Number(1, "Length").Into(&Bfd::length),
    Hex(4, "My Discriminator"), Hex(4, "Your Discriminator"),
    Number(4, "Desired Minimum TX Interval", " microseconds"),
    Number(4, "Required Minimum RX Interval", " microseconds"),
    Number(4, "Required Minimum Echo RX Interval", " microseconds")});
constexpr auto kAuthentication = Rows<Bfd>({
    Number(1, "Authentication Type", kAuthenticationNames).Into(&Bfd::type),
    Number(1, "Authentication Length").Into(&Bfd::size), Number(1, "Authentication Key ID")});
constexpr auto kPassword = Rows<Bfd>({Text(0, "Password")});
constexpr auto kDigestMd5 = Rows<Bfd>({
    Number(1, "Reserved"), Number(4, "Sequence Number"), Bytes(16, "Digest")});
constexpr auto kDigestSha1 = Rows<Bfd>({
    Number(1, "Reserved"), Number(4, "Sequence Number"), Bytes(20, "Hash")});
constexpr auto kOther = Rows<Bfd>({Bytes(0, "Authentication Data")});

RowSpan<Bfd> DataRows(uint32_t type) {
  if (type == kSimple) return kPassword;
  if (type == kMd5 || type == kMeticulousMd5) return kDigestMd5;
  return type == kSha1 || type == kMeticulousSha1 ? RowSpan<Bfd>(kDigestSha1) : RowSpan<Bfd>(kOther);
}

void ShowAuthentication(const Place& in, Cursor& c) {
  const int32_t size = static_cast<int32_t>(PeekU8(c, 1));
  Cursor section = TakeCursor(c, size);
  const Place under = Under(in, AddLine(in, Ahead(section, Left(section)), "Authentication: %s",
                                        LookupName(kAuthenticationNames, PeekU8(section))));
  Bfd bfd = ShowRows(under, section, kAuthentication);
  ShowRows<Bfd>(under, section, DataRows(bfd.type.value), bfd);
  section.ranShort = false;   // what is left of a section that is cut
  AddBlock(under, Rest(section), "Authentication Data");
}

}  // namespace

int32_t DecodeBfd(const Place& at, Cursor c) {
  const uint32_t version = PeekU8(c) >> 5, length = PeekU8(c, 3);
  if (Left(c) < kHeaderSize || version > 1 || length < kHeaderSize) return 0;
  const Bfd ahead = PeekRows(c, kHeader);
  const int32_t here = static_cast<int32_t>(length) < Left(c) ? static_cast<int32_t>(length) : Left(c);
  const Place in = Under(at, AddLine(at, Ahead(c, here), "BFD: Control, %s, %s",
                                     LookupName(kStateNames, ahead.state.value),
                                     LookupName(kDiagnosticNames, PeekU8(c) & 0x1F)));
  Cursor packet = TakeCursor(c, length);
  const Bfd bfd = ShowRows(in, packet, kHeader);
  if (bfd.authenticated.value && Left(packet) >= 2 && PeekU8(packet, 1) >= 2) ShowAuthentication(in, packet);
  AddBlock(in, Rest(packet), "BFD Data");
  AddRawRest(at, c, "BFD Data");
  return 1;
}

// What comes back from the neighbour is its sender's own matter.
int32_t DecodeBfdEcho(const Place& at, Cursor c) {
  const Field echo = Rest(c);
  const Place in = Under(at, AddLine(at, echo, "BFD: Echo, %d bytes", echo.length));
  AddLine(in, echo, "Originator Specific Content: %s", HexText(echo));
  return echo.here ? 1 : 0;
}

}  // namespace qxview
