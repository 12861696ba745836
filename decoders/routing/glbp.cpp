// Gateway Load Balancing Protocol: several routers answer for one address, each with a hardware address of its own. Its
// maker published no layout; what is known of it is shown, the rest is named so.
//
//   version (1)   unknown (1)   group (2)   unknown (2)   owner (6)   elements: type (1), length with both (1), value
#include "core/elements.h"

namespace qxview {
namespace {

constexpr uint32_t kIPv4Type = 1, kIPv6Type = 2;
constexpr uint32_t kNone = 0, kPlain = 1, kMd5 = 2, kMd5Chain = 3;

constexpr auto kStateNames = SortedNames({
    {4, "Listen"}, {8, "Speak"}, {16, "Standby"}, {32, "Active"}});
constexpr auto kAddressNames = SortedNames({{1, "IPv4"}, {2, "IPv6"}});
constexpr auto kAuthenticationNames = SortedNames({
    {0, "None"}, {1, "Plain Text"}, {2, "MD5 String"}, {3, "MD5 Chain"}});

struct Glbp {
  Field type, size;
};

constexpr auto kHead = Rows<Glbp>({
    Number(1, "Version"), Hex(1, "Unknown"), Number(2, "Group"), Hex(2, "Unknown"), Mac("Owner ID").Note(", Owner %s")});
constexpr auto kHello = Rows<Glbp>({
    Hex(1, "Unknown"), Number(1, "Virtual Gateway State", kStateNames).Note(", %s"), Hex(1, "Unknown"),
    Number(1, "Priority").Note(", Priority %u"), Hex(2, "Unknown"), Number(4, "Hello Interval", " milliseconds"),
    Number(4, "Hold Time", " milliseconds"), Number(2, "Redirect Time", " seconds"), Number(2, "Timeout", " seconds"),
    Hex(2, "Unknown"), Number(1, "Address Type", kAddressNames).Into(&Glbp::type),
    Number(1, "Address Length").Into(&Glbp::size)});
constexpr auto kAddress4 = Rows<Glbp>({IPv4("Virtual IP Address").Note(", %s")});
constexpr auto kAddress6 = Rows<Glbp>({IPv6("Virtual IPv6 Address").Note(", %s")});
constexpr auto kOtherAddress = Rows<Glbp>({Bytes(0, "Virtual Address").SizedBy(&Glbp::size)});
constexpr auto kForwarder = Rows<Glbp>({
    Number(1, "Forwarder").Note(", Forwarder %u"), Number(1, "Virtual Forwarder State", kStateNames).Note(", %s"),
    Hex(1, "Unknown"), Number(1, "Priority"), Number(1, "Weight"), Bytes(7, "Unknown"),
    Mac("Virtual MAC Address").Note(", %s")});
constexpr auto kAuthentication = Rows<Glbp>({
    Number(1, "Authentication Type", kAuthenticationNames).Note(", %s").Into(&Glbp::type),
    Number(1, "Authentication Length").Into(&Glbp::size)});
constexpr auto kPassword = Rows<Glbp>({Text(0, "Password").SizedBy(&Glbp::size)});
constexpr auto kDigest = Rows<Glbp>({Bytes(0, "Digest").SizedBy(&Glbp::size)});
constexpr auto kChain = Rows<Glbp>({Number(4, "Key ID"), Bytes(16, "Digest")});

void ShowVirtualAddress(const Place& in, Cursor& c, Glbp& glbp) {
  const uint32_t type = glbp.type.value, size = glbp.size.value;
  ShowRows<Glbp>(in, c, type == kIPv4Type && size == 4    ? RowSpan<Glbp>(kAddress4)
                        : type == kIPv6Type && size == 16 ? RowSpan<Glbp>(kAddress6)
                                                          : RowSpan<Glbp>(kOtherAddress), glbp);
}
void ShowAuthentication(const Place& in, Cursor& c, Glbp& glbp) {
  switch (glbp.type.value) {
    case kPlain: ShowRows<Glbp>(in, c, kPassword, glbp); break;
    case kMd5: ShowRows<Glbp>(in, c, kDigest, glbp); break;
    case kMd5Chain: ShowRows<Glbp>(in, c, kChain, glbp); break;
    case kNone: default: break;
  }
}

constexpr auto kElements = Choices<Glbp>({
    {1, "Hello", kHello, ShowVirtualAddress}, {2, "Request/Response", kForwarder},
    {3, "Authentication", kAuthentication, ShowAuthentication}});

}  // namespace

int32_t DecodeGlbp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 12;
  constexpr ElementForm kForm{.lengthCountsHeader = true};
  if (Left(c) < kHeaderSize) return 0;
  const Place in = Under(at, AddLine(at, Ahead(c, Left(c)), "GLBP: Group %u", PeekU16(c, 2)));
  Glbp glbp = ShowRows(in, c, kHead);
  ShowElements<Glbp>(in, c, kForm, "TLV", kElements, glbp);
  AddBlock(in, Rest(c), "GLBP Data");
  return 1;
}

}  // namespace qxview
