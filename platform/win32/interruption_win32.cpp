#include <windows.h>

#include <atomic>

#include "platform/interruption.h"
#include "platform/win32/wide_text.h"

namespace qxview {
namespace {

constexpr DWORD kTimeToFinish = 10000;   // more than the system gives
constexpr UINT kEndedByControlC = 0xC000013A;   // STATUS_CONTROL_C_EXIT

std::atomic<bool> inputEnded{false};
bool isRegularEnd = false;
std::atomic<bool> removes{false};
std::wstring removedPath;
HANDLE mainThread = nullptr;
IdleAction idleAction = nullptr;
void* idleWith = nullptr;

// Called on a thread of the system's. When it returns from the closing of the console, a log-off or a shut-down, the
// program is ended: the main thread does that before.
BOOL WINAPI HandleControl(DWORD event) {
  if (inputEnded.exchange(true)) {
    RemoveAtOnce();
    return FALSE;
  }
  CancelSynchronousIo(mainThread);
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kTimeToFinish);
  return TRUE;
}

}  // namespace

void EndInputOnSignals() {
  if (mainThread) return;
  DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &mainThread, 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  SetConsoleCtrlHandler(HandleControl, TRUE);
}

bool IsInputEnded() { return inputEnded; }

void EndBySignal() {
  if (inputEnded && !isRegularEnd) ExitProcess(kEndedByControlC);
}

void TakeSignalAsEnd() { isRegularEnd = true; }

void RemoveOnSignal(const std::string& path) {
  removes = false;
  removedPath = WidePathOf(path);
  removes = !path.empty();
}

void RemoveAtOnce() {
  if (removes) DeleteFileW(removedPath.c_str());
}

void ResetColorsOnSignal() {}   // the console keeps no colour of a program's that has ended

void SetIdleAction(IdleAction action, void* with) {
  idleAction = action;
  idleWith = with;
}

// The read itself waits, and is cancelled.
bool WaitForInput(int64_t file) {
  const HANDLE handle = reinterpret_cast<HANDLE>(static_cast<intptr_t>(file));
  DWORD kind = GetFileType(handle), there = 0;
  const bool ready = kind == FILE_TYPE_DISK ||
                     (kind == FILE_TYPE_PIPE && (!PeekNamedPipe(handle, nullptr, 0, nullptr, &there, nullptr) || there));
  if (!ready && idleAction) idleAction(idleWith);
  return !inputEnded;
}

}  // namespace qxview
