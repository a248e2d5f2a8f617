// What an elementary function adds to the call of the vector math companion that does its work: the scan for
// its status. Each function by its member and by the companion alone.
#include <benchmark/benchmark.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <cmath>
#include <string>

#include "support/random.h"

namespace {

using namespace tzm_test;

// call(src, dst, len) over numbers from every function's domain.
template <class T>
void Register(const std::string& name, auto call) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    const auto len = static_cast<int32_t>(state.range(0));
    auto src = RandomArray<T>(static_cast<size_t>(len), 1);
    for (T& x : src) x = std::abs(x);
    std::vector<T> dst(src.size());
    for (auto _ : state) {
      call(src.data(), dst.data(), len);
      benchmark::ClobberMemory();
    }
    const int64_t elements = static_cast<int64_t>(state.iterations()) * len;
    state.SetItemsProcessed(elements);
    state.SetBytesProcessed(elements * static_cast<int64_t>(2 * sizeof(T)));
  })->Arg(64)->Arg(1024);
}

template <class T>
bool Function(const std::string& name, OrvaStatus (*member)(const T*, T*, int32_t),
              void (*companion)(int32_t, const T*, T*)) {
  Register<T>(name + "/member", member);
  Register<T>(name + "/companion", [=](const T* src, T* dst, int32_t len) { companion(len, src, dst); });
  return true;
}
template <class T>
bool Function(const std::string& name, OrvaStatus (*member)(const T*, const T*, T*, int32_t),
              void (*companion)(int32_t, const T*, const T*, T*)) {
  Register<T>(name + "/member", [=](const T* src, T* dst, int32_t len) { member(src, src, dst, len); });
  Register<T>(name + "/companion", [=](const T* src, T* dst, int32_t len) { companion(len, src, src, dst); });
  return true;
}

#define FUNCTION(Name, name)                                                 \
  Function<Orva32f>("Function/" #Name "_32f", ORVAS_##Name##_32f, vs##name) && \
      Function<Orva64f>("Function/" #Name "_64f", ORVAS_##Name##_64f, vd##name)

const bool registered = FUNCTION(Exp, exp) && FUNCTION(Ln, ln) && FUNCTION(Log10, log10) && FUNCTION(Sin, sin) &&
                        FUNCTION(Cos, cos) && FUNCTION(Tan, tan) && FUNCTION(Arctan, atan) &&
                        FUNCTION(Arctan2, atan2) && FUNCTION(Pow, pow);

}  // namespace
