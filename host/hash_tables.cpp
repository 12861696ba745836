#include "host/hash_tables.h"

#include <algorithm>
#include <bitset>
#include <list>
#include <new>
#include <unordered_map>
#include <vector>

namespace qxview {
namespace {

using EntryList = std::list<HashEntry>;

HashKey KeyOf(const HashEntry& entry) {
  return MakeHashKey(entry.form, entry.first, entry.second, entry.attribute);
}

}  // namespace

class HashTable {
 public:
  HashEntry* Insert(const HashEntry& made) {
    const bool isPort = made.form == HashKeyForm::kPort;
    if (HashEntry* held = isPort ? FindPort(made.first.port) : Find(KeyOf(made))) {
      held->identifier = made.identifier;
      return held;
    }
    if (isPort) ports[made.first.port] = true;
    entries.push_back(made);
    try {
      if (isPort) {
        byPort.emplace(made.first.port, std::prev(entries.end()));
      } else {
        index.emplace(KeyOf(made), std::prev(entries.end()));
      }
    } catch (const std::bad_alloc&) {
      entries.pop_back();
      throw;
    }
    return &entries.back();
  }

  HashEntry* Find(const HashKey& key) {
    if (entries.empty()) return nullptr;
    const auto found = index.find(key);
    return found == index.end() ? nullptr : &*found->second;
  }

  // Every packet asks for its ports, of which most are in no table.
  HashEntry* FindPort(uint16_t port) {
    if (!ports[port]) return nullptr;
    const auto found = byPort.find(port);
    return found == byPort.end() ? nullptr : &*found->second;
  }

  std::bitset<65536> ports;   // that were inserted once
  EntryList entries;                                            // in the order of their insertion
  std::unordered_map<uint16_t, EntryList::iterator> byPort;     // those of a port alone
  std::unordered_map<HashKey, EntryList::iterator, HashKeyHash> index;   // the others
  std::vector<HashIterator*> iterators;
};

class HashIterator {
 public:
  HashTable* table;   // null when it is gone
  EntryList::iterator next;
};

HashTable* HashCreate() noexcept { return new (std::nothrow) HashTable; }

void HashDestroy(HashTable* table) noexcept {
  if (!table) return;
  for (HashIterator* iterator : table->iterators) iterator->table = nullptr;
  delete table;
}

size_t HashCount(const HashTable* table) noexcept { return table ? table->entries.size() : 0; }

namespace {

HashEntry* InsertEntry(HashTable* table, const HashEntry& made) noexcept {
  if (!table) return nullptr;
  try {
    return table->Insert(made);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

HashEntry* FindEntry(HashTable* table, const HashKey& key) noexcept { return table ? table->Find(key) : nullptr; }

}  // namespace

HashTable* HashCopy(const HashTable* table) noexcept {
  HashTable* const copy = table ? HashCreate() : nullptr;
  if (!copy) return nullptr;
  for (const HashEntry& entry : table->entries) {
    if (InsertEntry(copy, entry)) continue;
    HashDestroy(copy);
    return nullptr;
  }
  return copy;
}

HashEntry* HashInsert(HashTable* table, uint16_t port, int32_t identifier) noexcept {
  return InsertEntry(table, {HashKeyForm::kPort, {{}, port}, {}, 0, identifier, nullptr});
}
HashEntry* HashInsertGenericIPPort(HashTable* table, const AddressSlot& address, uint16_t port,
                                   int32_t identifier) noexcept {
  return InsertEntry(table, {HashKeyForm::kAddressPort, {address, port}, {}, 0, identifier, nullptr});
}
HashEntry* HashInsertIpPortPairWithAttrByte(HashTable* table, const NetworkEnd& first, const NetworkEnd& second,
                                            uint8_t attribute, int32_t identifier) noexcept {
  return InsertEntry(table, {HashKeyForm::kEndPair, first, second, attribute, identifier, nullptr});
}
HashEntry* HashInsertNetAddrPair(HashTable* table, const AddressSlot& first, const AddressSlot& second,
                                 int32_t identifier) noexcept {
  return InsertEntry(table, {HashKeyForm::kAddressPair, {first, 0}, {second, 0}, 0, identifier, nullptr});
}

HashEntry* HashFind(HashTable* table, uint16_t port) noexcept { return table ? table->FindPort(port) : nullptr; }
HashEntry* HashFindGenericIPPort(HashTable* table, const AddressSlot& address, uint16_t port) noexcept {
  return table ? FindEntry(table, AddressPortKey(address, port)) : nullptr;
}
HashEntry* HashFindIpPortPairWithAttrByte(HashTable* table, const NetworkEnd& first, const NetworkEnd& second,
                                          uint8_t attribute) noexcept {
  return FindEntry(table, MakeHashKey(HashKeyForm::kEndPair, first, second, attribute));
}
HashEntry* HashFindNetAddrPair(HashTable* table, const AddressSlot& first, const AddressSlot& second) noexcept {
  return FindEntry(table, MakeHashKey(HashKeyForm::kAddressPair, {first, 0}, {second, 0}, 0));
}

bool HashRemove(HashTable* table, HashEntry* entry) noexcept {
  if (!table || !entry) return false;
  const auto remove = [&](auto& index, const auto& key) {
    const auto found = index.find(key);
    if (found == index.end() || &*found->second != entry) return false;
    const EntryList::iterator gone = found->second;
    for (HashIterator* iterator : table->iterators) {
      if (iterator->next == gone) ++iterator->next;
    }
    index.erase(found);
    table->entries.erase(gone);
    return true;
  };
  return entry->form == HashKeyForm::kPort ? remove(table->byPort, entry->first.port) : remove(table->index, KeyOf(*entry));
}

void HashRemoveAll(HashTable* table) noexcept {
  if (!table) return;
  table->byPort.clear();
  table->index.clear();
  table->entries.clear();
  for (HashIterator* iterator : table->iterators) iterator->next = table->entries.end();
}

HashIterator* HashIteratorCreate(HashTable* table) noexcept {
  if (!table) return nullptr;
  HashIterator* iterator = new (std::nothrow) HashIterator{table, table->entries.begin()};
  if (!iterator) return nullptr;
  try {
    table->iterators.push_back(iterator);
  } catch (const std::bad_alloc&) {
    delete iterator;
    return nullptr;
  }
  return iterator;
}

HashEntry* HashIteratorNext(HashIterator* iterator) noexcept {
  if (!iterator || !iterator->table) return nullptr;
  if (iterator->next == iterator->table->entries.end()) return nullptr;
  return &*iterator->next++;
}

void HashIteratorDestroy(HashIterator* iterator) noexcept {
  if (!iterator) return;
  if (iterator->table) {
    auto& walks = iterator->table->iterators;
    walks.erase(std::remove(walks.begin(), walks.end(), iterator), walks.end());
  }
  delete iterator;
}

}  // namespace qxview
