// Threads that help with the parallel loops of long transforms. The calling thread takes jobs itself, one after the
// other, and a helper takes one only when it has a processor to run on. So a helper that gets none holds nobody up:
// a team with a job for each of its threads waits for the slowest, on a busy machine a hundred times as long. A helper
// that loses its processor amid a job still does: whom it held up goes on alone for a while.
#pragma once

#include <pthread.h>
#include <signal.h>
#include <time.h>

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

  // What the loops of one plan have met with.
  class Experience {
   public:
    bool Rests() const { return Time(CLOCK_MONOTONIC) < rest_.load(std::memory_order_relaxed); }
    // A loop took `spent` nanoseconds, and would have taken `alone` without helpers. After a loss there is a rest of so
    // many times its length, which keeps losses a small part of the time.
    void Note(int64_t spent, int64_t alone) {
      constexpr int64_t kTimes = 32;
      if (spent > alone) rest_.store(Time(CLOCK_MONOTONIC) + kTimes * (spent - alone), std::memory_order_relaxed);
    }

   private:
    std::atomic<int64_t> rest_ = 0;  // its end
  };

  // Calls work(context, job, worker) for each of `count` jobs; all is done when this returns. Threads that work at the
  // same time have different numbers `worker`, below `workers`.
  using Work = void(const void* context, size_t job, size_t worker);
  void Run(size_t count, size_t workers, Work* work, const void* context, Experience& experience) {
    if (workers == 1 || experience.Rests()) {
      for (size_t job = 0; job < count; ++job) work(context, job, 0);
      return;
    }
    const int64_t start = Time(CLOCK_MONOTONIC), before = Time(CLOCK_THREAD_CPUTIME_ID);
    Loop loop{work, context, count, workers};
    {
      const std::lock_guard guard(lock_);
      loop.later = loops_;
      loops_ = &loop;
    }
    ++posted_;
    posted_.notify_all();
    const auto own = static_cast<int64_t>(loop.TakeJobs(0));
    const int64_t worked = Time(CLOCK_THREAD_CPUTIME_ID) - before;
    {
      const std::lock_guard guard(lock_);
      Loop** link = &loops_;
      while (*link != &loop) link = &(*link)->later;
      *link = loop.later;
    }
    while (const int inside = loop.helpers) Await(loop.helpers, inside);
    if (own > 0) experience.Note(Time(CLOCK_MONOTONIC) - start, worked / own * static_cast<int64_t>(count));
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
    Work* work;
    const void* context;
    size_t count, workers;
    std::atomic<size_t> taken = 0;
    size_t numbered = 1;           // workers with a number; the caller is 0
    std::atomic<int> helpers = 0;  // threads that take jobs of it
    Loop* later = nullptr;

    // Returns how many.
    size_t TakeJobs(size_t worker) {
      size_t done = 0;
      for (size_t job; (job = taken++) < count; ++done) work(context, job, worker);
      return done;
    }
  };

  static int64_t Time(clockid_t clock) {
    timespec time;
    clock_gettime(clock, &time);
    return int64_t{1000000000} * time.tv_sec + time.tv_nsec;
  }

  // Returns when `value` is no longer `old`: soon, or after a sleep.
  static void Await(const std::atomic<int>& value, int old) {
    const auto end = std::chrono::steady_clock::now() + kAwake;
    while (value == old) {
      if (std::chrono::steady_clock::now() > end) return value.wait(old);
    }
  }

  // A loop with jobs and a number left, or null.
  Loop* Join(size_t& worker) {
    const std::lock_guard guard(lock_);
    Loop* loop = loops_;
    while (loop != nullptr && (loop->taken >= loop->count || loop->numbered == loop->workers)) loop = loop->later;
    if (loop == nullptr) return nullptr;
    ++loop->helpers;
    worker = loop->numbered++;
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
      size_t worker;
      if (Loop* loop = Join(worker)) {
        loop->TakeJobs(worker);
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
