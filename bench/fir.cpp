// FIR filters by FFT beside the bare transforms that they make; the multi-rate filter from 44.1 to 48 kHz.
#include <benchmark/benchmark.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/fir.h>

#include <bit>
#include <memory>

#include "support/random.h"

namespace {

using namespace tzm_test;

constexpr int32_t kBlocks = 16;

// With so many taps the transforms of a long stream have so many points; each gives as many outputs, less the taps.
int32_t Points(int32_t taps) { return 4 * static_cast<int32_t>(std::bit_ceil(static_cast<uint32_t>(taps))); }

template <class Tap, class Sample>
void Filter(benchmark::State& state, OrvaStatus (*init)(const Tap*, int32_t, int32_t, int32_t, FIRSRState**),
            OrvaStatus (*run)(const Sample*, Sample*, int32_t, FIRSRState*, const Sample*, Sample*),
            OrvaStatus (*release)(FIRSRState*)) {
  const auto taps_len = static_cast<int32_t>(state.range(0)), len = kBlocks * (Points(taps_len) - taps_len);
  const auto taps = RandomArray<Tap>(taps_len, 1);
  const auto src = RandomArray<Sample>(len, 2);
  std::vector<Sample> dst(len);
  FIRSRState* made = nullptr;
  init(taps.data(), taps_len, len, 2, &made);
  const std::unique_ptr<FIRSRState, OrvaStatus (*)(FIRSRState*)> filter(made, release);
  for (auto _ : state) benchmark::DoNotOptimize(run(src.data(), dst.data(), len, made, nullptr, nullptr));
}
void FilterReal(benchmark::State& state) {
  Filter(state, ORVAS_FIRSRInit_32f, ORVAS_FIRSR_32f, ORVAS_FIRSRRelease_32f);
}
void FilterComplex(benchmark::State& state) {
  Filter(state, ORVAS_FIRSRInit_32fc, ORVAS_FIRSR_32fc, ORVAS_FIRSRRelease_32fc);
}

void TransformsReal(benchmark::State& state) {
  const int32_t points = Points(static_cast<int32_t>(state.range(0)));
  auto samples = RandomArray<Orva32f>(points, 1), result = samples;
  auto spectrum = RandomArray<Orva32fc>(points, 2), product = spectrum;
  const tzm_fftf_plan forward = tzm_fftf_plan_dft_r2c_1d(points, nullptr, nullptr, 0);
  const tzm_fftf_plan inverse = tzm_fftf_plan_dft_c2r_1d(points, nullptr, nullptr, 0);
  for (auto _ : state) {
    for (int32_t k = 0; k < kBlocks; ++k) {
      tzm_fftf_execute_dft_r2c(forward, samples.data(), spectrum.data());
      tzm_fftf_execute_dft_c2r(inverse, product.data(), result.data());
    }
  }
  tzm_fftf_destroy_plan(forward);
  tzm_fftf_destroy_plan(inverse);
}
void TransformsComplex(benchmark::State& state) {
  const int32_t points = Points(static_cast<int32_t>(state.range(0)));
  auto samples = RandomArray<Orva32fc>(points, 1), spectrum = samples, product = samples, result = samples;
  const tzm_fftf_plan forward = tzm_fftf_plan_dft_1d(points, nullptr, nullptr, -1, 0);
  const tzm_fftf_plan inverse = tzm_fftf_plan_dft_1d(points, nullptr, nullptr, 1, 0);
  for (auto _ : state) {
    for (int32_t k = 0; k < kBlocks; ++k) {
      tzm_fftf_execute_dft(forward, samples.data(), spectrum.data());
      tzm_fftf_execute_dft(inverse, product.data(), result.data());
    }
  }
  tzm_fftf_destroy_plan(forward);
  tzm_fftf_destroy_plan(inverse);
}

// With so many taps for each output and so many times 147 samples in a call.
void MultiRate(benchmark::State& state) {
  constexpr int32_t kUp = 160, kDown = 147;
  const auto rows = static_cast<int32_t>(state.range(0)), iterations = static_cast<int32_t>(state.range(1));
  const auto taps = RandomArray<Orva32f>(kUp * rows, 1), src = RandomArray<Orva32f>(kDown * iterations, 2);
  std::vector<Orva32f> dst(kUp * iterations);
  FIRMRState* made = nullptr;
  ORVAS_FIRMRInit_32f(taps.data(), kUp * rows, kUp, 0, kDown, 0, &made);
  for (auto _ : state)
    benchmark::DoNotOptimize(ORVAS_FIRMR_32f(src.data(), dst.data(), iterations, made, nullptr, nullptr));
  ORVAS_FIRMRRelease_32f(made);
  state.counters["multiply_adds"] = {static_cast<double>(kUp) * iterations * rows,
                                     benchmark::Counter::kIsIterationInvariantRate};
}

BENCHMARK(FilterReal)->Name("FIRSR_32f by FFT")->RangeMultiplier(4)->Range(16, 4096);
BENCHMARK(TransformsReal)->Name("FIRSR_32f transforms")->RangeMultiplier(4)->Range(16, 4096);
BENCHMARK(FilterComplex)->Name("FIRSR_32fc by FFT")->RangeMultiplier(4)->Range(16, 4096);
BENCHMARK(TransformsComplex)->Name("FIRSR_32fc transforms")->RangeMultiplier(4)->Range(16, 4096);
BENCHMARK(MultiRate)->Name("FIRMR_32f 160/147")->ArgsProduct({{16, 64}, {1, 2, 16, 64}});

}  // namespace
