// Load-time set-up and the FFT thread count, which lives in the environment and nowhere else.
#include <signal_tzm/companion.h>
#include <signal_tzm/format.h>
#include <signal_tzm/transform.h>

#include "frame/call.h"
#include "frame/vector.h"

#include <cstdlib>

using namespace tzm;

namespace {

constexpr char kVariable[] = "ORVA_FFT_THREAD_NUM";
constexpr int32_t kDefaultThreads = 8;

int32_t ThreadsInEnvironment() {
  const char* text = getenv(kVariable);
  const int32_t count = text != nullptr ? static_cast<int32_t>(strtol(text, nullptr, 10)) : 0;
  return count < 1 ? kDefaultThreads : count;
}

int32_t loaded;  // 1 once both precisions of the FFT companion are set up

__attribute__((constructor)) void Load() {
  if (loaded != 0) return;
  const int32_t count = ThreadsInEnvironment();
  tzm_fftf_init_threads();
  tzm_fftf_plan_with_nthreads(count);
  tzm_fft_init_threads();
  tzm_fft_plan_with_nthreads(count);
  loaded = 1;
}

// The binary64 side has no clean-up, and the flag stays.
__attribute__((destructor)) void Unload() { tzm_fftf_cleanup_threads(); }

}  // namespace

OrvaStatus ORVAS_SetFFTNumberThreads(int32_t numThreads) {
  if (numThreads < 1) return ORVA_STS_BAD_ARG_ERR;
  char text[128];
  sprintf_s(text, sizeof text, "%d", numThreads);
  setenv(kVariable, text, 1);
  tzm_fftf_plan_with_nthreads(numThreads);
  tzm_fft_plan_with_nthreads(numThreads);
  return ORVA_STS_NO_ERR;
}

OrvaStatus ORVAS_GetFFTNumberThreads(int32_t* numThreads) {
  if (OrvaStatus status = CheckPointers(numThreads)) return status;
  StoreElement(ThreadsInEnvironment(), numThreads);
  return ORVA_STS_NO_ERR;
}
