#include <windows.h>

#include "platform/threads.h"

namespace qxview {

int32_t CountProcessors() {
  DWORD_PTR own = 0, all = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &own, &all)) return 1;
  int32_t count = 0;
  for (; own; own &= own - 1) ++count;
  return count > 0 ? count : 1;
}

struct Monitor::State {
  SRWLOCK lock = SRWLOCK_INIT;
};

Monitor::Monitor() : state_(new State) {}
Monitor::~Monitor() = default;

void Monitor::Enter() { AcquireSRWLockExclusive(&state_->lock); }
void Monitor::Leave() { ReleaseSRWLockExclusive(&state_->lock); }

struct News::State {
  CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;
};

News::News(Monitor& monitor) : monitor_(monitor), state_(new State) {}
News::~News() = default;

void News::Wait() { SleepConditionVariableSRW(&state_->changed, &monitor_.state_->lock, INFINITE, 0); }
void News::Changed() { WakeAllConditionVariable(&state_->changed); }
void News::ChangedForOne() { WakeConditionVariable(&state_->changed); }

struct Thread::State {
  HANDLE thread = nullptr;
  void (*run)(void* with);
  void* with;
  static DWORD WINAPI Begin(void* state) {
    auto* self = static_cast<State*>(state);
    self->run(self->with);
    return 0;
  }
};

Thread::Thread() : state_(new State) {}
Thread::~Thread() { Join(); }

bool Thread::Start(void (*run)(void* with), void* with) {
  state_->run = run;
  state_->with = with;
  state_->thread = CreateThread(nullptr, 0, State::Begin, state_.get(), 0, nullptr);
  return state_->thread != nullptr;
}

void Thread::Join() {
  if (!state_->thread) return;
  WaitForSingleObject(state_->thread, INFINITE);
  CloseHandle(state_->thread);
  state_->thread = nullptr;
}

}  // namespace qxview
