#include "core/state_table.h"

#include <cstdlib>
#include <cstring>

namespace qxview {
namespace {

constexpr uint32_t kChunkSize = 16384;    // what entries are taken from memory by, roughly
constexpr size_t kBlockOverhead = 16;     // what the allocator adds to a block, roughly
constexpr uint32_t kStep = 32;            // of blocks of bytes
constexpr uint32_t kFirstBuckets = 256;

constexpr uint32_t RoundUp(uint32_t size, uint32_t step) { return (size + step - 1) / step * step; }

// Keys are few words each, so that a call takes longer than their comparison.
inline bool AreEqual(const uint8_t* one, const void* other, uint32_t size) {
  for (uint32_t at = 0; at < size; at += 8) {
    uint64_t words[2];
    std::memcpy(&words[0], one + at, 8);
    std::memcpy(&words[1], static_cast<const uint8_t*>(other) + at, 8);
    if (words[0] != words[1]) return false;
  }
  return true;
}

}  // namespace

// Behind it stand the key and the first slot for a value. More values move to a ring of their own.
struct alignas(8) StateTable::Entry {
  uint8_t* values;            // a ring of `capacity` slots
  uint32_t hash;
  uint32_t chain;             // the next in the bucket, or the next free one
  uint32_t older, newer;
  uint16_t first, count, capacity, unused;
};

struct alignas(8) StateTable::Kept {
  uint8_t* data;
  uint32_t length;
  uint32_t capacity;   // what is counted, a multiple of kStep; odd where the block has kStep bytes alone

  uint32_t Counted() const { return capacity & ~1u; }
  uint32_t Room() const { return capacity & 1 ? kStep : capacity; }
};

StateTable::StateTable(const StateRow& row, StateMemory& memory, const HashSecret& secret)
    : row_(&row), memory_(&memory), secret_(&secret),
      slotSize_(RoundUp(row.valueSize, 8) + (row.bounds.mostBytes ? sizeof(Kept) : 0)),
      entrySize_(sizeof(Entry) + row.keySize + slotSize_) {}

StateTable::Entry* StateTable::At(uint32_t number) const {
  const uint32_t index = number - 1;
  uint8_t* chunk = chunks_[index >> chunkShift_];
  return reinterpret_cast<Entry*>(chunk + (index & ((1u << chunkShift_) - 1)) * size_t{entrySize_});
}

uint8_t* StateTable::KeyOf(Entry* entry) const { return reinterpret_cast<uint8_t*>(entry + 1); }

uint8_t* StateTable::Slot(Entry* entry, uint32_t back) const {
  uint32_t index = entry->first + entry->count - back;
  if (index >= entry->capacity) index -= entry->capacity;
  return entry->values + index * size_t{slotSize_};
}

StateTable::Kept* StateTable::KeptOf(uint8_t* slot) const {
  return reinterpret_cast<Kept*>(slot + RoundUp(row_->valueSize, 8));
}

void* StateTable::Take(size_t size) {
  if (memory_->used + size > memory_->most) return nullptr;
  void* taken = std::calloc(1, size);
  if (taken) memory_->used += size;
  return taken;
}

void StateTable::Give(void* memory, size_t size) {
  if (!memory) return;
  std::free(memory);
  memory_->used -= size;
}

// ---- Entries by key ----

uint32_t StateTable::Find(const void* key) {
  if (count_ == 0) return 0;
  if (asked_ && AreEqual(KeyOf(At(asked_)), key, row_->keySize)) return asked_;
  const uint32_t hash = HashUnder(*secret_, key, row_->keySize);
  for (uint32_t number = *Bucket(hash); number; number = At(number)->chain) {
    Entry* entry = At(number);
    if (entry->hash == hash && AreEqual(KeyOf(entry), key, row_->keySize)) return asked_ = number;
  }
  return 0;
}

// On average at most one key a bucket.
uint32_t StateTable::MostBuckets() const {
  uint32_t most = 2;
  while (most < row_->bounds.mostKeys) most *= 2;
  return most;
}

// The first index and the list of chunks.
bool StateTable::Start() {
  if (buckets_) return true;
  chunkShift_ = 0;
  while ((2u << chunkShift_) * size_t{entrySize_} <= kChunkSize) ++chunkShift_;
  if (!chunks_) chunks_ = static_cast<uint8_t**>(Take(SizeOfChunkList()));
  if (!chunks_) return false;
  GrowIndex();
  return buckets_ != nullptr;
}

// Twice the buckets, as far as there is memory.
void StateTable::GrowIndex() {
  const uint32_t most = MostBuckets(), first = most < kFirstBuckets ? most : kFirstBuckets;
  const uint32_t grown = buckets_ ? bucketCount_ * 2 : first;
  if (grown > most) return;
  auto* const taken = static_cast<uint32_t*>(Take(grown * sizeof(uint32_t)));
  if (!taken) return;
  Give(buckets_, bucketCount_ * sizeof(uint32_t));
  buckets_ = taken;
  bucketCount_ = grown;
  bucketShift_ = 32;
  for (uint32_t left = grown; left > 1; left /= 2) --bucketShift_;
  for (uint32_t number = oldest_; number; number = At(number)->newer) {
    Entry* const entry = At(number);
    entry->chain = *Bucket(entry->hash);
    *Bucket(entry->hash) = number;
  }
}

bool StateTable::AddChunk() {
  const uint32_t entries = 1u << chunkShift_, first = chunkCount_ * entries + 1;
  if (first > row_->bounds.mostKeys) return false;
  void* chunk = Take(entries * size_t{entrySize_});
  if (!chunk) return false;
  chunks_[chunkCount_++] = static_cast<uint8_t*>(chunk);
  for (uint32_t number = first + entries; number-- > first;) {
    if (number > row_->bounds.mostKeys) continue;
    At(number)->chain = free_;
    free_ = number;
  }
  return true;
}

uint32_t StateTable::Add(const void* key) {
  if (!Start()) return 0;
  if (!free_ && !AddChunk()) Drop(oldest_);
  if (!free_) return 0;
  if (count_ >= bucketCount_) GrowIndex();
  const uint32_t number = free_;
  Entry* entry = At(number);
  free_ = entry->chain;
  uint8_t* const own = KeyOf(entry);
  std::memset(entry, 0, entrySize_);
  std::memcpy(own, key, row_->keySize);
  entry->values = own + row_->keySize;
  entry->capacity = 1;
  entry->hash = HashUnder(*secret_, key, row_->keySize);
  entry->chain = *Bucket(entry->hash);
  *Bucket(entry->hash) = number;
  entry->older = newest_;
  (newest_ ? At(newest_)->newer : oldest_) = number;
  newest_ = asked_ = number;
  ++count_;
  bytesHeld_ += entrySize_;
  return number;
}

// ---- Entries by age ----

void StateTable::Unlink(uint32_t number) {
  const Entry* entry = At(number);
  (entry->newer ? At(entry->newer)->older : newest_) = entry->older;
  (entry->older ? At(entry->older)->newer : oldest_) = entry->newer;
}

void StateTable::MakeNewest(uint32_t number) {
  if (number == newest_) return;
  Unlink(number);
  Entry* entry = At(number);
  entry->newer = 0;
  entry->older = newest_;
  At(newest_)->newer = number;
  newest_ = number;
}

void StateTable::Drop(uint32_t number) {
  if (!number) return;
  Entry* entry = At(number);
  Unlink(number);
  uint32_t* link = Bucket(entry->hash);
  while (*link != number) link = &At(*link)->chain;
  *link = entry->chain;
  if (row_->bounds.mostBytes) {
    for (uint32_t i = 0; i < entry->capacity; ++i) {
      const Kept* kept = KeptOf(entry->values + i * size_t{slotSize_});
      if (!kept->data) continue;
      bytesHeld_ -= kept->Counted() + kBlockOverhead;
      Give(kept->data, kept->Room());
    }
  }
  DropRing(entry);
  entry->chain = free_;
  free_ = number;
  if (asked_ == number) asked_ = 0;
  --count_;
  bytesHeld_ -= entrySize_;
}

// ---- The values of an entry ----

void StateTable::DropRing(Entry* entry) {
  if (entry->values == KeyOf(entry) + row_->keySize) return;
  const size_t size = entry->capacity * size_t{slotSize_};
  Give(entry->values, size);
  bytesHeld_ -= size + kBlockOverhead;
}

void StateTable::Grow(Entry* entry) {
  const uint32_t doubled = entry->capacity * 2u, depth = row_->bounds.depth;
  const uint32_t capacity = doubled < depth ? doubled : depth;
  const size_t size = capacity * size_t{slotSize_};
  auto* ring = static_cast<uint8_t*>(Take(size));
  if (!ring) return;
  for (uint32_t i = 0; i < entry->count; ++i) {
    std::memcpy(ring + i * size_t{slotSize_}, Slot(entry, entry->count - i), slotSize_);
  }
  DropRing(entry);
  entry->values = ring;
  entry->first = 0;
  entry->capacity = static_cast<uint16_t>(capacity);
  bytesHeld_ += size + kBlockOverhead;
}

// The slot of a new last value: a further one, or the oldest one's.
uint8_t* StateTable::Push(Entry* entry) {
  if (entry->count == entry->capacity && entry->capacity < row_->bounds.depth) Grow(entry);
  if (entry->count < entry->capacity) {
    ++entry->count;
  } else {
    entry->first = static_cast<uint16_t>((entry->first + 1) % entry->capacity);
  }
  return Slot(entry, 1);
}

// The bytes go where those of the value before in this slot were, unless that is too little or far too much.
bool StateTable::Keep(Entry* entry, const StateBytes& bytes, uint32_t count) {
  Kept* kept = KeptOf(Slot(entry, 1));
  const uint32_t length = bytes.data ? bytes.length : 0, told = count > length ? count : length, wanted = RoundUp(told, kStep);
  const bool counts = kept->Counted() >= told && kept->Counted() / 4 <= wanted;   // as before
  const uint32_t counted = counts ? kept->Counted() : wanted;
  const bool isShort = length < told && length <= kStep && counted > kStep;
  if (!counts || isShort != (kept->Room() < kept->Counted())) {
    if (kept->data) bytesHeld_ -= kept->Counted() + kBlockOverhead;
    Give(kept->data, kept->Room());
    *kept = {};
    kept->data = static_cast<uint8_t*>(length ? Take(isShort ? kStep : counted) : nullptr);
    if (length && !kept->data) return false;
    kept->capacity = counted + isShort;
    if (kept->data) bytesHeld_ += counted + kBlockOverhead;
  }
  if (length) std::memcpy(kept->data, bytes.data, length);
  kept->length = length;
  return true;
}

// ---- The operation ----

const void* StateTable::Recall(const void* key, int32_t back, StateBytes* bytes) {
  const uint32_t number = Find(key);
  if (!number) return nullptr;
  if (row_->bounds.aging == Aging::kByUse) MakeNewest(number);
  Entry* entry = At(number);
  if (back < 1 || back > entry->count) return nullptr;
  uint8_t* slot = Slot(entry, static_cast<uint32_t>(back));
  if (bytes && row_->bounds.mostBytes) *bytes = {KeptOf(slot)->data, KeptOf(slot)->length};
  return slot;
}

void StateTable::Remember(const void* key, const void* value, const StateBytes& bytes, uint32_t count) {
  uint32_t number = Find(key);
  if (!number) {
    if (count_ >= row_->bounds.mostKeys) Drop(oldest_);
    number = Add(key);
  }
  if (!number) return;
  MakeNewest(number);
  Entry* entry = At(number);
  std::memcpy(Push(entry), value, row_->valueSize);
  if (!row_->bounds.mostBytes) return;
  bool kept = Keep(entry, bytes, count);
  while (!kept && oldest_ != number) {
    Drop(oldest_);
    kept = Keep(entry, bytes, count);
  }
  if (!kept) Drop(number);
  while (bytesHeld_ > row_->bounds.mostBytes) Drop(oldest_);
}

void StateTable::Revise(const void* key, int32_t back, const void* value) {
  const uint32_t number = Find(key);
  if (!number || back < 1 || back > At(number)->count) return;
  std::memcpy(Slot(At(number), static_cast<uint32_t>(back)), value, row_->valueSize);
}

void StateTable::Forget(const void* key) { Drop(Find(key)); }

// Moves a value's bytes to a block that has room for as many.
bool StateTable::Reserve(Kept* kept, uint32_t wanted) {
  auto* moved = static_cast<uint8_t*>(wanted ? Take(wanted) : nullptr);
  if (wanted && !moved) return false;
  if (kept->length) std::memcpy(moved, kept->data, kept->length);
  if (kept->data) bytesHeld_ -= kept->Counted() + kBlockOverhead;
  Give(kept->data, kept->Room());
  kept->data = moved;
  kept->capacity = wanted;
  if (moved) bytesHeld_ += wanted + kBlockOverhead;
  return true;
}

bool StateTable::Extend(const void* key, const StateBytes& more) {
  const uint32_t number = Find(key);
  if (!number || !row_->bounds.mostBytes || At(number)->count == 0) return false;
  MakeNewest(number);
  Kept* kept = KeptOf(Slot(At(number), 1));
  const uint64_t length = uint64_t{kept->length} + more.length;
  if (length > row_->bounds.mostBytes) return false;
  if (length > kept->Room()) {
    const uint64_t grown = length + length / 2;   // few moves for many small additions
    const uint32_t wanted = RoundUp(static_cast<uint32_t>(grown), 32);
    while (!Reserve(kept, wanted)) {
      if (oldest_ == number) return false;
      Drop(oldest_);
    }
    while (bytesHeld_ > row_->bounds.mostBytes && oldest_ != number) Drop(oldest_);
    if (bytesHeld_ > row_->bounds.mostBytes) return Drop(number), false;
  }
  if (more.length) std::memcpy(kept->data + kept->length, more.data, more.length);
  kept->length = static_cast<uint32_t>(length);
  return true;
}

void StateTable::DropFront(const void* key, uint32_t count) {
  const uint32_t number = Find(key);
  if (!number || !row_->bounds.mostBytes || At(number)->count == 0) return;
  Kept* kept = KeptOf(Slot(At(number), 1));
  kept->length = count < kept->length ? kept->length - count : 0;
  if (kept->length) std::memmove(kept->data, kept->data + count, kept->length);
  const uint32_t wanted = RoundUp(kept->length, 32);
  if (kept->Room() / 4 > wanted) Reserve(kept, wanted);
}

void StateTable::KeepLast(const void* key, uint32_t count) {
  const uint32_t number = Find(key);
  if (!number) return;
  Entry* entry = At(number);
  if (count == 0) return Drop(number);
  if (count >= entry->count) return;
  entry->first = static_cast<uint16_t>((entry->first + entry->count - count) % entry->capacity);
  entry->count = static_cast<uint16_t>(count);
}

void StateTable::Clear() {
  while (oldest_) Drop(oldest_);
  while (chunkCount_) Give(chunks_[--chunkCount_], (size_t{1} << chunkShift_) * entrySize_);
  Give(buckets_, bucketCount_ * sizeof(uint32_t));
  Give(chunks_, SizeOfChunkList());
  buckets_ = nullptr;
  chunks_ = nullptr;
  free_ = 0;
}

}  // namespace qxview
