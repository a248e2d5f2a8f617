// Rows of the resamplers.
#include <signal_tzm/resample.h>

#include <memory>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

template <class Sample, class Init, class Run>
static void ResampleByFactors(Digest& digest, Init init, Run run) {
  const auto src = RandomArray<Sample>(400, 1);
  for (int32_t hint : {0, 2}) {
    ResamplePolyphaseState* state = nullptr;
    digest.AddStatus(init(17.5f, 60, 0.9f, 6, hint, &state));
    for (double factor : {1.0, 2.75, 160 / 147., 1 / 3.}) {
      std::vector<Sample> dst(1000);
      double time = 40.3;
      int32_t count = 0;
      digest.AddStatus(run(src.data(), 300, dst.data(), factor, 1.25f, &time, &count, state));
      digest.Add(dst.data(), dst.size());
      digest.Add(&time, 1);
      digest.Add(&count, 1);
    }
    ORVAS_ResamplePolyphaseRelease_32f(state);
  }
}

template <class Sample, class Init, class Run, class Set, class Get>
static void ResampleBetweenRates(Digest& digest, Init init, Run run, Set set, Get get) {
  const auto src = RandomArray<Sample>(400, 1);
  for (auto [from, to] : {std::pair{48000, 16000}, {44100, 48000}, {5, 20}}) {
    ResamplePolyphaseFixedState* state = nullptr;
    digest.AddStatus(init(from, to, 17.5f, 0.9f, 6, &state));
    int32_t taps_len = 0, count = 0;
    digest.AddStatus(get(state, nullptr, &taps_len));
    std::vector<Orva32f> taps(static_cast<size_t>(taps_len));
    digest.AddStatus(get(state, taps.data(), &taps_len));
    digest.Add(taps.data(), taps.size());
    digest.AddStatus(set(state, taps.data(), taps_len));
    std::vector<Sample> dst(2000);
    int64_t time = int64_t{40} * to;
    digest.AddStatus(run(src.data(), 300, dst.data(), 1.25f, &time, &count, state));
    digest.Add(dst.data(), dst.size());
    digest.Add(&time, 1);
    digest.Add(&count, 1);
    ORVAS_ResamplePolyphaseFixedRelease_32f(state);
  }
}

// From 44.1 to 48 kHz through 64 taps.
template <class Sample, class Init, class Run>
static Timed TimeFactor(int32_t len, Init init, Run run) {
  ResamplePolyphaseState* made = nullptr;
  init(64, 512, 0.9f, 9, 0, &made);
  const std::shared_ptr<ResamplePolyphaseState> state(made, ORVAS_ResamplePolyphaseRelease_32f);
  const auto src = SharedArray<Sample>(len + 80), dst = SharedArray<Sample>(len * 160 / 147 + 2);
  return {[=] {
            double time = 40;
            int32_t count;
            return run(src->data(), len, dst->data(), 160 / 147., 1, &time, &count, state.get());
          },
          int64_t{len} * 307 / 147 * static_cast<int64_t>(sizeof(Sample))};
}
template <class Sample, class Init, class Run>
static Timed TimeRates(int32_t len, Init init, Run run) {
  ResamplePolyphaseFixedState* made = nullptr;
  init(44100, 48000, 64, 0.9f, 9, &made);
  const std::shared_ptr<ResamplePolyphaseFixedState> state(made, ORVAS_ResamplePolyphaseFixedRelease_32f);
  const auto src = SharedArray<Sample>(len + 80), dst = SharedArray<Sample>(len * 160 / 147 + 2);
  return {[=] {
            int64_t time = 40 * 48000;
            int32_t count;
            return run(src->data(), len, dst->data(), 1, &time, &count, state.get());
          },
          int64_t{len} * 307 / 147 * static_cast<int64_t>(sizeof(Sample))};
}

#define RESAMPLE(type)                                                                                            \
  Member({"ORVAS_ResamplePolyphase_" #type, "ORVAS_ResamplePolyphaseInit_" #type,                                 \
          "ORVAS_ResamplePolyphaseRelease_" #type},                                                               \
         [](Digest& digest) {                                                                                     \
           ResampleByFactors<Orva##type>(digest, ORVAS_ResamplePolyphaseInit_##type,                              \
                                         ORVAS_ResamplePolyphase_##type);                                         \
         })                                                                                                       \
      .Benchmark([](int32_t len) {                                                                                \
        return TimeFactor<Orva##type>(len, ORVAS_ResamplePolyphaseInit_##type, ORVAS_ResamplePolyphase_##type);   \
      }),                                                                                                         \
      Member({"ORVAS_ResamplePolyphaseFixed_" #type, "ORVAS_ResamplePolyphaseFixedInit_" #type,                   \
              "ORVAS_ResamplePolyphaseFixedSetFilter_" #type, "ORVAS_ResamplePolyphaseFixedGetFilter_" #type,     \
              "ORVAS_ResamplePolyphaseFixedRelease_" #type},                                                      \
             [](Digest& digest) {                                                                                 \
               ResampleBetweenRates<Orva##type>(                                                                  \
                   digest, ORVAS_ResamplePolyphaseFixedInit_##type, ORVAS_ResamplePolyphaseFixed_##type,          \
                   ORVAS_ResamplePolyphaseFixedSetFilter_##type, ORVAS_ResamplePolyphaseFixedGetFilter_##type);   \
             })                                                                                                   \
          .Benchmark([](int32_t len) {                                                                            \
            return TimeRates<Orva##type>(len, ORVAS_ResamplePolyphaseFixedInit_##type,                            \
                                         ORVAS_ResamplePolyphaseFixed_##type);                                    \
          })

static const Rows rows("resample", {RESAMPLE(16s), RESAMPLE(32f)});
#undef RESAMPLE

}  // namespace tzm_test
