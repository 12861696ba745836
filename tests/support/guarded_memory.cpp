#include "tests/support/guarded_memory.h"

#include <cstdlib>

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
#ifdef _WIN32
  VirtualFree(begin_, 0, MEM_RELEASE);
#else
  munmap(begin_, static_cast<size_t>(end_ - begin_) + kPage);
#endif
}

}  // namespace qxview::testing
