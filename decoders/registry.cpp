// The registry: every dispatch table of the engine, made from the rows of registry_rows.inc when it compiles.
#include <cstddef>

#include "core/decoder.h"
#include "core/frame_entry.h"
#include "decoders/app/packet_summaries.h"
#include "decoders/app/rtp_summary.h"
#include "decoders/link/llc.h"
#include "decoders/message_lengths.h"

namespace qxview {

#define QX_PROTOCOL(name, key, decoder, summary, ...) int32_t decoder(const Place& at, Cursor c);
#include "decoders/registry_rows.inc"
#undef QX_PROTOCOL
int32_t DecodeNbp(const Place& at, Cursor c);

void TwoProtocolsHaveOneDoor();   // not defined: the compiler's message

namespace {

struct Door {
  DoorKind kind;
  uint32_t key;
};
struct DoorPair {   // a port on both transports
  Door tcp, udp;
};
struct MessageForm {   // how long its messages over TCP are
  MessageLengthFunction length;
  bool runs;
};
struct PlainForm {};   // its decoder is of no use to a pass without lines
constexpr PlainForm Plain() { return {}; }
constexpr MessageForm Messages(MessageLengthFunction length) { return {length, false}; }
constexpr MessageForm MessageRuns(MessageLengthFunction length) { return {length, true}; }
constexpr Door Medium(uint32_t key) { return {DoorKind::kMedium, key}; }
constexpr Door Encapsulation(uint32_t key) { return {DoorKind::kEncapsulation, key}; }
constexpr Door LinkType(uint32_t number) { return {DoorKind::kEncapsulation, kLinkTypeKeys + number}; }
constexpr Door Llc(uint32_t service) { return {DoorKind::kLlc, service}; }
constexpr Door Ethertype(uint32_t key) { return {DoorKind::kEthertype, key}; }
constexpr Door Ip(uint32_t protocol) { return {DoorKind::kIpProtocol, protocol}; }
constexpr Door NextHeader(uint32_t protocol) { return {DoorKind::kNextHeader, protocol}; }
constexpr Door Application(uint32_t index) { return {DoorKind::kApplication, index}; }
constexpr Door Tcp(uint32_t port) { return {DoorKind::kTcpPort, port}; }
constexpr Door Udp(uint32_t port) { return {DoorKind::kUdpPort, port}; }
constexpr DoorPair Both(uint32_t port) { return {Tcp(port), Udp(port)}; }

constexpr int32_t kMostDoors = 24;

struct Protocol : ProtocolRow {
  Door doors[kMostDoors];
  int32_t doorCount;
};

template <class... Doors>
consteval Protocol MakeProtocol(const ProtocolRow& row, const Doors&... doors) {
  Protocol made{row, {}, 0};
  const auto add = [&](const auto& door) {
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(door)>, DoorPair>) {
      made.doors[made.doorCount++] = door.tcp;
      made.doors[made.doorCount++] = door.udp;
    } else if constexpr (std::is_same_v<std::remove_cvref_t<decltype(door)>, MessageForm>) {
      made.messageLength = door.length;
      made.takesRuns = door.runs;
    } else if constexpr (std::is_same_v<std::remove_cvref_t<decltype(door)>, PlainForm>) {
      made.isPlain = true;
    } else {
      made.doors[made.doorCount++] = door;
    }
  };
  (add(doors), ...);
  return made;
}

constexpr Protocol kProtocols[] = {
#define QX_PROTOCOL(name, key, decoder, summary, ...) MakeProtocol({name, key, decoder, summary}, __VA_ARGS__),
#include "decoders/registry_rows.inc"
#undef QX_PROTOCOL
    // A run of Ethertypes, one row for all: it is found by the first.
    MakeProtocol({"3Com NBP", "nbp", DecodeNbp, nullptr}, Ethertype(kFirstNbp)),
};
constexpr size_t kProtocolCount = sizeof kProtocols / sizeof kProtocols[0];

constexpr size_t CountDoors(DoorKind kind) {
  size_t count = 0;
  for (const Protocol& protocol : kProtocols) {
    for (int32_t i = 0; i < protocol.doorCount; ++i) count += protocol.doors[i].kind == kind;
  }
  return count;
}

template <DoorKind kKind>
constexpr size_t kDoorCount = CountDoors(kKind);

template <size_t kRows>
struct DoorTable {
  DecoderRow rows[kRows];
};

template <DoorKind kKind>
consteval auto MakeTable() {
  DoorTable<kDoorCount<kKind>> table{};
  size_t count = 0;
  for (const Protocol& protocol : kProtocols) {
    for (int32_t i = 0; i < protocol.doorCount; ++i) {
      const Door& door = protocol.doors[i];
      if (door.kind != kKind) continue;
      size_t place = count++;
      for (; place > 0 && table.rows[place - 1].key >= door.key; --place) {
        if (table.rows[place - 1].key == door.key) TwoProtocolsHaveOneDoor();
        table.rows[place] = table.rows[place - 1];
      }
      table.rows[place] = {door.key, protocol.name, protocol.decode, &protocol};
    }
  }
  return table;
}
template <DoorKind kKind>
constexpr auto kTable = MakeTable<kKind>();

const DecoderRow* FindIn(const DecoderRow* rows, size_t count, uint32_t key) {
  const DecoderRow* first = rows;
  for (size_t left = count; left > 1;) {   // the compiler makes no branch of it
    const size_t half = left / 2;
    first += first[half].key <= key ? half : 0;
    left -= half;
  }
  return first->key == key ? first : nullptr;
}
template <DoorKind kKind>
const DecoderRow* FindRow(uint32_t key) {
  return FindIn(kTable<kKind>.rows, kDoorCount<kKind>, key);
}

// Where a table's rows stand, by their keys: for those that every frame asks and whose keys are few.
template <size_t kKeys>
struct RowPlaces {
  uint16_t of[kKeys];   // one more than the row's; 0 for none
};
template <DoorKind kKind, size_t kKeys>
consteval RowPlaces<kKeys> PlacesOf() {
  RowPlaces<kKeys> places{};
  for (size_t i = 0; i < kDoorCount<kKind>; ++i) places.of[kTable<kKind>.rows[i].key] = static_cast<uint16_t>(i + 1);
  return places;
}
template <DoorKind kKind, size_t kKeys>
const DecoderRow* FindPlaced(uint32_t key) {
  static constexpr RowPlaces<kKeys> kPlaces = PlacesOf<kKind, kKeys>();
  const size_t place = key < kKeys ? kPlaces.of[key] : 0;
  return place ? &kTable<kKind>.rows[place - 1] : nullptr;
}
constexpr size_t kByteKeys = 256, kApplicationKeys = 1024;   // a row beyond does not compile

// The same for keys that are spread: of those that share a place the first is found at once.
template <DoorKind kKind>
struct SpreadPlaces {
  static constexpr size_t PlaceOf(uint32_t key) { return (key ^ key >> 8) % kByteKeys; }
  uint16_t of[kByteKeys]{};
  consteval SpreadPlaces() {
    for (size_t i = kDoorCount<kKind>; i-- > 0;) of[PlaceOf(kTable<kKind>.rows[i].key)] = static_cast<uint16_t>(i);
  }
};
template <DoorKind kKind>
const DecoderRow* FindSpread(uint32_t key) {
  static constexpr SpreadPlaces<kKind> kPlaces;
  const DecoderRow& row = kTable<kKind>.rows[kPlaces.of[kPlaces.PlaceOf(key)]];
  return row.key == key ? &row : FindRow<kKind>(key);
}

struct NamedTable {
  const char* name;
  DecoderRowSpan rows;
};
template <DoorKind kKind>
constexpr NamedTable TableOf(const char* name) {
  return {name, {kTable<kKind>.rows, static_cast<int32_t>(kDoorCount<kKind>)}};
}
constexpr NamedTable kTables[] = {
    TableOf<DoorKind::kMedium>("medium"),
    TableOf<DoorKind::kEncapsulation>("encapsulation"),
    TableOf<DoorKind::kLlc>("LLC"),
    TableOf<DoorKind::kEthertype>("Ethertype"),
    TableOf<DoorKind::kIpProtocol>("IP protocol"),
    TableOf<DoorKind::kNextHeader>("next header"),
    TableOf<DoorKind::kApplication>("application"),
    TableOf<DoorKind::kTcpPort>("TCP port"),
    TableOf<DoorKind::kUdpPort>("UDP port"),
};

}  // namespace

const DecoderRow* FindMedium(uint8_t mediaType) { return FindPlaced<DoorKind::kMedium, kByteKeys>(mediaType); }
const DecoderRow* FindLinkEncapsulation(uint32_t key) { return FindRow<DoorKind::kEncapsulation>(key); }
const DecoderRow* FindLlcService(LlcService service) { return FindRow<DoorKind::kLlc>(static_cast<uint32_t>(service)); }
const DecoderRow* FindEthertype(uint16_t ethertype) {
  return FindSpread<DoorKind::kEthertype>(ethertype > kFirstNbp && ethertype <= kLastNbp ? kFirstNbp : ethertype);
}
const DecoderRow* FindIpProtocol(uint8_t protocol) { return FindPlaced<DoorKind::kIpProtocol, kByteKeys>(protocol); }
const DecoderRow* FindIPv6NextHeader(uint8_t nextHeader) { return FindPlaced<DoorKind::kNextHeader, kByteKeys>(nextHeader); }
const DecoderRow* FindBuiltinDecoder(uint32_t index) { return FindPlaced<DoorKind::kApplication, kApplicationKeys>(index); }

DecoderRowSpan RegistryTable(DoorKind kind, const char** name) {
  const NamedTable& table = kTables[static_cast<int32_t>(kind)];
  if (name) *name = table.name;
  return table.rows;
}

const ProtocolRow* RegistryProtocol(int32_t number) {
  return number >= 0 && static_cast<size_t>(number) < kProtocolCount ? &kProtocols[number] : nullptr;
}

int32_t ApplicationIndexOf(const ProtocolRow* protocol) {
  const Protocol& row = *static_cast<const Protocol*>(protocol);
  for (int32_t i = 0; i < row.doorCount; ++i) {
    if (row.doors[i].kind == DoorKind::kApplication) return static_cast<int32_t>(row.doors[i].key);
  }
  return -1;
}

namespace {

// The protocols by their functions: the places that follow a function's own hold those that share it.
class ProtocolsByFunction {
 public:
  ProtocolsByFunction() {
    for (const Protocol& protocol : kProtocols) {
      const Protocol*& place = PlaceOf(protocol.decode);
      if (!place) place = &protocol;   // of several with one function the first
    }
  }
  const Protocol* Find(DecoderFunction decode) { return PlaceOf(decode); }

 private:
  static constexpr size_t kPlaces = 4096;
  static_assert(kProtocolCount * 2 < kPlaces);
  const Protocol*& PlaceOf(DecoderFunction decode) {
    size_t at = reinterpret_cast<uintptr_t>(decode) / 16 % kPlaces;
    while (places_[at] && places_[at]->decode != decode) at = (at + 1) % kPlaces;
    return places_[at];
  }
  const Protocol* places_[kPlaces] = {};
};

}  // namespace

const ProtocolRow* ProtocolOf(DecoderFunction decode) {
  static ProtocolsByFunction byFunction;
  return byFunction.Find(decode);
}

}  // namespace qxview
