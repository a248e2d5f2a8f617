// How far a long job has come: one line on standard error, on a terminal only, gone when the job ends.
#ifndef TZM_TOOL_PROGRESS_H
#define TZM_TOOL_PROGRESS_H

#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>

namespace tzm {

class Progress {
 public:
  /** A total of 0 is one that nobody knows: nothing is shown. */
  Progress(const char* label, int64_t total) : label_(label), total_(total) {}
  Progress(const Progress&) = delete;
  ~Progress() {
    if (drawn_) std::fputs("\r\033[K", stderr);
  }

  /** Shows `done` of the total, at most ten times a second. */
  void Show(int64_t done) {
    const auto now = std::chrono::steady_clock::now();
    if (!terminal_ || total_ == 0 || now - last_ < std::chrono::milliseconds(100)) return;
    last_ = now;
    drawn_ = true;
    std::fprintf(stderr, "\r\033[K%s: %.0f %%", label_, 100.0 * double(done) / double(total_));
    std::fflush(stderr);
  }

 private:
  const char* label_;
  int64_t total_;
  bool terminal_ = isatty(STDERR_FILENO) == 1, drawn_ = false;
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

}  // namespace tzm

#endif
