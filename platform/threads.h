// Threads, and how they wait for each other.
#pragma once
#include <cstdint>
#include <memory>

namespace qxview {

// How many processors this program may run on; at least 1.
int32_t CountProcessors();

// A lock.
class Monitor {
 public:
  Monitor();
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  void Enter();
  void Leave();

 private:
  friend class News;
  struct State;
  std::unique_ptr<State> state_;
};

// That something under a lock has changed.
class News {
 public:
  explicit News(Monitor& monitor);
  ~News();
  News(const News&) = delete;
  News& operator=(const News&) = delete;

  void Wait();      // inside: leaves until there are news, and enters again
  void Changed();   // wakes all that wait
  void ChangedForOne();

 private:
  Monitor& monitor_;
  struct State;
  std::unique_ptr<State> state_;
};

class InMonitor {
 public:
  explicit InMonitor(Monitor& monitor) : monitor_(monitor) { monitor_.Enter(); }
  ~InMonitor() { monitor_.Leave(); }
  InMonitor(const InMonitor&) = delete;
  InMonitor& operator=(const InMonitor&) = delete;

 private:
  Monitor& monitor_;
};

// A thread that runs a function once. Signals that end the program's input are none of its matter.
class Thread {
 public:
  Thread();
  ~Thread();   // waits for its end
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // False when the system starts none.
  bool Start(void (*run)(void* with), void* with);
  void Join();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace qxview
