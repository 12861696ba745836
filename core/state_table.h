// The one form of state between frames: a bounded table from keys to values of fixed size. A key holds its last values
// (one, or a short history), and each of them some bytes where the table's row allows for them. What is oldest goes
// first. Keys are records without padding, compared and hashed as bytes.
#pragma once
#include <cstddef>
#include <cstdint>

#include "core/budgets.h"
#include "core/keyed_hash.h"

namespace qxview {

// What the tables of an engine take in all. A bound below what they want makes them forget, never fail.
struct StateMemory {
  size_t used;
  size_t most;
};

// What makes a key young: that it was told, or that it was asked for as well.
enum class Aging : uint8_t { kByTelling, kByUse };

struct StateBounds {
  uint32_t mostKeys = 0;
  uint16_t depth = 1;        // values that a key holds; the oldest makes room
  uint32_t mostBytes = 0;    // what a table of values with bytes may take, bookkeeping included; 0: values have none
  Aging aging = Aging::kByTelling;
};

struct StateRow {
  const char* name;
  uint16_t keySize;     // a multiple of 8, at most kMostKeySize
  uint16_t valueSize;   // at most kMostValueSize
  StateBounds bounds;   // without keys the host keeps this state, and it is recorded alone
};

struct StateBytes {
  const uint8_t* data;
  uint32_t length;
};

class StateTable {
 public:
  // Takes no memory before the first value is told. The secret and the row must outlive the table.
  StateTable(const StateRow& row, StateMemory& memory, const HashSecret& secret);
  ~StateTable() { Clear(); }
  StateTable(const StateTable&) = delete;
  StateTable& operator=(const StateTable&) = delete;

  // The value that the key was told last, or the one `back` - 1 before it, with its bytes where `bytes` is not null;
  // null when there is none. Good until the table is told something.
  const void* Recall(const void* key, int32_t back, StateBytes* bytes);
  // Makes this the key's last value. Without memory older keys are forgotten for it, and in the end it is not kept. Bytes that
  // are the start of more `count` as all of them: what is forgotten when does not change with how many of them are kept.
  void Remember(const void* key, const void* value, const StateBytes& bytes, uint32_t count = 0);
  // Puts another value in the place of the one that Recall gives for `back`; its bytes stay.
  void Revise(const void* key, int32_t back, const void* value);
  void Forget(const void* key);
  // Adds to the bytes of the key's last value; false when there is no value, no memory, or the table's bytes ended over it.
  bool Extend(const void* key, const StateBytes& more);
  // Takes bytes off the front of the key's last value.
  void DropFront(const void* key, uint32_t count);
  // Forgets all but the key's last `count` values.
  void KeepLast(const void* key, uint32_t count);
  // Forgets all and gives the memory back.
  void Clear();

  uint32_t Count() const { return count_; }        // of keys
  uint32_t ValueSize() const { return row_->valueSize; }
  size_t BytesHeld() const { return bytesHeld_; }   // what is counted towards mostBytes

 private:
  struct Entry;
  struct Kept;   // the bytes of a value

  Entry* At(uint32_t number) const;
  uint8_t* KeyOf(Entry* entry) const;
  uint8_t* Slot(Entry* entry, uint32_t back) const;
  Kept* KeptOf(uint8_t* slot) const;
  uint32_t* Bucket(uint32_t hash) const { return &buckets_[hash >> bucketShift_]; }

  uint32_t Find(const void* key);
  bool Start();
  uint32_t MostBuckets() const;
  size_t SizeOfChunkList() const { return ((row_->bounds.mostKeys >> chunkShift_) + 1) * sizeof(uint8_t*); }
  void GrowIndex();
  bool AddChunk();
  uint32_t Add(const void* key);
  uint8_t* Push(Entry* entry);
  void Grow(Entry* entry);
  void DropRing(Entry* entry);
  bool Keep(Entry* entry, const StateBytes& bytes, uint32_t count);
  bool Reserve(Kept* kept, uint32_t wanted);
  void MakeNewest(uint32_t number);
  void Unlink(uint32_t number);
  void Drop(uint32_t number);
  void* Take(size_t size);
  void Give(void* memory, size_t size);

  const StateRow* row_;
  StateMemory* memory_;
  const HashSecret* secret_;
  uint32_t slotSize_, entrySize_;
  uint32_t* buckets_ = nullptr;     // numbers of entries, from 1; 0 ends a chain and the list of free ones
  uint8_t** chunks_ = nullptr;
  int32_t bucketShift_ = 0;
  uint32_t bucketCount_ = 0;
  uint32_t chunkShift_ = 0;
  uint32_t chunkCount_ = 0;
  uint32_t free_ = 0;
  uint32_t count_ = 0;
  uint32_t oldest_ = 0, newest_ = 0;
  uint32_t asked_ = 0;              // found last: decoders ask for one key many times, and tell what they asked for
  size_t bytesHeld_ = 0;
};

}  // namespace qxview
