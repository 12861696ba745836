#include "core/state_table.h"

#include <cstdlib>
#include <cstring>

namespace qxview {
namespace {

constexpr uint32_t kChunkSize = 16384;    // what entries are taken from memory by, roughly
constexpr size_t kBlockOverhead = 16;     // what the allocator adds to a block, roughly

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
  uint32_t length, capacity;
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

// The index, on average at most one key a bucket, and the list of chunks.
bool StateTable::Start() {
  if (buckets_) return true;
  bucketShift_ = 31;
  while (bucketShift_ > 0 && 1u << (32 - bucketShift_) < row_->bounds.mostKeys) --bucketShift_;
  bucketCount_ = 1u << (32 - bucketShift_);
  chunkShift_ = 0;
  while ((2u << chunkShift_) * size_t{entrySize_} <= kChunkSize) ++chunkShift_;
  const size_t mostChunks = (row_->bounds.mostKeys >> chunkShift_) + 1;
  const size_t forBuckets = RoundUp(bucketCount_ * sizeof(uint32_t), sizeof(void*));
  buckets_ = static_cast<uint32_t*>(Take(forBuckets + mostChunks * sizeof(uint8_t*)));
  if (buckets_) chunks_ = reinterpret_cast<uint8_t**>(reinterpret_cast<uint8_t*>(buckets_) + forBuckets);
  return buckets_ != nullptr;
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
      bytesHeld_ -= kept->capacity + kBlockOverhead;
      Give(kept->data, kept->capacity);
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
bool StateTable::Keep(Entry* entry, const StateBytes& bytes) {
  Kept* kept = KeptOf(Slot(entry, 1));
  const uint32_t length = bytes.data ? bytes.length : 0, wanted = RoundUp(length, 32);
  if (kept->capacity < length || kept->capacity / 4 > wanted) {
    if (kept->data) bytesHeld_ -= kept->capacity + kBlockOverhead;
    Give(kept->data, kept->capacity);
    *kept = {};
    kept->data = static_cast<uint8_t*>(length ? Take(wanted) : nullptr);
    if (length && !kept->data) return false;
    kept->capacity = wanted;
    if (kept->data) bytesHeld_ += wanted + kBlockOverhead;
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

void StateTable::Remember(const void* key, const void* value, const StateBytes& bytes) {
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
  bool kept = Keep(entry, bytes);
  while (!kept && oldest_ != number) {
    Drop(oldest_);
    kept = Keep(entry, bytes);
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
  if (kept->data) bytesHeld_ -= kept->capacity + kBlockOverhead;
  Give(kept->data, kept->capacity);
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
  if (length > kept->capacity) {
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
  if (kept->capacity / 4 > wanted) Reserve(kept, wanted);
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
  const size_t forBuckets = RoundUp(bucketCount_ * sizeof(uint32_t), sizeof(void*));
  Give(buckets_, forBuckets + ((row_->bounds.mostKeys >> chunkShift_) + 1) * sizeof(uint8_t*));
  buckets_ = nullptr;
  chunks_ = nullptr;
  free_ = 0;
}

}  // namespace qxview
