#include "tests/support/small_stack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <ctime>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#include <sys/mman.h>
#endif

namespace qxview::testing {
namespace {

constexpr uint8_t kPaint = 0xA7;
size_t deepest = 0;

struct Job {
  const std::function<void()>* work;
  double milliseconds = 0;
  size_t stackBytes = 0;

  void Run() {
    const double start = ThreadMilliseconds();
    (*work)();
    milliseconds = ThreadMilliseconds() - start;
  }
};

// How much of painted memory was written, from its upper end down.
[[maybe_unused]] size_t Unpainted(const volatile uint8_t* low, size_t size) {
  size_t untouched = 0;
  while (untouched < size && low[untouched] == kPaint) ++untouched;
  return size - untouched;
}

#ifdef _WIN32
constexpr size_t kRoom = 2 * kSmallStack;   // painted: the system's smallest stacks are larger than what is allowed

// Paints the stack below the caller. The memory is given back on return, and what the caller calls next stands there.
__attribute__((noinline)) const volatile uint8_t* PaintStack() {
  volatile uint8_t room[kRoom];
  for (size_t i = kRoom; i > 0; --i) room[i - 1] = kPaint;   // downwards: the system adds pages in that order
  volatile uintptr_t low = reinterpret_cast<uintptr_t>(room);
  return reinterpret_cast<const volatile uint8_t*>(low);
}

DWORD WINAPI RunPainted(void* given) {
  Job* job = static_cast<Job*>(given);
  const volatile uint8_t* low = PaintStack();
  job->Run();
  job->stackBytes = Unpainted(low, kRoom);
  return 0;
}

void RunOnThread(Job* job) {
  const HANDLE thread = CreateThread(nullptr, 2 * kRoom, RunPainted, job, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  ASSERT_NE(thread, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}
#else
void* RunPlain(void* given) {
  static_cast<Job*>(given)->Run();
  return nullptr;
}

void RunOnThread(Job* job) {
  constexpr size_t kGuard = 4096;
  uint8_t* memory = static_cast<uint8_t*>(mmap(nullptr, kGuard + kSmallStack, PROT_READ | PROT_WRITE,
                                               MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(memory, MAP_FAILED);
  mprotect(memory, kGuard, PROT_NONE);   // one more byte ends the program
  std::memset(memory + kGuard, kPaint, kSmallStack);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, memory + kGuard, kSmallStack);
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, RunPlain, job), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
#ifndef __SANITIZE_ADDRESS__   // whose marks over the frames of a thread stay when it has ended
  job->stackBytes = Unpainted(memory + kGuard, kSmallStack);
#endif
  munmap(memory, kGuard + kSmallStack);
}
#endif

}  // namespace

double ThreadMilliseconds() {
#ifdef _WIN32
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
#else
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return 1e3 * static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_nsec);
#endif
}

double BestMilliseconds(const std::function<void()>& work, int runs) {
  double best = 1e9;
  for (int run = 0; run < runs; ++run) {
    const double start = ThreadMilliseconds();
    work();
    best = std::min(best, ThreadMilliseconds() - start);
  }
  return best;
}

double RunOnSmallStack(const std::function<void()>& work) {
  Job job{&work};
  RunOnThread(&job);
  EXPECT_LE(job.stackBytes, kSmallStack);
  deepest = std::max(deepest, job.stackBytes);
  ::testing::Test::RecordProperty("stackBytes", static_cast<int>(job.stackBytes));
  return job.milliseconds;
}

size_t DeepestStack() { return deepest; }

}  // namespace qxview::testing
