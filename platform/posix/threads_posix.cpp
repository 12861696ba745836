#include "platform/threads.h"

#include <pthread.h>
#include <sched.h>

#include <csignal>

namespace qxview {

int32_t CountProcessors() {
  cpu_set_t processors;
  if (sched_getaffinity(0, sizeof processors, &processors) != 0) return 1;
  return CPU_COUNT(&processors);
}

struct Monitor::State {
  pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;
};

Monitor::Monitor() : state_(new State) {}
Monitor::~Monitor() { pthread_mutex_destroy(&state_->lock); }

void Monitor::Enter() { pthread_mutex_lock(&state_->lock); }
void Monitor::Leave() { pthread_mutex_unlock(&state_->lock); }

struct News::State {
  pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
};

News::News(Monitor& monitor) : monitor_(monitor), state_(new State) {}
News::~News() { pthread_cond_destroy(&state_->changed); }

void News::Wait() { pthread_cond_wait(&state_->changed, &monitor_.state_->lock); }
void News::Changed() { pthread_cond_broadcast(&state_->changed); }
void News::ChangedForOne() { pthread_cond_signal(&state_->changed); }

struct Thread::State {
  pthread_t thread;
  void (*run)(void* with);
  void* with;
  bool runs = false;
};

Thread::Thread() : state_(new State) {}
Thread::~Thread() { Join(); }

bool Thread::Start(void (*run)(void* with), void* with) {
  state_->run = run;
  state_->with = with;
  sigset_t ending, before;
  sigemptyset(&ending);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ending, number);
  // It inherits the mask: what ends the program's input is the main thread's to see, which waits for that.
  pthread_sigmask(SIG_BLOCK, &ending, &before);
  const auto begin = [](void* state) -> void* {
    static_cast<State*>(state)->run(static_cast<State*>(state)->with);
    return nullptr;
  };
  state_->runs = pthread_create(&state_->thread, nullptr, begin, state_.get()) == 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return state_->runs;
}

void Thread::Join() {
  if (state_->runs) pthread_join(state_->thread, nullptr);
  state_->runs = false;
}

}  // namespace qxview
