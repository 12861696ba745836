#include "core/keyed_hash.h"

namespace qxview {
namespace {

// SplitMix64: the words that a seed stands for.
uint64_t NextWord(uint64_t* state) {
  uint64_t word = *state += 0x9E3779B97F4A7C15u;
  word = (word ^ word >> 30) * 0xBF58476D1CE4E5B9u;
  word = (word ^ word >> 27) * 0x94D049BB133111EBu;
  return word ^ word >> 31;
}

}  // namespace

HashSecret MakeHashSecret(uint64_t seed) {
  HashSecret secret;
  for (uint32_t& word : secret.words) word = static_cast<uint32_t>(NextWord(&seed) >> 32);
  secret.multiplier = NextWord(&seed) | 1;
  return secret;
}

}  // namespace qxview
