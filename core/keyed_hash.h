// The hash of tables whose keys packets choose. Which keys share a bucket hangs on a secret that is drawn for each
// engine, so that nobody can write a capture of keys that collide: a sum of products of the key's words, each shifted
// by a word of the secret, and the highest bits of that sum times an odd number (the universal families NH and
// multiply-shift). Any two keys, whoever chose them, fall into the same of n buckets with a probability of little more
// than 2 / n. Mixing under a seed would not do: a difference in a word's highest bit passes a multiplication unchanged,
// whatever the seed, and the next word can take it back.
#pragma once
#include <cstdint>
#include <cstring>

#include "core/budgets.h"

namespace qxview {

struct HashSecret {
  uint32_t words[kMostKeySize / sizeof(uint32_t)];
  uint64_t multiplier;   // odd
};

HashSecret MakeHashSecret(uint64_t seed);

// 32 bits, the highest mixed best; `size` is a multiple of 8 and at most kMostKeySize.
inline uint32_t HashUnder(const HashSecret& secret, const void* key, uint32_t size) {
  uint64_t sum = 0;
  for (uint32_t at = 0; at < size; at += 8) {
    uint32_t pair[2];
    std::memcpy(pair, static_cast<const uint8_t*>(key) + at, sizeof pair);
    const uint32_t first = pair[0] + secret.words[at / 4], second = pair[1] + secret.words[at / 4 + 1];
    sum += static_cast<uint64_t>(first) * second;
  }
  return static_cast<uint32_t>(sum * secret.multiplier >> 32);
}

}  // namespace qxview
