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

#define RESAMPLE(type)                                                                                            \
  Member({"ORVAS_ResamplePolyphase_" #type, "ORVAS_ResamplePolyphaseInit_" #type,                                 \
          "ORVAS_ResamplePolyphaseRelease_" #type},                                                               \
         [](Digest& digest) {                                                                                     \
           ResampleByFactors<Orva##type>(digest, ORVAS_ResamplePolyphaseInit_##type,                              \
                                         ORVAS_ResamplePolyphase_##type);                                         \
         }),                                                                                                         \
      Member({"ORVAS_ResamplePolyphaseFixed_" #type, "ORVAS_ResamplePolyphaseFixedInit_" #type,                   \
              "ORVAS_ResamplePolyphaseFixedSetFilter_" #type, "ORVAS_ResamplePolyphaseFixedGetFilter_" #type,     \
              "ORVAS_ResamplePolyphaseFixedRelease_" #type},                                                      \
             [](Digest& digest) {                                                                                 \
               ResampleBetweenRates<Orva##type>(                                                                  \
                   digest, ORVAS_ResamplePolyphaseFixedInit_##type, ORVAS_ResamplePolyphaseFixed_##type,          \
                   ORVAS_ResamplePolyphaseFixedSetFilter_##type, ORVAS_ResamplePolyphaseFixedGetFilter_##type);   \
             })

static const Rows rows("resample", {RESAMPLE(16s), RESAMPLE(32f)});
#undef RESAMPLE

}  // namespace tzm_test
