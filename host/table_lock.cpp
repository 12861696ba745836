#include "host/table_lock.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <mutex>
#endif

namespace qxview {

#ifdef _WIN32
struct TableLock::Native {
  Native() { InitializeCriticalSection(&section); }
  ~Native() { DeleteCriticalSection(&section); }
  void Lock() { EnterCriticalSection(&section); }
  void Unlock() { LeaveCriticalSection(&section); }
  CRITICAL_SECTION section;
};
#else
struct TableLock::Native {
  void Lock() { mutex.lock(); }
  void Unlock() { mutex.unlock(); }
  std::mutex mutex;
};
#endif

TableLock::TableLock() : native_(std::make_unique<Native>()) {}
TableLock::~TableLock() = default;
void TableLock::Lock() { native_->Lock(); }
void TableLock::Unlock() { native_->Unlock(); }

}  // namespace qxview
