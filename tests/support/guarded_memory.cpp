#include "tests/support/guarded_memory.h"

#include <cstdlib>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif
#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace qxview::testing {
namespace {

constexpr size_t kPage = 65536;   // a multiple of every system's

}  // namespace

GuardedMemory::GuardedMemory(size_t most) {
  const size_t size = (most + kPage - 1) / kPage * kPage;
#ifdef _WIN32
  begin_ = static_cast<uint8_t*>(VirtualAlloc(nullptr, size + kPage, MEM_RESERVE, PAGE_NOACCESS));
  if (!begin_ || !VirtualAlloc(begin_, size, MEM_COMMIT, PAGE_READWRITE)) std::abort();
#else
  void* const memory = mmap(nullptr, size + kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED || mprotect(memory, size, PROT_READ | PROT_WRITE) != 0) std::abort();
  begin_ = static_cast<uint8_t*>(memory);
#endif
  end_ = begin_ + size;
}

GuardedMemory::~GuardedMemory() {
#ifdef __SANITIZE_ADDRESS__
  ASAN_UNPOISON_MEMORY_REGION(begin_, static_cast<size_t>(end_ - begin_));
#endif
#ifdef _WIN32
  VirtualFree(begin_, 0, MEM_RELEASE);
#else
  munmap(begin_, static_cast<size_t>(end_ - begin_) + kPage);
#endif
}

uint8_t* GuardedMemory::Room(size_t size) const {
#ifdef __SANITIZE_ADDRESS__
  constexpr size_t kRecord = 8;   // what a record's numbers stand at
  uint8_t* const at = end_ - (size + kRecord - 1) / kRecord * kRecord;
  ASAN_UNPOISON_MEMORY_REGION(at, size);
  ASAN_POISON_MEMORY_REGION(at + size, static_cast<size_t>(end_ - at) - size);
  return at;
#else
  return end_ - size;
#endif
}

}  // namespace qxview::testing
