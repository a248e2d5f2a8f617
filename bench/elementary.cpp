// What an elementary function adds to the call of the vector math companion that does its work: the scan for
// its status. Each function by its member, by the companion alone, and by the system's scalar function.
#include <benchmark/benchmark.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/elementary.h>

#include <cmath>
#include <string>

#include "support/random.h"

namespace {

using namespace tzm_test;

template <class T, class Call>
void Register(const std::string& name, Call call) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    const auto len = static_cast<int32_t>(state.range(0));
    auto src = RandomArray<T>(static_cast<size_t>(len), 1);
    for (T& x : src) x = std::abs(x);  // in every domain
    std::vector<T> dst(src.size());
    for (auto _ : state) {
      call(src.data(), dst.data(), len);
      benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * len);
  })->Arg(64)->Arg(1024);
}

template <class T, class Member, class Companion, class Scalar>
bool Function(const std::string& name, Member member, Companion companion, Scalar scalar) {
  Register<T>(name + "/member", member);
  Register<T>(name + "/companion", [=](const T* src, T* dst, int32_t len) { companion(len, src, dst); });
  Register<T>(name + "/scalar", [=](const T* src, T* dst, int32_t len) {
    for (int32_t i = 0; i < len; ++i) dst[i] = scalar(src[i]);
  });
  return true;
}
// Of two arguments; here both the same.
template <class T>
bool Function2(const std::string& name, OrvaStatus (*member)(const T*, const T*, T*, int32_t),
               void (*companion)(int32_t, const T*, const T*, T*), T (*scalar)(T, T)) {
  return Function<T>(
      name, [=](const T* src, T* dst, int32_t len) { member(src, src, dst, len); },
      [=](int32_t len, const T* src, T* dst) { companion(len, src, src, dst); }, [=](T x) { return scalar(x, x); });
}

#define FUNCTION(Name, name, scalar)                                                                            \
  Function<Orva32f>("Function/" #Name "_32f", ORVAS_##Name##_32f, vs##name, [](float x) { return scalar(x); }) && \
  Function<Orva64f>("Function/" #Name "_64f", ORVAS_##Name##_64f, vd##name, [](double x) { return scalar(x); })
#define FUNCTION_2(Name, name)                                                                          \
  Function2<Orva32f>("Function/" #Name "_32f", ORVAS_##Name##_32f, vs##name, std::name) &&               \
  Function2<Orva64f>("Function/" #Name "_64f", ORVAS_##Name##_64f, vd##name, std::name)

const bool registered = FUNCTION(Exp, exp, std::exp) && FUNCTION(Ln, ln, std::log) &&
                        FUNCTION(Log10, log10, std::log10) && FUNCTION(Sin, sin, std::sin) &&
                        FUNCTION(Cos, cos, std::cos) && FUNCTION(Tan, tan, std::tan) &&
                        FUNCTION(Arctan, atan, std::atan) && FUNCTION_2(Arctan2, atan2) && FUNCTION_2(Pow, pow);

}  // namespace
