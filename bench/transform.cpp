// Transforms beside the bare FFTW plan, estimated and measured, with 8 threads beside 1, and planning beside FFTW's.
// `ours_ns` and `theirs_ns` are the best of their turns, and `ratio` is the one over the other.
#include <benchmark/benchmark.h>
#include <fftw3.h>
#include <signal_tzm/arith.h>
#include <signal_tzm/transform.h>

#include <algorithm>
#include <memory>
#include <string>
#include <type_traits>

#include "states.h"
#include "turns.h"

namespace {

using tzm_bench::Aligned;

constexpr double kTurn = 5e5;  // nanoseconds, at least

void Compare(benchmark::State& state, const auto& ours, const auto& theirs) {
  double calls = 1;
  while (tzm_bench::Nanoseconds(theirs, static_cast<int64_t>(calls)) * calls < kTurn) calls *= 2;
  tzm_bench::Least least;
  for (auto _ : state) state.SetIterationTime(least.Turn(ours, theirs, static_cast<int64_t>(calls)) * calls * 1e-9);
  state.counters["ours_ns"] = least.ours;
  state.counters["theirs_ns"] = least.theirs;
  state.counters["ratio"] = least.ours / least.theirs;
}

using Spec = std::unique_ptr<OrvaTransformSpec, OrvaStatus (*)(OrvaTransformSpec*)>;

#define PRECISION(Name, bits, fftw)                                          \
  struct Name {                                                              \
    using Real = Orva##bits##f;                                              \
    using Complex = Orva##bits##fc;                                          \
    using Bins = fftw##_complex*;                                            \
    static constexpr auto kInit = ORVAS_DFTCToCInit_##bits##fc;              \
    static constexpr auto kRun = ORVAS_DFTCToC_##bits##fc;                   \
    static constexpr auto kInitReal = ORVAS_DFTRToCInit_##bits##f;           \
    static constexpr auto kRunReal = ORVAS_DFTRToC_##bits##f;                \
    static constexpr auto kRelease = ORVAS_DFTRToCRelease_##bits##f;         \
    static constexpr auto kDivide = ORVAS_DivC_##bits##f_I;                  \
    static constexpr auto kPlan = fftw##_plan_dft_1d;                        \
    static constexpr auto kPlanReal = fftw##_plan_dft_r2c_1d;                \
    static constexpr auto kExecute = fftw##_execute_dft;                     \
    static constexpr auto kExecuteReal = fftw##_execute_dft_r2c;             \
    static constexpr auto kDestroy = fftw##_destroy_plan;                    \
    static constexpr auto kForget = fftw##_forget_wisdom;                    \
  };
PRECISION(Single, 32, fftwf)
PRECISION(Double, 64, fftw)
#undef PRECISION

// Forward transforms of n points, complex or real, on either side, and their arrays.
template <class P, bool kReal>
class Transforms {
 public:
  explicit Transforms(benchmark::State& state)
      : n_(static_cast<int32_t>(state.range(0))), src_(Aligned<Sample>(n_)), dst_(Aligned<Complex>(n_)) {
    Fill();
  }

  Spec MakeSpec(int32_t threads) const {
    OrvaTransformSpec* spec = nullptr;
    ORVAS_SetFFTNumberThreads(threads);
    if constexpr (kReal) P::kInitReal(n_, ORVA_DIVIDE_FORWARD, &spec);
    else P::kInit(n_, ORVA_DIRECTION_FORWARD, ORVA_DIVIDE_FORWARD, &spec);
    return {spec, P::kRelease};
  }
  void Run(const Spec& spec) const {
    if constexpr (kReal) P::kRunReal(src_.get(), reinterpret_cast<Real*>(dst_.get()), spec.get());
    else P::kRun(src_.get(), dst_.get(), spec.get());
  }

  auto MakePlan() const { return Plan(FFTW_ESTIMATE); }
  // Measuring overwrites the source, and later estimated plans would use what it learnt.
  auto MakeMeasuredPlan() const {
    const auto plan = Plan(FFTW_MEASURE);
    P::kForget();
    Fill();
    return plan;
  }
  // With one pass of division.
  void RunPlan(auto plan) const {
    if constexpr (kReal) P::kExecuteReal(plan, src_.get(), bins());
    else P::kExecute(plan, reinterpret_cast<Bins>(src_.get()), bins());
    P::kDivide(static_cast<Real>(n_), *bins(), kReal ? n_ / 2 * 2 + 2 : 2 * n_);
  }

 private:
  using Real = typename P::Real;
  using Complex = typename P::Complex;
  using Sample = std::conditional_t<kReal, Real, Complex>;
  using Bins = typename P::Bins;
  auto Plan(unsigned effort) const {
    if constexpr (kReal) return P::kPlanReal(n_, src_.get(), bins(), effort);
    else return P::kPlan(n_, reinterpret_cast<Bins>(src_.get()), bins(), FFTW_FORWARD, effort);
  }
  void Fill() const {
    const auto values = tzm_test::RandomArray<Sample>(static_cast<size_t>(n_), 1);
    std::copy(values.begin(), values.end(), src_.get());
  }
  Bins bins() const { return reinterpret_cast<Bins>(dst_.get()); }

  int32_t n_;
  std::shared_ptr<Sample> src_;
  std::shared_ptr<Complex> dst_;
};

template <class P, bool kReal, bool kMeasured>
void BesideFftw(benchmark::State& state) {
  const Transforms<P, kReal> transforms(state);
  const Spec spec = transforms.MakeSpec(1);
  const auto plan = kMeasured ? transforms.MakeMeasuredPlan() : transforms.MakePlan();
  Compare(state, [&] { transforms.Run(spec); }, [&] { transforms.RunPlan(plan); });
  P::kDestroy(plan);
}

// A spec planned with 8 threads beside one planned with 1.
template <class P, bool kReal>
void Threads(benchmark::State& state) {
  const Transforms<P, kReal> transforms(state);
  const Spec many = transforms.MakeSpec(8), one = transforms.MakeSpec(1);
  Compare(state, [&] { transforms.Run(many); }, [&] { transforms.Run(one); });
}

// Init and Release of a length that was used before, as in every one-shot operation, beside FFTW's planner.
template <class P, bool kReal>
void Planning(benchmark::State& state) {
  const Transforms<P, kReal> transforms(state);
  Compare(state, [&] { transforms.MakeSpec(1); }, [&] { P::kDestroy(transforms.MakePlan()); });
}

template <class P, bool kReal>
void Register(const std::string& kind) {
  const auto line = [&](const char* what, void (*run)(benchmark::State&), int firstOrder) {
    auto* const lines = benchmark::RegisterBenchmark(("transform/" + kind + "/" + what).c_str(), run)->UseManualTime();
    for (int order = firstOrder; order <= 22; ++order) lines->Arg(1 << order);
    for (int n : {15, 17, 45, 63, 81, 105, 127, 243, 729, 1001, 1155, 4095, 10007, 19683, 40009, 59049, 100000, 390625,
                  531441})
      lines->Arg(n);
  };
  line("beside FFTW", BesideFftw<P, kReal, false>, 4);
  line("beside FFTW measured", BesideFftw<P, kReal, true>, 4);
  line("8 threads beside 1", Threads<P, kReal>, 10);
  line("planning", Planning<P, kReal>, 4);
}

const bool registered = [] {
  Register<Single, false>("DFTCToC_32fc");
  Register<Double, false>("DFTCToC_64fc");
  Register<Single, true>("DFTRToC_32f");
  Register<Double, true>("DFTRToC_64f");
  return true;
}();

}  // namespace
