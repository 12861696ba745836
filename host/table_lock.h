// A lock of the host's tables: a critical section on Windows, whose cross-compiler has no std::mutex in every thread
// model, and a mutex elsewhere. Not recursive in its contract.
#pragma once
#include <memory>

namespace qxview {

class TableLock {
 public:
  TableLock();   // throws std::bad_alloc
  ~TableLock();
  TableLock(const TableLock&) = delete;
  TableLock& operator=(const TableLock&) = delete;
  void Lock();
  void Unlock();

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

class TableLockHolder {
 public:
  explicit TableLockHolder(TableLock& lock) : lock_(lock) { lock_.Lock(); }
  ~TableLockHolder() { lock_.Unlock(); }
  TableLockHolder(const TableLockHolder&) = delete;
  TableLockHolder& operator=(const TableLockHolder&) = delete;

 private:
  TableLock& lock_;
};

}  // namespace qxview
