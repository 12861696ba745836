#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>

#include "platform/interruption.h"
#include "platform/posix/wait.h"

namespace qxview {
namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t endingSignal = 0;
volatile std::sig_atomic_t resetsColors = 0;
volatile std::sig_atomic_t isRegularEnd = 0;
int wakeEnds[2] = {-1, -1};   // a pipe that has a byte in it since the signal, so that none is missed before a wait
char removedPath[PATH_MAX];
std::atomic<bool> removes{false};
IdleAction idleAction = nullptr;
void* idleWith = nullptr;

// Takes effect when the handler returns. A terminal that takes nothing at the moment is not waited for.
void EndAtOnce(int number) {
  RemoveAtOnce();
  pollfd terminal{STDOUT_FILENO, POLLOUT, 0};
  if (resetsColors && poll(&terminal, 1, 0) == 1 && write(STDOUT_FILENO, "\033[0m", 4) < 0) {
    // Then the terminal is gone.
  }
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void HandleSignal(int number) {
  const int error = errno;
  if (endingSignal) return EndAtOnce(number);
  endingSignal = number;
  if (write(wakeEnds[1], "", 1) < 0) {
    // Full cannot be, and without the pipe the wait is broken off by the signal itself, most of the time.
  }
  errno = error;
}

}  // namespace

void EndInputOnSignals() {
  static bool isTold = false;   // each of many runs asks for it
  if (isTold) return;
  isTold = true;
  if (wakeEnds[0] < 0 && pipe2(wakeEnds, O_CLOEXEC | O_NONBLOCK) != 0) wakeEnds[0] = wakeEnds[1] = -1;
  for (const int number : kEndingSignals) {
    struct sigaction present {};
    if (sigaction(number, nullptr, &present) != 0 || present.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = HandleSignal;
    sigaction(number, &action, nullptr);   // without SA_RESTART: opening a pipe that nobody writes to ends as well
  }
}

bool IsInputEnded() { return endingSignal != 0; }

void EndBySignal() {
  if (!endingSignal || isRegularEnd) return;
  std::signal(endingSignal, SIG_DFL);
  std::raise(endingSignal);
}

void RemoveOnSignal(const std::string& path) {
  removes = false;
  if (path.empty() || path.size() >= sizeof removedPath) return;
  std::memcpy(removedPath, path.c_str(), path.size() + 1);
  removes = true;
}

void RemoveAtOnce() {
  if (removes) unlink(removedPath);
}

void ResetColorsOnSignal() { resetsColors = 1; }

void SetIdleAction(IdleAction action, void* with) {
  idleAction = action;
  idleWith = with;
}

void TakeSignalAsEnd() { isRegularEnd = 1; }

Waited WaitForFiles(const std::vector<int>& files, int milliseconds) {
  if (endingSignal) return Waited::kInputEnded;
  std::vector<pollfd> waited;
  for (const int file : files) waited.push_back({file, POLLIN, 0});
  if (poll(waited.data(), waited.size(), 0) != 0) return endingSignal ? Waited::kInputEnded : Waited::kReady;
  if (idleAction) idleAction(idleWith);
  waited.push_back({wakeEnds[0], POLLIN, 0});
  int ready = 0;
  while (!endingSignal && (ready = poll(waited.data(), waited.size(), milliseconds)) < 0 && errno == EINTR) {}
  return endingSignal ? Waited::kInputEnded : ready == 0 ? Waited::kTimeOut : Waited::kReady;
}

bool WaitForInput(int64_t file) { return WaitForFiles({static_cast<int>(file)}, -1) != Waited::kInputEnded; }

}  // namespace qxview
