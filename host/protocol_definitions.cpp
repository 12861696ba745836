#include "host/protocol_definitions.h"

#include <algorithm>
#include <charconv>
#include <new>

#include "core/bounded_text.h"
#include "core/dispatch.h"
#include "host/alias_table.h"
#include "host/nearest_name.h"
#include "host/text.h"

namespace qxview {
namespace {

constexpr uint32_t kIPv6 = 2;

DecoderRowSpan BuiltinRows() { return RegistryTable(DoorKind::kApplication); }

// The identifier of a built-in decoder by its name; 0 when there is none. ONC RPC has two decoders under one name,
// since TCP carries it behind record markers: the first is TCP's, the last UDP's.
int32_t FindProtocol(std::string_view name, bool overUdp) {
  int32_t found = 0;
  const DecoderRowSpan rows = BuiltinRows();
  for (int32_t i = 0; i < rows.count; ++i) {
    if (!EqualsIgnoringCase(rows.rows[i].name, name)) continue;
    if (found && !overUdp) break;
    found = kBuiltinProtocol | static_cast<int32_t>(rows.rows[i].key);
  }
  return found;
}

std::string ProtocolHint(const std::string& name) {
  std::vector<std::string_view> names;
  const DecoderRowSpan rows = BuiltinRows();
  for (int32_t i = 0; i < rows.count; ++i) names.push_back(rows.rows[i].name);
  return NearestHint(name, names) + "; the command protocols lists the names";
}

constexpr const char* kNoProtocol = "none";   // in place of a name: the end has no definition any more

struct ParsedDefinition {
  bool overUdp = false;
  bool hasAddress = false;
  AddressSlot address{};
  uint16_t port = 0;
  int32_t identifier = 0;   // 0: none
};

// The texts of a definition, before they are read.
struct DefinitionParts {
  std::string transport, address, port, name;
  bool hasAddress = false, bracketed = false;
};

// `before`, the text in quotation marks, `behind`.
std::string Quote(std::string_view before, std::string_view text, std::string_view behind) {
  return std::string(before).append(QuoteValue(text)).append(behind);
}

std::optional<std::string> SplitDefinition(std::string_view text, DefinitionParts* parts) {
  const size_t equals = text.find('='), colon = text.find(':');
  if (equals == text.npos) return "it has no \"=\" and protocol name, as tcp:8080=HTTP has";
  if (text.substr(equals).starts_with("==")) return "it is written like tcp:8080=HTTP";
  if (colon == text.npos || colon > equals) {
    return "it has no transport (tcp or udp) and \":\" in front, as tcp:8080=HTTP has";
  }
  parts->transport = Trim(text.substr(0, colon));
  parts->name = Trim(text.substr(equals + 1));
  std::string end = Trim(text.substr(colon + 1, equals - colon - 1));
  parts->port = end;
  if (end.starts_with('[')) {
    const size_t close = end.find(']');
    if (close == end.npos) return Quote("the bracket of the address ", end, " is not closed");
    parts->address = end.substr(1, close - 1);
    end = Trim(end.substr(close + 1));
    if (!end.starts_with(':')) return Quote("no port follows the address ", parts->address, "");
    parts->hasAddress = parts->bracketed = true;
    parts->port = Trim(end.substr(1));
  } else if (const size_t last = end.rfind(':'); last != end.npos) {
    parts->hasAddress = true;
    parts->address = Trim(end.substr(0, last));
    parts->port = Trim(end.substr(last + 1));
  }
  return std::nullopt;
}

// An address of this kind and no other.
bool ParseSlot(const std::string& text, AliasKind wanted, AddressSlot* out) {
  AliasKind kind;
  std::array<uint8_t, 16> address;
  if (!ParseAddress(text, &kind, &address) || kind != wanted) return false;
  *out = {{}, static_cast<uint32_t>(kind)};
  const size_t length = kind == AliasKind::kIPv4 ? 4 : 16;
  std::copy_n(address.begin(), length, out->address + 16 - length);
  return true;
}

std::optional<std::string> ReadAddress(const DefinitionParts& parts, AddressSlot* out) {
  if (parts.bracketed) {
    if (ParseSlot(parts.address, AliasKind::kIPv6, out)) return std::nullopt;
    return Quote("address ", parts.address, " is not an IPv6 address");
  }
  if (ParseSlot(parts.address, AliasKind::kIPv4, out)) return std::nullopt;
  std::string wrong = Quote("address ", parts.address, " is not an IPv4 address");
  if (parts.address.find(':') != parts.address.npos) wrong += "; an IPv6 address stands in brackets";
  return wrong;
}

std::optional<std::string> ReadPort(const DefinitionParts& parts, uint16_t* out) {
  const uint32_t lowest = parts.hasAddress ? 0 : 1;
  uint32_t number = 0;
  const char* const last = parts.port.data() + parts.port.size();
  const auto [end, error] = std::from_chars(parts.port.data(), last, number);
  if (parts.port.empty() || error != std::errc() || end != last || number > 65535 || number < lowest) {
    return Quote("port ", parts.port,
                 parts.hasAddress ? " is not a number from 0 to 65535" : " is not a number from 1 to 65535");
  }
  *out = static_cast<uint16_t>(number);
  return std::nullopt;
}

std::optional<std::string> ParseDefinition(std::string_view text, ParsedDefinition* out) {
  DefinitionParts parts;
  if (auto wrong = SplitDefinition(text, &parts)) return wrong;
  out->overUdp = EqualsIgnoringCase(parts.transport, "udp");
  if (!out->overUdp && !EqualsIgnoringCase(parts.transport, "tcp")) {
    return Quote("transport ", parts.transport, " is neither tcp nor udp");
  }
  out->hasAddress = parts.hasAddress;
  if (parts.hasAddress) {
    if (auto wrong = ReadAddress(parts, &out->address)) return wrong;
  }
  if (auto wrong = ReadPort(parts, &out->port)) return wrong;
  out->identifier = FindProtocol(parts.name, out->overUdp);
  if (out->identifier || EqualsIgnoringCase(parts.name, kNoProtocol)) return std::nullopt;
  return Quote("protocol ", parts.name, " is unknown") + ProtocolHint(parts.name);
}

std::string EndText(int32_t which, const HashEntry& entry) {
  std::string text = which == QX_TCP_PORTS || which == QX_TCP_ADDRESSES ? "tcp:" : "udp:";
  if (entry.form == HashKeyForm::kAddressPort) {
    char notation[kIPv6TextSize];
    if (entry.first.address.kind == kIPv6) {
      FormatIPv6(entry.first.address.address, notation);
      text.append("[").append(notation).append("]:");
    } else {
      FormatIPv4(entry.first.address.address + 12, notation);
      text.append(notation).append(":");
    }
  }
  return text.append(std::to_string(entry.first.port));
}

}  // namespace

namespace {

// The ports of the built-in decoders. Hosts share them while their users define no other; nobody changes these.
std::shared_ptr<HashTable> BuiltinPorts(bool overUdp) {
  std::shared_ptr<HashTable> table(HashCreate(), HashDestroy);
  if (!table) throw std::bad_alloc();
  const DecoderRowSpan ports = RegistryTable(overUdp ? DoorKind::kUdpPort : DoorKind::kTcpPort);
  for (int32_t i = 0; i < ports.count; ++i) {
    const int32_t identifier = kBuiltinProtocol | ApplicationIndexOf(ports.rows[i].protocol);
    if (!HashInsert(table.get(), static_cast<uint16_t>(ports.rows[i].key), identifier)) throw std::bad_alloc();
  }
  return table;
}

}  // namespace

ProtocolDefinitions::ProtocolDefinitions() {
  static const std::shared_ptr<HashTable> tcpPorts = BuiltinPorts(false), udpPorts = BuiltinPorts(true);
  tables_[QX_TCP_PORTS].hash = tcpPorts;
  tables_[QX_UDP_PORTS].hash = udpPorts;
}

// A table that is this host's alone.
HashTable* ProtocolDefinitions::OwnTable(DefinitionTable& table) {
  if (table.isOwn) return table.hash.get();
  std::shared_ptr<HashTable> own(table.hash ? HashCopy(table.hash.get()) : HashCreate(), HashDestroy);
  if (!own) throw std::bad_alloc();
  table.hash = std::move(own);
  table.isOwn = true;
  return table.hash.get();
}

std::optional<std::string> ProtocolDefinitions::AddDefinition(std::string_view definition) {
  ParsedDefinition parsed;
  if (auto wrong = ParseDefinition(definition, &parsed)) {
    return Quote("protocol definition ", Trim(definition), ": ").append(*wrong);
  }
  const int32_t ports = parsed.overUdp ? QX_UDP_PORTS : QX_TCP_PORTS;
  const int32_t addresses = parsed.overUdp ? QX_UDP_ADDRESSES : QX_TCP_ADDRESSES;
  DefinitionTable& table = tables_[parsed.hasAddress ? addresses : ports];
  const TableLockHolder held(table.lock);
  HashTable* const hash = OwnTable(table);
  if (parsed.identifier == 0) {
    HashEntry* defined = parsed.hasAddress ? HashFindGenericIPPort(hash, parsed.address, parsed.port)
                                           : HashFind(hash, parsed.port);
    if (defined && defined->first.port == parsed.port) HashRemove(hash, defined);
    return std::nullopt;
  }
  const HashEntry* added = parsed.hasAddress
                               ? HashInsertGenericIPPort(hash, parsed.address, parsed.port, parsed.identifier)
                               : HashInsert(hash, parsed.port, parsed.identifier);
  if (!added) throw std::bad_alloc();
  if (parsed.hasAddress) table.endPorts[parsed.port] = true;
  return std::nullopt;
}

std::vector<DefinedProtocol> ProtocolDefinitions::List() {
  std::vector<DefinedProtocol> list;
  const DecoderRowSpan rows = BuiltinRows();
  for (int32_t i = 0; i < rows.count; ++i) {
    list.push_back({kBuiltinProtocol | static_cast<int32_t>(rows.rows[i].key), rows.rows[i].name, {}});
  }
  for (const int32_t which : {QX_TCP_PORTS, QX_UDP_PORTS, QX_TCP_ADDRESSES, QX_UDP_ADDRESSES}) {
    DefinitionTable& table = tables_[which];
    const TableLockHolder held(table.lock);
    std::vector<const HashEntry*> entries;
    HashIterator* walk = HashIteratorCreate(OwnTable(table));
    if (!walk) throw std::bad_alloc();
    const std::unique_ptr<HashIterator, decltype(&HashIteratorDestroy)> owned(walk, HashIteratorDestroy);
    while (const HashEntry* entry = HashIteratorNext(walk)) entries.push_back(entry);
    const auto byPort = [](const HashEntry* a, const HashEntry* b) { return a->first.port < b->first.port; };
    if (which == QX_TCP_PORTS || which == QX_UDP_PORTS) std::stable_sort(entries.begin(), entries.end(), byPort);
    for (const HashEntry* entry : entries) {
      for (DefinedProtocol& protocol : list) {
        if (protocol.identifier == entry->identifier) protocol.definitions.push_back(EndText(which, *entry));
      }
    }
  }
  return list;
}

void* ProtocolDefinitions::Table(int32_t which) noexcept {
  return which >= QX_TCP_PORTS && which <= QX_UDP_ADDRESSES ? &tables_[which] : nullptr;
}

int32_t ProtocolDefinitions::FindPort(void* table, uint16_t port, int32_t* identifier) noexcept {
  if (!table) return 0;
  const HashEntry* entry = HashFind(static_cast<DefinitionTable*>(table)->hash.get(), port);
  if (entry && identifier) *identifier = entry->identifier;
  return entry ? 1 : 0;
}

int32_t ProtocolDefinitions::FindDefined(void* table, const AddressSlot* address, uint16_t port,
                                         int32_t* identifier) noexcept {
  auto* definitions = static_cast<DefinitionTable*>(table);
  int32_t found = 0;
  if (const HashEntry* entry = HashFindGenericIPPort(definitions->hash.get(), *address, port)) {
    found = entry->identifier;   // the user's word before what was learnt
  } else if (const LearntProtocol* learnt = definitions->learnt.Find(*address, port)) {
    found = learnt->identifier;
  }
  if (found && identifier) *identifier = found;
  return found ? 1 : 0;
}

void ProtocolDefinitions::Lock(void* table) noexcept {
  if (table) static_cast<DefinitionTable*>(table)->lock.Lock();
}

void ProtocolDefinitions::Unlock(void* table) noexcept {
  if (table) static_cast<DefinitionTable*>(table)->lock.Unlock();
}

void ProtocolDefinitions::Learn(uint32_t transport, int32_t identifier, const AddressSlot* address, uint16_t port,
                                const DynamicRecord* extra) noexcept {
  if (!address || identifier < 1 || !(transport & (QX_OVER_TCP | QX_OVER_UDP))) return;
  DefinitionTable& table = tables_[transport & QX_OVER_TCP ? QX_TCP_ADDRESSES : QX_UDP_ADDRESSES];
  const TableLockHolder held(table.lock);
  table.endPorts[port] = true;
  table.learnt.Learn({*address, port}, {identifier, extra ? *extra : DynamicRecord{}});
}

int32_t ProtocolDefinitions::DisplayName(int32_t identifier, char* out, int32_t outSize) noexcept {
  if (!out || outSize < 1) return 0;
  out[0] = 0;
  if (identifier < 1 || !(identifier & kBuiltinProtocol)) return 0;
  const DecoderRow* row = FindBuiltinDecoder(static_cast<uint32_t>(identifier) & 0xFFFF);
  return row && CopyString(out, outSize, row->name) ? 1 : 0;
}

void ProtocolDefinitions::ForgetLearnt() noexcept {
  for (DefinitionTable& table : tables_) {
    const TableLockHolder held(table.lock);
    table.learnt.Clear();
  }
}

size_t ProtocolDefinitions::CountLearnt(uint32_t transport) noexcept {
  DefinitionTable& table = tables_[transport & QX_OVER_TCP ? QX_TCP_ADDRESSES : QX_UDP_ADDRESSES];
  const TableLockHolder held(table.lock);
  return table.learnt.Count();
}

}  // namespace qxview
