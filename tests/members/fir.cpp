#include <signal_tzm/fir.h>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

// Two runs of the direct route, the second with the delay line of the first.
template <auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestSingleRate(Digest& digest) {
  for (int32_t taps_len : {1, 5, 40, 131}) {
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Tap>(taps_len, 1, variety);
      const auto src = RandomArray<Sample>(400, 2, variety);
      std::vector<Sample> dst(400), delay(taps_len);
      FIRSRState* state = nullptr;
      digest.AddStatus(kInit(taps.data(), taps_len, 300, 1, &state));
      digest.AddStatus(kRun(src.data(), dst.data(), 277, state, nullptr, delay.data()));
      digest.AddStatus(kRun(src.data() + 277, dst.data() + 277, 123, state, delay.data(), delay.data()));
      digest.AddStatus(kRelease(state));
      digest.Add(dst.data(), dst.size());
      digest.Add(delay.data(), delay.size());
    }
  }
}

template <auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestMultiRate(Digest& digest) {
  for (auto [taps_len, up, down] : {std::array{7, 1, 1}, {64, 1, 4}, {50, 3, 2}, {33, 20, 7}}) {
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Tap>(taps_len, 1, variety);
      const auto src = RandomArray<Sample>(down * 40, 2, variety);
      std::vector<Sample> dst(up * 40), delay(taps_len);
      FIRMRState* state = nullptr;
      digest.AddStatus(kInit(taps.data(), taps_len, up, up - 1, down, down / 2, &state));
      digest.AddStatus(kRun(src.data(), dst.data(), 29, state, nullptr, delay.data()));
      digest.AddStatus(kRun(&src[29 * down], &dst[29 * up], 11, state, delay.data(), delay.data()));
      digest.AddStatus(kRelease(state));
      digest.Add(dst.data(), dst.size());
      digest.Add(delay.data(), delay.size());
    }
  }
}

constexpr int32_t kTaps = 64;

template <class State, class Tap, class Sample>
std::function<Timed(int32_t)> Time(auto make, auto run, OrvaStatus (*release)(State*), int64_t in, int64_t out) {
  return [=](int32_t len) {
    const auto taps = SharedArray<Tap>(kTaps);
    State* made = nullptr;
    make(taps->data(), len, &made);
    const std::shared_ptr<State> state(made, release);
    const auto src = SharedArray<Sample>(in * len), dst = SharedArray<Sample>(out * len);
    const auto delay = SharedArray<Sample>(kTaps);
    return Timed{[=] { return run(src->data(), dst->data(), len, state.get(), delay->data(), delay->data()); },
                 static_cast<int64_t>(sizeof(Sample)) * (in + out) * len};
  };
}

// 64 taps on the direct route; 64 taps down by 4.
#define SINGLE_RATE(run, init, tap, sample)                                                                     \
  Member({"ORVAS_FIRSR" #run, "ORVAS_FIRSRInit" #init, "ORVAS_FIRSRRelease" #init},                              \
         DigestSingleRate<ORVAS_FIRSRInit##init, ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init, tap, sample>)       \
      .Benchmark(Time<FIRSRState, tap, sample>(                                                                  \
          [](const tap* taps, int32_t len, FIRSRState** made) { ORVAS_FIRSRInit##init(taps, kTaps, len, 1, made); }, \
          ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init, 1, 1))
#define MULTI_RATE(run, init, tap, sample)                                                                      \
  Member({"ORVAS_FIRMR" #run, "ORVAS_FIRMRInit" #init, "ORVAS_FIRMRRelease" #init},                              \
         DigestMultiRate<ORVAS_FIRMRInit##init, ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init, tap, sample>)        \
      .Benchmark(Time<FIRMRState, tap, sample>(                                                                  \
          [](const tap* taps, int32_t, FIRMRState** made) { ORVAS_FIRMRInit##init(taps, kTaps, 1, 0, 4, 0, made); }, \
          ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init, 4, 1))

}  // namespace

static const Rows rows("fir", {
    SINGLE_RATE(_32f, _32f, Orva32f, Orva32f),
    SINGLE_RATE(_16s, _32f, Orva32f, Orva16s),
    SINGLE_RATE(_64f, _64f, Orva64f, Orva64f),
    SINGLE_RATE(_32fc, _32fc, Orva32fc, Orva32fc),
    SINGLE_RATE(_16sc, _32fc, Orva32fc, Orva16sc),
    SINGLE_RATE(_64fc, _64fc, Orva64fc, Orva64fc),
    SINGLE_RATE(32f_32fc, 32f_32fc, Orva32f, Orva32fc),
    MULTI_RATE(_32f, _32f, Orva32f, Orva32f),
    MULTI_RATE(_16s, _32f, Orva32f, Orva16s),
    MULTI_RATE(_64f, _64f, Orva64f, Orva64f),
    MULTI_RATE(_32fc, _32fc, Orva32fc, Orva32fc),
    MULTI_RATE(_16sc, _32fc, Orva32fc, Orva16sc),
    MULTI_RATE(_64fc, _64fc, Orva64fc, Orva64fc),
    MULTI_RATE(32f_32fc, 32f_32fc, Orva32f, Orva32fc),
});

#undef SINGLE_RATE
#undef MULTI_RATE

}  // namespace tzm_test
