// Interposition: the program's own symbols win over those of the companions' shared objects.
#include "faults.h"

#include <dlfcn.h>
#include <signal_tzm/companion.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>

namespace tzm_test {

namespace {

std::mutex mutex;
std::set<const void*>& Live() {
  static auto* live = new std::set<const void*>;  // outlives every destructor that may still release
  return *live;
}
int foreign_releases = 0;

thread_local int requests = 0;
thread_local int refused = 0;
thread_local int depth = 0;  // inside a companion: what it asks of itself is not ours

struct Inside {
  Inside() { ++depth; }
  ~Inside() { --depth; }
};

template <class F>
F* Next(const char* name) {
  void* symbol = dlsym(RTLD_NEXT, name);
  if (symbol == nullptr) {
    std::fprintf(stderr, "no companion provides %s\n", name);
    std::abort();
  }
  return reinterpret_cast<F*>(symbol);
}

template <class F, class... Arguments>
auto Take(F* next, Arguments... arguments) -> decltype(next(arguments...)) {
  if (depth > 0) return next(arguments...);
  if (++requests == refused) return nullptr;
  Inside inside;
  auto taken = next(arguments...);
  const std::lock_guard lock(mutex);
  if (taken != nullptr) Live().insert(taken);
  return taken;
}

// New blocks hold NaN and -1, so that what is read before it was written shows; the largest ones only at their
// beginning, for they are asked for and never used.
template <class T>
T* Filled(T* block, size_t bytes) {
  if (block != nullptr) std::memset(block, 0xff, bytes < (1 << 20) ? bytes : 1 << 20);
  return block;
}

template <class F, class Pointer>
void Release(F* next, Pointer pointer) {
  if (depth == 0 && pointer != nullptr) {
    const std::lock_guard lock(mutex);
    if (Live().erase(pointer) == 0) ++foreign_releases;
  }
  Inside inside;
  next(pointer);
}

}  // namespace

void FailRequest(int k) {
  requests = 0;
  refused = k;
}

int Requests() { return requests; }

int LiveBlocks() {
  const std::lock_guard lock(mutex);
  return static_cast<int>(Live().size());
}

int ForeignReleases() {
  const std::lock_guard lock(mutex);
  return foreign_releases;
}

}  // namespace tzm_test

using namespace tzm_test;

#define NEXT(name)                                                  \
  ([] {                                                             \
    static auto* const next = Next<decltype(name)>(#name);          \
    return next;                                                    \
  }())

void* ORVA_Malloc(int32_t bytes) { return Filled(Take(NEXT(ORVA_Malloc), bytes), bytes); }
Orva8u* ORVAS_Malloc_8u(int32_t count) { return Filled(Take(NEXT(ORVAS_Malloc_8u), count), count); }
Orva16s* ORVAS_Malloc_16s(int32_t count) { return Filled(Take(NEXT(ORVAS_Malloc_16s), count), 2 * size_t(count)); }
Orva32f* ORVAS_Malloc_32f(int32_t count) { return Filled(Take(NEXT(ORVAS_Malloc_32f), count), 4 * size_t(count)); }
Orva64f* ORVAS_Malloc_64f(int32_t count) { return Filled(Take(NEXT(ORVAS_Malloc_64f), count), 8 * size_t(count)); }
void ORVA_Free(void* ptr) { Release(NEXT(ORVA_Free), ptr); }
void ORVAS_Free(void* ptr) { Release(NEXT(ORVAS_Free), ptr); }

#define PLANNERS(fft, Real, Complex)                                                                            \
  fft##_plan fft##_plan_dft_1d(int32_t n, Complex* in, Complex* out, int32_t sign, uint32_t flags) {            \
    return Take(NEXT(fft##_plan_dft_1d), n, in, out, sign, flags);                                              \
  }                                                                                                             \
  fft##_plan fft##_plan_dft_r2c_1d(int32_t n, Real* in, Complex* out, uint32_t flags) {                         \
    return Take(NEXT(fft##_plan_dft_r2c_1d), n, in, out, flags);                                                \
  }                                                                                                             \
  fft##_plan fft##_plan_dft_c2r_1d(int32_t n, Complex* in, Real* out, uint32_t flags) {                         \
    return Take(NEXT(fft##_plan_dft_c2r_1d), n, in, out, flags);                                                \
  }                                                                                                             \
  fft##_plan fft##_plan_guru_split_dft(int32_t rank, const tzm_fft_iodim* dims, int32_t howmany_rank,           \
                                       const tzm_fft_iodim* howmany_dims, Real* ri, Real* ii, Real* ro,         \
                                       Real* io, uint32_t flags) {                                              \
    return Take(NEXT(fft##_plan_guru_split_dft), rank, dims, howmany_rank, howmany_dims, ri, ii, ro, io, flags); \
  }                                                                                                             \
  void fft##_destroy_plan(fft##_plan plan) { Release(NEXT(fft##_destroy_plan), plan); }
PLANNERS(tzm_fft, Orva64f, Orva64fc)
PLANNERS(tzm_fftf, Orva32f, Orva32fc)
#undef PLANNERS
