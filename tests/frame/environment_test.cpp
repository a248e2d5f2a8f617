// What every operation leaves alone of its caller's environment, and what it bears: errno and the control word, any
// rounding mode, subnormals flushed, a small stack, a fork. What the library does when it is loaded.
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal_tzm/companion.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <memory>

#include "bench/states.h"
#include "members/caller.h"

namespace tzm_test::environment_test {

// Every operation that can be called: a call of it, on arrays of its own.
struct Operation { std::string name; std::function<OrvaStatus()> run; };
const std::vector<Operation>& Operations() {
  static std::vector<Operation> all;
  if (!all.empty()) return all;
  for (const Member* member : AllMembers()) {
    if (member->IsScenario()) continue;
    const auto caller = std::make_shared<Caller>(*member, 700);
    all.push_back({member->name, [=] { return caller->Run({.len = 613, .variety = Variety::kSpecial}); }});
  }
  for (const auto& [name, make] : tzm_bench::AllStates()) all.push_back({name, make(2048).run});
  return all;
}

// The bits of the control word that are not flags of what happened.
#if defined(__x86_64__)
uint64_t Control() { return __builtin_ia32_stmxcsr() & ~0x3f; }
void SetControl(uint64_t control) { __builtin_ia32_ldmxcsr(static_cast<uint32_t>(control)); }
constexpr uint64_t kFlush = 0x8040;
#else
uint64_t Control() {
  uint64_t control;
  asm volatile("mrs %0, fpcr" : "=r"(control));
  return control;
}
void SetControl(uint64_t control) { asm volatile("msr fpcr, %0" : : "r"(control)); }
constexpr uint64_t kFlush = 1 << 24;
#endif

TEST(Environment, ErrnoAndControlWordStayUnderEveryMode) {
  const uint64_t usual = Control();
  for (const Operation& operation : Operations()) {
    SetCallUnderTest(operation.name);
    for (int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
      for (uint64_t flush : {uint64_t{0}, kFlush}) {
        std::fesetround(mode);
        SetControl(Control() | flush);
        const uint64_t before = Control();
        errno = 77;
        alarm(60);  // a series that waits for its sum to stay equal would never end
        const OrvaStatus status = operation.run();
        const int error = errno;
        const uint64_t after = Control();
        SetControl(usual);
        alarm(0);
        EXPECT_TRUE(IsSuccess(status)) << operation.name << " returns " << status << " under mode " << mode;
        EXPECT_EQ(after, before) << operation.name;
        const bool ours = operation.name.find("_MMul_") == std::string::npos;  // a CBLAS does as it likes
        EXPECT_TRUE(error == 77 || !ours) << operation.name << " leaves errno " << error;
      }
  }
}

// How much of a painted stack a call touches, less what a call of nothing does.
size_t StackOf(std::function<OrvaStatus()> call) {
  constexpr size_t kSize = 1 << 20;
  static const std::unique_ptr<unsigned char[]> memory(new unsigned char[kSize + 4096]);
  unsigned char* const stack = memory.get() + (4096 - reinterpret_cast<uintptr_t>(memory.get()) % 4096);
  std::fill_n(stack, kSize, 0xa5);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, kSize);
  pthread_t thread;
  const auto body = [](void* f) -> void* { return (*static_cast<std::function<OrvaStatus()>*>(f))(), nullptr; };
  EXPECT_EQ(pthread_create(&thread, &attributes, body, &call), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return kSize - static_cast<size_t>(std::find_if(stack, stack + kSize, [](auto b) { return b != 0xa5; }) - stack);
}

TEST(Environment, NoCallTakesMoreThan16KBOfStack) {
  std::vector<Operation> calls = Operations();
  for (const auto& [name, make] : tzm_bench::AllStates())
    for (int32_t points : {143, 173, 288, 440, 2000}) calls.push_back({name, make(points).run});  // other work areas
  for (const Operation& operation : calls) {
    operation.run();  // the first call of a program may resolve names
    const size_t alone = StackOf([] { return ORVA_STS_NO_ERR; });
    EXPECT_LE(StackOf(operation.run) - alone, 16u << 10) << operation.name;
  }
}

TEST(Environment, WorksInAForkedChild) {
  for (const Operation& operation : Operations()) operation.run();
  const pid_t child = fork();
  if (child == 0) {
    alarm(300);
    for (const Operation& operation : Operations())
      if (!IsSuccess(operation.run())) _exit(1);
    _exit(0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

// The calls in their order: 1000 for the set-up of threads, else their count; of binary64 negative.
std::vector<int32_t>& CallsAtLoad() {
  static std::vector<int32_t> calls;
  return calls;
}

TEST(Environment, LoadSetsUpBothPrecisions) {
  const char* text = getenv("ORVA_FFT_THREAD_NUM");
  const int32_t threads = text == nullptr || atoi(text) < 1 ? 8 : atoi(text);
  EXPECT_EQ(CallsAtLoad(), (std::vector<int32_t>{1000, threads, -1000, -threads}));
}

}  // namespace tzm_test::environment_test

// These stand before those of the FFT companion.
using tzm_test::environment_test::CallsAtLoad;
int32_t tzm_fftf_init_threads() { return CallsAtLoad().emplace_back(1000); }
int32_t tzm_fft_init_threads() { return CallsAtLoad().emplace_back(-1000); }
void tzm_fftf_plan_with_nthreads(int32_t threads) { CallsAtLoad().push_back(threads); }
void tzm_fft_plan_with_nthreads(int32_t threads) { CallsAtLoad().push_back(-threads); }
