// What a decode may cost: its time, and the stack it takes, which is measured on a thread of its own.
#pragma once
#include <cstddef>
#include <functional>

namespace qxview::testing {

// The stack that the deepest decode may take. Sanitizers' frames are several times as large.
#ifdef __SANITIZE_ADDRESS__
constexpr size_t kSmallStack = 2 << 20;
#else
constexpr size_t kSmallStack = 256 << 10;
#endif

// The milliseconds that the longest frame may take to decode: three times what a quiet core needs, for what else runs on a
// machine takes caches away. The 32-bit build is timed by the clock, on whatever runs it.
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
constexpr double kMostMilliseconds = 1000;
#elif defined(_WIN32)
constexpr double kMostMilliseconds = 100;
#else
constexpr double kMostMilliseconds = 30;
#endif

// Milliseconds of this thread's own processor time; on Windows, which counts that coarsely, of the clock.
double ThreadMilliseconds();

// The shortest of several runs: other programs share the machine.
double BestMilliseconds(const std::function<void()>& work, int runs = 5);

// Runs the work on a thread with a stack of kSmallStack bytes and returns its milliseconds. Fails the test when the work
// takes more stack; what it took is the test's property "stackBytes".
double RunOnSmallStack(const std::function<void()>& work);

// The bytes of stack that a run took at most so far in this program.
size_t DeepestStack();

}  // namespace qxview::testing
