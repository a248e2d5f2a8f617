// Threads that help with the parallel loops of long transforms. The calling thread takes jobs itself, one after the
// other, and a helper takes one only when it has a processor to run on. So a helper that gets none holds nobody up:
// a team with a job for each of its threads waits for the slowest, on a busy machine a hundred times as long.
#pragma once

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>

namespace tzm {

// Needs no construction at load time, and no destruction.
class Helpers {
 public:
  // From now on `count` threads help, or as many as the system gives.
  void Start(int count) {
    const std::lock_guard guard(lock_);
    sigset_t all, before;  // the process's signals are not for these threads
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const auto serve = [](void* self) -> void* { return static_cast<Helpers*>(self)->Serve(), nullptr; };
    while (count_ < std::min(count, kMost) && pthread_create(&threads_[count_], nullptr, serve, this) == 0) ++count_;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
  }

  // Calls work(context, 0), work(context, 1) ... `count` times; all of it is done when this returns.
  void Run(size_t count, void (*work)(const void* context, size_t job), const void* context) {
    Loop loop{work, context, count};
    {
      const std::lock_guard guard(lock_);
      loop.later = loops_;
      loops_ = &loop;
    }
    ++posted_;
    posted_.notify_all();
    loop.TakeJobs();
    {
      const std::lock_guard guard(lock_);
      Loop** link = &loops_;
      while (*link != &loop) link = &(*link)->later;
      *link = loop.later;
    }
    while (const int inside = loop.helpers) Await(loop.helpers, inside);
    const std::lock_guard guard(lock_);  // the last helper has let go of the loop
  }

  // Around a fork, so that no other thread is inside. The child has neither helpers nor the loops of other threads.
  void BeforeFork() { lock_.lock(); }
  void AfterFork(bool child) {
    if (child) count_ = 0, loops_ = nullptr;
    lock_.unlock();
  }

  // Ends the threads. Loops run on without them.
  void Stop() {
    stopped_ = true;
    ++posted_;
    posted_.notify_all();
    while (count_ > 0) pthread_join(threads_[--count_], nullptr);
  }

 private:
  static constexpr int kMost = 255;
  // Longer than the gap between two loops of one transform, and than most waits for the last job.
  static constexpr std::chrono::microseconds kAwake{50};

  struct Loop {
    void (*work)(const void* context, size_t job);
    const void* context;
    size_t count;
    std::atomic<size_t> taken = 0;
    std::atomic<int> helpers = 0;  // threads that take jobs of it
    Loop* later = nullptr;

    void TakeJobs() {
      for (size_t k; (k = taken++) < count;) work(context, k);
    }
  };

  // Returns when `value` is no longer `old`: soon, or after a sleep.
  static void Await(const std::atomic<int>& value, int old) {
    const auto end = std::chrono::steady_clock::now() + kAwake;
    while (value == old) {
      if (std::chrono::steady_clock::now() > end) return value.wait(old);
    }
  }

  // A loop with jobs left, or null.
  Loop* Join() {
    const std::lock_guard guard(lock_);
    Loop* loop = loops_;
    while (loop != nullptr && loop->taken >= loop->count) loop = loop->later;
    if (loop != nullptr) ++loop->helpers;
    return loop;
  }

  void Leave(Loop& loop) {
    const std::lock_guard guard(lock_);
    --loop.helpers;
    loop.helpers.notify_one();
  }

  void Serve() {
    for (;;) {
      const int seen = posted_;
      if (stopped_) return;
      if (Loop* loop = Join()) {
        loop->TakeJobs();
        Leave(*loop);
      } else {
        Await(posted_, seen);
      }
    }
  }

  std::mutex lock_;
  Loop* loops_ = nullptr;
  std::atomic<int> posted_ = 0;  // changes with every loop, and at the end
  std::atomic<bool> stopped_ = false;
  pthread_t threads_[kMost] = {};
  int count_ = 0;
};

}  // namespace tzm
