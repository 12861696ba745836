// IP Payload Compression Protocol (RFC 3173): what follows was made smaller, and by which algorithm?
#include "core/rows.h"
#include "decoders/net/ip_protocol_names.h"

namespace qxview {
namespace {

struct Compressed {
  Field next, index;
};

const char* CarriedName(uint32_t protocol) { return IpProtocolName(protocol); }

// Below 64 an index names the algorithm itself; others are agreed upon by IKE.
const char* IndexName(uint32_t index) {
  constexpr auto kNames = SortedNames({
      {0, "Reserved"}, {1, "OUI"}, {2, "DEFLATE"}, {3, "LZS"}, {4, "LZJH"}});
  constexpr uint32_t kFirstPrivate = 61440, kFirstNegotiated = 256;
  return index >= kFirstPrivate ? "Private Use" : index >= kFirstNegotiated ? "Negotiated" : LookupName(kNames, index);
}

constexpr auto kHeader = Rows<Compressed>({
    Number(1, "Next Header", CarriedName).Into(&Compressed::next), Hex(1, "Flags"),
    Number(2, "Compression Parameter Index (CPI)", IndexName).Into(&Compressed::index)});

}  // namespace

int32_t DecodeIpComp(const Place& at, Cursor c) {
  constexpr int32_t kHeaderSize = 4;
  if (Left(c) < kHeaderSize) return 0;
  const Compressed ahead = PeekRows(c, kHeader);
  const Place in = Under(at, AddLine(at, Ahead(c, kHeaderSize), "IPComp: %s, %s", IpProtocolName(ahead.next.value),
                                     IndexName(ahead.index.value)));
  ShowRows(in, c, kHeader);
  const Field rest = Rest(c);
  AddLine(in, rest, "Compressed Data: %d bytes", rest.length);
  return 1;
}

}  // namespace qxview
