#include "host/hash_key.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <exception>
#include <random>

#include "core/keyed_hash.h"

namespace qxview {
namespace {

constexpr uint32_t kIPv4 = 1, kIPv6 = 2;

// Two words of address bytes as the kind uses them.
void PackAddress(const AddressSlot& address, uint64_t* words) {
  words[0] = words[1] = 0;
  if (address.kind == kIPv6) std::memcpy(words, address.address, 16);
  if (address.kind == kIPv4) std::memcpy(words, address.address + 12, 4);
}

}  // namespace

namespace {

uint64_t AskDevice() noexcept {
  // The clock and an address back the device up where it has no entropy.
  static const int here = 0;
  uint64_t seed = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count()) ^
                  reinterpret_cast<uintptr_t>(&here);
  try {
    std::random_device device;
    seed ^= static_cast<uint64_t>(device()) << 32 | device();
  } catch (const std::exception&) {
  }
  return seed;
}

}  // namespace

uint64_t DrawSeed() noexcept {
  // Opening the device asks the processor what it has, which a virtual machine's host answers: as long as decoding a hundred
  // packets takes. So it is asked once, and what is drawn are its number's successors, mixed.
  static const uint64_t first = AskDevice();
  static std::atomic<uint64_t> drawn{0};
  uint64_t seed = first + drawn.fetch_add(0xD1342543DE82EF95, std::memory_order_relaxed);
  seed = (seed ^ seed >> 32) * 0xD6E8FEB86659FD93;
  seed = (seed ^ seed >> 32) * 0xD6E8FEB86659FD93;
  return seed ^ seed >> 32;
}

HashKey MakeHashKey(HashKeyForm form, const NetworkEnd& first, const NetworkEnd& second, uint8_t attribute) {
  HashKey key;
  key.words[0] = static_cast<uint64_t>(form) | static_cast<uint64_t>(attribute) << 8 |
                 static_cast<uint64_t>(first.port) << 16 | static_cast<uint64_t>(second.port) << 32 |
                 static_cast<uint64_t>(first.address.kind & 0xFF) << 48 |
                 static_cast<uint64_t>(second.address.kind & 0xFF) << 56;
  PackAddress(first.address, &key.words[1]);
  PackAddress(second.address, &key.words[3]);
  return key;
}

size_t HashKeyHash::operator()(const HashKey& key) const noexcept {
  static const HashSecret secret = MakeHashSecret(DrawSeed());
  return HashUnder(secret, key.words.data(), sizeof key.words);
}

}  // namespace qxview
