// The registry: every dispatch table of the engine, filled from the rows of registry_rows.inc.
#include <cstddef>

#include "core/decoder.h"
#include "decoders/link/llc.h"

namespace qxview {

#define QX_ROW(key, name, function) int32_t function(const Place& at, Cursor c);
#define QX_MEDIUM QX_ROW
#define QX_ENCAPSULATION QX_ROW
#define QX_LLC QX_ROW
#define QX_ETHERTYPE QX_ROW
#define QX_IP_PROTOCOL QX_ROW
#define QX_NEXT_HEADER QX_ROW
#define QX_BUILTIN QX_ROW
#include "decoders/registry_rows.inc"
#undef QX_ROW
#undef QX_MEDIUM
#undef QX_ENCAPSULATION
#undef QX_LLC
#undef QX_ETHERTYPE
#undef QX_IP_PROTOCOL
#undef QX_NEXT_HEADER
#undef QX_BUILTIN

namespace {

#define QX_NONE(key, name, function)
#define QX_ROW(key, name, function) {key, name, function},

#define QX_MEDIUM QX_ROW
#define QX_ENCAPSULATION QX_NONE
#define QX_LLC QX_NONE
#define QX_ETHERTYPE QX_NONE
#define QX_IP_PROTOCOL QX_NONE
#define QX_NEXT_HEADER QX_NONE
#define QX_BUILTIN QX_NONE
constexpr DecoderRow kMedia[] = {
#include "decoders/registry_rows.inc"
};
#undef QX_MEDIUM
#define QX_MEDIUM QX_NONE

#undef QX_ENCAPSULATION
#define QX_ENCAPSULATION QX_ROW
constexpr DecoderRow kEncapsulations[] = {
#include "decoders/registry_rows.inc"
};
#undef QX_ENCAPSULATION
#define QX_ENCAPSULATION QX_NONE

#undef QX_LLC
#define QX_LLC QX_ROW
constexpr DecoderRow kLlcServices[] = {
#include "decoders/registry_rows.inc"
};
#undef QX_LLC
#define QX_LLC QX_NONE

#undef QX_ETHERTYPE
#define QX_ETHERTYPE QX_ROW
constexpr DecoderRow kEthertypes[] = {
#include "decoders/registry_rows.inc"
};
#undef QX_ETHERTYPE
#define QX_ETHERTYPE QX_NONE

#undef QX_IP_PROTOCOL
#define QX_IP_PROTOCOL QX_ROW
constexpr DecoderRow kIpProtocols[] = {
#include "decoders/registry_rows.inc"
};
#undef QX_IP_PROTOCOL
#define QX_IP_PROTOCOL QX_NONE

#undef QX_NEXT_HEADER
#define QX_NEXT_HEADER QX_ROW
constexpr DecoderRow kNextHeaders[] = {
#include "decoders/registry_rows.inc"
};
#undef QX_NEXT_HEADER
#define QX_NEXT_HEADER QX_NONE

#undef QX_BUILTIN
#define QX_BUILTIN QX_ROW
constexpr DecoderRow kBuiltins[] = {
#include "decoders/registry_rows.inc"
};

template <size_t kRows>
constexpr bool IsSorted(const DecoderRow (&rows)[kRows]) {
  for (size_t i = 1; i < kRows; ++i) {
    if (rows[i].key <= rows[i - 1].key) return false;
  }
  return true;
}
static_assert(IsSorted(kMedia) && IsSorted(kEncapsulations) && IsSorted(kLlcServices) && IsSorted(kEthertypes) &&
              IsSorted(kIpProtocols) && IsSorted(kNextHeaders) && IsSorted(kBuiltins));

template <size_t kRows>
const DecoderRow* FindRow(const DecoderRow (&rows)[kRows], uint32_t key) {
  size_t lower = 0, upper = kRows;
  while (lower < upper) {
    const size_t middle = (lower + upper) / 2;
    if (rows[middle].key == key) return &rows[middle];
    if (rows[middle].key < key) {
      lower = middle + 1;
    } else {
      upper = middle;
    }
  }
  return nullptr;
}

struct NamedTable {
  const char* name;
  RowSpan rows;
};
template <size_t kRows>
constexpr NamedTable TableOf(const char* name, const DecoderRow (&rows)[kRows]) {
  return {name, {rows, static_cast<int32_t>(kRows)}};
}
constexpr NamedTable kTables[] = {
    TableOf("medium", kMedia),           TableOf("encapsulation", kEncapsulations), TableOf("LLC", kLlcServices),
    TableOf("Ethertype", kEthertypes),   TableOf("IP protocol", kIpProtocols),      TableOf("next header", kNextHeaders),
    TableOf("application", kBuiltins),
};

// 3Com NBP stands on a run of Ethertypes, one row for all.
constexpr uint16_t kFirstNbp = 0x3C00, kLastNbp = 0x3C0D;

}  // namespace

int32_t DecodeNbp(const Place& at, Cursor c);
namespace {
constexpr DecoderRow kNbp = {kFirstNbp, "3Com NBP", DecodeNbp};
}

const DecoderRow* FindMedium(uint8_t mediaType) { return FindRow(kMedia, mediaType); }
const DecoderRow* FindLinkEncapsulation(uint32_t key) { return FindRow(kEncapsulations, key); }
const DecoderRow* FindLlcService(LlcService service) { return FindRow(kLlcServices, static_cast<uint32_t>(service)); }
const DecoderRow* FindEthertype(uint16_t ethertype) {
  return ethertype >= kFirstNbp && ethertype <= kLastNbp ? &kNbp : FindRow(kEthertypes, ethertype);
}
const DecoderRow* FindIpProtocol(uint8_t protocol) { return FindRow(kIpProtocols, protocol); }
const DecoderRow* FindIPv6NextHeader(uint8_t nextHeader) { return FindRow(kNextHeaders, nextHeader); }
const DecoderRow* FindBuiltinDecoder(uint32_t index) { return FindRow(kBuiltins, index); }

RowSpan RegistryTable(int32_t number, const char** name) {
  constexpr int32_t kCount = static_cast<int32_t>(sizeof kTables / sizeof kTables[0]);
  if (number < 0 || number >= kCount) return {nullptr, 0};
  if (name) *name = kTables[number].name;
  return kTables[number].rows;
}

}  // namespace qxview
