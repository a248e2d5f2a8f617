// Transforms beside the bare FFTW plan, with 8 threads beside 1, and planning beside FFTW's. The two sides
// of a line take turns, so that a disturbance meets both; `ours_ns` and `theirs_ns` are the best turns, and
// `ratio` is the one over the other.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <signal_tzm/arith.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <new>
#include <string>

#include "support/random.h"

namespace {

using namespace tzm_test;

constexpr double kTurn = 5e-4;  // seconds, at least

double Seconds(const auto& run, int64_t calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int64_t k = 0; k < calls; ++k) {
    run();
    benchmark::ClobberMemory();
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Compare(benchmark::State& state, const auto& ours, const auto& theirs) {
  int64_t calls = 1;
  while (Seconds(theirs, calls) < kTurn) calls *= 2;
  double best[] = {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  for (auto _ : state) {
    const double turn = Seconds(ours, calls);
    best[0] = std::min(best[0], turn);
    best[1] = std::min(best[1], Seconds(theirs, calls));
    state.SetIterationTime(turn);
  }
  state.counters["ours_ns"] = best[0] / static_cast<double>(calls) * 1e9;
  state.counters["theirs_ns"] = best[1] / static_cast<double>(calls) * 1e9;
  state.counters["ratio"] = best[0] / best[1];
}

// An array as FFTW's allocator gives it: aligned, as far as any plan wants.
template <class T>
std::unique_ptr<T[], decltype(&fftw_free)> Aligned(size_t n) {
  auto* const array = static_cast<T*>(fftw_malloc(n * sizeof(T)));
  if (array == nullptr) throw std::bad_alloc();
  const auto values = RandomArray<T>(n, 1);
  std::copy(values.begin(), values.end(), array);
  return {array, fftw_free};
}

using Spec = OrvaTransformSpec;

#define SIDES(Name, bits, Real, Complex, prefix)                                                            \
  struct Name {                                                                                             \
    using R = Real;                                                                                         \
    using C = Complex;                                                                                      \
    using FftwComplex = prefix##_complex;                                                                   \
    static constexpr const char* kBits = #bits;                                                             \
    static constexpr auto Init = ORVAS_DFTCToCInit_##bits##fc;                                              \
    static constexpr auto Run = ORVAS_DFTCToC_##bits##fc;                                                   \
    static constexpr auto Release = ORVAS_DFTCToCRelease_##bits##fc;                                        \
    static constexpr auto InitReal = ORVAS_DFTRToCInit_##bits##f;                                           \
    static constexpr auto RunReal = ORVAS_DFTRToC_##bits##f;                                                \
    static constexpr auto Divide = ORVAS_DivC_##bits##f_I;                                                  \
    static constexpr auto Plan = prefix##_plan_dft_1d;                                                      \
    static constexpr auto PlanReal = prefix##_plan_dft_r2c_1d;                                              \
    static constexpr auto Execute = prefix##_execute_dft;                                                   \
    static constexpr auto ExecuteReal = prefix##_execute_dft_r2c;                                           \
    static constexpr auto Destroy = prefix##_destroy_plan;                                                  \
  };
SIDES(Single, 32, Orva32f, Orva32fc, fftwf)
SIDES(Double, 64, Orva64f, Orva64fc, fftw)
#undef SIDES

// A forward transform with its normalisation beside FFTW's plan of the same kind and a division of all bins.
template <class S>
void Complexes(benchmark::State& state) {
  const auto n = static_cast<int32_t>(state.range(0));
  const auto count = static_cast<size_t>(n);
  const auto src = Aligned<typename S::C>(count), dst = Aligned<typename S::C>(count);
  auto* const in = reinterpret_cast<typename S::FftwComplex*>(src.get());
  auto* const out = reinterpret_cast<typename S::FftwComplex*>(dst.get());
  Spec* spec = nullptr;
  ORVAS_SetFFTNumberThreads(1);
  S::Init(n, 1, 1, &spec);
  const auto plan = S::Plan(n, in, out, FFTW_FORWARD, FFTW_ESTIMATE);
  Compare(state, [&] { S::Run(src.get(), dst.get(), spec); }, [&] {
    S::Execute(plan, in, out);
    S::Divide(static_cast<typename S::R>(n), *out, 2 * n);
  });
  S::Destroy(plan);
  S::Release(spec);
}

template <class S>
void Reals(benchmark::State& state) {
  const auto n = static_cast<int32_t>(state.range(0));
  const auto count = static_cast<size_t>(n);
  const auto src = Aligned<typename S::R>(count), dst = Aligned<typename S::R>(count + 2);
  auto* const out = reinterpret_cast<typename S::FftwComplex*>(dst.get());
  Spec* spec = nullptr;
  ORVAS_SetFFTNumberThreads(1);
  S::InitReal(n, 1, &spec);
  const auto plan = S::PlanReal(n, src.get(), out, FFTW_ESTIMATE);
  Compare(state, [&] { S::RunReal(src.get(), dst.get(), spec); }, [&] {
    S::ExecuteReal(plan, src.get(), out);
    S::Divide(static_cast<typename S::R>(n), dst.get(), n / 2 * 2 + 2);
  });
  S::Destroy(plan);
  S::Release(spec);
}

// A spec planned with 8 threads beside one planned with 1.
template <class S>
void Threads(benchmark::State& state) {
  const auto n = static_cast<int32_t>(state.range(0));
  const auto count = static_cast<size_t>(n);
  const auto src = Aligned<typename S::C>(count), dst = Aligned<typename S::C>(count);
  Spec *many = nullptr, *one = nullptr;
  ORVAS_SetFFTNumberThreads(8);
  S::Init(n, 1, 4, &many);
  ORVAS_SetFFTNumberThreads(1);
  S::Init(n, 1, 4, &one);
  Compare(state, [&] { S::Run(src.get(), dst.get(), many); }, [&] { S::Run(src.get(), dst.get(), one); });
  S::Release(many);
  S::Release(one);
}

// Init and Release of a length that was used before, as in every one-shot operation, beside FFTW's planner.
template <class S>
void Planning(benchmark::State& state) {
  const auto n = static_cast<int32_t>(state.range(0));
  const auto count = static_cast<size_t>(n);
  const auto src = Aligned<typename S::C>(count), dst = Aligned<typename S::C>(count);
  Compare(state, [&] {
    Spec* spec = nullptr;
    S::Init(n, 1, 1, &spec);
    S::Release(spec);
  }, [&] {
    S::Destroy(S::Plan(n, reinterpret_cast<typename S::FftwComplex*>(src.get()),
                       reinterpret_cast<typename S::FftwComplex*>(dst.get()), FFTW_FORWARD, FFTW_ESTIMATE));
  });
}

// Powers of two, odd lengths and primes.
constexpr int kOdd[] = {15, 17, 45, 63, 81, 105, 127, 243, 495, 729, 1001, 1155, 2187, 4095, 10007, 19683, 59049, 531441};

template <class S>
void Register() {
  const auto lengths = [](benchmark::internal::Benchmark* line, int first, bool odd) {
    for (int order = first; order <= 22; ++order) line->Arg(1 << order);
    if (odd) for (int n : kOdd) line->Arg(n);
    line->UseManualTime();
  };
  const auto name = [](const char* what, const char* kind) { return std::string("transform/") + what + S::kBits + kind; };
  lengths(benchmark::RegisterBenchmark(name("beside FFTW/DFTCToC_", "fc").c_str(), Complexes<S>), 4, true);
  lengths(benchmark::RegisterBenchmark(name("beside FFTW/DFTRToC_", "f").c_str(), Reals<S>), 4, true);
  lengths(benchmark::RegisterBenchmark(name("8 threads beside 1/DFTCToC_", "fc").c_str(), Threads<S>), 10, true);
  lengths(benchmark::RegisterBenchmark(name("planning/DFTCToC_", "fc").c_str(), Planning<S>), 4, false);
}

const bool registered = (Register<Single>(), Register<Double>(), true);

}  // namespace
