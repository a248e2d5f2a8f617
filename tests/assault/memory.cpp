// Memory that runs out, anywhere: every Init, and every call that allocates, in a child of which the k-th request to
// the system's allocator fails, for every k, and in one that has few addresses left. The answer is the contract's
// status, and everything is given back that a call which fails has taken.
#include <malloc.h>
#include <signal_tzm.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

// The system's allocator, with a request that fails and a count of what is alive.
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);
}

namespace {

bool watching = false;
int requests = 0, refused = 0, alive = 0;

bool Refuse() { return watching && ++requests == refused; }
void* Counted(void* block) {
  if (watching && block != nullptr) __atomic_add_fetch(&alive, 1, __ATOMIC_RELAXED);
  return block;
}

}  // namespace

extern "C" {
void* malloc(size_t bytes) { return Refuse() ? nullptr : Counted(__libc_malloc(bytes)); }
void* calloc(size_t n, size_t bytes) { return Refuse() ? nullptr : Counted(__libc_calloc(n, bytes)); }
void* memalign(size_t alignment, size_t bytes) {
  return Refuse() ? nullptr : Counted(__libc_memalign(alignment, bytes));
}
void* aligned_alloc(size_t alignment, size_t bytes) { return memalign(alignment, bytes); }
int posix_memalign(void** block, size_t alignment, size_t bytes) {
  void* const taken = memalign(alignment, bytes);
  if (taken == nullptr) return ENOMEM;
  *block = taken;
  return 0;
}
void* realloc(void* block, size_t bytes) {
  if (block == nullptr) return malloc(bytes);
  return Refuse() ? nullptr : __libc_realloc(block, bytes);
}
void free(void* block) {
  if (watching && block != nullptr) __atomic_sub_fetch(&alive, 1, __ATOMIC_RELAXED);
  __libc_free(block);
}
}

namespace tzm_test {

namespace {

// A call that takes memory, and gives all of it back: the status of an Init whose object is then released.
struct Call {
  const char* name;
  std::function<OrvaStatus()> run;
};
template <class State>
Call Init(const char* name, OrvaStatus (*release)(State*), auto init) {
  return {name, [=] {
    State* state = nullptr;
    const OrvaStatus status = init(&state);
    return status == ORVA_STS_NO_ERR ? release(state) : status;
  }};
}
#define INIT_OF(init, release, ...) \
  Init("ORVAS_" #init, ORVAS_##release, [](auto** state) { return ORVAS_##init(__VA_ARGS__); })
#define INIT(name, suffix, ...) INIT_OF(name##Init##suffix, name##Release##suffix, __VA_ARGS__, state)

const float kTaps[64] = {1, 2, 3};
const double kTaps64[64] = {1, 2, 3};
const int32_t kPositions[] = {1, 5, 300};
float floats[4096];
double doubles[4096];
Orva32fc pairs[4096];
int32_t order, n, m;  // a power, a length with large factors, one with small ones

std::vector<Call> Calls(bool large) {
  order = large ? 22 : 10, n = large ? (1 << 22) + 15 : 1009, m = large ? 3 << 20 : 720;
  return {
      INIT(FFTCToC, _32fc, order, 1, 4), INIT(FFTCToC, _64f, order, 1, 4), INIT(FFTRToC, _32f, order, 4),
      INIT(FFTCToR, _64f, order, 4), INIT(DFTCToC, _32fc, n, 1, 4), INIT(DFTCToC, _64fc, m, 1, 4),
      INIT(DFTCToC, _32f, n, 1, 4), INIT(DFTRToC, _64f, n, 4), INIT(DFTCToR, _32f, m, 4),
      INIT(Hilbert, _32f32fc, n), INIT(Conv, _32f, n, m, 2), INIT(Conv, _64f, n, m, 1),
      INIT_OF(AutoCorrInit_32f, CorrRelease_32f, n, n, 2, state),
      INIT_OF(CrossCorrInit_64fc, CorrRelease_64fc, n, m, n, 0, 2, state),
      INIT(FIRSR, _32f, kTaps, 64, n, 2), INIT(FIRSR, _64f, kTaps64, 64, n, 1),
      INIT(FIRMR, _32f, kTaps, 64, 3, 0, 2, 0),
      INIT_OF(FIRLMSInit_32f, FIRLMSRelease_32f, state, kTaps, 64, nullptr, 0),
      INIT(FIRSparse, _32f, kTaps, kPositions, 3, nullptr), INIT_OF(FIRGenInit_64f, FIRGenRelease, n, state),
      INIT(ResamplePolyphase, _32f, 64.0f, 512, 0.9f, 9.0f, 0),
      INIT(ResamplePolyphase, _16s, 64.0f, 512, 0.9f, 9.0f, 0),
      INIT(ResamplePolyphaseFixed, _32f, 44100, 48000, 64.0f, 0.9f, 9.0f),
      INIT_OF(RandGaussInit_32f, RandGaussRelease_32f, state, 0, 1, 5),
      {"ORVAS_CZT_32f", [] { return ORVAS_CZT_32f(floats, 1000, pairs, 1000, {1, 0}, {1, 0}); }},
      {"ORVAS_Pwelch_64f", [] { return ORVAS_Pwelch_64f(doubles, nullptr, doubles, 4096, 0, 509, 0.5); }},
      {"ORVAS_Phase_32f", [] { return ORVAS_Phase_32f(floats, floats + 1000, floats + 2000, 1000); }}};
}

// Runs `body` in a child: its exit status, or minus the signal that ended it.
int InChild(const std::function<int()>& body) {
  std::fflush(stdout);
  const pid_t child = fork();
  if (child == 0) {
    alarm(120);
    _exit(body());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

constexpr int kDone = 100, kLeak = 101;

}  // namespace

int OutOfMemory(const std::vector<std::string>& names) {
  int failed = 0, children = 0;
  const auto report = [&](const Call& call, const std::string& when, int result) {
    ++children;
    if (result == kDone || result == ORVA_STS_MEM_ALLOC_ERR) return;
    ++failed;
    const char* const what = result == kLeak ? "leaks" : result < 0 ? "dies of" : "answers";
    std::printf("%s: %s: %s %d\n", call.name, when.c_str(), what, result == kLeak ? 0 : std::abs(result));
  };
  const auto each = [&](bool large, const auto& attempt) {
    for (const Call& call : Calls(large))
      if (names.empty() || std::find(names.begin(), names.end(), call.name) != names.end()) attempt(call);
  };
  each(false, [&](const Call& call) {
    call.run();  // what a program takes once and keeps
    for (int k = 1, result = 0; result != kDone && result >= 0 && k <= 2000; ++k) {
      result = InChild([&] {
        requests = alive = 0, refused = k, watching = true;
        const OrvaStatus status = call.run();
        watching = false;
        if (alive > 0 && status != ORVA_STS_NO_ERR) return kLeak;
        return requests < k ? kDone : static_cast<int>(status);
      });
      report(call, "request " + std::to_string(k) + " refused", result == 0 ? kDone : result);
    }
  });
  each(true, [&](const Call& call) {
    for (size_t room : {1, 4, 16, 48, 100, 200}) {
      report(call, std::to_string(room) + " MB of addresses left", InChild([&] {
        std::FILE* const maps = std::fopen("/proc/self/statm", "r");
        unsigned long pages = 0;
        if (maps == nullptr || std::fscanf(maps, "%lu", &pages) != 1) return 255;
        std::fclose(maps);
        const rlim_t most = (pages * 4096) + (rlim_t{room} << 20);
        const rlimit limit{most, most};
        setrlimit(RLIMIT_AS, &limit);
        const OrvaStatus status = call.run();
        return status == ORVA_STS_NO_ERR ? kDone : static_cast<int>(status);
      }));
    }
  });
  std::printf("memory: %d children, %d of them wrong\n", children, failed);
  return children == 0 || failed != 0;
}

}  // namespace tzm_test
