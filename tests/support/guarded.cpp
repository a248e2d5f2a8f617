#include "guarded.h"

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace tzm_test {

namespace {

char call_under_test[256] = "(no call named)";

void ReportFault(int, siginfo_t* info, void*) {
  char text[400];
  const int n = std::snprintf(text, sizeof text, "\nmemory fault at %p in %s\n", info->si_addr, call_under_test);
  if (write(STDERR_FILENO, text, static_cast<size_t>(n)) < 0) _exit(3);
  _exit(2);
}

}  // namespace

GuardedBytes::GuardedBytes(size_t capacity) {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  capacity_ = (capacity / page + 1) * page;  // at least one byte of room for kUnaligned
  void* mapped = mmap(nullptr, capacity_ + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) std::abort();
  pages_ = static_cast<char*>(mapped) + page;
  if (mprotect(pages_, capacity_, PROT_READ | PROT_WRITE) != 0) std::abort();
}

GuardedBytes::~GuardedBytes() {
  const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  munmap(pages_ - page, capacity_ + 2 * page);
}

void* GuardedBytes::At(Place place, size_t bytes) const {
  if (bytes > Capacity()) std::abort();
  switch (place) {
    case Place::kStart: return pages_;
    case Place::kUnaligned: return pages_ + capacity_ - bytes - 1;
    default: return pages_ + capacity_ - bytes;
  }
}

void SetCallUnderTest(const std::string& text) {
  static const bool installed = [] {
    struct sigaction action = {};
    action.sa_sigaction = ReportFault;
    action.sa_flags = SA_SIGINFO;
    return sigaction(SIGSEGV, &action, nullptr) == 0 && sigaction(SIGBUS, &action, nullptr) == 0;
  }();
  static_cast<void>(installed);
  std::snprintf(call_under_test, sizeof call_under_test, "%s", text.c_str());
}

}  // namespace tzm_test
