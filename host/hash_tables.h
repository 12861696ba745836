// The host's hash tables. A table holds entries under keys of any of four forms: a 16-bit port, an (address, port) end,
// two ends with an attribute byte, or two network addresses. The protocol definitions are such tables; the others serve
// the view's search and export.
//
// No function throws. Where memory ends, HashCreate, HashCopy and HashIteratorCreate give null and an insertion gives null and
// leaves the table as it was. Every function takes a null table: it finds nothing and does nothing. The tables do not
// lock: callers that share one take a lock of their own (TableLock) around each call and the use of its entry.
#pragma once
#include <cstddef>

#include "host/hash_key.h"

namespace qxview {

// An entry lives at its address until it is removed.
struct HashEntry {
  HashKeyForm form;
  NetworkEnd first;      // the port alone for HashKeyForm::kPort
  NetworkEnd second;     // of the pair forms
  uint8_t attribute;     // of HashKeyForm::kEndPair
  int32_t identifier;    // the protocol identifier
  void* data;            // the caller's; never followed or freed here
};

class HashTable;
class HashIterator;

HashTable* HashCreate() noexcept;
// A table with the same entries, inserted in the same order; null for null.
HashTable* HashCopy(const HashTable* table) noexcept;
// Frees the table with its entries. Iterators over it are ended, not freed.
void HashDestroy(HashTable* table) noexcept;
size_t HashCount(const HashTable* table) noexcept;

// Each insertion stores the identifier under the key, over an entry that stands there, and gives the entry.
HashEntry* HashInsert(HashTable* table, uint16_t port, int32_t identifier) noexcept;
HashEntry* HashInsertGenericIPPort(HashTable* table, const AddressSlot& address, uint16_t port,
                                   int32_t identifier) noexcept;
HashEntry* HashInsertIpPortPairWithAttrByte(HashTable* table, const NetworkEnd& first, const NetworkEnd& second,
                                            uint8_t attribute, int32_t identifier) noexcept;
HashEntry* HashInsertNetAddrPair(HashTable* table, const AddressSlot& first, const AddressSlot& second,
                                 int32_t identifier) noexcept;

// Each gives the entry of the key, or null. The ends and addresses of a pair count in their order.
HashEntry* HashFind(HashTable* table, uint16_t port) noexcept;
HashEntry* HashFindGenericIPPort(HashTable* table, const AddressSlot& address, uint16_t port) noexcept;
HashEntry* HashFindIpPortPairWithAttrByte(HashTable* table, const NetworkEnd& first, const NetworkEnd& second,
                                          uint8_t attribute) noexcept;
HashEntry* HashFindNetAddrPair(HashTable* table, const AddressSlot& first, const AddressSlot& second) noexcept;

// Removes an entry that this table gave; false for null and for an entry of another table. The others stay where they
// are.
bool HashRemove(HashTable* table, HashEntry* entry) noexcept;
void HashRemoveAll(HashTable* table) noexcept;

// Walks the entries, the oldest insertion first; null past the last. Any entry may be removed while a walk is under
// way; one that is inserted before the walk has reached its end is walked too.
HashIterator* HashIteratorCreate(HashTable* table) noexcept;
HashEntry* HashIteratorNext(HashIterator* iterator) noexcept;
void HashIteratorDestroy(HashIterator* iterator) noexcept;

}  // namespace qxview
