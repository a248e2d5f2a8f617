// Welch's estimate of a minute of sound beside what it cannot do without: the transforms themselves and
// one pass of copying for each of its steps (window, power, accumulation).
#include <benchmark/benchmark.h>
#include <signal_tzm/companion.h>
#include <signal_tzm/transform.h>

#include <cstring>

#include "support/random.h"

namespace {

using namespace tzm_test;

constexpr int32_t kRate = 48000, kSamples = 60 * kRate;

void Estimate(benchmark::State& state) {
  const auto segment = static_cast<int32_t>(state.range(0));
  const auto sound = RandomArray<Orva32f>(kSamples, 1), window = RandomArray<Orva32f>(static_cast<size_t>(segment), 2);
  std::vector<Orva32f> density(static_cast<size_t>(segment / 2 + 1));
  for (auto _ : state)
    benchmark::DoNotOptimize(
        ORVAS_Pwelch_32f(sound.data(), window.data(), density.data(), kSamples, 0, segment, 0.5));
}

void TransformsAndCopies(benchmark::State& state) {
  const auto segment = static_cast<int32_t>(state.range(0));
  const auto n = static_cast<size_t>(segment), bins = n / 2 + 1;
  const auto sound = RandomArray<Orva32f>(kSamples, 1);
  std::vector<Orva32f> windowed(n), power(bins), sum(bins);
  std::vector<Orva32fc> spectrum(bins);
  for (auto _ : state) {
    const tzm_fftf_plan plan = tzm_fftf_plan_dft_r2c_1d(segment, nullptr, nullptr, 0);
    for (size_t from = 0; from + n <= sound.size(); from += n / 2) {
      std::memcpy(windowed.data(), sound.data() + from, n * sizeof(Orva32f));
      tzm_fftf_execute_dft_r2c(plan, windowed.data(), spectrum.data());
      std::memcpy(power.data(), spectrum.data(), bins * sizeof(Orva32f));
      benchmark::DoNotOptimize(power.data());
      benchmark::ClobberMemory();
      std::memcpy(sum.data(), power.data(), bins * sizeof(Orva32f));
      benchmark::DoNotOptimize(sum.data());
      benchmark::ClobberMemory();
    }
    tzm_fftf_destroy_plan(plan);
  }
}

BENCHMARK(Estimate)->Name("Welch/Pwelch_32f")->Arg(1024)->Arg(4096)->Arg(16384)->Unit(benchmark::kMillisecond);
BENCHMARK(TransformsAndCopies)
    ->Name("Welch/transforms and copies")->Arg(1024)->Arg(4096)->Arg(16384)->Unit(benchmark::kMillisecond);

}  // namespace
