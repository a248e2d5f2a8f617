#include <signal_tzm/fir.h>

#include <array>

#include "members.h"
#include "support/random.h"

namespace tzm_test {

namespace {

// Two runs of a filter, the second with the delay line of the first.
template <class State, auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestPieces(Digest& digest, int32_t taps_len, int32_t up, int32_t down, int32_t first, int32_t second,
                  auto... parameters) {
  for (Variety variety : kVarieties) {
    const auto taps = RandomArray<Tap>(taps_len, 1, variety);
    const auto src = RandomArray<Sample>(down * (first + second), 2, variety);
    std::vector<Sample> dst(up * (first + second)), delay(taps_len);
    State* state = nullptr;
    digest.AddStatus(kInit(taps.data(), taps_len, parameters..., &state));
    digest.AddStatus(kRun(src.data(), dst.data(), first, state, nullptr, delay.data()));
    digest.AddStatus(kRun(&src[first * down], &dst[first * up], second, state, delay.data(), delay.data()));
    digest.AddStatus(kRelease(state));
    digest.Add(dst.data(), dst.size());
    digest.Add(delay.data(), delay.size());
  }
}
template <auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestSingleRate(Digest& digest) {
  for (int32_t taps_len : {1, 5, 40, 131})
    DigestPieces<FIRSRState, kInit, kRun, kRelease, Tap, Sample>(digest, taps_len, 1, 1, 277, 123, 300, 1);
}
template <auto kInit, auto kRun, auto kRelease, class Tap, class Sample>
void DigestMultiRate(Digest& digest) {
  for (auto [taps_len, up, down] : {std::array{7, 1, 1}, {64, 1, 4}, {50, 3, 2}, {33, 20, 7}})
    DigestPieces<FIRMRState, kInit, kRun, kRelease, Tap, Sample>(digest, taps_len, up, down, 29, 11, up, up - 1, down,
                                                                 down / 2);
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

// Two runs, the first shorter than the filter; then the taps and the line.
template <auto kInit, auto kRun, auto kGetTaps, auto kGetLine, auto kSetLine, auto kRelease, class Sample>
void DigestAdaptive(Digest& digest) {
  for (int32_t taps_len : {1, 8, 21, 64}) {
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Orva32f>(taps_len, 1, variety);
      const auto src = RandomArray<Sample>(300, 2, variety), ref = RandomArray<Sample>(300, 3, variety);
      std::vector<Sample> dst(300), line(taps_len);
      std::vector<Orva32f> adapted(taps_len);
      int32_t index = 0;
      FIRLMSState* state = nullptr;
      digest.AddStatus(kInit(&state, taps.data(), taps_len, nullptr, 0));
      digest.AddStatus(kSetLine(state, src.data(), taps_len + 3));
      digest.AddStatus(kRun(state, src.data(), ref.data(), dst.data(), 20, 0x1p-20f));
      digest.AddStatus(kRun(state, &src[20], &ref[20], &dst[20], 280, 0x1p-20f));
      digest.AddStatus(kGetTaps(state, adapted.data()));
      digest.AddStatus(kGetLine(state, line.data(), &index));
      digest.AddStatus(kRelease(state));
      digest.Add(dst.data(), dst.size());
      digest.Add(adapted.data(), adapted.size());
      digest.Add(line.data(), line.size());
      digest.Add(&index, 1);
    }
  }
}

void DigestSparse(Digest& digest) {
  for (const std::vector<int32_t>& positions : {std::vector{0}, {1, 2, 30}, {0, 5, 16, 100, 333}}) {
    for (Variety variety : kVarieties) {
      const auto taps = RandomArray<Orva32f>(positions.size(), 1, variety);
      const auto src = RandomArray<Orva32f>(400, 2, variety);
      std::vector<Orva32f> dst(400), line(positions.back());
      FIRSparseState* state = nullptr;
      digest.AddStatus(ORVAS_FIRSparseInit_32f(taps.data(), positions.data(), static_cast<int32_t>(positions.size()),
                                               nullptr, &state));
      digest.AddStatus(ORVAS_FIRSparseSetDlyLine_32f(state, src.data()));
      digest.AddStatus(ORVAS_FIRSparse_32f(src.data(), dst.data(), 70, state));
      digest.AddStatus(ORVAS_FIRSparse_32f(&src[70], &dst[70], 330, state));
      digest.AddStatus(ORVAS_FIRSparseGetDlyLine_32f(state, line.data()));
      digest.AddStatus(ORVAS_FIRSparseRelease_32f(state));
      digest.Add(dst.data(), dst.size());
      digest.Add(line.data(), line.size());
    }
  }
}

constexpr int32_t kLongestDesign = 129;

// Calls design(taps, tapsLen, winType, doNormal, buffer) with all windows.
void DigestDesign(Digest& digest, auto design) {
  FIRGenState* buffer = nullptr;
  digest.AddStatus(ORVAS_FIRGenInit_64f(kLongestDesign, &buffer));
  for (int32_t taps_len : {4, 5, 6, 32, kLongestDesign}) {
    for (int32_t window : {0, 1, 2, 3, 4}) {
      for (int32_t normal : {0, 1}) {
        std::vector<Orva64f> taps(taps_len);
        digest.AddStatus(design(taps.data(), taps_len, window, normal, buffer));
        digest.Add(taps.data(), taps.size());
      }
    }
  }
  digest.AddStatus(ORVAS_FIRGenRelease(buffer));
}
template <auto kDesign>
void DigestCut(Digest& digest) {
  DigestDesign(digest, [](auto... rest) { return kDesign(0.2, rest...); });
}
template <auto kDesign>
void DigestBand(Digest& digest) {
  DigestDesign(digest, [](auto... rest) { return kDesign(0.1, 0.35, rest...); });
}

// Times design(taps, tapsLen, winType, doNormal, buffer) with the optimal Blackman window.
std::function<Timed(int32_t)> TimeDesign(auto design) {
  return [=](int32_t taps_len) {
    FIRGenState* made = nullptr;
    ORVAS_FIRGenInit_64f(taps_len, &made);
    const std::shared_ptr<FIRGenState> buffer(made, ORVAS_FIRGenRelease);
    const auto taps = SharedArray<Orva64f>(taps_len);
    return Timed{[=] { return design(taps->data(), taps_len, 1, 1, buffer.get()); }, 8 * int64_t{taps_len}};
  };
}

// 64 taps on the direct route; 64 taps down by 4.
#define SINGLE_RATE(run, init, tap, sample)                                                                     \
  Member({"ORVAS_FIRSR" #run, "ORVAS_FIRSRInit" #init, "ORVAS_FIRSRRelease" #init},                              \
         DigestSingleRate<ORVAS_FIRSRInit##init, ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init, tap, sample>)       \
      .Benchmark(Time<FIRSRState, tap, sample>(                                                                  \
          [](const tap* taps, int32_t len, FIRSRState** made) { ORVAS_FIRSRInit##init(taps, kTaps, len, 1, made); }, \
          ORVAS_FIRSR##run, ORVAS_FIRSRRelease##init, 1, 1))
#define ADAPTIVE(name, type, sample)                                                                           \
  Member({"ORVAS_FIRLMS" #name "_" #type, "ORVAS_FIRLMSInit" #name "_" #type, "ORVAS_FIRLMSGetTaps" #name "_" #type,  \
          "ORVAS_FIRLMSGetDlyLine" #name "_" #type, "ORVAS_FIRLMSSetDlyLine" #name "_" #type,                    \
          "ORVAS_FIRLMSRelease" #name "_" #type},                                                                \
         DigestAdaptive<ORVAS_FIRLMSInit##name##_##type, ORVAS_FIRLMS##name##_##type,                            \
                        ORVAS_FIRLMSGetTaps##name##_##type, ORVAS_FIRLMSGetDlyLine##name##_##type,               \
                        ORVAS_FIRLMSSetDlyLine##name##_##type, ORVAS_FIRLMSRelease##name##_##type, sample>)      \
      .Benchmark(Time<FIRLMSState, Orva32f, sample>(                                                             \
          [](const Orva32f* taps, int32_t, FIRLMSState** made) {                                                 \
            ORVAS_FIRLMSInit##name##_##type(made, taps, kTaps, nullptr, 0);                                      \
          },                                                                                                     \
          [](const sample* src, sample* dst, int32_t len, FIRLMSState* state, const sample*, sample*) {          \
            return ORVAS_FIRLMS##name##_##type(state, src, src, dst, len, 0x1p-30f);                             \
          },                                                                                                     \
          ORVAS_FIRLMSRelease##name##_##type, 2, 1))
#define CUT(design)                                                                           \
  Member({"ORVAS_FIRGen" #design "_64f"}, DigestCut<ORVAS_FIRGen##design##_64f>)              \
      .Benchmark(TimeDesign([](auto... rest) { return ORVAS_FIRGen##design##_64f(0.2, rest...); }))
#define BAND(design)                                                                          \
  Member({"ORVAS_FIRGen" #design "_64f"}, DigestBand<ORVAS_FIRGen##design##_64f>)             \
      .Benchmark(TimeDesign([](auto... rest) { return ORVAS_FIRGen##design##_64f(0.1, 0.35, rest...); }))
#define MULTI_RATE(run, init, tap, sample)                                                                      \
  Member({"ORVAS_FIRMR" #run, "ORVAS_FIRMRInit" #init, "ORVAS_FIRMRRelease" #init},                              \
         DigestMultiRate<ORVAS_FIRMRInit##init, ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init, tap, sample>)        \
      .Benchmark(Time<FIRMRState, tap, sample>(                                                                  \
          [](const tap* taps, int32_t, FIRMRState** made) { ORVAS_FIRMRInit##init(taps, kTaps, 1, 0, 4, 0, made); }, \
          ORVAS_FIRMR##run, ORVAS_FIRMRRelease##init, 4, 1))

#define PAIRINGS(row)                                                                                  \
  row(_32f, _32f, Orva32f, Orva32f), row(_16s, _32f, Orva32f, Orva16s), row(_64f, _64f, Orva64f, Orva64f), \
  row(_32fc, _32fc, Orva32fc, Orva32fc), row(_16sc, _32fc, Orva32fc, Orva16sc),                        \
  row(_64fc, _64fc, Orva64fc, Orva64fc), row(32f_32fc, 32f_32fc, Orva32f, Orva32fc),

}  // namespace

static const Rows rows("fir", {
    PAIRINGS(SINGLE_RATE)
    PAIRINGS(MULTI_RATE)
    ADAPTIVE(, 32f, Orva32f),
    ADAPTIVE(32f, 16s, Orva16s),
    // 64 taps, spread over 64 times as many samples.
    Member({"ORVAS_FIRSparse_32f", "ORVAS_FIRSparseInit_32f", "ORVAS_FIRSparseGetDlyLine_32f",
            "ORVAS_FIRSparseSetDlyLine_32f", "ORVAS_FIRSparseRelease_32f"}, DigestSparse)
        .Benchmark(Time<FIRSparseState, Orva32f, Orva32f>(
            [](const Orva32f* taps, int32_t, FIRSparseState** made) {
              std::vector<int32_t> positions;
              for (int32_t k = 0; k < kTaps; ++k) positions.push_back(kTaps * k + k % 7);
              ORVAS_FIRSparseInit_32f(taps, positions.data(), kTaps, nullptr, made);
            },
            [](const Orva32f* src, Orva32f* dst, int32_t len, FIRSparseState* state, const Orva32f*, Orva32f*) {
              return ORVAS_FIRSparse_32f(src, dst, len, state);
            },
            ORVAS_FIRSparseRelease_32f, 1, 1)),
    CUT(Lowpass),
    CUT(Highpass),
    BAND(Bandpass),
    BAND(Bandstop),
    Member({"ORVAS_FIRGenInit_64f", "ORVAS_FIRGenRelease"}),
});

#undef SINGLE_RATE
#undef ADAPTIVE
#undef CUT
#undef BAND
#undef MULTI_RATE
#undef PAIRINGS

}  // namespace tzm_test
