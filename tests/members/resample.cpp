// Rows of the resamplers.
#include <signal_tzm/resample.h>

#include "members.h"

namespace tzm_test::resample_rows {

template <class Sample, class... P>
void ByFactors(Digest& digest, OrvaStatus (*run)(const Sample*, P...), auto init, auto release) {
  const auto src = RandomArray<Sample>(400, 1);
  for (int32_t hint : {0, 2}) {
    ResamplePolyphaseState* state = nullptr;
    digest.Call(init, 17.5f, 60, 0.9f, 6, hint, &state);
    for (double factor : {1.0, 2.75, 160 / 147., 1 / 3.}) {
      std::vector<Sample> dst(1000);
      double time = 40.3;
      int32_t count = 0;
      digest.Call(run, src.data(), 300, dst.data(), factor, 1.25f, &time, &count, state);
      digest.Add(dst.data(), dst.size());
      digest.Add(&time, 1);
      digest.Add(&count, 1);
    }
    release(state);
  }
}

template <class Sample, class... P>
void BetweenRates(Digest& digest, OrvaStatus (*run)(const Sample*, P...), auto init, auto set, auto get, auto release) {
  const auto src = RandomArray<Sample>(400, 1);
  for (auto [from, to] : {std::pair{48000, 16000}, {44100, 48000}, {5, 20}}) {
    ResamplePolyphaseFixedState* state = nullptr;
    digest.Call(init, from, to, 17.5f, 0.9f, 6, &state);
    int32_t taps_len = 0, count = 0;
    digest.Call(get, state, nullptr, &taps_len);
    std::vector<Orva32f> taps(static_cast<size_t>(taps_len));
    digest.Call(get, state, taps.data(), &taps_len);
    digest.Add(taps.data(), taps.size());
    digest.Call(set, state, taps.data(), taps_len);
    std::vector<Sample> dst(2000);
    int64_t time = int64_t{40} * to;
    digest.Call(run, src.data(), 300, dst.data(), 1.25f, &time, &count, state);
    digest.Add(dst.data(), dst.size());
    digest.Add(&time, 1);
    digest.Add(&count, 1);
    release(state);
  }
}

#define FACTORS(type)                                                                     \
  SCENARIO(ByFactors, ORVAS_ResamplePolyphase_##type, ORVAS_ResamplePolyphaseInit_##type, \
           ORVAS_ResamplePolyphaseRelease_##type)
#define RATES(type)                                                                                    \
  SCENARIO(BetweenRates, ORVAS_ResamplePolyphaseFixed_##type, ORVAS_ResamplePolyphaseFixedInit_##type, \
           ORVAS_ResamplePolyphaseFixedSetFilter_##type, ORVAS_ResamplePolyphaseFixedGetFilter_##type, \
           ORVAS_ResamplePolyphaseFixedRelease_##type)

const Rows rows("resample", {FACTORS(16s), FACTORS(32f), RATES(16s), RATES(32f)});

}  // namespace tzm_test::resample_rows
