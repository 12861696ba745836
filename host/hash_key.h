// Keys of the host's tables: up to two network ends and an attribute byte, packed so that equal keys are equal bytes.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

#include "qxview/qxview_types.h"

namespace qxview {

// One end of a conversation; port 0 stands for any port where a table says so.
struct NetworkEnd {
  AddressSlot address;
  uint16_t port;
};

// What a key is made of; keys of two forms never match.
enum class HashKeyForm : uint8_t { kPort, kAddressPort, kEndPair, kAddressPair };

struct HashKey {
  std::array<uint64_t, 5> words;   // form, attribute and ports; then kind and bytes of both addresses
  bool operator==(const HashKey&) const = default;
};

// Bytes that an address's kind does not use do not count.
HashKey MakeHashKey(HashKeyForm form, const NetworkEnd& first, const NetworkEnd& second, uint8_t attribute);

inline HashKey AddressPortKey(const AddressSlot& address, uint16_t port) {
  return MakeHashKey(HashKeyForm::kAddressPort, {address, port}, {}, 0);
}

// A number for the hashes of tables that packets fill, which nobody can know beforehand. Another one with each call.
uint64_t DrawSeed() noexcept;

// Under a secret of the process.
struct HashKeyHash {
  size_t operator()(const HashKey& key) const noexcept;
};

}  // namespace qxview
